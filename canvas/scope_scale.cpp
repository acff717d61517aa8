// Scaled images: the kernel for pel buffers, and run-length images by way of a scaled copy.
#include "canvas/scope.h"

#include "canvas/rle_buffer.h"
#include "canvas/scope_scratch.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

// A run of target pels along one axis: `count` of them from `first`, in target coordinates.
struct Span {
  std::int64_t first = 0;
  long count = 0;
};

// What of an image of `extent` pels, scaled and placed at `origin`, lies in [from, to). Clipping comes before anything is
// built, so that an image of any size costs what is visible of it.
Span visible(long extent, double scale, long origin, long from, long to)
{
  double const scaledEnd = static_cast<double>(origin) + ceilT(static_cast<double>(extent) * scale);
  std::int64_t const first = std::max<std::int64_t>(origin, from);
  std::int64_t const end = scaledEnd < static_cast<double>(to) ? static_cast<std::int64_t>(scaledEnd) : to;
  // Positions are pels of 32 bits; beyond what a double holds exactly nothing can be in sight.
  constexpr std::int64_t kLimit = std::int64_t(1) << 52;
  Span s;
  if (extent > 0 && first < end && origin > -kLimit && origin < kLimit) {
    s.first = first;
    s.count = static_cast<long>(end - first);
  }
  return s;
}

// The source pel of the target pel that lies `distance` from the image's edge.
long sourceOf(std::int64_t distance, double scale, long extent)
{
  double const at = floorT(static_cast<double>(distance) / scale);
  return at < static_cast<double>(extent) ? static_cast<long>(at) : extent - 1;
}

constexpr std::uint32_t kOne = 256;  // a whole weight

// Bilinear: the left one of two source pels and the weight of the right one, from pel centre to pel centre.
struct Between {
  long left;
  std::uint32_t weight;
};

Between betweenOf(std::int64_t distance, double scale, long extent)
{
  double const last = static_cast<double>(extent - 1);
  double const at = std::clamp((static_cast<double>(distance) + 0.5) / scale - 0.5, 0.0, last);
  double const left = std::min(std::floor(at), std::max(last - 1, 0.0));
  return Between{static_cast<long>(left), static_cast<std::uint32_t>((at - left) * kOne + 0.5)};
}

// Four corners to one value of up to 16 bits; the sum fits 32 bits.
std::uint32_t blend(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d, std::uint32_t wx, std::uint32_t wy)
{
  std::uint32_t const upper = a * (kOne - wx) + b * wx;
  std::uint32_t const lower = c * (kOne - wx) + d * wx;
  return (upper * (kOne - wy) + lower * wy + kOne * kOne / 2) / (kOne * kOne);
}

template <class T> T blendPel(T a, T b, T c, T d, std::uint32_t wx, std::uint32_t wy)
{
  if constexpr (std::is_same_v<T, ccPackedRGB16Pel> || std::is_same_v<T, ccPackedRGB32Pel>) {
    constexpr int bits[2][3] = {{5, 6, 5}, {8, 8, 8}};
    std::uint32_t const corners[4] = {a.word(), b.word(), c.word(), d.word()};
    std::uint32_t word = 0;
    int shift = 0;
    for (int const n : bits[std::is_same_v<T, ccPackedRGB32Pel>]) {
      std::uint32_t const mask = (1u << n) - 1;
      auto const channel = [&](int corner) { return corners[corner] >> shift & mask; };
      word |= blend(channel(0), channel(1), channel(2), channel(3), wx, wy) << shift;
      shift += n;
    }
    return T(static_cast<decltype(T().word())>(word));
  } else {
    return static_cast<T>(blend(a, b, c, d, wx, wy));
  }
}

// The scaled part of a run-length image that lies inside the scope, as pels.
struct ScaledRle {
  Span x, y;
  std::vector<unsigned char> pels;
};

void decodeRow(ccRLEBuffer const& image, long y, std::vector<unsigned char>& row)
{
  std::size_t at = 0;
  for (unsigned char const* run = image.row(y); run[1] != 0 && at < row.size(); run += 2) {
    std::size_t const count = std::min<std::size_t>(run[1], row.size() - at);
    std::memset(row.data() + at, run[0], count);
    at += count;
  }
  std::fill(row.begin() + static_cast<std::ptrdiff_t>(at), row.end(), static_cast<unsigned char>(0));
}

ScaledRle scaleRle(ccRLEBuffer const& image, ccPair<double> const& scale, ccPair<long> const& at, ccPair<long> const& size)
{
  ScaledRle s;
  s.x = visible(image.width(), scale.x(), at.x(), 0, size.x());
  s.y = visible(image.height(), scale.y(), at.y(), 0, size.y());
  std::size_t const width = static_cast<std::size_t>(s.x.count);
  s.pels.resize(width * static_cast<std::size_t>(s.y.count));
  if (s.pels.empty())
    return s;
  std::vector<unsigned char> row(static_cast<std::size_t>(image.width()));
  unsigned char* to = s.pels.data();
  long held = -1;
  for (long y = 0; y < s.y.count; ++y, to += width) {
    long const from = sourceOf(s.y.first + y - at.y(), scale.y(), image.height());
    if (from == held) {
      std::memcpy(to, to - width, width);
      continue;
    }
    held = from;
    decodeRow(image, from, row);
    for (long x = 0; x < s.x.count; ++x)
      to[x] = row[static_cast<std::size_t>(sourceOf(s.x.first + x - at.x(), scale.x(), image.width()))];
  }
  return s;
}

bool usable(double scale)
{
  return scale > 0 && scale <= std::numeric_limits<double>::max();
}

// A root of at least so many pels that nobody but the scope holds: the present one, or a new one.
template <class T> ccPtrHandle<ccPelRoot<T>> const& scratchRoot(ccPtrHandle<ccPelRoot<T>>& held, long width, long height)
{
  bool const fits = held && held->isConnected() && held->width() >= width && held->height() >= height;
  if (!fits || held->refCount() != 1) {
    held.clear();
    held = ccPtrHandle<ccPelRoot<T>>(new ccPelRoot<T>(width, height));
  }
  return held;
}

}  // namespace

void ccUIScope::expand(ccRLEBuffer const& image, ccPoint const& at, ccPair<double> const& scale,
                       std::vector<unsigned char> const& map, bool transparent, unsigned char key)
{
  if (image.isNull() || !usable(scale.x()) || !usable(scale.y()) || !isPlace(at))
    return;
  ScaledRle const s = scaleRle(image, scale, ccPair<long>(xCoord(at), yCoord(at)), size());
  if (s.pels.empty())
    return;
  draw(ccRLEBuffer::fromPels(s.pels.data(), s.x.count, s.y.count, s.x.count),
       ccPoint(static_cast<double>(s.x.first + offset_.x()), static_cast<double>(s.y.first + offset_.y())), map,
       transparent, key);
}

void ccUIScope::sample(ccRLEBuffer const& image, ccPoint const& at, ccPair<double> const& scale,
                       std::vector<unsigned char> const& map, bool transparent, unsigned char key)
{
  // One rule serves both directions; only the buffers of pels tell them apart.
  ccUIScope::expand(image, at, scale, map, transparent, key);
}

template <class T>
void ccUIScope::pelScale(ccPelBuffer_const<T> const& image, ccPelBuffer<T>& out, double scale, ccUIRect& clip,
                         ccPair<long> const& offset, InterpolationModes mode)
{
  ccPelBuffer_const<T> const source(image);  // out may be the same object
  out.setUnbound();
  if (!source.isBound() || !usable(scale))
    return;
  Span const xs = visible(source.width(), scale, offset.x(), clip.left(), clip.right());
  Span const ys = visible(source.height(), scale, offset.y(), clip.top(), clip.bottom());
  // No pel root holds 2^31 bytes; a clip that asks for more is none that can be drawn on.
  if (xs.count == 0 || ys.count == 0 ||
      static_cast<double>(xs.count + 8) * static_cast<double>(ys.count) * sizeof(T) >= 2147483648.0)
    return;

  if (!scratch_)
    scratch_ = std::make_unique<cs_Scratch>();
  cs_Scratch& scratch = *scratch_;
  bool const bilinear = mode == cc_TabletEnums::interpolateLinear && scale > 1;
  std::int64_t const firstX = xs.first - offset.x();
  if (scratch.scale != scale || scratch.first != firstX || scratch.count != xs.count ||
      scratch.sourceWidth != source.width() || scratch.bilinear != bilinear) {
    scratch.count = 0;  // memory may fail, and then nothing here is of use
    scratch.columns.resize(static_cast<std::size_t>(xs.count));
    scratch.weights.resize(bilinear ? static_cast<std::size_t>(xs.count) : 0);
    scratch.scale = scale;
    scratch.first = firstX;
    scratch.count = xs.count;
    scratch.sourceWidth = source.width();
    scratch.bilinear = bilinear;
    for (long x = 0; x < xs.count; ++x) {
      std::size_t const i = static_cast<std::size_t>(x);
      if (bilinear) {
        Between const b = betweenOf(firstX + x, scale, source.width());
        scratch.columns[i] = static_cast<std::int32_t>(b.left);
        scratch.weights[i] = b.weight;
      } else {
        scratch.columns[i] = static_cast<std::int32_t>(sourceOf(firstX + x, scale, source.width()));
      }
    }
  }

  using Handle = ccPtrHandle<ccPelRoot<T>>;
  ccPelBuffer<T> target(scratchRoot(std::get<Handle>(scratch.roots), xs.count, ys.count));
  target.window(0, 0, xs.count, ys.count);
  target.offset(ccPair<long>(static_cast<long>(xs.first), static_cast<long>(ys.first)));
  target.mutating();

  long const stride = target.rowStride();
  std::size_t const rowBytes = static_cast<std::size_t>(xs.count) * sizeof(T);
  T const* const base = source.pointToOffset();
  T* to = target.pointToOffset();
  std::int32_t const* const columns = scratch.columns.data();

  if (bilinear) {
    std::uint32_t const* const weights = scratch.weights.data();
    long const right = source.width() > 1 ? 1 : 0;
    long const below = source.height() > 1 ? source.rowStride() : 0;
    for (long y = 0; y < ys.count; ++y, to += stride) {
      Between const b = betweenOf(ys.first - offset.y() + y, scale, source.height());
      T const* const upper = base + b.left * source.rowStride();
      T const* const lower = upper + below;
      for (long x = 0; x < xs.count; ++x) {
        std::int32_t const c = columns[x];
        to[x] = blendPel<T>(upper[c], upper[c + right], lower[c], lower[c + right], weights[x], b.weight);
      }
    }
  } else {
    long held = -1;
    for (long y = 0; y < ys.count; ++y, to += stride) {
      long const from = sourceOf(ys.first - offset.y() + y, scale, source.height());
      if (from == held) {
        std::memcpy(to, to - stride, rowBytes);
        continue;
      }
      held = from;
      T const* const row = base + from * source.rowStride();
      if (scale == 1)
        std::memcpy(to, row + columns[0], rowBytes);
      else
        for (long x = 0; x < xs.count; ++x)
          to[x] = row[columns[x]];
    }
  }
  out = target;
}

template void ccUIScope::pelScale(ccPelBuffer_const<unsigned char> const&, ccPelBuffer<unsigned char>&, double, ccUIRect&,
                                  ccPair<long> const&, InterpolationModes);
template void ccUIScope::pelScale(ccPelBuffer_const<unsigned short> const&, ccPelBuffer<unsigned short>&, double,
                                  ccUIRect&, ccPair<long> const&, InterpolationModes);
template void ccUIScope::pelScale(ccPelBuffer_const<ccPackedRGB16Pel> const&, ccPelBuffer<ccPackedRGB16Pel>&, double,
                                  ccUIRect&, ccPair<long> const&, InterpolationModes);
template void ccUIScope::pelScale(ccPelBuffer_const<ccPackedRGB32Pel> const&, ccPelBuffer<ccPackedRGB32Pel>&, double,
                                  ccUIRect&, ccPair<long> const&, InterpolationModes);
