#include "geometry/shape_tree.h"

#include "foundation/exception.h"
#include "geometry/circle.h"
#include "geometry/gen_shape.h"
#include "geometry/lines.h"
#include "geometry/point_set.h"
#include "geometry/polygon.h"
#include "tests/geometry/shape_support.h"

using namespace krs_test;

namespace {

using Handle = ccPtrHandle_const<ccShape>;

ccCircle const& circleOf(ccShapeTree const& tree, std::size_t i)
{
  return dynamic_cast<ccCircle const&>(*tree.shapes()[i]);
}

ccShapeTree const& treeOf(Handle const& shape) { return dynamic_cast<ccShapeTree const&>(*shape); }

}  // namespace

TEST(ShapeTree, isTheUnionOfItsShapes)
{
  ccShapeTree tree({new ccCircle(V(0, 0), 2)});
  tree.addShape(new ccLineSeg(V(10, 0), V(10, 5)));

  EXPECT_EQ(tree.size(), 2);
  EXPECT_EQ(tree.distToPoint(V(3, 0)), 1);
  EXPECT_EQ(tree.distToPoint(V(8, 3)), 2);
  EXPECT_EQ(tree.encloseRect(), ccRect(V(-2, -2), V(12, 7)));
}

TEST(ShapeTree, refusesNull)
{
  ccShapeTree tree;

  EXPECT_THROW(tree.addShape(nullptr), ccBadPointer);
  EXPECT_THROW(ccShapeTree({new ccCircle(V(), 1), nullptr}), ccBadPointer);
  EXPECT_EQ(tree.size(), 0);
}

TEST(ShapeTree, aPointAtTheOriginBelongsToTheBoxButAnEmptyShapeDoesNot)
{
  ccShapeTree tree({new ccPointSet({V(5, 5)})});
  tree.addShape(new ccPolyline);
  EXPECT_EQ(tree.encloseRect(), ccRect(V(5, 5), V()));
  tree.addShape(new ccPointSet({V(0, 0)}));
  EXPECT_EQ(tree.encloseRect(), ccRect(V(0, 0), V(5, 5)));
}

TEST(ShapeTree, clonesAndMapsAreDeep)
{
  ccShapeTree const tree({new ccCircle(V(1, 0), 2), new ccShapeTree({new ccCircle(V(0, 1), 3)})});

  ccPtrHandle<ccShape> const copy = tree.clone();
  ccShapeTree const& cloned = treeOf(copy);
  EXPECT_NE(cloned.shapes()[0].get(), tree.shapes()[0].get());
  EXPECT_NE(cloned.shapes()[1].get(), tree.shapes()[1].get());
  EXPECT_EQ(circleOf(cloned, 0), circleOf(tree, 0));
  EXPECT_EQ(circleOf(treeOf(cloned.shapes()[1]), 0), ccCircle(V(0, 1), 3));

  ccShapeTree const image = tree.map(ccXform<2>(2, 2, V(10, 10)));
  EXPECT_EQ(circleOf(image, 0), ccCircle(V(12, 10), 4));
  EXPECT_EQ(circleOf(treeOf(image.shapes()[1]), 0), ccCircle(V(10, 12), 6));
  EXPECT_EQ(circleOf(tree, 0), ccCircle(V(1, 0), 2));
}

TEST(ShapePosition, identityGivesAnEqualShape)
{
  ccCircle const circle(V(3.3, 4.7), 2.2);
  Handle const moved = cfShapeMapShapePosition(circle, ccXform<2>());
  EXPECT_EQ(dynamic_cast<ccCircle const&>(*moved), circle);

  EXPECT_TRUE(cfShapeMapShapePosition(ccShapeTree(), ccXform<2>(2, 3, V(1, 1))));
  EXPECT_EQ(dynamic_cast<ccPolyline const&>(*cfShapeMapShapePosition(ccPolyline(), ccXform<2>())), ccPolyline());
}

TEST(ShapePosition, translationsAddUp)
{
  ccPolyline const chain({V(0, 0), V(4, 2), V(1, 7)});
  ccXform<2> const a(1, 1, V(3, 5)), b(1, 1, V(-1, 8));

  Handle const twice = cfShapeMapShapePosition(*cfShapeMapShapePosition(chain, a), b);
  EXPECT_EQ(dynamic_cast<ccPolyline const&>(*twice), chain.map(ccXform<2>(1, 1, V(2, 13))));
}

TEST(ShapePosition, movesTheCentreOfTheBoxAndKeepsTheOutline)
{
  Random random(1);
  for (int i = 0; i < rounds(500); ++i) {
    ccXform<2> const x = random.affine();
    ccCircle const circle(random.vector(50), random.in(1, 9));
    ccPolyline const chain({random.vector(50), random.vector(50), random.vector(50)}, true);
    ccShapeTree const tree({new ccCircle(circle), new ccShapeTree({new ccPolyline(chain)})});

    Handle const moved = cfShapeMapShapePosition(tree, x);
    ccCircle const& movedCircle = circleOf(treeOf(moved), 0);
    expectNear(movedCircle.center(), x.mapPoint(circle.center()), 1e-9);
    EXPECT_EQ(movedCircle.radius(), circle.radius());
    Handle const inner = treeOf(moved).shapes()[1];
    auto const& movedChain = dynamic_cast<ccPolyline const&>(*treeOf(inner).shapes()[0]);
    expectNear(movedChain.encloseRect().center(), x.mapPoint(chain.encloseRect().center()), 1e-9);
    for (long k = 1; k < 3; ++k)
      expectNear(movedChain[k] - movedChain[0], chain[k] - chain[0], 1e-9);
  }
}

TEST(GenShape, canBeHeldAndTellsItsBox)
{
  class Cross : public ccGenShape {
  public:
    ccRect encloseRect() const override { return ccRect(V(1, 2), V(3, 4)); }
  };
  class Picture : public ccGraphic {
  public:
    ccRect encloseRect() const override { return ccRect(V(5, 6), V(7, 8)); }
  };
  ccPtrHandle_const<ccGenShape> const shape(new Cross);
  ccPtrHandle_const<ccGraphic> const graphic(new Picture);

  EXPECT_EQ(shape->encloseRect().lr(), V(4, 6));
  EXPECT_EQ(graphic->encloseRect().lr(), V(12, 14));
}

// A tree may be hung before its own children are: the levels count from the top all the same.
TEST(ShapeTree, isNotGrownTooDeepFromBelow)
{
  ccPtrHandle<ccShapeTree> const top(new ccShapeTree);
  ccPtrHandle<ccShapeTree> last = top;
  long hung = 0;
  for (; hung < 3000; ++hung) {
    ccPtrHandle<ccShapeTree> const next(new ccShapeTree);
    try {
      last->addShape(next);
    } catch (ccShapesError::BadParams const&) {
      break;
    }
    last = next;
  }
  EXPECT_EQ(hung, 999) << "a thousand levels with the top";
  EXPECT_EQ(last->size(), 0) << "what is refused changes nothing";
  last->addShape(new ccCircle(V(3, 4), 1));
  EXPECT_EQ(top->distanceToPoint(V(3, 9)), 4);
  EXPECT_EQ(top->encloseRect().ul(), V(2, 3));
}

TEST(ShapeTree, isNotAssignedIntoItself)
{
  ccPtrHandle<ccShapeTree> const inner(new ccShapeTree({new ccCircle(V(0, 0), 1)}));
  ccPtrHandle<ccShapeTree> const outer(new ccShapeTree({inner}));
  ccShapeTree const holder({outer});
  EXPECT_THROW(*inner = holder, ccShapesError::BadParams);
  EXPECT_EQ(inner->size(), 1);
  EXPECT_EQ(outer->distanceToPoint(V(5, 0)), 4);
  *outer = *inner;
  EXPECT_EQ(outer->distanceToPoint(V(5, 0)), 4);
  EXPECT_EQ(treeOf(holder.shapes()[0]).shapes()[0], inner->shapes()[0]);
}

TEST(ShapeTree, aTreeSharedManyTimesIsHungAtOnce)
{
  ccPtrHandle<ccShapeTree> below(new ccShapeTree);
  for (int i = 0; i < 60; ++i) {
    ccPtrHandle<ccShapeTree> const above(new ccShapeTree);
    above->addShape(below);
    above->addShape(below);  // 2^60 ways lead down
    below = above;
  }
  EXPECT_EQ(below->size(), 2);
  EXPECT_THROW(ccPtrHandle<ccShapeTree>(const_cast<ccShapeTree*>(&treeOf(below->shapes()[0])))->addShape(below),
               ccShapesError::BadParams);
}
