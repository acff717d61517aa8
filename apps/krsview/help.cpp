#include "apps/krsview/help.h"

#include "apps/krsview/options.h"
#include "apps/krsview/script.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

// What is written, and what it does.
using Rows = std::vector<std::pair<std::string, std::string>>;

// The second column begins at one place for all.
std::string cf_columns(Rows const& rows)
{
  std::size_t width = 0;
  for (auto const& [written, help] : rows)
    width = std::max(width, written.size());
  std::string text;
  for (auto const& [written, help] : rows)
    text += "  " + written + std::string(width + 2 - written.size(), ' ') + help + "\n";
  return text;
}

std::string cf_joined(std::string const& word, char const* between, std::string const& rest)
{
  return rest.empty() ? word : word + between + rest;
}

}  // namespace

std::string cfViewHelp()
{
  Rows options, lines;
  for (cs_ViewOption const& option : cfViewOptions())
    options.emplace_back(cf_joined(cf_joined(option.name, ", ", option.shortName), " ", option.form), option.help);
  for (cs_ScriptLine const& line : ccViewScript::lines())
    lines.emplace_back(cf_joined(line.word, " ", line.form), line.help);
  return "usage: krsview [options] [IMAGE-or-DIRECTORY ...]\n"
         "Shows images as krsdisp shows them. With no image it takes the bundled samples.\n"
         "\n" +
         cf_columns(options) +
         "\n"
         "Keys: Page Down and Page Up step through the images, + and - zoom, 0 fits, 1 is one to one, arrows pan,\n"
         "P, A, I, O choose pointer, pan, zoom in and zoom out, Q quits. The wheel zooms at the cursor.\n"
         "In the gallery the space bar and the left and right arrows turn pages, too.\n"
         "\n"
         "Lines of a script:\n"
         "\n" +
         cf_columns(lines) +
         "\n"
         "Exit status: 0 all well, 1 a bad option or an output that cannot be written, 2 a file that failed,\n"
         "3 a script's expectation that was not met, 4 a script line that is not understood.\n";
}
