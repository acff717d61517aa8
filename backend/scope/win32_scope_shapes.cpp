// Shapes with curves, fills and vertices, painted on the device context of a phase. Positions of the painter are pels of the
// scope. Each operation reports the rectangle that it may have touched.
#include "backend/scope/shape_paths.h"
#include "backend/scope/win32_scope_phase.h"
#include "canvas/draws_itself.h"
#include "canvas/strokes.h"
#include "foundation/rounding.h"
#include "geometry/ellipse_arc.h"
#include "geometry/gen_rect.h"
#include "geometry/gen_shape.h"
#include "geometry/lines.h"
#include "geometry/polygon.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr double uprightLimit = 1e-15;  // of a rotation, in radians

// Figures turned about a pivot by the world transform, for as long as this object lives.
class WorldTurn {
public:
  WorldTurn(plat::Painter& painter, double angle, ccVector<2> const& shift) : painter_(painter)
  {
    auto const f = [](double v) { return static_cast<float>(v); };
    double const c = std::cos(angle), s = std::sin(angle);
    plat::Xform const world{f(c), f(s), f(-s), f(c), f(shift.x()), f(shift.y())};
    inForce_ = painter_.worldTransform(&world);
  }
  WorldTurn(WorldTurn const&) = delete;
  WorldTurn& operator=(WorldTurn const&) = delete;
  ~WorldTurn() { painter_.worldTransform(nullptr); }
  bool inForce() const { return inForce_; }

private:
  plat::Painter& painter_;
  bool inForce_;
};

// A pen, and a brush of the same colour for a filled figure.
void dress(plat::Painter& painter, ccGraphicProps const& props, COLORREF color, bool filled)
{
  painter.pen(cf_penOf(props, color));
  if (filled)
    painter.brush(color);
  else
    painter.noBrush();
}

// Boxes of round figures are worked out for a device whose graphics mode paints their right and lower edges as well, as the
// mode that turns figures does. The painter's boxes end before these edges.
plat::Rect withEndPels(plat::Rect const& r)
{
  return plat::Rect{r.left, r.top, cf_to32(std::int64_t{r.right} + 1), cf_to32(std::int64_t{r.bottom} + 1)};
}

ccVector<2> middleOf(plat::Rect const& r)
{
  return ccVector<2>((static_cast<double>(r.left) + r.right) / 2, (static_cast<double>(r.top) + r.bottom) / 2);
}

// Numbers with which sums of a few stay finite.
bool isModest(ccVector<2> const& center, double reach)
{
  constexpr double most = 1e300;
  return std::abs(center.x()) <= most && std::abs(center.y()) <= most && reach <= most;
}

// Whether pels of a chain may have been brought to the far limit.
bool isFar(ccUIRect const& touched)
{
  constexpr long reach = static_cast<long>(cf_pelReach);
  return touched.left() < -reach || touched.top() < -reach || touched.right() > reach || touched.bottom() > reach;
}

plat::Rect shifted(plat::Rect const& r, std::int64_t x, std::int64_t y)
{
  return plat::Rect{cf_to32(r.left + x), cf_to32(r.top + y), cf_to32(r.right + x), cf_to32(r.bottom + y)};
}

// A curved figure where the device doesn't turn.
void paintTurnedBezier(plat::Painter& painter, plat::Rect const& box, ccVector<2> const& round, double rotation,
                       ccVector<2> const& pivot, bool filled)
{
  plat::Point points[kBezierPoints];
  cf_rectToBezier(box, round, -rotation, pivot, points);
  painter.bezier(points, filled);
}

// A rectangle with sharp corners where the device doesn't turn.
void paintTurnedBox(plat::Painter& painter, plat::Rect const& box, double rotation, ccVector<2> const& pivot)
{
  double const c = std::cos(rotation), s = std::sin(rotation);
  ccVector<2> const corners[] = {ccVector<2>(box.left, box.top), ccVector<2>(box.right - 1.0, box.top),
                                 ccVector<2>(box.right - 1.0, box.bottom - 1.0), ccVector<2>(box.left, box.bottom - 1.0)};
  plat::Point points[4];
  for (int i = 0; i < 4; ++i) {
    ccVector<2> const v = corners[i] - pivot;
    points[i] = cf_toPoint(cfPelOf(v.x() * c - v.y() * s + pivot.x()), cfPelOf(v.x() * s + v.y() * c + pivot.y()));
  }
  painter.polygon(points, plat::FillRule::alternate);
}

// Two coincident points would stand for all of the ellipse. One is moved in x and one in y, such that the way from the first
// to the last in the sense of growing angles stays short.
void partRays(plat::Point& first, plat::Point& last)
{
  long const side = static_cast<long>(first.x) + first.y + 1;
  if (side >= 0) {
    ++first.x;
    ++last.y;
    if (side == 0)  // still on one ray
      ++(first.x > 0 ? last.y : first.x);
  } else {
    ++first.y;
    ++last.x;
  }
}

}  // namespace

// What a figure with this box touches: its corner less `before`, its size and `more`.
ccUIRect ccWin32UIScope::figureRect_(ccRect const& box, long before, double more) const
{
  ccVector<2> const at = box.ul() - ccVector<2>(clientOffset());
  return ccUIRect(cf_to32(std::int64_t{floorTL(at.x())} - before), cf_to32(std::int64_t{floorTL(at.y())} - before),
                  ceilTL(box.width() + more), ceilTL(box.height() + more));
}

// The frame of every figure. What is painted outside `touched`, at most within `reach`, is reported as well; where both are
// one nothing is, and nobody looks.
template <class Paint>
void ccWin32UIScope::paintFigure_(ccUIRect const& touched, ccUIRect const& reach, Paint&& paint)
{
  if ((reach & ownRect_()).isNull())
    return;
  ccUIRect drawn = touched & ownRect_();
  quietly_([&] {
    cc_Phase const phase(*this, kPaint);
    if (!phase)
      return;
    drawn = touched & phase.target().bounds;
    if (plat::Painter* const painter = phase.target().painter) {
      bool const looks = reach != touched;
      if (looks)
        cf_beginBounds(*painter);
      paint(*painter);
      if (looks)
        drawn = (drawn | cf_endBounds(*painter)) & phase.target().bounds;
      painter->noBrush();
    }
    win32Changed(drawn);
  });
  report_(drawn, false);
}

// --- Chains of vertices

// The vertices as pels of the scope, in chain_ of the root, and what a stroke along them touches.
ccUIRect ccWin32UIScope::chainOf_(std::span<ccVector<2> const> points, long reach)
{
  std::vector<plat::Point>& chain = root_().chain_;
  chain.resize(points.size());
  plat::Point low{ccUIRect::kFar, ccUIRect::kFar}, high{-ccUIRect::kFar, -ccUIRect::kFar};
  // The rule of xCoord, in a form without branches.
  ccVector<2> const offset(clientOffset());
  auto const pelOf = [](double v) {
    constexpr double far = ccUIRect::kFar;
    double const at = std::min(std::max(v + 0.5 + 1e-6, -far), far);
    plat::i32 const whole = static_cast<plat::i32>(at);
    return whole - (at < static_cast<double>(whole) ? 1 : 0);
  };
  for (std::size_t i = 0; i < points.size(); ++i) {
    plat::Point const pel{pelOf(points[i].x() - offset.x()), pelOf(points[i].y() - offset.y())};
    low = plat::Point{std::min(low.x, pel.x), std::min(low.y, pel.y)};
    high = plat::Point{std::max(high.x, pel.x), std::max(high.y, pel.y)};
    chain[i] = pel;
  }
  return ccUIRect::fromEdges(low.x - reach, low.y - reach, high.x + reach, high.y + reach);
}

// A stroke along chain_, or a figure of it for a rule that is not 0.
void ccWin32UIScope::paintChain_(ccUIRect const& touched, ccGraphicProps const& props, int rule)
{
  paintFigure_(touched, cf_grown(touched, props.penWidth() < 2 ? 0 : cf_halfWidth(props)), [&](plat::Painter& painter) {
    plat::Point const origin = painter.windowOrigin(plat::Point{0, 0});
    dress(painter, props, bgrColor_(props.penColor()), rule != 0);
    if (rule != 0)
      painter.polygon(root_().chain_, rule == 1 ? plat::FillRule::alternate : plat::FillRule::winding);
    else
      painter.polyline(root_().chain_);
    painter.windowOrigin(origin);
  });
}

// Vertices beyond the reach of pels: cut first, where it can't be seen.
void ccWin32UIScope::drawFarChain_(std::span<ccVector<2> const> points, ccGraphicProps const& props, int rule, bool closed)
{
  ccVector<2> const offset(clientOffset()), reach(cf_pelReach, cf_pelReach);
  long const h = cf_halfWidth(props);
  if (rule != 0) {
    std::vector<ccVector<2>> figure(points.begin(), points.end()), scratch;
    cf_cutFigure(figure, offset - reach, offset + reach, scratch);
    if (!figure.empty())
      paintChain_(chainOf_(figure, h), props, rule);
    return;
  }
  cc_Strokes parts;
  cf_cutChain(points, closed, offset - reach, offset + reach, parts);
  for (std::size_t i = 0; i < parts.size(); ++i)
    paintChain_(chainOf_(parts[i], h), props, 0);
}

void ccWin32UIScope::draw(ccPolygon const& polygon, ccGraphicProps const& props)
{
  if (polygon.size() == 1)
    return draw(ccPoint(polygon[0]), props);
  if (polygon.size() == 0)
    return;
  quietly_([&] {
    ccUIRect const touched = chainOf_(polygon.points(), cf_halfWidth(props));
    if (isFar(touched))
      return drawFarChain_(polygon.points(), props, polygon.fillRule(), false);
    paintChain_(touched, props, polygon.fillRule());
  });
}

void ccWin32UIScope::draw(ccPolyline const& polyline, ccGraphicProps const& props)
{
  if (polyline.size() == 1)
    return draw(ccPoint(polyline[0]), props);
  if (polyline.size() == 0)
    return;
  quietly_([&] {
    ccUIRect const touched = chainOf_(polyline.points(), cf_halfWidth(props));
    if (isFar(touched))
      return drawFarChain_(polyline.points(), props, 0, polyline.closed());
    if (polyline.closed())
      root_().chain_.push_back(root_().chain_.front());
    paintChain_(touched, props, 0);
  });
}

// --- Rectangles

void ccWin32UIScope::draw(ccGenRect const& rect, ccGraphicProps const& props)
{
  double const lean = rect.hy() * std::abs(std::tan(rect.skew().value()));
  if (!isModest(rect.center(), std::max({rect.hx(), rect.hy(), lean})))
    return;
  std::int64_t const h = cf_halfWidth(props);
  ccRect const box = rect.encloseRect();
  ccVector<2> const at = box.ul() - ccVector<2>(clientOffset());
  ccUIRect const touched(cf_to32(floorTL(at.x()) - h - 1), cf_to32(floorTL(at.y()) - h - 1),
                         cf_to32(ceilTL(box.width()) + 2 * h + 2), cf_to32(ceilTL(box.height()) + 2 * h + 2));
  paintFigure_(touched, cf_grown(touched, rect.orient().value() == 0 ? 0 : cf_halfWidth(props)), [&](plat::Painter& painter) {
    dress(painter, props, bgrColor_(props.penColor()), props.fill());
    ccPoint const corner = rect.center() - rect.halfLengths();
    std::int64_t const x = xCoord(corner), y = yCoord(corner);
    plat::Rect const edges{cf_to32(x), cf_to32(y), cf_to32(x + floorTL(rect.hx() * 2)), cf_to32(y + floorTL(rect.hy() * 2))};
    plat::Rect const figure = withEndPels(edges);
    ccVector<2> const round = rect.round();
    plat::Size const ends{cf_to32(cfTruncToLong(round.x() * 2)), cf_to32(cfTruncToLong(round.y() * 2))};
    double const angle = rect.orient().value();
    if (angle == 0) {
      painter.roundRect(figure, ends);
      return;
    }
    ccVector<2> const c = rect.center() - ccVector<2>(clientOffset());
    double const cs = std::cos(angle), sn = std::sin(angle);
    // About the whole pel of the centre, so that the device's single precision is the same wherever the rectangle lies.
    long const wholeX = cfTruncToLong(std::floor(c.x())), wholeY = cfTruncToLong(std::floor(c.y()));
    ccVector<2> const f = c - ccVector<2>(ccPair<long>(wholeX, wholeY));
    plat::Point const origin = painter.windowOrigin(cf_toPoint(-std::int64_t{wholeX}, -std::int64_t{wholeY}));
    bool turned = false;
    {
      WorldTurn const turn(painter, angle,
                           ccVector<2>(f.x() - (f.x() * cs - f.y() * sn), f.y() - (f.x() * sn + f.y() * cs)));
      turned = turn.inForce();
      if (turned)
        painter.roundRect(shifted(figure, -std::int64_t{wholeX}, -std::int64_t{wholeY}), ends);
    }
    painter.windowOrigin(origin);
    if (turned)
      return;
    if (round.x() > 0 && round.y() > 0)
      paintTurnedBezier(painter, edges, round, angle, c, props.fill());
    else
      paintTurnedBox(painter, figure, angle, c);
  });
}

// --- Ellipses and arcs

void ccWin32UIScope::draw(ccEllipse const& ellipse, ccGraphicProps const& props)
{
  if (ellipse.rx() <= 0 || ellipse.ry() <= 0)
    return draw(ellipse.center(), props);
  if (!isModest(ellipse.center(), std::max(ellipse.rx(), ellipse.ry())))
    return;
  long const h = cf_halfWidth(props);
  ccRect const around = ellipse.rotation().value() == 0
                            ? ccRect(ellipse.center() - ellipse.radii(), ellipse.radii() * 2)
                            : ellipse.encloseRect();
  ccUIRect const touched = figureRect_(around, 3 * h, static_cast<double>(5 * h));
  // The box in whole pels isn't quite about the centre, so a turned ellipse may stick out.
  ccUIRect const reach = ellipse.rotation().value() == 0
                             ? touched
                             : figureRect_(around, 3 * h + 2, static_cast<double>(6 * h + 4));
  paintFigure_(touched, reach, [&](plat::Painter& painter) {
    dress(painter, props, bgrColor_(props.penColor()), props.fill());
    ccVector<2> const d = ellipse.center() - ccVector<2>(clientOffset());
    ccVector<2> const shift(floorT(d.x()), floorT(d.y()));
    ccVector<2> const rest = d - shift;
    double const angle = ellipse.rotation().value();
    bool const upright = std::abs(angle) <= uprightLimit;
    double const c = angle == 0 ? 1 : std::cos(angle), s = angle == 0 ? 0 : std::sin(angle);
    double const ex = rest.x() * c + rest.y() * s, ey = rest.y() * c - rest.x() * s;
    constexpr std::int64_t endPel = 1;
    plat::Rect const box{cf_to32(floorTL(ex - ellipse.rx())), cf_to32(floorTL(ey - ellipse.ry())),
                         cf_to32(ceilTL(ex + ellipse.rx()) - endPel), cf_to32(ceilTL(ey + ellipse.ry()) - endPel)};
    plat::Rect const placed = shifted(box, cfTruncToLong(shift.x()), cfTruncToLong(shift.y()));
    if (upright) {
      painter.ellipse(withEndPels(placed));
      return;
    }
    WorldTurn const turn(painter, angle, shift);
    if (turn.inForce())
      painter.ellipse(withEndPels(box));
    else
      paintTurnedBezier(painter, placed, ccVector<2>(), angle, middleOf(placed), props.fill());
  });
}

void ccWin32UIScope::draw(ccEllipseArc const& arc, ccGraphicProps const& props)
{
  if (arc.span().value() == 0)
    return draw(arc.startPoint(), props);
  if (!isModest(arc.conic().c, std::max(arc.conic().rx, arc.conic().ry)))
    return;
  long const h = cf_halfWidth(props);
  ccUIRect const touched = figureRect_(arc.encloseRect(), 2 * h, static_cast<double>(4 * h));
  // Its ends follow rays through whole pels, which a thin ellipse meets far from the true ends.
  ccUIRect const all = figureRect_(arc.ellipse().encloseRect(), 3 * h + 2, static_cast<double>(6 * h + 4));
  paintFigure_(touched, all, [&](plat::Painter& painter) {
    dress(painter, props, bgrColor_(props.penColor()), false);
    ccEllipse const ellipse = arc.ellipse();
    ccVector<2> const d = ellipse.center() - ccVector<2>(clientOffset());
    ccVector<2> const shift(floorT(d.x()), floorT(d.y()));
    long const rx = std::max(floorTL(ellipse.rx()), 1L), ry = std::max(floorTL(ellipse.ry()), 1L);
    ccRect const around = ellipse.encloseRect();
    // The rays' whole-pel ends must tell directions apart for the smallest radius as well.
    double const reach = std::clamp(around.sz().len() / 2, 8.0, 0x1p29);
    auto const ray = [reach](ccRadian phi) {
      return cf_toPoint(cfTruncToLong(reach * std::cos(phi.value())), cfTruncToLong(reach * std::sin(phi.value())));
    };
    plat::Point first = ray(arc.phiStart()), last = ray(arc.phiEnd());
    if (arc.span().value() < 0)
      std::swap(first, last);
    bool const fullTurn = std::abs(arc.span().value()) >= 2 * cfPi;
    if (fullTurn)
      last = first;
    else if (first == last) {
      bool const most = std::abs(arc.span().value()) > cfPi;  // all but a sliver: the long way round
      most ? partRays(last, first) : partRays(first, last);
    }
    // The device runs against the sense of growing angles, so it starts at the last ray.
    plat::Rect const box = withEndPels({cf_to32(-rx), cf_to32(-ry), cf_to32(rx), cf_to32(ry)});
    std::int64_t const x = cfTruncToLong(shift.x()), y = cfTruncToLong(shift.y());
    auto const placed = [x, y](plat::Point p) { return cf_toPoint(p.x + x, p.y + y); };
    double const angle = ellipse.rotation().value();
    if (std::abs(angle) <= uprightLimit) {
      painter.arc(shifted(box, x, y), placed(last), placed(first));
    } else {
      WorldTurn const turn(painter, angle, shift);
      if (turn.inForce())
        painter.arc(box, last, first);
      else
        painter.arc(shifted(box, x, y), placed(last), placed(first));
    }
  });
}

void ccWin32UIScope::draw(ccEllipse2 const& ellipse, ccGraphicProps const& props)
{
  if (!ellipse.isDegenerate())
    return draw(ellipse.oldEllipse(), props);
  if (!isModest(ellipse.center(), std::max(ellipse.rx(), ellipse.ry())))
    return;
  ccPoint first, last;
  ellipse.degenerateSegment(first, last);
  draw(ccLineSeg(first, last), props);
}

// A flat arc is drawn as the line that it covers, and as an arc besides.
void ccWin32UIScope::draw(ccEllipseArc2 const& arc, ccGraphicProps const& props)
{
  if (!isModest(arc.conic().c, std::max(arc.conic().rx, arc.conic().ry)))
    return;
  if (arc.isDegenerate()) {
    ccPoint first, last;
    arc.degenerateSegment(first, last);
    draw(ccLineSeg(first, last), props);
  }
  draw(arc.oldEllipseArc(), props);
}

// --- Things that draw themselves

void ccWin32UIScope::draw(ccGenShape const& shape, ccColor const& color)
{
  ccUIRect const touched = figureRect_(shape.encloseRect(), 1, 2);
  paintFigure_(touched, cf_grown(touched, 1), [&](plat::Painter& painter) {
    if (auto const* self = dynamic_cast<ccDrawsItself const*>(&shape)) {
      dress(painter, ccGraphicProps(color, 1, ceSolidPen, false), bgrColor_(color), false);
      self->drawOn(&painter);
      painter.worldTransform(nullptr);
    }
  });
}

void ccWin32UIScope::draw(ccGraphic const& graphic, ccGraphicProps const& props)
{
  long const h = cf_halfWidth(props);
  ccUIRect const touched = figureRect_(graphic.encloseRect(), h, static_cast<double>(2 * h));
  paintFigure_(touched, cf_grown(touched, 1), [&](plat::Painter& painter) {
    if (auto const* self = dynamic_cast<ccDrawsItself const*>(&graphic)) {
      dress(painter, props, bgrColor_(props.penColor()), props.fill());
      self->drawOn(&painter);
      painter.worldTransform(nullptr);
    }
  });
}
