// An SDL application that keeps its window and its loop, and shows an image with the library in that window.
#include "krsdisp.h"
#include "platform/sdl.h"

#include <SDL.h>

int main(int, char**)
{
  if (SDL_Init(SDL_INIT_VIDEO) != 0)
    return 1;
  SDL_Window* const window = SDL_CreateWindow("An SDL application", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                              640, 480, SDL_WINDOW_RESIZABLE);
  HWND const attached = plat::attachSdlWindow(window);
  if (!attached)
    return 1;
  {
    ccWin32Display display(attached);
    ccPelBuffer<unsigned char> ramp(256, 192);
    for (long y = 0; y < ramp.height(); ++y)
      for (long x = 0; x < ramp.width(); ++x)
        ramp.setPel(x, y, static_cast<unsigned char>(x ^ y));
    display.image(ramp, /*mapPels=*/true);
    display.mag(2);

    for (bool open = true; open && plat::pump(20);) {
      SDL_Event event;
      while (SDL_PollEvent(&event)) {
        plat::handleSdlEvent(event);
        if (event.type == SDL_QUIT || (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_CLOSE))
          open = false;
      }
    }
  }
  plat::detach(attached);
  SDL_DestroyWindow(window);
  SDL_Quit();
  return 0;
}
