#include "foundation/cpu.h"

#include "foundation/thread_system.h"

#include <atomic>

namespace {

std::atomic<long> pretendedClass{0};

}  // namespace

bool ccCpuType::mmxPresent()
{
#if defined(__x86_64__) || defined(_M_X64)
  return true;
#else
  return false;
#endif
}

long cfOperatingSystemClass()
{
  long const pretended = pretendedClass.load(std::memory_order_relaxed);
  return pretended ? pretended : cf_systemClass();
}

void cfOperatingSystemClass(long pretended) { pretendedClass.store(pretended, std::memory_order_relaxed); }
