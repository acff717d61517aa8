// Distances and boxes are asked for with every motion of the pointer; they allocate nothing.
#include "geometry/annulus_section.h"
#include "geometry/lines.h"
#include "geometry/polygon.h"
#include "geometry/wireframe.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

long allocations = 0;

void* counted(std::size_t size)
{
  ++allocations;
  if (void* const p = std::malloc(size ? size : 1))
    return p;
  throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return counted(size); }
void* operator new[](std::size_t size) { return counted(size); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

TEST(Shapes, distanceAndBoxAllocateNothing)
{
  using V = ccVector<2>;
  cc2Wireframe wire(ccGenPoly(ccRect(V(0, 0), V(20, 10))), ccDimTol());
  wire.segmentAngleSpan(1, ccDegree(100));
  for (long i = 0; i < 4; ++i)
    wire.vertexRoundingSize(i, 2);
  ccPolyline const line({V(0, 0), V(3, 4), V(9, 9)}, true);
  ccEllipse const ellipse(V(1, 2), 5, 3, ccDegree(20));
  ccEllipseAnnulusSection const section(V(1, 2), 5.0, 7.0, ccDegree(20), ccDegree(90), true, true, true);

  for (ccShape const* shape : std::initializer_list<ccShape const*>{&wire, &line, &ellipse, &section}) {
    double sum = 0;
    long const before = allocations;
    for (int i = 0; i < 20; ++i)
      sum += shape->distanceToPoint(V(i, 20 - 2 * i)) + shape->encloseRect().width();
    EXPECT_EQ(allocations, before);
    EXPECT_GT(sum, 0);
  }
}
