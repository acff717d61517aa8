#include "apps/krsview/draw_figures.h"

#include "apps/common/error_line.h"
#include "geometry/all.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace {

using Fields = cc_DrawFields;
using Layers = ccUITablet::Layers;

// The overload for the figure's own class is chosen here, as an application would call it.
template <class Shape> cs_DrawFigure cf_figure(Shape const& s)
{
  return {[s](ccUITablet& t, ccGraphicProps const& pen, Layers l) { t.draw(s, pen, l); },
          ccPtrHandle_const<ccShape>(new Shape(s))};
}

// ---- Parts that several kinds have in common

// Either two names of one thing, of which one must be there.
bool cf_either(Fields& f, std::string const& first, std::string const& second, std::string const& expected)
{
  if (f.has(first) && f.has(second))
    f.fail(second, expected + " not beside " + first);
  if (!f.has(first) && !f.has(second))
    f.fail(first, expected + " (or " + second + ")");
  return f.has(first);
}

ccVector<2> cf_twoLengths(Fields& f, std::string const& both, std::string const& x, std::string const& y)
{
  if (!f.has(both) && (f.has(x) || f.has(y)))
    return ccVector<2>(f.length(x), f.length(y));
  ccVector<2> const v = f.point(both);
  if (v.x() < 0 || v.y() < 0)
    f.fail(both, "two numbers of at least 0");
  return v;
}

ccRect cf_rect(Fields& f)
{
  ccPoint const ul = f.point("ul");
  return cf_either(f, "sz", "lr", "the size [width, height]") ? ccRect(ul, f.point("sz"))
                                                              : ccRect::fromCorners(ul, f.point("lr"));
}

ccGenRect cf_genRect(Fields& f, ccPoint const& center)
{
  ccVector<2> const half = cf_twoLengths(f, "halfLengths", "hx", "hy");
  ccVector<2> rounding = f.point("rounding", ccPoint());
  if (f.has("round")) {
    if (f.has("rounding"))
      f.fail("round", "lengths not beside the fractions of rounding");
    ccVector<2> const round = cf_twoLengths(f, "round", "", "");
    auto const part = [](double r, double h) { return h > 0 ? std::min(r / h, 1.0) : 0.0; };
    rounding = ccVector<2>(part(round.x(), half.x()), part(round.y(), half.y()));
  }
  auto const isFraction = [](double v) { return v >= 0 && v <= 1; };
  if (!isFraction(rounding.x()) || !isFraction(rounding.y()))
    f.fail("rounding", "two numbers from 0 to 1");
  if (std::abs(f.angle("skew", 0).value()) >= cfPi / 2)
    f.fail("skew", "an angle between -90 and 90 degrees");
  long const handed = f.whole("handed", -1, 1, 1);
  if (handed == 0)
    f.fail("handed", "1 or -1");
  return ccGenRect(center, half.x(), half.y(), static_cast<int>(handed), f.angle("skew", 0), f.angle("orient", 0), rounding);
}

template <class Ellipse> Ellipse cf_ellipse(Fields& f, ccPoint const& center)
{
  return Ellipse(center, cf_twoLengths(f, "radii", "rx", "ry"), f.angle("rotation", 0));
}

// The two ellipses of a ring: circles by firstRadius and secondRadius, else objects.
ccEllipseAnnulus cf_ring(Fields& f)
{
  ccPoint const center = f.point("center");
  if (f.has("firstRadius") || f.has("secondRadius"))
    return ccEllipseAnnulus(ccEllipse(ccCircle(center, f.length("firstRadius"))),
                            ccEllipse(ccCircle(center, f.length("secondRadius"))));
  auto const one = [&](char const* name) {
    Fields part(f.object(name), f.place(name));
    ccEllipse const e = cf_ellipse<ccEllipse>(part, center);
    part.done();
    return e;
  };
  ccEllipse const first = one("first");
  return ccEllipseAnnulus(first, one("second"));
}

cs_DrawFigure cf_genAnnulus(Fields& f, ccGraphicProps&)
{
  ccPoint const center = f.point("center");
  auto const one = [&](char const* name) {
    Fields part(f.object(name), f.place(name));
    ccGenRect const r = cf_genRect(part, center);
    part.done();
    return r;
  };
  ccGenRect const first = one("first");
  return cf_figure(ccGenAnnulus(first, one("second")));
}

std::vector<ccSMDGDPolyVertex> cf_vertices(Fields& f)
{
  std::vector<ccSMDGDPolyVertex> out;
  ccJson const& list = f.array("vertices");
  for (std::size_t i = 0; i < list.size(); ++i) {
    Fields v(list.at(i), f.place("vertices") + "[" + std::to_string(i) + "]");
    ccSMDGDPolyVertex vertex;
    vertex.point = v.point("point");
    vertex.roundingSize = v.has("roundingSize") ? v.length("roundingSize") : 0;
    vertex.span = v.angle("span", 0);
    v.done();
    out.push_back(vertex);
  }
  return out;
}

// Closed or not, by the name of the constructors' parameter or of the class's accessor.
bool cf_closed(Fields& f, char const* accessor)
{
  if (f.has("closed") && f.has(accessor))
    f.fail(accessor, "nothing beside closed");
  bool const opposite = std::string(accessor) == "isOpen";
  return f.has(accessor) ? f.flag(accessor, false) != opposite : f.flag("closed", false);
}

template <class Poly> Poly cf_poly(Fields& f)
{
  std::vector<ccSMDGDPolyVertex> vertices = cf_vertices(f);
  Poly const poly(std::move(vertices), cf_closed(f, "isOpen"));
  if (!poly.isValid())
    f.fail("vertices", "roundings that fit their corners and leave room for each other");
  return poly;
}

cc2Wireframe cf_wireframe(Fields& f, ccGraphicProps& pen)
{
  cc2Wireframe wire = cf_poly<cc2Wireframe>(f);
  wire.polarity(f.flag("polarity", false));
  pen.showVertices(f.flag("showVertices", false));
  pen.showDirection(f.flag("showDirection", false));
  return wire;
}

ccBezierCurve cf_bezier(Fields& f)
{
  std::vector<ccVector<2>> const p = f.points("controlPoints");
  if (p.size() != 4)
    f.fail("controlPoints", "four points");
  std::vector<double> const w = f.has("weights") ? f.numbers("weights") : std::vector<double>(4, 1.0);
  if (w.size() != 4)
    f.fail("weights", "four numbers above 0");
  return ccBezierCurve({ccPoint(p[0]), ccPoint(p[1]), ccPoint(p[2]), ccPoint(p[3])}, {w[0], w[1], w[2], w[3]});
}

cs_DrawFigure cf_bezierPath(Fields& f, ccGraphicProps&)
{
  std::vector<ccBezierCurve> curves;
  ccJson const& list = f.array("curves");
  for (std::size_t i = 0; i < list.size(); ++i) {
    Fields c(list.at(i), f.place("curves") + "[" + std::to_string(i) + "]");
    curves.push_back(cf_bezier(c));
    c.done();
  }
  return cf_figure(ccBezierPath(std::move(curves), f.flag("closed", false)));
}

cs_DrawFigure cf_deBoor(Fields& f, ccGraphicProps&)
{
  std::vector<ccVector<2>> points = f.points("controlPoints");
  bool const closed = cf_closed(f, "isClosed");
  if (!f.has("weights"))
    return cf_figure(ccDeBoorSpline(std::move(points), closed));
  std::vector<double> weights = f.numbers("weights");
  if (weights.size() != points.size())
    f.fail("weights", "as many numbers as control points");
  return cf_figure(ccDeBoorSpline(std::move(points), std::move(weights), closed));
}

cs_DrawFigure cf_hermite(Fields& f, ccGraphicProps&)
{
  std::vector<ccVector<2>> points = f.points("controlPoints");
  std::size_t const count = points.size();
  ccHermiteSpline spline(std::move(points), cf_closed(f, "isClosed"));
  if (f.has("controlTangents")) {
    ccJson const& list = f.array("controlTangents");
    if (list.size() != count)
      f.fail("controlTangents", "as many tangents as control points");
    for (std::size_t i = 0; i < count; ++i) {
      ccJson const& t = list.at(i);
      if (t.isNull())
        continue;  // stays automatic
      if (t.size() != 2 || !t.at(0).isNumber() || !t.at(1).isNumber())
        f.fail("controlTangents", "two numbers [x, y] or null for each control point");
      spline.controlTangent(static_cast<long>(i), ccVector<2>(t.at(0).number(), t.at(1).number()));
    }
  }
  return cf_figure(spline);
}

cs_DrawFigure cf_interp(Fields& f, ccGraphicProps&)
{
  std::vector<ccVector<2>> points = f.points("controlPoints");
  ccInterpSpline spline(std::move(points), cf_closed(f, "isClosed"), f.whole("intervalMode", 0, 2, 0));
  spline.endConditions(f.whole("endConditions", 0, 1, 0));
  if (f.has("startTangent"))
    spline.startTangent(f.point("startTangent"));
  if (f.has("endTangent"))
    spline.endTangent(f.point("endTangent"));
  return cf_figure(spline);
}

cs_DrawFigure cf_polygon(Fields& f, ccGraphicProps& pen)
{
  long const rule = f.whole("fillRule", 0, 2, pen.fill() ? 1 : 0);
  if (f.has("fill") && f.has("fillRule") && pen.fill() != (rule != 0))
    f.fail("fillRule", "what agrees with fill");
  return cf_figure(ccPolygon(f.points("points"), static_cast<int>(rule)));
}

cs_DrawFigure cf_section(Fields& f, ccGraphicProps&)
{
  ccEllipseAnnulus const ring = cf_ring(f);
  ccEllipseAnnulusSection const s(ring, f.angle("start"), f.angle("stop"), f.flag("reversed", true), f.flag("forward", true),
                                  f.flag("ends", true));
  return {[s](ccUITablet& t, ccGraphicProps const& pen, Layers l) { t.draw(s, pen, l, /*endSides=*/s.ends()); },
          ccPtrHandle_const<ccShape>(new ccEllipseAnnulusSection(s))};
}

cs_DrawFigure cf_shapeTree(Fields& f, ccGraphicProps&)
{
  ccShapeTree tree;
  ccJson const& list = f.array("shapes");
  for (std::size_t i = 0; i < list.size(); ++i) {
    std::string const where = f.place("shapes") + "[" + std::to_string(i) + "]";
    Fields child(list.at(i), where);
    std::string const kind = child.text("kind");
    child.kind(kind);
    ccGraphicProps unused;
    cs_DrawFigure figure;
    if (!cfDrawFigure(kind, child, unused, figure) || !figure.shape)
      throw cc_DrawFault(where + ": kind: expected a shape, found \"" + cf_quoted(kind, 40) + "\"");
    child.done();
    tree.addShape(figure.shape);
  }
  return cf_figure(tree);
}

// A point is as large as the pen is wide.
cs_DrawFigure cf_point(Fields& f, ccGraphicProps&)
{
  ccPoint const p = f.point("pos");
  return cf_figure(ccLineSeg(p, p));
}

cs_DrawFigure cf_pointIcon(Fields& f, ccGraphicProps&)
{
  ccPoint const p = f.point("pos");
  return {[p](ccUITablet& t, ccGraphicProps const& pen, Layers l) { t.drawPointIcon(p, pen, l); },
          ccPtrHandle_const<ccShape>(new ccPointSet(std::vector<ccVector<2>>{p}))};
}

cs_DrawFigure cf_line(Fields& f, ccGraphicProps&)
{
  ccVector<2> const dir = f.point("dir");
  ccLine const line(dir, f.point("pos"));
  return {[line](ccUITablet& t, ccGraphicProps const& pen, Layers l) { t.draw(line, pen, l); }, {}};
}

template <class Ellipse, class Arc> cs_DrawFigure cf_arc(Fields& f, ccGraphicProps&)
{
  Ellipse const e = cf_ellipse<Ellipse>(f, f.point("center"));
  return cf_figure(Arc(e, f.angle("start"), f.angle("span")));
}

// ---- The kinds

using Maker = cs_DrawFigure (*)(Fields&, ccGraphicProps&);

std::map<std::string, Maker> const& cf_makers()
{
  static std::map<std::string, Maker> const makers = {
      {"point", cf_point},
      {"pointIcon", cf_pointIcon},
      {"pointSet", [](Fields& f, ccGraphicProps&) { return cf_figure(ccPointSet(f.points("points"))); }},
      {"line", cf_line},
      {"lineSeg", [](Fields& f, ccGraphicProps&) { return cf_figure(ccLineSeg(f.point("p1"), f.point("p2"))); }},
      {"polyline",
       [](Fields& f, ccGraphicProps&) { return cf_figure(ccPolyline(f.points("points"), f.flag("closed", false))); }},
      {"polygon", cf_polygon},
      {"rect", [](Fields& f, ccGraphicProps&) { return cf_figure(cf_rect(f)); }},
      {"affineRect",
       [](Fields& f, ccGraphicProps&) {
         return cf_figure(ccAffineRectangle(f.point("center"), f.length("xLength"), f.length("yLength"),
                                            f.angle("xRotation", 0), f.angle("skew", 0)));
       }},
      {"genRect", [](Fields& f, ccGraphicProps&) { return cf_figure(cf_genRect(f, f.point("center"))); }},
      {"circle", [](Fields& f, ccGraphicProps&) { return cf_figure(ccCircle(f.point("center"), f.length("radius"))); }},
      {"ellipse", [](Fields& f, ccGraphicProps&) { return cf_figure(cf_ellipse<ccEllipse>(f, f.point("center"))); }},
      {"ellipse2", [](Fields& f, ccGraphicProps&) { return cf_figure(cf_ellipse<ccEllipse2>(f, f.point("center"))); }},
      {"ellipseArc", cf_arc<ccEllipse, ccEllipseArc>},
      {"ellipseArc2", cf_arc<ccEllipse2, ccEllipseArc2>},
      {"circleAnnulus",
       [](Fields& f, ccGraphicProps&) {
         ccPoint const c = f.point("center");
         return cf_figure(ccEllipseAnnulus(ccEllipse(ccCircle(c, f.length("firstRadius"))),
                                           ccEllipse(ccCircle(c, f.length("secondRadius")))));
       }},
      {"ellipseAnnulus", [](Fields& f, ccGraphicProps&) { return cf_figure(cf_ring(f)); }},
      {"genAnnulus", cf_genAnnulus},
      {"ellipseAnnulusSection", cf_section},
      {"coordAxes",
       [](Fields& f, ccGraphicProps&) {
         return cf_figure(ccCoordAxes(f.point("origin"), f.point("xEnd"), f.point("yEnd")));
       }},
      {"genPoly", [](Fields& f, ccGraphicProps&) { return cf_figure(cf_poly<ccGenPoly>(f)); }},
      {"wireframe", [](Fields& f, ccGraphicProps& pen) { return cf_figure(cf_wireframe(f, pen)); }},
      {"smdgdPoly",
       [](Fields& f, ccGraphicProps& pen) {
         ccSMDGDPoly const poly(cf_wireframe(f, pen), f.has("name") ? f.text("name") : "poly");
         return cf_figure(poly.wireframe());
       }},
      {"bezierCurve", [](Fields& f, ccGraphicProps&) { return cf_figure(cf_bezier(f)); }},
      {"bezierPath", cf_bezierPath},
      {"deBoorSpline", cf_deBoor},
      {"hermiteSpline", cf_hermite},
      {"interpSpline", cf_interp},
      {"shapeTree", cf_shapeTree},
  };
  return makers;
}

}  // namespace

ccGraphicProps cfDrawPen(cc_DrawFields& f)
{
  constexpr long kWidest = 10000;
  ccGraphicProps pen(f.color("color", ccColor::redColor()), f.whole("width", 0, kWidest, 1),
                     static_cast<cePenStyle>(f.word("style", {"solid", "dash", "dot", "dashDot", "dashDotDot"}, 0)),
                     f.flag("fill", false));
  pen.joinStyle(f.word("join", {"round", "bevel"}, 0));
  pen.capStyle(f.word("cap", {"round", "flat", "square"}, 0));
  return pen;
}

bool cfDrawFigure(std::string const& kind, cc_DrawFields& f, ccGraphicProps& pen, cs_DrawFigure& figure)
{
  auto const found = cf_makers().find(kind);
  if (found == cf_makers().end())
    return false;
  figure = found->second(f, pen);
  return true;
}

std::vector<std::string> cfDrawFigureKinds()
{
  std::vector<std::string> out;
  for (auto const& maker : cf_makers())
    out.push_back(maker.first);
  return out;
}
