#include "platform/portable/windows/core.h"
#include "platform/portable/windows/sdl/sdl_window.h"
#include "tests/platform/sdl/sdl_fixture.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <SDL.h>
#include <SDL_syswm.h>

using namespace plat;

// What the message bus library that SDL talks to keeps at its end is not ours to free.
extern "C" char const* __lsan_default_suppressions();
extern "C" char const* __lsan_default_suppressions() { return "leak:libdbus"; }

namespace {

bool initHeadless()
{
  InitOptions options;
  options.video = InitOptions::headless;
  return init(options);
}

LResult justMessages(HWND window, unsigned number, WParam wParam, LParam lParam)
{
  return record(window, number, wParam, lParam);
}

// A process in which the library is used without init: says what became of it.
int firstUse()
{
  WindowDesc desc;
  desc.style = 0x10000000;
  desc.rect = {0, 0, 40, 30};
  desc.proc = &justMessages;
  HWND const window = platform().windows.create(desc);
  pump(0);
  char const* const driver = SDL_GetCurrentVideoDriver();
  std::printf("%s %s\n", driver ? driver : "headless", platform().windows.visible(window) ? "visible" : "hidden");
  return 0;
}

}  // namespace

SdlTest::SdlTest(char const* driver, int server)
{
  EXPECT_TRUE(initHeadless());
  SDL_Quit();
  setenv("SDL_VIDEODRIVER", driver, 1);
  setenv("DISPLAY", xserver::name(server).c_str(), 1);
  xserver::tool({"mousemove", "1000", "750"});
  EXPECT_TRUE(init());
  EXPECT_STREQ(SDL_GetCurrentVideoDriver(), driver);
  recorder = {};
}

SdlTest::~SdlTest()
{
  recorder.hook = nullptr;
  plat::dropHandler({});
  for (HWND const window : std::exchange(made_, {}))
    windows().destroy(window);
  plat::testing::drain();
  EXPECT_TRUE(initHeadless());
}

HWND SdlTest::top(Rect const& rect, std::string const& title, u32 style)
{
  WindowDesc desc;
  desc.style = style;
  desc.rect = rect;
  desc.title = title;
  desc.proc = &record;
  made_.push_back(windows().create(desc));
  return made_.back();
}

bool SdlTest::comes(std::function<bool()> const& condition)
{
  using namespace std::chrono;
  auto const end = steady_clock::now() + seconds(10);
  while (!condition()) {
    if (steady_clock::now() > end)
      return false;
    pump(10);
  }
  return true;
}

bool SdlTest::comes(unsigned message)
{
  return comes([=] { return !recorder.of(message).empty(); });
}

// After a round trip of our own connection, and of SDL's, the server has nothing more to tell.
void SdlTest::settle()
{
  for (int i = 0; i < 3; ++i) {
    xserver::pointer();
    int x, y;
    SDL_GetGlobalMouseState(&x, &y);
    plat::testing::drain();
  }
  recorder.clear();
}

SDL_Window* SdlTest::sdl(HWND window)
{
  auto const* const video =
      dynamic_cast<portable::SdlWindow*>(portable::Core::instance().videoWindow(window));
  return video ? video->window() : nullptr;
}

xserver::Id SdlTest::id(HWND window)
{
  SDL_SysWMinfo info;
  SDL_VERSION(&info.version);
  return SDL_GetWindowWMInfo(sdl(window), &info) ? info.info.x11.window : 0;
}

void SdlTest::fill(HWND window, Rect const& r, COLORREF color)
{
  HDC const dc = windows().getDC(window);
  ASSERT_NE(painter(dc), nullptr);
  painter(dc)->fillRect(r, color);
  windows().releaseDC(window, dc);
}

void SdlTest::pattern(HWND window)
{
  Rect const client = windows().clientRect(window);
  HDC const dc = windows().getDC(window);
  ASSERT_NE(painter(dc), nullptr);
  COLORREF color = 0x123456;
  for (i32 y = 0; y < client.bottom; y += 8)
    for (i32 x = 0; x < client.right; x += 8) {
      painter(dc)->fillRect({x, y, x + 8, y + 8}, color & 0xFFFFFF);
      color = color * 1664525u + 1013904223u;
    }
  windows().releaseDC(window, dc);
}

bool SdlTest::screenShows(HWND window)
{
  Size size;
  std::vector<u32> const wanted = plat::testing::shot(window, size);
  Point const at = windows().clientToScreen(window, {});
  return size.w > 0 && xserver::grab({at.x, at.y, at.x + size.w, at.y + size.h}) == wanted;
}

int main(int argc, char** argv)
{
  if (argc == 2 && std::strcmp(argv[1], "--first-use") == 0)
    return firstUse();
  ::testing::InitGoogleTest(&argc, argv);
  // The list of tests is wanted also where no server can be started.
  if (GTEST_FLAG_GET(list_tests))
    return RUN_ALL_TESTS();
  // Only X11 and what the tests choose.
  unsetenv("WAYLAND_DISPLAY");
  if (!xserver::start()) {
    std::fprintf(stderr, "Xvfb does not start\n");
    return 1;
  }
  int const failures = RUN_ALL_TESTS();
  SDL_Quit();
  xserver::stop();
  return failures;
}
