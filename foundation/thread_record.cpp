#include "foundation/thread_record.h"

#include "foundation/thread_system.h"

#include <unordered_map>
#include <utility>

constinit thread_local ccThreadID tc_threadID = 0;

namespace {

using Record = std::shared_ptr<cc_ThreadRecord>;

struct cs_Threads {
  cc_LeafMutex<cc_LockRank::threads> guard;
  ccThreadID last = 0;
  std::unordered_map<ccThreadID, Record> running;
};

// Never destroyed: threads may outlive static objects.
cs_Threads& cf_threads()
{
  static cs_Threads& threads = *new cs_Threads;
  return threads;
}

// Holds the record of the calling thread, and sees its end.
struct cs_Holder {
  Record record;
  ~cs_Holder();
};

constinit thread_local bool holderGone = false;
thread_local cs_Holder holder;

cs_Holder::~cs_Holder()
{
  holderGone = true;
  if (record)
    cc_ThreadRecord::forget(record);
}

}  // namespace

cc_Deadline::cc_Deadline(double timeout) : kind_(Kind::Timed)
{
  constexpr double longest = 1e8;  // seconds; a duration of more may overflow
  if (!(timeout > 0)) {
    kind_ = Kind::Poll;
  } else if (timeout > longest) {
    kind_ = Kind::Forever;
  } else {
    using Clock = std::chrono::steady_clock;
    at_ = Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(timeout));
  }
}

Record cc_ThreadRecord::create(cePriority priority)
{
  cs_Threads& threads = cf_threads();
  std::lock_guard const hold(threads.guard);
  auto record = std::make_shared<cc_ThreadRecord>(threads.last + 1, priority);
  threads.running.emplace(record->id, record);
  ++threads.last;
  return record;
}

Record cc_ThreadRecord::current()
{
  if (holderGone)  // a thread in its last steps: nobody can find it any more, but its numbers still hold
    return std::make_shared<cc_ThreadRecord>(tc_threadID ? tc_threadID : (tc_threadID = create(cePriorityNormal)->id),
                                             cePriorityNormal);
  if (!holder.record)
    adopt(create(cePriorityNormal));
  return holder.record;
}

Record cc_ThreadRecord::find(ccThreadID id)
{
  cs_Threads& threads = cf_threads();
  std::lock_guard const hold(threads.guard);
  auto const found = threads.running.find(id);
  return found == threads.running.end() ? nullptr : found->second;
}

void cc_ThreadRecord::adopt(Record const& record)
{
  holder.record = record;
  tc_threadID = record->id;
  std::lock_guard const hold(record->guard);
  record->systemThread = cf_systemThread();
}

void cc_ThreadRecord::forget(Record const& record)
{
  {
    cs_Threads& threads = cf_threads();
    std::lock_guard const hold(threads.guard);
    threads.running.erase(record->id);
  }
  {
    std::lock_guard const hold(record->guard);
    record->ended = true;
  }
  record->over.set();
}

void cc_ThreadRecord::breakWaits()
{
  std::lock_guard const hold(guard);
  broken = true;
  if (wait)
    wait->breakHeld_();
}

void cc_ThreadRecord::mendWaits() { broken = false; }

void cc_ThreadRecord::setPriority(cePriority level)
{
  std::lock_guard const hold(guard);
  priority = level;
  if (systemThread && !ended)
    cf_applyPriority(systemThread, level);
}

cePriority cc_ThreadRecord::readPriority()
{
  std::lock_guard const hold(guard);
  return priority;
}

cc_Wait::cc_Wait(bool firm) : record_(cc_ThreadRecord::current()), firm_(firm)
{
  std::lock_guard const hold(record_->guard);
  record_->wait = this;
  if (record_->broken)
    breakHeld_();
}

cc_Wait::~cc_Wait()
{
  std::lock_guard const hold(record_->guard);
  record_->wait = nullptr;
}

void cc_Wait::signal()
{
  std::lock_guard const hold(record_->guard);
  signalled_ = true;
  record_->wake.notify_one();
}

void cc_Wait::breakIt()
{
  std::lock_guard const hold(record_->guard);
  breakHeld_();
}

void cc_Wait::breakHeld_()
{
  if (firm_)
    return;
  broken_ = true;
  record_->wake.notify_one();
}

bool cc_Wait::isBroken()
{
  std::lock_guard const hold(record_->guard);
  return broken_;
}

bool cc_Wait::sleep(cc_Deadline const& deadline)
{
  cc_LeafWait hold(record_->guard);
  auto const called = [this] { return signalled_ || broken_; };
  bool timely = true;
  if (deadline.forever())
    record_->wake.wait(hold.native(), called);
  else
    timely = record_->wake.wait_until(hold.native(), deadline.at(), called);
  signalled_ = false;
  return timely;
}

long cc_Wait::any(cc_Resource* const* resources, std::size_t count, double timeout, bool firm)
{
  auto const attempt = [&]() -> long {
    for (std::size_t i = 0; i < count; ++i) {
      if (!resources[i])
        continue;
      std::lock_guard const hold(resources[i]->guard_);
      if (resources[i]->take_())
        return static_cast<long>(i);
    }
    return -1;
  };

  long index = attempt();
  cc_Deadline const deadline(timeout);
  if (index >= 0 || deadline.poll())
    return index;
  if (deadline.forever())
    for (std::size_t i = 0; i < count; ++i)
      if (resources[i] && resources[i]->given_())
        cc_LockCheck::waits(resources[i], cc_LockRank::threadEnd);

  cc_Wait wait(firm);
  struct cs_Entries {
    std::vector<cc_Resource::Node> nodes;
    ~cs_Entries()
    {
      for (auto& node : nodes)
        if (node.resource)
          node.resource->leave_(node);
    }
  } entries{std::vector<cc_Resource::Node>(count)};
  for (std::size_t i = 0; i < count; ++i)
    if (resources[i])
      resources[i]->enter_(entries.nodes[i], wait);

  // Entering comes before the first attempt of the loop, so nothing that is given back in between is missed.
  for (bool timely = true;; timely = wait.sleep(deadline)) {
    if (wait.isBroken())
      throw cc_Resource::BrokenLock();
    index = attempt();
    if (index >= 0 || !timely)
      return index;
  }
}
