// What SDL's events become, and what lies in its window surfaces; on the dummy driver, with events made by hand.
#include "tests/platform/sdl/sdl_fixture.h"

#include <chrono>
#include <cstring>
#include <thread>

#include <SDL.h>

using namespace plat;
using plat::testing::drain;

namespace {

LParam at(i32 x, i32 y)
{
  return static_cast<LParam>(u32{static_cast<std::uint16_t>(y)} << 16 | static_cast<std::uint16_t>(x));
}

class Dummy : public DummyTest {
protected:
  Dummy() : window(top({100, 60, 300, 210}))
  {
    settle();
    id = SDL_GetWindowID(sdl(window));
  }

  static void push(SDL_Event event) { ASSERT_EQ(SDL_PushEvent(&event), 1); }

  SDL_Event windowEvent(SDL_WindowEventID what) const
  {
    SDL_Event e{};
    e.type = SDL_WINDOWEVENT;
    e.window.windowID = id;
    e.window.event = static_cast<Uint8>(what);
    return e;
  }

  void motion(i32 x, i32 y, u32 state = 0) const
  {
    SDL_Event e{};
    e.type = SDL_MOUSEMOTION;
    e.motion.windowID = id;
    e.motion.x = x;
    e.motion.y = y;
    e.motion.state = state;
    push(e);
    drain();
  }

  void button(bool down, Uint8 which, i32 x, i32 y, Uint8 clicks = 1) const
  {
    SDL_Event e{};
    e.type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
    e.button.windowID = id;
    e.button.button = which;
    e.button.clicks = clicks;
    e.button.x = x;
    e.button.y = y;
    push(e);
    drain();
  }

  void wheel(float precise, int whole, i32 x, i32 y) const
  {
    SDL_Event e{};
    e.type = SDL_MOUSEWHEEL;
    e.wheel.windowID = id;
    e.wheel.preciseY = precise;
    e.wheel.y = whole;
    e.wheel.mouseX = x;
    e.wheel.mouseY = y;
    push(e);
    drain();
  }

  void key(bool down, SDL_Keycode sym, unsigned mods = 0, bool repeat = false) const
  {
    SDL_Event e{};
    e.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    e.key.windowID = id;
    e.key.keysym.sym = sym;
    e.key.keysym.mod = static_cast<Uint16>(mods);
    e.key.repeat = repeat;
    push(e);
    drain();
  }

  void text(char const* utf8) const
  {
    SDL_Event e{};
    e.type = SDL_TEXTINPUT;
    e.text.windowID = id;
    std::strncpy(e.text.text, utf8, sizeof e.text.text - 1);
    push(e);
    drain();
  }

  std::string typed() const
  {
    std::string all;
    for (Message const& m : recorder.of(258))
      all += static_cast<char>(m.wParam);
    return all;
  }

  void drop(Uint32 type, char const* file = nullptr) const
  {
    SDL_Event e{};
    e.type = type;
    e.drop.windowID = id;
    e.drop.file = file ? SDL_strdup(file) : nullptr;
    push(e);
  }

  u32 surfacePel(i32 x, i32 y) const
  {
    SDL_Surface const* const s = SDL_GetWindowSurface(sdl(window));
    u32 pel;
    std::memcpy(&pel, static_cast<u8 const*>(s->pixels) + y * s->pitch + x * 4, 4);
    return pel & 0xFFFFFF;
  }

  void surfacePel(i32 x, i32 y, u32 pel) const
  {
    SDL_Surface const* const s = SDL_GetWindowSurface(sdl(window));
    std::memcpy(static_cast<u8*>(s->pixels) + y * s->pitch + x * 4, &pel, 4);
  }

  HWND window;
  u32 id;
};

}  // namespace

TEST_F(Dummy, aShownWindowIsAnSdlWindowWithItsPlaceAndTitle)
{
  HWND const other = top({20, 30, 120, 110}, "Caf\xE9");

  SDL_Window* const w = sdl(other);
  ASSERT_NE(w, nullptr);
  Point place;
  Size size;
  SDL_GetWindowPosition(w, &place.x, &place.y);
  SDL_GetWindowSize(w, &size.w, &size.h);
  EXPECT_EQ(place, (Point{20, 30}));
  EXPECT_EQ(size, (Size{100, 80}));
  EXPECT_STREQ(SDL_GetWindowTitle(w), "Caf\xC3\xA9");
  EXPECT_TRUE(SDL_GetWindowFlags(w) & SDL_WINDOW_SHOWN);
}

TEST_F(Dummy, aWindowThatWasNeverShownIsNotOnTheScreen)
{
  HWND const hidden = top({0, 0, 10, 10}, "", 0);

  EXPECT_EQ(sdl(hidden), nullptr);
}

TEST_F(Dummy, styleChoosesTheFrame)
{
  SDL_Window* const plain = sdl(top({0, 0, 10, 10}, "", shown | 0x00CF0000));
  SDL_Window* const popup = sdl(top({0, 0, 10, 10}, "", shown | 0x80000000));

  EXPECT_EQ(SDL_GetWindowFlags(plain) & (SDL_WINDOW_RESIZABLE | SDL_WINDOW_BORDERLESS), u32{SDL_WINDOW_RESIZABLE});
  EXPECT_EQ(SDL_GetWindowFlags(popup) & (SDL_WINDOW_RESIZABLE | SDL_WINDOW_BORDERLESS), u32{SDL_WINDOW_BORDERLESS});
}

TEST_F(Dummy, hidingAndDestroyingTakeTheWindowOffTheScreen)
{
  windows().place(window, nullptr, 0);
  EXPECT_TRUE(SDL_GetWindowFlags(sdl(window)) & SDL_WINDOW_HIDDEN);
  windows().place(window, nullptr, 5);
  EXPECT_FALSE(SDL_GetWindowFlags(sdl(window)) & SDL_WINDOW_HIDDEN);

  windows().destroy(window);
  EXPECT_EQ(SDL_GetWindowFromID(id), nullptr);
}

TEST_F(Dummy, placeMovesAndResizesTheSdlWindow)
{
  Rect const wanted{10, 20, 150, 90};
  windows().place(window, &wanted, -1);

  Point place;
  Size size;
  SDL_GetWindowPosition(sdl(window), &place.x, &place.y);
  SDL_GetWindowSize(sdl(window), &size.w, &size.h);
  EXPECT_EQ(place, (Point{10, 20}));
  EXPECT_EQ(size, (Size{140, 70}));
  drain();
  EXPECT_EQ(recorder.of(5).size(), 1u);
  EXPECT_EQ(windows().windowRect(window), wanted);
}

TEST_F(Dummy, aSizeThatTheScreenGivesIsMessage5AndAPictureOfThatSize)
{
  SDL_SetWindowSize(sdl(window), 90, 70);
  drain();

  ASSERT_EQ(recorder.of(5).size(), 1u);
  EXPECT_EQ(recorder.of(5)[0].lParam, at(90, 70));
  fill(window, {80, 60, 90, 70}, 0x0000FF);
  EXPECT_EQ(surfacePel(89, 69), 0xFF0000u);
  EXPECT_EQ(plat::testing::pel(window, {89, 69}), 0xFF0000u);
}

TEST_F(Dummy, manySizesEndInTheLast)
{
  for (int width = 20; width <= 200; width += 9) {
    SDL_SetWindowSize(sdl(window), width, 40 + width % 7);
    fill(window, {0, 0, width, 50}, 0x00FF00);
    if (width % 2)
      drain();
  }
  SDL_SetWindowSize(sdl(window), 123, 45);
  drain();

  EXPECT_EQ(windows().clientRect(window), (Rect{0, 0, 123, 45}));
  fill(window, {0, 0, 123, 45}, 0x563412);
  for (Point const p : {Point{0, 0}, Point{122, 0}, Point{0, 44}, Point{122, 44}})
    EXPECT_EQ(surfacePel(p.x, p.y), 0x123456u) << p.x << " " << p.y;
}

TEST_F(Dummy, aSizeThereAndBackAgainStillShowsWhatIsPaintedLater)
{
  SDL_SetWindowSize(sdl(window), 220, 170);
  SDL_SetWindowSize(sdl(window), 200, 150);
  drain();

  fill(window, {5, 5, 6, 6}, 0x0000FF);

  EXPECT_EQ(surfacePel(5, 5), 0xFF0000u);
}

TEST_F(Dummy, aPlaceThatTheScreenGivesIsMessage3)
{
  SDL_SetWindowPosition(sdl(window), 7, 9);
  push(windowEvent(SDL_WINDOWEVENT_MOVED));
  drain();

  ASSERT_EQ(recorder.of(3).size(), 1u);
  EXPECT_EQ(recorder.of(3)[0].lParam, at(7, 9));
  motion(3, 4);
  EXPECT_EQ(windows().cursorPos(), (Point{10, 13}));
}

TEST_F(Dummy, aLoneDisplayPaintsIntoThePelsThatAreShown)
{
  SDL_Surface const* const s = SDL_GetWindowSurface(sdl(window));
  ASSERT_EQ(s->format->format, u32{SDL_PIXELFORMAT_RGB888});
  fill(window, {0, 0, 200, 150}, 0x000000);
  surfacePel(11, 12, 0x00ABCDEF);

  EXPECT_EQ(plat::testing::pel(window, {11, 12}), 0xABCDEFu);
}

TEST_F(Dummy, otherDepthsAreConverted)
{
  plat::testing::screen({800, 600}, 16);
  // 5-6-5 keeps the upper bits of each channel: A8, C8, 18 of AB, CB, 1F.
  fill(window, {0, 0, 200, 150}, 0x1FCBAB);
  EXPECT_EQ(surfacePel(0, 0), 0xA8C818u);
  EXPECT_EQ(surfacePel(199, 149), 0xA8C818u);

  plat::testing::screen({800, 600}, 24);
  fill(window, {0, 0, 200, 150}, 0x1FCBAB);
  EXPECT_EQ(surfacePel(100, 100), 0xABCB1Fu);

  plat::testing::screen({800, 600}, 8);
  fill(window, {0, 0, 200, 150}, 0xFF00FF);
  EXPECT_EQ(surfacePel(100, 100), 0xFF00FFu);
}

TEST_F(Dummy, onlyWhatIsDirtyIsCopied)
{
  plat::testing::screen({800, 600}, 16);
  fill(window, {0, 0, 200, 150}, 0x000000);
  surfacePel(50, 50, 0x777777);

  fill(window, {60, 50, 70, 60}, 0xFFFFFF);

  EXPECT_EQ(surfacePel(50, 50), 0x777777u);
  EXPECT_EQ(surfacePel(60, 50), 0xF8FCF8u);
  EXPECT_EQ(surfacePel(69, 59), 0xF8FCF8u);
  EXPECT_EQ(surfacePel(70, 59), 0x000000u);
}

TEST_F(Dummy, exposeShowsThePelsAgainWithoutMessage15)
{
  plat::testing::screen({800, 600}, 16);
  drain();
  fill(window, {0, 0, 200, 150}, 0x0000FF);
  settle();
  surfacePel(50, 50, 0x777777);

  push(windowEvent(SDL_WINDOWEVENT_EXPOSED));
  drain();

  EXPECT_EQ(surfacePel(50, 50), 0xF80000u);
  EXPECT_TRUE(recorder.of(15).empty());
}

TEST_F(Dummy, exposeKeepsThePelsOfALoneDisplay)
{
  fill(window, {0, 0, 200, 150}, 0x0000FF);
  settle();

  push(windowEvent(SDL_WINDOWEVENT_EXPOSED));
  drain();

  EXPECT_EQ(surfacePel(50, 50), 0xFF0000u);
  EXPECT_EQ(plat::testing::pel(window, {199, 149}), 0xFF0000u);
  EXPECT_TRUE(recorder.of(15).empty());
}

TEST_F(Dummy, motionIsMessage512InClientPels)
{
  motion(30, 40);

  ASSERT_EQ(recorder.of(512).size(), 1u);
  EXPECT_EQ(recorder.of(512)[0].window, window);
  EXPECT_EQ(recorder.of(512)[0].lParam, at(30, 40));
  EXPECT_EQ(windows().cursorPos(), (Point{130, 100}));
}

TEST_F(Dummy, buttonsAreTheirMessagesWithTheHeldOnesInWParam)
{
  motion(30, 40);
  recorder.clear();
  button(true, SDL_BUTTON_LEFT, 30, 40);
  button(true, SDL_BUTTON_RIGHT, 30, 40);
  motion(31, 40, SDL_BUTTON_LMASK | SDL_BUTTON_RMASK);
  button(false, SDL_BUTTON_LEFT, 31, 40);
  button(false, SDL_BUTTON_RIGHT, 31, 40);
  button(true, SDL_BUTTON_MIDDLE, 31, 40);
  button(false, SDL_BUTTON_MIDDLE, 31, 40);

  std::vector<std::pair<unsigned, WParam>> seen;
  for (Message const& m : recorder.messages)
    if (m.number >= 512 && m.number <= 521)
      seen.emplace_back(m.number, m.wParam);
  EXPECT_EQ(seen, (std::vector<std::pair<unsigned, WParam>>{
                      {513, 1}, {516, 3}, {512, 3}, {514, 2}, {517, 0}, {519, 16}, {520, 0}}));
}

TEST_F(Dummy, otherButtonsAreNoMessages)
{
  motion(30, 40);
  recorder.clear();
  button(true, SDL_BUTTON_X1, 30, 40);
  button(false, SDL_BUTTON_X1, 30, 40);

  EXPECT_TRUE(recorder.numbers().empty());
}

TEST_F(Dummy, anEvenClickCountIsADoubleClick)
{
  for (Uint8 clicks = 1; clicks <= 4; ++clicks) {
    button(true, SDL_BUTTON_LEFT, 30, 40, clicks);
    button(false, SDL_BUTTON_LEFT, 30, 40, clicks);
  }

  EXPECT_EQ(recorder.of(513).size(), 2u);
  EXPECT_EQ(recorder.of(515).size(), 2u);
  EXPECT_EQ(recorder.of(514).size(), 4u);
}

TEST_F(Dummy, aReleaseThatWentElsewhereIsNoticedByTheNextMotion)
{
  button(true, SDL_BUTTON_LEFT, 30, 40);
  recorder.clear();

  motion(35, 40, 0);

  EXPECT_EQ(recorder.of(514).size(), 1u);
}

TEST_F(Dummy, theWheelIsMessage522With120ANotchAndTheScreenPosition)
{
  wheel(1, 1, 30, 40);
  wheel(-2, -2, 30, 40);
  wheel(0, 1, 30, 40);  // a source without fine turns

  ASSERT_EQ(recorder.of(522).size(), 3u);
  EXPECT_EQ(recorder.of(522)[0].wParam, WParam{120} << 16);
  EXPECT_EQ(recorder.of(522)[0].lParam, at(130, 100));
  EXPECT_EQ(recorder.of(522)[1].wParam, WParam{0xFF10} << 16);
  EXPECT_EQ(recorder.of(522)[2].wParam, WParam{120} << 16);
}

TEST_F(Dummy, fineTurnsOfTheWheelAddUp)
{
  for (int i = 0; i < 1000; ++i)
    wheel(0.001f, 0, 30, 40);

  long sum = 0;
  for (Message const& m : recorder.of(522))
    sum += static_cast<std::int16_t>(m.wParam >> 16);
  EXPECT_NEAR(static_cast<double>(sum), 120, 1);
}

TEST_F(Dummy, keysAreMessages256And257)
{
  key(true, SDLK_LEFT);
  key(true, SDLK_LEFT, 0, /*repeat=*/true);
  key(false, SDLK_LEFT);

  ASSERT_EQ(recorder.of(256).size(), 2u);
  EXPECT_EQ(recorder.of(256)[0].wParam, 37u);
  EXPECT_EQ(recorder.of(256)[0].lParam & 0xC0000000, 0);
  EXPECT_EQ(recorder.of(256)[1].lParam & 0xC0000000, 0x40000000);
  ASSERT_EQ(recorder.of(257).size(), 1u);
  EXPECT_EQ(recorder.of(257)[0].wParam, 37u);
  EXPECT_EQ(recorder.of(257)[0].lParam & 0xC0000000, 0xC0000000);
}

TEST_F(Dummy, keysWithAltAreMessages260And261)
{
  key(true, SDLK_LALT, KMOD_LALT);
  key(true, SDLK_F4, KMOD_LALT);
  key(false, SDLK_F4, KMOD_LALT);

  ASSERT_EQ(recorder.of(260).size(), 2u);
  EXPECT_EQ(recorder.of(260)[0].wParam, 18u);
  EXPECT_EQ(recorder.of(260)[1].wParam, 115u);
  ASSERT_EQ(recorder.of(261).size(), 1u);
  EXPECT_TRUE(recorder.of(256).empty());
}

TEST_F(Dummy, modifiersThatAreHeldCountForThePointerToo)
{
  SDL_SetModState(static_cast<SDL_Keymod>(KMOD_LSHIFT | KMOD_RCTRL));
  motion(30, 40);
  SDL_SetModState(KMOD_NONE);

  motion(31, 40);
  ASSERT_EQ(recorder.of(512).size(), 2u);
  EXPECT_EQ(recorder.of(512)[0].wParam, 12u);
  EXPECT_EQ(recorder.of(512)[1].wParam, 0u);
}

TEST_F(Dummy, textIsMessage258ForEachCharacterOfLatin1)
{
  key(true, SDLK_a);
  text("aZ");
  text("\xC3\xA9\xC3\xBF");          // é ÿ
  text("\xC4\x80\xE2\x82\xAC" "b");  // Ā and the Euro sign lie above 255
  text("\xF0\x9F\x98\x80" "c");

  EXPECT_EQ(typed(), "aZ\xE9\xFF" "bc");
}

TEST_F(Dummy, enterTabBackspaceAndEscapeAreCharactersAfterTheirKeys)
{
  key(true, SDLK_RETURN);
  key(true, SDLK_BACKSPACE);
  key(true, SDLK_c, KMOD_LCTRL);

  EXPECT_EQ(recorder.numbers(), (std::vector<unsigned>{256, 258, 256, 258, 256, 258}));
  EXPECT_EQ(typed(), "\r\b\x03");
}

TEST_F(Dummy, commandsTypeNoText)
{
  key(true, SDLK_a, KMOD_LALT);
  text("a");
  key(true, SDLK_1, KMOD_LCTRL);
  text("1");
  key(true, SDLK_a, KMOD_RALT);
  text("a");

  EXPECT_EQ(typed(), "");
}

TEST_F(Dummy, theThirdSetOfCharactersTypesText)
{
  key(true, SDLK_q, KMOD_RALT);
  text("@");
  key(true, SDLK_7, KMOD_MODE);
  text("{");
  key(true, SDLK_8, KMOD_LCTRL | KMOD_LALT);
  text("[");

  EXPECT_EQ(typed(), "@{[");
}

TEST_F(Dummy, focusComesAndGoes)
{
  HWND const other = top({400, 100, 500, 200});
  settle();
  ASSERT_EQ(windows().visible(other), true);

  push(windowEvent(SDL_WINDOWEVENT_FOCUS_GAINED));
  drain();
  EXPECT_EQ(recorder.numbersOf(window), (std::vector<unsigned>{6, 7}));

  recorder.clear();
  push(windowEvent(SDL_WINDOWEVENT_FOCUS_LOST));
  drain();
  EXPECT_EQ(recorder.numbersOf(window), (std::vector<unsigned>{6, 8}));
}

TEST_F(Dummy, closeIsMessage16)
{
  recorder.hook = [](Message const& m, LResult&) { return m.number == 16; };

  push(windowEvent(SDL_WINDOWEVENT_CLOSE));
  drain();
  EXPECT_EQ(recorder.of(16).size(), 1u);
  EXPECT_TRUE(windows().isWindow(window));

  recorder.hook = nullptr;
  push(windowEvent(SDL_WINDOWEVENT_CLOSE));
  drain();
  EXPECT_FALSE(windows().isWindow(window));
}

TEST_F(Dummy, minimizingIsMessage5WithKind1)
{
  push(windowEvent(SDL_WINDOWEVENT_MINIMIZED));
  drain();
  ASSERT_EQ(recorder.of(5).size(), 1u);
  EXPECT_EQ(recorder.of(5)[0].wParam, 1u);
  EXPECT_TRUE(windows().style(window) & 0x20000000);

  push(windowEvent(SDL_WINDOWEVENT_RESTORED));
  drain();
  EXPECT_FALSE(windows().style(window) & 0x20000000);
}

TEST_F(Dummy, droppedFilesReachTheHandlerTogether)
{
  std::vector<std::pair<HWND, std::vector<std::string>>> drops;
  dropHandler([&](HWND w, std::vector<std::string> const& files) { drops.emplace_back(w, files); });

  drop(SDL_DROPBEGIN);
  drop(SDL_DROPFILE, "/tmp/a b.png");
  drop(SDL_DROPFILE, "/tmp/\xC3\xA4.png");
  drain();
  EXPECT_TRUE(drops.empty());
  drop(SDL_DROPCOMPLETE);
  drain();

  ASSERT_EQ(drops.size(), 1u);
  EXPECT_EQ(drops[0].first, window);
  EXPECT_EQ(drops[0].second, (std::vector<std::string>{"/tmp/a b.png", "/tmp/\xC3\xA4.png"}));
}

TEST_F(Dummy, aDropOfTextAloneIsNoDropOfFiles)
{
  int drops = 0;
  dropHandler([&](HWND, std::vector<std::string> const&) { ++drops; });

  drop(SDL_DROPBEGIN);
  drop(SDL_DROPTEXT, "text");
  drop(SDL_DROPCOMPLETE);
  drain();

  EXPECT_EQ(drops, 0);
}

TEST_F(Dummy, dropsWithoutAHandlerAreForgotten)
{
  drop(SDL_DROPFILE, "/tmp/a");
  drop(SDL_DROPCOMPLETE);
  drain();

  EXPECT_TRUE(windows().isWindow(window));
}

TEST_F(Dummy, eventsOfWindowsThatAreGoneAreForgotten)
{
  windows().destroy(window);
  recorder.clear();

  motion(30, 40);
  button(true, SDL_BUTTON_LEFT, 30, 40);
  key(true, SDLK_a);

  EXPECT_TRUE(recorder.messages.empty());
  SDL_Event left;
  EXPECT_EQ(SDL_PeepEvents(&left, 1, SDL_PEEKEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT), 0);
}

TEST_F(Dummy, aPostFromAnotherThreadEndsTheWait)
{
  using namespace std::chrono;
  auto const start = steady_clock::now();
  bool called = false;
  std::thread poster([&] { windows().post(window, [&] { called = true; }); });
  pump(20000);
  poster.join();
  drain();

  EXPECT_TRUE(called);
  EXPECT_LT(steady_clock::now() - start, seconds(10));
}

TEST_F(Dummy, aPostBeforeTheWaitIsNotLost)
{
  using namespace std::chrono;
  bool called = false;
  std::thread([&] { windows().post(window, [&] { called = true; }); }).join();
  auto const start = steady_clock::now();

  pump(20000);

  EXPECT_TRUE(called);
  EXPECT_LT(steady_clock::now() - start, seconds(10));
}

TEST_F(Dummy, timersRunOnTheClockOfTheWall)
{
  using namespace std::chrono;
  auto const start = steady_clock::now();
  windows().setTimer(window, 7, 50);

  ASSERT_TRUE(comes(275));

  EXPECT_GE(steady_clock::now() - start, milliseconds(49));  // the clock counts whole milliseconds
  EXPECT_EQ(recorder.of(275)[0].wParam, 7u);
}

TEST_F(Dummy, noCursorHidesThePointer)
{
  windows().setCursor(windows().loadCursor(606));
  EXPECT_EQ(SDL_ShowCursor(SDL_QUERY), SDL_ENABLE);

  windows().setCursor(nullptr);
  EXPECT_EQ(SDL_ShowCursor(SDL_QUERY), SDL_DISABLE);

  windows().setCursor(windows().loadCursor(600));
  EXPECT_EQ(SDL_ShowCursor(SDL_QUERY), SDL_ENABLE);
}

TEST_F(Dummy, clippingThePointerIsARectangleInEachWindow)
{
  Rect const clip{110, 70, 5000, 5000};
  windows().clipCursor(&clip);
  SDL_Rect const* const set = SDL_GetWindowMouseRect(sdl(window));
  ASSERT_NE(set, nullptr);
  EXPECT_EQ(set->x, 10);
  EXPECT_EQ(set->y, 10);
  EXPECT_EQ(set->w, 190);
  EXPECT_EQ(set->h, 140);

  windows().clipCursor(nullptr);
  EXPECT_EQ(SDL_GetWindowMouseRect(sdl(window)), nullptr);
}

TEST_F(Dummy, windowsOfX11CannotBeUsed)
{
  EXPECT_EQ(attachNativeWindow(1234), nullptr);
}
