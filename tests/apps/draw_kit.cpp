#include "tests/apps/draw_kit.h"

#include "platform/app.h"
#include "platform/testing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

long DrawnPels::count(std::uint32_t color) const { return std::count(pels.begin(), pels.end(), color); }

long DrawnPels::count(std::uint32_t color, long left, long top, long right, long bottom) const
{
  long n = 0;
  for (long y = top; y < bottom; ++y)
    for (long x = left; x < right; ++x)
      n += at(x, y) == color;
  return n;
}

std::vector<std::string> DrawnPels::rows(long left, long top, long right, long bottom) const
{
  std::vector<std::string> out;
  for (long y = top; y < bottom; ++y) {
    out.emplace_back();
    for (long x = left; x < right; ++x)
      switch (at(x, y)) {
      case kBlack: out.back() += '.'; break;
      case kRed: out.back() += 'R'; break;
      case kGreen: out.back() += 'G'; break;
      case kBlue: out.back() += 'B'; break;
      case kWhite: out.back() += 'W'; break;
      default: out.back() += '?';
      }
  }
  return out;
}

std::string drawFile(std::string const& entries, std::string const& more)
{
  return "{\"version\": 1, " + more + "\"draw\": [" + entries + "]}";
}

DrawnPels drawn(std::string const& entries, DrawnView const& view, std::string const& more)
{
  plat::InitOptions init;
  init.video = plat::InitOptions::headless;
  plat::init(init);  // the first call counts
  plat::testing::screen({6400, 4800}, view.depth);

  ccDrawing const drawing = cfReadDrawing(drawFile(entries, more), "test");
  EXPECT_EQ(drawing.error, "");
  TestFolder const folder;
  std::ofstream(folder.file("black.pgm"), std::ios::binary)
      << "P5\n" << view.imageW << " " << view.imageH << "\n255\n"
      << std::string(static_cast<std::size_t>(view.imageW * view.imageH), '\0');
  ccViewOptions options;
  options.givenWidth = view.windowW;
  options.givenHeight = view.windowH;
  options.mag = view.mag;
  options.pan = std::pair(view.panX, view.panY);
  if (!view.overlay.empty())
    options.overlay = view.overlay == "none" ? ccViewOptions::noOverlay : ccViewOptions::plane;
  std::ostringstream errors;
  ccViewer viewer(options, errors);
  viewer.draw({drawing});
  viewer.open({folder.file("black.pgm").string()});
  plat::testing::drain();
  EXPECT_EQ(errors.str(), "");
  plat::Size size;
  DrawnPels out;
  out.pels = plat::testing::shot(viewer.window(), size);
  out.w = size.w;
  out.h = size.h;
  EXPECT_EQ(out.w, view.windowW);
  EXPECT_EQ(out.h, view.windowH);
  return out;
}
