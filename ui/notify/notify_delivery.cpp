#include "ui/notify/notify_delivery.h"

#include "foundation/resource.h"
#include "foundation/thread.h"
#include "foundation/timer.h"

#include <algorithm>

namespace {

std::int32_t nextListenerKey = 0;  // guarded by the listeners' section; never reused

}  // namespace

ccPtrHandle<cc_UINotifyCriticalSectionSet> cc_UINotifyCriticalSectionSet::theOne()
{
  static ccPtrHandle<cc_UINotifyCriticalSectionSet> const set(new cc_UINotifyCriticalSectionSet());
  return set;
}

// Never destroyed: its thread runs to the end of the process, past the static objects.
cc_NotifyDelivery& cc_NotifyDelivery::theOne()
{
  static cc_NotifyDelivery& one = *new cc_NotifyDelivery();
  return one;
}

cc_NotifyDelivery::cc_NotifyDelivery()
    : sections_(cc_UINotifyCriticalSectionSet::theOne()), listeners_(std::make_shared<Listeners>())
{
}

ccUINotifyListenerTag cc_NotifyDelivery::addListener(std::uint32_t objectKey, void* context, ccUINotifyCallback callback,
                                                     std::uint32_t mask)
{
  ccUINotifyListenerTag tag;
  tag.switch_ = ccPtrHandle<ccUINotifyListenerTag::Switch>(new ccUINotifyListenerTag::Switch());
  std::shared_ptr<Listeners const> former;  // goes after the section
  ccCriticalSectionLock lock(sections_->listeners);
  auto next = std::make_shared<Listeners>();
  next->reserve(listeners_->size() + 1);
  *next = *listeners_;
  tag.key_ = nextListenerKey++;
  next->push_back(Listener{tag, objectKey, context, callback, mask});
  former = std::move(listeners_);
  listeners_ = std::move(next);
  return tag;
}

void cc_NotifyDelivery::removeListener(ccUINotifyListenerTag const& tag)
{
  std::shared_ptr<Listeners const> former;
  ccCriticalSectionLock lock(sections_->listeners);
  auto const matches = [&](Listener const& l) { return l.tag.match(tag); };
  auto const found = std::find_if(listeners_->begin(), listeners_->end(), matches);
  if (found == listeners_->end())
    return;
  auto next = std::make_shared<Listeners>();
  next->reserve(listeners_->size());
  next->insert(next->end(), listeners_->begin(), found);
  next->insert(next->end(), found + 1, listeners_->end());
  former = std::move(listeners_);
  listeners_ = std::move(next);
}

void cc_NotifyDelivery::post(ccPtrHandle_const<ccUINotification> const& n)
{
  startThread_();
  push_(n);
}

void cc_NotifyDelivery::push_(ccPtrHandle_const<ccUINotification> const& n)
{
  if (!n)
    return;
  ccCriticalSectionLock lock(sections_->queue);
  queue_.push_back(n);
}

// Whoever sets the flag starts the thread, outside the section. If the system refuses, the next post tries again.
void cc_NotifyDelivery::startThread_()
{
  if (this != &theOne())
    return;
  {
    ccCriticalSectionLock lock(sections_->queue);
    if (threadStarted_)
      return;
    threadStarted_ = true;
  }
  try {
    cfCreateThreadTRX(&run_, this);
  } catch (...) {
    ccCriticalSectionLock lock(sections_->queue);
    threadStarted_ = false;
    throw;
  }
}

void cc_NotifyDelivery::run_(void* self)
{
  auto& delivery = *static_cast<cc_NotifyDelivery*>(self);
  ccPtrHandle<cc_UINotifyCriticalSectionSet> const sections = delivery.sections_;
  ccSemaphore nobodyReleases(0, 1);
  for (;;) {
    // The queue is polled, so that posting need wake nobody.
    try {
      nobodyReleases.lock(sliceSeconds);
    } catch (cc_Resource::BrokenLock const&) {
      cfSleep(sliceSeconds);  // a listener has broken the waits of its thread; the others are served all the same
    }
    delivery.deliverSlice(ccTimer(/*start=*/true));
  }
}

bool cc_NotifyDelivery::deliverNext()
{
  ccPtrHandle_const<ccUINotification> next;
  {
    ccCriticalSectionLock lock(sections_->queue);
    if (queue_.empty())
      return false;
    next = std::move(queue_.front());
    queue_.pop_front();
  }
  deliver_(next);
  return true;
}

// Listeners that a callback adds or removes count from the next notification on.
void cc_NotifyDelivery::deliver_(ccPtrHandle_const<ccUINotification> const& n)
{
  std::shared_ptr<Listeners const> present;
  {
    ccCriticalSectionLock lock(sections_->listeners);
    present = listeners_;
  }
  for (Listener const& listener : *present) {
    if (listener.objectKey != n->key() || (listener.typeMask & static_cast<std::uint32_t>(n->type())) == 0)
      continue;
    if (!listener.tag.isEnabled())
      continue;
    try {
      listener.callback(listener.context, n);
    } catch (...) {
      // A listener is expected not to throw. One that does must not end the process, nor keep the others from hearing.
    }
  }
}
