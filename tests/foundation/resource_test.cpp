#include "foundation/critical_section.h"
#include "foundation/resource.h"
#include "foundation/thread.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <thread>

namespace {

// The result of a call on another thread.
template <class F> auto elsewhere(F f)
{
  decltype(f()) result{};
  std::thread([&] { result = f(); }).join();
  return result;
}

bool freeFor(cc_Resource& resource)
{
  return elsewhere([&] {
    ccLock lock(resource, false);
    return lock.lock(0.0);
  });
}

double secondsOf(auto f)
{
  auto const start = std::chrono::steady_clock::now();
  f();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

constexpr double patience = 20;  // seconds; only a fault takes so long

}  // namespace

TEST(Mutex, isRecursive)
{
  ccMutex mutex;
  EXPECT_FALSE(mutex.lockedByMe());

  mutex.lock();
  mutex.lock();
  mutex.unlock();
  EXPECT_TRUE(mutex.lockedByMe());
  EXPECT_FALSE(freeFor(mutex));

  mutex.unlock();
  EXPECT_FALSE(mutex.lockedByMe());
  EXPECT_TRUE(freeFor(mutex));
}

TEST(Mutex, unlockByAStrangerIsIgnored)
{
  ccMutex mutex;
  mutex.unlock();
  mutex.lock();

  std::thread([&] { mutex.unlock(); }).join();

  EXPECT_TRUE(mutex.lockedByMe());
  EXPECT_FALSE(elsewhere([&] { return mutex.lockedByMe(); }));
  EXPECT_FALSE(freeFor(mutex));
  mutex.unlock();
}

TEST(Mutex, waitEndsWithItsTime)
{
  ccMutex mutex;
  ccLock const lock(mutex);

  EXPECT_FALSE(elsewhere([&] { return mutex.lock(0.0); }));
  EXPECT_FALSE(elsewhere([&] { return mutex.lock(-1); }));
  EXPECT_FALSE(elsewhere([&] { return mutex.lock(std::nan("")); }));
  EXPECT_GE(secondsOf([&] { EXPECT_FALSE(elsewhere([&] { return mutex.lock(0.02); })); }), 0.02);
}

TEST(Mutex, waiterGetsItWhenItIsGivenBack)
{
  for (double timeout : {patience, 1e9, cfForever, std::numeric_limits<double>::max()}) {
    ccMutex mutex;
    bool got = false;
    mutex.lock();
    std::thread waiter([&] {
      got = mutex.lock(timeout);
      mutex.unlock();
    });
    cfSleep(0.005);
    EXPECT_FALSE(got) << timeout;
    mutex.unlock();
    waiter.join();
    EXPECT_TRUE(got) << timeout;
  }
}

TEST(Mutex, excludesOtherThreads)
{
  ccMutex mutex;
  long sum = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&] {
      for (int i = 0; i < 20000; ++i) {
        ccLock const lock(mutex);
        ++sum;
      }
    });
  for (auto& thread : threads)
    thread.join();

  EXPECT_EQ(sum, 80000);
}

TEST(Mutex, globalIsOne)
{
  EXPECT_EQ(&ccMutex::global(), &ccMutex::global());
  ccLock const outer(ccMutex::global());
  ccLock const inner(ccMutex::global());
  EXPECT_TRUE(ccMutex::global().lockedByMe());
}

TEST(Lock, countsItsOwnHolds)
{
  ccSemaphore semaphore(3, 3);
  {
    ccLock lock(semaphore);
    EXPECT_TRUE(lock.lock());
    EXPECT_EQ(semaphore.count(), 1);
    lock.unlock();
    EXPECT_EQ(semaphore.count(), 2);
    lock.unlock();
    lock.unlock();
    EXPECT_EQ(semaphore.count(), 3) << "none is given back at 0";
    lock.lock();
    lock.lock();
  }
  EXPECT_EQ(semaphore.count(), 3) << "the destructor gives back the rest";
}

TEST(Lock, tryFormTakesNothingWhenItFails)
{
  ccSemaphore semaphore(1, 5);
  {
    ccLock first(semaphore), second(semaphore, false);
    EXPECT_FALSE(second.lock(0.0));
    second.unlock();
  }
  EXPECT_EQ(semaphore.count(), 1);
}

TEST(Semaphore, saturatesSilentlyAtItsMaximum)
{
  ccSemaphore semaphore(0, 2);

  semaphore.release();
  EXPECT_EQ(semaphore.count(), 1);
  semaphore.unlock();
  semaphore.release();
  EXPECT_EQ(semaphore.count(), 2);
  EXPECT_TRUE(semaphore.lock(0.0));
  semaphore.release(1000);
  EXPECT_EQ(semaphore.count(), 2);
  semaphore.release(std::numeric_limits<long>::max());
  EXPECT_EQ(semaphore.count(), 2);
}

TEST(Semaphore, nothingIsReleasedForLessThanOne)
{
  ccSemaphore semaphore(1, 2);

  semaphore.release(0);
  semaphore.release(-5);

  EXPECT_EQ(semaphore.count(), 1);
}

TEST(Semaphore, startsWithinItsRange)
{
  EXPECT_EQ(ccSemaphore(5, 2).count(), 2);
  EXPECT_EQ(ccSemaphore(-5, 2).count(), 0);
  EXPECT_EQ(ccSemaphore(5, 0).count(), 1);
}

TEST(Semaphore, waitTakesOneOrTimesOut)
{
  ccSemaphore semaphore(1, 2);

  EXPECT_TRUE(semaphore.lock());
  EXPECT_FALSE(semaphore.lock(0.0));
  EXPECT_GE(secondsOf([&] { EXPECT_FALSE(semaphore.lock(0.02)); }), 0.02) << "a timed sleep";
}

TEST(Semaphore, oneReleaseOfSeveralWakesAsManyWaiters)
{
  ccSemaphore semaphore(0, 10);
  std::atomic<int> got{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&] { got += semaphore.lock(patience) ? 1 : 0; });

  cfSleep(0.005);
  semaphore.release(4);
  for (auto& thread : threads)
    thread.join();

  EXPECT_EQ(got, 4);
  EXPECT_EQ(semaphore.count(), 0);
}

TEST(Event, automaticOneIsResetByTheWait)
{
  ccEvent event;
  EXPECT_FALSE(event.isSet());
  EXPECT_FALSE(event.lock(0.0));

  event.set();
  event.set();
  EXPECT_TRUE(event.isSet());
  EXPECT_TRUE(event.lock());
  EXPECT_FALSE(event.isSet());
  event.unlock();
  EXPECT_FALSE(event.isSet()) << "unlock does nothing";
}

TEST(Event, manualOneStaysUntilReset)
{
  ccEvent event(/*manualReset=*/true, /*set=*/true);

  EXPECT_TRUE(event.lock());
  EXPECT_TRUE(event.lock(0.0));
  event.reset();
  EXPECT_FALSE(event.lock(0.0));
}

TEST(Event, manualOneWakesAllWaiters)
{
  ccEvent event(/*manualReset=*/true);
  std::atomic<int> got{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&] { got += event.lock(patience) ? 1 : 0; });

  cfSleep(0.005);
  event.set();
  for (auto& thread : threads)
    thread.join();

  EXPECT_EQ(got, 4);
}

TEST(Event, whatWasWrittenBeforeIsSeenAfterTheWait)
{
  for (int i = 0; i < 200; ++i) {
    ccEvent event;
    int value = 0;
    std::thread writer([&] {
      value = i + 1;
      event.set();
    });
    ASSERT_TRUE(event.lock(patience));
    EXPECT_EQ(value, i + 1);
    writer.join();
  }
}

TEST(Event, waitAnyTakesTheLowestIndexAndConsumesOnlyThat)
{
  ccEvent a, b(false, true), c(false, true);

  EXPECT_EQ(ccEvent::waitAny({&a, &b, &c}, patience), 1);
  EXPECT_FALSE(b.isSet());
  EXPECT_TRUE(c.isSet());
  EXPECT_EQ(ccEvent::waitAny({nullptr, &b, &c}, 0.0), 2);
  EXPECT_EQ(ccEvent::waitAny({&a, &b, &c}, 0.0), -1);
  EXPECT_EQ(ccEvent::waitAny({}, 0.001), -1);
  EXPECT_EQ(ccEvent::waitAny({nullptr}, 0.001), -1);
}

TEST(Event, waitAnyIsWokenByEachOfThem)
{
  for (std::size_t which = 0; which < 3; ++which) {
    ccEvent events[3];
    long got = -2;
    std::thread waiter([&] { got = ccEvent::waitAny({&events[0], &events[1], &events[2]}, patience); });
    cfSleep(0.002);
    events[which].set();
    waiter.join();
    EXPECT_EQ(got, static_cast<long>(which));
  }
}

TEST(Event, aSetThatWaitAnyDoesNotTakeGoesToTheNextWaiter)
{
  for (int i = 0; i < 300; ++i) {
    ccEvent a, b;
    long any = -2;
    bool single = false;
    std::thread first([&] { any = ccEvent::waitAny({&a, &b}, patience); });
    std::thread second([&] { single = b.lock(patience); });
    b.set();
    a.set();
    // Whoever took b, the other one needs a or one more b.
    while (b.isSet())
      std::this_thread::yield();
    first.join();
    if (any == 1)
      b.set();
    second.join();
    ASSERT_TRUE(single);
    ASSERT_TRUE(any == 0 || any == 1);
  }
}

TEST(CriticalSection, isRecursiveAndExcludesOthers)
{
  ccCriticalSection section;
  {
    ccCriticalSectionLock const outer(section);
    ccCriticalSectionLock const inner(section);
    EXPECT_FALSE(elsewhere([&] { return section.tryLock(); }));
  }
  EXPECT_TRUE(elsewhere([&] {
    bool const got = section.tryLock();
    section.unlock();
    return got;
  }));
}
