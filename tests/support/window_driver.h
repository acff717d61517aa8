// A display in a headless window, driven by a hand that reads like a script. Whatever it does goes through the window system:
// hit test, capture, cursor clip, and the display's message table.
#pragma once

#include "backend/win32/win32_display.h"
#include "backend/win32/win32_root.h"
#include "platform/app.h"
#include "platform/paint.h"
#include "platform/testing.h"
#include "platform/window.h"
#include "ui/core/event_processor.h"

#include <memory>

class WindowDriver {
public:
  enum Mods : unsigned { shift = 4, control = 8 };

  explicit WindowDriver(long width = 200, long height = 150, int depth = 32, long left = 40);
  virtual ~WindowDriver();
  WindowDriver(WindowDriver const&) = delete;
  WindowDriver& operator=(WindowDriver const&) = delete;

  ccWin32Display& display() { return *display_; }
  ccUIEventProcessor& events() { return *display_->root()->eventProcessor(); }
  HWND window() const { return window_; }
  void makeDisplay();    // anew on the same window
  void dropDisplay() { display_.reset(); }

  // The hand. Points are client pels.
  WindowDriver& moveTo(ccPair<long> const& p, unsigned mods = 0);
  WindowDriver& press(ccPair<long> const& p, unsigned mods = 0);
  WindowDriver& release(unsigned mods = 0);
  WindowDriver& pressRight(ccPair<long> const& p);
  WindowDriver& releaseRight();
  WindowDriver& pressMiddle(ccPair<long> const& p);
  WindowDriver& releaseMiddle();
  WindowDriver& click(ccPair<long> const& p) { return press(p).release(); }
  WindowDriver& doubleClick(ccPair<long> const& p) { return click(p).press(p).release(); }
  WindowDriver& keyDown(unsigned virtualKey, bool repeat = false);
  WindowDriver& keyUp(unsigned virtualKey);
  WindowDriver& wait(unsigned ms);  // turns the clock; timers fire
  WindowDriver& resize(long width, long height);

  std::uint32_t pel(long x, long y) const;  // as shown, 0x00RRGGBB
  std::vector<std::uint32_t> shot() const;

private:
  void pointer_(ccPair<long> const& p, unsigned mods);

  HWND window_ = nullptr;
  std::unique_ptr<ccWin32Display> display_;
  ccPair<long> at_;
  unsigned buttons_ = 0;
};
