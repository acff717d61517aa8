// What each window message becomes.
#include "tests/support/window_driver.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

using Event = ccMouseEvent;

std::intptr_t place(long x, long y)
{
  return static_cast<std::intptr_t>(static_cast<std::uint32_t>(static_cast<std::uint16_t>(y)) << 16 |
                                    static_cast<std::uint16_t>(x));
}

std::intptr_t send(WindowDriver& driver, unsigned message, std::uintptr_t wParam = 0, std::intptr_t lParam = 0)
{
  return plat::testing::send(driver.window(), message, wParam, lParam);
}

ccPelBuffer<unsigned char> ramp(long w, long h)
{
  ccPelBuffer<unsigned char> b(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      b.setPel(x, y, static_cast<unsigned char>(x + 3 * y));
  return b;
}

// Messages that reached the window's own procedure, after the display.
std::vector<unsigned> chained;
plat::LResult chainSpy(HWND window, unsigned message, plat::WParam w, plat::LParam l)
{
  chained.push_back(message);
  return plat::platform().windows.callProc(nullptr, window, message, w, l);
}

}  // namespace

TEST(MouseMessages, eachMessageBecomesItsKindAndButton)
{
  WindowDriver driver;
  struct {
    unsigned message;
    std::uintptr_t wParam;
    Event::Event event;
    int which;
    std::uint32_t buttons;
  } const rows[] = {
      {512, 0, Event::mouseMoved, 0, 0},
      {513, 1, Event::mousePressed, 1, 1},
      {514, 0, Event::mouseReleased, 1, 0},
      {515, 1, Event::mouseDblClicked, 1, 1},
      {514, 0, Event::mouseReleased, 1, 0},
      {516, 2, Event::mousePressed, 4, 4},
      {517, 0, Event::mouseReleased, 4, 0},
      {518, 2, Event::mouseDblClicked, 4, 4},
      {517, 0, Event::mouseReleased, 4, 0},
      {519, 16, Event::mousePressed, 2, 2},
      {520, 0, Event::mouseReleased, 2, 0},
      {521, 16, Event::mouseDblClicked, 2, 2},
      {520, 0, Event::mouseReleased, 2, 0},
  };
  for (auto const& row : rows) {
    send(driver, row.message, row.wParam, place(20, 30));
    Event const& e = driver.events().lastMouseEvent();
    EXPECT_EQ(e.event(), row.event) << row.message;
    EXPECT_EQ(static_cast<int>(e.whichButton()), row.which) << row.message;
    EXPECT_EQ(e.buttons(), row.buttons) << row.message;
    EXPECT_EQ(e.position(), ccPair<long>(20, 30)) << row.message;
  }
}

TEST(MouseMessages, modifiersAndButtonsAreReadFromTheirBits)
{
  WindowDriver driver;
  struct {
    std::uintptr_t wParam;
    std::uint32_t buttons, keys;
  } const rows[] = {{0, 0, 0}, {1, 1, 0}, {2, 4, 0}, {16, 2, 0}, {4, 0, 4}, {8, 0, 2}, {1 | 2 | 16 | 4 | 8, 7, 6}};
  for (auto const& row : rows) {
    send(driver, 512, row.wParam, place(5, 6));
    EXPECT_EQ(driver.events().lastMouseEvent().buttons(), row.buttons) << row.wParam;
    EXPECT_EQ(driver.events().lastMouseEvent().keys(), row.keys) << row.wParam;
  }
}

TEST(MouseMessages, positionsAreSignedAndShiftByTheScroll)
{
  WindowDriver driver;
  driver.display().imageScope().scroll(ccPair<long>(10, 20));

  send(driver, 512, 0, place(-3, 7));

  EXPECT_EQ(driver.events().lastMousePos(), ccPair<long>(7, 27));
}

TEST(MouseMessages, aHeldLeftButtonRepeatsAt1000And1500And2000Ms)
{
  WindowDriver driver;
  driver.display().dwell(true);
  driver.press({50, 50});
  struct {
    unsigned wait;
    int count;
  } const steps[] = {{999, 0}, {1, 1}, {499, 1}, {1, 2}, {499, 2}, {1, 3}, {500, 4}};
  for (auto const& step : steps) {
    driver.wait(step.wait);
    EXPECT_EQ(driver.events().dwellCount(), step.count);
  }
  EXPECT_EQ(driver.events().lastMouseEvent().event(), Event::mouseDwell);
  EXPECT_EQ(driver.events().lastMouseEvent().buttons(), 1u);
  EXPECT_EQ(driver.events().lastMouseEvent().position(), ccPair<long>(50, 50));

  driver.release();
  driver.wait(3000);
  EXPECT_EQ(driver.events().lastMouseEvent().event(), Event::mouseReleased);
}

TEST(MouseMessages, aMoveOfTwoPelsStopsTheRepeatAndOneOfOneDoesNot)
{
  WindowDriver driver;
  driver.display().dwell(true);
  driver.press({50, 50}).moveTo({51, 49});
  driver.wait(1000);
  EXPECT_EQ(driver.events().dwellCount(), 1);
  driver.release();

  driver.press({50, 50}).moveTo({50, 52}).wait(5000);
  EXPECT_EQ(driver.events().dwellCount(), 0);
  driver.release();

  driver.press({50, 50}).moveTo({48, 50}).wait(5000);
  EXPECT_EQ(driver.events().dwellCount(), 0);
  driver.release();
}

TEST(MouseMessages, aPressHoldsTheMouseInTheClientAreaUntilTheRelease)
{
  WindowDriver driver(200, 150);
  driver.press({50, 50}).moveTo({-500, 900});
  EXPECT_EQ(driver.events().lastMousePos(), ccPair<long>(0, 149));

  driver.release();
  driver.moveTo({20, 20}).moveTo({-500, 900});
  EXPECT_EQ(driver.events().lastMousePos(), ccPair<long>(20, 20));  // free again, and outside nobody hears of it
}

TEST(MouseMessages, losingTheCaptureToAnotherWindowReleasesAtTheLastPosition)
{
  WindowDriver driver;
  plat::WindowDesc desc;
  desc.rect = {600, 30, 700, 130};
  HWND const other = plat::platform().windows.create(desc);
  plat::platform().windows.place(other, nullptr, 5);
  driver.press({50, 50}).moveTo({60, 70});
  ASSERT_EQ(driver.events().gesture(), ccUIEventProcessor::Gesture::pressed);

  plat::platform().windows.setCapture(other);

  EXPECT_EQ(driver.events().gesture(), ccUIEventProcessor::Gesture::idle);
  EXPECT_EQ(driver.events().lastMouseEvent().event(), Event::mouseReleased);
  EXPECT_EQ(driver.events().lastMouseEvent().position(), ccPair<long>(60, 70));
  plat::platform().windows.releaseCapture();
  plat::platform().windows.destroy(other);
}

TEST(MouseMessages, aPlainEndOfTheCaptureIsNoRelease)
{
  WindowDriver driver;
  driver.press({50, 50});

  send(driver, 533, 0, 0);

  EXPECT_EQ(driver.events().gesture(), ccUIEventProcessor::Gesture::pressed);
  driver.release();
}

TEST(MouseMessages, aDisplayThatLeavesItsWindowTakesNoCaptureFromAnother)
{
  for (bool const elsewhere : {false, true}) {
    WindowDriver driver(100, 80), second(60, 40, 32, 400);
    driver.press({50, 50}).moveTo({60, 55});

    if (elsewhere)
      std::thread([&] { second.dropDisplay(); }).join();
    else
      second.dropDisplay();
    plat::testing::drain();

    EXPECT_EQ(plat::platform().windows.capture(), driver.window()) << elsewhere;
    driver.moveTo({400, 300});
    EXPECT_EQ(driver.events().lastMouseEvent().position(), ccPair<long>(99, 79)) << elsewhere;  // clipped still
    driver.release();
    EXPECT_EQ(driver.events().gesture(), ccUIEventProcessor::Gesture::idle) << elsewhere;
    EXPECT_EQ(plat::platform().windows.capture(), nullptr) << elsewhere;
  }
}

TEST(MouseMessages, aDisplayThatLeavesItsWindowInTheMidstOfAPressLetsThePointerGo)
{
  WindowDriver driver(100, 80);
  driver.press({50, 50});

  driver.display().window(nullptr);

  EXPECT_EQ(plat::platform().windows.capture(), nullptr);
  driver.moveTo({140, 60});
  EXPECT_EQ(plat::platform().windows.cursorPos().x, plat::platform().windows.clientToScreen(driver.window(), {140, 0}).x);
  driver.release();
}

TEST(MouseMessages, theWheelGoesOnToTheFormerProcedure)
{
  WindowDriver driver;
  driver.dropDisplay();
  plat::platform().windows.subclass(driver.window(), &chainSpy);
  driver.makeDisplay();
  driver.moveTo({30, 30});
  Event const before = driver.events().lastMouseEvent();
  chained.clear();

  send(driver, 522, 120u << 16, place(70, 60));

  EXPECT_EQ(chained, std::vector<unsigned>{522});
  EXPECT_EQ(driver.events().lastMouseEvent(), before);
}

TEST(KeyMessages, keysBecomeVirtualKeysAndRepeatsAreDropped)
{
  WindowDriver driver;
  std::intptr_t const repeat = std::intptr_t(1) << 30;

  send(driver, 256, 16, 0);
  EXPECT_EQ(driver.events().lastKeyboardEvent().event(), ccKeyboardEvent::keyDown);
  EXPECT_EQ(driver.events().lastKeyboardEvent().keyType(), ccKeyboardEvent::virtualKeyType);
  EXPECT_EQ(driver.events().lastKeyboardEvent().virtualKey(), ccKeyboardEvent::vkShift);

  send(driver, 256, 17, repeat);
  EXPECT_EQ(driver.events().lastKeyboardEvent().virtualKey(), ccKeyboardEvent::vkShift);

  send(driver, 257, 17, repeat);  // a release carries that bit always
  EXPECT_EQ(driver.events().lastKeyboardEvent().event(), ccKeyboardEvent::keyUp);
  EXPECT_EQ(driver.events().lastKeyboardEvent().virtualKey(), ccKeyboardEvent::vkControl);

  send(driver, 256, 65, 0);  // no key of the list
  EXPECT_EQ(driver.events().lastKeyboardEvent().event(), ccKeyboardEvent::keyUp);

  send(driver, 258, 'a', 0);
  EXPECT_EQ(driver.events().lastKeyboardEvent().event(), ccKeyboardEvent::keyCharacter);
  EXPECT_EQ(driver.events().lastKeyboardEvent().keyType(), ccKeyboardEvent::asciiKeyType);
  EXPECT_EQ(driver.events().lastKeyboardEvent().asciiKey(), 'a');

  send(driver, 258, 'b', repeat);
  EXPECT_EQ(driver.events().lastKeyboardEvent().asciiKey(), 'a');
}

TEST(KeyMessages, holdingThePanKeyPansAndTheDragOutlivesIt)
{
  WindowDriver driver(100, 100);
  driver.display().image(ramp(300, 300), true);
  driver.moveTo({50, 50}).keyDown(17);
  EXPECT_EQ(driver.display().mouseMode(), ccDisplay::panMode);

  driver.press({50, 50}).moveTo({60, 45}).keyUp(17);
  EXPECT_EQ(driver.display().mouseMode(), ccDisplay::panMode);
  driver.release();

  EXPECT_EQ(driver.display().mouseMode(), ccDisplay::pointerMode);
  EXPECT_EQ(driver.display().pan(), ccVector<2>(10, -5));
}

TEST(OtherMessages, answersOfTheTable)
{
  WindowDriver driver;
  driver.dropDisplay();
  plat::platform().windows.subclass(driver.window(), &chainSpy);
  driver.makeDisplay();
  struct {
    unsigned message;
    std::intptr_t answer;
    bool chains;
  } const rows[] = {
      {20, 1, false},  // nothing erases the picture
      {32, 1, false}, {279, 0, false}, {783, 1, false}, {3, 0, true}, {36, 0, true}, {130, 0, true}, {1234, 0, true},
  };
  for (auto const& row : rows) {
    chained.clear();
    EXPECT_EQ(send(driver, row.message), row.answer) << row.message;
    EXPECT_EQ(std::count(chained.begin(), chained.end(), row.message), row.chains ? 1 : 0) << row.message;
  }
  chained.clear();
  EXPECT_EQ(send(driver, 785, reinterpret_cast<std::uintptr_t>(driver.window())), 0);  // it comes from ourselves
  EXPECT_EQ(chained, std::vector<unsigned>{785});
  chained.clear();
  EXPECT_EQ(send(driver, 785, 0), 1);
  EXPECT_EQ(chained, std::vector<unsigned>{});
}

TEST(OtherMessages, whileChromaKeyingTheEraseGoesOn)
{
  WindowDriver driver;
  driver.dropDisplay();
  plat::platform().windows.subclass(driver.window(), &chainSpy);
  driver.makeDisplay();
  driver.display().enableOverlay(ccDisplay::chromaOn);
  chained.clear();

  send(driver, 20);

  EXPECT_EQ(chained, std::vector<unsigned>{20});
}

TEST(Commands, eachIdOfTheToolsDoesItsWork)
{
  WindowDriver driver(100, 100);
  driver.display().image(ramp(300, 300), true);
  for (unsigned mode = 0; mode < 4; ++mode) {
    send(driver, 273, 40502 + mode);
    EXPECT_EQ(driver.display().mouseMode(), static_cast<ccDisplay::MouseMode>(mode));
  }
  send(driver, 273, 40507);
  EXPECT_EQ(driver.display().magExact(), 1.0);
  send(driver, 273, 40506);
  EXPECT_EQ(driver.display().mag(), -4);  // 1/3: -3 - 1
  // The sign of the stored value is the switch.
  for (long expected : {1L, -1L, 1L}) {
    send(driver, 273, 40510);
    EXPECT_EQ(driver.display().grid(), expected);
  }
  for (long expected : {4L, -4L}) {
    send(driver, 273, 40511);
    EXPECT_EQ(driver.display().subpixelGrid(), expected);
  }
  double const mag = driver.display().magExact();
  for (unsigned id : {40508u, 40509u, 40501u, 40512u, 0u}) {
    send(driver, 273, id);
    EXPECT_EQ(driver.display().mouseMode(), ccDisplay::zoomOutMode) << id;
    EXPECT_EQ(driver.display().magExact(), mag) << id;
    EXPECT_EQ(driver.display().grid(), 1) << id;
  }
}

TEST(ScrollMessages, eachCodeMovesThePanByItsStep)
{
  WindowDriver driver(200, 100);
  driver.display().image(ramp(300, 300), true);
  struct {
    long mag;
    double small, page;  // both by the client's height of 100, on both axes
  } const zooms[] = {{1, 2, 25}, {2, 1, 12.5}, {-4, 5, 100}};
  for (auto const& zoom : zooms)
    for (unsigned message : {276u, 277u}) {
      driver.display().mag(zoom.mag);
      auto const along = [&] { return message == 276 ? driver.display().pan().x() : driver.display().pan().y(); };
      auto const across = [&] { return message == 276 ? driver.display().pan().y() : driver.display().pan().x(); };
      auto const max = message == 276 ? driver.display().maxPan().x() : driver.display().maxPan().y();
      auto const min = message == 276 ? driver.display().minPan().x() : driver.display().minPan().y();
      double const steps[] = {zoom.small, -zoom.small, zoom.page, -zoom.page};
      for (unsigned code = 0; code < 4; ++code) {
        driver.display().pan(ccVector<2>(0, 0));
        send(driver, message, code);
        EXPECT_DOUBLE_EQ(along(), steps[code]) << message << " code " << code << " mag " << zoom.mag;
        EXPECT_EQ(across(), 0);
      }
      send(driver, message, 4 | 70u << 16);
      EXPECT_EQ(along(), max - 70);
      send(driver, message, 5 | 80u << 16);
      EXPECT_EQ(along(), max - 80);
      send(driver, message, 6);
      EXPECT_EQ(along(), max);
      send(driver, message, 7);
      EXPECT_EQ(along(), min);
      send(driver, message, 8);
      EXPECT_EQ(along(), min);
      send(driver, message, 99);
      EXPECT_EQ(along(), min);
    }
}

TEST(ImageDrag, inPanModeTheImageFollowsTheHand)
{
  WindowDriver driver(100, 100);
  driver.display().image(ramp(300, 300), true);
  driver.display().mouseMode(ccDisplay::panMode);
  std::uint32_t const before = driver.pel(50, 50);

  driver.press({50, 50}).moveTo({57, 46});
  EXPECT_EQ(driver.pel(57, 46), before);  // the ghost
  driver.release();

  EXPECT_EQ(driver.pel(57, 46), before);
  EXPECT_EQ(driver.display().pan(), ccVector<2>(7, -4));
}

TEST(ZoomClick, zoomInPutsThePressedPelInTheMiddle)
{
  WindowDriver driver(100, 100);
  driver.display().image(ramp(300, 300), true);
  driver.display().mouseMode(ccDisplay::zoomInMode);
  std::uint32_t const pressed = driver.pel(20, 70);

  driver.click({20, 70});

  EXPECT_EQ(driver.display().mag(), 2);
  EXPECT_EQ(driver.pel(50, 50), pressed);
}

TEST(ToolsPopup, theRightButtonOpensTheToolsMenuAndItsChoiceWorks)
{
  WindowDriver driver;
  driver.display().toolsPopupMenuEnabled(true);
  plat::testing::answerMenu(40504);
  Event const before = driver.events().lastMouseEvent();

  driver.pressRight({50, 50}).releaseRight();

  EXPECT_EQ(driver.display().mouseMode(), ccDisplay::zoomInMode);
  EXPECT_NE(driver.events().lastMouseEvent().whichButton(), Event::rightButton);
  (void)before;
}
