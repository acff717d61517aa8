// Small samples of every format with memory that fails, cut at every length, and with random bytes changed: an answer or one
// line of text, nothing lost, nothing behind the bytes read.
#include "apps/common/json.h"
#include "apps/krsview/draw_file.h"
#include "apps/krsview/script.h"
#include "platform/app.h"
#include "tests/apps/file_kit.h"
#include "tests/apps/heap_watch.h"
#include "tests/support/memory_watch.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <random>

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> samples(std::string const& target)
{
  std::vector<fs::path> files;
  for (auto const& entry : fs::directory_iterator(fs::path(KRS_SOURCE_FOLDER) / "tests/fuzz/corpus" / target))
    files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  EXPECT_GT(files.size(), 3u) << target;
  return files;
}

constexpr char const* kFormats[] = {"png", "pnm", "tiff", "jpeg", "bmp"};

// Reads as its user does; what comes back is an image or one line.
void readImage(Bytes const& bytes)
{
  ccImageFile const image = read(bytes);
  bool const oneLine = image.error.rfind("test: ", 0) == 0 && image.error.find('\n') == std::string::npos;
  if (bool(image) == oneLine)
    ADD_FAILURE() << "neither image nor error: " << image.error;
}

void readDrawing(Bytes const& bytes)
{
  ccDrawing const drawing = cfReadDrawing(std::string(bytes.begin(), bytes.end()), "test");
  if (!drawing && (drawing.error.rfind("test: ", 0) != 0 || drawing.error.find('\n') != std::string::npos))
    ADD_FAILURE() << drawing.error;
}

// With every allocation of operator new failing in turn, then every one of the whole heap. Nothing may be lost in a second
// pass; the first makes what the libraries make once, such as their texts. libtiff reads through null when memory for its own
// list of tags fails, so its allocations are left alone.
void failMemory(fs::path const& file, void (*act)(Bytes const&))
{
  bool const wholeHeap = HeapWatch::canFail() && file.extension() != ".tif";
  Bytes const bytes = fileBytes(file);
  act(bytes);
  long const failures = failEach([&] { return std::make_unique<Bytes>(bytes); }, [&](Bytes& copy) { act(copy); },
                                 [](Bytes&, bool) {});
  EXPECT_LT(failures, kMostFailures) << file;
  for (int pass = 0; pass < 2; ++pass) {
    long long before = HeapWatch::living(), lost = 0;
    long nth = 0, loser = 0;
    auto const look = [&](bool) {
      ++nth;
      if (HeapWatch::living() != before && !loser) {
        loser = nth;
        lost = HeapWatch::living() - before;
      }
      before = HeapWatch::living();
    };
    if (wholeHeap)
      failEachOfHeap([&] { act(bytes); }, look);
    else
      failEach(
          [&] {
            auto stage = std::make_unique<char>();
            before = HeapWatch::living();
            return stage;
          },
          [&](char&) { act(bytes); }, [&](char&, bool failed) { look(failed); });
    if (pass > 0) {
      EXPECT_EQ(lost, 0) << file << ": with allocation " << loser << " failing";
    }
  }
  long long const before = HeapWatch::living();
  act(bytes);
  EXPECT_EQ(HeapWatch::living(), before) << file;
}

double secondsFor(double most) { return std::getenv("KRS_LONG") ? 60 : most; }

// Cuts at every length, then random changes until the time is over.
void damage(std::vector<fs::path> const& files, void (*act)(Bytes const&), double seconds)
{
  std::vector<Bytes> wholes;
  for (fs::path const& file : files)
    wholes.push_back(fileBytes(file));
  for (Bytes const& whole : wholes)
    for (std::size_t length = 0; length < std::min<std::size_t>(whole.size(), 3000); ++length) {
      Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
      cut.shrink_to_fit();
      act(cut);
    }
  std::clock_t const end = std::clock() + static_cast<std::clock_t>(secondsFor(seconds) * CLOCKS_PER_SEC);
  std::mt19937 random(20240917);
  for (long round = 0; std::clock() < end; ++round) {
    Bytes bytes = wholes[random() % wholes.size()];
    Bytes const& other = wholes[random() % wholes.size()];
    for (unsigned i = 1 + random() % 8; i > 0 && !bytes.empty(); --i) {
      std::size_t const at = random() % bytes.size();
      switch (random() % 5) {
      case 0: bytes[at] = static_cast<unsigned char>(random()); break;
      case 1: bytes[at] ^= static_cast<unsigned char>(1u << random() % 8); break;
      case 2: bytes[at] = random() % 2 ? 0xFF : 0; break;
      case 3: bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(at), other[random() % other.size()]); break;
      default: bytes.erase(bytes.begin() + static_cast<std::ptrdiff_t>(at)); break;
      }
    }
    act(bytes);
    if (testing::Test::HasFailure()) {
      ADD_FAILURE() << "in round " << round;
      return;
    }
  }
}

}  // namespace

TEST(FailingMemory, imageReadersAnswerAndLoseNothing)
{
  for (char const* format : kFormats)
    for (fs::path const& file : samples(format))
      failMemory(file, readImage);
}

TEST(FailingMemory, drawFilesAnswerAndLoseNothing)
{
  for (fs::path const& file : samples("draw"))
    failMemory(file, readDrawing);
}

TEST(FailingMemory, textsOfJsonAnswerAndLoseNothing)
{
  for (fs::path const& file : samples("draw"))
    failMemory(file, [](Bytes const& bytes) { (void)cfReadJson(std::string(bytes.begin(), bytes.end())); });
}

TEST(FailingMemory, scriptsEndAtALineOrGoOnAndLoseNothing)
{
  plat::InitOptions init;
  init.video = plat::InitOptions::headless;
  plat::init(init);
  ccViewOptions options;
  std::ostringstream errors;
  ccViewer viewer(options, errors);
  for (char const* line : {"# a comment that is longer than a short text\n", "an unknown line of more than sixteen letters\n",
                           "press left 3 up\n", "expect 1 2 3 4 256\n", "key down nokeyofthisname\n"}) {
    long const failures = failEach([&] { return std::make_unique<std::istringstream>(line); },
                                   [&](std::istringstream& in) {
                                     std::ostringstream out, told;
                                     ccViewScript script(viewer, out, told, true);
                                     (void)script.run(in, false);
                                   },
                                   [](std::istringstream&, bool) {});
    EXPECT_GT(failures, 0) << line;
  }
}

TEST(Damage, imageReadersSurvive)
{
  for (char const* format : kFormats)
    damage(samples(format), readImage, 0.6);
}

TEST(Damage, drawFilesSurvive) { damage(samples("draw"), readDrawing, 1); }
