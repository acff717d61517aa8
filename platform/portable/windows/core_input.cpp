// Input: from pointer and keys to messages in their order; capture, clip, cursors.
#include "platform/messages.h"
#include "platform/portable/windows/attempts.h"
#include "platform/portable/windows/core.h"
#include "platform/portable/windows/menus.h"

#include <algorithm>
#include <cstdlib>

namespace plat::portable {
namespace {

constexpr std::uint64_t doubleClickMs = 500;
constexpr i32 doubleClickDistance = 2;

LParam packed(Point p) { return static_cast<LParam>(u32(static_cast<u16>(p.y)) << 16 | static_cast<u16>(p.x)); }

unsigned downMessage(unsigned button)
{
  return button == held::left ? msg::leftDown : button == held::right ? msg::rightDown : msg::middleDown;
}

}  // namespace

void Core::enqueue(Input const& input)
{
  {
    Lock lock(mutex_);
   // Moves that nobody has seen yet are one move to the last place.
    if (input.moveOnly && !input_.empty()) {
      Input& last = input_.back();
      if (last.moveOnly && last.top == input.top && last.mods == input.mods) {
        last.at = input.at;
        return;
      }
    }
    input_.push_back(input);
  }
  wake();
}

void Core::pointer(HWND top, Point at, unsigned buttons, unsigned mods, int clicks)
{
  Input input;
  input.kind = Input::Kind::pointer;
  input.top = top;
  input.at = at;
  input.buttons = buttons & (held::left | held::right | held::middle);
  input.mods = mods;
  input.clicks = clicks;
  {
    Lock lock(mutex_);
    input.moveOnly = queuedButtons_ == input.buttons;
    queuedButtons_ = input.buttons;
  }
  enqueue(input);
}

void Core::wheel(HWND top, Point at, int turn, unsigned mods)
{
  Input input;
  input.kind = Input::Kind::wheel;
  input.top = top;
  input.at = at;
  input.turn = turn;
  input.mods = mods;
  enqueue(input);
}

void Core::key(unsigned virtualKey, bool down, bool repeat, unsigned mods)
{
  Input input;
  input.kind = Input::Kind::key;
  input.key = virtualKey;
  input.on = down;
  input.repeat = repeat;
  input.mods = mods;
  enqueue(input);
}

void Core::character(u8 value)
{
  Input input;
  input.kind = Input::Kind::character;
  input.key = value;
  enqueue(input);
}

void Core::closeAsked(HWND top)
{
  Input input;
  input.kind = Input::Kind::close;
  input.top = top;
  enqueue(input);
}

void Core::resized(HWND top, Size size)
{
  Input input;
  input.kind = Input::Kind::size;
  input.top = top;
  input.at = {size.w, size.h};
  enqueue(input);
}

void Core::moved(HWND top, Point at)
{
  Input input;
  input.kind = Input::Kind::move;
  input.top = top;
  input.at = at;
  enqueue(input);
}

void Core::minimized(HWND top, bool on)
{
  Input input;
  input.kind = Input::Kind::minimize;
  input.top = top;
  input.on = on;
  enqueue(input);
}

void Core::focused(HWND top, bool on)
{
  Input input;
  input.kind = Input::Kind::focus;
  input.top = top;
  input.on = on;
  enqueue(input);
}

void Core::exposed(HWND top)
{
  std::shared_ptr<Backing> backing;
  {
    Lock lock(mutex_);
    Window const* const w = tree_.find(top);
    backing = w ? w->backing : nullptr;
  }
  if (!backing)
    return;
  // What it lent may have gone with its pels.
  if (backing->lent())
    return renewBacking(top);
  {
    Painting const painting(backing->mutex);
    backing->markDirty({0, 0, backing->block().width, backing->block().height});
  }
  present(*backing);
}

void Core::screenChanged(Size screen, int bits)
{
  enqueue({{}, 0, 0, 0, [=, this] { changeScreen(screen, bits); }, true});
}

void Core::gone(HWND top) { post(top, [=, this] { destroy(top); }); }

void Core::dropped(HWND top, std::vector<std::string> files)
{
  post(top, [=, this, list = std::move(files)] {
    Lock lock(mutex_);
    auto const handler = dropHandler_;
    lock.unlock();
    if (handler)
      handler(top, list);
  });
}

void Core::dropHandler(std::function<void(HWND, std::vector<std::string> const&)> handler)
{
  Lock lock(mutex_);
  dropHandler_ = std::move(handler);
}

void Core::handle(Input const& input)
{
  switch (input.kind) {
  case Input::Kind::pointer:
    return handlePointer(input);
  case Input::Kind::wheel:
    return handleWheel(input);
  case Input::Kind::key:
    return handleKey(input);
  case Input::Kind::character:
    return handleCharacter(input);
  case Input::Kind::close:
    if (HMENU const menu = systemMenu(input.top); !menu || menus().enabled(menu, menu::closeItem))
      deliver(input.top, msg::close, 0, 0);
    return;
  case Input::Kind::size: {
    Rect const now = windowRect(input.top);
    return move(input.top, shifted({0, 0, input.at.x, input.at.y}, {now.left, now.top}), /*tellVideo=*/false);
  }
  case Input::Kind::move: {
    Rect const now = windowRect(input.top);
    return move(input.top, shifted({0, 0, now.width(), now.height()}, input.at), /*tellVideo=*/false);
  }
  case Input::Kind::minimize:
    return setMinimized(input.top, input.on);
  case Input::Kind::focus:
    return input.on ? activate(input.top) : deactivate(input.top);
  }
}

Point Core::clipped(Point p) const
{
  if (!clipOn_ || clip_.empty())
    return p;
  return {std::clamp(p.x, clip_.left, clip_.right - 1), std::clamp(p.y, clip_.top, clip_.bottom - 1)};
}

// The capture window, else the deepest one under the pointer.
HWND Core::target(HWND top, Point at)
{
  HWND const captured = capture();
  return isWindow(captured) ? captured : under(top, at);
}

HWND Core::under(HWND top, Point at)
{
  Lock lock(mutex_);
  Window* found = nullptr;
  if (Window* const w = tree_.find(top))
    found = WindowTree::hit(*w, at);
  else
    for (Window* candidate : tree_.tops())
      if (!found)
        found = WindowTree::hit(*candidate, at);
  return found ? found->handle : HWND{};
}

void Core::handlePointer(Input const& input)
{
  Point at;
  bool moved;
  unsigned pressed, released, bits;
  {
    Lock lock(mutex_);
    at = clipped(input.at);
    moved = at != pointer_;
    pressed = input.buttons & ~buttons_;
    released = buttons_ & ~input.buttons;
    bits = (buttons_ | input.mods) & held::messageBits;
    pointer_ = at;
    buttons_ = input.buttons;
    mods_ = input.mods;
  }
  if (!grabs_.empty())
    return grabs_.back()->pointer(at, pressed, released);
  Attempts all;
  if (moved)
    all.run([&] { mouseMessage(input.top, msg::mouseMove, at, bits); });
  for (unsigned button : {held::left, held::right, held::middle}) {
    if (pressed & button) {
      bits |= button;
      all.run([&] {
        unsigned const message = pressMessage(input.top, button, at, input.clicks);
        mouseMessage(input.top, message, at, bits);
      });
    }
    if (released & button) {
      bits &= ~button;
      all.run([&] { mouseMessage(input.top, downMessage(button) + (msg::leftUp - msg::leftDown), at, bits); });
    }
  }
  all.finish();
}

// Also brings the window that is pressed to the front. Each second press of a quick series is a double click.
unsigned Core::pressMessage(HWND top, unsigned button, Point at, int clicks)
{
  HWND const window = target(top, at);
  HWND root = {};
  {
    Lock lock(mutex_);
    if (Window* const w = tree_.find(window))
      root = WindowTree::top(*w)->handle;
    if (clicks == 0) {
      bool const again = click_.window == window && click_.button == button && now() - click_.time <= doubleClickMs &&
                         std::abs(at.x - click_.at.x) <= doubleClickDistance &&
                         std::abs(at.y - click_.at.y) <= doubleClickDistance;
      clicks = again ? click_.count + 1 : 1;
    }
    click_ = {window, button, at, now(), clicks};
  }
  if (root)
    activate(root);
  return downMessage(button) + (clicks % 2 == 0 ? msg::leftDouble - msg::leftDown : 0);
}

void Core::mouseMessage(HWND top, unsigned message, Point at, unsigned bits)
{
  HWND const window = target(top, at);
  if (!window)
    return;
  Point origin = clientToScreen(window, {});
  if (capture() != window) {
    Rect const client = clientRect(window);
    if (!contains(client, {at.x - origin.x, at.y - origin.y})) {
      setCursor(arrow_);
      if (message == msg::leftDown || message == msg::leftDouble)
        pressOnBar(window, at, bits);
      return;
    }
    deliver(window, msg::setCursor, reinterpret_cast<WParam>(window), static_cast<LParam>(message << 16 | 1));
    origin = clientToScreen(window, {});
  }
  deliver(window, message, bits, packed({at.x - origin.x, at.y - origin.y}));
}

void Core::handleWheel(Input const& input)
{
  Point at;
  unsigned bits;
  {
    Lock lock(mutex_);
    at = pointer_ = clipped(input.at);
    mods_ = input.mods;
    bits = (buttons_ | input.mods) & held::messageBits;
  }
  u32 const turn = u32(static_cast<u16>(input.turn)) << 16;
  if (grabs_.empty())
    deliver(under(input.top, at), msg::wheel, turn | bits, packed(at));
}

void Core::handleKey(Input const& input)
{
  HWND window;
  {
    Lock lock(mutex_);
    mods_ = input.mods;
    lastKeyRepeated_ = input.on && input.repeat;
    window = tree_.find(focus_) ? focus_ : active_;
  }
  if (!grabs_.empty())
    return grabs_.back()->key(input.key, input.on);
  // Together with Control, Alt is the key for a third set of characters and not a command.
  bool const system = input.key == key::alt || ((input.mods & held::alt) && !(input.mods & held::control));
  unsigned const message =
      input.on ? (system ? msg::systemKeyDown : msg::keyDown) : (system ? msg::systemKeyUp : msg::keyUp);
  LParam const detail = 1 | ((input.mods & held::alt) ? msg::contextBit : 0) |
                        (input.repeat || !input.on ? msg::repeatBit : 0) | (input.on ? 0 : msg::releaseBit);
  deliver(window, message, input.key, detail);
}

void Core::handleCharacter(Input const& input)
{
  HWND window;
  bool repeated;
  {
    Lock lock(mutex_);
    window = tree_.find(focus_) ? focus_ : active_;
    repeated = lastKeyRepeated_;
  }
  if (grabs_.empty())
    deliver(window, msg::character, input.key, 1 | (repeated ? msg::repeatBit : 0));
}

HWND Core::setCapture(HWND window)
{
  if (!onUi()) {
    post(window, [=, this] { setCapture(window); });
    return capture();
  }
  HWND former;
  VideoWindow* video = nullptr;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(window);
    if (window && (!w || w->dying))
      return capture_;
    former = std::exchange(capture_, window);
    if (w)
      video = WindowTree::top(*w)->video.get();
  }
  if (former == window)
    return former;
  video_->capture(video);
  deliver(former, msg::captureChanged, 0, reinterpret_cast<LParam>(window));
  return former;
}

// From another thread in turn, and then only what was captured when it was asked for.
void Core::releaseCapture()
{
  if (onUi()) {
    setCapture({});
    return;
  }
  HWND const held = capture();
  post(held, [=, this] {
    if (capture() == held)
      setCapture({});
  });
}

void Core::clipCursor(Rect const* screen)
{
  Rect const rect = screen ? *screen : Rect{};
  bool const on = screen != nullptr;
  {
    Lock lock(mutex_);
    clipOn_ = on;
    clip_ = rect;
    pointer_ = clipped(pointer_);
  }
  callWhenOnUi([=, this] { video_->clip(on ? &rect : nullptr); });
}

Point Core::cursorPos()
{
  Lock lock(mutex_);
  return pointer_;
}

HCURSOR Core::loadCursor(int id)
{
  Lock lock(mutex_);
  for (HCURSOR known : cursorHandles_)
    if (cursors_.find(known)->id == id)
      return known;
  CursorPicture const* const picture = builtInResources().cursor(id);
  if (!picture)
    return {};
  Cursor cursor;
  cursor.id = id;
  cursor.shape.hotSpot = picture->hotSpot;
  cursor.shape.size = {static_cast<i32>(picture->picture.front().size()), static_cast<i32>(picture->picture.size())};
  for (std::string_view row : picture->picture)
    for (char c : row)
      cursor.shape.argb.push_back(c == 'X' ? 0xff000000 : c == '.' ? 0xffffffff : c == 'o' ? 0xff808080 : 0);
  cursorHandles_.push_back(cursors_.add(std::move(cursor)));
  return cursorHandles_.back();
}

void Core::setCursor(HCURSOR cursor)
{
  callWhenOnUi([=, this] {
    CursorShape const* shape = nullptr;
    {
      Lock lock(mutex_);
      if (std::exchange(cursor_, cursor) == cursor)
        return;
     // Cursors stay for the life of the process.
      Cursor const* const found = cursors_.find(cursor);
      shape = found ? &found->shape : nullptr;
    }
    video_->cursor(shape);
  });
}

HCURSOR Core::currentCursor()
{
  Lock lock(mutex_);
  return cursor_;
}

HCURSOR Core::classCursor(HWND window, HCURSOR cursor)
{
  Lock lock(mutex_);
  Window* const w = tree_.find(window);
  return w ? std::exchange(w->cursor, cursor) : HCURSOR{};
}

}  // namespace plat::portable
