// A run-length image of 8-bit values, shared and immutable. A row is pairs (value, count); a count of 0 ends it.
#pragma once

#include "foundation/pair.h"

#include <memory>

class ccRLEBuffer {
public:
  ccRLEBuffer() = default;  // null
  static ccRLEBuffer fromPels(unsigned char const* pels, long w, long h, long pitch);  // runs over 255 are split
  long width() const;
  long height() const;
  bool isNull() const { return !data_; }
  unsigned char const* row(long y) const;
  unsigned char getPel(ccPair<long> const&) const;  // 0 outside and past a row's end

private:
  struct cs_Data;
  std::shared_ptr<cs_Data const> data_;
};
