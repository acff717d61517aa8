// Nodes that can tell, and a listener that keeps account, for tests of notification.
#pragma once

#include "foundation/resource.h"
#include "foundation/thread.h"
#include "tests/support/test_tree.h"
#include "ui/notify/notify_object.h"
#include "ui/shapes/man_shape.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

// A snapshot that carries a number.
class NumberState : public ccUIObjectState {
public:
  explicit NumberState(long n) : number(n) {}
  long const number;
};

inline long cfNumber(ccPtrHandle_const<ccUIObjectState> const& state)
{
  auto const* const number = dynamic_cast<NumberState const*>(state.get());
  return number ? number->number : -1;
}

// A shape that can tell. Its state is its number.
class TellingBox : public BoxShape, public ccUINotifyObject {
public:
  explicit TellingBox(ccUIObject* parent = nullptr) : BoxShape(parent) {}

  long number = 0;
  std::function<void()> onState, onEnd;

  State state() override
  {
    State const now(new NumberState(number));
    if (auto const call = onState)  // it may delete the box
      call();
    return now;
  }

protected:
  void endStateChange_() override
  {
    if (auto const call = onEnd)
      call();
  }
};

// A manipulable one, which logs what is asked of its handles.
class TellingManShape : public ccUIManShape, public ccUINotifyObject {
public:
  TellingManShape(HookLog& hooks, ccUIObject* parent) : ccUIManShape(parent), log(hooks) {}

  HookLog& log;

  State state() override { return State(new NumberState(7)); }
  void updateHandles() override { log.push_back("updateHandles"); }
  void showHandles(bool on) override { log.push_back(on ? "showHandles" : "hideHandles"); }
  void freeHandles() override {}

protected:
  void pos_(ccVector<2> const&) override {}
  ccVector<2> pos_() override { return ccVector<2>(); }
  void draw_(ccUITablet&, ccColor const&, DrawMode) override { log.push_back("draw"); }
  void endStateChange_() override { log.push_back("endStateChange_"); }
};

// What one listener heard. Read it after cfWaitForDelivery, or when the queue is served by hand.
class Heard {
public:
  struct Entry {
    ccUINotification::Type type;
    std::uint32_t key;
    long before, after;  // the numbers of the states, -1 for a null handle or none
  };

  std::vector<Entry> entries;
  std::function<void(ccUINotification const&)> onCall;

  std::vector<int> types() const
  {
    std::vector<int> all;
    for (Entry const& e : entries)
      all.push_back(e.type);
    return all;
  }

  static void callback(void* context, ccPtrHandle_const<ccUINotification> const& n)
  {
    auto& self = *static_cast<Heard*>(context);
    Entry e{n->type(), n->key(), -1, -1};
    if (n->type() != ccUINotification::objectDestroyed)
      e.before = cfNumber(n->preChangeState());
    if (n->type() == ccUINotification::stateChanged)
      e.after = cfNumber(n->postChangeState());
    self.entries.push_back(e);
    if (self.onCall)
      self.onCall(*n);
  }
};

// Returns once the thread has delivered all that was posted before: the queue keeps its order.
inline void cfWaitForDelivery()
{
  ccEvent arrived(/*manualReset=*/true);
  TellingBox last;
  auto const tag = ccUINotifyObject::addListener(
      &last, &arrived, [](void* event, auto const&) { static_cast<ccEvent*>(event)->set(); },
      ccUINotification::stateAboutToChange);
  last.beginStateChange();
  ASSERT_TRUE(arrived.lock(30));
  ccUINotifyObject::removeListener(tag);
}

constexpr unsigned long kAllTypes = 7;
