#include "foundation/pel_rect.h"

#include <algorithm>

namespace {

// What a size leaves from a place on that lies at or beyond its corner. A corner far out plus an extent may pass the range
// of a long, a distance never passes that of an unsigned one.
long cf_left(long corner, long size, long from)
{
  unsigned long const cut = static_cast<unsigned long>(from) - static_cast<unsigned long>(corner);
  return cut < static_cast<unsigned long>(size) ? static_cast<long>(static_cast<unsigned long>(size) - cut) : 0;
}

// One axis of an intersection; sizes above 0.
bool cf_overlap(long a, long aSize, long b, long bSize, long& low, long& size)
{
  low = std::max(a, b);
  size = std::min(cf_left(a, aSize, low), cf_left(b, bSize, low));
  return size > 0;
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
