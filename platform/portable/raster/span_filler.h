// Fills closed figures by rows. A pel is inside when its centre is; on an edge, top and left are in, bottom and right out.
// Crossings are exact, so a clip changes no pel.
//
// Most figures go through a table: an edge's crossings are a ramp of numbers, the edges between two turns of a contour up
// or down share a column, and the columns are sorted across. Figures of many turns or great extent are followed row by row.
#pragma once

#include "platform/paint.h"
#include "platform/portable/raster/row_kernels.h"

#include <algorithm>
#include <limits>
#include <span>
#include <vector>

namespace plat::portable {

class SpanFiller {
public:
  // Figures between pels come in units of 1/256 pel.
  static constexpr i32 fine = 256;

  void clear();

  // A closed contour; coordinates at most 2^30, in pels (scale 1) or in fine units (scale fine).
  void add(std::span<Point const> contour, i32 scale);

  // Lays the figure's spans inside the clip down in a table. False when it has to be filled otherwise.
  bool tabulate(FillRule, Rect const& clip);
  i32 firstRow() const { return top_; }
  i32 rows() const { return rows_; }
  int spansPerRow() const { return columns_ / 2; }  // at most; surplus ones are empty
  i32 const* from(int span) const { return column(2 * span); }
  i32 const* to(int span) const { return column(2 * span + 1); }

  // Calls span(y, x0, x1) for each run of pels inside the figure and the clip, top to bottom, left to right.
  template <class Span> void fill(FillRule, Rect const& clip, Span&& span);

private:
  using i64 = std::int64_t;

  // From its first row up to but not including its end.
  struct Edge {
    i32 first, end;
    i32 x0, y0, dx, dy;  // dy above 0
    i32 scale;
    i32 winding;  // 1 downward, -1 upward
  };
  // An edge on its way. In row y it crosses at q - r / den, 0 <= r < den, so that the first pel right of it, or on it, is q.
  struct Crossing {
    i64 q, r, stepQ, stepR, den;
    i32 end, winding;
    void startAt(Edge const&, i32 y);
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
  i32* column(int k) { return table_.data() + static_cast<std::size_t>(k) * stride_; }
  i32 const* column(int k) const { return table_.data() + static_cast<std::size_t>(k) * stride_; }
  bool addColumns(std::size_t firstEdge, std::size_t endEdge);
  bool addRamp(Edge const&, i32* column, i32& done, i32 tag);
  void addFarRamp(i32* column, i32& done, i32 end);
  void windSpans(i32 low, i32 high);

  bool begin(Rect const& clip, i32& y);     // sorts; false when no row is in the clip
  void change(i32 y, i32 clipTop);          // active_ becomes the edges that cross row y
  void sort();                              // active_ by crossing
  template <class Span> void countRow(FillRule, Rect const& clip, i32 y, Span&& span);

  std::vector<Edge> edges_;
  std::vector<std::size_t> contours_;  // where each contour's edges end
  bool near_ = true;                   // all points lie within nearPoint

  // The table: columns of rows_ numbers each, stride_ apart.
  std::vector<i32> table_;
  std::vector<Ramp> ramps_;
  std::size_t stride_ = 0;
  i32 top_ = 0, rows_ = 0;
  int columns_ = 0;

  std::vector<Edge const*> order_;  // by first row
  std::vector<Crossing> active_;
  std::vector<i32> tally_;  // windings that begin at a column of the clip
  std::size_t next_ = 0;
  i32 changeAt_ = 0;  // the next row in which an edge comes or goes
};

template <class Span> void SpanFiller::fill(FillRule rule, Rect const& clip, Span&& span)
{
  constexpr std::size_t crowd = 48;  // so many crossings are counted rather than sorted
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
    if (active_.size() > crowd) {
      countRow(rule, clip, y, span);
      for (Crossing& one : active_)
        one.step();
      sorted = false;
      continue;
    }
    if (!sorted)
      sort();
    if (rule == FillRule::alternate) {
      for (std::size_t i = 0; i + 1 < active_.size(); i += 2)
        emit(active_[i].q, active_[i + 1].q);
    } else {
      i32 inside = 0;
      i64 from = 0;
      for (Crossing const& one : active_) {
        if (inside == 0)
          from = one.q;
        inside += one.winding;
        if (inside == 0)
          emit(from, one.q);
      }
    }
    sorted = true;
    i64 before = std::numeric_limits<i64>::min();
    for (Crossing& one : active_) {
      one.step();
      sorted = sorted && before <= one.q;
      before = one.q;
    }
  }
}

template <class Span> void SpanFiller::countRow(FillRule rule, Rect const& clip, i32 y, Span&& span)
{
  std::size_t const width = static_cast<std::size_t>(clip.width());
  tally_.assign(width + 1, 0);
  for (Crossing const& one : active_)
    tally_[static_cast<std::size_t>(std::clamp<i64>(one.q, clip.left, clip.right) - clip.left)] += one.winding;
  i32 inside = 0, from = 0;
  i32 const which = rule == FillRule::alternate ? 1 : -1;  // the bits that say inside
  for (std::size_t i = 0; i < width; ++i) {
    if (tally_[i] == 0)
      continue;
    bool const before = (inside & which) != 0;
    inside += tally_[i];
    bool const now = (inside & which) != 0;
    i32 const x = clip.left + static_cast<i32>(i);
    if (now && !before)
      from = x;
    else if (before && !now)
      span(y, from, x);
  }
  if ((inside & which) != 0)
    span(y, from, clip.right);
}

}  // namespace plat::portable
