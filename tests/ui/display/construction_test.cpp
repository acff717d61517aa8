// What a display is when it is made, the answers of its virtual operations by default, and the image format of a depth.
#include "tests/support/test_display.h"

#include "canvas/ui_error.h"
#include "ui/shapes/frame_sizer.h"
#include "ui/display/image_format.h"

#include <gtest/gtest.h>

namespace {

using Layers = ccUITablet::Layers;

TEST(Display, isMadeClickableDraggableAndNotMovedByBringingItToTheFront)
{
  TestDisplay test(60, 40);

  EXPECT_TRUE(test->clickable());
  EXPECT_TRUE(test->draggable());
  EXPECT_TRUE(test->dontMove());
  EXPECT_TRUE(test->layerRepaint_.top());
  EXPECT_EQ(test->layerRepaint_.depth(), 1);
}

TEST(Display, startsWithoutImageInPointerModeAtTheMiddleWithGridsOff)
{
  TestDisplay test(60, 40);
  ccDisplay& display = test.display();

  EXPECT_FALSE(display.hasImage());
  EXPECT_EQ(display.imageSize(), ccPair<long>(0, 0));
  EXPECT_EQ(display.imageOffset(), ccPair<long>(0, 0));
  EXPECT_EQ(display.mouseMode(), ccDisplay::pointerMode);
  EXPECT_EQ(display.pan(), ccVector<2>(0, 0));
  EXPECT_EQ(display.magExact(), 1.0);
  EXPECT_EQ(display.mag(), 1);
  EXPECT_TRUE(display.defaultPan());
  EXPECT_EQ(display.minPan(), ccPair<double>(0, 0));
  EXPECT_EQ(display.maxPan(), ccPair<double>(0, 0));
  EXPECT_EQ(display.grid(), -1);
  EXPECT_EQ(display.subpixelGrid(), -4);
  EXPECT_EQ(display.gridColor(), ccColor::blueColor());
  EXPECT_EQ(display.subpixelGridColor(), ccColor::dkGreenColor());
  EXPECT_TRUE(display.blinkColor().empty());
  EXPECT_FALSE(display.drawingDisabled());
  EXPECT_EQ(display.clientArea(), ccPair<long>(60, 40));
}

TEST(Display, stacksImageClientAndDisplayFrameFromBackToFrontOverItsWholeArea)
{
  TestDisplay test(60, 40, {.rect = ccUIRect(5, 6, 30, 20)});

  EXPECT_EQ(test->backKid(), test.imageFrame());
  EXPECT_EQ(test.imageFrame()->closerSib(), test.clientFrame());
  EXPECT_EQ(test.clientFrame()->closerSib(), test.displayFrame());
  EXPECT_EQ(test->frontKid(), test.displayFrame());
  for (ccUIShapesFrame* frame : {test.displayFrame(), static_cast<ccUIShapesFrame*>(test.imageFrame()),
                                 static_cast<ccUIShapesFrame*>(test.clientFrame())}) {
    EXPECT_TRUE(frame->dontMove());
    EXPECT_TRUE(frame->condVisible());
    EXPECT_EQ(frame->frameRect(), ccUIRect(0, 0, 30, 20));
    EXPECT_EQ(frame->screenOrigin(), ccPair<long>(5, 6));
  }
  EXPECT_EQ(dynamic_cast<ccUINestedCoordFrame*>(test.displayFrame()), nullptr);
}

TEST(Display, theImageRampStartsAtGrey10AndThePelMapIsTheIdentity)
{
  TestDisplay test(60, 40);

  std::vector<ccRGB> const map = test->colorMap();
  ASSERT_EQ(map.size(), 256u);
  for (int i = 10; i <= 240; ++i)
    EXPECT_EQ(map[static_cast<std::size_t>(i)].r, i);
  ASSERT_EQ(test->colorMapEx().size(), 256u);
  for (std::size_t i = 0; i < 256; ++i)
    EXPECT_EQ(test->colorMapEx()[i].g, i);
}

struct Mortal : BoxShape {
  Mortal(HookLog& log, ccUIObject* parent) : BoxShape(parent), log_(log) { condVisible(true); }
  ~Mortal() override { log_.emplace_back("shape died"); }
  void hide(bool nested) override
  {
    BoxShape::hide(nested);
    log_.emplace_back("shape hidden");
  }
  HookLog& log_;
};

TEST(Display, dyingHidesItsFramesAndDeletesThemWithTheirShapes)
{
  HookLog log;
  TestDisplay test(60, 40);
  for (ccUIShapesFrame* frame : {test.displayFrame(), static_cast<ccUIShapesFrame*>(test.imageFrame()),
                                 static_cast<ccUIShapesFrame*>(test.clientFrame())})
    new Mortal(log, frame);

  test.deleteDisplay();

  EXPECT_EQ(log, (HookLog{"shape hidden", "shape hidden", "shape hidden", "shape died", "shape died", "shape died"}));
}

TEST(Display, dyingInTheMiddleOfADragOfItsImageFreesTheFrameSizerAndTheScreen)
{
  TestDisplay test(60, 40);
  test.root().frameSizer();  // built on first use
  test->mouseMode(ccDisplay::panMode);
  test.moveTo({10, 10}).press().moveTo({20, 20});
  ASSERT_TRUE(test->dragging());
  ASSERT_FALSE(test.root().frameSizer()->drawEnabled_.top());

  test.deleteDisplay();

  EXPECT_TRUE(test.root().frameSizer()->drawEnabled_.top());
  EXPECT_FALSE(test.scope().isDragging());
  test.release();  // nobody there
}

// The virtual operations of a display that nobody extends beyond what is abstract.
TEST(DisplayDefaults, overlayStateIsNotImplemented)
{
  TestDisplay test(60, 40);
  EXPECT_THROW(test->enableOverlay(), ccUIError::NotImplemented);
  EXPECT_THROW(test->enableOverlay(ccDisplay::overlayState()), ccUIError::NotImplemented);
}

TEST(DisplayDefaults, passThroughValuesAreZero)
{
  TestDisplay test(60, 40);
  ccPackedRGB32Pel rgb32(0x123456u);
  ccPackedRGB16Pel rgb16(std::uint16_t{0x1234});
  unsigned char grey = 12;

  test->getPassThroughValue(rgb32);
  test->getPassThroughValue(rgb16);
  test->getPassThroughValue(grey);

  EXPECT_EQ(rgb32.word(), 0u);
  EXPECT_EQ(rgb16.word(), 0u);
  EXPECT_EQ(grey, 0);
}

TEST(DisplayDefaults, neitherBlinksNorGoesLive)
{
  TestDisplay test(60, 40);
  ccDisplay& display = test.display();

  EXPECT_FALSE(display.canBlink());
  EXPECT_FALSE(display.enableBlink());
  EXPECT_FALSE(display.disableBlink());
  display.blinkRate(3.0);
  EXPECT_EQ(display.blinkRate(), 0.0);
  display.blinkColor({ccColor::redColor()});
  EXPECT_TRUE(display.blinkColor().empty());
  EXPECT_FALSE(display.startLiveDisplay(nullptr));
  EXPECT_FALSE(display.startLiveDisplay(nullptr, nullptr));
  display.stopLiveDisplay();
  display.waitForVerticalBlank(true);
  EXPECT_EQ(display.liveFrameRate(), 0.0);
}

// What ccDisplay itself answers where TestDisplay answers something of its own.
TEST(DisplayDefaults, theBaseClassHasEightBitsAndNoLiveDisplay)
{
  TestDisplay test(60, 40, {.depth = 32});
  EXPECT_EQ(test->ccDisplay::displayFormat(), ccDisplay::format8);
  EXPECT_FALSE(test->ccDisplay::isLiveEnabled());
}

TEST(DisplayDefaults, picksFillInAnEmptyStart)
{
  TestDisplay test(60, 40);
  ccDisplay& display = test.display();

  display.selectArea(ccDisplay::clientCoords, "Take an area", ccColor::redColor());
  EXPECT_EQ(test->pick.system, ccDisplay::clientCoords);
  EXPECT_EQ(test->pick.area, ccPelRect());
  EXPECT_EQ(test->pick.prompt, "Take an area");
  EXPECT_EQ(test->pick.color, ccColor::redColor());

  display.selectPoint(ccDisplay::imageCoords, "Take a point", ccColor::cyanColor());
  EXPECT_EQ(test->pick.system, ccDisplay::imageCoords);
  EXPECT_EQ(test->pick.point, ccPair<double>(0, 0));
  EXPECT_EQ(test->pick.prompt, "Take a point");
  EXPECT_EQ(test->pick.color, ccColor::cyanColor());
}

TEST(DisplayDefaults, enumeratorsHaveTheirNumbers)
{
  EXPECT_EQ(ccDisplay::displayCoords, 0);
  EXPECT_EQ(ccDisplay::imageCoords, 1);
  EXPECT_EQ(ccDisplay::clientCoords, 2);
  EXPECT_EQ(ccDisplay::format8, 0);
  EXPECT_EQ(ccDisplay::format15, 1);
  EXPECT_EQ(ccDisplay::format16, 2);
  EXPECT_EQ(ccDisplay::format24, 3);
  EXPECT_EQ(ccDisplay::format32, 4);
  EXPECT_EQ(ccDisplay::pointerMode, 0);
  EXPECT_EQ(ccDisplay::panMode, 1);
  EXPECT_EQ(ccDisplay::zoomInMode, 2);
  EXPECT_EQ(ccDisplay::zoomOutMode, 3);
}

TEST(DisplayBadFifo, hasItsNumber)
{
  EXPECT_EQ(ccDisplay::BadFifo().errorNumber(), 0x10004518u);
}

TEST(DisplayFormat, onlyEightSixteenAndThirtyTwoBitsHaveAnImageFormat)
{
  EXPECT_EQ(cfConvertDisplayFormat2ImageFormat(ccDisplay::format8), 1);
  EXPECT_EQ(cfConvertDisplayFormat2ImageFormat(ccDisplay::format15), -1);
  EXPECT_EQ(cfConvertDisplayFormat2ImageFormat(ccDisplay::format16), 3);
  EXPECT_EQ(cfConvertDisplayFormat2ImageFormat(ccDisplay::format24), -1);
  EXPECT_EQ(cfConvertDisplayFormat2ImageFormat(ccDisplay::format32), 4);
  for (int other : {-1, 5, 100})
    EXPECT_EQ(cfConvertDisplayFormat2ImageFormat(static_cast<ccDisplay::DisplayFormat>(other)), -1) << other;
}

}  // namespace
