// An icon with its colours: palette indices by value, and the value that is see-through, if any.
#pragma once

#include "canvas/rle_buffer.h"

#include <vector>

class ccUIBitmap {
public:
  ccUIBitmap() = default;
  ccUIBitmap(ccRLEBuffer const& image, std::vector<unsigned char> const& map, bool transparent, unsigned char key)
      : image_(image), map_(map), transparent_(transparent), key_(key)
  {
  }
  ccRLEBuffer const& rleBuffer() const { return image_; }
  std::vector<unsigned char> const& colorMap() const { return map_; }
  bool isTransparent() const { return transparent_; }
  unsigned char transparentIndex() const { return key_; }

private:
  ccRLEBuffer image_;
  std::vector<unsigned char> map_;
  bool transparent_ = false;
  unsigned char key_ = 0;
};
