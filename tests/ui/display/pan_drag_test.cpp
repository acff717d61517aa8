// Dragging the image: the ghost, what is hidden meanwhile, the drop, and images that arrive in between.
#include "tests/support/test_display.h"
#include "tests/ui/display/test_images.h"

#include "ui/shapes/frame_sizer.h"

#include <gtest/gtest.h>

namespace {

constexpr auto kPan = ccUIRootObject::Cursor(4), kGrab = ccUIRootObject::Cursor(5);

struct PanStage : ::testing::Test {
  TestDisplay test{90, 70, {.rect = ccUIRect(5, 5, 80, 60)}};
  ccPelBuffer<unsigned char> image = cfRandom8(50, 40, 1);

  PanStage()
  {
    test->image(image, true);
    test->mouseMode(ccDisplay::panMode);
    test.update();
    test.clearLogs();
  }

  // The image moved on the screen by so many pels.
  plain::Picture shifted(double magnification, double panX, double panY, long dx, long dy)
  {
    plain::View const view = cfView(80, 60, 50, 40, magnification, panX + static_cast<double>(dx) / magnification,
                                    panY + static_cast<double>(dy) / magnification);
    return plain::displayPicture(view, cfGreyOnSurface(image, 32), cfSurround(32));
  }
  bool framesVisible()
  {
    bool const on = test.displayFrame()->condVisible();
    EXPECT_EQ(test.imageFrame()->condVisible(), on);
    EXPECT_EQ(test.clientFrame()->condVisible(), on);
    return on;
  }
};

using DisplayPanDrag = PanStage;

TEST_F(DisplayPanDrag, movesTheImageWithThePointerAndPansAtTheReleaseByTheWholeWay)
{
  for (double m : {1.0, 3.0, 0.5}) {
    test->magExact(m);
    test->pan({2, -1});
    test.moveTo({40, 30}).press().moveTo({43, 28});
    EXPECT_EQ(plain::firstDifference(shifted(m, 2, -1, 3, -2), test.screenPels()), "") << m;
    test.moveTo({60, 45});
    EXPECT_EQ(plain::firstDifference(shifted(m, 2, -1, 20, 15), test.screenPels()), "") << m;
    EXPECT_EQ(test->pan(), ccVector<2>(2, -1));  // only the picture has moved

    test.release();
    EXPECT_EQ(test->pan(), ccVector<2>(2 + 20 / m, -1 + 15 / m)) << m;
    EXPECT_EQ(plain::firstDifference(shifted(m, 2, -1, 20, 15), test.screenPels()), "") << m;
    test->pan({0, 0});
  }
}

TEST_F(DisplayPanDrag, leavesNothingBehindOnTheWay)
{
  Random random(4);
  test.moveTo({40, 30}).press();
  for (int i = 0; i < 40; ++i) {
    long const x = cfPick(random, 0, 89), y = cfPick(random, 0, 69);
    test.moveTo({x, y});
    ASSERT_EQ(plain::firstDifference(shifted(1, 0, 0, x - 40, y - 30), test.screenPels()), "") << i;
  }
  test.release();
}

TEST_F(DisplayPanDrag, theDropIsCutToTheLimits)
{
  test.drag({5, 5}, {84, 64});
  test.drag({5, 5}, {84, 64});
  EXPECT_EQ(test->pan(), ccVector<2>(80, 60));
  EXPECT_EQ(plain::firstDifference(shifted(1, 80, 60, 0, 0), test.screenPels()), "");
}

TEST_F(DisplayPanDrag, showsCursor5WhileTheImageIsDraggedAnd4Afterwards)
{
  test.moveTo({40, 30}).press();
  test.clearLogs();
  test.moveTo({41, 30});
  EXPECT_EQ(test.cursors(), (std::vector<ccUIRootObject::Cursor>{kGrab}));
  test.release();
  EXPECT_EQ(test.root().cursor(), kPan);
}

TEST_F(DisplayPanDrag, hidesTheFramesUntilTheRelease)
{
  auto* const shape = new BoxShape(test.imageFrame(), ccVector<2>(10, 10), 8);
  shape->color(ccColor::redColor());
  shape->condVisible(true);
  test.update();
  ASSERT_NE(plain::firstDifference(shifted(1, 0, 0, 0, 0), test.screenPels()), "");

  test.moveTo({40, 30}).press().moveTo({50, 40});
  EXPECT_FALSE(framesVisible());
  EXPECT_EQ(plain::firstDifference(shifted(1, 0, 0, 10, 10), test.screenPels()), "");

  test.release();
  EXPECT_TRUE(framesVisible());
  // Image pel (10, 10) lies at 40 - 25 + 10 + 10 of the display's column, 5 further right on the root.
  EXPECT_EQ(test.scope().screenRGB(5 + 40 - 25 + 10 + 10, 5 + 30 - 20 + 10 + 10), ccRGB(255, 0, 0));
}

TEST_F(DisplayPanDrag, holdsTheFrameSizer)
{
  ccUIFrameSizer& sizer = *test.root().frameSizer();
  test.moveTo({40, 30}).press().moveTo({50, 40});
  EXPECT_FALSE(sizer.drawEnabled_.top());
  test.release();
  EXPECT_TRUE(sizer.drawEnabled_.top());
  EXPECT_EQ(sizer.drawEnabled_.depth(), 0);
}

TEST_F(DisplayPanDrag, inPointerModeDoesNotMoveTheImage)
{
  test->mouseMode(ccDisplay::pointerMode);
  test.drag({40, 30}, {50, 40});
  EXPECT_EQ(test->pan(), ccVector<2>(0, 0));
}

TEST_F(DisplayPanDrag, anImageThatArrivesIsDroppedAndTheGhostStays)
{
  test.moveTo({40, 30}).press().moveTo({50, 37});
  test.clearLogs();

  test->image(cfGrey8(50, 40, 200), true);
  test->image(cfGrey8(10, 10, 200), true);
  test->image(cfRandom16(50, 40, 1, 0, 900), 10);
  test->image(cfRandomRGB32(50, 40, 1));
  test->image(ccPelBuffer_const<unsigned char>(), true);

  EXPECT_TRUE(test->hooks.empty());
  EXPECT_EQ(test->image8().root(), image.root());
  EXPECT_EQ(test->colorMapEx().size(), 256u);
  EXPECT_EQ(plain::firstDifference(shifted(1, 0, 0, 10, 7), test.screenPels()), "");
  test.release();
  EXPECT_EQ(plain::firstDifference(shifted(1, 0, 0, 10, 7), test.screenPels()), "");
  test->image(cfGrey8(50, 40, 200), true);
  EXPECT_EQ(test.counts().imageChanged, 1);
}

TEST_F(DisplayPanDrag, evenABrokenImageIsOnlyDropped)
{
  test.moveTo({40, 30}).press().moveTo({50, 37});
  ccPelBuffer<unsigned char> broken = cfGrey8(50, 40, 200);
  broken.clientFromImageXformBase(nullptr);
  EXPECT_NO_THROW(test->image(broken, true));
  test.release();
}

TEST_F(DisplayPanDrag, withoutImageACrossFollowsThePointer)
{
  test->removeImage();
  std::uint32_t const ink = test.scope().value(ccUIObject::dragColor());
  for (ccPair<long> const& to : {ccPair<long>(47, 39), ccPair<long>(20, 60)}) {
    test.moveTo({40, 30}).press().moveTo({41, 31}).moveTo(to);
    plain::Picture expected(80, 60, cfSurround(32));
    plain::line(expected, 0, to.y() - 5, 79, to.y() - 5, ink);
    plain::line(expected, to.x() - 5, 0, to.x() - 5, 59, ink);
    EXPECT_EQ(plain::firstDifference(expected, test.screenPels()), "");
    test.release();
    EXPECT_EQ(plain::firstDifference(plain::Picture(80, 60, cfSurround(32)), test.screenPels()), "");
    test->pan({0, 0});
  }
}

TEST_F(DisplayPanDrag, whileLiveDisplayRunsWithoutImageNothingIsDrawn)
{
  test->removeImage();
  test->live = true;
  test.moveTo({40, 30}).press().moveTo({47, 39});
  EXPECT_EQ(plain::firstDifference(plain::Picture(80, 60, cfSurround(32)), test.screenPels()), "");
  test.release();
}

TEST_F(DisplayPanDrag, anImageBehindAFormStaysBehindIt)
{
  struct Form : ccUIControlFrame {
    using ccUIControlFrame::ccUIControlFrame;
    void redraw_() override { set(ccColor::greenColor(), imageLayer); }
  } form(&test.root(), ccUIRect(30, 30, 10, 10));
  form.condVisible(true);
  test.update();
  test.moveTo({20, 20}).press().moveTo({40, 35});
  for (long x = 30; x < 40; ++x)
    ASSERT_EQ(test.scope().screenRGB(x, 35), ccRGB(0, 255, 0));
  test.release();
  EXPECT_EQ(test.scope().screenRGB(39, 39), ccRGB(0, 255, 0));
}

// ---- Drags that never come to their end

TEST_F(DisplayPanDrag, aDisplayDisabledInTheMiddleShowsItsGraphicsAgain)
{
  ccUIFrameSizer& sizer = *test.root().frameSizer();
  test.moveTo({40, 30}).press().moveTo({50, 40});

  test->condEnabled(false);

  EXPECT_TRUE(framesVisible());
  EXPECT_EQ(sizer.drawEnabled_.depth(), 0);
  test.moveTo({60, 50}).release();
  EXPECT_EQ(test->pan(), ccVector<2>(0, 0));
  EXPECT_EQ(sizer.drawEnabled_.depth(), 0);
  test->condEnabled(true);
  test.drag({40, 30}, {50, 40});
  EXPECT_EQ(test->pan(), ccVector<2>(10, 10));
  EXPECT_EQ(sizer.drawEnabled_.depth(), 0);
}

TEST_F(DisplayPanDrag, aHiddenOneShowsItsGraphicsWhenItComesBack)
{
  test.moveTo({40, 30}).press().moveTo({50, 40});
  test->condVisible(false);
  test.release();
  test->condVisible(true);
  test.update();
  EXPECT_TRUE(framesVisible());
  EXPECT_EQ(plain::firstDifference(shifted(1, 0, 0, 0, 0), test.screenPels()), "");
}

TEST_F(DisplayPanDrag, aReleaseThatNeverCameIsMadeUpForAtTheNextMotion)
{
  ccUIFrameSizer& sizer = *test.root().frameSizer();
  test.moveTo({40, 30}).press().moveTo({50, 40});
  test.press().release();  // the press takes the gesture away from the display
  EXPECT_FALSE(test->dragging());
  test.moveTo({45, 35});
  EXPECT_TRUE(framesVisible());
  EXPECT_EQ(sizer.drawEnabled_.depth(), 0);
  EXPECT_EQ(test->pan(), ccVector<2>(0, 0));
}

}  // namespace
