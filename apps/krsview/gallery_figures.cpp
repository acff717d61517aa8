// Pages of the gallery: lines, polygons, rectangles, ellipses and rings.
#include "apps/krsview/gallery_kit.h"
#include "apps/krsview/gallery_pages.h"
#include "canvas/graphic_props.h"
#include "geometry/all.h"

#include <iterator>

namespace {

// A pentagram, whose middle lies inside twice.
std::vector<ccVector<2>> cf_star(ccPoint const& c, double radius)
{
  std::vector<ccVector<2>> out;
  for (int i = 0; i < 5; ++i)
    out.push_back(c + ccVector<2>::polar(radius, ccDegree(144.0 * i - 90)));
  return out;
}

std::vector<ccVector<2>> cf_zigzag(ccPoint const& c)
{
  return {c + ccVector<2>(-45, 25), c + ccVector<2>(-20, -30), c + ccVector<2>(5, 25), c + ccVector<2>(45, -30)};
}

}  // namespace

void cf_pagePens(ccGalleryStage& stage)
{
  ccUITablet& tablet = stage.tablet();
  ccUITablet::Layers const layer = stage.layer();

  stage.heading("Styles", ccPoint(16, 48));
  char const* const styles[] = {"solid", "dash", "dot", "dashDot", "dashDotDot"};
  for (int i = 0; i < 5; ++i) {
    double const y = 80 + 22 * i;
    stage.text(styles[i], ccPoint(16, y), ccUIFormat::centerLeft);
    tablet.draw(ccLineSeg(ccPoint(110, y), ccPoint(300, y)),
                ccGraphicProps(ccColor::blueColor(), 1, static_cast<cePenStyle>(i), false), layer);
  }
  stage.heading("Styles of wide pens", ccPoint(336, 48));
  for (int i = 0; i < 5; ++i) {
    double const y = 80 + 22 * i;
    ccGraphicProps pen(ccColor::dkGreenColor(), 5, static_cast<cePenStyle>(i), false);
    pen.capStyle(1);
    stage.text(styles[i], ccPoint(336, y), ccUIFormat::centerLeft);
    tablet.draw(ccLineSeg(ccPoint(430, y), ccPoint(620, y)), pen, layer);
  }

  stage.heading("Widths", ccPoint(16, 188));
  long const widths[] = {1, 2, 3, 5, 8, 13};
  double x = 40;
  for (long width : widths) {
    tablet.draw(ccLineSeg(ccPoint(x, 290), ccPoint(x + 30, 214)),
                ccGraphicProps(ccColor::purpleColor(), width, ceSolidPen, false), layer);
    stage.text(std::to_string(width), ccPoint(x, 302), ccUIFormat::topCenter);
    x += 46;
  }

  // The thin line shows where the points lie.
  stage.heading("Joins", ccPoint(336, 188));
  char const* const joins[] = {"round", "bevel"};
  for (int i = 0; i < 2; ++i) {
    ccPoint const c(400 + 140 * i, 252);
    ccPolyline const corner({c + ccVector<2>(-40, 25), c + ccVector<2>(0, -20), c + ccVector<2>(40, 25)});
    ccGraphicProps pen(ccColor::orangeColor(), 22, ceSolidPen, false);
    pen.joinStyle(i);
    tablet.draw(corner, pen, layer);
    tablet.draw(corner, ccGraphicProps(ccColor::blackColor(), 1, ceSolidPen, false), layer);
    stage.text(joins[i], ccPoint(c.x(), 302), ccUIFormat::topCenter);
  }

  stage.heading("Caps", ccPoint(16, 332));
  char const* const caps[] = {"round", "flat", "square"};
  for (int i = 0; i < 3; ++i) {
    double const y = 366 + 34 * i;
    ccLineSeg const line(ccPoint(110, y), ccPoint(290, y));
    ccGraphicProps pen(ccColor::orangeColor(), 21, ceSolidPen, false);
    pen.capStyle(i);
    stage.text(caps[i], ccPoint(16, y), ccUIFormat::centerLeft);
    tablet.draw(line, pen, layer);
    tablet.draw(line, ccColor::blackColor(), layer);
  }

  stage.heading("Endless lines", ccPoint(336, 332));
  tablet.drawClipRect(ccRect(ccPoint(336, 352), ccVector<2>(288, 110)), layer);
  for (int i = 0; i < 12; ++i)
    tablet.draw(ccLine(ccVector<2>::polar(1, ccDegree(15.0 * i)), ccPoint(480, 407)), ccColor::redColor(), layer);
  tablet.drawClipRect(ccRect(), layer);
}

void cf_pagePolygons(ccGalleryStage& stage)
{
  ccUITablet& tablet = stage.tablet();
  ccUITablet::Layers const layer = stage.layer();
  stage.cells(4, 3);

  tablet.draw(ccPolyline(cf_zigzag(stage.next("polyline, open"))), ccGraphicProps(ccColor::blueColor(), 1, ceSolidPen, false),
              layer);
  tablet.draw(ccPolyline(cf_zigzag(stage.next("polyline, closed")), /*closed=*/true),
              ccGraphicProps(ccColor::blueColor(), 1, ceSolidPen, false), layer);
  tablet.draw(ccPolyline(cf_zigzag(stage.next("wide")), /*closed=*/true),
              ccGraphicProps(ccColor::blueColor(), 7, ceSolidPen, false), layer);
  tablet.draw(ccPolyline(cf_zigzag(stage.next("broken")), /*closed=*/true),
              ccGraphicProps(ccColor::blueColor(), 1, ceDashDotPen, false), layer);

  char const* const rules[] = {"fillRule 0", "fillRule 1, even-odd", "fillRule 2, winding"};
  for (int rule = 0; rule < 3; ++rule)
    tablet.draw(ccPolygon(cf_star(stage.next(rules[rule]), 55), rule), ccColor::dkGreenColor(), layer);
  // The same pen paints the sides and the inside, so a wide one rounds the tips.
  tablet.draw(ccPolygon(cf_star(stage.next("filled, pen of 9"), 50), 2),
              ccGraphicProps(ccColor::dkGreenColor(), 9, ceSolidPen, true), layer);

  ccPoint c = stage.next("one over another");
  for (int i = 0; i < 3; ++i) {
    ccColor const colors[] = {ccColor::redColor(), ccColor::orangeColor(), ccColor::yellowColor()};
    ccPoint const at = c + ccVector<2>(-20 + 20 * i, -10 + 10 * i);
    tablet.draw(ccPolygon({at + ccVector<2>(-30, 25), at + ccVector<2>(0, -30), at + ccVector<2>(30, 25)}, 1), colors[i], layer);
  }
  c = stage.next("ring by even-odd");
  tablet.draw(ccPolygon({c + ccVector<2>(-50, -40), c + ccVector<2>(50, -40), c + ccVector<2>(50, 40), c + ccVector<2>(-50, 40),
                         c + ccVector<2>(-50, -40), c + ccVector<2>(-20, -15), c + ccVector<2>(20, -15), c + ccVector<2>(20, 15),
                         c + ccVector<2>(-20, 15), c + ccVector<2>(-20, -15)},
                        1),
              ccColor::purpleColor(), layer);
  c = stage.next("thin slivers");
  for (int i = 0; i < 12; ++i) {
    ccVector<2> const tip = ccVector<2>::polar(55, ccDegree(30.0 * i)), side = ccVector<2>::polar(10, ccDegree(30.0 * i + 20));
    tablet.draw(ccPolygon({c, c + tip, c + side}, 1), ccColor::blueColor(), layer);
  }
  c = stage.next("many sides");
  std::vector<ccVector<2>> gear;
  for (int i = 0; i < 48; ++i)
    gear.push_back(c + ccVector<2>::polar(i % 4 < 2 ? 55 : 44, ccDegree(7.5 * i)));
  tablet.draw(ccPolygon(gear, 2), ccColor::dkGreyColor(), layer);
  gear.push_back(gear.front());
  tablet.draw(ccPolygon(gear, 0), ccColor::blackColor(), layer);
}

void cf_pageRectangles(ccGalleryStage& stage)
{
  ccUITablet& tablet = stage.tablet();
  ccUITablet::Layers const layer = stage.layer();
  ccGraphicProps const thin(ccColor::blueColor(), 1, ceSolidPen, false);
  ccGraphicProps const wide(ccColor::blueColor(), 5, ceSolidPen, false);
  ccGraphicProps const filled(ccColor::dkGreenColor(), 1, ceSolidPen, true);
  stage.cells(4, 3);

  ccVector<2> const half(50, 32), sharp(0, 0);
  auto const rect = [&](ccPoint const& c) { return ccRect(c - half, half * 2); };
  tablet.draw(rect(stage.next("ccRect")), thin, layer);
  tablet.draw(rect(stage.next("wide")), wide, layer);
  tablet.draw(rect(stage.next("filled")), filled, layer);
  tablet.draw(rect(stage.next("broken")), ccGraphicProps(ccColor::blueColor(), 1, ceDotPen, false), layer);

  tablet.draw(ccAffineRectangle(stage.next("ccAffineRectangle"), 90, 50, ccDegree(25), ccDegree(0)), thin, layer);
  tablet.draw(ccAffineRectangle(stage.next("skewed"), 70, 55, ccDegree(0), ccDegree(30)), wide, layer);
  tablet.draw(ccGenRect(stage.next("ccGenRect, turned"), half, ccDegree(-20), sharp), thin, layer);
  tablet.draw(ccGenRect(stage.next("turned and filled"), half, ccDegree(-20), sharp), filled, layer);

  tablet.draw(ccGenRect(stage.next("round corners"), half, ccDegree(0), ccVector<2>(16, 16)), wide, layer);
  tablet.draw(ccGenRect(stage.next("unequal roundings"), half, ccDegree(15), ccVector<2>(40, 14)), filled, layer);
  tablet.draw(ccGenRect(stage.next("skew 25"), 45, 32, 1, ccDegree(25), ccDegree(0), ccVector<2>(0.4, 0.4)), thin, layer);
  tablet.draw(ccGenRect(stage.next("skew -25, turned"), 45, 32, 1, ccDegree(-25), ccDegree(30), ccVector<2>(1, 1)), wide, layer);
}

void cf_pageEllipses(ccGalleryStage& stage)
{
  ccUITablet& tablet = stage.tablet();
  ccUITablet::Layers const layer = stage.layer();
  ccGraphicProps const thin(ccColor::blueColor(), 1, ceSolidPen, false);
  ccGraphicProps const wide(ccColor::purpleColor(), 7, ceSolidPen, false);
  ccGraphicProps const filled(ccColor::dkGreenColor(), 1, ceSolidPen, true);
  stage.cells(4, 3);

  ccPoint c = stage.next("ccCircle");
  for (int r = 8; r <= 56; r += 12)
    tablet.draw(ccCircle(c, r), ccColor::blueColor(), layer);
  tablet.draw(ccCircle(stage.next("wide"), 50), wide, layer);
  tablet.draw(ccCircle(stage.next("filled"), 55), filled, layer);
  tablet.draw(ccCircle(stage.next("broken"), 55), ccGraphicProps(ccColor::blueColor(), 1, ceDashPen, false), layer);

  c = stage.next("ccEllipse");
  for (int ry = 6; ry <= 42; ry += 12)
    tablet.draw(ccEllipse(c, 60, ry, ccDegree(0)), ccColor::blueColor(), layer);
  tablet.draw(ccEllipse(stage.next("turned"), 60, 30, ccDegree(30)), wide, layer);
  tablet.draw(ccEllipse(stage.next("turned and filled"), 60, 30, ccDegree(-30)), filled, layer);
  c = stage.next("a fan of ellipses");
  for (int i = 0; i < 6; ++i)
    tablet.draw(ccEllipse(c, 56, 16, ccDegree(30.0 * i)), ccColor::redColor(), layer);

  c = stage.next("ccEllipseArc");
  for (int i = 0; i < 6; ++i)
    tablet.draw(ccEllipseArc(ccEllipse(ccCircle(c, 10 + 8 * i)), ccDegree(60.0 * i), ccDegree(250)), thin, layer);
  c = stage.next("wide, caps flat");
  for (int i = 0; i < 3; ++i) {
    ccGraphicProps pen(ccColor::orangeColor(), 14, ceSolidPen, false);
    pen.capStyle(1);
    tablet.draw(ccEllipseArc(ccEllipse(c, 56, 44, ccDegree(0)), ccDegree(120.0 * i), ccDegree(90)), pen, layer);
  }
  c = stage.next("ccEllipseArc2, turned");
  tablet.draw(ccEllipseArc2(ccEllipse2(c, 58, 26, ccDegree(20)), ccDegree(0), ccDegree(180)), wide, layer);
  tablet.draw(ccEllipseArc2(ccEllipse2(c, 58, 26, ccDegree(20)), ccDegree(0), ccDegree(-180)), thin, layer);
  c = stage.next("flat: radius 0");
  tablet.draw(ccEllipse2(c, 55, 0, ccDegree(30)), thin, layer);
  tablet.draw(ccEllipse2(c, 0, 40, ccDegree(30)), wide, layer);
}

void cf_pageRings(ccGalleryStage& stage)
{
  ccUITablet& tablet = stage.tablet();
  ccUITablet::Layers const layer = stage.layer();
  ccGraphicProps const thin(ccColor::blueColor(), 1, ceSolidPen, false);
  ccGraphicProps const wide(ccColor::purpleColor(), 5, ceSolidPen, false);
  ccGraphicProps const broken(ccColor::blueColor(), 1, ceDashPen, false);
  stage.cells(4, 3);

  auto const circles = [](ccPoint const& c) { return ccEllipseAnnulus(ccEllipse(ccCircle(c, 24)), ccEllipse(ccCircle(c, 55))); };
  tablet.draw(circles(stage.next("of two circles")), thin, layer);
  tablet.draw(circles(stage.next("filled")), ccGraphicProps(ccColor::dkGreenColor(), 1, ceSolidPen, true), layer);
  ccPoint c = stage.next("of two ellipses, wide");
  tablet.draw(ccEllipseAnnulus(ccEllipse(c, 34, 16, ccDegree(20)), ccEllipse(c, 60, 38, ccDegree(20))), wide, layer);
  tablet.draw(ccGenAnnulus(stage.next("of two rectangles"), ccVector<2>(28, 16), ccVector<2>(56, 40), ccDegree(15),
                           ccVector<2>(0, 0), ccVector<2>(20, 20)),
              thin, layer);

  auto const section = [](ccPoint const& p, double start, double stop) {
    return ccEllipseAnnulusSection(p, 26, 56, ccDegree(start), ccDegree(stop));
  };
  tablet.draw(section(stage.next("section, 30 to 150"), 30, 150), thin, layer);
  tablet.draw(section(stage.next("without end sides"), -60, 200), thin, layer, /*endSides=*/false);
  tablet.draw(section(stage.next("filled"), 150, 300), ccGraphicProps(ccColor::dkGreenColor(), 1, ceSolidPen, true), layer);
  tablet.draw(section(stage.next("wide"), 200, 40), wide, layer);

  c = stage.next("of two ellipses");
  tablet.draw(ccEllipseAnnulusSection(ccEllipse(c, 34, 16, ccDegree(20)), ccEllipse(c, 62, 40, ccDegree(20)), ccDegree(0),
                                      ccDegree(220)),
              thin, layer);
  tablet.draw(section(stage.next("broken"), 20, 310), broken, layer);
  c = stage.next("twelve sections");
  for (int i = 0; i < 12; ++i)
    tablet.draw(ccEllipseAnnulusSection(c, 20, 57, ccDegree(30.0 * i), ccDegree(30.0 * i + 20)),
                i % 2 == 0 ? ccColor::redColor() : ccColor::blueColor(), layer, true, /*filled=*/true);
  c = stage.next("a gauge");
  tablet.draw(ccEllipseAnnulusSection(c, 36, 56, ccDegree(150), ccDegree(300)), ccColor::dkGreenColor(), layer, true, true);
  tablet.draw(ccEllipseAnnulusSection(c, 36, 56, ccDegree(300), ccDegree(30)), ccColor::ltGreyColor(), layer, true, true);
  tablet.draw(ccLineSeg(c, c + ccVector<2>::polar(48, ccDegree(300))), ccGraphicProps(ccColor::blackColor(), 3, ceSolidPen, false),
              layer);
}
