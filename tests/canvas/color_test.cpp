#include "canvas/color.h"

#include "foundation/archive.h"

#include <gtest/gtest.h>

namespace {

struct Stock {
  char const* name;
  ccColor color;
  int index, r, g, b;
};

std::vector<Stock> stockColors()
{
  return {{"black", ccColor::blackColor(), 0, 0, 0, 0},
          {"dkRed", ccColor::dkRedColor(), 1, 128, 0, 0},
          {"dkGreen", ccColor::dkGreenColor(), 2, 0, 128, 0},
          {"ltGrey", ccColor::ltGreyColor(), 7, 192, 192, 192},
          {"pass", ccColor::passColor(), 243, 243, 243, 243},
          {"purple", ccColor::purpleColor(), 244, 160, 32, 240},
          {"orange", ccColor::orangeColor(), 245, 255, 165, 0},
          {"grey", ccColor::greyColor(), 247, 160, 160, 164},
          {"dkGrey", ccColor::dkGreyColor(), 248, 128, 128, 128},
          {"red", ccColor::redColor(), 249, 255, 0, 0},
          {"green", ccColor::greenColor(), 250, 0, 255, 0},
          {"yellow", ccColor::yellowColor(), 251, 255, 255, 0},
          {"blue", ccColor::blueColor(), 252, 0, 0, 255},
          {"magenta", ccColor::magentaColor(), 253, 255, 0, 255},
          {"cyan", ccColor::cyanColor(), 254, 0, 255, 255},
          {"white", ccColor::whiteColor(), 255, 255, 255, 255}};
}

struct Entry {
  int index, r, g, b;
};

// The default palette but for its grey ramp and its stock colours.
constexpr Entry kOtherEntries[] = {{3, 128, 128, 0}, {4, 0, 0, 128},     {5, 128, 0, 128},   {6, 0, 128, 128},    {8, 192, 220, 192},
                                   {9, 166, 202, 240}, {241, 255, 255, 255}, {242, 255, 255, 255}, {246, 255, 251, 240}};

unsigned char byte(int v)
{
  return static_cast<unsigned char>(v);
}

}  // namespace

TEST(ccRGB, isFourBytesWithTheColoursFirst)
{
  EXPECT_EQ(sizeof(ccRGB), 4u);
  ccRGB const c(1, 2, 3);
  EXPECT_EQ(c.r, 1);
  EXPECT_EQ(c.g, 2);
  EXPECT_EQ(c.b, 3);
  EXPECT_EQ(c.pad, 0);
}

TEST(ccRGB, packsFiveFiveFive)
{
  EXPECT_EQ(ccRGB(255, 0, 0).rgb15(), 0x7C00);
  EXPECT_EQ(ccRGB(0, 255, 0).rgb15(), 0x03E0);
  EXPECT_EQ(ccRGB(0, 0, 255).rgb15(), 0x001F);
  EXPECT_EQ(ccRGB(7, 7, 7).rgb15(), 0);
  EXPECT_EQ(ccRGB(8, 16, 24).rgb15(), 1 << 10 | 2 << 5 | 3);
}

TEST(ccRGB, packsFiveSixFive)
{
  EXPECT_EQ(ccRGB(255, 0, 0).rgb16(), 0xF800);
  EXPECT_EQ(ccRGB(0, 255, 0).rgb16(), 0x07E0);
  EXPECT_EQ(ccRGB(0, 0, 255).rgb16(), 0x001F);
  EXPECT_EQ(ccRGB(7, 3, 7).rgb16(), 0);
  EXPECT_EQ(ccRGB(8, 8, 24).rgb16(), 1 << 11 | 2 << 5 | 3);
}

TEST(ccRGB, comparesWithoutItsPad)
{
  ccRGB a(1, 2, 3);
  ccRGB b(1, 2, 3);
  b.pad = 9;
  EXPECT_TRUE(a == b);
  EXPECT_TRUE(a != ccRGB(1, 2, 4));
}

TEST(ccColor, isSixBytes)
{
  EXPECT_EQ(sizeof(ccColor), 6u);
}

TEST(ccColor, defaultIsStockBlack)
{
  EXPECT_EQ(ccColor().flags(), 7);
  EXPECT_EQ(ccColor(), ccColor::blackColor());
}

TEST(ccColor, stockColoursHaveTheirIndexAndRGB)
{
  for (Stock const& s : stockColors()) {
    SCOPED_TRACE(s.name);
    EXPECT_EQ(s.color.flags(), s.color.isPass() ? 15 : 7);
    EXPECT_EQ(s.color.index(), s.index);
    EXPECT_EQ(s.color.toRGB(), ccRGB(byte(s.r), byte(s.g), byte(s.b)));
    EXPECT_EQ(s.color.rgb(), static_cast<unsigned long>(s.r * 65536 + s.g * 256 + s.b));
    EXPECT_EQ(s.color.bgr(), static_cast<unsigned long>(s.b * 65536 + s.g * 256 + s.r));
    EXPECT_EQ(s.color.isPass(), std::string(s.name) == "pass");
  }
}

TEST(ccColor, passColourIsTheSeeThroughValueOfEveryPelType)
{
  EXPECT_EQ(ccColor::passColor().index(), 243);
  EXPECT_EQ(ccColor::passColor().rgb16(), 63390);
  EXPECT_EQ(ccColor::passColor().rgb15(), 31710);
  EXPECT_EQ(ccColor::passColor().rgb(), 0xF3F3F3u);
}

TEST(ccColor, constructorsSayWhatIsGiven)
{
  EXPECT_EQ(ccColor(static_cast<unsigned char>(7)).flags(), ccColor::kIndex);
  EXPECT_EQ(ccColor(1, 2, 3).flags(), ccColor::kRGB);
  EXPECT_EQ(ccColor(ccRGB(1, 2, 3)).flags(), ccColor::kRGB);
  EXPECT_EQ(ccColor::paletteEntry(9, ccRGB(1, 2, 3)).flags(), ccColor::kRGB | ccColor::kIndex);
}

TEST(ccColor, indexOnlyReadsTheDefaultPalette)
{
  for (Stock const& s : stockColors())
    EXPECT_EQ(ccColor(byte(s.index)).toRGB(), ccRGB(byte(s.r), byte(s.g), byte(s.b))) << s.name;
  for (Entry const& e : kOtherEntries)
    EXPECT_EQ(ccColor(byte(e.index)).toRGB(), ccRGB(byte(e.r), byte(e.g), byte(e.b))) << e.index;
  for (int i = 10; i <= 240; ++i)
    EXPECT_EQ(ccColor(byte(i)).rgb(), static_cast<unsigned long>(i * 0x010101)) << i;
  EXPECT_EQ(ccColor(static_cast<unsigned char>(252)).bgr(), 0xFF0000u);
}

TEST(ccColor, indexOfRGBIsTheNearestSystemOrReservedColour)
{
  EXPECT_EQ(ccColor(130, 2, 1).index(), 1);
  EXPECT_EQ(ccColor(200, 222, 195).index(), 8);
  EXPECT_EQ(ccColor(250, 160, 10).index(), 245);
  EXPECT_EQ(ccColor(100, 100, 100).index(), 248);  // not 100 of the grey ramp
  EXPECT_EQ(ccColor(160, 160, 164).index(), 247);
}

TEST(ccColor, indexOfRGBIsNeverThePassColours)
{
  // (243,243,243): 192 off white is 12*12*3 = 432, the ivory entry (255,251,240) 144 + 64 + 9 = 217.
  EXPECT_EQ(ccColor(243, 243, 243).index(), 246);
}

TEST(ccColor, indexOfWhiteIsTheLowestOfTheEqualEntries)
{
  EXPECT_EQ(ccColor(255, 255, 255).index(), 241);
}

TEST(ccColor, comparesByRGBThenByIndex)
{
  EXPECT_EQ(ccColor(255, 0, 0), ccColor::redColor());
  EXPECT_EQ(ccColor(static_cast<unsigned char>(249)), ccColor::redColor());
  EXPECT_NE(ccColor(255, 0, 0), ccColor(static_cast<unsigned char>(249)));  // nothing in common
  EXPECT_NE(ccColor(255, 0, 1), ccColor::redColor());
  EXPECT_NE(ccColor(static_cast<unsigned char>(1)), ccColor(static_cast<unsigned char>(2)));
  // White stands at three places; by RGB they are one colour.
  EXPECT_EQ(ccColor::paletteEntry(241, ccRGB(255, 255, 255)), ccColor::whiteColor());
}

TEST(ccColor, passColourEqualsOnlyPassColours)
{
  EXPECT_NE(ccColor(243, 243, 243), ccColor::passColor());
  EXPECT_NE(ccColor(static_cast<unsigned char>(243)), ccColor::passColor());
  EXPECT_EQ(ccColor::passColor(), ccColor::passColor());
}

TEST(ccColor, archiveFormIsVersionFlagsIndexRGB)
{
  ccMemoryArchive out;
  ccColor orange = ccColor::orangeColor();
  out || orange;
  EXPECT_EQ(out.data(), (std::vector<unsigned char>{0, 0, 0, 0, 7, 245, 255, 165, 0}));

  ccMemoryArchive in(out.data());
  ccColor back;
  in || back;
  EXPECT_EQ(back.flags(), 7);
  EXPECT_EQ(back, orange);
  EXPECT_EQ(back.index(), 245);
}

TEST(ccRGB, archiveFormIsVersionRGB)
{
  ccMemoryArchive out;
  ccRGB c(1, 2, 3);
  c.pad = 77;
  out || c;
  EXPECT_EQ(out.data(), (std::vector<unsigned char>{0, 0, 0, 0, 1, 2, 3}));

  ccMemoryArchive in(out.data());
  ccRGB back;
  in || back;
  EXPECT_EQ(back, c);
}

TEST(ccColor, anotherArchiveVersionIsRefused)
{
  for (std::size_t place = 0; place < 4; ++place) {
    std::vector<unsigned char> bytes{0, 0, 0, 0, 7, 245, 255, 165, 0};
    bytes[place] = 1;
    ccMemoryArchive in(bytes);
    ccColor c;
    EXPECT_THROW(in || c, ccArchive::UnknownVersion);
    ccMemoryArchive in2(bytes);
    ccRGB rgb;
    EXPECT_THROW(in2 || rgb, ccArchive::UnknownVersion);
  }
}
