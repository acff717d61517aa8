#include "geometry/ellipse_arc.h"

namespace {

constexpr double kFullTurn = 2 * cfPi;

ccRadian cf_span(ccRadian span)
{
  cf_require(cf_isFinite(span) && std::abs(span.value()) <= kFullTurn * (1 + 1e-12), "span of an arc");
  return ccRadian(std::clamp(span.value(), -kFullTurn, kFullTurn));
}

ccRadian cf_direction(cs_Conic const& e, ccRadian t)
{
  if (e.isCircle())
    return t;
  ccVector<2> const p(e.rx * std::cos(t.value()), e.ry * std::sin(t.value()));
  return t + ccRadian::signedNorm(p.angle() - t);
}

}  // namespace

cc_EllipseArcBase::cc_EllipseArcBase(cs_Conic const& conic, ccRadian start, ccRadian span)
    : conic_(conic), start_(cf_finite(start, "start of an arc")), span_(cf_span(span))
{
}

void cc_EllipseArcBase::start(ccRadian a) { start_ = cf_finite(a, "start of an arc"); }
void cc_EllipseArcBase::span(ccRadian a) { span_ = cf_span(a); }

ccPoint cc_EllipseArcBase::closestPoint(ccVector<2> const& q) const
{
  return conic_.at(cf_nearestOnArc(conic_, start_, span_, cf_finite(q, "place near an arc")).angle);
}

ccRadian cc_EllipseArcBase::phiStart() const { return cf_direction(conic_, start_); }
ccRadian cc_EllipseArcBase::phiEnd() const { return cf_direction(conic_, start_ + span_); }

double cc_EllipseArcBase::distanceToPoint(ccVector<2> const& p) const
{
  return cf_nearestOnArc(conic_, start_, span_, p).distance;
}

ccRect cc_EllipseArcBase::encloseRect() const
{
  cs_Bounds bounds;
  cf_addArc(bounds, conic_, start_, span_);
  return bounds.rect();
}

void cc_EllipseArcBase::outline(ccOutlineSink& sink) const
{
  sink.moveTo(startPoint());
  sink.arcTo(ccEllipseArc2(ccEllipse2(conic_), start_, span_));
}

ccEllipseArc::ccEllipseArc(ccEllipse const& e, ccRadian start, ccRadian span) : cc_EllipseArcBase(e.conic(), start, span)
{
}

ccEllipse ccEllipseArc::ellipse() const { return ccEllipse(conic_.c, conic_.rx, conic_.ry, conic_.phi); }

ccEllipseArc ccEllipseArc::map(ccXform<2> const& x) const { return ccEllipseArc2(*this).map(x).oldEllipseArc(); }

ccPtrHandle<ccShape> ccEllipseArc::clone_() const { return new ccEllipseArc(*this); }
ccPtrHandle_const<ccShape> ccEllipseArc::map_(ccXform<2> const& x) const { return new ccEllipseArc(map(x)); }

ccEllipseArc2::ccEllipseArc2(ccEllipse2 const& e, ccRadian start, ccRadian span)
    : cc_EllipseArcBase(e.conic(), start, span)
{
}
ccEllipseArc2::ccEllipseArc2(ccEllipseArc const& a) : cc_EllipseArcBase(a.conic(), a.start(), a.span()) {}

ccEllipseArc ccEllipseArc2::oldEllipseArc() const
{
  return ccEllipseArc(ccEllipse(conic_.c, conic_.rx, conic_.ry, conic_.phi), start_, span_);
}

void ccEllipseArc2::degenerateSegment(ccPoint& first, ccPoint& last) const
{
  // The position along the axis is the radius times the cosine (x axis) or the sine (y axis) of the own angle.
  bool const alongX = conic_.rx >= conic_.ry;
  double const radius = alongX ? conic_.rx : conic_.ry;
  ccRadian const high = alongX ? ccRadian(0) : ccRadian(cfPi / 2), low = high + ccRadian(cfPi);
  auto const position = [&](ccRadian t) { return radius * std::cos((t - high).value()); };
  double least = std::min(position(start_), position(start_ + span_));
  double most = std::max(position(start_), position(start_ + span_));
  if (isInSpan(low))
    least = -radius;
  if (isInSpan(high))
    most = radius;
  ccVector<2> const axis = ccVector<2>::polar(1, alongX ? conic_.phi : conic_.phi + ccRadian(cfPi / 2));
  first = conic_.c + axis * least;
  last = conic_.c + axis * most;
}

ccEllipseArc2 ccEllipseArc2::map(ccXform<2> const& x) const
{
  cs_AngleMap angles;
  cs_Conic const image = cf_mapConic(conic_, x, angles);
  return ccEllipseArc2(ccEllipse2(image), angles(start_), span_ * angles.sign);
}

ccPtrHandle<ccShape> ccEllipseArc2::clone_() const { return new ccEllipseArc2(*this); }
ccPtrHandle_const<ccShape> ccEllipseArc2::map_(ccXform<2> const& x) const { return new ccEllipseArc2(map(x)); }
