// A list of disjoint rectangles: what is left of one after others were cut from it. Memory is kept for the next use.
#pragma once

#include "canvas/rect.h"

#include <cstddef>
#include <vector>

class cc_RectList {
public:
  void clear() { rects_.clear(); }
  void assign(ccUIRect const&); // a null rectangle leaves the list empty
  void subtract(ccUIRect const&); // changes nothing when it throws
  bool isEmpty() const { return rects_.empty(); }
  bool nullIntersection(ccUIRect const&) const;
  std::size_t size() const { return rects_.size(); }
  ccUIRect const& operator[](std::size_t i) const { return rects_[i]; }

private:
  std::vector<ccUIRect> rects_;
};
