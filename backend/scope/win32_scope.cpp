// Life of a scope: window, size, partner, children, colour maps, palette, the client's device context.
#include "backend/scope/win32_scope.h"

#include "canvas/image_converter.h"
#include "platform/objects.h"
#include "platform/paint.h"
#include "platform/window.h"

#include <algorithm>
#include <mutex>
#include <sstream>

ccWin32UIScope::ccWin32UIScope(HWND window, ccPair<long> const& size, bool overlayPlane, ccWin32Display* display)
    : ccUIScope(ccPair<long>()), overlayPlane_(overlayPlane), display_(display)
{
  if (!overlayPlane)
    converter_ = std::make_unique<ccImageConverter>();
  if (window)
    static_cast<void>(create(window, size, -1));
}

ccWin32UIScope::ccWin32UIScope(ccWin32UIScope const& parent, ccUIRect const& rect)
    : ccUIScope(ccPair<long>()), overlayPlane_(parent.overlayPlane_), display_(parent.display_)
{
  if (overlayPlane_) {
    colorKey_ = parent.root_().colorKey_;
  } else {
    converter_ = std::make_unique<ccImageConverter>();
  }
  colorCacheMap_.set(parent.cacheMap());
  ccUIScope::move(parent, rect);
  modified(false);
  opaque(false);
}

ccWin32UIScope::~ccWin32UIScope()
{
  setPartner_(nullptr);
  while (!partnerOf_.empty())
    partnerOf_.back()->setPartner_(nullptr);
  leaveRoot_();
  for (ccWin32UIScope* kid : kids_) {
    kid->parent_ = nullptr;
    kid->setRect_(ccUIRect());
    kid->method_ = kNoPhase;
  }
  releaseDevice_();
  if (palette_)
    plat::platform().objects.deletePalette(palette_);
}

// Callers of a redraw are still inside the scope. They are under the mutex of its root, and none is left when the next scope goes
// outside of a redraw.
void ccWin32UIScope::retire(ccWin32UIScope* scope) noexcept
{
  static std::mutex guard;
  static ccWin32UIScope* waiting = nullptr;
  if (!scope)
    return;
  scope->display_ = nullptr;
  scope->redraw_ = nullptr;
  static_cast<void>(scope->destroy());
  bool const inside = scope->redrawing_;
  if (!inside)
    delete scope;
  std::lock_guard const hold(guard);
  for (ccWin32UIScope** at = &waiting; *at;) {
    ccWin32UIScope* const one = *at;
    if (one->redrawing_) {
      at = &one->retired_;
      continue;
    }
    *at = one->retired_;
    delete one;
  }
  if (!inside)
    return;
  scope->retired_ = waiting;
  waiting = scope;
}

void ccWin32UIScope::setRect_(ccUIRect const& r)
{
  rect_ = r.isNull() ? ccUIRect() : r;
  setSize_(rect_.sz());
}

// --- Window and size

long ccWin32UIScope::create(HWND window, ccPair<long> size, long depth)
{
  if (!window)
    return ceDDInvalidObject;
  leaveRoot_();
  releaseDevice_();
  window_ = window;
  wantedDepth_ = depth;
  if (size.x() <= 0 || size.y() <= 0)
    return ceDDInvalidParam;
  long result = ddraw_.create(window);
  if (result != ceDDOk)
    return result;
  attachPalette_();
  ccPair<long> const clamped = clampToScreen_(size);
  setRect_(ccUIRect(ccPair<long>(), clamped));
  result = resize(clamped, depth);
  long const clipped = attachClipper_();
  incomplete_ = clipped != ceDDOk;
  readFormat_();
  deviceGone_ = false;
  return result != ceDDOk ? result : clipped;
}

// Without it nothing is seen of what is presented.
long ccWin32UIScope::attachClipper_()
{
  long result = clipper_.created() ? ceDDOk : clipper_.create(&ddraw_);
  if (result == ceDDOk)
    result = clipper_.window(window_);
  if (result == ceDDOk)
    result = ddraw_.primary().attach(&clipper_);
  return result;
}

long ccWin32UIScope::destroy()
{
  if (parent_) {
    leaveRoot_();
    setRect_(ccUIRect());
    return ceDDOk;
  }
  releaseDevice_();
  setRect_(ccUIRect());
  window_ = nullptr;
  return ceDDOk;
}

// The device goes with all that it made, so nothing of it may be in use.
void ccWin32UIScope::releaseDevice_()
{
  abandonPhase_();
  dropClientDC_();
  if (ddraw_.created())
    static_cast<void>(ddraw_.release());
  deviceGone_ = incomplete_ = false;
  cachedRoot_ = 0;
  cachedHandle_ = nullptr;
}

// The pel value test is as it stands: it asks for system memory, not for a palette mode.
void ccWin32UIScope::attachPalette_()
{
  if (!screen_().surfaceCaps().systemMemory())
    return;
  if (ddPalette_.create(&ddraw_) != ceDDOk)
    return;
  static_cast<void>(ddraw_.primary().attach(&ddPalette_));
  static_cast<void>(setDirectDrawPalette_());
}

// The screen as it is now.
ccDirectDrawSurfaceDesc ccWin32UIScope::screen_() const
{
  ccDirectDrawSurfaceDesc present;
  return ddraw_.displayFormat(present) == ceDDOk ? present : ddraw_.primary().description();
}

ccPair<long> ccWin32UIScope::clampToScreen_(ccPair<long> size) const
{
  ccDirectDrawSurfaceDesc const screen = screen_();
  return ccPair<long>(std::min(size.x(), static_cast<long>(screen.width())),
                      std::min(size.y(), static_cast<long>(screen.height())));
}

long ccWin32UIScope::depthCode_(ccDirectDrawPixelFormat const& format)
{
  constexpr std::uint32_t green555 = 992;
  return format.bitCount() == 16 && format.gBitMask() == green555 ? 15 : static_cast<long>(format.bitCount());
}

long ccWin32UIScope::screenDepth_() const { return depthCode_(screen_().pixelFormat()); }

void ccWin32UIScope::readFormat_()
{
  if (drawing_.created())
    depth_ = depthCode_(drawing_.description().pixelFormat());
}

long ccWin32UIScope::restoreAll(std::string* report)
{
  if (parent_)
    return parent_->restoreAll(report);
  auto const append = [this, report] {
    if (!report)
      return;
    std::ostringstream text;
    dumpInfo(text);
    *report += text.str();
  };
  append();
  // The depth as it was asked for: -1 follows the screen to a new mode.
  long const depth = wantedDepth_;
  ccPair<long> const size = rect_.sz();
  HWND const window = window_;
  releaseDevice_();
  setRect_(ccUIRect());
  window_ = nullptr;
  long const result = create(window, size, depth);
  if (result != ceDDOk) {
    // Window and size are kept, for a later attempt would have nothing to go by otherwise.
    releaseDevice_();
    window_ = window;
    setRect_(ccUIRect(ccPair<long>(), size));
    deviceGone_ = window != nullptr;
  }
  append();
  return result;
}

long ccWin32UIScope::desktopDepth() const
{
  return root_().ddraw_.created() ? root_().depth_ : plat::platform().windows.desktopDepth();
}

void ccWin32UIScope::dumpInfo(std::ostringstream& out) const
{
  if (parent_)
    return parent_->dumpInfo(out);
  auto const yesNo = [](bool yes) { return yes ? "Yes" : "No"; };
  std::string const stars(58, '*');
  out << stars << '\n' << "DirectDraw object created:\t\t" << yesNo(ddraw_.created()) << '\n';
  if (ddraw_.created()) {
    ccDirectDrawCaps hardware, emulation;
    static_cast<void>(const_cast<ccDirectDraw&>(ddraw_).caps(hardware, emulation));
    out << "DirectDraw Test Cooperative Level:\t" << ccDirectDraw::errorCodeToString(ddraw_.testCooperativeLevel())
        << '\n'
        << "Total video memory:\t\t\t" << hardware.videoMemory() / 1024 << " KB\n"
        << "Free video memory:\t\t\t" << hardware.videoMemoryFree() / 1024 << " KB\n";
  }
  out << '\n';
  struct {
    char const* head;
    ccDirectDrawSurface const& surface;
  } const groups[] = {{"Primary surface created:\t\t", ddraw_.primary()},
                      {"Drawing surface created:\t\t", drawing_},
                      {"Cache surface created:\t\t\t", cache_},
                      {"Backup surface created:\t\t\t", backup_}};
  for (auto const& g : groups) {
    out << g.head << yesNo(g.surface.created()) << '\n';
    if (g.surface.created()) {
      ccDirectDrawSurfaceDesc const& d = g.surface.description();
      out << "Surface width:\t\t\t\t" << d.width() << '\n'
          << "Surface height:\t\t\t\t" << d.height() << '\n'
          << "Surface depth:\t\t\t\t" << d.pixelFormat().bitCount() << '\n'
          << "Surface pitch:\t\t\t\t" << d.pitch() << '\n'
          << "Video memory:\t\t\t\t" << yesNo(d.surfaceCaps().videoMemory()) << '\n'
          << "Lost:\t\t\t\t\t" << yesNo(g.surface.isLost()) << '\n';
    }
    out << '\n';
  }
  out << stars << "\n\n";
}

// --- Partner and children

long ccWin32UIScope::drawSurface(ccWin32UIScope* other)
{
  if (parent_)
    return parent_->drawSurface(other);
  setPartner_(other ? &other->root_() : nullptr);
  return ceDDOk;
}

void ccWin32UIScope::setPartner_(ccWin32UIScope* other)
{
  if (other == partnerScope_)
    return;
  if (other)
    other->partnerOf_.push_back(this);
  if (partnerScope_)
    std::erase(partnerScope_->partnerOf_, this);
  partnerScope_ = other;
}

void ccWin32UIScope::window(ccUIScope const& parent, ccUIRect const& rect)
{
  if (method_ != kNoPhase)
    win32DrawStop_();
  if (&parent == this) {
    setRect_(rect);
    return;
  }
  leaveRoot_();
  releaseDevice_();
  ccWin32UIScope const* scope = dynamic_cast<ccWin32UIScope const*>(&parent);
  if (!scope || &scope->root_() == this || !(scope->parent_ || scope->ddraw_.created())) {
    setRect_(ccUIRect());
    return;
  }
  // Scopes draw through their root, so the parent is const only by the form of the call.
  setParent_(const_cast<ccWin32UIScope&>(scope->root_()));
  setRect_((rect + scope->rect_.ul()) & scope->rect_);
}

void ccWin32UIScope::setParent_(ccWin32UIScope& root)
{
  root.kids_.push_back(this);
  parent_ = &root;
}

void ccWin32UIScope::leaveRoot_()
{
  if (!parent_)
    return;
  std::vector<ccWin32UIScope*>& kids = parent_->kids_;
  kids.erase(std::remove(kids.begin(), kids.end(), this), kids.end());
  if (parent_->phaseUser_ == this)
    parent_->phaseUser_ = nullptr;
  parent_ = nullptr;
  method_ = kNoPhase;
}

ccUIScope* ccWin32UIScope::createChildScope(ccUIRect const& rect, bool subset)
{
  auto child = std::make_unique<ccWin32UIScope>(nullptr, ccPair<long>(), overlayPlane_, display_);
  if (subset)
    child->ccUIScope::subset(*this, rect);
  else
    child->ccUIScope::move(*this, rect);
  if (overlayPlane_)
    child->colorKey_ = root_().colorKey_;
  return child.release();
}

bool ccWin32UIScope::isNull() const { return rect_.isNull(); }
ccPair<long> ccWin32UIScope::size() const { return rect_.sz(); }

void ccWin32UIScope::scroll(ccPair<long> const& offset)
{
  long const far = ccUIRect::kFar;
  root_().scroll_ = ccPair<long>(std::clamp(offset.x(), -far, far), std::clamp(offset.y(), -far, far));
}

void ccWin32UIScope::redrawCallBack(void (*redraw)(void*), void* argument)
{
  root_().redraw_ = redraw;
  root_().redrawArgument_ = argument;
}

// --- Colour maps and palette

void ccWin32UIScope::colorMap(std::vector<ccRGB> const& map) { root_().colorCacheMap_.set(map, false); }
void ccWin32UIScope::colorMapEx(std::vector<ccRGB> const& map) { root_().imageCacheMap_.set(map, false); }
void ccWin32UIScope::cacheMap(std::vector<ccRGB> const& map) { root_().colorCacheMap_.set(map, true); }
void ccWin32UIScope::cacheMap(std::vector<unsigned char> const& map) { root_().colorCacheMap_.set(map); }
std::vector<unsigned char> ccWin32UIScope::cacheMap() const { return root_().colorCacheMap_.get(); }
std::vector<ccRGB> ccWin32UIScope::cacheColorMap() const { return root_().colorCacheMap_.getColorMap(); }
void ccWin32UIScope::imageCacheMap(std::vector<ccRGB> const& map) { root_().imageCacheMap_.set(map, true); }

long ccWin32UIScope::palette(std::vector<ccRGB> const& entries)
{
  if (parent_)
    return parent_->palette(entries);
  if (entries.size() != 256)
    return ceDDOk;
  plat::PaletteEntry logical[256];
  for (std::size_t i = 0; i < 256; ++i)
    logical[i] = {entries[i].r, entries[i].g, entries[i].b, 0};
  plat::GraphicsObjects& objects = plat::platform().objects;
  HPALETTE const made = objects.createPalette(logical);
  if (palette_)
    objects.deletePalette(palette_);
  palette_ = made;
  return setDirectDrawPalette_();
}

// The system's entries at both ends stay.
long ccWin32UIScope::setDirectDrawPalette_()
{
  if (!ddPalette_.created() || !palette_ || !window_)
    return ceDDInvalidObject;
  constexpr std::uint32_t first = 10, count = 236;
  constexpr unsigned char noCollapse = 4;
  plat::PaletteEntry entries[count] = {};
  for (std::uint32_t i = 0; i < count; ++i) {
    static_cast<void>(plat::platform().objects.entry(palette_, first + i, entries[i]));
    entries[i].flags = noCollapse;
  }
  return ddPalette_.setPalette(entries, first, count);
}

// --- The client's device context

HDC ccWin32UIScope::getDC()
{
  if (parent_)
    return parent_->getDC();
  if (!window_ || clientDC_)
    return clientDC_;
  if (!chromaKeyingEnabled())
    return nullptr;
  if ((chromaFlags_ & kOverlay) != 0)
    clientDC_ = plat::platform().windows.getDC(window_);
  else if (graphics_.getDC(&clientDC_) != ceDDOk)
    clientDC_ = nullptr;
  constexpr unsigned resetAndEnable = 5;
  if (plat::Painter* painter = clientDC_ ? plat::painter(clientDC_) : nullptr)
    painter->setBounds(nullptr, resetAndEnable);
  return clientDC_;
}

long ccWin32UIScope::releaseDC(HDC dc)
{
  if (parent_)
    return parent_->releaseDC(dc);
  if (!dc || dc != clientDC_)
    return ceDDOk;
  if ((chromaFlags_ & kOverlay) != 0) {
    dropClientDC_();
    return ceDDOk;
  }
  if (plat::Painter* painter = plat::painter(dc)) {
    plat::Rect drawn;
    painter->getBounds(drawn, 0);
    invalidateScreen(ccUIRect::fromEdges(drawn.left, drawn.top, drawn.right, drawn.bottom));
  }
  dropClientDC_();
  updateScreen();
  return ceDDOk;
}

void ccWin32UIScope::dropClientDC_()
{
  if (!clientDC_)
    return;
  if ((chromaFlags_ & kOverlay) != 0)
    plat::platform().windows.releaseDC(window_, clientDC_);
  else
    static_cast<void>(graphics_.releaseDC(clientDC_));
  clientDC_ = nullptr;
}
