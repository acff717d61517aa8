#include "geometry/plane.h"

#include <algorithm>

ccVector<2> cf_closestOnSegment(ccVector<2> const& a, ccVector<2> const& b, ccVector<2> const& q)
{
  ccVector<2> const d = b - a;
  double const square = d.dot(d);
  if (!(square > 0))
    return a;
  double const t = (q - a).dot(d) / square;
  // From the nearer end, so that the end itself comes out exactly.
  if (t <= 0.5)
    return a + d * std::max(t, 0.0);
  return b - d * std::max((b - q).dot(d) / square, 0.0);
}
