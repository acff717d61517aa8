#include "apps/common/image_file.h"
#include "tests/apps/file_kit.h"

#include <gtest/gtest.h>

#include <tiffio.h>

using Rows = std::vector<std::vector<unsigned>>;
using Words = std::vector<std::vector<std::uint32_t>>;

namespace {

struct TestTiff {
  unsigned width = 0, height = 0;
  int depth = 8, channels = 1;
  int photometric = PHOTOMETRIC_MINISBLACK;
  Bytes rows;  // packed; samples of 16 bits in the machine's order
  int compression = COMPRESSION_NONE;
  unsigned tile = 0;  // side; 0: strips
  unsigned rowsPerStrip = 1000;
  char const* mode = "w";
  bool planar = false;  // rows hold all of the first channel, then the next
  std::vector<std::uint16_t> palette = {};  // reds, greens, blues
  int sampleFormat = SAMPLEFORMAT_UINT;
};

Bytes encode(TestTiff const& t)
{
  TestFolder const folder;
  std::string const path = folder.file("x.tif").string();
  TIFF* tiff = TIFFOpen(path.c_str(), t.mode);
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, t.width);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, t.height);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, t.depth);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, t.channels);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, t.photometric);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, t.compression);
  TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, t.sampleFormat);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, t.planar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
  if (!t.palette.empty()) {
    std::size_t const count = t.palette.size() / 3;
    TIFFSetField(tiff, TIFFTAG_COLORMAP, t.palette.data(), t.palette.data() + count, t.palette.data() + 2 * count);
  }
  Bytes rows = t.rows;
  unsigned const planes = t.planar ? static_cast<unsigned>(t.channels) : 1;
  if (t.tile) {
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, t.tile);
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, t.tile);
    unsigned const pel = static_cast<unsigned>(t.channels * t.depth) / 8 / planes;
    for (unsigned plane = 0; plane < planes; ++plane)
      for (unsigned top = 0; top < t.height; top += t.tile)
        for (unsigned left = 0; left < t.width; left += t.tile) {
          Bytes tile(t.tile * t.tile * pel, 0xEE);
          for (unsigned y = top; y < std::min(top + t.tile, t.height); ++y)
            for (unsigned x = left; x < std::min(left + t.tile, t.width); ++x)
              for (unsigned b = 0; b < pel; ++b)
                tile[((y - top) * t.tile + x - left) * pel + b] = rows[((plane * t.height + y) * t.width + x) * pel + b];
          TIFFWriteTile(tiff, tile.data(), left, top, 0, static_cast<std::uint16_t>(plane));
        }
  } else {
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, t.rowsPerStrip);
    std::size_t const size = static_cast<std::size_t>(TIFFScanlineSize(tiff));
    EXPECT_EQ(rows.size(), size * t.height * planes);
    for (unsigned plane = 0; plane < planes; ++plane)
      for (unsigned y = 0; y < t.height; ++y)
        TIFFWriteScanline(tiff, rows.data() + (plane * t.height + y) * size, y, static_cast<std::uint16_t>(plane));
  }
  TIFFClose(tiff);
  return fileBytes(path);
}

Bytes halves(std::vector<std::uint16_t> const& values)
{
  auto const* bytes = reinterpret_cast<unsigned char const*>(values.data());
  return Bytes(bytes, bytes + values.size() * 2);
}

// Grey, `step` bytes a pel: the first byte of pel i is i.
Bytes counting(unsigned count)
{
  Bytes bytes;
  for (unsigned i = 0; i < count; ++i)
    bytes.push_back(static_cast<unsigned char>(i));
  return bytes;
}

Rows countingRows(unsigned width, unsigned height)
{
  Rows rows(height);
  for (unsigned i = 0; i < width * height; ++i)
    rows[i / width].push_back(i & 255);
  return rows;
}

}  // namespace

TEST(TiffFile, greyOfEightBitsInBothByteOrdersAndBothOffsetSizes)
{
  for (char const* mode : {"wl", "wb", "w8"}) {
    TestTiff tiff{2, 2, 8, 1, PHOTOMETRIC_MINISBLACK, {0, 1, 128, 255}};
    tiff.mode = mode;
    ccImageFile const image = read(encode(tiff));

    EXPECT_EQ(image.format, ceImageFormatGrey8) << mode << image.error;
    EXPECT_EQ(image.bits, 8);
    EXPECT_EQ(greys(image), (Rows{{0, 1}, {128, 255}})) << mode;
  }
}

TEST(TiffFile, greyOfSixteenBitsInBothByteOrders)
{
  for (char const* mode : {"wl", "wb"}) {
    TestTiff tiff{2, 1, 16, 1, PHOTOMETRIC_MINISBLACK, halves({0x1234, 0xFFFE})};
    tiff.mode = mode;
    ccImageFile const image = read(encode(tiff));

    EXPECT_EQ(image.format, ceImageFormatGrey16) << mode << image.error;
    EXPECT_EQ(image.bits, 16);
    EXPECT_EQ(greys(image), (Rows{{0x1234, 0xFFFE}})) << mode;
  }
}

TEST(TiffFile, packedGreyIsWidenedUpToEightBitsAndKeptAbove)
{
  EXPECT_EQ(greys(read(encode(TestTiff{3, 1, 1, 1, PHOTOMETRIC_MINISBLACK, {0b10100000}}))), (Rows{{255, 0, 255}}));
  EXPECT_EQ(greys(read(encode(TestTiff{3, 1, 4, 1, PHOTOMETRIC_MINISBLACK, {0x01, 0xF0}}))), (Rows{{0, 17, 255}}));

  ccImageFile const twelve = read(encode(TestTiff{3, 1, 12, 1, PHOTOMETRIC_MINISBLACK, {0xAB, 0xC0, 0x01, 0xFF, 0xF0}}));
  EXPECT_EQ(twelve.format, ceImageFormatGrey16) << twelve.error;
  EXPECT_EQ(twelve.bits, 12);
  EXPECT_EQ(greys(twelve), (Rows{{0xABC, 0x001, 0xFFF}}));
}

TEST(TiffFile, minimumIsWhiteIsInverted)
{
  EXPECT_EQ(greys(read(encode(TestTiff{3, 1, 8, 1, PHOTOMETRIC_MINISWHITE, {0, 100, 255}}))), (Rows{{255, 155, 0}}));
  EXPECT_EQ(greys(read(encode(TestTiff{2, 1, 16, 1, PHOTOMETRIC_MINISWHITE, halves({0, 65000})}))), (Rows{{65535, 535}}));
  EXPECT_EQ(greys(read(encode(TestTiff{2, 1, 1, 1, PHOTOMETRIC_MINISWHITE, {0b10000000}}))), (Rows{{0, 255}}));
}

TEST(TiffFile, colourOfEightAndSixteenBitsWithAndWithoutAlpha)
{
  EXPECT_EQ(words(read(encode(TestTiff{2, 1, 8, 3, PHOTOMETRIC_RGB, {1, 2, 3, 255, 128, 0}}))), (Words{{0x010203, 0xFF8000}}));
  EXPECT_EQ(words(read(encode(TestTiff{1, 1, 8, 4, PHOTOMETRIC_RGB, {1, 2, 3, 0}}))), (Words{{0x010203}}));
  // 65535 / 257 = 255, 0x00FF / 257 = 0.99, 0xFF00 / 257 = 254.01
  EXPECT_EQ(words(read(encode(TestTiff{1, 1, 16, 3, PHOTOMETRIC_RGB, halves({0xFFFF, 0x00FF, 0xFF00})}))), (Words{{0xFF01FE}}));
}

TEST(TiffFile, channelsInPlanes)
{
  TestTiff tiff{2, 2, 8, 3, PHOTOMETRIC_RGB, {1, 2, 3, 4, 11, 12, 13, 14, 21, 22, 23, 24}};
  tiff.planar = true;
  EXPECT_EQ(words(read(encode(tiff))), (Words{{0x010B15, 0x020C16}, {0x030D17, 0x040E18}}));

  tiff.tile = 16;
  EXPECT_EQ(words(read(encode(tiff))), (Words{{0x010B15, 0x020C16}, {0x030D17, 0x040E18}}));
}

TEST(TiffFile, paletteOfSixteenBitEntriesAndOfEightBitOnes)
{
  TestTiff tiff{3, 1, 4, 1, PHOTOMETRIC_PALETTE, {0x01, 0x20}};
  tiff.palette.assign(48, 0);
  tiff.palette[0] = 0xFFFF;       // red of 0
  tiff.palette[16 + 1] = 0x8080;  // green of 1
  tiff.palette[32 + 2] = 0x0101;  // blue of 2
  EXPECT_EQ(words(read(encode(tiff))), (Words{{0xFF0000, 0x008000, 0x000001}}));

  tiff.palette[0] = 255;
  tiff.palette[16 + 1] = 128;
  tiff.palette[32 + 2] = 1;
  EXPECT_EQ(words(read(encode(tiff))), (Words{{0xFF0000, 0x008000, 0x000001}}));
}

TEST(TiffFile, compressionsStripsAndTiles)
{
  for (int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_PACKBITS, COMPRESSION_ADOBE_DEFLATE})
    for (unsigned tile : {0u, 16u}) {
      TestTiff tiff{37, 21, 8, 1, PHOTOMETRIC_MINISBLACK, counting(37 * 21)};
      tiff.compression = compression;
      tiff.tile = tile;
      tiff.rowsPerStrip = 5;
      ccImageFile const image = read(encode(tiff));

      EXPECT_EQ(greys(image), countingRows(37, 21)) << compression << " " << tile << image.error;
    }
}

TEST(TiffFile, jpegInsideTiff)
{
  TestTiff tiff{32, 16, 8, 1, PHOTOMETRIC_MINISBLACK, Bytes(32 * 16, 90)};
  tiff.compression = COMPRESSION_JPEG;
  ccImageFile const image = read(encode(tiff));

  ASSERT_EQ(image.format, ceImageFormatGrey8) << image.error;
  EXPECT_NEAR(image.grey8.getPel(31, 15), 90, 2);
}

TEST(TiffFile, kindsThatAreNotReadAreNamed)
{
  TestTiff real{1, 1, 32, 1, PHOTOMETRIC_MINISBLACK, {0, 0, 0, 0}};
  real.sampleFormat = SAMPLEFORMAT_IEEEFP;
  EXPECT_EQ(read(encode(real)).error, "test: unsupported: a TIFF of samples that are not whole numbers without sign");
  EXPECT_EQ(read(encode(TestTiff{1, 1, 32, 1, PHOTOMETRIC_MINISBLACK, {0, 0, 0, 0}})).error,
            "test: unsupported: a TIFF of 32 bits a sample");
  EXPECT_EQ(read(encode(TestTiff{1, 1, 8, 4, PHOTOMETRIC_SEPARATED, {0, 0, 0, 0}})).error,
            "test: unsupported: TIFF colour model 5");
  TestTiff fax{8, 1, 1, 1, PHOTOMETRIC_MINISBLACK, {0}};
  fax.compression = COMPRESSION_CCITTFAX4;
  EXPECT_EQ(read(encode(fax)).error, "test: unsupported: TIFF compression 4");
}

TEST(TiffFile, sidesAndShortDataAreRefusedBeforeMemoryIsTaken)
{
  Bytes file = encode(TestTiff{2, 2, 8, 1, PHOTOMETRIC_MINISBLACK, {0, 1, 128, 255}});
  // The entries of width and height: tag, type 3, count 1, value.
  auto const entry = [&file](unsigned char tag) {
    for (std::size_t i = 8; i + 12 <= file.size(); ++i)
      if (file[i] == tag && file[i + 1] == 1 && (file[i + 2] == 3 || file[i + 2] == 4) && file[i + 4] == 1)
        return i + 8;
    return std::size_t{0};
  };
  std::size_t const width = entry(0), height = entry(1);
  ASSERT_GT(width, 0u);
  ASSERT_GT(height, 0u);

  file[width] = 0x01, file[width + 1] = 0x40;
  EXPECT_EQ(read(file).error, "test: 16385 x 2 pels are too many, the limit is 16384 a side");
  file[width] = 0x00;
  file[height] = 0x00, file[height + 1] = 0x40;
  EXPECT_EQ(read(file).error, "test: the file is cut off");
}

TEST(TiffFile, survivesDamage)
{
  // Only the four bytes at the end that lead to a next image may be missing.
  EXPECT_EQ(surviveDamage(encode(TestTiff{2, 2, 8, 1, PHOTOMETRIC_MINISBLACK, {0, 1, 128, 255}})), 4);
  EXPECT_EQ(surviveDamage(encode(TestTiff{2, 1, 16, 1, PHOTOMETRIC_MINISWHITE, halves({1, 2})})), 4);
  for (int compression : {COMPRESSION_LZW, COMPRESSION_PACKBITS, COMPRESSION_ADOBE_DEFLATE}) {
    TestTiff tiff{5, 4, 8, 3, PHOTOMETRIC_RGB, counting(60)};
    tiff.compression = compression;
    tiff.rowsPerStrip = 2;
    surviveDamage(encode(tiff));
  }
  TestTiff tiles{18, 3, 8, 1, PHOTOMETRIC_MINISBLACK, counting(54)};
  tiles.tile = 16;
  tiles.compression = COMPRESSION_ADOBE_DEFLATE;
  surviveDamage(encode(tiles));

  TestTiff palette{3, 1, 4, 1, PHOTOMETRIC_PALETTE, {0x01, 0x20}};
  palette.palette.assign(48, 0x1234);
  surviveDamage(encode(palette));
}

TEST(TiffFile, jpegInsideTiffSurvivesDamage)
{
  TestTiff tiff{16, 16, 8, 1, PHOTOMETRIC_MINISBLACK, counting(256)};
  tiff.compression = COMPRESSION_JPEG;
  surviveDamage(encode(tiff));
}
