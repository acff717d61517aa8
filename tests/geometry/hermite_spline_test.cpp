#include "geometry/hermite_spline.h"

#include "tests/geometry/spline_probe.h"

#include <gtest/gtest.h>

namespace {

using namespace spline_probe;

// The cubic with these end points and end derivatives, by its basis polynomials.
ccVector<2> hermite(ccVector<2> const& p, ccVector<2> const& u, ccVector<2> const& q, ccVector<2> const& v, double t)
{
  double const t2 = t * t, t3 = t2 * t;
  return p * (2 * t3 - 3 * t2 + 1) + u * (t3 - 2 * t2 + t) + q * (3 * t2 - 2 * t3) + v * (t3 - t2);
}

}  // namespace

TEST(HermiteSpline, isTheCubicWithItsPointsAndTangents)
{
  Random random(1);
  for (long round = 0; round < rounds(60); ++round) {
    Points const points = random.points(random.whole(1, 8));
    ccHermiteSpline s(points, random.whole(0, 1) == 1);
    Points tangents;
    for (long i = 0; i < s.numControlPoints(); ++i) {
      tangents.push_back(random.point());
      s.controlTangent(i, tangents.back());
    }
    for (long k = 0; k < s.numBezierCurves(); ++k)
      for (double t : {0.0, 0.1, 0.37, 0.5, 0.82, 1.0}) {
        std::size_t const a = static_cast<std::size_t>(k), b = (a + 1) % points.size();
        EXPECT_LE(at(s.bezierCurve(k), t).distance(hermite(points[a], tangents[a], points[b], tangents[b], t)),
                  1e-12 * sizeOf(points));
      }
  }
}

TEST(HermiteSpline, controlPointsOfACurveAreAThirdOfTheTangentsAway)
{
  ccHermiteSpline s({{0, 0}, {10, 0}});
  s.controlTangent(0, ccVector<2>(3, 6));
  s.controlTangent(1, ccVector<2>(9, -12));
  EXPECT_EQ(s.bezierCurve(0), ccBezierCurve(ccPoint(0, 0), ccPoint(1, 2), ccPoint(7, 4), ccPoint(10, 0)));
}

TEST(HermiteSpline, automaticTangentsAreHalfTheWayBetweenTheNeighbours)
{
  ccHermiteSpline s({{0, 0}, {4, 2}, {10, 0}, {12, 8}});
  EXPECT_EQ(s.controlTangent(0), ccVector<2>(4, 2));
  EXPECT_EQ(s.controlTangent(1), ccVector<2>(5, 0));
  EXPECT_EQ(s.controlTangent(2), ccVector<2>(4, 3));
  EXPECT_EQ(s.controlTangent(3), ccVector<2>(2, 8));

  s.isClosed(true);
  EXPECT_EQ(s.controlTangent(0), ccVector<2>(-4, -3));
  EXPECT_EQ(s.controlTangent(3), ccVector<2>(-5, 0));
}

TEST(HermiteSpline, automaticTangentsOfOneAndTwoPoints)
{
  EXPECT_EQ(ccHermiteSpline({{3, 4}}).controlTangent(0), ccVector<2>(0, 0));
  EXPECT_EQ(ccHermiteSpline({{3, 4}}, true).controlTangent(0), ccVector<2>(0, 0));
  ccHermiteSpline const two({{3, 4}, {9, 7}}), ring({{3, 4}, {9, 7}}, true);
  for (long i : {0L, 1L}) {
    EXPECT_EQ(two.controlTangent(i), ccVector<2>(6, 3));
    EXPECT_EQ(ring.controlTangent(i), ccVector<2>(0, 0));
  }
}

TEST(HermiteSpline, openOfTwoPointsIsTheLine)
{
  ccHermiteSpline const s({{0, 0}, {30, 60}});
  for (double t : {0.25, 0.5, 0.9})
    EXPECT_LE(at(s.bezierCurve(0), t).distance(ccPoint(30 * t, 60 * t)), 1e-13);
}

TEST(HermiteSpline, anAutomaticTangentFollowsItsNeighbours)
{
  ccHermiteSpline s({{0, 0}, {4, 2}, {10, 0}});
  s.controlPoint(2, ccPoint(20, 10));
  EXPECT_EQ(s.controlTangent(1), ccVector<2>(10, 5));
  EXPECT_TRUE(s.isTangentAutomatic(1));

  s.insertControlPoint(2, ccPoint(6, 6));
  EXPECT_EQ(s.controlTangent(1), ccVector<2>(3, 3));
  EXPECT_EQ(s.controlTangent(2), ccVector<2>(8, 4));
}

TEST(HermiteSpline, aSetTangentStaysAndMovesWithItsPoint)
{
  ccHermiteSpline s({{0, 0}, {4, 2}, {10, 0}});
  s.controlTangent(1, ccVector<2>(1, 7));
  s.controlPoint(0, ccPoint(-50, 3));
  s.controlPoint(1, ccPoint(5, 5));
  EXPECT_EQ(s.controlTangent(1), ccVector<2>(1, 7));
  EXPECT_FALSE(s.isTangentAutomatic(1));

  s.insertControlPoint(0, ccPoint(1, 1));
  EXPECT_EQ(s.controlTangent(2), ccVector<2>(1, 7));
  EXPECT_TRUE(s.isTangentAutomatic(0));
  s.deleteControlPoint(0);
  EXPECT_EQ(s.controlTangent(1), ccVector<2>(1, 7));
  s.deleteControlPoint(1);
  EXPECT_TRUE(s.isTangentAutomatic(0));
  EXPECT_TRUE(s.isTangentAutomatic(1));
}

TEST(HermiteSpline, aTangentSetToItsOwnValueIsFixed)
{
  ccHermiteSpline s({{0, 0}, {4, 2}, {10, 0}});
  s.controlTangent(1, s.controlTangent(1));
  s.controlPoint(0, ccPoint(-90, 0));
  EXPECT_EQ(s.controlTangent(1), ccVector<2>(5, 0));

  s.automaticTangent(1);
  EXPECT_EQ(s.controlTangent(1), ccVector<2>(50, 0));
}

TEST(HermiteSpline, tangentsMapAsVectors)
{
  ccHermiteSpline s({{0, 0}, {4, 2}, {10, 0}});
  s.controlTangent(1, ccVector<2>(1, 7));
  ccHermiteSpline const image = s.map(ccXform<2>(ccMatrix<2>(0, -2, 3, 0), ccVector<2>(100, 200)));

  EXPECT_EQ(image.controlPoints(), (Points{{100, 200}, {96, 212}, {100, 230}}));
  EXPECT_EQ(image.controlTangent(1), ccVector<2>(-14, 3));
  EXPECT_EQ(image.controlTangent(0), ccVector<2>(-4, 12));
  EXPECT_TRUE(image.isTangentAutomatic(0));
  EXPECT_FALSE(image.isTangentAutomatic(1));
}

TEST(HermiteSpline, isSmoothInItsPoints)
{
  Random random(2);
  for (long round = 0; round < rounds(60); ++round) {
    ccHermiteSpline s(random.points(random.whole(1, 8)), random.whole(0, 1) == 1);
    if (random.whole(0, 1) == 1)
      s.controlTangent(0, random.point());
    long const curves = s.numBezierCurves();
    for (long k = s.isClosed() ? 0 : 1; k < curves; ++k) {
      ccBezierCurve const a = s.bezierCurve((k + curves - 1) % curves), b = s.bezierCurve(k);
      ccVector<2> const jump = (a.controlPoint(3) - a.controlPoint(2)) - (b.controlPoint(1) - b.controlPoint(0));
      EXPECT_LE(3 * jump.len(), 1e-9);
    }
  }
}

TEST(HermiteSpline, closedOfOnePointWithATangentIsALoop)
{
  ccHermiteSpline s({{3, 4}}, true);
  s.controlTangent(0, ccVector<2>(9, 0));
  EXPECT_EQ(s.bezierCurve(0), ccBezierCurve(ccPoint(3, 4), ccPoint(6, 4), ccPoint(0, 4), ccPoint(3, 4)));
  EXPECT_NEAR(s.encloseRect().width(), 9 * std::sqrt(3.0) / 9, 1e-12);  // t (1-t) (1-2t) is extreme with 1/(6 sqrt 3)
}

TEST(HermiteSpline, badTangentsThrowAndChangeNothing)
{
  ccHermiteSpline const before({{0, 0}, {4, 2}, {10, 0}});
  ccHermiteSpline s(before);
  EXPECT_THROW(s.controlTangent(1, ccVector<2>(std::nan(""), 0)), ccShapesError::BadParams);
  EXPECT_THROW(s.controlTangent(3, ccVector<2>()), ccShapesError::BadParams);
  EXPECT_THROW(s.controlTangent(-1), ccShapesError::BadParams);
  EXPECT_THROW(s.isTangentAutomatic(3), ccShapesError::BadParams);
  EXPECT_THROW(s.automaticTangent(3), ccShapesError::BadParams);
  EXPECT_EQ(s, before);
}

TEST(HermiteSpline, aSetAndAnAutomaticTangentAreNotEqual)
{
  ccHermiteSpline const a({{0, 0}, {4, 2}, {10, 0}});
  ccHermiteSpline b(a);
  EXPECT_EQ(a, b);
  b.controlTangent(1, a.controlTangent(1));
  EXPECT_FALSE(a == b);
}
