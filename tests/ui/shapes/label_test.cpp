// Labels. Text of a memory scope: cells of 6 by 10 pels.
#include "tests/ui/shapes/shape_stage.h"
#include "ui/shapes/label.h"

namespace {

struct Label : ::testing::Test {
  TestDisplay test{120, 60};
  ccUILabel label{test.displayFrame()};

  Label() { label.pos(ccVector<2>(30, 20)), label.condVisible(true); }

  ccUIRect touched()
  {
    ccUIRect box;
    for (long y = 0; y < 60; ++y)
      for (long x = 0; x < 120; ++x)
        if (label.isTouched(ccVector<2>(ccPair<long>(x, y)), 1))
          box |= ccUIRect(x, y, 1, 1);
    return box;
  }
};

TEST_F(Label, hasItsDefaults)
{
  EXPECT_EQ(label.label(), "");
  EXPECT_EQ(label.format().fontId(), ccUIFormat::gDefaultFontId());
  EXPECT_EQ(label.format().alignment(), ccUIFormat::topLeft);
  EXPECT_EQ(label.borderWidth(), 0);
  EXPECT_EQ(label.borderColor(), ccColor::dkRedColor());
  EXPECT_EQ(label.backColor(), ccColor::whiteColor());
  EXPECT_EQ(label.foreColor(), ccColor::blackColor());
}

TEST_F(Label, anEmptyLabelIsNotTouchedAnywhereAndShowsNothing)
{
  EXPECT_TRUE(touched().isNull());
  label.borderWidth(3);
  EXPECT_TRUE(touched().isNull());
  EXPECT_FALSE(label.isClipped());
  EXPECT_TRUE(cfPlaces(test.scope(), ccRGB(128, 0, 0)).empty());
}

TEST_F(Label, itsBoxIsTheTextWithABorderOnEachSide)
{
  label.borderWidth(2);
  label.label("abc");

  EXPECT_EQ(touched(), ccUIRect(30, 20, 3 * 6 + 4, 10 + 4));
  EXPECT_TRUE(label.isClipped());
  Places ring;
  for (long y = 20; y < 34; ++y)
    for (long x = 30; x < 52; ++x)
      if (x < 32 || x >= 50 || y < 22 || y >= 32)
        ring.insert({x, y});
  EXPECT_EQ(cfPlaces(test.scope(), ccRGB(128, 0, 0)), ring);
  EXPECT_EQ(test.scope().rgb(32, 22), ccRGB(255, 255, 255));  // the back colour inside the border
  EXPECT_EQ(test.scope().rgb(33, 26), kBlack);                // a letter
}

TEST_F(Label, itsBoxIsMeasuredAnewAfterAMoveATextAFormatAndABorder)
{
  label.label("ab");
  EXPECT_EQ(touched(), ccUIRect(30, 20, 12, 10));
  label.pos(ccVector<2>(50, 30));
  EXPECT_EQ(touched(), ccUIRect(50, 30, 12, 10));
  label.label("abcd");
  EXPECT_EQ(touched(), ccUIRect(50, 30, 24, 10));
  label.format(ccUIFormat(ccUIFormat::bottomRight));
  EXPECT_EQ(touched(), ccUIRect(50 - 24, 30 - 10, 24, 10));
  label.borderWidth(1);
  EXPECT_EQ(touched(), ccUIRect(50 - 24, 30 - 10, 26, 12));
  label.label("");
  EXPECT_TRUE(touched().isNull());
}

TEST_F(Label, itsPickDistancePlaysNoPart)
{
  label.label("ab");
  label.touchDist(1000);
  EXPECT_EQ(touched(), ccUIRect(30, 20, 12, 10));
}

TEST_F(Label, itsColoursAreThoseThatWereSet)
{
  label.borderWidth(1);
  label.label("ab");
  label.borderColor(ccColor::greenColor());
  label.backColor(ccColor::blueColor());
  label.foreColor(ccColor::yellowColor());
  EXPECT_EQ(test.scope().rgb(30, 20), ccRGB(0, 255, 0));
  EXPECT_EQ(test.scope().rgb(31, 21), ccRGB(0, 0, 255));
  EXPECT_EQ(test.scope().rgb(32, 25), ccRGB(255, 255, 0));
}

TEST_F(Label, aDraggedLabelIsABoxOfOnePel)
{
  GhostColor const ghost;
  label.borderWidth(2);
  label.label("abc");

  test.press({35, 25}).moveTo({45, 40});
  Places box;
  for (long y = 35; y < 49; ++y)
    for (long x = 40; x < 62; ++x)
      if (x == 40 || x == 61 || y == 35 || y == 48)
        box.insert({x, y});
  EXPECT_EQ(cfPlaces(test.scope(), GhostColor::rgb()), box);
  EXPECT_EQ(label.pos(), ccVector<2>(30, 20));

  test.release();
  EXPECT_EQ(label.pos(), ccVector<2>(40, 35));
  EXPECT_EQ(touched(), ccUIRect(40, 35, 22, 14));
  EXPECT_TRUE(cfPlaces(test.scope(), GhostColor::rgb()).empty());
}

TEST_F(Label, withoutATabletItMeasuresNothing)
{
  ccUILabel loose;
  loose.label("abc");
  EXPECT_FALSE(loose.isClipped());
  EXPECT_FALSE(loose.isTouched(ccVector<2>(0, 0), 1));

  TestRoot root;  // a tree without a scope
  ccUIShapesFrame frame(root.groundPlane(), ccUIRect(0, 0, 50, 50));
  frame.autoDelete(false);
  ccUILabel label2(&frame);
  label2.label("abc");
  EXPECT_FALSE(label2.isClipped());
  EXPECT_FALSE(label2.isTouched(ccVector<2>(0, 0), 1));
}

TEST_F(Label, keepsItsSizeAtEveryZoom)
{
  test->image(cfDark(60, 40), true);
  ccUILabel zoomed(test.imageFrame());
  zoomed.pos(ccVector<2>(30, 20));
  zoomed.borderWidth(1);
  zoomed.label("a");
  zoomed.borderColor(ccColor::greenColor());
  zoomed.condVisible(true);
  for (long mag : {1, 3, 8, -2}) {
    test->mag(mag);
    test.update();
    EXPECT_EQ(cfPlaces(test.scope(), ccRGB(0, 255, 0)).size(), 2u * 8 + 2 * 10) << mag;
  }
}

}  // namespace
