// The gesture state machine: who owns a press, and what is a click, a drag, a dwell or nothing.
#include "foundation/resource.h"
#include "tests/support/memory_scope.h"
#include "tests/support/test_tree.h"

#include <gtest/gtest.h>

namespace {

using Gesture = ccUIEventProcessor::Gesture;
constexpr std::uint32_t left = ccMouseEvent::leftButton, middle = ccMouseEvent::middleButton,
                        right = ccMouseEvent::rightButton;

struct Stage : ::testing::Test {
  HookLog log;
  TestRoot root;
  ccUIEventProcessor& processor{*root.eventProcessor()};
  SpyFrame back{log, "back", &root, ccUIRect(0, 0, 200, 100)};
  SpyFrame a{log, "a", &root, ccUIRect(10, 10, 30, 30)};
  SpyFrame b{log, "b", &root, ccUIRect(60, 10, 30, 30)};
  Hand hand{root};

  Stage()
  {
    for (SpyFrame* node : {&back, &a, &b})
      cfOn(*node);
    back.dontMove(true);
    cfTake(log);
  }
  // The lines without hover and selection.
  HookLog gestureLines()
  {
    HookLog lines;
    for (std::string const& line : cfTake(log))
      if (line.find("ouseMove") == line.npos && line.find("ouseEnter") == line.npos &&
          line.find("mouseLeave") == line.npos && line.find("select") == line.npos)
        lines.push_back(line);
    return lines;
  }
};

using EventProcessor = Stage;

TEST_F(EventProcessor, startsIdleWithStatedDefaults)
{
  EXPECT_EQ(processor.gesture(), Gesture::idle);
  EXPECT_EQ(processor.owner(), nullptr);
  EXPECT_EQ(processor.mouseCapture(), nullptr);
  EXPECT_EQ(processor.anchor(), ccPair<long>(0, 0));
  EXPECT_EQ(processor.lastMousePos(), ccPair<long>(0, 0));
  EXPECT_EQ(processor.button(), 0u);
  EXPECT_EQ(processor.dwellCount(), 0);
  EXPECT_FALSE(processor.dblClk() || processor.dragUpdating());
  EXPECT_EQ(processor.root(), &root);
  EXPECT_EQ(processor.multiSelectKey(), ccKeyboardEvent::vkShift);
  EXPECT_EQ(processor.panKey(), ccKeyboardEvent::vkControl);
}

TEST_F(EventProcessor, aPressAndReleaseOnAClickableNodeIsAClickBetweenDownAndUp)
{
  a.clickable(true);

  hand.pressAt(20, 20);
  EXPECT_EQ(processor.gesture(), Gesture::pressed);
  EXPECT_EQ(processor.owner(), &a);
  EXPECT_EQ(processor.anchor(), ccPair<long>(20, 20));
  EXPECT_EQ(processor.button(), left);
  EXPECT_EQ(gestureLines(), HookLog{"a mouseDown"});

  hand.release();
  EXPECT_EQ(gestureLines(), (HookLog{"a click", "a mouseUp"}));
  EXPECT_EQ(processor.gesture(), Gesture::idle);
}

TEST_F(EventProcessor, aPressSelectsBeforeItIsDelivered)
{
  a.clickable(true);

  hand.pressAt(20, 20);

  EXPECT_EQ(cfTake(log), (HookLog{"a select selected", "a mouseDown"}));
}

TEST_F(EventProcessor, aNodeThatIsNeitherClickableNorDraggableIsOnlySelected)
{
  hand.pressAt(20, 20).release();

  EXPECT_TRUE(gestureLines().empty());
  EXPECT_TRUE(a.condSelected());
}

TEST_F(EventProcessor, aPressOnNothingLeavesNoOwnerAndItsReleaseOnlyUpdatesHover)
{
  back.condVisible(false);
  cfTake(log);

  hand.pressAt(150, 90);
  EXPECT_EQ(processor.owner(), nullptr);
  EXPECT_EQ(processor.gesture(), Gesture::idle);
  hand.moveTo(20, 20);
  EXPECT_TRUE(log.empty());
  hand.release();

  EXPECT_EQ(cfTake(log), (HookLog{"a idleMouseEnter", "a mouseMove 20,20"}));
}

TEST_F(EventProcessor, aSecondButtonIsDroppedAndTheFirstOnesReleaseEndsTheGesture)
{
  a.clickable(true);
  hand.pressAt(20, 20);
  cfTake(log);

  hand.press(right);
  EXPECT_TRUE(log.empty());
  EXPECT_EQ(processor.button(), left);
  EXPECT_EQ(processor.owner(), &a);
  hand.release(left);

  EXPECT_EQ(gestureLines(), (HookLog{"a click", "a mouseUp"}));
  EXPECT_EQ(processor.gesture(), Gesture::idle);
}

TEST_F(EventProcessor, aReleaseOfAnotherButtonIsDropped)
{
  a.clickable(true);
  hand.pressAt(20, 20).press(right);
  cfTake(log);

  hand.release(right);

  EXPECT_TRUE(log.empty());
  EXPECT_EQ(processor.gesture(), Gesture::pressed);
}

TEST_F(EventProcessor, positionAndEventAreRecordedForDroppedEventsToo)
{
  hand.pressAt(20, 20);
  processor.processEvent(cfMouse(ccMouseEvent::mouseReleased, {33, 44}, middle, left));
  EXPECT_EQ(processor.lastMousePos(), ccPair<long>(33, 44));
  EXPECT_EQ(processor.lastMouseEvent().event(), ccMouseEvent::mouseReleased);

  processor.processEvent(cfMouse(ccMouseEvent::mouseNone, {5, 6}, 0, 0));
  EXPECT_EQ(processor.lastMousePos(), ccPair<long>(5, 6));
  EXPECT_EQ(processor.owner(), &a);
}

TEST_F(EventProcessor, anUnknownEventIsDropped)
{
  hand.moveTo(20, 20);
  cfTake(log);

  processor.processEvent(cfMouse(static_cast<ccMouseEvent::Event>(17), {70, 20}, left, left));

  EXPECT_TRUE(log.empty());
  EXPECT_EQ(processor.gesture(), Gesture::idle);
}

TEST_F(EventProcessor, aMotionWithoutTheGesturesButtonIsDropped)
{
  hand.pressAt(20, 20);
  cfTake(log);

  processor.processEvent(cfMouse(ccMouseEvent::mouseMoved, {70, 20}, 0, right));

  EXPECT_TRUE(log.empty());
}

// Double clicks

TEST_F(EventProcessor, aDoubleClickCallsDblClickAndItsReleaseDeliversNeitherClickNorMouseUp)
{
  a.clickable(true);
  hand.pressAt(20, 20).release();
  EXPECT_EQ(gestureLines(), (HookLog{"a mouseDown", "a click", "a mouseUp"}));

  hand.dblClick();
  EXPECT_TRUE(processor.dblClk());
  hand.release();

  EXPECT_EQ(gestureLines(), HookLog{"a dblClick"});
  EXPECT_FALSE(processor.dblClk());
  EXPECT_EQ(processor.owner(), nullptr);
}

TEST_F(EventProcessor, aDoubleClickOfAnotherButtonThanTheLastPressTakesTheOwnerAndDeliversNothing)
{
  a.clickable(true);
  hand.pressAt(20, 20).release();
  cfTake(log);

  hand.moveTo(70, 20).dblClick(right);

  EXPECT_TRUE(gestureLines().empty());
  EXPECT_EQ(processor.owner(), &b);
  EXPECT_FALSE(processor.dblClk());
}

TEST_F(EventProcessor, aMotionBetweenDoubleClickAndReleaseMakesTheReleaseAClick)
{
  a.clickable(true);
  hand.pressAt(20, 20).release().dblClick();
  cfTake(log);

  hand.moveTo(21, 20).release();

  EXPECT_EQ(gestureLines(), (HookLog{"a click", "a mouseUp"}));
}

// Drags

TEST_F(EventProcessor, aDraggableNodeThatIsntClickableStartsItsDragAtThePress)
{
  a.draggable(true);
  root.condSelected(true, false);

  hand.pressAt(20, 20);

  EXPECT_EQ(gestureLines(), (HookLog{"a dragStart 20,20", "a dragAnimate 20,20 20,20"}));
  EXPECT_EQ(processor.gesture(), Gesture::dragging);

  hand.moveTo(22, 23);
  EXPECT_EQ(gestureLines(), HookLog{"a dragAnimate 20,20 22,23"});
  hand.release();
  EXPECT_EQ(gestureLines(), (HookLog{"a dragStop 20,20 22,23", "a mouseUp"}));
  EXPECT_EQ(a.frameRect().ul(), ccPair<long>(12, 13));
  EXPECT_EQ(processor.gesture(), Gesture::idle);
}

TEST_F(EventProcessor, aClickableAndDraggableNodeStartsAtTheFirstMotionNotAtThePress)
{
  a.draggable(true);
  a.clickable(true);

  hand.pressAt(20, 20);
  EXPECT_EQ(gestureLines(), HookLog{"a mouseDown"});
  EXPECT_EQ(processor.gesture(), Gesture::pressed);

  hand.moveTo(20, 20);  // no threshold, not even of one pel
  EXPECT_EQ(gestureLines(), (HookLog{"a dragStart 20,20", "a dragAnimate 20,20 20,20", "a dragAnimate 20,20 20,20"}));
  EXPECT_EQ(processor.gesture(), Gesture::dragging);
  hand.moveTo(25, 20).release();
  EXPECT_EQ(gestureLines(), (HookLog{"a dragAnimate 20,20 25,20", "a dragStop 20,20 25,20", "a mouseUp"}));
}

TEST_F(EventProcessor, aMemberWhoseFellowIsntDraggableIsOnlySelectedAndPressed)
{
  for (SpyFrame* node : {&a, &b}) {
    node->multiSelectable(true);
    node->condSelected(true, false);
  }
  a.draggable(true);
  cfTake(log);

  hand.pressAt(20, 20).moveTo(25, 20).release();
  EXPECT_TRUE(gestureLines().empty());
  EXPECT_TRUE(a.condSelected() && b.condSelected());

  a.clickable(true);
  hand.pressAt(20, 20).moveTo(25, 20).release();
  EXPECT_EQ(gestureLines(), (HookLog{"a mouseDown", "a click", "a mouseUp"}));
}

TEST_F(EventProcessor, duringADragNothingIsHitTestedAndHoverStaysFrozenUntilTheRelease)
{
  a.draggable(true);
  hand.moveTo(20, 20);
  cfTake(log);
  hand.press().moveTo(70, 20);

  for (std::string const& line : cfTake(log))
    EXPECT_EQ(line.find("b "), line.npos) << line;

  // The root stands for what is under the pointer at the release.
  hand.release();
  HookLog const lines = cfTake(log);
  EXPECT_EQ(lines[0], "a mouseLeave");
  EXPECT_EQ(lines[1], "a dragStop 20,20 70,20");
  hand.moveTo(150, 90);
  EXPECT_EQ(cfTake(log), (HookLog{"back idleMouseEnter", "back mouseMove 150,90"}));
}

TEST_F(EventProcessor, aDragCanBeMovedToAnotherAnchor)
{
  a.draggable(true);
  hand.pressAt(20, 20);
  processor.anchor({0, 0});
  cfTake(log);

  hand.moveTo(5, 5);

  EXPECT_EQ(gestureLines(), HookLog{"a dragAnimate 0,0 5,5"});
  hand.release();
}

TEST_F(EventProcessor, aPressWhileADragHangsEndsTheDragWithoutACall)
{
  a.draggable(true);
  hand.pressAt(20, 20);
  ASSERT_TRUE(a.dragging());
  cfTake(log);

  // The release was lost.
  processor.processEvent(cfMouse(ccMouseEvent::mousePressed, {70, 20}, left, left));

  EXPECT_FALSE(a.dragging());
  EXPECT_EQ(processor.owner(), &root);  // hit testing still rested
  EXPECT_TRUE(gestureLines().empty());
}

// Following the pointer in and out

TEST_F(EventProcessor, aPressedNodeGoesUpAndDownAsThePointerLeavesAndReturns)
{
  a.clickable(true);
  hand.pressAt(20, 20);
  cfTake(log);

  hand.moveTo(21, 20);
  EXPECT_TRUE(gestureLines().empty());
  hand.moveTo(70, 20);
  EXPECT_EQ(gestureLines(), HookLog{"a mouseUp"});
  hand.moveTo(71, 20);
  EXPECT_TRUE(gestureLines().empty());
  hand.moveTo(20, 20);
  EXPECT_EQ(gestureLines(), HookLog{"a mouseDown"});
  hand.release();
  EXPECT_EQ(gestureLines(), (HookLog{"a click", "a mouseUp"}));
}

TEST_F(EventProcessor, aReleaseOutsideDeliversNothing)
{
  a.clickable(true);
  hand.pressAt(20, 20).moveTo(70, 20);
  cfTake(log);

  hand.release();

  EXPECT_TRUE(gestureLines().empty());
  EXPECT_EQ(processor.gesture(), Gesture::idle);
}

// Dwell

TEST_F(EventProcessor, dwellTicksClickOneByOneAndTheReleaseAfterThemGivesNoClick)
{
  a.clickable(true);
  a.dwell(true);
  hand.pressAt(20, 20);
  cfTake(log);

  hand.dwell().dwell().dwell();
  EXPECT_EQ(gestureLines(), (HookLog{"a click", "a click", "a click"}));
  EXPECT_EQ(processor.dwellCount(), 3);
  hand.release();

  EXPECT_EQ(gestureLines(), HookLog{"a mouseUp"});
  hand.press();
  EXPECT_EQ(processor.dwellCount(), 0);
}

TEST_F(EventProcessor, dwellOutsideCountsWithoutAClick)
{
  a.clickable(true);
  a.dwell(true);
  hand.pressAt(20, 20).moveTo(70, 20);
  cfTake(log);

  hand.dwell();

  EXPECT_TRUE(gestureLines().empty());
  EXPECT_EQ(processor.dwellCount(), 1);
}

TEST_F(EventProcessor, oneDwellTickRulesADragOutForThisPress)
{
  a.clickable(true);
  a.draggable(true);
  a.dwell(true);
  hand.pressAt(20, 20).dwell();
  cfTake(log);

  hand.moveTo(25, 20);

  EXPECT_TRUE(gestureLines().empty());
  EXPECT_EQ(processor.gesture(), Gesture::pressed);
}

TEST_F(EventProcessor, aNodeWithoutDwellCountsNothing)
{
  a.clickable(true);
  hand.pressAt(20, 20);
  cfTake(log);

  hand.dwell();

  EXPECT_TRUE(gestureLines().empty());
  EXPECT_EQ(processor.dwellCount(), 0);
}

TEST_F(EventProcessor, dwellWithoutTheGesturesButtonIsDropped)
{
  a.dwell(true);
  hand.pressAt(20, 20).release().dwell();

  EXPECT_EQ(processor.dwellCount(), 0);
}

// Middle and right

TEST_F(EventProcessor, theMiddleButtonSendsEveryEventToTheOwnersHook)
{
  hand.keys = 6;
  hand.pressAt(20, 20, middle).moveTo(70, 20).release(middle);

  EXPECT_EQ(gestureLines(), (HookLog{"a mouseMiddle 20,20 2 6", "a mouseMiddle 70,20 1 6", "a mouseMiddle 70,20 4 6"}));
  EXPECT_FALSE(a.condSelected());
}

TEST_F(EventProcessor, theRightButtonSendsEveryEventToMouseRight)
{
  a.rightButtonMode(ccUIObject::rightButtonToObject);

  hand.pressAt(20, 20, right).moveTo(70, 20).release(right);

  EXPECT_EQ(gestureLines(), (HookLog{"a mouseRight 20,20 2 0", "a mouseRight 70,20 1 0", "a mouseRight 70,20 4 0"}));
}

TEST_F(EventProcessor, theRightButtonSendsBackByDefault)
{
  a.condSelected(true, false);

  hand.pressAt(20, 20, right);

  EXPECT_FALSE(a.condSelected());
  EXPECT_EQ(root.backKid(), &a);
}

TEST_F(EventProcessor, rightAsLeftSelectsAsIfWithTheMultiSelectionKey)
{
  for (SpyFrame* node : {&a, &b})
    node->multiSelectable(true);
  b.condSelected(true, false);
  a.rightButtonMode(ccUIObject::rightButtonAsLeft);
  a.clickable(true);
  cfTake(log);

  hand.pressAt(20, 20, right);

  EXPECT_TRUE(a.condSelected() && b.condSelected());
  EXPECT_EQ(processor.button(), left);
  EXPECT_EQ(gestureLines(), HookLog{"a mouseDown"});
  hand.release(right);
  EXPECT_EQ(gestureLines(), (HookLog{"a click", "a mouseUp"}));
}

TEST_F(EventProcessor, aMotionWithTheRightButtonOverSuchANodeIsDropped)
{
  a.rightButtonMode(ccUIObject::rightButtonAsLeft);
  a.clickable(true);
  a.draggable(true);
  hand.pressAt(20, 20, right);
  cfTake(log);

  hand.moveTo(25, 20);

  EXPECT_TRUE(log.empty());
  EXPECT_EQ(processor.gesture(), Gesture::pressed);
}

TEST_F(EventProcessor, aRightReleaseOverAnotherNodeIsNotConvertedAndSoDropped)
{
  a.rightButtonMode(ccUIObject::rightButtonAsLeft);
  a.clickable(true);
  hand.pressAt(20, 20, right);
  cfTake(log);

  processor.processEvent(cfMouse(ccMouseEvent::mouseReleased, {70, 20}, right, 0));

  EXPECT_TRUE(log.empty());
  EXPECT_EQ(processor.owner(), &a);
}

TEST_F(EventProcessor, theMultiSelectionKeyIsShiftUnlessSet)
{
  for (SpyFrame* node : {&a, &b})
    node->multiSelectable(true);
  b.condSelected(true, false);
  hand.keys = ccMouseEvent::kControlKey;
  hand.pressAt(20, 20).release();
  EXPECT_FALSE(b.condSelected());

  b.condSelected(true, false), a.condSelected(false, false);
  hand.keys = ccMouseEvent::kShiftKey;
  hand.press().release();
  EXPECT_TRUE(a.condSelected() && b.condSelected());
}

// Owners that go or rest

TEST_F(EventProcessor, aDisabledOwnerGetsNothing)
{
  a.clickable(true);
  hand.pressAt(20, 20);
  a.condEnabled(false);
  cfTake(log);

  hand.moveTo(70, 20).release();

  EXPECT_TRUE(gestureLines().empty());
  EXPECT_EQ(processor.owner(), nullptr);
}

TEST_F(EventProcessor, aClickThatDestroysItsNodeIsSafe)
{
  auto* c = new SpyFrame(log, "c", &back, ccUIRect(100, 10, 30, 30));
  cfOn(*c).clickable(true);
  c->onHook = [](SpyFrame& self, std::string const& hook) {
    if (hook == "click")
      delete &self;
  };
  hand.pressAt(110, 20);
  cfTake(log);

  hand.release();

  EXPECT_EQ(gestureLines(), HookLog{"c click"});
  EXPECT_EQ(back.numKids(), 0);
  EXPECT_EQ(processor.gesture(), Gesture::idle);
  EXPECT_FALSE(root.mutex().lockedByMe());
}

TEST_F(EventProcessor, aNodeThatDiesAtItsSelectionGetsNoPress)
{
  auto* c = new SpyFrame(log, "c", &back, ccUIRect(100, 10, 30, 30));
  cfOn(*c).clickable(true);
  c->onHook = [](SpyFrame& self, std::string const& hook) {
    if (hook == "select")
      delete &self;
  };
  cfTake(log);

  hand.pressAt(110, 20);

  EXPECT_EQ(cfTake(log), HookLog{"c select selected"});
  EXPECT_EQ(processor.owner(), nullptr);
}

TEST_F(EventProcessor, theDeathOfAnAncestorOfTheOwnerClearsTheOwner)
{
  auto* c = new SpyFrame(log, "c", &back, ccUIRect(100, 10, 30, 30));
  auto* d = new SpyFrame(log, "d", c, ccUIRect(0, 0, 30, 30));
  cfOn(*c), cfOn(*d);
  hand.moveTo(110, 20).press();
  ASSERT_EQ(processor.owner(), d);

  delete c;

  EXPECT_EQ(processor.owner(), nullptr);
  hand.moveTo(20, 20).release();
}

TEST_F(EventProcessor, invalidateObjectForgetsANodeAndItsKidsButNotTheCapture)
{
  SpyFrame kid(log, "kid", &a, ccUIRect(0, 0, 30, 30));
  cfOn(kid);
  hand.moveTo(20, 20).press();
  processor.mouseCapture(&kid);
  cfTake(log);

  processor.invalidateObject(&b);
  EXPECT_EQ(processor.owner(), &kid);
  processor.invalidateObject(nullptr);
  EXPECT_EQ(processor.owner(), &kid);
  processor.invalidateObject(&a);

  EXPECT_EQ(processor.owner(), nullptr);
  EXPECT_EQ(processor.mouseCapture(), &kid);
  processor.mouseCapture(nullptr);
  hand.moveTo(20, 20).release();
  // Hover was forgotten too: the node is entered anew.
  EXPECT_EQ(cfTake(log), (HookLog{"a idleMouseEnter", "kid idleMouseEnter", "kid mouseMove 20,20", "a mouseMove 20,20"}));
}

TEST_F(EventProcessor, anExceptionFromAHookUnwindsTheLock)
{
  a.clickable(true);
  a.onHook = [](SpyFrame&, std::string const& hook) {
    if (hook == "mouseDown")
      throw 1;
  };

  EXPECT_THROW(hand.pressAt(20, 20), int);

  EXPECT_FALSE(root.mutex().lockedByMe());
}

// Capture

TEST_F(EventProcessor, hitTestingStartsAtTheCaptureAndFallsBackOnItForHover)
{
  SpyFrame kid(log, "kid", &a, ccUIRect(5, 5, 10, 10));
  cfOn(kid);
  cfTake(log);
  processor.mouseCapture(&a);

  hand.moveTo(18, 18);  // the kid lies at (15, 15)
  EXPECT_EQ(cfTake(log), (HookLog{"a idleMouseEnter", "kid idleMouseEnter", "kid mouseMove 18,18", "a mouseMove 18,18"}));
  hand.moveTo(70, 20);  // over b, which isn't below the capture
  EXPECT_EQ(cfTake(log), (HookLog{"kid mouseLeave", "a mouseMove 70,20"}));
  hand.press();
  EXPECT_EQ(processor.owner(), nullptr);  // nothing below the capture was hit
  hand.release();
  processor.mouseCapture(nullptr);
}

TEST_F(EventProcessor, aCaptureInsideAFrameIsAskedInItsParentsCoordinates)
{
  a.moveAbs({50, 40});
  SpyFrame kid(log, "kid", &a, ccUIRect(10, 10, 10, 10));
  cfOn(kid).clickable(true);
  processor.mouseCapture(&kid);

  hand.pressAt(65, 55);

  EXPECT_EQ(processor.owner(), &kid);
  hand.release();
  hand.pressAt(15, 15);
  EXPECT_EQ(processor.owner(), nullptr);
  hand.release();
  processor.mouseCapture(nullptr);
}

TEST_F(EventProcessor, aDisabledCaptureGetsHoverAllTheSame)
{
  processor.mouseCapture(&a);
  a.condEnabled(false);
  cfTake(log);

  hand.moveTo(20, 20);

  EXPECT_EQ(cfTake(log), (HookLog{"a idleMouseEnter", "a mouseMove 20,20"}));
  processor.mouseCapture(nullptr);
}

TEST_F(EventProcessor, aCaptureThatHasLostItsTreeGetsNothing)
{
  auto* c = new SpyFrame(log, "c", &back, ccUIRect(100, 10, 30, 30));
  SpyFrame d(log, "d", c, ccUIRect(0, 0, 30, 30));
  cfOn(*c), cfOn(d);
  processor.mouseCapture(&d);
  delete c;
  cfTake(log);

  hand.moveTo(110, 20).press();

  EXPECT_TRUE(log.empty());
  EXPECT_EQ(processor.owner(), nullptr);
  hand.release();
  processor.mouseCapture(nullptr);
}

// Flushing

struct Screen : ::testing::Test {
  HookLog log;
  MemoryScope image{{100, 60}};
  TestRoot root{&image, nullptr};
  SpyFrame a{log, "a", &root, ccUIRect(10, 10, 30, 30)};
  Hand hand{root};

  Screen()
  {
    cfOn(a);
    root.globalUpdate();
    image.clearLog();
  }
};

TEST_F(Screen, whatAHookDrawsIsOnTheScreenWhenTheEventIsDone)
{
  a.clickable(true);
  a.onHook = [&](SpyFrame& self, std::string const& hook) {
    if (hook == "mouseDown")
      self.set(ccUIRect(0, 0, 5, 5), ccColor::redColor(), ccUITablet::imageLayer);
  };

  hand.pressAt(20, 20);

  EXPECT_EQ(image.screenPel(12, 12), image.value(ccColor::redColor()));
  EXPECT_EQ(image.presentations(), 1);  // and all at once
}

TEST_F(Screen, aDragUpdatesNothingElseUnlessDragUpdatingIsOn)
{
  a.draggable(true);
  hand.pressAt(20, 20);
  root.update(ccUIRect(50, 0, 10, 10), ccUITablet::imageLayer, /*now=*/false);

  hand.moveTo(21, 20);
  EXPECT_TRUE(root.anyChanged(ccUITablet::imageLayer));
  root.eventProcessor()->dragUpdating(true);
  hand.moveTo(22, 20);
  EXPECT_FALSE(root.anyChanged(ccUITablet::imageLayer));
  root.eventProcessor()->dragUpdating(false);
  root.update(ccUIRect(50, 0, 10, 10), ccUITablet::imageLayer, false);
  hand.release();
  EXPECT_FALSE(root.anyChanged(ccUITablet::imageLayer));
}

}  // namespace
