// Life of windows, messages in their order, timers, threads.
#include "tests/platform/window_fixture.h"

#include "platform/portable/windows/core.h"
#include "platform/portable/windows/null_video.h"

#include <atomic>
#include <thread>

using namespace plat;
using plat::testing::advance;
using plat::testing::drain;

namespace {

using Window = WindowTest;
using Numbers = std::vector<unsigned>;

LParam packed(int x, int y) { return static_cast<LParam>(u32(u16(y)) << 16 | u16(x)); }

TEST_F(Window, creationSendsCreateSizeAndMoveAndShowsOnlyAVisibleOne)
{
  HWND const hidden = top({10, 20, 110, 70}, 0);

  EXPECT_EQ(recorder.numbers(), (Numbers{1, 5, 3}));
  EXPECT_EQ(recorder.messages[1].lParam, packed(100, 50));
  EXPECT_EQ(recorder.messages[2].lParam, packed(10, 20));
  EXPECT_FALSE(windows().visible(hidden));
}

TEST_F(Window, aVisibleTopLevelWindowIsShownActivatedAndFocused)
{
  HWND const window = top({0, 0, 100, 50});

  EXPECT_EQ(recorder.numbers(), (Numbers{1, 5, 3, 24, 6, 7}));
  EXPECT_EQ(recorder.messages[3].wParam, 1u);
  EXPECT_EQ(recorder.messages[4].wParam, 1u);
  EXPECT_TRUE(windows().visible(window));
}

TEST_F(Window, creationFailsWhenTheProcedureAnswersMinusOne)
{
  recorder.hook = [](Message const& m, LResult& answer) {
    answer = -1;
    return m.number == 1;
  };

  EXPECT_EQ(top({0, 0, 10, 10}), nullptr);
  EXPECT_EQ(recorder.numbers(), (Numbers{1, 2, 130}));
}

TEST_F(Window, aChildWithoutLivingParentIsNotMade)
{
  EXPECT_EQ(kid(nullptr, {0, 0, 10, 10}), nullptr);
  HWND const window = top({0, 0, 10, 10});
  windows().destroy(window);

  EXPECT_EQ(kid(window, {0, 0, 10, 10}), nullptr);
  EXPECT_EQ(kid(windows().desktop(), {0, 0, 10, 10}), nullptr);
}

TEST_F(Window, destroySendsTwoDownwardsAndOneHundredThirtyUpwards)
{
  HWND const window = top({0, 0, 100, 100}, 0);
  HWND const inner = kid(window, {0, 0, 50, 50}, child);
  HWND const innermost = kid(inner, {0, 0, 20, 20}, child);
  recorder.clear();

  windows().destroy(window);

  ASSERT_EQ(recorder.numbers(), (Numbers{2, 2, 2, 130, 130, 130}));
  EXPECT_EQ(recorder.messages[0].window, window);
  EXPECT_EQ(recorder.messages[1].window, inner);
  EXPECT_EQ(recorder.messages[2].window, innermost);
  EXPECT_EQ(recorder.messages[3].window, innermost);
  EXPECT_EQ(recorder.messages[4].window, inner);
  EXPECT_EQ(recorder.messages[5].window, window);
}

TEST_F(Window, aStaleHandleIsRecognisedAfterItsPlaceIsUsedAgain)
{
  HWND const old = top({0, 0, 10, 10});
  windows().destroy(old);
  HWND const fresh = top({5, 5, 30, 40});

  EXPECT_NE(old, fresh);
  EXPECT_FALSE(windows().isWindow(old));
  EXPECT_EQ(windows().clientRect(old), Rect{});
  EXPECT_EQ(windows().send(old, 5000, 0, 0), 0);
  EXPECT_FALSE(windows().postMessage(old, 5000, 0, 0));
  EXPECT_FALSE(windows().destroy(old));
  EXPECT_TRUE(windows().isWindow(fresh));
}

TEST_F(Window, destroyInsideItsOwnDestroyMessageDoesNothing)
{
  HWND const window = top({0, 0, 10, 10});
  recorder.clear();
  recorder.hook = [&](Message const& m, LResult&) {
    if (m.number == 2) {
      EXPECT_FALSE(windows().destroy(m.window));
    }
    return false;
  };

  EXPECT_TRUE(windows().destroy(window));
  EXPECT_EQ(recorder.of(2).size(), 1u);
  EXPECT_EQ(recorder.of(130).size(), 1u);
}

TEST_F(Window, ownedTopLevelWindowsGoWithTheirOwner)
{
  HWND const owner = top({0, 0, 10, 10});
  WindowDesc desc;
  desc.parent = owner;
  desc.rect = {0, 0, 10, 10};
  HWND const owned = windows().create(desc);
  ASSERT_TRUE(windows().isWindow(owned));
  EXPECT_EQ(windows().parent(owned), nullptr);

  windows().destroy(owner);

  EXPECT_FALSE(windows().isWindow(owned));
}

TEST_F(Window, parentClimbsToTheTopLevelWindowWhoseParentIsNull)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {10, 10, 50, 50});
  HWND const innermost = kid(inner, {1, 2, 20, 20});

  EXPECT_EQ(windows().parent(innermost), inner);
  EXPECT_EQ(windows().parent(inner), window);
  EXPECT_EQ(windows().parent(window), nullptr);
  EXPECT_EQ(windows().parent(windows().desktop()), nullptr);
}

TEST_F(Window, theDesktopIsAWindowOfTheScreensSizeThatCannotBeDestroyed)
{
  HWND const desktop = windows().desktop();

  EXPECT_TRUE(windows().isWindow(desktop));
  EXPECT_EQ(windows().windowRect(desktop), (Rect{0, 0, 800, 600}));
  EXPECT_FALSE(windows().destroy(desktop));
}

TEST_F(Window, rectanglesAndPointsAddUpAlongTheAncestors)
{
  HWND const window = top({100, 200, 300, 400});
  HWND const inner = kid(window, {10, 20, 60, 90});
  HWND const innermost = kid(inner, {3, 4, 13, 24});

  EXPECT_EQ(windows().clientToScreen(innermost, {1, 1}), (Point{114, 225}));
  EXPECT_EQ(windows().windowRect(innermost), (Rect{113, 224, 123, 244}));
  EXPECT_EQ(windows().clientRect(innermost), (Rect{0, 0, 10, 20}));
}

TEST_F(Window, placeSendsMoveBeforeSizeAndOnlyWhatChanged)
{
  HWND const window = top({0, 0, 100, 100});
  recorder.clear();
  Rect const both{5, 6, 55, 76}, moved{7, 8, 57, 78}, sized{7, 8, 27, 38};

  windows().place(window, &both, -1);
  EXPECT_EQ(recorder.numbers(), (Numbers{3, 5}));
  EXPECT_EQ(recorder.messages[0].lParam, packed(5, 6));
  EXPECT_EQ(recorder.messages[1].lParam, packed(50, 70));
  recorder.clear();
  windows().place(window, &moved, -1);
  EXPECT_EQ(recorder.numbers(), (Numbers{3}));
  recorder.clear();
  windows().place(window, &sized, -1);
  EXPECT_EQ(recorder.numbers(), (Numbers{5}));
  recorder.clear();
  windows().place(window, &sized, -1);
  EXPECT_TRUE(recorder.messages.empty());
}

TEST_F(Window, aMinimizedWindowHasNoClientAreaUntilItIsRestored)
{
  HWND const window = top({0, 0, 100, 80});
  recorder.clear();

  windows().place(window, nullptr, 6);
  ASSERT_EQ(recorder.of(5).size(), 1u);
  EXPECT_EQ(recorder.of(5)[0].wParam, 1u);
  EXPECT_EQ(recorder.of(5)[0].lParam, 0);
  EXPECT_EQ(windows().clientRect(window), Rect{});
  EXPECT_EQ(windows().style(window) & 0x20000000u, 0x20000000u);
  recorder.clear();

  windows().place(window, nullptr, 9);
  ASSERT_EQ(recorder.of(5).size(), 1u);
  EXPECT_EQ(recorder.of(5)[0].wParam, 0u);
  EXPECT_EQ(recorder.of(5)[0].lParam, packed(100, 80));
}

TEST_F(Window, showFourDoesNotActivate)
{
  HWND const first = top({0, 0, 10, 10});
  HWND const second = top({0, 0, 10, 10}, 0);
  recorder.clear();

  windows().place(second, nullptr, 4);

  EXPECT_EQ(recorder.numbers(), (Numbers{24}));
  EXPECT_EQ(portable::Core::instance().active(), first);
}

TEST_F(Window, hidingTheActiveWindowActivatesTheNextOne)
{
  HWND const first = top({0, 0, 10, 10});
  HWND const second = top({0, 0, 10, 10});
  recorder.clear();

  windows().place(second, nullptr, 0);

  EXPECT_EQ(portable::Core::instance().active(), first);
  EXPECT_EQ(recorder.numbersOf(second), (Numbers{24, 6, 8}));
  EXPECT_EQ(recorder.numbersOf(first), (Numbers{6, 7}));
}

TEST_F(Window, centerTakesTheMiddleOfTheScreenOrOfTheParent)
{
  HWND const window = top({0, 0, 200, 100});
  HWND const inner = kid(window, {0, 0, 50, 20});

  windows().center(window);
  windows().center(inner);

  EXPECT_EQ(windows().windowRect(window), (Rect{300, 250, 500, 350}));
  EXPECT_EQ(windows().windowRect(inner), (Rect{375, 290, 425, 310}));
}

TEST_F(Window, theFrameAddsNothingButAMenuBar)
{
  EXPECT_EQ(windows().frameRect({0, 0, 50, 60}, 0xCF0000, false, 0), (Rect{0, 0, 50, 60}));
  EXPECT_EQ(windows().frameRect({0, 0, 50, 60}, 0xCF0000, true, 0), (Rect{0, -windows().metric(15), 50, 60}));
  EXPECT_EQ(windows().metric(2), 16);
  EXPECT_EQ(windows().metric(3), 16);
  EXPECT_EQ(windows().metric(0), 800);
  EXPECT_EQ(windows().metric(1), 600);
}

LResult answerTwelve(HWND window, unsigned number, WParam wParam, LParam lParam)
{
  return number == 5000 ? 12 : record(window, number, wParam, lParam);
}

TEST_F(Window, subclassingSwapsTheProcedureAndGivesBackTheFormerOne)
{
  HWND const window = top({0, 0, 10, 10});

  EXPECT_EQ(windows().subclass(window, &answerTwelve), &record);
  EXPECT_EQ(windows().send(window, 5000, 0, 0), 12);
  EXPECT_EQ(windows().subclass(window, &record), &answerTwelve);
  EXPECT_EQ(windows().send(window, 5000, 0, 0), 0);
}

TEST_F(Window, aWindowWithoutProcedureHasADefaultOneToChainTo)
{
  WindowDesc desc;
  desc.rect = {0, 0, 10, 10};
  HWND const window = windows().create(desc);

  MessageProc const former = windows().subclass(window, &answerTwelve);
  ASSERT_NE(former, nullptr);
  windows().callProc(former, window, 16, 0, 0);

  EXPECT_FALSE(windows().isWindow(window));
}

TEST_F(Window, theDefaultProcedureDestroysOnClose)
{
  HWND const window = top({0, 0, 10, 10});

  windows().send(window, 16, 0, 0);

  EXPECT_FALSE(windows().isWindow(window));
}

TEST_F(Window, theCloseBoxSendsSixteenUnlessTheSystemMenusItemIsDisabled)
{
  HWND const window = top({0, 0, 10, 10});
  recorder.hook = [](Message const& m, LResult&) { return m.number == 16; };
  auto& core = portable::Core::instance();
  MenuSystem& menus = platform().menus;
  settle();

  core.closeAsked(window);
  drain();
  EXPECT_EQ(recorder.numbers(), (Numbers{16}));
  recorder.clear();

  HMENU const menu = menus.system(window);
  menus.enable(menu, 61536, false);
  core.closeAsked(window);
  drain();
  EXPECT_TRUE(recorder.messages.empty());

  menus.enable(menu, 61536, true);
  core.closeAsked(window);
  drain();
  EXPECT_EQ(recorder.numbers(), (Numbers{16}));
}

TEST_F(Window, postedMessagesAndClosuresRunFirstInFirstOut)
{
  HWND const window = top({0, 0, 10, 10});
  settle();

  windows().postMessage(window, 5001, 1, 2);
  windows().post(window, [&] { recorder.messages.push_back({window, 9999, 0, 0}); });
  windows().postMessage(window, 5002, 0, 0);
  EXPECT_TRUE(recorder.messages.empty());
  drain();

  ASSERT_EQ(recorder.numbers(), (Numbers{5001, 9999, 5002}));
  EXPECT_EQ(recorder.messages[0].wParam, 1u);
  EXPECT_EQ(recorder.messages[0].lParam, 2);
}

TEST_F(Window, closuresAndMessagesAreDroppedWithTheWindow)
{
  HWND const window = top({0, 0, 10, 10});
  bool ran = false;
  windows().post(window, [&] { ran = true; });
  windows().postMessage(window, 5001, 0, 0);
  windows().destroy(window);
  recorder.clear();
  drain();

  EXPECT_FALSE(ran);
  EXPECT_TRUE(recorder.messages.empty());
}

TEST_F(Window, postedComesBeforeInputBeforeTimersBeforePaintingWithTheEraseFirst)
{
  HWND const window = top({0, 0, 100, 100});
  settle();
  auto& core = portable::Core::instance();
  recorder.hook = [&](Message const& m, LResult&) {
    if (m.number == 5001)
      windows().postMessage(window, 5002, 0, 0);
    return false;
  };

  windows().invalidate(window, nullptr, true);
  windows().setTimer(window, 7, 10);
  core.pointer({}, {50, 50}, 0, 0, 0);
  core.turnClock(10);
  windows().postMessage(window, 5001, 0, 0);
  drain();

  EXPECT_EQ(recorder.numbers(), (Numbers{5001, 5002, 32, 512, 275, 20, 15}));
}

TEST_F(Window, aTimerFiresAtEachMultipleOfItsIntervalOfTheVirtualClock)
{
  HWND const window = top({0, 0, 10, 10});
  settle();
  windows().setTimer(window, 42, 100);

  advance(99);
  EXPECT_TRUE(recorder.messages.empty());
  advance(1);
  ASSERT_EQ(recorder.numbers(), (Numbers{275}));
  EXPECT_EQ(recorder.messages[0].wParam, 42u);
  advance(250);
  EXPECT_EQ(recorder.numbers(), (Numbers{275, 275, 275}));
  windows().killTimer(window, 42);
  advance(1000);
  EXPECT_EQ(recorder.messages.size(), 3u);
}

TEST_F(Window, timersFireInTheOrderOfTheirDeadlinesWhileTheClockIsTurned)
{
  HWND const window = top({0, 0, 10, 10});
  settle();
  windows().setTimer(window, 1, 70);
  windows().setTimer(window, 2, 30);

  advance(100);

  std::vector<WParam> ids;
  for (Message const& m : recorder.of(275))
    ids.push_back(m.wParam);
  EXPECT_EQ(ids, (std::vector<WParam>{2, 2, 1, 2}));
}

TEST_F(Window, aTimerReplacedInItsOwnTickCountsFromThatTick)
{
  HWND const window = top({0, 0, 10, 10});
  settle();
  std::vector<std::uint64_t> at;
  recorder.hook = [&](Message const& m, LResult&) {
    if (m.number == 275) {
      at.push_back(portable::Core::instance().now());
      if (m.wParam == 500) {
        windows().killTimer(window, 500);
        windows().setTimer(window, 501, 500);
      }
    }
    return false;
  };
  windows().setTimer(window, 500, 1000);

  advance(2000);

  EXPECT_EQ(at, (std::vector<std::uint64_t>{1000, 1500, 2000}));
}

TEST_F(Window, settingATimerAgainStartsItAnewAndTimersEndWithTheirWindow)
{
  HWND const window = top({0, 0, 10, 10});
  settle();
  windows().setTimer(window, 1, 100);
  advance(60);
  windows().setTimer(window, 1, 100);
  advance(60);
  EXPECT_TRUE(recorder.messages.empty());
  advance(40);
  EXPECT_EQ(recorder.numbers(), (Numbers{275}));

  windows().destroy(window);
  recorder.clear();
  advance(1000);
  EXPECT_TRUE(recorder.messages.empty());
}

TEST_F(Window, focusGoesWithMessagesEightAndSeven)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {0, 0, 50, 50});
  recorder.clear();

  windows().setFocus(inner);

  ASSERT_EQ(recorder.numbers(), (Numbers{8, 7}));
  EXPECT_EQ(recorder.messages[0].window, window);
  EXPECT_EQ(recorder.messages[0].wParam, reinterpret_cast<WParam>(inner));
  EXPECT_EQ(recorder.messages[1].window, inner);
  EXPECT_EQ(recorder.messages[1].wParam, reinterpret_cast<WParam>(window));
}

TEST_F(Window, activationGoesWithSixToTheLoserFirst)
{
  HWND const first = top({0, 0, 10, 10});
  HWND const second = top({0, 0, 10, 10}, 0);
  recorder.clear();

  windows().place(second, nullptr, 5);

  std::vector<Message> const six = recorder.of(6);
  ASSERT_EQ(six.size(), 2u);
  EXPECT_EQ(six[0].window, first);
  EXPECT_EQ(six[0].wParam, 0u);
  EXPECT_EQ(six[1].window, second);
  EXPECT_EQ(six[1].wParam, 1u);
}

TEST_F(Window, aClosurePostedByAnotherThreadRunsOnTheWindowsThread)
{
  HWND const window = top({0, 0, 10, 10});
  std::thread::id ran;
  bool own = true;
  std::thread other([&] {
    own = windows().onOwnThread(window);
    windows().post(window, [&] { ran = std::this_thread::get_id(); });
  });
  other.join();
  drain();

  EXPECT_FALSE(own);
  EXPECT_TRUE(windows().onOwnThread(window));
  EXPECT_EQ(ran, std::this_thread::get_id());
}

TEST_F(Window, creationAndSendFromAnotherThreadAreDoneByTheWindowsThread)
{
  std::atomic<bool> done = false;
  std::thread::id createdOn;
  recorder.hook = [&](Message const& m, LResult& answer) {
    if (m.number == 1)
      createdOn = std::this_thread::get_id();
    answer = 77;
    return m.number == 5000;
  };
  HWND made = {};
  LResult answer = 0;
  std::thread other([&] {
    made = top({0, 0, 10, 10});
    answer = windows().send(made, 5000, 0, 0);
    windows().setTimer(made, 1, 5);
    done = true;
    windows().post(made, [] {});
  });
  while (!done)
    pump(1000);
  other.join();
  drain();

  EXPECT_TRUE(windows().isWindow(made));
  EXPECT_EQ(createdOn, std::this_thread::get_id());
  EXPECT_EQ(answer, 77);
  recorder.clear();
  advance(5);
  EXPECT_EQ(recorder.of(275).size(), 1u);
}

TEST_F(Window, quitEndsThePumpAndItsCodeIsRunsResult)
{
  HWND const window = top({0, 0, 10, 10});
  windows().post(window, [] { quit(7); });

  EXPECT_EQ(run(), 7);
  EXPECT_TRUE(pump(0));
  quit(0);
  EXPECT_FALSE(pump(0));
  EXPECT_EQ(run(), 0);
}

TEST_F(Window, aProcedureThatPostsToItselfDoesNotKeepAPumpFromReturning)
{
  HWND const window = top({0, 0, 10, 10});
  settle();
  recorder.hook = [&](Message const& m, LResult&) {
    if (m.number == 5001)
      windows().postMessage(window, 5001, 0, 0);
    return false;
  };
  windows().postMessage(window, 5001, 0, 0);

  EXPECT_TRUE(pump(0));
  EXPECT_GT(recorder.messages.size(), 1u);
  recorder.hook = nullptr;
}

TEST_F(Window, initIsRefusedWhileWindowsStand)
{
  HWND const window = top({0, 0, 10, 10});
  InitOptions options;
  options.video = InitOptions::headless;

  EXPECT_FALSE(init(options));
  windows().destroy(window);
  EXPECT_TRUE(init(options));
  options.depth = 12;
  EXPECT_FALSE(init(options));
}

TEST_F(Window, aChangedDisplayModeIsToldToTopLevelWindows)
{
  HWND const window = top({0, 0, 10, 10});
  settle();

  plat::testing::screen({1024, 768}, 16);

  std::vector<Message> const told = recorder.of(126);
  ASSERT_EQ(told.size(), 1u);
  EXPECT_EQ(told[0].window, window);
  EXPECT_EQ(told[0].wParam, 16u);
  EXPECT_EQ(told[0].lParam, packed(1024, 768));
  EXPECT_EQ(windows().desktopDepth(), 16);
  EXPECT_EQ(windows().windowRect(windows().desktop()), (Rect{0, 0, 1024, 768}));
}

TEST_F(Window, aModeThatTheMachineChangesIsTakenInTurn)
{
  HWND const window = top({0, 0, 10, 10});
  settle();

  portable::Core::instance().screenChanged({640, 480}, 24);
  EXPECT_EQ(windows().desktopDepth(), 32);
  drain();

  EXPECT_EQ(windows().desktopDepth(), 24);
  EXPECT_EQ(recorder.numbersOf(window), (Numbers{126, 20, 15}));
}

TEST_F(Window, debugTextGoesToTheSinkOfTheTests)
{
  std::string seen;
  plat::testing::debugSink([&](std::string_view text) { seen += text; });
  debugText("live: start\n");
  plat::testing::debugSink({});
  debugText("unseen");

  EXPECT_EQ(seen, "live: start\n");
}

// Windows that others made, on a screen that only knows window 11.
class ForeignVideo final : public portable::Video {
public:
  Size screenSize() override { return {640, 480}; }
  int depth() override { return 32; }
  bool virtualClock() const override { return true; }
  Ptr<portable::VideoWindow> createWindow(HWND, std::string const&, Rect const&, u32) override
  {
    return std::make_unique<portable::NullVideoWindow>();
  }
  Ptr<portable::VideoWindow> attach(HWND, uptr native, Rect& screen) override
  {
    if (native != 11)
      return nullptr;
    screen = {30, 40, 130, 90};
    return std::make_unique<portable::NullVideoWindow>();
  }
  void cursor(portable::CursorShape const*) override {}
  void capture(portable::VideoWindow*) override {}
  void clip(Rect const*) override {}
  void poll(portable::VideoSink&, bool) override {}
  void wait(int) override {}
  void wake() override {}
};

TEST_F(Window, aForeignWindowIsAttachedWithItsPlaceAndLeftByDetach)
{
  ASSERT_TRUE(portable::Core::instance().start(std::make_unique<ForeignVideo>()));
  EXPECT_EQ(attachNativeWindow(12), nullptr);
  HWND const window = attachNativeWindow(11);
  ASSERT_NE(window, nullptr);
  windows().subclass(window, &record);

  EXPECT_TRUE(windows().visible(window));
  EXPECT_EQ(windows().windowRect(window), (Rect{30, 40, 130, 90}));
  portable::Core::instance().resized(window, {200, 60});
  settle();
  EXPECT_EQ(windows().clientRect(window), (Rect{0, 0, 200, 60}));

  detach(window);
  EXPECT_FALSE(windows().isWindow(window));
  EXPECT_EQ(recorder.of(2).size(), 1u);
}

TEST_F(Window, detachLeavesWindowsOfOurOwnAlone)
{
  HWND const window = top({0, 0, 10, 10});
  detach(window);

  EXPECT_TRUE(windows().isWindow(window));
}

TEST_F(Window, theWindowManagersChangesReachTheWindowInTheirTurn)
{
  HWND const window = top({0, 0, 100, 100});
  settle();
  auto& core = portable::Core::instance();

  core.moved(window, {50, 60});
  core.resized(window, {30, 40});
  core.minimized(window, true);
  core.minimized(window, false);
  core.focused(window, false);
  EXPECT_TRUE(recorder.messages.empty());
  drain();

  EXPECT_EQ(windows().windowRect(window), (Rect{50, 60, 80, 100}));
  EXPECT_EQ(recorder.of(3).size(), 1u);
  EXPECT_EQ(recorder.of(5).size(), 3u);
  EXPECT_EQ(core.active(), nullptr);
  EXPECT_EQ(core.focus(), nullptr);
}

}  // namespace
