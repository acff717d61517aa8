#include "platform/portable/raster/line.h"

#include "platform/portable/raster/dashes.h"

#include <algorithm>
#include <array>

namespace plat::portable {

namespace {

using i64 = std::int64_t;
__extension__ using i128 = __int128;

template <class Wide> constexpr Wide ceilDiv(Wide a, Wide b) { return a / b + (a % b > 0 ? 1 : 0); }  // b above 0

// Narrows the steps [low, high) to those whose minor offset floor((2 i m + n - b) / 2n) lies in [from, to), and gives
// offset and rest at the first.
template <class Wide>
bool cutMinor(i64 n, i64 m, i64 b, i64 from, i64 to, i64& low, i64& high, i64& offset, i64& rest)
{
  Wide const twice = Wide{2} * n;
  if (to <= 0)
    return false;
  if (m == 0) {
    if (from > 0)
      return false;
  } else {
    if (from > 0)
      low = static_cast<i64>(std::max<Wide>(low, ceilDiv<Wide>(twice * from - n + b, Wide{2} * m)));
    high = static_cast<i64>(std::min<Wide>(high, ceilDiv<Wide>(twice * to - n + b, Wide{2} * m)));
  }
  if (low >= high)
    return false;
  Wide const at = Wide{2} * low * m + n - b;
  offset = static_cast<i64>(at / twice);
  rest = static_cast<i64>(at % twice);
  return true;
}

constexpr DashPattern patternOf(DashRuns const& dashes)
{
  DashPattern out{};
  for (unsigned i = 0; i < dashes.count; ++i) {
    out.runs[i] = dashes.thin[i];
    out.total = static_cast<u8>(out.total + dashes.thin[i]);
  }
  for (unsigned at = 0; dashes.count != 0 && at < 24;)
    for (unsigned i = 0; i < dashes.count; at += dashes.thin[i++])
      out.on |= i % 2 == 0 ? ((1u << dashes.thin[i]) - 1) << at : 0;
  out.count = static_cast<u8>(dashes.count);
  return out;
}

constexpr std::array<DashPattern, dashRuns.size()> patterns = [] {
  std::array<DashPattern, dashRuns.size()> all{};
  for (std::size_t i = 0; i < all.size(); ++i)
    all[i] = patternOf(dashRuns[i]);
  return all;
}();

}  // namespace

DashPattern const& cosmeticDashes(int style) { return patterns[dashStyle(style)]; }

bool cutLine(Point from, Point to, Rect const& clip, LineCut& cut)
{
  i64 const dx = i64{to.x} - from.x, dy = i64{to.y} - from.y;
  i64 const adx = dx < 0 ? -dx : dx, ady = dy < 0 ? -dy : dy;
  if (adx == 0 && ady == 0)
    return false;
  if (std::max(from.x, to.x) < clip.left || std::min(from.x, to.x) >= clip.right ||
      std::max(from.y, to.y) < clip.top || std::min(from.y, to.y) >= clip.bottom)
    return false;
  bool const xMajor = adx >= ady;
  i64 const n = xMajor ? adx : ady, m = xMajor ? ady : adx;
  bool const majorUp = (xMajor ? dx : dy) >= 0, minorUp = (xMajor ? dy : dx) >= 0;
  i64 const b = minorUp ? 1 : 0;  // half a step counts as none upward and as one downward
  cut.xMajor = xMajor;
  cut.majorStep = majorUp ? 1 : -1;
  cut.minorStep = minorUp ? 1 : -1;
  cut.grow = 2 * m;
  cut.fall = 2 * n;

  if (contains(clip, from) && contains(clip, to)) {
    cut.skipped = 0;
    cut.count = static_cast<i32>(n);
    cut.first = from;
    cut.error = -n - b;
    return true;
  }

  i64 const major = xMajor ? from.x : from.y, minor = xMajor ? from.y : from.x;
  i64 const majorLow = xMajor ? clip.left : clip.top, majorHigh = xMajor ? clip.right : clip.bottom;
  i64 const minorLow = xMajor ? clip.top : clip.left, minorHigh = xMajor ? clip.bottom : clip.right;
  i64 low = std::max<i64>(majorUp ? majorLow - major : major - majorHigh + 1, 0);
  i64 high = std::min<i64>(majorUp ? majorHigh - major : major - majorLow + 1, n);
  i64 const offsetLow = minorUp ? minorLow - minor : minor - minorHigh + 1;
  i64 const offsetHigh = minorUp ? minorHigh - minor : minor - minorLow + 1;
  i64 offset = 0, rest = 0;
  constexpr i64 narrow = i64{1} << 29;  // products of such steps fit 64 bits
  bool const left = n < narrow && std::max(offsetHigh, -offsetLow) < narrow && offsetLow < narrow
                        ? cutMinor<i64>(n, m, b, offsetLow, offsetHigh, low, high, offset, rest)
                        : cutMinor<i128>(n, m, b, offsetLow, offsetHigh, low, high, offset, rest);
  if (!left)
    return false;
  cut.skipped = low;
  cut.count = static_cast<i32>(high - low);
  i64 const atMajor = majorUp ? major + low : major - low, atMinor = minorUp ? minor + offset : minor - offset;
  cut.first = {static_cast<i32>(xMajor ? atMajor : atMinor), static_cast<i32>(xMajor ? atMinor : atMajor)};
  cut.error = rest - 2 * n;
  return true;
}

}  // namespace plat::portable
