// TIFF by libtiff: the first image of a file. Only compressions that every libtiff knows and whose growth is bounded are read,
// so that a short file cannot ask for much memory. The library works on the bytes where they lie, and sees the tags that make
// the picture only: it would keep the values of all others, each as large as the file if that says so.
#include "apps/common/image_decoders.h"
#include "apps/common/tiff_tags.h"

#include <tiffio.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <optional>

namespace {

constexpr unsigned long long mostGrowth = 1500;     // LZW and deflate stay below
constexpr unsigned long long mostTile = 8 << 20;    // bytes of one tile
constexpr unsigned long long mostTileWork = 4;      // all tiles may unpack to so many times the picture, and mostTile
constexpr unsigned long long mostJpegStrip = 4 << 20;  // pels and channels; the library may keep 16 bits of each
constexpr std::uint32_t longestTileSide = 1 << 20;  // in pels

struct Source {
  cc_Bytes bytes;
  toff_t at = 0;
  cc_TiffTags tags;
};

tmsize_t readProc(thandle_t handle, void* to, tmsize_t count)
{
  Source& source = *static_cast<Source*>(handle);
  if (count < 0 || source.at >= source.bytes.size())
    return 0;
  std::size_t const got = std::min(static_cast<std::size_t>(count), source.bytes.size() - source.at);
  std::memcpy(to, source.bytes.data() + source.at, got);
  source.tags.overlay(source.at, static_cast<unsigned char*>(to), got);
  source.at += got;
  return static_cast<tmsize_t>(got);
}

tmsize_t writeProc(thandle_t, void*, tmsize_t)
{
  return 0;
}

toff_t seekProc(thandle_t handle, toff_t offset, int whence)
{
  Source& source = *static_cast<Source*>(handle);
  toff_t const base = whence == SEEK_CUR ? source.at : whence == SEEK_END ? source.bytes.size() : 0;
  return source.at = base + offset;
}

int closeProc(thandle_t)
{
  return 0;
}

// The library promises not to write into what is mapped for reading.
int mapProc(thandle_t handle, void** base, toff_t* size)
{
  Source& source = *static_cast<Source*>(handle);
  *base = const_cast<unsigned char*>(source.bytes.data());
  *size = source.bytes.size();
  return 1;
}

void unmapProc(thandle_t, void*, toff_t) {}

toff_t sizeProc(thandle_t handle)
{
  return static_cast<Source*>(handle)->bytes.size();
}

// The library prints what it finds. Its handlers are one set for the process.
void silence()
{
  static std::once_flag once;
  std::call_once(once, [] {
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
  });
}

struct CloseTiff {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};

class TiffReader {
public:
  explicit TiffReader(cc_ImageSource const& file) : file_(file), source_{file.bytes, 0, cc_TiffTags(file.bytes)} {}
  ccImageFile read();

private:
  void readTags();
  void checkCompression();
  void readPalette();
  void makeImage();
  void readScanlines();
  void readTiles();
  void checkJpeg(unsigned long long pels) const;
  std::uint32_t sampleAt(unsigned char const* row, std::size_t index) const;  // as the file holds it
  void putRow(unsigned char const* row, long x, long y, long count, unsigned plane);
  std::uint16_t half(std::uint32_t tag, std::uint16_t missing) const;

  bool planar() const { return channels_ > 1 && half(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE; }
  bool colour() const { return photometric_ == PHOTOMETRIC_RGB || photometric_ == PHOTOMETRIC_YCBCR; }

  void open();

  cc_ImageSource file_;
  Source source_;
  std::unique_ptr<TIFF, CloseTiff> tiff_;
  long width_ = 0, height_ = 0;
  std::uint16_t depth_ = 1;        // bits a sample
  std::uint16_t channels_ = 1;
  std::uint16_t photometric_ = 0;
  cc_PaletteImage::Palette palette_;
  ccImageFile image_;
  std::optional<cc_PaletteImage> indexed_;  // instead of image_
};

std::uint16_t TiffReader::half(std::uint32_t tag, std::uint16_t missing) const
{
  std::uint16_t value = missing;
  return TIFFGetField(tiff_.get(), tag, &value) ? value : missing;
}

void TiffReader::checkCompression()
{
  switch (std::uint16_t const compression = half(TIFFTAG_COMPRESSION, COMPRESSION_NONE)) {
  case COMPRESSION_NONE:
  case COMPRESSION_LZW:
  case COMPRESSION_PACKBITS:
  case COMPRESSION_ADOBE_DEFLATE:
  case COMPRESSION_DEFLATE:
  case COMPRESSION_JPEG:
    if (!TIFFIsCODECConfigured(compression))
      cf_faultUnsupported("TIFF compression " + std::to_string(compression));
    if (compression == COMPRESSION_JPEG && photometric_ == PHOTOMETRIC_YCBCR)
      TIFFSetField(tiff_.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    else if (photometric_ == PHOTOMETRIC_YCBCR)
      cf_faultUnsupported("a TIFF in YCbCr without JPEG compression");
    return;
  default: cf_faultUnsupported("TIFF compression " + std::to_string(compression));
  }
}

void TiffReader::readTags()
{
  std::uint32_t width = 0, height = 0;
  TIFFGetField(tiff_.get(), TIFFTAG_IMAGEWIDTH, &width);
  TIFFGetField(tiff_.get(), TIFFTAG_IMAGELENGTH, &height);
  cf_checkSides(width, height);
  width_ = static_cast<long>(width);
  height_ = static_cast<long>(height);
  depth_ = half(TIFFTAG_BITSPERSAMPLE, 1);
  channels_ = half(TIFFTAG_SAMPLESPERPIXEL, 1);
  photometric_ = half(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  checkCompression();

  std::uint16_t const kind = half(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
  if (kind != SAMPLEFORMAT_UINT && kind != SAMPLEFORMAT_VOID)
    cf_faultUnsupported("a TIFF of samples that are not whole numbers without sign");
  std::uint16_t const needed = colour() ? 3 : 1;
  if (channels_ < needed || channels_ > 16)
    cf_faultUnsupported("a TIFF of " + std::to_string(channels_) + " channels");
  bool const even = depth_ == 8 || depth_ == 16;
  bool const known = colour() ? even : photometric_ == PHOTOMETRIC_PALETTE ? depth_ >= 1 && depth_ <= 8
                                                                          : depth_ >= 1 && depth_ <= 16;
  if (!known)
    cf_faultUnsupported("a TIFF of " + std::to_string(depth_) + " bits a sample");
  switch (photometric_) {
  case PHOTOMETRIC_MINISWHITE:
  case PHOTOMETRIC_MINISBLACK:
  case PHOTOMETRIC_RGB:
  case PHOTOMETRIC_YCBCR: break;
  case PHOTOMETRIC_PALETTE: readPalette(); break;
  default: cf_faultUnsupported("TIFF colour model " + std::to_string(photometric_));
  }
  cf_checkGrowth(1ull * width * height * channels_ * depth_ / 8, source_.bytes.size(), mostGrowth);
}

// Entries have 16 bits. Some writers fill in 8; then all entries are below 256.
void TiffReader::readPalette()
{
  std::uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
  if (!TIFFGetField(tiff_.get(), TIFFTAG_COLORMAP, &red, &green, &blue))
    cf_faultDamaged("the palette is missing");
  std::size_t const count = std::size_t{1} << depth_;
  auto const small = [count](std::uint16_t const* entries) {
    return std::all_of(entries, entries + count, [](std::uint16_t e) { return e < 256; });
  };
  unsigned const scale = small(red) && small(green) && small(blue) ? 1 : 257;
  auto const narrow = [scale](std::uint16_t entry) { return static_cast<unsigned char>((entry + scale / 2) / scale); };
  for (std::size_t i = 0; i < count; ++i)
    palette_[i] = ccPackedRGB32Pel(narrow(red[i]), narrow(green[i]), narrow(blue[i]));
}

void TiffReader::makeImage()
{
  if (photometric_ == PHOTOMETRIC_PALETTE)
    indexed_.emplace(file_, width_, height_, palette_, std::size_t{1} << depth_);
  else if (colour())
    image_ = cf_newRGB(file_, width_, height_);
  else if (depth_ <= 8)
    image_ = cf_newGrey8(file_, width_, height_);
  else
    image_ = cf_newGrey16(file_, width_, height_, depth_);
}

std::uint32_t TiffReader::sampleAt(unsigned char const* row, std::size_t index) const
{
  if (depth_ == 8)
    return row[index];
  if (depth_ == 16) {
    std::uint16_t value;  // the library has put the bytes in order
    std::memcpy(&value, row + index * 2, 2);
    return value;
  }
  std::uint32_t value = 0;
  for (std::size_t bit = index * depth_, end = bit + depth_; bit < end; ++bit)
    value = value << 1 | (std::uint32_t{row[bit / 8]} >> (7 - bit % 8) & 1);
  return value;
}

// `plane` is the channel that a row of a planar file holds.
void TiffReader::putRow(unsigned char const* row, long x, long y, long count, unsigned plane)
{
  std::size_t const step = planar() ? 1 : channels_;
  std::uint32_t const white = (1u << depth_) - 1;
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    long const at = x + static_cast<long>(i);
    if (colour()) {
      ccPackedRGB32Pel& pel = *image_.rgb.pelAddress(at, y);
      std::uint32_t word = pel.word();
      for (unsigned channel = plane; channel < (planar() ? plane + 1 : 3); ++channel) {
        std::uint32_t const value = sampleAt(row, i * step + (planar() ? 0 : channel));
        word |= (depth_ == 16 ? (value + 128) / 257 : value) << (16 - 8 * channel);
      }
      pel = ccPackedRGB32Pel(word);
      continue;
    }
    std::uint32_t value = sampleAt(row, i * step);
    if (photometric_ == PHOTOMETRIC_MINISWHITE)
      value = white - value;
    if (depth_ > 8)
      *image_.grey16.pelAddress(at, y) = static_cast<unsigned short>(value);
    else if (photometric_ == PHOTOMETRIC_PALETTE)
      indexed_->indices(y)[at] = static_cast<unsigned char>(value);
    else
      *image_.grey8.pelAddress(at, y) = static_cast<unsigned char>((value * 255 + white / 2) / white);
  }
}

void TiffReader::readScanlines()
{
  unsigned const planes = planar() && colour() ? 3 : 1;
  unsigned long long const needed =
      (1ull * static_cast<unsigned long>(width_) * (planar() ? 1 : channels_) * depth_ + 7) / 8;
  tmsize_t const size = TIFFScanlineSize(tiff_.get());
  if (size <= 0 || static_cast<unsigned long long>(size) < needed)
    cf_faultDamaged("its rows are too short");
  if (half(TIFFTAG_COMPRESSION, COMPRESSION_NONE) == COMPRESSION_JPEG) {
    std::uint32_t rows = static_cast<std::uint32_t>(height_);
    TIFFGetField(tiff_.get(), TIFFTAG_ROWSPERSTRIP, &rows);
    checkJpeg(1ull * static_cast<unsigned long>(width_) * std::min(rows, static_cast<std::uint32_t>(height_)));
  }
  std::vector<unsigned char> row(static_cast<std::size_t>(size));
  for (unsigned plane = 0; plane < planes; ++plane)
    for (long y = 0; y < height_; ++y) {
      if (TIFFReadScanline(tiff_.get(), row.data(), static_cast<std::uint32_t>(y), static_cast<std::uint16_t>(plane)) < 0)
        cf_faultDamaged("row " + std::to_string(y) + " cannot be read");
      putRow(row.data(), 0, y, width_, plane);
    }
}

// A strip or tile in several scans is kept whole while it is read.
void TiffReader::checkJpeg(unsigned long long pels) const
{
  if (pels * channels_ > mostJpegStrip)
    cf_faultUnsupported("a TIFF of JPEG strips of " + std::to_string(pels) + " pels");
}

void TiffReader::readTiles()
{
  std::uint32_t tileWidth = 0, tileHeight = 0;
  TIFFGetField(tiff_.get(), TIFFTAG_TILEWIDTH, &tileWidth);
  TIFFGetField(tiff_.get(), TIFFTAG_TILELENGTH, &tileHeight);
  std::uint64_t const size = TIFFTileSize64(tiff_.get());
  std::uint64_t const rowBytes = TIFFTileRowSize64(tiff_.get());
  unsigned long long const needed = (1ull * tileWidth * (planar() ? 1 : channels_) * depth_ + 7) / 8;
  if (!tileWidth || !tileHeight || rowBytes < needed || size / tileHeight < rowBytes)
    cf_faultDamaged("its tiles have no size");
  cf_checkGrowth(size, source_.bytes.size(), mostGrowth);
  // The file holds a place of at least two bytes for each tile.
  auto const tiles = [](long side, std::uint32_t tile) { return (static_cast<unsigned long long>(side) + tile - 1) / tile; };
  cf_checkGrowth(tiles(width_, tileWidth) * tiles(height_, tileHeight) * 2, source_.bytes.size(), 1);
  if (half(TIFFTAG_COMPRESSION, COMPRESSION_NONE) == COMPRESSION_JPEG)
    checkJpeg(1ull * tileWidth * tileHeight);
  if (size > mostTile || tileWidth > longestTileSide || tileHeight > longestTileSide)
    cf_faultUnsupported("tiles of " + std::to_string(tileWidth) + " x " + std::to_string(tileHeight) + " pels");
  unsigned const planes = planar() && colour() ? 3 : 1;
  unsigned long long const picture =
      1ull * static_cast<unsigned long>(width_) * static_cast<unsigned long>(height_) * channels_ * depth_ / 8;
  if (tiles(width_, tileWidth) * tiles(height_, tileHeight) * planes * size > mostTileWork * picture + mostTile)
    cf_faultDamaged("its tiles are much larger than its picture");
  std::vector<unsigned char> tile(static_cast<std::size_t>(size));
  for (unsigned plane = 0; plane < planes; ++plane)
    for (long top = 0; top < height_; top += static_cast<long>(tileHeight))
      for (long left = 0; left < width_; left += static_cast<long>(tileWidth)) {
        if (TIFFReadTile(tiff_.get(), tile.data(), static_cast<std::uint32_t>(left), static_cast<std::uint32_t>(top), 0,
                         static_cast<std::uint16_t>(plane)) < 0)
          cf_faultDamaged("the tile at " + std::to_string(left) + ", " + std::to_string(top) + " cannot be read");
        long const bottom = std::min(top + static_cast<long>(tileHeight), height_);
        long const count = std::min(static_cast<long>(tileWidth), width_ - left);
        for (long y = top; y < bottom; ++y)
          putRow(tile.data() + static_cast<std::size_t>(y - top) * rowBytes, left, y, count, plane);
      }
}

void TiffReader::open()
{
  silence();
  std::unique_ptr<TIFFOpenOptions, void (*)(TIFFOpenOptions*)> const options(TIFFOpenOptionsAlloc(), TIFFOpenOptionsFree);
  if (!options)
    throw std::bad_alloc();
  // Where tags are hidden the bytes cannot be used where they lie, and a strip is copied before it is unpacked.
  bool const hidden = source_.tags.hidesAny();
  unsigned long long const most = cf_workMemory + (hidden ? source_.bytes.size() : 0);
  TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(most));
  // D: the places of the strips are fetched with the first row, when the size is known to be sane. m: no mapping.
  tiff_.reset(TIFFClientOpenExt("", hidden ? "rDm" : "rD", &source_, readProc, writeProc, seekProc, closeProc, sizeProc,
                                mapProc, unmapProc, options.get()));
  if (!tiff_)
    cf_faultDamaged("its first image cannot be found");
}

ccImageFile TiffReader::read()
{
  open();
  readTags();
  makeImage();
  if (TIFFIsTiled(tiff_.get()))
    readTiles();
  else
    readScanlines();
  if (indexed_)
    return indexed_->finish();
  return std::move(image_);
}

}  // namespace

// Both byte orders, and the kind with 64-bit offsets.
bool cf_isTiff(cc_Bytes bytes)
{
  if (bytes.size() < 4)
    return false;
  bool const little = bytes[0] == 'I' && bytes[1] == 'I' && (bytes[2] == 42 || bytes[2] == 43) && bytes[3] == 0;
  bool const big = bytes[0] == 'M' && bytes[1] == 'M' && bytes[2] == 0 && (bytes[3] == 42 || bytes[3] == 43);
  return little || big;
}

ccImageFile cf_readTiff(cc_ImageSource const& source)
{
  return TiffReader(source).read();
}
