#include "geometry/cubic_spline.h"

#include "geometry/deboor_spline.h"
#include "geometry/hermite_spline.h"
#include "geometry/interp_spline.h"
#include "tests/geometry/spline_probe.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace spline_probe;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Kind {
  char const* name;
  ccPtrHandle<ccCubicSpline> spline;
};

// One empty spline of each class and setting.
std::vector<Kind> kinds()
{
  std::vector<Kind> all{{"de Boor", new ccDeBoorSpline}, {"Hermite", new ccHermiteSpline}};
  char const* const names[] = {"uniform", "chord length", "centripetal"};
  for (long mode = 0; mode < 3; ++mode)
    all.push_back({names[mode], new ccInterpSpline({}, false, mode)});
  auto* const given = new ccInterpSpline({}, false, 1);
  given->endConditions(1);
  given->startTangent(ccVector<2>(30, -60));
  given->endTangent(ccVector<2>(-10, 90));
  all.push_back({"given end tangents", given});
  return all;
}

std::vector<Kind> kinds(Points const& points, bool closed)
{
  std::vector<Kind> all = kinds();
  for (Kind const& kind : all) {
    kind.spline->isClosed(closed);
    for (ccVector<2> const& p : points)
      kind.spline->addControlPoint(p);
  }
  return all;
}

// The same, with what makes the classes different set to random values.
std::vector<Kind> randomKinds(Random& random, Points const& points, bool closed)
{
  std::vector<Kind> all = kinds(points, closed);
  for (Kind const& kind : all) {
    auto* const deBoor = dynamic_cast<ccDeBoorSpline*>(kind.spline.get());
    auto* const hermite = dynamic_cast<ccHermiteSpline*>(kind.spline.get());
    for (long i = 0; i < kind.spline->numControlPoints(); ++i) {
      if (deBoor)
        deBoor->weight(i, std::exp(random.number(-4, 4)));
      if (hermite && random.whole(0, 1) == 1)
        hermite->controlTangent(i, random.point());
    }
  }
  return all;
}

bool equal(ccCubicSpline const& a, ccCubicSpline const& b)
{
  if (auto const* s = dynamic_cast<ccDeBoorSpline const*>(&a))
    return *s == dynamic_cast<ccDeBoorSpline const&>(b);
  if (auto const* s = dynamic_cast<ccHermiteSpline const*>(&a))
    return *s == dynamic_cast<ccHermiteSpline const&>(b);
  return dynamic_cast<ccInterpSpline const&>(a) == dynamic_cast<ccInterpSpline const&>(b);
}

bool isInterp(ccCubicSpline const& s) { return dynamic_cast<ccInterpSpline const*>(&s) != nullptr; }

void forRandomSplines(unsigned seed, int count, std::function<void(Random&, ccCubicSpline&)> const& body)
{
  Random random(seed);
  for (long round = 0; round < rounds(count); ++round) {
    Points const points = random.points(random.whole(1, 9));
    for (Kind const& kind : randomKinds(random, points, random.whole(0, 1) == 1)) {
      SCOPED_TRACE(std::string(kind.name) + ", round " + std::to_string(round));
      body(random, *kind.spline);
    }
  }
}

}  // namespace

TEST(CubicSpline, isOpenAndEmptyAndUniformWhenNew)
{
  ccDeBoorSpline const deBoor;
  ccHermiteSpline const hermite;
  ccInterpSpline const interp;
  for (ccCubicSpline const* s : {static_cast<ccCubicSpline const*>(&deBoor), static_cast<ccCubicSpline const*>(&hermite),
                                 static_cast<ccCubicSpline const*>(&interp)}) {
    EXPECT_FALSE(s->isClosed());
    EXPECT_TRUE(s->isEmpty());
    EXPECT_EQ(s->numControlPoints(), 0);
    EXPECT_EQ(s->intervalMode(), 0);
  }
  EXPECT_EQ(interp.endConditions(), 0);
}

TEST(CubicSpline, withoutPointsIsNeverTouchedAndHasNoOutline)
{
  for (bool closed : {false, true})
    for (Kind const& kind : kinds({}, closed)) {
      Strokes strokes;
      kind.spline->outline(strokes);

      EXPECT_EQ(kind.spline->numBezierCurves(), 0) << kind.name;
      EXPECT_EQ(kind.spline->distToPoint(ccPoint(0, 0)), kInfinity) << kind.name;
      EXPECT_TRUE(kind.spline->encloseRect().isNull()) << kind.name;
      EXPECT_EQ(strokes.steps, "") << kind.name;
    }
}

TEST(CubicSpline, ofOnePointIsThatPoint)
{
  for (bool closed : {false, true})
    for (Kind const& kind : kinds({{3, 4}}, closed)) {
      Strokes strokes;
      kind.spline->outline(strokes);

      EXPECT_EQ(kind.spline->distToPoint(ccPoint(0, 0)), 5) << kind.name;
      EXPECT_EQ(kind.spline->encloseRect(), ccRect(ccPoint(3, 4), ccVector<2>(0, 0))) << kind.name;
      EXPECT_EQ(strokes.steps, closed ? "MCZ" : "P") << kind.name;
      EXPECT_EQ(strokes.starts.front(), ccVector<2>(3, 4)) << kind.name;
      EXPECT_EQ(strokes.ends.back(), ccVector<2>(3, 4)) << kind.name;
    }
}

TEST(CubicSpline, hasItsNumberOfCurvesForEachNumberOfPoints)
{
  long const deBoorOpen[] = {0, 0, 1, 1, 1, 2, 3, 4};
  long const throughPointsOpen[] = {0, 0, 1, 2, 3, 4, 5, 6};
  Points points;
  for (long n = 0; n < 8; ++n) {
    for (Kind const& kind : kinds(points, false)) {
      bool const deBoor = dynamic_cast<ccDeBoorSpline*>(kind.spline.get()) != nullptr;
      EXPECT_EQ(kind.spline->numBezierCurves(), (deBoor ? deBoorOpen : throughPointsOpen)[n]) << kind.name << n;
    }
    for (Kind const& kind : kinds(points, true))
      EXPECT_EQ(kind.spline->numBezierCurves(), n) << kind.name << n;
    points.push_back(ccVector<2>(static_cast<double>(n), static_cast<double>(n * n)));
  }
}

TEST(CubicSpline, isOneStrokeWhileItGrows)
{
  Random random(1);
  for (long n = 2; n < 9; ++n)
    for (bool closed : {false, true}) {
      Points const points = random.points(n);
      for (Kind const& kind : randomKinds(random, points, closed)) {
        SCOPED_TRACE(std::string(kind.name) + " of " + std::to_string(n));
        Strokes strokes;
        kind.spline->outline(strokes);

        std::size_t const curves = static_cast<std::size_t>(kind.spline->numBezierCurves());
        EXPECT_EQ(strokes.steps, 'M' + std::string(curves, 'C') + (closed ? "Z" : ""));
        for (std::size_t i = 1; i < strokes.starts.size(); ++i)
          EXPECT_EQ(strokes.starts[i], strokes.ends[i - 1]);
        ASSERT_FALSE(strokes.ends.empty());
        if (closed) {
          EXPECT_EQ(strokes.ends.back(), strokes.starts.front());
        } else {
          EXPECT_EQ(strokes.starts.front(), points.front());
          EXPECT_EQ(strokes.ends.back(), points.back());
        }
      }
    }
}

TEST(CubicSpline, insertsBeforeAnyPointAndAtTheEnd)
{
  for (Kind const& kind : kinds({{1, 0}, {2, 0}}, false)) {
    kind.spline->insertControlPoint(0, ccPoint(0, 0));
    kind.spline->insertControlPoint(3, ccPoint(9, 0));
    kind.spline->insertControlPoint(2, ccPoint(5, 0));
    kind.spline->addControlPoint(ccPoint(7, 0));

    EXPECT_EQ(kind.spline->controlPoints(), (Points{{0, 0}, {1, 0}, {5, 0}, {2, 0}, {9, 0}, {7, 0}})) << kind.name;
  }
}

TEST(CubicSpline, insertionIsTheSameAsBuildingInOrder)
{
  Random random(2);
  for (long round = 0; round < rounds(20); ++round) {
    Points const points = random.points(random.whole(1, 7));
    bool const closed = random.whole(0, 1) == 1;
    std::vector<Kind> const built = kinds(points, closed);
    for (std::size_t left = 0; left < points.size(); ++left) {
      Points fewer = points;
      fewer.erase(fewer.begin() + static_cast<long>(left));
      std::vector<Kind> const others = kinds(fewer, closed);
      for (std::size_t k = 0; k < built.size(); ++k) {
        others[k].spline->insertControlPoint(static_cast<long>(left), points[left]);
        EXPECT_TRUE(equal(*others[k].spline, *built[k].spline)) << built[k].name;
      }
    }
  }
}

TEST(CubicSpline, deletionUndoesInsertion)
{
  forRandomSplines(3, 40, [](Random& random, ccCubicSpline& s) {
    if (s.numControlPoints() < 2)
      return;
    ccPtrHandle<ccCubicSpline> const changed = s.clone();
    long const i = random.whole(0, s.numControlPoints());
    changed->insertControlPoint(i, random.point());
    EXPECT_FALSE(equal(*changed, s));
    changed->deleteControlPoint(i);
    EXPECT_TRUE(equal(*changed, s));
  });
}

TEST(CubicSpline, settingAPointIsTheSameAsBuildingWithIt)
{
  Points const points{{0, 0}, {5, 1}, {9, 7}, {2, 8}, {-3, 4}};
  Points moved = points;
  moved[2] = ccVector<2>(20, -6);
  for (bool closed : {false, true}) {
    std::vector<Kind> const before = kinds(points, closed), after = kinds(moved, closed);
    for (std::size_t k = 0; k < before.size(); ++k) {
      before[k].spline->controlPoint(2, moved[2]);
      EXPECT_EQ(before[k].spline->controlPoint(2), moved[2]) << before[k].name;
      EXPECT_TRUE(equal(*before[k].spline, *after[k].spline)) << before[k].name;
    }
  }
}

TEST(CubicSpline, deletionAtTwoPointsDoesNothing)
{
  for (Kind const& kind : kinds({{1, 2}, {3, 4}}, false)) {
    ccPtrHandle<ccCubicSpline> const before = kind.spline->clone();
    for (long i : {0L, 1L, 2L, -1L})
      EXPECT_NO_THROW(kind.spline->deleteControlPoint(i)) << kind.name;
    EXPECT_TRUE(equal(*kind.spline, *before)) << kind.name;
  }
  for (Kind const& kind : kinds({{1, 2}}, true)) {
    EXPECT_NO_THROW(kind.spline->deleteControlPoint(0)) << kind.name;
    EXPECT_EQ(kind.spline->numControlPoints(), 1) << kind.name;
  }
}

TEST(CubicSpline, deletionAtThreePointsLeavesTheOthers)
{
  for (Kind const& kind : kinds({{1, 2}, {3, 4}, {5, 6}}, false)) {
    kind.spline->deleteControlPoint(1);
    EXPECT_EQ(kind.spline->controlPoints(), (Points{{1, 2}, {5, 6}})) << kind.name;
  }
}

TEST(CubicSpline, badIndicesThrowAndChangeNothing)
{
  for (Kind const& kind : kinds({{1, 2}, {3, 4}, {5, 7}}, false)) {
    ccCubicSpline& s = *kind.spline;
    ccPtrHandle<ccCubicSpline> const before = s.clone();
    for (long i : {-1L, 3L, 1000000L}) {
      EXPECT_THROW(s.controlPoint(i), ccShapesError::BadParams) << kind.name;
      EXPECT_THROW(s.controlPoint(i, ccPoint()), ccShapesError::BadParams) << kind.name;
      EXPECT_THROW(s.deleteControlPoint(i), ccShapesError::BadParams) << kind.name;
      EXPECT_THROW(s.bezierCurve(i), ccShapesError::BadParams) << kind.name;
    }
    EXPECT_THROW(s.insertControlPoint(-1, ccPoint()), ccShapesError::BadParams) << kind.name;
    EXPECT_THROW(s.insertControlPoint(4, ccPoint()), ccShapesError::BadParams) << kind.name;
    EXPECT_THROW(s.bezierCurve(s.numBezierCurves()), ccShapesError::BadParams) << kind.name;
    EXPECT_TRUE(equal(s, *before)) << kind.name;
  }
}

TEST(CubicSpline, pointsThatAreNotFiniteThrowAndChangeNothing)
{
  for (Kind const& kind : kinds({{1, 2}, {3, 4}, {5, 7}}, false)) {
    ccCubicSpline& s = *kind.spline;
    ccPtrHandle<ccCubicSpline> const before = s.clone();
    for (ccPoint const& p : {ccPoint(kNan, 0), ccPoint(0, kInfinity), ccPoint(-kInfinity, kNan)}) {
      EXPECT_THROW(s.controlPoint(1, p), ccShapesError::BadParams) << kind.name;
      EXPECT_THROW(s.insertControlPoint(1, p), ccShapesError::BadParams) << kind.name;
      EXPECT_THROW(s.addControlPoint(p), ccShapesError::BadParams) << kind.name;
    }
    EXPECT_TRUE(equal(s, *before)) << kind.name;
  }
  EXPECT_THROW(ccDeBoorSpline({{0, 0}, {0, kNan}}), ccShapesError::BadParams);
  EXPECT_THROW(ccHermiteSpline({{0, 0}, {0, kNan}}), ccShapesError::BadParams);
  EXPECT_THROW(ccInterpSpline({{0, 0}, {0, kNan}}), ccShapesError::BadParams);
}

TEST(CubicSpline, onlyInterpolationKnowsChordLengths)
{
  for (Kind const& kind : kinds({{1, 2}, {3, 4}, {5, 7}}, false)) {
    for (long mode : {-1L, 3L})
      EXPECT_THROW(kind.spline->intervalMode(mode), ccShapesError::BadParams) << kind.name;
    for (long mode : {1L, 2L, 0L}) {
      if (isInterp(*kind.spline)) {
        kind.spline->intervalMode(mode);
        EXPECT_EQ(kind.spline->intervalMode(), mode) << kind.name;
      } else if (mode == 0) {
        EXPECT_NO_THROW(kind.spline->intervalMode(mode)) << kind.name;
      } else {
        EXPECT_THROW(kind.spline->intervalMode(mode), ccShapesError::BadParams) << kind.name;
        EXPECT_EQ(kind.spline->intervalMode(), 0) << kind.name;
      }
    }
  }
}

TEST(CubicSpline, closingAndOpeningRestoresIt)
{
  forRandomSplines(4, 40, [](Random&, ccCubicSpline& s) {
    ccPtrHandle<ccCubicSpline> const changed = s.clone();
    changed->isClosed(!s.isClosed());
    EXPECT_NE(changed->isClosed(), s.isClosed());
    EXPECT_FALSE(equal(*changed, s));
    changed->isClosed(s.isClosed());
    EXPECT_TRUE(equal(*changed, s));
  });
}

TEST(CubicSpline, cloneIsEqualAndIndependent)
{
  forRandomSplines(5, 20, [](Random& random, ccCubicSpline& s) {
    ccPtrHandle<ccCubicSpline> const copy = s.clone();
    EXPECT_TRUE(equal(*copy, s));
    ccVector<2> const before = s.controlPoint(0);
    copy->controlPoint(0, before + random.point() + ccVector<2>(1000, 0));
    EXPECT_EQ(s.controlPoint(0), before);
    EXPECT_FALSE(equal(*copy, s));
  });
}

TEST(CubicSpline, ofEqualPointsIsThatPoint)
{
  Random random(6);
  for (long n = 1; n < 8; ++n)
    for (bool closed : {false, true}) {
      ccVector<2> const p = random.point();
      for (Kind const& kind : kinds(Points(static_cast<std::size_t>(n), p), closed)) {
        if (std::string(kind.name) == "given end tangents")
          continue;  // loops through the point
        if (auto* const deBoor = dynamic_cast<ccDeBoorSpline*>(kind.spline.get()))
          for (long i = 0; i < n; ++i)
            deBoor->weight(i, std::exp(random.number(-9, 9)));
        for (long k = 0; k < kind.spline->numBezierCurves(); ++k)
          for (long i = 0; i < 4; ++i)
            EXPECT_EQ(kind.spline->bezierCurve(k).controlPoint(i), p) << kind.name << n << closed;
        EXPECT_EQ(kind.spline->distToPoint(p), 0) << kind.name << n << closed;
      }
    }
}

TEST(CubicSpline, mapsPointByPointUnderAnyAffineMap)
{
  forRandomSplines(7, 60, [](Random& random, ccCubicSpline& s) {
    ccXform<2> x = random.xform();
    if (random.whole(0, 4) == 0)  // a singular one
      x = ccXform<2>(ccMatrix<2>(1, 2, 2, 4), random.point());
    ccPtrHandle_const<ccCubicSpline> const image = s.map(x);

    ASSERT_EQ(image->numBezierCurves(), s.numBezierCurves());
    Points const before = samples(s, 7), after = samples(*image, 7);
    double const tolerance = 1e-12 * (sizeOf(after) + 4 * sizeOf(before));
    for (std::size_t i = 0; i < before.size(); ++i)
      EXPECT_LE(after[i].distance(x.mapPoint(before[i])), tolerance);
  });
}

TEST(CubicSpline, mapKeepsTheClassThroughEitherBase)
{
  for (Kind const& kind : kinds({{1, 2}, {3, 4}, {5, 7}}, true)) {
    ccCubicSpline const& s = *kind.spline;
    ccXform<2> const x(2, 3, ccVector<2>(5, 7));
    ccPtrHandle_const<ccShape> const image = static_cast<ccShape const&>(s).map(x);
    ccShape const& mapped = *image;
    EXPECT_EQ(typeid(mapped), typeid(s)) << kind.name;
    EXPECT_TRUE(equal(dynamic_cast<ccCubicSpline const&>(*image), *s.map(x))) << kind.name;
    EXPECT_TRUE(s.map(x)->isClosed()) << kind.name;
    EXPECT_EQ(s.map(x)->controlPoint(2), ccVector<2>(15, 28)) << kind.name;
    EXPECT_TRUE(equal(*s.map(ccXform<2>::I), s)) << kind.name;
    ccPtrHandle<ccShape> const copy = static_cast<ccShape const&>(s).clone();
    EXPECT_TRUE(equal(dynamic_cast<ccCubicSpline const&>(*copy), s)) << kind.name;
  }
}

TEST(CubicSpline, mapAndItsInverseGiveItBack)
{
  forRandomSplines(8, 60, [](Random& random, ccCubicSpline& s) {
    ccXform<2> const x = random.xform();
    ccPtrHandle_const<ccCubicSpline> const back = s.map(x)->map(x.inverse());

    Points const before = samples(s, 5), after = samples(*back, 5);
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t i = 0; i < before.size(); ++i)
      EXPECT_LE(after[i].distance(before[i]), 1e-9 * sizeOf(before));
    for (long i = 0; i < s.numControlPoints(); ++i)
      EXPECT_LE(back->controlPoint(i).distance(s.controlPoint(i)), 1e-9 * sizeOf(s.controlPoints()));
  });
}

TEST(CubicSpline, boxIsTight)
{
  forRandomSplines(9, 25, [](Random&, ccCubicSpline& s) {
    if (s.numBezierCurves() == 0)
      return;
    ccRect const box = s.encloseRect();
    double const tolerance = 1e-9 * sizeOf(samples(s, 20));
    EXPECT_NEAR(box.ul().x(), least(s, [](ccVector<2> const& p) { return p.x(); }), tolerance);
    EXPECT_NEAR(box.ul().y(), least(s, [](ccVector<2> const& p) { return p.y(); }), tolerance);
    EXPECT_NEAR(box.lr().x(), -least(s, [](ccVector<2> const& p) { return -p.x(); }), tolerance);
    EXPECT_NEAR(box.lr().y(), -least(s, [](ccVector<2> const& p) { return -p.y(); }), tolerance);
  });
}

TEST(CubicSpline, boxHoldsAPieceThatLiesInTheOrigin)
{
  // The box of that piece alone would be the null rectangle, which encloses nothing.
  ccDeBoorSpline const s({{0, 0}, {0, 0}, {0, 0}, {0, 0}, {10, 20}, {10, 20}, {10, 20}, {10, 20}});
  EXPECT_EQ(s.encloseRect(), ccRect(ccPoint(0, 0), ccVector<2>(10, 20)));
  ccHermiteSpline h({{0, 0}, {0, 0}, {10, 20}});
  h.controlTangent(0, ccVector<2>(0, 0));
  h.controlTangent(1, ccVector<2>(0, 0));
  h.controlTangent(2, ccVector<2>(0, 0));
  EXPECT_EQ(h.encloseRect(), ccRect(ccPoint(0, 0), ccVector<2>(10, 20)));
}

TEST(CubicSpline, distanceIsThatOfTheNearestPoint)
{
  forRandomSplines(10, 25, [](Random& random, ccCubicSpline& s) {
    if (s.numBezierCurves() == 0)
      return;
    ccVector<2> const q = random.point(150);
    double const size = std::max(sizeOf(samples(s, 20)), 150.0);
    double const plain = least(s, [&](ccVector<2> const& p) { return p.distance(q); });
    EXPECT_NEAR(s.distToPoint(q), plain, 1e-9 * size);
    EXPECT_EQ(s.distanceToPoint(q), s.distToPoint(q));
  });
}

TEST(CubicSpline, hasThePropertiesOfEveryShape)
{
  using krs_test::Family;
  auto const points = [](krs_test::Random& r) {
    ccVector<2> const place = r.vector(r.chance(4) ? 1e5 : 100);
    double const size = r.magnitude(0.01, 1000);
    Points made;
    for (int i = 1 + r.below(7); i > 0; --i)
      made.push_back(i > 1 && r.chance(5) ? place : place + r.vector(size));
    return made;
  };
  Family const families[] = {
      {"ccDeBoorSpline",
       [&](krs_test::Random& r) {
         ccPtrHandle<ccDeBoorSpline> const s(new ccDeBoorSpline(points(r), r.chance(2)));
         for (long i = 0; i < s->numControlPoints(); ++i)
           s->weight(i, r.magnitude(0.01, 100));
         return ccPtrHandle_const<ccShape>(s);
       }},
      {"ccHermiteSpline",
       [&](krs_test::Random& r) {
         ccPtrHandle<ccHermiteSpline> const s(new ccHermiteSpline(points(r), r.chance(2)));
         for (long i = 0; i < s->numControlPoints(); ++i)
           if (r.chance(3))
             s->controlTangent(i, r.vector(r.magnitude(0.01, 1000)));
         return ccPtrHandle_const<ccShape>(s);
       }},
      {"ccInterpSpline",
       [&](krs_test::Random& r) {
         ccPtrHandle<ccInterpSpline> const s(new ccInterpSpline(points(r), r.chance(2), r.below(3)));
         s->endConditions(r.below(2));
         s->endTangent(r.vector(100));
         return ccPtrHandle_const<ccShape>(s);
       }},
  };
  for (Family const& family : families) {
    krs_test::outlineIsAtDistanceZero(family, 60);
    krs_test::distanceIsLipschitz(family, 60);
    krs_test::distanceAgreesWithSamples(family, 40);
    krs_test::boxHoldsAndTouches(family, 60);
    krs_test::mapAndBackRestores(family, 60);
    krs_test::mapMovesEveryPoint(family, 60);
    krs_test::distanceScalesWithSimilarities(family, 60);
    krs_test::cloneIsEqual(family, 10);
  }
}
