// A screen of one top-level window for tests of surfaces and painters: stands in for the window core.
#pragma once

#include "platform/portable/raster/screen.h"

#include <vector>

struct FakeScreen {
  // The window's backing has the screen's depth; its client corner lies at the given place of the screen and of the
  // backing, and all of the backing can be seen unless rectangles are given.
  FakeScreen(plat::Size size, int depth, plat::Point clientOnScreen = {}, plat::Point clientInBacking = {});
  ~FakeScreen();

  HWND window() const;
  plat::u32 at(int x, int y) const;  // the pel value in the backing

  plat::Size size;
  int depth;
  plat::Point clientOnScreen, clientInBacking;
  std::vector<plat::u8> pels;
  plat::portable::PelBlock backing;
  std::vector<plat::Rect> visible;
  std::vector<plat::Rect> presented;  // dirty rectangles on the screen, empty ones left out
  std::vector<plat::PaletteEntry> palette;
  int paletteWrites = 0;
  plat::u32 changes = 0;  // of the screen's mode
  bool headless = true;
};

// The pel value at a place of a block, read byte by byte.
plat::u32 cfPelAt(plat::u8 const* pels, long pitch, int depth, long x, long y);
