// Polygons: numbering and edits.
#include "geometry/gen_poly.h"

#include "geometry/circle.h"
#include "geometry/lines.h"
#include "tests/geometry/poly_support.h"

using namespace krs_test;

namespace {

ccGenPoly square() { return ccGenPoly(ccRect(V(0, 0), V(10, 10))); }

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Runs an edit that must be refused with class E and change nothing.
template <class E, class Shape, class Edit> void expectRefused(Shape const& shape, Edit const& edit)
{
  Shape changed = shape;
  EXPECT_THROW(edit(changed), E);
  EXPECT_EQ(changed, shape);
}

}  // namespace

TEST(GenPoly, aNewOneIsOpenAndEmpty)
{
  ccGenPoly const poly;

  EXPECT_TRUE(poly.isOpen());
  EXPECT_EQ(poly.numVertices(), 0);
  EXPECT_EQ(poly.numSegments(), 0);
  EXPECT_TRUE(poly.isValid());
}

TEST(GenPoly, segmentsAreNumberedByTheVertexThatTheyLeave)
{
  ccGenPoly poly = square();
  EXPECT_EQ(poly.numSegments(), 4);
  EXPECT_EQ(poly.previousVertexIndex(3), 3);
  EXPECT_EQ(poly.nextVertexIndex(2), 3);
  EXPECT_EQ(poly.nextVertexIndex(3), 0);
  EXPECT_EQ(poly.previousSegmentIndex(0), 3);
  EXPECT_EQ(poly.previousSegmentIndex(2), 1);
  EXPECT_EQ(poly.nextSegmentIndex(3), 3);

  poly.open();
  EXPECT_EQ(poly.numSegments(), 3);
  EXPECT_EQ(poly.previousSegmentIndex(0), -1);
  EXPECT_EQ(poly.previousSegmentIndex(3), 2);
  EXPECT_EQ(poly.nextSegmentIndex(3), -1);
  EXPECT_EQ(poly.nextSegmentIndex(0), 0);
}

TEST(GenPoly, anOpenOneHasOneSegmentLessThanVerticesAndNeverLessThanNone)
{
  ccGenPoly poly;
  for (long n = 1; n < 5; ++n) {
    poly.insertVertex(V(static_cast<double>(n), 0));
    EXPECT_EQ(poly.numSegments(), n - 1);
  }
}

TEST(GenPoly, anInsertedVertexTakesItsSpanForTheSegmentThatLeadsToIt)
{
  ccGenPoly poly = square();
  poly.segmentAngleSpan(1, deg(20));

  poly.insertVertex(1, V(12, 5), 0.5, deg(30));

  EXPECT_EQ(poly.numVertices(), 5);
  EXPECT_EQ(poly.vertexPoint(2), V(12, 5));
  EXPECT_EQ(poly.vertexRoundingSize(2), 0.5);
  EXPECT_EQ(poly.segmentAngleSpan(1), deg(30));
  EXPECT_EQ(poly.segmentAngleSpan(2), deg(20));  // the rest of the split segment keeps its own
  EXPECT_EQ(poly.segmentAngleSpan(0), ccRadian(0));
}

TEST(GenPoly, aVertexInFrontOfAnOpenOneTakesItsSpanForTheSegmentThatLeavesIt)
{
  ccGenPoly poly;
  poly.insertVertex(V(0, 0));
  poly.insertVertex(V(1, 0), 0, deg(10));

  poly.insertVertex(-1, V(-1, 0), 0, deg(20));

  EXPECT_EQ(poly.vertexPoint(0), V(-1, 0));
  EXPECT_EQ(poly.segmentAngleSpan(0), deg(20));
  EXPECT_EQ(poly.segmentAngleSpan(1), deg(10));
}

TEST(GenPoly, aVertexInFrontOfAClosedOneLeavesTheClosingSegmentItsSpan)
{
  ccGenPoly poly = square();
  poly.segmentAngleSpan(3, deg(40));

  poly.insertVertex(-1, V(-5, -5), 0, deg(20));

  EXPECT_EQ(poly.segmentAngleSpan(0), deg(20));
  EXPECT_EQ(poly.segmentAngleSpan(4), deg(40));
}

TEST(GenPoly, aVertexAppendedToAClosedOneLeavesTheClosingSegmentItsSpan)
{
  ccGenPoly poly = square();
  poly.segmentAngleSpan(3, deg(40));

  poly.insertVertex(3, V(-5, 5), 0, deg(20));

  EXPECT_EQ(poly.vertexPoint(4), V(-5, 5));
  EXPECT_EQ(poly.segmentAngleSpan(3), deg(20));
  EXPECT_EQ(poly.segmentAngleSpan(4), deg(40));
}

TEST(GenPoly, theFirstVertexOfAllDropsItsSpan)
{
  ccGenPoly poly;
  poly.insertVertex(-1, V(1, 2), 3, deg(50));
  poly.insertVertex(V(2, 2));
  poly.close(deg(7));

  EXPECT_EQ(poly.segmentAngleSpan(0), ccRadian(0));
  EXPECT_EQ(poly.segmentAngleSpan(1), deg(7));
  EXPECT_EQ(poly.vertexRoundingSize(0), 3);
}

TEST(GenPoly, aDeletedVertexTakesTheSegmentThatLeadsToItAlong)
{
  ccGenPoly poly = square();
  for (long i = 0; i < 4; ++i)
    poly.segmentAngleSpan(i, deg(10 + static_cast<double>(i)));

  poly.deleteVertex(2);

  EXPECT_EQ(poly.numVertices(), 3);
  EXPECT_EQ(poly.vertexPoint(2), V(0, 10));
  EXPECT_EQ(poly.segmentAngleSpan(0), deg(10));
  EXPECT_EQ(poly.segmentAngleSpan(1), deg(12));  // of the outgoing segment
  EXPECT_EQ(poly.segmentAngleSpan(2), deg(13));
}

TEST(GenPoly, theFirstVertexOfAClosedOneTakesTheClosingSegmentAlong)
{
  ccGenPoly poly = square();
  for (long i = 0; i < 4; ++i)
    poly.segmentAngleSpan(i, deg(10 + static_cast<double>(i)));

  poly.deleteVertex(0);

  EXPECT_EQ(poly.vertexPoint(0), V(10, 0));
  EXPECT_EQ(poly.segmentAngleSpan(2), deg(10));
  EXPECT_EQ(poly.segmentAngleSpan(0), deg(11));
}

TEST(GenPoly, anEndOfAnOpenOneGoesWithItsSegment)
{
  ccGenPoly poly = square();
  poly.open();
  for (long i = 0; i < 3; ++i)
    poly.segmentAngleSpan(i, deg(10 + static_cast<double>(i)));

  ccGenPoly first = poly, last = poly;
  first.deleteVertex(0);
  last.deleteVertex(3);

  EXPECT_EQ(first.numSegments(), 2);
  EXPECT_EQ(first.segmentAngleSpan(0), deg(11));
  EXPECT_EQ(last.numSegments(), 2);
  EXPECT_EQ(last.segmentAngleSpan(1), deg(11));
}

TEST(GenPoly, belowTwoVerticesItIsOpen)
{
  ccGenPoly poly = square();
  poly.deleteVertex(0);
  poly.deleteVertex(0);
  EXPECT_FALSE(poly.isOpen());
  EXPECT_EQ(poly.numSegments(), 2);

  poly.deleteVertex(0);
  EXPECT_TRUE(poly.isOpen());
  poly.deleteVertex(0);
  EXPECT_EQ(poly.numVertices(), 0);
}

TEST(GenPoly, openDropsTheClosingSegmentForGood)
{
  ccGenPoly poly = square();
  poly.segmentAngleSpan(3, deg(60));

  poly.open();
  poly.open();  // no effect
  EXPECT_EQ(poly.numSegments(), 3);
  poly.close();

  EXPECT_EQ(poly.segmentAngleSpan(3), ccRadian(0));
}

TEST(GenPoly, closeIsRefusedBelowTwoVerticesAndTwice)
{
  ccGenPoly poly;
  expectRefused<ccShapesError::BadGeom>(poly, [](ccGenPoly& p) { p.close(); });
  poly.insertVertex(V(0, 0));
  expectRefused<ccShapesError::BadGeom>(poly, [](ccGenPoly& p) { p.close(); });
  poly.insertVertex(V(0, 0));
  poly.close();
  expectRefused<ccShapesError::BadGeom>(poly, [](ccGenPoly& p) { p.close(deg(5)); });
  EXPECT_THROW(ccGenPoly({record(V(1, 1))}, true), ccShapesError::BadGeom);
}

TEST(GenPoly, badArgumentsAreRefusedAndChangeNothing)
{
  using Bad = ccShapesError::BadParams;
  ccGenPoly const poly = square();
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.vertexPoint(4, V(0, 0)); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.vertexPoint(-1); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.vertexPoint(0, V(kNaN, 0)); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.vertexRoundingSize(4); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.vertexRoundingSize(0, -1); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.vertexRoundingSize(0, cfInfinity); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.segmentAngleSpan(4, ccRadian(0)); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.segmentAngleSpan(0, ccRadian(2 * cfPi)); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.segmentAngleSpan(0, ccRadian(-2 * cfPi)); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.segmentAngleSpan(0, ccRadian(kNaN)); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.insertVertex(4, V(0, 0)); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.insertVertex(-2, V(0, 0)); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.insertVertex(1, V(0, cfInfinity)); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.insertVertex(1, V(0, 0), -1); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.insertVertex(1, V(0, 0), 0, ccRadian(7)); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.deleteVertex(4); });
  expectRefused<Bad>(poly, [](ccGenPoly& p) { p.map(cc2Rigid::I, kNaN); });
  EXPECT_THROW(poly.previousVertexIndex(4), Bad);
  EXPECT_THROW(poly.nextVertexIndex(-1), Bad);
  EXPECT_THROW(poly.previousSegmentIndex(4), Bad);
  EXPECT_THROW(poly.nextSegmentIndex(-1), Bad);
  EXPECT_THROW(poly.lineSegment(4, true), Bad);
  EXPECT_THROW(poly.rounding(4), Bad);
  EXPECT_THROW(ccGenPoly({record(V(kNaN, 1))}, false), Bad);
  ccGenPoly open = square();
  open.open();
  expectRefused<Bad>(open, [](ccGenPoly& p) { p.segmentAngleSpan(3, deg(5)); });
  expectRefused<Bad>(open, [](ccGenPoly& p) { p.close(ccRadian(kNaN)); });
}

TEST(GenPoly, aTinySpanIsALine)
{
  ccGenPoly poly = square();
  poly.segmentAngleSpan(0, ccRadian(0.9e-9));
  poly.segmentAngleSpan(1, ccRadian(-0.9e-9));
  poly.segmentAngleSpan(2, ccRadian(1.1e-9));

  EXPECT_TRUE(poly.isLineSegment(0));
  EXPECT_EQ(poly.segmentAngleSpan(1), ccRadian(0));
  EXPECT_FALSE(poly.isLineSegment(2));
}

TEST(GenPoly, theWrongKindOfSegmentIsRefused)
{
  ccGenPoly poly = square();
  poly.segmentAngleSpan(1, deg(90));

  EXPECT_THROW(poly.arcSegment(0, true), ccShapesError::BadParams);
  EXPECT_THROW(poly.lineSegment(1, false), ccShapesError::BadParams);
}

TEST(GenPoly, aRectangleGivesItsCornersInGrowingAngle)
{
  ccGenPoly const poly(ccRect(V(1, 2), V(10, 5)));
  V const corners[] = {V(1, 2), V(11, 2), V(11, 7), V(1, 7)};

  ASSERT_EQ(poly.numVertices(), 4);
  EXPECT_FALSE(poly.isOpen());
  for (long i = 0; i < 4; ++i) {
    EXPECT_EQ(poly.vertexPoint(i), corners[i]);
    EXPECT_TRUE(poly.isLineSegment(i));
    EXPECT_EQ(poly.vertexRoundingSize(i), 0);
  }
}

TEST(GenPoly, aCircleGivesFourQuartersOfConstantRadius)
{
  ccGenPoly const poly(ccCircle(V(3, 4), 5));
  V const corners[] = {V(8, 4), V(3, 9), V(-2, 4), V(3, -1)};

  ASSERT_EQ(poly.numVertices(), 4);
  for (long i = 0; i < 4; ++i) {
    EXPECT_EQ(poly.vertexPoint(i), corners[i]);
    EXPECT_EQ(poly.segmentAngleSpan(i), deg(90));
  }
  for (V const& p : Sampler(poly, 50).points)
    EXPECT_NEAR(p.distance(V(3, 4)), 5, 1e-12);
  EXPECT_NEAR(poly.distToPoint(V(3, 4)), 5, 1e-12);
  EXPECT_NEAR(poly.distToPoint(V(3 + 10, 4 + 10)), 10 * std::sqrt(2) - 5, 1e-12);
  EXPECT_TRUE(poly.isValid());
}

TEST(GenPoly, aCircleOfRadiusZeroIsAValidPoint)
{
  ccGenPoly const poly(ccCircle(V(3, 4), 0));

  EXPECT_TRUE(poly.isValid());
  EXPECT_EQ(poly.distToPoint(V(0, 0)), 5);
  EXPECT_EQ(poly.encloseRect(), ccRect(V(3, 4), V(0, 0)));
  EXPECT_EQ(poly.arcSegment(0, true).startPoint(), V(3, 4));
  EXPECT_EQ(poly.arcSegment(0, true).conic().rx, 0);
}

TEST(GenPoly, insertAndDeleteRestores)
{
  Random random(1);
  for (int i = 0; i < rounds(2000); ++i) {
    cc2Wireframe const wire = randomWire(random, PolyKind());
    long const after = (wire.isOpen() ? -1 : 0) + random.below(static_cast<int>(wire.numVertices()));
    cc2Wireframe changed = wire;
    changed.insertVertex(after, random.vector(10), random.in(0, 3), deg(random.in(-300, 300)), tol(7));
    EXPECT_FALSE(changed == wire);
    changed.deleteVertex(after + 1);
    EXPECT_EQ(changed, wire);
  }
}

TEST(GenPoly, equalityComparesAllThatShows)
{
  ccGenPoly const poly = square();
  ccGenPoly moved = poly, rounded = poly, bent = poly, open = poly;
  moved.vertexPoint(2, V(10, 10 + 1e-14));
  rounded.vertexRoundingSize(1, 1);
  bent.segmentAngleSpan(1, deg(1));
  open.open();

  EXPECT_EQ(poly, square());
  for (ccGenPoly const& other : {moved, rounded, bent, open})
    EXPECT_FALSE(poly == other);
}
