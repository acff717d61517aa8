// Enter, leave and motion.
#include "tests/support/memory_watch.h"
#include "tests/support/test_tree.h"

#include <gtest/gtest.h>

namespace {

struct HoverStage : ::testing::Test {
  HookLog log;
  TestRoot root;
  SpyFrame a{log, "a", &root, ccUIRect(0, 0, 100, 100)};
  SpyFrame a1{log, "a1", &a, ccUIRect(0, 0, 40, 40)};
  SpyFrame a11{log, "a11", &a1, ccUIRect(0, 0, 20, 20)};
  SpyFrame a2{log, "a2", &a, ccUIRect(50, 0, 40, 40)};
  Hand hand{root};

  HoverStage()
  {
    for (SpyFrame* node : {&a, &a1, &a11, &a2})
      cfOn(*node);
    cfTake(log);
  }
};

using Hover = HoverStage;

TEST_F(Hover, enteringGoesOutermostFirstAndTheMotionInnermostFirst)
{
  hand.moveTo(5, 5);

  EXPECT_EQ(cfTake(log), (HookLog{"a idleMouseEnter", "a1 idleMouseEnter", "a11 idleMouseEnter", "a11 mouseMove 5,5",
                                  "a1 mouseMove 5,5", "a mouseMove 5,5"}));
}

TEST_F(Hover, leavingGoesInnermostFirstUpToTheCommonAncestor)
{
  hand.moveTo(5, 5);
  cfTake(log);

  hand.moveTo(60, 5);

  EXPECT_EQ(cfTake(log), (HookLog{"a11 mouseLeave", "a1 mouseLeave", "a2 idleMouseEnter", "a2 mouseMove 60,5",
                                  "a mouseMove 60,5"}));
}

TEST_F(Hover, movingUpTheTreeOnlyLeavesAndDownOnlyEnters)
{
  hand.moveTo(5, 5);
  cfTake(log);
  hand.moveTo(45, 90);
  EXPECT_EQ(cfTake(log), (HookLog{"a11 mouseLeave", "a1 mouseLeave", "a mouseMove 45,90"}));
  hand.moveTo(30, 30);
  EXPECT_EQ(cfTake(log), (HookLog{"a1 idleMouseEnter", "a1 mouseMove 30,30", "a mouseMove 30,30"}));
}

TEST_F(Hover, nothingUnderThePointerLeavesEverything)
{
  hand.moveTo(5, 5);
  cfTake(log);

  hand.moveTo(150, 50);

  EXPECT_EQ(cfTake(log), (HookLog{"a11 mouseLeave", "a1 mouseLeave", "a mouseLeave"}));
}

TEST_F(Hover, aDisabledNodesHoverGoesToItsNearestEnabledAncestor)
{
  a1.condEnabled(false);
  cfTake(log);

  hand.moveTo(5, 5);

  EXPECT_EQ(cfTake(log), (HookLog{"a idleMouseEnter", "a mouseMove 5,5"}));
  a.condEnabled(false);
  root.condEnabled(false);
  cfTake(log);
  hand.moveTo(6, 5);
  EXPECT_EQ(cfTake(log), HookLog{"a mouseLeave"});
}

TEST_F(Hover, whileAButtonIsDownHoverStaysFrozenAndTheOldNodesGetTheMotion)
{
  hand.moveTo(60, 5).press();
  cfTake(log);

  hand.moveTo(5, 5);
  EXPECT_EQ(cfTake(log), (HookLog{"a2 mouseMove 5,5", "a mouseMove 5,5"}));
}

TEST_F(Hover, itIsCorrectedAtTheReleaseBeforeTheReleaseIsDelivered)
{
  a2.clickable(true);
  a2.dwell(true);
  hand.moveTo(60, 5).press().dwell();
  hand.moveTo(61, 5);
  cfTake(log);

  root.eventProcessor()->processEvent(cfMouse(ccMouseEvent::mouseReleased, {5, 5}, ccMouseEvent::leftButton, 0));

  EXPECT_EQ(cfTake(log), (HookLog{"a2 mouseLeave", "a1 idleMouseEnter", "a11 idleMouseEnter", "a11 mouseMove 5,5",
                                  "a1 mouseMove 5,5", "a mouseMove 5,5", "a2 mouseUp"}));
}

TEST_F(Hover, motionInIdleDeliversNothingElse)
{
  a.clickable(true), a.draggable(true);

  hand.moveTo(45, 90).moveTo(46, 90);

  EXPECT_EQ(cfTake(log), (HookLog{"a idleMouseEnter", "a mouseMove 45,90", "a mouseMove 46,90"}));
}

TEST_F(Hover, hooksThatDeleteTheWayThroughTheTreeAreSurvived)
{
  auto* x = new SpyFrame(log, "x", &a2, ccUIRect(0, 0, 30, 30));
  auto* y = new SpyFrame(log, "y", x, ccUIRect(0, 0, 30, 30));
  cfOn(*x), cfOn(*y);
  x->onHook = [](SpyFrame& self, std::string const& hook) {
    if (hook == "idleMouseEnter")
      delete &self;  // and the target with it
  };
  cfTake(log);

  hand.moveTo(60, 5);

  EXPECT_EQ(cfTake(log), (HookLog{"a idleMouseEnter", "a2 idleMouseEnter", "x idleMouseEnter", "a2 mouseMove 60,5",
                                  "a mouseMove 60,5"}));
  hand.moveTo(150, 50);
  EXPECT_EQ(cfTake(log), (HookLog{"a2 mouseLeave", "a mouseLeave"}));
}

TEST_F(Hover, aNodeThatDeletesItselfOnLeavingIsSurvived)
{
  auto* x = new SpyFrame(log, "x", &a2, ccUIRect(0, 0, 30, 30));
  auto* y = new SpyFrame(log, "y", x, ccUIRect(0, 0, 30, 30));
  cfOn(*x), cfOn(*y);
  hand.moveTo(60, 5);
  y->onHook = [&](SpyFrame&, std::string const& hook) {
    if (hook == "mouseLeave")
      delete x;  // and itself
  };
  cfTake(log);

  hand.moveTo(45, 90);

  EXPECT_EQ(cfTake(log), (HookLog{"y mouseLeave", "a mouseMove 45,90"}));
}

TEST_F(Hover, theHoverPathAllocatesNothing)
{
  // Plain nodes, as the spies allocate their lines.
  TestRoot quiet;
  ccUIControlFrame outer(&quiet, ccUIRect(0, 0, 200, 100)), one(&outer, ccUIRect(0, 0, 90, 100)),
      two(&outer, ccUIRect(100, 0, 90, 100));
  for (ccUIControlFrame* node : {&outer, &one, &two})
    cfOn(*node);
  ccUIShapesFrame shapes(&two, ccUIRect(0, 0, 90, 100));
  cfOn(shapes);
  BoxShape box(&shapes, {10, 10});
  box.condVisible(true);
  ccUIEventProcessor& processor = *quiet.eventProcessor();
  quiet.globalUpdate();
  quiet.cursors.reserve(10000);
  ccMouseEvent event = cfMouse(ccMouseEvent::mouseMoved, {0, 0}, 0, 0);
  processor.processEvent(event);

  long const before = MemoryWatch::allocations();
  for (long i = 0; i < 1000; ++i) {
    event.position({i % 200, i % 50});
    processor.processEvent(event);
  }

  EXPECT_EQ(MemoryWatch::allocations(), before);
  EXPECT_FALSE(quiet.cursors.empty());  // the box was met on the way
}

}  // namespace
