// Windows on a real X server: what its screen shows, and what hands on mouse and keyboard do.
#include "tests/platform/sdl/sdl_fixture.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include <SDL.h>
#include <X11/extensions/Xfixes.h>
#include <sys/resource.h>

using namespace plat;
using plat::testing::drain;
using xserver::tool;

namespace {

LParam at(i32 x, i32 y)
{
  return static_cast<LParam>(u32{static_cast<std::uint16_t>(y)} << 16 | static_cast<std::uint16_t>(x));
}

class OnScreen : public ScreenTest {
protected:
  OnScreen() : window(top({100, 60, 340, 240}))
  {
    EXPECT_TRUE(comes([this] { return recorder.of(15).size() > 0 && hasKeys(window); }));
    settle();
  }

  static bool hasKeys(HWND w) { return SDL_GetKeyboardFocus() == sdl(w); }

  static void moveTo(i32 x, i32 y) { tool({"mousemove", std::to_string(x), std::to_string(y)}); }

  HWND window;
};

// A screen of 16 bits.
class SmallDepth : public SdlTest {
protected:
  SmallDepth() : SdlTest("x11", 1) {}
};

// A screen of 8 bits with a palette, and one of 30, for which SDL has no surface.
class PaletteScreen : public SdlTest {
protected:
  PaletteScreen() : SdlTest("x11", 2) {}
};
class DeepScreen : public SdlTest {
protected:
  DeepScreen() : SdlTest("x11", 3) {}
};

// Windows with an alpha channel.
class AlphaScreen : public SdlTest {
protected:
  AlphaScreen() : SdlTest("x11") {}
  ~AlphaScreen() override { unsetenv("SDL_VIDEO_X11_WINDOW_VISUALID"); }
};

double processorMs()
{
  rusage used;
  getrusage(RUSAGE_SELF, &used);
  auto const ms = [](timeval const& t) { return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_usec) / 1e3; };
  return ms(used.ru_utime) + ms(used.ru_stime);
}

}  // namespace

TEST_F(OnScreen, whatIsPaintedIsOnTheScreen)
{
  pattern(window);

  EXPECT_TRUE(comes([this] { return screenShows(window); }));
  fill(window, {50, 50, 51, 51}, 0x332211);
  EXPECT_EQ(xserver::grab({150, 110, 151, 111})[0], 0x112233u);
}

TEST_F(OnScreen, aFullBufferAndSingleRectanglesBothArrive)
{
  plat::testing::screen({1024, 768}, 16);
  pattern(window);
  EXPECT_TRUE(comes([this] { return screenShows(window); }));

  fill(window, {239, 179, 240, 180}, 0xFFFFFF);
  EXPECT_EQ(xserver::grab({339, 239, 340, 240})[0], 0xF8FCF8u);
  EXPECT_TRUE(screenShows(window));
}

TEST_F(PaletteScreen, pelsOfEightBitsAreLevelsOfThreeThreeAndTwoBits)
{
  HWND const window = top({20, 30, 120, 90});
  settle();
  fill(window, {0, 0, 50, 60}, 0x0000FF);     // COLORREF: red
  fill(window, {50, 0, 100, 60}, 0x66CC33);  // red 33 is level 1 of 7, green CC level 6 of 7, blue 66 level 1 of 3
  drain();

  std::vector<u32> seen;
  ASSERT_TRUE(comes([&] {
    seen = xserver::colorsOf(id(window), xserver::grabWindow(id(window), {48, 10, 52, 11}, 2), 2);
    return seen == std::vector<u32>{0xFF0000, 0xFF0000, 0x24DB55, 0x24DB55};
  })) << std::hex << seen[0] << ' ' << seen[3];
}

TEST_F(DeepScreen, pelsOfThirtyBitsHaveTheirUpperBitsOnceMoreBelow)
{
  HWND const window = top({20, 30, 120, 90});
  settle();
  fill(window, {0, 0, 50, 60}, 0x0000FF);
  fill(window, {50, 0, 100, 60}, 0x4080C1);  // blue 40, green 80, red C1
  drain();

  // Ten bits each, red uppermost: FF is 3FF; C1 is 11000001 11, 80 is 10000000 10, 40 is 01000000 01.
  constexpr u32 red = 0x3FFu << 20, mixed = 0x307u << 20 | 0x202u << 10 | 0x101u;
  std::vector<u32> seen;
  ASSERT_TRUE(comes([&] {
    seen = xserver::grabWindow(id(window), {48, 10, 52, 11}, 3);
    for (u32& pel : seen)
      pel &= 0x3FFFFFFF;
    return seen == std::vector<u32>{red, red, mixed, mixed};
  })) << std::hex << seen[0] << ' ' << seen[3];
}

TEST_F(OnScreen, theTitleIsTheWindows)
{
  HWND const other = top({400, 60, 500, 100}, "Gr\xF6\xDF" "e");

  EXPECT_EQ(xserver::title(id(other)), "Gr\xC3\xB6\xC3\x9F" "e");
}

TEST_F(OnScreen, thePointerMovesInClientPels)
{
  moveTo(130, 100);

  ASSERT_TRUE(comes(512));
  settle();
  EXPECT_EQ(windows().cursorPos(), (Point{130, 100}));
  moveTo(131, 102);
  ASSERT_TRUE(comes(512));
  EXPECT_EQ(recorder.of(512).back().lParam, at(31, 42));
}

TEST_F(OnScreen, buttonsArePressedAndReleased)
{
  moveTo(130, 100);
  tool({"mousedown", "1"});
  ASSERT_TRUE(comes(513));
  EXPECT_EQ(recorder.of(513)[0].lParam, at(30, 40));
  EXPECT_EQ(recorder.of(513)[0].wParam, 1u);
  tool({"mouseup", "1", "mousedown", "3", "mouseup", "3", "mousedown", "2", "mouseup", "2"});
  ASSERT_TRUE(comes(520));
  std::vector<unsigned> buttons;
  for (Message const& m : recorder.messages)
    if (m.number > 512 && m.number < 522)
      buttons.push_back(m.number);
  EXPECT_EQ(buttons, (std::vector<unsigned>{513, 514, 516, 517, 519, 520}));
}

TEST_F(OnScreen, twoClicksInOnePlaceAreADoubleClickAndInTwoPlacesNot)
{
  tool({"mousemove", "130", "100", "click", "1", "click", "1"});
  ASSERT_TRUE(comes([] { return recorder.of(514).size() == 2; }));
  EXPECT_EQ(recorder.of(513).size(), 1u);
  EXPECT_EQ(recorder.of(515).size(), 1u);

  settle();
  tool({"mousemove", "160", "100", "click", "1", "mousemove", "170", "100", "click", "1"});
  ASSERT_TRUE(comes([] { return recorder.of(514).size() == 2; }));
  EXPECT_EQ(recorder.of(513).size(), 2u);
}

TEST_F(OnScreen, theWheelTurnsByNotches)
{
  moveTo(130, 100);
  tool({"click", "4", "click", "5"});

  ASSERT_TRUE(comes([] { return recorder.of(522).size() == 2; }));
  EXPECT_EQ(recorder.of(522)[0].wParam >> 16, 120u);
  EXPECT_EQ(recorder.of(522)[0].lParam, at(130, 100));
  EXPECT_EQ(recorder.of(522)[1].wParam >> 16, 0xFF88u);
}

TEST_F(OnScreen, typingGivesKeysAndCharacters)
{
  xserver::focusWindow(id(window));
  tool({"type", "--delay", "1", "aB1"});

  ASSERT_TRUE(comes([] { return recorder.of(258).size() == 3; }));
  std::string characters;
  for (Message const& m : recorder.of(258))
    characters += static_cast<char>(m.wParam);
  EXPECT_EQ(characters, "aB1");
  std::vector<WParam> keys;
  for (Message const& m : recorder.of(256))
    keys.push_back(m.wParam);
  EXPECT_EQ(keys, (std::vector<WParam>{0x41, 16, 0x42, 0x31}));
}

TEST_F(OnScreen, altMakesAKeyACommand)
{
  tool({"keydown", "alt", "keydown", "x", "keyup", "x", "keyup", "alt"});

  EXPECT_TRUE(comes([] { return recorder.of(260).size() == 2 && recorder.of(261).size() == 2; })) << ::testing::PrintToString(recorder.numbers());
  EXPECT_EQ(recorder.of(260)[0].wParam, 18u);
  EXPECT_EQ(recorder.of(260)[1].wParam, 0x58u);
  settle();
  EXPECT_TRUE(recorder.of(258).empty());
}

TEST_F(OnScreen, shiftAndControlAreHeldWhileThePointerMoves)
{
  moveTo(130, 100);
  ASSERT_TRUE(comes(512));
  tool({"keydown", "shift", "keydown", "ctrl", "mousemove", "140", "100", "mousemove", "141", "100"});
  EXPECT_TRUE(comes([] { return !recorder.of(512).empty() && recorder.of(512).back().wParam == 12; }));
  tool({"keyup", "ctrl", "keyup", "shift"});
}

TEST_F(OnScreen, aHeldKeyRepeats)
{
  tool({"keydown", "b"});
  EXPECT_TRUE(comes([] { return recorder.of(256).size() >= 3; }));
  tool({"keyup", "b"});
  ASSERT_TRUE(comes(257));

  EXPECT_EQ(recorder.of(256)[0].lParam & 0x40000000, 0);
  EXPECT_EQ(recorder.of(256)[1].lParam & 0x40000000, 0x40000000);
}

TEST_F(OnScreen, aSizeFromOutsideIsMessage5AndShowsTheWholePicture)
{
  pattern(window);
  xserver::moveWindow(id(window), {100, 60, 400, 280});
  ASSERT_TRUE(comes(5));
  EXPECT_EQ(recorder.of(5).back().lParam, at(300, 220));

  pattern(window);
  EXPECT_TRUE(comes([this] { return screenShows(window); }));

  xserver::moveWindow(id(window), {100, 60, 180, 130});
  ASSERT_TRUE(comes([] { return recorder.of(5).back().lParam == at(80, 70); }));
  pattern(window);
  EXPECT_TRUE(comes([this] { return screenShows(window); }));
}

TEST_F(OnScreen, aSizeFromInsideIsTheScreensToo)
{
  Rect const wanted{50, 70, 260, 190};
  windows().place(window, &wanted, -1);
  pattern(window);

  EXPECT_TRUE(comes([this] { return screenShows(window); }));
  EXPECT_EQ(windows().windowRect(window), wanted);
  settle();
  EXPECT_EQ(windows().windowRect(window), wanted);
}

TEST_F(OnScreen, aPlaceFromOutsideIsMessage3)
{
  xserver::moveWindow(id(window), {200, 160, 440, 340});

  ASSERT_TRUE(comes(3));
  EXPECT_EQ(recorder.of(3).back().lParam, at(200, 160));
  moveTo(215, 170);
  ASSERT_TRUE(comes(512));
  EXPECT_EQ(recorder.of(512).back().lParam, at(15, 10));
}

TEST_F(OnScreen, whatWasCoveredIsShownAgainWithoutMessage15)
{
  pattern(window);
  ASSERT_TRUE(comes([this] { return screenShows(window); }));
  xserver::Id const cover = xserver::makeWindow({150, 80, 250, 200}, 0xFF00FF);
  ASSERT_TRUE(comes([] { return xserver::grab({200, 100, 201, 101})[0] == 0xFF00FF; }));
  settle();

  xserver::destroyWindow(cover);

  EXPECT_TRUE(comes([this] { return screenShows(window); }));
  EXPECT_TRUE(recorder.of(15).empty());
}

TEST_F(OnScreen, whatIsPaintedUnderneathIsThereOnceUncovered)
{
  xserver::Id const cover = xserver::makeWindow({100, 60, 340, 240}, 0xFF00FF);
  pattern(window);
  xserver::destroyWindow(cover);

  EXPECT_TRUE(comes([this] { return screenShows(window); }));
}

TEST_F(OnScreen, closeAskedByTheWindowManagerIsMessage16)
{
  recorder.hook = [](Message const& m, LResult&) { return m.number == 16; };

  xserver::askToClose(id(window));

  EXPECT_TRUE(comes(16));
  EXPECT_TRUE(windows().isWindow(window));
}

TEST_F(OnScreen, aDestroyedWindowIsGoneFromTheServer)
{
  xserver::Id const x = id(window);
  ASSERT_TRUE(xserver::isWindow(x));

  windows().destroy(window);

  EXPECT_TRUE(comes([=] { return !xserver::isWindow(x); }));
}

TEST_F(OnScreen, focusFollowsTheServer)
{
  HWND const other = top({400, 60, 500, 160});
  ASSERT_TRUE(comes([=] { return hasKeys(other); }));
  settle();

  xserver::focusWindow(id(window));
  EXPECT_TRUE(comes(7));
  EXPECT_EQ(recorder.of(7)[0].window, window);
  EXPECT_EQ(recorder.of(8)[0].window, other);
}

TEST_F(OnScreen, aPressedWindowTakesTheKeys)
{
  HWND const other = top({400, 60, 500, 160});
  ASSERT_TRUE(comes([=] { return hasKeys(other); }));
  settle();

  tool({"mousemove", "120", "80", "click", "1"});
  ASSERT_TRUE(comes(514));
  EXPECT_TRUE(comes([this] { return recorder.of(7).size() == 1 && recorder.of(7)[0].window == window; }));
}

TEST_F(OnScreen, twoWindowsKeepTheirPicturesAndTheirInput)
{
  HWND const other = top({400, 60, 500, 160});
  pattern(window);
  fill(other, {0, 0, 100, 100}, 0x00FF00);
  EXPECT_TRUE(comes([&] { return screenShows(window) && screenShows(other); }));
  settle();

  moveTo(410, 70);
  ASSERT_TRUE(comes(512));
  EXPECT_EQ(recorder.of(512).back().window, other);
  EXPECT_EQ(recorder.of(512).back().lParam, at(10, 10));
  moveTo(110, 70);
  ASSERT_TRUE(comes([this] { return recorder.of(512).back().window == window; }));
}

TEST_F(OnScreen, aCapturedPointerIsFollowedOutside)
{
  tool({"mousemove", "120", "80", "mousedown", "1"});
  ASSERT_TRUE(comes(513));
  windows().setCapture(window);
  moveTo(90, 40);
  EXPECT_TRUE(comes([] { return recorder.of(512).back().lParam == at(-10, -20); }));
  tool({"mouseup", "1"});
  ASSERT_TRUE(comes(514));
  EXPECT_EQ(recorder.of(514)[0].lParam, at(-10, -20));
  windows().releaseCapture();
}

TEST_F(OnScreen, aClippedPointerStaysInItsRectangle)
{
  moveTo(160, 110);
  ASSERT_TRUE(comes(512));
  Rect const clip{150, 100, 200, 140};
  windows().clipCursor(&clip);
  for (int i = 0; i < 20; ++i) {
    tool({"mousemove_relative", "--", i % 2 ? "-37" : "41", i % 2 ? "-29" : "33"});
    drain();
    Point const p = windows().cursorPos();
    EXPECT_TRUE(p.x >= 150 && p.x < 200 && p.y >= 100 && p.y < 140) << p.x << " " << p.y;
  }
  settle();
  Point const real = xserver::pointer();
  EXPECT_TRUE(real.x >= 150 && real.x <= 200 && real.y >= 100 && real.y <= 140) << real.x << " " << real.y;
  windows().clipCursor(nullptr);

  moveTo(300, 200);
  EXPECT_TRUE(comes([] { return plat::platform().windows.cursorPos() == Point{300, 200}; }));
}

TEST_F(OnScreen, theCursorIsTheResourcePicture)
{
  moveTo(130, 100);
  ASSERT_TRUE(comes(512));
  windows().setCursor(windows().loadCursor(601));
  settle();

  CursorPicture const* const wanted = platform().resources.cursor(601);
  ASSERT_NE(wanted, nullptr);
  std::unique_ptr<XFixesCursorImage, int (*)(void*)> image(nullptr, &XFree);
  int const width = static_cast<int>(wanted->picture.front().size());
  int const height = static_cast<int>(wanted->picture.size());
  ASSERT_TRUE(comes([&] {
    image.reset(XFixesGetCursorImage(xserver::connection()));
    return image && image->xhot == wanted->hotSpot.x && image->yhot == wanted->hotSpot.y && image->width == width &&
           image->height == height;
  }));
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      char const c = wanted->picture[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
      unsigned long const pel = image->pixels[y * width + x] & 0xFFFFFFFF;
      unsigned long const expected = c == 'X' ? 0xFF000000 : c == '.' ? 0xFFFFFFFF : c == 'o' ? 0xFF808080 : 0;
      ASSERT_EQ(pel, expected) << x << " " << y;
    }
}

TEST_F(OnScreen, picturesOfAnotherThreadAreShownByTheLoop)
{
  std::atomic<bool> stop = false;
  std::atomic<int> pictures = 0;
  std::thread painter([&] {
    for (int i = 0; !stop; ++i) {
      fill(window, {0, 0, 240, 180}, static_cast<COLORREF>(i * 0x010203 & 0xFFFFFF));
      ++pictures;
      std::this_thread::yield();
    }
  });
  EXPECT_TRUE(comes([&] { return pictures > 100; }));
  stop = true;
  painter.join();

  EXPECT_TRUE(comes([this] { return screenShows(window); }));
}

TEST_F(OnScreen, aPictureOfAnotherThreadIsShownWhileTheLoopWaits)
{
  fill(window, {0, 0, 240, 180}, 0);
  settle();
  bool seen = false, done = false;
  std::thread painter([&] {
    using namespace std::chrono;
    fill(window, {0, 0, 240, 180}, 0x0000FF);
    auto const end = steady_clock::now() + seconds(10);
    while (!seen && steady_clock::now() < end)
      seen = xserver::grab({200, 100, 201, 101})[0] == 0xFF0000;
    windows().post(window, [&] { done = true; });
  });
  while (!done)
    pump(30000);
  painter.join();

  EXPECT_TRUE(seen);
}

TEST_F(OnScreen, aWindowIsResizedWhileAnotherThreadPaints)
{
  std::atomic<bool> stop = false;
  std::thread painter([&] {
    for (u32 i = 0; !stop; ++i)
      fill(window, {0, 0, 1000, 1000}, i * 0x010203 & 0xFFFFFF);
  });
  for (i32 i = 0; i < 60; ++i) {
    xserver::moveWindow(id(window), {100, 60, 200 + i * 37 % 300, 160 + i * 53 % 200});
    pump(5);
  }
  stop = true;
  painter.join();
  settle();

  EXPECT_TRUE(comes([this] { return screenShows(window); }));
}

TEST_F(OnScreen, anIdleLoopUsesNoProcessorTime)
{
  using namespace std::chrono;
  double const before = processorMs();
  auto const end = steady_clock::now() + seconds(1);
  int rounds = 0;
  while (steady_clock::now() < end) {
    pump(1000);
    ++rounds;
  }

  EXPECT_LT(processorMs() - before, 20);
  EXPECT_LT(rounds, 20);
}

TEST_F(ScreenTest, anIdleLoopWithoutWindowsUsesNoProcessorTimeEither)
{
  double const before = processorMs();
  pump(1000);

  EXPECT_LT(processorMs() - before, 20);
}

TEST_F(DummyTest, anIdleLoopUsesNoProcessorTime)
{
  top({0, 0, 100, 100});
  settle();
  double const before = processorMs();
  pump(1000);

  EXPECT_LT(processorMs() - before, 20);
}

TEST_F(SmallDepth, picturesAreConvertedToTheScreensFormat)
{
  HWND const window = top({10, 20, 110, 100});
  fill(window, {0, 0, 100, 80}, 0x1FCBAB);
  settle();

  // 21, 50, 3 of 5-6-5: the upper bits of AB, CB, 1F.
  constexpr u32 wanted = 21u << 11 | 50u << 5 | 3u;
  EXPECT_TRUE(comes([&] { return xserver::grabWindow(id(window), {99, 79, 100, 80}, 1)[0] == wanted; }));
  EXPECT_EQ(plat::testing::pel(window, {99, 79}), 0xABCB1Fu);
  fill(window, {5, 5, 6, 6}, 0xFFFFFF);
  EXPECT_EQ(xserver::grabWindow(id(window), {4, 5, 7, 6}, 1), (std::vector<u32>{wanted, 0xFFFF, wanted}));
}

TEST_F(AlphaScreen, picturesAreOpaqueOnWindowsWithAnAlphaChannel)
{
  setenv("SDL_VIDEO_X11_WINDOW_VISUALID", std::to_string(xserver::visual32()).c_str(), 1);
  HWND const window = top({10, 20, 110, 100});
  ASSERT_EQ(SDL_GetWindowSurface(sdl(window))->format->Amask, 0xFF000000);
  fill(window, {0, 0, 100, 80}, 0x1FCBAB);
  settle();

  EXPECT_TRUE(comes([&] { return xserver::grabWindow(id(window), {99, 79, 100, 80})[0] == 0xFFABCB1F; }));
  fill(window, {5, 5, 6, 6}, 0xFFFFFF);
  EXPECT_EQ(xserver::grabWindow(id(window), {4, 5, 7, 6}), (std::vector<u32>{0xFFABCB1F, 0xFFFFFFFF, 0xFFABCB1F}));
}
