// Displays that are made, moved and deleted on other threads while the window's thread pumps and paints.
#include "foundation/resource.h"
#include "tests/support/window_driver.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

namespace {

// Runs body on another thread while the hand is busy and the window paints. False: it has not ended in time.
template <class F> bool whilePumping(WindowDriver& driver, F body)
{
  std::promise<void> ended;
  std::future<void> const future = ended.get_future();
  std::thread other([&] {
    body();
    ended.set_value();
  });
  bool done = false;
  auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  for (long i = 0; !done && std::chrono::steady_clock::now() < end; ++i) {
    plat::platform().windows.invalidate(driver.window(), nullptr, true);
    driver.moveTo({20 + i % 50, 30});
    if (i % 7 == 0)
      driver.press({20 + i % 50, 30}).release();
    if (i % 11 == 0)
      driver.resize(150 + i % 40, 120);
    plat::pump(0);
    done = future.wait_for(std::chrono::milliseconds(0)) == std::future_status::ready;
  }
  if (done)
    other.join();
  else
    other.detach();
  return done;
}

ccPelBuffer<unsigned char> ramp(long w, long h)
{
  ccPelBuffer<unsigned char> image(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      image.setPel(x, y, static_cast<unsigned char>(x + y));
  return image;
}

TEST(DisplayThreads, displaysComeAndGoOnAnotherThreadWhileTheWindowPumps)
{
  WindowDriver driver(200, 150);
  driver.dropDisplay();
  constexpr int rounds = 60;
  std::atomic<int> made{0};

  ASSERT_TRUE(whilePumping(driver, [&] {
    for (int i = 0; i < rounds; ++i) {
      ccWin32Display display(driver.window());
      display.image(ramp(60, 40), true);
      display.fit();
      ++made;
    }
  }));

  EXPECT_EQ(made, rounds);
  plat::testing::drain();
  // Nothing of them is left on the window: the default procedure closes it.
  plat::testing::send(driver.window(), 16, 0, 0);
  EXPECT_FALSE(plat::platform().windows.isWindow(driver.window()));
}

TEST(DisplayThreads, aDisplayGoesFromWindowToWindowOnAnotherThread)
{
  WindowDriver driver(200, 150), second(100, 80, 32, 500);
  second.dropDisplay();
  driver.display().image(ramp(60, 40), true);

  ASSERT_TRUE(whilePumping(driver, [&] {
    for (int i = 0; i < 40; ++i)
      driver.display().window(i % 3 == 0 ? second.window() : i % 3 == 1 ? nullptr : driver.window());
    driver.display().window(driver.window());
  }));
  plat::testing::drain();

  EXPECT_EQ(driver.display().window(), driver.window());
}

TEST(DisplayThreads, displaysOnOneWindowDieInAnyOrder)
{
  for (int order = 0; order < 6; ++order) {
    WindowDriver driver(200, 150);
    driver.dropDisplay();
    std::unique_ptr<ccWin32Display> displays[3];
    for (auto& display : displays)
      display = std::make_unique<ccWin32Display>(driver.window());
    int const turns[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
    for (int const i : turns[order]) {
      displays[i].reset();
      driver.moveTo({10 + i, 20}).press({10, 20}).release();
      plat::platform().windows.invalidate(driver.window(), nullptr, true);
      plat::testing::drain();
    }
    plat::testing::send(driver.window(), 16, 0, 0);
    EXPECT_FALSE(plat::platform().windows.isWindow(driver.window())) << order;
  }
}

TEST(DisplayThreads, allDisplaysOfAWindowThatGoesLeaveIt)
{
  WindowDriver driver(200, 150);
  ccWin32Display second(driver.window()), third(driver.window());

  plat::platform().windows.destroy(driver.window());

  EXPECT_EQ(driver.display().window(), nullptr);
  EXPECT_EQ(second.window(), nullptr);
  EXPECT_EQ(third.window(), nullptr);
}

// Leaves its window in a message, and stays in it for a while.
struct InMessage {
  ccEvent left;
  std::atomic<bool> there{false};
};
class Leaver : public ccWin32Display {
public:
  explicit Leaver(InMessage& at) : at_(at) {}
  bool processKeyboardMsg(unsigned, std::uintptr_t, std::intptr_t) override
  {
    InMessage& at = at_;
    at.there = true;
    window(nullptr);
    at.left.set();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    at.there = false;
    return false;
  }

private:
  InMessage& at_;
};

TEST(DisplayThreads, aDisplayThatLeftItsWindowInAMessageIsDeletedAfterTheMessage)
{
  WindowDriver driver(60, 40);
  driver.dropDisplay();
  InMessage at;
  auto display = std::make_unique<Leaver>(at);
  display->window(driver.window());
  bool stillThere = true;
  std::thread other([&] {
    EXPECT_TRUE(at.left.lock(20));
    display.reset();
    stillThere = at.there;
  });

  plat::testing::send(driver.window(), 256, 65, 0);
  other.join();

  EXPECT_FALSE(stillThere);
}

TEST(DisplayThreads, aDisplayGivesItsWindowBackThoughTheApplicationStandsAboveIt)
{
  WindowDriver driver(200, 150);
  static plat::MessageProc below;
  static int seen;
  seen = 0;
  below = plat::platform().windows.subclass(
      driver.window(), [](HWND window, unsigned message, plat::WParam w, plat::LParam l) -> plat::LResult {
        seen += message == 5000;
        return plat::platform().windows.callProc(below, window, message, w, l);
      });

  driver.dropDisplay();
  plat::testing::send(driver.window(), 5000, 0, 0);
  EXPECT_EQ(seen, 1);
  driver.makeDisplay();
  driver.dropDisplay();
  plat::testing::send(driver.window(), 5000, 0, 0);
  EXPECT_EQ(seen, 2);
  plat::testing::send(driver.window(), 16, 0, 0);
  EXPECT_FALSE(plat::platform().windows.isWindow(driver.window()));
}

}  // namespace
