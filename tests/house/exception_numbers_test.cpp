// The list of exception numbers: each class of the sources has one row, each number one class, and no number of an exception
// stands anywhere else.
#include "foundation/exception_numbers.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::vector<cs_ExceptionNumber> allRows()
{
  std::vector<cs_ExceptionNumber> rows(std::begin(cf_exceptionNumbers), std::end(cf_exceptionNumbers));
  rows.insert(rows.end(), std::begin(cf_keptExceptionNumbers), std::end(cf_keptExceptionNumbers));
  return rows;
}

cs_ExceptionRange const* rangeOf(long number)
{
  for (cs_ExceptionRange const& range : cf_exceptionRanges)
    if (number >= range.first && number <= range.last)
      return &range;
  return nullptr;
}

// Every source of the library by its path from the root, without the list itself.
std::map<std::string, std::string> librarySources()
{
  std::map<std::string, std::string> sources;
  fs::path const root = KRS_SOURCE_DIR;
  std::set<std::string> tops;
  std::ifstream folders(root / "cmake" / "folders.txt");
  for (std::string line; std::getline(folders, line);)
    if (!line.empty() && line[0] != '#')
      tops.insert(line.substr(0, line.find_first_of("/ ")));
  for (std::string const& top : tops)
    for (auto const& entry : fs::recursive_directory_iterator(root / top)) {
      std::string const path = fs::relative(entry.path(), root).generic_string();
      std::string const kind = entry.path().extension().string();
      if ((kind != ".h" && kind != ".cpp") || path == "foundation/exception_numbers.h")
        continue;
      std::ostringstream text;
      text << std::ifstream(entry.path()).rdbuf();
      sources[path] = text.str();
    }
  return sources;
}

// The files that define a class by the macro, by the name of the class.
std::multimap<std::string, std::string> definitions()
{
  std::multimap<std::string, std::string> found;
  std::regex const macro("\nKRS_DEFINE_EXCEPTION\\(([^,]+),");
  for (auto const& [path, text] : librarySources())
    for (std::sregex_iterator at(text.begin(), text.end(), macro), end; at != end; ++at)
      found.emplace((*at)[1], path);
  return found;
}

bool owns(cs_ExceptionRange const& range, std::string const& path)
{
  std::istringstream owners{std::string(range.owners)};
  for (std::string owner; owners >> owner;)
    if (path.rfind(owner + "/", 0) == 0)
      return true;
  return false;
}

}  // namespace

TEST(ExceptionNumbers, noNumberAndNoClassStandsTwice)
{
  std::map<long, std::string_view> names;
  std::set<std::string_view> classes;
  for (cs_ExceptionNumber const& row : allRows()) {
    EXPECT_TRUE(names.emplace(row.number, row.name).second)
        << std::hex << row.number << " is that of " << names[row.number] << " and of " << row.name;
    EXPECT_TRUE(classes.insert(row.name).second) << row.name;
  }
}

TEST(ExceptionNumbers, everyNumberLiesInOneRange)
{
  long last = 0;
  for (cs_ExceptionRange const& range : cf_exceptionRanges) {
    EXPECT_GT(range.first, last) << range.owners;
    EXPECT_GE(range.last, range.first) << range.owners;
    last = range.last;
  }
  for (cs_ExceptionNumber const& row : allRows())
    EXPECT_NE(rangeOf(row.number), nullptr) << row.name;
}

TEST(ExceptionNumbers, everyRowHasOneDefinitionInAFolderThatOwnsItsRange)
{
  std::multimap<std::string, std::string> const defined = definitions();
  EXPECT_EQ(defined.size(), std::size(cf_exceptionNumbers));
  for (cs_ExceptionNumber const& row : cf_exceptionNumbers) {
    auto const [first, last] = defined.equal_range(std::string(row.name));
    ASSERT_EQ(std::distance(first, last), 1) << row.name;
    cs_ExceptionRange const* const range = rangeOf(row.number);
    ASSERT_NE(range, nullptr) << row.name;
    EXPECT_TRUE(owns(*range, first->second)) << row.name << " of " << range->owners << " stands in " << first->second;
  }
}

TEST(ExceptionNumbers, keptNumbersAreOfClassesThatDoNotExistYet)
{
  std::multimap<std::string, std::string> const defined = definitions();
  for (cs_ExceptionNumber const& row : cf_keptExceptionNumbers)
    EXPECT_EQ(defined.count(std::string(row.name)), 0u) << row.name;
}

TEST(ExceptionNumbers, standNowhereElseInTheLibrary)
{
  std::regex const literal("0[xX](1000[0-9a-fA-F]{4})\\b");
  std::map<std::string, std::string> const sources = librarySources();
  EXPECT_GT(sources.size(), 100u);
  for (auto const& [path, text] : sources) {
    EXPECT_EQ(text.find("\nKRS_DEFINE_NUMBERED_EXCEPTION_("), std::string::npos) << path << " passes the list by";
    for (std::sregex_iterator at(text.begin(), text.end(), literal), end; at != end; ++at)
      EXPECT_EQ(rangeOf(std::stol((*at)[1], nullptr, 16)), nullptr) << path << " says " << at->str();
  }
}
