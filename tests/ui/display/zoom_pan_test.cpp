// The arithmetic of zoom, fit and pan.
#include "tests/support/test_display.h"
#include "tests/ui/display/test_images.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Hooks = HookLog;

struct ZoomStage : ::testing::Test {
  TestDisplay test{400, 400};

  void show(long w, long h)
  {
    test->image(cfGrey8(w, h, 50), true);
    test.clearLogs();
  }
};

using DisplayMag = ZoomStage;
using DisplayFit = ZoomStage;
using DisplayPan = ZoomStage;

TEST_F(DisplayMag, wholeNumbersMagnifyAndNegativeOnesReduce)
{
  show(1000, 1000);
  struct {
    long mag;
    double exact;
  } const cases[] = {{0, 1.0}, {1, 1.0}, {2, 2.0}, {-1, 1.0}, {-2, 0.5}, {-3, 1.0 / 3}, {7, 7.0}, {65536, 65536.0},
                     {70000, 65536.0}, {std::numeric_limits<long>::max(), 65536.0}};
  for (auto const& c : cases) {
    test->mag(c.mag);
    EXPECT_EQ(test->magExact(), c.exact) << c.mag;
  }
}

TEST_F(DisplayMag, answersTheWholeMagnificationOrReduction)
{
  show(1000, 1000);
  struct {
    double exact;
    long mag;
  } const cases[] = {{1.0, 1}, {1.5, 1}, {2.0, 2}, {2.9, 2}, {0.75, -1}, {0.5, -2}, {0.3, -3}, {65536, 65536}};
  for (auto const& c : cases) {
    test->magExact(c.exact);
    EXPECT_EQ(test->mag(), c.mag) << c.exact;
  }
}

TEST_F(DisplayMag, everyWholeReductionReadsBack)
{
  test->image(cfGrey8(6000, 6000, 1), true);
  test->disableDrawing();
  for (long n = 2; n <= 700; ++n) {
    test->mag(-n);
    ASSERT_EQ(test->mag(), -n);
  }
}

TEST_F(DisplayMag, negativeExactValuesAndNotANumberAreIgnored)
{
  show(1000, 1000);
  test->magExact(3.25);
  test.clearLogs();

  for (double bad : {-1.0, -1e-300, -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
    test->magExact(bad);

  EXPECT_EQ(test->magExact(), 3.25);
  EXPECT_TRUE(test->hooks.empty());
}

TEST_F(DisplayMag, exactZeroIsOneAndTheUpperLimitIs65536)
{
  show(1000, 1000);
  test->magExact(4);
  test->magExact(0);
  EXPECT_EQ(test->magExact(), 1.0);
  test->magExact(65536.5);
  EXPECT_EQ(test->magExact(), 65536.0);
  test->magExact(std::numeric_limits<double>::infinity());
  EXPECT_EQ(test->magExact(), 65536.0);
}

TEST_F(DisplayMag, theShorterEdgeKeepsEightPels)
{
  show(100, 40);
  test->magExact(0.01);
  EXPECT_EQ(test->magExact(), 8.0 / 40);
}

TEST_F(DisplayMag, aSmallImageIsNotMadeSmallerThanItIs)
{
  show(100, 5);
  test->magExact(0.5);
  EXPECT_EQ(test->magExact(), 1.0);  // 8/5 is cut to 1
}

TEST_F(DisplayMag, anImageThatIsAlreadySmallerStaysSoButGetsNoSmaller)
{
  show(1000, 1000);
  test->magExact(0.01);
  ASSERT_EQ(test->magExact(), 0.01);
  show(100, 40);

  test->magExact(0.005);
  EXPECT_EQ(test->magExact(), 0.01);
  test->magExact(0.05);  // growing is free
  EXPECT_EQ(test->magExact(), 0.05);
}

TEST_F(DisplayMag, withoutImageTheDisplayIsMeasured)
{
  test->magExact(0.001);
  EXPECT_EQ(test->magExact(), 8.0 / 400);
}

TEST_F(DisplayMag, keepsThePanAndCallsPanChangedBeforeMagChanged)
{
  show(1000, 1000);
  test->pan({30, -20});
  test.clearLogs();

  test->mag(3);

  EXPECT_EQ(test->pan(), ccVector<2>(30, -20));
  EXPECT_EQ(test->hooks, (Hooks{"panChanged", "magChanged"}));
}

TEST_F(DisplayMag, drawsOnceAndPresentsOnce)
{
  show(1000, 1000);
  test->mag(3);
  EXPECT_EQ(test->redraws, (std::vector<ccUITablet::Layers>{ccUITablet::bothLayers}));
  EXPECT_EQ(test.scope().presentations(), 1);
}

TEST_F(DisplayFit, landsOnAWholeMagnificationOrReduction)
{
  struct {
    long w, h;
    double exact;
  } const cases[] = {
      {400, 400, 1.0},        {401, 400, 1.0 / 2},  // 1/0.9975 + 1 = 2.0025
      {100, 100, 4.0},        {150, 100, 2.0},        {133, 133, 3.0}, {1000, 1000, 1.0 / 3}, {800, 800, 1.0 / 3},
      {800, 100, 1.0 / 3},    {1200, 10, 1.0 / 4},    {1, 1, 400.0},   {1599, 1, 1.0 / 4}};
  for (auto const& c : cases) {
    show(c.w, c.h);
    test->magExact(1);
    test->fit();
    double const lower = std::min(1.0, std::max(8.0 / static_cast<double>(c.w), 8.0 / static_cast<double>(c.h)));
    EXPECT_EQ(test->magExact(), std::max(c.exact, lower)) << c.w << " x " << c.h;
  }
}

TEST_F(DisplayFit, ofAThousandInFourHundredGivesAThirdAndExactly0Point4)
{
  show(1000, 1000);
  test->fit();
  EXPECT_EQ(test->magExact(), 1.0 / 3);
  EXPECT_EQ(test->mag(), -3);
  test->fitExact();
  EXPECT_EQ(test->magExact(), 0.4);
}

TEST_F(DisplayFit, ofARatioOfOneHalfGivesAThird)
{
  show(800, 800);
  test->fit();
  EXPECT_EQ(test->mag(), -3);
}

TEST_F(DisplayFit, bothMoveTheImageToTheMiddle)
{
  show(1000, 1000);
  test->pan({100, 100});
  test->fit();
  EXPECT_EQ(test->pan(), ccVector<2>(0, 0));
  test->pan({100, 100});
  test->fitExact();
  EXPECT_EQ(test->pan(), ccVector<2>(0, 0));
}

TEST_F(DisplayFit, exactTakesTheSmallerOfTheTwoFactors)
{
  show(300, 1000);
  test->fitExact();
  EXPECT_EQ(test->magExact(), 0.4);
  show(1000, 300);
  test->fitExact();
  EXPECT_EQ(test->magExact(), 0.4);
  show(80, 50);
  test->fitExact();
  EXPECT_EQ(test->magExact(), 5.0);
}

TEST_F(DisplayFit, withoutImageShowsTheDisplayAtOne)
{
  test->mag(7);
  test->fit();
  EXPECT_EQ(test->magExact(), 1.0);
  test->mag(7);
  test->fitExact();
  EXPECT_EQ(test->magExact(), 1.0);
}

TEST_F(DisplayFit, leavesDrawingEnabledAndPresentsOnce)
{
  show(1000, 1000);
  test->fit();
  EXPECT_FALSE(test->drawingDisabled());
  EXPECT_EQ(test.scope().presentations(), 1);
  test.clearLogs();
  test->fitExact();
  EXPECT_FALSE(test->drawingDisabled());
  EXPECT_EQ(test.scope().presentations(), 1);
}

TEST_F(DisplayPan, beyondTheLimitsStoresTheLimit)
{
  show(500, 300);  // the window is 400 by 400
  EXPECT_EQ(test->maxPan(), ccPair<double>(500, 400));
  EXPECT_EQ(test->minPan(), ccPair<double>(-500, -400));

  test->pan({1e9, 400.5});
  EXPECT_EQ(test->pan(), ccVector<2>(500, 400));
  test->pan({-500.25, -1e300});
  EXPECT_EQ(test->pan(), ccVector<2>(-500, -400));
  test->pan({499.75, -399.5});
  EXPECT_EQ(test->pan(), ccVector<2>(499.75, -399.5));
}

TEST_F(DisplayPan, ownLimitsAreKeptWhenDefaultsAreOff)
{
  test->defaultPan(false);
  test->minPan({-10, -20});
  test->maxPan({30, 40});
  show(500, 300);

  test->pan({100, 100});
  EXPECT_EQ(test->pan(), ccVector<2>(30, 40));
  test->pan({-100, -100});
  EXPECT_EQ(test->pan(), ccVector<2>(-10, -20));
  test->size({100, 100});
  EXPECT_EQ(test->minPan(), ccPair<double>(-10, -20));
  EXPECT_EQ(test->maxPan(), ccPair<double>(30, 40));
}

TEST_F(DisplayPan, newLimitsDoNotClampThePresentPan)
{
  show(500, 300);
  test->pan({200, 100});
  test.clearLogs();

  test->maxPan({50, 50});
  test->minPan({0, 0});

  EXPECT_EQ(test->pan(), ccVector<2>(200, 100));
  EXPECT_EQ(test->hooks, (Hooks{"updatePanRanges", "updatePanRanges"}));
  test->pan(test->pan());
  EXPECT_EQ(test->pan(), ccVector<2>(50, 50));
}

TEST_F(DisplayPan, withCrossedLimitsTheLowerOneIsTestedFirst)
{
  test->minPan({10, 10});
  test->maxPan({-10, -10});
  test->pan({0, 20});
  EXPECT_EQ(test->pan(), ccVector<2>(10, -10));
}

TEST_F(DisplayPan, aResizeOfTheWindowRecomputesTheDefaultRange)
{
  show(500, 300);
  test.clearLogs();

  test->size({600, 200});

  EXPECT_EQ(test->maxPan(), ccPair<double>(600, 300));
  EXPECT_EQ(test->minPan(), ccPair<double>(-600, -300));
  EXPECT_EQ(test->hooks, (Hooks{"updatePanRanges", "panChanged"}));
  for (ccUIShapesFrame* frame : {test.displayFrame(), static_cast<ccUIShapesFrame*>(test.imageFrame()),
                                 static_cast<ccUIShapesFrame*>(test.clientFrame())})
    EXPECT_EQ(frame->frameRect(), ccUIRect(0, 0, 600, 200));
  EXPECT_FALSE(test->drawingDisabled());
}

TEST_F(DisplayPan, aResizeClampsThePanToTheNewRange)
{
  show(100, 100);
  test->pan({400, 400});
  test->size({150, 90});
  EXPECT_EQ(test->pan(), ccVector<2>(150, 100));
}

TEST_F(DisplayPan, aResizeMovesAttachedControls)
{
  ccUIControlFrame control(&test.display(), ccUIRect(380, 390, 10, 5));
  control.attachedTo(ccUIControlFrame::attachedBottomRight);

  test->size({300, 200});

  EXPECT_EQ(control.frameRect(), ccUIRect(280, 190, 10, 5));
}

TEST_F(DisplayPan, keepsTheImagesMiddleInTheMiddleAtEveryZoom)
{
  show(101, 50);
  for (long m : {1L, 2L, 7L, -2L, -5L}) {
    test->mag(m);
    ccPoint const middle = test->imageToDisplay(ccPoint(50, 25));  // integer halves
    EXPECT_NEAR(middle.x(), 200, 1e-9) << m;
    EXPECT_NEAR(middle.y(), 200, 1e-9) << m;
  }
}

TEST_F(DisplayPan, countsInImagePels)
{
  show(100, 100);
  test->mag(4);
  test->pan({3, -5});
  ccPoint const middle = test->imageToDisplay(ccPoint(50, 50));
  EXPECT_NEAR(middle.x(), 212, 1e-9);
  EXPECT_NEAR(middle.y(), 180, 1e-9);
}

TEST_F(DisplayPan, deltaIsInPelsOfTheScreen)
{
  show(100, 100);
  test->pan({1, 2});
  test->panDelta({6, -8});
  EXPECT_EQ(test->pan(), ccVector<2>(7, -6));

  test->mag(4);
  test->panDelta({6, -8});
  EXPECT_EQ(test->pan(), ccVector<2>(8.5, -8));

  test->mag(-2);
  test->panDelta({6, -8});
  EXPECT_EQ(test->pan(), ccVector<2>(20.5, -24));
}

TEST_F(DisplayPan, theHookRunsAlsoWhileDrawingIsDisabled)
{
  show(100, 100);
  test->disableDrawing();
  test->pan({1, 1});
  EXPECT_EQ(test->hooks, (Hooks{"panChanged"}));
  EXPECT_TRUE(test->redraws.empty());
  EXPECT_EQ(test->pan(), ccVector<2>(1, 1));
  test->enableDrawing(true);
}

TEST_F(DisplayPan, whatIsNotFiniteLeavesThePanAndTheMap)
{
  show(100, 100);
  test->pan({5, 6});
  ccXform<2> const map = test->baseMap();
  double const nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();

  test->pan({nan, 1});
  test->pan({1, nan});
  EXPECT_EQ(test->pan(), ccVector<2>(5, 6));
  test->pan({inf, -inf});  // the limits hold these
  EXPECT_EQ(test->pan(), ccVector<2>(400, -400));
  test->pan({5, 6});
  test->maxPan({inf, nan});
  test->minPan({nan, -inf});
  test->pan({inf, -inf});
  EXPECT_EQ(test->pan(), ccVector<2>(5, 6));
  EXPECT_EQ(test->baseMap(), map);
}

TEST_F(DisplayPan, doesNotDriftOverManyPansAndZooms)
{
  show(1000, 700);
  Random random(3);
  test->disableDrawing();
  for (int i = 0; i < 500; ++i) {
    test->magExact(cfPickReal(random, 0.02, 40));
    test->pan({cfPickReal(random, -1000, 1000), cfPickReal(random, -700, 700)});
  }
  test->mag(2);
  test->pan({10, 20});
  ccPoint const middle = test->imageToDisplay(ccPoint(500, 350));
  EXPECT_NEAR(middle.x(), 220, 1e-8);
  EXPECT_NEAR(middle.y(), 240, 1e-8);
}

TEST(DisplayWithoutArea, takesEveryOperation)
{
  TestDisplay test(50, 50);
  test->size({0, 0});
  test->fit();
  EXPECT_EQ(test->magExact(), 1.0);
  test->fitExact();
  EXPECT_EQ(test->magExact(), 1.0);
  test->image(cfGrey8(20, 10, 3), true);
  test->fit();
  EXPECT_EQ(test->magExact(), 1.0);
  test->fitExact();
  test->mag(5);
  test->mag(-5);
  test->pan({1000, 1000});
  EXPECT_EQ(test->pan(), ccVector<2>(20, 10));
  test->grid(1);
  test->removeImage();
  test->size({50, 50});
  EXPECT_EQ(test->maxPan(), ccPair<double>(50, 50));
}

}  // namespace
