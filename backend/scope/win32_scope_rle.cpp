// Solid rectangles, single points and run-length images, and what pel value a colour has.
#include "backend/scope/win32_scope_pel.h"

#include "canvas/graphic_props.h"
#include "canvas/rle_buffer.h"
#include "platform/objects.h"
#include "platform/window.h"

#include <algorithm>
#include <cstring>

namespace {

template <class Pel> void storePel(unsigned char* to, std::uint32_t value)
{
  Pel const pel = static_cast<Pel>(value);
  std::memcpy(to, &pel, sizeof pel);
}

// Surface pels are written lowest byte first.
void storePels(unsigned char* to, long bytesPerPel, std::uint32_t value, std::int64_t count)
{
  switch (bytesPerPel) {
  case 1: std::memset(to, static_cast<int>(value & 255), static_cast<std::size_t>(count)); break;
  case 2:
    for (std::int64_t i = 0; i < count; ++i)
      storePel<std::uint16_t>(to + 2 * i, value);
    break;
  case 3:
    for (std::int64_t i = 0; i < count; ++i, to += 3) {
      to[0] = static_cast<unsigned char>(value);
      to[1] = static_cast<unsigned char>(value >> 8);
      to[2] = static_cast<unsigned char>(value >> 16);
    }
    break;
  case 4:
    for (std::int64_t i = 0; i < count; ++i)
      storePel<std::uint32_t>(to + 4 * i, value);
    break;
  default: break;
  }
}

// A pel value of 15 to 32 bits from red | green << 8 | blue << 16, or the index at depth 8.
std::uint32_t pelOfRGB(ccRGB const& c, long depth)
{
  if (depth == 15)
    return c.rgb15();
  if (depth == 16)
    return c.rgb16();
  return static_cast<std::uint32_t>(c.r) << 16 | static_cast<std::uint32_t>(c.g) << 8 | c.b;
}

ccRGB rgbOf(COLORREF bgr)
{
  return ccRGB(static_cast<unsigned char>(bgr & 255), static_cast<unsigned char>(bgr >> 8 & 255),
               static_cast<unsigned char>(bgr >> 16 & 255));
}

}  // namespace

// --- Colours

// red | green << 8 | blue << 16. A colour without RGB is looked up in the palette, or in the colour map.
COLORREF ccWin32UIScope::bgrColor_(ccColor const& color) const
{
  if ((color.flags() & ccColor::kRGB) != 0)
    return static_cast<COLORREF>(color.bgr());
  ccWin32UIScope const& root = root_();
  if (root.depth_ == 8) {
    HPALETTE const palette = root.palette_;
    plat::PaletteEntry e{};
    if (palette && plat::platform().objects.entry(palette, color.index(), e))
      return static_cast<COLORREF>(e.r | e.g << 8 | e.b << 16);
  } else {
    std::vector<ccRGB> const& map = root.colorCacheMap_.getColorMap();
    if (color.index() < map.size()) {
      ccRGB const& c = map[color.index()];
      return static_cast<COLORREF>(c.r | c.g << 8 | c.b << 16);
    }
  }
  return static_cast<COLORREF>(color.bgr());
}

unsigned char ccWin32UIScope::paletteIndex_(ccColor const& color) const
{
  if ((color.flags() & ccColor::kIndex) != 0)
    return color.index();
  HPALETTE const palette = root_().palette_;
  if (!palette)
    return color.index();
  return static_cast<unsigned char>(plat::platform().objects.nearest(palette, bgrColor_(color)));
}

std::uint32_t ccWin32UIScope::pelOf_(ccColor const& color) const
{
  return depth() == 8 ? paletteIndex_(color) : pelOfRGB(rgbOf(bgrColor_(color)), depth());
}

// For fills: at depth 8 a colour without index takes the nearest entry of the colour map.
std::uint32_t ccWin32UIScope::fillPelOf_(ccColor const& color) const
{
  if (depth() != 8 || (color.flags() & ccColor::kIndex) != 0)
    return pelOf_(color);
  return nearestColor(color, root_().colorCacheMap_.getColorMap()).index();
}

// --- Rectangles

void ccWin32UIScope::set(ccColor const& color)
{
  set(ccUIRect(clientOffset(), rect_.sz()), color);
  allChange();
  opaque(true);
}

void ccWin32UIScope::set(ccUIRect const& rect, ccColor const& color)
{
  ccUIRect r = (rect - clientOffset()) & ownRect_();
  bool const seeThrough = color.isPass();
  if (!r.isNull() && (!seeThrough || overlayPlane_)) {
    cc_Phase phase(*this, kBlit);
    if (phase) {
      r = (rect - clientOffset()) & phase.target().bounds;
      colorFill_(phase, r, seeThrough ? root_().colorKey_.low() : fillPelOf_(color));
    }
  }
  report_(r, true);
}

void ccWin32UIScope::colorFill_(cc_Phase& phase, ccUIRect const& rect, std::uint32_t value)
{
  ccUIRect const target = clipToDisplay_(rect + rect_.ul());
  if (rect.isNull() || target.isNull())
    return;
  if (phase.target().surface->bltColorFill(target, value, ceBltWait) != ceDDOk && phase.restart(kDirect)) {
    // A blitter that fails leaves the fill to us.
    cs_Target const& t = phase.target();
    ccUIRect const mine = (target - rect_.ul()) & t.bounds;
    for (long y = mine.top(); y < mine.bottom(); ++y)
      storePels(t.pels + y * t.pitch + mine.left() * t.bytesPerPel, t.bytesPerPel, value, mine.width());
  }
  win32Changed(rect);
}

// --- Points

void ccWin32UIScope::draw(ccPoint const& p, ccGraphicProps const& props)
{
  if (!isPlace(p))
    return;
  ccUIRect r = ccUIRect(xCoord(p), yCoord(p), 1, 1) & ownRect_();
  if (!r.isNull()) {
    cc_Phase const phase(*this, kDirect);
    cs_Target const& t = phase.target();
    if (phase) {
      r &= t.bounds;
      if (!r.isNull() && !clipToDisplay_(r + rect_.ul()).isNull())
        storePels(t.pels + r.top() * t.pitch + r.left() * t.bytesPerPel, t.bytesPerPel, pelOf_(props.penColor()), 1);
      win32Changed(r);
    }
  }
  report_(r, false);
}

// --- Run-length images

void ccWin32UIScope::draw(ccRLEBuffer const& image, ccPoint const& p, std::vector<ccColor> const& map, bool transparent,
                          unsigned char key)
{
  quietly_([&] {
    std::vector<ccRGB> const& colors = root_().colorCacheMap_.getColorMap();
    std::vector<unsigned char> indexes(map.size());
    for (std::size_t i = 0; i < map.size(); ++i)
      indexes[i] = (map[i].flags() & ccColor::kIndex) != 0 ? map[i].index() : nearestColor(map[i], colors).index();
    draw(image, p, indexes, transparent, key);
  });
}

void ccWin32UIScope::draw(ccRLEBuffer const& image, ccPoint const& p, std::vector<unsigned char> const& map,
                          bool transparent, unsigned char key)
{
  if (image.isNull() || !isPlace(p))
    return;
  ccPair<long> const size(image.width(), image.height()), pos(xCoord(p), yCoord(p));
  cs_Clip c = clip_<unsigned char>(size, pos, ownRect_());
  if (!c.r.isNull()) {
    cc_Phase const phase(*this, kDirect);
    if (phase) {
      c = clip_<unsigned char>(size, pos, phase.target().bounds);
      if (!c.r.isNull())
        writeRuns_(phase.target(), image, c, map, transparent, key);
      win32Changed(c.r);
    }
  }
  report_(c.r, false);
}

void ccWin32UIScope::sample(ccRLEBuffer const& image, ccPoint const& p, ccPair<double> const& scale,
                            std::vector<unsigned char> const& map, bool transparent, unsigned char key)
{
  quietly_([&] { ccUIScope::sample(image, p, scale, map, transparent, key); });
}

void ccWin32UIScope::expand(ccRLEBuffer const& image, ccPoint const& p, ccPair<double> const& scale,
                            std::vector<unsigned char> const& map, bool transparent, unsigned char key)
{
  quietly_([&] { ccUIScope::expand(image, p, scale, map, transparent, key); });
}

void ccWin32UIScope::writeRuns_(cs_Target const& t, ccRLEBuffer const& image, cs_Clip const& c,
                                std::vector<unsigned char> const& map, bool transparent, unsigned char key)
{
  for (std::int64_t y = 0; y < c.h; ++y) {
    unsigned char const* run = image.row(static_cast<long>(c.sy + y));
    unsigned char* const row = t.pels + (c.dy + y) * t.pitch + c.dx * t.bytesPerPel;
    std::int64_t at = -c.sx;  // position in the clipped row
    for (; run[1] != 0 && at < c.w; run += 2) {
      std::int64_t const from = std::max<std::int64_t>(at, 0);
      std::int64_t const end = std::min<std::int64_t>(at + run[1], c.w);
      at += run[1];
      if (end <= from || (transparent && run[0] == key))
        continue;
      unsigned char const index = run[0] < map.size() ? map[run[0]] : run[0];
      std::uint32_t const value = t.depth == 8 ? index : pelOf_(ccColor(index));
      storePels(row + from * t.bytesPerPel, t.bytesPerPel, value, end - from);
    }
  }
}
