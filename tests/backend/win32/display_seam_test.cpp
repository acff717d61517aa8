// Displays between two calls: several on one window, deleted in their own hooks, moved to another window in the midst of things.
#include "platform/objects.h"
#include "tests/support/window_driver.h"
#include "ui/core/object.h"
#include "ui/display/display.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <thread>

namespace {

ccPelBuffer<unsigned char> evenImage(long w, long h, unsigned char v)
{
  ccPelBuffer<unsigned char> b(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      b.setPel(x, y, v);
  return b;
}

HWND newWindow(plat::Rect const& rect, HWND parent = nullptr)
{
  plat::WindowDesc desc;
  desc.rect = rect;
  desc.parent = parent;
  HWND const window = plat::platform().windows.create(desc);
  plat::platform().windows.place(window, nullptr, 5);
  plat::testing::drain();
  return window;
}

// Counts the keys that reach it.
class KeyCounter : public ccWin32Display {
public:
  using ccWin32Display::ccWin32Display;
  std::vector<int>* order = nullptr;
  int name = 0;
  std::function<void()> hook;

  bool processKeyboardMsg(unsigned message, std::uintptr_t wParam, std::intptr_t lParam) override
  {
    if (order)
      order->push_back(name);
    std::function<void()> const run = hook;
    if (run) {
      run();
      return false;
    }
    return ccWin32Display::processKeyboardMsg(message, wParam, lParam);
  }
};


}  // namespace

TEST(DisplaySeam, theNewestOfSeveralDisplaysGetsAMessageFirstAndPassesItOn)
{
  WindowDriver driver(60, 40);
  driver.dropDisplay();
  std::vector<int> order;
  std::vector<std::unique_ptr<KeyCounter>> displays;
  for (int i = 0; i < 3; ++i) {
    displays.push_back(std::make_unique<KeyCounter>(driver.window()));
    displays.back()->order = &order;
    displays.back()->name = i;
  }

  plat::testing::send(driver.window(), 256, 65, 0);

  EXPECT_EQ(order, (std::vector<int>{2, 1, 0}));
}

TEST(DisplaySeam, displaysOfOneWindowDieInAnyOrder)
{
  int const orders[][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
  for (auto const& order : orders) {
    WindowDriver driver(60, 40);
    driver.dropDisplay();
    std::vector<int> heard;
    std::unique_ptr<KeyCounter> displays[3];
    for (int i = 0; i < 3; ++i) {
      displays[i] = std::make_unique<KeyCounter>(driver.window());
      displays[i]->order = &heard;
      displays[i]->name = i;
    }
    std::vector<int> alive{2, 1, 0};
    for (int const dead : order) {
      displays[dead].reset();
      std::erase(alive, dead);
      heard.clear();
      plat::testing::send(driver.window(), 256, 65, 0);
      EXPECT_EQ(heard, alive) << order[0] << order[1] << order[2];
    }
  }
}

TEST(DisplaySeam, aDisplayThatDiesInItsMessageLeavesItToTheNext)
{
  for (int const dead : {0, 1, 2}) {
    WindowDriver driver(60, 40);
    driver.dropDisplay();
    std::vector<int> heard;
    std::unique_ptr<KeyCounter> displays[3];
    for (int i = 0; i < 3; ++i) {
      displays[i] = std::make_unique<KeyCounter>(driver.window());
      displays[i]->order = &heard;
      displays[i]->name = i;
    }
    displays[2]->hook = [&] { displays[dead].reset(); };

    plat::testing::send(driver.window(), 256, 65, 0);

    std::vector<int> expected{2, 1, 0};
    if (dead != 2)
      std::erase(expected, dead);
    EXPECT_EQ(heard, expected) << dead;
  }
}

TEST(DisplaySeam, allDisplaysOfADestroyedWindowLeaveIt)
{
  WindowDriver driver(60, 40);
  ccWin32Display second(driver.window());

  plat::platform().windows.destroy(driver.window());

  EXPECT_EQ(driver.display().window(), nullptr);
  EXPECT_EQ(second.window(), nullptr);
}

TEST(DisplaySeam, aNewWindowGetsTheOverlayAnew)
{
  WindowDriver driver(60, 40);
  driver.display().image(evenImage(60, 40, 70), true);
  driver.display().enableOverlay(ccDisplay::overlayOn);
  HWND const next = newWindow({0, 0, 50, 30});

  driver.display().window(next);

  EXPECT_EQ(driver.display().enableOverlay(), ccDisplay::overlayOn);
  ccPelBuffer<ccPackedRGB32Pel> out(50, 30);
  EXPECT_NO_THROW(driver.display().getDisplayedImage(out, ccUITablet::overlayLayer));
  plat::testing::drain();
  EXPECT_EQ(plat::testing::pel(next, {25, 15}), 0x464646u);
  driver.display().enableOverlay(ccDisplay::overlayOff);
  EXPECT_EQ(plat::testing::pel(next, {25, 15}), 0x464646u);
  driver.display().window(nullptr);
  plat::platform().windows.destroy(next);
}

TEST(DisplaySeam, anOverlaySwitchedOffBetweenTwoWindowsStaysOff)
{
  WindowDriver driver(60, 40);
  driver.display().enableOverlay(ccDisplay::overlayOn);
  driver.display().window(nullptr);
  driver.display().enableOverlay(ccDisplay::overlayOff);

  driver.display().window(driver.window());

  EXPECT_EQ(driver.display().enableOverlay(), ccDisplay::noOverlay);
}

TEST(DisplaySeam, aKeyedDisplayOnANewWindowFollowsTheParentsOfThat)
{
  WindowDriver driver(60, 40);
  driver.display().image(evenImage(60, 40, 70), true);
  ASSERT_EQ(driver.display().enableChromaKeying(true), 0);
  HWND const parent = newWindow({0, 0, 100, 100});
  HWND const child = newWindow({10, 10, 60, 50}, parent);
  driver.display().window(child);
  EXPECT_EQ(driver.display().enableOverlay(), ccDisplay::chromaOn);
  // The picture is presented again when the parent has moved.
  driver.display().imageScope().invalidateScreen(ccUIRect(0, 0, 50, 40));
  plat::testing::send(parent, 3, 0, 0);
  plat::testing::drain();

  EXPECT_EQ(plat::testing::pel(child, {20, 20}), plat::testing::pel(child, {30, 30}));
  driver.display().window(nullptr);
  plat::platform().windows.destroy(parent);
}

TEST(DisplaySeam, anotherKeyReachesTheGlassAtOnce)
{
  WindowDriver driver(60, 40);
  driver.display().image(evenImage(60, 40, 70), true);
  ASSERT_EQ(driver.display().enableChromaKeying(true), 0);
  ASSERT_EQ(driver.pel(30, 20), 0x464646u);  // graphics of key 0 let the picture through

  driver.display().chromaKey(0x00FF01);

  EXPECT_EQ(driver.pel(30, 20), 0u);  // now they are black
  driver.display().chromaKey(0);
  EXPECT_EQ(driver.pel(30, 20), 0x464646u);
}

TEST(DisplaySeam, surfacesOfAModeThatWasLeftAreNeverMissed)
{
  for (int const way : {0, 1, 2}) {
    WindowDriver driver(60, 40);
    driver.display().image(evenImage(60, 40, 70), true);
    if (way == 0) {
      driver.display().enableChromaKeying(true);
      driver.display().enableChromaKeying(false);
    } else if (way == 1) {
      driver.display().enableOverlay(ccDisplay::overlayOn);
      driver.display().enableOverlay(ccDisplay::overlayOff);
    } else {
      driver.display().enableOverlay(ccDisplay::overlayOn);
      driver.display().enableChromaKeying(true);
      driver.display().enableChromaKeying(false);
    }
    plat::testing::lose(driver.window());

    driver.display().image(evenImage(60, 40, 90), true);

    EXPECT_EQ(driver.pel(30, 20), 0x5A5A5Au) << way;
    plat::testing::lose(nullptr);
    driver.display().image(evenImage(60, 40, 91), true);
    EXPECT_EQ(driver.pel(30, 20), 0x5B5B5Bu) << way;
  }
}

// The root's palette of 236 entries and the display's of 256 say the same.
TEST(DisplaySeam, coloursOfDepth8StayWhereTheyAre)
{
  WindowDriver driver(60, 40, 8);
  std::vector<ccRGB> map(231);
  for (std::size_t i = 0; i < map.size(); ++i)
    map[i] = ccRGB(static_cast<unsigned char>(i), static_cast<unsigned char>(255 - i), 7);
  driver.display().colorMap(map, 10);
  driver.display().image(evenImage(60, 40, 120), true);
  std::uint32_t const before = driver.pel(30, 20);

  driver.click({30, 20});
  static_cast<ccUIWin32Root*>(driver.display().root())->realizePalette();
  driver.display().root()->reservedColor(ccRGB(1, 2, 3), 242);
  driver.display().image(evenImage(60, 40, 120), true);

  EXPECT_EQ(driver.pel(30, 20), before);
  plat::PaletteEntry const shown = plat::platform().objects.systemEntries()[100];
  ccRGB const wanted = driver.display().root()->colorMap()[100];
  EXPECT_EQ(ccRGB(shown.r, shown.g, shown.b).r, wanted.r);
  EXPECT_EQ(shown.g, wanted.g);
}

TEST(DisplaySeam, aWindowThatGoesInADragEndsItWithoutAHook)
{
  class Watch : public ccWin32Display {
  public:
    using ccWin32Display::ccWin32Display;
    int stops = 0;

  protected:
    void dragStop_(ccPair<long> const& from, ccPair<long> const& to) override
    {
      ++stops;
      ccWin32Display::dragStop_(from, to);
    }
  };
  WindowDriver driver(60, 40);
  driver.dropDisplay();
  Watch display(driver.window());
  display.image(evenImage(60, 40, 70), true);
  display.mouseMode(ccDisplay::panMode);
  driver.press({30, 20}).moveTo({40, 25});
  ASSERT_EQ(display.root()->eventProcessor()->gesture(), ccUIEventProcessor::Gesture::dragging);

  plat::platform().windows.destroy(driver.window());

  EXPECT_EQ(display.root()->eventProcessor()->gesture(), ccUIEventProcessor::Gesture::idle);
  EXPECT_EQ(display.stops, 0);
  HWND const next = newWindow({0, 0, 60, 40});
  display.window(next);
  display.image(evenImage(60, 40, 99), true);
  plat::testing::drain();
  EXPECT_EQ(plat::testing::pel(next, {30, 20}), 0x636363u);
  display.window(nullptr);
  plat::platform().windows.destroy(next);
}

// A hook holds the mutex of its root, and another thread may wait for that with a list in its hand, or the list mutex alone.
TEST(DisplaySeam, theListMutexIsNotWaitedForInsideARoot)
{
  WindowDriver driver(60, 40);
  ccLock list(ccWin32Display::listMutex());
  bool done = false;
  std::thread other([&] {
    ccLock root(driver.display().rootMutex());
    driver.display().enableOverlay(ccDisplay::overlayOn);
    driver.display().enableOverlay(ccDisplay::overlayOff);
    driver.display().enableOverlay(ccDisplay::overlayOff);
    done = true;
  });
  other.join();
  EXPECT_TRUE(done);
  driver.moveTo({3, 3});  // messages find their display all the while
  EXPECT_EQ(driver.events().lastMousePos(), ccPair<long>(3, 3));
}

// The window's thread may be waiting for a mutex of the tree meanwhile, so it is not waited for.
TEST(DisplaySeam, aDisplayIsMadeAndDeletedWhileTheWindowsThreadStandsStill)
{
  WindowDriver driver(60, 40);

  std::thread other([&] {
    driver.dropDisplay();
    ccWin32Display display(driver.window());
    display.enableOverlay(ccDisplay::overlayOn);
    display.enableOverlay(ccDisplay::overlayOff);
    display.enableChromaKeying(true);
  });
  other.join();

  plat::testing::drain();
  driver.makeDisplay();
  driver.display().image(evenImage(60, 40, 70), true);
  EXPECT_EQ(driver.pel(30, 20), 0x464646u);
}

TEST(DisplaySeam, restoringOnASmallerScreenLeavesTheRestBlack)
{
  WindowDriver driver(60, 40, 32, 0);
  driver.display().image(evenImage(60, 40, 70), true);
  plat::testing::screen({30, 60}, 32);
  EXPECT_EQ(driver.display().restore(nullptr), 0);
  plat::testing::drain();
  plat::testing::screen({1280, 1024}, 32);
  plat::testing::drain();

  EXPECT_EQ(driver.display().clientArea(), ccPair<long>(30, 40));
  EXPECT_EQ(driver.pel(29, 20), 0x464646u);
  EXPECT_EQ(driver.pel(30, 20), 0u);
}

// The screen's new mode takes the surfaces, whatever the display stands in when the next size comes.
TEST(DisplaySeam, aSizeOnASmallerScreenBlackensWhatTheDisplayNoLongerReaches)
{
  WindowDriver driver(60, 40, 32, 0);
  driver.display().image(evenImage(60, 40, 70), true);
  plat::testing::screen({30, 60}, 32);
  driver.resize(58, 40);
  plat::testing::screen({1280, 1024}, 32);
  plat::testing::drain();

  EXPECT_EQ(driver.pel(29, 20), 0x464646u);
  EXPECT_EQ(driver.pel(30, 20), 0u);
  EXPECT_EQ(driver.pel(57, 39), 0u);
}

TEST(DisplaySeam, anOverlayMadeOnASmallerScreenIsAsLargeAsItsImageLayer)
{
  WindowDriver driver(60, 40, 32, 0);
  plat::testing::screen({1280, 30}, 32);
  driver.display().enableOverlay(ccDisplay::overlayOn);

  EXPECT_EQ(driver.display().imageScope().size(), ccPair<long>(60, 30));
  ASSERT_NE(driver.display().overlayScope(), nullptr);
  EXPECT_EQ(driver.display().overlayScope()->size(), ccPair<long>(60, 30));
}

TEST(DisplaySeam, aDisplayThatLeavesASharedWindowUncoversTheOther)
{
  WindowDriver driver(60, 40);
  driver.display().image(evenImage(60, 40, 70), true);
  auto second = std::make_unique<ccWin32Display>(driver.window());
  second->image(evenImage(60, 40, 200), true);
  plat::testing::drain();
  EXPECT_EQ(driver.pel(30, 20), 0xC8C8C8u);

  second->window(nullptr);
  plat::testing::drain();
  EXPECT_EQ(driver.pel(30, 20), 0x464646u);

  second->window(driver.window());
  second->image(evenImage(60, 40, 100), true);
  plat::testing::drain();
  second.reset();
  plat::testing::drain();
  EXPECT_EQ(driver.pel(30, 20), 0x464646u);
}

// Otherwise whichever layer was drawn last would stand on the screen.
TEST(DisplaySeam, theKeyedCompositionStaysInFrontOfAnOverlay)
{
  WindowDriver driver(60, 40);
  ccWin32Display& display = driver.display();
  display.image(evenImage(60, 40, 70), true);
  display.chromaKey(0xFF00FF);
  display.enableChromaKeying(true);
  plat::testing::drain();
  std::vector<std::uint32_t> const keyed = driver.shot();

  display.enableOverlay(ccDisplay::overlayOn);
  {
    ccLock lock(display.rootMutex());
    display.overlayScope()->set(ccColor::redColor());
    display.overlayScope()->updateScreen();
  }
  plat::testing::drain();
  EXPECT_EQ(driver.shot(), keyed);

  display.enableChromaKeying(false);
  display.overlayScope()->set(ccColor::redColor());
  display.overlayScope()->updateScreen();
  EXPECT_EQ(driver.pel(30, 20), 0xFF0000u);
}

// The YUV picture is of 8 bits and the overlay of 32; making the surfaces anew doesn't change that.
TEST(DisplaySeam, aYuvPictureAndAnOverlayOfOtherDepthComeToRest)
{
  WindowDriver driver(60, 40);
  plat::testing::overlays(1, {0x59565955u});
  ccWin32Display& display = driver.display();
  display.image(evenImage(60, 40, 70), true);
  display.enableOverlay(ccDisplay::overlayOn);
  {
    ccLock lock(display.rootMutex());
    display.imageScope().enableChromaKeying(true, /*yuv=*/true);
  }
  ccUISketch const whole = [] {
    ccUITablet recorder;
    recorder.set(ccUIRect(0, 0, 60, 40), ccColor::redColor(), ccUITablet::overlayLayer);
    return recorder.sketch();
  }();
  display.drawSketch(whole, ccDisplay::displayCoords);
  plat::testing::drain();
  EXPECT_EQ(plat::testing::shownOverlays().size(), 1u);
  plat::testing::overlays(0, {});
}

TEST(DisplaySeam, displaysWithColoursOfTheirOwnComeToRestOnAPaletteScreen)
{
  WindowDriver first(60, 40, 8), second(60, 40, 8, 120);
  auto const even = [](unsigned char v) { return std::vector<ccRGB>(231, ccRGB(v, v, v)); };
  first.display().colorMap(even(50), 10);
  second.display().colorMap(even(90), 10);

  plat::testing::drain();  // ends
  auto const palette = plat::platform().objects.systemEntries();
  EXPECT_EQ(palette[100].r, 90);
}
