#include "geometry/affine_rect.h"

#include "geometry/gen_rect.h"
#include "geometry/plane.h"

#include <algorithm>

namespace {

constexpr double kSkewZone = 0.001;     // radians about a quarter turn
constexpr double kLeastLength = 1e-10;  // of a side that is dragged

// The skew of the two side vectors, in the sense of a general rectangle's parameters.
ccRadian cf_skew(ccGenRect const& r) { return r.handed() > 0 ? -r.skew() : ccRadian(cfPi) - r.skew(); }

}  // namespace

ccAffineRectangle::ccAffineRectangle(ccPoint const& center, double xLength, double yLength, ccRadian xRotation,
                                     ccRadian skew)
    : center_(cf_finite(center, "centre of an affine rectangle")),
      xLength_(cf_length(xLength, "length of an affine rectangle")),
      yLength_(cf_length(yLength, "length of an affine rectangle")),
      xRotation_(cf_finite(xRotation, "rotation of an affine rectangle"))
{
  this->skew(skew);
}

void ccAffineRectangle::center(ccPoint const& p) { center_ = cf_finite(p, "centre of an affine rectangle"); }
void ccAffineRectangle::xLength(double l) { xLength_ = cf_length(l, "length of an affine rectangle"); }
void ccAffineRectangle::yLength(double l) { yLength_ = cf_length(l, "length of an affine rectangle"); }
void ccAffineRectangle::xRotation(ccRadian a) { xRotation_ = cf_finite(a, "rotation of an affine rectangle"); }

void ccAffineRectangle::skew(ccRadian k)
{
  cf_finite(k, "skew of an affine rectangle");
  if (isBadSkew(k))
    throw ccShapesError::DegenerateShape("affine rectangle with flat skew");
  skew_ = ccRadian::signedNorm(k);
}

ccAffineRectangle::ccAffineRectangle(ccRect const& r)
    : ccAffineRectangle(r.center(), std::abs(r.width()), std::abs(r.height()), ccRadian(0), ccRadian(0))
{
}

ccAffineRectangle::ccAffineRectangle(ccGenRect const& r)
    : ccAffineRectangle(r.center(), 2 * r.hx(), 2 * r.hy() / std::cos(r.skew().value()), r.orient(), cf_skew(r))
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
  double scale = 1;
  ccRadian rot;
  bool mirrored = false;
  if (m.similarity(scale, rot, mirrored) && scale > 0) {
    ccRadian const k = mirrored ? ccRadian(cfPi) - skew_ : skew_;
    return ccAffineRectangle(m.mapPoint(center_), xLength_ * scale, yLength_ * scale,
                             mirrored ? rot - xRotation_ : rot + xRotation_, k);
  }
  // A side of no length keeps its direction through its unit vector.
  ccRadian const yRotation = xRotation_ + skew_ + ccRadian(cfPi / 2);
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
  ccVector<2> const x = xSide(), y = ySide(), o = center_ - (x + y) * 0.5;
  ccVector<2> const corners[4] = {o, o + x, o + x + y, o + y};
  double best = cfInfinity;
  for (int i = 0; i < 4; ++i)
    best = std::min(best, cf_segmentDistance(corners[i], corners[(i + 1) % 4], p));
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

std::optional<ccAffineRectangle> cfAffineRectSize(ccAffineRectangle const& r, int id, ccPoint const& p)
{
  ccPoint const fixed = r.corner((id % 4 + 6) % 4), center = (p + fixed) * 0.5;
  cf_require(id >= 0 && id < 4, "corner of an affine rectangle");
  double const xSign = id == 1 || id == 2 ? -1 : 1, ySign = id == 2 || id == 3 ? -1 : 1;
  ccVector<2> const x = ccVector<2>::polar(xSign, r.xRotation());
  ccVector<2> const y = ccVector<2>::polar(ySign, r.xRotation() + r.skew() + ccRadian(cfPi / 2));
  ccVector<2> const d = center - fixed;
  double const det = cf_cross(x, y);  // not 0: the skew is not a bad one
  double const xLength = -2 * cf_cross(d, y) / det, yLength = -2 * cf_cross(x, d) / det;
  if (!(xLength >= kLeastLength) || !(yLength >= kLeastLength) || !std::isfinite(xLength) || !std::isfinite(yLength))
    return std::nullopt;
  return ccAffineRectangle(center, xLength, yLength, r.xRotation(), r.skew());
}

std::optional<ccAffineRectangle> cfAffineRectSkew(ccAffineRectangle const& r, ccVector<2> const& from,
                                                  ccVector<2> const& to)
{
  bool const turns = from != ccVector<2>() && to != ccVector<2>();
  ccRadian const k = r.skew() + (turns ? ccRadian::signedNorm(to.angle() - from.angle()) : ccRadian(0));
  if (ccAffineRectangle::isBadSkew(k))
    return std::nullopt;
  ccAffineRectangle result = r;
  result.skew(k);
  return result;
}
