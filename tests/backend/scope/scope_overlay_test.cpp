#include "canvas/graphic_props.h"
#include "platform/paint.h"
#include "tests/backend/scope/scope_fixture.h"

using plat::result;
using plat::testing::failNext;
using plat::testing::Op;
using plat::testing::overlays;
using plat::testing::shownOverlays;

constexpr std::uint32_t uyvy = 0x59565955, yuy2 = 0x32595559;

class ScopeOverlay : public ScopeTest {
protected:
  void createPair(ScopeProbe& image, ScopeProbe& overlay)
  {
    create(image);
    create(overlay);
    ASSERT_EQ(overlay.enableOverlayPlane(true, ccPair<long>(width, height)), 0);
    image.drawSurface(&overlay);
    overlay.drawSurface(&image);
  }
};

// --- Overlay plane

TEST_F(ScopeOverlay, imageShowsThroughPassColor)
{
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe image, overlay(true);
    createPair(image, overlay);
    for (ScopeProbe* s : {&image, &overlay})
      s->colorMap(testColors());
    overlay.set(ccColor::passColor());
    image.set(ccColor::blueColor());
    overlay.set(ccUIRect(5, 5, 5, 5), ccColor::redColor());
    EXPECT_EQ(shown(0, 0) & 0xF8F8F8, 0x0000F8u) << depth;
    EXPECT_EQ(shown(6, 6) & 0xF8F8F8, 0xF80000u) << depth;
    image.set(ccUIRect(4, 4, 4, 4), ccColor::greenColor());
    EXPECT_EQ(shown(4, 4) & 0xF8F8F8, 0x00F800u) << depth;
    EXPECT_EQ(shown(6, 6) & 0xF8F8F8, 0xF80000u) << depth;
    overlay.set(ccUIRect(5, 5, 5, 5), ccColor::passColor());
    EXPECT_EQ(shown(6, 6) & 0xF8F8F8, 0x00F800u) << depth;
    EXPECT_EQ(shown(9, 9) & 0xF8F8F8, 0x0000F8u) << depth;
  }
}

TEST_F(ScopeOverlay, passPelIsThatOfTheSurfacesFormat)
{
  std::uint32_t const expected[] = {243, 30 * 1024 + 30 * 32 + 30, 63390, 0xF3F3F3, 0xF3F3F3};
  for (std::size_t i = 0; i < 5; ++i) {
    screen(allDepths[i]);
    ScopeProbe overlay(true);
    create(overlay);
    overlay.set(ccColor::passColor());
    EXPECT_EQ(pelOf(overlay.surface(), 3, 3), expected[i]) << allDepths[i];
  }
}

TEST_F(ScopeOverlay, childOfAnOverlayFillsWithTheSamePassPel)
{
  ScopeProbe overlay(true);
  create(overlay);
  std::unique_ptr<ccUIScope> const child(overlay.createChildScope(ccUIRect(5, 5, 5, 5), false));
  child->set(ccColor::passColor());
  EXPECT_EQ(pelOf(overlay.surface(), 5, 5), 0xF3F3F3u);
}

TEST_F(ScopeOverlay, passColorOnAnImageScopeDrawsNothingAndReports)
{
  ScopeProbe image;
  create(image);
  image.set(ccColor::redColor());
  image.clearChange();
  image.set(ccUIRect(1, 1, 3, 3), ccColor::passColor());
  EXPECT_EQ(pelOf(image.surface(), 2, 2), 0xFF0000u);
  EXPECT_EQ(image.changeRect(), ccUIRect(1, 1, 3, 3));
}

TEST_F(ScopeOverlay, partedScopesPresentTheirOwnSurfaces)
{
  ScopeProbe image, overlay(true);
  createPair(image, overlay);
  overlay.set(ccColor::redColor());
  image.drawSurface(nullptr);
  image.set(ccColor::blueColor());
  EXPECT_EQ(shown(3, 3), 0x0000FFu);
}

TEST_F(ScopeOverlay, partnerThatDiesPartsThem)
{
  ScopeProbe image;
  create(image);
  {
    ScopeProbe overlay(true);
    create(overlay);
    image.drawSurface(&overlay);
    overlay.drawSurface(&image);
  }
  image.set(ccColor::blueColor());
  EXPECT_EQ(shown(3, 3), 0x0000FFu);
}

TEST_F(ScopeOverlay, failedCombinedSurfaceShowsOnlyInTheFlag)
{
  ScopeProbe scope;
  create(scope);
  failNext(Op::createSurface, result(0x8876017C));
  EXPECT_EQ(scope.enableOverlayPlane(true, ccPair<long>(width, height)), 0);
  EXPECT_FALSE(scope.overlayPlaneEnabled());
  EXPECT_EQ(scope.enableOverlayPlane(true, ccPair<long>(width, height)), 0);
  EXPECT_TRUE(scope.overlayPlaneEnabled());
  EXPECT_TRUE(scope.combsurface().created());
}

TEST_F(ScopeOverlay, surfacesOfASizedLayerAreMadePartByPart)
{
  ScopeProbe image, overlay(true);
  createPair(image, overlay);
  EXPECT_EQ(overlay.releaseCombinedSurface(), 0);
  EXPECT_EQ(image.releaseDrawingSurface(), 0);
  EXPECT_EQ(overlay.releaseDrawingSurface(), 0);
  EXPECT_EQ(overlay.resizeCombinedSurface(ccPair<long>(30, 20)), 0);
  overlay.resizeDrawingSurface(ccPair<long>(30, 20));
  image.resizeDrawingSurface(ccPair<long>(30, 20));
  EXPECT_EQ(image.size(), ccPair<long>(30, 20));
  overlay.set(ccColor::passColor());
  image.set(ccColor::greenColor());
  EXPECT_EQ(shown(29, 19), 0x00FF00u);
}

// --- Chroma keying without an overlay

TEST_F(ScopeOverlay, keyOfChromaKeyingIsReadBackInEveryFormat)
{
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    create(scope);
    scope.colorMap(testColors());
    EXPECT_EQ(scope.chromaKey(0x0000FF), 0);  // red, as a COLORREF
    EXPECT_EQ(scope.enableChromaKeying(true, false), 0);
    EXPECT_EQ(scope.chromaKey(), 0xFFu);
    EXPECT_TRUE(scope.chromaKeyingEnabled());
    scope.set(ccColor::greenColor());

    HDC const dc = scope.getDC();
    ASSERT_NE(dc, nullptr);
    EXPECT_EQ(scope.getDC(), dc);
    plat::Painter& painter = *plat::painter(dc);
    painter.fillRect(plat::Rect{0, 0, static_cast<plat::i32>(width), static_cast<plat::i32>(height)}, 0x0000FF);
    painter.fillRect(plat::Rect{5, 5, 10, 10}, 0xFF0000);  // blue
    EXPECT_EQ(scope.releaseDC(nullptr), 0);
    EXPECT_EQ(scope.getDC(), dc);
    EXPECT_EQ(scope.releaseDC(dc), 0);

    EXPECT_EQ(shown(1, 1) & 0xF8F8F8, 0x00F800u) << depth;  // the image where the key was painted
    EXPECT_EQ(shown(6, 6) & 0xF8F8F8, 0x0000F8u) << depth;
  }
}

TEST_F(ScopeOverlay, noClientContextWithoutChromaKeying)
{
  ScopeProbe scope;
  EXPECT_EQ(scope.getDC(), nullptr);
  create(scope);
  EXPECT_EQ(scope.getDC(), nullptr);
}

TEST_F(ScopeOverlay, releasedContextPresentsOnlyWhatWasPainted)
{
  ScopeProbe scope;
  create(scope);
  ASSERT_EQ(scope.chromaKey(0x123456), 0);
  ASSERT_EQ(scope.enableChromaKeying(true, false), 0);
  scope.set(ccColor::greenColor());  // graphics are 0, which isn't the key: black
  EXPECT_EQ(shown(1, 1), 0u);
  ASSERT_EQ(scope.surface().bltColorFill(static_cast<RECT const*>(nullptr), 0xFF00FF, ceBltWait), 0);
  HDC const dc = scope.getDC();
  plat::painter(dc)->fillRect(plat::Rect{5, 5, 10, 10}, 0x123456);
  ASSERT_EQ(scope.releaseDC(dc), 0);
  EXPECT_EQ(shown(6, 6), 0xFF00FFu);
  EXPECT_EQ(shown(1, 1), 0u);
}

TEST_F(ScopeOverlay, missingHardwareMarksTheOverlayUnusable)
{
  ScopeProbe scope;
  create(scope);
  ASSERT_EQ(scope.enableChromaKeying(true, true), 0);
  EXPECT_EQ(scope.chromaFlags(), 1u + 2u + 32u);
  ASSERT_EQ(scope.enableChromaKeying(false, false), 0);
  EXPECT_EQ(scope.chromaFlags(), 0u);
}

TEST_F(ScopeOverlay, enablingRunsTheRedrawFunction)
{
  ScopeProbe scope;
  create(scope);
  int calls = 0;
  scope.redrawCallBack([](void* p) { ++*static_cast<int*>(p); }, &calls);
  scope.enableChromaKeying(true, false);
  EXPECT_EQ(calls, 1);
}

// --- Hardware overlay

TEST_F(ScopeOverlay, overlayIsShownWhereTheScreenHasItsKey)
{
  overlays(4, {});
  ScopeProbe scope;
  create(scope);
  ASSERT_EQ(scope.enableChromaKeying(true, false), 0);
  EXPECT_EQ(scope.chromaFlags(), 1u + 4u);
  EXPECT_TRUE(scope.surface().description().surfaceCaps().overlay());
  scope.set(ccColor::greenColor());

  ASSERT_EQ(shownOverlays().size(), 1u);
  EXPECT_EQ(shownOverlays()[0].flags, 0x4400u);
  EXPECT_EQ(shownOverlays()[0].source, (plat::Rect{0, 0, 40, 30}));
  EXPECT_EQ(shownOverlays()[0].screen, (plat::Rect{100, 50, 140, 80}));
  HDC const dc = scope.getDC();  // the window's own
  EXPECT_NE(dc, nullptr);
  EXPECT_EQ(scope.releaseDC(dc), 0);
}

TEST_F(ScopeOverlay, sourceOfAWindowBeyondTheScreenStandsWithoutTheClipAdded)
{
  overlays(4, {});
  ScopeProbe scope;
  plat::Rect const leftOut{-10, -4, 30, 26};
  windows().place(window_, &leftOut, -1);
  plat::testing::drain();
  create(scope);
  ASSERT_EQ(scope.enableChromaKeying(true, false), 0);
  scope.set(ccColor::greenColor());
  ASSERT_EQ(shownOverlays().size(), 1u);
  // 30 of 40 columns and 26 of 30 rows are left; the clip is 10 and 4.
  EXPECT_EQ(shownOverlays()[0].source, (plat::Rect{10, 4, 30, 26}));
  EXPECT_EQ(shownOverlays()[0].screen, (plat::Rect{0, 0, 30, 26}));
}

TEST_F(ScopeOverlay, widthOf769NeverUsesTheHardwareOverlayAnd768Does)
{
  overlays(4, {});
  for (long const w : {768L, 769L}) {
    ScopeProbe scope;
    ASSERT_EQ(scope.create(window_, ccPair<long>(w, 20), -1), 0);
    ASSERT_EQ(scope.enableChromaKeying(true, false), 0);
    EXPECT_EQ(scope.chromaFlags(), w == 768 ? 5u : 1u) << w;
  }
}

TEST_F(ScopeOverlay, yuvIsConvertedFromEightBits)
{
  struct {
    std::vector<std::uint32_t> codes;
    unsigned flags;
    std::uint32_t fourCC;
  } const rows[] = {{{yuy2, uyvy}, 1 + 2 + 4 + 8, uyvy}, {{yuy2}, 1 + 2 + 4 + 16, yuy2}};
  for (auto const& row : rows) {
    overlays(4, row.codes);
    ScopeProbe scope;
    create(scope);
    scope.colorMap(testColors());
    ASSERT_EQ(scope.enableChromaKeying(true, true), 0);
    EXPECT_EQ(scope.chromaFlags(), row.flags);
    EXPECT_EQ(scope.depth(), 8);
    EXPECT_TRUE(scope.surface().description().surfaceCaps().systemMemory());
    scope.set(ccColor(static_cast<unsigned char>(77)));
    EXPECT_EQ(pelOf(scope.surface(), 3, 3), 77u);
    ASSERT_EQ(shownOverlays().size(), 1u);
    EXPECT_EQ(shownOverlays()[0].fourCC, row.fourCC);
    // What is displayed is the overlay: luma in the upper byte for UYVY, in the lower one for YUY2.
    ccPelBuffer<ccPackedRGB16Pel> out(4, 4);
    scope.getDisplayedImage(out, nullptr, cc_TabletEnums::bothLayers);
    EXPECT_EQ(out.getPel(2, 2).word(), row.fourCC == uyvy ? 77 * 256 + 0x80 : 0x8000 + 77);
    // A second size keeps to YUV, though the drawing surface has 8 bits by now.
    ASSERT_EQ(scope.resize(ccPair<long>(20, 20), -1), 0);
    EXPECT_EQ(scope.chromaFlags(), row.flags);
  }
}

TEST_F(ScopeOverlay, yuvOfAnotherCodeFallsBackToTheScreensFormat)
{
  overlays(4, {0x12345678});
  ScopeProbe scope;
  create(scope);
  ASSERT_EQ(scope.enableChromaKeying(true, true), 0);
  EXPECT_EQ(scope.chromaFlags(), 1u + 2u + 4u);
  EXPECT_EQ(scope.depth(), 32);
}

TEST_F(ScopeOverlay, failedOverlayUpdateFallsBackForGood)
{
  for (std::uint32_t const code : {0x88760168u, 0x88760104u}) {
    overlays(4, {});
    ScopeProbe scope;
    create(scope);
    struct Scene {
      ScopeProbe& scope;
      static void draw(void* p) { static_cast<Scene*>(p)->scope.set(ccColor::greenColor()); }
    } scene{scope};
    scope.redrawCallBack(&Scene::draw, &scene);
    ASSERT_EQ(scope.chromaKey(0), 0);
    ASSERT_EQ(scope.enableChromaKeying(true, false), 0);
    EXPECT_EQ(scope.chromaFlags(), 5u);

    failNext(Op::updateOverlay, result(code));
    scope.set(ccColor::redColor());

    EXPECT_EQ(scope.chromaFlags(), 1u + 32u);
    EXPECT_EQ(shown(3, 3), 0x00FF00u);  // drawn anew, through the combined surface
    scope.set(ccColor::blueColor());
    EXPECT_EQ(shown(3, 3), 0x0000FFu);
    ASSERT_EQ(scope.resize(ccPair<long>(30, 20), -1), 0);
    EXPECT_EQ(scope.chromaFlags(), 1u + 32u);
    ASSERT_EQ(scope.enableChromaKeying(true, false), 0);
    EXPECT_EQ(scope.chromaFlags(), 5u);
  }
}

TEST_F(ScopeOverlay, whatIsDrawnAnewUnderALockIsNotForgotten)
{
  overlays(4, {});
  ScopeProbe scope;
  create(scope);
  ASSERT_EQ(scope.enableChromaKeying(true, false), 0);
  scope.redrawCallBack(
      [](void* p) {
        static_cast<ScopeProbe*>(p)->lockScreenUpdatesPush(true);
        static_cast<ScopeProbe*>(p)->set(ccColor::greenColor());
      },
      &scope);
  failNext(Op::updateOverlay, result(0x88760168));
  scope.set(ccUIRect(0, 0, 2, 2), ccColor::redColor());
  EXPECT_EQ(shown(9, 9), 0u);
  scope.lockScreenUpdatesPop();
  EXPECT_EQ(shown(9, 9), 0x00FF00u);
}

TEST_F(ScopeOverlay, otherFailuresOfTheUpdateChangeNothing)
{
  overlays(4, {});
  ScopeProbe scope;
  create(scope);
  ASSERT_EQ(scope.enableChromaKeying(true, false), 0);
  failNext(Op::updateOverlay, result(0x8876021C));
  scope.set(ccColor::redColor());
  EXPECT_EQ(scope.chromaFlags(), 5u);
}
