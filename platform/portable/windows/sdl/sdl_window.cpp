#include "platform/portable/windows/sdl/sdl_window.h"

#include "platform/portable/raster/blit.h"
#include "platform/portable/raster/region.h"
#include "platform/portable/windows/sdl/sdl_video.h"
#include "platform/window.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include <SDL.h>

namespace plat::portable {
namespace {


// The depth code of a surface whose pels are laid out as ours are; 0 for others. An alpha channel counts as another
// layout, since our top byte is 0.
int depthOf(SDL_PixelFormat const& format)
{
  switch (format.format) {
  case SDL_PIXELFORMAT_RGB555:
    return 15;
  case SDL_PIXELFORMAT_RGB565:
    return 16;
  case SDL_PIXELFORMAT_BGR24:
    return 24;
  case SDL_PIXELFORMAT_RGB888:
    return 32;
  default:
    return 0;
  }
}

PelBlock blockOf(SDL_Surface const& surface)
{
  return {static_cast<u8*>(surface.pixels), surface.w, surface.h, surface.pitch, depthOf(*surface.format)};
}

void convertRect(PelBlock const& to, PelBlock const& from, Rect const& r)
{
  static NearestCache unused;  // of the windows' thread; no surface here has a palette
  if (to.depth == from.depth)
    copyPels(to, from, {r, r, r}, nullptr);
  else
    convertPels(to, from, {r, r, r}, nullptr, screenPalette(), unused);
}

}  // namespace

SdlWindow::SdlWindow(SdlVideo& video, HWND handle, SDL_Window* window, Maker maker, Point origin, Ptr<X11Child> child)
    : video_(video), handle_(handle), id_(SDL_GetWindowID(window)), maker_(maker), origin_(origin),
      child_(std::move(child))
{
  video_.add(*this);
}

SdlWindow::~SdlWindow()
{
  video_.remove(*this);
  foreign_ = nullptr;
  if (child_)
    return;  // which destroys its SDL window itself
  if (SDL_Window* const w = window()) {
    if (maker_ == Maker::library)
      SDL_DestroyWindow(w);
    else
      SDL_SetWindowMouseRect(w, nullptr);
  }
}

// By number, since the pointer is dead after SDL_DestroyWindow and numbers do not come back.
SDL_Window* SdlWindow::window() const { return SDL_GetWindowFromID(id_); }

Size SdlWindow::size() const
{
  Size size;
  if (SDL_Window* const w = window())
    SDL_GetWindowSize(w, &size.w, &size.h);
  return size;
}

// An application's window is shown and hidden by the application: the core shows what it takes over and hides what it
// gives back.
void SdlWindow::show(bool visible, bool activate)
{
  SDL_Window* const w = window();
  if (!w || maker_ == Maker::application)
    return;
  if (!visible)
    return SDL_HideWindow(w);
  char const* const set = SDL_GetHint(SDL_HINT_WINDOW_NO_ACTIVATION_WHEN_SHOWN);
  std::string const former = set ? set : "";
  SDL_SetHint(SDL_HINT_WINDOW_NO_ACTIVATION_WHEN_SHOWN, activate ? "0" : "1");
  SDL_ShowWindow(w);
  SDL_SetHint(SDL_HINT_WINDOW_NO_ACTIVATION_WHEN_SHOWN, former.c_str());
}

void SdlWindow::minimize(bool on)
{
  SDL_Window* const w = window();
  if (!w || maker_ == Maker::application || child_ || ((SDL_GetWindowFlags(w) & SDL_WINDOW_MINIMIZED) != 0) == on)
    return;
  if (on)
    SDL_MinimizeWindow(w);
  else
    SDL_RestoreWindow(w);
}

// A window that already has the keyboard was activated by the window manager, and where it then stands is the manager's
// choice. An embedded one has its place in its owner.
void SdlWindow::raise()
{
  SDL_Window* const w = window();
  if (w && maker_ == Maker::library && !child_ && !(SDL_GetWindowFlags(w) & SDL_WINDOW_INPUT_FOCUS))
    SDL_RaiseWindow(w);
}

void SdlWindow::place(Rect const& screen)
{
  SDL_Window* const w = window();
  if (!w || child_)
    return;
  Point at;
  SDL_GetWindowPosition(w, &at.x, &at.y);
  origin_ = {screen.left, screen.top};
  if (at != origin_)
    SDL_SetWindowPosition(w, screen.left, screen.top);
  Size const wanted{std::max(screen.width(), 1), std::max(screen.height(), 1)};
  if (size() != wanted)
    SDL_SetWindowSize(w, wanted.w, wanted.h);
}

// SDL gives a new surface after each change of size, and others may have asked for it first; ours carry a mark.
SDL_Surface* SdlWindow::surface()
{
  SDL_Window* const w = window();
  SDL_Surface* const s = w ? SDL_GetWindowSurface(w) : nullptr;
  if (s && s->userdata != this) {
    s->userdata = this;
    whole_ = true;
  }
  return s;
}

// SDL keeps the pels of a surface until it is asked for a new one, even after the window's size has changed; for our own
// windows that is done here only. An application may ask at any time.
PelBlock SdlWindow::lend(Size size, int depth)
{
  lent_ = false;
  if (maker_ != Maker::library)
    return {};
  SDL_Surface* const s = surface();
  if (!s || s->w != size.w || s->h != size.h || depthOf(*s->format) != 32 || depth != 32)
    return {};
  lent_ = true;
  whole_ = false;
  return blockOf(*s);
}

// Where SDL knows no surface for the screen's format. Says so once where there is no other way either.
bool SdlWindow::foreign()
{
  if (!std::exchange(askedForeign_, true)) {
    std::string const reason = SDL_GetError();
    foreign_ = makeX11Pels(window());
    if (!foreign_) {
      std::string const text = "The pels of a window cannot be shown on this screen (" + reason +
                               "). Screens of 15, 16, 24 and 32 bits can.\n";
      std::fputs(text.c_str(), stderr);
      debugText(text);
    }
  }
  return foreign_ != nullptr;
}

void SdlWindow::copyForeign(PelBlock const& backing, Rect const& wanted)
{
  picture_.resize(static_cast<std::size_t>(backing.width) * static_cast<std::size_t>(backing.height));
  PelBlock const rgb{reinterpret_cast<u8*>(picture_.data()), backing.width, backing.height, backing.width * 4, 32};
  Rect const r = intersection(wanted, extent(backing));
  if (r.empty())
    return;
  convertRect(rgb, backing, r);
  foreign_->copy(rgb, r);
}

void SdlWindow::copy(PelBlock const& backing, std::span<Rect const> rects)
{
  SDL_Surface* const s = surface();
  if (!s) {
    if (window() && foreign())
      for (Rect const& r : rects)
        copyForeign(backing, r);
    return;
  }
  Rect const common = intersection(extent(backing), {0, 0, s->w, s->h});
  if (whole_)
    return copyRect(backing, *s, common);
  for (Rect const& r : rects)
    copyRect(backing, *s, intersection(r, common));
}

void SdlWindow::copyRect(PelBlock const& backing, SDL_Surface& to, Rect const& r)
{
  if (r.empty())
    return;
  PelBlock const block = blockOf(to);
  if (block.depth != 0)
    return convertRect(block, backing, r);
  // A layout that we do not have: by rows through one that SDL knows too.
  row_.resize(static_cast<std::size_t>(backing.width));
  for (i32 y = r.top; y < r.bottom; ++y) {
    PelBlock const source{backing.pels + std::ptrdiff_t{y} * backing.pitch, backing.width, 1, backing.pitch,
                          backing.depth};
    PelBlock const row{reinterpret_cast<u8*>(row_.data()), backing.width, 1, backing.width * 4, 32};
    convertRect(row, source, {r.left, 0, r.right, 1});
    u8* const at = static_cast<u8*>(to.pixels) + std::ptrdiff_t{y} * to.pitch +
                   std::ptrdiff_t{r.left} * to.format->BytesPerPixel;
    SDL_ConvertPixels(r.width(), 1, SDL_PIXELFORMAT_RGB888, row_.data() + r.left, row.pitch, to.format->format, at,
                      to.pitch);
  }
}

// Fails when the size has changed meanwhile. The event that tells so is on its way, and everything is shown then.
void SdlWindow::send(std::span<Rect const> rects)
{
  SDL_Window* const w = window();
  if (!w)
    return;
  if (foreign_)
    return foreign_->send(rects);
  if (std::exchange(whole_, false) && !lent_) {
    SDL_UpdateWindowSurface(w);
    return;
  }
  Size const now = size();
  rects_.clear();
  for (Rect const& wanted : rects) {
    Rect const r = intersection(wanted, {0, 0, now.w, now.h});
    if (!r.empty())
      rects_.push_back({r.left, r.top, r.width(), r.height()});
  }
  if (!rects_.empty())
    SDL_UpdateWindowSurfaceRects(w, rects_.data(), static_cast<int>(rects_.size()));
}

}  // namespace plat::portable
