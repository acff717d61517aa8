#include "canvas/image_converter.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace {

constexpr int kEntries = 256;

// Pels are stored byte by byte, so that surfaces of any alignment and pitch will do; it costs nothing where it isn't needed.
template <class Pel> void mapRow(unsigned char const* from, unsigned char* to, long w, Pel const* table)
{
  for (long x = 0; x < w; ++x)
    std::memcpy(to + x * static_cast<long>(sizeof(Pel)), &table[from[x]], sizeof(Pel));
}

template <class Pel>
void mapRows(unsigned char const* src, void* dst, Pel const* table, long w, long h, long srcStride, long dstStride)
{
  unsigned char* to = static_cast<unsigned char*>(dst);
  for (long y = 0; w > 0 && y < h; ++y)
    mapRow(src + std::ptrdiff_t{y} * srcStride, to + std::ptrdiff_t{y} * dstStride, w, table);
}

template <class Table> Table* ensure(std::shared_ptr<Table[]>& table)
{
  if (!table)
    table.reset(new Table[kEntries]());
  return table.get();
}

void buildYuv(unsigned short* table, bool lumaAbove, unsigned short first, unsigned short last)
{
  table[0] = first;
  for (int i = 1; i < kEntries - 1; ++i)
    table[i] = static_cast<unsigned short>(lumaAbove ? i << 8 | 0x80 : 0x8000 | i);
  table[kEntries - 1] = last;
}

}  // namespace

unsigned short ccImageConverter::grey8ToUYVY_[256];
unsigned short ccImageConverter::grey8ToYUY2_[256];
unsigned short ccImageConverter::grey8ToYVYU_[256];

ccImageConverter::ccImageConverter()
{
  for (int i = 0; i < kEntries; ++i) {
    unsigned char const grey = static_cast<unsigned char>(i);
    baseMap_[i] = cs_Triple{grey, grey, grey};
  }
}

void ccImageConverter::baseMap(std::vector<ccRGB> const& map)
{
  std::size_t const count = std::min<std::size_t>(map.size(), kEntries);
  for (std::size_t i = 0; i < count; ++i)
    baseMap_[i] = cs_Triple{map[i].b, map[i].g, map[i].r};
  valid555_ = valid565_ = valid32_ = false;
}

ccRGB ccImageConverter::getBaseMapEntry(unsigned long i) const
{
  if (i >= kEntries)
    return ccRGB();
  return ccRGB(baseMap_[i].r, baseMap_[i].g, baseMap_[i].b);
}

unsigned short const* ccImageConverter::rgb8To555()
{
  if (!valid555_) {
    unsigned short* const table = ensure(table555_);
    for (unsigned long i = 0; i < kEntries; ++i)
      table[i] = getBaseMapEntry(i).rgb15();
    valid555_ = true;
  }
  return table555_.get();
}

unsigned short const* ccImageConverter::rgb8To565()
{
  if (!valid565_) {
    unsigned short* const table = ensure(table565_);
    for (unsigned long i = 0; i < kEntries; ++i)
      table[i] = getBaseMapEntry(i).rgb16();
    valid565_ = true;
  }
  return table565_.get();
}

std::uint32_t const* ccImageConverter::rgb8To32()
{
  if (!valid32_) {
    std::uint32_t* const table = ensure(table32_);
    for (int i = 0; i < kEntries; ++i)
      table[i] = static_cast<std::uint32_t>(baseMap_[i].r << 16 | baseMap_[i].g << 8 | baseMap_[i].b);
    valid32_ = true;
  }
  return table32_.get();
}

unsigned short const* ccImageConverter::grey8ToUYVY()
{
  static bool const inited = (buildYuv(grey8ToUYVY_, true, 0x0180, 0xFE80), true);
  static_cast<void>(inited);
  return grey8ToUYVY_;
}

unsigned short const* ccImageConverter::grey8ToYUY2()
{
  static bool const inited = (buildYuv(grey8ToYUY2_, false, 0x8100, 0xFE00), true);
  static_cast<void>(inited);
  return grey8ToYUY2_;
}

unsigned short const* ccImageConverter::grey8ToYVYU()
{
  static bool const inited = (buildYuv(grey8ToYVYU_, false, 0x8100, 0xFE00), true);
  static_cast<void>(inited);
  return grey8ToYVYU_;
}

void ccImageConverter::convert8To555(unsigned char const* src, unsigned short* dst, long w, long h, long srcStride,
                                     long dstStride)
{
  mapRows(src, dst, rgb8To555(), w, h, srcStride, dstStride);
}

void ccImageConverter::convert8To565(unsigned char const* src, unsigned short* dst, long w, long h, long srcStride,
                                     long dstStride)
{
  mapRows(src, dst, rgb8To565(), w, h, srcStride, dstStride);
}

void ccImageConverter::convert8To24(unsigned char const* src, void* dst, long w, long h, long srcStride, long dstStride)
{
  static_assert(sizeof(cs_Triple) == 3, "three bytes without padding");
  mapRows(src, dst, baseMap_, w, h, srcStride, dstStride);
}

void ccImageConverter::convert8To32(unsigned char const* src, std::uint32_t* dst, long w, long h, long srcStride,
                                    long dstStride)
{
  mapRows(src, dst, rgb8To32(), w, h, srcStride, dstStride);
}

void ccImageConverter::convert8To16(unsigned char const* src, unsigned short* dst, unsigned short const* table, long w,
                                    long h, long srcStride, long dstStride)
{
  mapRows(src, dst, table, w, h, srcStride, dstStride);
}

void ccImageConverter::convert8To24(unsigned char const* src, void* dst, std::uint32_t const* table32, long w, long h,
                                    long srcStride, long dstStride)
{
  for (long y = 0; w > 0 && y < h; ++y) {
    unsigned char const* const from = src + std::ptrdiff_t{y} * srcStride;
    unsigned char* const to = static_cast<unsigned char*>(dst) + std::ptrdiff_t{y} * dstStride;
    for (long x = 0; x < w; ++x) {
      std::uint32_t const v = table32[from[x]];
      to[3 * x] = static_cast<unsigned char>(v);
      to[3 * x + 1] = static_cast<unsigned char>(v >> 8);
      to[3 * x + 2] = static_cast<unsigned char>(v >> 16);
    }
  }
}

void ccImageConverter::convert8To32(unsigned char const* src, std::uint32_t* dst, std::uint32_t const* table, long w,
                                    long h, long srcStride, long dstStride)
{
  mapRows(src, dst, table, w, h, srcStride, dstStride);
}

void ccImageConverter::convert8ToUYVY(unsigned char const* src, unsigned short* dst, long w, long h, long srcStride,
                                      long dstStride)
{
  mapRows(src, dst, grey8ToUYVY(), w, h, srcStride, dstStride);
}

void ccImageConverter::convert8ToYUY2(unsigned char const* src, unsigned short* dst, long w, long h, long srcStride,
                                      long dstStride)
{
  mapRows(src, dst, grey8ToYUY2(), w, h, srcStride, dstStride);
}

void ccImageConverter::convert8ToYVYU(unsigned char const* src, unsigned short* dst, long w, long h, long srcStride,
                                      long dstStride)
{
  mapRows(src, dst, grey8ToYVYU(), w, h, srcStride, dstStride);
}
