// Images for the tests of the display, and what they look like on a surface.
#pragma once

#include "foundation/pel_buffer.h"
#include "tests/support/plain_painter.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

using Random = std::mt19937;

inline long cfPick(Random& random, long low, long high)
{
  return std::uniform_int_distribution<long>(low, high)(random);
}

inline double cfPickReal(Random& random, double low, double high)
{
  return std::uniform_real_distribution<double>(low, high)(random);
}

template <class T, class Make> ccPelBuffer<T> cfFilled(long w, long h, Make&& make)
{
  ccPelBuffer<T> image(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      image.setPel(x, y, make(x, y));
  return image;
}

inline ccPelBuffer<unsigned char> cfGrey8(long w, long h, unsigned char value)
{
  return cfFilled<unsigned char>(w, h, [=](long, long) { return value; });
}

inline ccPelBuffer<unsigned char> cfRandom8(long w, long h, unsigned seed)
{
  Random random(seed);
  return cfFilled<unsigned char>(w, h, [&](long, long) { return static_cast<unsigned char>(random()); });
}

inline ccPelBuffer<unsigned short> cfRandom16(long w, long h, unsigned seed, long low, long high)
{
  Random random(seed);
  return cfFilled<unsigned short>(w, h, [&](long, long) { return static_cast<unsigned short>(cfPick(random, low, high)); });
}

inline ccPelBuffer<ccPackedRGB16Pel> cfRandomRGB16(long w, long h, unsigned seed)
{
  Random random(seed);
  return cfFilled<ccPackedRGB16Pel>(w, h,
                                    [&](long, long) { return ccPackedRGB16Pel(static_cast<std::uint16_t>(random())); });
}

inline ccPelBuffer<ccPackedRGB32Pel> cfRandomRGB32(long w, long h, unsigned seed)
{
  Random random(seed);
  return cfFilled<ccPackedRGB32Pel>(
      w, h, [&](long, long) { return ccPackedRGB32Pel(static_cast<std::uint32_t>(random() & 0xFFFFFF)); });
}

// The pels of an image from its upper left, row by row, each as `toSurface` makes it.
template <class T, class ToSurface>
std::vector<std::uint32_t> cfOnSurface(ccPelBuffer_const<T> const& image, ToSurface&& toSurface)
{
  std::vector<std::uint32_t> pels;
  for (long y = 0; y < image.height(); ++y)
    for (long x = 0; x < image.width(); ++x)
      pels.push_back(toSurface(image.getPel(x + image.offset().x(), y + image.offset().y())));
  return pels;
}

inline std::vector<std::uint32_t> cfGreyOnSurface(ccPelBuffer_const<unsigned char> const& image, int depth,
                                                  bool mapped = true)
{
  static std::vector<plain::Rgb> const ramp = plain::greyRamp();
  return cfOnSurface(image, [&](unsigned char v) { return plain::surfacePelOfGrey8(v, mapped, depth, ramp); });
}

// Dark grey, by which the display paints what no image covers.
inline std::uint32_t cfSurround(int depth)
{
  plain::Rgb grey;
  grey.r = grey.g = grey.b = 128;
  return depth == 8 ? 248 : plain::surfacePel(grey, depth);
}

inline plain::View cfView(long displayW, long displayH, long imageW, long imageH, double magnification = 1,
                          double panX = 0, double panY = 0)
{
  plain::View v;
  v.displayW = displayW;
  v.displayH = displayH;
  v.imageW = imageW;
  v.imageH = imageH;
  v.magnification = magnification;
  v.panX = panX;
  v.panY = panY;
  return v;
}
