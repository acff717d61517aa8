// Drawing of geometry beside lines: mapped to pels in doubles, then handed to the scope as one of its own figures where the map
// keeps shapes, else as chords.
#include "canvas/sketch_op.h"
#include "canvas/tablet_pieces.h"
#include "canvas/tablet_scratch.h"
#include "foundation/exception.h"
#include "geometry/affine_rect.h"
#include "geometry/annulus_section.h"
#include "geometry/bezier.h"
#include "geometry/coord_axes.h"
#include "geometry/cubic_spline.h"
#include "geometry/gen_rect.h"
#include "geometry/lines.h"
#include "geometry/point_set.h"
#include "geometry/shape_tree.h"
#include "geometry/wireframe.h"

#include <algorithm>
#include <cmath>

namespace {

using Layers = cc_TabletEnums::Layers;

constexpr double figureReach = 1 << 20;  // top pels in which a scope's own figures keep their precision
constexpr double turnedReach = 200;      // pels: the longest radius for which they bend smoothly if turned,
constexpr double brokenReach = 16000;    // and if broken or wide
constexpr double upright = 1e-12;        // of an angle, in radians
constexpr double arrowPels = 5;
constexpr double vertexArm = 2;  // of the square at a vertex, 5 x 5 pels
constexpr long figureSlack = 3;  // pels by which a figure of the scope may leave its box through rounding

ccGraphicProps plainPen(ccColor const& c) { return ccGraphicProps(c, 1, ceSolidPen, false); }

// An arrow's barbs, both back from its tip.
void addArrow(cc_Strokes& out, ccVector<2> const& tip, ccVector<2> const& direction)
{
  double const length = direction.len();
  if (!(length > 0) || !std::isfinite(length))
    return;
  constexpr double along = 0.8660254037844386, across = 0.5;  // 30 degrees off the shaft
  ccVector<2> const u = (direction / length) * arrowPels;
  ccVector<2> const n(-u.y(), u.x());
  for (double const side : {across, -across})
    out.addStroke({tip - u * along + n * side, tip}, false);
}

// Lengths along two axes at right angles, and how far the first is turned. Brought upright where that is the same figure.
struct cs_Turned {
  ccVector<2> lengths;
  double angle;
  bool swapped = false;  // the axes have changed places

  cs_Turned(ccVector<2> const& l, double a) : lengths(l), angle(a)
  {
    if (a == 0)
      return;
    double const quarters = std::round(a / (cfPi / 2));
    if (!(std::abs(a - quarters * (cfPi / 2)) <= upright))
      return;
    angle = 0;
    swapped = std::fmod(quarters, 2) != 0;
    if (swapped)
      lengths = ccVector<2>(l.y(), l.x());
  }
};

// Whether the pen bends smoothly along a scope's own figure of this radius.
bool isSmooth(double radius, double angle, ccGraphicProps const& props)
{
  bool const thinLine = props.penWidth() < 2 && props.penStyle() == ceSolidPen;
  return radius <= (angle != 0 ? turnedReach : thinLine ? figureReach : brokenReach);
}

bool isNear(ccVector<2> const& center, double reach)
{
  return std::abs(center.x()) + reach < figureReach && std::abs(center.y()) + reach < figureReach;
}

}  // namespace

cc_DrawScratch& cc_TabletTop::scratch()
{
  if (!scratch_)
    scratch_ = std::make_unique<cc_DrawScratch>();
  return *scratch_;
}

cs_MapKind const& ccUITablet::newMapKind_() const
{
  cs_MapKind& kind = layers_->mapKind;
  ccMatrix<2> const& m = screenMap_.matrix();
  kind.matrix = m;
  kind.finite = cf_isFinitePoint(ccVector<2>(m.element(0, 0), m.element(0, 1))) &&
                cf_isFinitePoint(ccVector<2>(m.element(1, 0), m.element(1, 1)));
  kind.known = kind.finite;  // not a number never equals itself
  kind.keepsShapes = kind.finite && screenMap_.similarity(kind.scale, kind.turn, kind.mirrored) && kind.scale > 0 &&
                     kind.scale < figureReach;
  return kind;
}

// --- Chains. The scratch's points are those of the chain at hand, in top pels.

// Shapes that have shrunk into one pel by a thin pen: what is left of them is that pel.
void ccUITablet::keepPel_(ccGraphicProps const& props)
{
  std::vector<ccVector<2>>& points = top_()->scratch().points;
  if (points.size() < 2 || props.penWidth() >= 2)
    return;
  ccVector<2> const step = points[1] - points[0];
  if (!(std::abs(step.x()) < 1 && std::abs(step.y()) < 1))
    return;  // mostly the second point tells
  auto const pel = [](ccVector<2> const& p) { return ccVector<2>(cfPelFloor(p.x()), cfPelFloor(p.y())); };
  ccVector<2> const first = pel(points[0]);
  for (std::size_t i = 1; i < points.size(); ++i)
    if (!(pel(points[i]) == first))
      return;
  points.resize(1);
}

// Cut where no scope can count its pels.
void ccUITablet::drawPoints_(ccGraphicProps const& props, int layer, ce_Chain kind, int rule)
{
  drawPoints_(props, layer, kind, rule, cf_reachOf(top_()->scratch().points));
}

void ccUITablet::drawPoints_(ccGraphicProps const& props, int layer, ce_Chain kind, int rule, cs_Reach const& reach)
{
  cc_DrawScratch& s = top_()->scratch();
  if (s.points.empty() || !reach.isFinite())
    return;
  if (reach.isWithin(cf_pelReach))
    return sendPoints_(props, layer, kind, rule, reach.low, reach.high);
  ccVector<2> const high(cf_pelReach, cf_pelReach), low = -high;
  if (rule != 0) {
    cf_cutFigure(s.points, low, high, s.other);
    if (!s.points.empty())
      sendPoints_(props, layer, kind, rule, low, high);
    return;
  }
  s.parts.clear();
  cf_cutChain(s.points, kind == ce_Chain::closed, low, high, s.parts);
  for (std::size_t i = 0; i < s.parts.size(); ++i) {
    std::span<ccVector<2> const> const part = s.parts[i];
    s.points.assign(part.begin(), part.end());
    cs_Reach const own = cf_reachOf(part);
    sendPoints_(props, layer, kind == ce_Chain::closed ? ce_Chain::open : kind, 0, own.low, own.high);
  }
}

void ccUITablet::sendPoints_(ccGraphicProps const& props, int layer, ce_Chain kind, int rule, ccVector<2> const& low,
                             ccVector<2> const& high)
{
  cc_DrawScratch& s = top_()->scratch();
  ccPoint const corners[] = {low, high};
  cc_Pieces pieces(*this, layer, cf_penBox(corners, 2, cf_penMargin(props)));
  if (kind == ce_Chain::line) {
    ccLineSeg const line(s.points[0], s.points[1]);
    while (ccUIScope* scope = pieces.next())
      scope->draw(line, props);
  } else if (kind == ce_Chain::polygon) {
    s.polygon.swapPoints(s.points);
    s.polygon.fillRule(rule);
    while (ccUIScope* scope = pieces.next())
      scope->draw(s.polygon, props);
    s.polygon.swapPoints(s.points);
  } else {
    s.polyline.swapPoints(s.points);
    s.polyline.closed(kind == ce_Chain::closed);
    while (ccUIScope* scope = pieces.next())
      scope->draw(s.polyline, props);
    s.polyline.swapPoints(s.points);
  }
}

void ccUITablet::drawStrokes_(cc_Strokes const& strokes, ccGraphicProps const& props, int layer)
{
  cc_DrawScratch& s = top_()->scratch();
  for (std::size_t i = 0; i < strokes.size(); ++i) {
    std::span<ccVector<2> const> const points = strokes[i];
    s.points.assign(points.begin(), points.end());
    // A line by itself has its last pel, too.
    ce_Chain const kind = strokes.closed(i) ? ce_Chain::closed : points.size() == 2 ? ce_Chain::line : ce_Chain::open;
    if (kind != ce_Chain::line)
      keepPel_(props);
    drawPoints_(props, layer, kind, 0);
  }
}

// A closed shape is filled if wanted, with the even-odd rule: two outlines hold a ring. Single points get icons.
void ccUITablet::drawOutline_(ccShape const& shape, ccGraphicProps const& props, int layer, bool fill)
{
  cc_DrawScratch& s = top_()->scratch();
  ccUIRect const& e = layers_->extent;
  double const margin = static_cast<double>(cf_penMargin(props)) + 1;
  ccVector<2> const grown(margin, margin);
  s.path.start(drawMap_(layer), ccVector<2>(e.ul()) - grown, ccVector<2>(e.lr()) + grown, props.penWidth() < 2);
  try {
    shape.outline(s.path);
  } catch (ccException const&) {
    return;  // numbers of its own that overflow leave nothing to draw
  }
  if (!s.path.isFinite())
    return;
  cc_Strokes const& strokes = s.path.strokes();
  bool figure = fill && strokes.size() > 0;
  for (std::size_t i = 0; i < strokes.size(); ++i)
    figure = figure && strokes.closed(i);
  if (figure) {
    // One figure of them all: each outline is left for the first point of the first one, and the ways there and back cancel.
    s.points.clear();
    for (std::size_t i = 0; i < strokes.size(); ++i) {
      std::span<ccVector<2> const> const points = strokes[i];
      s.points.insert(s.points.end(), points.begin(), points.end());
      if (strokes.size() > 1)
        s.points.push_back(points.front());
      if (i > 0 && i + 1 < strokes.size())
        s.points.push_back(strokes[0].front());
    }
    keepPel_(props);
    drawPoints_(props, layer, ce_Chain::polygon, 1);
  } else {
    drawStrokes_(strokes, props, layer);
  }
  for (ccVector<2> const& p : s.path.singles())
    drawIcon_(ccPoint(p), props, layer);
}

template <class Body> void ccUITablet::onLayers_(ccGraphicProps const& props, Layers l, Body&& body)
{
  cc_TabletTop* const top = top_();
  if (!top)
    return;
  // What a scope asks for meanwhile waits until the scratch is free.
  cc_TabletTop::cc_Busy const busy(top);
  for (int layer = 0; layer < 2; ++layer)
    if (cf_hasLayer(l, layer) && isDrawnIn_(layer, props.penColor()) && mapKind_().finite)
      body(layer);
}

// --- Round shapes

// One of the scope's own figures, in top pels.
template <class Figure>
void ccUITablet::drawFigure_(Figure const& figure, ccVector<2> const& halfBox, ccGraphicProps const& props, int layer, bool fill)
{
  ccGraphicProps const* pen = &props;
  if (props.fill() != fill) {
    cc_DrawScratch& s = top_()->scratch();
    s.props = props;
    s.props.fill(fill);
    pen = &s.props;
  }
  ccPoint const corners[] = {figure.center() - halfBox, figure.center() + halfBox};
  cc_Pieces pieces(*this, layer, cf_penBox(corners, 2, cf_penMargin(props) + figureSlack));
  while (ccUIScope* scope = pieces.next())
    scope->draw(figure, *pen);
}

void ccUITablet::draw(ccCircle const& circle, ccGraphicProps const& props, Layers l, bool filled)
{
  draw(ccEllipse(circle), props, l, filled);
}

void ccUITablet::draw(ccEllipse const& ellipse, ccGraphicProps const& props, Layers l, bool filled)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(ellipse, props, k, filled); });
    return;
  }
  bool const fill = filled || props.fill();
  onLayers_(props, l, [&](int layer) {
    cs_MapKind const& map = mapKind_();
    if (ellipse.rx() == 0 || ellipse.ry() == 0) {  // a point, whatever the map
      cc_DrawScratch& s = top_()->scratch();
      s.points.assign(1, drawMap_(layer).mapPoint(ellipse.center()));
      return drawPoints_(props, layer, ce_Chain::open, 0);
    }
    if (map.keepsShapes && !ellipse.isDegenerate()) {
      double const angle = ellipse.rotation().value(), turn = map.turn.value();
      bool const round = ellipse.rx() == ellipse.ry();
      cs_Turned const t(ellipse.radii() * map.scale, round ? 0 : map.mirrored ? turn - angle : turn + angle);
      double const radius = std::max(t.lengths.x(), t.lengths.y());
      ccPoint const center = drawMap_(layer) * ellipse.center();
      // One that may have no pel of its own keeps the pels of its chords.
      bool const hasPels = std::min(t.lengths.x(), t.lengths.y()) >= 1;
      if (hasPels && isNear(center, radius) && isSmooth(radius, t.angle, props)) {
        double const c = std::cos(t.angle), s = std::sin(t.angle);
        ccVector<2> const half = t.angle == 0 ? t.lengths
                                              : ccVector<2>(std::hypot(t.lengths.x() * c, t.lengths.y() * s),
                                                            std::hypot(t.lengths.x() * s, t.lengths.y() * c));
        return drawFigure_(ccEllipse(center, t.lengths, ccRadian(t.angle)), half, props, layer, fill);
      }
    }
    drawOutline_(ellipse, props, layer, fill);
  });
}

void ccUITablet::draw(ccGenRect const& rect, ccGraphicProps const& props, Layers l, bool filled)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(rect, props, k, filled); });
    return;
  }
  bool const fill = filled || props.fill();
  onLayers_(props, l, [&](int layer) {
    cs_MapKind const& map = mapKind_();
    // The scope's own rectangle knows no skew, and needs room for a pel.
    if (map.keepsShapes && rect.skew().value() == 0) {
      double const angle = rect.orient().value(), turn = map.turn.value();
      cs_Turned const t(rect.halfLengths() * map.scale, map.mirrored ? turn - angle : turn + angle);
      ccVector<2> const ends = rect.round() * map.scale;
      ccPoint const center = drawMap_(layer) * rect.center();
      if (isNear(center, t.lengths.x() + t.lengths.y()) && isSmooth(std::max(ends.x(), ends.y()), t.angle, props) &&
          std::min(t.lengths.x(), t.lengths.y()) * 2 >= 1) {
        double const c = std::abs(std::cos(t.angle)), s = std::abs(std::sin(t.angle));
        ccVector<2> const half = t.angle == 0 ? t.lengths
                                              : ccVector<2>(t.lengths.x() * c + t.lengths.y() * s,
                                                            t.lengths.x() * s + t.lengths.y() * c);
        ccVector<2> const round = t.swapped ? ccVector<2>(ends.y(), ends.x()) : ends;
        return drawFigure_(ccGenRect(center, t.lengths, ccRadian(t.angle), round), half, props, layer, fill);
      }
    }
    drawOutline_(rect, props, layer, fill);
  });
}

void ccUITablet::draw(ccEllipseAnnulusSection const& section, ccGraphicProps const& props, Layers l, bool endSides,
                      bool filled)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(section, props, k, endSides, filled); });
    return;
  }
  bool const fill = filled || props.fill();
  ccEllipseAnnulusSection shown = section;
  shown.ends(endSides || fill);  // a filled one is closed anyway
  onLayers_(props, l, [&](int layer) { drawOutline_(shown, props, layer, fill); });
}

// --- Chains of vertices

cs_Reach ccUITablet::mapPoints_(std::vector<ccVector<2>> const& points, int layer)
{
  cs_Reach reach;
  std::vector<ccVector<2>>& mapped = top_()->scratch().points;
  ccXform<2> const map = drawMap_(layer);
  mapped.resize(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    ccVector<2> const p = map.mapPoint(points[i]);
    reach.add(p);
    mapped[i] = p;
  }
  return reach;
}

// The scope knows what a polygon is: of its own rule, open where it is not filled, a point of one vertex.
void ccUITablet::draw(ccPolygon const& polygon, ccGraphicProps const& props, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(polygon, props, k); });
    return;
  }
  onLayers_(props, l, [&](int layer) {
    cs_Reach const reach = mapPoints_(polygon.points(), layer);
    if (polygon.fillRule() != 0)
      keepPel_(props);
    drawPoints_(props, layer, ce_Chain::polygon, polygon.fillRule(), reach);
  });
}

void ccUITablet::draw(ccPolyline const& polyline, ccGraphicProps const& props, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(polyline, props, k); });
    return;
  }
  onLayers_(props, l, [&](int layer) {
    cs_Reach const reach = mapPoints_(polyline.points(), layer);
    if (polyline.closed())
      keepPel_(props);
    drawPoints_(props, layer, polyline.closed() ? ce_Chain::closed : ce_Chain::open, 0, reach);
  });
}

void ccUITablet::draw(cc2Wireframe const& wire, ccGraphicProps const& props, Layers l, bool filled)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(wire, props, k, filled); });
    return;
  }
  bool const fill = filled || props.fill();
  onLayers_(props, l, [&](int layer) {
    drawOutline_(wire, props, layer, fill);
    drawMarks_(wire, props, layer);
  });
}

// The squares at a wireframe's vertices and the arrow heads on its segments that the pen asks for.
void ccUITablet::drawMarks_(cc2Wireframe const& wire, ccGraphicProps const& props, int layer)
{
  cc_Strokes& marks = top_()->scratch().marks;
  ccXform<2> const map = drawMap_(layer);
  marks.clear();
  if (props.showVertices())
    for (long i = 0; i < wire.numVertices(); ++i) {
      ccPoint const p = map * wire.vertexPoint(i);
      constexpr double a = vertexArm;
      double const x = std::floor(p.x() + 0.5 + 1e-6), y = std::floor(p.y() + 0.5 + 1e-6);
      marks.addStroke({{x - a, y - a}, {x + a, y - a}, {x + a, y + a}, {x - a, y + a}}, true);
    }
  if (props.showDirection())
    for (long i = 0; i < wire.numSegments(); ++i) {
      cs_PolySegment const s = wire.segment(i, false);
      addArrow(marks, map * s.pointAt(0.5), map.mapVector(s.directionAt(0.5)));
    }
  drawStrokes_(marks, props, layer);
}

// --- Points and axes

void ccUITablet::draw(ccPointSet const& set, ccGraphicProps const& props, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(set, props, k); });
    return;
  }
  onLayers_(props, l, [&](int layer) {
    for (ccVector<2> const& p : set.points())
      drawIcon_(ccPoint(p), props, layer);
  });
}

void ccUITablet::draw(ccCoordAxes const& axes, ccGraphicProps const& props, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(axes, props, k); });
    return;
  }
  onLayers_(props, l, [&](int layer) {
    ccXform<2> const map = drawMap_(layer);
    cc_Strokes& strokes = top_()->scratch().marks;
    strokes.clear();
    for (ccPoint const& end : {axes.xEnd(), axes.yEnd()}) {
      ccVector<2> const from = map * axes.origin(), to = map * end;
      strokes.addStroke({from, to}, false);
      addArrow(strokes, to, to - from);
    }
    drawStrokes_(strokes, props, layer);
  });
}

// --- Shapes by their outline

void ccUITablet::draw(ccRect const& rect, ccGraphicProps const& props, Layers l)
{
  draw(static_cast<ccShape const&>(rect), props, l);
}

void ccUITablet::draw(ccAffineRectangle const& rect, ccGraphicProps const& props, Layers l)
{
  draw(static_cast<ccShape const&>(rect), props, l);
}

void ccUITablet::draw(ccBezierCurve const& curve, ccGraphicProps const& props, Layers l)
{
  draw(static_cast<ccShape const&>(curve), props, l);
}

void ccUITablet::draw(ccCubicSpline const& spline, ccGraphicProps const& props, Layers l)
{
  draw(static_cast<ccShape const&>(spline), props, l);
}

void ccUITablet::draw(ccShape const& shape, ccGraphicProps const& props, Layers l)
{
  if (isRecorder_()) {
    ccPtrHandle_const<ccShape> const kept = shape.clone();
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(*kept, props, k); });
    return;
  }
  if (auto const* const tree = dynamic_cast<ccShapeTree const*>(&shape)) {
    for (ccPtrHandle_const<ccShape> const& part : tree->shapes())
      draw(*part, props, l);
    return;
  }
  onLayers_(props, l, [&](int layer) { drawOutline_(shape, props, layer, props.fill()); });
}

// --- In a colour: a solid pen of one pel

void ccUITablet::draw(ccPolygon const& s, ccColor const& c, Layers l) { draw(s, plainPen(c), l); }
void ccUITablet::draw(ccPointSet const& s, ccColor const& c, Layers l) { draw(s, plainPen(c), l); }
void ccUITablet::draw(ccCoordAxes const& s, ccColor const& c, Layers l) { draw(s, plainPen(c), l); }
void ccUITablet::draw(ccCircle const& s, ccColor const& c, Layers l, bool filled) { draw(s, plainPen(c), l, filled); }
void ccUITablet::draw(ccEllipse const& s, ccColor const& c, Layers l, bool filled) { draw(s, plainPen(c), l, filled); }
void ccUITablet::draw(ccGenRect const& s, ccColor const& c, Layers l, bool filled) { draw(s, plainPen(c), l, filled); }
void ccUITablet::draw(cc2Wireframe const& s, ccColor const& c, Layers l, bool filled) { draw(s, plainPen(c), l, filled); }
void ccUITablet::draw(ccEllipseAnnulusSection const& s, ccColor const& c, Layers l, bool endSides, bool filled)
{
  draw(s, plainPen(c), l, endSides, filled);
}
