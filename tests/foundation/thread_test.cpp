#include "foundation/cpu.h"
#include "foundation/thread.h"
#include "foundation/timer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <stdexcept>
#include <thread>

namespace {

constexpr double patience = 20;  // seconds; only a fault takes so long

void setEvent(void* event) { static_cast<ccEvent*>(event)->set(); }
void waitForEvent(void* event) { static_cast<ccEvent*>(event)->lock(); }

struct Reading {
  ccEvent go{true}, done{true};
  ccThreadID id = 0;
  cePriority priority = cePriorityInherit;
  cePriority child = cePriorityInherit;
};

void readPriority(void* p)
{
  auto* const reading = static_cast<Reading*>(p);
  reading->go.lock();
  reading->id = cfCurrentThreadID();
  reading->priority = cfGetThreadPriority();
}

cePriority priorityInside(cePriority asked)
{
  Reading reading;
  reading.go.set();
  EXPECT_TRUE(cfWaitForThreadTermination(cfCreateThreadTRX(readPriority, &reading, asked), patience));
  return reading.priority;
}

}  // namespace

TEST(Thread, runsItsFunctionWithItsArgument)
{
  ccEvent ran;

  ccThreadID const id = cfCreateThreadTRX(setEvent, &ran);

  EXPECT_NE(id, 0u);
  EXPECT_TRUE(ran.lock(patience));
  EXPECT_TRUE(cfWaitForThreadTermination(id, patience));
}

TEST(Thread, nullFunctionStartsNothing) { EXPECT_EQ(cfCreateThreadTRX(nullptr, nullptr), 0u); }

TEST(Thread, numbersAreNeverUsedTwice)
{
  std::set<ccThreadID> seen = {cfCurrentThreadID()};
  for (int i = 0; i < 20; ++i) {
    Reading reading;
    reading.go.set();
    ccThreadID const id = cfCreateThreadTRX(readPriority, &reading);
    ASSERT_TRUE(cfWaitForThreadTermination(id, patience));
    EXPECT_EQ(reading.id, id);
    EXPECT_TRUE(seen.insert(id).second);
  }
  EXPECT_EQ(cfCurrentThreadID(), cfCurrentThreadID());
}

TEST(Thread, waitForItsEndIsTrueForTheUnknownAndFalseForOneself)
{
  EXPECT_TRUE(cfWaitForThreadTermination(0xFFFFFFFFFFull));
  EXPECT_TRUE(cfWaitForThreadTermination(0));
  EXPECT_FALSE(cfWaitForThreadTermination(cfCurrentThreadID()));
}

TEST(Thread, waitForItsEndTimesOutWhileItRuns)
{
  ccEvent go;
  ccThreadID const id = cfCreateThreadTRX(waitForEvent, &go);

  EXPECT_FALSE(cfWaitForThreadTermination(id, 0.0));
  EXPECT_FALSE(cfWaitForThreadTermination(id, 0.005));
  go.set();
  EXPECT_TRUE(cfWaitForThreadTermination(id, patience));
  EXPECT_TRUE(cfWaitForThreadTermination(id, 0.0));
}

TEST(Thread, severalMayWaitForOne)
{
  ccEvent go;
  ccThreadID const id = cfCreateThreadTRX(waitForEvent, &go);
  std::atomic<int> ended{0};
  std::vector<std::thread> waiters;
  for (int i = 0; i < 3; ++i)
    waiters.emplace_back([&] { ended += cfWaitForThreadTermination(id, patience) ? 1 : 0; });
  go.set();
  for (auto& waiter : waiters)
    waiter.join();

  EXPECT_EQ(ended, 3);
}

TEST(Thread, endsQuietlyWhenABrokenLockLeavesItsFunction)
{
  ccEvent never;
  ccThreadID const id = cfCreateThreadTRX(waitForEvent, &never);

  cc_Resource::breakLocks(id);

  EXPECT_TRUE(cfWaitForThreadTermination(id, patience));
}

TEST(ThreadDeathTest, anyOtherExceptionEndsTheProcess)
{
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(
      {
        ccThreadID const id = cfCreateThreadTRX([](void*) { throw std::runtime_error("lost"); }, nullptr);
        cfWaitForThreadTermination(id, patience);
      },
      "");
}

TEST(Thread, priorityIsTheCreatorsOrTheOneAskedFor)
{
  EXPECT_EQ(cfGetThreadPriority(), cePriorityNormal);
  EXPECT_EQ(priorityInside(cePriorityInherit), cePriorityNormal);
  for (int p = 0; p <= 6; ++p)
    EXPECT_EQ(priorityInside(static_cast<cePriority>(p)), p);
  EXPECT_EQ(priorityInside(static_cast<cePriority>(100)), cePriorityTimeCritical);
  EXPECT_EQ(priorityInside(static_cast<cePriority>(-7)), cePriorityIdle);
}

TEST(Thread, priorityIsHandedDownFromAThreadThatHasOne)
{
  Reading outer;
  ccThreadID const id = cfCreateThreadTRX(
      [](void* p) { static_cast<Reading*>(p)->child = priorityInside(cePriorityInherit); }, &outer, cePriorityLowest);
  EXPECT_TRUE(cfWaitForThreadTermination(id, patience));
  EXPECT_EQ(outer.child, cePriorityLowest);
}

TEST(Thread, priorityIsKeptAsItWasSet)
{
  Reading reading;
  ccThreadID const id = cfCreateThreadTRX(readPriority, &reading);

  cfSetThreadPriority(cePriorityBelowNormal, id);
  EXPECT_EQ(cfGetThreadPriority(id), cePriorityBelowNormal);
  cfSetThreadPriority(cePriorityInherit, id);
  EXPECT_EQ(cfGetThreadPriority(id), cePriorityBelowNormal) << "-1 changes nothing";
  cfSetThreadPriority(static_cast<cePriority>(50), id);
  EXPECT_EQ(cfGetThreadPriority(id), cePriorityTimeCritical);
  cfSetThreadPriority(static_cast<cePriority>(-50), id);
  EXPECT_EQ(cfGetThreadPriority(id), cePriorityIdle);
  reading.go.set();
  EXPECT_TRUE(cfWaitForThreadTermination(id, patience));

  EXPECT_EQ(reading.priority, cePriorityIdle);
  cfSetThreadPriority(cePriorityLowest, id);
  EXPECT_EQ(cfGetThreadPriority(id), cePriorityNormal) << "ended threads read normal";
}

TEST(Thread, foreignThreadsReadNormal)
{
  cePriority read = cePriorityInherit;
  std::thread([&] { read = cfGetThreadPriority(); }).join();
  EXPECT_EQ(read, cePriorityNormal);
}

TEST(Thread, locksStillWorkInItsLastSteps)
{
  static ccMutex mutex;
  static ccEvent arrived;
  static std::atomic<bool> got{false};
  static std::atomic<bool> same{false};
  struct Last {
    ccThreadID id = 0;
    ~Last()
    {
      arrived.set();
      same = cfCurrentThreadID() == id;
      ccLock const lock(mutex);
      got = mutex.lockedByMe();
    }
  };
  mutex.lock();
  std::thread thread([] {
    thread_local Last last;  // made before the library knows the thread, so it dies after the library forgot it
    last.id = cfCurrentThreadID();
  });
  EXPECT_TRUE(arrived.lock(patience));
  cfSleep(0.01);
  mutex.unlock();
  thread.join();

  EXPECT_TRUE(got);
  EXPECT_TRUE(same);
}

TEST(Thread, sleepTakesAtLeastItsTimeAndNothingForNone)
{
  ccTimer timer(true);
  cfSleep(0.01);
  EXPECT_GE(timer.sec(), 0.01);
  timer.reset();
  cfSleep(-1);
  cfSleep(0);
  cfSleep(std::numeric_limits<double>::quiet_NaN());
  EXPECT_LT(timer.sec(), patience);
}

TEST(Timer, standsStillUntilItIsStarted)
{
  ccTimer timer;
  cfSleep(0.001);
  EXPECT_EQ(timer.sec(), 0);

  timer.start();
  cfSleep(0.002);
  EXPECT_GE(timer.sec(), 0.002);
}

TEST(Timer, stopKeepsTheTotalAndStartGoesOn)
{
  ccTimer timer(true);
  cfSleep(0.002);
  timer.stop();
  double const total = timer.sec();
  cfSleep(0.002);
  EXPECT_EQ(timer.sec(), total);
  EXPECT_EQ(timer.msec(), total * 1000);
  EXPECT_GE(total, 0.002);

  timer.stop();
  EXPECT_EQ(timer.sec(), total);
  timer.start();
  cfSleep(0.001);
  timer.start();
  EXPECT_GE(timer.sec(), total + 0.001) << "a second start changes nothing";
}

TEST(Timer, resetKeepsItRunningIfItRuns)
{
  ccTimer timer(true);
  cfSleep(0.05);
  timer.reset();
  double const first = timer.sec();
  cfSleep(0.002);
  EXPECT_LT(first, 0.05);
  EXPECT_GE(timer.sec(), 0.002);

  timer.stop();
  timer.reset();
  cfSleep(0.001);
  EXPECT_EQ(timer.sec(), 0);
}

TEST(Cpu, classesCanBePretendedForACheck)
{
  long const own = cfOperatingSystemClass();
  EXPECT_TRUE(own == 1 || own == 2);

  cfOperatingSystemClass(1024);
  EXPECT_EQ(cfOperatingSystemClass(), 1024);

  cfOperatingSystemClass(0);
  EXPECT_EQ(cfOperatingSystemClass(), own);
#if defined(__x86_64__)
  EXPECT_TRUE(ccCpuType::mmxPresent());
#else
  EXPECT_FALSE(ccCpuType::mmxPresent());
#endif
}
