// Lines, dashes, polygons and floods worked out pel by pel from their rules. A pel's centre lies at its whole coordinates. It
// shares no code with the library and makes no attempt to be fast; coordinates may be up to 10^9 away.
#pragma once

#include "tests/support/plain_painter.h"

#include <cstdint>
#include <vector>

namespace plain {

struct Point {
  std::int64_t x = 0, y = 0;
};

// What a figure is painted on: the picture, the part of it that takes pels, and the pel value.
struct Ink {
  Picture& picture;
  Rect clip;
  std::uint32_t value = 0;
  void dot(std::int64_t x, std::int64_t y) const;
};

// Styles of broken pens: 0 solid, 1 dash, 2 dot, 3 dash-dot, 4 dash-dot-dot.
//
// A line one pel wide: along its longer way one pel a step, the nearest to the line, of two equally near the one with the
// smaller coordinate; the start is painted and the end is not. `phase` counts the steps since the dashes began.
void thinLine(Ink const&, Point from, Point to, int style, std::int64_t& phase);
void thinLines(Ink const&, std::vector<Point> const&, bool closed, int style);  // in turn, dashes going on

// Pels whose centres lie inside: by an odd number of crossings, or wound by any number but 0. Of edges through centres the
// left and the upper ones belong to the inside, the right and the lower ones don't.
enum class Inside { odd, wound };
void polygon(Ink const&, std::vector<Point> const&, Inside);

// All that hangs together with the start by its sides: what has the value `which`, or everything up to that value.
enum class FloodOver { value, upToValue };
void flood(Ink const&, Point start, std::uint32_t which, FloodOver);

// A wide line between two points of one row or one column, with ends that stop there: half the width to either side.
void flatLine(Ink const&, Point from, Point to, std::int64_t width);
// Dashes in multiples of the width, beginning at `from`; a horizontal line only.
void flatDashes(Ink const&, Point from, Point to, std::int64_t width, int style);

}  // namespace plain
