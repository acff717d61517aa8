// Surfaces and painters on windows of the core: blits through a clipper, device contexts, what menus and boxes paint.
#include "tests/platform/window_fixture.h"

#include "platform/objects.h"
#include "platform/paint.h"
#include "platform/portable/windows/core.h"
#include "platform/portable/windows/null_video.h"
#include "platform/surface.h"

#include <thread>

using namespace plat;
using plat::testing::drain;
using plat::testing::pel;
using portable::Core;

namespace {

constexpr u32 waitFlag = 0x1000000, fillFlag = 0x400;

// A device with primary surface and clipper for one window.
struct Screen {
  explicit Screen(HWND window)
  {
    EXPECT_EQ(openDevice(window, device), 0);
    SurfaceDesc desc;
    desc.valid = 1;
    desc.caps = 0x200;
    EXPECT_EQ(device->createSurface(desc, primary), 0);
    EXPECT_EQ(device->createClipper(clipper), 0);
    EXPECT_EQ(clipper->window(window), 0);
    EXPECT_EQ(primary->setClipper(clipper.get()), 0);
  }

  // A surface of the screen's format, filled.
  Ptr<Surface> filled(u32 width, u32 height, u32 value)
  {
    SurfaceDesc desc;
    desc.valid = 1 | 2 | 4;
    desc.caps = 0x40;
    desc.width = width;
    desc.height = height;
    Ptr<Surface> surface;
    EXPECT_EQ(device->createSurface(desc, surface), 0);
    EXPECT_EQ(surface->blt(nullptr, nullptr, nullptr, fillFlag | waitFlag, value), 0);
    return surface;
  }

  Ptr<DisplayDevice> device;
  Ptr<Surface> primary;
  Ptr<Clipper> clipper;
};

class WindowDrawing : public WindowTest {
protected:
  WindowDrawing() : window_(top({100, 50, 300, 200})) { settle(); }

  portable::NullVideoWindow& glass()
  {
    return static_cast<portable::NullVideoWindow&>(*Core::instance().videoWindow(window_));
  }

  HWND window_;
};

TEST_F(WindowDrawing, aBlitToThePrimaryLandsInTheWindowUnderTheScreenRectangle)
{
  Screen screen(window_);
  Ptr<Surface> const picture = screen.filled(20, 10, 0x112233);
  Rect const place{110, 60, 130, 70};

  EXPECT_EQ(screen.primary->blt(&place, picture.get(), nullptr, waitFlag, 0), 0);

  EXPECT_EQ(pel(window_, {10, 10}), 0x112233u);
  EXPECT_EQ(pel(window_, {29, 19}), 0x112233u);
  EXPECT_EQ(pel(window_, {30, 19}), 0u);
  EXPECT_EQ(pel(window_, {9, 10}), 0u);
  EXPECT_EQ(glass().lastBounds(), (Rect{10, 10, 30, 20}));
}

TEST_F(WindowDrawing, aBlitIsCutByKidsOfTheClippersWindow)
{
  HWND const inner = kid(window_, {15, 0, 25, 150});
  Screen screen(window_);
  Ptr<Surface> const picture = screen.filled(40, 10, 0x112233);
  Rect const place{100, 50, 140, 60};

  EXPECT_EQ(screen.primary->blt(&place, picture.get(), nullptr, waitFlag, 0), 0);

  EXPECT_EQ(pel(window_, {14, 5}), 0x112233u);
  EXPECT_EQ(pel(inner, {0, 5}), 0u);
  EXPECT_EQ(pel(window_, {25, 5}), 0x112233u);
}

TEST_F(WindowDrawing, aBlitAfterAMoveFollowsTheWindow)
{
  Screen screen(window_);
  Ptr<Surface> const picture = screen.filled(4, 4, 0x445566);
  Rect const moved{400, 300, 600, 450}, place{400, 300, 404, 304};
  windows().place(window_, &moved, -1);

  EXPECT_EQ(screen.primary->blt(&place, picture.get(), nullptr, waitFlag, 0), 0);

  EXPECT_EQ(pel(window_, {0, 0}), 0x445566u);
  EXPECT_EQ(pel(window_, {3, 3}), 0x445566u);
}

TEST_F(WindowDrawing, aBlitFromAnotherThreadIsPresentedByThePump)
{
  Screen screen(window_);
  Ptr<Surface> const picture = screen.filled(20, 10, 0x778899);
  std::uint64_t const before = glass().sends();
  std::thread other([&] {
    Rect const place{100, 50, 120, 60};
    EXPECT_EQ(screen.primary->blt(&place, picture.get(), nullptr, waitFlag, 0), 0);
  });
  other.join();
  EXPECT_EQ(glass().sends(), before);
  pump(1000);

  EXPECT_EQ(glass().sends(), before + 1);
  EXPECT_EQ(pel(window_, {5, 5}), 0x778899u);
}

TEST_F(WindowDrawing, aDeviceContextPaintsInClientCoordinatesAndIsPresentedOnRelease)
{
  HWND const inner = kid(window_, {50, 40, 100, 90});
  drain();
  std::uint64_t const before = glass().sends();

  HDC const dc = windows().getDC(inner);
  ASSERT_NE(painter(dc), nullptr);
  painter(dc)->fillRect({0, 0, 10, 5}, 0x0000ff);
  painter(dc)->fillRect({45, 45, 500, 500}, 0x00ff00);
  windows().releaseDC(inner, dc);

  EXPECT_EQ(pel(window_, {50, 40}), 0xff0000u);
  EXPECT_EQ(pel(window_, {60, 40}), 0u);
  EXPECT_EQ(pel(inner, {49, 49}), 0x00ff00u);
  EXPECT_EQ(pel(window_, {100, 90}), 0u);
  EXPECT_EQ(painter(dc), nullptr);
  EXPECT_EQ(glass().sends(), before + 1);
}

TEST_F(WindowDrawing, theEraseMessageBringsADeviceContext)
{
  recorder.hook = [&](Message const& m, LResult& answer) {
    if (m.number != 20)
      return false;
    Painter* const paint = painter(reinterpret_cast<HDC>(m.wParam));
    EXPECT_NE(paint, nullptr);
    if (paint)
      paint->fillRect({0, 0, 200, 150}, 0xaa0000);
    answer = 1;
    return true;
  };
  windows().invalidate(window_, nullptr, true);
  drain();

  EXPECT_EQ(pel(window_, {199, 149}), 0x0000aau);
}

TEST_F(WindowDrawing, thePlatformGivesAllItsParts)
{
  Platform& all = platform();

  EXPECT_EQ(&all.resources, &builtInResources());
  EXPECT_EQ(all.objects.systemEntries().size(), 256u);
}

// The rectangle around all pels of a colour, from a row on.
Rect around(HWND window, u32 color, i32 firstRow = 0)
{
  Size size;
  std::vector<u32> const pels = plat::testing::shot(window, size);
  Rect all{size.w, size.h, 0, 0};
  for (i32 y = firstRow; y < size.h; ++y)
    for (i32 x = 0; x < size.w; ++x)
      if (pels[static_cast<std::size_t>(y * size.w + x)] == color)
        all = {std::min(all.left, x), std::min(all.top, y), std::max(all.right, x + 1), std::max(all.bottom, y + 1)};
  return all;
}

TEST_F(WindowDrawing, anOpenMenuShowsItsTextsAndMarksTheItemUnderThePointer)
{
  Rect const big{0, 0, 400, 400};
  windows().place(window_, &big, -1);
  drain();
  HMENU const menu = platform().menus.load(628), tools = platform().menus.sub(menu, 1);
  platform().menus.enable(tools, 40503, false);
  u32 const hot = 0x003080, face = 0xf0f0f0, ink = 0x000000, faint = 0x909090;
  windows().post(window_, [&] {
    plat::testing::pointer({40, 30 + 2 + 50}, 0, 0);  // the third item
    drain();
    Rect const marked = around(window_, hot);
    EXPECT_EQ(marked.top, 30 + 2 + 40);
    EXPECT_EQ(marked.bottom, 30 + 2 + 60);
    EXPECT_EQ(marked.left, 32);
    EXPECT_EQ(around(window_, face).top, 31);
    EXPECT_LT(around(window_, ink).top, 30 + 2 + 20);  // the first item's text
    Rect const grey = around(window_, faint);           // the disabled one and the lines
    EXPECT_GE(grey.top, 30 + 2 + 20);
    EXPECT_LT(grey.top, 30 + 2 + 40);
    recorder.clear();
    plat::testing::key(27, true, 0);
  });
  platform().menus.track(tools, {30, 30}, window_);
  platform().menus.destroy(menu);

  EXPECT_EQ(recorder.numbersOf(window_), (std::vector<unsigned>{20, 15}));  // of what the menu had covered
}

TEST_F(WindowDrawing, aBoxStandsInTheMiddleWithItsButtonsAndAnswersAClick)
{
  Rect const big{0, 0, 500, 400};
  windows().place(window_, &big, -1);
  drain();
  u32 const caption = 0x003080, buttonFace = 0xffffff;
  windows().post(window_, [&] {
    drain();
    Rect const bar = around(window_, caption);
    EXPECT_LE(std::abs(bar.left + bar.right - 500), 1);
    Rect const buttons = around(window_, buttonFace, bar.top + 22);  // the text of the caption is white too
    EXPECT_EQ(buttons.height(), 22);
    // Two buttons of 76 with 8 between them; the right one is Cancel.
    Point const cancel{(bar.left + bar.right) / 2 + 4 + 38, buttons.bottom - 5};
    plat::testing::pointer(cancel, 1, 0);
    plat::testing::pointer(cancel, 0, 0);
  });

  EXPECT_EQ(platform().menus.messageBox(window_, "Proceed?", "krsdisp", 1), 2);
}

TEST_F(WindowDrawing, aButtonThatIsLeftBeforeTheReleaseDoesNotAnswer)
{
  Rect const big{0, 0, 500, 400};
  windows().place(window_, &big, -1);
  drain();
  windows().post(window_, [&] {
    drain();
    Rect const bar = around(window_, 0x003080);
    int const y = around(window_, 0xffffff).bottom - 5, middle = (bar.left + bar.right) / 2;
    plat::testing::pointer({middle - 20, y}, 1, 0);
    plat::testing::pointer({middle - 20, 5}, 1, 0);
    plat::testing::pointer({middle - 20, 5}, 0, 0);
    plat::testing::key(27, true, 0);
  });

  EXPECT_EQ(platform().menus.messageBox(window_, "Well", "krsdisp", 1), 2);
}

TEST_F(WindowDrawing, aBoxIsMovedByItsCaption)
{
  Rect const big{0, 0, 500, 400};
  windows().place(window_, &big, -1);
  drain();
  plat::testing::answerBox(1, [&] {
    Rect const before = around(window_, 0x003080);
    Point const grip{before.left + 5, before.top + 5};
    plat::testing::pointer(grip, 1, 0);
    plat::testing::pointer({grip.x - 30, grip.y - 40}, 1, 0);
    plat::testing::pointer({grip.x - 30, grip.y - 40}, 0, 0);
    drain();
    Rect const after = around(Core::instance().focus(), 0x003080);
    EXPECT_EQ(windows().clientToScreen(Core::instance().focus(), {after.left, after.top}),
              (Point{before.left - 30, before.top - 40}));
  });

  EXPECT_EQ(platform().menus.messageBox(window_, "Move me", "krsdisp", 0), 1);
}

}  // namespace
