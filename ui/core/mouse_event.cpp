#include "ui/core/mouse_event.h"

#include "foundation/archive.h"

#include <algorithm>
#include <limits>

namespace {

std::int32_t cf_word(long v)
{
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(std::clamp<long>(v, Limits::min(), Limits::max()));
}

}  // namespace

void ccMouseEvent::position(ccPair<long> const& p)
{
  position_ = p;
  x_ = cf_word(p.x());
  y_ = cf_word(p.y());
}

ccArchive& operator||(ccArchive& ar, ccMouseEvent& e)
{
  std::uint32_t version = 0;
  ar || version;
  if (version != 0)
    throw ccArchive::UnknownVersion("ccMouseEvent");
  ccMouseEvent moved(e);  // an event that ends half-way leaves the former one
  ar || moved.x_ || moved.y_ || moved.event_ || moved.whichButton_ || moved.buttons_ || moved.keys_;
  if (ar.isLoading())
    e = moved;
  return ar;
}
