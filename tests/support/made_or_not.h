// Makes a result again and again, with each allocation failing in turn: a result that is made passes the check, and one
// that is not leaves nothing (which the sanitizers watch). Programs link krs_test_memory.
#pragma once

#include "tests/support/memory_watch.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace krs_test {

template <class Make, class Check> void expectMadeOrNot(char const* name, Make make, Check check)
{
  struct Stage {
    std::optional<decltype(make())> result;
  };
  long const failures = failEach([] { return std::make_unique<Stage>(); }, [&](Stage& s) { s.result.emplace(make()); },
                                 [&](Stage& s, bool failed) {
                                   EXPECT_EQ(s.result.has_value(), !failed) << name;
                                   if (s.result)
                                     check(*s.result);
                                 });
  EXPECT_GT(failures, 0) << name << " takes no memory";
}

}  // namespace krs_test
