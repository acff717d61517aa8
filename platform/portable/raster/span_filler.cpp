#include "platform/portable/raster/span_filler.h"

#include <cmath>

namespace plat::portable {

namespace {

using i64 = std::int64_t;
using u64 = std::uint64_t;
__extension__ using i128 = __int128;

constexpr i64 floorDiv(i64 a, i64 b) { return a / b - (a % b < 0 ? 1 : 0); }  // b above 0
constexpr i64 ceilDiv(i64 a, i64 b) { return -floorDiv(-a, b); }

// Ramps hold pels with rampBits binary places in 64 bits, so points must lie this near, in pels.
constexpr i32 nearPoint = 1 << 17;
// Right of all surfaces: where a column has no crossing.
constexpr i64 farStart = i64{1} << (rampBits + 18);

}  // namespace

void SpanFiller::clear()
{
  edges_.clear();
  contours_.clear();
  near_ = true;
}

void SpanFiller::add(std::span<Point const> contour, i32 scale)
{
  if (contour.size() < 2)
    return;
  u32 const reach = static_cast<u32>(nearPoint) * static_cast<u32>(scale);
  Point before = contour.back();
  u32 beyond = 0;
  for (Point const& p : contour) {
    addEdge(before, p, scale);
    before = p;
    beyond |= static_cast<u32>(static_cast<u32>(p.x) + reach > 2 * reach) |
              static_cast<u32>(static_cast<u32>(p.y) + reach > 2 * reach);
  }
  near_ = near_ && beyond == 0;
  contours_.push_back(edges_.size());
}

inline void SpanFiller::addEdge(Point from, Point to, i32 scale)
{
  i32 winding = 1;
  if (from.y > to.y) {
    std::swap(from, to);
    winding = -1;
  }
  // The shift rounds down, so this rounds up.
  i32 const shift = scale == 1 ? 0 : 8;
  i32 const first = -(-from.y >> shift), end = -(-to.y >> shift);
  if (first == end)
    return;
  // Two points of 2^30 each lie 2^31 apart at most; one more unit would not fit, and they never are.
  i64 const dx = i64{to.x} - from.x, dy = i64{to.y} - from.y;
  edges_.push_back({first, end, from.x, from.y, static_cast<i32>(std::clamp<i64>(dx, -0x7FFFFFFF, 0x7FFFFFFF)),
                    static_cast<i32>(std::min<i64>(dy, 0x7FFFFFFF)), scale, winding});
}

bool SpanFiller::tabulate(FillRule rule, Rect const& clip)
{
  if (!near_)
    return false;
  i32 top = clip.bottom, bottom = clip.top;
  for (Edge const& edge : edges_) {
    top = std::min(top, edge.first);
    bottom = std::max(bottom, edge.end);
  }
  top_ = std::max(top, clip.top);
  rows_ = std::min(bottom, clip.bottom) - top_;
  columns_ = 0;
  if (rows_ <= 0 || clip.left >= clip.right) {
    rows_ = 0;
    return true;
  }
  stride_ = static_cast<std::size_t>(rows_ + 16 + 15) / 16 * 16;
  std::size_t const needed = stride_ * columnLimit;
  if (table_.size() < needed)
    table_.resize(needed);
  ramps_.clear();
  std::size_t start = 0;
  for (std::size_t const end : contours_) {
    if (end > start && !addColumns(start, end))
      return false;
    start = end;
  }
  // Two columns are the same by either rule.
  bool const winds = rule == FillRule::winding && columns_ > 2;
  if (!winds)
    for (Ramp& ramp : ramps_)
      ramp.tag = 0;
  rowKernels().ramps(ramps_.data(), ramps_.size(), winds ? 1 : 0);
  constexpr i32 all = std::numeric_limits<i32>::max();
  rowKernels().sortAcross(table_.data(), stride_, columns_, rows_, winds ? -all : clip.left, winds ? all : clip.right);
  if (winds)
    windSpans(clip.left, clip.right);
  return true;
}

// The ramps of a contour, whose edges lie one after the other as it runs.
bool SpanFiller::addColumns(std::size_t const firstEdge, std::size_t const endEdge)
{
  Edge const* const edges = edges_.data() + firstEdge;
  std::size_t const count = endEdge - firstEdge;
  // A turn to begin with: a closed contour goes down as far as up.
  std::size_t begin = 0;
  while (begin + 1 < count && edges[begin].winding == edges[(begin == 0 ? count : begin) - 1].winding)
    ++begin;
  auto const at = [&](std::size_t i) -> Edge const& { return edges[i >= count ? i - count : i]; };
  for (std::size_t i = begin, last = begin + count; i < last;) {
    if (columns_ == columnLimit)
      return false;
    i32 const winding = at(i).winding;
    std::size_t end = i + 1;
    while (end < last && at(end).winding == winding)
      ++end;
    i32* const to = column(columns_++);
    i32 done = 0;
    i32 const tag = winding > 0 ? 1 : 0;
    addFarRamp(to, done, (winding > 0 ? at(i) : at(end - 1)).first - top_);
    for (std::size_t k = i; k < end; ++k)
      if (!addRamp(winding > 0 ? at(k) : at(end - 1 - (k - i)), to, done, tag))
        return false;
    addFarRamp(to, done, rows_);
    i = end;
  }
  return true;
}

void SpanFiller::addFarRamp(i32* column, i32& done, i32 end)
{
  end = std::min(end, rows_);
  if (end <= done)
    return;
  ramps_.push_back({column + done, farStart, 0, end - done, 0});
  done = end;
}

// A crossing in row y is the pel q at or right of x = (x0 + (y scale - y0) dx / dy) / scale, a multiple of 1 / (dy scale).
// The ramp is floor(x + 1 - bias) with a slope that is too great by up to 4 units: what this sums up to stays below the
// bias, and both below 1 / (dy scale), so that the whole part is q.
bool SpanFiller::addRamp(Edge const& edge, i32* column, i32& done, i32 tag)
{
  i32 const from = std::max(edge.first - top_, 0), to = std::min(edge.end - top_, rows_);
  if (from >= to)
    return true;
  i64 const bias = 4 * (i64{edge.end} - edge.first) + 6;
  i64 const den = i64{edge.dy} * edge.scale;
  if (den > (i64{1} << rampBits) / (bias + 2))
    return false;
  i64 slope;
  if (std::abs(edge.dx) <= i64{edge.dy} << 7)
    slope = static_cast<i64>(static_cast<double>(edge.dx) * (i64{1} << rampBits) / static_cast<double>(edge.dy)) + 2;
  else if (std::abs(edge.dx) <= i64{edge.dy} << 18)
    slope = static_cast<i64>((static_cast<i128>(edge.dx) << rampBits) / edge.dy) + 2;
  else
    return false;
  i64 const k = i64{from + top_} * edge.scale - edge.y0;
  i64 start;
  if (edge.scale == 1)
    start = (i64{edge.x0} << rampBits) + k * slope;
  else
    start = (i64{edge.x0} << (rampBits - 8)) + static_cast<i64>(static_cast<i128>(k) * slope >> 8);
  ramps_.push_back({column + from, start + (i64{1} << rampBits) - bias, slope, to - from, tag});
  done = to;
  return true;
}

// Sorted crossings, doubled and tagged with their direction, become spans.
void SpanFiller::windSpans(i32 low, i32 high)
{
  for (i32 y = 0; y < rows_; ++y) {
    i32 crossings[columnLimit];
    for (int k = 0; k < columns_; ++k)
      crossings[k] = column(k)[y];
    int out = 0;
    i32 inside = 0, from = 0;
    for (int k = 0; k < columns_; ++k) {
      i32 const x = std::clamp(crossings[k] >> 1, low, high);
      if (crossings[k] >> 1 == static_cast<i32>(farStart >> rampBits))
        break;
      if (inside == 0)
        from = x;
      inside += (crossings[k] & 1) != 0 ? 1 : -1;
      if (inside == 0 && from < x) {
        column(out)[y] = from;
        column(out + 1)[y] = x;
        out += 2;
      }
    }
    for (; out < columns_; ++out)
      column(out)[y] = high;
  }
}

void SpanFiller::Crossing::startAt(Edge const& edge, i32 y)
{
  den = i64{edge.dy} * edge.scale;
  stepQ = floorDiv(edge.dx, edge.dy);
  stepR = (edge.dx - stepQ * edge.dy) * edge.scale;
  i64 const n = i64{edge.x0} * edge.dy + (i64{y} * edge.scale - edge.y0) * edge.dx;
  q = ceilDiv(n, den);
  r = q * den - n;
  end = edge.end;
  winding = edge.winding;
}

bool SpanFiller::begin(Rect const& clip, i32& y)
{
  order_.clear();
  active_.clear();
  next_ = 0;
  changeAt_ = std::numeric_limits<i32>::min();
  for (Edge const& edge : edges_)
    if (edge.end > clip.top && edge.first < clip.bottom)
      order_.push_back(&edge);
  if (order_.empty() || clip.left >= clip.right)
    return false;
  std::sort(order_.begin(), order_.end(), [](Edge const* a, Edge const* b) { return a->first < b->first; });
  y = std::max(clip.top, order_.front()->first);
  return true;
}

void SpanFiller::change(i32 y, i32 clipTop)
{
  std::size_t kept = 0;
  changeAt_ = std::numeric_limits<i32>::max();
  for (Crossing const& one : active_)
    if (one.end > y) {
      active_[kept++] = one;
      changeAt_ = std::min(changeAt_, one.end);
    }
  active_.resize(kept);
  for (; next_ < order_.size() && order_[next_]->first <= y; ++next_)
    if (order_[next_]->end > y) {
      active_.emplace_back().startAt(*order_[next_], std::max(y, clipTop));
      changeAt_ = std::min(changeAt_, order_[next_]->end);
    }
  if (next_ < order_.size())
    changeAt_ = std::min(changeAt_, order_[next_]->first);
}

// Nearly in order from the row before.
void SpanFiller::sort()
{
  for (std::size_t i = 1; i < active_.size(); ++i) {
    if (active_[i - 1].q <= active_[i].q)
      continue;
    Crossing const one = active_[i];
    std::size_t at = i;
    for (; at > 0 && active_[at - 1].q > one.q; --at)
      active_[at] = active_[at - 1];
    active_[at] = one;
  }
}

}  // namespace plat::portable
