// The display under the operator's hand: mouse modes and cursors, clicks that zoom, the right button, and the pan key.
#include "tests/support/test_display.h"
#include "tests/ui/display/test_images.h"

#include <gtest/gtest.h>

namespace {

using Cursors = std::vector<ccUIRootObject::Cursor>;
constexpr auto kArrow = ccUIRootObject::Cursor(0), kZoomIn = ccUIRootObject::Cursor(2), kZoomOut = ccUIRootObject::Cursor(3),
               kPan = ccUIRootObject::Cursor(4), kGrab = ccUIRootObject::Cursor(5);
constexpr auto kControl = ccKeyboardEvent::vkControl;

struct ModeStage : ::testing::Test {
  TestDisplay test{100, 100};

  ModeStage()
  {
    test->image(cfGrey8(100, 100, 7), true);
    test.clearLogs();
  }
  bool framesEnabled()
  {
    bool const on = test.displayFrame()->condEnabled();
    EXPECT_EQ(test.imageFrame()->condEnabled(), on);
    EXPECT_EQ(test.clientFrame()->condEnabled(), on);
    return on;
  }
};

using DisplayMouseMode = ModeStage;
using DisplayClick = ModeStage;
using DisplayRightButton = ModeStage;
using DisplayPanKey = ModeStage;

TEST_F(DisplayMouseMode, setsCursorDraggableRightButtonAndFrames)
{
  struct {
    ccDisplay::MouseMode mode;
    ccUIRootObject::Cursor cursor;
    bool draggable;
    int rightButton;
    bool frames;
  } const rows[] = {{ccDisplay::pointerMode, kArrow, false, 2, true},
                    {ccDisplay::panMode, kPan, true, 2, false},
                    {ccDisplay::zoomInMode, kZoomIn, false, 1, false},
                    {ccDisplay::zoomOutMode, kZoomOut, false, 1, false}};
  for (auto const& former : rows)
    for (auto const& row : rows) {
      test->mouseMode(former.mode);
      test.clearLogs();

      test->mouseMode(row.mode);

      EXPECT_EQ(test->mouseMode(), row.mode);
      EXPECT_EQ(test.cursors(), (Cursors{row.cursor})) << row.mode;
      EXPECT_EQ(test->draggable(), row.draggable) << row.mode;
      EXPECT_EQ(test->rightButtonMode(), row.rightButton) << row.mode;
      EXPECT_EQ(framesEnabled(), row.frames) << row.mode;
      EXPECT_EQ(test->hooks, (HookLog{"mouseModeChanged"}));
    }
}

TEST_F(DisplayMouseMode, anyOtherValueIsOnlyStored)
{
  for (int value : {4, 100, -1}) {
    test->mouseMode(ccDisplay::zoomInMode);
    test.clearLogs();

    test->mouseMode(static_cast<ccDisplay::MouseMode>(value));

    EXPECT_EQ(static_cast<int>(test->mouseMode()), value);
    EXPECT_TRUE(test.cursors().empty());
    EXPECT_FALSE(test->draggable());
    EXPECT_EQ(test->rightButtonMode(), 1);
    EXPECT_FALSE(framesEnabled());
    EXPECT_EQ(test->hooks, (HookLog{"mouseModeChanged"}));
    test.moveTo({200, 200}).click({50, 50}).doubleClick({50, 50}).rightClick({50, 50});  // nothing follows
    EXPECT_EQ(test->magExact(), 1.0);
  }
}

TEST_F(DisplayMouseMode, hoveringShowsTheCursorAndChangesNothingElse)
{
  test->mouseMode(ccDisplay::panMode);
  test->draggable(false);
  test.imageFrame()->condEnabled(true);
  test.clearLogs();

  test.moveTo({50, 50});

  EXPECT_EQ(test.cursors(), (Cursors{kPan}));
  EXPECT_FALSE(test->draggable());
  EXPECT_TRUE(test.imageFrame()->condEnabled());
  EXPECT_EQ(test->hooks, (HookLog{"mouseModeChanged"}));
}

TEST_F(DisplayMouseMode, enteringReassertsTheWholeMode)
{
  test->mouseMode(ccDisplay::panMode);
  test->draggable(false);
  test.imageFrame()->condEnabled(true);
  test.clearLogs();

  test->mouseEnter();

  EXPECT_TRUE(test->draggable());
  EXPECT_FALSE(framesEnabled());
  EXPECT_EQ(test.cursors(), (Cursors{kPan}));
}

TEST(DisplayMouse, leavingTheDisplayBringsTheArrow)
{
  TestDisplay test(100, 100, {.rect = ccUIRect(0, 0, 50, 50)});
  test->mouseMode(ccDisplay::zoomInMode);
  test.moveTo({20, 20});
  EXPECT_EQ(test.root().cursor(), kZoomIn);
  test.clearLogs();

  test.moveTo({80, 80});

  EXPECT_EQ(test.cursors(), (Cursors{kArrow}));
  EXPECT_EQ(test.root().cursor(), kArrow);
  EXPECT_EQ(test->mouseMode(), ccDisplay::zoomInMode);
}

TEST_F(DisplayMouseMode, shapesAreOutOfReachInNavigationModes)
{
  auto* const shape = new BoxShape(test.imageFrame(), ccVector<2>(10, 10), 20);
  shape->condVisible(true);
  for (ccDisplay::MouseMode mode : {ccDisplay::panMode, ccDisplay::zoomInMode, ccDisplay::zoomOutMode}) {
    test->mouseMode(mode);
    EXPECT_EQ(test.root().whoIsTouched({15, 15}), &test.display()) << mode;
  }
  test->mouseMode(ccDisplay::pointerMode);
  EXPECT_EQ(test.root().whoIsTouched({15, 15}), shape);
  EXPECT_EQ(test.root().whoIsTouched({50, 50}), &test.display());
}

// ---- Clicks

TEST_F(DisplayClick, onTheEmptyImageTakesAllSelectionAway)
{
  test->mouseMode(ccDisplay::pointerMode);
  std::vector<BoxShape*> shapes;
  for (ccUIShapesFrame* frame : {test.displayFrame(), static_cast<ccUIShapesFrame*>(test.imageFrame()),
                                 static_cast<ccUIShapesFrame*>(test.clientFrame())}) {
    shapes.push_back(new BoxShape(frame, ccVector<2>(10, 10), 5));
    shapes.push_back(new BoxShape(shapes.back(), ccVector<2>(3, 3), 5));
  }
  for (BoxShape* shape : shapes) {
    shape->condVisible(true);
    shape->condSelected(true, false);
  }

  test.click({60, 60});

  for (BoxShape* shape : shapes)
    EXPECT_FALSE(shape->condSelected());
}

TEST_F(DisplayClick, inNavigationModesKeepsTheSelection)
{
  auto* const shape = new BoxShape(test.imageFrame(), ccVector<2>(10, 10), 20);
  shape->condVisible(true);
  for (ccDisplay::MouseMode mode : {ccDisplay::panMode, ccDisplay::zoomInMode, ccDisplay::zoomOutMode}) {
    test->mouseMode(mode);
    shape->condSelected(true, false);
    test.click({60, 60});
    EXPECT_TRUE(shape->condSelected()) << mode;
  }
}

TEST_F(DisplayClick, survivesShapesAndFramesThatDieWhenTheyAreDeselected)
{
  test->mouseMode(ccDisplay::pointerMode);
  HookLog log;
  struct Control : ccUIControlFrame {
    using ccUIControlFrame::ccUIControlFrame;
    ccUIObject* victim = nullptr;
    void deselect(States state, bool nested) override
    {
      ccUIControlFrame::deselect(state, nested);
      delete std::exchange(victim, nullptr);
    }
  };
  auto* const behind = new Control(&test.display(), ccUIRect(0, 0, 5, 5));
  auto* const front = new Control(&test.display(), ccUIRect(10, 0, 5, 5));
  for (Control* control : {behind, front}) {
    control->condVisible(true);
    control->condSelected(true, false);
  }
  test->condSelected(true, false);
  test.root().condSelected(true, false);
  front->victim = behind;  // the very next one

  test.click({60, 60});

  EXPECT_EQ(test->frontKid(), front);
  EXPECT_EQ(front->fartherSib(), test.displayFrame());
  EXPECT_FALSE(front->condSelected());
}

TEST_F(DisplayClick, zoomInCentresThePressedPointAndDoubles)
{
  test->mouseMode(ccDisplay::zoomInMode);
  test.click({30, 40});
  EXPECT_EQ(test->magExact(), 2.0);
  EXPECT_EQ(test->pan(), ccVector<2>(20, 10));
  test.click({60, 50});
  EXPECT_EQ(test->magExact(), 4.0);
  EXPECT_EQ(test->pan(), ccVector<2>(15, 10));
  test.click({50, 50});
  EXPECT_EQ(test->mag(), 8);
}

TEST(DisplayZoomClick, countsFromTheDisplaysOwnCorner)
{
  TestDisplay test(200, 150, {.rect = ccUIRect(40, 30, 101, 60)});
  test->image(cfGrey8(100, 60, 7), true);
  test->mouseMode(ccDisplay::zoomInMode);
  test.click({60, 50});
  EXPECT_EQ(test->pan(), ccVector<2>(40 + 50 - 60, 30 + 30 - 50));
}

TEST_F(DisplayClick, zoomInTakesThePressNotTheRelease)
{
  test->mouseMode(ccDisplay::zoomInMode);
  test.moveTo({30, 40}).press().moveTo({70, 70}).release();
  EXPECT_EQ(test->magExact(), 2.0);
  EXPECT_EQ(test->pan(), ccVector<2>(20, 10));
}

TEST_F(DisplayClick, zoomInFromEveryKindOfScale)
{
  test->image(cfGrey8(1000, 1000, 7), true);
  test->mouseMode(ccDisplay::zoomInMode);
  struct {
    double before, after;
  } const cases[] = {{1.0, 2.0},       {2.0, 4.0}, {1.5, 2.0},       {2.9, 4.0},        {1.0 / 2, 1.0}, {1.0 / 3, 1.0},
                     {1.0 / 4, 0.5},   {0.75, 1.0}, {1.0 / 7, 1.0 / 3}, {40000.0, 65536.0}, {65536.0, 65536.0}};
  for (auto const& c : cases) {
    test->magExact(c.before);
    test.click({50, 50});
    EXPECT_EQ(test->magExact(), c.after) << c.before;
  }
}

TEST_F(DisplayClick, zoomOutFromEveryKindOfScaleWithoutRecentring)
{
  test->image(cfGrey8(1000, 1000, 7), true);
  test->mouseMode(ccDisplay::zoomOutMode);
  test->pan({7, 9});
  struct {
    double before, after;
  } const cases[] = {{1.0, 0.5},       {2.0, 1.0},     {3.0, 1.0},     {4.0, 2.0}, {1.5, 1.0}, {1.0 / 2, 1.0 / 4},
                     {1.0 / 3, 1.0 / 6}, {0.75, 1.0 / 2}, {1.0 / 100, 1.0 / 125}};
  for (auto const& c : cases) {
    test->magExact(c.before);
    test.click({20, 30});
    EXPECT_EQ(test->magExact(), c.after) << c.before;
    EXPECT_EQ(test->pan(), ccVector<2>(7, 9));
  }
}

TEST_F(DisplayClick, zoomPresentsOnce)
{
  test->mouseMode(ccDisplay::zoomInMode);
  test.moveTo({30, 40}).press();
  test.clearLogs();
  test.release();
  EXPECT_EQ(test.scope().presentations(), 1);
  EXPECT_FALSE(test->drawingDisabled());
}

TEST_F(DisplayClick, inPanModeDoesNothing)
{
  test->mouseMode(ccDisplay::panMode);
  test.click({20, 30});
  EXPECT_EQ(test->pan(), ccVector<2>(0, 0));
  EXPECT_EQ(test->magExact(), 1.0);
}

TEST_F(DisplayClick, aDoubleClickCentresInPanMode)
{
  test->mouseMode(ccDisplay::panMode);
  test.doubleClick({20, 30});
  EXPECT_EQ(test->pan(), ccVector<2>(30, 20));
  EXPECT_EQ(test->magExact(), 1.0);
}

TEST_F(DisplayClick, eachClickOfADoubleClickZooms)
{
  test->mouseMode(ccDisplay::zoomInMode);
  test.doubleClick({50, 50});
  EXPECT_EQ(test->magExact(), 4.0);
  test->mouseMode(ccDisplay::zoomOutMode);
  test.doubleClick({50, 50});
  EXPECT_EQ(test->magExact(), 1.0);
}

TEST_F(DisplayClick, aDoubleClickInPointerModeDoesNothingMore)
{
  test->mouseMode(ccDisplay::pointerMode);
  test.click({60, 60});
  auto* const shape = new BoxShape(test.imageFrame(), ccVector<2>(10, 10), 5);
  shape->condVisible(true);
  shape->condSelected(true, false);

  test->dblClick();

  EXPECT_TRUE(shape->condSelected());
  EXPECT_EQ(test->pan(), ccVector<2>(0, 0));
}

// ---- The right button

TEST_F(DisplayRightButton, aPressInZoomInModeShowsZoomOutAndTheReleaseZoomsOutAndReturns)
{
  test->image(cfGrey8(400, 400, 7), true);
  test->mouseMode(ccDisplay::zoomInMode);
  test.moveTo({20, 20});
  test.clearLogs();

  test.rightPress();
  EXPECT_EQ(test->mouseMode(), ccDisplay::zoomOutMode);
  EXPECT_EQ(test.cursors(), (Cursors{kZoomOut}));
  EXPECT_EQ(test->magExact(), 1.0);

  test.rightRelease();
  EXPECT_EQ(test->mouseMode(), ccDisplay::zoomInMode);
  EXPECT_EQ(test.cursors(), (Cursors{kZoomOut, kZoomIn}));
  EXPECT_EQ(test->magExact(), 0.5);
  EXPECT_EQ(test->pan(), ccVector<2>(0, 0));
}

TEST_F(DisplayRightButton, inZoomOutModeZoomsInAtThePressedPoint)
{
  test->mouseMode(ccDisplay::zoomOutMode);
  test.moveTo({30, 40}).rightPress();
  EXPECT_EQ(test->mouseMode(), ccDisplay::zoomInMode);
  test.moveTo({90, 90}).rightRelease();
  EXPECT_EQ(test->mouseMode(), ccDisplay::zoomOutMode);
  EXPECT_EQ(test->magExact(), 2.0);
  EXPECT_EQ(test->pan(), ccVector<2>(20, 10));
}

TEST_F(DisplayRightButton, theSecondPressOfADoubleClickSwitchesToo)
{
  test->mouseMode(ccDisplay::zoomOutMode);
  test.rightClick({50, 50});
  EXPECT_EQ(test->magExact(), 2.0);
  test.rightDoubleClick({50, 50});
  EXPECT_EQ(test->mouseMode(), ccDisplay::zoomInMode);
  test.rightRelease();
  EXPECT_EQ(test->mouseMode(), ccDisplay::zoomOutMode);
  EXPECT_EQ(test->magExact(), 4.0);
}

TEST_F(DisplayRightButton, inPointerAndPanModeDoesNotZoom)
{
  for (ccDisplay::MouseMode mode : {ccDisplay::pointerMode, ccDisplay::panMode}) {
    test->mouseMode(mode);
    test->rightButtonMode(ccUIObject::rightButtonToObject);
    test.rightClick({30, 40});
    EXPECT_EQ(test->mouseMode(), mode);
    EXPECT_EQ(test->magExact(), 1.0);
  }
}

// ---- The pan key

TEST_F(DisplayPanKey, heldInPointerModeShowsPanMode)
{
  test->mouseMode(ccDisplay::pointerMode);
  test.moveTo({50, 50});
  test.clearLogs();

  test.keyDown(kControl);
  EXPECT_EQ(test->mouseMode(), ccDisplay::panMode);
  EXPECT_EQ(test.cursors(), (Cursors{kPan}));
  test.keyUp(kControl);
  EXPECT_EQ(test->mouseMode(), ccDisplay::pointerMode);
  EXPECT_EQ(test.cursors(), (Cursors{kPan, kArrow}));
  EXPECT_TRUE(framesEnabled());
}

TEST_F(DisplayPanKey, releasedDuringADragKeepsPanModeUntilTheDragEnds)
{
  test->mouseMode(ccDisplay::pointerMode);
  test.moveTo({50, 50}).keyDown(kControl).press().moveTo({60, 55});
  ASSERT_TRUE(test->dragging());

  test.keyUp(kControl);
  EXPECT_EQ(test->mouseMode(), ccDisplay::panMode);
  test.moveTo({70, 60});
  EXPECT_EQ(test->mouseMode(), ccDisplay::panMode);

  test.release();
  EXPECT_EQ(test->mouseMode(), ccDisplay::pointerMode);
  EXPECT_EQ(test->pan(), ccVector<2>(20, 10));
  EXPECT_FALSE(test->draggable());
  // The waiting is over: another drag ends in the mode that it had.
  test->mouseMode(ccDisplay::panMode);
  test.drag({50, 50}, {52, 52});
  EXPECT_EQ(test->mouseMode(), ccDisplay::panMode);
}

TEST_F(DisplayPanKey, inPanModeGoesToPointerModeForAsLongAsItIsHeld)
{
  test->mouseMode(ccDisplay::panMode);
  test.moveTo({50, 50}).keyDown(kControl);
  EXPECT_EQ(test->mouseMode(), ccDisplay::pointerMode);
  test.keyUp(kControl);
  EXPECT_EQ(test->mouseMode(), ccDisplay::panMode);
}

TEST_F(DisplayPanKey, inZoomModesGoesToPanMode)
{
  for (ccDisplay::MouseMode mode : {ccDisplay::zoomInMode, ccDisplay::zoomOutMode}) {
    test->mouseMode(mode);
    test.moveTo({50, 50}).keyDown(kControl);
    EXPECT_EQ(test->mouseMode(), ccDisplay::panMode) << mode;
    test.keyUp(kControl);
    EXPECT_EQ(test->mouseMode(), mode) << mode;
  }
}

TEST_F(DisplayPanKey, aDragWithTheKeyStillDownStaysInPanMode)
{
  test->mouseMode(ccDisplay::pointerMode);
  test.moveTo({50, 50}).keyDown(kControl).press().moveTo({60, 55}).release();
  EXPECT_EQ(test->mouseMode(), ccDisplay::panMode);
  test.keyUp(kControl);
  EXPECT_EQ(test->mouseMode(), ccDisplay::pointerMode);
}

TEST_F(DisplayPanKey, repeatedKeysAndOtherKeysAreIgnored)
{
  test->mouseMode(ccDisplay::pointerMode);
  test.moveTo({50, 50});
  test.keyDown(kControl, /*repeated=*/true).keyUp(kControl);
  test.keyDown(ccKeyboardEvent::vkShift);
  EXPECT_EQ(test->mouseMode(), ccDisplay::pointerMode);
  test.keyUp(ccKeyboardEvent::vkShift);
  test.character(17);  // the number of the pan key, but a character
  EXPECT_EQ(test->mouseMode(), ccDisplay::pointerMode);

  test.keyDown(kControl).keyDown(kControl, /*repeated=*/true);
  EXPECT_EQ(test->mouseMode(), ccDisplay::panMode);
  test.keyUp(kControl);
  EXPECT_EQ(test->mouseMode(), ccDisplay::pointerMode);
}

TEST_F(DisplayPanKey, isTheEventProcessors)
{
  test->mouseMode(ccDisplay::pointerMode);
  test.events().panKey(ccKeyboardEvent::vkShift);
  test.moveTo({50, 50}).keyDown(kControl);
  EXPECT_EQ(test->mouseMode(), ccDisplay::pointerMode);
  test.keyUp(kControl).keyDown(ccKeyboardEvent::vkShift);
  EXPECT_EQ(test->mouseMode(), ccDisplay::panMode);
  test.keyUp(ccKeyboardEvent::vkShift);
  EXPECT_EQ(test->mouseMode(), ccDisplay::pointerMode);
}

TEST_F(DisplayPanKey, pressedDuringADragDoesNothing)
{
  test->mouseMode(ccDisplay::panMode);
  test.moveTo({50, 50}).press().moveTo({60, 55}).keyDown(kControl);
  EXPECT_EQ(test->mouseMode(), ccDisplay::panMode);
  test.keyUp(kControl).release();
  EXPECT_EQ(test->mouseMode(), ccDisplay::panMode);
}

TEST_F(DisplayPanKey, aReleaseWithoutAPressDoesNothing)
{
  test->mouseMode(ccDisplay::zoomInMode);
  test.moveTo({50, 50}).keyUp(kControl);
  test.clearLogs();
  test->keyboard([] {
    ccKeyboardEvent e;
    e.event(ccKeyboardEvent::keyUp);
    e.key(kControl);
    return e;
  }());
  EXPECT_EQ(test->mouseMode(), ccDisplay::zoomInMode);
  EXPECT_TRUE(test->hooks.empty());
}

}  // namespace
