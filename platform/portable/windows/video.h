// What the portable window core asks of a real screen, and what a real screen tells the core. All calls on the windows'
// thread except wake().
#pragma once

#include "platform/portable/raster/screen.h"

#include <span>
#include <string>
#include <vector>

namespace plat::portable {

struct CursorShape {
  Size size;
  Point hotSpot;
  std::vector<u32> argb;  // rows from the top, alpha in the high byte
};

// A top-level window's place on a real screen. Destroying it takes the window off the screen; of an attached window
// only what was added to it.
class VideoWindow {
public:
  virtual ~VideoWindow() = default;

  virtual void show(bool visible, bool activate) = 0;
  virtual void minimize(bool) = 0;
  virtual void raise() = 0;
  virtual void place(Rect const& screen) = 0;

  // Memory of this size and depth that is itself what send() shows; a block without pels when there is none. It stays
  // valid until the next call or the end of the window. The core then draws straight into it and never calls copy().
  virtual PelBlock lend(Size, int depth) = 0;
  // Takes over these rectangles of the backing. Called under the backing's lock; must not dispatch events.
  virtual void copy(PelBlock const& backing, std::span<Rect const>) = 0;
  // Shows these rectangles, under no lock.
  virtual void send(std::span<Rect const>) = 0;
};

// Pointer, keys and windows as the machine reports them. Screen coordinates; buttons and mods are bits of
// held::Held in messages.h. Clicks counts the presses of a button in quick succession at one place; 0 lets the core
// count. Events are queued and take their turn in the pump.
class VideoSink {
public:
  virtual ~VideoSink() = default;

  virtual void pointer(HWND top, Point, unsigned buttons, unsigned mods, int clicks) = 0;  // null top: by position
  virtual void wheel(HWND top, Point, int turn, unsigned mods) = 0;
  virtual void key(unsigned virtualKey, bool down, bool repeat, unsigned mods) = 0;
  virtual void character(u8) = 0;
  virtual void closeAsked(HWND top) = 0;
  virtual void resized(HWND top, Size) = 0;
  virtual void moved(HWND top, Point) = 0;
  virtual void minimized(HWND top, bool) = 0;
  virtual void focused(HWND top, bool) = 0;
  virtual void exposed(HWND top) = 0;  // its pels are lost and are shown again
  virtual void screenChanged(Size, int depth) = 0;
  virtual void gone(HWND top) = 0;  // its maker has destroyed it
  virtual void dropped(HWND top, std::vector<std::string> files) = 0;  // paths in UTF-8
};

class Video {
public:
  virtual ~Video() = default;

  virtual Size screenSize() = 0;
  virtual int depth() = 0;
  virtual bool virtualClock() const = 0;

  virtual Ptr<VideoWindow> createWindow(HWND, std::string const& title, Rect const& screen, u32 style) = 0;
  // A window that others made, by the machine's own number; sets its place. Null when it cannot be had.
  virtual Ptr<VideoWindow> attach(HWND, uptr native, Rect& screen) = 0;

  virtual void cursor(CursorShape const*) = 0;  // null hides it
  virtual void capture(VideoWindow*) = 0;       // null releases
  virtual void clip(Rect const* screen) = 0;    // null: the whole screen

  // Hands over what has come in. Alone: no loop of the application's runs meanwhile, so that is also what such a loop
  // would have handed over.
  virtual void poll(VideoSink&, bool alone) = 0;
  virtual void wait(int milliseconds) = 0;  // until something comes in or wake(); negative: without limit
  virtual void wake() = 0;                 // any thread; one that comes before wait() is not lost
};

// The screen of this build for real windows; null when there is none, or no display to show them on.
Ptr<Video> makeWindowVideo();

}  // namespace plat::portable
