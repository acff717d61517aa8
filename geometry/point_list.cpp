#include "geometry/point_list.h"

void cf_requireFinite(cc_PointList const& points)
{
  for (ccVector<2> const& p : points)
    cf_finite(p, "point of a shape");
}

cc_PointList cf_checkedPoints(cc_PointList points)
{
  cf_requireFinite(points);
  return points;
}

ccVector<2> const& cf_checkedPoint(cc_PointList const& points, long i)
{
  cf_require(i >= 0 && i < static_cast<long>(points.size()), "index of a point");
  return points[static_cast<std::size_t>(i)];
}

cc_PointList cf_mappedPoints(cc_PointList const& points, ccXform<2> const& x)
{
  cc_PointList image;
  image.reserve(points.size());
  for (ccVector<2> const& p : points)
    image.push_back(x.mapPoint(p));
  return image;
}

ccRect cf_boxOfPoints(cc_PointList const& points)
{
  cs_Bounds bounds;
  for (ccVector<2> const& p : points)
    bounds.add(p);
  return bounds.rect();
}

double cf_chainDistance(cc_PointList const& points, bool closed, ccVector<2> const& q)
{
  if (points.empty())
    return cfInfinity;
  double best = closed || points.size() == 1 ? cf_segmentDistance(points.back(), points.front(), q) : cfInfinity;
  for (std::size_t i = 1; i < points.size(); ++i)
    best = std::min(best, cf_segmentDistance(points[i - 1], points[i], q));
  return best;
}

void cf_chainOutline(cc_PointList const& points, bool closed, ccOutlineSink& sink)
{
  if (points.size() == 1)
    sink.point(points[0]);
  if (points.size() < 2)
    return;
  sink.moveTo(points[0]);
  for (std::size_t i = 1; i < points.size(); ++i)
    sink.lineTo(points[i]);
  if (closed)
    sink.close();
}
