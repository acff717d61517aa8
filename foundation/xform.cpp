#include "foundation/xform.h"

#include "foundation/math_error.h"

#include <algorithm>

constinit ccXform<2> const ccXform<2>::I{};
constinit cc2Rigid const cc2Rigid::I{};

ccVector<2> ccVector<2>::project(ccVector<2> const& onto) const
{
  double const square = onto.dot(onto);
  if (!(square > 0))
    throw ccMathError::Singular("project onto a zero vector");
  return onto * (dot(onto) / square);
}

ccVector<2> ccVector<2>::unit() const
{
  double const length = len();
  if (!(length > 0))
    throw ccMathError::Singular("unit of a zero vector");
  if (length > 1e-290 && length < 1e290)
    return *this / length;
  // Near the ends of the range of numbers a length overflows, or has few digits.
  ccVector const scaled = *this / std::max(std::abs(x_), std::abs(y_));
  return scaled / scaled.len();
}

ccMatrix<2>::ccMatrix(ccRadian xRot, ccRadian yRot, double xScale, double yScale)
    : a_{xScale * std::cos(xRot.value()), -yScale * std::sin(yRot.value()), xScale * std::sin(xRot.value()),
         yScale * std::cos(yRot.value())}
{
}

ccMatrix<2>::ccMatrix(ccRadian rotation, double scale) : ccMatrix(rotation, rotation, scale, scale) {}

ccMatrix<2> ccMatrix<2>::fromRotation(ccRadian rotation, ccRadian shear, double aspect, double scale)
{
  return ccMatrix(rotation, rotation + shear, scale, scale * aspect);
}

double ccMatrix<2>::aspect() const
{
  double const x = xScale();
  if (x == 0)
    throw ccMathError::Singular("aspect of a matrix without x scale");
  return yScale() / x;
}

ccMatrix<2> ccMatrix<2>::inverse() const
{
  double const d = determinant();
  if (d == 0 || !std::isfinite(d))
    throw ccMathError::Singular("inverse of a singular matrix");
  return ccMatrix(a_[3] / d, -a_[1] / d, -a_[2] / d, a_[0] / d);
}

ccXform<2> ccXform<2>::inverse() const
{
  ccMatrix<2> const m = m_.inverse();
  return ccXform(m, -(m * t_));
}

bool ccXform<2>::similarity(double& scale, ccRadian& rot, bool& mirrored) const
{
  constexpr double tolerance = 1e-12;
  ccVector<2> const x(m_.element(0, 0), m_.element(1, 0)), y(m_.element(0, 1), m_.element(1, 1));
  double const xLen = x.len(), yLen = y.len();
  if (!std::isfinite(xLen) || !std::isfinite(yLen) || std::abs(xLen - yLen) > tolerance * xLen)
    return false;
  if (xLen > 0 && std::abs((x / xLen).dot(y / yLen)) > tolerance)
    return false;
  // So that rigid moves leave radii as they are, however often they are repeated.
  scale = std::abs(xLen - 1) <= tolerance ? 1.0 : xLen;
  rot = x.angle();
  mirrored = xLen > 0 && (x.x() / xLen) * (y.y() / yLen) < (x.y() / xLen) * (y.x() / yLen);
  return true;
}

namespace {

struct cs_Turn {
  double cosine, sine;
};

cs_Turn cf_turn(ccDegree angle)
{
  double const degrees = ccDegree::norm(angle).value();
  if (degrees == 0)
    return {1, 0};
  if (degrees == 90)
    return {0, 1};
  if (degrees == 180)
    return {-1, 0};
  if (degrees == 270)
    return {0, -1};
  double const radians = ccRadian(angle).value();
  return {std::cos(radians), std::sin(radians)};
}

}  // namespace

ccVector<2> cc2Rigid::mapVector(ccVector<2> const& v) const
{
  cs_Turn const turn = cf_turn(angle_);
  return ccVector<2>(turn.cosine * v.x() - turn.sine * v.y(), turn.sine * v.x() + turn.cosine * v.y());
}

cc2Rigid cc2Rigid::inverse() const
{
  cc2Rigid const back(-angle_, ccVector<2>());
  return cc2Rigid(-angle_, -back.mapVector(t_));
}

ccXform<2> cc2Rigid::linear() const
{
  cs_Turn const turn = cf_turn(angle_);
  return ccXform<2>(ccMatrix<2>(turn.cosine, -turn.sine, turn.sine, turn.cosine), t_);
}
