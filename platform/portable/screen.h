// What surfaces and painters need of the portable window core: the screen's size, depth and palette, and the pels of a
// window's visible part. Realised by the window core; used by the memory device, the primary surface and window painters.
#pragma once

#include "platform/types.h"

#include <span>

namespace plat::portable {

// A block of pels in memory. Depth is a code: 8 palette index, 15 and 16 words, 24 bytes blue, green, red, 32 0x00RRGGBB.
struct PelBlock {
  u8* pels = nullptr;
  i32 width = 0, height = 0;
  i32 pitch = 0;  // bytes from row to row
  int depth = 0;
};

// The part of a window that can be seen, in the pels of the backing of its top-level window.
struct VisiblePart {
  PelBlock backing;
  Point clientInBacking;       // the client area's upper left corner in the backing
  Point clientOnScreen;        // the same corner on the screen
  std::span<Rect const> rects; // disjoint, in backing pels
};

Size screenSize();
int screenDepth();
u32 screenChanges();  // of size or depth so far
std::span<PaletteEntry const, 256> screenPalette();
bool headless();  // no wall clock: nothing waits for the screen's next picture

// At screen depth 8: writes entries 10 to 245 of the given palette into the screen's (shorter ones as far as they go),
// presents everything when one changed, and posts 785 to the top-level windows other than the sender's. The count of
// entries changed; 0 at other depths. Any thread.
unsigned writeScreenPalette(HWND sender, std::span<PaletteEntry const>);

// Runs body(context, part) under the backing's lock, then marks dirty (backing pels, cut with the visible part) and
// presents it. False when there is no such window or nothing of it is visible; body isn't called then. Any thread.
using PaintBody = void (*)(void* context, VisiblePart const& part);
bool paintVisible(HWND, void* context, PaintBody body, Rect const& dirtyOnScreen);

}  // namespace plat::portable
