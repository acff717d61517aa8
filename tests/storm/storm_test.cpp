// The storm in one thread. KRS_LONG makes it a hundred times as long; KRS_STORM turns groups of operations on and off, such as
// "memory,-yuv"; KRS_STORM_SEED blows one storm only; KRS_STORM_SCRIPT performs a script of hexadecimal digits.
#include "tests/storm/shrink.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

constexpr long kStepsOfAStorm = 500;

long storms() { return std::getenv("KRS_LONG") ? 2000 : 20; }

// Every fourth storm looks at the glass rarely, as looking repairs.
StormScript scriptOf(unsigned seed, StormSwitches const& switches)
{
  StormScript script = cfRandomStorm(seed, kStepsOfAStorm, switches);
  if (seed % 4 == 0)
    for (std::size_t i = 0; i < cfStormRows().size(); ++i)
      if (std::string(cfStormRows()[i].name) == "lookRarely")
        script.insert(script.begin(), StormOp{static_cast<std::uint8_t>(i), 6, 0, 0, 0, 0});
  return script;
}

bool blow(unsigned seed, StormSwitches const& switches, StormStats& stats)
{
  StormScript const script = scriptOf(seed, switches);
  StormResult const result = cfRunAside(script, switches);
  stats += result.stats;
  if (result.ok)
    return true;
  StormScript const shortest = cfShrink(script, switches, result);
  StormResult const again = cfRunAside(shortest, switches);
  ADD_FAILURE() << cfReport(seed, shortest, again.ok ? result : again);
  return false;
}

}  // namespace

TEST(Storm, leavesEverythingWhole)
{
  StormSwitches const switches = cfStormSwitches();
  StormStats stats;
  if (char const* const digits = std::getenv("KRS_STORM_SCRIPT")) {
    StormResult const result = cfRunAside(cfScriptOfDigits(digits), switches);
    EXPECT_TRUE(result.ok) << cfReport(0, cfScriptOfDigits(digits), result);
    return;
  }
  if (char const* const seed = std::getenv("KRS_STORM_SEED")) {
    blow(static_cast<unsigned>(std::atol(seed)), switches, stats);
    return;
  }
  int failed = 0;
  for (long seed = 1; seed <= storms() && failed < 3; ++seed)
    failed += !blow(static_cast<unsigned>(seed), switches, stats);
  std::printf("%ld steps, %ld compared, %ld pictures, %ld hooks, %ld acted, %ld escaped, %ld in drags\n", stats.steps,
              stats.compared, stats.pictures, stats.hooks, stats.acts, stats.escaped, stats.drags);
  EXPECT_GT(stats.compared, stats.steps / 2);
  EXPECT_GT(stats.hooks, stats.steps);
  EXPECT_GT(stats.acts, stats.steps / 50);
  EXPECT_GT(stats.drags, stats.steps / 400);
}
