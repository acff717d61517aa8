// Hit tests and boxes take no memory from the heap.
#include "geometry/affine_rect.h"
#include "geometry/annulus_section.h"
#include "geometry/coord_axes.h"
#include "geometry/deboor_spline.h"
#include "geometry/hermite_spline.h"
#include "geometry/interp_spline.h"
#include "geometry/lines.h"
#include "geometry/point_set.h"
#include "geometry/polygon.h"
#include "geometry/shape_tree.h"
#include "geometry/wireframe.h"
#include "tests/geometry/shape_support.h"

#include <atomic>
#include <new>

namespace {

std::atomic<long> allocations{0};

}  // namespace

void* operator new(std::size_t size)
{
  ++allocations;
  if (void* const memory = std::malloc(size ? size : 1))
    return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

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
  long const before = allocations;
  double sum = 0;
  for (auto const& shape : shapes) {
    for (int i = 0; i < 20; ++i)
      sum += shape->distanceToPoint(V(10.0 * i - 100, 37.0 * i - 300));
    sum += shape->encloseRect().width();
  }
  long const taken = allocations - before;

  EXPECT_EQ(taken, 0);
  EXPECT_GT(sum, 0);
}
