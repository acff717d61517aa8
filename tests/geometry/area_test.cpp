// The area of a polygon tells what edits and maps do to all of its outline at once. It is positive for a polygon that runs in
// growing angle: half the sum of the cross products of its vertices, and for each arc the piece between arc and chord.
#include "geometry/all.h"
#include "tests/geometry/poly_support.h"

using namespace krs_test;

namespace {

double areaOf(ccGenPoly const& poly)
{
  double area = 0;
  for (long i = 0; i < poly.numSegments(); ++i) {
    V const a = poly.vertexPoint(poly.previousVertexIndex(i)), b = poly.vertexPoint(poly.nextVertexIndex(i));
    double const span = poly.segmentAngleSpan(i).value();
    area += (a.x() * b.y() - a.y() * b.x()) / 2;
    if (span != 0 && a != b) {
      double const radius = a.distance(b) / (2 * std::abs(std::sin(span / 2)));
      area += radius * radius / 2 * (span - std::sin(span));
    }
  }
  return area;
}

// Of what is drawn, roundings included.
double sampledArea(ccShape const& shape)
{
  Sampler const s(shape, 2000);
  double area = 0;
  for (std::size_t i = 0; i < s.points.size(); ++i) {
    V const a = s.points[i] - s.points[0], b = s.points[(i + 1) % s.points.size()] - s.points[0];
    area += (a.x() * b.y() - a.y() * b.x()) / 2;
  }
  return area;
}

PolyKind const sharp{3, 8, true, false, 300, false};

cc2Wireframe closedWire(Random& r)
{
  for (;;) {
    cc2Wireframe const w = randomWire(r, sharp);
    if (!w.isOpen())
      return w;
  }
}

double sizeOfArea(ccGenPoly const& p)
{
  ccRect const box = p.encloseRect();
  double const far = box.center().len() + box.sz().len();
  return 1e-11 * far * far;
}

}  // namespace

TEST(PolygonArea, rectanglesCirclesAndTrianglesRunInGrowingAngle)
{
  EXPECT_NEAR(areaOf(ccGenPoly(ccRect(V(3, 4), V(5, 7)))), 35, 1e-12);
  EXPECT_NEAR(areaOf(ccGenPoly(ccCircle(V(3, 4), 5))), cfPi * 25, 1e-12);
  EXPECT_NEAR(areaOf(ccSMDGDPoly::triangle(6, 4, V(1, 1)).wireframe()), 12, 1e-12);
}

TEST(PolygonArea, whatIsDrawnHasTheAreaOfTheRecords)
{
  Random random(1);
  for (int i = 0; i < rounds(60); ++i) {
    cc2Wireframe const wire = closedWire(random);
    ccRect const box = wire.encloseRect();
    EXPECT_NEAR(sampledArea(wire), areaOf(wire), 1e-5 * box.sz().dot(box.sz())) << i;
  }
}

TEST(PolygonArea, roundingsCutTheCornersOff)
{
  ccGenPoly rect(ccRect(V(0, 0), V(20, 10)));
  for (long i = 0; i < 4; ++i)
    rect.vertexRoundingSize(i, 3);

  EXPECT_NEAR(sampledArea(rect), 200 - (4 - cfPi) * 9, 1e-4);
}

TEST(PolygonArea, aVertexAtTheApexOfASegmentKeepsIt)
{
  Random random(2);
  for (int i = 0; i < rounds(200); ++i) {
    cc2Wireframe const wire = closedWire(random);
    long const id = random.below(static_cast<int>(wire.numSegments()));
    cs_PolySegment const s = wire.segment(id, true);
    V const at = s.isLine() ? s.a + (s.b - s.a) * random.in(0.1, 0.9) : apex(s.a, s.b, s.span.value());
    cc2Wireframe const split = cfSplitSegment(wire, id, at, ccDimTol());

    EXPECT_NEAR(areaOf(split), areaOf(wire), sizeOfArea(wire)) << i;
    EXPECT_EQ(split.isPolarityReversed(), wire.isPolarityReversed());
  }
}

TEST(PolygonArea, mapsScaleItByTheirDeterminant)
{
  Random random(3);
  for (int i = 0; i < rounds(200); ++i) {
    cc2Wireframe const wire = closedWire(random);
    ccXform<2> const x = random.similarity(random.magnitude(0.2, 5), random.chance(2));
    cc2Wireframe const image = wire.map(x);
    double const det = x.matrix().determinant();
    EXPECT_NEAR(areaOf(image), det * areaOf(wire), (1 + std::abs(det)) * sizeOfArea(wire) + sizeOfArea(image)) << i;
    cc2Wireframe const half = wire.map(cc2Rigid(ccDegree(random.in(0, 360)), random.vector(9)), 0.5);
    EXPECT_NEAR(areaOf(half), areaOf(wire) / 4, sizeOfArea(wire) + sizeOfArea(half)) << i;
    for (long k = 0; k < wire.numSegments(); ++k)
      EXPECT_EQ(image.segmentLengthTol(k), wire.segmentLengthTol(k));
    EXPECT_EQ(image.isPolarityReversed(), wire.isPolarityReversed());
  }
}

TEST(PolygonArea, anUnevenMapOfArcsScalesItToo)
{
  Random random(4);
  for (int i = 0; i < rounds(40); ++i) {
    cc2Wireframe const wire = closedWire(random);
    ccXform<2> const x = random.affine();
    ccPtrHandle_const<ccShape> const image = static_cast<ccShape const&>(wire).map(x);
    ccRect const box = image->encloseRect();
    EXPECT_NEAR(sampledArea(*image), x.matrix().determinant() * areaOf(wire),
                1e-5 * box.sz().dot(box.sz()) + 20 * sizeOfArea(wire))
        << i;
  }
}

TEST(PolygonArea, conversionsPolarityAndOpeningKeepIt)
{
  Random random(5);
  for (int i = 0; i < rounds(100); ++i) {
    cc2Wireframe const wire = closedWire(random);
    double const area = areaOf(wire);
    EXPECT_EQ(areaOf(ccSMDGDPolyPrivate::wireframe(ccSMDGDPoly(wire, "poly"))), area);
    EXPECT_EQ(areaOf(ccSMDGDPolyPrivate::poly(wire).wireframe()), area);
    cc2Wireframe reversed = wire;
    reversed.polarity(!wire.isPolarityReversed());
    EXPECT_EQ(areaOf(reversed), area);
    cc2Wireframe reopened = wire;
    ccRadian const span = wire.segmentAngleSpan(wire.numSegments() - 1);
    ccDimTol const tol = wire.segmentLengthTol(wire.numSegments() - 1);
    reopened.open();
    reopened.close(span, tol);
    EXPECT_EQ(reopened, wire);
  }
}

TEST(PolygonArea, aRectilinearMoveOfACornerChangesItByTheStripsThatItSweeps)
{
  // A rectangle of 20 by 10 whose corner (20, 10) goes to (26, 13).
  ccSMDGDPoly poly(cc2Wireframe(ccGenPoly(ccRect(V(0, 0), V(20, 10))), ccDimTol()), "poly");
  ccSMDGDPolyPrivate::replaceVertexRectilinear(poly, 2, record(V(26, 13)));

  EXPECT_EQ(areaOf(poly.wireframe()), 26 * 13);
}

TEST(PolygonArea, snappingARectangleThatIsUprightButForNoiseKeepsIt)
{
  Random random(6);
  for (int i = 0; i < rounds(100); ++i) {
    double const w = random.in(5, 50), h = random.in(5, 50), noise = 1e-3, turn = random.in(-0.7, 0.7);
    std::vector<V> points;
    for (V const& p : {V(0, 0), V(w, 0), V(w, h), V(0, h)})
      points.push_back(ccMatrix<2>(ccRadian(turn), 1) * p + random.vector(noise));
    ccSMDGDPoly poly(chain(points, true), "poly");
    ccSMDGDPolyPrivate::snapRectilinear(poly);
    EXPECT_NEAR(areaOf(poly.wireframe()), w * h, 4 * noise * (w + h)) << i;
  }
}
