// The properties of every shape where digits are scarce: sides and radii a million to one, tiny and large coordinates,
// small shapes far away, and maps of the same kinds. Tolerances are relative to the largest coordinate.
#include "geometry/affine_rect.h"
#include "tests/geometry/families.h"

using namespace krs_test;

namespace {

struct Condition {
  char const* name;
  Scale scale;
};

Condition const conditions[] = {
    {"thin", {100, 100, 1e-4, 100}},
    {"tiny", {1e-9, 1e-9, 1e-12, 1e-9}},
    {"large", {1e9, 1e9, 1e3, 1e9}},
    {"far away", {1e9, 1e9, 0.01, 1000}},
};

// Runs a property over all families under all conditions.
template <class Check> void underAllConditions(Check const& check)
{
  for (Condition const& condition : conditions)
    for (Family const& family : families(condition.scale)) {
      SCOPED_TRACE(condition.name);
      check(family);
    }
}

ccMatrix<2> stretch(Random& r, double x, double y)
{
  return ccMatrix<2>(r.angle(), 1) * ccMatrix<2>(x, 0, 0, r.chance(2) ? y : -y) * ccMatrix<2>(r.angle(), 1);
}

} // namespace

TEST(IllConditionedShapes, outlinesAreAtDistanceZero)
{
  underAllConditions([](Family const& family) { outlineIsAtDistanceZero(family, 40); });
}

TEST(IllConditionedShapes, distancesGrowNoFasterThanTheWay)
{
  underAllConditions([](Family const& family) { distanceIsLipschitz(family, 40); });
}

TEST(IllConditionedShapes, distancesAgreeWithDenseSamples)
{
  underAllConditions([](Family const& family) { distanceAgreesWithSamples(family, 25); });
}

TEST(IllConditionedShapes, boxesHoldAllSamplesAndTouchThemOnFourSides)
{
  underAllConditions([](Family const& family) { boxHoldsAndTouches(family, 25); });
}

TEST(IllConditionedShapes, aWellConditionedMapAndItsInverseGiveTheShapeBack)
{
  underAllConditions([](Family const& family) {
    mapAndBackRestores(family, 40, [](Random& r, double size) {
      return ccXform<2>(stretch(r, r.magnitude(0.2, 5), r.magnitude(0.2, 5)), r.vector(size));
    });
  });
}

TEST(IllConditionedMaps, aStretchOfAMillionToOneAndItsInverseGiveTheShapeBack)
{
  for (Family const& family : families({100, 100, 0.1, 100})) {
    int const images = mapAndBackRestores(
        family, 60, [](Random& r, double size) { return ccXform<2>(stretch(r, 1e3, 1e-3), r.vector(size)); });
    // Under such a map the sides of a rectangle fall on one line, unless they lie along the stretch.
    bool const isRectangle = std::string(family.name) == "ccRect" || std::string(family.name) == "ccAffineRectangle";
    if (isRectangle)
      EXPECT_LE(images, rounds(60) / 20) << family.name;
    else
      EXPECT_EQ(images, rounds(60)) << family.name;
  }
}

TEST(IllConditionedMaps, aRectangleStretchedAlongItsSidesComesBack)
{
  Random random(1);
  for (int i = 0; i < rounds(500); ++i) {
    ccAffineRectangle const r(random.vector(100), random.in(0.1, 100), random.in(0.1, 100), random.angle(), deg(0));
    ccMatrix<2> const turn(r.xRotation(), 1), back(-r.xRotation(), 1);
    ccXform<2> const x(turn * ccMatrix<2>(1e3, 0, 0, random.chance(2) ? 1e-3 : -1e-3) * back, random.vector(100));

    ccAffineRectangle const image = r.map(x), same = image.map(x.inverse());
    EXPECT_NEAR(image.xLength(), 1e3 * r.xLength(), 1e-9 * image.xLength());
    for (int id = 0; id < 4; ++id)
      expectNear(same.corner(id), r.corner(id), 1e-7);
  }
}

TEST(IllConditionedMaps, tinyAndLargeScalesAndTheirInversesGiveTheShapeBack)
{
  for (double const scale : {1e-9, 1e9})
    for (Family const& family : families({100, 100, 0.1, 100}))
      mapAndBackRestores(family, 40, [&](Random& r, double size) {
        return ccXform<2>(stretch(r, scale * r.in(0.5, 2), scale * r.in(0.5, 2)), r.vector(scale * size));
      });
}

TEST(IllConditionedMaps, distancesScaleWithTinyAndLargeSimilarities)
{
  for (Family const& family : families())
    distanceScalesWithSimilarities(family, 60, 1e-9, 1e9);
}
