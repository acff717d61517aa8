#include "tests/support/plain_figures.h"

#include <gtest/gtest.h>

namespace {

using namespace plain;

std::string rows(Picture const& p)
{
  std::string text;
  for (long y = 0; y < p.height(); ++y) {
    for (long x = 0; x < p.width(); ++x)
      text += p.at(x, y) ? static_cast<char>('0' + p.at(x, y)) : '.';
    text += '\n';
  }
  return text;
}

Rect rect(long x, long y, long w, long h)
{
  Rect r;
  r.x = x;
  r.y = y;
  r.w = w;
  r.h = h;
  return r;
}

}  // namespace

TEST(PlainLine, tieIsTheSmallerCoordinateAndTheEndIsLeftOut)
{
  Picture p(9, 6);
  std::int64_t phase = 5;
  thinLine({p, rect(0, 0, 9, 6), 1}, {0, 1}, {4, 3}, 0, phase);
  thinLine({p, rect(0, 0, 9, 6), 2}, {8, 5}, {6, 1}, 0, phase);
  EXPECT_EQ(rows(p), ".........\n"
                     "11.......\n"
                     "..11..2..\n"
                     ".......2.\n"
                     ".......2.\n"
                     "........2\n");
  EXPECT_EQ(phase, 5 + 4 + 4);
}

TEST(PlainLine, farEndsAndClipsLeaveTheSamePels)
{
  Picture p(5, 3);
  std::int64_t phase = 0;
  thinLine({p, rect(1, 0, 3, 3), 1}, {-1000000000, -500000000 + 1}, {1000000000, 500000000 + 1}, 0, phase);
  // Row 1 + x / 2, halves downward in number.
  EXPECT_EQ(rows(p), ".....\n"
                     ".1...\n"
                     "..11.\n");
  EXPECT_EQ(phase, 2000000000);
}

TEST(PlainLine, dashesGoOnOverVertices)
{
  Picture p(8, 2);
  thinLines({p, rect(0, 0, 8, 2), 1}, {{0, 0}, {2, 0}, {2, 0}, {7, 0}, {7, 1}}, false, 2);
  EXPECT_EQ(rows(p), "111...11\n........\n");
  Picture closed(4, 2);
  thinLines({closed, rect(0, 0, 4, 2), 1}, {{0, 0}, {3, 0}}, true, 2);
  EXPECT_EQ(rows(closed), "111.\n....\n");
}

TEST(PlainPolygon, ownsItsLeftAndUpperEdges)
{
  Picture p(6, 4);
  polygon({p, rect(0, 0, 6, 4), 1}, {{1, 1}, {4, 1}, {4, 3}, {1, 3}}, Inside::odd);
  EXPECT_EQ(rows(p), "......\n.111..\n.111..\n......\n");
}

TEST(PlainPolygon, rulesDifferWhereItIsWoundTwice)
{
  std::vector<Point> const twice{{0, 0}, {3, 0}, {3, 3}, {0, 3}, {0, 0}, {3, 0}, {3, 3}, {0, 3}};
  Picture odd(3, 3), wound(3, 3);
  polygon({odd, rect(0, 0, 3, 3), 1}, twice, Inside::odd);
  polygon({wound, rect(0, 0, 3, 2), 1}, twice, Inside::wound);
  EXPECT_EQ(rows(odd), "...\n...\n...\n");
  EXPECT_EQ(rows(wound), "111\n111\n...\n");
}

TEST(PlainFlood, goesBySidesOnlyAndStopsAtTheClip)
{
  Picture p(5, 4);
  for (long i = 0; i < 4; ++i)
    p.put(i, 3 - i, 7);
  Picture q = p;
  flood({p, rect(0, 0, 4, 4), 1}, {0, 0}, 0, FloodOver::value);
  EXPECT_EQ(rows(p), "1117.\n117..\n17...\n7....\n");
  flood({q, rect(0, 0, 4, 4), 1}, {3, 3}, 7, FloodOver::upToValue);
  EXPECT_EQ(rows(q), "...7.\n..71.\n.711.\n7111.\n");
}

TEST(PlainFlatLine, liesHalfItsWidthToEitherSide)
{
  Picture p(7, 7);
  flatLine({p, rect(0, 0, 7, 7), 1}, {5, 2}, {1, 2}, 2);
  flatLine({p, rect(0, 0, 7, 7), 2}, {3, 4}, {3, 6}, 3);
  EXPECT_EQ(rows(p), ".......\n"
                     ".1111..\n"
                     ".1111..\n"
                     ".......\n"
                     "..222..\n"
                     "..222..\n"
                     ".......\n");
}

TEST(PlainFlatLine, dashesCountWidthsFromTheFirstPoint)
{
  Picture right(12, 2), left(12, 2);
  flatDashes({right, rect(0, 0, 12, 2), 1}, {0, 1}, {11, 1}, 2, 1);
  flatDashes({left, rect(0, 0, 12, 2), 1}, {11, 1}, {0, 1}, 2, 1);
  EXPECT_EQ(rows(right), "111111..111.\n111111..111.\n");
  EXPECT_EQ(rows(left), "111..111111.\n111..111111.\n");
}
