// A display that tells.
#include "ui/notify/display_notifier.h"

#include "tests/support/test_display.h"
#include "tests/ui/notify/notify_stage.h"
#include "ui/notify/event_processor_state.h"

#include <atomic>
#include <thread>

namespace {

using State = ccUINotifyObject::State;

TEST(DisplayNotifier, itsStateIsThatOfTheEventProcessor)
{
  TestDisplay test(200, 100, {.rect = ccUIRect(20, 10, 150, 80)});
  ccUIDisplayNotifier notifier(&test.display());
  test.press({60, 30});

  State const state = notifier.state();

  auto const* const now = dynamic_cast<ccUIEventProcessorState const*>(state.get());
  ASSERT_NE(now, nullptr);
  EXPECT_EQ(now->anchor(), ccPair<long>(60, 30));
  EXPECT_EQ(now->anchorImage(), ccPair<double>(test->displayToImage(ccPoint(40, 20))));
  EXPECT_FALSE(notifier.visible());
  EXPECT_EQ(notifier.parent(), nullptr);
  test.release();
}

TEST(DisplayNotifier, hasNoStateWithoutADisplayOrARoot)
{
  ccUIDisplayNotifier nobody(nullptr);
  EXPECT_FALSE(nobody.state());
  nobody.endStateChange(nobody.beginStateChange(), true, true);

  ConcreteDisplay loose(nullptr, ccUIRect(0, 0, 50, 40), 32);
  ccUIDisplayNotifier notifier(&loose);
  EXPECT_FALSE(notifier.state());
}

// A click: a change that has a state after it and none before.
TEST(DisplayNotifier, aChangeWithoutAStateBeforeIsHeardWithTheOneAfter)
{
  TestDisplay test(200, 100);
  ccUIDisplayNotifier notifier(&test.display());
  struct Got {
    bool before = true;
    std::uint32_t key = 0;
    ccPair<long> anchor;
  } got;
  auto const tag = ccUINotifyObject::addListener(
      &notifier, &got,
      [](void* to, ccPtrHandle_const<ccUINotification> const& n) {
        auto const* const after = dynamic_cast<ccUIEventProcessorState const*>(n->postChangeState().get());
        *static_cast<Got*>(to) = Got{static_cast<bool>(n->preChangeState()), n->key(), after->anchor()};
      },
      ccUINotification::stateChanged);
  test.press({33, 44});

  notifier.endStateChange(State(), false, false);
  cfWaitForDelivery();

  EXPECT_FALSE(got.before);
  EXPECT_EQ(got.key, notifier.key());
  EXPECT_EQ(got.anchor, ccPair<long>(33, 44));
  test.release();
  ccUINotifyObject::removeListener(tag);
}

// While another thread holds the mutex of orphans, a node without a root would wait for it.
TEST(DisplayNotifier, itsMutexIsThatOfTheDisplaysRoot)
{
  TestDisplay test(200, 100);
  ccUIDisplayNotifier notifier(&test.display());
  notifier.uiObject();
  ccEvent held(true), release(true);
  std::thread other([&] {
    ccLock lock(ccUIObject::orphanMutex());
    held.set();
    release.lock(30);
  });
  ASSERT_TRUE(held.lock(30));
  std::atomic<bool> done{false};
  std::thread teller([&] {
    State const before = notifier.beginStateChange();
    notifier.endStateChange(before, false, /*flush=*/true);
    done = true;
    release.set();
  });
  EXPECT_TRUE(release.lock(20));
  EXPECT_TRUE(done);
  teller.join();
  other.join();
}

}  // namespace
