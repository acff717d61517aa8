// A build without windows on a real screen: everything runs headless.
#include "platform/portable/windows/video.h"
#include "platform/sdl.h"

namespace plat::portable {

Ptr<Video> makeWindowVideo() { return nullptr; }

}  // namespace plat::portable

namespace plat {

HWND attachSdlWindow(SDL_Window*) { return {}; }

bool handleSdlEvent(SDL_Event const&) { return false; }

}  // namespace plat
