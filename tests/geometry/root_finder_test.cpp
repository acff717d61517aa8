#include "geometry/root_finder.h"

#include "tests/geometry/shape_support.h"

using namespace krs_test;

namespace {

// Bernstein coefficients of the product of (t - r), by summing over all choices of k factors.
std::vector<double> bernstein(std::vector<double> const& roots)
{
  int const n = static_cast<int>(roots.size());
  std::vector<double> sums(roots.size() + 1), counts(roots.size() + 1);
  for (unsigned choice = 0; choice < (1u << n); ++choice) {
    double product = 1;
    std::size_t k = 0;
    for (int i = 0; i < n; ++i) {
      bool const taken = (choice >> i) & 1u;
      product *= taken ? 1 - roots[static_cast<std::size_t>(i)] : -roots[static_cast<std::size_t>(i)];
      k += taken;
    }
    sums[k] += product;
    counts[k] += 1;
  }
  for (std::size_t k = 0; k < sums.size(); ++k)
    sums[k] /= counts[k];
  return sums;
}

std::vector<double> solve(std::vector<double> const& c)
{
  double size = 0;
  for (double const v : c)
    size = std::max(size, std::abs(v));
  std::vector<double> const bound(c.size(), 4e-15 * size);
  double roots[cf_maxRoots];
  int const count = cf_roots(c.data(), bound.data(), static_cast<int>(c.size()) - 1, roots);
  std::vector<double> found(roots, roots + count);
  std::sort(found.begin(), found.end());
  return found;
}

V pointOf(cs_RationalCurve const& c, double t)
{
  V sum;
  double weight = 0;
  for (int i = 0; i <= c.degree; ++i) {
    double const choose = i == 0 || i == c.degree ? 1 : c.degree;
    double const b = choose * std::pow(t, i) * std::pow(1 - t, c.degree - i) * c.weights[i];
    sum += c.points[i] * b;
    weight += b;
  }
  return sum / weight;
}

cs_RationalCurve randomCurve(Random& r)
{
  cs_RationalCurve c;
  c.degree = 1 + r.below(3);
  double const size = r.magnitude(1e-2, 1e5);
  V const direction = r.vector(size);
  bool const collinear = r.chance(5);
  for (int i = 0; i <= c.degree; ++i) {
    c.points[i] = collinear ? direction * r.in(-1, 1) : r.vector(size);
    if (i > 0 && r.chance(5))
      c.points[i] = c.points[i - 1];
    c.weights[i] = r.chance(2) ? 1 : r.magnitude(1e-2, 1e2);
  }
  return c;
}

double sizeOfCurve(cs_RationalCurve const& c)
{
  double size = 0;
  for (int i = 0; i <= c.degree; ++i)
    size = std::max(size, c.points[i].len());
  return size;
}

}  // namespace

TEST(RootFinder, findsEverySimpleRootToTheLastBits)
{
  Random random(1);
  for (int round = 0; round < rounds(3000); ++round) {
    std::vector<double> roots(static_cast<std::size_t>(1 + random.below(8)));
    for (std::size_t i = 0; i < roots.size(); ++i)  // at least 0.06 apart, some outside of the interval
      roots[i] = -0.2 + (static_cast<double>(i) + random.in(0.1, 0.6)) * 1.4 / static_cast<double>(roots.size());
    std::vector<double> const found = solve(bernstein(roots));

    std::size_t inside = 0;
    for (double const root : roots) {
      if (root < 0 || root > 1)
        continue;
      ++inside;
      double best = 1;
      for (double const t : found)
        best = std::min(best, std::abs(t - root));
      EXPECT_LE(best, 1e-9) << root;
    }
    EXPECT_GE(found.size(), inside);
    EXPECT_LE(found.size(), inside + 4);
  }
}

TEST(RootFinder, findsDoubleRootsAndRootsAtTheEnds)
{
  for (std::vector<double> const& roots :
       {std::vector<double>{0.3, 0.3}, {0.5, 0.5}, {0.25, 0.25, 0.75}, {0.0, 0.4, 1.0}, {0.5, 0.5, 0.5}, {0.0, 0.0}}) {
    std::vector<double> const found = solve(bernstein(roots));
    for (double const root : roots) {
      double best = 1;
      for (double const t : found)
        best = std::min(best, std::abs(t - root));
      // The bound of the coefficients makes a root of order k uncertain by its k-th root.
      EXPECT_LE(best, 2e-5) << root;
    }
  }
}

TEST(RootFinder, aPolynomialWithoutSignChangeHasNoRoot)
{
  EXPECT_TRUE(solve({1, 2, 3, 0.5}).empty());
  EXPECT_TRUE(solve({-1, -1e-3, -7}).empty());
  EXPECT_TRUE(solve(bernstein({-0.5, 1.5})).empty());
  EXPECT_TRUE(solve({1, -0.9, 1}).size() == 0);  // 1 - 3.8 t (1 - t) is above 0
}

TEST(RootFinder, anEmptyPolynomialOffersEndsAndMiddle)
{
  EXPECT_EQ(solve({0, 0, 0}), (std::vector<double>{0, 0.5, 1}));

  double const c[2] = {1e-16, -1e-16}, bound[2] = {1e-15, 1e-15};  // within the bound there is no sign
  double roots[cf_maxRoots];
  EXPECT_EQ(cf_roots(c, bound, 1, roots), 3);
}

TEST(RootFinder, aNoisyPolynomialStaysWithinItsRoom)
{
  Random random(2);
  for (int round = 0; round < rounds(2000); ++round) {
    double c[9], bound[9], roots[cf_maxRoots];
    double const noise = random.magnitude(1e-12, 1);
    for (int i = 0; i < 9; ++i) {
      c[i] = random.in(-1, 1) * random.magnitude(1e-12, 1);
      bound[i] = noise;
    }
    int const count = cf_roots(c, bound, 8, roots);
    ASSERT_LE(count, cf_maxRoots);
    for (int i = 0; i < count; ++i) {
      EXPECT_GE(roots[i], 0);
      EXPECT_LE(roots[i], 1);
    }
  }
}

TEST(RootFinder, nearestIsNeverAboveDenseSamplesNorFarBelow)
{
  Random random(3);
  for (int round = 0; round < rounds(1500); ++round) {
    cs_RationalCurve const c = randomCurve(random);
    double const size = sizeOfCurve(c);
    V const q = random.vector(1.5 * size);
    double sampled = cfInfinity, gap = 0;
    V last = pointOf(c, 0);
    for (int i = 0; i <= 400; ++i) {
      V const p = pointOf(c, i / 400.0);
      sampled = std::min(sampled, p.distance(q));
      gap = std::max(gap, p.distance(last));
      last = p;
    }
    cs_Nearest const nearest = cf_nearest(c, q);

    ASSERT_LE(nearest.distance, sampled + 1e-12 * size) << round;
    ASSERT_GE(nearest.distance, sampled - gap / 2 * 1.01 - 1e-12 * size) << round;
    ASSERT_NEAR(pointOf(c, nearest.t).distance(q), nearest.distance, 1e-12 * size) << round;
  }
}

TEST(RootFinder, nearestOfAPointOfTheCurveIsZero)
{
  Random random(4);
  for (int round = 0; round < rounds(10000); ++round) {
    cs_RationalCurve const c = randomCurve(random);
    double const t = random.chance(5) ? random.below(2) : random.in(0, 1);

    ASSERT_LE(cf_nearest(c, pointOf(c, t)).distance, 1e-12 * sizeOfCurve(c)) << round;
  }
}

TEST(RootFinder, quarterCirclesFollowTheCircleFormula)
{
  Random random(5);
  for (int round = 0; round < rounds(5000); ++round) {
    double const r = random.magnitude(1e-2, 1e4);
    cs_RationalCurve c;
    c.degree = 2;
    c.points[0] = V(r, 0);
    c.points[1] = V(r, r);
    c.points[2] = V(0, r);
    c.weights[1] = std::sqrt(0.5);
    double const along = random.in(0, cfPi / 2), out = random.in(0, 3 * r);
    V const q(out * std::cos(along), out * std::sin(along));

    ASSERT_NEAR(cf_nearest(c, q).distance, std::abs(out - r), 1e-12 * r);
    ASSERT_NEAR(cf_nearest(c, V(-out, -out)).distance, std::hypot(r + out, out), 1e-12 * r);
  }
}

TEST(RootFinder, theCentreOfACircleIsARadiusAway)
{
  cs_RationalCurve c;
  c.degree = 2;
  c.points[0] = V(12, 5);
  c.points[1] = V(12, 7);
  c.points[2] = V(10, 7);
  c.weights[1] = std::sqrt(0.5);

  EXPECT_NEAR(cf_nearest(c, V(10, 5)).distance, 2, 1e-14);
}

TEST(RootFinder, extremesOfARationalCurveAreThoseOfItsSamples)
{
  Random random(6);
  for (int round = 0; round < rounds(1500); ++round) {
    cs_RationalCurve const c = randomCurve(random);
    double const size = sizeOfCurve(c);
    for (int axis = 0; axis < 2; ++axis) {
      double parameters[cf_maxRoots];
      int const count = cf_extremes(c, axis, parameters);
      double most = std::max(pointOf(c, 0)[axis], pointOf(c, 1)[axis]);
      for (int i = 0; i < count; ++i)
        most = std::max(most, pointOf(c, parameters[i])[axis]);
      for (int i = 0; i <= 300; ++i)
        ASSERT_LE(pointOf(c, i / 300.0)[axis], most + 1e-12 * size) << round;
    }
  }
}

TEST(RootFinder, extremesOfACubicByHand)
{
  // x runs 0, 3, -3, 0: its derivative 9 (1 - 6 t + 6 t t) is 0 at (3 +- sqrt 3) / 6.
  cs_RationalCurve c;
  c.degree = 3;
  c.points[1] = V(3, 1);
  c.points[2] = V(-3, 2);
  c.points[3] = V(0, 3);
  double t[cf_maxRoots];

  ASSERT_EQ(cf_extremes(c, 0, t), 2);
  EXPECT_NEAR(std::min(t[0], t[1]), (3 - std::sqrt(3.0)) / 6, 1e-15);
  EXPECT_NEAR(std::max(t[0], t[1]), (3 + std::sqrt(3.0)) / 6, 1e-15);
  EXPECT_EQ(cf_extremes(c, 1, t), 0);
}
