// What the fuzz targets share. Each defines LLVMFuzzerTestOneInput; whatever it is given, it returns 0 and leaves nothing behind.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

inline void cf_fuzzExpect(bool holds, char const* rule)
{
  if (holds)
    return;
  std::fprintf(stderr, "This does not hold: %s\n", rule);
  std::abort();
}
