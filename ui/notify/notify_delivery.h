// Queue, listeners and delivery of notifications. Internal.
//
// The three sections are leaves: they are taken inside a root's mutex, never one inside another, and nothing is called with
// one held.
#pragma once

#include "foundation/critical_section.h"
#include "ui/notify/listener_tag.h"
#include "ui/notify/notification.h"

#include <deque>
#include <memory>
#include <vector>

using ccUINotifyCallback = void (*)(void* context, ccPtrHandle_const<ccUINotification> const&);

class cc_UINotifyCriticalSectionSet : public ccRepBase {
public:
  ccCriticalSection tags;       // the switches of the listeners
  ccCriticalSection queue;      // and whether the thread was started
  ccCriticalSection listeners;  // and the counter of their keys

  // Under a handle, so that a thread can hold it beyond the end of the static objects.
  static ccPtrHandle<cc_UINotifyCriticalSectionSet> theOne();
};

class cc_NotifyDelivery {
public:
  static constexpr double sliceSeconds = 0.01;  // of delivery, and of the pause after it

  static cc_NotifyDelivery& theOne();  // of the process, served by its thread
  cc_NotifyDelivery();                 // one that is served by hand

  ccUINotifyListenerTag addListener(std::uint32_t objectKey, void* context, ccUINotifyCallback, std::uint32_t mask);
  void removeListener(ccUINotifyListenerTag const&);

  void post(ccPtrHandle_const<ccUINotification> const&);  // null only starts the thread
  bool deliverNext();                                     // false: the queue is empty

  // A burst is served in slices, between which the threads of the windows have their turn.
  template <class Timer> void deliverSlice(Timer const& timer)
  {
    while (deliverNext() && timer.sec() < sliceSeconds)
      ;
  }

private:
  struct Listener {
    ccUINotifyListenerTag tag;
    std::uint32_t objectKey;
    void* context;
    ccUINotifyCallback callback;
    std::uint32_t typeMask;
  };
  using Listeners = std::vector<Listener>;

  void push_(ccPtrHandle_const<ccUINotification> const&);
  void deliver_(ccPtrHandle_const<ccUINotification> const&);
  void startThread_();
  static void run_(void*);

  ccPtrHandle<cc_UINotifyCriticalSectionSet> sections_;
  std::deque<ccPtrHandle_const<ccUINotification>> queue_;
  // Never changed in place, so that a delivery holds its snapshot without a copy, which could fail.
  std::shared_ptr<Listeners const> listeners_;
  bool threadStarted_ = false;
};
