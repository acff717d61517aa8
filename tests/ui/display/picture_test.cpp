// What a display shows, pel by pel against pictures worked out from the rules: every kind of image at every depth, zoomed,
// fitted and panned, also beyond the limits.
#include "tests/support/test_display.h"
#include "tests/ui/display/test_images.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

enum Kind { grey8Raw, grey8Mapped, grey16, rgb16, rgb32 };

std::vector<plain::Rgb> windowMapOf(ccPelBuffer_const<unsigned short> const& image, int bits)
{
  int lowest = 65535, highest = 0;
  for (long y = 0; y < image.height(); ++y)
    for (long x = 0; x < image.width(); ++x) {
      int const v = image.getPel(x + image.offset().x(), y + image.offset().y());
      lowest = std::min(lowest, v);
      highest = std::max(highest, v);
    }
  return plain::windowMap(bits, lowest, highest);
}

// A pel beyond a short map takes its last colour.
std::uint32_t grey16Pel(int value, int depth, std::vector<plain::Rgb> const& map)
{
  return plain::surfacePelOfGrey16(std::min(value, static_cast<int>(map.size()) - 1), depth, map);
}

// Shows an image of that kind; returns its pels as the surface takes them.
std::vector<std::uint32_t> show(TestDisplay& test, Kind kind, int depth, long w, long h, unsigned seed,
                                ccPair<long> const& offset, ccXform<2> const& clientFromImage, int bits)
{
  auto const dress = [&](auto& image) {
    image.offset(offset);
    image.clientFromImageXform(clientFromImage);
  };
  switch (kind) {
  case grey8Raw:
  case grey8Mapped: {
    ccPelBuffer<unsigned char> image = cfRandom8(w, h, seed);
    dress(image);
    test->image(image, kind == grey8Mapped);
    return cfGreyOnSurface(image, depth, kind == grey8Mapped);
  }
  case grey16: {
    ccPelBuffer<unsigned short> image = cfRandom16(w, h, seed, 30, (1L << std::min(bits, 16)) - 20);
    dress(image);
    test->image(image, bits);
    std::vector<plain::Rgb> const map = windowMapOf(image, bits);
    return cfOnSurface(image, [&](unsigned short v) { return grey16Pel(v, depth, map); });
  }
  case rgb16: {
    ccPelBuffer<ccPackedRGB16Pel> image = cfRandomRGB16(w, h, seed);
    dress(image);
    test->image(image);
    return cfOnSurface(image, [](ccPackedRGB16Pel p) { return std::uint32_t{p.word()}; });
  }
  default: {
    ccPelBuffer<ccPackedRGB32Pel> image = cfRandomRGB32(w, h, seed);
    dress(image);
    test->image(image);
    return cfOnSurface(image, [](ccPackedRGB32Pel p) { return p.word() & 0xFFFFFF; });
  }
  }
}

// By the rules: the shorter edge keeps 8 pels, unless it is smaller already.
double limited(double m, double current, long w, long h)
{
  double const edge = std::max(8.0 / static_cast<double>(w), 8.0 / static_cast<double>(h));
  return std::max(m, std::min(std::min(edge, 1.0), current));
}

double fitted(long cw, long ch, long w, long h)
{
  double const r = std::min(static_cast<double>(cw) / static_cast<double>(w), static_cast<double>(ch) / static_cast<double>(h));
  if (r >= 1)
    return std::floor(r);
  return 1.0 / std::floor(1.0 / r + 1.0);
}

double clamped(double v, long limit)
{
  return std::min(std::max(v, -static_cast<double>(limit)), static_cast<double>(limit));
}

// One random scene on a display of its own.
void checkScene(unsigned seed, Kind kind, int depth)
{
  Random random(seed);
  long const rootW = cfPick(random, 40, 120), rootH = cfPick(random, 30, 100);
  ccUIRect rect(0, 0, rootW, rootH);
  if (cfPick(random, 0, 2) == 0)
    rect = ccUIRect(cfPick(random, 1, 9), cfPick(random, 1, 9), rootW - 20, rootH - 15);
  TestDisplay test(rootW, rootH, {.depth = depth, .rect = rect});
  struct {
    long w, h;
  } const sizes[] = {{1, 1}, {1, 97}, {150, 1}, {64, 48}, {31, 57}, {300, 200}, {rect.width(), rect.height()}, {8, 8}, {9, 250}};
  std::ostringstream story;
  story << "seed " << seed << " kind " << kind << " depth " << depth << " display " << rect.width() << "x" << rect.height();
  double current = 1;
  for (int step = 0; step < 6; ++step) {
    auto const& size = sizes[cfPick(random, 0, 8)];
    ccPair<long> const offset = cfPick(random, 0, 1) ? ccPair<long>() : ccPair<long>(cfPick(random, -500, 500), cfPick(random, -500, 500));
    ccXform<2> const client = cfPick(random, 0, 1)
                                  ? ccXform<2>()
                                  : ccXform<2>(ccMatrix<2>(cfPickReal(random, 0.5, 3), cfPickReal(random, -0.4, 0.4),
                                                           cfPickReal(random, -0.4, 0.4), cfPickReal(random, 0.5, 3)),
                                               ccVector<2>(cfPickReal(random, -99, 99), cfPickReal(random, -99, 99)));
    int const bitChoices[] = {8, 10, 12, 14, 16, 11};
    std::vector<std::uint32_t> const pels =
        show(test, kind, depth, size.w, size.h, seed + 1000, offset, client, bitChoices[cfPick(random, 0, 5)]);

    plain::View view = cfView(rect.width(), rect.height(), size.w, size.h);
    long const reachX = std::max(rect.width(), size.w), reachY = std::max(rect.height(), size.h);
    bool centred = false;
    switch (cfPick(random, 0, 3)) {
    case 0: {
      long const mags[] = {1, 2, 3, 7, 32, -2, -3, -5};
      long const m = mags[cfPick(random, 0, 7)];
      test->mag(m);
      view.magnification = limited(m > 0 ? static_cast<double>(m) : 1.0 / static_cast<double>(-m), current, size.w, size.h);
      break;
    }
    case 1:
      test->fit();
      view.magnification = limited(fitted(rect.width(), rect.height(), size.w, size.h), current, size.w, size.h);
      centred = true;
      break;
    case 2:
      test->fitExact();
      view.magnification = limited(std::min(static_cast<double>(rect.width()) / static_cast<double>(size.w),
                                            static_cast<double>(rect.height()) / static_cast<double>(size.h)),
                                   current, size.w, size.h);
      centred = true;
      break;
    default: {
      double const m = std::exp(cfPickReal(random, std::log(0.05), std::log(30)));
      test->magExact(m);
      view.magnification = limited(m, current, size.w, size.h);
    }
    }
    current = view.magnification;
    if (!centred || cfPick(random, 0, 2)) {
      double const x = cfPickReal(random, -1.6, 1.6) * static_cast<double>(reachX);
      double const y = cfPickReal(random, -0.6, 0.6) * static_cast<double>(reachY);
      test->pan({x, y});
      view.panX = clamped(x, reachX);
      view.panY = clamped(y, reachY);
    }
    story << "; " << size.w << "x" << size.h << " mag " << view.magnification << " pan " << view.panX << "," << view.panY;

    plain::Picture const expected = plain::displayPicture(view, pels, cfSurround(depth));
    ASSERT_EQ(plain::firstDifference(expected, test.pels()), "") << story.str();
    ASSERT_EQ(plain::firstDifference(expected, test.screenPels()), "") << "screen, " << story.str();
    ccPoint const at = test->imageToDisplay({static_cast<double>(offset.x()) + 2.5, static_cast<double>(offset.y()) - 1});
    ASSERT_NEAR(at.x(), plain::displayX(view, 2.5), 1e-6) << story.str();
    ASSERT_NEAR(at.y(), plain::displayY(view, -1), 1e-6) << story.str();
  }
}

void checkScenes(Kind kind, int depth)
{
  for (unsigned seed = 1; seed <= 25 && !::testing::Test::HasFatalFailure(); ++seed)
    checkScene(seed, kind, depth);
}

TEST(DisplayPicture, ofEightBitImagesAtEightBits) { checkScenes(grey8Raw, 8), checkScenes(grey8Mapped, 8); }
TEST(DisplayPicture, ofEightBitImagesAtFifteenBits) { checkScenes(grey8Raw, 15), checkScenes(grey8Mapped, 15); }
TEST(DisplayPicture, ofEightBitImagesAtSixteenBits) { checkScenes(grey8Raw, 16), checkScenes(grey8Mapped, 16); }
TEST(DisplayPicture, ofEightBitImagesAtTwentyFourBits) { checkScenes(grey8Raw, 24), checkScenes(grey8Mapped, 24); }
TEST(DisplayPicture, ofEightBitImagesAtThirtyTwoBits) { checkScenes(grey8Raw, 32), checkScenes(grey8Mapped, 32); }
TEST(DisplayPicture, ofSixteenBitGreyImagesAtFifteenBits) { checkScenes(grey16, 15); }
TEST(DisplayPicture, ofSixteenBitGreyImagesAtSixteenBits) { checkScenes(grey16, 16); }
TEST(DisplayPicture, ofSixteenBitGreyImagesAtTwentyFourBits) { checkScenes(grey16, 24); }
TEST(DisplayPicture, ofSixteenBitGreyImagesAtThirtyTwoBits) { checkScenes(grey16, 32); }
TEST(DisplayPicture, ofSixteenBitColourImages) { checkScenes(rgb16, 16); }
TEST(DisplayPicture, ofThirtyTwoBitColourImages) { checkScenes(rgb32, 32); }

TEST(DisplayPicture, withoutImageIsTheSurround)
{
  for (int depth : {8, 15, 16, 24, 32}) {
    TestDisplay test(50, 40, {.depth = depth});
    plain::Picture const expected(50, 40, cfSurround(depth));
    EXPECT_EQ(plain::firstDifference(expected, test.screenPels()), "") << depth;
  }
}

TEST(DisplayPicture, ofLongStripsAtEveryZoom)
{
  struct {
    long w, h;
  } const sizes[] = {{16384, 1}, {1, 16384}, {16384, 3}};
  for (auto const& size : sizes) {
    TestDisplay test(70, 60);
    ccPelBuffer<unsigned char> const image = cfRandom8(size.w, size.h, 5);
    test->image(image, true);
    std::vector<std::uint32_t> const pels = cfGreyOnSurface(image, 32);
    double current = 1;
    for (double m : {32.0, 1.0, 0.5, 1.0 / 7, 65536.0, 3.0}) {
      test->magExact(m);
      current = limited(m, current, size.w, size.h);
      for (double pan : {0.0, 8190.0, -8190.0, -1e9}) {
        test->pan({pan, -pan});
        plain::View const view = cfView(70, 60, size.w, size.h, current, clamped(pan, std::max(70L, size.w)),
                                        clamped(-pan, std::max(60L, size.h)));
        ASSERT_EQ(plain::firstDifference(plain::displayPicture(view, pels, cfSurround(32)), test.screenPels()), "")
            << size.w << " " << current << " " << pan;
      }
    }
    test->fit();
    test->fitExact();
  }
}

// In reductions whole blocks are shown: of 10 pels at one third the last is left to the surround.
TEST(DisplayPicture, aReductionShowsWholeBlocksOnly)
{
  TestDisplay test(20, 20);
  test->image(cfGrey8(30, 31, 200), true);
  test->mag(-3);
  ASSERT_EQ(test->mag(), -3);
  long rows = 0;
  for (long y = 0; y < 20; ++y)
    rows += test.scope().rgb(10, y) == ccRGB(200, 200, 200);
  EXPECT_EQ(rows, 10);
}

TEST(DisplayWindowMap, hasTheLengthOfItsBits)
{
  struct {
    long bits;
    std::size_t entries;
  } const cases[] = {{8, 256}, {10, 1024}, {12, 4096}, {14, 65536}, {16, 65536}, {9, 65536}, {0, 65536}, {-1, 65536}, {99, 65536}};
  for (auto const& c : cases) {
    TestDisplay test(20, 20);
    test->image(cfRandom16(20, 20, 1, 3, 200), c.bits);
    EXPECT_EQ(test->colorMapEx().size(), c.entries) << c.bits;
  }
}

TEST(DisplayWindowMap, spreadsTheGreysFromTheLowestToTheHighestPel)
{
  Random random(8);
  for (int i = 0; i < 60; ++i) {
    int const bitChoices[] = {8, 10, 12, 14, 16, 13};
    int const bits = bitChoices[i % 6];
    long const most = i % 4 == 0 ? 65535 : (1L << bits) - 1;  // now and then beyond the table
    long const low = cfPick(random, 0, most), high = cfPick(random, low, most);
    ccPelBuffer<unsigned short> const image = cfRandom16(9, 7, static_cast<unsigned>(i), low, high);
    TestDisplay test(20, 20);

    test->image(image, bits);

    std::vector<plain::Rgb> const expected = windowMapOf(image, bits);
    ASSERT_EQ(test->colorMapEx().size(), expected.size());
    for (std::size_t k = 0; k < expected.size(); ++k)
      ASSERT_EQ(test->colorMapEx()[k].r, expected[k].r) << bits << " " << low << " " << high << " entry " << k;
    EXPECT_EQ(test.root().mapEx, test->colorMapEx());
  }
}

TEST(DisplayWindowMap, ofAConstantImageIsBlackUpToItAndWhiteAbove)
{
  TestDisplay test(20, 20);
  test->image(cfRandom16(9, 7, 1, 700, 700), 10);
  ASSERT_EQ(test->colorMapEx().size(), 1024u);
  EXPECT_EQ(test->colorMapEx()[0], ccRGB(0, 0, 0));
  EXPECT_EQ(test->colorMapEx()[700], ccRGB(0, 0, 0));
  EXPECT_EQ(test->colorMapEx()[701], ccRGB(255, 255, 255));
  EXPECT_EQ(test->colorMapEx()[1023], ccRGB(255, 255, 255));
}

TEST(DisplayWindowMap, ofFourteenBitsFollowsTheRuleUpTo16384AndIsWhiteBeyond)
{
  TestDisplay test(20, 20);
  test->image(cfRandom16(9, 7, 1, 20000, 20000), 14);
  EXPECT_EQ(test->colorMapEx()[16383], ccRGB(0, 0, 0));
  EXPECT_EQ(test->colorMapEx()[16384], ccRGB(255, 255, 255));
  EXPECT_EQ(test->colorMapEx()[20000], ccRGB(255, 255, 255));
}

TEST(DisplayWindowMap, pelsBeyondAShortMapTakeItsLastColour)
{
  for (int depth : {15, 16, 24, 32})
    for (int bits : {8, 10, 12})
      for (double m : {1.0, 3.0, 0.5}) {
        TestDisplay test(20, 20, {.depth = depth});
        ccPelBuffer<unsigned short> const image = cfRandom16(40, 40, 4, 100, 65535);
        test->image(image, bits);
        test->magExact(m);
        std::vector<plain::Rgb> const map = windowMapOf(image, bits);
        std::vector<std::uint32_t> const pels =
            cfOnSurface(image, [&](unsigned short v) { return grey16Pel(v, depth, map); });
        ASSERT_EQ(plain::firstDifference(plain::displayPicture(cfView(20, 20, 40, 40, m), pels, cfSurround(depth)),
                                         test.screenPels()),
                  "")
            << depth << " " << bits << " " << m;
      }
}

TEST(DisplayWindowMap, anEqualMapIsNotSetAgain)
{
  TestDisplay test(20, 20);
  ccPelBuffer<unsigned short> const image = cfRandom16(9, 7, 1, 3, 900);
  test->image(image, 10);
  test.clearLogs();
  test->image(image, 10);
  EXPECT_EQ(test.counts().imageMapChanged, 0);
  EXPECT_EQ(test.root().colorMapExSets, 0);
}

}  // namespace
