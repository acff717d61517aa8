#include "platform/portable/windows/sdl/x11_child.h"

#include "foundation/leaf_mutex.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <SDL.h>
#include <SDL_syswm.h>
#include <X11/Xlib.h>

namespace plat::portable {
namespace {

constexpr long childEvents = KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask | PointerMotionMask |
                             EnterWindowMask | LeaveWindowMask | ExposureMask | FocusChangeMask | StructureNotifyMask |
                             PropertyChangeMask | KeymapStateMask;

// Xlib ends the process at an error, and a window that others may destroy at any time makes errors nobody can prevent.
// While such windows stand, errors that name them are passed over; all others go to the handler that was there.
class ErrorShield {
public:
  static ErrorShield& instance()
  {
    static ErrorShield* const shield = new ErrorShield;  // the handler may run until the process ends
    return *shield;
  }

  void add(::Window id)
  {
    std::lock_guard const lock(mutex_);
    if (ids_.empty())
      former_ = XSetErrorHandler(&ErrorShield::handle);
    ids_.push_back(id);
  }

  // After a round trip to the server, so that no error can still come.
  void remove(::Window id)
  {
    std::lock_guard const lock(mutex_);
    auto const found = std::find(ids_.begin(), ids_.end(), id);
    if (found == ids_.end())
      return;
    ids_.erase(found);
    if (!ids_.empty())
      return;
    // Not ours to take away when somebody has set another one since.
    XErrorHandler const present = XSetErrorHandler(former_);
    if (present != &ErrorShield::handle)
      XSetErrorHandler(present);
  }

private:
  static int handle(Display* display, XErrorEvent* error)
  {
    ErrorShield& shield = instance();
    XErrorHandler former;
    {
      std::lock_guard const lock(shield.mutex_);
      if (std::find(shield.ids_.begin(), shield.ids_.end(), error->resourceid) != shield.ids_.end())
        return 0;
      former = shield.former_;
    }
    return former ? former(display, error) : 0;
  }

  cc_LeafMutex<cc_LockRank::x11Errors> mutex_;
  std::vector<::Window> ids_;
  XErrorHandler former_ = nullptr;
};

// SDL tells its connection only for a window.
Display* sdlDisplay()
{
  char const* const driver = SDL_GetCurrentVideoDriver();
  if (!driver || std::strcmp(driver, "x11") != 0)
    return nullptr;
  SDL_Window* const probe = SDL_CreateWindow("", 0, 0, 1, 1, SDL_WINDOW_HIDDEN);
  if (!probe)
    return nullptr;
  SDL_SysWMinfo info;
  SDL_VERSION(&info.version);
  bool const known = SDL_GetWindowWMInfo(probe, &info) && info.subsystem == SDL_SYSWM_X11;
  SDL_DestroyWindow(probe);
  return known ? info.info.x11.display : nullptr;
}

class Child final : public X11Child {
public:
  Child(Display* display, ::Window owner) : display_(display), owner_(owner)
  {
    ErrorShield::instance().add(owner_);
    XWindowAttributes attributes;
    if (!XGetWindowAttributes(display_, owner_, &attributes) || attributes.c_class != InputOutput)
      return;
    found_ = true;
    size_ = {attributes.width, attributes.height};
    formerMask_ = attributes.your_event_mask;
    XSelectInput(display_, owner_, formerMask_ | StructureNotifyMask);
    XSetWindowAttributes wanted;
    wanted.event_mask = childEvents;
    wanted.background_pixmap = None;  // the server clears nothing, so nothing flickers
    wanted.bit_gravity = NorthWestGravity;
    child_ = XCreateWindow(display_, owner_, 0, 0, static_cast<unsigned>(size_.w), static_cast<unsigned>(size_.h), 0,
                           CopyFromParent, InputOutput, nullptr, CWEventMask | CWBackPixmap | CWBitGravity, &wanted);
    ErrorShield::instance().add(child_);
    XMapWindow(display_, child_);
    XSync(display_, False);
    window_ = SDL_CreateWindowFrom(reinterpret_cast<void const*>(child_));
    // SDL chooses events too; ours are added to these.
    if (window_ && XGetWindowAttributes(display_, child_, &attributes))
      XSelectInput(display_, child_, attributes.your_event_mask | childEvents);
  }

  ~Child() override
  {
    if (window_)
      SDL_DestroyWindow(window_);  // leaves the X11 window
    if (found_) {
      if (!gone_) {
        XDestroyWindow(display_, child_);
        XSelectInput(display_, owner_, formerMask_);
      }
      XSync(display_, False);
      ErrorShield::instance().remove(child_);
    }
    ErrorShield::instance().remove(owner_);
  }

  SDL_Window* window() override { return window_; }

  News look(SDL_Event const& event) override
  {
    SDL_SysWMmsg const* const message = event.syswm.msg;
    if (!message || message->subsystem != SDL_SYSWM_X11)
      return News::nothing;
    XEvent const& x = message->msg.x11.event;
    if (x.type == DestroyNotify && (x.xdestroywindow.window == child_ || x.xdestroywindow.window == owner_)) {
      gone_ = true;
      return News::gone;
    }
    if (x.type != ConfigureNotify || x.xconfigure.window != owner_ || gone_)
      return News::nothing;
    Size const wanted{x.xconfigure.width, x.xconfigure.height};
    if (wanted != size_) {
      size_ = wanted;
      XResizeWindow(display_, child_, static_cast<unsigned>(wanted.w), static_cast<unsigned>(wanted.h));
      XFlush(display_);
    }
    return News::moved;
  }

  Point origin() override
  {
    Point at;
    ::Window under;
    if (!gone_)
      XTranslateCoordinates(display_, child_, XDefaultRootWindow(display_), 0, 0, &at.x, &at.y, &under);
    return at;
  }

private:
  Display* display_;
  ::Window owner_, child_ = 0;
  SDL_Window* window_ = nullptr;
  Size size_;
  long formerMask_ = 0;  // what SDL itself wants to hear of the owner, if that is a window of SDL's
  bool found_ = false;
  bool gone_ = false;
};

}  // namespace

Ptr<X11Child> makeX11Child(uptr owner)
{
  Display* const display = sdlDisplay();
  if (!display || !owner)
    return nullptr;
  auto child = std::make_unique<Child>(display, static_cast<::Window>(owner));
  return child->window() ? std::move(child) : nullptr;
}

}  // namespace plat::portable
