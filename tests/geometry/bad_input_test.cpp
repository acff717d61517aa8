// Arguments that are refused, one by one: the exception is ccShapesError::BadParams, and the object stays as it was.
#include "geometry/all.h"
#include "tests/geometry/shape_support.h"

using namespace krs_test;

namespace {

constexpr double kInf = cfInfinity;
V const badPoints[] = {V(kNan, 0), V(0, kNan), V(kInf, 0), V(0, -kInf)};
double const badLengths[] = {kNan, kInf, -kInf, -1, -1e-300};
ccRadian const badAngles[] = {ccRadian(kNan), ccRadian(kInf), ccRadian(-kInf)};

// Calls a setter for each of the bad values.
template <class Shape, class Value, std::size_t N, class Set>
void refuses(Shape const& given, Value const (&values)[N], Set const& set)
{
  for (Value const& value : values) {
    Shape shape = given;
    EXPECT_THROW(set(shape, value), ccShapesError::BadParams);
    EXPECT_EQ(shape, given);
  }
}

} // namespace

TEST(BadInput, settersOfPointsChangeNothing)
{
  refuses(ccLine(V(1, 1), V(3, 4)), badPoints, [](ccLine& s, V const& p) { s.pos(p); });
  refuses(ccLineSeg(V(1, 2), V(3, 4)), badPoints, [](ccLineSeg& s, V const& p) { s.p1(p); });
  refuses(ccLineSeg(V(1, 2), V(3, 4)), badPoints, [](ccLineSeg& s, V const& p) { s.p2(p); });
  ccCoordAxes const axes(V(1, 2), V(3, 4), V(5, 6));
  refuses(axes, badPoints, [](ccCoordAxes& s, V const& p) { s.origin(p); });
  refuses(axes, badPoints, [](ccCoordAxes& s, V const& p) { s.xEnd(p); });
  refuses(axes, badPoints, [](ccCoordAxes& s, V const& p) { s.yEnd(p); });
  refuses(ccCircle(V(1, 2), 3), badPoints, [](ccCircle& s, V const& p) { s.center(p); });
  refuses(ccEllipse(V(1, 2), 3, 4, deg(5)), badPoints, [](ccEllipse& s, V const& p) { s.center(p); });
  refuses(ccEllipse2(V(1, 2), 3, 4, deg(5)), badPoints, [](ccEllipse2& s, V const& p) { s.center(p); });
  refuses(ccAffineRectangle(V(1, 2), 3, 4, deg(5), deg(6)), badPoints,
          [](ccAffineRectangle& s, V const& p) { s.center(p); });
  refuses(ccGenRect(V(1, 2), V(3, 4), deg(5), V(1, 1)), badPoints, [](ccGenRect& s, V const& p) { s.center(p); });
  ccGenAnnulus const ring(V(1, 2), V(3, 4), V(5, 6), deg(7), V(), V());
  refuses(ring, badPoints, [](ccGenAnnulus& s, V const& p) { s.center(p); });
  refuses(ccBezierCurve(V(1, 2), V(3, 4), V(5, 6), V(7, 8)), badPoints,
          [](ccBezierCurve& s, V const& p) { s.controlPoint(2, p); });
  ccGenPoly const poly(ccCircle(V(1, 2), 3));
  refuses(poly, badPoints, [](ccGenPoly& s, V const& p) { s.vertexPoint(1, p); });
  refuses(poly, badPoints, [](ccGenPoly& s, V const& p) { s.insertVertex(1, p); });
  refuses(cc2Wireframe(poly, ccDimTol()), badPoints,
          [](cc2Wireframe& s, V const& p) { s.insertVertex(p, 0, deg(0), ccDimTol()); });
  ccHermiteSpline const hermite({V(1, 2), V(3, 4)});
  refuses(hermite, badPoints, [](ccHermiteSpline& s, V const& p) { s.controlTangent(1, p); });
  refuses(hermite, badPoints, [](ccHermiteSpline& s, V const& p) { s.insertControlPoint(1, p); });
  ccInterpSpline const interp({V(1, 2), V(3, 4), V(5, 7)});
  refuses(interp, badPoints, [](ccInterpSpline& s, V const& p) { s.controlPoint(1, p); });
  refuses(interp, badPoints, [](ccInterpSpline& s, V const& p) { s.startTangent(p); });
  refuses(ccDeBoorSpline({V(1, 2), V(3, 4)}), badPoints,
          [](ccDeBoorSpline& s, V const& p) { s.addControlPoint(p, 1); });
}

TEST(BadInput, settersOfLengthsChangeNothing)
{
  refuses(ccCircle(V(1, 2), 3), badLengths, [](ccCircle& s, double r) { s.radius(r); });
  refuses(ccEllipse(V(1, 2), 3, 4, deg(5)), badLengths, [](ccEllipse& s, double r) { s.rx(r); });
  refuses(ccEllipse(V(1, 2), 3, 4, deg(5)), badLengths, [](ccEllipse& s, double r) { s.ry(r); });
  refuses(ccEllipse2(V(1, 2), 3, 4, deg(5)), badLengths, [](ccEllipse2& s, double r) { s.radii(V(9, r)); });
  ccAffineRectangle const rect(V(1, 2), 3, 4, deg(5), deg(6));
  refuses(rect, badLengths, [](ccAffineRectangle& s, double l) { s.xLength(l); });
  refuses(rect, badLengths, [](ccAffineRectangle& s, double l) { s.yLength(l); });
  refuses(ccGenRect(V(1, 2), V(3, 4), deg(5), V(1, 1)), badLengths,
          [](ccGenRect& s, double f) { s.rounding(V(0.5, f)); });
  refuses(ccGenPoly(ccCircle(V(1, 2), 3)), badLengths, [](ccGenPoly& s, double r) { s.vertexRoundingSize(1, r); });
  refuses(ccGenPoly(ccCircle(V(1, 2), 3)), badLengths, [](ccGenPoly& s, double r) { s.insertVertex(1, V(7, 7), r); });
  double const badWeights[] = {kNan, kInf, -1, 0, -0.0};
  refuses(ccBezierCurve(V(1, 2), V(3, 4), V(5, 6), V(7, 8)), badWeights,
          [](ccBezierCurve& s, double w) { s.weight(1, w); });
  refuses(ccDeBoorSpline({V(1, 2), V(3, 4)}), badWeights, [](ccDeBoorSpline& s, double w) { s.weight(1, w); });
}

TEST(BadInput, settersOfAnglesChangeNothing)
{
  refuses(ccEllipse(V(1, 2), 3, 4, deg(5)), badAngles, [](ccEllipse& s, ccRadian a) { s.rotation(a); });
  ccEllipseArc const arc(ccEllipse(V(1, 2), 3, 4, deg(5)), deg(10), deg(20));
  refuses(arc, badAngles, [](ccEllipseArc& s, ccRadian a) { s.start(a); });
  refuses(arc, badAngles, [](ccEllipseArc& s, ccRadian a) { s.span(a); });
  ccRadian const beyondATurn[] = {deg(361), deg(-361), deg(360.001)};
  refuses(arc, beyondATurn, [](ccEllipseArc& s, ccRadian a) { s.span(a); });
  refuses(ccAffineRectangle(V(1, 2), 3, 4, deg(5), deg(6)), badAngles,
          [](ccAffineRectangle& s, ccRadian a) { s.xRotation(a); });
  refuses(ccAffineRectangle(V(1, 2), 3, 4, deg(5), deg(6)), badAngles,
          [](ccAffineRectangle& s, ccRadian a) { s.skew(a); });
  ccEllipseAnnulusSection const section(V(1, 2), 3, 4, deg(5), deg(60));
  refuses(section, badAngles, [](ccEllipseAnnulusSection& s, ccRadian a) { s.start(a); });
  refuses(section, badAngles, [](ccEllipseAnnulusSection& s, ccRadian a) { s.stop(a); });
  ccRadian const noSpans[] = {deg(360), deg(-360), deg(1000), ccRadian(kNan), ccRadian(kInf)};
  refuses(ccGenPoly(ccCircle(V(1, 2), 3)), noSpans, [](ccGenPoly& s, ccRadian a) { s.segmentAngleSpan(1, a); });
  refuses(ccGenPoly(ccCircle(V(1, 2), 3)), noSpans, [](ccGenPoly& s, ccRadian a) { s.insertVertex(1, V(7, 7), 0, a); });
}

TEST(BadInput, indicesOutOfRangeChangeNothing)
{
  long const bad[] = {-2, 3, 1000, std::numeric_limits<long>::max(), std::numeric_limits<long>::min()};
  ccPointSet const set({V(1, 2), V(3, 4), V(5, 6)});
  refuses(set, bad, [](ccPointSet& s, long i) { s[i]; });
  refuses(ccPolyline({V(1, 2), V(3, 4), V(5, 6)}), bad, [](ccPolyline& s, long i) { s[i]; });
  refuses(ccPolygon({V(1, 2), V(3, 4), V(5, 6)}), bad, [](ccPolygon& s, long i) { s[i]; });
  ccGenPoly const poly(std::vector<ccSMDGDPolyVertex>(3), true);
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.vertexPoint(i); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.vertexPoint(i, V(1, 1)); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.vertexRoundingSize(i); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.vertexRoundingSize(i, 1); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.segmentAngleSpan(i); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.segmentAngleSpan(i, deg(90)); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.lineSegment(i, true); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.arcSegment(i, false); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.isLineSegment(i); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.deleteVertex(i); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.insertVertex(i, V(1, 1)); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.previousVertexIndex(i); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.nextVertexIndex(i); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.previousSegmentIndex(i); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.nextSegmentIndex(i); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { s.rounding(i); });
  refuses(poly, bad, [](ccGenPoly& s, long i) { cfRoundingSize(s, i, V()); });
  cc2Wireframe const wire(poly, ccDimTol());
  refuses(wire, bad, [](cc2Wireframe& s, long i) { s.segmentLengthTol(i); });
  refuses(wire, bad, [](cc2Wireframe& s, long i) { s.segmentLengthTol(i, ccDimTol(1, 2, 3, ccDimTol::eTypeDefault)); });
  ccSMDGDPoly const edited(wire, "poly");
  refuses(edited, bad, [](ccSMDGDPoly& s, long i) { s.vertex(i, false); });
  refuses(edited, bad, [](ccSMDGDPoly& s, long i) { s.vertex(i, ccSMDGDPolyVertex()); });
  refuses(edited, bad, [](ccSMDGDPoly& s, long i) { ccSMDGDPolyPrivate::roundPoint(s, i); });
  refuses(edited, bad, [](ccSMDGDPoly& s, long i) { ccSMDGDPolyPrivate::vertexAngle(s, i); });
  refuses(edited, bad, [](ccSMDGDPoly& s, long i) { ccSMDGDPolyPrivate::arcSegment_(s, i); });
  refuses(edited, bad,
          [](ccSMDGDPoly& s, long i) { ccSMDGDPolyPrivate::replaceVertexRectilinear(s, i, ccSMDGDPolyVertex()); });
  ccDeBoorSpline const deBoor({V(1, 2), V(3, 4), V(5, 6)});
  refuses(deBoor, bad, [](ccDeBoorSpline& s, long i) { s.controlPoint(i); });
  refuses(deBoor, bad, [](ccDeBoorSpline& s, long i) { s.controlPoint(i, V(1, 1)); });
  refuses(deBoor, bad, [](ccDeBoorSpline& s, long i) { s.deleteControlPoint(i); });
  refuses(deBoor, bad, [](ccDeBoorSpline& s, long i) { s.weight(i); });
  refuses(deBoor, bad, [](ccDeBoorSpline& s, long i) { s.bezierCurve(i); });
  long const badPlaces[] = {-1, 4, std::numeric_limits<long>::max(), std::numeric_limits<long>::min()};
  refuses(deBoor, badPlaces, [](ccDeBoorSpline& s, long i) { s.insertControlPoint(i, V(1, 1)); });
  long const badCorners[] = {-1, 4, 5, std::numeric_limits<long>::max()};
  refuses(ccBezierCurve(), badCorners, [](ccBezierCurve& s, long i) { s.controlPoint(i); });
  refuses(ccBezierCurve(), badCorners, [](ccBezierCurve& s, long i) { s.weight(i); });
  int const badIds[] = {-1, 4, 5, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
  ccAffineRectangle const rect(V(1, 2), 3, 4, deg(5), deg(6));
  refuses(rect, badIds, [](ccAffineRectangle& s, int id) { s.corner(id); });
  refuses(rect, badIds, [](ccAffineRectangle& s, int id) { cfAffineRectSize(s, id, V(9, 9)); });
  refuses(ccPolygon(), badIds, [](ccPolygon& s, int rule) { s.fillRule(rule); });
}

TEST(BadInput, mapsThatAreNotFiniteAreRefused)
{
  ccXform<2> const bad[] = {ccXform<2>(1, 1, V(kNan, 0)), ccXform<2>(1, 1, V(0, kInf)), ccXform<2>(kNan, 1, V()),
                            ccXform<2>(1, kInf, V())};
  refuses(ccLineSeg(V(1, 2), V(3, 4)), bad, [](ccLineSeg& s, ccXform<2> const& x) { s.map(x); });
  refuses(ccCircle(V(1, 2), 3), bad, [](ccCircle& s, ccXform<2> const& x) { s.map(x); });
  refuses(ccEllipse(V(1, 2), 3, 4, deg(5)), bad, [](ccEllipse& s, ccXform<2> const& x) { s.map(x); });
  refuses(ccGenRect(V(1, 2), V(3, 4), deg(5), V()), bad, [](ccGenRect& s, ccXform<2> const& x) { s.map(x); });
  refuses(ccPolyline({V(1, 2), V(3, 4)}), bad, [](ccPolyline& s, ccXform<2> const& x) { s.map(x); });
  ccGenPoly const poly(ccRect(V(1, 2), V(3, 4)));
  refuses(poly, bad, [](ccGenPoly& s, ccXform<2> const& x) { s.map(x); });
  refuses(poly, bad, [](ccGenPoly& s, ccXform<2> const& x) { s.encloseRect(x); });
  refuses(ccDeBoorSpline({V(1, 2), V(3, 4)}), bad, [](ccDeBoorSpline& s, ccXform<2> const& x) { s.map(x); });
  refuses(ccHermiteSpline({V(1, 2), V(3, 4)}), bad, [](ccHermiteSpline& s, ccXform<2> const& x) { s.map(x); });
  refuses(ccInterpSpline({V(1, 2), V(3, 4)}), bad, [](ccInterpSpline& s, ccXform<2> const& x) { s.map(x); });
  EXPECT_THROW(poly.map(cc2Rigid(ccDegree(kNan), V()), 1), ccShapesError::BadParams);
  EXPECT_THROW(poly.map(cc2Rigid(ccDegree(10), V(kInf, 0)), 1), ccShapesError::BadParams);
  EXPECT_THROW(poly.map(cc2Rigid::I, kNan), ccShapesError::BadParams);
}

TEST(BadInput, curvesKnowNoParameterOutsideZeroToOne)
{
  ccBezierCurve const c(V(0, 0), V(1, 2), V(3, 2), V(4, 0));
  for (double const t : {-1e-9, 1 + 1e-9, kNan, kInf}) {
    EXPECT_THROW(c.point(t), ccShapesError::BadParams);
    EXPECT_THROW(c.derivative(t), ccShapesError::BadParams);
    EXPECT_THROW(c.split(t), ccShapesError::BadParams);
  }
}

TEST(BadInput, noPointIsNearestToAPlaceThatIsNotFinite)
{
  ccEllipse const e(V(1, 2), 3, 4, deg(5));
  ccEllipseArc const arc(e, deg(10), deg(100)), round(ccEllipse(V(1, 2), 3, 3, deg(5)), deg(10), deg(100));
  for (V const& q : badPoints) {
    EXPECT_THROW(ccLineSeg(V(1, 2), V(3, 4)).closestPoint(q), ccShapesError::BadParams);
    EXPECT_THROW(cc2SegmentLine(ccLineSeg(V(1, 2), V(3, 4))).closestPoint(q), ccShapesError::BadParams);
    EXPECT_THROW(cc2SegmentArc(round).closestPoint(q), ccShapesError::BadParams);
    EXPECT_THROW(ccCircle(V(1, 2), 3).closestPoint(q), ccShapesError::BadParams);
    EXPECT_THROW(e.closestPoint(q), ccShapesError::BadParams);
    EXPECT_THROW(arc.closestPoint(q), ccShapesError::BadParams);
    EXPECT_THROW(ccBezierCurve(V(1, 2), V(3, 4), V(5, 6), V(7, 8)).closestPoint(q), ccShapesError::BadParams);
    EXPECT_FALSE(cfRoundingSize(ccGenPoly(ccRect(V(1, 2), V(3, 4))), 1, q));
  }
  EXPECT_THROW(e.point(ccRadian(kNan)), ccShapesError::BadParams);
  EXPECT_THROW(arc.pointAt(kNan), ccShapesError::BadParams);
}
