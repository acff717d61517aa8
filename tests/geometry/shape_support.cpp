#include "tests/geometry/shape_support.h"

#include "geometry/affine_rect.h"
#include "geometry/gen_rect.h"

namespace krs_test {

namespace {

// A place around the shape, near or far.
V around(Random& random, Sampler const& s)
{
  V const p = s.points[static_cast<std::size_t>(random.below(static_cast<int>(s.points.size())))];
  V const q = s.points[static_cast<std::size_t>(random.below(static_cast<int>(s.points.size())))];
  return p + random.vector(random.magnitude(1e-3, 3)) * (p.distance(q) + 1e-3 * sizeOf(s));
}

template <class Check> void forEach(Family const& family, int n, unsigned seed, Check const& check)
{
  Random random(seed);
  for (int i = 0; i < rounds(n); ++i) {
    ccPtrHandle_const<ccShape> const shape = family.make(random);
    SCOPED_TRACE(std::string(family.name) + ", shape " + std::to_string(i));
    check(random, *shape);
    if (::testing::Test::HasFailure())
      return;
  }
}

}  // namespace

void outlineIsAtDistanceZero(Family const& family, int n)
{
  forEach(family, n, 11, [](Random&, ccShape const& shape) {
    Sampler const s(shape, 16);
    double const tolerance = 1e-9 * sizeOf(s);
    ASSERT_FALSE(s.points.empty());
    EXPECT_LE(s.tear, tolerance);
    for (V const& p : s.points)
      EXPECT_LE(shape.distanceToPoint(p), tolerance);
  });
}

void distanceIsLipschitz(Family const& family, int n)
{
  forEach(family, n, 12, [](Random& random, ccShape const& shape) {
    Sampler const s(shape, 8);
    for (int i = 0; i < 20; ++i) {
      V const p = around(random, s), q = p + random.vector(random.magnitude(1e-6, 1)) * sizeOf(s);
      double const a = shape.distanceToPoint(p), b = shape.distanceToPoint(q);
      EXPECT_GE(a, 0);
      EXPECT_GE(b, 0);
      EXPECT_LE(std::abs(a - b), p.distance(q) + 1e-9 * (sizeOf(s) + q.len()));
    }
  });
}

void distanceAgreesWithSamples(Family const& family, int n)
{
  forEach(family, n, 13, [](Random& random, ccShape const& shape) {
    Sampler const s(shape, 200);
    for (int i = 0; i < 6; ++i) {
      V const p = around(random, s);
      double const sampled = s.distance(p), tolerance = 1e-9 * (sizeOf(s) + p.len());
      EXPECT_LE(shape.distanceToPoint(p), sampled + tolerance);
      EXPECT_GE(shape.distanceToPoint(p), sampled - s.gap / 2 * 1.01 - tolerance);
    }
  });
}

void boxHoldsAndTouches(Family const& family, int n)
{
  forEach(family, n, 14, [](Random&, ccShape const& shape) {
    Sampler const s(shape, 400);
    ccRect const box = shape.encloseRect();
    V least(cfInfinity, cfInfinity), most = -least;
    for (V const& p : s.points)
      for (int axis = 0; axis < 2; ++axis) {
        least[axis] = std::min(least[axis], p[axis]);
        most[axis] = std::max(most[axis], p[axis]);
      }
    double const tolerance = 1e-9 * sizeOf(s);
    // A smooth curve leaves its extreme by the square of the step; one with a sharp bend by the step itself.
    double const loose = tolerance + 0.5 * s.gap;
    for (int axis = 0; axis < 2; ++axis) {
      EXPECT_LE(box.ul()[axis], least[axis] + tolerance);
      EXPECT_GE(box.lr()[axis], most[axis] - tolerance);
      EXPECT_GE(box.ul()[axis], least[axis] - loose);
      EXPECT_LE(box.lr()[axis], most[axis] + loose);
    }
    // Each side of the box really is reached: the shape is near the place where the samples came nearest to it.
    for (int axis = 0; axis < 2; ++axis)
      for (double const side : {box.ul()[axis], box.lr()[axis]}) {
        V nearest = s.points[0];
        for (V const& p : s.points)
          if (std::abs(p[axis] - side) < std::abs(nearest[axis] - side))
            nearest = p;
        EXPECT_LE(std::abs(nearest[axis] - side), loose);
      }
    ccGenRect const same = shape.encloseGenRect();
    EXPECT_NEAR(same.center().x(), box.center().x(), tolerance);
    EXPECT_NEAR(same.center().y(), box.center().y(), tolerance);
    EXPECT_NEAR(same.hx(), box.width() / 2, tolerance);
    EXPECT_NEAR(same.hy(), box.height() / 2, tolerance);
    EXPECT_EQ(same.orient(), ccRadian(0));
    EXPECT_EQ(same.skew(), ccRadian(0));
    EXPECT_EQ(same.handed(), 1);
    EXPECT_EQ(same.rounding(), V());
  });
}

void mapAndBackRestores(Family const& family, int n)
{
  mapAndBackRestores(family, n, [](Random& random, double) { return random.affine(); });
}

int mapAndBackRestores(Family const& family, int n, MapMaker const& maps)
{
  int images = 0;
  forEach(family, n, 15, [&](Random& random, ccShape const& shape) {
    Sampler const before(shape, 12);
    ccXform<2> const x = maps(random, sizeOf(before)), undo = x.inverse();
    ccPtrHandle_const<ccShape> image;
    try {
      image = shape.map(x);
    } catch (ccMathError::Singular const&) {
      EXPECT_TRUE(dynamic_cast<ccRect const*>(&shape) || dynamic_cast<ccAffineRectangle const*>(&shape));
      return;
    }
    ++images;
    ccPtrHandle_const<ccShape> const back = image->map(undo);
    Sampler const there(*image, 12), after(*back, 12);
    // What the way back makes of the last digits of the image.
    double const growth = std::max(undo.matrix().xScale(), undo.matrix().yScale());
    double const noise = 64 * std::numeric_limits<double>::epsilon() * growth * sizeOf(there);
    double const tolerance = 1e-9 * sizeOf(before) + noise;
    for (V const& p : before.points)
      EXPECT_LE(back->distanceToPoint(p), tolerance);
    for (V const& p : after.points)
      EXPECT_LE(shape.distanceToPoint(p), tolerance);
  });
  return images;
}

void mapMovesEveryPoint(Family const& family, int n)
{
  forEach(family, n, 16, [](Random& random, ccShape const& shape) {
    ccXform<2> const x = random.chance(2) ? random.affine() : random.similarity(random.magnitude(0.1, 10), random.chance(2));
    ccPtrHandle_const<ccShape> const image = shape.map(x);
    Sampler const before(shape, 12), after(*image, 12);
    double const tolerance = 1e-9 * (5 * sizeOf(before) + sizeOf(after));
    for (V const& p : before.points)
      EXPECT_LE(image->distanceToPoint(x.mapPoint(p)), tolerance);
    for (V const& p : after.points)
      EXPECT_LE(shape.distanceToPoint(x.inverse().mapPoint(p)), 10 * tolerance);
  });
}

void distanceScalesWithSimilarities(Family const& family, int n) { distanceScalesWithSimilarities(family, n, 0.01, 100); }

void distanceScalesWithSimilarities(Family const& family, int n, double least, double most)
{
  forEach(family, n, 17, [&](Random& random, ccShape const& shape) {
    Sampler const s(shape, 8);
    double const scale = random.magnitude(least, most);
    ccXform<2> const turn = random.similarity(scale, random.chance(2));
    ccXform<2> const x(turn.matrix(), random.vector(scale * sizeOf(s)));
    ccPtrHandle_const<ccShape> const image = shape.map(x);
    for (int i = 0; i < 6; ++i) {
      V const p = around(random, s);
      double const size = scale * (sizeOf(s) + p.len()) + x.trans().len();
      EXPECT_NEAR(image->distanceToPoint(x.mapPoint(p)), scale * shape.distanceToPoint(p), 1e-9 * size);
    }
  });
}

void cloneIsEqual(Family const& family, int n)
{
  forEach(family, n, 18, [](Random& random, ccShape const& shape) {
    ccPtrHandle<ccShape> const copy = shape.clone();
    Sampler const s(shape, 4), same(*copy, 4);
    EXPECT_NE(copy.get(), &shape);
    ccShape const& copied = *copy;
    EXPECT_EQ(typeid(copied), typeid(shape));
    EXPECT_EQ(s.points, same.points);
    V const p = around(random, s);
    EXPECT_EQ(copy->distanceToPoint(p), shape.distanceToPoint(p));
    EXPECT_EQ(copy->encloseRect(), shape.encloseRect());
  });
}

}  // namespace krs_test
