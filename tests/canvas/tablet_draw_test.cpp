#include "canvas/format.h"
#include "canvas/rle_buffer.h"
#include "geometry/lines.h"
#include "tests/canvas/tablet_fixture.h"

#include <gtest/gtest.h>

namespace {

struct DrawTree : TestTree {
  TestTablet t{top, ccUIRect(2, 1, 20, 12)};
  Rows seen(long w, long h) const { return imagePicture({2, 1, w, h}); }
};

ccGraphicProps pen(ccColor const& c, long width = 1) { return ccGraphicProps(c, width, ceSolidPen, false); }

ccPelBuffer<unsigned char> ramp(long w, long h)
{
  ccPelBuffer<unsigned char> b(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      b.setPel(x, y, static_cast<unsigned char>(50 + 16 * y + x));
  return b;
}

} // namespace

// ---- Fills

TEST(TabletDraw, setFillsTheTabletAndSetsOpacity)
{
  DrawTree tree;
  tree.t.set(ccColor::redColor(), kImage);
  EXPECT_TRUE(tree.t.opaque(kImage));
  EXPECT_FALSE(tree.t.opaque(kOverlay));
  EXPECT_FALSE(tree.t.opaque(kBoth));
  EXPECT_EQ(Rows({".rr"}), tree.imagePicture({1, 1, 3, 1}));
  EXPECT_EQ(Rows({"rr."}), tree.imagePicture({20, 12, 3, 1}));

  tree.t.set(ccColor::redColor(), kOverlay);
  EXPECT_TRUE(tree.t.opaque(kBoth));
  tree.t.set(ccColor::passColor(), kOverlay);
  EXPECT_FALSE(tree.t.opaque(kOverlay));
  EXPECT_EQ(Rows({"----"}), tree.overlayPicture({2, 1, 4, 1}));
}

TEST(TabletDraw, passColourDrawsNothingOnTheImageLayer)
{
  DrawTree tree;
  tree.t.set(ccUIRect(0, 0, 4, 1), ccColor::redColor(), kBoth);
  tree.t.set(ccUIRect(1, 0, 2, 1), ccColor::passColor(), kBoth);
  tree.t.draw(ccLineSeg(ccPoint(0, 0), ccPoint(3, 0)), pen(ccColor::passColor()), kImage);
  tree.t.drawTo(ccPoint(3, 0), ccColor::passColor(), kImage);
  tree.t.drawPointIcon(ccPoint(1, 0), pen(ccColor::passColor()), kImage);

  EXPECT_EQ(Rows({"rrrr"}), tree.seen(4, 1));
  EXPECT_EQ(Rows({"r--r"}), tree.overlayPicture({2, 1, 4, 1}));
}

TEST(TabletDraw, complementFillsAllButTheRectangle)
{
  DrawTree tree;
  tree.t.size({6, 4});
  tree.t.setComplement(ccUIRect(2, 1, 3, 2), ccColor::redColor(), kImage);
  EXPECT_EQ(Rows({"rrrrrr.", "rr...r.", "rr...r.", "rrrrrr.", "......."}), tree.seen(7, 5));

  tree.t.setComplement(ccUIRect(-5, -5, 7, 20), ccColor::greenColor(), kImage);
  EXPECT_EQ(Rows({"rrgggg", "rrgggg"}), tree.seen(6, 2));
  tree.t.setComplement(ccUIRect(9, 9, 4, 4), ccColor::whiteColor(), kImage);
  EXPECT_EQ(Rows({"wwwwww"}), tree.seen(6, 1));
}

TEST(TabletDraw, outlineIsARingInside)
{
  DrawTree tree;
  tree.t.outline({0, 0, 6, 5}, ccColor::redColor(), 1, kImage);
  EXPECT_EQ(Rows({"rrrrrr.", "r....r.", "r....r.", "r....r.", "rrrrrr.", "......."}), tree.seen(7, 6));
  tree.t.outline({0, 0, 6, 5}, ccColor::greenColor(), 2, kImage);
  EXPECT_EQ(Rows({"gggggg", "gggggg", "gg..gg", "gggggg", "gggggg"}), tree.seen(6, 5));
  tree.t.outline({0, 0, 6, 5}, ccColor::whiteColor(), 99, kImage);
  EXPECT_EQ(Rows({"wwwwww", "wwwwww", "wwwwww", "wwwwww", "wwwwww", "......"}), tree.seen(6, 6));

  tree.t.outline({0, 0, 6, 5}, ccColor::redColor(), 0, kImage);
  tree.t.outline({0, 0, 6, 5}, ccColor::redColor(), -1, kImage);
  EXPECT_EQ(Rows({"wwwwww"}), tree.seen(6, 1));
}

TEST(TabletDraw, outline3DIsMitredWithShadowAtTheMixedCorners)
{
  DrawTree tree;
  tree.t.outline3D({0, 0, 6, 5}, ccColor::whiteColor(), ccColor::redColor(), 2, kImage);
  EXPECT_EQ(Rows({"wwwwwr", "wwwwrr", "ww..rr", "wrrrrr", "rrrrrr"}), tree.seen(6, 5));

  tree.t.outline3D({8, 0, 3, 3}, ccColor::whiteColor(), ccColor::redColor(), 9, kImage);
  EXPECT_EQ(Rows({"wwr", "wrr", "rrr"}), tree.imagePicture({10, 1, 3, 3}));
}

// ---- Pens and lines

TEST(TabletDraw, penKeepsItsPlaceByLayer)
{
  DrawTree tree;
  tree.t.scaleExact({2, 2});
  tree.t.drawStart(ccPoint(1, 1), kBoth);
  tree.t.drawTo(ccPoint(3, 1), ccColor::redColor(), kImage);
  tree.t.drawTo(ccPoint(1, 2), ccColor::greenColor(), kOverlay);
  tree.t.drawToRelPels(0, 2, ccColor::whiteColor(), kImage);

  EXPECT_EQ(Rows({"........", "..rrrrw.", "......w.", "......w.", "........"}), tree.imagePicture({2, 2, 8, 5}));
  EXPECT_EQ(Rows({"--g-", "--g-", "--g-", "----"}), tree.overlayPicture({2, 3, 4, 4}));
}

TEST(TabletDraw, penMovesThoughNothingIsDrawn)
{
  DrawTree tree;
  tree.t.visible(false);
  tree.t.drawStart(ccPoint(1, 0), kImage);
  tree.t.drawToRelPels(3, 1, ccColor::redColor(), kImage);
  tree.t.visible(true);

  tree.t.drawToRelPels(2, 0, ccColor::redColor(), kImage);

  EXPECT_EQ(Rows({"........", "....rrr."}), tree.seen(8, 2));
}

TEST(TabletDraw, lineSegIsMappedAndClipped)
{
  DrawTree tree;
  tree.t.baseMap(ccXform<2>(1, 1, ccVector<2>(1, 2)));
  tree.t.draw(ccLineSeg(ccPoint(0, 0), ccPoint(4, 0)), ccColor::redColor(), kImage);
  tree.t.draw(ccLineSeg(ccPoint(-50, 2), ccPoint(50, 2)), pen(ccColor::greenColor()), kImage);

  EXPECT_EQ(Rows({"........", "..rrrrr.", "........", ".ggggggg"}), tree.imagePicture({1, 2, 8, 4}));
  EXPECT_EQ(Rows({"gg."}), tree.imagePicture({20, 5, 3, 1})); // the tablet ends at 22
}

TEST(TabletDraw, lineCrossesTheWholeTabletAndNoMore)
{
  DrawTree tree;
  tree.t.draw(ccLine(ccVector<2>(1, 0), ccPoint(1000, 3)), ccColor::redColor(), kImage);
  tree.t.draw(ccLine(ccVector<2>(0, -1), ccPoint(5, 3)), pen(ccColor::greenColor()), kImage);
  tree.t.draw(ccLine(ccVector<2>(1, 0), ccPoint(0, 300)), ccColor::whiteColor(), kImage);

  EXPECT_EQ(Rows({".rrrrrgrrr"}), tree.imagePicture({1, 4, 10, 1}));
  EXPECT_EQ(Rows({"rr."}), tree.imagePicture({20, 4, 3, 1}));
  EXPECT_EQ(Rows({".", "g"}), tree.imagePicture({7, 0, 1, 2}));
  EXPECT_EQ(Rows({"g", "."}), tree.imagePicture({7, 12, 1, 2}));
}

TEST(TabletDraw, lineUnderASingularMapDrawsNothing)
{
  DrawTree tree;
  tree.t.baseMap(ccXform<2>(ccMatrix<2>(0, 0, 0, 0), ccVector<2>(3, 3)));
  tree.flush();
  tree.t.draw(ccLine(ccVector<2>(1, 0), ccPoint(0, 3)), ccColor::redColor(), kImage);
  EXPECT_EQ(0, tree.image.calls("drawTo"));
}

TEST(TabletDraw, pointIconIsACrossWithArmsOfFour)
{
  DrawTree tree;
  tree.t.drawPointIcon(ccPoint(5.4, 4.5), pen(ccColor::redColor()), kImage);

  EXPECT_EQ(Rows({".....r.....", ".....r.....", ".....r.....", ".....r.....", ".rrrrrrrrr.", ".....r....."}),
            tree.imagePicture({2, 2, 11, 6}));
  EXPECT_EQ(Rows({"r", "."}), tree.imagePicture({7, 10, 1, 2}));
  EXPECT_TRUE(ccUITablet::pointIconTouched({4, -4}));
  EXPECT_FALSE(ccUITablet::pointIconTouched({5, 0}));
}

TEST(TabletDraw, iconWithAHalfPelOriginLiesOnItsTouchMap)
{
  // A handle's picture hangs by a drawing origin of n + 0.5 pels where it is touched with an origin of n.
  char const* const map = "|.0.|000|.0.|";
  ccRLEBuffer const icon = ccUITablet::makeIcon(map, {249});
  std::vector<unsigned char> identity(256);
  for (std::size_t i = 0; i < 256; ++i)
    identity[i] = static_cast<unsigned char>(i);
  for (ccPair<long> const& pos : {ccPair<long>(6, 5), ccPair<long>(0, 0), ccPair<long>(-1, -1)})
    for (double const zoom : {1.0, 2.0, 1.0 / 3}) {
      DrawTree tree;
      tree.t.scaleExact({zoom, zoom});
      ccPoint const handle = tree.t.tabletCoords(pos);
      tree.t.draw(icon, handle - ccVector<2>(1.5, 1.5) / zoom, identity, true, 243, true, kImage);

      for (long y = 0; y < 12; ++y)
        for (long x = 0; x < 20; ++x)
          ASSERT_EQ(ccUITablet::iconTouched(map, ccPair<long>(x, y) - pos + ccPair<long>(1, 1), 4),
                    tree.image.pel(2 + x, 1 + y) == tree.image.value(ccColor(249)))
              << x << "," << y << " from " << pos.x() << " at " << zoom;
    }
}

// ---- Pels

TEST(TabletDraw, positionIsSnappedSoThatAllPiecesAgree)
{
  DrawTree tree;
  TestTablet cover(tree.t, {3, 0, 1, 12});
  cover.opaque(kImage, true);
  tree.t.baseMap(ccXform<2>(1, 1, ccVector<2>(0.3, 0.6)));
  tree.t.scaleExact({3, 3});
  ccPelBuffer<unsigned char> const pels = ramp(4, 3);
  tree.t.draw(pels, ccPoint(0, 0), false, 0, false, kImage);

  // D(0,0) = (0.9, 1.8) is pel (1, 2).
  for (long y = 0; y < 9; ++y)
    for (long x = 0; x < 12; ++x)
      if (x != 2) {
        ASSERT_EQ(50 + 16 * (y / 3) + x / 3, tree.image.rgb(2 + 1 + x, 1 + 2 + y).r) << x << "," << y;
      }
  EXPECT_EQ(Rows({"."}), tree.imagePicture({5, 4, 1, 1}));
}

TEST(TabletDraw, maskedPelsOfEachTypeLetTheGroundThrough)
{
  DrawTree tree;
  std::uint32_t const red = tree.image.value(ccColor::redColor());
  ccPelBuffer<ccPackedRGB16Pel> rgb16(2, 1);
  rgb16.setPel(0, 0, ccPackedRGB16Pel(255, 0, 0)), rgb16.setPel(1, 0, ccPackedRGB16Pel(0, 255, 0));
  tree.t.draw(rgb16, ccPoint(0, 0), true, ccPackedRGB16Pel(0, 255, 0), kImage);
  EXPECT_EQ(0xF80000u, tree.image.pel(2, 1) & 0xF8FFFFu);
  EXPECT_EQ(Rows({"."}), tree.imagePicture({3, 1, 1, 1}));

  ccPelBuffer<ccPackedRGB32Pel> rgb32(2, 1);
  rgb32.setPel(0, 0, ccPackedRGB32Pel(255, 0, 0)), rgb32.setPel(1, 0, ccPackedRGB32Pel(0, 255, 0));
  tree.t.draw(rgb32, ccPoint(0, 1), true, ccPackedRGB32Pel(0, 255, 0), kImage);
  EXPECT_EQ(red, tree.image.pel(2, 2));
  EXPECT_EQ(Rows({"."}), tree.imagePicture({3, 2, 1, 1}));

  ccPelBuffer<unsigned short> grey16(2, 1);
  grey16.setPel(0, 0, 200), grey16.setPel(1, 0, 7);
  tree.t.draw(grey16, ccPoint(0, 2), true, 7, kImage);
  EXPECT_NE(Rows({"."}), tree.imagePicture({2, 3, 1, 1}));
  EXPECT_EQ(Rows({"."}), tree.imagePicture({3, 3, 1, 1}));
  EXPECT_EQ(1, tree.image.calls("drawRGB16"));
  EXPECT_EQ(1, tree.image.calls("drawRGB32"));
  EXPECT_EQ(1, tree.image.calls("draw16"));
}

TEST(TabletDraw, unboundPelsDrawNothing)
{
  DrawTree tree;
  tree.t.draw(ccPelBuffer_const<unsigned char>(), ccPoint(), false, 0, false, kImage);
  tree.t.draw(ccRLEBuffer(), ccPoint(), {}, false, 0, false, kImage);
  EXPECT_FALSE(tree.top.anyChanged(kImage));
}

TEST(TabletDraw, iconScalesUnlessToldNotTo)
{
  DrawTree tree;
  unsigned char const pels[] = {249, 250};
  ccRLEBuffer const icon = ccRLEBuffer::fromPels(pels, 2, 1, 2);
  std::vector<unsigned char> identity(256);
  for (std::size_t i = 0; i < 256; ++i)
    identity[i] = static_cast<unsigned char>(i);
  auto const row = [&](long y) {
    std::string s;
    for (long x = 0; x < 5; ++x) {
      std::uint32_t const v = tree.image.pel(2 + x, 1 + y);
      s += v == tree.image.value(ccColor(249)) ? 'r' : v == tree.image.value(ccColor(250)) ? 'g' : '.';
    }
    return s;
  };
  tree.t.scaleExact({2, 2});
  tree.t.draw(icon, ccPoint(0, 0), identity, false, 0, false, kImage);
  EXPECT_EQ("rrgg.", row(0));
  EXPECT_EQ("rrgg.", row(1));
  tree.t.draw(icon, ccPoint(0, 2), identity, false, 0, true, kImage);
  EXPECT_EQ("rg...", row(4));
  EXPECT_EQ(".....", row(5));
  tree.t.scaleExact({0.5, 0.5});
  tree.t.draw(icon, ccPoint(0, 16), identity, false, 0, false, kImage);
  EXPECT_EQ("r....", row(8));
}

// ---- Text

TEST(TabletDraw, textIsNeverScaledAndIsMeasuredInLocalPels)
{
  DrawTree tree;
  tree.t.scaleExact({3, 3});
  ccUIRect clipped;
  ccUIRect const full = tree.t.textRect("abcd", ccPoint(1, 1), ccUIFormat(), clipped, kImage);

  EXPECT_EQ(ccUIRect(3, 3, 4 * MemoryScope::kCellWidth, MemoryScope::kCellHeight), full);
  EXPECT_EQ(ccUIRect(3, 3, 17, 9), clipped); // the tablet is 20 x 12
  EXPECT_EQ(full, tree.t.textRect("abcd", ccPoint(1, 1), ccUIFormat(), kBoth));

  tree.t.draw("ab", ccPoint(1, 0), ccColor::redColor(), ccColor::greenColor(), ccUIFormat(), kImage);
  EXPECT_EQ(Rows({"...gggggggggggg.", "...rrrrrgrrrrrg."}), tree.seen(16, 2));
}

TEST(TabletDraw, textBackgroundMayBePass)
{
  DrawTree tree;
  tree.t.draw("a", ccPoint(0, 0), ccColor::redColor(), ccColor::passColor(), ccUIFormat(), kImage);
  EXPECT_EQ(Rows({".......", "rrrrr.."}), tree.seen(7, 2));
}

TEST(TabletDraw, textMeasuresNullWithoutAScopeOrText)
{
  DrawTree tree;
  ccUIRect clipped(1, 1, 1, 1);
  EXPECT_TRUE(tree.t.textRect("", ccPoint(), ccUIFormat(), clipped, kImage).isNull());
  EXPECT_TRUE(clipped.isNull());
  TestTablet top(nullptr, nullptr);
  EXPECT_TRUE(top.textRect("a", ccPoint(), ccUIFormat(), kImage).isNull());
  TestTablet recorder;
  EXPECT_TRUE(recorder.textRect("a", ccPoint(), ccUIFormat(), kImage).isNull());

  MemoryScope overlay({40, 30}, 32, MemoryScope::overlayPlane);
  TestTablet only(nullptr, &overlay);
  EXPECT_FALSE(only.textRect("a", ccPoint(), ccUIFormat(), kBoth).isNull());
}

// ---- Draw clip

TEST(TabletDraw, clipHoldsUntilTheNextCallAndZooms)
{
  DrawTree tree;
  tree.t.drawClipRect(ccRect(ccPoint(1, 1), ccVector<2>(3, 1)), kImage);
  tree.t.set(ccUIRect(0, 0, 10, 4), ccColor::redColor(), kBoth);
  EXPECT_EQ(Rows({"......", ".rrr..", "......"}), tree.seen(6, 3));
  EXPECT_EQ(Rows({"rrrrrr"}), tree.overlayPicture({2, 1, 6, 1}));

  tree.t.scaleExact({2, 2});
  tree.t.drawClipRect(ccRect(ccPoint(1, 1), ccVector<2>(3, 1)), kImage);
  tree.t.set(ccUIRect(0, 0, 10, 10), ccColor::greenColor(), kImage);
  EXPECT_EQ(Rows({".rrr....", "..gggggg", "..gggggg", "........"}), tree.imagePicture({2, 2, 8, 4}));

  tree.t.drawClipRect(ccRect(ccPoint(7, 7), ccVector<2>()), kImage);
  tree.t.set(ccUIRect(0, 0, 4, 1), ccColor::whiteColor(), kImage);
  EXPECT_EQ(Rows({"wwww.."}), tree.seen(6, 1));
}

TEST(TabletDraw, clipOfLessThanAPelHidesAll)
{
  DrawTree tree;
  tree.t.drawClipRect(ccRect(ccPoint(1, 1), ccVector<2>(0.2, 0.2)), kImage);
  tree.t.set(ccUIRect(0, 0, 10, 4), ccColor::redColor(), kImage);
  EXPECT_FALSE(tree.top.anyChanged(kImage));
}

TEST(TabletDraw, redrawStartsWithoutAClipAndReturnsTheFormerOne)
{
  DrawTree tree;
  tree.t.face = [](TestTablet& t) {
    t.set(ccUIRect(0, 0, 5, 1), ccColor::greenColor(), kImage);
    t.drawClipRect(ccRect(ccPoint(0, 0), ccVector<2>(1, 1)), kImage);
  };
  tree.t.drawClipRect(ccRect(ccPoint(2, 0), ccVector<2>(2, 4)), kImage);
  tree.t.redraw(kImage);
  EXPECT_EQ(Rows({"ggggg."}), tree.seen(6, 1));
  tree.t.set(ccUIRect(0, 0, 6, 1), ccColor::redColor(), kImage);
  EXPECT_EQ(Rows({"ggrrg."}), tree.seen(6, 1));
}

TEST(TabletDraw, clipSetInsideARedrawEndsWithIt)
{
  DrawTree tree;
  tree.t.face = [](TestTablet& t) { t.drawClipRect(ccRect(ccPoint(0, 0), ccVector<2>(1, 1)), kImage); };
  tree.t.redraw(kImage);
  tree.t.set(ccUIRect(0, 0, 3, 1), ccColor::redColor(), kImage);
  EXPECT_EQ(Rows({"rrr."}), tree.seen(4, 1));
}

// ---- Records

TEST(TabletRecord, unitesTheBoxesOfWhatIsDrawn)
{
  DrawTree tree;
  ccUIRect changes[2] = {ccUIRect(50, 50, 1, 1), ccUIRect(60, 60, 1, 1)};
  tree.t.set(ccUIRect(0, 0, 1, 1), ccColor::redColor(), kImage);
  tree.t.recordChanges(true);
  EXPECT_TRUE(tree.t.recordChanges());
  tree.t.set(ccUIRect(2, 2, 3, 3), ccColor::redColor(), kImage);
  tree.t.set(ccUIRect(8, 1, 1, 1), ccColor::redColor(), kBoth);
  tree.t.getChanges(changes, false);

  EXPECT_FALSE(tree.t.recordChanges());
  EXPECT_EQ(ccUIRect(2, 1, 7, 4), changes[0]);
  EXPECT_EQ(ccUIRect(8, 1, 1, 1), changes[1]);

  tree.t.recordChanges(true);
  tree.t.set(ccUIRect(0, 0, 1, 1), ccColor::redColor(), kImage);
  tree.t.getChanges(changes, true);
  EXPECT_EQ(ccUIRect(0, 0, 9, 5), changes[0]);
  EXPECT_EQ(ccUIRect(8, 1, 1, 1), changes[1]);
}

TEST(TabletRecord, oneLayerPassKeepsTheOthersRectangle)
{
  DrawTree tree;
  ccUIRect changes[2] = {ccUIRect(50, 50, 1, 1), ccUIRect(60, 60, 1, 1)};
  tree.t.face = [&](TestTablet& t) {
    t.recordChanges(true);
    t.set(ccUIRect(1, 1, 2, 2), ccColor::redColor(), kBoth);
    t.getChanges(changes, false);
  };
  tree.t.redraw(kImage);
  EXPECT_EQ(ccUIRect(1, 1, 2, 2), changes[0]);
  EXPECT_EQ(ccUIRect(60, 60, 1, 1), changes[1]);
}

TEST(TabletRecord, partialPassDoesNotRecord)
{
  DrawTree tree;
  ccUIRect changes[2] = {ccUIRect(50, 50, 1, 1), ccUIRect(60, 60, 1, 1)};
  tree.t.face = [&](TestTablet& t) { t.set(ccUIRect(1, 1, 2, 2), ccColor::redColor(), kImage); };
  tree.t.recordChanges(true);
  tree.top.update(ccUIRect(3, 2, 2, 2), kImage, true);
  tree.t.getChanges(changes, false);
  EXPECT_TRUE(changes[0].isNull());
}

TEST(TabletRecord, countsWhatIsCoveredOrHiddenOrWithoutAScope)
{
  DrawTree tree;
  TestTablet cover(tree.top, {0, 0, 40, 30});
  cover.opaque(kImage, true);
  ccUIRect changes[2];
  tree.t.recordChanges(true);
  tree.t.set(ccUIRect(1, 1, 2, 2), ccColor::redColor(), kImage);
  tree.t.visible(false);
  tree.t.set(ccUIRect(50, 1, 2, 2), ccColor::redColor(), kImage); // outside, too
  tree.t.getChanges(changes, false);
  EXPECT_EQ(ccUIRect(1, 1, 51, 2), changes[0]);

  MemoryScope image({10, 10});
  TestTablet one(&image, nullptr);
  one.recordChanges(true);
  one.set(ccUIRect(1, 1, 2, 2), ccColor::redColor(), kOverlay);
  one.getChanges(changes, false);
  EXPECT_EQ(ccUIRect(1, 1, 2, 2), changes[1]);
}

TEST(TabletRecord, isCutByTheDrawClip)
{
  DrawTree tree;
  ccUIRect changes[2];
  tree.t.recordChanges(true);
  tree.t.drawClipRect(ccRect(ccPoint(2, 2), ccVector<2>(3, 3)), kImage);
  tree.t.set(ccUIRect(0, 0, 4, 10), ccColor::redColor(), kImage);
  tree.t.getChanges(changes, false);
  EXPECT_EQ(ccUIRect(2, 2, 2, 3), changes[0]);
}

TEST(TabletRecord, boxesOfLinesGrowWithThePen)
{
  // Half a diagonal of the pen rounded up, and 2: 3 for one pel, 6 for five.
  DrawTree tree;
  for (auto const& [width, margin] : {std::pair<long, long>(0, 3), {1, 3}, {5, 6}}) {
    ccUIRect changes[2];
    tree.t.recordChanges(true);
    tree.t.draw(ccLineSeg(ccPoint(8, 7), ccPoint(4, 7)), pen(ccColor::redColor(), width), kImage);
    tree.t.getChanges(changes, false);
    EXPECT_EQ(ccUIRect(4 - margin, 7 - margin, 5 + 2 * margin, 1 + 2 * margin), changes[0]) << width;
  }
}

TEST(TabletRecord, endlessLineIsRecordedWithinTheTablet)
{
  DrawTree tree;
  ccUIRect changes[2];
  tree.t.recordChanges(true);
  tree.t.draw(ccLine(ccVector<2>(1, 0), ccPoint(0, 6)), ccColor::redColor(), kImage);
  tree.t.getChanges(changes, false);
  EXPECT_EQ(ccUIRect(0, 3, 20, 7), changes[0]);
}
