// Sets of pels as rectangles, against a plain field of bits.
#include "platform/portable/raster/region.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <utility>

using plat::Rect;
using plat::portable::Region;

namespace {

using Pels = std::set<std::pair<int, int>>;

Pels pelsOf(Rect const& r)
{
  Pels pels;
  for (int y = r.top; y < r.bottom; ++y)
    for (int x = r.left; x < r.right; ++x)
      pels.emplace(x, y);
  return pels;
}

TEST(Region, isEmptyUntilARectangleThatIsNotEmptyIsAdded)
{
  Region region;
  region.add(Rect{5, 5, 5, 9});
  region.add(Rect{5, 5, 9, 4});
  EXPECT_TRUE(region.empty());
  EXPECT_EQ(region.bounds(), Rect{});

  region.add(Rect{-3, 2, 4, 6});
  EXPECT_FALSE(region.empty());
  EXPECT_EQ(region.bounds(), (Rect{-3, 2, 4, 6}));
  EXPECT_TRUE(region.contains({3, 5}));
  EXPECT_FALSE(region.contains({4, 5}));
}

TEST(Region, holdsThePelsOfASetAfterAnyStepsAndEachInOneRectangleOnly)
{
  std::mt19937 random(11);
  auto const number = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  for (int round = 0; round < 100; ++round) {
    Region region;
    Pels expected;
    for (int step = 0; step < 12; ++step) {
      int const x = number(-4, 12), y = number(-4, 12);
      Rect const r{x, y, x + number(0, 9), y + number(0, 9)};
      Pels const pels = pelsOf(r);
      switch (number(0, 5)) {
      case 0:
        region.intersect(r);
        std::erase_if(expected, [&](auto const& p) { return pels.count(p) == 0; });
        break;
      case 1:
      case 2:
        region.subtract(r);
        std::erase_if(expected, [&](auto const& p) { return pels.count(p) != 0; });
        break;
      default:
        region.add(r);
        expected.insert(pels.begin(), pels.end());
      }
      Pels held;
      std::size_t count = 0;
      for (Rect const& piece : region.rects()) {
        Pels const part = pelsOf(piece);
        EXPECT_FALSE(part.empty());
        held.insert(part.begin(), part.end());
        count += part.size();
      }
      ASSERT_EQ(held, expected) << round << ", " << step;
      ASSERT_EQ(count, expected.size()) << round << ", " << step;
    }
  }
}

TEST(Region, shiftMovesAllOfIt)
{
  Region region(Rect{0, 0, 4, 4});
  region.subtract(Rect{1, 1, 2, 2});
  region.shift({10, -20});

  EXPECT_TRUE(region.contains({10, -20}));
  EXPECT_FALSE(region.contains({11, -19}));
  EXPECT_EQ(region.bounds(), (Rect{10, -20, 14, -16}));
}

}  // namespace
