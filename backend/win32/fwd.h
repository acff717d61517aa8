// Declares the classes of this folder.
#pragma once

class ccUIWin32Root;
class ccWin32Display;
