#include "platform/portable/windows/backing.h"

#include "platform/portable/raster/blit.h"
#include "platform/portable/raster/pel_format.h"
#include "platform/portable/raster/region.h"

#include <algorithm>
#include <cstring>

namespace plat::portable {

u32 readPel(PelBlock const& block, Point at)
{
  if (!contains(extent(block), at))
    return 0;
  u8 const* const from = pelAddress(block, at.x, at.y);
  u32 pel = 0;
  for (int i = 0; i < bytesPerPel(block.depth); ++i)
    pel |= u32(from[i]) << (8 * i);
  return pel;
}

void fillBlock(PelBlock const& block, Rect const& wanted, u32 pel)
{
  fillPels(block, intersection(wanted, extent(block)), pel);
}

void copyBlock(PelBlock const& to, PelBlock const& from)
{
  i32 const width = std::min(to.width, from.width), height = std::min(to.height, from.height);
  if (to.depth != from.depth || width <= 0)
    return;
  for (i32 y = 0; y < height; ++y)
    std::memcpy(pelAddress(to, 0, y), pelAddress(from, 0, y), static_cast<std::size_t>(width * bytesPerPel(to.depth)));
}

Backing::Backing(Size size, int depth, PelBlock const& lent, VideoWindow* video) : block_(lent), video_(video)
{
  if (lent.pels && lent.depth == depth && lent.width == size.w && lent.height == size.h) {
    lent_ = true;
    return;
  }
  block_.width = size.w;
  block_.height = size.h;
  block_.depth = depth;
  block_.pitch = (size.w * bytesPerPel(depth) + 7) / 8 * 8;
  own_.resize(static_cast<std::size_t>(block_.pitch) * static_cast<std::size_t>(size.h));
  block_.pels = own_.data();
}

void Backing::markDirty(Rect const& wanted)
{
  Rect const r = intersection(wanted, extent(block_));
  if (r.empty())
    return;
  for (std::size_t i = 0; i < dirtyCount_; ++i)
    if (intersection(dirty_[i], r) == r)
      return;
  if (dirtyCount_ == maxDirty) {
    for (Rect const& d : dirty_)
      dirty_[0] = {std::min(dirty_[0].left, d.left), std::min(dirty_[0].top, d.top), std::max(dirty_[0].right, d.right),
                   std::max(dirty_[0].bottom, d.bottom)};
    dirtyCount_ = 1;
  }
  dirty_[dirtyCount_++] = r;
}

std::size_t Backing::takeDirty(std::span<Rect, 16> to)
{
  std::size_t const count = dirtyCount_;
  std::copy_n(dirty_.begin(), count, to.begin());
  dirtyCount_ = 0;
  return count;
}

}  // namespace plat::portable
