#include "canvas/region.h"

#include <gtest/gtest.h>

#include <random>

TEST(RectList, holdsOneRectangleOrNone)
{
  cc_RectList list;
  list.assign(ccUIRect(1, 2, 3, 4));
  EXPECT_EQ(1u, list.size());
  EXPECT_EQ(ccUIRect(1, 2, 3, 4), list[0]);
  list.assign(ccUIRect(1, 2, 0, 4));
  EXPECT_TRUE(list.isEmpty());
}

TEST(RectList, holeInTheMiddleLeavesFourPieces)
{
  cc_RectList list;
  list.assign(ccUIRect(0, 0, 10, 10));
  list.subtract(ccUIRect(3, 4, 2, 1));
  ASSERT_EQ(4u, list.size());
  EXPECT_EQ(ccUIRect(0, 0, 10, 4), list[0]);
  EXPECT_EQ(ccUIRect(0, 4, 3, 1), list[1]);
  EXPECT_EQ(ccUIRect(5, 4, 5, 1), list[2]);
  EXPECT_EQ(ccUIRect(0, 5, 10, 5), list[3]);
  EXPECT_TRUE(list.nullIntersection(ccUIRect(3, 4, 2, 1)));
  EXPECT_FALSE(list.nullIntersection(ccUIRect(3, 4, 3, 1)));
}

TEST(RectListProperty, piecesAreDisjointAndCoverWhatIsLeft)
{
  std::mt19937 random(7);
  auto const number = [&](long low, long high) { return std::uniform_int_distribution<long>(low, high)(random); };
  for (int run = 0; run < 300; ++run) {
    constexpr long side = 20;
    int counts[side][side] = {};
    bool left[side][side];
    for (auto& row : left)
      for (bool& pel : row)
        pel = true;
    cc_RectList list;
    list.assign(ccUIRect(0, 0, side, side));
    for (int i = 0; i < 8; ++i) {
      ccUIRect const hole(number(-3, 20), number(-3, 20), number(0, 9), number(0, 9));
      list.subtract(hole);
      for (long y = 0; y < side; ++y)
        for (long x = 0; x < side; ++x)
          if (x >= hole.left() && x < hole.right() && y >= hole.top() && y < hole.bottom())
            left[y][x] = false;
    }
    for (std::size_t i = 0; i < list.size(); ++i)
      for (long y = list[i].top(); y < list[i].bottom(); ++y)
        for (long x = list[i].left(); x < list[i].right(); ++x)
          ++counts[y][x];
    for (long y = 0; y < side; ++y)
      for (long x = 0; x < side; ++x)
        ASSERT_EQ(left[y][x] ? 1 : 0, counts[y][x]) << "run " << run << " at " << x << "," << y;
  }
}
