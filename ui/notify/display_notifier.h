// Lets a display act as an object that tells: a shape that is never shown, whose state is that of the event processor.
#pragma once

#include "ui/notify/notify_object.h"
#include "ui/shapes/line.h"

class ccDisplay;

class ccUIDisplayNotifier : public ccUILine, public ccUINotifyObject {
public:
  explicit ccUIDisplayNotifier(ccDisplay*);  // the display outlives it, or is null

  State state() override;  // a ccUIEventProcessorState; null without a display or while the display has no root

private:
  ccUIRootObject* notifyRoot_() override;

  ccDisplay* const display_;
};
