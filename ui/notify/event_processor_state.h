// What a display's event processor stood at: a snapshot for listeners. A captured mouse is told by the key of the node that
// holds it, which means something after the node has gone too.
#pragma once

#include "foundation/vector.h"
#include "ui/core/keyboard_event.h"
#include "ui/core/mouse_event.h"
#include "ui/notify/notification.h"

class ccDisplay;
class ccUIEventProcessor;

class ccUIEventProcessorState : public ccUIObjectState {
public:
  // The anchor in image and client coordinates is that of the display; without one, root pels.
  void setState(ccUIEventProcessor&, ccDisplay*);

  ccPair<long> const& anchor() const { return anchor_; }
  void anchor(ccPair<long> const& v) { anchor_ = v; }
  ccVector<2> const& anchorClient() const { return anchorClient_; }
  void anchorClient(ccVector<2> const& v) { anchorClient_ = v; }
  ccPair<double> const& anchorImage() const { return anchorImage_; }
  void anchorImage(ccPair<double> const& v) { anchorImage_ = v; }
  std::uint32_t button() const { return button_; }
  void button(std::uint32_t v) { button_ = v; }
  bool dblClk() const { return dblClk_; }
  void dblClk(bool v) { dblClk_ = v; }
  std::int32_t dwellCount() const { return dwellCount_; }
  void dwellCount(std::int32_t v) { dwellCount_ = v; }
  bool isMouseCaptured() const { return isMouseCaptured_; }
  void isMouseCaptured(bool v) { isMouseCaptured_ = v; }
  std::uint32_t mouseCaptureKey() const { return mouseCaptureKey_; }
  void mouseCaptureKey(std::uint32_t v) { mouseCaptureKey_ = v; }
  ccPair<long> const& lastMousePos() const { return lastMousePos_; }
  void lastMousePos(ccPair<long> const& v) { lastMousePos_ = v; }
  ccMouseEvent const& lastMouseEvent() const { return lastMouseEvent_; }
  void lastMouseEvent(ccMouseEvent const& v) { lastMouseEvent_ = v; }
  ccKeyboardEvent const& lastKeyboardEvent() const { return lastKeyboardEvent_; }
  void lastKeyboardEvent(ccKeyboardEvent const& v) { lastKeyboardEvent_ = v; }

private:
  ccPair<long> anchor_;  // root pels
  ccVector<2> anchorClient_;
  ccPair<double> anchorImage_;
  std::uint32_t button_ = 0;
  bool dblClk_ = false;
  std::int32_t dwellCount_ = 0;
  bool isMouseCaptured_ = false;
  std::uint32_t mouseCaptureKey_ = ccUINotification::noKey;
  ccPair<long> lastMousePos_;
  ccMouseEvent lastMouseEvent_;
  ccKeyboardEvent lastKeyboardEvent_;
};
