// A memory surface with its painter out, for tests that look at pels.
#pragma once

#include "platform/paint.h"
#include "platform/surface.h"
#include "tests/platform/fake_screen.h"

#include <string>

class Canvas {
public:
  Canvas(int width, int height, int depth, bool keyed = false);
  ~Canvas();

  plat::Painter& painter() const { return *painter_; }
  void reopen();  // gives the handle back and gets another
  plat::u32 at(int x, int y) const;
  std::string picture(plat::u32 background) const;  // rows of '.' for the background's pel value and '#'
  std::vector<plat::u32> pels() const;
  int width() const { return width_; }
  int height() const { return height_; }

private:
  int width_, height_, depth_;
  plat::Ptr<plat::DisplayDevice> device_;
  plat::Ptr<plat::Surface> surface_;
  HDC dc_ = nullptr;
  plat::Painter* painter_ = nullptr;
  plat::u8 const* memory_ = nullptr;
  long pitch_ = 0;
};
