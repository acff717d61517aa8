#include "geometry/cubic_spline.h"

#include "geometry/bounds.h"

ccCubicSpline::ccCubicSpline(std::vector<ccVector<2>> points, bool closed) : points_(std::move(points)), closed_(closed)
{
  for (ccVector<2> const& p : points_)
    cf_finite(p, "control point of a spline");
}

void ccCubicSpline::intervalMode(long mode) { cf_require(mode == 0, "interval mode of a spline"); }

ccPoint ccCubicSpline::controlPoint(long i) const
{
  checkIndex_(i);
  return point_(i);
}

void ccCubicSpline::controlPoint(long i, ccPoint const& p)
{
  checkIndex_(i);
  points_[static_cast<std::size_t>(i)] = cf_finite<ccVector<2>>(p, "control point of a spline");
}

void ccCubicSpline::insertControlPoint(long i, ccPoint const& p)
{
  cf_require(i >= 0 && i <= numControlPoints(), "index of a spline's new control point");
  points_.insert(points_.begin() + i, cf_finite<ccVector<2>>(p, "control point of a spline"));
}

void ccCubicSpline::deleteControlPoint(long i)
{
  // In silence: a handle asks for this where no exception is caught.
  if (numControlPoints() <= 2)
    return;
  checkIndex_(i);
  deleteControlPoint_(i);
}

void ccCubicSpline::deleteControlPoint_(long i) { points_.erase(points_.begin() + i); }

long ccCubicSpline::numBezierCurves() const
{
  long const n = numControlPoints();
  return closed_ || n == 0 ? n : n - 1;
}

ccBezierCurve ccCubicSpline::bezierCurve(long k) const
{
  cf_require(k >= 0 && k < numBezierCurves(), "index of a spline's curve");
  return bezierCurve_(k);
}

ccPtrHandle<ccCubicSpline> ccCubicSpline::clone() const { return static_cast<ccCubicSpline*>(clone_().get()); }

ccPtrHandle_const<ccCubicSpline> ccCubicSpline::map(ccXform<2> const& x) const
{
  return static_cast<ccCubicSpline const*>(map_(x).get());
}

double ccCubicSpline::distanceToPoint(ccVector<2> const& p) const
{
  long const curves = numBezierCurves();
  if (curves == 0)
    return isEmpty() ? cfInfinity : cf_distance(point_(0).distance(p));
  double best = cfInfinity;
  for (long k = 0; k < curves; ++k) {
    ccBezierCurve const curve = bezierCurve_(k);
    // A curve lies within the box of its control points, as its weights are positive.
    cs_Bounds hull;
    for (long i = 0; i < ccBezierCurve::numControlPoints(); ++i)
      hull.add(curve.controlPoint(i));
    if (hull.distance(p) < best)
      best = std::min(best, curve.distanceToPoint(p));
  }
  return best;
}

ccRect ccCubicSpline::encloseRect() const
{
  cs_Bounds bounds;
  long const curves = numBezierCurves();
  if (curves == 0 && !isEmpty())
    bounds.add(point_(0));
  for (long k = 0; k < curves; ++k) {
    ccRect const box = bezierCurve_(k).encloseRect();
    bounds.add(box.ul());
    bounds.add(box.lr());
  }
  return bounds.rect();
}

void ccCubicSpline::outline(ccOutlineSink& sink) const
{
  long const curves = numBezierCurves();
  if (curves == 0 && !isEmpty())
    sink.point(point_(0));
  for (long k = 0; k < curves; ++k) {
    ccBezierCurve const curve = bezierCurve_(k);
    if (k == 0)
      sink.moveTo(curve.startPoint());
    sink.curveTo(curve);
  }
  if (curves > 0 && closed_)
    sink.close();
}

void ccCubicSpline::mapPoints_(ccXform<2> const& x)
{
  for (ccVector<2>& p : points_)
    p = cf_finite(x.mapPoint(p), "image of a spline's control point");
}

void ccCubicSpline::checkIndex_(long i) const
{
  cf_require(i >= 0 && i < numControlPoints(), "index of a spline's control point");
}

ccVector<2> const& ccCubicSpline::wrapped_(long i) const
{
  long const n = numControlPoints();
  return point_((i % n + n) % n);
}
