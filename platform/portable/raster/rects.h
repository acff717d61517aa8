// What everything here asks of rectangles of pels.
#pragma once

#include "platform/types.h"

#include <algorithm>

namespace plat::portable {

// What both hold; all zeros when that is nothing.
inline Rect intersection(Rect const& a, Rect const& b)
{
  Rect const r{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
               std::min(a.bottom, b.bottom)};
  return r.empty() ? Rect{} : r;
}

// The smallest rectangle around both; an empty one counts for nothing.
inline Rect unionOf(Rect const& a, Rect const& b)
{
  if (a.empty())
    return b;
  if (b.empty())
    return a;
  return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

inline Rect shifted(Rect const& r, Point by) { return {r.left + by.x, r.top + by.y, r.right + by.x, r.bottom + by.y}; }

inline bool contains(Rect const& r, Point p) { return p.x >= r.left && p.x < r.right && p.y >= r.top && p.y < r.bottom; }
inline bool inside(Rect const& outer, Rect const& inner)
{
  return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right && inner.bottom <= outer.bottom;
}

}  // namespace plat::portable
