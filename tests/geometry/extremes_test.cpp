// Single cases at the ends of the ranges: numbers next to the largest and the least, few points, very many points.
#include "geometry/all.h"
#include "tests/geometry/poly_support.h"

#include <chrono>

using namespace krs_test;

namespace {

using Handle = ccPtrHandle_const<ccShape>;

// Far more than any of these calls takes, and far less than one that grows with the square of the points.
constexpr double kSensibleSeconds = 10;

template <class Call> void expectQuick(char const* name, Call const& call)
{
  auto const start = std::chrono::steady_clock::now();
  call();
  EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), kSensibleSeconds) << name;
}

std::vector<V> star(int count)
{
  std::vector<V> points;
  for (int i = 0; i < count; ++i)
    points.push_back(V::polar(i % 2 ? 900 : 1000, ccRadian(2 * cfPi * i / count)));
  return points;
}

// A staircase along the diagonal and back along both axes.
std::vector<V> stairs(int steps)
{
  std::vector<V> points{V(0, 0)};
  for (int i = 0; i < steps; ++i) {
    points.push_back(points.back() + V(1, 0));
    points.push_back(points.back() + V(0, 1));
  }
  points.push_back(V(0, points.back().y()));
  return points;
}

} // namespace

TEST(Extremes, directionsKeepTheirLengthOfOne)
{
  for (V const& dir :
       {V(1.7e308, 1.7e308), V(-1e308, 1e300), V(5e-324, 5e-324), V(0, -5e-324), V(3e-310, 4e-310), V(1e-200, 1e200)}) {
    ccLine const line(dir, V(1, 2));
    EXPECT_NEAR(line.dir().len(), 1, 1e-15);
    EXPECT_GT(line.dir().x() * std::copysign(1, dir.x()) + line.dir().y() * std::copysign(1, dir.y()), 0.9);
  }
  expectNear(ccLine(V(3e-310, 4e-310), V()).dir(), V(0.6, 0.8), 1e-12);
  expectNear(ccLine(V(3e307, 4e307), V()).dir(), V(0.6, 0.8), 1e-15);
}

TEST(Extremes, segmentsMeasureWhereSquaresHaveNoDigits)
{
  for (double const unit : {1e-300, 1e-170, 1e-150, 1e150, 1e170, 1e300}) {
    ccLineSeg const s(V(1, 1) * unit, V(5, 4) * unit);
    EXPECT_NEAR(s.distToPoint(V(0, 5) * unit) / unit, std::abs(4 * 4 - 3 * -1) / 5.0, 1e-12) << unit;
    EXPECT_NEAR(s.distToPoint(V(1 - 3, 1 - 4) * unit) / unit, 5, 1e-12) << unit;
    EXPECT_NEAR(s.distToPoint(V(5 + 4, 4 + 3) * unit) / unit, 5, 1e-12) << unit;
  }
}

TEST(Extremes, aLineHasNoPartInARectangleBeyondAllBounds)
{
  ccLineSeg part(V(1, 2), V(3, 4));

  EXPECT_FALSE(ccLine(V(1, 0), V(1e308, 0)).clip(ccRect(V(-1e308, -1), V(3e307, 2)), part));
  EXPECT_EQ(part, ccLineSeg(V(1, 2), V(3, 4)));
}

TEST(Extremes, aMirrorIsToldWhereItsDeterminantHasNoDigits)
{
  for (double const scale : {1e-200, 1e-300, 1e200}) {
    double s = 0;
    ccRadian turn;
    bool mirrored = false;
    ASSERT_TRUE(ccXform<2>(ccMatrix<2>(deg(30), scale) * ccMatrix<2>(1, 0, 0, -1), V()).similarity(s, turn, mirrored));
    EXPECT_TRUE(mirrored) << scale;
    ASSERT_TRUE(ccXform<2>(ccMatrix<2>(deg(30), scale), V()).similarity(s, turn, mirrored));
    EXPECT_FALSE(mirrored) << scale;
  }
}

TEST(Extremes, aSegmentWhoseLengthOverflowsIsAsFarAsItsNearerEnd)
{
  ccLineSeg const s(V(-1.5e308, 0), V(1.5e308, 0));

  EXPECT_NEAR(s.distToPoint(V(1.4e308, 0)) / 1e307, 1, 1e-9);
  EXPECT_THROW(s.encloseRect(), ccShapesError::BadParams); // its width is no number
}

TEST(Extremes, ellipsesMapWhereSquaresHaveNoDigits)
{
  for (double const unit : {1e-250, 1e-170, 1e170, 1e250}) {
    // Stretched along x: (x / 8)^2 + (y / 2)^2 = 1.
    ccEllipse const image = ccEllipse(V(), 4 * unit, 2 * unit, deg(0)).map(ccXform<2>(2, 1, V()));
    EXPECT_NEAR(image.rx() / unit, 8, 1e-12) << unit;
    EXPECT_NEAR(image.ry() / unit, 2, 1e-12) << unit;
    EXPECT_NEAR(image.rotation().value(), 0, 1e-12) << unit;
  }
}

TEST(Extremes, aUnitOfAnEllipseWithoutReciprocalsIsRefused)
{
  EXPECT_THROW(ccEllipse(V(), 1, 5e-324, deg(30)).unit(), ccShapesError::DegenerateShape);
  EXPECT_THROW(ccEllipse(V(), 1e-310, 1, deg(30)).unit(), ccShapesError::DegenerateShape);
  EXPECT_NO_THROW(ccEllipse(V(), 1e-300, 1, deg(30)).unit());
}

TEST(Extremes, mapsBetweenTinyRectanglesAreMadeWithoutDeterminants)
{
  ccGenRect const base(V(1, 2), V(3e-200, 4e-200), deg(20), V()), edited(V(5, 6), V(6e-200, 2e-200), deg(20), V());
  ccXform<2> const x = base.xformTo(edited);

  expectNear(x.mapPoint(V(1, 2)), V(5, 6), 1e-12);
  expectNear(x.mapVector(V::polar(1, deg(20))), V::polar(2, deg(20)), 1e-12);
  expectNear(x.mapVector(V::polar(1, deg(110))), V::polar(0.5, deg(110)), 1e-12);
  // Half lengths without a reciprocal count as 0.
  ccXform<2> const moved =
      ccGenRect(V(1, 2), V(5e-324, 1), deg(0), V()).xformTo(ccGenRect(V(3, 4), V(7, 2), deg(0), V()));
  EXPECT_EQ(moved, ccXform<2>(1, 2, V(2, 0)));
}

TEST(Extremes, onlyTheRatiosOfWeightsCount)
{
  std::array<ccPoint, 4> const points{V(0, 0), V(10, 50), V(70, -20), V(80, 9)};
  ccBezierCurve const plain(points, {1, 5, 0.2, 1});
  for (double const factor : {1e-307, 1e-150, 1e150, 1e307}) {
    ccBezierCurve const scaled(points, {1 * factor, 5 * factor, 0.2 * factor, 1 * factor});
    for (double const t : {0.0, 0.25, 0.5, 0.9, 1.0}) {
      expectNear(scaled.point(t), plain.point(t), 1e-9);
      expectNear(scaled.split(t).second.startPoint(), plain.point(t), 1e-9);
    }
    EXPECT_NEAR(scaled.distToPoint(V(40, 40)), plain.distToPoint(V(40, 40)), 1e-9);
    expectNear(scaled.encloseRect().lr(), plain.encloseRect().lr(), 1e-9);
  }
  // The ends stay the ends, whatever the weights.
  ccBezierCurve const uneven(points, {1e300, 1, 1, 1e-300});
  EXPECT_EQ(uneven.point(0), V(0, 0));
  expectNear(uneven.point(1), V(80, 9), 1e-9);
}

TEST(Extremes, aWeightLawOfLargeWeightsStaysFinite)
{
  ccWeightLaw const law(1e200, 4e200);

  EXPECT_NEAR(law.weight(0) / 1e199, 1, 1e-12);
  EXPECT_NEAR(law.weight(0.5) / 1e200, 1, 1e-9);
  EXPECT_NEAR(law.weight(1) / 4e201, 1, 1e-9);
  EXPECT_THROW(ccWeightLaw(1e308, 1.2e308), ccShapesError::BadParams);
  EXPECT_THROW(ccWeightLaw(2, 1), ccShapesError::BadParams);
}

TEST(Extremes, aSplineWhoseTangentsOverflowIsRefusedAsItIsMade)
{
  ccInterpSpline s({V(0, 0), V(1, 1), V(2, 0)});
  ccInterpSpline const given = s;

  EXPECT_THROW(s.controlPoint(1, V(-1.7e308, 1.7e308)), ccShapesError::BadParams);
  EXPECT_EQ(s, given);
}

TEST(Extremes, aSectionOfManyTurnsThatStopsWhereItStartsIsEmpty)
{
  for (double const turns : {1.0, 1000.0, 1e6, -1e6})
    EXPECT_NEAR(ccEllipseAnnulusSection(V(), 5, 10, ccRadian(0.3), ccRadian(0.3 + turns * 2 * cfPi)).span().value(), 0,
                1e-8)
        << turns;
}

TEST(Extremes, chainsOfNoneToThreePointsAreMeasured)
{
  V const p[] = {V(0, 0), V(4, 0), V(4, 3)};
  double const open[] = {cfInfinity, 5, 3, 0}, closed[] = {cfInfinity, 5, 3, 0}; // from (4, 3)
  for (std::size_t n = 0; n <= 3; ++n) {
    std::vector<V> const points(p, p + n);
    std::vector<ccSMDGDPolyVertex> records;
    for (V const& v : points)
      records.push_back(record(v));
    SCOPED_TRACE(n);
    EXPECT_EQ(ccPointSet(points).distToPoint(p[2]), open[n]);
    EXPECT_EQ(ccPolyline(points).distToPoint(p[2]), open[n]);
    EXPECT_EQ(ccPolyline(points, true).distToPoint(p[2]), closed[n]);
    EXPECT_EQ(ccPolygon(points, 1).distToPoint(p[2]), closed[n]);
    EXPECT_EQ(ccGenPoly(records, false).distToPoint(p[2]), open[n]);
    EXPECT_EQ(ccDeBoorSpline(points).distToPoint(p[2]), open[n]);
    EXPECT_EQ(ccHermiteSpline(points).distToPoint(p[2]), open[n]);
    EXPECT_EQ(ccInterpSpline(points).distToPoint(p[2]), open[n]);
    if (n >= 2) {
      EXPECT_EQ(ccGenPoly(records, true).distToPoint(p[2]), closed[n]);
    }
    ccRect const box(V(0, 0), n < 2 ? V() : n == 2 ? V(4, 0) : V(4, 3));
    EXPECT_EQ(ccPointSet(points).encloseRect(), box);
    EXPECT_EQ(ccPolyline(points).encloseRect(), box);
    EXPECT_EQ(ccGenPoly(records, false).encloseRect(), box);
    EXPECT_TRUE(ccGenPoly(records, false).isValid());
  }
  EXPECT_THROW(ccGenPoly({}, true), ccShapesError::BadGeom);
  EXPECT_THROW(ccGenPoly({record(V(1, 1))}, true), ccShapesError::BadGeom);
}

TEST(Extremes, aHundredThousandVerticesAreMeasuredInSensibleTime)
{
  std::vector<V> const points = star(100000);
  V const q(3000, 0);
  ccPolygon const polygon(points, 1);
  expectQuick("polygon", [&] {
    EXPECT_NEAR(polygon.distToPoint(q), 2000, 1e-9);
    EXPECT_NEAR(polygon.encloseRect().lr().x(), 1000, 1e-9);
  });
  std::vector<ccSMDGDPolyVertex> records;
  for (V const& p : points)
    records.push_back(record(p, 0.001, deg(1)));
  ccGenPoly const poly(records, true);
  expectQuick("polygon with arcs and roundings", [&] {
    EXPECT_TRUE(poly.isValid());
    EXPECT_NEAR(poly.distToPoint(q), 2000, 1);
    poly.encloseRect();
  });
  ccPtrHandle_const<ccShape> curves;
  expectQuick("its image as curves", [&] { curves = static_cast<ccShape const&>(poly).map(ccXform<2>(2, 1, V())); });
  expectQuick("the curves", [&] { EXPECT_NEAR(curves->distanceToPoint(V(4000, 0)), 2000, 1); });
  ccInterpSpline interp;
  expectQuick("interpolation", [&] { interp = ccInterpSpline(points, true, 2); });
  for (ccPtrHandle_const<ccShape> const& s :
       {Handle(new ccInterpSpline(interp)), Handle(new ccDeBoorSpline(points, true)),
        Handle(new ccHermiteSpline(points, true)), Handle(new ccPointSet(points))})
    expectQuick("a spline", [&] { EXPECT_NEAR(s->distanceToPoint(q), 2000, 60); });
}

TEST(Extremes, aHundredThousandVerticesAreEditedInSensibleTime)
{
  std::vector<ccSMDGDPolyVertex> records;
  for (V const& p : stairs(50000))
    records.push_back(record(p));
  ccSMDGDPoly poly(cc2Wireframe(records, false), "poly");
  expectQuick("close", [&] { ccSMDGDPolyPrivate::closeRectilinear(poly); });
  expectQuick("snap", [&] { ccSMDGDPolyPrivate::snapRectilinear(poly); });
  expectQuick("move", [&] { ccSMDGDPolyPrivate::replaceVertexRectilinear(poly, 7, record(V(3.5, 3.25))); });
  EXPECT_TRUE(ccSMDGDPolyPrivate::isRectilinear(poly));
  std::vector<long> segments;
  for (long i = 0; i < poly.numSegments(); i += 3)
    segments.push_back(i);
  std::vector<ccSMDGDPoly> pieces;
  expectQuick("cut", [&] { ccSMDGDPolyPrivate::deleteSegments(poly, segments, pieces); });
  EXPECT_EQ(static_cast<long>(pieces.size()), static_cast<long>(segments.size()));
}

TEST(Extremes, roundingsThatAllOverlapAreSnappedInOnePass)
{
  std::vector<ccSMDGDPolyVertex> records;
  for (V const& p : stairs(50000))
    records.push_back(record(p, 0.9));
  ccSMDGDPoly poly(cc2Wireframe(records, true), "poly");
  EXPECT_FALSE(poly.wireframe().isValid());
  expectQuick("snap", [&] { ccSMDGDPolyPrivate::snapRectilinear(poly); });
  EXPECT_TRUE(poly.wireframe().isValid());
}

TEST(Extremes, aTreeHoldsNeitherItselfNorTooManyLevels)
{
  ccPtrHandle<ccShapeTree> const outer(new ccShapeTree), inner(new ccShapeTree);
  EXPECT_THROW(outer->addShape(outer), ccShapesError::BadParams);
  outer->addShape(inner);
  EXPECT_THROW(inner->addShape(outer), ccShapesError::BadParams);
  EXPECT_EQ(outer->size(), 1);
  EXPECT_EQ(inner->size(), 0);

  Handle tree(new ccCircle(V(), 1));
  int levels = 0;
  try {
    for (; levels < 5000; ++levels)
      tree = new ccShapeTree({tree});
  } catch (ccShapesError::BadParams const&) {
  }
  EXPECT_EQ(levels, 1000);
  EXPECT_EQ(tree->distanceToPoint(V(3, 0)), 2);
}

namespace {

// A circle that counts how often it is measured.
class Counted : public ccCircle {
public:
  using ccCircle::ccCircle;
  double distanceToPoint(ccVector<2> const& p) const override
  {
    ++measured;
    return ccCircle::distanceToPoint(p);
  }
  mutable int measured = 0;
};

} // namespace

TEST(Extremes, aPartWhoseBoxIsFartherThanTheBestIsNotMeasured)
{
  ccPtrHandle<Counted> const near(new Counted(V(0, 0), 1)), far(new Counted(V(100, 0), 1)),
      touching(new Counted(V(1, 0), 1));
  ccShapeTree const tree({near, far, touching});

  EXPECT_EQ(tree.distToPoint(V(3, 0)), 1);
  EXPECT_EQ(near->measured, 1);
  EXPECT_EQ(far->measured, 0);
  EXPECT_EQ(touching->measured, 1);
}
