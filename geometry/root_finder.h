// The numeric kernel of curves: nearest points, extremes and the real roots behind them. It serves ellipses, Bezier curves
// and splines. Nothing here allocates or throws.
//
// The signs of Bernstein coefficients bound the number of roots, and halving by de Casteljau's algorithm isolates them: J. M.
// Lane and R. F. Riesenfeld, "Bounds on a polynomial", BIT 21 (1981). The nearest point as such a root: P. J. Schneider, "Solving
// the nearest-point-on-curve problem", Graphics Gems (1990). A single root is found by Newton's steps that are kept in a bracket.
#pragma once

#include "foundation/vector.h"

inline constexpr int cf_maxRootDegree = 8;
inline constexpr int cf_maxRoots = 512;  // room that suffices for cf_roots

// Candidates for the roots in [0,1] of a polynomial in Bernstein form of at most degree 8. bound holds the rounding bound of
// each coefficient: one within its bound has no sign. Every root is among the candidates within 1e-9 (simple ones to the last
// bits), but not every candidate is a root; where the polynomial is 0 throughout, the ends and the middle are candidates.
// Returns their number, at most cf_maxRoots; roots has room for so many.
int cf_roots(double const* coefficients, double const* bound, int degree, double* roots);

// A rational curve in Bernstein form, of degree 1 to 3: (x, y) are the control points, weights positive.
struct cs_RationalCurve {
  int degree = 0;
  ccVector<2> points[4];
  double weights[4] = {1, 1, 1, 1};

  ccVector<2> at(double t, ccVector<2>* derivative = nullptr) const;
};

struct cs_Nearest {
  double t = 0;
  double distance = 0;
};

// The point of the curve over [0,1] that is nearest to q; the distance is right to 1e-9 of the largest coordinate or less.
cs_Nearest cf_nearest(cs_RationalCurve const&, ccVector<2> const& q);

// The parameters in [0,1] at which a coordinate (0 x, 1 y) may be extreme, the ends not among them. At most cf_maxRoots.
int cf_extremes(cs_RationalCurve const&, int axis, double* parameters);
