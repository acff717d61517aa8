// The fan-out of a drag over a multi-selection, and what it does to the canvas.
#include "tests/support/memory_scope.h"
#include "tests/support/test_tree.h"

#include <gtest/gtest.h>

namespace {

struct DragSiblings : ::testing::Test {
  HookLog log;
  TestRoot root;
  SpyFrame top{log, "top", &root, ccUIRect(0, 0, 100, 100)};
  SpyFrame a{log, "a", &top, ccUIRect(0, 0, 10, 10)};
  SpyFrame b{log, "b", &top, ccUIRect(20, 0, 10, 10)};
  SpyFrame c{log, "c", &top, ccUIRect(40, 0, 10, 10)};

  DragSiblings()
  {
    root.condSelected(true, false);
    for (SpyFrame* node : {&top, &a, &b, &c}) {
      cfOn(*node).condSelected(true, false);
      node->draggable(true);
    }
    a.multiSelectable(true), b.multiSelectable(true);  // c is no member
    cfTake(log);
  }
};

using DragFanOut = DragSiblings;

TEST_F(DragFanOut, startMarksAndCallsEachMemberBackToFrontAndThenAnimatesInPlace)
{
  b.dragStart({3, 4});

  EXPECT_EQ(cfTake(log), (HookLog{"a dragStart 3,4", "b dragStart 3,4", "a dragAnimate 3,4 3,4", "b dragAnimate 3,4 3,4"}));
  EXPECT_TRUE(a.dragging() && b.dragging());
  EXPECT_FALSE(c.dragging());
}

TEST_F(DragFanOut, animateCallsEveryMember)
{
  b.dragStart({3, 4});
  cfTake(log);

  b.dragAnimate({3, 4}, {5, 6});

  EXPECT_EQ(cfTake(log), (HookLog{"a dragAnimate 3,4 5,6", "b dragAnimate 3,4 5,6"}));
}

TEST_F(DragFanOut, animateOfANodeThatIsntMultiSelectableCallsItAlone)
{
  c.dragStart({0, 0});
  EXPECT_EQ(cfTake(log), (HookLog{"c dragStart 0,0", "c dragAnimate 0,0 0,0"}));
}

TEST_F(DragFanOut, animateCallsNobodyWhileTheNodeIsntSelected)
{
  c.dragStart({0, 0});
  top.condSelected(false, false);
  cfTake(log);

  c.dragAnimate({0, 0}, {1, 1});

  EXPECT_TRUE(log.empty());
}

TEST_F(DragFanOut, stopClearsTheMarkBeforeTheHookAndMovesEachMember)
{
  b.dragStart({3, 4});
  bool markedInHook = true;
  a.onHook = [&](SpyFrame& self, std::string const& hook) {
    if (hook == "dragStop")
      markedInHook = self.dragging();
  };
  cfTake(log);

  b.dragStop({3, 4}, {8, 10});

  EXPECT_EQ(cfTake(log), (HookLog{"a dragStop 3,4 8,10", "b dragStop 3,4 8,10"}));
  EXPECT_FALSE(markedInHook);
  EXPECT_FALSE(a.dragging() || b.dragging());
  EXPECT_EQ(a.frameRect(), ccUIRect(5, 6, 10, 10));
  EXPECT_EQ(b.frameRect(), ccUIRect(25, 6, 10, 10));
  EXPECT_EQ(c.frameRect(), ccUIRect(40, 0, 10, 10));
}

TEST_F(DragFanOut, aMemberThatEndsTheSelectionInItsHookStrandsNoOther)
{
  b.dragStart({0, 0});
  a.onHook = [&](SpyFrame&, std::string const& hook) {
    if (hook == "dragStop")
      b.condSelected(false, false);
  };

  b.dragStop({0, 0}, {1, 1});

  EXPECT_FALSE(b.dragging());
  EXPECT_EQ(b.frameRect().ul(), ccPair<long>(21, 1));
}

TEST_F(DragFanOut, aParentlessNodeDragsItself)
{
  SpyFrame orphan(log, "orphan", nullptr, ccUIRect(0, 0, 5, 5));
  orphan.condVisible(true);
  orphan.condSelected(true, false);
  cfTake(log);

  orphan.dragStart({1, 1});
  orphan.dragStop({1, 1}, {2, 3});

  EXPECT_EQ(cfTake(log), (HookLog{"orphan dragStart 1,1", "orphan dragAnimate 1,1 1,1", "orphan dragStop 1,1 2,3"}));
  EXPECT_EQ(orphan.frameRect().ul(), ccPair<long>(1, 2));
}

TEST_F(DragFanOut, membersThatDieInHooksAreLeftOut)
{
  auto* d = new SpyFrame(log, "d", &top, ccUIRect(60, 0, 10, 10));
  cfOn(*d).multiSelectable(true);
  d->condSelected(true, false);
  a.onHook = [&](SpyFrame&, std::string const& hook) {
    if (hook == "dragStart")
      delete d;
  };
  cfTake(log);

  b.dragStart({0, 0});

  EXPECT_EQ(cfTake(log), (HookLog{"a dragStart 0,0", "b dragStart 0,0", "a dragAnimate 0,0 0,0", "b dragAnimate 0,0 0,0"}));
}

struct DragOnScreen : ::testing::Test {
  HookLog log;
  MemoryScope image{{100, 60}}, overlay{{100, 60}, 32, MemoryScope::overlayPlane};
  TestRoot root{&image, &overlay};
  SpyFrame top{log, "top", &root, ccUIRect(0, 0, 80, 60)};
  SpyFrame a{log, "a", &top, ccUIRect(10, 10, 20, 10)};

  DragOnScreen()
  {
    for (SpyFrame* node : {&top, &a})
      cfOn(*node).condSelected(true, false);
    root.globalUpdate();
    image.clearLog(), overlay.clearLog();
  }
  HookLog kinds(MemoryScope const& scope) const
  {
    HookLog found;
    for (auto const& call : scope.log())
      if (call.kind.rfind("drag", 0) == 0)
        found.push_back(call.kind);
    return found;
  }
};

TEST_F(DragOnScreen, startErasesAndAnimatesOncePerLayer)
{
  a.dragStart({0, 0});

  // Start, then the step in place: erase, animation on, animation off.
  HookLog const expected{"dragStart", "dragErase", "dragAnimateOn", "dragAnimateOff"};
  EXPECT_EQ(kinds(image), expected);
  EXPECT_EQ(kinds(overlay), expected);
  EXPECT_TRUE(image.isDragging() && overlay.isDragging());

  image.clearLog();
  a.dragStop({0, 0}, {0, 0});
  EXPECT_EQ(kinds(image), (HookLog{"dragErase", "dragStop"}));
  EXPECT_FALSE(image.isDragging() || overlay.isDragging());
}

TEST_F(DragOnScreen, aControlFrameDrawsItsShiftedOutlineOnTheParentsOverlay)
{
  a.dragStart({0, 0});
  a.dragAnimate({0, 0}, {5, 7});

  std::uint32_t const ghost = overlay.value(ccUIObject::dragColor());
  // The outline of (15, 17, 20, 10).
  EXPECT_EQ(overlay.pel(15, 17), ghost);
  EXPECT_EQ(overlay.pel(34, 26), ghost);
  EXPECT_EQ(overlay.pel(20, 17), ghost);
  EXPECT_NE(overlay.pel(16, 18), ghost);
  EXPECT_NE(overlay.pel(10, 10), ghost);  // that of the start is gone

  a.dragStop({0, 0}, {5, 7});
  EXPECT_NE(overlay.pel(15, 17), ghost);
  EXPECT_EQ(a.frameRect(), ccUIRect(15, 17, 20, 10));
}

TEST(DragOnImageLayer, withoutOverlayTheOutlineGoesToTheImageLayer)
{
  HookLog log;
  MemoryScope image({100, 60});
  TestRoot root(&image, nullptr);
  SpyFrame a(log, "a", &root, ccUIRect(10, 10, 20, 10));
  cfOn(a).condSelected(true, false);
  root.globalUpdate();

  a.dragStart({0, 0});

  EXPECT_EQ(image.pel(10, 10), image.value(ccUIObject::dragColor()));
  a.dragStop({0, 0}, {0, 0});
}

TEST_F(DragOnScreen, screenUpdatesAreHeldBackDuringAStep)
{
  bool locked = false;
  a.onHook = [&](SpyFrame&, std::string const& hook) {
    if (hook == "dragAnimate")
      locked = image.screenUpdatesLocked() && overlay.screenUpdatesLocked();
  };

  a.dragStart({0, 0});

  EXPECT_TRUE(locked);
  EXPECT_FALSE(image.screenUpdatesLocked() || overlay.screenUpdatesLocked());
  a.dragStop({0, 0}, {0, 0});
}

TEST_F(DragOnScreen, aNodeThatDiesInAStepLeavesTheScreenUnlockedAndTheDragEnded)
{
  auto* d = new SpyFrame(log, "d", &top, ccUIRect(60, 0, 10, 10));
  cfOn(*d).condSelected(true, false);
  d->draggable(true);
  Hand hand(root);
  d->onHook = [](SpyFrame& self, std::string const& hook) {
    if (hook == "dragAnimate")
      delete &self;
  };

  hand.pressAt(65, 5);

  EXPECT_FALSE(image.screenUpdatesLocked() || overlay.screenUpdatesLocked());
  EXPECT_FALSE(image.isDragging() || overlay.isDragging());
  EXPECT_EQ(root.eventProcessor()->owner(), nullptr);
}

TEST_F(DragOnScreen, anOwnerThatIsHiddenInItsDragFreesTheScreenAtTheRelease)
{
  a.draggable(true);
  Hand hand(root);
  hand.pressAt(15, 15);
  ASSERT_TRUE(a.dragging() && image.isDragging());
  a.condVisible(false);
  cfTake(log);

  hand.moveTo(20, 20).release();

  EXPECT_TRUE(log.empty()) << log[0];  // a hidden owner is told nothing
  EXPECT_FALSE(a.dragging());
  EXPECT_FALSE(image.isDragging() || overlay.isDragging());
}

}  // namespace
