#include "tests/support/plain_painter.h"

#include <gtest/gtest.h>

namespace {

using namespace plain;

std::vector<std::string> rows(Picture const& p)
{
  std::vector<std::string> text;
  for (long y = 0; y < p.height(); ++y) {
    std::string row;
    for (long x = 0; x < p.width(); ++x)
      row += p.at(x, y) ? static_cast<char>('0' + p.at(x, y)) : '.';
    text.push_back(row);
  }
  return text;
}

View view(long displayW, long displayH, long imageW, long imageH, double magnification)
{
  View v;
  v.displayW = displayW;
  v.displayH = displayH;
  v.imageW = imageW;
  v.imageH = imageH;
  v.magnification = magnification;
  return v;
}

// A row of image columns as a display shows them, '.' for the surround.
std::string shownColumns(View const& v, long y)
{
  std::string text;
  for (long x = 0; x < v.displayW; ++x) {
    Shown const s = shownAt(v, x, y);
    text += s.image ? static_cast<char>('0' + s.column) : '.';
  }
  return text;
}

Rgb colour(int r, int g, int b)
{
  Rgb c;
  c.r = r;
  c.g = g;
  c.b = b;
  return c;
}

}  // namespace

TEST(PlainPainter, theImagesMiddleComesToTheDisplaysMiddle)
{
  EXPECT_EQ(shownColumns(view(10, 1, 4, 1, 1), 0), "...0123...");
  EXPECT_EQ(shownColumns(view(11, 1, 4, 1, 1), 0), "...0123....");
  EXPECT_EQ(shownColumns(view(10, 1, 5, 1, 1), 0), "...01234..");
  EXPECT_EQ(shownColumns(view(4, 1, 8, 1, 1), 0), "2345");
}

TEST(PlainPainter, magnificationRepeatsPels)
{
  EXPECT_EQ(shownColumns(view(12, 1, 4, 1, 2), 0), "..00112233..");
  // At 2.5 the image is 10 wide and begins at 6 - 2 * 2.5 = 1.
  EXPECT_EQ(shownColumns(view(12, 1, 4, 1, 2.5), 0), ".0001122233.");
}

TEST(PlainPainter, reductionShowsWholeBlocks)
{
  // 10 pels at a third: three blocks of three; it begins at 5 - 5 / 3 = 3.33.
  EXPECT_EQ(shownColumns(view(10, 1, 10, 3, 1.0 / 3), 0), "...036....");
}

TEST(PlainPainter, panMovesByImagePels)
{
  View v = view(10, 1, 4, 1, 2);
  v.panX = 1;
  EXPECT_EQ(shownColumns(v, 0), "...0011223");
  v.panX = -1.25;  // begins at 5 - 2 * (2 + 1.25) = -1.5, which rounds up to -1
  EXPECT_EQ(shownColumns(v, 0), "0112233...");
}

TEST(PlainPainter, offsetRelabelsButDoesNotMove)
{
  View v = view(10, 10, 4, 4, 1);
  v.offsetX = 100;
  v.offsetY = -7;
  Shown const s = shownAt(v, 3, 3);
  EXPECT_TRUE(s.image);
  EXPECT_EQ(s.column, 0);
  EXPECT_EQ(s.imageX, 100);
  EXPECT_EQ(s.imageY, -7);
  EXPECT_EQ(displayX(v, 100), 3);
  EXPECT_EQ(displayY(v, -5), 5);
  Rect const r = shownRect(v);
  EXPECT_EQ(r.x, 3);
  EXPECT_EQ(r.w, 4);
}

TEST(PlainPainter, displayPictureTakesPelsOrSurround)
{
  EXPECT_EQ(rows(displayPicture(view(4, 3, 2, 1, 1), {5, 6}, 1)), (std::vector<std::string>{"1111", "1561", "1111"}));
}

TEST(PlainPainter, roundingIsTolerant)
{
  EXPECT_EQ(pelOf(0.5), 1);
  EXPECT_EQ(pelOf(0.4999995), 1);
  EXPECT_EQ(pelOf(0.499), 0);
  EXPECT_EQ(pelOf(-0.5), 0);
  EXPECT_EQ(floorTolerant(2.99999999999999), 3);
  EXPECT_EQ(floorTolerant(2.999), 2);
  EXPECT_EQ(ceilTolerant(3.00000000000001), 3);
  EXPECT_EQ(ceilTolerant(3.001), 4);
}

TEST(PlainPainter, coloursAtEachDepth)
{
  EXPECT_EQ(surfacePel(colour(255, 128, 8), 15), 31u << 10 | 16u << 5 | 1u);
  EXPECT_EQ(surfacePel(colour(255, 128, 8), 16), 31u << 11 | 32u << 5 | 1u);
  EXPECT_EQ(surfacePel(colour(255, 128, 8), 24), 0xFF8008u);
  EXPECT_EQ(surfacePel(colour(255, 128, 8), 32), 0xFF8008u);
  EXPECT_EQ(surfacePel(colour(255, 128, 8), 8, {colour(0, 0, 0), colour(250, 120, 0)}), 1u);
  EXPECT_TRUE(seen(0xF800, 16) == colour(248, 0, 0));
  EXPECT_TRUE(seen(0x03E0, 15) == colour(0, 248, 0));
  EXPECT_TRUE(seen(0x123456, 32) == colour(0x12, 0x34, 0x56));
  EXPECT_TRUE(seen(1, 8, {colour(0, 0, 0), colour(1, 2, 3)}) == colour(1, 2, 3));
}

TEST(PlainPainter, greyPelsStayOutOfTheSystemEntriesUnlessMapped)
{
  EXPECT_EQ(surfacePelOfGrey8(0, false, 8, greyRamp()), 10u);
  EXPECT_EQ(surfacePelOfGrey8(255, false, 32, greyRamp()), 0xF0F0F0u);
  EXPECT_EQ(surfacePelOfGrey8(255, true, 32, greyRamp()), 0xFFFFFFu);
  EXPECT_EQ(surfacePelOfGrey8(100, false, 8, greyRamp()), 100u);
}

TEST(PlainPainter, windowMapStretchesTheRange)
{
  std::vector<Rgb> const map = windowMap(10, 100, 611);  // 511 / 256 + 1: two entries for each grey
  EXPECT_EQ(map.size(), 1024u);
  EXPECT_TRUE(map[99] == colour(0, 0, 0));
  EXPECT_TRUE(map[101] == colour(0, 0, 0));
  EXPECT_TRUE(map[102] == colour(1, 1, 1));
  EXPECT_TRUE(map[611] == colour(255, 255, 255));
  EXPECT_TRUE(map[612] == colour(255, 255, 255));
  EXPECT_EQ(windowMap(8, 0, 255).size(), 256u);
  EXPECT_EQ(windowMap(12, 0, 255).size(), 4096u);
  EXPECT_EQ(windowMap(14, 0, 255).size(), 65536u);
  EXPECT_EQ(windowMap(16, 0, 255).size(), 65536u);
}

TEST(PlainPainter, windowMapOfAConstantImage)
{
  std::vector<Rgb> const map = windowMap(10, 40, 40);
  EXPECT_TRUE(map[40] == colour(0, 0, 0));
  EXPECT_TRUE(map[41] == colour(255, 255, 255));
}

TEST(PlainPainter, linesTakeTheNearestPelAndTheSmallerOnTies)
{
  Picture p(5, 3);
  line(p, 0, 0, 4, 2, 1);  // ties at 1 and 3
  EXPECT_EQ(rows(p), (std::vector<std::string>{"11...", "..11.", "....1"}));
  Picture steep(3, 5);
  line(steep, 2, 4, 0, 0, 1);
  EXPECT_EQ(rows(steep), (std::vector<std::string>{"1..", "1..", ".1.", ".1.", "..1"}));
  Picture point(1, 1);
  line(point, 0, 0, 0, 0, 1);
  EXPECT_EQ(rows(point), (std::vector<std::string>{"1"}));
}

TEST(PlainPainter, rectanglesInsideOutsideAndRings)
{
  Rect r;
  r.x = 1;
  r.y = 1;
  r.w = 3;
  r.h = 3;
  Picture inside(5, 5);
  fillRect(inside, r, 1);
  EXPECT_EQ(rows(inside), (std::vector<std::string>{".....", ".111.", ".111.", ".111.", "....."}));
  Picture outside(5, 5);
  fillOutside(outside, r, 1);
  EXPECT_EQ(rows(outside), (std::vector<std::string>{"11111", "1...1", "1...1", "1...1", "11111"}));
  Picture ring(5, 5);
  outline(ring, r, 1, 1);
  EXPECT_EQ(rows(ring), (std::vector<std::string>{".....", ".111.", ".1.1.", ".111.", "....."}));
  Picture solid(5, 5);
  outline(solid, r, 2, 1);
  EXPECT_EQ(rows(solid), rows(inside));
}

TEST(PlainPainter, composedShowsTheImageAtTheKey)
{
  Picture image(3, 1, 4);
  Picture overlay(3, 1, 9);
  overlay.put(1, 0, 2);
  EXPECT_EQ(rows(composed(image, overlay, 9)), (std::vector<std::string>{"424"}));
}

TEST(PlainPainter, firstDifferenceNamesPlaceAndValues)
{
  Picture p(2, 2, 1);
  EXPECT_EQ(firstDifference(p, {1, 1, 1, 1}), "");
  EXPECT_EQ(firstDifference(p, {1, 1, 255, 1}), "at (0, 1) ff instead of 1");
  EXPECT_EQ(firstDifference(p, {1}), "1 pels instead of 4");
}
