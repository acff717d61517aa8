// The arithmetic of ellipses and their arcs, below the classes.
//
// The point at own angle t is c + R(phi) (rx cos t, ry sin t). An arc runs from own angle start over a signed span. Nothing is
// checked here; that is done by the classes. An arc of at most a quarter turn is a rational quadratic curve whose weights are 1,
// the cosine of half the span, and 1: G. Farin, "Curves and Surfaces for CAGD", chapter on conics.
#pragma once

#include "foundation/xform.h"
#include "geometry/bounds.h"
#include "geometry/root_finder.h"

struct cs_Conic {
  ccPoint c;
  double rx = 0, ry = 0;
  ccRadian phi;

  ccVector<2> at(ccRadian t) const;
  ccVector<2> xAxis() const { return ccVector<2>::polar(rx, phi); }
  ccVector<2> yAxis() const { return cf_leftNormal(ccVector<2>::polar(ry, phi)); }
  bool isCircle() const { return rx == ry; }
  bool isDegenerate() const;  // one radius at most 1e-12 of the other, or both 0
  friend bool operator==(cs_Conic const& a, cs_Conic const& b)
  {
    return a.c == b.c && a.rx == b.rx && a.ry == b.ry && a.phi == b.phi;
  }
};

// How own angles map: t becomes sign * t + shift, with sign -1 under a mirror.
struct cs_AngleMap {
  double sign = 1;
  ccRadian shift;
  ccRadian operator()(ccRadian t) const { return sign * t + shift; }
};

cs_Conic cf_mapConic(cs_Conic const&, ccXform<2> const&, cs_AngleMap&);

bool cf_isInSpan(ccRadian t, ccRadian start, ccRadian span);  // with a tolerance of 1e-12; a full turn contains all

// The own angle of the nearest point, and its distance. The span is at most a full turn either way.
struct cs_NearestAngle {
  ccRadian angle;
  double distance = cfInfinity;
};
cs_NearestAngle cf_nearestOnArc(cs_Conic const&, ccRadian start, ccRadian span, ccVector<2> const& q);
cs_NearestAngle cf_nearestOnConic(cs_Conic const&, ccVector<2> const& q);

void cf_addArc(cs_Bounds&, cs_Conic const&, ccRadian start, ccRadian span);
void cf_addConic(cs_Bounds&, cs_Conic const&);

// Exact pieces of an arc: rational quadratics, each over at most a quarter turn.
int cf_numPieces(ccRadian span);  // 1 to 4
cs_RationalCurve cf_piece(cs_Conic const&, ccRadian start, ccRadian span, int i);
