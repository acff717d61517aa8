// What the readers of the image formats share. Internal to apps/common.
#pragma once

#include "apps/common/image_file.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>

// Why an image could not be read, without the file's name. Decoders throw it; cfReadImageBytes catches.
struct cc_ImageFault {
  std::string text;
};

using cc_Bytes = std::span<unsigned char const>;

// A file that nobody vouches for. A reader takes no more memory than the picture that it promises and cf_workMemory. Only the
// coefficients of a JPEG in several scans come on top, and they count as part of the picture.
struct cc_ImageSource {
  cc_Bytes bytes;
  unsigned long long mostPicture = ~0ull;  // bytes of pels that it may promise

  void checkPicture(unsigned long long pictureBytes) const;  // a fault if the file may not promise so much
};

constexpr unsigned long long cf_workMemory = 16u << 20;

// Each expects bytes that its own test accepts.
bool cf_isPng(cc_Bytes);
ccImageFile cf_readPng(cc_ImageSource const&);
bool cf_isPnm(cc_Bytes);
ccImageFile cf_readPnm(cc_ImageSource const&);
bool cf_isTiff(cc_Bytes);
ccImageFile cf_readTiff(cc_ImageSource const&);
bool cf_isJpeg(cc_Bytes);
ccImageFile cf_readJpeg(cc_ImageSource const&);
bool cf_isBmp(cc_Bytes);
ccImageFile cf_readBmp(cc_ImageSource const&);

[[noreturn]] void cf_faultCutOff();
[[noreturn]] void cf_faultDamaged(std::string const& what);      // "the file is damaged: ..."
[[noreturn]] void cf_faultUnsupported(std::string const& what);  // "unsupported: ..."
void cf_checkSides(long long width, long long height);           // 1 to cfImageSideLimit, else a fault

// Compressed data that is too short for what it claims to hold is refused before memory is taken: no bytes of the format can
// grow more than `mostGrowth` times.
void cf_checkGrowth(unsigned long long bytesOut, unsigned long long bytesIn, unsigned long long mostGrowth);

ccImageFile cf_newGrey8(cc_ImageSource const&, long width, long height);
ccImageFile cf_newGrey16(cc_ImageSource const&, long width, long height, int bits);
ccImageFile cf_newRGB(cc_ImageSource const&, long width, long height);

// An image whose pels come as indices into a palette: grey if all its `count` entries are grey, else in colour. Entries from
// `count` on are black. The indices of a row are put where its pels will stand, so that no second image is needed.
class cc_PaletteImage {
public:
  using Palette = std::array<ccPackedRGB32Pel, 256>;
  cc_PaletteImage(cc_ImageSource const&, long width, long height, Palette const&, std::size_t count);

  unsigned char* indices(long y);  // of one row, one byte a pel; they are 0 at first
  ccImageFile finish();            // all rows become pels; call it once

private:
  Palette palette_;
  ccImageFile image_;
};
