// Points of ellipses, rounded corners and Bezier curves.
#pragma once

#include "platform/portable/raster/painter.h"
#include "platform/portable/raster/pel_row.h"

#include <algorithm>

namespace plat::portable {

// An upright box with rounded corners: an ellipse when the corners take all of it. Pels of the outline lie in
// left .. left + width - 1 and top .. top + height - 1.
struct CornerBox {
  CornerBox(Rect const& box, Size corner);

  // Offsets X and Y are twice the distance from a corner's centre, at least 0, of the parity of a and b.
  i32 leftOf(i32 X) const { return left + (a - X) / 2; }
  i32 rightOf(i32 X) const { return left + a - (a - X) / 2 + extraX; }
  i32 topOf(i32 Y) const { return top + (b - Y) / 2; }
  i32 bottomOf(i32 Y) const { return top + b - (b - Y) / 2 + extraY; }
  bool large() const { return a > largest || b > largest; }

  static constexpr i32 largest = 32767;  // beyond it the products of the walk leave 64 bits
  i32 left, top;
  i32 a, b;            // diameters of the corner's curve, less one
  i32 extraX, extraY;  // straight sides between the corners
};

// The walk over the pels (x, y) of a quarter curve from (a, b & 1) to (a & 1, b), each beside the one before.
// Whole-number midpoint rule; a and b at most CornerBox::largest.
class QuarterWalk {
public:
  QuarterWalk(i32 diameterX, i32 diameterY)
      : b_(diameterY), leastX_(diameterX & 1), x_(diameterX), y_(diameterY & 1), aa_(i64{diameterX} * diameterX),
        bb_(b_ * b_)
  {
    i64 const aabb = aa_ * bb_;
    left_ = aabb - bb_ * (x_ - 1) * (x_ - 1) - aa_ * (y_ + 2) * (y_ + 2);
    up_ = bb_ * (x_ - 2) * (x_ - 2) + aa_ * (y_ + 1) * (y_ + 1) - aabb - 1;
    leftByX_ = bb_ * (8 - 4 * x_);
    leftByY_ = aa_ * (12 + 4 * y_);
  }

  i32 x() const { return static_cast<i32>(x_); }
  i32 y() const { return static_cast<i32>(y_); }
  bool bends() const { return y_ != b_ && x_ != leastX_; }
  // All bits or none. Left when the middle between here and there, one row on, lies outside; up when the middle one column
  // on lies inside. One of them always holds.
  std::ptrdiff_t inward() const { return left_ >> 63; }
  std::ptrdiff_t upward() const { return up_ >> 63; }
  void step(std::ptrdiff_t inward, std::ptrdiff_t upward)
  {
    left_ -= (inward & leftByX_) + (upward & leftByY_);
    up_ += (inward & (leftByX_ + 4 * bb_)) + (upward & (leftByY_ - 4 * aa_));
    leftByX_ += inward & 8 * bb_;
    leftByY_ += upward & 8 * aa_;
    x_ += 2 * inward;
    y_ -= 2 * upward;
  }
  // Beyond the bend the walk goes straight on: up, or along the last row.
  i32 rowsLeft() const { return static_cast<i32>((b_ - y_) / 2); }
  i32 columnsLeft() const { return static_cast<i32>((x_ - leastX_) / 2); }

private:
  using i64 = std::int64_t;
  i64 b_, leastX_, x_, y_, aa_, bb_;
  i64 left_, up_;          // how far inside the first middle lies, and how far outside the second, less one
  i64 leftByX_, leftByY_;  // what a step takes off left_
};

// Calls visit(X, Y) for the pels of a QuarterWalk.
template <class Visit> void walkQuarter(i32 diameterX, i32 diameterY, Visit&& visit)
{
  QuarterWalk walk(diameterX, diameterY);
  while (walk.bends()) {
    visit(walk.x(), walk.y());
    walk.step(walk.inward(), walk.upward());
  }
  i32 x = walk.x(), y = walk.y();
  for (; y < diameterY; y += 2)
    visit(x, y);
  for (; x >= (diameterX & 1); x -= 2)
    visit(x, y);
}

// The same pels of all four quarters at once. Top and bottom are the pels at the left end of the middle rows; the right
// ends lie width pels on.
template <class Pel>
void plotQuarters(u8* top, u8* bottom, std::ptrdiff_t pitch, i32 diameterX, i32 diameterY, i32 width, Pel pel)
{
  using i64 = std::int64_t;
  constexpr std::ptrdiff_t size = sizeof(Pel);
  i64 const a = diameterX, b = diameterY, aa = a * a, bb = b * b, aabb = aa * bb, leastX = a & 1, leastY = b & 1;
  // As in QuarterWalk: how far inside the first middle lies, how far outside the second, less one, and what steps change.
  i64 inside = aabb - bb * (a - 1) * (a - 1) - aa * (leastY + 2) * (leastY + 2);
  i64 outside = bb * (a - 2) * (a - 2) + aa * (leastY + 1) * (leastY + 1) - aabb - 1;
  i64 byX = bb * (8 - 4 * a), byY = aa * (12 + 4 * leastY);
  i64 const bb4 = 4 * bb, bb8 = 8 * bb, aa4 = 4 * aa, aa8 = 8 * aa;
  std::ptrdiff_t left = 0, right = width * size;
  std::ptrdiff_t const lastLeft = (a - leastX) / 2 * size;
  u8* const lastTop = top - (b - leastY) / 2 * pitch;
  auto const dots = [&] {
    *reinterpret_cast<Pel*>(top + left) = pel;
    *reinterpret_cast<Pel*>(top + right) = pel;
    *reinterpret_cast<Pel*>(bottom + left) = pel;
    *reinterpret_cast<Pel*>(bottom + right) = pel;
  };
  // First each step goes up, then each goes inward; what may be left between goes by the whole rule.
  while (left != lastLeft && top != lastTop && outside < 0) {
    dots();
    i64 const inward = inside >> 63;
    outside += (inward & (byX + bb4)) + (byY - aa4);
    inside -= (inward & byX) + byY;
    byX += inward & bb8;
    byY += aa8;
    left += inward & size;
    right -= inward & size;
    top -= pitch;
    bottom += pitch;
  }
  while (left != lastLeft && top != lastTop && inside < 0) {
    dots();
    i64 const upward = outside >> 63;
    inside -= byX + (upward & byY);
    outside += byX + bb4 + (upward & (byY - aa4));
    byX += bb8;
    byY += upward & aa8;
    left += size;
    right -= size;
    top -= upward & pitch;
    bottom += upward & pitch;
  }
  while (left != lastLeft && top != lastTop) {
    dots();
    i64 const inward = inside >> 63, upward = outside >> 63;
    inside -= (inward & byX) + (upward & byY);
    outside += (inward & (byX + bb4)) + (upward & (byY - aa4));
    byX += inward & bb8;
    byY += upward & aa8;
    left += inward & size;
    right -= inward & size;
    top -= upward & pitch;
    bottom += upward & pitch;
  }
  // The rest runs straight: a column below the tip, then the row at the top.
  for (; top != lastTop; top -= pitch, bottom += pitch)
    dots();
  if (lastLeft - left <= 24 * size) {
    for (; left <= lastLeft; left += size, right -= size)
      dots();
    return;
  }
  std::ptrdiff_t const run = lastLeft - left;
  std::size_t const count = static_cast<std::size_t>(run / size) + 1;
  for (u8* const from : {top + left, top + right - run, bottom + left, bottom + right - run})
    fillRow(reinterpret_cast<Pel*>(from), count, pel);
}

// Calls visit(pel, place) for the pels of the outline counter-clockwise as seen, from the middle of the right side; place
// counts them. Of straight sides, which may be as long as numbers reach, only the pels of the box seen need come. The first
// pels may come once more at the end. quarter holds the pels of walkQuarter.
template <class Visit>
void walkOutline(CornerBox const& box, std::span<Point const> quarter, Rect const& seen, Visit&& visit)
{
  std::int64_t place = 0;
  Point last;
  auto const add = [&](i32 x, i32 y) {
    if (place != 0 && last == Point{x, y})
      return;
    last = {x, y};
    visit(last, place++);
  };
  // From one pel to another in a row or column. Its ends may stand there already, what lies between is new.
  auto const side = [&](Point from, Point to, bool down, i32 low, i32 high) {
    bool const isRow = from.y == to.y;
    i32 const start = isRow ? from.x : from.y, end = isRow ? to.x : to.y, step = down ? 1 : -1;
    if (down ? start > end : start < end)
      return;
    add(from.x, from.y);
    // The pels between that are seen, in the direction of travel.
    i32 const first = down ? std::max(start + 1, low) : std::min(start - 1, high - 1);
    i32 const past = down ? std::min(end, high) : std::max(end, low - 1);
    std::int64_t const base = place;
    for (i32 at = first; down ? at < past : at > past; at += step) {
      place = base + (std::int64_t{at} - start) * step - 1;
      isRow ? add(at, from.y) : add(from.x, at);
    }
    std::int64_t const between = (std::int64_t{end} - start) * step - 1;
    if (between > 0)
      place = base + between;
    add(to.x, to.y);
  };
  i32 const leastX = box.a & 1, leastY = box.b & 1, bottom = box.bottomOf(box.b), right = box.rightOf(box.a);
  for (Point const& q : quarter)
    add(box.rightOf(q.x), box.topOf(q.y));
  side({box.rightOf(leastX) - 1, box.top}, {box.leftOf(leastX), box.top}, false, seen.left, seen.right);
  for (auto q = quarter.rbegin(); q != quarter.rend(); ++q)
    add(box.leftOf(q->x), box.topOf(q->y));
  side({box.left, box.topOf(leastY) + 1}, {box.left, box.bottomOf(leastY) - 1}, true, seen.top, seen.bottom);
  for (Point const& q : quarter)
    add(box.leftOf(q.x), box.bottomOf(q.y));
  side({box.leftOf(leastX) + 1, bottom}, {box.rightOf(leastX) - 1, bottom}, true, seen.left, seen.right);
  for (auto q = quarter.rbegin(); q != quarter.rend(); ++q)
    add(box.rightOf(q->x), box.bottomOf(q->y));
  side({right, box.bottomOf(leastY) - 1}, {right, box.topOf(leastY)}, false, seen.top, seen.bottom);
}

// All pels of the outline, each once. For boxes without straight sides. scratch keeps memory only.
void outlinePels(CornerBox const&, std::vector<Point>& out, std::vector<Point>& scratch);

// The control points of an outline, counter-clockwise as seen from the middle of the right side: 3 n + 1, closed.
// Corners of no extent stay corners.
void outlineBezier(double left, double top, double right, double bottom, double radiusX, double radiusY,
                   std::vector<PointF>& out);

// The points of 3 n + 1 control points at the given number of chords a curve, first and last included.
void flatten(std::span<PointF const> control, int chords, std::vector<PointF>& out);

// The sector from one ray to another, counter-clockwise as seen; rays of one direction make the full turn.
class Sector {
public:
  Sector(PointF const& from, PointF const& to) : from_(from), to_(to) {}
  bool holds(double x, double y) const;

private:
  PointF from_, to_;
};

}  // namespace plat::portable
