// Pages of the gallery: curves, splines, and polygons with arcs and roundings.
#include "apps/krsview/gallery_kit.h"
#include "apps/krsview/gallery_pages.h"
#include "canvas/graphic_props.h"
#include "geometry/all.h"

namespace {

// The points that a curve is made of, and the way through them.
void cf_controls(ccGalleryStage& stage, std::vector<ccVector<2>> const& points, bool closed = false)
{
  stage.tablet().draw(ccPolyline(points, closed), ccGraphicProps(ccColor::dkGreyColor(), 1, ceDotPen, false), stage.layer());
  stage.tablet().draw(ccPointSet(points), ccColor::redColor(), stage.layer());
}

std::vector<ccVector<2>> cf_wave(ccPoint const& c)
{
  return {c + ccVector<2>(-60, 30), c + ccVector<2>(-35, -40), c + ccVector<2>(0, 25), c + ccVector<2>(30, -35),
          c + ccVector<2>(60, 30)};
}

}  // namespace

void cf_pageCurves(ccGalleryStage& stage)
{
  ccUITablet& tablet = stage.tablet();
  ccUITablet::Layers const layer = stage.layer();
  ccGraphicProps const thin(ccColor::blueColor(), 1, ceSolidPen, false);
  ccGraphicProps const wide(ccColor::blueColor(), 5, ceSolidPen, false);
  ccGraphicProps const broken(ccColor::blueColor(), 1, ceDashPen, false);
  stage.cells(4, 3);

  auto const bow = [](ccPoint const& c) {
    return ccBezierCurve(c + ccVector<2>(-60, 35), c + ccVector<2>(-30, -55), c + ccVector<2>(30, -55), c + ccVector<2>(60, 35));
  };
  ccBezierCurve curve = bow(stage.next("ccBezierCurve"));
  cf_controls(stage, curve.controlPoints());
  tablet.draw(curve, thin, layer);
  curve = bow(stage.next("weights 1/4, 1, 4"));
  cf_controls(stage, curve.controlPoints());
  for (double const weight : {0.25, 1.0, 4.0}) {
    curve.weight(1, weight);
    curve.weight(2, weight);
    tablet.draw(curve, thin, layer);
  }
  tablet.draw(bow(stage.next("wide")), wide, layer);
  tablet.draw(bow(stage.next("broken")), broken, layer);

  ccPoint c = stage.next("ccDeBoorSpline, open");
  cf_controls(stage, cf_wave(c));
  tablet.draw(ccDeBoorSpline(cf_wave(c)), thin, layer);
  c = stage.next("closed");
  cf_controls(stage, cf_wave(c), true);
  tablet.draw(ccDeBoorSpline(cf_wave(c), /*closed=*/true), thin, layer);
  c = stage.next("ccInterpSpline, open");
  cf_controls(stage, cf_wave(c));
  tablet.draw(ccInterpSpline(cf_wave(c)), thin, layer);
  c = stage.next("closed, filled");
  tablet.draw(ccInterpSpline(cf_wave(c), /*closed=*/true, /*intervalMode=*/2),
              ccGraphicProps(ccColor::orangeColor(), 1, ceSolidPen, true), layer);
  cf_controls(stage, cf_wave(c), true);

  c = stage.next("ccHermiteSpline");
  ccHermiteSpline hermite(cf_wave(c));
  hermite.controlTangent(2, ccVector<2>(120, 0));
  cf_controls(stage, cf_wave(c));
  tablet.draw(hermite, thin, layer);
  c = stage.next("its tangents");
  for (double const t : {-100.0, 0.0, 100.0}) {
    hermite = ccHermiteSpline({c + ccVector<2>(-55, 0), c + ccVector<2>(55, 0)});
    hermite.controlTangent(0, ccVector<2>(110, 3 * t));
    hermite.controlTangent(1, ccVector<2>(110, 3 * t));
    tablet.draw(hermite, thin, layer);
  }
  cf_controls(stage, {c + ccVector<2>(-55, 0), c + ccVector<2>(55, 0)});
  c = stage.next("ccBezierPath, closed");
  ccBezierPath path({ccBezierCurve(c + ccVector<2>(-50, 20), c + ccVector<2>(-70, -60), c + ccVector<2>(0, -60), c),
                     ccBezierCurve(c, c + ccVector<2>(0, -60), c + ccVector<2>(70, -60), c + ccVector<2>(50, 20)),
                     ccBezierCurve(c + ccVector<2>(50, 20), c + ccVector<2>(40, 40), c + ccVector<2>(-40, 40),
                                   c + ccVector<2>(-50, 20))},
                    /*closed=*/true);
  tablet.draw(path, wide, layer);
  c = stage.next("uniform and by chord");
  std::vector<ccVector<2>> const uneven = {c + ccVector<2>(-60, 20), c + ccVector<2>(-50, -20), c + ccVector<2>(40, -30),
                                           c + ccVector<2>(60, 30)};
  tablet.draw(ccInterpSpline(uneven, false, 0), ccGraphicProps(ccColor::blueColor(), 1, ceSolidPen, false), layer);
  tablet.draw(ccInterpSpline(uneven, false, 1), ccGraphicProps(ccColor::dkGreenColor(), 1, ceSolidPen, false), layer);
  cf_controls(stage, uneven);
}

void cf_pageOutlines(ccGalleryStage& stage)
{
  ccUITablet& tablet = stage.tablet();
  ccUITablet::Layers const layer = stage.layer();
  ccGraphicProps const thin(ccColor::blueColor(), 1, ceSolidPen, false);
  ccGraphicProps const wide(ccColor::blueColor(), 5, ceSolidPen, false);
  ccGraphicProps const filled(ccColor::dkGreenColor(), 1, ceSolidPen, true);
  stage.cells(4, 3);

  // Each vertex carries the segment that leads to it: a span other than 0 makes it an arc.
  auto const bracket = [](ccPoint const& c, double rounding, bool closed) {
    cc2Wireframe poly;
    ccVector<2> const corners[] = {{-55, -40}, {55, -40}, {55, 0}, {0, 0}, {0, 42}, {-55, 42}};
    for (ccVector<2> const& corner : corners)
      poly.insertVertex(c + corner, rounding);
    if (closed)
      poly.close();
    return poly;
  };
  auto const lens = [](ccPoint const& c, double degrees) {
    ccGenPoly poly;
    poly.insertVertex(c + ccVector<2>(-55, 0));
    poly.insertVertex(c + ccVector<2>(55, 0), 0, ccDegree(degrees));
    poly.close(ccDegree(degrees));
    return poly;
  };
  tablet.draw(bracket(stage.next("ccGenPoly, open"), 0, false), thin, layer);
  tablet.draw(bracket(stage.next("closed"), 0, true), wide, layer);
  tablet.draw(bracket(stage.next("roundings of 14"), 14, true), thin, layer);
  tablet.draw(bracket(stage.next("filled"), 14, true), filled, layer);

  tablet.draw(lens(stage.next("arcs of 90 degrees"), 90), thin, layer);
  ccPoint c = stage.next("spans from -150 to 150");
  for (double const span : {-150.0, -100.0, -50.0, 0.0, 50.0, 100.0, 150.0}) {
    ccGenPoly bow;
    bow.insertVertex(c + ccVector<2>(-50, 0));
    bow.insertVertex(c + ccVector<2>(50, 0), 0, ccDegree(span));
    tablet.draw(bow, thin, layer);
  }
  c = stage.next("arcs and roundings");
  ccGenPoly slot;
  slot.insertVertex(c + ccVector<2>(-40, -25), 8);
  slot.insertVertex(c + ccVector<2>(40, -25), 8);
  slot.insertVertex(c + ccVector<2>(40, 25), 8, ccDegree(180));
  slot.insertVertex(c + ccVector<2>(-40, 25), 8);
  slot.close(ccDegree(-90));
  tablet.draw(slot, wide, layer);
  tablet.draw(lens(stage.next("broken"), 120), ccGraphicProps(ccColor::blueColor(), 1, ceDashDotPen, false), layer);

  ccGraphicProps marked(ccColor::purpleColor(), 1, ceSolidPen, false);
  marked.showVertices(true);
  tablet.draw(bracket(stage.next("cc2Wireframe, vertices"), 10, true), marked, layer);
  marked.showDirection(true);
  tablet.draw(bracket(stage.next("and direction"), 10, true), marked, layer);
  c = stage.next("ccSMDGDPoly");
  tablet.draw(ccSMDGDPoly::triangle(100, 80, c).wireframe(), wide, layer);
  c = stage.next("ccShapeTree");
  ccShapeTree tree;
  tree.addShape(ccPtrHandle_const<ccShape>(new ccCircle(c, 55)));
  tree.addShape(ccPtrHandle_const<ccShape>(new ccGenRect(c, ccVector<2>(36, 36), ccDegree(45), ccVector<2>(8, 8))));
  tree.addShape(ccPtrHandle_const<ccShape>(new ccEllipse(c, 34, 14, ccDegree(30))));
  tree.addShape(ccPtrHandle_const<ccShape>(new ccPointSet({c})));
  tablet.draw(tree, thin, layer);
}
