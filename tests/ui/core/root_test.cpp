// The root: planes, colours, cursor, flushing, and its own drawing.
#include "canvas/ui_error.h"
#include "foundation/resource.h"
#include "tests/support/memory_scope.h"
#include "tests/support/test_tree.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

TEST(Root, isVisibleEnabledAndAlwaysSelectedFromTheStart)
{
  TestRoot root;

  EXPECT_TRUE(root.visible() && root.enabled() && root.selected());
  EXPECT_TRUE(root.keepSel());
  EXPECT_FALSE(root.condSelected(false, false));
  EXPECT_TRUE(root.selected());
  EXPECT_EQ(root.root(), nullptr);
  EXPECT_EQ(&root.rootMutex(), &root.mutex());
  EXPECT_TRUE(root.isVisible());
}

TEST(Root, standsInTheListOfRootsWhileItLives)
{
  auto const has = [](ccUIRootObject const* root) {
    auto const& all = ccUIRootObject::roots();
    return std::find(all.begin(), all.end(), root) != all.end();
  };
  ccUIRootObject const* gone = nullptr;
  {
    TestRoot first, second;
    gone = &first;
    EXPECT_TRUE(has(&first) && has(&second));
    EXPECT_EQ(ccUIRootObject::roots().back(), &second);
  }
  EXPECT_FALSE(has(gone));
}

TEST(Planes, areMadeTogetherOnFirstUseInZOrder)
{
  TestRoot root;
  EXPECT_EQ(root.numKids(), 0);

  ccUIControlFrame* const ground = root.groundPlane();

  EXPECT_EQ(root.numKids(), 3);
  EXPECT_EQ(root.backKid(), root.subPlane());
  EXPECT_EQ(root.subPlane()->closerSib(), ground);
  EXPECT_EQ(root.frontKid(), root.floatingPlane());
  EXPECT_EQ(root.numKids(), 3);
  for (ccUIControlFrame* plane : {root.subPlane(), ground, root.floatingPlane()}) {
    EXPECT_TRUE(plane->visible() && plane->enabled() && plane->selected());
    EXPECT_TRUE(plane->autoDelete() && plane->dontMove() && plane->keepSel());
    EXPECT_EQ(plane->frameRect(), ccUIRect::firstQuad);
    EXPECT_EQ(plane->root(), &root);
  }
}

TEST(Cursor, isStoredAndSetAlsoForAnEqualValue)
{
  TestRoot root;
  EXPECT_EQ(root.cursor(), ccUIRootObject::arrowCursor);

  root.cursor(ccUIRootObject::panCursor);
  root.cursor(ccUIRootObject::panCursor);

  EXPECT_EQ(root.cursor(), ccUIRootObject::panCursor);
  EXPECT_EQ(root.cursors.size(), 2u);
  EXPECT_EQ(root.cursors[1], 4);
}

TEST(RootColors, theInitialTable)
{
  TestRoot root;
  std::vector<ccRGB> expected(256);
  for (int i = 10; i <= 240; ++i)
    expected[static_cast<std::size_t>(i)] = ccRGB(static_cast<unsigned char>(i), static_cast<unsigned char>(i),
                                                  static_cast<unsigned char>(i));
  ccRGB const low[] = {{0, 0, 0},     {128, 0, 0},   {0, 128, 0},     {128, 128, 0},   {0, 0, 128},
                       {128, 0, 128}, {0, 128, 128}, {192, 192, 192}, {192, 220, 192}, {166, 202, 240}};
  ccRGB const high[] = {{255, 255, 255}, {255, 255, 255}, {243, 243, 243}, {160, 32, 240}, {255, 165, 0},
                        {255, 251, 240}, {160, 160, 164}, {128, 128, 128}, {255, 0, 0},    {0, 255, 0},
                        {255, 255, 0},   {0, 0, 255},     {255, 0, 255},   {0, 255, 255},  {255, 255, 255}};
  std::copy(std::begin(low), std::end(low), expected.begin());
  std::copy(std::begin(high), std::end(high), expected.begin() + 241);

  std::vector<ccRGB> const map = root.systemColorMap();

  ASSERT_EQ(map.size(), 256u);
  for (std::size_t i = 0; i < 256; ++i)
    EXPECT_TRUE(map[i] == expected[i]) << i;
}

TEST(RootColors, aMapOf255EntriesThrowsAndChangesNothing)
{
  TestRoot root;
  auto const before = root.systemColorMap();

  EXPECT_THROW(root.systemColorMap(std::vector<ccRGB>(255, ccRGB(1, 2, 3))), ccUIError::InvalidColorMapSize);
  EXPECT_THROW(root.systemColorMap(std::vector<ccRGB>(257, ccRGB(1, 2, 3))), ccUIError::InvalidColorMapSize);

  EXPECT_TRUE(root.systemColorMap() == before);
}

TEST(RootColors, entries10To240OfAGoodMapAreNotKept)
{
  TestRoot root;

  root.systemColorMap(std::vector<ccRGB>(256, ccRGB(1, 2, 3)));

  auto const map = root.systemColorMap();
  for (std::size_t i = 0; i < 256; ++i) {
    auto const grey = static_cast<unsigned char>(i);
    EXPECT_TRUE(map[i] == (i >= 10 && i <= 240 ? ccRGB(grey, grey, grey) : ccRGB(1, 2, 3))) << i;
  }
}

TEST(RootColors, reservedColorsAre241To245)
{
  TestRoot root;
  EXPECT_TRUE(root.reservedColor(240) == ccRGB(0, 0, 0));
  EXPECT_TRUE(root.reservedColor(246) == ccRGB(0, 0, 0));
  EXPECT_TRUE(root.reservedColor(-1) == ccRGB(0, 0, 0));
  EXPECT_TRUE(root.reservedColor(245) == ccRGB(255, 165, 0));

  root.reservedColor(ccRGB(9, 8, 7), 241);
  root.reservedColor(ccRGB(9, 8, 7), 246);
  root.reservedColor(ccRGB(9, 8, 7), 240);
  root.reservedColor(ccRGB(9, 8, 7), 100000);

  EXPECT_TRUE(root.reservedColor(241) == ccRGB(9, 8, 7));
  EXPECT_TRUE(root.systemColorMap()[241] == ccRGB(9, 8, 7));
  EXPECT_TRUE(root.systemColorMap()[246] == ccRGB(255, 251, 240));
  EXPECT_TRUE(root.systemColorMap()[240] == ccRGB(240, 240, 240));
}

struct OnScreen : ::testing::Test {
  MemoryScope image{{40, 30}}, overlay{{40, 30}, 32, MemoryScope::overlayPlane};
  TestRoot root{&image, &overlay};

  std::uint32_t grey() const { return image.value(ccColor::dkGreyColor()); }
};

using RootDrawing = OnScreen;

TEST_F(RootDrawing, theImageLayerIsDarkGreyAndTheOverlayLetsTheImageAreaThrough)
{
  root.globalUpdate();

  EXPECT_EQ(image.pel(0, 0), grey());
  EXPECT_EQ(image.pel(39, 29), grey());
  EXPECT_EQ(overlay.pel(0, 0), overlay.keyValue());
  EXPECT_EQ(overlay.pel(39, 29), overlay.keyValue());
  EXPECT_TRUE(root.opaque(ccUITablet::overlayLayer));
}

TEST_F(RootDrawing, theOverlaysSurroundingsOfTheImageAreaArePainted)
{
  // A tree that is larger than its image scope: the root's extent on layer 0 is 40 x 30.
  overlay.resize({60, 50});
  root.setScope(ccUITablet::overlayLayer, &overlay, false);
  root.scopeRect(ccUIRect(0, 0, 60, 50));
  root.globalUpdate();

  EXPECT_EQ(overlay.pel(39, 29), overlay.keyValue());
  EXPECT_EQ(overlay.pel(40, 29), overlay.value(ccColor::dkGreyColor()));
  EXPECT_EQ(overlay.pel(39, 30), overlay.value(ccColor::dkGreyColor()));
  EXPECT_EQ(overlay.pel(59, 49), overlay.value(ccColor::dkGreyColor()));
}

TEST_F(RootDrawing, withoutAnImageScopeTheVideoScopeIsTheImageArea)
{
  root.setScope(ccUITablet::imageLayer, nullptr, false);
  root.videoScope(ccUIRect(5, 5, 10, 10));
  EXPECT_EQ(root.videoScope(), ccUIRect(5, 5, 10, 10));

  root.fullDraw(ccUITablet::bothLayers);

  EXPECT_EQ(overlay.pel(5, 5), overlay.keyValue());
  EXPECT_EQ(overlay.pel(14, 14), overlay.keyValue());
  EXPECT_EQ(overlay.pel(4, 5), overlay.value(ccColor::dkGreyColor()));
  EXPECT_EQ(overlay.pel(15, 14), overlay.value(ccColor::dkGreyColor()));
}

TEST_F(RootDrawing, rootSetIsNoChangeToBeFlushed)
{
  root.globalUpdate();

  root.rootSet(ccUIRect(2, 3, 4, 5), ccColor::redColor(), ccUITablet::imageLayer);

  EXPECT_EQ(image.pel(2, 3), image.value(ccColor::redColor()));
  EXPECT_EQ(image.pel(5, 7), image.value(ccColor::redColor()));
  EXPECT_EQ(image.pel(6, 7), grey());
  EXPECT_FALSE(root.anyChanged(ccUITablet::imageLayer));
}

TEST_F(RootDrawing, rootImageDrawsTheCutImageAndTheSketchRelativeToTheRectangle)
{
  root.globalUpdate();
  ccPelBuffer<ccPackedRGB16Pel> picture(20, 20);
  for (long y = 0; y < 20; ++y)
    for (long x = 0; x < 20; ++x)
      picture.setPel(x, y, ccPackedRGB16Pel(248, 0, 0));
  ccUITablet recorder;
  recorder.set(ccUIRect(1, 1, 2, 2), ccColor::greenColor(), ccUITablet::imageLayer);

  root.rootImage(picture, ccUIRect(10, 8, 6, 5), recorder.sketch(), ccUITablet::imageLayer);

  EXPECT_TRUE(image.rgb(10, 8) == ccRGB(248, 0, 0) || image.rgb(10, 8) == ccRGB(255, 0, 0));
  EXPECT_TRUE(image.rgb(15, 12) == image.rgb(10, 8));
  EXPECT_EQ(image.pel(16, 12), grey());
  EXPECT_EQ(image.pel(15, 13), grey());
  EXPECT_EQ(image.pel(11, 9), image.value(ccColor::greenColor()));
  EXPECT_EQ(image.pel(12, 10), image.value(ccColor::greenColor()));
  EXPECT_NE(image.pel(13, 10), image.value(ccColor::greenColor()));
  EXPECT_FALSE(root.anyChanged(ccUITablet::imageLayer));
  EXPECT_EQ(root.ccUITablet::numKids(), 1);  // the frame sizer of the first update; the temporary tablet is gone
}

TEST_F(RootDrawing, rootImageWithANullRectangleDrawsNothing)
{
  root.globalUpdate();
  ccPelBuffer<unsigned char> picture(20, 20);
  image.clearLog();

  root.rootImage(picture, ccUIRect(), ccUISketch(), ccUITablet::imageLayer);

  EXPECT_EQ(image.calls("draw8"), 0);
}

TEST_F(RootDrawing, aGreyRootImageGoesThroughTheMap)
{
  root.globalUpdate();
  ccPelBuffer<unsigned char> picture(4, 4);
  for (long y = 0; y < 4; ++y)
    for (long x = 0; x < 4; ++x)
      picture.setPel(x, y, 100);
  image.clearLog();

  root.rootImage(picture, ccUIRect(1, 1, 4, 4), ccUISketch(), ccUITablet::imageLayer);

  EXPECT_EQ(image.calls("draw8"), 1);
  EXPECT_EQ(image.log()[0].rect, ccUIRect(1, 1, 4, 4));
  EXPECT_TRUE(image.rgb(1, 1) == ccRGB(100, 100, 100));
}

TEST_F(RootDrawing, globalUpdateFlushesBothLayersInOnePresentationEachAndOnlyWhatChanged)
{
  root.globalUpdate();
  image.clearLog(), overlay.clearLog();

  root.globalUpdate();
  EXPECT_EQ(image.presentations() + overlay.presentations(), 0);

  root.set(ccUIRect(0, 0, 3, 3), ccColor::redColor(), ccUITablet::overlayLayer);
  root.set(ccUIRect(10, 0, 3, 3), ccColor::redColor(), ccUITablet::overlayLayer);
  EXPECT_TRUE(root.anyChanged(ccUITablet::overlayLayer));
  overlay.clearLog();
  root.globalUpdate();
  EXPECT_FALSE(root.anyChanged(ccUITablet::overlayLayer));
  EXPECT_FALSE(image.screenUpdatesLocked() || overlay.screenUpdatesLocked());
}

}  // namespace
