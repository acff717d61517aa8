// Numbers and tables of drawing on a scope: what a pen, a point, a fill, a text and a run-length row come to, and the rectangle
// that each figure reports.
#include "backend/scope/shape_paths.h"
#include "canvas/draws_itself.h"
#include "canvas/format.h"
#include "canvas/graphic_props.h"
#include "canvas/rle_buffer.h"
#include "geometry/ellipse_arc.h"
#include "geometry/gen_rect.h"
#include "geometry/gen_shape.h"
#include "geometry/lines.h"
#include "geometry/polygon.h"
#include "tests/backend/scope/scope_fixture.h"

class ScopeRules : public ScopeTest {
protected:
  using Points = std::vector<ccVector<2>>;

  static ccGraphicProps pen(long w = 1, int style = 0, long join = 0, long cap = 0)
  {
    ccGraphicProps props(ccColor::whiteColor(), w, static_cast<cePenStyle>(style), false);
    props.joinStyle(join);
    props.capStyle(cap);
    return props;
  }
  static std::string rows(ScopeProbe& scope, ccUIRect const& r)
  {
    std::vector<std::uint32_t> const pels = pelsOf(scope.surface());
    std::string text;
    for (long y = r.top(); y < r.bottom(); ++y) {
      for (long x = r.left(); x < r.right(); ++x)
        text += pels[static_cast<std::size_t>(y * width + x)] == 0 ? '.' : '#';
      text += '\n';
    }
    return text;
  }
  // A scope that is larger than the fixture's.
  void createLarge(ScopeProbe& scope)
  {
    HWND const window = makeWindow({0, 0, 700, 500});
    ASSERT_EQ(scope.create(window, ccPair<long>(700, 500), -1), 0);
  }
  void prepare(ScopeProbe& scope)
  {
    create(scope);
    scope.palette(testColors());
    scope.colorMap(testColors());
  }
};

// --- Lines and pens

TEST_F(ScopeRules, lineOfOnePelPaintsItsLastPelInEveryDirection)
{
  for (long dx = -2; dx <= 2; ++dx)
    for (long dy = -2; dy <= 2; ++dy)
      for (long const w : {0, 1}) {
        ScopeProbe scope;
        create(scope);
        scope.drawStart(ccPoint(10, 10));
        scope.drawToRel(3 * dx, 3 * dy, pen(w));
        EXPECT_NE(pelOf(scope.surface(), 10, 10), 0u) << dx << ' ' << dy;
        EXPECT_NE(pelOf(scope.surface(), 10 + 3 * dx, 10 + 3 * dy), 0u) << dx << ' ' << dy;
        EXPECT_EQ(inked(scope), ccUIRect(10 + std::min(0L, 3 * dx), 10 + std::min(0L, 3 * dy), 3 * std::labs(dx) + 1,
                                         3 * std::labs(dy) + 1));
      }
}

TEST_F(ScopeRules, lineOfTwoPelsDoesNotAddALastPel)
{
  // With one more piece to (9, 4) column 8 would be painted as well.
  ScopeProbe scope;
  create(scope);
  scope.draw(ccLineSeg(ccPoint(4, 3), ccPoint(8, 3)), pen(2, 0, 0, 1));
  EXPECT_EQ(rows(scope, ccUIRect(2, 1, 8, 4)), "........\n"
                                               "..####..\n"
                                               "..####..\n"
                                               "........\n");
}

TEST_F(ScopeRules, brokenLineOfOnePelPaintsItsLastPelToo)
{
  // Dots of 3 on and 3 off: the line ends in a gap, and its last pel begins a pattern of its own.
  ScopeProbe scope;
  create(scope);
  scope.draw(ccLineSeg(ccPoint(1, 1), ccPoint(11, 1)), pen(1, 2));
  EXPECT_EQ(rows(scope, ccUIRect(0, 1, 14, 1)), ".###...###.#..\n");
}

TEST_F(ScopeRules, squareCapsWidenTheChangeByOnePointFourTwo)
{
  // h is floor(width / 2) + 1, times 1.42 without its fraction.
  struct {
    long width, cap, reach;
  } const rows[] = {{4, 0, 3}, {4, 1, 3}, {4, 2, 4}, {9, 2, 7}, {200, 0, 101}, {200, 2, 143}};
  ScopeProbe scope;
  createLarge(scope);
  for (auto const& row : rows) {
    scope.clearChange();
    scope.drawStart(ccPoint(300, 250));
    scope.drawToRel(20, -10, pen(row.width, 0, 0, row.cap));
    EXPECT_EQ(scope.changeRect(), ccUIRect(300 - row.reach, 240 - row.reach, 20 + 2 * row.reach, 10 + 2 * row.reach))
        << row.width << ' ' << row.cap;
  }
}

TEST_F(ScopeRules, numbersOfJoinsAndCaps)
{
  // Join 1 is a bevel, all else round; cap 1 is flat, 2 square, all else round.
  auto const corner = [&](long join, long cap) {
    ScopeProbe scope;
    create(scope);
    scope.draw(ccPolyline(Points{{6, 12}, {22, 12}, {22, 24}}), pen(9, 0, join, cap));
    return pelsOf(scope.surface());
  };
  auto const round = corner(0, 0), bevel = corner(1, 0), flat = corner(0, 1), square = corner(0, 2);
  EXPECT_TRUE(round != bevel && round != flat && round != square && flat != square);
  for (long const other : {2, 3, -1, 4096, 512})
    EXPECT_TRUE(corner(other, 0) == round) << other;
  for (long const other : {3, -1, 256, 512})
    EXPECT_TRUE(corner(0, other) == round) << other;
  std::size_t const outer = 9 * static_cast<std::size_t>(width) + 25;  // 4.2 pels off the corner, beyond the bevel
  EXPECT_NE(round[outer], 0u);
  EXPECT_EQ(bevel[outer], 0u);
  std::size_t const end = 12 * static_cast<std::size_t>(width) + 2, edge = 8 * static_cast<std::size_t>(width) + 2;
  EXPECT_TRUE(round[end] != 0 && round[edge] == 0);
  EXPECT_TRUE(flat[end] == 0 && flat[edge] == 0);
  EXPECT_TRUE(square[end] != 0 && square[edge] != 0);
}

TEST_F(ScopeRules, stylesBeyondTheFourBrokenOnesAreSolid)
{
  auto const line = [&](int style, long w) {
    ScopeProbe scope;
    create(scope);
    scope.draw(ccLineSeg(ccPoint(1, 10), ccPoint(38, 20)), pen(w, style, 0, 1));
    return pelsOf(scope.surface());
  };
  for (long const w : {1, 3}) {
    auto const solid = line(0, w);
    for (int const style : {5, -1, 64})
      EXPECT_TRUE(line(style, w) == solid) << style;
    for (int style = 1; style <= 4; ++style)
      for (int other = 0; other < style; ++other)
        EXPECT_TRUE(line(style, w) != line(other, w)) << style << ' ' << other;
  }
}

TEST_F(ScopeRules, gapsOfABrokenPenStayUnpaintedAfterOpaqueText)
{
  ScopeProbe scope;
  create(scope);
  scope.optimizeDrawing(true);
  scope.draw(std::string("x"), ccPoint(0, 0), ccColor::whiteColor(), ccColor::redColor(), ccUIFormat());
  scope.draw(ccLineSeg(ccPoint(0, 25), ccPoint(39, 25)), pen(1, 1));
  scope.optimizeDrawing(false);
  EXPECT_EQ(rows(scope, ccUIRect(0, 25, 40, 1)), "##################......################\n");
}

TEST_F(ScopeRules, stockColorsPaintTheirOwnRGBAtAnyWidth)
{
  ccColor const stock[] = {ccColor::blackColor(), ccColor::dkGreyColor(), ccColor::greyColor(),   ccColor::ltGreyColor(),
                           ccColor::whiteColor(), ccColor::redColor(),    ccColor::dkRedColor(),  ccColor::orangeColor(),
                           ccColor::yellowColor(), ccColor::greenColor(), ccColor::dkGreenColor(), ccColor::cyanColor(),
                           ccColor::blueColor(),  ccColor::purpleColor(), ccColor::magentaColor(), ccColor::passColor()};
  std::uint32_t const values[] = {0x000000, 0x808080, 0xA0A0A4, 0xC0C0C0, 0xFFFFFF, 0xFF0000, 0x800000, 0xFFA500,
                                  0xFFFF00, 0x00FF00, 0x008000, 0x00FFFF, 0x0000FF, 0xA020F0, 0xFF00FF, 0xF3F3F3};
  ScopeProbe scope;
  prepare(scope);
  for (std::size_t i = 0; i < 16; ++i)
    for (long const w : {0, 1, 2})
      for (int const style : {0, 1}) {
        ccGraphicProps const props(stock[i], w, static_cast<cePenStyle>(style), false);
        scope.set(ccColor(1, 2, 3));
        scope.draw(ccLineSeg(ccPoint(2, 5), ccPoint(30, 5)), props);
        EXPECT_EQ(pelOf(scope.surface(), 4, 5), values[i]) << i << ' ' << w << ' ' << style;
      }
}

TEST_F(ScopeRules, penOfAnIndexAloneTakesItsColorFromTheMap)
{
  for (int const depth : {15, 16, 24, 32}) {
    screen(depth);
    ScopeProbe scope;
    prepare(scope);
    ccColor const index(static_cast<unsigned char>(77));
    scope.draw(ccLineSeg(ccPoint(2, 5), ccPoint(30, 5)), ccGraphicProps(index, 1, ceSolidPen, false));
    EXPECT_EQ(pelOf(scope.surface(), 4, 5), surfacePel(testColor(77), depth)) << depth;
    // A colour with both goes by its RGB.
    scope.draw(ccLineSeg(ccPoint(2, 9), ccPoint(30, 9)),
               ccGraphicProps(ccColor::paletteEntry(77, ccRGB(200, 100, 50)), 3, ceSolidPen, false));
    EXPECT_EQ(pelOf(scope.surface(), 4, 9), surfacePel(ccRGB(200, 100, 50), depth)) << depth;
  }
}

TEST_F(ScopeRules, brokenWideLineIsMovedToTheEdgeOfTheSurfaceThatItLiesBeside)
{
  // Both coordinates are clamped. Three columns about column -1 would show column 0 alone, which is half the width and 1
  // around the line; about column 0 they show two, and these are reported.
  ScopeProbe scope;
  create(scope);
  scope.draw(ccLineSeg(ccPoint(-1, 5), ccPoint(-1, 20)), pen(3, 1, 0, 1));
  EXPECT_EQ(inked(scope), ccUIRect(0, 5, 2, 15));
  EXPECT_EQ(scope.changeRect(), ccUIRect(0, 3, 2, 19));
  ScopeProbe solid;
  create(solid);
  solid.draw(ccLineSeg(ccPoint(-1, 5), ccPoint(-1, 20)), pen(3, 0, 0, 1));
  EXPECT_EQ(inked(solid), ccUIRect(0, 5, 1, 15));
}

TEST_F(ScopeRules, squareEndOfASlantedLineReportsItsCornerOutsideTheWidenedBox)
{
  // At width 3 the box is widened by 2, its right column is 11, and the corner lies 2.12 pels from column 10.
  ScopeProbe scope;
  create(scope);
  scope.draw(ccLineSeg(ccPoint(5, 5), ccPoint(10, 10)), pen(3, 0, 0, 2));
  EXPECT_NE(pelOf(scope.surface(), 12, 10), 0u);
  EXPECT_TRUE(scope.changeRect().contains(inked(scope)));
  EXPECT_TRUE(scope.changeRect().contains(ccUIRect(3, 3, 9, 9)));
  // And a part that begins with that column shows it.
  ScopeProbe other;
  create(other);
  std::unique_ptr<ccUIScope> const part(other.createChildScope(ccUIRect(12, 0, 10, height), true));
  part->draw(ccLineSeg(ccPoint(5, 5), ccPoint(10, 10)), pen(3, 0, 0, 2));
  EXPECT_EQ(inked(other), ccUIRect(12, 10, 1, 1));
}

TEST_F(ScopeRules, squareCapsOfASlantedChainReachBeyondHalfTheWidth)
{
  // The corner of a square end lies 0.707 widths from the vertex: 7 pels at width 10, where half the width and 1 are 6.
  ScopeProbe scope;
  create(scope);
  scope.draw(ccPolyline(Points{{15, 15}, {25, 15}}), pen(10, 0, 0, 2));
  EXPECT_EQ(inked(scope), ccUIRect(10, 10, 20, 10));
  scope.set(ccColor::blackColor());
  scope.clearChange();
  scope.draw(ccPolyline(Points{{15, 15}, {20, 20}}), pen(10, 0, 0, 2));
  ccUIRect const byHalfWidth(15 - 6, 15 - 6, 5 + 12, 5 + 12);
  EXPECT_FALSE(byHalfWidth.contains(inked(scope)));
  EXPECT_TRUE(scope.changeRect().contains(inked(scope)));
}

TEST_F(ScopeRules, roundAndBevelledJoinsStayWithinHalfTheWidthOfTheVertices)
{
  // However sharp the corner is; there are no mitred joins.
  for (long const join : {0, 1})
    for (double tip = 0; tip <= 6; tip += 0.5) {
      ScopeProbe scope;
      create(scope);
      scope.draw(ccPolyline(Points{{8, 15}, {28, 15 + tip}, {8, 15 + tip / 2}}), pen(8, 0, join, 1));
      ccUIRect const ink = inked(scope);
      EXPECT_LE(ink.right(), 28 + 4 + 1) << join << ' ' << tip;
      EXPECT_TRUE(scope.changeRect().contains(ink)) << join << ' ' << tip;
    }
}

// --- What figures report

TEST_F(ScopeRules, changeOfARectangleIsItsBoxWidenedByHalfTheWidthAndOne)
{
  struct {
    long width, h;
  } const rows[] = {{0, 1}, {1, 1}, {2, 2}, {3, 2}, {5, 3}, {8, 5}};
  ScopeProbe scope;
  createLarge(scope);
  for (auto const& row : rows) {
    scope.clearChange();
    // Box from (94.25, 195.5), 11.5 by 9.
    scope.draw(ccGenRect(ccPoint(100, 200), ccVector<2>(5.75, 4.5), ccRadian(0), ccVector<2>()), pen(row.width));
    EXPECT_EQ(scope.changeRect(),
              ccUIRect(94 - row.h - 1, 195 - row.h - 1, 12 + 2 * row.h + 2, 9 + 2 * row.h + 2)) << row.width;
    scope.clearChange();
    // Turned by an eighth with half sides of 10 sqrt 2: 20 to either side of the centre.
    double const half = 14.142135623730951;
    scope.draw(ccGenRect(ccPoint(100.5, 200.5), ccVector<2>(half, half), ccRadian(0.78539816339744828), ccVector<2>()),
               pen(row.width));
    EXPECT_EQ(scope.changeRect(),
              ccUIRect(80 - row.h - 1, 180 - row.h - 1, 40 + 2 * row.h + 2, 40 + 2 * row.h + 2)) << row.width;
  }
}

TEST_F(ScopeRules, changeOfAnEllipseIsItsBoxWithThreeAndTwoHalfWidthsAround)
{
  struct {
    long width, h;
  } const rows[] = {{0, 1}, {1, 1}, {2, 2}, {3, 2}, {5, 3}, {8, 5}};
  ScopeProbe scope;
  createLarge(scope);
  for (auto const& row : rows) {
    scope.clearChange();
    // Box from (93.75, 195.5), 13 by 8.5.
    scope.draw(ccEllipse(ccPoint(100.25, 199.75), 6.5, 4.25, ccRadian(0)), pen(row.width));
    EXPECT_EQ(scope.changeRect(), ccUIRect(93 - 3 * row.h, 195 - 3 * row.h, 13 + 5 * row.h, 9 + 5 * row.h)) << row.width;
  }
}

TEST_F(ScopeRules, changeOfAnArcIsItsBoxWidenedByTwoHalfWidths)
{
  struct {
    long width, h;
  } const rows[] = {{0, 1}, {1, 1}, {2, 2}, {5, 3}};
  ScopeProbe scope;
  createLarge(scope);
  for (auto const& row : rows) {
    scope.clearChange();
    // The lower right quarter of a circle of radius 30: from (100, 200), 30 by 30.
    scope.draw(ccEllipseArc(ccEllipse(ccPoint(100, 200), 30, 30, ccRadian(0)), ccRadian(0), ccRadian(1.5707963267948966)),
               pen(row.width));
    EXPECT_EQ(scope.changeRect(), ccUIRect(100 - 2 * row.h, 200 - 2 * row.h, 30 + 4 * row.h, 30 + 4 * row.h)) << row.width;
  }
}

TEST_F(ScopeRules, smallTurnedEllipseReportsWhatSticksOutOfThoseHalfWidths)
{
  // The box in whole pels isn't about the centre, and the turn carries that away to the right.
  ScopeProbe scope;
  create(scope);
  scope.draw(ccEllipse(ccPoint(20.75, 15.75), 1, 1, ccRadian(2.1)), pen());
  EXPECT_FALSE(ccUIRect(16, 11, 7, 7).contains(inked(scope)));
  EXPECT_TRUE(scope.changeRect().contains(inked(scope)));
}

TEST_F(ScopeRules, shortArcOfAThinEllipseReportsWhatSticksOutOfThoseHalfWidths)
{
  // Its ends follow rays through whole pels, here one pel in eight off, which is three rows along the steep side.
  ccEllipseArc const arc(ccEllipse(ccPoint(20, 15), 1, 8, ccRadian(0)), ccRadian(0.4), ccRadian(0.1));
  ScopeProbe scope;
  create(scope);
  scope.draw(arc, pen());
  ccUIRect const ink = inked(scope);
  EXPECT_FALSE(ccUIRect(18, 16, 5, 5).contains(ink));
  EXPECT_TRUE(scope.changeRect().contains(ink));
  // A part of the surface that only the ink meets shows it as well.
  ccUIRect const below(0, 21, width, height - 21);
  ScopeProbe other;
  create(other);
  std::unique_ptr<ccUIScope> const part(other.createChildScope(below, true));
  part->draw(arc, pen());
  EXPECT_FALSE(inked(other).isNull());
  EXPECT_EQ(inked(other), ink & below);
}

namespace {

// Paints with the pen and brush that it is given.
class Frame : public ccGraphic, public ccDrawsItself {
public:
  ccRect encloseRect() const override { return ccRect(ccPoint(10.5, 8.25), ccVector<2>(9.25, 7.5)); }
  void drawOn(void* painter) const override { static_cast<plat::Painter*>(painter)->roundRect({12, 10, 18, 14}, {0, 0}); }
};

}  // namespace

TEST_F(ScopeRules, graphicReportsItsBoxWidenedByHalfTheWidthAndIsGivenThePen)
{
  ccPtrHandle<ccGraphic> const frame(new Frame);
  struct {
    long width, h;
  } const rows[] = {{1, 1}, {2, 2}, {5, 3}};
  for (auto const& row : rows) {
    ScopeProbe scope;
    create(scope);
    scope.draw(*frame, pen(row.width));
    EXPECT_EQ(scope.changeRect(), ccUIRect(10 - row.h, 8 - row.h, 10 + 2 * row.h, 8 + 2 * row.h)) << row.width;
    // The frame's middle lines lie in columns 12 and 17 and rows 10 and 13.
    long const before = row.width / 2;
    EXPECT_EQ(inked(scope).ul(), ccPair<long>(12 - before, 10 - before)) << row.width;
  }
}

TEST_F(ScopeRules, phaseOfEachOperation)
{
  auto const method = [&](std::function<void(ccUIScope&)> const& draw) {
    ScopeProbe scope;
    create(scope);
    draw(scope);
    EXPECT_EQ(scope.starts, 1);
    EXPECT_EQ(scope.stops, 1);
    return scope.lastMethod;
  };
  unsigned char const pels[] = {1};
  ccUIRect clipped;
  std::function<void(ccUIScope&)> const painted[] = {
      [](ccUIScope& s) { s.draw(ccLineSeg(ccPoint(1, 1), ccPoint(5, 5)), pen()); },
      [](ccUIScope& s) { s.draw(ccPolygon(Points{{1, 1}, {5, 5}}), pen()); },
      [](ccUIScope& s) { s.draw(ccPolyline(Points{{1, 1}, {5, 5}}), pen()); },
      [](ccUIScope& s) { s.draw(ccGenRect(ccPoint(9, 9), ccVector<2>(4, 4), ccRadian(0), ccVector<2>()), pen()); },
      [](ccUIScope& s) { s.draw(ccEllipse(ccPoint(9, 9), 4, 4, ccRadian(0)), pen()); },
      [](ccUIScope& s) { s.draw(ccEllipseArc(ccEllipse(ccPoint(9, 9), 4, 4, ccRadian(0)), ccRadian(0), ccRadian(1)), pen()); },
      [](ccUIScope& s) { s.draw(std::string("x"), ccPoint(1, 1), ccColor::whiteColor(), ccColor::passColor(), ccUIFormat()); },
      [](ccUIScope& s) { s.fill(ccPoint(1, 1), ccColor::redColor(), ccColor::blackColor(), false); },
      [&](ccUIScope& s) { s.textRect("x", ccPoint(1, 1), ccUIFormat(), clipped); }};
  for (auto const& draw : painted)
    EXPECT_EQ(method(draw), ccWin32UIScope::kPaint);
  EXPECT_EQ(method([](ccUIScope& s) { s.draw(ccPoint(1, 1), pen()); }), ccWin32UIScope::kDirect);
  EXPECT_EQ(method([&](ccUIScope& s) {
    s.draw(ccRLEBuffer::fromPels(pels, 1, 1, 1), ccPoint(1, 1), std::vector<unsigned char>(), false, 0);
  }), ccWin32UIScope::kDirect);
  EXPECT_EQ(method([](ccUIScope& s) { s.set(ccUIRect(1, 1, 2, 2), ccColor::redColor()); }), ccWin32UIScope::kBlit);
}

TEST_F(ScopeRules, whatLiesOutsideStartsNoPhaseAndReportsNothing)
{
  unsigned char const pels[] = {1};
  std::function<void(ccUIScope&)> const outside[] = {
      [](ccUIScope& s) { s.draw(ccPoint(-1, 5), pen()); },
      [](ccUIScope& s) { s.draw(ccLineSeg(ccPoint(-9, 5), ccPoint(-4, 9)), pen(3)); },
      [](ccUIScope& s) { s.draw(ccPolygon(Points{{100, 1}, {120, 5}, {110, 9}}, 1), pen()); },
      [](ccUIScope& s) { s.draw(ccPolyline(Points{{1, -20}, {5, -9}}), pen(2)); },
      [](ccUIScope& s) { s.draw(ccGenRect(ccPoint(-30, 9), ccVector<2>(4, 4), ccRadian(1), ccVector<2>()), pen(3)); },
      [](ccUIScope& s) { s.draw(ccEllipse(ccPoint(99, 9), 4, 4, ccRadian(1)), pen(3)); },
      [](ccUIScope& s) { s.draw(ccEllipseArc(ccEllipse(ccPoint(99, 9), 4, 4, ccRadian(0)), ccRadian(0), ccRadian(1)), pen()); },
      [&](ccUIScope& s) {
        s.draw(ccRLEBuffer::fromPels(pels, 1, 1, 1), ccPoint(40, 1), std::vector<unsigned char>(), false, 0);
      },
      [](ccUIScope& s) { s.set(ccUIRect(40, 1, 2, 2), ccColor::redColor()); }};
  for (auto const& draw : outside) {
    ScopeProbe scope;
    create(scope);
    draw(scope);
    EXPECT_EQ(scope.starts, 0);
    EXPECT_TRUE(scope.changeRect().isNull());
  }
}

TEST_F(ScopeRules, figuresReportSeeThroughAndFillsAndTextReportOpaque)
{
  auto const opaque = [&](std::function<void(ccUIScope&)> const& draw) {
    ScopeProbe scope;
    create(scope);
    scope.opaque(false);
    scope.clearChange();
    draw(scope);
    EXPECT_FALSE(scope.changeRect().isNull());
    return (scope.stateBits() & ccUIScope::kOpaque) != 0;
  };
  EXPECT_FALSE(opaque([&](ccUIScope& s) { s.draw(ccPoint(5, 5), pen()); }));
  EXPECT_FALSE(opaque([&](ccUIScope& s) { s.draw(ccLineSeg(ccPoint(5, 5), ccPoint(9, 9)), pen()); }));
  ccGenRect const box(ccPoint(9, 9), ccVector<2>(4, 4), ccRadian(0), ccVector<2>());
  EXPECT_FALSE(opaque([&](ccUIScope& s) { s.draw(box, pen()); }));
  EXPECT_FALSE(opaque([&](ccUIScope& s) { s.draw(ccEllipse(ccPoint(9, 9), 4, 4, ccRadian(0)), pen()); }));
  EXPECT_FALSE(opaque([&](ccUIScope& s) { s.fill(ccPoint(9, 9), ccColor::redColor(), ccColor::blackColor(), false); }));
  // All of the scope, as an opaque change of a part doesn't make the whole opaque.
  EXPECT_TRUE(opaque([&](ccUIScope& s) { s.set(ccUIRect(0, 0, width, height), ccColor::redColor()); }));
  EXPECT_TRUE(opaque([&](ccUIScope& s) {
    s.draw(std::string("MMMMMMMM\nMMMMMMMM"), ccPoint(0, 0), ccColor::whiteColor(), ccColor::redColor(), ccUIFormat());
  }));
}

// --- Places of figures

TEST_F(ScopeRules, ellipseOfFractionsFillsItsBoxInWholePels)
{
  ScopeProbe scope;
  create(scope);
  // Whole part (20, 15), rest (0.5, 0.5): from floor(0.5 - 6) and floor(0.5 - 4) to ceil(6.5) - 1 and ceil(4.5) - 1.
  scope.draw(ccEllipse(ccPoint(20.5, 15.5), 6, 4, ccRadian(0)), pen());
  EXPECT_EQ(inked(scope), ccUIRect(14, 11, 13, 9));
}

TEST_F(ScopeRules, ellipse2WithoutARadiusIsALineAlongTheOtherAxis)
{
  struct {
    double rx, ry, turn;
    ccUIRect ink;
  } const rows[] = {{6, 0, 0, ccUIRect(9, 14, 13, 1)},
                    {0, 6, 0, ccUIRect(15, 8, 1, 13)},
                    {6, 0, 1.5707963267948966, ccUIRect(15, 8, 1, 13)},
                    {0, 6, 1.5707963267948966, ccUIRect(9, 14, 13, 1)}};
  for (auto const& row : rows) {
    ScopeProbe scope;
    create(scope);
    scope.draw(ccEllipse2(ccPoint(15, 14), row.rx, row.ry, ccRadian(row.turn)), pen());
    EXPECT_EQ(inked(scope), row.ink) << row.rx << ' ' << row.turn;
  }
}

TEST_F(ScopeRules, arcHasWholeRadiiOfAtLeastOne)
{
  struct {
    double rx, ry;
    ccUIRect ink;
  } const rows[] = {{6.9, 6.9, ccUIRect(14, 9, 13, 13)}, {6.2, 0.4, ccUIRect(14, 14, 13, 3)}};
  for (auto const& row : rows) {
    ScopeProbe scope;
    create(scope);
    ccEllipse const ellipse(ccPoint(20.7, 15.7), row.rx, row.ry, ccRadian(0));
    scope.draw(ccEllipseArc(ellipse, ccRadian(0), ccRadian(6.283185307179586)), pen());
    EXPECT_EQ(inked(scope), row.ink) << row.rx;
  }
}

TEST_F(ScopeRules, rectangleOfFractionsBeginsAtTheRoundedCornerWithFlooredSides)
{
  ScopeProbe scope;
  create(scope);
  // Corner (10.25, 8.5), so (10, 9); sides floor(10.5) and floor(8.9) from edge to edge.
  scope.draw(ccGenRect(ccPoint(15.5, 12.95), ccVector<2>(5.25, 4.45), ccRadian(0), ccVector<2>()), pen());
  EXPECT_EQ(inked(scope), ccUIRect(10, 9, 11, 9));
}

TEST_F(ScopeRules, rectangleWithRoundCornersHasQuartersOfTwiceTheRounding)
{
  // Quarters of a circle seven pels wide: 3, 2.8, 2.2 and 0 across at 0 to 3 along.
  ScopeProbe scope;
  create(scope);
  scope.draw(ccGenRect(ccPoint(7, 5), ccVector<2>(6, 4), ccRadian(0), ccVector<2>(3.5, 3.5)), pen());
  EXPECT_EQ(rows(scope, ccUIRect(0, 0, 15, 11)), "...............\n"
                                                 "...#########...\n"
                                                 "..#.........#..\n"
                                                 ".#...........#.\n"
                                                 ".#...........#.\n"
                                                 ".#...........#.\n"
                                                 ".#...........#.\n"
                                                 ".#...........#.\n"
                                                 "..#.........#..\n"
                                                 "...#########...\n"
                                                 "...............\n");
}

TEST_F(ScopeRules, verticesLieOnTheNearestPelsHalvesUpward)
{
  ScopeProbe scope;
  create(scope);
  scope.draw(ccPolyline(Points{{4.4, 5.5}, {9.5, 5.6}, {9.6, 9.49}}), pen());
  // (4, 6) to (10, 6) to (10, 9), the last pel left out.
  EXPECT_EQ(rows(scope, ccUIRect(3, 5, 9, 5)), ".........\n"
                                               ".#######.\n"
                                               ".......#.\n"
                                               ".......#.\n"
                                               ".........\n");
}

TEST_F(ScopeRules, bezierPointsWithoutRoundingAreThoseOfTheWholeCurve)
{
  // 0.2761423749154 of each side from its middle, which is 0.6 - 0.3238576250846; a rounding beyond the half side counts as it.
  plat::Point none[kBezierPoints], whole[kBezierPoints], beyond[kBezierPoints];
  plat::Rect const box{10, 20, 210, 120};
  cf_rectToBezier(box, ccVector<2>(), 0, ccVector<2>(), none);
  cf_rectToBezier(box, ccVector<2>(100, 50), 0, ccVector<2>(), whole);
  cf_rectToBezier(box, ccVector<2>(500, 70), 0, ccVector<2>(), beyond);
  for (int i = 0; i < kBezierPoints; ++i) {
    EXPECT_EQ(none[i], whole[i]) << i;
    EXPECT_EQ(beyond[i], whole[i]) << i;
  }
  EXPECT_EQ(none[1], (plat::Point{10, 70 - 27}));   // 27.6 of 100
  EXPECT_EQ(none[2], (plat::Point{110 - 55, 20}));  // 55.2 of 200
  // Separately per axis: 0.6 - 0.5 * 0.3238576250846 of 200, and 0.6 - 0.1 * 0.3238576250846 of 100.
  plat::Point mixed[kBezierPoints];
  cf_rectToBezier(box, ccVector<2>(50, 5), 0, ccVector<2>(), mixed);
  EXPECT_EQ(mixed[2], (plat::Point{110 - 87, 20}));
  EXPECT_EQ(mixed[1], (plat::Point{10, 70 - 56}));
}

// --- Colours of pels

TEST_F(ScopeRules, colorsOfPointsAtEachDepth)
{
  ccColor const direct(200, 100, 50), index(static_cast<unsigned char>(99));
  ccColor const both = ccColor::paletteEntry(99, ccRGB(200, 100, 50));
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    prepare(scope);
    auto const pel = [&](ccColor const& c) {
      scope.draw(ccPoint(7, 8), ccGraphicProps(c, 1, ceSolidPen, false));
      return pelOf(scope.surface(), 7, 8);
    };
    std::uint32_t nearest = 0;
    int best = 1 << 30;
    for (std::uint32_t i = 0; i < 256; ++i) {
      ccRGB const c = testColor(i);
      int const d = (c.r - 200) * (c.r - 200) + (c.g - 100) * (c.g - 100) + (c.b - 50) * (c.b - 50);
      if (d < best)
        best = d, nearest = i;
    }
    EXPECT_EQ(pel(direct), depth == 8 ? nearest : surfacePel(ccRGB(200, 100, 50), depth)) << depth;
    EXPECT_EQ(pel(index), depth == 8 ? 99u : surfacePel(testColor(99), depth)) << depth;
    EXPECT_EQ(pel(both), depth == 8 ? 99u : surfacePel(ccRGB(200, 100, 50), depth)) << depth;
    EXPECT_EQ(pel(ccColor::orangeColor()), depth == 8 ? 245u : surfacePel(ccRGB(255, 165, 0), depth)) << depth;
  }
}

TEST_F(ScopeRules, colorsOfRunsAtEachDepth)
{
  unsigned char const pels[] = {3, 1, 0};
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    prepare(scope);
    // 3 lies beyond the map and stands for itself.
    scope.draw(ccRLEBuffer::fromPels(pels, 3, 1, 3), ccPoint(4, 5), std::vector<unsigned char>{200, 100}, false, 0);
    for (long i = 0; i < 3; ++i) {
      unsigned char const index = i == 0 ? 3 : i == 1 ? 100 : 200;
      EXPECT_EQ(pelOf(scope.surface(), 4 + i, 5), depth == 8 ? index : surfacePel(testColor(index), depth)) << depth;
    }
  }
}

TEST_F(ScopeRules, passColorFillsAnOverlayPlaneWithItsKeyAndAnImagePlaneNotAtAll)
{
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe overlay(true), image;
    create(overlay);
    create(image);
    for (ScopeProbe* scope : {&overlay, &image}) {
      scope->palette(testColors());
      scope->colorMap(testColors());
      scope->set(ccColor::redColor());
      scope->clearChange();
      scope->set(ccUIRect(5, 6, 7, 8), ccColor::passColor());
      EXPECT_EQ(scope->changeRect(), ccUIRect(5, 6, 7, 8)) << depth;
    }
    std::uint32_t const key = depth == 8 ? 243u : surfacePel(ccRGB(243, 243, 243), depth);
    EXPECT_EQ(pelOf(overlay.surface(), 5, 6), key) << depth;
    EXPECT_EQ(pelOf(overlay.surface(), 11, 13), key) << depth;
    EXPECT_NE(pelOf(overlay.surface(), 12, 13), key) << depth;
    EXPECT_EQ(pelOf(image.surface(), 5, 6), pelOf(image.surface(), 0, 0)) << depth;
  }
}

// --- Run-length rows

TEST_F(ScopeRules, runRowWhoseFirstCountIsZeroIsEmpty)
{
  // Rows of 3 pels, none, and 1 pel; what would follow the end of the empty row is the third row.
  unsigned char const runs[] = {5, 3, 0, 0, 9, 0, 6, 1, 0, 0};
  ccRLEBuffer const image = ccRLEBuffer::fromRuns(runs, 3, 3);
  ASSERT_FALSE(image.isNull());
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    prepare(scope);
    scope.set(ccColor::blackColor());
    scope.draw(image, ccPoint(10, 10), std::vector<unsigned char>(), false, 0);
    EXPECT_EQ(rows(scope, ccUIRect(9, 9, 5, 5)), ".....\n"
                                                 ".###.\n"
                                                 ".....\n"
                                                 ".#...\n"
                                                 ".....\n")
        << depth;
  }
}

TEST_F(ScopeRules, seeThroughRunsCutOnTheLeftKeepTheirPlaces)
{
  // The cut eats the first run of the key and a part of the next.
  unsigned char const pels[] = {0, 0, 5, 5, 5, 0, 0, 6, 6, 0};
  ScopeProbe scope;
  prepare(scope);
  for (long cut = 0; cut <= 10; ++cut) {
    scope.set(ccColor::blackColor());
    scope.draw(ccRLEBuffer::fromPels(pels, 10, 1, 10), ccPoint(static_cast<double>(-cut), 3), std::vector<unsigned char>(),
               true, 0);
    std::string const whole = "..###..##...........";
    EXPECT_EQ(rows(scope, ccUIRect(0, 3, 10, 1)), whole.substr(static_cast<std::size_t>(cut), 10) + "\n") << cut;
  }
}

// --- Text

TEST_F(ScopeRules, textMovesByItsAlignmentAndNothingElse)
{
  for (std::string const text : {"H", "Hg\nj"}) {
    ScopeProbe scope;
    createLarge(scope);
    auto const drawn = [&](int a) {
      scope.set(ccColor::blackColor());
      scope.clearChange();
      ccUIFormat const format(static_cast<ccUIFormat::Alignment>(a));
      scope.draw(text, ccPoint(100, 80), ccColor::whiteColor(), ccColor::redColor(), format);
      return scope.changeRect();
    };
    ccUIRect const first = drawn(0);
    EXPECT_EQ(first.ul(), ccPair<long>(100, 80));
    for (int a = 1; a < 9; ++a) {
      ccUIRect const r = drawn(a);
      // Halves of an odd size go towards the upper left of the point.
      EXPECT_EQ(r.sz(), first.sz()) << a;
      EXPECT_EQ(r.top(), 80 - (a / 3 == 0 ? 0 : a / 3 == 1 ? first.height() / 2 : first.height())) << a;
      if (a % 3 == 0)
        EXPECT_EQ(r.left(), 100) << a;
      else if (a % 3 == 2)
        EXPECT_EQ(r.right(), 100) << a;
      else
        EXPECT_TRUE(r.left() == 100 - first.width() / 2 || r.right() == 100 + first.width() / 2) << a;
    }
  }
}

TEST_F(ScopeRules, textRectangleOutsideIsGivenUncutAndItsPartInsideIsNull)
{
  ScopeProbe scope;
  create(scope);
  ccUIRect clipped(1, 2, 3, 4);
  ccUIRect const far = scope.textRect("abc", ccPoint(500, 400), ccUIFormat(), clipped);
  EXPECT_EQ(far.ul(), ccPair<long>(500, 400));
  EXPECT_TRUE(clipped.isNull());
  ccUIRect const half = scope.textRect("abc", ccPoint(-5, -6), ccUIFormat(), clipped);
  EXPECT_EQ(half, far + ccPair<long>(-505, -406));
  EXPECT_EQ(clipped, ccUIRect(0, 0, half.width() - 5, half.height() - 6));
}

TEST_F(ScopeRules, textIsFoundInAPartOfTheSurfaceInItsOwnCoordinates)
{
  ScopeProbe scope;
  create(scope);
  std::unique_ptr<ccUIScope> const own(scope.createChildScope(ccUIRect(10, 8, 20, 15), false));
  ccUIRect clipped;
  ccUIRect const full = own->textRect("abc", ccPoint(2, 3), ccUIFormat(), clipped);
  EXPECT_EQ(full.ul(), ccPair<long>(2, 3));
  EXPECT_EQ(clipped, full & ccUIRect(0, 0, 20, 15));
  own->draw(std::string("abc"), ccPoint(2, 3), ccColor::whiteColor(), ccColor::redColor(), ccUIFormat());
  EXPECT_EQ(own->changeRect(), clipped);
  EXPECT_EQ(inked(scope), clipped + ccPair<long>(10, 8));
}

TEST_F(ScopeRules, textWithAPassColorBackgroundIsDrawnTransparent)
{
  for (bool const through : {true, false}) {
    ScopeProbe scope;
    create(scope);
    scope.set(ccColor::blueColor());
    ccUIRect clipped;
    scope.textRect("il", ccPoint(5, 4), ccUIFormat(), clipped);
    scope.draw(std::string("il"), ccPoint(5, 4), ccColor::whiteColor(),
               through ? ccColor::passColor() : ccColor(243, 243, 243), ccUIFormat());
    std::vector<std::uint32_t> const pels = pelsOf(scope.surface());
    long const text = std::count(pels.begin(), pels.end(), 0xFFFFFFu), ground = std::count(pels.begin(), pels.end(), 0xFFu);
    long const back = std::count(pels.begin(), pels.end(), 0xF3F3F3u);
    EXPECT_GT(text, 10);
    EXPECT_EQ(text + ground + back, width * height);
    EXPECT_EQ(back, through ? 0 : clipped.width() * clipped.height() - text);
  }
}

TEST_F(ScopeRules, ampersandsAreLetters)
{
  ScopeProbe scope;
  create(scope);
  ccUIRect clipped;
  long const one = scope.textRect("a", ccPoint(0, 0), ccUIFormat(), clipped).width();
  long const two = scope.textRect("aa", ccPoint(0, 0), ccUIFormat(), clipped).width();
  EXPECT_EQ(two, 2 * one);
  EXPECT_GT(scope.textRect("&a", ccPoint(0, 0), ccUIFormat(), clipped).width(), one);
  EXPECT_GT(scope.textRect("a&&", ccPoint(0, 0), ccUIFormat(), clipped).width(),
            scope.textRect("a&", ccPoint(0, 0), ccUIFormat(), clipped).width());
}

TEST_F(ScopeRules, emptyTextHasNoRectangleAndStartsNoPhase)
{
  ScopeProbe scope;
  create(scope);
  ccUIRect clipped(1, 2, 3, 4);
  EXPECT_EQ(scope.textRect("", ccPoint(3, 3), ccUIFormat(), clipped), ccUIRect());
  EXPECT_EQ(clipped, ccUIRect());
  scope.draw(std::string(), ccPoint(3, 3), ccColor::whiteColor(), ccColor::redColor(), ccUIFormat());
  EXPECT_EQ(scope.starts, 0);
  EXPECT_TRUE(scope.changeRect().isNull());
}

// --- Floods

TEST_F(ScopeRules, floodOfAPartStopsAtItsEdgeAndReportsWhatItFilled)
{
  ScopeProbe scope;
  create(scope);
  std::unique_ptr<ccUIScope> const own(scope.createChildScope(ccUIRect(10, 8, 20, 15), false));
  own->newDisplayClipRect(ccUIRect(12, 0, 40, 20));
  own->fill(ccPoint(5, 5), ccColor::whiteColor(), ccColor::blackColor(), false);
  EXPECT_EQ(inked(scope), ccUIRect(12, 8, 18, 12));
  EXPECT_EQ(own->changeRect(), ccUIRect(2, 0, 18, 12));
  own->clearChange();
  own->fill(ccPoint(1, 5), ccColor::redColor(), ccColor::blackColor(), false);  // outside the display's clip
  EXPECT_TRUE(own->changeRect().isNull());
}
