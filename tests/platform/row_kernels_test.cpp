#include "platform/portable/raster/row_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

using namespace plat;
using namespace plat::portable;

namespace {

constexpr int kLongest = 67, kRows = 5, kPitch = 4 * 160;
constexpr std::size_t kGuard = 64;

// Rows of pels of random content, begun at any byte offset that is a whole pel, with guard bytes around.
struct Block {
  std::vector<u8> bytes;
  std::size_t start;

  Block(std::mt19937& random, int alignment) : bytes(2 * kGuard + 64 + kRows * kPitch), start(kGuard + 4u * static_cast<unsigned>(alignment))
  {
    for (u8& b : bytes)
      b = static_cast<u8>(random());
  }
  u8* pels() { return bytes.data() + start; }
  u32 get(int x, int y) const
  {
    u32 pel;
    std::memcpy(&pel, bytes.data() + start + static_cast<std::size_t>(y) * kPitch + 4u * static_cast<unsigned>(x), 4);
    return pel;
  }
  void set(int x, int y, u32 pel)
  {
    std::memcpy(bytes.data() + start + static_cast<std::size_t>(y) * kPitch + 4u * static_cast<unsigned>(x), &pel, 4);
  }
};

// Runs body(kernels, block) with both sets and holds each against expected(block).
template <class Expected, class Body> void bothGive(Block const& before, Expected&& expected, Body&& body)
{
  Block wanted = before;
  expected(wanted);
  for (RowKernels const* kernels : {&plainRowKernels(), &rowKernels()}) {
    Block got = before;
    body(*kernels, got);
    ASSERT_TRUE(got.bytes == wanted.bytes) << (kernels == &plainRowKernels() ? "plain" : "chosen");
  }
}

}  // namespace

TEST(RowKernels, maskedRowsPaintThePatternsPelsAndNothingElse)
{
  std::mt19937 random(1);
  for (int alignment = 0; alignment < 16; ++alignment)
    for (int count = 1; count <= kLongest; ++count) {
      // Some patterns are empty but for a part that one register holds.
      u32 const parts[] = {0xFFFFFFu, 0x00FFFFu, 0xFF0000u, 0x0000FFu, 0x800000u};
      u32 const pattern = static_cast<u32>(random()) & parts[random() % 5], pel = static_cast<u32>(random());
      Block const before(random, alignment);
      bothGive(
          before,
          [&](Block& b) {
            for (int i = 0; i < count; ++i)
              if (pattern >> (i % 24) & 1u)
                b.set(i, 0, pel);
          },
          [&](RowKernels const& k, Block& b) {
            k.masked(reinterpret_cast<u32*>(b.pels()), static_cast<std::size_t>(count), pattern, pel);
          });
    }
}

TEST(RowKernels, spansOfAllLengthsPaintTheirPelsAndNothingElse)
{
  std::mt19937 random(2);
  for (int alignment = 0; alignment < 16; ++alignment)
    for (int count = 0; count <= kLongest; ++count) {
      i32 from[kRows], to[kRows];
      for (int y = 0; y < kRows; ++y) {
        from[y] = static_cast<i32>(random() % 40);
        to[y] = y == 2 ? from[y] - 3 : from[y] + count;  // one row is empty the other way round
      }
      u32 const pel = static_cast<u32>(random());
      Block const before(random, alignment);
      bothGive(
          before,
          [&](Block& b) {
            for (int y = 0; y < kRows; ++y)
              for (int x = from[y]; x < to[y]; ++x)
                b.set(x, y, pel);
          },
          [&](RowKernels const& k, Block& b) { k.spans(b.pels(), kPitch, kRows, from, to, pel); });
    }
}

TEST(RowKernels, stampsPaintWhereABitIsSet)
{
  std::mt19937 random(3);
  for (int alignment = 0; alignment < 16; ++alignment)
    for (int run = 0; run < 40; ++run) {
      u16 bits[2][kRows];
      for (auto& tile : bits)
        for (u16& row : tile)
          row = static_cast<u16>(random() % 5 == 0 ? 0 : random());
      u32 const pel = static_cast<u32>(random());
      int const second = static_cast<int>(random() % 80);
      Block const before(random, alignment);
      bothGive(
          before,
          [&](Block& b) {
            for (int y = 0; y < kRows; ++y)
              for (int x = 0; x < 16; ++x) {
                if (bits[0][y] >> x & 1)
                  b.set(x, y, pel);
                if (y < 3 && (bits[1][y] >> x & 1))
                  b.set(x + second, y, pel);
              }
          },
          [&](RowKernels const& k, Block& b) {
            BitTile const tiles[2] = {{b.pels(), bits[0], kRows}, {b.pels() + 4 * second, bits[1], 3}};
            k.stamp(tiles, 2, kPitch, pel);
          });
    }
}

TEST(RowKernels, blendsRoundEachChannelAndLeaveUncoveredPelsAlone)
{
  std::mt19937 random(4);
  for (int alignment = 0; alignment < 16; ++alignment)
    for (int width = 1; width <= 16; ++width)
      for (int rows = 1; rows <= kRows; ++rows) {
        u8 cover[kRows][16] = {};
        for (auto& row : cover)
          for (int x = 0; x < width; ++x)
            row[x] = static_cast<u8>(random() % 4 == 0 ? 0 : random() % 5 == 0 ? 255 : random());
        u32 const rgb = static_cast<u32>(random()) & 0xFFFFFFu;
        Block const before(random, alignment);
        bothGive(
            before,
            [&](Block& b) {
              for (int y = 0; y < rows; ++y)
                for (int x = 0; x < width; ++x) {
                  u32 const a = cover[y][x];
                  if (a == 0)
                    continue;
                  u32 const old = b.get(x, y);
                  u32 mixed = 0;
                  for (unsigned shift = 0; shift < 24; shift += 8) {
                    u32 const twice = 2 * ((rgb >> shift & 0xFFu) * a + (old >> shift & 0xFFu) * (255 - a));
                    mixed |= (twice + 255) / 510 << shift;
                  }
                  b.set(x, y, mixed);
                }
            },
            [&](RowKernels const& k, Block& b) {
              CoverTile const tile{b.pels(), &cover[0][0], rows, width};
              k.blend(&tile, 1, kPitch, rgb);
            });
      }
}

TEST(RowKernels, rampsRoundDownAndMayOverrunBySevenNumbers)
{
  std::mt19937_64 random(5);
  constexpr i32 guard = 12345678;
  for (int tagBits = 0; tagBits <= 1; ++tagBits)
    for (i32 count = 1; count <= kLongest; ++count) {
      std::int64_t const grow = static_cast<std::int64_t>(random() >> 12) - (std::int64_t{1} << 51);
      std::int64_t const start = static_cast<std::int64_t>(random() >> 3) - (std::int64_t{1} << 60);
      for (RowKernels const* kernels : {&plainRowKernels(), &rowKernels()}) {
        std::vector<i32> out(static_cast<std::size_t>(count) + 9, guard);
        Ramp const ramp{out.data() + 1, start, grow, count, tagBits};
        kernels->ramps(&ramp, 1, tagBits);
        for (i32 i = 0; i < count; ++i) {
          std::int64_t const value = start + i * grow, unit = std::int64_t{1} << rampBits;
          std::int64_t const whole = value / unit - (value % unit < 0 ? 1 : 0);
          ASSERT_EQ(out[static_cast<std::size_t>(i) + 1], whole * (1 + tagBits) + tagBits) << i;
        }
        EXPECT_EQ(out[0], guard);
        EXPECT_EQ(out.back(), guard);
      }
    }
}

TEST(RowKernels, columnsAreSortedAcrossAndBroughtIntoTheLimits)
{
  std::mt19937 random(6);
  constexpr std::size_t stride = 96;
  for (int count = 2; count <= columnLimit; count += 2)
    for (i32 rows = 1; rows <= kLongest; ++rows) {
      std::vector<i32> before(stride * columnLimit + 16);
      for (i32& v : before)
        v = static_cast<i32>(random() % 200) - 50;
      for (RowKernels const* kernels : {&plainRowKernels(), &rowKernels()}) {
        std::vector<i32> got = before;
        kernels->sortAcross(got.data(), stride, count, rows, -7, 101);
        for (std::size_t y = 0; y < static_cast<std::size_t>(rows); ++y) {
          std::vector<i32> row;
          for (std::size_t k = 0; k < static_cast<std::size_t>(count); ++k)
            row.push_back(std::clamp(before[k * stride + y], -7, 101));
          std::sort(row.begin(), row.end());
          for (std::size_t k = 0; k < row.size(); ++k)
            ASSERT_EQ(got[k * stride + y], row[k]);
        }
        for (std::size_t i = stride * static_cast<std::size_t>(count); i < got.size(); ++i)
          ASSERT_EQ(got[i], before[i]);
      }
    }
}
