#include "foundation/thread.h"

#include "foundation/thread_record.h"
#include "foundation/thread_system.h"

#include <algorithm>
#include <thread>

namespace {

cePriority cf_clamp(cePriority priority)
{
  return static_cast<cePriority>(std::clamp<std::int32_t>(priority, cePriorityIdle, cePriorityTimeCritical));
}

std::shared_ptr<cc_ThreadRecord> cf_record(ccThreadID id)
{
  return id == 0 ? cc_ThreadRecord::current() : cc_ThreadRecord::find(id);
}

}  // namespace

ccThreadID cfCreateThreadTRX(void (*function)(void*), void* argument, cePriority priority, long)
{
  if (!function)
    return 0;
  cePriority const creators = cfGetThreadPriority();
  cePriority const own = priority == cePriorityInherit ? creators : cf_clamp(priority);
  // Some systems hand the creator's priority on and some don't.
  bool const apply = own != cePriorityNormal || creators != cePriorityNormal;
  auto const record = cc_ThreadRecord::create(own);
  try {
    std::thread([record, function, argument, own, apply] {
      cc_ThreadRecord::adopt(record);
      cc_LockCheck::Hold const life(&record->over, cc_LockRank::threadEnd);
      if (apply)
        record->setPriority(own);
      try {
        function(argument);
      } catch (cc_Resource::BrokenLock const&) {
        // The usual way to end a thread that waits.
      }
    }).detach();
  } catch (...) {
    cc_ThreadRecord::forget(record);
    throw;
  }
  return record->id;
}

cePriority cfGetThreadPriority(ccThreadID id)
{
  auto const record = cf_record(id);
  return record ? record->readPriority() : cePriorityNormal;
}

void cfSetThreadPriority(cePriority priority, ccThreadID id)
{
  if (priority == cePriorityInherit)
    return;
  if (auto const record = cf_record(id))
    record->setPriority(cf_clamp(priority));
}

bool cfWaitForThreadTermination(ccThreadID id, double timeout)
{
  auto const record = cc_ThreadRecord::find(id);
  if (!record)
    return true;
  return id != cfCurrentThreadID() && record->over.lock(timeout);
}

ccThreadID cfCurrentThreadID() { return tc_threadID ? tc_threadID : cc_ThreadRecord::current()->id; }

void cfSleep(double seconds)
{
  cc_Deadline const deadline(seconds);
  while (deadline.forever())
    std::this_thread::sleep_for(std::chrono::hours(24));
  if (!deadline.poll())
    std::this_thread::sleep_until(deadline.at());
}

bool cf_threadBroken() { return cc_ThreadRecord::current()->broken; }
