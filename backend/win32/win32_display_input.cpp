// Window messages: what each becomes.
#include "backend/win32/display_alive.h"
#include "backend/win32/win32_root.h"
#include "platform/messages.h"
#include "platform/objects.h"
#include "platform/paint.h"
#include "platform/window.h"
#include "ui/core/event_processor.h"
#include "ui/display/display_hold.h"

#include <algorithm>
#include <utility>

namespace {

namespace msg = plat::msg;

// The held left button repeats first after a second, then twice a second.
constexpr std::uintptr_t kFirstRepeatTimer = 500, kNextRepeatTimer = 501;
constexpr unsigned kFirstRepeatMs = 1000, kNextRepeatMs = 500;
constexpr long kRepeatTolerance = 2;  // a move by so many pels on either axis ends it

constexpr unsigned kFirstModeCommand = 40502, kLastModeCommand = 40505, kFitCommand = 40506, kMagOneCommand = 40507,
                   kGridCommand = 40510, kSubpixelGridCommand = 40511;

long cf_lowWord(std::intptr_t v) { return static_cast<std::int16_t>(static_cast<std::uint16_t>(v & 0xFFFF)); }
long cf_highWord(std::intptr_t v) { return static_cast<std::int16_t>(static_cast<std::uint16_t>((v >> 16) & 0xFFFF)); }

struct cs_MouseRow {
  unsigned message;
  ccMouseEvent::Event event;
  int button;
};

constexpr cs_MouseRow kMouse[] = {
    {msg::mouseMove, ccMouseEvent::mouseMoved, 0},
    {msg::leftDown, ccMouseEvent::mousePressed, ccMouseEvent::leftButton},
    {msg::leftUp, ccMouseEvent::mouseReleased, ccMouseEvent::leftButton},
    {msg::leftDouble, ccMouseEvent::mouseDblClicked, ccMouseEvent::leftButton},
    {msg::rightDown, ccMouseEvent::mousePressed, ccMouseEvent::rightButton},
    {msg::rightUp, ccMouseEvent::mouseReleased, ccMouseEvent::rightButton},
    {msg::rightDouble, ccMouseEvent::mouseDblClicked, ccMouseEvent::rightButton},
    {msg::middleDown, ccMouseEvent::mousePressed, ccMouseEvent::middleButton},
    {msg::middleUp, ccMouseEvent::mouseReleased, ccMouseEvent::middleButton},
    {msg::middleDouble, ccMouseEvent::mouseDblClicked, ccMouseEvent::middleButton},
    {msg::captureChanged, ccMouseEvent::mouseReleased, ccMouseEvent::leftButton},
};

}  // namespace

using cc_DisplayList::Visit;

namespace {

thread_local Visit* currentVisit = nullptr;  // of the message that is being handled

}  // namespace

std::intptr_t ccWin32Display::windowProc(HWND window, unsigned message, std::uintptr_t wParam, std::intptr_t lParam)
{
  Visit visit(window, cc_DisplayList::kNewest);
  if (visit.display())
    return visit.display()->windowProc_(visit, window, message, wParam, lParam);
  return parentProc_(window, message, wParam, lParam);
}

// A parent of a chroma-keyed display: the picture beneath it may have changed.
std::intptr_t ccWin32Display::parentProc_(HWND window, unsigned message, std::uintptr_t wParam, std::intptr_t lParam)
{
  plat::MessageProc const former = cc_DisplayList::former(window);
  if (former && (message == msg::move || message == msg::queryNewPalette || message == msg::paletteChanged))
    for (cc_DisplayList::Place const place : cc_DisplayList::all()) {
      Visit visit(place);
      ccWin32Display* const display = visit.display();
      if (!display)
        continue;
      {
        ccLock lock(display->rootMutex());
        if (!display->chromaKeyingEnabled())
          continue;
        if (message == msg::move) {
          display->imageScope_.updateScreen();
          continue;
        }
      }
      display->windowProc_(visit, display->window_, message, wParam, lParam);
    }
  return former ? plat::platform().windows.callProc(former, window, message, wParam, lParam) : 0;
}

// What the display has not handled goes to the one before it on the window, and from the first to the application. The
// display is left before that: it may take long, and on the way nothing touches it.
std::intptr_t ccWin32Display::windowProc_(Visit& visit, HWND window, unsigned message, std::uintptr_t wParam,
                                          std::intptr_t lParam)
{
  plat::MessageProc const former = cc_DisplayList::former(window);
  cc_DisplayList::Place const place = visit.place();
  auto const passOn = [&]() -> std::intptr_t {
    visit.leave();
    Visit next(window, place);
    if (next.display())
      return next.display()->windowProc_(next, window, message, wParam, lParam);
    return former ? plat::platform().windows.callProc(former, window, message, wParam, lParam) : 0;
  };
  switch (message) {
  case msg::destroy:
    passOn();
    if (visit.again())
      this->window(nullptr);
    return 0;
  case msg::eraseBackground:
    return chromaKeyingEnabled() ? passOn() : 1;
  case msg::setCursor:
    if (root())
      root()->cursor(root()->cursor());
    return 1;
  case msg::initPopup:
    return 0;
  case msg::paletteChanged:
    if (wParam == reinterpret_cast<std::uintptr_t>(window))
      return passOn();
    [[fallthrough]];
  case msg::queryNewPalette:
    paletteMessage_();
    return 1;
  default:
    return handle_(visit, message, wParam, lParam) ? 0 : passOn();
  }
}

bool ccWin32Display::handle_(Visit& visit, unsigned message, std::uintptr_t wParam, std::intptr_t lParam)
{
  // Hooks run inside an event and may delete the display or take it off its window.
  struct cs_Current {
    Visit* former;
    explicit cs_Current(Visit& visit) : former(std::exchange(currentVisit, &visit)) {}
    ~cs_Current() { currentVisit = former; }
  } const current(visit);
  switch (message) {
  case msg::keyDown:
  case msg::keyUp:
  case msg::character:
    return processKeyboardMsg(message, wParam, lParam);
  case msg::move:
  case msg::size:
  case msg::paint:
  case msg::minMaxInfo:
    return processWndUpdateMsg(message, wParam, lParam);
  case msg::command:
    return processCommandMsg(static_cast<unsigned>(wParam & 0xFFFF));
  case msg::timer:
    return processTimerMsg(wParam);
  case msg::hScroll:
  case msg::vScroll:
    return processScrollMsg(message, wParam, lParam);
  default:
    return ((message >= msg::mouseMove && message <= msg::middleDouble) || message == msg::captureChanged) &&
           processMouseMsg(message, wParam, lParam);
  }
}

void ccWin32Display::paletteMessage_()
{
  ccLock lock(rootMutex());
  if (!win32Root_->realizePalette())
    return;
  cc_Alive const alive(*this);
  updateCacheMap();
  cc_ScreenLock const hold(this);
  redraw(bothLayers);
  if (alive)
    updateDisplay(bothLayers);
}

// ---- Mouse ----

void ccWin32Display::startRepeat_(ccPair<long> const& at)
{
  timerId_ = kFirstRepeatTimer;
  plat::platform().windows.setTimer(window_, timerId_, kFirstRepeatMs);
  pressPos_ = at;
}

void ccWin32Display::stopRepeat_()
{
  std::uintptr_t const id = timerId_.exchange(0);
  if (id != 0)
    plat::platform().windows.killTimer(window_, id);
}

bool ccWin32Display::processMouseMsg(unsigned message, std::uintptr_t wParam, std::intptr_t lParam)
{
  auto const row =
      std::find_if(std::begin(kMouse), std::end(kMouse), [message](cs_MouseRow const& r) { return r.message == message; });
  if (row == std::end(kMouse) || (message == msg::mouseMove && inPopupMenu_))
    return false;
  plat::WindowSystem& windows = plat::platform().windows;
  ccPair<long> scroll;
  {
    ccLock lock(rootMutex());
    scroll = imageScope_.scroll();
  }
  ccPair<long> at(cf_lowWord(lParam) + scroll.x(), cf_highWord(lParam) + scroll.y());
  namespace held = plat::held;
  std::uint32_t buttons = (wParam & held::left ? ccMouseEvent::leftButton : 0) |
                          (wParam & held::middle ? ccMouseEvent::middleButton : 0) |
                          (wParam & held::right ? ccMouseEvent::rightButton : 0);
  std::uint32_t keys = (wParam & held::control ? ccMouseEvent::kControlKey : 0u) |
                       (wParam & held::shift ? ccMouseEvent::kShiftKey : 0u);

  switch (message) {
  case msg::mouseMove:
    if (timerId_ != 0 && (std::abs(at.x() - pressPos_.x()) >= kRepeatTolerance ||
                          std::abs(at.y() - pressPos_.y()) >= kRepeatTolerance))
      stopRepeat_();
    break;
  case msg::leftDown: {
    plat::Rect const client = windows.clientRect(window_);
    plat::Point const ul = windows.clientToScreen(window_, {client.left, client.top});
    plat::Rect const screen{ul.x, ul.y, ul.x + client.width(), ul.y + client.height()};
    windows.clipCursor(&screen);
    windows.setCapture(window_);
    break;
  }
  case msg::captureChanged:
    // Only when another window took the capture; a plain release was ours.
    if (lParam == 0 || lParam == reinterpret_cast<std::intptr_t>(window_.load()))
      return false;
    at = lastPos_;
    buttons = 0;
    keys = 0;
    windows.clipCursor(nullptr);
    stopRepeat_();
    break;
  case msg::leftUp:
    windows.clipCursor(nullptr);
    windows.releaseCapture();
    stopRepeat_();
    break;
  case msg::rightDown:
  case msg::rightUp:
    if (toolsPopupMenu_) {
      lastPos_ = at;
      if (message == msg::rightDown)
        toolsPopup_();
      return false;
    }
    break;
  default:
    break;
  }

  ccMouseEvent event;
  event.event(row->event);
  event.whichButton(static_cast<ccMouseEvent::Button>(row->button));
  event.position(at);
  event.buttons(buttons);
  event.keys(keys);
  cc_DisplayList::Place const place = place_;
  root()->eventProcessor()->processEvent(event);
  if (!cc_DisplayList::has(place))
    return false;
  if (message == msg::leftDown)
    startRepeat_(at);
  lastPos_ = at;
  return false;
}

void ccWin32Display::toolsPopup_()
{
  plat::Platform& platform = plat::platform();
  HMENU const menu = platform.menus.load(plat::menu::console);
  if (!menu)
    return;
  HMENU const tools = platform.menus.sub(menu, plat::menu::toolsPopup);
  cc_AtEnd const destroyed([&platform, menu] { platform.menus.destroy(menu); });
  for (int i = 0; i < platform.menus.count(tools); ++i)
    OnUpdateToolsMenu(tools, platform.menus.itemId(tools, i));
  cc_DisplayList::Place const place = place_;
  Visit* const visit = currentVisit && currentVisit->display() == this ? currentVisit : nullptr;
  inPopupMenu_ = true;
  // While the menu stands the display may be deleted, on another thread too.
  if (visit)
    visit->leave();
  platform.menus.track(tools, platform.windows.cursorPos(), window_);
  bool const alive = visit ? visit->again() : cc_DisplayList::has(place);
  if (alive)
    inPopupMenu_ = false;
}

void ccWin32Display::OnUpdateToolsMenu(HMENU menu, unsigned id)
{
  plat::MenuSystem& menus = plat::platform().menus;
  if (id >= kFirstModeCommand && id <= kLastModeCommand) {
    menus.enable(menu, id, true);
    if (static_cast<unsigned>(mouseMode()) == id - kFirstModeCommand)
      menus.radio(menu, kFirstModeCommand, kLastModeCommand, id);
  } else if (id == kGridCommand) {
    menus.enable(menu, id, true);
    menus.check(menu, id, grid() >= 1);
  } else if (id == kSubpixelGridCommand) {
    menus.enable(menu, id, true);
    menus.check(menu, id, subpixelGrid() >= 2);
  }
}

// ---- Timer, keys, commands, scroll bars ----

bool ccWin32Display::processTimerMsg(std::uintptr_t id)
{
  if (id != kFirstRepeatTimer && id != kNextRepeatTimer)
    return false;
  if (id == kFirstRepeatTimer) {
    stopRepeat_();
    timerId_ = kNextRepeatTimer;
    plat::platform().windows.setTimer(window_, timerId_, kNextRepeatMs);
  }
  ccMouseEvent event;
  event.event(ccMouseEvent::mouseDwell);
  event.whichButton(ccMouseEvent::leftButton);
  event.buttons(ccMouseEvent::leftButton);
  event.position(root()->eventProcessor()->lastMousePos());
  root()->eventProcessor()->processEvent(event);
  return false;
}

bool ccWin32Display::processKeyboardMsg(unsigned message, std::uintptr_t wParam, std::intptr_t lParam)
{
  bool const repeat = (lParam & msg::repeatBit) != 0;
  ccKeyboardEvent event;
  if (message == msg::character) {
    if (repeat)
      return false;
    event.event(ccKeyboardEvent::keyCharacter);
    event.key(static_cast<char>(wParam & 0xFF));
  } else {
    ccKeyboardEvent::VirtualKey const key = ccKeyboardEvent::toVirtualKey(static_cast<long>(wParam & 0xFFFF));
    // On a release the bit tells that the key was down, so it only counts for presses.
    if (key == ccKeyboardEvent::vkNone || (message == msg::keyDown && repeat))
      return false;
    event.event(message == msg::keyDown ? ccKeyboardEvent::keyDown : ccKeyboardEvent::keyUp);
    event.key(key);
  }
  root()->eventProcessor()->processEvent(event);
  return false;
}

bool ccWin32Display::processCommandMsg(unsigned id)
{
  if (id >= kFirstModeCommand && id <= kLastModeCommand)
    mouseMode(static_cast<MouseMode>(id - kFirstModeCommand));
  else if (id == kFitCommand)
    fit();
  else if (id == kMagOneCommand)
    mag(1);
  else if (id == kGridCommand)
    grid(-grid());  // the sign of the stored value is the switch
  else if (id == kSubpixelGridCommand)
    subpixelGrid(-subpixelGrid());
  return false;
}

bool ccWin32Display::processScrollMsg(unsigned message, std::uintptr_t wParam, std::intptr_t)
{
  ccLock lock(rootMutex());
  long const m = mag();
  double const magnification = m == 0 ? 1.0 : m > 0 ? static_cast<double>(m) : 1.0 / static_cast<double>(-m);
  double const height = static_cast<double>(clientArea().y());  // for both axes
  double const small = std::min(height / magnification * 0.02, 5.0), page = height / magnification * 0.25;
  bool const horizontal = message == msg::hScroll;
  ccVector<2> p = pan();
  double& value = horizontal ? p.x() : p.y();
  double const start = horizontal ? minPan().x() : minPan().y(), end = horizontal ? maxPan().x() : maxPan().y();
  switch (wParam & 0xFFFF) {
  case plat::scroll::lineLess:
    value += small;
    break;
  case plat::scroll::lineMore:
    value -= small;
    break;
  case plat::scroll::pageLess:
    value += page;
    break;
  case plat::scroll::pageMore:
    value -= page;
    break;
  case plat::scroll::thumbPosition:
  case plat::scroll::thumbTrack:
    value = end - static_cast<double>((wParam >> 16) & 0xFFFF);
    break;
  case plat::scroll::toStart:
    value = end;
    break;
  case plat::scroll::toEnd:
    value = start;
    break;
  default:
    return false;
  }
  pan(p);
  return false;
}

// ---- Painting and size ----

bool ccWin32Display::processWndUpdateMsg(unsigned message, std::uintptr_t, std::intptr_t lParam)
{
  ccLock lock(rootMutex());
  plat::WindowSystem& windows = plat::platform().windows;
  if (message == msg::move) {
    if (chromaKeyingEnabled())
      imageScope_.updateScreen();
  } else if (message == msg::size) {
    ccPair<long> const size(lParam & 0xFFFF, (lParam >> 16) & 0xFFFF);
    if (size.x() <= 0 || size.y() <= 0)
      return false;
    sizeMessage_(size);
  } else if (message == msg::paint) {
    plat::Rect const r = windows.updateRect(window_);
    if (!chromaKeyingEnabled())
      windows.validate(window_, nullptr);
    if (r.empty())
      return false;
    ccUIRect const updated = ccUIRect::fromEdges(r.left, r.top, r.right, r.bottom);
    cc_Alive const alive(*this);
    imageScope_.invalidateScreen(updated + imageScope_.scroll());
    imageScope_.updateScreen();
    if (alive)
      paintMargins_(updated);
  }
  return false;
}

void ccWin32Display::sizeMessage_(ccPair<long> const& size)
{
  std::fill_n(cachedScroll_, 2, -2147483647.0);
  std::fill_n(cachedRange_, 2, -2147483647.0);
  cc_Alive const alive(*this);
  cc_ScreenLock const hold(this);
  cc_DrawingOff drawing(*this);
  if (overlayScope_) {
    overlayScope_->releaseCombinedSurface();
    imageScope_.releaseDrawingSurface();
    overlayScope_->releaseDrawingSurface();
    overlayScope_->resizeCombinedSurface(size);
    imageScope_.resizeDrawingSurface(size);
    overlayScope_->resizeDrawingSurface(size);
    setScope(overlayLayer, overlayScope_, false);
  } else
    imageScope_.resize(size, -1);
  // What a smaller screen leaves open is black from now on.
  ccPair<long> const covered = imageScope_.size();
  if (covered.x() < size.x() || covered.y() < size.y())
    repaintSoon_(window_);
  setScope(imageLayer, &imageScope_, false);
  layOut_(covered);
  drawing.end(/*redraw=*/true);
  if (alive)
    win32Root_->globalUpdate();
}

// Black on what the scope doesn't reach.
void ccWin32Display::paintMargins_(ccUIRect const& updated)
{
  ccUIRect const covered(-imageScope_.scroll(), imageScope_.size());
  if (covered.contains(updated))
    return;
  plat::WindowSystem& windows = plat::platform().windows;
  HWND const window = window_;
  HDC const dc = windows.getDC(window);
  cc_AtEnd const released([&windows, window, dc] { windows.releaseDC(window, dc); });
  plat::Painter* const painter = plat::painter(dc);
  auto const fill = [&](long left, long top, long right, long bottom) {
    ccUIRect const part = ccUIRect::fromEdges(left, top, right, bottom) & updated;
    if (painter && !part.isNull())
      painter->fillRect({static_cast<plat::i32>(part.left()), static_cast<plat::i32>(part.top()),
                         static_cast<plat::i32>(part.right()), static_cast<plat::i32>(part.bottom())},
                        0);
  };
  long const far = ccUIRect::kFar;
  fill(-far, -far, covered.left(), far);
  fill(-far, -far, far, covered.top());
  fill(covered.right(), -far, far, far);
  fill(-far, covered.bottom(), far, far);
}
