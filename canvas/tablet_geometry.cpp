// Drawing of geometry beside lines: mapped to pels in doubles, then handed to the scope as one of its own figures where the map
// keeps shapes, else as chords.
#include "canvas/sketch_op.h"
#include "canvas/tablet_path.h"
#include "canvas/tablet_pieces.h"
#include "geometry/affine_rect.h"
#include "geometry/annulus_section.h"
#include "geometry/bezier.h"
#include "geometry/coord_axes.h"
#include "geometry/cubic_spline.h"
#include "geometry/gen_rect.h"
#include "geometry/lines.h"
#include "geometry/point_set.h"
#include "geometry/polygon.h"
#include "geometry/wireframe.h"

#include <algorithm>
#include <cmath>

namespace {

using Layers = cc_TabletEnums::Layers;

constexpr double farPels = 16384;       // beyond the extent geometry is cut; far enough to leave dashes and slopes alone
constexpr double figureReach = 1 << 20; // top pels in which a scope's own figures keep their precision
constexpr double arrowPels = 5;
constexpr double vertexArm = 2;  // of the square at a vertex, 5 x 5 pels
constexpr long figureSlack = 3;  // pels by which a figure of the scope may leave its box through rounding

ccGraphicProps plainPen(ccColor const& c) { return ccGraphicProps(c, 1, ceSolidPen, false); }

ccGraphicProps withFill(ccGraphicProps const& props, bool fill)
{
  ccGraphicProps out = props;
  out.fill(fill);
  return out;
}

bool isFinitePoint(ccVector<2> const& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); }

bool isFiniteMap(ccXform<2> const& x)
{
  ccMatrix<2> const& m = x.matrix();
  return isFinitePoint(x.trans()) && isFinitePoint(ccVector<2>(m.element(0, 0), m.element(0, 1))) &&
         isFinitePoint(ccVector<2>(m.element(1, 0), m.element(1, 1)));
}

bool keepsShapes(ccXform<2> const& x)
{
  double scale = 0;
  ccRadian turn;
  bool mirrored = false;
  return isFiniteMap(x) && x.similarity(scale, turn, mirrored) && scale > 0 && scale < figureReach;
}

// Whether the image of a box under a map that keeps shapes is near enough for the scope's own figures.
bool isNear(ccRect const& box, ccXform<2> const& x)
{
  for (ccPoint const& p : {box.ul(), box.lr(), ccPoint(box.ul().x(), box.lr().y()), ccPoint(box.lr().x(), box.ul().y())}) {
    ccPoint const q = x * p;
    if (!(std::abs(q.x()) < figureReach && std::abs(q.y()) < figureReach))
      return false;
  }
  return true;
}

// An arrow's barbs, both back from its tip.
void addArrow(std::vector<cs_Stroke>& out, ccVector<2> const& tip, ccVector<2> const& direction)
{
  double const length = direction.len();
  if (!(length > 0) || !std::isfinite(length))
    return;
  constexpr double along = 0.8660254037844386, across = 0.5;  // 30 degrees off the shaft
  ccVector<2> const u = direction * (arrowPels / length);
  ccVector<2> const n(-u.y(), u.x());
  for (double const side : {across, -across})
    out.push_back({{tip - u * along + n * side, tip}, false});
}

} // namespace

// Draws strokes in top pels of one layer. Cut where no scope can show them.
void ccUITablet::drawStrokes_(std::vector<cs_Stroke> const& strokes, ccGraphicProps const& props, int layer,
                              int fillRule)
{
  ccUIRect const& e = layers_->extent;
  ccVector<2> const low = ccVector<2>(e.ul()) - ccVector<2>(farPels, farPels);
  ccVector<2> const high = ccVector<2>(e.lr()) + ccVector<2>(farPels, farPels);
  long const margin = cf_penMargin(props);
  for (cs_Stroke const& stroke : strokes) {
    if (!std::all_of(stroke.points.begin(), stroke.points.end(), isFinitePoint))
      continue;
    if (fillRule != 0) {
      std::vector<ccVector<2>> figure = cf_clipFigure(stroke.points, low, high);
      if (figure.empty())
        continue;
      drawChain_(ccPolygon(std::move(figure), fillRule), props, layer, margin);
      continue;
    }
    for (cs_Stroke& part : cf_clipChain(stroke.points, stroke.closed, low, high))
      if (part.points.size() == 2)
        drawChain_(ccLineSeg(part.points[0], part.points[1]), props, layer, margin);  // a line has its last pel, too
      else
        drawChain_(ccPolyline(std::move(part.points), part.closed), props, layer, margin);
  }
}

template <class Chain>
void ccUITablet::drawChain_(Chain const& chain, ccGraphicProps const& props, int layer, long margin)
{
  ccRect const r = chain.encloseRect();
  ccPoint const corners[] = {r.ul(), r.lr()};
  cc_Pieces pieces(*this, layer, cf_penBox(corners, 2, margin));
  while (ccUIScope* scope = pieces.next())
    scope->draw(chain, props);
}

// One of the scope's own figures, in top pels.
template <class Figure> void ccUITablet::drawFigure_(Figure const& figure, ccGraphicProps const& props, int layer)
{
  ccRect const r = figure.encloseRect();
  ccPoint const corners[] = {r.ul(), r.lr()};
  cc_Pieces pieces(*this, layer, cf_penBox(corners, 2, cf_penMargin(props) + figureSlack));
  while (ccUIScope* scope = pieces.next())
    scope->draw(figure, props);
}

// A closed shape of one stroke is filled with the even-odd rule if wanted.
void ccUITablet::drawOutline_(ccShape const& shape, ccGraphicProps const& props, int layer, bool fill)
{
  cc_TabletPath path(drawMap_(layer));
  shape.outline(path);
  if (!path.isFinite())
    return;
  bool const figure = fill && path.strokes().size() == 1 && path.strokes()[0].closed;
  drawStrokes_(path.strokes(), props, layer, figure ? 1 : 0);
}

template <class Body> void ccUITablet::onLayers_(ccGraphicProps const& props, Layers l, Body&& body)
{
  for (int layer = 0; layer < 2; ++layer)
    if (cf_hasLayer(l, layer) && isDrawnIn_(layer, props.penColor()) && isFiniteMap(drawMap_(layer)))
      body(layer);
}

// --- Round shapes

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
    ccXform<2> const map = drawMap_(layer);
    if (keepsShapes(map) && isNear(ellipse.encloseRect(), map) && !ellipse.isDegenerate())
      drawFigure_(ellipse.map(map), withFill(props, fill), layer);
    else
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
    ccXform<2> const map = drawMap_(layer);
    // The scope's own rectangle knows no skew, and needs room for a pel.
    if (keepsShapes(map) && isNear(rect.encloseRect(), map) && rect.skew().value() == 0) {
      ccGenRect const mapped = rect.map(map);
      if (std::min(mapped.hx(), mapped.hy()) * 2 >= 1)
        return drawFigure_(mapped, withFill(props, fill), layer);
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

// --- Chains

void ccUITablet::draw(ccPolygon const& polygon, ccGraphicProps const& props, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(polygon, props, k); });
    return;
  }
  // One that is not filled stays open.
  onLayers_(props, l, [&](int layer) {
    cc_TabletPath path(drawMap_(layer));
    polygon.outline(path);
    drawStrokes_(path.strokes(), props, layer, polygon.fillRule());
  });
}

void ccUITablet::draw(ccPolyline const& polyline, ccGraphicProps const& props, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(polyline, props, k); });
    return;
  }
  onLayers_(props, l, [&](int layer) { drawOutline_(polyline, props, layer, false); });
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
    ccXform<2> const map = drawMap_(layer);
    std::vector<cs_Stroke> marks;
    if (props.showVertices())
      for (long i = 0; i < wire.numVertices(); ++i) {
        ccPoint const p = map * wire.vertexPoint(i);
        constexpr double a = vertexArm;
        double const x = static_cast<double>(cfPelOf(p.x())), y = static_cast<double>(cfPelOf(p.y()));
        marks.push_back({{{x - a, y - a}, {x + a, y - a}, {x + a, y + a}, {x - a, y + a}}, true});
      }
    if (props.showDirection())
      for (long i = 0; i < wire.numSegments(); ++i) {
        cs_PolySegment const s = wire.segment(i, false);
        addArrow(marks, map * s.pointAt(0.5), map.mapVector(s.directionAt(0.5)));
      }
    drawStrokes_(marks, props, layer, 0);
  });
}

// --- Points and axes

void ccUITablet::draw(ccPointSet const& set, ccGraphicProps const& props, Layers l)
{
  for (ccVector<2> const& p : set.points())
    drawPointIcon(ccPoint(p), props, l);
}

void ccUITablet::draw(ccCoordAxes const& axes, ccGraphicProps const& props, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(axes, props, k); });
    return;
  }
  onLayers_(props, l, [&](int layer) {
    ccXform<2> const map = drawMap_(layer);
    std::vector<cs_Stroke> strokes;
    for (ccPoint const& end : {axes.xEnd(), axes.yEnd()}) {
      ccVector<2> const from = map * axes.origin(), to = map * end;
      strokes.push_back({{from, to}, false});
      addArrow(strokes, to, to - from);
    }
    drawStrokes_(strokes, props, layer, 0);
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
  onLayers_(props, l, [&](int layer) { drawOutline_(shape, props, layer, props.fill()); });
  cc_TabletPath singles{ccXform<2>()};
  shape.outline(singles);
  for (ccVector<2> const& p : singles.singles())
    drawPointIcon(ccPoint(p), props, l);
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
