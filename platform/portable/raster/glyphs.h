// Glyphs of fonts, kept by face, height and character. Characters are Latin-1. Any thread.
#pragma once

#include "platform/paint.h"

#include <array>
#include <atomic>
#include <memory>
#include <vector>

namespace plat::portable {

// Offsets from the pen's place on the base line, y downward.
struct Glyph {
  struct Run {
    i32 x, y, count;
  };
  i32 advance = 0;
  Rect ink;
  // By tiles of 16 columns of the ink, left to right, and in each by rows: a bit for each pel, the leftmost first; in the
  // grey form 16 bytes from 0 to 255, beyond the ink 0.
  std::vector<u16> bits;
  std::vector<u8> coverage;
  std::vector<Run> runs;  // the one-bit form once more

  i32 tiles() const { return (ink.width() + 15) / 16; }
  std::size_t tileRow(i32 tile, i32 row) const
  {
    return static_cast<std::size_t>(tile) * static_cast<std::size_t>(ink.height()) + static_cast<std::size_t>(row);
  }
  u8 const* coverageOf(i32 tile, i32 row) const { return coverage.data() + tileRow(tile, row) * 16; }
  u16 const* bitsOf(i32 tile) const { return bits.data() + tileRow(tile, 0); }
};

class FontFace {
public:
  virtual ~FontFace() = default;
  i32 ascent() const { return ascent_; }
  i32 descent() const { return descent_; }  // the line's height is the sum
  // Stays where it is as long as the face. The advance is that of the one-bit form in both forms. A glyph for which there is
  // no memory has neither ink nor advance, this once.
  Glyph const& glyph(u8 character, bool grey) noexcept
  {
    Glyph const* const known = glyphs_[grey ? 1 : 0][character].load(std::memory_order_acquire);
    return known ? *known : load(character, grey);
  }

protected:
  virtual Glyph const& load(u8 character, bool grey) noexcept = 0;

  i32 ascent_ = 0, descent_ = 0;
  std::array<std::atomic<Glyph const*>, 256> glyphs_[2] = {};  // each set once, owned by the face
};

// The face of a font; of the same font, the same face.
std::shared_ptr<FontFace> fontFace(FontDesc const&);

}  // namespace plat::portable
