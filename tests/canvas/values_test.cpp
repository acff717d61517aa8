#include "canvas/bitmap.h"
#include "canvas/format.h"
#include "canvas/graphic_props.h"
#include "canvas/rle_buffer.h"
#include "canvas/ui_error.h"

#include "foundation/archive.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace {

std::vector<unsigned char> rowBytes(ccRLEBuffer const& image, long y)
{
  std::vector<unsigned char> bytes;
  unsigned char const* run = image.row(y);
  for (; run[1] != 0; run += 2) {
    bytes.push_back(run[0]);
    bytes.push_back(run[1]);
  }
  return bytes;
}

}  // namespace

TEST(ccGraphicProps, defaults)
{
  ccGraphicProps const p;
  EXPECT_EQ(p.penColor(), ccColor::blackColor());
  EXPECT_EQ(p.penWidth(), 1);
  EXPECT_EQ(p.penStyle(), ceSolidPen);
  EXPECT_FALSE(p.fill());
  EXPECT_EQ(p.joinStyle(), 0);
  EXPECT_EQ(p.capStyle(), 0);
  EXPECT_FALSE(p.showDirection());
  EXPECT_FALSE(p.showVertices());
}

TEST(ccGraphicProps, penStylesAreNumbered)
{
  EXPECT_EQ(ceSolidPen, 0);
  EXPECT_EQ(ceDashPen, 1);
  EXPECT_EQ(ceDotPen, 2);
  EXPECT_EQ(ceDashDotPen, 3);
  EXPECT_EQ(ceDashDotDotPen, 4);
}

TEST(ccGraphicProps, constructorTakesColourWidthStyleFill)
{
  ccGraphicProps const p(ccColor::redColor(), 5, ceDotPen, true);
  EXPECT_EQ(p.penColor(), ccColor::redColor());
  EXPECT_EQ(p.penWidth(), 5);
  EXPECT_EQ(p.penStyle(), ceDotPen);
  EXPECT_TRUE(p.fill());
}

TEST(ccGraphicProps, everySetterMarksAChange)
{
  ccGraphicProps p;
  std::uint32_t changes = p.changeCount();
  auto const changed = [&] { return p.changeCount() == ++changes; };
  p.penColor(ccColor::blueColor());
  EXPECT_TRUE(changed());
  p.penWidth(3);
  EXPECT_TRUE(changed());
  p.penStyle(ceDashPen);
  EXPECT_TRUE(changed());
  p.fill(true);
  EXPECT_TRUE(changed());
  p.joinStyle(1);
  EXPECT_TRUE(changed());
  p.capStyle(2);
  EXPECT_TRUE(changed());
  p.showDirection(true);
  EXPECT_TRUE(changed());
  p.showVertices(true);
  EXPECT_TRUE(changed());
}

TEST(ccGraphicProps, archiveFormIsVersionByteThenFieldsInOrder)
{
  ccGraphicProps p(ccColor::redColor(), 3, ceDashDotPen, true);
  p.joinStyle(1);
  p.capStyle(2);
  p.showVertices(true);
  ccMemoryArchive out;
  p.dispatchSerialize(out);
  EXPECT_EQ(out.data(), (std::vector<unsigned char>{0,                             // version
                                                    0, 0, 0, 0, 7, 249, 255, 0, 0,  // colour
                                                    3, 0, 0, 0,                    // width
                                                    3, 0, 0, 0,                    // style
                                                    1,                             // fill
                                                    1, 0, 0, 0,                    // join
                                                    2, 0, 0, 0,                    // cap
                                                    0, 1}));                       // direction, vertices

  ccMemoryArchive in(out.data());
  ccGraphicProps back;
  back.dispatchSerialize(in);
  EXPECT_TRUE(back == p);
}

TEST(ccGraphicProps, anotherVersionIsRefused)
{
  ccGraphicProps p;
  ccMemoryArchive out;
  p.dispatchSerialize(out);
  std::vector<unsigned char> bytes = out.data();
  bytes[0] = 1;
  ccMemoryArchive in(bytes);
  EXPECT_THROW(p.dispatchSerialize(in), ccArchive::UnknownVersion);
}

TEST(ccGraphicProps, canBeMadeByName)
{
  std::unique_ptr<ccPersistent> const made(cc_Instantiator::make("ccGraphicProps"));
  ASSERT_TRUE(made);
  EXPECT_TRUE(dynamic_cast<ccGraphicProps*>(made.get()));
  EXPECT_STREQ(made->className(), "ccGraphicProps");
}

TEST(ccUIFormat, defaultIsTheDefaultFontAtTopLeft)
{
  ccUIFormat const f;
  EXPECT_EQ(ccUIFormat::gDefaultFontId(), -1);
  EXPECT_EQ(f.fontId(), -1);
  EXPECT_EQ(f.alignment(), ccUIFormat::topLeft);
  EXPECT_EQ(ccUIFormat(ccUIFormat::centerRight).alignment(), 5);
}

TEST(ccUIFormat, takesTheDefaultFontOfTheMomentItIsMade)
{
  ccUIFormat const before;
  ccUIFormat::gDefaultFontId(4);
  EXPECT_EQ(ccUIFormat().fontId(), 4);
  EXPECT_EQ(ccUIFormat(ccUIFormat::center).fontId(), 4);
  EXPECT_EQ(before.fontId(), -1);
  ccUIFormat::gDefaultFontId(-1);
}

TEST(ccUIFormat, alignRectMovesByHalfAndWholeSides)
{
  // A rectangle 15 by 9: half sides are 7 and 4.
  ccUIRect const r(100, 50, 15, 9);
  struct {
    ccUIFormat::Alignment alignment;
    long x, y;
  } const cases[] = {{ccUIFormat::topLeft, 100, 50},     {ccUIFormat::topCenter, 93, 50},
                     {ccUIFormat::topRight, 85, 50},     {ccUIFormat::centerLeft, 100, 46},
                     {ccUIFormat::center, 93, 46},       {ccUIFormat::centerRight, 85, 46},
                     {ccUIFormat::bottomLeft, 100, 41},  {ccUIFormat::bottomCenter, 93, 41},
                     {ccUIFormat::bottomRight, 85, 41}};
  int number = 0;
  for (auto const& c : cases) {
    EXPECT_EQ(c.alignment, number++);
    EXPECT_EQ(ccUIFormat(c.alignment).alignRect(r), ccUIRect(c.x, c.y, 15, 9)) << c.alignment;
  }
}

TEST(ccUIFormat, anUnknownAlignmentIsTopLeft)
{
  ccUIRect const r(100, 50, 15, 9);
  EXPECT_EQ(ccUIFormat(static_cast<ccUIFormat::Alignment>(9)).alignRect(r), r);
  EXPECT_EQ(ccUIFormat(static_cast<ccUIFormat::Alignment>(-1)).alignRect(r), r);
}

TEST(ccRLEBuffer, defaultIsNull)
{
  ccRLEBuffer const image;
  EXPECT_TRUE(image.isNull());
  EXPECT_EQ(image.width(), 0);
  EXPECT_EQ(image.height(), 0);
  EXPECT_EQ(image.getPel(ccPair<long>(0, 0)), 0);
  EXPECT_EQ(image.row(0)[1], 0);
}

TEST(ccRLEBuffer, nothingToEncodeIsNull)
{
  unsigned char const pel = 1;
  EXPECT_TRUE(ccRLEBuffer::fromPels(&pel, 0, 1, 1).isNull());
  EXPECT_TRUE(ccRLEBuffer::fromPels(&pel, 1, -1, 1).isNull());
  EXPECT_TRUE(ccRLEBuffer::fromPels(nullptr, 1, 1, 1).isNull());
}

TEST(ccRLEBuffer, rowsArePairsEndedByACountOfZero)
{
  unsigned char const pels[] = {5, 5, 7, 99, 0, 0, 0, 99};
  ccRLEBuffer const image = ccRLEBuffer::fromPels(pels, 3, 2, 4);
  EXPECT_EQ(rowBytes(image, 0), (std::vector<unsigned char>{5, 2, 7, 1}));
  EXPECT_EQ(rowBytes(image, 1), (std::vector<unsigned char>{0, 3}));
  EXPECT_TRUE(rowBytes(image, 2).empty());
  EXPECT_TRUE(rowBytes(image, -1).empty());
}

TEST(ccRLEBuffer, runsOver255AreSplit)
{
  std::vector<unsigned char> pels(600, 9);
  ccRLEBuffer const image = ccRLEBuffer::fromPels(pels.data(), 600, 1, 600);
  EXPECT_EQ(rowBytes(image, 0), (std::vector<unsigned char>{9, 255, 9, 255, 9, 90}));
  EXPECT_EQ(image.getPel(ccPair<long>(599, 0)), 9);
}

TEST(ccRLEBuffer, getPelGivesBackEveryPelAndZeroOutside)
{
  std::mt19937 random(3);
  for (int run = 0; run < 30; ++run) {
    long const w = 1 + static_cast<long>(random() % 300);
    long const h = 1 + static_cast<long>(random() % 5);
    std::vector<unsigned char> pels(static_cast<std::size_t>(w * h));
    unsigned char value = 0;
    for (unsigned char& p : pels) {
      if (random() % 8 == 0)
        value = static_cast<unsigned char>(random());
      p = value;
    }
    ccRLEBuffer const image = ccRLEBuffer::fromPels(pels.data(), w, h, w);
    for (long y = 0; y < h; ++y)
      for (long x = 0; x < w; ++x)
        ASSERT_EQ(image.getPel(ccPair<long>(x, y)), pels[static_cast<std::size_t>(y * w + x)]);
    EXPECT_EQ(image.getPel(ccPair<long>(-1, 0)), 0);
    EXPECT_EQ(image.getPel(ccPair<long>(w, 0)), 0);
    EXPECT_EQ(image.getPel(ccPair<long>(0, -1)), 0);
    EXPECT_EQ(image.getPel(ccPair<long>(0, h)), 0);
  }
}

TEST(ccRLEBuffer, copiesShareTheirRows)
{
  unsigned char const pel = 1;
  ccRLEBuffer const image = ccRLEBuffer::fromPels(&pel, 1, 1, 1);
  ccRLEBuffer const copy = image;
  EXPECT_EQ(copy.row(0), image.row(0));
}

TEST(ccUIBitmap, keepsWhatItIsGiven)
{
  unsigned char const pel = 1;
  ccUIBitmap const bitmap(ccRLEBuffer::fromPels(&pel, 1, 1, 1), {4, 5}, true, 243);
  EXPECT_EQ(bitmap.rleBuffer().getPel(ccPair<long>(0, 0)), 1);
  EXPECT_EQ(bitmap.colorMap(), (std::vector<unsigned char>{4, 5}));
  EXPECT_TRUE(bitmap.isTransparent());
  EXPECT_EQ(bitmap.transparentIndex(), 243);
  EXPECT_TRUE(ccUIBitmap().rleBuffer().isNull());
  EXPECT_FALSE(ccUIBitmap().isTransparent());
}

TEST(ccUIError, classesAreNumberedInOrder)
{
  struct {
    char const* name;
    long number;
  } const cases[] = {{"ccUIError::BadKeyValue", 0x10002B20},         {"ccUIError::BadParams", 0x10002B21},
                     {"ccUIError::InitFailed", 0x10002B22},          {"ccUIError::InvalidColorMapSize", 0x10002B23},
                     {"ccUIError::NotAvailable", 0x10002B24},        {"ccUIError::NotEnabled", 0x10002B25},
                     {"ccUIError::NotImplemented", 0x10002B26}};
  for (auto const& c : cases) {
    std::unique_ptr<ccPersistent> const made(cc_Instantiator::make(c.name));
    ASSERT_TRUE(made) << c.name;
    auto const* const error = dynamic_cast<ccUIError::Errors*>(made.get());
    ASSERT_TRUE(error) << c.name;
    EXPECT_EQ(error->errorNumber(), c.number) << c.name;
    EXPECT_STREQ(error->className(), c.name);
    EXPECT_EQ(error->message(), "");
  }
}

TEST(ccUIError, isCaughtAsFamilyAndAsException)
{
  EXPECT_THROW(throw ccUIError::BadParams(), ccUIError::Errors);
  EXPECT_THROW(throw ccUIError::NotEnabled(), ccException);
}

TEST(ccUIError, suicideAndRethrowThrowsItsOwnClass)
{
  EXPECT_THROW((new ccUIError::InvalidColorMapSize())->suicideAndRethrow(), ccUIError::InvalidColorMapSize);
}

TEST(ccUIError, archiveFormIsOneByteForEachLevel)
{
  ccUIError::NotAvailable error;
  ccMemoryArchive out;
  error.dispatchSerialize(out);
  EXPECT_EQ(out.data(), (std::vector<unsigned char>{0, 0, 0}));  // NotAvailable, Errors, ccException
}
