#include "platform/device_testing.h"
#include "platform/surface.h"
#include "tests/platform/fake_screen.h"

using namespace plat;
using plat::testing::Op;

namespace {

constexpr Result busy = result(0x887601AE), badRect = result(0x88760096), badFormat = result(0x88760091);
constexpr Result lostCode = result(0x887601C2);
constexpr u32 waitFlag = 0x1000000, fillFlag = 0x400, keyFlag = 0x8000;

SurfaceDesc cfDesc(u32 w, u32 h, u32 bits = 0, u32 greenBits = 6, u32 caps = 0x40)
{
  SurfaceDesc desc;
  desc.valid = 1 | 2 | 4;
  desc.width = w;
  desc.height = h;
  desc.caps = caps;
  if (bits != 0) {
    desc.valid |= 0x1000;
    desc.format.bitCount = bits;
    desc.format.flags = bits == 8 ? 96 : 64;
    desc.format.rMask = bits > 16 ? 8 : 5;
    desc.format.gMask = bits > 16 ? 8 : greenBits;
    desc.format.bMask = bits > 16 ? 8 : 5;
  }
  return desc;
}

// Bit counts by depth code, as the scope asks for them.
SurfaceDesc cfDepthDesc(u32 w, u32 h, int depth)
{
  return cfDesc(w, h, depth == 15 ? 16 : static_cast<u32>(depth), depth == 15 ? 5 : 6);
}

u32 cfPelOf(Surface& surface, int x, int y)
{
  SurfaceDesc desc;
  EXPECT_EQ(surface.lock(nullptr, desc, 1), 0);
  u32 const value = cfPelAt(static_cast<u8*>(desc.pels), desc.pitch, static_cast<int>(desc.format.bitCount), x, y);
  EXPECT_EQ(surface.unlock(nullptr), 0);
  return value;
}

void cfSetPel(Surface& surface, int x, int y, u32 value)
{
  Rect const at{x, y, x + 1, y + 1};
  EXPECT_EQ(surface.blt(&at, nullptr, nullptr, fillFlag | waitFlag, value), 0);
}

// Each pel gets a value of its own.
void cfNumber(Surface& surface, int w, int h, u32 first = 1)
{
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x)
      cfSetPel(surface, x, y, first + static_cast<u32>(y * w + x));
}

struct SurfaceTest : ::testing::Test {
  SurfaceTest() : screen({40, 30}, 32) { EXPECT_EQ(openDevice(screen.window(), device), 0); }
  ~SurfaceTest() override
  {
    plat::testing::exclusive(false);
    plat::testing::overlays(0, {});
  }
  Ptr<Surface> make(SurfaceDesc const& desc)
  {
    Ptr<Surface> surface;
    EXPECT_EQ(device->createSurface(desc, surface), 0);
    return surface;
  }
  Ptr<Surface> primary()
  {
    Ptr<Surface> surface = make(cfDesc(0, 0, 0, 0, 0x200));
    EXPECT_EQ(device->createClipper(clipper), 0);
    EXPECT_EQ(clipper->window(screen.window()), 0);
    EXPECT_EQ(surface->setClipper(clipper.get()), 0);
    return surface;
  }
  FakeScreen screen;
  Ptr<DisplayDevice> device;
  Ptr<Clipper> clipper;
};

}  // namespace

TEST_F(SurfaceTest, lockTwiceIsBusyAndUnlockTwiceIsNotLocked)
{
  Ptr<Surface> const s = make(cfDesc(4, 4));
  SurfaceDesc desc;

  EXPECT_EQ(s->lock(nullptr, desc, 1), 0);
  EXPECT_EQ(s->lock(nullptr, desc, 1), busy);
  EXPECT_EQ(s->unlock(nullptr), 0);
  EXPECT_EQ(s->unlock(nullptr), result(0x88760248));
}

TEST_F(SurfaceTest, handleOutMakesLockAndBlitBusy)
{
  Ptr<Surface> const s = make(cfDesc(4, 4)), other = make(cfDesc(4, 4));
  SurfaceDesc desc;
  HDC dc = nullptr, second = nullptr;

  EXPECT_EQ(s->releaseDC(nullptr), result(0x8876024A));
  ASSERT_EQ(s->getDC(dc), 0);
  EXPECT_NE(dc, nullptr);
  EXPECT_EQ(s->getDC(second), result(0x8876026C));
  EXPECT_EQ(second, nullptr);
  EXPECT_EQ(s->lock(nullptr, desc, 1), busy);
  EXPECT_EQ(s->blt(nullptr, nullptr, nullptr, fillFlag, 1), busy);
  EXPECT_EQ(other->blt(nullptr, s.get(), nullptr, waitFlag, 0), busy);
  EXPECT_EQ(s->releaseDC(dc), 0);
  EXPECT_EQ(s->releaseDC(dc), result(0x8876024A));
  EXPECT_EQ(s->lock(nullptr, desc, 1), 0);
}

TEST_F(SurfaceTest, nullHandleDoesNotTakeTheHandleAway)
{
  Ptr<Surface> const s = make(cfDesc(4, 4));
  HDC dc = nullptr;
  ASSERT_EQ(s->getDC(dc), 0);

  EXPECT_NE(s->releaseDC(nullptr), 0);
  EXPECT_EQ(s->releaseDC(dc), 0);
}

TEST_F(SurfaceTest, lockedTargetIsBusyForBlitAndHandle)
{
  Ptr<Surface> const s = make(cfDesc(4, 4)), from = make(cfDesc(4, 4));
  SurfaceDesc desc;
  HDC dc = nullptr;
  ASSERT_EQ(s->lock(nullptr, desc, 1), 0);

  EXPECT_EQ(s->blt(nullptr, from.get(), nullptr, waitFlag, 0), busy);
  EXPECT_EQ(s->blt(nullptr, nullptr, nullptr, fillFlag, 0), busy);
  EXPECT_EQ(s->getDC(dc), busy);
}

TEST_F(SurfaceTest, emptyAndLeavingRectanglesAreRefused)
{
  Ptr<Surface> const s = make(cfDesc(4, 4)), from = make(cfDesc(4, 4));
  SurfaceDesc desc;
  Rect const bad[] = {{0, 0, 0, 4}, {2, 2, 2, 3}, {3, 0, 2, 4}, {0, 0, 5, 4}, {-1, 0, 3, 3}, {0, 0, 4, 5}, {0, -1, 4, 4}};
  for (Rect const& r : bad) {
    EXPECT_EQ(s->lock(&r, desc, 1), badRect) << r.left << ' ' << r.right;
    EXPECT_EQ(s->blt(&r, nullptr, nullptr, fillFlag, 0), badRect);
    EXPECT_EQ(s->blt(&r, from.get(), nullptr, waitFlag, 0), badRect);
    EXPECT_EQ(s->blt(nullptr, from.get(), &r, waitFlag, 0), badRect);
  }
  EXPECT_EQ(s->unlock(nullptr), result(0x88760248));
}

TEST_F(SurfaceTest, descriptionHasCanonicalMasksAndPaddedRows)
{
  struct Row {
    u32 bits, green;
    u32 flags, bitCount, r, g, b;
    i32 pitch;
  } const rows[] = {{8, 6, 96, 8, 0, 0, 0, 8},
                    {15, 5, 64, 16, 0x7C00, 0x3E0, 0x1F, 16},
                    {16, 5, 64, 16, 0x7C00, 0x3E0, 0x1F, 16},
                    {16, 6, 64, 16, 0xF800, 0x7E0, 0x1F, 16},
                    {16, 0x3E0, 64, 16, 0x7C00, 0x3E0, 0x1F, 16},
                    {24, 8, 64, 24, 0xFF0000, 0xFF00, 0xFF, 16},
                    {32, 8, 64, 32, 0xFF0000, 0xFF00, 0xFF, 24}};
  for (Row const& row : rows) {
    Ptr<Surface> const s = make(cfDesc(5, 3, row.bits, row.green));
    SurfaceDesc d;
    EXPECT_EQ(s->describe(d), 0);
    EXPECT_EQ(d.valid, 0x100Fu);
    EXPECT_EQ(d.width, 5u);
    EXPECT_EQ(d.height, 3u);
    EXPECT_EQ(d.pitch, row.pitch) << row.bits;
    EXPECT_EQ(d.format.flags, row.flags);
    EXPECT_EQ(d.format.bitCount, row.bitCount);
    EXPECT_EQ(d.format.rMask, row.r) << row.bits;
    EXPECT_EQ(d.format.gMask, row.g) << row.bits;
    EXPECT_EQ(d.format.bMask, row.b) << row.bits;
    EXPECT_EQ(d.format.aMask, 0u);
  }
}

TEST_F(SurfaceTest, capsTellWhereTheMemoryIs)
{
  SurfaceDesc d;
  EXPECT_EQ(make(cfDesc(4, 4))->describe(d), 0);
  EXPECT_EQ(d.caps, 0x4040u);
  EXPECT_EQ(make(cfDesc(4, 4, 0, 6, 0x840))->describe(d), 0);
  EXPECT_EQ(d.caps, 0x840u);
}

TEST_F(SurfaceTest, impossibleSurfacesAreRefused)
{
  Ptr<Surface> s;
  EXPECT_EQ(device->createSurface(cfDesc(4, 4, 12), s), badFormat);
  SurfaceDesc unset = cfDesc(4, 4);
  unset.valid |= 0x1000;  // a fresh format stands for none
  EXPECT_EQ(device->createSurface(unset, s), badFormat);
  EXPECT_EQ(device->createSurface(cfDesc(0, 4), s), result(0x80070057));
  EXPECT_EQ(device->createSurface(cfDesc(70000, 4), s), result(0x887601E0));
  EXPECT_EQ(device->createSurface(cfDesc(4, 4, 0, 0, 0x80), s), result(0x88760233));
  EXPECT_EQ(device->createSurface(cfDesc(4, 4, 0, 0, 0x4000), s), result(0x88760064));
  EXPECT_EQ(s, nullptr);
}

TEST_F(SurfaceTest, fillPaintsThePelValueAtEveryDepthAndNothingElse)
{
  u32 const values[][2] = {{8, 0x9C}, {15, 0x5A5B}, {16, 0xA5C3}, {24, 0xA1B2C3}, {32, 0x123456}};
  for (auto const& [depth, value] : values)
    for (int width = 1; width < 40; ++width) {
      Ptr<Surface> const s = make(cfDepthDesc(50, 3, static_cast<int>(depth)));
      Rect const r{4, 1, 4 + width, 2};
      ASSERT_EQ(s->blt(&r, nullptr, nullptr, fillFlag | waitFlag, value), 0);
      SurfaceDesc d;
      ASSERT_EQ(s->lock(nullptr, d, 1), 0);
      for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 50; ++x) {
          bool const in = y == 1 && x >= 4 && x < 4 + width;
          ASSERT_EQ(cfPelAt(static_cast<u8*>(d.pels), d.pitch, static_cast<int>(depth), x, y), in ? value : 0)
              << depth << ' ' << width << ' ' << x << ' ' << y;
        }
    }
}

TEST_F(SurfaceTest, lockOfARectanglePointsAtItsCorner)
{
  Ptr<Surface> const s = make(cfDesc(6, 4));
  cfNumber(*s, 6, 4);
  Rect const r{2, 3, 5, 4};
  SurfaceDesc d;

  ASSERT_EQ(s->lock(&r, d, 1), 0);
  EXPECT_EQ(*static_cast<u32*>(d.pels), 1u + 3 * 6 + 2);
  EXPECT_EQ(d.pitch, 24);
}

TEST_F(SurfaceTest, copyStretchesByFloorOfTheSourceIndex)
{
  for (int const depth : {8, 15, 16, 24, 32}) {
    Ptr<Surface> const from = make(cfDepthDesc(7, 5, depth)), to = make(cfDepthDesc(23, 11, depth));
    cfNumber(*from, 7, 5);
    Rect const source{1, 1, 6, 4}, target{3, 2, 20, 9};
    ASSERT_EQ(to->blt(&target, from.get(), &source, waitFlag, 0), 0);
    for (int y = 0; y < 11; ++y)
      for (int x = 0; x < 23; ++x) {
        bool const in = x >= 3 && x < 20 && y >= 2 && y < 9;
        int const sx = 1 + (x - 3) * 5 / 17, sy = 1 + (y - 2) * 3 / 7;
        ASSERT_EQ(cfPelOf(*to, x, y), in ? static_cast<u32>(1 + sy * 7 + sx) : 0u) << depth << ' ' << x << ' ' << y;
      }
  }
}

TEST_F(SurfaceTest, shrinkingTakesTheSameRule)
{
  Ptr<Surface> const from = make(cfDesc(17, 9, 8)), to = make(cfDesc(5, 4, 8));
  cfNumber(*from, 17, 9);
  ASSERT_EQ(to->blt(nullptr, from.get(), nullptr, waitFlag, 0), 0);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 5; ++x)
      EXPECT_EQ(cfPelOf(*to, x, y), static_cast<u32>(1 + (y * 9 / 4) * 17 + x * 17 / 5) & 255u);
}

TEST_F(SurfaceTest, overlappingCopyWithinASurfaceKeepsThePels)
{
  for (auto const& [dx, dy] : {std::pair{2, 1}, {-2, -1}, {2, -1}, {-2, 1}, {1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
    Ptr<Surface> const s = make(cfDesc(12, 10));
    cfNumber(*s, 12, 10);
    Rect const source{3, 2, 9, 8}, target{3 + dx, 2 + dy, 9 + dx, 8 + dy};
    ASSERT_EQ(s->blt(&target, s.get(), &source, waitFlag, 0), 0);
    for (int y = 2; y < 8; ++y)
      for (int x = 3; x < 9; ++x)
        ASSERT_EQ(cfPelOf(*s, x + dx, y + dy), static_cast<u32>(1 + y * 12 + x)) << dx << ' ' << dy;
  }
}

TEST_F(SurfaceTest, keyedCopyLeavesKeyPelsOutAtEveryDepthAndLength)
{
  std::mt19937 random(7);
  for (int const depth : {8, 15, 16, 24, 32})
    for (int width = 1; width < 70; ++width) {
      Ptr<Surface> const from = make(cfDepthDesc(80, 2, depth)), to = make(cfDepthDesc(80, 2, depth));
      u32 const key = depth == 32 ? 0x00C0FFEE : 0x5A;
      ASSERT_EQ(from->setColorKey(8, {key, key}), 0);
      ASSERT_EQ(to->blt(nullptr, nullptr, nullptr, fillFlag, 0x11), 0);
      std::vector<u32> pels(static_cast<std::size_t>(width));
      for (int x = 0; x < width; ++x) {
        pels[static_cast<std::size_t>(x)] = random() % 3 == 0 ? key : 0x21 + random() % 8;
        cfSetPel(*from, x + 1, 0, pels[static_cast<std::size_t>(x)]);
      }
      Rect const source{1, 0, 1 + width, 1}, target{5, 1, 5 + width, 2};
      ASSERT_EQ(to->blt(&target, from.get(), &source, keyFlag | waitFlag, 0), 0);
      for (int x = 0; x < 80; ++x) {
        bool const in = x >= 5 && x < 5 + width && pels[static_cast<std::size_t>(x - 5)] != key;
        ASSERT_EQ(cfPelOf(*to, x, 1), in ? pels[static_cast<std::size_t>(x - 5)] : 0x11u) << depth << ' ' << width;
      }
    }
}

TEST_F(SurfaceTest, topByteOfA32BitPelDoesNotHideTheKey)
{
  Ptr<Surface> const from = make(cfDesc(20, 1)), to = make(cfDesc(20, 1));
  ASSERT_EQ(from->setColorKey(8, {0x010203, 0x010203}), 0);
  for (int x = 0; x < 20; ++x)
    cfSetPel(*from, x, 0, x % 2 ? 0xFF010203u : 0x01010203u);
  ASSERT_EQ(to->blt(nullptr, from.get(), nullptr, keyFlag, 0), 0);
  for (int x = 0; x < 20; ++x)
    EXPECT_EQ(cfPelOf(*to, x, 0), 0u);
}

TEST_F(SurfaceTest, keyOfARangeLeavesOutBothBoundsAndAllBetween)
{
  Ptr<Surface> const from = make(cfDesc(10, 1, 8)), to = make(cfDesc(10, 1, 8));
  cfNumber(*from, 10, 1);
  ASSERT_EQ(from->setColorKey(9, {3, 6}), 0);
  ASSERT_EQ(to->blt(nullptr, from.get(), nullptr, keyFlag, 0), 0);
  for (int x = 0; x < 10; ++x)
    EXPECT_EQ(cfPelOf(*to, x, 0), x + 1 >= 3 && x + 1 <= 6 ? 0u : static_cast<u32>(x + 1));
}

TEST_F(SurfaceTest, keyWithoutRangeTypeIsTheLowValueAlone)
{
  Ptr<Surface> const from = make(cfDesc(10, 1, 8)), to = make(cfDesc(10, 1, 8));
  cfNumber(*from, 10, 1);
  ASSERT_EQ(from->setColorKey(8, {3, 6}), 0);
  ASSERT_EQ(to->blt(nullptr, from.get(), nullptr, keyFlag, 0), 0);
  EXPECT_EQ(cfPelOf(*to, 2, 0), 0u);
  EXPECT_EQ(cfPelOf(*to, 3, 0), 4u);
}

TEST_F(SurfaceTest, keyedBlitWithoutAKeyIsRefused)
{
  Ptr<Surface> const from = make(cfDesc(4, 4)), to = make(cfDesc(4, 4));
  EXPECT_EQ(to->blt(nullptr, from.get(), nullptr, keyFlag, 0), result(0x80070057));
}

TEST_F(SurfaceTest, keyedStretchLeavesOutTheSameSourcePels)
{
  Ptr<Surface> const from = make(cfDesc(4, 2)), to = make(cfDesc(9, 5));
  cfNumber(*from, 4, 2);
  ASSERT_EQ(from->setColorKey(8, {2, 2}), 0);
  ASSERT_EQ(to->blt(nullptr, nullptr, nullptr, fillFlag, 99), 0);
  ASSERT_EQ(to->blt(nullptr, from.get(), nullptr, keyFlag, 0), 0);
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 9; ++x) {
      u32 const value = static_cast<u32>(1 + (y * 2 / 5) * 4 + x * 4 / 9);
      EXPECT_EQ(cfPelOf(*to, x, y), value == 2 ? 99u : value) << x << ' ' << y;
    }
}

TEST_F(SurfaceTest, surfacesOfDifferentFormatsDoNotMix)
{
  Ptr<Surface> const a = make(cfDepthDesc(4, 4, 15)), b = make(cfDepthDesc(4, 4, 16)), c = make(cfDepthDesc(4, 4, 8));
  EXPECT_EQ(a->blt(nullptr, b.get(), nullptr, waitFlag, 0), badFormat);
  EXPECT_EQ(b->blt(nullptr, c.get(), nullptr, waitFlag, 0), badFormat);
  EXPECT_EQ(a->blt(nullptr, a.get(), nullptr, waitFlag, 0), 0);
}

TEST_F(SurfaceTest, paletteIsForEightBitsOnly)
{
  PaletteEntry entries[256] = {};
  Ptr<DevicePalette> palette;
  ASSERT_EQ(device->createPalette(68, entries, palette), 0);
  EXPECT_EQ(make(cfDepthDesc(4, 4, 16))->setPalette(palette.get()), badFormat);
  EXPECT_EQ(make(cfDepthDesc(4, 4, 8))->setPalette(palette.get()), 0);
}

TEST_F(SurfaceTest, paletteGivesBackWhatWasSetAndRefusesWhatDoesNotFit)
{
  PaletteEntry entries[256] = {};
  entries[20] = {1, 2, 3, 4};
  Ptr<DevicePalette> palette;
  ASSERT_EQ(device->createPalette(68, entries, palette), 0);
  PaletteEntry const two[2] = {{9, 8, 7, 6}, {5, 4, 3, 2}};
  ASSERT_EQ(palette->set(254, two), 0);
  EXPECT_EQ(palette->set(255, two), result(0x80070057));
  PaletteEntry out[256];
  ASSERT_EQ(palette->get(0, out), 0);
  EXPECT_EQ(out[20], entries[20]);
  EXPECT_EQ(out[255], two[1]);
  EXPECT_EQ(palette->get(1, out), result(0x80070057));
}

TEST_F(SurfaceTest, primaryDescribesTheScreen)
{
  SurfaceDesc d;
  EXPECT_EQ(primary()->describe(d), 0);
  EXPECT_EQ(d.caps, 0xC200u);
  EXPECT_EQ(d.width, 40u);
  EXPECT_EQ(d.height, 30u);
  EXPECT_EQ(d.format.bitCount, 32u);
  EXPECT_EQ(d.format.gMask, 0xFF00u);
}

TEST(PrimarySurface, onAnEightBitDisplaySaysSystemMemorySoThatItsPaletteIsAttached)
{
  FakeScreen const screen({16, 16}, 8);
  Ptr<DisplayDevice> device;
  ASSERT_EQ(openDevice(screen.window(), device), 0);
  SurfaceDesc d = cfDesc(0, 0, 0, 0, 0x200);
  Ptr<Surface> s;
  ASSERT_EQ(device->createSurface(d, s), 0);
  ASSERT_EQ(s->describe(d), 0);
  EXPECT_EQ(d.caps, 0x8A00u);
  EXPECT_EQ(d.format.bitCount, 8u);
}

TEST(PrimarySurface, itsPaletteShowsOnTheScreenAndSoDoLaterChanges)
{
  FakeScreen screen({16, 16}, 8);
  Ptr<DisplayDevice> device;
  ASSERT_EQ(openDevice(screen.window(), device), 0);
  Ptr<Surface> s;
  ASSERT_EQ(device->createSurface(cfDesc(0, 0, 0, 0, 0x200), s), 0);
  PaletteEntry entries[256] = {};
  entries[100] = {10, 20, 30, 0};
  Ptr<DevicePalette> palette;
  ASSERT_EQ(device->createPalette(68, entries, palette), 0);

  ASSERT_EQ(s->setPalette(palette.get()), 0);
  EXPECT_EQ(screen.palette[100], entries[100]);
  PaletteEntry const one[1] = {{7, 7, 7, 0}};
  ASSERT_EQ(palette->set(101, one), 0);
  EXPECT_EQ(screen.palette[101], one[0]);
  ASSERT_EQ(s->setPalette(nullptr), 0);
  ASSERT_EQ(palette->set(102, one), 0);
  EXPECT_EQ(screen.palette[102], PaletteEntry{});
}

TEST_F(SurfaceTest, onePrimaryADeviceAtATime)
{
  Ptr<Surface> first = primary(), second;
  EXPECT_EQ(device->createSurface(cfDesc(0, 0, 0, 0, 0x200), second), result(0x88760234));
  first.reset();
  EXPECT_EQ(device->createSurface(cfDesc(0, 0, 0, 0, 0x200), second), 0);
}

TEST_F(SurfaceTest, primaryHasNoPelsOfItsOwn)
{
  Ptr<Surface> const p = primary(), s = make(cfDesc(4, 4));
  SurfaceDesc d;
  HDC dc = nullptr;
  EXPECT_NE(p->lock(nullptr, d, 1), 0);
  EXPECT_EQ(p->unlock(nullptr), result(0x88760248));
  EXPECT_NE(p->getDC(dc), 0);
  EXPECT_EQ(p->releaseDC(nullptr), result(0x8876024A));
  EXPECT_NE(s->blt(nullptr, p.get(), nullptr, waitFlag, 0), 0);
}

TEST_F(SurfaceTest, blitToThePrimaryGoesThroughTheClippersWindow)
{
  screen.clientOnScreen = {100, 50};
  screen.clientInBacking = {3, 2};
  Ptr<Surface> const p = primary(), s = make(cfDesc(6, 5));
  cfNumber(*s, 6, 5);
  Rect const source{1, 1, 5, 4}, target{104, 53, 108, 56};

  ASSERT_EQ(p->blt(&target, s.get(), &source, waitFlag, 0), 0);
  for (int y = 0; y < 30; ++y)
    for (int x = 0; x < 40; ++x) {
      bool const in = x >= 7 && x < 11 && y >= 5 && y < 8;
      ASSERT_EQ(screen.at(x, y), in ? static_cast<u32>(1 + (y - 5 + 1) * 6 + (x - 7 + 1)) : 0u) << x << ' ' << y;
    }
  ASSERT_EQ(screen.presented.size(), 1u);
  EXPECT_EQ(screen.presented[0], target);
}

TEST_F(SurfaceTest, blitToThePrimaryIsCutWithWhatCanBeSeen)
{
  screen.visible = {{2, 1, 10, 4}, {12, 6, 50, 40}};
  Ptr<Surface> const p = primary(), s = make(cfDesc(100, 90));
  cfNumber(*s, 100, 90);
  Rect const target{-20, -30, 80, 60};  // leaves the screen on all sides

  ASSERT_EQ(p->blt(&target, s.get(), nullptr, waitFlag, 0), 0);
  for (int y = 0; y < 30; ++y)
    for (int x = 0; x < 40; ++x) {
      bool const in = (x >= 2 && x < 10 && y >= 1 && y < 4) || (x >= 12 && y >= 6);
      ASSERT_EQ(screen.at(x, y), in ? static_cast<u32>(1 + (y + 30) * 100 + x + 20) : 0u) << x << ' ' << y;
    }
}

TEST_F(SurfaceTest, stretchedBlitToThePrimaryIsCutWithoutMovingPels)
{
  screen.visible = {{5, 4, 9, 7}, {20, 10, 31, 22}};
  for (int const depth : {32, 16}) {
    Ptr<Surface> const p = primary(), s = make(cfDepthDesc(7, 6, depth));
    cfNumber(*s, 7, 6);
    Rect const target{-3, -2, 45, 33};
    ASSERT_EQ(p->blt(&target, s.get(), nullptr, waitFlag, 0), 0);
    for (Rect const& r : screen.visible)
      for (int y = r.top; y < r.bottom; ++y)
        for (int x = r.left; x < r.right; ++x) {
          u32 const value = static_cast<u32>(1 + ((y + 2) * 6 / 35) * 7 + (x + 3) * 7 / 48);
          u32 const green6 = value >> 5, blue5 = value & 31;
          u32 const wide = green6 << 2 << 8 | blue5 << 3;
          ASSERT_EQ(screen.at(x, y), depth == 32 ? value : wide) << depth << ' ' << x << ' ' << y;
        }
  }
}

TEST_F(SurfaceTest, withoutAClipperOrItsWindowNothingIsPainted)
{
  Ptr<Surface> const p = primary(), s = make(cfDesc(6, 5));
  cfNumber(*s, 6, 5);
  Rect const target{0, 0, 6, 5};

  ASSERT_EQ(p->setClipper(nullptr), 0);
  EXPECT_EQ(p->blt(&target, s.get(), nullptr, waitFlag, 0), 0);
  ASSERT_EQ(p->setClipper(clipper.get()), 0);
  ASSERT_EQ(clipper->window(nullptr), 0);
  EXPECT_EQ(p->blt(&target, s.get(), nullptr, waitFlag, 0), 0);
  EXPECT_EQ(screen.at(0, 0), 0u);
  ASSERT_EQ(clipper->window(screen.window()), 0);
  EXPECT_EQ(p->blt(&target, s.get(), nullptr, waitFlag, 0), 0);
  EXPECT_EQ(screen.at(0, 0), 1u);
}

TEST_F(SurfaceTest, clipperMayDieBeforeTheSurface)
{
  Ptr<Surface> const p = primary(), s = make(cfDesc(2, 2));
  clipper.reset();
  Rect const target{0, 0, 2, 2};
  EXPECT_EQ(p->blt(&target, s.get(), nullptr, waitFlag, 0), 0);
}

TEST_F(SurfaceTest, primaryTakesFillsAndKeys)
{
  Ptr<Surface> const p = primary(), s = make(cfDesc(3, 1));
  cfNumber(*s, 3, 1);
  Rect const target{1, 1, 4, 2};
  ASSERT_EQ(p->blt(&target, nullptr, nullptr, fillFlag, 0xABCDEF), 0);
  ASSERT_EQ(s->setColorKey(8, {2, 2}), 0);
  ASSERT_EQ(p->blt(&target, s.get(), nullptr, keyFlag | waitFlag, 0), 0);

  EXPECT_EQ(screen.at(0, 1), 0u);
  EXPECT_EQ(screen.at(1, 1), 1u);
  EXPECT_EQ(screen.at(2, 1), 0xABCDEFu);
  EXPECT_EQ(screen.at(3, 1), 3u);
}

TEST(PrimarySurface, convertsFromEveryDepthToEveryDepth)
{
  // One colour of which every depth keeps something else.
  struct Value {
    int depth;
    u32 pel;
  } const colour[] = {{8, 0xB7}, {15, 0x5AB9}, {16, 0xB579}, {24, 0xB5AFC9}, {32, 0xB5AFC9}};
  for (Value const& from : colour)
    for (Value const& to : colour) {
      FakeScreen screen({8, 4}, to.depth);
      screen.palette[0xB7] = {0xB5, 0xAF, 0xC9, 0};
      Ptr<DisplayDevice> device;
      ASSERT_EQ(openDevice(screen.window(), device), 0);
      Ptr<Surface> p, s;
      Ptr<Clipper> clipper;
      ASSERT_EQ(device->createSurface(cfDesc(0, 0, 0, 0, 0x200), p), 0);
      ASSERT_EQ(device->createClipper(clipper), 0);
      ASSERT_EQ(clipper->window(screen.window()), 0);
      ASSERT_EQ(p->setClipper(clipper.get()), 0);
      ASSERT_EQ(device->createSurface(cfDepthDesc(3, 2, from.depth), s), 0);
      cfSetPel(*s, 1, 1, from.pel);
      Rect const target{2, 1, 5, 3};
      ASSERT_EQ(p->blt(&target, s.get(), nullptr, waitFlag, 0), 0);

      // 5 and 6 bits widen with zeros: B5 AF C9 from 10110 10101 11001 is B0 A8 C8, from 10110 101011 11001 B0 AC C8.
      u32 rgb = 0xB5AFC9;
      if (from.depth == 15)
        rgb = 0xB0A8C8;
      if (from.depth == 16)
        rgb = 0xB0ACC8;
      u32 expected = rgb;
      if (to.depth == 8)
        expected = 0xB7;
      if (to.depth == 15)
        expected = 0x5AB9;
      if (to.depth == 16)
        expected = from.depth == 15 ? 0xB559u : 0xB579u;  // the sixth bit of green was not there
      EXPECT_EQ(screen.at(3, 2), expected) << from.depth << " to " << to.depth;
      EXPECT_EQ(screen.at(5, 2), 0u);
    }
}

TEST(PrimarySurface, eightBitSurfaceIsShownThroughItsOwnPalette)
{
  FakeScreen screen({8, 4}, 32);
  Ptr<DisplayDevice> device;
  ASSERT_EQ(openDevice(screen.window(), device), 0);
  Ptr<Surface> p, s;
  Ptr<Clipper> clipper;
  ASSERT_EQ(device->createSurface(cfDesc(0, 0, 0, 0, 0x200), p), 0);
  ASSERT_EQ(device->createClipper(clipper), 0);
  ASSERT_EQ(clipper->window(screen.window()), 0);
  ASSERT_EQ(p->setClipper(clipper.get()), 0);
  ASSERT_EQ(device->createSurface(cfDesc(2, 2, 8), s), 0);
  PaletteEntry entries[256] = {};
  entries[5] = {1, 2, 3, 0};
  Ptr<DevicePalette> palette;
  ASSERT_EQ(device->createPalette(68, entries, palette), 0);
  cfSetPel(*s, 0, 0, 5);
  Rect const target{0, 0, 2, 2};

  ASSERT_EQ(p->blt(&target, s.get(), nullptr, waitFlag, 0), 0);
  EXPECT_EQ(screen.at(0, 0), 0x050505u);
  ASSERT_EQ(s->setPalette(palette.get()), 0);
  ASSERT_EQ(p->blt(&target, s.get(), nullptr, waitFlag, 0), 0);
  EXPECT_EQ(screen.at(0, 0), 0x010203u);
}

TEST_F(SurfaceTest, lostSurfacesAnswerSoUntilTheyAreRestored)
{
  Ptr<Surface> const p = primary(), s = make(cfDesc(4, 4)), other = make(cfDesc(4, 4));
  cfNumber(*s, 4, 4);
  SurfaceDesc d;
  HDC dc = nullptr;
  EXPECT_EQ(s->isLost(), 0);

  plat::testing::lose(screen.window());
  EXPECT_EQ(s->isLost(), lostCode);
  EXPECT_EQ(p->isLost(), lostCode);
  EXPECT_EQ(s->lock(nullptr, d, 1), lostCode);
  EXPECT_EQ(s->getDC(dc), lostCode);
  EXPECT_EQ(s->blt(nullptr, nullptr, nullptr, fillFlag, 0), lostCode);
  EXPECT_EQ(device->testCooperativeLevel(), 0);
  EXPECT_EQ(make(cfDesc(4, 4))->isLost(), 0);

  plat::testing::exclusive(true);
  EXPECT_EQ(device->testCooperativeLevel(), result(0x88760245));
  EXPECT_EQ(s->restore(), result(0x88760245));
  plat::testing::exclusive(false);
  EXPECT_EQ(s->restore(), 0);
  EXPECT_EQ(p->restore(), 0);
  EXPECT_EQ(s->isLost(), 0);
  EXPECT_EQ(p->isLost(), 0);
  EXPECT_EQ(other->isLost(), lostCode);
  EXPECT_EQ(cfPelOf(*s, 2, 2), 0u);  // what was lost is gone
}

TEST_F(SurfaceTest, aChangeOfTheScreensModeLosesAllSurfaces)
{
  Ptr<Surface> const p = primary(), s = make(cfDesc(4, 4));
  ++screen.changes;
  EXPECT_EQ(p->isLost(), lostCode);
  EXPECT_EQ(s->isLost(), lostCode);
  EXPECT_EQ(make(cfDesc(4, 4))->isLost(), 0);
  EXPECT_EQ(p->restore(), 0);
  EXPECT_EQ(s->restore(), 0);
  EXPECT_EQ(p->isLost(), 0);
  EXPECT_EQ(s->isLost(), 0);
}

TEST_F(SurfaceTest, onlyTheSurfacesOfTheNamedWindowAreLost)
{
  Ptr<DisplayDevice> second;
  ASSERT_EQ(openDevice(reinterpret_cast<HWND>(std::uintptr_t{0x99}), second), 0);
  Ptr<Surface> theirs;
  ASSERT_EQ(second->createSurface(cfDesc(2, 2), theirs), 0);
  Ptr<Surface> const ours = make(cfDesc(2, 2));

  plat::testing::lose(screen.window());
  EXPECT_EQ(theirs->isLost(), 0);
  EXPECT_EQ(ours->isLost(), lostCode);
  plat::testing::lose(nullptr);
  EXPECT_EQ(theirs->isLost(), lostCode);
}

TEST_F(SurfaceTest, plannedFailuresComeAsOftenAsAskedAndDoNothing)
{
  Ptr<Surface> const s = make(cfDesc(2, 2));
  plat::testing::failNext(Op::blt, busy, 2);
  plat::testing::failNext(Op::createSurface, result(0x8876017C));
  Ptr<Surface> none;

  EXPECT_EQ(s->blt(nullptr, nullptr, nullptr, fillFlag, 7), busy);
  EXPECT_EQ(cfPelOf(*s, 0, 0), 0u);
  EXPECT_EQ(s->blt(nullptr, nullptr, nullptr, fillFlag, 7), busy);
  EXPECT_EQ(s->blt(nullptr, nullptr, nullptr, fillFlag, 7), 0);
  EXPECT_EQ(device->createSurface(cfDesc(2, 2), none), result(0x8876017C));
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(device->createSurface(cfDesc(2, 2), none), 0);
}

TEST_F(SurfaceTest, capsTellBlitStretchKeyAndFillButNoOverlay)
{
  DeviceCaps hardware, emulation;
  ASSERT_EQ(device->caps(hardware, emulation), 0);
  EXPECT_EQ(hardware.caps, 0x04400240u);
  EXPECT_EQ(hardware.colorKeyCaps, 0x200u);
  EXPECT_EQ(hardware.maxOverlays, 0u);
  EXPECT_EQ(hardware.memTotal, 256u * 1024 * 1024);
  u32 const before = hardware.memFree;
  Ptr<Surface> const s = make(cfDesc(100, 10));
  ASSERT_EQ(device->caps(hardware, emulation), 0);
  EXPECT_EQ(before - hardware.memFree, 100u * 10 * 4);
}

TEST_F(SurfaceTest, simulatedOverlayIsShownCountedAndHidden)
{
  constexpr u32 uyvy = 0x59565955;
  plat::testing::overlays(1, {uyvy});
  Ptr<Surface> const p = primary();
  DeviceCaps hardware, emulation;
  ASSERT_EQ(device->caps(hardware, emulation), 0);
  EXPECT_EQ(hardware.caps & 0x2800u, 0x2800u);
  EXPECT_EQ(hardware.colorKeyCaps & 0x10u, 0x10u);
  EXPECT_EQ(hardware.maxOverlays, 1u);
  std::vector<u32> codes;
  ASSERT_EQ(device->fourCCs(codes), 0);
  EXPECT_EQ(codes, std::vector<u32>{uyvy});

  SurfaceDesc wanted = cfDesc(16, 16, 16, 6, 0x4080);
  wanted.format.flags = 516;
  wanted.format.fourCC = uyvy;
  Ptr<Surface> const overlay = make(wanted), second = make(cfDesc(16, 16, 0, 0, 0x4080));
  wanted.format.fourCC = 0x32595559;
  Ptr<Surface> none;
  EXPECT_EQ(device->createSurface(wanted, none), badFormat);

  Rect const source{0, 0, 16, 8}, target{4, 5, 20, 13}, outside{30, 5, 46, 13};
  EXPECT_EQ(overlay->updateOverlay(&source, p.get(), &outside, 0x4400), badRect);
  ASSERT_EQ(overlay->updateOverlay(&source, p.get(), &target, 0x4400), 0);
  ASSERT_EQ(plat::testing::shownOverlays().size(), 1u);
  EXPECT_EQ(plat::testing::shownOverlays()[0].screen, target);
  EXPECT_EQ(plat::testing::shownOverlays()[0].source, source);
  EXPECT_EQ(plat::testing::shownOverlays()[0].fourCC, uyvy);
  SurfaceDesc d;
  ASSERT_EQ(overlay->describe(d), 0);
  EXPECT_EQ(d.caps, 0xC080u);
  EXPECT_EQ(d.format.fourCC, uyvy);
  ASSERT_EQ(device->caps(hardware, emulation), 0);
  EXPECT_EQ(hardware.curOverlays, 1u);
  EXPECT_EQ(second->updateOverlay(&source, p.get(), &target, 0x4400), result(0x88760168));

  ASSERT_EQ(overlay->updateOverlay(nullptr, p.get(), nullptr, 0x200), 0);
  EXPECT_EQ(second->updateOverlay(&source, p.get(), &target, 0x4400), 0);
  plat::testing::overlays(0, {});
  EXPECT_EQ(second->updateOverlay(&source, p.get(), &target, 0x4400), result(0x88760104));
}

TEST_F(SurfaceTest, overlayTakesBlitsOfItsFormat)
{
  plat::testing::overlays(1, {});
  Ptr<Surface> const off = make(cfDesc(16, 16)), overlay = make(cfDesc(16, 16, 0, 0, 0x4080));
  Rect const r{0, 0, 15, 15};
  EXPECT_EQ(overlay->blt(&r, off.get(), &r, waitFlag, 0), 0);
  EXPECT_EQ(off->updateOverlay(nullptr, overlay.get(), nullptr, 0x4000), result(0x88760244));
}

TEST_F(SurfaceTest, displayModeNeedsTheExclusiveLevelAndTheScreensOwnMode)
{
  EXPECT_EQ(device->setDisplayMode(40, 30, 32), result(0x887600E1));
  ASSERT_EQ(device->cooperativeLevel(screen.window(), 21), 0);
  EXPECT_EQ(device->setDisplayMode(40, 30, 32), 0);
  EXPECT_EQ(device->setDisplayMode(41, 30, 32), result(0x8876024E));
  EXPECT_EQ(device->setDisplayMode(40, 30, 16), result(0x8876024E));
  ASSERT_EQ(device->cooperativeLevel(screen.window(), 8), 0);
  EXPECT_EQ(device->setDisplayMode(40, 30, 32), result(0x887600E1));
}

TEST_F(SurfaceTest, surfaceOutlivesItsDevice)
{
  Ptr<Surface> const s = make(cfDesc(2, 2));
  device.reset();
  EXPECT_EQ(s->blt(nullptr, nullptr, nullptr, fillFlag, 3), 0);
  EXPECT_EQ(cfPelOf(*s, 1, 1), 3u);
}

TEST_F(SurfaceTest, verticalBlankWaitsOnlyWhereThereIsAWallClock)
{
  using Clock = std::chrono::steady_clock;
  auto const period = std::chrono::nanoseconds(1000000000 / 60);
  auto start = Clock::now();
  for (int i = 0; i < 100; ++i)
    ASSERT_EQ(device->waitForVerticalBlank(1), 0);
  EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(200));  // 100 pictures would take 1.7 s

  screen.headless = false;
  start = Clock::now();
  for (int i = 0; i < 4; ++i)
    ASSERT_EQ(device->waitForVerticalBlank(1), 0);
  EXPECT_GE(Clock::now() - start, 3 * period);
}
