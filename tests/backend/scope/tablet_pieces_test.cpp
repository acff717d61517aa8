// A figure drawn through a clip, in pieces between other tablets, or area by area has the pels of the whole one.
#include "geometry/rect.h"
#include "tests/support/every_figure.h"
#include "tests/backend/scope/scope_fixture.h"
#include "tests/canvas/tablet_fixture.h"

#include <cmath>

namespace {

constexpr long wide = 120, high = 90;

// Maps that scale, turn, shear and mirror.
ccXform<2> randomMap(std::mt19937& random)
{
  std::uniform_real_distribution<double> unit(-1, 1);
  double const scale = std::pow(4, unit(random));
  ccVector<2> const shift(unit(random) * 30, unit(random) * 30);
  switch (random() % 4) {
  case 0: return ccXform<2>(scale, scale, shift);
  case 1: return ccXform<2>(ccMatrix<2>(ccRadian(unit(random) * 3), scale), shift + ccVector<2>(40, 30));
  case 2: return ccXform<2>(ccMatrix<2>(1, unit(random), unit(random) * 0.5, scale), shift);
  default: return ccXform<2>(-1, 1, shift + ccVector<2>(100, 0));
  }
}

// Broken wide pens keep off lines along the axes, whose dashes begin where the surface does.
ccGraphicProps randomPen(std::mt19937& random)
{
  long const width = random() % 3 == 0 ? static_cast<long>(random() % 7) : 1;
  auto const style = static_cast<cePenStyle>(width < 2 ? random() % 5 : 0);
  ccGraphicProps pen(ccColor::whiteColor(), width, style, random() % 2 == 0);
  pen.capStyle(static_cast<long>(random() % 3));
  pen.joinStyle(static_cast<long>(random() % 2));
  return pen;
}

}  // namespace

class TabletPieces : public ScopeTest {
protected:
  TabletPieces() { EXPECT_EQ(scope.create(window_, ccPair<long>(wide, high), -1), 0); }
  std::vector<std::uint32_t> pels() { return pelsOf(scope.surface()); }
  void clear() { scope.set(ccColor::blackColor()); }

  template <class Check> void forRandomFigures(unsigned seed, int rounds, Check&& check)
  {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(-10, 100), size(2, 60);
    int seen = 0;
    for (int i = 0; i < rounds; ++i) {
      std::vector<NamedFigure> const figures = everyFigure(ccPoint(place(random), place(random)), size(random));
      ASSERT_EQ(figures.size(), 23u);
      NamedFigure const& figure = figures[random() % figures.size()];
      ccXform<2> const map = randomMap(random);
      ccGraphicProps const pen = randomPen(random);
      clear();
      ccUITablet plain(&scope, nullptr);
      plain.baseMap(map);
      figure.draw(plain, pen, kImage);
      SCOPED_TRACE(figure.name + " round " + std::to_string(i));
      std::vector<std::uint32_t> const whole = pels();
      seen += std::any_of(whole.begin(), whole.end(), [](std::uint32_t p) { return p != 0; });
      check(random, map, [&](ccUITablet& t) { figure.draw(t, pen, kImage); }, whole);
      if (HasFatalFailure())
        return;
    }
    EXPECT_GT(seen, rounds / 2);
  }

  ScopeProbe scope;
};

TEST_F(TabletPieces, drawClipLeavesThePelsInsideAsTheyAre)
{
  forRandomFigures(21, 700, [&](std::mt19937& random, ccXform<2> const& map, auto const& draw, auto const& whole) {
    std::uniform_real_distribution<double> place(-20, 60), extent(5, 60);
    ccRect const clip(ccPoint(place(random), place(random)), ccVector<2>(extent(random), extent(random)));
    double left = 1e9, top = 1e9, right = -1e9, bottom = -1e9;
    for (double const x : {clip.ul().x(), clip.lr().x()})
      for (double const y : {clip.ul().y(), clip.lr().y()}) {
        ccVector<2> const p = map.mapPoint(ccVector<2>(x, y));
        double const px = std::floor(p.x() + 0.5 + 1e-6), py = std::floor(p.y() + 0.5 + 1e-6);
        left = std::min(left, px), right = std::max(right, px), top = std::min(top, py), bottom = std::max(bottom, py);
      }
    clear();
    ccUITablet tablet(&scope, nullptr);
    tablet.baseMap(map);
    tablet.drawClipRect(clip, kImage);
    draw(tablet);
    std::vector<std::uint32_t> const cut = pels();
    for (long y = 0; y < high; ++y)
      for (long x = 0; x < wide; ++x) {
        std::size_t const i = static_cast<std::size_t>(y * wide + x);
        double const fx = static_cast<double>(x), fy = static_cast<double>(y);
        bool const in = fx >= left && fx < right && fy >= top && fy < bottom;
        ASSERT_EQ(cut[i], in ? whole[i] : 0u) << x << ',' << y;
      }
  });
}

TEST_F(TabletPieces, tabletsInFrontCutOutTheirPelsOnly)
{
  forRandomFigures(22, 700, [&](std::mt19937& random, ccXform<2> const& map, auto const& draw, auto const& whole) {
    clear();
    ccUITablet tablet(&scope, nullptr);
    tablet.baseMap(map);
    std::vector<std::unique_ptr<ccUITablet>> kids;
    std::vector<ccUIRect> places;
    for (int k = 0; k < 4; ++k) {
      places.emplace_back(static_cast<long>(random() % 100), static_cast<long>(random() % 80), static_cast<long>(random() % 50 + 1),
                          static_cast<long>(random() % 40 + 1));
      kids.push_back(std::make_unique<ccUITablet>(tablet, places.back()));
      kids.back()->opaque(kImage, true);
    }
    draw(tablet);
    std::vector<std::uint32_t> const cut = pels();
    for (long y = 0; y < high; ++y)
      for (long x = 0; x < wide; ++x) {
        std::size_t const i = static_cast<std::size_t>(y * wide + x);
        bool const hidden = std::any_of(places.begin(), places.end(),
                                        [&](ccUIRect const& r) { return r.within(ccPair<long>(x, y)); });
        ASSERT_EQ(cut[i], hidden ? 0u : whole[i]) << x << ',' << y;
      }
  });
}

TEST_F(TabletPieces, repaintsAreaByAreaLeaveTheWholePicture)
{
  forRandomFigures(23, 500, [&](std::mt19937& random, ccXform<2> const& map, auto const& draw, auto const& whole) {
    clear();
    TestTablet tablet(&scope, nullptr);
    tablet.baseMap(map);
    tablet.face = [&](TestTablet& t) { draw(t); };
    std::vector<long> xs{0, wide}, ys{0, high};
    for (int k = 0; k < 3; ++k) {
      xs.push_back(static_cast<long>(random() % wide));
      ys.push_back(static_cast<long>(random() % high));
    }
    std::sort(xs.begin(), xs.end());
    std::sort(ys.begin(), ys.end());
    for (std::size_t i = 1; i < xs.size(); ++i)
      for (std::size_t k = 1; k < ys.size(); ++k)
        tablet.update(ccUIRect(xs[i - 1], ys[k - 1], xs[i] - xs[i - 1], ys[k] - ys[k - 1]), kImage, true);
    std::vector<std::uint32_t> const parts = pels();
    for (std::size_t i = 0; i < parts.size(); ++i)
      ASSERT_EQ(parts[i], whole[i]) << i % wide << ',' << i / wide;
  });
}

TEST_F(TabletPieces, polygonWithoutFillIsTheScopesOpenChain)
{
  std::vector<ccVector<2>> const points{{10.4, 20.2}, {60.7, 25}, {40, 70.5}};
  for (std::size_t count = 1; count <= 3; ++count) {
    ccPolygon const polygon(std::vector<ccVector<2>>(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(count)));
    ccGraphicProps const pen(ccColor::whiteColor(), 1, ceSolidPen, false);
    clear();
    scope.draw(polygon, pen);
    std::vector<std::uint32_t> const byScope = pels();
    clear();
    ccUITablet tablet(&scope, nullptr);
    tablet.draw(polygon, pen, kImage);
    EXPECT_EQ(pels(), byScope) << count;
    // The last vertex is no pel of it, but of a single one.
    std::size_t const last = static_cast<std::size_t>(cfPelOf(points[count - 1].y()) * wide + cfPelOf(points[count - 1].x()));
    EXPECT_EQ(byScope[last] != 0, count == 1) << count;
  }
}

TEST_F(TabletPieces, figureSmallerThanAPelLeavesOne)
{
  for (double const size : {1e-6, 0.3, 30.0})
    for (NamedFigure const& figure : everyFigure(ccPoint(60.1, 44.9), size))
      for (bool const fill : {false, true}) {
        if (figure.name == "polygon" || figure.name == "polyline")
          continue;  // open chains end before their last pel, and that may be all there is
        clear();
        ccUITablet tablet(&scope, nullptr);
        figure.draw(tablet, ccGraphicProps(ccColor::whiteColor(), 1, ceSolidPen, fill), kImage);
        std::vector<std::uint32_t> const all = pels();
        bool near = false;
        for (long y = 35; y < 55; ++y)
          for (long x = 28; x < 95; ++x)
            near = near || all[static_cast<std::size_t>(y * wide + x)] != 0;
        EXPECT_TRUE(near) << figure.name << ' ' << size << ' ' << fill;
      }
}

TEST_F(TabletPieces, ellipseOfRadiusZeroIsAPointUnderEveryMap)
{
  for (ccXform<2> const& map : {ccXform<2>(), ccXform<2>(2, 1, ccVector<2>(3, 4))}) {
    clear();
    ccUITablet tablet(&scope, nullptr);
    tablet.baseMap(map);
    tablet.draw(ccEllipse(ccPoint(20, 30), 0, 9, ccRadian(0.3)), ccColor::whiteColor(), kImage);
    std::vector<std::uint32_t> const all = pels();
    ccVector<2> const at = map.mapPoint(ccVector<2>(20, 30));
    for (long y = 0; y < high; ++y)
      for (long x = 0; x < wide; ++x)
        ASSERT_EQ(all[static_cast<std::size_t>(y * wide + x)] != 0, x == std::lround(at.x()) && y == std::lround(at.y()));
  }
}

TEST_F(TabletPieces, filledRingLeavesItsMiddleFree)
{
  ccEllipseAnnulus const ring(ccEllipse(ccPoint(60, 45), 40, 30, ccRadian(0)), ccEllipse(ccPoint(60, 45), 15, 12, ccRadian(0)));
  ccUITablet tablet(&scope, nullptr);
  clear();
  tablet.draw(ring, ccGraphicProps(ccColor::whiteColor(), 1, ceSolidPen, true), kImage);
  std::vector<std::uint32_t> const all = pels();
  for (long y = 0; y < high; ++y)
    for (long x = 0; x < wide; ++x) {
      double const dx = static_cast<double>(x) - 60, dy = static_cast<double>(y) - 45;
      double const outer = std::hypot(dx / 40, dy / 30), inner = std::hypot(dx / 15, dy / 12);
      if (std::abs(outer - 1) > 0.06 && std::abs(inner - 1) > 0.12) {
        ASSERT_EQ(all[static_cast<std::size_t>(y * wide + x)] != 0, outer < 1 && inner > 1) << x << ',' << y;
      }
    }
}
