#include "canvas/rle_buffer.h"
#include "canvas/tablet.h"

#include <gtest/gtest.h>

namespace {

std::vector<std::string> picture(ccRLEBuffer const& image)
{
  std::vector<std::string> rows;
  for (long y = 0; y < image.height(); ++y) {
    std::string row;
    for (long x = 0; x < image.width(); ++x) {
      unsigned char const v = image.getPel(ccPair<long>(x, y));
      row += v == 243 ? '_' : static_cast<char>('a' + v);
    }
    rows.push_back(row);
  }
  return rows;
}

char const* const kMap = "/.0+/0+./";  // two rows of three
constexpr long kStride = 4;

}  // namespace

TEST(Icon, digitsTakeTheirColourAndTheRestIsSeeThrough)
{
  EXPECT_EQ(picture(ccUITablet::makeIcon("/.0+/12./", {4, 5, 6})), (std::vector<std::string>{"_e_", "fg_"}));
}

TEST(Icon, digitsPastTheColoursTakeTheLast)
{
  EXPECT_EQ(picture(ccUITablet::makeIcon("/019/", {4, 5})), (std::vector<std::string>{"eff"}));
}

TEST(Icon, theFirstCharacterSeparatesRows)
{
  EXPECT_EQ(picture(ccUITablet::makeIcon("|0.|.0|", {1})), (std::vector<std::string>{"b_", "_b"}));
}

TEST(Icon, rowsAreWrittenInFull)
{
  ccRLEBuffer const image = ccUITablet::makeIcon("/0../.../", {1});
  for (long y = 0; y < 2; ++y) {
    long width = 0;
    for (unsigned char const* run = image.row(y); run[1] != 0; run += 2)
      width += run[1];
    EXPECT_EQ(width, 3);
  }
}

TEST(Icon, anEmptyMapIsANullPicture)
{
  EXPECT_TRUE(ccUITablet::makeIcon("", {1}).isNull());
  EXPECT_TRUE(ccUITablet::makeIcon("/", {1}).isNull());
  EXPECT_TRUE(ccUITablet::makeIcon(nullptr, {1}).isNull());
}

TEST(Icon, withoutColoursDigitsAreZero)
{
  EXPECT_EQ(picture(ccUITablet::makeIcon("/0./", {})), (std::vector<std::string>{"a_"}));
}

TEST(Icon, zeroIsDrawnAndTouchedPlusOnlyTouchedPointNeither)
{
  bool const expected[2][3] = {{false, true, true}, {true, true, false}};
  for (long y = 0; y < 2; ++y)
    for (long x = 0; x < 3; ++x)
      EXPECT_EQ(ccUITablet::iconTouched(kMap, ccPair<long>(x, y), kStride), expected[y][x]) << x << "," << y;
}

TEST(Icon, nothingIsTouchedOutside)
{
  for (ccPair<long> const& p : {ccPair<long>(-1, 1), ccPair<long>(3, 0), ccPair<long>(0, -1), ccPair<long>(0, 2),
                                ccPair<long>(1, 2), ccPair<long>(1, 1000000), ccPair<long>(4, 0)})
    EXPECT_FALSE(ccUITablet::iconTouched(kMap, p, kStride)) << p.x() << "," << p.y();
}

TEST(Icon, touchIsSafeWithHugeOffsetsAndBadStrides)
{
  long const most = std::numeric_limits<long>::max();
  EXPECT_FALSE(ccUITablet::iconTouched(kMap, ccPair<long>(0, most), kStride));
  EXPECT_FALSE(ccUITablet::iconTouched(kMap, ccPair<long>(most, most), most));
  EXPECT_FALSE(ccUITablet::iconTouched(kMap, ccPair<long>(0, 0), 1));
  EXPECT_FALSE(ccUITablet::iconTouched(kMap, ccPair<long>(0, 0), 0));
  EXPECT_FALSE(ccUITablet::iconTouched(nullptr, ccPair<long>(0, 0), kStride));
}

TEST(Icon, handlePictureIsTouchedWhereItIsNotAPoint)
{
  // An arrow of the shape handles; each character that isn't "." is touched.
  char const* const rows[] = {".0..000....", ".00000000..", ".000+++000.", "00000+++00.", "00+++++++00", "+++++++++00"};
  std::string map = "/";
  for (char const* row : rows)
    map += std::string(row) + "/";
  ccRLEBuffer const image = ccUITablet::makeIcon(map.c_str(), {0});
  EXPECT_EQ(image.width(), 11);
  EXPECT_EQ(image.height(), 6);
  for (long y = 0; y < 6; ++y)
    for (long x = 0; x < 11; ++x) {
      EXPECT_EQ(ccUITablet::iconTouched(map.c_str(), ccPair<long>(x, y), 12), rows[y][x] != '.');
      EXPECT_EQ(image.getPel(ccPair<long>(x, y)), rows[y][x] == '0' ? 0 : 243);
    }
}

TEST(Icon, pointIconIsTouchedWithinItsArms)
{
  for (long y = -6; y <= 6; ++y)
    for (long x = -6; x <= 6; ++x)
      EXPECT_EQ(ccUITablet::pointIconTouched(ccPair<long>(x, y)), std::abs(x) <= 4 && std::abs(y) <= 4);
}

TEST(Icon, runsComeAsTheyStandOrNotAtAll)
{
  // Two rows of at most 4 pels: a whole one, and one that ends after 2.
  std::vector<unsigned char> const runs{7, 3, 8, 1, 0, 0, 9, 2, 0, 0};
  ccRLEBuffer const image = ccRLEBuffer::fromRuns(runs, 4, 2);
  ASSERT_FALSE(image.isNull());
  unsigned char const expected[2][4] = {{7, 7, 7, 8}, {9, 9, 0, 0}};
  for (long y = 0; y < 2; ++y)
    for (long x = 0; x < 4; ++x)
      EXPECT_EQ(image.getPel(ccPair<long>(x, y)), expected[y][x]) << x << ' ' << y;
  for (std::size_t length = 0; length < runs.size(); ++length)
    EXPECT_TRUE(ccRLEBuffer::fromRuns(std::span(runs).first(length), 4, 2).isNull()) << length;
  EXPECT_TRUE(ccRLEBuffer::fromRuns(runs, 3, 2).isNull());  // a row too long
  EXPECT_TRUE(ccRLEBuffer::fromRuns(runs, 4, 1).isNull());  // bytes left over
  EXPECT_TRUE(ccRLEBuffer::fromRuns(runs, 4, 3).isNull());
  EXPECT_TRUE(ccRLEBuffer::fromRuns(runs, 0, 2).isNull());
  EXPECT_TRUE(ccRLEBuffer::fromRuns(runs, 4, 2000000000L).isNull());
}
