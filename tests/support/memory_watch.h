// What a test sees and decides of memory: how many allocations its thread makes, and which of them fail. A program that links
// krs_test_memory has its operator new replaced; a failed allocation throws std::bad_alloc once, those after it succeed.
//
//   failEach([&] { return makeStage(); },          // a fresh stage for each round
//            [](Stage& stage) { stage.act(); },    // the operation; allocation 1, 2, ... of it fails in turn
//            [](Stage& stage, bool failed) { ... } // what must hold afterwards, whether it was done or undone
//   );
#pragma once

#include <new>

class MemoryWatch {
public:
  static long allocations();  // of the calling thread, since it began

  // While one of these lives, the nth allocation of this thread from now on fails (1 is the next). The innermost decides.
  explicit MemoryWatch(long nth);
  MemoryWatch(MemoryWatch const&) = delete;
  MemoryWatch& operator=(MemoryWatch const&) = delete;
  ~MemoryWatch();

  bool failed() const;  // it has happened

private:
  long formerLeft_;
  bool formerFailed_;
};

inline constexpr long kMostFailures = 1000;

// Runs act on a fresh stage again and again, with its first, second, ... allocation failing, until a run needs no more
// allocations. An operation may throw std::bad_alloc or swallow it. Returns the number of allocations that failed.
template <class Arrange, class Act, class Check>
long failEach(Arrange&& arrange, Act&& act, Check&& check, long most = kMostFailures)
{
  for (long nth = 1; nth <= most; ++nth) {
    auto stage = arrange();
    bool failed = false;
    {
      MemoryWatch const watch(nth);
      try {
        act(*stage);
      } catch (std::bad_alloc const&) {
      }
      failed = watch.failed();
    }
    check(*stage, failed);
    if (!failed)
      return nth - 1;
  }
  return most;
}
