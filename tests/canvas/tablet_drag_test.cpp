#include "geometry/lines.h"
#include "tests/canvas/tablet_fixture.h"

#include <gtest/gtest.h>

namespace {

// Two solid forms on the top, and the steps of a drag on both layers.
struct DragTree : TestTree {
  TestTablet a{top, ccUIRect(2, 2, 6, 6)};
  TestTablet b{top, ccUIRect(12, 2, 6, 6)};

  DragTree()
  {
    a.face = plainFace(ccColor::redColor());
    b.face = plainFace(ccColor::greenColor());
    top.update(ccUIRect::inf, kImage, false);
    flush();
  }
  void begin(ccUITablet& t)
  {
    t.dragStart(kImage);
    t.dragStart(kOverlay);
  }
  void animateOn(ccUITablet& t)
  {
    t.lockScreenUpdatesPush(true, kBoth);
    for (ccUITablet::Layers l : {kImage, kOverlay}) {
      t.dragErase(l);
      t.dragAnimate(true, l);
    }
  }
  void animateOff(ccUITablet& t)
  {
    for (ccUITablet::Layers l : {kImage, kOverlay})
      t.dragAnimate(false, l);
    t.lockScreenUpdatesPop(kBoth);
  }
  void stop(ccUITablet& t)
  {
    t.lockScreenUpdatesPush(true, kBoth);
    for (ccUITablet::Layers l : {kImage, kOverlay}) {
      t.dragErase(l);
      t.dragStop(l);
    }
    t.lockScreenUpdatesPop(kBoth);
  }
  Rows screenRow(long y)
  {
    std::string row;
    for (long x = 0; x < 20; ++x) {
      std::uint32_t const v = image.screenPel(x, y);
      row += v == image.value(ccColor::redColor())     ? 'r'
             : v == image.value(ccColor::greenColor()) ? 'g'
             : v == image.value(ccColor::whiteColor()) ? 'w'
             : v == image.value(ccColor::blueColor())  ? '.'
                                                       : '?';
    }
    return {row};
  }
};

} // namespace

TEST(TabletDrag, outlineOfAFormCrossesItsSiblingsAndGoesWithoutTrace)
{
  DragTree tree;
  std::vector<std::uint32_t> const before = tree.image.screen();
  tree.begin(tree.a);
  tree.animateOn(tree.a);
  tree.top.outline(ccUIRect(6, 4, 10, 3), ccColor::whiteColor(), 1, kImage);
  tree.animateOff(tree.a);
  EXPECT_EQ(Rows({"..rrrrwwwwwwwwwwgg.."}), tree.screenRow(4));
  EXPECT_EQ(Rows({"..rrrrwr....gggwgg.."}), tree.screenRow(5));

  tree.animateOn(tree.a);
  tree.top.outline(ccUIRect(7, 5, 10, 3), ccColor::whiteColor(), 1, kImage);
  tree.animateOff(tree.a);
  EXPECT_EQ(Rows({"..rrrrrr....gggggg.."}), tree.screenRow(4));

  tree.stop(tree.a);
  EXPECT_EQ(before, tree.image.screen());
  EXPECT_FALSE(tree.image.isDragging());
}

TEST(TabletDrag, ghostStaysBehindOpaqueTabletsThatAreNoKids)
{
  DragTree tree;
  TestTablet behind(tree.top, {0, 0, 20, 10});
  behind.back();
  tree.flush();
  tree.begin(behind);
  tree.animateOn(behind);
  behind.set(ccUIRect(0, 4, 20, 1), ccColor::whiteColor(), kImage);
  tree.animateOff(behind);

  EXPECT_EQ(Rows({"wwrrrrrrwwwwggggggww"}), tree.screenRow(4));
}

TEST(TabletDrag, countsAcrossTheTree)
{
  DragTree tree;
  tree.a.dragStart(kImage);
  tree.b.dragStart(kImage);
  EXPECT_EQ(1, tree.image.calls("dragStart"));
  EXPECT_EQ(0, tree.overlay.calls("dragStart"));
  tree.top.dragStop(kImage);
  EXPECT_EQ(0, tree.image.calls("dragStop"));
  tree.b.dragStop(kImage);
  EXPECT_EQ(1, tree.image.calls("dragStop"));
  tree.b.dragStop(kImage);
  EXPECT_EQ(1, tree.image.calls("dragStop"));
}

TEST(TabletDrag, offsetShiftsWhatIsDrawnButNotTheWholeTablet)
{
  DragTree tree;
  TestTablet t(tree.top, {0, 10, 20, 10});
  tree.flush();
  tree.begin(t);
  tree.animateOn(t);
  t.dragDel({3, 1});
  t.dragDel({2, 1}); // absolute, not summed up
  t.set(ccUIRect(1, 1, 2, 1), ccColor::redColor(), kImage);
  t.draw(ccLineSeg(ccPoint(5, 1), ccPoint(7, 1)), ccColor::greenColor(), kImage);
  t.drawStart(ccPoint(9, 1), kImage);
  t.drawTo(ccPoint(11, 1), ccColor::whiteColor(), kImage);
  EXPECT_EQ(Rows({"....................", "...rr..ggg.www......"}), tree.imagePicture({0, 11, 20, 2}));

  t.setComplement(ccUIRect(1, 1, 15, 2), ccColor::yellowColor(), kImage);
  EXPECT_EQ(Rows({"yyyrr..ggg.www....yy"}), tree.imagePicture({0, 12, 20, 1}));
  EXPECT_EQ(Rows({"yyyyyyyyyyyyyyyyyyyy"}), tree.imagePicture({0, 10, 20, 1}));
  EXPECT_EQ(Rows({"...................."}), tree.imagePicture({0, 20, 20, 1}));

  t.dragDel({0, 0});
  t.set(ccUIRect(1, 1, 2, 1), ccColor::cyanColor(), kImage);
  EXPECT_EQ(Rows({"ycc"}), tree.imagePicture({0, 11, 3, 1}));
  tree.animateOff(t);
}

TEST(TabletDrag, endOfTheAnimationClearsTheOffset)
{
  DragTree tree;
  TestTablet t(tree.top, {0, 10, 20, 10});
  tree.flush();
  tree.begin(t);
  tree.animateOn(t);
  t.dragDel({5, 5});
  tree.animateOff(t);

  tree.animateOn(t);
  t.set(ccUIRect(1, 1, 2, 1), ccColor::redColor(), kImage);
  tree.animateOff(t);
  tree.stop(t);
  EXPECT_EQ(ccUIRect(0, 0, 20, 10), t.activeScope(kImage));

  t.dragDel({5, 5}); // no animation: no shift
  t.set(ccUIRect(1, 3, 2, 1), ccColor::redColor(), kImage);
  EXPECT_EQ(Rows({".rr."}), tree.imagePicture({0, 13, 4, 1}));
}

TEST(TabletDrag, ghostLeavesModifiedAndMarksAlone)
{
  DragTree tree;
  TestTablet t(tree.top, {0, 10, 20, 10});
  t.layerRepaint_.push(true);
  tree.flush();
  tree.begin(t);
  tree.animateOn(t);
  t.set(ccUIRect(1, 1, 2, 1), ccColor::redColor(), kImage);
  tree.animateOff(t);
  tree.top.clearAnyChanged(kImage);
  EXPECT_FALSE(tree.top.anyChanged(kImage));
  t.visible(false);
  EXPECT_FALSE(tree.top.anyChanged(kImage));
}

TEST(TabletDrag, passesDuringAnAnimationDrawAtRest)
{
  DragTree tree;
  TestTablet t(tree.top, {0, 10, 20, 10});
  t.face = spotFace({1, 1, 2, 1}, ccColor::redColor());
  tree.flush();
  tree.begin(t);
  tree.animateOn(t);
  t.dragDel({4, 0});
  t.redraw(kImage);
  EXPECT_EQ(Rows({".rr....."}), tree.imagePicture({0, 11, 8, 1}));
  tree.animateOff(t);
}

TEST(TabletDrag, whatItsStartHidesGoesWithTheFirstStep)
{
  DragTree tree;
  tree.begin(tree.a);
  tree.b.visible(false);
  EXPECT_EQ(Rows({"..rrrrrr....gggggg.."}), tree.screenRow(4));

  tree.animateOn(tree.a);
  tree.animateOff(tree.a);
  EXPECT_EQ(Rows({"..rrrrrr............"}), tree.screenRow(4));

  tree.b.visible(true); // after the first step marks wait for the end
  tree.animateOn(tree.a);
  tree.animateOff(tree.a);
  EXPECT_EQ(Rows({"..rrrrrr............"}), tree.screenRow(4));
  tree.stop(tree.a);
  tree.top.update(kBoth);
  EXPECT_EQ(Rows({"..rrrrrr....gggggg.."}), tree.screenRow(4));
}

TEST(TabletDrag, fullDrawAskedForInAnAnimationComesWithTheNextStep)
{
  DragTree tree;
  tree.begin(tree.a);
  tree.animateOn(tree.a);
  tree.animateOff(tree.a);
  tree.animateOn(tree.a);
  tree.b.face = [&](TestTablet& t) {
    t.set(ccColor::greenColor(), kImage);
    tree.a.face = plainFace(ccColor::whiteColor());
    tree.a.fullDraw(kImage);
  };
  tree.b.redraw(kImage);
  EXPECT_EQ(Rows({"rrrrrr"}), tree.imagePicture({2, 4, 6, 1}));
  tree.b.face = plainFace(ccColor::greenColor());
  tree.animateOff(tree.a);

  tree.animateOn(tree.a);
  tree.animateOff(tree.a);
  EXPECT_EQ(Rows({"..wwwwww....gggggg.."}), tree.screenRow(4));
}

TEST(TabletDrag, newScopeJoinsARunningDrag)
{
  DragTree tree;
  MemoryScope fresh({40, 30});
  tree.begin(tree.a);

  tree.top.setScope(kImage, &fresh, false);

  EXPECT_TRUE(fresh.isDragging());
  tree.stop(tree.a);
  EXPECT_FALSE(fresh.isDragging());
}
