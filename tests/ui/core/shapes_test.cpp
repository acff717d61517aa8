// Shapes as nodes: places, hits, order, parents, hover and drag.
#include "canvas/ui_error.h"
#include "tests/support/test_tree.h"
#include "ui/core/nested_coord_frame.h"

#include <gtest/gtest.h>

namespace {

struct ShapeStage : ::testing::Test {
  HookLog log;
  TestRoot root;
  ccUIControlFrame panel{&root, ccUIRect(10, 20, 100, 60)};
  ccUIShapesFrame frame{&panel, ccUIRect(5, 5, 80, 50)};
  SpyShape a{log, "a", &frame, ccVector<2>(0, 0)};
  SpyShape b{log, "b", &frame, ccVector<2>(20, 0)};

  ShapeStage()
  {
    for (ccUIObject* node : std::initializer_list<ccUIObject*>{&panel, &frame, &a, &b})
      node->condVisible(true);
    cfTake(log);
  }
};

using Shapes = ShapeStage;

TEST_F(Shapes, areDraggableAndClickableAndHaveACyanOnePelPen)
{
  EXPECT_TRUE(a.draggable() && a.clickable());
  EXPECT_EQ(a.props(), ccGraphicProps(ccColor::cyanColor(), 1, ceSolidPen, false));
  EXPECT_EQ(a.color(), ccColor::cyanColor());
  EXPECT_EQ(a.shapes(false), &a);
  EXPECT_EQ(a.tablet(), static_cast<ccUITablet*>(&frame));
  EXPECT_EQ(a.root(), &root);
}

TEST_F(Shapes, standBackToFrontInTheOrderOfTheirComing)
{
  EXPECT_EQ(frame.backKid(), &a);
  EXPECT_EQ(frame.frontKid(), &b);
  EXPECT_EQ(frame.numKids(), 2);
  EXPECT_EQ(a.closerSib(), &b);
  EXPECT_EQ(b.closerSib(), nullptr);
  EXPECT_EQ(b.fartherSib(), &a);
  EXPECT_EQ(a.fartherSib(), nullptr);
  EXPECT_EQ(frame.shapesFrame(true), &frame);

  a.front();
  EXPECT_EQ(frame.frontKid(), &a);
  a.back();
  EXPECT_EQ(frame.backKid(), &a);
}

TEST_F(Shapes, kidsOfAShapeStandInItsOwnList)
{
  SpyShape k1(log, "k1", &a), k2(log, "k2", &a);
  EXPECT_EQ(a.backKid(), &k1);
  EXPECT_EQ(a.frontKid(), &k2);
  EXPECT_EQ(a.numKids(), 2);
  EXPECT_EQ(k1.tablet(), static_cast<ccUITablet*>(&frame));

  k1.front();
  EXPECT_EQ(a.frontKid(), &k1);
  k1.back();
  EXPECT_EQ(a.backKid(), &k1);
}

TEST_F(Shapes, positionsOfKidsAreRelativeToTheirParentShape)
{
  SpyShape kid(log, "kid", &b, ccVector<2>(3, 4)), grandKid(log, "grandKid", &kid, ccVector<2>(1, 1));

  EXPECT_EQ(kid.pos(), ccVector<2>(3, 4));
  EXPECT_EQ(kid.absPos(), ccVector<2>(23, 4));
  EXPECT_EQ(grandKid.absPos(), ccVector<2>(24, 5));
  EXPECT_EQ(b.absPos(), b.pos());
}

struct Watched : BoxShape {
  Watched(HookLog& l, ccUIObject* parent) : BoxShape(parent), log(l) {}
  void move_(ccVector<2> const& to) override
  {
    log.push_back("move_ " + std::to_string(static_cast<int>(to.x())) + " at " +
                  std::to_string(static_cast<int>(pos_().x())));
  }
  void redim_() override { log.push_back("redim_ at " + std::to_string(static_cast<int>(pos_().x()))); }
  using BoxShape::pos_;
  HookLog& log;
};

TEST_F(Shapes, aNewPositionTellsBeforeAndAfterAndAnEqualOneDoesNothing)
{
  Watched w(log, &frame);

  w.pos({7, 0});
  EXPECT_EQ(cfTake(log), (HookLog{"move_ 7 at 0", "redim_ at 7"}));
  w.pos({7, 0});
  EXPECT_TRUE(log.empty());
  w.move({2, 0});
  EXPECT_EQ(w.pos(), ccVector<2>(9, 0));
}

// Hits

TEST_F(Shapes, areHitThroughTheFramesOriginAndMap)
{
  // The frame lies at (15, 25) of the root.
  EXPECT_EQ(root.whoIsTouched({15, 25}), &a);
  EXPECT_EQ(root.whoIsTouched({24, 34}), &a);
  EXPECT_EQ(root.whoIsTouched({25, 25}), nullptr);
  EXPECT_EQ(root.whoIsTouched({35, 25}), &b);

  frame.scaleExact({2, 2});
  EXPECT_EQ(root.whoIsTouched({34, 44}), &a);
  EXPECT_EQ(root.whoIsTouched({55, 25}), &b);
}

TEST_F(Shapes, theHitScaleIsTheRootOfTheMapsDeterminant)
{
  frame.scaleExact({4, 9});
  frame.baseMap(ccXform<2>(ccMatrix<2>(0, -1, 1, 0), ccVector<2>(0, 0)));

  root.whoIsTouched({20, 30});

  EXPECT_DOUBLE_EQ(a.lastScale, 6);
}

TEST_F(Shapes, ofTwoOverlappingShapesOfAFrameTheRearmostIsFound)
{
  b.pos({5, 5});

  EXPECT_EQ(root.whoIsTouched({22, 32}), &a);
  a.front();
  EXPECT_EQ(root.whoIsTouched({22, 32}), &b);
}

TEST_F(Shapes, ofOverlappingKidsOfAShapeTheFrontmostIsFoundBeforeTheShape)
{
  SpyShape k1(log, "k1", &a, ccVector<2>(0, 0), 5), k2(log, "k2", &a, ccVector<2>(0, 0), 5);
  k1.condVisible(true), k2.condVisible(true);

  EXPECT_EQ(root.whoIsTouched({16, 26}), &k2);
  EXPECT_EQ(root.whoIsTouched({22, 32}), &a);
  k2.condEnabled(false);
  EXPECT_EQ(root.whoIsTouched({16, 26}), &k1);
}

TEST_F(Shapes, hiddenOrDisabledShapesAndThoseOfADisabledFrameAreNotHit)
{
  a.condVisible(false);
  EXPECT_EQ(root.whoIsTouched({16, 26}), nullptr);
  a.condVisible(true);
  a.condEnabled(false);
  EXPECT_EQ(root.whoIsTouched({16, 26}), nullptr);
  a.condEnabled(true);
  EXPECT_EQ(root.whoIsTouched({16, 26}), &a);
  frame.condEnabled(false);
  EXPECT_EQ(root.whoIsTouched({16, 26}), nullptr);
  frame.condEnabled(true);
  panel.condEnabled(false);
  EXPECT_EQ(root.whoIsTouched({16, 26}), nullptr);
}

TEST_F(Shapes, outsideTheFramesRectangleNothingIsHit)
{
  b.pos({75, 0});  // sticks out to the right

  EXPECT_EQ(root.whoIsTouched({94, 26}), &b);
  EXPECT_EQ(root.whoIsTouched({95, 26}), nullptr);
}

TEST_F(Shapes, anOpaqueShapesFrameIsHitWhereNoShapeIs)
{
  frame.opaque(ccUITablet::imageLayer, true);

  EXPECT_EQ(root.whoIsTouched({16, 26}), &a);
  EXPECT_EQ(root.whoIsTouched({60, 60}), &frame);
}

TEST_F(Shapes, askedAloneAShapeTakesLocalPelsAndItsWholeAncestryCounts)
{
  EXPECT_EQ(b.whoIsTouched(ccPair<long>(20, 0)), &b);
  EXPECT_EQ(b.whoIsTouched(ccPair<long>(19, 0)), nullptr);
  panel.condEnabled(false);
  EXPECT_EQ(b.whoIsTouched(ccPair<long>(20, 0)), nullptr);
  SpyShape lone(log, "lone", nullptr);
  EXPECT_EQ(lone.whoIsTouched(ccPair<long>(0, 0)), nullptr);
}

// Parents

TEST_F(Shapes, aShapeMadeItsOwnParentThrowsAndSoDoesOneBelowIt)
{
  SpyShape kid(log, "kid", &a);

  EXPECT_THROW(a.parent(&a), ccUIError::BadParams);
  EXPECT_THROW(a.parent(&kid), ccUIError::BadParams);
  EXPECT_THROW(a.parent(&panel), ccUIError::BadParams);

  EXPECT_EQ(a.parent(), &frame);
  EXPECT_EQ(kid.parent(), &a);
}

TEST_F(Shapes, aNewParentGetsTheShapeInFrontAndItsWishIsKept)
{
  ccUIShapesFrame other(&panel, ccUIRect(0, 0, 50, 50));
  other.condVisible(true);
  SpyShape there(log, "there", &other);
  cfTake(log);

  a.parent(&other);

  EXPECT_EQ(cfTake(log), (HookLog{"a disable visible", "a hide", "a show", "a enable visible"}));
  EXPECT_EQ(other.frontKid(), &a);
  EXPECT_EQ(frame.numKids(), 1);
  EXPECT_TRUE(a.condVisible());
  EXPECT_TRUE(a.visible());
}

TEST_F(Shapes, withoutAParentAShapeHasNoRootAndNoTablet)
{
  SpyShape kid(log, "kid", &a);

  a.parent(nullptr);

  EXPECT_EQ(a.root(), nullptr);
  EXPECT_EQ(kid.root(), nullptr);
  EXPECT_EQ(a.tablet(), nullptr);
  EXPECT_TRUE(a.condVisible());
  EXPECT_FALSE(a.visible());
  EXPECT_EQ(a.closerSib(), nullptr);
  EXPECT_EQ(a.fartherSib(), nullptr);
  EXPECT_EQ(frame.backKid(), &b);
}

TEST_F(Shapes, reparentingToAnotherRootsFrameClearsItFromTheOldEventProcessor)
{
  TestRoot other;
  ccUIShapesFrame elsewhere(other.groundPlane(), ccUIRect(0, 0, 50, 50));
  elsewhere.condVisible(true);
  SpyShape kid(log, "kid", &a, ccVector<2>(0, 0), 3);
  kid.condVisible(true);
  Hand hand(root);
  hand.moveTo(16, 26).press();
  ASSERT_EQ(root.eventProcessor()->owner(), &kid);
  cfTake(log);

  a.parent(&elsewhere);

  EXPECT_EQ(root.eventProcessor()->owner(), nullptr);
  EXPECT_EQ(kid.root(), &other);
  EXPECT_EQ(&kid.rootMutex(), &other.mutex());
  cfTake(log);
  hand.release().moveTo(17, 26);
  EXPECT_TRUE(log.empty()) << log[0];
  Hand there(other);
  there.moveTo(1, 1);
  // Entering a shape idly enters it.
  EXPECT_EQ(cfTake(log), (HookLog{"a mouseEnter", "a idleMouseEnter", "kid mouseEnter", "kid idleMouseEnter",
                                  "kid mouseMove 1,1", "a mouseMove 1,1"}));
}

TEST_F(Shapes, reparentingWithinTheRootKeepsTheGesture)
{
  ccUIShapesFrame other(&panel, ccUIRect(0, 0, 50, 50));
  other.condVisible(true);
  a.draggable(false);
  Hand hand(root);
  hand.pressAt(16, 26);
  ASSERT_EQ(root.eventProcessor()->owner(), &a);

  a.parent(&other);

  EXPECT_EQ(root.eventProcessor()->owner(), &a);
  hand.release();
}

// Hover and drag

TEST_F(Shapes, hoverSwitchesTheCursorToTheHandAndBack)
{
  Hand hand(root);
  hand.moveTo(16, 26);
  EXPECT_EQ(root.cursor(), ccUIRootObject::handCursor);
  hand.moveTo(60, 60);
  EXPECT_EQ(root.cursor(), ccUIRootObject::arrowCursor);
  EXPECT_EQ(root.cursors, (std::vector<ccUIRootObject::Cursor>{ccUIRootObject::handCursor, ccUIRootObject::arrowCursor}));
}

TEST_F(Shapes, leavingKeepsACursorThatSomebodyElseHasSet)
{
  Hand hand(root);
  hand.moveTo(16, 26);
  root.cursor(ccUIRootObject::waitCursor);
  root.cursors.clear();

  hand.moveTo(60, 60);

  EXPECT_EQ(root.cursor(), ccUIRootObject::waitCursor);
  EXPECT_TRUE(root.cursors.empty());
}

TEST_F(Shapes, theEndOfADragMovesTheShapeThroughTheFramesMap)
{
  frame.scaleExact({2, 4});
  a.clickable(false);
  Hand hand(root);

  hand.pressAt(16, 26).moveTo(26, 46);
  EXPECT_EQ(a.pos(), ccVector<2>(0, 0));  // only a ghost so far
  hand.release();

  EXPECT_EQ(a.pos(), ccVector<2>(5, 5));
}

TEST_F(Shapes, onASingularMapADragMovesNothing)
{
  frame.baseMap(ccXform<2>(0, 1, ccVector<2>(0, 0)));

  a.dragStart({0, 0});
  a.dragStop({0, 0}, {9, 9});

  EXPECT_EQ(a.pos(), ccVector<2>(0, 0));
}

TEST_F(Shapes, aShapeThatDeletesItselfWhileItIsToldOfAMoveIsSafe)
{
  struct Suicidal : BoxShape {
    using BoxShape::BoxShape;
    void redim_() override { delete this; }
  };
  auto* s = new Suicidal(&frame);
  s->condVisible(true);

  s->pos({9, 9});

  EXPECT_EQ(frame.numKids(), 2);
}

TEST_F(Shapes, whileAShapeDiesNeitherItNorItsKidsAreFound)
{
  auto* dying = new SpyShape(log, "dying", &frame, ccVector<2>(40, 0));
  SpyShape kid(log, "kid", dying, ccVector<2>(1, 1));
  dying->condVisible(true), kid.condVisible(true);
  ASSERT_EQ(root.whoIsTouched({57, 27}), &kid);
  ccUIObject* found = &root;
  ccVector<2> at;
  kid.onHook = [&](SpyShape& self, std::string const& hook) {
    if (hook != "hide")
      return;
    found = root.whoIsTouched({57, 27});
    at = self.absPos();
  };

  delete dying;

  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(at, ccVector<2>(1, 1));
  EXPECT_EQ(kid.parent(), nullptr);
}

TEST(ShapeCounts, countEachLayerAndBothAndIgnoreOthers)
{
  TestRoot root;
  ccUIShapesFrame frame(&root, ccUIRect(0, 0, 9, 9));
  frame.incrementCount(ccUITablet::imageLayer);
  frame.incrementCount(ccUITablet::overlayLayer);
  frame.incrementCount(ccUITablet::overlayLayer);
  frame.incrementCount(ccUITablet::bothLayers);
  frame.incrementCount(static_cast<ccUITablet::Layers>(-1));

  EXPECT_EQ(frame.numShapes(ccUITablet::imageLayer), 1);
  EXPECT_EQ(frame.numShapes(ccUITablet::overlayLayer), 2);
  EXPECT_EQ(frame.numShapes(ccUITablet::bothLayers), 3);
  frame.decrementCount(ccUITablet::overlayLayer);
  frame.decrementCount(ccUITablet::bothLayers);
  EXPECT_EQ(frame.numShapes(ccUITablet::bothLayers), 2);
}

}  // namespace
