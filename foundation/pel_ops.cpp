#include "foundation/pel_ops.h"

#include "foundation/pel_error.h"

#include <cstring>

namespace {

template <class T> ccPtrHandle<ccPelRoot<T>> cf_poolRoot(ccPelRootPool* pool, long width, long height)
{
  auto const bytes = static_cast<unsigned long long>(width) * static_cast<unsigned long long>(height) * sizeof(T);
  if (!pool || !pool->size(bytes))
    return nullptr;
  ccPtrHandle<cc_PelRoot> const made(pool->newPelRoot(width, height, typeid(T)));
  auto* const root = dynamic_cast<ccPelRoot<T>*>(made.get());
  bool const fits = root && root->isConnected() && root->width() >= width && root->height() >= height;
  return fits ? root : nullptr;
}

template <class T> auto cf_order(T v)
{
  if constexpr (requires { v.word(); })
    return v.word();
  else
    return v;
}

}  // namespace

template <class T> ccPelBuffer<T> cfPelCopy(ccPelBuffer_const<T> const& source, ccPelRootPool* pool)
{
  if (!source.isBound())
    return ccPelBuffer<T>();
  ccPtrHandle<ccPelRoot<T>> const root = cf_poolRoot<T>(pool, source.width(), source.height());
  ccPelBuffer<T> copy = root ? ccPelBuffer<T>(root) : ccPelBuffer<T>(source.width(), source.height());
  copy.window(0, 0, source.width(), source.height());
  cfPelCopy(source, copy);
  copy.offset(source.offset());
  copy.clientFromImageXformBase(source.clientFromImageXformBase());
  return copy;
}

template <class T> void cfPelCopy(ccPelBuffer_const<T> const& source, ccPelBuffer<T> const& target)
{
  cfPelMove(source, target);
}

template <class T> void cfPelMove(ccPelBuffer_const<T> const& source, ccPelBuffer<T> const& target)
{
  long const width = std::min(source.width(), target.width());
  long const height = std::min(source.height(), target.height());
  if (width <= 0 || height <= 0)
    return;
  target.mutating();
  T const* from = source.pointToOffset();
  T* to = target.pointToOffset();
  long fromStride = source.rowStride();
  long toStride = target.rowStride();
  // Within one root a target further down is written from the last row up, so that no row is lost before it is read.
  if ((toStride < 0) != std::less<T const*>()(from, to)) {
    from += fromStride * (height - 1);
    to += toStride * (height - 1);
    fromStride = -fromStride;
    toStride = -toStride;
  }
  for (long y = 0; y < height; ++y)
    std::memmove(to + y * toStride, from + y * fromStride, static_cast<std::size_t>(width) * sizeof(T));
}

void cfPelMap(ccPelBuffer_const<unsigned char> const& source, std::vector<unsigned char> const& table,
              ccPelBuffer<unsigned char> const& target)
{
  if (table.size() < 256)
    throw ccPelError::BadTable("a pel map needs 256 entries");
  long const width = std::min(source.width(), target.width());
  long const height = std::min(source.height(), target.height());
  if (width <= 0 || height <= 0)
    return;
  target.mutating();
  unsigned char const* const map = table.data();
  for (long y = 0; y < height; ++y) {
    unsigned char const* const from = source.pointToOffset() + y * source.rowStride();
    unsigned char* const to = target.pointToOffset() + y * target.rowStride();
    for (long x = 0; x < width; ++x)
      to[x] = map[from[x]];
  }
}

template <class T> void cfPelMinmax(ccPelBuffer_const<T> const& source, T& lowest, T& highest)
{
  if (!source.isBound()) {
    lowest = highest = T();
    return;
  }
  auto low = cf_order(*source.pointToOffset());
  auto high = low;
  for (long y = 0; y < source.height(); ++y) {
    T const* const row = source.pointToOffset() + y * source.rowStride();
    for (long x = 0; x < source.width(); ++x) {
      auto const v = cf_order(row[x]);
      low = std::min(low, v);
      high = std::max(high, v);
    }
  }
  lowest = T(low);
  highest = T(high);
}

void cf_PelCopyVid(void* target, long targetPitch, void const* source, long sourcePitch, long widthBytes, long height)
{
  if (!target || !source || widthBytes <= 0 || height <= 0)
    return;
  auto* to = static_cast<unsigned char*>(target);
  auto const* from = static_cast<unsigned char const*>(source);
  auto const width = static_cast<std::size_t>(widthBytes);
  if (targetPitch == widthBytes && sourcePitch == widthBytes) {
    std::memcpy(to, from, width * static_cast<std::size_t>(height));
    return;
  }
  for (long y = 0; y < height; ++y)
    std::memcpy(to + static_cast<std::ptrdiff_t>(targetPitch) * y, from + static_cast<std::ptrdiff_t>(sourcePitch) * y,
                width);
}

#define KRS_PEL_OPS(T)                                                                                                 \
  template ccPelBuffer<T> cfPelCopy(ccPelBuffer_const<T> const&, ccPelRootPool*);                                      \
  template void cfPelCopy(ccPelBuffer_const<T> const&, ccPelBuffer<T> const&);                                         \
  template void cfPelMove(ccPelBuffer_const<T> const&, ccPelBuffer<T> const&);                                         \
  template void cfPelMinmax(ccPelBuffer_const<T> const&, T&, T&);

KRS_PEL_OPS(unsigned char)
KRS_PEL_OPS(unsigned short)
KRS_PEL_OPS(ccPackedRGB16Pel)
KRS_PEL_OPS(ccPackedRGB32Pel)
