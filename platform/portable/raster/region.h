// A set of pels as a list of disjoint rectangles.
#pragma once

#include "platform/portable/raster/rects.h"

#include <span>
#include <vector>

namespace plat::portable {

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
