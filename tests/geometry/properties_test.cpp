// The properties that every shape has, over random shapes of every family.
#include "geometry/all.h"
#include "tests/geometry/families.h"

#include <thread>

using namespace krs_test;

namespace {

using Handle = ccPtrHandle_const<ccShape>;

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

TEST(Shapes, changingThePositionByTheIdentityGivesAnEqualShape)
{
  Random random(6);
  for (Family const& family : families())
    for (int i = 0; i < rounds(30); ++i) {
      Handle const shape = family.make(random), same = cfShapeMapShapePosition(*shape, ccXform<2>());
      ASSERT_EQ(Sampler(*same, 5).points, Sampler(*shape, 5).points) << family.name;
    }
}

TEST(Shapes, changingThePositionMovesTheBoxesCentreAndKeepsTheOutline)
{
  Random random(7);
  for (Family const& family : families())
    for (int i = 0; i < rounds(60); ++i) {
      Handle const shape = family.make(random);
      if (dynamic_cast<ccShapeTree const*>(shape.get()))
        continue;  // spreads its parts
      SCOPED_TRACE(family.name);
      ccXform<2> const x = random.affine();
      Handle const moved = cfShapeMapShapePosition(*shape, x);
      Sampler const before(*shape, 5), after(*moved, 5);
      V const shift = x.mapPoint(shape->encloseRect().center()) - shape->encloseRect().center();
      double const tolerance = 1e-9 * (sizeOf(before) + sizeOf(after));

      expectNear(moved->encloseRect().center(), x.mapPoint(shape->encloseRect().center()), tolerance);
      ASSERT_EQ(after.points.size(), before.points.size());
      for (std::size_t k = 0; k < before.points.size(); ++k)
        expectNear(after.points[k], before.points[k] + shift, tolerance);
    }
}

TEST(Shapes, twoThreadsReadThemAtOnce)
{
  Random random(8);
  std::vector<Handle> shapes;
  std::vector<double> alone;
  for (Family const& family : families())
    for (int i = 0; i < 20; ++i) {
      shapes.push_back(family.make(random));
      alone.push_back(shapes.back()->distanceToPoint(V(3, 4)) + shapes.back()->encloseRect().width());
    }
  auto const measure = [&](std::vector<double>& out) {
    for (Handle const& s : shapes)
      out.push_back(s->distanceToPoint(V(3, 4)) + s->encloseRect().width());
  };
  std::vector<double> first, second;
  std::thread other([&] { measure(first); });
  measure(second);
  other.join();

  EXPECT_EQ(first, alone);
  EXPECT_EQ(second, alone);
}
