// What a new image costs: which layers are painted, what is presented, and that a settled display allocates nothing.
#include "tests/support/memory_watch.h"
#include "tests/support/test_display.h"
#include "tests/ui/display/test_images.h"

#include <gtest/gtest.h>

namespace {

using Layers = ccUITablet::Layers;
constexpr Layers kImage = ccUITablet::imageLayer, kOverlay = ccUITablet::overlayLayer;

struct OverlayStage : ::testing::Test {
  TestDisplay test{100, 80, {.overlay = true, .rect = ccUIRect(10, 10, 60, 50)}};
  std::vector<BoxShape*> above;  // one on the overlay of each frame

  OverlayStage()
  {
    for (ccUIShapesFrame* frame : {test.displayFrame(), static_cast<ccUIShapesFrame*>(test.imageFrame()),
                                   static_cast<ccUIShapesFrame*>(test.clientFrame())}) {
      auto* const shape = new BoxShape(frame, ccVector<2>(5, 5), 6);
      shape->drawLayer(kOverlay);
      shape->condVisible(true);
      above.push_back(shape);
    }
    test->image(cfGrey8(40, 30, 7), true);
    test.update();
    clear();
  }

  void clear()
  {
    test.clearLogs();
    for (BoxShape* shape : above)
      shape->draws = 0;
  }
  long drawn() const
  {
    long n = 0;
    for (BoxShape const* shape : above)
      n += shape->draws;
    return n;
  }
};

using DisplayRepaint = OverlayStage;

TEST_F(DisplayRepaint, anImageOfEqualSizeRedrawsTheImageLayerOnlyAndNotTheOverlayGraphics)
{
  test->image(cfGrey8(40, 30, 9), true);

  EXPECT_EQ(test->redraws, (std::vector<Layers>{kImage}));
  EXPECT_EQ(drawn(), 0);
  for (char const* kind : {"set", "line", "draw8", "expand8", "sample8"})
    EXPECT_EQ(test.overlayScope().calls(kind), 0) << kind;
  EXPECT_EQ(test.overlayScope().presentations(), 0);
  EXPECT_EQ(test.scope().calls("draw8"), 1);
  EXPECT_EQ(test.scope().screenRGB(40, 35), ccRGB(9, 9, 9));
}

TEST_F(DisplayRepaint, anImageOfEqualSizePresentsTheDisplaysRectangleOnceAndNothingElse)
{
  test->image(cfGrey8(40, 30, 9), true);
  EXPECT_EQ(test.scope().presented(), (std::vector<ccUIRect>{ccUIRect(10, 10, 60, 50)}));
}

TEST_F(DisplayRepaint, anImageOfAnotherSizeRedrawsBothLayers)
{
  test->image(cfGrey8(41, 30, 9), true);
  EXPECT_EQ(test->redraws, (std::vector<Layers>{ccUITablet::bothLayers}));
  EXPECT_EQ(drawn(), 3);
}

TEST_F(DisplayRepaint, whatCountsAsAnotherSize)
{
  struct {
    char const* name;
    std::function<void(ccDisplay&)> show;
    bool overlayToo;
  } const cases[] = {
      {"width", [](ccDisplay& d) { d.image(cfGrey8(41, 30, 9), true); }, true},
      {"height", [](ccDisplay& d) { d.image(cfGrey8(40, 31, 9), true); }, true},
      // The ramp is set for the first such image, but no size has changed.
      {"another kind", [](ccDisplay& d) { d.image(cfRandomRGB32(90, 20, 1)); }, false},
      {"an offset",
       [](ccDisplay& d) {
         ccPelBuffer<unsigned char> image = cfGrey8(40, 30, 9);
         image.offset({1, 0});
         d.image(image, true);
       },
       true},
      {"a transform",
       [](ccDisplay& d) {
         ccPelBuffer<unsigned char> image = cfGrey8(40, 30, 9);
         image.clientFromImageXform(ccXform<2>(2, 2, ccVector<2>()));
         d.image(image, true);
       },
       true},
      {"other pels", [](ccDisplay& d) { d.image(cfGrey8(40, 30, 200), false); }, false},
      {"the first one after none",
       [](ccDisplay& d) {
         d.removeImage();
         static_cast<ConcreteDisplay&>(d).redraws.clear();
         d.image(cfGrey8(40, 30, 9), true);
       },
       true}};
  for (auto const& c : cases) {
    test->image(cfGrey8(40, 30, 7), true);
    clear();
    c.show(test.display());
    EXPECT_EQ(test->redraws, (std::vector<Layers>{c.overlayToo ? ccUITablet::bothLayers : kImage})) << c.name;
  }
}

// Another kind is no other size, yet graphics in image coordinates move with the middle of the picture.
TEST_F(DisplayRepaint, overlayGraphicsFollowTheMapsAtTheNextUpdateWhateverMovedThem)
{
  struct {
    char const* name;
    std::function<void(ccDisplay&)> show;
  } const cases[] = {{"another kind", [](ccDisplay& d) { d.image(cfRandomRGB32(10, 20, 1)); }},
                     {"no image any more", [](ccDisplay& d) { d.image(ccPelBuffer_const<unsigned char>(), true); }}};
  for (auto const& c : cases) {
    ccPelBuffer<unsigned char> moved = cfGrey8(40, 30, 9);
    moved.offset({-6, 4});
    test->image(moved, true);
    test.update();
    std::vector<std::uint32_t> const before = test.overlayScope().surface();
    c.show(test.display());
    test.update();
    std::vector<std::uint32_t> const seen = test.overlayScope().surface();
    EXPECT_NE(seen, before) << c.name;
    test.overlayScope().poison(7);
    test.root().fullDraw(ccUITablet::bothLayers);
    test.update();
    EXPECT_EQ(seen, test.overlayScope().surface()) << c.name;
  }
}

TEST_F(DisplayRepaint, layersAreAtRestAfterwards)
{
  test->image(cfGrey8(40, 30, 9), true);
  test->image(cfGrey8(41, 30, 9), true);
  EXPECT_EQ(test->redrawLayer_, ccUITablet::bothLayers);
  for (ccUITablet* tablet : {static_cast<ccUITablet*>(&test.display()), static_cast<ccUITablet*>(test.displayFrame()),
                             static_cast<ccUITablet*>(test.imageFrame()), static_cast<ccUITablet*>(test.clientFrame())}) {
    EXPECT_EQ(tablet->overlayRepaint_.depth(), 0);
    EXPECT_TRUE(tablet->overlayRepaint_.top());
  }
  EXPECT_EQ(test->layerRepaint_.depth(), 1);
}

TEST_F(DisplayRepaint, aDisplayWithDrawingDisabledKeepsTheImageForLater)
{
  test->disableDrawing();
  test->image(cfGrey8(40, 30, 9), true);
  EXPECT_TRUE(test->redraws.empty());
  EXPECT_EQ(test.scope().presentations(), 0);
  EXPECT_EQ(test->hooks, (HookLog{"imageChanged", "updatePanRanges", "panChanged"}));
  test->enableDrawing(true);
  EXPECT_EQ(test.scope().screenRGB(40, 35), ccRGB(9, 9, 9));
}

TEST_F(DisplayRepaint, theOverlayLetsTheImageThroughAndPaintsTheRest)
{
  test->fullDraw(ccUITablet::bothLayers);
  EXPECT_TRUE(test->opaque(kImage));
  EXPECT_TRUE(test->opaque(kOverlay));
  EXPECT_EQ(test.overlayScope().pel(60, 50), test.overlayScope().keyValue());
}

TEST(DisplayOwnSketch, isDrawnOnTheImageLayerInEveryPass)
{
  TestDisplay test(40, 30);
  ccUITablet pen;
  pen.set(ccUIRect(3, 4, 5, 6), ccColor::redColor(), ccUITablet::bothLayers);
  test->sketch() += pen.sketch();
  test->image(cfGrey8(40, 30, 9), true);
  EXPECT_EQ(test.scope().screenRGB(3, 4), ccRGB(255, 0, 0));
  EXPECT_EQ(test.scope().screenRGB(8, 4), ccRGB(9, 9, 9));
  test->image(cfGrey8(40, 30, 10), true);
  EXPECT_EQ(test.scope().screenRGB(7, 9), ccRGB(255, 0, 0));
}

// Without an overlay shapes lie on the image layer and return above each image.
TEST(DisplayImageLayer, shapesAreDrawnAgainAboveEachImage)
{
  TestDisplay test(40, 30);
  auto* const shape = new BoxShape(test.imageFrame(), ccVector<2>(5, 5), 6);
  shape->color(ccColor::redColor());
  shape->condVisible(true);
  test->image(cfGrey8(40, 30, 7), true);
  test.update();
  shape->draws = 0;

  test->image(cfGrey8(40, 30, 9), true);

  EXPECT_EQ(shape->draws, 1);
  EXPECT_EQ(test.scope().screenRGB(6, 6), ccRGB(255, 0, 0));
  EXPECT_EQ(test.scope().screenRGB(20, 20), ccRGB(9, 9, 9));
}

TEST(DisplayImageLayer, anImageBehindAFormLeavesTheFormsPels)
{
  TestDisplay test(60, 40);
  struct Form : ccUIControlFrame {
    using ccUIControlFrame::ccUIControlFrame;
    void redraw_() override { set(ccColor::greenColor(), imageLayer); }
  } form(&test.root(), ccUIRect(10, 10, 20, 20));
  form.condVisible(true);
  test.update();
  test.clearLogs();

  test->image(cfGrey8(60, 40, 9), true);
  test->image(cfGrey8(60, 40, 11), true);

  EXPECT_EQ(test.scope().screenRGB(10, 10), ccRGB(0, 255, 0));
  EXPECT_EQ(test.scope().screenRGB(29, 29), ccRGB(0, 255, 0));
  EXPECT_EQ(test.scope().screenRGB(30, 30), ccRGB(11, 11, 11));
}

// ---- Allocations

struct Settled {
  TestDisplay test;
  explicit Settled(int depth) : test(120, 90, {.depth = depth, .rect = ccUIRect(10, 10, 100, 70)}) {}

  // Shows images in turn; returns the allocations of all but the first rounds.
  template <class Buffer, class Show> long allocationsOf(Buffer const (&images)[2], double magnification, Show&& show)
  {
    show(images[0]);
    test->magExact(magnification);
    test->image8();
    test.scope().keepLog(false);
    test->hooks.reserve(1000);
    test->redraws.reserve(1000);
    for (int i = 0; i < 6; ++i)
      show(images[i % 2]);
    long const before = MemoryWatch::allocations();
    for (int i = 0; i < 20; ++i)
      show(images[i % 2]);
    return MemoryWatch::allocations() - before;
  }
};

constexpr double kMags[] = {1.0, 3.0, 0.5, 1.37};

TEST(DisplayAllocations, eightBitImagesOfASettledSizeMakeNone)
{
  ccPelBuffer<unsigned char> const images[2] = {cfRandom8(64, 48, 1), cfRandom8(64, 48, 2)};
  for (int depth : {8, 16, 32})
    for (double m : kMags) {
      Settled settled(depth);
      EXPECT_EQ(settled.allocationsOf(images, m, [&](auto const& image) { settled.test->image(image, true); }), 0)
          << depth << " " << m;
    }
}

TEST(DisplayAllocations, sixteenBitGreyImagesMakeNone)
{
  ccPelBuffer<unsigned short> const images[2] = {cfRandom16(64, 48, 1, 0, 900), cfRandom16(64, 48, 2, 200, 1023)};
  for (long bits : {10L, 16L})  // each with a map of its own
    for (double m : kMags) {
      Settled settled(32);
      EXPECT_EQ(settled.allocationsOf(images, m, [&](auto const& image) { settled.test->image(image, bits); }), 0)
          << bits << " " << m;
    }
}

TEST(DisplayAllocations, colourImagesMakeNone)
{
  ccPelBuffer<ccPackedRGB16Pel> const small[2] = {cfRandomRGB16(64, 48, 1), cfRandomRGB16(64, 48, 2)};
  ccPelBuffer<ccPackedRGB32Pel> const large[2] = {cfRandomRGB32(64, 48, 1), cfRandomRGB32(64, 48, 2)};
  for (double m : kMags) {
    Settled settled16(16), settled32(32);
    EXPECT_EQ(settled16.allocationsOf(small, m, [&](auto const& image) { settled16.test->image(image); }), 0) << m;
    EXPECT_EQ(settled32.allocationsOf(large, m, [&](auto const& image) { settled32.test->image(image); }), 0) << m;
  }
}

TEST(DisplayAllocations, aDragStepOfTheImageMakesNone)
{
  Settled settled(32);
  TestDisplay& test = settled.test;
  test->image(cfRandom8(64, 48, 1), true);
  test->mouseMode(ccDisplay::panMode);
  test.scope().keepLog(false);
  test.moveTo({50, 50}).press();
  for (long i = 0; i < 10; ++i)
    test.moveTo({50 + i, 50 - i});
  long const before = MemoryWatch::allocations();
  for (long i = 0; i < 10; ++i)
    test.moveTo({60 - i, 40 + i});
  long const taken = MemoryWatch::allocations() - before;
  test.release();
  EXPECT_EQ(taken, 0);
}

}  // namespace
