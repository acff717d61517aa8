// Pel layouts by depth code, and colours in them.
// 8 palette index; 15 and 16 words of 5-5-5 and 5-6-5; 24 bytes blue, green, red; 32 words 0x00RRGGBB.
#pragma once

#include "platform/types.h"

#include <array>
#include <span>

namespace plat::portable {

using PaletteView = std::span<PaletteEntry const, 256>;

struct Pel24 {
  u8 b, g, r;
  friend bool operator==(Pel24 const&, Pel24 const&) = default;
};

// A pel value as a number: what a fill value and a colour key hold.
inline u32 pelValue(u8 pel) { return pel; }
inline u32 pelValue(u16 pel) { return pel; }
inline u32 pelValue(u32 pel) { return pel & 0xFFFFFFu; }  // the top byte says nothing
inline u32 pelValue(Pel24 pel) { return u32{pel.b} | u32{pel.g} << 8 | u32{pel.r} << 16; }

template <class Pel> inline Pel pelFrom(u32 value) { return static_cast<Pel>(value); }
template <> inline Pel24 pelFrom<Pel24>(u32 value)
{
  return {static_cast<u8>(value), static_cast<u8>(value >> 8), static_cast<u8>(value >> 16)};
}

// Channels widen with low bits zero, as everywhere in the library.
inline u32 widen5(u32 v) { return v << 3; }
inline u32 widen6(u32 v) { return v << 2; }

// rgb is 0x00RRGGBB here. Depth 8 goes through a table or a search and has no arithmetic of its own.
template <int Depth> struct PelFormat;
template <> struct PelFormat<8> {
  using Pel = u8;
};
template <> struct PelFormat<15> {
  using Pel = u16;
  static u32 rgb(Pel p) { return widen5(p >> 10 & 31u) << 16 | widen5(p >> 5 & 31u) << 8 | widen5(p & 31u); }
  static Pel from(u32 c) { return static_cast<Pel>((c >> 9 & 0x7C00u) | (c >> 6 & 0x3E0u) | (c >> 3 & 31u)); }
};
template <> struct PelFormat<16> {
  using Pel = u16;
  static u32 rgb(Pel p) { return widen5(p >> 11 & 31u) << 16 | widen6(p >> 5 & 63u) << 8 | widen5(p & 31u); }
  static Pel from(u32 c) { return static_cast<Pel>((c >> 8 & 0xF800u) | (c >> 5 & 0x7E0u) | (c >> 3 & 31u)); }
};
template <> struct PelFormat<24> {
  using Pel = Pel24;
  static u32 rgb(Pel p) { return pelValue(p); }
  static Pel from(u32 c) { return pelFrom<Pel24>(c); }
};
template <> struct PelFormat<32> {
  using Pel = u32;
  static u32 rgb(Pel p) { return p & 0xFFFFFFu; }
  static Pel from(u32 c) { return c; }
};

constexpr bool isDepth(int depth) { return depth == 8 || depth == 15 || depth == 16 || depth == 24 || depth == 32; }
constexpr int bytesPerPel(int depth) { return (depth + 7) / 8; }

// Calls body with the format of a depth; any other depth does nothing.
template <class Body> inline void withFormat(int depth, Body&& body)
{
  switch (depth) {
  case 8: return body(PelFormat<8>());
  case 15: return body(PelFormat<15>());
  case 16: return body(PelFormat<16>());
  case 24: return body(PelFormat<24>());
  case 32: return body(PelFormat<32>());
  }
}

// Calls body with a pel of a depth, for work that only moves pels.
template <class Body> inline void withPel(int depth, Body&& body)
{
  switch (bytesPerPel(depth)) {
  case 1: return body(u8{});
  case 2: return body(u16{});
  case 3: return body(Pel24{});
  case 4: return body(u32{});
  }
}

inline u32 rgbOf(COLORREF c)
{
  u32 const v = static_cast<u32>(c);
  return (v & 0xFFu) << 16 | (v & 0xFF00u) | (v >> 16 & 0xFFu);
}
inline u32 rgbOf(PaletteEntry const& e) { return u32{e.r} << 16 | u32{e.g} << 8 | u32{e.b}; }
inline COLORREF colorrefOf(u32 rgb) { return (rgb & 0xFFu) << 16 | (rgb & 0xFF00u) | (rgb >> 16 & 0xFFu); }

// The entry of smallest squared distance, the first of equals.
unsigned nearestEntry(std::span<PaletteEntry const>, u32 rgb);

// The pel value of a colour: nearest entry, truncated or direct.
u32 pelOf(COLORREF, int depth, PaletteView);
COLORREF colorOf(u32 pelValue, int depth, PaletteView);

// Remembers nearest entries of one palette, so that whole pictures can be brought to 8 bits.
class NearestCache {
public:
  void use(PaletteView);  // forgets when the palette differs from the last
  u8 operator()(u32 rgb)
  {
    std::size_t const slot = (rgb * 0x9E3779B1u) >> 20;
    if (keys_[slot] != (rgb | known))
      fill(slot, rgb);
    return values_[slot];
  }

private:
  void fill(std::size_t slot, u32 rgb);

  static constexpr u32 known = 0x1000000u;
  std::array<PaletteEntry, 256> palette_{};
  std::array<u32, 4096> keys_{};
  std::array<u8, 4096> values_{};
};

}  // namespace plat::portable
