// Threads: start, priority, waiting for the end, sleep.
#pragma once

#include "foundation/resource.h"

#include <cstdint>

enum cePriority : std::int32_t {
  cePriorityInherit = -1,
  cePriorityIdle = 0,
  cePriorityLowest = 1,
  cePriorityBelowNormal = 2,
  cePriorityNormal = 3,
  cePriorityAboveNormal = 4,
  cePriorityHighest = 5,
  cePriorityTimeCritical = 6
};

// Starts a thread that nobody needs to join. It may outlive static objects, so it holds handles to all it uses. A
// BrokenLock that leaves the function ends the thread quietly; any other exception ends the process. A thread that
// cannot be started throws std::system_error. Null: nothing, and 0. The processor is not used.
ccThreadID cfCreateThreadTRX(void (*function)(void*), void* argument, cePriority = cePriority(-1), long processor = -1);

// 0 is the calling thread. The priority is kept as it was set, and applied as far as the system allows. -1 changes nothing;
// other values are cut to the range. Threads that were started elsewhere, and unknown ones, read 3.
cePriority cfGetThreadPriority(ccThreadID = 0);
void cfSetThreadPriority(cePriority, ccThreadID = 0);

// True once the thread has ended, also for an unknown one; false when the time ran out, and at once for the calling
// thread. The wait can be broken.
bool cfWaitForThreadTermination(ccThreadID, double timeout = cfForever);

ccThreadID cfCurrentThreadID();
void cfSleep(double seconds);  // not breakable: a wait on a semaphore that nobody releases is a breakable sleep
bool cf_threadBroken();        // are the waits of the calling thread broken
