// Unscaled images, against a plain loop over pels.
#include "tests/backend/scope/scope_fixture.h"

#include <type_traits>

using plat::result;
using plat::testing::failNext;
using plat::testing::Op;

namespace {

std::uint32_t wordOf(unsigned char v) { return v; }
std::uint32_t wordOf(unsigned short v) { return v; }
std::uint32_t wordOf(ccPackedRGB16Pel v) { return v.word(); }
std::uint32_t wordOf(ccPackedRGB32Pel v) { return v.word(); }

}  // namespace

class ScopePel : public ScopeTest {
protected:
  static constexpr std::uint32_t background = 0x5A;

  // A scope with two colour maps, all of one background value.
  void prepare(ScopeProbe& scope, std::size_t imageColors = 256)
  {
    create(scope);
    std::vector<ccRGB> reversed = testColors();
    std::reverse(reversed.begin(), reversed.end());
    scope.colorMap(reversed);
    scope.colorMapEx(testColors(imageColors));
    wipe(scope);
  }

  static void wipe(ScopeProbe& scope)
  {
    ASSERT_EQ(scope.surface().bltColorFill(static_cast<RECT const*>(nullptr), background, ceBltWait), 0);
  }

  static std::vector<std::uint32_t> blank() { return std::vector<std::uint32_t>(width * height, background); }

  static unsigned char inDefaultIndexes(unsigned char v) { return v < 10 ? 10 : v > 240 ? 240 : v; }

  // The surface pel of a source pel as the rules of its type have it.
  static std::uint32_t expectedPel(unsigned char v, int depth, bool mapped)
  {
    if (depth == 8)
      return mapped ? v : inDefaultIndexes(v);
    return surfacePel(testColor(mapped ? v : inDefaultIndexes(v)), depth);
  }
  static std::uint32_t expectedPel(unsigned short v, int depth, bool) { return surfacePel(testColor(v), depth); }
  static std::uint32_t expectedPel(ccPackedRGB16Pel v, int, bool) { return v.word(); }
  static std::uint32_t expectedPel(ccPackedRGB32Pel v, int, bool) { return v.word() & 0xFFFFFF; }

  template <class T>
  static void paste(std::vector<std::uint32_t>& picture, ccPelBuffer_const<T> const& image, long x, long y, ccUIRect clip,
                    int depth, bool mapped, long key)
  {
    ccPair<long> const o = image.offset();
    for (long j = 0; j < image.height(); ++j)
      for (long i = 0; i < image.width(); ++i) {
        T const v = image.getPel(o.x() + i, o.y() + j);
        if (!clip.within(ccPair<long>(x + i, y + j)))
          continue;
        // On a palette surface the key is compared with what the surface holds.
        std::uint32_t const seen = depth == 8 ? expectedPel(v, depth, mapped) : wordOf(v);
        if (key >= 0 && seen == static_cast<std::uint32_t>(key))
          continue;
        picture[static_cast<std::size_t>((y + j) * width + x + i)] = expectedPel(v, depth, mapped);
      }
  }

  static void draw(ccUIScope& s, ccPelBuffer_const<unsigned char> const& b, ccPoint p, bool t, long key, bool mapped)
  {
    s.draw(b, p, t, static_cast<unsigned char>(key), mapped);
  }
  static void draw(ccUIScope& s, ccPelBuffer_const<unsigned short> const& b, ccPoint p, bool t, long key, bool)
  {
    s.draw(b, p, t, static_cast<unsigned short>(key));
  }
  static void draw(ccUIScope& s, ccPelBuffer_const<ccPackedRGB16Pel> const& b, ccPoint p, bool t, long key, bool)
  {
    s.draw(b, p, t, static_cast<std::uint16_t>(key));
  }
  static void draw(ccUIScope& s, ccPelBuffer_const<ccPackedRGB32Pel> const& b, ccPoint p, bool t, long key, bool)
  {
    s.draw(b, p, t, static_cast<std::uint32_t>(key));
  }

  // Random images, windows of them, positions, keys, children and display clips.
  template <class T> void randomPictures(int depth, bool keyIsObeyed)
  {
    screen(depth);
    ScopeProbe scope;
    prepare(scope, sizeof(T) == 2 && std::is_integral_v<T> ? 65536 : 256);
    std::mt19937 random(static_cast<unsigned>(depth));
    auto const upTo = [&random](long n) { return static_cast<long>(random() % static_cast<unsigned long>(n)); };
    for (int turn = 0; turn < 60; ++turn) {
      wipe(scope);
      ccPelBuffer_const<T> image = randomImage<T>(1 + upTo(67), 1 + upTo(50), static_cast<unsigned>(random()));
      if (turn % 3 == 0)
        image.window(upTo(10), upTo(10), 1 + upTo(40), 1 + upTo(40));
      if (!image.isBound())
        continue;
      if (turn % 5 == 0)
        image.offset(ccPair<long>(-7, 1000));
      long const x = upTo(100) - 55, y = upTo(80) - 45;
      bool const mapped = turn % 2 == 0, keyed = turn % 4 < 2;
      ccPair<long> const o = image.offset();
      long const key = keyed ? static_cast<long>(wordOf(image.getPel(o.x(), o.y()))) : -1;
      ccUIRect clip(0, 0, width, height);
      std::unique_ptr<ccUIScope> child;
      ccUIScope* target = &scope;
      if (turn % 4 == 1 || turn % 4 == 2) {
        clip = ccUIRect(3 + upTo(10), 2 + upTo(10), 1 + upTo(20), 1 + upTo(15));
        child.reset(scope.createChildScope(clip, true));
        target = child.get();
      }
      ccUIRect obeyed = clip;
      if (turn % 7 == 0) {
        ccUIRect const displayClip(upTo(30), upTo(20), 1 + upTo(20), 1 + upTo(20));
        target->newDisplayClipRect(displayClip);
        if (std::is_same_v<T, unsigned char>)
          obeyed &= displayClip;
      }
      std::vector<std::uint32_t> expected = blank();
      paste<T>(expected, image, x, y, obeyed, depth, mapped, keyed && keyIsObeyed ? key : -1);

      draw(*target, image, ccPoint(static_cast<double>(x), static_cast<double>(y)), keyed, key, mapped);

      ASSERT_EQ(pelsOf(scope.surface()), expected) << "depth " << depth << " turn " << turn;
      scope.newDisplayClipRect(ccUIRect());
      scope.releaseImageCache();
    }
  }
};

TEST_F(ScopePel, grey8AtEveryDepth)
{
  for (int const depth : allDepths)
    randomPictures<unsigned char>(depth, true);
}

TEST_F(ScopePel, grey16AtEveryTrueColorDepth)
{
  for (int const depth : {15, 16, 24, 32})
    randomPictures<unsigned short>(depth, true);
}

TEST_F(ScopePel, rgb16At16ThroughTheCacheAndAt15AsItIs)
{
  randomPictures<ccPackedRGB16Pel>(16, true);
  randomPictures<ccPackedRGB16Pel>(15, false);  // the plain writer knows no key
}

TEST_F(ScopePel, rgb32At32) { randomPictures<ccPackedRGB32Pel>(32, true); }

TEST_F(ScopePel, positionBelowZeroStartsReadingInside)
{
  ScopeProbe scope;
  prepare(scope);
  ccPelBuffer<unsigned char> image(5, 4);
  image.setPel(3, 2, 77);
  scope.draw(image, ccPoint(-3, -2), false, 0, true);
  EXPECT_EQ(pelOf(scope.surface(), 0, 0), surfacePel(testColor(77), 32));
  EXPECT_EQ(scope.changeRect(), ccUIRect(0, 0, 2, 2));
}

TEST_F(ScopePel, imageOutsideReportsNothingAndLeavesTheSurface)
{
  for (int const depth : {8, 32}) {
    screen(depth);
    ScopeProbe scope;
    prepare(scope);
    ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(5, 4, 1);
    ccPelBuffer<ccPackedRGB32Pel> const colors = randomImage<ccPackedRGB32Pel>(5, 4, 1);
    for (ccPoint const p : {ccPoint(-5, 0), ccPoint(0, -4), ccPoint(width, 0), ccPoint(0, height), ccPoint(1e12, -1e12),
                            ccPoint(-1e300, 1e300)}) {
      scope.draw(image, p, false, 0, true);
      scope.draw(colors, p, false, 0);
      scope.expand(image, p, ccPair<double>(1, 1), false, 0, true, ccUIScope::InterpolationModes());
      scope.sample(colors, p, ccPair<double>(1, 1), false, 0);
    }
    EXPECT_EQ(scope.changeRect(), ccUIRect());
    EXPECT_EQ(pelsOf(scope.surface()), blank());
    EXPECT_EQ(scope.starts, 0);
  }
}

TEST_F(ScopePel, writerReportsOpaqueAlsoWithAKeyAndTheBlitDoesNot)
{
  for (int const depth : {8, 32}) {
    screen(depth);
    ScopeProbe scope;
    prepare(scope);
    ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(width, height, 1);
    scope.draw(image, ccPoint(0, 0), true, 3, true);
    EXPECT_EQ((scope.stateBits() & ccUIScope::kOpaque) != 0, depth == 32);
    scope.draw(image, ccPoint(0, 0), false, 3, true);
    EXPECT_TRUE((scope.stateBits() & ccUIScope::kOpaque) != 0);
  }
}

TEST_F(ScopePel, grey16OnAPaletteSurfaceLeavesThePhaseRunning)
{
  screen(8);
  ScopeProbe scope;
  prepare(scope, 65536);
  scope.draw(randomImage<unsigned short>(5, 5, 1), ccPoint(0, 0), false, 0);
  EXPECT_EQ(scope.starts, 1);
  EXPECT_EQ(scope.stops, 0);
  EXPECT_EQ(scope.changeRect(), ccUIRect());
  EXPECT_EQ(scope.surface().lock(), result(0x887601AE));
  scope.stopDrawPhase();
  EXPECT_EQ(pelsOf(scope.surface()), blank());
}

TEST_F(ScopePel, grey16BeyondAShortMapTakesTheLastColor)
{
  ScopeProbe scope;
  prepare(scope, 1024);
  ccPelBuffer<unsigned short> image(3, 1);
  image.setPel(0, 0, 1023);
  image.setPel(1, 0, 1024);
  image.setPel(2, 0, 65535);
  scope.draw(image, ccPoint(0, 0), false, 0);
  std::uint32_t const last = surfacePel(testColor(1023), 32);
  for (long x = 0; x < 3; ++x)
    EXPECT_EQ(pelOf(scope.surface(), x, 0), last);
}

TEST_F(ScopePel, missingColorMapPassesThroughAndLeavesNoPhase)
{
  ScopeProbe scope;
  create(scope);
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(5, 5, 1);
  EXPECT_THROW(scope.draw(image, ccPoint(0, 0), false, 0, true), cc_CacheMap::InvalidColorMap);
  EXPECT_THROW(scope.expand(image, ccPoint(0, 0), ccPair<double>(2, 2), false, 0, true, ccUIScope::InterpolationModes()),
               cc_CacheMap::InvalidColorMap);
  EXPECT_THROW(scope.draw(randomImage<unsigned short>(5, 5, 1), ccPoint(0, 0), false, 0), cc_CacheMap::InvalidColorMap);
  EXPECT_EQ(scope.starts, scope.stops);
  EXPECT_EQ(scope.surface().lock(), 0);
  EXPECT_EQ(scope.surface().unlock(), 0);
}

TEST_F(ScopePel, widePelsStayInTheirRow)
{
  // 4-byte pels on a 16-bit surface are copied as they are, and end with the surface's row.
  screen(16);
  ScopeProbe scope;
  prepare(scope);
  ccPelBuffer<ccPackedRGB32Pel> image(width, 3);
  for (long y = 0; y < 3; ++y)
    for (long x = 0; x < width; ++x)
      image.setPel(x, y, ccPackedRGB32Pel(static_cast<std::uint32_t>(0x10001 * (x + 1))));
  scope.draw(image, ccPoint(10, static_cast<double>(height - 2)), false, 0);
  std::vector<std::uint32_t> expected = blank();
  for (long y = height - 2; y < height; ++y)
    for (long x = 10; x < width; ++x)
      expected[static_cast<std::size_t>(y * width + x)] = static_cast<std::uint32_t>((x - 10) / 2 + 1);
  EXPECT_EQ(pelsOf(scope.surface()), expected);
}

TEST_F(ScopePel, stripOf16384PelsIsDrawn)
{
  ScopeProbe scope;
  prepare(scope);
  ccPelBuffer<unsigned char> const wide = randomImage<unsigned char>(16384, 2, 1);
  scope.draw(wide, ccPoint(-16380, 0), false, 0, true);
  EXPECT_EQ(pelOf(scope.surface(), 3, 1), surfacePel(testColor(wide.getPel(16383, 1)), 32));
  scope.sample(wide, ccPoint(0, 0), ccPair<double>(0.001, 0.5), false, 0, true);
  EXPECT_EQ(pelOf(scope.surface(), 15, 0), surfacePel(testColor(wide.getPel(15000, 0)), 32));
  screen(8);
  ScopeProbe paletted;
  prepare(paletted);
  paletted.draw(wide, ccPoint(-16380, 0), false, 0, true);
  EXPECT_EQ(pelOf(paletted.surface(), 3, 1), wide.getPel(16383, 1));
}

// --- Image cache

TEST_F(ScopePel, cachedImageIsCopiedOnceForOnePlace)
{
  screen(8);
  ScopeProbe scope;
  prepare(scope);
  ccPelBuffer<unsigned char> image(10, 10);
  image.setPel(0, 0, 50);
  scope.draw(image, ccPoint(0, 0), false, 0, true);
  EXPECT_EQ(scope.sizeImageCache(), ccPair<long>(10, 10));
  image.setPel(0, 0, 60);
  scope.draw(image, ccPoint(0, 0), false, 0, true);
  EXPECT_EQ(pelOf(scope.surface(), 0, 0), 50u);  // by place, not by content
  scope.flushImageCache();
  scope.draw(image, ccPoint(0, 0), false, 0, true);
  EXPECT_EQ(pelOf(scope.surface(), 0, 0), 50u);  // a local image stays a hit
  scope.releaseImageCache();
  EXPECT_EQ(scope.sizeImageCache(), ccPair<long>());
  scope.draw(image, ccPoint(0, 0), false, 0, true);
  EXPECT_EQ(pelOf(scope.surface(), 0, 0), 60u);
}

TEST_F(ScopePel, cacheSurfaceIsKeptWhileImagesFit)
{
  screen(8);
  ScopeProbe scope;
  prepare(scope);
  ccPelBuffer<unsigned char> const small = randomImage<unsigned char>(10, 10, 1), wide = randomImage<unsigned char>(20, 5, 2);
  scope.draw(small, ccPoint(0, 0), false, 0, true);
  scope.draw(wide, ccPoint(0, 0), false, 0, true);
  EXPECT_EQ(scope.sizeImageCache(), ccPair<long>(20, 5));
  scope.draw(randomImage<unsigned char>(7, 4, 3), ccPoint(0, 0), false, 0, true);
  EXPECT_EQ(scope.sizeImageCache(), ccPair<long>(20, 5));
}

TEST_F(ScopePel, biggerImageAtTheSamePlaceIsCopied)
{
  screen(8);
  ScopeProbe scope;
  prepare(scope);
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(20, 20, 5);
  scope.draw(randomImage<unsigned char>(30, 30, 4), ccPoint(0, 0), false, 0, true);
  scope.draw(image.cut(0, 0, 5, 5), ccPoint(0, 0), false, 0, true);
  scope.draw(image.cut(0, 0, 20, 5), ccPoint(0, 0), false, 0, true);  // wider only
  EXPECT_EQ(pelOf(scope.surface(), 19, 4), image.getPel(19, 4));
  scope.draw(image, ccPoint(0, 0), false, 0, true);
  EXPECT_EQ(pelOf(scope.surface(), 19, 19), image.getPel(19, 19));
}

TEST_F(ScopePel, unboundImageDrawsTheCache)
{
  screen(8);
  ScopeProbe scope;
  prepare(scope);
  scope.draw(ccPelBuffer_const<unsigned char>(), ccPoint(0, 0), false, 0, true);
  EXPECT_EQ(pelsOf(scope.surface()), blank());  // nothing cached yet
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(10, 10, 7);
  scope.draw(image, ccPoint(0, 0), false, 0, true);
  scope.clearChange();
  scope.draw(ccPelBuffer_const<unsigned char>(), ccPoint(20, 15), false, 0, true);
  EXPECT_EQ(pelOf(scope.surface(), 25, 19), image.getPel(5, 4));
  EXPECT_EQ(scope.changeRect(), ccUIRect(20, 15, 10, 10));
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(5, 5, 30, 20), false));
  child->draw(ccPelBuffer_const<ccPackedRGB32Pel>(), ccPoint(1, 12), false, 0);
  EXPECT_EQ(pelOf(scope.surface(), 2, 14), image.getPel(1, 2));  // drawn by the root, at the root's coordinates
}

TEST_F(ScopePel, failedBlitFallsBackToTheWriter)
{
  screen(8);
  ScopeProbe scope;
  prepare(scope);
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(10, 10, 7);
  scope.draw(image, ccPoint(20, 20), false, 0, true);
  failNext(Op::blt, result(0x8876021C));
  scope.draw(image, ccPoint(0, 0), false, 0, true);
  EXPECT_EQ(pelOf(scope.surface(), 9, 9), image.getPel(9, 9));
}

TEST_F(ScopePel, failedCacheSkipsThePelsAndReports)
{
  screen(8);
  ScopeProbe scope;
  prepare(scope);
  failNext(Op::createSurface, result(0x8876017C));
  scope.draw(randomImage<unsigned char>(10, 10, 7), ccPoint(1, 2), false, 0, true);
  EXPECT_EQ(pelsOf(scope.surface()), blank());
  EXPECT_EQ(scope.changeRect(), ccUIRect(1, 2, 10, 10));
  ccPelBuffer<unsigned char> const image = randomImage<unsigned char>(10, 10, 7);
  failNext(Op::lock, result(0x887601B3));
  scope.draw(image, ccPoint(1, 2), false, 0, true);
  EXPECT_EQ(pelsOf(scope.surface()), blank());
  scope.draw(image, ccPoint(1, 2), false, 0, true);
  EXPECT_EQ(pelOf(scope.surface(), 1, 2), image.getPel(0, 0));
}

TEST_F(ScopePel, uncachedWriterIsThereForItself)
{
  screen(8);
  ScopeProbe scope;
  prepare(scope);
  scope.drawNC(randomImage<unsigned char>(10, 10, 7), ccPoint(1, 2), false, 0, true);
  EXPECT_EQ(scope.sizeImageCache(), ccPair<long>());
  EXPECT_EQ(pelOf(scope.surface(), 1, 2), randomImage<unsigned char>(10, 10, 7).getPel(0, 0));
  scope.drawNC(ccPelBuffer_const<unsigned char>(), ccPoint(1, 2), false, 0, true);
}

TEST_F(ScopePel, foreignMemoryThatIsGoneIsUnbound)
{
  ScopeProbe scope;
  prepare(scope);
  std::vector<unsigned char> memory(100, 5);
  ccPtrHandle<ccPelRoot<unsigned char>> const root(new ccPelRoot<unsigned char>(memory.data(), 10, 10, 10));
  ccPelBuffer<unsigned char> const image(root);
  root->disconnect();
  scope.draw(image, ccPoint(0, 0), false, 0, true);
  scope.expand(image, ccPoint(0, 0), ccPair<double>(2, 2), false, 0, true, ccUIScope::InterpolationModes());
  EXPECT_EQ(pelsOf(scope.surface()), blank());
}
