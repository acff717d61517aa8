// What drags make of shapes: round trips, drags of length zero, and what a drag must keep.
#include "geometry/all.h"
#include "tests/geometry/poly_support.h"

using namespace krs_test;

namespace {

ccPoint cornerOf(ccGenRect const& r, V const& unit) { return r.center() + r.fromUnit(unit); }

V const corners[] = {V(1, 1), V(-1, 1), V(-1, -1), V(1, -1)};

ccEllipseAnnulusSection sector(Random& r)
{
  double const inner = r.in(5, 50), start = r.in(-4, 4);
  return ccEllipseAnnulusSection(r.vector(100), inner, inner + r.in(1, 50), ccRadian(start),
                                 ccRadian(start + r.in(0.1, 5)), r.chance(2), r.chance(2), r.chance(2));
}

} // namespace

TEST(ZeroDrag, changesNothingOnCirclesUnskewedRectanglesAndLines)
{
  Random random(1);
  for (int i = 0; i < rounds(500); ++i) {
    ccCircle const circle(random.vector(100), random.in(1, 50));
    ccGenRect const round(circle);
    ccGenRect const rect(random.vector(100), V(random.in(1, 50), random.in(1, 50)), random.angle(), V(1, 2));
    for (V const& u : corners) {
      // A circle keeps centre and aspect; its handles are the corners of its square.
      auto const sameCircle = cfGenRectSize(round, u, cornerOf(round, -u), cornerOf(round, u), true, true);
      ASSERT_TRUE(sameCircle);
      EXPECT_NEAR(sameCircle->hx(), circle.radius(), 1e-12);
      EXPECT_EQ(sameCircle->hy(), sameCircle->hx());
      EXPECT_EQ(sameCircle->rounding(), V(1, 1));
      auto const sameRect = cfGenRectSize(rect, u, cornerOf(rect, -u), cornerOf(rect, u), false, false);
      ASSERT_TRUE(sameRect);
      expectNear(sameRect->center(), rect.center(), 1e-12);
      expectNear(sameRect->halfLengths(), rect.halfLengths(), 1e-12);
      EXPECT_EQ(sameRect->orient(), rect.orient());
    }
    ccAffineRectangle const affine(random.vector(100), random.in(1, 50), random.in(1, 50), random.angle(), deg(0));
    for (int id = 0; id < 4; ++id) {
      auto const same = cfAffineRectSize(affine, id, affine.corner(id));
      ASSERT_TRUE(same);
      expectNear(same->center(), affine.center(), 1e-12);
      expectNear(V(same->xLength(), same->yLength()), V(affine.xLength(), affine.yLength()), 1e-12);
    }
    ccLineSeg const line(random.vector(100), random.vector(100));
    for (int end = 1; end <= 2; ++end)
      EXPECT_EQ(cfMoveLineSegEnd(line, end, cfLineSegEnd(line, end)), line);
  }
}

TEST(GenRectDrag, aSkewedCornerJumpsByWhatItsYSideLeans)
{
  // hy 10, leaning 45 degrees towards +x: the corner (1, 1) lies 10 farther in x than the half length of 30.
  ccGenRect const r(V(0, 0), 30, 10, 1, deg(45), deg(0), V());

  auto const far = cfGenRectSize(r, V(1, 1), cornerOf(r, V(-1, -1)), cornerOf(r, V(1, 1)), false, false);
  auto const near = cfGenRectSize(r, V(-1, 1), cornerOf(r, V(1, -1)), cornerOf(r, V(-1, 1)), false, false);
  ASSERT_TRUE(far && near);
  EXPECT_NEAR(far->hx(), 40, 1e-12);
  EXPECT_NEAR(near->hx(), 20, 1e-12);
  EXPECT_NEAR(far->hy(), 10, 1e-12);
  EXPECT_EQ(far->skew(), r.skew());
}

TEST(GenRectDrag, aLengthOfZeroOrABadPointHasNoResult)
{
  ccGenRect const r(V(0, 0), V(30, 10), deg(0), V());

  EXPECT_FALSE(cfGenRectSize(r, V(1, 1), V(-30, -10), V(-30, 50), false, false)); // no width
  EXPECT_FALSE(cfGenRectSize(r, V(1, 1), V(-30, -10), V(kNan, 50), false, false));
  EXPECT_FALSE(cfGenRectSize(r, V(0.5, 0.5), V(-30, -10), V(kNan, 50), false, false));
  EXPECT_FALSE(cfGenRectSize(r, V(1, 1), V(-30, -10), V(1e308, 1.7e308) * 1.5, false, false));
  EXPECT_FALSE(cfGenRectRound(r, V(1, 1), V(cfInfinity, 3)));
  // So steep that the y side would lean beyond all bounds.
  ccGenRect const steep(V(0, 0), 1, 1, 1, ccRadian(cfPi / 2), deg(0), V());
  EXPECT_FALSE(cfGenRectSize(steep, V(1, 1), V(-1e300, -1e300), V(1e300, 1e300), false, false));
}

TEST(AffineRectDrag, backToWhereTheCornerWasRestores)
{
  Random random(2);
  for (int i = 0; i < rounds(500); ++i) {
    ccAffineRectangle const r(random.vector(100), random.in(1, 50), random.in(1, 50), random.angle(),
                              deg(random.in(-70, 70)));
    int const id = random.below(4);
    auto const moved = cfAffineRectSize(r, id, r.corner(id) + random.vector(10));
    if (!moved)
      continue;
    auto const back = cfAffineRectSize(*moved, id, r.corner(id));
    ASSERT_TRUE(back);
    for (int k = 0; k < 4; ++k)
      expectNear(back->corner(k), r.corner(k), 1e-9);
  }
}

TEST(AffineRectDrag, theSkewHandleStaysOnThePointer)
{
  Random random(3);
  for (int i = 0; i < rounds(500); ++i) {
    ccAffineRectangle const r(random.vector(100), random.in(1, 50), random.in(1, 50), random.angle(),
                              deg(random.in(-70, 70)));
    V const handle = r.unitXform().mapPoint(V(0.5, 0)) - r.center(),
            pointer = V::polar(random.in(1, 9), random.angle());
    auto const skewed = cfAffineRectSkew(r, handle, pointer);
    if (!skewed)
      continue;
    V const after = skewed->unitXform().mapPoint(V(0.5, 0)) - skewed->center();
    EXPECT_NEAR(ccRadian::signedNorm(after.angle() - pointer.angle()).value(), 0, 1e-12);
    EXPECT_EQ(skewed->xLength(), r.xLength());
    EXPECT_EQ(skewed->xRotation(), r.xRotation());
  }
}

TEST(AffineRectDrag, aBadSkewHasNoResultAndAZeroVectorIsNoTurn)
{
  ccAffineRectangle const r(V(0, 0), 10, 20, deg(0), deg(30)); // its handle points to -60 degrees

  EXPECT_FALSE(cfAffineRectSkew(r, V::polar(1, deg(-60)), V(1, 0)));  // 90 degrees of skew
  EXPECT_FALSE(cfAffineRectSkew(r, V::polar(1, deg(-60)), V(-1, 0))); // -90
  EXPECT_FALSE(cfAffineRectSkew(r, V::polar(1, deg(-60)), V(kNan, 0)));
  EXPECT_EQ(cfAffineRectSkew(r, V(), V(1, 0)), r);
  EXPECT_EQ(cfAffineRectSkew(r, V(1, 0), V()), r);
  EXPECT_NEAR(cfAffineRectSkew(r, V::polar(1, deg(-60)), V(0, -1))->skew().value(), 0, 1e-15);
}

TEST(PointSetDrag, turnsAndScalesAboutTheFirstPoint)
{
  ccPointSet const set({V(10, 10), V(13, 14), V(10, 20)});

  ccPointSet const turned = *cfPointSetTurn(set, deg(90)), scaled = *cfPointSetScale(set, 2);
  EXPECT_EQ(turned[0], V(10, 10));
  expectNear(turned[1], V(6, 13), 1e-12);
  expectNear(turned[2], V(0, 10), 1e-12);
  EXPECT_EQ(scaled, ccPointSet({V(10, 10), V(16, 18), V(10, 30)}));
  EXPECT_EQ(cfPointSetScale(scaled, 0.5), set);
}

TEST(PointSetDrag, whatWouldHaveNoDirectionIsNotMade)
{
  ccPointSet const set({V(10, 10), V(13, 14)});

  EXPECT_FALSE(cfPointSetScale(set, 0));
  EXPECT_FALSE(cfPointSetScale(set, 1e-13));
  EXPECT_FALSE(cfPointSetScale(set, kNan));
  EXPECT_FALSE(cfPointSetTurn(set, ccRadian(cfInfinity)));
  EXPECT_FALSE(cfPointSetTurn(ccPointSet({V(1, 1), V(1, 1)}), deg(10)));
  EXPECT_FALSE(cfPointSetScale(ccPointSet({V(1, 1)}), 2));
}

TEST(AnnulusDrag, theInnerRectangleIsSmallerByTwoUnits)
{
  ccGenRect const outer(V(0, 0), V(40, 20), deg(0), V());
  auto const inner = [](double x, double y, double rx, double ry) {
    return ccGenRect(V(0, 0), V(x, y), deg(0), V(rx, ry));
  };

  EXPECT_TRUE(cfIsNested(inner(20, 10, 0, 0), outer));
  EXPECT_TRUE(cfIsNested(inner(38, 18, 0, 0), outer));
  EXPECT_FALSE(cfIsNested(inner(38 + 1e-9, 18, 0, 0), outer));
  EXPECT_FALSE(cfIsNested(inner(38, 18 + 1e-9, 0, 0), outer));
  // The centre of the outer rounding lies at (40 - 10, 20 - 5).
  ccGenRect const round(V(0, 0), V(40, 20), deg(0), V(10, 5));
  EXPECT_TRUE(cfIsNested(inner(30, 15, 0, 0), round));
  EXPECT_FALSE(cfIsNested(inner(31, 15, 0, 0), round));
  EXPECT_TRUE(cfIsNested(inner(31, 15, 1, 0), round));
  EXPECT_FALSE(cfIsNested(inner(30, 16, 0, 0), round));
}

TEST(SectionDrag, turningKeepsTheMiddleAndTheShape)
{
  Random random(4);
  for (int i = 0; i < rounds(300); ++i) {
    ccEllipseAnnulusSection const s = sector(random);
    ccRadian const by = random.angle();
    ccEllipseAnnulusSection const turned = cfSectionTurn(s, by);
    expectNear(turned.middle(), s.middle(), 1e-10);
    EXPECT_EQ(turned.first().rx(), s.first().rx());
    EXPECT_EQ(turned.second().rx(), s.second().rx());
    EXPECT_NEAR(ccRadian::signedNorm(turned.start() - s.start() - by).value(), 0, 1e-12);
    EXPECT_NEAR(ccRadian::signedNorm(turned.stop() - s.stop() - by).value(), 0, 1e-12);
    EXPECT_NEAR((turned.stop() - turned.start()).value(), (s.stop() - s.start()).value(), 1e-12);
    EXPECT_EQ(turned.reversed(), s.reversed());
    EXPECT_EQ(turned.forward(), s.forward());
    EXPECT_EQ(turned.ends(), s.ends());
    expectNear(cfSectionTurn(turned, -by).center(), s.center(), 1e-9);
  }
}

TEST(SectionDrag, sizingScalesOneEllipseAboutTheCentre)
{
  ccEllipseAnnulusSection const s(ccEllipse(V(1, 2), 3, 4, deg(20)), ccEllipse(V(1, 2), 6, 8, deg(20)), deg(10),
                                  deg(70), false, true, false);

  EXPECT_EQ(cfSectionSize(s, true, 2),
            ccEllipseAnnulusSection(s.second(), s.second(), deg(10), deg(70), false, true, false));
  EXPECT_EQ(cfSectionSize(s, false, 0.5),
            ccEllipseAnnulusSection(s.first(), s.first(), deg(10), deg(70), false, true, false));
  EXPECT_EQ(cfSectionSize(s, true, 1), s);
  for (double const bad : {-1.0, kNan, cfInfinity})
    EXPECT_FALSE(cfSectionSize(s, true, bad));
}

TEST(SectionDrag, aWarpMakesATrueEllipseCircular)
{
  ccEllipseAnnulusSection const s(ccEllipse(V(0, 0), 50, 20, deg(0)), ccEllipse(V(0, 0), 100, 40, deg(0)), deg(-30),
                                  deg(30), false);
  V const h = s.first().fromUnit(V::polar(1, s.start()));

  auto const warped = cfSectionWarp(s, h, h + V(1, 0), 1e5, 3);
  ASSERT_TRUE(warped);
  EXPECT_EQ(warped->first().rx(), warped->first().ry());
  EXPECT_EQ(warped->second().rx(), warped->second().ry());
}

TEST(PositionDrag, turningThePositionTurnsThePlaces)
{
  Random random(5);
  for (int i = 0; i < rounds(300); ++i) {
    ccXform<2> const x = random.affine();
    ccRadian const by = random.angle();
    ccXform<2> const turned = cfTurnPosition(x, by);
    V const v = random.vector(10), plain = x.mapVector(v);
    double const c = std::cos(by.value()), s = std::sin(by.value());
    expectNear(turned.mapVector(v), V(c * plain.x() - s * plain.y(), s * plain.x() + c * plain.y()), 1e-11);
    EXPECT_EQ(turned.trans(), x.trans());
  }
  EXPECT_THROW(cfTurnPosition(ccXform<2>(0, 1, V()), deg(1)), ccMathError::Singular);
}

TEST(PositionDrag, sizingMultipliesTheScalesAndKeepsTheRotations)
{
  // From 10 by 20 around (1, 2) to 30 by 10 around (5, 2): the map scales by 3 and by a half and takes (1, 2) to (5,
  // 2).
  ccGenRect const current(V(1, 2), V(10, 20), deg(0), V()), edited(V(5, 2), V(30, 10), deg(0), V());
  ccXform<2> const old(ccMatrix<2>(deg(10), deg(25), 2, 3), V(7, 7));

  ccXform<2> const sized = cfSizePosition(old, current, edited);
  EXPECT_NEAR(sized.matrix().xRot().value(), deg(10).value(), 1e-14);
  EXPECT_NEAR(sized.matrix().yRot().value(), deg(25).value(), 1e-14);
  EXPECT_NEAR(sized.matrix().xScale(), 6, 1e-13);
  EXPECT_NEAR(sized.matrix().yScale(), 1.5, 1e-13);
  expectNear(sized.trans(), V(5 - 3 * 1, 2 - 0.5 * 2), 1e-13);
}

TEST(AxesDrag, thereAndBackRestoresWhileNothingIsKept)
{
  Random random(6);
  for (int i = 0; i < rounds(300); ++i) {
    ccXform<2> const x = random.affine();
    double const u = random.in(1, 50);
    bool const xAxis = random.chance(2);
    V const d = random.vector(30);
    ccXform<2> const there = *cfAxesAdjust(x, u, xAxis, d, {}), back = *cfAxesAdjust(there, u, xAxis, -d, {});
    expectNear(back.mapPoint(V(3, 4)), x.mapPoint(V(3, 4)), 1e-9);
    V const end = xAxis ? V(u, 0) : V(0, u), other = xAxis ? V(0, u) : V(u, 0);
    expectNear(there.mapPoint(end), x.mapPoint(end) + d, 1e-9);
    expectNear(there.mapPoint(other), x.mapPoint(other), 1e-9);
  }
}

TEST(AxesDrag, userCoordinatesComeFromTheAxes)
{
  ccCoordAxes const axes(V(10, 20), V(10, 24), V(4, 20));

  ccXform<2> const x = cfUserXform(axes, 2, 3); // the ends are 2 and 3 user units away
  expectNear(x.mapPoint(V(0, 0)), V(10, 20), 1e-13);
  expectNear(x.mapPoint(V(2, 0)), V(10, 24), 1e-13);
  expectNear(x.mapPoint(V(0, 3)), V(4, 20), 1e-13);
  EXPECT_THROW(cfUserXform(axes, 0, 1), ccShapesError::BadParams);
}

TEST(PolygonDrag, aSplitArcKeepsHalfOfItsSpanOnEachSide)
{
  Random random(7);
  for (int i = 0; i < rounds(200); ++i) {
    cc2Wireframe const wire = randomWire(random, {3, 6, true, false, 300, false});
    long const id = random.below(static_cast<int>(wire.numSegments()));
    cs_PolySegment const old = wire.segment(id, true);
    V const at = old.isLine() ? (old.a + old.b) * 0.5 : apex(old.a, old.b, old.span.value());
    cc2Wireframe const split = cfSplitSegment(wire, id, at, tol(9));

    EXPECT_EQ(split.numVertices(), wire.numVertices() + 1);
    EXPECT_EQ(split.segmentAngleSpan(id), old.span / 2);
    EXPECT_EQ(split.segmentAngleSpan(id + 1), old.span / 2);
    EXPECT_EQ(split.segmentLengthTol(id), tol(9));
    EXPECT_EQ(split.segmentLengthTol(id + 1), wire.segmentLengthTol(id));
    EXPECT_EQ(split.vertexPoint(id + 1), at);
    // At the apex the outline stays.
    Sampler const s(split, 9);
    for (V const& p : s.points)
      EXPECT_LE(wire.distToPoint(p), 1e-9 * sizeOf(s));
  }
}

TEST(PolygonDrag, anExtensionAddsOpensOrCloses)
{
  cc2Wireframe const open = chain({V(0, 0), V(10, 0), V(10, 10)}, false),
                     closed = chain({V(0, 0), V(10, 0), V(10, 10)}, true);

  cc2Wireframe const first = cfExtendPolygon(open, true, V(-5, 5), false, tol(3));
  EXPECT_EQ(first.vertexPoint(0), V(-5, 5));
  EXPECT_EQ(first.vertexPoint(1), V(0, 0));
  EXPECT_EQ(first.segmentLengthTol(0), tol(3));
  EXPECT_EQ(first.segmentLengthTol(1), ccDimTol());
  cc2Wireframe const last = cfExtendPolygon(open, false, V(0, 10), false, tol(3));
  EXPECT_EQ(last.vertexPoint(3), V(0, 10));
  EXPECT_EQ(last.segmentLengthTol(2), tol(3));
  cc2Wireframe const whole = cfExtendPolygon(open, true, V(10, 10), true, tol(3));
  EXPECT_FALSE(whole.isOpen());
  EXPECT_EQ(whole.segmentLengthTol(2), tol(3));
  EXPECT_TRUE(cfExtendPolygon(closed, true, V(1, 1), false, tol(3)).isOpen());
  EXPECT_EQ(cfExtendPolygon(closed, true, V(1, 1), false, tol(3)).numVertices(), 3);
  EXPECT_EQ(cfExtendPolygon(chain({V(1, 1)}, false), true, V(5, 5), false, tol(3)), chain({V(1, 1)}, false));
  EXPECT_EQ(cfExtendPolygon(cc2Wireframe(), true, V(5, 5), true, tol(3)), cc2Wireframe());
}

TEST(PolygonDrag, aRectilinearCloseGivesTolerancesToTheNewSegmentsOnly)
{
  auto const withTols = [](std::vector<V> const& points) {
    cc2Wireframe w = chain(points, false);
    for (long i = 0; i < w.numSegments(); ++i)
      w.segmentLengthTol(i, tol(static_cast<double>(i + 1)));
    return w;
  };
  // Four vertices: the last one moves below the first, and one segment is new.
  cc2Wireframe const even = cfCloseRectilinear(withTols({V(0, 0), V(10, 0), V(10, 8), V(3, 8)}), tol(50));
  EXPECT_EQ(even.numSegments(), 4);
  EXPECT_EQ(even.vertexPoint(3), V(0, 8));
  EXPECT_EQ(even.segmentLengthTol(2), tol(3));
  EXPECT_EQ(even.segmentLengthTol(3), tol(50));
  // Three: a vertex and two segments are new.
  cc2Wireframe const odd = cfCloseRectilinear(withTols({V(0, 0), V(10, 0), V(10, 8)}), tol(50));
  EXPECT_EQ(odd.numSegments(), 4);
  EXPECT_EQ(odd.vertexPoint(3), V(0, 8));
  EXPECT_EQ(odd.segmentLengthTol(1), tol(2));
  EXPECT_EQ(odd.segmentLengthTol(2), tol(50));
  EXPECT_EQ(odd.segmentLengthTol(3), tol(50));
  EXPECT_THROW(cfCloseRectilinear(chain({V(0, 0), V(10, 0)}, false), tol(1)), ccShapesError::BadGeom);
}
