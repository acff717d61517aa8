// Keeps what only an archive uses in a program that links the static library.
#pragma once

// Call it before reading exceptions from an archive whose classes the program throws nowhere itself.
void cfInitializeFoundation();
