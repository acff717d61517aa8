#include "foundation/thread_system.h"

#include <sys/resource.h>
#include <unistd.h>

long cf_systemClass() { return 1; }

unsigned long cf_systemThread() { return static_cast<unsigned long>(gettid()); }

void cf_applyPriority(unsigned long systemThread, int priority)
{
  // Nice values: 19 yields to everybody. Below 0 they need a privilege; without it the thread stays as it is.
  static constexpr int nice[7] = {19, 10, 5, 0, -5, -10, -15};
  setpriority(PRIO_PROCESS, static_cast<id_t>(systemThread), nice[priority]);
}
