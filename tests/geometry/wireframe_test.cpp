// Wireframes, single segments, and the drags of polygon handles.
#include "geometry/circle.h"
#include "geometry/lines.h"
#include "tests/geometry/poly_support.h"

using namespace krs_test;

namespace {

cc2Wireframe squareWire() { return cc2Wireframe(ccGenPoly(ccRect(V(0, 0), V(10, 10))), tol(1)); }

}  // namespace

TEST(DimTol, isAllZeroByDefault)
{
  ccDimTol const t;

  EXPECT_EQ(t.lower(), 0);
  EXPECT_EQ(t.upper(), 0);
  EXPECT_EQ(t.nominal(), 0);
  EXPECT_EQ(t.type(), 0);
  EXPECT_EQ(t, ccDimTol(0, 0, 0, ccDimTol::eTypeDefault));
  EXPECT_EQ(ccDimTol::noSegment(), ccDimTol(-1, -1, 0, ccDimTol::eTypeDefault));
  EXPECT_FALSE(t == ccDimTol::noSegment());
}

TEST(Wireframe, fromAPolygonHasOneToleranceOnAllSegments)
{
  cc2Wireframe const wire = squareWire();

  for (long i = 0; i < 4; ++i)
    EXPECT_EQ(wire.segmentLengthTol(i), tol(1));
  EXPECT_FALSE(wire.isPolarityReversed());
  EXPECT_EQ(static_cast<ccGenPoly const&>(wire), ccGenPoly(ccRect(V(0, 0), V(10, 10))));
}

TEST(Wireframe, tolerancesFollowTheirSegments)
{
  cc2Wireframe wire = squareWire();
  wire.segmentLengthTol(2, tol(2));
  wire.segmentLengthTol(3, tol(3));

  wire.insertVertex(1, V(12, 5), 0, ccRadian(0), tol(7));
  EXPECT_EQ(wire.segmentLengthTol(1), tol(7));
  EXPECT_EQ(wire.segmentLengthTol(2), tol(1));
  EXPECT_EQ(wire.segmentLengthTol(3), tol(2));

  wire.insertVertex(-1, V(-2, -2), 0, ccRadian(0), tol(8));
  EXPECT_EQ(wire.segmentLengthTol(0), tol(8));
  EXPECT_EQ(wire.segmentLengthTol(5), tol(3));  // the closing segment keeps its own

  wire.insertVertex(V(-2, 5), 0, ccRadian(0), tol(9));
  EXPECT_EQ(wire.segmentLengthTol(5), tol(9));
  EXPECT_EQ(wire.segmentLengthTol(6), tol(3));

  wire.deleteVertex(0);
  EXPECT_EQ(wire.segmentLengthTol(5), tol(8));
}

TEST(Wireframe, closeSetsTheToleranceOfTheClosingSegment)
{
  cc2Wireframe wire = squareWire();
  wire.open();
  wire.close(deg(10), tol(4));

  EXPECT_EQ(wire.segmentLengthTol(3), tol(4));
  EXPECT_EQ(wire.segmentAngleSpan(3), deg(10));
  EXPECT_THROW(wire.close(ccRadian(0), tol(5)), ccShapesError::BadGeom);
  EXPECT_EQ(wire.segmentLengthTol(3), tol(4));
  EXPECT_THROW(wire.segmentLengthTol(4), ccShapesError::BadParams);
}

TEST(Wireframe, mapsKeepTolerancesAndPolarity)
{
  cc2Wireframe wire = squareWire();
  wire.polarity(true);

  EXPECT_EQ(wire.map(ccXform<2>(5, -5, V(1, 1))).segmentLengthTol(2), tol(1));
  EXPECT_EQ(wire.map(cc2Rigid::I, 4).segmentLengthTol(2), tol(1));
  EXPECT_TRUE(wire.map(ccXform<2>(5, -5, V(1, 1))).isPolarityReversed());
  auto const image = static_cast<ccShape const&>(wire).map(ccXform<2>(2, 2, V()));
  ASSERT_NE(dynamic_cast<cc2Wireframe const*>(image.get()), nullptr);
  EXPECT_EQ(*dynamic_cast<cc2Wireframe const*>(image.get()), wire.map(ccXform<2>(2, 2, V())));
  auto const copy = static_cast<ccShape const&>(wire).clone();
  EXPECT_EQ(*dynamic_cast<cc2Wireframe const*>(copy.get()), wire);
}

TEST(Wireframe, polarityIsAFlagAndChangesNoOrder)
{
  cc2Wireframe wire = squareWire(), same = wire;
  wire.polarity(true);

  EXPECT_EQ(wire.vertices(), same.vertices());
  EXPECT_FALSE(wire == same);
  wire.polarity(false);
  EXPECT_EQ(wire, same);
  same.segmentLengthTol(1, tol(6));
  EXPECT_FALSE(wire == same);
  EXPECT_EQ(static_cast<ccGenPoly const&>(wire), static_cast<ccGenPoly const&>(same));
}

// Single segments.

TEST(SegmentLine, tellsMiddleDirectionAndNearestPoint)
{
  cc2SegmentLine const s(ccLineSeg(V(1, 1), V(5, 5)));

  EXPECT_EQ(s.midPoint(), V(3, 3));
  EXPECT_NEAR(s.angle().value(), cfPi / 4, 1e-15);
  expectNear(s.closestPoint(V(4, 2)), V(3, 3), 1e-15);
  EXPECT_EQ(s.closestPoint(V(9, 9)), V(5, 5));
}

TEST(SegmentArc, isOnTheUnitCircleUntilItIsMapped)
{
  // From (0,0) to (2,0) through (1,-1), travelling along +x at the middle.
  cc2SegmentArc const s(cs_PolySegment{V(0, 0), V(2, 0), deg(180)}.arc());

  EXPECT_NEAR(s.midPoint_().len(), 1, 1e-15);
  expectNear(s.xform() * s.midPoint_(), V(1, -1), 1e-15);
  EXPECT_NEAR(s.midDirection().value(), 0, 1e-15);
  EXPECT_EQ(s.span(), deg(180));
  expectNear(s.xform() * V::polar(1, s.start()), V(0, 0), 1e-15);
}

TEST(SegmentArc, plusNinetyDegreesIsTheLeftOfTravel)
{
  for (double const span : {60.0, -60.0, 200.0, -200.0, 340.0}) {
    cc2SegmentArc const arc(cs_PolySegment{V(0, 0), V(3, 4), deg(span)}.arc());
    cc2SegmentLine const line(ccLineSeg(V(0, 0), V(3, 4)));
    // At its middle an arc runs along its chord.
    EXPECT_NEAR(arc.midDirection().value(), line.angle().value(), 1e-14) << span;
  }
}

TEST(SegmentArc, nearestPointLiesOnTheArcOrAtAnEnd)
{
  cc2SegmentArc const s(cs_PolySegment{V(0, 0), V(2, 0), deg(180)}.arc());

  expectNear(s.closestPoint(V(1, -5)), V(1, -1), 1e-14);
  expectNear(s.closestPoint(V(3, 3)), V(2, 0), 1e-14);
  expectNear(s.closestPoint(V(-1, 3)), V(0, 0), 1e-14);
}

TEST(SegmentArc, nearestToTheCentreIsTheStart)
{
  cc2SegmentArc const s(deg(30), deg(100), ccXform<2>(2, 2, V(5, 5)));

  expectNear(s.closestPoint(V(5, 5)), V(5, 5) + V::polar(2, deg(30)), 1e-14);
}

TEST(SegmentArc, followsRotationAndMirroringOfItsMap)
{
  ccXform<2> const turned(ccMatrix<2>(deg(90), 2), V(1, 1)), mirrored(2, -2, V(1, 1));
  cc2SegmentArc const a(deg(0), deg(90), turned), b(deg(0), deg(90), mirrored);

  EXPECT_NEAR(a.midDirection().value(), deg(-135).value(), 1e-14);  // 45 + 90 + 90 degrees
  expectNear(a.closestPoint(V(1 - 30, 1 + 30)), V(1, 1) + V::polar(2, deg(135)), 1e-14);
  EXPECT_NEAR(b.midDirection().value(), deg(-135).value(), 1e-14);
  expectNear(b.closestPoint(V(1 + 30, 1 - 30)), V(1, 1) + V::polar(2, deg(-45)), 1e-14);
  EXPECT_THROW(cc2SegmentArc(deg(0), deg(90), ccXform<2>(2, 3, V())), ccShapesError::BadParams);
  EXPECT_THROW(cc2SegmentArc(deg(0), deg(361), ccXform<2>()), ccShapesError::BadParams);
  EXPECT_THROW(cc2SegmentArc(ccEllipseArc(ccEllipse(V(), 2, 3, ccRadian(0)), deg(0), deg(9))), ccShapesError::BadParams);
}

TEST(SegmentArc, agreesWithThePolygonItCameFrom)
{
  Random random(9);
  for (int i = 0; i < rounds(1000); ++i) {
    cs_PolySegment const s{random.vector(10), random.vector(10), deg(random.in(5, 340) * (random.chance(2) ? 1 : -1))};
    cc2SegmentArc const arc(s.arc());
    ArcCircle const circle(s.a, s.b, s.span.value());
    V const q = random.vector(20);
    double const tolerance = 1e-10 * (10 + circle.radius);
    expectNear(arc.xform() * arc.midPoint_(), apex(s.a, s.b, s.span.value()), tolerance);
    EXPECT_NEAR(arc.closestPoint(q).distance(q), s.distance(q), tolerance);
  }
}

// Drags.

TEST(ArcSpanThrough, aPointOnTheChordGivesALine)
{
  for (double const t : {-1.0, 0.0, 0.25, 0.5, 1.0, 3.0})
    EXPECT_EQ(cfArcSpanThrough(V(1, 2), V(5, 2), V(1 + 4 * t, 2)), ccRadian(0));
}

TEST(ArcSpanThrough, halfACircleByHand)
{
  EXPECT_NEAR(cfArcSpanThrough(V(0, 0), V(2, 0), V(1, -1)).value(), cfPi, 1e-15);
  EXPECT_NEAR(cfArcSpanThrough(V(0, 0), V(2, 0), V(1, 1)).value(), -cfPi, 1e-15);
  EXPECT_NEAR(cfArcSpanThrough(V(0, 0), V(2, 0), V(-7, -1)).value(), cfPi, 1e-15);  // only the height counts
}

TEST(ArcSpanThrough, theApexGivesTheSpanBack)
{
  Random random(10);
  for (int i = 0; i < rounds(3000); ++i) {
    V const a = random.vector(10), b = random.vector(10);
    double const span = deg(random.in(-355, 355)).value();
    cc2Wireframe wire = chain({a, b}, false);
    wire.segmentAngleSpan(0, ccRadian(span));
    V const top = wire.isLineSegment(0) ? (a + b) * 0.5 : V(wire.arcSegment(0, true).midPoint());
    EXPECT_NEAR(cfArcSpanThrough(a, b, top).value(), span, 1e-9);
    wire.segmentAngleSpan(0, cfArcSpanThrough(a, b, apex(a, b, span)));
    EXPECT_NEAR(wire.segmentAngleSpan(0).value(), span, 1e-9);
  }
}

TEST(ArcSpanThrough, coincidentEndsAreRefused)
{
  EXPECT_THROW(cfArcSpanThrough(V(1, 1), V(1, 1), V(2, 2)), ccShapesError::DegenerateShape);
}

TEST(ArcSpanThrough, aPointFarAwayGivesASpanThatNoSegmentTakes)
{
  cc2Wireframe wire = chain({V(0, 0), V(1, 0)}, false);
  ccRadian const span = cfArcSpanThrough(V(0, 0), V(1, 0), V(0, -1e18));

  EXPECT_THROW(wire.segmentAngleSpan(0, span), ccShapesError::BadParams);
  EXPECT_TRUE(wire.isLineSegment(0));
}

TEST(RoundingSize, isTheDistanceToTheFartherSide)
{
  cc2Wireframe const wire = squareWire();

  EXPECT_EQ(cfRoundingSize(wire, 1, V(8, 2)), 2);
  EXPECT_EQ(cfRoundingSize(wire, 1, V(8, 3)), 3);
  EXPECT_EQ(cfRoundingSize(wire, 1, V(5, 2)), 5);
  EXPECT_EQ(cfRoundingSize(wire, 1, V(13, 4)), 5);  // to the end of the first side
}

TEST(RoundingSize, isEmptyAtEndsAndStraightVertices)
{
  cc2Wireframe wire = chain({V(0, 0), V(5, 5), V(7, 7), V(7, 0)}, false);

  EXPECT_FALSE(cfRoundingSize(wire, 0, V(1, 1)));
  EXPECT_FALSE(cfRoundingSize(wire, 3, V(1, 1)));
  EXPECT_FALSE(cfRoundingSize(wire, 1, V(1, 1)));
  EXPECT_TRUE(cfRoundingSize(wire, 2, V(6, 3)));
  EXPECT_THROW(cfRoundingSize(wire, 4, V(6, 3)), ccShapesError::BadParams);
  wire.vertexPoint(1, V(5, 5 + 1e-9));
  EXPECT_TRUE(cfRoundingSize(wire, 1, V(1, 1)));
}

TEST(RoundingSize, aDragToTheCentreOfARoundingGivesItsRadiusBack)
{
  Random random(11);
  int count = 0;
  for (int i = 0; i < rounds(1000); ++i) {
    cc2Wireframe const wire = randomWire(random, PolyKind());
    for (long k = 0; k < wire.numVertices(); ++k) {
      if (!wire.rounding(k).fits)
        continue;
      ++count;
      double const size = wire.vertexRoundingSize(k);
      std::optional<double> const dragged =
          cfRoundingSize(wire, k, ccSMDGDPolyPrivate::roundPoint(ccSMDGDPolyPrivate::poly(wire), k));
      ASSERT_TRUE(dragged);
      EXPECT_NEAR(*dragged, size, 1e-9 * (size + wire.rounding(k).center.len()));
    }
  }
  EXPECT_GT(count, 500);
}

TEST(ClosePolygon, theLastEndTakesThePlaceOfTheFirst)
{
  cc2Wireframe wire({record(V(0, 0)), record(V(10, 0), 1, deg(30), tol(2)), record(V(10, 10), 0, deg(40), tol(3)),
                     record(V(1, 1), 2, deg(50), tol(4))},
                    false);

  std::optional<cc2Wireframe> const closed = cfClosePolygon(wire, 3);

  ASSERT_TRUE(closed);
  EXPECT_FALSE(closed->isOpen());
  ASSERT_EQ(closed->numVertices(), 3);
  EXPECT_EQ(closed->vertexPoint(0), V(10, 0));
  EXPECT_EQ(closed->vertexPoint(1), V(10, 10));
  EXPECT_EQ(closed->vertexPoint(2), V(0, 0));
  EXPECT_EQ(closed->segmentAngleSpan(0), deg(40));
  EXPECT_EQ(closed->segmentAngleSpan(1), deg(50));
  EXPECT_EQ(closed->segmentAngleSpan(2), deg(30));  // the former first segment, at its place
  EXPECT_EQ(closed->segmentLengthTol(2), tol(2));
}

TEST(ClosePolygon, theFirstEndGoesToTheLast)
{
  cc2Wireframe wire({record(V(9, 9)), record(V(10, 0), 0, deg(30), tol(2)), record(V(10, 10)), record(V(0, 10))}, false);

  std::optional<cc2Wireframe> const closed = cfClosePolygon(wire, 0);

  ASSERT_TRUE(closed);
  ASSERT_EQ(closed->numVertices(), 3);
  EXPECT_EQ(closed->vertexPoint(0), V(10, 0));
  EXPECT_EQ(closed->vertexPoint(2), V(0, 10));
  EXPECT_EQ(closed->segmentAngleSpan(2), deg(30));
  EXPECT_EQ(closed->segmentLengthTol(2), tol(2));
}

TEST(ClosePolygon, hasNoResultForOtherVerticesClosedPolygonsAndTooFew)
{
  EXPECT_FALSE(cfClosePolygon(squareWire(), 0));
  EXPECT_FALSE(cfClosePolygon(chain({V(0, 0), V(1, 0), V(1, 1)}, false), 1));
  EXPECT_FALSE(cfClosePolygon(chain({V(0, 0), V(1, 0)}, false), 1));
  EXPECT_FALSE(cfClosePolygon(cc2Wireframe(), 0));
  EXPECT_TRUE(cfClosePolygon(chain({V(0, 0), V(1, 0), V(1, 1)}, false), 2));
}

// A drag that splits an arc: both halves get half of its span.
TEST(Wireframe, aNewVertexAtTheApexOfAnArcLeavesTheOutlineAsItWas)
{
  Random random(12);
  for (int i = 0; i < rounds(300); ++i) {
    PolyKind kind;
    kind.roundings = false;
    cc2Wireframe const wire = randomWire(random, kind);
    long const id = random.below(static_cast<int>(wire.numSegments()));
    if (wire.isLineSegment(id))
      continue;
    ccRadian const half = wire.segmentAngleSpan(id) / 2;
    cc2Wireframe split = wire;
    split.insertVertex(wire.previousVertexIndex(id), wire.arcSegment(id, true).midPoint(), 0, half, tol(1));
    split.segmentAngleSpan(id + 1, half);
    Sampler const before(wire, 20);
    for (V const& p : before.points)
      EXPECT_LE(split.distToPoint(p), 1e-9 * sizeOf(before));
  }
}
