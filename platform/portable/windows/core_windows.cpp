// Windows: making, showing, moving and ending them, focus and activation, what must be painted.
#include "platform/messages.h"
#include "platform/portable/raster/painter.h"
#include "platform/portable/windows/attempts.h"
#include "platform/portable/windows/core.h"
#include "platform/portable/windows/menus.h"

#include <algorithm>

namespace plat::portable {
namespace {

WParam asParam(HWND window) { return reinterpret_cast<WParam>(window); }
LParam asLParam(HWND window) { return reinterpret_cast<LParam>(window); }

// Two signed 16-bit values in one parameter.
LParam packed(i32 x, i32 y) { return static_cast<LParam>(u32(static_cast<u16>(y)) << 16 | static_cast<u16>(x)); }

}  // namespace

// A hidden window with the default procedure: no procedure of an application and nothing of the video is asked for it.
bool Core::quiet(HWND handle)
{
  Lock lock(mutex_);
  Window const* const w = tree_.find(handle);
  return w && w->proc == &defaultProc && !w->has(style::visible) && !w->video && !w->backing && w->kids.empty() &&
         std::none_of(tree_.tops().begin(), tree_.tops().end(), [&](Window const* t) { return t->owner == handle; });
}

HWND Core::create(WindowDesc const& desc)
{
  if (!onUi() && (desc.proc || (desc.style & style::visible))) {
    HWND made = {};
    callOnUi([&] { made = create(desc); });
    return made;
  }
  HWND handle;
  Rect rect;
  {
    Lock lock(mutex_);
    Window* const parent = (desc.style & style::child) ? tree_.find(desc.parent) : nullptr;
    if ((desc.style & style::child) && (!parent || parent->dying || desc.parent == tree_.desktop()))
      return {};
    std::string title = desc.title;
    Window* const w = tree_.add(parent);
    if (!w)
      return {};
    handle = w->handle;
    w->owner = parent ? HWND{} : desc.parent;
    w->rect = rect = {desc.rect.left, desc.rect.top, std::max(desc.rect.right, desc.rect.left),
                      std::max(desc.rect.bottom, desc.rect.top)};
    w->style = desc.style & ~style::visible;
    w->exStyle = desc.exStyle;
    w->id = desc.id;
    w->title = std::move(title);
    w->proc = desc.proc ? desc.proc : &defaultProc;
    w->cursor = arrow_;
    w->bars[0].wanted = desc.style & style::hScroll;
    w->bars[1].wanted = desc.style & style::vScroll;
  }
  try {
    if (deliver(handle, msg::create, 0, reinterpret_cast<LParam>(&desc)) == -1) {
      destroy(handle);
      return {};
    }
    sendSize(handle, (desc.style & style::minimized) ? sized::minimized : sized::restored);
    deliver(handle, msg::move, 0, packed(rect.left, rect.top));
    if (desc.style & style::visible)
      show(handle, (desc.style & style::minimized) ? show::noActivate : show::activate);
  } catch (...) {
    Attempts end;
    end.run([&] { destroy(handle); });
    throw;
  }
  return isWindow(handle) ? handle : HWND{};
}

bool Core::destroy(HWND handle)
{
  if (!onUi() && !quiet(handle)) {
    bool done = false;
    callOnUi([&] { done = destroy(handle); });
    return done;
  }
  std::vector<HWND> owned;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(handle);
    if (!w || w->dying || handle == tree_.desktop())
      return false;
    w->dying = true;
    for (Window const* top : tree_.tops())
      if (top->owner == handle)
        owned.push_back(top->handle);
  }
  // Whatever its procedure throws on the way, the window goes.
  Attempts all;
  for (HWND window : owned)
    all.run([&] { destroy(window); });
  all.run([&] { setShown(handle, false); });
  all.run([&] { destroyRecord(handle); });
  all.finish();
  return true;
}

// The first message goes from the parent to the kids, the last one the other way.
void Core::destroyRecord(HWND handle)
{
  Attempts all;
  all.run([&] { leave(handle); });
  all.run([&] { deliver(handle, msg::destroy, 0, 0); });
  for (;;) {
    HWND kid = {};
    {
      Lock lock(mutex_);
      Window* const w = tree_.find(handle);
      if (!w)
        return all.finish();
      if (!w->kids.empty()) {
        kid = w->kids.front()->handle;
        w->kids.front()->dying = true;
      }
    }
    if (!kid)
      break;
    all.run([&] { destroyRecord(kid); });
  }
  all.run([&] { deliver(handle, msg::destroyed, 0, 0); });
  endTracking(handle);

  // The backing's lock makes sure that no painter still writes into memory that the video lent.
  std::shared_ptr<Backing> backing;
  Ptr<Window> record;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(handle);
    if (!w)
      return all.finish();
    std::erase_if(timers_, [&](Timer const& t) { return t.window == handle; });
    backing = w->backing;
    record = tree_.remove(handle);
  }
  if (backing)
    Painting const painted(backing->mutex);
  if (record->systemMenu)
    menus().destroy(record->systemMenu);
  all.finish();
}

bool Core::isWindow(HWND handle)
{
  Lock lock(mutex_);
  return tree_.find(handle) != nullptr;
}

HWND Core::parent(HWND handle)
{
  Lock lock(mutex_);
  Window const* const w = tree_.find(handle);
  return w && w->parent ? w->parent->handle : HWND{};
}

HWND Core::desktop() { return tree_.desktop(); }

bool Core::onOwnThread(HWND) { return onUi(); }

Rect Core::clientRect(HWND handle)
{
  Lock lock(mutex_);
  Window const* const w = tree_.find(handle);
  return w ? WindowTree::clientRect(*w) : Rect{};
}

Rect Core::windowRect(HWND handle)
{
  Lock lock(mutex_);
  Window const* const w = tree_.find(handle);
  return w ? shifted({0, 0, w->rect.width(), w->rect.height()}, WindowTree::originOnScreen(*w)) : Rect{};
}

Point Core::clientToScreen(HWND handle, Point p)
{
  Lock lock(mutex_);
  Window const* const w = tree_.find(handle);
  if (!w)
    return p;
  Point const origin = WindowTree::originOnScreen(*w);
  return {p.x + origin.x, p.y + origin.y};
}

bool Core::visible(HWND handle)
{
  Lock lock(mutex_);
  Window const* w = tree_.find(handle);
  if (!w)
    return false;
  while (w && w->has(style::visible))
    w = w->parent;
  return !w;
}

u32 Core::style(HWND handle)
{
  Lock lock(mutex_);
  Window const* const w = tree_.find(handle);
  return w ? w->style : 0;
}

u32 Core::exStyle(HWND handle)
{
  Lock lock(mutex_);
  Window const* const w = tree_.find(handle);
  return w ? w->exStyle : 0;
}

// The window manager draws its frame around the whole window, so only a menu bar is added.
Rect Core::frameRect(Rect client, u32, bool menu, u32)
{
  client.top -= menu ? menuHeight : 0;
  return client;
}

int Core::metric(int index)
{
  switch (index) {
  case metric::screenWidth:
    return screenSize().w;
  case metric::screenHeight:
    return screenSize().h;
  case metric::vBarWidth:
  case metric::hBarHeight:
    return barExtent;
  case metric::menuHeight:
    return menuHeight;
  default:
    return 0;
  }
}

int Core::desktopDepth() { return depth(); }

void Core::place(HWND handle, Rect const* rect, int how)
{
  if (!onUi()) {
    Rect const copy = rect ? *rect : Rect{};
    bool const moves = rect != nullptr;
    return post(handle, [=, this] { place(handle, moves ? &copy : nullptr, how); });
  }
  if (rect)
    move(handle, *rect, /*tellVideo=*/true);
  if (how >= 0)
    show(handle, how);
}

void Core::center(HWND handle)
{
  if (!onUi())
    return post(handle, [=, this] { center(handle); });
  Rect rect;
  {
    Lock lock(mutex_);
    Window const* const w = tree_.find(handle);
    if (!w)
      return;
    Rect frame = w->parent ? WindowTree::clientRect(*w->parent) : Rect{0, 0, screenSize().w, screenSize().h};
    if (Window const* const owner = tree_.find(w->owner); owner && !w->parent && owner->handle != tree_.desktop())
      frame = owner->rect;
    Point const at{frame.left + (frame.width() - w->rect.width()) / 2,
                   frame.top + (frame.height() - w->rect.height()) / 2};
    rect = shifted({0, 0, w->rect.width(), w->rect.height()}, at);
  }
  move(handle, rect, /*tellVideo=*/true);
}

void Core::sendSize(HWND handle, unsigned kind)
{
  Rect const client = clientRect(handle);
  deliver(handle, msg::size, kind, packed(client.right, client.bottom));
}

void Core::move(HWND handle, Rect const& wanted, bool tellVideo)
{
  Rect const rect{wanted.left, wanted.top, std::max(wanted.right, wanted.left), std::max(wanted.bottom, wanted.top)};
  Rect old;
  bool isTop, resized, minimized;
  VideoWindow* video;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(handle);
    if (!w || w->rect == rect || handle == tree_.desktop())
      return;
    old = w->rect;
    w->rect = rect;
    tree_.changed();
    isTop = !w->parent;
    minimized = w->has(style::minimized);
    resized = old.width() != rect.width() || old.height() != rect.height();
    video = w->video.get();
    if (w->parent && w->has(style::visible)) {
      Point const origin = WindowTree::originInBacking(*w->parent);
      tree_.invalidateTree(*w->parent, shifted(old, origin));
      tree_.invalidateTree(*w, shifted(rect, origin));
    }
    w->update.intersect(WindowTree::clientRect(*w));
  }
  if (video && tellVideo)
    video->place(rect);
  if (isTop && resized && video) {
    renewBacking(handle);
    Lock lock(mutex_);
    if (Window* const w = tree_.find(handle))
      tree_.invalidateTree(*w, {0, 0, rect.width(), rect.height()});
  }
  Attempts all;
  if (old.left != rect.left || old.top != rect.top)
    all.run([&] { deliver(handle, msg::move, 0, packed(rect.left, rect.top)); });
  if (resized && !minimized)
    all.run([&] { sendSize(handle, sized::restored); });
  all.finish();
}

void Core::show(HWND handle, int how)
{
  claimUi();
  HWND const top = [&] {
    Lock lock(mutex_);
    Window const* const w = tree_.find(handle);
    return w && !w->parent && handle != tree_.desktop() ? handle : HWND{};
  }();
  if (how == show::hide)
    return setShown(handle, false);
  if (how == show::minimize && top) {
    setShown(handle, true);
    return setMinimized(handle, true);
  }
  if (top && (how == show::normal || how == show::restore))
    setMinimized(handle, false);
  setShown(handle, true);
  if (top && how != show::noActivate)
    activate(top);
}

void Core::setShown(HWND handle, bool shown)
{
  VideoWindow* video = nullptr;
  bool isTop;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(handle);
    if (!w || w->has(style::visible) == shown || handle == tree_.desktop())
      return;
    isTop = !w->parent;
  }
  if (shown && isTop)
    openGlass(handle);
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(handle);
    if (!w)
      return;
    w->style = shown ? w->style | style::visible : w->style & ~style::visible;
    tree_.changed();
    video = w->video.get();
    Window& root = w->parent ? *w->parent : *w;
    Rect const area = shifted(w->parent ? w->rect : Rect{0, 0, w->rect.width(), w->rect.height()},
                              w->parent ? WindowTree::originInBacking(root) : Point{});
    tree_.invalidateTree(root, area);
  }
  Attempts all;
  all.run([&] { deliver(handle, msg::show, shown, 0); });
  if (isTop && video && isWindow(handle))
    video->show(shown, active() == handle);
  if (!shown)
    all.run([&] { leave(handle); });
  all.finish();
}

void Core::setMinimized(HWND handle, bool minimized)
{
  VideoWindow* video;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(handle);
    if (!w || w->has(style::minimized) == minimized)
      return;
    w->style ^= style::minimized;
    tree_.changed();
    video = w->video.get();
    if (!minimized)
      tree_.invalidateTree(*w, {0, 0, w->rect.width(), w->rect.height()});
  }
  if (video)
    video->minimize(minimized);
  Attempts all;
  all.run([&] { sendSize(handle, minimized ? sized::minimized : sized::restored); });
  if (minimized)
    all.run([&] { leave(handle); });
  all.finish();
}

void Core::leave(HWND handle)
{
  HWND parent = {}, next = {};
  bool hadCapture, hadFocus, wasActive;
  {
    Lock lock(mutex_);
    Window const* const w = tree_.find(handle);
    if (!w)
      return;
    auto const inside = [&](HWND h) {
      Window const* const inner = tree_.find(h);
      return inner && WindowTree::isIn(inner, *w);
    };
    hadCapture = inside(capture_);
    hadFocus = inside(focus_);
    wasActive = active_ == handle;
    parent = w->parent ? w->parent->handle : HWND{};
    if (wasActive)
      for (Window const* top : tree_.tops())
        if (top != w && top->has(style::visible) && !top->has(style::minimized)) {
          next = top->handle;
          break;
        }
  }
  endTracking(handle);
  Attempts all;
  if (hadCapture)
    all.run([&] { releaseCapture(); });
  if (wasActive && next)
    all.run([&] { activate(next); });
  else if (wasActive)
    all.run([&] { deactivate(handle); });
  else if (hadFocus)
    all.run([&] { moveFocus(parent); });
  all.finish();
}

void Core::activate(HWND top)
{
  HWND former;
  VideoWindow* video;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(top);
    if (!w || w->dying)
      return;
    tree_.toFront(*w);
    video = w->video.get();
    former = std::exchange(active_, top);
  }
  if (former == top)
    return;
  if (video)
    video->raise();
  Attempts all;
  all.run([&] { deliver(former, msg::activate, 0, asLParam(top)); });
  if (depth() == 8)
    all.run([&] { deliver(top, msg::queryNewPalette, 0, 0); });
  all.run([&] { deliver(top, msg::activate, 1, asLParam(former)); });
  bool inside;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(top);
    Window const* const focused = tree_.find(focus_);
    inside = !w || active_ != top || (focused && WindowTree::isIn(focused, *w));
  }
  if (!inside)
    all.run([&] { moveFocus(top); });
  all.finish();
}

void Core::deactivate(HWND top)
{
  {
    Lock lock(mutex_);
    if (active_ != top)
      return;
    active_ = {};
  }
  Attempts all;
  all.run([&] { deliver(top, msg::activate, 0, 0); });
  all.run([&] { moveFocus({}); });
  all.finish();
}

void Core::setFocus(HWND handle)
{
  if (!onUi())
    return callWhenOnUi([=, this] { setFocus(handle); });
  HWND top = {};
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(handle);
    if (handle && (!w || w->dying || !WindowTree::shown(*w)))
      return;
    if (w)
      top = WindowTree::top(*w)->handle;
  }
  Attempts all;
  if (top)
    all.run([&] { activate(top); });
  all.run([&] { moveFocus(handle); });
  all.finish();
}

void Core::moveFocus(HWND handle)
{
  HWND former;
  {
    Lock lock(mutex_);
    if (focus_ == handle || (handle && !tree_.find(handle)))
      return;
    former = std::exchange(focus_, handle);
  }
  Attempts all;
  all.run([&] { deliver(former, msg::killFocus, asParam(handle), 0); });
  if (focus() == handle)
    all.run([&] { deliver(handle, msg::setFocus, asParam(former), 0); });
  all.finish();
}

void Core::invalidate(HWND handle, Rect const* rect, bool erase)
{
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(handle);
    if (!w || !WindowTree::shown(*w) || handle == tree_.desktop())
      return;
    Rect const client = WindowTree::clientRect(*w);
    w->update.add(rect ? intersection(*rect, client) : client);
    w->eraseDue |= erase && !w->update.empty();
  }
  wake();
}

Rect Core::updateRect(HWND handle)
{
  Lock lock(mutex_);
  Window const* const w = tree_.find(handle);
  return w ? w->update.bounds() : Rect{};
}

void Core::validate(HWND handle, Rect const* rect)
{
  Lock lock(mutex_);
  Window* const w = tree_.find(handle);
  if (!w)
    return;
  if (rect)
    w->update.subtract(*rect);
  else
    w->update.clear();
  w->eraseDue &= !w->update.empty();
}

void Core::update(HWND handle)
{
  if (!onUi())
    return post(handle, [=, this] { update(handle); });
  paintBars(handle);
  paint(handle);
}

HDC Core::getDC(HWND handle) { return openWindowDC(handle); }

void Core::releaseDC(HWND, HDC dc) { closeWindowDC(dc); }

VideoWindow* Core::videoWindow(HWND handle)
{
  Lock lock(mutex_);
  Window const* const w = tree_.find(handle);
  return w ? w->video.get() : nullptr;
}

HWND Core::active()
{
  Lock lock(mutex_);
  return active_;
}

HWND Core::focus()
{
  Lock lock(mutex_);
  return focus_;
}

HWND Core::capture()
{
  Lock lock(mutex_);
  return capture_;
}

std::string Core::title(HWND handle)
{
  Lock lock(mutex_);
  Window const* const w = tree_.find(handle);
  return w ? w->title : std::string();
}

ScrollBar Core::scrollBar(HWND handle, int bar)
{
  Lock lock(mutex_);
  Window const* const w = tree_.find(handle);
  return w && (bar == bar::horizontal || bar == bar::vertical) ? w->bars[bar] : ScrollBar();
}

HCURSOR Core::cursorOf(HWND handle)
{
  Lock lock(mutex_);
  Window const* const w = tree_.find(handle);
  return w ? w->cursor : HCURSOR{};
}

void Core::raiseTopmost(HWND handle)
{
  Lock lock(mutex_);
  if (Window* const w = tree_.find(handle)) {
    w->topmost = true;
    tree_.toFront(*w);
  }
}

HMENU Core::systemMenu(HWND handle)
{
  Lock lock(mutex_);
  Window const* const w = tree_.find(handle);
  return w ? w->systemMenu : HMENU{};
}

void Core::systemMenu(HWND handle, HMENU menu)
{
  Lock lock(mutex_);
  if (Window* const w = tree_.find(handle))
    w->systemMenu = menu;
}

HWND Core::adopt(std::function<Ptr<VideoWindow>(HWND, Rect& screen)> const& make)
{
  claimUi();
  HWND handle;
  {
    Lock lock(mutex_);
    Window* const w = tree_.add(nullptr);
    if (!w)
      return {};
    handle = w->handle;
    w->proc = &defaultProc;
    w->cursor = arrow_;
    w->attached = true;
  }
  Rect rect;
  Ptr<VideoWindow> video = make(handle, rect);
  if (!video) {
    Lock lock(mutex_);
    tree_.remove(handle);
    return {};
  }
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(handle);
    w->video = std::move(video);
    w->rect = rect;
  }
  renewBacking(handle);
  Lock lock(mutex_);
  Window* const w = tree_.find(handle);
  w->style |= style::visible;
  tree_.changed();
  tree_.invalidateTree(*w, {0, 0, rect.width(), rect.height()});
  return handle;
}

HWND Core::attachNative(uptr id)
{
  return adopt([&](HWND handle, Rect& screen) { return video_->attach(handle, id, screen); });
}

void Core::detach(HWND handle)
{
  bool attached;
  {
    Lock lock(mutex_);
    Window const* const w = tree_.find(handle);
    attached = w && w->attached;
  }
  if (attached)
    destroy(handle);
}

}  // namespace plat::portable
