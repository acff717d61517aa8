// The figures whose every pel is stated: random ones against the plain painter at each depth, whole and clipped, and small
// ones written out.
#include "platform/paint.h"
#include "tests/platform/canvas.h"
#include "tests/support/plain_figures.h"

#include <cstdlib>
#include <functional>

using namespace plat;

namespace {

constexpr int kW = 40, kH = 32;
constexpr int depths[] = {8, 15, 16, 24, 32};
constexpr COLORREF white = 0xFFFFFF;
constexpr i32 farthest = 1000000000;

int rounds(int n)
{
  return std::getenv("KRS_LONG") ? 20 * n : n;
}

plain::Rgb rgb(int r, int g, int b)
{
  plain::Rgb c;
  c.r = r;
  c.g = g;
  c.b = b;
  return c;
}

// A grey, as the palette of depth 8 is a ramp of greys, and any colour elsewhere.
struct Paint {
  plain::Rgb color;
  int depth;
  COLORREF ref() const { return static_cast<COLORREF>(color.r | color.g << 8 | color.b << 16); }
  u32 pel() const { return depth == 8 ? static_cast<u32>(color.g) : plain::surfacePel(color, depth); }
};

Paint paint(plain::Rgb const& c, int depth)
{
  return Paint{depth == 8 ? rgb(c.g, c.g, c.g) : c, depth};
}

std::vector<plain::Point> plainPoints(std::vector<Point> const& points)
{
  std::vector<plain::Point> all;
  for (Point const& p : points)
    all.push_back(plain::Point{p.x, p.y});
  return all;
}

struct Chance {
  std::mt19937 random;
  explicit Chance(unsigned seed) : random(seed) {}
  int within(int low, int high)
  {
    auto const range = static_cast<unsigned>(std::int64_t{high} - low + 1);
    return static_cast<int>(std::int64_t{low} + static_cast<std::int64_t>(random() % range));
  }
  Point near(int reach) { return {within(-reach, kW + reach), within(-reach, kH + reach)}; }
  // Anywhere at a distance whose magnitude is spread evenly up to 10^9.
  Point far()
  {
    i32 reach = 30;
    for (int decade = within(0, 7); decade > 0; --decade)
      reach *= 10;
    int const x = within(-reach, reach) * 3, y = within(-reach, reach) * 3;
    return {std::clamp(x, -farthest, farthest), std::clamp(y, -farthest, farthest)};
  }
  Rect clip()
  {
    Point const a = near(3), b = near(3);
    if (within(0, 9) == 0)
      return {a.x, a.y, a.x, a.y + 5};  // takes nothing
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x) + 1, std::max(a.y, b.y) + 1};
  }
};

// Vertices of every sort that has led a rasteriser astray.
std::vector<Point> vertices(Chance& chance, int count)
{
  std::vector<Point> all;
  int const sort = chance.within(0, 9);
  Point const base = chance.near(8), step{chance.within(-9, 9), chance.within(-9, 9)};
  for (int i = 0; i < count; ++i)
    switch (sort) {
    case 0: case 1: all.push_back(chance.near(0)); break;                       // inside
    case 2: all.push_back(chance.near(25)); break;                              // around
    case 3: all.push_back(chance.far()); break;                                 // far away
    case 4: all.push_back(i % 2 ? chance.far() : chance.near(0)); break;        // in and far out by turns
    case 5: all.push_back({chance.within(-10, kW + 10), base.y}); break;        // on one row
    case 6: all.push_back({base.x, chance.within(-10, kH + 10)}); break;        // in one column
    case 7: {                                                                   // on one straight line
      int const k = chance.within(-4, 8);
      all.push_back({base.x + k * step.x, base.y + k * step.y});
      break;
    }
    case 8: all.push_back(i > 0 && chance.within(0, 1) ? all.back() : chance.near(5)); break;  // points twice
    default:                                                                    // few rows, so many vertices on each
      all.push_back({chance.within(-5, kW + 5), 4 * chance.within(0, kH / 4)});
      break;
    }
  return all;
}

// One figure: how the painter makes it, and how it looks.
struct Figure {
  std::function<void(Painter&, int depth)> paint;
  std::function<void(plain::Picture&, plain::Rect const& clip, int depth)> plain;
  std::vector<Point> points;  // for the message
};

plain::Rgb const ground = {40, 80, 120};

// The figure at every depth, whole or clipped; "" if every pel is right.
std::string wrong(Figure const& figure, Rect const* clip)
{
  for (int const depth : depths) {
    Canvas canvas(kW, kH, depth);
    Paint const below = paint(ground, depth);
    canvas.painter().fillRect({0, 0, kW, kH}, below.ref());
    plain::Picture expected(kW, kH, below.pel());
    plain::Rect part;
    part.w = kW;
    part.h = kH;
    if (clip) {
      canvas.painter().clip(clip);
      part.x = clip->left;
      part.y = clip->top;
      part.w = clip->right - clip->left;
      part.h = clip->bottom - clip->top;
    }
    figure.paint(canvas.painter(), depth);
    figure.plain(expected, part, depth);
    std::string const difference = plain::firstDifference(expected, canvas.pels());
    if (!difference.empty()) {
      std::ostringstream text;
      text << "depth " << depth << ' ' << difference << " of";
      for (Point const& p : figure.points)
        text << " (" << p.x << ", " << p.y << ")";
      if (clip)
        text << " in " << clip->left << ' ' << clip->top << ' ' << clip->right << ' ' << clip->bottom;
      text << '\n' << canvas.picture(below.pel());
      return text.str();
    }
  }
  return "";
}

// Rounds of figures, every other one clipped, that must be right in every pel; enough of them must meet the canvas.
void sweep(unsigned seed, int count, std::function<Figure(Chance&)> const& make)
{
  Chance chance(seed);
  int met = 0;
  for (int i = 0; i < rounds(count); ++i) {
    Figure const figure = make(chance);
    Rect const clip = chance.clip();
    std::string const fault = wrong(figure, i % 2 ? &clip : nullptr);
    ASSERT_EQ(fault, "") << "round " << i << " of seed " << seed;
    plain::Picture seen(kW, kH, 0xABCDEF);
    plain::Rect all;
    all.w = kW;
    all.h = kH;
    figure.plain(seen, all, 32);
    met += seen.pels() != plain::Picture(kW, kH, 0xABCDEF).pels() ? 1 : 0;
  }
  EXPECT_GT(met, rounds(count) / 3);
}

Figure thinFigure(std::vector<Point> const& points, int style, plain::Rgb const& color)
{
  Figure f;
  f.points = points;
  f.paint = [points, style, color](Painter& p, int depth) {
    p.pen({paint(color, depth).ref(), 1, static_cast<u8>(style), 0, 0});
    p.polyline(points);
  };
  f.plain = [points, style, color](plain::Picture& picture, plain::Rect const& clip, int depth) {
    plain::thinLines({picture, clip, paint(color, depth).pel()}, plainPoints(points), false, style);
  };
  return f;
}

plain::Rgb anyColor(Chance& chance)
{
  return rgb(chance.within(0, 255), chance.within(0, 240), chance.within(0, 255));
}

// What a painter with a white pen makes on a small canvas.
std::string drawn(int width, int height, Pen pen, std::function<void(Painter&)> const& draw)
{
  Canvas canvas(width, height, 32);
  pen.color = white;
  canvas.painter().pen(pen);
  draw(canvas.painter());
  return canvas.picture(0);
}

}  // namespace

// --- Random figures against the plain painter

TEST(PainterExact, linesOfOnePelEqualThePlainOnes)
{
  sweep(101, 4200, [](Chance& chance) { return thinFigure(vertices(chance, 2), 0, anyColor(chance)); });
}

TEST(PainterExact, polylinesEqualThePlainOnes)
{
  sweep(102, 2400, [](Chance& chance) {
    return thinFigure(vertices(chance, chance.within(3, 12)), 0, anyColor(chance));
  });
}

TEST(PainterExact, dashesOfAllFourStylesEqualThePlainOnes)
{
  for (int style = 1; style <= 4; ++style)
    sweep(110 + static_cast<unsigned>(style), 900, [style](Chance& chance) {
      return thinFigure(vertices(chance, chance.within(2, 8)), style, anyColor(chance));
    });
}

TEST(PainterExact, lineToTheDiagonalNeighbourAddsExactlyTheEnd)
{
  sweep(103, 3000, [](Chance& chance) {
    std::vector<Point> const ends = vertices(chance, 2);
    plain::Rgb const color = anyColor(chance);
    Figure f;
    f.points = ends;
    f.paint = [ends, color](Painter& p, int depth) {
      p.pen({paint(color, depth).ref(), 1, 0, 0, 0});
      p.moveTo(ends[0]);
      p.lineTo(ends[1]);
      p.lineTo({ends[1].x + 1, ends[1].y + 1});
    };
    f.plain = [ends, color](plain::Picture& picture, plain::Rect const& clip, int depth) {
      plain::Ink const ink{picture, clip, paint(color, depth).pel()};
      plain::thinLines(ink, plainPoints(ends), false, 0);
      ink.dot(ends[1].x, ends[1].y);
    };
    return f;
  });
}

TEST(PainterExact, originsShiftALineWithoutChangingIt)
{
  sweep(104, 1800, [](Chance& chance) {
    std::vector<Point> const points = vertices(chance, 3);
    Point const view = chance.near(1000), window = chance.near(500000);
    plain::Rgb const color = anyColor(chance);
    std::vector<Point> logical;
    for (Point const& p : points)
      logical.push_back({p.x - view.x + window.x, p.y - view.y + window.y});
    Figure f = thinFigure(points, 3, color);
    f.paint = [logical, view, window, color](Painter& p, int depth) {
      p.viewportOrigin(view);
      p.windowOrigin(window);
      p.pen({paint(color, depth).ref(), 1, 3, 0, 0});
      p.polyline(logical);
    };
    return f;
  });
}

TEST(PainterExact, filledPolygonsEqualThePlainOnesByBothRules)
{
  sweep(120, 1920, [](Chance& chance) {
    std::vector<Point> const points = vertices(chance, chance.within(2, 11));
    bool const odd = chance.within(0, 1) == 0;
    plain::Rgb const color = anyColor(chance);
    Figure f;
    f.points = points;
    f.paint = [points, odd, color](Painter& p, int depth) {
      p.noPen();
      p.brush(paint(color, depth).ref());
      p.polygon(points, odd ? FillRule::alternate : FillRule::winding);
    };
    f.plain = [points, odd, color](plain::Picture& picture, plain::Rect const& clip, int depth) {
      plain::polygon({picture, clip, paint(color, depth).pel()}, plainPoints(points),
                     odd ? plain::Inside::odd : plain::Inside::wound);
    };
    return f;
  });
}

TEST(PainterExact, polygonsWithAPenAreTheFillAndThenTheClosedOutline)
{
  sweep(121, 1440, [](Chance& chance) {
    std::vector<Point> const points = vertices(chance, chance.within(2, 9));
    bool const odd = chance.within(0, 1) == 0, filled = chance.within(0, 3) != 0;
    int const style = chance.within(0, 4);
    plain::Rgb const color = anyColor(chance), pen = anyColor(chance);
    Figure f;
    f.points = points;
    f.paint = [=](Painter& p, int depth) {
      p.pen({paint(pen, depth).ref(), 1, static_cast<u8>(style), 0, 0});
      if (filled)
        p.brush(paint(color, depth).ref());
      p.polygon(points, odd ? FillRule::alternate : FillRule::winding);
    };
    f.plain = [=](plain::Picture& picture, plain::Rect const& clip, int depth) {
      if (filled)
        plain::polygon({picture, clip, paint(color, depth).pel()}, plainPoints(points),
                       odd ? plain::Inside::odd : plain::Inside::wound);
      plain::thinLines({picture, clip, paint(pen, depth).pel()}, plainPoints(points), true, style);
    };
    return f;
  });
}

TEST(PainterExact, floodsOverAColourAndUpToAColourEqualThePlainOnes)
{
  for (bool const surface : {true, false})
    sweep(surface ? 130 : 131, 780, [surface](Chance& chance) {
      std::vector<std::vector<Point>> walls;
      for (int i = chance.within(0, 5); i >= 0; --i)
        walls.push_back(vertices(chance, chance.within(2, 6)));
      Point const start = chance.within(0, 9) ? chance.near(0) : chance.near(10);
      plain::Rgb const wall = rgb(200, 100, 16), other = rgb(16, 200, 200), fill = rgb(250, 30, 250);
      Figure f;
      f.points = {start};
      // Every second wall has another colour, which only a flood over the ground stops at.
      f.paint = [=](Painter& p, int depth) {
        for (std::size_t i = 0; i < walls.size(); ++i) {
          p.pen({paint(i % 2 ? other : wall, depth).ref(), 1, static_cast<u8>(i % 3), 0, 0});
          p.polyline(walls[i]);
        }
        p.brush(paint(fill, depth).ref());
        p.floodFill(start, paint(surface ? ground : wall, depth).ref(), surface);
      };
      f.plain = [=](plain::Picture& picture, plain::Rect const& clip, int depth) {
        for (std::size_t i = 0; i < walls.size(); ++i)
          plain::thinLines({picture, clip, paint(i % 2 ? other : wall, depth).pel()}, plainPoints(walls[i]), false,
                           static_cast<int>(i % 3));
        plain::flood({picture, clip, paint(fill, depth).pel()}, plain::Point{start.x, start.y},
                     paint(surface ? ground : wall, depth).pel(),
                     surface ? plain::FloodOver::value : plain::FloodOver::upToValue);
      };
      return f;
    });
}

TEST(PainterExact, flatWideLinesAlongTheAxesEqualThePlainOnes)
{
  sweep(140, 2400, [](Chance& chance) {
    Point const a = chance.near(10), other = chance.within(0, 3) ? chance.near(10) : chance.far();
    bool const upright = chance.within(0, 1) == 0;
    Point const b = upright ? Point{a.x, other.y + (other.y == a.y)} : Point{other.x + (other.x == a.x), a.y};
    int const width = chance.within(2, 14);
    u8 const join = static_cast<u8>(chance.within(0, 1));
    plain::Rgb const color = anyColor(chance);
    Figure f;
    f.points = {a, b};
    f.paint = [=](Painter& p, int depth) {
      p.pen({paint(color, depth).ref(), width, 0, join, 1});
      Point const ends[2] = {a, b};
      p.polyline(ends);
    };
    f.plain = [=](plain::Picture& picture, plain::Rect const& clip, int depth) {
      plain::flatLine({picture, clip, paint(color, depth).pel()}, plain::Point{a.x, a.y}, plain::Point{b.x, b.y}, width);
    };
    return f;
  });
}

TEST(PainterExact, flatWideDashesAlongARowEqualThePlainOnes)
{
  sweep(141, 1500, [](Chance& chance) {
    bool const distant = chance.within(0, 99) == 0;  // such lines take long
    Point const a{distant ? chance.far().x : chance.within(-20, kW + 20), chance.within(-5, kH + 5)};
    Point b{distant ? chance.far().x : chance.within(-60, kW + 60), a.y};
    if (b.x == a.x)
      ++b.x;
    int const width = chance.within(2, 7), style = chance.within(1, 4);
    plain::Rgb const color = anyColor(chance);
    Figure f;
    f.points = {a, b};
    f.paint = [=](Painter& p, int depth) {
      p.pen({paint(color, depth).ref(), width, static_cast<u8>(style), 0, 1});
      Point const ends[2] = {a, b};
      p.polyline(ends);
    };
    f.plain = [=](plain::Picture& picture, plain::Rect const& clip, int depth) {
      plain::flatDashes({picture, clip, paint(color, depth).pel()}, plain::Point{a.x, a.y}, plain::Point{b.x, b.y},
                        width, style);
    };
    return f;
  });
}

// --- Small figures written out

TEST(PainterExact, tiesInAllEightOctantsGoToTheSmallerCoordinate)
{
  // From the middle to points two across for one along: every other step lies between two pels. The last pel is left out.
  EXPECT_EQ(drawn(17, 17, Pen(), [](Painter& p) {
    for (Point const end : {Point{16, 12}, {16, 4}, {0, 12}, {0, 4}, {12, 16}, {4, 16}, {12, 0}, {4, 0}}) {
      Point const line[2] = {{8, 8}, end};
      p.polyline(line);
    }
  }), ".................\n"
      "....#......#.....\n"
      ".....#.....#.....\n"
      ".....#....#......\n"
      ".#....#...#....#.\n"
      "..##..#..#...##..\n"
      "....##.#.#.##....\n"
      "......#####......\n"
      ".......###.......\n"
      ".....####.##.....\n"
      "...##..#.#..##...\n"
      ".##...#..#....##.\n"
      "......#...#......\n"
      ".....#....#......\n"
      ".....#.....#.....\n"
      "....#......#.....\n"
      ".................\n");
}

TEST(PainterExact, starByBothFillRules)
{
  // Top, right foot, left arm, right arm, left foot: wound once in the points and twice in the middle.
  Point const star[5] = {{10, 0}, {16, 18}, {0, 7}, {20, 7}, {4, 18}};
  auto const fill = [&](FillRule rule) {
    return drawn(21, 19, Pen(), [&](Painter& p) {
      p.noPen();
      p.brush(white);
      p.polygon(star, rule);
    });
  };
  EXPECT_EQ(fill(FillRule::alternate),
            ".....................\n"
            "..........#..........\n"
            "..........#..........\n"
            ".........##..........\n"
            ".........###.........\n"
            ".........###.........\n"
            "........####.........\n"
            "########.....#######.\n"
            "..######.....######..\n"
            "...####......#####...\n"
            ".....##.......##.....\n"
            "......#.......#......\n"
            "......##.....#.......\n"
            "......###...###......\n"
            "......####.####......\n"
            ".....####...###......\n"
            ".....##.......##.....\n"
            ".....#.........#.....\n"
            ".....................\n");
  EXPECT_EQ(fill(FillRule::winding),
            ".....................\n"
            "..........#..........\n"
            "..........#..........\n"
            ".........##..........\n"
            ".........###.........\n"
            ".........###.........\n"
            "........####.........\n"
            "####################.\n"
            "..#################..\n"
            "...###############...\n"
            ".....###########.....\n"
            "......#########......\n"
            "......########.......\n"
            "......#########......\n"
            "......####.####......\n"
            ".....####...###......\n"
            ".....##.......##.....\n"
            ".....#.........#.....\n"
            ".....................\n");
}

TEST(PainterExact, oneDashOfEachStyle)
{
  auto const row = [](u8 style) {
    return drawn(50, 1, {0, 1, style, 0, 0}, [](Painter& p) {
      Point const line[2] = {{0, 0}, {50, 0}};
      p.polyline(line);
    });
  };
  EXPECT_EQ(row(0), "##################################################\n");
  EXPECT_EQ(row(1), "##################......##################......##\n");
  EXPECT_EQ(row(2), "###...###...###...###...###...###...###...###...##\n");
  EXPECT_EQ(row(3), "#########......###......#########......###......##\n");
  EXPECT_EQ(row(4), "#########...###...###...#########...###...###...##\n");
}

TEST(PainterExact, dashesGoRoundACorner)
{
  EXPECT_EQ(drawn(8, 5, {0, 1, 2, 0, 0}, [](Painter& p) {
    Point const line[3] = {{0, 0}, {7, 0}, {7, 5}};
    p.polyline(line);
  }), "###...##\n"
      ".......#\n"
      "........\n"
      "........\n"
      "........\n");
}

TEST(PainterExact, ellipseOfEightBySixPels)
{
  // Half axes 3.5 and 2.5 about a middle between pels; each column and row holds the pel nearest to the curve.
  EXPECT_EQ(drawn(10, 8, Pen(), [](Painter& p) { p.ellipse({1, 1, 9, 7}); }),
            "..........\n"
            "...####...\n"
            "..#....#..\n"
            ".#......#.\n"
            ".#......#.\n"
            "..#....#..\n"
            "...####...\n"
            "..........\n");
}

TEST(PainterExact, roundRectangleWithCornersOfSevenPels)
{
  // Quarters of a circle seven pels wide, so of radius 3: 3, 2.8, 2.2 and 0 across at 0, 1, 2 and 3 along.
  EXPECT_EQ(drawn(14, 10, Pen(), [](Painter& p) { p.roundRect({1, 1, 13, 9}, {7, 7}); }),
            "..............\n"
            "...########...\n"
            "..#........#..\n"
            ".#..........#.\n"
            ".#..........#.\n"
            ".#..........#.\n"
            ".#..........#.\n"
            "..#........#..\n"
            "...########...\n"
            "..............\n");
}

TEST(PainterExact, arcsOfTheFourQuadrants)
{
  // Radius 4: 4, 3.9, 3.5 and 2.6 across at 0 to 3 along. Counter-clockwise, the pels on both rays included.
  auto const quadrant = [](Point start, Point end) {
    return drawn(9, 9, Pen(), [&](Painter& p) { p.arc({0, 0, 9, 9}, start, end); });
  };
  Point const right{99, 4}, top{4, -99}, left{-99, 4}, bottom{4, 99};
  EXPECT_EQ(quadrant(right, top),
            "....##...\n"
            "......##.\n"
            ".......#.\n"
            "........#\n"
            "........#\n"
            ".........\n"
            ".........\n"
            ".........\n"
            ".........\n");
  EXPECT_EQ(quadrant(top, left),
            "...##....\n"
            ".##......\n"
            ".#.......\n"
            "#........\n"
            "#........\n"
            ".........\n"
            ".........\n"
            ".........\n"
            ".........\n");
  EXPECT_EQ(quadrant(left, bottom),
            ".........\n"
            ".........\n"
            ".........\n"
            ".........\n"
            "#........\n"
            "#........\n"
            ".#.......\n"
            ".##......\n"
            "...##....\n");
  EXPECT_EQ(quadrant(bottom, right),
            ".........\n"
            ".........\n"
            ".........\n"
            ".........\n"
            "........#\n"
            "........#\n"
            ".......#.\n"
            "......##.\n"
            "....##...\n");
}

TEST(PainterExact, wideLineWithEachCap)
{
  // Five rows; a round end reaches 2.5, 2.3 and 1.5 pels beyond the point in the rows 0, 1 and 2 off the middle.
  auto const line = [](u8 cap) {
    return drawn(20, 7, {0, 5, 0, 0, cap}, [](Painter& p) {
      Point const ends[2] = {{6, 3}, {14, 3}};
      p.polyline(ends);
    });
  };
  EXPECT_EQ(line(0), "....................\n"
                     ".....###########....\n"
                     "....#############...\n"
                     "....#############...\n"
                     "....#############...\n"
                     ".....###########....\n"
                     "....................\n");
  EXPECT_EQ(line(1), "....................\n"
                     "......########......\n"
                     "......########......\n"
                     "......########......\n"
                     "......########......\n"
                     "......########......\n"
                     "....................\n");
  EXPECT_EQ(line(2), "....................\n"
                     "....#############...\n"
                     "....#############...\n"
                     "....#############...\n"
                     "....#############...\n"
                     "....#############...\n"
                     "....................\n");
}

TEST(PainterExact, wideCornerWithEachJoin)
{
  // The outer quarter beyond the corner at (14, 4): a quarter disc of radius 2.5, or the triangle between the two sides.
  auto const corner = [](u8 join) {
    return drawn(20, 12, {0, 5, 0, join, 1}, [](Painter& p) {
      Point const points[3] = {{4, 4}, {14, 4}, {14, 11}};
      p.polyline(points);
    });
  };
  std::string const below = "....#############...\n"
                            "....#############...\n"
                            "....#############...\n"
                            "............#####...\n"
                            "............#####...\n"
                            "............#####...\n"
                            "............#####...\n"
                            "....................\n";
  EXPECT_EQ(corner(0), "....................\n"
                       "....................\n"
                       "....############....\n"
                       "....#############...\n" + below);
  EXPECT_EQ(corner(1), "....................\n"
                       "....................\n"
                       "....###########.....\n"
                       "....############....\n" + below);
}
