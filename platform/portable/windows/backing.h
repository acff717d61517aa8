// The pels of one top-level window, and what of them is still to be shown.
#pragma once

#include "foundation/leaf_mutex.h"
#include "platform/portable/raster/screen.h"

#include <array>
#include <span>
#include <vector>

namespace plat::portable {

class VideoWindow;

u32 readPel(PelBlock const&, Point);
void fillBlock(PelBlock const&, Rect const&, u32 pel);     // cut by the block
void copyBlock(PelBlock const& to, PelBlock const& from);  // the common upper left part, equal depths

using BackingMutex = cc_LeafMutex<cc_LockRank::backing>;

class Backing {
public:
  // With pels in lent it stands in that memory, which belongs to the video window; else in its own.
  Backing(Size, int depth, PelBlock const& lent, VideoWindow*);

  BackingMutex mutex;  // guards the pels and what is dirty; before the window table's lock, never after it

  PelBlock const& block() const { return block_; }
  bool lent() const { return lent_; }
  VideoWindow* video() const { return video_; }

  // Under the mutex. Many rectangles are joined to one, so that no memory is needed.
  void markDirty(Rect const&);
  std::size_t takeDirty(std::span<Rect, 16>);

  static constexpr std::size_t maxDirty = 16;

private:
  PelBlock block_;
  std::vector<u8> own_;
  bool lent_ = false;
  VideoWindow* video_;
  std::array<Rect, maxDirty> dirty_;
  std::size_t dirtyCount_ = 0;
};

}  // namespace plat::portable
