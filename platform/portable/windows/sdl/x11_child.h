// A window of ours inside an X11 window of another toolkit. SDL could show pels in that window itself, but gets no
// events from it, and selecting them would take the owner's. So the pels and the input are a child's, made on SDL's
// connection; it covers its owner and follows its size.
#pragma once

#include "platform/types.h"

struct SDL_Window;
union SDL_Event;

namespace plat::portable {

class X11Child {
public:
  enum class News { nothing, moved, gone };

  virtual ~X11Child() = default;  // destroys the child; the owner stays

  virtual SDL_Window* window() = 0;
  virtual News look(SDL_Event const& system) = 0;  // at an SDL_SYSWMEVENT; these must be enabled
  virtual Point origin() = 0;                      // on the screen
};

// Null when there is no such window, or SDL's screen is not X11.
Ptr<X11Child> makeX11Child(uptr owner);

}  // namespace plat::portable
