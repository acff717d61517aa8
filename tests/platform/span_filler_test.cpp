#include "platform/portable/raster/span_filler.h"

#include "platform/portable/raster/painter.h"
#include "platform/portable/raster/stroke.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

using namespace plat;
using namespace plat::portable;

namespace {

__extension__ using i128 = __int128;

using Contour = std::vector<Point>;

// Whether the pel's centre lies inside, by the crossings left of it or on it; each in whole numbers.
bool holds(std::vector<Contour> const& contours, i32 scale, FillRule rule, i32 x, i32 y)
{
  int count = 0, winding = 0;
  for (Contour const& c : contours)
    for (std::size_t i = 0; i < c.size(); ++i) {
      Point a = c[i], b = c[(i + 1) % c.size()];
      int turn = 1;
      if (a.y > b.y) {
        std::swap(a, b);
        turn = -1;
      }
      i128 const py = i128{y} * scale, px = i128{x} * scale;
      if (py < a.y || py >= b.y)
        continue;
      // a.x + (py - a.y) (b.x - a.x) / (b.y - a.y) <= px
      if (i128{a.x} * (i128{b.y} - a.y) + (py - a.y) * (i128{b.x} - a.x) <= px * (i128{b.y} - a.y)) {
        ++count;
        winding += turn;
      }
    }
  return rule == FillRule::alternate ? count % 2 != 0 : winding != 0;
}

using Picture = std::vector<bool>;

Picture plain(std::vector<Contour> const& contours, i32 scale, FillRule rule, Rect const& clip)
{
  Picture out;
  for (i32 y = clip.top; y < clip.bottom; ++y)
    for (i32 x = clip.left; x < clip.right; ++x)
      out.push_back(holds(contours, scale, rule, x, y));
  return out;
}

void load(SpanFiller& filler, std::vector<Contour> const& contours, i32 scale)
{
  filler.clear();
  for (Contour const& c : contours)
    filler.add(c, scale);
}

void mark(Picture& out, Rect const& clip, i32 y, i32 x0, i32 x1)
{
  ASSERT_GE(y, clip.top);
  ASSERT_LT(y, clip.bottom);
  ASSERT_GE(x0, clip.left);
  ASSERT_LE(x1, clip.right);
  for (i32 x = x0; x < x1; ++x)
    out[static_cast<std::size_t>((y - clip.top) * clip.width() + x - clip.left)] = true;
}

Picture empty(Rect const& clip) { return Picture(static_cast<std::size_t>(clip.width() * clip.height())); }

Picture byRows(SpanFiller& filler, FillRule rule, Rect const& clip)
{
  Picture out = empty(clip);
  filler.fill(rule, clip, [&](i32 y, i32 x0, i32 x1) { mark(out, clip, y, x0, x1); });
  return out;
}

// Empty when the figure can't be tabulated.
Picture byTable(SpanFiller& filler, FillRule rule, Rect const& clip)
{
  if (!filler.tabulate(rule, clip))
    return {};
  Picture out = empty(clip);
  for (int i = 0; i < filler.spansPerRow() && filler.rows() > 0; ++i)
    for (i32 row = 0; row < filler.rows(); ++row)
      if (filler.from(i)[row] < filler.to(i)[row])
        mark(out, clip, filler.firstRow() + row, filler.from(i)[row], filler.to(i)[row]);
  return out;
}

constexpr FillRule kRules[] = {FillRule::alternate, FillRule::winding};

Contour randomContour(std::mt19937& random, int points, i32 reach)
{
  std::uniform_int_distribution<i32> at(-reach, reach);
  Contour c;
  for (int i = 0; i < points; ++i) {
    c.push_back({at(random), at(random)});
    if (i > 0 && random() % 5 == 0)
      c.back().y = c[c.size() - 2].y;  // level edges
  }
  return c;
}

}  // namespace

TEST(SpanFiller, randomFiguresHoldThePelsWhoseCentresLieInside)
{
  std::mt19937 random(11);
  SpanFiller filler;
  Rect const clip{-9, -6, 24, 19};
  int tabulated = 0;
  for (int i = 0; i < 1500; ++i) {
    i32 const scale = i % 2 == 0 ? 1 : SpanFiller::fine;
    std::vector<Contour> contours;
    for (unsigned k = 0; k <= random() % 3; ++k)
      contours.push_back(randomContour(random, 2 + static_cast<int>(random() % 7), (i % 5 == 0 ? 1000 : 30) * scale));
    load(filler, contours, scale);
    for (FillRule const rule : kRules) {
      Picture const wanted = plain(contours, scale, rule, clip);
      ASSERT_EQ(byRows(filler, rule, clip), wanted) << i;
      Picture const table = byTable(filler, rule, clip);
      tabulated += table.empty() ? 0 : 1;
      if (!table.empty()) {
        ASSERT_EQ(table, wanted) << i;
      }
    }
  }
  EXPECT_GT(tabulated, 2500);  // the table is the usual way
}

TEST(SpanFiller, edgesThatCrossCentresExactlyAreLeftInAndRightOut)
{
  SpanFiller filler;
  Rect const clip{0, 0, 30, 30};
  // Slopes of which each row or every third row crosses a pel's centre.
  for (Contour const& c : {Contour{{3, 3}, {27, 27}, {3, 27}}, Contour{{27, 3}, {3, 27}, {27, 27}},
                           Contour{{0, 0}, {29, 9}, {20, 29}}, Contour{{1, 1}, {28, 1}, {28, 28}, {1, 28}}})
    for (i32 const scale : {1, SpanFiller::fine}) {
      Contour scaled = c;
      for (Point& p : scaled)
        p = {p.x * scale, p.y * scale};
      load(filler, {scaled}, scale);
      Picture const wanted = plain({scaled}, scale, FillRule::alternate, clip);
      EXPECT_EQ(byTable(filler, FillRule::alternate, clip), wanted);
      EXPECT_EQ(byRows(filler, FillRule::alternate, clip), wanted);
    }
}

TEST(SpanFiller, figuresAsLargeAsSurfacesAreTabulatedExactly)
{
  std::mt19937 random(12);
  SpanFiller filler;
  int tabulated = 0;
  for (int i = 0; i < 300; ++i) {
    i32 const scale = i % 2 == 0 ? 1 : SpanFiller::fine;
    std::vector<Contour> const contours{randomContour(random, 3 + static_cast<int>(random() % 3), 20000 * scale)};
    load(filler, contours, scale);
    i32 const x = static_cast<i32>(random() % 20000) - 10000, y = static_cast<i32>(random() % 20000) - 10000;
    Rect const clip{x, y, x + 40, y + 25};
    Picture const wanted = plain(contours, scale, FillRule::alternate, clip);
    ASSERT_EQ(byRows(filler, FillRule::alternate, clip), wanted);
    Picture const table = byTable(filler, FillRule::alternate, clip);
    tabulated += table.empty() ? 0 : 1;
    if (!table.empty()) {
      ASSERT_EQ(table, wanted) << i;
    }
  }
  EXPECT_GT(tabulated, 150);
}

TEST(SpanFiller, farPointsAreNotTabulated)
{
  SpanFiller filler;
  filler.add(Contour{{-1000000000, 0}, {1000000000, 10}, {0, 20}}, 1);
  EXPECT_FALSE(filler.tabulate(FillRule::alternate, {0, 0, 10, 10}));
}

TEST(SpanFiller, aCrowdedRowIsCountedByBothRules)
{
  // 150 narrow teeth side by side, passed three times, the third time backwards: three times odd, once around on balance.
  Contour once;
  for (i32 k = 0; k < 150; ++k)
    for (Point const p : {Point{2 * k, 2}, Point{2 * k, 9}, Point{2 * k + 1, 9}, Point{2 * k + 1, 2}})
      once.push_back(p);
  Contour backwards(once.rbegin(), once.rend());
  std::vector<Contour> const contours{once, once, backwards};
  SpanFiller filler;
  load(filler, contours, 1);
  Rect const clip{5, 0, 280, 12};
  for (FillRule const rule : kRules) {
    ASSERT_FALSE(filler.tabulate(rule, clip));
    Picture wanted = empty(clip);
    for (i32 y = 2; y < 9; ++y)
      for (i32 x = 6; x < 280; x += 2)
        mark(wanted, clip, y, x, x + 1);
    EXPECT_EQ(byRows(filler, rule, clip), wanted);
  }
  load(filler, {once, backwards}, 1);
  EXPECT_EQ(byRows(filler, FillRule::winding, clip), empty(clip));
}

TEST(Stroker, linesFromPointToPointAreThoseOfTheGenerator)
{
  std::mt19937 random(13);
  Stroker stroker;
  SpanFiller quick, general;
  int taken = 0;
  for (int i = 0; i < 4000; ++i) {
    auto const at = [&](i32 reach) { return static_cast<double>(static_cast<i32>(random() % static_cast<u32>(2 * reach + 1)) - reach); };
    i32 const reach = i % 4 == 0 ? 3 : i % 4 == 1 ? 2000 : 60;
    PointF const from{at(reach), at(reach)};
    PointF to{at(reach), at(reach)};
    if (i % 7 == 0)
      to.y = from.y;
    if (i % 7 == 1)
      to.x = from.x;
    Stroker::Style style;
    style.width = 2 + static_cast<double>(random() % 20);
    style.cap = static_cast<int>(random() % 3);
    quick.clear();
    general.clear();
    Rect covered;
    if (!stroker.strokeLine(from, to, style, quick, covered))
      continue;
    ++taken;
    PointF const points[2] = {from, to};
    Rect const wanted = stroker.stroke(points, false, style, general);
    ASSERT_TRUE(covered == wanted);
    i32 const x = static_cast<i32>(from.x), y = static_cast<i32>(from.y);
    Rect const clip{x - 45, y - 45, x + 45, y + 45};
    ASSERT_EQ(byRows(quick, FillRule::winding, clip), byRows(general, FillRule::winding, clip)) << i;
    ASSERT_EQ(byTable(quick, FillRule::winding, clip), byRows(general, FillRule::winding, clip)) << i;
  }
  EXPECT_GT(taken, 3500);
}
