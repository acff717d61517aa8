#include "geometry/hermite_spline.h"

#include "geometry/plane.h"

#include <algorithm>

ccHermiteSpline::ccHermiteSpline(std::vector<ccVector<2>> points, bool closed)
    : ccCubicSpline(std::move(points), closed), tangents_(controlPoints().size())
{
}

void ccHermiteSpline::insertControlPoint(long i, ccPoint const& p)
{
  tangents_.reserve(tangents_.size() + 1);  // so that nothing fails half way
  ccCubicSpline::insertControlPoint(i, p);
  tangents_.insert(tangents_.begin() + i, std::nullopt);
}

void ccHermiteSpline::deleteControlPoint_(long i)
{
  ccCubicSpline::deleteControlPoint_(i);
  tangents_.erase(tangents_.begin() + i);
}

ccVector<2> ccHermiteSpline::controlTangent(long i) const
{
  checkIndex_(i);
  return tangent_(i);
}

void ccHermiteSpline::controlTangent(long i, ccVector<2> const& v)
{
  checkIndex_(i);
  tangents_[static_cast<std::size_t>(i)] = cf_finite(v, "tangent of a spline");
}

bool ccHermiteSpline::isTangentAutomatic(long i) const
{
  checkIndex_(i);
  return !tangents_[static_cast<std::size_t>(i)];
}

void ccHermiteSpline::automaticTangent(long i)
{
  checkIndex_(i);
  tangents_[static_cast<std::size_t>(i)].reset();
}

ccVector<2> ccHermiteSpline::tangent_(long i) const
{
  if (std::optional<ccVector<2>> const& set = tangents_[static_cast<std::size_t>(i)])
    return *set;
  if (isClosed())
    return (wrapped_(i + 1) - wrapped_(i - 1)) * 0.5;
  long const before = std::max(i - 1, 0L), after = std::min(i + 1, numControlPoints() - 1);
  return (point_(after) - point_(before)) * (after - before == 2 ? 0.5 : 1.0);
}

ccBezierCurve ccHermiteSpline::bezierCurve_(long k) const
{
  long const next = k + 1 < numControlPoints() ? k + 1 : 0;
  ccVector<2> const from = point_(k), to = point_(next);
  return ccBezierCurve(from, from + tangent_(k) / 3.0, to - tangent_(next) / 3.0, to);
}

ccHermiteSpline ccHermiteSpline::map(ccXform<2> const& x) const
{
  ccHermiteSpline mapped(*this);
  mapped.mapPoints_(x);
  for (std::optional<ccVector<2>>& tangent : mapped.tangents_)
    if (tangent)
      tangent = cf_finite(x.mapVector(*tangent), "image of a spline's tangent");
  return mapped;
}

ccPtrHandle<ccShape> ccHermiteSpline::clone_() const { return new ccHermiteSpline(*this); }
ccPtrHandle_const<ccShape> ccHermiteSpline::map_(ccXform<2> const& x) const { return new ccHermiteSpline(map(x)); }
