#include "geometry/point_set.h"

#include "geometry/point_list.h"

ccPointSet::ccPointSet(std::vector<ccVector<2>> points) : points_(cf_checkedPoints(std::move(points))) {}

ccVector<2> const& ccPointSet::operator[](long i) const { return cf_checkedPoint(points_, i); }

bool ccPointSet::degen() const
{
  return points_.size() < 2 || points_[0].distance(points_[1]) <= 1e-12 * (1 + points_[0].len());
}

ccRadian ccPointSet::angle() const { return degen() ? ccRadian(0) : (points_[1] - points_[0]).angle(); }

ccPointSet ccPointSet::map(ccXform<2> const& x) const { return ccPointSet(cf_mappedPoints(points_, x)); }

ccPointSet ccPointSet::mapCentered(ccXform<2> const& x) const
{
  std::vector<ccVector<2>> image;
  image.reserve(points_.size());
  for (ccVector<2> const& p : points_)
    image.push_back(points_[0] + x.mapPoint(p - points_[0]));
  return ccPointSet(std::move(image));
}

double ccPointSet::distanceToPoint(ccVector<2> const& p) const
{
  double best = cfInfinity;
  for (ccVector<2> const& own : points_)
    best = std::min(best, own.distance(p));
  return best;
}

ccRect ccPointSet::encloseRect() const { return cf_boxOfPoints(points_); }

void ccPointSet::outline(ccOutlineSink& sink) const
{
  for (ccVector<2> const& p : points_)
    sink.point(p);
}

ccPtrHandle<ccShape> ccPointSet::clone_() const { return new ccPointSet(*this); }
ccPtrHandle_const<ccShape> ccPointSet::map_(ccXform<2> const& x) const { return new ccPointSet(map(x)); }

namespace {

std::optional<ccPointSet> cf_mapAboutFirst(ccPointSet const& set, ccMatrix<2> const& m)
{
  ccXform<2> const x(m, ccVector<2>());
  if (set.degen() || !cf_isFinite(x))
    return std::nullopt;
  ccPointSet const image = set.mapCentered(x);
  return image.degen() ? std::nullopt : std::optional<ccPointSet>(image);
}

}  // namespace

std::optional<ccPointSet> cfPointSetTurn(ccPointSet const& set, ccRadian by)
{
  return cf_mapAboutFirst(set, ccMatrix<2>(by, 1));
}

std::optional<ccPointSet> cfPointSetScale(ccPointSet const& set, double factor)
{
  return cf_mapAboutFirst(set, ccMatrix<2>(factor, 0, 0, factor));
}
