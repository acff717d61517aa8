// Rows of pels: fill, and copy around a colour key. The wide loops work on blocks of 64 bytes.
#pragma once

#include "platform/portable/raster/pel_format.h"

#include <cstring>

namespace plat::portable {

using Wide8 = u8 __attribute__((vector_size(16)));
using Wide16 = u16 __attribute__((vector_size(16)));
using Wide32 = u32 __attribute__((vector_size(16)));
template <class Pel> struct WideOf;
template <> struct WideOf<u8> { using Type = Wide8; };
template <> struct WideOf<u16> { using Type = Wide16; };
template <> struct WideOf<u32> { using Type = Wide32; };

template <class Pel> inline void fillRow(Pel* to, std::size_t count, Pel pel)
{
  if (count < 16) {
    for (; count != 0; --count)
      *to++ = pel;
    return;
  }
  using Wide = typename WideOf<Pel>::Type;
  Wide const block = Wide{} + pel;
  constexpr std::size_t step = 16 / sizeof(Pel);
  std::size_t i = 0;
  for (; i + step <= count; i += step)
    std::memcpy(to + i, &block, 16);
  std::memcpy(to + count - step, &block, 16);  // the last block overlaps the one before
}

inline void fillRow(Pel24* to, std::size_t count, Pel24 pel)
{
  std::size_t i = 0;
  if (count >= 16) {
    Pel24 block[16];
    for (Pel24& one : block)
      one = pel;
    for (; i + 16 <= count; i += 16)
      std::memcpy(static_cast<void*>(to + i), block, sizeof block);
  }
  for (; i < count; ++i)
    to[i] = pel;
}

// Pels that say nothing in their top byte compare without it.
template <class Pel> inline constexpr Pel keyMask = static_cast<Pel>(~Pel{});
template <> inline constexpr u32 keyMask<u32> = 0xFFFFFFu;

// Copies the pels whose value isn't the key.
template <class Pel> inline void keyedRow(Pel* to, Pel const* from, std::size_t count, u32 key)
{
  using Wide = typename WideOf<Pel>::Type;
  constexpr std::size_t step = 16 / sizeof(Pel);
  Pel const keyPel = static_cast<Pel>(key & keyMask<Pel>);
  Wide const keys = Wide{} + keyPel;
  Wide const mask = Wide{} + keyMask<Pel>;
  std::size_t i = 0;
  for (; i + 4 * step <= count; i += 4 * step) {
    Wide pels[4], differs[4];
    std::memcpy(pels, from + i, 64);
    for (int k = 0; k < 4; ++k)
      differs[k] = (pels[k] & mask) ^ keys;
    Wide const any = differs[0] | differs[1] | differs[2] | differs[3];
    std::uint64_t halves[2];
    std::memcpy(halves, &any, 16);
    if ((halves[0] | halves[1]) == 0)
      continue;  // all key: most of an overlay is empty
    Wide old[4];
    std::memcpy(old, to + i, 64);
    for (int k = 0; k < 4; ++k) {
      Wide keyed;
      auto const equal = differs[k] == Wide{};
      std::memcpy(&keyed, &equal, 16);
      pels[k] = (old[k] & keyed) | (pels[k] & ~keyed);
    }
    std::memcpy(to + i, pels, 64);
  }
  for (; i < count; ++i)
    if ((from[i] & keyMask<Pel>) != keyPel)
      to[i] = from[i];
}

inline void keyedRow(Pel24* to, Pel24 const* from, std::size_t count, u32 key)
{
  Pel24 const keyPel = pelFrom<Pel24>(key);
  for (std::size_t i = 0; i < count; ++i)
    if (!(from[i] == keyPel))
      to[i] = from[i];
}

template <class Pel> inline void keyRangeRow(Pel* to, Pel const* from, std::size_t count, u32 low, u32 high)
{
  for (std::size_t i = 0; i < count; ++i) {
    u32 const value = pelValue(from[i]);
    if (value < low || value > high)
      to[i] = from[i];
  }
}

}  // namespace plat::portable
