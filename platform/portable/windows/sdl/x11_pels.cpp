#include "platform/portable/windows/sdl/x11_pels.h"

#include "platform/portable/raster/region.h"

#include <array>
#include <vector>

#include <SDL.h>
#include <SDL_syswm.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace plat::portable {
namespace {

constexpr unsigned levels = 6;  // of each colour on a screen with a palette

// A channel of 8 bits as one of the width of its mask, the upper bits again below them.
unsigned long spread(unsigned value, unsigned long mask)
{
  if (mask == 0)
    return 0;
  int const low = __builtin_ctzl(mask), bits = __builtin_popcountl(mask);
  unsigned long const wide = value * 0x01010101ul;  // 32 bits of the value
  return ((wide & 0xFFFFFFFFul) >> (32 - bits)) << low;
}

class X11Pels final : public ForeignPels {
public:
  X11Pels(Display* display, ::Window window, XWindowAttributes const& window_)
      : display_(display), target_(window), attributes_(window_), context_(XCreateGC(display, window, 0, nullptr))
  {
    if (attributes_.visual->c_class == PseudoColor || attributes_.visual->c_class == StaticColor ||
        attributes_.visual->c_class == GrayScale || attributes_.visual->c_class == StaticGray)
      allocate();
    else if (attributes_.visual->c_class == DirectColor &&
             attributes_.colormap != DefaultColormapOfScreen(attributes_.screen))
      for (unsigned long const mask :
           {attributes_.visual->red_mask, attributes_.visual->green_mask, attributes_.visual->blue_mask})
        ramp(mask);
  }
  X11Pels(X11Pels const&) = delete;
  X11Pels& operator=(X11Pels const&) = delete;
  ~X11Pels() override
  {
    drop();
    XFreeGC(display_, context_);
  }

  void copy(PelBlock const& rgb, Rect const& wanted) override
  {
    if (!image_ || size_.w != rgb.width || size_.h != rgb.height)
      make({rgb.width, rgb.height});
    if (!image_)
      return;
    Rect const r = intersection(wanted, {0, 0, size_.w, size_.h});
    for (i32 y = r.top; y < r.bottom; ++y) {
      u32 const* const from = reinterpret_cast<u32 const*>(rgb.pels + std::ptrdiff_t{y} * rgb.pitch);
      for (i32 x = r.left; x < r.right; ++x)
        XPutPixel(image_, x, y, pixel(from[x]));
    }
  }

  void send(std::span<Rect const> rects) override
  {
    if (!image_)
      return;
    for (Rect const& wanted : rects) {
      Rect const r = intersection(wanted, {0, 0, size_.w, size_.h});
      if (!r.empty())
        XPutImage(display_, target_, context_, image_, r.left, r.top, r.left, r.top, static_cast<unsigned>(r.width()),
                  static_cast<unsigned>(r.height()));
    }
    XFlush(display_);
  }

private:
  unsigned long pixel(u32 rgb) const
  {
    unsigned const red = rgb >> 16 & 0xFF, green = rgb >> 8 & 0xFF, blue = rgb & 0xFF;
    if (cells_.empty())
      return spread(red, attributes_.visual->red_mask) | spread(green, attributes_.visual->green_mask) |
             spread(blue, attributes_.visual->blue_mask);
    auto const level = [](unsigned value) { return (value * (levels - 1) + 127) / 255; };
    return cells_[(level(red) * levels + level(green)) * levels + level(blue)];
  }

  // The levels of one channel, evenly from dark to bright.
  void ramp(unsigned long mask)
  {
    if (mask == 0)
      return;
    unsigned long const last = mask >> __builtin_ctzl(mask);
    for (unsigned long level = 0; level <= last; ++level) {
      XColor color{};
      color.pixel = level << __builtin_ctzl(mask);
      color.red = color.green = color.blue = static_cast<unsigned short>(level * 0xFFFF / last);
      color.flags = static_cast<char>(mask == attributes_.visual->red_mask     ? DoRed
                                      : mask == attributes_.visual->green_mask ? DoGreen
                                                                               : DoBlue);
      XStoreColor(display_, attributes_.colormap, &color);
    }
  }

  // A cube of colours. What cannot be had is written where the colours are this window's own, else it is black.
  void allocate()
  {
    cells_.assign(levels * levels * levels, BlackPixelOfScreen(attributes_.screen));
    bool const own = attributes_.colormap != DefaultColormapOfScreen(attributes_.screen);
    for (unsigned i = 0; i < cells_.size(); ++i) {
      auto const value = [](unsigned level) { return static_cast<unsigned short>(level * 0xFFFF / (levels - 1)); };
      XColor color{};
      color.red = value(i / (levels * levels));
      color.green = value(i / levels % levels);
      color.blue = value(i % levels);
      color.flags = DoRed | DoGreen | DoBlue;
      if (XAllocColor(display_, attributes_.colormap, &color)) {
        cells_[i] = color.pixel;
      } else if (own && attributes_.visual->c_class == PseudoColor) {
        color.pixel = i;
        XStoreColor(display_, attributes_.colormap, &color);
        cells_[i] = i;
      }
    }
  }

  void make(Size size)
  {
    drop();
    size_ = size;
    int const bytes = attributes_.depth <= 8 ? 1 : attributes_.depth <= 16 ? 2 : 4;
    pels_.assign(static_cast<std::size_t>(size.w) * static_cast<std::size_t>(size.h) * static_cast<std::size_t>(bytes), 0);
    image_ = XCreateImage(display_, attributes_.visual, static_cast<unsigned>(attributes_.depth), ZPixmap, 0, pels_.data(),
                          static_cast<unsigned>(size.w), static_cast<unsigned>(size.h), bytes * 8, size.w * bytes);
  }

  void drop()
  {
    if (!image_)
      return;
    image_->data = nullptr;  // ours
    XDestroyImage(image_);
    image_ = nullptr;
  }

  Display* display_;
  ::Window target_;
  XWindowAttributes attributes_;
  GC context_;
  XImage* image_ = nullptr;
  Size size_;
  std::vector<char> pels_;
  std::vector<unsigned long> cells_;
};

}  // namespace

Ptr<ForeignPels> makeX11Pels(SDL_Window* window)
{
  SDL_SysWMinfo info;
  SDL_VERSION(&info.version);
  if (!window || !SDL_GetWindowWMInfo(window, &info) || info.subsystem != SDL_SYSWM_X11)
    return nullptr;
  XWindowAttributes attributes;
  if (!XGetWindowAttributes(info.info.x11.display, info.info.x11.window, &attributes) || attributes.depth > 32)
    return nullptr;
  return std::make_unique<X11Pels>(info.info.x11.display, info.info.x11.window, attributes);
}

}  // namespace plat::portable
