#include "ui/notify/event_processor_state.h"

#include "foundation/resource.h"
#include "ui/core/event_processor.h"
#include "ui/core/root.h"
#include "ui/display/display.h"

void ccUIEventProcessorState::setState(ccUIEventProcessor& processor, ccDisplay* display)
{
  ccLock lock(processor.root()->mutex());
  anchor_ = processor.anchor();
  anchorClient_ = ccVector<2>(anchor_);
  anchorImage_ = ccPair<double>(anchorClient_);
  if (display) {
    ccPoint const inDisplay(anchor_ - display->screenOrigin());
    anchorClient_ = display->displayToClient(inDisplay);
    anchorImage_ = ccPair<double>(display->displayToImage(inDisplay));
  }
  button_ = processor.button();
  dblClk_ = processor.dblClk();
  dwellCount_ = processor.dwellCount();
  ccUIObject const* const holder = processor.mouseCapture();
  isMouseCaptured_ = holder != nullptr;
  mouseCaptureKey_ = holder ? holder->key() : ccUINotification::noKey;
  lastMousePos_ = processor.lastMousePos();
  lastMouseEvent_ = processor.lastMouseEvent();
  lastKeyboardEvent_ = processor.lastKeyboardEvent();
}
