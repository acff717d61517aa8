// Scripts of the viewer, without the lines that write files and with sizes and pauses that a search can afford.
#include "apps/krsview/script.h"
#include "tests/fuzz/fuzz.h"
#include "tests/fuzz/fuzz_view.h"

#include <algorithm>
#include <sstream>

namespace {

constexpr int kMostLines = 48;

bool isAffordable(std::string const& line)
{
  std::istringstream in(line);
  std::string what, word;
  in >> what;
  if (what == "shot")
    return false;
  std::size_t const digits = what == "resize" ? 2 : what == "tick" ? 4 : 100;
  while (in >> word)
    if (word.size() > digits)
      return false;
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
  std::istringstream given(std::string(reinterpret_cast<char const*>(data), size));
  std::string script;
  int lines = 0;
  for (std::string line; lines < kMostLines && std::getline(given, line); ++lines)
    script += isAffordable(line) ? line + "\n" : "#\n";

  FuzzView view(32);
  view.viewer->open({KRS_FUZZ_IMAGE});
  std::istringstream in(script);
  std::ostringstream out, errors;
  ccViewScript(*view.viewer, out, errors, /*headless=*/true).run(in, /*answers=*/true);
  std::string const told = errors.str();
  cf_fuzzExpect(std::count(told.begin(), told.end(), '\n') <= 1, "at most one line is told of");
  return 0;
}
