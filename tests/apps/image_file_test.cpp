#include "apps/common/image_file.h"
#include "tests/apps/file_kit.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

Bytes const greyFile = bytesOf("P5 1 1 255\n") + Bytes{77};

std::vector<std::string> names(ccImageFolder const& folder)
{
  std::vector<std::string> result;
  for (fs::path const& path : folder.files)
    result.push_back(path.filename().string());
  return result;
}

}  // namespace

TEST(ImageFile, isToldByContentAndNotByName)
{
  TestFolder folder;
  ccImageFile const image = cfReadImageFile(folder.file("picture.jpg", greyFile));

  EXPECT_TRUE(image);
  EXPECT_EQ(image.error, "");
  EXPECT_EQ(image.width(), 1);
  EXPECT_EQ(image.height(), 1);
  EXPECT_EQ(image.grey8.getPel(0, 0), 77);
}

TEST(ImageFile, errorsBeginWithThePathAndTellWhatIsWrong)
{
  TestFolder folder;
  fs::create_directory(folder.file("sub.png"));
  fs::create_symlink("nowhere", folder.file("dangling.png"));
  fs::create_symlink("circle.png", folder.file("circle.png"));
  folder.file("empty.png", {});
  folder.file("text.png", bytesOf("Dear reader, this is no image."));
  folder.file("short.pgm", bytesOf("P5 9 9 255\n"));
  struct {
    char const* name;
    char const* error;
  } const cases[] = {
      {"missing.png", ": no such file"},
      {"sub.png", ": is a folder, not a file"},
      {"dangling.png", ": no such file"},
      {"circle.png", ": cannot be read: Too many levels of symbolic links"},
      {"empty.png", ": the file is empty"},
      {"text.png", ": not an image in a known format (PNG, PGM, PPM, TIFF, JPEG, BMP)"},
      {"short.pgm", ": the file is cut off"},
  };
  for (auto const& c : cases) {
    ccImageFile const image = cfReadImageFile(folder.file(c.name));

    EXPECT_FALSE(image) << c.name;
    EXPECT_EQ(image.error, folder.file(c.name).string() + c.error);
  }
}

TEST(ImageFile, errorIsOneLineWhateverTheFilesName)
{
  TestFolder folder;
  std::string const error = cfReadImageFile(folder.file("two\nlines\x1b.png")).error;

  EXPECT_EQ(error, folder.file("two?lines?.png").string() + ": no such file");
}

TEST(ImageFile, linkToAnImageIsRead)
{
  TestFolder folder;
  folder.file("real.pgm", greyFile);
  fs::create_symlink("real.pgm", folder.file("link.pgm"));

  EXPECT_EQ(cfReadImageFile(folder.file("link.pgm")).grey8.getPel(0, 0), 77);
}

TEST(ImageFile, hugeFileThatIsNoImageIsNotReadToItsEnd)
{
  TestFolder folder;
  fs::path const path = folder.file("film.png", bytesOf("Not an image at all, only large."));
  fs::resize_file(path, std::uintmax_t{1} << 40);  // sparse

  EXPECT_EQ(cfReadImageFile(path).error,
            path.string() + ": not an image in a known format (PNG, PGM, PPM, TIFF, JPEG, BMP)");
}

TEST(ImageFolder, listsImageFilesByExtensionInAnyCaseSortedByName)
{
  TestFolder folder;
  for (char const* name : {"b.png", "a.PGM", "c.ppm", "d.pnm", "e.tif", "f.TiFF", "g.jpg", "h.jpeg", "B.bmp", "10.png",
                           "9.png", "notes.txt", "png", ".png", "x.png.bak", "y.pngx"})
    folder.file(name, {});
  fs::create_directory(folder.file("folder.png"));
  fs::create_symlink("b.png", folder.file("z.png"));

  ccImageFolder const list = cfListImageFiles(folder.path());

  EXPECT_EQ(list.error, "");
  EXPECT_EQ(names(list), (std::vector<std::string>{"10.png", "9.png", "B.bmp", "a.PGM", "b.png", "c.ppm", "d.pnm", "e.tif",
                                                   "f.TiFF", "g.jpg", "h.jpeg", "z.png"}));
  EXPECT_EQ(list.files[0], folder.file("10.png"));
}

TEST(ImageFolder, folderThatCannotBeReadIsNamed)
{
  TestFolder folder;
  ccImageFolder const list = cfListImageFiles(folder.file("missing"));

  EXPECT_TRUE(list.files.empty());
  EXPECT_EQ(list.error, folder.file("missing").string() + ": the folder cannot be read: No such file or directory");
}

TEST(ImageFolder, emptyFolderHasNoFilesAndNoError)
{
  TestFolder folder;

  EXPECT_TRUE(cfListImageFiles(folder.path()).files.empty());
  EXPECT_EQ(cfListImageFiles(folder.path()).error, "");
}
