#include "geometry/deboor_spline.h"

#include "tests/geometry/spline_probe.h"

#include <gtest/gtest.h>

namespace {

using namespace spline_probe;

// The basis functions by the recursion of Cox and de Boor; 0 / 0 counts as 0.
double basis(std::vector<double> const& knots, std::size_t i, int degree, double u)
{
  if (degree == 0) {
    bool const last = knots[i] < knots[i + 1] && knots[i + 1] == knots.back() && u == knots.back();
    return (knots[i] <= u && u < knots[i + 1]) || last ? 1 : 0;
  }
  std::size_t const d = static_cast<std::size_t>(degree);
  double sum = 0;
  if (double const way = knots[i + d] - knots[i]; way > 0)
    sum += (u - knots[i]) / way * basis(knots, i, degree - 1, u);
  if (double const way = knots[i + d + 1] - knots[i + 1]; way > 0)
    sum += (knots[i + d + 1] - u) / way * basis(knots, i + 1, degree - 1, u);
  return sum;
}

ccVector<2> quotient(Points const& points, std::vector<double> const& weights, std::vector<double> const& values)
{
  double x = 0, y = 0, w = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    double const k = weights[i] * values[i];
    x += k * points[i].x();
    y += k * points[i].y();
    w += k;
  }
  return ccVector<2>(x / w, y / w);
}

// An open spline of this degree with the ends as knots of full multiplicity.
ccVector<2> clamped(Points const& points, std::vector<double> const& weights, int degree, double u)
{
  std::vector<double> knots;
  long const spans = static_cast<long>(points.size()) - degree;
  for (long k = -degree; k <= spans + degree; ++k)
    knots.push_back(static_cast<double>(std::min(std::max(k, 0L), spans)));
  std::vector<double> values;
  for (std::size_t i = 0; i < points.size(); ++i)
    values.push_back(basis(knots, i, degree, u));
  return quotient(points, weights, values);
}

// A closed one with a knot at each whole number; point k rules most at u = k.
ccVector<2> periodic(Points const& points, std::vector<double> const& weights, double u)
{
  long const n = static_cast<long>(points.size());
  std::vector<double> values(points.size(), 0.0);
  for (long k = static_cast<long>(std::floor(u)) - 3; k <= static_cast<long>(std::floor(u)) + 4; ++k) {
    std::vector<double> knots;
    for (long j = k - 2; j <= k + 3; ++j)  // one more than needed, so that u never is the last
      knots.push_back(static_cast<double>(j));
    values[static_cast<std::size_t>(((k % n) + n) % n)] += basis(knots, 0, 3, u);
  }
  return quotient(points, weights, values);
}

std::vector<double> randomWeights(Random& random, std::size_t n)
{
  std::vector<double> weights;
  for (std::size_t i = 0; i < n; ++i)
    weights.push_back(std::exp(random.number(-4, 4)));
  return weights;
}

double at(ccDeBoorSpline const& s, long k, long i) { return s.bezierCurve(k).controlPoint(i).x(); }

}  // namespace

TEST(DeBoorSpline, openIsTheClampedSplineOfCoxAndDeBoor)
{
  Random random(1);
  for (long round = 0; round < rounds(60); ++round) {
    Points const points = random.points(random.whole(4, 9));
    std::vector<double> const weights = randomWeights(random, points.size());
    ccDeBoorSpline const s(points, weights);
    ASSERT_EQ(s.numBezierCurves(), static_cast<long>(points.size()) - 3);
    for (long k = 0; k < s.numBezierCurves(); ++k)
      for (double t : {0.0, 0.1, 0.37, 0.5, 0.82, 1.0})
        EXPECT_LE(spline_probe::at(s.bezierCurve(k), t).distance(clamped(points, weights, 3, static_cast<double>(k) + t)),
                  1e-12 * sizeOf(points));
  }
}

TEST(DeBoorSpline, closedIsThePeriodicSplineOfCoxAndDeBoor)
{
  Random random(2);
  for (long round = 0; round < rounds(60); ++round) {
    Points const points = random.points(random.whole(1, 8));
    std::vector<double> const weights = randomWeights(random, points.size());
    ccDeBoorSpline const s(points, weights, true);
    ASSERT_EQ(s.numBezierCurves(), static_cast<long>(points.size()));
    for (long k = 0; k < s.numBezierCurves(); ++k)
      for (double t : {0.0, 0.1, 0.37, 0.5, 0.82, 1.0})
        EXPECT_LE(spline_probe::at(s.bezierCurve(k), t).distance(periodic(points, weights, static_cast<double>(k) + t)),
                  1e-12 * sizeOf(points));
  }
}

TEST(DeBoorSpline, ofTwoPointsIsTheLine)
{
  ccDeBoorSpline const s({{0, 0}, {30, 60}});
  EXPECT_EQ(s.bezierCurve(0).controlPoint(0), ccVector<2>(0, 0));
  EXPECT_NEAR(s.bezierCurve(0).controlPoint(1).distance(ccPoint(10, 20)), 0, 1e-13);
  EXPECT_NEAR(s.bezierCurve(0).controlPoint(2).distance(ccPoint(20, 40)), 0, 1e-13);
  EXPECT_EQ(s.bezierCurve(0).controlPoint(3), ccVector<2>(30, 60));
}

TEST(DeBoorSpline, ofThreePointsIsTheQuadraticCurve)
{
  ccDeBoorSpline const s({{0, 0}, {30, 60}, {90, 0}});
  EXPECT_EQ(s.numBezierCurves(), 1);
  EXPECT_NEAR(s.bezierCurve(0).controlPoint(1).distance(ccPoint(20, 40)), 0, 1e-13);
  EXPECT_NEAR(s.bezierCurve(0).controlPoint(2).distance(ccPoint(50, 40)), 0, 1e-13);
}

TEST(DeBoorSpline, ofTwoOrThreePointsKeepsTheirWeights)
{
  Random random(3);
  for (long round = 0; round < rounds(50); ++round)
    for (int degree : {1, 2}) {
      Points const points = random.points(degree + 1);
      std::vector<double> const weights = randomWeights(random, points.size());
      ccDeBoorSpline const s(points, weights);
      for (double t : {0.0, 0.1, 0.37, 0.5, 0.82, 1.0})
        EXPECT_LE(spline_probe::at(s.bezierCurve(0), t).distance(clamped(points, weights, degree, t)),
                  1e-12 * sizeOf(points));
    }
}

TEST(DeBoorSpline, aQuarterCircleOfThreePointsIsRound)
{
  ccDeBoorSpline s({{1, 0}, {1, 1}, {0, 1}});
  s.weight(1, std::sqrt(0.5));
  for (int i = 0; i <= 50; ++i)
    EXPECT_NEAR(spline_probe::at(s.bezierCurve(0), i / 50.0).len(), 1, 1e-14);
}

TEST(DeBoorSpline, innerCurvesFollowTheRatiosOfTheClampedEnds)
{
  // Worked out by knot insertion on 0 0 0 0 1 2 3 4 5 5 5 5. Heights of one point each show the coefficients.
  auto const height = [](std::size_t of, long k, long i) {
    Points points(8);
    points[of] = ccVector<2>(1, 0);
    return at(ccDeBoorSpline(points), k, i);
  };
  EXPECT_DOUBLE_EQ(height(0, 0, 0), 1);
  EXPECT_DOUBLE_EQ(height(1, 0, 1), 1);
  EXPECT_DOUBLE_EQ(height(1, 0, 2), 1.0 / 2);
  EXPECT_DOUBLE_EQ(height(2, 0, 2), 1.0 / 2);
  EXPECT_DOUBLE_EQ(height(1, 0, 3), 1.0 / 4);
  EXPECT_DOUBLE_EQ(height(2, 0, 3), 7.0 / 12);
  EXPECT_DOUBLE_EQ(height(3, 0, 3), 1.0 / 6);
  EXPECT_DOUBLE_EQ(height(2, 1, 1), 2.0 / 3);
  EXPECT_DOUBLE_EQ(height(3, 1, 1), 1.0 / 3);
  EXPECT_DOUBLE_EQ(height(3, 2, 0), 2.0 / 3);
  EXPECT_DOUBLE_EQ(height(2, 2, 0), 1.0 / 6);
  EXPECT_DOUBLE_EQ(height(4, 2, 0), 1.0 / 6);
}

TEST(DeBoorSpline, closedCurvesFollowTheUniformFormulas)
{
  auto const height = [](std::size_t of, long i) {
    Points points(6);
    points[of] = ccVector<2>(1, 0);
    return at(ccDeBoorSpline(points, true), 1, i);
  };
  double const expected[4][4] = {
      {1.0 / 6, 4.0 / 6, 1.0 / 6, 0}, {0, 2.0 / 3, 1.0 / 3, 0}, {0, 1.0 / 3, 2.0 / 3, 0}, {0, 1.0 / 6, 4.0 / 6, 1.0 / 6}};
  for (long i = 0; i < 4; ++i)
    for (std::size_t of = 0; of < 4; ++of)
      EXPECT_NEAR(height(of, i), expected[i][of], 1e-15) << i << of;
}

TEST(DeBoorSpline, equalWeightsGiveThePolynomialSpline)
{
  Random random(4);
  for (long round = 0; round < rounds(50); ++round) {
    Points const points = random.points(random.whole(2, 8));
    bool const closed = random.whole(0, 1) == 1;
    double const w = std::exp(random.number(-9, 9));
    ccDeBoorSpline const plain(points, closed), weighted(points, std::vector<double>(points.size(), w), closed);
    for (long k = 0; k < plain.numBezierCurves(); ++k)
      for (long i = 0; i < 4; ++i) {
        EXPECT_EQ(plain.bezierCurve(k).weight(i), 1);
        EXPECT_EQ(weighted.bezierCurve(k).weight(i), w);
        EXPECT_LE(weighted.bezierCurve(k).controlPoint(i).distance(plain.bezierCurve(k).controlPoint(i)),
                  1e-13 * sizeOf(points));
      }
  }
}

TEST(DeBoorSpline, isSmoothToTheSecondDerivativeInItsWeightedCoordinates)
{
  Random random(5);
  for (long round = 0; round < rounds(50); ++round) {
    Points const points = random.points(random.whole(4, 9));
    bool const closed = random.whole(0, 1) == 1;
    ccDeBoorSpline const s(points, randomWeights(random, points.size()), closed);
    auto const part = [](ccBezierCurve const& c, long i, int axis) {
      return c.weight(i) * (axis == 0 ? c.controlPoint(i).x() : axis == 1 ? c.controlPoint(i).y() : 1.0);
    };
    long const curves = s.numBezierCurves();
    for (long k = closed ? 0 : 1; k < curves; ++k) {
      ccBezierCurve const a = s.bezierCurve((k + curves - 1) % curves), b = s.bezierCurve(k);
      // Whole intervals on either side, hence equal differences of the control points.
      for (int axis = 0; axis < 3; ++axis) {
        double const size = 60 * (axis == 2 ? 1 : sizeOf(points));
        EXPECT_NEAR(3 * (part(a, 3, axis) - part(a, 2, axis)), 3 * (part(b, 1, axis) - part(b, 0, axis)), 1e-12 * size);
        EXPECT_NEAR(6 * (part(a, 3, axis) - 2 * part(a, 2, axis) + part(a, 1, axis)),
                    6 * (part(b, 2, axis) - 2 * part(b, 1, axis) + part(b, 0, axis)), 1e-12 * size);
      }
    }
  }
}

TEST(DeBoorSpline, aHeavyPointDrawsTheCurveNear)
{
  ccDeBoorSpline s({{0, 0}, {10, 0}, {20, 50}, {30, 0}, {40, 0}});
  double last = s.distToPoint(ccPoint(20, 50));
  for (double w : {2.0, 10.0, 1e3, 1e6}) {
    s.weight(2, w);
    double const distance = s.distToPoint(ccPoint(20, 50));
    EXPECT_LT(distance, last);
    last = distance;
  }
  EXPECT_LT(last, 1e-3);
}

TEST(DeBoorSpline, largeAndSmallWeightsDoNotOverflow)
{
  Points const points{{0, 1e6}, {1e6, 0}, {2e6, 5e6}, {3e6, 0}, {4e6, 1e6}};
  ccDeBoorSpline const plain(points);
  for (double w : {1e290, 1e-290}) {
    ccDeBoorSpline const s(points, std::vector<double>(5, w));
    EXPECT_NEAR(s.distToPoint(ccPoint(2e6, 5e6)), plain.distToPoint(ccPoint(2e6, 5e6)), 1e-3);
    EXPECT_NEAR(s.encloseRect().ul().y(), plain.encloseRect().ul().y(), 1e-3);
    EXPECT_EQ(s.encloseRect().width(), 4e6);
  }
}

TEST(DeBoorSpline, aNewPointHasWeightOneUnlessGiven)
{
  ccDeBoorSpline s;
  s.addControlPoint(ccPoint(1, 1), 3.0);
  s.addControlPoint(ccPoint(2, 2));
  s.insertControlPoint(1, ccPoint(3, 3));
  s.insertControlPoint(0, ccPoint(4, 4), 5.0);

  EXPECT_EQ(s.controlPoints(), (Points{{4, 4}, {1, 1}, {3, 3}, {2, 2}}));
  EXPECT_EQ(s.weights(), (std::vector<double>{5, 3, 1, 1}));
}

TEST(DeBoorSpline, deletionTakesTheWeightAlong)
{
  ccDeBoorSpline s({{1, 1}, {2, 2}, {3, 3}}, {4, 5, 6});
  s.deleteControlPoint(1);
  EXPECT_EQ(s.weights(), (std::vector<double>{4, 6}));
  s.deleteControlPoint(0);
  EXPECT_EQ(s.weights(), (std::vector<double>{4, 6}));
}

TEST(DeBoorSpline, badWeightsThrowAndChangeNothing)
{
  ccDeBoorSpline const before({{1, 1}, {2, 2}, {3, 3}}, {4, 5, 6});
  ccDeBoorSpline s(before);
  for (double w : {0.0, -1.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
    EXPECT_THROW(s.weight(0, w), ccShapesError::BadParams);
    EXPECT_THROW(s.addControlPoint(ccPoint(), w), ccShapesError::BadParams);
    EXPECT_THROW(s.insertControlPoint(1, ccPoint(), w), ccShapesError::BadParams);
    EXPECT_THROW(ccDeBoorSpline({{1, 1}}, std::vector<double>{w}), ccShapesError::BadParams);
  }
  EXPECT_THROW(s.weight(3), ccShapesError::BadParams);
  EXPECT_THROW(s.weight(-1, 1.0), ccShapesError::BadParams);
  EXPECT_THROW(s.insertControlPoint(4, ccPoint(), 1.0), ccShapesError::BadParams);
  EXPECT_THROW(ccDeBoorSpline({{1, 1}}, {1, 2}), ccShapesError::BadParams);
  EXPECT_EQ(s, before);
}

TEST(DeBoorSpline, mapLeavesTheWeights)
{
  ccDeBoorSpline const s({{1, 1}, {2, 2}, {3, 3}}, {4, 5, 6}, true);
  ccDeBoorSpline const image = s.map(ccXform<2>(3, -1, ccVector<2>(1, 0)));
  EXPECT_EQ(image, ccDeBoorSpline({{4, -1}, {7, -2}, {10, -3}}, {4, 5, 6}, true));
}

TEST(DeBoorSpline, aDragOfAWeightRunsFromATenthToTenTimesTheSum)
{
  ccDeBoorSpline const s({{1, 1}, {2, 2}, {3, 3}, {5, 5}}, {4, 0.5, 6, 1.25});
  for (double const w : s.weights()) {
    double const sum = 11.75;
    ccWeightLaw const law(w, sum);
    EXPECT_NEAR(law.weight(0), 0.1 * w, 1e-12 * w);
    EXPECT_NEAR(law.weight(0.5), w, 1e-12 * w);
    EXPECT_NEAR(law.weight(1), 10 * sum, 1e-10 * sum);
    double const scale = 0.81 * w * w / (10 * sum - 1.9 * w);
    EXPECT_NEAR(law.weight(0.3), (std::pow((10 * sum - 0.1 * w) / scale + 1, 0.3) - 1) * scale + 0.1 * w, 1e-11 * w);
  }
}
