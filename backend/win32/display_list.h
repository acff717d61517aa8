// Which displays and which watches over parents stand on a window, under a leaf lock of its own: a hook, which holds a
// root's mutex, may cause any window message, and displays come and go on any thread.
//
// Our procedure stands on a window once, below it the application's. Of several displays the newest has each message
// first and passes on to the one before it. A display that another thread takes off its window may still be in a message
// on the window's thread, so that thread enters it for as long.
#pragma once

#include "platform/types.h"

#include <cstdint>
#include <vector>

class ccWin32Display;

namespace cc_DisplayList {

using Place = std::uint64_t;  // in the order of a window's displays; 0 none
inline constexpr Place kNewest = ~Place(0);

Place add(HWND, plat::MessageProc ours, ccWin32Display*);
void remove(Place);
bool has(Place);

void addParent(HWND, plat::MessageProc ours);
void removeParent(HWND);

plat::MessageProc former(HWND);  // the application's procedure; null where ours stands no more

// Keeps a display for the thread that is in a message: as long as one lives, waitUntilLeft waits on other threads.
class Visit {
public:
  // The newest display of a window that is older than a place.
  Visit(HWND, Place before);
  explicit Visit(Place);  // that one, if it still stands
  Visit(Visit const&) = delete;
  Visit& operator=(Visit const&) = delete;
  ~Visit() { leave(); }

  ccWin32Display* display() const { return display_; }
  Place place() const { return place_; }
  void leave();   // early: for what may take long and does not touch the display
  bool again();   // false: it has gone meanwhile

private:
  ccWin32Display* display_ = nullptr;
  Place place_ = 0;
};

// The displays of all windows.
std::vector<Place> all();

// Waits until no other thread is in a message of this display, which stands on no window any more. It may have left its
// window in that very message. The watch over the locks asks each time if it has only just been taken off.
void waitUntilLeft(ccWin32Display const*, bool tookOff);

}  // namespace cc_DisplayList
