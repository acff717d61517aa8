#include "geometry/lines.h"

#include "geometry/coord_axes.h"
#include "geometry/point_set.h"
#include "geometry/polygon.h"
#include "geometry/rect.h"
#include "tests/geometry/shape_support.h"

using namespace krs_test;

TEST(Line, directionComesFirstAndIsAUnitVector)
{
  ccLine const line(V(0, 5), ccPoint(3, 4));

  EXPECT_EQ(line.dir(), V(0, 1));
  EXPECT_EQ(line.pos(), V(3, 4));
  EXPECT_EQ(line.angle(), ccRadian(cfPi / 2));
  EXPECT_EQ(line.distToPoint(V(10, -50)), 7);
}

TEST(Line, runsThroughTheOriginAlongXByDefault)
{
  EXPECT_EQ(ccLine(), ccLine(V(2, 0), V(0, 0)));
  EXPECT_EQ(ccLine().distToPoint(V(1000, -3)), 3);
}

TEST(Line, aZeroDirectionIsSingularAndOthersThatAreNotFiniteAreBad)
{
  EXPECT_THROW(ccLine(V(0, 0), V(1, 1)), ccMathError::Singular);
  EXPECT_THROW(ccLine(V(kNan, 0), V(1, 1)), ccShapesError::BadParams);
  EXPECT_THROW(ccLine(V(1, 0), V(cfInfinity, 1)), ccShapesError::BadParams);
  EXPECT_THROW(ccLine().map(ccXform<2>(0, 1, V())), ccMathError::Singular);
  ccLine line;
  EXPECT_THROW(line.pos(V(0, kNan)), ccShapesError::BadParams);
  EXPECT_EQ(line, ccLine());
}

TEST(Line, distanceDoesNotChangeWhileItsPointSlidesAlong)
{
  Random random(1);
  for (int i = 0; i < rounds(2000); ++i) {
    ccLine const line(random.vector(3) + V(0, 4), random.vector(100));
    V const p = random.vector(100);
    ccLine slid = line;
    slid.pos(line.pos() + line.dir() * random.in(-1000, 1000));
    EXPECT_NEAR(slid.distToPoint(p), line.distToPoint(p), 1e-10);
  }
}

TEST(Line, mapsWithItsPoints)
{
  Random random(2);
  for (int i = 0; i < rounds(500); ++i) {
    ccLine const line(random.vector(3) + V(0, 4), random.vector(100));
    ccXform<2> const x = random.affine();
    ccLine const image = line.map(x);
    EXPECT_NEAR(image.distToPoint(x.mapPoint(line.pos() + line.dir() * random.in(-100, 100))), 0, 1e-9);
    EXPECT_NEAR(image.dir().len(), 1, 1e-15);
  }
}

TEST(Line, clipsToARectangle)
{
  ccLineSeg part;
  ccRect const box(V(0, 0), V(10, 20));

  ASSERT_TRUE(ccLine(V(1, 1), V(-5, 0)).clip(box, part));  // y = x + 5
  EXPECT_NEAR(part.p1().distance(V(0, 5)), 0, 1e-14);
  EXPECT_NEAR(part.p2().distance(V(10, 15)), 0, 1e-14);
  ASSERT_TRUE(ccLine(V(0, -1), V(10, 99)).clip(box, part));  // along the right side
  EXPECT_EQ(part, ccLineSeg(V(10, 20), V(10, 0)));
  EXPECT_FALSE(ccLine(V(0, 1), V(10.001, 3)).clip(box, part));
  EXPECT_FALSE(ccLine(V(1, 1), V(-25, 0)).clip(box, part));
  ASSERT_TRUE(ccLine(V(1, 0), V(3, 5)).clip(ccRect(V(10, 20), V(-10, -20)), part));  // a negative size
  EXPECT_EQ(part, ccLineSeg(V(0, 5), V(10, 5)));
}

TEST(LineSeg, measuresByHand)
{
  ccLineSeg const seg(V(1, 2), V(4, 6));

  EXPECT_EQ(seg.midPoint(), V(2.5, 4));
  EXPECT_EQ(seg.length(), 5);
  EXPECT_EQ(seg.angle(), ccRadian(std::atan2(4, 3)));
  EXPECT_EQ(seg.closestPoint(V(-10, 0)), V(1, 2));
  EXPECT_EQ(seg.closestPoint(V(40, 60)), V(4, 6));
  EXPECT_NEAR(seg.closestPoint(V(2.5 - 8, 4 + 6)).distance(V(2.5, 4)), 0, 1e-14);
  EXPECT_NEAR(seg.distToPoint(V(2.5 - 8, 4 + 6)), 10, 1e-14);
}

TEST(LineSeg, ofNoLengthIsItsPoint)
{
  ccLineSeg const seg(V(3, 4), V(3, 4));

  EXPECT_EQ(seg.closestPoint(V(0, 0)), V(3, 4));
  EXPECT_EQ(seg.distToPoint(V(0, 0)), 5);
  EXPECT_EQ(seg.angle(), ccRadian(0));
  EXPECT_EQ(seg.encloseRect(), ccRect(V(3, 4), V(0, 0)));
}

TEST(LineSeg, badEndsAreRefusedAndChangeNothing)
{
  ccLineSeg seg(V(1, 2), V(3, 4));

  EXPECT_THROW(seg.p1(V(kNan, 0)), ccShapesError::BadParams);
  EXPECT_THROW(seg.p2(V(0, -cfInfinity)), ccShapesError::BadParams);
  EXPECT_EQ(seg, ccLineSeg(V(1, 2), V(3, 4)));
  seg.p1(V(0, 0));
  seg.p2(V(1, 1));
  EXPECT_EQ(seg, ccLineSeg(V(0, 0), V(1, 1)));
  EXPECT_THROW(ccLineSeg(V(0, kNan), V()), ccShapesError::BadParams);
}

TEST(LineSeg, aMapThatOverflowsIsRefused)
{
  EXPECT_THROW(ccLineSeg(V(1e300, 0), V()).map(ccXform<2>(1e10, 1, V())), ccShapesError::BadParams);
}

TEST(PointSet, positionAndAngleComeFromTheFirstTwoPoints)
{
  ccPointSet const set({V(1, 1), V(1, 3), V(9, 9)});

  EXPECT_EQ(set.size(), 3);
  EXPECT_EQ(set.pos(), V(1, 1));
  EXPECT_EQ(set.angle(), ccRadian(cfPi / 2));
  EXPECT_EQ(set[2], V(9, 9));
  EXPECT_EQ(set.distToPoint(V(9, 4)), 5);
  EXPECT_EQ(set.encloseRect(), ccRect(V(1, 1), V(8, 8)));
  EXPECT_THROW(set[3], ccShapesError::BadParams);
  EXPECT_THROW(set[-1], ccShapesError::BadParams);
  EXPECT_EQ(ccPointSet().pos(), V(0, 0));
}

TEST(PointSet, isDegenerateWithoutTwoDistinctFirstPoints)
{
  EXPECT_TRUE(ccPointSet().degen());
  EXPECT_TRUE(ccPointSet({V(1, 1)}).degen());
  EXPECT_TRUE(ccPointSet({V(1, 1), V(1, 1), V(2, 2)}).degen());
  EXPECT_TRUE(ccPointSet({V(1e6, 0), V(1e6 + 5e-7, 0)}).degen());   // 1e-12 (1 + 1e6) is about 1e-6
  EXPECT_FALSE(ccPointSet({V(1e6, 0), V(1e6 + 2e-6, 0)}).degen());
  EXPECT_FALSE(ccPointSet({V(0, 0), V(0, 2e-12)}).degen());
  EXPECT_EQ(ccPointSet({V(1, 1), V(1, 1), V(2, 2)}).angle(), ccRadian(0));
}

TEST(PointSet, isDegenerateWithinABillionthOfAThousandthAlsoAtTheOrigin)
{
  EXPECT_TRUE(ccPointSet({V(0, 0), V(0.9e-12, 0)}).degen());
  EXPECT_FALSE(ccPointSet({V(0, 0), V(1.1e-12, 0)}).degen());
  EXPECT_TRUE(ccPointSet({V(999, 0), V(999, 0.9e-9)}).degen());
  EXPECT_FALSE(ccPointSet({V(999, 0), V(999, 1.1e-9)}).degen());
}

TEST(PointSet, mapsAboutItsFirstPoint)
{
  ccPointSet const set({V(10, 10), V(12, 10), V(10, 13)});
  ccXform<2> const turn(ccMatrix<2>(0, -1, 1, 0), V(100, 200));

  EXPECT_EQ(set.map(turn), ccPointSet({V(90, 210), V(90, 212), V(87, 210)}));
  EXPECT_EQ(set.mapCentered(turn), ccPointSet({V(110, 210), V(110, 212), V(107, 210)}));
}

TEST(PointSet, theRotationHandleLiesOnTheSecondPoint)
{
  Random random(3);
  for (int i = 0; i < rounds(500); ++i) {
    ccPointSet const set({random.vector(100), random.vector(100)});
    double const length = set[0].distance(set[1]);
    EXPECT_NEAR((set.pos() + V::polar(length, set.angle())).distance(set[1]), 0, 1e-12);
  }
}

TEST(Polyline, distanceIsTheLeastOverItsSegments)
{
  Random random(4);
  for (int i = 0; i < rounds(500); ++i) {
    std::vector<V> points;
    for (int k = 2 + random.below(6); k > 0; --k)
      points.push_back(random.vector(100));
    V const q = random.vector(150);
    double open = cfInfinity;
    for (std::size_t k = 1; k < points.size(); ++k) {
      // The distance to a segment, by thirds of it.
      double low = 0, high = 1;
      V const a = points[k - 1], d = points[k] - a;
      for (int step = 0; step < 100; ++step) {
        double const m = low + (high - low) / 3, n = high - (high - low) / 3;
        ((a + d * m).distance(q) < (a + d * n).distance(q) ? high : low) = (a + d * m).distance(q) < (a + d * n).distance(q) ? n : m;
      }
      open = std::min(open, (a + d * low).distance(q));
    }
    double const last = ccLineSeg(points.back(), points.front()).distToPoint(q);
    EXPECT_NEAR(ccPolyline(points, false).distToPoint(q), open, 1e-6);
    EXPECT_NEAR(ccPolyline(points, true).distToPoint(q), std::min(open, last), 1e-6);
    EXPECT_EQ(ccPolygon(points, 0).distToPoint(q), ccPolyline(points, true).distToPoint(q));
  }
}

TEST(Polyline, ofOnePointIsThatPoint)
{
  for (bool const closed : {false, true}) {
    ccPolyline const dot({V(3, 4)}, closed);
    EXPECT_EQ(dot.distToPoint(V(0, 0)), 5);
    EXPECT_EQ(dot.encloseRect(), ccRect(V(3, 4), V()));
    EXPECT_EQ(Sampler(dot, 2).points, std::vector<V>{V(3, 4)});
  }
}

TEST(Polygon, isClosedForDistanceAndBoxButDrawnOpenUnlessFilled)
{
  std::vector<V> const corners = {V(0, 0), V(10, 0), V(10, 10), V(0, 10)};

  for (int rule = 0; rule <= 2; ++rule) {
    ccPolygon const polygon(corners, rule);
    EXPECT_EQ(polygon.fillRule(), rule);
    EXPECT_EQ(polygon.distToPoint(V(-1, 5)), 1);
    EXPECT_EQ(polygon.distToPoint(V(5, 4)), 4);  // to the outline, also if it is filled
    EXPECT_EQ(Sampler(polygon, 2).closes, rule == 0 ? 0 : 1);
  }
}

TEST(Polygon, knowsThreeFillRules)
{
  ccPolygon polygon({V(1, 2)}, 2);

  EXPECT_THROW(ccPolygon({V()}, 3), ccShapesError::BadParams);
  EXPECT_THROW(polygon.fillRule(-1), ccShapesError::BadParams);
  EXPECT_EQ(polygon.fillRule(), 2);
  EXPECT_THROW(ccPolygon({V(0, kNan)}), ccShapesError::BadParams);
  EXPECT_THROW(polygon[1], ccShapesError::BadParams);
}

TEST(CoordAxes, distanceIsToTheNearerAxis)
{
  ccCoordAxes const axes(V(0, 0), V(10, 0), V(0, 20));

  EXPECT_EQ(axes.distToPoint(V(5, 3)), 3);
  EXPECT_EQ(axes.distToPoint(V(2, 15)), 2);
  EXPECT_EQ(axes.distToPoint(V(13, 4)), 5);
  EXPECT_EQ(axes.encloseRect(), ccRect(V(0, 0), V(10, 20)));
  EXPECT_EQ(axes.map(ccXform<2>(2, -1, V(1, 1))), ccCoordAxes(V(1, 1), V(21, 1), V(1, -19)));
}

TEST(CoordAxes, aDragMovesOneEndByTheDelta)
{
  ccXform<2> const from(ccMatrix<2>(2, 1, -1, 3), V(7, 8));

  auto const x = cfAxesAdjust(from, 10, true, V(5, -5), {});
  ASSERT_TRUE(x);
  EXPECT_EQ(x->mapPoint(V(10, 0)), from.mapPoint(V(10, 0)) + V(5, -5));
  EXPECT_EQ(x->mapPoint(V(0, 10)), from.mapPoint(V(0, 10)));
  EXPECT_EQ(x->trans(), V(7, 8));

  auto const y = cfAxesAdjust(from, 10, false, V(5, -5), {});
  ASSERT_TRUE(y);
  EXPECT_EQ(y->mapPoint(V(10, 0)), from.mapPoint(V(10, 0)));
  EXPECT_EQ(y->mapPoint(V(0, 10)), from.mapPoint(V(0, 10)) + V(5, -5));
}

TEST(CoordAxes, aDragKeepsWhatIsAsked)
{
  Random random(5);
  for (int i = 0; i < rounds(500); ++i) {
    ccXform<2> const from = random.affine();
    bool const x = random.chance(2);
    V const end = x ? V(3, 0) : V(0, 3), otherEnd = x ? V(0, 3) : V(3, 0), delta = random.vector(5);
    V const old = from.mapVector(end), oldOther = from.mapVector(otherEnd);
    csAxesKeep const keep{random.chance(2), random.chance(2), random.chance(2), random.chance(2)};
    auto const result = cfAxesAdjust(from, 3, x, delta, keep);
    ASSERT_TRUE(result);
    V const moved = result->mapVector(end), other = result->mapVector(otherEnd);

    if (keep.length)
      EXPECT_NEAR(moved.len(), old.len(), 1e-12 * old.len());
    else
      EXPECT_NEAR(moved.len(), (old + delta).len(), 1e-11);
    if (keep.aspect && !keep.length)
      EXPECT_NEAR(other.len() / moved.len(), oldOther.len() / old.len(), 1e-9 * oldOther.len() / old.len());
    else
      EXPECT_NEAR(other.len(), oldOther.len(), 1e-11);
    double const turn = ccRadian::signedNorm(moved.angle() - old.angle()).value();
    if (keep.direction)
      EXPECT_NEAR(turn, 0, 1e-12);
    else
      EXPECT_NEAR(ccRadian::signedNorm(moved.angle() - (old + delta).angle()).value(), 0, 1e-9);
    double const otherTurn = ccRadian::signedNorm(other.angle() - oldOther.angle()).value();
    if (keep.angle && !keep.direction)
      EXPECT_NEAR(ccRadian::signedNorm(ccRadian(otherTurn - turn)).value(), 0, 1e-9);
    else
      EXPECT_NEAR(otherTurn, 0, 1e-12);
    EXPECT_EQ(result->trans(), from.trans());
  }
}

TEST(CoordAxes, aDragThatLacksADirectionHasNoResult)
{
  csAxesKeep length, aspect, direction;
  length.length = true;
  aspect.aspect = true;
  direction.direction = true;
  ccXform<2> const unit, flat(0, 1, V());

  EXPECT_FALSE(cfAxesAdjust(unit, 5, true, V(-5, 0), length));
  EXPECT_FALSE(cfAxesAdjust(flat, 5, true, V(1, 0), aspect));
  EXPECT_FALSE(cfAxesAdjust(flat, 5, true, V(1, 0), direction));
  EXPECT_FALSE(cfAxesAdjust(unit, 0, true, V(1, 0), {}));
  EXPECT_FALSE(cfAxesAdjust(unit, 5, true, V(kNan, 0), {}));
  EXPECT_TRUE(cfAxesAdjust(flat, 5, true, V(1, 0), {}));
}
