// Text of the painter over memory.
#include "platform/messages.h"
#include "platform/portable/raster/glyphs.h"
#include "platform/portable/raster/graphics_objects.h"
#include "platform/portable/raster/painter.h"
#include "platform/portable/raster/row_kernels.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <type_traits>

namespace plat::portable {

namespace {

using i64 = std::int64_t;


// Takes the first line off the text; a break at the very end makes no further line.
std::string_view takeLine(std::string_view& text)
{
  std::size_t const end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  if (end != std::string_view::npos && !line.empty() && line.back() == '\r')
    line.remove_suffix(1);
  return line;
}

// Calls body(character) for each character that shows; of "&x" only x does, unless prefixes are off.
template <class Body> void eachCharacter(std::string_view line, bool prefixes, Body&& body)
{
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (prefixes && line[i] == '&' && ++i == line.size())
      return;
    body(static_cast<u8>(line[i]));
  }
}

i32 widthOf(FontFace& face, std::string_view line, bool prefixes)
{
  i64 width = 0;
  eachCharacter(line, prefixes, [&](u8 c) { width += face.glyph(c, false).advance; });
  return static_cast<i32>(std::min<i64>(width, farthestPel));
}

Rect inkAt(Glyph const& glyph, Point at)
{
  return shifted(glyph.ink, at);
}

template <class Pel> void plotRuns(PelBlock const& block, Rect const& clip, Glyph const& glyph, Point at, Pel pel)
{
  for (Glyph::Run const& run : glyph.runs) {
    i32 const y = at.y + run.y;
    i32 const x0 = std::max(at.x + run.x, clip.left), x1 = std::min(at.x + run.x + run.count, clip.right);
    if (y < clip.top || y >= clip.bottom || x0 >= x1)
      continue;
    Pel* const row = reinterpret_cast<Pel*>(pelAddress(block, 0, y, sizeof(Pel)));
    for (i32 x = x0; x < x1; ++x)
      row[x] = pel;
  }
}

// Only 24 and 32 bits have grey edges.
template <class Pel> void plotGrey(PelBlock const& block, Rect const& clip, Glyph const& glyph, Point at, u32 rgb)
{
  Rect const ink = inkAt(glyph, at), seen = intersection(ink, clip);
  for (i32 y = seen.top; y < seen.bottom; ++y) {
    Pel* const row = reinterpret_cast<Pel*>(pelAddress(block, 0, y));
    for (i32 x = seen.left; x < seen.right; ++x) {
      i32 const column = x - ink.left;
      if (u32 const a = glyph.coverageOf(column / 16, y - ink.top)[column % 16])
        row[x] = pelFrom<Pel>(blended(pelValue(row[x]), rgb, a));
    }
  }
}

// Collects tiles and works on many in one call.
template <class Tile> class Tiles {
public:
  using Kernel = void (*)(Tile const*, std::size_t, std::ptrdiff_t, u32);
  Tiles(Kernel kernel, std::ptrdiff_t pitch, u32 value) : kernel_(kernel), pitch_(pitch), value_(value) {}
  Tiles(Tiles const&) = delete;
  Tiles& operator=(Tiles const&) = delete;
  ~Tiles() { flush(); }
  void add(Tile const& tile)
  {
    tiles_[count_++] = tile;
    if (count_ == std::size(tiles_))
      flush();
  }
  // Before pels are painted otherwise.
  void flush()
  {
    if (count_ != 0)
      kernel_(tiles_, count_, pitch_, value_);
    count_ = 0;
  }

private:
  Kernel const kernel_;
  std::ptrdiff_t const pitch_;
  u32 const value_;
  std::size_t count_ = 0;
  Tile tiles_[64];
};

template <class Tile> inline void addTiles(Tiles<Tile>& tiles, PelBlock const& block, Glyph const& glyph, Rect const& ink)
{
  u8* pels = pelAddress(block, ink.left, ink.top, sizeof(u32));
  for (i32 tile = 0; tile * 16 < ink.width(); ++tile, pels += 16 * sizeof(u32)) {
    if constexpr (std::is_same_v<Tile, CoverTile>) {
      // All rows are on their way before the first is needed.
      u8 const* row = pels;
      for (i32 i = 0; i < ink.height(); ++i, row += block.pitch)
        __builtin_prefetch(row, 1);
      tiles.add({pels, glyph.coverageOf(tile, 0), ink.height(), std::min(ink.width() - 16 * tile, 16)});
    } else {
      tiles.add({pels, glyph.bitsOf(tile), ink.height()});
    }
  }
}

}  // namespace

FontFace& MemPainter::face()
{
  if (!face_) {
    FontDesc desc;
    if (font_)
      fontOf(font_, desc);
    greyFont_ = desc.smooth;
    face_ = fontFace(desc);
  }
  return *face_;
}

Size MemPainter::textExtentNow(std::string_view text)
{
  FontFace& one = face();
  return {widthOf(one, text, false), one.ascent() + one.descent()};
}

int MemPainter::drawTextNow(std::string_view text, Rect& rect, unsigned flags)
{
  FontFace& one = face();
  bool const prefixes = !(flags & text::noPrefix);
  i32 const lineHeight = one.ascent() + one.descent();
  if (!window_ && !textOpaque_ && block_.depth == 32 && !(flags & text::calculateOnly) &&
      text.find('\n') == std::string_view::npos) {
    if (greyFont_ && !keyed_)
      stampLine<CoverTile>(text, rect, flags, rowKernels().blend);
    else
      stampLine<BitTile>(text, rect, flags, rowKernels().stamp);
    return text.empty() ? 0 : lineHeight;
  }
  bool const measured = textOpaque_ || (flags & (text::center | text::right | text::calculateOnly));
  i32 height = 0, widest = 0;
  lines_.clear();
  while (!text.empty()) {
    std::string_view const line = takeLine(text);
    i32 const width = measured ? widthOf(one, line, prefixes) : 0;
    lines_.push_back({line, width});
    widest = std::max(widest, width);
    height = std::min(height + lineHeight, farthestPel);
  }
  if (flags & text::calculateOnly) {
    rect.right = static_cast<i32>(std::min<i64>(i64{rect.left} + widest, std::numeric_limits<i32>::max()));
    rect.bottom = static_cast<i32>(std::min<i64>(i64{rect.top} + height, std::numeric_limits<i32>::max()));
    return height;
  }
  bool const grey = greyFont_ && !keyed_ && (window_ ? screenDepth() : block_.depth) >= 24;
  placed_.clear();
  boxes_.clear();
  i64 y = rect.top;
  for (TextLine const& line : lines_) {
    i64 x = rect.left;
    if (flags & text::center)
      x = (i64{rect.left} + rect.right - line.width) >> 1;
    else if (flags & text::right)
      x = i64{rect.right} - line.width;
    placeLine(line, {static_cast<i32>(std::clamp<i64>(x, -farthestPel, farthestPel)),
                     static_cast<i32>(std::clamp<i64>(y, -farthestPel, farthestPel))},
              prefixes, grey);
    y += lineHeight;
  }
  Rect const limit = flags & text::noClip ? Rect{-farthestPel, -farthestPel, farthestPel, farthestPel} : deviceRect(rect);
  paintText(limit, grey);
  return height;
}

// Adds the glyphs of a line, and its box when the background is painted, in device pels.
void MemPainter::placeLine(TextLine const& line, Point at, bool prefixes, bool grey)
{
  FontFace& one = face();
  Point const start = device(at);
  if (textOpaque_)
    boxes_.push_back({start.x, start.y, std::min(start.x, farthestPel - line.width) + line.width,
                      start.y + one.ascent() + one.descent()});
  i32 x = start.x;
  eachCharacter(line.text, prefixes, [&](u8 c) {
    Glyph const& glyph = one.glyph(c, grey);
    if (!glyph.ink.empty())
      placed_.push_back({&glyph, {x, start.y + one.ascent()}});
    x = std::min(x + glyph.advance, farthestPel);
  });
}

void MemPainter::paintText(Rect const& limit, bool grey)
{
  if (counts()) {
    for (Rect const& box : boxes_)
      account(intersection(box, limit));
    for (PlacedGlyph const& one : placed_)
      account(intersection(inkAt(*one.glyph, one.at), limit));
  }
  paint([&](Part const& part) {
    Point const shift = part.shift;
    Rect const clip = intersection(shifted(limit, shift), part.clip);
    if (clip.empty())
      return;
    if (!boxes_.empty()) {
      u32 const back = pelValueOf(textBack_, part.block.depth);
      for (Rect const& box : boxes_)
        fillPels(part.block, intersection(shifted(box, shift), clip), back);
    }
    u32 const value = pelValueOf(textColor_, part.block.depth);
    if (part.block.depth == 32) {
      if (grey)
        stampGlyphs<CoverTile>(part, clip, rowKernels().blend, value);
      else
        stampGlyphs<BitTile>(part, clip, rowKernels().stamp, value);
      return;
    }
    withPel(part.block.depth, [&](auto sample) {
      using Pel = decltype(sample);
      for (PlacedGlyph const& one : placed_) {
        Point const at{one.at.x + shift.x, one.at.y + shift.y};
        if constexpr (sizeof(Pel) >= 3) {
          if (grey) {
            plotGrey<Pel>(part.block, clip, *one.glyph, at, value);
            continue;
          }
        }
        plotRuns(part.block, clip, *one.glyph, at, pelFrom<Pel>(value));
      }
    });
  });
}

// One line on a surface of 32 bits, without a background, straight from the characters.
template <class Tile>
void MemPainter::stampLine(std::string_view text, Rect const& rect, unsigned flags,
                           void (*kernel)(Tile const*, std::size_t, std::ptrdiff_t, u32))
{
  constexpr bool grey = std::is_same_v<Tile, CoverTile>;
  FontFace& one = *face_;
  bool const prefixes = !(flags & text::noPrefix);
  i64 left = rect.left;
  if (flags & text::center)
    left = (left + rect.right - widthOf(one, text, prefixes)) >> 1;
  else if (flags & text::right)
    left = i64{rect.right} - widthOf(one, text, prefixes);
  Point const start = device({static_cast<i32>(std::clamp<i64>(left, -farthestPel, farthestPel)),
                              std::clamp(rect.top, -farthestPel, farthestPel)});
  Rect const whole{-farthestPel, -farthestPel, farthestPel, farthestPel};
  Rect const limit = flags & text::noClip ? whole : deviceRect(rect);
  Rect const clip = flags & text::noClip ? clipBox() : intersection(limit, clipBox());
  u32 const value = rgbOf(textColor_);
  bool const counted = counts();
  Tiles<Tile> tiles(kernel, block_.pitch, value);
  Point at{start.x, start.y + one.ascent()};
  eachCharacter(text, prefixes, [&](u8 c) {
    Glyph const& glyph = one.glyph(c, grey);
    Rect const ink = inkAt(glyph, at);
    Point const place = at;
    at.x = std::min(at.x + glyph.advance, farthestPel);
    if (ink.empty())
      return;
    if (counted)
      account(intersection(ink, limit));
    if (inside(clip, ink))
      return addTiles(tiles, block_, glyph, ink);
    tiles.flush();
    if constexpr (grey)
      plotGrey<u32>(block_, clip, glyph, place, value);
    else
      plotRuns<u32>(block_, clip, glyph, place, value);
  });
}

// On 32 bits. Glyphs that the clip cuts go pel by pel, in their turn.
template <class Tile>
void MemPainter::stampGlyphs(Part const& part, Rect const& clip,
                             void (*kernel)(Tile const*, std::size_t, std::ptrdiff_t, u32), u32 value)
{
  constexpr bool grey = std::is_same_v<Tile, CoverTile>;
  Tiles<Tile> tiles(kernel, part.block.pitch, value);
  for (PlacedGlyph const& one : placed_) {
    Glyph const& glyph = *one.glyph;
    Point const at{one.at.x + part.shift.x, one.at.y + part.shift.y};
    Rect const ink = inkAt(glyph, at);
    if (!inside(clip, ink)) {
      tiles.flush();
      if constexpr (grey)
        plotGrey<u32>(part.block, clip, glyph, at, value);
      else
        plotRuns<u32>(part.block, clip, glyph, at, value);
      continue;
    }
    addTiles(tiles, part.block, glyph, ink);
  }
}

}  // namespace plat::portable
