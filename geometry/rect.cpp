#include "geometry/rect.h"

#include "geometry/affine_rect.h"
#include "geometry/plane.h"

#include <algorithm>

ccRect::ccRect(ccPoint const& ul, ccVector<2> const& sz)
    : ul_(cf_finite(ul, "corner of a rectangle")), sz_(cf_finite(sz, "size of a rectangle"))
{
}

bool ccRect::contains(ccVector<2> const& p) const
{
  ccPoint const a = ul_, b = lr();
  return p.x() >= std::min(a.x(), b.x()) && p.x() <= std::max(a.x(), b.x()) && p.y() >= std::min(a.y(), b.y()) &&
         p.y() <= std::max(a.y(), b.y());
}

ccRect& ccRect::operator|=(ccRect const& r)
{
  if (r.isNull())
    return *this;
  if (isNull())
    return *this = r;
  ccPoint const a = ul_, b = lr(), c = r.ul_, d = r.lr();
  ccPoint const least(std::min({a.x(), b.x(), c.x(), d.x()}), std::min({a.y(), b.y(), c.y(), d.y()}));
  ccPoint const most(std::max({a.x(), b.x(), c.x(), d.x()}), std::max({a.y(), b.y(), c.y(), d.y()}));
  return *this = fromCorners(least, most);
}

double ccRect::distanceToPoint(ccVector<2> const& p) const
{
  ccPoint const corners[4] = {ul_, ccPoint(lr().x(), ul_.y()), lr(), ccPoint(ul_.x(), lr().y())};
  double best = cfInfinity;
  for (int i = 0; i < 4; ++i)
    best = std::min(best, cf_segmentDistance(corners[i], corners[(i + 1) % 4], p));
  return best;
}

ccRect ccRect::encloseRect() const
{
  ccPoint const a = ul_, b = lr();
  return fromCorners(ccPoint(std::min(a.x(), b.x()), std::min(a.y(), b.y())),
                     ccPoint(std::max(a.x(), b.x()), std::max(a.y(), b.y())));
}

void ccRect::outline(ccOutlineSink& sink) const
{
  sink.moveTo(ul_);
  sink.lineTo(ccPoint(lr().x(), ul_.y()));
  sink.lineTo(lr());
  sink.lineTo(ccPoint(ul_.x(), lr().y()));
  sink.close();
}

ccPtrHandle<ccShape> ccRect::clone_() const { return new ccRect(*this); }

ccPtrHandle_const<ccShape> ccRect::map_(ccXform<2> const& x) const
{
  ccMatrix<2> const& m = x.matrix();
  if (m.element(0, 1) == 0 && m.element(1, 0) == 0 && m.element(0, 0) > 0 && m.element(1, 1) > 0)
    return new ccRect(x.mapPoint(ul_), x.mapVector(sz_));
  return new ccAffineRectangle(ccAffineRectangle(*this).map(x));
}
