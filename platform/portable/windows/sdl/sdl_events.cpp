// What the events of SDL tell the window core.
#include "platform/messages.h"
#include "platform/portable/windows/sdl/key_codes.h"
#include "platform/portable/windows/sdl/sdl_video.h"
#include "platform/portable/windows/sdl/sdl_window.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <SDL.h>

namespace plat::portable {
namespace {

u32 windowId(SDL_Event const& event)
{
  switch (event.type) {
  case SDL_WINDOWEVENT:
    return event.window.windowID;
  case SDL_KEYDOWN:
  case SDL_KEYUP:
    return event.key.windowID;
  case SDL_TEXTEDITING:
    return event.edit.windowID;
  case SDL_TEXTEDITING_EXT:
    return event.editExt.windowID;
  case SDL_TEXTINPUT:
    return event.text.windowID;
  case SDL_MOUSEMOTION:
    return event.motion.windowID;
  case SDL_MOUSEBUTTONDOWN:
  case SDL_MOUSEBUTTONUP:
    return event.button.windowID;
  case SDL_MOUSEWHEEL:
    return event.wheel.windowID;
  case SDL_DROPFILE:
  case SDL_DROPTEXT:
  case SDL_DROPBEGIN:
  case SDL_DROPCOMPLETE:
    return event.drop.windowID;
  default:
    return 0;
  }
}

bool isOfKeyboard(SDL_Event const& event)
{
  return event.type == SDL_KEYDOWN || event.type == SDL_KEYUP || event.type == SDL_TEXTINPUT;
}

// The key for a third set of characters counts as Control with Alt.
unsigned modsOf(unsigned state)
{
  return ((state & KMOD_SHIFT) ? held::shift : 0u) | ((state & KMOD_CTRL) ? held::control : 0u) |
         ((state & KMOD_ALT) ? held::alt : 0u) | ((state & KMOD_MODE) ? held::control | held::alt : 0u);
}

unsigned modsNow() { return modsOf(static_cast<unsigned>(SDL_GetModState())); }

unsigned buttonOf(unsigned button)
{
  switch (button) {
  case SDL_BUTTON_LEFT:
    return held::left;
  case SDL_BUTTON_RIGHT:
    return held::right;
  case SDL_BUTTON_MIDDLE:
    return held::middle;
  default:
    return 0;
  }
}

unsigned buttonsOf(u32 state)
{
  return ((state & SDL_BUTTON_LMASK) ? held::left : 0u) | ((state & SDL_BUTTON_RMASK) ? held::right : 0u) |
         ((state & SDL_BUTTON_MMASK) ? held::middle : 0u);
}

// The next character of a text in UTF-8, which SDL guarantees to be well formed; 0 at its end.
u32 nextCharacter(char const*& text)
{
  u32 const first = static_cast<unsigned char>(*text);
  if (!first)
    return 0;
  ++text;
  if (first < 0x80)
    return first;
  u32 code = first & (first >= 0xF0 ? 0x07u : first >= 0xE0 ? 0x0Fu : 0x1Fu);
  while ((static_cast<unsigned char>(*text) & 0xC0) == 0x80)
    code = code << 6 | (static_cast<unsigned char>(*text++) & 0x3Fu);
  return code;
}

}  // namespace

SdlWindow* SdlVideo::find(u32 id)
{
  auto const found =
      std::find_if(windows_.begin(), windows_.end(), [&](SdlWindow const* w) { return id && w->id() == id; });
  return found == windows_.end() ? nullptr : *found;
}

// An embedded window has the keys while the pointer is in it, though SDL sees no focus there.
SdlWindow* SdlVideo::find(SDL_Event const& event)
{
  u32 const id = windowId(event);
  if (id || !isOfKeyboard(event) || SDL_GetKeyboardFocus())
    return find(id);
  SDL_Window* const under = SDL_GetMouseFocus();
  SdlWindow* const window = under ? find(SDL_GetWindowID(under)) : nullptr;
  return window && window->child() ? window : nullptr;
}

bool SdlVideo::handle(SDL_Event const& event, VideoSink& sink)
{
  reported_ = {};  // the application fetches its events
  if (event.type == wakeEvent_)
    return true;
  if (event.type == SDL_SYSWMEVENT) {
    systemEvent(event, sink);
    return false;
  }
  bool const ours = translate(event, find(event), sink);
  flush(sink);
  return ours;
}

bool SdlVideo::translate(SDL_Event const& event, SdlWindow* window, VideoSink& sink)
{
  if (event.type == SDL_DISPLAYEVENT) {
    Size const now = measureScreen();
    if (now != screen_)
      sink.screenChanged(screen_ = now, depth());
    return false;
  }
  if (!window)
    return false;
  switch (event.type) {
  case SDL_WINDOWEVENT:
    windowEvent(event, *window, sink);
    break;
  case SDL_MOUSEMOTION:
  case SDL_MOUSEBUTTONDOWN:
  case SDL_MOUSEBUTTONUP:
    pointerEvent(event, *window, sink);
    break;
  case SDL_MOUSEWHEEL:
    wheelEvent(event, *window, sink);
    break;
  case SDL_KEYDOWN:
  case SDL_KEYUP:
    keyEvent(event, *window, sink);
    break;
  case SDL_TEXTINPUT:
    textEvent(event, *window, sink);
    break;
  case SDL_DROPBEGIN:
  case SDL_DROPFILE:
  case SDL_DROPCOMPLETE:
    dropEvent(event, *window, sink);
    break;
  default:
    break;
  }
  return true;
}

// Size and place are asked for rather than taken from the event, which may be old news.
void SdlVideo::windowEvent(SDL_Event const& event, SdlWindow& window, VideoSink& sink)
{
  HWND const top = window.handle();
  switch (event.window.event) {
  case SDL_WINDOWEVENT_SIZE_CHANGED:
    if (window.window())
      sink.resized(top, window.size());
    window.exposed = true;  // its surface is no longer the one that was shown
    break;
  case SDL_WINDOWEVENT_MOVED:
    if (SDL_Window* const w = window.window()) {
      Point at;
      SDL_GetWindowPosition(w, &at.x, &at.y);
      window.origin(window.child() ? window.child()->origin() : at);
      sink.moved(top, window.origin());
    }
    break;
  case SDL_WINDOWEVENT_EXPOSED:
    window.exposed = true;
    break;
  case SDL_WINDOWEVENT_MINIMIZED:
    sink.minimized(top, true);
    break;
  case SDL_WINDOWEVENT_RESTORED:
  case SDL_WINDOWEVENT_MAXIMIZED:
    sink.minimized(top, false);
    break;
  case SDL_WINDOWEVENT_ENTER:
    if (!inside_)
      enter();
    break;
  case SDL_WINDOWEVENT_LEAVE:
    if (inside_)
      leave();
    break;
  case SDL_WINDOWEVENT_FOCUS_GAINED:
    sink.focused(top, true);
    break;
  case SDL_WINDOWEVENT_FOCUS_LOST:
    sink.focused(top, false);
    break;
  case SDL_WINDOWEVENT_CLOSE:
    if (window.maker() == SdlWindow::Maker::library)
      sink.closeAsked(top);
    break;
  default:
    break;
  }
}

void SdlVideo::pointerEvent(SDL_Event const& event, SdlWindow& window, VideoSink& sink)
{
  if (!inside_)
    enter();
  Point at{event.motion.x, event.motion.y};
  int clicks = 0;
  if (event.type == SDL_MOUSEMOTION) {
    // A release outside may have gone to somebody else.
    buttons_ = buttonsOf(event.motion.state);
  } else {
    at = {event.button.x, event.button.y};
    unsigned const button = buttonOf(event.button.button);
    if (!button)
      return;
    bool const down = event.type == SDL_MOUSEBUTTONDOWN;
    clicks = down ? event.button.clicks : 0;
    buttons_ = down ? buttons_ | button : buttons_ & ~button;
  }
  Point const origin = window.origin();
  sink.pointer(window.handle(), {origin.x + at.x, origin.y + at.y}, buttons_, modsNow(), clicks);
}

void SdlVideo::wheelEvent(SDL_Event const& event, SdlWindow& window, VideoSink& sink)
{
  SDL_MouseWheelEvent const& wheel = event.wheel;
  float const notches = wheel.preciseY != 0 ? wheel.preciseY : static_cast<float>(wheel.y);
  float const turned = float{msg::wheelNotch} * notches + wheelRest_;
  int const turn = static_cast<int>(std::trunc(turned));
  wheelRest_ = turned - static_cast<float>(turn);
  Point const origin = window.origin();
  if (turn != 0)
    sink.wheel(window.handle(), {origin.x + wheel.mouseX, origin.y + wheel.mouseY}, turn, modsNow());
}

// Keys that come by the pointer's place name their window by being there.
void SdlVideo::focusOn(SdlWindow& window, VideoSink& sink)
{
  if (window.child() && !SDL_GetKeyboardFocus())
    sink.focused(window.handle(), true);
}

void SdlVideo::keyEvent(SDL_Event const& event, SdlWindow& window, VideoSink& sink)
{
  SDL_Keysym const& key = event.key.keysym;
  bool const down = event.type == SDL_KEYDOWN;
  unsigned const mods = modsOf(key.mod);
  focusOn(window, sink);
  if (unsigned const code = virtualKey(key))
    sink.key(code, down, event.key.repeat != 0, mods);
  if (!down)
    return;
  lastKey_ = key.sym;
  lastKeyMods_ = key.mod;
  if (unsigned const character = controlCharacter(key, mods))
    sink.character(static_cast<u8>(character));
}

// A command typed with Alt or Control is no text. The right Alt key counts as a command only where it types what the key
// types without it, since on many keyboards it is the one for a third set of characters.
void SdlVideo::textEvent(SDL_Event const& event, SdlWindow& window, VideoSink& sink)
{
  focusOn(window, sink);
  char const* text = event.text.text;
  unsigned const mods = modsOf(lastKeyMods_);
  bool const both = (mods & held::control) && (mods & held::alt);
  bool const left = lastKeyMods_ & KMOD_LALT, control = mods & held::control;
  bool const plainRight =
      (lastKeyMods_ & KMOD_RALT) && static_cast<unsigned char>(text[0]) == static_cast<u32>(lastKey_) && !text[1];
  if (!both && (left || control || plainRight))
    return;
  while (u32 const character = nextCharacter(text))
    if (character < 256)
      sink.character(static_cast<u8>(character));
}

void SdlVideo::dropEvent(SDL_Event const& event, SdlWindow& window, VideoSink& sink)
{
  switch (event.type) {
  case SDL_DROPBEGIN:
    window.dropping.clear();
    break;
  case SDL_DROPFILE:
    if (event.drop.file)
      window.dropping.push_back(event.drop.file);
    break;
  default:
    if (!window.dropping.empty())
      sink.dropped(window.handle(), std::exchange(window.dropping, {}));
    break;
  }
}

void SdlVideo::systemEvent(SDL_Event const& event, VideoSink& sink)
{
  for (SdlWindow* const window : windows_) {
    if (!window->child())
      continue;
    switch (window->child()->look(event)) {
    case X11Child::News::nothing:
      break;
    case X11Child::News::moved:
      window->origin(window->child()->origin());
      sink.moved(window->handle(), window->origin());
      break;
    case X11Child::News::gone:
      if (!std::exchange(window->gone, true))
        sink.gone(window->handle());
      break;
    }
  }
}

void SdlVideo::flush(VideoSink& sink)
{
  // Showing may end in a window's end.
  std::vector<HWND> exposed;
  for (SdlWindow* const window : windows_)
    if (std::exchange(window->exposed, false))
      exposed.push_back(window->handle());
  for (HWND const window : exposed)
    sink.exposed(window);
}

}  // namespace plat::portable
