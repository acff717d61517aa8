// Menus, tracked popups, message boxes, and the built-in resources.
#include "tests/platform/window_fixture.h"

#include "platform/portable/windows/core.h"
#include "platform/portable/windows/menus.h"

#include <thread>

using namespace plat;
using plat::testing::answerBox;
using plat::testing::answerMenu;
using plat::testing::drain;
using plat::testing::key;
using plat::testing::pointer;
using portable::Core;

namespace {

constexpr unsigned left = 1, right = 2;

class MenuTest : public WindowTest {
protected:
  MenuTest() : window_(top({0, 0, 600, 500})), menu_(menus().load(628)) { settle(); }
  ~MenuTest() override { menus().destroy(menu_); }

  static MenuSystem& menus() { return plat::platform().menus; }
  HMENU tools() { return menus().sub(menu_, 1); }

  // Runs in turn while a menu or a box stands.
  void meanwhile(std::function<void()> call) { windows().post(window_, std::move(call)); }

  std::vector<WParam> commands()
  {
    drain();
    std::vector<WParam> ids;
    for (Message const& m : recorder.of(273))
      ids.push_back(m.wParam);
    return ids;
  }

  HWND window_;
  HMENU menu_;
};

TEST_F(MenuTest, theMenuHoldsTheCommandsInItsThreePopups)
{
  std::vector<std::vector<unsigned>> const expected{
      {40501}, {40502, 40503, 40504, 40505, 0, 40506, 40507, 40509, 0, 40510, 40511}, {40512, 40513}};

  ASSERT_EQ(menus().count(menu_), 3);
  for (int i = 0; i < 3; ++i) {
    HMENU const sub = menus().sub(menu_, i);
    EXPECT_EQ(menus().itemId(menu_, i), ~0u);
    std::vector<unsigned> ids;
    for (int k = 0; k < menus().count(sub); ++k)
      ids.push_back(menus().itemId(sub, k));
    EXPECT_EQ(ids, expected[static_cast<std::size_t>(i)]);
  }
  EXPECT_EQ(menus().sub(menu_, 3), nullptr);
  EXPECT_EQ(menus().sub(tools(), 0), nullptr);
  EXPECT_EQ(menus().load(629), nullptr);
}

TEST_F(MenuTest, aDestroyedMenuIsRecognisedTogetherWithItsPopups)
{
  HMENU const menu = menus().load(628), sub = menus().sub(menu, 1);
  menus().destroy(menu);

  EXPECT_EQ(menus().count(menu), -1);
  EXPECT_EQ(menus().count(sub), -1);
  menus().track(sub, {0, 0}, window_);
  EXPECT_TRUE(recorder.messages.empty());
}

TEST_F(MenuTest, trackSendsTwoHundredSeventyNineFirstAndPostsTheChoice)
{
  answerMenu(40506);
  menus().track(tools(), {10, 10}, window_);

  ASSERT_EQ(recorder.numbers(), (std::vector<unsigned>{279}));
  EXPECT_EQ(recorder.messages[0].wParam, reinterpret_cast<WParam>(tools()));
  EXPECT_EQ(commands(), (std::vector<WParam>{40506}));
}

TEST_F(MenuTest, disabledAbsentAndZeroAnswersChooseNothing)
{
  menus().enable(tools(), 40506, false);
  for (unsigned id : {40506u, 40512u, 0u}) {
    answerMenu(id);
    menus().track(tools(), {10, 10}, window_);
  }

  EXPECT_EQ(commands(), std::vector<WParam>{});
  menus().enable(menu_, 40506, true);
  answerMenu(40506);
  menus().track(tools(), {10, 10}, window_);
  EXPECT_EQ(commands(), (std::vector<WParam>{40506}));
}

// Rows of 20 pels below a border of 2, lines of 8.
TEST_F(MenuTest, aClickOnAnItemChoosesIt)
{
  meanwhile([] {
    pointer({15, 10 + 2 + 30}, 0, 0);
    pointer({15, 10 + 2 + 30}, left, 0);
    pointer({15, 10 + 2 + 30}, 0, 0);
  });
  menus().track(tools(), {10, 10}, window_);

  EXPECT_EQ(commands(), (std::vector<WParam>{40503}));
  EXPECT_TRUE(recorder.of(513).empty());
  EXPECT_TRUE(recorder.of(514).empty());
}

TEST_F(MenuTest, aLineBetweenGroupsCannotBeChosen)
{
  meanwhile([] {
    pointer({15, 10 + 2 + 84}, left, 0);  // the line lies at 80 to 88
    pointer({15, 10 + 2 + 84}, 0, 0);
    pointer({15, 10 + 2 + 90}, left, 0);
    pointer({15, 10 + 2 + 90}, 0, 0);
  });
  menus().track(tools(), {10, 10}, window_);

  EXPECT_EQ(commands(), (std::vector<WParam>{40506}));
}

TEST_F(MenuTest, thePressThatOpenedTheMenuMayBeDraggedToAnItem)
{
  recorder.hook = [&](Message const& m, LResult&) {
    if (m.number == 516)
      menus().track(tools(), {static_cast<i32>(m.lParam & 0xffff), static_cast<i32>(m.lParam >> 16)}, window_);
    return m.number == 516;
  };
  auto& core = Core::instance();
  core.pointer({}, {100, 100}, right, 0, 0);
  core.pointer({}, {110, 105}, right, 0, 0);
  core.pointer({}, {110, 105}, 0, 0, 0);
  drain();

  EXPECT_EQ(commands(), (std::vector<WParam>{40502}));
  EXPECT_TRUE(recorder.of(517).empty());
}

TEST_F(MenuTest, aReleaseWhereTheMenuWasOpenedChoosesNothing)
{
  recorder.hook = [&](Message const& m, LResult&) { return m.number == 516; };
  pointer({595, 480}, right, 0);
  meanwhile([] {
    // The menu was moved in below the pointer, so the release falls on an item.
    pointer({595, 480}, 0, 0);
    key(27, true, 0);
  });
  menus().track(tools(), {595, 480}, window_);

  EXPECT_EQ(commands(), std::vector<WParam>{});
}

TEST_F(MenuTest, aClickOnADisabledItemChoosesNothingAndLeavesTheMenuOpen)
{
  menus().enable(tools(), 40502, false);
  meanwhile([] {
    pointer({15, 20}, left, 0);
    pointer({15, 20}, 0, 0);
    pointer({15, 40}, left, 0);
    pointer({15, 40}, 0, 0);
  });
  menus().track(tools(), {10, 10}, window_);

  EXPECT_EQ(commands(), (std::vector<WParam>{40503}));
}

TEST_F(MenuTest, radioMarksOneOfARangeAndCheckOneItem)
{
  menus().radio(tools(), 40502, 40505, 40504);
  menus().check(menu_, 40511, true);
  menus().radio(tools(), 40502, 40505, 40505);

  std::vector<unsigned> checked, radio;
  for (portable::MenuItem const& item : portable::menus().items(tools())) {
    if (item.checked)
      checked.push_back(item.id);
    if (item.radio)
      radio.push_back(item.id);
  }
  EXPECT_EQ(checked, (std::vector<unsigned>{40505, 40511}));
  EXPECT_EQ(radio, (std::vector<unsigned>{40502, 40503, 40504, 40505}));
  menus().check(tools(), 40511, false);
  EXPECT_FALSE(portable::menus().items(tools()).back().checked);
}

TEST_F(MenuTest, aClickOutsideDismissesAndIsSwallowed)
{
  meanwhile([] {
    pointer({500, 450}, left, 0);
    pointer({500, 450}, 0, 0);
  });
  menus().track(tools(), {10, 10}, window_);
  EXPECT_EQ(commands(), std::vector<WParam>{});
  EXPECT_TRUE(recorder.of(513).empty());
  EXPECT_TRUE(recorder.of(514).empty());
  recorder.clear();

  pointer({499, 450}, 0, 0);
  EXPECT_EQ(recorder.of(512).size(), 1u);
}

TEST_F(MenuTest, arrowsReturnEscapeAndMnemonicsWork)
{
  meanwhile([] {
    key(40, true, 0);
    key(40, true, 0);
    key(13, true, 0);
  });
  menus().track(tools(), {10, 10}, window_);
  EXPECT_EQ(commands(), (std::vector<WParam>{40503}));

  recorder.clear();
  meanwhile([] {
    key(38, true, 0);
    key(13, true, 0);
  });
  menus().track(tools(), {10, 10}, window_);
  EXPECT_EQ(commands(), (std::vector<WParam>{40511}));

  recorder.clear();
  meanwhile([] { key(27, true, 0); });
  menus().track(tools(), {10, 10}, window_);
  EXPECT_EQ(commands(), std::vector<WParam>{});

  recorder.clear();
  meanwhile([] { key('F', true, 0); });
  menus().track(tools(), {10, 10}, window_);
  EXPECT_EQ(commands(), (std::vector<WParam>{40506}));
  EXPECT_TRUE(recorder.of(256).empty());
}

TEST_F(MenuTest, aPopupWithinAMenuOpensAndIsChosenFrom)
{
  meanwhile([] {
    key(40, true, 0);  // Console
    key(40, true, 0);  // Tools
    key(39, true, 0);  // opens, on Pointer
    key(40, true, 0);
    key(13, true, 0);
  });
  menus().track(menu_, {10, 10}, window_);

  EXPECT_EQ(recorder.of(279).size(), 2u);
  EXPECT_EQ(commands(), (std::vector<WParam>{40503}));
}

TEST_F(MenuTest, theMenuIsAChildInFrontOfTheOwnersWindowAndIsMovedIntoIt)
{
  HWND const inner = kid(window_, {0, 0, 600, 500});
  settle();
  Point const at{590, 490};
  meanwhile([&] {
    // A popup that would leave the window covers its lower right corner instead.
    EXPECT_FALSE(Core::instance().visibleAt(inner, {595, 495}));
    EXPECT_TRUE(Core::instance().visibleAt(inner, {10, 10}));
    key(27, true, 0);
  });
  menus().track(tools(), at, inner);

  EXPECT_TRUE(Core::instance().visibleAt(inner, {595, 495}));
}

TEST_F(MenuTest, otherWindowsAreServedWhileAMenuStands)
{
  windows().setTimer(window_, 5, 10);
  meanwhile([&] {
    plat::testing::advance(10);
    windows().killTimer(window_, 5);
    key(27, true, 0);
  });
  menus().track(tools(), {10, 10}, window_);

  EXPECT_EQ(recorder.of(275).size(), 1u);
}

TEST_F(MenuTest, destroyingTheOwnerEndsTheTracking)
{
  meanwhile([&] { windows().destroy(window_); });
  menus().track(tools(), {10, 10}, window_);

  EXPECT_FALSE(windows().isWindow(window_));
}

TEST_F(MenuTest, aBoxAnswersAsPreparedAfterItsMeanwhile)
{
  int ran = 0;
  answerBox(2, [&] { ++ran; });
  answerBox(6);

  EXPECT_EQ(menus().messageBox(window_, "text", "caption", 1), 2);
  EXPECT_EQ(ran, 1);
  EXPECT_EQ(menus().messageBox(nullptr, "text", "caption", 4), 6);
}

TEST_F(MenuTest, theWindowBelowCanBeDraggedOnWhileABoxStands)
{
  answerBox(1, [&] {
    pointer({20, 20}, left, 0);
    pointer({40, 45}, left, 0);
    pointer({40, 45}, 0, 0);
  });
  menus().messageBox({}, "Choose an area", "selectArea", 0);

  EXPECT_EQ(recorder.of(513).size(), 1u);
  EXPECT_EQ(recorder.of(514).size(), 1u);
}

struct KeyCase {
  unsigned flags;
  std::vector<unsigned> keys;
  int result;
};

TEST_F(MenuTest, keysAnswerABox)
{
  constexpr unsigned tab = 9, enter = 13, escape = 27, space = 32, leftArrow = 37, rightArrow = 39;
  for (KeyCase const& c : {KeyCase{0, {enter}, 1},
                           {0, {escape}, 1},
                           {1, {escape}, 2},
                           {1, {tab, space}, 2},
                           {2, {rightArrow, rightArrow, enter}, 5},
                           {2, {enter}, 3},
                           {2, {leftArrow, leftArrow, enter}, 4},
                           {3, {enter}, 6},
                           {3, {tab, enter}, 7},
                           {3, {escape}, 2},
                           {4, {escape, tab, enter}, 7},
                           {5, {enter}, 4},
                           {0x100 | 1, {enter}, 2},
                           {0x200 | 3, {enter}, 2}}) {
    meanwhile([&] {
      for (unsigned k : c.keys)
        key(k, true, 0);
    });
    EXPECT_EQ(menus().messageBox(window_, "text", "caption", c.flags), c.result) << c.flags;
  }
}

TEST_F(MenuTest, aBoxTakesTheFocusAndGivesItBack)
{
  HWND const inner = kid(window_, {0, 0, 50, 50});
  windows().setFocus(inner);
  answerBox(1, [&] { EXPECT_NE(Core::instance().focus(), inner); });
  menus().messageBox(window_, "text", "caption", 0);

  EXPECT_EQ(Core::instance().focus(), inner);
}

TEST_F(MenuTest, aBoxWithoutAnyWindowStandsAlone)
{
  windows().destroy(window_);
  bool stood = false;
  answerBox(1, [&] {
    HWND const box = Core::instance().active();
    stood = windows().visible(box) && !windows().parent(box);
  });

  EXPECT_EQ(menus().messageBox({}, "text", "caption", 0), 1);
  EXPECT_TRUE(stood);
  EXPECT_EQ(Core::instance().active(), nullptr);
}

TEST_F(MenuTest, aBoxThatGoesWithItsWindowAnswersCancel)
{
  meanwhile([&] { windows().destroy(window_); });
  EXPECT_EQ(menus().messageBox(window_, "text", "caption", 1), 2);
}

TEST_F(MenuTest, aBoxFromAnotherThreadStandsOnTheWindowsThread)
{
  answerBox(7, [&] { EXPECT_TRUE(windows().onOwnThread(window_)); });
  int result = 0;
  std::atomic<bool> done = false;
  std::thread other([&] {
    result = menus().messageBox(window_, "text", "caption", 4);
    done = true;
    windows().post(window_, [] {});
  });
  while (!done)
    pump(1000);
  other.join();

  EXPECT_EQ(result, 7);
}

TEST(BuiltInResources, stringsHaveTheWidthOfWhatTheirPanesShow)
{
  ResourceSource& all = builtInResources();

  for (int id : {501, 506, 509})
    ASSERT_NE(all.string(id), nullptr) << id;
  EXPECT_FALSE(all.string(509)->empty());
  EXPECT_EQ(all.string(502), nullptr);
}

TEST(BuiltInResources, cursorsAreWellFormedPicturesWithTheirHotSpotsOnInk)
{
  ResourceSource& all = builtInResources();
  for (int id = 600; id <= 606; ++id) {
    CursorPicture const* const cursor = all.cursor(id);
    ASSERT_NE(cursor, nullptr) << id;
    std::size_t const width = cursor->picture.front().size();
    for (std::string_view row : cursor->picture) {
      EXPECT_EQ(row.size(), width) << id;
      EXPECT_EQ(row.find_first_not_of("X.o "), std::string_view::npos) << id;
    }
    Point const hot = cursor->hotSpot;
    ASSERT_LT(static_cast<std::size_t>(hot.y), cursor->picture.size());
    ASSERT_LT(static_cast<std::size_t>(hot.x), width);
    EXPECT_NE(cursor->picture[static_cast<std::size_t>(hot.y)][static_cast<std::size_t>(hot.x)], ' ') << id;
  }
  EXPECT_EQ(all.cursor(599), nullptr);
  EXPECT_EQ(all.cursor(607), nullptr);
}

TEST(BuiltInResources, theToolBarHasAPictureOfSixteenByFifteenForEachCommand)
{
  std::vector<unsigned> ids;
  for (ToolButton const& button : *builtInResources().toolBar(628)) {
    ids.push_back(button.id);
    if (!button.id)
      continue;
    EXPECT_FALSE(button.tip.empty());
    ASSERT_EQ(button.picture.size(), 15u) << button.id;
    for (std::string_view row : button.picture)
      EXPECT_EQ(row.size(), 16u) << button.id;
  }
  EXPECT_EQ(ids, (std::vector<unsigned>{40502, 40503, 40504, 40505, 0, 40506, 40507, 40509, 0, 40510, 40511}));
  EXPECT_EQ(builtInResources().toolBar(1), nullptr);
}

}  // namespace
