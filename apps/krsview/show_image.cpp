#include "apps/krsview/show_image.h"

#include "foundation/pel_ops.h"
#include "ui/display/display.h"

namespace {

// At depth 8 pels stay in the grey ramp of the palette, 10 to 240.
bool cf_mapsPels(ccDisplay& display) { return display.displayFormat() != ccDisplay::format8; }

template <class From, class To, class Convert>
ccPelBuffer<To> cf_converted(ccPelBuffer<From> const& from, Convert convert)
{
  ccPelBuffer<To> to(from.width(), from.height());
  for (long y = 0; y < from.height(); ++y) {
    From const* const source = from.pelAddress(0, y);
    std::transform(source, source + from.width(), to.pelAddress(0, y), convert);
  }
  return to;
}

}  // namespace

void cfShowImage(ccDisplay& display, ccImageFile const& file, ccXform<2> const& clientFromImage)
{
  bool const mapPels = cf_mapsPels(display);
  auto const placed = [&clientFromImage](auto pels) {
    pels.clientFromImageXform(clientFromImage);
    return pels;
  };
  switch (file.format) {
  case ceImageFormatGrey8:
    display.image(placed(file.grey8), mapPels);
    break;
  case ceImageFormatGrey16:
    if (mapPels)
      display.image(placed(file.grey16), file.bits);
    else {
      unsigned short lowest = 0, highest = 0;
      cfPelMinmax(file.grey16, lowest, highest);
      int const run = (highest - lowest) / 256 + 1;
      display.image(placed(cf_converted<unsigned short, unsigned char>(
                        file.grey16,
                        [lowest, run](unsigned short v) { return static_cast<unsigned char>((v - lowest) / run); })),
                    mapPels);
    }
    break;
  case ceImageFormatRGB32:
    if (display.displayFormat() == ccDisplay::format32)
      display.image(placed(file.rgb));
    else if (display.displayFormat() == ccDisplay::format16)
      display.image(placed(cf_converted<ccPackedRGB32Pel, ccPackedRGB16Pel>(file.rgb, [](ccPackedRGB32Pel p) {
        return ccPackedRGB16Pel(p.red(), p.green(), p.blue());
      })));
    else
      display.image(placed(cf_converted<ccPackedRGB32Pel, unsigned char>(
                        file.rgb,
                        [](ccPackedRGB32Pel p) {
                          return static_cast<unsigned char>((p.red() + 2 * p.green() + p.blue()) >> 2);
                        })),
                    mapPels);
    break;
  default:
    break;
  }
}
