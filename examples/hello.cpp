// Shows a grey ramp threefold in a window.
#include "krsdisp.h"

int main()
{
  HWND const window = plat::platform().windows.create(
      {.title = "Ramp", .style = plat::style::top | plat::style::visible, .rect = {0, 0, 800, 600}});
  ccWin32Display display(window);
  ccPelBuffer<unsigned char> ramp(256, 192);
  for (long y = 0; y < ramp.height(); ++y)
    for (long x = 0; x < ramp.width(); ++x)
      ramp.setPel(x, y, static_cast<unsigned char>(x));
  display.image(ramp, /*mapPels=*/true);
  display.mag(3);
  return plat::run();
}
