// What of a window is visible, what must be painted again, and what is presented.
#include "tests/platform/window_fixture.h"

#include "platform/portable/core.h"
#include "platform/portable/null_video.h"
#include "tests/support/memory_watch.h"

#include <atomic>
#include <chrono>
#include <random>
#include <thread>

using namespace plat;
using plat::testing::drain;
using plat::testing::pel;
using portable::Core;
using portable::VisiblePart;

namespace {

using WindowPaint = WindowTest;

struct Job {
  u32 value;
  int calls;
};

// Fills the visible part with a pel value, byte by byte from the lowest.
void fillBody(void* context, VisiblePart const& part)
{
  Job& job = *static_cast<Job*>(context);
  ++job.calls;
  int const bytes = part.backing.depth == 8 ? 1 : part.backing.depth == 24 ? 3 : part.backing.depth == 32 ? 4 : 2;
  for (Rect const& r : part.rects)
    for (i32 y = r.top; y < r.bottom; ++y)
      for (i32 x = r.left; x < r.right; ++x)
        for (int b = 0; b < bytes; ++b)
          part.backing.pels[y * part.backing.pitch + x * bytes + b] = static_cast<u8>(job.value >> (8 * b));
}

bool fill(HWND window, u32 value)
{
  Job job{value, 0};
  bool const painted = portable::paintVisible(window, &job, &fillBody, plat::platform().windows.windowRect(window));
  EXPECT_EQ(job.calls, painted ? 1 : 0);
  return painted;
}

struct Seen {
  std::vector<Rect> rects;
  Point inBacking, onScreen;
  int depth = 0;
};

Seen look(HWND window)
{
  Seen seen;
  portable::paintVisible(
      window, &seen,
      [](void* context, VisiblePart const& part) {
        Seen& to = *static_cast<Seen*>(context);
        to.rects.assign(part.rects.begin(), part.rects.end());
        to.inBacking = part.clientInBacking;
        to.onScreen = part.clientOnScreen;
        to.depth = part.backing.depth;
      },
      Rect{});
  return seen;
}

portable::NullVideoWindow& glass(HWND window)
{
  return static_cast<portable::NullVideoWindow&>(*Core::instance().videoWindow(window));
}

TEST_F(WindowPaint, aLoneWindowIsVisibleAsAWhole)
{
  HWND const window = top({30, 40, 130, 90});
  Seen const seen = look(window);

  EXPECT_EQ(seen.rects, (std::vector<Rect>{{0, 0, 100, 50}}));
  EXPECT_EQ(seen.inBacking, (Point{0, 0}));
  EXPECT_EQ(seen.onScreen, (Point{30, 40}));
  EXPECT_EQ(seen.depth, 32);
}

TEST_F(WindowPaint, nothingIsPaintedOnHiddenMinimizedDeadOrNoWindows)
{
  HWND const hidden = top({0, 0, 50, 50}, 0);
  HWND const minimized = top({0, 0, 50, 50});
  windows().place(minimized, nullptr, 6);
  HWND const dead = top({0, 0, 50, 50});
  windows().destroy(dead);

  EXPECT_FALSE(fill(hidden, 1));
  EXPECT_FALSE(fill(minimized, 1));
  EXPECT_FALSE(fill(dead, 1));
  EXPECT_FALSE(fill(nullptr, 1));
  EXPECT_FALSE(fill(windows().desktop(), 1));
}

TEST_F(WindowPaint, kidsAreCutOutOfTheirParentAndByTheirAncestors)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {60, 60, 140, 90});
  fill(window, 0x111111);
  fill(inner, 0x222222);

  EXPECT_EQ(look(inner).rects, (std::vector<Rect>{{60, 60, 100, 90}}));
  EXPECT_EQ(pel(window, {59, 70}), 0x111111u);
  EXPECT_EQ(pel(window, {60, 60}), 0x222222u);
  EXPECT_EQ(pel(window, {99, 89}), 0x222222u);
  EXPECT_EQ(pel(window, {99, 90}), 0x111111u);
  EXPECT_EQ(pel(inner, {0, 0}), 0x222222u);
}

TEST_F(WindowPaint, aHigherSiblingCoversALowerOneAndTheFirstMadeIsTheHigher)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const first = kid(window, {0, 0, 60, 60});
  HWND const second = kid(window, {40, 40, 100, 100});
  fill(first, 1);
  fill(second, 2);

  EXPECT_EQ(pel(window, {45, 45}), 1u);
  EXPECT_EQ(pel(window, {61, 61}), 2u);
  Core::instance().raiseTopmost(second);
  fill(first, 3);
  EXPECT_EQ(pel(window, {45, 45}), 1u);
  EXPECT_EQ(pel(window, {39, 45}), 3u);
}

TEST_F(WindowPaint, aKidOfAHiddenParentIsNotVisible)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {0, 0, 50, 50});
  HWND const innermost = kid(inner, {0, 0, 20, 20});
  windows().place(inner, nullptr, 0);

  EXPECT_FALSE(windows().visible(innermost));
  EXPECT_FALSE(fill(innermost, 1));
}

// Which window a pel of the top-level window belongs to, found by walking the tree for each pel.
TEST_F(WindowPaint, visiblePartsAgreeWithAWalkForEachPelAndShareNoPel)
{
  std::mt19937 random(7);
  auto const number = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  for (int round = 0; round < 30; ++round) {
    struct Node {
      HWND window;
      int parent;
      Rect rect;  // in the parent
      bool shown;
    };
    std::vector<Node> nodes{{top({0, 0, 64, 48}), -1, {0, 0, 64, 48}, true}};
    for (int i = 0; i < 7; ++i) {
      int const parent = number(0, static_cast<int>(nodes.size()) - 1);
      int const x = number(-8, 50), y = number(-8, 36);
      Rect const rect{x, y, x + number(1, 40), y + number(1, 30)};
      bool const visible = number(0, 4) != 0;
      HWND const window = kid(nodes[static_cast<std::size_t>(parent)].window, rect, visible ? child | shown : child);
      nodes.push_back({window, parent, rect, visible});
    }
    // Earlier siblings lie in front; the deepest window at a place owns it.
    std::function<int(int, int, int)> owner = [&](int node, int x, int y) {
      for (std::size_t k = 1; k < nodes.size(); ++k)
        if (nodes[k].parent == node && nodes[k].shown && x >= nodes[k].rect.left && x < nodes[k].rect.right &&
            y >= nodes[k].rect.top && y < nodes[k].rect.bottom)
          return owner(static_cast<int>(k), x - nodes[k].rect.left, y - nodes[k].rect.top);
      return node;
    };
    std::vector<int> found(64 * 48, -1);
    for (std::size_t k = 0; k < nodes.size(); ++k)
      for (Rect const& r : look(nodes[k].window).rects)
        for (int y = r.top; y < r.bottom; ++y)
          for (int x = r.left; x < r.right; ++x) {
            int& place = found[static_cast<std::size_t>(y * 64 + x)];
            EXPECT_EQ(place, -1);
            place = static_cast<int>(k);
          }
    for (int y = 0; y < 48; ++y)
      for (int x = 0; x < 64; ++x)
        ASSERT_EQ(found[static_cast<std::size_t>(y * 64 + x)], owner(0, x, y)) << round << ": " << x << ", " << y;
    windows().destroy(nodes[0].window);
  }
}

TEST_F(WindowPaint, onlyTheChangedRectangleIsPresentedAndAtOnce)
{
  HWND const window = top({100, 100, 300, 300});
  settle();
  std::uint64_t const before = glass(window).sends();
  Job job{5, 0};

  portable::paintVisible(window, &job, &fillBody, {110, 120, 130, 150});

  EXPECT_EQ(glass(window).sends(), before + 1);
  EXPECT_EQ(glass(window).lastBounds(), (Rect{10, 20, 30, 50}));
}

TEST_F(WindowPaint, theDirtyRectangleIsCutWithTheVisiblePart)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {50, 0, 150, 100});
  settle();
  Job job{5, 0};

  portable::paintVisible(inner, &job, &fillBody, {-1000, 10, 1000, 20});

  EXPECT_EQ(glass(window).lastBounds(), (Rect{50, 10, 100, 20}));
}

TEST_F(WindowPaint, whatAnotherThreadPaintedIsPresentedByTheWindowsThread)
{
  HWND const window = top({0, 0, 100, 100});
  settle();
  std::uint64_t const before = glass(window).sends();
  std::thread other([&] { fill(window, 0x123456); });
  other.join();

  EXPECT_EQ(pel(window, {5, 5}), 0x123456u);
  EXPECT_EQ(glass(window).sends(), before);
  pump(1000);
  EXPECT_EQ(glass(window).sends(), before + 1);
}

TEST_F(WindowPaint, paintingInTheSteadyStateTakesNoMemory)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {10, 10, 50, 50});
  kid(window, {20, 20, 70, 70});
  fill(inner, 1);
  fill(window, 2);
  long const before = MemoryWatch::allocations();

  for (u32 i = 0; i < 10; ++i) {
    fill(inner, i);
    fill(window, i);
  }

  EXPECT_EQ(MemoryWatch::allocations(), before);
}

TEST_F(WindowPaint, anExposedWindowIsPresentedAgainWithoutAPaintMessage)
{
  HWND const window = top({0, 0, 100, 80});
  settle();
  std::uint64_t const before = glass(window).sends();

  Core::instance().exposed(window);
  drain();

  EXPECT_EQ(glass(window).sends(), before + 1);
  EXPECT_EQ(glass(window).lastBounds(), (Rect{0, 0, 100, 80}));
  EXPECT_TRUE(recorder.messages.empty());
}

TEST_F(WindowPaint, aNewWindowGetsTwentyAndFifteenOnce)
{
  HWND const window = top({0, 0, 100, 80});
  recorder.clear();
  drain();

  EXPECT_EQ(recorder.numbersOf(window), (std::vector<unsigned>{20, 15}));
}

TEST_F(WindowPaint, invalidationsJoinAndTheDefaultProcedureValidates)
{
  HWND const window = top({0, 0, 100, 80});
  settle();
  Rect const a{10, 10, 20, 20}, b{50, 30, 60, 200};
  windows().invalidate(window, &a, false);
  windows().invalidate(window, &b, false);

  EXPECT_EQ(windows().updateRect(window), (Rect{10, 10, 60, 80}));
  drain();
  EXPECT_EQ(recorder.numbers(), (std::vector<unsigned>{15}));
  EXPECT_EQ(windows().updateRect(window), Rect{});
}

TEST_F(WindowPaint, validateTakesARectangleOutAndAllCancelsTheErase)
{
  HWND const window = top({0, 0, 100, 80});
  settle();
  Rect const left{0, 0, 50, 80};
  windows().invalidate(window, nullptr, true);
  windows().validate(window, &left);
  EXPECT_EQ(windows().updateRect(window), (Rect{50, 0, 100, 80}));
  windows().validate(window, nullptr);
  drain();
  EXPECT_TRUE(recorder.messages.empty());

  windows().invalidate(window, &left, false);
  drain();
  EXPECT_EQ(recorder.numbers(), (std::vector<unsigned>{15}));
}

TEST_F(WindowPaint, anEraseOfNothingIsNotKeptForLater)
{
  HWND const window = top({0, 0, 100, 80});
  settle();
  Rect const outside{200, 200, 300, 300}, inside{0, 0, 5, 5};
  windows().invalidate(window, &outside, true);
  windows().invalidate(window, &inside, false);
  drain();

  EXPECT_EQ(recorder.numbers(), (std::vector<unsigned>{15}));
}

TEST_F(WindowPaint, updateSendsAtOnceWhatIsDueAndNothingElse)
{
  HWND const window = top({0, 0, 100, 80});
  settle();
  windows().update(window);
  EXPECT_TRUE(recorder.messages.empty());
  windows().postMessage(window, 5001, 0, 0);
  windows().invalidate(window, nullptr, false);

  windows().update(window);

  EXPECT_EQ(recorder.numbers(), (std::vector<unsigned>{15}));
}

TEST_F(WindowPaint, aWindowThatDoesNotValidateIsAskedOncePerRound)
{
  HWND const window = top({0, 0, 100, 80});
  settle();
  recorder.hook = [](Message const& m, LResult&) { return m.number == 15; };
  windows().invalidate(window, nullptr, false);
  pump(0);
  EXPECT_EQ(recorder.of(15).size(), 1u);
  pump(0);
  EXPECT_EQ(recorder.of(15).size(), 2u);
  windows().validate(window, nullptr);
}

TEST_F(WindowPaint, hidingAKidInvalidatesWhatItUncovered)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const upper = kid(window, {10, 10, 50, 50});
  HWND const lower = kid(window, {30, 10, 80, 50});
  settle();

  windows().place(upper, nullptr, 0);

  EXPECT_EQ(windows().updateRect(window), (Rect{10, 10, 30, 50}));
  EXPECT_EQ(windows().updateRect(lower), (Rect{0, 0, 20, 40}));
}

TEST_F(WindowPaint, movingAKidInvalidatesItselfAndWhatItUncovered)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {10, 10, 30, 30});
  settle();
  Rect const place{20, 10, 40, 30};

  windows().place(inner, &place, -1);

  EXPECT_EQ(windows().updateRect(window), (Rect{10, 10, 20, 30}));
  EXPECT_EQ(windows().updateRect(inner), (Rect{0, 0, 20, 20}));
}

TEST_F(WindowPaint, destroyingAKidInvalidatesWhatItUncovered)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {10, 10, 30, 30});
  settle();

  windows().destroy(inner);

  EXPECT_EQ(windows().updateRect(window), (Rect{10, 10, 30, 30}));
}

TEST_F(WindowPaint, hiddenWindowsAreNotInvalidated)
{
  HWND const window = top({0, 0, 100, 100}, 0);
  windows().invalidate(window, nullptr, true);

  EXPECT_EQ(windows().updateRect(window), Rect{});
}

TEST_F(WindowPaint, aResizedTopLevelWindowKeepsItsPelsAndIsPaintedAgain)
{
  HWND const window = top({0, 0, 40, 40});
  settle();
  fill(window, 0x777777);
  Rect const place{0, 0, 60, 30};

  windows().place(window, &place, -1);

  EXPECT_EQ(pel(window, {39, 29}), 0x777777u);
  EXPECT_EQ(pel(window, {40, 29}), 0u);
  EXPECT_EQ(windows().updateRect(window), (Rect{0, 0, 60, 30}));
  EXPECT_TRUE(fill(window, 0x888888));
  EXPECT_EQ(pel(window, {59, 29}), 0x888888u);
}

TEST_F(WindowPaint, pelsOutsideTheClientAreaReadZero)
{
  HWND const window = top({0, 0, 40, 40});
  fill(window, 0xffffff);

  EXPECT_EQ(pel(window, {40, 0}), 0u);
  EXPECT_EQ(pel(window, {0, -1}), 0u);
  EXPECT_EQ(pel(nullptr, {0, 0}), 0u);
}

TEST_F(WindowPaint, aShotHoldsTheClientAreaRowByRowWithTheKidsOnIt)
{
  HWND const window = top({0, 0, 3, 2});
  HWND const inner = kid(window, {1, 0, 2, 1});
  fill(window, 5);
  fill(inner, 6);
  Size size;

  EXPECT_EQ(plat::testing::shot(window, size), (std::vector<u32>{5, 6, 5, 5, 5, 5}));
  EXPECT_EQ(size, (Size{3, 2}));
}

struct DepthCase {
  int depth;
  u32 pelValue, rgb;
};

// Five and six bits are widened by zeros below.
TEST(WindowDepth, backingsStandInTheScreensDepthAndReadBackAsColours)
{
  DepthCase const cases[] = {
      {15, 0x7C00 | 0x0200 | 0x0001, 0xF88008}, {16, 0xF800 | 0x0400 | 0x0001, 0xF88008},
      {24, 0x123456, 0x123456},                 {32, 0xAA123456, 0x123456},
      {8, 251, 0xFFFF00},                       {8, 1, 0x800000},
  };
  for (DepthCase const& c : cases) {
    InitOptions options;
    options.video = InitOptions::headless;
    options.depth = c.depth;
    ASSERT_TRUE(init(options)) << c.depth;
    WindowSystem& windows = platform().windows;
    WindowDesc desc;
    desc.rect = {0, 0, 7, 5};
    desc.style = 0x10000000;
    HWND const window = windows.create(desc);
    EXPECT_EQ(windows.desktopDepth(), c.depth);
    EXPECT_EQ(look(window).depth, c.depth);
    fill(window, c.pelValue);
    EXPECT_EQ(pel(window, {6, 4}), c.rgb) << c.depth;
    windows.destroy(window);
  }
}

class WindowPalette : public WindowTest {
protected:
  WindowPalette() : WindowTest(8) {}
};

TEST_F(WindowPalette, theTwentyFixedColoursStandAtBothEnds)
{
  auto const palette = portable::screenPalette();

  EXPECT_EQ(palette[0], (PaletteEntry{0, 0, 0, 0}));
  EXPECT_EQ(palette[7], (PaletteEntry{192, 192, 192, 0}));
  EXPECT_EQ(palette[9], (PaletteEntry{166, 202, 240, 0}));
  EXPECT_EQ(palette[246], (PaletteEntry{255, 251, 240, 0}));
  EXPECT_EQ(palette[249], (PaletteEntry{255, 0, 0, 0}));
  EXPECT_EQ(palette[255], (PaletteEntry{255, 255, 255, 0}));
}

TEST_F(WindowPalette, realizingWritesTheMiddleEntriesPresentsAllAndTellsTheOthers)
{
  HWND const one = top({0, 0, 10, 10});
  HWND const other = top({0, 0, 10, 10});
  HWND const inner = kid(one, {0, 0, 5, 5});
  settle();
  std::uint64_t const sends = glass(other).sends();
  std::vector<PaletteEntry> colors(256, PaletteEntry{1, 2, 3, 4});

  EXPECT_EQ(portable::writeScreenPalette(inner, colors), 236u);

  auto const palette = portable::screenPalette();
  EXPECT_EQ(palette[9], (PaletteEntry{166, 202, 240, 0}));
  EXPECT_EQ(palette[10], (PaletteEntry{1, 2, 3, 0}));
  EXPECT_EQ(palette[245], (PaletteEntry{1, 2, 3, 0}));
  EXPECT_EQ(palette[246], (PaletteEntry{255, 251, 240, 0}));
  EXPECT_EQ(glass(other).sends(), sends + 1);
  EXPECT_TRUE(recorder.messages.empty());
  drain();
  ASSERT_EQ(recorder.numbers(), (std::vector<unsigned>{785}));
  EXPECT_EQ(recorder.messages[0].window, other);
  EXPECT_EQ(recorder.messages[0].wParam, reinterpret_cast<WParam>(inner));
  recorder.clear();

  EXPECT_EQ(portable::writeScreenPalette(inner, colors), 0u);
  drain();
  EXPECT_TRUE(recorder.messages.empty());
}

// Each of two windows with colours of its own would take the screen from the other for ever.
TEST_F(WindowPalette, whoeverAnswersAChangeMakesDoWithIt)
{
  static std::vector<PaletteEntry> const own(256, PaletteEntry{7, 8, 9, 0});
  static unsigned differ = 0;
  HWND const one = top({0, 0, 10, 10});
  HWND const other = top({0, 0, 10, 10});
  windows().subclass(other, [](HWND w, unsigned message, WParam, LParam) -> LResult {
    if (message == 785)
      differ = portable::writeScreenPalette(w, own);
    return 0;
  });
  settle();

  EXPECT_EQ(portable::writeScreenPalette(one, std::vector<PaletteEntry>(256, PaletteEntry{1, 2, 3, 0})), 236u);
  drain();

  EXPECT_EQ(differ, 236u);
  EXPECT_EQ(portable::screenPalette()[10], (PaletteEntry{1, 2, 3, 0}));
  EXPECT_EQ(portable::writeScreenPalette(other, own), 236u);
  EXPECT_EQ(portable::screenPalette()[10], (PaletteEntry{7, 8, 9, 0}));
}

TEST_F(WindowPalette, activationAsksForThePalette)
{
  HWND const window = top({0, 0, 10, 10});

  ASSERT_EQ(recorder.of(783).size(), 1u);
  EXPECT_EQ(recorder.of(783)[0].window, window);
}

TEST_F(WindowPaint, thereIsNoPaletteToRealizeAtOtherDepths)
{
  HWND const window = top({0, 0, 10, 10});
  std::vector<PaletteEntry> colors(256, PaletteEntry{1, 2, 3, 0});

  EXPECT_EQ(portable::writeScreenPalette(window, colors), 0u);
}

// A screen that lends the memory it shows.
class LendingWindow final : public portable::VideoWindow {
public:
  void show(bool, bool) override {}
  void minimize(bool) override {}
  void raise() override {}
  void place(Rect const&) override {}
  portable::PelBlock lend(Size size, int depth) override
  {
    memory.assign(static_cast<std::size_t>(size.w * size.h), 0);
    return {reinterpret_cast<u8*>(memory.data()), size.w, size.h, size.w * 4, depth};
  }
  void copy(portable::PelBlock const&, std::span<Rect const>) override { ++copies; }
  void send(std::span<Rect const>) override { ++sends; }

  static inline std::vector<u32> memory;
  static inline int copies = 0, sends = 0;
};

TEST_F(WindowPaint, lentMemoryIsDrawnIntoDirectlyAndKeepsItsPelsWhenTheSizeChanges)
{
  LendingWindow::copies = LendingWindow::sends = 0;
  HWND const window =
      Core::instance().adopt([](HWND, Rect& screen) -> Ptr<portable::VideoWindow> {
        screen = {0, 0, 4, 2};
        return std::make_unique<LendingWindow>();
      });
  fill(window, 9);
  EXPECT_EQ(LendingWindow::memory, (std::vector<u32>(8, 9)));
  Core::instance().resized(window, {3, 3});
  drain();

  EXPECT_EQ(LendingWindow::memory, (std::vector<u32>{9, 9, 9, 9, 9, 9, 0, 0, 0}));
  EXPECT_EQ(LendingWindow::copies, 0);
  EXPECT_GE(LendingWindow::sends, 2);
  detach(window);
}

// The painter has found the visible part and waits for the pels; before it is its turn a kid covers some of them.
TEST_F(WindowPaint, aPainterWhoseTurnComesAfterAChangeSeesTheNewVisiblePart)
{
  HWND const window = top({0, 0, 100, 100});
  HWND const inner = kid(window, {0, 0, 40, 40}, child);
  struct Scene {
    HWND window, inner;
    std::thread other;
    std::atomic<bool> about = false;
  } scene;
  scene.window = window;
  scene.inner = inner;
  portable::paintVisible(
      window, &scene,
      [](void* context, VisiblePart const&) {
        Scene& s = *static_cast<Scene*>(context);
        s.other = std::thread([&s] {
          s.about = true;
          fill(s.window, 0x55);
        });
        while (!s.about)
          std::this_thread::yield();
        for (auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(20);
             std::chrono::steady_clock::now() < end;)
          std::this_thread::yield();
        plat::platform().windows.place(s.inner, nullptr, 4);
      },
      Rect{});
  scene.other.join();

  EXPECT_EQ(pel(window, {39, 39}), 0u);
  EXPECT_EQ(pel(window, {40, 40}), 0x55u);
}

TEST_F(WindowPaint, paintersOfOtherThreadsGetAlongWithATreeThatChanges)
{
  HWND const window = top({0, 0, 64, 64});
  HWND const inner = kid(window, {0, 0, 32, 32});
  std::atomic<bool> stop = false;
  std::atomic<int> painted = 0;
  std::thread other([&] {
    while (!stop) {
      Job job{7, 0};
      portable::paintVisible(inner, &job, &fillBody, {0, 0, 64, 64});
      painted += job.calls;
    }
  });
  for (int i = 0; i < 300 || painted < 10; ++i) {
    Rect const outer{0, 0, 64 + i % 9, 64 + i % 5}, place{i % 40, i % 30, i % 40 + 20, i % 30 + 20};
    windows().place(window, &outer, -1);
    windows().place(inner, &place, -1);
    pump(0);
  }
  stop = true;
  other.join();
  drain();

  EXPECT_GE(painted, 10);
}

}  // namespace
