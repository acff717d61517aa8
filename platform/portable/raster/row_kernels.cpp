#include "platform/portable/raster/row_kernels.h"

#include <algorithm>

#if defined(__x86_64__) && defined(__GNUC__)
#define KRS_WIDE_ROWS 1
// Some intrinsics of g++ 12 read a register that they say has no value.
#ifndef __clang__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif
#include <immintrin.h>
#ifndef __clang__
#pragma GCC diagnostic pop
#endif
#else
#define KRS_WIDE_ROWS 0
#endif

namespace plat::portable {

namespace {

void spansPlain(u8* pels, std::ptrdiff_t pitch, i32 rows, i32 const* from, i32 const* to, u32 pel)
{
  for (i32 i = 0; i < rows; ++i, pels += pitch)
    if (from[i] < to[i])
      fillRow(reinterpret_cast<u32*>(pels) + from[i], static_cast<std::size_t>(to[i] - from[i]), pel);
}

// Sums wrap around in what lies beyond a ramp's end.
void rampsPlain(Ramp const* ramps, std::size_t count, int tagBits)
{
  for (Ramp const* ramp = ramps; ramp != ramps + count; ++ramp) {
    std::uint64_t at = static_cast<std::uint64_t>(ramp->start);
    for (i32 i = 0; i < ramp->count; ++i) {
      ramp->to[i] = (static_cast<i32>(static_cast<std::int64_t>(at) >> rampBits) << tagBits) + ramp->tag;
      at += static_cast<std::uint64_t>(ramp->grow);
    }
  }
}

void sortAcrossPlain(i32* columns, std::size_t stride, int count, i32 rows, i32 low, i32 high)
{
  auto const column = [=](int k) { return columns + static_cast<std::size_t>(k) * stride; };
  for (int last = count - 1; last > 0; --last)
    for (int k = 0; k < last; ++k) {
      i32 *const a = column(k), *const b = column(k + 1);
      for (i32 i = 0; i < rows; ++i) {
        i32 const less = std::min(a[i], b[i]), more = std::max(a[i], b[i]);
        a[i] = less;
        b[i] = more;
      }
    }
  for (int k = 0; k < count; ++k) {
    i32* const a = column(k);
    for (i32 i = 0; i < rows; ++i)
      a[i] = std::min(std::max(a[i], low), high);
  }
}

void stampPlain(BitTile const* tiles, std::size_t count, std::ptrdiff_t pitch, u32 pel)
{
  for (BitTile const* tile = tiles; tile != tiles + count; ++tile) {
    u8* row = tile->pels;
    for (i32 i = 0; i < tile->rows; ++i, row += pitch)
      for (u32 left = tile->bits[i]; left != 0; left &= left - 1)
        reinterpret_cast<u32*>(row)[__builtin_ctz(left)] = pel;
  }
}

void blendPlain(CoverTile const* tiles, std::size_t count, std::ptrdiff_t pitch, u32 rgb)
{
  for (CoverTile const* tile = tiles; tile != tiles + count; ++tile) {
    u8* row = tile->pels;
    u8 const* cover = tile->coverage;
    for (i32 i = 0; i < tile->rows; ++i, row += pitch, cover += 16)
      for (std::size_t x = 0; x < 16; ++x)
        if (u32 const a = cover[x]) {
          u32& pel = reinterpret_cast<u32*>(row)[x];
          pel = blended(pel, rgb, a);
        }
  }
}

constexpr RowKernels plain{plainMaskedRow<u32>, spansPlain, rampsPlain, sortAcrossPlain, stampPlain, blendPlain};

#if KRS_WIDE_ROWS

#define KRS_WIDE __attribute__((target("avx512f,avx512bw,avx512dq,avx512vl,bmi2")))

KRS_WIDE void maskedWide(u32* to, std::size_t count, u32 pattern, u32 pel)
{
  // 48 pels are two patterns and three registers.
  __m512i const wide = _mm512_set1_epi32(static_cast<int>(pel));
  std::uint64_t const twice = pattern | std::uint64_t{pattern} << 24;
  __mmask16 const a = static_cast<__mmask16>(twice), b = static_cast<__mmask16>(twice >> 16),
                  c = static_cast<__mmask16>(twice >> 32);
  for (; count >= 48; count -= 48, to += 48) {
    _mm512_mask_storeu_epi32(to, a, wide);
    _mm512_mask_storeu_epi32(to + 16, b, wide);
    _mm512_mask_storeu_epi32(to + 32, c, wide);
  }
  std::uint64_t const rest = twice & ((std::uint64_t{1} << count) - 1);
  if (static_cast<u32>(rest) != 0) {
    _mm512_mask_storeu_epi32(to, static_cast<__mmask16>(rest), wide);
    _mm512_mask_storeu_epi32(to + 16, static_cast<__mmask16>(rest >> 16), wide);
  }
  if (rest >> 32 != 0)
    _mm512_mask_storeu_epi32(to + 32, static_cast<__mmask16>(rest >> 32), wide);
}

KRS_WIDE void spansWide(u8* pels, std::ptrdiff_t pitch, i32 rows, i32 const* from, i32 const* to, u32 pel)
{
  __m512i const wide = _mm512_set1_epi32(static_cast<int>(pel));
  for (i32 i = 0; i < rows; ++i, pels += pitch) {
    i32 const x0 = from[i];
    i32 count = to[i] - x0;
    if (count <= 0)
      continue;
    u32* at = reinterpret_cast<u32*>(pels) + x0;
    for (; count > 16; count -= 16, at += 16)
      _mm512_storeu_si512(at, wide);
    _mm512_mask_storeu_epi32(at, static_cast<__mmask16>(_bzhi_u32(0xFFFF, static_cast<unsigned>(count))), wide);
  }
}

KRS_WIDE void rampsWide(Ramp const* ramps, std::size_t count, int tagBits)
{
  __m512i const places = _mm512_setr_epi64(0, 1, 2, 3, 4, 5, 6, 7);
  __m128i const bits = _mm_cvtsi32_si128(tagBits);
  for (Ramp const* ramp = ramps; ramp != ramps + count; ++ramp) {
    __m512i const grow = _mm512_set1_epi64(ramp->grow), tag = _mm512_set1_epi64(ramp->tag);
    __m512i at = _mm512_add_epi64(_mm512_set1_epi64(ramp->start), _mm512_mullo_epi64(grow, places));
    __m512i const step = _mm512_slli_epi64(grow, 3);
    i32* to = ramp->to;
    for (i32 left = ramp->count; left > 0; left -= 8, to += 8) {
      __m512i const whole = _mm512_add_epi64(_mm512_sll_epi64(_mm512_srai_epi64(at, rampBits), bits), tag);
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm512_cvtepi64_epi32(whole));
      at = _mm512_add_epi64(at, step);
    }
  }
}

template <std::size_t Count>
KRS_WIDE void sortColumnsWide(i32* columns, std::size_t stride, i32 rows, __m512i low, __m512i high)
{
  for (i32 i = 0; i < rows; i += 16) {
    __m512i v[Count];
    for (std::size_t k = 0; k < Count; ++k)
      v[k] = _mm512_loadu_si512(columns + k * stride + i);
    for (std::size_t last = Count - 1; last > 0; --last)
      for (std::size_t k = 0; k < last; ++k) {
        __m512i const less = _mm512_min_epi32(v[k], v[k + 1]);
        v[k + 1] = _mm512_max_epi32(v[k], v[k + 1]);
        v[k] = less;
      }
    for (std::size_t k = 0; k < Count; ++k)
      _mm512_storeu_si512(columns + k * stride + i,
                          _mm512_min_epi32(_mm512_max_epi32(v[k], low), high));
  }
}

KRS_WIDE void sortAcrossWide(i32* columns, std::size_t stride, int count, i32 rows, i32 low, i32 high)
{
  __m512i const from = _mm512_set1_epi32(low), to = _mm512_set1_epi32(high);
  switch (count) {
  case 2: return sortColumnsWide<2>(columns, stride, rows, from, to);
  case 4: return sortColumnsWide<4>(columns, stride, rows, from, to);
  case 6: return sortColumnsWide<6>(columns, stride, rows, from, to);
  case 8: return sortColumnsWide<8>(columns, stride, rows, from, to);
  default: return sortAcrossPlain(columns, stride, count, rows, low, high);
  }
}

KRS_WIDE void stampWide(BitTile const* tiles, std::size_t count, std::ptrdiff_t pitch, u32 pel)
{
  __m512i const wide = _mm512_set1_epi32(static_cast<int>(pel));
  for (BitTile const* tile = tiles; tile != tiles + count; ++tile) {
    u8* row = tile->pels;
    u16 const* bits = tile->bits;
    for (i32 left = tile->rows; left > 0; --left, row += pitch)
      _mm512_mask_storeu_epi32(row, *bits++, wide);
  }
}

// 256 times the mixed channel, and a rest: v * 255 + (c - v) * a, all of it modulo 2^16. No sum exceeds 255 * 255 + 382.
KRS_WIDE inline __m512i mixed(__m512i v, __m512i c, __m512i a)
{
  __m512i const base = _mm512_add_epi16(_mm512_sub_epi16(_mm512_slli_epi16(v, 8), v), _mm512_set1_epi16(128));
  __m512i const sum = _mm512_add_epi16(base, _mm512_mullo_epi16(_mm512_sub_epi16(c, v), a));
  return _mm512_add_epi16(sum, _mm512_srli_epi16(sum, 8));
}

// Two channels lie in words of 16 bits: blue and red, green and nothing.
struct WideColor {
  __m512i redBlue, green;
};

KRS_WIDE inline __m512i blendedWide(__m512i old, __m512i one, WideColor const& color)
{
  __m512i const low = _mm512_set1_epi32(0x00FF00FF);
  __m512i const a = _mm512_or_si512(one, _mm512_slli_epi32(one, 16));
  __m512i const rb = _mm512_and_si512(old, low), g = _mm512_and_si512(_mm512_srli_epi32(old, 8), low);
  __m512i const outer = _mm512_srli_epi16(mixed(rb, color.redBlue, a), 8);
  __m512i const inner = _mm512_and_si512(mixed(g, color.green, a), _mm512_set1_epi32(0x0000FF00));
  return _mm512_or_si512(outer, inner);
}

KRS_WIDE void blendWide(CoverTile const* tiles, std::size_t count, std::ptrdiff_t pitch, u32 rgb)
{
  WideColor const color{_mm512_set1_epi32(static_cast<int>(rgb & 0xFF00FFu)),
                        _mm512_set1_epi32(static_cast<int>(rgb >> 8 & 0xFFu))};
  for (CoverTile const* tile = tiles; tile != tiles + count; ++tile) {
    u8* row = tile->pels;
    u8 const* cover = tile->coverage;
    i32 left = tile->rows;
    __mmask16 const inside = static_cast<__mmask16>(_bzhi_u32(0xFFFF, static_cast<unsigned>(tile->width)));
    if (tile->width <= 8) {
      // Two rows fit one register.
      __mmask8 const half = static_cast<__mmask8>(inside);
      for (; left > 1; left -= 2, row += 2 * pitch, cover += 32) {
        __m128i const both = _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<__m128i const*>(cover)),
                                                _mm_loadl_epi64(reinterpret_cast<__m128i const*>(cover + 16)));
        __m512i const one = _mm512_cvtepu8_epi32(both);
        unsigned const painted = _mm512_test_epi32_mask(one, one);
        __m512i const old = _mm512_inserti64x4(_mm512_castsi256_si512(_mm256_maskz_loadu_epi32(half, row)),
                                               _mm256_maskz_loadu_epi32(half, row + pitch), 1);
        __m512i const mix = blendedWide(old, one, color);
        _mm256_mask_storeu_epi32(row, static_cast<__mmask8>(painted), _mm512_castsi512_si256(mix));
        _mm256_mask_storeu_epi32(row + pitch, static_cast<__mmask8>(painted >> 8), _mm512_extracti64x4_epi64(mix, 1));
      }
    }
    for (; left > 0; --left, row += pitch, cover += 16) {
      __m512i const one = _mm512_cvtepu8_epi32(_mm_loadu_si128(reinterpret_cast<__m128i const*>(cover)));
      __m512i const mix = blendedWide(_mm512_maskz_loadu_epi32(inside, row), one, color);
      _mm512_mask_storeu_epi32(row, _mm512_test_epi32_mask(one, one), mix);
    }
  }
}

constexpr RowKernels wide{maskedWide, spansWide, rampsWide, sortAcrossWide, stampWide, blendWide};

#endif

RowKernels const& chosen()
{
#if KRS_WIDE_ROWS
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") &&
      __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("bmi2"))
    return wide;
#endif
  return plain;
}

}  // namespace

// The plain ones until this file's turn comes, so that objects of static lifetime can paint.
RowKernels const* chosenRowKernels = &plain;

namespace {

[[maybe_unused]] bool const chosenAtStart = (chosenRowKernels = &chosen(), true);

}  // namespace

RowKernels const& plainRowKernels() { return plain; }

}  // namespace plat::portable
