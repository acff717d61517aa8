#include "foundation/math_error.h"
#include "foundation/xform.h"
#include "foundation/xform_base.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

using V = ccVector<2>;

void expectNear(V const& a, V const& b, double tolerance)
{
  EXPECT_NEAR(a.x(), b.x(), tolerance);
  EXPECT_NEAR(a.y(), b.y(), tolerance);
}

void expectNear(ccMatrix<2> const& m, double a, double b, double c, double d, double tolerance)
{
  EXPECT_NEAR(m.element(0, 0), a, tolerance);
  EXPECT_NEAR(m.element(0, 1), b, tolerance);
  EXPECT_NEAR(m.element(1, 0), c, tolerance);
  EXPECT_NEAR(m.element(1, 1), d, tolerance);
}

}  // namespace

TEST(Matrix, isGivenByRows)
{
  ccMatrix<2> const m(1, 2, 3, 4);

  EXPECT_EQ(m * V(10, 100), V(210, 430));
  EXPECT_EQ(m.element(0, 1), 2);
  EXPECT_EQ(m.element(1, 0), 3);
  EXPECT_EQ(m.determinant(), -2);
  EXPECT_EQ(m * ccMatrix<2>(0, 1, 1, 0), ccMatrix<2>(2, 1, 4, 3));
}

TEST(Matrix, turnsEachAxisByItsOwnAngle)
{
  ccMatrix<2> const m(ccRadian(ccDegree(30)), ccRadian(ccDegree(60)), 2, 3);

  double const half = 0.5, root = std::sqrt(3.0) / 2;
  expectNear(m, 2 * root, -3 * root, 2 * half, 3 * half, 1e-14);
  expectNear(ccMatrix<2>(ccRadian(ccDegree(90)), 2), 0, -2, 2, 0, 1e-15);
}

TEST(Matrix, readersRebuildEveryMatrix)
{
  std::mt19937 random(1);
  std::uniform_real_distribution<double> value(-3, 3);
  for (int i = 0; i < 1000; ++i) {
    double const a = value(random), b = value(random), c = value(random), d = value(random);
    ccMatrix<2> const m(a, b, c, d);

    EXPECT_GE(m.xScale(), 0);
    EXPECT_GE(m.yScale(), 0);
    expectNear(ccMatrix<2>(m.xRot(), m.yRot(), m.xScale(), m.yScale()), a, b, c, d, 1e-13);
    expectNear(ccMatrix<2>::fromRotation(m.rotation(), m.shear(), m.aspect(), m.scale()), a, b, c, d, 1e-12);
  }
}

TEST(Matrix, inverseUndoesOrIsSingular)
{
  expectNear(ccMatrix<2>(1, 2, 3, 4).inverse(), -2, 1, 1.5, -0.5, 1e-15);
  EXPECT_THROW(ccMatrix<2>(1, 2, 2, 4).inverse(), ccMathError::Singular);
  EXPECT_THROW(ccMatrix<2>(0, 0, 0, 0).inverse(), ccMathError::Singular);
  EXPECT_THROW(ccMatrix<2>(std::nan(""), 0, 0, 1).inverse(), ccMathError::Singular);
  EXPECT_THROW(ccMatrix<2>(1e200, 0, 0, 1e200).inverse(), ccMathError::Singular);
}

TEST(Matrix, addingToTheRotationTurnsTheWholeMap)
{
  std::mt19937 random(2);
  std::uniform_real_distribution<double> value(-3, 3);
  for (int i = 0; i < 300; ++i) {
    ccMatrix<2> const m(value(random), value(random), value(random), value(random));  // mirrors among them
    double const t = value(random), c = std::cos(t), s = std::sin(t);
    ccMatrix<2> const turned =
        ccMatrix<2>::fromRotation(m.rotation() + ccRadian(t), m.shear(), m.aspect(), m.scale());
    ccMatrix<2> const expected = ccMatrix<2>(c, -s, s, c) * m;
    expectNear(turned, expected.element(0, 0), expected.element(0, 1), expected.element(1, 0), expected.element(1, 1),
               1e-12);
  }
}

TEST(Matrix, aMirrorShowsAsAShearBeyondAQuarterTurn)
{
  EXPECT_GT(std::abs(ccRadian::signedNorm(ccMatrix<2>(1, 0, 0, -1).shear()).value()), cfPi / 2);
  EXPECT_GT(std::abs(ccRadian::signedNorm(ccMatrix<2>(2, 1, 1, -3).shear()).value()), cfPi / 2);
  EXPECT_LT(std::abs(ccRadian::signedNorm(ccMatrix<2>(2, 1, -1, 3).shear()).value()), cfPi / 2);
}

TEST(Matrix, zeroColumnsReadAsRotationZero)
{
  EXPECT_EQ(ccMatrix<2>(0, 1, 0, 1).xRot(), ccRadian(0));
  EXPECT_EQ(ccMatrix<2>(0, 1, 0, 1).xScale(), 0);
  EXPECT_EQ(ccMatrix<2>(1, 0, 1, 0).yRot(), ccRadian(0));
  EXPECT_THROW(ccMatrix<2>(0, 1, 0, 1).aspect(), ccMathError::Singular);
  EXPECT_EQ(ccMatrix<2>(1, 0, 0, 0).aspect(), 0);
}

TEST(Xform, similaritiesAreToldWithScaleAngleAndMirror)
{
  std::mt19937 random(3);
  std::uniform_real_distribution<double> value(-3, 3);
  for (int i = 0; i < 300; ++i) {
    double const angle = value(random), size = std::exp(value(random)), sign = i % 2 ? -1 : 1;
    double const c = size * std::cos(angle), s = size * std::sin(angle);
    double scale = 0;
    ccRadian rot;
    bool mirrored = false;
    ASSERT_TRUE(ccXform<2>(ccMatrix<2>(c, -sign * s, s, sign * c), V(5, 6)).similarity(scale, rot, mirrored));
    EXPECT_NEAR(scale, size, 1e-14 * size);
    EXPECT_NEAR(ccRadian::signedNorm(rot - ccRadian(angle)).value(), 0, 1e-14);
    EXPECT_EQ(mirrored, sign < 0);
    // Rigid moves have a scale of exactly 1.
    ASSERT_TRUE(cc2Rigid(ccDegree(10 * angle), V(1, 2)).linear().similarity(scale, rot, mirrored));
    EXPECT_EQ(scale, 1);
    EXPECT_FALSE(mirrored);
  }
}

TEST(Xform, unevenAndLeaningMapsAreNoSimilarities)
{
  double scale = 7;
  ccRadian rot(8);
  bool mirrored = true;
  double const nan = std::numeric_limits<double>::quiet_NaN();
  for (ccMatrix<2> const& m : {ccMatrix<2>(1, 0, 0, 1 + 1e-11), ccMatrix<2>(1, 1e-11, 0, 1), ccMatrix<2>(1, 0, 0, 0),
                               ccMatrix<2>(0, 0, 0, 1), ccMatrix<2>(nan, 0, 0, 1), ccMatrix<2>(0, 0, 0, nan)})
    EXPECT_FALSE(ccXform<2>(m, V()).similarity(scale, rot, mirrored));
  EXPECT_EQ(scale, 7);  // untouched
  EXPECT_EQ(rot, ccRadian(8));
  EXPECT_TRUE(mirrored);

  EXPECT_TRUE(ccXform<2>(ccMatrix<2>(1, 1e-13, 0, 1 + 1e-13), V()).similarity(scale, rot, mirrored));
  EXPECT_TRUE(ccXform<2>(ccMatrix<2>(0, 0, 0, 0), V()).similarity(scale, rot, mirrored));
  EXPECT_EQ(scale, 0);
}

TEST(Xform, composesFromTheRight)
{
  ccXform<2> const f(2, 3, V(1, 0)), g(ccMatrix<2>(0, -1, 1, 0), V(5, 7));

  EXPECT_EQ(f.mapPoint(V(10, 10)), V(21, 30));
  EXPECT_EQ(f.mapVector(V(10, 10)), V(20, 30));
  EXPECT_EQ((f * g).mapPoint(V(1, 2)), f.mapPoint(g.mapPoint(V(1, 2))));
  EXPECT_EQ(f * g * V(1, 2), V(7, 24));  // g gives (3, 8)
  EXPECT_EQ(ccXform<2>(), ccXform<2>::I);
  EXPECT_NE(f, g);
}

TEST(Xform, inverseUndoesOrIsSingular)
{
  ccXform<2> const f(ccMatrix<2>(0, -2, 4, 0), V(3, 5));

  EXPECT_EQ(f.inverse().mapPoint(f.mapPoint(V(9, -6))), V(9, -6));
  EXPECT_EQ(ccXform<2>::I.inverse(), ccXform<2>::I);
  EXPECT_THROW(ccXform<2>(0, 1, V()).inverse(), ccMathError::Singular);
}

TEST(Rigid, mapsMultiplesOf90Exactly)
{
  V const p(3, 7);
  struct {
    double angle;
    V to;
  } const cases[] = {{0, {3, 7}},     {90, {-7, 3}},  {180, {-3, -7}}, {270, {7, -3}},  {360, {3, 7}},
                     {-90, {7, -3}},  {450, {-7, 3}}, {-180, {-3, -7}}, {1170, {-7, 3}}, {-270, {-7, 3}}};
  for (auto const& c : cases) {
    EXPECT_EQ(cc2Rigid(ccDegree(c.angle), V()).mapVector(p), c.to) << c.angle;
    EXPECT_EQ(cc2Rigid(ccDegree(c.angle), V(1, 2)).mapPoint(p), c.to + V(1, 2)) << c.angle;
    EXPECT_EQ(cc2Rigid(ccDegree(c.angle), V(1, 2)).linear().mapPoint(p), c.to + V(1, 2)) << c.angle;
  }
}

TEST(Rigid, composesAndInverts)
{
  cc2Rigid const f(ccDegree(90), V(1, 2)), g(ccDegree(30), V(3, 4));

  EXPECT_EQ((f * g).angle(), ccDegree(120));
  EXPECT_EQ((f * g).trans(), V(-3, 5));  // (3, 4) turned to (-4, 3), and shifted
  expectNear((f * g) * V(2, 3), f * (g * V(2, 3)), 1e-14);
  EXPECT_EQ(f.inverse() * (f * V(5, 6)), V(5, 6));
  EXPECT_EQ(cc2Rigid(), cc2Rigid::I);
  EXPECT_EQ(cc2Rigid::I.mapPoint(V(5, 6)), V(5, 6));
}

TEST(PolyXform, orderOneRecoversAnAffineMap)
{
  ccXform<2> const f(ccMatrix<2>(1.5, -0.25, 0.5, 2), V(100, -40));
  std::vector<V> from, to;
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 5; ++x) {
      from.emplace_back(80.0 * x, 60.0 * y);
      to.push_back(f.mapPoint(from.back()));
    }

  cc2XformPoly const poly(from, to, 1);

  EXPECT_TRUE(poly.isLinear());
  ccXform<2> const found = poly.linearXform(V(0, 0));
  expectNear(found.matrix(), 1.5, -0.25, 0.5, 2, 1e-13);
  expectNear(found.trans(), V(100, -40), 1e-11);
  expectNear(poly.mapPoint(V(1000, -1000)), f.mapPoint(V(1000, -1000)), 1e-9);
  EXPECT_EQ(poly.linearXform(V(50, 50)), found);
}

TEST(PolyXform, isTheLeastSquaresPlaneWorkedOutByHand)
{
  // Deviations 0, 0, 0, 4 over the unit square: the plane -1 + 2x + 2y.
  std::vector<V> const from = {{0, 0}, {1, 0}, {0, 1}, {1, 1}};
  std::vector<V> const to = {{0, 0}, {1, 0}, {0, 1}, {5, 1}};

  cc2XformPoly const poly(from, to, 1);

  expectNear(poly.mapPoint(V(0, 0)), V(-1, 0), 1e-14);
  expectNear(poly.mapPoint(V(1, 0)), V(2, 0), 1e-14);
  expectNear(poly.mapPoint(V(0, 1)), V(1, 1), 1e-14);
  expectNear(poly.mapPoint(V(1, 1)), V(4, 1), 1e-14);
  expectNear(poly.linearXform(V()).matrix(), 3, 2, 0, 1, 1e-14);
}

TEST(PolyXform, residualsAreOrthogonalToEveryTerm)
{
  std::mt19937 random(7);
  std::uniform_real_distribution<double> place(-1, 1), noise(-0.5, 0.5);
  for (long order = 1; order <= 4; ++order) {
    std::vector<V> from, to;
    for (int i = 0; i < 60; ++i) {
      from.emplace_back(place(random), place(random));
      to.emplace_back(from.back().x() + noise(random), 2 * from.back().y() + noise(random));
    }
    cc2XformPoly const poly(from, to, order);
    for (long i = 0; i <= order; ++i)
      for (long j = 0; i + j <= order; ++j) {
        V sum;
        for (std::size_t k = 0; k < from.size(); ++k)
          sum += (to[k] - poly.mapPoint(from[k])) * (std::pow(from[k].x(), double(i)) * std::pow(from[k].y(), double(j)));
        expectNear(sum, V(), 1e-11);
      }
  }
}

TEST(PolyXform, highOrderIsRecoveredFarFromTheOrigin)
{
  auto const bent = [](V const& p) {
    double const u = (p.x() - 1000320) / 320, v = (p.y() - 2000240) / 240;
    return V(p.x() + 3 * u * u - 2 * u * v + v * v * v, p.y() - u + 4 * u * u * v);
  };
  std::vector<V> from, to;
  for (int y = 0; y <= 6; ++y)
    for (int x = 0; x <= 8; ++x) {
      from.emplace_back(1000000 + 80.0 * x, 2000000 + 80.0 * y);
      to.push_back(bent(from.back()));
    }

  cc2XformPoly const poly(from, to, 3);

  EXPECT_FALSE(poly.isLinear());
  expectNear(poly.mapPoint(V(1000123, 2000077)), bent(V(1000123, 2000077)), 1e-8);
  // The derivatives at the middle, where u = v = 0: only the -u of y stays.
  expectNear(poly.linearXform(V(1000320, 2000240)).matrix(), 1, 0, -1.0 / 320, 1, 1e-10);
  // At u = 1, v = 0 they are 6u/320, -2u/240, -1/320 and 4u^2/240.
  expectNear(poly.linearXform(V(1000640, 2000240)).matrix(), 1 + 6.0 / 320, -2.0 / 240, -1.0 / 320, 1 + 4.0 / 240,
             1e-10);
  ccXform<2> const near = poly.linearXform(V(1000640, 2000240));
  expectNear(near.mapPoint(V(1000640, 2000240)), bent(V(1000640, 2000240)), 1e-8);
}

TEST(PolyXform, highPowersOfALargeImageKeepTheLowOnes)
{
  // Around the middle of 16,000 pels, where the fifth power is some 10^19 times the constant term.
  auto const bent = [](V const& p) {
    double const u = p.x() / 8000 - 1, v = p.y() / 8000 - 1;
    return V(p.x() + 7 + u * u * u * u * u, p.y() - 5 + u * v + v * v * v * v);
  };
  std::vector<V> from, to;
  for (int y = 0; y <= 8; ++y)
    for (int x = 0; x <= 8; ++x) {
      from.emplace_back(2000.0 * x, 2000.0 * y);
      to.push_back(bent(from.back()));
    }

  cc2XformPoly const poly(from, to, 5);

  for (double x : {0.0, 777.0, 8000.0, 15999.0})
    expectNear(poly.mapPoint(V(x, 4321)), bent(V(x, 4321)), 1e-10);
}

TEST(PolyXform, onePointGivesAShift)
{
  cc2XformPoly const poly({V(3, 4)}, {V(13, 24)}, 1);

  ccXform<2> const f = poly.linearXform(V(0, 0));
  EXPECT_EQ(f.matrix(), ccMatrix<2>());
  expectNear(f.trans(), V(10, 20), 1e-14);
}

TEST(PolyXform, oneRowKeepsTheOtherDirectionAsItIs)
{
  cc2XformPoly const poly({V(0, 5), V(1, 5), V(2, 5)}, {V(0, 5), V(2, 6), V(4, 7)}, 1);

  ccXform<2> const f = poly.linearXform(V(0, 0));
  expectNear(f.matrix(), 2, 0, 1, 1, 1e-14);
  expectNear(f.trans(), V(0, 0), 1e-13);
}

TEST(PolyXform, collinearPointsDeviateAlongTheirLineOnly)
{
  cc2XformPoly const poly({V(0, 0), V(1, 1)}, {V(0, 0), V(3, 1)}, 1);

  expectNear(poly.linearXform(V()).matrix(), 2, 1, 0, 1, 1e-14);
  expectNear(poly.mapPoint(V(1, -1)), V(1, -1), 1e-14);  // straight across the line: as it was
}

TEST(PolyXform, roundingNoiseDoesNotCountAsADirection)
{
  // On one line but for the last bits of the coordinates. Across the line the shift must not change, however far out.
  std::vector<V> from, to;
  for (int k = 0; k < 10; ++k) {
    from.emplace_back(0.1 * k, 0.3 * k + 0.7);
    to.push_back(from.back() + V(k % 2 ? 1 : -1, 0.25 * k));
  }

  cc2XformPoly const poly(from, to, 1);

  V const shift = poly.mapPoint(from[4]) - from[4];
  V const across(300, -100);
  expectNear(poly.mapPoint(from[4] + across) - (from[4] + across), shift, 1e-9);
}

TEST(PolyXform, repeatedPointsGiveTheMeanShift)
{
  cc2XformPoly const poly({V(1, 1), V(1, 1)}, {V(2, 1), V(4, 3)}, 2);

  expectNear(poly.mapPoint(V(1, 1)), V(3, 2), 1e-14);
  expectNear(poly.mapPoint(V(11, 6)), V(13, 7), 1e-13);
}

TEST(PolyXform, fewPointsOfAHighOrderAreMetExactly)
{
  std::vector<V> const from = {{0, 0}, {4, 0}, {0, 3}, {4, 3}}, to = {{1, 0}, {4, 2}, {-1, 3}, {6, 3}};

  cc2XformPoly const poly(from, to, 3);

  for (std::size_t i = 0; i < from.size(); ++i)
    expectNear(poly.mapPoint(from[i]), to[i], 1e-12);
}

TEST(PolyXform, unequalEmptyOrInfiniteListsAreBadParams)
{
  double const infinity = std::numeric_limits<double>::infinity();
  EXPECT_THROW(cc2XformPoly({}, {}, 1), ccShapesError::BadParams);
  EXPECT_THROW(cc2XformPoly({V()}, {}, 1), ccShapesError::BadParams);
  EXPECT_THROW(cc2XformPoly({V()}, {V(), V()}, 1), ccShapesError::BadParams);
  EXPECT_THROW(cc2XformPoly({V()}, {V()}, 0), ccShapesError::BadParams);
  EXPECT_THROW(cc2XformPoly({V()}, {V(infinity, 0)}, 1), ccShapesError::BadParams);
  EXPECT_THROW(cc2XformPoly({V(0, std::nan(""))}, {V()}, 1), ccShapesError::BadParams);
}

TEST(XformCache, isTheIdentityWhileEmpty)
{
  cc2XformCache cache;
  EXPECT_EQ(cache.mapPoint(V(2, 3)), V(2, 3));
  EXPECT_FALSE(cache.xform());

  ccPtrHandle_const<cc2XformBase> const map(new cc2XformLinear(ccXform<2>(2, 2, V(1, 1))));
  cache.xform(map);
  EXPECT_EQ(cache.mapPoint(V(2, 3)), V(5, 7));
  EXPECT_EQ(cache.xform(), map);

  cache.setIdentity();
  EXPECT_EQ(cache.mapPoint(V(2, 3)), V(2, 3));
  EXPECT_FALSE(cache.xform());
}
