// A mouse event as the tree sees it. Positions are in root coordinates: pels of the root's upper left corner.
#pragma once

#include "foundation/pair.h"

#include <cstdint>

class ccArchive;

class ccMouseEvent {
public:
  enum Event : std::int32_t {
    mouseNone = 0, mouseMoved = 1, mousePressed = 2, mouseDblClicked = 3, mouseReleased = 4, mouseDwell = 5
  };
  enum Button : std::int32_t { leftButton = 1, middleButton = 2, rightButton = 4 };  // also the bits of buttons()
  static constexpr std::uint32_t kControlKey = 2, kShiftKey = 4;                      // bits of keys()

  ccMouseEvent() = default;

  Event event() const { return event_; }
  void event(Event v) { event_ = v; }
  Button whichButton() const { return whichButton_; }  // the button that changed
  void whichButton(Button v) { whichButton_ = v; }
  std::uint32_t buttons() const { return buttons_; }  // the buttons down after the event
  void buttons(std::uint32_t v) { buttons_ = v; }
  std::uint32_t keys() const { return keys_; }
  void keys(std::uint32_t v) { keys_ = v; }
  ccPair<long> const& position() const { return position_; }
  void position(ccPair<long> const& p);
  std::int32_t x() const { return x_; }
  std::int32_t y() const { return y_; }

  // A 32-bit version 0, x, y, event, button, buttons, keys. position() is not archived.
  friend ccArchive& operator||(ccArchive&, ccMouseEvent&);
  friend bool operator==(ccMouseEvent const&, ccMouseEvent const&) = default;

private:
  std::int32_t x_ = 0, y_ = 0;
  Event event_ = mouseNone;
  Button whichButton_ = Button(0);
  std::uint32_t buttons_ = 0;
  std::uint32_t keys_ = 0;
  ccPair<long> position_;
};
