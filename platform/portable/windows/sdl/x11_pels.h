// Pels on a screen whose format SDL does not know, as those of 8 and of 30 bits on X11: written by Xlib into the window that
// SDL made.
#pragma once

#include "platform/portable/raster/screen.h"

#include <span>

struct SDL_Window;

namespace plat::portable {

class ForeignPels {
public:
  virtual ~ForeignPels() = default;
  virtual void copy(PelBlock const& rgb, Rect const&) = 0;  // a block of depth 32, in window coordinates
  virtual void send(std::span<Rect const>) = 0;
};

// Null when the window is none of X11, or of a visual that cannot be written.
Ptr<ForeignPels> makeX11Pels(SDL_Window*);

}  // namespace plat::portable
