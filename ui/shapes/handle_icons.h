// The pictures of handles. Internal.
#pragma once

#include "canvas/color.h"
#include "canvas/rle_buffer.h"
#include "foundation/vector.h"

#include <vector>

class cc_HandleIcons {
public:
  static constexpr int count = 7;

  struct Icon {
    ccRLEBuffer picture;
    std::vector<unsigned char> colorMap;
    char const* touchMap;
    ccPair<long> touchOrigin;
    ccPoint origin;
  };

  // The table is built on first need. Under uiMutex().
  static void init();
  static Icon icon(int);  // 0 to 6
  static ccColor const& color();
  static void color(ccColor const&);
};
