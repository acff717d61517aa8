#include "geometry/interp_spline.h"

#include "tests/geometry/spline_probe.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace spline_probe;

using Row = std::vector<double>;

// Gauss's elimination with the largest pivot of each column; two right sides in the last columns.
Points solve(std::vector<Row> a)
{
  std::size_t const n = a.size();
  for (std::size_t c = 0; c < n; ++c) {
    std::size_t pivot = c;
    for (std::size_t r = c; r < n; ++r)
      if (std::abs(a[r][c]) > std::abs(a[pivot][c]))
        pivot = r;
    std::swap(a[c], a[pivot]);
    for (std::size_t r = 0; r < n; ++r) {
      if (r == c)
        continue;
      double const k = a[r][c] / a[c][c];
      for (std::size_t i = c; i < n + 2; ++i)
        a[r][i] -= k * a[c][i];
    }
  }
  Points x;
  for (std::size_t r = 0; r < n; ++r)
    x.push_back(ccVector<2>(a[r][n] / a[r][r], a[r][n + 1] / a[r][r]));
  return x;
}

std::vector<double> plainIntervals(Points const& points, bool closed, long mode)
{
  std::vector<double> h;
  for (std::size_t k = 0; k + (closed ? 0 : 1) < points.size(); ++k) {
    double const chord = points[k].distance(points[(k + 1) % points.size()]);
    h.push_back(mode == 0 ? 1 : mode == 1 ? chord : std::pow(chord, 0.5));
  }
  double smallest = 1e300;
  for (double const value : h)
    if (value != 0)
      smallest = std::min(smallest, value);
  for (double& value : h)
    if (value == 0)
      value = smallest == 1e300 ? 1 : smallest;
  return h;
}

// The second derivatives in the points, from the textbook's conditions on them.
struct Moments {
  Points points;
  std::vector<double> h;
  Points m;

  Moments(Points const& p, bool closed, long mode, ccVector<2> const* ends = nullptr)
      : points(p), h(plainIntervals(p, closed, mode))
  {
    std::size_t const n = p.size();
    std::vector<Row> a(n, Row(n + 2, 0.0));
    auto const slope = [&](std::size_t k) { return (points[(k + 1) % n] - points[k]) / h[k]; };
    auto const right = [&](Row& row, ccVector<2> const& v) { row[n] += v.x(), row[n + 1] += v.y(); };
    for (std::size_t i = 0; i < n; ++i) {
      bool const first = i == 0, last = i + 1 == n;
      if (!closed && (first || last) && !ends) {
        a[i][i] = 1;
        continue;
      }
      if (closed || !first) {
        std::size_t const k = first ? n - 1 : i - 1;
        a[i][k] += h[k] / 6;
        a[i][i] += h[k] / 3;
        right(a[i], -slope(k));
      } else {
        right(a[i], -(ends[0] / h[0]));
      }
      if (closed || !last) {
        a[i][(i + 1) % n] += h[i] / 6;
        a[i][i] += h[i] / 3;
        right(a[i], slope(i));
      } else {
        right(a[i], ends[1] / h[i - 1]);
      }
    }
    m = solve(a);
  }

  ccVector<2> at(std::size_t k, double t) const
  {
    std::size_t const next = (k + 1) % points.size();
    double const s = 1 - t, square = h[k] * h[k] / 6;
    return points[k] * s + points[next] * t + m[k] * (square * (s * s * s - s)) + m[next] * (square * (t * t * t - t));
  }
};

void expectSame(ccInterpSpline const& s, Moments const& plain)
{
  ASSERT_EQ(s.numBezierCurves(), static_cast<long>(plain.h.size()));
  double const tolerance = 1e-10 * sizeOf(samples(s, 4));
  for (long k = 0; k < s.numBezierCurves(); ++k)
    for (double t : {0.0, 0.1, 0.37, 0.5, 0.82, 1.0})
      EXPECT_LE(at(s.bezierCurve(k), t).distance(plain.at(static_cast<std::size_t>(k), t)), tolerance) << k << " " << t;
}

ccVector<2> second(ccInterpSpline const& s, long k, long first)  // control points first to first + 2
{
  ccBezierCurve const c = s.bezierCurve(k);
  return (c.controlPoint(first) - 2.0 * c.controlPoint(first + 1) + c.controlPoint(first + 2)) * 6.0 /
         (s.interval(k) * s.interval(k));
}

}  // namespace

TEST(InterpSpline, openIsTheNaturalSplineOfTheMoments)
{
  Random random(1);
  for (long round = 0; round < rounds(100); ++round)
    for (long mode : {0L, 1L, 2L}) {
      Points const points = random.points(random.whole(2, 9));
      SCOPED_TRACE("mode " + std::to_string(mode) + ", round " + std::to_string(round));
      expectSame(ccInterpSpline(points, false, mode), Moments(points, false, mode));
    }
}

TEST(InterpSpline, closedIsThePeriodicSplineOfTheMoments)
{
  Random random(2);
  for (long round = 0; round < rounds(100); ++round)
    for (long mode : {0L, 1L, 2L}) {
      Points const points = random.points(random.whole(2, 9));
      SCOPED_TRACE("mode " + std::to_string(mode) + ", round " + std::to_string(round));
      expectSame(ccInterpSpline(points, true, mode), Moments(points, true, mode));
    }
}

TEST(InterpSpline, withGivenEndsIsTheClampedSplineOfTheMoments)
{
  Random random(3);
  for (long round = 0; round < rounds(100); ++round)
    for (long mode : {0L, 1L, 2L}) {
      Points const points = random.points(random.whole(2, 9));
      ccVector<2> const ends[2] = {random.point(), random.point()};
      ccInterpSpline s(points, false, mode);
      s.endConditions(1);
      s.startTangent(ends[0]);
      s.endTangent(ends[1]);
      SCOPED_TRACE("mode " + std::to_string(mode) + ", round " + std::to_string(round));
      expectSame(s, Moments(points, false, mode, ends));
    }
}

TEST(InterpSpline, passesThroughItsPoints)
{
  Random random(4);
  for (long round = 0; round < rounds(50); ++round)
    for (bool closed : {false, true}) {
      Points const points = random.points(random.whole(2, 9));
      ccInterpSpline const s(points, closed, random.whole(0, 2));
      for (long k = 0; k < s.numBezierCurves(); ++k) {
        EXPECT_EQ(s.bezierCurve(k).startPoint(), points[static_cast<std::size_t>(k)]);
        EXPECT_EQ(s.bezierCurve(k).endPoint(), points[static_cast<std::size_t>(k + 1) % points.size()]);
      }
    }
}

TEST(InterpSpline, firstAndSecondDerivativesDoNotJump)
{
  Random random(5);
  for (long round = 0; round < rounds(100); ++round) {
    ccInterpSpline const s(random.points(random.whole(2, 9)), random.whole(0, 1) == 1, random.whole(0, 2));
    long const curves = s.numBezierCurves();
    for (long k = s.isClosed() ? 0 : 1; k < curves; ++k) {
      long const before = (k + curves - 1) % curves;
      ccBezierCurve const a = s.bezierCurve(before), b = s.bezierCurve(k);
      ccVector<2> const left = (a.controlPoint(3) - a.controlPoint(2)) * 3.0 / s.interval(before);
      ccVector<2> const right = (b.controlPoint(1) - b.controlPoint(0)) * 3.0 / s.interval(k);
      double const shortest = std::min(s.interval(before), s.interval(k));
      EXPECT_LE(left.distance(right), 1e-9 * std::max(1.0, 1 / shortest));
      EXPECT_LE(second(s, before, 1).distance(second(s, k, 0)), 1e-9 * std::max(1.0, 1 / (shortest * shortest)));
    }
  }
}

TEST(InterpSpline, naturalEndsHaveNoCurvature)
{
  Random random(6);
  for (long n = 2; n < 9; ++n)
    for (long mode : {0L, 1L, 2L}) {
      Points points;
      for (long i = 0; i < n; ++i)
        points.push_back(random.point());
      ccInterpSpline const s(points, false, mode);
      EXPECT_LE(second(s, 0, 0).len(), 1e-9) << n << mode;
      EXPECT_LE(second(s, n - 2, 1).len(), 1e-9) << n << mode;
    }
}

TEST(InterpSpline, naturalThroughThreePointsIsWorkedOutByHand)
{
  // 2a + b = 3 D0, a + 4b + c = 3 (D0 + D1), b + 2c = 3 D1 with the slopes D0 = (2, 6), D1 = (4, -6).
  ccInterpSpline const s({{0, 0}, {2, 6}, {6, 0}});
  EXPECT_LE(s.tangent(0).distance(ccVector<2>(1.5, 9)), 1e-14);
  EXPECT_LE(s.tangent(1).distance(ccVector<2>(3, 0)), 1e-14);
  EXPECT_LE(s.tangent(2).distance(ccVector<2>(4.5, -9)), 1e-14);
}

TEST(InterpSpline, closedThroughThreePointsIsWorkedOutByHand)
{
  // m(i-1) + 4 m(i) + m(i+1) = 3 (P(i+1) - P(i-1)); the tangents add up to 0, so 3 m(i) is the right side.
  ccInterpSpline const s({{0, 0}, {2, 6}, {6, 0}}, true);
  EXPECT_LE(s.tangent(0).distance(ccVector<2>(-4, 6)), 1e-14);
  EXPECT_LE(s.tangent(1).distance(ccVector<2>(6, 0)), 1e-14);
  EXPECT_LE(s.tangent(2).distance(ccVector<2>(-2, -6)), 1e-14);
}

TEST(InterpSpline, ofTwoPointsIsTheLineAndClosedTheLineThereAndBack)
{
  for (long mode : {0L, 1L, 2L}) {
    ccInterpSpline const open({{0, 0}, {30, 60}}, false, mode), closed({{0, 0}, {30, 60}}, true, mode);
    for (double t : {0.25, 0.5, 0.9})
      EXPECT_LE(at(open.bezierCurve(0), t).distance(ccPoint(30 * t, 60 * t)), 1e-13);
    for (long i : {0L, 1L})
      EXPECT_EQ(closed.tangent(i), ccVector<2>(0, 0));
    EXPECT_EQ(closed.encloseRect(), ccRect(ccPoint(0, 0), ccVector<2>(30, 60)));
  }
}

TEST(InterpSpline, reproducesACubicWhoseEndTangentsAreGiven)
{
  // p(u) = (u, u^3 - 2u^2) at u = 0, 1, 2, 3; the derivatives at the ends are (1, 0) and (1, 15).
  ccInterpSpline s({{0, 0}, {1, -1}, {2, 0}, {3, 9}});
  s.endConditions(1);
  s.startTangent(ccVector<2>(1, 0));
  s.endTangent(ccVector<2>(1, 15));
  for (long k = 0; k < 3; ++k)
    for (double t : {0.0, 0.3, 0.5, 0.8}) {
      double const u = static_cast<double>(k) + t;
      EXPECT_LE(at(s.bezierCurve(k), t).distance(ccPoint(u, u * u * u - 2 * u * u)), 1e-13);
    }
}

TEST(InterpSpline, givenEndTangentsAreDerivativesOverTheirOwnCurve)
{
  for (long mode : {0L, 1L, 2L}) {
    ccInterpSpline s({{0, 0}, {90, 10}, {100, 400}, {50, 50}}, false, mode);
    s.endConditions(1);
    s.startTangent(ccVector<2>(3, 6));
    s.endTangent(ccVector<2>(-9, 12));
    EXPECT_LE(s.bezierCurve(0).controlPoint(1).distance(ccPoint(1, 2)), 1e-12) << mode;
    EXPECT_LE(s.bezierCurve(2).controlPoint(2).distance(ccPoint(53, 46)), 1e-12) << mode;
  }
}

TEST(InterpSpline, endTangentsCountWithTheirConditionsAndOnAnOpenSplineOnly)
{
  Points const points{{0, 0}, {90, 10}, {100, 40}};
  ccInterpSpline s(points);
  s.startTangent(ccVector<2>(3, 6));
  EXPECT_EQ(s.bezierCurve(0), ccInterpSpline(points).bezierCurve(0));

  s.endConditions(1);
  EXPECT_FALSE(s.bezierCurve(0) == ccInterpSpline(points).bezierCurve(0));

  s.isClosed(true);
  EXPECT_EQ(s.bezierCurve(0), ccInterpSpline(points, true).bezierCurve(0));
}

TEST(InterpSpline, endConditionsTravelWithCopies)
{
  ccInterpSpline s({{0, 0}, {90, 10}});
  s.endConditions(1);
  s.startTangent(ccVector<2>(3, 6));
  ccInterpSpline copy(s);
  copy.addControlPoint(ccPoint(5, 5));
  EXPECT_EQ(copy.endConditions(), 1);
  EXPECT_EQ(copy.startTangent(), ccVector<2>(3, 6));
  ccInterpSpline const image = s.map(ccXform<2>(2, 3, ccVector<2>(7, 7)));
  EXPECT_EQ(image.endConditions(), 1);
  EXPECT_EQ(image.startTangent(), ccVector<2>(6, 18));
}

TEST(InterpSpline, intervalsFollowTheirMode)
{
  Points const points{{0, 0}, {3, 4}, {3, 4}, {3, 20}};
  ccInterpSpline s(points, true);
  double const expected[3][4] = {{1, 1, 1, 1}, {5, 5, 16, std::hypot(3, 20)}, {std::sqrt(5), std::sqrt(5), 4, 0}};
  for (long mode : {0L, 1L, 2L}) {
    s.intervalMode(mode);
    for (long k = 0; k < 4; ++k)
      EXPECT_DOUBLE_EQ(s.interval(k), mode == 2 && k == 3 ? std::sqrt(std::hypot(3, 20)) : expected[mode][k]) << mode << k;
  }
  EXPECT_THROW(s.interval(4), ccShapesError::BadParams);
  EXPECT_THROW(s.interval(-1), ccShapesError::BadParams);
  EXPECT_THROW(s.tangent(4), ccShapesError::BadParams);
}

TEST(InterpSpline, allPointsEqualHaveIntervalsOfOne)
{
  for (long mode : {1L, 2L}) {
    ccInterpSpline const s({{3, 4}, {3, 4}, {3, 4}}, true, mode);
    for (long k = 0; k < 3; ++k)
      EXPECT_EQ(s.interval(k), 1) << mode;
  }
}

TEST(InterpSpline, tinyAndHugeChordsStayFinite)
{
  for (long mode : {0L, 1L, 2L})
    for (bool closed : {false, true}) {
      ccInterpSpline const s({{0, 0}, {1e-310, 0}, {1e-310, 0}, {1, 1}, {1e9, -1e9}, {1e9, -1e9 + 1e-7}}, closed, mode);
      for (long i = 0; i < s.numControlPoints(); ++i)
        EXPECT_TRUE(std::isfinite(s.tangent(i).x()) && std::isfinite(s.tangent(i).y())) << mode << closed << i;
      EXPECT_LE(s.encloseRect().width(), 4e9) << mode << closed;
    }
}

TEST(InterpSpline, centripetalKeepsTheCurveNearShortChords)
{
  // A known quality: uniform intervals overshoot at a short chord between long ones.
  Points const points{{0, 0}, {100, 0}, {101, 10}, {101, 110}};
  double width[3];
  for (long mode : {0L, 1L, 2L})
    width[mode] = ccInterpSpline(points, false, mode).encloseRect().width();
  EXPECT_GT(width[0], width[2]);
  EXPECT_NE(width[1], width[2]);
}

TEST(InterpSpline, mapDoesNotInterpolateAnew)
{
  Points const points{{0, 0}, {10, 50}, {30, 20}, {31, 60}};
  ccXform<2> const uneven(1, 20, ccVector<2>(5, 5));
  for (long mode : {1L, 2L}) {
    ccInterpSpline const s(points, false, mode), image = s.map(uneven);
    Points const before = samples(s, 5), after = samples(image, 5);
    for (std::size_t i = 0; i < before.size(); ++i)
      EXPECT_LE(after[i].distance(uneven.mapPoint(before[i])), 1e-9);
    for (long k = 0; k < 3; ++k)
      EXPECT_EQ(image.interval(k), s.interval(k));
    for (long i = 0; i < 4; ++i)
      EXPECT_EQ(image.tangent(i), uneven.mapVector(s.tangent(i)));

    // Another curve than the interpolation of the mapped points, which the next edit makes of it.
    ccInterpSpline const anew(image.controlPoints(), false, mode);
    EXPECT_FALSE(image == anew);
    ccInterpSpline edited(image);
    edited.controlPoint(0, edited.controlPoint(0));
    EXPECT_TRUE(edited == anew);
  }
}

TEST(InterpSpline, anEditAfterASimilarityMakesNoJump)
{
  Random random(7);
  for (long round = 0; round < rounds(30); ++round)
    for (long mode : {0L, 1L, 2L}) {
      ccInterpSpline s(random.points(random.whole(2, 7)), false, mode);
      s.endConditions(random.whole(0, 1));
      s.startTangent(random.point());
      s.endTangent(random.point());
      double const scale = random.number(0.2, 5);
      ccInterpSpline const image = s.map(ccXform<2>(ccMatrix<2>(ccRadian(random.number(-3, 3)), scale), random.point()));
      ccInterpSpline edited(image);
      edited.controlPoint(0, edited.controlPoint(0));

      Points const before = samples(image, 5), after = samples(edited, 5);
      // Points that coincided may differ by a rounding now, a chord of its own; such data is left out.
      bool distinct = true;
      for (long i = 1; i < s.numControlPoints(); ++i)
        distinct = distinct && s.controlPoint(i) != s.controlPoint(i - 1);
      for (std::size_t i = 0; distinct && i < before.size(); ++i)
        EXPECT_LE(after[i].distance(before[i]), 1e-9 * sizeOf(before));
    }
}

TEST(InterpSpline, closesUpWithoutASeam)
{
  // Turning the order of the points of a closed spline turns its curves only.
  Random random(8);
  for (long round = 0; round < rounds(40); ++round)
    for (long mode : {0L, 1L, 2L}) {
      Points const points = random.points(random.whole(2, 8));
      Points turned = points;
      std::rotate(turned.begin(), turned.begin() + 1, turned.end());
      ccInterpSpline const a(points, true, mode), b(turned, true, mode);
      long const n = a.numBezierCurves();
      for (long k = 0; k < n; ++k)
        for (long i = 0; i < 4; ++i)
          EXPECT_LE(a.bezierCurve((k + 1) % n).controlPoint(i).distance(b.bezierCurve(k).controlPoint(i)),
                    1e-11 * sizeOf(points));
    }
}

TEST(InterpSpline, badSettingsThrowAndChangeNothing)
{
  ccInterpSpline const before({{0, 0}, {4, 2}, {10, 0}}, false, 1);
  ccInterpSpline s(before);
  EXPECT_THROW(s.intervalMode(3), ccShapesError::BadParams);
  EXPECT_THROW(s.endConditions(2), ccShapesError::BadParams);
  EXPECT_THROW(s.endConditions(-1), ccShapesError::BadParams);
  EXPECT_THROW(s.startTangent(ccVector<2>(std::nan(""), 0)), ccShapesError::BadParams);
  EXPECT_THROW(s.endTangent(ccVector<2>(0, HUGE_VAL)), ccShapesError::BadParams);
  EXPECT_THROW(ccInterpSpline({}, false, 3), ccShapesError::BadParams);
  EXPECT_EQ(s, before);
}

TEST(InterpSpline, anEditedSplineIsTheOneMadeAtOnce)
{
  Random random(9);
  for (long round = 0; round < rounds(30); ++round) {
    Points const points = random.points(random.whole(1, 7));
    bool const closed = random.whole(0, 1) == 1;
    long const mode = random.whole(0, 2);
    ccInterpSpline s({{99, 99}, {-7, 5}, {3, 3}});
    for (ccVector<2> const& p : points)
      s.addControlPoint(p);
    for (int i = 0; i < 3 && s.numControlPoints() > 2; ++i)
      s.deleteControlPoint(0);
    s.isClosed(closed);
    s.intervalMode(mode);
    Points const kept = s.controlPoints();
    EXPECT_EQ(s, ccInterpSpline(kept, closed, mode));
  }
}

TEST(InterpSpline, splinesOfOneCurveDifferByTheirSettings)
{
  // Settings that a closed spline does not use count too, as the next opening brings them back.
  ccInterpSpline const s({{0, 0}, {4, 2}, {10, 0}}, true);
  ccInterpSpline conditions(s), tangent(s);
  conditions.endConditions(1);
  tangent.endTangent(ccVector<2>(1, 0));
  EXPECT_EQ(conditions.bezierCurve(1), s.bezierCurve(1));
  EXPECT_FALSE(conditions == s);
  EXPECT_FALSE(tangent == s);
}
