// Switching drawing off and on, and updates of the display while something is dragged over it.
#include "tests/support/test_display.h"
#include "tests/ui/display/test_images.h"

#include <gtest/gtest.h>

namespace {

using Layers = ccUITablet::Layers;

TEST(DisplayDrawing, isSwitchedOnTheDisplayAndItsFrames)
{
  TestDisplay test(40, 30);
  test->disableDrawing();
  EXPECT_TRUE(test->drawingDisabled());
  for (ccUITablet* tablet : {static_cast<ccUITablet*>(&test.display()), static_cast<ccUITablet*>(test.displayFrame()),
                             static_cast<ccUITablet*>(test.imageFrame()), static_cast<ccUITablet*>(test.clientFrame())}) {
    EXPECT_FALSE(tablet->drawEnabled_.top());
    EXPECT_EQ(tablet->drawEnabled_.depth(), 1);
  }

  test->enableDrawing(false);
  EXPECT_FALSE(test->drawingDisabled());
  for (ccUITablet* tablet : {static_cast<ccUITablet*>(&test.display()), static_cast<ccUITablet*>(test.displayFrame()),
                             static_cast<ccUITablet*>(test.imageFrame()), static_cast<ccUITablet*>(test.clientFrame())})
    EXPECT_EQ(tablet->drawEnabled_.depth(), 0);
  EXPECT_TRUE(test->redraws.empty());
}

TEST(DisplayDrawing, nestedOnesDrawAtTheBalancingCall)
{
  TestDisplay test(40, 30);
  test->disableDrawing();
  test->disableDrawing();
  test->image(cfGrey8(40, 30, 7), true);
  test->mag(2);

  test->enableDrawing(true);  // its full draw is dropped
  EXPECT_TRUE(test->drawingDisabled());
  EXPECT_TRUE(test->redraws.empty());
  EXPECT_EQ(test.scope().presentations(), 0);

  test->enableDrawing(true);
  EXPECT_EQ(test->redraws, (std::vector<Layers>{ccUITablet::bothLayers}));
  EXPECT_EQ(test.scope().screenRGB(3, 3), ccRGB(7, 7, 7));
}

TEST(DisplayDrawing, aDerivedDisplayMayDrawInstead)
{
  TestDisplay test(40, 30);
  test->paintsItself = true;
  test->disableDrawing();
  test->disableDrawing();
  test->enableDrawing(true);
  EXPECT_EQ(test->fullDrawQuestions, 0);  // not asked while drawing is still disabled
  test->enableDrawing(true);
  EXPECT_EQ(test->fullDrawQuestions, 1);
  EXPECT_TRUE(test->redraws.empty());

  test->disableDrawing();
  test->enableDrawing(false);
  EXPECT_EQ(test->fullDrawQuestions, 1);  // nor without a redraw
}

TEST(DisplayDrawing, anEnableTooManyIsHarmless)
{
  TestDisplay test(40, 30);
  test->enableDrawing(true);
  EXPECT_FALSE(test->drawingDisabled());
  test->disableDrawing();
  EXPECT_TRUE(test->drawingDisabled());
  test->enableDrawing(true);
}

TEST(DisplayUpdate, doesNothingWhileDrawingIsDisabled)
{
  TestDisplay test(40, 30);
  test->redraw(ccUITablet::bothLayers);
  test.clearLogs();
  test->disableDrawing();
  test->updateDisplay(ccUITablet::bothLayers);
  EXPECT_EQ(test.scope().calls("updateScreen"), 0);
  test->enableDrawing(false);
}

TEST(DisplayUpdate, bringsWhatIsMarkedOfItsLayersToTheScreen)
{
  TestDisplay test(40, 30, {.overlay = true});
  test->baseMap(test->baseMap());  // marks both layers
  test.clearLogs();
  test->updateDisplay(ccUITablet::imageLayer);
  EXPECT_EQ(test->redraws, (std::vector<Layers>{ccUITablet::imageLayer}));
  test->updateDisplay(ccUITablet::overlayLayer);
  EXPECT_EQ(test->redraws, (std::vector<Layers>{ccUITablet::imageLayer, ccUITablet::overlayLayer}));
  test->baseMap(test->baseMap());
  test.clearLogs();
  test->updateDisplay(ccUITablet::bothLayers);
  EXPECT_EQ(test->redraws, (std::vector<Layers>{ccUITablet::imageLayer, ccUITablet::overlayLayer}));
}

struct DragStage {
  HookLog log;
  TestDisplay test{80, 60, {.overlay = true}};
  SpyShape* shape = new SpyShape(log, "shape", test.imageFrame(), ccVector<2>(10, 10), 10.0);

  explicit DragStage(Layers layer)
  {
    shape->drawLayer(layer);
    shape->condVisible(true);
    test->mouseMode(ccDisplay::pointerMode);
    test->image(cfGrey8(80, 60, 7), true);
    test.update();
    test.moveTo({15, 15}).press().moveTo({25, 20});
    cfTake(log);
  }
};

TEST(DisplayUpdate, bringsTheGhostOfADraggedShapeBack)
{
  for (Layers layer : {ccUITablet::imageLayer, ccUITablet::overlayLayer}) {
    DragStage stage(layer);
    ASSERT_TRUE(stage.shape->dragging());

    stage.test->image(cfGrey8(80, 60, 9), true);

    EXPECT_EQ(cfTake(stage.log), (HookLog{"shape dragAnimate 15,15 25,20"})) << layer;
    EXPECT_EQ(stage.test.overlayScope().isDragging(), true);
    EXPECT_EQ(stage.test->overlayRepaint_.depth(), 0);
    stage.test.release();
    EXPECT_EQ(stage.shape->pos(), ccVector<2>(20, 15)) << layer;
  }
}

TEST(DisplayUpdate, aNewImageReachesTheScreenBelowTheGhostOfADraggedShape)
{
  DragStage stage(ccUITablet::imageLayer);

  stage.test->image(cfGrey8(80, 60, 9), true);

  EXPECT_EQ(stage.test.scope().screenRGB(60, 50), ccRGB(9, 9, 9));
  EXPECT_EQ(stage.test.scope().screenRGB(29, 24), ccUIObject::dragColor().toRGB());
}

// The anchor moves with the map: what the operator holds stays below the pointer.
TEST(DisplayDraggedShape, staysInPlaceOnTheScreenWhenANewOffsetMovesItsFrame)
{
  DragStage stage(ccUITablet::imageLayer);
  TestDisplay& test = stage.test;
  test->mag(1);
  ccPelBuffer<unsigned char> image = cfGrey8(80, 60, 9);
  image.offset({4, 3});  // image point p is now 4 pels further left

  test->image(image, true);

  EXPECT_EQ(test.events().anchor(), ccPair<long>(11, 12));
}

TEST(DisplayDraggedShape, theAnchorMovesOnceForEachChange)
{
  DragStage stage(ccUITablet::imageLayer);
  TestDisplay& test = stage.test;
  ccPelBuffer<unsigned char> image = cfGrey8(80, 60, 9);
  image.offset({4, 3});
  test->image(image, true);
  test->pan(test->pan());
  test->image(image, true);
  EXPECT_EQ(test.events().anchor(), ccPair<long>(11, 12));
}

TEST(DisplayDraggedShape, theAnchorStaysWhenTheFrameMovedBeforeTheDrag)
{
  HookLog log;  // outlives the shape
  TestDisplay test(80, 60);
  ccPelBuffer<unsigned char> image = cfGrey8(80, 60, 7);
  image.offset({4, 3});
  auto* const shape = new SpyShape(log, "shape", test.imageFrame(), ccVector<2>(14, 13), 10.0);
  shape->condVisible(true);
  test->mouseMode(ccDisplay::pointerMode);
  test->image(image, true);
  test.update();
  test.moveTo({15, 15}).press().moveTo({25, 20});
  ASSERT_TRUE(shape->dragging());

  test->image(image, true);

  EXPECT_EQ(test.events().anchor(), ccPair<long>(15, 15));
}

TEST(DisplayDraggedShape, theAnchorMovesByWholeZoomedPels)
{
  HookLog log;  // outlives the shape
  TestDisplay test(80, 60);
  auto* const shape = new SpyShape(log, "shape", test.imageFrame(), ccVector<2>(10, 10), 4.0);
  shape->condVisible(true);
  test->mouseMode(ccDisplay::pointerMode);
  test->image(cfGrey8(20, 20, 7), true);
  test->mag(3);
  test.update();
  ccPoint const at = test->imageToDisplay({12, 12});
  ccPair<long> const grip(static_cast<long>(at.x()), static_cast<long>(at.y()));
  test.moveTo(grip).press().moveTo(grip + ccPair<long>(5, 5));
  ASSERT_TRUE(shape->dragging());
  ccPelBuffer<unsigned char> image = cfGrey8(20, 20, 7);
  image.offset({-2, 5});

  test->image(image, true);

  EXPECT_EQ(test.events().anchor(), grip + ccPair<long>(6, -15));
}

TEST(DisplayDraggedShape, inTheDisplayFrameKeepsItsAnchor)
{
  HookLog log;  // outlives the shape
  TestDisplay test(80, 60);
  auto* const shape = new SpyShape(log, "shape", test.displayFrame(), ccVector<2>(10, 10), 10.0);
  shape->condVisible(true);
  test->mouseMode(ccDisplay::pointerMode);
  test->image(cfGrey8(80, 60, 7), true);
  test.update();
  test.moveTo({15, 15}).press().moveTo({25, 20});
  ccPelBuffer<unsigned char> image = cfGrey8(80, 60, 9);
  image.offset({4, 3});
  test->image(image, true);
  EXPECT_EQ(test.events().anchor(), ccPair<long>(15, 15));
}

}  // namespace
