// The display and its scopes: colours, overlay, chroma keying, reading back, and what the scopes ask of their display.
#include "backend/win32/display_alive.h"
#include "backend/win32/win32_root.h"
#include "platform/objects.h"
#include "platform/window.h"

#include <array>
#include <memory>
#include <utility>

ccWin32UIScope* ccWin32UIScope::displayActiveLockedScope_(ccWin32Display* display)
{
  return display->activeLockedScope();
}

void ccWin32UIScope::displayActiveLockedScope_(ccWin32Display* display, ccWin32UIScope* scope)
{
  display->activeLockedScope(scope);
}

bool ccWin32UIScope::platformCompatibility_() { return ccWin32Display::platformCompatibility(); }

ccDisplay::DisplayFormat ccWin32Display::displayFormat()
{
  switch (imageScope_.desktopDepth()) {
  case 15:
    return format15;
  case 16:
    return format16;
  case 24:
    return format24;
  case 32:
    return format32;
  default:
    return format8;
  }
}

// See-through values of the overlay.
void ccWin32Display::getPassThroughValue(ccPackedRGB32Pel& v) { v = ccPackedRGB32Pel(0xf3f3f3u); }
void ccWin32Display::getPassThroughValue(ccPackedRGB16Pel& v) { v = ccPackedRGB16Pel(static_cast<std::uint16_t>(63390)); }
void ccWin32Display::getPassThroughValue(unsigned char& v) { v = 243; }

// ---- Colours ----

void ccWin32Display::updateCacheMap()
{
  ccLock lock(rootMutex());
  std::vector<ccRGB> const colors = colorMap();
  if (displayFormat() == format8) {
    plat::GraphicsObjects& objects = plat::platform().objects;
    HPALETTE const system = objects.createPalette(objects.systemEntries());
    cc_AtEnd const freed([&objects, system] { objects.deletePalette(system); });
    std::vector<unsigned char> indexes = imageScope_.cacheMap();
    for (std::size_t i = 10; i <= 240 && i < indexes.size(); ++i) {
      ccRGB const& c = colors[i];
      COLORREF const wanted = static_cast<COLORREF>(c.r | c.g << 8 | c.b << 16);
      indexes[i] = static_cast<unsigned char>(objects.nearest(system, wanted));
    }
    imageScope_.cacheMap(indexes);
    if (overlayScope_)
      overlayScope_->cacheMap(indexes);
    imageScope_.flushImageCache();
    return;
  }
  imageScope_.cacheMap(colors);
  if (overlayScope_)
    overlayScope_->cacheMap(colors);
  imageScope_.flushImageCache();
}

void ccWin32Display::imageChanged()
{
  ccDisplay::imageChanged();
  imageScope_.flushImageCache();
}

void ccWin32Display::imageMapChanged()
{
  ccDisplay::imageMapChanged();
  imageScope_.imageCacheMap(ccDisplay::colorMapEx());
}

void ccWin32Display::colorMapChanged()
{
  ccDisplay::colorMapChanged();
  std::vector<ccRGB> const entries = colorMap();
  imageScope_.palette(entries);
  if (overlayScope_)
    overlayScope_->palette(entries);
  updateCacheMap();
}

void ccWin32Display::magChanged()
{
  ccDisplay::magChanged();
  imageScope_.magChange(magExact());
}

// ---- Overlay and chroma keying ----

ccDisplay::overlayState ccWin32Display::enableOverlay()
{
  ccLock lock(rootMutex());
  return overlayScope_ ? overlayOn : chromaKeyingEnabled() ? chromaOn : noOverlay;
}

void ccWin32Display::enableOverlay(overlayState state)
{
  ccLock lock(rootMutex());
  if (state == enableOverlay())
    return;
  switch (state) {
  case overlayOn:
    if (window_)
      overlayScopeOn_();
    else
      overlayAnew_ = true;
    break;
  case chromaOn:
    if (!chromaKeyingEnabled())
      enableChromaKeying(true);
    break;
  case overlayOff:
    overlayAnew_ = false;
    if (overlayScope_) {
      cc_Alive const alive(*this);
      overlayScopeOff_();
      fullDraw(bothLayers);
      // What stands solid in front is not drawn anew by that, but the overlay's pels may still lie over it.
      if (alive.stands())
        win32Root_->ccUITablet::update(ccUIRect::inf, imageLayer, /*now=*/false);
      if (alive)
        win32Root_->globalUpdate();
    }
    break;
  case chromaOff:
    if (chromaKeyingEnabled())
      enableChromaKeying(false);
    break;
  default:
    break;
  }
}

long ccWin32Display::enableChromaKeying(bool enable)
{
  ccLock lock(rootMutex());
  if (enable == chromaKeyingEnabled())
    return 0;
  cc_Alive const alive(*this);
  if (enable) {
    cc_OnThrow const undo([this] { restoreParent_(); });
    subclassParent_();
  }
  long const code = imageScope_.enableChromaKeying(enable, /*yuv=*/false);
  if (!enable && alive.stands())
    restoreParent_();
  return code;
}

// What may fail is done before anybody knows of the scope; where hooks fail later it stays on.
void ccWin32Display::overlayScopeOn_()
{
  overlayAnew_ = false;
  if (overlayScope_)
    return;
  cc_Alive const alive(*this);
  ccPair<long> const size = imageScope_.size();
  auto scope = std::make_unique<ccWin32UIScope>(nullptr, size, /*overlayPlane=*/true, this);
  scope->create(window_, size, -1);
  scope->redrawCallBack(&ccWin32Display::redrawAll_, this);
  scope->palette(colorMap());
  scope->cacheMap(colorMap());
  scope->colorMap(win32Root_->colorMap());
  scope->colorMapEx(ccDisplay::colorMapEx());
  scope->waitForVerticalBlank(imageScope_.waitForVerticalBlank());
  scope->fontTable(imageScope_.fontTable());
  win32Root_->overlayColorMap(scope->cacheColorMap());
  cc_ScreenLock const hold(this);
  setScope(overlayLayer, scope.get(), false);
  cc_OnThrow const undo([this] {
    if (!win32Root_->overlayScope())
      setScope(overlayLayer, nullptr, false);
  });
  imageScope_.drawSurface(scope.get());
  scope->drawSurface(&imageScope_);
  overlayScope_ = scope.release();
  win32Root_->overlayScope(overlayScope_);
  layOut_(size);
  if (!alive)
    return;
  overlayScope_->enableOverlayPlane(true, size);
  win32Root_->fullDraw(bothLayers);
  if (alive)
    win32Root_->globalUpdate();
}

// Calls no hook.
void ccWin32Display::overlayScopeOff_()
{
  overlayScope_->enableOverlayPlane(false, overlayScope_->size());
  imageScope_.drawSurface(nullptr);
  overlayScope_->drawSurface(nullptr);
  win32Root_->overlayScope(nullptr);
  setScope(overlayLayer, nullptr, false);
  overlayScope_->destroy();
  if (activeLockedScope_ == overlayScope_)
    activeLockedScope_ = nullptr;
  ccWin32UIScope::retire(std::exchange(overlayScope_, nullptr));
}

// ---- Reading back ----

void ccWin32Display::fillInfo_(cs_GetDisplayedImageInfo& info, Layers layer)
{
  try {
    info.imageTable = colorMap();
    info.imageTableValid = true;
  } catch (ccException const&) {
    info.imageTableValid = false;
  }
  if (enableOverlay() != noOverlay) {
    info.overlayRequested = true;
    try {
      info.overlayTable = overlayColorMap();
      info.overlayTableValid = true;
    } catch (ccException const&) {
      info.overlayTableValid = false;
    }
  }
  getPassThroughValue(info.keyIndex);
  getPassThroughValue(info.background);
  info.overlayMode = layer;
}

template <class T> void ccWin32Display::displayed_(ccPelBuffer<T>& out, Layers layer)
{
  ccLock lock(rootMutex());
  if (layer == overlayLayer && enableOverlay() != overlayOn)
    throw OverlayLayerNotEnabled();
  if (displayFormat() != format8) {
    imageScope_.getDisplayedImage(out, nullptr, layer);
    return;
  }
  cs_GetDisplayedImageInfo info;
  fillInfo_(info, layer);
  imageScope_.getDisplayedImage(out, &info, layer);
}

void ccWin32Display::getDisplayedImage(ccPelBuffer<unsigned char>& out, Layers layer) { displayed_(out, layer); }
void ccWin32Display::getDisplayedImage(ccPelBuffer<ccPackedRGB16Pel>& out, Layers layer) { displayed_(out, layer); }
void ccWin32Display::getDisplayedImage(ccPelBuffer<ccPackedRGB32Pel>& out, Layers layer) { displayed_(out, layer); }
