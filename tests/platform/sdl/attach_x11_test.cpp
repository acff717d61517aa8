// Windows of ours inside windows that were made with plain Xlib, as a host of another toolkit makes them.
#include "tests/platform/sdl/sdl_fixture.h"

#include <SDL.h>

using namespace plat;
using xserver::tool;

namespace {

LParam at(i32 x, i32 y)
{
  return static_cast<LParam>(u32{static_cast<std::uint16_t>(y)} << 16 | static_cast<std::uint16_t>(x));
}

class AttachX11 : public ScreenTest {
protected:
  static constexpr unsigned long ownColor = 0x405060;

  AttachX11() : owner(xserver::makeWindow({200, 150, 440, 330}, ownColor)), window(attachNativeWindow(owner))
  {
    windows().subclass(window, &record);
    settle();
  }

  ~AttachX11() override
  {
    detach(window);
    if (xserver::isWindow(owner))
      xserver::destroyWindow(owner);
  }

  xserver::Id owner;
  HWND window;
};

}  // namespace

TEST_F(AttachX11, coversItsOwnerAndShowsPels)
{
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(windows().clientRect(window), (Rect{0, 0, 240, 180}));
  EXPECT_EQ(windows().clientToScreen(window, {}), (Point{200, 150}));
  EXPECT_TRUE(windows().visible(window));
  EXPECT_EQ(windows().parent(window), nullptr);

  pattern(window);

  EXPECT_TRUE(comes([this] { return screenShows(window); }));
}

TEST_F(AttachX11, itsFirstPictureIsAskedForByMessage15)
{
  windows().invalidate(window, nullptr, false);

  EXPECT_TRUE(comes(15));
}

TEST_F(AttachX11, followsTheSizeOfItsOwner)
{
  xserver::moveWindow(owner, {200, 150, 520, 400});

  ASSERT_TRUE(comes([] { return !recorder.of(5).empty() && recorder.of(5).back().lParam == at(320, 250); }));
  pattern(window);
  EXPECT_TRUE(comes([this] { return screenShows(window); }));
  EXPECT_NE(xserver::grab({519, 399, 520, 400})[0], ownColor);

  xserver::moveWindow(owner, {200, 150, 280, 210});
  ASSERT_TRUE(comes([] { return recorder.of(5).back().lParam == at(80, 60); }));
  pattern(window);
  EXPECT_TRUE(comes([this] { return screenShows(window); }));
}

TEST_F(AttachX11, followsThePlaceOfItsOwner)
{
  xserver::moveWindow(owner, {20, 30, 260, 210});

  EXPECT_TRUE(comes([this] { return windows().clientToScreen(window, {}) == Point{20, 30}; }));
  tool({"mousemove", "50", "70"});
  ASSERT_TRUE(comes(512));
  EXPECT_EQ(recorder.of(512).back().lParam, at(30, 40));
}

TEST_F(AttachX11, hasThePointer)
{
  tool({"mousemove", "210", "170", "mousedown", "1", "mousemove", "230", "171", "mouseup", "1", "click", "4"});

  ASSERT_TRUE(comes(522));
  ASSERT_EQ(recorder.of(513).size(), 1u);
  EXPECT_EQ(recorder.of(513)[0].lParam, at(10, 20));
  ASSERT_EQ(recorder.of(514).size(), 1u);
  EXPECT_EQ(recorder.of(514)[0].lParam, at(30, 21));
}

TEST_F(AttachX11, hasTheKeysOfItsOwnerWhileThePointerIsInIt)
{
  xserver::focusWindow(owner);
  tool({"mousemove", "210", "170"});
  ASSERT_TRUE(comes(512));
  tool({"type", "--delay", "1", "aB"});

  ASSERT_TRUE(comes([] { return recorder.of(258).size() == 2; }));
  EXPECT_EQ(recorder.of(258)[0].wParam, WParam{'a'});
  EXPECT_EQ(recorder.of(258)[1].wParam, WParam{'B'});
  EXPECT_EQ(recorder.of(256)[0].wParam, WParam{'A'});

  settle();
  tool({"mousemove", "900", "700", "key", "c"});
  settle();
  EXPECT_TRUE(recorder.of(256).empty());
}

TEST_F(AttachX11, whatWasCoveredIsShownAgainWithoutMessage15)
{
  pattern(window);
  ASSERT_TRUE(comes([this] { return screenShows(window); }));
  settle();
  xserver::Id const cover = xserver::makeWindow({220, 160, 300, 250}, 0xFF00FF);
  ASSERT_FALSE(screenShows(window));

  xserver::destroyWindow(cover);

  EXPECT_TRUE(comes([this] { return screenShows(window); }));
  EXPECT_TRUE(recorder.of(15).empty());
}

TEST_F(AttachX11, detachLeavesTheOwner)
{
  detach(window);

  EXPECT_FALSE(windows().isWindow(window));
  EXPECT_TRUE(xserver::isWindow(owner));
  EXPECT_TRUE(comes([] { return xserver::grab({300, 200, 301, 201})[0] == ownColor; }));
}

TEST_F(AttachX11, canBeAttachedAgain)
{
  detach(window);
  window = attachNativeWindow(owner);
  ASSERT_NE(window, nullptr);

  pattern(window);
  EXPECT_TRUE(comes([this] { return screenShows(window); }));
}

TEST_F(AttachX11, endsWithItsOwner)
{
  pattern(window);

  xserver::destroyWindow(owner);

  EXPECT_TRUE(comes([this] { return !windows().isWindow(window); }));
  EXPECT_EQ(recorder.of(2).size(), 1u);
  EXPECT_EQ(recorder.of(130).size(), 1u);
}

TEST_F(AttachX11, paintingIntoAWindowWhoseOwnerIsGoneHarmsNobody)
{
  xserver::destroyWindow(owner);

  for (int i = 0; i < 20; ++i)
    pattern(window);

  EXPECT_TRUE(comes([this] { return !windows().isWindow(window); }));
}

TEST_F(AttachX11, detachAfterTheOwnerIsGoneHarmsNobody)
{
  xserver::destroyWindow(owner);

  detach(window);
  settle();

  EXPECT_FALSE(windows().isWindow(window));
}

TEST_F(AttachX11, standsBesideOthersAndBesideWindowsOfOurOwn)
{
  xserver::Id const second = xserver::makeWindow({500, 150, 600, 250}, ownColor);
  HWND const other = attachNativeWindow(second);
  HWND const own = top({650, 150, 750, 250});
  ASSERT_NE(other, nullptr);

  fill(window, {0, 0, 240, 180}, 0x0000FF);
  fill(other, {0, 0, 100, 100}, 0x00FF00);
  fill(own, {0, 0, 100, 100}, 0xFF0000);
  EXPECT_TRUE(comes([&] { return screenShows(window) && screenShows(other) && screenShows(own); }));

  xserver::destroyWindow(second);
  EXPECT_TRUE(comes([&] { return !windows().isWindow(other); }));
  pattern(window);
  EXPECT_TRUE(comes([&] { return screenShows(window) && screenShows(own); }));
}

TEST_F(AttachX11, numbersThatAreNoWindowsGiveNull)
{
  EXPECT_EQ(attachNativeWindow(0), nullptr);
  EXPECT_EQ(attachNativeWindow(0x7FFFFFF), nullptr);
  xserver::Id const former = xserver::makeWindow({0, 0, 10, 10}, 0);
  xserver::destroyWindow(former);
  EXPECT_EQ(attachNativeWindow(former), nullptr);
}
