// Image files: PNG, PGM and PPM, TIFF, JPEG and BMP, read into pel buffers. The format is told by the file's content, never
// by its name. Any thread. Files are not trusted: whatever the bytes are, the answer is an image or one line of text.
#pragma once

#include "foundation/pel_buffer.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

// One image, or why there is none. `format` says which of the three buffers is bound: ceImageFormatGrey8, Grey16, RGB32, or
// None with `error` set.
//
// Grey stays grey: 1, 2 and 4 bits are widened to 0..255, 8 bits and more are kept as they are. Colour becomes 8 bits a
// channel. Palettes become colour, or grey if all their entries are grey. Alpha and transparency are dropped: every pel shows
// the colour that is stored for it. Colour profiles, gamma and orientation marks are ignored.
struct ccImageFile {
  ceImageFormat format = ceImageFormatNone;
  ccPelBuffer<unsigned char> grey8;
  ccPelBuffer<unsigned short> grey16;
  ccPelBuffer<ccPackedRGB32Pel> rgb;

  // Significant bits of a channel: all grey values lie below 1 << bits. Always 8 for grey8 and rgb. For grey16 it is 16
  // unless the file says less: the maxval of a PGM file, the bits per sample of a TIFF file, the sBIT chunk of a PNG file. A
  // PNG file holds its values scaled up to 16 bits; they are shifted down, so that 12 significant bits are 0 to 4095.
  int bits = 8;

  std::string error;  // one line that begins with the file's name; empty with an image

  explicit operator bool() const { return format != ceImageFormatNone; }
  long width() const;
  long height() const;
};

// The longest side of an image that is read, in pels.
constexpr long cfImageSideLimit = 16384;

// A few bytes can promise a picture of a gigabyte. Without trust a file may promise cfImageBytesFree bytes of pels, or
// cfImageBytesGrowth for each of its own, whichever is more.
enum class ccImageTrust { bounded, large };
constexpr unsigned long long cfImageBytesFree = 256u << 20;
constexpr unsigned long long cfImageBytesGrowth = 64;

ccImageFile cfReadImageFile(std::filesystem::path const&, ccImageTrust = ccImageTrust::bounded);

// The same from the bytes of a file; `name` is what the error text calls it.
ccImageFile cfReadImageBytes(unsigned char const* bytes, std::size_t count, std::string const& name,
                             ccImageTrust = ccImageTrust::bounded);

// The image files of one folder by their extensions (.png .pgm .ppm .pnm .tif .tiff .jpg .jpeg .bmp, in any case), sorted by
// the bytes of their names. Subfolders are not entered. The files are not opened.
struct ccImageFolder {
  std::vector<std::filesystem::path> files;  // with the folder's path in front
  std::string error;                         // the folder could not be read
};

ccImageFolder cfListImageFiles(std::filesystem::path const& folder);
