#include "tests/canvas/tablet_fixture.h"

#include <gtest/gtest.h>

TEST(Tablet, firstUpdatePaintsTheTreeFromTheBottom)
{
  TestTree tree;

  EXPECT_EQ(Rows({"...."}), tree.imagePicture({0, 0, 4, 1}));
  EXPECT_EQ(Rows({"----"}), tree.overlayPicture({36, 29, 4, 1}));
  EXPECT_EQ(tree.image.surface(), tree.image.screen());
}

TEST(Tablet, shownKidAppearsAtTheNextUpdate)
{
  TestTree tree;
  TestTablet kid(tree.top, ccUIRect(2, 1, 3, 2));
  kid.face = plainFace(ccColor::redColor());
  kid.visible(false);
  tree.flush();

  kid.visible(true);
  EXPECT_EQ(Rows({"......", "......"}), tree.imagePicture({0, 0, 6, 2}));
  EXPECT_TRUE(tree.top.anyChanged(kImage));
  tree.top.update(kBoth);

  EXPECT_EQ(Rows({"......", "..rrr.", "..rrr.", "......"}), tree.imagePicture({0, 0, 6, 4}));
  EXPECT_FALSE(tree.top.anyChanged(kBoth));
}

TEST(Tablet, hiddenKidIsWipedAndOnlyItsPlaceIsPainted)
{
  TestTree tree;
  TestTablet kid(tree.top, ccUIRect(2, 1, 3, 2));
  kid.face = plainFace(ccColor::redColor());
  kid.redraw(kImage);
  tree.flush();
  ASSERT_EQ(Rows({"..rrr."}), tree.imagePicture({0, 1, 6, 1}));

  kid.visible(false);
  tree.flush();

  EXPECT_EQ(Rows({"......"}), tree.imagePicture({0, 1, 6, 1}));
}

TEST(Tablet, movedKidLeavesNothingBehind)
{
  TestTree tree;
  TestTablet kid(tree.top, ccUIRect(2, 1, 3, 2));
  kid.face = plainFace(ccColor::redColor());
  kid.redraw(kImage);
  tree.flush();

  kid.moveRel({2, 1});
  tree.flush();

  EXPECT_EQ(Rows({".......", ".......", "....rrr", "....rrr", "......."}), tree.imagePicture({0, 0, 7, 5}));
}

TEST(Tablet, imageIsDrawnAtTheSnappedPositionInEachScaleMode)
{
  TestTree tree;
  ccPelBuffer<unsigned char> pels(4, 2);
  for (long y = 0; y < 2; ++y)
    for (long x = 0; x < 4; ++x)
      pels.setPel(x, y, static_cast<unsigned char>(100 + 10 * y + x));
  TestTablet kid(tree.top, ccUIRect(3, 2, 30, 20));
  auto const grey = [&](long x, long y) { return static_cast<int>(tree.image.rgb(x, y).r); };

  kid.draw(pels, ccPoint(0.5, 0.4), false, 0, false, kImage);  // 0.5 snaps up, 0.4 down
  EXPECT_EQ(100, grey(4, 2));
  EXPECT_EQ(113, grey(7, 3));
  EXPECT_EQ(1, tree.image.calls("draw8"));

  kid.scaleExact({2, 2});
  kid.draw(pels, ccPoint(2, 1), false, 0, false, kImage);
  EXPECT_EQ(100, grey(3 + 4, 2 + 2));
  EXPECT_EQ(100, grey(3 + 5, 2 + 3));
  EXPECT_EQ(101, grey(3 + 6, 2 + 2));
  EXPECT_EQ(113, grey(3 + 11, 2 + 5));
  EXPECT_EQ(1, tree.image.calls("expand8"));

  kid.scaleExact({0.5, 0.5});
  kid.draw(pels, ccPoint(20, 20), false, 0, false, kImage);
  EXPECT_EQ(100, grey(3 + 10, 2 + 10));
  EXPECT_EQ(102, grey(3 + 11, 2 + 10));
  EXPECT_EQ(1, tree.image.calls("sample8"));
}

TEST(Tablet, imageStaysInsideTheTablet)
{
  TestTree tree;
  ccPelBuffer<ccPackedRGB32Pel> pels(8, 8);
  for (long y = 0; y < 8; ++y)
    for (long x = 0; x < 8; ++x)
      pels.setPel(x, y, ccPackedRGB32Pel(255, 0, 0));
  TestTablet kid(tree.top, ccUIRect(1, 1, 3, 2));

  kid.draw(pels, ccPoint(-2, -2), false, ccPackedRGB32Pel(), kImage);

  EXPECT_EQ(Rows({".....", ".rrr.", ".rrr.", "....."}), tree.imagePicture({0, 0, 5, 4}));
}
