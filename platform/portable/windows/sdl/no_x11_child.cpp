// A build without X11: windows of other toolkits cannot be used.
#include "platform/portable/windows/sdl/x11_child.h"
#include "platform/portable/windows/sdl/x11_pels.h"

namespace plat::portable {

Ptr<X11Child> makeX11Child(uptr) { return nullptr; }


Ptr<ForeignPels> makeX11Pels(SDL_Window*) { return nullptr; }

}  // namespace plat::portable
