// The storm's own script: whatever the bytes do, the glass stays that of a full repaint.
#include "tests/fuzz/fuzz.h"
#include "tests/storm/storm.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
  std::string failure;
  if (!cfRunStorm(std::span<std::uint8_t const>(data, size), &failure))
    cf_fuzzExpect(false, failure.c_str());
  return 0;
}
