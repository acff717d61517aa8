// Pictures written as PNG files. A picture is written to a new file beside its target, which then takes the target's name: at
// the target stands what stood there before or the whole picture, never a part. A target that is a symbolic link, a folder, a
// device or write-protected is refused.
#pragma once

#include "foundation/pel_buffer.h"

#include <cstdint>
#include <filesystem>
#include <string>

// All return one line of error text, empty if the picture stands. Words are 0x00RRGGBB, row by row without gaps; the upper
// byte is ignored.
[[nodiscard]] std::string cfWritePng(std::filesystem::path const&, long width, long height, std::uint32_t const* words);
[[nodiscard]] std::string cfWritePng(std::filesystem::path const&, ccPelBuffer_const<ccPackedRGB32Pel> const&);
[[nodiscard]] std::string cfWritePng(std::filesystem::path const&, ccPelBuffer_const<unsigned char> const&);

// Grey with so many significant bits, 1 to 16. They are noted in the file; values are cut to them and scaled up to 16 bits, as
// the format wants it. cfReadImageFile gives them back unchanged.
[[nodiscard]] std::string cfWritePng(std::filesystem::path const&, ccPelBuffer_const<unsigned short> const&, int bits);
