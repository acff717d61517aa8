#include "geometry/circle.h"

#include "geometry/ellipse.h"

ccCircle::ccCircle(ccPoint const& center, double radius)
    : center_(cf_finite(center, "centre of a circle")), radius_(cf_length(radius, "radius of a circle"))
{
}

void ccCircle::center(ccPoint const& p) { center_ = cf_finite(p, "centre of a circle"); }
void ccCircle::radius(double r) { radius_ = cf_length(r, "radius of a circle"); }

ccPoint ccCircle::closestPoint(ccVector<2> const& q) const
{
  return center_ + ccVector<2>::polar(radius_, (cf_finite(q, "place near a circle") - center_).angle());
}

ccCircle ccCircle::map(ccXform<2> const& x) const
{
  double scale = 1;
  ccRadian rot;
  bool mirrored = false;
  cf_require(x.similarity(scale, rot, mirrored), "map of a circle that makes it an ellipse");
  return ccCircle(x.mapPoint(center_), radius_ * scale);
}

double ccCircle::distanceToPoint(ccVector<2> const& p) const 
{
  return cf_distance(std::abs(center_.distance(p) - radius_));
}

ccRect ccCircle::encloseRect() const
{
  ccVector<2> const half(radius_, radius_);
  return ccRect(center_ - half, half * 2.0);
}

void ccCircle::outline(ccOutlineSink& sink) const { ccEllipse2(*this).outline(sink); }

ccPtrHandle<ccShape> ccCircle::clone_() const { return new ccCircle(*this); }

ccPtrHandle_const<ccShape> ccCircle::map_(ccXform<2> const& x) const
{
  double scale = 1;
  ccRadian rot;
  bool mirrored = false;
  if (x.similarity(scale, rot, mirrored))
    return new ccCircle(map(x));
  return new ccEllipse2(ccEllipse2(*this).map(x));
}
