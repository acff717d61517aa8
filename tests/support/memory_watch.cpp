#include "tests/support/memory_watch.h"

#include <cstdlib>

namespace {

thread_local long tc_allocations = 0;
thread_local long tc_left = 0;  // allocations until one fails; 0 none
thread_local bool tc_failed = false;

void* counted(std::size_t size, std::size_t alignment)
{
  ++tc_allocations;
  if (tc_left > 0 && --tc_left == 0) {
    tc_failed = true;
    throw std::bad_alloc();
  }
  std::size_t const least = size ? size : 1;
  void* const memory =
      alignment ? std::aligned_alloc(alignment, (least + alignment - 1) / alignment * alignment) : std::malloc(least);
  if (!memory)
    throw std::bad_alloc();
  return memory;
}

void* countedOrNull(std::size_t size) noexcept
{
  try {
    return counted(size, 0);
  } catch (std::bad_alloc const&) {
    return nullptr;
  }
}

}  // namespace

// All forms, as some of the standard library's own would meet memory of another allocator under the sanitizers. Not inlined, so
// that the compiler doesn't take free() for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size) { return counted(size, 0); }
[[gnu::noinline]] void* operator new(std::size_t size, std::align_val_t alignment)
{
  return counted(size, static_cast<std::size_t>(alignment));
}
[[gnu::noinline]] void* operator new[](std::size_t size) { return counted(size, 0); }
[[gnu::noinline]] void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return countedOrNull(size); }
[[gnu::noinline]] void* operator new[](std::size_t size, std::nothrow_t const&) noexcept { return countedOrNull(size); }
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::nothrow_t const&) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void* memory, std::nothrow_t const&) noexcept { std::free(memory); }

long MemoryWatch::allocations() { return tc_allocations; }

MemoryWatch::MemoryWatch(long nth) : formerLeft_(tc_left), formerFailed_(tc_failed)
{
  tc_left = nth;
  tc_failed = false;
}

MemoryWatch::~MemoryWatch()
{
  tc_left = formerLeft_;
  tc_failed = formerFailed_;
}

bool MemoryWatch::failed() const { return tc_failed; }
