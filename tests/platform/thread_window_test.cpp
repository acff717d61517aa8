// Windows and other threads: what is handed over, and how a sender's wait ends when there is nobody to answer.
#include "tests/platform/window_fixture.h"

#include "foundation/lock_check.h"
#include "foundation/resource.h"
#include "platform/portable/windows/core.h"
#include "platform/portable/windows/null_video.h"

#include <atomic>
#include <future>
#include <stdexcept>
#include <thread>

using namespace plat;
using plat::testing::drain;

namespace {

using WindowThreads = WindowTest;

// Runs body on another thread and pumps until it has ended. False: it has not ended in time.
template <class F> bool besidePump(F body)
{
  std::promise<void> ended;
  std::future<void> const future = ended.get_future();
  std::thread other([&] {
    body();
    ended.set_value();
  });
  bool done = false;
  for (int i = 0; i < 4000 && !done; ++i) {
    pump(1);
    done = future.wait_for(std::chrono::milliseconds(0)) == std::future_status::ready;
  }
  if (done)
    other.join();
  else
    other.detach();
  return done;
}

TEST_F(WindowThreads, whatAProcedureThrowsReachesItsSenderOnAnotherThread)
{
  HWND const window = top({0, 0, 10, 10});
  recorder.hook = [](Message const& m, LResult&) {
    if (m.number == 5000)
      throw std::runtime_error("from the procedure");
    return false;
  };
  std::string what;

  ASSERT_TRUE(besidePump([&] {
    try {
      windows().send(window, 5000, 0, 0);
    } catch (std::runtime_error const& e) {
      what = e.what();
    }
  }));

  EXPECT_EQ(what, "from the procedure");
}

// Sends from another thread while nothing pumps, lets end happen, and sees what the sender gets.
LResult answerAfter(HWND window, std::function<void()> const& end, bool& ended)
{
  std::promise<LResult> answer;
  std::future<LResult> future = answer.get_future();
  std::thread other([&answer, window] { answer.set_value(platform().windows.send(window, 5000, 0, 0)); });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  end();
  ended = future.wait_for(std::chrono::seconds(4)) == std::future_status::ready;
  if (!ended)
    drain();  // lets it go, so that the test can fail
  other.join();
  return future.get();
}

TEST_F(WindowThreads, aSenderIsLetGoWhenTheLoopIsTold)
{
  HWND const window = top({0, 0, 10, 10});
  recorder.hook = [](Message const& m, LResult& answer) {
    answer = 7;
    return m.number == 5000;
  };
  bool ended = false;

  EXPECT_EQ(answerAfter(window, [] { drain(); }, ended), 7);
  EXPECT_TRUE(ended);
  EXPECT_EQ(answerAfter(window, [] { quit(0); }, ended), 0);
  EXPECT_TRUE(ended);
  // After quit nobody pumps, so nobody waits either.
  EXPECT_EQ(answerAfter(window, [] {}, ended), 0);
  EXPECT_TRUE(ended);
  EXPECT_EQ(run(), 0);
  // The loop has returned.
  EXPECT_EQ(answerAfter(window, [] {}, ended), 0);
  EXPECT_TRUE(ended);
  drain();
  EXPECT_EQ(answerAfter(window, [] { drain(); }, ended), 7);
}

TEST_F(WindowThreads, otherCallsThatWaitEndWithTheLoopToo)
{
  HWND const window = top({0, 0, 10, 10});
  quit(3);
  WindowDesc desc;
  desc.style = shown;
  desc.proc = &record;
  std::thread([&] {
    EXPECT_EQ(windows().create(desc), nullptr);
    EXPECT_FALSE(windows().destroy(window));
    EXPECT_EQ(platform().menus.messageBox(window, "text", "caption", 1), 0);
    platform().menus.track(nullptr, {}, window);
  }).join();

  EXPECT_EQ(run(), 3);
  EXPECT_TRUE(windows().isWindow(window));
}

TEST_F(WindowThreads, aSenderIsLetGoWhenTheWindowsThreadEnds)
{
  HWND window = {};
  std::thread ui([&] {
    portable::Core& core = portable::Core::instance();
    InitOptions options;
    options.video = InitOptions::headless;
    options.screen = {800, 600};
    ASSERT_TRUE(init(options));
    window = top({0, 0, 10, 10});
    std::thread sender([&] { EXPECT_EQ(core.send(window, 5000, 0, 0), 0); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    sender.detach();
  });
  ui.join();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));

  // The part is free again; the next thread that pumps takes it.
  drain();
  EXPECT_TRUE(windows().onOwnThread(window));
}

TEST_F(WindowThreads, aSenderIsLetGoWhenAllIsStartedAnew)
{
  std::promise<bool> answer;
  std::future<bool> future = answer.get_future();
  std::thread other([&] { answer.set_value(portable::Core::instance().callOnUi([] {})); });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  InitOptions options;
  options.video = InitOptions::headless;
  options.screen = {800, 600};
  ASSERT_TRUE(init(options));
  bool const ended = future.wait_for(std::chrono::seconds(4)) == std::future_status::ready;
  if (!ended)
    drain();
  other.join();

  EXPECT_TRUE(ended);
  EXPECT_FALSE(future.get());
}

TEST_F(WindowThreads, captureFocusAndCursorAreAskedForWithoutAWait)
{
  HWND const window = top({0, 0, 50, 50}), second = top({0, 0, 50, 50});
  portable::Core& core = portable::Core::instance();
  windows().setFocus(second);
  settle();

  std::thread([&] {
    windows().setCapture(window);
    windows().setFocus(window);
    windows().clipCursor(nullptr);
    windows().update(window);
  }).join();
  EXPECT_EQ(core.capture(), nullptr);
  drain();
  EXPECT_EQ(core.capture(), window);
  EXPECT_EQ(core.focus(), window);

  // A release from another thread is of what was captured when it was asked for.
  std::thread([&] { windows().releaseCapture(); }).join();
  windows().setCapture(second);
  drain();
  EXPECT_EQ(core.capture(), second);
  std::thread([&] { windows().releaseCapture(); }).join();
  drain();
  EXPECT_EQ(core.capture(), nullptr);
}

TEST_F(WindowThreads, aHiddenWindowWithoutProcedureNeedsNobody)
{
  WindowDesc desc;
  desc.rect = {0, 0, 10, 10};
  std::thread([&] {
    HWND const made = windows().create(desc);
    EXPECT_TRUE(windows().isWindow(made));
    EXPECT_TRUE(windows().destroy(made));
    EXPECT_FALSE(windows().isWindow(made));
  }).join();
}

TEST_F(WindowThreads, waitingForTheWindowsThreadUnderARootsMutexIsFound)
{
  if (!cc_LockCheck::on)
    GTEST_SKIP() << "locks are not watched in this build";
  static std::atomic<int> faults;
  faults = 0;
  auto const former = cc_LockCheck::handler([](char const*) { ++faults; });
  HWND const window = top({0, 0, 10, 10});
  ASSERT_TRUE(besidePump([&] {
    ccMutex root(cc_LockRank::root);
    ccLock lock(root);
    windows().send(window, 5000, 0, 0);
  }));
  EXPECT_EQ(faults, 1);
  // A lock of the application that procedures take too.
  ccMutex mine;
  recorder.hook = [&](Message const& m, LResult&) {
    if (m.number == 5001)
      ccLock const lock(mine);
    return false;
  };
  windows().send(window, 5001, 0, 0);
  ASSERT_TRUE(besidePump([&] {
    ccLock lock(mine);
    windows().send(window, 5002, 0, 0);
  }));
  cc_LockCheck::handler(former);

  EXPECT_EQ(faults, 2);
}

}  // namespace
