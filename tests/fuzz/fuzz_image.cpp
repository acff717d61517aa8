// One reader of image files, named by KRS_READER as cf_readPng, with its own test of the first bytes, KRS_TEST.
#include "apps/common/image_decoders.h"
#include "tests/fuzz/fuzz.h"

namespace {

// Larger pictures only cost the search time.
constexpr unsigned long long kMostPicture = 4 << 20;

void lookAtEveryPel(ccImageFile const& image)
{
  int const bound = image.grey8.isBound() + image.grey16.isBound() + image.rgb.isBound();
  cf_fuzzExpect(image && bound == 1 && image.error.empty(), "an image has one buffer");
  for (long y = 0; y < image.height(); ++y)
    for (long x = 0; x < image.width(); ++x) {
      if (image.grey16.isBound())
        cf_fuzzExpect(image.grey16.getPel(x, y) >> image.bits == 0, "values lie below 1 << bits");
      if (image.rgb.isBound())
        cf_fuzzExpect(image.rgb.getPel(x, y).word() >> 24 == 0, "words are 0x00RRGGBB");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
  cc_ImageSource const source{cc_Bytes(data, size), kMostPicture};
  if (!KRS_TEST(source.bytes))
    return 0;
  try {
    lookAtEveryPel(KRS_READER(source));
  } catch (cc_ImageFault const& fault) {
    cf_fuzzExpect(!fault.text.empty(), "a fault has a text");
  }
  return 0;
}
