#include "acquisition/acq_image.h"

#include <gtest/gtest.h>

namespace {

ccPtrHandle<ccAcqImage> grey16(std::vector<unsigned short> const& pels, long bits)
{
  ccPelBuffer<unsigned short> b(static_cast<long>(pels.size()), 1);
  for (std::size_t i = 0; i < pels.size(); ++i)
    b.setPel(static_cast<long>(i), 0, pels[i]);
  return ccPtrHandle<ccAcqImage>(new ccAcqImage(b, bits, 5, 7));
}

}  // namespace

TEST(AcqImage, grey16ToGrey8ShiftsByTheBitsAboveEightAndSaturates)
{
  auto const image = grey16({0, 15, 16, 4095, 4096, 65535}, 12);

  ccPelBuffer<unsigned char> const b = image->getGrey8PelBuffer();

  int const expected[] = {0, 0, 1, 255, 255, 255};
  for (long x = 0; x < 6; ++x)
    EXPECT_EQ(b.getPel(x, 0), expected[x]) << x;
  EXPECT_EQ(image->tag(), 5);
  EXPECT_EQ(image->frameNumber(), 7u);
  EXPECT_EQ(image->intensityBits(), 12);
}

TEST(AcqImage, bitsOutside9To16CountAs16)
{
  EXPECT_EQ(grey16({1}, 8)->intensityBits(), 16);
  EXPECT_EQ(grey16({1}, 17)->intensityBits(), 16);
  EXPECT_EQ(grey16({1}, 9)->intensityBits(), 9);
}

TEST(AcqImage, colourToGreyIsRedTwoGreenBlueOverFour)
{
  ccPelBuffer<ccPackedRGB32Pel> b(2, 1);
  b.setPel(0, 0, ccPackedRGB32Pel(255, 255, 255));
  b.setPel(1, 0, ccPackedRGB32Pel(10, 21, 3));  // (10 + 42 + 3) >> 2 = 13
  ccPtrHandle<ccAcqImage> const image(new ccAcqImage(b));

  EXPECT_EQ(image->getGrey8PelBuffer().getPel(0, 0), 255);
  EXPECT_EQ(image->getGrey8PelBuffer().getPel(1, 0), 13);
  EXPECT_TRUE(image->isColor());
}

TEST(AcqImage, colourFormatsCutBitsAndComeBackWithLowBitsZero)
{
  ccPelBuffer<ccPackedRGB32Pel> b(1, 1);
  b.setPel(0, 0, ccPackedRGB32Pel(0xFF, 0x83, 0x47));
  ccPtrHandle<ccAcqImage> const image(new ccAcqImage(b));

  ccPackedRGB16Pel const cut = image->getPackedRGB16PelBuffer().getPel(0, 0);
  EXPECT_EQ(cut.word(), 0xFC08);  // 11111 100000 01000

  ccPelBuffer<ccPackedRGB16Pel> c(1, 1);
  c.setPel(0, 0, cut);
  ccPtrHandle<ccAcqImage> const back(new ccAcqImage(c));
  EXPECT_EQ(back->getPackedRGB32PelBuffer().getPel(0, 0).word(), 0x00F88040u);
}

TEST(AcqImage, conversionTable)
{
  ceImageFormat const g8 = ceImageFormatGrey8, g16 = ceImageFormatGrey16, c16 = ceImageFormatRGB16,
                      c32 = ceImageFormatRGB32;
  struct {
    ccPtrHandle<ccAcqImage> image;
    bool to[4];
  } const rows[] = {
      {new ccAcqImage(ccPelBuffer<unsigned char>(2, 2)), {true, false, false, false}},
      {new ccAcqImage(ccPelBuffer<unsigned short>(2, 2)), {true, true, false, false}},
      {new ccAcqImage(ccPelBuffer<ccPackedRGB16Pel>(2, 2)), {true, false, true, true}},
      {new ccAcqImage(ccPelBuffer<ccPackedRGB32Pel>(2, 2)), {true, false, true, true}},
      {new ccAcqImage(c32), {false, false, false, false}},
  };
  for (auto const& row : rows) {
    ceImageFormat const to[4] = {g8, g16, c16, c32};
    for (int i = 0; i < 4; ++i)
      EXPECT_EQ(row.image->canConvert(to[i]), row.to[i]) << row.image->format() << " to " << to[i];
    EXPECT_FALSE(row.image->canConvert(ceImageFormatNone));
    EXPECT_EQ(row.image->getGrey8PelBuffer().isBound(), row.to[0]);
    EXPECT_EQ(row.image->getGrey16PelBuffer().isBound(), row.to[1]);
    EXPECT_EQ(row.image->getPackedRGB16PelBuffer().isBound(), row.to[2]);
    EXPECT_EQ(row.image->getPackedRGB32PelBuffer().isBound(), row.to[3]);
  }
}

TEST(AcqImage, theSameFormatSharesPelsInAViewOfItsOwn)
{
  ccPelBuffer<unsigned char> b(4, 4);
  b.setPel(2, 3, 77);
  ccPtrHandle<ccAcqImage> const image(new ccAcqImage(b));

  ccPelBuffer<unsigned char> view = image->getGrey8PelBuffer();
  view.offset(ccPair<long>(100, 100));
  view.clientFromImageXform(ccXform<2>(2, 2, ccVector<2>(1, 1)));

  EXPECT_EQ(view.pointToOffset(), b.pointToOffset());
  EXPECT_EQ(image->getGrey8PelBuffer().offset(), ccPair<long>(0, 0));
  EXPECT_EQ(image->getGrey8PelBuffer().imageFromClientXform(), ccXform<2>::I);
}

TEST(AcqImage, aConversionIsMadeOnce)
{
  auto const image = grey16({100, 200}, 16);

  EXPECT_EQ(image->getGrey8PelBuffer().pointToOffset(), image->getGrey8PelBuffer().pointToOffset());
}
