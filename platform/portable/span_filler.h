// Fills closed figures by rows. A pel is inside when its centre is; on an edge, top and left are in, bottom and right out.
// Crossings are followed in whole numbers, so a clip changes no pel.
#pragma once

#include "platform/paint.h"
#include "platform/types.h"

#include <algorithm>
#include <limits>
#include <span>
#include <vector>

namespace plat::portable {

class SpanFiller {
public:
  // Figures between pels come in units of 1/256 pel.
  static constexpr i32 fine = 256;

  void clear() { edges_.clear(); }

  // A closed contour; coordinates at most 2^30, in pels (scale 1) or in fine units (scale fine).
  void add(std::span<Point const> contour, i32 scale);

  // Calls span(y, x0, x1) for each run of pels inside the figure and the clip, top to bottom, left to right.
  template <class Span> void fill(FillRule, Rect const& clip, Span&& span);

private:
  using i64 = std::int64_t;

  // From its first row up to but not including its end. In row y it crosses at q - r / den, 0 <= r < den, so that the
  // first pel right of it, or on it, is q.
  struct Edge {
    i32 first, end;
    i32 x0, y0, dx, dy;  // dy above 0
    i32 scale;
    i32 winding;
    i64 q, r, stepQ, stepR, den;
    void startAt(i32 y);
    void step()
    {
      q += stepQ;
      r -= stepR;
      if (r < 0) {
        r += den;
        ++q;
      }
    }
  };

  void addEdge(Point from, Point to, i32 scale);
  bool begin(Rect const& clip, i32& y);  // sorts; false when no row is in the clip
  void change(i32 y, i32 clipTop);       // active_ becomes the edges that cross row y
  void sort();                           // active_ by crossing

  std::vector<Edge> edges_;
  std::vector<Edge*> order_;   // by first row
  std::vector<Edge*> active_;
  std::size_t next_ = 0;
  i32 changeAt_ = 0;  // the next row in which an edge comes or goes
};

template <class Span> void SpanFiller::fill(FillRule rule, Rect const& clip, Span&& span)
{
  i32 y = 0;
  if (!begin(clip, y))
    return;
  auto const emit = [&](i64 from, i64 to) {
    i32 const x0 = static_cast<i32>(std::max<i64>(from, clip.left)), x1 = static_cast<i32>(std::min<i64>(to, clip.right));
    if (x0 < x1)
      span(y, x0, x1);
  };
  bool sorted = true;
  for (; y < clip.bottom; ++y) {
    if (y >= changeAt_) {
      change(y, clip.top);
      sorted = false;
      if (active_.empty()) {
        if (next_ == order_.size())
          return;
        y = order_[next_]->first - 1;
        continue;
      }
    }
    if (!sorted)
      sort();
    if (rule == FillRule::alternate) {
      for (std::size_t i = 0; i + 1 < active_.size(); i += 2)
        emit(active_[i]->q, active_[i + 1]->q);
    } else {
      i32 inside = 0;
      i64 from = 0;
      for (Edge const* edge : active_) {
        if (inside == 0)
          from = edge->q;
        inside += edge->winding;
        if (inside == 0)
          emit(from, edge->q);
      }
    }
    sorted = true;
    i64 before = std::numeric_limits<i64>::min();
    for (Edge* edge : active_) {
      edge->step();
      sorted = sorted && before <= edge->q;
      before = edge->q;
    }
  }
}

}  // namespace plat::portable
