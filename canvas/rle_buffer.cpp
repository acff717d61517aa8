#include "canvas/rle_buffer.h"

#include <cstddef>
#include <vector>

struct ccRLEBuffer::cs_Data {
  long width = 0;
  long height = 0;
  std::vector<unsigned char> bytes;
  std::vector<std::size_t> rows;  // where each row starts
};

ccRLEBuffer ccRLEBuffer::fromPels(unsigned char const* pels, long w, long h, long pitch)
{
  constexpr long kLongestRun = 255;
  ccRLEBuffer result;
  if (!pels || w <= 0 || h <= 0)
    return result;
  auto const data = std::make_shared<cs_Data>();
  data->width = w;
  data->height = h;
  data->rows.reserve(static_cast<std::size_t>(h));
  for (long y = 0; y < h; ++y) {
    unsigned char const* const row = pels + std::ptrdiff_t{y} * pitch;
    data->rows.push_back(data->bytes.size());
    for (long x = 0; x < w;) {
      long count = 1;
      while (count < w - x && count < kLongestRun && row[x + count] == row[x])
        ++count;
      data->bytes.push_back(row[x]);
      data->bytes.push_back(static_cast<unsigned char>(count));
      x += count;
    }
    data->bytes.push_back(0);
    data->bytes.push_back(0);
  }
  result.data_ = data;
  return result;
}

ccRLEBuffer ccRLEBuffer::fromRuns(std::span<unsigned char const> runs, long w, long h)
{
  ccRLEBuffer result;
  // Each row takes two bytes at least.
  if (w <= 0 || h <= 0 || static_cast<std::size_t>(h) > runs.size() / 2)
    return result;
  auto const data = std::make_shared<cs_Data>();
  data->width = w;
  data->height = h;
  std::size_t at = 0;
  for (long y = 0; y < h; ++y) {
    data->rows.push_back(at);
    long length = 0;
    for (unsigned count = 1; count != 0; at += 2) {
      if (at + 2 > runs.size())
        return result;
      count = runs[at + 1];
      length += static_cast<long>(count);
      if (length > w)
        return result;
    }
  }
  if (at != runs.size())
    return result;
  data->bytes.assign(runs.begin(), runs.end());
  result.data_ = data;
  return result;
}

long ccRLEBuffer::width() const
{
  return data_ ? data_->width : 0;
}

long ccRLEBuffer::height() const
{
  return data_ ? data_->height : 0;
}

unsigned char const* ccRLEBuffer::row(long y) const
{
  static unsigned char const empty[2] = {0, 0};
  if (y < 0 || y >= height())
    return empty;
  return data_->bytes.data() + data_->rows[static_cast<std::size_t>(y)];
}

unsigned char ccRLEBuffer::getPel(ccPair<long> const& p) const
{
  if (p.x() < 0 || p.x() >= width())
    return 0;
  long left = p.x();
  for (unsigned char const* run = row(p.y()); run[1] != 0; run += 2) {
    if (left < run[1])
      return run[0];
    left -= run[1];
  }
  return 0;
}
