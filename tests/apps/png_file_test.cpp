#include "apps/common/image_file.h"
#include "tests/apps/file_kit.h"

#include <gtest/gtest.h>

using Rows = std::vector<std::vector<unsigned>>;
using Words = std::vector<std::vector<std::uint32_t>>;

namespace {

enum ColourType { Grey = 0, Colour = 2, Palette = 3, GreyAlpha = 4, ColourAlpha = 6 };

TestPng png(unsigned width, unsigned height, ColourType type, int depth, Bytes const& rows)
{
  TestPng picture;
  picture.width = width;
  picture.height = height;
  picture.colourType = type;
  picture.depth = depth;
  picture.rows = rows;
  return picture;
}

}  // namespace

TEST(PngFile, greyOfOneTwoAndFourBitsIsWidened)
{
  EXPECT_EQ(greys(read(encode(png(3, 1, Grey, 1, {0b10100000})))), (Rows{{255, 0, 255}}));
  EXPECT_EQ(greys(read(encode(png(4, 1, Grey, 2, {0b00011011})))), (Rows{{0, 85, 170, 255}}));
  EXPECT_EQ(greys(read(encode(png(3, 1, Grey, 4, {0x01, 0xF0})))), (Rows{{0, 17, 255}}));
}

TEST(PngFile, greyOfEightAndSixteenBitsIsKept)
{
  ccImageFile const eight = read(encode(png(2, 2, Grey, 8, {0, 1, 128, 255})));
  EXPECT_EQ(eight.format, ceImageFormatGrey8);
  EXPECT_EQ(eight.bits, 8);
  EXPECT_EQ(greys(eight), (Rows{{0, 1}, {128, 255}}));

  ccImageFile const sixteen = read(encode(png(2, 1, Grey, 16, {0x12, 0x34, 0xFF, 0xFE})));
  EXPECT_EQ(sixteen.format, ceImageFormatGrey16);
  EXPECT_EQ(sixteen.bits, 16);
  EXPECT_EQ(greys(sixteen), (Rows{{0x1234, 0xFFFE}}));
}

TEST(PngFile, significantBitsShiftTheValuesDown)
{
  TestPng picture = png(3, 1, Grey, 16, {0x00, 0x10, 0xAB, 0xCA, 0xFF, 0xFF});
  picture.significantGrey = 12;

  ccImageFile const image = read(encode(picture));

  EXPECT_EQ(image.bits, 12);
  EXPECT_EQ(greys(image), (Rows{{1, 0xABC, 0xFFF}}));
}

TEST(PngFile, significantBitsOfEightBitGreyAreIgnored)
{
  TestPng picture = png(2, 1, Grey, 8, {0x10, 0xFF});
  picture.significantGrey = 5;

  ccImageFile const image = read(encode(picture));

  EXPECT_EQ(image.bits, 8);
  EXPECT_EQ(greys(image), (Rows{{0x10, 0xFF}}));
}

TEST(PngFile, colourOfEightAndSixteenBits)
{
  ccImageFile const eight = read(encode(png(2, 1, Colour, 8, {1, 2, 3, 255, 128, 0})));
  EXPECT_EQ(eight.format, ceImageFormatRGB32);
  EXPECT_EQ(words(eight), (Words{{0x010203, 0xFF8000}}));

  // 65535 / 257 = 255, 0x00FF / 257 = 0.99, 0xFF00 / 257 = 254.01
  Bytes const sixteen{0xFF, 0xFF, 0x00, 0xFF, 0xFF, 0x00};
  EXPECT_EQ(words(read(encode(png(1, 1, Colour, 16, sixteen)))), (Words{{0xFF01FE}}));
}

TEST(PngFile, alphaIsDroppedAndTheStoredColourShown)
{
  EXPECT_EQ(words(read(encode(png(2, 1, ColourAlpha, 8, {1, 2, 3, 0, 4, 5, 6, 128})))), (Words{{0x010203, 0x040506}}));
  EXPECT_EQ(greys(read(encode(png(2, 1, GreyAlpha, 8, {9, 0, 200, 255})))), (Rows{{9, 200}}));
  EXPECT_EQ(greys(read(encode(png(1, 1, GreyAlpha, 16, {0x12, 0x34, 0, 0})))), (Rows{{0x1234}}));
  EXPECT_EQ(words(read(encode(png(1, 1, ColourAlpha, 16, {1, 1, 2, 2, 3, 3, 0, 0})))), (Words{{0x010203}}));
}

TEST(PngFile, paletteBecomesColour)
{
  TestPng picture = png(4, 1, Palette, 2, {0b00011011});
  picture.palette = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {7, 7, 7}};
  picture.transparent = {0, 128};

  ccImageFile const image = read(encode(picture));

  EXPECT_EQ(image.format, ceImageFormatRGB32);
  EXPECT_EQ(words(image), (Words{{0xFF0000, 0x00FF00, 0x0000FF, 0x070707}}));
}

TEST(PngFile, paletteOfGreysBecomesGrey)
{
  TestPng picture = png(3, 1, Palette, 8, {2, 0, 1});
  picture.palette = {{255, 255, 255}, {128, 128, 128}, {3, 3, 3}};

  ccImageFile const image = read(encode(picture));

  EXPECT_EQ(image.format, ceImageFormatGrey8);
  EXPECT_EQ(greys(image), (Rows{{3, 255, 128}}));
}

TEST(PngFile, interlacedFilesGiveTheSamePels)
{
  Bytes rows;
  for (int i = 0; i < 9 * 5 * 3; ++i)
    rows.push_back(static_cast<unsigned char>(i));
  TestPng picture = png(9, 5, Colour, 8, rows);
  picture.interlaced = true;

  Words expected(5);
  for (std::uint32_t i = 0; i < 45; ++i)
    expected[i / 9].push_back(3 * i << 16 | (3 * i + 1) << 8 | (3 * i + 2));
  EXPECT_EQ(words(read(encode(picture))), expected);
}

TEST(PngFile, tooManyPelsAreRefused)
{
  Bytes file = encode(png(1, 1, Grey, 8, {0}));
  file[18] = 0x40;  // width 0x4001
  EXPECT_EQ(read(file).error, "test: 16385 x 1 pels are too many, the limit is 16384 a side");
  file[16] = 0xFF;
  EXPECT_EQ(read(file).error, "test: 4278206465 x 1 pels are too many, the limit is 16384 a side");
}

TEST(PngFile, fewBytesThatClaimManyPelsAreRefusedBeforeMemoryIsTaken)
{
  Bytes file = encode(png(1, 1, Grey, 8, {0}));
  file[18] = 0x40, file[19] = 0;  // 16384 x 16384
  file[22] = 0x40, file[23] = 0;
  EXPECT_EQ(read(file).error, "test: the file is cut off");
}

TEST(PngFile, faultsAreNamed)
{
  Bytes const whole = encode(png(2, 2, Grey, 8, {0, 1, 128, 255}));
  EXPECT_EQ(read(Bytes(whole.begin(), whole.end() - 1)).error, "test: the file is cut off");
  EXPECT_EQ(read(Bytes(whole.begin(), whole.begin() + 20)).error, "test: the file is cut off");

  Bytes broken = whole;
  broken[45] ^= 1;  // inside the pels
  EXPECT_EQ(read(broken).error.rfind("test: the file is damaged: ", 0), 0u) << read(broken).error;
}

TEST(PngFile, survivesDamage)
{
  EXPECT_EQ(surviveDamage(encode(png(2, 2, Grey, 8, {0, 1, 128, 255}))), 0);
  EXPECT_EQ(surviveDamage(encode(png(2, 1, ColourAlpha, 8, {1, 2, 3, 0, 4, 5, 6, 128}))), 0);

  TestPng deep = png(3, 1, Grey, 16, {0x00, 0x10, 0xAB, 0xCA, 0xFF, 0xFF});
  deep.significantGrey = 12;
  EXPECT_EQ(surviveDamage(encode(deep)), 0);

  TestPng palette = png(4, 3, Palette, 2, {0b00011011, 0b11100100, 0b01010101});
  palette.palette = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}};
  palette.interlaced = true;
  EXPECT_EQ(surviveDamage(encode(palette)), 0);
}
