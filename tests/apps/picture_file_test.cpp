#include "apps/common/picture_file.h"
#include "tests/apps/file_kit.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

using Rows = std::vector<std::vector<unsigned>>;
using Words = std::vector<std::vector<std::uint32_t>>;

namespace {

std::uint32_t const twoByTwo[] = {0x010203, 0xFF8000, 0xAB00FF00, 0x0000FF};

std::vector<std::string> namesIn(fs::path const& folder)
{
  std::vector<std::string> names;
  for (fs::directory_entry const& entry : fs::directory_iterator(folder))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::uint32_t bigEndian(Bytes const& bytes, std::size_t at)
{
  return std::uint32_t{bytes[at]} << 24 | std::uint32_t{bytes[at + 1]} << 16 | std::uint32_t{bytes[at + 2]} << 8 |
         bytes[at + 3];
}

}  // namespace

TEST(PictureFile, colourPictureIsAnRGBPngOfThoseWords)
{
  TestFolder folder;
  ASSERT_EQ(cfWritePng(folder.file("out.png"), 2, 2, twoByTwo), "");

  Bytes const bytes = fileBytes(folder.file("out.png"));
  ASSERT_GT(bytes.size(), 33u);
  EXPECT_EQ(bigEndian(bytes, 16), 2u);
  EXPECT_EQ(bigEndian(bytes, 20), 2u);
  EXPECT_EQ(bytes[24], 8);  // bits a channel
  EXPECT_EQ(bytes[25], 2);  // colour without alpha
  EXPECT_EQ(words(read(bytes)), (Words{{0x010203, 0xFF8000}, {0x00FF00, 0x0000FF}}));
}

TEST(PictureFile, buffersAreWrittenFromTheirWindow)
{
  TestFolder folder;
  ccPelBuffer<ccPackedRGB32Pel> colour(3, 2);
  colour.setPel(1, 1, ccPackedRGB32Pel(0x123456));
  ccPelBuffer<unsigned char> grey(3, 2);
  grey.setPel(1, 1, 99);

  ASSERT_EQ(cfWritePng(folder.file("colour.png"), colour.cut(1, 0, 1, 2)), "");
  ASSERT_EQ(cfWritePng(folder.file("grey.png"), grey.cut(1, 0, 1, 2)), "");

  EXPECT_EQ(words(read(fileBytes(folder.file("colour.png")))), (Words{{0}, {0x123456}}));
  ccImageFile const image = read(fileBytes(folder.file("grey.png")));
  EXPECT_EQ(image.format, ceImageFormatGrey8);
  EXPECT_EQ(greys(image), (Rows{{0}, {99}}));
}

TEST(PictureFile, greyOfEveryDepthComesBackUnchanged)
{
  TestFolder folder;
  for (int bits = 1; bits <= 16; ++bits) {
    unsigned const white = (1u << bits) - 1;
    ccPelBuffer<unsigned short> grey(4, 1);
    grey.setPel(1, 0, 1);
    grey.setPel(2, 0, static_cast<unsigned short>(white / 3));
    grey.setPel(3, 0, static_cast<unsigned short>(white));

    ASSERT_EQ(cfWritePng(folder.file("grey.png"), grey, bits), "");

    ccImageFile const image = read(fileBytes(folder.file("grey.png")));
    EXPECT_EQ(image.bits, bits);
    EXPECT_EQ(greys(image), (Rows{{0, 1, white / 3, white}})) << bits;
  }
}

TEST(PictureFile, greyIsScaledUpToTheWholeRangeInTheFile)
{
  TestFolder folder;
  ccPelBuffer<unsigned short> grey(1, 1);
  grey.setPel(0, 0, 0xABC);
  ASSERT_EQ(cfWritePng(folder.file("grey.png"), grey, 12), "");

  // Renaming the chunk of the significant bits makes readers skip it, but its check sum would be wrong: cut it out.
  Bytes bytes = fileBytes(folder.file("grey.png"));
  std::string const text(bytes.begin(), bytes.end());
  std::size_t const at = text.find("sBIT");
  ASSERT_NE(at, std::string::npos);
  EXPECT_EQ(bytes[at + 4], 12);
  bytes.erase(bytes.begin() + static_cast<std::ptrdiff_t>(at) - 4, bytes.begin() + static_cast<std::ptrdiff_t>(at) + 9);

  EXPECT_EQ(greys(read(bytes)), (Rows{{0xABCA}}));
}

TEST(PictureFile, replacesAnOlderFileAndLeavesNothingElse)
{
  TestFolder folder;
  folder.file("out.png", bytesOf("old"));

  ASSERT_EQ(cfWritePng(folder.file("out.png"), 2, 2, twoByTwo), "");

  EXPECT_TRUE(read(fileBytes(folder.file("out.png"))));
  EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"out.png"});
}

TEST(PictureFile, symbolicLinkIsRefusedAndItsTargetUntouched)
{
  TestFolder folder;
  folder.file("real.png", bytesOf("precious"));
  fs::create_symlink("real.png", folder.file("link.png"));
  fs::create_symlink("nowhere", folder.file("dangling.png"));

  for (char const* name : {"link.png", "dangling.png"})
    EXPECT_EQ(cfWritePng(folder.file(name), 2, 2, twoByTwo),
              folder.file(name).string() + ": is a symbolic link; pictures replace plain files only");

  EXPECT_EQ(fileBytes(folder.file("real.png")), bytesOf("precious"));
  EXPECT_EQ(namesIn(folder.path()), (std::vector<std::string>{"dangling.png", "link.png", "real.png"}));
}

TEST(PictureFile, targetsThatCannotBeAreNamed)
{
  TestFolder folder;
  fs::create_directory(folder.file("sub"));
  folder.file("plain", bytesOf("x"));
  folder.file("locked.png", bytesOf("x"));
  fs::permissions(folder.file("locked.png"), fs::perms::owner_read);
  struct {
    fs::path path;
    char const* error;
  } const cases[] = {
      {folder.file("sub"), ": is a folder, not a file"},
      {folder.file("missing") / "out.png", ": cannot be written: No such file or directory"},
      {folder.file("plain") / "out.png", ": cannot be written: Not a directory"},
      {folder.file("locked.png"), ": is write-protected"},
      {folder.path() / "", ": a file name is missing"},
  };
  for (auto const& c : cases)
    EXPECT_EQ(cfWritePng(c.path, 2, 2, twoByTwo), c.path.string() + c.error);
  EXPECT_EQ(namesIn(folder.path()), (std::vector<std::string>{"locked.png", "plain", "sub"}));
}

TEST(PictureFile, sizesThatCannotBeAreRefused)
{
  TestFolder folder;
  for (long side : {0l, -1l, -1'000'000'000'000l})
    EXPECT_EQ(cfWritePng(folder.file("a.png"), side, 2, twoByTwo),
              folder.file("a.png").string() + ": the picture has no pels");
  EXPECT_EQ(cfWritePng(folder.file("a.png"), 2, 2'000'000, twoByTwo),
            folder.file("a.png").string() + ": the picture is too large");
  EXPECT_EQ(cfWritePng(folder.file("a.png"), ccPelBuffer<unsigned char>()),
            folder.file("a.png").string() + ": the picture has no pels");
  EXPECT_TRUE(fs::is_empty(folder.path()));
}
