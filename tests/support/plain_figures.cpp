#include "tests/support/plain_figures.h"

#include <cstdlib>

namespace plain {

namespace {

__extension__ using Wide = __int128;  // products of two distances and a factor

// The least whole number not below a / b, for b above 0.
Wide roundedUp(Wide a, Wide b)
{
  Wide q = a / b;
  while (q * b < a)
    ++q;
  while ((q - 1) * b >= a)
    --q;
  return q;
}

// Is step i of a broken pen on? `unit` is how many pels one of the table's lengths stands for.
bool isOn(std::vector<int> const& runs, std::int64_t unit, std::int64_t i)
{
  if (runs.empty())
    return true;
  std::int64_t all = 0;
  for (int const run : runs)
    all += run * unit;
  std::int64_t at = i % all;
  bool on = true;
  for (int const run : runs) {
    if (at < run * unit)
      return on;
    at -= run * unit;
    on = !on;
  }
  return on;
}

std::vector<int> thinRuns(int style)
{
  switch (style) {
  case 1: return {18, 6};
  case 2: return {3, 3};
  case 3: return {9, 6, 3, 6};
  case 4: return {9, 3, 3, 3, 3, 3};
  default: return {};
  }
}

// In pen widths.
std::vector<int> wideRuns(int style)
{
  switch (style) {
  case 1: return {3, 1};
  case 2: return {1, 1};
  case 3: return {3, 1, 1, 1};
  case 4: return {3, 1, 1, 1, 1, 1};
  default: return {};
  }
}

bool inRect(Rect const& r, std::int64_t x, std::int64_t y)
{
  return x >= r.x && y >= r.y && x < r.x + r.w && y < r.y + r.h;
}

std::int64_t distance(std::int64_t a, std::int64_t b)
{
  return a < b ? b - a : a - b;
}

}  // namespace

void Ink::dot(std::int64_t x, std::int64_t y) const
{
  if (inRect(clip, x, y))
    picture.put(static_cast<long>(x), static_cast<long>(y), value);
}

void thinLine(Ink const& ink, Point from, Point to, int style, std::int64_t& phase)
{
  std::int64_t const wide = distance(from.x, to.x), high = distance(from.y, to.y);
  bool const upright = high > wide;
  std::int64_t const steps = upright ? high : wide;
  std::vector<int> const runs = thinRuns(style);
  // Every row of the picture for an upright line, else every column; at most one step of the line lies there.
  long const lines = upright ? ink.picture.height() : ink.picture.width();
  for (long along = 0; along < lines; ++along) {
    std::int64_t const start = upright ? from.y : from.x, end = upright ? to.y : to.x;
    std::int64_t const step = end > start ? along - start : start - along;
    if (step < 0 || step >= steps || !isOn(runs, 1, phase + step))
      continue;
    // The line lies at start + step / steps of the way across, and the nearest whole number, halves downward, is the least
    // one that isn't more than a half below.
    std::int64_t const across = upright ? from.x : from.y, way = (upright ? to.x : to.y) - across;
    Wide const at = roundedUp(2 * (Wide{across} * steps + Wide{way} * step) - steps, Wide{2} * steps);
    if (at < 0 || at > 100000)
      continue;
    std::int64_t const other = static_cast<std::int64_t>(at);
    ink.dot(upright ? other : along, upright ? along : other);
  }
  phase += steps;
}

void thinLines(Ink const& ink, std::vector<Point> const& points, bool closed, int style)
{
  std::int64_t phase = 0;
  for (std::size_t i = 0; i + 1 < points.size(); ++i)
    thinLine(ink, points[i], points[i + 1], style, phase);
  if (closed && !points.empty())
    thinLine(ink, points.back(), points.front(), style, phase);
}

void polygon(Ink const& ink, std::vector<Point> const& points, Inside inside)
{
  for (long y = 0; y < ink.picture.height(); ++y)
    for (long x = 0; x < ink.picture.width(); ++x) {
      int wound = 0, crossed = 0;
      for (std::size_t i = 0; i < points.size(); ++i) {
        Point const from = points[i], to = points[i + 1 < points.size() ? i + 1 : 0];
        bool const down = from.y < to.y;
        Point const top = down ? from : to, bottom = down ? to : from;
        if (y < top.y || y >= bottom.y)
          continue;
        // Where the edge meets the middle of the row, against the middle of the pel, both times the edge's height.
        Wide const height = bottom.y - top.y;
        Wide const edge = height * top.x + Wide{bottom.x - top.x} * (y - top.y);
        if (edge > height * x)
          continue;
        wound += down ? 1 : -1;
        crossed += 1;
      }
      if (inside == Inside::odd ? crossed % 2 == 1 : wound != 0)
        ink.dot(x, y);
    }
}

void flood(Ink const& ink, Point start, std::uint32_t which, FloodOver over)
{
  Picture const before = ink.picture;
  Picture reached(before.width(), before.height());
  std::vector<Point> next{start};
  while (!next.empty()) {
    Point const p = next.back();
    next.pop_back();
    long const x = static_cast<long>(p.x), y = static_cast<long>(p.y);
    if (!inRect(ink.clip, p.x, p.y) || p.x < 0 || p.y < 0 || p.x >= before.width() || p.y >= before.height() ||
        reached.at(x, y) != 0)
      continue;
    if ((before.at(x, y) == which) != (over == FloodOver::value))
      continue;
    reached.put(x, y, 1);
    ink.dot(x, y);
    next.push_back(Point{p.x + 1, p.y});
    next.push_back(Point{p.x - 1, p.y});
    next.push_back(Point{p.x, p.y + 1});
    next.push_back(Point{p.x, p.y - 1});
  }
}

void flatLine(Ink const& ink, Point from, Point to, std::int64_t width)
{
  bool const upright = from.x == to.x;
  std::int64_t const middle = upright ? from.x : from.y;
  std::int64_t const a = upright ? from.y : from.x, b = upright ? to.y : to.x;
  for (long y = 0; y < ink.picture.height(); ++y)
    for (long x = 0; x < ink.picture.width(); ++x) {
      std::int64_t const along = upright ? y : x, across = upright ? x : y;
      bool const beside = 2 * across >= 2 * middle - width && 2 * across < 2 * middle + width;
      bool const between = a < b ? along >= a && along < b : along >= b && along < a;
      if (beside && between)
        ink.dot(x, y);
    }
}

void flatDashes(Ink const& ink, Point from, Point to, std::int64_t width, int style)
{
  std::vector<int> const runs = wideRuns(style);
  for (long y = 0; y < ink.picture.height(); ++y)
    for (long x = 0; x < ink.picture.width(); ++x) {
      bool const beside = 2 * y >= 2 * from.y - width && 2 * y < 2 * from.y + width;
      // A dash covers whole steps of one pel; a step to the left lies at the pel where it ends.
      bool const right = from.x < to.x;
      std::int64_t const step = right ? x - from.x : from.x - 1 - x;
      if (beside && step >= 0 && step < distance(from.x, to.x) && isOn(runs, width, step))
        ink.dot(x, y);
    }
}

}  // namespace plain
