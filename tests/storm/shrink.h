// Storms in a child process, so that a crash or a hang is a failure like others, and the search for the shortest script that
// still fails.
#pragma once

#include "tests/storm/storm.h"

struct StormResult {
  bool ok = true;
  std::string failure;  // begins with its kind: picture, lock, lists, crash, hang, ...
  long step = 0;        // at which it ended
  StormStats stats;
  std::string kind() const { return failure.substr(0, failure.find(':')); }
};

// Under the thread sanitizer, and where KRS_STORM_NOFORK is set, the script is performed in this process.
StormResult cfRunAside(StormScript const&, StormSwitches const&, unsigned seconds = 60);
// The shortest script found that fails in the same way, within so many seconds.
StormScript cfShrink(StormScript, StormSwitches const&, StormResult const& first, unsigned seconds = 60);
std::string cfReport(unsigned seed, StormScript const&, StormResult const&);
