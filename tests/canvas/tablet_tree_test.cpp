#include "tests/canvas/tablet_fixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

// ---- Tree

TEST(Tablet, kidsRunBackToFront)
{
  TestTablet top(nullptr, nullptr);
  TestTablet a(top, {0, 0, 4, 4}), b(top, {0, 0, 4, 4}), c(top, {0, 0, 4, 4});
  EXPECT_EQ(&a, top.firstKid());
  EXPECT_EQ(&c, top.lastKid());
  EXPECT_EQ(&b, a.nextSib());
  EXPECT_EQ(&b, c.prevSib());
  EXPECT_EQ(3, top.numKids());

  a.front();
  EXPECT_EQ(&a, top.lastKid());
  EXPECT_EQ(&b, top.firstKid());
  c.back();
  EXPECT_EQ(&c, top.firstKid());
  EXPECT_EQ(&b, c.nextSib());
  EXPECT_EQ(&a, b.nextSib());
  EXPECT_EQ(nullptr, a.nextSib());
  EXPECT_EQ(&b, a.prevSib());
  EXPECT_EQ(3, top.numKids());
}

TEST(Tablet, dyingTabletOrphansItsKids)
{
  TestTablet top(nullptr, nullptr);
  auto middle = std::make_unique<TestTablet>(top, ccUIRect(5, 5, 10, 10));
  TestTablet kid(*middle, {2, 2, 4, 4});
  EXPECT_EQ(ccPair<long>(7, 7), kid.screenOrigin());

  middle.reset();

  EXPECT_EQ(0, top.numKids());
  EXPECT_EQ(nullptr, kid.parentTablet());
  EXPECT_EQ(ccPair<long>(0, 0), kid.screenOrigin());
  EXPECT_EQ(std::vector<std::string>{"noParent"}, kid.hooks);
}

TEST(Tablet, setParentLinksInFrontAndCallsHooksInOrder)
{
  TestTablet top(nullptr, nullptr);
  top.size({100, 100});
  TestTablet a(top, {10, 10, 20, 20}), b(top, {40, 40, 20, 20});
  TestTablet kid(a, {1, 1, 5, 5});

  kid.setParent(b, {2, 3, 6, 6});

  EXPECT_EQ(&b, kid.parentTablet());
  EXPECT_EQ(nullptr, a.firstKid());
  EXPECT_EQ(ccPair<long>(42, 43), kid.screenOrigin());
  EXPECT_EQ((std::vector<std::string>{"newParent", "move", "resize", "clipped", "parentMap"}), kid.hooks);
}

TEST(Tablet, setParentBelowItselfDoesNothing)
{
  TestTablet top(nullptr, nullptr);
  TestTablet a(top, {0, 0, 9, 9});
  TestTablet kid(a, {0, 0, 5, 5});

  a.setParent(kid, {0, 0, 3, 3});
  a.setParent(a, {0, 0, 3, 3});

  EXPECT_EQ(&top, a.parentTablet());
  EXPECT_EQ(ccUIRect(0, 0, 9, 9), a.frameRect());
}

TEST(Tablet, isBornVisibleAndShownWithItsAncestors)
{
  TestTablet top(nullptr, nullptr);
  TestTablet a(top, {0, 0, 9, 9});
  TestTablet kid(a, {0, 0, 5, 5});
  EXPECT_TRUE(kid.isShown());

  a.visible(false);
  EXPECT_TRUE(kid.isVisible());
  EXPECT_FALSE(kid.isShown());
}

// ---- Geometry

TEST(Tablet, equalRectangleDoesNothing)
{
  TestTree tree;
  TestTablet kid(tree.top, {3, 4, 5, 6});
  tree.flush();

  kid.scopeRect({3, 4, 5, 6}).moveAbs({3, 4}).size({5, 6}).moveRel({0, 0});

  EXPECT_TRUE(kid.hooks.empty());
  EXPECT_FALSE(kid.anyChanged(kBoth));
}

TEST(Tablet, emptyTabletsMoveToo)
{
  TestTablet top(nullptr, nullptr);
  TestTablet kid(top, {1, 1, 0, 0});

  kid.moveAbs({4, 5});

  EXPECT_EQ(ccPair<long>(4, 5), kid.screenOrigin());
  EXPECT_EQ(std::vector<std::string>{"move"}, kid.hooks);
}

TEST(Tablet, geometryHooksComeInOrderAndClippedTopDown)
{
  TestTablet top(nullptr, nullptr);
  top.size({50, 50});
  std::vector<std::string> calls;
  TestTablet a(top, {10, 10, 20, 20});
  TestTablet kid(a, {0, 0, 30, 5});   // cut by its parent
  TestTablet inner(a, {2, 10, 3, 3}); // seen whole
  TestTablet deep(kid, {0, 0, 25, 5});
  a.name = "a", kid.name = "kid", inner.name = "inner", deep.name = "deep";
  for (TestTablet* t : {&a, &kid, &inner, &deep})
    t->shared = &calls;

  a.scopeRect({12, 10, 22, 20});

  EXPECT_EQ((std::vector<std::string>{"a.move", "a.resize", "a.clipped", "kid.clipped", "deep.clipped"}), calls);
}

TEST(Tablet, movingInsideTheParentClipsNothing)
{
  TestTablet top(nullptr, nullptr);
  top.size({50, 50});
  TestTablet a(top, {10, 10, 20, 20});

  a.moveRel({3, 0});
  EXPECT_EQ(std::vector<std::string>{"move"}, a.hooks);
  a.hooks.clear();

  a.moveAbs({40, 10}); // half of it leaves
  EXPECT_EQ((std::vector<std::string>{"move", "clipped"}), a.hooks);
}

TEST(Tablet, siblingInFrontClipsNothing)
{
  TestTree tree;
  TestTablet a(tree.top, {0, 0, 20, 20});
  TestTablet cover(tree.top, {30, 0, 10, 10});
  cover.face = plainFace(ccColor::redColor());
  cover.redraw(kBoth);

  cover.scopeRect({0, 0, 40, 30});
  tree.flush();

  EXPECT_TRUE(a.hooks.empty());
}

TEST(Tablet, endlessFrameFollowsItsParent)
{
  TestTree tree;
  TestTablet plane(tree.top, ccUIRect::firstQuad);
  TestTablet below(plane, ccUIRect::firstQuad);
  EXPECT_EQ(ccUIRect(0, 0, 40, 30), plane.currentScope(kImage));
  EXPECT_EQ(ccUIRect(0, 0, 40, 30), below.currentScope(kOverlay));

  tree.top.size({25, 20});

  EXPECT_EQ(std::vector<std::string>{"resize"},
            std::vector<std::string>(tree.top.hooks.begin(), tree.top.hooks.begin() + 1));
  EXPECT_EQ(std::vector<std::string>{"clipped"}, plane.hooks);
  EXPECT_EQ(std::vector<std::string>{"clipped"}, below.hooks);
  EXPECT_EQ(ccUIRect(0, 0, 25, 20), below.currentScope(kImage));
  EXPECT_EQ(ccUIRect::firstQuad, plane.frameRect());
}

TEST(Tablet, endlessFrameInAFrameEndsWhereThatEnds)
{
  TestTree tree;
  TestTablet frame(tree.top, {30, 20, 20, 20}); // reaches out of the top
  TestTablet plane(frame, ccUIRect::firstQuad);

  EXPECT_EQ(ccPair<long>(30, 20), plane.screenOrigin());
  EXPECT_EQ(ccUIRect(0, 0, 10, 10), plane.currentScope(kImage)); // cut with the scope
  EXPECT_EQ(ccUIRect(0, 0, 20, 20), frame.currentScope(kImage)); // whatever hides it
}

TEST(Tablet, currentScopeIsNullWithoutAScopeOnTheLayer)
{
  MemoryScope image({40, 30});
  TestTablet top(&image, nullptr);
  TestTablet kid(top, {1, 2, 3, 4});

  EXPECT_EQ(ccUIRect(0, 0, 3, 4), kid.currentScope(kImage));
  EXPECT_TRUE(kid.currentScope(kOverlay).isNull());
  EXPECT_TRUE(TestTablet(ccUIRect(0, 0, 5, 5)).currentScope(kImage).isNull());
}

TEST(Tablet, topIsBornWithItsFirstScopesSizeAndKeepsIt)
{
  MemoryScope image({40, 30});
  MemoryScope overlay({20, 10}, 32, MemoryScope::overlayPlane);
  TestTablet top(&image, &overlay);
  EXPECT_EQ(ccPair<long>(40, 30), top.size());
  EXPECT_EQ(ccUIRect(0, 0, 20, 10), top.currentScope(kOverlay));
  EXPECT_EQ(ccPair<long>(20, 10), TestTablet(nullptr, &overlay).size());
  EXPECT_EQ(ccPair<long>(0, 0), TestTablet(nullptr, nullptr).size());

  MemoryScope wider({60, 30});
  top.setScope(kImage, &wider, false);
  EXPECT_EQ(ccPair<long>(40, 30), top.size());
}

TEST(Tablet, hooksMaySetGeometryAndDestroyKids)
{
  TestTree tree;
  TestTablet a(tree.top, {0, 0, 20, 20});
  auto first = std::make_unique<TestTablet>(a, ccUIRect(0, 0, 30, 30));
  auto second = std::make_unique<TestTablet>(a, ccUIRect(0, 0, 30, 30));
  TestTablet third(a, {0, 0, 30, 30});
  first->onHook = [&](TestTablet& t, std::string const& what) {
    if (what == "clipped") {
      second.reset();
      t.moveAbs({1, 1});
    }
  };

  a.size({18, 18});

  EXPECT_EQ(nullptr, second.get());
  EXPECT_EQ(ccUIRect(1, 1, 30, 30), first->frameRect());
  EXPECT_EQ(std::vector<std::string>{"clipped"}, third.hooks);
}

TEST(Tablet, clippedHookMayDestroyItsOwnTablet)
{
  TestTree tree;
  TestTablet a(tree.top, {0, 0, 20, 20});
  auto kid = std::make_unique<TestTablet>(a, ccUIRect(0, 0, 30, 30));
  TestTablet other(a, {0, 0, 30, 30});
  kid->onHook = [&](TestTablet&, std::string const&) { auto const dying = std::move(kid); };

  a.size({18, 18});

  EXPECT_EQ(1, a.numKids());
  EXPECT_EQ(std::vector<std::string>{"clipped"}, other.hooks);
}

// ---- Maps

TEST(TabletMap, screenMapIsTheScaleAfterTheBaseMap)
{
  TestTablet t{ccUIRect(0, 0, 10, 10)};
  t.baseMap(ccXform<2>(1, 1, ccVector<2>(5, 7)));
  t.scaleExact({2, 3});

  EXPECT_EQ(ccPair<long>(2 * (1 + 5), 3 * (2 + 7)), t.scopeCoords({1, 2}));
  EXPECT_DOUBLE_EQ(6.0, t.hitScale() * t.hitScale());
}

TEST(TabletMap, pelsSurviveTheWayThroughTabletCoordinates)
{
  std::mt19937 random(5);
  std::uniform_real_distribution<double> coefficient(-3, 3);
  std::uniform_real_distribution<double> zoom(0.01, 60);
  std::uniform_int_distribution<long> pel(-3000, 3000);
  TestTablet t{ccUIRect(0, 0, 10, 10)};
  int regular = 0;
  for (int i = 0; i < 20000; ++i) {
    double const a = coefficient(random), b = coefficient(random), c = coefficient(random), d = coefficient(random);
    if (std::fabs(a * d - b * c) < 1e-2)
      continue;
    ++regular;
    t.baseMap(ccXform<2>(ccMatrix<2>(a, b, c, d), ccVector<2>(coefficient(random) * 100, coefficient(random) * 100)));
    t.scaleExact({zoom(random), zoom(random)});
    ccPair<long> const q(pel(random), pel(random));
    ASSERT_EQ(q, t.scopeCoords(t.tabletCoords(q)));
  }
  EXPECT_GT(regular, 10000);
}

TEST(TabletMap, screenCoordinatesAddTheOrigin)
{
  TestTablet top(nullptr, nullptr);
  TestTablet kid(top, {11, 13, 10, 10});
  kid.scaleExact({2, 2});

  EXPECT_EQ(ccPair<long>(13, 17), kid.screenCoords({1, 2}));
  EXPECT_EQ(ccPoint(1, 2), kid.tabletFromScreen({13, 17}));
  EXPECT_EQ(ccPoint(6.5, 8.5), kid.tabletCoords({13, 17}));
}

TEST(TabletMap, halvesRoundUpwardAtNegativePositionsToo)
{
  TestTablet t{ccUIRect(0, 0, 10, 10)};

  EXPECT_EQ(ccPair<long>(3, -2), t.scopeCoords({2.5, -2.5}));
  EXPECT_EQ(ccPair<long>(2, -3), t.scopeCoords({2.49, -2.51}));
  EXPECT_EQ(ccPair<long>(3, 3), t.scopeCoords({2.5 - 5e-7, 3.4}));
}

TEST(TabletMap, farPositionsStayWhereSumsFit)
{
  TestTree tree;
  TestTablet t(tree.top, {30, 20, 5, 5});
  EXPECT_EQ((ccPair<long>(ccUIRect::kFar, -ccUIRect::kFar)), t.scopeCoords({1e300, -1e300}));
  t.drawStart(ccPoint(1e300, -1e300), kImage);
  t.drawToRelPels(ccUIRect::kFar, -ccUIRect::kFar, ccColor::redColor(), kImage);
  EXPECT_EQ(Rows({"....."}), tree.imagePicture({30, 20, 5, 1}));
}

TEST(TabletMap, singularMapGivesTheOrigin)
{
  TestTablet t{ccUIRect(0, 0, 10, 10)};
  t.baseMap(ccXform<2>(ccMatrix<2>(1, 2, 2, 4), ccVector<2>(5, 5)));

  EXPECT_EQ(ccPoint(0, 0), t.tabletCoords({3, 4}));
  EXPECT_EQ(0.0, t.hitScale());
}

TEST(TabletMap, scaleSetsTheMode)
{
  struct Case {
    double x;
    ccUITablet::ScaleModes mode;
    long scale;
  };
  double const nan = std::nan("");
  for (Case const& c :
       {Case{3, ccUITablet::scaleUp, 3}, Case{3.9, ccUITablet::scaleUp, 3}, Case{1, ccUITablet::scaleNone, 1},
        Case{0.5, ccUITablet::scaleDown, 2}, Case{0.4, ccUITablet::scaleDown, 2}, Case{0, ccUITablet::scaleNone, 1},
        Case{-2, ccUITablet::scaleNone, 1}, Case{nan, ccUITablet::scaleNone, 1}}) {
    TestTablet t{ccUIRect(0, 0, 10, 10)};
    t.scaleExact({c.x, c.x});
    EXPECT_EQ(c.mode, t.scaleMode()) << c.x;
    EXPECT_EQ(ccPair<long>(c.scale, c.scale), t.scale()) << c.x;
  }
}

TEST(TabletMap, wholeReductionsReadBack)
{
  TestTablet t{ccUIRect(0, 0, 10, 10)};
  for (long n = 2; n <= 65536; ++n) {
    t.scaleExact({1.0 / double(n), 1.0 / double(n)});
    ASSERT_EQ(n, t.scale().x());
  }
}

TEST(TabletMap, scaleModeOnlyStores)
{
  TestTablet t{ccUIRect(0, 0, 10, 10)};
  t.scaleExact({2, 2});

  t.scaleMode(ccUITablet::scaleDown);

  EXPECT_EQ(ccUITablet::scaleDown, t.scaleMode());
  EXPECT_EQ((ccPair<double>(2, 2)), t.scaleExact());
}

TEST(TabletMap, kidsHearOfADifferentMapOnlyBackToFront)
{
  TestTablet top(nullptr, nullptr);
  std::vector<std::string> calls;
  TestTablet a(top, {0, 0, 5, 5}), b(top, {0, 0, 5, 5});
  a.name = "a", b.name = "b";
  a.shared = b.shared = &calls;

  top.baseMap(ccXform<2>::I);
  top.scaleExact({1, 1});
  top.scaleMode(ccUITablet::scaleNone);
  EXPECT_TRUE(calls.empty());

  top.baseMap(ccXform<2>(1, 1, ccVector<2>(1, 0)));
  EXPECT_EQ((std::vector<std::string>{"a.parentMap", "b.parentMap"}), calls);
  top.scaleMode(ccUITablet::scaleUp);
  EXPECT_EQ(4u, calls.size());
}

// ---- Scopes

TEST(Tablet, overlayIsSupportedWhileATreeHasAnOverlayScope)
{
  ASSERT_FALSE(ccUITablet::overlaySupported());
  MemoryScope overlay({9, 9}, 32, MemoryScope::overlayPlane);
  {
    TestTablet top(nullptr, &overlay);
    TestTablet kid(top, {0, 0, 5, 5});
    EXPECT_TRUE(ccUITablet::overlaySupported());
    kid.setScope(kOverlay, nullptr, false);
    EXPECT_FALSE(ccUITablet::overlaySupported());
    kid.setScope(kOverlay, &overlay, false);
    EXPECT_TRUE(ccUITablet::overlaySupported());
  }
  EXPECT_FALSE(ccUITablet::overlaySupported());
}

TEST(Tablet, ownedScopeIsDeletedWithItsPlace)
{
  struct Counted : MemoryScope {
    explicit Counted(int& count) : MemoryScope(ccPair<long>(5, 5)), count_(count) { ++count_; }
    ~Counted() override { --count_; }
    int& count_;
  };
  int alive = 0;
  {
    TestTablet top(nullptr, nullptr);
    top.setScope(kImage, new Counted(alive), true);
    EXPECT_EQ(1, alive);
    top.setScope(kImage, new Counted(alive), true);
    EXPECT_EQ(1, alive);
    top.setScope(kImage, nullptr, false);
    EXPECT_EQ(0, alive);
    top.setScope(kBoth, new Counted(alive), true);
    EXPECT_EQ(1, alive);
  }
  EXPECT_EQ(0, alive);
}

TEST(Tablet, scopeGivenToAKidGoesToTheTop)
{
  TestTablet root{ccUIRect(0, 0, 20, 20)};
  TestTablet kid(root, {0, 0, 5, 5});
  MemoryScope image({20, 20});

  kid.setScope(kImage, &image, false);

  EXPECT_EQ(&image, root.scope(kImage));
  kid.set(ccColor::redColor(), kImage);
  EXPECT_EQ(image.value(ccColor::redColor()), image.pel(4, 4));
}

TEST(Tablet, orphanDrawsNowhere)
{
  MemoryScope image({20, 20});
  TestTablet top(&image, nullptr);
  TestTablet orphan{ccUIRect(0, 0, 20, 20)};

  orphan.set(ccColor::redColor(), kBoth);
  orphan.redraw(kBoth);
  orphan.fullDraw(kBoth);
  orphan.update(kBoth);
  orphan.lockScreenUpdatesPush(true, kBoth);
  orphan.lockScreenUpdatesPop(kBoth);

  EXPECT_TRUE(orphan.passes.empty());
  EXPECT_TRUE(orphan.sketch().isEmpty());
  EXPECT_FALSE(orphan.anyChanged(kBoth));
}

TEST(Tablet, screenLockIsTheWholeTreesAndNests)
{
  TestTree tree;
  TestTablet kid(tree.top, {0, 0, 5, 5});

  kid.lockScreenUpdatesPush(true, kImage);
  tree.top.lockScreenUpdatesPush(true, kImage);
  EXPECT_TRUE(tree.image.screenUpdatesLocked());
  EXPECT_FALSE(tree.overlay.screenUpdatesLocked());
  kid.lockScreenUpdatesPop(kImage);
  EXPECT_TRUE(tree.image.screenUpdatesLocked());
  kid.lockScreenUpdatesPop(kImage);
  EXPECT_FALSE(tree.image.screenUpdatesLocked());
  kid.lockScreenUpdatesPop(kImage); // one too many
  EXPECT_EQ(2, tree.image.calls("lockPop"));
}

TEST(Tablet, scopeReplacedUnderALockIsUnlockedByThePop)
{
  TestTree tree;
  MemoryScope fresh({40, 30});
  tree.top.lockScreenUpdatesPush(true, kBoth);
  tree.top.lockScreenUpdatesPush(false, kImage);
  tree.top.lockScreenUpdatesPush(true, kImage);

  tree.top.setScope(kImage, nullptr, false);
  EXPECT_FALSE(tree.image.screenUpdatesLocked());
  tree.top.setScope(kImage, &fresh, false);

  EXPECT_TRUE(fresh.screenUpdatesLocked());
  tree.top.lockScreenUpdatesPop(kImage);
  EXPECT_FALSE(fresh.screenUpdatesLocked());
  tree.top.lockScreenUpdatesPop(kImage);
  EXPECT_TRUE(fresh.screenUpdatesLocked());
  tree.top.lockScreenUpdatesPop(kBoth);
  EXPECT_FALSE(fresh.screenUpdatesLocked());
  EXPECT_FALSE(tree.overlay.screenUpdatesLocked());
}

TEST(Tablet, sameScopeSetAgainKeepsItsLocks)
{
  TestTree tree;
  tree.top.lockScreenUpdatesPush(true, kImage);
  tree.top.setScope(kImage, &tree.image, false);
  EXPECT_TRUE(tree.image.screenUpdatesLocked());
  tree.top.lockScreenUpdatesPop(kImage);
  EXPECT_FALSE(tree.image.screenUpdatesLocked());
}

TEST(Tablet, optimizedDrawingIsCountedAtTheTop)
{
  TestTree tree;
  TestTablet kid(tree.top, {0, 0, 5, 5});

  kid.optimizeDrawing(false, kImage);
  EXPECT_EQ(0, tree.image.calls("optimizeOff"));
  kid.optimizeDrawing(true, kImage);
  tree.top.optimizeDrawing(true, kBoth);
  EXPECT_EQ(1, tree.image.calls("optimizeOn"));
  EXPECT_EQ(1, tree.overlay.calls("optimizeOn"));
  kid.optimizeDrawing(false, kImage);
  EXPECT_EQ(0, tree.image.calls("optimizeOff"));
  kid.optimizeDrawing(false, kImage);
  EXPECT_EQ(1, tree.image.calls("optimizeOff"));
}
