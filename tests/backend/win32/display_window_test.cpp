// The display and its window: binding, size, paint, scroll bars, colours, destruction.
#include "canvas/ui_error.h"
#include "tests/support/window_driver.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

constexpr std::uint32_t kSurround = 0x808080;

std::uint32_t greyWord(unsigned v) { return v << 16 | v << 8 | v; }

unsigned char valueAt(long x, long y) { return static_cast<unsigned char>(x * 3 + y * 5); }

ccPelBuffer<unsigned char> pattern(long w, long h)
{
  ccPelBuffer<unsigned char> b(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      b.setPel(x, y, valueAt(x, y));
  return b;
}

// An image of the pattern, unscaled and centred, at depth 32.
void expectCentred(WindowDriver& driver, long windowW, long windowH, long w, long h)
{
  std::vector<std::uint32_t> const shot = driver.shot();
  ASSERT_EQ(shot.size(), static_cast<std::size_t>(windowW * windowH));
  long const left = windowW / 2 - w / 2, top = windowH / 2 - h / 2;
  long wrong = 0;
  for (long y = 0; y < windowH; ++y)
    for (long x = 0; x < windowW; ++x) {
      bool const inside = x >= left && y >= top && x < left + w && y < top + h;
      std::uint32_t const expected = inside ? greyWord(valueAt(x - left, y - top)) : kSurround;
      wrong += shot[static_cast<std::size_t>(y * windowW + x)] != expected;
    }
  EXPECT_EQ(wrong, 0);
}

}  // namespace

TEST(DisplayWindow, aNewDisplayShowsGreyAndThenItsImage)
{
  WindowDriver driver(60, 40);
  for (std::uint32_t pel : driver.shot())
    ASSERT_EQ(pel, kSurround);

  driver.display().image(pattern(21, 13), true);

  expectCentred(driver, 60, 40, 21, 13);
}

TEST(DisplayWindow, aResizeKeepsTheImageInTheMiddle)
{
  WindowDriver driver(60, 40);
  driver.display().image(pattern(30, 20), true);
  for (auto const& [w, h] : {std::pair(90L, 70L), std::pair(31L, 77L), std::pair(8L, 6L), std::pair(60L, 40L)}) {
    driver.resize(w, h);
    expectCentred(driver, w, h, 30, 20);
    EXPECT_EQ(driver.display().clientArea(), ccPair<long>(w, h));
  }
}

TEST(DisplayWindow, aSizeOfZeroIsIgnored)
{
  WindowDriver driver(60, 40);
  driver.display().image(pattern(30, 20), true);

  plat::testing::send(driver.window(), 5, 0, 0);
  plat::testing::send(driver.window(), 5, 0, 50);

  EXPECT_EQ(driver.display().clientArea(), ccPair<long>(60, 40));
  expectCentred(driver, 60, 40, 30, 20);
}

TEST(DisplayWindow, windowSameDoesNothing)
{
  WindowDriver driver(60, 40);
  driver.display().image(pattern(30, 20), true);
  driver.display().pan(ccVector<2>(3, 0));

  driver.display().window(driver.window());

  EXPECT_EQ(driver.display().window(), driver.window());
  EXPECT_EQ(driver.pel(30 - 15 + 3, 20), greyWord(valueAt(0, 10)));
}

TEST(DisplayWindow, destroyingTheWindowDetachesTheDisplayAndTheNextWindowShowsThePicture)
{
  WindowDriver driver(60, 40);
  driver.display().image(pattern(30, 20), true);

  plat::platform().windows.destroy(driver.window());
  EXPECT_EQ(driver.display().window(), nullptr);
  driver.display().image(pattern(24, 10), true);  // drawn nowhere

  plat::WindowDesc desc;
  desc.rect = {0, 0, 50, 30};
  HWND const next = plat::platform().windows.create(desc);
  plat::platform().windows.place(next, nullptr, 5);
  driver.display().window(next);
  plat::testing::drain();
  EXPECT_EQ(plat::testing::pel(next, {25 - 12, 15 - 5}), greyWord(valueAt(0, 0)));
  EXPECT_EQ(plat::testing::pel(next, {0, 0}), kSurround);
  plat::platform().windows.destroy(next);
}

TEST(DisplayWindow, leavingAWindowGivesItsProcedureBack)
{
  WindowDriver driver(60, 40);
  driver.display().window(nullptr);
  ccPair<long> const before = driver.events().lastMousePos();

  plat::testing::mouse(driver.window(), 512, {9, 9}, 0);

  EXPECT_EQ(driver.events().lastMousePos(), before);
  EXPECT_EQ(driver.display().window(), nullptr);
}

TEST(DisplayWindow, aStaleWindowHandleLeavesTheDisplayWithoutWindow)
{
  WindowDriver driver(60, 40);
  plat::WindowDesc desc;
  desc.rect = {0, 0, 50, 30};
  HWND const gone = plat::platform().windows.create(desc);
  plat::platform().windows.destroy(gone);

  driver.display().window(gone);

  EXPECT_EQ(driver.display().window(), nullptr);
  driver.display().image(pattern(5, 5), true);
  driver.display().window(driver.window());
  expectCentred(driver, 60, 40, 5, 5);
}

TEST(DisplayWindow, aWindowDestroyedWhileAnImageIsDrawnIsSurvived)
{
  struct Killer : ccWin32Display {
    using ccWin32Display::ccWin32Display;
    HWND victim = nullptr;
    void imageChanged() override
    {
      ccWin32Display::imageChanged();
      if (HWND const w = std::exchange(victim, nullptr))
        plat::platform().windows.destroy(w);
    }
  };
  WindowDriver driver(60, 40);
  driver.dropDisplay();
  {
    Killer display(driver.window());
    display.victim = driver.window();
    display.image(pattern(30, 20), true);
    EXPECT_EQ(display.window(), nullptr);
    display.image(pattern(31, 20), true);
  }
}

TEST(DisplayWindow, whatWasInvalidatedIsPaintedAgain)
{
  WindowDriver driver(60, 40);
  driver.display().image(pattern(30, 20), true);
  plat::WindowSystem& windows = plat::platform().windows;
  HDC const dc = windows.getDC(driver.window());
  plat::painter(dc)->fillRect({0, 0, 60, 40}, 0x0000FF);
  windows.releaseDC(driver.window(), dc);
  ASSERT_EQ(driver.pel(30, 20), 0xFF0000u);

  plat::Rect const part{0, 0, 60, 21};
  windows.invalidate(driver.window(), &part, false);
  plat::testing::drain();

  EXPECT_EQ(driver.pel(30, 20), greyWord(valueAt(15, 10)));
  EXPECT_EQ(driver.pel(30, 21), 0xFF0000u);
  windows.invalidate(driver.window(), nullptr, true);
  plat::testing::drain();
  expectCentred(driver, 60, 40, 30, 20);
}

TEST(DisplayWindow, theMarginThatAScrollUncoversIsBlack)
{
  WindowDriver driver(60, 40);
  driver.display().imageScope().scroll(ccPair<long>(-7, -7));

  plat::platform().windows.invalidate(driver.window(), nullptr, false);
  plat::testing::drain();

  EXPECT_EQ(driver.pel(3, 20), 0u);
  EXPECT_EQ(driver.pel(30, 3), 0u);
  EXPECT_EQ(driver.pel(6, 6), 0u);
}

TEST(DisplayWindow, displayFormatFollowsTheDepthOfTheScreen)
{
  struct {
    int depth;
    ccDisplay::DisplayFormat format;
  } const rows[] = {{8, ccDisplay::format8},
                    {15, ccDisplay::format15},
                    {16, ccDisplay::format16},
                    {24, ccDisplay::format24},
                    {32, ccDisplay::format32}};
  for (auto const& row : rows) {
    WindowDriver driver(20, 20, row.depth);
    EXPECT_EQ(driver.display().displayFormat(), row.format) << row.depth;
    EXPECT_EQ(driver.display().imageScope().depth(), row.depth);
  }
}

TEST(DisplayWindow, passThroughValues)
{
  WindowDriver driver(20, 20);
  unsigned char index = 0;
  ccPackedRGB16Pel rgb16;
  ccPackedRGB32Pel rgb32;
  driver.display().getPassThroughValue(index);
  driver.display().getPassThroughValue(rgb16);
  driver.display().getPassThroughValue(rgb32);
  EXPECT_EQ(index, 243);
  EXPECT_EQ(rgb16.word(), 63390);
  EXPECT_EQ(rgb32.word(), 0xf3f3f3u);
}

TEST(DisplayWindow, picksAreNotThereYetAndLiveDisplayDoesNotStart)
{
  WindowDriver driver(20, 20);
  ccDisplay& display = driver.display();
  EXPECT_THROW(display.selectArea(ccDisplay::imageCoords, "area", ccColor::redColor()), ccUIError::NotImplemented);
  EXPECT_THROW(display.selectPoint(ccDisplay::imageCoords, "point", ccColor::redColor()), ccUIError::NotImplemented);
  EXPECT_THROW(display.selectAreaStart(ccDisplay::imageCoords, {}, ccColor::redColor()), ccUIError::NotImplemented);
  EXPECT_THROW(display.selectPointEnd(1), ccUIError::NotImplemented);
  EXPECT_FALSE(display.startLiveDisplay(nullptr));
  EXPECT_FALSE(display.isLiveEnabled());
}

TEST(ScrollBars, takeTheirRoomAndFollowThePan)
{
  WindowDriver driver(120, 100);
  driver.display().image(pattern(300, 200), true);

  driver.display().showScrollBar(true, true);
  plat::testing::drain();

  EXPECT_TRUE(driver.display().horzScrollbarEnabled());
  EXPECT_TRUE(driver.display().vertScrollbarEnabled());
  EXPECT_EQ(driver.display().clientArea(), ccPair<long>(104, 84));

  // The arrow at the right end of the horizontal bar: code 1 takes a small step off the pan.
  double const before = driver.display().pan().x();
  driver.click({96, 92});
  EXPECT_DOUBLE_EQ(driver.display().pan().x(), before - 84 * 0.02);

  driver.display().showScrollBar(false, false);
  plat::testing::drain();
  EXPECT_EQ(driver.display().clientArea(), ccPair<long>(120, 100));
}

TEST(Cursors, aModeShowsItsCursorAndLeavingTheWindowGivesTheClassCursorBack)
{
  WindowDriver driver(60, 40);
  auto& root = static_cast<ccUIWin32Root&>(*driver.display().root());
  plat::WindowSystem& windows = plat::platform().windows;
  HCURSOR const arrow = windows.loadCursor(600), pan = windows.loadCursor(604);
  ASSERT_NE(arrow, pan);

  driver.display().mouseMode(ccDisplay::panMode);
  EXPECT_EQ(windows.classCursor(driver.window(), pan), pan);
  EXPECT_EQ(root.cursorHandle(ccUIRootObject::Cursor(7), arrow), nullptr);
  EXPECT_EQ(root.cursorHandle(ccUIRootObject::arrowCursor, nullptr), nullptr);
  EXPECT_EQ(root.cursorHandle(ccUIRootObject::panCursor, arrow), pan);
  EXPECT_EQ(root.cursorHandle(ccUIRootObject::panCursor, pan), arrow);

  driver.display().window(nullptr);
  EXPECT_NE(windows.classCursor(driver.window(), pan), pan);
}

TEST(Palette, atDepth8PelsStayInTheGreyRamp)
{
  WindowDriver driver(64, 40, 8);
  ccPelBuffer<unsigned char> all(256, 1);
  for (long x = 0; x < 256; ++x)
    all.setPel(x, 0, static_cast<unsigned char>(x));
  driver.resize(256, 8);

  driver.display().image(all, /*mapPels=*/false);

  for (long x = 0; x < 256; ++x)
    ASSERT_EQ(driver.pel(x, 4), greyWord(static_cast<unsigned>(std::clamp(x, 10L, 240L)))) << x;
}

TEST(Palette, aColourMapReachesTheScreenAtDepth8)
{
  WindowDriver driver(64, 40, 8);
  std::vector<ccRGB> map(256);
  for (std::size_t i = 0; i < map.size(); ++i)
    map[i] = ccRGB(static_cast<unsigned char>(i), 20, 99);
  driver.display().colorMap(map, 0);
  ccPelBuffer<unsigned char> flat(64, 40);
  for (long y = 0; y < 40; ++y)
    for (long x = 0; x < 64; ++x)
      flat.setPel(x, y, 110);

  driver.display().image(flat, /*mapPels=*/false);

  EXPECT_EQ(driver.pel(5, 5), 0x641463u);  // entry 100 of the ramp stands at palette index 110
}

TEST(DisplayedImage, layer1WithoutOverlayThrows)
{
  WindowDriver driver(30, 20);
  ccPelBuffer<ccPackedRGB32Pel> out(30, 20);
  EXPECT_THROW(driver.display().getDisplayedImage(out, ccUITablet::overlayLayer), ccWin32Display::OverlayLayerNotEnabled);
  try {
    driver.display().getDisplayedImage(out, ccUITablet::overlayLayer);
  } catch (ccException const& e) {
    EXPECT_EQ(e.errorNumber(), 0x10004512);
  }
}

TEST(DisplayedImage, equalsTheWindowAtEveryDepth)
{
  for (int depth : {8, 15, 16, 24, 32}) {
    WindowDriver driver(50, 30, depth);
    driver.display().image(pattern(33, 21), depth != 8);
    driver.display().mag(2);
    ccPelBuffer<ccPackedRGB32Pel> out(50, 30);

    driver.display().getDisplayedImage(out, ccUITablet::bothLayers);

    std::vector<std::uint32_t> const shot = driver.shot();
    long wrong = 0;
    for (long y = 0; y < 30; ++y)
      for (long x = 0; x < 50; ++x)
        wrong += out.getPel(x, y).word() != shot[static_cast<std::size_t>(y * 50 + x)];
    EXPECT_EQ(wrong, 0) << depth;
  }
}

TEST(Overlay, thePlaneIsSwitchedOnAndOffOverAnUnchangedPicture)
{
  WindowDriver driver(60, 40);
  driver.display().image(pattern(30, 20), true);
  EXPECT_EQ(driver.display().enableOverlay(), ccDisplay::noOverlay);

  driver.display().enableOverlay(ccDisplay::overlayOn);
  EXPECT_EQ(driver.display().enableOverlay(), ccDisplay::overlayOn);
  expectCentred(driver, 60, 40, 30, 20);
  driver.display().image(pattern(20, 30), true);
  expectCentred(driver, 60, 40, 20, 30);
  driver.resize(70, 50);
  expectCentred(driver, 70, 50, 20, 30);

  driver.display().enableOverlay(ccDisplay::overlayOff);
  EXPECT_EQ(driver.display().enableOverlay(), ccDisplay::noOverlay);
  expectCentred(driver, 70, 50, 20, 30);
}

TEST(Overlay, chromaKeyingShowsTheApplicationsDrawingOverTheImage)
{
  WindowDriver driver(60, 40);
  driver.display().image(pattern(60, 40), true);
  driver.display().chromaKey(0xFF00FF);
  driver.display().enableOverlay(ccDisplay::chromaOn);
  EXPECT_EQ(driver.display().enableOverlay(), ccDisplay::chromaOn);

  HDC const dc = driver.display().getDC();
  ASSERT_NE(dc, nullptr);
  plat::Painter* const painter = plat::painter(dc);
  painter->fillRect({0, 0, 60, 40}, 0xFF00FF);
  painter->fillRect({10, 10, 20, 15}, 0x00FF00);
  driver.display().releaseDC(dc);

  EXPECT_EQ(driver.pel(15, 12), 0x00FF00u);
  EXPECT_EQ(driver.pel(5, 5), greyWord(valueAt(5, 5)));
  driver.display().enableOverlay(ccDisplay::chromaOff);
  EXPECT_EQ(driver.display().enableOverlay(), ccDisplay::noOverlay);
  expectCentred(driver, 60, 40, 60, 40);
}

TEST(Recovery, lostSurfacesComeBackWithTheWholePicture)
{
  WindowDriver driver(60, 40);
  driver.display().image(pattern(30, 20), true);
  std::string report;

  EXPECT_EQ(driver.display().restore(&report), 0);

  EXPECT_NE(report.find("DirectDraw object created:"), std::string::npos);
  expectCentred(driver, 60, 40, 30, 20);
}

TEST(Threads, imagesArriveOnAnotherThreadWhileTheHandWorks)
{
  WindowDriver driver(80, 60);
  std::atomic<bool> stop{false};
  std::atomic<long> frames{0};
  ccPelBuffer<unsigned char> const a = pattern(60, 40), b = pattern(61, 40);
  std::thread camera([&] {
    while (!stop) {
      driver.display().image(frames % 7 == 0 ? b : a, true);
      ++frames;
    }
  });
  driver.display().mouseMode(ccDisplay::panMode);
  for (int i = 0; i < 200 || frames < 200; ++i) {
    long const x = 10 + i * 7 % 60, y = 10 + i * 3 % 40;
    driver.press({x, y}).moveTo({x + 3, y + 2}).release();
    driver.display().mag(1 + i % 3);
    driver.wait(5);
  }
  stop = true;
  camera.join();

  driver.display().mag(1);
  driver.display().pan(ccVector<2>(0, 0));
  driver.display().image(a, true);
  plat::testing::drain();
  expectCentred(driver, 80, 60, 60, 40);
}

TEST(Displays, twoDisplaysInTwoWindowsKeepApart)
{
  WindowDriver one(60, 40), two(50, 50, 32, 500);
  one.display().image(pattern(30, 20), true);
  two.display().image(pattern(11, 12), true);
  two.display().mag(2);

  expectCentred(one, 60, 40, 30, 20);
  one.press({5, 5}).release();
  EXPECT_EQ(two.events().lastMousePos(), ccPair<long>(0, 0));
  EXPECT_EQ(two.pel(25, 25), greyWord(valueAt(5, 6)));
}
