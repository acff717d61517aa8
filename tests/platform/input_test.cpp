// From pointer and keys to messages: hit test, capture, clip, double clicks, cursors, the wheel.
#include "tests/platform/window_fixture.h"

#include "platform/portable/windows/core.h"

using namespace plat;
using plat::testing::advance;
using plat::testing::character;
using plat::testing::key;
using plat::testing::pointer;
using plat::testing::wheel;
using portable::Core;

namespace {

using Input = WindowTest;
using Numbers = std::vector<unsigned>;

constexpr unsigned left = 1, right = 2, shift = 4, control = 8, middle = 16, alt = 32;

LParam packed(int x, int y) { return static_cast<LParam>(u32(u16(y)) << 16 | u16(x)); }

TEST_F(Input, aMoveGoesToTheDeepestVisibleWindowWithThirtyTwoBeforeIt)
{
  HWND const window = top({100, 100, 300, 300});
  HWND const inner = kid(window, {10, 20, 100, 100});
  HWND const hidden = kid(inner, {0, 0, 50, 50}, child);
  settle();

  pointer({115, 125}, 0, 0);

  ASSERT_EQ(recorder.numbers(), (Numbers{32, 512}));
  EXPECT_EQ(recorder.messages[0].window, inner);
  EXPECT_EQ(recorder.messages[0].wParam, reinterpret_cast<WParam>(inner));
  EXPECT_EQ(recorder.messages[0].lParam, 512 << 16 | 1);
  EXPECT_EQ(recorder.messages[1].window, inner);
  EXPECT_EQ(recorder.messages[1].lParam, packed(5, 5));
  EXPECT_EQ(recorder.numbersOf(hidden), Numbers{});
}

TEST_F(Input, aDisabledKidLetsThePointerThroughToItsParent)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {0, 0, 50, 50}, child | shown | 0x08000000);
  settle();

  pointer({5, 5}, 0, 0);

  EXPECT_EQ(recorder.numbersOf(inner), Numbers{});
  EXPECT_EQ(recorder.numbersOf(window), (Numbers{32, 512}));
}

TEST_F(Input, anUnmovedPointerSendsNoMove)
{
  top({0, 0, 100, 100});
  pointer({5, 5}, 0, 0);
  settle();

  pointer({5, 5}, 0, 0);

  EXPECT_TRUE(recorder.messages.empty());
}

struct ButtonCase {
  unsigned button;
  unsigned down, up, again;
};

TEST_F(Input, eachButtonHasItsOwnMessagesForDownUpAndDouble)
{
  HWND const window = top({0, 0, 200, 200});
  int x = 10;
  for (ButtonCase const& c : {ButtonCase{left, 513, 514, 515}, {right, 516, 517, 518}, {middle, 519, 520, 521}}) {
    pointer({x, 10}, 0, 0);
    settle();
    pointer({x, 10}, c.button, 0);
    pointer({x, 10}, 0, 0);
    pointer({x, 10}, c.button, 0);
    pointer({x, 10}, 0, 0);

    ASSERT_EQ(recorder.numbersOf(window), (Numbers{32, c.down, 32, c.up, 32, c.again, 32, c.up}));
    EXPECT_EQ(recorder.messages[0].lParam, static_cast<LParam>(c.down << 16 | 1));
    EXPECT_EQ(recorder.messages[1].wParam, c.button);
    EXPECT_EQ(recorder.messages[1].lParam, packed(x, 10));
    EXPECT_EQ(recorder.messages[3].wParam, 0u);
    EXPECT_EQ(recorder.messages[4].lParam, static_cast<LParam>(c.again << 16 | 1));
    x += 50;
  }
}

TEST_F(Input, everySecondPressOfAQuickSeriesIsADoubleClick)
{
  HWND const window = top({0, 0, 200, 200});
  settle();
  Numbers presses;
  recorder.hook = [&](Message const& m, LResult&) {
    if (m.number == 513 || m.number == 515)
      presses.push_back(m.number);
    return false;
  };
  for (int i = 0; i < 5; ++i) {
    pointer({10, 10}, left, 0);
    pointer({10, 10}, 0, 0);
    advance(100);
  }

  EXPECT_EQ(presses, (Numbers{513, 515, 513, 515, 513}));
  EXPECT_TRUE(windows().isWindow(window));
}

TEST_F(Input, aLatePressAFarPressAndAnotherButtonBeginANewSeries)
{
  top({0, 0, 200, 200});
  auto const click = [](int x, unsigned button) {
    pointer({x, 10}, button, 0);
    pointer({x, 10}, 0, 0);
  };
  settle();

  click(10, left);
  advance(501);
  click(10, left);
  EXPECT_EQ(recorder.of(513).size(), 2u);
  EXPECT_TRUE(recorder.of(515).empty());
  click(13, left);
  EXPECT_TRUE(recorder.of(515).empty());
  click(13, right);
  EXPECT_TRUE(recorder.of(518).empty());
  click(13, left);
  EXPECT_TRUE(recorder.of(515).empty());
  click(11, left);
  EXPECT_EQ(recorder.of(515).size(), 1u);
}

TEST_F(Input, aCountOfClicksFromTheMachineIsTakenAsItIs)
{
  HWND const window = top({0, 0, 200, 200});
  settle();
  Core::instance().pointer(window, {10, 10}, left, 0, 2);
  Core::instance().pointer(window, {10, 10}, 0, 0, 0);
  plat::testing::drain();

  EXPECT_EQ(recorder.of(515).size(), 1u);
  EXPECT_TRUE(recorder.of(513).empty());
}

TEST_F(Input, buttonsAndModifiersStandInTheWordParameter)
{
  top({0, 0, 200, 200});
  settle();

  pointer({10, 10}, 0, shift | control);
  pointer({10, 10}, left, shift);
  pointer({10, 10}, left | middle, 0);
  pointer({20, 10}, left | middle, alt);
  pointer({20, 10}, middle, 0);

  std::vector<WParam> bits;
  for (Message const& m : recorder.messages)
    if (m.number != 32)
      bits.push_back(m.wParam);
  EXPECT_EQ(bits, (std::vector<WParam>{shift | control, left | shift, left | middle, left | middle, middle}));
}

TEST_F(Input, aPressActivatesItsTopLevelWindowFirst)
{
  HWND const first = top({0, 0, 100, 100});
  HWND const second = top({200, 0, 300, 100});
  settle();
  ASSERT_EQ(Core::instance().active(), second);

  pointer({10, 10}, left, 0);

  EXPECT_EQ(Core::instance().active(), first);
  EXPECT_EQ(recorder.numbersOf(first), (Numbers{32, 512, 6, 7, 32, 513}));
}

TEST_F(Input, overlappingTopLevelWindowsAreHitFromTheFront)
{
  HWND const first = top({0, 0, 100, 100});
  HWND const second = top({50, 0, 150, 100});
  settle();

  pointer({60, 10}, 0, 0);
  EXPECT_EQ(recorder.numbersOf(second), (Numbers{32, 512}));
  pointer({10, 10}, left, 0);
  pointer({10, 10}, 0, 0);
  settle();
  pointer({60, 11}, 0, 0);
  EXPECT_EQ(recorder.numbersOf(first), (Numbers{32, 512}));
}

TEST_F(Input, theCaptureWindowGetsAllWithoutThirtyTwoAndWithNegativePositions)
{
  HWND const window = top({100, 100, 300, 300});
  HWND const inner = kid(window, {50, 50, 100, 100});
  settle();
  windows().setCapture(inner);

  pointer({140, 145}, 0, 0);

  ASSERT_EQ(recorder.numbers(), (Numbers{512}));
  EXPECT_EQ(recorder.messages[0].window, inner);
  EXPECT_EQ(recorder.messages[0].lParam, packed(-10, -5));
  EXPECT_EQ(static_cast<u32>(recorder.messages[0].lParam), 0xFFFBFFF6u);
}

TEST_F(Input, theLoserOfTheCaptureIsToldTheWinnerAndZeroOnPlainRelease)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {0, 0, 50, 50});
  settle();

  EXPECT_EQ(windows().setCapture(window), nullptr);
  EXPECT_TRUE(recorder.messages.empty());
  EXPECT_EQ(windows().setCapture(inner), window);
  windows().releaseCapture();
  windows().releaseCapture();

  ASSERT_EQ(recorder.numbers(), (Numbers{533, 533}));
  EXPECT_EQ(recorder.messages[0].window, window);
  EXPECT_EQ(recorder.messages[0].lParam, reinterpret_cast<LParam>(inner));
  EXPECT_EQ(recorder.messages[1].window, inner);
  EXPECT_EQ(recorder.messages[1].lParam, 0);
}

TEST_F(Input, hidingOrDestroyingTheCaptureWindowReleasesTheCaptureBeforeMessageTwo)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {0, 0, 50, 50});
  settle();
  windows().setCapture(inner);
  windows().destroy(inner);

  Numbers const seen = recorder.numbersOf(inner);
  EXPECT_EQ(seen, (Numbers{24, 533, 2, 130}));
  EXPECT_EQ(Core::instance().capture(), nullptr);
}

TEST_F(Input, aHiddenCaptureWindowIsToldBeforeItsEndToo)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {0, 0, 50, 50}, child);
  settle();
  windows().setCapture(inner);
  windows().destroy(inner);

  EXPECT_EQ(recorder.numbersOf(inner), (Numbers{533, 2, 130}));
}

TEST_F(Input, theClipClampsPositionsAndTheCursor)
{
  HWND const window = top({0, 0, 200, 200});
  settle();
  Rect const clip{50, 60, 100, 90};
  pointer({10, 10}, 0, 0);
  windows().clipCursor(&clip);
  EXPECT_EQ(windows().cursorPos(), (Point{50, 60}));
  recorder.clear();

  pointer({500, 70}, 0, 0);
  pointer({70, -3}, 0, 0);

  std::vector<Message> const moves = recorder.of(512);
  ASSERT_EQ(moves.size(), 2u);
  EXPECT_EQ(moves[0].lParam, packed(99, 70));
  EXPECT_EQ(moves[1].lParam, packed(70, 60));
  windows().clipCursor(nullptr);
  pointer({150, 150}, 0, 0);
  EXPECT_EQ(windows().cursorPos(), (Point{150, 150}));
  EXPECT_TRUE(windows().isWindow(window));
}

TEST_F(Input, movesThatNobodySawAreOneMoveButPressesKeepTheirPlaces)
{
  top({0, 0, 200, 200});
  settle();
  Core& core = Core::instance();
  core.pointer({}, {10, 10}, 0, 0, 0);
  core.pointer({}, {20, 10}, 0, 0, 0);
  core.pointer({}, {30, 10}, left, 0, 0);
  core.pointer({}, {40, 10}, left, 0, 0);
  core.pointer({}, {50, 10}, left, 0, 0);
  core.pointer({}, {50, 10}, 0, 0, 0);
  plat::testing::drain();

  std::vector<std::pair<unsigned, int>> seen;
  for (Message const& m : recorder.messages)
    if (m.number >= 512)
      seen.emplace_back(m.number, static_cast<int>(m.lParam & 0xffff));
  EXPECT_EQ(seen, (std::vector<std::pair<unsigned, int>>{{512, 20}, {512, 30}, {513, 30}, {512, 50}, {514, 50}}));
}

TEST_F(Input, theWheelGoesToTheWindowUnderThePointerWithTheScreenPosition)
{
  HWND const window = top({100, 100, 300, 300});
  HWND const inner = kid(window, {0, 0, 50, 50});
  windows().setCapture(window);
  settle();
  recorder.hook = [](Message const& m, LResult&) { return m.number == 522; };

  wheel({120, 130}, -240, control);

  ASSERT_EQ(recorder.numbers(), (Numbers{522}));
  EXPECT_EQ(recorder.messages[0].window, inner);
  EXPECT_EQ(recorder.messages[0].wParam, 0xFF100008u);
  EXPECT_EQ(recorder.messages[0].lParam, packed(120, 130));
  windows().releaseCapture();
}

TEST_F(Input, theDefaultProcedurePassesTheWheelUpToTheParents)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {0, 0, 50, 50});
  settle();

  wheel({10, 10}, 120, 0);

  EXPECT_EQ(recorder.numbersOf(inner), (Numbers{522}));
  EXPECT_EQ(recorder.numbersOf(window), (Numbers{522}));
}

TEST_F(Input, keysGoToTheFocusWithRepeatAndReleaseBits)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {0, 0, 50, 50});
  windows().setFocus(inner);
  settle();

  key('A', true, 0);
  character('a');
  key('A', true, 0, /*repeat=*/true);
  character('a');
  key('A', false, 0);

  ASSERT_EQ(recorder.numbersOf(inner), (Numbers{256, 258, 256, 258, 257}));
  std::vector<u32> details;
  for (Message const& m : recorder.messages)
    details.push_back(static_cast<u32>(m.lParam));
  EXPECT_EQ(details, (std::vector<u32>{1, 1, 0x40000001, 0x40000001, 0xC0000001}));
  EXPECT_EQ(recorder.messages[0].wParam, 'A');
  EXPECT_EQ(recorder.messages[1].wParam, 'a');
}

TEST_F(Input, withAltHeldKeysAreSystemKeysUnlessControlIsHeldToo)
{
  top({0, 0, 100, 100});
  settle();

  key(18, true, alt);
  key('F', true, alt);
  key('F', false, alt);
  key(18, false, 0);
  key('Q', true, alt | control);

  EXPECT_EQ(recorder.numbers(), (Numbers{260, 260, 261, 261, 256}));
  EXPECT_EQ(static_cast<u32>(recorder.messages[1].lParam), 0x20000001u);
}

TEST_F(Input, thirtyTwoSetsTheClassCursorUnlessTheProcedureSetsItsOwn)
{
  HWND const window = top({0, 0, 100, 100});
  settle();
  HCURSOR const arrow = windows().loadCursor(600), hand = windows().loadCursor(604), cross = windows().loadCursor(606);
  ASSERT_NE(hand, nullptr);
  EXPECT_EQ(windows().loadCursor(604), hand);
  EXPECT_EQ(windows().loadCursor(607), nullptr);

  EXPECT_EQ(windows().classCursor(window, hand), arrow);
  pointer({10, 10}, 0, 0);
  EXPECT_EQ(Core::instance().currentCursor(), hand);
  recorder.hook = [&](Message const& m, LResult& answer) {
    if (m.number != 32)
      return false;
    windows().setCursor(cross);
    answer = 1;
    return true;
  };
  pointer({11, 10}, 0, 0);
  EXPECT_EQ(Core::instance().currentCursor(), cross);
  EXPECT_EQ(windows().classCursor(window, arrow), hand);
}

TEST_F(Input, messagesOfTheTestHandsReachTheProcedureAsTheyAre)
{
  HWND const window = top({0, 0, 100, 100});
  settle();

  plat::testing::mouse(window, 513, {7, -2}, 5);
  plat::testing::fireTimer(window, 500);
  plat::testing::send(window, 5000, 3, 4);

  ASSERT_EQ(recorder.numbers(), (Numbers{513, 275, 5000}));
  EXPECT_EQ(recorder.messages[0].lParam, packed(7, -2));
  EXPECT_EQ(recorder.messages[0].wParam, 5u);
  EXPECT_EQ(recorder.messages[1].wParam, 500u);
}

}  // namespace
