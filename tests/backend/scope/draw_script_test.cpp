// Every family of figures on memory surfaces of each depth: a hash of the picture after each step, and the last picture at
// depth 32 as a file. When a hash differs, the new picture, the expected one and their difference are written to the build
// folder, with a new table of hashes. Whoever changes a figure on purpose looks at them and copies table and pictures over.
#include "tests/backend/scope/draw_scripts.h"

#include "apps/common/image_file.h"
#include "apps/common/picture_file.h"
#include "tests/backend/scope/scope_fixture.h"
#include "tests/support/plain_painter.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace fs = std::filesystem;

namespace {

using Pels = std::vector<std::uint32_t>;

fs::path const expectedFolder = KRS_DRAW_PICTURES, newFolder = KRS_DRAW_OUTPUT;

// FNV-1a over the pel values, lowest byte first.
std::uint64_t hashOf(Pels const& pels)
{
  std::uint64_t hash = 0xcbf29ce484222325u;
  for (std::uint32_t const pel : pels)
    for (int shift = 0; shift < 32; shift += 8) {
      hash ^= pel >> shift & 255;
      hash *= 0x100000001b3u;
    }
  return hash;
}

std::string lineOf(DrawFamily const& family, int depth, DrawStep const& step, Pels const& pels)
{
  std::ostringstream line;
  line << family.name << ' ' << depth << ' ' << step.name << ' ' << std::hex << std::setw(16) << std::setfill('0')
       << hashOf(pels);
  return line.str();
}

std::vector<std::string> linesOf(fs::path const& file)
{
  std::ifstream in(file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);)
    if (!line.empty())
      lines.push_back(line);
  return lines;
}

// Stock colours where they stand, a cube of colours from 10 and greys.
std::vector<ccRGB> palette()
{
  std::vector<ccRGB> entries(256);
  for (std::size_t i = 0; i < 256; ++i)
    entries[i] = ccColor(static_cast<unsigned char>(i)).toRGB();
  for (std::size_t i = 0; i < 216; ++i)
    entries[10 + i] = ccRGB(static_cast<unsigned char>(i / 36 * 51), static_cast<unsigned char>(i / 6 % 6 * 51),
                            static_cast<unsigned char>(i % 6 * 51));
  for (std::size_t i = 226; i < 243; ++i) {
    unsigned char const grey = static_cast<unsigned char>((i - 226) * 14 + 7);
    entries[i] = ccRGB(grey, grey, grey);
  }
  return entries;
}

// A surface's pels as words of 0x00RRGGBB.
Pels seen(Pels const& pels, int depth)
{
  std::vector<plain::Rgb> entries;
  for (ccRGB const& e : palette()) {
    plain::Rgb c;
    c.r = e.r;
    c.g = e.g;
    c.b = e.b;
    entries.push_back(c);
  }
  Pels words;
  for (std::uint32_t const pel : pels) {
    plain::Rgb const c = plain::seen(pel, depth, entries);
    words.push_back(static_cast<std::uint32_t>(c.r * 65536 + c.g * 256 + c.b));
  }
  return words;
}

std::string write(std::string const& name, Pels const& words)
{
  fs::create_directories(newFolder);
  fs::path const file = newFolder / name;
  std::string const fault = cfWritePng(file, drawScriptWidth, drawScriptHeight, words.data());
  return fault.empty() ? file.string() : fault;
}

Pels readPicture(fs::path const& file)
{
  ccImageFile const image = cfReadImageFile(file);
  Pels words;
  if (image.format == ceImageFormatRGB32)
    for (long y = 0; y < image.height(); ++y)
      for (long x = 0; x < image.width(); ++x)
        words.push_back(image.rgb.getPel(x, y).word() & 0xFFFFFF);
  return words;
}

class DrawScript : public ScopeTest {
protected:
  // The pictures after each step.
  std::vector<Pels> run(DrawFamily const& family, int depth)
  {
    screen(depth);
    HWND const window =
        makeWindow({10, 10, 10 + static_cast<plat::i32>(drawScriptWidth), 10 + static_cast<plat::i32>(drawScriptHeight)});
    ScopeProbe scope;
    EXPECT_EQ(scope.create(window, ccPair<long>(drawScriptWidth, drawScriptHeight), -1), 0);
    scope.palette(palette());
    scope.colorMap(palette());
    std::vector<Pels> pictures;
    for (DrawStep const& step : family.steps) {
      step.draw(scope);
      pictures.push_back(pelsOf(scope.surface()));
    }
    return pictures;
  }

  // Writes what there is to see and names it.
  std::string shown(DrawFamily const& family, Pels const& last32, Pels const& wrong, int depth)
  {
    Pels const expected = readPicture(expectedFolder / (family.name + ".png"));
    std::ostringstream text;
    text << "new " << write(family.name + ".new.png", last32);
    if (expected.size() == last32.size()) {
      Pels difference;
      for (std::size_t i = 0; i < expected.size(); ++i)
        difference.push_back(expected[i] == last32[i] ? expected[i] >> 2 & 0x3F3F3F : 0xFFFFFF);
      text << "\nexpected " << write(family.name + ".expected.png", expected) << "\ndifference "
           << write(family.name + ".difference.png", difference);
    }
    text << "\nat that step " << write(family.name + ".step.png", seen(wrong, depth));
    return text.str();
  }
};

}  // namespace

TEST_F(DrawScript, everyStepAtEveryDepthIsThePictureThatWasJudgedRight)
{
  std::vector<std::string> const expected = linesOf(expectedFolder / "hashes.txt");
  std::vector<std::string> actual;
  std::size_t at = 0;
  bool same = true;
  for (DrawFamily const& family : cf_drawFamilies()) {
    Pels const last32 = run(family, 32).back();
    bool familySame = true;
    for (int const depth : allDepths) {
      std::vector<Pels> const pictures = run(family, depth);
      for (std::size_t i = 0; i < pictures.size(); ++i, ++at) {
        actual.push_back(lineOf(family, depth, family.steps[i], pictures[i]));
        if (!familySame || (at < expected.size() && actual.back() == expected[at]))
          continue;
        familySame = same = false;  // the first of a family tells
        ADD_FAILURE() << "family " << family.name << " depth " << depth << " step " << family.steps[i].name << '\n'
                      << shown(family, last32, pictures[i], depth);
      }
    }
  }
  EXPECT_EQ(actual.size(), expected.size());
  if (!same || actual.size() != expected.size()) {
    fs::create_directories(newFolder);
    std::ofstream out(newFolder / "hashes.txt");
    for (std::string const& line : actual)
      out << line << '\n';
    ADD_FAILURE() << "new table " << (newFolder / "hashes.txt").string();
  }
}

TEST_F(DrawScript, storedPicturesAreTheLastOnesOfTheirFamilies)
{
  for (DrawFamily const& family : cf_drawFamilies()) {
    Pels const last = run(family, 32).back(), stored = readPicture(expectedFolder / (family.name + ".png"));
    EXPECT_TRUE(stored == last) << family.name << '\n' << shown(family, last, last, 32);
  }
}

TEST_F(DrawScript, everyStepPaintsSomething)
{
  for (DrawFamily const& family : cf_drawFamilies())
    for (int const depth : allDepths) {
      std::vector<Pels> const pictures = run(family, depth);
      for (std::size_t i = 1; i < pictures.size(); ++i)
        EXPECT_TRUE(pictures[i] != pictures[i - 1]) << family.name << ' ' << depth << ' ' << family.steps[i].name;
    }
}

// Where a depth says each colour exactly, the picture at depth 32 tells what it must show.
TEST_F(DrawScript, picturesOfLowerDepthsAreThoseOfDepth32WithFewerBits)
{
  for (DrawFamily const& family : cf_drawFamilies()) {
    std::vector<Pels> const deep = run(family, 32);
    std::vector<Pels> const bytes = run(family, 24);
    for (std::size_t i = 0; i < deep.size(); ++i)
      EXPECT_TRUE(deep[i] == bytes[i]) << family.name << ' ' << family.steps[i].name;
    if (family.name.rfind("text", 0) == 0)
      continue;  // edges of letters are mixed at 24 and 32 bits only
    for (int const depth : {15, 16}) {
      std::vector<Pels> const words = run(family, depth);
      for (std::size_t i = 0; i < deep.size(); ++i) {
        Pels expected;
        for (std::uint32_t const pel : deep[i])
          expected.push_back(surfacePel(ccRGB(static_cast<unsigned char>(pel >> 16), static_cast<unsigned char>(pel >> 8 & 255),
                                              static_cast<unsigned char>(pel & 255)), depth));
        EXPECT_TRUE(words[i] == expected) << family.name << ' ' << depth << ' ' << family.steps[i].name;
      }
    }
  }
}
