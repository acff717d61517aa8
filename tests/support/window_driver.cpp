#include "tests/support/window_driver.h"

#include "platform/messages.h"

namespace {

// One screen for the test program; each driver sets its size and depth.
void start(int depth)
{
  static bool const started = [] {
    plat::InitOptions options;
    options.video = plat::InitOptions::headless;
    return plat::init(options);
  }();
  (void)started;
  plat::testing::screen({1280, 1024}, depth);
}

}  // namespace

WindowDriver::WindowDriver(long width, long height, int depth, long left)
{
  start(depth);
  plat::WindowDesc desc;
  desc.title = "driver";
  desc.rect = {static_cast<plat::i32>(left), 30, static_cast<plat::i32>(left + width), static_cast<plat::i32>(30 + height)};
  window_ = plat::platform().windows.create(desc);
  plat::platform().windows.place(window_, nullptr, plat::show::activate);
  makeDisplay();
}

WindowDriver::~WindowDriver()
{
  display_.reset();
  if (plat::platform().windows.isWindow(window_))
    plat::platform().windows.destroy(window_);
  plat::testing::drain();
}

void WindowDriver::makeDisplay()
{
  display_.reset();
  display_ = std::make_unique<ccWin32Display>(window_);
  plat::testing::drain();
}

void WindowDriver::pointer_(ccPair<long> const& p, unsigned mods)
{
  at_ = p;
  plat::Point const screen =
      plat::platform().windows.clientToScreen(window_, {static_cast<plat::i32>(p.x()), static_cast<plat::i32>(p.y())});
  plat::testing::pointer(screen, buttons_, mods);
}

WindowDriver& WindowDriver::moveTo(ccPair<long> const& p, unsigned mods)
{
  pointer_(p, mods);
  return *this;
}

WindowDriver& WindowDriver::press(ccPair<long> const& p, unsigned mods)
{
  pointer_(p, mods);
  buttons_ |= plat::held::left;
  pointer_(p, mods);
  return *this;
}

WindowDriver& WindowDriver::release(unsigned mods)
{
  buttons_ &= ~plat::held::left;
  pointer_(at_, mods);
  return *this;
}

WindowDriver& WindowDriver::pressRight(ccPair<long> const& p)
{
  pointer_(p, 0);
  buttons_ |= plat::held::right;
  pointer_(p, 0);
  return *this;
}

WindowDriver& WindowDriver::releaseRight()
{
  buttons_ &= ~plat::held::right;
  pointer_(at_, 0);
  return *this;
}

WindowDriver& WindowDriver::pressMiddle(ccPair<long> const& p)
{
  pointer_(p, 0);
  buttons_ |= plat::held::middle;
  pointer_(p, 0);
  return *this;
}

WindowDriver& WindowDriver::releaseMiddle()
{
  buttons_ &= ~plat::held::middle;
  pointer_(at_, 0);
  return *this;
}

WindowDriver& WindowDriver::keyDown(unsigned virtualKey, bool repeat)
{
  plat::platform().windows.setFocus(window_);
  plat::testing::key(virtualKey, true, 0, repeat);
  return *this;
}

WindowDriver& WindowDriver::keyUp(unsigned virtualKey)
{
  plat::testing::key(virtualKey, false, 0);
  return *this;
}

WindowDriver& WindowDriver::wait(unsigned ms)
{
  plat::testing::advance(ms);
  plat::testing::drain();
  return *this;
}

WindowDriver& WindowDriver::resize(long width, long height)
{
  plat::Rect r = plat::platform().windows.windowRect(window_);
  r.right = r.left + static_cast<plat::i32>(width);
  r.bottom = r.top + static_cast<plat::i32>(height);
  plat::platform().windows.place(window_, &r, plat::show::keep);
  plat::testing::drain();
  return *this;
}

std::uint32_t WindowDriver::pel(long x, long y) const
{
  return plat::testing::pel(window_, {static_cast<plat::i32>(x), static_cast<plat::i32>(y)});
}

std::vector<std::uint32_t> WindowDriver::shot() const
{
  plat::Size size;
  return plat::testing::shot(window_, size);
}
