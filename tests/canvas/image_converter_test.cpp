#include "canvas/image_converter.h"

#include "foundation/cpu.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace {

std::vector<ccRGB> randomMap(std::mt19937& random)
{
  std::vector<ccRGB> map;
  for (int i = 0; i < 256; ++i)
    map.push_back(ccRGB(static_cast<unsigned char>(random()), static_cast<unsigned char>(random()),
                        static_cast<unsigned char>(random())));
  return map;
}

// The bytes of one pel, by the plain formulas.
using Plain = std::vector<unsigned char> (*)(int value, std::vector<ccRGB> const& map);

std::vector<unsigned char> word(unsigned v)
{
  return {static_cast<unsigned char>(v % 256), static_cast<unsigned char>(v / 256)};
}

std::vector<unsigned char> plain555(int v, std::vector<ccRGB> const& map)
{
  ccRGB const c = map[static_cast<std::size_t>(v)];
  return word(static_cast<unsigned>(c.r / 8 * 1024 + c.g / 8 * 32 + c.b / 8));
}

std::vector<unsigned char> plain565(int v, std::vector<ccRGB> const& map)
{
  ccRGB const c = map[static_cast<std::size_t>(v)];
  return word(static_cast<unsigned>(c.r / 8 * 2048 + c.g / 4 * 32 + c.b / 8));
}

std::vector<unsigned char> plain24(int v, std::vector<ccRGB> const& map)
{
  ccRGB const c = map[static_cast<std::size_t>(v)];
  return {c.b, c.g, c.r};
}

std::vector<unsigned char> plain32(int v, std::vector<ccRGB> const& map)
{
  ccRGB const c = map[static_cast<std::size_t>(v)];
  return {c.b, c.g, c.r, 0};
}

std::vector<unsigned char> plainUYVY(int v, std::vector<ccRGB> const&)
{
  if (v == 0)
    return {0x80, 0x01};
  if (v == 255)
    return {0x80, 0xFE};
  return {0x80, static_cast<unsigned char>(v)};
}

std::vector<unsigned char> plainYUY2(int v, std::vector<ccRGB> const&)
{
  if (v == 0)
    return {0x00, 0x81};
  if (v == 255)
    return {0x00, 0xFE};
  return {static_cast<unsigned char>(v), 0x80};
}

using Convert = void (*)(ccImageConverter&, unsigned char const* src, void* dst, long w, long h, long srcStride,
                         long dstStride);

struct Conversion {
  char const* name;
  long bytes;
  Plain plain;
  Convert run;
};

std::vector<Conversion> conversions()
{
  return {
      {"555", 2, plain555, [](ccImageConverter& c, unsigned char const* s, void* d, long w, long h, long ss, long ds) {
         c.convert8To555(s, static_cast<unsigned short*>(d), w, h, ss, ds);
       }},
      {"565", 2, plain565, [](ccImageConverter& c, unsigned char const* s, void* d, long w, long h, long ss, long ds) {
         c.convert8To565(s, static_cast<unsigned short*>(d), w, h, ss, ds);
       }},
      {"24", 3, plain24, [](ccImageConverter& c, unsigned char const* s, void* d, long w, long h, long ss, long ds) {
         c.convert8To24(s, d, w, h, ss, ds);
       }},
      {"32", 4, plain32, [](ccImageConverter& c, unsigned char const* s, void* d, long w, long h, long ss, long ds) {
         c.convert8To32(s, static_cast<std::uint32_t*>(d), w, h, ss, ds);
       }},
      {"any 16", 2, plain565, [](ccImageConverter& c, unsigned char const* s, void* d, long w, long h, long ss, long ds) {
         ccImageConverter::convert8To16(s, static_cast<unsigned short*>(d), c.rgb8To565(), w, h, ss, ds);
       }},
      {"any 24", 3, plain24, [](ccImageConverter& c, unsigned char const* s, void* d, long w, long h, long ss, long ds) {
         ccImageConverter::convert8To24(s, d, c.rgb8To32(), w, h, ss, ds);
       }},
      {"any 32", 4, plain32, [](ccImageConverter& c, unsigned char const* s, void* d, long w, long h, long ss, long ds) {
         ccImageConverter::convert8To32(s, static_cast<std::uint32_t*>(d), c.rgb8To32(), w, h, ss, ds);
       }},
      {"UYVY", 2, plainUYVY, [](ccImageConverter&, unsigned char const* s, void* d, long w, long h, long ss, long ds) {
         ccImageConverter::convert8ToUYVY(s, static_cast<unsigned short*>(d), w, h, ss, ds);
       }},
      {"YUY2", 2, plainYUY2, [](ccImageConverter&, unsigned char const* s, void* d, long w, long h, long ss, long ds) {
         ccImageConverter::convert8ToYUY2(s, static_cast<unsigned short*>(d), w, h, ss, ds);
       }},
      {"YVYU", 2, plainYUY2, [](ccImageConverter&, unsigned char const* s, void* d, long w, long h, long ss, long ds) {
         ccImageConverter::convert8ToYVYU(s, static_cast<unsigned short*>(d), w, h, ss, ds);
       }},
  };
}

constexpr unsigned char kGuard = 0xA5;

// Converts into guarded memory and compares every byte of it, those between and around the rows too.
void checkRows(Conversion const& c, ccImageConverter& converter, std::vector<ccRGB> const& map, std::mt19937& random,
               long w, long h, std::size_t srcShift, std::size_t dstShift, long srcGap, long dstGap)
{
  long const srcStride = w + srcGap;
  long const dstStride = w * c.bytes + dstGap;
  std::vector<std::uint64_t> srcMemory(static_cast<std::size_t>(srcStride * h) / 8 + 4);
  std::vector<std::uint64_t> dstMemory(static_cast<std::size_t>(dstStride * h) / 8 + 10);
  std::size_t const dstBytes = dstMemory.size() * 8;
  unsigned char* const src = reinterpret_cast<unsigned char*>(srcMemory.data()) + srcShift;
  unsigned char* const whole = reinterpret_cast<unsigned char*>(dstMemory.data());
  unsigned char* const dst = whole + 16 + dstShift;
  for (long i = 0; i < srcStride * h; ++i)
    src[i] = static_cast<unsigned char>(random());
  std::memset(whole, kGuard, dstBytes);
  std::vector<unsigned char> expected(dstBytes, kGuard);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x) {
      std::vector<unsigned char> const pel = c.plain(src[y * srcStride + x], map);
      std::copy(pel.begin(), pel.end(),
                expected.begin() + static_cast<std::ptrdiff_t>(16 + dstShift) + y * dstStride + x * c.bytes);
    }
  c.run(converter, src, dst, w, h, srcStride, dstStride);
  ASSERT_EQ(std::memcmp(whole, expected.data(), dstBytes), 0)
      << c.name << " width " << w << " shifts " << srcShift << " " << dstShift;
}

}  // namespace

TEST(ccImageConverter, startsWithIdentityGrey)
{
  ccImageConverter const c;
  EXPECT_EQ(ccImageConverter::baseMapSz(), 256);
  for (unsigned long i = 0; i < 256; ++i)
    EXPECT_EQ(c.getBaseMapEntry(i), ccRGB(static_cast<unsigned char>(i), static_cast<unsigned char>(i),
                                          static_cast<unsigned char>(i)));
}

TEST(ccImageConverter, getBaseMapEntryAbove255IsBlack)
{
  ccImageConverter const c;
  EXPECT_EQ(c.getBaseMapEntry(255), ccRGB(255, 255, 255));
  EXPECT_EQ(c.getBaseMapEntry(256), ccRGB(0, 0, 0));
  EXPECT_EQ(c.getBaseMapEntry(4000000000ul), ccRGB(0, 0, 0));
}

TEST(ccImageConverter, baseMapTakesTheFirst256Entries)
{
  std::vector<ccRGB> map(300, ccRGB(1, 2, 3));
  map[255] = ccRGB(4, 5, 6);
  ccImageConverter c;
  c.baseMap(map);
  EXPECT_EQ(c.getBaseMapEntry(0), ccRGB(1, 2, 3));
  EXPECT_EQ(c.getBaseMapEntry(255), ccRGB(4, 5, 6));
}

TEST(ccImageConverter, aShortBaseMapIsHarmless)
{
  ccImageConverter c;
  c.baseMap({ccRGB(9, 8, 7)});
  EXPECT_EQ(c.getBaseMapEntry(0), ccRGB(9, 8, 7));
  EXPECT_EQ(c.getBaseMapEntry(1), ccRGB(1, 1, 1));
}

TEST(ccImageConverter, tablesFollowTheFormulas)
{
  std::mt19937 random(1);
  std::vector<ccRGB> const map = randomMap(random);
  ccImageConverter c;
  c.baseMap(map);
  for (std::size_t i = 0; i < 256; ++i) {
    unsigned const r = map[i].r;
    unsigned const g = map[i].g;
    unsigned const b = map[i].b;
    EXPECT_EQ(c.rgb8To555()[i], (r & 0xF8) << 7 | (g & 0xF8) << 2 | b >> 3);
    EXPECT_EQ(c.rgb8To565()[i], (r & 0xF8) << 8 | (g & 0xFC) << 3 | b >> 3);
    EXPECT_EQ(c.rgb8To32()[i], r << 16 | g << 8 | b);
  }
}

TEST(ccImageConverter, videoTablesHaveTheirOddEnds)
{
  EXPECT_EQ(ccImageConverter::grey8ToUYVY()[0], 0x0180);
  EXPECT_EQ(ccImageConverter::grey8ToUYVY()[255], 0xFE80);
  EXPECT_EQ(ccImageConverter::grey8ToYUY2()[0], 0x8100);
  EXPECT_EQ(ccImageConverter::grey8ToYUY2()[255], 0xFE00);
  EXPECT_EQ(ccImageConverter::grey8ToYVYU()[0], 0x8100);
  EXPECT_EQ(ccImageConverter::grey8ToYVYU()[255], 0xFE00);
  for (int i = 1; i < 255; ++i) {
    EXPECT_EQ(ccImageConverter::grey8ToUYVY()[i], i << 8 | 0x80);
    EXPECT_EQ(ccImageConverter::grey8ToYUY2()[i], 0x8000 | i);
    EXPECT_EQ(ccImageConverter::grey8ToYVYU()[i], 0x8000 | i);
  }
}

TEST(ccImageConverter, afterBaseMap565GivesNewValuesAlthoughTheTableExists)
{
  ccImageConverter c;
  unsigned char const src[1] = {10};
  unsigned short dst[1] = {};
  c.convert8To565(src, dst, 1, 1, 1, 2);
  EXPECT_EQ(dst[0], 1 << 11 | 2 << 5 | 1);
  unsigned short const* const table = c.rgb8To565();

  std::vector<ccRGB> map(256);
  map[10] = ccRGB(255, 0, 0);
  c.baseMap(map);
  c.convert8To565(src, dst, 1, 1, 1, 2);
  EXPECT_EQ(dst[0], 0xF800);
  EXPECT_EQ(c.rgb8To565(), table);  // refilled in place
}

TEST(ccImageConverter, afterBaseMapTheOtherTablesAreNewToo)
{
  ccImageConverter c;
  c.rgb8To555();
  c.rgb8To32();
  std::vector<ccRGB> map(256);
  map[10] = ccRGB(255, 0, 0);
  c.baseMap(map);
  EXPECT_EQ(c.rgb8To555()[10], 0x7C00);
  EXPECT_EQ(c.rgb8To32()[10], 0xFF0000u);
}

TEST(ccImageConverter, convert8ToYUY2OfTheEndsAndTheMiddle)
{
  unsigned char const src[3] = {0, 255, 128};
  unsigned short dst[3] = {};
  ccImageConverter::convert8ToYUY2(src, dst, 3, 1, 3, 6);
  EXPECT_EQ(dst[0], 0x8100);
  EXPECT_EQ(dst[1], 0xFE00);
  EXPECT_EQ(dst[2], 0x8080);
}

TEST(ccImageConverter, convert8ToUYVYOfTheEnds)
{
  unsigned char const src[2] = {0, 255};
  unsigned short dst[2] = {};
  ccImageConverter::convert8ToUYVY(src, dst, 2, 1, 2, 4);
  EXPECT_EQ(dst[0], 0x0180);
  EXPECT_EQ(dst[1], 0xFE80);
}

TEST(ccImageConverter, bothPathsOfUYVYGiveTheSamePels)
{
  // 16 by 8 pels with everything a multiple of 8, then the same pels with a source one byte off.
  ASSERT_TRUE(ccCpuType::mmxPresent());
  alignas(8) unsigned char src[16 * 8];
  alignas(8) unsigned char shifted[16 * 8 + 8];
  alignas(8) unsigned short fast[16 * 8];
  alignas(8) unsigned short slow[16 * 8];
  for (int i = 0; i < 128; ++i)
    shifted[i + 1] = src[i] = static_cast<unsigned char>(2 * i + (i > 63));
  ccImageConverter::convert8ToUYVY(src, fast, 16, 8, 16, 32);
  ccImageConverter::convert8ToUYVY(shifted + 1, slow, 16, 8, 16, 32);
  EXPECT_EQ(std::memcmp(fast, slow, sizeof fast), 0);
  EXPECT_EQ(fast[0], 0x0180);
  EXPECT_EQ(fast[127], 0xFE80);
}

TEST(ccImageConverter, nothingIsConvertedForWidthOrHeightOfZeroOrLess)
{
  ccImageConverter converter;
  unsigned char const src[64] = {1, 2, 3};
  for (Conversion const& c : conversions())
    for (auto const& extent : {std::pair<long, long>(0, 4), {4, 0}, {-1, 4}, {4, -1}, {-16, -16}}) {
      std::vector<std::uint32_t> dst(64, 0xA5A5A5A5u);
      c.run(converter, src, dst.data(), extent.first, extent.second, 4, 16);
      EXPECT_EQ(dst, std::vector<std::uint32_t>(64, 0xA5A5A5A5u)) << c.name;
    }
}

TEST(ccImageConverter, everyWidthFrom1To67AtEachAlignmentStaysInsideItsRows)
{
  std::mt19937 random(2);
  std::vector<ccRGB> const map = randomMap(random);
  ccImageConverter converter;
  converter.baseMap(map);
  for (Conversion const& c : conversions())
    for (long w = 1; w <= 67; ++w)
      for (std::size_t shift = 0; shift < 8; ++shift) {
        checkRows(c, converter, map, random, w, 3, shift, (shift * 3 + static_cast<std::size_t>(w)) % 8,
                  static_cast<long>(random() % 5), static_cast<long>(random() % 9));
        if (HasFatalFailure())
          return;
      }
}

TEST(ccImageConverter, alignedMultiplesOf8StayInsideTheirRows)
{
  std::mt19937 random(3);
  std::vector<ccRGB> const map = randomMap(random);
  ccImageConverter converter;
  converter.baseMap(map);
  for (Conversion const& c : conversions())
    for (long w = 8; w <= 64; w += 8) {
      checkRows(c, converter, map, random, w, 8, 0, 0, 8, 8);
      if (HasFatalFailure())
        return;
    }
}

TEST(ccImageConverter, aCopyHasTheMapAndSharesBuiltTables)
{
  ccImageConverter source;
  std::vector<ccRGB> map(256);
  map[1] = ccRGB(255, 255, 255);
  source.baseMap(map);
  ccImageConverter early(source);
  unsigned short const* const table = source.rgb8To555();
  ccImageConverter late;
  late = source;
  EXPECT_EQ(late.rgb8To555(), table);
  EXPECT_NE(early.rgb8To555(), table);
  EXPECT_EQ(early.rgb8To555()[1], 0x7FFF);
}
