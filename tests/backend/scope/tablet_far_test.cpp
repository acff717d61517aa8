// What a tablet makes of figures far larger than the surface, and of many points, on a real scope: the pels in sight are those
// of the whole figure. What is expected is worked out here in whole numbers or long doubles.
#include "canvas/graphic_props.h"
#include "canvas/tablet.h"
#include "geometry/circle.h"
#include "geometry/ellipse.h"
#include "geometry/gen_rect.h"
#include "geometry/lines.h"
#include "geometry/polygon.h"
#include "tests/backend/scope/scope_fixture.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace {

__extension__ using i128 = __int128;
using Points = std::vector<ccVector<2>>;
using Pels = std::set<std::pair<long, long>>;

constexpr ccUITablet::Layers kImage = ccUITablet::imageLayer;
constexpr long wide = 200, high = 150;

ccGraphicProps pen(long w = 1) { return ccGraphicProps(ccColor::whiteColor(), w, ceSolidPen, false); }

i128 floorDiv(i128 a, i128 b)  // b above 0
{
  return a / b - (a % b < 0 ? 1 : 0);
}

long whole(double v) { return static_cast<long>(std::floor(v + 0.5)); }

// The pels of a line from one whole pel to another, the last one left out, on the surface: along the longer axis one pel a step,
// a tie to the smaller coordinate.
void addLine(Pels& pels, long x0, long y0, long x1, long y1)
{
  i128 const dx = i128{x1} - x0, dy = i128{y1} - y0;
  bool const steep = (dy < 0 ? -dy : dy) > (dx < 0 ? -dx : dx);
  i128 const n = steep ? (dy < 0 ? -dy : dy) : (dx < 0 ? -dx : dx);
  for (long at = 0; at < (steep ? high : wide); ++at) {
    i128 const k = ((steep ? dy : dx) < 0 ? -1 : 1) * (i128{at} - (steep ? y0 : x0));
    if (k < 0 || k >= n)
      continue;
    // minor = start + ceil((2 k m - n) / 2n), the smallest whole number not below the exact one less a half
    i128 const m = steep ? dx : dy, start = steep ? x0 : y0;
    i128 const minor = start - floorDiv(n - 2 * k * m, 2 * n);
    if (minor >= 0 && minor < (steep ? wide : high))
      pels.insert(steep ? std::pair<long, long>(static_cast<long>(minor), at) : std::pair<long, long>(at, static_cast<long>(minor)));
  }
}

void addPel(Pels& pels, long x, long y)
{
  if (x >= 0 && y >= 0 && x < wide && y < high)
    pels.insert({x, y});
}

}  // namespace

class TabletFar : public ScopeTest {
protected:
  ScopeProbe* created()
  {
    EXPECT_EQ(scope.create(window_, ccPair<long>(wide, high), -1), 0);
    return &scope;
  }
  void clear() { scope.set(ccColor::blackColor()); }
  Pels inked()
  {
    std::vector<std::uint32_t> const pels = pelsOf(scope.surface());
    Pels all;
    for (std::size_t i = 0; i < pels.size(); ++i)
      if (pels[i] != 0)
        all.insert({static_cast<long>(i) % wide, static_cast<long>(i) / wide});
    return all;
  }
  ScopeProbe scope;
  ccUITablet tablet{created(), nullptr};  // takes the size that the scope has then
};

TEST_F(TabletFar, linesWithFarEndsShowThePelsOfTheWholeLine)
{
  std::mt19937 random(11);
  for (double const reach : {1e3, 1e6, 1e8, 1e9}) {
    int seen = 0;
    for (int i = 0; i < 60; ++i) {
      std::uniform_real_distribution<double> far(-reach, reach), near(-20, 220);
      // Through a place in sight, so that something is there to compare.
      ccVector<2> const through(near(random), near(random)), way(far(random), far(random));
      double const t = std::uniform_real_distribution<double>(0, 1)(random);
      auto const end = [&](double k) {
        return ccPoint(std::clamp(std::round(through.x() + way.x() * k), -1.05e9, 1.05e9),
                       std::clamp(std::round(through.y() + way.y() * k), -1.05e9, 1.05e9));
      };
      ccPoint const a = end(-t), b = end(1 - t);
      Pels expected;
      addLine(expected, whole(a.x()), whole(a.y()), whole(b.x()), whole(b.y()));
      addPel(expected, whole(b.x()), whole(b.y()));
      clear();
      tablet.draw(ccLineSeg(a, b), pen(), kImage);
      ASSERT_EQ(inked(), expected) << a.x() << ' ' << a.y() << ' ' << b.x() << ' ' << b.y();
      seen += !expected.empty();
    }
    EXPECT_GT(seen, 20) << reach;
  }
}

TEST_F(TabletFar, linesCutBeyondThePainterStayWithinAPelOfTheTruth)
{
  std::mt19937 random(12);
  for (double const reach : {3e9, 1e11, 1e12}) {
    int seen = 0;
    for (int i = 0; i < 40; ++i) {
      std::uniform_real_distribution<double> far(-1, 1), near(20, 130);
      ccVector<2> const through(near(random), near(random)), way(far(random) * reach, far(random) * reach);
      ccPoint const a = through - way, b = through + way;
      clear();
      tablet.draw(ccLineSeg(a, b), pen(), kImage);
      Pels const pels = inked();
      EXPECT_GE(pels.size(), 20u);
      long double const dx = static_cast<long double>(b.x()) - a.x(), dy = static_cast<long double>(b.y()) - a.y();
      bool const steep = std::abs(dy) > std::abs(dx);
      for (auto const& [x, y] : pels) {
        long double const off = steep ? x - (a.x() + dx * ((y - static_cast<long double>(a.y())) / dy))
                                      : y - (a.y() + dy * ((x - static_cast<long double>(a.x())) / dx));
        ASSERT_LE(std::abs(off), 1.01L) << reach << ' ' << x << ' ' << y;
        ++seen;
      }
    }
    EXPECT_GT(seen, 1000);
  }
}

TEST_F(TabletFar, endlessLineRunsThroughAllOfTheSurfaceAtEverySlope)
{
  for (int i = 0; i < 36; ++i) {
    double const angle = i * cfPi / 36 + 0.001;
    ccLine const line(ccVector<2>(std::cos(angle), std::sin(angle)), ccPoint(100.3, 75.2));
    clear();
    tablet.draw(line, pen(), kImage);
    Pels const pels = inked();
    for (auto const& [x, y] : pels)
      EXPECT_LE(line.distToPoint(ccVector<2>(static_cast<double>(x), static_cast<double>(y))), 1.0) << i;
    bool const steep = std::abs(std::sin(angle)) > std::abs(std::cos(angle));
    double const extent = steep ? high : wide, slope = steep ? 1 / std::tan(angle) : std::tan(angle);
    double const room = steep ? wide : high;
    EXPECT_NEAR(static_cast<double>(pels.size()), std::min(extent, room / std::max(std::abs(slope), 1e-9)), 3) << i;
  }
}

TEST_F(TabletFar, polylineOfTwoMillionPointsIsDrawnWhole)
{
  // A fan of hops over the surface and beyond, each a line of the plain rule.
  constexpr int count = 2000000;
  Points points;
  points.reserve(count);
  Pels expected;
  std::mt19937 random(13);
  for (int i = 0; i < count; ++i)
    points.emplace_back(static_cast<double>(random() % 100000) + 1000, static_cast<double>(random() % 100000) + 1000);
  // In sight at the start, in the middle and at the end.
  for (int const at : {0, 777777, 1234567, count - 2}) {
    points[static_cast<std::size_t>(at)] = ccVector<2>(at % 190, 20 + at % 100);
    points[static_cast<std::size_t>(at) + 1] = ccVector<2>(at % 170 + 10, 140 - at % 90);
  }
  for (std::size_t i = 1; i < points.size(); ++i)
    if (std::min(points[i - 1].x(), points[i].x()) < wide || std::min(points[i - 1].y(), points[i].y()) < high)
      addLine(expected, whole(points[i - 1].x()), whole(points[i - 1].y()), whole(points[i].x()), whole(points[i].y()));
  ASSERT_GT(expected.size(), 300u);

  tablet.draw(ccPolyline(points), pen(), kImage);

  EXPECT_EQ(inked(), expected);
}

TEST_F(TabletFar, polygonOfAHundredThousandEdgesIsFilledRight)
{
  // A comb: each tooth two pels wide with a gap of two, so many that most lie outside.
  constexpr long teeth = 25000;
  Points points;
  for (long i = 0; i < teeth; ++i) {
    double const x = static_cast<double>(4 * i - 50000);
    points.insert(points.end(), {{x, 120}, {x, 30}, {x + 2, 30}, {x + 2, 120}});
  }
  ASSERT_EQ(points.size(), 100000u);
  tablet.draw(ccPolygon(points, 1), pen(), kImage);
  Pels const pels = inked();
  Pels expected;
  for (long y = 0; y < high; ++y)
    for (long x = 0; x < wide; ++x) {
      bool const tooth = y >= 30 && y <= 120 && ((x + 50000) % 4) <= 2;
      bool const base = y == 120;  // the pen runs along the gaps
      if (tooth || base)
        expected.insert({x, y});
    }
  EXPECT_EQ(pels, expected);
}

TEST_F(TabletFar, polygonWithFarVerticesIsFilledToItsEdges)
{
  for (double const reach : {1e6, 1e9, 1e11}) {
    clear();
    // Below the line y = 50 + x / 4 from one far end to the other.
    tablet.draw(ccPolygon(Points{{-reach, 50 - reach / 4}, {reach, 50 + reach / 4}, {reach, reach}, {-reach, reach}}, 2), pen(),
                kImage);
    Pels const pels = inked();
    for (long y = 0; y < high; ++y)
      for (long x = 0; x < wide; ++x) {
        double const off = static_cast<double>(y) - (50 + static_cast<double>(x) / 4);
        if (std::abs(off) > 1) {
          ASSERT_EQ(pels.count({x, y}) == 1, off > 0) << reach << ' ' << x << ' ' << y;
        }
      }
  }
}

// Each thin pel of a huge circle lies within half a pel of it along the axis it is stepped in, and none is missing.
TEST_F(TabletFar, hugeCirclesAreRightWithinHalfAPel)
{
  for (double const radius : {6e4, 2e6, 1e7, 1e9})
    for (int i = 0; i < 16; ++i) {
      double const angle = i * cfPi / 8 + 0.1;
      // Through (100, 75), from the middle out.
      ccPoint const center(100 - radius * std::cos(angle), 75 - radius * std::sin(angle));
      tablet.baseMap(ccXform<2>(2, 1, ccVector<2>()));
      ccEllipse const ellipse(ccPoint(center.x() / 2, center.y()), radius / 2, radius, ccRadian(0));
      clear();
      tablet.draw(ellipse, pen(), kImage);
      Pels const pels = inked();
      bool const steep = std::abs(std::cos(angle)) > std::abs(std::sin(angle));
      EXPECT_GE(pels.size(), 100u) << radius << ' ' << i;
      std::set<long> stepped;
      for (auto const& [x, y] : pels) {
        long double const along = steep ? y - static_cast<long double>(center.y()) : x - static_cast<long double>(center.x());
        long double const r = radius;
        long double const across = std::sqrt(r * r - along * along);
        bool const up = (steep ? std::cos(angle) : std::sin(angle)) > 0;
        long double const truth = (steep ? center.x() : center.y()) + (up ? across : -across);
        ASSERT_LE(std::abs((steep ? x : y) - truth), 0.501L) << radius << ' ' << i << ' ' << x << ' ' << y;
        stepped.insert(steep ? y : x);
      }
      EXPECT_EQ(static_cast<long>(stepped.size()), *stepped.rbegin() - *stepped.begin() + 1);
    }
}

TEST_F(TabletFar, hugeCirclesOfAMapThatKeepsShapesAreRightWithinHalfAPel)
{
  for (double const radius : {2e6, 1e7, 1e9})
    for (int i = 0; i < 8; ++i) {
      double const angle = i * cfPi / 4 + 0.2;
      // Through (100, 75) under the map, whose quarter turn and magnification by 2 take (x, y) to (-2 y, 2 x) and the shift.
      tablet.baseMap(ccXform<2>(ccMatrix<2>(0, -2, 2, 0), ccVector<2>(100, 75)));
      ccCircle const circle(ccPoint(radius * std::cos(angle), radius * std::sin(angle)), radius);
      ccVector<2> const center(100 - 2 * circle.center().y(), 75 + 2 * circle.center().x());
      clear();
      tablet.draw(circle, ccColor::whiteColor(), kImage);
      Pels const pels = inked();
      EXPECT_GE(pels.size(), 100u);
      for (auto const& [x, y] : pels) {
        long double const dx = x - static_cast<long double>(center.x()), dy = y - static_cast<long double>(center.y());
        long double const off = std::abs(std::sqrt(dx * dx + dy * dy) - 2 * static_cast<long double>(radius));
        ASSERT_LE(off, 0.501L) << radius << ' ' << i << ' ' << x << ' ' << y;
      }
    }
}

TEST_F(TabletFar, hugeFilledAndWideCirclesBendSmoothly)
{
  for (double const radius : {3e4, 5e5, 1e7, 1e9})
    for (bool const filled : {true, false}) {
      clear();
      tablet.baseMap(ccXform<2>(ccMatrix<2>(ccRadian(0.7), 1), ccVector<2>(100, 75)));
      ccEllipse const ellipse(ccPoint(radius, 0), radius, radius * 0.75, ccRadian(0));
      tablet.draw(ellipse, pen(filled ? 1 : 9), kImage, filled);
      Pels const pels = inked();
      for (long y = 0; y < high; y += 3)
        for (long x = 0; x < wide; x += 3) {
          ccVector<2> const p = ccXform<2>(ccMatrix<2>(ccRadian(-0.7), 1), ccVector<2>())
                                    .mapPoint(ccVector<2>(static_cast<double>(x - 100), static_cast<double>(y - 75)));
          // Near its vertex the ellipse is x = y^2 rx / (2 ry^2) within far less than a pel.
          double const off = p.x() - p.y() * p.y() * radius / (2 * radius * radius * 0.5625);
          bool const on = pels.count({x, y}) == 1;
          if (filled ? std::abs(off) > 2 : std::abs(std::abs(off) - 4.5) > 2) {
            ASSERT_EQ(on, filled ? off > 0 : std::abs(off) < 4.5) << radius << ' ' << x << ' ' << y;
          }
        }
    }
}

TEST_F(TabletFar, quarterTurnsAndMirrorsKeepFiguresSharp)
{
  // Turned by quarters and mirrored, an upright rectangle has four straight sides and no more pels than these.
  ccGenRect const rect(ccPoint(0, 0), ccVector<2>(20, 10), ccRadian(0), ccVector<2>());
  for (int quarter = 0; quarter < 4; ++quarter)
    for (double const mirror : {1.0, -1.0}) {
      ccMatrix<2> const turn(ccRadian(quarter * cfPi / 2), 1);
      tablet.baseMap(ccXform<2>(turn * ccMatrix<2>(1, 0, 0, mirror), ccVector<2>(100, 75)));
      clear();
      tablet.draw(rect, pen(), kImage);
      long const hx = quarter % 2 ? 10 : 20, hy = quarter % 2 ? 20 : 10;
      Pels expected;
      for (long x = 100 - hx; x <= 100 + hx; ++x) {
        addPel(expected, x, 75 - hy);
        addPel(expected, x, 75 + hy);
      }
      for (long y = 75 - hy; y <= 75 + hy; ++y) {
        addPel(expected, 100 - hx, y);
        addPel(expected, 100 + hx, y);
      }
      EXPECT_EQ(inked(), expected) << quarter << ' ' << mirror;
    }
}
