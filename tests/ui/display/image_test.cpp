// Which images a display takes, what it keeps of them, and what follows from their transforms.
#include "tests/support/test_display.h"
#include "tests/ui/display/test_images.h"

#include "acquisition/acq_image.h"
#include "foundation/math_error.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Grey8 = ccPelBuffer_const<unsigned char>;
using Grey16 = ccPelBuffer_const<unsigned short>;
using RGB16 = ccPelBuffer_const<ccPackedRGB16Pel>;
using RGB32 = ccPelBuffer_const<ccPackedRGB32Pel>;

TEST(DisplayImage, asksOfEachKindWhichIsBound)
{
  TestDisplay test(40, 30, {.depth = 16});
  test->image(cfRandomRGB16(5, 4, 1));
  EXPECT_TRUE(test->hasImage());
  EXPECT_TRUE(test->hasImage16());  // colour
  EXPECT_FALSE(test->hasImage8() || test->hasImage16Grey() || test->hasImage32());

  test->image(cfRandom16(6, 4, 1, 0, 100), 12);
  EXPECT_TRUE(test->hasImage() && test->hasImage16Grey());
  EXPECT_FALSE(test->hasImage8() || test->hasImage16() || test->hasImage32());

  test->removeImage();
  EXPECT_FALSE(test->hasImage());
  TestDisplay deep(40, 30, {.depth = 32});
  deep->image(cfRandomRGB32(7, 4, 1));
  EXPECT_TRUE(deep->hasImage() && deep->hasImage32());
  EXPECT_FALSE(deep->hasImage8() || deep->hasImage16() || deep->hasImage16Grey());
}

TEST(DisplayImage, eachKindUnbindsTheOthersButAnEightBitOneLeavesTheSixteenBitGreyBehindIt)
{
  TestDisplay test(40, 30, {.depth = 16});
  test->image(cfRandom16(6, 4, 1, 0, 100), 12);

  test->image(cfGrey8(5, 3, 20), true);
  EXPECT_TRUE(test->image8().isBound());
  EXPECT_TRUE(test->image16().isBound());
  EXPECT_EQ(test->imageSize(), ccPair<long>(5, 3));  // 8 bits first

  test->image(cfRandomRGB16(9, 8, 1));
  EXPECT_FALSE(test->image8().isBound() || test->image16().isBound());
  test->image(cfGrey8(5, 3, 20), true);
  EXPECT_FALSE(test->imageRGB16().isBound());
  test->image(cfRandom16(6, 4, 1, 0, 100), 12);
  EXPECT_FALSE(test->image8().isBound());
}

TEST(DisplayImage, removingTakesTheFirstOfTheBoundOnes)
{
  TestDisplay test(40, 30);
  test->image(cfRandom16(6, 4, 1, 0, 100), 12);
  test->image(cfGrey8(5, 3, 20), true);
  test.clearLogs();

  test->removeImage();
  EXPECT_FALSE(test->image8().isBound());
  EXPECT_TRUE(test->image16().isBound());
  EXPECT_EQ(test->imageSize(), ccPair<long>(6, 4));
  EXPECT_EQ(test->redraws, (std::vector<ccUITablet::Layers>{ccUITablet::bothLayers}));

  test->removeImage();
  EXPECT_FALSE(test->hasImage());
  EXPECT_EQ(test->redraws.size(), 2u);
  test->removeImage();  // nothing to remove, nothing to draw
  EXPECT_EQ(test->redraws.size(), 2u);
  EXPECT_TRUE(test->hooks.empty());
}

TEST(DisplayImage, removingKeepsTheFramesMapsAndThePan)
{
  TestDisplay test(40, 30);
  ccPelBuffer<unsigned char> image = cfGrey8(20, 20, 7);
  image.offset({3, 4});
  test->image(image, true);
  test->pan({5, 6});

  test->removeImage();

  EXPECT_EQ(test.imageFrame()->parentFromChild().trans(), ccVector<2>(-3, -4));
  EXPECT_EQ(test->pan(), ccVector<2>(5, 6));
}

TEST(DisplayImage, aColourImageAtAWrongDepthIsDroppedWithoutATrace)
{
  for (int depth : {8, 15, 16, 24, 32}) {
    TestDisplay test(40, 30, {.depth = depth});
    test->image(cfGrey8(5, 3, 20), true);
    test.clearLogs();

    if (depth != 16)
      test->image(cfRandomRGB16(9, 8, 1));
    if (depth != 32)
      test->image(cfRandomRGB32(9, 8, 1));

    EXPECT_TRUE(test->hooks.empty()) << depth;
    EXPECT_TRUE(test->redraws.empty()) << depth;
    EXPECT_TRUE(test.scope().log().empty()) << depth;
    EXPECT_EQ(test->imageSize(), ccPair<long>(5, 3)) << depth;
  }
}

TEST(DisplayImage, atAWrongDepthEvenABrokenColourImageIsDropped)
{
  TestDisplay test(40, 30, {.depth = 32});
  ccPelBuffer<ccPackedRGB16Pel> image = cfRandomRGB16(9, 8, 1);
  image.clientFromImageXformBase(nullptr);
  EXPECT_NO_THROW(test->image(image));
}

TEST(DisplayImage, theHookSeesTheNewImageButTheFormerMaps)
{
  TestDisplay test(40, 30);
  test->image(cfGrey8(20, 20, 7), true);
  test.clearLogs();
  ccPelBuffer<unsigned char> image = cfGrey8(10, 12, 9);
  image.offset({3, 4});
  bool seen = false;
  test->onHook = [&](std::string const& hook) {
    if (hook != "imageChanged")
      return;
    seen = true;
    EXPECT_EQ(test->imageSize(), ccPair<long>(10, 12));
    EXPECT_EQ(test->imageOffset(), ccPair<long>(3, 4));
    EXPECT_EQ(test.imageFrame()->parentFromChild(), ccXform<2>());
  };

  test->image(image, true);

  EXPECT_TRUE(seen);
  EXPECT_EQ(test->hooks, (HookLog{"imageChanged", "updatePanRanges", "panChanged"}));
  EXPECT_EQ(test.imageFrame()->parentFromChild(), ccXform<2>(ccMatrix<2>(), ccVector<2>(-3, -4)));
}

TEST(DisplayImage, aSixteenBitGreyImageSetsItsWindowMapFirst)
{
  TestDisplay test(40, 30);
  test->image(cfRandom16(20, 20, 1, 100, 200), 10);
  EXPECT_EQ(test->hooks, (HookLog{"imageMapChanged", "imageChanged", "updatePanRanges", "panChanged"}));
}

TEST(DisplayImage, rangesFollowTheImageOnlyWhileDefaultsAreOn)
{
  TestDisplay test(40, 30);
  test->defaultPan(false);
  test->image(cfGrey8(200, 100, 7), true);
  EXPECT_EQ(test->maxPan(), ccPair<double>(0, 0));
  EXPECT_EQ(test.counts().updatePanRanges, 0);

  test->defaultPan(true);
  test->image(cfGrey8(200, 20, 7), true);
  EXPECT_EQ(test->maxPan(), ccPair<double>(200, 30));
  EXPECT_EQ(test->minPan(), ccPair<double>(-200, -30));
}

TEST(DisplayImage, thePelsStayTheCallers)
{
  TestDisplay test(40, 30);
  ccPelBuffer<unsigned char> const image = cfGrey8(40, 30, 7);
  test->image(image, true);
  image.setPel(3, 2, 99);

  test->fullDraw(ccUITablet::bothLayers);

  EXPECT_EQ(test.scope().rgb(3, 2), ccRGB(99, 99, 99));
  EXPECT_EQ(test->image8().root(), image.root());
}

TEST(DisplayImage, anUnboundBufferTakesTheImageAway)
{
  TestDisplay test(40, 30);
  ccPelBuffer<unsigned char> image = cfGrey8(20, 20, 7);
  image.offset({3, 4});
  test->image(image, true);
  test.clearLogs();

  test->image(Grey8(), true);

  EXPECT_FALSE(test->hasImage());
  EXPECT_EQ(test->hooks, (HookLog{"imageChanged", "updatePanRanges"}));
  EXPECT_EQ(test.imageFrame()->parentFromChild(), ccXform<2>());
  EXPECT_EQ(test.clientFrame()->parentFromChild(), ccXform<2>());
  EXPECT_EQ(test->redraws, (std::vector<ccUITablet::Layers>{ccUITablet::imageLayer}));
  EXPECT_EQ(test->maxPan(), ccPair<double>(40, 30));
  plain::Picture const expected(40, 30, cfSurround(32));
  EXPECT_EQ(plain::firstDifference(expected, test.screenPels()), "");
}

TEST(DisplayImage, unboundBuffersOfEveryKindAreTaken)
{
  for (int depth : {16, 32}) {
    TestDisplay test(40, 30, {.depth = depth});
    test->image(cfGrey8(20, 20, 7), true);
    test->image(Grey16(), 12);
    EXPECT_FALSE(test->hasImage());
    test->image(cfGrey8(20, 20, 7), true);
    if (depth == 16)
      test->image(RGB16());
    else
      test->image(RGB32());
    EXPECT_FALSE(test->hasImage());
    plain::Picture const expected(40, 30, cfSurround(depth));
    EXPECT_EQ(plain::firstDifference(expected, test.screenPels()), "");
  }
}

TEST(DisplayImage, ofDisconnectedMemoryLeavesTheSurround)
{
  TestDisplay test(40, 30);
  std::vector<unsigned char> memory(100, 200);
  ccPtrHandle<ccPelRoot<unsigned char>> const pels(new ccPelRoot<unsigned char>(memory.data(), 10, 10, 10));
  test->image(ccPelBuffer<unsigned char>(pels), true);
  pels->disconnect();

  EXPECT_FALSE(test->hasImage());
  test->fullDraw(ccUITablet::bothLayers);

  plain::Picture const expected(40, 30, cfSurround(32));
  EXPECT_EQ(plain::firstDifference(expected, test.screenPels()), "");
}

TEST(DisplayImage, itsOwnBufferMayComeBack)
{
  TestDisplay test(40, 30);
  test->image(cfRandom8(40, 30, 1), true);
  test->image(test->image8(), true);
  EXPECT_TRUE(test->hasImage8());
  test->image(cfRandom16(40, 30, 1, 0, 200), 8);
  test->image(test->image16(), 8);
  EXPECT_TRUE(test->hasImage16Grey());
}

// ---- Transforms

ccXform<2> const kSlanted(ccMatrix<2>(2, 0.5, -0.25, 4), ccVector<2>(10, -20));

TEST(DisplayTransform, clientFrameFollowsTheImagesTransformAndOffset)
{
  TestDisplay test(40, 30);
  ccPelBuffer<unsigned char> image = cfGrey8(40, 30, 7);
  image.offset({3, 4});
  image.clientFromImageXform(kSlanted);
  test->image(image, true);

  // Image point (13, 9) is the pel (10, 5) of the display; in client coordinates 2*13 + 0.5*9 + 10, -0.25*13 + 4*9 - 20.
  ccPoint const client(40.5, 12.75);
  ccPoint const shown = test->clientToDisplay(client);
  EXPECT_NEAR(shown.x(), 10, 1e-9);
  EXPECT_NEAR(shown.y(), 5, 1e-9);
  ccPoint const back = test->displayToClient({10, 5});
  EXPECT_NEAR(back.x(), client.x(), 1e-9);
  EXPECT_NEAR(back.y(), client.y(), 1e-9);
  EXPECT_EQ(test->imageToDisplay({13, 9}), ccPoint(10, 5));
  EXPECT_EQ(test->displayToImage({10, 5}), ccPoint(13, 9));
}

TEST(DisplayTransform, framesFollowZoomAndPan)
{
  TestDisplay test(40, 30);
  ccPelBuffer<unsigned char> image = cfGrey8(20, 10, 7);
  image.offset({-7, 100});
  image.clientFromImageXform(ccXform<2>(10, 10, ccVector<2>()));
  test->image(image, true);
  test->mag(3);
  test->pan({2, -1});

  plain::View view = cfView(40, 30, 20, 10, 3, 2, -1);
  view.offsetX = -7;
  view.offsetY = 100;
  for (double x : {-7.0, 0.0, 3.25})
    for (double y : {100.0, 104.5}) {
      ccPoint const shown = test->imageToDisplay({x, y});
      EXPECT_NEAR(shown.x(), plain::displayX(view, x), 1e-9);
      EXPECT_NEAR(shown.y(), plain::displayY(view, y), 1e-9);
      ccPoint const fromClient = test->clientToDisplay({10 * x, 10 * y});
      EXPECT_NEAR(fromClient.x(), shown.x(), 1e-9);
      EXPECT_NEAR(fromClient.y(), shown.y(), 1e-9);
    }
}

TEST(DisplayTransform, displayCoordinatesStayWhatTheyAre)
{
  TestDisplay test(40, 30);
  test->image(cfGrey8(20, 10, 7), true);
  test->mag(3);
  test->pan({2, -1});
  EXPECT_EQ(test.displayFrame()->scopeCoords({5, 6}), ccPair<long>(5, 6));
}

template <class Buffer> void expectNothingHappens(TestDisplay& test, Buffer const& broken)
{
  test->image(cfGrey8(20, 10, 7), true);
  test->pan({3, 4});
  ccXform<2> const client = test.clientFrame()->parentFromChild();
  std::vector<ccRGB> const map = test->colorMapEx();
  test.clearLogs();
  bool const isNull = !broken.clientFromImageXformBase();
  auto const send = [&] {
    if constexpr (std::is_same_v<Buffer, ccPelBuffer<unsigned char>>)
      test->image(broken, false);
    else if constexpr (std::is_same_v<Buffer, ccPelBuffer<unsigned short>>)
      test->image(broken, 10);
    else
      test->image(broken);
  };
  if (isNull)
    EXPECT_THROW(send(), ccBadPointer);
  else
    EXPECT_THROW(send(), ccMathError::Singular);

  EXPECT_TRUE(test->hooks.empty());
  EXPECT_TRUE(test->redraws.empty());
  EXPECT_EQ(test->imageSize(), ccPair<long>(20, 10));
  EXPECT_TRUE(test->hasImage8());
  EXPECT_EQ(test->colorMapEx(), map);
  EXPECT_EQ(test.clientFrame()->parentFromChild(), client);
  EXPECT_EQ(test->pan(), ccVector<2>(3, 4));
  EXPECT_FALSE(test->drawingDisabled());
  EXPECT_FALSE(test.scope().screenUpdatesLocked());
  EXPECT_EQ(test->overlayRepaint_.depth(), 0);
  test->fullDraw(ccUITablet::bothLayers);
  EXPECT_EQ(test.scope().rgb(23, 14), ccRGB(7, 7, 7));  // the former image, with its mapped pels
}

template <class Buffer> void expectBrokenTransformsAreRefused(int depth, Buffer image)
{
  TestDisplay test(40, 30, {.depth = depth});
  image.clientFromImageXformBase(nullptr);
  expectNothingHappens(test, image);
  double const nan = std::numeric_limits<double>::quiet_NaN();
  for (ccMatrix<2> const& m : {ccMatrix<2>(1, 2, 2, 4), ccMatrix<2>(0, 0, 0, 0), ccMatrix<2>(nan, 0, 0, 1)}) {
    image.clientFromImageXform(ccXform<2>(m, ccVector<2>()));
    expectNothingHappens(test, image);
  }
}

TEST(DisplayTransform, aNullOrSingularOneThrowsBeforeAnythingHasChanged)
{
  expectBrokenTransformsAreRefused(32, cfGrey8(9, 8, 1));
  expectBrokenTransformsAreRefused(32, cfRandom16(9, 8, 1, 10, 900));
  expectBrokenTransformsAreRefused(32, cfRandomRGB32(9, 8, 1));
}

// x' = x + a x y, y' = y + b x x: neither linear nor affine.
class Bent : public cc2XformBase {
public:
  Bent(double a, double b) : a_(a), b_(b) {}
  ccVector<2> mapPoint(ccVector<2> const& p) const override
  {
    points.push_back(p);
    return ccVector<2>(p.x() + a_ * p.x() * p.y(), p.y() + b_ * p.x() * p.x());
  }
  bool isLinear() const override { return false; }
  ccXform<2> linearXform(ccVector<2> const&) const override { return ccXform<2>(7, 7, ccVector<2>(7, 7)); }

  mutable std::vector<ccVector<2>> points;

private:
  double a_, b_;
};

// Least squares by the normal equations: the client coordinate as c0 + c1 x + c2 y.
struct Fit {
  double c[3];
};
Fit fitted(std::vector<ccVector<2>> const& at, std::vector<double> const& value)
{
  double m[3][4] = {};
  for (std::size_t i = 0; i < at.size(); ++i) {
    double const row[3] = {1, at[i].x(), at[i].y()};
    for (int r = 0; r < 3; ++r) {
      for (int k = 0; k < 3; ++k)
        m[r][k] += row[r] * row[k];
      m[r][3] += row[r] * value[i];
    }
  }
  for (int p = 0; p < 3; ++p)
    for (int r = 0; r < 3; ++r)
      if (r != p) {
        double const f = m[r][p] / m[p][p];
        for (int k = p; k < 4; ++k)
          m[r][k] -= f * m[p][k];
      }
  Fit fit;
  for (int r = 0; r < 3; ++r)
    fit.c[r] = m[r][3] / m[r][r];
  return fit;
}

TEST(DisplayTransform, aNonLinearOneIsReplacedByALinearFitOverAGridOfTheWindow)
{
  struct {
    long w, h, columns, rows;
  } const cases[] = {{40, 30, 8, 8}, {8, 8, 8, 8}, {5, 3, 5, 3}, {100, 4, 8, 4}, {20, 9, 8, 8}};
  for (auto const& c : cases) {
    TestDisplay test(60, 60);
    ccPelBuffer<unsigned char> image = cfGrey8(c.w, c.h, 7);
    image.offset({10, -4});
    ccPtrHandle<Bent> const bent(new Bent(0.001, 0.002));
    image.clientFromImageXformBase(ccPtrHandle_const<cc2XformBase>(bent.get()));

    test->image(image, true);

    std::vector<ccVector<2>> grid;
    std::vector<double> xs, ys;
    for (long y = 0; y < c.rows; ++y)
      for (long x = 0; x < c.columns; ++x) {
        double const px = 10 + static_cast<double>(x * c.w) / static_cast<double>(c.columns);
        double const py = -4 + static_cast<double>(y * c.h) / static_cast<double>(c.rows);
        grid.emplace_back(px, py);
        xs.push_back(px + 0.001 * px * py);
        ys.push_back(py + 0.002 * px * px);
      }
    ASSERT_EQ(bent->points.size(), grid.size());
    for (std::size_t i = 0; i < grid.size(); ++i) {
      EXPECT_NEAR(bent->points[i].x(), grid[i].x(), 1e-12);
      EXPECT_NEAR(bent->points[i].y(), grid[i].y(), 1e-12);
    }
    Fit const fx = fitted(grid, xs), fy = fitted(grid, ys);
    ccXform<2> const stored = test->image8().clientFromImageXformBase()->linearXform({0, 0});
    EXPECT_TRUE(test->image8().clientFromImageXformBase()->isLinear());
    EXPECT_NEAR(stored.trans().x(), fx.c[0], 1e-7) << c.w;
    EXPECT_NEAR(stored.trans().y(), fy.c[0], 1e-7) << c.w;
    EXPECT_NEAR(stored.matrix().element(0, 0), fx.c[1], 1e-9);
    EXPECT_NEAR(stored.matrix().element(0, 1), fx.c[2], 1e-9);
    EXPECT_NEAR(stored.matrix().element(1, 0), fy.c[1], 1e-9);
    EXPECT_NEAR(stored.matrix().element(1, 1), fy.c[2], 1e-9);
    // The frame goes the fitted way, too: the client coordinates of the image point (12, 0).
    ccPoint const client(fx.c[0] + 12 * fx.c[1], fy.c[0] + 12 * fy.c[1]);
    ccPoint const shown = test->clientToDisplay(client), wanted = test->imageToDisplay({12, 0});
    EXPECT_NEAR(shown.x(), wanted.x(), 1e-6);
    EXPECT_NEAR(shown.y(), wanted.y(), 1e-6);
  }
}

TEST(DisplayTransform, aNonLinearOneOfAnImageOfOnePelIsTaken)
{
  TestDisplay test(60, 60);
  ccPelBuffer<unsigned char> image = cfGrey8(1, 1, 7);
  image.offset({10, 20});
  image.clientFromImageXformBase(ccPtrHandle_const<cc2XformBase>(new Bent(0.01, 0)));

  test->image(image, true);

  // One point: the deviation from the identity at (10, 20) is (2, 0).
  ccPoint const shown = test->clientToDisplay({12, 20}), wanted = test->imageToDisplay({10, 20});
  EXPECT_NEAR(shown.x(), wanted.x(), 1e-6);
  EXPECT_NEAR(shown.y(), wanted.y(), 1e-6);
}

TEST(DisplayTransform, theCallersBufferKeepsItsOwn)
{
  TestDisplay test(60, 60);
  ccPelBuffer<unsigned char> image = cfGrey8(10, 10, 7);
  image.clientFromImageXformBase(ccPtrHandle_const<cc2XformBase>(new Bent(0.01, 0.01)));
  test->image(image, true);
  EXPECT_FALSE(image.clientFromImageXformBase()->isLinear());
}

// ---- Acquired images

ccPtrHandle<ccAcqImage> acquired(ccAcqImage* image) { return ccPtrHandle<ccAcqImage>(image); }

TEST(DisplayAcquiredImage, takesTheFirstFormThatFits)
{
  enum Kind { none, grey8, grey16, rgb16, rgb32 };
  struct {
    int depth;
    Kind from, shown;
  } const cases[] = {
      {32, rgb32, rgb32}, {32, rgb16, rgb32},  {16, rgb16, rgb16}, {16, rgb32, rgb16}, {24, rgb32, grey8},
      {15, rgb16, grey8}, {8, rgb32, grey8},   {32, grey8, grey8}, {16, grey8, grey8}, {8, grey8, grey8},
      {8, grey16, grey16}, {16, grey16, grey16}, {32, grey16, grey16}};
  for (auto const& c : cases) {
    TestDisplay test(40, 30, {.depth = c.depth});
    ccPtrHandle<ccAcqImage> const image =
        acquired(c.from == grey8    ? new ccAcqImage(cfGrey8(5, 4, 9))
                 : c.from == grey16 ? new ccAcqImage(cfRandom16(5, 4, 1, 0, 4095), 12)
                 : c.from == rgb16  ? new ccAcqImage(cfRandomRGB16(5, 4, 1))
                                    : new ccAcqImage(cfRandomRGB32(5, 4, 1)));

    EXPECT_TRUE(test->image(image, nullptr)) << c.depth << " " << c.from;

    Kind const got = test->hasImage8()        ? grey8
                     : test->hasImage16Grey() ? grey16
                     : test->hasImage16()     ? rgb16
                     : test->hasImage32()     ? rgb32
                                              : none;
    EXPECT_EQ(got, c.shown) << c.depth << " " << c.from;
  }
}

TEST(DisplayAcquiredImage, sixteenBitGreyGetsTheMapOfItsBits)
{
  TestDisplay test(40, 30);
  test->image(acquired(new ccAcqImage(cfRandom16(5, 4, 1, 0, 1023), 10)), nullptr);
  EXPECT_EQ(test->colorMapEx().size(), 1024u);
  test->image(acquired(new ccAcqImage(cfRandom16(5, 4, 1, 0, 1023), 12)), nullptr);
  EXPECT_EQ(test->colorMapEx().size(), 4096u);
}

TEST(DisplayAcquiredImage, eightBitGreyPelsAreMapEntries)
{
  TestDisplay test(5, 4);
  test->image(acquired(new ccAcqImage(cfGrey8(5, 4, 3))), nullptr);
  EXPECT_EQ(test.scope().rgb(2, 2), ccRGB(3, 3, 3));  // not kept out of the system entries
}

TEST(DisplayAcquiredImage, theTransformGivenIsSetOnTheBuffer)
{
  for (int depth : {16, 32})
    for (int kind = 0; kind < 4; ++kind) {
      TestDisplay test(40, 30, {.depth = depth});
      ccXform<2> x(3, 5, ccVector<2>(1, 2));
      ccPtrHandle<ccAcqImage> const image = acquired(kind == 0   ? new ccAcqImage(cfGrey8(40, 30, 9))
                                                     : kind == 1 ? new ccAcqImage(cfRandom16(40, 30, 1, 0, 4095), 12)
                                                     : kind == 2 ? new ccAcqImage(cfRandomRGB16(40, 30, 1))
                                                                 : new ccAcqImage(cfRandomRGB32(40, 30, 1)));
      ASSERT_TRUE(test->image(image, &x));
      ccPoint const shown = test->clientToDisplay({31, 52});
      EXPECT_NEAR(shown.x(), 10, 1e-9) << depth << " " << kind;
      EXPECT_NEAR(shown.y(), 10, 1e-9) << depth << " " << kind;
    }
}

TEST(DisplayAcquiredImage, aFailedAcquisitionIsRefusedAndChangesNothing)
{
  TestDisplay test(40, 30);
  test->image(cfGrey8(5, 3, 20), true);
  test.clearLogs();
  for (ceImageFormat format : {ceImageFormatGrey8, ceImageFormatGrey16, ceImageFormatRGB16, ceImageFormatRGB32})
    EXPECT_FALSE(test->image(acquired(new ccAcqImage(format)), nullptr));
  EXPECT_TRUE(test->hooks.empty());
  EXPECT_EQ(test->imageSize(), ccPair<long>(5, 3));
}

TEST(DisplayAcquiredImage, aNullHandleThrows)
{
  TestDisplay test(40, 30);
  EXPECT_THROW(test->image(ccPtrHandle<ccAcqImage>(), nullptr), ccBadPointer);
}

}  // namespace
