#include "canvas/color.h"

#include "foundation/archive.h"

#include <cstdint>

namespace {

constexpr unsigned char kGreyFirst = 10;
constexpr unsigned char kGreyLast = 240;
constexpr unsigned char kPassIndex = 243;

constexpr ccRGB kSystemLow[kGreyFirst] = {{0, 0, 0},     {128, 0, 0},     {0, 128, 0},     {128, 128, 0}, {0, 0, 128},
                                          {128, 0, 128}, {0, 128, 128}, {192, 192, 192}, {192, 220, 192}, {166, 202, 240}};
// Entries 241 to 245 are the reserved ones, then the upper system colours.
constexpr ccRGB kSystemHigh[255 - kGreyLast] = {{255, 255, 255}, {255, 255, 255}, {243, 243, 243}, {160, 32, 240},
                                                {255, 165, 0},   {255, 251, 240}, {160, 160, 164}, {128, 128, 128},
                                                {255, 0, 0},     {0, 255, 0},     {255, 255, 0},   {0, 0, 255},
                                                {255, 0, 255},   {0, 255, 255},   {255, 255, 255}};

constexpr ccRGB defaultEntry(int i)
{
  if (i < kGreyFirst)
    return kSystemLow[i];
  if (i > kGreyLast)
    return kSystemHigh[i - kGreyLast - 1];
  unsigned char const grey = static_cast<unsigned char>(i);
  return ccRGB(grey, grey, grey);
}

constexpr int square(int v)
{
  return v * v;
}

constexpr int distance(ccRGB const& a, ccRGB const& b)
{
  return square(a.r - b.r) + square(a.g - b.g) + square(a.b - b.b);
}

void moveVersionWord(ccArchive& ar, char const* name)
{
  std::uint32_t version = 0;
  ar || version;
  if (version != 0)
    throw ccArchive::UnknownVersion(name);
}

}  // namespace

unsigned char ccColor::index() const
{
  if (flags_ & kIndex)
    return index_;
  int best = 0;
  int bestDistance = distance(rgb_, defaultEntry(0));
  // The ramp is left out: an application's own map replaces it. The pass-through entry would make a hole.
  for (int i = 1; i < 256; ++i) {
    if ((i >= kGreyFirst && i <= kGreyLast) || i == kPassIndex)
      continue;
    int const d = distance(rgb_, defaultEntry(i));
    if (d < bestDistance) {
      best = i;
      bestDistance = d;
    }
  }
  return static_cast<unsigned char>(best);
}

ccRGB ccColor::toRGB() const
{
  return flags_ & kRGB ? rgb_ : defaultEntry(index_);
}

unsigned long ccColor::rgb() const
{
  ccRGB const c = toRGB();
  return static_cast<unsigned long>(c.r) << 16 | static_cast<unsigned long>(c.g) << 8 | c.b;
}

unsigned long ccColor::bgr() const
{
  ccRGB const c = toRGB();
  return static_cast<unsigned long>(c.b) << 16 | static_cast<unsigned long>(c.g) << 8 | c.r;
}

bool operator==(ccColor const& a, ccColor const& b)
{
  if (a.isPass() != b.isPass())
    return false;
  unsigned const both = a.flags_ & b.flags_;
  if (both & ccColor::kRGB)
    return a.rgb_ == b.rgb_;
  return (both & ccColor::kIndex) != 0 && a.index_ == b.index_;
}

// Both are moved by way of a copy, so that a colour that ends half-way stays as it was.
ccArchive& operator||(ccArchive& ar, ccRGB& c)
{
  ccRGB moved = c;
  moveVersionWord(ar, "ccRGB");
  ar || moved.r || moved.g || moved.b;
  if (ar.isLoading())
    c = moved;
  return ar;
}

ccArchive& operator||(ccArchive& ar, ccColor& c)
{
  ccColor moved = c;
  moveVersionWord(ar, "ccColor");
  ar || moved.flags_ || moved.index_ || moved.rgb_.r || moved.rgb_.g || moved.rgb_.b;
  if (ar.isLoading())
    c = moved;
  return ar;
}
