#include "apps/common/image_file.h"
#include "tests/apps/file_kit.h"

#include <gtest/gtest.h>

using Rows = std::vector<std::vector<unsigned>>;
using Words = std::vector<std::vector<std::uint32_t>>;

TEST(PnmFile, rawGreyOfEightBitsIsKept)
{
  ccImageFile const image = read(bytesOf("P5\n3 2\n255\n") + Bytes{0, 1, 127, 128, 254, 255});

  EXPECT_EQ(image.format, ceImageFormatGrey8);
  EXPECT_EQ(image.bits, 8);
  EXPECT_EQ(greys(image), (Rows{{0, 1, 127}, {128, 254, 255}}));
}

TEST(PnmFile, rawGreyOfSixteenBitsIsBigEndian)
{
  ccImageFile const image = read(bytesOf("P5 2 1 65535\n") + Bytes{0x12, 0x34, 0xFF, 0xFE});

  EXPECT_EQ(image.format, ceImageFormatGrey16);
  EXPECT_EQ(image.bits, 16);
  EXPECT_EQ(greys(image), (Rows{{0x1234, 0xFFFE}}));
}

TEST(PnmFile, bitsAreTheBitLengthOfMaxvalAndValuesAreKept)
{
  struct {
    char const* maxval;
    int bits;
  } const cases[] = {{"256", 9}, {"511", 9}, {"512", 10}, {"1000", 10}, {"4095", 12}, {"4096", 13}, {"65535", 16}};
  for (auto const& c : cases) {
    ccImageFile const image = read(bytesOf(std::string("P2 2 1 ") + c.maxval + " 3 200"));

    EXPECT_EQ(image.format, ceImageFormatGrey16) << c.maxval;
    EXPECT_EQ(image.bits, c.bits) << c.maxval;
    EXPECT_EQ(greys(image), (Rows{{3, 200}})) << c.maxval;
  }
}

TEST(PnmFile, smallMaxvalIsScaledTo255AndRounded)
{
  // 255 v / 100 = 0, 2.55, 127.5, 252.45, 255
  EXPECT_EQ(greys(read(bytesOf("P5 5 1 100\n") + Bytes{0, 1, 50, 99, 100})), (Rows{{0, 3, 128, 252, 255}}));
  EXPECT_EQ(greys(read(bytesOf("P2 4 1 3 0 1 2 3"))), (Rows{{0, 85, 170, 255}}));
  EXPECT_EQ(greys(read(bytesOf("P2 2 1 1 0 1"))), (Rows{{0, 255}}));
}

TEST(PnmFile, valuesAboveMaxvalAreCutToIt)
{
  EXPECT_EQ(greys(read(bytesOf("P5 2 1 100\n") + Bytes{100, 250})), (Rows{{255, 255}}));
  EXPECT_EQ(greys(read(bytesOf("P5 2 1 1023\n") + Bytes{0x03, 0xFE, 0x04, 0x00})), (Rows{{1022, 1023}}));
  EXPECT_EQ(greys(read(bytesOf("P2 2 1 4095 99999999999999999999 7"))), (Rows{{4095, 7}}));
}

TEST(PnmFile, plainAndRawColour)
{
  Words const expected{{0xFF0000, 0x010203}};

  ccImageFile const plain = read(bytesOf("P3\n2 1\n255\n255 0 0\n1 2 3\n"));
  EXPECT_EQ(plain.format, ceImageFormatRGB32);
  EXPECT_EQ(plain.bits, 8);
  EXPECT_EQ(words(plain), expected);
  EXPECT_EQ(words(read(bytesOf("P6\n2 1\n255\n") + Bytes{255, 0, 0, 1, 2, 3})), expected);
}

TEST(PnmFile, colourOfOtherDepthsIsScaledToEightBits)
{
  // 65535 -> 255; 0x8080 = 128 * 257 -> 128; 0x0100 = 256 -> 0.996 -> 1
  EXPECT_EQ(words(read(bytesOf("P6 1 1 65535\n") + Bytes{0xFF, 0xFF, 0x80, 0x80, 0x01, 0x00})), (Words{{0xFF8001}}));
  EXPECT_EQ(words(read(bytesOf("P3 1 1 15 15 1 0"))), (Words{{0xFF1100}}));
}

TEST(PnmFile, commentsStandAnywhereInTheHeader)
{
  ccImageFile const image = read(bytesOf("P5#made by hand\n# 9 9\n2#wide\n #\n1 # high\r255\n") + Bytes{35, 10});

  EXPECT_EQ(greys(image), (Rows{{35, 10}}));
}

TEST(PnmFile, oneWhiteSpaceEndsTheHeaderSoThatWhiteValuesCount)
{
  EXPECT_EQ(greys(read(bytesOf("P5 2 1 255\n") + Bytes{' ', '\n'})), (Rows{{32, 10}}));
}

TEST(PnmFile, bytesBehindTheImageAreIgnored)
{
  EXPECT_EQ(greys(read(bytesOf("P5 1 1 255\n") + Bytes{7, 8, 9})), (Rows{{7}}));
}

TEST(PnmFile, faultsAreNamed)
{
  struct {
    char const* file;
    char const* error;
  } const cases[] = {
      {"P5 2 2 255\nabc", "test: the file is cut off"},
      {"P2 2 1 255 7", "test: the file is cut off"},
      {"P5 2", "test: the file is cut off"},
      {"P5 0 2 255\nabc", "test: the file is damaged: the image has no pels"},
      {"P5 1 1 0\nabc", "test: the file is damaged: its maxval is not in 1..65535"},
      {"P5 1 1 65536\nabc", "test: the file is damaged: its maxval is not in 1..65535"},
      {"P5 1 -1 255\nabc", "test: the file is damaged: a number is expected"},
      {"P2 1 1 255 x", "test: the file is damaged: a number is expected"},
      {"P2 2 1 255 1x3 4", "test: the file is damaged: a number is expected"},
      {"P5 16385 1 255\n", "test: 16385 x 1 pels are too many, the limit is 16384 a side"},
      {"P5 1 16385 255\n", "test: 1 x 16385 pels are too many, the limit is 16384 a side"},
      {"P5 99999999999 1 255\n", "test: 100000000 x 1 pels are too many, the limit is 16384 a side"},
      {"P4 1 1\n0", "test: unsupported: a PBM bitmap"},
      {"P1 1 1\n0", "test: unsupported: a PBM bitmap"},
      {"P7\nWIDTH 1", "test: unsupported: a PAM image"},
      {"P8 1 1\n0", "test: not an image in a known format (PNG, PGM, PPM, TIFF, JPEG, BMP)"},
  };
  for (auto const& c : cases)
    EXPECT_EQ(read(bytesOf(c.file)).error, c.error) << c.file;
}

TEST(PnmFile, longestSideIsRead)
{
  ccImageFile const wide = read(bytesOf("P5 16384 1 255\n") + Bytes(16384, 9));
  ccImageFile const high = read(bytesOf("P5 1 16384 255\n") + Bytes(16384, 9));

  EXPECT_EQ(wide.grey8.getPel(16383, 0), 9);
  EXPECT_EQ(high.grey8.getPel(0, 16383), 9);
}

TEST(PnmFile, survivesDamage)
{
  EXPECT_EQ(surviveDamage(bytesOf("P5 3 2 255\n") + Bytes{0, 1, 127, 128, 254, 255}), 0);
  EXPECT_EQ(surviveDamage(bytesOf("P5 2 2 4095\n") + Bytes{0, 1, 2, 3, 4, 5, 6, 7}), 0);
  EXPECT_EQ(surviveDamage(bytesOf("P6 2 1 200\n") + Bytes{0, 1, 127, 128, 254, 255}), 0);
  // A plain number whose last digits are gone is a number still.
  EXPECT_EQ(surviveDamage(bytesOf("P2 2 2 1000\n5 60 700 800\n")), 3);
  EXPECT_EQ(surviveDamage(bytesOf("P3 #x\n1 1 255 5 60 70")), 1);
}
