// Figures of many points, of great extent, and text of large glyphs.
#include "platform/objects.h"
#include "platform/portable/raster/graphics_objects.h"
#include "platform/portable/raster/line.h"
#include "tests/platform/canvas.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <vector>

using namespace plat;

namespace {

using i64 = std::int64_t;
__extension__ using i128 = __int128;

// The minor coordinate of step i of a line: the nearest one, of two the smaller.
i64 minorAt(i64 from, i64 minor, i64 major, i64 i)
{
  // floor or ceiling of from + i minor / major, halves down: ceil((2 i minor - major) / (2 major))
  i128 const n = i128{2} * i * minor - major, d = i128{2} * major;
  i128 const quotient = n / d + (n % d > 0 ? 1 : 0);
  return from + static_cast<i64>(quotient);
}

// Pels of a line but its last, those inside only.
template <class Set> void plainLine(i64 x0, i64 y0, i64 x1, i64 y1, int width, int height, Set&& set)
{
  i64 const dx = x1 - x0, dy = y1 - y0, n = std::max(std::abs(dx), std::abs(dy));
  bool const across = std::abs(dx) >= std::abs(dy);
  i64 const from = across ? x0 : y0, step = (across ? dx : dy) >= 0 ? 1 : -1;
  i64 const extent = across ? width : height;
  // Only steps that can lie inside.
  i64 const first = std::max<i64>(0, step > 0 ? -from : from - extent + 1);
  i64 const last = std::min<i64>(n, step > 0 ? extent - from : from + 1);
  for (i64 i = first; i < last; ++i) {
    i64 const major = from + step * i, minor = minorAt(across ? y0 : x0, across ? dy : dx, n, i);
    i64 const x = across ? major : minor, y = across ? minor : major;
    if (x >= 0 && x < width && y >= 0 && y < height)
      set(static_cast<int>(x), static_cast<int>(y));
  }
}

}  // namespace

TEST(LineWalker, offsetsAreExactUpToTheLongestLine)
{
  using Walker = portable::LineWalker<u8>;
  std::mt19937 random(21);
  std::vector<u8> offsets(Walker::longest + 2);
  for (i32 const n : {1, 2, 3, 7, 100, 1919, 32766, 46339, Walker::longest})
    for (int k = 0; k < 12; ++k) {
      i32 const m = k == 0 ? n : k == 1 ? n / 2 : k == 2 ? 1 : k == 3 ? n - 1 : static_cast<i32>(random() % static_cast<u32>(n + 1));
      for (bool const up : {false, true}) {
        // Each pel is a byte at its minor offset.
        Walker walker(offsets.data(), n, m, up, 0, 1);
        for (i64 i = 0; i < n; ++i) {
          i64 const offset = up ? minorAt(0, m, n, i) : -minorAt(0, -m, n, i);
          u8& pel = offsets[static_cast<std::size_t>(offset)];
          u8 const mark = static_cast<u8>(pel + 1);
          walker.plot(1, mark);
          ASSERT_EQ(pel, mark) << n << ' ' << m << ' ' << i;
        }
      }
    }
}

TEST(Painter, lineFromFarOutsideHasTheRightPelsInside)
{
  constexpr int width = 64, height = 20;
  i32 const far = 1000000000;
  Point const lines[][2] = {{{-far, 5}, {far, 7}},     {{far, 7}, {-far, 5}},        {{-far, -far}, {far, far}},
                            {{30, -far}, {34, far}},   {{far, -far + 13}, {-far, far}}, {{10, 10}, {far, far - 77}},
                            {{-far, 3}, {far, 3}},     {{60, far}, {60, -far}},      {{-far, far}, {3, 3}}};
  for (auto const& line : lines)
    for (int const depth : {8, 32}) {
      Canvas canvas(width, height, depth), plain(width, height, depth);
      canvas.painter().pen({0xFFFFFF, 1, 0, 0, 0});
      canvas.painter().polyline(line);
      std::vector<bool> wanted(width * height);
      plainLine(line[0].x, line[0].y, line[1].x, line[1].y, width, height,
                [&](int x, int y) { wanted[static_cast<std::size_t>(y * width + x)] = true; });
      u32 const paper = plain.at(0, 0);
      for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
          ASSERT_EQ(canvas.at(x, y) != paper, wanted[static_cast<std::size_t>(y * width + x)])
              << line[0].x << ' ' << x << ' ' << y;
    }
}

TEST(Painter, polylineOfTwoMillionPointsIsItsLinesInTurn)
{
  constexpr int width = 300, height = 200;
  std::mt19937 random(22);
  std::vector<Point> points{{width / 2, height / 2}};
  for (int i = 0; i < 2000000; ++i) {
    Point p = points.back();
    p.x += static_cast<i32>(random() % 21) - 10;
    p.y += static_cast<i32>(random() % 21) - 10;
    if (p.x < -20 || p.x > width + 20 || p.y < -20 || p.y > height + 20)
      p = {static_cast<i32>(random() % width), static_cast<i32>(random() % height)};
    points.push_back(p);
  }
  // Few enough are seen that some pels stay free.
  Rect const clip{40, 30, 44, 190};
  Canvas canvas(width, height, 32);
  canvas.painter().clip(&clip);
  canvas.painter().pen({0x0000FF, 1, 2, 0, 0});
  canvas.painter().polyline(points);
  std::vector<bool> wanted(width * height);
  i64 phase = 0;
  for (std::size_t i = 1; i < points.size(); ++i) {
    Point const &a = points[i - 1], &b = points[i];
    i64 const n = std::max(std::abs(b.x - a.x), std::abs(b.y - a.y));
    if (std::max(a.x, b.x) >= clip.left && std::min(a.x, b.x) < clip.right)
      for (i64 k = 0; k < n; ++k) {
        if ((phase + k) % 6 >= 3)
          continue;
        bool const across = std::abs(b.x - a.x) >= std::abs(b.y - a.y);
        i64 const major = across ? a.x + (b.x > a.x ? k : -k) : a.y + (b.y > a.y ? k : -k);
        i64 const minor = across ? minorAt(a.y, b.y - a.y, n, k) : minorAt(a.x, b.x - a.x, n, k);
        i64 const x = across ? major : minor, y = across ? minor : major;
        if (x >= clip.left && x < clip.right && y >= clip.top && y < clip.bottom)
          wanted[static_cast<std::size_t>(y * width + x)] = true;
      }
    phase += n;
  }
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      ASSERT_EQ(canvas.at(x, y) != 0, wanted[static_cast<std::size_t>(y * width + x)]) << x << ' ' << y;
}

TEST(Painter, polygonOfAHundredThousandEdgesIsFilledByBothRules)
{
  constexpr int width = 1000, height = 200;
  // A comb of 500 teeth, passed 51 times: odd, and never balanced out.
  std::vector<Point> points;
  for (int round = 0; round < 51; ++round)
    for (i32 k = 0; k < 500; ++k)
      for (Point const p : {Point{2 * k, 10}, Point{2 * k, 190}, Point{2 * k + 1, 190}, Point{2 * k + 1, 10}})
        points.push_back(p);
  ASSERT_GE(points.size(), 100000u);
  for (FillRule const rule : {FillRule::alternate, FillRule::winding}) {
    Canvas canvas(width, height, 32);
    canvas.painter().noPen();
    canvas.painter().brush(0x0000FF);
    canvas.painter().polygon(points, rule);
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x)
        ASSERT_EQ(canvas.at(x, y), y >= 10 && y < 190 && x % 2 == 0 ? 0xFF0000u : 0u) << x << ' ' << y;
  }
}

// Glyphs of more than a tile, cut and whole, are the same pels at 24 and at 32 bits, which go different ways.
TEST(Painter, textIsTheSameAtTwentyFourAndThirtyTwoBits)
{
  std::mt19937 random(23);
  for (bool const smooth : {false, true})
    for (int const size : {9, 12, 20, 40, 90}) {
      FontDesc desc;
      desc.height = size;
      desc.smooth = smooth;
      HFONT const font = portable::graphicsObjects().createFont(desc);
      Canvas wide(220, 110, 32), narrow(220, 110, 24);
      for (int i = 0; i < 12; ++i) {
        std::string text;
        for (int k = 0; k < 6; ++k)
          text += static_cast<char>(33 + random() % 90);
        i32 const x = static_cast<i32>(random() % 260) - 40, y = static_cast<i32>(random() % 130) - 30;
        Rect const clip{30, 20, 190, 90};
        COLORREF const color = static_cast<COLORREF>(random() & 0xFFFFFFu);
        unsigned const flags = (i % 3 == 0 ? 0u : 0x100u) | (i % 4 == 1 ? 1u : i % 4 == 2 ? 2u : 0u);
        Rect bounds[2];
        unsigned place = 0;
        for (Canvas const* canvas : {&wide, &narrow}) {
          Painter& painter = canvas->painter();
          painter.clip(i % 2 == 0 ? &clip : nullptr);
          painter.setBounds(nullptr, 1 | 4);
          painter.font(font);
          painter.textColors(color, 0x305010, false);
          Rect rect{x, y, x + 90, y + size};
          painter.drawText(text, rect, flags);
          painter.getBounds(bounds[place++], 0);
        }
        EXPECT_TRUE(bounds[0] == bounds[1]) << size << ' ' << i;
      }
      for (int y = 0; y < 110; ++y)
        for (int x = 0; x < 220; ++x)
          ASSERT_EQ(wide.at(x, y), narrow.at(x, y)) << smooth << ' ' << size << ' ' << x << ' ' << y;
      portable::graphicsObjects().deleteFont(font);
    }
}
