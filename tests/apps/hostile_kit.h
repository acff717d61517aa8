// Files that ask for more than they are, made byte by byte.
#pragma once

#include "tests/apps/file_kit.h"

#include <cstdint>
#include <string>
#include <vector>

Bytes big32(std::uint32_t);
Bytes little16(unsigned);
Bytes little32(std::uint32_t);
Bytes deflated(Bytes const&, int level = 9);
Bytes deflatedZeros(std::size_t count);

// PNG: signature and header, one chunk with its checksum, a whole file out of a header, extra chunks and compressed rows.
Bytes pngStart(std::uint32_t width, std::uint32_t height, int depth, int colourType, bool interlaced = false);
Bytes pngChunk(std::string const& name, Bytes const& data);
Bytes pngFile(Bytes const& start, Bytes const& more, Bytes const& compressed);

// BMP in run lengths of 8 bits with a palette of two colours.
Bytes runsBmp(std::uint32_t width, std::uint32_t height, Bytes const& runs);

// TIFF with classic offsets, least byte first. A value of four bytes or fewer stands in its entry, others behind the list.
struct TiffTag {
  unsigned tag = 0, type = 3;
  std::uint32_t count = 1;
  Bytes value;
};
TiffTag tiffHalf(unsigned tag, unsigned value);
TiffTag tiffWord(unsigned tag, std::uint32_t value);
// The pels stand at offset 8; the tags must be in rising order. Values that several tags share are stored once.
Bytes tiffFile(Bytes const& pels, std::vector<TiffTag> const& tags);
std::vector<TiffTag> greyTiff(std::uint32_t width, std::uint32_t height, unsigned compression, std::uint32_t stripBytes);

// JPEG of one colour, by libjpeg; the scans of a progressive one may be repeated.
Bytes flatJpeg(unsigned width, unsigned height, int channels, bool progressive);
Bytes withRepeatedScan(Bytes const& progressive, int times);
