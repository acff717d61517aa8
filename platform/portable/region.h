// A set of pels as a list of disjoint rectangles.
#pragma once

#include "platform/types.h"

#include <span>
#include <vector>

namespace plat::portable {

Rect intersect(Rect const&, Rect const&);  // an empty rectangle is all zeros
Rect shifted(Rect const&, Point by);
inline bool contains(Rect const& r, Point p) { return p.x >= r.left && p.x < r.right && p.y >= r.top && p.y < r.bottom; }

class Region {
public:
  Region() = default;
  explicit Region(Rect const& r) { add(r); }

  bool empty() const { return rects_.empty(); }
  std::span<Rect const> rects() const { return rects_; }
  Rect bounds() const;
  bool contains(Point) const;

  void clear() { rects_.clear(); }
  void add(Rect const&);
  void add(Region const&);
  void subtract(Rect const&);
  void intersect(Rect const&);
  void shift(Point by);

private:
  std::vector<Rect> rects_;
};

}  // namespace plat::portable
