#include "foundation/angle.h"
#include "foundation/math_error.h"
#include "foundation/pair.h"
#include "foundation/pel_rect.h"
#include "foundation/pels.h"
#include "foundation/rounding.h"
#include "foundation/vector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace {

template <class A, class B> concept CanAdd = requires(A a, B b) { a + b; };
template <class A, class B> concept CanCompare = requires(A a, B b) { a < b; };

constexpr double infinity = std::numeric_limits<double>::infinity();
double const notANumber = std::nan("");

}  // namespace

TEST(Pair, isReadAndWrittenByItsNames)
{
  ccPair<long> p;
  EXPECT_EQ(p.x(), 0);
  EXPECT_EQ(p.y(), 0);

  p.x() = 3;
  p.y() = -4;

  EXPECT_EQ(p, ccPair<long>(3, -4));
  EXPECT_NE(p, ccPair<long>(3, 4));
  EXPECT_NE(p, ccPair<long>(-3, -4));
}

TEST(Pair, addsSubtractsAndScalesByElements)
{
  ccPair<long> const a(7, -3), b(2, 5);

  EXPECT_EQ(a + b, ccPair<long>(9, 2));
  EXPECT_EQ(a - b, ccPair<long>(5, -8));
  EXPECT_EQ(-a, ccPair<long>(-7, 3));
  EXPECT_EQ(a * 2L, ccPair<long>(14, -6));
  EXPECT_EQ(2L * a, ccPair<long>(14, -6));
  EXPECT_EQ(a / 2L, ccPair<long>(3, -1));
  EXPECT_EQ(ccPair<double>(1, 3) / 2.0, ccPair<double>(0.5, 1.5));
  ccPair<long> c = a;
  c += b;
  c -= ccPair<long>(1, 1);
  EXPECT_EQ(c, ccPair<long>(8, 1));
}

TEST(Pair, isOrderedByXThenByY)
{
  EXPECT_LT(ccPair<long>(1, 9), ccPair<long>(2, 0));
  EXPECT_LT(ccPair<long>(1, 1), ccPair<long>(1, 2));
  EXPECT_FALSE(ccPair<long>(2, 0) < ccPair<long>(1, 9));
  EXPECT_FALSE(ccPair<long>(1, 2) < ccPair<long>(1, 2));
}

TEST(Pair, convertsToWholeNumbersTowardZeroAndSaturates)
{
  EXPECT_EQ(ccPair<long>(ccPair<double>(2.9, -2.9)), ccPair<long>(2, -2));
  EXPECT_EQ(ccPair<long>(ccPair<double>(1e30, -1e30)), ccPair<long>(2147483647L, -2147483647L - 1));
  EXPECT_EQ(ccPair<long>(ccPair<double>(infinity, notANumber)), ccPair<long>(2147483647L, 0));
  EXPECT_EQ(ccPair<double>(ccPair<long>(-5, 6)), ccPair<double>(-5, 6));
}

TEST(Vector, dotLengthAndDistanceAreThoseOfThePlane)
{
  ccVector<2> const v(3, 4);

  EXPECT_EQ(v.dot(ccVector<2>(2, -1)), 2);
  EXPECT_EQ(v.len(), 5);
  EXPECT_EQ(v.distance(ccVector<2>(0, 8)), 5);
  EXPECT_EQ(v[0], 3);
  EXPECT_EQ(v[1], 4);
  EXPECT_EQ(v.unit(), ccVector<2>(0.6, 0.8));
}

TEST(Vector, projectGivesTheComponentAlong)
{
  EXPECT_EQ(ccVector<2>(3, 4).project(ccVector<2>(10, 0)), ccVector<2>(3, 0));
  EXPECT_EQ(ccVector<2>(2, 0).project(ccVector<2>(1, 1)), ccVector<2>(1, 1));
}

TEST(Vector, unitAndProjectionOfAZeroVectorAreSingular)
{
  EXPECT_THROW(ccVector<2>().unit(), ccMathError::Singular);
  EXPECT_THROW(ccVector<2>(1, 1).project(ccVector<2>()), ccMathError::Singular);
}

TEST(Vector, angleGrowsFromXTowardsY)
{
  EXPECT_EQ(ccVector<2>(2, 0).angle().value(), 0);
  EXPECT_DOUBLE_EQ(ccVector<2>(0, 2).angle().value(), cfPi / 2);
  EXPECT_DOUBLE_EQ(ccVector<2>(-1, 0).angle().value(), cfPi);
  EXPECT_DOUBLE_EQ(ccVector<2>(0, -1).angle().value(), -cfPi / 2);
  EXPECT_EQ(ccVector<2>(0.0, -0.0).angle().value(), 0);
  EXPECT_EQ(ccVector<2>(-0.0, 0.0).angle().value(), 0);
  ccVector<2> const p = ccVector<2>::polar(2, ccRadian(ccDegree(90)));
  EXPECT_NEAR(p.x(), 0, 1e-15);
  EXPECT_NEAR(p.y(), 2, 1e-15);
}

TEST(Vector, pointAndVectorServeForEachOther)
{
  ccPoint const point = ccVector<2>(1, 2) + ccVector<2>(1, 1);
  ccVector<2> const vector = point;
  ccPoint const sum = point + vector;

  EXPECT_EQ(point, ccVector<2>(2, 3));
  EXPECT_EQ(sum, ccPoint(4, 6));
  EXPECT_EQ(ccPoint(ccPair<long>(3, -4)), ccVector<2>(3, -4));
  EXPECT_EQ(ccPair<double>(ccVector<2>(0.5, 1.5)), ccPair<double>(0.5, 1.5));
}

TEST(Angle, radiansAndDegreesConvertIntoEachOther)
{
  EXPECT_DOUBLE_EQ(ccRadian(ccDegree(180)).value(), 3.14159265358979323846);
  ccDegree const degrees = ccRadian(3.14159265358979323846 / 4);
  EXPECT_DOUBLE_EQ(degrees.value(), 45);
  EXPECT_EQ(ccDegree(90) / ccDegree(60), 1.5);
  EXPECT_EQ((ccDegree(90) / 2.0).value(), 45);
  EXPECT_EQ((2 * -ccDegree(90) + ccDegree(1) - ccDegree(2)).value(), -181);
  EXPECT_LT(ccRadian(1), ccRadian(2));
}

TEST(Angle, mixedOperandsAndBareNumbersDoNotCompile)
{
  EXPECT_TRUE((CanAdd<ccRadian, ccRadian>));
  EXPECT_FALSE((CanAdd<ccRadian, ccDegree>));
  EXPECT_FALSE((CanAdd<ccDegree, ccRadian>));
  EXPECT_FALSE((CanAdd<ccDegree, int>));
  EXPECT_TRUE((CanCompare<ccDegree, ccDegree>));
  EXPECT_FALSE((CanCompare<ccDegree, ccRadian>));
  EXPECT_FALSE((CanCompare<ccDegree, int>));
}

TEST(Angle, normGivesZeroToBelowTheFullCircle)
{
  struct {
    double from, to;
  } const cases[] = {{0, 0}, {359, 359}, {360, 0}, {361, 1}, {-1, 359}, {-360, 0}, {720.5, 0.5}, {-725, 355}};
  for (auto const& c : cases)
    EXPECT_EQ(ccDegree::norm(ccDegree(c.from)).value(), c.to) << c.from;
  EXPECT_NEAR(ccRadian::norm(ccRadian(-1)).value(), 2 * cfPi - 1, 1e-15);
  EXPECT_EQ(ccRadian::norm(ccRadian(2 * cfPi)).value(), 0);
}

TEST(Angle, normThatRoundsToTheFullCircleIsZero)
{
  EXPECT_EQ(ccDegree::norm(ccDegree(-1e-17)).value(), 0);
  EXPECT_EQ(ccRadian::norm(ccRadian(-1e-20)).value(), 0);
  EXPECT_FALSE(std::signbit(ccDegree::norm(ccDegree(-360)).value()));
}

TEST(Angle, signedNormGivesMinusHalfExclusiveToHalfInclusive)
{
  struct {
    double from, to;
  } const cases[] = {{0, 0},      {180, 180}, {-180, 180}, {181, -179}, {-179, -179},
                     {540, 180},  {-540, 180}, {359, -1},  {-359, 1},   {1e-13, 1e-13},
                     {-1e-13, -1e-13}};
  for (auto const& c : cases)
    EXPECT_EQ(ccDegree::signedNorm(ccDegree(c.from)).value(), c.to) << c.from;
  EXPECT_EQ(ccRadian::signedNorm(ccRadian(-cfPi)).value(), cfPi);
}

TEST(PelRect, isHalfOpenAndNullWithoutASide)
{
  ccPelRect const r(ccPair<long>(2, 3), ccPair<long>(4, 5));

  EXPECT_EQ(r.lr(), ccPair<long>(6, 8));
  EXPECT_EQ(r, ccPelRect::fromCorners(ccPair<long>(2, 3), ccPair<long>(6, 8)));
  EXPECT_TRUE(r.within(ccPair<long>(2, 3)));
  EXPECT_TRUE(r.within(ccPair<long>(5, 7)));
  EXPECT_FALSE(r.within(ccPair<long>(6, 7)));
  EXPECT_FALSE(r.within(ccPair<long>(5, 8)));
  EXPECT_FALSE(r.within(ccPair<long>(1, 3)));
  EXPECT_TRUE(ccPelRect().isNull());
  EXPECT_TRUE(ccPelRect(0, 0, 0, 5).isNull());
  EXPECT_TRUE(ccPelRect(0, 0, 5, -1).isNull());
  EXPECT_FALSE(ccPelRect(0, 0, 5, -1).within(ccPair<long>(1, -1)));
}

TEST(PelRect, intersectionIsTheCommonPartOrNull)
{
  ccPelRect const r(0, 0, 10, 10);

  EXPECT_EQ((r & ccPelRect(5, -3, 20, 6)), ccPelRect(5, 0, 5, 3));
  EXPECT_TRUE((r & ccPelRect(10, 0, 5, 5)).isNull());
  EXPECT_TRUE((r & ccPelRect(0, -5, 5, 5)).isNull());
  EXPECT_TRUE((r & ccPelRect(2, 2, 0, 5)).isNull());
  EXPECT_EQ((r & ccPelRect(-2147483647L, 9, 2147483647L, 5)), ccPelRect());
  EXPECT_EQ((ccPelRect(2147483640L, 0, 100, 1) & ccPelRect(2147483642L, 0, 2147483647L, 1)).ul().x(), 2147483642L);
}

TEST(Pels, packedColoursHaveTheirBitsWhereTheyBelong)
{
  EXPECT_EQ(ccPackedRGB16Pel(255, 0, 0).word(), 0xF800);
  EXPECT_EQ(ccPackedRGB16Pel(0, 255, 0).word(), 0x07E0);
  EXPECT_EQ(ccPackedRGB16Pel(0, 0, 255).word(), 0x001F);
  ccPackedRGB16Pel const grey{std::uint16_t{63390}};
  EXPECT_EQ(grey.red(), 240);
  EXPECT_EQ(grey.green(), 240);
  EXPECT_EQ(grey.blue(), 240);

  ccPackedRGB32Pel const pel(1, 2, 3);
  unsigned char bytes[4];
  std::memcpy(bytes, &pel, 4);
  EXPECT_EQ(pel.word(), 0x010203u);
  EXPECT_EQ(bytes[0], 3);
  EXPECT_EQ(bytes[1], 2);
  EXPECT_EQ(bytes[2], 1);
  EXPECT_EQ(bytes[3], 0);
  EXPECT_EQ(pel.red(), 1);
  EXPECT_EQ(pel.green(), 2);
  EXPECT_EQ(pel.blue(), 3);
}

TEST(Pels, imageFormatsHaveTheirNumbers)
{
  EXPECT_EQ(int{ceImageFormatNone}, -1);
  EXPECT_EQ(int{ceImageFormatGrey8}, 1);
  EXPECT_EQ(int{ceImageFormatGrey16}, 2);
  EXPECT_EQ(int{ceImageFormatRGB16}, 3);
  EXPECT_EQ(int{ceImageFormatRGB32}, 4);
  EXPECT_EQ(sizeof(ceImageFormat), 4u);
}

TEST(Rounding, forgivesTheNoiseOfAFewMultiplications)
{
  EXPECT_EQ(floorT(3 - 1e-12), 3);
  EXPECT_EQ(floorT(3 - 1e-9), 2);
  EXPECT_EQ(floorT(3.5), 3);
  EXPECT_EQ(floorT(-3 - 1e-12), -3);
  EXPECT_EQ(floorT(-3 - 1e-9), -4);
  EXPECT_EQ(ceilT(3 + 1e-12), 3);
  EXPECT_EQ(ceilT(3 + 1e-9), 4);
  EXPECT_EQ(ceilT(-3 + 1e-12), -3);
  EXPECT_EQ(ceilT(-3 + 1e-9), -2);
  EXPECT_EQ(floorT(0), 0);
  EXPECT_EQ(ceilT(0), 0);
}

TEST(Rounding, longFormsSaturateAt32Bits)
{
  EXPECT_EQ(floorTL(2.5), 2);
  EXPECT_EQ(ceilTL(2.5), 3);
  EXPECT_EQ(floorTL(-2.5), -3);
  EXPECT_EQ(floorTL(1e300), 2147483647L);
  EXPECT_EQ(ceilTL(-1e300), -2147483647L - 1);
  EXPECT_EQ(floorTL(infinity), 2147483647L);
  EXPECT_EQ(ceilTL(notANumber), 0);
  EXPECT_EQ(floorTL(-2147483648.0), -2147483647L - 1);
}
