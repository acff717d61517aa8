#include "platform/portable/windows/sdl/sdl_video.h"

#include "platform/messages.h"
#include "platform/portable/raster/region.h"
#include "platform/portable/windows/sdl/sdl_window.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

#include <SDL.h>

namespace plat::portable {
namespace {

// A loop of the library beside an application that does not fetch its events must not let them fill the queue.
constexpr std::size_t maxEventsOfOthers = 4096;

// Without a display to wait on, or with events in the queue that are not ours, the queue is looked at now and then.
constexpr int idleSliceMs = 10;

SdlVideo* currentVideo = nullptr;

// Settings of the process. They stand back behind those of the environment; what an application that started SDL
// itself has chosen stays.
void setHints()
{
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
  SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
  // A display is no game: the desktop's effects stay, and a click that activates a window is a click in it too.
  SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
  SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
  SDL_SetHint(SDL_HINT_MOUSE_DOUBLE_CLICK_RADIUS, "2");
}

// Left to itself SDL would also take over the screen of a text console.
bool startVideo()
{
  char const* const chosen = SDL_GetHint(SDL_HINT_VIDEODRIVER);
  bool const open = !chosen || !*chosen;
  if (open)
    SDL_SetHint(SDL_HINT_VIDEODRIVER, "x11,wayland");
  bool const started = SDL_InitSubSystem(SDL_INIT_VIDEO) == 0;
  if (open)
    SDL_ResetHint(SDL_HINT_VIDEODRIVER);
  return started;
}

}  // namespace

Ptr<Video> makeWindowVideo() { return SdlVideo::make(); }

Ptr<Video> SdlVideo::make()
{
  bool const running = SDL_WasInit(SDL_INIT_VIDEO | SDL_INIT_EVENTS) != 0;
  bool const foreign = currentVideo ? currentVideo->foreignSdl_ : running;
  if (!running)
    setHints();
  SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
  // Counted by SDL: what the application has started goes on when we are done.
  if (!startVideo())
    return nullptr;
  u32 const wakeEvent = SDL_RegisterEvents(1);
  return Ptr<Video>(new SdlVideo(foreign, wakeEvent));
}

SdlVideo* SdlVideo::current() { return currentVideo; }

SdlVideo::SdlVideo(bool foreignSdl, u32 wakeEvent) : foreignSdl_(foreignSdl), wakeEvent_(wakeEvent)
{
  currentVideo = this;
  screen_ = measureScreen();
}

SdlVideo::~SdlVideo()
{
  if (inside_)
    leave();
  for (Cursor const& c : cursors_)
    SDL_FreeCursor(c.cursor);
  if (currentVideo == this)
    currentVideo = nullptr;
  SDL_QuitSubSystem(SDL_INIT_VIDEO);
}

Size SdlVideo::screenSize() { return screen_; }

// Around all monitors.
Size SdlVideo::measureScreen() const
{
  Size screen{1, 1};
  for (int i = 0; i < SDL_GetNumVideoDisplays(); ++i) {
    SDL_Rect monitor;
    if (SDL_GetDisplayBounds(i, &monitor) == 0)
      screen = {std::max(screen.w, monitor.x + monitor.w), std::max(screen.h, monitor.y + monitor.h)};
  }
  return screen;
}

Ptr<VideoWindow> SdlVideo::createWindow(HWND handle, std::string const& title, Rect const& screen, u32 style)
{
  std::string utf8;
  for (char const c : title) {
    u32 const code = static_cast<unsigned char>(c);
    if (code >= 0x80)
      utf8 += static_cast<char>(0xC0 | code >> 6);
    utf8 += static_cast<char>(code < 0x80 ? code : 0x80 | (code & 0x3F));
  }
  u32 flags = SDL_WINDOW_HIDDEN;
  if ((style & style::popup) && (style & style::caption) != style::caption)
    flags |= SDL_WINDOW_BORDERLESS;
  if (style & style::resizable)
    flags |= SDL_WINDOW_RESIZABLE;
  SDL_Window* const window = SDL_CreateWindow(utf8.c_str(), screen.left, screen.top, std::max(screen.width(), 1),
                                              std::max(screen.height(), 1), flags);
  if (!window)
    return nullptr;
  return std::make_unique<SdlWindow>(*this, handle, window, SdlWindow::Maker::library,
                                     Point{screen.left, screen.top});
}

Ptr<VideoWindow> SdlVideo::attach(HWND handle, uptr native, Rect& screen)
{
  Ptr<X11Child> child = makeX11Child(native);
  if (!child)
    return nullptr;
  Point const at = child->origin();
  SDL_Window* const inside = child->window();
  auto window =
      std::make_unique<SdlWindow>(*this, handle, inside, SdlWindow::Maker::library, at, std::move(child));
  Size const size = window->size();
  screen = {at.x, at.y, at.x + size.w, at.y + size.h};
  return window;
}

Ptr<VideoWindow> SdlVideo::attachSdl(HWND handle, SDL_Window* theirs, Rect& screen)
{
  if (!theirs || SDL_GetWindowID(theirs) == 0 || find(SDL_GetWindowID(theirs)) || SDL_GetRenderer(theirs) ||
      !SDL_GetWindowSurface(theirs))
    return nullptr;
  Point at;
  SDL_GetWindowPosition(theirs, &at.x, &at.y);
  auto window = std::make_unique<SdlWindow>(*this, handle, theirs, SdlWindow::Maker::application, at);
  Size const size = window->size();
  screen = {at.x, at.y, at.x + size.w, at.y + size.h};
  return window;
}

void SdlVideo::add(SdlWindow& window)
{
  windows_.push_back(&window);
  applyClip(window);
  if (window.child() && children_++ == 0)
    systemEvents_ = SDL_EventState(SDL_SYSWMEVENT, SDL_ENABLE);
}

void SdlVideo::remove(SdlWindow& window)
{
  std::erase(windows_, &window);
  if (window.child() && --children_ == 0)
    SDL_EventState(SDL_SYSWMEVENT, systemEvents_);
  if (windows_.empty() && inside_)
    leave();
}

bool SdlVideo::shared() const
{
  return foreignSdl_ || std::any_of(windows_.begin(), windows_.end(), [](SdlWindow const* w) {
           return w->maker() == SdlWindow::Maker::application;
         });
}

void SdlVideo::cursor(CursorShape const* shape)
{
  hidden_ = !shape;
  if (shape) {
    auto const same = [&](Cursor const& c) {
      return c.shape.size == shape->size && c.shape.hotSpot == shape->hotSpot && c.shape.argb == shape->argb;
    };
    auto known = std::find_if(cursors_.begin(), cursors_.end(), same);
    if (known == cursors_.end()) {
      cursors_.push_back({*shape, nullptr});
      known = cursors_.end() - 1;
      SDL_Surface* const picture =
          SDL_CreateRGBSurfaceWithFormatFrom(known->shape.argb.data(), shape->size.w, shape->size.h, 32,
                                             shape->size.w * 4, SDL_PIXELFORMAT_ARGB8888);
      if (picture)
        known->cursor = SDL_CreateColorCursor(picture, shape->hotSpot.x, shape->hotSpot.y);
      SDL_FreeSurface(picture);
    }
    cursor_ = known->cursor;
  }
  if (inside_ || !shared())
    applyCursor();
}

void SdlVideo::applyCursor()
{
  if (cursor_)
    SDL_SetCursor(cursor_);
  SDL_ShowCursor(hidden_ ? SDL_DISABLE : SDL_ENABLE);
}

// SDL has one cursor for all windows, so an application's other windows get theirs back.
void SdlVideo::enter()
{
  inside_ = true;
  if (!shared())
    return;
  foreignCursor_ = SDL_GetCursor();
  foreignHidden_ = SDL_ShowCursor(SDL_QUERY) == SDL_DISABLE;
  applyCursor();
}

void SdlVideo::leave()
{
  inside_ = false;
  if (!foreignCursor_)
    return;
  SDL_SetCursor(foreignCursor_);
  SDL_ShowCursor(foreignHidden_ ? SDL_DISABLE : SDL_ENABLE);
  foreignCursor_ = nullptr;
}

void SdlVideo::capture(VideoWindow* window) { SDL_CaptureMouse(window ? SDL_TRUE : SDL_FALSE); }

void SdlVideo::clip(Rect const* screen)
{
  clipOn_ = screen != nullptr;
  clip_ = screen ? *screen : Rect{};
  for (SdlWindow* const window : windows_)
    applyClip(*window);
}

void SdlVideo::applyClip(SdlWindow& window)
{
  SDL_Window* const w = window.window();
  if (!w)
    return;
  Size const size = window.size();
  Rect const inside = intersection(shifted(clip_, {-window.origin().x, -window.origin().y}), {0, 0, size.w, size.h});
  SDL_Rect const rect{inside.left, inside.top, inside.width(), inside.height()};
  bool const on = clipOn_ && !inside.empty();
  if (on || SDL_GetWindowMouseRect(w))
    SDL_SetWindowMouseRect(w, on ? &rect : nullptr);
}

void SdlVideo::poll(VideoSink& sink, bool alone)
{
  alone_ = alone;
  for (SdlWindow* const window : windows_)
    if (!window->gone && !window->window()) {
      window->gone = true;
      sink.gone(window->handle());
    }
  {
    std::lock_guard const lock(wakeMutex_);
    awake_ = false;
  }
  wakePending_ = false;
  SDL_PumpEvents();
  sink_ = &sink;
  left_ = 0;
  SDL_FilterEvents(&SdlVideo::take, this);
  sink_ = nullptr;

  // An answer to an event may lead to another poll.
  std::vector<SDL_Event> const taken = std::exchange(taken_, {});
  for (SDL_Event const& event : taken) {
    translate(event, find(event), sink);
    if (event.type == SDL_DROPFILE || event.type == SDL_DROPTEXT)
      SDL_free(event.drop.file);
  }
  flush(sink);
}

// Runs under the lock of SDL's queue.
int SdlVideo::take(void* video, SDL_Event* event)
{
  SdlVideo& self = *static_cast<SdlVideo*>(video);
  // What it points to lives no longer than this call.
  if (event->type == SDL_SYSWMEVENT)
    self.systemEvent(*event, *self.sink_);
  if (!self.takes(*event, self.find(*event)))
    return ++self.left_ <= maxEventsOfOthers;
  if (event->type != SDL_SYSWMEVENT)
    self.taken_.push_back(*event);
  return 0;
}

int SdlVideo::look(void* video, SDL_Event* event)
{
  SdlVideo& self = *static_cast<SdlVideo*>(video);
  if (self.takes(*event, self.find(*event))) {
    self.seen_ = Queue::ours;
  } else if (self.seen_ == Queue::empty) {
    self.seen_ = Queue::others;
    self.oldest_ = {event->type, event->common.timestamp};
  }
  return 1;
}

bool SdlVideo::takes(SDL_Event const& event, SdlWindow const* window) const
{
  if (event.type == wakeEvent_)
    return true;
  if (event.type == SDL_SYSWMEVENT)
    return !shared() || systemEvents_ != SDL_ENABLE;
  if (!window)
    return !shared();
  return window->maker() == SdlWindow::Maker::library || alone_;
}

SdlVideo::Queue SdlVideo::lookAtQueue()
{
  seen_ = Queue::empty;
  SDL_FilterEvents(&SdlVideo::look, this);
  return seen_;
}

bool SdlVideo::canBlock() const
{
  char const* const driver = SDL_GetCurrentVideoDriver();
  return !windows_.empty() && driver && std::strcmp(driver, "dummy") != 0 && std::strcmp(driver, "offscreen") != 0;
}

void SdlVideo::wait(int milliseconds)
{
  using namespace std::chrono;
  auto const end = steady_clock::now() + std::chrono::milliseconds(milliseconds);
  for (;;) {
    SDL_PumpEvents();
    Queue const queue = lookAtQueue();
    if (queue == Queue::ours)
      return;
    // The application's loop gets its turn, unless it stands still behind ours or has not fetched the event for which it
    // got the last one.
    if (queue == Queue::others && !alone_ && std::exchange(reported_, oldest_) != oldest_)
      return;
    int rest = -1;
    if (milliseconds >= 0) {
      rest = static_cast<int>(ceil<std::chrono::milliseconds>(end - steady_clock::now()).count());
      if (rest <= 0)
        return;
    }
    if (queue == Queue::empty && canBlock()) {
      SDL_WaitEventTimeout(nullptr, rest);
    } else {
      cc_LeafWait lock(wakeMutex_);
      int const slice = rest < 0 ? idleSliceMs : std::min(rest, idleSliceMs);
      if (woken_.wait_for(lock.native(), std::chrono::milliseconds(slice), [this] { return awake_; }))
        return;
    }
  }
}

void SdlVideo::wake()
{
  if (wakePending_.exchange(true))
    return;
  {
    std::lock_guard const lock(wakeMutex_);
    awake_ = true;
  }
  woken_.notify_one();
  // Past the filters that an application may have set.
  SDL_Event event{};
  event.type = wakeEvent_;
  SDL_PeepEvents(&event, 1, SDL_ADDEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT);
}

}  // namespace plat::portable
