// Locks: a breakable wait as base, a recursive mutex, a counting semaphore, an event, and a scoped lock. Times are
// seconds on a steady clock. A broken wait throws cc_Resource::BrokenLock and acquires nothing; catch it before
// ccException& in the loop of a thread.
//
// Whoever breaks a wait and then waits for the thread's end holds no ccMutex meanwhile.
#pragma once

#include "foundation/exception.h"
#include "foundation/leaf_mutex.h"

#include <atomic>
#include <cstdint>
#include <limits>
#include <mutex>
#include <vector>

// A time-out that never comes. Everything above 1e8 seconds counts as for ever.
inline constexpr double cfForever = std::numeric_limits<double>::infinity();

using ccThreadID = std::uint64_t;  // 0 none; never used twice

class cc_Wait;

class cc_Resource {
public:
  class BrokenLock : public ccException {
    KRS_EXCEPTION
  };

  cc_Resource() = default;
  cc_Resource(cc_Resource const&) = delete;
  cc_Resource& operator=(cc_Resource const&) = delete;
  virtual ~cc_Resource();  // nobody may wait any more

  // Waits at most so many seconds; 0 or less, or not a number, polls once. False: the time ran out.
  virtual bool lock(double timeout = cfForever) = 0;
  virtual void unlock() = 0;

  // On a resource: present waiters, and every later wait that would block, throw BrokenLock until mendLocks. What can be
  // had at once is had all the same, and a poll, which never blocks, is not broken.
  void breakLocks();
  void mendLocks();
  // On a thread: the same for all its waits on all resources, until the thread ends. Unknown and ended threads: nothing.
  static void breakLocks(ccThreadID);
  static void mendLocks(ccThreadID);

protected:
  enum class Firm { No, Yes };                // a firm wait is not broken
  bool wait_(double timeout, Firm);           // the whole of lock()
  virtual void lockFirm_();                   // lock() for ever that is not broken
  // Under guard_:
  virtual bool take_() = 0;                   // takes the resource for the calling thread, if it can be had
  virtual bool available_() const = 0;        // could a waiter take it
  virtual bool given_() const { return true; }  // comes from another thread, and is no lock that its taker gives back
  void wakeFirst_();                          // call when it has become available

  cc_LeafMutex<cc_LockRank::resource> mutable guard_;  // never held while waiting

private:
  friend class ccLock;
  friend class cc_Wait;
  struct Node {
    cc_Resource* resource = nullptr;
    cc_Wait* wait = nullptr;
    Node* before = nullptr;
    Node* after = nullptr;
  };
  void enter_(Node&, cc_Wait&);
  void leave_(Node&);

  Node* first_ = nullptr;  // waiters, longest first
  Node* last_ = nullptr;
  bool broken_ = false;
};

// A recursive mutex. unlock() by a thread that doesn't own it does nothing. A wait while an exception unwinds the stack
// is not broken. One of the rank of the orphans is given up while its owner waits for ever for one of a root's.
class ccMutex final : public cc_Resource {
public:
  explicit ccMutex(cc_LockRank rank = cc_LockRank::none) : rank_(rank) {}
  static ccMutex& global();  // one for the process, never destroyed

  bool lock(double timeout = cfForever) override;
  void unlock() override;
  bool lockedByMe() const;

protected:
  void lockFirm_() override;
  bool take_() override;
  bool available_() const override { return owner_.load(std::memory_order_relaxed) == 0; }
  bool given_() const override { return false; }

private:
  class cc_GiveWay;

  bool relock_();
  bool lock_(double timeout, Firm);

  // Written under the guard. Read without it only to compare with the reader's own number, which nobody else writes.
  std::atomic<ccThreadID> owner_{0};
  long count_ = 0;  // the owner's
  cc_LockRank rank_;
};

// A count from 0 to a maximum. A wait takes 1; nobody owns what was taken.
class ccSemaphore : public cc_Resource {
public:
  ccSemaphore(long initial, long maximum);  // a maximum below 1 counts as 1; the initial count is cut to the range

  bool lock(double timeout = cfForever) override { return wait_(timeout, Firm::No); }
  void unlock() override { release(); }
  void release(long n = 1);  // stops silently at the maximum; nothing for n below 1
  long count() const;

protected:
  bool take_() override;
  bool available_() const override { return count_ > 0; }

private:
  long count_, maximum_;
};

// A flag to wait for. An automatic event is reset by the one wait that it ends. A waiter of a manual one that has not
// run yet when the event is reset goes on waiting. What was written before set() is seen after the wait.
class ccEvent : public cc_Resource {
public:
  explicit ccEvent(bool manualReset = false, bool set = false);

  bool lock(double timeout = cfForever) override { return wait_(timeout, Firm::No); }
  void unlock() override {}
  void set();
  void reset();
  bool isSet() const;
  // The lowest index that is set, and only that is consumed; -1 when the time ran out. Null pointers are never set.
  static long waitAny(std::vector<ccEvent*> const&, double timeout = cfForever);

protected:
  bool take_() override;
  bool available_() const override { return set_; }

private:
  bool manual_, set_;
};

// Holds a resource for a scope. It counts its own holds: unlock() gives back one of them, the destructor all.
class ccLock {
public:
  explicit ccLock(cc_Resource& resource, bool lockNow = true);
  ccLock(ccLock const&) = delete;
  ccLock& operator=(ccLock const&) = delete;
  ~ccLock();

  bool lock(double timeout = cfForever);
  void lockFirm();  // for ever, and cannot be broken: for destructors
  void unlock();

private:
  cc_Resource& resource_;
  long holds_ = 0;
};
