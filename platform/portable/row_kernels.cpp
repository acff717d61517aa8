#include "platform/portable/row_kernels.h"

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

void spansPlain(u8* pels, std::ptrdiff_t pitch, i32 rows, i32 const* from, i32 const* to, i32 left, i32 right, u32 pel)
{
  for (i32 i = 0; i < rows; ++i, pels += pitch) {
    i32 const x0 = std::max(from[i], left), x1 = std::min(to[i], right);
    if (x0 < x1)
      fillRow(reinterpret_cast<u32*>(pels) + x0, static_cast<std::size_t>(x1 - x0), pel);
  }
}

void bitsPlain(u8* pels, std::ptrdiff_t pitch, i32 rows, u16 const* bits, u32 pel)
{
  for (i32 i = 0; i < rows; ++i, pels += pitch)
    for (u32 left = bits[i]; left != 0; left &= left - 1)
      reinterpret_cast<u32*>(pels)[__builtin_ctz(left)] = pel;
}

void blendPlain(u8* pels, std::ptrdiff_t pitch, i32 rows, i32 width, u8 const* coverage, u32 rgb)
{
  for (i32 i = 0; i < rows; ++i, pels += pitch, coverage += 16)
    for (i32 x = 0; x < width; ++x)
      if (u32 const a = coverage[x]) {
        u32& pel = reinterpret_cast<u32*>(pels)[x];
        pel = blended(pel, rgb, a);
      }
}

constexpr RowKernels plain{plainMaskedRow<u32>, spansPlain, bitsPlain, blendPlain};

#if KRS_WIDE_ROWS

#define KRS_WIDE __attribute__((target("avx512f,avx512bw,avx512vl,bmi2")))

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

KRS_WIDE void spansWide(u8* pels, std::ptrdiff_t pitch, i32 rows, i32 const* from, i32 const* to, i32 left, i32 right,
                        u32 pel)
{
  __m512i const wide = _mm512_set1_epi32(static_cast<int>(pel));
  for (i32 i = 0; i < rows; ++i, pels += pitch) {
    i32 const x0 = std::max(from[i], left), x1 = std::min(to[i], right);
    i32 count = x1 - x0;
    if (count <= 0)
      continue;
    u32* at = reinterpret_cast<u32*>(pels) + x0;
    for (; count > 16; count -= 16, at += 16)
      _mm512_storeu_si512(at, wide);
    _mm512_mask_storeu_epi32(at, static_cast<__mmask16>(_bzhi_u32(0xFFFF, static_cast<unsigned>(count))), wide);
  }
}

KRS_WIDE void bitsWide(u8* pels, std::ptrdiff_t pitch, i32 rows, u16 const* bits, u32 pel)
{
  __m512i const wide = _mm512_set1_epi32(static_cast<int>(pel));
  for (i32 i = 0; i < rows; ++i, pels += pitch)
    _mm512_mask_storeu_epi32(pels, bits[i], wide);
}

// 256 times the mixed channel, and a rest: v * 255 + (c - v) * a, all of it modulo 2^16. No sum exceeds 255 * 255 + 382.
KRS_WIDE inline __m512i mixed(__m512i v, __m512i c, __m512i a)
{
  __m512i const base = _mm512_add_epi16(_mm512_sub_epi16(_mm512_slli_epi16(v, 8), v), _mm512_set1_epi16(128));
  __m512i const sum = _mm512_add_epi16(base, _mm512_mullo_epi16(_mm512_sub_epi16(c, v), a));
  return _mm512_add_epi16(sum, _mm512_srli_epi16(sum, 8));
}

KRS_WIDE void blendWide(u8* pels, std::ptrdiff_t pitch, i32 rows, i32 width, u8 const* coverage, u32 rgb)
{
  // Two channels lie in words of 16 bits: blue and red, green and nothing.
  __mmask16 const inside = static_cast<__mmask16>(_bzhi_u32(0xFFFF, static_cast<unsigned>(width)));
  __m512i const low = _mm512_set1_epi32(0x00FF00FF), green = _mm512_set1_epi32(0x0000FF00);
  __m512i const redBlue = _mm512_set1_epi32(static_cast<int>(rgb & 0xFF00FFu));
  __m512i const greenOnly = _mm512_set1_epi32(static_cast<int>(rgb >> 8 & 0xFFu));
  for (i32 i = 0; i < rows; ++i, pels += pitch, coverage += 16) {
    __m512i const one = _mm512_cvtepu8_epi32(_mm_loadu_si128(reinterpret_cast<__m128i const*>(coverage)));
    __m512i const a = _mm512_or_si512(one, _mm512_slli_epi32(one, 16));
    __mmask16 const painted = _mm512_mask_test_epi32_mask(inside, one, one);
    __m512i const old = _mm512_maskz_loadu_epi32(inside, pels);
    __m512i const rb = _mm512_and_si512(old, low), g = _mm512_and_si512(_mm512_srli_epi32(old, 8), low);
    __m512i const outer = _mm512_srli_epi16(mixed(rb, redBlue, a), 8);
    __m512i const inner = _mm512_and_si512(mixed(g, greenOnly, a), green);
    _mm512_mask_storeu_epi32(pels, painted, _mm512_or_si512(outer, inner));
  }
}

constexpr RowKernels wide{maskedWide, spansWide, bitsWide, blendWide};

#endif

RowKernels const& chosen()
{
#if KRS_WIDE_ROWS
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl") &&
      __builtin_cpu_supports("bmi2"))
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
