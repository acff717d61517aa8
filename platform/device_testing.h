// Switches by which tests play a device that loses surfaces, is taken by another program, has overlays, or fails.
#pragma once

#include "platform/types.h"

#include <vector>

namespace plat::testing {

enum class Op {
  openDevice, cooperativeLevel, testCooperativeLevel, setDisplayMode, createSurface, createClipper, createPalette, caps,
  fourCCs, waitForVerticalBlank, describe, lock, unlock, getDC, releaseDC, blt, bltStatus, setColorKey, setClipper,
  setPalette, isLost, restore, updateOverlay, count
};

// All surfaces of the devices opened for the window lose their pels; null: of all devices.
void lose(HWND);
// Another program holds the screen: nothing can be restored until it lets go.
void exclusive(bool);
// A simulated overlay plane. 0 takes it away.
void overlays(unsigned max, std::vector<u32> fourCCs);
// The next so many calls of an operation do nothing and answer the code.
void failNext(Op, Result, int times = 1);

// An overlay that is on the screen.
struct ShownOverlay {
  Rect source;
  Rect screen;
  unsigned flags = 0;
  u32 fourCC = 0;
};
std::vector<ShownOverlay> shownOverlays();

}  // namespace plat::testing
