// Keyed blits to a screen of another format: the key is a value of the source, whatever the pels become.
#include "platform/device_testing.h"
#include "platform/surface.h"
#include "tests/platform/fake_screen.h"

#include <gtest/gtest.h>

using namespace plat;

namespace {

constexpr u32 waitFlag = 0x1000000, fillFlag = 0x400, keyFlag = 0x8000;
constexpr u32 ground = 0x112233;  // on the screen, of 32 bits

SurfaceDesc surfaceOf(u32 w, u32 h, int depth)
{
  SurfaceDesc desc;
  desc.valid = 1 | 2 | 4 | 0x1000;
  desc.width = w;
  desc.height = h;
  desc.caps = 0x40;
  desc.format.bitCount = depth == 15 ? 16u : static_cast<u32>(depth);
  desc.format.flags = depth == 8 ? 96 : 64;
  desc.format.rMask = depth > 16 ? 8 : 5;
  desc.format.gMask = depth > 16 ? 8 : depth == 16 ? 6 : 5;
  desc.format.bMask = depth > 16 ? 8 : 5;
  return desc;
}

// What a pel of a format is at 32 bits: grey of the index without a palette, fields widened with zeros.
u32 at32(u32 pel, int depth)
{
  switch (depth) {
  case 8: return pel * 0x10101;
  case 15: return (pel >> 10 & 31) << 19 | (pel >> 5 & 31) << 11 | (pel & 31) << 3;
  case 16: return (pel >> 11 & 31) << 19 | (pel >> 5 & 63) << 10 | (pel & 31) << 3;
  default: return pel;
  }
}

// A screen of 32 bits with its primary surface.
struct Stage {
  Stage()
  {
    EXPECT_EQ(openDevice(screen.window(), device), 0);
    SurfaceDesc desc;
    desc.valid = 1;
    desc.caps = 0x200;
    EXPECT_EQ(device->createSurface(desc, primary), 0);
    EXPECT_EQ(device->createClipper(clipper), 0);
    EXPECT_EQ(clipper->window(screen.window()), 0);
    EXPECT_EQ(primary->setClipper(clipper.get()), 0);
    EXPECT_EQ(primary->blt(nullptr, nullptr, nullptr, fillFlag | waitFlag, ground), 0);
  }

  // A surface whose pels in reading order have the values 1, 2, 3, ...
  Ptr<Surface> numbered(int w, int h, int depth)
  {
    Ptr<Surface> made;
    EXPECT_EQ(device->createSurface(surfaceOf(static_cast<u32>(w), static_cast<u32>(h), depth), made), 0);
    for (int i = 0; i < w * h; ++i) {
      Rect const at{i % w, i / w, i % w + 1, i / w + 1};
      EXPECT_EQ(made->blt(&at, nullptr, nullptr, fillFlag | waitFlag, static_cast<u32>(1 + i)), 0);
    }
    return made;
  }

  FakeScreen screen{{40, 30}, 32};
  Ptr<DisplayDevice> device;
  Ptr<Clipper> clipper;
  Ptr<Surface> primary;
};

}  // namespace

TEST(SurfaceKey, aKeyedBlitToAScreenOfAnotherFormatLeavesOutTheKeyPels)
{
  Rect const targets[] = {{3, 2, 9, 6}, {3, 2, 20, 13}, {3, 2, 9, 13}, {3, 2, 7, 5}};  // 6 by 4 as it is and stretched
  for (int const depth : {8, 15, 16, 24, 32})
    for (Rect const& target : targets)
      for (bool const range : {false, true}) {
        Stage stage;
        Ptr<Surface> const from = stage.numbered(6, 4, depth);
        u32 const low = 8, high = range ? 11 : 8;
        ASSERT_EQ(from->setColorKey(range ? 9 : 8, {low, high}), 0);

        ASSERT_EQ(stage.primary->blt(&target, from.get(), nullptr, keyFlag | waitFlag, 0), 0);

        for (int y = 0; y < 30; ++y)
          for (int x = 0; x < 40; ++x) {
            u32 expected = ground;
            if (x >= target.left && x < target.right && y >= target.top && y < target.bottom) {
              int const column = (x - target.left) * 6 / target.width(), row = (y - target.top) * 4 / target.height();
              u32 const value = static_cast<u32>(1 + row * 6 + column);
              if (value < low || value > high)
                expected = at32(value, depth);
            }
            ASSERT_EQ(stage.screen.at(x, y), expected) << depth << " bits at " << x << ' ' << y << " range " << range;
          }
      }
}

TEST(SurfaceKey, withoutTheFlagTheKeyHidesNothing)
{
  for (int const depth : {8, 16, 32})
    for (Rect const& target : {Rect{3, 2, 9, 6}, Rect{3, 2, 20, 13}}) {
      Stage stage;
      Ptr<Surface> const from = stage.numbered(6, 4, depth);
      ASSERT_EQ(from->setColorKey(8, {1, 1}), 0);

      ASSERT_EQ(stage.primary->blt(&target, from.get(), nullptr, waitFlag, 0), 0);

      EXPECT_EQ(stage.screen.at(3, 2), at32(1, depth)) << depth;
    }
}
