// BMP: 1, 2, 4 and 8 bits with a palette, 16, 24 and 32 bits of colour, in rows from the bottom or the top, and run lengths of
// 4 and 8 bits. Pels that run lengths skip show the first colour of the palette; runs past a row's end are cut.
#include "apps/common/image_decoders.h"

#include <algorithm>
#include <bit>

namespace {

constexpr std::size_t fileHeaderSize = 14;
constexpr std::size_t coreHeaderSize = 12;    // the oldest kind, with sides of 16 bits and a palette of 3 bytes an entry
constexpr std::size_t plainHeaderSize = 40;   // every later kind begins like it
constexpr std::size_t maskedHeaderSize = 52;  // from here on the masks are part of the header
constexpr std::size_t longestHeaderSize = 124;

enum Compression : std::uint32_t { None = 0, Runs8 = 1, Runs4 = 2, Masks = 3, AlphaMasks = 6 };

// One channel of a pel of 16 or 32 bits.
class ChannelMask {
public:
  explicit ChannelMask(std::uint32_t mask = 0) : mask_(mask)
  {
    shift_ = mask ? std::countr_zero(mask) : 0;
    white_ = mask >> shift_;
    if (white_ & (white_ + 1))
      cf_faultDamaged("a colour mask has gaps");
  }
  unsigned char of(std::uint32_t pel) const
  {
    std::uint64_t const value = (pel & mask_) >> shift_;
    return static_cast<unsigned char>(white_ ? (value * 255 + white_ / 2) / white_ : 0);
  }

private:
  std::uint32_t mask_;
  int shift_ = 0;
  std::uint32_t white_ = 0;
};

class BmpReader {
public:
  explicit BmpReader(cc_ImageSource const& source) : source_(source), bytes_(source.bytes) {}
  ccImageFile read();

private:
  std::uint32_t byteAt(std::size_t at) const;  // past the end: cut off
  std::uint32_t halfAt(std::size_t at) const { return byteAt(at) | byteAt(at + 1) << 8; }
  std::uint32_t wordAt(std::size_t at) const { return halfAt(at) | halfAt(at + 2) << 16; }

  void readHeader();
  void readPalette();
  void readMasks();
  long rowInImage(long row) const { return topDown_ ? row : height_ - 1 - row; }
  unsigned char const* row(long row) const { return bytes_.data() + data_ + static_cast<std::size_t>(row) * rowBytes_; }
  void checkRows();
  ccImageFile readIndices();
  ccImageFile readColours();
  ccImageFile readRuns();

  cc_ImageSource source_;
  cc_Bytes bytes_;
  std::size_t headerSize_ = 0;
  std::size_t data_ = 0;  // where the pels begin
  std::size_t rowBytes_ = 0;
  long width_ = 0, height_ = 0;
  bool topDown_ = false;
  std::uint32_t depth_ = 0;
  std::uint32_t compression_ = None;
  cc_PaletteImage::Palette palette_;
  std::size_t colours_ = 0;
  ChannelMask red_, green_, blue_;
};

std::uint32_t BmpReader::byteAt(std::size_t at) const
{
  if (at >= bytes_.size())
    cf_faultCutOff();
  return bytes_[at];
}

void BmpReader::readHeader()
{
  data_ = wordAt(10);
  headerSize_ = wordAt(fileHeaderSize);
  bool const core = headerSize_ == coreHeaderSize;
  if (!core && (headerSize_ < plainHeaderSize || headerSize_ > longestHeaderSize))
    cf_faultUnsupported("a BMP header of " + std::to_string(headerSize_) + " bytes");

  long long width = 0, height = 0;
  if (core) {
    width = halfAt(18);
    height = halfAt(20);
    depth_ = halfAt(24);
  } else {
    width = static_cast<std::int32_t>(wordAt(18));
    height = static_cast<std::int32_t>(wordAt(22));
    depth_ = halfAt(28);
    compression_ = wordAt(30);
  }
  topDown_ = height < 0;
  height = topDown_ ? -height : height;
  cf_checkSides(width, height);
  width_ = static_cast<long>(width);
  height_ = static_cast<long>(height);
  rowBytes_ = (static_cast<std::size_t>(width) * depth_ + 31) / 32 * 4;
  if (data_ < fileHeaderSize + headerSize_)
    cf_faultDamaged("the pels begin inside the header");
}

void BmpReader::readPalette()
{
  bool const core = headerSize_ == coreHeaderSize;
  std::size_t const entrySize = core ? 3 : 4;
  std::size_t const most = std::size_t{1} << depth_;
  std::size_t const used = core ? 0 : wordAt(46);
  std::size_t at = fileHeaderSize + headerSize_;
  colours_ = used ? std::min(used, most) : most;
  colours_ = std::min(colours_, (data_ - at) / entrySize);  // some files give fewer than they say
  if (!colours_)
    cf_faultDamaged("the palette is missing");
  for (std::size_t i = 0; i < colours_; ++i, at += entrySize)
    palette_[i] = ccPackedRGB32Pel(static_cast<unsigned char>(byteAt(at + 2)), static_cast<unsigned char>(byteAt(at + 1)),
                                   static_cast<unsigned char>(byteAt(at)));
}

void BmpReader::readMasks()
{
  if (compression_ == None) {
    bool const sixteen = depth_ == 16;
    red_ = ChannelMask(sixteen ? 0x7C00 : 0xFF0000);
    green_ = ChannelMask(sixteen ? 0x03E0 : 0x00FF00);
    blue_ = ChannelMask(sixteen ? 0x001F : 0x0000FF);
    return;
  }
  // Behind the plain header or inside a longer one: the same place.
  constexpr std::size_t masksAt = fileHeaderSize + plainHeaderSize;
  if (headerSize_ < maskedHeaderSize && data_ < fileHeaderSize + maskedHeaderSize)
    cf_faultDamaged("the colour masks are missing");
  red_ = ChannelMask(wordAt(masksAt));
  green_ = ChannelMask(wordAt(masksAt + 4));
  blue_ = ChannelMask(wordAt(masksAt + 8));
}

void BmpReader::checkRows()
{
  if (data_ > bytes_.size() || bytes_.size() - data_ < rowBytes_ * static_cast<std::size_t>(height_))
    cf_faultCutOff();
}

ccImageFile BmpReader::readIndices()
{
  checkRows();
  cc_PaletteImage image(source_, width_, height_, palette_, colours_);
  std::uint32_t const mask = (1u << depth_) - 1;
  for (long y = 0; y < height_; ++y) {
    unsigned char const* const from = row(y);
    unsigned char* const to = image.indices(rowInImage(y));
    for (std::size_t x = 0; x < static_cast<std::size_t>(width_); ++x) {
      std::size_t const bit = x * depth_;
      to[x] = static_cast<unsigned char>(from[bit / 8] >> (8 - depth_ - bit % 8) & mask);
    }
  }
  return image.finish();
}

ccImageFile BmpReader::readColours()
{
  checkRows();
  ccImageFile image = cf_newRGB(source_, width_, height_);
  for (long y = 0; y < height_; ++y) {
    unsigned char const* from = row(y);
    ccPackedRGB32Pel* const to = image.rgb.pelAddress(0, rowInImage(y));
    for (long x = 0; x < width_; ++x, from += depth_ / 8) {
      std::uint32_t pel = from[0] | std::uint32_t{from[1]} << 8;
      if (depth_ > 16)
        pel |= std::uint32_t{from[2]} << 16;
      if (depth_ > 24)
        pel |= std::uint32_t{from[3]} << 24;
      to[x] = ccPackedRGB32Pel(red_.of(pel), green_.of(pel), blue_.of(pel));
    }
  }
  return image;
}

ccImageFile BmpReader::readRuns()
{
  bool const four = compression_ == Runs4;
  if (depth_ != (four ? 4 : 8))
    cf_faultDamaged("run lengths of another depth");
  if (topDown_)
    cf_faultDamaged("run lengths with rows from the top");
  // A row without pels still takes two bytes.
  cf_checkGrowth(static_cast<unsigned long long>(height_) * 2, bytes_.size(), 1);

  cc_PaletteImage image(source_, width_, height_, palette_, colours_);
  std::size_t at = data_;
  long x = 0, y = 0;
  auto const put = [&](std::uint32_t index) {
    if (x < width_)
      image.indices(rowInImage(y))[x] = static_cast<unsigned char>(index);
    x = std::min(x + 1, width_);
  };
  while (y < height_) {
    // Files that leave out the last marks are whole all the same.
    if (y == height_ - 1 && x == width_ && at >= bytes_.size())
      break;
    std::uint32_t const count = byteAt(at), code = byteAt(at + 1);
    at += 2;
    if (count) {
      for (std::uint32_t i = 0; i < count; ++i)
        put(!four ? code : i % 2 ? code & 15 : code >> 4);
    } else if (code == 0) {
      x = 0;
      ++y;
    } else if (code == 1) {
      break;
    } else if (code == 2) {
      x = std::min(x + static_cast<long>(byteAt(at)), width_);
      y += static_cast<long>(byteAt(at + 1));
      at += 2;
    } else {
      // Pels one by one, filled up to whole pairs of bytes.
      for (std::uint32_t i = 0; i < code; ++i) {
        std::uint32_t const byte = byteAt(at + (four ? i / 2 : i));
        put(!four ? byte : i % 2 ? byte & 15 : byte >> 4);
      }
      at += ((four ? (code + 1) / 2 : code) + 1) / 2 * 2;
    }
  }
  return image.finish();
}

ccImageFile BmpReader::read()
{
  readHeader();
  bool const runs = compression_ == Runs8 || compression_ == Runs4;
  bool const masks = compression_ == Masks || compression_ == AlphaMasks;
  switch (depth_) {
  case 1:
  case 2:
  case 4:
  case 8:
    if (compression_ != None && !runs)
      break;
    readPalette();
    return runs ? readRuns() : readIndices();
  case 16:
  case 32:
    if (compression_ != None && !masks)
      break;
    readMasks();
    return readColours();
  case 24:
    if (compression_ != None)
      break;
    readMasks();
    return readColours();
  default: cf_faultUnsupported("a BMP of " + std::to_string(depth_) + " bits a pel");
  }
  cf_faultUnsupported("a BMP with compression " + std::to_string(compression_) + " at " + std::to_string(depth_) +
                      " bits a pel");
}

}  // namespace

bool cf_isBmp(cc_Bytes bytes)
{
  return bytes.size() >= 2 && bytes[0] == 'B' && bytes[1] == 'M';
}

ccImageFile cf_readBmp(cc_ImageSource const& source)
{
  return BmpReader(source).read();
}
