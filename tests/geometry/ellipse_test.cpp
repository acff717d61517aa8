#include "geometry/ellipse.h"

#include "geometry/ellipse_arc.h"
#include "tests/geometry/shape_support.h"

using namespace krs_test;

namespace {

ccEllipse randomEllipse(Random& r)
{
  return ccEllipse(r.vector(100), r.magnitude(0.1, 100), r.magnitude(0.1, 100), r.angle());
}

double angleBetween(ccRadian a, ccRadian b) { return std::abs(ccRadian::signedNorm(a - b).value()); }

}  // namespace

TEST(Circle, measuresByHand)
{
  ccCircle const c(V(3, 4), 5);

  EXPECT_EQ(c.distToPoint(V(0, 0)), 0);
  EXPECT_EQ(c.distToPoint(V(3, 4)), 5);
  EXPECT_EQ(c.distToPoint(V(13, 4)), 5);
  EXPECT_EQ(c.encloseRect(), ccRect(V(-2, -1), V(10, 10)));
  expectNear(c.closestPoint(V(3, 50)), V(3, 9), 1e-14);
  EXPECT_EQ(ccCircle(V(1, 1), 0).distToPoint(V(4, 5)), 5);
}

TEST(Circle, badArgumentsChangeNothing)
{
  EXPECT_THROW(ccCircle(V(), -1), ccShapesError::BadParams);
  EXPECT_THROW(ccCircle(V(), kNan), ccShapesError::BadParams);
  EXPECT_THROW(ccCircle(V(0, cfInfinity), 1), ccShapesError::BadParams);
  ccCircle c(V(1, 2), 3);
  EXPECT_THROW(c.radius(-0.1), ccShapesError::BadParams);
  EXPECT_THROW(c.center(V(kNan, 0)), ccShapesError::BadParams);
  EXPECT_EQ(c, ccCircle(V(1, 2), 3));
  c.radius(0);
  c.center(V(9, 9));
  EXPECT_EQ(c, ccCircle(V(9, 9), 0));
}

TEST(Circle, staysACircleUnderSimilaritiesOnly)
{
  ccCircle const c(V(1, 2), 3);
  ccXform<2> const turn(ccMatrix<2>(0, 2, 2, 0), V(5, 5)), uneven(2, 1, V());

  EXPECT_EQ(c.map(turn), ccCircle(V(9, 7), 6));
  EXPECT_THROW(c.map(uneven), ccShapesError::BadParams);
  ccShape const& shape = c;
  EXPECT_EQ(dynamic_cast<ccCircle const&>(*shape.map(turn)), ccCircle(V(9, 7), 6));
  auto const image = shape.map(uneven);
  ccEllipse2 const& e = dynamic_cast<ccEllipse2 const&>(*image);
  EXPECT_EQ(e.center(), V(2, 2));
  EXPECT_NEAR(e.rx(), 6, 1e-14);
  EXPECT_NEAR(e.ry(), 3, 1e-14);
}

TEST(Circle, rigidMovesNeverChangeItsRadius)
{
  ccCircle c(V(1, 2), 0.1);
  for (int i = 0; i < 1000; ++i)
    c = c.map(cc2Rigid(ccDegree(i * 1.1), V(1, 1)).linear());
  EXPECT_EQ(c.radius(), 0.1);
}

TEST(Ellipse, pointsByHand)
{
  ccEllipse const e(V(10, 20), 4, 2, deg(90));  // the long axis points down

  expectNear(e.point(deg(0)), V(10, 24), 1e-14);
  expectNear(e.point(deg(90)), V(8, 20), 1e-14);
  EXPECT_NEAR(e.distToPoint(V(10, 30)), 6, 1e-13);
  EXPECT_NEAR(e.distToPoint(V(15, 20)), 3, 1e-13);
  EXPECT_NEAR(e.distToPoint(V(10, 20)), 2, 1e-13);
  expectNear(e.closestPoint(V(0, 20)), V(8, 20), 1e-13);
  expectNear(e.encloseRect().ul(), V(8, 16), 1e-13);
  expectNear(e.encloseRect().sz(), V(4, 8), 1e-13);
  EXPECT_EQ(e.radii(), V(4, 2));
  EXPECT_EQ(ccEllipse(ccCircle(V(1, 2), 3)), ccEllipse(V(1, 2), V(3, 3), ccRadian(0)));
}

TEST(Ellipse, badArgumentsChangeNothing)
{
  EXPECT_THROW(ccEllipse(V(), -1, 1, ccRadian(0)), ccShapesError::BadParams);
  EXPECT_THROW(ccEllipse(V(), 1, cfInfinity, ccRadian(0)), ccShapesError::BadParams);
  EXPECT_THROW(ccEllipse2(V(kNan, 0), 1, 1, ccRadian(0)), ccShapesError::BadParams);
  EXPECT_THROW(ccEllipse2(V(), 1, 1, ccRadian(kNan)), ccShapesError::BadParams);
  ccEllipse const given(V(1, 2), 3, 4, ccRadian(0.5));
  ccEllipse e = given;
  EXPECT_THROW(e.rx(-1), ccShapesError::BadParams);
  EXPECT_THROW(e.ry(kNan), ccShapesError::BadParams);
  EXPECT_THROW(e.radii(V(7, -1)), ccShapesError::BadParams);
  EXPECT_THROW(e.center(V(0, kNan)), ccShapesError::BadParams);
  EXPECT_THROW(e.rotation(ccRadian(cfInfinity)), ccShapesError::BadParams);
  EXPECT_EQ(e, given);
}

TEST(Ellipse, unitIsTheSymmetricRoot)
{
  Random random(1);
  for (int i = 0; i < rounds(1000); ++i) {
    ccEllipse const e = randomEllipse(random);
    ccMatrix<2> const m = e.unit().matrix();
    EXPECT_NEAR(m.element(0, 1), m.element(1, 0), 1e-15 * (1 / e.rx() + 1 / e.ry()));
    EXPECT_GT(m.determinant(), 0);
    EXPECT_GT(m.element(0, 0) + m.element(1, 1), 0);
    V const v = random.vector(3);
    expectNear(m * (e.fromUnit(v) - e.center()), v, 1e-10);
    // The unit angle is the own angle plus the rotation.
    ccRadian const own = random.angle();
    expectNear(e.fromUnit(V::polar(1, own + e.rotation())), e.point(own), 1e-11);
    expectNear(e.unit().toUnit(e.point(own)), V::polar(1, own + e.rotation()), 1e-10);
  }
}

TEST(Ellipse, unitAngleOfACircleIsTheClientDirectionWhateverItsRotation)
{
  Random random(2);
  for (int i = 0; i < rounds(300); ++i) {
    ccEllipse e(random.vector(100), 7, 7, random.angle());
    e = e.map(cc2Rigid(ccDegree(random.in(-500, 500)), random.vector(10)).linear());
    ccRadian const a = random.angle();
    expectNear(e.fromUnit(V::polar(1, a)), e.center() + V::polar(7, a), 1e-12);
    EXPECT_NEAR(angleBetween(e.unit().toUnit(e.center() + V::polar(20, a)).angle(), a), 0, 1e-12);
  }
}

TEST(Ellipse, unitOfRadiusZeroThrowsAndFromUnitDoesNot)
{
  ccEllipse const flat(V(1, 2), 3, 0, deg(90));

  EXPECT_THROW(flat.unit(), ccShapesError::DegenerateShape);
  EXPECT_THROW(ccEllipse().unit(), ccShapesError::DegenerateShape);
  expectNear(flat.fromUnit(V(0, 1)), V(1, 5), 1e-14);
  expectNear(flat.fromUnit(V(1, 0)), V(1, 2), 1e-14);
  EXPECT_EQ(ccEllipse().fromUnit(V(1, 1)), V(0, 0));
}

TEST(Ellipse, mapsPointByPoint)
{
  Random random(3);
  for (int i = 0; i < rounds(2000); ++i) {
    ccEllipse const e = randomEllipse(random);
    ccXform<2> const x = random.affine();
    ccEllipse const image = e.map(x);
    cs_AngleMap angles;
    cf_mapConic(e.conic(), x, angles);
    ccRadian const own = random.angle();
    expectNear(image.point(angles(own)), x.mapPoint(e.point(own)), 1e-10 * (image.rx() + image.ry() + image.center().len()));
    EXPECT_EQ(angles.sign, x.matrix().determinant() < 0 ? -1 : 1);
    // Labels do not swap: the new first axis stays within 45 degrees of the image of the old one.
    ccRadian const old = x.mapVector(V::polar(1, e.rotation())).angle();
    double const off = angleBetween(image.rotation(), old);
    EXPECT_LE(off, cfPi / 4 + 1e-9);
  }
}

TEST(Ellipse, similaritiesTurnTheRotationAndScaleTheRadii)
{
  ccEllipse const e(V(1, 0), 3, 2, ccRadian(0.3));
  double const c = std::cos(0.4), s = std::sin(0.4);

  ccEllipse const turned = e.map(ccXform<2>(ccMatrix<2>(2 * c, -2 * s, 2 * s, 2 * c), V()));
  EXPECT_NEAR(turned.rotation().value(), 0.7, 1e-15);
  EXPECT_NEAR(turned.rx(), 6, 1e-14);
  EXPECT_NEAR(turned.ry(), 4, 1e-14);
  ccEllipse const mirrored = e.map(ccXform<2>(1, -1, V()));
  EXPECT_NEAR(mirrored.rotation().value(), -0.3, 1e-15);
  EXPECT_EQ(mirrored.radii(), e.radii());
  EXPECT_EQ(e.map(ccXform<2>()), e);
}

TEST(Ellipse, distanceFollowsTheNormal)
{
  // A point at distance d along the outward normal is d away; inward as long as d stays below the least curvature radius.
  Random random(4);
  for (int i = 0; i < rounds(2000); ++i) {
    ccEllipse const e = randomEllipse(random);
    double const a = random.in(0, 2 * cfPi), f = e.rotation().value();
    V const n = V(e.ry() * std::cos(a), e.rx() * std::sin(a)).unit();
    V const outward(std::cos(f) * n.x() - std::sin(f) * n.y(), std::sin(f) * n.x() + std::cos(f) * n.y());
    double const least = std::min(e.rx() * e.rx() / e.ry(), e.ry() * e.ry() / e.rx());
    double const d = random.chance(2) ? random.in(0, 500) : -random.in(0, 0.99) * least;
    V const p = e.point(ccRadian(a)) + outward * d;
    EXPECT_NEAR(e.distToPoint(p), std::abs(d), 1e-10 * (e.rx() + e.ry() + 100));
    expectNear(e.closestPoint(p), e.point(ccRadian(a)), 1e-5 * (e.rx() + e.ry()));
  }
}

TEST(Ellipse2, degenerateImagesOfAProjectionToALine)
{
  Random random(5);
  for (int i = 0; i < rounds(500); ++i) {
    ccEllipse2 const e(randomEllipse(random));
    V const d = V::polar(1, random.angle());
    ccXform<2> const onto(ccMatrix<2>(d.x() * d.x(), d.x() * d.y(), d.x() * d.y(), d.y() * d.y()), V());
    ccEllipse2 const image = e.map(onto);
    ASSERT_TRUE(image.isDegenerate());
    // How far the ellipse reaches along d, by its axes.
    double const c = std::cos(e.rotation().value()), s = std::sin(e.rotation().value());
    double const reach = std::hypot(e.rx() * (c * d.x() + s * d.y()), e.ry() * (-s * d.x() + c * d.y()));
    ccPoint first, last;
    image.degenerateSegment(first, last);
    V const center = d * e.center().dot(d);
    double const tolerance = 1e-10 * (reach + 100);
    EXPECT_NEAR(first.distance(last), 2 * reach, tolerance);
    EXPECT_NEAR(std::min(first.distance(center + d * reach), last.distance(center + d * reach)), 0, tolerance);
    V const q = random.vector(200);
    EXPECT_NEAR(image.distToPoint(q), cf_segmentDistance(center - d * reach, center + d * reach, q), tolerance);
    EXPECT_NO_THROW(image.oldEllipse());
  }
}

TEST(Ellipse2, isDegenerateByTheRatioOfItsRadii)
{
  EXPECT_TRUE(ccEllipse2().isDegenerate());
  EXPECT_TRUE(ccEllipse2(V(), 1, 0, ccRadian(0)).isDegenerate());
  EXPECT_TRUE(ccEllipse2(V(), 0.9e-9, 1000, ccRadian(0)).isDegenerate());
  EXPECT_FALSE(ccEllipse2(V(), 1.1e-9, 1000, ccRadian(0)).isDegenerate());
  EXPECT_EQ(ccEllipse2(V(1, 2), 3, 0, ccRadian(4)).oldEllipse(), ccEllipse(V(1, 2), 3, 0, ccRadian(4)));
}

TEST(Ellipse2, theFlatSecondAxisLiesAQuarterTurnOn)
{
  ccPoint first, last;
  ccEllipse2(V(1, 1), 0, 5, deg(0)).degenerateSegment(first, last);
  EXPECT_NEAR(std::abs(first.y() - 1), 5, 1e-14);
  EXPECT_NEAR(first.x(), 1, 1e-14);
  EXPECT_NEAR(first.distance(last), 10, 1e-14);
}

TEST(EllipseArc, pointsAndDistanceByHand)
{
  ccEllipseArc const arc(ccEllipse(V(0, 0), 5, 5, deg(90)), deg(0), deg(-90));  // from (0, 5) to (5, 0)

  expectNear(arc.startPoint(), V(0, 5), 1e-14);
  expectNear(arc.endPoint(), V(5, 0), 1e-14);
  expectNear(arc.midPoint(), V(5, 5) * std::sqrt(0.5), 1e-14);
  EXPECT_NEAR(arc.distToPoint(V(3, 4)), 0, 1e-14);
  EXPECT_NEAR(arc.distToPoint(V(-12, 5)), 12, 1e-13);  // nearer to the start
  EXPECT_NEAR(arc.distToPoint(V(5, -3)), 3, 1e-13);
  EXPECT_NEAR(arc.distToPoint(V(0, 0)), 5, 1e-14);
  expectNear(arc.encloseRect().ul(), V(0, 0), 1e-13);
  expectNear(arc.encloseRect().sz(), V(5, 5), 1e-13);
  expectNear(arc.closestPoint(V(6, 8)), V(3, 4), 1e-13);
}

TEST(EllipseArc, spanIsAtMostAFullTurn)
{
  ccEllipse const e(V(), 2, 1, ccRadian(0));
  EXPECT_THROW(ccEllipseArc(e, ccRadian(0), ccRadian(2 * cfPi + 1e-9)), ccShapesError::BadParams);
  EXPECT_THROW(ccEllipseArc(e, ccRadian(kNan), ccRadian(1)), ccShapesError::BadParams);
  EXPECT_THROW(ccEllipseArc2(ccEllipse2(e), ccRadian(0), ccRadian(kNan)), ccShapesError::BadParams);
  ccEllipseArc arc(e, ccRadian(1), ccRadian(ccDegree(-360)));
  EXPECT_THROW(arc.span(ccRadian(7)), ccShapesError::BadParams);
  EXPECT_THROW(arc.start(ccRadian(cfInfinity)), ccShapesError::BadParams);
  EXPECT_EQ(arc.start(), ccRadian(1));
  EXPECT_NEAR(arc.span().value(), -2 * cfPi, 1e-15);
}

TEST(EllipseArc, spansContainTheirAnglesInEveryTurn)
{
  ccEllipseArc2 const arc(ccEllipse2(V(), 2, 1, ccRadian(0)), deg(350), deg(30));
  EXPECT_TRUE(arc.isInSpan(deg(355)));
  EXPECT_TRUE(arc.isInSpan(deg(-10)));
  EXPECT_TRUE(arc.isInSpan(deg(20 + 720)));
  EXPECT_FALSE(arc.isInSpan(deg(20.001)));
  EXPECT_FALSE(arc.isInSpan(deg(349.999)));
  EXPECT_TRUE(arc.isInSpan(deg(20) + ccRadian(0.5e-12)));
  EXPECT_FALSE(arc.isInSpan(deg(20) + ccRadian(2e-12)));
  EXPECT_TRUE(arc.isInSpan(deg(350) - ccRadian(0.5e-12)));
  ccEllipseArc2 const back = arc.reversed();
  EXPECT_TRUE(back.isInSpan(deg(0)));
  EXPECT_FALSE(back.isInSpan(deg(40)));
  EXPECT_TRUE(ccEllipseArc2(ccEllipse2(), deg(77), deg(360)).isInSpan(deg(76)));
  EXPECT_TRUE(ccEllipseArc2(ccEllipse2(), deg(77), deg(0)).isInSpan(deg(77)));
  EXPECT_FALSE(ccEllipseArc2(ccEllipse2(), deg(77), deg(0)).isInSpan(deg(78)));
}

TEST(EllipseArc, phiIsTheDirectionInTheOwnAxes)
{
  Random random(6);
  for (int i = 0; i < rounds(1000); ++i) {
    ccEllipseArc const arc(ccEllipse(V(3, 4), random.magnitude(0.1, 10), random.magnitude(0.1, 10), random.angle()),
                           random.angle(), deg(random.in(-360, 360)));
    struct {
      ccRadian phi, own;
      V point;
    } const ends[] = {{arc.phiStart(), arc.start(), arc.startPoint()},
                      {arc.phiEnd(), arc.start() + arc.span(), arc.endPoint()}};
    for (auto const& end : ends) {
      EXPECT_NEAR(angleBetween(end.phi + arc.ellipse().rotation(), (end.point - V(3, 4)).angle()), 0, 1e-9);
      EXPECT_LE(std::abs((end.phi - end.own).value()), cfPi / 2);  // unwrapped, not only modulo a turn
    }
  }
  EXPECT_EQ(ccEllipseArc(ccEllipse(), ccRadian(5), ccRadian(1)).phiStart(), ccRadian(5));
}

TEST(EllipseArc, endsAndMiddleMapAndMirrorsTurnTheSpan)
{
  Random random(7);
  for (int i = 0; i < rounds(1500); ++i) {
    ccEllipseArc2 const arc(ccEllipse2(randomEllipse(random)), random.angle(), deg(random.in(-360, 360)));
    ccXform<2> const x = random.chance(3) ? random.similarity(2, random.chance(2)) : random.affine();
    ccEllipseArc2 const image = arc.map(x);
    for (double const t : {0.0, 0.25, 0.5, 1.0})
      expectNear(image.pointAt(t), x.mapPoint(arc.pointAt(t)),
                 1e-9 * (image.ellipse().rx() + image.ellipse().ry() + x.trans().len() + 100));
    EXPECT_EQ(image.span(), x.matrix().determinant() < 0 ? -arc.span() : arc.span());
    EXPECT_EQ(ccEllipseArc2(arc.oldEllipseArc().map(x)), image);
  }
}

TEST(EllipseArc, degenerateArcsCoverTheExtremesInTheirSpan)
{
  ccPoint first, last;
  // rx only: the position is 5 cos t. From 30 to 200 degrees it passes 180, not 0.
  ccEllipseArc2 const alongX(ccEllipse2(V(0, 0), 5, 0, ccRadian(0)), deg(30), deg(170));
  alongX.degenerateSegment(first, last);
  EXPECT_TRUE(alongX.isDegenerate());
  expectNear(first, V(-5, 0), 1e-13);
  expectNear(last, V(5 * std::sqrt(0.75), 0), 1e-13);
  // ry only: 5 sin t along the second axis. From 100 to 260 degrees there is neither +90 nor -90.
  ccEllipseArc2(ccEllipse2(V(0, 0), 0, 5, ccRadian(0)), deg(100), deg(160)).degenerateSegment(first, last);
  expectNear(first, V(0, 5 * std::sin(260 * cfPi / 180)), 1e-13);
  expectNear(last, V(0, 5 * std::sin(100 * cfPi / 180)), 1e-13);
  ccEllipseArc2(ccEllipse2(V(0, 0), 0, 5, ccRadian(0)), deg(80), deg(20)).degenerateSegment(first, last);
  EXPECT_NEAR(last.y(), 5, 1e-13);
}

TEST(EllipseArc, degenerateSegmentsHoldTheWholeArc)
{
  Random random(8);
  for (int i = 0; i < rounds(500); ++i) {
    bool const x = random.chance(2);
    ccEllipseArc2 const arc(ccEllipse2(random.vector(10), x ? 4 : 0, x ? 0 : 4, random.angle()), random.angle(),
                            deg(random.in(-360, 360)));
    ccPoint first, last;
    arc.degenerateSegment(first, last);
    V const q = random.vector(20);
    EXPECT_NEAR(arc.distToPoint(q), cf_segmentDistance(first, last, q), 1e-10);
  }
}

TEST(EllipseArc, piecesLieOnTheEllipse)
{
  Random random(9);
  for (int i = 0; i < rounds(500); ++i) {
    ccEllipse const e(V(), 7, 3, ccRadian(0));
    ccRadian const start = random.angle(), span = deg(random.in(-360, 360));
    int const n = cf_numPieces(span);
    EXPECT_LE(std::abs(span.value()) / n, cfPi / 2 + 1e-9);
    V last = e.point(start);
    for (int k = 0; k < n; ++k) {
      cs_RationalCurve const piece = cf_piece(e.conic(), start, span, k);
      expectNear(piece.points[0], last, 1e-12);
      for (double t = 0; t <= 1; t += 0.125) {
        V const p = piece.at(t);
        EXPECT_NEAR(p.x() * p.x() / 49 + p.y() * p.y() / 9, 1, 1e-13);
      }
      last = piece.points[2];
    }
    expectNear(last, e.point(start + span), 1e-12);
  }
  EXPECT_EQ(cf_numPieces(deg(0)), 1);
  EXPECT_EQ(cf_numPieces(deg(90)), 1);
  EXPECT_EQ(cf_numPieces(deg(-90.1)), 2);
  EXPECT_EQ(cf_numPieces(deg(270)), 3);
  EXPECT_EQ(cf_numPieces(deg(-360)), 4);
}
