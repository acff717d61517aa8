// Geometry that a tablet draws: which figures reach the scope, where, and what is never drawn.
#include "geometry/affine_rect.h"
#include "geometry/annulus_section.h"
#include "geometry/bezier.h"
#include "geometry/coord_axes.h"
#include "geometry/deboor_spline.h"
#include "geometry/gen_rect.h"
#include "geometry/lines.h"
#include "geometry/point_set.h"
#include "geometry/polygon.h"
#include "geometry/wireframe.h"
#include "canvas/tablet_path.h"
#include "tests/canvas/tablet_fixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Points = std::vector<ccVector<2>>;

ccGraphicProps white() { return ccGraphicProps(ccColor::whiteColor(), 1, ceSolidPen, false); }

ccUIRect inked(MemoryScope const& s)
{
  ccUIRect r;
  for (long y = 0; y < 30; ++y)
    for (long x = 0; x < 40; ++x)
      if (s.pel(x, y) == s.value(ccColor::whiteColor()))
        r |= ccUIRect(x, y, 1, 1);
  return r;
}

// The kinds of figures that reached the image layer.
std::vector<std::string> kinds(TestTree& tree, std::function<void(TestTablet&)> const& draw)
{
  tree.image.clearLog();
  draw(tree.top);
  std::vector<std::string> all;
  for (MemoryScope::Call const& c : tree.image.log())
    if (c.kind == "ellipse" || c.kind == "genRect" || c.kind == "polygon" || c.kind == "polyline" || c.kind == "line")
      all.push_back(c.kind);
  return all;
}

} // namespace

TEST(TabletGeometry, figuresOfTheScopeServeAMapThatKeepsShapes)
{
  TestTree tree;
  tree.top.screenMap_ = ccXform<2>(ccMatrix<2>(ccRadian(0.3), 2.0), ccVector<2>(1, 2));
  EXPECT_EQ(kinds(tree, [](TestTablet& t) { t.draw(ccCircle(ccPoint(5, 5), 3), ccColor::whiteColor(), kImage); }),
            Rows{"ellipse"});
  EXPECT_EQ(kinds(tree, [](TestTablet& t) {
              t.draw(ccGenRect(ccRect(ccPoint(2, 2), ccVector<2>(4, 4))), ccColor::whiteColor(), kImage);
            }),
            Rows{"genRect"});
}

TEST(TabletGeometry, otherMapsLeaveChords)
{
  TestTree tree;
  tree.top.screenMap_ = ccXform<2>(2, 1, ccVector<2>());
  EXPECT_EQ(kinds(tree, [](TestTablet& t) { t.draw(ccCircle(ccPoint(5, 5), 3), ccColor::whiteColor(), kImage); }),
            Rows{"polyline"});
  EXPECT_EQ(kinds(tree, [](TestTablet& t) { t.draw(ccCircle(ccPoint(5, 5), 3), ccColor::whiteColor(), kImage, true); }),
            Rows{"polygon"});
}

TEST(TabletGeometry, filledFlagMayStandBeforeTheLayers)
{
  TestTree tree;
  tree.image.clearLog();
  tree.top.draw(ccCircle(ccPoint(5, 5), 3), ccColor::whiteColor(), true, kImage);
  ASSERT_EQ(tree.image.calls("ellipse"), 1);
  EXPECT_TRUE(tree.image.log().back().props.fill());
  EXPECT_EQ(tree.image.log().back().props.penWidth(), 1);
  tree.image.clearLog();
  tree.top.draw(ccCircle(ccPoint(5, 5), 3), ccColor::whiteColor(), kImage);
  EXPECT_FALSE(tree.image.log().back().props.fill());
}

TEST(TabletGeometry, polygonIsOneForTheScopeWhetherFilledOrNot)
{
  TestTree tree;
  Points const points{{2, 2}, {9, 2}, {9, 9}};
  EXPECT_EQ(kinds(tree, [&](TestTablet& t) { t.draw(ccPolygon(points, 2), ccColor::whiteColor(), kImage); }),
            Rows{"polygon"});
  EXPECT_EQ(kinds(tree, [&](TestTablet& t) { t.draw(ccPolygon(points), ccColor::whiteColor(), kImage); }),
            Rows{"polygon"});
  // Of two vertices and of one, too: the scope knows what becomes of their last pels.
  EXPECT_EQ(kinds(tree, [&](TestTablet& t) { t.draw(ccPolygon(Points{{2, 2}, {9, 2}}), white(), kImage); }),
            Rows{"polygon"});
  EXPECT_EQ(kinds(tree, [&](TestTablet& t) { t.draw(ccPolygon(Points{{2, 2}}, 1), white(), kImage); }), Rows{"polygon"});
}

TEST(TabletGeometry, polylineStaysOneOfTwoPointsAndOfOne)
{
  TestTree tree;
  EXPECT_EQ(kinds(tree, [&](TestTablet& t) { t.draw(ccPolyline(Points{{2, 2}, {9, 2}}), white(), kImage); }),
            Rows{"polyline"});
  EXPECT_EQ(kinds(tree, [&](TestTablet& t) { t.draw(ccPolyline(Points{{2, 2}}), white(), kImage); }), Rows{"polyline"});
  EXPECT_TRUE(kinds(tree, [&](TestTablet& t) { t.draw(ccPolyline(), white(), kImage); }).empty());
}

TEST(TabletGeometry, sectionShowsItsEndSidesUnlessToldNot)
{
  TestTree tree;
  ccEllipseAnnulusSection const s(ccPoint(15, 15), 5, 10, ccRadian(0), ccRadian(2));
  EXPECT_EQ(kinds(tree, [&](TestTablet& t) { t.draw(s, ccColor::whiteColor(), kImage); }), Rows{"polyline"});
  EXPECT_EQ(kinds(tree, [&](TestTablet& t) { t.draw(s, ccColor::whiteColor(), kImage, false); }),
            (Rows{"polyline", "polyline"}));
  EXPECT_EQ(kinds(tree, [&](TestTablet& t) { t.draw(s, ccColor::whiteColor(), true, true, kImage); }), Rows{"polygon"});
}

TEST(TabletGeometry, pointSetIsACrossAtEachPoint)
{
  TestTree tree;
  tree.top.draw(ccPointSet(Points{{10, 10}, {20, 15}}), ccColor::whiteColor(), kImage);
  EXPECT_EQ(inked(tree.image), ccUIRect(6, 6, 19, 14));
}

TEST(TabletGeometry, axesAreTwoArmsWithHeadsOfFivePels)
{
  TestTree tree;
  tree.top.draw(ccCoordAxes(ccPoint(5, 5), ccPoint(30, 5), ccPoint(5, 25)), ccColor::whiteColor(), kImage);
  std::uint32_t const w = tree.image.value(ccColor::whiteColor());
  EXPECT_EQ(tree.image.pel(30, 5), w);
  EXPECT_EQ(tree.image.pel(5, 25), w);
  // 5 cos 30 degrees back from the tip and 5 sin 30 degrees aside: the pels of (25.67, 7.5) and (25.67, 2.5).
  EXPECT_EQ(tree.image.pel(26, 8), w);
  EXPECT_EQ(tree.image.pel(26, 3), w);
  EXPECT_EQ(tree.image.pel(20, 6), tree.image.value(ccColor::blueColor()));
}

TEST(TabletGeometry, wireframeShowsVerticesAndDirectionsIfAsked)
{
  TestTree tree;
  cc2Wireframe wire;
  wire.insertVertex(ccVector<2>(5, 5));
  wire.insertVertex(ccVector<2>(25, 5));
  ccGraphicProps props = white();
  EXPECT_EQ(kinds(tree, [&](TestTablet& t) { t.draw(wire, props, kImage); }), Rows{"line"});
  props.showVertices(true);
  EXPECT_EQ(kinds(tree, [&](TestTablet& t) { t.draw(wire, props, kImage); }), (Rows{"line", "polyline", "polyline"}));
  props.showVertices(false);
  props.showDirection(true);
  EXPECT_EQ(kinds(tree, [&](TestTablet& t) { t.draw(wire, props, kImage); }), (Rows{"line", "line", "line"}));
}

TEST(TabletGeometry, recorderKeepsEveryShape)
{
  TestTree tree;
  ccUISketch sketch;
  {
    ccUITablet recorder;
    recorder.draw(ccCircle(ccPoint(5, 5), 3), white(), kImage);
    recorder.draw(ccPolygon(Points{{1, 1}, {4, 1}, {4, 4}}, 1), white(), kImage);
    recorder.draw(ccRect(ccPoint(2, 2), ccVector<2>(5, 5)), white(), kImage);
    recorder.draw(ccBezierCurve(ccPoint(0, 0), ccPoint(5, 9), ccPoint(9, 9), ccPoint(12, 0)), white(), kImage);
    sketch = recorder.sketch();
  }
  EXPECT_EQ(kinds(tree, [&](TestTablet& t) { t.draw(sketch, ccPoint(), kImage); }),
            (Rows{"ellipse", "polygon", "polyline", "polyline"}));
}

TEST(TabletGeometry, farCoordinatesAreCutBeforeTheScope)
{
  TestTree tree;
  tree.top.draw(ccLineSeg(ccPoint(-1e12, 10), ccPoint(1e12, 10)), white(), kImage);
  EXPECT_EQ(inked(tree.image), ccUIRect(0, 10, 40, 1));
  EXPECT_TRUE(kinds(tree, [](TestTablet& t) { t.draw(ccPolyline(Points{{1e10, 1e10}, {2e10, 1e10}, {1e10, 3e10}}), white(), kImage); })
                  .empty());
}

TEST(TabletGeometry, mapsThatAreNotFiniteDrawNothing)
{
  for (double const bad : {std::nan(""), std::numeric_limits<double>::infinity()}) {
    TestTree tree;
    tree.top.screenMap_ = ccXform<2>(bad, 1, ccVector<2>());
    EXPECT_TRUE(kinds(tree, [](TestTablet& t) {
                  t.draw(ccCircle(ccPoint(5, 5), 3), white(), kImage);
                  t.draw(ccPolygon(Points{{1, 1}, {4, 1}, {4, 4}}, 1), white(), kImage);
                  t.draw(ccRect(ccPoint(2, 2), ccVector<2>(5, 5)), white(), kImage);
                  t.draw(ccCoordAxes(ccPoint(5, 5), ccPoint(30, 5), ccPoint(5, 25)), white(), kImage);
                }).empty());
  }
}

TEST(TabletGeometry, passColourDrawsNothingOnTheImageLayer)
{
  TestTree tree;
  EXPECT_TRUE(kinds(tree, [](TestTablet& t) { t.draw(ccCircle(ccPoint(5, 5), 3), ccColor::passColor(), kImage); }).empty());
}

TEST(TabletPath, chordsOfAnArcStayWithinAQuarterOfAPel)
{
  for (double const radius : {3.0, 100.0, 20000.0}) {
    cc_TabletPath path;
    path.start(ccXform<2>(2, 0.5, ccVector<2>(7, 9)), ccVector<2>(-1e6, -1e6), ccVector<2>(1e6, 1e6), false);
    ccCircle(ccPoint(1, 2), radius).outline(path);
    ASSERT_EQ(path.strokes().size(), 1u);
    std::span<ccVector<2> const> const p = path.strokes()[0];
    for (std::size_t i = 1; i < p.size(); ++i) {
      // The middle of a chord against the ellipse: its nearest point lies no further than the gap in y or in x.
      ccVector<2> const m = (p[i - 1] + p[i]) * 0.5 - ccVector<2>(9, 10);
      double const a = 2 * radius, b = radius / 2;
      double const f = std::hypot(m.x() / a, m.y() / b);
      double const gradient = std::hypot(m.x() / (a * a), m.y() / (b * b)) / f;
      EXPECT_LE((1 - f) / gradient, 0.26) << radius << ' ' << i;
    }
  }
}

TEST(TabletPath, viewMovesNoChordInside)
{
  ccEllipse2 const ellipse(ccPoint(1000, 700), 90000, 60000, ccRadian(0.3));
  ccBezierCurve const curve(ccPoint(-90000, 30), ccPoint(10, 80000), ccPoint(900, -70000), ccPoint(80000, 600));
  struct {
    ccShape const& shape;
    ccVector<2> on;
  } const rows[] = {{ellipse, ellipse.conic().at(ccRadian(0.7))}, {curve, curve.point(0.4)}};
  for (auto const& row : rows) {
    ccVector<2> const low = row.on - ccVector<2>(1500, 1500), high = row.on + ccVector<2>(1500, 1500);
    auto const seen = [&](bool all) {
      cc_TabletPath path;
      path.start(ccXform<2>(), all ? ccVector<2>(-1e9, -1e9) : low, all ? ccVector<2>(1e9, 1e9) : high, false);
      row.shape.outline(path);
      std::vector<ccVector<2>> points;
      for (std::size_t i = 0; i < path.strokes().size(); ++i)
        for (ccVector<2> const& p : path.strokes()[i])
          if (p.x() >= low.x() && p.x() <= high.x() && p.y() >= low.y() && p.y() <= high.y())
            points.push_back(p);
      return points;
    };
    EXPECT_GT(seen(true).size(), 3u);
    EXPECT_EQ(seen(true), seen(false));
  }
}

TEST(TabletPath, whatIsOutOfSightCostsNothing)
{
  cc_TabletPath path;
  path.start(ccXform<2>(), ccVector<2>(0, 0), ccVector<2>(2000, 1000), true);
  ccEllipse2(ccPoint(1e9 + 1000, 500), 1e9, 1e9, ccRadian(0)).outline(path);
  ASSERT_EQ(path.strokes().size(), 1u);
  EXPECT_LT(path.strokes()[0].size(), 1200u);  // a point for each row in sight, and a few far away
}

TEST(TabletPath, cutFigureKeepsItsAreaInside)
{
  // A square twice as wide as the window: half of it is left.
  Points cut{{-10, 2}, {10, 2}, {10, 8}, {-10, 8}}, scratch;
  cf_cutFigure(cut, ccVector<2>(0, 0), ccVector<2>(20, 20), scratch);
  double area = 0;
  for (std::size_t i = 0; i < cut.size(); ++i) {
    ccVector<2> const& a = cut[i];
    ccVector<2> const& b = cut[(i + 1) % cut.size()];
    area += (a.x() * b.y() - a.y() * b.x()) / 2;
  }
  EXPECT_DOUBLE_EQ(area, 60);
}

TEST(TabletPath, cutChainComesInParts)
{
  cc_Strokes parts;
  cf_cutChain(Points{{5, 5}, {30, 5}, {30, 8}, {5, 8}}, false, ccVector<2>(0, 0), ccVector<2>(20, 20), parts);
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_EQ(Points(parts[0].begin(), parts[0].end()), (Points{{5, 5}, {20, 5}}));
  EXPECT_EQ(Points(parts[1].begin(), parts[1].end()), (Points{{20, 8}, {5, 8}}));
}

TEST(TabletPath, cutSegmentKeepsAnEndInsideToTheLastBit)
{
  ccVector<2> a(0.1, 0.7), b(1e308, -1e308);
  ASSERT_TRUE(cf_cutSegment(a, b, 1000));
  EXPECT_EQ(a, ccVector<2>(0.1, 0.7));
  EXPECT_NEAR(b.x(), 1000, 1);
  EXPECT_NEAR(b.y(), -1000, 1);
  ccVector<2> c(-1e308, 5000), d(1e308, 5000);
  EXPECT_FALSE(cf_cutSegment(c, d, 1000));
}
