#include "foundation/thread_system.h"

#include <windows.h>

long cf_systemClass() { return 2; }

unsigned long cf_systemThread() { return GetCurrentThreadId(); }

void cf_applyPriority(unsigned long systemThread, int priority)
{
  static constexpr int level[7] = {-15, -2, -1, 0, 1, 2, 15};
  HANDLE const thread = OpenThread(THREAD_SET_INFORMATION, FALSE, systemThread);
  if (!thread)
    return;
  SetThreadPriority(thread, level[priority]);
  CloseHandle(thread);
}
