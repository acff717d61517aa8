// The display and its scopes: colours, overlay, chroma keying, reading back, and what the scopes ask of their display.
#include "backend/win32/win32_display.h"
#include "backend/win32/win32_root.h"
#include "platform/objects.h"
#include "platform/window.h"

#include <array>

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
    objects.deletePalette(system);
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
    break;
  case chromaOn:
    if (!chromaKeyingEnabled())
      enableChromaKeying(true);
    break;
  case overlayOff:
    if (overlayScope_)
      overlayScopeOff_();
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
  if (enable)
    subclassParent_();
  long const code = imageScope_.enableChromaKeying(enable, /*yuv=*/false);
  if (!enable)
    restoreParent_();
  return code;
}

void ccWin32Display::overlayScopeOn_()
{
  ccPair<long> const size = imageScope_.size();
  overlayScope_ = new ccWin32UIScope(nullptr, size, /*overlayPlane=*/true, this);
  overlayScope_->create(window_, size, -1);
  overlayScope_->redrawCallBack(&ccWin32Display::redrawAll_, this);
  overlayScope_->palette(colorMap());
  overlayScope_->cacheMap(colorMap());
  win32Root_->overlayScope(overlayScope_);
  overlayScope_->colorMap(win32Root_->colorMap());
  overlayScope_->colorMapEx(ccDisplay::colorMapEx());
  win32Root_->overlayColorMap(overlayScope_->cacheColorMap());
  lockScreenUpdatesPush(true, bothLayers);
  setScope(overlayLayer, overlayScope_, false);
  layOut_(size);
  overlayScope_->enableOverlayPlane(true, size);
  imageScope_.drawSurface(overlayScope_);
  overlayScope_->drawSurface(&imageScope_);
  overlayScope_->fontTable(imageScope_.fontTable());
  win32Root_->fullDraw(bothLayers);
  win32Root_->globalUpdate();
  lockScreenUpdatesPop(bothLayers);
}

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
  delete overlayScope_;
  overlayScope_ = nullptr;
  fullDraw(bothLayers);
  win32Root_->globalUpdate();
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
  if (layer == overlayLayer && enableOverlay() != overlayOn)
    throw OverlayLayerNotEnabled();
  ccLock lock(rootMutex());
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
