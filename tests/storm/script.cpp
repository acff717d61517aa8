#include "tests/storm/script.h"

#include "tests/storm/stage.h"

#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

// One line for each group: is it on in the normal run? What is off still meets a fault.
struct Switch {
  StormGroup group;
  char const* name;
  bool on;
};
constexpr Switch kSwitches[] = {
    {StormGroup::images, "images", true},
    {StormGroup::tiny, "tiny", true},
    {StormGroup::typeChanges, "typeChanges", true},
    {StormGroup::views, "views", true},
    {StormGroup::fractions, "fractions", true},
    {StormGroup::modes, "modes", true},
    {StormGroup::maps, "maps", true},
    {StormGroup::windows, "windows", true},
    {StormGroup::binding, "binding", true},
    {StormGroup::displays, "displays", true},
    {StormGroup::shared, "shared", true},
    {StormGroup::screens, "screens", true},
    {StormGroup::depths, "depths", true},
    {StormGroup::lost, "lost", true},
    {StormGroup::failing, "failing", true},
    {StormGroup::overlay, "overlay", true},
    {StormGroup::overlayInHooks, "overlayInHooks", true},
    {StormGroup::keying, "keying", true},
    {StormGroup::yuv, "yuv", false},
    {StormGroup::frames, "frames", true},
    {StormGroup::hiddenParents, "hiddenParents", true},
    {StormGroup::shapes, "shapes", true},
    {StormGroup::joins, "joins", true},
    {StormGroup::sketches, "sketches", true},
    {StormGroup::sizer, "sizer", true},
    {StormGroup::input, "input", true},
    {StormGroup::nestedInput, "nestedInput", true},
    {StormGroup::margins, "margins", true},
    {StormGroup::reading, "reading", true},
    {StormGroup::hooks, "hooks", true},
    {StormGroup::paintHooks, "paintHooks", true},
    {StormGroup::paintDeletes, "paintDeletes", true},
    {StormGroup::deaths, "deaths", true},
    {StormGroup::paintDeaths, "paintDeaths", false},
    {StormGroup::throws, "throws", true},
    {StormGroup::paintThrows, "paintThrows", true},
    {StormGroup::memory, "memory", false},
    {StormGroup::lockOrder, "lockOrder", true},
    {StormGroup::threadDisplays, "threadDisplays", true},
};
static_assert(std::size(kSwitches) == kStormGroups);

void turn(StormSwitches& switches, std::string const& word)
{
  bool const off = !word.empty() && word[0] == '-';
  std::string const name = off ? word.substr(1) : word;
  for (Switch const& s : kSwitches)
    if (name == s.name || name == "all")
      switches[static_cast<std::size_t>(s.group)] = !off;
}

}  // namespace

char const* cfName(StormGroup group)
{
  for (Switch const& s : kSwitches)
    if (s.group == group)
      return s.name;
  return "?";
}

StormSwitches cfStormSwitches()
{
  StormSwitches switches{};
  for (Switch const& s : kSwitches)
    switches[static_cast<std::size_t>(s.group)] = s.on;
  if (char const* const words = std::getenv("KRS_STORM")) {
    std::string word;
    for (char const* c = words;; ++c) {
      if (*c && *c != ',') {
        word += *c;
        continue;
      }
      turn(switches, word);
      word.clear();
      if (!*c)
        break;
    }
  }
  return switches;
}

std::vector<StormRow> const& cfStormRows()
{
  static std::vector<StormRow> const* const rows = [] {
    auto* const all = new std::vector<StormRow>;
    cfAddImageOps(*all);
    cfAddWindowOps(*all);
    cfAddTreeOps(*all);
    cfAddHookOps(*all);
    return all;
  }();
  return *rows;
}

StormScript cfStormScript(std::span<std::uint8_t const> bytes)
{
  StormScript script;
  for (std::size_t i = 0; i + 6 <= bytes.size(); i += 6)
    script.push_back({bytes[i], bytes[i + 1], bytes[i + 2], bytes[i + 3], bytes[i + 4], bytes[i + 5]});
  return script;
}

StormScript cfRandomStorm(unsigned seed, long steps, StormSwitches const& switches)
{
  auto const& rows = cfStormRows();
  std::mt19937 random(seed);
  std::vector<std::uint8_t> choice;  // an operation as often as it weighs
  for (std::size_t i = 0; i < rows.size(); ++i)
    if (switches[static_cast<std::size_t>(rows[i].group)])
      choice.insert(choice.end(), static_cast<std::size_t>(rows[i].weight), static_cast<std::uint8_t>(i));
  auto const byte = [&] { return static_cast<std::uint8_t>(random() & 0xFFu); };
  StormScript script;
  for (long i = 0; i < steps && !choice.empty(); ++i) {
    StormOp op;
    op.op = choice[random() % choice.size()];
    op.a = byte();
    op.b = byte();
    op.c = byte();
    op.d = byte();
    op.e = byte();
    script.push_back(op);
  }
  return script;
}

std::string cfLine(StormOp const& op)
{
  char text[80];
  std::snprintf(text, sizeof text, "%-20s %3u %3u %3u %3u %3u", cfRow(op).name, op.a, op.b, op.c, op.d, op.e);
  auto const does = cfRow(op).does;
  return does ? std::string(text) + "  -> " + cfLine(does(op)) : text;
}

std::string cfLines(StormScript const& script)
{
  std::string text;
  for (StormOp const& op : script)
    text += "  " + cfLine(op) + "\n";
  text += "  ";
  for (StormOp const& op : script) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%02x%02x%02x%02x%02x%02x", op.op, op.a, op.b, op.c, op.d, op.e);
    text += digits;
  }
  return text + "\n";
}

StormScript cfScriptOfDigits(std::string const& hexadecimal)
{
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i + 2 <= hexadecimal.size(); i += 2)
    bytes.push_back(static_cast<std::uint8_t>(std::stoul(hexadecimal.substr(i, 2), nullptr, 16)));
  return cfStormScript(bytes);
}
