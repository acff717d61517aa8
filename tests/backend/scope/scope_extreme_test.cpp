// Numbers of any size, and what is no number: nothing is thrown, and what is not finite draws nothing.
#include "canvas/format.h"
#include "canvas/rle_buffer.h"
#include "geometry/ellipse_arc.h"
#include "tests/support/every_figure.h"
#include "tests/backend/scope/scope_fixture.h"

#include <cmath>
#include <limits>

namespace {

constexpr double endless = std::numeric_limits<double>::infinity();
double const noNumber = std::nan("");
constexpr ccUITablet::Layers kImage = ccUITablet::imageLayer;
constexpr double largest = std::numeric_limits<double>::max();

std::vector<double> const& sizes()
{
  static std::vector<double> const all{0,     1e-300, 1e-9, 0.4,  1,    1e3,   65536, 1e6,   1e9,
                                       1.08e9, 2.2e9, 1e13, 1e19, 1e40, 1e154, 1e300, 1e307, largest};
  return all;
}

std::vector<double> places()
{
  std::vector<double> all;
  for (double const v : sizes()) {
    all.push_back(v);
    all.push_back(-v);
  }
  return all;
}

std::vector<ccPoint> noPlaces()
{
  return {ccPoint(noNumber, 5), ccPoint(5, noNumber), ccPoint(endless, 5), ccPoint(5, -endless), ccPoint(noNumber, endless)};
}

std::vector<ccGraphicProps> pens()
{
  std::vector<ccGraphicProps> all;
  for (long const width : {-5L, 1L, 3L, 2000000000L})
    for (bool const fill : {false, true}) {
      all.emplace_back(ccColor::whiteColor(), width, width < 2 ? ceDotPen : ceSolidPen, fill);
      all.back().capStyle(2);
    }
  return all;
}

}  // namespace

class ScopeExtreme : public ScopeTest {
protected:
  ScopeExtreme()
  {
    create(scope);
    scope.colorMap(testColors());
    scope.colorMapEx(testColors());
    scope.set(ccColor::blackColor());  // a new surface holds anything
  }
  bool isClean()
  {
    std::vector<std::uint32_t> const pels = pelsOf(scope.surface());
    return std::all_of(pels.begin(), pels.end(), [](std::uint32_t p) { return p == 0; });
  }
  ScopeProbe scope;
};

TEST_F(ScopeExtreme, everyFigureOfAnySizeIsDrawnWithoutAnException)
{
  std::vector<ccGraphicProps> const all = pens();
  std::size_t turn = 0, drawn = 0;
  for (double const x : places())
    for (double const size : sizes()) {
      ccGraphicProps const& pen = all[turn++ % all.size()];
      ccPoint const at(x, turn % 3 == 0 ? -x : 7);
      auto const draw = [&](auto const& make) {
        std::unique_ptr<ccShape> figure;
        auto one = make();
        if (!one)
          return;
        ASSERT_NO_THROW(scope.draw(*one, pen)) << x << ' ' << size;
        ++drawn;
      };
      auto const made = [](auto const& body) {
        using Figure = decltype(body());
        try {
          return std::make_unique<Figure>(body());
        } catch (ccException const&) {
          return std::unique_ptr<Figure>();
        }
      };
      std::vector<ccVector<2>> const ring{at, at + ccVector<2>(size, 0), at + ccVector<2>(size, size), ccVector<2>(3, 9)};
      draw([&] { return made([&] { return ccLineSeg(at, at + ccVector<2>(size, size / 2)); }); });
      draw([&] { return made([&] { return ccPolygon(ring); }); });
      draw([&] { return made([&] { return ccPolygon(ring, 1); }); });
      draw([&] { return made([&] { return ccPolygon(ring, 2); }); });
      draw([&] { return made([&] { return ccPolyline(ring, true); }); });
      for (double const angle : {0.0, 0.5}) {
        draw([&] { return made([&] { return ccGenRect(at, ccVector<2>(size, size / 3), ccRadian(angle), ccVector<2>(size / 5, 2)); }); });
        draw([&] { return made([&] { return ccEllipse(at, size, size / 2, ccRadian(angle)); }); });
        draw([&] { return made([&] { return ccEllipse2(at, size, 0, ccRadian(angle)); }); });
        draw([&] { return made([&] { return ccEllipseArc(ccEllipse(at, size, size / 2, ccRadian(angle)), ccRadian(1), ccRadian(-3)); }); });
        draw([&] { return made([&] { return ccEllipseArc2(ccEllipse2(at, size, 0, ccRadian(angle)), ccRadian(1), ccRadian(2)); }); });
      }
    }
  EXPECT_GT(drawn, 8000u);
}

TEST_F(ScopeExtreme, placesOfAnySizeAreTakenByPointsTextAndImages)
{
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(4, 4, 1);
  ccPelBuffer<ccPackedRGB32Pel> const colors = randomImage<ccPackedRGB32Pel>(4, 4, 1);
  unsigned char const icon[] = {1, 2, 3, 4};
  ccRLEBuffer const runs = ccRLEBuffer::fromPels(icon, 2, 2, 2);
  ccGraphicProps const pen(ccColor::whiteColor(), 3, ceSolidPen, false);
  for (double const x : places())
    for (double const y : {0.0, x}) {
      ccPoint const p(x, y);
      EXPECT_NO_THROW({
        scope.draw(p, pen);
        scope.drawTo(p, pen);
        scope.drawStart(p);
        scope.drawToRel(std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min(), pen);
        scope.drawTo(ccPoint(3, 3), pen);
        scope.draw(std::string("text"), p, ccColor::whiteColor(), ccColor::redColor(), ccUIFormat());
        ccUIRect clipped;
        scope.textRect("text", p, ccUIFormat(), clipped);
        scope.fill(p, ccColor::redColor(), ccColor::whiteColor(), true);
        scope.draw(runs, p, std::vector<unsigned char>{}, false, 0);
        scope.draw(image, p, false, 0, true);
        scope.draw(colors, p, false, 0);
        for (double const scale : {1e-300, 0.3, 2.7, 1e300}) {
          scope.expand(image, p, ccPair<double>(scale, scale), false, 0, true, ccUIScope::InterpolationModes());
          scope.sample(colors, p, ccPair<double>(scale, scale), false, 0);
          scope.expand(runs, p, ccPair<double>(scale, scale), std::vector<unsigned char>{}, false, 0);
        }
      }) << x << ' ' << y;
    }
}

TEST_F(ScopeExtreme, whatIsNoPlaceDrawsNothing)
{
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(30, 30, 1);
  ccPelBuffer<ccPackedRGB32Pel> const colors = randomImage<ccPackedRGB32Pel>(30, 30, 1);
  unsigned char const icon[] = {7, 7, 7, 7};
  ccRLEBuffer const runs = ccRLEBuffer::fromPels(icon, 2, 2, 2);
  ccGraphicProps const pen(ccColor::whiteColor(), 1, ceSolidPen, false);
  for (ccPoint const& p : noPlaces()) {
    scope.draw(p, pen);
    scope.draw(std::string("text"), p, ccColor::whiteColor(), ccColor::redColor(), ccUIFormat());
    scope.fill(p, ccColor::redColor(), ccColor::whiteColor(), true);
    scope.draw(runs, p, std::vector<unsigned char>{}, false, 0);
    scope.draw(image, p, false, 0, true);
    scope.draw(colors, p, false, 0);
    scope.expand(image, p, ccPair<double>(2, 2), false, 0, true, ccUIScope::InterpolationModes());
    scope.sample(colors, p, ccPair<double>(0.5, 0.5), false, 0);
    scope.expand(runs, p, ccPair<double>(2, 2), std::vector<unsigned char>{}, false, 0);
    ccUIRect clipped(1, 1, 1, 1);
    EXPECT_TRUE(scope.textRect("text", p, ccUIFormat(), clipped).isNull());
    EXPECT_TRUE(clipped.isNull());
    EXPECT_TRUE(isClean()) << p.x() << ' ' << p.y();
  }
}

TEST_F(ScopeExtreme, lineFromNowhereIsNotDrawnAndTheNextOneIs)
{
  ccGraphicProps const pen(ccColor::whiteColor(), 1, ceSolidPen, false);
  for (ccPoint const& p : noPlaces()) {
    scope.set(ccColor::blackColor());
    scope.drawStart(ccPoint(2, 2));
    scope.drawTo(p, pen);
    scope.drawToRel(5, 5, pen);
    scope.drawTo(ccPoint(20, 2), pen);
    EXPECT_TRUE(isClean());
    scope.drawTo(ccPoint(20, 12), pen);
    EXPECT_NE(pelOf(scope.surface(), 20, 7), 0u);
    EXPECT_EQ(pelOf(scope.surface(), 10, 2), 0u);
  }
}

TEST_F(ScopeExtreme, farEndsOfALineLeaveItsSlope)
{
  scope.draw(ccLineSeg(ccPoint(-1e12, -5e11), ccPoint(1e12, 5e11)), ccGraphicProps(ccColor::whiteColor(), 1, ceSolidPen, false));
  for (long x = 0; x < width; ++x)
    EXPECT_TRUE(pelOf(scope.surface(), x, x / 2) != 0 || pelOf(scope.surface(), x, x / 2 + 1) != 0) << x;
}

class TabletExtreme : public ScopeExtreme {};

TEST_F(TabletExtreme, everyFigureUnderEveryMapIsDrawnWithoutAnException)
{
  std::vector<ccGraphicProps> const all = pens();
  std::vector<ccMatrix<2>> matrices{ccMatrix<2>(0, 0, 0, 0), ccMatrix<2>(1, 1, 1, 1), ccMatrix<2>(noNumber, 0, 0, 1),
                                    ccMatrix<2>(1, endless, 0, 1), ccMatrix<2>(1, 0, 0, 0)};
  for (double const scale : {1e-300, 1e-12, 1.0, 1e12, 1e300})
    for (double const shear : {0.0, 0.4})
      matrices.push_back(ccMatrix<2>(scale, -scale * shear, scale * (shear / 2), scale));
  std::size_t turn = 0;
  for (ccMatrix<2> const& matrix : matrices)
    for (double const shift : {0.0, -1e9, 1e308, noNumber})
      for (double const x : {0.0, 1e9, -1e17, 1e308})
        for (double const size : {0.0, 1.0, 1e9, 1e300}) {
          ccUITablet tablet(&scope, nullptr);
          ASSERT_NO_THROW({
            tablet.baseMap(ccXform<2>(matrix, ccVector<2>(shift, 3)));
            for (NamedFigure const& figure : everyFigure(ccPoint(x, 5), size)) {
              SCOPED_TRACE(figure.name);
              figure.draw(tablet, all[turn++ % all.size()], kImage);
            }
          }) << x << ' ' << size << ' ' << shift << ' ' << matrix.element(0, 0);
        }
}

TEST_F(TabletExtreme, mapsWithoutNumbersDrawNothing)
{
  for (ccXform<2> const& map : {ccXform<2>(noNumber, 1, ccVector<2>()), ccXform<2>(1, endless, ccVector<2>()),
                                ccXform<2>(1, 1, ccVector<2>(noNumber, 0)), ccXform<2>(1, 1, ccVector<2>(0, -endless))}) {
    ccUITablet tablet(&scope, nullptr);
    tablet.baseMap(map);
    ccGraphicProps const pen(ccColor::whiteColor(), 1, ceSolidPen, true);
    for (NamedFigure const& figure : everyFigure(ccPoint(20, 15), 10)) {
      figure.draw(tablet, pen, kImage);
      EXPECT_TRUE(isClean()) << figure.name;
    }
    tablet.drawPointIcon(ccPoint(5, 5), pen, kImage);
    tablet.drawStart(ccPoint(5, 5), kImage);
    tablet.drawTo(ccPoint(25, 25), ccColor::whiteColor(), kImage);
    tablet.drawToRelPels(-10, 4, ccColor::whiteColor(), kImage);
    tablet.draw(randomImage<unsigned char>(30, 30, 1), ccPoint(1, 1), false, 0, true, kImage);
    tablet.draw(std::string("text"), ccPoint(5, 5), ccColor::whiteColor(), ccColor::redColor(), ccUIFormat(), kImage);
    EXPECT_TRUE(tablet.textRect("text", ccPoint(5, 5), ccUIFormat(), kImage).isNull());
    tablet.drawClipRect(ccRect(ccPoint(0, 0), ccVector<2>(40, 30)), kImage);
    tablet.set(ccUIRect(0, 0, 40, 30), ccColor::whiteColor(), kImage);
    EXPECT_TRUE(isClean());
  }
}

TEST_F(TabletExtreme, placesWithoutNumbersDrawNothing)
{
  ccUITablet tablet(&scope, nullptr);
  ccGraphicProps const pen(ccColor::whiteColor(), 1, ceSolidPen, true);
  ccUITablet recorder;
  recorder.set(ccUIRect(1, 1, 9, 9), ccColor::whiteColor(), kImage);
  unsigned char const icon[] = {7, 7, 7, 7};
  ccRLEBuffer const runs = ccRLEBuffer::fromPels(icon, 2, 2, 2);
  for (ccPoint const& p : noPlaces()) {
    tablet.drawPointIcon(p, pen, kImage);
    tablet.drawStart(p, kImage);
    tablet.drawTo(ccPoint(25, 25), ccColor::whiteColor(), kImage);
    tablet.drawTo(p, ccColor::whiteColor(), kImage);
    tablet.drawToRelPels(-10, 4, ccColor::whiteColor(), kImage);
    tablet.draw(randomImage<unsigned char>(30, 30, 1), p, false, 0, true, kImage);
    tablet.draw(runs, p, std::vector<unsigned char>{}, false, 0, true, kImage);
    tablet.draw(std::string("text"), p, ccColor::whiteColor(), ccColor::redColor(), ccUIFormat(), kImage);
    tablet.draw(recorder.sketch(), p, kImage);
    EXPECT_TRUE(tablet.textRect("text", p, ccUIFormat(), kImage).isNull());
    EXPECT_TRUE(isClean()) << p.x() << ' ' << p.y();
  }
}

// Three sides of the rectangle lie beyond all pels; what is left fills the quarter that it covers.
TEST_F(TabletExtreme, hugeScaleOfAFiniteFigureIsStillRightOrNothing)
{
  ccUITablet tablet(&scope, nullptr);
  tablet.baseMap(ccXform<2>(1e290, 1e290, ccVector<2>(20, 15)));
  tablet.draw(ccRect(ccPoint(0, 0), ccVector<2>(5, 5)), ccGraphicProps(ccColor::whiteColor(), 1, ceSolidPen, true), kImage);
  EXPECT_NE(pelOf(scope.surface(), 25, 20), 0u);
  EXPECT_EQ(pelOf(scope.surface(), 15, 20), 0u);
  EXPECT_EQ(pelOf(scope.surface(), 25, 10), 0u);
}
