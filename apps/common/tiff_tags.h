// The tags of a TIFF file's first image, without those that its picture can do without. Internal to apps/common.
#pragma once

#include "apps/common/image_decoders.h"

#include <cstdint>
#include <vector>

class cc_TiffTags {
public:
  explicit cc_TiffTags(cc_Bytes);  // anything wrong in the bytes is left to the library

  bool hidesAny() const { return !directory_.empty(); }  // false while unneeded values are few
  // Puts the shorter list of tags in place of the file's own, where `count` bytes from `at` on overlap it.
  void overlay(unsigned long long at, unsigned char* bytes, std::size_t count) const;

private:
  std::uint64_t number_(std::size_t at, std::size_t size) const;
  void append_(std::uint64_t value, std::size_t size);

  cc_Bytes bytes_;
  bool bigEndian_ = false;
  std::size_t place_ = 0;  // of the directory
  std::vector<unsigned char> directory_;
};
