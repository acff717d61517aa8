#include "ui/notify/display_notifier.h"

#include "ui/core/root.h"
#include "ui/display/display.h"
#include "ui/notify/event_processor_state.h"

ccUIDisplayNotifier::ccUIDisplayNotifier(ccDisplay* display) : display_(display) {}

ccUINotifyObject::State ccUIDisplayNotifier::state()
{
  ccUIRootObject* const root = notifyRoot_();
  if (!root)
    return State();
  ccPtrHandle<ccUIEventProcessorState> const now(new ccUIEventProcessorState());
  now->setState(*root->eventProcessor(), display_);
  return now;
}

// It has no root of its own: the mutex of its display guards it, and a flush is one of the display's screen.
ccUIRootObject* ccUIDisplayNotifier::notifyRoot_() { return display_ ? display_->root() : nullptr; }
