#include "foundation/pel_rect.h"

#include <algorithm>

namespace {

// One axis of an intersection. In 64 bits, since a corner far out plus an extent may pass the range of a long.
bool cf_overlap(long a, long aSize, long b, long bSize, long& low, long& size)
{
  long long const from = std::max(a, b);
  long long const to = std::min(static_cast<long long>(a) + aSize, static_cast<long long>(b) + bSize);
  low = static_cast<long>(from);
  size = static_cast<long>(std::max(0LL, to - from));
  return to > from;
}

}  // namespace

ccPelRect operator&(ccPelRect const& a, ccPelRect const& b)
{
  long x, y, w, h;
  if (a.isNull() || b.isNull() || !cf_overlap(a.ul_.x(), a.sz_.x(), b.ul_.x(), b.sz_.x(), x, w) ||
      !cf_overlap(a.ul_.y(), a.sz_.y(), b.ul_.y(), b.sz_.y(), y, h))
    return ccPelRect();
  return ccPelRect(x, y, w, h);
}
