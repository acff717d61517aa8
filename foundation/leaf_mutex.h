// A plain mutex with a place in the order of locks. In ordinary builds it costs what std::mutex costs.
#pragma once

#include "foundation/lock_check.h"

#include <mutex>

template <class Mutex, cc_LockRank rank> class cc_RankedMutex {
public:
  constexpr cc_RankedMutex() = default;
  cc_RankedMutex(cc_RankedMutex const&) = delete;
  cc_RankedMutex& operator=(cc_RankedMutex const&) = delete;

  void lock()
  {
    cc_LockCheck::wanted(this, rank);
    mutex_.lock();
    cc_LockCheck::taken(this, rank);
  }
  bool try_lock()
  {
    bool const got = mutex_.try_lock();
    if (got)
      cc_LockCheck::taken(this, rank);
    return got;
  }
  void unlock()
  {
    cc_LockCheck::given(this, rank);
    mutex_.unlock();
  }
  Mutex& native() { return mutex_; }  // for a condition variable

private:
  Mutex mutex_;
};

template <cc_LockRank rank> using cc_LeafMutex = cc_RankedMutex<std::mutex, rank>;

// Holds a leaf and can wait for a condition under it.
template <cc_LockRank rank> class cc_LeafWait {
public:
  explicit cc_LeafWait(cc_LeafMutex<rank>& mutex) : mutex_(mutex)
  {
    mutex_.lock();
    native_ = std::unique_lock<std::mutex>(mutex_.native(), std::adopt_lock);
  }
  cc_LeafWait(cc_LeafWait const&) = delete;
  cc_LeafWait& operator=(cc_LeafWait const&) = delete;
  ~cc_LeafWait()
  {
    native_.release();
    mutex_.unlock();
  }
  std::unique_lock<std::mutex>& native() { return native_; }

private:
  cc_LeafMutex<rank>& mutex_;
  std::unique_lock<std::mutex> native_;
};
