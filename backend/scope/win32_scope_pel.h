// Geometry of drawing an image, shared by the source files of the scope.
#pragma once

#include "backend/scope/win32_scope_phase.h"

// What of an image lies inside the scope: from (sx, sy) of the image to (dx, dy) of the scope, w by h pels. r is the drawn
// rectangle in the scope, null when nothing is.
struct ccWin32UIScope::cs_Clip {
  std::int64_t sx = 0, sy = 0, dx = 0, dy = 0, w = 0, h = 0;
  ccUIRect r;
};

// A scaled image: its origin in root pels, both factors (the kernel takes the horizontal one for both axes), and where in
// the scope the visible part goes.
struct ccWin32UIScope::cs_Scale {
  double factor = 1;
  bool visible = false;
  ccVector<2> exact;  // where its corner would lie, in root pels
  ccPair<long> origin;
  ccPair<long> dest;
  ccPair<long> spanStart;  // expand: the source pels that can be seen
  ccPair<long> spanSize;
  ccPair<long> subPel;     // expand: how far the first of them begins before the visible part
};
