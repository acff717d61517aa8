#include "canvas/format.h"
#include "canvas/rle_buffer.h"
#include "geometry/lines.h"
#include "tests/canvas/tablet_fixture.h"

#include <gtest/gtest.h>

namespace {

struct SketchTree : TestTree {
  TestTablet t{top, ccUIRect(2, 1, 20, 12)};
  ccUITablet recorder;
  Rows seen(long w, long h) const { return imagePicture({2, 1, w, h}); }
};

} // namespace

TEST(Sketch, sharesCommandsByValue)
{
  ccUITablet recorder;
  EXPECT_TRUE(recorder.sketch().isEmpty());
  recorder.set(ccUIRect(0, 0, 1, 1), ccColor::redColor(), kImage);
  ccUISketch copy = recorder.sketch();
  EXPECT_EQ(1u, copy.ops_seq().size());

  copy += copy;
  EXPECT_EQ(2u, copy.ops_seq().size());
  EXPECT_EQ(1u, recorder.sketch().ops_seq().size());
  copy += recorder.sketch();
  EXPECT_EQ(3u, copy.ops_seq().size());
  EXPECT_EQ(copy.ops_seq()[0], copy.ops_seq()[2]);
  copy.erase();
  EXPECT_TRUE(copy.isEmpty());
  EXPECT_FALSE(recorder.sketch().isEmpty());
}

TEST(Sketch, replaysEachCommandInOrder)
{
  SketchTree tree;
  tree.recorder.set(ccUIRect(0, 0, 8, 6), ccColor::redColor(), kImage);
  tree.recorder.outline(ccUIRect(0, 0, 8, 6), ccColor::greenColor(), 1, kImage);
  tree.recorder.drawStart(ccPoint(2, 2), kImage);
  tree.recorder.drawTo(ccPoint(4, 2), ccColor::whiteColor(), kImage);
  tree.recorder.drawToRelPels(0, 2, ccColor::yellowColor(), kImage);
  tree.recorder.draw(ccLineSeg(ccPoint(6, 1), ccPoint(6, 4)), ccColor::cyanColor(), kImage);
  EXPECT_EQ(6u, tree.recorder.sketch().ops_seq().size());

  tree.t.draw(tree.recorder.sketch(), ccPoint(), kImage);

  EXPECT_EQ(Rows({"gggggggg.", "grrrrrcg.", "grwwyrcg.", "grrryrcg.", "grrryrcg.", "gggggggg.", "........."}),
            tree.seen(9, 7));
}

TEST(Sketch, pelsIconsAndTextAreKeptByValue)
{
  SketchTree tree;
  {
    ccPelBuffer<ccPackedRGB32Pel> pels(2, 1);
    pels.setPel(0, 0, ccPackedRGB32Pel(255, 0, 0));
    pels.setPel(1, 0, ccPackedRGB32Pel(0, 255, 0));
    tree.recorder.draw(pels, ccPoint(1, 0), false, ccPackedRGB32Pel(), kImage);
    unsigned char const icon[] = {255, 255};
    std::vector<unsigned char> map(256, 255);
    tree.recorder.draw(ccRLEBuffer::fromPels(icon, 2, 1, 2), ccPoint(5, 0), map, false, 0, true, kImage);
    tree.recorder.draw(std::string("a"), ccPoint(8, 0), ccColor::yellowColor(), ccColor::passColor(), ccUIFormat(),
                       kImage);
  }
  tree.t.draw(tree.recorder.sketch(), ccPoint(), kImage);

  EXPECT_EQ(Rows({".rg..ww.......", "........yyyyy."}), tree.seen(14, 2));
}

TEST(Sketch, offsetsMapAndAddUp)
{
  SketchTree tree;
  ccUITablet inner;
  inner.draw(ccLineSeg(ccPoint(0, 0), ccPoint(1, 0)), ccColor::redColor(), kImage);
  inner.set(ccUIRect(0, 1, 2, 1), ccColor::greenColor(), kImage); // pels, which don't scale
  tree.recorder.draw(inner.sketch(), ccPoint(1, 0), kImage);
  tree.t.scaleExact({2, 2});

  tree.t.draw(tree.recorder.sketch(), ccPoint(2, 1), kImage);

  EXPECT_EQ(Rows({".........", ".........", "......rrr", "......gg."}), tree.seen(9, 4));
  tree.t.draw(inner.sketch(), ccPoint(), kImage);
  EXPECT_EQ(Rows({"rrr......", "gg......."}), tree.seen(9, 2));
}

TEST(Sketch, commandsKeepTheirLayersCutWithTheReplays)
{
  SketchTree tree;
  tree.recorder.set(ccUIRect(0, 0, 1, 1), ccColor::redColor(), kImage);
  tree.recorder.set(ccUIRect(1, 0, 1, 1), ccColor::redColor(), kOverlay);
  tree.recorder.set(ccUIRect(2, 0, 1, 1), ccColor::redColor(), kBoth);

  tree.t.draw(tree.recorder.sketch(), ccPoint(), kOverlay);
  EXPECT_EQ(Rows({"..."}), tree.seen(3, 1));
  EXPECT_EQ(Rows({"-rr"}), tree.overlayPicture({2, 1, 3, 1}));
  tree.t.draw(tree.recorder.sketch(), ccPoint(), kBoth);
  EXPECT_EQ(Rows({"r.r"}), tree.seen(3, 1));
  EXPECT_EQ(Rows({"-rr"}), tree.overlayPicture({2, 1, 3, 1}));
}

TEST(Sketch, clipAroundOneSketchClipsItAloneAtEveryRedrawAndZoom)
{
  SketchTree tree;
  ccUITablet clip, lift, content, after;
  clip.drawClipRect(ccRect(ccPoint(1, 0), ccVector<2>(2, 1)), kBoth);
  lift.drawClipRect(ccRect(), kBoth);
  content.set(ccUIRect(0, 0, 10, 6), ccColor::redColor(), kImage);
  after.set(ccUIRect(8, 0, 1, 1), ccColor::greenColor(), kImage);
  for (ccUITablet* part : {&clip, &content, &lift, &after}) {
    tree.t.sketch() += part->sketch();
    tree.t.draw(part->sketch(), ccPoint(), kBoth);
  }
  EXPECT_EQ(Rows({".rr.....g.", ".........."}), tree.seen(10, 2));

  tree.t.set(ccUIRect(0, 0, 20, 12), ccColor::blueColor(), kImage);
  tree.t.redraw(kImage);
  EXPECT_EQ(Rows({".rr.....g.", ".........."}), tree.seen(10, 2));

  tree.t.scaleExact({3, 3});
  tree.t.set(ccUIRect(0, 0, 20, 12), ccColor::blueColor(), kImage);
  tree.t.redraw(kImage);
  EXPECT_EQ(Rows({"...rrrrrg.", "...rrrrrr.", "...rrrrrr.", ".........."}), tree.seen(10, 4));
}

TEST(Sketch, onlyDefaultMadeTabletsWithoutAParentRecord)
{
  SketchTree tree;
  tree.recorder.set(ccUIRect(0, 0, 1, 1), ccColor::redColor(), kImage);
  tree.recorder.opaque(kImage, true); // states are not drawn
  tree.recorder.visible(false);
  tree.recorder.visible(true);
  EXPECT_EQ(1u, tree.recorder.sketch().ops_seq().size());

  tree.recorder.setParent(tree.t, {0, 0, 4, 4});
  tree.recorder.set(ccUIRect(0, 0, 2, 1), ccColor::redColor(), kImage);
  EXPECT_EQ(1u, tree.recorder.sketch().ops_seq().size());
  EXPECT_EQ(Rows({"rr.."}), tree.seen(4, 1));

  MemoryScope image({5, 5});
  ccUITablet second;
  second.setScope(kImage, &image, false);
  second.set(ccUIRect(0, 0, 2, 1), ccColor::redColor(), kImage);
  EXPECT_TRUE(second.sketch().isEmpty());
  TestTablet orphan{ccUIRect(0, 0, 5, 5)};
  orphan.drawStart(ccPoint(), kImage);
  EXPECT_TRUE(orphan.sketch().isEmpty());
}

TEST(Sketch, ownSketchIsDrawnAtEachRedraw)
{
  SketchTree tree;
  tree.recorder.set(ccUIRect(1, 1, 2, 1), ccColor::redColor(), kImage);
  tree.t.sketch() += tree.recorder.sketch();
  EXPECT_EQ(Rows({"...."}), tree.imagePicture({2, 2, 4, 1}));
  tree.top.update(ccUIRect::inf, kImage, false);
  tree.top.update(kImage);
  EXPECT_EQ(Rows({".rr."}), tree.imagePicture({2, 2, 4, 1}));
}

TEST(Sketch, fillsEraseComplementAndRingsAreRecorded)
{
  SketchTree tree;
  tree.recorder.set(ccColor::redColor(), kOverlay);
  tree.recorder.setComplement(ccUIRect(1, 1, 3, 2), ccColor::greenColor(), kOverlay);
  tree.recorder.outline3D(ccUIRect(0, 0, 5, 4), ccColor::whiteColor(), ccColor::yellowColor(), 1, kOverlay);
  tree.recorder.erase(ccUIRect(2, 1, 1, 1), kOverlay);
  tree.recorder.drawPointIcon(ccPoint(12, 6), ccGraphicProps(ccColor::redColor(), 1, ceSolidPen, false), kOverlay);
  tree.recorder.draw(ccLine(ccVector<2>(1, 0), ccPoint(0, 11)), ccColor::cyanColor(), kOverlay);
  tree.t.face = [&](TestTablet& t) { t.draw(tree.recorder.sketch(), ccPoint(), kBoth); };

  tree.t.redraw(kOverlay);

  EXPECT_TRUE(tree.t.opaque(kOverlay));
  EXPECT_EQ(Rows({"wwwwygg", "wr-rygg", "wrrrygg", "yyyyygg"}), tree.overlayPicture({2, 1, 7, 4}));
  EXPECT_EQ(Rows({"grrrrrrrrrg"}), tree.overlayPicture({9, 7, 11, 1}));
  EXPECT_EQ(Rows({"cccc"}), tree.overlayPicture({2, 12, 4, 1}));
}
