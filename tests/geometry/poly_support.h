// What the tests of polygons share: the geometry of an arc from the definition, by its centre, and random polygons.
#pragma once

#include "geometry/poly_edit.h"
#include "tests/geometry/shape_support.h"

namespace krs_test {

// The circle of an arc from a to b. A positive span bulges to the right of the chord, so its centre lies to the left as long as
// the arc is less than half a turn.
struct ArcCircle {
  ArcCircle(V const& a, V const& b, double span)
  {
    double const length = a.distance(b), dx = b.x() - a.x(), dy = b.y() - a.y();
    radius = length / (2 * std::abs(std::sin(span / 2)));
    double const offset = 1 / (2 * std::tan(span / 2));
    center = V((a.x() + b.x()) / 2 - dy * offset, (a.y() + b.y()) / 2 + dx * offset);
    start = std::atan2(a.y() - center.y(), a.x() - center.x());
  }
  V at(double angle) const { return V(center.x() + radius * std::cos(angle), center.y() + radius * std::sin(angle)); }

  V center;
  double radius = 0, start = 0;
};

inline V apex(V const& a, V const& b, double span)
{
  ArcCircle const c(a, b, span);
  return c.at(c.start + span / 2);
}

inline ccSMDGDPolyVertex record(V const& p, double size = 0, ccRadian span = ccRadian(0), ccDimTol const& tol = ccDimTol())
{
  ccSMDGDPolyVertex v;
  v.point = p;
  v.roundingSize = size;
  v.span = span;
  v.tol = tol;
  return v;
}

inline ccDimTol tol(double n) { return ccDimTol(-n, n, 10 * n, ccDimTol::eTypeDefault); }

inline cc2Wireframe chain(std::vector<V> const& points, bool closed)
{
  std::vector<ccSMDGDPolyVertex> records;
  for (V const& p : points)
    records.push_back(record(p));
  return cc2Wireframe(records, closed);
}

// What a random polygon may have.
struct PolyKind {
  int least = 3, most = 8;
  bool arcs = true, roundings = true;
  double maxSpan = 300;  // degrees
  bool degenerate = false;  // coincident vertices, flat and almost full arcs, far away
};

// Always valid: a rounding that finds no room is taken away again.
inline cc2Wireframe randomWire(Random& r, PolyKind const& kind)
{
  std::vector<ccSMDGDPolyVertex> records;
  double const size = r.magnitude(0.1, 1000);
  V const at = r.vector(kind.degenerate && r.chance(3) ? 1e5 : 100);
  int const count = kind.least + r.below(kind.most - kind.least + 1);
  for (int i = 0; i < count; ++i) {
    ccSMDGDPolyVertex v = record(at + r.vector(size), 0, ccRadian(0), tol(r.in(0, 5)));
    if (kind.degenerate && i > 0 && r.chance(6))
      v.point = records.back().point;
    if (kind.arcs && r.chance(2)) {
      v.span = deg(r.in(-kind.maxSpan, kind.maxSpan));
      if (kind.degenerate && r.chance(3))
        v.span = ccRadian((r.chance(2) ? -1 : 1) * r.magnitude(1e-8, 1));
    }
    records.push_back(v);
  }
  bool const closed = count >= 2 && !r.chance(3);
  cc2Wireframe wire(records, closed);
  wire.polarity(r.chance(2));
  if (kind.roundings)
    for (long i = 0; i < wire.numVertices(); ++i) {
      wire.vertexRoundingSize(i, size * r.magnitude(1e-3, 1));
      if (!wire.isValid())
        wire.vertexRoundingSize(i, 0);
    }
  return wire;
}

}  // namespace krs_test
