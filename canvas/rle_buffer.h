// A run-length image of 8-bit values, shared and immutable. A row is pairs (value, count); a count of 0 ends it.
#pragma once

#include "foundation/pair.h"

#include <memory>
#include <span>

class ccRLEBuffer {
public:
  ccRLEBuffer() = default;  // null
  static ccRLEBuffer fromPels(unsigned char const* pels, long w, long h, long pitch);  // runs over 255 are split
  // From the runs themselves, h rows of (value, count) pairs, each row ended by a count of 0. A row may end before w pels;
  // drawn as it is, the rest stays unpainted. Null when bytes are missing or left over, or a row is longer than w.
  static ccRLEBuffer fromRuns(std::span<unsigned char const>, long w, long h);
  long width() const;
  long height() const;
  bool isNull() const { return !data_; }
  unsigned char const* row(long y) const;
  unsigned char getPel(ccPair<long> const&) const;  // 0 outside and past a row's end

private:
  struct cs_Data;
  std::shared_ptr<cs_Data const> data_;
};
