// A display whose hooks delete it or throw, whose memory fails, and what must not stay on its screen.
#include "foundation/math_error.h"
#include "geometry/rect.h"
#include "tests/support/memory_watch.h"
#include "tests/support/test_display.h"
#include "tests/ui/display/test_images.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

struct Thrown : std::runtime_error {
  Thrown() : std::runtime_error("hook") {}
};

ccPelBuffer_const<unsigned char> cf_grey(long w, long h, unsigned char value)
{
  ccPelBuffer<unsigned char> image(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      image.setPel(x, y, value);
  return image;
}

ccPelBuffer_const<unsigned short> cf_grey16(long w, long h)
{
  ccPelBuffer<unsigned short> image(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      image.setPel(x, y, static_cast<unsigned short>(100 * x + y));
  return image;
}

struct Operation {
  char const* name;
  std::function<void(TestDisplay&)> act;
};

std::vector<Operation> cf_operations()
{
  return {{"image8", [](TestDisplay& t) { t->image(cf_grey(20, 10, 90), true); }},
          {"image16", [](TestDisplay& t) { t->image(cf_grey16(20, 10), 12); }},
          {"no image", [](TestDisplay& t) { t->image(ccPelBuffer_const<unsigned char>(), true); }},
          {"removeImage", [](TestDisplay& t) { t->removeImage(); }},
          {"magExact", [](TestDisplay& t) { t->magExact(2.5); }},
          {"fit", [](TestDisplay& t) { t->fit(); }},
          {"fitExact", [](TestDisplay& t) { t->fitExact(); }},
          {"pan", [](TestDisplay& t) { t->pan(ccVector<2>(3, 2)); }},
          {"minPan", [](TestDisplay& t) { t->minPan(ccPair<double>(-5, -5)); }},
          {"maxPan", [](TestDisplay& t) { t->maxPan(ccPair<double>(5, 5)); }},
          {"size", [](TestDisplay& t) { t.display().ccUITablet::size(ccPair<long>(30, 20)); }},
          {"colorMap", [](TestDisplay& t) { t->colorMap(std::vector<ccRGB>(256), 0); }},
          {"clearColorMap", [](TestDisplay& t) { t->clearColorMap(); }},
          {"colorMapEx", [](TestDisplay& t) { t->colorMapEx(std::vector<ccRGB>(256)); }},
          {"mouseMode", [](TestDisplay& t) { t->mouseMode(ccDisplay::panMode); }},
          {"grid", [](TestDisplay& t) { t->grid(2); t->subpixelGrid(3); }},
          {"sketch", [](TestDisplay& t) {
             ccUITablet recorder;
             recorder.set(ccUIRect(1, 1, 4, 4), ccColor::redColor(), ccUITablet::imageLayer);
             t->drawSketch(recorder.sketch(), ccDisplay::displayCoords);
             t->drawSketch(recorder.sketch(), ccDisplay::imageCoords, ccRect(ccVector<2>(0, 0), ccVector<2>(3, 3)));
             t->eraseSketch(ccDisplay::displayCoords);
           }},
          {"zoom click", [](TestDisplay& t) {
             t->mouseMode(ccDisplay::zoomInMode);
             t.click({10, 10});
           }},
          {"pan drag", [](TestDisplay& t) {
             t->mouseMode(ccDisplay::panMode);
             t.drag({10, 10}, {15, 12});
           }}};
}

// Whoever owns the display also lets go of it: the test's holder does so in the hook.
TEST(DisplaySeams, aDisplayThatIsDeletedInAnyOfItsHooksIsLeftAlone)
{
  long reached = 0;
  for (Operation const& op : cf_operations())
    for (long which = 1; which < 60; ++which) {
      TestDisplay test(40, 30);
      test->image(cf_grey(12, 8, 50), true);
      test.update();
      long count = 0;
      bool gone = false;
      test->onHook = [&](std::string const&) {
        if (++count == which) {
          gone = true;
          test.deleteDisplay();
        }
      };
      op.act(test);
      EXPECT_FALSE(test.scope().screenUpdatesLocked()) << op.name << which;
      EXPECT_FALSE(test.scope().isDragging()) << op.name << which;
      EXPECT_FALSE(test.root().mutex().lockedByMe()) << op.name << which;
      test.update();
      if (!gone)
        break;
      ++reached;
    }
  EXPECT_GT(reached, 25);
}

void cf_expectRepaint(TestDisplay& test, std::string const& what)
{
  test.update();
  auto const seen = test.pels();
  test.scope().poison(7);
  test.root().fullDraw(ccUITablet::bothLayers);
  test.update();
  ASSERT_EQ(seen, test.pels()) << what;
}

void cf_expectLowered(TestDisplay& test, std::string const& what)
{
  while (test.scope().screenUpdatesLocked())  // pushed by the event processor, and left on purpose
    test.root().lockScreenUpdatesPop(ccUITablet::bothLayers);
  test.release();
  test.release();
  ASSERT_FALSE(test.root().mutex().lockedByMe()) << what;
  ASSERT_FALSE(test->drawingDisabled()) << what;
  ASSERT_EQ(test.display().drawEnabled_.depth(), 0) << what;
  ASSERT_EQ(test.display().overlayRepaint_.depth(), 0) << what;
  ASSERT_EQ(test.imageFrame()->overlayRepaint_.depth(), 0) << what;
  ASSERT_EQ(test.display().layerRepaint_.depth(), 1) << what;
  ASSERT_EQ(test.display().redrawLayer_, ccUITablet::bothLayers) << what;
  ASSERT_FALSE(test.scope().isDragging()) << what;
  ASSERT_TRUE(test.imageFrame()->condVisible()) << what;
}

TEST(DisplaySeams, aHookThatThrowsLeavesNothingRaised)
{
  for (Operation const& op : cf_operations())
    for (long which = 1; which < 60; ++which) {
      TestDisplay test(40, 30);
      test->image(cf_grey(12, 8, 50), true);
      test.update();
      long count = 0;
      test->onHook = [&](std::string const&) {
        if (++count == which)
          throw Thrown();
      };
      bool thrown = false;
      try {
        op.act(test);
      } catch (Thrown const&) {
        thrown = true;
      }
      test->onHook = nullptr;
      std::string const what = op.name + std::to_string(which);
      ASSERT_NO_FATAL_FAILURE(cf_expectLowered(test, what));
      ASSERT_NO_FATAL_FAILURE(cf_expectRepaint(test, what));
      if (!thrown)
        break;
    }
}

TEST(DisplaySeams, memoryThatFailsAnywhereLeavesThePictureOfAFullRepaint)
{
  for (Operation const& op : cf_operations())
    failEach(
        [] {
          auto test = std::make_unique<TestDisplay>(40, 30);
          (*test)->image(cf_grey(12, 8, 50), true);
          test->update();
          test->scope().keepLog(false);
          return test;
        },
        op.act,
        [&](TestDisplay& test, bool failed) {
          std::string const what = op.name + std::string(failed ? " failed" : "");
          ASSERT_NO_FATAL_FAILURE(cf_expectLowered(test, what));
          ASSERT_NO_FATAL_FAILURE(cf_expectRepaint(test, what));
        });
}

TEST(DisplaySeams, aSketchGoesWithItsHiddenFrame)
{
  TestDisplay test(40, 30);
  ccUITablet recorder;
  recorder.set(ccUIRect(2, 2, 5, 5), ccColor::redColor(), ccUITablet::imageLayer);
  test.update();
  auto const empty = test.pels();
  test->drawSketch(recorder.sketch(), ccDisplay::displayCoords);
  test->drawSketchFast(recorder.sketch(), ccDisplay::imageCoords);
  ASSERT_EQ(test.scope().pel(3, 3), test.scope().value(ccColor::redColor()));

  test.displayFrame()->condVisible(false);
  test.imageFrame()->condVisible(false);
  test.update();

  EXPECT_EQ(test.pels(), empty);
}

TEST(DisplaySeams, opaqueKidsOfTheImageLayerAreOutOfSightWhileTheImageIsDragged)
{
  TestDisplay test(40, 30);
  test->image(cf_grey(40, 30, 50), true);
  struct Panel : ccUIControlFrame {
    using ccUIControlFrame::ccUIControlFrame;
    void redraw_() override { set(ccColor::greenColor(), imageLayer); }
  } panel(&test.display(), ccUIRect(30, 20, 8, 8));
  panel.condVisible(true);
  test.update();
  auto const green = test.scope().value(ccColor::greenColor());
  ASSERT_EQ(test.scope().pel(33, 23), green);
  test->mouseMode(ccDisplay::panMode);

  test.moveTo({5, 5}).press();
  test.moveTo({7, 6});
  EXPECT_NE(test.scope().pel(33, 23), green);
  EXPECT_TRUE(panel.condVisible());

  test.release();
  EXPECT_EQ(test.scope().pel(33, 23), green);
  cf_expectRepaint(test, "dropped");
}

TEST(DisplaySeams, shapesThatJoinByParentAreCounted)
{
  TestDisplay test(40, 30);
  auto* const from = test.displayFrame();
  auto* const to = test.imageFrame();
  long const a = from->numShapes(ccUITablet::imageLayer), b = to->numShapes(ccUITablet::imageLayer);
  BoxShape shape(from, ccVector<2>(2, 2));
  EXPECT_EQ(from->numShapes(ccUITablet::imageLayer), a + 1);
  shape.parent(to);
  EXPECT_EQ(from->numShapes(ccUITablet::imageLayer), a);
  EXPECT_EQ(to->numShapes(ccUITablet::imageLayer), b + 1);
  shape.drawLayer(ccUITablet::overlayLayer);
  EXPECT_EQ(to->numShapes(ccUITablet::imageLayer), b);
  EXPECT_TRUE(test->removeShape(&shape));
  EXPECT_EQ(to->numShapes(ccUITablet::imageLayer), b);
  EXPECT_EQ(to->numShapes(ccUITablet::overlayLayer), test.displayFrame()->numShapes(ccUITablet::overlayLayer));
  test->addShape(&shape, ccDisplay::imageCoords);
  shape.parent(nullptr);
  EXPECT_EQ(to->numShapes(ccUITablet::overlayLayer), test.displayFrame()->numShapes(ccUITablet::overlayLayer));
}

TEST(DisplaySeams, aTransformThatCannotBeInvertedThrowsBeforeAnyChange)
{
  TestDisplay test(40, 30);
  test->image(cf_grey(12, 8, 50), true);
  test.update();
  auto const before = test.pels();
  ccPelBuffer_const<unsigned char> image = cf_grey(9, 9, 200);
  image.clientFromImageXform(ccXform<2>(ccMatrix<2>(1, 2, 2, 4), ccVector<2>()));
  test.clearLogs();

  EXPECT_THROW(test->image(image, true), ccMathError::Singular);

  test.update();
  EXPECT_EQ(test.pels(), before);
  EXPECT_EQ(test->imageSize(), ccPair<long>(12, 8));
  EXPECT_EQ(test.counts().imageChanged, 0);
}

TEST(DisplaySeams, anImageReducedToLessThanAPelLeavesNothingOpen)
{
  for (double m : {0.5, 0.4, 0.3}) {
    TestDisplay test(40, 30);
    test->image(cf_grey(16, 16, 50), true);
    test->magExact(m);
    for (long w : {1L, 2L, 3L, 40L})
      for (long h : {1L, 2L, 3L}) {
        test->image(cf_grey(w, h, 99), true);
        test.update();
        test.scope().poison(0x123456);
        test.root().fullDraw(ccUITablet::bothLayers);
        test.update();
        for (std::uint32_t pel : test.pels())
          ASSERT_NE(pel, 0x123456u) << m << " " << w << "x" << h;
      }
  }
}

TEST(DisplaySeams, anImageFromInsideAFramesRedrawLosesNoMarks)
{
  TestDisplay test(38, 21);
  struct Feeding : ccUIControlFrame {
    using ccUIControlFrame::ccUIControlFrame;
    ccDisplay* display = nullptr;
    void redraw_() override
    {
      set(ccColor::greenColor(), imageLayer);
      if (ccDisplay* const d = std::exchange(display, nullptr))
        d->image(cf_grey(59, 16, 80), true);
    }
  } frame(&test.display(), ccUIRect(27, 3, 1, 3));
  frame.opaque(ccUITablet::imageLayer, true);
  frame.condVisible(true);
  test.update();
  frame.display = &test.display();

  frame.redraw(ccUITablet::bothLayers);

  cf_expectRepaint(test, "fed");
}

}  // namespace
