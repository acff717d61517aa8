// What the tests of drawing with the viewer share: a viewer over a black image on a screen in memory, and its pels.
#pragma once

#include "apps/krsview/viewer.h"
#include "tests/apps/file_kit.h"

#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

constexpr std::uint32_t kBlack = 0x000000, kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x0000FF, kWhite = 0xFFFFFF;

// The picture of a client area.
struct DrawnPels {
  long w = 0, h = 0;
  std::vector<std::uint32_t> pels;

  std::uint32_t at(long x, long y) const { return pels[static_cast<std::size_t>(y * w + x)]; }
  long count(std::uint32_t color) const;
  long count(std::uint32_t color, long left, long top, long right, long bottom) const;  // right and bottom exclusive
  // Rows of characters, '.' for black, one letter for each colour that is named: "R" red, "G" green, "B" blue, "W" white, "?" others.
  std::vector<std::string> rows(long left, long top, long right, long bottom) const;
};

struct DrawnView {
  long windowW = 40, windowH = 30, imageW = 40, imageH = 30;
  int depth = 32;
  long mag = 1;
  double panX = 0, panY = 0;
  std::string overlay;  // empty: as the viewer chooses
};

// Shows the entries of a draw file over a black image. The entries are the inside of the list; more are members of the file.
// A file that is refused fails the test.
DrawnPels drawn(std::string const& entries, DrawnView const& = {}, std::string const& more = "");
std::string drawFile(std::string const& entries, std::string const& more = "");
