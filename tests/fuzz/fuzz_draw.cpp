// Draw files: read, and if they are good, drawn over an image.
#include "platform/testing.h"
#include "tests/fuzz/fuzz.h"
#include "tests/fuzz/fuzz_view.h"

#include <algorithm>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
  std::string_view const text(reinterpret_cast<char const*>(data), size);
  ccDrawing const drawing = cfReadDrawing(text, "fuzz");
  auto const isObeyed = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
  cf_fuzzExpect(std::none_of(drawing.error.begin(), drawing.error.end(), isObeyed), "an error is one line");
  cf_fuzzExpect(drawing.error.size() < 4000, "an error is short");
  if (!drawing)
    return 0;

  FuzzView view(size % 2 ? 32 : 8);
  view.viewer->draw({drawing});
  view.viewer->open({KRS_FUZZ_IMAGE});
  plat::testing::drain();
  view.viewer->display().mag(3);
  plat::testing::drain();
  return 0;
}
