// Polygons: arcs, roundings, validity, distance, box, outline and maps.
#include "geometry/circle.h"
#include "geometry/lines.h"
#include "tests/geometry/poly_support.h"

#include <typeinfo>

using namespace krs_test;

namespace {

ccGenPoly square(double side = 10) { return ccGenPoly(ccRect(V(0, 0), V(side, side))); }

// An open corner: along +x to (0,0), then in the given direction.
ccGenPoly corner(double degrees, double before = 10, double after = 10)
{
  return chain({V(-before, 0), V(0, 0), V::polar(after, deg(degrees))}, false);
}

V turned(V const& v, double angle)
{
  return V(std::cos(angle) * v.x() - std::sin(angle) * v.y(), std::sin(angle) * v.x() + std::cos(angle) * v.y());
}

// The direction of travel of a line or arc at its start or end: the tangent makes half the span with the chord.
V direction(cs_PolySegment const& s, bool atEnd)
{
  V const d = s.b - s.a;
  return turned(d / std::hypot(d.x(), d.y()), (atEnd ? 0.5 : -0.5) * s.span.value());
}

}  // namespace

// Arcs.

TEST(GenPolyArc, aPositiveSpanBulgesToTheRightOfTheChord)
{
  ccGenPoly poly = chain({V(0, 0), V(2, 0)}, false);
  poly.segmentAngleSpan(0, deg(180));

  ccEllipseArc const arc = poly.arcSegment(0, true);

  expectNear(arc.conic().c, V(1, 0), 1e-15);
  EXPECT_NEAR(arc.conic().rx, 1, 1e-15);
  EXPECT_EQ(arc.conic().rx, arc.conic().ry);
  EXPECT_EQ(arc.span(), deg(180));
  expectNear(arc.startPoint(), V(0, 0), 1e-15);
  expectNear(arc.midPoint(), V(1, -1), 1e-15);
  expectNear(arc.endPoint(), V(2, 0), 1e-15);
  EXPECT_NEAR(poly.distToPoint(V(1, -1)), 0, 1e-15);
  EXPECT_NEAR(poly.distToPoint(V(1, 1)), std::sqrt(2), 1e-15);  // to the ends: the other half is not there
}

TEST(GenPolyArc, aQuarterHasItsCentreOnTheLeft)
{
  ccGenPoly poly = chain({V(0, 0), V(2, 0)}, false);
  poly.segmentAngleSpan(0, deg(90));
  expectNear(poly.arcSegment(0, true).conic().c, V(1, 1), 1e-15);
  EXPECT_NEAR(poly.arcSegment(0, true).conic().rx, std::sqrt(2), 1e-15);

  poly.segmentAngleSpan(0, deg(-90));
  expectNear(poly.arcSegment(0, true).conic().c, V(1, -1), 1e-15);

  poly.segmentAngleSpan(0, deg(270));  // beyond half a turn the centre changes sides
  expectNear(poly.arcSegment(0, true).conic().c, V(1, -1), 1e-15);
  expectNear(poly.arcSegment(0, true).midPoint(), V(1, -1 - std::sqrt(2)), 1e-15);
}

TEST(GenPolyArc, isTheArcOfTheDefinition)
{
  Random random(2);
  for (int i = 0; i < rounds(2000); ++i) {
    V const a = random.vector(10), b = random.vector(10);
    double const span = deg(random.in(1, 350) * (random.chance(2) ? -1 : 1)).value();
    cs_PolySegment const s{a, b, ccRadian(span)};
    ArcCircle const expected(a, b, span);
    double const tolerance = 1e-12 * (10 + expected.radius);

    ccEllipseArc const arc = s.arc();
    expectNear(arc.conic().c, expected.center, tolerance);
    EXPECT_NEAR(arc.conic().rx, expected.radius, tolerance);
    for (double const t : {0.0, 0.1, 0.4, 0.5, 0.6, 0.95, 1.0}) {
      expectNear(s.pointAt(t), expected.at(expected.start + t * span), tolerance);
      expectNear(arc.pointAt(t), expected.at(expected.start + t * span), tolerance);
      V const radial = s.pointAt(t) - expected.center, tangent = s.directionAt(t);
      EXPECT_NEAR(tangent.dot(radial), 0, 10 * tolerance);
      EXPECT_GT(cf_cross(radial, tangent) * span, 0);
      EXPECT_NEAR(tangent.len(), 1, 1e-14);
    }
    expectNear(s.pointAt(0.5), apex(a, b, span), tolerance);
    EXPECT_NEAR(s.curvature() * expected.radius, span > 0 ? 1 : -1, 1e-12);
  }
}

TEST(GenPolyArc, flatArcsKeepTheirAccuracy)
{
  // The sagitta of a flat arc is length * span / 8 up to the third power of the span.
  for (double const span : {1e-8, 1e-6, 1e-4}) {
    cs_PolySegment const s{V(0, 0), V(8, 0), ccRadian(span)};
    EXPECT_NEAR(s.pointAt(0.5).y(), -span, span * span);
    EXPECT_NEAR(s.pointAt(0.5).x(), 4, 1e-15);
    EXPECT_NEAR(s.distance(V(4, 0)), span, span * span);
    EXPECT_NEAR(s.distance(V(4, 3)), 3 + span, 1e-14 + span * span);
    EXPECT_NEAR(s.distance(V(11, 4)), 5, 1e-14);
    ccGenPoly const poly({record(V(0, 0)), record(V(8, 0), 0, ccRadian(span))}, false);
    EXPECT_NEAR(poly.encloseRect().ul().y(), -span, span * span);
    EXPECT_EQ(poly.encloseRect().lr().y(), 0);
    Sampler const sampler(poly, 16);
    EXPECT_EQ(sampler.curves, 1);
    EXPECT_EQ(sampler.points.back(), V(8, 0));
  }
}

TEST(GenPolyArc, distanceOfOneIsThatOfCircleOrEnds)
{
  Random random(3);
  for (int i = 0; i < rounds(5000); ++i) {
    V const a = random.vector(10), b = random.vector(10);
    double const span = deg(random.in(1, 350) * (random.chance(2) ? -1 : 1)).value();
    cs_PolySegment const s{a, b, ccRadian(span)};
    ArcCircle const circle(a, b, span);
    V const q = random.chance(4) ? circle.center + random.vector(circle.radius * 1e-3) : random.vector(30);
    double const angle = std::atan2(q.y() - circle.center.y(), q.x() - circle.center.x());
    double swept = span > 0 ? angle - circle.start : circle.start - angle;
    swept -= 2 * cfPi * std::floor(swept / (2 * cfPi));
    double const ends = std::min(q.distance(a), q.distance(b));
    double const expected = swept <= std::abs(span) ? std::abs(q.distance(circle.center) - circle.radius) : ends;

    EXPECT_NEAR(s.distance(q), expected, 1e-11 * (10 + circle.radius));
    EXPECT_NEAR(s.closestPoint(q).distance(q), s.distance(q), 1e-11 * (10 + circle.radius));
    EXPECT_LE(s.distance(s.closestPoint(q)), 1e-11 * (10 + circle.radius));
  }
}

TEST(GenPolyArc, overAChordOfLengthZeroIsAPoint)
{
  ccGenPoly poly = chain({V(3, 4), V(3, 4)}, false);
  poly.segmentAngleSpan(0, deg(200));

  EXPECT_EQ(poly.distToPoint(V(0, 0)), 5);
  EXPECT_EQ(poly.encloseRect(), ccRect(V(3, 4), V(0, 0)));
  EXPECT_EQ(poly.arcSegment(0, true).midPoint(), V(3, 4));
  EXPECT_TRUE(poly.isValid());
}

// Roundings.

TEST(GenPolyRounding, betweenLinesTheCentreLiesOnTheBisector)
{
  struct {
    double degrees, radius;
  } const cases[] = {{90, 2}, {-90, 2}, {45, 1}, {120, 1.5}, {-150, 0.5}, {1, 3}, {-179, 0.01}};
  for (auto const& c : cases) {
    SCOPED_TRACE(c.degrees);
    ccGenPoly poly = corner(c.degrees);
    poly.vertexRoundingSize(1, c.radius);
    double const inner = (180 - std::abs(c.degrees)) * cfPi / 180;  // the angle between the sides
    double const trim = c.radius / std::tan(inner / 2);

    cs_PolyRounding const r = poly.rounding(1);

    ASSERT_TRUE(r.fits);
    EXPECT_NEAR(r.center.len(), c.radius / std::sin(inner / 2), 1e-11);
    expectNear(r.center, V(-trim, c.degrees > 0 ? c.radius : -c.radius), 1e-11);
    EXPECT_NEAR(r.trimIn, trim / 10, 1e-12);
    EXPECT_NEAR(r.trimOut, trim / 10, 1e-12);
    expectNear(r.arc.a, V(-trim, 0), 1e-11);
    expectNear(r.arc.b, V::polar(trim, deg(c.degrees)), 1e-11);
    EXPECT_NEAR(r.arc.span.value(), c.degrees * cfPi / 180, 1e-12);
    EXPECT_TRUE(poly.isValid());
  }
}

TEST(GenPolyRounding, aRightAngleByHand)
{
  ccGenPoly poly = square();
  poly.vertexRoundingSize(1, 2);

  EXPECT_EQ(poly.lineSegment(0, true), ccLineSeg(V(0, 0), V(10, 0)));
  expectNear(poly.lineSegment(0, false).p2(), V(8, 0), 1e-14);
  EXPECT_EQ(poly.lineSegment(0, false).p1(), V(0, 0));
  expectNear(poly.lineSegment(1, false).p1(), V(10, 2), 1e-14);
  EXPECT_EQ(poly.lineSegment(2, false), poly.lineSegment(2, true));
  EXPECT_NEAR(poly.distToPoint(V(10, 0)), 2 * std::sqrt(2) - 2, 1e-14);
  EXPECT_NEAR(poly.distToPoint(V(8, 2)), 2, 1e-14);
  EXPECT_EQ(poly.encloseRect(), ccRect(V(0, 0), V(10, 10)));
}

TEST(GenPolyRounding, betweenALineAndAnArcByHand)
{
  // A half circle about (5,0) through (0,-r) side: the path turns right, and the rounding circle lies outside the half circle,
  // 2 to the right of the line: at distance 5 + 2 from (5,0).
  ccGenPoly poly = chain({V(-10, 0), V(0, 0), V(10, 0)}, false);
  poly.segmentAngleSpan(1, deg(180));
  poly.vertexRoundingSize(1, 2);
  double const x = 5 - std::sqrt(49.0 - 4.0);

  cs_PolyRounding const r = poly.rounding(1);

  ASSERT_TRUE(r.fits);
  expectNear(r.center, V(x, -2), 1e-13);
  expectNear(r.arc.a, V(x, 0), 1e-13);
  expectNear(r.arc.b, V(5, 0) + (V(x, -2) - V(5, 0)) * (5.0 / 7), 1e-13);
  EXPECT_NEAR(r.trimIn, -x / 10, 1e-13);
  EXPECT_NEAR(r.trimOut, std::atan2(2, 5 - x) / cfPi, 1e-13);
  EXPECT_LT(r.arc.span.value(), 0);
  EXPECT_NEAR(poly.arcSegment(1, false).span().value(), cfPi - std::atan2(2, 5 - x), 1e-13);
  EXPECT_NEAR(poly.arcSegment(1, true).span().value(), cfPi, 1e-15);
}

TEST(GenPolyRounding, insideAnArcThatIsTooTightItDoesNotFit)
{
  // The path turns left onto an arc of radius 5 that turns left too, so the circle lies inside that arc.
  auto const poly = [](double radius) {
    ccGenPoly p = chain({V(0, -20), V(0, 0), V(-10, 0)}, false);
    p.segmentAngleSpan(0, ccRadian(0));
    p.segmentAngleSpan(1, deg(-180));
    p.vertexRoundingSize(1, radius);
    return p;
  };
  // Along +y at (0,0), then along +y on the half circle to the right of its chord: no corner at all.
  EXPECT_FALSE(poly(1).isValid());

  auto const inside = [](double radius) {
    ccGenPoly p = chain({V(-20, 0), V(0, 0), V(-10, 0)}, false);
    p.segmentAngleSpan(1, deg(180));
    p.vertexRoundingSize(1, radius);
    return p;
  };
  // Along +x, then along +y on the half circle about (-5,0): the circle of radius r touches the line from the left and the half
  // circle from inside, so (x + 5)^2 + r^2 = (5 - r)^2.
  cs_PolyRounding const r = inside(2).rounding(1);
  ASSERT_TRUE(r.fits);
  expectNear(r.center, V(-5 + std::sqrt(5.0), 2), 1e-13);
  EXPECT_TRUE(inside(2.49).isValid());
  EXPECT_FALSE(inside(2.51).isValid());  // 2.5 fills the half circle
  EXPECT_FALSE(inside(5).isValid());
  EXPECT_FALSE(inside(6).isValid());
}

TEST(GenPolyRounding, aStraightVertexAndACuspDoNotFit)
{
  for (double const degrees : {0.0, 180.0, 1e-11, 180 - 1e-11}) {
    ccGenPoly poly = corner(degrees);
    poly.vertexRoundingSize(1, 1e-6);
    EXPECT_FALSE(poly.isValid()) << degrees;
    EXPECT_FALSE(poly.rounding(1).fits) << degrees;
  }
}

TEST(GenPolyRounding, besideASegmentOfLengthZeroItDoesNotFit)
{
  ccGenPoly poly = chain({V(0, 0), V(5, 0), V(5, 0), V(5, 5)}, false);
  EXPECT_TRUE(poly.isValid());
  poly.vertexRoundingSize(1, 1);
  EXPECT_FALSE(poly.isValid());
}

TEST(GenPolyRounding, aTrimMayReachTheEndOfItsSegmentAndNotBeyond)
{
  ccGenPoly poly = corner(90, 4, 20);
  poly.vertexRoundingSize(1, 4);
  EXPECT_TRUE(poly.isValid());
  poly.vertexRoundingSize(1, 4 * (1 + 0.5e-9));
  EXPECT_TRUE(poly.isValid());
  poly.vertexRoundingSize(1, 4 * (1 + 1e-8));
  EXPECT_FALSE(poly.isValid());
}

TEST(GenPolyRounding, trimsOfOneSegmentMayMeetAndNotOverlap)
{
  ccGenPoly poly = square();
  for (long i = 0; i < 4; ++i)
    poly.vertexRoundingSize(i, 5);
  EXPECT_TRUE(poly.isValid());
  for (V const& p : Sampler(poly, 40).points)
    EXPECT_NEAR(p.distance(V(5, 5)), 5, 1e-9);  // a circle
  poly.vertexRoundingSize(2, 5.001);
  EXPECT_FALSE(poly.isValid());
  for (long i : {1L, 3L})
    poly.vertexRoundingSize(i, 0);
  poly.vertexRoundingSize(2, 10);
  EXPECT_TRUE(poly.isValid());
}

TEST(GenPolyRounding, theClosingSegmentIsSharedToo)
{
  ccGenPoly poly = square();
  poly.vertexRoundingSize(0, 6);
  poly.vertexRoundingSize(3, 6);

  EXPECT_FALSE(poly.isValid());
  EXPECT_TRUE(poly.rounding(0).fits);
  EXPECT_FALSE(poly.rounding(3).fits);
  EXPECT_EQ(poly.distToPoint(V(0, 10)), 0);
  EXPECT_GT(poly.distToPoint(V(0, 0)), 2);
}

TEST(GenPolyRounding, ofRoundingsThatOverlapTheFirstIsMeasured)
{
  ccGenPoly poly = square();
  for (long i = 0; i < 4; ++i)
    poly.vertexRoundingSize(i, 6);

  EXPECT_FALSE(poly.isValid());
  EXPECT_TRUE(poly.rounding(0).fits);
  EXPECT_FALSE(poly.rounding(1).fits);
  EXPECT_TRUE(poly.rounding(2).fits);
  EXPECT_FALSE(poly.rounding(3).fits);
  EXPECT_EQ(poly.distToPoint(V(10, 0)), 0);
  EXPECT_NEAR(poly.distToPoint(V(0, 0)), 6 * std::sqrt(2) - 6, 1e-14);
  EXPECT_NEAR(poly.distToPoint(V(10, 10)), 6 * std::sqrt(2) - 6, 1e-14);
}

TEST(GenPolyRounding, allInOnePassAreThoseOfEachVertex)
{
  Random random(31);
  int overlaps = 0;
  for (int i = 0; i < rounds(400); ++i) {
    cc2Wireframe wire = randomWire(random, {2, 8, true, true, 200, false});
    for (long k = 0; k < wire.numVertices(); ++k)
      if (random.chance(2))
        wire.vertexRoundingSize(k, random.magnitude(0.1, 300));
    std::vector<cs_PolyRounding> const all = wire.roundings();
    overlaps += !wire.isValid();
    ASSERT_EQ(static_cast<long>(all.size()), wire.numVertices());
    for (long k = 0; k < wire.numVertices(); ++k) {
      cs_PolyRounding const& one = all[static_cast<std::size_t>(k)];
      EXPECT_EQ(one.fits, wire.rounding(k).fits) << i << " " << k;
      EXPECT_EQ(one.center, wire.rounding(k).center) << i << " " << k;
    }
  }
  EXPECT_GT(overlaps, rounds(50));
}

TEST(GenPolyRounding, atTheEndsOfAnOpenOneItIsKeptAndIgnored)
{
  ccGenPoly poly = chain({V(0, 0), V(10, 0), V(10, 10)}, false);
  poly.vertexRoundingSize(0, 100);
  poly.vertexRoundingSize(2, 1);

  EXPECT_TRUE(poly.isValid());
  EXPECT_EQ(poly.distToPoint(V(0, 0)), 0);
  EXPECT_FALSE(poly.rounding(2).fits);
  poly.close();
  EXPECT_FALSE(poly.isValid());
  poly.vertexRoundingSize(0, 1);
  EXPECT_TRUE(poly.isValid());
  EXPECT_TRUE(poly.rounding(2).fits);
  EXPECT_GT(poly.distToPoint(V(0, 0)), 0.5);
}

TEST(GenPolyRounding, ofALensOfTwoArcsFitsAtBothTips)
{
  ccGenPoly poly({record(V(-4, 0), 0.5, deg(120)), record(V(4, 0), 0.5, deg(120))}, true);

  ASSERT_TRUE(poly.isValid());
  EXPECT_NEAR(poly.rounding(0).center.y(), 0, 1e-14);
  EXPECT_NEAR(poly.rounding(0).center.x(), -poly.rounding(1).center.x(), 1e-14);
  // Inside both circles, of radius 4 / sin 60 about (0, +-4 / tan 60), at distance 0.5.
  double const radius = 4 / std::sin(cfPi / 3), offset = 4 / std::tan(cfPi / 3);
  EXPECT_NEAR(poly.rounding(1).center.distance(V(0, offset)), radius - 0.5, 1e-13);
  EXPECT_NEAR(poly.rounding(1).center.distance(V(0, -offset)), radius - 0.5, 1e-13);
}

namespace {

// Finds roundings by walking along the incoming segment: the centre lies at the radius beside it, and its distance to the
// outgoing circle or line must be the radius too. Sums of the trimmed fractions.
std::vector<double> foundByWalking(cs_PolySegment const& in, cs_PolySegment const& out, double radius)
{
  V const t1 = direction(in, true), t2 = direction(out, false);
  double const side = t1.x() * t2.y() - t1.y() * t2.x() > 0 ? 1 : -1;
  auto const center = [&](double trim) {
    V p, tangent;
    if (in.isLine()) {
      p = in.b + (in.a - in.b) * trim;
      tangent = t1;
    } else {
      ArcCircle const c(in.a, in.b, in.span.value());
      p = c.at(c.start + (1 - trim) * in.span.value());
      tangent = turned(t1, -trim * in.span.value());
    }
    return p + turned(tangent, cfPi / 2) * (side * radius);
  };
  std::optional<ArcCircle> circle;
  if (!out.isLine())
    circle.emplace(out.a, out.b, out.span.value());
  double const outSign = out.span.value() > 0 ? 1 : -1;
  auto const excess = [&](double trim) {
    V const p = center(trim);
    if (circle)
      return p.distance(circle->center) - (circle->radius - side * outSign * radius);
    V const d = p - out.a;
    return t2.x() * d.y() - t2.y() * d.x() - side * radius;
  };
  std::vector<double> sums;
  bool const fitsIn = in.isLine() || ArcCircle(in.a, in.b, in.span.value()).radius >
                                         side * (in.span.value() > 0 ? 1 : -1) * radius;
  if (!fitsIn || (circle && circle->radius <= side * outSign * radius))
    return sums;
  int const steps = 4000;
  for (int i = 0; i < steps; ++i) {
    double low = static_cast<double>(i) / steps, high = static_cast<double>(i + 1) / steps;
    if ((excess(low) < 0) == (excess(high) < 0))
      continue;
    for (int k = 0; k < 60; ++k) {
      double const middle = (low + high) / 2;
      ((excess(low) < 0) == (excess(middle) < 0) ? low : high) = middle;
    }
    V const p = center(low);
    double trimOut = 0;
    if (circle) {
      double const foot = std::atan2(p.y() - circle->center.y(), p.x() - circle->center.x());
      double swept = outSign * (foot - circle->start);
      swept -= 2 * cfPi * std::floor(swept / (2 * cfPi));
      trimOut = swept / std::abs(out.span.value());
    } else {
      trimOut = (p - out.a).dot(t2) / out.a.distance(out.b);
    }
    if (trimOut > 1e-6 && trimOut < 1 - 1e-6 && low > 1e-6 && low < 1 - 1e-6)
      sums.push_back(low + trimOut);
  }
  return sums;
}

}  // namespace

TEST(GenPolyRounding, isTheOneThatTrimsLeast)
{
  Random random(4);
  int fitting = 0, several = 0;
  for (int i = 0; i < rounds(400); ++i) {
    auto const span = [&] { return random.chance(3) ? ccRadian(0) : deg(random.in(-330, 330)); };
    V const vertex = random.vector(10);
    cs_PolySegment const in{vertex + random.vector(10), vertex, span()}, out{vertex, vertex + random.vector(10), span()};
    double const radius = random.magnitude(0.05, 10);

    cs_PolyRounding const r = cf_roundCorner(in, out, radius);
    std::vector<double> const sums = foundByWalking(in, out, radius);

    if (!sums.empty()) {
      ++fitting;
      several += sums.size() > 1;
      EXPECT_TRUE(r.fits);
      if (r.fits) {
        EXPECT_LE(r.trimIn + r.trimOut, *std::min_element(sums.begin(), sums.end()) + 1e-8);
      }
    }
    if (r.fits && r.trimIn > 1e-3 && r.trimOut > 1e-3 && r.trimIn < 0.999 && r.trimOut < 0.999 && sums.size() == 1) {
      EXPECT_NEAR(r.trimIn + r.trimOut, sums[0], 1e-7);
    }
  }
  EXPECT_GT(fitting, 50);
  EXPECT_GT(several, 2);
}

TEST(GenPolyRounding, keepsItsDigitsWhereTheSidesAlmostCoincide)
{
  // Along +x, then back along a circle of radius 5 above that starts at an angle to the line. The rounding circle lies on the
  // line and touches the other one from outside.
  for (double const angle : {1e-2, 1e-5, 1e-8, 1e-11}) {
    SCOPED_TRACE(angle);
    double const radius = 5, r = 0.5;
    V const center(radius * std::sin(angle), radius * std::cos(angle));
    double const x = center.x() - std::sqrt((radius + r + center.y() - r) * (radius + r - center.y() + r));
    // A quarter of the circle, to the right of travel all the way.
    V const start = -center, end(start.y(), -start.x());
    cs_PolySegment const in{V(-10, 0), V(0, 0), ccRadian(0)}, out{V(0, 0), center + end, deg(-90)};

    cs_PolyRounding const rounding = cf_roundCorner(in, out, r);

    ASSERT_TRUE(rounding.fits);
    expectNear(rounding.center, V(x, r), 1e-11);
  }
}

TEST(GenPolyRounding, touchesBothSegmentsAndRunsOnSmoothly)
{
  Random random(5);
  int count = 0;
  for (int i = 0; i < rounds(1000); ++i) {
    PolyKind kind;
    kind.degenerate = random.chance(2);
    cc2Wireframe const wire = randomWire(random, kind);
    ASSERT_TRUE(wire.isValid());
    double const size = sizeOf(Sampler(wire, 4));
    for (long k = 0; k < wire.numVertices(); ++k) {
      cs_PolyRounding const r = wire.rounding(k);
      if (!r.fits)
        continue;
      ++count;
      double const radius = wire.vertexRoundingSize(k);
      cs_PolySegment const in = wire.segment(wire.previousSegmentIndex(k), false);
      cs_PolySegment const out = wire.segment(wire.nextSegmentIndex(k), false);
      // Continuous, and at the radius from the centre.
      EXPECT_LE(in.b.distance(r.arc.a), 1e-12 * size);
      EXPECT_LE(out.a.distance(r.arc.b), 1e-12 * size);
      EXPECT_NEAR(r.center.distance(r.arc.a), radius, 1e-9 * size);
      EXPECT_NEAR(r.center.distance(r.arc.b), radius, 1e-9 * size);
      // Directions as far as the coordinates carry them.
      auto const slack = [&](cs_PolySegment const& s) { return 1e-11 * size / s.a.distance(s.b) + 1e-9; };
      if (in.a.distance(in.b) > 1e-6 * size && r.arc.a.distance(r.arc.b) > 1e-6 * size) {
        EXPECT_LE(direction(in, true).distance(direction(r.arc, false)), slack(in) + slack(r.arc));
      }
      if (out.a.distance(out.b) > 1e-6 * size && r.arc.a.distance(r.arc.b) > 1e-6 * size) {
        EXPECT_LE(direction(out, false).distance(direction(r.arc, true)), slack(out) + slack(r.arc));
      }
    }
  }
  EXPECT_GT(count, 500);
}

TEST(GenPolyRounding, theOneOfASegmentAgreesWithTheWholeOutline)
{
  // rounding(i) looks back only as far as it must; the outline goes through all vertices. Sizes without regard to their fit.
  Random random(6);
  int refused = 0;
  for (int i = 0; i < rounds(500); ++i) {
    cc2Wireframe wire = randomWire(random, PolyKind());
    double size = 300;
    if (random.chance(2)) {
      // A regular polygon with sides of length 2, whose roundings overlap from sums of 2 / tan(180 degrees / n) on.
      std::vector<V> corners;
      int const n = 3 + random.below(8);
      for (int k = 0; k < n; ++k)
        corners.push_back(V::polar(1 / std::sin(cfPi / n), deg(360.0 * k / n)));
      wire = chain(corners, true);
      size = 2 / std::tan(cfPi / n);
    }
    for (long k = 0; k < wire.numVertices(); ++k)
      wire.vertexRoundingSize(k, random.chance(4) ? 0 : size * random.magnitude(0.2, 1));
    long expected = 0;
    for (long k = 0; k < wire.numVertices(); ++k) {
      expected += wire.rounding(k).fits;
      refused += !wire.rounding(k).fits && wire.vertexRoundingSize(k) > 0;
    }
    for (long k = 0; k < wire.numSegments(); ++k)
      for (double const t : {0.0, 0.3, 1.0})
        EXPECT_LE(wire.distToPoint(wire.segment(k, false).pointAt(t)), 1e-9 * sizeOf(Sampler(wire, 2)));
    Sampler const s(wire, 1);
    long const closing = !wire.isOpen() && wire.isLineSegment(wire.numSegments() - 1) && !wire.rounding(0).fits;
    EXPECT_EQ(s.lines + s.arcs + s.curves, wire.numSegments() + expected - closing);
  }
  EXPECT_GT(refused, 50);
}

// Measures and outlines.

TEST(GenPoly, withoutVerticesItIsInfinitelyFarAndHasANullBox)
{
  ccGenPoly const poly;

  EXPECT_EQ(poly.distToPoint(V(1, 1)), cfInfinity);
  EXPECT_TRUE(poly.encloseRect().isNull());
  EXPECT_TRUE(poly.encloseRect(ccXform<2>(2, 2, V(5, 5))).isNull());
  EXPECT_TRUE(Sampler(poly, 2).points.empty());
}

TEST(GenPoly, ofOneVertexItIsAPoint)
{
  ccGenPoly poly;
  poly.insertVertex(V(3, 4), 7);

  EXPECT_EQ(poly.distToPoint(V(0, 0)), 5);
  EXPECT_EQ(poly.encloseRect(), ccRect(V(3, 4), V(0, 0)));
  EXPECT_EQ(poly.encloseRect(ccXform<2>(2, 3, V(1, 1))), ccRect(V(7, 13), V(0, 0)));
  EXPECT_EQ(Sampler(poly, 2).dots, 1);
  EXPECT_TRUE(poly.isValid());
}

TEST(GenPoly, coincidentVerticesAreValid)
{
  EXPECT_TRUE(chain({V(1, 1), V(1, 1), V(1, 1)}, true).isValid());
  EXPECT_TRUE(chain({V(1, 1), V(1, 1)}, false).isValid());
}

TEST(GenPoly, numbersBeyondAllBoundsAreNotValid)
{
  ccGenPoly const poly = chain({V(1e300, 0), V(0, 1e300)}, false);

  EXPECT_TRUE(poly.isValid());
  EXPECT_FALSE(poly.map(cc2Rigid::I, 1e300).isValid());
}

TEST(GenPoly, anOpenOutlineHasNoClosingSide)
{
  ccGenPoly poly = square();
  EXPECT_EQ(poly.distToPoint(V(0, 5)), 0);
  Sampler const closed(poly, 2);
  EXPECT_EQ(closed.strokes, 1);
  EXPECT_EQ(closed.lines, 3);
  EXPECT_EQ(closed.closes, 1);

  poly.open();
  EXPECT_EQ(poly.distToPoint(V(0, 5)), 5);
  Sampler const open(poly, 2);
  EXPECT_EQ(open.lines, 3);
  EXPECT_EQ(open.closes, 0);
}

TEST(GenPoly, theBoxOfAnImageIsThatOfTheEllipses)
{
  ccGenPoly const poly(ccCircle(V(1, 2), 3));

  ccRect const box = poly.encloseRect(ccXform<2>(ccMatrix<2>(2, 1, 0, 5), V(10, 20)));

  // Half extents are the lengths of the rows times the radius, the centre maps to (14, 30).
  double const half = 3 * std::sqrt(5.0);
  expectNear(box.ul(), V(14 - half, 30 - 15), 1e-12);
  expectNear(box.lr(), V(14 + half, 30 + 15), 1e-12);
}

TEST(GenPoly, theBoxOfAnImageHoldsAndTouchesItsSamples)
{
  Random random(7);
  for (int i = 0; i < rounds(200); ++i) {
    cc2Wireframe const wire = randomWire(random, PolyKind());
    ccXform<2> const x = random.affine();
    ccRect const box = wire.encloseRect(x);
    V least(cfInfinity, cfInfinity), most = -least;
    double gap = 0, size = 1;
    V before;
    Sampler const s(wire, 300);
    for (V const& p : s.points) {
      V const q = x.mapPoint(p);
      gap = &p == &s.points[0] ? 0 : std::max(gap, q.distance(before));
      before = q;
      size = std::max({size, std::abs(q.x()), std::abs(q.y())});
      for (int axis = 0; axis < 2; ++axis) {
        least[axis] = std::min(least[axis], q[axis]);
        most[axis] = std::max(most[axis], q[axis]);
      }
    }
    for (int axis = 0; axis < 2; ++axis) {
      EXPECT_LE(box.ul()[axis], least[axis] + 1e-11 * size);
      EXPECT_GE(box.lr()[axis], most[axis] - 1e-11 * size);
      EXPECT_GE(box.ul()[axis], least[axis] - 0.5 * gap - 1e-11 * size);
      EXPECT_LE(box.lr()[axis], most[axis] + 0.5 * gap + 1e-11 * size);
    }
  }
}

// Maps.

TEST(GenPoly, aSimilarityScalesSizesAndAMirrorNegatesSpans)
{
  ccGenPoly poly = square();
  poly.segmentAngleSpan(1, deg(70));
  poly.vertexRoundingSize(3, 2);

  ccGenPoly const image = poly.map(ccXform<2>(3, -3, V(1, 1)));

  EXPECT_EQ(image.vertexPoint(2), V(31, -29));
  EXPECT_EQ(image.segmentAngleSpan(1), deg(-70));
  EXPECT_EQ(image.vertexRoundingSize(3), 6);
  EXPECT_EQ(poly.map(ccXform<2>(ccMatrix<2>(deg(33), 1), V(5, 5))).vertexRoundingSize(3), 2);
}

TEST(GenPoly, aRigidMapScalesFirst)
{
  ccGenPoly poly = square();
  poly.segmentAngleSpan(0, deg(70));
  poly.vertexRoundingSize(3, 2);

  ccGenPoly const image = poly.map(cc2Rigid(ccDegree(90), V(5, 7)), 2);

  EXPECT_EQ(image.vertexPoint(1), V(5, 27));
  EXPECT_EQ(image.vertexPoint(3), V(-15, 7));
  EXPECT_EQ(image.vertexRoundingSize(3), 4);
  EXPECT_EQ(image.segmentAngleSpan(0), deg(70));
  EXPECT_EQ(poly.map(cc2Rigid::I, 1), poly);
  EXPECT_EQ(poly.map(cc2Rigid::I, -1).vertexRoundingSize(3), 2);
}

TEST(GenPoly, anUnevenMapKeepsItsClassOnlyWithoutArcsAndRoundings)
{
  ccXform<2> const uneven(2, 1, V(0, 0));
  ccGenPoly bent = square(), rounded = square();
  bent.segmentAngleSpan(1, deg(70));
  rounded.vertexRoundingSize(1, 1);

  EXPECT_EQ(square().map(uneven), ccGenPoly(ccRect(V(0, 0), V(20, 10))));
  EXPECT_THROW(bent.map(uneven), ccShapesError::BadParams);
  EXPECT_THROW(rounded.map(uneven), ccShapesError::BadParams);
  auto const isPath = [&](ccShape const& s) {
    return dynamic_cast<ccBezierPath const*>(s.map(uneven).get()) != nullptr;
  };
  EXPECT_FALSE(isPath(square()));
  EXPECT_TRUE(isPath(bent));
  EXPECT_TRUE(isPath(rounded));
}

namespace {

std::vector<Family> families()
{
  auto const family = [](PolyKind const& kind, bool asWire) {
    return [kind, asWire](Random& r) -> ccPtrHandle_const<ccShape> {
      cc2Wireframe const wire = randomWire(r, kind);
      if (asWire)
        return new cc2Wireframe(wire);
      return new ccGenPoly(wire);
    };
  };
  PolyKind lines, arcs, odd;
  lines.arcs = lines.roundings = false;
  lines.least = 1;
  odd.degenerate = true;
  odd.least = 1;
  odd.most = 6;
  return {{"lines", family(lines, false)},
          {"arcs and roundings", family(arcs, false)},
          {"wireframes", family(arcs, true)},
          {"badly conditioned", family(odd, false)}};
}

}  // namespace

TEST(GenPolyProperties, outlineIsContinuousAndAtDistanceZero)
{
  for (Family const& f : families())
    outlineIsAtDistanceZero(f, 150);
}

TEST(GenPolyProperties, distanceGrowsNoFasterThanTheWay)
{
  for (Family const& f : families())
    distanceIsLipschitz(f, 150);
}

TEST(GenPolyProperties, distanceAgreesWithDenseSamples)
{
  for (Family const& f : families())
    distanceAgreesWithSamples(f, 40);
}

TEST(GenPolyProperties, boxHoldsAllSamplesAndTouchesThem)
{
  for (Family const& f : families())
    boxHoldsAndTouches(f, 40);
}

TEST(GenPolyProperties, aMapAndItsInverseGiveItBack)
{
  for (Family const& f : families())
    mapAndBackRestores(f, 40);
}

TEST(GenPolyProperties, mapsMoveEveryPointOfTheOutline)
{
  for (Family const& f : families())
    mapMovesEveryPoint(f, 40);
}

TEST(GenPolyProperties, distanceScalesWithSimilarities)
{
  for (Family const& f : families())
    distanceScalesWithSimilarities(f, 100);
}

TEST(GenPolyProperties, cloneIsEqual)
{
  for (Family const& f : families())
    cloneIsEqual(f, 30);
}

TEST(GenPolyProperties, aSimilarityAndItsInverseGiveTheSamePolygonBack)
{
  Random random(8);
  for (int i = 0; i < rounds(500); ++i) {
    cc2Wireframe const wire = randomWire(random, PolyKind());
    ccXform<2> const x = random.similarity(random.magnitude(0.1, 10), random.chance(2));
    cc2Wireframe const back = wire.map(x).map(x.inverse());
    ASSERT_EQ(back.numVertices(), wire.numVertices());
    EXPECT_TRUE(wire.map(x).isValid());
    for (long k = 0; k < wire.numVertices(); ++k) {
      expectNear(back.vertexPoint(k), wire.vertexPoint(k), 1e-9 * (1 + wire.vertexPoint(k).len() + x.trans().len()));
      EXPECT_NEAR(back.vertexRoundingSize(k), wire.vertexRoundingSize(k), 1e-9 * wire.vertexRoundingSize(k));
    }
    for (long k = 0; k < wire.numSegments(); ++k)
      EXPECT_EQ(back.segmentAngleSpan(k), wire.segmentAngleSpan(k));
  }
}
