// Figures on a scope: what they paint, and what they report as changed.
#include "backend/scope/shape_paths.h"
#include "canvas/draws_itself.h"
#include "geometry/ellipse_arc.h"
#include "geometry/gen_rect.h"
#include "geometry/gen_shape.h"
#include "geometry/lines.h"
#include "geometry/polygon.h"
#include "tests/backend/scope/scope_fixture.h"
#include "tests/support/plain_painter.h"

#include <cmath>
#include <functional>

class ScopeShapes : public ScopeTest {
protected:
  using Points = std::vector<ccVector<2>>;

  static ccGraphicProps pen(long w = 1, cePenStyle style = ceSolidPen, bool fill = false)
  {
    return ccGraphicProps(ccColor::whiteColor(), w, style, fill);
  }
  static bool isInked(ScopeProbe& scope, long x, long y) { return pelOf(scope.surface(), x, y) != 0; }
};

TEST_F(ScopeShapes, openPolygonIsTheChainWithoutItsLastPelAtEveryDepth)
{
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    create(scope);
    scope.palette(testColors());
    scope.cacheMap(testColors());
    std::uint32_t const back = pelOf(scope.surface(), 0, 0);
    scope.draw(ccPolygon(Points{{3, 3}, {20, 3}, {20, 12}}), pen());
    std::vector<std::uint32_t> const pels = pelsOf(scope.surface());
    for (long y = 0; y < height; ++y)
      for (long x = 0; x < width; ++x) {
        bool const on = (y == 3 && x >= 3 && x <= 20) || (x == 20 && y >= 3 && y < 12);
        EXPECT_EQ(pels[static_cast<std::size_t>(y * width + x)] != back, on) << depth << ' ' << x << ' ' << y;
      }
  }
}

TEST_F(ScopeShapes, polygonOfOneVertexIsAPoint)
{
  ScopeProbe scope;
  create(scope);
  scope.draw(ccPolygon(Points{}), pen());
  EXPECT_EQ(scope.starts, 0);
  scope.draw(ccPolygon(Points{{5, 6}}, 1), pen(7));
  scope.draw(ccPolyline(Points{{9, 6}}), pen(7));
  EXPECT_EQ(inked(scope), ccUIRect(5, 6, 5, 1));
  EXPECT_FALSE(isInked(scope, 7, 6));
  EXPECT_EQ(scope.lastMethod, ccWin32UIScope::kDirect);
}

TEST_F(ScopeShapes, fillRuleDecidesTheInsideOfACrossedPolygon)
{
  // Twice around the same square: wound twice, so outside for the even-odd rule.
  Points const twice{{5, 5}, {25, 5}, {25, 25}, {5, 25}, {5, 5}, {25, 5}, {25, 25}, {5, 25}};
  for (int const rule : {0, 1, 2}) {
    ScopeProbe scope;
    create(scope);
    scope.draw(ccPolygon(twice, rule), pen());
    EXPECT_EQ(isInked(scope, 15, 15), rule == 2) << rule;
    EXPECT_TRUE(isInked(scope, 15, 5)) << rule;
  }
}

TEST_F(ScopeShapes, closedPolylineReturnsToItsFirstVertex)
{
  ScopeProbe scope;
  create(scope);
  scope.draw(ccPolyline(Points{{5, 5}, {15, 5}, {15, 15}, {5, 15}}, true), pen());
  EXPECT_TRUE(isInked(scope, 5, 10));
  EXPECT_EQ(inked(scope), ccUIRect(5, 5, 11, 11));
  EXPECT_FALSE(isInked(scope, 10, 10));
}

TEST_F(ScopeShapes, changeOfAChainIsItsBoxWidenedByHalfTheWidth)
{
  ScopeProbe scope;
  create(scope);
  struct {
    long width, reach;
  } const rows[] = {{0, 1}, {1, 1}, {2, 2}, {3, 2}, {5, 3}};
  for (auto const& row : rows) {
    scope.clearChange();
    scope.draw(ccPolyline(Points{{12, 12}, {20, 18}, {15, 20}}), pen(row.width));
    EXPECT_EQ(scope.changeRect(), ccUIRect(12 - row.reach, 12 - row.reach, 8 + 2 * row.reach, 8 + 2 * row.reach));
    EXPECT_EQ(scope.stateBits() & ccUIScope::kOpaque, 0u);
  }
}

TEST_F(ScopeShapes, uprightRectangleTakesItsSizeFromTheFlooredSides)
{
  ScopeProbe scope;
  create(scope);
  ccGenRect const rect(ccPoint(15, 12), ccVector<2>(5, 4), ccRadian(0), ccVector<2>());
  scope.draw(rect, pen());
  EXPECT_EQ(inked(scope), ccUIRect(10, 8, 11, 9));  // from edge to edge
  EXPECT_TRUE(isInked(scope, 10, 8));
  EXPECT_FALSE(isInked(scope, 15, 12));
  // h is 1: the corner less h + 1, the size and 2 h + 2.
  EXPECT_EQ(scope.changeRect(), ccUIRect(8, 6, 14, 12));
  scope.draw(rect, pen(1, ceSolidPen, true));
  EXPECT_TRUE(isInked(scope, 15, 12));
}

TEST_F(ScopeShapes, turnedRectangleStandsAboutItsCentreInRootAndChild)
{
  ccGenRect const rect(ccPoint(20, 15), ccVector<2>(9, 3), ccRadian(cfPi / 2), ccVector<2>());
  for (bool const child : {false, true}) {
    ScopeProbe scope;
    create(scope);
    std::unique_ptr<ccUIScope> const part(scope.createChildScope(ccUIRect(10, 4, 25, 22), true));
    (child ? *part : static_cast<ccUIScope&>(scope)).draw(rect, pen());
    ccUIRect const ink = inked(scope);
    EXPECT_NEAR(static_cast<double>(ink.left()), 17, 1) << child;
    EXPECT_NEAR(static_cast<double>(ink.right()), 23, 1) << child;
    EXPECT_NEAR(static_cast<double>(ink.top()), 6, 1) << child;
    EXPECT_NEAR(static_cast<double>(ink.bottom()), 24, 1) << child;
  }
}

TEST_F(ScopeShapes, ellipseWithARadiusOf0IsAPoint)
{
  ScopeProbe scope;
  create(scope);
  scope.draw(ccEllipse(ccPoint(8, 9), 0, 5, ccRadian(0)), pen(3));
  EXPECT_EQ(inked(scope), ccUIRect(8, 9, 1, 1));
}

TEST_F(ScopeShapes, ellipseReachesFromTheFlooredToTheCeiledEdgesLessOne)
{
  ScopeProbe scope;
  create(scope);
  scope.draw(ccEllipse(ccPoint(15, 14), 6, 4, ccRadian(0)), pen());
  // The box (9, 10) to (21, 18), less 1 at right and bottom.
  EXPECT_EQ(inked(scope), ccUIRect(9, 10, 12, 8));
  EXPECT_EQ(scope.changeRect(), ccUIRect(6, 7, 17, 13));
}

TEST_F(ScopeShapes, flatEllipse2IsALine)
{
  ScopeProbe scope;
  create(scope);
  scope.draw(ccEllipse2(ccPoint(15, 14), 6, 0, ccRadian(0)), pen());
  EXPECT_EQ(inked(scope), ccUIRect(9, 14, 13, 1));
  ScopeProbe upright;
  create(upright);
  upright.draw(ccEllipse2(ccPoint(15, 14), 0, 6, ccRadian(0)), pen());
  EXPECT_EQ(inked(upright), ccUIRect(15, 8, 1, 13));
}

TEST_F(ScopeShapes, arcCoversItsSpanInEitherSense)
{
  for (double const turn : {0.0, 0.7}) {
    for (double const span : {1.2, -1.2, 4.0, -4.0}) {
      ScopeProbe scope;
      create(scope);
      ccEllipse const e(ccPoint(20, 15), 11, 11, ccRadian(turn));
      scope.draw(ccEllipseArc(e, ccRadian(0.4), ccRadian(span)), pen());
      std::vector<std::uint32_t> const pels = pelsOf(scope.surface());
      auto const on = [&](long x, long y) {
        return x >= 0 && x < width && y >= 0 && y < height && pels[static_cast<std::size_t>(y * width + x)] != 0;
      };
      for (double a = 0; a < 2 * cfPi; a += 0.05) {
        double const t = span > 0 ? std::fmod(a - 0.4 + 4 * cfPi, 2 * cfPi) : std::fmod(0.4 - a + 4 * cfPi, 2 * cfPi);
        if (std::abs(t - std::abs(span)) < 0.5 || t < 0.5 || t > 2 * cfPi - 0.5)
          continue;  // whole-pel ends
        bool any = false;
        for (long dx = -2; dx <= 2; ++dx)
          for (long dy = -2; dy <= 2; ++dy)
            any = any || on(plain::pelOf(20 + 11 * std::cos(a + turn)) + dx,
                            plain::pelOf(15 + 11 * std::sin(a + turn)) + dy);
        EXPECT_EQ(any, t < std::abs(span)) << turn << ' ' << span << ' ' << a;
      }
    }
  }
}

TEST_F(ScopeShapes, tinySpanPaintsNoWholeEllipse)
{
  for (int i = 0; i < 48; ++i) {
    ScopeProbe scope;
    create(scope);
    ccEllipse const e(ccPoint(20, 15), 10, 10, ccRadian(0));
    for (double const span : {1e-4, -1e-4})
      scope.draw(ccEllipseArc(e, ccRadian(i * cfPi / 24), ccRadian(span)), pen());
    EXPECT_LE(inked(scope).width(), 4) << i;
    EXPECT_LE(inked(scope).height(), 4) << i;
  }
}

TEST_F(ScopeShapes, flatArc2IsTheLineThatItCovers)
{
  ScopeProbe scope;
  create(scope);
  // From the end of the axis at angle 0 to its middle and back is the right half.
  scope.draw(ccEllipseArc2(ccEllipse2(ccPoint(15, 14), 8, 0, ccRadian(0)), ccRadian(-cfPi / 2), ccRadian(cfPi)), pen());
  for (long x = 15; x <= 23; ++x)
    EXPECT_TRUE(isInked(scope, x, 14)) << x;
  EXPECT_FALSE(isInked(scope, 10, 14));
}

TEST_F(ScopeShapes, bezierPointsTouchTheMiddlesOfTheSides)
{
  plat::Point p[kBezierPoints];
  // Round by the half sides is the ellipse: 0.6 - 0.3238576250846 of each side from its middle.
  cf_rectToBezier(plat::Rect{0, 0, 100, 60}, ccVector<2>(50, 30), 0, ccVector<2>(), p);
  long const expected[kBezierPoints][2] = {{0, 30},  {0, 14},   {23, 0},  {50, 0},  {77, 0},  {100, 14}, {100, 30},
                                           {100, 46}, {77, 60}, {50, 60}, {23, 60}, {0, 46}, {0, 30}};
  for (int i = 0; i < kBezierPoints; ++i) {
    EXPECT_EQ(p[i].x, expected[i][0]) << i;
    EXPECT_EQ(p[i].y, expected[i][1]) << i;
  }
  cf_rectToBezier(plat::Rect{0, 0, 100, 60}, ccVector<2>(10, 10), 0, ccVector<2>(), p);
  // 0.6 - 0.2 * 0.3238576250846 = 0.535 of 100; 0.6 - 0.3238576250846 / 3 = 0.492 of 60.
  EXPECT_EQ(p[2].x, 50 - 53);
  EXPECT_EQ(p[1].y, 30 - 29);
  // Turned by minus the angle about the pivot: a quarter turn leads the left middle to the top.
  cf_rectToBezier(plat::Rect{0, 0, 100, 60}, ccVector<2>(), -1.5707963267948966, ccVector<2>(50, 30), p);
  EXPECT_NEAR(p[0].x, 50, 1);
  EXPECT_NEAR(p[0].y, -20, 1);
}

namespace {

class Dot : public ccGenShape, public ccDrawsItself {
public:
  ccRect encloseRect() const override { return ccRect(ccPoint(6, 7), ccVector<2>(3, 2)); }
  void drawOn(void* painter) const override
  {
    static_cast<plat::Painter*>(painter)->fillRect(plat::Rect{6, 7, 9, 9}, 0xFFFFFF);
  }
};

}  // namespace

TEST_F(ScopeShapes, shapeThatDrawsItselfReportsItsBoxWidenedByOne)
{
  ScopeProbe scope;
  create(scope);
  ccPtrHandle<ccGenShape> const dot(new Dot);
  scope.draw(*dot, ccColor::whiteColor());
  EXPECT_EQ(inked(scope), ccUIRect(6, 7, 3, 2));
  EXPECT_EQ(scope.changeRect(), ccUIRect(5, 6, 5, 4));
}

TEST_F(ScopeShapes, changeRectContainsAllThatChangedAndChildrenCut)
{
  std::mt19937 random(7);
  auto const real = [&](double a, double b) { return std::uniform_real_distribution<double>(a, b)(random); };
  for (int i = 0; i < 150; ++i) {
    ccGraphicProps props = pen(static_cast<long>(random() % 5), static_cast<cePenStyle>(random() % 5), random() % 2 == 0);
    props.capStyle(static_cast<long>(random() % 3));
    ccPoint const c(real(-5, 45), real(-5, 35));
    double const rx = real(0, 15), ry = real(0, 15), turn = random() % 2 ? 0 : real(-3, 3);
    ccEllipse const e(c, rx, ry, ccRadian(turn));
    Points points;
    for (int k = 0; k < 5; ++k)
      points.push_back(ccVector<2>(real(-10, 50), real(-10, 40)));
    ccEllipseArc const arc(e, ccRadian(real(-3, 3)), ccRadian(real(-6, 6)));
    ccGenRect const rect(c, ccVector<2>(rx, ry), ccRadian(turn), ccVector<2>(real(0, rx), real(0, ry)));
    ccPolygon const polygon(points, static_cast<int>(random() % 3));
    ccPolyline const line(points, random() % 2 == 0);
    int const kind = i % 5;
    auto const drawOn = [&](ccUIScope& s) {
      switch (kind) {
      case 0: return s.draw(e, props);
      case 1: return s.draw(arc, props);
      case 2: return s.draw(rect, props);
      case 3: return s.draw(polygon, props);
      default: return s.draw(line, props);
      }
    };
    ScopeProbe all, cut;
    create(all);
    drawOn(all);
    std::vector<std::uint32_t> const pels = pelsOf(all.surface());
    ccUIRect const ink = inked(all);
    EXPECT_EQ(ink | all.changeRect(), ink.isNull() ? ink | all.changeRect() : all.changeRect()) << i << " kind " << kind;
    create(cut);
    ccUIRect const window(9, 8, 17, 13);
    std::unique_ptr<ccUIScope> const child(cut.createChildScope(window, true));
    drawOn(*child);
    std::vector<std::uint32_t> const part = pelsOf(cut.surface());
    long wrong = 0;
    for (long y = 0; y < height; ++y)
      for (long x = 0; x < width; ++x) {
        std::size_t const at = static_cast<std::size_t>(y * width + x);
        wrong += part[at] != (window.within(ccPair<long>(x, y)) ? pels[at] : 0u);
      }
    EXPECT_EQ(wrong, 0) << i << " kind " << kind;
  }
}

TEST_F(ScopeShapes, longChainsAreDrawn)
{
  ScopeProbe scope;
  create(scope);
  Points zigzag;
  for (int i = 0; i < 200000; ++i)
    zigzag.push_back(ccVector<2>(i % 30, i % 2 ? 3 : 20));
  scope.draw(ccPolyline(zigzag), pen());
  EXPECT_EQ(inked(scope), ccUIRect(0, 3, 30, 18));
  ScopeProbe filled;
  create(filled);
  Points round;
  for (int i = 0; i < 20000; ++i)
    round.push_back(ccVector<2>(15, 15) + ccVector<2>::polar(10, ccRadian(i * 2 * cfPi / 20000)));
  filled.draw(ccPolygon(round, 2), pen());
  EXPECT_EQ(inked(filled), ccUIRect(5, 5, 21, 21));
  EXPECT_TRUE(isInked(filled, 15, 15));
}
