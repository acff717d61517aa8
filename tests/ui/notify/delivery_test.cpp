// The queue and its slices, served by hand.
#include "tests/support/memory_watch.h"
#include "tests/ui/notify/notify_stage.h"
#include "ui/notify/notify_delivery.h"

#include <memory>
#include <stdexcept>

namespace {

using Handle = ccPtrHandle_const<ccUINotification>;
using State = ccUINotifyObject::State;

// Shows what the test says, one number for each question.
struct ScriptTimer {
  std::vector<double> shows;
  std::size_t mutable at = 0;
  double sec() const { return shows.at(at++); }
};

struct Delivery : ::testing::Test {
  cc_NotifyDelivery delivery;
  TellingBox box;
  Heard heard;

  Handle change(long before, long after)
  {
    return new ccUINotification(&box, State(new NumberState(before)), State(new NumberState(after)));
  }
  ccUINotifyListenerTag listen(Heard& to, std::uint32_t mask = kAllTypes)
  {
    return delivery.addListener(box.key(), &to, &Heard::callback, mask);
  }
};

TEST_F(Delivery, servesTheQueueFirstInFirstOut)
{
  listen(heard);
  for (long i = 0; i < 5; ++i)
    delivery.post(change(i, i + 10));

  while (delivery.deliverNext())
    ;

  ASSERT_EQ(heard.entries.size(), 5u);
  for (long i = 0; i < 5; ++i) {
    EXPECT_EQ(heard.entries[static_cast<std::size_t>(i)].before, i);
    EXPECT_EQ(heard.entries[static_cast<std::size_t>(i)].after, i + 10);
  }
}

TEST_F(Delivery, aSliceEndsWhenTheTimerShowsTenMilliseconds)
{
  listen(heard);
  for (long i = 0; i < 10; ++i)
    delivery.post(change(i, i));

  delivery.deliverSlice(ScriptTimer{{0.001, 0.0099999, 0.01}});
  EXPECT_EQ(heard.entries.size(), 3u);
  // One at least, whatever the timer shows.
  delivery.deliverSlice(ScriptTimer{{5}});
  EXPECT_EQ(heard.entries.size(), 4u);
  delivery.deliverSlice(ScriptTimer{{0, 0, 0, 0, 0, 0}});
  EXPECT_EQ(heard.entries.size(), 10u);
}

TEST_F(Delivery, anEmptyQueueEndsASliceAtOnce)
{
  delivery.deliverSlice(ScriptTimer{{}});
  EXPECT_FALSE(delivery.deliverNext());
}

TEST_F(Delivery, aNullNotificationIsNotQueued)
{
  delivery.post(nullptr);
  EXPECT_FALSE(delivery.deliverNext());
}

TEST_F(Delivery, listenersAreCalledInTheOrderInWhichTheyWereAdded)
{
  std::vector<int> order;
  Heard a, b, c;
  a.onCall = [&](auto const&) { order.push_back(1); };
  b.onCall = [&](auto const&) { order.push_back(2); };
  c.onCall = [&](auto const&) { order.push_back(3); };
  listen(a);
  auto const middle = listen(b);
  listen(c);

  delivery.post(change(0, 0));
  delivery.deliverNext();
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));

  // The gap closes, the rest stays in order, and a new one comes last.
  order.clear();
  delivery.removeListener(middle);
  listen(b);
  delivery.post(change(0, 0));
  delivery.deliverNext();
  EXPECT_EQ(order, (std::vector<int>{1, 3, 2}));
}

TEST_F(Delivery, aListenerHearsItsNodeAndItsTypesOnly)
{
  TellingBox other;
  struct {
    std::uint32_t mask;
    std::vector<int> expected;
  } const cases[] = {{1, {1}}, {2, {2}}, {4, {4}}, {3, {2, 1}}, {6, {2, 4}}, {7, {2, 4, 1}}, {8, {}}};
  for (auto const& c : cases) {
    Heard to;
    auto const tag = listen(to, c.mask);
    delivery.post(new ccUINotification(&other, ccUINotification::stateChanged));
    delivery.post(new ccUINotification(&box, State()));
    delivery.post(change(1, 2));
    delivery.post(new ccUINotification(&box, ccUINotification::objectDestroyed));
    while (delivery.deliverNext())
      ;
    EXPECT_EQ(to.types(), c.expected) << "mask " << c.mask;
    delivery.removeListener(tag);
  }
}

TEST_F(Delivery, callbacksThatAddAndRemoveListenersCountFromTheNextNotificationOn)
{
  Heard added, last;
  ccUINotifyListenerTag first, lastTag;
  heard.onCall = [&](auto const&) {
    delivery.removeListener(first);
    delivery.removeListener(lastTag);
    listen(added);
  };
  first = listen(heard);
  lastTag = listen(last);

  delivery.post(change(1, 1));
  delivery.deliverNext();
  EXPECT_EQ(heard.entries.size(), 1u);
  EXPECT_EQ(last.entries.size(), 1u);  // it was in the snapshot
  EXPECT_EQ(added.entries.size(), 0u);

  delivery.post(change(2, 2));
  delivery.deliverNext();
  EXPECT_EQ(heard.entries.size(), 1u);
  EXPECT_EQ(last.entries.size(), 1u);
  EXPECT_EQ(added.entries.size(), 1u);
}

TEST_F(Delivery, anEarlierListenerSwitchesALaterOneOffForTheSameNotification)
{
  Heard last;
  ccUINotifyListenerTag lastTag;
  heard.onCall = [&](auto const&) { lastTag.isEnabled(false); };
  listen(heard);
  lastTag = listen(last);

  delivery.post(change(1, 1));
  delivery.deliverNext();

  EXPECT_TRUE(last.entries.empty());
}

TEST_F(Delivery, anExceptionOfAListenerKeepsNobodyElseFromHearing)
{
  Heard second;
  heard.onCall = [](auto const&) { throw std::runtime_error("listener"); };
  listen(heard);
  listen(second);
  delivery.post(change(1, 1));
  delivery.post(change(2, 2));

  EXPECT_TRUE(delivery.deliverNext());
  EXPECT_TRUE(delivery.deliverNext());

  EXPECT_EQ(second.entries.size(), 2u);
}

TEST_F(Delivery, aRemovedListenersTagMatchesNobodyNew)
{
  auto const former = listen(heard);
  delivery.removeListener(former);
  auto const fresh = listen(heard);
  EXPECT_FALSE(former.match(fresh));
  delivery.removeListener(former);  // nobody has it any more

  delivery.post(change(1, 1));
  delivery.deliverNext();
  EXPECT_EQ(heard.entries.size(), 1u);
}

TEST_F(Delivery, deliveringDoesNotAllocate)
{
  listen(heard);
  heard.entries.reserve(10);
  delivery.post(change(1, 1));
  long const before = MemoryWatch::allocations();

  delivery.deliverNext();

  EXPECT_EQ(MemoryWatch::allocations(), before);
  EXPECT_EQ(heard.entries.size(), 1u);
}

struct ListenerStage {
  cc_NotifyDelivery delivery;
  TellingBox box;
  Heard first, second;
  ccUINotifyListenerTag tag = delivery.addListener(box.key(), &first, &Heard::callback, kAllTypes);
  ccUINotifyListenerTag secondTag;

  void tell()
  {
    delivery.post(new ccUINotification(&box, State()));
    delivery.deliverNext();
  }
};

TEST(DeliveryWithoutMemory, aListenerIsAddedOrNot)
{
  long const failures = failEach([] { return std::make_unique<ListenerStage>(); },
                                 [](ListenerStage& s) {
                                   s.secondTag = s.delivery.addListener(s.box.key(), &s.second, &Heard::callback, 7);
                                 },
                                 [](ListenerStage& s, bool failed) {
                                   s.tell();
                                   EXPECT_EQ(s.secondTag.isValid(), !failed);
                                   EXPECT_EQ(s.first.entries.size(), 1u);
                                   EXPECT_EQ(s.second.entries.size(), failed ? 0u : 1u);
                                 });
  EXPECT_GE(failures, 2);
}

TEST(DeliveryWithoutMemory, aListenerIsRemovedOrNot)
{
  long const failures = failEach([] { return std::make_unique<ListenerStage>(); },
                                 [](ListenerStage& s) { s.delivery.removeListener(s.tag); },
                                 [](ListenerStage& s, bool failed) {
                                   s.tell();
                                   EXPECT_EQ(s.first.entries.size(), failed ? 1u : 0u);
                                 });
  EXPECT_GE(failures, 1);
}

}  // namespace
