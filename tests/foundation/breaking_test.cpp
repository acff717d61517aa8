// Breaking and mending of waits, on resources and on threads.
#include "foundation/resource.h"
#include "foundation/thread.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <thread>

namespace {

using BrokenLock = cc_Resource::BrokenLock;
constexpr double patience = 20;  // seconds; only a fault takes so long

// Runs a function on a thread of the library.
class Runner {
public:
  explicit Runner(std::function<void()> f) : f_(std::make_unique<std::function<void()>>(std::move(f)))
  {
    id = cfCreateThreadTRX([](void* p) { (*static_cast<std::function<void()>*>(p))(); }, f_.get());
  }
  ~Runner() { EXPECT_TRUE(ended()); }
  bool ended(double timeout = patience) { return cfWaitForThreadTermination(id, timeout); }

  ccThreadID id;

private:
  std::unique_ptr<std::function<void()>> f_;
};

bool breaks(std::function<void()> const& wait)
{
  try {
    wait();
  } catch (BrokenLock const&) {
    return true;
  }
  return false;
}

class Mended {
public:
  ~Mended() { cc_Resource::mendLocks(cfCurrentThreadID()); }
};

}  // namespace

TEST(BreakingAResource, endsEveryPresentWaitEvenIfItIsMendedAtOnce)
{
  ccSemaphore semaphore(0, 1);
  std::atomic<int> broken{0};
  std::atomic<int> left{3};
  auto const wait = [&] {
    broken += breaks([&] { semaphore.lock(); }) ? 1 : 0;
    --left;
  };
  Runner a(wait), b(wait), c(wait);

  for (int i = 0; left > 0 && i < 100000; ++i) {
    semaphore.breakLocks();
    semaphore.mendLocks();
    std::this_thread::yield();
  }

  EXPECT_EQ(broken, 3);
  EXPECT_EQ(semaphore.count(), 0);
}

TEST(BreakingAResource, endsLaterWaitsThatWouldBlockUntilItIsMended)
{
  ccSemaphore semaphore(0, 2);
  semaphore.breakLocks();

  EXPECT_TRUE(breaks([&] { semaphore.lock(); }));
  EXPECT_TRUE(breaks([&] { semaphore.lock(0.5); }));
  EXPECT_TRUE(breaks([&] { ccLock const lock(semaphore); }));
  EXPECT_FALSE(semaphore.lock(0.0)) << "a poll does not block";

  semaphore.mendLocks();
  EXPECT_FALSE(semaphore.lock(0.001));
}

TEST(BreakingAResource, lastsForOthersAndLeavesOtherResourcesAlone)
{
  ccEvent broken, whole;
  broken.breakLocks();

  EXPECT_TRUE(breaks([&] { broken.lock(); }));
  EXPECT_FALSE(whole.lock(0.001));
  EXPECT_TRUE(breaks([&] { ccEvent::waitAny({&whole, &broken}, cfForever); }));
  EXPECT_EQ(ccEvent::waitAny({&whole, &broken}, 0.0), -1);
}

TEST(BreakingAResource, leavesWhatCanBeHadAtOnce)
{
  ccSemaphore semaphore(1, 1);
  ccMutex mutex;
  ccEvent event(true, true), other;
  semaphore.breakLocks();
  mutex.breakLocks();
  event.breakLocks();

  EXPECT_TRUE(semaphore.lock());
  EXPECT_TRUE(mutex.lock());
  EXPECT_TRUE(mutex.lock()) << "a second hold never waits";
  EXPECT_TRUE(event.lock());
  EXPECT_EQ(ccEvent::waitAny({&other, &event}, cfForever), 1);
  mutex.unlock();
  mutex.unlock();
}

TEST(BreakingAResource, reachesMutexWaiters)
{
  ccMutex mutex;
  mutex.lock();
  bool broken = false;
  {
    Runner waiter([&] { broken = breaks([&] { mutex.lock(); }); });
    mutex.breakLocks();
  }
  EXPECT_TRUE(broken);
  EXPECT_TRUE(mutex.lockedByMe());
  mutex.unlock();
}

TEST(BreakingAThread, isStickyForAllItsWaits)
{
  Mended const mended;
  ccSemaphore semaphore(0, 1);
  ccEvent event;
  cc_Resource::breakLocks(cfCurrentThreadID());

  EXPECT_TRUE(cf_threadBroken());
  EXPECT_TRUE(breaks([&] { semaphore.lock(); }));
  EXPECT_TRUE(breaks([&] { semaphore.lock(1); })) << "a swallowed one comes back";
  EXPECT_TRUE(breaks([&] { event.lock(); }));
  EXPECT_TRUE(breaks([&] { ccEvent::waitAny({&event}, 1); }));
  EXPECT_FALSE(semaphore.lock(0.0));
  semaphore.release();
  EXPECT_TRUE(semaphore.lock());

  cc_Resource::mendLocks(cfCurrentThreadID());
  EXPECT_FALSE(cf_threadBroken());
  EXPECT_FALSE(semaphore.lock(0.001));
}

TEST(BreakingAThread, reachesItsPresentWaitEvenIfItIsMendedAtOnce)
{
  ccSemaphore semaphore(0, 1);
  std::atomic<bool> broken{false};
  Runner waiter([&] { broken = breaks([&] { semaphore.lock(); }); });

  for (int i = 0; !waiter.ended(0.0) && i < 100000; ++i) {
    cc_Resource::breakLocks(waiter.id);
    cc_Resource::mendLocks(waiter.id);
    std::this_thread::yield();
  }

  EXPECT_TRUE(waiter.ended(0.0));
  EXPECT_TRUE(broken);
}

TEST(BreakingAThread, leavesOtherThreadsWaiting)
{
  ccSemaphore semaphore(0, 1);
  bool first = false, second = false;
  {
    Runner a([&] { first = breaks([&] { semaphore.lock(); }); });
    Runner b([&] { second = breaks([&] { semaphore.lock(); }); });
    cc_Resource::breakLocks(a.id);
    EXPECT_TRUE(a.ended());
    EXPECT_FALSE(b.ended(0.01));
    semaphore.release();
  }
  EXPECT_TRUE(first);
  EXPECT_FALSE(second) << "it got what the broken one left";
  EXPECT_EQ(semaphore.count(), 0);
}

TEST(BreakingAThread, ofStrangersAndTheEndedHasNoEffect)
{
  cc_Resource::breakLocks(ccThreadID(0));
  cc_Resource::breakLocks(ccThreadID(0xFFFFFFFFFFFFull));
  Runner ended([] {});
  EXPECT_TRUE(ended.ended());
  cc_Resource::breakLocks(ended.id);
  cc_Resource::mendLocks(ended.id);

  ccSemaphore semaphore(0, 1);
  EXPECT_FALSE(semaphore.lock(0.001));
  EXPECT_FALSE(cf_threadBroken());
}

TEST(BreakingAThread, reachesThreadsOfTheStandardLibraryToo)
{
  ccSemaphore semaphore(0, 1);
  std::atomic<ccThreadID> id{0};
  std::atomic<bool> broken{false};
  std::thread waiter([&] {
    id = cfCurrentThreadID();
    broken = breaks([&] { semaphore.lock(patience); });
  });
  while (!id)
    std::this_thread::yield();
  cc_Resource::breakLocks(id);
  waiter.join();

  EXPECT_TRUE(broken);
}

TEST(BreakingAThread, endsItsWaitForAnotherThread)
{
  ccSemaphore semaphore(0, 1);
  Runner slow([&] { semaphore.lock(); });
  bool broken = false;
  {
    Runner waiter([&] { broken = breaks([&] { cfWaitForThreadTermination(slow.id); }); });
    cc_Resource::breakLocks(waiter.id);
  }
  EXPECT_TRUE(broken);
  semaphore.release();
}

TEST(FirmLock, isNotBroken)
{
  ccMutex mutex;
  ccSemaphore semaphore(0, 1);
  mutex.lock();
  mutex.breakLocks();
  semaphore.breakLocks();
  std::atomic<bool> gotMutex{false}, gotSemaphore{false};
  {
    Runner waiter([&] {
      cc_Resource::breakLocks(cfCurrentThreadID());
      ccLock lock(mutex, false);
      lock.lockFirm();
      lock.lockFirm();
      gotMutex = mutex.lockedByMe();
      ccLock taken(semaphore, false);
      taken.lockFirm();
      gotSemaphore = true;
    });
    cfSleep(0.01);
    mutex.breakLocks();
    EXPECT_FALSE(gotMutex);
    mutex.unlock();
    cfSleep(0.01);
    EXPECT_FALSE(gotSemaphore);
    semaphore.release();
  }
  EXPECT_TRUE(gotMutex);
  EXPECT_TRUE(gotSemaphore);
  EXPECT_EQ(semaphore.count(), 1) << "given back";
}

TEST(Mutex, waitsDuringStackUnwindingAreNotBroken)
{
  ccMutex mutex;
  ccEvent arrived;
  std::atomic<int> result{0};
  mutex.lock();
  {
    Runner waiter([&] {
      struct Cleanup {
        ccMutex& mutex;
        ccEvent& arrived;
        std::atomic<int>& result;
        ~Cleanup()
        {
          arrived.set();
          try {
            ccLock const lock(mutex);
            result = 1;
          } catch (BrokenLock const&) {
            result = 2;
          }
        }
      };
      cc_Resource::breakLocks(cfCurrentThreadID());
      try {
        Cleanup const cleanup{mutex, arrived, result};
        throw 1;
      } catch (int) {
      }
    });
    EXPECT_TRUE(arrived.lock(patience));
    cfSleep(0.01);
    mutex.unlock();
  }
  EXPECT_EQ(result, 1);
}

TEST(Breaking, aBrokenWaitAcquiresNothing)
{
  // The release and the break meet; whichever wins, no token is lost and none appears.
  for (int i = 0; i < 500; ++i) {
    ccSemaphore semaphore(0, 10);
    std::atomic<int> taken{0};
    {
      Runner a([&] { taken += breaks([&] { semaphore.lock(); }) ? 0 : 1; });
      Runner b([&] { taken += breaks([&] { semaphore.lock(); }) ? 0 : 1; });
      semaphore.release(1);
      cc_Resource::breakLocks(a.id);
      a.ended();
      cc_Resource::breakLocks(b.id);
    }
    ASSERT_EQ(taken + semaphore.count(), 1);
  }
}

namespace {

// What the threads of the random test share. It lives as long as any of them.
struct Arena {
  static constexpr long start = 3;
  ccSemaphore semaphore{start, 1000000};
  ccMutex mutex;
  ccEvent events[2];
  std::atomic<long> taken{0}, released{0}, broken{0}, inside{0}, steps{0};
  std::atomic<bool> overlap{false};
  std::atomic<ccThreadID> ids[4] = {};
  std::atomic<int> next{0};
  long perThread = 0;

  void release(long n)
  {
    released += n;
    semaphore.release(n);
  }

  void disturb(unsigned r)
  {
    cc_Resource* const resources[] = {&semaphore, &mutex, &events[0], &events[1]};
    cc_Resource& resource = *resources[r / 8 % 4];
    ccThreadID const thread = ids[r / 8 % 4];
    switch (r % 8) {
    case 0:
      return resource.breakLocks();
    case 1:
    case 2:
      return resource.mendLocks();
    case 3:
      return cc_Resource::breakLocks(thread);
    case 4:
    case 5:
      return cc_Resource::mendLocks(thread);
    case 6:
      return release(1 + r / 8 % 2);
    default:
      return events[r / 8 % 2].set();
    }
  }

  void wait(unsigned r)
  {
    double const timeouts[] = {0, 1e-6, 5e-5, 2e-4, cfForever};
    double const timeout = timeouts[r / 4 % 5];
    switch (r % 4) {
    case 0:
      taken += semaphore.lock(timeout) ? 1 : 0;
      break;
    case 1: {
      ccLock lock(mutex, false);
      if (!lock.lock(timeout))
        break;
      if (++inside != 1)
        overlap = true;
      if (r / 32 % 2)
        lock.lock(timeout);
      --inside;
      break;
    }
    case 2:
      events[r / 32 % 2].lock(timeout);
      break;
    default:
      ccEvent::waitAny({&events[0], &events[1]}, timeout);
    }
  }

  void work(int which)
  {
    std::mt19937 random(static_cast<unsigned>(100 + which));
    for (long i = 0; i < perThread; ++i) {
      auto const r = static_cast<unsigned>(random());
      try {
        if (r & 1)
          disturb(r >> 1);
        else
          wait(r >> 1);
      } catch (BrokenLock const&) {
        ++broken;
      }
      ++steps;
    }
  }
};

}  // namespace

TEST(Breaking, randomSequencesOfSeveralThreadsNeverHang)
{
  long const sequences = std::getenv("KRS_LONG") ? 100000 : 20000;
  auto const arena = std::make_shared<Arena>();
  arena->perThread = sequences / 4;
  std::vector<ccThreadID> ids;
  for (int t = 0; t < 4; ++t) {
    auto* const own = new std::shared_ptr<Arena>(arena);
    ids.push_back(cfCreateThreadTRX(
        [](void* p) {
          std::unique_ptr<std::shared_ptr<Arena>> const shared(static_cast<std::shared_ptr<Arena>*>(p));
          int const which = (*shared)->next++;
          (*shared)->ids[which] = cfCurrentThreadID();
          (*shared)->work(which);
        },
        own));
  }

  // Waits for ever need somebody outside who goes on disturbing.
  std::mt19937 random(99);
  auto const start = std::chrono::steady_clock::now();
  auto const late = [&] { return std::chrono::steady_clock::now() - start > std::chrono::seconds(300); };
  for (auto id : ids)
    while (!cfWaitForThreadTermination(id, 2e-5) && !late())
      arena->disturb(static_cast<unsigned>(random()));

  ASSERT_FALSE(late()) << "a wait hangs";
  EXPECT_EQ(arena->steps, sequences);
  EXPECT_FALSE(arena->overlap) << "two threads were inside the mutex";
  EXPECT_EQ(arena->semaphore.count(), Arena::start + arena->released - arena->taken);
  EXPECT_GT(arena->broken, 0);
  EXPECT_GT(arena->taken, 0);
  EXPECT_TRUE(arena->mutex.lock(0.0)) << "nobody holds it any more";
  arena->mutex.unlock();
}
