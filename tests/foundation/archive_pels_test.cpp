#include "archive_support.h"
#include "foundation/pel_buffer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

namespace {

char const* const greyBytes = "00 00 00 00 01 "           // version, bound
                              "02 00 00 00 03 00 00 00 "  // width, height
                              "0a 00 00 00 ec ff ff ff "  // offset 10, -20
                              "01 02 03 04 05 06";

ccPelBuffer<unsigned char> greyView()
{
  // The window is the right part of a larger root, so that rows are not contiguous.
  ccPelBuffer<unsigned char> whole(5, 3);
  unsigned char next = 1;
  for (long y = 0; y < 3; ++y)
    for (long x = 3; x < 5; ++x)
      whole.setPel(x, y, next++);
  whole.window(3, 0, 2, 3);
  whole.offset(ccPair<long>(10, -20));
  return whole;
}

}  // namespace

TEST(PelArchive, movesTheWindowTopDown)
{
  EXPECT_EQ(written(greyView()), greyBytes);
  EXPECT_EQ(written(ccPelBuffer_const<unsigned char>(greyView())), greyBytes);
}

TEST(PelArchive, readsIntoARootOfItsOwnWithTheIdentity)
{
  auto buffer = greyView();
  buffer.clientFromImageXform(ccXform<2>(2, 2, ccVector<2>()));
  auto const root = buffer.root();
  ccMemoryArchive reader(bytesOf(greyBytes));

  reader || buffer;

  EXPECT_EQ(reader.remaining(), 0u);
  EXPECT_EQ(buffer.size(), ccPair<long>(2, 3));
  EXPECT_EQ(buffer.offset(), ccPair<long>(10, -20));
  EXPECT_EQ(buffer.getPel(10, -20), 1);
  EXPECT_EQ(buffer.getPel(11, -18), 6);
  EXPECT_FALSE(buffer.root() == root);
  EXPECT_EQ(buffer.imageFromClientXform(), ccXform<2>::I);
  EXPECT_EQ(readBack<ccPelBuffer_const<unsigned char>>(greyBytes).getPel(11, -20), 2);
}

TEST(PelArchive, unboundBuffersTakeFiveBytes)
{
  EXPECT_EQ(written(ccPelBuffer<unsigned short>()), "00 00 00 00 00");
  EXPECT_FALSE(readBack<ccPelBuffer<unsigned short>>("00 00 00 00 00").isBound());
}

TEST(PelArchive, widerPelsAreLittleEndianWords)
{
  std::string const head = "00 00 00 00 01 02 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 ";
  ccPelBuffer<unsigned short> grey(2, 1);
  grey.setPel(0, 0, 0x0102);
  grey.setPel(1, 0, 0x0304);
  ccPelBuffer<ccPackedRGB16Pel> rgb16(2, 1);
  rgb16.setPel(1, 0, ccPackedRGB16Pel(255, 0, 0));
  ccPelBuffer<ccPackedRGB32Pel> rgb32(2, 1);
  rgb32.setPel(1, 0, ccPackedRGB32Pel(1, 2, 3));

  EXPECT_EQ(written(grey), head + "02 01 04 03");
  EXPECT_EQ(written(rgb16), head + "00 00 00 f8");
  EXPECT_EQ(written(rgb32), head + "00 00 00 00 03 02 01 00");
  EXPECT_EQ(readBack<ccPelBuffer<unsigned short>>(head + "02 01 04 03").getPel(1, 0), 0x0304);
  EXPECT_EQ(readBack<ccPelBuffer<ccPackedRGB16Pel>>(head + "00 00 00 f8").getPel(1, 0).red(), 248);
  EXPECT_EQ(readBack<ccPelBuffer<ccPackedRGB32Pel>>(head + "00 00 00 00 03 02 01 00").getPel(1, 0).blue(), 3);
}

TEST(PelArchive, refusesSizesAndOffsetsOutsideItsLimits)
{
  struct {
    char const* name;
    char const* bytes;
  } const tooLarge[] = {{"width", "01 40 00 00 01 00 00 00"},
                        {"height", "01 00 00 00 01 40 00 00"},
                        {"64 MiB", "00 40 00 00 01 10 00 00"}};
  for (auto const& c : tooLarge)
    EXPECT_THROW(readBack<ccPelBuffer<unsigned char>>(std::string("00 00 00 00 01 ") + c.bytes + "00 00 00 00 00 00 00 00"),
                 ccArchive::TooLarge)
        << c.name;
  struct {
    char const* name;
    char const* bytes;
  } const bad[] = {{"no width", "00 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00"},
                   {"negative height", "01 00 00 00 ff ff ff ff 00 00 00 00 00 00 00 00"},
                   {"offset x", "02 00 00 00 01 00 00 00 fe ff ff 7f 00 00 00 00"},
                   {"offset y", "01 00 00 00 01 00 00 00 00 00 00 00 ff ff ff 7f"}};
  for (auto const& c : bad)
    EXPECT_THROW(readBack<ccPelBuffer<unsigned char>>(std::string("00 00 00 00 01 ") + c.bytes), ccArchive::BadValue)
        << c.name;
}

TEST(PelArchive, refusesToWriteMoreThanItWouldRead)
{
  EXPECT_THROW(written(ccPelBuffer<unsigned char>(16385, 1)), ccArchive::TooLarge);
  EXPECT_THROW(written(ccPelBuffer<unsigned char>(1, 16385)), ccArchive::TooLarge);
  EXPECT_THROW(written(ccPelBuffer<ccPackedRGB32Pel>(4097, 4096)), ccArchive::TooLarge);
  ccPelBuffer<unsigned char> far(2, 1);
  far.offset(ccPair<long>(2147483646L, 0));
  EXPECT_THROW(written(far), ccArchive::BadValue);
  far.offset(ccPair<long>(2147483645L, 0));
  EXPECT_EQ(written(far).size(), 3 * 23u - 1);
}

TEST(PelArchive, anotherVersionIsUnknown)
{
  try {
    readBack<ccPelBuffer<unsigned char>>("01 00 00 00 00");
    FAIL() << "it must throw";
  } catch (ccArchive::UnknownVersion const& e) {
    EXPECT_EQ(e.message(), "ccPelBuffer");
  }
}

// One stream of every kind of value, cut and disturbed.
namespace {

enum Kind : std::int32_t { kindA = 1 };

struct Everything {
  bool flag = true;
  unsigned char byte = 7;
  unsigned short word = 300;
  long number = -5;
  Kind kind = kindA;
  double real = 1.5;
  std::string text = "text";
  std::vector<ccPair<long>> points = {{1, 2}, {3, 4}};
  ccPelBuffer<unsigned char> pels = greyView();
  ccPersistent* object = nullptr;

  void move(ccArchive& ar)
  {
    ar || flag || byte || word || number || kind || real || text || points || pels;
    ar.object(object);
  }
};

std::vector<unsigned char> everythingWritten()
{
  ccArchive::BadValue thrown("why");
  Everything all;
  all.object = &thrown;
  ccMemoryArchive ar;
  all.move(ar);
  return ar.data();
}

}  // namespace

TEST(HostileArchive, everyTruncationEndsTheData)
{
  auto const whole = everythingWritten();
  for (std::size_t n = 0; n < whole.size(); ++n) {
    ccMemoryArchive ar(std::vector<unsigned char>(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(n)));
    Everything read;
    EXPECT_THROW(read.move(ar), ccArchive::EndOfData) << n;
  }
  ccMemoryArchive ar(whole);
  Everything read;
  read.move(ar);
  std::unique_ptr<ccPersistent> const owned(read.object);
  EXPECT_EQ(ar.remaining(), 0u);
  EXPECT_EQ(read.points[1], ccPair<long>(3, 4));
  EXPECT_EQ(read.pels.getPel(11, -18), 6);
  EXPECT_STREQ(read.object->className(), "ccArchive::BadValue");
}

TEST(HostileArchive, everyFlippedBitIsAnExceptionOrAValue)
{
  auto const whole = everythingWritten();
  int refused = 0;
  for (std::size_t bit = 0; bit < 8 * whole.size(); ++bit) {
    auto bytes = whole;
    bytes[bit / 8] = static_cast<unsigned char>(bytes[bit / 8] ^ (1 << bit % 8));
    ccMemoryArchive ar(bytes);
    Everything read;
    try {
      read.move(ar);
    } catch (ccException const& e) {
      long const number = e.errorNumber();
      EXPECT_TRUE(number >= 0x10000110 && number <= 0x10000114) << e.what() << " at bit " << bit;
      ++refused;
      continue;
    }
    std::unique_ptr<ccPersistent> const owned(read.object);
    EXPECT_LE(read.text.size(), 65535u);
    EXPECT_LE(read.pels.width() * read.pels.height(), 64L << 20);
    if (read.pels.isBound()) {
      EXPECT_NO_THROW(read.pels.imageFromClientXform());
    }
  }
  // At least the three version bytes, the name and the high bytes of the lengths cannot pass.
  EXPECT_GT(refused, 8 * (3 + 19 + 4));
}
