// A top-level window on the screen through SDL: made by us, by an application that uses SDL, or inside an X11 window of
// another toolkit.
#pragma once

#include "platform/portable/windows/sdl/x11_child.h"
#include "platform/portable/windows/sdl/x11_pels.h"
#include "platform/portable/windows/video.h"

#include <vector>

#include <SDL_rect.h>

struct SDL_Surface;
struct SDL_Window;

namespace plat::portable {

class SdlVideo;

class SdlWindow final : public VideoWindow {
public:
  enum class Maker { library, application };

  SdlWindow(SdlVideo&, HWND, SDL_Window*, Maker, Point origin, Ptr<X11Child> = nullptr);
  ~SdlWindow() override;

  void show(bool visible, bool activate) override;
  void minimize(bool) override;
  void raise() override;
  void place(Rect const& screen) override;
  PelBlock lend(Size, int depth) override;
  void copy(PelBlock const& backing, std::span<Rect const>) override;
  void send(std::span<Rect const>) override;

  HWND handle() const { return handle_; }
  u32 id() const { return id_; }
  Maker maker() const { return maker_; }
  X11Child* child() const { return child_.get(); }
  SDL_Window* window() const;  // null once its maker has destroyed it
  Size size() const;
  Point origin() const { return origin_; }  // of the pels, on the screen as the core knows it
  void origin(Point p) { origin_ = p; }

  // Of the events that are just being looked at.
  bool exposed = false;
  bool gone = false;  // told
  std::vector<std::string> dropping;  // until the drop is complete

private:
  SDL_Surface* surface();
  bool foreign();
  void copyForeign(PelBlock const& backing, Rect const&);
  void copyRect(PelBlock const& backing, SDL_Surface&, Rect const&);

  SdlVideo& video_;
  HWND handle_;
  u32 id_;
  Maker maker_;
  Point origin_;
  Ptr<X11Child> child_;
  bool lent_ = false;
  bool whole_ = false;  // the surface is new and must be shown as a whole
  std::vector<SDL_Rect> rects_;
  std::vector<u32> row_;
  Ptr<ForeignPels> foreign_;  // where SDL has no surface for the screen
  bool askedForeign_ = false;
  std::vector<u32> picture_;  // what is handed to them
};

}  // namespace plat::portable
