// A recursive lock for short sections of one module, which cannot be broken. Nothing else is locked inside one.
#pragma once

#include "foundation/leaf_mutex.h"

class ccCriticalSection {
public:
  ccCriticalSection() = default;
  ccCriticalSection(ccCriticalSection const&) = delete;
  ccCriticalSection& operator=(ccCriticalSection const&) = delete;

  void lock() { mutex_.lock(); }
  bool tryLock() { return mutex_.try_lock(); }
  void unlock() { mutex_.unlock(); }

private:
  cc_RankedMutex<std::recursive_mutex, cc_LockRank::section> mutex_;
};

class ccCriticalSectionLock {
public:
  explicit ccCriticalSectionLock(ccCriticalSection& section) : section_(section) { section_.lock(); }
  ccCriticalSectionLock(ccCriticalSectionLock const&) = delete;
  ccCriticalSectionLock& operator=(ccCriticalSectionLock const&) = delete;
  ~ccCriticalSectionLock() { section_.unlock(); }

private:
  ccCriticalSection& section_;
};
