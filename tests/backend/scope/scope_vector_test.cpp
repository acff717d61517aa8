// Lines, text and flood fill.
#include "canvas/format.h"
#include "canvas/graphic_props.h"
#include "geometry/lines.h"
#include "tests/backend/scope/scope_fixture.h"

class ScopeVector : public ScopeTest {
protected:
  static ccGraphicProps pen(ccColor const& c, long w = 1, cePenStyle style = ceSolidPen)
  {
    return ccGraphicProps(c, w, style, false);
  }

  // Every painted pel as a letter: # for white.
  static std::vector<std::string> picture(ScopeProbe& scope, ccUIRect const& r)
  {
    std::vector<std::uint32_t> const pels = pelsOf(scope.surface());
    std::vector<std::string> rows;
    for (long y = r.top(); y < r.bottom(); ++y) {
      rows.emplace_back();
      for (long x = r.left(); x < r.right(); ++x)
        rows.back() += pels[static_cast<std::size_t>(y * width + x)] == 0 ? '.' : '#';
    }
    return rows;
  }
};

TEST_F(ScopeVector, lineOfOnePelPaintsItsLastPel)
{
  ScopeProbe scope;
  create(scope);
  scope.drawStart(ccPoint(1, 1));
  scope.drawTo(ccPoint(4, 1), pen(ccColor::whiteColor()));
  scope.drawTo(ccPoint(4, 3), pen(ccColor::whiteColor()));
  EXPECT_EQ(picture(scope, ccUIRect(0, 0, 7, 6)),
            (std::vector<std::string>{".......", ".####..", "....#..", "....#..", ".......", "......."}));
  EXPECT_EQ(scope.currentPoint(), ccPair<long>(4, 3));
  EXPECT_EQ(scope.lastMethod, ccWin32UIScope::kPaint);
}

TEST_F(ScopeVector, widerLineEndsWithItsGeometry)
{
  ScopeProbe scope;
  create(scope);
  ccGraphicProps props = pen(ccColor::whiteColor(), 2);
  props.capStyle(1);
  scope.drawStart(ccPoint(2, 3));
  scope.drawTo(ccPoint(8, 3), props);
  EXPECT_EQ(inked(scope), ccUIRect(2, 2, 6, 2));
}

TEST_F(ScopeVector, segmentIsALineBetweenItsEnds)
{
  ScopeProbe scope;
  create(scope);
  scope.draw(ccLineSeg(ccPoint(5, 5), ccPoint(2, 2)), pen(ccColor::whiteColor()));
  EXPECT_EQ(picture(scope, ccUIRect(1, 1, 6, 6)),
            (std::vector<std::string>{"......", ".#....", "..#...", "...#..", "....#.", "......"}));
}

TEST_F(ScopeVector, changeOfALineIsWidenedByHalfItsWidth)
{
  ScopeProbe scope;
  create(scope);
  struct {
    long width, cap, reach;
  } const rows[] = {{0, 0, 1}, {1, 0, 1}, {2, 0, 2}, {3, 1, 2}, {5, 0, 3}, {5, 2, 4}, {1, 2, 1}};
  for (auto const& row : rows) {
    scope.clearChange();
    ccGraphicProps props = pen(ccColor::whiteColor(), row.width);
    props.capStyle(row.cap);
    scope.drawStart(ccPoint(20, 15));
    scope.drawToRel(-4, 3, props);
    EXPECT_EQ(scope.changeRect(), ccUIRect(16 - row.reach, 15 - row.reach, 4 + 2 * row.reach, 3 + 2 * row.reach))
        << row.width << ' ' << row.cap;
    EXPECT_EQ(scope.stateBits() & ccUIScope::kOpaque, 0u);
  }
}

TEST_F(ScopeVector, penMovesAlsoWhereNothingIsDrawn)
{
  ScopeProbe scope;
  scope.drawStart(ccPoint(3, 4));
  scope.drawToRel(5, 6, pen(ccColor::whiteColor()));
  EXPECT_EQ(scope.currentPoint(), ccPair<long>(8, 10));
  create(scope);
  scope.drawStart(ccPoint(-100, -100));
  scope.drawTo(ccPoint(-50, -50), pen(ccColor::whiteColor()));
  EXPECT_EQ(scope.starts, 0);
  EXPECT_EQ(scope.currentPoint(), ccPair<long>(-50, -50));
}

TEST_F(ScopeVector, linesOfAChildEndAtItsEdge)
{
  ScopeProbe scope;
  create(scope);
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(10, 10, 5, 5), true));
  child->drawStart(ccPoint(0, 12));
  child->drawTo(ccPoint(39, 12), pen(ccColor::whiteColor()));
  EXPECT_EQ(inked(scope), ccUIRect(10, 12, 5, 1));
}

TEST_F(ScopeVector, displayClipCutsWhatAChildPaints)
{
  ScopeProbe scope;
  create(scope);
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(10, 10, 5, 5), true));
  child->newDisplayClipRect(ccUIRect(12, 0, 2, 30));
  child->drawStart(ccPoint(0, 12));
  child->drawTo(ccPoint(39, 12), pen(ccColor::whiteColor()));
  EXPECT_EQ(inked(scope), ccUIRect(12, 12, 2, 1));
}

TEST_F(ScopeVector, longBrokenWideLineIsCutToTheSurface)
{
  ScopeProbe scope;
  create(scope);
  ccGraphicProps props = pen(ccColor::whiteColor(), 3, ceDashPen);
  props.capStyle(1);
  scope.drawStart(ccPoint(-1e6, 10));
  scope.drawTo(ccPoint(1e6, 10), props);
  // The dashes begin at the clamped end: 3 widths painted, 1 left out.
  std::vector<std::uint32_t> const pels = pelsOf(scope.surface());
  for (long x = 0; x < width; ++x)
    EXPECT_EQ(pels[static_cast<std::size_t>(10 * width + x)] != 0, x % 12 < 9) << x;
  EXPECT_EQ(scope.currentPoint(), ccPair<long>(1000000, 10));
}

TEST_F(ScopeVector, cosmeticDashFollowsThePattern)
{
  ScopeProbe scope;
  create(scope);
  scope.drawStart(ccPoint(0, 5));
  scope.drawTo(ccPoint(39, 5), pen(ccColor::whiteColor(), 1, ceDotPen));
  std::vector<std::uint32_t> const pels = pelsOf(scope.surface());
  for (long x = 0; x < 39; ++x)
    EXPECT_EQ(pels[static_cast<std::size_t>(5 * width + x)] != 0, x % 6 < 3) << x;
}

TEST_F(ScopeVector, colorsOfLinesAtEveryDepth)
{
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    create(scope);
    scope.colorMap(testColors());
    scope.drawStart(ccPoint(0, 0));
    scope.drawTo(ccPoint(5, 0), pen(ccColor::whiteColor()));
    if (depth != 8)
      EXPECT_EQ(pelOf(scope.surface(), 5, 0), surfacePel(ccRGB(255, 255, 255), depth));
    else
      EXPECT_NE(pelOf(scope.surface(), 5, 0), 0u);
  }
}

// --- Text

TEST_F(ScopeVector, textReportsWhatItPaintsAndEmptyTextNothing)
{
  ScopeProbe scope;
  create(scope);
  scope.draw(std::string(), ccPoint(2, 2), ccColor::whiteColor(), ccColor::passColor(), ccUIFormat());
  EXPECT_EQ(scope.starts, 0);
  scope.draw(std::string("Hi"), ccPoint(2, 2), ccColor::whiteColor(), ccColor::passColor(), ccUIFormat());
  EXPECT_FALSE(inked(scope).isNull());
  EXPECT_TRUE(scope.changeRect().contains(inked(scope)));
  EXPECT_GE(inked(scope).left(), 2);
  EXPECT_GE(inked(scope).top(), 2);
}

TEST_F(ScopeVector, textOnPassColorLeavesTheGroundAndOtherwisePaintsIt)
{
  ScopeProbe scope;
  create(scope);
  scope.set(ccColor::blueColor());
  scope.draw(std::string("i"), ccPoint(2, 2), ccColor::whiteColor(), ccColor::passColor(), ccUIFormat());
  std::vector<std::uint32_t> const seeThrough = pelsOf(scope.surface());
  EXPECT_EQ(std::count(seeThrough.begin(), seeThrough.end(), 0xFF0000u), 0);
  scope.clearChange();
  scope.draw(std::string("i"), ccPoint(2, 2), ccColor::whiteColor(), ccColor::redColor(), ccUIFormat());
  std::vector<std::uint32_t> const opaque = pelsOf(scope.surface());
  EXPECT_GT(std::count(opaque.begin(), opaque.end(), 0xFF0000u), 0);
  ccUIRect clipped;
  EXPECT_EQ(scope.changeRect(), scope.textRect("i", ccPoint(2, 2), ccUIFormat(), clipped));
}

TEST_F(ScopeVector, textRectangleLiesByTheNineAlignments)
{
  ScopeProbe scope;
  create(scope);
  ccUIRect clipped;
  ccUIRect const base = scope.textRect("abc", ccPoint(10, 10), ccUIFormat(), clipped);
  EXPECT_EQ(base.ul(), ccPair<long>(10, 10));
  EXPECT_GT(base.width(), 0);
  EXPECT_GT(base.height(), 8);
  for (int a = 0; a < 9; ++a) {
    ccUIFormat const format(static_cast<ccUIFormat::Alignment>(a));
    long const w = base.width(), h = base.height();
    long const x = a % 3 == 0 ? 10 : a % 3 == 1 ? 10 - w / 2 : 10 - w;
    long const y = a / 3 == 0 ? 10 : a / 3 == 1 ? 10 - h / 2 : 10 - h;
    EXPECT_EQ(scope.textRect("abc", ccPoint(10, 10), format, clipped), ccUIRect(x, y, w, h)) << a;
    EXPECT_EQ(clipped, ccUIRect(x, y, w, h) & ccUIRect(0, 0, width, height)) << a;
  }
  EXPECT_EQ(scope.textRect("", ccPoint(10, 10), ccUIFormat(), clipped), ccUIRect());
  EXPECT_EQ(clipped, ccUIRect());
}

TEST_F(ScopeVector, drawnTextLiesInsideItsRectangle)
{
  for (int a = 0; a < 9; ++a) {
    ScopeProbe scope;
    create(scope);
    ccUIFormat const format(static_cast<ccUIFormat::Alignment>(a));
    ccUIRect clipped;
    scope.textRect("H", ccPoint(20, 15), format, clipped);
    scope.draw(std::string("H"), ccPoint(20, 15), ccColor::whiteColor(), ccColor::passColor(), format);
    ASSERT_FALSE(inked(scope).isNull()) << a;
    EXPECT_TRUE(clipped.contains(inked(scope))) << a;
  }
}

TEST_F(ScopeVector, fontsComeFromTheTableAndElseFromTheSystem)
{
  ScopeProbe scope;
  create(scope);
  plat::FontDesc big;
  big.height = 24;
  HFONT const font = plat::platform().objects.createFont(big);
  ccUIFormat format;
  ccUIRect clipped;
  format.fontId(-1);
  long const stock = scope.textRect("Hg", ccPoint(0, 0), format, clipped).height();
  scope.fontTable({font});
  EXPECT_EQ(scope.textRect("Hg", ccPoint(0, 0), format, clipped).height(), stock);
  format.fontId(1);
  EXPECT_EQ(scope.textRect("Hg", ccPoint(0, 0), format, clipped).height(), stock);
  format.fontId(0);
  long const tall = scope.textRect("Hg", ccPoint(0, 0), format, clipped).height();
  EXPECT_GT(tall, stock);
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(0, 0, 20, 20), true));
  EXPECT_EQ(child->textRect("Hg", ccPoint(0, 0), format, clipped).height(), tall);
  scope.fontTable({});
  plat::platform().objects.deleteFont(font);
}

// --- Flood fill

TEST_F(ScopeVector, fillReachesUpToTheBorder)
{
  ScopeProbe scope;
  create(scope);
  scope.set(ccUIRect(5, 5, 10, 10), ccColor::redColor());
  scope.set(ccUIRect(6, 6, 8, 8), ccColor::blueColor());
  scope.set(ccUIRect(8, 8, 2, 2), ccColor::greenColor());
  scope.clearChange();
  scope.fill(ccPoint(7, 7), ccColor::whiteColor(), ccColor::redColor(), true);
  EXPECT_EQ(pelOf(scope.surface(), 8, 8), 0xFFFFFFu);
  EXPECT_EQ(pelOf(scope.surface(), 13, 13), 0xFFFFFFu);
  EXPECT_EQ(pelOf(scope.surface(), 5, 5), 0xFF0000u);
  EXPECT_EQ(scope.changeRect(), ccUIRect(6, 6, 8, 8));
}

TEST_F(ScopeVector, fillOfASurfaceStopsAtOtherColors)
{
  ScopeProbe scope;
  create(scope);
  scope.set(ccUIRect(6, 6, 8, 8), ccColor::blueColor());
  scope.set(ccUIRect(8, 8, 2, 2), ccColor::greenColor());
  scope.fill(ccPoint(7, 7), ccColor::whiteColor(), ccColor::blueColor(), false);
  EXPECT_EQ(pelOf(scope.surface(), 6, 13), 0xFFFFFFu);
  EXPECT_EQ(pelOf(scope.surface(), 8, 8), 0x00FF00u);
  EXPECT_EQ(pelOf(scope.surface(), 5, 5), 0u);
}
