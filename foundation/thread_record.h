// What the library knows of a thread, and one wait of it. Internal to locks and threads.
#pragma once

#include "foundation/resource.h"
#include "foundation/thread.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

// A moment on the steady clock.
class cc_Deadline {
public:
  explicit cc_Deadline(double timeout);
  bool poll() const { return kind_ == Kind::Poll; }
  bool forever() const { return kind_ == Kind::Forever; }
  std::chrono::steady_clock::time_point at() const { return at_; }

private:
  enum class Kind { Poll, Forever, Timed } kind_;
  std::chrono::steady_clock::time_point at_{};
};

// Records live in one registry from the thread's first use of the library, or its start, to its end.
class cc_ThreadRecord {
public:
  explicit cc_ThreadRecord(ccThreadID number, cePriority level) : id(number), priority(level) {}

  static std::shared_ptr<cc_ThreadRecord> create(cePriority);        // registered, for a thread yet to start
  static std::shared_ptr<cc_ThreadRecord> current();
  static std::shared_ptr<cc_ThreadRecord> find(ccThreadID);          // null if unknown or ended
  static void adopt(std::shared_ptr<cc_ThreadRecord> const&);        // the calling thread is the one it was created for
  static void forget(std::shared_ptr<cc_ThreadRecord> const&);       // the thread has ended, or never started

  void breakWaits();
  void mendWaits();
  void setPriority(cePriority);
  cePriority readPriority();

  ccThreadID const id;
  std::atomic<bool> broken{false};
  ccEvent over{/*manualReset=*/true};

private:
  friend class cc_Wait;

  // The guard comes after the guard of any resource.
  cc_LeafMutex<cc_LockRank::threadRecord> guard;
  std::condition_variable wake;
  cc_Wait* wait = nullptr;  // the present wait
  cePriority priority;
  unsigned long systemThread = 0;  // 0 before the thread runs
  bool ended = false;
};

// One wait of the calling thread, on one resource or several. It sleeps between attempts to take; nothing is handed over,
// so whoever comes by meanwhile may be faster.
class cc_Wait {
public:
  explicit cc_Wait(bool firm);
  cc_Wait(cc_Wait const&) = delete;
  cc_Wait& operator=(cc_Wait const&) = delete;
  ~cc_Wait();

  void signal();  // something may have become available
  void breakIt();
  // Sleeps until a signal, a break or the deadline; false: the deadline has passed.
  bool sleep(cc_Deadline const&);
  bool isBroken();

  // Takes the first resource that can be had, or throws, or finds the time run out: the index, or -1.
  static long any(cc_Resource* const* resources, std::size_t count, double timeout, bool firm);

private:
  friend class cc_ThreadRecord;
  void breakHeld_();

  std::shared_ptr<cc_ThreadRecord> record_;
  bool const firm_;
  bool signalled_ = false;  // both under the record's guard
  bool broken_ = false;
};

// The number of the calling thread, 0 before its first use of the library.
extern constinit thread_local ccThreadID tc_threadID;
