#include "canvas/rect.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace {

constexpr long kFar = 0x3FFFFFFF;

void expectEdges(ccUIRect const& r, long left, long top, long right, long bottom)
{
  EXPECT_EQ(r.left(), left);
  EXPECT_EQ(r.top(), top);
  EXPECT_EQ(r.right(), right);
  EXPECT_EQ(r.bottom(), bottom);
}

ccUIRect randomRect(std::mt19937& random)
{
  std::uniform_int_distribution<long> place(-6, 6);
  std::uniform_int_distribution<long> side(-1, 8);
  return ccUIRect(place(random), place(random), side(random), side(random));
}

}  // namespace

TEST(ccUIRect, edgesRightAndBottomAreExclusive)
{
  ccUIRect const r(3, 4, 10, 20);
  expectEdges(r, 3, 4, 13, 24);
  EXPECT_EQ(r.width(), 10);
  EXPECT_EQ(r.height(), 20);
  EXPECT_EQ(r.ul(), ccPair<long>(3, 4));
  EXPECT_EQ(r.ur(), ccPair<long>(13, 4));
  EXPECT_EQ(r.ll(), ccPair<long>(3, 24));
  EXPECT_EQ(r.lr(), ccPair<long>(13, 24));
  EXPECT_EQ(r.sz(), ccPair<long>(10, 20));
  EXPECT_EQ(ccUIRect(ccPair<long>(3, 4), ccPair<long>(10, 20)), r);
  EXPECT_EQ(ccUIRect::fromEdges(3, 4, 13, 24), r);
}

TEST(ccUIRect, defaultIsNull)
{
  EXPECT_TRUE(ccUIRect().isNull());
  EXPECT_TRUE(ccUIRect::null.isNull());
  expectEdges(ccUIRect(), 0, 0, 0, 0);
}

TEST(ccUIRect, isNullWithASideOfZeroOrLess)
{
  EXPECT_TRUE(ccUIRect(1, 1, 0, 5).isNull());
  EXPECT_TRUE(ccUIRect(1, 1, 5, 0).isNull());
  EXPECT_TRUE(ccUIRect(1, 1, -3, 5).isNull());
  EXPECT_TRUE(ccUIRect(1, 1, 5, -3).isNull());
  EXPECT_FALSE(ccUIRect(1, 1, 1, 1).isNull());
}

TEST(ccUIRect, keepsANegativeSideAsGiven)
{
  EXPECT_EQ(ccUIRect(1, 1, -3, 5).width(), -3);
}

TEST(ccUIRect, twoNullsAreEqual)
{
  EXPECT_TRUE(ccUIRect(5, 5, 0, 9) == ccUIRect(-1, 2, 3, -4));
  EXPECT_FALSE(ccUIRect(5, 5, 0, 9) != ccUIRect());
  EXPECT_TRUE(ccUIRect(5, 5, 1, 1) != ccUIRect());
  EXPECT_TRUE(ccUIRect(5, 5, 1, 1) != ccUIRect(5, 5, 1, 2));
}

TEST(ccUIRect, withinIsHalfOpenAndFalseForNull)
{
  ccUIRect const r(2, 3, 4, 5);
  EXPECT_TRUE(r.within(ccPair<long>(2, 3)));
  EXPECT_TRUE(r.within(ccPair<long>(5, 7)));
  EXPECT_FALSE(r.within(ccPair<long>(6, 7)));
  EXPECT_FALSE(r.within(ccPair<long>(5, 8)));
  EXPECT_FALSE(r.within(ccPair<long>(1, 3)));
  EXPECT_FALSE(r.within(ccPair<long>(2, 2)));
  EXPECT_FALSE(ccUIRect(0, 0, 0, 5).within(ccPair<long>(0, 0)));
  EXPECT_FALSE(ccUIRect(4, 0, -8, 5).within(ccPair<long>(0, 0)));
}

TEST(ccUIRect, disjointRectsMeetInExactlyZero)
{
  ccUIRect const meet = ccUIRect(5, 6, 10, 10) & ccUIRect(15, 6, 10, 10);
  expectEdges(meet, 0, 0, 0, 0);
  expectEdges(ccUIRect(5, 6, 0, 10) & ccUIRect(0, 0, 100, 100), 0, 0, 0, 0);
  EXPECT_TRUE(ccUIRect(5, 6, 10, 10).nullIntersection(ccUIRect(15, 6, 10, 10)));
  EXPECT_FALSE(ccUIRect(5, 6, 10, 10).nullIntersection(ccUIRect(14, 15, 10, 10)));
}

TEST(ccUIRect, unionBoundsAndHasNullAsIdentity)
{
  EXPECT_EQ(ccUIRect(0, 0, 2, 2) | ccUIRect(8, 9, 1, 1), ccUIRect(0, 0, 9, 10));
  EXPECT_EQ(ccUIRect(3, 4, 5, 6) | ccUIRect(-50, -50, 0, 7), ccUIRect(3, 4, 5, 6));
  EXPECT_EQ(ccUIRect(-50, -50, 0, 7) | ccUIRect(3, 4, 5, 6), ccUIRect(3, 4, 5, 6));
}

TEST(ccUIRect, containsEveryNullRect)
{
  EXPECT_TRUE(ccUIRect(0, 0, 4, 4).contains(ccUIRect(0, 0, 4, 4)));
  EXPECT_FALSE(ccUIRect(0, 0, 4, 4).contains(ccUIRect(0, 0, 5, 4)));
  EXPECT_FALSE(ccUIRect(0, 0, 4, 4).contains(ccUIRect(-1, 0, 4, 4)));
  EXPECT_TRUE(ccUIRect(0, 0, 4, 4).contains(ccUIRect(90, 90, 0, 4)));
  EXPECT_FALSE(ccUIRect().contains(ccUIRect(0, 0, 1, 1)));
}

TEST(ccUIRect, settersMoveAndResize)
{
  ccUIRect r(1, 2, 3, 4);
  r.ul(ccPair<long>(10, 20));
  EXPECT_EQ(r, ccUIRect(10, 20, 3, 4));
  r.sz(ccPair<long>(7, 8));
  EXPECT_EQ(r, ccUIRect(10, 20, 7, 8));
}

TEST(ccUIRect, shifts)
{
  ccUIRect r(1, 2, 3, 4);
  EXPECT_EQ(r + ccPair<long>(10, -20), ccUIRect(11, -18, 3, 4));
  EXPECT_EQ(r - ccPair<long>(10, -20), ccUIRect(-9, 22, 3, 4));
  r += ccPair<long>(1, 1);
  r -= ccPair<long>(0, 3);
  EXPECT_EQ(r, ccUIRect(2, 0, 3, 4));
}

TEST(ccUIRect, endlessValuesHaveTheirEdges)
{
  expectEdges(ccUIRect::inf, -kFar, -kFar, kFar, kFar);
  expectEdges(ccUIRect::firstQuad, 0, 0, kFar, kFar);
  EXPECT_EQ(ccUIRect::kFar, kFar);
  EXPECT_EQ(ccUIRect::inf.width(), 0x7FFFFFFEL);  // still a long of 32 bits
}

TEST(ccUIRect, endlessEdgesStayUnderAShift)
{
  EXPECT_EQ(ccUIRect::inf + ccPair<long>(1000, -1000), ccUIRect::inf);
  EXPECT_EQ(ccUIRect::inf - ccPair<long>(1000, -1000), ccUIRect::inf);
  expectEdges(ccUIRect::firstQuad + ccPair<long>(30, -40), 30, -40, kFar, kFar);
  expectEdges(ccUIRect::firstQuad - ccPair<long>(30, -40), -30, 40, kFar, kFar);
}

TEST(ccUIRect, firstQuadCutsLikeEndlessPlanes)
{
  EXPECT_EQ(ccUIRect::firstQuad & ccUIRect(-5, -5, 20, 30), ccUIRect(0, 0, 15, 25));
  EXPECT_EQ((ccUIRect::firstQuad + ccPair<long>(3, 4)) & ccUIRect(0, 0, 10, 10), ccUIRect(3, 4, 7, 6));
}

TEST(ccUIRect, movingAnEndlessRectKeepsItEndless)
{
  ccUIRect r = ccUIRect::firstQuad;
  r.ul(ccPair<long>(7, 8));
  expectEdges(r, 7, 8, kFar, kFar);
}

TEST(ccUIRect, arithmeticIsClampedAndNeverOverflows)
{
  long const most = std::numeric_limits<long>::max();
  long const least = std::numeric_limits<long>::min();
  expectEdges(ccUIRect(0, 0, most, most), 0, 0, kFar, kFar);
  expectEdges(ccUIRect(least, least, most, most), -kFar, -kFar, -1, -1);
  expectEdges(ccUIRect(0, 0, least, 5), 0, 0, -kFar, 5);
  expectEdges(ccUIRect(1, 1, 2, 2) + ccPair<long>(most, least), kFar, -kFar, kFar, -kFar);
  expectEdges(ccUIRect(1, 1, 2, 2) - ccPair<long>(most, least), -kFar, kFar, -kFar, kFar);
  ccUIRect r(5, 5, 1, 1);
  r.sz(ccPair<long>(most, 3));
  expectEdges(r, 5, 5, kFar, 8);
  r.ul(ccPair<long>(most, least));
  EXPECT_EQ(r.left(), kFar);
  EXPECT_EQ(r.top(), -kFar);
}

TEST(ccUIRect, setAlgebraHoldsPelByPel)
{
  std::mt19937 random(4711);
  for (int run = 0; run < 2000; ++run) {
    ccUIRect const a = randomRect(random);
    ccUIRect const b = randomRect(random);
    ccUIRect const meet = a & b;
    ccUIRect const bound = a | b;
    EXPECT_EQ(a.nullIntersection(b), meet.isNull());
    EXPECT_TRUE(bound.contains(a) && bound.contains(b));
    EXPECT_TRUE(a.contains(meet) && b.contains(meet));
    EXPECT_EQ(meet, b & a);
    EXPECT_EQ(bound, b | a);
    if (meet.isNull()) {
      EXPECT_EQ(meet.lr(), ccPair<long>(0, 0));
    }
    for (long y = -8; y < 16; ++y)
      for (long x = -8; x < 16; ++x) {
        ccPair<long> const p(x, y);
        ASSERT_EQ(meet.within(p), a.within(p) && b.within(p));
        ASSERT_TRUE(bound.within(p) || !(a.within(p) || b.within(p)));
      }
    // No side of the bounding rectangle can come closer.
    if (!a.isNull() && !b.isNull()) {
      EXPECT_EQ(bound.left(), std::min(a.left(), b.left()));
      EXPECT_EQ(bound.bottom(), std::max(a.bottom(), b.bottom()));
    }
  }
}
