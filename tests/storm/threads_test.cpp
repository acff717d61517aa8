// The storm in several threads: the window's thread pumps messages and plays the operator, while one thread feeds images and
// draws, and another makes displays on windows of their own and deletes them. KRS_LONG makes it a hundred times as long.
#include "backend/win32/win32_display.h"
#include "platform/app.h"
#include "platform/testing.h"
#include "platform/window.h"
#include "tests/storm/script.h"
#include "ui/core/event_processor.h"
#include "ui/core/root.h"
#include "ui/core/shapes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <thread>

namespace {

constexpr int kThreads = 3;

long rounds() { return std::getenv("KRS_LONG") ? 40000 : 400; }

// A filled box; all have one colour, so that their order does not show.
class Box : public ccUIShapes {
public:
  explicit Box(ccVector<2> const& at) : at_(at) {}
  ~Box() override { beginDestruction(); }  // the windows' thread may be drawing it

protected:
  void pos_(ccVector<2> const& v) override { at_ = v; }
  ccVector<2> pos_() override { return at_; }
  void draw_(ccUITablet& canvas, ccColor const&, DrawMode) override
  {
    ccPair<long> const ul = canvas.scopeCoords(absPos());
    canvas.set(ccUIRect(ul, ccPair<long>(7, 5)), ccColor::greenColor(), drawLayer());
  }

private:
  ccVector<2> at_;
};

// Ends the program with the threads' last steps when none of them has come further for a while.
class Watchdog {
public:
  Watchdog() : thread_([this] { run_(); }) {}
  Watchdog(Watchdog const&) = delete;
  Watchdog& operator=(Watchdog const&) = delete;
  ~Watchdog()
  {
    over_ = true;
    thread_.join();
  }
  void at(int thread, char const* step)
  {
    steps_[thread] = step;
    ++count_;
  }

private:
  void run_()
  {
    long last = -1;
    for (int quiet = 0; !over_;) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      long const now = count_;
      quiet = now == last ? quiet + 1 : 0;
      last = now;
      if (quiet < 300)
        continue;
      for (int i = 0; i < kThreads; ++i)
        std::fprintf(stderr, "storm hangs: thread %d at %s\n", i, steps_[i].load());
      std::abort();
    }
  }

  std::atomic<char const*> steps_[kThreads] = {"start", "start", "start"};
  std::atomic<long> count_ = 0;
  std::atomic<bool> over_ = false;
  std::thread thread_;
};

HWND makeWindow(plat::i32 left)
{
  plat::WindowDesc desc;
  desc.title = "storm";
  desc.rect = {left, 3, left + 36, 31};
  HWND const w = plat::platform().windows.create(desc);
  plat::platform().windows.place(w, nullptr, 5);
  return w;
}

class ThreadStorm : public ::testing::Test {
protected:
  ThreadStorm()
  {
    static bool const started = plat::init({plat::InitOptions::headless, 32, {200, 150}});
    (void)started;
    plat::testing::screen({200, 150}, 32);
    for (int i = 0; i < 2; ++i) {
      windows_[i] = makeWindow(i * 45);
      displays_[i] = std::make_unique<ccWin32Display>(windows_[i]);
    }
    plat::testing::drain();
  }
  ~ThreadStorm() override
  {
    for (int i = 0; i < 2; ++i) {
      displays_[i].reset();
      plat::platform().windows.destroy(windows_[i]);
    }
    plat::testing::drain();
  }

  void feed();
  void build();
  void serve(long round, std::mt19937&);
  void expectFullPicture(int i);

  HWND windows_[2] = {};
  std::unique_ptr<ccWin32Display> displays_[2];
  std::atomic<HWND> newest_ = nullptr;  // of those that the third thread makes
  Watchdog dog_;
};

long below(std::mt19937& random, long n)
{
  return static_cast<long>(random() % static_cast<unsigned long>(n));
}

ccPelBuffer<unsigned char> picture(std::mt19937& random)
{
  ccPelBuffer<unsigned char> pels(1 + below(random, 50), 1 + below(random, 40));
  unsigned const seed = static_cast<unsigned>(random());
  for (long y = 0; y < pels.height(); ++y)
    for (long x = 0; x < pels.width(); ++x)
      pels.setPel(x, y, static_cast<unsigned char>(static_cast<unsigned>(x * 3 + y * 5) + seed));
  return pels;
}

void ThreadStorm::feed()
{
  std::mt19937 random(11);
  std::vector<std::unique_ptr<Box>> boxes;
  for (long round = 0; round < rounds(); ++round) {
    ccWin32Display& d = *displays_[below(random, 2)];
    auto const system = static_cast<ccDisplay::CoordinateSystem>(below(random, 3));
    switch (below(random, 8)) {
    case 0:
    case 1:
      dog_.at(1, "image");
      d.image(picture(random), below(random, 2) != 0);
      break;
    case 2:
      dog_.at(1, "zoom");
      d.mag(1 + below(random, 6));
      break;
    case 3:
      dog_.at(1, "pan");
      d.panDelta(ccPair<long>(below(random, 9) - 4, below(random, 9) - 4));
      break;
    case 4:
      dog_.at(1, "add a shape");
      boxes.push_back(std::make_unique<Box>(ccVector<2>(double(below(random, 30)), double(below(random, 20)))));
      d.addShape(boxes.back().get(), system);
      boxes.back()->condVisible(true);
      break;
    case 5:
      dog_.at(1, "move a shape");
      if (!boxes.empty())
        boxes.back()->pos(ccVector<2>(double(below(random, 30)), double(below(random, 20))));
      break;
    case 6:
      dog_.at(1, "delete a shape");
      if (!boxes.empty())
        boxes.erase(boxes.begin() + below(random, static_cast<long>(boxes.size())));
      break;
    default:
      dog_.at(1, "overlay");
      d.enableOverlay(below(random, 2) ? ccDisplay::overlayOn : ccDisplay::overlayOff);
    }
  }
  dog_.at(1, "delete all shapes");
}

void ThreadStorm::build()
{
  std::mt19937 random(12);
  for (long round = 0; round < rounds() / 8; ++round) {
    dog_.at(2, "make a window");
    HWND const w = makeWindow(static_cast<plat::i32>(below(random, 100)));
    newest_ = w;
    {
      dog_.at(2, "make a display");
      ccWin32Display display(w);
      dog_.at(2, "image on the new display");
      display.image(picture(random), true);
      if (below(random, 3) == 0) {
        dog_.at(2, "destroy the window");
        plat::platform().windows.destroy(w);
      }
      dog_.at(2, "image after that");
      display.image(picture(random), true);
      dog_.at(2, "delete the display");
    }
    dog_.at(2, "destroy the window last");
    plat::platform().windows.destroy(w);
  }
}

// What the window's thread does besides pumping.
void ThreadStorm::serve(long round, std::mt19937& random)
{
  int const i = static_cast<int>(below(random, 2));
  plat::Point const at{static_cast<plat::i32>(below(random, 90)), static_cast<plat::i32>(below(random, 34))};
  switch (below(random, 8)) {
  case 0: {
    dog_.at(0, "resize");
    plat::i32 const left = i * 45;
    plat::Rect const r{left, 3, left + 20 + static_cast<plat::i32>(below(random, 20)), 20 + at.y};
    plat::platform().windows.place(windows_[i], &r, -1);
    break;
  }
  case 6: {
    dog_.at(0, "resize another's window");
    plat::Rect const r{at.x, 3, at.x + 1 + at.y, 4 + at.y};
    plat::platform().windows.place(newest_, &r, -1);
    break;
  }
  case 7:
    dog_.at(0, "destroy another's window");
    if (round % 4 == 0)
      plat::platform().windows.destroy(newest_);
    break;
  case 1:
    dog_.at(0, "expose");
    plat::platform().windows.invalidate(windows_[i], nullptr, false);
    break;
  case 2:
    dog_.at(0, "mode");
    displays_[i]->mouseMode(static_cast<ccDisplay::MouseMode>(below(random, 3)));
    break;
  default:
    dog_.at(0, "pointer");
    plat::testing::pointer(at, round % 5 < 3 ? 1 : 0, 0);
  }
  dog_.at(0, "advance");
  plat::testing::advance(20);
}

void ThreadStorm::expectFullPicture(int i)
{
  ccWin32Display& d = *displays_[i];
  d.root()->globalUpdate();
  plat::testing::drain();
  plat::Size size, after;
  auto const shown = plat::testing::shot(windows_[i], size);
  {
    ccLock lock(d.rootMutex());
    d.imageScope().set(ccColor::redColor());
    d.root()->fullDraw(ccUITablet::bothLayers);
  }
  d.root()->globalUpdate();
  plat::platform().windows.invalidate(windows_[i], nullptr, false);
  plat::testing::drain();
  auto const whole = plat::testing::shot(windows_[i], after);
  ASSERT_EQ(size, after);
  long wrong = 0;
  std::size_t first = 0;
  for (std::size_t k = shown.size(); k-- > 0;)
    if (shown[k] != whole[k]) {
      ++wrong;
      first = k;
    }
  EXPECT_EQ(wrong, 0) << "display " << i << " of " << size.w << 'x' << size.h << ", pel " << first << " shows " << std::hex
                      << shown[first] << ", a full repaint " << whole[first];
}

}  // namespace

TEST_F(ThreadStorm, endsWithTheFullPicture)
{
  bool const makesDisplays = cfStormSwitches()[static_cast<std::size_t>(StormGroup::threadDisplays)];
  std::atomic<int> working = 2;
  std::thread feeder([&] {
    feed();
    --working;
  });
  std::thread builder([&] {
    if (makesDisplays)
      build();
    --working;
  });
  std::mt19937 random(13);
  for (long round = 0; working > 0; ++round) {
    serve(round, random);
    plat::pump(0);
  }
  feeder.join();
  builder.join();
  plat::testing::pointer({0, 0}, 0, 0);
  plat::testing::drain();
  expectFullPicture(0);
  expectFullPicture(1);
}
