#include "tests/support/memory_scope.h"

#include "canvas/format.h"
#include "canvas/rle_buffer.h"
#include "geometry/lines.h"
#include "tests/support/plain_painter.h"

#include <gtest/gtest.h>

#include <random>

namespace {

ccGraphicProps pen(ccColor const& c, long width = 1)
{
  return ccGraphicProps(c, width, ceSolidPen, false);
}

std::vector<std::string> redPicture(MemoryScope const& s)
{
  return s.picture(ccUIRect(ccPair<long>(), s.size()), {{0, '.'}, {s.value(ccColor::redColor()), '#'}});
}

ccPelBuffer<unsigned char> bytes(std::vector<unsigned char> const& row)
{
  ccPelBuffer<unsigned char> image(static_cast<long>(row.size()), 1);
  for (std::size_t x = 0; x < row.size(); ++x)
    image.setPel(static_cast<long>(x), 0, row[x]);
  return image;
}

}  // namespace

TEST(MemoryScope, coloursHaveTheirValueAtEachDepth)
{
  struct {
    int depth;
    std::uint32_t red, key;
  } const cases[] = {{8, 249, 243}, {15, 0x7C00, 31710}, {16, 0xF800, 63390}, {24, 0xFF0000, 0xF3F3F3},
                     {32, 0xFF0000, 0xF3F3F3}};
  for (auto const& c : cases) {
    MemoryScope const s(ccPair<long>(1, 1), c.depth);
    EXPECT_EQ(s.value(ccColor::redColor()), c.red) << c.depth;
    EXPECT_EQ(s.keyValue(), c.key) << c.depth;
    EXPECT_EQ(s.depth(), c.depth);
  }
}

TEST(MemoryScope, anIndexColourFollowsTheColourMap)
{
  MemoryScope s(ccPair<long>(1, 1), 32);
  std::vector<ccRGB> map(256);
  map[7] = ccRGB(1, 2, 3);
  s.colorMap(map);
  EXPECT_EQ(s.value(ccColor(static_cast<unsigned char>(7))), 0x010203u);
  EXPECT_EQ(s.value(ccColor::ltGreyColor()), 0xC0C0C0u);  // carries its own RGB
}

TEST(MemoryScope, setFillsInClientCoordinatesAndPassColourOnlyOnOverlays)
{
  MemoryScope image(ccPair<long>(6, 3));
  std::unique_ptr<ccUIScope> const part(image.createChildScope(ccUIRect(2, 1, 3, 2), true));
  part->set(ccUIRect(0, 0, 4, 2), ccColor::redColor());
  EXPECT_EQ(redPicture(image), (std::vector<std::string>{"......", "..##..", "......"}));
  image.set(ccColor::passColor());
  EXPECT_EQ(redPicture(image)[1], "..##..");

  MemoryScope overlay(ccPair<long>(2, 1), 16, MemoryScope::overlayPlane);
  overlay.set(ccUIRect(1, 0, 1, 1), ccColor::passColor());
  EXPECT_EQ(overlay.surface(), (std::vector<std::uint32_t>{0, 63390}));
}

TEST(MemoryScope, settingAllMarksAllAndOpaque)
{
  MemoryScope s(ccPair<long>(6, 3));
  s.set(ccColor::redColor());
  EXPECT_EQ(s.stateBits(), 7u);
  EXPECT_EQ(s.changeRect(), ccUIRect(0, 0, 6, 3));
}

TEST(MemoryScope, linesFollowThePlainRule)
{
  std::mt19937 random(1);
  std::uniform_int_distribution<long> place(-5, 25);
  for (int run = 0; run < 300; ++run) {
    long const x0 = place(random);
    long const y0 = place(random);
    long const x1 = place(random);
    long const y1 = place(random);
    plain::Picture expected(20, 20);
    plain::line(expected, x0, y0, x1, y1, 0xFF0000);
    MemoryScope s(ccPair<long>(20, 20));
    if (run % 2) {
      s.drawStart(ccPoint(ccPair<long>(x0, y0)));
      s.drawTo(ccPoint(ccPair<long>(x1, y1)), pen(ccColor::redColor()));
      ASSERT_EQ(s.currentPoint(), ccPair<long>(x1, y1));
    } else {
      s.draw(ccLineSeg(ccPoint(ccPair<long>(x0, y0)), ccPoint(ccPair<long>(x1, y1))), pen(ccColor::redColor()));
    }
    ASSERT_EQ(plain::firstDifference(expected, s.surface()), "") << x0 << "," << y0 << " to " << x1 << "," << y1;
  }
}

TEST(MemoryScope, lineTiesGoToTheSmallerCoordinateInBothDirections)
{
  MemoryScope s(ccPair<long>(5, 2));
  s.drawStart(ccPoint(0, 0));
  s.drawToRel(2, 1, pen(ccColor::redColor()));  // passes (1, 0.5)
  s.drawToRel(2, -1, pen(ccColor::redColor()));
  EXPECT_EQ(redPicture(s), (std::vector<std::string>{"##.##", "..#.."}));
  EXPECT_EQ(s.currentPoint(), ccPair<long>(4, 0));
}

TEST(MemoryScope, pointsAreOnePelOrASquare)
{
  MemoryScope s(ccPair<long>(6, 4));
  s.draw(ccPoint(0, 0), pen(ccColor::redColor()));
  s.draw(ccPoint(3, 2), pen(ccColor::redColor(), 3));
  EXPECT_EQ(redPicture(s), (std::vector<std::string>{"#.....", "..###.", "..###.", "..###."}));
}

TEST(MemoryScope, bytesGoThroughTheImageMapMappedOrStretched)
{
  std::vector<ccRGB> map;
  for (int i = 0; i < 256; ++i)
    map.push_back(ccRGB(static_cast<unsigned char>(i), 1, 2));
  for (int depth : {8, 15, 16, 24, 32}) {
    MemoryScope s(ccPair<long>(4, 1), depth);
    s.colorMapEx(map);
    std::vector<plain::Rgb> plainMap;
    for (int i = 0; i < 256; ++i) {
      plain::Rgb c;
      c.r = i;
      c.g = 1;
      c.b = 2;
      plainMap.push_back(c);
    }
    for (bool mapped : {true, false}) {
      s.draw(bytes({0, 9, 100, 255}), ccPoint(0, 0), false, static_cast<unsigned char>(0), mapped);
      int const values[] = {0, 9, 100, 255};
      for (std::size_t x = 0; x < 4; ++x)
        EXPECT_EQ(s.surface()[x], plain::surfacePelOfGrey8(values[x], mapped, depth, plainMap)) << depth << mapped;
    }
  }
}

TEST(MemoryScope, wordsGoThroughTheImageMapAndNotToIndexedSurfaces)
{
  ccPelBuffer<unsigned short> image(2, 1);
  image.setPel(0, 0, 1000);
  image.setPel(1, 0, 60000);
  std::vector<ccRGB> map(1024);
  map[1000] = ccRGB(8, 16, 24);
  map[1023] = ccRGB(248, 0, 0);
  for (int depth : {8, 15, 16, 24, 32}) {
    MemoryScope s(ccPair<long>(2, 1), depth);
    s.colorMapEx(map);
    s.poison(5);
    s.draw(image, ccPoint(0, 0), false, static_cast<unsigned short>(0));
    plain::Rgb c;
    c.r = 8;
    c.g = 16;
    c.b = 24;
    EXPECT_EQ(s.surface()[0], depth == 8 ? 5u : plain::surfacePel(c, depth)) << depth;
    plain::Rgb last;
    last.r = 248;
    EXPECT_EQ(s.surface()[1], depth == 8 ? 5u : plain::surfacePel(last, depth)) << depth;  // beyond the map: its last
  }
}

TEST(MemoryScope, keepsNoLogWhileItIsSwitchedOff)
{
  MemoryScope s(ccPair<long>(4, 4));
  s.keepLog(false);
  s.set(ccUIRect(0, 0, 2, 2), ccColor::redColor());
  EXPECT_TRUE(s.log().empty());
  EXPECT_TRUE(s.presented().empty());
  EXPECT_EQ(s.presentations(), 0);
  EXPECT_EQ(s.screenRGB(1, 1), ccRGB(255, 0, 0));
  s.keepLog(true);
  s.set(ccUIRect(0, 0, 2, 2), ccColor::redColor());
  EXPECT_EQ(s.calls("set"), 1);
  EXPECT_EQ(s.presentations(), 1);
}

TEST(MemoryScope, colourPelsKeepTheirColour)
{
  ccPelBuffer<ccPackedRGB16Pel> image16(1, 1);
  image16.setPel(0, 0, ccPackedRGB16Pel(248, 4, 16));
  ccPelBuffer<ccPackedRGB32Pel> image32(1, 1);
  image32.setPel(0, 0, ccPackedRGB32Pel(248, 4, 16));
  for (int depth : {15, 16, 24, 32}) {
    plain::Rgb c;
    c.r = 248;
    c.g = 4;
    c.b = 16;
    MemoryScope s(ccPair<long>(1, 1), depth);
    s.draw(image16, ccPoint(0, 0), false, std::uint16_t(0));
    EXPECT_EQ(s.surface()[0], plain::surfacePel(c, depth)) << depth;
    s.poison(0);
    s.draw(image32, ccPoint(0, 0), false, std::uint32_t(0));
    EXPECT_EQ(s.surface()[0], plain::surfacePel(c, depth)) << depth;
  }
}

TEST(MemoryScope, transparentPelsAreSkipped)
{
  MemoryScope s(ccPair<long>(3, 1), 8);
  s.poison(99);
  s.draw(bytes({1, 2, 3}), ccPoint(0, 0), true, static_cast<unsigned char>(2), true);
  EXPECT_EQ(s.surface(), (std::vector<std::uint32_t>{1, 99, 3}));

  unsigned char const pels[] = {0, 1, 0};
  s.draw(ccRLEBuffer::fromPels(pels, 3, 1, 3), ccPoint(0, 0), std::vector<unsigned char>{50, 60}, true,
         static_cast<unsigned char>(0));
  EXPECT_EQ(s.surface(), (std::vector<std::uint32_t>{1, 60, 3}));
}

TEST(MemoryScope, runLengthImagesTakeColours)
{
  unsigned char const pels[] = {0, 1, 2};
  MemoryScope s(ccPair<long>(3, 1), 8);
  s.draw(ccRLEBuffer::fromPels(pels, 3, 1, 3), ccPoint(0, 0),
         std::vector<ccColor>{ccColor::redColor(), ccColor(0, 0, 250)}, false, static_cast<unsigned char>(0));
  EXPECT_EQ(s.surface(), (std::vector<std::uint32_t>{249, 252, 2}));  // 2 has no colour and is its own index
}

TEST(MemoryScope, displayClipHoldsForBytesFillsAndLinesButNotForColourPels)
{
  MemoryScope s(ccPair<long>(4, 1), 8);
  s.newDisplayClipRect(ccUIRect(1, 0, 2, 1));
  s.draw(bytes({1, 2, 3, 4}), ccPoint(0, 0), false, static_cast<unsigned char>(0), true);
  EXPECT_EQ(s.surface(), (std::vector<std::uint32_t>{0, 2, 3, 0}));
  s.set(ccUIRect(0, 0, 4, 1), ccColor(static_cast<unsigned char>(9)));
  EXPECT_EQ(s.surface(), (std::vector<std::uint32_t>{0, 9, 9, 0}));
  s.draw(ccLineSeg(ccPoint(0, 0), ccPoint(3, 0)), pen(ccColor(static_cast<unsigned char>(8))));
  EXPECT_EQ(s.surface(), (std::vector<std::uint32_t>{0, 8, 8, 0}));

  MemoryScope colours(ccPair<long>(2, 1), 32);
  colours.newDisplayClipRect(ccUIRect(1, 0, 1, 1));
  ccPelBuffer<ccPackedRGB32Pel> image(2, 1);
  image.setPel(0, 0, ccPackedRGB32Pel(1, 1, 1));
  colours.draw(image, ccPoint(0, 0), false, std::uint32_t(0));
  EXPECT_EQ(colours.surface()[0], 0x010101u);
}

TEST(MemoryScope, textIsABoxForEachCharacter)
{
  MemoryScope s(ccPair<long>(20, 12));
  s.draw("a b", ccPoint(1, 1), ccColor::redColor(), ccColor::passColor(), ccUIFormat());
  std::string const boxes = ".#####.......#####..";
  std::vector<std::string> expected(12, std::string(20, '.'));
  for (std::size_t y = 2; y < 10; ++y)
    expected[y] = boxes;
  EXPECT_EQ(redPicture(s), expected);
}

TEST(MemoryScope, textBackgroundCoversTheWholeBlock)
{
  MemoryScope s(ccPair<long>(20, 12));
  s.draw(" ", ccPoint(1, 1), ccColor::blackColor(), ccColor::redColor(), ccUIFormat());
  std::vector<std::string> expected(12, std::string(20, '.'));
  for (std::size_t y = 1; y < 11; ++y)
    expected[y] = ".######.............";
  EXPECT_EQ(redPicture(s), expected);
}

TEST(MemoryScope, textRectIsUncutAndClippedIsCut)
{
  MemoryScope root(ccPair<long>(40, 30));
  std::unique_ptr<ccUIScope> const part(root.createChildScope(ccUIRect(10, 10, 20, 15), true));
  ccUIRect clipped;
  EXPECT_EQ(part->textRect("abcd", ccPoint(12, 5), ccUIFormat(), clipped), ccUIRect(12, 5, 24, 10));
  EXPECT_EQ(clipped, ccUIRect(12, 10, 18, 5));
  EXPECT_EQ(part->textRect("ab\nabc", ccPoint(30, 30), ccUIFormat(ccUIFormat::bottomRight), clipped),
            ccUIRect(12, 10, 18, 20));
  EXPECT_TRUE(part->textRect("", ccPoint(12, 5), ccUIFormat(), clipped).isNull());
  EXPECT_TRUE(clipped.isNull());
}

TEST(MemoryScope, eachDrawingIsPresentedUnlessLocked)
{
  MemoryScope s(ccPair<long>(6, 3));
  s.set(ccUIRect(1, 1, 2, 1), ccColor::redColor());
  EXPECT_EQ(s.presentations(), 1);
  EXPECT_EQ(s.presented(), (std::vector<ccUIRect>{ccUIRect(1, 1, 2, 1)}));
  EXPECT_EQ(s.screen(), s.surface());

  s.lockScreenUpdatesPush(true);
  s.set(ccUIRect(0, 0, 1, 1), ccColor::redColor());
  s.set(ccUIRect(5, 2, 1, 1), ccColor::redColor());
  EXPECT_EQ(s.screenPel(0, 0), 0u);
  EXPECT_EQ(s.invalidRect(), ccUIRect(0, 0, 6, 3));
  EXPECT_TRUE(s.lockScreenUpdatesPop());
  EXPECT_EQ(s.presentations(), 2);
  EXPECT_EQ(s.presented().back(), ccUIRect(0, 0, 6, 3));
  EXPECT_EQ(s.screen(), s.surface());
  EXPECT_TRUE(s.invalidRect().isNull());
}

TEST(MemoryScope, optimizedDrawingIsPresentedAtItsEnd)
{
  MemoryScope s(ccPair<long>(6, 3));
  s.optimizeDrawing(true);
  s.set(ccUIRect(0, 0, 1, 1), ccColor::redColor());
  s.set(ccUIRect(1, 0, 1, 1), ccColor::redColor());
  EXPECT_EQ(s.presentations(), 0);
  s.optimizeDrawing(false);
  EXPECT_EQ(s.presentations(), 1);
}

TEST(MemoryScope, childrenShareSurfaceLocksAndLog)
{
  MemoryScope root(ccPair<long>(6, 3));
  std::unique_ptr<ccUIScope> const part(root.createChildScope(ccUIRect(2, 1, 3, 2), false));
  part->lockScreenUpdatesPush(true);
  EXPECT_TRUE(root.screenUpdatesLocked());
  part->set(ccUIRect(0, 0, 1, 1), ccColor::redColor());
  EXPECT_EQ(redPicture(root)[1], "..#...");
  EXPECT_EQ(root.log().back().kind, "set");
  EXPECT_EQ(root.log().back().rect, ccUIRect(2, 1, 1, 1));
  root.lockScreenUpdatesPop();
  EXPECT_EQ(root.presented(), (std::vector<ccUIRect>{ccUIRect(2, 1, 1, 1)}));
  EXPECT_EQ(root.calls("set"), 1);
  root.clearLog();
  EXPECT_EQ(root.calls("set"), 0);
  EXPECT_EQ(root.presentations(), 0);
}

TEST(MemoryScope, aDragRestoresWhatItsAnimationPaintedOver)
{
  MemoryScope s(ccPair<long>(6, 1));
  s.set(ccUIRect(0, 0, 1, 1), ccColor::redColor());
  s.dragStart();
  EXPECT_TRUE(s.isDragging());
  for (long step = 2; step < 5; ++step) {
    s.dragErase();
    s.dragAnimate(true);
    s.set(ccUIRect(step, 0, 1, 1), ccColor::redColor());
    s.dragAnimate(false);
    std::string expected = "#.....";
    expected[static_cast<std::size_t>(step)] = '#';
    EXPECT_EQ(redPicture(s)[0], expected);
    EXPECT_EQ(s.screen(), s.surface());
  }
  s.dragErase();
  s.dragStop();
  EXPECT_FALSE(s.isDragging());
  EXPECT_EQ(redPicture(s)[0], "#.....");
  EXPECT_EQ(s.screen(), s.surface());
}

TEST(MemoryScope, betweenAnimationsDrawingGoesToTheBackupAndShowsAtTheNextUpdate)
{
  MemoryScope s(ccPair<long>(6, 1));
  s.dragStart();
  s.lockScreenUpdatesPush(true);
  s.set(ccUIRect(1, 0, 1, 1), ccColor::redColor());
  EXPECT_EQ(redPicture(s)[0], ".#....");  // presenting brings it over, though the screen is locked
  EXPECT_EQ(s.screenPel(1, 0), 0u);
  s.dragAnimate(true);
  s.set(ccUIRect(1, 0, 4, 1), ccColor::blueColor());
  s.dragAnimate(false);
  s.dragErase();
  EXPECT_EQ(redPicture(s)[0], ".#....");
  s.dragStop();
  s.lockScreenUpdatesPop();
  EXPECT_EQ(s.screen(), s.surface());
}

TEST(MemoryScope, planesAreComposedByTheColourKey)
{
  MemoryScope image(ccPair<long>(3, 1), 32);
  MemoryScope overlay(ccPair<long>(3, 1), 16, MemoryScope::overlayPlane);
  image.set(ccColor::blueColor());
  overlay.set(ccColor::passColor());
  overlay.set(ccUIRect(1, 0, 1, 1), ccColor::redColor());
  std::vector<ccRGB> const expected{ccRGB(0, 0, 255), ccRGB(248, 0, 0), ccRGB(0, 0, 255)};
  EXPECT_EQ(cfComposedScreens(image, overlay), expected);
  EXPECT_EQ(cfComposedSurfaces(image, overlay), expected);
}

TEST(MemoryScope, resizingGivesNewSurfaces)
{
  MemoryScope s(ccPair<long>(3, 1));
  s.set(ccColor::redColor());
  s.resize(ccPair<long>(4, 2));
  EXPECT_EQ(s.size(), ccPair<long>(4, 2));
  EXPECT_EQ(s.surface(), std::vector<std::uint32_t>(8, 0));
  EXPECT_EQ(s.rootRect(), ccUIRect(0, 0, 4, 2));
}

TEST(MemoryScope, expandIsForOneAndAboveAndSampleForAllAboveZero)
{
  MemoryScope s(ccPair<long>(4, 1), 8);
  s.expand(bytes({7, 8}), ccPoint(0, 0), ccPair<double>(0.5, 0.5), false, static_cast<unsigned char>(0), true,
           cc_TabletEnums::interpolateNone);
  EXPECT_EQ(s.calls("expand8"), 0);
  s.sample(bytes({7, 8}), ccPoint(2, 0), ccPair<double>(0.5, 0.5), false, static_cast<unsigned char>(0), true);
  EXPECT_EQ(s.surface(), (std::vector<std::uint32_t>{0, 0, 7, 0}));
  s.expand(bytes({7, 8}), ccPoint(-1, 0), ccPair<double>(2, 2), false, static_cast<unsigned char>(0), true,
           cc_TabletEnums::interpolateNone);
  EXPECT_EQ(s.surface(), (std::vector<std::uint32_t>{7, 8, 8, 0}));
}
