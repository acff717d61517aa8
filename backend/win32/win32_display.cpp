// The display and its window: binding, layout, painting.
#include "backend/win32/win32_display.h"

#include "backend/win32/display_list.h"
#include "backend/win32/win32_root.h"
#include "canvas/ui_error.h"
#include "foundation/exception_impl.h"
#include "platform/objects.h"
#include "platform/window.h"
#include "ui/core/event_processor.h"

#include <algorithm>

KRS_DEFINE_EXCEPTION(ccWin32Display::OverlayLayerNotEnabled, ccException, 0x10004512)

namespace {

constexpr double kNoCachedValue = -2147483647.0;  // 0x80000001

}  // namespace

ccMutex& ccWin32Display::listMutex()
{
  static ccMutex* const mutex = new ccMutex(cc_LockRank::displayList);  // needed until the last window is gone, whenever that is
  return *mutex;
}

// ---- The lists of the process ----

std::vector<cs_SubclassEntry>& cf_subclassList()
{
  static auto* const list = new std::vector<cs_SubclassEntry>;
  return *list;
}

std::vector<cs_ParentEntry>& cf_parentList()
{
  static auto* const list = new std::vector<cs_ParentEntry>;
  return *list;
}

ccWin32Display* ccWin32Display::subclassingDisplay(HWND window)
{
  ccLock lock(listMutex());
  for (cs_SubclassEntry const& entry : cf_subclassList())
    if (entry.window == window)
      return entry.display;
  return nullptr;
}

// ---- Construction ----

// The root is made first and found through the parent, its ground plane.
ccWin32Display::ccWin32Display(HWND w)
    : ccDisplay((new ccUIWin32Root)->groundPlane(), ccUIRect(0, 0, 1, 1)),
      win32Root_(static_cast<ccUIWin32Root*>(root())), imageScope_(nullptr, ccPair<long>(1, 1), false, this),
      cachedScroll_{kNoCachedValue, kNoCachedValue}, cachedRange_{kNoCachedValue, kNoCachedValue}
{
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

ccWin32Display::~ccWin32Display()
{
  window(nullptr);
  setScope(imageLayer, nullptr, false);
  // The display goes on as an orphan; its base classes need no root.
  delete win32Root_;
}

void ccWin32Display::redrawAll_(void* display)
{
  auto* const self = static_cast<ccWin32Display*>(display);
  ccLock lock(self->rootMutex());
  // Of the whole tree: the pels of forms in front are lost too.
  if (self->win32Root_)
    self->win32Root_->fullDraw(bothLayers);
}

// ---- Binding ----

void ccWin32Display::leaveWindow_()
{
  plat::WindowSystem& windows = plat::platform().windows;
  stopRepeat_();
  restoreParent_();
  if (windows.isWindow(window_))
    windows.subclass(window_, formerProc_);
  std::erase_if(cf_subclassList(), [this](cs_SubclassEntry const& e) { return e.display == this; });
  if (overlayScope_)
    overlayScopeOff_();
  win32Root_->window(nullptr);
  setScope(imageLayer, nullptr, false);
  imageScope_.destroy();
  window_ = nullptr;
  formerProc_ = nullptr;
}

void ccWin32Display::window(HWND w)
{
  ccLock list(listMutex());
  ccLock lock(rootMutex());
  if (w == window_)
    return;
  if (window_)
    leaveWindow_();
  plat::WindowSystem& windows = plat::platform().windows;
  if (!w || !windows.isWindow(w))
    return;
  window_ = w;
  formerProc_ = windows.subclass(w, &ccWin32Display::windowProc);
  cf_subclassList().push_back({w, this});
  plat::Rect const client = windows.clientRect(w);
  ccPair<long> const size(std::max(client.width(), 1), std::max(client.height(), 1));
  imageScope_.create(w, size, -1);
  win32Root_->overlayColorMap(imageScope_.cacheColorMap());
  win32Root_->imageScope(&imageScope_);
  lockScreenUpdatesPush(true, bothLayers);
  setScope(imageLayer, &imageScope_, false);
  layOut_(imageScope_.size());
  fullDraw(bothLayers);
  win32Root_->globalUpdate();
  lockScreenUpdatesPop(bothLayers);
  showBars_(false, false);
  updatePanRanges();
  showBars_(horzScrollBar_, vertScrollBar_);
  win32Root_->window(w);
  win32Root_->realizePalette();
  updateCacheMap();
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
  ccLock list(listMutex());
  plat::WindowSystem& windows = plat::platform().windows;
  HWND const parent = windows.parent(w);
  if (!parent || parent == windows.desktop())
    return;
  auto& parents = cf_parentList();
  auto const found =
      std::find_if(parents.begin(), parents.end(), [parent](cs_ParentEntry const& e) { return e.window == parent; });
  if (found != parents.end())
    ++found->uses;
  else
    parents.push_back({parent, windows.subclass(parent, &ccWin32Display::windowProc), 1});
  subclassedParents_.push_back(parent);
  subclassParent(parent);
}

void ccWin32Display::restoreParent_()
{
  ccLock list(listMutex());
  auto& parents = cf_parentList();
  for (HWND const parent : subclassedParents_) {
    auto const found =
        std::find_if(parents.begin(), parents.end(), [parent](cs_ParentEntry const& e) { return e.window == parent; });
    if (found == parents.end() || --found->uses > 0)
      continue;
    if (plat::platform().windows.isWindow(parent))
      plat::platform().windows.subclass(parent, found->former);
    parents.erase(found);
  }
  subclassedParents_.clear();
}

// ---- Scroll bars ----

void ccWin32Display::showBars_(bool horz, bool vert)
{
  if (!window_)
    return;
  plat::WindowSystem& windows = plat::platform().windows;
  windows.showScrollBar(window_, 0, horz);
  windows.showScrollBar(window_, 1, vert);
}

void ccWin32Display::showScrollBar(bool horz, bool vert)
{
  horzScrollBar_ = horz;
  vertScrollBar_ = vert;
  showBars_(horz, vert);
  ccLock lock(rootMutex());
  std::fill_n(cachedScroll_, 2, kNoCachedValue);
  std::fill_n(cachedRange_, 2, kNoCachedValue);
  updatePanRanges();
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
    info.mask = 28 | 9;  // range and position; a bar without a way to go is disabled, not hidden
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
  long const code = imageScope_.restoreAll(report);
  return code == 0 && overlayScope_ ? overlayScope_->restoreAll(report) : code;
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
