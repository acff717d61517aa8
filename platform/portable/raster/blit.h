// Moving rectangles of pels: filled, copied, keyed, stretched, converted from depth to depth.
// Nothing here allocates, and nothing checks: rectangles lie in their blocks.
#pragma once

#include "platform/portable/raster/pel_format.h"
#include "platform/portable/raster/rects.h"
#include "platform/portable/raster/screen.h"

namespace plat::portable {

// Source pels from low to high, both included, are left out.
struct BlitKey {
  u32 low = 0, high = 0;
};

// What a blit maps onto what: the whole source rectangle onto the whole target rectangle, source index
// floor(d * sw / dw), of which only the cut is painted. The cut lies in the target rectangle and in the target block.
struct BlitMap {
  Rect source;
  Rect target;
  Rect cut;
};

inline u8* pelAddress(PelBlock const& block, i32 x, i32 y, std::size_t bytes)
{
  return block.pels + std::ptrdiff_t{y} * block.pitch + std::ptrdiff_t{x} * static_cast<std::ptrdiff_t>(bytes);
}
inline u8* pelAddress(PelBlock const& block, i32 x, i32 y)
{
  return pelAddress(block, x, y, static_cast<std::size_t>(bytesPerPel(block.depth)));
}

void fillPels(PelBlock const&, Rect const&, u32 value);

// Blocks of one format; they may be the same block.
void copyPels(PelBlock const& to, PelBlock const& from, BlitMap const&, BlitKey const*);

// Blocks of different formats. Each needs its palette only at depth 8; the cache is told of the target's by the caller.
void convertPels(PelBlock const& to, PelBlock const& from, BlitMap const&, BlitKey const*, PaletteView fromPalette,
                 NearestCache& toPalette);

}  // namespace plat::portable
