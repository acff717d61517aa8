// The numbers by which surfaces refuse what cannot be done on them.
#include "platform/device_testing.h"
#include "platform/surface.h"
#include "tests/platform/fake_screen.h"

#include <gtest/gtest.h>

using namespace plat;

TEST(SurfaceCodes, aSurfaceOfAFourCharacterCodeHasNoDeviceContext)
{
  constexpr u32 uyvy = 0x59565955;
  FakeScreen screen({40, 30}, 32);
  Ptr<DisplayDevice> device;
  ASSERT_EQ(openDevice(screen.window(), device), 0);
  plat::testing::overlays(1, {uyvy});
  SurfaceDesc wanted;
  wanted.valid = 1 | 2 | 4 | 0x1000;
  wanted.width = wanted.height = 16;
  wanted.caps = 0x4080;
  wanted.format.bitCount = 16;
  wanted.format.flags = 516;
  wanted.format.fourCC = uyvy;
  Ptr<Surface> overlay;
  ASSERT_EQ(device->createSurface(wanted, overlay), 0);

  HDC dc = nullptr;
  EXPECT_EQ(overlay->getDC(dc), result(0x88760249));

  EXPECT_EQ(dc, nullptr);
  EXPECT_EQ(overlay->releaseDC(dc), result(0x8876024A));  // nothing is out
  plat::testing::overlays(0, {});
}
