// Hands and eyes for tests: messages as the system would send them, and the pels as shown. On the windows' thread.
#pragma once

#include "platform/device_testing.h"  // lost surfaces, overlays, planned failures
#include "platform/types.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace plat::testing {

LResult send(HWND, unsigned message, WParam, LParam);
void mouse(HWND, unsigned message, Point client, WParam);
void fireTimer(HWND, uptr id);
void drain();                          // pumps until nothing is left to do
u32 pel(HWND, Point client);           // 0x00RRGGBB as shown; 0 outside
std::vector<u32> shot(HWND, Size&);    // the client area, row by row
// The next message box answers with result, after meanwhile has run while the box stands. Answers queue up.
void answerBox(int result, std::function<void()> meanwhile = {});
// The next tracked menu chooses id, as far as it has such an item and the item is enabled; 0 dismisses it.
void answerMenu(unsigned id);
void debugSink(std::function<void(std::string_view)>);  // empty: none


// What was told to the machine, read back.
struct MenuState {
  unsigned id = 0;  // 0: a line, or an item that opens a popup
  std::string text;
  bool enabled = false, checked = false, radio = false;
};
struct ScrollState {
  bool shown = false, enabled = false;
  i32 min = 0, max = 0, pos = 0;
  u32 page = 0;
};
std::string title(HWND);
std::vector<MenuState> menuStates(HMENU);
std::vector<MenuState> trackedMenu();  // the menu that was tracked last, as it was then
std::string boxText();                 // of the message box that was shown last
std::string boxCaption();
ScrollState scrollState(HWND, int bar);
HCURSOR cursor();
HCURSOR windowCursor(HWND);            // its class cursor

#ifndef _WIN32
// Buttons and mods: of held::Held in messages.h. Goes through hit test, capture and clip.
void pointer(Point screen, unsigned buttons, unsigned mods);
void wheel(Point screen, int turn, unsigned mods);  // msg::wheelNotch a notch
void key(unsigned virtualKey, bool down, unsigned mods, bool repeat = false);
void character(u8);
void advance(unsigned ms);        // turns the virtual clock, firing what falls due on the way, in order
void screen(Size, int depth);     // a change of the display mode
#endif

}  // namespace plat::testing
