// The entry points of platform/sdl.h.
#include "platform/sdl.h"

#include "platform/portable/windows/core.h"
#include "platform/portable/windows/sdl/sdl_video.h"

#include <SDL.h>

namespace plat {

HWND attachSdlWindow(SDL_Window* window)
{
  portable::Core& core = portable::Core::instance();
  portable::SdlVideo* const video = portable::SdlVideo::current();
  if (!video)
    return {};
  HWND const handle =
      core.adopt([&](HWND made, Rect& screen) { return video->attachSdl(made, window, screen); });
  if (handle && (SDL_GetWindowFlags(window) & SDL_WINDOW_INPUT_FOCUS))
    core.focused(handle, true);
  return handle;
}

bool handleSdlEvent(SDL_Event const& event)
{
  portable::SdlVideo* const video = portable::SdlVideo::current();
  return video && video->handle(event, portable::Core::unstarted());
}

}  // namespace plat
