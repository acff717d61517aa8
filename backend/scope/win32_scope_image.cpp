// Reading back what is displayed.
#include "backend/scope/win32_scope.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace {

struct cs_Source {
  std::uint32_t width = 0, height = 0;
  std::int32_t pitch = 0;
  long pelBytes = 0;
  bool is555 = false;
  unsigned char const* pels = nullptr;
};

cs_Source readSource(ccDirectDrawSurface const& surface)
{
  constexpr std::uint32_t green555 = 992;
  ccDirectDrawSurfaceDesc const& desc = surface.description();
  std::uint32_t const bits = desc.pixelFormat().bitCount();
  cs_Source s;
  s.width = desc.width();
  s.height = desc.height();
  s.pitch = desc.pitch();
  s.pelBytes = bits <= 8 ? 1 : bits <= 16 ? 2 : bits <= 24 ? 3 : 4;
  s.is555 = s.pelBytes == 2 && desc.pixelFormat().gBitMask() == green555;
  return s;
}

struct cs_Channels {
  unsigned r, g, b;
};

unsigned wordAt(unsigned char const* p) { return p[0] | static_cast<unsigned>(p[1]) << 8; }

cs_Channels channels16(unsigned v, bool is555)
{
  unsigned const blue = (v & 255) * 8 & 255;
  return is555 ? cs_Channels{v >> 7 & 248, v >> 2 & 248, blue} : cs_Channels{v >> 8 & 248, v >> 3 & 252, blue};
}

template <class T> T pelOf(cs_Channels const& c)
{
  return T(static_cast<unsigned char>(c.r), static_cast<unsigned char>(c.g), static_cast<unsigned char>(c.b));
}

ccRGB entryOf(std::vector<ccRGB> const& table, unsigned char index) { return index < table.size() ? table[index] : ccRGB(); }

// One source pel as an out pel. The image table gives palette pels their colour; without one they are grey.
void convert(unsigned char const* p, cs_Source const& s, std::vector<ccRGB> const*, unsigned char& out)
{
  if (s.pelBytes == 1) {
    out = *p;
    return;
  }
  cs_Channels const c = s.pelBytes == 2 ? channels16(wordAt(p), s.is555) : cs_Channels{p[2], p[1], p[0]};
  out = static_cast<unsigned char>((c.r + 2 * c.g + c.b) >> 2);
}

void convert(unsigned char const* p, cs_Source const& s, std::vector<ccRGB> const* table, ccPackedRGB16Pel& out)
{
  if (s.pelBytes == 1) {
    ccRGB const c = table ? entryOf(*table, *p) : ccRGB(*p, *p, *p);
    out = ccPackedRGB16Pel(c.r, c.g, c.b);
  } else if (s.pelBytes == 2) {
    unsigned const v = wordAt(p);
    if (!s.is555) {
      out = ccPackedRGB16Pel(static_cast<std::uint16_t>(v));
    } else {
      cs_Channels const c = channels16(v, true);
      out = ccPackedRGB16Pel(static_cast<std::uint16_t>(c.r << 8 | c.g << 3 | (v & 31)));
    }
  } else {
    out = pelOf<ccPackedRGB16Pel>({p[2], p[1], p[0]});
  }
}

void convert(unsigned char const* p, cs_Source const& s, std::vector<ccRGB> const* table, ccPackedRGB32Pel& out)
{
  if (s.pelBytes == 1) {
    if (table) {
      ccRGB const c = entryOf(*table, *p);
      out = ccPackedRGB32Pel(c.r, c.g, c.b);
    } else {
      out = ccPackedRGB32Pel(*p * 0x01010101u);
    }
  } else if (s.pelBytes == 2) {
    out = pelOf<ccPackedRGB32Pel>(channels16(wordAt(p), s.is555));
  } else {
    out = pelOf<ccPackedRGB32Pel>({p[2], p[1], p[0]});
  }
}

// Rows that need no change are copied.
template <class T> bool isSameLayout(cs_Source const& s)
{
  if constexpr (std::is_same_v<T, ccPackedRGB16Pel>)
    return s.pelBytes == 2 && !s.is555;
  else
    return s.pelBytes == static_cast<long>(sizeof(T));
}

template <class T>
void convertImage(cs_Source const& s, std::vector<ccRGB> const* table, ccPelBuffer<T> const& out)
{
  long const rows = s.pels ? std::min(out.height(), static_cast<long>(s.height)) : 0;
  long const columns = s.pels ? std::min(out.width(), static_cast<long>(s.width)) : 0;
  for (long y = 0; y < out.height(); ++y) {
    T* const to = out.pointToOffset() + y * out.rowStride();
    long const filled = y < rows ? columns : 0;
    unsigned char const* from = s.pels + (y < rows ? y * s.pitch : 0);
    if (filled > 0 && isSameLayout<T>(s))
      std::memcpy(static_cast<void*>(to), from, static_cast<std::size_t>(filled) * sizeof(T));
    else
      for (long x = 0; x < filled; ++x, from += s.pelBytes)
        convert(from, s, table, to[x]);
    std::fill(to + filled, to + out.width(), T());
  }
}

// The overlay over what was read. Pels of the key let the background through, or keep the image; then the next pel that is
// not of the key takes its place. Every row is judged by the overlay's first row.
template <class T>
void overlayStage(cs_Source const& overlay, cs_GetDisplayedImageInfo const& info, ccPelBuffer<T> const& out)
{
  if (overlay.pelBytes != 1)
    return;
  long const rows = std::min(out.height(), static_cast<long>(overlay.height));
  long const columns = std::min(out.width(), static_cast<long>(overlay.width));
  T const background(info.background.red(), info.background.green(), info.background.blue());
  for (long y = 0; y < rows; ++y) {
    T* to = out.pointToOffset() + y * out.rowStride();
    for (long x = 0; x < columns; ++x) {
      unsigned char const k = overlay.pels[x];
      if (info.overlayTableValid && k != info.keyIndex) {
        ccRGB const c = entryOf(info.overlayTable, k);
        *to++ = T(c.r, c.g, c.b);
      } else if (info.overlayMode == 1) {
        *to++ = background;
      }
    }
  }
}

}  // namespace

template <class T>
void ccWin32UIScope::displayedImage_(ccPelBuffer<T>& out, cs_GetDisplayedImageInfo* info, cc_TabletEnums::Layers layer)
{
  ccWin32UIScope& root = root_();
  if (info) {
    info->drawingSurface = &root.drawing_;
    if (info->overlayRequested)
      info->partnerSurface = root.partnerSurface_();
  }
  if (!out.isBound())
    return;
  // A surface that is in use for drawing can't be read.
  root.stopDrawPhase();
  if (root.partnerScope_)
    root.partnerScope_->stopDrawPhase();

  // Asked anew after each update, which may restore surfaces and call anything.
  auto const wanted = [&root, layer] {
    return layer == cc_TabletEnums::imageLayer     ? &root.drawing_
           : layer == cc_TabletEnums::overlayLayer ? root.partnerSurface_()
                                                   : root.displayedSurface_();
  };
  out.mutating();
  ccDirectDrawSurface* surface = wanted();
  cs_Source source;
  constexpr int retries = 4;
  for (int attempt = 0; surface && attempt <= retries && !source.pels; ++attempt) {
    if (attempt > 0) {
      root.updateScreen();
      surface = wanted();
    }
    if (surface && surface->lock() == ceDDOk) {
      source = readSource(*surface);
      source.pels = surface->description().surface();
    }
  }
  std::vector<ccRGB> const* const table = info && info->imageTableValid ? &info->imageTable : nullptr;
  convertImage(source, table, out);
  if (!source.pels)
    return;
  static_cast<void>(surface->unlock());

  if constexpr (!std::is_same_v<T, unsigned char>) {
    if (!info || !info->overlayRequested || (info->overlayMode != 1 && info->overlayMode != 2))
      return;
    ccDirectDrawSurface* const partner = root.partnerSurface_();
    if (!partner || partner->lock() != ceDDOk)
      return;
    cs_Source overlay = readSource(*partner);
    overlay.pels = partner->description().surface();
    if (overlay.pels)
      overlayStage(overlay, *info, out);
    static_cast<void>(partner->unlock());
  }
}

void ccWin32UIScope::getDisplayedImage(ccPelBuffer<unsigned char>& out, cs_GetDisplayedImageInfo* info,
                                       cc_TabletEnums::Layers layer)
{
  displayedImage_(out, info, layer);
}

void ccWin32UIScope::getDisplayedImage(ccPelBuffer<ccPackedRGB16Pel>& out, cs_GetDisplayedImageInfo* info,
                                       cc_TabletEnums::Layers layer)
{
  displayedImage_(out, info, layer);
}

void ccWin32UIScope::getDisplayedImage(ccPelBuffer<ccPackedRGB32Pel>& out, cs_GetDisplayedImageInfo* info,
                                       cc_TabletEnums::Layers layer)
{
  displayedImage_(out, info, layer);
}
