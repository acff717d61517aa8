// Windows of an application that uses SDL itself. It keeps its loop: each event that it takes from SDL's queue goes to
// handleSdlEvent, and pump(0) between them does the rest (timers, posted messages, painting). All calls on the thread
// that started SDL's video.
#pragma once

#include "platform/types.h"

struct SDL_Window;
union SDL_Event;

namespace plat {

// An SDL window as a window of ours; plat::detach ends that, and the SDL window stays its maker's. Its pels are those of
// SDL_GetWindowSurface, so no SDL_Renderer may live on it. Null when it has one, or when the library runs headless.
HWND attachSdlWindow(SDL_Window*);

// True if the event was for a window of ours or attached. That an attached window is to close is the application's
// affair; what a dropped file is called stays the application's to free.
bool handleSdlEvent(SDL_Event const&);

}  // namespace plat
