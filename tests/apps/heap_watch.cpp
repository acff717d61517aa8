#include "tests/apps/heap_watch.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>

#include <malloc.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KRS_SANITIZED 1
// Not every compiler brings the header that declares them.
extern "C" {
int __sanitizer_install_malloc_and_free_hooks(void (*)(void const volatile*, std::size_t), void (*)(void const volatile*));
std::size_t __sanitizer_get_allocated_size(void const volatile*);
}
#endif

namespace {

std::atomic<long long> alive{0}, most{0};
std::atomic<long> untilFailure{0};  // 0: none fails
std::atomic<bool> hasFailed{false};

void grow(std::size_t size)
{
  long long const now = alive += static_cast<long long>(size);
  if (now > most)
    most = now;
}

void shrink(std::size_t size) { alive -= static_cast<long long>(size); }

}  // namespace

#ifdef KRS_SANITIZED

namespace {

void onMalloc(void const volatile*, std::size_t size) { grow(size); }
void onFree(void const volatile* p)
{
  if (p)
    shrink(__sanitizer_get_allocated_size(p));
}
int const installed = __sanitizer_install_malloc_and_free_hooks(onMalloc, onFree);

}  // namespace

bool HeapWatch::canFail() { return installed < 0; }

#else

extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
void __libc_free(void*);
}

namespace {

bool fails()
{
  if (untilFailure > 0 && --untilFailure == 0) {
    hasFailed = true;
    errno = ENOMEM;
    return true;
  }
  return false;
}

void* counted(void* p)
{
  if (p)
    grow(malloc_usable_size(p));
  return p;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) noexcept { return fails() ? nullptr : counted(__libc_malloc(size)); }
void* calloc(std::size_t n, std::size_t size) noexcept { return fails() ? nullptr : counted(__libc_calloc(n, size)); }
void* memalign(std::size_t alignment, std::size_t size) noexcept
{
  return fails() ? nullptr : counted(__libc_memalign(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept { return memalign(alignment, size); }
int posix_memalign(void** p, std::size_t alignment, std::size_t size) noexcept
{
  void* const made = memalign(alignment, size);
  if (made)
    *p = made;
  return made ? 0 : ENOMEM;
}

void* realloc(void* p, std::size_t size) noexcept
{
  if (fails())
    return nullptr;
  std::size_t const former = p ? malloc_usable_size(p) : 0;
  void* const made = __libc_realloc(p, size);
  if (made || size == 0) {
    // Both blocks may have lived while the bytes were copied.
    if (made)
      grow(malloc_usable_size(made));
    shrink(former);
  }
  return made;
}

void free(void* p) noexcept
{
  if (p)
    shrink(malloc_usable_size(p));
  __libc_free(p);
}
}

bool HeapWatch::canFail() { return true; }

#endif

HeapWatch::HeapWatch(long nth) : before_(alive)
{
  most = before_;
  hasFailed = false;
  untilFailure = nth;
}

HeapWatch::~HeapWatch() { untilFailure = 0; }

std::size_t HeapWatch::peak() const
{
  long long const above = most - before_;
  return above > 0 ? static_cast<std::size_t>(above) : 0;
}

long long HeapWatch::living() { return alive; }
bool HeapWatch::failed() const { return hasFailed; }
