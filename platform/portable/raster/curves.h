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

// The step of a walk over the pels (x, y) of a quarter curve from (a, b & 1) to (a & 1, b), each beside the one before:
// whole-number midpoint rule; a and b at most CornerBox::largest.
class QuarterStep {
public:
  using i64 = std::int64_t;
  QuarterStep(i64 a, i64 b)
  {
    i64 const aa = a * a, bb = b * b, aabb = aa * bb, leastY = b & 1;
    inside_ = aabb - bb * (a - 1) * (a - 1) - aa * (leastY + 2) * (leastY + 2);
    outside_ = bb * (a - 2) * (a - 2) + aa * (leastY + 1) * (leastY + 1) - aabb - 1;
    byX_ = bb * (8 - 4 * a);
    byY_ = aa * (12 + 4 * leastY);
    aa4_ = 4 * aa;
    bb4_ = 4 * bb;
  }

  // All bits or none. Inward when the middle between here and there, one row on, lies outside; upward when the middle one
  // column on lies inside. One of them always holds.
  i64 inward() const { return inside_ >> 63; }
  i64 upward() const { return outside_ >> 63; }
  void take(i64 inward, i64 upward)
  {
    inside_ -= (inward & byX_) + (upward & byY_);
    outside_ += (inward & (byX_ + bb4_)) + (upward & (byY_ - aa4_));
    byX_ += inward & (2 * bb4_);
    byY_ += upward & (2 * aa4_);
  }

private:
  i64 inside_, outside_;  // how far inside the first middle lies, and how far outside the second, less one
  i64 byX_, byY_;         // what a step takes off inside_
  i64 aa4_, bb4_;         // four squares of a and of b
};

// Calls visit(X, Y) for the pels of a quarter curve.
template <class Visit> void walkQuarter(i32 diameterX, i32 diameterY, Visit&& visit)
{
  QuarterStep step(diameterX, diameterY);
  i32 const leastX = diameterX & 1;
  i32 x = diameterX, y = diameterY & 1;
  while (y != diameterY && x != leastX) {
    visit(x, y);
    std::int64_t const inward = step.inward(), upward = step.upward();
    step.take(inward, upward);
    x += static_cast<i32>(2 * inward);
    y -= static_cast<i32>(2 * upward);
  }
  // Beyond the bend the walk goes straight on: up, or along the last row.
  for (; y < diameterY; y += 2)
    visit(x, y);
  for (; x >= leastX; x -= 2)
    visit(x, y);
}

// The same pels of all four quarters at once. Top and bottom are the pels at the left end of the middle rows; the right
// ends lie width pels on.
template <class Pel>
void plotQuarters(u8* top, u8* bottom, std::ptrdiff_t pitch, i32 diameterX, i32 diameterY, i32 width, Pel pel)
{
  using i64 = std::int64_t;
  constexpr std::ptrdiff_t size = sizeof(Pel);
  constexpr i64 always = -1;
  QuarterStep step(diameterX, diameterY);
  std::ptrdiff_t left = 0, right = width * size;
  std::ptrdiff_t const lastLeft = (diameterX - (diameterX & 1)) / 2 * size;
  u8* const lastTop = top - (diameterY - (diameterY & 1)) / 2 * pitch;
  auto const dots = [&] {
    *reinterpret_cast<Pel*>(top + left) = pel;
    *reinterpret_cast<Pel*>(top + right) = pel;
    *reinterpret_cast<Pel*>(bottom + left) = pel;
    *reinterpret_cast<Pel*>(bottom + right) = pel;
  };
  // First each step goes up, then each goes inward; what may be left between goes by the whole rule.
  while (left != lastLeft && top != lastTop && step.upward()) {
    dots();
    i64 const inward = step.inward();
    step.take(inward, always);
    left += inward & size;
    right -= inward & size;
    top -= pitch;
    bottom += pitch;
  }
  while (left != lastLeft && top != lastTop && step.inward()) {
    dots();
    i64 const upward = step.upward();
    step.take(always, upward);
    left += size;
    right -= size;
    top -= upward & pitch;
    bottom += upward & pitch;
  }
  while (left != lastLeft && top != lastTop) {
    dots();
    i64 const inward = step.inward(), upward = step.upward();
    step.take(inward, upward);
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
