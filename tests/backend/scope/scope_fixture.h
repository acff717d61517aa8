// A headless screen with one window and a scope on it, and plain eyes on surfaces and on the screen.
#pragma once

#include "backend/scope/win32_scope.h"
#include "platform/app.h"
#include "platform/device_testing.h"
#include "platform/objects.h"
#include "platform/testing.h"
#include "platform/window.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

// Plays the display that arbitrates which of its scopes holds a surface.
struct DisplayStandIn {
  ccWin32UIScope* active = nullptr;
  ccWin32Display* display() { return reinterpret_cast<ccWin32Display*>(this); }
};

// A scope whose phases and surfaces can be watched.
class ScopeProbe : public ccWin32UIScope {
public:
  explicit ScopeProbe(bool overlayPlane = false, ccWin32Display* display = nullptr)
      : ccWin32UIScope(nullptr, ccPair<long>(), overlayPlane, display)
  {
  }
  using ccWin32UIScope::combsurface;
  using ccWin32UIScope::drawCache;
  using ccWin32UIScope::surface;

  int starts = 0, stops = 0, updates = 0;
  DrawMethod lastMethod = kNoPhase;

  void updateScreen() override
  {
    ++updates;
    ccWin32UIScope::updateScreen();
  }

protected:
  bool win32DrawStart_(DrawMethod m) override
  {
    ++starts;
    lastMethod = m;
    return ccWin32UIScope::win32DrawStart_(m);
  }
  void win32DrawStop_() override
  {
    ++stops;
    ccWin32UIScope::win32DrawStop_();
  }
};

// Pel values of a surface, row by row; 32-bit ones without their top byte.
inline std::vector<std::uint32_t> pelsOf(ccDirectDrawSurface& surface)
{
  std::vector<std::uint32_t> pels;
  if (surface.lock() != 0)
    return pels;
  ccDirectDrawSurfaceDesc const& d = surface.description();
  std::uint32_t const bytes = d.pixelFormat().bitCount() / 8;
  for (std::uint32_t y = 0; y < d.height(); ++y)
    for (std::uint32_t x = 0; x < d.width(); ++x) {
      unsigned char const* p = d.surface() + static_cast<std::ptrdiff_t>(y) * d.pitch() + x * bytes;
      std::uint32_t v = 0;
      for (std::uint32_t i = 0; i < bytes && i < 3; ++i)
        v |= static_cast<std::uint32_t>(p[i]) << (8 * i);
      pels.push_back(v);
    }
  EXPECT_EQ(surface.unlock(), 0);
  return pels;
}

inline std::uint32_t pelOf(ccDirectDrawSurface& surface, long x, long y)
{
  std::vector<std::uint32_t> const pels = pelsOf(surface);
  std::size_t const at = static_cast<std::size_t>(y) * surface.description().width() + static_cast<std::size_t>(x);
  return at < pels.size() ? pels[at] : 0xDEADBEEF;
}

// Of the first 256 no two are alike.
inline ccRGB testColor(std::size_t i)
{
  return ccRGB(static_cast<unsigned char>(i), static_cast<unsigned char>(i * 7 + 3),
               static_cast<unsigned char>(255 - i % 251));
}

inline std::vector<ccRGB> testColors(std::size_t count = 256)
{
  std::vector<ccRGB> colors(count);
  for (std::size_t i = 0; i < count; ++i)
    colors[i] = testColor(i);
  return colors;
}

// The surface pel of a colour, worked out from the bits of each format.
inline std::uint32_t surfacePel(ccRGB const& c, int depth)
{
  switch (depth) {
  case 15: return (c.r / 8u) * 1024 + (c.g / 8u) * 32 + c.b / 8u;
  case 16: return (c.r / 8u) * 2048 + (c.g / 4u) * 32 + c.b / 8u;
  default: return c.r * 65536u + c.g * 256u + c.b;
  }
}

template <class T> ccPelBuffer<T> randomImage(long w, long h, unsigned seed)
{
  std::mt19937 random(seed);
  ccPelBuffer<T> image(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      image.setPel(x, y, T(static_cast<std::uint16_t>(random() & (sizeof(T) == 1 ? 255u : 65535u))));
  return image;
}
template <> inline ccPelBuffer<unsigned char> randomImage(long w, long h, unsigned seed)
{
  std::mt19937 random(seed);
  ccPelBuffer<unsigned char> image(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      image.setPel(x, y, static_cast<unsigned char>(random() & 255));
  return image;
}
template <> inline ccPelBuffer<ccPackedRGB32Pel> randomImage(long w, long h, unsigned seed)
{
  std::mt19937 random(seed);
  ccPelBuffer<ccPackedRGB32Pel> image(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      image.setPel(x, y, ccPackedRGB32Pel(static_cast<std::uint32_t>(random() & 0xFFFFFF)));
  return image;
}

class ScopeTest : public testing::Test {
protected:
  static constexpr long width = 40, height = 30;

  ScopeTest() { screen(32); }
  ~ScopeTest() override
  {
    plat::testing::exclusive(false);
    plat::testing::overlays(0, {});
    closeAll();
  }

  // Changes the screen; windows that stand go first.
  void screen(int depth, plat::Size size = {800, 600})
  {
    closeAll();
    plat::InitOptions options;
    options.video = plat::InitOptions::headless;
    options.depth = depth;
    options.screen = size;
    ASSERT_TRUE(plat::init(options));
    ASSERT_EQ(windows().desktopDepth(), depth);
    window_ = makeWindow({100, 50, 100 + static_cast<plat::i32>(width), 50 + static_cast<plat::i32>(height)});
  }

  HWND makeWindow(plat::Rect rect)
  {
    plat::WindowDesc desc;
    desc.style = 0x10000000;
    desc.rect = rect;
    HWND const window = windows().create(desc);
    made_.push_back(window);
    plat::testing::drain();
    return window;
  }

  static plat::WindowSystem& windows() { return plat::platform().windows; }

  void create(ScopeProbe& scope) { ASSERT_EQ(scope.create(window_, ccPair<long>(width, height), -1), 0); }

  // The rectangle of all pels that aren't black, of a scope of the fixture's size.
  static ccUIRect inked(ScopeProbe& scope)
  {
    std::vector<std::uint32_t> const pels = pelsOf(scope.surface());
    ccUIRect r;
    for (long y = 0; y < height; ++y)
      for (long x = 0; x < width; ++x)
        if (pels[static_cast<std::size_t>(y * width + x)] != 0)
          r |= ccUIRect(x, y, 1, 1);
    return r;
  }

  std::uint32_t shown(long x, long y)
  {
    return plat::testing::pel(window_, plat::Point{static_cast<plat::i32>(x), static_cast<plat::i32>(y)});
  }

  HWND window_ = nullptr;

private:
  void closeAll()
  {
    for (HWND w : made_)
      windows().destroy(w);
    made_.clear();
    plat::testing::drain();
  }

  std::vector<HWND> made_;
};

constexpr int allDepths[] = {8, 15, 16, 24, 32};
