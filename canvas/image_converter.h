// Turns rows of 8-bit pels into the pels of a drawing surface: 15, 16, 24 and 32-bit RGB through a colour map of 256 entries,
// and the packed video formats UYVY, YUY2 and YVYU. Strides are in bytes, w in pels, h in rows; nothing happens for w or h of
// 0 or less. One converter belongs to a scope and is used under that scope's lock.
#pragma once

#include "canvas/color.h"

#include <cstdint>
#include <memory>
#include <vector>

class ccImageConverter {
public:
  ccImageConverter();  // grey i at i
  // A copy shares tables that exist already, so copy only converters that have converted nothing yet.
  ccImageConverter(ccImageConverter const&) = default;
  ccImageConverter& operator=(ccImageConverter const&) = default;

  static constexpr long baseMapSz() { return 256; }
  void baseMap(std::vector<ccRGB> const&);  // the first 256 entries; missing ones stay as they are
  ccRGB getBaseMapEntry(unsigned long i) const;  // black above 255

  // Tables of 256 entries, brought up to date by the call and valid until the next baseMap.
  unsigned short const* rgb8To555();
  unsigned short const* rgb8To565();
  std::uint32_t const* rgb8To32();
  // Luma in the upper byte for UYVY, in the lower one for the other two. The end entries are as the video surfaces want them:
  // for UYVY they keep the luma off 0 and 255, for the other two the luma is 0 and the chroma moves.
  static unsigned short const* grey8ToUYVY();
  static unsigned short const* grey8ToYUY2();
  static unsigned short const* grey8ToYVYU();

  void convert8To555(unsigned char const* src, unsigned short* dst, long w, long h, long srcStride, long dstStride);
  void convert8To565(unsigned char const* src, unsigned short* dst, long w, long h, long srcStride, long dstStride);
  void convert8To24(unsigned char const* src, void* dst, long w, long h, long srcStride, long dstStride);
  void convert8To32(unsigned char const* src, std::uint32_t* dst, long w, long h, long srcStride, long dstStride);

  static void convert8To16(unsigned char const* src, unsigned short* dst, unsigned short const* table, long w, long h,
                           long srcStride, long dstStride);
  static void convert8To24(unsigned char const* src, void* dst, std::uint32_t const* table32, long w, long h,
                           long srcStride, long dstStride);  // the low three bytes of an entry
  static void convert8To32(unsigned char const* src, std::uint32_t* dst, std::uint32_t const* table, long w, long h,
                           long srcStride, long dstStride);
  static void convert8ToUYVY(unsigned char const* src, unsigned short* dst, long w, long h, long srcStride,
                             long dstStride);
  static void convert8ToYUY2(unsigned char const* src, unsigned short* dst, long w, long h, long srcStride,
                             long dstStride);
  static void convert8ToYVYU(unsigned char const* src, unsigned short* dst, long w, long h, long srcStride,
                             long dstStride);

private:
  struct cs_Triple {
    unsigned char b, g, r;
  };

  bool valid555_ = false;
  bool valid565_ = false;
  bool valid32_ = false;
  std::shared_ptr<unsigned short[]> table555_;  // each built on first use
  std::shared_ptr<unsigned short[]> table565_;
  std::shared_ptr<std::uint32_t[]> table32_;
  cs_Triple baseMap_[256];

  static unsigned short grey8ToUYVY_[256];
  static unsigned short grey8ToYUY2_[256];
  static unsigned short grey8ToYVYU_[256];
};
