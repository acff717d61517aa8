// What other floors call on shapes: names, signatures and results, checked by the compiler, and which class a map
// gives.
#include "geometry/all.h"
#include "tests/geometry/families.h"

#include <typeindex>

using namespace krs_test;

namespace {

// Values: made without arguments, copied, compared.
template <class... Shapes> constexpr bool areValues()
{
  return ((std::is_default_constructible_v<Shapes> && std::is_copy_constructible_v<Shapes> &&
           std::is_copy_assignable_v<Shapes> && std::equality_comparable<Shapes>)&&...);
}
static_assert(areValues<ccLine, ccLineSeg, ccPointSet, ccCoordAxes, ccPolyline, ccPolygon, ccRect, ccAffineRectangle,
                        ccGenRect>());
static_assert(
    areValues<ccCircle, ccEllipse, ccEllipse2, ccEllipseArc, ccEllipseArc2, ccEllipseAnnulus, ccGenAnnulus>());
static_assert(areValues<ccEllipseAnnulusSection, ccGenPoly, cc2Wireframe, ccSMDGDPoly, ccSMDGDPolyVertex, ccDimTol>());
static_assert(areValues<ccBezierCurve, ccBezierPath, ccDeBoorSpline, ccHermiteSpline, ccInterpSpline, ccShapeTree>());

// All but the endless line are shapes, and hide map and clone of the base by ones of their own type.
template <class... Shapes> constexpr bool areShapes() { return (std::is_base_of_v<ccShape, Shapes> && ...); }
static_assert(areShapes<ccLineSeg, ccPointSet, ccCoordAxes, ccPolyline, ccPolygon, ccRect, ccAffineRectangle, ccGenRect,
                        ccCircle, ccEllipse, ccEllipse2, ccEllipseArc, ccEllipseArc2, ccEllipseAnnulus, ccGenAnnulus,
                        ccEllipseAnnulusSection, ccGenPoly, cc2Wireframe, ccBezierCurve, ccBezierPath, ccDeBoorSpline,
                        ccHermiteSpline, ccInterpSpline, ccShapeTree>());
static_assert(!std::is_base_of_v<ccShape, ccLine>);
template <class... Shapes> constexpr bool mapToThemselves()
{
  return (std::is_same_v<decltype(std::declval<Shapes const&>().map(ccXform<2>())), Shapes> && ...);
}
static_assert(mapToThemselves<ccLine, ccLineSeg, ccPointSet, ccCoordAxes, ccPolyline, ccPolygon, ccAffineRectangle,
                              ccGenRect, ccCircle, ccEllipse, ccEllipse2, ccEllipseArc, ccEllipseArc2, ccEllipseAnnulus,
                              ccGenAnnulus, ccEllipseAnnulusSection, ccGenPoly, cc2Wireframe, ccBezierCurve,
                              ccBezierPath, ccDeBoorSpline, ccHermiteSpline, ccInterpSpline, ccShapeTree>());

// One shape does not turn into another by itself.
template <class To, class... From> constexpr bool onlyExplicitly()
{
  return ((std::is_constructible_v<To, From> && !std::is_convertible_v<From, To>)&&...);
}
static_assert(onlyExplicitly<ccGenRect, ccRect, ccAffineRectangle, ccCircle, ccEllipse, ccEllipse2>());
static_assert(onlyExplicitly<ccAffineRectangle, ccRect, ccGenRect>());
static_assert(onlyExplicitly<ccEllipse, ccCircle>() && onlyExplicitly<ccEllipse2, ccCircle, ccEllipse>());
static_assert(onlyExplicitly<ccEllipseArc2, ccEllipseArc>() && onlyExplicitly<ccGenPoly, ccRect, ccCircle>());
static_assert(onlyExplicitly<cc2SegmentLine, ccLineSeg>() && onlyExplicitly<cc2SegmentArc, ccEllipseArc>());

// A spline is copied as what it is, never in part.
static_assert(!std::is_copy_constructible_v<ccCubicSpline> && !std::is_copy_assignable_v<ccCubicSpline>);

// What handles call, as they call it.
template <class A, class B> constexpr bool same = std::is_same_v<std::remove_cvref_t<A>, B>;

static_assert(requires(ccGenPoly p, ccGenPoly const c, ccRadian a, ccXform<2> x) {
  requires same<decltype(c.numVertices()), long> && same<decltype(c.numSegments()), long> &&
      same<decltype(c.isOpen()), bool>;
  requires same<decltype(c.lineSegment(0L, true)), ccLineSeg> && same<decltype(c.arcSegment(0L, true)), ccEllipseArc>;
  requires same<decltype(c.encloseRect(x)), ccRect> && same<decltype(c.encloseRect()), ccRect>;
  requires same<decltype(c.segmentAngleSpan(0L)), ccRadian> && same<decltype(c.vertexRoundingSize(0L)), double>;
  requires same<decltype(c.previousSegmentIndex(0L)), long> && same<decltype(c.nextSegmentIndex(0L)), long>;
  requires same<decltype(c.previousVertexIndex(0L)), long> && same<decltype(c.nextVertexIndex(0L)), long>;
  requires same<decltype(c.isLineSegment(0L)), bool> && same<decltype(c.isValid()), bool>;
  p.open(), p.vertexPoint(0L, c.vertexPoint(0L)), p.deleteVertex(0L), p.vertexRoundingSize(0L, 1.0),
      p.segmentAngleSpan(0L, a);
  c.distToPoint(V());
});
static_assert(requires(cc2Wireframe w, cc2Wireframe const c, V p, ccRadian a, ccDimTol t) {
  cc2Wireframe(ccGenPoly(), t);
  w.insertVertex(0L, p, 0.0, a, t), w.insertVertex(p, 0.0, a, t), w.close(a, t), w.segmentLengthTol(0L, t),
      w.polarity(true);
  requires same<decltype(c.segmentLengthTol(0L)), ccDimTol> && same<decltype(c.isPolarityReversed()), bool>;
  requires same<decltype(c.map(cc2Rigid::I, 1.0)), cc2Wireframe>;
});
static_assert(requires(ccSMDGDPoly s, ccSMDGDPoly const c, ccSMDGDPolyVertex v, std::vector<ccSMDGDPoly> out,
                       std::vector<long> l) {
  ccSMDGDPoly(cc2Wireframe(), "poly"), ccSMDGDPoly("poly");
  requires same<decltype(c.vertex(0L, false)), ccSMDGDPolyVertex>;
  requires same<decltype(ccSMDGDPoly::triangle(1.0, 2.0, V())), ccSMDGDPoly>;
  requires same<decltype(ccSMDGDPolyPrivate::poly(ccGenPoly())), ccSMDGDPoly>;
  requires same<decltype(ccSMDGDPolyPrivate::wireframe(c)), cc2Wireframe>;
  requires same<decltype(ccSMDGDPolyPrivate::isRectilinear(c)), bool>;
  requires same<decltype(ccSMDGDPolyPrivate::dominantAngle(c)), ccRadian>;
  requires same<decltype(ccSMDGDPolyPrivate::vertexAngle(c, 0)), ccRadian>;
  requires same<decltype(ccSMDGDPolyPrivate::arcSegment_(c, 0)), cc2SegmentArc>;
  requires same<decltype(ccSMDGDPolyPrivate::roundedArcSegment_(c, 0)), cc2SegmentArc>;
  V(ccSMDGDPolyPrivate::roundPoint(c, 0)), v.point = V();
  ccSMDGDPolyPrivate::snapRectilinear(s), ccSMDGDPolyPrivate::closeRectilinear(s);
  ccSMDGDPolyPrivate::replaceVertexRectilinear(s, 0L, v), ccSMDGDPolyPrivate::deleteSegments(c, l, out);
});
static_assert(requires(cc2SegmentLine const l, cc2SegmentArc const a) {
  V(l.closestPoint(V())), V(l.midPoint()), V(a.closestPoint(V())), V(a.midPoint_());
  requires same<decltype(l.angle()), ccRadian> && same<decltype(a.midDirection()), ccRadian>;
  requires same<decltype(a.xform()), ccXform<2>> && same<decltype(a.start()), ccRadian> &&
      same<decltype(a.span()), ccRadian>;
});
static_assert(requires(ccPointSet const s, ccXform<2> x) {
  V(s[0]), s.distToPoint(V()), V(s.pos());
  requires same<decltype(s.angle()), ccRadian> && same<decltype(s.degen()), bool>;
  requires same<decltype(s.mapCentered(x)), ccPointSet> && same<decltype(s.points()), std::vector<V>>;
});
static_assert(requires(ccEllipseAnnulusSection const s, ccEllipse const e, ccRadian a) {
  ccEllipseAnnulusSection(V(), 1.0, 2.0, a, a, true, true, true), ccEllipseAnnulusSection(e, e, a, a, true, true, true);
  ccEllipseAnnulusSection(ccEllipseAnnulus(e, e), a, a, true, true, true);
  requires same<decltype(e.unit()), ccEllipse::ccEllipseUnit> && same<decltype(e.unit().matrix()), ccMatrix<2>>;
  ccGenAnnulus(V(), V(), V(), a, V(), V()), ccGenAnnulus(ccGenRect(), ccGenRect());
});
static_assert(requires(ccBezierCurve b, ccCubicSpline& s, ccDeBoorSpline d, ccHermiteSpline h, ccInterpSpline i,
                       ccXform<2> x) {
  V(b.controlPoint(0L)), b.controlPoint(0L, V()), b.weight(0L, b.weight(0L)), b.encloseRect(), b.distToPoint(V());
  requires same<decltype(b.controlPoints()), std::vector<V>>;
  requires same<decltype(s.numControlPoints()), long> && same<decltype(s.numBezierCurves()), long>;
  requires same<decltype(s.bezierCurve(0L)), ccBezierCurve> && same<decltype(s.isEmpty()), bool>;
  requires same<decltype(s.map(x)), ccPtrHandle_const<ccCubicSpline>> &&
      same<decltype(s.clone()), ccPtrHandle<ccCubicSpline>>;
  s.addControlPoint(V()), s.controlPoint(0L, V()), s.insertControlPoint(0L, V()), s.deleteControlPoint(0L),
      s.isClosed(s.isClosed());
  d.isClosed(true), d.addControlPoint(V(), 1.0), d.addControlPoint(V()), d.weight(0L, 1.0);
  h.controlTangent(0L, h.controlTangent(0L)), i.isClosed(true), i.endConditions(i.endConditions());
});
static_assert(requires(ccShape const& s, ccXform<2> x) {
  requires same<decltype(s.clone()), ccPtrHandle<ccShape>> && same<decltype(s.map(x)), ccPtrHandle_const<ccShape>>;
  requires same<decltype(s.encloseGenRect()), ccGenRect>;
  requires same<decltype(cfShapeMapShapePosition(s, x)), ccPtrHandle_const<ccShape>>;
});

} // namespace

TEST(ImageClass, isTheSameForEachClassOrTheOneThatHoldsItExactly)
{
  struct Map {
    char const* name;
    ccXform<2> x;
    bool isSimilarity, keepsRect;
  };
  ccMatrix<2> const turn(deg(20), 3);
  Map const maps[] = {
      {"identity", ccXform<2>(), true, true},
      {"translation", ccXform<2>(1, 1, V(3, 4)), true, true},
      {"scales", ccXform<2>(2, 3, V(3, 4)), false, true},
      {"similarity", ccXform<2>(turn, V(3, 4)), true, false},
      {"mirror", ccXform<2>(-1, 1, V(3, 4)), true, false},
      {"half a turn", ccXform<2>(-1, -1, V()), true, false},
      {"uneven", ccXform<2>(turn * ccMatrix<2>(1, 0.5, 0, 2), V(3, 4)), false, false},
  };
  Random random(1);
  for (Family const& family : families())
    for (Map const& map : maps)
      for (int i = 0; i < rounds(20); ++i) {
        SCOPED_TRACE(std::string(family.name) + ", " + map.name);
        ccPtrHandle_const<ccShape> const shape = family.make(random), image = shape->map(map.x);
        ccShape const &from = *shape, &to = *image;
        std::type_index expected = typeid(from);
        auto const* poly = dynamic_cast<ccGenPoly const*>(shape.get());
        if (expected == typeid(ccRect) && !map.keepsRect)
          expected = typeid(ccAffineRectangle);
        if (expected == typeid(ccCircle) && !map.isSimilarity)
          expected = typeid(ccEllipse2);
        if (poly && !map.isSimilarity)
          for (ccSMDGDPolyVertex const& v : poly->vertices())
            if (v.roundingSize > 0 || v.span.value() != 0)
              expected = typeid(ccBezierPath);

        EXPECT_EQ(std::type_index(typeid(to)), expected);
      }
}

TEST(ImageClass, aTypedMapThatWouldChangeTheClassIsRefused)
{
  ccXform<2> const uneven(2, 3, V());

  EXPECT_THROW(ccCircle(V(), 1).map(uneven), ccShapesError::BadParams);
  EXPECT_THROW(ccGenPoly(ccCircle(V(), 1)).map(uneven), ccShapesError::BadParams);
  EXPECT_THROW(cc2Wireframe(ccGenPoly(ccCircle(V(), 1)), ccDimTol()).map(uneven), ccShapesError::BadParams);
  EXPECT_EQ(ccGenPoly(ccRect(V(1, 1), V(2, 2))).map(uneven), ccGenPoly(ccRect(V(2, 3), V(4, 6))));
}

TEST(ShapeErrors, carryTheirNumberAndSayWhatWasWrong)
{
  auto const check = [](ccException const& e, long number, std::string const& text) {
    EXPECT_EQ(e.errorNumber(), number);
    EXPECT_EQ(e.message(), text);
  };
  try {
    ccCircle(V(), -1);
    ADD_FAILURE();
  } catch (ccShapesError::BadParams const& e) {
    check(e, 0x10000142, "radius of a circle");
  }
  try {
    ccEllipse(V(), 1, 0, deg(0)).unit();
    ADD_FAILURE();
  } catch (ccShapesError::DegenerateShape const& e) {
    check(e, 0x10000140, "unit of an ellipse with radius 0");
  }
  try {
    ccGenPoly().close();
    ADD_FAILURE();
  } catch (ccShapesError::BadGeom const& e) {
    check(e, 0x10000141, "a closed polygon of fewer than two vertices");
  }
  try {
    ccLine(V(), V());
    ADD_FAILURE();
  } catch (ccMathError::Singular const& e) {
    check(e, 0x10000130, "unit of a zero vector");
  }
}
