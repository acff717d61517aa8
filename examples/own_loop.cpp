// An application with a loop of its own: it does its work between rounds of the library's.
#include "krsdisp.h"

namespace {

bool open = true;

std::intptr_t windowProc(HWND window, unsigned message, std::uintptr_t wParam, std::intptr_t lParam)
{
  if (message == plat::msg::destroyed)
    open = false;
  return plat::platform().windows.callProc(nullptr, window, message, wParam, lParam);
}

// A bright bar that moves to the right.
void paint(ccPelBuffer<unsigned char>& image, long step)
{
  for (long y = 0; y < image.height(); ++y)
    for (long x = 0; x < image.width(); ++x)
      image.setPel(x, y, static_cast<unsigned char>((x - step) & 127));
}

}  // namespace

int main()
{
  if (!plat::init())
    return 1;  // no display
  HWND const window = plat::platform().windows.create(
      {.title = "Own loop",
       .style = plat::style::top | plat::style::visible,
       .rect = {40, 40, 680, 520},
       .proc = &windowProc});
  ccWin32Display display(window);
  ccPelBuffer<unsigned char> image(320, 240);
  for (long step = 0; open && plat::pump(20); ++step) {
    paint(image, step);
    display.image(image, /*mapPels=*/true);
  }
  return 0;
}
