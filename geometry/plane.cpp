#include "geometry/plane.h"

#include <algorithm>

namespace {

constexpr double kLeastSquare = 1e-280, kLargestSquare = 1e280;

}  // namespace

ccVector<2> cf_closestOnSegment(ccVector<2> const& a, ccVector<2> const& b, ccVector<2> const& q)
{
  ccVector<2> const d = b - a;
  double const square = d.dot(d);
  if (!(square > kLeastSquare && square < kLargestSquare)) {
    // Where squares run out of digits, in units of the segment's length.
    double const size = std::max(std::abs(d.x()), std::abs(d.y()));
    if (!(size > 0))
      return a;
    if (!std::isfinite(size))
      return b.distance(q) < a.distance(q) ? b : a;
    ccVector<2> const u = d / size;
    return a + d * std::clamp(((q - a) / size).dot(u) / u.dot(u), 0.0, 1.0);
  }
  double const t = (q - a).dot(d) / square;
  // From the nearer end, so that the end itself comes out exactly.
  if (t <= 0.5)
    return a + d * std::max(t, 0.0);
  return b - d * std::max((b - q).dot(d) / square, 0.0);
}
