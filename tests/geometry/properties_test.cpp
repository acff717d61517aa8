// The properties that every shape has, over random shapes of every family.
#include "geometry/affine_rect.h"
#include "geometry/annulus_section.h"
#include "geometry/coord_axes.h"
#include "geometry/lines.h"
#include "geometry/point_set.h"
#include "geometry/polygon.h"
#include "geometry/shape_tree.h"
#include "tests/geometry/shape_support.h"

using namespace krs_test;

namespace {

using Handle = ccPtrHandle_const<ccShape>;

// A place near the origin or far from it.
V place(Random& r) { return r.vector(r.chance(4) ? 1e5 : 100); }
double length(Random& r) { return r.chance(10) ? 0.0 : r.magnitude(0.01, 1000); }
V lengths(Random& r) { return V(length(r), length(r)); }
V fractions(Random& r) { return V(r.chance(4) ? 0 : r.chance(3) ? 1 : r.in(0, 1), r.chance(4) ? 0 : r.chance(3) ? 1 : r.in(0, 1)); }
ccRadian span(Random& r) { return r.chance(8) ? deg(360) : r.chance(8) ? deg(90) : deg(r.in(-360, 360)); }

std::vector<V> points(Random& r, int least)
{
  std::vector<V> list(static_cast<std::size_t>(least + r.below(6)));
  V const at = place(r);
  double const size = r.magnitude(0.01, 1000);
  for (V& p : list)
    p = at + r.vector(size);
  if (list.size() > 1 && r.chance(4))
    list[1] = list[0];
  return list;
}

ccEllipse ellipse(Random& r)
{
  V const radii = r.chance(4) ? V(1, 1) * length(r) : lengths(r);
  return ccEllipse(place(r), radii, r.angle());
}

ccGenRect genRect(Random& r)
{
  return ccGenRect(place(r), length(r), length(r), r.chance(2) ? 1 : -1, deg(r.chance(3) ? 0 : r.in(-80, 80)), r.angle(),
                   fractions(r));
}

ccBezierCurve curve(Random& r)
{
  V const at = place(r);
  double const size = r.magnitude(0.01, 1000);
  std::array<ccPoint, 4> p;
  for (ccPoint& q : p)
    q = at + r.vector(size);
  if (r.chance(6))
    p[1] = p[0];
  if (r.chance(6))
    p[2] = p[1];
  if (r.chance(8))
    p[3] = p[0];
  std::array<double, 4> w{1, 1, 1, 1};
  if (!r.chance(3))
    for (double& v : w)
      v = r.magnitude(0.01, 100);
  return ccBezierCurve(p, w);
}

ccEllipseAnnulusSection section(Random& r)
{
  ccPoint const c = place(r);
  ccEllipse const first(c, lengths(r), r.angle());
  // Radii in one ratio, so that every map is exact.
  double const ratio = r.magnitude(0.2, 5);
  ccRadian const start = r.angle();
  return ccEllipseAnnulusSection(first, ccEllipse(c, first.radii() * ratio, first.rotation()), start,
                                 start + deg(r.chance(10) ? 0 : r.in(0, 359)), r.chance(2), r.chance(2), r.chance(3));
}

ccEllipseAnnulus ring(Random& r)
{
  ccPoint const c = place(r);
  return ccEllipseAnnulus(ccEllipse(c, lengths(r), r.angle()), ccEllipse(c, lengths(r), r.angle()));
}

ccBezierPath path(Random& r)
{
  ccBezierPath p;
  ccEllipseArc2 const arc(ccEllipse2(ellipse(r)), r.angle(), span(r));
  p.append(arc);
  for (int i = r.below(4); i > 0; --i) {
    ccPoint const from = p.curves().back().endPoint(), to = from + r.vector(100);
    if (r.chance(2))
      p.appendLine(from, to);
    else
      p.append(ccBezierCurve(from, from + r.vector(100), to + r.vector(100), to));
  }
  p.closed(r.chance(2));
  return p;
}

Handle tree(Random& r, int depth)
{
  ccPtrHandle<ccShapeTree> const t(new ccShapeTree);
  for (int i = 1 + r.below(3); i > 0; --i)
    t->addShape(depth > 0 && r.chance(3) ? tree(r, depth - 1)
                : r.chance(2)            ? Handle(new ccEllipse(ellipse(r)))
                                         : Handle(new ccPolyline(points(r, 1), true)));
  return t;
}

std::vector<Family> const& families()
{
  static std::vector<Family> const all = {
      {"ccLineSeg", [](Random& r) -> Handle {
         ccPoint const p = place(r);
         return new ccLineSeg(p, r.chance(8) ? p : ccPoint(place(r)));
       }},
      {"ccRect", [](Random& r) -> Handle { return new ccRect(place(r), V(length(r), length(r) * (r.chance(4) ? -1 : 1))); }},
      {"ccAffineRectangle",
       [](Random& r) -> Handle {
         return new ccAffineRectangle(place(r), length(r), length(r), r.angle(),
                                      deg(r.in(-80, 80) + (r.chance(3) ? 180 : 0)));
       }},
      {"ccGenRect", [](Random& r) -> Handle { return new ccGenRect(genRect(r)); }},
      {"ccCircle", [](Random& r) -> Handle { return new ccCircle(place(r), length(r)); }},
      {"ccEllipse", [](Random& r) -> Handle { return new ccEllipse(ellipse(r)); }},
      {"ccEllipse2", [](Random& r) -> Handle { return new ccEllipse2(ellipse(r)); }},
      {"ccEllipseArc", [](Random& r) -> Handle { return new ccEllipseArc(ellipse(r), r.angle(), span(r)); }},
      {"ccEllipseArc2", [](Random& r) -> Handle { return new ccEllipseArc2(ccEllipse2(ellipse(r)), r.angle(), span(r)); }},
      {"ccEllipseAnnulus", [](Random& r) -> Handle { return new ccEllipseAnnulus(ring(r)); }},
      {"ccGenAnnulus", [](Random& r) -> Handle { return new ccGenAnnulus(genRect(r), genRect(r)); }},
      {"ccEllipseAnnulusSection", [](Random& r) -> Handle { return new ccEllipseAnnulusSection(section(r)); }},
      {"ccBezierCurve", [](Random& r) -> Handle { return new ccBezierCurve(curve(r)); }},
      {"ccBezierPath", [](Random& r) -> Handle { return new ccBezierPath(path(r)); }},
      {"ccPointSet", [](Random& r) -> Handle { return new ccPointSet(points(r, 1)); }},
      {"ccPolyline", [](Random& r) -> Handle { return new ccPolyline(points(r, 1), r.chance(2)); }},
      {"ccPolygon", [](Random& r) -> Handle { return new ccPolygon(points(r, 1), 1 + r.below(2)); }},
      {"ccCoordAxes", [](Random& r) -> Handle { return new ccCoordAxes(place(r), place(r), place(r)); }},
      {"ccShapeTree", [](Random& r) { return tree(r, 2); }},
  };
  return all;
}

}  // namespace

TEST(Shapes, outlinesAreAtDistanceZero)
{
  for (Family const& family : families())
    outlineIsAtDistanceZero(family, 200);
}

TEST(Shapes, distancesGrowNoFasterThanTheWay)
{
  for (Family const& family : families())
    distanceIsLipschitz(family, 200);
}

TEST(Shapes, distancesAgreeWithDenseSamples)
{
  for (Family const& family : families())
    distanceAgreesWithSamples(family, 100);
}

TEST(Shapes, boxesHoldAllSamplesAndTouchThemOnFourSides)
{
  for (Family const& family : families())
    boxHoldsAndTouches(family, 100);
}

TEST(Shapes, aMapAndItsInverseGiveTheShapeBack)
{
  for (Family const& family : families())
    mapAndBackRestores(family, 200);
}

TEST(Shapes, mapsMoveEveryPointOfTheOutline)
{
  for (Family const& family : families())
    mapMovesEveryPoint(family, 200);
}

TEST(Shapes, distancesScaleWithSimilarities)
{
  for (Family const& family : families())
    distanceScalesWithSimilarities(family, 200);
}

TEST(Shapes, clonesAreEqualAndOfTheSameClass)
{
  for (Family const& family : families())
    cloneIsEqual(family, 50);
}

TEST(Shapes, shapesWithoutPointsAreInfinitelyFarAndHaveANullBox)
{
  ccPointSet const set;
  ccPolyline const chain;
  ccPolygon const polygon;
  ccBezierPath const curves;
  ccShapeTree const nothing;
  for (ccShape const* shape : std::initializer_list<ccShape const*>{&set, &chain, &polygon, &curves, &nothing}) {
    EXPECT_EQ(shape->distanceToPoint(V(3, 4)), cfInfinity);
    EXPECT_TRUE(shape->encloseRect().isNull());
    EXPECT_TRUE(Sampler(*shape, 4).points.empty());
  }
}

namespace {

// Leaves distance and box to the base class.
class Outlined : public ccShape {
public:
  explicit Outlined(ccPtrHandle_const<ccShape> const& shape) : shape_(shape) {}
  void outline(ccOutlineSink& sink) const override { shape_->outline(sink); }

protected:
  ccPtrHandle<ccShape> clone_() const override { return new Outlined(*this); }
  ccPtrHandle_const<ccShape> map_(ccXform<2> const& x) const override { return new Outlined(shape_->map(x)); }

private:
  ccPtrHandle_const<ccShape> shape_;
};

}  // namespace

TEST(Shapes, theBaseMeasuresTheOutline)
{
  Random random(5);
  for (Family const& family : families())
    for (int i = 0; i < rounds(50); ++i) {
      SCOPED_TRACE(family.name);
      Handle const shape = family.make(random);
      Outlined const outlined(shape);
      Sampler const s(*shape, 4);
      double const tolerance = 1e-9 * (sizeOf(s) + 100);
      V const p = s.points[0] + random.vector(100);

      EXPECT_NEAR(outlined.distanceToPoint(p), shape->distanceToPoint(p), tolerance);
      for (int axis = 0; axis < 2; ++axis) {
        EXPECT_NEAR(outlined.encloseRect().ul()[axis], shape->encloseRect().ul()[axis], tolerance);
        EXPECT_NEAR(outlined.encloseRect().lr()[axis], shape->encloseRect().lr()[axis], tolerance);
      }
    }
}

TEST(Shapes, theBaseCountsAPointAtTheOrigin)
{
  Outlined const outlined(new ccPointSet({V(0, 0), V(3, 0)}));

  EXPECT_EQ(outlined.encloseRect(), ccRect(V(0, 0), V(3, 0)));
  EXPECT_EQ(outlined.distanceToPoint(V(0, 2)), 2);
}
