#include "canvas/scope.h"

#include "canvas/rle_buffer.h"
#include "tests/support/memory_scope.h"
#include "tests/support/memory_watch.h"
#include "tests/support/plain_painter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

struct Scaler : MemoryScope {
  Scaler() : MemoryScope(ccPair<long>(8, 8)) {}
  using ccUIScope::pelScale;
};

constexpr auto kNearest = cc_TabletEnums::interpolateNone;
constexpr auto kBilinear = cc_TabletEnums::interpolateLinear;

template <class T> T pelFrom(std::uint32_t v)
{
  return T(static_cast<decltype(T().word())>(v));
}
template <> unsigned char pelFrom(std::uint32_t v)
{
  return static_cast<unsigned char>(v);
}
template <> unsigned short pelFrom(std::uint32_t v)
{
  return static_cast<unsigned short>(v);
}

template <class T> ccPelBuffer<T> randomImage(std::mt19937& random, long w, long h)
{
  ccPelBuffer<T> image(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      image.setPel(x, y, pelFrom<T>(static_cast<std::uint32_t>(random()) & 0xFFFFFF));
  return image;
}

double randomScale(std::mt19937& random)
{
  static double const scales[] = {1,   2,   3,       7,         1.0 / 2, 1.0 / 3, 1.0 / 7, 2.7,
                                  0.4, 0.9, 1.00001, 65536,     1.0 / 93, 0.25,   1.5,     64};
  if (random() % 4 == 0)
    return std::uniform_real_distribution<double>(0.05, 9)(random);
  return scales[random() % (sizeof scales / sizeof *scales)];
}

long between(std::mt19937& random, long least, long most)
{
  return std::uniform_int_distribution<long>(least, most)(random);
}

template <class T> void compareWithPlain(unsigned seed, int runs)
{
  std::mt19937 random(seed);
  Scaler scope;
  ccPelBuffer<T> out;
  for (int run = 0; run < runs; ++run) {
    ccPelBuffer<T> image = randomImage<T>(random, between(random, 1, 40), between(random, 1, 30));
    image.offset(ccPair<long>(between(random, -50, 50), between(random, -50, 50)));  // does not matter
    if (random() % 3 == 0)
      image.window(ccPelRect(image.offset().x() + between(random, 0, image.width() - 1),
                             image.offset().y() + between(random, 0, image.height() - 1), 40, 40));
    double const scale = randomScale(random);
    ccUIRect const clip(between(random, -20, 20), between(random, -20, 20), between(random, 0, 60), between(random, 0, 40));
    long const reach = scale > 1000 ? 200000 : 60;
    ccPair<long> const at(between(random, -reach, 30), between(random, -reach, 30));
    ccUIRect given = clip;
    scope.pelScale<T>(image, out, scale, given, at, kNearest);
    ASSERT_EQ(given, clip);

    long visible = 0;
    for (long y = clip.top(); y < clip.bottom(); ++y)
      for (long x = clip.left(); x < clip.right(); ++x) {
        if (!plain::covers(x, at.x(), image.width(), scale) || !plain::covers(y, at.y(), image.height(), scale))
          continue;
        ++visible;
        T const expected = image.getPel(image.offset().x() + plain::sourceIndex(x, at.x(), image.width(), scale),
                                        image.offset().y() + plain::sourceIndex(y, at.y(), image.height(), scale));
        ASSERT_TRUE(out.isBound());
        ASSERT_TRUE(out.window().within(ccPair<long>(x, y)));
        ASSERT_TRUE(out.getPel(x, y) == expected)
            << "run " << run << " scale " << scale << " at " << x << "," << y << " image at " << at.x() << "," << at.y();
      }
    ASSERT_EQ(visible, out.width() * out.height()) << "run " << run;
    ASSERT_EQ(out.isBound(), visible > 0);
  }
}

}  // namespace

TEST(PelScale, agreesWithThePlainRuleForBytes)
{
  compareWithPlain<unsigned char>(1, 600);
}

TEST(PelScale, agreesWithThePlainRuleForWords)
{
  compareWithPlain<unsigned short>(2, 300);
}

TEST(PelScale, agreesWithThePlainRuleForRGB16)
{
  compareWithPlain<ccPackedRGB16Pel>(3, 300);
}

TEST(PelScale, agreesWithThePlainRuleForRGB32)
{
  compareWithPlain<ccPackedRGB32Pel>(4, 300);
}

TEST(PelScale, columnsOfTwoPointSevenWorkedOutByHand)
{
  // Two pels at 2.7: 5.4 columns, so 6; columns 0 to 2 lie at 0, 0.37, 0.74 of the first, 3 to 5 at 1.1, 1.5, 1.85.
  ccPelBuffer<unsigned char> image(2, 1);
  image.setPel(0, 0, 10);
  image.setPel(1, 0, 20);
  Scaler scope;
  ccPelBuffer<unsigned char> out;
  ccUIRect clip(0, 0, 100, 1);
  scope.pelScale<unsigned char>(image, out, 2.7, clip, ccPair<long>(4, 0), kNearest);
  ASSERT_EQ(out.window(), ccPelRect(4, 0, 6, 1));
  int const expected[] = {10, 10, 10, 20, 20, 20};
  for (long x = 0; x < 6; ++x)
    EXPECT_EQ(out.getPel(4 + x, 0), expected[x]);
}

TEST(PelScale, aThirdTakesEveryThirdPelAndRoundsTheExtentUp)
{
  ccPelBuffer<unsigned char> image(10, 1);
  for (long x = 0; x < 10; ++x)
    image.setPel(x, 0, static_cast<unsigned char>(x));
  Scaler scope;
  ccPelBuffer<unsigned char> out;
  ccUIRect clip(0, 0, 100, 1);
  scope.pelScale<unsigned char>(image, out, 1.0 / 3, clip, ccPair<long>(0, 0), kNearest);
  ASSERT_EQ(out.window(), ccPelRect(0, 0, 4, 1));
  for (long x = 0; x < 4; ++x)
    EXPECT_EQ(out.getPel(x, 0), 3 * x);
}

TEST(PelScale, wholeReductionsAreExactForEveryDivisor)
{
  // A third three times is not one for every divisor in doubles; the tolerance makes the multiples come out.
  Scaler scope;
  ccPelBuffer<unsigned short> out;
  ccPelBuffer<unsigned short> image(2000, 1);
  for (long x = 0; x < 2000; ++x)
    image.setPel(x, 0, static_cast<unsigned short>(x));
  for (long n = 2; n <= 200; ++n) {
    ccUIRect clip(0, 0, 3000, 1);
    scope.pelScale<unsigned short>(image, out, 1.0 / static_cast<double>(n), clip, ccPair<long>(0, 0), kNearest);
    ASSERT_EQ(out.width(), (2000 + n - 1) / n) << n;
    for (long x = 0; x < out.width(); ++x)
      ASSERT_EQ(out.getPel(x, 0), x * n) << n;
  }
}

TEST(PelScale, hugeMagnificationAndFarOffsetsAreSafe)
{
  ccPelBuffer<unsigned char> image(16384, 3);
  image.setPel(16383, 2, 77);
  image.setPel(16382, 2, 76);
  Scaler scope;
  ccPelBuffer<unsigned char> out;
  // The last pel covers 65536 columns that end at 16384 * 65536; the image is shifted so that it begins at column 10.
  ccUIRect clip(0, 0, 20, 2);
  scope.pelScale<unsigned char>(image, out, 65536, clip, ccPair<long>(-16383L * 65536 + 10, -2L * 65536), kNearest);
  ASSERT_EQ(out.window(), ccPelRect(0, 0, 20, 2));
  EXPECT_EQ(out.getPel(9, 0), 76);
  EXPECT_EQ(out.getPel(10, 1), 77);
}

TEST(PelScale, extremePositionsLeaveOutUnbound)
{
  ccPelBuffer<unsigned char> const image(3, 3);
  Scaler scope;
  long const most = std::numeric_limits<long>::max();
  long const least = std::numeric_limits<long>::min();
  for (long at : {most, least, most / 2, least / 2})
    for (double scale : {1.0 / 3, 1.0, 2.7, 65536.0}) {
      ccPelBuffer<unsigned char> out(2, 2);
      ccUIRect clip(0, 0, 20, 20);
      scope.pelScale<unsigned char>(image, out, scale, clip, ccPair<long>(at, 0), kNearest);
      EXPECT_FALSE(out.isBound()) << at << " " << scale;
    }
}

TEST(PelScale, badScalesLeaveOutUnbound)
{
  ccPelBuffer<unsigned char> const image(3, 3);
  Scaler scope;
  for (double scale : {0.0, -1.0, std::numeric_limits<double>::infinity(), std::nan("")}) {
    ccPelBuffer<unsigned char> out(2, 2);
    ccUIRect clip(0, 0, 20, 20);
    scope.pelScale<unsigned char>(image, out, scale, clip, ccPair<long>(0, 0), kNearest);
    EXPECT_FALSE(out.isBound()) << scale;
  }
}

TEST(PelScale, anEndlessClipThatNoMemoryHoldsLeavesOutUnbound)
{
  ccPelBuffer<unsigned char> const image(3, 3);
  Scaler scope;
  ccPelBuffer<unsigned char> out;
  ccUIRect clip = ccUIRect::inf;
  scope.pelScale<unsigned char>(image, out, 65536, clip, ccPair<long>(0, 0), kNearest);
  EXPECT_FALSE(out.isBound());
  scope.pelScale<unsigned char>(image, out, 4, clip, ccPair<long>(0, 0), kNearest);
  EXPECT_EQ(out.window(), ccPelRect(0, 0, 12, 12));
}

TEST(PelScale, anUnboundSourceLeavesOutUnbound)
{
  Scaler scope;
  ccPelBuffer<unsigned char> out(2, 2);
  ccUIRect clip(0, 0, 20, 20);
  scope.pelScale<unsigned char>(ccPelBuffer_const<unsigned char>(), out, 2, clip, ccPair<long>(0, 0), kNearest);
  EXPECT_FALSE(out.isBound());
}

TEST(PelScale, aStripOfOneColumnWorks)
{
  std::mt19937 random(8);
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(random, 1, 900);
  Scaler scope;
  ccPelBuffer<unsigned char> out;
  ccUIRect clip(0, 100, 5, 7);
  scope.pelScale<unsigned char>(image, out, 2, clip, ccPair<long>(0, 0), kNearest);
  ASSERT_EQ(out.window(), ccPelRect(0, 100, 2, 7));
  for (long y = 100; y < 107; ++y)
    EXPECT_EQ(out.getPel(1, y), image.getPel(0, y / 2));
}

TEST(PelScale, sourceAndOutMayBeTheSameBuffer)
{
  std::mt19937 random(9);
  ccPelBuffer<unsigned char> image = randomImage<unsigned char>(random, 4, 4);
  ccPelBuffer<unsigned char> const before = image;
  Scaler scope;
  for (int pass = 0; pass < 2; ++pass) {  // the second time out is the scope's own scratch
    ccPelBuffer<unsigned char> const source = image;
    std::vector<unsigned char> pels;
    for (long y = 0; y < source.height(); ++y)
      for (long x = 0; x < source.width(); ++x)
        pels.push_back(source.getPel(x, y));
    ccUIRect clip(0, 0, 100, 100);
    scope.pelScale<unsigned char>(image, image, 2, clip, ccPair<long>(0, 0), kNearest);
    ASSERT_EQ(image.width(), source.width() * 2);
    for (long y = 0; y < image.height(); ++y)
      for (long x = 0; x < image.width(); ++x)
        ASSERT_EQ(image.getPel(x, y), pels[static_cast<std::size_t>(y / 2 * source.width() + x / 2)]);
  }
  EXPECT_EQ(before.width(), 4);
}

TEST(PelScale, aSettledSizeAllocatesNothing)
{
  std::mt19937 random(10);
  ccPelBuffer<unsigned char> const bytes = randomImage<unsigned char>(random, 20, 20);
  ccPelBuffer<ccPackedRGB32Pel> const words = randomImage<ccPackedRGB32Pel>(random, 20, 20);
  Scaler scope;
  ccPelBuffer<unsigned char> out;
  ccPelBuffer<ccPackedRGB32Pel> out32;
  ccUIRect clip(0, 0, 50, 50);
  auto const scaleAll = [&](long shift) {
    scope.pelScale<unsigned char>(bytes, out, 2, clip, ccPair<long>(shift, 0), kNearest);
    scope.pelScale<ccPackedRGB32Pel>(words, out32, 2, clip, ccPair<long>(shift, 1), kNearest);
  };
  scaleAll(0);
  unsigned char const* const held = out.pointToOffset();
  long const before = MemoryWatch::allocations();
  for (long i = 0; i < 10; ++i)
    scaleAll(i);  // never larger than the first
  EXPECT_EQ(MemoryWatch::allocations(), before);
  EXPECT_EQ(out.pointToOffset(), held);
}

TEST(PelScale, aViewThatIsKeptIsNotOverwritten)
{
  std::mt19937 random(11);
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(random, 10, 10);
  ccPelBuffer<unsigned char> const other = randomImage<unsigned char>(random, 10, 10);
  Scaler scope;
  ccPelBuffer<unsigned char> out;
  ccUIRect clip(0, 0, 50, 50);
  scope.pelScale<unsigned char>(image, out, 1, clip, ccPair<long>(0, 0), kNearest);
  ccPelBuffer_const<unsigned char> const kept = out;
  scope.pelScale<unsigned char>(other, out, 1, clip, ccPair<long>(0, 0), kNearest);
  for (long y = 0; y < 10; ++y)
    for (long x = 0; x < 10; ++x) {
      ASSERT_EQ(kept.getPel(x, y), image.getPel(x, y));
      ASSERT_EQ(out.getPel(x, y), other.getPel(x, y));
    }
}

TEST(PelScale, writingIsMarkedOnTheRoot)
{
  ccPelBuffer<unsigned char> const image(4, 4);
  Scaler scope;
  ccPelBuffer<unsigned char> out;
  ccUIRect clip(0, 0, 50, 50);
  scope.pelScale<unsigned char>(image, out, 1, clip, ccPair<long>(0, 0), kNearest);
  std::uint32_t const before = out.root()->changeCount();
  scope.pelScale<unsigned char>(image, out, 1, clip, ccPair<long>(0, 0), kNearest);
  EXPECT_GT(out.root()->changeCount(), before);
}

TEST(PelScale, bilinearGoesFromCentreToCentre)
{
  // Two pels at 4: centres at columns 1.5 and 5.5. Column x lies (x - 1.5) / 4 of the way, in eighths 1 3 5 7 between them.
  ccPelBuffer<unsigned char> image(2, 1);
  image.setPel(0, 0, 0);
  image.setPel(1, 0, 80);
  Scaler scope;
  ccPelBuffer<unsigned char> out;
  ccUIRect clip(0, 0, 100, 1);
  scope.pelScale<unsigned char>(image, out, 4, clip, ccPair<long>(0, 0), kBilinear);
  int const expected[] = {0, 0, 10, 30, 50, 70, 80, 80};
  for (long x = 0; x < 8; ++x)
    EXPECT_EQ(out.getPel(x, 0), expected[x]) << x;
}

TEST(PelScale, bilinearIsCloseToTheExactBlendForEveryType)
{
  std::mt19937 random(12);
  Scaler scope;
  ccPelBuffer<unsigned short> out;
  for (int run = 0; run < 40; ++run) {
    ccPelBuffer<unsigned short> const image = randomImage<unsigned short>(random, between(random, 1, 9), between(random, 1, 9));
    double const scale = std::uniform_real_distribution<double>(1.01, 6)(random);
    ccUIRect clip(0, 0, 40, 40);
    scope.pelScale<unsigned short>(image, out, scale, clip, ccPair<long>(-2, 1), kBilinear);
    for (long y = out.offset().y(); y < out.offset().y() + out.height(); ++y)
      for (long x = 0; x < out.width(); ++x) {
        auto const weigh = [scale](long at, long extent, long& left, double& weight) {
          double const centre = std::min(std::max((static_cast<double>(at) + 0.5) / scale - 0.5, 0.0),
                                         static_cast<double>(extent - 1));
          left = static_cast<long>(centre);
          weight = centre - static_cast<double>(left);
        };
        long cx = 0;
        long cy = 0;
        double wx = 0;
        double wy = 0;
        weigh(x + 2, image.width(), cx, wx);
        weigh(y - 1, image.height(), cy, wy);
        long const nx = std::min(cx + 1, image.width() - 1);
        long const ny = std::min(cy + 1, image.height() - 1);
        double const exact = (image.getPel(cx, cy) * (1 - wx) + image.getPel(nx, cy) * wx) * (1 - wy) +
                             (image.getPel(cx, ny) * (1 - wx) + image.getPel(nx, ny) * wx) * wy;
        // Weights are kept in 256ths, each wrong by half of one at most on each axis.
        ASSERT_NEAR(out.getPel(x, y), exact, 65536.0 / 256 + 1) << "scale " << scale;
      }
  }
}

TEST(PelScale, bilinearKeepsTheChannelsOfColoursApart)
{
  ccPelBuffer<ccPackedRGB32Pel> image(2, 1);
  image.setPel(0, 0, ccPackedRGB32Pel(0, 200, 40));
  image.setPel(1, 0, ccPackedRGB32Pel(80, 0, 40));
  ccPelBuffer<ccPackedRGB16Pel> image16(2, 1);
  image16.setPel(0, 0, ccPackedRGB16Pel(0, 0xF8, 0x20));
  image16.setPel(1, 0, ccPackedRGB16Pel(0x80, 0, 0x20));
  Scaler scope;
  ccUIRect clip(0, 0, 100, 1);
  ccPelBuffer<ccPackedRGB32Pel> out;
  scope.pelScale<ccPackedRGB32Pel>(image, out, 4, clip, ccPair<long>(0, 0), kBilinear);
  EXPECT_TRUE(out.getPel(3, 0) == ccPackedRGB32Pel(30, 125, 40));
  ccPelBuffer<ccPackedRGB16Pel> out16;
  scope.pelScale<ccPackedRGB16Pel>(image16, out16, 4, clip, ccPair<long>(0, 0), kBilinear);
  // Red 0 to 16 of 31: 6; green 62 to 0 of 63: 38.75; blue 4.
  EXPECT_TRUE(out16.getPel(3, 0) == ccPackedRGB16Pel(static_cast<std::uint16_t>(6 << 11 | 39 << 5 | 4)));
}

TEST(PelScale, bilinearTakesTheExtremesOfWords)
{
  ccPelBuffer<unsigned short> image(3, 3);
  for (long y = 0; y < 3; ++y)
    for (long x = 0; x < 3; ++x)
      image.setPel(x, y, 65535);
  Scaler scope;
  ccUIRect clip(0, 0, 100, 100);
  ccPelBuffer<unsigned short> out;
  scope.pelScale<unsigned short>(image, out, 2.5, clip, ccPair<long>(0, 0), kBilinear);
  for (long y = 0; y < out.height(); ++y)
    for (long x = 0; x < out.width(); ++x)
      ASSERT_EQ(out.getPel(x, y), 65535);
}

TEST(PelScale, bilinearFallsBackToNearestAtOneAndBelow)
{
  std::mt19937 random(13);
  Scaler scope;
  for (double scale : {1.0, 0.9, 1.0 / 3}) {
    ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(random, 20, 20);
    ccPelBuffer<unsigned char> linear;
    ccUIRect clip(0, 0, 100, 100);
    scope.pelScale<unsigned char>(image, linear, scale, clip, ccPair<long>(0, 0), kBilinear);
    for (long y = 0; y < linear.height(); ++y)
      for (long x = 0; x < linear.width(); ++x)
        ASSERT_EQ(linear.getPel(x, y),
                  image.getPel(plain::sourceIndex(x, 0, 20, scale), plain::sourceIndex(y, 0, 20, scale)));
  }
}

TEST(PelScale, changingOnlyTheModeRebuildsTheColumns)
{
  ccPelBuffer<unsigned char> image(2, 1);
  image.setPel(1, 0, 80);
  Scaler scope;
  ccUIRect clip(0, 0, 8, 1);
  ccPelBuffer<unsigned char> out;
  scope.pelScale<unsigned char>(image, out, 4, clip, ccPair<long>(0, 0), kNearest);
  EXPECT_EQ(out.getPel(4, 0), 80);
  scope.pelScale<unsigned char>(image, out, 4, clip, ccPair<long>(0, 0), kBilinear);
  EXPECT_EQ(out.getPel(4, 0), 50);
  scope.pelScale<unsigned char>(image, out, 4, clip, ccPair<long>(0, 0), kNearest);
  EXPECT_EQ(out.getPel(4, 0), 80);
}

TEST(PelScale, anotherPlaceWithAsManyColumnsRebuildsThem)
{
  ccPelBuffer<unsigned char> image(10, 1);
  for (long x = 0; x < 10; ++x)
    image.setPel(x, 0, static_cast<unsigned char>(x));
  Scaler scope;
  ccUIRect clip(0, 0, 4, 1);
  ccPelBuffer<unsigned char> out;
  scope.pelScale<unsigned char>(image, out, 2, clip, ccPair<long>(0, 0), kNearest);
  EXPECT_EQ(out.getPel(2, 0), 1);
  scope.pelScale<unsigned char>(image, out, 2, clip, ccPair<long>(-4, 0), kNearest);
  EXPECT_EQ(out.getPel(2, 0), 3);
}

TEST(PelScale, anotherImageWidthWithAsManyColumnsRebuildsThem)
{
  ccPelBuffer<unsigned char> narrow(1, 1);
  ccPelBuffer<unsigned char> wide(2, 1);
  wide.setPel(1, 0, 80);
  Scaler scope;
  ccUIRect clip(0, 0, 4, 1);
  ccPelBuffer<unsigned char> out;
  scope.pelScale<unsigned char>(narrow, out, 4, clip, ccPair<long>(0, 0), kBilinear);
  EXPECT_EQ(out.getPel(3, 0), 0);
  scope.pelScale<unsigned char>(wide, out, 4, clip, ccPair<long>(0, 0), kBilinear);
  EXPECT_EQ(out.getPel(3, 0), 30);
}

TEST(RleScale, agreesWithThePlainRuleInBothAxesApart)
{
  std::mt19937 random(14);
  for (int run = 0; run < 200; ++run) {
    long const w = between(random, 1, 300);
    long const h = between(random, 1, 20);
    std::vector<unsigned char> pels;
    for (long i = 0; i < w * h; ++i)
      pels.push_back(static_cast<unsigned char>(random() % 3));
    ccRLEBuffer const image = ccRLEBuffer::fromPels(pels.data(), w, h, w);
    ccPair<double> const scale(randomScale(random), randomScale(random));
    ccPair<long> const at(between(random, -30, 30), between(random, -30, 20));

    MemoryScope root(ccPair<long>(60, 40), 8);
    std::unique_ptr<ccUIScope> const part(root.createChildScope(ccUIRect(7, 5, 40, 30), true));
    root.poison(99);
    std::vector<unsigned char> const map{50, 60, 70};
    if (run % 2)
      part->expand(image, ccPoint(at), scale, map, run % 3 == 0, static_cast<unsigned char>(1));
    else
      part->sample(image, ccPoint(at), scale, map, run % 3 == 0, static_cast<unsigned char>(1));

    plain::Picture expected(60, 40, 99);
    for (long y = 5; y < 35; ++y)
      for (long x = 7; x < 47; ++x) {
        if (!plain::covers(x, at.x(), w, scale.x()) || !plain::covers(y, at.y(), h, scale.y()))
          continue;
        unsigned char const v = pels[static_cast<std::size_t>(plain::sourceIndex(y, at.y(), h, scale.y()) * w +
                                                              plain::sourceIndex(x, at.x(), w, scale.x()))];
        if (run % 3 != 0 || v != 1)
          expected.put(x, y, map[v]);
      }
    ASSERT_EQ(plain::firstDifference(expected, root.surface()), "") << "run " << run;
  }
}

TEST(RleScale, wholeNumberFormsAreMagnificationsAndReductions)
{
  unsigned char const pels[] = {0, 1, 2, 3};
  ccRLEBuffer const image = ccRLEBuffer::fromPels(pels, 4, 1, 4);
  MemoryScope s(ccPair<long>(12, 2), 8);
  s.poison(9);
  s.expand(image, ccPoint(0, 0), ccPair<long>(3, 2), {}, false, static_cast<unsigned char>(0));
  EXPECT_EQ(s.surface(), (std::vector<std::uint32_t>{0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3,  //
                                                     0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3}));
  s.poison(9);
  s.sample(image, ccPoint(0, 0), ccPair<long>(2, 1), {}, false, static_cast<unsigned char>(0));
  EXPECT_EQ(s.surface()[0], 0u);
  EXPECT_EQ(s.surface()[1], 2u);
  EXPECT_EQ(s.surface()[2], 9u);
}

TEST(RleScale, aHugeScaleCostsWhatIsSeen)
{
  unsigned char const pels[] = {1, 2};
  ccRLEBuffer const image = ccRLEBuffer::fromPels(pels, 2, 1, 2);
  MemoryScope s(ccPair<long>(4, 2), 8);
  s.expand(image, ccPoint(-65536 + 2, 0), ccPair<double>(65536, 65536), {}, false, static_cast<unsigned char>(0));
  EXPECT_EQ(s.surface(), (std::vector<std::uint32_t>{1, 1, 2, 2, 1, 1, 2, 2}));
}
