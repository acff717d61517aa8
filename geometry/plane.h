// Small arithmetic that the shapes share.
#pragma once

#include "foundation/math_error.h"
#include "foundation/xform.h"

#include <limits>

inline constexpr double cfInfinity = std::numeric_limits<double>::infinity();

inline double cf_cross(ccVector<2> const& a, ccVector<2> const& b) { return a.x() * b.y() - a.y() * b.x(); }
inline ccVector<2> cf_leftNormal(ccVector<2> const& v) { return ccVector<2>(-v.y(), v.x()); }  // turned by +90 degrees

inline bool cf_isFinite(double v) { return std::isfinite(v); }
inline bool cf_isFinite(ccRadian a) { return std::isfinite(a.value()); }
inline bool cf_isFinite(ccVector<2> const& v) { return std::isfinite(v.x()) && std::isfinite(v.y()); }
inline bool cf_isFinite(ccXform<2> const& x)
{
  ccMatrix<2> const& m = x.matrix();
  return cf_isFinite(x.trans()) && std::isfinite(m.element(0, 0)) && std::isfinite(m.element(0, 1)) &&
         std::isfinite(m.element(1, 0)) && std::isfinite(m.element(1, 1));
}

// A distance that cannot be told, of a place that is not finite or where a difference overflows, counts as infinite: such a
// place touches nothing.
inline double cf_distance(double d) { return std::isnan(d) ? cfInfinity : d; }

// What is asked of arguments; a refusal throws ccShapesError::BadParams.
inline void cf_require(bool good, char const* what)
{
  if (!good)
    throw ccShapesError::BadParams(what);
}
template <class T> T const& cf_finite(T const& value, char const* what)
{
  cf_require(cf_isFinite(value), what);
  return value;
}
// A radius or length.
inline double cf_length(double value, char const* what)
{
  cf_require(cf_isFinite(value) && value >= 0, what);
  return value;
}

// The point of the segment from a to b that is nearest to q; a where both coincide.
ccVector<2> cf_closestOnSegment(ccVector<2> const& a, ccVector<2> const& b, ccVector<2> const& q);
inline double cf_segmentDistance(ccVector<2> const& a, ccVector<2> const& b, ccVector<2> const& q)
{
  return cf_distance(cf_closestOnSegment(a, b, q).distance(q));
}
