#include "geometry/affine_rect.h"

#include "foundation/math_error.h"
#include "geometry/lines.h"

#include <algorithm>

namespace {

constexpr double kSkewZone = 0.001;  // radians about a quarter turn

}  // namespace

ccAffineRectangle::ccAffineRectangle(ccPoint const& center, double xLength, double yLength, ccRadian xRotation,
                                     ccRadian skew)
    : center_(center), xLength_(xLength), yLength_(yLength), xRotation_(xRotation), skew_(ccRadian::signedNorm(skew))
{
  if (!std::isfinite(center.x()) || !std::isfinite(center.y()) || !std::isfinite(xRotation.value()) ||
      !std::isfinite(xLength) || !std::isfinite(yLength) || xLength < 0 || yLength < 0)
    throw ccShapesError::BadParams("affine rectangle");
  if (isBadSkew(skew))
    throw ccShapesError::DegenerateShape("affine rectangle with flat skew");
}

ccAffineRectangle::ccAffineRectangle(ccRect const& r)
    : ccAffineRectangle(r.center(), std::abs(r.width()), std::abs(r.height()), ccRadian(0), ccRadian(0))
{
}

bool ccAffineRectangle::isBadSkew(ccRadian skew)
{
  return !std::isfinite(skew.value()) || std::abs(std::cos(skew.value())) < std::sin(kSkewZone);
}

ccPoint ccAffineRectangle::corner(int id) const
{
  switch (id) {
  case 0:
    return cornerPo();
  case 1:
    return cornerPx();
  case 2:
    return cornerPopp();
  case 3:
    return cornerPy();
  default:
    throw ccShapesError::BadParams("corner of an affine rectangle");
  }
}

ccXform<2> ccAffineRectangle::unitXform() const
{
  ccVector<2> const x = xSide(), y = ySide();
  return ccXform<2>(ccMatrix<2>(x.x(), y.x(), x.y(), y.y()), cornerPo());
}

ccAffineRectangle ccAffineRectangle::map(ccXform<2> const& m) const
{
  ccRadian const yRotation = xRotation_ + skew_ + ccRadian(cfPi / 2);
  // A side of no length keeps its direction through its unit vector.
  ccVector<2> const xUnit = m.mapVector(ccVector<2>::polar(1, xRotation_));
  ccVector<2> const yUnit = m.mapVector(ccVector<2>::polar(1, yRotation));
  ccRadian const a = xUnit.angle();
  ccRadian const k = ccRadian::signedNorm(yUnit.angle() - a - ccRadian(cfPi / 2));
  if (isBadSkew(k) || !(xUnit.len() > 0) || !(yUnit.len() > 0))
    throw ccMathError::Singular("map of an affine rectangle");
  return ccAffineRectangle(m.mapPoint(center_), xLength_ * xUnit.len(), yLength_ * yUnit.len(), a, k);
}

double ccAffineRectangle::distanceToPoint(ccVector<2> const& p) const
{
  double best = std::numeric_limits<double>::infinity();
  for (int i = 0; i < 4; ++i)
    best = std::min(best, ccLineSeg(corner(i), corner((i + 1) % 4)).distanceToPoint(p));
  return best;
}

ccRect ccAffineRectangle::encloseRect() const
{
  ccVector<2> const x = xSide(), y = ySide();
  ccVector<2> const half((std::abs(x.x()) + std::abs(y.x())) / 2, (std::abs(x.y()) + std::abs(y.y())) / 2);
  return ccRect(center_ - half, half * 2.0);
}

void ccAffineRectangle::outline(ccOutlineSink& sink) const
{
  sink.moveTo(cornerPo());
  sink.lineTo(cornerPx());
  sink.lineTo(cornerPopp());
  sink.lineTo(cornerPy());
  sink.close();
}

ccPtrHandle<ccShape> ccAffineRectangle::clone_() const { return new ccAffineRectangle(*this); }
ccPtrHandle_const<ccShape> ccAffineRectangle::map_(ccXform<2> const& m) const { return new ccAffineRectangle(map(m)); }
