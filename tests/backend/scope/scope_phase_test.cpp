#include "canvas/graphic_props.h"
#include "tests/backend/scope/scope_fixture.h"

using plat::result;
using plat::testing::failNext;
using plat::testing::Op;

class ScopePhase : public ScopeTest {
protected:
  ScopePhase() { point_.penColor(ccColor(255, 255, 255)); }
  ccGraphicProps point_;
};

TEST_F(ScopePhase, everyOperationOpensAndClosesAPhase)
{
  ScopeProbe scope;
  create(scope);
  scope.set(ccUIRect(0, 0, 5, 5), ccColor::redColor());
  EXPECT_EQ(scope.starts, 1);
  EXPECT_EQ(scope.stops, 1);
  EXPECT_EQ(scope.lastMethod, ccWin32UIScope::kBlit);
  scope.draw(ccPoint(1, 1), point_);
  EXPECT_EQ(scope.starts, 2);
  EXPECT_EQ(scope.lastMethod, ccWin32UIScope::kDirect);
}

TEST_F(ScopePhase, optimisedDrawingReusesAPhaseOfTheSameMethod)
{
  ScopeProbe scope;
  create(scope);
  scope.optimizeDrawing(true);
  for (long i = 0; i < 5; ++i)
    scope.draw(ccPoint(static_cast<double>(i), 1), point_);
  EXPECT_EQ(scope.starts, 1);
  EXPECT_EQ(scope.stops, 0);
  EXPECT_EQ(scope.surface().lock(), result(0x887601AE));  // held all the while

  scope.set(ccUIRect(10, 10, 1, 1), ccColor::redColor());
  EXPECT_EQ(scope.starts, 2);
  EXPECT_EQ(scope.stops, 1);
  scope.optimizeDrawing(false);
  EXPECT_EQ(scope.stops, 2);
  for (long i = 0; i < 5; ++i)
    EXPECT_EQ(shown(i, 1), 0xFFFFFFu) << i;
}

TEST_F(ScopePhase, optimizeDrawingOfAChildIsTheRoots)
{
  ScopeProbe scope;
  create(scope);
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(5, 5, 10, 10), false));
  child->optimizeDrawing(true);
  child->draw(ccPoint(0, 0), point_);
  EXPECT_EQ(scope.stops, 0);
  child->optimizeDrawing(false);
  EXPECT_EQ(scope.stops, 1);
  EXPECT_EQ(shown(5, 5), 0xFFFFFFu);
}

TEST_F(ScopePhase, rootAndChildrenSharingALockEachKeepTheirOrigin)
{
  ScopeProbe scope;
  create(scope);
  std::unique_ptr<ccUIScope> const a(scope.createChildScope(ccUIRect(5, 5, 10, 10), false));
  std::unique_ptr<ccUIScope> const b(scope.createChildScope(ccUIRect(20, 5, 10, 10), false));
  ccGraphicProps line;
  line.penColor(ccColor(255, 0, 0));
  scope.optimizeDrawing(true);
  for (int turn = 0; turn < 2; ++turn) {
    a->draw(ccPoint(turn, 0), point_);
    scope.draw(ccPoint(turn, 0), point_);
    b->draw(ccPoint(turn, 0), point_);
  }
  for (int turn = 0; turn < 2; ++turn) {
    double const y = 2 + turn;
    a->drawStart(ccPoint(0, y));
    a->drawTo(ccPoint(30, y), line);  // far beyond the child
    scope.drawStart(ccPoint(0, y));
    scope.drawTo(ccPoint(1, y), line);
    b->drawStart(ccPoint(0, y));
    b->drawTo(ccPoint(1, y), line);
  }
  scope.optimizeDrawing(false);

  std::vector<std::uint32_t> expected(width * height, 0);
  auto const at = [&](long x, long y) -> std::uint32_t& { return expected[static_cast<std::size_t>(y * width + x)]; };
  for (long const x : {0, 5, 20})
    for (long i = 0; i < 2; ++i) {
      at(x + i, x == 0 ? 0 : 5) = 0xFFFFFF;
      at(x + i, (x == 0 ? 0 : 5) + 2) = 0xFF0000;
      at(x + i, (x == 0 ? 0 : 5) + 3) = 0xFF0000;
    }
  for (long x = 5; x < 15; ++x)
    at(x, 7) = at(x, 8) = 0xFF0000;
  EXPECT_EQ(pelsOf(scope.surface()), expected);
}

TEST_F(ScopePhase, onlyOneScopeOfADisplayHoldsASurface)
{
  DisplayStandIn display;
  ScopeProbe image(false, display.display()), overlay(true, display.display());
  create(image);
  create(overlay);
  image.optimizeDrawing(true);
  overlay.optimizeDrawing(true);

  image.draw(ccPoint(1, 1), point_);
  EXPECT_EQ(display.active, &image);
  overlay.draw(ccPoint(1, 1), point_);
  EXPECT_EQ(display.active, &overlay);
  EXPECT_EQ(image.stops, 1);
  EXPECT_EQ(image.surface().lock(), 0);  // free again
  EXPECT_EQ(image.surface().unlock(), 0);
  overlay.optimizeDrawing(false);
  EXPECT_EQ(display.active, nullptr);
  EXPECT_EQ(pelOf(overlay.surface(), 1, 1), 0xFFFFFFu);
}

TEST_F(ScopePhase, blitPhaseDoesNotBecomeTheActiveScope)
{
  DisplayStandIn display;
  ScopeProbe scope(false, display.display());
  create(scope);
  scope.optimizeDrawing(true);
  scope.set(ccUIRect(0, 0, 5, 5), ccColor::redColor());
  EXPECT_EQ(display.active, nullptr);
  scope.set(ccUIRect(5, 0, 5, 5), ccColor::redColor());
  EXPECT_EQ(scope.starts, 2);  // so it never counts as running
  scope.optimizeDrawing(false);
}

TEST_F(ScopePhase, childDrawsThroughTheDisplaysArbitration)
{
  DisplayStandIn display;
  ScopeProbe image(false, display.display()), overlay(true, display.display());
  create(image);
  create(overlay);
  std::unique_ptr<ccUIScope> const child(image.createChildScope(ccUIRect(5, 5, 10, 10), false));
  image.optimizeDrawing(true);
  overlay.optimizeDrawing(true);
  child->draw(ccPoint(0, 0), point_);
  EXPECT_EQ(display.active, &image);
  overlay.draw(ccPoint(2, 2), point_);
  child->draw(ccPoint(1, 0), point_);
  EXPECT_EQ(display.active, &image);
  image.optimizeDrawing(false);
  overlay.optimizeDrawing(false);
  EXPECT_EQ(pelOf(image.surface(), 5, 5), 0xFFFFFFu);
  EXPECT_EQ(pelOf(image.surface(), 6, 5), 0xFFFFFFu);
  EXPECT_EQ(pelOf(overlay.surface(), 2, 2), 0xFFFFFFu);
}

TEST_F(ScopePhase, scopeGoneWhileItHoldsASurfaceIsNoLongerActive)
{
  DisplayStandIn display;
  {
    ScopeProbe scope(false, display.display());
    create(scope);
    scope.optimizeDrawing(true);
    scope.draw(ccPoint(1, 1), point_);
    EXPECT_EQ(display.active, &scope);
  }
  EXPECT_EQ(display.active, nullptr);
}

TEST_F(ScopePhase, resizeInAPhaseEndsIt)
{
  ScopeProbe scope;
  create(scope);
  scope.optimizeDrawing(true);
  scope.draw(ccPoint(1, 1), point_);
  ASSERT_EQ(scope.resize(ccPair<long>(20, 20), -1), 0);
  scope.draw(ccPoint(2, 2), point_);
  scope.optimizeDrawing(false);
  EXPECT_EQ(pelOf(scope.surface(), 2, 2), 0xFFFFFFu);
  EXPECT_EQ(pelOf(scope.surface(), 1, 1), 0u);
}

TEST_F(ScopePhase, phaseThatCannotStartReportsItsChange)
{
  ScopeProbe scope;
  create(scope);
  failNext(Op::lock, result(0x887601B3));
  scope.draw(ccPoint(4, 5), point_);
  EXPECT_EQ(scope.changeRect(), ccUIRect(4, 5, 1, 1));
  EXPECT_EQ(pelOf(scope.surface(), 4, 5), 0u);
}

TEST_F(ScopePhase, reportsAreSkippedWhenAllIsMarkedAndNobodyRecords)
{
  ScopeProbe scope;
  create(scope);
  scope.allChange();
  ASSERT_EQ(scope.stateBits() & ccUIScope::kModified, 0u);
  ScopeProbe plain;
  create(plain);
  // modified is set by the pels themselves; opaque only by a report that covers everything.
  scope.set(ccUIRect(0, 0, width, height), ccColor::redColor());
  EXPECT_EQ(scope.stateBits() & ccUIScope::kOpaque, 0u);
  plain.set(ccUIRect(0, 0, width, height), ccColor::redColor());
  EXPECT_NE(plain.stateBits() & ccUIScope::kOpaque, 0u);
  scope.recording(true);
  scope.set(ccUIRect(0, 0, width, height), ccColor::redColor());
  EXPECT_NE(scope.stateBits() & ccUIScope::kOpaque, 0u);
}

// --- The way to the screen

TEST_F(ScopePhase, onlyWhatChangedIsPresented)
{
  ScopeProbe scope;
  create(scope);
  scope.set(ccUIRect(2, 3, 4, 5), ccColor::redColor());
  EXPECT_EQ(shown(2, 3), 0xFF0000u);
  EXPECT_EQ(shown(5, 7), 0xFF0000u);
  EXPECT_EQ(shown(6, 7), 0u);
  ASSERT_EQ(scope.surface().bltColorFill(static_cast<RECT const*>(nullptr), 0x00FF00, ceBltWait), 0);
  scope.invalidateScreen(ccUIRect(0, 0, 1, 1));
  scope.updateScreen();
  EXPECT_EQ(shown(0, 0), 0x00FF00u);
  EXPECT_EQ(shown(2, 3), 0xFF0000u);
}

TEST_F(ScopePhase, invalidateOfAChildIsShiftedAndCut)
{
  ScopeProbe scope;
  create(scope);
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(10, 10, 5, 5), false));
  ASSERT_EQ(scope.surface().bltColorFill(static_cast<RECT const*>(nullptr), 0x00FF00, ceBltWait), 0);
  child->invalidateScreen(ccUIRect(3, 3, 100, 100));
  child->updateScreen();
  EXPECT_EQ(shown(13, 13), 0x00FF00u);
  EXPECT_EQ(shown(14, 14), 0x00FF00u);
  EXPECT_EQ(shown(15, 15), 0u);
  EXPECT_EQ(shown(12, 12), 0u);
}

TEST_F(ScopePhase, lockedScreenKeepsWhatChanged)
{
  ScopeProbe scope;
  create(scope);
  scope.lockScreenUpdatesPush(true);
  EXPECT_TRUE(scope.screenUpdatesLocked());
  scope.set(ccColor::redColor());
  EXPECT_EQ(shown(1, 1), 0u);
  EXPECT_TRUE(scope.lockScreenUpdatesPop());
  EXPECT_EQ(shown(1, 1), 0xFF0000u);
}

TEST_F(ScopePhase, unlockByPopOrPushUpdatesExactlyOnce)
{
  ScopeProbe scope;
  create(scope);
  scope.lockScreenUpdatesPush(true);
  scope.lockScreenUpdatesPush(true);
  EXPECT_TRUE(scope.lockScreenUpdatesPop());
  EXPECT_EQ(scope.updates, 0);  // still locked below
  EXPECT_TRUE(scope.lockScreenUpdatesPop());
  EXPECT_EQ(scope.updates, 1);

  scope.lockScreenUpdatesPush(true);
  scope.lockScreenUpdatesPush(false);
  EXPECT_EQ(scope.updates, 2);
  EXPECT_FALSE(scope.lockScreenUpdatesPop());
  EXPECT_EQ(scope.updates, 2);
  EXPECT_TRUE(scope.lockScreenUpdatesPop());
  EXPECT_EQ(scope.updates, 3);
  EXPECT_FALSE(scope.lockScreenUpdatesPop());  // an empty stack
  EXPECT_EQ(scope.updates, 3);
}

TEST_F(ScopePhase, lockOfAChildIsTheRoots)
{
  ScopeProbe scope;
  create(scope);
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(0, 0, 5, 5), true));
  child->lockScreenUpdatesPush(true);
  EXPECT_TRUE(scope.screenUpdatesLocked());
  EXPECT_TRUE(child->screenUpdatesLocked());
  EXPECT_TRUE(child->lockScreenUpdatesPop());
  EXPECT_FALSE(scope.screenUpdatesLocked());
  EXPECT_EQ(scope.updates, 1);
}

TEST_F(ScopePhase, scrollIsCrossedAgainstTheAxes)
{
  ScopeProbe scope;
  create(scope);
  scope.scroll(ccPair<long>(5, 10));
  ASSERT_EQ(scope.surface().bltColorFill(static_cast<RECT const*>(nullptr), 0x333333, ceBltWait), 0);
  ASSERT_EQ(scope.surface().bltColorFill(ccUIRect(5, 10, 1, 1), 0xFF0000, ceBltWait), 0);
  scope.invalidateScreen(ccUIRect(0, 0, width, height));
  scope.updateScreen();
  // The visible part starts at the pel (5, 10), which lies 10 to the right and 5 down of its own place.
  EXPECT_EQ(shown(5 + 10, 10 + 5), 0xFF0000u);
  EXPECT_EQ(shown(16, 15), 0x333333u);
  EXPECT_EQ(shown(14, 15), 0u);
  EXPECT_EQ(shown(15, 14), 0u);
}

TEST_F(ScopePhase, failedFinalBlitIsTriedAgain)
{
  ScopeProbe scope;
  create(scope);
  scope.lockScreenUpdatesPush(true);
  scope.set(ccColor::redColor());
  failNext(Op::blt, result(0x8876021C));
  scope.lockScreenUpdatesPop();
  EXPECT_EQ(shown(1, 1), 0u);
  scope.updateScreen();
  EXPECT_EQ(shown(1, 1), 0xFF0000u);
}

TEST_F(ScopePhase, windowDestroyedWhileDrawingIsHarmless)
{
  ScopeProbe scope;
  create(scope);
  scope.optimizeDrawing(true);
  scope.draw(ccPoint(1, 1), point_);
  windows().destroy(window_);
  scope.draw(ccPoint(2, 2), point_);
  scope.optimizeDrawing(false);
  scope.set(ccColor::redColor());
  scope.updateScreen();
  EXPECT_EQ(pelOf(scope.surface(), 2, 2), 0xFF0000u);
}

TEST_F(ScopePhase, emptyClientAreaKeepsWhatChanged)
{
  ScopeProbe scope;
  create(scope);
  plat::Rect const none{100, 50, 100, 50}, full{100, 50, 100 + static_cast<plat::i32>(width), 80};
  windows().place(window_, &none, -1);
  plat::testing::drain();
  scope.set(ccColor::redColor());
  windows().place(window_, &full, -1);
  plat::testing::drain();
  scope.updateScreen();
  EXPECT_EQ(shown(3, 3), 0xFF0000u);
}

TEST_F(ScopePhase, verticalBlankIsAwaitedWhenWanted)
{
  ScopeProbe scope;
  create(scope);
  // The planned failure is used up by the wait, and by nothing else.
  failNext(Op::waitForVerticalBlank, result(0x80004001));
  scope.set(ccUIRect(0, 0, 1, 1), ccColor::redColor());
  EXPECT_EQ(scope.directDraw().WaitForVerticalBlank(1), result(0x80004001));
  scope.waitForVerticalBlank(true);
  failNext(Op::waitForVerticalBlank, result(0x80004001));
  scope.set(ccUIRect(1, 1, 1, 1), ccColor::redColor());
  EXPECT_EQ(scope.directDraw().WaitForVerticalBlank(1), 0);
  EXPECT_EQ(shown(1, 1), 0xFF0000u);
}

// --- Drag

TEST_F(ScopePhase, animatedPictureGoesAwayWithTheErase)
{
  ScopeProbe scope;
  create(scope);
  scope.set(ccColor::blueColor());
  scope.dragStart();
  scope.dragAnimate(true);
  scope.set(ccUIRect(5, 5, 4, 4), ccColor::redColor());
  EXPECT_EQ(shown(6, 6), 0xFF0000u);
  scope.dragErase();
  scope.updateScreen();
  EXPECT_EQ(shown(6, 6), 0x0000FFu);
  scope.dragAnimate(false);
  scope.dragStop();
  EXPECT_EQ(pelOf(scope.surface(), 6, 6), 0x0000FFu);
}

TEST_F(ScopePhase, drawingWithoutAnimationGoesToTheBackupAndStays)
{
  ScopeProbe scope;
  create(scope);
  scope.dragStart();
  scope.set(ccUIRect(5, 5, 4, 4), ccColor::greenColor());  // not animated
  EXPECT_EQ(shown(6, 6), 0x00FF00u);                       // and shown all the same
  scope.dragAnimate(true);
  scope.set(ccUIRect(0, 0, 10, 10), ccColor::redColor());
  scope.dragErase();
  scope.dragAnimate(false);
  scope.dragStop();
  EXPECT_EQ(pelOf(scope.surface(), 6, 6), 0x00FF00u);
  EXPECT_EQ(pelOf(scope.surface(), 1, 1), 0u);
  EXPECT_EQ(shown(1, 1), 0u);
}

TEST_F(ScopePhase, dragOfAChildIsTheRoots)
{
  ScopeProbe scope;
  create(scope);
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(5, 5, 10, 10), false));
  child->dragStart();
  child->dragAnimate(true);
  child->set(ccColor::redColor());
  EXPECT_EQ(shown(6, 6), 0xFF0000u);
  child->dragErase();
  child->dragAnimate(false);
  child->dragStop();
  EXPECT_EQ(shown(6, 6), 0u);
}

TEST_F(ScopePhase, optimisedDrawingFollowsTheChangeOfTarget)
{
  ScopeProbe scope;
  create(scope);
  scope.optimizeDrawing(true);
  scope.draw(ccPoint(0, 0), point_);
  scope.dragStart();
  scope.draw(ccPoint(1, 0), point_);
  scope.dragAnimate(true);
  scope.draw(ccPoint(2, 0), point_);
  scope.dragErase();
  scope.dragAnimate(false);
  scope.dragStop();
  scope.optimizeDrawing(false);
  EXPECT_EQ(pelOf(scope.surface(), 0, 0), 0xFFFFFFu);
  EXPECT_EQ(pelOf(scope.surface(), 1, 0), 0xFFFFFFu);
  EXPECT_EQ(pelOf(scope.surface(), 2, 0), 0u);
}

TEST_F(ScopePhase, backupFollowsAResizeInADrag)
{
  ScopeProbe scope;
  create(scope);
  scope.dragStart();
  ASSERT_EQ(scope.resize(ccPair<long>(60, 50), -1), 0);
  scope.set(ccColor::greenColor());
  scope.dragAnimate(true);
  scope.set(ccUIRect(50, 40, 5, 5), ccColor::redColor());
  scope.dragErase();
  scope.dragAnimate(false);
  scope.dragStop();
  EXPECT_EQ(pelOf(scope.surface(), 52, 42), 0x00FF00u);
}

TEST_F(ScopePhase, dragWithoutABackupLeavesThePictureAlone)
{
  ScopeProbe scope;
  create(scope);
  scope.set(ccColor::blueColor());
  failNext(Op::createSurface, result(0x8876017C));
  scope.dragStart();
  scope.dragAnimate(true);
  scope.set(ccUIRect(5, 5, 4, 4), ccColor::redColor());
  scope.dragErase();
  scope.dragAnimate(false);
  scope.set(ccUIRect(20, 20, 4, 4), ccColor::greenColor());
  scope.dragStop();
  EXPECT_EQ(pelOf(scope.surface(), 6, 6), 0x0000FFu);
  EXPECT_EQ(pelOf(scope.surface(), 21, 21), 0x00FF00u);
}
