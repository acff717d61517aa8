// What a scope keeps between two calls of its scaling kernel. For the source files of the scope only.
#pragma once

#include "canvas/scope.h"

#include <tuple>

struct ccUIScope::cs_Scratch {
  // The column index of the last call: for each column of out the source column, and for bilinear its weight.
  double scale = 0;
  std::int64_t first = 0;  // the first column, counted from the image's left edge
  long count = 0;
  long sourceWidth = 0;
  bool bilinear = false;
  std::vector<std::int32_t> columns;
  std::vector<std::uint32_t> weights;

  std::tuple<ccPtrHandle<ccPelRoot<unsigned char>>, ccPtrHandle<ccPelRoot<unsigned short>>,
             ccPtrHandle<ccPelRoot<ccPackedRGB16Pel>>, ccPtrHandle<ccPelRoot<ccPackedRGB32Pel>>>
      roots;
};
