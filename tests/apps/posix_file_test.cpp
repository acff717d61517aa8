// Files as only some systems have them: pipes, devices, limits of a process.
#include "apps/common/image_file.h"
#include "apps/common/picture_file.h"
#include "tests/apps/file_kit.h"

#include <gtest/gtest.h>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

// Stands for a full disk: while it lives, no file of this process grows beyond so many bytes.
class FileSizeLimit {
public:
  explicit FileSizeLimit(rlim_t bytes) : signal_(std::signal(SIGXFSZ, SIG_IGN))
  {
    getrlimit(RLIMIT_FSIZE, &former_);
    rlimit const small{bytes, former_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
  }
  FileSizeLimit(FileSizeLimit const&) = delete;
  FileSizeLimit& operator=(FileSizeLimit const&) = delete;
  ~FileSizeLimit()
  {
    setrlimit(RLIMIT_FSIZE, &former_);
    std::signal(SIGXFSZ, signal_);
  }

private:
  rlimit former_ = {};
  void (*signal_)(int);
};

std::vector<std::uint32_t> noise(std::size_t count)
{
  std::vector<std::uint32_t> words(count);
  std::uint32_t seed = 1;
  for (std::uint32_t& word : words)
    word = (seed = seed * 1664525 + 1013904223) >> 8;
  return words;
}

}  // namespace

TEST(ImageFile, pipesAndDevicesAreRefusedWithoutWaiting)
{
  TestFolder folder;
  ASSERT_EQ(mkfifo(folder.file("pipe.png").c_str(), 0600), 0);

  EXPECT_EQ(cfReadImageFile(folder.file("pipe.png")).error, folder.file("pipe.png").string() + ": is not a plain file");
  EXPECT_EQ(cfReadImageFile("/dev/zero").error, "/dev/zero: is not a plain file");
}

TEST(PictureFile, deviceIsRefused)
{
  EXPECT_EQ(cfWritePng("/dev/full", 2, 2, noise(4).data()), "/dev/full: is not a plain file; pictures replace plain files only");
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

// A large picture fails while it is written, a small one when the last bytes leave the program.
TEST(PictureFile, fullDiskLeavesTheOlderFileAndNoPart)
{
  TestFolder folder;
  folder.file("out.png", bytesOf("old"));
  for (long side : {300l, 10l}) {
    std::string error;
    {
      FileSizeLimit const limit(20);
      error = cfWritePng(folder.file("out.png"), side, side, noise(static_cast<std::size_t>(side * side)).data());
    }

    EXPECT_EQ(error, folder.file("out.png").string() + ": cannot be written: File too large");
    EXPECT_EQ(fileBytes(folder.file("out.png")), bytesOf("old"));
    auto const entries = fs::directory_iterator(folder.path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
  }
}
