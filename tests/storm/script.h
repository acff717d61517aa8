// A storm's script: six bytes for each operation, so that random numbers, a shrinker and a fuzzer speak one language. Any bytes
// are a valid script; what does not fill an operation at the end is left out.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

class StormStage;

struct StormOp {
  std::uint8_t op = 0, a = 0, b = 0, c = 0, d = 0, e = 0;
  friend bool operator==(StormOp const&, StormOp const&) = default;
};
using StormScript = std::vector<StormOp>;

// What may be switched on and off as a whole.
enum class StormGroup : std::uint8_t {
  images, tiny, typeChanges, views, fractions, modes, maps, windows, binding, displays, shared, screens, depths, lost, failing, overlay, overlayInHooks, keying, yuv,
  frames, hiddenParents, shapes, joins, sketches, sizer, input, nestedInput, margins, reading, hooks, paintHooks, paintDeletes, deaths, paintDeaths, throws, paintThrows, memory, lockOrder, threadDisplays,
  count
};
inline constexpr std::size_t kStormGroups = static_cast<std::size_t>(StormGroup::count);
using StormSwitches = std::array<bool, kStormGroups>;

char const* cfName(StormGroup);
StormSwitches cfStormSwitches();  // the table, as KRS_STORM changes it ("all", "-memory", "yuv", ..., with commas between)

// Where an operation may be performed.
enum class StormPlace : std::uint8_t { anywhere, notWhilePainting, outermost };

struct StormRow {
  char const* name;
  StormGroup group;
  StormPlace place;
  int weight;
  void (*run)(StormStage&, StormOp const&);
  StormOp (*does)(StormOp const&) = nullptr;  // what is planned for a hook
};
std::vector<StormRow> const& cfStormRows();
inline StormRow const& cfRow(StormOp const& op)
{
  return cfStormRows()[op.op % cfStormRows().size()];
}

StormScript cfStormScript(std::span<std::uint8_t const> bytes);
StormScript cfRandomStorm(unsigned seed, long steps, StormSwitches const&);
std::string cfLine(StormOp const&);        // readable
std::string cfLines(StormScript const&);   // readable, and then the bytes as hexadecimal digits
StormScript cfScriptOfDigits(std::string const& hexadecimal);
