#include "geometry/polygon.h"

#include "geometry/point_list.h"

ccPolyline::ccPolyline(std::vector<ccVector<2>> points, bool closed)
    : points_(cf_checkedPoints(std::move(points))), closed_(closed)
{
}

ccVector<2> const& ccPolyline::operator[](long i) const { return cf_checkedPoint(points_, i); }
void ccPolyline::swapPoints(std::vector<ccVector<2>>& points)
{
  cf_requireFinite(points);
  points_.swap(points);
}
ccPolyline ccPolyline::map(ccXform<2> const& x) const { return ccPolyline(cf_mappedPoints(points_, x), closed_); }
double ccPolyline::distanceToPoint(ccVector<2> const& p) const { return cf_chainDistance(points_, closed_, p); }
ccRect ccPolyline::encloseRect() const { return cf_boxOfPoints(points_); }
void ccPolyline::outline(ccOutlineSink& sink) const { cf_chainOutline(points_, closed_, sink); }
ccPtrHandle<ccShape> ccPolyline::clone_() const { return new ccPolyline(*this); }
ccPtrHandle_const<ccShape> ccPolyline::map_(ccXform<2> const& x) const { return new ccPolyline(map(x)); }

ccPolygon::ccPolygon(std::vector<ccVector<2>> points, int rule) : points_(cf_checkedPoints(std::move(points)))
{
  fillRule(rule);
}

void ccPolygon::fillRule(int rule)
{
  cf_require(rule >= 0 && rule <= 2, "fill rule of a polygon");
  fillRule_ = rule;
}

ccVector<2> const& ccPolygon::operator[](long i) const { return cf_checkedPoint(points_, i); }
void ccPolygon::swapPoints(std::vector<ccVector<2>>& points)
{
  cf_requireFinite(points);
  points_.swap(points);
}
ccPolygon ccPolygon::map(ccXform<2> const& x) const { return ccPolygon(cf_mappedPoints(points_, x), fillRule_); }
double ccPolygon::distanceToPoint(ccVector<2> const& p) const { return cf_chainDistance(points_, true, p); }
ccRect ccPolygon::encloseRect() const { return cf_boxOfPoints(points_); }
void ccPolygon::outline(ccOutlineSink& sink) const { cf_chainOutline(points_, fillRule_ != 0, sink); }
ccPtrHandle<ccShape> ccPolygon::clone_() const { return new ccPolygon(*this); }
ccPtrHandle_const<ccShape> ccPolygon::map_(ccXform<2> const& x) const { return new ccPolygon(map(x)); }
