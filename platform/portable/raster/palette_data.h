// The entries of a palette by which a surface is painted. The surface and the object of the palette share them.
#pragma once

#include "platform/types.h"

#include <array>

namespace plat::portable {

struct PaletteData {
  std::array<PaletteEntry, 256> entries{};
  HWND window = nullptr;
  bool onPrimary = false;  // its entries show on the screen
};

}  // namespace plat::portable
