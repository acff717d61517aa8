// What a reader takes of memory and time is bounded by the picture that a file promises, and that by the file.
#include "tests/apps/heap_watch.h"
#include "tests/apps/hostile_kit.h"

#include <gtest/gtest.h>

#include <ctime>

namespace {

constexpr std::size_t MiB = 1 << 20;
constexpr std::size_t kWork = 16 * MiB;  // what a reader may take beside its picture
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double kSlower = 20;
#else
constexpr double kSlower = 1;
#endif

struct Cost {
  std::size_t peak = 0;
  double seconds = 0;
  std::string error;
  long width = 0, height = 0;
};

Cost cost(Bytes const& file, ccImageTrust trust = ccImageTrust::bounded)
{
  Cost c;
  std::clock_t const start = std::clock();
  HeapWatch const watch;
  {
    ccImageFile const image = cfReadImageBytes(file.data(), file.size(), "test", trust);
    c.error = image.error;
    c.width = image.width();
    c.height = image.height();
  }
  c.peak = watch.peak();
  c.seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  return c;
}

// The file is read, and takes no more than its picture and the work memory.
void expectPicture(char const* what, Bytes const& file, std::size_t pictureBytes, double seconds = 3)
{
  Cost const c = cost(file);
  EXPECT_EQ(c.error, "") << what;
  EXPECT_LE(c.peak, pictureBytes + kWork) << what;
  EXPECT_GE(c.peak, pictureBytes) << what << ": the heap is not watched";
  EXPECT_LE(c.seconds, seconds * kSlower) << what;
}

void expectRefusal(char const* what, Bytes const& file, std::string const& error, double seconds = 1)
{
  Cost const c = cost(file);
  EXPECT_EQ(c.error, error) << what;
  EXPECT_LE(c.peak, kWork) << what;
  EXPECT_LE(c.seconds, seconds * kSlower) << what;
}

Bytes const kTwoColours{255, 0, 0, 0, 0, 255};

}  // namespace

TEST(HostilePng, chunksThatNobodyNeedsTakeNoMemoryWhateverLengthTheyClaim)
{
  Bytes const pel = deflated({0, 5});
  for (char const* name : {"eXIf", "iCCP", "zTXt", "iTXt", "tEXt", "sPLT", "pCAL", "sCAL", "tRNS", "hIST", "unKn"}) {
    Bytes const claim = pngStart(1, 1, 8, 0) + big32(0x7FFFFFFF) + bytesOf(name) + Bytes(4);
    EXPECT_EQ(claim.size(), 45u);
    expectRefusal(name, claim, "test: the file is cut off");
    expectPicture(name, pngFile(pngStart(1, 1, 8, 0), pngChunk(name, Bytes(20 * MiB)), pel), 1);
  }
}

TEST(HostilePng, compressedTextsAndProfilesAreNotUnpacked)
{
  Bytes const bomb = deflatedZeros(7 * MiB), pel = deflated({0, 5});
  Bytes texts;
  for (int i = 0; i < 900; ++i)
    for (Bytes const& chunk : {pngChunk("zTXt", bytesOf("Comment") + Bytes(2) + bomb),
                               pngChunk("iTXt", bytesOf("Comment") + Bytes{0, 1, 0, 0, 0} + bomb)})
      texts.insert(texts.end(), chunk.begin(), chunk.end());
  Bytes const profile = pngChunk("iCCP", bytesOf("p") + Bytes(2) + bomb);

  expectPicture("before the pels", pngFile(pngStart(1, 1, 8, 0), profile + texts, pel), 1);
  expectPicture("behind the pels", pngStart(1, 1, 8, 0) + pngChunk("IDAT", pel) + texts + pngChunk("IEND", {}), 1);
}

TEST(HostilePng, whatStandsBehindTheLastRowIsNotUnpacked)
{
  Bytes const bomb = deflatedZeros(2048 * MiB);
  for (bool interlaced : {false, true})
    for (std::uint32_t height : {1u, 2u})
      expectPicture("bomb", pngFile(pngStart(1, height, 8, 0, interlaced), {}, bomb), 1, 0.3);
}

TEST(HostilePng, aPictureFarLargerThanItsFileIsRefusedUnlessItIsTrusted)
{
  Bytes const grey = pngFile(pngStart(16384, 16384, 1, 0), {}, deflatedZeros((16384 / 8 + 1) * 16384));
  expectPicture("256 MiB", grey, 256 * MiB, 10);

  Bytes const colour = pngFile(pngStart(16384, 5462, 8, 2), {}, deflatedZeros((16384 * 3 + 1) * 5462));
  expectRefusal("colour", colour, "test: unsupported: a picture of 341 MiB from a file of " + std::to_string(colour.size()) +
                                      " bytes (--large allows it)");
  Cost const trusted = cost(colour, ccImageTrust::large);
  EXPECT_EQ(trusted.error, "");
  EXPECT_EQ(trusted.width, 16384);
  EXPECT_LE(trusted.peak, 16384u * 5462 * 4 + kWork);
}

TEST(HostilePng, aFileMayPromiseSixtyFourTimesItsOwnBytes)
{
  // 260 MiB of pels: more than is free, so the file must have 260 / 64 MiB.
  std::size_t const pels = 260 * MiB;
  Bytes const start = pngStart(16384, static_cast<std::uint32_t>(pels / 32768), 16, 0);
  Bytes const rows = deflatedZeros((32768 + 1) * (pels / 32768));
  std::size_t const bare = pngFile(start, pngChunk("teXt", {}), rows).size();
  Bytes const exact = pngFile(start, pngChunk("teXt", Bytes(pels / 64 - bare)), rows);
  ASSERT_EQ(exact.size() * 64, pels);

  expectPicture("exact", exact, pels, 10);
  EXPECT_NE(cost(pngFile(start, pngChunk("teXt", Bytes(pels / 64 - bare - 1)), rows)).error, "");
}

TEST(HostilePng, palettesNeedNoSecondPicture)
{
  Bytes const palette = pngChunk("PLTE", kTwoColours), rows = deflatedZeros((7000 + 1) * 7000);
  expectPicture("palette", pngFile(pngStart(7000, 7000, 8, 3), palette, rows), 7000 * 7000 * 4);
  Bytes const passes = deflatedZeros(7000 * 7000 + 8 * 7000);
  expectPicture("interlaced", pngFile(pngStart(7000, 7000, 8, 3, true), palette, passes), 7000 * 7000 * 4, 6);
}

TEST(HostilePng, pelsMustBeInTheChunksOfPels)
{
  Bytes const file = pngFile(pngStart(16384, 16384, 1, 0), pngChunk("teXt", Bytes(MiB)), deflated({0, 0}));
  expectRefusal("few", file, "test: the file is cut off");
}

TEST(HostileBmp, runLengthsPromiseNoMoreThanTheFileMay)
{
  expectRefusal("33 KB", runsBmp(16384, 16384, Bytes(33000)),
                "test: unsupported: a picture of 1024 MiB from a file of 33062 bytes (--large allows it)");
  expectPicture("palette", runsBmp(7000, 7000, Bytes(14000)), 7000 * 7000 * 4);
}

TEST(HostileJpeg, markersThatNobodyNeedsAreSkipped)
{
  Bytes const whole = flatJpeg(16, 16, 1, false);
  Bytes file(whole.begin(), whole.begin() + 2);
  for (int i = 0; i < 400; ++i)
    for (unsigned char marker : Bytes{0xE0, 0xE1, 0xE2, 0xEE, 0xFE}) {
      Bytes const segment = Bytes{0xFF, marker, 0xFF, 0xFF} + Bytes(65533, 'x');
      file.insert(file.end(), segment.begin(), segment.end());
    }
  file.insert(file.end(), whole.begin() + 2, whole.end());
  expectPicture("markers", file, 256);
}

TEST(HostileJpeg, aPictureFarLargerThanItsFileIsRefused)
{
  Bytes const small = flatJpeg(16384, 5000, 3, false);  // 312 MiB
  ASSERT_LT(small.size(), 4 * MiB);
  expectRefusal("baseline", small, "test: unsupported: a picture of 312 MiB from a file of " + std::to_string(small.size()) +
                                       " bytes (--large allows it)");
  expectPicture("baseline", flatJpeg(7000, 5000, 3, false), 7000 * 5000 * 4);
}

TEST(HostileJpeg, coefficientsOfProgressiveFilesCountAsPicture)
{
  // 16 bits of each pel and channel, and of the fill at the edges, beside the picture.
  expectPicture("grey", flatJpeg(4000, 4000, 1, true), 4000 * 4000 * 3);
  Bytes const file = flatJpeg(9480, 9480, 1, true);  // 86 MiB, with coefficients 257
  ASSERT_LT(file.size(), 4 * MiB);
  expectRefusal("grey", file, "test: unsupported: a picture of 257 MiB from a file of " + std::to_string(file.size()) +
                                  " bytes (--large allows it)");
}

TEST(HostileJpeg, scansOverLargePicturesAreFew)
{
  // A scan of 345,744 blocks costs some 15 ms and takes hardly a byte. 50,000,000 blocks in all are 144 scans.
  Bytes const file = withRepeatedScan(flatJpeg(4700, 4700, 1, true), 1000);
  Cost const c = cost(file);
  EXPECT_EQ(c.error, "test: unsupported: a JPEG of more than 144 scans");
  EXPECT_LE(c.seconds, 10 * kSlower);
}

TEST(HostileTiff, aStripIsReadWhereItLies)
{
  constexpr std::uint32_t side = 8000;
  expectPicture("strip", tiffFile(Bytes(side * side), greyTiff(side, side, 1, side * side)), side * side);
  Bytes const packed = deflated(Bytes(side * side), /*level=*/0);  // no smaller than the picture
  expectPicture("deflate", tiffFile(packed, greyTiff(side, side, 8, static_cast<std::uint32_t>(packed.size()))), side * side);
}

TEST(HostileTiff, tagsThatNobodyNeedsAreNotKept)
{
  std::vector<TiffTag> tags = greyTiff(2, 2, 1, 4);
  Bytes const value(MiB, 'x');
  for (unsigned tag : {315u, 700u, 33723u, 34377u, 34675u, 37724u})  // known ones first
    tags.push_back({tag, tag == 315 ? 2u : tag == 33723 ? 4u : 1u, static_cast<std::uint32_t>(value.size()) / (tag == 33723 ? 4 : 1), value});
  for (unsigned tag = 50000; tag < 50200; ++tag)
    tags.push_back({tag, 1, static_cast<std::uint32_t>(value.size()), value});
  Bytes const file = tiffFile({1, 2, 3, 4}, tags);
  expectPicture("tags", file, 4);
  EXPECT_EQ(greys(read(file)), (std::vector<std::vector<unsigned>>{{1, 2}, {3, 4}}));
}

TEST(HostileTiff, listsOfStripsAndTilesAreNoLongerThanThePictureNeeds)
{
  for (std::uint32_t count : {0x10000000u, 0x3FFFFFFFu, 0xFFFFFFFFu, 1u << 20}) {
    std::vector<TiffTag> tags = greyTiff(16, 16, 1, 256);
    tags[5].count = tags[8].count = count;  // places and lengths of the strips
    tags[5].value = tags[8].value = Bytes(4 * MiB, 0);
    Cost const c = cost(tiffFile(Bytes(256), tags));
    EXPECT_LE(c.peak, kWork) << count;
    EXPECT_LE(c.seconds, kSlower) << count;
  }
}

TEST(HostileTiff, tilesMuchLargerThanThePictureAreRefused)
{
  // 16384 tiles of a megabyte for 16384 pels, all packed in the same few bytes.
  Bytes const packed = deflatedZeros(1 << 20);
  Bytes places, lengths;
  for (int i = 0; i < 16384; ++i) {
    Bytes const place = little32(8), length = little32(static_cast<std::uint32_t>(packed.size()));
    places.insert(places.end(), place.begin(), place.end());
    lengths.insert(lengths.end(), length.begin(), length.end());
  }
  std::vector<TiffTag> const tags = {tiffWord(256, 1),     tiffWord(257, 16384), tiffHalf(258, 8),        tiffHalf(259, 8),
                                     tiffHalf(262, 1),     tiffHalf(277, 1),     tiffWord(322, 1 << 20),  tiffWord(323, 1),
                                     {324, 4, 16384, places}, {325, 4, 16384, lengths}};
  expectRefusal("tiles", tiffFile(packed, tags), "test: the file is damaged: its tiles are much larger than its picture");
}

// A strip in several scans is kept whole while it is read.
TEST(HostileTiff, stripsInJpegAreSmall)
{
  auto const strip = [](unsigned width, unsigned height) {
    Bytes const jpeg = flatJpeg(width, height, 1, /*progressive=*/true);
    return tiffFile(jpeg, greyTiff(width, height, 7, static_cast<std::uint32_t>(jpeg.size())));
  };
  expectPicture("4 Mi", strip(2048, 2048), 2048 * 2048);
  expectRefusal("more", strip(2048, 2049), "test: unsupported: a TIFF of JPEG strips of 4196352 pels");
}

TEST(HostileTiff, palettesNeedNoSecondPicture)
{
  constexpr std::uint32_t side = 6000;
  Bytes const packed = deflatedZeros(side * side);
  std::vector<TiffTag> tags = greyTiff(side, side, 8, static_cast<std::uint32_t>(packed.size()));
  tags[4] = tiffHalf(262, 3);
  Bytes colours(256 * 3 * 2, 0);
  colours[1] = 0xFF;
  tags.push_back({320, 3, 256 * 3, colours});
  expectPicture("palette", tiffFile(packed, tags), side * side * 4);
}

TEST(HostilePnm, takesItsPictureOnly)
{
  expectPicture("grey", bytesOf("P5 6000 6000 255\n") + Bytes(6000 * 6000), 6000 * 6000);
  expectPicture("comments", bytesOf("P2 #") + Bytes(20 * MiB, 'x') + bytesOf("\n1 1 65535 7"), 1);
}

TEST(HostileFile, takesItsBytesAndItsPicture)
{
  TestFolder const folder;
  std::size_t const pels = 6000 * 6000;
  auto const path = folder.file("a.pgm", bytesOf("P5 6000 6000 255\n") + Bytes(pels));
  HeapWatch const watch;
  EXPECT_TRUE(cfReadImageFile(path));
  EXPECT_LE(watch.peak(), 2 * pels + kWork);
}
