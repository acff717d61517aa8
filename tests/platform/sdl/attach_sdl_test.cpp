// Windows of an application that uses SDL itself and keeps its loop.
#include "platform/sdl.h"
#include "tests/platform/sdl/sdl_fixture.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include <SDL.h>
#include <SDL_syswm.h>
#include <sys/resource.h>

using namespace plat;
using xserver::tool;

namespace {

LParam at(i32 x, i32 y)
{
  return static_cast<LParam>(u32{static_cast<std::uint16_t>(y)} << 16 | static_cast<std::uint16_t>(x));
}

// The application: it has SDL running, a window that it attaches and another one that it keeps to itself.
class AttachSdl : public ScreenTest {
protected:
  AttachSdl()
  {
    EXPECT_EQ(SDL_InitSubSystem(SDL_INIT_VIDEO), 0);
    theirs = SDL_CreateWindow("application", 100, 60, 240, 180, SDL_WINDOW_RESIZABLE);
    other = SDL_CreateWindow("other", 500, 60, 100, 80, 0);
    theirId = SDL_GetWindowID(theirs);
    window = attachSdlWindow(theirs);
    windows().subclass(window, &record);
    EXPECT_TRUE(hears([this] { return SDL_GetKeyboardFocus() == other; }));
    xserver::focusWindow(idOf(theirs));
    EXPECT_TRUE(hears([this] { return SDL_GetKeyboardFocus() == theirs; }));
    EXPECT_TRUE(hears([] { return !recorder.of(15).empty(); }));
    quiet();
  }

  ~AttachSdl() override
  {
    detach(window);
    SDL_DestroyWindow(other);
    if (SDL_GetWindowFromID(theirId))
      SDL_DestroyWindow(theirs);
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
  }

  static xserver::Id idOf(SDL_Window* w);

  // The application's loop, until it holds. What is not for us it keeps.
  bool hears(std::function<bool()> const& condition)
  {
    using namespace std::chrono;
    auto const end = steady_clock::now() + seconds(10);
    while (!condition()) {
      if (steady_clock::now() > end)
        return false;
      SDL_Event event;
      while (SDL_PollEvent(&event))
        if (!handleSdlEvent(event))
          kept.push_back(event);
      pump(0);
      SDL_WaitEventTimeout(nullptr, 5);
    }
    return true;
  }
  bool hears(unsigned message)
  {
    return hears([=] { return !recorder.of(message).empty(); });
  }

  void quiet()
  {
    for (int i = 0; i < 3; ++i) {
      int x, y;
      xserver::pointer();
      SDL_GetGlobalMouseState(&x, &y);
      SDL_PumpEvents();
      bool once = false;
      hears([&] { return std::exchange(once, true); });
    }
    recorder.clear();
    kept.clear();
  }

  static SDL_Event keyDown(SDL_Window* w, SDL_Keycode key)
  {
    SDL_Event e{};
    e.type = SDL_KEYDOWN;
    e.key.windowID = SDL_GetWindowID(w);
    e.key.keysym.sym = key;
    return e;
  }

  static long waiting(Uint32 type)
  {
    SDL_Event list[100];
    return SDL_PeepEvents(list, 100, SDL_PEEKEVENT, type, type);
  }

  SDL_Window* theirs = nullptr;
  SDL_Window* other = nullptr;
  u32 theirId = 0;
  HWND window = nullptr;
  std::vector<SDL_Event> kept;
};

}  // namespace

xserver::Id AttachSdl::idOf(SDL_Window* w)
{
  SDL_SysWMinfo info;
  SDL_VERSION(&info.version);
  return SDL_GetWindowWMInfo(w, &info) ? info.info.x11.window : 0;
}

TEST_F(AttachSdl, showsPelsInTheApplicationsWindow)
{
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(windows().windowRect(window), (Rect{100, 60, 340, 240}));

  pattern(window);

  EXPECT_TRUE(hears([this] { return screenShows(window); }));
}

TEST_F(AttachSdl, hearsWhatTheApplicationHandsOver)
{
  tool({"mousemove", "130", "100", "click", "1"});
  ASSERT_TRUE(hears(514));
  EXPECT_EQ(recorder.of(513)[0].lParam, at(30, 40));

  tool({"type", "--delay", "1", "hi"});
  ASSERT_TRUE(hears([] { return recorder.of(258).size() == 2; }));
  EXPECT_TRUE(kept.empty());
}

TEST_F(AttachSdl, eventsOfOtherWindowsAreTheApplicationsOwn)
{
  tool({"mousemove", "530", "100", "click", "1"});

  ASSERT_TRUE(hears([this] {
    return std::any_of(kept.begin(), kept.end(), [](SDL_Event const& e) { return e.type == SDL_MOUSEBUTTONUP; });
  }));
  EXPECT_TRUE(recorder.of(513).empty());
}

TEST_F(AttachSdl, pumpLeavesTheQueueToTheApplication)
{
  SDL_Event mine = keyDown(other, SDLK_a), yours = keyDown(theirs, SDLK_b);
  SDL_PushEvent(&mine);
  SDL_PushEvent(&yours);

  for (int i = 0; i < 5; ++i)
    pump(0);

  EXPECT_EQ(waiting(SDL_KEYDOWN), 2);
  EXPECT_TRUE(recorder.of(256).empty());
}

TEST_F(AttachSdl, pumpReturnsForTheApplicationsEvents)
{
  using namespace std::chrono;
  SDL_Event mine = keyDown(other, SDLK_a);
  SDL_PushEvent(&mine);
  auto const start = steady_clock::now();

  pump(20000);

  EXPECT_LT(steady_clock::now() - start, seconds(10));
}

TEST_F(AttachSdl, eventsThatTheApplicationDoesNotFetchKeepNoProcessorBusy)
{
  SDL_Event mine = keyDown(other, SDLK_a);
  SDL_PushEvent(&mine);
  pump(20000);
  rusage before, after;
  getrusage(RUSAGE_SELF, &before);

  for (int i = 0; i < 10; ++i)
    pump(100);

  getrusage(RUSAGE_SELF, &after);
  auto const us = [](rusage const& r) {
    return (r.ru_utime.tv_sec + r.ru_stime.tv_sec) * 1000000 + r.ru_utime.tv_usec + r.ru_stime.tv_usec;
  };
  EXPECT_LT(us(after) - us(before), 50000);
  EXPECT_EQ(waiting(SDL_KEYDOWN), 1);
}

TEST_F(AttachSdl, runTakesWhatIsForAttachedWindows)
{
  recorder.hook = [](Message const& m, LResult&) {
    if (m.number == 256)
      quit(7);
    return false;
  };
  SDL_Event mine = keyDown(other, SDLK_a), yours = keyDown(theirs, SDLK_b);
  SDL_PushEvent(&mine);
  SDL_PushEvent(&yours);

  EXPECT_EQ(run(), 7);

  ASSERT_EQ(recorder.of(256).size(), 1u);
  EXPECT_EQ(recorder.of(256)[0].wParam, 0x42u);
  EXPECT_EQ(waiting(SDL_KEYDOWN), 1);
}

TEST_F(AttachSdl, filtersOfTheApplicationDoNotKeepTheLoopAsleep)
{
  using namespace std::chrono;
  SDL_SetEventFilter([](void*, SDL_Event*) { return 0; }, nullptr);
  auto const start = steady_clock::now();
  bool called = false;
  std::thread poster([&] { windows().post(window, [&] { called = true; }); });
  while (!called && steady_clock::now() < start + seconds(10))
    pump(20000);
  poster.join();
  SDL_SetEventFilter(nullptr, nullptr);

  EXPECT_TRUE(called);
  EXPECT_LT(steady_clock::now() - start, seconds(10));
}

TEST_F(AttachSdl, followsTheSizeOfTheWindow)
{
  xserver::moveWindow(idOf(theirs), {100, 60, 400, 300});
  ASSERT_TRUE(hears([] { return !recorder.of(5).empty() && recorder.of(5).back().lParam == at(300, 240); }));

  pattern(window);
  EXPECT_TRUE(hears([this] { return screenShows(window); }));
}

TEST_F(AttachSdl, whatWasCoveredIsShownAgainWithoutMessage15)
{
  pattern(window);
  xserver::Id const cover = xserver::makeWindow({120, 80, 300, 200}, 0xFF00FF);
  quiet();

  xserver::destroyWindow(cover);

  EXPECT_TRUE(hears([this] { return screenShows(window); }));
  EXPECT_TRUE(recorder.of(15).empty());
}

TEST_F(AttachSdl, closingIsTheApplicationsAffair)
{
  xserver::askToClose(idOf(theirs));

  // Nobody has asked the library to keep this event, so the application sees it by its watch.
  int closes = 0;
  auto const watch = [](void* count, SDL_Event* e) {
    *static_cast<int*>(count) += e->type == SDL_WINDOWEVENT && e->window.event == SDL_WINDOWEVENT_CLOSE;
    return 0;
  };
  SDL_AddEventWatch(watch, &closes);
  EXPECT_TRUE(hears([&] { return closes == 1; }));
  SDL_DelEventWatch(watch, &closes);
  quiet();
  EXPECT_TRUE(windows().isWindow(window));
}

TEST_F(AttachSdl, aMessageBoxServesItselfWhileTheApplicationsLoopStandsStill)
{
  bool pushed = false;
  windows().post(window, [&] {
    SDL_Event mine = keyDown(other, SDLK_x), enter = keyDown(theirs, SDLK_RETURN);
    SDL_PushEvent(&mine);
    SDL_PushEvent(&enter);
    pushed = true;
  });

  int const answer = platform().menus.messageBox(window, "Ready?", "Question", 0);

  EXPECT_TRUE(pushed);
  EXPECT_EQ(answer, 1);
  EXPECT_EQ(waiting(SDL_KEYDOWN), 1);  // the other window's
}

TEST_F(AttachSdl, detachLeavesTheWindowToTheApplication)
{
  detach(window);

  EXPECT_FALSE(windows().isWindow(window));
  EXPECT_TRUE(SDL_GetWindowFlags(theirs) & SDL_WINDOW_SHOWN);
  EXPECT_FALSE(handleSdlEvent(keyDown(theirs, SDLK_a)));
  HWND const again = attachSdlWindow(theirs);
  EXPECT_NE(again, nullptr);
  detach(again);
}

TEST_F(AttachSdl, aWindowThatTheApplicationDestroysIsGone)
{
  pattern(window);

  SDL_DestroyWindow(theirs);
  theirId = 0;
  pattern(window);

  EXPECT_TRUE(hears([this] { return !windows().isWindow(window); }));
  EXPECT_EQ(recorder.of(2).size(), 1u);
}

TEST_F(AttachSdl, onlyWindowsThatCanShowASurfaceAreTaken)
{
  EXPECT_EQ(attachSdlWindow(nullptr), nullptr);
  EXPECT_EQ(attachSdlWindow(theirs), nullptr);  // it is attached

  SDL_Renderer* const renderer = SDL_CreateRenderer(other, -1, SDL_RENDERER_SOFTWARE);
  ASSERT_NE(renderer, nullptr);
  EXPECT_EQ(attachSdlWindow(other), nullptr);
  SDL_DestroyRenderer(renderer);
}

TEST_F(AttachSdl, theApplicationsCursorComesBackOutside)
{
  SDL_Cursor* const hand = SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_HAND);
  SDL_SetCursor(hand);
  tool({"mousemove", "130", "100"});
  ASSERT_TRUE(hears(512));
  windows().setCursor(windows().loadCursor(606));
  EXPECT_NE(SDL_GetCursor(), hand);

  tool({"mousemove", "530", "100"});
  EXPECT_TRUE(hears([=] { return SDL_GetCursor() == hand; }));
  windows().setCursor(windows().loadCursor(601));
  EXPECT_EQ(SDL_GetCursor(), hand);
  SDL_FreeCursor(hand);
}

TEST_F(AttachSdl, theNameOfADroppedFileStaysTheApplications)
{
  std::vector<std::string> files;
  dropHandler([&](HWND, std::vector<std::string> const& list) { files = list; });
  SDL_Event e{};
  e.type = SDL_DROPFILE;
  e.drop.windowID = SDL_GetWindowID(theirs);
  e.drop.file = SDL_strdup("/tmp/picture");

  EXPECT_TRUE(handleSdlEvent(e));
  SDL_free(e.drop.file);
  e.type = SDL_DROPCOMPLETE;
  e.drop.file = nullptr;
  EXPECT_TRUE(handleSdlEvent(e));
  pump(0);

  EXPECT_EQ(files, (std::vector<std::string>{"/tmp/picture"}));
}

TEST_F(AttachSdl, windowsOfOurOwnStandBeside)
{
  HWND const own = top({650, 300, 750, 400});
  fill(own, {0, 0, 100, 100}, 0x00FF00);
  pattern(window);
  EXPECT_TRUE(hears([&] { return screenShows(own) && screenShows(window); }));
  quiet();

  tool({"mousemove", "660", "310"});
  ASSERT_TRUE(hears(512));
  EXPECT_EQ(recorder.of(512).back().window, own);
}

TEST(AttachSdlHeadless, givesNullAndHandlesNothing)
{
  InitOptions options;
  options.video = InitOptions::headless;
  ASSERT_TRUE(init(options));
  SDL_Event e{};
  e.type = SDL_QUIT;

  EXPECT_EQ(attachSdlWindow(nullptr), nullptr);
  EXPECT_FALSE(handleSdlEvent(e));
}
