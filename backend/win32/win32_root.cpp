#include "backend/win32/win32_root.h"

#include "backend/scope/win32_scope.h"
#include "platform/messages.h"
#include "platform/objects.h"
#include "platform/window.h"

#include <algorithm>

namespace {

constexpr std::size_t kRampStart = 10, kRampSize = 231, kOwnEntries = 236;
constexpr plat::u8 kNoCollapse = 4;

}  // namespace

ccUIWin32Root::ccUIWin32Root() : ccUIRootObject(nullptr, nullptr), ramp_(kRampSize), colorMapEx_(256)
{
  for (std::size_t i = 0; i < kRampSize; ++i) {
    auto const grey = static_cast<unsigned char>(kRampStart + i);
    ramp_[i] = ccRGB(grey, grey, grey);
  }
  for (std::size_t i = 0; i < 256; ++i) {
    auto const grey = static_cast<unsigned char>(i);
    colorMapEx_[i] = ccRGB(grey, grey, grey);
  }
}

ccUIWin32Root::~ccUIWin32Root()
{
  window(nullptr);
  if (palette_)
    plat::platform().objects.deletePalette(palette_);
}

std::vector<ccRGB> ccUIWin32Root::colorMap()
{
  ccLock lock(mutex());
  std::vector<ccRGB> map = systemColorMap();
  std::copy(ramp_.begin(), ramp_.end(), map.begin() + kRampStart);
  return map;
}

void ccUIWin32Root::colorMap(std::vector<ccRGB> const& ramp)
{
  ccLock lock(mutex());
  std::copy_n(ramp.begin(), std::min(ramp.size(), kRampSize), ramp_.begin());
  showMap_();
}

void ccUIWin32Root::showMap_()
{
  std::vector<ccRGB> const map = colorMap();
  if (imageScope_)
    imageScope_->colorMap(map);
  if (overlayScope_)
    overlayScope_->colorMap(map);
  std::array<plat::PaletteEntry, kOwnEntries> entries;
  for (std::size_t i = 0; i < kOwnEntries; ++i) {
    ccRGB const& c = map[kRampStart + i];
    entries[i] = {c.r, c.g, c.b, kNoCollapse};
  }
  plat::GraphicsObjects& objects = plat::platform().objects;
  HPALETTE const former = palette_;
  palette_ = objects.createPalette(entries);
  if (former)
    objects.deletePalette(former);
  realizePalette();
}

void ccUIWin32Root::colorMapEx(std::vector<ccRGB> const& map)
{
  ccLock lock(mutex());
  colorMapEx_ = map;
  if (imageScope_)
    imageScope_->colorMapEx(colorMapEx_);
  if (overlayScope_)
    overlayScope_->colorMapEx(colorMapEx_);
}

void ccUIWin32Root::reservedColor(ccRGB const& rgb, long index)
{
  ccLock lock(mutex());
  ccUIRootObject::reservedColor(rgb, index);
  showMap_();
}

unsigned ccUIWin32Root::realizePalette()
{
  return window_ && palette_ ? plat::platform().objects.realize(window_, palette_) : 0;
}

void ccUIWin32Root::window(HWND window)
{
  plat::WindowSystem& windows = plat::platform().windows;
  if (window_) {
    if (classCursorSaved_ && windows.isWindow(window_))
      windows.classCursor(window_, classCursor_);
    // Never waited for: the window's thread may be waiting for the mutex that is held here. What another window has
    // captured stays with it, or a drag over there would never hear of its end.
    auto const letGo = [&windows, old = window_] {
      HWND const held = windows.capture();
      if (held && held != old)
        return;
      windows.clipCursor(nullptr);
      windows.releaseCapture();
    };
    if (windows.onOwnThread(window_))
      letGo();
    else
      windows.post(window_, letGo);
  }
  classCursorSaved_ = false;
  window_ = window;
  if (!window_)
    return;
  for (int i = 0; i < kCursors; ++i)
    if (!cursors_[static_cast<std::size_t>(i)])
      cursors_[static_cast<std::size_t>(i)] = windows.loadCursor(plat::cursor::arrow + i);
  setCursor(cursor());
}

HCURSOR ccUIWin32Root::cursorHandle(Cursor cursor, HCURSOR handle)
{
  if (cursor < 0 || cursor >= kCursors || !handle)
    return nullptr;
  ccLock lock(mutex());
  std::swap(cursors_[static_cast<std::size_t>(cursor)], handle);
  return handle;
}

void ccUIWin32Root::setCursor(Cursor cursor)
{
  if (!window_ || cursor < 0 || cursor >= kCursors)
    return;
  HCURSOR const handle = cursors_[static_cast<std::size_t>(cursor)];
  plat::WindowSystem& windows = plat::platform().windows;
  HCURSOR const former = windows.classCursor(window_, handle);
  if (!classCursorSaved_) {
    classCursor_ = former;
    classCursorSaved_ = true;
  }
  windows.setCursor(handle);
}
