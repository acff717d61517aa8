#include "foundation/resource.h"

#include "foundation/exception_impl.h"
#include "foundation/thread_record.h"

#include <algorithm>
#include <exception>
#include <new>
#include <thread>
#include <utility>

namespace {

// Without a call for a thread that the library knows already: locks ask for it all the time.
inline ccThreadID cf_me() { return tc_threadID ? tc_threadID : cfCurrentThreadID(); }

}  // namespace

KRS_DEFINE_EXCEPTION(cc_Resource::BrokenLock, ccException)

cc_Resource::~cc_Resource() { cc_LockCheck::died(this); }

void cc_Resource::breakLocks()
{
  std::lock_guard const hold(guard_);
  broken_ = true;
  for (Node* node = first_; node; node = node->after)
    node->wait->breakIt();
}

void cc_Resource::mendLocks()
{
  std::lock_guard const hold(guard_);
  broken_ = false;
}

void cc_Resource::breakLocks(ccThreadID thread)
{
  if (auto const record = cc_ThreadRecord::find(thread))
    record->breakWaits();
}

void cc_Resource::mendLocks(ccThreadID thread)
{
  if (auto const record = cc_ThreadRecord::find(thread))
    record->mendWaits();
}

bool cc_Resource::wait_(double timeout, Firm firm)
{
  cc_Resource* const self = this;
  return cc_Wait::any(&self, 1, timeout, firm == Firm::Yes) == 0;
}

void cc_Resource::lockFirm_() { wait_(cfForever, Firm::Yes); }

void cc_Resource::wakeFirst_()
{
  if (first_)
    first_->wait->signal();
}

void cc_Resource::enter_(Node& node, cc_Wait& wait)
{
  std::lock_guard const hold(guard_);
  node = {this, &wait, last_, nullptr};
  (last_ ? last_->after : first_) = &node;
  last_ = &node;
  if (broken_)
    wait.breakIt();
}

void cc_Resource::leave_(Node& node)
{
  std::lock_guard const hold(guard_);
  (node.before ? node.before->after : first_) = node.after;
  (node.after ? node.after->before : last_) = node.before;
  // The signal may have been meant for the next one: this waiter took less than there is, or nothing.
  if (available_())
    wakeFirst_();
}

ccMutex& ccMutex::global()
{
  static ccMutex& mutex = *new ccMutex;
  return mutex;
}

bool ccMutex::lockedByMe() const { return owner_.load(std::memory_order_relaxed) == cf_me(); }

bool ccMutex::relock_()
{
  if (!lockedByMe())
    return false;
  ++count_;
  return true;
}

bool ccMutex::take_()
{
  if (!available_())
    return false;
  owner_.store(cf_me(), std::memory_order_relaxed);
  count_ = 1;
  return true;
}

bool ccMutex::lock(double timeout)
{
  return relock_() || lock_(timeout, std::uncaught_exceptions() > 0 ? Firm::Yes : Firm::No);
}

void ccMutex::lockFirm_()
{
  if (!relock_())
    lock_(cfForever, Firm::Yes);
}

namespace {

constinit thread_local ccMutex* tc_orphans = nullptr;  // the orphans' mutex while this thread holds it

}  // namespace

// The orphans' mutex comes after a root's one. A hook of an orphan runs under it all the same, and may put the orphan into a
// tree or ask for anything in one. Whoever holds it therefore never waits for a root's mutex: it is given up before and
// taken again after, in the order of all others, with as many holds as it had.
class ccMutex::cc_GiveWay {
public:
  cc_GiveWay() : mutex_(*tc_orphans), count_(std::exchange(mutex_.count_, 1)) { mutex_.unlock(); }
  cc_GiveWay(cc_GiveWay const&) = delete;
  cc_GiveWay& operator=(cc_GiveWay const&) = delete;
  // The locks further up give back what they have taken, so it is had again whatever happens.
  ~cc_GiveWay()
  {
    for (;;) try {
        mutex_.lockFirm_();
        break;
      } catch (std::bad_alloc const&) {
        std::this_thread::yield();
      }
    mutex_.count_ = count_;
  }

private:
  ccMutex& mutex_;
  long count_;
};

bool ccMutex::lock_(double timeout, Firm firm)
{
  if (cc_LockCheck::on && cc_Deadline(timeout).forever())
    cc_LockCheck::wanted(this, rank_);
  bool got;
  {
    std::lock_guard const hold(guard_);
    got = take_();
  }
  if (!got && tc_orphans && rank_ == cc_LockRank::root && cc_Deadline(timeout).forever()) {
    cc_GiveWay const way;
    return lock_(timeout, firm);
  }
  got = got || wait_(timeout, firm);
  if (!got)
    return false;
  cc_LockCheck::taken(this, rank_);
  if (rank_ == cc_LockRank::orphans)
    tc_orphans = this;
  return true;
}

void ccMutex::unlock()
{
  if (!lockedByMe() || --count_ > 0)
    return;
  cc_LockCheck::given(this, rank_);
  if (tc_orphans == this)
    tc_orphans = nullptr;
  std::lock_guard const hold(guard_);
  owner_.store(0, std::memory_order_relaxed);
  wakeFirst_();
}

ccSemaphore::ccSemaphore(long initial, long maximum)
    : count_(std::clamp(initial, 0L, std::max(maximum, 1L))), maximum_(std::max(maximum, 1L))
{
}

bool ccSemaphore::take_()
{
  if (count_ <= 0)
    return false;
  --count_;
  return true;
}

void ccSemaphore::release(long n)
{
  if (n < 1)
    return;
  cc_LockCheck::gives(this);
  std::lock_guard const hold(guard_);
  count_ = n < maximum_ - count_ ? count_ + n : maximum_;
  wakeFirst_();
}

long ccSemaphore::count() const
{
  std::lock_guard const hold(guard_);
  return count_;
}

ccEvent::ccEvent(bool manualReset, bool set) : manual_(manualReset), set_(set) {}

bool ccEvent::take_()
{
  bool const was = set_;
  set_ = set_ && manual_;
  return was;
}

void ccEvent::set()
{
  cc_LockCheck::gives(this);
  std::lock_guard const hold(guard_);
  set_ = true;
  wakeFirst_();
}

void ccEvent::reset()
{
  std::lock_guard const hold(guard_);
  set_ = false;
}

bool ccEvent::isSet() const
{
  std::lock_guard const hold(guard_);
  return set_;
}

long ccEvent::waitAny(std::vector<ccEvent*> const& events, double timeout)
{
  std::vector<cc_Resource*> const resources(events.begin(), events.end());
  return cc_Wait::any(resources.data(), resources.size(), timeout, /*firm=*/false);
}

ccLock::ccLock(cc_Resource& resource, bool lockNow) : resource_(resource)
{
  if (lockNow)
    lock();
}

ccLock::~ccLock()
{
  while (holds_ > 0)
    unlock();
}

bool ccLock::lock(double timeout)
{
  bool const got = resource_.lock(timeout);
  if (got)
    ++holds_;
  return got;
}

void ccLock::lockFirm()
{
  resource_.lockFirm_();
  ++holds_;
}

void ccLock::unlock()
{
  if (holds_ == 0)
    return;
  --holds_;
  resource_.unlock();
}
