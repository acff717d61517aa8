#include "apps/common/image_file.h"
#include "tests/apps/file_kit.h"

#include <gtest/gtest.h>

#include <cstdio>

#include <jpeglib.h>

namespace {

struct Options {
  int channels = 3;
  J_COLOR_SPACE space = JCS_RGB;
  bool progressive = false;
  bool arithmetic = false;
};

// A smooth slope: grey, or red to the right and green down.
Bytes encodeJpeg(unsigned width, unsigned height, Options const& options)
{
  jpeg_compress_struct jpeg;
  jpeg_error_mgr errors;
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_compress(&jpeg);
  unsigned char* memory = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&jpeg, &memory, &size);
  jpeg.image_width = width;
  jpeg.image_height = height;
  jpeg.input_components = options.channels;
  jpeg.in_color_space = options.space;
  jpeg_set_defaults(&jpeg);
  jpeg_set_quality(&jpeg, 95, TRUE);
  if (options.progressive)
    jpeg_simple_progression(&jpeg);
  jpeg.arith_code = options.arithmetic;
  jpeg_start_compress(&jpeg, TRUE);
  for (unsigned y = 0; y < height; ++y) {
    Bytes row;
    for (unsigned x = 0; x < width; ++x)
      for (int c = 0; c < options.channels; ++c)
        row.push_back(static_cast<unsigned char>(c == 0 ? 10 + 4 * x : c == 1 ? 10 + 4 * y : 60));
    JSAMPROW line = row.data();
    jpeg_write_scanlines(&jpeg, &line, 1);
  }
  jpeg_finish_compress(&jpeg);
  jpeg_destroy_compress(&jpeg);
  Bytes const bytes(memory, memory + size);
  std::free(memory);
  return bytes;
}

}  // namespace

TEST(JpegFile, greyStaysGrey)
{
  ccImageFile const image = read(encodeJpeg(50, 20, {1, JCS_GRAYSCALE}));

  ASSERT_EQ(image.format, ceImageFormatGrey8) << image.error;
  EXPECT_EQ(image.bits, 8);
  EXPECT_EQ(image.grey8.size(), ccPair<long>(50, 20));
  for (int x = 0; x < 50; ++x)
    EXPECT_NEAR(image.grey8.getPel(x, 7), 10 + 4 * x, 4);
}

TEST(JpegFile, colourIsRedGreenBlue)
{
  for (bool progressive : {false, true}) {
    ccImageFile const image = read(encodeJpeg(40, 40, {3, JCS_RGB, progressive}));

    ASSERT_EQ(image.format, ceImageFormatRGB32) << image.error;
    EXPECT_EQ(image.rgb.size(), ccPair<long>(40, 40));
    for (int i = 0; i < 40; i += 13) {
      ccPackedRGB32Pel const pel = image.rgb.getPel(i, 39 - i);
      EXPECT_NEAR(pel.red(), 10 + 4 * i, 12);
      EXPECT_NEAR(pel.green(), 10 + 4 * (39 - i), 12);
      EXPECT_NEAR(pel.blue(), 60, 12);
    }
  }
}

TEST(JpegFile, kindsThatAreNotReadAreNamed)
{
  EXPECT_EQ(read(encodeJpeg(8, 8, {4, JCS_CMYK})).error, "test: unsupported: a JPEG of 4 channels");
  EXPECT_EQ(read(encodeJpeg(8, 8, {3, JCS_RGB, false, true})).error, "test: unsupported: a JPEG with arithmetic coding");
}

TEST(JpegFile, cutFilesAreNamedAndNotFilledWithGrey)
{
  Bytes const whole = encodeJpeg(64, 64, {3, JCS_RGB});

  EXPECT_EQ(read(Bytes(whole.begin(), whole.end() - 40)).error, "test: the file is cut off");
  EXPECT_EQ(read(Bytes(whole.begin(), whole.begin() + 30)).error, "test: the file is cut off");
}

TEST(JpegFile, sidesAreChecked)
{
  Bytes file = encodeJpeg(8, 8, {1, JCS_GRAYSCALE});
  std::size_t frame = 0;  // behind the marker that begins the frame
  for (std::size_t i = 0; i + 1 < file.size() && !frame; ++i)
    if (file[i] == 0xFF && file[i + 1] == 0xC0)
      frame = i + 2;
  ASSERT_GT(frame, 0u);

  file[frame + 3] = 0x40, file[frame + 4] = 0x01;  // height 16385
  EXPECT_EQ(read(file).error, "test: 8 x 16385 pels are too many, the limit is 16384 a side");
  file[frame + 4] = 0x00;
  file[frame + 5] = 0x40, file[frame + 6] = 0x00;
  EXPECT_EQ(read(file).error, "test: the file is cut off");  // and not 268 million pels
}

// Each scan of such a file makes the reader go through the whole image.
TEST(JpegFile, endlessScansAreRefused)
{
  Bytes const whole = encodeJpeg(16, 16, {1, JCS_GRAYSCALE, true});
  std::size_t scan = 0, end = 0;  // the first scan, from its marker to the next marker
  for (std::size_t i = 0; i + 1 < whole.size() && !end; ++i) {
    if (whole[i] != 0xFF || whole[i + 1] == 0)
      continue;
    if (scan)
      end = i;
    else if (whole[i + 1] == 0xDA)
      scan = i;
  }
  ASSERT_GT(end, scan);
  Bytes const one(whole.begin() + static_cast<std::ptrdiff_t>(scan), whole.begin() + static_cast<std::ptrdiff_t>(end));
  Bytes many(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(scan));
  for (int i = 0; i < 1000; ++i)
    many = many + one;

  EXPECT_EQ(read(many + Bytes{0xFF, 0xD9}).error, "test: unsupported: a JPEG of more than 200 scans");
}

TEST(JpegFile, survivesDamage)
{
  // Only the two bytes of the end mark may be missing, and the library may not even miss them.
  EXPECT_LE(surviveDamage(encodeJpeg(9, 9, {1, JCS_GRAYSCALE})), 2);
  EXPECT_LE(surviveDamage(encodeJpeg(17, 9, {3, JCS_RGB})), 2);
  surviveDamage(encodeJpeg(9, 9, {3, JCS_RGB, true}));
}
