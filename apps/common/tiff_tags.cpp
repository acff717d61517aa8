#include "apps/common/tiff_tags.h"

#include <algorithm>

namespace {

constexpr std::uint64_t mostEntries = 4096;         // the library refuses more
constexpr unsigned long long fewBytes = 256 << 10;  // of unneeded values; hiding them costs copies of the strips

// Sides, samples, compression, palette, places of strips and tiles, and what the compressions need.
constexpr std::uint16_t needed[] = {254, 255, 256, 257, 258, 259, 262, 266, 273, 274, 277, 278, 279, 280, 281, 282,
                                    283, 284, 292, 293, 296, 317, 320, 322, 323, 324, 325, 338, 339, 347, 530, 531, 532};

std::uint64_t typeSize(std::uint64_t type)
{
  constexpr unsigned char sizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
  return type < std::size(sizes) ? sizes[type] : 0;
}

}  // namespace

std::uint64_t cc_TiffTags::number_(std::size_t at, std::size_t size) const
{
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < size; ++i)
    value = value << 8 | bytes_[at + (bigEndian_ ? i : size - 1 - i)];
  return value;
}

void cc_TiffTags::append_(std::uint64_t value, std::size_t size)
{
  for (std::size_t i = 0; i < size; ++i)
    directory_.push_back(static_cast<unsigned char>(value >> 8 * (bigEndian_ ? size - 1 - i : i)));
}

cc_TiffTags::cc_TiffTags(cc_Bytes bytes) : bytes_(bytes)
{
  if (bytes.size() < 16)
    return;
  bigEndian_ = bytes[0] == 'M';
  bool const big = number_(2, 2) == 43;  // with 64-bit offsets
  std::size_t const countSize = big ? 8 : 2, entrySize = big ? 20 : 12, wordSize = big ? 8 : 4;
  std::uint64_t const place = big ? number_(8, 8) : number_(4, 4);
  if (place > bytes.size() || bytes.size() - place < countSize)
    return;
  place_ = static_cast<std::size_t>(place);
  std::uint64_t const entries = number_(place_, countSize);
  if (entries > mostEntries || bytes.size() - place_ - countSize < entries * entrySize)
    return;

  std::size_t const first = place_ + countSize;
  std::vector<std::size_t> kept;
  unsigned long long unneeded = 0;
  for (std::size_t at = first; at < first + entries * entrySize; at += entrySize) {
    std::uint64_t const size = typeSize(number_(at + 2, 2)), count = number_(at + 4, wordSize);
    if (std::find(std::begin(needed), std::end(needed), number_(at, 2)) != std::end(needed))
      kept.push_back(at);
    else if (size && count > wordSize / size)
      unneeded += std::min<unsigned long long>(count, bytes.size()) * size;
  }
  if (unneeded <= fewBytes)
    return;
  append_(kept.size(), countSize);
  for (std::size_t at : kept)
    directory_.insert(directory_.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at),
                      bytes.begin() + static_cast<std::ptrdiff_t>(at + entrySize));
  append_(0, wordSize);  // no next image
}

void cc_TiffTags::overlay(unsigned long long at, unsigned char* bytes, std::size_t count) const
{
  unsigned long long const from = std::max<unsigned long long>(at, place_);
  unsigned long long const to = std::min<unsigned long long>(at + count, place_ + directory_.size());
  for (unsigned long long i = from; i < to; ++i)
    bytes[i - at] = directory_[i - place_];
}
