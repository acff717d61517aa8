#include "tests/backend/scope/scope_fixture.h"

using plat::result;
using plat::testing::failNext;
using plat::testing::Op;

class DirectDraw : public ScopeTest {
protected:
  void SetUp() override { ASSERT_EQ(ddraw_.create(window_), 0); }

  static ccDirectDrawSurfaceDesc offscreen(std::uint32_t w, std::uint32_t h, std::uint32_t bits = 0)
  {
    ccDirectDrawSurfaceCaps caps;
    caps.offscreenPlain(true);
    ccDirectDrawSurfaceDesc desc;
    desc.surfaceCaps(caps);
    desc.width(w);
    desc.height(h);
    if (bits) {
      ccDirectDrawPixelFormat format;
      format.bitCount(bits);
      format.flags(bits == 8 ? 96 : 64);
      format.gBitMask(bits == 15 ? 5 : 6);
      desc.pixelFormat(format);
    }
    return desc;
  }

  void make(ccDirectDrawSurface& s, std::uint32_t w, std::uint32_t h, std::uint32_t bits = 0)
  {
    s.description(offscreen(w, h, bits));
    ASSERT_EQ(s.create(&ddraw_), 0);
  }

  ccDirectDraw ddraw_;
};

TEST_F(DirectDraw, createsThePrimarySurfaceOfTheScreen)
{
  EXPECT_TRUE(ddraw_.created());
  EXPECT_EQ(ddraw_.window(), window_);
  ccDirectDrawSurfaceDesc mode;
  EXPECT_EQ(ddraw_.displayFormat(mode), 0);
  EXPECT_EQ(mode.width(), 800u);
  EXPECT_EQ(mode.height(), 600u);
  EXPECT_EQ(mode.pixelFormat().bitCount(), 32u);
  EXPECT_TRUE(mode.surfaceCaps().primarySurface());
}

TEST_F(DirectDraw, createdTwiceIsRefused)
{
  EXPECT_EQ(ddraw_.create(window_), result(0x88760232));
  ccDirectDrawSurface s;
  make(s, 4, 4);
  EXPECT_EQ(s.create(&ddraw_), result(0x88760232));
}

TEST_F(DirectDraw, failedCreationLeavesNothing)
{
  ccDirectDraw other;
  for (Op const op : {Op::openDevice, Op::cooperativeLevel, Op::createSurface, Op::describe}) {
    failNext(op, result(0x80004005));
    EXPECT_EQ(other.create(window_), result(0x80004005));
    EXPECT_FALSE(other.created());
    EXPECT_FALSE(other.primary().created());
  }
  EXPECT_EQ(other.create(window_), 0);
}

TEST_F(DirectDraw, surfaceWithoutDeviceIsAnInvalidObject)
{
  ccDirectDrawSurface s;
  ccDirectDraw none;
  s.description(offscreen(4, 4));

  EXPECT_EQ(s.create(nullptr), result(0x88760082));
  EXPECT_EQ(s.create(&none), result(0x88760082));
  EXPECT_FALSE(s.created());
}

TEST_F(DirectDraw, everyCallOfAnUnmadeObjectIsAnInvalidObject)
{
  ccDirectDrawSurface s, made;
  make(made, 4, 4);
  HDC dc = nullptr;
  ccUIRect const r(0, 0, 2, 2);
  ccDirectDrawSurfaceCaps caps;
  plat::PaletteEntry entry;
  ccDirectDrawClipper clipper;
  ccDirectDrawPalette palette;
  ccDirectDraw none;
  ccDirectDrawCaps hard, soft;
  ccDirectDrawSurfaceDesc desc;

  long const answers[] = {s.lock(), s.unlock(), s.getDC(&dc), s.releaseDC(dc), s.blt(&made, r, r, 0), made.blt(&s, r, r, 0),
                          made.blt(nullptr, r, r, 0), s.bltColorFill(r, 0, 0), s.bltStatus(1),
                          s.colorKey(ccDirectDrawColorKey(), 8), s.attach(&clipper), s.attach(&palette),
                          made.attach(&clipper), made.attach(&palette), s.caps(caps), s.copy(made), made.copy(s),
                          s.updateOverlay(made, r, r, 0), made.updateOverlay(s, r, r, 0), s.restore(), s.release(),
                          clipper.window(window_), palette.getPalette(&entry, 0, 1), palette.setPalette(&entry, 0, 1),
                          none.release(), none.caps(hard, soft), none.displayFormat(desc),
                          none.displayFormat(640, 480, 32), none.WaitForVerticalBlank(1), none.testCooperativeLevel()};

  for (long const answer : answers)
    EXPECT_EQ(answer, result(0x88760082));
  EXPECT_FALSE(s.isLost());
}

TEST_F(DirectDraw, lockTwiceIsBusyAndUnlockTwiceIsNotLocked)
{
  ccDirectDrawSurface s;
  make(s, 4, 4);

  EXPECT_EQ(s.lock(), 0);
  EXPECT_EQ(s.lock(), result(0x887601AE));
  EXPECT_EQ(s.unlock(), 0);
  EXPECT_EQ(s.unlock(), result(0x88760248));
}

TEST_F(DirectDraw, lastLockPointerOutlivesTheLockButNotAFailedOne)
{
  ccDirectDrawSurface s;
  make(s, 4, 4);
  ASSERT_EQ(s.lock(), 0);
  void* const pels = s.description().surface();
  ASSERT_EQ(s.unlock(), 0);

  EXPECT_EQ(s.lastLockSurfacePtr(), pels);
  EXPECT_EQ(s.description().surface(), nullptr);
  failNext(Op::lock, result(0x887601B3));
  EXPECT_EQ(s.lock(), result(0x887601B3));
  EXPECT_EQ(s.lastLockSurfacePtr(), nullptr);
}

TEST_F(DirectDraw, lockOfAPartPointsIntoTheSurface)
{
  ccDirectDrawSurface s;
  make(s, 8, 8);
  ASSERT_EQ(s.lock(), 0);
  unsigned char* const base = s.description().surface();
  long const pitch = s.description().pitch();
  ASSERT_EQ(s.unlock(), 0);

  ASSERT_EQ(s.lock(ccUIRect(2, 3, 4, 4)), 0);
  EXPECT_EQ(s.description().surface(), base + 3 * pitch + 2 * 4);
  EXPECT_EQ(s.unlock(), 0);
}

TEST_F(DirectDraw, recreateUsesTheFirstDescription)
{
  ccDirectDrawSurface s;
  make(s, 5, 4, 15);
  EXPECT_EQ(s.description().pixelFormat().bitCount(), 16u);  // as the device tells it
  EXPECT_EQ(s.description().pixelFormat().gBitMask(), 0x3E0u);

  ASSERT_EQ(s.release(), 0);
  ASSERT_EQ(s.recreate(), 0);

  EXPECT_EQ(s.createDescription().pixelFormat().bitCount(), 15u);
  EXPECT_EQ(s.createDescription().pixelFormat().gBitMask(), 5u);
  EXPECT_EQ(s.description().width(), 5u);
}

TEST_F(DirectDraw, recreateAfterTheDeviceIsGoneIsAnInvalidObject)
{
  ccDirectDrawSurface s;
  {
    ccDirectDraw other;
    ASSERT_EQ(ddraw_.release(), 0);
    ASSERT_EQ(other.create(window_), 0);
    s.description(offscreen(4, 4));
    ASSERT_EQ(s.create(&other), 0);
  }
  EXPECT_FALSE(s.created());
  EXPECT_EQ(s.recreate(), result(0x88760082));
}

TEST_F(DirectDraw, releaseTakesEverythingAlong)
{
  ccDirectDrawSurface s;
  make(s, 4, 4);
  ccDirectDrawClipper clipper;
  ASSERT_EQ(clipper.create(&ddraw_), 0);
  ccDirectDrawPalette palette;
  ASSERT_EQ(palette.create(&ddraw_), 0);

  EXPECT_EQ(ddraw_.release(), 0);

  EXPECT_FALSE(s.created());
  EXPECT_FALSE(clipper.created());
  EXPECT_FALSE(palette.created());
  EXPECT_FALSE(ddraw_.primary().created());
  EXPECT_FALSE(ddraw_.created());
  EXPECT_EQ(ddraw_.release(), result(0x88760082));
}

TEST_F(DirectDraw, attachmentsAreTakenOffBeforeASurfaceGoes)
{
  ccDirectDrawSurface s;
  make(s, 4, 4, 8);
  ccDirectDrawPalette palette;
  ASSERT_EQ(palette.create(&ddraw_), 0);
  ASSERT_EQ(s.attach(&palette), 0);
  ccDirectDrawClipper clipper;
  ASSERT_EQ(clipper.create(&ddraw_), 0);
  ASSERT_EQ(s.attach(&clipper), 0);

  EXPECT_EQ(s.release(), 0);
  EXPECT_EQ(s.recreate(), 0);
}

TEST_F(DirectDraw, failedGetDCClearsTheFailedState)
{
  ccDirectDrawSurface s;
  make(s, 4, 4);
  HDC dc = nullptr;
  failNext(Op::getDC, result(0x88760249));

  EXPECT_EQ(s.getDC(&dc), result(0x88760249));
  EXPECT_EQ(dc, nullptr);
  ASSERT_EQ(s.getDC(&dc), 0);
  EXPECT_NE(dc, nullptr);
  EXPECT_EQ(s.releaseDC(dc), 0);
}

TEST_F(DirectDraw, bltCopiesAndLeavesOutTheKey)
{
  ccDirectDrawSurface a, b;
  make(a, 4, 2);
  make(b, 4, 2);
  ASSERT_EQ(a.bltColorFill(static_cast<RECT const*>(nullptr), 0x112233, 0x1000000), 0);
  ASSERT_EQ(a.bltColorFill(ccUIRect(1, 0, 1, 2), 0x445566, 0x1000000), 0);
  ASSERT_EQ(b.bltColorFill(static_cast<RECT const*>(nullptr), 0x777777, 0x1000000), 0);

  EXPECT_EQ(b.blt(&a, ccUIRect(0, 0, 2, 1), ccUIRect(2, 1, 2, 1), 0x1000000), 0);
  EXPECT_EQ(pelOf(b, 2, 1), 0x112233u);
  EXPECT_EQ(pelOf(b, 3, 1), 0x445566u);
  EXPECT_EQ(pelOf(b, 1, 1), 0x777777u);

  ASSERT_EQ(a.colorKey(ccDirectDrawColorKey(0x445566), 8), 0);
  EXPECT_EQ(b.blt(&a, ccUIRect(0, 0, 2, 1), ccUIRect(0, 0, 2, 1), 0x1008000), 0);
  EXPECT_EQ(pelOf(b, 0, 0), 0x112233u);
  EXPECT_EQ(pelOf(b, 1, 0), 0x777777u);
}

TEST_F(DirectDraw, colorKeyOfTwoBoundsIsARange)
{
  ccDirectDrawSurface a, b;
  make(a, 3, 1);
  make(b, 3, 1);
  for (long x = 0; x < 3; ++x)
    ASSERT_EQ(a.bltColorFill(ccUIRect(x, 0, 1, 1), static_cast<std::uint32_t>(10 + x), 0), 0);

  ASSERT_EQ(a.colorKey(ccDirectDrawColorKey(10, 11), 8), 0);
  ASSERT_EQ(b.blt(&a, ccUIRect(0, 0, 3, 1), ccUIRect(0, 0, 3, 1), 0x1008000), 0);

  EXPECT_EQ(pelsOf(b), (std::vector<std::uint32_t>{0, 0, 12}));
}

TEST_F(DirectDraw, copyTakesTheSmallerOfBothSizes)
{
  for (std::uint32_t const bits : {8u, 16u, 32u}) {
    ccDirectDrawSurface a, b;
    make(a, 8, 5, bits);  // rows without a rest
    make(b, bits == 8 ? 8 : 3, 7, bits);
    ASSERT_EQ(a.bltColorFill(static_cast<RECT const*>(nullptr), 0x11, 0), 0);
    ASSERT_EQ(b.copy(a), 0);

    std::vector<std::uint32_t> const pels = pelsOf(b);
    long const w = bits == 8 ? 8 : 3;
    for (long y = 0; y < 7; ++y)
      for (long x = 0; x < w; ++x)
        EXPECT_EQ(pels[static_cast<std::size_t>(y * w + x)], y < 5 ? 0x11u : 0u) << bits << ' ' << x << ' ' << y;
    EXPECT_EQ(a.copy(a), 0);
  }
}

TEST_F(DirectDraw, copyBetweenDepthsIsAnInvalidFormat)
{
  ccDirectDrawSurface a, b;
  make(a, 4, 4, 8);
  make(b, 4, 4, 16);
  EXPECT_EQ(b.copy(a), result(0x88760091));
}

TEST_F(DirectDraw, failedCopyLeavesBothUnlocked)
{
  ccDirectDrawSurface a, b;
  make(a, 4, 4);
  make(b, 4, 4);
  ASSERT_EQ(b.lock(), 0);
  EXPECT_EQ(b.copy(a), result(0x887601AE));
  EXPECT_EQ(b.unlock(), 0);
  EXPECT_EQ(a.lock(), 0);
  EXPECT_EQ(a.unlock(), 0);
}

TEST_F(DirectDraw, lostSurfacesSaySoUntilRestored)
{
  ccDirectDrawSurface s;
  make(s, 4, 4);
  EXPECT_FALSE(s.isLost());
  plat::testing::lose(window_);
  EXPECT_TRUE(s.isLost());
  EXPECT_TRUE(ddraw_.primary().isLost());
  EXPECT_EQ(s.restore(), 0);
  EXPECT_FALSE(s.isLost());
}

TEST_F(DirectDraw, capsTellWhatTheDeviceCan)
{
  ccDirectDrawCaps hard, soft;
  ASSERT_EQ(ddraw_.caps(hard, soft), 0);
  EXPECT_TRUE(hard.blt());
  EXPECT_TRUE(hard.bltStretch());
  EXPECT_TRUE(hard.colorFill());
  EXPECT_TRUE(hard.srcColorKey());
  EXPECT_FALSE(hard.overlay());
  EXPECT_FALSE(hard.dstOverlayColorKey());
  EXPECT_FALSE(hard.bankSwitched());
  EXPECT_EQ(hard.maxVisibleOverlays(), 0u);
  EXPECT_EQ(hard.videoMemory(), 256u << 20);

  plat::testing::overlays(2, {0x59565955});
  ASSERT_EQ(ddraw_.caps(hard, soft), 0);
  EXPECT_TRUE(hard.overlay());
  EXPECT_TRUE(hard.overlayFourCC());
  EXPECT_TRUE(hard.dstOverlayColorKey());
  EXPECT_EQ(hard.maxVisibleOverlays(), 2u);
}

TEST_F(DirectDraw, fourCCsAreReadAtCreation)
{
  ASSERT_EQ(ddraw_.release(), 0);
  plat::testing::overlays(1, {0x59565955, 0x32595559});
  ASSERT_EQ(ddraw_.create(window_), 0);
  EXPECT_EQ(ddraw_.fourCCCodes(), (std::list<std::uint32_t>{0x59565955, 0x32595559}));
  EXPECT_TRUE(ddraw_.supportsFourCC(0x32595559));
  EXPECT_FALSE(ddraw_.supportsFourCC(0x55595659));
}

TEST_F(DirectDraw, paletteStartsWithTheSystemsEntriesThatDoNotCollapse)
{
  ccDirectDrawPalette palette;
  ASSERT_EQ(palette.create(&ddraw_), 0);
  plat::PaletteEntry entries[256];
  ASSERT_EQ(palette.getPalette(entries, 0, 256), 0);
  std::vector<plat::PaletteEntry> const system = plat::platform().objects.systemEntries();
  for (std::size_t i = 0; i < 256; ++i) {
    EXPECT_EQ(entries[i].r, system[i].r);
    EXPECT_EQ(entries[i].b, system[i].b);
    EXPECT_EQ(entries[i].flags, 4);
  }
}

TEST_F(DirectDraw, displayFormatGoesThroughExclusiveModeAndBack)
{
  EXPECT_EQ(ddraw_.displayFormat(800, 600, 32), 0);
  EXPECT_NE(ddraw_.displayFormat(640, 480, 32), 0);
  failNext(Op::cooperativeLevel, result(0x88760245));
  EXPECT_EQ(ddraw_.displayFormat(800, 600, 32), result(0x88760245));
}

TEST(DirectDrawRecords, defaultsAndSizes)
{
  ccDirectDrawPixelFormat const f;
  EXPECT_EQ(f.size(), 32u);
  EXPECT_EQ(f.flags(), 64u);
  EXPECT_EQ(f.bitCount(), 2048u);
  EXPECT_EQ(f.rBitMask(), 3u);
  EXPECT_EQ(f.gBitMask(), 3u);
  EXPECT_EQ(f.bBitMask(), 2u);
  EXPECT_EQ(ccDirectDrawSurfaceDesc::size(), 136u);
  EXPECT_EQ(ccDirectDrawColorKey(7).low(), 7u);
  EXPECT_EQ(ccDirectDrawColorKey(7).high(), 7u);
}

TEST(DirectDrawRecords, capsAreBitsOfOneWord)
{
  struct {
    void (ccDirectDrawSurfaceCaps::*set)(bool);
    bool (ccDirectDrawSurfaceCaps::*get)() const;
    std::uint32_t bit;
  } const bits[] = {
      {&ccDirectDrawSurfaceCaps::primarySurface, &ccDirectDrawSurfaceCaps::primarySurface, 0x200},
      {&ccDirectDrawSurfaceCaps::offscreenPlain, &ccDirectDrawSurfaceCaps::offscreenPlain, 0x40},
      {&ccDirectDrawSurfaceCaps::overlay, &ccDirectDrawSurfaceCaps::overlay, 0x80},
      {&ccDirectDrawSurfaceCaps::paletteOK, &ccDirectDrawSurfaceCaps::paletteOK, 0x100},
      {&ccDirectDrawSurfaceCaps::systemMemory, &ccDirectDrawSurfaceCaps::systemMemory, 0x800},
      {&ccDirectDrawSurfaceCaps::videoMemory, &ccDirectDrawSurfaceCaps::videoMemory, 0x4000},
      {&ccDirectDrawSurfaceCaps::visible, &ccDirectDrawSurfaceCaps::visible, 0x8000},
  };
  for (auto const& b : bits) {
    ccDirectDrawSurfaceCaps caps;
    EXPECT_FALSE((caps.*b.get)());
    (caps.*b.set)(true);
    EXPECT_TRUE((caps.*b.get)());
    EXPECT_EQ(caps.bits(), b.bit);
    (caps.*b.set)(false);
    EXPECT_EQ(caps.bits(), 0u);
  }
}

TEST(DirectDrawRecords, settingAPartOfADescriptionMarksItValid)
{
  ccDirectDrawSurfaceDesc d;
  EXPECT_FALSE(d.widthValid() || d.heightValid() || d.pitchValid() || d.pixelFormatValid() || d.surfaceValid());
  d.width(1);
  EXPECT_TRUE(d.widthValid());
  EXPECT_FALSE(d.heightValid());
  d.height(1);
  EXPECT_TRUE(d.heightValid());
  d.pixelFormat(ccDirectDrawPixelFormat());
  EXPECT_TRUE(d.pixelFormatValid());
  EXPECT_FALSE(d.surfaceValid());
  d.surfaceCaps(ccDirectDrawSurfaceCaps(0x40));
  EXPECT_TRUE(d.surfaceValid());
  EXPECT_EQ(d.record().valid, 0x1007u);
  d.reset();
  EXPECT_EQ(d.record().valid, 0u);
  EXPECT_EQ(d.width(), 0u);
}
