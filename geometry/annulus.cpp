#include "geometry/annulus.h"

ccEllipseAnnulus::ccEllipseAnnulus(ccEllipse const& first, ccEllipse const& second) : first_(first), second_(second)
{
  double const size = std::max({first.rx(), first.ry(), second.rx(), second.ry()});
  cf_require(first.center().distance(second.center()) <= 1e-9 * size + 1e-12 * first.center().len(),
             "ellipses of a ring with different centres");
}

ccEllipseAnnulus ccEllipseAnnulus::map(ccXform<2> const& x) const
{
  // Without a check of the centres: an uneven map may take them apart farther than the radii grow.
  ccEllipseAnnulus image;
  image.first_ = first_.map(x);
  image.second_ = second_.map(x);
  return image;
}

double ccEllipseAnnulus::distanceToPoint(ccVector<2> const& p) const
{
  double const best = first_.distanceToPoint(p);
  cs_Bounds box;
  cf_addConic(box, second_.conic());
  return box.distance(p) < best ? std::min(best, second_.distanceToPoint(p)) : best;
}

ccRect ccEllipseAnnulus::encloseRect() const
{
  cs_Bounds bounds;
  cf_addConic(bounds, first_.conic());
  cf_addConic(bounds, second_.conic());
  return bounds.rect();
}

void ccEllipseAnnulus::outline(ccOutlineSink& sink) const
{
  first_.outline(sink);
  second_.outline(sink);
}

ccPtrHandle<ccShape> ccEllipseAnnulus::clone_() const { return new ccEllipseAnnulus(*this); }
ccPtrHandle_const<ccShape> ccEllipseAnnulus::map_(ccXform<2> const& x) const { return new ccEllipseAnnulus(map(x)); }

ccGenAnnulus::ccGenAnnulus(ccPoint const& center, ccVector<2> const& firstSize, ccVector<2> const& secondSize,
                           ccRadian rotation, ccVector<2> const& firstRound, ccVector<2> const& secondRound)
    : first_(center, firstSize, rotation, firstRound), second_(center, secondSize, rotation, secondRound)
{
}

void ccGenAnnulus::center(ccPoint const& p)
{
  ccVector<2> const shift = p - first_.center();
  ccGenRect second = second_;
  second.center(second.center() + shift);
  first_.center(p);
  second_ = second;
}

ccGenAnnulus ccGenAnnulus::map(ccXform<2> const& x) const { return ccGenAnnulus(first_.map(x), second_.map(x)); }

double ccGenAnnulus::distanceToPoint(ccVector<2> const& p) const
{
  double const best = first_.distanceToPoint(p);
  ccRect const r = second_.encloseRect();
  cs_Bounds box;
  box.add(r.ul());
  box.add(r.lr());
  return box.distance(p) < best ? std::min(best, second_.distanceToPoint(p)) : best;
}

ccRect ccGenAnnulus::encloseRect() const
{
  ccRect const a = first_.encloseRect(), b = second_.encloseRect();
  cs_Bounds bounds;
  for (ccPoint const& p : {a.ul(), a.lr(), b.ul(), b.lr()})
    bounds.add(p);
  return bounds.rect();
}

void ccGenAnnulus::outline(ccOutlineSink& sink) const
{
  first_.outline(sink);
  second_.outline(sink);
}

ccPtrHandle<ccShape> ccGenAnnulus::clone_() const { return new ccGenAnnulus(*this); }
ccPtrHandle_const<ccShape> ccGenAnnulus::map_(ccXform<2> const& x) const { return new ccGenAnnulus(map(x)); }

bool cfIsNested(ccGenRect const& inner, ccGenRect const& outer)
{
  constexpr double room = 2;  // client units
  ccVector<2> const one(1, 1), in = inner.fromUnit(one - inner.rounding()), out = outer.fromUnit(one - outer.rounding());
  return inner.hx() <= outer.hx() - room && inner.hy() <= outer.hy() - room && std::abs(in.x()) <= std::abs(out.x()) &&
         std::abs(in.y()) <= std::abs(out.y());
}
