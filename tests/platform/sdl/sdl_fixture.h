// Windows on a screen that SDL drives, and waiting for what comes from it.
#pragma once

#include "platform/paint.h"
#include "tests/platform/sdl/x_server.h"
#include "tests/platform/window_fixture.h"

#include <string>

struct SDL_Window;

// Starts SDL's video anew for each test, on the dummy driver or on one of the virtual X servers.
class SdlTest : public testing::Test {
protected:
  static constexpr plat::u32 shown = 0x10000000, child = 0x40000000;

  explicit SdlTest(char const* driver, int server = 0);
  ~SdlTest() override;

  static plat::WindowSystem& windows() { return plat::platform().windows; }
  HWND top(plat::Rect const&, std::string const& title = "test", plat::u32 style = shown);

  // Pumps until it holds; false after ten seconds, which no machine in order needs.
  static bool comes(std::function<bool()> const&);
  static bool comes(unsigned message);  // since the last recorder.clear()
  static void settle();                 // all events that are on their way, then forgets the messages

  static SDL_Window* sdl(HWND);
  static xserver::Id id(HWND);
  static void fill(HWND, plat::Rect const&, COLORREF);
  static void pattern(HWND);  // a colour of its own for each block of 8 x 8 pels
  static bool screenShows(HWND);  // the X server's pels are the window's

private:
  std::vector<HWND> made_;
};

class DummyTest : public SdlTest {
protected:
  DummyTest() : SdlTest("dummy") {}
};

class ScreenTest : public SdlTest {
protected:
  ScreenTest() : SdlTest("x11") {}
};
