// The display and its window: binding, layout, painting.
#include "backend/win32/win32_display.h"

#include "backend/win32/display_alive.h"
#include "backend/win32/win32_root.h"
#include "canvas/ui_error.h"
#include "foundation/exception_impl.h"
#include "platform/messages.h"
#include "platform/objects.h"
#include "platform/window.h"
#include "ui/core/event_processor.h"

#include <algorithm>

KRS_DEFINE_EXCEPTION(ccWin32Display::OverlayLayerNotEnabled, ccException)

namespace {

constexpr double kNoCachedValue = -2147483647.0;  // 0x80000001

}  // namespace

ccMutex& ccWin32Display::listMutex()
{
  static ccMutex* const mutex = new ccMutex(cc_LockRank::displayList);  // needed until the last window is gone, whenever that is
  return *mutex;
}

// ---- Construction ----

cc_Win32RootOwner::cc_Win32RootOwner() : ownRoot_(std::make_unique<ccUIWin32Root>()) {}
cc_Win32RootOwner::~cc_Win32RootOwner() = default;

// The root is made first and found through the parent, its ground plane.
ccWin32Display::ccWin32Display(HWND w)
    : ccDisplay(ownRoot_->groundPlane(), ccUIRect(0, 0, 1, 1)), win32Root_(ownRoot_.get()),
      ownImageScope_(new ccWin32UIScope(nullptr, ccPair<long>(1, 1), false, this)), imageScope_(*ownImageScope_),
      cachedScroll_{kNoCachedValue, kNoCachedValue}, cachedRange_{kNoCachedValue, kNoCachedValue}
{
  cc_OnThrow const undo([this] { end_(); });
  autoDelete(false);
  condVisible(true);
  mouseMode(pointerMode);
  imageScope_.redrawCallBack(&ccWin32Display::redrawAll_, this);
  win32Root_->imageScope(&imageScope_);
  if (w)
    window(w);
  colorMap(colorMap(), 10);
  colorMapEx(std::vector<ccRGB>(ccDisplay::colorMapEx()));
}

ccWin32Display::~ccWin32Display() { end_(); }

// No new message finds the display from here on, and those that have found it end first.
void ccWin32Display::end_()
{
  std::uint64_t place;
  {
    ccLock lock(rootMutex(), /*lockNow=*/false);
    lock.lockFirm();
    place = place_;
  }
  if (place != 0)
    cc_DisplayList::remove(place);
  cc_DisplayList::waitUntilLeft(this, place != 0 && !plat::platform().windows.onOwnThread(window_));
  {
    ccLock lock(rootMutex(), /*lockNow=*/false);
    lock.lockFirm();
    imageScope_.redrawCallBack(nullptr, nullptr);
    if (overlayScope_)
      overlayScope_->redrawCallBack(nullptr, nullptr);
    if (window_)
      leaveWindow_();
    setScope(imageLayer, nullptr, false);
  }
  // The display goes on as an orphan; its base classes need no root.
  win32Root_ = nullptr;
  ownRoot_.reset();
}

void ccWin32Display::redrawAll_(void* display)
{
  auto* const self = static_cast<ccWin32Display*>(display);
  ccLock lock(self->rootMutex());
  // Of the whole tree: the pels of forms in front are lost too.
  if (!self->win32Root_)
    return;
  cc_Alive const alive(*self);
  self->win32Root_->fullDraw(bothLayers);
  // Surfaces on a smaller screen leave more of the window open.
  if (alive && self->window_)
    repaintSoon_(self->window_);
}

// ---- Binding ----

// In turn, as a paint message that is under way ends with the window's own answer, which takes the window for painted.
void ccWin32Display::repaintSoon_(HWND w)
{
  plat::WindowSystem& windows = plat::platform().windows;
  try {
    windows.post(w, [&windows, w] { windows.invalidate(w, nullptr, false); });
  } catch (...) {
    windows.invalidate(w, nullptr, false);
  }
}

void ccWin32Display::leaveWindow_()
{
  stopRepeat_();
  restoreParent_();
  cc_DisplayList::remove(place_);
  if (root())
    root()->eventProcessor()->windowGone();
  overlayAnew_ |= overlayScope_ != nullptr;
  if (overlayScope_)
    overlayScopeOff_();
  win32Root_->window(nullptr);
  setScope(imageLayer, nullptr, false);
  imageScope_.destroy();
  HWND const left = window_.exchange(nullptr);
  place_ = 0;
  // Another display on it shows again.
  if (cc_DisplayList::former(left))
    repaintSoon_(left);
}

void ccWin32Display::window(HWND w)
{
  ccLock lock(rootMutex());
  if (w == window_)
    return;
  cc_Alive const alive(*this);
  if (window_)
    leaveWindow_();
  // The release that would end a drag of the image came to the former window, if at all.
  if (alive.stands())
    endLostPan_();
  if (!alive.stands() || !w || !plat::platform().windows.isWindow(w))
    return;
  // A window that could not be entered is left again, so that no procedure is left with nothing behind it.
  cc_OnThrow const undo([this, &alive] {
    if (alive.stands())
      leaveWindow_();
  });
  enterWindow_(w);
}

void ccWin32Display::enterWindow_(HWND w)
{
  plat::WindowSystem& windows = plat::platform().windows;
  window_ = w;
  place_ = cc_DisplayList::add(w, &ccWin32Display::windowProc, this);
  cc_Alive const alive(*this);
  plat::Rect const client = windows.clientRect(w);
  ccPair<long> const size(std::max(client.width(), 1), std::max(client.height(), 1));
  imageScope_.create(w, size, -1);
  win32Root_->overlayColorMap(imageScope_.cacheColorMap());
  win32Root_->imageScope(&imageScope_);
  {
    cc_ScreenLock const hold(this);
    setScope(imageLayer, &imageScope_, false);
    layOut_(imageScope_.size());
    if (alive)
      fullDraw(bothLayers);
    if (alive)
      win32Root_->globalUpdate();
  }
  if (!alive)
    return;
  if (chromaKeyingEnabled())
    subclassParent_();
  if (overlayAnew_)
    overlayScopeOn_();
  if (!alive)
    return;
  showBars_(false, false);
  if (alive)
    updatePanRanges();
  if (alive)
    showBars_(horzScrollBar_, vertScrollBar_);
  if (!alive)
    return;
  win32Root_->window(w);
  win32Root_->realizePalette();
  updateCacheMap();
  // What the scope doesn't reach may still show what stood there before.
  repaintSoon_(w);
}

void ccWin32Display::layOut_(ccPair<long> const& size)
{
  ccUIRect const whole(ccPair<long>(0, 0), size);
  win32Root_->scopeRect(whole);
  scopeRect(whole);
}

// ---- Parents, while chroma keying shows through the window ----

void ccWin32Display::subclassParent_()
{
  if (window_)
    subclassParent(window_);
}

void ccWin32Display::subclassParent(HWND w)
{
  plat::WindowSystem& windows = plat::platform().windows;
  HWND const parent = windows.parent(w);
  if (!parent || parent == windows.desktop())
    return;
  subclassedParents_.reserve(subclassedParents_.size() + 1);
  cc_DisplayList::addParent(parent, &ccWin32Display::windowProc);
  subclassedParents_.push_back(parent);
  subclassParent(parent);
}

void ccWin32Display::restoreParent_()
{
  for (HWND const parent : subclassedParents_)
    cc_DisplayList::removeParent(parent);
  subclassedParents_.clear();
}

// ---- Scroll bars ----

void ccWin32Display::showBars_(bool horz, bool vert)
{
  if (!window_)
    return;
  plat::WindowSystem& windows = plat::platform().windows;
  cc_Alive const alive(*this);
  windows.showScrollBar(window_, plat::bar::horizontal, horz);  // which may resize the window, and hooks of that end the display
  if (alive)
    windows.showScrollBar(window_, plat::bar::vertical, vert);
}

void ccWin32Display::showScrollBar(bool horz, bool vert)
{
  horzScrollBar_ = horz;
  vertScrollBar_ = vert;
  cc_Alive const alive(*this);
  showBars_(horz, vert);
  if (!alive.stands())
    return;
  ccLock lock(rootMutex());
  std::fill_n(cachedScroll_, 2, kNoCachedValue);
  std::fill_n(cachedRange_, 2, kNoCachedValue);
  updatePanRanges();
  if (alive.stands())
    updateScrollPos_();
}

void ccWin32Display::updateScrollPos_()
{
  ccVector<2> const p = pan();
  double const values[2] = {maxPan().x() - p.x(), maxPan().y() - p.y()};
  for (int bar = 0; bar < 2; ++bar)
    if (window_ && std::abs(values[bar] - cachedScroll_[bar]) > 1e-15) {
      cachedScroll_[bar] = values[bar];
      plat::platform().windows.setScrollPos(window_, bar, static_cast<plat::i32>(cfTruncToLong(values[bar])), true);
    }
}

void ccWin32Display::panChanged()
{
  ccDisplay::panChanged();
  updateScrollPos_();
}

void ccWin32Display::updatePanRanges()
{
  ccDisplay::updatePanRanges();
  plat::WindowSystem& windows = plat::platform().windows;
  if (!window_ || !windows.onOwnThread(window_))
    return;
  double const extents[2] = {maxPan().x() - minPan().x(), maxPan().y() - minPan().y()};
  ccVector<2> const p = pan();
  double const values[2] = {maxPan().x() - p.x(), maxPan().y() - p.y()};
  bool const shown[2] = {horzScrollBar_, vertScrollBar_};
  for (int bar = 0; bar < 2; ++bar) {
    if (!shown[bar] || extents[bar] == cachedRange_[bar])
      continue;
    cachedRange_[bar] = extents[bar];
    plat::ScrollInfo info;
    info.mask = plat::scroll::range | plat::scroll::position | plat::scroll::trackPosition |
                plat::scroll::disableUnneeded;  // a bar without a way to go is not hidden
    info.max = static_cast<plat::i32>(cfTruncToLong(extents[bar]));
    info.pos = static_cast<plat::i32>(cfTruncToLong(values[bar]));
    windows.setScrollInfo(window_, bar, info, true);
  }
}

void ccWin32Display::dragAnimate_(ccPair<long> const& from, ccPair<long> const& to)
{
  ccDisplay::dragAnimate_(from, to);
  updateScrollPos_();
}

// ---- Small accessors ----

void ccWin32Display::fontTable(std::vector<HFONT> const& fonts)
{
  ccLock lock(rootMutex());
  imageScope_.fontTable(fonts);
  if (overlayScope_)
    overlayScope_->fontTable(fonts);
}

HDC ccWin32Display::getDC()
{
  ccLock lock(rootMutex());
  return imageScope_.getDC();
}

long ccWin32Display::releaseDC(HDC dc)
{
  ccLock lock(rootMutex());
  return imageScope_.releaseDC(dc);
}

long ccWin32Display::restore(std::string* report)
{
  ccLock lock(rootMutex());
  long code = imageScope_.restoreAll(report);
  if (code == 0 && overlayScope_)
    code = overlayScope_->restoreAll(report);
  if (!window_)
    return code;
  // The surfaces are empty, and of another size where the screen has become smaller.
  cc_Alive const alive(*this);
  cc_ScreenLock const hold(this);
  setScope(imageLayer, &imageScope_, false);
  if (overlayScope_)
    setScope(overlayLayer, overlayScope_, false);
  layOut_(imageScope_.size());
  if (alive)
    win32Root_->fullDraw(bothLayers);
  if (alive)
    win32Root_->globalUpdate();
  if (alive)
    repaintSoon_(window_);
  return code;
}

long ccWin32Display::chromaKey(unsigned long colorref)
{
  ccLock lock(rootMutex());
  return imageScope_.chromaKey(colorref);
}

ccKeyboardEvent::VirtualKey ccWin32Display::panKey() const { return root()->eventProcessor()->panKey(); }
void ccWin32Display::panKey(ccKeyboardEvent::VirtualKey k) { root()->eventProcessor()->panKey(k); }
ccKeyboardEvent::VirtualKey ccWin32Display::multiSelectKey() const { return root()->eventProcessor()->multiSelectKey(); }
void ccWin32Display::multiSelectKey(ccKeyboardEvent::VirtualKey k) { root()->eventProcessor()->multiSelectKey(k); }

bool ccWin32Display::hasImage() { return ccDisplay::hasImage() || isLiveEnabled(); }
ccPair<long> ccWin32Display::imageOffset() { return ccDisplay::imageOffset(); }

ccPair<long> ccWin32Display::imageSize()
{
  ccPair<long> const size = ccDisplay::imageSize();
  return size == ccPair<long>(0, 0) && isLiveEnabled() ? imageScope_.sizeImageCache() : size;
}

bool ccWin32Display::isLiveEnabled() { return imageScope_.isLiveEnabled(); }
double ccWin32Display::liveFrameRate() { return imageScope_.liveFrameRate(); }
unsigned char ccWin32Display::liveStatus() { return imageScope_.liveStatus(); }

void ccWin32Display::waitForVerticalBlank(bool on)
{
  ccLock lock(rootMutex());
  imageScope_.waitForVerticalBlank(on);
  if (overlayScope_)
    overlayScope_->waitForVerticalBlank(on);
}

// Picks need shapes that can be edited.
std::int64_t ccWin32Display::selectAreaStart(CoordinateSystem, ccPelRect const&, ccColor const&)
{
  throw ccUIError::NotImplemented();
}
ccPelRect ccWin32Display::selectAreaEnd(std::int64_t) { throw ccUIError::NotImplemented(); }
ccPelRect ccWin32Display::selectArea(CoordinateSystem, ccPelRect const&, char const*, ccColor const&)
{
  throw ccUIError::NotImplemented();
}
std::int64_t ccWin32Display::selectPointStart(CoordinateSystem, ccPair<double> const&, ccColor const&)
{
  throw ccUIError::NotImplemented();
}
ccPair<double> ccWin32Display::selectPointEnd(std::int64_t) { throw ccUIError::NotImplemented(); }
ccPair<double> ccWin32Display::selectPoint(CoordinateSystem, ccPair<double> const&, char const*, ccColor const&)
{
  throw ccUIError::NotImplemented();
}
