// Draw files, JSON texts and messages: what they take is bounded, and what they say is fit for a terminal.
#include "apps/common/error_line.h"
#include "apps/common/json.h"
#include "apps/krsview/draw_file.h"
#include "apps/krsview/options.h"
#include "tests/apps/file_kit.h"
#include "tests/apps/heap_watch.h"

#include <gtest/gtest.h>

#include <ctime>
#include <functional>

namespace {

constexpr std::size_t MiB = 1 << 20;

std::string repeated(std::string const& piece, std::size_t times, std::string const& between = ",")
{
  std::string out;
  for (std::size_t i = 0; i < times; ++i)
    out += (i ? between : "") + piece;
  return out;
}

std::string drawing(std::string const& entries, std::string const& more = "")
{
  return "{\"version\": 1, " + more + "\"draw\": [" + entries + "]}";
}

std::string errorOf(std::string const& text) { return cfReadDrawing(text, "marks.json").error; }

double seconds(std::function<void()> const& act)
{
  std::clock_t const start = std::clock();
  act();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double kSlower = 20;
#else
constexpr double kSlower = 1;
#endif

}  // namespace

TEST(Quoted, whatATerminalWouldObeyBecomesQuestionMarks)
{
  struct {
    char const* text;
    char const* expected;
  } const cases[] = {
      {"plain text, 3 words", "plain text, 3 words"},
      {"a\tb\nc\rd\x1b[2Je\x7f", "a?b?c?d?[2Je?"},
      {"\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x99\x82", "\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x99\x82"},
      {"\xC2\x9B[31m", "?[31m"},                        // a control character of two bytes
      {"\x9B[31m \xE4 \xC3", "?[31m ? ?"},              // no UTF-8
      {"\xC0\x8A\xED\xA0\x80", "?????"},                // overlong, a surrogate
      {"\xE2\x80\xAEtxt\xE2\x81\xA6\xE2\x80\xA8", "?txt??"},  // turned writing, a line's end
      {"", ""},
  };
  for (auto const& c : cases)
    EXPECT_EQ(cf_quoted(c.text), c.expected);
  EXPECT_EQ(cf_quoted(std::string("a\0b", 3)), "a?b");
}

TEST(Quoted, moreThanTwoHundredCharactersAreCut)
{
  std::string const most(200, 'x');
  EXPECT_EQ(cf_quoted(most), most);
  EXPECT_EQ(cf_quoted(most + "y"), std::string(197, 'x') + "...");
  EXPECT_EQ(cf_quoted(repeated("\xC3\xA4", 300, "")), repeated("\xC3\xA4", 197, "") + "...");
  EXPECT_EQ(cf_quoted("abcdef", 5), "ab...");
  EXPECT_EQ(cf_quoted(std::string(1 << 24, '\n')), std::string(197, '?') + "...");
}

TEST(Messages, quoteNoMoreThanTwoHundredCharactersOfFilesFieldsAndOptions)
{
  std::string const evil = std::string("\\u001b[2J\\u007f\\u009b") + std::string(5000, 'x');
  std::string const raw = std::string("\x1b[2J\n\x9b") + std::string(5000, 'x');
  std::vector<std::string> messages = {
      errorOf(drawing(R"({"kind": ")" + evil + R"("})")),
      errorOf(drawing(R"({"kind": "circle", "center": [1, 2], "radius": 3, ")" + evil + R"(": 1})")),
      errorOf(drawing(R"({"kind": "circle", "center": [1, 2], "radius": ")" + evil + R"("})")),
      errorOf(drawing(R"({"kind": "shapeTree", "shapes": [{"kind": ")" + evil + R"("}]})")),
      errorOf(drawing(R"({"kind": "point", "pos": [1, 2], "color": ")" + evil + R"("})")),
      errorOf("{\"version\": 1, \"" + evil + "\": 2, \"draw\": []}"),
      errorOf("[\"" + raw),
      cfReadDrawFile(raw).error,
      cfReadImageFile(raw).error,
      cfListImageFiles(raw).error,
      cfReadImageBytes(nullptr, 0, raw).error,
  };
  for (char const* name : {"--window", "--depth", "--mag", "--pan", "--mode", "--overlay", "--quit-after"}) {
    ccViewOptions options;
    messages.push_back(cfParseViewOptions({name, raw}, options));
  }
  for (std::string const& argument : {"--" + raw, "-" + raw, "--window=" + raw, "--fit=" + raw}) {
    ccViewOptions options;
    messages.push_back(cfParseViewOptions({argument}, options));
  }
  for (std::string const& m : messages) {
    EXPECT_FALSE(m.empty());
    EXPECT_EQ(m, cf_quoted(m, 100000)) << "a control character";
    EXPECT_LE(std::count(m.begin(), m.end(), 'x'), 200) << m;
  }
}

TEST(HostileJson, valuesAndStringsAreLimited)
{
  EXPECT_EQ(cfReadJson("[" + repeated("0", cfJsonValueLimit - 1) + "]").error, "");
  EXPECT_EQ(cfReadJson("[" + repeated("0", cfJsonValueLimit) + "]").error, "line 1, column 2000000: too many values");
  EXPECT_EQ(cfReadJson("[\"" + std::string(cfJsonStringLimit, 'x') + "\"]").error, "");
  EXPECT_EQ(cfReadJson("[\"" + std::string(cfJsonStringLimit + 2, 'x') + "\"]").error, "line 1, column 2: this text is too long");
  EXPECT_EQ(cfReadJson("{\"" + std::string(cfJsonStringLimit + 2, 'x') + "\":1}").error,
            "line 1, column 2: this text is too long");
}

TEST(HostileJson, noTextTakesMoreThanAQuarterOfAGigabyteOrAFewSeconds)
{
  std::string members = "{";
  for (int i = 0; i < 650000; ++i)
    members += (i ? ",\"" : "\"") + std::to_string(1000000 + i) + "\":0";
  std::string const texts[] = {
      "[" + repeated("0", cfJsonValueLimit - 1) + "]",
      "[" + repeated("[0]", cfJsonValueLimit / 2 - 1) + "]",
      "[" + repeated(R"({"a":0})", cfJsonValueLimit / 2 - 1) + "]",
      "[" + repeated("\"sixteen letters.\"", 400000) + "]",
      "[" + repeated("[]", cfJsonValueLimit - 1) + "]",
      members + "}",
      std::string(8 * MiB, '['),
      "[" + std::string(8 * MiB - 2, '1') + "]",
  };
  for (std::string const& text : texts) {
    ASSERT_LE(text.size(), cfJsonSizeLimit);
    HeapWatch const watch;
    EXPECT_LE(seconds([&] { (void)cfReadJson(text); }), 3 * kSlower) << text.substr(0, 20);
    EXPECT_LE(watch.peak(), 256 * MiB) << text.substr(0, 20);
  }
}

TEST(HostileDrawFile, fontsAndEntriesAreLimited)
{
  std::string fonts, more;
  for (int i = 0; i < 257; ++i) {
    (i < 256 ? fonts : more) += std::string(i ? "," : "") + R"({"kind": "text", "text": "a", "at": [1, 2], "font": {"family": "f)" +
                                std::to_string(i) + "\"}}";
  }
  EXPECT_EQ(errorOf(drawing(fonts)), "");
  EXPECT_EQ(errorOf(drawing(fonts + more)),
            "marks.json: entry 256 (text): font: expected one of at most 256 different fonts, found {\"family\":\"f256\"}");
  EXPECT_EQ(errorOf(drawing(R"({"kind": "text", "text": "a", "at": [1, 2], "font": {"family": ")" + std::string(201, 'f') + "\"}}"))
                .substr(0, 90),
            "marks.json: entry 0 (text): font: family: expected a name of at most 200 bytes, found \"fff");

  std::string const entry = R"({"kind": "point", "pos": [1, 2]})";
  EXPECT_EQ(errorOf(drawing(repeated(entry, cfMostDrawEntries))), "");
  EXPECT_EQ(errorOf(drawing(repeated(entry, cfMostDrawEntries + 1))),
            "marks.json: entry 65536: expected at most 65536 entries in a file");
  EXPECT_EQ(errorOf(drawing(R"({"kind": "sketch", "draw": [)" + repeated(entry, cfMostDrawEntries) + "]}")),
            "marks.json: entry 0 (sketch): draw[65535]: expected at most 65536 entries in a file");
}

TEST(HostileDrawFile, anEndlessFileIsReadUpToTheLimit)
{
  if (!std::filesystem::exists("/dev/zero"))
    GTEST_SKIP() << "no endless file here";
  HeapWatch const watch;
  EXPECT_EQ(cfReadDrawFile("/dev/zero").error, "/dev/zero: the text is longer than 8388608 bytes");
  EXPECT_LE(watch.peak(), 64 * MiB);
}

TEST(HostileDrawFile, longListsCostNoMoreThanSecondsAndTheirShare)
{
  std::string const points = repeated("[1.5,2]", 300000), near = repeated("[1,2],[3,1]", 120000);
  std::string const vertices = repeated(R"({"point":[1,2]},{"point":[3,1],"roundingSize":0.1})", 70000);
  std::string const row = "[" + repeated("7", 1000) + "]";
  std::string const entries[] = {
      R"({"kind": "polygon", "points": [)" + points + "]}",
      R"({"kind": "polyline", "points": [)" + points + "]}",
      R"({"kind": "pointSet", "points": [)" + points + "]}",
      R"({"kind": "deBoorSpline", "controlPoints": [)" + near + "]}",
      R"({"kind": "hermiteSpline", "controlPoints": [)" + near + "]}",
      R"({"kind": "interpSpline", "controlPoints": [)" + near + "]}",
      R"({"kind": "genPoly", "vertices": [)" + vertices + "]}",
      R"({"kind": "wireframe", "vertices": [)" + vertices + "]}",
      R"({"kind": "pels", "at": [1, 2], "grey8": [)" + repeated(row, 900) + "]}",
      R"({"kind": "pels", "at": [1, 2], "rgb": [)" + repeated(row, 900) + "]}",
      R"({"kind": "shapeTree", "shapes": [)" + repeated(R"({"kind": "lineSeg", "p1": [1, 2], "p2": [3, 4]})", 100000) + "]}",
      R"({"kind": "drawTo", "start": [1, 2], "to": [)" + points + "]}",
  };
  for (std::string const& entry : entries) {
    std::string const text = drawing(entry);
    ASSERT_LE(text.size(), cfJsonSizeLimit) << entry.substr(0, 30);
    HeapWatch const watch;
    double const spent = seconds([&] { (void)cfReadDrawing(text, "marks.json"); });
    EXPECT_LE(spent, 4 * kSlower) << entry.substr(0, 30);
    EXPECT_LE(watch.peak(), 272 * MiB) << entry.substr(0, 30);
  }
}

TEST(HostileDrawFile, aTransformWithoutAnInverseNamesFileEntryAndField)
{
  struct {
    char const* map;
    char const* field;  // null: it is taken
  } const cases[] = {
      {R"("matrix": [1e200, 0, 0, 1e200])", "matrix"},    {R"("matrix": [1e300, 1e300, -1e300, 1e300])", "matrix"},
      {R"("matrix": [1e-200, 0, 0, 1e-200])", "matrix"},  {R"("matrix": [1e-160, 0, 0, 1e-160])", "matrix"},
      {R"("matrix": [1, 1, 1, 1.0000000000000002])", "matrix"}, {R"("matrix": [0, 0, 0, 0])", "matrix"},
      {R"("matrix": [1e-16, 0, 0, 1])", "matrix"},        {R"("matrix": [1, 2, 3])", "matrix"},
      {R"("trans": [1e300, 0])", "trans"},                {R"("matrix": [1e-10, 0, 0, 1], "trans": [1e10, 0])", "trans"},
      {R"("trans": [1])", "trans"},                       {R"("matrix": [1e-6, 0, 0, 1e-6], "trans": [5, 6])", nullptr},
      {R"("matrix": [1e6, 2, -3, 1e6])", nullptr},
  };
  for (auto const& c : cases) {
    std::string const error = errorOf(drawing("", std::string("\"clientFromImage\": {") + c.map + "}, "));
    std::string const start = c.field ? "marks.json: clientFromImage: " + std::string(c.field) + ": expected " : "";
    EXPECT_EQ(error.substr(0, start.size()), start) << c.map << " " << error;
    EXPECT_EQ(error.empty(), c.field == nullptr) << error;
  }
}
