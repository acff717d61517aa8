#include "canvas/flag_stack.h"

namespace {

constexpr long kWordBits = 64;

}  // namespace

void ccFlagStack::push(bool v)
{
  if (depth_ > 0 && depth_ % kWordBits == 0) {
    spill_.push_back(levels_);
    levels_ = 0;
  }
  levels_ = levels_ << 1 | (v ? 1u : 0u);
  ++depth_;
}

bool ccFlagStack::pop()
{
  if (depth_ == 0)
    return base_;
  bool const v = (levels_ & 1) != 0;
  levels_ >>= 1;
  if (--depth_ > 0 && depth_ % kWordBits == 0) {
    levels_ = spill_.back();
    spill_.pop_back();
  }
  return v;
}

bool ccFlagStack::top() const
{
  return depth_ == 0 ? base_ : (levels_ & 1) != 0;
}

unsigned ccFlagStack::bits() const
{
  std::uint64_t const below = spill_.empty() ? (base_ ? 1u : 0u) : spill_.back();
  if (depth_ == 0)
    return static_cast<unsigned>(below);
  long const held = (depth_ - 1) % kWordBits + 1;
  return static_cast<unsigned>(held < kWordBits ? levels_ | below << held : levels_);
}
