// The colour maps of a display: what is stored, what reaches the root, and the odd bounds of the copies.
#include "tests/support/test_display.h"
#include "tests/ui/display/test_images.h"

#include "canvas/ui_error.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

std::vector<ccRGB> colours(std::size_t count)
{
  std::vector<ccRGB> map(count);
  for (std::size_t i = 0; i < count; ++i)
    map[i] = ccRGB(static_cast<unsigned char>(i), static_cast<unsigned char>(i * 7), static_cast<unsigned char>(1 + i / 256));
  return map;
}

long copied(std::vector<ccRGB> const& from, std::vector<ccRGB> const& now, std::vector<ccRGB> const& before, long start)
{
  long n = 0;
  while (n < 231 && static_cast<std::size_t>(start + n) < from.size() &&
         now[static_cast<std::size_t>(10 + n)] == from[static_cast<std::size_t>(start + n)])
    ++n;
  for (std::size_t i = static_cast<std::size_t>(10 + n); i < 256; ++i)
    EXPECT_EQ(now[i], before[i]) << i;
  return n;
}

TEST(DisplayColorMap, copiesAsManyAsTheOddBoundAllows)
{
  struct {
    std::size_t size;
    long start, count;
  } const cases[] = {{256, 0, 231}, {256, 10, 231}, {256, 100, 56}, {256, 127, 2}, {256, 128, 0}, {256, 200, 0},
                     {256, 255, 0}, {256, 300, 0},  {100, 0, 100},  {100, 20, 60}, {10, 5, 0},    {0, 0, 0},
                     {1000, 300, 231}, {256, 13, 230}, {256, -1, 0}, {256, std::numeric_limits<long>::max(), 0},
                     {256, std::numeric_limits<long>::min(), 0}};
  for (auto const& c : cases) {
    TestDisplay test(20, 20);
    std::vector<ccRGB> const before = test->colorMap(), map = colours(c.size);

    test->colorMap(map, c.start);

    EXPECT_EQ(copied(map, test->colorMap(), before, c.start), c.count) << c.size << " from " << c.start;
  }
}

TEST(DisplayColorMap, mapCommaTenCopies231AndAStartOf100Only56)
{
  TestDisplay test(20, 20);
  std::vector<ccRGB> const map = colours(256);
  test->colorMap(map, 10);
  EXPECT_EQ(test->colorMap()[10], map[10]);
  EXPECT_EQ(test->colorMap()[240], map[240]);
  test->clearColorMap();
  test->colorMap(map, 100);
  EXPECT_EQ(test->colorMap()[10 + 55], map[155]);
  EXPECT_EQ(test->colorMap()[10 + 56], ccRGB(56, 56, 56));
}

TEST(DisplayColorMap, reachesTheRootThenRepaintsThenTells)
{
  TestDisplay test(20, 20);
  bool drawn = false;
  test->onHook = [&](std::string const&) { drawn = !test->redraws.empty() && test.root().colorMapSets == 1; };

  test->colorMap(colours(256), 0);

  EXPECT_EQ(test->hooks, (HookLog{"colorMapChanged"}));
  EXPECT_TRUE(drawn);
  ASSERT_EQ(test.root().map.size(), 256u);
  EXPECT_EQ(test.root().map[0], colours(256)[0]);  // the ramp, from slot 0
  EXPECT_EQ(test.root().map[230], colours(256)[230]);
  EXPECT_EQ(test.root().map[231], ccRGB());
}

TEST(DisplayColorMap, readingTakesTheSystemColoursAndPutsTheRampBetween)
{
  TestDisplay test(20, 20);
  std::vector<ccRGB> system = colours(256);
  test.root().systemColorMap(system);
  std::vector<ccRGB> const map = test->colorMap();
  ASSERT_EQ(map.size(), 256u);
  for (std::size_t i = 0; i < 256; ++i)
    EXPECT_EQ(map[i], i < 10 || i > 240 ? system[i] : ccRGB(static_cast<unsigned char>(i), static_cast<unsigned char>(i), static_cast<unsigned char>(i))) << i;
}

TEST(DisplayColorMap, clearingIsNotTheRampOfTheConstructor)
{
  TestDisplay test(20, 20);
  test->colorMap(colours(256), 0);
  test.clearLogs();

  test->clearColorMap();

  EXPECT_EQ(test->hooks, (HookLog{"colorMapChanged"}));
  EXPECT_EQ(test.root().colorMapSets, 1);
  for (int i = 0; i <= 230; ++i) {
    auto const grey = static_cast<unsigned char>(i < 10 ? 0 : i);
    EXPECT_EQ(test.root().map[static_cast<std::size_t>(i)], ccRGB(grey, grey, grey)) << i;
    EXPECT_EQ(test->colorMap()[static_cast<std::size_t>(10 + i)], ccRGB(grey, grey, grey)) << i;
  }
}

TEST(DisplayColorMap, theSelectedDisplayInstallsItsPalette)
{
  TestDisplay test(40, 20, {.rect = ccUIRect(0, 0, 20, 20)});
  ConcreteDisplay other(&test.root(), ccUIRect(20, 0, 20, 20), 32);
  other.condVisible(true);
  other.colorMap(colours(256), 0);
  test->condSelected(false, false);
  test.update();

  test.click({5, 5});
  EXPECT_EQ(test.root().map[0], ccRGB(10, 10, 10));
  test.click({25, 5});
  EXPECT_EQ(test.root().map[100], colours(256)[100]);
}

TEST(DisplayPelMap, takesFourLengthsAndRefusesOthersBeforeAnyChange)
{
  TestDisplay test(20, 20);
  for (std::size_t size : {256u, 1024u, 4096u, 65536u}) {
    test->colorMapEx(colours(size));
    EXPECT_EQ(test->colorMapEx(), colours(size));
    EXPECT_EQ(test.root().mapEx, colours(size));
  }
  test.clearLogs();
  for (std::size_t size : {0u, 1u, 255u, 257u, 512u, 16384u, 65535u, 65537u})
    EXPECT_THROW(test->colorMapEx(colours(size)), ccUIError::InvalidColorMapSize) << size;
  EXPECT_EQ(test->colorMapEx().size(), 65536u);
  EXPECT_EQ(test.root().colorMapExSets, 0);
  EXPECT_TRUE(test->hooks.empty());
  EXPECT_TRUE(test->redraws.empty());
  EXPECT_FALSE(test.scope().screenUpdatesLocked());
}

TEST(DisplayPelMap, colorsTheImageAnewAndTells)
{
  TestDisplay test(20, 20);
  ccPelBuffer<unsigned char> const image = cfRandom8(20, 20, 3);
  test->image(image, true);
  test.clearLogs();
  std::vector<ccRGB> const map = colours(256);

  test->colorMapEx(map);

  EXPECT_EQ(test->hooks, (HookLog{"imageMapChanged"}));
  for (long y = 0; y < 20; ++y)
    for (long x = 0; x < 20; ++x)
      ASSERT_EQ(test.scope().screenRGB(x, y), map[image.getPel(x, y)]);
  test->colorMapEx(test->colorMapEx());  // its own
  EXPECT_EQ(test->colorMapEx(), map);
}

TEST(DisplayPelMap, anEightBitImageAfterAMapOfAnotherLengthGetsTheGreyRampBack)
{
  for (int depth : {15, 16, 24, 32}) {
    TestDisplay test(20, 20, {.depth = depth});
    test->image(cfRandom16(20, 20, 1, 0, 1000), 10);
    test.clearLogs();
    ccPelBuffer<unsigned char> const image = cfRandom8(20, 20, 3);

    test->image(image, true);

    EXPECT_EQ(test->hooks[0], "imageMapChanged");
    ASSERT_EQ(test->colorMapEx().size(), 256u);
    plain::Picture const expected = plain::displayPicture(cfView(20, 20, 20, 20), cfGreyOnSurface(image, depth), 0);
    EXPECT_EQ(plain::firstDifference(expected, test.screenPels()), "") << depth;
  }
}

TEST(DisplayPelMap, aMapOf256IsKeptByEightBitImages)
{
  TestDisplay test(20, 20);
  test->colorMapEx(colours(256));
  test.clearLogs();
  test->image(cfRandom8(20, 20, 3), true);
  EXPECT_EQ(test->colorMapEx(), colours(256));
  EXPECT_EQ(test.counts().imageMapChanged, 0);
}

TEST(DisplayPelMap, atEightBitsAMapOfAnotherLengthBringsTheRampFromGrey10Back)
{
  TestDisplay test(20, 20, {.depth = 8});
  test->colorMap(colours(256), 0);
  test->colorMapEx(colours(1024));
  test.clearLogs();

  test->image(cfRandom8(20, 20, 3), true);

  EXPECT_EQ(test->hooks[0], "colorMapChanged");
  EXPECT_EQ(test.root().colorMapSets, 1);
  for (int i = 0; i <= 230; ++i)
    EXPECT_EQ(test.root().map[static_cast<std::size_t>(i)].r, 10 + i);
  EXPECT_EQ(test.counts().imageMapChanged, 0);
}

TEST(DisplayPelMap, otherKindsOfImagesLeaveAnyMap)
{
  TestDisplay test(20, 20);
  test->colorMapEx(colours(4096));
  test->image(cfRandomRGB32(20, 20, 3));
  EXPECT_EQ(test->colorMapEx(), colours(4096));
}

TEST(DisplayOverlayMap, isTheRootsAndThrowsWhileThereIsNone)
{
  {
    TestDisplay test(20, 20);
    EXPECT_THROW(test->overlayColorMap(), ccUIError::NotAvailable);
  }
  TestDisplay test(20, 20, {.overlay = true});
  EXPECT_THROW(test->overlayColorMap(), ccUIError::NotEnabled);
  test.root().overlayMap = colours(256);
  EXPECT_EQ(test->overlayColorMap(), colours(256));
}

}  // namespace
