#include "canvas/scope.h"

#include "tests/support/memory_scope.h"

#include <gtest/gtest.h>

#include <random>

namespace {

// Shows what the base class keeps for itself, and counts what reaches the screen.
struct Probe : MemoryScope {
  using MemoryScope::MemoryScope;
  using ccUIScope::xCoord;
  using ccUIScope::yCoord;
};

// Locks by the base's own rule.
struct BaseLocks : MemoryScope {
  using MemoryScope::MemoryScope;
  void lockScreenUpdatesPush(bool on) override { ccUIScope::lockScreenUpdatesPush(on); }
  bool lockScreenUpdatesPop() override { return ccUIScope::lockScreenUpdatesPop(); }
  bool screenUpdatesLocked() const override { return ccUIScope::screenUpdatesLocked(); }
  void updateScreen() override { ++updates; }
  int updates = 0;
};

// Records the windows that move and subset ask for.
struct WindowProbe : MemoryScope {
  using MemoryScope::MemoryScope;
  void window(ccUIScope const&, ccUIRect const& r) override { windows.push_back(r); }
  std::vector<ccUIRect> windows;
};

std::unique_ptr<ccUIScope> child(ccUIScope& parent, ccUIRect const& r, bool subset)
{
  return std::unique_ptr<ccUIScope>(parent.createChildScope(r, subset));
}

std::vector<ccRGB> greys()
{
  std::vector<ccRGB> map;
  for (int i = 0; i < 256; ++i) {
    unsigned char const grey = static_cast<unsigned char>(i);
    map.push_back(ccRGB(grey, grey, grey));
  }
  return map;
}

}  // namespace

TEST(cfPelOf, roundsHalvesUpAndForgivesAMillionth)
{
  EXPECT_EQ(cfPelOf(0.0), 0);
  EXPECT_EQ(cfPelOf(0.49), 0);
  EXPECT_EQ(cfPelOf(0.5), 1);
  EXPECT_EQ(cfPelOf(0.5 - 0.9e-6), 1);
  EXPECT_EQ(cfPelOf(0.5 - 1.1e-6), 0);
  EXPECT_EQ(cfPelOf(-0.5), 0);
  EXPECT_EQ(cfPelOf(-0.51), -1);
  EXPECT_EQ(cfPelOf(-1.5), -1);
  EXPECT_EQ(cfPelOf(-1.5 - 0.9e-6), -1);
  EXPECT_EQ(cfPelOf(7.0), 7);
}

TEST(cfPelOf, saturates)
{
  EXPECT_EQ(cfPelOf(1e300), 2147483647L);
  EXPECT_EQ(cfPelOf(-1e300), -2147483647L - 1L);
}

TEST(ccUIScope, startsAtOriginUnchanged)
{
  MemoryScope const s(ccPair<long>(30, 20));
  EXPECT_EQ(s.clientOffset(), ccPair<long>(0, 0));
  EXPECT_EQ(s.size(), ccPair<long>(30, 20));
  EXPECT_EQ(s.currentPoint(), ccPair<long>(0, 0));
  EXPECT_EQ(s.stateBits(), 0u);
  EXPECT_TRUE(s.changeRect().isNull());
  EXPECT_TRUE(s.displayClipRect().isNull());
  EXPECT_FALSE(s.screenUpdatesLocked());
  EXPECT_FALSE(s.isNull());
  EXPECT_TRUE(MemoryScope(ccPair<long>(0, 20)).isNull());
}

TEST(ccUIScope, moveMakesTheRectanglesCornerTheClientOrigin)
{
  MemoryScope parent(ccPair<long>(100, 80));
  auto const inside = child(parent, ccUIRect(10, 20, 30, 40), false);
  EXPECT_EQ(inside->clientOffset(), ccPair<long>(0, 0));
  EXPECT_EQ(inside->size(), ccPair<long>(30, 40));
  EXPECT_EQ(dynamic_cast<MemoryScope&>(*inside).rootRect(), ccUIRect(10, 20, 30, 40));

  // Cut at the upper left: its first pel is 10 to the right and 5 below the client origin.
  auto const cut = child(parent, ccUIRect(-10, -5, 30, 40), false);
  EXPECT_EQ(cut->clientOffset(), ccPair<long>(10, 5));
  EXPECT_EQ(cut->size(), ccPair<long>(20, 35));
  EXPECT_EQ(dynamic_cast<MemoryScope&>(*cut).rootRect(), ccUIRect(0, 0, 20, 35));
}

TEST(ccUIScope, subsetKeepsTheParentsClientCoordinates)
{
  MemoryScope parent(ccPair<long>(100, 80));
  auto const part = child(parent, ccUIRect(90, 20, 30, 40), true);
  EXPECT_EQ(part->clientOffset(), ccPair<long>(90, 20));
  EXPECT_EQ(part->size(), ccPair<long>(10, 40));

  auto const moved = child(parent, ccUIRect(50, 40, 50, 40), false);
  auto const nested = child(*moved, ccUIRect(5, 6, 7, 8), true);
  EXPECT_EQ(nested->clientOffset(), ccPair<long>(5, 6));
  EXPECT_EQ(dynamic_cast<MemoryScope&>(*nested).rootRect(), ccUIRect(55, 46, 7, 8));
}

TEST(ccUIScope, moveAndSubsetCountFromTheParentsOffset)
{
  MemoryScope root(ccPair<long>(100, 80));
  auto const part = child(root, ccUIRect(40, 30, 50, 40), true);  // client coordinates 40..90, 30..70
  auto const moved = child(*part, ccUIRect(30, 35, 20, 10), false);
  EXPECT_EQ(moved->clientOffset(), ccPair<long>(10, 0));
  EXPECT_EQ(moved->size(), ccPair<long>(10, 10));
  EXPECT_EQ(dynamic_cast<MemoryScope&>(*moved).rootRect(), ccUIRect(40, 35, 10, 10));
}

TEST(ccUIScope, windowIsCalledWithLocalRectAlsoForNull)
{
  MemoryScope root(ccPair<long>(100, 80));
  auto const parent = child(root, ccUIRect(10, 10, 50, 40), true);
  WindowProbe probe(ccPair<long>(1, 1));
  probe.subset(*parent, ccUIRect(20, 15, 5, 5));
  probe.move(*parent, ccUIRect(20, 15, 5, 5));
  probe.subset(*parent, ccUIRect(500, 500, 5, 5));
  ASSERT_EQ(probe.windows.size(), 3u);
  EXPECT_EQ(probe.windows[0], ccUIRect(10, 5, 5, 5));
  EXPECT_EQ(probe.windows[1], ccUIRect(10, 5, 5, 5));
  EXPECT_TRUE(probe.windows[2].isNull());
  EXPECT_TRUE(probe.isNull());
}

TEST(ccUIScope, subsettingAgainForgetsChanges)
{
  MemoryScope root(ccPair<long>(100, 80));
  auto const part = child(root, ccUIRect(0, 0, 10, 10), true);
  part->recording(true);
  part->allChange();
  part->subset(root, ccUIRect(5, 5, 10, 10));
  EXPECT_TRUE(part->changeRect().isNull());
  EXPECT_EQ(part->stateBits(), unsigned(ccUIScope::kRecording));
}

TEST(ccUIScope, coordinatesAreRoundedAfterTheOffset)
{
  Probe root(ccPair<long>(100, 80));
  EXPECT_EQ(root.xCoord(ccPoint(3.5, 0)), 4);
  EXPECT_EQ(root.yCoord(ccPoint(0, -3.5)), -3);
  Probe part(ccPair<long>(1, 1));
  part.subset(root, ccUIRect(10, 20, 30, 30));
  EXPECT_EQ(part.xCoord(ccPoint(9.5, 0)), 0);
  EXPECT_EQ(part.yCoord(ccPoint(0, 21.4)), 1);
}

TEST(ccUIScope, currentPointFollowsStartAndRelativeMoves)
{
  MemoryScope root(ccPair<long>(100, 80));
  auto const part = child(root, ccUIRect(10, 20, 30, 30), true);
  part->drawStart(ccPoint(15.5, 20));
  EXPECT_EQ(part->currentPoint(), ccPair<long>(6, 0));
  part->moveToRel(-2, 7);
  EXPECT_EQ(part->currentPoint(), ccPair<long>(4, 7));
}

TEST(ccUIScope, changeUnitesRectanglesAndMarksModified)
{
  MemoryScope s(ccPair<long>(100, 80));
  s.change(ccUIRect(10, 10, 5, 5), false);
  s.change(ccUIRect(20, 30, 5, 5), true);
  EXPECT_EQ(s.changeRect(), ccUIRect(10, 10, 15, 25));
  EXPECT_EQ(s.stateBits(), unsigned(ccUIScope::kModified));
}

TEST(ccUIScope, aNullChangeDoesNothing)
{
  MemoryScope s(ccPair<long>(100, 80));
  s.change(ccUIRect(10, 10, 0, 5), true);
  EXPECT_EQ(s.stateBits(), 0u);
  EXPECT_TRUE(s.changeRect().isNull());
}

TEST(ccUIScope, anOpaqueChangeOfEverythingMarksOpaque)
{
  MemoryScope root(ccPair<long>(100, 80));
  auto const s = child(root, ccUIRect(10, 10, 20, 20), true);
  s->change(ccUIRect(0, 0, 20, 19), true);
  EXPECT_EQ(s->stateBits(), unsigned(ccUIScope::kModified));
  s->change(ccUIRect(0, 0, 20, 20), false);
  EXPECT_EQ(s->stateBits(), unsigned(ccUIScope::kModified));
  s->change(ccUIRect(0, 0, 20, 20), true);
  EXPECT_EQ(s->stateBits(), unsigned(ccUIScope::kModified | ccUIScope::kOpaque));
}

TEST(ccUIScope, allChangeTakesTheWholeRectangle)
{
  MemoryScope s(ccPair<long>(100, 80));
  s.allChange();
  EXPECT_EQ(s.stateBits(), 1u);
  EXPECT_EQ(s.changeRect(), ccUIRect(0, 0, 100, 80));
}

TEST(ccUIScope, stateBitsAreOneTwoFourEight)
{
  MemoryScope s(ccPair<long>(100, 80));
  s.allChange();
  s.modified(true);
  s.opaque(true);
  s.recording(true);
  EXPECT_EQ(s.stateBits(), 15u);
  s.modified(false);
  EXPECT_EQ(s.stateBits(), 13u);
  s.opaque(false);
  EXPECT_EQ(s.stateBits(), 9u);
  s.clearChange();
  EXPECT_EQ(s.stateBits(), 8u);
  s.recording(false);
  EXPECT_EQ(s.stateBits(), 0u);
  EXPECT_TRUE(s.changeRect().isNull());
}

TEST(ccUIScope, unlockingUpdatesTheScreenExactlyOnce)
{
  BaseLocks s(ccPair<long>(10, 10));
  s.lockScreenUpdatesPush(true);
  s.lockScreenUpdatesPush(true);
  EXPECT_TRUE(s.screenUpdatesLocked());
  EXPECT_TRUE(s.lockScreenUpdatesPop());
  EXPECT_EQ(s.updates, 0);
  EXPECT_TRUE(s.lockScreenUpdatesPop());
  EXPECT_EQ(s.updates, 1);
  EXPECT_FALSE(s.screenUpdatesLocked());
}

TEST(ccUIScope, pushingAClearStateUnlocksToo)
{
  BaseLocks s(ccPair<long>(10, 10));
  s.lockScreenUpdatesPush(true);
  s.lockScreenUpdatesPush(false);
  EXPECT_EQ(s.updates, 1);
  EXPECT_FALSE(s.lockScreenUpdatesPop());  // back to locked
  EXPECT_TRUE(s.screenUpdatesLocked());
  EXPECT_EQ(s.updates, 1);
}

TEST(ccUIScope, poppingAnEmptyLockStackDoesNothing)
{
  BaseLocks s(ccPair<long>(10, 10));
  EXPECT_FALSE(s.lockScreenUpdatesPop());
  EXPECT_EQ(s.updates, 0);
}

TEST(ccUIScope, displayClipIsKept)
{
  MemoryScope s(ccPair<long>(10, 10));
  s.newDisplayClipRect(ccUIRect(1, 2, 3, 4));
  EXPECT_EQ(s.displayClipRect(), ccUIRect(1, 2, 3, 4));
}

TEST(ccUIScope, wholeNumberScalesAreMagnificationsAndReductions)
{
  MemoryScope s(ccPair<long>(12, 4), 32);
  ccPelBuffer<unsigned char> image(4, 2);
  for (long y = 0; y < 2; ++y)
    for (long x = 0; x < 4; ++x)
      image.setPel(x, y, static_cast<unsigned char>(10 * y + x));
  s.expand(image, ccPoint(0, 0), ccPair<long>(3, 3), false, static_cast<unsigned char>(0), true,
           cc_TabletEnums::interpolateNone);
  EXPECT_EQ(s.rgb(11, 3).r, 13);
  EXPECT_EQ(s.rgb(2, 0).r, 0);
  EXPECT_EQ(s.rgb(3, 0).r, 1);

  s.poison(0xAAAAAA);
  s.sample(image, ccPoint(0, 0), ccPair<long>(2, 2), false, static_cast<unsigned char>(0), true);
  EXPECT_EQ(s.rgb(0, 0).r, 0);
  EXPECT_EQ(s.rgb(1, 0).r, 2);
  EXPECT_EQ(s.pel(2, 0), 0xAAAAAAu);
  EXPECT_EQ(s.pel(0, 1), 0xAAAAAAu);
}

TEST(ccUIScope, aReductionByZeroOrLessDrawsNothing)
{
  MemoryScope s(ccPair<long>(12, 4), 32);
  s.poison(7);
  ccPelBuffer<unsigned char> const image(4, 2);
  s.sample(image, ccPoint(0, 0), ccPair<long>(0, 0), false, static_cast<unsigned char>(0), true);
  s.sample(image, ccPoint(0, 0), ccPair<long>(-2, -2), false, static_cast<unsigned char>(0), true);
  EXPECT_EQ(s.surface(), std::vector<std::uint32_t>(48, 7));
}

TEST(ccUIScopeNearestColor, leastSquaredDistanceAndLowestIndexOnTies)
{
  std::vector<ccRGB> const map{ccRGB(10, 0, 0), ccRGB(0, 10, 0), ccRGB(10, 0, 0), ccRGB(5, 5, 5)};
  ccColor const tie = ccUIScope::nearestColor(ccColor(12, 0, 0), map);
  EXPECT_EQ(tie.index(), 0);
  EXPECT_EQ(tie.toRGB(), ccRGB(10, 0, 0));
  EXPECT_EQ(tie.flags(), ccColor::kRGB | ccColor::kIndex);
  EXPECT_EQ(ccUIScope::nearestColor(ccColor(5, 6, 5), map).index(), 3);
}

TEST(ccUIScopeNearestColor, entry243IsForPassColoursOnly)
{
  std::vector<ccRGB> map = greys();
  EXPECT_EQ(ccUIScope::nearestColor(ccColor(243, 243, 243), map).index(), 242);
  EXPECT_EQ(ccUIScope::nearestColor(ccColor::passColor(), map).index(), 243);
  map[243] = ccRGB(1, 2, 3);  // also where the map gives that entry another colour
  EXPECT_EQ(ccUIScope::nearestColor(ccColor::passColor(), map).index(), 243);
  EXPECT_EQ(ccUIScope::nearestColor(ccColor(1, 2, 3), map).index(), 2);
}

TEST(ccUIScopeNearestColor, takesAnIndexColourByItsDefaultRGB)
{
  EXPECT_EQ(ccUIScope::nearestColor(ccColor(static_cast<unsigned char>(249)), {ccRGB(0, 0, 255), ccRGB(250, 0, 0)}).index(),
            1);
}

TEST(ccUIScopeNearestColor, anEmptyMapLeavesTheColour)
{
  ccColor const c = ccUIScope::nearestColor(ccColor(255, 0, 0), {});
  EXPECT_EQ(c.toRGB(), ccRGB(255, 0, 0));
  EXPECT_EQ(c.index(), 249);
}
