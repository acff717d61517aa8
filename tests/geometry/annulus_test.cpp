#include "geometry/annulus.h"

#include "geometry/annulus_section.h"
#include "tests/geometry/shape_support.h"

using namespace krs_test;

namespace {

using Section = ccEllipseAnnulusSection;

double angleBetween(ccRadian a, ccRadian b) { return std::abs(ccRadian::signedNorm(a - b).value()); }

Section randomSector(Random& r)
{
  double const inner = r.in(20, 100);
  ccRadian const start = r.angle();
  return Section(r.vector(100), inner, inner + r.in(5, 50), start, start + deg(r.in(5, 300)), r.chance(2), r.chance(2),
                 true);
}

V corner(ccEllipse const& e, ccRadian unitAngle)
{
  // U = R(f) diag(rx, ry) R(-f), spelled out.
  double const f = e.rotation().value(), a = unitAngle.value() - f;
  double const x = e.rx() * std::cos(a), y = e.ry() * std::sin(a);
  return e.center() + V(std::cos(f) * x - std::sin(f) * y, std::sin(f) * x + std::cos(f) * y);
}

}  // namespace

TEST(EllipseAnnulus, isAsFarAsTheNearerEllipse)
{
  ccEllipseAnnulus const ring(ccEllipse(V(1, 1), 2, 2, ccRadian(0)), ccEllipse(V(1, 1), 10, 5, ccRadian(0)));

  EXPECT_NEAR(ring.distToPoint(V(1, 1)), 2, 1e-13);
  EXPECT_NEAR(ring.distToPoint(V(1, 5)), 1, 1e-13);   // 2 above the inner one, 1 below the outer one
  EXPECT_NEAR(ring.distToPoint(V(15, 1)), 4, 1e-13);
  expectNear(ring.encloseRect().ul(), V(-9, -4), 1e-13);
  expectNear(ring.encloseRect().sz(), V(20, 10), 1e-13);
  EXPECT_EQ(ring.center(), V(1, 1));
}

TEST(EllipseAnnulus, centresAgreeWithinTheTolerance)
{
  ccEllipse const e(V(1e6, 0), 100, 50, ccRadian(0));  // 1e-9 of 100 plus 1e-12 of 1e6: 1.1e-6

  EXPECT_NO_THROW(ccEllipseAnnulus(e, ccEllipse(V(1e6, 1e-6), 5, 5, ccRadian(0))));
  EXPECT_THROW(ccEllipseAnnulus(e, ccEllipse(V(1e6, 1.2e-6), 5, 5, ccRadian(0))), ccShapesError::BadParams);
}

TEST(GenAnnulus, isMadeOfHalfLengthsAndRoundingLengths)
{
  ccGenAnnulus const ring(V(5, 6), V(10, 8), V(20, 16), deg(30), V(2, 2), V(5, 4));

  EXPECT_EQ(ring.first(), ccGenRect(V(5, 6), V(10, 8), deg(30), V(2, 2)));
  EXPECT_EQ(ring.second(), ccGenRect(V(5, 6), V(20, 16), deg(30), V(5, 4)));
  EXPECT_EQ(ccGenAnnulus(ring.first(), ring.second()), ring);
  EXPECT_EQ(ring.center(), V(5, 6));
  EXPECT_EQ(ccGenAnnulus(ring.second(), ring.first()).first(), ring.second());  // no nesting is asked
}

TEST(GenAnnulus, movingItsCentreMovesBoth)
{
  ccGenAnnulus ring(ccGenRect(V(1, 1), V(2, 2), deg(0), V()), ccGenRect(V(2, 3), V(5, 5), deg(0), V()));

  ring.center(V(11, 21));
  EXPECT_EQ(ring.first().center(), V(11, 21));
  EXPECT_EQ(ring.second().center(), V(12, 23));
  EXPECT_THROW(ring.center(V(kNan, 0)), ccShapesError::BadParams);
  EXPECT_EQ(ring.second().center(), V(12, 23));
}

TEST(GenAnnulus, isAsFarAsTheNearerRectangle)
{
  ccGenAnnulus const ring(V(0, 0), V(4, 4), V(10, 10), deg(0), V(), V());

  EXPECT_EQ(ring.distToPoint(V(0, 0)), 4);
  EXPECT_EQ(ring.distToPoint(V(9, 0)), 1);
  EXPECT_EQ(ring.distToPoint(V(5, 0)), 1);
}

TEST(AnnulusSection, spanAndMiddle)
{
  Section const s(V(0, 0), 50, 100, deg(350), deg(20));

  EXPECT_NEAR(s.span().value(), deg(30).value(), 1e-14);
  EXPECT_NEAR(angleBetween(s.mid(), deg(5)), 0, 1e-14);
  expectNear(s.middle(), V::polar(75, deg(5)), 1e-12);
  EXPECT_EQ(s.start(), deg(350));  // kept as given
  EXPECT_TRUE(s.reversed());
  EXPECT_TRUE(s.forward());
  EXPECT_TRUE(s.ends());
}

TEST(AnnulusSection, equalAnglesAreAnEmptySpan)
{
  for (double const turns : {0.0, 360.0, -360.0, 720.0}) {
    Section const s(V(0, 0), 5, 10, deg(40), deg(40 + turns));
    EXPECT_NEAR(s.span().value(), 0, 1e-9) << turns;
    EXPECT_NEAR(s.distToPoint(V::polar(7, deg(130))), std::hypot(7, 5), 1e-12);  // the inner end of the edge
  }
}

TEST(AnnulusSection, distanceByHandWithAndWithoutEdges)
{
  Section s(V(0, 0), 5, 10, deg(0), deg(90));

  EXPECT_NEAR(s.distToPoint(V(7, 0)), 0, 1e-13);
  EXPECT_NEAR(s.distToPoint(V(7, -3)), 3, 1e-13);
  EXPECT_NEAR(s.distToPoint(V(3, 4)), 0, 1e-13);
  EXPECT_NEAR(s.distToPoint(V(9, 12)), 5, 1e-13);
  EXPECT_NEAR(s.distToPoint(V(-3, -4)), std::hypot(8, 4), 1e-13);  // (5, 0)
  s.ends(false);
  EXPECT_NEAR(s.distToPoint(V(7, -3)), std::hypot(2, 3), 1e-13);  // (5, 0)
  EXPECT_NEAR(s.distToPoint(V(8, 0)), 2, 1e-13);
  expectNear(s.encloseRect().lr(), V(10, 10), 1e-13);
  EXPECT_EQ(Sampler(s, 2).strokes, 2);
  s.ends(true);
  EXPECT_EQ(Sampler(s, 2).strokes, 1);
}

TEST(AnnulusSection, badArgumentsChangeNothing)
{
  EXPECT_THROW(Section(V(), -1, 2, deg(0), deg(1)), ccShapesError::BadParams);
  EXPECT_THROW(Section(V(), 1, 2, ccRadian(kNan), deg(1)), ccShapesError::BadParams);
  EXPECT_THROW(Section(ccEllipse(V(0, 0), 1, 1, deg(0)), ccEllipse(V(1, 0), 2, 2, deg(0)), deg(0), deg(1)),
               ccShapesError::BadParams);
  Section const given(V(), 1, 2, deg(0), deg(1));
  Section s = given;
  EXPECT_THROW(s.start(ccRadian(cfInfinity)), ccShapesError::BadParams);
  EXPECT_THROW(s.stop(ccRadian(kNan)), ccShapesError::BadParams);
  EXPECT_EQ(s, given);
}

TEST(AnnulusSection, cornersMapUnderEveryMapIfTheEllipsesAreSimilar)
{
  Random random(1);
  for (int i = 0; i < rounds(1500); ++i) {
    ccEllipse const first(random.vector(100), random.magnitude(1, 50), random.magnitude(1, 50), random.angle());
    double const ratio = random.magnitude(0.2, 5);
    // A circle may be given with any rotation.
    bool const circles = random.chance(3);
    ccEllipse const a = circles ? ccEllipse(first.center(), first.rx(), first.rx(), first.rotation()) : first;
    ccEllipse const b(a.center(), a.radii() * ratio, circles ? random.angle() : a.rotation());
    ccRadian const start = random.angle();
    Section const s(a, b, start, start + deg(random.in(1, 359)), random.chance(2), random.chance(2), random.chance(2));
    ccXform<2> const x = random.chance(3) ? random.similarity(2, random.chance(2)) : random.affine();
    Section const image = s.map(x);
    bool const mirrored = x.matrix().determinant() < 0;
    double const tolerance = 1e-9 * (image.first().rx() + image.second().rx() + image.second().ry() + x.trans().len() + 100);
    ccRadian const first1 = mirrored ? image.stop() : image.start(), last1 = mirrored ? image.start() : image.stop();
    expectNear(corner(image.first(), first1), x.mapPoint(corner(s.first(), s.start())), tolerance);
    expectNear(corner(image.second(), first1), x.mapPoint(corner(s.second(), s.start())), tolerance);
    expectNear(corner(image.first(), last1), x.mapPoint(corner(s.first(), s.stop())), tolerance);
    expectNear(corner(image.second(), last1), x.mapPoint(corner(s.second(), s.stop())), tolerance);
    EXPECT_EQ(image.reversed(), s.reversed());
    EXPECT_EQ(image.forward(), mirrored ? !s.forward() : s.forward());
    EXPECT_EQ(image.ends(), s.ends());
  }
}

TEST(AnnulusSection, followsTheFirstEllipseIfTheyAreNotSimilar)
{
  Section const s(ccEllipse(V(0, 0), 5, 5, deg(0)), ccEllipse(V(0, 0), 20, 10, deg(0)), deg(30), deg(80));
  ccXform<2> const x(ccMatrix<2>(2, 1, 0, 1), V(3, 4));
  Section const image = s.map(x);

  expectNear(corner(image.first(), image.start()), x.mapPoint(corner(s.first(), s.start())), 1e-12);
  expectNear(corner(image.first(), image.stop()), x.mapPoint(corner(s.first(), s.stop())), 1e-12);
  V const q(7, 9);
  EXPECT_NEAR(image.second().distToPoint(q), s.second().map(x).distToPoint(q), 1e-12);
}

TEST(AnnulusSection, similaritiesMoveBothAnglesByOneTurn)
{
  Section const s(V(1, 2), 5, 10, ccRadian(0.5), ccRadian(8.5));
  Section const turned = s.map(cc2Rigid(ccRadian(0.25), V(3, 3)).linear());

  EXPECT_NEAR(turned.start().value(), 0.75, 1e-15);
  EXPECT_NEAR(turned.stop().value(), 8.75, 1e-14);
  EXPECT_EQ(turned.first().rx(), 5);
  Section const moved = s.map(ccXform<2>(1, 1, V(7, 7)));
  EXPECT_EQ(moved, Section(V(8, 9), 5, 10, ccRadian(0.5), ccRadian(8.5)));
}

TEST(AnnulusSection, turningAboutItsMiddleKeepsTheImagesOfTheCorners)
{
  Random random(2);
  for (int i = 0; i < rounds(500); ++i) {
    Section const s = randomSector(random);
    V const m = s.middle();
    ccXform<2> const turn = ccXform<2>(1, 1, m) * ccXform<2>(ccMatrix<2>(random.angle(), 1), V()) * ccXform<2>(1, 1, -m);
    Section const image = s.map(turn);
    expectNear(image.middle(), m, 1e-10);
    for (ccRadian const a : {s.start(), s.stop()}) {
      ccRadian const b = a + (image.start() - s.start());
      expectNear(corner(image.first(), b), turn.mapPoint(corner(s.first(), a)), 1e-10);
      expectNear(corner(image.second(), b), turn.mapPoint(corner(s.second(), a)), 1e-10);
    }
  }
}

namespace {

// Where the warp handle stands: on one ellipse at an end, while the middle of the same ellipse is what it is measured from.
V warpHandle(Section const& s)
{
  return s.reversed() ? corner(s.second(), s.stop()) : corner(s.first(), s.start());
}

}  // namespace

TEST(SectionWarp, keepsThicknessMiddleAndOuterArc)
{
  Random random(3);
  int results = 0;
  for (int i = 0; i < rounds(2000); ++i) {
    Section const s = randomSector(random);
    V const h = warpHandle(s), dragged = h + random.vector(60);
    auto const warped = cfSectionWarp(s, h, dragged, 1e5, 3);
    if (!warped)
      continue;
    ++results;
    double const r2 = warped->second().rx(), r1 = warped->first().rx();
    EXPECT_NEAR(r2 - r1, s.second().rx() - s.first().rx(), 1e-8);
    EXPECT_GE(r1, 3);
    EXPECT_LE(r2, 1e5);
    // A wide sector that shrinks would wind over itself; it keeps its angles instead.
    double const arc = s.second().rx() * s.span().value();
    bool const keepsArc = arc / r2 < cfPi || s.second().rx() < r2;
    EXPECT_NEAR(warped->span().value(), keepsArc ? arc / r2 : s.span().value(), 1e-9);
    V const u = V::polar(1, s.mid());
    double const a = u.dot(h - (s.reversed() ? corner(s.second(), s.mid()) : corner(s.first(), s.mid())));
    double const b = a + u.dot(dragged - h);
    bool const flipped = a / b < 0;
    EXPECT_EQ(warped->reversed(), flipped ? !s.reversed() : s.reversed());
    EXPECT_EQ(warped->forward(), !warped->reversed());
    EXPECT_TRUE(warped->ends());
    EXPECT_NEAR(r2, std::min(std::abs(a / b) * s.second().rx(), 1e5), 1e-6 * r2);
    EXPECT_NEAR(angleBetween(warped->mid(), flipped ? s.mid() + deg(180) : s.mid()), 0, 1e-9);
    expectNear(warped->middle(), s.middle(), 1e-7);
  }
  EXPECT_GT(results, 500);
}

TEST(SectionWarp, theOuterArcKeepsItsPlaceAtTheMiddle)
{
  Section const s(V(0, 0), 50, 100, deg(-30), deg(30), false);
  V const h = warpHandle(s);           // on the first ellipse at the start
  double const depth = 50 - h.x();     // the rise of the first arc

  auto const flatter = cfSectionWarp(s, h, V(50 - depth / 4, h.y()), 1e6, 3);
  ASSERT_TRUE(flatter);
  EXPECT_NEAR(flatter->second().rx(), 400, 1e-9);
  EXPECT_NEAR(flatter->first().rx(), 350, 1e-9);
  expectNear(flatter->center(), V(-300, 0), 1e-9);
  EXPECT_NEAR(flatter->span().value(), deg(15).value(), 1e-12);
}

TEST(SectionWarp, aDragAcrossTheMiddleFlipsTheSector)
{
  Section const s(V(0, 0), 50, 100, deg(-30), deg(30), false);
  V const h = warpHandle(s);
  double const depth = 50 - h.x();

  auto const flipped = cfSectionWarp(s, h, V(50 + depth, h.y()), 1e6, 3);
  ASSERT_TRUE(flipped);
  expectNear(flipped->center(), V(150, 0), 1e-9);  // 2 * 75 - 0
  EXPECT_NEAR(angleBetween(flipped->start(), deg(150)), 0, 1e-12);
  EXPECT_NEAR(angleBetween(flipped->stop(), deg(210)), 0, 1e-12);
  EXPECT_TRUE(flipped->reversed());
}

TEST(SectionWarp, stopsAtTheMaximumAndFailsBelowTheMinimum)
{
  Section const s(V(0, 0), 50, 100, deg(-30), deg(30), false);
  V const h = warpHandle(s);
  double const depth = 50 - h.x();

  auto const straight = cfSectionWarp(s, h, V(50, h.y()), 1000, 3);  // b is 0
  ASSERT_TRUE(straight);
  EXPECT_EQ(straight->second().rx(), 1000);
  EXPECT_EQ(straight->first().rx(), 950);
  EXPECT_EQ(straight->reversed(), s.reversed());
  auto const almost = cfSectionWarp(s, h, V(50 - 1e-6, h.y()), 1000, 3);
  ASSERT_TRUE(almost);
  EXPECT_EQ(almost->second().rx(), 1000);
  EXPECT_FALSE(cfSectionWarp(s, h, V(50 - 2 * depth, h.y()), 1000, 3));  // 50 outside leaves nothing inside
  EXPECT_TRUE(cfSectionWarp(s, h, V(50 - depth * 100 / 53.001, h.y()), 1000, 3));
  EXPECT_FALSE(cfSectionWarp(s, h, V(50 - depth * 100 / 52.999, h.y()), 1000, 3));
  EXPECT_FALSE(cfSectionWarp(s, h, V(kNan, 0), 1000, 3));
  EXPECT_FALSE(cfSectionWarp(s, V(50, 3), V(50, 9), 1000, 3));  // 0 over 0
}

TEST(SectionWarp, aWideSectorKeepsItsAnglesWhileItShrinks)
{
  // Shrunk to the half its arc would span 600 degrees.
  Section const s(V(0, 0), 90, 100, deg(-150), deg(150), false);
  V const h = warpHandle(s);

  auto const small = cfSectionWarp(s, h, V(90 - 2 * (90 - h.x()), h.y()), 1000, 3);
  ASSERT_TRUE(small);
  EXPECT_NEAR(small->second().rx(), 50, 1e-9);
  EXPECT_EQ(small->start(), s.start());
  EXPECT_EQ(small->stop(), s.stop());
}
