// Locks: a breakable wait as base, a recursive mutex, a counting semaphore, an event, and a scoped lock. Times are
// seconds on a steady clock. A broken wait throws cc_Resource::BrokenLock and acquires nothing.
#pragma once

#include "foundation/exception.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <limits>
#include <mutex>
#include <vector>

inline constexpr double cfForever = std::numeric_limits<double>::infinity();

using ccThreadID = std::uint64_t;  // 0 none; never used twice

class cc_Resource {
public:
  class BrokenLock : public ccException {
    KRS_EXCEPTION
  };

  cc_Resource() = default;
  cc_Resource(cc_Resource const&) = delete;
  cc_Resource& operator=(cc_Resource const&) = delete;
  virtual ~cc_Resource();

  // Waits at most so many seconds; 0 or less, or not a number, polls once. False: the time ran out.
  virtual bool lock(double timeout = cfForever) = 0;
  virtual void unlock() = 0;

  // On a resource: present waiters, and every later wait that would block, throw BrokenLock until mendLocks.
  void breakLocks();
  void mendLocks();
  // On a thread: the same for all its waits, until the thread ends.
  static void breakLocks(ccThreadID);
  static void mendLocks(ccThreadID);
};

// Recursive. Uncontended locking and re-locking make no system call. unlock by a thread that doesn't own it is ignored.
class ccMutex : public cc_Resource {
public:
  ccMutex();
  ~ccMutex() override;
  static ccMutex& global();  // the one lock of the process
  bool lock(double timeout = cfForever) override;
  void unlock() override;
  bool lockedByMe() const;
};

// Holds a resource while it lives; counts its own holds.
class ccLock {
public:
  explicit ccLock(cc_Resource&, bool lockNow = true);
  ~ccLock();
  ccLock(ccLock const&) = delete;
  ccLock& operator=(ccLock const&) = delete;
  bool lock(double timeout = cfForever);
  void lockFirm();  // cannot be broken
  void unlock();    // gives back one hold, none at 0

private:
  cc_Resource& resource_;
  long holds_ = 0;
};
