// What a test sees of the whole heap, that of the C libraries too: the most that lived at once, and which allocation fails.
// A program that compiles heap_watch.cpp has its malloc replaced; under a sanitizer only the counting works.
#pragma once

#include <cstddef>
#include <new>

class HeapWatch {
public:
  // Counts from here on. With nth, the nth allocation of the C library from now on fails; operator new throws for it.
  explicit HeapWatch(long nth = 0);
  HeapWatch(HeapWatch const&) = delete;
  HeapWatch& operator=(HeapWatch const&) = delete;
  ~HeapWatch();

  std::size_t peak() const;  // bytes beyond those that lived at the beginning
  bool failed() const;       // the nth allocation was asked for
  static bool canFail();     // false under a sanitizer
  static long long living();  // bytes of the whole program

private:
  long long before_;
};

// Runs act with its first, second, ... allocation failing, those of the C libraries too, until a run needs no more. Then check
// is asked. Returns the number of allocations that failed.
template <class Act, class Check> long failEachOfHeap(Act&& act, Check&& check, long most = 1000)
{
  for (long nth = 1; nth <= most; ++nth) {
    bool failed = false;
    {
      HeapWatch const watch(nth);
      try {
        act();
      } catch (std::bad_alloc const&) {
      }
      failed = watch.failed();
    }
    check(failed);
    if (!failed)
      return nth - 1;
  }
  return most;
}
