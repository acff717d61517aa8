// Polygons as vertex records, and their edits.
#include "tests/geometry/poly_support.h"

#include "geometry/circle.h"
#include "geometry/lines.h"

using namespace krs_test;
using Edit = ccSMDGDPolyPrivate;

namespace {

ccSMDGDPoly polyOf(std::vector<V> const& points, bool closed) { return ccSMDGDPoly(chain(points, closed), "poly"); }

ccSMDGDPoly turnedBy(ccSMDGDPoly const& p, double degrees, V const& about = V())
{
  return ccSMDGDPoly(p.wireframe().map(cc2Rigid(ccDegree(degrees), about), 1), p.name());
}

// All segments exactly along an axis.
bool isUpright(ccSMDGDPoly const& p)
{
  for (long i = 0; i < p.numSegments(); ++i) {
    V const a = p.vertex(i).point, b = p.vertex(i + 1, true).point;
    if (a.x() != b.x() && a.y() != b.y())
      return false;
  }
  return true;
}

// A chain of H and V segments by turns. Closed ones return to the start.
ccSMDGDPoly randomRectilinear(Random& r, bool closed)
{
  std::vector<V> points;
  int const pairs = 2 + r.below(4);
  std::vector<double> x, y;
  for (int i = 0; i < pairs; ++i) {
    x.push_back(std::round(r.in(-50, 50)) + i * 200);
    y.push_back(std::round(r.in(-50, 50)) - i * 300);
  }
  for (std::size_t i = 0; i < x.size(); ++i) {
    points.push_back(V(x[i], y[i]));
    points.push_back(V(x[(i + 1) % x.size()], y[i]));
  }
  if (!closed && r.chance(2))
    points.pop_back();
  ccSMDGDPoly p = polyOf(points, closed);
  p.polarity(r.chance(2));
  return p;
}

template <class E, class Change> void expectRefused(ccSMDGDPoly const& poly, Change const& change)
{
  ccSMDGDPoly changed = poly;
  EXPECT_THROW(change(changed), E);
  EXPECT_EQ(changed, poly);
}

}  // namespace

TEST(SMDGDPoly, aVertexCarriesTheSegmentThatLeadsToIt)
{
  cc2Wireframe wire = chain({V(0, 0), V(4, 0), V(4, 4)}, true);
  wire.segmentAngleSpan(0, deg(10));
  wire.segmentAngleSpan(2, deg(30));
  wire.segmentLengthTol(0, tol(1));
  wire.segmentLengthTol(2, tol(3));

  ccSMDGDPoly const poly(wire, "poly");

  EXPECT_EQ(poly.name(), "poly");
  EXPECT_EQ(poly.vertex(1, false).span, deg(10));
  EXPECT_EQ(poly.vertex(1, false).tol, tol(1));
  EXPECT_EQ(poly.vertex(0, false).span, deg(30));
  EXPECT_EQ(poly.vertex(0, false).tol, tol(3));
}

TEST(SMDGDPoly, vertexZeroOfAnOpenOneHasNoSegment)
{
  cc2Wireframe wire = chain({V(0, 0), V(4, 0), V(4, 4)}, true);
  wire.segmentAngleSpan(2, deg(30));
  wire.open();
  ccSMDGDPoly poly(wire, "poly");
  EXPECT_EQ(poly.vertex(0).span, ccRadian(0));
  EXPECT_EQ(poly.vertex(0).tol, ccDimTol::noSegment());

  poly.vertex(0, record(V(1, 1), 3, deg(20), tol(2)));
  EXPECT_EQ(poly.vertex(0).point, V(1, 1));
  EXPECT_EQ(poly.vertex(0).roundingSize, 3);
  EXPECT_EQ(poly.vertex(0).span, ccRadian(0));
  EXPECT_EQ(poly.vertex(0).tol, ccDimTol::noSegment());
}

TEST(SMDGDPoly, indicesWrapOrAreChecked)
{
  ccSMDGDPoly poly = polyOf({V(0, 0), V(1, 0), V(2, 0)}, true);

  EXPECT_EQ(poly.vertex(4, true).point, V(1, 0));
  EXPECT_EQ(poly.vertex(-1, true).point, V(2, 0));
  EXPECT_EQ(poly.vertex(-6, true).point, V(0, 0));
  EXPECT_THROW(poly.vertex(3, false), ccShapesError::BadParams);
  EXPECT_THROW(poly.vertex(-1, false), ccShapesError::BadParams);
  EXPECT_THROW(ccSMDGDPoly("poly").vertex(0, true), ccShapesError::BadParams);
  expectRefused<ccShapesError::BadParams>(poly, [](ccSMDGDPoly& p) { p.vertex(3, record(V(0, 0))); });
  expectRefused<ccShapesError::BadParams>(poly, [](ccSMDGDPoly& p) { p.vertex(1, record(V(cfInfinity, 0))); });
  expectRefused<ccShapesError::BadParams>(poly, [](ccSMDGDPoly& p) { p.addVertex(record(V(0, 0), -1)); });
}

TEST(SMDGDPoly, aTriangleStandsAroundItsCentre)
{
  ccSMDGDPoly const t = ccSMDGDPoly::triangle(8, 6, V(10, 20));
  ASSERT_EQ(t.numVertices(), 3);
  EXPECT_FALSE(t.isOpen());
  EXPECT_EQ(t.vertex(0).point, V(10, 17));
  EXPECT_EQ(t.vertex(1).point, V(14, 23));
  EXPECT_EQ(t.vertex(2).point, V(6, 23));

  EXPECT_TRUE(ccSMDGDPoly::triangle(0, 0, V(1, 1)).wireframe().isValid());
  EXPECT_THROW(ccSMDGDPoly::triangle(-1, 1, V()), ccShapesError::BadParams);
}

TEST(SMDGDPoly, convertsWithoutLoss)
{
  Random random(20);
  for (int i = 0; i < rounds(500); ++i) {
    PolyKind kind;
    kind.least = 0;
    kind.degenerate = true;
    cc2Wireframe const wire = randomWire(random, kind);
    ccSMDGDPoly const poly(wire, "some name");
    EXPECT_EQ(Edit::wireframe(poly), wire);

    // By hand, record by record.
    ccSMDGDPoly copy("some name");
    for (long k = 0; k < poly.numVertices(); ++k)
      copy.addVertex(poly.vertex(k));
    if (!poly.isOpen())
      copy.close(poly.vertex(0).span, poly.vertex(0).tol);
    copy.polarity(wire.isPolarityReversed());
    EXPECT_EQ(copy, poly);

    cc2Wireframe expected = wire;
    expected.polarity(false);
    EXPECT_EQ(Edit::wireframe(Edit::poly(wire)), expected);
    EXPECT_EQ(Edit::poly(wire).name(), "poly");
  }
}

// Places and angles.

TEST(PolyEdit, roundPointIsTheCentreOrTheVertex)
{
  cc2Wireframe wire = chain({V(0, 0), V(10, 0), V(10, 10), V(10, 20)}, false);
  wire.vertexRoundingSize(0, 1);
  wire.vertexRoundingSize(1, 2);
  wire.vertexRoundingSize(2, 1);
  ccSMDGDPoly const poly(wire, "poly");

  expectNear(Edit::roundPoint(poly, 1), V(8, 2), 1e-14);
  EXPECT_EQ(Edit::roundPoint(poly, 0), V(0, 0));    // an end
  EXPECT_EQ(Edit::roundPoint(poly, 2), V(10, 10));  // straight: does not fit
  EXPECT_EQ(Edit::roundPoint(poly, 3), V(10, 20));  // size 0
  EXPECT_THROW(Edit::roundPoint(poly, 4), ccShapesError::BadParams);
}

TEST(PolyEdit, vertexAngleIsTheInnerAngleOfAPolygonInGrowingAngle)
{
  ccSMDGDPoly const square(cc2Wireframe(ccGenPoly(ccRect(V(0, 0), V(4, 4))), tol(0)), "poly");
  for (long i = 0; i < 4; ++i)
    EXPECT_NEAR(Edit::vertexAngle(square, i).value(), cfPi / 2, 1e-15);
  ccSMDGDPoly const other = polyOf({V(0, 0), V(0, 4), V(4, 4), V(4, 0)}, true);
  for (long i = 0; i < 4; ++i)
    EXPECT_NEAR(Edit::vertexAngle(other, i).value(), 3 * cfPi / 2, 1e-15);
}

TEST(PolyEdit, vertexAngleIsExactlyHalfATurnOnALine)
{
  for (V const& d : {V(1, 0), V(0, -3), V(1, 1), V(-3, 7), V(0.125, -0.75)}) {
    ccSMDGDPoly const poly = polyOf({V(2, 5) - d, V(2, 5), V(2, 5) + d * 2}, false);
    EXPECT_EQ(Edit::vertexAngle(poly, 1), ccRadian(cfPi));
    EXPECT_LE(std::abs(ccDegree(Edit::vertexAngle(poly, 1)).value() - 180), 1e-15);
  }
}

TEST(PolyEdit, vertexAngleIsHalfATurnAtEndsAndBesideSegmentsOfLengthZero)
{
  ccSMDGDPoly const poly = polyOf({V(0, 0), V(4, 0), V(4, 0), V(4, 4)}, false);

  for (long i = 0; i < 4; ++i)
    EXPECT_EQ(Edit::vertexAngle(poly, i), ccRadian(cfPi));
}

TEST(PolyEdit, vertexAngleFollowsTheTangentsOfArcs)
{
  // A circle of four quarters has no corners.
  ccSMDGDPoly const circle(cc2Wireframe(ccGenPoly(ccCircle(V(1, 1), 3)), tol(0)), "poly");
  EXPECT_NEAR(Edit::vertexAngle(circle, 2).value(), cfPi, 1e-14);
  // A lens of two arcs of 120 degrees: each makes 60 degrees with the chord.
  ccSMDGDPoly const lens(cc2Wireframe({record(V(0, 0), 0, deg(120)), record(V(4, 0), 0, deg(120))}, true), "poly");
  EXPECT_NEAR(Edit::vertexAngle(lens, 0).value(), deg(120).value(), 1e-14);
}

TEST(PolyEdit, arcSegmentsAreNumberedByTheVertexTheyLeadTo)
{
  cc2Wireframe wire = chain({V(0, 0), V(10, 0), V(10, 10)}, true);
  wire.segmentAngleSpan(0, deg(60));
  wire.segmentAngleSpan(2, deg(-50));
  wire.vertexRoundingSize(1, 1);
  ccSMDGDPoly const poly(wire, "poly");

  EXPECT_EQ(Edit::arcSegment_(poly, 1).span(), deg(60));
  EXPECT_EQ(Edit::arcSegment_(poly, 0).span(), deg(-50));
  EXPECT_THROW(Edit::arcSegment_(poly, 2), ccShapesError::BadParams);
  EXPECT_THROW(Edit::arcSegment_(poly, 3), ccShapesError::BadParams);
  EXPECT_LT(Edit::roundedArcSegment_(poly, 1).span().value(), deg(60).value());
  EXPECT_NEAR(Edit::roundedArcSegment_(poly, 1).span().value(), wire.arcSegment(0, false).span().value(), 1e-15);
  EXPECT_EQ(Edit::roundedArcSegment_(poly, 0).span(), deg(-50));
  wire.open();
  EXPECT_THROW(Edit::arcSegment_(ccSMDGDPoly(wire, "poly"), 0), ccShapesError::BadParams);
}

// Rectilinear polygons.

TEST(PolyEdit, isRectilinearMeansAlongTheAxes)
{
  EXPECT_TRUE(Edit::isRectilinear(polyOf({}, false)));
  EXPECT_TRUE(Edit::isRectilinear(polyOf({V(3, 4)}, false)));
  EXPECT_TRUE(Edit::isRectilinear(polyOf({V(0, 0), V(5, 0), V(9, 0), V(9, 4)}, false)));  // no need to alternate
  ccSMDGDPoly const square = polyOf({V(0, 0), V(10, 0), V(10, 10), V(0, 10)}, true);
  EXPECT_TRUE(Edit::isRectilinear(square));
  EXPECT_FALSE(Edit::isRectilinear(turnedBy(square, 30)));  // a common tilt does not count
  EXPECT_TRUE(Edit::isRectilinear(turnedBy(square, 90)));
  EXPECT_FALSE(Edit::isRectilinear(polyOf({V(0, 0), V(10, 0), V(10, 10), V(0, 9)}, true)));
  ccSMDGDPoly bent = square;
  bent.vertex(2, record(V(10, 10), 0, deg(10)));
  EXPECT_FALSE(Edit::isRectilinear(bent));
}

TEST(PolyEdit, isRectilinearWithinABillionthOfTheExtent)
{
  EXPECT_TRUE(Edit::isRectilinear(polyOf({V(0, 0), V(1000, 0.9e-6)}, false)));
  EXPECT_FALSE(Edit::isRectilinear(polyOf({V(0, 0), V(1000, 1.1e-6)}, false)));
}

TEST(PolyEdit, dominantAngleIsTheTiltOfMostOfTheLength)
{
  ccSMDGDPoly const upright = polyOf({V(0, 0), V(10, 0), V(10, 4), V(0, 4)}, true);
  EXPECT_EQ(Edit::dominantAngle(upright), ccRadian(0));
  for (double const tilt : {-44.0, -10.0, 0.5, 30.0, 44.9})
    EXPECT_NEAR(ccDegree(Edit::dominantAngle(turnedBy(upright, tilt))).value(), tilt, 1e-12);
  EXPECT_NEAR(ccDegree(Edit::dominantAngle(turnedBy(upright, 70))).value(), -20, 1e-12);
  // A long side at 10 degrees against a short one at 40, by the sum of the fourth powers.
  ccSMDGDPoly const two = polyOf({V(), V::polar(9, deg(10)), V::polar(9, deg(10)) + V::polar(1, deg(40))}, false);
  double const expected = std::atan2(9 * std::sin(40 * cfPi / 180) + std::sin(160 * cfPi / 180),
                                     9 * std::cos(40 * cfPi / 180) + std::cos(160 * cfPi / 180)) / 4;
  EXPECT_NEAR(Edit::dominantAngle(two).value(), expected, 1e-14);
}

TEST(PolyEdit, dominantAngleOfADiagonalIsPlusFortyFiveDegrees)
{
  for (V const& d : {V(1, 1), V(-1, 1), V(1, -1), V(-3, -3)})
    EXPECT_NEAR(ccDegree(Edit::dominantAngle(polyOf({V(0, 0), d}, false))).value(), 45, 1e-12);
  // A last step too short to count, which makes the sum of the fourth powers just negative in y.
  EXPECT_NEAR(ccDegree(Edit::dominantAngle(polyOf({V(-1, -1), V(0, 0), V(1e-17, 2e-17)}, false))).value(), 45, 1e-12);
}

TEST(PolyEdit, dominantAngleIsZeroWhereNoneStandsOut)
{
  EXPECT_EQ(Edit::dominantAngle(polyOf({}, false)), ccRadian(0));
  EXPECT_EQ(Edit::dominantAngle(polyOf({V(1, 1), V(1, 1)}, false)), ccRadian(0));
  std::vector<V> octagon;
  for (int i = 0; i < 8; ++i)
    octagon.push_back(V::polar(5, deg(45 * i)));
  EXPECT_EQ(Edit::dominantAngle(polyOf(octagon, true)), ccRadian(0));
}

TEST(PolyEdit, snapLevelsLinkedVerticesAtTheirMean)
{
  // Symmetric deviations, so that the dominant angle is 0: each pair of vertices that a side links is off by 1.
  ccSMDGDPoly poly = polyOf({V(0, 0), V(100, 1), V(99, 101), V(-1, 100)}, true);
  ccRadian const tilt = Edit::dominantAngle(poly);
  ccMatrix<2> const back(-tilt, 1);
  V p[4];
  for (int i = 0; i < 4; ++i)
    p[i] = back * poly.vertex(i).point;
  V const expected[4] = {V((p[0].x() + p[3].x()) / 2, (p[0].y() + p[1].y()) / 2),
                         V((p[1].x() + p[2].x()) / 2, (p[0].y() + p[1].y()) / 2),
                         V((p[1].x() + p[2].x()) / 2, (p[2].y() + p[3].y()) / 2),
                         V((p[0].x() + p[3].x()) / 2, (p[2].y() + p[3].y()) / 2)};

  Edit::snapRectilinear(poly);

  for (int i = 0; i < 4; ++i)
    expectNear(back * poly.vertex(i).point, expected[i], 1e-12);
}

TEST(PolyEdit, snapLevelsWholeRunsAcrossTheClosingSegment)
{
  // Vertices 3, 0 and 1 lie along one upper side.
  ccSMDGDPoly poly = polyOf({V(50, 3), V(100, 0), V(100, 50), V(0, 50), V(0, 0)}, true);
  ccSMDGDPoly const before = poly;

  Edit::snapRectilinear(poly);

  ccMatrix<2> const back(-Edit::dominantAngle(before), 1);
  EXPECT_NEAR((back * poly.vertex(4).point).y(), (back * poly.vertex(0).point).y(), 1e-12);
  EXPECT_NEAR((back * poly.vertex(0).point).y(), (back * poly.vertex(1).point).y(), 1e-12);
  double mean = 0;
  for (long const i : {4L, 0L, 1L})
    mean += (back * before.vertex(i).point).y() / 3;
  EXPECT_NEAR((back * poly.vertex(0).point).y(), mean, 1e-12);
  EXPECT_NEAR((back * poly.vertex(0).point).x(), (back * before.vertex(0).point).x(), 1e-12);
}

TEST(PolyEdit, snapKeepsAnUprightPolygonToTheLastBit)
{
  Random random(21);
  for (int i = 0; i < rounds(300); ++i) {
    ccSMDGDPoly const poly = randomRectilinear(random, random.chance(2));
    ccSMDGDPoly snapped = poly;
    Edit::snapRectilinear(snapped);
    EXPECT_EQ(snapped, poly);
  }
}

TEST(PolyEdit, snapStraightensArcsAndKeepsRoundingsThatFit)
{
  ccSMDGDPoly poly = polyOf({V(0, 0), V(10, 0), V(10, 10), V(0, 10)}, true);
  poly.vertex(1, record(V(10, 0), 2, deg(30), tol(4)));
  poly.vertex(0, record(V(0, 0), 0, deg(-20), tol(5)));

  Edit::snapRectilinear(poly);

  EXPECT_EQ(poly.vertex(0).span, ccRadian(0));
  EXPECT_EQ(poly.vertex(1).span, ccRadian(0));
  EXPECT_EQ(poly.vertex(1).roundingSize, 2);
  EXPECT_EQ(poly.vertex(1).tol, tol(4));
  EXPECT_EQ(poly.vertex(0).tol, tol(5));
}

TEST(PolyEdit, snapDropsRoundingsThatNoLongerFit)
{
  // The shallow corner at vertex 1 becomes straight.
  ccSMDGDPoly poly = polyOf({V(0, 0), V(50, 5), V(100, 0), V(100, 60), V(0, 60)}, true);
  poly.vertex(1, record(V(50, 5), 3));
  poly.vertex(3, record(V(100, 60), 7));
  ASSERT_TRUE(poly.wireframe().isValid());

  Edit::snapRectilinear(poly);

  EXPECT_EQ(poly.vertex(1).roundingSize, 0);
  EXPECT_EQ(poly.vertex(3).roundingSize, 7);
  EXPECT_TRUE(poly.wireframe().isValid());
}

TEST(PolyEdit, snapKeepsRoundingsAtOpenEnds)
{
  ccSMDGDPoly poly = polyOf({V(0, 0), V(50, 5), V(52, 50)}, false);
  poly.vertex(0, record(V(0, 0), 3));
  poly.vertex(2, record(V(52, 50), 4));

  Edit::snapRectilinear(poly);

  EXPECT_EQ(poly.vertex(0).roundingSize, 3);
  EXPECT_EQ(poly.vertex(2).roundingSize, 4);
}

TEST(PolyEdit, snapRefusesWhatWouldCollapse)
{
  using Bad = ccShapesError::BadGeom;
  auto const snap = [](ccSMDGDPoly& p) { Edit::snapRectilinear(p); };
  expectRefused<Bad>(polyOf({V(1, 1), V(1, 1), V(1, 1), V(1, 1)}, true), snap);
  expectRefused<Bad>(polyOf({V(0, 0), V(10, 1)}, true), snap);
  Random random(22);
  for (int i = 0; i < rounds(500); ++i)  // every triangle
    expectRefused<Bad>(polyOf({random.vector(10), random.vector(10), random.vector(10)}, true), snap);
}

TEST(PolyEdit, snapOfFewVerticesDoesNothing)
{
  ccSMDGDPoly none("poly"), one = polyOf({V(3, 4)}, false);
  Edit::snapRectilinear(none);
  Edit::snapRectilinear(one);

  EXPECT_EQ(none.numVertices(), 0);
  EXPECT_EQ(one.vertex(0).point, V(3, 4));
}

TEST(PolyEdit, snapGivesASegmentOfLengthZeroTheOtherKind)
{
  // H, then nothing, then H: the empty one links its vertices by x, so the two H segments stay apart in y.
  ccSMDGDPoly poly = polyOf({V(0, 0), V(10, 0), V(10, 0), V(20, 0)}, false);
  ccSMDGDPoly moved = poly;
  Edit::snapRectilinear(poly);
  EXPECT_EQ(poly.vertex(3).point, V(20, 0));

  Edit::replaceVertexRectilinear(moved, 3, record(V(20, 5)));
  EXPECT_EQ(moved.vertex(2).point, V(10, 5));
  EXPECT_EQ(moved.vertex(1).point, V(10, 0));
}

TEST(PolyEdit, snappedPolygonsAreUprightIdempotentAndKeepTheDominantAngle)
{
  Random random(23);
  int snapped = 0;
  for (int i = 0; i < rounds(1000); ++i) {
    PolyKind kind;
    kind.most = 12;
    kind.degenerate = random.chance(3);
    cc2Wireframe const wire = randomWire(random, kind);
    ccSMDGDPoly poly(wire, "poly");
    ccSMDGDPoly const before = poly;
    ccRadian const tilt = Edit::dominantAngle(poly);
    try {
      Edit::snapRectilinear(poly);
    } catch (ccShapesError::BadGeom const&) {
      EXPECT_EQ(poly, before);
      continue;
    }
    ++snapped;
    double const size = sizeOf(Sampler(wire, 2));
    ccSMDGDPoly const upright(poly.wireframe().map(cc2Rigid(-ccDegree(tilt), V()), 1), "poly");
    double extent = 0;
    for (long k = 0; k < poly.numVertices(); ++k)
      extent = std::max(extent, poly.vertex(k).point.distance(poly.vertex(0).point));
    for (long k = 0; k < poly.numSegments(); ++k) {
      V const d = upright.vertex(k + 1, true).point - upright.vertex(k).point;
      EXPECT_LE(std::min(std::abs(d.x()), std::abs(d.y())), 1e-14 * size + 1e-12 * extent);
      EXPECT_EQ(poly.vertex(k).span, ccRadian(0));
    }
    EXPECT_EQ(poly.isPolarityReversed(), wire.isPolarityReversed());
    EXPECT_EQ(poly.isOpen(), wire.isOpen());
    for (long k = 0; k < poly.numVertices(); ++k)
      EXPECT_TRUE(poly.vertex(k).roundingSize == 0 || poly.vertex(k).roundingSize == before.vertex(k).roundingSize);
    EXPECT_TRUE(poly.wireframe().isValid());
    if (size > 1e3 * extent)
      continue;  // too few digits left for angles
    double const difference = std::remainder(Edit::dominantAngle(poly).value() - tilt.value(), cfPi / 2);
    EXPECT_LE(std::abs(difference), 1e-9);
    ccSMDGDPoly again = poly;
    Edit::snapRectilinear(again);
    for (long k = 0; k < poly.numVertices(); ++k)
      expectNear(again.vertex(k).point, poly.vertex(k).point, 1e-10 * size);
  }
  EXPECT_GT(snapped, 200);
}

TEST(PolyEdit, aTiltedSquareIsStoredUprightWithItsTilt)
{
  ccSMDGDPoly poly = turnedBy(polyOf({V(0, 0), V(40, 0), V(40, 30), V(0, 30)}, true), 25, V(100, 50));
  ccSMDGDPoly const before = poly;

  Edit::snapRectilinear(poly);

  cc2Rigid const tilt(Edit::dominantAngle(poly), V());
  EXPECT_NEAR(tilt.angle().value(), 25, 1e-10);
  EXPECT_TRUE(Edit::isRectilinear(Edit::poly(poly.wireframe().map(tilt.inverse(), 1))));
  for (long i = 0; i < 4; ++i)
    expectNear(poly.vertex(i).point, before.vertex(i).point, 1e-10);
}

// Closing.

TEST(PolyEdit, anEvenChainClosesByMovingItsLastVertex)
{
  ccSMDGDPoly h = polyOf({V(1, 2), V(10, 2), V(10, 8), V(4, 8)}, false);
  Edit::closeRectilinear(h);
  ASSERT_EQ(h.numVertices(), 4);
  EXPECT_FALSE(h.isOpen());
  EXPECT_EQ(h.vertex(3).point, V(1, 8));
  EXPECT_EQ(h.vertex(2).point, V(10, 8));

  ccSMDGDPoly v = polyOf({V(1, 2), V(1, 9), V(6, 9), V(6, 5)}, false);
  Edit::closeRectilinear(v);
  ASSERT_EQ(v.numVertices(), 4);
  EXPECT_EQ(v.vertex(3).point, V(6, 2));
  EXPECT_TRUE(isUpright(h) && isUpright(v));
}

TEST(PolyEdit, anOddChainClosesWithANewVertexAndTwoSegments)
{
  ccSMDGDPoly v = polyOf({V(1, 2), V(10, 2), V(10, 8)}, false);
  Edit::closeRectilinear(v);
  ASSERT_EQ(v.numVertices(), 4);
  EXPECT_EQ(v.numSegments(), 4);
  EXPECT_EQ(v.vertex(3).point, V(1, 8));

  ccSMDGDPoly h = polyOf({V(1, 2), V(1, 9), V(7, 9)}, false);
  Edit::closeRectilinear(h);
  ASSERT_EQ(h.numVertices(), 4);
  EXPECT_EQ(h.vertex(3).point, V(7, 2));
  EXPECT_TRUE(isUpright(h) && isUpright(v));
}

TEST(PolyEdit, closeKeepsRecordsNameAndPolarity)
{
  ccSMDGDPoly poly = polyOf({V(1, 2), V(10, 2), V(10, 8)}, false);
  poly.vertex(1, record(V(10, 2), 1, ccRadian(0), tol(3)));
  poly.polarity(true);
  poly.name("other");

  Edit::closeRectilinear(poly);

  EXPECT_EQ(poly.vertex(1), record(V(10, 2), 1, ccRadian(0), tol(3)));
  EXPECT_TRUE(poly.isPolarityReversed());
  EXPECT_EQ(poly.name(), "other");
  EXPECT_EQ(poly.vertex(3).roundingSize, 0);
  EXPECT_EQ(poly.vertex(0).tol, ccDimTol());
}

TEST(PolyEdit, closeTakesASegmentOfLengthZeroByTurns)
{
  // H, an empty V, H: the last vertex moves along x below the first, where it already is in y.
  ccSMDGDPoly flat = polyOf({V(0, 0), V(10, 0), V(10, 0), V(4, 0)}, false);
  expectRefused<ccShapesError::BadGeom>(flat, [](ccSMDGDPoly& p) { Edit::closeRectilinear(p); });

  // H, an empty V: the new corner lies under the first vertex, and the second new segment would be empty.
  ccSMDGDPoly odd = polyOf({V(0, 0), V(10, 0), V(10, 0)}, false);
  expectRefused<ccShapesError::BadGeom>(odd, [](ccSMDGDPoly& p) { Edit::closeRectilinear(p); });
}

TEST(PolyEdit, closeRefusesOtherChains)
{
  using Bad = ccShapesError::BadGeom;
  auto const close = [](ccSMDGDPoly& p) { Edit::closeRectilinear(p); };
  expectRefused<Bad>(polyOf({V(0, 0), V(5, 0)}, false), close);                              // too short
  expectRefused<Bad>(polyOf({V(0, 0), V(5, 0), V(5, 5), V(0, 5)}, true), close);             // closed
  expectRefused<Bad>(polyOf({V(0, 0), V(5, 0), V(9, 0), V(9, 5)}, false), close);            // two H in a row
  expectRefused<Bad>(polyOf({V(0, 0), V(5, 1), V(5, 5)}, false), close);                     // tilted
  expectRefused<Bad>(polyOf({V(0, 0), V(5, 0), V(5, 5), V(0, 5), V(0, 0)}, false), close);   // ends where it started
  expectRefused<Bad>(polyOf({V(0, 0), V(5, 0), V(5, 5), V(0, 5), V(0, 3)}, false), close);   // corner on the last vertex
}

TEST(PolyEdit, closedChainsAreRectilinearAndKeepAllOtherVertices)
{
  Random random(24);
  for (int i = 0; i < rounds(500); ++i) {
    ccSMDGDPoly const before = randomRectilinear(random, false);
    ccSMDGDPoly poly = before;
    Edit::closeRectilinear(poly);
    EXPECT_TRUE(isUpright(poly));
    EXPECT_EQ(poly.numVertices() % 2, 0);
    EXPECT_EQ(poly.numVertices(), before.numVertices() + before.numVertices() % 2);
    for (long k = 0; k + 1 < before.numVertices(); ++k)
      EXPECT_EQ(poly.vertex(k).point, before.vertex(k).point);
  }
}

// Moving a vertex.

TEST(PolyEdit, aMovedCornerTakesItsNeighboursAlong)
{
  ccSMDGDPoly poly = polyOf({V(0, 0), V(10, 0), V(10, 6), V(0, 6)}, true);

  Edit::replaceVertexRectilinear(poly, 1, record(V(12, -1), 0.5, ccRadian(0), tol(9)));

  EXPECT_EQ(poly.vertex(0).point, V(0, -1));
  EXPECT_EQ(poly.vertex(1), record(V(12, -1), 0.5, ccRadian(0), tol(9)));
  EXPECT_EQ(poly.vertex(2).point, V(12, 6));
  EXPECT_EQ(poly.vertex(3).point, V(0, 6));
}

TEST(PolyEdit, aMovedVertexTakesWholeRunsAlong)
{
  // The upper side runs through vertices 4, 0, 1 and across the closing segment.
  ccSMDGDPoly poly = polyOf({V(5, 0), V(10, 0), V(10, 6), V(0, 6), V(0, 0)}, true);

  Edit::replaceVertexRectilinear(poly, 0, record(V(6, -2)));

  EXPECT_EQ(poly.vertex(0).point, V(6, -2));
  EXPECT_EQ(poly.vertex(1).point, V(10, -2));
  EXPECT_EQ(poly.vertex(4).point, V(0, -2));
  EXPECT_EQ(poly.vertex(2).point, V(10, 6));
  EXPECT_EQ(poly.vertex(3).point, V(0, 6));
}

TEST(PolyEdit, aRectangleWithoutExtentOpensUpAtACorner)
{
  ccSMDGDPoly poly = polyOf({V(3, 3), V(3, 3), V(3, 3), V(3, 3)}, true);  // H, V, H, V by turns

  Edit::replaceVertexRectilinear(poly, 2, record(V(8, 9)));

  EXPECT_EQ(poly.vertex(0).point, V(3, 3));
  EXPECT_EQ(poly.vertex(1).point, V(8, 3));
  EXPECT_EQ(poly.vertex(2).point, V(8, 9));
  EXPECT_EQ(poly.vertex(3).point, V(3, 9));
}

TEST(PolyEdit, replaceRefusesBadRecordsAndIndices)
{
  ccSMDGDPoly const poly = polyOf({V(0, 0), V(10, 0), V(10, 6), V(0, 6)}, true);
  expectRefused<ccShapesError::BadParams>(
      poly, [](ccSMDGDPoly& p) { Edit::replaceVertexRectilinear(p, 4, record(V(0, 0))); });
  expectRefused<ccShapesError::BadParams>(
      poly, [](ccSMDGDPoly& p) { Edit::replaceVertexRectilinear(p, 1, record(V(0, cfInfinity))); });
  expectRefused<ccShapesError::BadGeom>(
      poly, [](ccSMDGDPoly& p) { Edit::replaceVertexRectilinear(p, 1, record(V(11, 1), 0, deg(10))); });
}

TEST(PolyEdit, vertexMovesKeepThePolygonRectilinearAndAllThatIsNotLinked)
{
  Random random(25);
  for (int i = 0; i < rounds(1000); ++i) {
    ccSMDGDPoly const before = randomRectilinear(random, random.chance(2));
    ccSMDGDPoly poly = before;
    long const count = poly.numVertices(), id = random.below(static_cast<int>(count));
    ccSMDGDPolyVertex const moved = record(random.vector(500), random.in(0, 2), ccRadian(0), tol(2));

    Edit::replaceVertexRectilinear(poly, id, moved);

    EXPECT_TRUE(isUpright(poly));
    EXPECT_TRUE(Edit::isRectilinear(poly));
    EXPECT_EQ(poly.vertex(id).point, moved.point);
    EXPECT_EQ(poly.vertex(id).roundingSize, moved.roundingSize);
    for (long k = 0; k < count; ++k) {
      long const steps = std::abs(k - id);
      bool const isNeighbour = steps == 1 || (!poly.isOpen() && steps == count - 1);
      if (k != id && !isNeighbour) {
        EXPECT_EQ(poly.vertex(k), before.vertex(k));
      }
      if (isNeighbour) {
        EXPECT_EQ((poly.vertex(k).point.x() != before.vertex(k).point.x()) +
                      (poly.vertex(k).point.y() != before.vertex(k).point.y()),
                  1);
      }
    }
    EXPECT_EQ(poly.isPolarityReversed(), before.isPolarityReversed());
  }
}

// Cutting.

TEST(PolyEdit, aClosedPolygonIsCutOpenAfterTheRemovedSegment)
{
  ccSMDGDPoly poly = polyOf({V(0, 0), V(10, 0), V(10, 10), V(0, 10)}, true);
  poly.vertex(0, record(V(0, 0), 1, deg(5), tol(5)));
  poly.vertex(2, record(V(10, 10), 2, deg(6), tol(6)));
  poly.polarity(true);
  poly.name("mine");
  std::vector<ccSMDGDPoly> out(3);

  Edit::deleteSegments(poly, {2}, out);  // from vertex 1 to vertex 2

  ASSERT_EQ(out.size(), 1u);
  ASSERT_EQ(out[0].numVertices(), 4);
  EXPECT_TRUE(out[0].isOpen());
  EXPECT_EQ(out[0].vertex(0), record(V(10, 10), 2, ccRadian(0), ccDimTol::noSegment()));
  EXPECT_EQ(out[0].vertex(1).point, V(0, 10));
  EXPECT_EQ(out[0].vertex(2), record(V(0, 0), 1, deg(5), tol(5)));
  EXPECT_EQ(out[0].vertex(3).point, V(10, 0));
  EXPECT_TRUE(out[0].isPolarityReversed());
  EXPECT_EQ(out[0].name(), "mine");
}

TEST(PolyEdit, anInnerSegmentOfAnOpenPolygonLeavesTwoPiecesInOrder)
{
  ccSMDGDPoly const poly = polyOf({V(0, 0), V(1, 0), V(2, 0), V(3, 0), V(4, 0)}, false);
  std::vector<ccSMDGDPoly> out;

  Edit::deleteSegments(poly, {2}, out);

  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(out[0].numVertices(), 2);
  EXPECT_EQ(out[0].vertex(1).point, V(1, 0));
  EXPECT_EQ(out[1].numVertices(), 3);
  EXPECT_EQ(out[1].vertex(0).point, V(2, 0));
}

TEST(PolyEdit, anEndSegmentLeavesOnePieceAndNoSingleVertex)
{
  ccSMDGDPoly const poly = polyOf({V(0, 0), V(1, 0), V(2, 0)}, false);
  std::vector<ccSMDGDPoly> out;

  Edit::deleteSegments(poly, {1}, out);
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(out[0].vertex(0).point, V(1, 0));
  Edit::deleteSegments(poly, {2}, out);
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(out[0].vertex(1).point, V(1, 0));
  Edit::deleteSegments(poly, {1, 2}, out);
  EXPECT_TRUE(out.empty());
}

TEST(PolyEdit, duplicatesAndBadIndicesAreIgnored)
{
  ccSMDGDPoly const closed = polyOf({V(0, 0), V(1, 0), V(1, 1)}, true), open = polyOf({V(0, 0), V(1, 0), V(1, 1)}, false);
  std::vector<ccSMDGDPoly> out;

  Edit::deleteSegments(closed, {0, -1, 0, 3, 0}, out);
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(out[0].vertices().front().point, V(0, 0));
  EXPECT_EQ(out[0].numVertices(), 3);

  Edit::deleteSegments(open, {0, 17}, out);  // an open one has no segment 0
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(out[0], open);
  Edit::deleteSegments(closed, {}, out);
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(out[0], closed);
  Edit::deleteSegments(ccSMDGDPoly("poly"), {0, 1}, out);
  EXPECT_TRUE(out.empty());
}

TEST(PolyEdit, piecesOfACutAddUp)
{
  Random random(26);
  for (int i = 0; i < rounds(1000); ++i) {
    PolyKind kind;
    kind.roundings = false;
    cc2Wireframe const wire = randomWire(random, kind);
    ccSMDGDPoly const poly(wire, "poly");
    std::vector<long> removed;
    for (long k = poly.isOpen() ? 1 : 0; k < poly.numVertices(); ++k)
      if (random.chance(3))
        removed.push_back(k);
    if (removed.empty())
      removed.push_back(1);
    std::vector<ccSMDGDPoly> out;

    Edit::deleteSegments(poly, removed, out);

    long segments = 0;
    for (ccSMDGDPoly const& piece : out) {
      EXPECT_TRUE(piece.isOpen());
      EXPECT_GE(piece.numVertices(), 2);
      segments += piece.numSegments();
      // Each segment of a piece is one of the polygon, with its span and tolerance.
      for (long k = 1; k < piece.numVertices(); ++k) {
        bool found = false;
        for (long j = 0; j < poly.numVertices(); ++j)
          found = found || (piece.vertex(k) == poly.vertex(j) && piece.vertex(k - 1).point == poly.vertex(j - 1, true).point &&
                            std::find(removed.begin(), removed.end(), j) == removed.end());
        EXPECT_TRUE(found);
      }
    }
    EXPECT_EQ(segments, poly.numSegments() - static_cast<long>(removed.size()));
  }
}
