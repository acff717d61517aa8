// Scroll bars: room they take, positions, the mouse on them, their pels.
#include "tests/platform/window_fixture.h"

#include "platform/portable/windows/core.h"

#include <thread>

using namespace plat;
using plat::testing::advance;
using plat::testing::drain;
using plat::testing::pel;
using plat::testing::pointer;

namespace {

constexpr unsigned left = 1, shift = 4, control = 8;
constexpr int horizontal = 0, vertical = 1;

struct Scroll {
  unsigned message, code;
  int pos;
  friend bool operator==(Scroll const&, Scroll const&) = default;
};

// A window of 116 x 216 at (0, 0) with a vertical bar of 216 pels: arrows of 16, and 184 between them.
class ScrollBars : public WindowTest {
protected:
  ScrollBars() : window_(top({0, 0, 116, 216}))
  {
    windows().showScrollBar(window_, vertical, true);
    windows().setScrollInfo(window_, vertical, {1 | 2 | 4, 0, 399, 100, 0}, true);
    settle();
  }

  static std::vector<Scroll> scrolls()
  {
    std::vector<Scroll> list;
    for (Message const& m : recorder.messages)
      if (m.number == 276 || m.number == 277)
        list.push_back({m.number, static_cast<unsigned>(m.wParam & 0xffff), static_cast<int>(m.wParam >> 16)});
    return list;
  }

  HWND window_;
};

TEST_F(ScrollBars, aBarTakesSixteenPelsOfTheClientAreaAndFiveIsSent)
{
  HWND const window = top({0, 0, 100, 80});
  settle();

  windows().showScrollBar(window, horizontal, true);
  EXPECT_EQ(windows().clientRect(window), (Rect{0, 0, 100, 64}));
  windows().showScrollBar(window, vertical, true);
  EXPECT_EQ(windows().clientRect(window), (Rect{0, 0, 84, 64}));
  windows().showScrollBar(window, vertical, true);

  std::vector<Message> const sizes = recorder.of(5);
  ASSERT_EQ(sizes.size(), 2u);
  EXPECT_EQ(sizes[0].lParam, 64 << 16 | 100);
  EXPECT_EQ(sizes[1].lParam, 64 << 16 | 84);
  EXPECT_EQ(windows().windowRect(window), (Rect{0, 0, 100, 80}));
  EXPECT_EQ(windows().style(window) & 0x300000u, 0x300000u);
}

TEST_F(ScrollBars, aHiddenBarGivesItsRoomBackAndInvalidatesIt)
{
  windows().showScrollBar(window_, vertical, false);

  EXPECT_EQ(windows().clientRect(window_), (Rect{0, 0, 116, 216}));
  EXPECT_EQ(windows().updateRect(window_), (Rect{100, 0, 116, 216}));
  EXPECT_EQ(recorder.of(5).size(), 1u);
  EXPECT_EQ(windows().style(window_) & 0x200000u, 0u);
}

TEST_F(ScrollBars, barsOfTheStyleStandFromTheBeginning)
{
  HWND const window = top({0, 0, 100, 80}, shown | 0x300000);

  EXPECT_EQ(windows().clientRect(window), (Rect{0, 0, 84, 64}));
}

// Drags the thumb by nothing and tells where it stands.
int posByThumb(HWND window, Point thumb)
{
  recorder.clear();
  pointer(thumb, left, 0);
  pointer(thumb, 0, 0);
  for (Message const& m : recorder.messages)
    if (m.number == 277 && (m.wParam & 0xffff) == 4)
      return static_cast<int>(m.wParam >> 16);
  return plat::platform().windows.isWindow(window) ? -1 : -2;
}

// The thumb has 184 * 100 / 400 = 46 pels, so it moves over 138 for positions 0 to 300.
TEST_F(ScrollBars, aPositionIsClampedToMaxLessPagePlusOne)
{
  windows().setScrollPos(window_, vertical, 1000, true);
  EXPECT_EQ(posByThumb(window_, {108, 170}), 300);
  windows().setScrollPos(window_, vertical, -5, true);
  EXPECT_EQ(posByThumb(window_, {108, 20}), 0);
  windows().setScrollPos(window_, vertical, 150, true);
  EXPECT_EQ(posByThumb(window_, {108, 100}), 150);
}

// Five of ten positions: half of the 184 pels between the arrows.
TEST_F(ScrollBars, theThumbHasTheShareOfThePageInTheRange)
{
  windows().setScrollInfo(window_, vertical, {1 | 2 | 4, 0, 9, 5, 0}, true);

  pointer({108, 16 + 91}, left, 0);
  pointer({108, 16 + 91}, 0, 0);
  EXPECT_EQ(scrolls(), (std::vector<Scroll>{{277, 4, 0}, {277, 8, 0}}));
  recorder.clear();
  pointer({108, 16 + 92}, left, 0);
  pointer({108, 16 + 92}, 0, 0);
  EXPECT_EQ(scrolls(), (std::vector<Scroll>{{277, 3, 0}, {277, 8, 0}}));
}

TEST_F(ScrollBars, arrowsAndPageAreaSendTheirCodesAndThenEight)
{
  windows().setScrollPos(window_, vertical, 150, true);  // the thumb lies at 85 to 131
  struct Case {
    int y;
    unsigned mods, code;
  };
  for (Case const& c : {Case{0, 0, 0}, {15, 0, 0}, {200, 0, 1}, {215, 0, 1}, {16, 0, 2}, {84, 0, 2}, {131, 0, 3},
                        {199, 0, 3}, {5, control, 6}, {210, control, 7}}) {
    recorder.clear();
    pointer({108, c.y}, left, c.mods);
    EXPECT_EQ(scrolls(), (std::vector<Scroll>{{277, c.code, 0}})) << c.y;
    pointer({108, c.y}, 0, 0);
    EXPECT_EQ(scrolls(), (std::vector<Scroll>{{277, c.code, 0}, {277, 8, 0}})) << c.y;
  }
}

TEST_F(ScrollBars, aHeldArrowRepeatsWhileThePointerStaysOnIt)
{
  pointer({108, 205}, left, 0);
  advance(399);
  EXPECT_EQ(scrolls().size(), 1u);
  advance(1);
  EXPECT_EQ(scrolls().size(), 2u);
  advance(100);
  EXPECT_EQ(scrolls().size(), 4u);
  pointer({50, 205}, left, 0);
  advance(200);
  EXPECT_EQ(scrolls().size(), 4u);
  pointer({108, 205}, left, 0);
  advance(50);
  EXPECT_EQ(scrolls().size(), 5u);
  pointer({108, 205}, 0, 0);
  EXPECT_EQ(scrolls().back(), (Scroll{277, 8, 0}));
  advance(500);
  EXPECT_EQ(scrolls().size(), 6u);
}

TEST_F(ScrollBars, theThumbTracksWithFiveAndEndsWithFourAndEight)
{
  pointer({108, 30}, left, 0);
  EXPECT_TRUE(scrolls().empty());
  pointer({108, 76}, left, 0);   // 46 of 138 pels: a third of 300
  pointer({108, 900}, left, 0);  // beyond the end
  pointer({108, 900}, 0, 0);

  EXPECT_EQ(scrolls(), (std::vector<Scroll>{{277, 5, 100}, {277, 5, 300}, {277, 4, 300}, {277, 8, 0}}));
  EXPECT_TRUE(recorder.of(512).empty());
  EXPECT_TRUE(recorder.of(513).empty());
}

TEST_F(ScrollBars, aPressWithShiftOnThePageAreaTakesTheThumbThere)
{
  pointer({108, 39 + 69}, left, shift);  // the middle of the thumb goes to it: 69 of 138 pels
  EXPECT_EQ(scrolls(), (std::vector<Scroll>{{277, 5, 150}}));
  pointer({108, 108}, 0, 0);
}

TEST_F(ScrollBars, theHorizontalBarSendsTwoHundredSeventySix)
{
  windows().showScrollBar(window_, horizontal, true);
  windows().setScrollInfo(window_, horizontal, {1 | 2, 0, 199, 20, 0}, true);
  recorder.clear();

  pointer({3, 205}, left, 0);
  pointer({3, 205}, 0, 0);

  EXPECT_EQ(scrolls(), (std::vector<Scroll>{{276, 0, 0}, {276, 8, 0}}));
}

TEST_F(ScrollBars, theCornerBetweenTwoBarsBelongsToNone)
{
  windows().showScrollBar(window_, horizontal, true);
  recorder.clear();

  pointer({110, 210}, left, 0);
  pointer({110, 210}, 0, 0);

  EXPECT_TRUE(scrolls().empty());
  EXPECT_TRUE(recorder.of(513).empty());
}

TEST_F(ScrollBars, nothingToScrollHidesTheBarAndMaskEightDisablesIt)
{
  windows().setScrollInfo(window_, vertical, {1 | 2, 0, 99, 100, 0}, true);
  EXPECT_EQ(windows().clientRect(window_).right, 116);
  windows().setScrollInfo(window_, vertical, {1 | 2, 0, 100, 100, 0}, true);
  EXPECT_EQ(windows().clientRect(window_).right, 100);
  windows().setScrollInfo(window_, vertical, {1 | 2 | 8, 0, 99, 100, 0}, true);
  EXPECT_EQ(windows().clientRect(window_).right, 100);
  recorder.clear();

  pointer({108, 205}, left, 0);
  pointer({108, 205}, 0, 0);
  EXPECT_TRUE(scrolls().empty());
  windows().setScrollInfo(window_, vertical, {1 | 2 | 8, 0, 100, 100, 0}, true);
  pointer({108, 205}, left, 0);
  EXPECT_EQ(scrolls(), (std::vector<Scroll>{{277, 1, 0}}));
  pointer({108, 205}, 0, 0);
}

TEST_F(ScrollBars, aSmallerRangeTakesThePositionAlong)
{
  windows().setScrollPos(window_, vertical, 300, true);
  windows().setScrollInfo(window_, vertical, {1, 0, 249, 0, 0}, true);  // the page stays 100; last position 150
  // A thumb of 184 * 100 / 250 = 73 pels lies at the end, from 127 to 200.
  EXPECT_EQ(posByThumb(window_, {108, 190}), 150);
  EXPECT_EQ(posByThumb(window_, {108, 128}), 150);
}

TEST_F(ScrollBars, theBarIsPaintedWithArrowsPageAreaAndThumb)
{
  // Colours of the button face, its edge, and the page area.
  u32 const face = 0xc0c0c0, edge = 0x808080, track = 0xe0e0e0;
  auto const at = [&](int x, int y) { return portable::Core::instance().backingPel(window_, {x, y}); };

  EXPECT_EQ(at(100, 0), edge);
  EXPECT_EQ(at(101, 1), face);
  EXPECT_EQ(at(101, 17), face);   // the thumb from 16 to 62
  EXPECT_EQ(at(100, 61), edge);
  EXPECT_EQ(at(101, 62), track);
  EXPECT_EQ(at(101, 199), track);
  EXPECT_EQ(at(115, 215), edge);
  EXPECT_EQ(at(108, 6), 0u);      // the tip of the upper arrow head
  windows().setScrollPos(window_, vertical, 300, true);
  EXPECT_EQ(at(101, 17), track);
  EXPECT_EQ(at(101, 153), track);
  EXPECT_EQ(at(100, 154), edge);  // 16 + 138
  EXPECT_EQ(at(101, 198), face);
}

TEST_F(ScrollBars, kidsDoNotReachOverTheBar)
{
  HWND const inner = kid(window_, {50, 50, 200, 200});
  struct Seen {
    std::vector<Rect> rects;
  } seen;
  portable::paintVisible(
      inner, &seen,
      [](void* context, portable::VisiblePart const& part) {
        static_cast<Seen*>(context)->rects.assign(part.rects.begin(), part.rects.end());
      },
      Rect{});

  EXPECT_EQ(seen.rects, (std::vector<Rect>{{50, 50, 100, 200}}));
}

TEST_F(ScrollBars, destroyingTheWindowWhileItsThumbIsHeldEndsTheHold)
{
  pointer({108, 30}, left, 0);
  windows().destroy(window_);
  pointer({108, 60}, left, 0);
  pointer({108, 60}, 0, 0);
  HWND const other = top({0, 0, 116, 216});
  settle();

  pointer({10, 10}, 0, 0);

  EXPECT_EQ(recorder.numbersOf(other), (std::vector<unsigned>{32, 512}));
}

TEST_F(ScrollBars, callsFromAnotherThreadAreTakenInTurn)
{
  std::thread other([&] { windows().showScrollBar(window_, vertical, false); });
  other.join();
  EXPECT_EQ(windows().clientRect(window_).right, 100);
  drain();

  EXPECT_EQ(windows().clientRect(window_).right, 116);
}

}  // namespace
