#include "platform/portable/raster/font_data.h"

namespace plat::portable {

namespace {

constexpr u8 regular[] = {
#include "krs_font_regular.inc"  // made from assets/fonts at configure time
};
constexpr u8 bold[] = {
#include "krs_font_bold.inc"
};

}  // namespace

std::span<u8 const> builtInFont(bool isBold) { return isBold ? std::span<u8 const>(bold) : std::span<u8 const>(regular); }

}  // namespace plat::portable
