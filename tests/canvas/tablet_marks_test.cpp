// What each change owes, what counts as solid, and where drawing is seen.
#include "tests/canvas/tablet_fixture.h"

#include <gtest/gtest.h>

namespace {

struct MarkTree : TestTree {
  TestTablet behind{top, ccUIRect(4, 4, 20, 20)};  // solid
  TestTablet t{top, ccUIRect(8, 8, 10, 10)};       // transparent with a spot, partly over behind
  TestTablet ahead{top, ccUIRect(12, 12, 20, 10)}; // transparent with a spot

  MarkTree()
  {
    behind.face = plainFace(ccColor::redColor());
    t.face = spotFace({1, 2, 3, 4}, ccColor::greenColor());
    ahead.face = spotFace({0, 0, 2, 2}, ccColor::whiteColor());
    top.update(ccUIRect::inf, kImage, false);
    flushAll();
  }
  void flushAll()
  {
    flush();
    for (TestTablet* x : {&behind, &t, &ahead})
      x->passes.clear();
  }
};

} // namespace

TEST(TabletMarks, showingStartsAtTheTablet)
{
  MarkTree tree;
  tree.t.visible(false);
  tree.flushAll();

  tree.t.visible(true);
  tree.top.update(kImage);

  EXPECT_TRUE(tree.top.passes.empty());
  EXPECT_TRUE(tree.behind.passes.empty());
  EXPECT_EQ(Rows({"all 0,0 10x10"}), areas(tree.t));
  EXPECT_EQ(Rows({"part 0,0 6x6"}), areas(tree.ahead));
}

TEST(TabletMarks, hidingRepaintsWhatWasDrawnFromTheBottom)
{
  MarkTree tree;

  tree.t.visible(false);
  tree.top.update(kBoth);

  EXPECT_TRUE(tree.top.passes.empty()); // the solid tablet behind is bottom enough
  EXPECT_EQ(Rows({"part 5,6 3x4"}), areas(tree.behind));
  EXPECT_TRUE(tree.t.passes.empty());
  EXPECT_TRUE(tree.ahead.passes.empty());
}

TEST(TabletMarks, hidingWithoutPelsCostsNothing)
{
  MarkTree tree;
  tree.t.visible(false);
  EXPECT_FALSE(tree.top.anyChanged(kOverlay));
  EXPECT_TRUE(tree.top.anyChanged(kImage));
  tree.flushAll();

  tree.t.visible(true);
  tree.flushAll();
  tree.t.modified(kImage, false);
  tree.t.visible(false);
  EXPECT_FALSE(tree.top.anyChanged(kImage));
}

TEST(TabletMarks, modifiedTrueIsTheWholeTablet)
{
  MarkTree tree;
  tree.t.modified(kImage, true);
  tree.t.visible(false);
  tree.top.update(kImage);

  EXPECT_EQ(Rows({"part 4,4 10x10"}), areas(tree.behind));
}

TEST(TabletMarks, movingRepaintsTheOldPlaceAndPaintsTheNew)
{
  MarkTree tree;

  tree.t.moveAbs({9, 8});
  tree.top.update(kImage);

  EXPECT_EQ(Rows({"part 5,6 3x4"}), areas(tree.behind));
  ASSERT_FALSE(tree.t.passes.empty());
  EXPECT_EQ("all 0,0 10x10", areas(tree.t).back());
}

TEST(TabletMarks, hiddenTabletsMarkNothing)
{
  MarkTree tree;
  tree.t.visible(false);
  TestTablet kid(tree.t, {0, 0, 5, 5});
  tree.flushAll();

  tree.t.moveRel({2, 2});
  tree.t.size({5, 5});
  tree.t.front();
  tree.t.back();
  tree.t.baseMap(ccXform<2>(1, 1, ccVector<2>(1, 1)));
  tree.t.opaque(kImage, true);
  tree.t.opaque(kImage, false);
  kid.visible(false);
  kid.visible(true);
  kid.redraw(kImage);

  EXPECT_FALSE(tree.top.anyChanged(kBoth));
}

TEST(TabletMarks, frontStartsAtTheTabletAndBackAtTheBottom)
{
  MarkTree tree;

  tree.t.front();
  tree.top.update(kImage);
  EXPECT_TRUE(tree.behind.passes.empty());
  EXPECT_EQ(1u, tree.t.passes.size());
  EXPECT_TRUE(tree.ahead.passes.empty());
  tree.flushAll();

  tree.t.front(); // there already
  EXPECT_FALSE(tree.top.anyChanged(kImage));

  tree.t.back();
  tree.top.update(kImage);
  EXPECT_EQ(Rows({"part 4,4 10x10"}), areas(tree.behind));
  EXPECT_EQ(Rows({"part 0,0 6x6"}), areas(tree.ahead));
  EXPECT_TRUE(tree.t.passes.empty()); // a solid tablet hides all of it now
}

TEST(TabletMarks, mapSetterStartsAtASolidTabletElseAtTheBottom)
{
  MarkTree tree;

  tree.behind.baseMap(tree.behind.baseMap()); // an equal map, too
  tree.top.update(kImage);
  EXPECT_TRUE(tree.top.passes.empty());
  EXPECT_EQ(1u, tree.behind.passes.size());
  EXPECT_EQ(1u, tree.t.passes.size());
  tree.flushAll();

  tree.t.scaleMode(tree.t.scaleMode());
  tree.top.update(kImage);
  EXPECT_EQ(Rows({"part 4,4 10x10"}), areas(tree.behind));
}

TEST(TabletMarks, mapSetterObeysTheFlags)
{
  MarkTree tree;

  tree.t.drawEnabled_.push(false);
  tree.t.baseMap(ccXform<2>::I);
  EXPECT_FALSE(tree.top.anyChanged(kBoth));
  tree.t.drawEnabled_.pop();

  tree.t.redrawLayer_ = kOverlay;
  tree.t.scaleExact({1, 1});
  tree.t.redrawLayer_ = kBoth;
  EXPECT_FALSE(tree.top.anyChanged(kImage));
  EXPECT_TRUE(tree.top.anyChanged(kOverlay));
  tree.flushAll();

  tree.t.overlayRepaint_.push(false);
  tree.t.scaleExact({1, 1});
  EXPECT_TRUE(tree.top.anyChanged(kImage));
  EXPECT_FALSE(tree.top.anyChanged(kOverlay));
}

TEST(TabletMarks, updateAndFullDrawAreNarrowedWithoutOverlayRepaint)
{
  MarkTree tree;
  tree.top.update(ccUIRect::inf, kBoth, false);
  tree.t.overlayRepaint_.push(false);

  tree.t.update(kBoth);
  EXPECT_FALSE(tree.top.anyChanged(kImage));
  EXPECT_TRUE(tree.top.anyChanged(kOverlay));
  tree.t.passes.clear();

  tree.t.fullDraw(kBoth);
  ASSERT_EQ(1u, tree.t.passes.size());
  EXPECT_EQ(kImage, tree.t.passes[0].layer);
}

TEST(TabletMarks, redrawOfAnUnsolidTabletRepaintsItsPelsFromTheBottom)
{
  MarkTree tree;
  tree.t.face = [](TestTablet&) {}; // the face goes off

  tree.t.redraw(kImage);
  EXPECT_EQ(Rows({"ggg"}), tree.imagePicture({9, 10, 3, 1}));
  tree.top.update(kImage);

  EXPECT_EQ(Rows({"rrr"}), tree.imagePicture({9, 10, 3, 1}));
  EXPECT_EQ(Rows({"part 5,6 3x4"}), areas(tree.behind));
}

TEST(TabletMarks, losingOpacityRepaintsFromTheBottom)
{
  MarkTree tree;

  tree.behind.opaque(kImage, false);
  tree.top.update(kImage);
  ASSERT_EQ(1u, tree.top.passes.size());
  EXPECT_EQ("part 4,4 20x20", areas(tree.top)[0]);
  tree.flushAll();

  tree.t.opaque(kImage, true);
  EXPECT_FALSE(tree.top.anyChanged(kImage));
}

TEST(TabletMarks, directDrawingBringsBackWhatLiesInFrontIfWanted)
{
  MarkTree tree;

  tree.behind.set(ccUIRect(4, 4, 8, 8), ccColor::yellowColor(), kImage);
  tree.flushAll();
  EXPECT_EQ(Rows({"yyyyyyyy"}), tree.imagePicture({8, 10, 8, 1}));

  tree.behind.layerRepaint_.push(true);
  tree.behind.set(ccUIRect(4, 4, 8, 8), ccColor::yellowColor(), kImage);
  tree.top.update(kImage);

  EXPECT_TRUE(tree.behind.passes.empty());
  EXPECT_EQ(Rows({"part 0,0 8x8"}), areas(tree.t));
  EXPECT_EQ(Rows({"ygggyyyy"}), tree.imagePicture({8, 10, 8, 1}));
}

TEST(TabletMarks, scopeMarksEverything)
{
  MarkTree tree;
  tree.top.setScope(kImage, &tree.image, false);
  EXPECT_FALSE(tree.top.anyChanged(kOverlay));
  tree.image.poison(1);

  tree.top.update(kImage);

  EXPECT_EQ(1u, tree.top.passes.size());
  EXPECT_FALSE(tree.top.passes[0].inArea);
  EXPECT_EQ(Rows({"....rrrr"}), tree.imagePicture({0, 5, 8, 1}));
}

TEST(TabletMarks, onlyTheUsedLayerOfAOneScopeTreeKeepsMarks)
{
  MemoryScope image({10, 10});
  TestTablet one(&image, nullptr);
  one.update(ccUIRect::inf, kBoth, false);
  EXPECT_TRUE(one.anyChanged(kImage));
  EXPECT_FALSE(one.anyChanged(kOverlay));

  TestTablet none(nullptr, nullptr);
  none.size({10, 10});
  none.update(kBoth);
  none.passes.clear();
  none.update(ccUIRect::inf, kBoth, false);
  EXPECT_TRUE(none.anyChanged(kOverlay));
  none.update(kBoth);
  EXPECT_EQ(2u, none.passes.size());
}

TEST(TabletMarks, containedMarkIsDroppedAndALongListUnites)
{
  MarkTree tree;
  tree.top.update(ccUIRect(0, 0, 3, 3), kImage, false);
  tree.top.update(ccUIRect(0, 0, 30, 3), kImage, false);
  tree.top.update(ccUIRect(5, 1, 2, 2), kImage, false);
  tree.top.update(kImage);
  EXPECT_EQ(Rows({"part 0,0 30x3"}), areas(tree.top));
  tree.flushAll();

  for (long i = 0; i < 8; ++i)
    tree.top.update(ccUIRect(4 * i, 0, 1, 1), kImage, false);
  tree.top.update(ccUIRect(29, 0, 1, 1), kImage, false); // nearest to the one at 28
  tree.top.update(kImage);

  EXPECT_EQ(8u, tree.top.passes.size());
  EXPECT_EQ("part 28,0 2x1", areas(tree.top).back());
}

TEST(TabletMarks, dyingTabletsMarksStartAtTheBottom)
{
  MarkTree tree;
  {
    TestTablet pane(tree.top, {20, 20, 6, 6});
    TestTablet kid(pane, {0, 0, 6, 6});
    TestTablet other(tree.top, {0, 0, 1, 1});
    kid.face = plainFace(ccColor::yellowColor());
    kid.redraw(kImage);
    tree.flushAll();
    ASSERT_EQ(Rows({"yyyyyy"}), tree.imagePicture({20, 23, 6, 1}));
    kid.baseMap(ccXform<2>::I); // names the kid
    pane.front();               // names the pane
  }
  tree.top.update(kImage);

  EXPECT_EQ(Rows({"rrrr.."}), tree.imagePicture({20, 23, 6, 1}));
}

TEST(TabletMarks, markOfATabletHiddenOrDisabledSinceIsSkipped)
{
  MarkTree tree;
  TestTablet kid(tree.t, {0, 0, 5, 5});
  kid.front();
  kid.visible(false);
  kid.visible(true);
  tree.t.drawEnabled_.push(false);
  tree.top.update(kImage);
  EXPECT_TRUE(kid.passes.empty());
  EXPECT_TRUE(tree.t.passes.empty());
  EXPECT_EQ(1u, tree.ahead.passes.size()); // but what lies in front returns
}

TEST(TabletMarks, hidingForgetsThePels)
{
  MarkTree tree;
  tree.t.visible(false);
  tree.flushAll();
  tree.t.face = [](TestTablet&) {};
  tree.t.visible(true);
  tree.flushAll();

  tree.t.visible(false);

  EXPECT_FALSE(tree.top.anyChanged(kImage));
}

TEST(TabletMarks, repaintFromTheBottomForgetsFormerPels)
{
  MarkTree tree;
  tree.t.face = spotFace({7, 7, 2, 1}, ccColor::greenColor());
  tree.top.update(ccUIRect::inf, kImage, true);
  tree.flushAll();

  tree.t.visible(false);
  tree.top.update(kImage);

  EXPECT_EQ(Rows({"part 11,11 2x1"}), areas(tree.behind));
}

// ---- Coverage

TEST(TabletCoverage, opaqueTabletThatLeavesPelsOpenIsPaintedUnder)
{
  TestTree tree;
  TestTablet kid(tree.top, {2, 2, 6, 4});
  kid.face = [](TestTablet& t) {
    if (t.wants(kImage))
      t.set(ccUIRect(0, 0, 6, 3), ccColor::redColor(), kImage); // the last row stays open
  };
  kid.opaque(kImage, true);
  tree.top.update(ccUIRect::inf, kImage, false);
  tree.flush();

  EXPECT_EQ(Rows({"rrrrrr", "......"}), tree.imagePicture({2, 4, 6, 2}));
  tree.top.update(ccUIRect(3, 3, 2, 2), kImage, true);
  EXPECT_EQ(1u, tree.top.passes.size());
}

TEST(TabletCoverage, ringAndInnerFillsProveIt)
{
  TestTree tree;
  TestTablet kid(tree.top, {2, 2, 8, 6});
  bool whole = true;
  kid.face = [&](TestTablet& t) {
    if (!t.wants(kImage))
      return;
    t.outline3D({0, 0, 8, 6}, ccColor::whiteColor(), ccColor::greenColor(), 2, kImage);
    t.set(ccUIRect(2, 2, whole ? 4 : 3, 2), ccColor::redColor(), kImage);
  };
  kid.opaque(kImage, true);
  kid.redraw(kImage);
  tree.flush();
  tree.top.update(ccUIRect(3, 3, 2, 2), kImage, true);
  EXPECT_TRUE(tree.top.passes.empty());

  whole = false;
  kid.redraw(kImage);
  tree.flush();
  tree.top.update(ccUIRect(3, 3, 2, 2), kImage, true);
  EXPECT_EQ(1u, tree.top.passes.size());
  EXPECT_EQ(Rows({"rrr."}), tree.imagePicture({4, 4, 4, 1})); // the open column shows the ground again
}

TEST(TabletCoverage, hiddenTabletsProofEnds)
{
  TestTree tree;
  TestTablet kid(tree.top, {2, 2, 6, 4});
  kid.face = plainFace(ccColor::redColor());
  kid.redraw(kImage);
  kid.visible(false);
  kid.face = spotFace({0, 0, 1, 1}, ccColor::greenColor());
  kid.visible(true);
  tree.flush();

  EXPECT_EQ(Rows({".g......"}), tree.imagePicture({1, 2, 8, 1}));
  tree.top.update(ccUIRect(2, 2, 6, 4), kImage, true);
  EXPECT_EQ(Rows({".g......"}), tree.imagePicture({1, 2, 8, 1}));
}

TEST(TabletCoverage, partialPassThatPaintsItsAreaKeepsTheProof)
{
  TestTree tree;
  TestTablet kid(tree.top, {2, 2, 8, 6});
  kid.face = [](TestTablet& t) {
    if (t.wants(kImage))
      t.set(t.activeScope(kImage), ccColor::redColor(), kImage);
  };
  kid.opaque(kImage, true);
  kid.redraw(kImage);
  tree.flush();

  tree.top.update(ccUIRect(3, 3, 2, 2), kImage, true);
  tree.top.update(ccUIRect(4, 4, 2, 2), kImage, true);

  EXPECT_TRUE(tree.top.passes.empty());
}

TEST(TabletCoverage, proofLostInARepaintBringsTheGroundBack)
{
  TestTree tree;
  TestTablet kid(tree.top, {2, 2, 6, 4});
  kid.face = plainFace(ccColor::redColor());
  kid.redraw(kImage);
  tree.flush();

  kid.face = spotFace({0, 0, 1, 1}, ccColor::greenColor());
  tree.top.update(ccUIRect::inf, kImage, true);
  tree.top.update(kImage);

  EXPECT_EQ(Rows({".g......"}), tree.imagePicture({1, 2, 8, 1}));
}

TEST(TabletCoverage, proofLostInAFullDrawBringsTheGroundBack)
{
  TestTree tree;
  TestTablet display(tree.top, {0, 0, 12, 8});
  TestTablet kid(display, {2, 2, 6, 4});
  display.face = plainFace(ccColor::redColor());
  kid.face = plainFace(ccColor::greenColor());
  display.fullDraw(kImage);
  tree.flush();
  display.fullDraw(kImage);
  EXPECT_FALSE(tree.top.passes.size());

  kid.face = spotFace({0, 0, 1, 1}, ccColor::whiteColor());
  display.fullDraw(kImage);
  tree.top.update(kImage);

  EXPECT_EQ(Rows({"rrwrrrrr"}), tree.imagePicture({0, 2, 8, 1}));
}

TEST(TabletCoverage, grownTabletIsUnproven)
{
  TestTree tree;
  TestTablet kid(tree.top, {2, 2, 4, 2});
  kid.face = spotFace({0, 0, 4, 2}, ccColor::redColor());
  kid.opaque(kImage, true);
  kid.redraw(kImage);
  tree.flush();

  kid.size({8, 2});
  tree.top.face = plainFace(ccColor::yellowColor());
  tree.top.redraw(kImage);

  EXPECT_EQ(Rows({"yyrrrryyyyyy"}), tree.imagePicture({0, 2, 12, 1}));
}

TEST(TabletCoverage, widerScopeLeavesEndlessTabletsUnproven)
{
  MemoryScope narrow({20, 10}), wide({40, 10});
  TestTablet top(&narrow, nullptr);
  top.size({40, 10});
  TestTablet plane(top, ccUIRect::firstQuad);
  top.face = plainFace(ccColor::blueColor());
  plane.face = [](TestTablet& t) { t.set(t.currentScope(kImage), ccColor::redColor(), kImage); };
  plane.opaque(kImage, true);
  top.update(ccUIRect::inf, kImage, true);

  top.setScope(kImage, &wide, false);
  top.redraw(kImage);

  EXPECT_EQ(wide.value(ccColor::redColor()), wide.pel(30, 5));
}

// ---- Regions

TEST(TabletRegion, directDrawingStaysBehindOpaqueTablets)
{
  TestTree tree;
  TestTablet behind(tree.top, {0, 0, 12, 3});
  TestTablet opaque(tree.top, {2, 0, 3, 3}), clear(tree.top, {7, 0, 3, 3});
  opaque.opaque(kImage, true); // says so, though it has not painted
  tree.flush();

  behind.set(ccUIRect(0, 0, 12, 1), ccColor::redColor(), kImage);

  EXPECT_EQ(Rows({"rr...rrrrrrr"}), tree.imagePicture({0, 0, 12, 1}));
}

TEST(TabletRegion, kidsAreInFrontOfTheirParent)
{
  TestTree tree;
  TestTablet parent(tree.top, {0, 0, 12, 3});
  TestTablet kid(parent, {2, 0, 3, 3});
  kid.opaque(kImage, true);

  parent.set(ccUIRect(0, 0, 12, 1), ccColor::redColor(), kImage);

  EXPECT_EQ(Rows({"rr...rrrrrrr"}), tree.imagePicture({0, 0, 12, 1}));
}

TEST(TabletRegion, opacityCountsOnItsLayerOnly)
{
  TestTree tree;
  TestTablet behind(tree.top, {0, 0, 6, 3});
  TestTablet front(tree.top, {2, 0, 2, 3});
  front.opaque(kOverlay, true);

  behind.set(ccUIRect(0, 0, 6, 1), ccColor::redColor(), kBoth);

  EXPECT_EQ(Rows({"rrrrrr"}), tree.imagePicture({0, 0, 6, 1}));
  EXPECT_EQ(Rows({"rr--rr"}), tree.overlayPicture({0, 0, 6, 1}));
}

TEST(TabletRegion, hiddenTabletsNeitherDrawNorCover)
{
  TestTree tree;
  TestTablet behind(tree.top, {0, 0, 6, 3});
  TestTablet front(tree.top, {2, 0, 2, 3});
  front.opaque(kImage, true);
  front.visible(false);

  front.set(ccUIRect(0, 0, 2, 1), ccColor::greenColor(), kImage);
  EXPECT_EQ(Rows({"......"}), tree.imagePicture({0, 0, 6, 1}));
  behind.set(ccUIRect(0, 0, 6, 1), ccColor::redColor(), kImage);
  EXPECT_EQ(Rows({"rrrrrr"}), tree.imagePicture({0, 0, 6, 1}));
}

TEST(TabletRegion, drawingIsCutByAllAncestors)
{
  TestTree tree;
  TestTablet parent(tree.top, {2, 0, 4, 2});
  TestTablet kid(parent, {-1, -1, 20, 20});

  kid.set(ccColor::redColor(), kImage);

  EXPECT_EQ(Rows({"..rrrr..", "..rrrr..", "........"}), tree.imagePicture({0, 0, 8, 3}));
}

TEST(TabletRegion, windowsAreReusedBeyondSixtyFour)
{
  TestTree tree;
  ccPelBuffer<unsigned char> pels(2, 2);
  for (long i = 0; i < 4; ++i)
    pels.setPel(i % 2, i / 2, 200);
  TestTablet kid(tree.top, {0, 0, 1, 1});
  for (long y = 0; y < 10; ++y)
    for (long x = 0; x < 10; ++x) {
      kid.scopeRect({x, y, 1, 1});
      kid.draw(pels, ccPoint(), false, 0, false, kImage);
    }

  EXPECT_EQ(64, tree.image.calls("createChildScope"));
  for (long y = 0; y < 11; ++y)
    for (long x = 0; x < 11; ++x)
      ASSERT_EQ(x < 10 && y < 10, tree.image.rgb(x, y).r == 200) << x << "," << y;
}
