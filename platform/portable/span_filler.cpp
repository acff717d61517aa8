#include "platform/portable/span_filler.h"

namespace plat::portable {

namespace {

using i64 = std::int64_t;

constexpr i64 floorDiv(i64 a, i64 b) { return a / b - (a % b < 0 ? 1 : 0); }  // b above 0
constexpr i64 ceilDiv(i64 a, i64 b) { return -floorDiv(-a, b); }

}  // namespace

void SpanFiller::add(std::span<Point const> contour, i32 scale)
{
  if (contour.size() < 2)
    return;
  Point before = contour.back();
  for (Point const& p : contour) {
    addEdge(before, p, scale);
    before = p;
  }
}

void SpanFiller::addEdge(Point from, Point to, i32 scale)
{
  i32 winding = 1;
  if (from.y > to.y) {
    std::swap(from, to);
    winding = -1;
  }
  i32 const first = static_cast<i32>(ceilDiv(from.y, scale)), end = static_cast<i32>(ceilDiv(to.y, scale));
  if (first == end)
    return;
  // Two points of 2^30 each lie 2^31 apart at most; one more unit would not fit, and they never are.
  i64 const dx = i64{to.x} - from.x, dy = i64{to.y} - from.y;
  Edge edge{};
  edge.first = first;
  edge.end = end;
  edge.x0 = from.x;
  edge.y0 = from.y;
  edge.dx = static_cast<i32>(std::clamp<i64>(dx, -0x7FFFFFFF, 0x7FFFFFFF));
  edge.dy = static_cast<i32>(std::min<i64>(dy, 0x7FFFFFFF));
  edge.scale = scale;
  edge.winding = winding;
  edges_.push_back(edge);
}

void SpanFiller::Edge::startAt(i32 y)
{
  den = i64{dy} * scale;
  stepQ = floorDiv(dx, dy);
  stepR = (dx - stepQ * dy) * scale;
  i64 const n = i64{x0} * dy + (i64{y} * scale - y0) * dx;
  q = ceilDiv(n, den);
  r = q * den - n;
}

bool SpanFiller::begin(Rect const& clip, i32& y)
{
  order_.clear();
  active_.clear();
  next_ = 0;
  changeAt_ = std::numeric_limits<i32>::min();
  for (Edge& edge : edges_)
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
  auto const keep = [&](Edge* edge) {
    active_[kept++] = edge;
    changeAt_ = std::min(changeAt_, edge->end);
  };
  for (Edge* edge : active_)
    if (edge->end > y)
      keep(edge);
  active_.resize(kept);
  for (; next_ < order_.size() && order_[next_]->first <= y; ++next_)
    if (order_[next_]->end > y) {
      order_[next_]->startAt(std::max(y, clipTop));
      active_.push_back(nullptr);
      keep(order_[next_]);
    }
  if (next_ < order_.size())
    changeAt_ = std::min(changeAt_, order_[next_]->first);
}

// Nearly in order from the row before.
void SpanFiller::sort()
{
  for (std::size_t i = 1; i < active_.size(); ++i) {
    Edge* const edge = active_[i];
    std::size_t at = i;
    for (; at > 0 && active_[at - 1]->q > edge->q; --at)
      active_[at] = active_[at - 1];
    active_[at] = edge;
  }
}

}  // namespace plat::portable
