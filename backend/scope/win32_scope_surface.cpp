// The surfaces of a root scope: their creation, chroma keying, the overlay plane and the hardware overlay.
#include "backend/scope/win32_scope.h"

#include "platform/paint.h"
#include "platform/window.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint32_t formatPaletted = 96, formatMasks = 64, formatFourCCYuv = 516;
constexpr std::uint32_t codeUYVY = 0x59565955, codeYUY2 = 0x32595559;
constexpr long overlayWidthLimit = 769;  // hardware overlays are tried below this width

// Mask fields hold numbers of bits here, not masks. Another depth leaves those of a fresh format.
ccDirectDrawPixelFormat formatOfDepth(long depth)
{
  ccDirectDrawPixelFormat format;
  auto const masks = [&format](std::uint32_t r, std::uint32_t g, std::uint32_t b, std::uint32_t a) {
    format.rBitMask(r);
    format.gBitMask(g);
    format.bBitMask(b);
    format.alphaBitMask(a);
  };
  format.bitCount(static_cast<std::uint32_t>(depth));
  format.flags(depth == 8 ? formatPaletted : formatMasks);
  if (depth == 15)
    masks(5, 5, 5, 0);
  else if (depth == 16)
    masks(5, 6, 5, 0);
  else if (depth == 24)
    masks(8, 8, 8, 0);
  else if (depth == 32)
    masks(8, 8, 8, 8);
  return format;
}

ccDirectDrawSurfaceDesc sizedDesc(std::uint32_t caps, ccPair<long> size)
{
  ccDirectDrawSurfaceDesc desc;
  desc.surfaceCaps(ccDirectDrawSurfaceCaps(caps));
  // What no surface has stays that.
  auto const extent = [](long v) { return static_cast<std::uint32_t>(std::clamp<std::int64_t>(v, 0, 0x7FFFFFFF)); };
  desc.width(extent(size.x()));
  desc.height(extent(size.y()));
  return desc;
}

}  // namespace

long ccWin32UIScope::resize(ccPair<long> size, long depth)
{
  if (parent_)
    return parent_->resize(size, depth);
  if (!ddraw_.created())
    return ceDDNotInitialized;
  abandonPhase_();
  dropClientDC_();
  setRect_(ccUIRect(ccPair<long>(), clampToScreen_(size)));
  shrinkDirty_();
  long result;
  if (chromaKeyingEnabled()) {
    result = createChromaKeySurfaces_(rect_.sz());
  } else {
    result = createSurface_(drawing_, rect_.sz(), depth, false);
    if (overlayPlane_) {
      overlayPlaneColorKey_();
      static_cast<void>(createSurface_(combined_, rect_.sz(), -1, false));
    }
  }
  releaseUnused_();
  readFormat_();
  if (dragActive_)
    dragStart();
  return result;
}

void ccWin32UIScope::shrinkDirty_()
{
  for (ccUIRect* const r : {&invalid_, &backupDirty_, &dragDirty_, &eraseFailed_})
    *r &= rect_;
}

void ccWin32UIScope::resizeDrawingSurface(ccPair<long> const& size)
{
  if (parent_)
    return parent_->resizeDrawingSurface(size);
  if (!ddraw_.created())
    return;
  abandonPhase_();
  dropClientDC_();
  setRect_(ccUIRect(ccPair<long>(), clampToScreen_(size)));
  shrinkDirty_();
  if (chromaKeyingEnabled()) {
    static_cast<void>(createChromaKeySurfaces_(rect_.sz()));
  } else {
    static_cast<void>(createSurface_(drawing_, rect_.sz(), -1, false));
    if (overlayPlane_)
      overlayPlaneColorKey_();
  }
  readFormat_();
  if (dragActive_)
    dragStart();
}

long ccWin32UIScope::resizeCombinedSurface(ccPair<long> const& size)
{
  if (parent_)
    return parent_->resizeCombinedSurface(size);
  if (!ddraw_.created())
    return ceDDNotInitialized;
  if (chromaKeyingEnabled())
    return ceDDOk;
  return createSurface_(combined_, clampToScreen_(size), -1, false);
}

long ccWin32UIScope::releaseDrawingSurface()
{
  ccWin32UIScope& root = root_();
  root.abandonPhase_();
  return root.drawing_.release();
}

long ccWin32UIScope::releaseCombinedSurface() { return root_().combined_.release(); }

ccDirectDrawSurfaceDesc ccWin32UIScope::offscreenDesc_(ccPair<long> size, long depth, bool forceSystem) const
{
  ccDirectDrawSurfaceDesc const screen = screen_();
  ccDirectDrawSurfaceCaps caps;
  caps.offscreenPlain(true);
  caps.systemMemory(forceSystem || size.x() > static_cast<long>(screen.width()) ||
                    size.y() > static_cast<long>(screen.height()));
  ccDirectDrawSurfaceDesc desc = sizedDesc(caps.bits(), size);
  // A surface without a format of its own gets the screen's, so the screen's depth counts as well as ours.
  if (depth >= 1 && (depth != depth_ || depth != depthCode_(screen.pixelFormat())))
    desc.pixelFormat(formatOfDepth(depth));
  return desc;
}

long ccWin32UIScope::createSurface_(ccDirectDrawSurface& surface, ccPair<long> size, long depth, bool forceSystem)
{
  if (!ddraw_.created())
    return ceDDNotInitialized;
  if (surface.created())
    static_cast<void>(surface.release());
  surface.description(offscreenDesc_(size, depth, forceSystem));
  long const result = surface.create(&ddraw_);
  if (result == ceDDOk)
    static_cast<void>(colorFillAll_(surface, 0));
  return result;
}

long ccWin32UIScope::colorFillAll_(ccDirectDrawSurface& surface, std::uint32_t value)
{
  return surface.bltColorFill(static_cast<RECT const*>(nullptr), value, ceBltWait);
}

// --- Overlays

long ccWin32UIScope::createOverlay_(ccDirectDrawSurface& surface, ccPair<long> size, bool yuv)
{
  if (!ddraw_.created())
    return ceDDNotInitialized;
  if (surface.created())
    static_cast<void>(surface.release());
  ccDirectDrawSurfaceDesc const screen = screen_();
  if (size.x() > static_cast<long>(screen.width()) || size.y() > static_cast<long>(screen.height()))
    return ceDDInvalidParam;
  ccDirectDrawCaps hardware, emulation;
  long result = ddraw_.caps(hardware, emulation);
  if (result != ceDDOk)
    return result;
  if (hardware.maxVisibleOverlays() <= hardware.curVisibleOverlays() || !hardware.overlay() ||
      !hardware.dstOverlayColorKey())
    return ceDDOutOfCaps;
  ccDirectDrawSurfaceCaps caps;
  caps.overlay(true);
  caps.videoMemory(true);
  ccDirectDrawSurfaceDesc desc = sizedDesc(caps.bits(), size);
  if (yuv) {
    std::uint32_t const code =
        ddraw_.supportsFourCC(codeUYVY) ? codeUYVY : ddraw_.supportsFourCC(codeYUY2) ? codeYUY2 : 0;
    if (!hardware.overlayFourCC() || code == 0)
      return ceDDInvalidPixelFormat;
    ccDirectDrawPixelFormat format;
    format.bitCount(16);
    format.flags(formatFourCCYuv);
    format.fourCC(code);
    desc.pixelFormat(format);
  }
  surface.description(desc);
  result = surface.create(&ddraw_);
  if (result == ceDDOk)
    static_cast<void>(colorFillAll_(surface, 0));
  return result;
}

bool ccWin32UIScope::canBlitToOverlay_()
{
  constexpr std::uint32_t videoOffscreen = 0x4040, videoOverlay = 0x4080;
  ccDirectDrawSurface from, to;
  from.description(sizedDesc(videoOffscreen, ccPair<long>(16, 16)));
  to.description(sizedDesc(videoOverlay, ccPair<long>(16, 16)));
  ccUIRect const part(0, 0, 15, 15);
  return from.create(&ddraw_) == ceDDOk && to.create(&ddraw_) == ceDDOk && to.blt(&from, part, part, ceBltWait) == ceDDOk;
}

long ccWin32UIScope::createChromaKeySurfaces_(ccPair<long> size)
{
  chromaFlags_ &= kChroma | kYuvWanted | kOverlayUnusable;
  if ((chromaFlags_ & kOverlayUnusable) == 0 && !canBlitToOverlay_())
    chromaFlags_ |= kOverlayUnusable;
  if ((chromaFlags_ & kOverlayUnusable) == 0 && size.x() < overlayWidthLimit) {
    if ((chromaFlags_ & kYuvWanted) != 0 && screenDepth_() != 8 && createOverlay_(graphics_, size, true) == ceDDOk) {
      bool const uyvy = graphics_.description().pixelFormat().fourCC() == codeUYVY;
      chromaFlags_ |= kOverlay | (uyvy ? kOverlayUYVY : kOverlayYUY2);
      return createYuvDrawing_(size);
    }
    if (createOverlay_(drawing_, size, false) == ceDDOk) {
      chromaFlags_ |= kOverlay;
      static_cast<void>(keySurfaces_());
      return ceDDOk;
    }
  }
  long result = createSurface_(drawing_, size, -1, false);
  if (result == ceDDOk)
    result = createSurface_(graphics_, size, -1, false);
  if (result == ceDDOk)
    result = createSurface_(combined_, size, -1, false);
  long const keyed = keySurfaces_();
  return result != ceDDOk ? result : keyed;
}

// The image is drawn as 8-bit grey and converted whenever it is shown.
long ccWin32UIScope::createYuvDrawing_(ccPair<long> size)
{
  if (!ddraw_.created())
    return ceDDNotInitialized;
  long const result = createSurface_(drawing_, size, 8, true);
  static_cast<void>(keySurfaces_());
  return result;
}

// --- Keys

long ccWin32UIScope::enableChromaKeying(bool enable, bool yuv)
{
  if (parent_)
    return parent_->enableChromaKeying(enable, yuv);
  dropClientDC_();
  chromaFlags_ = (enable ? kChroma : 0u) | (yuv ? kYuvWanted : 0u);
  long const result = resize(rect_.sz(), -1);
  callRedraw_();
  if (window_) {
    plat::platform().windows.invalidate(window_, nullptr, false);
    plat::platform().windows.update(window_);
  }
  return result;
}

long ccWin32UIScope::chromaKey(unsigned long key)
{
  if (parent_)
    return parent_->chromaKey(key);
  chromaKey_ = static_cast<COLORREF>(key);
  long const result = keySurfaces_();
  if (chromaKeyingEnabled()) {
    // Other pels let the picture through now.
    invalidateScreen(rect_);
    updateScreen();
  }
  return result;
}

long ccWin32UIScope::keySurfaces_()
{
  ddColorKey_();
  return chromaKeyingEnabled() ? applyChromaKey_() : ceDDOk;
}

long ccWin32UIScope::applyChromaKey_()
{
  return (chromaFlags_ & kOverlay) != 0 ? ddraw_.primary().colorKey(colorKey_, ceKeyDestOverlay)
                                        : graphics_.colorKey(colorKey_, ceKeySourceBlt);
}

void ccWin32UIScope::ddColorKey_() { colorKey_ = ccDirectDrawColorKey(pelOfChromaKey_()); }

// Painted and read back: no arithmetic on masks can equal what the driver makes of a colour.
std::uint32_t ccWin32UIScope::pelOfChromaKey_()
{
  if (!ddraw_.created())
    return 0;
  constexpr std::uint32_t offscreen = 0x40;
  ccDirectDrawSurface probe;
  probe.description(sizedDesc(offscreen, ccPair<long>(4, 4)));
  if (probe.create(&ddraw_) != ceDDOk)
    return 0;
  HDC dc = nullptr;
  if (probe.getDC(&dc) != ceDDOk)
    return 0;
  if (plat::Painter* painter = plat::painter(dc))
    painter->fillRect(plat::Rect{0, 0, 1, 1}, chromaKey_);
  static_cast<void>(probe.releaseDC(dc));
  if (probe.lock() != ceDDOk)
    return 0;
  // Pels lie in memory lowest byte first.
  std::uint32_t const bits = probe.description().pixelFormat().bitCount();
  std::uint32_t pel = 0;
  if (bits == 8 || bits == 16 || bits == 24 || bits == 32)
    std::memcpy(&pel, probe.description().surface(), bits / 8);
  static_cast<void>(probe.unlock());
  return pel;
}

long ccWin32UIScope::enableOverlayPlane(bool enable, ccPair<long> size)
{
  if (parent_)
    return parent_->enableOverlayPlane(enable, size);
  overlayPlane_ = enable;
  if (!enable) {
    releaseUnused_();
    return ceDDOk;
  }
  if (!combined_.created() && createSurface_(combined_, size, -1, false) != ceDDOk) {
    overlayPlane_ = false;
    return ceDDOk;
  }
  overlayPlaneColorKey_();
  return ceDDOk;
}

void ccWin32UIScope::overlayPlaneColorKey_()
{
  if (!drawing_.created())
    return;
  ccColor const pass = ccColor::passColor();
  switch (depthCode_(drawing_.description().pixelFormat())) {
  case 8: colorKey_ = ccDirectDrawColorKey(pass.index()); break;
  case 15: colorKey_ = ccDirectDrawColorKey(pass.rgb15()); break;
  case 16: colorKey_ = ccDirectDrawColorKey(pass.rgb16()); break;
  case 24:
  case 32: colorKey_ = ccDirectDrawColorKey(static_cast<std::uint32_t>(pass.bgr())); break;
  default: break;
  }
  static_cast<void>(drawing_.colorKey(colorKey_, ceKeySourceBlt));
}

ccDirectDrawSurface* ccWin32UIScope::displayedSurface_()
{
  ccWin32UIScope& root = root_();
  if (root.chromaKeyingEnabled()) {
    if ((root.chromaFlags_ & kOverlay) == 0)
      return &root.combined_;
    return (root.chromaFlags_ & (kOverlayUYVY | kOverlayYUY2)) != 0 ? &root.graphics_ : &root.drawing_;
  }
  ccDirectDrawSurface* const target = root.partnerScope_ ? root.combineTarget_() : nullptr;
  return target ? target : &root.drawing_;
}
