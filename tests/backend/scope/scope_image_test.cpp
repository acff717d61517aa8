// Reading back what is displayed.
#include "tests/backend/scope/scope_fixture.h"

using plat::result;
using plat::testing::failNext;
using plat::testing::Op;

namespace {

constexpr auto imageLayer = cc_TabletEnums::imageLayer;
constexpr auto overlayLayer = cc_TabletEnums::overlayLayer;
constexpr auto bothLayers = cc_TabletEnums::bothLayers;

}  // namespace

class ScopeImage : public ScopeTest {
protected:
  // Pel x of row y of the surface has value f(x + 40 y).
  template <class F> static void paint(ccDirectDrawSurface& s, F&& f)
  {
    for (long y = 0; y < height; ++y)
      for (long x = 0; x < width; ++x)
        ASSERT_EQ(s.bltColorFill(ccUIRect(x, y, 1, 1), f(static_cast<std::uint32_t>(x + width * y)), 0), 0);
  }
};

TEST_F(ScopeImage, everySourceAndOutFormat)
{
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    create(scope);
    auto const value = [depth](std::uint32_t i) {
      return depth == 8 ? i % 256 : depth == 15 ? i * 27 % 32768 : depth == 16 ? i * 53 % 65536 : i * 13931 % 0x1000000;
    };
    paint(scope.surface(), value);
    cs_GetDisplayedImageInfo info;
    info.imageTable = testColors();
    info.imageTableValid = true;
    for (bool const withInfo : {false, true}) {
      ccPelBuffer<unsigned char> grey(width, height);
      ccPelBuffer<ccPackedRGB16Pel> rgb16(width, height);
      ccPelBuffer<ccPackedRGB32Pel> rgb32(width, height);
      scope.getDisplayedImage(grey, withInfo ? &info : nullptr, imageLayer);
      scope.getDisplayedImage(rgb16, withInfo ? &info : nullptr, imageLayer);
      scope.getDisplayedImage(rgb32, withInfo ? &info : nullptr, imageLayer);
      for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(width * height); ++i) {
        long const x = static_cast<long>(i) % width, y = static_cast<long>(i) / width;
        std::uint32_t const v = value(i);
        std::uint32_t r, g, b;
        if (depth == 8) {
          ccRGB const c = withInfo ? testColor(v) : ccRGB(static_cast<unsigned char>(v), static_cast<unsigned char>(v),
                                                             static_cast<unsigned char>(v));
          r = c.r, g = c.g, b = c.b;
        } else if (depth == 15) {
          r = v / 1024 % 32 * 8, g = v / 32 % 32 * 8, b = v % 32 * 8;
        } else if (depth == 16) {
          r = v / 2048 * 8, g = v / 32 % 64 * 4, b = v % 32 * 8;
        } else {
          r = v / 65536, g = v / 256 % 256, b = v % 256;
        }
        ASSERT_EQ(grey.getPel(x, y), depth == 8 ? v : (r + 2 * g + b) / 4) << depth << ' ' << i;
        ASSERT_EQ(rgb16.getPel(x, y).word(), r / 8 * 2048 + (depth == 15 ? g / 8 * 64 : g / 4 * 32) + b / 8)
            << depth << ' ' << i;
        std::uint32_t const word = rgb32.getPel(x, y).word();
        if (depth == 8 && !withInfo)
          ASSERT_EQ(word, v * 0x01010101u);
        else
          ASSERT_EQ(word & 0xFFFFFF, r * 65536 + g * 256 + b) << depth << ' ' << i;
      }
    }
  }
}

TEST_F(ScopeImage, outBeyondTheSurfaceIsZero)
{
  for (int const depth : {8, 16, 32}) {
    screen(depth);
    ScopeProbe scope;
    create(scope);
    ASSERT_EQ(scope.surface().bltColorFill(static_cast<RECT const*>(nullptr), 0xFF, 0), 0);
    ccPelBuffer<unsigned char> grey = randomImage<unsigned char>(width + 7, height + 5, 1);
    ccPelBuffer<ccPackedRGB32Pel> rgb = randomImage<ccPackedRGB32Pel>(width + 7, height + 5, 1);
    scope.getDisplayedImage(grey, nullptr, imageLayer);
    scope.getDisplayedImage(rgb, nullptr, imageLayer);
    for (long y = 0; y < height + 5; ++y)
      for (long x = 0; x < width + 7; ++x) {
        bool const inside = x < width && y < height;
        ASSERT_EQ(grey.getPel(x, y) != 0, inside) << x << ' ' << y;
        ASSERT_EQ(rgb.getPel(x, y).word() != 0, inside) << x << ' ' << y;
      }
  }
}

TEST_F(ScopeImage, smallerOutAndWindowsOfABufferAreFilled)
{
  ScopeProbe scope;
  create(scope);
  paint(scope.surface(), [](std::uint32_t i) { return i; });
  ccPelBuffer<ccPackedRGB32Pel> whole(10, 10);
  ccPelBuffer<ccPackedRGB32Pel> part = whole;
  part.window(3, 4, 5, 5);
  scope.getDisplayedImage(part, nullptr, imageLayer);
  EXPECT_EQ(whole.getPel(2, 4).word(), 0u);
  EXPECT_EQ(whole.getPel(4, 5).word(), 1u + 40u);
  EXPECT_EQ(whole.getPel(8, 9).word(), 0u);
  ccPelBuffer<unsigned char> unbound;
  scope.getDisplayedImage(unbound, nullptr, imageLayer);
  EXPECT_FALSE(unbound.isBound());
}

TEST_F(ScopeImage, unlockableSurfaceGivesZeroAfterFourRetries)
{
  ScopeProbe scope;
  create(scope);
  ASSERT_EQ(scope.surface().bltColorFill(static_cast<RECT const*>(nullptr), 0xFFFFFF, 0), 0);
  ccPelBuffer<unsigned char> out = randomImage<unsigned char>(10, 10, 1);
  scope.updates = 0;
  failNext(Op::lock, result(0x887601B3), 5);
  scope.getDisplayedImage(out, nullptr, imageLayer);
  EXPECT_EQ(scope.updates, 4);
  EXPECT_EQ(out.getPel(3, 3), 0);
  EXPECT_EQ(scope.surface().lock(), 0);  // the fifth failure was the last
  EXPECT_EQ(scope.surface().unlock(), 0);

  failNext(Op::lock, result(0x887601B3), 4);
  scope.getDisplayedImage(out, nullptr, imageLayer);
  EXPECT_EQ(out.getPel(3, 3), 255);
}

TEST_F(ScopeImage, layersAreDrawingPartnerAndDisplayed)
{
  ScopeProbe image, overlay(true);
  create(image);
  create(overlay);
  ASSERT_EQ(overlay.enableOverlayPlane(true, ccPair<long>(width, height)), 0);
  image.drawSurface(&overlay);
  overlay.drawSurface(&image);
  overlay.set(ccColor::passColor());
  image.set(ccColor::blueColor());
  overlay.set(ccUIRect(0, 0, 5, 5), ccColor::redColor());

  ccPelBuffer<ccPackedRGB32Pel> out(10, 10);
  cs_GetDisplayedImageInfo info;
  info.overlayRequested = true;
  image.getDisplayedImage(out, &info, imageLayer);
  EXPECT_EQ(info.drawingSurface, &image.surface());
  EXPECT_EQ(info.partnerSurface, &overlay.surface());
  EXPECT_EQ(out.getPel(1, 1).word() & 0xFFFFFF, 0x0000FFu);
  image.getDisplayedImage(out, nullptr, overlayLayer);
  EXPECT_EQ(out.getPel(1, 1).word() & 0xFFFFFF, 0xFF0000u);
  EXPECT_EQ(out.getPel(9, 9).word() & 0xFFFFFF, 0xF3F3F3u);
  image.getDisplayedImage(out, nullptr, bothLayers);  // the overlay scope's combined surface
  EXPECT_EQ(out.getPel(1, 1).word() & 0xFFFFFF, 0xFF0000u);
  EXPECT_EQ(out.getPel(9, 9).word() & 0xFFFFFF, 0x0000FFu);
  overlay.getDisplayedImage(out, nullptr, bothLayers);
  EXPECT_EQ(out.getPel(9, 9).word() & 0xFFFFFF, 0x0000FFu);
}

TEST_F(ScopeImage, layerWithoutAPartnerIsZero)
{
  ScopeProbe scope;
  create(scope);
  scope.set(ccColor::redColor());
  ccPelBuffer<ccPackedRGB32Pel> out = randomImage<ccPackedRGB32Pel>(5, 5, 1);
  scope.getDisplayedImage(out, nullptr, overlayLayer);
  EXPECT_EQ(out.getPel(2, 2).word(), 0u);
}

TEST_F(ScopeImage, chromaWithoutOverlayReadsTheCombinedSurface)
{
  ScopeProbe scope;
  create(scope);
  ASSERT_EQ(scope.enableChromaKeying(true, false), 0);
  scope.set(ccColor::greenColor());
  ccPelBuffer<ccPackedRGB32Pel> out(5, 5);
  scope.getDisplayedImage(out, nullptr, bothLayers);
  EXPECT_EQ(out.getPel(2, 2).word() & 0xFFFFFF, 0x00FF00u);  // graphics are all key
  EXPECT_EQ(pelOf(scope.combsurface(), 2, 2), 0x00FF00u);
}

TEST_F(ScopeImage, runningPhaseDoesNotHinder)
{
  ScopeProbe scope;
  create(scope);
  scope.colorMapEx(testColors());
  scope.optimizeDrawing(true);
  ccPelBuffer<unsigned char> pels(4, 4);
  pels.setPel(1, 1, 200);
  scope.draw(pels, ccPoint(0, 0), false, 0, true);
  ccPelBuffer<ccPackedRGB32Pel> out(5, 5);
  scope.getDisplayedImage(out, nullptr, imageLayer);
  EXPECT_EQ(out.getPel(1, 1).word() & 0xFFFFFF, surfacePel(testColor(200), 32));
  scope.optimizeDrawing(false);
}

// --- Overlay stage

class ScopeImageOverlay : public ScopeImage {
protected:
  void SetUp() override
  {
    screen(8);
    image_ = std::make_unique<ScopeProbe>();
    overlay_ = std::make_unique<ScopeProbe>(true);
    create(*image_);
    create(*overlay_);
    image_->drawSurface(overlay_.get());
    ASSERT_EQ(image_->surface().bltColorFill(static_cast<RECT const*>(nullptr), 20, 0), 0);
    ASSERT_EQ(overlay_->surface().bltColorFill(static_cast<RECT const*>(nullptr), 99, 0), 0);
    // First row: key, 5, key, 6; another first pel in the second row.
    for (long x = 0; x < 4; ++x)
      ASSERT_EQ(overlay_->surface().bltColorFill(ccUIRect(x, 0, 1, 1), x == 1 ? 5u : x == 3 ? 6u : 243u, 0), 0);
    info_.overlayRequested = true;
    info_.imageTable = testColors();
    info_.imageTableValid = true;
    info_.overlayTable.resize(256);
    info_.overlayTable[5] = ccRGB(8, 16, 24);
    info_.overlayTable[6] = ccRGB(80, 160, 240);
    info_.overlayTableValid = true;
    info_.keyIndex = 243;
    info_.background = ccPackedRGB32Pel(0x112233);
  }

  std::vector<std::uint32_t> row(long y)
  {
    ccPelBuffer<ccPackedRGB32Pel> out(4, 3);
    image_->getDisplayedImage(out, &info_, imageLayer);
    std::vector<std::uint32_t> pels;
    for (long x = 0; x < 4; ++x)
      pels.push_back(out.getPel(x, y).word());
    return pels;
  }

  std::unique_ptr<ScopeProbe> image_, overlay_;
  cs_GetDisplayedImageInfo info_;
  std::uint32_t const imagePel_ = surfacePel(testColor(20), 32);
};

TEST_F(ScopeImageOverlay, modeOnePaintsTheBackgroundAtKeyPels)
{
  info_.overlayMode = 1;
  std::vector<std::uint32_t> const expected{0x112233, 0x081018, 0x112233, 0x50A0F0};
  EXPECT_EQ(row(0), expected);
  EXPECT_EQ(row(2), expected);  // every row is judged by the overlay's first
}

TEST_F(ScopeImageOverlay, modeTwoKeepsTheImageAndDoesNotAdvance)
{
  info_.overlayMode = 2;
  std::vector<std::uint32_t> const expected{0x081018, 0x50A0F0, imagePel_, imagePel_};
  EXPECT_EQ(row(0), expected);
  EXPECT_EQ(row(1), expected);
}

TEST_F(ScopeImageOverlay, otherModesAndNoRequestLeaveTheImage)
{
  std::vector<std::uint32_t> const expected(4, imagePel_);
  EXPECT_EQ(row(0), expected);
  info_.overlayMode = 3;
  EXPECT_EQ(row(0), expected);
  info_.overlayMode = 1;
  info_.overlayRequested = false;
  EXPECT_EQ(row(0), expected);
}

TEST_F(ScopeImageOverlay, invalidTableMakesEveryPelAKeyPel)
{
  info_.overlayMode = 1;
  info_.overlayTableValid = false;
  EXPECT_EQ(row(0), std::vector<std::uint32_t>(4, 0x112233));
}

TEST_F(ScopeImageOverlay, withoutPartnerNothingHappens)
{
  image_->drawSurface(nullptr);
  info_.overlayMode = 1;
  EXPECT_EQ(row(0), std::vector<std::uint32_t>(4, imagePel_));
  EXPECT_EQ(info_.partnerSurface, nullptr);
}

TEST_F(ScopeImageOverlay, greyIsLeftAloneAndRgb16Packed)
{
  info_.overlayMode = 1;
  ccPelBuffer<unsigned char> grey(4, 3);
  image_->getDisplayedImage(grey, &info_, imageLayer);
  EXPECT_EQ(grey.getPel(1, 0), 20);
  ccPelBuffer<ccPackedRGB16Pel> packed(4, 3);
  image_->getDisplayedImage(packed, &info_, imageLayer);
  EXPECT_EQ(packed.getPel(1, 0).word(), 1 * 2048 + 4 * 32 + 3);
  EXPECT_EQ(packed.getPel(0, 0).word(), 0x11 / 8 * 2048 + 0x22 / 4 * 32 + 0x33 / 8);
}

TEST_F(ScopeImageOverlay, shortTablesAreBlack)
{
  info_.overlayMode = 1;
  info_.overlayTable.resize(6);
  info_.imageTable.resize(3);
  EXPECT_EQ(row(0), (std::vector<std::uint32_t>{0x112233, 0x081018, 0x112233, 0}));
  info_.overlayRequested = false;
  EXPECT_EQ(row(0), std::vector<std::uint32_t>(4, 0));
}
