// The pel grids: when they appear, and where each line lies by a computation of its own.
#include "tests/support/test_display.h"
#include "tests/ui/display/test_images.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr std::uint32_t kMain = 0x0000FF, kSub = 0x008000;  // blue, dark green

struct Grid {
  long grid = -1, sub = -4;
};

// All lines of the whole plane that fall on the display, sub-pel ones first.
void drawGrid(plain::Picture& p, plain::View const& v, Grid const& g, bool gridOn, bool subOn)
{
  auto const column = [&](double imageX, std::uint32_t ink) {
    long const x = plain::pelOf(plain::displayX(v, imageX));
    for (long y = 0; y < p.height(); ++y)
      p.put(x, y, ink);
  };
  auto const row = [&](double imageY, std::uint32_t ink) {
    long const y = plain::pelOf(plain::displayY(v, imageY));
    for (long x = 0; x < p.width(); ++x)
      p.put(x, y, ink);
  };
  constexpr long far = 400;  // image pels around the middle: more than any display here shows
  if (subOn)
    for (long i = -far; i <= far; ++i)
      for (long k = 0; k < g.sub; ++k) {
        double const at = static_cast<double>(i) + static_cast<double>(k) / static_cast<double>(g.sub);
        column(at, kSub);
        row(at, kSub);
      }
  if (gridOn)
    for (long i = -far / g.grid * g.grid; i <= far; i += g.grid) {
      column(static_cast<double>(i), kMain);
      row(static_cast<double>(i), kMain);
    }
}

plain::Picture pictureOf(ccPelBuffer_const<unsigned char> const& image, plain::View const& v, Grid const& g, bool gridOn,
                         bool subOn)
{
  plain::Picture p = plain::displayPicture(v, cfGreyOnSurface(image, 32), cfSurround(32));
  drawGrid(p, v, g, gridOn, subOn);
  return p;
}

TEST(DisplayGrid, ofOneAtMag4ShowsNothingAndAtMag5Does)
{
  TestDisplay test(60, 50);
  ccPelBuffer<unsigned char> const image = cfRandom8(20, 20, 1);
  test->image(image, true);
  test->grid(1);
  for (long m : {1L, 4L, 5L}) {
    test->mag(m);
    plain::View const v = cfView(60, 50, 20, 20, static_cast<double>(m));
    EXPECT_EQ(plain::firstDifference(pictureOf(image, v, {1, -4}, m == 5, false), test.screenPels()), "") << m;
  }
}

TEST(DisplayGrid, appearsWhenTheZoomMakesItReadable)
{
  struct {
    double mag;
    Grid grid;
    bool gridOn, subOn;
  } const cases[] = {
      {2, {2, -4}, false, false}, {2, {3, -4}, true, false},   {1, {4, -4}, false, false}, {1, {5, -4}, true, false},
      {5.9, {1, -4}, true, false}, {4.9, {1, -4}, false, false}, {0.5, {50, -4}, false, false}, {40, {0, -4}, false, false},
      {40, {-1, -4}, false, false}, {40, {-1, 1}, false, false}, {26, {-1, 4}, false, false}, {27, {-1, 4}, false, true},
      {8, {-1, 2}, false, false}, {9, {-1, 2}, false, true},   {27, {1, 4}, true, true},   {27, {3, 4}, true, true},
      {32, {2, 3}, true, true}};
  for (auto const& c : cases) {
    TestDisplay test(90, 70);
    ccPelBuffer<unsigned char> const image = cfRandom8(40, 40, 1);
    test->image(image, true);
    test->magExact(c.mag);
    test->grid(c.grid.grid);
    test->subpixelGrid(c.grid.sub);
    plain::View const v = cfView(90, 70, 40, 40, c.mag);
    EXPECT_EQ(plain::firstDifference(pictureOf(image, v, c.grid, c.gridOn, c.subOn), test.screenPels()), "")
        << c.mag << " " << c.grid.grid << " " << c.grid.sub;
  }
}

TEST(DisplayGrid, liesRightAtEveryZoomAndPan)
{
  Random random(5);
  for (int i = 0; i < 60; ++i) {
    TestDisplay test(90, 70, {.rect = ccUIRect(5, 4, 70, 60)});
    ccPelBuffer<unsigned char> image = cfRandom8(31, 18, 1);
    image.offset({cfPick(random, -9, 9), 3});  // the grid counts from the image's first pel
    test->image(image, true);
    double const m = i % 2 ? cfPickReal(random, 5, 60) : static_cast<double>(cfPick(random, 5, 60));
    Grid const g{cfPick(random, 1, 7), cfPick(random, -1, 6)};
    double const panX = cfPickReal(random, -30, 30), panY = cfPickReal(random, -18, 18);
    test->magExact(m);
    test->pan({panX, panY});
    test->grid(g.grid);
    test->subpixelGrid(g.sub);
    bool const subOn = g.sub > 1 && static_cast<long>(m) / (g.sub - 1) > 8;
    plain::View const v = cfView(70, 60, 31, 18, m, panX, panY);
    ASSERT_EQ(plain::firstDifference(pictureOf(image, v, g, true, subOn), test.screenPels()), "")
        << m << " " << g.grid << " " << g.sub << " " << panX << " " << panY;
  }
}

TEST(DisplayGrid, settingDrawsAtOnceButColoursOnlyStore)
{
  TestDisplay test(60, 50);
  test->image(cfRandom8(20, 20, 1), true);
  test->mag(30);
  test.clearLogs();
  test->grid(2);
  test->subpixelGrid(3);
  EXPECT_EQ(test->redraws.size(), 2u);
  EXPECT_EQ(test->grid(), 2);
  EXPECT_EQ(test->subpixelGrid(), 3);

  test->gridColor(ccColor::redColor());
  test->subpixelGridColor(ccColor::yellowColor());
  EXPECT_EQ(test->redraws.size(), 2u);
  EXPECT_EQ(test->gridColor(), ccColor::redColor());
  EXPECT_EQ(test->subpixelGridColor(), ccColor::yellowColor());
  test->fullDraw(ccUITablet::bothLayers);
  long reds = 0, yellows = 0;
  for (std::uint32_t pel : test.screenPels()) {
    reds += pel == 0xFF0000;
    yellows += pel == 0xFFFF00;
    ASSERT_TRUE(pel != kMain && pel != kSub);
  }
  EXPECT_GT(reds, 0);
  EXPECT_GT(yellows, 0);
}

TEST(DisplayGrid, liesUnderShapes)
{
  TestDisplay test(60, 50);
  test->image(cfRandom8(20, 20, 1), true);
  test->mag(10);
  test->grid(1);
  auto* const shape = new BoxShape(test.displayFrame(), ccVector<2>(10, 10), 30);
  shape->color(ccColor::redColor());
  shape->condVisible(true);
  test->fullDraw(ccUITablet::bothLayers);
  for (long y = 10; y < 40; ++y)
    for (long x = 10; x < 40; ++x)
      ASSERT_EQ(test.scope().screenRGB(x, y), ccRGB(255, 0, 0));
}

TEST(DisplayGrid, isDrawnWithoutAnImageToo)
{
  TestDisplay test(60, 50);
  test->mag(10);
  test->grid(1);
  plain::Picture expected(60, 50, cfSurround(32));
  drawGrid(expected, cfView(60, 50, 60, 50, 10), {1, -4}, true, false);
  EXPECT_EQ(plain::firstDifference(expected, test.screenPels()), "");
}

TEST(DisplayGrid, comesBackInAnAreaThatIsRepainted)
{
  Random random(6);
  for (int i = 0; i < 30; ++i) {
    TestDisplay test(60, 50);
    test->image(cfRandom8(20, 20, 1), true);
    test->mag(30);
    test->pan({cfPickReal(random, -5, 5), cfPickReal(random, -5, 5)});
    test->grid(2);
    test->subpixelGrid(4);
    std::vector<std::uint32_t> const whole = test.screenPels();
    ccUIRect const area(cfPick(random, 0, 50), cfPick(random, 0, 40), cfPick(random, 1, 10), cfPick(random, 1, 10));
    ccUITablet& screen = test.root();
    screen.set(area, ccColor::redColor(), ccUITablet::imageLayer);

    screen.update(area, ccUITablet::imageLayer, /*now=*/true);

    ASSERT_EQ(test.screenPels(), whole) << i;
  }
}

TEST(DisplayGrid, followsTheImageInADrag)
{
  TestDisplay test(60, 50);
  ccPelBuffer<unsigned char> const image = cfRandom8(40, 40, 1);
  test->image(image, true);
  test->mag(10);
  test->grid(1);
  test->mouseMode(ccDisplay::panMode);
  test.moveTo({30, 25}).press().moveTo({33, 21});
  plain::View const v = cfView(60, 50, 40, 40, 10, 0.3, -0.4);
  EXPECT_EQ(plain::firstDifference(pictureOf(image, v, {1, -4}, true, false), test.screenPels()), "");
  test.release();
}

TEST(DisplayGrid, ofAnExtremeSpacingIsDrawnInNoTime)
{
  TestDisplay test(60, 50);
  ccPelBuffer<unsigned char> const image = cfRandom8(20, 20, 1);
  test->image(image, true);
  test->mag(32);
  long const most = std::numeric_limits<long>::max();
  for (long n : {most, 2147483647L, 1000000L}) {
    test->grid(n);
    test->subpixelGrid(4);
    // Only the lines through the image's corner are near enough, and they are sub-pel lines' main lines.
    plain::Picture expected = plain::displayPicture(cfView(60, 50, 20, 20, 32), cfGreyOnSurface(image, 32), cfSurround(32));
    drawGrid(expected, cfView(60, 50, 20, 20, 32), {100000, 4}, true, true);
    EXPECT_EQ(plain::firstDifference(expected, test.screenPels()), "") << n;
    test->subpixelGrid(n);
    test->subpixelGrid(-n);
    test->grid(-n);
  }
  test->grid(std::numeric_limits<long>::min());
  test->subpixelGrid(std::numeric_limits<long>::min());
}

}  // namespace
