// The arithmetic of polygons with arcs: one segment, and the rounding of one corner. All in client units, all closed formulas,
// right to 1e-12 of the largest coordinate; nothing throws.
#pragma once

#include "geometry/bounds.h"
#include "geometry/ellipse_arc.h"

// A line or an arc in terms of its chord. Formulas over the chord keep their accuracy where the centre of a flat arc lies far
// away. A positive span bulges to the right of the chord. An arc over a chord of length 0 is a point.
struct cs_PolySegment {
  ccVector<2> a, b;
  ccRadian span;  // 0 is a line; less than a full turn

  bool isLine() const { return span.value() == 0; }
  bool isPoint() const { return a == b; }
  double chordLength() const { return a.distance(b); }
  double curvature() const;                       // positive where the angle grows; not for a point
  ccVector<2> pointAt(double t) const;            // t from 0 to 1
  ccVector<2> directionAt(double t) const;        // of travel, a unit vector; zero for a point
  cs_PolySegment part(double t0, double t1) const;
  ccVector<2> closestPoint(ccVector<2> const&) const;  // a where there is no single one
  double distance(ccVector<2> const&) const;
  void addTo(cs_Bounds&, ccXform<2> const&) const;     // its image
  ccEllipseArc arc() const;                            // of a circle
  void outline(ccOutlineSink&) const;                  // from a, which the stroke has reached, to b
};

// The arc that rounds a corner. It trims the end of the incoming and the start of the outgoing segment.
struct cs_PolyRounding {
  bool fits = false;
  ccVector<2> center;
  double trimIn = 0, trimOut = 0;  // fractions of the two segments
  cs_PolySegment arc;
};

inline constexpr double cf_trimTolerance = 1e-9;  // by which the trims of one segment may overlap, as a fraction of it

// Of the corner where in ends and out starts. It does not fit if the corner is straight or a cusp, or if no circle of that
// radius touches both segments.
cs_PolyRounding cf_roundCorner(cs_PolySegment const& in, cs_PolySegment const& out, double radius);
