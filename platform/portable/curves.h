// Points of ellipses, rounded corners and Bezier curves.
#pragma once

#include "platform/portable/painter.h"

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

// Calls visit(X, Y) for the pels of a quarter curve from (a, b & 1) to (a & 1, b), each beside the one before.
// Whole-number midpoint rule; a and b at most CornerBox::largest.
template <class Visit> void walkQuarter(i32 diameterX, i32 diameterY, Visit&& visit)
{
  using i64 = std::int64_t;
  i64 const a = diameterX, b = diameterY, aa = a * a, bb = b * b, aabb = aa * bb;
  i64 const leastX = a & 1;
  i64 x = a, y = b & 1;
  for (;;) {
    visit(static_cast<i32>(x), static_cast<i32>(y));
    if (y == b) {
      if (x == leastX)
        return;
      x -= 2;
    } else if (x == leastX) {
      y += 2;
    } else {
      // Left when the middle between here and there, one row on, lies outside; up when the middle one column on lies
      // inside. One of them always holds.
      bool const goesLeft = bb * (x - 1) * (x - 1) + aa * (y + 2) * (y + 2) > aabb;
      bool const goesUp = bb * (x - 2) * (x - 2) + aa * (y + 1) * (y + 1) <= aabb;
      x -= goesLeft ? 2 : 0;
      y += goesUp ? 2 : 0;
    }
  }
}

// All pels of the outline, each once, counter-clockwise as seen, from the middle of the right side.
void outlinePels(CornerBox const&, std::vector<Point>& out);

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
