#include "tests/platform/canvas.h"

using namespace plat;

Canvas::Canvas(int width, int height, int depth, bool keyed) : width_(width), height_(height), depth_(depth)
{
  EXPECT_EQ(openDevice(nullptr, device_), 0);
  SurfaceDesc desc;
  desc.valid = 0x1007;
  desc.caps = 0x40;
  desc.width = static_cast<u32>(width);
  desc.height = static_cast<u32>(height);
  desc.format.bitCount = depth == 15 ? 16 : static_cast<u32>(depth);
  desc.format.gMask = depth == 15 ? 5 : 6;
  EXPECT_EQ(device_->createSurface(desc, surface_), 0);
  if (keyed) {
    EXPECT_EQ(surface_->setColorKey(8, {1, 1}), 0);
  }
  // The pels stay where they are, so they can be read while the handle is out.
  EXPECT_EQ(surface_->lock(nullptr, desc, 1), 0);
  memory_ = static_cast<u8 const*>(desc.pels);
  pitch_ = desc.pitch;
  EXPECT_EQ(surface_->unlock(nullptr), 0);
  reopen();
}

Canvas::~Canvas() = default;

void Canvas::reopen()
{
  if (dc_) {
    EXPECT_EQ(surface_->releaseDC(dc_), 0);
  }
  EXPECT_EQ(surface_->getDC(dc_), 0);
  painter_ = plat::painter(dc_);
}

u32 Canvas::at(int x, int y) const { return cfPelAt(memory_, pitch_, depth_, x, y); }

std::string Canvas::picture(u32 background) const
{
  std::string rows;
  for (int y = 0; y < height_; ++y) {
    for (int x = 0; x < width_; ++x)
      rows += at(x, y) == background ? '.' : '#';
    rows += '\n';
  }
  return rows;
}

std::vector<u32> Canvas::pels() const
{
  std::vector<u32> all;
  for (int y = 0; y < height_; ++y)
    for (int x = 0; x < width_; ++x)
      all.push_back(at(x, y));
  return all;
}
