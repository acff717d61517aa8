// What can happen between two calls: windows that go in any message, procedures that throw, tables that are full.
#include "tests/platform/window_fixture.h"
#include "tests/support/memory_watch.h"

#include "foundation/lock_check.h"
#include "platform/objects.h"
#include "platform/paint.h"
#include "platform/portable/raster/glyphs.h"
#include "platform/portable/raster/handle_table.h"
#include "platform/portable/windows/core.h"

#include <cstdlib>
#include <limits>
#include <stdexcept>

using namespace plat;
using plat::testing::advance;
using plat::testing::drain;

namespace {

using WindowSeams = WindowTest;

// All that an operator and a program do to a window with kids, bars, an owned window and a neighbour.
struct Scene {
  HWND main = {}, kid = {}, owned = {}, other = {};

  void make()
  {
    WindowSystem& windows = platform().windows;
    auto const add = [&](HWND parent, u32 style, Rect rect) {
      WindowDesc desc;
      desc.parent = parent;
      desc.style = style;
      desc.rect = rect;
      desc.proc = &record;
      return windows.create(desc);
    };
    other = add(nullptr, 0x10000000, {300, 0, 400, 100});
    main = add(nullptr, 0x10000000, {0, 0, 200, 150});
    kid = add(main, 0x50000000, {20, 20, 120, 120});
    owned = add(main, 0x10000000, {420, 0, 480, 60});
  }

  void act()
  {
    WindowSystem& windows = platform().windows;
    Rect const large{5, 5, 260, 190};
    std::function<void()> const steps[] = {
        [&] { windows.setFocus(kid); },
        [&] { windows.setScrollInfo(main, 0, {7, 0, 100, 10, 5}, true); },
        [&] { windows.showScrollBar(main, 0, true); },
        [&] { windows.showScrollBar(main, 1, true); },
        [&] { windows.setCapture(kid); },
        [&] { plat::testing::pointer({60, 60}, 0, 0); },
        [&] { plat::testing::pointer({60, 60}, 1, 0); },
        [&] { plat::testing::pointer({90, 80}, 1, 0); },
        [&] { plat::testing::pointer({90, 80}, 0, 0); },
        [&] { windows.setCapture(other); },
        [&] { windows.releaseCapture(); },
        [&] { windows.setTimer(kid, 3, 10); },
        [&] { advance(25); },
        [&] { plat::testing::pointer({195, 20}, 1, 0); },  // on the vertical bar
        [&] { advance(900); },
        [&] { plat::testing::pointer({195, 100}, 1, 0); },
        [&] { plat::testing::pointer({195, 100}, 0, 0); },
        [&] { windows.place(main, &large, -1); },
        [&] { windows.place(main, nullptr, 6); },
        [&] { windows.place(main, nullptr, 9); },
        [&] { plat::testing::key(65, true, 0); },
        [&] { plat::testing::key(65, false, 0); },
        [&] { windows.invalidate(main, nullptr, true); },
        [&] { drain(); },
        [&] { plat::testing::screen({640, 480}, 16); },
        [&] { windows.place(kid, nullptr, 0); },
        [&] { windows.place(owned, nullptr, 0); },
        [&] { windows.postMessage(main, 5000, 1, 2); },
        [&] { drain(); },
        [&] { windows.send(main, 16, 0, 0); },
    };
    for (auto const& step : steps) {
      try {
        step();
      } catch (std::runtime_error const&) {
      }
      EXPECT_EQ(cc_LockCheck::held(), 0);
    }
  }

  // Nothing is held any more, and windows made now work as ever.
  void check(WindowSystem& windows)
  {
    recorder.hook = nullptr;
    plat::testing::pointer({1, 1}, 0, 0);
    for (HWND window : {main, kid, owned, other})
      if (windows.isWindow(window))
        windows.destroy(window);
    drain();
    portable::Core& core = portable::Core::instance();
    EXPECT_FALSE(core.isWindow(core.capture()));
    EXPECT_FALSE(core.isWindow(core.focus()));
    EXPECT_FALSE(core.isWindow(core.active()));
    plat::testing::screen({800, 600}, 32);
    WindowDesc desc;
    desc.style = 0x10000000;
    desc.rect = {0, 0, 50, 50};
    desc.proc = &record;
    HWND const fresh = windows.create(desc);
    drain();
    recorder.clear();
    plat::testing::pointer({10, 10}, 1, 0);
    plat::testing::pointer({10, 10}, 0, 0);
    EXPECT_EQ(recorder.of(513).size(), 1u);
    EXPECT_EQ(recorder.of(514).size(), 1u);
    EXPECT_EQ(windows.clientToScreen(fresh, {}), (Point{0, 0}));
    plat::testing::pointer({700, 500}, 0, 0);
    windows.destroy(fresh);
    drain();
    recorder.clear();
  }
};

// The nth message of all does something; until a run has fewer messages.
template <class F> int atEachMessage(WindowSystem& windows, F&& what)
{
  for (int nth = 1;; ++nth) {
    Scene scene;
    int count = 0;
    recorder = {};
    recorder.hook = [&](Message const& m, LResult&) {
      if (++count == nth)
        what(scene, m);
      return false;
    };
    try {
      scene.make();
    } catch (std::runtime_error const&) {
    }
    scene.act();
    scene.check(windows);
    if (count < nth)
      return nth - 1;
  }
}

TEST_F(WindowSeams, aWindowMayGoInAnyMessage)
{
  int const messages = atEachMessage(windows(), [](Scene&, Message const& m) { platform().windows.destroy(m.window); });

  EXPECT_GT(messages, 60);
}

TEST_F(WindowSeams, itsTopLevelWindowMayGoInAnyMessage)
{
  EXPECT_GT(atEachMessage(windows(),
                          [](Scene& scene, Message const&) {
                            platform().windows.destroy(scene.main);
                            platform().windows.destroy(scene.other);
                          }),
            60);
}

TEST_F(WindowSeams, aProcedureMayThrowInAnyMessage)
{
  EXPECT_GT(atEachMessage(windows(), [](Scene&, Message const&) { throw std::runtime_error("thrown"); }), 60);
}

TEST_F(WindowSeams, aProcedureMayRunALoopInAnyMessage)
{
  EXPECT_GT(atEachMessage(windows(),
                          [](Scene&, Message const&) {
                            plat::testing::pointer({60, 60}, 0, 0);
                            plat::testing::pointer({61, 61}, 1, 0);
                            plat::testing::pointer({62, 62}, 0, 0);
                          }),
            60);
}

TEST_F(WindowSeams, aWindowThatThrowsWhenItEndsIsGoneAllTheSame)
{
  HWND const window = top({0, 0, 50, 50});
  HWND const inner = kid(window, {0, 0, 20, 20});
  recorder.hook = [](Message const& m, LResult&) -> bool {
    if (m.number == 2 || m.number == 130)
      throw std::runtime_error("thrown");
    return false;
  };

  EXPECT_THROW(windows().destroy(window), std::runtime_error);

  EXPECT_FALSE(windows().isWindow(window));
  EXPECT_FALSE(windows().isWindow(inner));
}

TEST_F(WindowSeams, aWindowWhoseCreationThrowsIsNotLeftBehind)
{
  HWND made = {};
  recorder.hook = [&](Message const& m, LResult&) -> bool {
    made = m.window;
    if (m.number == 5)
      throw std::runtime_error("thrown");
    return false;
  };

  EXPECT_THROW(top({0, 0, 50, 50}), std::runtime_error);

  EXPECT_FALSE(windows().isWindow(made));
}

TEST_F(WindowSeams, aMenuOrBoxUnderWhichAProcedureThrowsOrItsWindowGoesEnds)
{
  portable::Core& core = portable::Core::instance();
  MenuSystem& menus = platform().menus;
  for (bool throws : {true, false})
    for (bool box : {true, false}) {
      HWND const window = top({0, 0, 700, 500});
      settle();
      recorder.hook = [&](Message const& m, LResult&) -> bool {
        if (m.number != 5000)
          return false;
        if (throws)
          throw std::runtime_error("thrown");
        windows().destroy(window);
        return true;
      };
      HMENU const menu = menus.load(628);
      ASSERT_NE(menu, nullptr);
      windows().postMessage(window, 5000, 0, 0);
      auto const act = [&] {
        if (box)
          EXPECT_EQ(menus.messageBox(window, "text", "caption", 1), 2);
        else
          menus.track(menus.sub(menu, 1), {10, 10}, window);
      };
      if (throws)
        EXPECT_THROW(act(), std::runtime_error);
      else
        act();
      recorder.hook = nullptr;
      menus.destroy(menu);
      HWND const next = top({0, 0, 50, 50});
      settle();
      plat::testing::pointer({10, 10}, 1, 0);
      plat::testing::pointer({10, 10}, 0, 0);
      EXPECT_EQ(recorder.of(513).size(), 1u) << throws << box;  // nothing has the input any more
      plat::testing::pointer({600, 10}, 0, 0);
      windows().destroy(next);
      windows().destroy(window);
      EXPECT_EQ(core.active(), nullptr);
    }
}

TEST_F(WindowSeams, whatIsToldToTheMachineCanBeReadBack)
{
  WindowDesc desc;
  desc.title = "a title";
  desc.rect = {0, 0, 400, 300};
  HWND const window = windows().create(desc);
  MenuSystem& menus = platform().menus;
  EXPECT_EQ(plat::testing::title(window), "a title");

  plat::testing::answerBox(6);
  EXPECT_EQ(menus.messageBox(window, "Really?", "Question", 4), 6);
  EXPECT_EQ(plat::testing::boxText(), "Really?");
  EXPECT_EQ(plat::testing::boxCaption(), "Question");

  HMENU const system = menus.system(window);
  ASSERT_EQ(plat::testing::menuStates(system).size(), 1u);
  menus.check(system, 61536, true);
  menus.enable(system, 61536, false);
  plat::testing::answerMenu(0);
  menus.track(system, {}, window);
  menus.check(system, 61536, false);
  auto const tracked = plat::testing::trackedMenu(), now = plat::testing::menuStates(system);
  ASSERT_EQ(tracked.size(), 1u);
  EXPECT_EQ(tracked[0].id, 61536u);
  EXPECT_TRUE(tracked[0].checked);
  EXPECT_FALSE(tracked[0].radio);
  EXPECT_FALSE(tracked[0].enabled);
  EXPECT_FALSE(now[0].checked);

  windows().setScrollInfo(window, 1, {7, 2, 90, 10, 33}, false);
  windows().showScrollBar(window, 1, true);
  auto const bar = plat::testing::scrollState(window, 1);
  EXPECT_TRUE(bar.shown && bar.enabled);
  EXPECT_EQ(bar.min, 2);
  EXPECT_EQ(bar.max, 90);
  EXPECT_EQ(bar.pos, 33);
  EXPECT_EQ(bar.page, 10u);
  HCURSOR const hand = windows().loadCursor(601);
  windows().classCursor(window, hand);
  windows().setCursor(hand);
  EXPECT_EQ(plat::testing::windowCursor(window), hand);
  EXPECT_EQ(plat::testing::cursor(), hand);
  windows().destroy(window);
}

TEST_F(WindowSeams, aFullTableAnswersNullAndStaysWhole)
{
  GraphicsObjects& objects = platform().objects;
  std::vector<HFONT> fonts;
  while (HFONT const font = objects.createFont({}))
    fonts.push_back(font);
  EXPECT_EQ(fonts.size(), 65535u);
  objects.deleteFont(fonts[77]);
  HFONT const again = objects.createFont({});
  EXPECT_NE(again, nullptr);
  EXPECT_NE(again, fonts[77]);
  EXPECT_EQ(objects.createFont({}), nullptr);
  fonts[77] = again;
  for (HFONT font : fonts)
    objects.deleteFont(font);
}

TEST_F(WindowSeams, tooManyWindowsAreNull)
{
  if (!std::getenv("KRS_LONG"))
    GTEST_SKIP() << "takes some seconds; runs in the long run";
  HWND const window = top({0, 0, 10, 10}, 0);
  std::size_t count = 0;
  WindowDesc desc;
  desc.parent = window;
  desc.style = child;
  while (windows().create(desc))
    ++count;
  EXPECT_EQ(count, 65535u - 2);
  EXPECT_EQ(top({0, 0, 10, 10}), nullptr);
  EXPECT_EQ(platform().menus.messageBox(window, "text", "caption", 1), 2);  // nobody can be asked: cancelled
  EXPECT_TRUE(windows().destroy(window));

  EXPECT_NE(top({0, 0, 10, 10}), nullptr);
}

TEST(HandleTable, aSlotWhoseGenerationsAreUsedUpIsNeverUsedAgain)
{
  portable::HandleTable<HFONT, int, 3> table;
  std::vector<HFONT> handles;
  for (int i = 0; i < 12; ++i) {
    HFONT const handle = table.add(i);
    for (HFONT old : handles) {
      EXPECT_NE(handle, old);
      EXPECT_EQ(table.find(old), nullptr);
    }
    handles.push_back(handle);
    EXPECT_TRUE(table.remove(handle));
    EXPECT_FALSE(table.remove(handle));
  }
}

TEST_F(WindowSeams, numbersAtTheirEnds)
{
  constexpr i32 low = std::numeric_limits<i32>::min(), high = std::numeric_limits<i32>::max();
  HWND const window = top({10, 10, 100, 100});
  for (ScrollInfo const& info : {ScrollInfo{7, low, high, ~0u, high}, ScrollInfo{7, high, low, 0, low},
                                 ScrollInfo{7, low, low, 5, 0}, ScrollInfo{15, low, high, 1, low}}) {
    windows().setScrollInfo(window, 0, info, true);
    windows().setScrollInfo(window, 1, info, true);
    windows().setScrollPos(window, 0, high, true);
    windows().setScrollPos(window, 1, low, true);
    windows().showScrollBar(window, 0, true);
    windows().showScrollBar(window, 1, true);
    plat::testing::pointer({95, 40}, 1, 0);
    plat::testing::pointer({95, 60}, 1, 0);
    plat::testing::pointer({high, low}, 1, 0);
    plat::testing::pointer({low, high}, 0, 0);
  }
  windows().setTimer(window, ~uptr{0}, ~0u);
  windows().killTimer(window, ~uptr{0});
  for (i32 height : {low, -2001, -1, 0, 1, 2001, high}) {
    FontDesc font;
    font.height = height;
    EXPECT_GT(portable::fontFace(font)->ascent(), 0) << height;
  }
  Rect const clip{low, low, high, high};
  windows().clipCursor(&clip);
  plat::testing::wheel({high, low}, high, ~0u);
  windows().clipCursor(nullptr);
  Rect const all{low, low, high, high};
  windows().invalidate(window, &all, true);
  windows().validate(window, &all);
  EXPECT_TRUE(windows().updateRect(window).empty());
}

// Done or undone, nothing leaks, and no lock is held, whichever allocation fails.
TEST_F(WindowSeams, everyOperationOutlivesAFailingAllocation)
{
  struct Stage {
    explicit Stage(HWND made) : window(made) {}
    HWND window;
    ~Stage() { platform().windows.destroy(window); }
  };
  auto const arrange = [&] { return std::make_unique<Stage>(top({0, 0, 80, 60})); };
  auto const check = [&](Stage& stage, bool) {
    EXPECT_EQ(cc_LockCheck::held(), 0);
    EXPECT_TRUE(windows().isWindow(stage.window));
    drain();
    EXPECT_EQ(windows().send(stage.window, 5000, 0, 0), 0);
  };
  recorder.hook = nullptr;
  WindowDesc desc;
  desc.title = "a title that is too long for the inside of a string";
  desc.rect = {0, 0, 30, 30};
  failEach(
      arrange,
      [&](Stage&) {
        HWND const made = windows().create(desc);
        EXPECT_TRUE(windows().isWindow(made));
        EXPECT_TRUE(windows().destroy(made));
      },
      check);
  desc.style = shown;
  failEach(
      arrange,
      [&](Stage&) {
        HWND const made = windows().create(desc);
        windows().destroy(made);
      },
      check);
  failEach(
      arrange,
      [&](Stage& s) {
        Rect const large{5, 5, 300, 200};
        windows().place(s.window, &large, -1);
      },
      [&](Stage& s, bool failed) {
        check(s, failed);
        Rect const client = windows().clientRect(s.window);
        Point const last{client.right - 1, client.bottom - 1};
        HDC const dc = windows().getDC(s.window);
        ASSERT_NE(dc, nullptr);
        painter(dc)->fillRect(client, 0x123456);
        windows().releaseDC(s.window, dc);
        EXPECT_EQ(plat::testing::pel(s.window, last), 0x563412u);  // there is a backing, as large as the window
      });
  failEach(arrange, [&](Stage& s) { windows().setTimer(s.window, 1, 10); }, check);
  failEach(arrange, [&](Stage& s) { windows().post(s.window, [] {}); }, check);
  failEach(arrange, [&](Stage& s) { windows().invalidate(s.window, nullptr, true); }, check);
  failEach(arrange, [&](Stage&) { platform().objects.deleteFont(platform().objects.createFont({})); }, check);
  failEach(arrange, [&](Stage&) { platform().menus.destroy(platform().menus.load(628)); }, check);
  failEach(arrange, [&](Stage&) { windows().loadCursor(602); }, check);
}

}  // namespace
