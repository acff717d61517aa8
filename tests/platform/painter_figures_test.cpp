// Figures against plain computations pel by pel, and the same picture at every depth, clip and window.
#include "platform/paint.h"
#include "platform/portable/raster/graphics_objects.h"
#include "platform/portable/raster/painter.h"
#include "tests/platform/canvas.h"

#include <set>

using namespace plat;

namespace {

__extension__ using i128 = __int128;
using Mask = std::vector<u8>;

constexpr int kW = 48, kH = 40;
constexpr int depths[] = {8, 15, 16, 24, 32};
constexpr COLORREF white = 0xFFFFFF;

// Entry 255 of the fake palette is white, entry 0 black.
Mask maskOf(Canvas const& canvas)
{
  Mask mask;
  for (u32 const pel : canvas.pels())
    mask.push_back(pel != 0 ? 1 : 0);
  return mask;
}

std::string pictureOf(Mask const& mask, int width)
{
  std::string rows;
  for (std::size_t i = 0; i < mask.size(); ++i) {
    rows += mask[i] ? '#' : '.';
    if ((i + 1) % static_cast<std::size_t>(width) == 0)
      rows += '\n';
  }
  return rows;
}

void set(Mask& mask, long x, long y)
{
  if (x >= 0 && x < kW && y >= 0 && y < kH)
    mask[static_cast<std::size_t>(y * kW + x)] = 1;
}

// Nearest pel of the minor axis for each of the major one; of two equally near the smaller coordinate.
void plainLine(Mask& mask, Point a, Point b, std::vector<bool> const& pattern, long& phase)
{
  long const dx = long{b.x} - a.x, dy = long{b.y} - a.y;
  bool const steep = std::abs(dy) > std::abs(dx);
  long const n = steep ? std::abs(dy) : std::abs(dx);
  if (n == 0)
    return;
  // Only the steps that meet the canvas.
  long const start = steep ? a.y : a.x, limit = steep ? kH : kW;
  bool const up = (steep ? dy : dx) > 0;
  for (long major = 0; major < limit; ++major) {
    long const i = up ? major - start : start - major;
    if (i < 0 || i >= n)
      continue;
    i128 const numerator = 2 * (i128{steep ? a.x : a.y} * n + i128{i} * (steep ? dx : dy)) - n;
    i128 const twice = i128{2} * n;
    i128 minor = numerator / twice;
    if (numerator > 0 && numerator % twice != 0)
      ++minor;  // upward
    if (minor < -1000 || minor > 1000)
      continue;
    if (pattern.empty() || pattern[static_cast<std::size_t>((phase + i) % static_cast<long>(pattern.size()))])
      set(mask, steep ? static_cast<long>(minor) : major, steep ? major : static_cast<long>(minor));
  }
  phase += n;
}

Mask plainPolyline(std::vector<Point> const& points, bool closed, std::vector<bool> const& pattern = {})
{
  Mask mask(kW * kH, 0);
  long phase = 0;
  for (std::size_t i = 1; i < points.size(); ++i)
    plainLine(mask, points[i - 1], points[i], pattern, phase);
  if (closed)
    plainLine(mask, points.back(), points.front(), pattern, phase);
  return mask;
}

// Each pel by itself: crossings of its row at it or left of it.
Mask plainFill(std::vector<Point> const& points, FillRule rule)
{
  Mask mask(kW * kH, 0);
  for (long y = 0; y < kH; ++y)
    for (long x = 0; x < kW; ++x) {
      int winding = 0, crossings = 0;
      for (std::size_t i = 0; i < points.size(); ++i) {
        Point a = points[i], b = points[(i + 1) % points.size()];
        int direction = 1;
        if (a.y > b.y) {
          std::swap(a, b);
          direction = -1;
        }
        if (y < a.y || y >= b.y)
          continue;
        long const height = long{b.y} - a.y;
        if (i128{a.x} * height + i128{y - a.y} * (long{b.x} - a.x) <= i128{x} * height) {
          winding += direction;
          ++crossings;
        }
      }
      if (rule == FillRule::alternate ? crossings % 2 != 0 : winding != 0)
        set(mask, x, y);
    }
  return mask;
}

struct Shape {
  std::mt19937 random;
  explicit Shape(unsigned seed) : random(seed) {}
  int within(int low, int high)
  {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  }
  Point point(int reach = 20) { return {within(-reach, kW + reach), within(-reach, kH + reach)}; }
  std::vector<Point> points(int count, int reach = 20)
  {
    std::vector<Point> all;
    for (int i = 0; i < count; ++i)
      all.push_back(point(reach));
    return all;
  }
};

// A figure of every kind, by number.
constexpr int kinds = 16;
void paintKind(Painter& p, int kind, unsigned seed)
{
  Shape shape(seed);
  Pen pen;
  pen.color = white;
  auto const box = [&] {
    Point const a = shape.point(10);
    return Rect{a.x, a.y, a.x + shape.within(1, 40), a.y + shape.within(1, 40)};
  };
  switch (kind) {
  case 0: case 1: case 2: case 3: case 4:
    pen.style = static_cast<u8>(kind);
    p.pen(pen);
    p.polyline(shape.points(shape.within(2, 6)));
    break;
  case 5: case 6:
    p.pen(pen);
    p.brush(white);
    p.polygon(shape.points(shape.within(3, 9)), kind == 5 ? FillRule::alternate : FillRule::winding);
    break;
  case 7: case 8:
    p.noPen();
    p.brush(white);
    p.polygon(shape.points(shape.within(3, 9)), kind == 7 ? FillRule::alternate : FillRule::winding);
    break;
  case 9:
    pen.style = static_cast<u8>(shape.within(0, 4));
    p.pen(pen);
    if (shape.within(0, 1))
      p.brush(white);
    p.ellipse(box());
    break;
  case 10: {
    pen.style = static_cast<u8>(shape.within(0, 4));
    p.pen(pen);
    if (shape.within(0, 1))
      p.brush(white);
    Size const corner{shape.within(0, 30), shape.within(0, 30)};
    p.roundRect(box(), corner);
    break;
  }
  case 11: {
    pen.style = static_cast<u8>(shape.within(0, 4));
    p.pen(pen);
    Point const a = shape.point(), b = shape.point();
    p.arc(box(), a, b);
    break;
  }
  case 12: case 13:
    p.pen(pen);
    p.brush(white);
    p.bezier(shape.points(7), kind == 13);
    break;
  case 14:
    pen.width = shape.within(2, 9);
    pen.style = static_cast<u8>(shape.within(0, 4));
    pen.join = static_cast<u8>(shape.within(0, 1));
    pen.cap = static_cast<u8>(shape.within(0, 2));
    p.pen(pen);
    if (shape.within(0, 2) == 0)
      p.polygon(shape.points(shape.within(2, 5)), FillRule::alternate);
    else if (shape.within(0, 2) == 0)
      p.ellipse(box());
    else
      p.polyline(shape.points(shape.within(2, 5)));
    break;
  case 15: {
    p.textColors(white, 0, false);
    Point const at = shape.point(0);
    Rect r{at.x, at.y, at.x, at.y};
    p.drawText("Wg%\nBj", r, 0x900 | static_cast<unsigned>(shape.within(0, 2)));
    break;
  }
  }
}

}  // namespace

TEST(PainterLine, tieGoesToTheSmallerMinorCoordinate)
{
  Canvas canvas(9, 7, 32);
  canvas.painter().pen({white, 1, 0, 0, 0});
  // Slope one half meets the middle of two pels at every other step; the middle counts as the smaller
  // coordinate whichever way the line runs.
  Point const down[2] = {{0, 0}, {6, 3}}, back[2] = {{8, 6}, {2, 3}};
  canvas.painter().polyline(down);
  canvas.painter().polyline(back);
  EXPECT_EQ(canvas.picture(0), "##.......\n"
                               "..##.....\n"
                               "....##...\n"
                               "...#.....\n"
                               "....##...\n"
                               "......##.\n"
                               "........#\n");
}

TEST(PainterLine, startIsPaintedAndEndIsNotAndZeroLengthIsNothing)
{
  Canvas canvas(5, 3, 32);
  canvas.painter().pen({white, 0, 0, 0, 0});  // width 0 paints as 1
  canvas.painter().moveTo({1, 1});
  canvas.painter().lineTo({4, 1});
  canvas.painter().lineTo({4, 1});
  EXPECT_EQ(canvas.picture(0), ".....\n.###.\n.....\n");
  canvas.painter().lineTo({5, 2});  // one more step paints just the end
  EXPECT_EQ(canvas.picture(0), ".....\n.####\n.....\n");
}

TEST(PainterLine, randomPolylinesEqualThePlainComputationAtEveryDepth)
{
  Shape shape(11);
  for (int round = 0; round < 400; ++round) {
    std::vector<Point> const points = shape.points(shape.within(2, 5), round % 2 ? 30 : 0);
    Mask const expected = plainPolyline(points, false);
    for (int const depth : depths) {
      Canvas canvas(kW, kH, depth);
      canvas.painter().pen({white, 1, 0, 0, 0});
      canvas.painter().polyline(points);
      ASSERT_EQ(maskOf(canvas), expected) << depth << '\n' << pictureOf(expected, kW) << canvas.picture(0);
    }
  }
}

TEST(PainterLine, allLinesOfASquareFromItsMiddleEqualThePlainComputation)
{
  for (int y = 0; y < kH; ++y)
    for (int x = 0; x < kW; ++x) {
      std::vector<Point> const points{{20, 17}, {x, y}};
      Canvas canvas(kW, kH, 8);
      canvas.painter().pen({white, 1, 0, 0, 0});
      canvas.painter().polyline(points);
      ASSERT_EQ(maskOf(canvas), plainPolyline(points, false)) << x << ' ' << y;
    }
}

TEST(PainterLine, farLinesAreCutWithoutMovingAPel)
{
  Shape shape(12);
  int met = 0;
  for (int round = 0; round < 2000; ++round) {
    // Through the canvas from far away, at distances up to 10^9.
    Point const mid = shape.point(0);
    double const angle = shape.within(0, 62831) / 10000.0;
    double const reach = std::pow(10.0, 2 + shape.within(0, 699) / 100.0);
    auto const at = [&](double t) {
      return Point{static_cast<i32>(mid.x + t * reach * std::cos(angle)), static_cast<i32>(mid.y + t * reach * std::sin(angle))};
    };
    std::vector<Point> const points{at(-0.99), at(shape.within(1, 98) / 100.0)};
    Mask const expected = plainPolyline(points, false);
    met += std::count(expected.begin(), expected.end(), 1) > 0 ? 1 : 0;
    Canvas canvas(kW, kH, 32);
    canvas.painter().pen({white, 1, 0, 0, 0});
    canvas.painter().polyline(points);
    ASSERT_EQ(maskOf(canvas), expected) << points[0].x << ' ' << points[0].y << ' ' << points[1].x << ' ' << points[1].y;
  }
  EXPECT_GT(met, 1000);
}

TEST(PainterLine, dashesFollowTheTableAndGoOnOverAPolyline)
{
  int const runs[5][6] = {{1}, {18, 6}, {3, 3}, {9, 6, 3, 6}, {9, 3, 3, 3, 3, 3}};
  Shape shape(13);
  for (int round = 0; round < 300; ++round)
    for (u8 style = 1; style <= 4; ++style) {
      std::vector<bool> pattern;
      bool on = true;
      for (int const run : runs[style]) {
        pattern.insert(pattern.end(), static_cast<std::size_t>(run), on);
        on = !on;
      }
      std::vector<Point> const points = shape.points(shape.within(2, 4), 40);
      Canvas canvas(kW, kH, 16);
      canvas.painter().pen({white, 1, style, 0, 0});
      canvas.painter().polyline(points);
      Mask const expected = plainPolyline(points, false, pattern);
      ASSERT_EQ(maskOf(canvas), expected) << int{style} << '\n' << pictureOf(expected, kW) << canvas.picture(0);
    }
}

TEST(PainterLine, eachLineToBeginsItsDashesAnew)
{
  Canvas canvas(16, 1, 32);
  canvas.painter().pen({white, 1, 2, 0, 0});
  canvas.painter().moveTo({0, 0});
  canvas.painter().lineTo({4, 0});
  canvas.painter().lineTo({16, 0});
  EXPECT_EQ(canvas.picture(0), "###.###...###...\n");
}

TEST(PainterPolygon, topAndLeftEdgesAreInAndBottomAndRightAreOut)
{
  Canvas canvas(7, 5, 32);
  canvas.painter().noPen();
  canvas.painter().brush(white);
  Point const square[4] = {{1, 1}, {5, 1}, {5, 4}, {1, 4}};
  canvas.painter().polygon(square, FillRule::alternate);
  EXPECT_EQ(canvas.picture(0), ".......\n"
                               ".####..\n"
                               ".####..\n"
                               ".####..\n"
                               ".......\n");
}

TEST(PainterPolygon, randomPolygonsEqualThePlainComputationByBothRules)
{
  Shape shape(21);
  for (int round = 0; round < 400; ++round) {
    std::vector<Point> const points = shape.points(shape.within(3, 10), round % 3 ? 15 : 0);
    for (FillRule const rule : {FillRule::alternate, FillRule::winding}) {
      Canvas canvas(kW, kH, depths[round % 5]);
      canvas.painter().noPen();
      canvas.painter().brush(white);
      canvas.painter().polygon(points, rule);
      Mask const expected = plainFill(points, rule);
      ASSERT_EQ(maskOf(canvas), expected) << '\n' << pictureOf(expected, kW) << canvas.picture(0);
    }
  }
}

TEST(PainterPolygon, farPolygonsEqualThePlainComputation)
{
  Shape shape(22);
  for (int round = 0; round < 300; ++round) {
    std::vector<Point> points = shape.points(shape.within(3, 6), 0);
    double const factor = std::pow(10.0, shape.within(0, 730) / 100.0);
    for (Point& p : points)
      p = {static_cast<i32>(24 + (p.x - 24) * factor), static_cast<i32>(20 + (p.y - 20) * factor)};
    Canvas canvas(kW, kH, 32);
    canvas.painter().noPen();
    canvas.painter().brush(white);
    canvas.painter().polygon(points, FillRule::winding);
    ASSERT_EQ(maskOf(canvas), plainFill(points, FillRule::winding)) << factor;
  }
}

TEST(PainterPolygon, penPaintsTheClosedOutlineOverTheFill)
{
  Shape shape(23);
  for (int round = 0; round < 200; ++round) {
    std::vector<Point> const points = shape.points(shape.within(3, 7), 10);
    Canvas canvas(kW, kH, 32);
    canvas.painter().pen({0x0000FF, 1, 0, 0, 0});
    canvas.painter().brush(0x00FF00);
    canvas.painter().polygon(points, FillRule::alternate);
    Mask const fill = plainFill(points, FillRule::alternate), line = plainPolyline(points, true);
    for (int y = 0; y < kH; ++y)
      for (int x = 0; x < kW; ++x) {
        std::size_t const i = static_cast<std::size_t>(y * kW + x);
        ASSERT_EQ(canvas.at(x, y), line[i] ? 0xFF0000u : fill[i] ? 0x00FF00u : 0u) << x << ' ' << y;
      }
  }
}

TEST(PainterFlood, fillsWhatHangsTogetherOverASurfaceAndUpToABorder)
{
  Shape shape(31);
  for (int round = 0; round < 200; ++round)
    for (bool const surface : {true, false}) {
      Canvas canvas(kW, kH, depths[round % 5]);
      Painter& p = canvas.painter();
      p.pen({white, 1, 0, 0, 0});
      for (int i = 0; i < 6; ++i)
        p.polyline(shape.points(2, 10));
      Rect const clip{3, 2, 44, 37};
      p.clip(&clip);
      Mask const walls = maskOf(canvas);
      Point const start = shape.point(0);
      Mask expected(kW * kH, 0);
      std::vector<Point> open{start};
      while (!open.empty()) {
        Point const at = open.back();
        open.pop_back();
        if (at.x < clip.left || at.x >= clip.right || at.y < clip.top || at.y >= clip.bottom)
          continue;
        std::size_t const i = static_cast<std::size_t>(at.y * kW + at.x);
        if (expected[i] || walls[i])
          continue;
        expected[i] = 1;
        for (Point const step : {Point{1, 0}, Point{-1, 0}, Point{0, 1}, Point{0, -1}})
          open.push_back({at.x + step.x, at.y + step.y});
      }
      p.setBounds(nullptr, 5);
      p.brush(0x808080);
      p.floodFill(start, surface ? 0 : white, surface);

      u32 const grey = depths[round % 5] == 8 ? 0x80 : depths[round % 5] == 15 ? 0x4210 : depths[round % 5] == 16 ? 0x8410 : 0x808080;
      Rect around{kW, kH, 0, 0};
      for (int y = 0; y < kH; ++y)
        for (int x = 0; x < kW; ++x) {
          bool const in = expected[static_cast<std::size_t>(y * kW + x)];
          ASSERT_EQ(canvas.at(x, y) == grey, in) << x << ' ' << y;
          if (in)
            around = {std::min(around.left, x), std::min(around.top, y), std::max(around.right, x + 1), std::max(around.bottom, y + 1)};
        }
      Rect bounds;
      if (p.getBounds(bounds, 0) == 3) {
        EXPECT_EQ(bounds, around);
      } else {
        EXPECT_EQ(around.left, kW);
      }
    }
}

TEST(PainterFlood, overItsOwnColourEndsAndWithoutABrushDoesNothing)
{
  Canvas canvas(6, 4, 32);
  canvas.painter().floodFill({1, 1}, 0, true);
  EXPECT_EQ(canvas.at(1, 1), 0u);
  canvas.painter().brush(0);
  canvas.painter().floodFill({1, 1}, 0, true);
  canvas.painter().brush(0xFF);
  canvas.painter().floodFill({1, 1}, 0xFF, false);
  canvas.painter().floodFill({1, 1}, 0xFF00, false);  // painted pels may be crossed again
  EXPECT_EQ(canvas.at(5, 3), 0xFF0000u);
}

TEST(PainterEllipse, smallOnesByHand)
{
  Canvas canvas(20, 8, 32);
  canvas.painter().pen({white, 1, 0, 0, 0});
  canvas.painter().ellipse({0, 0, 5, 5});
  canvas.painter().ellipse({6, 0, 10, 4});
  canvas.painter().ellipse({11, 0, 12, 7});
  canvas.painter().ellipse({13, 0, 19, 1});
  canvas.painter().ellipse({13, 3, 20, 6});
  EXPECT_EQ(canvas.picture(0), ".###...##..#.######.\n"
                               "#...#.#..#.#........\n"
                               "#...#.#..#.#........\n"
                               "#...#..##..#..#####.\n"
                               ".###.......#.#.....#\n"
                               "...........#..#####.\n"
                               "...........#........\n"
                               "....................\n");
}

TEST(PainterEllipse, outlineFillsItsBoxIsSymmetricAndLiesOnTheCurve)
{
  for (int w = 2; w <= 40; ++w)
    for (int h = 2; h <= 36; ++h) {
      Canvas canvas(kW, kH, 8);
      canvas.painter().pen({white, 1, 0, 0, 0});
      canvas.painter().ellipse({3, 2, 3 + w, 2 + h});
      Rect around{kW, kH, 0, 0};
      double const a = (w - 1) / 2.0, b = (h - 1) / 2.0;
      for (int y = 0; y < kH; ++y)
        for (int x = 0; x < kW; ++x) {
          if (!canvas.at(x, y))
            continue;
          around = {std::min(around.left, x), std::min(around.top, y), std::max(around.right, x + 1), std::max(around.bottom, y + 1)};
          ASSERT_TRUE(canvas.at(2 * 3 + w - 1 - x, y) && canvas.at(x, 2 * 2 + h - 1 - y)) << w << ' ' << h;
          // The curve passes within one pel, along one axis or the other.
          double const X = std::abs(x - 3 - a), Y = std::abs(y - 2 - b);
          double const onX = a * std::sqrt(std::max(0.0, 1 - Y * Y / (b * b))), onY = b * std::sqrt(std::max(0.0, 1 - X * X / (a * a)));
          ASSERT_LE(std::min(std::abs(onX - X), std::abs(onY - Y)), 0.75) << w << ' ' << h << ' ' << x << ' ' << y << '\n' << canvas.picture(0);
        }
      ASSERT_EQ(around, (Rect{3, 2, 3 + w, 2 + h})) << canvas.picture(0);
    }
}

TEST(PainterEllipse, fillIsTheRowsBetweenTheOutline)
{
  for (int w = 1; w <= 30; w += 3)
    for (int h = 1; h <= 30; h += 2)
      for (Size const corner : {Size{1000, 1000}, Size{9, 6}, Size{0, 0}, Size{6, 200}}) {
        Canvas outline(kW, kH, 32), filled(kW, kH, 32);
        Rect const box{4, 3, 4 + w, 3 + h};
        outline.painter().pen({white, 1, 0, 0, 0});
        outline.painter().roundRect(box, corner);
        filled.painter().noPen();
        filled.painter().brush(white);
        filled.painter().roundRect(box, corner);
        for (int y = 0; y < kH; ++y) {
          int first = kW, last = -1;
          for (int x = 0; x < kW; ++x)
            if (outline.at(x, y)) {
              first = std::min(first, x);
              last = x;
            }
          for (int x = 0; x < kW; ++x)
            ASSERT_EQ(filled.at(x, y) != 0, x >= first && x <= last) << w << ' ' << h << '\n' << outline.picture(0) << filled.picture(0);
        }
      }
}

TEST(PainterRoundRect, hasStraightSidesAndQuarterCurves)
{
  Canvas canvas(14, 9, 32);
  canvas.painter().pen({white, 1, 0, 0, 0});
  canvas.painter().roundRect({1, 1, 13, 8}, {5, 5});
  EXPECT_EQ(canvas.picture(0), "..............\n"
                               "..##########..\n"
                               ".#..........#.\n"
                               ".#..........#.\n"
                               ".#..........#.\n"
                               ".#..........#.\n"
                               ".#..........#.\n"
                               "..##########..\n"
                               "..............\n");
}

TEST(PainterRoundRect, withoutCornersIsARectangle)
{
  Canvas canvas(7, 5, 32);
  canvas.painter().pen({white, 1, 0, 0, 0});
  canvas.painter().roundRect({1, 1, 6, 4}, {0, 0});
  EXPECT_EQ(canvas.picture(0), ".......\n.#####.\n.#...#.\n.#####.\n.......\n");
}

TEST(PainterArc, isThePartOfTheOutlineCounterClockwiseBetweenTheRays)
{
  Canvas canvas(5, 5, 32);
  canvas.painter().pen({white, 1, 0, 0, 0});
  canvas.painter().arc({0, 0, 5, 5}, {9, 2}, {2, -9});  // from the right to the top
  EXPECT_EQ(canvas.picture(0), "..##.\n"
                               "....#\n"
                               "....#\n"
                               ".....\n"
                               ".....\n");
  canvas.reopen();
  canvas.painter().fillRect({0, 0, 5, 5}, 0);
  canvas.painter().pen({white, 1, 0, 0, 0});
  canvas.painter().arc({0, 0, 5, 5}, {2, -9}, {9, 2});  // the other way round
  EXPECT_EQ(canvas.picture(0), ".##..\n"
                               "#....\n"
                               "#...#\n"
                               "#...#\n"
                               ".###.\n");
}

TEST(PainterArc, raysOfOneDirectionMakeTheWholeEllipse)
{
  Canvas arc(kW, kH, 32), whole(kW, kH, 32);
  arc.painter().pen({white, 1, 0, 0, 0});
  whole.painter().pen({white, 1, 0, 0, 0});
  arc.painter().arc({4, 5, 33, 30}, {40, 3}, {40, 3});
  whole.painter().ellipse({4, 5, 33, 30});
  EXPECT_EQ(arc.picture(0), whole.picture(0));
}

TEST(PainterEllipse, largeOnesMeetTheSmallOnesRule)
{
  // A circle of a million pels through the canvas: its pels lie beside the true curve.
  Canvas canvas(kW, kH, 32);
  canvas.painter().pen({white, 1, 0, 0, 0});
  canvas.painter().ellipse({10 - 1000000, 20 - 500000, 11, 20 + 500001});
  double const rx = 500000, ry = 500000, cx = 10 - 500000, cy = 20;
  int count = 0;
  for (int y = 0; y < kH; ++y)
    for (int x = 0; x < kW; ++x)
      if (canvas.at(x, y)) {
        ++count;
        EXPECT_NEAR(std::hypot((x - cx) / rx, (y - cy) / ry), 1, 1.5e-6) << x << ' ' << y;
      }
  EXPECT_GE(count, kH);
}

TEST(PainterWide, flatHorizontalLineCoversHalfItsWidthAboveAndBelow)
{
  for (int const depth : depths)
    for (int width = 2; width <= 11; ++width) {
      Canvas canvas(kW, kH, depth);
      canvas.painter().pen({white, width, 0, 0, 1});
      Point const line[2] = {{7, 20}, {31, 20}}, column[2] = {{40, 5}, {40, 12}};
      canvas.painter().polyline(line);
      canvas.painter().polyline(column);
      for (int y = 0; y < kH; ++y)
        for (int x = 0; x < kW; ++x) {
          bool const in = x >= 7 && x < 31 && 2 * y >= 40 - width && 2 * y < 40 + width;
          bool const upright = y >= 5 && y < 12 && 2 * x >= 80 - width && 2 * x < 80 + width;
          ASSERT_EQ(canvas.at(x, y) != 0, in || upright) << width << ' ' << x << ' ' << y;
        }
    }
}

TEST(PainterWide, squareCapsAddHalfTheWidth)
{
  Canvas canvas(kW, kH, 32);
  canvas.painter().pen({white, 6, 0, 0, 2});
  Point const line[2] = {{10, 20}, {30, 20}};
  canvas.painter().polyline(line);
  for (int y = 0; y < kH; ++y)
    for (int x = 0; x < kW; ++x)
      ASSERT_EQ(canvas.at(x, y) != 0, x >= 7 && x < 33 && y >= 17 && y < 23) << x << ' ' << y;
}

TEST(PainterWide, roundCapsAndPointsAreDiscs)
{
  Canvas canvas(kW, kH, 32);
  canvas.painter().pen({white, 9, 0, 0, 0});
  Point const still[2] = {{10, 10}, {10, 10}}, line[2] = {{25, 25}, {35, 25}};
  canvas.painter().polyline(still);
  canvas.painter().polyline(line);
  for (int y = 0; y < kH; ++y)
    for (int x = 0; x < kW; ++x) {
      double const dot = std::hypot(x - 10, y - 10);
      double const dx = x < 25 ? x - 25 : x > 35 ? x - 35 : 0;
      double const bar = std::hypot(dx, y - 25);
      double const near = std::min(dot, bar);
      if (near < 4.2) {
        EXPECT_TRUE(canvas.at(x, y)) << x << ' ' << y << '\n' << canvas.picture(0);
      }
      if (near > 4.8) {
        EXPECT_FALSE(canvas.at(x, y)) << x << ' ' << y << '\n' << canvas.picture(0);
      }
    }
}

TEST(PainterWide, flatHorizontalDashesAreMultiplesOfTheWidth)
{
  int const runs[5][6] = {{}, {3, 1}, {1, 1}, {3, 1, 1, 1}, {3, 1, 1, 1, 1, 1}};
  int const counts[5] = {0, 2, 2, 4, 6};
  for (u8 style = 1; style <= 4; ++style)
    for (int width = 2; width <= 4; ++width) {
      Canvas canvas(kW, kH, 16);
      canvas.painter().pen({white, width, style, 0, 1});
      Point const line[2] = {{2, 20}, {44, 20}};
      canvas.painter().polyline(line);
      std::vector<bool> on;
      for (int k = 0; on.size() < 100; ++k)
        on.insert(on.end(), static_cast<std::size_t>(runs[style][k % counts[style]] * width), k % 2 == 0);
      for (int x = 0; x < kW; ++x)
        ASSERT_EQ(canvas.at(x, 20) != 0, x >= 2 && x < 44 && on[static_cast<std::size_t>(x - 2)]) << int{style} << ' ' << width << ' ' << x;
    }
}

TEST(PainterWide, farLinesCrossTheCanvasWithTheirWholeWidth)
{
  for (u8 const style : {u8{0}, u8{1}}) {
    Canvas canvas(kW, kH, 32);
    canvas.painter().pen({white, 6, style, 0, 1});
    Point const line[2] = {{-1000000000, 20}, {1000000000, 20}};
    canvas.painter().polyline(line);
    int painted = 0;
    for (int y = 0; y < kH; ++y)
      for (int x = 0; x < kW; ++x) {
        if (y < 17 || y >= 23 || style == 0) {
          ASSERT_EQ(canvas.at(x, y) != 0, y >= 17 && y < 23) << x << ' ' << y;
        }
        painted += canvas.at(x, y) ? 1 : 0;
      }
    EXPECT_GE(painted, 6 * 30);
    EXPECT_LE(painted, 6 * 48);
  }
}

TEST(PainterWide, closedPolygonHasNoGapAtItsStart)
{
  Canvas canvas(30, 30, 32);
  canvas.painter().pen({white, 4, 0, 1, 1});
  Point const square[4] = {{6, 6}, {22, 6}, {22, 22}, {6, 22}};
  canvas.painter().polygon(square, FillRule::alternate);
  for (int i = 6; i < 22; ++i) {
    EXPECT_TRUE(canvas.at(i, 6) && canvas.at(6, i) && canvas.at(i, 22) && canvas.at(22, i)) << i;
    EXPECT_TRUE(canvas.at(i, 4) && canvas.at(4, i)) << i;
  }
  EXPECT_FALSE(canvas.at(14, 14));
  EXPECT_FALSE(canvas.at(9, 9));
  EXPECT_FALSE(canvas.at(4, 4));  // bevelled
}

TEST(PainterBezier, passesCloseToTheCurveAndBeginsAtItsStart)
{
  Shape shape(41);
  for (int round = 0; round < 100; ++round) {
    std::vector<Point> const c = shape.points(4, 0);
    Canvas canvas(kW, kH, 32);
    canvas.painter().pen({white, 1, 0, 0, 0});
    canvas.painter().bezier(c, false);
    std::vector<std::pair<double, double>> curve;
    for (int i = 0; i <= 2000; ++i) {
      // By repeated halving between the control points.
      double const t = i / 2000.0;
      double x[4], y[4];
      for (std::size_t k = 0; k < 4; ++k) {
        x[k] = c[k].x;
        y[k] = c[k].y;
      }
      for (std::size_t left = 3; left > 0; --left)
        for (std::size_t k = 0; k < left; ++k) {
          x[k] += (x[k + 1] - x[k]) * t;
          y[k] += (y[k + 1] - y[k]) * t;
        }
      curve.push_back({x[0], y[0]});
    }
    for (int y = 0; y < kH; ++y)
      for (int x = 0; x < kW; ++x) {
        if (!canvas.at(x, y))
          continue;
        double nearest = 1e9;
        for (auto const& [cx, cy] : curve)
          nearest = std::min(nearest, std::hypot(cx - x, cy - y));
        ASSERT_LE(nearest, 1.4) << x << ' ' << y;
      }
    if (!(c[0] == c[3]) && c[0].x < kW && c[0].y < kH) {
      EXPECT_TRUE(canvas.at(c[0].x, c[0].y));
    }
  }
}

TEST(PainterBezier, filledPathIsThePolygonOfItsChords)
{
  Canvas path(kW, kH, 32), polygon(kW, kH, 32);
  path.painter().brush(white);
  path.painter().pen({0xFF, 1, 0, 0, 0});
  Point const control[4] = {{5, 30}, {5, 5}, {40, 5}, {40, 30}};
  path.painter().bezier(control, true);
  std::vector<Point> chords;
  for (int i = 0; i <= 16; ++i) {
    double const t = i / 16.0, s = 1 - t;
    double const x = 5 * s * s * s + 15 * s * s * t + 120 * s * t * t + 40 * t * t * t;
    double const y = 30 * s * s * s + 15 * s * s * t + 15 * s * t * t + 30 * t * t * t;
    chords.push_back({static_cast<i32>(std::floor(x + 0.5)), static_cast<i32>(std::floor(y + 0.5))});
  }
  polygon.painter().noPen();
  polygon.painter().brush(white);
  polygon.painter().polygon(chords, FillRule::alternate);
  EXPECT_EQ(path.picture(0), polygon.picture(0));
}

TEST(PainterTransform, quarterTurnOfAnEllipseIsTheUprightOne)
{
  // x' = -y, y' = x about (20, 20).
  Xform const turn{0, 1, -1, 0, 40, 0};
  Canvas turned(kW, kH, 32), upright(kW, kH, 32);
  for (Canvas* c : {&turned, &upright}) {
    c->painter().pen({white, 1, 0, 0, 0});
    c->painter().brush(white);
  }
  EXPECT_TRUE(turned.painter().worldTransform(&turn));
  turned.painter().ellipse({8, 14, 33, 27});  // columns 8..32, rows 14..26
  upright.painter().ellipse({14, 8, 27, 33});
  Mask const a = maskOf(turned), b = maskOf(upright);
  Rect around{kW, kH, 0, 0};
  int differing = 0;
  for (int y = 0; y < kH; ++y)
    for (int x = 0; x < kW; ++x) {
      std::size_t const i = static_cast<std::size_t>(y * kW + x);
      differing += a[i] != b[i] ? 1 : 0;
      if (a[i])
        around = {std::min(around.left, x), std::min(around.top, y), std::max(around.right, x + 1), std::max(around.bottom, y + 1)};
    }
  EXPECT_EQ(around, (Rect{14, 8, 27, 33}));
  EXPECT_LE(differing, 16);  // a path of chords against the midpoint curve
}

TEST(PainterTransform, turnedLinesAndRectanglesGoThroughTheirTransformedPoints)
{
  Xform const turn{0, 1, -1, 0, 40, 0};
  Canvas turned(kW, kH, 32), plain(kW, kH, 32);
  for (Canvas* c : {&turned, &plain})
    c->painter().pen({white, 1, 0, 0, 0});
  turned.painter().worldTransform(&turn);
  Point const line[3] = {{3, 8}, {30, 20}, {12, 33}}, same[3] = {{32, 3}, {20, 30}, {7, 12}};
  turned.painter().polyline(line);
  plain.painter().polyline(same);
  turned.painter().fillRect({25, 2, 30, 6}, white);
  plain.painter().fillRect({34, 25, 38, 30}, white);
  EXPECT_EQ(turned.picture(0), plain.picture(0));
}

TEST(PainterTransform, sidesOfATurnedRectangleAreStraight)
{
  // By the angle of the 3-4-5 triangle, so corners come to lie on whole pels.
  Xform const turn{0.8f, 0.6f, -0.6f, 0.8f, 15, 0};
  Canvas turned(kW, kH, 32), plain(kW, kH, 32);
  for (Canvas* c : {&turned, &plain}) {
    c->painter().pen({white, 1, 0, 0, 0});
    c->painter().brush(white);
  }
  turned.painter().worldTransform(&turn);
  turned.painter().roundRect({0, 0, 26, 16}, {0, 0});  // its outline runs through 25 and 15
  Point const corners[4] = {{35, 15}, {15, 0}, {6, 12}, {26, 27}};
  plain.painter().polygon(corners, FillRule::alternate);
  EXPECT_EQ(turned.picture(0), plain.picture(0));
}

TEST(PainterPictures, everyFigureIsTheSameAtEveryDepth)
{
  FakeScreen screen({8, 8}, 32);
  for (int kind = 0; kind < kinds; ++kind)
    for (unsigned seed = 0; seed < 40; ++seed) {
      Mask first;
      for (int const depth : depths) {
        Canvas canvas(kW, kH, depth);
        paintKind(canvas.painter(), kind, seed);
        if (first.empty())
          first = maskOf(canvas);
        ASSERT_EQ(maskOf(canvas), first) << kind << ' ' << seed << ' ' << depth;
      }
    }
}

TEST(PainterPictures, clipChangesNoPelOfAnyFigure)
{
  FakeScreen screen({8, 8}, 32);
  Shape shape(51);
  for (int kind = 0; kind < kinds; ++kind) {
    int painted = 0;
    for (unsigned seed = 0; seed < 120; ++seed) {
      Canvas whole(kW, kH, 32), cut(kW, kH, 32);
      paintKind(whole.painter(), kind, seed);
      Point const a = shape.point(0), b = shape.point(0);
      Rect const clip{std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x) + 1, std::max(a.y, b.y) + 1};
      cut.painter().clip(&clip);
      paintKind(cut.painter(), kind, seed);
      for (int y = 0; y < kH; ++y)
        for (int x = 0; x < kW; ++x) {
          bool const in = x >= clip.left && x < clip.right && y >= clip.top && y < clip.bottom;
          ASSERT_EQ(cut.at(x, y), in ? whole.at(x, y) : 0u) << kind << ' ' << seed << ' ' << x << ' ' << y;
          painted += whole.at(x, y) ? 1 : 0;
        }
    }
    EXPECT_GT(painted, 500) << kind;
  }
}

TEST(PainterPictures, windowShowsTheSurfacesPictureInItsVisibleRectangles)
{
  for (int const depth : depths) {
    for (int kind = 0; kind < kinds; ++kind)
      for (unsigned seed = 200; seed < 212; ++seed) {
        FakeScreen screen({kW + 10, kH + 8}, depth, {300, 100}, {5, 3});
        screen.visible = {{5, 3, 20, 12}, {20, 3, 40, 9}, {9, 20, 50, 43}};
        Canvas surface(kW, kH, depth);
        paintKind(surface.painter(), kind, seed);
        HDC const dc = plat::portable::openWindowDC(screen.window());
        paintKind(*plat::painter(dc), kind, seed);
        plat::portable::closeWindowDC(dc);
        for (int y = 0; y < kH + 8; ++y)
          for (int x = 0; x < kW + 10; ++x) {
            bool seen = false;
            for (Rect const& r : screen.visible)
              seen = seen || (x >= r.left && x < r.right && y >= r.top && y < r.bottom);
            bool const inside = x >= 5 && x < 5 + kW && y >= 3 && y < 3 + kH;
            if (!seen) {
              ASSERT_EQ(screen.at(x, y), 0u) << kind << ' ' << seed;
            } else if (inside) {
              ASSERT_EQ(screen.at(x, y), surface.at(x - 5, y - 3)) << kind << ' ' << seed << ' ' << x << ' ' << y;
            }
          }
      }
  }
}

TEST(PainterPictures, boundsHoldEveryPaintedPel)
{
  for (int kind = 0; kind < kinds; ++kind)
    for (unsigned seed = 0; seed < 60; ++seed) {
      Canvas canvas(kW, kH, 32);
      canvas.painter().setBounds(nullptr, 5);
      paintKind(canvas.painter(), kind, seed);
      Rect r;
      bool const any = canvas.painter().getBounds(r, 0) == 3;
      for (int y = 0; y < kH; ++y)
        for (int x = 0; x < kW; ++x)
          if (canvas.at(x, y)) {
            ASSERT_TRUE(any && x >= r.left && x < r.right && y >= r.top && y < r.bottom) << kind << ' ' << seed;
          }
    }
}

TEST(PainterPictures, windowFloodCrossesFromOneVisibleRectangleToTheNext)
{
  FakeScreen screen({20, 10}, 32);
  screen.visible = {{0, 0, 8, 10}, {8, 0, 12, 3}, {14, 0, 20, 10}};
  HDC const dc = plat::portable::openWindowDC(screen.window());
  Painter* const p = plat::painter(dc);
  p->brush(0xFF);
  p->floodFill({1, 8}, 0, true);
  plat::portable::closeWindowDC(dc);
  EXPECT_EQ(screen.at(11, 1), 0xFF0000u);
  EXPECT_EQ(screen.at(11, 4), 0u);
  EXPECT_EQ(screen.at(15, 1), 0u);  // not connected
  ASSERT_EQ(screen.presented.size(), 1u);
  EXPECT_EQ(screen.presented[0], (Rect{0, 0, 12, 10}));
}
