// A screen of given size and depth that exists in memory only. Its windows count what they are given to show, and its
// clock stands until a test turns it.
#pragma once

#include "foundation/leaf_mutex.h"
#include "platform/portable/windows/video.h"

#include <condition_variable>

namespace plat::portable {

class NullVideoWindow final : public VideoWindow {
public:
  void show(bool visible, bool) override { visible_ = visible; }
  void minimize(bool) override {}
  void raise() override {}
  void place(Rect const&) override {}
  PelBlock lend(Size, int) override { return {}; }
  void copy(PelBlock const&, std::span<Rect const>) override {}
  void send(std::span<Rect const>) override;

  bool visible() const { return visible_; }
  std::uint64_t sends() const { return sends_; }
  Rect const& lastBounds() const { return lastBounds_; }  // around what the last send showed

private:
  bool visible_ = false;
  std::uint64_t sends_ = 0;
  Rect lastBounds_;
};

class NullVideo final : public Video {
public:
  NullVideo(Size screen, int depth) : screen_(screen), depth_(depth) {}

  Size screenSize() override { return screen_; }
  int depth() override { return depth_; }
  bool virtualClock() const override { return true; }
  Ptr<VideoWindow> createWindow(HWND, std::string const& title, Rect const&, u32 style) override;
  Ptr<VideoWindow> attach(HWND, uptr, Rect&) override { return nullptr; }
  void cursor(CursorShape const*) override {}
  void capture(VideoWindow*) override {}
  void clip(Rect const*) override {}
  void poll(VideoSink&, bool) override {}
  void wait(int milliseconds) override;
  void wake() override;

private:
  Size screen_;
  int depth_;
  cc_LeafMutex<cc_LockRank::wake> mutex_;
  std::condition_variable woken_;
  bool awake_ = false;
};

}  // namespace plat::portable
