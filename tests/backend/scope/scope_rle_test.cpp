// Solid rectangles, points and run-length images.
#include "canvas/graphic_props.h"
#include "canvas/rle_buffer.h"
#include "tests/backend/scope/scope_fixture.h"

using plat::result;
using plat::testing::failNext;
using plat::testing::Op;

class ScopeRle : public ScopeTest {
protected:
  void prepare(ScopeProbe& scope)
  {
    create(scope);
    scope.colorMap(testColors());
  }

  static std::vector<std::uint32_t> blank() { return std::vector<std::uint32_t>(width * height, 0); }

  // A picture of few values, in runs.
  static std::vector<unsigned char> runs(long w, long h, unsigned seed)
  {
    std::mt19937 random(seed);
    std::vector<unsigned char> pels;
    while (static_cast<long>(pels.size()) < w * h)
      pels.insert(pels.end(), 1 + random() % 9, static_cast<unsigned char>(random() % 6));
    pels.resize(static_cast<std::size_t>(w * h));
    return pels;
  }
};

// --- Rectangles

TEST_F(ScopeRle, fillHasThePelOfTheColorAtEveryDepth)
{
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    prepare(scope);
    scope.set(ccUIRect(0, 0, 5, 5), ccColor::orangeColor());
    scope.set(ccUIRect(5, 0, 5, 5), ccColor(static_cast<unsigned char>(77)));  // an index alone
    scope.set(ccUIRect(10, 0, 5, 5), ccColor(200, 100, 50));
    EXPECT_EQ(pelOf(scope.surface(), 4, 4), depth == 8 ? 245u : surfacePel(ccRGB(255, 165, 0), depth));
    EXPECT_EQ(pelOf(scope.surface(), 5, 0), depth == 8 ? 77u : surfacePel(testColor(77), depth));
    std::uint32_t nearest = 0;
    int best = 1 << 30;
    for (std::uint32_t i = 0; i < 256; ++i) {
      ccRGB const c = testColor(i);
      int const d = (c.r - 200) * (c.r - 200) + (c.g - 100) * (c.g - 100) + (c.b - 50) * (c.b - 50);
      if (i != 243 && d < best)
        best = d, nearest = i;
    }
    EXPECT_EQ(pelOf(scope.surface(), 14, 4), depth == 8 ? nearest : surfacePel(ccRGB(200, 100, 50), depth));
    EXPECT_EQ(pelOf(scope.surface(), 15, 4), 0u);
  }
}

TEST_F(ScopeRle, fillIsCutWithTheScopeAndReportedOpaque)
{
  ScopeProbe scope;
  prepare(scope);
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(10, 10, 10, 10), true));
  child->set(ccUIRect(5, 5, 10, 100), ccColor::redColor());  // client coordinates are the root's
  EXPECT_EQ(child->changeRect(), ccUIRect(0, 0, 5, 10));
  EXPECT_EQ(pelOf(scope.surface(), 14, 19), 0xFF0000u);
  EXPECT_EQ(pelOf(scope.surface(), 15, 19), 0u);
  EXPECT_EQ(pelOf(scope.surface(), 9, 9), 0u);
  child->set(ccUIRect(100, 100, 5, 5), ccColor::redColor());
  EXPECT_EQ(child->changeRect(), ccUIRect(0, 0, 5, 10));
}

TEST_F(ScopeRle, wholeFillMarksEverythingAndOpaque)
{
  ScopeProbe scope;
  prepare(scope);
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(10, 10, 10, 10), false));
  child->set(ccColor::redColor());
  EXPECT_EQ(child->stateBits() & 7u, 7u);
  EXPECT_EQ(child->changeRect(), ccUIRect(0, 0, 10, 10));
  EXPECT_EQ(pelOf(scope.surface(), 10, 10), 0xFF0000u);
  EXPECT_EQ(pelOf(scope.surface(), 20, 20), 0u);
}

TEST_F(ScopeRle, fillObeysTheDisplayClip)
{
  ScopeProbe scope;
  prepare(scope);
  scope.newDisplayClipRect(ccUIRect(5, 5, 3, 3));
  scope.set(ccColor::redColor());
  std::vector<std::uint32_t> expected = blank();
  for (long y = 5; y < 8; ++y)
    for (long x = 5; x < 8; ++x)
      expected[static_cast<std::size_t>(y * width + x)] = 0xFF0000;
  EXPECT_EQ(pelsOf(scope.surface()), expected);
}

TEST_F(ScopeRle, failedFillIsDoneByHand)
{
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    prepare(scope);
    std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(10, 10, 10, 10), true));
    failNext(Op::blt, result(0x8876021C));
    child->set(ccUIRect(8, 12, 5, 2), ccColor::orangeColor());
    std::vector<std::uint32_t> expected = blank();
    for (long y = 12; y < 14; ++y)
      for (long x = 10; x < 13; ++x)
        expected[static_cast<std::size_t>(y * width + x)] =
            depth == 8 ? 245u : surfacePel(ccRGB(255, 165, 0), depth);
    EXPECT_EQ(pelsOf(scope.surface()), expected) << depth;
  }
}

// --- Points

TEST_F(ScopeRle, pointIsOnePelInsideScopeAndDisplayClip)
{
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    prepare(scope);
    ccGraphicProps props;
    props.penColor(ccColor::cyanColor());
    std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(10, 10, 10, 10), true));
    child->draw(ccPoint(10, 19), props);
    child->draw(ccPoint(9, 15), props);
    child->draw(ccPoint(20, 15), props);
    EXPECT_EQ(child->changeRect(), ccUIRect(0, 9, 1, 1));
    EXPECT_EQ(child->stateBits() & ccUIScope::kOpaque, 0u);
    child->newDisplayClipRect(ccUIRect(12, 12, 1, 1));
    child->draw(ccPoint(12, 12), props);
    child->draw(ccPoint(13, 12), props);
    props.penColor(ccColor(static_cast<unsigned char>(99)));
    scope.draw(ccPoint(0, 0), props);
    std::vector<std::uint32_t> expected = blank();
    std::uint32_t const cyan = depth == 8 ? 254u : surfacePel(ccRGB(0, 255, 255), depth);
    expected[19 * width + 10] = cyan;
    expected[12 * width + 12] = cyan;
    expected[0] = depth == 8 ? 99u : surfacePel(testColor(99), depth);
    EXPECT_EQ(pelsOf(scope.surface()), expected) << depth;
  }
}

// --- Runs

TEST_F(ScopeRle, runsAtEveryDepthAndPosition)
{
  std::vector<unsigned char> const map{200, 100, 250, 10};  // values 4 and 5 stand for themselves
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    prepare(scope);
    std::mt19937 random(static_cast<unsigned>(depth));
    for (int turn = 0; turn < 60; ++turn) {
      ASSERT_EQ(scope.surface().bltColorFill(static_cast<RECT const*>(nullptr), 0, 0), 0);
      long const w = 1 + static_cast<long>(random() % 60), h = 1 + static_cast<long>(random() % 40);
      long const x = static_cast<long>(random() % 90) - 50, y = static_cast<long>(random() % 70) - 40;
      std::vector<unsigned char> const pels = runs(w, h, static_cast<unsigned>(random()));
      bool const transparent = turn % 2 == 0;
      ccUIRect clip(0, 0, width, height);
      std::unique_ptr<ccUIScope> child;
      ccUIScope* target = &scope;
      if (turn % 3 == 1) {
        clip = ccUIRect(5, 6, 20, 15);
        child.reset(scope.createChildScope(clip, true));
        target = child.get();
      }
      if (turn % 5 == 0) {
        target->newDisplayClipRect(ccUIRect(7, 8, 12, 9));
        clip &= ccUIRect(7, 8, 12, 9);
      }
      std::vector<std::uint32_t> expected = blank();
      for (long j = 0; j < h; ++j)
        for (long i = 0; i < w; ++i) {
          unsigned char const v = pels[static_cast<std::size_t>(j * w + i)];
          if (!clip.within(ccPair<long>(x + i, y + j)) || (transparent && v == 2))
            continue;
          unsigned char const index = v < 4 ? map[v] : v;
          expected[static_cast<std::size_t>((y + j) * width + x + i)] =
              depth == 8 ? index : surfacePel(testColor(index), depth);
        }

      target->draw(ccRLEBuffer::fromPels(pels.data(), w, h, w), ccPoint(static_cast<double>(x), static_cast<double>(y)),
                   map, transparent, 2);

      ASSERT_EQ(pelsOf(scope.surface()), expected) << "depth " << depth << " turn " << turn;
      target->newDisplayClipRect(ccUIRect());
    }
  }
}

TEST_F(ScopeRle, emptyImageDoesNothing)
{
  ScopeProbe scope;
  prepare(scope);
  scope.draw(ccRLEBuffer(), ccPoint(0, 0), std::vector<unsigned char>(), false, 0);
  EXPECT_EQ(scope.changeRect(), ccUIRect());
  EXPECT_EQ(scope.starts, 0);
}

TEST_F(ScopeRle, colorsBecomeIndexesFirst)
{
  screen(8);
  ScopeProbe scope;
  prepare(scope);
  unsigned char const pels[] = {0, 1, 2};
  std::vector<ccColor> const map{ccColor(static_cast<unsigned char>(44)), ccColor::redColor(),
                                 ccColor(testColor(123))};
  scope.draw(ccRLEBuffer::fromPels(pels, 3, 1, 3), ccPoint(0, 0), map, false, 0);
  EXPECT_EQ(pelOf(scope.surface(), 0, 0), 44u);
  EXPECT_EQ(pelOf(scope.surface(), 1, 0), 249u);
  EXPECT_EQ(pelOf(scope.surface(), 2, 0), 123u);
}

TEST_F(ScopeRle, runsAreReportedSeeThrough)
{
  ScopeProbe scope;
  prepare(scope);
  std::vector<unsigned char> const pels = runs(width, height, 1);
  scope.draw(ccRLEBuffer::fromPels(pels.data(), width, height, width), ccPoint(0, 0), std::vector<unsigned char>(), false, 0);
  EXPECT_EQ(scope.changeRect(), ccUIRect(0, 0, width, height));
  EXPECT_EQ(scope.stateBits() & ccUIScope::kOpaque, 0u);
}

TEST_F(ScopeRle, colorsWithoutAMapAreTheDefaultTables)
{
  ScopeProbe scope;
  create(scope);
  scope.set(ccUIRect(0, 0, 1, 1), ccColor(static_cast<unsigned char>(249)));
  EXPECT_EQ(pelOf(scope.surface(), 0, 0), 0xFF0000u);
}
