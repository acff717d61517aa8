// Walks all include lines of the project: arrows point downward only, no two files include each other in a circle, system
// headers of the machine stay below platform/.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>

namespace fs = std::filesystem;

namespace {

struct Floor {
  std::string folder;
  std::vector<std::string> mayInclude;  // folders, besides itself
};

// As the list of folders says. A folder may include what those that it names may include. The longest folder that starts a
// file's path decides.
std::vector<Floor> floors()
{
  std::vector<Floor> all;
  std::ifstream list(fs::path(KRS_SOURCE_DIR) / "cmake" / "folders.txt");
  for (std::string line; std::getline(list, line);) {
    std::istringstream words(line);
    Floor floor;
    std::string library;
    if (!(words >> floor.folder >> library) || floor.folder[0] == '#')
      continue;
    for (std::string named; words >> named;) {
      floor.mayInclude.push_back(named);
      for (Floor const& below : all)
        if (below.folder == named)
          floor.mayInclude.insert(floor.mayInclude.end(), below.mayInclude.begin(), below.mayInclude.end());
    }
    all.push_back(floor);
  }
  return all;
}

std::string slashed(fs::path const& p) { return p.generic_string(); }

// Made by the build beside the objects of its folder.
bool isGenerated(std::string const& included) { return included.find('/') == std::string::npos; }

bool under(std::string const& path, std::string const& folder) { return path.rfind(folder + "/", 0) == 0; }

struct Source {
  std::vector<std::string> project;  // included project files
  std::vector<std::string> system;   // names in angle brackets
  std::string text;
};

std::map<std::string, Source> sourcesBelow(std::set<std::string> const& tops)
{
  std::map<std::string, Source> found;
  fs::path const root = KRS_SOURCE_DIR;
  std::regex const quoted("^\\s*#\\s*include\\s*\"([^\"]+)\""), angled("^\\s*#\\s*include\\s*<([^>]+)>");
  for (std::string const& top : tops) {
    for (auto const& entry : fs::recursive_directory_iterator(root / top)) {
      if (entry.path().extension() != ".h" && entry.path().extension() != ".cpp")
        continue;
      Source source;
      std::ifstream in(entry.path());
      for (std::string line; std::getline(in, line);) {
        std::smatch match;
        if (std::regex_search(line, match, quoted))
          source.project.push_back(match[1]);
        else if (std::regex_search(line, match, angled))
          source.system.push_back(match[1]);
        source.text += line + "\n";
      }
      found[slashed(fs::relative(entry.path(), root))] = source;
    }
  }
  return found;
}

std::map<std::string, Source> const& sources()
{
  static std::map<std::string, Source> const all = [] {
    std::set<std::string> tops = {"apps", "examples"};
    for (Floor const& floor : floors())
      tops.insert(floor.folder.substr(0, floor.folder.find('/')));
    return sourcesBelow(tops);
  }();
  return all;
}

Floor const* floorOf(std::vector<Floor> const& all, std::string const& path)
{
  Floor const* best = nullptr;
  for (Floor const& floor : all)
    if (under(path, floor.folder) && (!best || floor.folder.size() > best->folder.size()))
      best = &floor;
  return best;
}

}  // namespace

TEST(House, sourcesAreFound) { EXPECT_GT(sources().size(), 100u); }

TEST(House, everySourceOfTheLibraryStandsInAListedFolder)
{
  std::vector<Floor> const all = floors();
  EXPECT_GE(all.size(), 10u);
  for (auto const& [path, source] : sources()) {
    if (!under(path, "apps") && !under(path, "examples")) {
      EXPECT_NE(floorOf(all, path), nullptr) << path;
    }
  }
}

TEST(House, includesNameFilesThatExistFromTheRoot)
{
  for (auto const& [path, source] : sources())
    for (std::string const& included : source.project) {
      EXPECT_TRUE(isGenerated(included) || fs::exists(fs::path(KRS_SOURCE_DIR) / included))
          << path << " includes " << included;
    }
}

TEST(House, includesPointOnlyDownward)
{
  std::vector<Floor> const all = floors();
  for (auto const& [path, source] : sources()) {
    Floor const* const floor = floorOf(all, path);
    if (!floor)
      continue;  // programs may include everything
    for (std::string const& included : source.project) {
      if (isGenerated(included))
        continue;
      Floor const* const other = floorOf(all, included);
      ASSERT_NE(other, nullptr) << path << " includes " << included << ", which is in no floor";
      bool allowed = other == floor;
      for (std::string const& folder : floor->mayInclude)
        allowed = allowed || other->folder == folder;
      // The umbrella header and its kin are for applications.
      EXPECT_TRUE(allowed) << path << " includes " << included;
    }
  }
}

// Another machine is another folder beside this one, and whoever had looked into it would not compile there. A folder below
// platform/ is a variant; only its own files and the tests of platform/ know what is in it.
TEST(House, onlyAVariantAndItsTestsLookIntoIt)
{
  std::map<std::string, Source> all = sources();
  all.merge(sourcesBelow({"tests", "bench"}));
  int looks = 0;
  for (auto const& [path, source] : all)
    for (std::string const& included : source.project) {
      std::size_t const end = included.find('/', sizeof "platform/" - 1);
      if (!under(included, "platform") || end == std::string::npos)
        continue;
      ++looks;
      EXPECT_TRUE(under(path, included.substr(0, end)) || under(path, "tests/platform"))
          << path << " includes " << included;
    }
  EXPECT_GT(looks, 100);
}

TEST(House, noFilesIncludeEachOtherInACircle)
{
  std::map<std::string, int> state;  // 1 on the path, 2 done
  std::vector<std::string> trail;
  std::function<void(std::string const&)> const visit = [&](std::string const& path) {
    if (state[path] == 2)
      return;
    if (state[path] == 1) {
      std::string circle;
      for (auto it = std::find(trail.begin(), trail.end(), path); it != trail.end(); ++it)
        circle += *it + " -> ";
      ADD_FAILURE() << circle << path;
      return;
    }
    auto const found = sources().find(path);
    if (found == sources().end())
      return;
    state[path] = 1;
    trail.push_back(path);
    for (std::string const& included : found->second.project)
      visit(included);
    trail.pop_back();
    state[path] = 2;
  };
  for (auto const& [path, source] : sources())
    visit(path);
}

TEST(House, systemHeadersStayBelowPlatform)
{
  std::set<std::string> const machine = {"windows.h", "ddraw.h", "SDL.h", "SDL2/SDL.h", "X11/Xlib.h", "commctrl.h"};
  for (auto const& [path, source] : sources()) {
    // Threads and sockets have a file of their own for each system too.
    if (under(path, "platform") || under(path, "foundation/win32") || under(path, "apps") || under(path, "examples"))
      continue;
    for (std::string const& name : source.system)
      EXPECT_EQ(machine.count(name), 0u) << path << " includes <" << name << ">";
  }
}

TEST(House, systemsAreToldApartOnlyInPlatform)
{
  std::regex const conditional("#\\s*(if|elif|ifdef|ifndef)[^\\n]*(_WIN32|__linux__|__unix__|__APPLE__)");
  for (auto const& [path, source] : sources()) {
    if (under(path, "platform"))
      continue;
    EXPECT_FALSE(std::regex_search(source.text, conditional)) << path;
  }
}
