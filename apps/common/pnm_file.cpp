// PGM and PPM, plain and raw. Samples above maxval are cut to it.
#include "apps/common/image_decoders.h"

#include <algorithm>
#include <bit>

namespace {

bool isSpace(unsigned char c)
{
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(unsigned char c)
{
  return c >= '0' && c <= '9';
}

class PnmReader {
public:
  explicit PnmReader(cc_ImageSource const& source) : source_(source), bytes_(source.bytes) {}
  ccImageFile read();

private:
  std::size_t left() const { return bytes_.size() - at_; }
  void skipSpace();
  std::uint32_t number();  // cut to mostNumber
  std::uint32_t sample();
  unsigned char sample8() { return narrow_[sample()]; }

  static constexpr std::uint32_t mostNumber = 100'000'000;  // beyond every limit, and tenfold still a word

  cc_ImageSource source_;
  cc_Bytes bytes_;
  std::size_t at_ = 2;  // behind the magic
  bool plain_ = false;
  std::uint32_t maxval_ = 0;
  std::vector<unsigned char> narrow_;  // a sample scaled to 0..255
};

// A comment runs from # to the end of its line.
void PnmReader::skipSpace()
{
  while (left()) {
    if (bytes_[at_] == '#')
      while (left() && bytes_[at_] != '\n' && bytes_[at_] != '\r')
        ++at_;
    else if (isSpace(bytes_[at_]))
      ++at_;
    else
      return;
  }
}

std::uint32_t PnmReader::number()
{
  skipSpace();
  if (!left())
    cf_faultCutOff();
  if (!isDigit(bytes_[at_]))
    cf_faultDamaged("a number is expected");
  std::uint32_t value = 0;
  for (; left() && isDigit(bytes_[at_]); ++at_)
    value = std::min(value * 10 + static_cast<std::uint32_t>(bytes_[at_] - '0'), mostNumber);
  if (left() && !isSpace(bytes_[at_]) && bytes_[at_] != '#')
    cf_faultDamaged("a number is expected");
  return value;
}

std::uint32_t PnmReader::sample()
{
  if (plain_)
    return std::min(number(), maxval_);
  std::uint32_t value = bytes_[at_++];
  if (maxval_ > 255)
    value = value << 8 | bytes_[at_++];
  return std::min(value, maxval_);
}

ccImageFile PnmReader::read()
{
  unsigned char const kind = bytes_[1];
  bool const colour = kind == '3' || kind == '6';
  plain_ = kind == '2' || kind == '3';
  std::uint32_t const width = number();
  std::uint32_t const height = number();
  maxval_ = number();
  cf_checkSides(width, height);
  if (maxval_ < 1 || maxval_ > 65535)
    cf_faultDamaged("its maxval is not in 1..65535");

  // One byte of white space ends the header of the raw kinds. The last plain sample needs none behind it.
  std::size_t const samples = std::size_t{width} * height * (colour ? 3 : 1);
  std::size_t const needed = plain_ ? samples * 2 : samples * (maxval_ > 255 ? 2 : 1) + 1;
  if (left() < needed)
    cf_faultCutOff();
  if (!plain_)
    ++at_;

  long const w = static_cast<long>(width), h = static_cast<long>(height);
  if (!colour && maxval_ > 255) {
    ccImageFile image = cf_newGrey16(source_, w, h, static_cast<int>(std::bit_width(maxval_)));
    for (long y = 0; y < h; ++y)
      for (unsigned short *to = image.grey16.pelAddress(0, y), *end = to + w; to != end; ++to)
        *to = static_cast<unsigned short>(sample());
    return image;
  }

  narrow_.resize(maxval_ + 1);
  for (std::uint32_t v = 0; v <= maxval_; ++v)
    narrow_[v] = static_cast<unsigned char>((v * 255 + maxval_ / 2) / maxval_);
  ccImageFile image = colour ? cf_newRGB(source_, w, h) : cf_newGrey8(source_, w, h);
  for (long y = 0; y < h && !colour; ++y)
    for (unsigned char *to = image.grey8.pelAddress(0, y), *end = to + w; to != end; ++to)
      *to = sample8();
  for (long y = 0; y < h && colour; ++y)
    for (ccPackedRGB32Pel *to = image.rgb.pelAddress(0, y), *end = to + w; to != end; ++to) {
      unsigned char const red = sample8(), green = sample8(), blue = sample8();
      *to = ccPackedRGB32Pel(red, green, blue);
    }
  return image;
}

}  // namespace

bool cf_isPnm(cc_Bytes bytes)
{
  return bytes.size() >= 3 && bytes[0] == 'P' && bytes[1] >= '1' && bytes[1] <= '7' &&
         (isSpace(bytes[2]) || bytes[2] == '#');
}

ccImageFile cf_readPnm(cc_ImageSource const& source)
{
  switch (source.bytes[1]) {
  case '1':
  case '4': cf_faultUnsupported("a PBM bitmap");
  case '7': cf_faultUnsupported("a PAM image");
  default: return PnmReader(source).read();
  }
}
