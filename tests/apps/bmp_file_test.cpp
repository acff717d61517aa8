#include "apps/common/image_file.h"
#include "tests/apps/file_kit.h"

#include <gtest/gtest.h>

using Rows = std::vector<std::vector<unsigned>>;
using Words = std::vector<std::vector<std::uint32_t>>;

namespace {

Bytes half(unsigned v) { return {static_cast<unsigned char>(v), static_cast<unsigned char>(v >> 8)}; }
Bytes word(std::uint32_t v) { return half(v & 0xFFFF) + half(v >> 16); }

struct Bmp {
  int width = 0, height = 0;
  unsigned depth = 8, compression = 0;
  unsigned used = 0;
  Bytes palette;  // or masks: all between the header and the pels
  Bytes pels;
  unsigned headerSize = 40;
};

Bytes file(Bmp const& b)
{
  Bytes header = word(b.headerSize) + word(static_cast<std::uint32_t>(b.width)) + word(static_cast<std::uint32_t>(b.height)) +
                 half(1) + half(b.depth) + word(b.compression) + word(0) + word(2835) + word(2835) + word(b.used) + word(0);
  Bytes const body = header + b.palette;
  std::uint32_t const start = static_cast<std::uint32_t>(14 + body.size());
  return bytesOf("BM") + word(start + static_cast<std::uint32_t>(b.pels.size())) + word(0) + word(start) + body + b.pels;
}

Bytes const fourColours{0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0, 255, 255, 255, 0};  // red, green, blue, white
Bytes const fourGreys{0, 0, 0, 0, 50, 50, 50, 0, 100, 100, 100, 0, 255, 255, 255, 0};

}  // namespace

TEST(BmpFile, rowsRunFromTheBottomOrWithANegativeHeightFromTheTop)
{
  Bmp bmp{2, 2, 24, 0, 0, {}, {1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0}};
  EXPECT_EQ(words(read(file(bmp))), (Words{{0x090807, 0x0C0B0A}, {0x030201, 0x060504}}));

  bmp.height = -2;
  EXPECT_EQ(words(read(file(bmp))), (Words{{0x030201, 0x060504}, {0x090807, 0x0C0B0A}}));
}

TEST(BmpFile, paletteOfOneFourAndEightBits)
{
  Words const expected{{0xFF0000, 0x00FF00, 0x00FF00}};

  EXPECT_EQ(words(read(file({3, 1, 1, 0, 2, Bytes(fourColours.begin(), fourColours.begin() + 8), {0b01100000, 0, 0, 0}}))),
            expected);
  EXPECT_EQ(words(read(file({3, 1, 4, 0, 4, fourColours, {0x01, 0x10, 0, 0}}))), expected);
  EXPECT_EQ(words(read(file({3, 1, 8, 0, 4, fourColours, {0, 1, 1, 0}}))), expected);
}

TEST(BmpFile, indicesBeyondThePaletteAreBlack)
{
  EXPECT_EQ(words(read(file({2, 1, 8, 0, 4, fourColours, {3, 4, 0, 0}}))), (Words{{0xFFFFFF, 0}}));
}

TEST(BmpFile, paletteOfGreysBecomesGrey)
{
  ccImageFile const image = read(file({4, 1, 8, 0, 4, fourGreys, {3, 2, 1, 0}}));

  EXPECT_EQ(image.format, ceImageFormatGrey8);
  EXPECT_EQ(image.bits, 8);
  EXPECT_EQ(greys(image), (Rows{{255, 100, 50, 0}}));
}

TEST(BmpFile, thirtyTwoBitsDropTheUpperByte)
{
  EXPECT_EQ(words(read(file({2, 1, 32, 0, 0, {}, {1, 2, 3, 255, 4, 5, 6, 0}}))), (Words{{0x030201, 0x060504}}));
}

TEST(BmpFile, masksPlaceTheChannels)
{
  // Red in the lowest byte, green above, blue above.
  Bytes const masks = word(0x0000FF) + word(0x00FF00) + word(0xFF0000);
  EXPECT_EQ(words(read(file({1, 1, 32, 3, 0, masks, {1, 2, 3, 0}}))), (Words{{0x010203}}));
  // Ten bits a channel: 1023 -> 255, 512 -> 127.6, 0.
  Bytes const deep = word(0x3FF00000) + word(0x000FFC00) + word(0x000003FF);
  EXPECT_EQ(words(read(file({1, 1, 32, 3, 0, deep, word(0x3FF00000 | 512 << 10)}))), (Words{{0xFF8000}}));
}

TEST(BmpFile, sixteenBitsAreFiveAChannelUnlessMasksSayOtherwise)
{
  // 31 -> 255, 16 -> 131.6, 1 -> 8.2
  EXPECT_EQ(words(read(file({2, 1, 16, 0, 0, {}, half(31 << 10 | 16 << 5 | 1) + half(0)}))), (Words{{0xFF8408, 0}}));
  // 5 6 5: green 63 -> 255
  Bytes const masks = word(0xF800) + word(0x07E0) + word(0x001F);
  EXPECT_EQ(words(read(file({2, 1, 16, 3, 0, masks, half(63 << 5) + half(0x1F)}))), (Words{{0x00FF00, 0x0000FF}}));
}

TEST(BmpFile, oldestHeaderHasShortSidesAndThreeBytesAColour)
{
  Bytes const palette{0, 0, 255, 255, 255, 255};  // red, white
  Bytes const header = word(12) + half(2) + half(1) + half(1) + half(1);
  std::uint32_t const start = static_cast<std::uint32_t>(14 + 12 + palette.size());
  Bytes const bytes = bytesOf("BM") + word(start + 4) + word(0) + word(start) + header + palette + Bytes{0b01000000, 0, 0, 0};

  EXPECT_EQ(words(read(bytes)), (Words{{0xFF0000, 0xFFFFFF}}));
  surviveDamage(bytes);
}

TEST(BmpFile, longerHeadersHoldTheMasksThemselves)
{
  Bmp bmp{1, 1, 32, 3, 0, word(0x0000FF) + word(0x00FF00) + word(0xFF0000) + Bytes(68 + 4, 0), {1, 2, 3, 0}};
  bmp.headerSize = 124;

  EXPECT_EQ(words(read(file(bmp))), (Words{{0x010203}}));
}

TEST(BmpFile, runLengthsOfEightBits)
{
  // Bottom row: 3 x 1, then 2 3 0 one by one (padded); end of row. Top row: skip 2 to the right, 2 x 2; end.
  Bytes const runs{3, 1, 0, 3, 2, 3, 0, 0, 0, 0, 0, 2, 2, 0, 2, 2, 0, 1};

  EXPECT_EQ(greys(read(file({6, 2, 8, 1, 4, fourGreys, runs}))), (Rows{{0, 0, 100, 100, 0, 0}, {50, 50, 50, 100, 255, 0}}));
}

TEST(BmpFile, runLengthsOfFourBitsAlternate)
{
  // 5 pels of 1 2 1 2 1, then 3 0 1 one by one (2 bytes), end.
  Bytes const runs{5, 0x12, 0, 3, 0x30, 0x10, 0, 1};

  EXPECT_EQ(greys(read(file({8, 1, 4, 2, 4, fourGreys, runs}))), (Rows{{50, 100, 50, 100, 50, 255, 0, 50}}));
}

TEST(BmpFile, runsPastTheRowsEndAreCut)
{
  EXPECT_EQ(greys(read(file({2, 2, 8, 1, 4, fourGreys, {9, 1, 0, 0, 1, 2, 0, 1}}))), (Rows{{100, 0}, {50, 50}}));
}

TEST(BmpFile, runsThatSkipRowsLeaveTheFirstColour)
{
  // Skip 1 to the right and 2 rows up.
  EXPECT_EQ(greys(read(file({2, 3, 8, 1, 4, fourGreys, {0, 2, 1, 2, 1, 3, 0, 1}}))), (Rows{{0, 255}, {0, 0}, {0, 0}}));
}

TEST(BmpFile, faultsAreNamed)
{
  auto const error = [](Bmp const& bmp) { return read(file(bmp)).error; };
  EXPECT_EQ(error({16385, 1, 24, 0, 0, {}, {}}), "test: 16385 x 1 pels are too many, the limit is 16384 a side");
  EXPECT_EQ(error({1, -16385, 24, 0, 0, {}, {}}), "test: 1 x 16385 pels are too many, the limit is 16384 a side");
  EXPECT_EQ(error({1, INT32_MIN, 24, 0, 0, {}, {}}), "test: 1 x 2147483648 pels are too many, the limit is 16384 a side");
  EXPECT_EQ(error({-1, 1, 24, 0, 0, {}, {}}), "test: the file is damaged: the image has no pels");
  EXPECT_EQ(error({16384, 16384, 24, 0, 0, {}, {1, 2, 3, 4}}), "test: the file is cut off");
  EXPECT_EQ(error({16384, 16384, 8, 1, 4, fourGreys, {0, 1}}), "test: the file is cut off");
  EXPECT_EQ(error({1, 1, 64, 0, 0, {}, {}}), "test: unsupported: a BMP of 64 bits a pel");
  EXPECT_EQ(error({1, 1, 24, 4, 0, {}, {}}), "test: unsupported: a BMP with compression 4 at 24 bits a pel");
  EXPECT_EQ(error({1, 1, 4, 1, 4, fourGreys, {0, 1}}), "test: the file is damaged: run lengths of another depth");
  EXPECT_EQ(error({1, -1, 8, 1, 4, fourGreys, {0, 1}}), "test: the file is damaged: run lengths with rows from the top");
  EXPECT_EQ(error({1, 1, 8, 0, 0, {}, {0, 0, 0, 0}}), "test: the file is damaged: the palette is missing");
  EXPECT_EQ(error({1, 1, 32, 3, 0, {}, {1, 2, 3, 4}}), "test: the file is damaged: the colour masks are missing");
  EXPECT_EQ(error({1, 1, 32, 3, 0, word(5) + word(0) + word(0), {1, 2, 3, 4}}),
            "test: the file is damaged: a colour mask has gaps");
  Bmp odd{1, 1, 24, 0, 0, {}, {0, 0, 0, 0}};
  odd.headerSize = 41 + 100;
  EXPECT_EQ(error(odd), "test: unsupported: a BMP header of 141 bytes");
}

TEST(BmpFile, survivesDamage)
{
  EXPECT_EQ(surviveDamage(file({2, 2, 24, 0, 0, {}, {1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0}})), 0);
  EXPECT_EQ(surviveDamage(file({3, -1, 1, 0, 2, Bytes(fourColours.begin(), fourColours.begin() + 8), {96, 0, 0, 0}})), 0);
  EXPECT_EQ(surviveDamage(file({3, 1, 4, 0, 4, fourColours, {0x01, 0x10, 0, 0}})), 0);
  EXPECT_EQ(surviveDamage(file({1, 1, 32, 3, 0, word(255) + word(65280) + word(0xFF0000), {1, 2, 3, 0}})), 0);
  EXPECT_EQ(surviveDamage(file({2, 1, 16, 0, 0, {}, {1, 2, 3, 4}})), 0);
  EXPECT_EQ(surviveDamage(file({6, 2, 8, 1, 4, fourGreys, {3, 1, 0, 3, 2, 3, 0, 0, 0, 0, 0, 2, 2, 0, 2, 2, 0, 1}})), 0);
  // The last row is whole, and only the two marks behind it may be missing.
  EXPECT_EQ(surviveDamage(file({8, 1, 4, 2, 4, fourGreys, {5, 0x12, 0, 3, 0x30, 0x10, 0, 1}})), 1);
}
