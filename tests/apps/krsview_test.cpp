// krsview as its users see it: the program is run, and its pictures, texts and exit status are read.
#include "apps/common/image_file.h"
#include "apps/common/json.h"
#include "apps/common/picture_file.h"
#include "tests/apps/file_kit.h"
#include "tests/support/plain_painter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/wait.h>

namespace fs = std::filesystem;

namespace {

struct Outcome {
  int status = -1;
  std::string out, err;
};

std::string textOf(fs::path const& file)
{
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string quoted(std::string const& s) { return "'" + s + "'"; }

Outcome view(TestFolder const& folder, std::vector<std::string> const& arguments)
{
  std::string command = quoted(KRSVIEW_PROGRAM) + " --headless";
  for (std::string const& a : arguments)
    command += " " + quoted(a);
  fs::path const out = folder.file("stdout.txt"), err = folder.file("stderr.txt");
  command += " >" + quoted(out.string()) + " 2>" + quoted(err.string()) + " </dev/null";
  int const raw = std::system(command.c_str());
  return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, textOf(out), textOf(err)};
}

long lines(std::string const& text) { return std::count(text.begin(), text.end(), '\n'); }

std::vector<std::uint32_t> pelsOf(fs::path const& picture, long& w, long& h)
{
  ccImageFile const file = cfReadImageFile(picture);
  w = file.width();
  h = file.height();
  std::vector<std::uint32_t> pels;
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x) {
      if (file.format == ceImageFormatGrey8) {
        std::uint32_t const v = file.grey8.getPel(x, y);
        pels.push_back(v << 16 | v << 8 | v);
      } else
        pels.push_back(file.rgb.getPel(x, y).word());
    }
  return pels;
}

struct Random {
  std::uint64_t state;
  std::uint64_t next()
  {
    std::uint64_t z = (state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  long below(long n) { return static_cast<long>(next() % static_cast<std::uint64_t>(n)); }
};

std::uint32_t word(plain::Rgb const& c)
{
  return static_cast<std::uint32_t>(c.r) << 16 | static_cast<std::uint32_t>(c.g) << 8 | static_cast<std::uint32_t>(c.b);
}

// A colour as a screen of so many bits shows it: its low bits are zero.
std::uint32_t shown(plain::Rgb c, int depth)
{
  if (depth == 15 || depth == 16) {
    c.r &= 0xF8;
    c.g &= depth == 15 ? 0xF8 : 0xFC;
    c.b &= 0xF8;
  }
  return word(c);
}

plain::Rgb grey(int v) { return {v, v, v}; }

// What krsview makes of one pel of a file before it is scaled.
struct Pels {
  enum Kind { grey8, grey12, rgb } kind;
  long w, h;
  std::vector<std::uint32_t> values;
  std::uint32_t lowest = 0, highest = 0;

  std::uint32_t seen(std::size_t i, int depth) const
  {
    std::uint32_t const v = values[i];
    if (kind == rgb) {
      plain::Rgb const c{static_cast<int>(v >> 16 & 255), static_cast<int>(v >> 8 & 255), static_cast<int>(v & 255)};
      if (depth == 32 || depth == 16)
        return shown(c, depth);
      return seen8((c.r + 2 * c.g + c.b) / 4, depth);
    }
    if (kind == grey8)
      return seen8(static_cast<int>(v), depth);
    return seen8(static_cast<int>((v - lowest) / ((highest - lowest) / 256 + 1)), depth);
  }
  static std::uint32_t seen8(int v, int depth)
  {
    return depth == 8 ? word(grey(std::clamp(v, 10, 240))) : shown(grey(v), depth);
  }
};

Pels randomPels(Random& random, Pels::Kind kind, long w, long h)
{
  Pels pels{kind, w, h, {}, 0, 0};
  for (long i = 0; i < w * h; ++i)
    pels.values.push_back(static_cast<std::uint32_t>(
        kind == Pels::grey8 ? random.below(256) : kind == Pels::grey12 ? 300 + random.below(3000) : random.below(1 << 24)));
  pels.lowest = *std::min_element(pels.values.begin(), pels.values.end());
  pels.highest = *std::max_element(pels.values.begin(), pels.values.end());
  return pels;
}

void writeNetpbm(fs::path const& file, Pels const& pels)
{
  std::ofstream out(file, std::ios::binary);
  out << (pels.kind == Pels::rgb ? "P6" : "P5") << "\n" << pels.w << " " << pels.h << "\n"
      << (pels.kind == Pels::grey12 ? 4095 : 255) << "\n";
  for (std::uint32_t v : pels.values) {
    if (pels.kind == Pels::rgb)
      out << static_cast<char>(v >> 16);
    if (pels.kind != Pels::grey8)
      out << static_cast<char>(v >> 8 & 255);
    out << static_cast<char>(v & 255);
  }
}

constexpr std::uint32_t kSurround = 0x808080;

}  // namespace

TEST(Krsview, showsRandomImagesExactlyAtEveryDepthZoomAndPan)
{
  TestFolder const folder;
  Random random{2};
  struct {
    char const* option;
    double magnification;
  } const zooms[] = {{"1", 1}, {"2", 2}, {"3", 3}, {"7", 7}, {"32", 32}, {"-2", 0.5}, {"-3", 1.0 / 3}, {"-5", 0.2}};
  long const sizes[][2] = {{1, 1}, {1, 90}, {130, 1}, {40, 30}, {61, 47}, {200, 150}, {333, 77}};
  int checked = 0;
  for (int depth : {8, 15, 16, 24, 32})
    for (auto const& size : sizes) {
      auto const kind = static_cast<Pels::Kind>(random.below(3));
      Pels const pels = randomPels(random, kind, size[0], size[1]);
      fs::path const image = folder.file("image.pnm"), picture = folder.file("shot.png");
      writeNetpbm(image, pels);
      auto const& zoom = zooms[random.below(8)];
      plain::View v;
      v.displayW = 60 + random.below(80);
      v.displayH = 40 + random.below(60);
      v.imageW = pels.w;
      v.imageH = pels.h;
      // The shorter edge keeps 8 pels, unless the image is smaller already.
      double const limit = std::min(std::max(8.0 / static_cast<double>(pels.w), 8.0 / static_cast<double>(pels.h)), 1.0);
      v.magnification = std::max(zoom.magnification, limit);
      long const wishX = random.below(800) - 400, wishY = random.below(800) - 400;
      long const reachX = std::max(v.displayW, v.imageW), reachY = std::max(v.displayH, v.imageH);
      v.panX = static_cast<double>(std::clamp(wishX, -reachX, reachX));
      v.panY = static_cast<double>(std::clamp(wishY, -reachY, reachY));
      if (random.below(2)) {
        v.panX = v.panY = 0;
      }
      Outcome const outcome =
          view(folder, {"--window", std::to_string(v.displayW) + "x" + std::to_string(v.displayH), "--depth",
                        std::to_string(depth), "--mag", zoom.option, "--pan",
                        (v.panX == 0 && v.panY == 0) ? "0,0" : std::to_string(wishX) + "," + std::to_string(wishY),
                        "--shot", picture.string(), image.string()});
      ASSERT_EQ(outcome.status, 0) << outcome.err;

      std::vector<std::uint32_t> seen;
      for (std::size_t i = 0; i < pels.values.size(); ++i)
        seen.push_back(pels.seen(i, depth));
      plain::Picture const expected = plain::displayPicture(v, seen, kSurround);
      long w = 0, h = 0;
      std::vector<std::uint32_t> const actual = pelsOf(picture, w, h);
      ASSERT_EQ(w, v.displayW);
      ASSERT_EQ(h, v.displayH);
      EXPECT_EQ(plain::firstDifference(expected, actual), "")
          << "kind " << kind << " " << pels.w << "x" << pels.h << " mag " << zoom.option << " depth " << depth << " pan "
          << v.panX << "," << v.panY << " window " << v.displayW << "x" << v.displayH;
      ++checked;
    }
  EXPECT_EQ(checked, 35);
}

TEST(Krsview, fitLandsOnAWholeReductionAndFitExactOnTheRatio)
{
  TestFolder const folder;
  Random random{3};
  writeNetpbm(folder.file("a.pgm"), randomPels(random, Pels::grey8, 1000, 1000));
  std::string const image = folder.file("a.pgm").string();

  // 400 / 1000: 1/2.5 becomes -3.5, truncated to -3.
  Outcome const fit = view(folder, {"--window", "400x400", "--fit", "--info", image});
  Outcome const exact = view(folder, {"--window", "400x400", "--fit-exact", "--info", image});

  EXPECT_EQ(cfReadJson(fit.out).value["mag"].number(), -3);
  EXPECT_NEAR(cfReadJson(fit.out).value["magExact"].number(), 1.0 / 3, 1e-12);
  EXPECT_EQ(cfReadJson(exact.out).value["magExact"].number(), 0.4);
}

TEST(Krsview, infoTellsOfFileAndView)
{
  TestFolder const folder;
  Random random{4};
  writeNetpbm(folder.file("part.pgm"), randomPels(random, Pels::grey12, 100, 40));
  std::string const image = folder.file("part.pgm").string();

  Outcome const outcome =
      view(folder, {"--window", "80x60", "--depth", "16", "--mag", "4", "--pan", "10,-5", "--info", image});

  ASSERT_EQ(outcome.status, 0) << outcome.err;
  ccJsonText const json = cfReadJson(outcome.out);
  ASSERT_TRUE(json) << json.error;
  ccJson const& info = json.value;
  char const* const keys[] = {"file", "width", "height", "type",    "bits",   "depth",
                              "mag",  "magExact", "pan", "overlay", "visible"};
  ASSERT_EQ(info.size(), 11u);
  for (std::size_t i = 0; i < 11; ++i)
    EXPECT_EQ(info.name(i), keys[i]);
  EXPECT_EQ(info["file"].text(), image);
  EXPECT_EQ(info["width"].number(), 100);
  EXPECT_EQ(info["height"].number(), 40);
  EXPECT_EQ(info["type"].text(), "grey16");
  EXPECT_EQ(info["bits"].number(), 12);
  EXPECT_EQ(info["depth"].number(), 16);
  EXPECT_EQ(info["mag"].number(), 4);
  EXPECT_EQ(info["magExact"].number(), 4);
  EXPECT_EQ(info["pan"], ccJson::array().push(10).push(-5));
  EXPECT_EQ(info["overlay"].text(), "none");
  // 80 by 60 pels are 20 by 15 image pels. The display's middle shows (50, 20) less the pan: columns 30 to 50, and rows
  // 17.5 to 32.5, which the window cuts in half.
  EXPECT_EQ(info["visible"], ccJson::array().push(30).push(17).push(20).push(16));
}

TEST(Krsview, typesAreNamedByTheFile)
{
  TestFolder const folder;
  Random random{5};
  char const* const names[] = {"grey8", "grey16", "rgb"};
  for (int kind = 0; kind < 3; ++kind) {
    writeNetpbm(folder.file("x.pnm"), randomPels(random, static_cast<Pels::Kind>(kind), 9, 9));
    Outcome const outcome = view(folder, {"--info", folder.file("x.pnm").string()});
    EXPECT_EQ(cfReadJson(outcome.out).value["type"].text(), names[kind]);
  }
}

TEST(Krsview, badFilesGetOneLineEachAndTheOthersStillShow)
{
  TestFolder const folder;
  Random random{6};
  writeNetpbm(folder.file("good.pgm"), randomPels(random, Pels::grey8, 20, 20));
  folder.file("cut.pgm", bytesOf("P5\n20 20\n255\nabc"));
  folder.file("big.pgm", bytesOf("P5\n16385 1\n255\n"));
  folder.file("text.png", bytesOf("this is no picture"));
  fs::create_directory(folder.file("empty"));

  Outcome const outcome = view(folder, {folder.file("missing.png").string(), folder.file("cut.pgm").string(),
                                        folder.file("good.pgm").string(), folder.file("big.pgm").string(),
                                        folder.file("text.png").string(), folder.file("empty").string(), "--shot",
                                        folder.file("shot.png").string(), "--info"});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(lines(outcome.err), 5) << outcome.err;
  for (char const* const name : {"missing.png", "cut.pgm", "big.pgm", "text.png", "empty"})
    EXPECT_NE(outcome.err.find(name), std::string::npos) << name;
  EXPECT_EQ(cfReadJson(outcome.out).value["file"].text(), folder.file("good.pgm").string());
  EXPECT_TRUE(cfReadImageFile(folder.file("shot.png")));
}

TEST(Krsview, aDirectoryShowsItsFirstGoodImageByName)
{
  TestFolder const folder;
  Random random{7};
  fs::path const images = folder.file("images");
  fs::create_directory(images);
  writeNetpbm(images / "b.pgm", randomPels(random, Pels::grey8, 12, 12));
  writeNetpbm(images / "c.pgm", randomPels(random, Pels::grey8, 13, 13));
  std::ofstream(images / "a.pgm") << "broken";
  std::ofstream(images / "notes.txt") << "no image";

  Outcome const outcome = view(folder, {images.string(), "--info"});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(lines(outcome.err), 1) << outcome.err;
  EXPECT_EQ(cfReadJson(outcome.out).value["width"].number(), 12);
}

TEST(Krsview, withoutImagesItTakesTheBundledSamples)
{
  TestFolder const folder;

  Outcome const outcome = view(folder, {"--info"});

  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_NE(cfReadJson(outcome.out).value["file"].text().find("samples"), std::string::npos);
}

TEST(Krsview, badOptionsEndWithStatusOneAndOneLine)
{
  TestFolder const folder;
  std::vector<std::vector<std::string>> const wrong = {
      {"--nonsense"}, {"--window"},        {"--window", "0x10"},  {"--window", "10x"},   {"--window", "20000x5"},
      {"--depth"},    {"--depth", "12"},   {"--depth", "32x"},    {"--mag", "2.5"},      {"--mag", ""},
      {"--pan", "1"}, {"--pan", "1,nan"},  {"--pan", "1,2,3"},    {"--shot"},            {"--shot", ""},
      {"--mode", "fly"}, {"--quit-after", "-1"}, {"--script"}, {"--script", "/no/such/file"}, {"--overlay", "much"},
      {"--fit=3"},    {"--headless=yes"}, {"--draw"},       {"--draw", ""},      {"--pages", "x"},
      {"--page", "pens"}, {"--gallery", "x.png"}, {"--gallery", "--draw", "x.json"}, {"--gallery", "--pages", ""},
      {"--gallery", "--page", "nothing"}, {"--gallery=pens"},
  };
  for (auto const& arguments : wrong) {
    Outcome const outcome = view(folder, arguments);
    EXPECT_EQ(outcome.status, 1) << arguments[0];
    EXPECT_EQ(lines(outcome.err), 1) << arguments[0] << ": " << outcome.err;
    EXPECT_EQ(outcome.out, "") << arguments[0];
  }
}

TEST(Krsview, anUnwritableOutputEndsWithStatusOneAndLeavesNothing)
{
  TestFolder const folder;
  Random random{8};
  writeNetpbm(folder.file("a.pgm"), randomPels(random, Pels::grey8, 20, 20));
  std::string const image = folder.file("a.pgm").string();

  Outcome const nowhere = view(folder, {"--shot", folder.file("no/such/folder/x.png").string(), image});
  Outcome const device = view(folder, {"--shot", "/dev/full", image});

  EXPECT_EQ(nowhere.status, 1);
  EXPECT_EQ(lines(nowhere.err), 1) << nowhere.err;
  EXPECT_EQ(device.status, 1);
  EXPECT_EQ(lines(device.err), 1) << device.err;
  EXPECT_FALSE(fs::exists(folder.file("no")));
}

TEST(Krsview, theShotReplacesAnEarlierOneWholeAndLeavesNoOtherFile)
{
  TestFolder const folder;
  Random random{9};
  fs::create_directory(folder.file("out"));
  writeNetpbm(folder.file("a.pgm"), randomPels(random, Pels::grey8, 20, 20));
  std::ofstream(folder.file("out/x.png")) << "an earlier picture";

  Outcome const outcome = view(folder, {"--shot", folder.file("out/x.png").string(), folder.file("a.pgm").string()});

  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_TRUE(cfReadImageFile(folder.file("out/x.png")));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.file("out")), {}), 1);
}

TEST(Krsview, scrollBarsTakeTheirPartOfTheWindow)
{
  TestFolder const folder;
  Random random{10};
  Pels const pels = randomPels(random, Pels::grey8, 300, 300);
  writeNetpbm(folder.file("a.pgm"), pels);

  Outcome const outcome = view(folder, {"--window", "120x100", "--scrollbars", "--info", "--shot",
                                        folder.file("shot.png").string(), folder.file("a.pgm").string()});

  ASSERT_EQ(outcome.status, 0) << outcome.err;
  // Bars are 16 pels wide: 104 by 84 are left for the image.
  EXPECT_EQ(cfReadJson(outcome.out).value["visible"], ccJson::array().push(98).push(108).push(104).push(84));
  long w = 0, h = 0;
  std::vector<std::uint32_t> const shot = pelsOf(folder.file("shot.png"), w, h);
  ASSERT_EQ(w, 120);
  ASSERT_EQ(h, 100);
  for (long y = 0; y < 84; ++y)
    for (long x = 0; x < 104; ++x)
      ASSERT_EQ(shot[static_cast<std::size_t>(y * 120 + x)],
                pels.seen(static_cast<std::size_t>((y + 108) * 300 + x + 98), 32))
          << x << "," << y;
}

namespace {

Outcome script(TestFolder const& folder, std::string const& lines, std::vector<std::string> arguments)
{
  std::ofstream(folder.file("script.txt")) << lines;
  arguments.insert(arguments.begin(), {"--script", folder.file("script.txt").string()});
  return view(folder, arguments);
}

// A column of greys: pel (x, y) is 2 x + y.
std::string greyFile(TestFolder const& folder, long w, long h)
{
  Pels pels{Pels::grey8, w, h, {}, 0, 0};
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      pels.values.push_back(static_cast<std::uint32_t>((2 * x + y) & 255));
  writeNetpbm(folder.file("grey.pgm"), pels);
  return folder.file("grey.pgm").string();
}

std::string triple(long v) { return std::to_string(v) + " " + std::to_string(v) + " " + std::to_string(v); }

}  // namespace

TEST(KrsviewScript, aHandZoomsPansAndScrolls)
{
  TestFolder const folder;
  std::string const image = greyFile(folder, 100, 80);
  // Window and image have the same size, so that pel (x, y) shows image pel (x, y).
  std::string const lines = "# the wheel keeps the pel under the cursor\n"
                            "expect 20 30 " + triple(70) + "\n"
                            "wheel 1 20 30\n"
                            "expect 20 30 " + triple(70) + "\n"
                            "wheel -1 20 30\n"
                            "expect 20 30 " + triple(70) + "\n"
                            "char 0\n"
                            "expect 0 0 " + triple(0) + "\n"
                            "char I\n"
                            "press left 20 30\nrelease left 20 30\n"
                            "expect 50 40 " + triple(70) + "\n"
                            "char 1\n"
                            "char A\n"
                            "press left 50 40\nmove 45 42\nrelease left 45 42\n"
                            "expect 45 42 " + triple(70) + "\n"
                            "command 40506\n"
                            "scroll horz 0\n"
                            "key down left\n"
                            "key up left\n"
                            "info\n";

  Outcome const outcome = script(folder, lines, {"--window", "100x80", image});

  EXPECT_EQ(outcome.status, 0) << outcome.err;
  // A small step of 80 * 0.02 pels to the right, then the view moves a tenth of 100 pels to the left.
  EXPECT_NEAR(cfReadJson(outcome.out).value["pan"].at(0).number(), 1.6 + 10, 1e-9);
}

TEST(KrsviewScript, keysStepThroughTheImages)
{
  TestFolder const folder;
  Random random{11};
  writeNetpbm(folder.file("a.pgm"), randomPels(random, Pels::grey8, 10, 10));
  writeNetpbm(folder.file("c.pgm"), randomPels(random, Pels::grey8, 12, 12));
  std::ofstream(folder.file("b.pgm")) << "broken";

  Outcome const outcome =
      script(folder, "key down PageDown\ninfo\nkey down pagedown\ninfo\nkey down pageup\ninfo\n",
             {folder.file("a.pgm").string(), folder.file("b.pgm").string(), folder.file("c.pgm").string()});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(lines(outcome.err), 1);
  std::istringstream in(outcome.out);
  std::vector<double> widths;
  for (std::string line; std::getline(in, line);)
    widths.push_back(cfReadJson(line).value["width"].number());
  EXPECT_EQ(widths, (std::vector<double>{12, 12, 10}));
}

TEST(KrsviewScript, anExpectationThatIsNotMetEndsWithStatusThreeAndBothColours)
{
  TestFolder const folder;
  std::string const image = greyFile(folder, 10, 10);

  Outcome const outcome = script(folder, "expect 5 5 15 15 15\nexpect 5 5 16 15 15\ninfo\n", {"--window", "10x10", image});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_NE(outcome.err.find("15 15 15"), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.err.find("16 15 15"), std::string::npos);
  EXPECT_EQ(outcome.out, "");
}

TEST(KrsviewScript, anUnknownLineEndsWithStatusFourAndItsNumber)
{
  TestFolder const folder;
  std::string const image = greyFile(folder, 10, 10);
  for (std::string const line : {"jump 3 4", "press left 3", "press up 3 4", "move 1", "move a b", "key down nokey",
                                 "char ab", "wheel 1", "expect 1 2 3", "expect 1 2 3 4 256", "resize 0 5", "tick -1",
                                 "scroll diag 1", "scroll horz 9", "command x", "shot", "info now", "lose it",
                                 "press left 1 2 alt"}) {
    Outcome const outcome = script(folder, "# a comment\n\n" + line + "\n", {image});
    EXPECT_EQ(outcome.status, 4) << line;
    EXPECT_NE(outcome.err.find("line 3"), std::string::npos) << outcome.err;
  }
}

TEST(KrsviewScript, aKnownWordWithWrongWordsBehindItIsToldWithItsForm)
{
  TestFolder const folder;
  std::string const image = greyFile(folder, 10, 10);
  EXPECT_EQ(script(folder, "press left 3\n", {image}).err,
            "krsview: script line 1 is not understood: press left 3 (press left|middle|right X Y [shift] [ctrl])\n");
  EXPECT_EQ(script(folder, "\nlose it\n", {image}).err, "krsview: script line 2 is not understood: lose it (lose)\n");
}

TEST(KrsviewScript, depthsOf15And16ShowChannelsWithLowBitsZero)
{
  TestFolder const folder;
  std::ofstream(folder.file("c.ppm")) << "P3\n1 1\n255\n255 131 71\n";
  std::string const image = folder.file("c.ppm").string();

  EXPECT_EQ(script(folder, "expect 0 0 248 128 64\n", {"--window", "1x1", "--depth", "16", image}).status, 0);
  // (255 + 2 * 131 + 71) / 4 = 147, as grey of 5 bits 144.
  EXPECT_EQ(script(folder, "expect 0 0 144 144 144\n", {"--window", "1x1", "--depth", "15", image}).status, 0);
  EXPECT_EQ(script(folder, "expect 0 0 147 147 147\n", {"--window", "1x1", "--depth", "24", image}).status, 0);
}

TEST(KrsviewScript, overlaysLeaveThePictureAndLostSurfacesComeBack)
{
  TestFolder const folder;
  std::string const image = greyFile(folder, 40, 30);
  for (std::string const overlay : {"none", "plane", "chroma"})
    for (std::string const depth : {"8", "16", "32"}) {
      auto const look = [&](std::string const& name, std::string const& lines) {
        Outcome const outcome = script(folder, lines, {"--window", "60x50", "--depth", depth, "--overlay", overlay,
                                                       "--mag", "2", "--info", "--shot", folder.file(name).string(), image});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(cfReadJson(outcome.out).value["overlay"].text(), overlay);
        long w = 0, h = 0;
        return pelsOf(folder.file(name), w, h);
      };
      auto const plain = look("a.png", "");
      EXPECT_EQ(look("b.png", "lose\n"), plain) << overlay << " " << depth;
      EXPECT_EQ(look("c.png", "lose\nresize 80 70\nlose\nresize 60 50\n"), plain) << overlay << " " << depth;
    }
}

TEST(KrsviewScript, linesFromStandardInputAreAnsweredOneByOne)
{
  TestFolder const folder;
  std::string const image = greyFile(folder, 10, 10);
  std::string const command = "printf 'move 1 1\\n# nothing\\ntick 5\\n' | " + quoted(KRSVIEW_PROGRAM) +
                              " --headless --script - " + quoted(image) + " >" + quoted(folder.file("o.txt").string());

  EXPECT_EQ(std::system(command.c_str()), 0);

  EXPECT_EQ(textOf(folder.file("o.txt")), "ok\nok\nok\n");
}

// ---- Draw files and the gallery

TEST(KrsviewDraw, aFileIsDrawnOverTheImageAtItsZoomAndPan)
{
  TestFolder const folder;
  std::string const image = greyFile(folder, 100, 80);
  std::ofstream(folder.file("marks.json")) << R"({"version": 1, "draw": [
      {"kind": "lineSeg", "coords": "image", "p1": [50, 40], "p2": [52, 40], "color": "red", "width": 1, "style": "solid", "fill": false},
      {"kind": "fillRect", "coords": "display", "ul": [2, 3], "sz": [4, 5], "color": "green", "layer": "image"}]})";
  std::string const marks = folder.file("marks.json").string();
  // In a window of the image's size image (50, 40) shows at (50, 40), eightfold with pan (1, -1) at (58, 32).
  Outcome const plain = script(folder, "expect 50 40 255 0 0\nexpect 52 40 255 0 0\nexpect 53 40 " + triple(146) +
                                           "\nexpect 2 3 0 255 0\nexpect 6 3 " + triple(15) + "\n",
                               {"--window", "100x80", "--draw", marks, image});
  Outcome const zoomed = script(folder, "expect 58 32 255 0 0\nexpect 74 32 255 0 0\nexpect 58 33 " + triple(140) +
                                            "\nexpect 75 32 " + triple(144) + "\nexpect 2 3 0 255 0\nexpect 5 7 0 255 0\n",
                                {"--window", "100x80", "--mag", "8", "--pan", "1,-1", "--draw", marks, image});

  EXPECT_EQ(plain.status, 0) << plain.err;
  EXPECT_EQ(zoomed.status, 0) << zoomed.err;
}

TEST(KrsviewDraw, drawingsStayOverEveryImageAndFollowTheHand)
{
  TestFolder const folder;
  Random random{12};
  writeNetpbm(folder.file("a.pgm"), randomPels(random, Pels::grey8, 100, 80));
  writeNetpbm(folder.file("b.pgm"), randomPels(random, Pels::rgb, 100, 80));
  std::ofstream(folder.file("one.json")) << R"({"version": 1, "draw": [{"kind": "point", "pos": [20, 30], "color": "red"}]})";
  std::ofstream(folder.file("two.json")) << R"({"version": 1, "draw": [{"kind": "point", "pos": [60, 30], "color": "green"}]})";

  Outcome const outcome = script(folder,
                                 "expect 20 30 255 0 0\nexpect 60 30 0 255 0\nkey down pagedown\nexpect 20 30 255 0 0\n"
                                 "expect 60 30 0 255 0\nchar A\npress left 50 40\nmove 45 42\nrelease left 45 42\n"
                                 "expect 15 32 255 0 0\nlose\nexpect 15 32 255 0 0\nexpect 55 32 0 255 0\n",
                                 {"--window", "100x80", "--draw", folder.file("one.json").string(), "--draw",
                                  folder.file("two.json").string(), folder.file("a.pgm").string(), folder.file("b.pgm").string()});

  EXPECT_EQ(outcome.status, 0) << outcome.err;
}

TEST(KrsviewDraw, theOverlayComesWithWhatIsDrawnOnItUnlessItIsChosen)
{
  TestFolder const folder;
  std::string const image = greyFile(folder, 10, 10);
  std::ofstream(folder.file("over.json")) << R"({"version": 1, "draw": [{"kind": "point", "pos": [2, 3]}]})";
  std::ofstream(folder.file("image.json")) << R"({"version": 1, "draw": [{"kind": "point", "pos": [2, 3], "layer": "image"}]})";
  auto const overlay = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--info", image});
    return cfReadJson(view(folder, arguments).out).value["overlay"].text();
  };

  EXPECT_EQ(overlay({"--draw", folder.file("over.json").string()}), "plane");
  EXPECT_EQ(overlay({"--draw", folder.file("image.json").string()}), "none");
  EXPECT_EQ(overlay({"--draw", folder.file("over.json").string(), "--overlay", "none"}), "none");
  EXPECT_EQ(overlay({"--draw", folder.file("image.json").string(), "--overlay", "plane"}), "plane");
}

TEST(KrsviewDraw, severalFilesDoNotDisturbEachOther)
{
  TestFolder const folder;
  std::string const image = greyFile(folder, 100, 80);
  // A clip that is never lifted, and a font whose text cannot be seen.
  std::ofstream(folder.file("one.json")) << R"({"version": 1, "draw": [
      {"kind": "text", "text": "x", "at": [500, 10], "font": {"height": 9}},
      {"kind": "clipRect", "ul": [1, 1], "sz": [2, 2]},
      {"kind": "sketch", "at": [1, 1], "draw": [{"kind": "clipRect", "ul": [1, 1], "sz": [2, 2]}]}]})";
  std::ofstream(folder.file("two.json")) << R"({"version": 1, "draw": [
      {"kind": "text", "text": "two", "at": [10, 10], "color": "red", "font": {"height": 40, "bold": true}},
      {"kind": "text", "text": "two", "at": [10, 60], "color": "red"}]})";
  auto const look = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--window", "100x80", "--shot", folder.file("s.png").string(), image});
    EXPECT_EQ(view(folder, arguments).status, 0);
    long w = 0, h = 0;
    return pelsOf(folder.file("s.png"), w, h);
  };

  auto const alone = look({"--draw", folder.file("two.json").string()});

  EXPECT_EQ(look({"--draw", folder.file("one.json").string(), "--draw", folder.file("two.json").string()}), alone);
  EXPECT_GT(std::count(alone.begin(), alone.end(), 0xFF0000u), 200);
}

TEST(KrsviewDraw, aBadFileEndsWithStatusTwoAndOneLineAndNoPicture)
{
  TestFolder const folder;
  std::string const image = greyFile(folder, 10, 10);
  std::ofstream(folder.file("bad.json")) << R"({"version": 1, "draw": [{"kind": "point", "pos": [2, 3]}, {"kind": "circle", "center": [2, 3]}]})";
  std::ofstream(folder.file("good.json")) << R"({"version": 1, "draw": []})";
  for (std::string const name : {"bad.json", "missing.json"}) {
    Outcome const outcome = view(folder, {"--draw", folder.file("good.json").string(), "--draw", folder.file(name).string(), "--shot",
                                          folder.file("shot.png").string(), "--info", image});
    EXPECT_EQ(outcome.status, 2) << name;
    EXPECT_EQ(lines(outcome.err), 1) << outcome.err;
    EXPECT_NE(outcome.err.find(name), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_FALSE(fs::exists(folder.file("shot.png")));
  }
  EXPECT_NE(view(folder, {"--draw", folder.file("bad.json").string(), image}).err.find("entry 1 (circle): radius"), std::string::npos);
}

TEST(KrsviewGallery, writesAPictureOfEachPage)
{
  TestFolder const folder;

  Outcome const outcome = view(folder, {"--gallery", "--pages", folder.file("made/pages").string()});

  EXPECT_EQ(outcome.status, 0) << outcome.err;
  int count = 0;
  for (fs::directory_entry const& entry : fs::directory_iterator(folder.file("made/pages"))) {
    EXPECT_EQ(entry.path().filename().string().find("gallery_"), 0u);
    ccImageFile const picture = cfReadImageFile(entry.path());
    EXPECT_EQ(picture.width(), 640) << entry.path();
    EXPECT_EQ(picture.height(), 480) << entry.path();
    ++count;
  }
  EXPECT_EQ(count, 14);
}

TEST(KrsviewGallery, aPageAFolderThatCannotBeWrittenAndTheDepths)
{
  TestFolder const folder;
  EXPECT_EQ(cfReadJson(view(folder, {"--gallery", "--page", "text", "--info"}).out).value["page"].text(), "text");
  EXPECT_EQ(view(folder, {"--gallery", "--pages", "/dev/null/x"}).status, 1);
  for (std::string const depth : {"8", "15", "16", "24", "32"}) {
    Outcome const outcome = view(folder, {"--gallery", "--depth", depth, "--page", "colours", "--shot", folder.file("c.png").string()});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    long w = 0, h = 0;
    std::vector<std::uint32_t> const pels = pelsOf(folder.file("c.png"), w, h);
    // Red at its place among the colours by name.
    EXPECT_EQ(pels[static_cast<std::size_t>(90 * w + 40 + 5 * 77)], depth == "15" || depth == "16" ? 0xF80000u : 0xFF0000u) << depth;
  }
}

TEST(KrsviewGallery, scriptsTurnItsPages)
{
  TestFolder const folder;

  Outcome const outcome = script(folder, "info\nkey down pagedown\ninfo\nkey down space\ninfo\nshot " + folder.file("p.png").string() + "\n",
                                 {"--gallery"});

  EXPECT_EQ(outcome.status, 0) << outcome.err;
  std::istringstream in(outcome.out);
  std::vector<std::string> pages;
  for (std::string line; std::getline(in, line);)
    pages.push_back(cfReadJson(line).value["page"].text());
  EXPECT_EQ(pages, (std::vector<std::string>{"pens", "polygons", "rectangles"}));
  EXPECT_TRUE(cfReadImageFile(folder.file("p.png")));
}

TEST(Krsview, anImageThatPromisesFarMoreThanItsFileNeedsToBeAskedFor)
{
  TestFolder const folder;
  auto const half = [](unsigned v) { return Bytes{static_cast<unsigned char>(v), static_cast<unsigned char>(v >> 8)}; };
  // 16384 x 4200 pels in run lengths that are all left out: 262 MiB of colour.
  Bytes const file = bytesOf("BM") + Bytes(8) + half(62) + Bytes(2) + Bytes{40, 0, 0, 0} + half(16384) + half(0) + half(4200) +
                     half(0) + half(1) + half(8) + Bytes{1, 0, 0, 0} + Bytes(12) + half(2) + Bytes(6) +
                     Bytes{0, 0, 255, 0, 0, 255, 0, 0} + Bytes(8400);
  std::string const name = folder.file("wide.bmp", file).string();

  Outcome const refused = view(folder, {"--headless", "--info", name});
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.err, "krsview: " + name + ": unsupported: a picture of 262 MiB from a file of " +
                             std::to_string(file.size()) + " bytes (--large allows it)\n");
  Outcome const shown = view(folder, {"--headless", "--info", "--large", name});
  EXPECT_EQ(shown.status, 0) << shown.err;
  EXPECT_NE(shown.out.find("\"width\":16384"), std::string::npos) << shown.out;
}

TEST(Krsview, messagesQuoteNeitherControlCharactersNorMoreThanTwoHundred)
{
  TestFolder const folder;
  std::string const evil = "\x1b[2J\x9b" + std::string(400, 'x');
  std::vector<std::vector<std::string>> const wrong = {
      {"--" + evil}, {"--depth", evil}, {"--script", evil}, {"--gallery", "--page", evil}, {"--draw", evil}, {evil}, {"--shot", evil},
  };
  for (auto const& arguments : wrong) {
    Outcome const outcome = view(folder, arguments);
    EXPECT_NE(outcome.status, 0) << arguments[0];
    EXPECT_EQ(lines(outcome.err), 1) << outcome.err;
    EXPECT_EQ(outcome.err.find_first_of("\x1b\x9b"), std::string::npos) << arguments[0];
    EXPECT_LE(std::count(outcome.err.begin(), outcome.err.end(), 'x'), 205) << arguments[0];  // some are our own words
  }
  Outcome const bad = script(folder, evil + "\n", {greyFile(folder, 10, 10)});
  EXPECT_EQ(bad.status, 4);
  EXPECT_EQ(bad.err.find_first_of("\x1b\x9b"), std::string::npos);
  EXPECT_LE(std::count(bad.err.begin(), bad.err.end(), 'x'), 200);
}

TEST(KrsviewScript, anEndlessLineIsNotUnderstood)
{
  TestFolder const folder;
  std::string const image = greyFile(folder, 10, 10);
  Outcome const most = script(folder, "#" + std::string(8191, 'x') + "\njump\n", {image});
  EXPECT_EQ(most.err, "krsview: script line 2 is not understood: jump\n");
  Outcome const longer = script(folder, "\n#" + std::string(8192, 'x') + "\n", {image});
  EXPECT_EQ(longer.status, 4);
  EXPECT_EQ(longer.err, "krsview: script line 2 is longer than 8192 characters\n");
}

TEST(Krsview, helpAndVersionAnswerOnStandardOutput)
{
  TestFolder const folder;

  Outcome const help = view(folder, {"--help"});
  Outcome const version = view(folder, {"--version"});

  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("--fit-exact"), std::string::npos);
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out.find("krsview "), 0u);
  EXPECT_EQ(help.err + version.err, "");
}
