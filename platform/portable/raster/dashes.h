// The runs of the broken pens, on and off in turn. Both kinds stand here, so that a new style is one line and a thin pen knows
// no style that a wide one doesn't.
#pragma once

#include "platform/types.h"

#include <array>

namespace plat::portable {

struct DashRuns {
  unsigned count;          // 0: unbroken
  std::array<u8, 6> thin;  // in pels, of pens one pel wide
  std::array<u8, 6> wide;  // in widths of the pen
};

// By Pen::style: solid, dash, dot, dash-dot, dash-dot-dot.
inline constexpr std::array<DashRuns, 5> dashRuns{{
    {0, {}, {}},
    {2, {18, 6}, {3, 1}},
    {2, {3, 3}, {1, 1}},
    {4, {9, 6, 3, 6}, {3, 1, 1, 1}},
    {6, {9, 3, 3, 3, 3, 3}, {3, 1, 1, 1, 1, 1}},
}};

// Any other style is solid.
constexpr unsigned dashStyle(int style)
{
  return style >= 0 && static_cast<unsigned>(style) < dashRuns.size() ? static_cast<unsigned>(style) : 0;
}

}  // namespace plat::portable
