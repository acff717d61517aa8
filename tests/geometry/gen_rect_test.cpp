#include "geometry/gen_rect.h"

#include "tests/geometry/shape_support.h"

using namespace krs_test;

namespace {

void expectSame(ccGenRect const& a, ccGenRect const& b, double tolerance)
{
  expectNear(a.center(), b.center(), tolerance);
  EXPECT_NEAR(a.hx(), b.hx(), tolerance);
  EXPECT_NEAR(a.hy(), b.hy(), tolerance);
  EXPECT_NEAR(ccRadian::signedNorm(a.orient() - b.orient()).value(), 0, 1e-9);
  EXPECT_NEAR(a.skew().value(), b.skew().value(), 1e-9);
  EXPECT_EQ(a.handed(), b.handed());
  expectNear(a.rounding(), b.rounding(), 1e-12);
}

ccGenRect randomRect(Random& r)
{
  return ccGenRect(r.vector(100), r.magnitude(0.1, 100), r.magnitude(0.1, 100), r.chance(2) ? 1 : -1, deg(r.in(-75, 75)),
                   deg(r.in(-720, 720)), V(r.in(0, 1), r.in(0, 1)));
}

// The formula of the map from the unit square, spelled out: turn after lean.
V unitToOffset(ccGenRect const& g, V const& u)
{
  double const x = g.hx() * u.x() + g.handed() * g.hy() * std::tan(g.skew().value()) * u.y();
  double const y = g.handed() * g.hy() * u.y();
  double const c = std::cos(g.orient().value()), s = std::sin(g.orient().value());
  return V(c * x - s * y, s * x + c * y);
}

}  // namespace

TEST(GenRect, genRectMatrixIsTheInverseOfTheUnitMap)
{
  Random random(1);
  for (int i = 0; i < rounds(3000); ++i) {  // all quadrants of orientation, both signs of skew and handedness
    ccGenRect const g = randomRect(random);
    ccMatrix<2> const m = genRectMatrix(g.hx(), g.handed() * g.hy() / g.hx(), g.skew(), g.orient());
    V const u = random.vector(2);
    expectNear(m * unitToOffset(g, u), u, 1e-10);
    expectNear(g.matrix() * unitToOffset(g, u), u, 1e-10);
    expectNear(g.fromUnit(u), unitToOffset(g, u), 1e-11);
    expectNear(g.toUnit(g.fromUnit(u)), u, 1e-11);
    // Angles in any turn give the same matrix.
    ccMatrix<2> const same = genRectMatrix(g.hx(), g.handed() * g.hy() / g.hx(), g.skew() + deg(360), g.orient() - deg(720));
    expectNear(same * V(1, 2), m * V(1, 2), 1e-9 * (1 + (m * V(1, 2)).len()));
  }
}

TEST(GenRect, genRectMatrixByHand)
{
  // hx 4, ratio 1/2, no skew, a quarter turn: x offset -> -y unit by 1/2, y offset -> x unit by 1/4.
  ccMatrix<2> const m = genRectMatrix(4, 0.5, ccRadian(0), deg(90));
  expectNear(m * V(0, 4), V(1, 0), 1e-15);
  expectNear(m * V(-2, 0), V(0, 1), 1e-15);
  EXPECT_THROW(genRectMatrix(0, 1, ccRadian(0), ccRadian(0)), ccShapesError::DegenerateShape);
  EXPECT_THROW(genRectMatrix(1, 0, ccRadian(0), ccRadian(0)), ccShapesError::DegenerateShape);
}

TEST(GenRect, parametersReadBackFromTheMatrix)
{
  Random random(2);
  for (int i = 0; i < rounds(3000); ++i) {
    ccGenRect const g = randomRect(random);
    expectSame(ccGenRect(g.center(), g.matrix(), g.rounding()), g, 1e-9 * (g.hx() + g.hy()));
  }
}

TEST(GenRect, theRotationHandleGivesTheOrientation)
{
  Random random(3);
  for (int i = 0; i < rounds(500); ++i) {
    ccGenRect const g = randomRect(random);
    expectNear(g.fromUnit(V(1, 0)), V::polar(g.hx(), g.orient()), 1e-11);
    EXPECT_GE(g.orient().value(), 0);
    EXPECT_LT(g.orient().value(), 2 * cfPi);
  }
}

TEST(GenRect, skewLeansTheYSideTowardsX)
{
  ccGenRect const g(V(0, 0), 10, 5, 1, deg(45), deg(0), V());

  expectNear(g.fromUnit(V(0, 1)), V(5, 5), 1e-14);
  expectNear(g.fromUnit(V(1, 1)), V(15, 5), 1e-14);
  ccGenRect const mirrored(V(0, 0), 10, 5, -1, deg(45), deg(0), V());
  expectNear(mirrored.fromUnit(V(0, 1)), V(-5, -5), 1e-14);
}

TEST(GenRect, lengthsFormCutsTheRoundingToTheHalfLengths)
{
  ccGenRect const g(V(1, 2), V(8, 4), deg(-90), V(2, 100));

  EXPECT_EQ(g.rounding(), V(0.25, 1));
  EXPECT_EQ(g.round(), V(2, 4));
  EXPECT_NEAR(g.orient().value(), 1.5 * cfPi, 1e-14);
  EXPECT_EQ(ccGenRect(V(), V(0, 4), deg(0), V(3, 3)).rounding(), V(0, 0.75));  // no length, no fraction
  EXPECT_EQ(ccGenRect(V(), V(0, 4), deg(0), V(3, 3)).round(), V(0, 3));
}

TEST(GenRect, aCircleIsARectangleRoundedThroughout)
{
  ccGenRect const g(V(5, 6), V(7, 7), ccRadian(0), V(7, 7));

  EXPECT_EQ(g, ccGenRect(ccCircle(V(5, 6), 7)));
  EXPECT_NEAR(g.distToPoint(V(5 + 30, 6 + 40)), 43, 1e-12);
  EXPECT_NEAR(g.distToPoint(V(5, 6)), 7, 1e-12);
  EXPECT_EQ(ccGenRect(ccEllipse(V(1, 2), 3, 4, deg(30))).rounding(), V(1, 1));
  EXPECT_EQ(ccGenRect(ccEllipse2(V(1, 2), 3, 4, deg(30))), ccGenRect(ccEllipse(V(1, 2), 3, 4, deg(30))));
}

TEST(GenRect, equalsTheEllipseItWasMadeOf)
{
  Random random(4);
  for (int i = 0; i < rounds(300); ++i) {
    ccEllipse const e(random.vector(100), random.magnitude(0.1, 100), random.magnitude(0.1, 100), random.angle());
    V const p = random.vector(200);
    EXPECT_NEAR(ccGenRect(e).distToPoint(p), e.distToPoint(p), 1e-10);
    ccXform<2> const x = random.affine();
    EXPECT_NEAR(ccGenRect(e).map(x).distToPoint(x.mapPoint(p)), e.map(x).distToPoint(x.mapPoint(p)),
                1e-9 * (e.map(x).rx() + e.map(x).ry() + x.trans().len()));
  }
}

TEST(GenRect, comesFromARect)
{
  EXPECT_EQ(ccGenRect(ccRect(V(10, 20), V(-4, 6))), ccGenRect(V(8, 23), V(2, 3), ccRadian(0), V()));
}

TEST(GenRect, distanceOfARoundedCornerByHand)
{
  // Corner arcs of radius 2 about (8, 3) and so on.
  ccGenRect const g(V(0, 0), V(10, 5), ccRadian(0), V(2, 2));

  EXPECT_NEAR(g.distToPoint(V(8 + 3, 3 + 4)), 3, 1e-13);
  EXPECT_NEAR(g.distToPoint(V(-8, -3)), 2, 1e-13);
  EXPECT_NEAR(g.distToPoint(V(0, 0)), 5, 1e-13);
  EXPECT_NEAR(g.distToPoint(V(10, 5)), std::sqrt(8.0) - 2, 1e-13);
  EXPECT_NEAR(g.distToPoint(V(14, 1)), 4, 1e-13);
}

TEST(GenRect, badArgumentsThrow)
{
  V const c(1, 2), none;
  EXPECT_THROW(ccGenRect(c, V(-1, 1), ccRadian(0), none), ccShapesError::BadParams);
  EXPECT_THROW(ccGenRect(c, V(1, 1), ccRadian(0), V(-1, 0)), ccShapesError::BadParams);
  EXPECT_THROW(ccGenRect(c, V(1, kNan), ccRadian(0), none), ccShapesError::BadParams);
  EXPECT_THROW(ccGenRect(V(kNan, 0), V(1, 1), ccRadian(0), none), ccShapesError::BadParams);
  EXPECT_THROW(ccGenRect(c, 1, 1, 0, ccRadian(0), ccRadian(0), none), ccShapesError::BadParams);
  EXPECT_THROW(ccGenRect(c, 1, 1, 1, deg(91), ccRadian(0), none), ccShapesError::BadParams);
  EXPECT_THROW(ccGenRect(c, 1, 1, 1, ccRadian(kNan), ccRadian(0), none), ccShapesError::BadParams);
  EXPECT_THROW(ccGenRect(c, 1, 1, 1, ccRadian(0), ccRadian(cfInfinity), none), ccShapesError::BadParams);
  EXPECT_THROW(ccGenRect(c, ccMatrix<2>(1, 2, 2, 4), none), ccShapesError::DegenerateShape);
  EXPECT_THROW(ccGenRect(c, ccMatrix<2>(kNan, 0, 0, 1), none), ccShapesError::DegenerateShape);
  EXPECT_THROW(ccGenRect(c, ccMatrix<2>(cfInfinity, 0, 0, 1), none), ccShapesError::DegenerateShape);
  ccGenRect g(c, V(1, 1), ccRadian(0), none);
  EXPECT_THROW(g.rounding(V(0.5, kNan)), ccShapesError::BadParams);
  EXPECT_THROW(g.center(V(kNan, 0)), ccShapesError::BadParams);
  EXPECT_EQ(g, ccGenRect(c, V(1, 1), ccRadian(0), none));
}

TEST(GenRect, withoutExtentOnlyItsMatrixThrows)
{
  ccGenRect const line(V(1, 2), V(5, 0), deg(90), V());

  EXPECT_THROW(line.matrix(), ccShapesError::DegenerateShape);
  EXPECT_THROW(ccGenRect().matrix(), ccShapesError::DegenerateShape);
  expectNear(line.fromUnit(V(1, 1)), V(0, 5), 1e-14);
  expectNear(line.toUnit(V(3, 5)), V(1, 0), 1e-14);  // 0 on the axis without length
  EXPECT_EQ(ccGenRect().toUnit(V(3, 5)), V(0, 0));
  EXPECT_NEAR(line.distToPoint(V(4, 2)), 3, 1e-14);
  EXPECT_EQ(ccGenRect().distToPoint(V(3, 4)), 5);
}

TEST(GenRect, mapsLikeItsUnitSquare)
{
  Random random(5);
  for (int i = 0; i < rounds(2000); ++i) {
    ccGenRect const g = randomRect(random);
    ccXform<2> const x = random.chance(3) ? random.similarity(3, random.chance(2)) : random.affine();
    ccGenRect const image = g.map(x);
    V const u = random.vector(1);
    expectNear(image.center() + image.fromUnit(u), x.mapPoint(g.center() + g.fromUnit(u)), 1e-8 * (1 + image.hx() + image.hy()));
    EXPECT_EQ(image.rounding(), g.rounding());  // fractions survive every map
    EXPECT_EQ(image.handed(), x.matrix().determinant() < 0 ? -g.handed() : g.handed());
  }
}

TEST(GenRect, aFlatOneMapsExactly)
{
  ccXform<2> const lean(ccMatrix<2>(1, 1, 0, 1), V(100, 0));
  ccGenRect const line(V(2, 3), V(5, 0), deg(90), V());

  ccGenRect const image = line.map(lean);  // the half side (0, 5) becomes (5, 5)
  expectNear(image.center(), V(105, 3), 1e-13);
  EXPECT_NEAR(image.hx(), 5 * std::sqrt(2.0), 1e-13);
  EXPECT_EQ(image.hy(), 0);
  EXPECT_NEAR(image.orient().value(), cfPi / 4, 1e-14);
  expectSame(image.map(lean.inverse()), line, 1e-12);
}

TEST(GenRect, flatImages)
{
  ccGenRect const g(V(2, 3), V(5, 4), deg(0), V());

  ccGenRect const onX = g.map(ccXform<2>(1, 0, V()));
  expectSame(onX, ccGenRect(V(2, 0), V(5, 0), deg(0), V()), 1e-14);
  EXPECT_EQ(onX.handed(), 1);
  ccGenRect const onY = g.map(ccXform<2>(0, 2, V()));  // the x side vanishes
  EXPECT_EQ(onY.hx(), 0);
  EXPECT_NEAR(onY.hy(), 8, 1e-14);
  EXPECT_NEAR(onY.orient().value(), 0, 1e-14);
  expectNear(onY.fromUnit(V(0, 1)), V(0, 8), 1e-13);
  ccGenRect const gone = g.map(ccXform<2>(0, 0, V(9, 9)));
  EXPECT_EQ(gone.halfLengths(), V(0, 0));
  EXPECT_EQ(gone.center(), V(9, 9));
  // A projection that is flat by rounding only.
  double const c = std::cos(0.3), s = std::sin(0.3);
  ccGenRect const tilted = g.map(ccXform<2>(ccMatrix<2>(c * c, c * s, c * s, s * s), V()));
  EXPECT_EQ(tilted.hy(), 0);
  EXPECT_NEAR(tilted.orient().value(), 0.3, 1e-13);
}

TEST(GenRect, rigidMovesNeverChangeLengthsOrRounding)
{
  ccGenRect g(V(3, 4), 17.3, 2.9, -1, deg(20), deg(5), V(0.3, 0.7));
  for (int i = 0; i < 1000; ++i)
    g = g.map(cc2Rigid(ccDegree(0.37 * i), V(1, -2)).linear());

  EXPECT_EQ(g.halfLengths(), V(17.3, 2.9));
  EXPECT_EQ(g.skew(), deg(20));
  EXPECT_EQ(g.rounding(), V(0.3, 0.7));
}

TEST(GenRect, boxOfARoundedTurnedOneByHand)
{
  // A square of half length 5 turned by 45 degrees, corners of radius 2 (fraction 0.4): the corner centres lie
  // 3 sqrt 2 out, the box 2 further.
  ccGenRect const g(V(0, 0), V(5, 5), deg(45), V(2, 2));

  EXPECT_NEAR(g.encloseRect().lr().x(), 3 * std::sqrt(2.0) + 2, 1e-13);
  EXPECT_NEAR(g.encloseRect().ul().y(), -3 * std::sqrt(2.0) - 2, 1e-13);
}

TEST(GenRect, xformToTakesOneToTheOther)
{
  Random random(6);
  for (int i = 0; i < rounds(1000); ++i) {
    ccGenRect const a = randomRect(random), b = randomRect(random);
    ccXform<2> const x = a.xformTo(b);
    V const u = random.vector(1);
    expectNear(x.mapPoint(a.center() + a.fromUnit(u)), b.center() + b.fromUnit(u), 1e-9 * (1 + b.hx() + b.hy()) * 100);
    EXPECT_EQ(a.xformTo(a).matrix(), ccMatrix<2>());
    expectNear(a.xformTo(a).trans(), V(), 0);
  }
}

TEST(GenRect, xformToFromADegenerateBaseOnlyMovesAndTurnsIt)
{
  ccGenRect const point(V(3, 4), V(0, 0), deg(0), V()), other(V(13, 24), V(5, 7), deg(90), V());

  ccXform<2> const x = point.xformTo(other);
  expectNear(x.mapPoint(V(3, 4)), V(13, 24), 1e-13);
  expectNear(x.mapVector(V(1, 0)), V(0, 1), 1e-14);  // a pure turn, whatever the size of the other
  expectNear(x.mapVector(V(0, 1)), V(-1, 0), 1e-14);
  EXPECT_NO_THROW(x.inverse());

  ccGenRect const line(V(0, 0), V(2, 0), deg(0), V());
  ccXform<2> const y = line.xformTo(ccGenRect(V(0, 0), V(6, 9), deg(0), V()));
  expectNear(y.mapVector(V(1, 1)), V(3, 1), 1e-14);  // only the axis with length is stretched
}

TEST(GenRect, aSizeDragWithoutSkewMeetsPointerAndFixedPoint)
{
  Random random(7);
  for (int i = 0; i < rounds(1000); ++i) {
    ccGenRect const g(random.vector(100), random.in(1, 50), random.in(1, 50), random.chance(2) ? 1 : -1, ccRadian(0),
                      random.angle(), V(0.2, 0.4));
    V const unit(random.chance(2) ? 1 : -1, random.chance(2) ? 1 : -1);
    V const fixed = g.center() + g.fromUnit(-unit), p = random.vector(200);
    auto const d = cfGenRectSize(g, unit, fixed, p, false, false);
    ASSERT_TRUE(d);
    // The lengths carry no sign, so past the fixed point another corner lies there.
    double toPointer = cfInfinity, toFixed = cfInfinity;
    for (V const& u : {V(1, 1), V(1, -1), V(-1, -1), V(-1, 1)}) {
      toPointer = std::min(toPointer, (d->center() + d->fromUnit(u)).distance(p));
      toFixed = std::min(toFixed, (d->center() + d->fromUnit(u)).distance(fixed));
    }
    EXPECT_LE(toPointer, 1e-10);
    EXPECT_LE(toFixed, 1e-10);
    EXPECT_EQ(d->rounding(), g.rounding());
    EXPECT_EQ(d->orient(), g.orient());
    EXPECT_EQ(d->handed(), g.handed());
  }
}

TEST(GenRect, aSizeDragAboutTheCentreAndWithFixedRatio)
{
  ccGenRect const g(V(10, 10), V(8, 4), deg(0), V());

  auto const centred = cfGenRectSize(g, V(1, 1), V(2, 6), V(30, 13), true, false);
  ASSERT_TRUE(centred);
  expectSame(*centred, ccGenRect(V(10, 10), V(20, 3), deg(0), V()), 1e-13);
  auto const even = cfGenRectSize(g, V(1, 1), V(2, 6), V(22, 99), false, true);  // y follows x
  ASSERT_TRUE(even);
  EXPECT_NEAR(even->hx(), 10, 1e-13);
  EXPECT_NEAR(even->hy(), 5, 1e-13);
  EXPECT_FALSE(cfGenRectSize(g, V(1, 1), V(2, 6), V(2, 50), false, false));  // no width
  EXPECT_FALSE(cfGenRectSize(g, V(1, 1), V(2, 6), V(50, 6), false, false));
  EXPECT_FALSE(cfGenRectSize(g, V(1, 1), V(2, 6), V(kNan, 6), false, false));
}

TEST(GenRect, aHandleOfOneSideChangesOnlyItsLength)
{
  ccGenRect const g(V(0, 0), V(8, 4), deg(0), V());

  auto const wide = cfGenRectSize(g, V(1, -0.25), V(-8, 1), V(20, 77), true, false);
  ASSERT_TRUE(wide);
  EXPECT_EQ(wide->halfLengths(), V(20, 4));
  auto const high = cfGenRectSize(g, V(-0.25, 1), V(2, -4), V(20, 77), true, false);
  ASSERT_TRUE(high);
  EXPECT_EQ(high->halfLengths(), V(8, 77));
}

TEST(GenRect, aSizeDragOfLengthZeroIsNeutralWithoutSkew)
{
  ccGenRect const g(V(10, 20), V(8, 4), deg(30), V(1, 2));
  V const corner = g.center() + g.fromUnit(V(-1, 1)), fixed = g.center() + g.fromUnit(V(1, -1));

  auto const d = cfGenRectSize(g, V(-1, 1), fixed, corner, false, false);
  ASSERT_TRUE(d);
  expectSame(*d, g, 1e-13);
}

TEST(GenRect, aRoundingDragRoundTrips)
{
  Random random(8);
  for (int i = 0; i < rounds(1000); ++i) {
    ccGenRect const g = randomRect(random);
    V const unit(random.chance(2) ? 1 : -1, random.chance(2) ? 1 : -1), f(random.in(0, 1), random.in(0, 1));
    // The handle stands at the centre of the corner's ellipse.
    V const handle = g.center() + unitToOffset(g, V((1 - f.x()) * unit.x(), (1 - f.y()) * unit.y()));
    auto const d = cfGenRectRound(g, unit, handle);
    ASSERT_TRUE(d);
    expectNear(d->rounding(), f, 1e-9);
    EXPECT_EQ(d->halfLengths(), g.halfLengths());
  }
}

TEST(GenRect, aRoundingDragIsClamped)
{
  ccGenRect const g(V(0, 0), V(10, 10), deg(0), V());

  EXPECT_EQ(cfGenRectRound(g, V(1, 1), V(50, -3))->rounding(), V(0, 1));
  EXPECT_EQ(cfGenRectRound(g, V(-1, 1), V(-5, 99))->rounding(), V(0.5, 0));
  EXPECT_FALSE(cfGenRectRound(g, V(1, 1), V(kNan, 0)));
}

TEST(GenRect, outlineHasFourArcsOrNone)
{
  Sampler const square(ccGenRect(V(0, 0), V(4, 3), deg(0), V()), 2);
  EXPECT_EQ(square.arcs, 0);
  EXPECT_EQ(square.closes, 1);
  Sampler const rounded(ccGenRect(V(0, 0), V(4, 3), deg(0), V(1, 1)), 2);
  EXPECT_EQ(rounded.arcs, 4);
  EXPECT_EQ(rounded.lines, 3);  // the last one closes
  Sampler const ellipse(ccGenRect(V(0, 0), V(4, 3), deg(0), V(4, 3)), 2);
  EXPECT_EQ(ellipse.arcs, 4);
  EXPECT_EQ(ellipse.lines, 0);
}
