// An FLTK application with an image of the library's in one of its X11 windows. FLTK's loop runs; a timeout of it gives
// the library its turn.
#include "krsdisp.h"

#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Double_Window.H>
#include <FL/x.H>

namespace {

constexpr double turn = 0.01;  // seconds

void giveTurn(void*)
{
  plat::pump(0);
  Fl::repeat_timeout(turn, &giveTurn);
}

void toggleMag(Fl_Widget*, void* to)
{
  auto& display = *static_cast<ccWin32Display*>(to);
  display.mag(display.mag() == 1 ? 2 : 1);
}

}  // namespace

int main()
{
  Fl_Window frame(660, 540, "An FLTK application");
  Fl_Button button(10, 10, 100, 25, "Magnify");
  Fl_Window view(10, 45, 640, 485);  // a window of its own in X11
  view.end();
  frame.end();
  frame.resizable(view);
  frame.show();
  while (!fl_xid(&view))
    Fl::wait();
  XSync(fl_display, 0);  // so that the library's connection sees the window too

  HWND const attached = plat::attachNativeWindow(fl_xid(&view));
  if (!attached)
    return 1;
  {
    ccWin32Display display(attached);
    ccPelBuffer<unsigned char> picture(256, 192);
    for (long y = 0; y < picture.height(); ++y)
      for (long x = 0; x < picture.width(); ++x)
        picture.setPel(x, y, static_cast<unsigned char>(x ^ y));
    display.image(picture, /*mapPels=*/true);
    button.callback(&toggleMag, &display);

    Fl::add_timeout(turn, &giveTurn);
    Fl::run();
  }
  plat::detach(attached);
  return 0;
}
