#include "geometry/annulus_section.h"

namespace {

constexpr double kEmptySpan = 1e-12;  // what is missing to a full turn through rounding

ccEllipseArc2 cf_arc(ccEllipse const& e, ccRadian start, ccRadian span)
{
  return ccEllipseArc2(ccEllipse2(e), start - e.rotation(), span);
}

}  // namespace

ccEllipseAnnulusSection::ccEllipseAnnulusSection(ccEllipseAnnulus const& ring, ccRadian start, ccRadian stop,
                                                 bool reversed, bool forward, bool ends)
    : ring_(ring), start_(cf_finite(start, "start of a section")), stop_(cf_finite(stop, "stop of a section")),
      reversed_(reversed), forward_(forward), ends_(ends)
{
}

ccEllipseAnnulusSection::ccEllipseAnnulusSection(ccEllipse const& first, ccEllipse const& second, ccRadian start,
                                                 ccRadian stop, bool reversed, bool forward, bool ends)
    : ccEllipseAnnulusSection(ccEllipseAnnulus(first, second), start, stop, reversed, forward, ends)
{
}

ccEllipseAnnulusSection::ccEllipseAnnulusSection(ccPoint const& center, double firstRadius, double secondRadius,
                                                 ccRadian start, ccRadian stop, bool reversed, bool forward, bool ends)
    : ccEllipseAnnulusSection(ccEllipse(ccCircle(center, firstRadius)), ccEllipse(ccCircle(center, secondRadius)), start,
                              stop, reversed, forward, ends)
{
}

void ccEllipseAnnulusSection::start(ccRadian a) { start_ = cf_finite(a, "start of a section"); }
void ccEllipseAnnulusSection::stop(ccRadian a) { stop_ = cf_finite(a, "stop of a section"); }

ccRadian ccEllipseAnnulusSection::span() const
{
  ccRadian const s = ccRadian::norm(stop_ - start_);
  // Angles of many turns have fewer digits.
  double const slack = kEmptySpan + 2 * std::numeric_limits<double>::epsilon() *
                                        std::max(std::abs(start_.value()), std::abs(stop_.value()));
  return s.value() > 2 * cfPi - slack ? ccRadian(0) : s;
}

ccPoint ccEllipseAnnulusSection::middle() const
{
  ccVector<2> const u = ccVector<2>::polar(1, mid());
  return (first().fromUnit(u) + second().fromUnit(u)) * 0.5;
}

ccEllipseArc2 ccEllipseAnnulusSection::firstArc() const { return cf_arc(first(), start_, span()); }
ccEllipseArc2 ccEllipseAnnulusSection::secondArc() const { return cf_arc(second(), start_, span()); }

ccEllipseAnnulusSection ccEllipseAnnulusSection::map(ccXform<2> const& x) const
{
  double scale = 1;
  ccRadian rot;
  bool mirrored = false;
  ccRadian a = start_, b = stop_;
  if (x.similarity(scale, rot, mirrored)) {
    a = mirrored ? rot - start_ : rot + start_;
    b = mirrored ? rot - stop_ : rot + stop_;
  } else {
    cs_AngleMap angles;
    cs_Conic const& e = first().conic();
    ccRadian const turn = cf_mapConic(e, x, angles).phi;
    mirrored = angles.sign < 0;
    a = angles(start_ - e.phi) + turn;
    b = angles(stop_ - e.phi) + turn;
  }
  if (mirrored)
    std::swap(a, b);
  return ccEllipseAnnulusSection(ring_.map(x), a, b, reversed_, mirrored ? !forward_ : forward_, ends_);
}

double ccEllipseAnnulusSection::distanceToPoint(ccVector<2> const& p) const
{
  ccRadian const s = span();
  double best = cfInfinity;
  if (ends_)
    for (ccRadian const a : {start_, start_ + s}) {
      ccVector<2> const u = ccVector<2>::polar(1, a);
      best = std::min(best, cf_segmentDistance(first().fromUnit(u), second().fromUnit(u), p));
    }
  for (ccEllipse const* e : {&first(), &second()}) {
    cs_Bounds box;
    cf_addConic(box, e->conic());
    if (box.distance(p) < best)
      best = std::min(best, cf_nearestOnArc(e->conic(), start_ - e->rotation(), s, p).distance);
  }
  return best;
}

ccRect ccEllipseAnnulusSection::encloseRect() const
{
  cs_Bounds bounds;  // the edges lie between ends of the arcs
  for (ccEllipse const* e : {&first(), &second()})
    cf_addArc(bounds, e->conic(), start_ - e->rotation(), span());
  return bounds.rect();
}

void ccEllipseAnnulusSection::outline(ccOutlineSink& sink) const
{
  ccEllipseArc2 const there = firstArc(), back = secondArc().reversed();
  sink.moveTo(there.startPoint());
  sink.arcTo(there);
  if (ends_)
    sink.lineTo(back.startPoint());
  else
    sink.moveTo(back.startPoint());
  sink.arcTo(back);
  if (ends_)
    sink.close();
}

ccPtrHandle<ccShape> ccEllipseAnnulusSection::clone_() const { return new ccEllipseAnnulusSection(*this); }
ccPtrHandle_const<ccShape> ccEllipseAnnulusSection::map_(ccXform<2> const& x) const
{
  return new ccEllipseAnnulusSection(map(x));
}

std::optional<ccEllipseAnnulusSection> cfSectionWarp(ccEllipseAnnulusSection const& s, ccPoint const& h,
                                                     ccPoint const& dragged, double maxRadius, double minRadius)
{
  ccRadian const mid = s.mid();
  ccVector<2> const u = ccVector<2>::polar(1, mid);
  ccPoint const p = (s.reversed() ? s.second() : s.first()).fromUnit(u);
  double const a = u.dot(h - p), b = u.dot(dragged - p);
  double const k = b == 0 && a != 0 ? cfInfinity : a / b;
  if (std::isnan(k))
    return std::nullopt;
  double const r2 = s.second().rx(), r1 = s.first().rx(), thick = r2 - r1;
  double const outer = std::min(std::abs(k) * r2, maxRadius), inner = std::min(outer - thick, maxRadius);
  if (!(outer >= minRadius + thick) || !(inner >= minRadius) || !(outer > 0) || !(inner >= 0) || !std::isfinite(outer))
    return std::nullopt;
  ccPoint center = s.center() - ccVector<2>::polar(outer - r2, mid);
  ccRadian start = s.start(), stop = s.stop();
  ccRadian const half = s.span() / 2;
  if (r2 * s.span().value() / outer < cfPi || r2 < outer) {
    // The arc of the second ellipse keeps its length.
    start = mid - half * (r2 / outer);
    stop = mid + half * (r2 / outer);
  }
  bool reversed = s.reversed();
  if (k < 0) {
    // Dragged across the middle: the point reflection through it.
    center = s.middle() * 2.0 - center;
    start = start + ccRadian(cfPi);
    stop = stop + ccRadian(cfPi);
    reversed = !reversed;
  }
  if (!cf_isFinite(center) || !cf_isFinite(start) || !cf_isFinite(stop))
    return std::nullopt;
  return ccEllipseAnnulusSection(center, inner, outer, start, stop, reversed, !reversed, true);
}

ccEllipseAnnulusSection cfSectionTurn(ccEllipseAnnulusSection const& s, ccRadian by)
{
  ccPoint const m = s.middle();
  return s.map(ccXform<2>(1, 1, m) * ccXform<2>(ccMatrix<2>(by, 1), ccVector<2>()) * ccXform<2>(1, 1, -m));
}

std::optional<ccEllipseAnnulusSection> cfSectionSize(ccEllipseAnnulusSection const& s, bool first, double factor)
{
  ccEllipse e = first ? s.first() : s.second();
  ccVector<2> const radii = e.radii() * factor;
  if (!(factor >= 0) || !cf_isFinite(radii))
    return std::nullopt;
  e.radii(radii);
  return ccEllipseAnnulusSection(first ? e : s.first(), first ? s.second() : e, s.start(), s.stop(), s.reversed(),
                                 s.forward(), s.ends());
}
