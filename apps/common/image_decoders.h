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

// Each expects bytes that its own test accepts.
bool cf_isPng(cc_Bytes);
ccImageFile cf_readPng(cc_Bytes);
bool cf_isPnm(cc_Bytes);
ccImageFile cf_readPnm(cc_Bytes);
bool cf_isTiff(cc_Bytes);
ccImageFile cf_readTiff(cc_Bytes);
bool cf_isJpeg(cc_Bytes);
ccImageFile cf_readJpeg(cc_Bytes);
bool cf_isBmp(cc_Bytes);
ccImageFile cf_readBmp(cc_Bytes);

[[noreturn]] void cf_faultCutOff();
[[noreturn]] void cf_faultDamaged(std::string const& what);      // "the file is damaged: ..."
[[noreturn]] void cf_faultUnsupported(std::string const& what);  // "unsupported: ..."
void cf_checkSides(long long width, long long height);           // 1 to cfImageSideLimit, else a fault

// Compressed data that is too short for what it claims to hold is refused before memory is taken: no bytes of the format can
// grow more than `mostGrowth` times.
void cf_checkGrowth(unsigned long long bytesOut, unsigned long long bytesIn, unsigned long long mostGrowth);

ccImageFile cf_newGrey8(long width, long height);
ccImageFile cf_newGrey16(long width, long height, int bits);
ccImageFile cf_newRGB(long width, long height);

// Turns indices into the palette's colours, or into grey if all its `count` entries are grey. Entries from `count` on are
// black.
using cc_Palette = std::array<ccPackedRGB32Pel, 256>;
ccImageFile cf_applyPalette(ccPelBuffer<unsigned char> const& indices, cc_Palette const&, std::size_t count);
