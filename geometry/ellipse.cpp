#include "geometry/ellipse.h"

#include "geometry/ellipse_arc.h"

namespace {

cs_Conic cf_mapped(cs_Conic const& e, ccXform<2> const& x)
{
  cs_AngleMap angles;
  return cf_mapConic(e, x, angles);
}

}  // namespace

cc_EllipseBase::cc_EllipseBase(cs_Conic const& c) : conic_(c)
{
  cf_finite(c.c, "centre of an ellipse");
  cf_length(c.rx, "radius of an ellipse");
  cf_length(c.ry, "radius of an ellipse");
  cf_finite(c.phi, "rotation of an ellipse");
}

void cc_EllipseBase::center(ccPoint const& p) { conic_.c = cf_finite(p, "centre of an ellipse"); }
void cc_EllipseBase::rx(double r) { conic_.rx = cf_length(r, "radius of an ellipse"); }
void cc_EllipseBase::ry(double r) { conic_.ry = cf_length(r, "radius of an ellipse"); }
void cc_EllipseBase::rotation(ccRadian a) { conic_.phi = cf_finite(a, "rotation of an ellipse"); }

void cc_EllipseBase::radii(ccVector<2> const& r)
{
  cf_length(r.x(), "radius of an ellipse");
  cf_length(r.y(), "radius of an ellipse");
  conic_.rx = r.x();
  conic_.ry = r.y();
}

ccPoint cc_EllipseBase::fromUnit(ccVector<2> const& v) const
{
  // U v = R(phi) diag(rx, ry) R(-phi) v
  ccVector<2> const e0 = ccVector<2>::polar(1, conic_.phi), e1 = cf_leftNormal(e0);
  return conic_.c + e0 * (conic_.rx * e0.dot(v)) + e1 * (conic_.ry * e1.dot(v));
}

ccPoint cc_EllipseBase::closestPoint(ccVector<2> const& q) const 
{
  return conic_.at(cf_nearestOnConic(conic_, cf_finite(q, "place near an ellipse")).angle);
}
double cc_EllipseBase::distanceToPoint(ccVector<2> const& p) const { return cf_nearestOnConic(conic_, p).distance; }

ccRect cc_EllipseBase::encloseRect() const
{
  cs_Bounds bounds;
  cf_addConic(bounds, conic_);
  return bounds.rect();
}

void cc_EllipseBase::outline(ccOutlineSink& sink) const
{
  sink.moveTo(conic_.at(ccRadian(0)));
  sink.arcTo(ccEllipseArc2(ccEllipse2(conic_), ccRadian(0), ccRadian(2 * cfPi)));
  sink.close();
}

ccEllipse::ccEllipse(ccPoint const& center, double rx, double ry, ccRadian rotation)
    : cc_EllipseBase(cs_Conic{center, rx, ry, rotation})
{
}
ccEllipse::ccEllipse(ccPoint const& center, ccVector<2> const& radii, ccRadian rotation)
    : ccEllipse(center, radii.x(), radii.y(), rotation)
{
}
ccEllipse::ccEllipse(ccCircle const& c) : ccEllipse(c.center(), c.radius(), c.radius(), ccRadian(0)) {}

ccEllipse::ccEllipseUnit ccEllipse::unit() const
{
  double const a = 1 / conic_.rx, b = 1 / conic_.ry;
  if (!std::isfinite(a) || !std::isfinite(b))
    throw ccShapesError::DegenerateShape("unit of an ellipse with radius 0");
  double const c = std::cos(conic_.phi.value()), s = std::sin(conic_.phi.value()), across = c * s * (a - b);
  return ccEllipseUnit(conic_.c, ccMatrix<2>(c * c * a + s * s * b, across, across, s * s * a + c * c * b));
}

ccEllipse ccEllipse::map(ccXform<2> const& x) const
{
  cs_Conic const image = cf_mapped(conic_, x);
  return ccEllipse(image.c, image.rx, image.ry, image.phi);
}

ccPtrHandle<ccShape> ccEllipse::clone_() const { return new ccEllipse(*this); }
ccPtrHandle_const<ccShape> ccEllipse::map_(ccXform<2> const& x) const { return new ccEllipse(map(x)); }

ccEllipse2::ccEllipse2(ccPoint const& center, double rx, double ry, ccRadian rotation)
    : cc_EllipseBase(cs_Conic{center, rx, ry, rotation})
{
}
ccEllipse2::ccEllipse2(ccPoint const& center, ccVector<2> const& radii, ccRadian rotation)
    : ccEllipse2(center, radii.x(), radii.y(), rotation)
{
}
ccEllipse2::ccEllipse2(ccCircle const& c) : ccEllipse2(c.center(), c.radius(), c.radius(), ccRadian(0)) {}
ccEllipse2::ccEllipse2(ccEllipse const& e) : cc_EllipseBase(e.conic()) {}

ccEllipse ccEllipse2::oldEllipse() const { return ccEllipse(conic_.c, conic_.rx, conic_.ry, conic_.phi); }

void ccEllipse2::degenerateSegment(ccPoint& first, ccPoint& last) const
{
  ccVector<2> const half = conic_.rx >= conic_.ry ? conic_.xAxis() : conic_.yAxis();
  first = conic_.c - half;
  last = conic_.c + half;
}

ccEllipse2 ccEllipse2::map(ccXform<2> const& x) const { return ccEllipse2(cf_mapped(conic_, x)); }

ccPtrHandle<ccShape> ccEllipse2::clone_() const { return new ccEllipse2(*this); }
ccPtrHandle_const<ccShape> ccEllipse2::map_(ccXform<2> const& x) const { return new ccEllipse2(map(x)); }
