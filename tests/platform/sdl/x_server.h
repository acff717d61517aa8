// Virtual X servers of the test program's own, and second connections to them as witnesses: what the screen shows, other
// windows on it, and hands on mouse and keyboard. Server 0 has 1024 x 768 pels of 24 bits, server 1 800 x 600 of 16; servers
// 2 and 3 have 400 x 300 of 8 and of 30. What names no server means the first.
#pragma once

#include "platform/types.h"

#include <cstdint>
#include <string>
#include <vector>

struct _XDisplay;

namespace xserver {

bool start();
void stop();
std::string name(int server = 0);
_XDisplay* connection();

using Id = unsigned long;

std::vector<plat::u32> grab(plat::Rect const&);  // of the screen, 0x00RRGGBB row by row
std::vector<plat::u32> grabWindow(Id, plat::Rect const&, int server = 0);  // raw pels
plat::Point pointer();

// A plain window. Without a window manager it is where it is told to be.
Id makeWindow(plat::Rect const&, unsigned long color, bool overrideRedirect = true);
void moveWindow(Id, plat::Rect const&);
void raiseWindow(Id);
void destroyWindow(Id);
void focusWindow(Id);
void askToClose(Id);
std::string title(Id);
bool isWindow(Id);
std::vector<plat::u32> colorsOf(Id, std::vector<plat::u32> const& pels, int server);  // by the window's colour map
Id visual32();  // the number of a visual with an alpha channel

// Runs xdotool with these arguments and waits for it.
void tool(std::vector<std::string> const& arguments);

}  // namespace xserver
