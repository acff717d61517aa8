#include "geometry/rect.h"

#include "geometry/affine_rect.h"
#include "geometry/gen_rect.h"
#include "tests/geometry/shape_support.h"

using namespace krs_test;

namespace {

void expectSame(ccAffineRectangle const& a, ccAffineRectangle const& b, double tolerance)
{
  expectNear(a.center(), b.center(), tolerance);
  EXPECT_NEAR(a.xLength(), b.xLength(), tolerance);
  EXPECT_NEAR(a.yLength(), b.yLength(), tolerance);
  EXPECT_NEAR(ccRadian::signedNorm(a.xRotation() - b.xRotation()).value(), 0, 1e-9);
  EXPECT_NEAR(ccRadian::signedNorm(a.skew() - b.skew()).value(), 0, 1e-9);
}

ccAffineRectangle randomAffine(Random& r)
{
  return ccAffineRectangle(r.vector(100), r.magnitude(0.1, 100), r.magnitude(0.1, 100), r.angle(),
                           deg(r.in(-80, 80) + (r.chance(3) ? 180 : 0)));
}

}  // namespace

TEST(Rect, keepsANegativeSize)
{
  ccRect const r(V(10, 20), V(-4, 6));

  EXPECT_EQ(r.width(), -4);
  EXPECT_EQ(r.lr(), V(6, 26));
  EXPECT_EQ(r.center(), V(8, 23));
  EXPECT_EQ(r.encloseRect(), ccRect(V(6, 20), V(4, 6)));
  EXPECT_TRUE(r.contains(V(6, 26)));
  EXPECT_TRUE(r.contains(V(10, 20)));
  EXPECT_FALSE(r.contains(V(5.999, 23)));
}

TEST(Rect, theNullRectangleIsNeutral)
{
  ccRect const a(V(1, 2), V(3, 4)), b(V(-5, 10), V(1, 1)), null;

  EXPECT_TRUE(null.isNull());
  EXPECT_FALSE(ccRect(V(0, 0), V(0, 1)).isNull());
  EXPECT_FALSE(ccRect(V(1, 0), V(0, 0)).isNull());
  EXPECT_EQ(a | null, a);
  EXPECT_EQ(null | a, a);
  EXPECT_EQ(a | b, ccRect(V(-5, 2), V(9, 9)));
  EXPECT_EQ(b | a, a | b);
  EXPECT_TRUE((null | null).isNull());
}

TEST(Rect, distanceIsToTheOutlineInsideToo)
{
  ccRect const r(V(0, 0), V(10, 6));

  EXPECT_EQ(r.distToPoint(V(4, 2)), 2);
  EXPECT_EQ(r.distToPoint(V(13, 10)), 5);
  EXPECT_EQ(r.distToPoint(V(5, -7)), 7);
}

TEST(Rect, staysARectUnderPositiveScalesOnly)
{
  ccRect const r(V(1, 2), V(3, 4));
  auto const isRect = [&](ccXform<2> const& x) { return dynamic_cast<ccRect const*>(r.map(x).get()) != nullptr; };

  EXPECT_TRUE(isRect(ccXform<2>(2, 3, V(5, 5))));
  EXPECT_FALSE(isRect(ccXform<2>(-2, 3, V())));
  EXPECT_FALSE(isRect(ccXform<2>(ccMatrix<2>(0, -1, 1, 0), V())));
  EXPECT_FALSE(isRect(ccXform<2>(ccMatrix<2>(1, 0.1, 0, 1), V())));
  EXPECT_EQ(dynamic_cast<ccRect const&>(*r.map(ccXform<2>(2, 3, V(5, 5)))), ccRect(V(7, 11), V(6, 12)));
  EXPECT_NE(dynamic_cast<ccAffineRectangle const*>(r.map(ccXform<2>(-2, 3, V())).get()), nullptr);
}

TEST(Rect, numbersAreFinite)
{
  EXPECT_THROW(ccRect(V(kNan, 0), V(1, 1)), ccShapesError::BadParams);
  EXPECT_THROW(ccRect(V(0, 0), V(1, cfInfinity)), ccShapesError::BadParams);
}

TEST(AffineRect, cornersAndTheUnitSquareByHand)
{
  // The x side runs along +x; a skew of 45 degrees turns the y side from 90 to 135 degrees.
  double const root = std::sqrt(2.0);
  ccAffineRectangle const r(V(10, 20), 8, 4 * root, deg(0), deg(45));

  expectNear(r.xSide(), V(8, 0), 1e-14);
  expectNear(r.ySide(), V(-4, 4), 1e-14);
  expectNear(r.cornerPo(), V(8, 18), 1e-14);
  expectNear(r.cornerPx(), V(16, 18), 1e-14);
  expectNear(r.cornerPopp(), V(12, 22), 1e-14);
  expectNear(r.cornerPy(), V(4, 22), 1e-14);
  for (int id = 0; id < 4; ++id)
    expectNear(r.corner(id) + r.corner((id + 2) % 4), r.center() * 2.0, 1e-13);
  EXPECT_THROW(r.corner(4), ccShapesError::BadParams);
  EXPECT_THROW(r.corner(-1), ccShapesError::BadParams);

  ccXform<2> const t = r.unitXform();
  expectNear(t.mapPoint(V(0, 0)), r.cornerPo(), 1e-13);
  expectNear(t.mapPoint(V(1, 0)), r.cornerPx(), 1e-13);
  expectNear(t.mapPoint(V(1, 1)), r.cornerPopp(), 1e-13);
  expectNear(t.mapPoint(V(0, 1)), r.cornerPy(), 1e-13);
  expectNear(t.mapPoint(V(0.5, 0.5)), r.center(), 1e-13);
  expectNear(r.encloseRect().ul(), V(4, 18), 1e-13);
  expectNear(r.encloseRect().sz(), V(12, 4), 1e-13);
}

TEST(AffineRect, handlesLieInTheDirectionsOfRotationAndSkew)
{
  Random random(1);
  for (int i = 0; i < rounds(500); ++i) {
    ccAffineRectangle const r = randomAffine(random);
    ccXform<2> const t = r.unitXform();
    V const x = t.mapPoint(V(1, 0.5)) - r.center(), y = t.mapPoint(V(0.5, 0)) - r.center();
    EXPECT_NEAR(ccRadian::signedNorm(x.angle() - r.xRotation()).value(), 0, 1e-9);
    EXPECT_NEAR(ccRadian::signedNorm(y.angle() - r.xRotation() - deg(270) - r.skew()).value(), 0, 1e-9);
  }
}

TEST(AffineRect, badSkewsLieWithinAThousandthOfAQuarterTurn)
{
  double const quarter = cfPi / 2;
  for (double const about : {quarter, -quarter, 3 * quarter, 5 * quarter}) {
    EXPECT_TRUE(ccAffineRectangle::isBadSkew(ccRadian(about)));
    EXPECT_TRUE(ccAffineRectangle::isBadSkew(ccRadian(about + 0.000999)));
    EXPECT_TRUE(ccAffineRectangle::isBadSkew(ccRadian(about - 0.000999)));
    EXPECT_FALSE(ccAffineRectangle::isBadSkew(ccRadian(about + 0.001001)));
    EXPECT_FALSE(ccAffineRectangle::isBadSkew(ccRadian(about - 0.001001)));
    for (double inside = -0.000999; inside < 0.001; inside += 0.0001)  // a step of 0.002 always leaves the zone
      EXPECT_FALSE(ccAffineRectangle::isBadSkew(ccRadian(about + inside + 0.002)));
  }
  EXPECT_FALSE(ccAffineRectangle::isBadSkew(ccRadian(0)));
  EXPECT_FALSE(ccAffineRectangle::isBadSkew(ccRadian(cfPi)));
  EXPECT_TRUE(ccAffineRectangle::isBadSkew(ccRadian(kNan)));
  EXPECT_TRUE(ccAffineRectangle::isBadSkew(ccRadian(cfInfinity)));
}

TEST(AffineRect, badArgumentsChangeNothing)
{
  EXPECT_THROW(ccAffineRectangle(V(), 1, 1, ccRadian(0), ccRadian(cfPi / 2)), ccShapesError::DegenerateShape);
  EXPECT_THROW(ccAffineRectangle(V(), -1, 1, ccRadian(0), ccRadian(0)), ccShapesError::BadParams);
  EXPECT_THROW(ccAffineRectangle(V(), 1, kNan, ccRadian(0), ccRadian(0)), ccShapesError::BadParams);
  EXPECT_THROW(ccAffineRectangle(V(kNan, 0), 1, 1, ccRadian(0), ccRadian(0)), ccShapesError::BadParams);
  EXPECT_THROW(ccAffineRectangle(V(), 1, 1, ccRadian(kNan), ccRadian(0)), ccShapesError::BadParams);
  EXPECT_THROW(ccAffineRectangle(V(), 1, 1, ccRadian(0), ccRadian(kNan)), ccShapesError::BadParams);

  ccAffineRectangle const given(V(1, 2), 3, 4, ccRadian(0.5), ccRadian(0.25));
  ccAffineRectangle r = given;
  EXPECT_THROW(r.center(V(kNan, 1)), ccShapesError::BadParams);
  EXPECT_THROW(r.xLength(-1), ccShapesError::BadParams);
  EXPECT_THROW(r.yLength(cfInfinity), ccShapesError::BadParams);
  EXPECT_THROW(r.xRotation(ccRadian(kNan)), ccShapesError::BadParams);
  EXPECT_THROW(r.skew(ccRadian(cfPi / 2)), ccShapesError::DegenerateShape);
  EXPECT_EQ(r, given);
  r.skew(ccRadian(2 * cfPi + 1));
  EXPECT_NEAR(r.skew().value(), 1, 1e-14);  // kept between minus and plus half a turn
  r.xLength(0);
  EXPECT_EQ(r.xLength(), 0);
}

TEST(AffineRect, cornersMapWithTheRectangle)
{
  Random random(2);
  for (int i = 0; i < rounds(1000); ++i) {
    ccAffineRectangle const r = randomAffine(random);
    ccXform<2> const x = random.chance(3) ? random.similarity(2, random.chance(2)) : random.affine();
    ccAffineRectangle const image = r.map(x);
    for (int id = 0; id < 4; ++id)
      expectNear(image.corner(id), x.mapPoint(r.corner(id)), 1e-8);
    expectSame(image.map(x.inverse()), r, 1e-8);
  }
}

TEST(AffineRect, rigidMovesNeverChangeItsLengths)
{
  ccAffineRectangle r(V(3, 4), 17.3, 2.9, ccRadian(1), ccRadian(0.3));
  for (int i = 0; i < 1000; ++i)
    r = r.map(cc2Rigid(ccDegree(0.37 * i), V(1, -2)).linear());

  EXPECT_EQ(r.xLength(), 17.3);
  EXPECT_EQ(r.yLength(), 2.9);
  EXPECT_EQ(r.skew(), ccRadian(0.3));
}

TEST(AffineRect, aSideOfNoLengthKeepsItsDirection)
{
  ccAffineRectangle const r(V(0, 0), 0, 5, deg(30), deg(20));

  ccAffineRectangle const image = r.map(ccXform<2>(2, 1, V()));
  EXPECT_EQ(image.xLength(), 0);
  EXPECT_NEAR(image.xRotation().value(), std::atan2(0.5, std::sqrt(3.0)), 1e-14);
  expectSame(image.map(ccXform<2>(0.5, 1, V())), r, 1e-12);
}

TEST(AffineRect, mapsThatFlattenItAreSingular)
{
  ccAffineRectangle const r(V(0, 0), 4, 5, deg(30), deg(20));

  EXPECT_THROW(r.map(ccXform<2>(1, 0, V())), ccMathError::Singular);
  EXPECT_THROW(r.map(ccXform<2>(0, 0, V())), ccMathError::Singular);
  EXPECT_THROW(r.map(ccXform<2>(1, 1e-5, V())), ccMathError::Singular);
}

TEST(AffineRect, aSizeDragPutsTheCornerOnThePointerAndKeepsTheOppositeOne)
{
  Random random(3);
  int results = 0;
  for (int i = 0; i < rounds(2000); ++i) {
    ccAffineRectangle const r = randomAffine(random);
    int const id = random.below(4);
    V const p = r.corner(id) + random.vector(100);
    auto const dragged = cfAffineRectSize(r, id, p);
    // Usable if the pointer stays on its side of the fixed corner along both sides.
    V const o = r.corner((id + 2) % 4), own = r.corner(id) - o, d = p - o;
    V const x = V::polar(1, r.xRotation()), y = V::polar(1, r.xRotation() + r.skew() + deg(90));
    double const det = cf_cross(x, y);
    bool const usable = cf_cross(d, y) / det * (cf_cross(own, y) / det) > 0 && cf_cross(x, d) / det * (cf_cross(x, own) / det) > 0;
    ASSERT_EQ(dragged.has_value(), usable);
    if (!dragged)
      continue;
    ++results;
    expectNear(dragged->corner(id), p, 1e-10);
    expectNear(dragged->corner((id + 2) % 4), o, 1e-10);
    EXPECT_EQ(dragged->xRotation(), r.xRotation());
    EXPECT_EQ(dragged->skew(), r.skew());
  }
  EXPECT_GT(results, 500);
}

TEST(AffineRect, aSizeDragAcrossTheFixedCornerHasNoResult)
{
  ccAffineRectangle const r(V(5, 5), 10, 10, deg(0), deg(0));

  auto const grown = cfAffineRectSize(r, 2, V(20, 30));
  ASSERT_TRUE(grown);
  expectSame(*grown, ccAffineRectangle(V(10, 15), 20, 30, deg(0), deg(0)), 1e-13);
  EXPECT_FALSE(cfAffineRectSize(r, 2, V(-1, 10)));
  EXPECT_FALSE(cfAffineRectSize(r, 2, V(10, -1)));
  EXPECT_FALSE(cfAffineRectSize(r, 2, V(0, 10)));
  EXPECT_FALSE(cfAffineRectSize(r, 2, V(0.9e-10, 10)));
  EXPECT_TRUE(cfAffineRectSize(r, 2, V(1.1e-10, 10)));
  EXPECT_FALSE(cfAffineRectSize(r, 2, V(kNan, 10)));
  EXPECT_THROW(cfAffineRectSize(r, 4, V(1, 1)), ccShapesError::BadParams);
  EXPECT_THROW(cfAffineRectSize(r, -1, V(1, 1)), ccShapesError::BadParams);
}

TEST(AffineRect, convertsToAGeneralRectangleAndBack)
{
  Random random(4);
  for (int i = 0; i < rounds(1000); ++i) {
    ccAffineRectangle const r = randomAffine(random);
    ccGenRect const g(r);
    EXPECT_EQ(g.handed(), std::cos(r.skew().value()) > 0 ? 1 : -1);
    // The unit square (0,0) to (1,1) of the one is (-1,-1) to (1,1) of the other.
    for (V const& u : {V(0, 0), V(1, 0), V(1, 1), V(0, 1)})
      expectNear(g.center() + g.fromUnit(u * 2.0 - V(1, 1)), r.unitXform().mapPoint(u), 1e-10);
    expectSame(ccAffineRectangle(g), r, 1e-10);
  }
}
