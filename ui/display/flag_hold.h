// Keeps a value on a flag stack for as long as the holder lives. Internal.
#pragma once

#include "canvas/flag_stack.h"

class cc_FlagHold {
public:
  cc_FlagHold(ccFlagStack& stack, bool value) : stack_(stack) { stack_.push(value); }
  ~cc_FlagHold() { stack_.pop(); }
  cc_FlagHold(cc_FlagHold const&) = delete;
  cc_FlagHold& operator=(cc_FlagHold const&) = delete;

private:
  ccFlagStack& stack_;
};
