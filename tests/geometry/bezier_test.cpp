#include "geometry/bezier.h"

#include "tests/geometry/shape_support.h"

using namespace krs_test;

namespace {

ccBezierCurve randomCurve(Random& r)
{
  std::array<ccPoint, 4> p;
  std::array<double, 4> w{};
  for (std::size_t i = 0; i < 4; ++i) {
    p[i] = r.vector(100);
    w[i] = r.magnitude(0.05, 20);
  }
  return ccBezierCurve(p, w);
}

}  // namespace

TEST(BezierCurve, fourPointsAtTheOriginByDefault)
{
  ccBezierCurve const c;

  EXPECT_EQ(c.controlPoints(), std::vector<V>(4));
  EXPECT_EQ(c.weight(3), 1);
  EXPECT_EQ(c.distToPoint(V(3, 4)), 5);
}

TEST(BezierCurve, badArgumentsChangeNothing)
{
  ccBezierCurve const given(V(0, 0), V(1, 0), V(2, 1), V(3, 3));
  ccBezierCurve c = given;

  EXPECT_THROW(c.controlPoint(4), ccShapesError::BadParams);
  EXPECT_THROW(c.controlPoint(-1, V()), ccShapesError::BadParams);
  EXPECT_THROW(c.controlPoint(1, V(kNan, 0)), ccShapesError::BadParams);
  EXPECT_THROW(c.weight(4), ccShapesError::BadParams);
  EXPECT_THROW(c.weight(0, 0), ccShapesError::BadParams);
  EXPECT_THROW(c.weight(0, -1), ccShapesError::BadParams);
  EXPECT_THROW(c.weight(0, cfInfinity), ccShapesError::BadParams);
  EXPECT_THROW(c.split(1.01), ccShapesError::BadParams);
  EXPECT_THROW(c.split(kNan), ccShapesError::BadParams);
  EXPECT_EQ(c, given);
  EXPECT_THROW(ccBezierCurve({V(), V(), V(), V(0, kNan)}, {1, 1, 1, 1}), ccShapesError::BadParams);
  EXPECT_THROW(ccBezierCurve({V(), V(), V(), V()}, {1, 0, 1, 1}), ccShapesError::BadParams);
  c.weight(2, 5);
  c.controlPoint(2, V(9, 9));
  EXPECT_EQ(c.weight(2), 5);
  EXPECT_EQ(c.controlPoint(2), V(9, 9));
}

TEST(BezierCurve, pointsFollowTheWeightedSum)
{
  Random random(1);
  for (int i = 0; i < rounds(2000); ++i) {
    ccBezierCurve const c = randomCurve(random);
    double const t = random.in(0, 1);
    expectNear(c.point(t), bezierPoint(c, t), 1e-12);
    double const h = 1e-6 * (1 + random.in(0, 1));
    V const slope = (bezierPoint(c, t + h) - bezierPoint(c, t - h)) / (2 * h);
    EXPECT_LE(c.derivative(t).distance(slope), 1e-4 * (1 + slope.len()) + 1e-3);
  }
}

TEST(BezierCurve, equalPointsGiveThatPoint)
{
  ccPoint const p(1.1, -7.3);
  ccBezierCurve const c({p, p, p, p}, {0.3, 7, 2, 11});

  for (double t = 0; t <= 1; t += 0.1)
    EXPECT_EQ(c.point(t), p);
  EXPECT_EQ(c.encloseRect(), ccRect(p, V()));
}

TEST(BezierCurve, halvesAreTheCurve)
{
  Random random(2);
  for (int i = 0; i < rounds(1000); ++i) {
    ccBezierCurve const c = randomCurve(random);
    double const at = random.chance(5) ? random.below(2) : random.in(0, 1), t = random.in(0, 1);
    auto const halves = c.split(at);
    expectNear(halves.first.point(t), bezierPoint(c, at * t), 1e-10);
    expectNear(halves.second.point(t), bezierPoint(c, at + (1 - at) * t), 1e-10);
    EXPECT_EQ(halves.first.endPoint(), halves.second.startPoint());
    EXPECT_EQ(halves.first.startPoint(), c.startPoint());
    EXPECT_EQ(halves.second.endPoint(), c.endPoint());
  }
}

TEST(BezierCurve, mapsItsPointsAndKeepsItsWeights)
{
  Random random(3);
  for (int i = 0; i < rounds(1000); ++i) {
    ccBezierCurve const c = randomCurve(random);
    ccXform<2> const x = random.affine();
    double const t = random.in(0, 1);
    expectNear(bezierPoint(c.map(x), t), x.mapPoint(bezierPoint(c, t)), 1e-9);
    EXPECT_EQ(c.map(x).weight(1), c.weight(1));
  }
}

TEST(BezierCurve, boxOfACubicByHand)
{
  // y = 3 t (1-t) (1-t) 4 + 3 t t (1-t) 4 = 12 t (1 - t), at most 3.
  ccBezierCurve const c(V(0, 0), V(0, 4), V(10, 4), V(10, 0));

  expectNear(c.encloseRect().ul(), V(0, 0), 1e-14);
  expectNear(c.encloseRect().lr(), V(10, 3), 1e-14);
  EXPECT_NEAR(c.distToPoint(V(5, 10)), 7, 1e-13);
  expectNear(c.closestPoint(V(5, 10)), V(5, 3), 1e-7);
}

TEST(BezierCurve, flatteningStaysWithinTheTolerance)
{
  Random random(4);
  for (int i = 0; i < rounds(100); ++i) {
    ccBezierCurve const c = randomCurve(random);
    double const tolerance = random.magnitude(0.01, 10);
    Sampler flat(1);
    flat.moveTo(c.startPoint());
    c.flatten(tolerance, flat);
    EXPECT_EQ(flat.points.back(), c.endPoint());
    for (double t = 0; t <= 1; t += 1.0 / 64) {
      double best = cfInfinity;
      for (std::size_t k = 1; k < flat.points.size(); ++k)
        best = std::min(best, cf_segmentDistance(flat.points[k - 1], flat.points[k], bezierPoint(c, t)));
      EXPECT_LE(best, tolerance * (1 + 1e-9));
    }
    for (V const& p : flat.points)
      EXPECT_LE(c.distToPoint(p), 1e-9 * 100);  // its corners lie on the curve
  }
  Sampler none(1);
  EXPECT_THROW(ccBezierCurve().flatten(0, none), ccShapesError::BadParams);
  EXPECT_THROW(ccBezierCurve().flatten(kNan, none), ccShapesError::BadParams);
}

TEST(BezierCurve, flatteningHalvesAtMostSixteenTimes)
{
  ccBezierCurve const c(V(0, 0), V(0, 1e6), V(1e6, 1e6), V(1e6, 0));
  Sampler flat(1);
  flat.moveTo(V(0, 0));
  c.flatten(1e-12, flat);
  EXPECT_LE(flat.lines, 1 << 16);
  EXPECT_GT(flat.lines, 1 << 15);

  Sampler line(1);
  line.moveTo(V(0, 0));
  ccBezierCurve::fromLine(V(0, 0), V(9, 9)).flatten(1e-6, line);
  EXPECT_EQ(line.lines, 1);
}

TEST(BezierCurve, arcsAreExact)
{
  Random random(5);
  for (int i = 0; i < rounds(500); ++i) {
    ccEllipseArc2 const arc(ccEllipse2(V(3, 4), 7, 3, ccRadian(0)), random.angle(), deg(random.in(-180, 180)));
    ccBezierCurve const c = ccBezierCurve::fromArc(arc);
    expectNear(c.startPoint(), arc.startPoint(), 1e-13);
    expectNear(c.endPoint(), arc.endPoint(), 1e-13);
    expectNear(c.point(0.5), arc.midPoint(), 1e-12);
    for (double t = 0; t <= 1; t += 0.125) {
      V const p = c.point(t) - V(3, 4);
      EXPECT_NEAR(p.x() * p.x() / 49 + p.y() * p.y() / 9, 1, 1e-12);
    }
  }
  EXPECT_THROW(ccBezierCurve::fromArc(ccEllipseArc2(ccEllipse2(V(), 1, 1, ccRadian(0)), deg(0), deg(181))),
               ccShapesError::BadParams);
}

TEST(WeightLaw, runsFromATenthOverTheOldWeightToTenTimesTheSum)
{
  struct {
    double weight, sum;
  } const cases[] = {{1, 4}, {0.01, 3.01}, {100, 103}, {5, 5}};
  for (auto const& c : cases) {
    ccWeightLaw const law(c.weight, c.sum);
    EXPECT_NEAR(law.weight(0), 0.1 * c.weight, 1e-12 * c.weight);
    EXPECT_NEAR(law.weight(0.5), c.weight, 1e-12 * c.weight);
    EXPECT_NEAR(law.weight(1), 10 * c.sum, 1e-11 * c.sum);
    // The formula itself, at a point between.
    double const m = 0.1 * c.weight, k = (c.weight - m) * (c.weight - m) / (10 * c.sum + m - 2 * c.weight);
    EXPECT_NEAR(law.weight(0.3), (std::exp(0.3 * std::log((10 * c.sum - m) / k + 1)) - 1) * k + m, 1e-11 * c.weight);
    EXPECT_LT(law.weight(0.7), law.weight(0.8));
  }
  EXPECT_THROW(ccWeightLaw(0, 1), ccShapesError::BadParams);
  EXPECT_THROW(ccWeightLaw(2, 1), ccShapesError::BadParams);
}

TEST(BezierPath, curvesFollowEachOther)
{
  ccBezierPath path;
  path.appendLine(V(0, 0), V(10, 0));
  path.append(ccBezierCurve(V(10, 0), V(12, 0), V(14, 2), V(14, 4)));

  EXPECT_EQ(path.size(), 2);
  EXPECT_EQ(path.curve(1).endPoint(), V(14, 4));
  EXPECT_THROW(path.appendLine(V(14, 4.001), V(0, 0)), ccShapesError::BadParams);
  EXPECT_EQ(path.size(), 2);
  EXPECT_NO_THROW(path.appendLine(V(14, 4 + 1e-9), V(0, 4)));
  EXPECT_THROW(path.curve(3), ccShapesError::BadParams);
  EXPECT_THROW(path.curve(-1), ccShapesError::BadParams);
  EXPECT_THROW(ccBezierPath({ccBezierCurve::fromLine(V(0, 0), V(1, 0)), ccBezierCurve::fromLine(V(2, 0), V(3, 0))}),
               ccShapesError::BadParams);
}

TEST(BezierPath, aClosedOneRunsStraightBack)
{
  ccBezierPath path;
  path.appendLine(V(0, 0), V(10, 0));
  path.appendLine(V(10, 0), V(10, 10));

  EXPECT_NEAR(path.distToPoint(V(0, 10)), 10, 1e-12);
  path.closed(true);
  EXPECT_NEAR(path.distToPoint(V(0, 10)), std::sqrt(50.0), 1e-12);
  EXPECT_EQ(Sampler(path, 2).closes, 1);
}

TEST(BezierPath, aFullEllipseIsFourExactPieces)
{
  ccEllipse2 const e(V(5, 6), 8, 3, deg(20));
  ccBezierPath path;
  path.append(ccEllipseArc2(e, deg(10), deg(-360)));
  path.closed(true);

  EXPECT_EQ(path.size(), 4);
  Random random(6);
  for (int i = 0; i < 300; ++i) {
    V const q = random.vector(20);
    EXPECT_NEAR(path.distToPoint(q), e.distToPoint(q), 1e-11);
  }
}
