// A stack of bools of which only the top counts.
#pragma once

#include <cstdint>
#include <vector>

class ccFlagStack {
public:
  explicit ccFlagStack(bool base = false) : base_(base) {}
  void push(bool);
  bool pop();  // the value taken off; an empty stack answers the base and changes nothing
  bool top() const;
  unsigned bits() const;  // bit 0 is the top, bit 1 the level below it; the base lies below the last level
  long depth() const { return depth_; }

private:
  bool base_;
  long depth_ = 0;
  std::uint64_t levels_ = 0;          // the uppermost 1 to 64 levels, the top in bit 0
  std::vector<std::uint64_t> spill_;  // words of 64 deeper levels each
};
