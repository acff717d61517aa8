// One acquired image, held by a ccPtrHandle. It is immutable once complete; conversions are made once, under an inner lock,
// and may be asked for on any thread.
#pragma once

#include "foundation/leaf_mutex.h"
#include "foundation/pel_buffer.h"

class ccAcqImage : public ccRepBase {
public:
  // An unbound image: a failed acquisition.
  explicit ccAcqImage(ceImageFormat format, long tag = 0, unsigned long frame = 0);
  explicit ccAcqImage(ccPelBuffer<unsigned char> const&, long tag = 0, unsigned long frame = 0);
  // Grey of so many intensity bits, 9 to 16; others count as 16.
  explicit ccAcqImage(ccPelBuffer<unsigned short> const&, long intensityBits = 16, long tag = 0, unsigned long frame = 0);
  explicit ccAcqImage(ccPelBuffer<ccPackedRGB16Pel> const&, long tag = 0, unsigned long frame = 0);
  explicit ccAcqImage(ccPelBuffer<ccPackedRGB32Pel> const&, long tag = 0, unsigned long frame = 0);

  bool isBound() const;
  ceImageFormat format() const { return format_; }
  bool isColor() const { return format_ == ceImageFormatRGB16 || format_ == ceImageFormatRGB32; }
  long intensityBits() const { return bits_; }
  long tag() const { return tag_; }
  unsigned long frameNumber() const { return frame_; }

  // Grey 8 from all formats, grey 16 from grey 16, either colour format from colour; an unbound image converts to nothing.
  bool canConvert(ceImageFormat) const;
  // A new view of the pels with offset (0,0) and the identity as transform; unbound where the conversion is impossible.
  ccPelBuffer<unsigned char> getGrey8PelBuffer();
  ccPelBuffer<unsigned short> getGrey16PelBuffer();
  ccPelBuffer<ccPackedRGB16Pel> getPackedRGB16PelBuffer();
  ccPelBuffer<ccPackedRGB32Pel> getPackedRGB32PelBuffer();

private:
  ceImageFormat format_;
  long bits_ = 8;
  long tag_;
  unsigned long frame_;
  cc_LeafMutex<cc_LockRank::conversions> conversions_;
  // The acquired pels stand in the member of the image's own format; the others are filled on demand.
  ccPelBuffer<unsigned char> grey8_;
  ccPelBuffer<unsigned short> grey16_;
  ccPelBuffer<ccPackedRGB16Pel> rgb16_;
  ccPelBuffer<ccPackedRGB32Pel> rgb32_;
};
