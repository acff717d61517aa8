#include "platform/portable/raster/pel_format.h"

#include <algorithm>

namespace plat::portable {

unsigned nearestEntry(std::span<PaletteEntry const> palette, u32 rgb)
{
  int const r = static_cast<int>(rgb >> 16 & 255u), g = static_cast<int>(rgb >> 8 & 255u), b = static_cast<int>(rgb & 255u);
  unsigned best = 0;
  int least = 3 * 256 * 256;
  for (unsigned i = 0; i < palette.size(); ++i) {
    int const dr = palette[i].r - r, dg = palette[i].g - g, db = palette[i].b - b;
    int const distance = dr * dr + dg * dg + db * db;
    if (distance < least) {
      least = distance;
      best = i;
    }
  }
  return best;
}

u32 pelOf(COLORREF color, int depth, PaletteView palette)
{
  u32 const rgb = rgbOf(color);
  switch (depth) {
  case 8: return nearestEntry(palette, rgb);
  case 15: return PelFormat<15>::from(rgb);
  case 16: return PelFormat<16>::from(rgb);
  default: return rgb;
  }
}

COLORREF colorOf(u32 value, int depth, PaletteView palette)
{
  switch (depth) {
  case 8: return colorrefOf(rgbOf(palette[value & 255u]));
  case 15: return colorrefOf(PelFormat<15>::rgb(static_cast<u16>(value)));
  case 16: return colorrefOf(PelFormat<16>::rgb(static_cast<u16>(value)));
  default: return colorrefOf(value & 0xFFFFFFu);
  }
}

void NearestCache::use(PaletteView palette)
{
  if (std::equal(palette.begin(), palette.end(), palette_.begin()))
    return;
  std::copy(palette.begin(), palette.end(), palette_.begin());
  keys_.fill(0);
}

void NearestCache::fill(std::size_t slot, u32 rgb)
{
  values_[slot] = static_cast<u8>(nearestEntry(palette_, rgb));
  keys_[slot] = rgb | known;
}

}  // namespace plat::portable
