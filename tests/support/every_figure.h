// One figure of each class that tablets draw, about a place and of a size, and random pens and maps for them.
#pragma once

#include "canvas/graphic_props.h"
#include "canvas/tablet.h"
#include "geometry/affine_rect.h"
#include "geometry/annulus_section.h"
#include "geometry/bezier.h"
#include "geometry/coord_axes.h"
#include "geometry/deboor_spline.h"
#include "geometry/gen_rect.h"
#include "geometry/hermite_spline.h"
#include "geometry/interp_spline.h"
#include "geometry/lines.h"
#include "geometry/point_set.h"
#include "geometry/polygon.h"
#include "geometry/shape_tree.h"
#include "geometry/wireframe.h"

#include <functional>
#include <random>
#include <string>
#include <vector>

struct NamedFigure {
  std::string name;
  std::function<void(ccUITablet&, ccGraphicProps const&, ccUITablet::Layers)> draw;
};

// Whoever can't be made of such numbers is left out.
inline std::vector<NamedFigure> everyFigure(ccPoint const& at, double size)
{
  std::vector<NamedFigure> all;
  auto const add = [&all](std::string const& name, auto const& make) {
    try {
      auto const figure = make();
      all.push_back({name, [figure](ccUITablet& t, ccGraphicProps const& p, ccUITablet::Layers l) { t.draw(figure, p, l); }});
    } catch (ccException const&) {
    }
  };
  double const s = size;
  ccVector<2> const x(s, 0), y(0, s);
  std::vector<ccVector<2>> const ring{at - x, at - y * 0.7, at + x * 0.9 - y * 0.1, at + y, at - x * 0.2 + y * 0.3};
  add("line", [&] { return ccLine(ccVector<2>(0.8, 0.33), at); });
  add("segment", [&] { return ccLineSeg(at - x, at + y * 0.6 + x * 0.2); });
  add("polygon", [&] { return ccPolygon(ring); });
  add("evenOddPolygon", [&] { return ccPolygon(ring, 1); });
  add("windingPolygon", [&] { return ccPolygon(ring, 2); });
  add("polyline", [&] { return ccPolyline(ring); });
  add("closedPolyline", [&] { return ccPolyline(ring, true); });
  add("points", [&] { return ccPointSet(ring); });
  add("axes", [&] { return ccCoordAxes(at, at + x + y * 0.1, at + y); });
  add("circle", [&] { return ccCircle(at, s); });
  add("ellipse", [&] { return ccEllipse(at, s, s * 0.4, ccRadian(0.3)); });
  add("genRect", [&] { return ccGenRect(at, ccVector<2>(s, s * 0.6), ccRadian(0.2), ccVector<2>(s * 0.2, s * 0.1)); });
  add("skewRect", [&] {
    return ccGenRect(at, s, s * 0.6, 1, ccRadian(0.4), ccRadian(0.2), ccVector<2>(0.5, 0.3));
  });
  add("wireframe", [&] {
    cc2Wireframe wire;
    wire.insertVertex(at - x);
    wire.insertVertex(at - y, s * 0.1);
    wire.insertVertex(at + x, 0, ccRadian(1));
    wire.insertVertex(at + y);
    wire.close();
    return wire;
  });
  add("section", [&] { return ccEllipseAnnulusSection(at, s * 0.5, s, ccRadian(0.5), ccRadian(3)); });
  add("rect", [&] { return ccRect(at - x - y * 0.5, x * 2 + y); });
  add("affineRect", [&] { return ccAffineRectangle(at, s, s * 0.7, ccRadian(0.3), ccRadian(0.2)); });
  add("bezier", [&] { return ccBezierCurve(at - x, at - y, at + x + y, at + x); });
  add("deBoor", [&] { ccDeBoorSpline c; for (auto const& p : ring) c.addControlPoint(p); return c; });
  add("interp", [&] { ccInterpSpline c; for (auto const& p : ring) c.addControlPoint(p); c.isClosed(true); return c; });
  add("hermite", [&] { ccHermiteSpline c; for (auto const& p : ring) c.addControlPoint(p); return c; });
  add("annulus", [&] { return ccEllipseAnnulus(ccEllipse(at, s, s * 0.8, ccRadian(0)), ccEllipse(at, s * 0.5, s * 0.4, ccRadian(0))); });
  add("tree", [&] {
    ccShapeTree tree;
    tree.addShape(new ccCircle(at, s * 0.5));
    tree.addShape(new ccLineSeg(at - y, at + x));
    return tree;
  });
  return all;
}
