// Work on rows of 32-bit pels that gains from wide registers: chosen once for the processor at hand, with a plain form of
// each beside it that does the same on any.
#pragma once

#include "platform/portable/raster/pel_row.h"

namespace plat::portable {

// Equally spaced numbers with binary places.
struct Ramp {
  i32* to;
  std::int64_t start, grow;
  i32 count;
  i32 tag;
};
constexpr int rampBits = 44;

// A part of a glyph, 16 pels wide: in each row a bit or a byte of coverage for each pel, the leftmost first.
struct BitTile {
  u8* pels;  // upper left
  u16 const* bits;
  i32 rows;
};
struct CoverTile {
  u8* pels;
  u8 const* coverage;  // 16 a row, 0 beyond the width
  i32 rows;
  i32 width;  // 1 to 16
};
constexpr int columnLimit = 16;

// Rows of pels; pitches are in bytes, and no byte outside the pels named is touched.
struct RowKernels {
  // count pels, of which pel i is painted when bit i % 24 of the pattern is set.
  void (*masked)(u32* to, std::size_t count, u32 pattern, u32 pel);
  // rows rows down from one that begins at pels: in row i the pels from[i] up to but not to[i].
  void (*spans)(u8* pels, std::ptrdiff_t pitch, i32 rows, i32 const* from, i32 const* to, u32 pel);
  // Writes each ramp: 2^tagBits floor((start + i grow) / 2^rampBits) + tag for i from 0 up to but not count, and up to 7
  // numbers more, which the next ramp may overwrite.
  void (*ramps)(Ramp const*, std::size_t count, int tagBits);
  // Sorts count columns of rows numbers across: in each row the least comes into the first column. Up to 15 rows more are
  // sorted. All are then brought into low to high. Columns lie stride numbers apart; at most columnLimit of them.
  void (*sortAcross)(i32* columns, std::size_t stride, int count, i32 rows, i32 low, i32 high);
  // Paints tiles where a bit is set.
  void (*stamp)(BitTile const*, std::size_t count, std::ptrdiff_t pitch, u32 pel);
  // Moves the pels of tiles towards a colour. Each channel becomes the rounded quotient (c a + v (255 - a)) / 255; pels
  // of coverage 0 stay as they are, others get a top byte of 0.
  void (*blend)(CoverTile const*, std::size_t count, std::ptrdiff_t pitch, u32 rgb);
};

RowKernels const& plainRowKernels();
extern RowKernels const* chosenRowKernels;
inline RowKernels const& rowKernels() { return *chosenRowKernels; }

template <class Pel> inline void plainMaskedRow(Pel* to, std::size_t count, u32 pattern, Pel pel)
{
  for (std::size_t i = 0; i < count; i += 24)
    for (std::size_t k = 0, end = count - i < 24 ? count - i : 24; k < end; ++k)
      if (pattern >> k & 1u)
        to[i + k] = pel;
}

template <class Pel> inline void maskedRow(Pel* to, std::size_t count, u32 pattern, Pel pel)
{
  if constexpr (sizeof(Pel) == 4)
    rowKernels().masked(to, count, pattern, pel);
  else
    plainMaskedRow(to, count, pattern, pel);
}

// As RowKernels::spans.
template <class Pel>
inline void paintSpans(u8* pels, std::ptrdiff_t pitch, i32 rows, i32 const* from, i32 const* to, Pel pel)
{
  if constexpr (sizeof(Pel) == 4) {
    rowKernels().spans(pels, pitch, rows, from, to, pel);
  } else {
    for (i32 i = 0; i < rows; ++i, pels += pitch)
      if (from[i] < to[i])
        fillRow(reinterpret_cast<Pel*>(pels) + from[i], static_cast<std::size_t>(to[i] - from[i]), pel);
  }
}

// Red and blue share a word; v / 255 rounded is (v + 128 + (v + 128) / 256) / 256 for v up to 255 * 255.
inline u32 blended(u32 old, u32 rgb, u32 a)
{
  u32 const redBlue = (rgb & 0xFF00FFu) * a + (old & 0xFF00FFu) * (255u - a) + 0x800080u;
  u32 const green = (rgb >> 8 & 0xFFu) * a + (old >> 8 & 0xFFu) * (255u - a) + 0x80u;
  return ((redBlue + (redBlue >> 8 & 0xFF00FFu)) >> 8 & 0xFF00FFu) | ((green + (green >> 8)) & 0xFF00u);
}

}  // namespace plat::portable
