// Magnified and reduced images, against the rule worked out pel by pel.
#include "foundation/pel_ops.h"
#include "tests/backend/scope/scope_fixture.h"

#include <cmath>
#include <limits>

namespace {

double tolerantFloor(double x) { return std::floor(x * (1.0 + (x < 0 ? -1e-11 : 1e-11))); }
double tolerantCeil(double x) { return std::ceil(x * (1.0 - (x < 0 ? -1e-11 : 1e-11))); }

// Lets the test scale first and draw then.
class TwoSteps : public ScopeProbe {
public:
  using ScopeProbe::ScopeProbe;
  using ScopeProbe::pelScale;
};

constexpr auto none = cc_TabletEnums::interpolateNone;

}  // namespace

class ScopeScale : public ScopeTest {
protected:
  static constexpr std::uint32_t background = 0x5A;

  void prepare(ScopeProbe& scope, std::size_t imageColors = 256)
  {
    create(scope);
    scope.colorMap(testColors());
    scope.colorMapEx(testColors(imageColors));
    std::vector<unsigned char> indexes(256);
    for (std::size_t i = 0; i < 256; ++i)
      indexes[i] = static_cast<unsigned char>(255 - i);
    scope.cacheMap(indexes);
    wipe(scope);
  }

  static void wipe(ScopeProbe& scope)
  {
    ASSERT_EQ(scope.surface().bltColorFill(static_cast<RECT const*>(nullptr), background, ceBltWait), 0);
  }

  static std::vector<std::uint32_t> blank() { return std::vector<std::uint32_t>(width * height, background); }

  static unsigned char byDefault(unsigned char v) { return v < 10 ? 10 : v > 240 ? 240 : v; }

  struct Place {
    ccPoint at;            // client coordinates
    double scale;
    bool expand;
    ccUIRect rect;         // of the scope, in the root
    ccPair<long> offset;   // client coordinate of its corner
    bool keyed, mapped;
    unsigned char key;
  };

  // The rule, pel by pel. at depth 8 pels go as they are.
  static void paste(std::vector<std::uint32_t>& picture, ccPelBuffer_const<unsigned char> const& image, Place const& p,
                    int depth)
  {
    auto const axis = [&](double client, double corner, long offset) {
      double const f = corner + client - static_cast<double>(offset);
      return p.expand ? (f >= 0 ? std::trunc(f + 0.5) : std::trunc(f - 0.5)) : std::trunc(f);
    };
    double const ix = axis(p.at.x(), static_cast<double>(p.rect.left()), p.offset.x());
    double const iy = axis(p.at.y(), static_cast<double>(p.rect.top()), p.offset.y());
    double const w = static_cast<double>(image.width()), h = static_cast<double>(image.height());
    // Nothing at all of an image whose whole extent truncates to 0.
    if (std::trunc(w * p.scale) < 1 || std::trunc(h * p.scale) < 1)
      return;
    double const x0 = std::max(ix, static_cast<double>(p.rect.left()));
    double const y0 = std::max(iy, static_cast<double>(p.rect.top()));
    double const x1 = std::min(ix + tolerantCeil(w * p.scale), static_cast<double>(p.rect.right()));
    double const y1 = std::min(iy + tolerantCeil(h * p.scale), static_cast<double>(p.rect.bottom()));
    long const dx = std::max(0L, static_cast<long>(std::floor(p.at.x() - static_cast<double>(p.offset.x()) + 0.5 + 1e-6)));
    long const dy = std::max(0L, static_cast<long>(std::floor(p.at.y() - static_cast<double>(p.offset.y()) + 0.5 + 1e-6)));
    ccPair<long> const o = image.offset();
    for (double y = y0; y < y1; ++y)
      for (double x = x0; x < x1; ++x) {
        long const tx = dx + static_cast<long>(x - x0), ty = dy + static_cast<long>(y - y0);
        if (tx >= p.rect.width() || ty >= p.rect.height())
          continue;
        double const sx = std::min(tolerantFloor((x - ix) / p.scale), w - 1);
        double const sy = std::min(tolerantFloor((y - iy) / p.scale), h - 1);
        unsigned char v = image.getPel(o.x() + static_cast<long>(sx), o.y() + static_cast<long>(sy));
        if (!p.mapped)
          v = static_cast<unsigned char>(255 - v);
        if (p.keyed && v == p.key)
          continue;
        picture[static_cast<std::size_t>((p.rect.top() + ty) * width + p.rect.left() + tx)] =
            depth == 8 ? v : surfacePel(testColor(p.mapped ? v : byDefault(v)), depth);
      }
  }
};

TEST_F(ScopeScale, everyDepthAgainstTheRule)
{
  constexpr double factors[] = {1.0, 2.0, 3.0, 1.5, 1.0 / 3, 0.5, 2.7, 0.93, 7.0, 1.0 / 93, 16.0, 0.1};
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    prepare(scope);
    std::mt19937 random(static_cast<unsigned>(depth) + 5);
    auto const upTo = [&random](long n) { return static_cast<long>(random() % static_cast<unsigned long>(n)); };
    for (int turn = 0; turn < 150; ++turn) {
      wipe(scope);
      ccPelBuffer_const<unsigned char> image = randomImage<unsigned char>(1 + upTo(60), 1 + upTo(50), static_cast<unsigned>(random()));
      if (turn % 3 == 0)
        image.window(upTo(5), upTo(5), 1 + upTo(30), 1 + upTo(30));
      if (!image.isBound())
        continue;
      if (turn % 4 == 0)
        image.offset(ccPair<long>(100, -100));
      Place p;
      p.scale = factors[upTo(12)];
      p.expand = p.scale >= 1 && turn % 2 == 0;
      p.at = ccPoint(static_cast<double>(upTo(800) - 400) / 8, static_cast<double>(upTo(600) - 300) / 8);
      p.rect = ccUIRect(0, 0, width, height);
      p.keyed = turn % 5 < 2;
      p.mapped = turn % 7 < 4;
      p.key = image.getPel(image.offset().x(), image.offset().y());
      std::unique_ptr<ccUIScope> child;
      ccUIScope* target = &scope;
      if (turn % 4 == 1) {
        p.rect = ccUIRect(3 + upTo(10), 2 + upTo(10), 1 + upTo(20), 1 + upTo(15));
        p.offset = p.rect.ul();
        child.reset(scope.createChildScope(p.rect, true));
        target = child.get();
      }
      std::vector<std::uint32_t> expected = blank();
      paste(expected, image, p, depth);

      // Both axes use the horizontal factor.
      ccPair<double> const scale(p.scale, p.scale);
      if (p.expand)
        target->expand(image, p.at, scale, p.keyed, p.key, p.mapped, none);
      else
        target->sample(image, p.at, scale, p.keyed, p.key, p.mapped);

      ASSERT_EQ(pelsOf(scope.surface()), expected)
          << "depth " << depth << " turn " << turn << " scale " << p.scale << " at " << p.at.x() << ", " << p.at.y();
    }
  }
}

// Straight into the surface, and scaled into a buffer that is then drawn, are the same pels.
template <class T> void equalsTwoSteps(ScopeProbe& scope, TwoSteps& twoSteps, unsigned seed)
{
  std::mt19937 random(seed);
  auto const upTo = [&random](long n) { return static_cast<long>(random() % static_cast<unsigned long>(n)); };
  for (int turn = 0; turn < 60; ++turn) {
    ccPelBuffer<T> const image = randomImage<T>(1 + upTo(60), 1 + upTo(50), static_cast<unsigned>(random()));
    double const s = turn % 2 ? 1 + static_cast<double>(upTo(100)) / 16 : 1.0 / static_cast<double>(1 + upTo(9));
    long const x = upTo(60) - 30, y = upTo(50) - 30;
    ccPoint const at(static_cast<double>(x), static_cast<double>(y));
    for (ScopeProbe* each : {&scope, static_cast<ScopeProbe*>(&twoSteps)})
      ASSERT_EQ(each->surface().bltColorFill(static_cast<RECT const*>(nullptr), 0x21, ceBltWait), 0);

    if (s >= 1)
      scope.expand(image, at, ccPair<double>(s, s), false, 0, none);
    else
      scope.sample(image, at, ccPair<double>(s, s), false, 0);

    ccPelBuffer<T> out;
    ccUIRect clip(0, 0, 40, 30);
    long const boxW = static_cast<long>(static_cast<double>(image.width()) * s);
    long const boxH = static_cast<long>(static_cast<double>(image.height()) * s);
    if (boxW >= 1 && boxH >= 1)
      twoSteps.pelScale<T>(image, out, s, clip, ccPair<long>(x, y), none);
    if (out.isBound()) {
      twoSteps.releaseImageCache();
      twoSteps.draw(out, ccPoint(static_cast<double>(std::max(x, 0L)), static_cast<double>(std::max(y, 0L))), false, 0);
    }
    ASSERT_EQ(pelsOf(scope.surface()), pelsOf(twoSteps.surface())) << turn << " scale " << s;
  }
}

TEST_F(ScopeScale, otherPelTypesEqualScalingAndThenDrawing)
{
  for (int const depth : {15, 16, 24, 32}) {
    screen(depth);
    ScopeProbe scope;
    prepare(scope);
    TwoSteps twoSteps;
    prepare(twoSteps);
    scope.colorMapEx(testColors(65536));
    twoSteps.colorMapEx(testColors(65536));
    equalsTwoSteps<unsigned short>(scope, twoSteps, 1);
    if (depth <= 16)
      equalsTwoSteps<ccPackedRGB16Pel>(scope, twoSteps, 2);
    if (depth == 32)
      equalsTwoSteps<ccPackedRGB32Pel>(scope, twoSteps, 3);
  }
}

TEST_F(ScopeScale, onlyTheHorizontalFactorCounts)
{
  ScopeProbe scope;
  prepare(scope);
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(4, 4, 1);
  scope.expand(image, ccPoint(0, 0), ccPair<double>(2, 5), false, 0, true, none);
  EXPECT_EQ(pelOf(scope.surface(), 1, 3), surfacePel(testColor(image.getPel(0, 1)), 32));
  EXPECT_EQ(pelOf(scope.surface(), 0, 8), background);
}

TEST_F(ScopeScale, expandBelowOneDoesNothing)
{
  ScopeProbe scope;
  prepare(scope);
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(9, 9, 1);
  double const nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  for (ccPair<double> const s : {ccPair<double>(0.5, 0.5), ccPair<double>(2, 0.5), ccPair<double>(0.5, 2),
                                 ccPair<double>(0, 0), ccPair<double>(-2, -2), ccPair<double>(nan, 2),
                                 ccPair<double>(inf, inf)})
    scope.expand(image, ccPoint(0, 0), s, false, 0, true, none);
  EXPECT_EQ(scope.starts, 0);
  EXPECT_EQ(scope.changeRect(), ccUIRect());
}

TEST_F(ScopeScale, sampleWorksAtOneAndNotAtZero)
{
  ScopeProbe scope;
  prepare(scope);
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(9, 9, 1);
  double const nan = std::numeric_limits<double>::quiet_NaN();
  for (ccPair<double> const s : {ccPair<double>(0, 0), ccPair<double>(1, 0), ccPair<double>(0, 1), ccPair<double>(-1, 1),
                                 ccPair<double>(nan, 1)})
    scope.sample(image, ccPoint(0, 0), s, false, 0, true);
  EXPECT_EQ(scope.starts, 0);
  scope.sample(image, ccPoint(0, 0), ccPair<double>(1, 1), false, 0, true);
  EXPECT_EQ(pelOf(scope.surface(), 8, 8), surfacePel(testColor(image.getPel(8, 8)), 32));
}

TEST_F(ScopeScale, originIsRoundedByExpandAndTruncatedBySample)
{
  ScopeProbe scope;
  prepare(scope);
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(9, 9, 3);
  auto const pel = [&](long x, long y) { return surfacePel(testColor(image.getPel(x, y)), 32); };
  ccPoint const at(-0.5, 0.5);

  scope.expand(image, at, ccPair<double>(2, 2), false, 0, true, none);  // origin (-1, 1)
  EXPECT_EQ(pelOf(scope.surface(), 0, 1), pel(0, 0));
  EXPECT_EQ(pelOf(scope.surface(), 1, 1), pel(1, 0));
  EXPECT_EQ(pelOf(scope.surface(), 2, 2), pel(1, 0));
  EXPECT_EQ(pelOf(scope.surface(), 3, 3), pel(2, 1));
  EXPECT_EQ(pelOf(scope.surface(), 0, 0), background);

  wipe(scope);
  scope.sample(image, at, ccPair<double>(2, 2), false, 0, true);  // origin (0, 0), put at (0, 1)
  EXPECT_EQ(pelOf(scope.surface(), 0, 1), pel(0, 0));
  EXPECT_EQ(pelOf(scope.surface(), 1, 2), pel(0, 0));
  EXPECT_EQ(pelOf(scope.surface(), 2, 3), pel(1, 1));
}

TEST_F(ScopeScale, integerFormsAreTheBasesOwn)
{
  ScopeProbe scope;
  prepare(scope);
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(9, 9, 3);
  scope.expand(image, ccPoint(0, 0), ccPair<long>(3, 3), false, 0, true, none);
  EXPECT_EQ(pelOf(scope.surface(), 5, 5), surfacePel(testColor(image.getPel(1, 1)), 32));
  scope.sample(image, ccPoint(0, 0), ccPair<long>(3, 3), false, 0, true);
  EXPECT_EQ(pelOf(scope.surface(), 1, 1), surfacePel(testColor(image.getPel(3, 3)), 32));
}

TEST_F(ScopeScale, interpolationGoesThroughTheKernel)
{
  ScopeProbe scope;
  prepare(scope);
  TwoSteps twoSteps;
  prepare(twoSteps);
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(9, 9, 3);
  scope.expand(image, ccPoint(2, 3), ccPair<double>(3, 3), false, 0, true, cc_TabletEnums::interpolateLinear);
  ccPelBuffer<unsigned char> out;
  ccUIRect clip(0, 0, width, height);
  twoSteps.pelScale<unsigned char>(image, out, 3, clip, ccPair<long>(2, 3), cc_TabletEnums::interpolateLinear);
  twoSteps.drawNC(out, ccPoint(2, 3), false, 0, true);
  EXPECT_EQ(pelsOf(scope.surface()), pelsOf(twoSteps.surface()));
  EXPECT_NE(pelsOf(scope.surface()), blank());
}

TEST_F(ScopeScale, scaledGrey16BeyondAShortMapTakesTheLastColor)
{
  ScopeProbe scope;
  prepare(scope);
  scope.colorMapEx(testColors(1024));
  ccPelBuffer<unsigned short> image(2, 1);
  image.setPel(0, 0, 1024);
  image.setPel(1, 0, 65535);
  scope.expand(image, ccPoint(0, 0), ccPair<double>(2, 2), false, 0, none);
  for (long x = 0; x < 4; ++x)
    EXPECT_EQ(pelOf(scope.surface(), x, 0), surfacePel(testColors(1024)[1023], 32)) << x;
}

TEST_F(ScopeScale, scaledGrey16OnAPaletteSurfaceLeavesThePhaseRunning)
{
  screen(8);
  ScopeProbe scope;
  prepare(scope);
  scope.expand(randomImage<unsigned short>(5, 5, 1), ccPoint(0, 0), ccPair<double>(2, 2), false, 0, none);
  EXPECT_EQ(scope.starts, 1);
  EXPECT_EQ(scope.stops, 0);
  scope.stopDrawPhase();
  EXPECT_EQ(pelsOf(scope.surface()), blank());
}

TEST_F(ScopeScale, changeIsReportedOpaque)
{
  ScopeProbe scope;
  prepare(scope);
  scope.expand(randomImage<unsigned char>(20, 20, 1), ccPoint(-5, -6), ccPair<double>(3, 3), true, 0, true, none);
  EXPECT_EQ(scope.changeRect(), ccUIRect(0, 0, width, height));
  EXPECT_NE(scope.stateBits() & ccUIScope::kOpaque, 0u);
  EXPECT_EQ(shown(39, 29), pelOf(scope.surface(), 39, 29));
}
