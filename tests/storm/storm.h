// A storm over everything at once: a stage of windows, displays, frames and shapes, on which a script is performed. After each
// operation the glass must be that of a full repaint, no lock may be held, and lists and links must be consistent.
#pragma once

#include "tests/storm/script.h"

struct StormStats {
  long steps = 0;
  long compared = 0;    // steps after which at least one picture was compared
  long pictures = 0;    // pictures compared
  long hooks = 0;       // hooks called
  long acts = 0;        // hooks that did something
  long escaped = 0;     // exceptions that came out of the library
  long drags = 0;       // steps that ended in a drag
  StormStats& operator+=(StormStats const&);
};

// Performs a script in this process. False: failure tells what was wrong after which step, as "kind: step: text".
bool cfRunStorm(StormScript const&, StormSwitches const&, std::string* failure, StormStats* stats = nullptr);
// The same for bytes, with the table's switches.
bool cfRunStorm(std::span<std::uint8_t const> bytes, std::string* failure);
