// Declares the classes of this folder.
#pragma once

class ccDisplay;
