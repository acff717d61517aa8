#include "foundation/angle.h"

#include <cmath>

namespace {

double cf_norm(double v, double full)
{
  double r = std::fmod(v, full);
  if (r < 0)
    r += full;
  return r < full ? r + 0.0 : 0.0;  // a result that rounds to the full circle is 0; the sum turns -0 into 0
}

double cf_signedNorm(double v, double full)
{
  double const r = std::remainder(v, full);  // exact, and at most half of the circle either way
  return r == -full / 2 ? full / 2 : r + 0.0;
}

}  // namespace

ccRadian ccRadian::norm(ccRadian a) { return ccRadian(cf_norm(a.value_, 2 * cfPi)); }
ccRadian ccRadian::signedNorm(ccRadian a) { return ccRadian(cf_signedNorm(a.value_, 2 * cfPi)); }
ccDegree ccDegree::norm(ccDegree a) { return ccDegree(cf_norm(a.value_, 360.0)); }
ccDegree ccDegree::signedNorm(ccDegree a) { return ccDegree(cf_signedNorm(a.value_, 360.0)); }
