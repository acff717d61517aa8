// Many threads post, listen, stop listening and switch tags while the one thread delivers.
#include "tests/ui/notify/notify_stage.h"

#include <atomic>
#include <cstdlib>
#include <thread>

namespace {

int cfRounds() { return std::getenv("KRS_LONG") ? 20000 : 400; }

struct Account {
  std::atomic<long> about{0}, changed{0}, gone{0}, outOfOrder{0};
  long last = -1;  // of the delivery thread

  static void callback(void* context, ccPtrHandle_const<ccUINotification> const& n)
  {
    auto& self = *static_cast<Account*>(context);
    switch (n->type()) {
    case ccUINotification::objectDestroyed:
      ++self.gone;
      return;
    case ccUINotification::stateAboutToChange:
      ++self.about;
      return;
    case ccUINotification::stateChanged:
      ++self.changed;
      if (cfNumber(n->preChangeState()) != self.last || cfNumber(n->postChangeState()) != self.last + 1)
        ++self.outOfOrder;
      self.last = cfNumber(n->postChangeState());
    }
  }
};

TEST(NotifyThreads, everyNodeIsHeardWholeAndInOrderWhileManyThreadsPost)
{
  constexpr int kPosters = 4;
  int const rounds = cfRounds();
  Account accounts[kPosters];
  std::vector<ccUINotifyListenerTag> tags(kPosters);
  std::vector<std::thread> posters;
  for (int p = 0; p < kPosters; ++p)
    posters.emplace_back([&, p] {
      TellingBox box;
      box.number = -1;
      tags[static_cast<std::size_t>(p)] = ccUINotifyObject::addListener(&box, &accounts[p], &Account::callback, kAllTypes);
      for (int i = 0; i < rounds; ++i) {
        auto const before = box.beginStateChange();
        ++box.number;
        box.endStateChange(before, /*redraw=*/true, /*flush=*/true);
      }
    });
  for (std::thread& t : posters)
    t.join();
  cfWaitForDelivery();

  for (Account const& a : accounts) {
    EXPECT_EQ(a.about, rounds);
    EXPECT_EQ(a.changed, rounds);
    EXPECT_EQ(a.gone, 1);
    EXPECT_EQ(a.outOfOrder, 0);
  }
  for (auto const& tag : tags)
    ccUINotifyObject::removeListener(tag);
}

TEST(NotifyThreads, listenersComeAndGoAndAreSwitchedWhileNodesTell)
{
  int const rounds = cfRounds();
  TestRoot root;
  HookLog log;
  SpyShapesFrame frame(log, "frame", root.groundPlane(), ccUIRect(0, 0, 80, 60));
  TellingBox box(&frame);
  static std::atomic<long> calls;  // outlives the listeners' last calls
  calls = 0;
  auto const count = [](void*, ccPtrHandle_const<ccUINotification> const&) { ++calls; };
  std::atomic<int> posting{2};
  std::vector<std::thread> threads;
  for (int p = 0; p < 2; ++p)
    threads.emplace_back([&] {
      for (int i = 0; i < rounds; ++i) {
        box.isNotificationEnabled(i % 3 != 0);
        box.endStateChange(box.beginStateChange(), false, false);
      }
      --posting;
    });
  for (int p = 0; p < 2; ++p)
    threads.emplace_back([&] {
      do {
        auto tag = ccUINotifyObject::addListener(&box, nullptr, count, kAllTypes);
        {
          ccUINotifyListenerTag::Enabler const off(tag, false);
        }
        ccUINotifyObject::removeListener(tag);
      } while (posting > 0);
    });
  auto tag = ccUINotifyObject::addListener(&box, nullptr, count, kAllTypes);
  for (std::thread& t : threads)
    t.join();
  cfWaitForDelivery();

  EXPECT_GT(calls, 0);
  box.isNotificationEnabled(true);
  ccUINotifyObject::removeListener(tag);
  cfWaitForDelivery();
  calls = 0;
  box.beginStateChange();
  cfWaitForDelivery();
  EXPECT_EQ(calls, 0);
}

TEST(NotifyThreads, listenersThatTakeTheRootsMutexDoNotHoldUpGestures)
{
  TestRoot root;
  HookLog log;
  SpyShapesFrame frame(log, "frame", root.groundPlane(), ccUIRect(0, 0, 80, 60));
  cfOn(frame);
  TellingBox box(&frame);
  box.condVisible(true);
  struct Context {
    TestRoot& root;
    TellingBox& box;
    std::atomic<long> moves{0};
  } context{root, box};
  auto const tag = ccUINotifyObject::addListener(
      &box, &context,
      [](void* c, ccPtrHandle_const<ccUINotification> const& n) {
        auto& to = *static_cast<Context*>(c);
        ccLock lock(to.root.mutex());
        if (ccUIObject::isValid(&to.box, n->key(), &to.root))
          to.box.pos(ccVector<2>(static_cast<double>(++to.moves % 50), 5));
      },
      ccUINotification::stateChanged);

  Hand hand(root);
  int const rounds = cfRounds() / 4;
  for (int i = 0; i < rounds; ++i) {
    hand.moveTo(i % 80, i % 60);
    ccLock lock(root.mutex());
    box.endStateChange(box.beginStateChange(), true, true);
  }
  cfWaitForDelivery();

  EXPECT_EQ(context.moves, rounds);
  ccUINotifyObject::removeListener(tag);
}

}  // namespace
