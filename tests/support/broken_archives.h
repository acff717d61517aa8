// What must hold for every value that an archive moves: an archive that ends early, or is disturbed, or for which memory
// fails, throws and leaves the value as it was.
//
//   expectWholeOrUntouched(written, former, move, same);
//
// written is what the archive holds, former what the target was; move(archive, value) moves it, same(a, b) compares.
// Programs link krs_test_memory.
#pragma once

#include "foundation/archive.h"
#include "tests/support/memory_watch.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <random>

namespace krs_test {

using Bytes = std::vector<unsigned char>;

template <class T, class Move> Bytes archived(T const& value, Move move)
{
  T copy(value);
  ccMemoryArchive ar;
  move(ar, copy);
  return ar.data();
}

// Whether a target took the bytes. One that did not is compared with what it was.
template <class T, class Move, class Same>
bool readOrUntouched(Bytes const& bytes, T const& former, Move move, Same same, char const* what)
{
  T target(former);
  ccMemoryArchive ar(bytes);
  try {
    move(ar, target);
    return true;
  } catch (ccException const& e) {
    EXPECT_GE(e.errorNumber(), 0x10000110) << what;
    EXPECT_LE(e.errorNumber(), 0x10000114) << what;
  }
  EXPECT_TRUE(same(target, former)) << what << " of " << bytes.size() << " bytes left a trace";
  return false;
}

template <class T, class Move, class Same>
void expectWholeOrUntouched(char const* name, T const& written, T const& former, Move move, Same same)
{
  Bytes const whole = archived(written, move);
  ASSERT_FALSE(same(written, former)) << name << ": a trace would not show";
  for (std::size_t n = 0; n < whole.size(); ++n)
    EXPECT_FALSE(readOrUntouched(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(n)), former, move, same, name))
        << name << " of " << n << " bytes";
  EXPECT_TRUE(readOrUntouched(whole, former, move, same, name));

  std::mt19937 random(static_cast<unsigned>(whole.size()));
  int const rounds = std::getenv("KRS_LONG") ? 20000 : 300;
  for (int i = 0; i < rounds; ++i) {
    Bytes bytes = whole;
    for (std::size_t k = random() % 4 + 1; k > 0; --k)
      bytes[random() % bytes.size()] = static_cast<unsigned char>(random() % 3 == 0 ? 0xFF : random());
    if (random() % 3 == 0)
      bytes.resize(random() % bytes.size());
    readOrUntouched(bytes, former, move, same, name);
  }

  struct Stage {
    T target;
    ccMemoryArchive ar;
  };
  failEach([&] { return std::unique_ptr<Stage>(new Stage{former, ccMemoryArchive(whole)}); },
           [&](Stage& stage) { move(stage.ar, stage.target); },
           [&](Stage& stage, bool failed) {
             EXPECT_TRUE(same(stage.target, failed ? former : written)) << name << " without memory";
           });
}

// For values that have operator|| and ==.
template <class T> void expectWholeOrUntouched(char const* name, T const& written, T const& former)
{
  expectWholeOrUntouched(
      name, written, former, [](ccArchive& ar, T& value) { ar || value; },
      [](T const& a, T const& b) { return a == b; });
}

}  // namespace krs_test
