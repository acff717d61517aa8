// Sketches drawn in the three coordinate frames.
#include "tests/support/test_display.h"
#include "tests/ui/display/test_images.h"

#include "geometry/lines.h"
#include "geometry/rect.h"

#include <gtest/gtest.h>

namespace {

using Layers = ccUITablet::Layers;
constexpr ccDisplay::CoordinateSystem kSystems[] = {ccDisplay::displayCoords, ccDisplay::imageCoords, ccDisplay::clientCoords};
constexpr auto kNoSystem = static_cast<ccDisplay::CoordinateSystem>(7);

// A line along row y from x0 to x1, in the coordinates of where it is drawn.
ccUISketch line(double x0, double x1, double y, ccColor const& c = ccColor::redColor())
{
  ccUITablet pen;
  pen.draw(ccLineSeg({x0, y}, {x1, y}), c, ccUITablet::bothLayers);
  return pen.sketch();
}

struct SketchStage : ::testing::Test {
  TestDisplay test{60, 40};

  SketchStage()
  {
    test->image(cfGrey8(60, 40, 7), true);
    test.clearLogs();
  }
  // How many pels of row y are red.
  long reds(long y)
  {
    long n = 0;
    for (long x = 0; x < 60; ++x)
      n += test.scope().screenRGB(x, y) == ccRGB(255, 0, 0);
    return n;
  }
};

using DisplaySketch = SketchStage;

TEST_F(DisplaySketch, isDrawnAtOnceAndKept)
{
  for (ccDisplay::CoordinateSystem cs : kSystems) {
    test->drawSketch(line(10, 19, 5), cs);
    EXPECT_EQ(reds(5), 10) << cs;
    EXPECT_FALSE(test->getSketch(cs).isEmpty());
    test->fullDraw(ccUITablet::bothLayers);
    EXPECT_EQ(reds(5), 10) << cs;
    test->image(cfGrey8(60, 40, 7), true);
    EXPECT_EQ(reds(5), 10) << cs;
    test->eraseSketch(cs);
    EXPECT_EQ(reds(5), 0) << cs;
    EXPECT_TRUE(test->getSketch(cs).isEmpty());
  }
}

TEST_F(DisplaySketch, followsTheZoomInImageAndClientCoordinatesOnly)
{
  for (ccDisplay::CoordinateSystem cs : kSystems) {
    test->magExact(1);
    test->drawSketch(line(20, 30, 10), cs);
    test->mag(2);
    bool const zooms = cs != ccDisplay::displayCoords;
    // Row 10 of the image lies at 20 + (10 - 20) * 2.
    EXPECT_EQ(reds(zooms ? 0 : 10), zooms ? 21 : 11) << cs;
    test->eraseSketch(cs);
  }
}

TEST_F(DisplaySketch, ofSeveralCallsAddsUp)
{
  test->drawSketch(line(0, 9, 5), ccDisplay::imageCoords);
  test->drawSketch(line(0, 9, 7), ccDisplay::imageCoords);
  test->fullDraw(ccUITablet::bothLayers);
  EXPECT_EQ(reds(5) + reds(7), 20);
  test->eraseSketch(ccDisplay::imageCoords);
  EXPECT_EQ(reds(5) + reds(7), 0);
}

TEST_F(DisplaySketch, drawnFastIsGoneAfterFit)
{
  for (ccDisplay::CoordinateSystem cs : kSystems) {
    test->drawSketchFast(line(10, 19, 5), cs);
    EXPECT_EQ(reds(5), 10) << cs;
    EXPECT_TRUE(test->getSketch(cs).isEmpty());
    test->fit();
    EXPECT_EQ(reds(5), 0) << cs;
  }
}

TEST_F(DisplaySketch, withAClipKeepsTheClipAroundItselfOnly)
{
  for (ccDisplay::CoordinateSystem cs : kSystems) {
    test->drawSketch(line(0, 59, 5), cs, ccRect({10, 0}, {20, 40}));
    test->drawSketch(line(0, 59, 7), cs);
    EXPECT_EQ(reds(5), 20) << cs;
    EXPECT_EQ(reds(7), 60) << cs;
    test->fullDraw(ccUITablet::bothLayers);
    EXPECT_EQ(reds(5), 20) << cs;
    EXPECT_EQ(reds(7), 60) << cs;
    test->eraseSketch(cs);
  }
}

TEST_F(DisplaySketch, aClipZoomsWithItsSketch)
{
  test->drawSketch(line(0, 59, 20), ccDisplay::imageCoords, ccRect({25, 0}, {10, 40}));
  test->mag(2);
  EXPECT_EQ(reds(20), 20);
}

TEST_F(DisplaySketch, ofAnEmptyKindChangesNothing)
{
  test->drawSketch(ccUISketch(), ccDisplay::imageCoords);
  test->drawSketchFast(ccUISketch(), ccDisplay::imageCoords);
  test->eraseSketch(ccDisplay::imageCoords);
  plain::Picture const expected(60, 40, 0x070707);
  EXPECT_EQ(plain::firstDifference(expected, test.screenPels()), "");
}

TEST_F(DisplaySketch, takesItsOwnSketchAgain)
{
  test->drawSketch(line(10, 19, 5), ccDisplay::imageCoords);
  test->drawSketch(test->getSketch(ccDisplay::imageCoords), ccDisplay::imageCoords);
  test->drawSketch(test->getSketch(ccDisplay::imageCoords), ccDisplay::imageCoords, ccRect({0, 0}, {60, 40}));
  test->fullDraw(ccUITablet::bothLayers);
  EXPECT_EQ(reds(5), 10);
}

TEST_F(DisplaySketch, inAnotherSystemIsIgnoredAndErasingUpdatesTheDisplay)
{
  test->drawSketch(line(10, 19, 5), kNoSystem);
  test->drawSketch(line(10, 19, 5), kNoSystem, ccRect({0, 0}, {60, 40}));
  test->drawSketchFast(line(10, 19, 5), kNoSystem);
  EXPECT_EQ(reds(5), 0);
  EXPECT_TRUE(test->getSketch(kNoSystem).isEmpty());
  EXPECT_EQ(&test->getSketch(kNoSystem), &test->getSketch(static_cast<ccDisplay::CoordinateSystem>(-1)));

  test->baseMap(test->baseMap());  // something waits for an update
  test.clearLogs();
  test->eraseSketch(kNoSystem);
  EXPECT_FALSE(test->redraws.empty());
}

TEST_F(DisplaySketch, erasingPresentsOnce)
{
  test->drawSketch(line(10, 19, 5), ccDisplay::imageCoords);
  test.clearLogs();
  test->eraseSketch(ccDisplay::imageCoords);
  EXPECT_EQ(test.scope().presentations(), 1);
}

TEST(DisplaySketchLayers, onTheOverlayLeavesTheImageAlone)
{
  TestDisplay test(60, 40, {.overlay = true});
  test->image(cfGrey8(60, 40, 7), true);
  ccUITablet pen;
  pen.draw(ccLineSeg({0, 5}, {9, 5}), ccColor::redColor(), ccUITablet::overlayLayer);
  test->drawSketch(pen.sketch(), ccDisplay::imageCoords);
  EXPECT_EQ(test.overlayScope().screenRGB(4, 5), ccRGB(255, 0, 0));
  EXPECT_EQ(test.scope().screenRGB(4, 5), ccRGB(7, 7, 7));
  test.clearLogs();
  test->eraseSketch(ccDisplay::imageCoords);
  EXPECT_EQ(test.overlayScope().screenPel(4, 5), test.overlayScope().keyValue());
}

}  // namespace
