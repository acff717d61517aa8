// The painter at the ends of its numbers, and without memory: it paints what can be painted and throws nothing.
#include "tests/platform/canvas.h"
#include "tests/support/memory_watch.h"
#include "tests/support/number_ends.h"

#include "platform/portable/raster/graphics_objects.h"
#include "platform/portable/raster/handle_table.h"

#include <cmath>
#include <functional>
#include <set>

using namespace plat;
using krs_test::NumberEnds;
using plat::portable::graphicsObjects;
using krs_test::sweepRounds;

namespace {

constexpr i32 kMost = 0x7FFFFFFF, kLeast = -0x7FFFFFFF - 1;
constexpr int kDepths[] = {8, 15, 16, 24, 32};
constexpr int kWidth = 61, kHeight = 43;

using Draw = std::function<void(Painter&)>;

struct Figure {
  char const* name;
  Draw draw;
};

Pen pen(i32 width, int style = 0, int join = 0, int cap = 0)
{
  Pen p;
  p.color = 0x3060C0;
  p.width = width;
  p.style = static_cast<u8>(style);
  p.join = static_cast<u8>(join);
  p.cap = static_cast<u8>(cap);
  return p;
}

std::vector<Point> const& star()
{
  static std::vector<Point> const made = [] {
    std::vector<Point> points;
    for (int i = 0; i < 60; ++i)
      points.push_back({30 + static_cast<int>(28 * std::cos(2.4 * i)), 20 + static_cast<int>(19 * std::sin(2.4 * i))});
    return points;
  }();
  return made;
}

// Every way to paint that takes memory somewhere.
std::vector<Figure> figures()
{
  std::vector<Figure> all;
  for (i32 width : {1, 7})
    for (int style = 0; style < 5; style += 2) {
      Pen const p = pen(width, style, style / 2, style / 2);
      auto const withPen = [p](Draw const& draw) {
        return [p, draw](Painter& one) {
          one.pen(p);
          one.brush(0x70B020);
          draw(one);
        };
      };
      all.push_back({"polyline", withPen([](Painter& one) { one.polyline(star()); })});
      all.push_back({"line", withPen([](Painter& one) {
                       one.moveTo({3, 4});
                       one.lineTo({50, 31});
                     })});
      all.push_back({"polygon", withPen([](Painter& one) { one.polygon(star(), FillRule::winding); })});
      all.push_back({"alternate", withPen([](Painter& one) { one.polygon(star(), FillRule::alternate); })});
      all.push_back({"ellipse", withPen([](Painter& one) { one.ellipse({2, 3, 55, 39}); })});
      all.push_back({"round rectangle", withPen([](Painter& one) { one.roundRect({2, 3, 55, 39}, {20, 14}); })});
      all.push_back({"arc", withPen([](Painter& one) { one.arc({2, 3, 55, 39}, {60, 20}, {10, 0}); })});
      all.push_back({"bezier", withPen([](Painter& one) {
                       Point const points[] = {{2, 40}, {20, -20}, {40, 60}, {58, 2}};
                       one.bezier(points, false);
                       one.bezier(points, true);
                     })});
      all.push_back({"turned", withPen([](Painter& one) {
                       Xform const x{0.8f, 0.6f, -0.6f, 0.8f, 12, -9};
                       one.worldTransform(&x);
                       one.roundRect({8, 3, 45, 29}, {20, 14});
                       one.fillRect({20, 10, 30, 18}, 0x0000FF);
                       one.polyline(star());
                     })});
    }
  all.push_back({"flood", [](Painter& one) {
                   // A comb, so that the fill leaves many seeds behind.
                   for (i32 x = 2; x < 60; x += 3)
                     one.fillRect({x, 4, x + 1, 40}, 0x00FF00);
                   one.brush(0x2040FF);
                   one.floodFill({30, 1}, 0x00FF00, false);
                 }});
  all.push_back({"text", [](Painter& one) {
                   Rect box{2, 2, 60, 40};
                   one.textColors(0x102030, 0xE0F000, true);
                   one.drawText("Text of\nthree lines\nwith a wide one", box, 1);
                   Rect line{1, 30, 60, 43};
                   one.textColors(0xF0A000, 0, false);
                   one.drawText("one line", line, 0);
                 }});
  return all;
}

}  // namespace

TEST(PainterEnds, endsPaintWhatLiesBetween)
{
  for (int depth : kDepths) {
    Canvas c(9, 7, depth);
    u32 const back = c.at(0, 0);
    c.painter().fillRect({kLeast, kLeast, kMost, kMost}, 0xFFFFFF);
    EXPECT_EQ(c.picture(back), "#########\n#########\n#########\n#########\n#########\n#########\n#########\n") << depth;
    c.painter().fillRect({kLeast, kLeast, kMost, kMost}, 0);
    c.painter().pen(pen(1));
    c.painter().moveTo({kLeast, 3});
    c.painter().lineTo({kMost, 3});
    EXPECT_EQ(c.picture(c.at(0, 0)), ".........\n.........\n.........\n#########\n.........\n.........\n.........\n") << depth;
    c.painter().fillRect({kMost, kMost, kLeast, kLeast}, 0xFFFFFF);
    EXPECT_EQ(c.at(0, 0), c.at(8, 6)) << "corners in any order";
  }
}

TEST(PainterEnds, aCornerOfAnySignAndSizeIsTheWholeEllipse)
{
  for (int width : {1, 5}) {
    Canvas whole(kWidth, kHeight, 32), other(kWidth, kHeight, 32);
    for (Canvas* c : {&whole, &other}) {
      c->painter().pen(pen(width));
      c->painter().brush(0xFF8000);
    }
    whole.painter().ellipse({4, 4, 50, 40});
    for (Size const& corner : {Size{kLeast, kLeast}, Size{kMost, kMost}, Size{-1000, 1000}, Size{kLeast, 1 << 30}}) {
      other.painter().roundRect({4, 4, 50, 40}, corner);
      EXPECT_EQ(other.pels(), whole.pels()) << corner.w;
    }
  }
}

TEST(PainterEnds, arcsBeyondTheFarthestPelEnd)
{
  Canvas c(kWidth, kHeight, 32);
  std::vector<u32> const before = c.pels();
  for (i32 width : {1, 5}) {
    c.painter().pen(pen(width));
    c.painter().arc({kMost - 100, 0, kMost, 40}, {0, 0}, {10, 10});
    c.painter().arc({0, kLeast, 40, kLeast + 100}, {0, 0}, {10, 10});
    c.painter().ellipse({kMost - 100, 0, kMost, 40});
  }
  EXPECT_EQ(c.pels(), before);
}

// Sides as long as numbers reach: the pattern goes on over what lies outside, and nothing is kept for it.
TEST(PainterEnds, brokenOutlinesOfEndlessRectangles)
{
  Canvas c(kWidth, kHeight, 32);
  c.painter().pen(pen(1, 1));
  long const before = MemoryWatch::allocations();
  c.painter().roundRect({-(1 << 30), 10, 1 << 30, 1 << 30}, {1, 1});
  EXPECT_LT(MemoryWatch::allocations() - before, 20);
  // 18 pels on, 6 off, from the middle of the right side: with corners of one pel and heights of 2^30 - 10 the first pel of
  // the upper side has a place p, and pel x of it the place p + (right - x).
  std::string row;
  for (int x = 0; x < kWidth; ++x)
    row += c.at(x, 10) == 0 ? '.' : '#';
  std::string const runs = "##################......##################......##################......##################......";
  EXPECT_NE(runs.find(row), std::string::npos) << row;
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x)
      if (y != 10) {
        ASSERT_EQ(c.at(x, y), 0u) << x << ' ' << y;
      }
}

TEST(PainterEnds, aTransformThatIsNotFiniteIsNotInForce)
{
  float const bad[] = {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                       std::numeric_limits<float>::quiet_NaN()};
  for (float v : bad)
    for (int field = 0; field < 6; ++field) {
      Xform x{2, 0, 0, 2, 5, 5};
      (field == 0 ? x.m11 : field == 1 ? x.m12 : field == 2 ? x.m21 : field == 3 ? x.m22 : field == 4 ? x.dx : x.dy) = v;
      Canvas c(9, 7, 32);
      EXPECT_FALSE(c.painter().worldTransform(&x));
      c.painter().fillRect({1, 1, 3, 2}, 0xFFFFFF);
      EXPECT_EQ(c.picture(0), ".........\n.##......\n.........\n.........\n.........\n.........\n.........\n");
    }
}

TEST(PainterEnds, textFarOutIsMeasuredAndNotPainted)
{
  Canvas c(kWidth, kHeight, 32);
  std::vector<u32> const before = c.pels();
  Rect far{kMost - 1, kMost - 1, kMost, kMost};
  int const height = c.painter().drawText("far", far, 0x400);
  EXPECT_GT(height, 0);
  EXPECT_EQ(far, (Rect{kMost - 1, kMost - 1, kMost, kMost})) << "the box ends with the numbers";
  for (unsigned flags : {0u, 1u, 2u, 0x100u, 0x901u}) {
    Rect box{kMost - 5, kMost - 5, kMost, kMost};
    c.painter().drawText("far\naway", box, flags);
    box = {kLeast, kLeast, kLeast + 3, kLeast + 3};
    c.painter().drawText("far away", box, flags);
  }
  std::string const lines(200000, '\n');
  Rect box{0, 50, 10, 60};
  EXPECT_EQ(c.painter().drawText(lines, box, 0x400), height * 200000);
  EXPECT_EQ(c.pels(), before);
}

TEST(PainterEnds, heightsOfFontsHaveAnEnd)
{
  auto const heightOf = [](i32 height) {
    FontDesc desc;
    desc.height = height;
    HFONT const font = graphicsObjects().createFont(desc);
    Canvas c(8, 8, 32);
    c.painter().font(font);
    int const h = c.painter().textExtent("x").h;
    graphicsObjects().deleteFont(font);
    return h;
  };
  int const highest = heightOf(2000);
  EXPECT_GT(highest, 1500);
  for (i32 v : {kMost, kLeast, -kMost, 2001, -2000, 1 << 30})
    EXPECT_EQ(heightOf(v), highest) << v;
  EXPECT_EQ(heightOf(0), heightOf(1));
}

// Any figure with any numbers: the sanitizers watch, and a pel outside the clip never changes.
TEST(PainterEnds, sweepOfFigures)
{
  NumberEnds ends(41);
  std::vector<HFONT> fonts;
  for (i32 height : {kLeast, 0, 9, 40}) {
    FontDesc desc;
    desc.height = height;
    desc.smooth = height > 9;
    fonts.push_back(graphicsObjects().createFont(desc));
  }
  auto const point = [&] { return Point{ends.word(), ends.word()}; };
  auto const rect = [&] { return Rect{ends.word(), ends.word(), ends.word(), ends.word()}; };
  for (int depth : kDepths) {
    Canvas c(kWidth, kHeight, depth);
    Painter& one = c.painter();
    Rect const clip{7, 5, 50, 33};
    for (int i = sweepRounds(700, 20000); i > 0; --i) {
      one.clip(nullptr);
      one.worldTransform(nullptr);
      one.viewportOrigin({});
      one.windowOrigin({});
      one.fillRect({0, 0, kWidth, kHeight}, 0);
      u32 const back = c.at(0, 0);
      one.clip(&clip);
      if (ends.below(3) == 0)
        one.viewportOrigin(point());
      if (ends.below(3) == 0)
        one.windowOrigin(point());
      if (ends.below(3) == 0) {
        auto const f = [&] { return static_cast<float>(ends.real()); };
        Xform const x{f(), f(), f(), f(), f(), f()};
        one.worldTransform(&x);
      }
      ends.below(4) ? one.pen(pen(ends.word(), static_cast<int>(ends.below(7)), static_cast<int>(ends.below(3)),
                                  static_cast<int>(ends.below(4))))
                    : one.noPen();
      ends.below(2) ? one.brush(0xFFFFFF) : one.noBrush();
      one.textColors(0xFFFFFF, 0x808080, ends.below(2) != 0);
      one.font(fonts[ends.below(4)]);
      std::vector<Point> points(ends.below(6));
      for (Point& p : points)
        p = point();
      switch (ends.below(11)) {
      case 0:
        one.polyline(points);
        break;
      case 1:
        one.polygon(points, ends.below(2) ? FillRule::alternate : FillRule::winding);
        break;
      case 2:
        one.ellipse(rect());
        break;
      case 3:
        one.roundRect(rect(), {ends.word(), ends.word()});
        break;
      case 4:
        one.arc(rect(), point(), point());
        break;
      case 5:
        one.bezier(points, ends.below(2) != 0);
        break;
      case 6:
        one.fillRect(rect(), 0xFFFFFF);
        break;
      case 7:
        one.floodFill(point(), 0xFFFFFF, ends.below(2) != 0);
        break;
      case 8: {
        Rect box = rect();
        one.drawText("Ag &x\ny", box, static_cast<unsigned>(ends.word()));
        break;
      }
      case 9: {
        Rect box = rect();
        unsigned const flags = static_cast<unsigned>(ends.word());
        one.setBounds(&box, flags);
        one.getBounds(box, flags);
        one.pel(point());
        break;
      }
      default:
        one.moveTo(point());
        one.lineTo(point());
      }
      one.clip(nullptr);
      for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
          if (x < clip.left || x >= clip.right || y < clip.top || y >= clip.bottom) {
            ASSERT_EQ(c.at(x, y), back) << depth << ' ' << i << ' ' << x << ' ' << y;
          }
    }
  }
  for (HFONT font : fonts)
    graphicsObjects().deleteFont(font);
}

// One allocation that fails is made up for: nothing is thrown, and the picture is whole.
TEST(PainterWithoutMemory, everyFigureIsStillPainted)
{
  long failures = 0;
  for (int depth : kDepths)
    for (Figure const& figure : figures()) {
      Canvas whole(kWidth, kHeight, depth);
      figure.draw(whole.painter());
      failures += failEach([&] { return std::make_unique<Canvas>(kWidth, kHeight, depth); },
                           [&](Canvas& c) {
                             Painter& one = c.painter();
                             EXPECT_NO_THROW(figure.draw(one)) << figure.name;
                           },
                           [&](Canvas& c, bool) { EXPECT_EQ(c.pels(), whole.pels()) << figure.name << ' ' << depth; });
    }
  EXPECT_GT(failures, 500);
}

TEST(PainterWithoutMemory, fontsAndGlyphsThatAreNewArePaintedToo)
{
  i32 height = 200;  // unseen by others, so that faces and glyphs are made under the failure
  for (bool smooth : {false, true})
    for (long nth = 1; nth < 60; ++nth) {
      FontDesc desc;
      desc.height = ++height;
      desc.smooth = smooth;
      HFONT const font = graphicsObjects().createFont(desc);
      auto const draw = [font](Canvas& c) {
        Rect box{-60, -90, 400, 300};
        c.painter().font(font);
        c.painter().textColors(0xFFFFFF, 0, false);
        c.painter().drawText("m&wW", box, 0);
      };
      Canvas c(kWidth, kHeight, 32), again(kWidth, kHeight, 32);
      {
        MemoryWatch const watch(nth);
        EXPECT_NO_THROW(draw(c));
        if (!watch.failed())
          nth = 60;
      }
      draw(again);
      EXPECT_EQ(c.pels(), again.pels()) << height;
      graphicsObjects().deleteFont(font);
    }
}

TEST(HandleTable, aStaleHandleNeverLivesAgain)
{
  struct Thing;
  portable::HandleTable<Thing*, int> table;
  std::set<Thing*> seen;
  for (int i = 0; i < 100000; ++i) {
    Thing* const handle = table.add(i);
    ASSERT_TRUE(seen.insert(handle).second) << "after " << i;
    ASSERT_TRUE(table.remove(handle));
    ASSERT_EQ(table.find(handle), nullptr);
    ASSERT_FALSE(table.remove(handle));
  }
}

TEST(HandleTable, aFullTableAnswersNullAndStaysWhole)
{
  struct Thing;
  portable::HandleTable<Thing*, int> table;
  std::vector<Thing*> handles;
  while (Thing* const handle = table.add(static_cast<int>(handles.size())))
    handles.push_back(handle);
  EXPECT_EQ(handles.size(), 65535u);
  EXPECT_EQ(table.add(7), nullptr);
  for (std::size_t i = 0; i < handles.size(); ++i)
    ASSERT_EQ(*table.find(handles[i]), static_cast<int>(i));
  EXPECT_TRUE(table.remove(handles[100]));
  Thing* const next = table.add(9);
  ASSERT_NE(next, nullptr);
  EXPECT_NE(next, handles[100]);
  EXPECT_EQ(*table.find(next), 9);
}

TEST(HandleTable, isFilledOrNotAndEmptiedWithoutMemory)
{
  struct Thing;
  using Table = portable::HandleTable<Thing*, int>;
  long const failures = failEach([] { return std::make_unique<Table>(); },
                                 [](Table& t) {
                                   for (int i = 0; i < 200; ++i)
                                     t.add(i);
                                 },
                                 [](Table& t, bool) {
                                   Thing* const one = t.add(5);
                                   MemoryWatch const watch(1);
                                   EXPECT_TRUE(t.remove(one));
                                   EXPECT_FALSE(watch.failed());
                                 });
  EXPECT_GT(failures, 1);
}
