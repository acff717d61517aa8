// The tables of krsview's options and script lines against its document, its help and its messages.
#include "apps/krsview/help.h"
#include "apps/krsview/options.h"
#include "apps/krsview/script.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

namespace {

// What stands in the first cells of one table of docs/krsview.md, by the first cell of its head.
std::vector<std::string> firstCells(std::string const& head)
{
  std::vector<std::string> cells;
  std::ifstream in(KRS_SOURCE_FOLDER "/docs/krsview.md");
  bool inside = false;
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("| " + head + " |", 0) == 0)
      inside = true;
    else if (line.rfind("|", 0) != 0)
      inside = false;
    else if (inside && line.rfind("|---", 0) != 0) {
      std::string cell;
      for (std::size_t i = 2; i < line.size() && line.compare(i, 2, " |") != 0; ++i) {
        if (line[i] == '\\')
          ++i;  // a bar within a cell
        cell += line[i];
      }
      cells.push_back(cell);
    }
  }
  return cells;
}

std::string joined(std::string const& a, std::string const& b) { return b.empty() ? a : a + " " + b; }

std::vector<std::string> optionsAsWritten()
{
  std::vector<std::string> all;
  for (cs_ViewOption const& option : cfViewOptions()) {
    std::string const shortName = option.shortName;
    all.push_back("`" + joined(option.name, option.form) + "`" + (shortName.empty() ? "" : ", `" + shortName + "`"));
  }
  return all;
}

std::vector<std::string> linesAsWritten()
{
  std::vector<std::string> all;
  for (cs_ScriptLine const& line : ccViewScript::lines())
    all.push_back("`" + joined(line.word, line.form) + "`");
  return all;
}

std::string wrong(std::vector<std::string> const& arguments)
{
  ccViewOptions options;
  return cfParseViewOptions(arguments, options);
}

}  // namespace

TEST(KrsviewTables, theDocumentHasTheProgramsOptions)
{
  EXPECT_GE(optionsAsWritten().size(), 20u);
  EXPECT_EQ(firstCells("Option"), optionsAsWritten());
}

TEST(KrsviewTables, theDocumentHasTheProgramsScriptLines)
{
  EXPECT_GE(linesAsWritten().size(), 16u);
  EXPECT_EQ(firstCells("Line"), linesAsWritten());
}

TEST(KrsviewTables, noOptionAndNoScriptWordStandsTwice)
{
  std::set<std::string> names;
  for (cs_ViewOption const& option : cfViewOptions()) {
    EXPECT_TRUE(names.insert(option.name).second) << option.name;
    EXPECT_EQ(std::string(option.name).find("--"), 0u) << option.name;
    EXPECT_TRUE(*option.shortName == 0 || names.insert(option.shortName).second) << option.shortName;
  }
  std::set<std::string> words;
  for (cs_ScriptLine const& line : ccViewScript::lines())
    EXPECT_TRUE(words.insert(line.word).second) << line.word;
}

TEST(KrsviewTables, helpHasALineForEachOfBothAndFitsAScreen)
{
  std::string const help = cfViewHelp();
  EXPECT_NE(help.find("\n  --depth 8|15|16|24|32 "), std::string::npos) << help;
  EXPECT_NE(help.find(" bits a pel of a headless screen (default 32)\n"), std::string::npos) << help;
  EXPECT_NE(help.find("\n  --help, -h "), std::string::npos) << help;
  EXPECT_NE(help.find("\n  scroll horz|vert CODE [POS] "), std::string::npos) << help;
  for (cs_ViewOption const& option : cfViewOptions()) {
    EXPECT_NE(help.find(std::string("\n  ") + option.name), std::string::npos) << option.name;
    EXPECT_NE(help.find(std::string("  ") + option.help + "\n"), std::string::npos) << option.name;
  }
  for (cs_ScriptLine const& line : ccViewScript::lines()) {
    EXPECT_NE(help.find("\n  " + joined(line.word, line.form)), std::string::npos) << line.word;
    EXPECT_NE(help.find(std::string("  ") + line.help + "\n"), std::string::npos) << line.word;
  }
  std::istringstream in(help);
  for (std::string line; std::getline(in, line);)
    EXPECT_LE(line.size(), 110u) << line;
}

TEST(KrsviewTables, messagesAboutAValueQuoteItsForm)
{
  EXPECT_EQ(wrong({"--window", "20000x5"}), "bad value for --window: 20000x5 (WxH, each 1 to 16384)");
  EXPECT_EQ(wrong({"--depth=12"}), "bad value for --depth: 12 (8|15|16|24|32)");
  EXPECT_EQ(wrong({"--mode", "fly"}), "bad value for --mode: fly (pointer|pan|zoom-in|zoom-out)");
  EXPECT_EQ(wrong({"--shot", ""}), "bad value for --shot: an empty text (FILE.png)");
  EXPECT_EQ(wrong({"--pan"}), "--pan needs a value (X,Y, in image pels)");
  EXPECT_EQ(wrong({"--fit=3"}), "--fit takes no value");
  EXPECT_EQ(wrong({"-x"}), "unknown option -x");
  for (cs_ViewOption const& option : cfViewOptions()) {
    if (*option.form == 0)
      EXPECT_EQ(wrong({std::string(option.name) + "=1"}), std::string(option.name) + " takes no value");
    else
      EXPECT_EQ(wrong({option.name}).find(std::string(option.name) + " needs a value (" + option.form), 0u)
          << option.name;
  }
}

TEST(KrsviewTables, choicesOfAFormAreTheValuesThatCount)
{
  ccViewOptions options;
  int mode = 0;
  for (char const* const name : {"pointer", "pan", "zoom-in", "zoom-out"}) {
    EXPECT_EQ(cfParseViewOptions({"--mode", name}, options), "");
    EXPECT_EQ(options.mode, mode++) << name;
  }
  EXPECT_EQ(cfParseViewOptions({"--overlay", "chroma"}, options), "");
  EXPECT_EQ(options.overlay, ccViewOptions::chroma);
  EXPECT_EQ(cfParseViewOptions({"--overlay", "plane"}, options), "");
  EXPECT_EQ(options.overlay, ccViewOptions::plane);
  EXPECT_EQ(cfParseViewOptions({"--overlay", "none"}, options), "");
  EXPECT_EQ(options.overlay, ccViewOptions::noOverlay);
  for (int depth : {8, 15, 16, 24, 32}) {
    EXPECT_EQ(cfParseViewOptions({"--depth", "+" + std::to_string(depth)}, options), "");
    EXPECT_EQ(options.depth, depth);
  }
  for (char const* const bad : {"", "pan|zoom-in", "pa", "|"})
    EXPECT_NE(wrong({"--mode", bad}), "") << bad;
}

TEST(KrsviewTables, eachFlagSetsItsOwnFieldOnly)
{
  auto const flags = [](ccViewOptions const& o) {
    return std::vector<int>{o.gallery, o.headless, o.large, o.scrollBars, o.info, o.help, o.version, o.fit};
  };
  char const* const names[] = {"--gallery", "--headless", "--large", "--scrollbars", "--info", "--help", "--version",
                               "--fit"};
  for (std::size_t i = 0; i < std::size(names); ++i) {
    ccViewOptions options;
    EXPECT_EQ(cfParseViewOptions({names[i]}, options), "");
    std::vector<int> expected(std::size(names), 0);
    expected[i] = 1;
    EXPECT_EQ(flags(options), expected) << names[i];
  }
  ccViewOptions options;
  std::vector<std::string> const all = {"-h",     "--fit-exact", "--gallery",    "--script=s", "--shot", "o",
                                        "--page", "p",           "--pages",      "f",          "--mag",  "-3",
                                        "--pan",  "-1.5,2",      "--quit-after", "1.5",        "--window", "7x9"};
  EXPECT_EQ(cfParseViewOptions(all, options), "");
  EXPECT_TRUE(options.help);
  EXPECT_EQ(options.fit, ccViewOptions::fitExact);
  EXPECT_EQ(options.script, "s");
  EXPECT_EQ(options.shot, "o");
  EXPECT_EQ(options.page, "p");
  EXPECT_EQ(options.pages, "f");
  EXPECT_EQ(options.quitAfter, 1.5);
  EXPECT_EQ(options.mag, -3);
  EXPECT_EQ(options.pan, std::pair(-1.5, 2.0));
  EXPECT_EQ(options.width(), 7);
  EXPECT_EQ(options.height(), 9);
}
