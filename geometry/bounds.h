// Collects an enclosing rectangle. Unlike a ccRect it tells "no point yet" from "the point (0,0)".
#pragma once

#include "geometry/plane.h"
#include "geometry/rect.h"

#include <algorithm>

struct cs_Bounds {
  ccVector<2> least{cfInfinity, cfInfinity};
  ccVector<2> most{-cfInfinity, -cfInfinity};

  bool isEmpty() const { return !(least.x() <= most.x()); }
  void add(ccVector<2> const& p)
  {
    least = ccVector<2>(std::min(least.x(), p.x()), std::min(least.y(), p.y()));
    most = ccVector<2>(std::max(most.x(), p.x()), std::max(most.y(), p.y()));
  }
  void add(int axis, double value)  // one coordinate of a point whose other coordinate is within already
  {
    least[axis] = std::min(least[axis], value);
    most[axis] = std::max(most[axis], value);
  }
  void add(cs_Bounds const& b)
  {
    if (!b.isEmpty())
      add(b.least), add(b.most);
  }
  // To the filled rectangle: 0 inside. A lower bound for the distance to anything inside it.
  double distance(ccVector<2> const& p) const
  {
    double const dx = std::max({least.x() - p.x(), 0.0, p.x() - most.x()});
    double const dy = std::max({least.y() - p.y(), 0.0, p.y() - most.y()});
    return std::hypot(dx, dy);
  }
  ccRect rect() const { return isEmpty() ? ccRect() : ccRect::fromCorners(least, most); }
};
