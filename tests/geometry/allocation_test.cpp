// Hit tests and boxes take no memory from the heap.
#include "geometry/all.h"
#include "tests/geometry/families.h"
#include "tests/support/memory_watch.h"

using namespace krs_test;

TEST(Shapes, distancesAndBoxesDoNotAllocate)
{
  ccEllipse const e(V(1, 2), 30, 10, deg(20)), outer(V(1, 2), 60, 20, deg(20));
  ccBezierCurve const curve({V(0, 0), V(10, 50), V(70, -20), V(80, 9)}, {1, 5, 0.2, 1});
  ccBezierPath path;
  path.append(ccEllipseArc2(ccEllipse2(e), deg(0), deg(300)));
  cc2Wireframe wire(ccGenPoly(ccRect(V(0, 0), V(20, 10))), ccDimTol());
  wire.segmentAngleSpan(1, deg(100));
  for (long i = 0; i < 4; ++i)
    wire.vertexRoundingSize(i, 2);
  std::vector<ccPtrHandle_const<ccShape>> const shapes = {
      new cc2Wireframe(wire),
      new ccLineSeg(V(1, 2), V(3, 4)),
      new ccRect(V(1, 2), V(30, 40)),
      new ccAffineRectangle(V(1, 2), 30, 40, deg(10), deg(20)),
      new ccGenRect(V(1, 2), V(30, 40), deg(10), V(5, 9)),
      new ccCircle(V(1, 2), 30),
      new ccEllipse(e),
      new ccEllipse2(e),
      new ccEllipseArc(e, deg(10), deg(250)),
      new ccEllipseArc2(ccEllipse2(e), deg(10), deg(250)),
      new ccEllipseAnnulus(e, outer),
      new ccGenAnnulus(V(1, 2), V(30, 40), V(50, 60), deg(10), V(5, 9), V(8, 8)),
      new ccEllipseAnnulusSection(e, outer, deg(10), deg(250)),
      new ccBezierCurve(curve),
      new ccBezierPath(path),
      new ccDeBoorSpline({V(1, 2), V(30, 4), V(9, 70), V(50, 6), V(8, 8)}, {1, 5, 0.2, 1, 3}),
      new ccHermiteSpline({V(1, 2), V(30, 4), V(9, 70)}, true),
      new ccInterpSpline({V(1, 2), V(30, 4), V(9, 70)}, true, 2),
      new ccPointSet({V(1, 2), V(3, 4)}),
      new ccPolyline({V(1, 2), V(3, 4), V(9, 9)}),
      new ccPolygon({V(1, 2), V(3, 4), V(9, 9)}, 1),
      new ccCoordAxes(V(1, 2), V(3, 4), V(9, 9)),
      new ccShapeTree({new ccCircle(V(1, 2), 30), new ccEllipse(e)}),
  };
  long const before = MemoryWatch::allocations();
  double sum = 0;
  for (auto const& shape : shapes) {
    for (int i = 0; i < 20; ++i)
      sum += shape->distanceToPoint(V(10.0 * i - 100, 37.0 * i - 300));
    sum += shape->encloseRect().width();
  }
  long const taken = MemoryWatch::allocations() - before;

  EXPECT_EQ(taken, 0);
  EXPECT_GT(sum, 0);
}

TEST(Shapes, distancesAndBoxesOfNoShapeOfAnyFamilyAllocate)
{
  Random random(1);
  for (Family const& family : families())
    for (int i = 0; i < rounds(100); ++i) {
      ccPtrHandle_const<ccShape> const shape = family.make(random);
      V const q = random.vector(200);
      long const before = MemoryWatch::allocations();
      double const d = shape->distanceToPoint(q);
      ccRect const box = shape->encloseRect();
      ccGenRect const same = shape->encloseGenRect();
      long const taken = MemoryWatch::allocations() - before;

      ASSERT_EQ(taken, 0) << family.name;
      ASSERT_TRUE(d >= 0 && cf_isFinite(box.ul()) && cf_isFinite(same.center()));
    }
}

TEST(Shapes, whatOnlyOneClassMeasuresDoesNotAllocateEither)
{
  class Outlined : public ccShape {
  public:
    explicit Outlined(ccGenRect const& r) : rect_(r) {}
    void outline(ccOutlineSink& sink) const override { rect_.outline(sink); }

  protected:
    ccPtrHandle<ccShape> clone_() const override { return new Outlined(*this); }
    ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override { return new Outlined(*this); }

  private:
    ccGenRect rect_;
  };
  Outlined const base(ccGenRect(V(1, 2), V(30, 40), deg(10), V(5, 9)));
  ccLine const line(V(1, 2), V(3, 4));
  ccGenPoly const poly(ccCircle(V(1, 2), 3));
  ccSMDGDPoly const edited(cc2Wireframe(poly, ccDimTol()), "poly");
  ccXform<2> const x(2, 3, V(4, 5));
  long const before = MemoryWatch::allocations();
  double sum = base.distanceToPoint(V(7, 8)) + base.encloseRect().width() + line.distToPoint(V(7, 8));
  sum += poly.encloseRect(x).width() + poly.arcSegment(1, true).distToPoint(V(7, 8)) + poly.isValid();
  sum += ccSMDGDPolyPrivate::roundPoint(edited, 1).x() + ccSMDGDPolyPrivate::vertexAngle(edited, 1).value();
  long const taken = MemoryWatch::allocations() - before;

  EXPECT_EQ(taken, 0);
  EXPECT_GT(sum, 0);
}
