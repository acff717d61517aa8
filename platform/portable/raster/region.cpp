#include "platform/portable/raster/region.h"

#include <algorithm>

namespace plat::portable {

Rect Region::bounds() const
{
  if (rects_.empty())
    return {};
  Rect all = rects_.front();
  for (Rect const& r : rects_)
    all = {std::min(all.left, r.left), std::min(all.top, r.top), std::max(all.right, r.right),
           std::max(all.bottom, r.bottom)};
  return all;
}

bool Region::contains(Point p) const
{
  return std::any_of(rects_.begin(), rects_.end(), [p](Rect const& r) { return portable::contains(r, p); });
}

void Region::add(Rect const& r)
{
  if (r.empty())
    return;
  subtract(r);
  rects_.push_back(r);
}

void Region::add(Region const& other)
{
  for (Rect const& r : other.rects_)
    add(r);
}

void Region::subtract(Rect const& hole)
{
  if (hole.empty())
    return;
  // Pieces go to the end and never meet the hole again, so only the rectangles present now are looked at.
  std::size_t const count = rects_.size();
  std::size_t kept = 0;
  for (std::size_t i = 0; i < count; ++i) {
    Rect const r = rects_[i];
    Rect const common = intersection(r, hole);
    if (common.empty()) {
      rects_[kept++] = r;
      continue;
    }
    if (r.top < common.top)
      rects_.push_back({r.left, r.top, r.right, common.top});
    if (r.left < common.left)
      rects_.push_back({r.left, common.top, common.left, common.bottom});
    if (common.right < r.right)
      rects_.push_back({common.right, common.top, r.right, common.bottom});
    if (common.bottom < r.bottom)
      rects_.push_back({r.left, common.bottom, r.right, r.bottom});
  }
  rects_.erase(rects_.begin() + static_cast<std::ptrdiff_t>(kept), rects_.begin() + static_cast<std::ptrdiff_t>(count));
}

void Region::intersect(Rect const& frame)
{
  std::size_t kept = 0;
  for (Rect const& r : rects_) {
    Rect const common = intersection(r, frame);
    if (!common.empty())
      rects_[kept++] = common;
  }
  rects_.resize(kept);
}

void Region::shift(Point by)
{
  for (Rect& r : rects_)
    r = shifted(r, by);
}

}  // namespace plat::portable
