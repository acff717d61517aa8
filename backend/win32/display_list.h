// The lists of the process: which window a display subclasses, and which parent windows are subclassed for chroma keying.
// Both are guarded by ccWin32Display::listMutex().
#pragma once

#include "platform/types.h"

#include <vector>

class ccWin32Display;

struct cs_SubclassEntry {
  HWND window;
  ccWin32Display* display;
};

struct cs_ParentEntry {
  HWND window;
  plat::MessageProc former;
  long uses;
};

std::vector<cs_SubclassEntry>& cf_subclassList();
std::vector<cs_ParentEntry>& cf_parentList();
