// Text of the painter over memory.
#include "platform/portable/glyphs.h"
#include "platform/portable/graphics_objects.h"
#include "platform/portable/painter.h"
#include "platform/portable/pel_row.h"

#include <algorithm>

namespace plat::portable {

namespace {

using i64 = std::int64_t;

constexpr unsigned centre = 1, right = 2, noClip = 0x100, calculate = 0x400, noPrefix = 0x800;

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

template <class Pel> void plotRuns(PelBlock const& block, Rect const& clip, Glyph const& glyph, Point at, Pel pel)
{
  for (Glyph::Run const& run : glyph.runs) {
    i32 const y = at.y + run.y;
    i32 const x0 = std::max(at.x + run.x, clip.left), x1 = std::min(at.x + run.x + run.count, clip.right);
    if (y < clip.top || y >= clip.bottom || x0 >= x1)
      continue;
    Pel* const row = reinterpret_cast<Pel*>(pelAddress(block, 0, y));
    for (i32 x = x0; x < x1; ++x)
      row[x] = pel;
  }
}

// Only 24 and 32 bits have grey edges.
template <class Pel> void plotGrey(PelBlock const& block, Rect const& clip, Glyph const& glyph, Point at, u32 rgb)
{
  Rect const ink{at.x + glyph.ink.left, at.y + glyph.ink.top, at.x + glyph.ink.right, at.y + glyph.ink.bottom};
  Rect const seen = intersection(ink, clip);
  for (i32 y = seen.top; y < seen.bottom; ++y) {
    Pel* const row = reinterpret_cast<Pel*>(pelAddress(block, 0, y));
    u8 const* const cover = glyph.coverage.data() + std::ptrdiff_t{y - ink.top} * ink.width() - ink.left;
    for (i32 x = seen.left; x < seen.right; ++x) {
      u32 const a = cover[x], old = pelValue(row[x]);
      if (a == 0)
        continue;
      // Red and blue share a word; v / 255 rounded is (v + 128 + (v + 128) / 256) / 256 for v up to 255 * 255.
      u32 const redBlue = (rgb & 0xFF00FFu) * a + (old & 0xFF00FFu) * (255u - a) + 0x800080u;
      u32 const green = (rgb >> 8 & 0xFFu) * a + (old >> 8 & 0xFFu) * (255u - a) + 0x80u;
      row[x] = pelFrom<Pel>(((redBlue + (redBlue >> 8 & 0xFF00FFu)) >> 8 & 0xFF00FFu) |
                            ((green + (green >> 8)) & 0xFF00u));
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

Size MemPainter::textExtent(std::string_view text)
{
  FontFace& one = face();
  return {widthOf(one, text, false), one.ascent() + one.descent()};
}

int MemPainter::drawText(std::string_view text, Rect& rect, unsigned flags)
{
  FontFace& one = face();
  bool const prefixes = !(flags & noPrefix);
  i32 const lineHeight = one.ascent() + one.descent();
  i32 height = 0, widest = 0;
  lines_.clear();
  while (!text.empty()) {
    std::string_view const line = takeLine(text);
    i32 const width = widthOf(one, line, prefixes);
    lines_.push_back({line, width});
    widest = std::max(widest, width);
    height += lineHeight;
  }
  if (flags & calculate) {
    rect.right = rect.left + widest;
    rect.bottom = rect.top + height;
    return height;
  }
  bool const grey = greyFont_ && !keyed_ && (window_ ? screenDepth() : block_.depth) >= 24;
  placed_.clear();
  boxes_.clear();
  i64 y = rect.top;
  for (TextLine const& line : lines_) {
    i64 x = rect.left;
    if (flags & centre)
      x = (i64{rect.left} + rect.right - line.width) >> 1;
    else if (flags & right)
      x = i64{rect.right} - line.width;
    placeLine(line, {static_cast<i32>(std::clamp<i64>(x, -farthestPel, farthestPel)),
                     static_cast<i32>(std::clamp<i64>(y, -farthestPel, farthestPel))},
              prefixes, grey);
    y += lineHeight;
  }
  Rect const limit = flags & noClip ? Rect{-farthestPel, -farthestPel, farthestPel, farthestPel} : deviceRect(rect);
  paintText(limit, grey);
  return height;
}

// Adds the glyphs of a line, and its box when the background is painted, in device pels.
void MemPainter::placeLine(TextLine const& line, Point at, bool prefixes, bool grey)
{
  FontFace& one = face();
  Point const start = device(at);
  boxes_.push_back({start.x, start.y, start.x + line.width, start.y + one.ascent() + one.descent()});
  i32 x = start.x;
  eachCharacter(line.text, prefixes, [&](u8 c) {
    Glyph const& glyph = one.glyph(c, grey);
    if (!glyph.ink.empty())
      placed_.push_back({&glyph, {x, start.y + one.ascent()}});
    x += glyph.advance;
  });
}

void MemPainter::paintText(Rect const& limit, bool grey)
{
  if (textOpaque_)
    for (Rect const& box : boxes_)
      touch(intersection(box, limit));
  for (PlacedGlyph const& one : placed_) {
    Rect const& ink = one.glyph->ink;
    touch(intersection({one.at.x + ink.left, one.at.y + ink.top, one.at.x + ink.right, one.at.y + ink.bottom}, limit));
  }
  paint([&](Part const& part) {
    Point const shift = part.shift;
    Rect const clip = intersection({limit.left + shift.x, limit.top + shift.y, limit.right + shift.x,
                                    limit.bottom + shift.y}, part.clip);
    if (clip.empty())
      return;
    if (textOpaque_) {
      u32 const back = pelValueOf(textBack_, part);
      for (Rect const& box : boxes_)
        fillPels(part.block, intersection({box.left + shift.x, box.top + shift.y, box.right + shift.x,
                                           box.bottom + shift.y}, clip), back);
    }
    u32 const value = pelValueOf(textColor_, part);
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

}  // namespace plat::portable
