#include "foundation/archive.h"
#include "foundation/pel_buffer.h"

#include <bit>

namespace {

void cf_checkSize(std::int32_t width, std::int32_t height, std::size_t pelBytes)
{
  if (width < 1 || height < 1)
    throw ccArchive::BadValue("size of a pel buffer");
  auto const w = static_cast<std::uint32_t>(width);
  auto const h = static_cast<std::uint32_t>(height);
  if (w > ccArchive::maxPelSide || h > ccArchive::maxPelSide ||
      static_cast<std::uint64_t>(w) * h * pelBytes > ccArchive::maxPelBytes)
    throw ccArchive::TooLarge("pel buffer");
}

// The lower right corner of the window must be a 32-bit coordinate too.
void cf_checkOffset(std::int32_t offset, std::int32_t size)
{
  if (offset > 0x7FFFFFFF - size)
    throw ccArchive::BadValue("offset of a pel buffer");
}

void cf_row(ccArchive& ar, unsigned char* row, long n) { ar.bytes(row, static_cast<std::size_t>(n)); }

template <class T> void cf_row(ccArchive& ar, T* row, long n)
{
  if constexpr (std::endian::native == std::endian::little) {
    ar.bytes(row, static_cast<std::size_t>(n) * sizeof(T));
  } else {
    for (long x = 0; x < n; ++x) {
      using Word = std::conditional_t<sizeof(T) == 2, std::uint16_t, std::uint32_t>;
      auto word = std::bit_cast<Word>(row[x]);
      ar || word;
      if (ar.isLoading())
        row[x] = std::bit_cast<T>(word);
    }
  }
}

void cf_version(ccArchive& ar)
{
  std::uint32_t version = 0;
  ar || version;
  if (version != 0)
    throw ccArchive::UnknownVersion("ccPelBuffer");
}

template <class T> void cf_store(ccArchive& ar, ccPelBuffer_const<T> const& buffer)
{
  cf_version(ar);
  bool bound = buffer.isBound();
  ar || bound;
  if (!bound)
    return;
  ccPair<long> size = buffer.size();
  ccPair<long> offset = buffer.offset();
  if (size.x() > 0x7FFFFFFF || size.y() > 0x7FFFFFFF)
    throw ccArchive::TooLarge("pel buffer");
  cf_checkSize(static_cast<std::int32_t>(size.x()), static_cast<std::int32_t>(size.y()), sizeof(T));
  if (offset.x() > 0x7FFFFFFF - size.x() || offset.y() > 0x7FFFFFFF - size.y())
    throw ccArchive::BadValue("offset of a pel buffer");
  ar || size || offset;
  // Storing reads only; the operators take what they move as non-const.
  auto* row = const_cast<T*>(buffer.pointToOffset());
  for (long y = 0; y < size.y(); ++y)
    cf_row(ar, row + y * buffer.rowStride(), size.x());
}

template <class T> ccPelBuffer<T> cf_load(ccArchive& ar)
{
  cf_version(ar);
  bool bound = false;
  ar || bound;
  if (!bound)
    return ccPelBuffer<T>();
  std::int32_t width = 0, height = 0, x = 0, y = 0;
  ar || width || height || x || y;
  cf_checkSize(width, height, sizeof(T));
  cf_checkOffset(x, width);
  cf_checkOffset(y, height);
  ar.expect(static_cast<unsigned long long>(width) * static_cast<unsigned long long>(height) * sizeof(T));
  ccPelBuffer<T> read(width, height);
  for (long row = 0; row < height; ++row)
    cf_row(ar, read.pelAddress(0, row), width);
  read.offset(ccPair<long>(x, y));
  return read;
}

}  // namespace

template <class T> ccArchive& operator||(ccArchive& ar, ccPelBuffer<T>& buffer)
{
  if (ar.isStoring())
    cf_store<T>(ar, buffer);
  else
    buffer = cf_load<T>(ar);
  return ar;
}

template <class T> ccArchive& operator||(ccArchive& ar, ccPelBuffer_const<T>& buffer)
{
  if (ar.isStoring())
    cf_store<T>(ar, buffer);
  else
    buffer = cf_load<T>(ar);
  return ar;
}

#define KRS_PEL_ARCHIVE(T)                                                                                             \
  template ccArchive& operator||(ccArchive&, ccPelBuffer<T>&);                                                         \
  template ccArchive& operator||(ccArchive&, ccPelBuffer_const<T>&);

KRS_PEL_ARCHIVE(unsigned char)
KRS_PEL_ARCHIVE(unsigned short)
KRS_PEL_ARCHIVE(ccPackedRGB16Pel)
KRS_PEL_ARCHIVE(ccPackedRGB32Pel)
