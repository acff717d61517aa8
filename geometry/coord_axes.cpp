#include "geometry/coord_axes.h"

#include "foundation/xform.h"
#include "geometry/bounds.h"

ccCoordAxes::ccCoordAxes(ccPoint const& origin, ccPoint const& xEnd, ccPoint const& yEnd)
    : origin_(cf_finite(origin, "origin of axes")), xEnd_(cf_finite(xEnd, "end of an axis")),
      yEnd_(cf_finite(yEnd, "end of an axis"))
{
}

void ccCoordAxes::origin(ccPoint const& p) { origin_ = cf_finite(p, "origin of axes"); }
void ccCoordAxes::xEnd(ccPoint const& p) { xEnd_ = cf_finite(p, "end of an axis"); }
void ccCoordAxes::yEnd(ccPoint const& p) { yEnd_ = cf_finite(p, "end of an axis"); }

ccCoordAxes ccCoordAxes::map(ccXform<2> const& x) const
{
  return ccCoordAxes(x.mapPoint(origin_), x.mapPoint(xEnd_), x.mapPoint(yEnd_));
}

double ccCoordAxes::distanceToPoint(ccVector<2> const& p) const
{
  return std::min(cf_segmentDistance(origin_, xEnd_, p), cf_segmentDistance(origin_, yEnd_, p));
}

ccRect ccCoordAxes::encloseRect() const
{
  cs_Bounds bounds;
  for (ccPoint const& p : {origin_, xEnd_, yEnd_})
    bounds.add(p);
  return bounds.rect();
}

void ccCoordAxes::outline(ccOutlineSink& sink) const
{
  sink.moveTo(xEnd_);
  sink.lineTo(origin_);
  sink.lineTo(yEnd_);
}

ccPtrHandle<ccShape> ccCoordAxes::clone_() const { return new ccCoordAxes(*this); }
ccPtrHandle_const<ccShape> ccCoordAxes::map_(ccXform<2> const& x) const { return new ccCoordAxes(map(x)); }

std::optional<ccXform<2>> cfAxesAdjust(ccXform<2> const& fromUser, double u, bool xAxis, ccVector<2> const& delta,
                                       csAxesKeep keep)
{
  ccVector<2> const ex = fromUser.mapVector(ccVector<2>(u, 0)), ey = fromUser.mapVector(ccVector<2>(0, u));
  ccVector<2> const old = xAxis ? ex : ey;
  ccVector<2> moved = old + delta, other = xAxis ? ey : ex;
  bool const needsOld = keep.direction || (keep.aspect && !keep.length);
  if (u == 0 || (needsOld && !(old.len() > 0)) || (keep.length && !(moved.len() > 0)))
    return std::nullopt;
  if (keep.length)
    moved = moved.unit() * old.len();
  else if (keep.aspect)
    other = other * (moved.len() / old.len());
  if (keep.direction)
    moved = old.unit() * moved.len();
  else if (keep.angle)
    other = ccMatrix<2>(moved.angle() - old.angle(), 1) * other;
  ccVector<2> const x = (xAxis ? moved : other) / u, y = (xAxis ? other : moved) / u;
  if (!cf_isFinite(x) || !cf_isFinite(y))
    return std::nullopt;
  return ccXform<2>(ccMatrix<2>(x.x(), y.x(), x.y(), y.y()), fromUser.trans());
}

ccXform<2> cfUserXform(ccCoordAxes const& axes, double xScale, double yScale)
{
  ccVector<2> const x = axes.xAxis(), y = axes.yAxis();
  ccXform<2> const user(ccMatrix<2>(x.angle(), y.angle() - ccRadian(cfPi / 2), x.len() / xScale, y.len() / yScale),
                        axes.origin());
  return cf_finite(user, "scale of axes");
}
