#include "platform/portable/windows/null_video.h"

#include "platform/portable/raster/region.h"

#include <algorithm>
#include <chrono>

namespace plat::portable {

void NullVideoWindow::send(std::span<Rect const> rects)
{
  ++sends_;
  lastBounds_ = rects.empty() ? Rect{} : rects.front();
  for (Rect const& r : rects)
    lastBounds_ = {std::min(lastBounds_.left, r.left), std::min(lastBounds_.top, r.top),
                   std::max(lastBounds_.right, r.right), std::max(lastBounds_.bottom, r.bottom)};
}

Ptr<VideoWindow> NullVideo::createWindow(HWND, std::string const&, Rect const&, u32)
{
  return std::make_unique<NullVideoWindow>();
}

void NullVideo::wait(int milliseconds)
{
  cc_LeafWait lock(mutex_);
  auto const woken = [this] { return awake_; };
  if (milliseconds < 0)
    woken_.wait(lock.native(), woken);
  else
    woken_.wait_for(lock.native(), std::chrono::milliseconds(milliseconds), woken);
  awake_ = false;
}

void NullVideo::wake()
{
  {
    std::lock_guard const lock(mutex_);
    awake_ = true;
  }
  woken_.notify_one();
}

}  // namespace plat::portable
