// The watch over the order of locks: what it finds, what it leaves in peace, and what its report holds.
#include "foundation/leaf_mutex.h"
#include "foundation/resource.h"
#include "foundation/thread.h"

#include <gtest/gtest.h>

#include <thread>

// Outside of the unnamed namespace, so that their names stand in the stacks.
[[gnu::noinline]] void lockOneThenTheOther(ccMutex& one, ccMutex& other)
{
  ccLock first(one);
  ccLock second(other);
}

[[gnu::noinline]] void lockTheOtherThenOne(ccMutex& one, ccMutex& other)
{
  ccLock first(other);
  ccLock second(one);
}

namespace {

std::vector<std::string> faults;

// Collects what is found instead of ending the program.
class LockOrder : public testing::Test {
protected:
  LockOrder()
  {
    faults.clear();
    former_ = cc_LockCheck::handler([](char const* text) { faults.emplace_back(text); });
    if (!cc_LockCheck::on)
      return;
    EXPECT_EQ(cc_LockCheck::held(), 0);
  }
  ~LockOrder() override
  {
    cc_LockCheck::handler(former_);
    EXPECT_EQ(cc_LockCheck::held(), 0);
  }
  void SetUp() override
  {
    if (!cc_LockCheck::on)
      GTEST_SKIP() << "locks are not watched in this build";
  }

private:
  cc_LockCheck::Handler former_;
};

template <class F> void onAnotherThread(F&& body) { std::thread(body).join(); }

TEST_F(LockOrder, aRankTakenUnderALaterOneIsFoundWithoutAnyCollision)
{
  ccMutex root(cc_LockRank::root), ui(cc_LockRank::ui);

  {
    ccLock first(root);
    ccLock second(ui);
  }
  EXPECT_TRUE(faults.empty());
  {
    ccLock first(ui);
    ccLock second(root);
  }

  ASSERT_EQ(faults.size(), 1u);
  EXPECT_NE(faults[0].find("a root's mutex is wanted while the registry of nodes is held"), std::string::npos) << faults[0];
}

TEST_F(LockOrder, theReportHoldsTheStacksOfBothOrders)
{
  ccMutex a, b;
  lockOneThenTheOther(a, b);
  onAnotherThread([&] { lockTheOtherThenOne(a, b); });

  ASSERT_EQ(faults.size(), 1u);
  std::size_t const now = faults[0].find("  now:\n"), before = faults[0].find("  before, the other way round:\n");
  ASSERT_NE(now, std::string::npos);
  ASSERT_NE(before, std::string::npos);
  EXPECT_NE(faults[0].substr(now, before - now).find("lockTheOtherThenOne"), std::string::npos) << faults[0];
  EXPECT_NE(faults[0].find("lockOneThenTheOther", before), std::string::npos) << faults[0];
}

TEST_F(LockOrder, aCircleOfThreeThatNeverMeetIsFound)
{
  ccMutex a, b, c;
  ccMutex* const pairs[3][2] = {{&a, &b}, {&b, &c}, {&c, &a}};
  for (auto const& pair : pairs)
    onAnotherThread([&] {
      ccLock first(*pair[0]);
      ccLock second(*pair[1]);
    });

  EXPECT_EQ(faults.size(), 1u);
}

TEST_F(LockOrder, aCircleThroughALockOfTheLibraryIsFound)
{
  ccMutex mine, root(cc_LockRank::root), ui(cc_LockRank::ui);
  {
    ccLock first(root);
    ccLock second(ui);
  }
  {
    ccLock first(mine);
    ccLock second(root);
  }
  EXPECT_TRUE(faults.empty());
  {
    ccLock first(ui);
    ccLock second(mine);
  }

  EXPECT_EQ(faults.size(), 1u);
}

TEST_F(LockOrder, whatIsHeldMayBeTakenAgainAndPollsAreNeverAtFault)
{
  ccMutex root(cc_LockRank::root), ui(cc_LockRank::ui);
  {
    ccLock first(root);
    ccLock second(ui);
    ccLock again(root);
  }
  {
    ccLock first(ui);
    ccLock second(root, /*lockNow=*/false);
    EXPECT_TRUE(second.lock(0.0));
    EXPECT_EQ(cc_LockCheck::held(), 2);
  }
  EXPECT_TRUE(faults.empty());

  // What a poll took counts as held.
  ccMutex late(cc_LockRank::ui), early(cc_LockRank::orphans);
  EXPECT_TRUE(late.lock(0.0));
  early.lock();
  early.unlock();
  late.unlock();
  EXPECT_EQ(faults.size(), 1u);
}

TEST_F(LockOrder, twoSectionsNeverNestAndNothingComesUnderALeaf)
{
  cc_LeafMutex<cc_LockRank::windowTable> table;
  cc_LeafMutex<cc_LockRank::backing> backing;
  ccMutex root(cc_LockRank::root);
  {
    std::lock_guard const first(backing);
    std::lock_guard const second(table);
  }
  EXPECT_TRUE(faults.empty());
  {
    std::lock_guard const first(table);
    std::lock_guard const second(backing);
  }
  EXPECT_EQ(faults.size(), 1u);
  {
    std::lock_guard const first(table);
    ccLock second(root);
  }
  EXPECT_EQ(faults.size(), 2u);
}

TEST_F(LockOrder, aLeafTakenTwiceIsFoundBeforeItHangs)
{
  cc_LeafMutex<cc_LockRank::menus> menus;
  std::lock_guard const hold(menus);
  cc_LockCheck::wanted(&menus, cc_LockRank::menus);  // what lock() says before it would stand still

  EXPECT_EQ(faults.size(), 1u);
}

TEST_F(LockOrder, twoRootsInBothOrdersAreAFaultOfTwoThreadsOnly)
{
  ccMutex one(cc_LockRank::root), two(cc_LockRank::root);
  auto const both = [](ccMutex& a, ccMutex& b) {
    ccLock first(a);
    ccLock second(b);
  };
  both(one, two);
  both(two, one);
  EXPECT_TRUE(faults.empty());
  onAnotherThread([&] { both(two, one); });

  EXPECT_EQ(faults.size(), 1u);
}

// Nor is it a fault that the orphans' mutex is held: nobody waits for a root's one under it.
TEST_F(LockOrder, theOrphansMutexIsGivenUpWhileARootsOneIsWaitedFor)
{
  ccMutex root(cc_LockRank::root), orphans(cc_LockRank::orphans);
  ccEvent rootHeld, orphansHeld;
  std::thread other([&] {
    ccLock tree(root);
    rootHeld.set();
    orphansHeld.lock(10);
    EXPECT_TRUE(orphans.lock(10));
    orphans.unlock();
  });
  rootHeld.lock(10);
  orphans.lock();
  orphans.lock();
  orphansHeld.set();
  root.lock();
  other.join();

  // As many holds as before, and none of them lost.
  EXPECT_TRUE(orphans.lockedByMe());
  root.unlock();
  orphans.unlock();
  EXPECT_TRUE(orphans.lockedByMe());
  orphans.unlock();
  EXPECT_FALSE(orphans.lockedByMe());
  onAnotherThread([&] { EXPECT_TRUE(orphans.lock(0)); });
  EXPECT_TRUE(faults.empty()) << faults[0];
}

TEST_F(LockOrder, aBrokenWaitForARootsMutexTakesTheOrphansOneAgain)
{
  ccMutex root(cc_LockRank::root), orphans(cc_LockRank::orphans);
  ccEvent rootHeld, over;
  std::thread other([&] {
    ccLock tree(root);
    rootHeld.set();
    over.lock(10);
  });
  rootHeld.lock(10);
  root.breakLocks();
  {
    ccLock hold(orphans);
    EXPECT_THROW(root.lock(), cc_Resource::BrokenLock);
    EXPECT_TRUE(orphans.lockedByMe());
  }
  EXPECT_FALSE(orphans.lockedByMe());
  over.set();
  other.join();
  EXPECT_TRUE(faults.empty()) << faults[0];
}

// A wait counts only when it really blocks, which no test can force: the other thread takes longer with each attempt.
TEST_F(LockOrder, nothingOfOursIsHeldWhileAnEventOfAnotherThreadIsWaitedFor)
{
  ccMutex root(cc_LockRank::root);
  for (int attempt = 1; attempt < 10 && faults.empty(); ++attempt) {
    struct Giver {
      ccEvent event;
      double seconds = 0;
    } giver;
    giver.seconds = 0.01 * attempt * attempt;
    ccThreadID const id = cfCreateThreadTRX(
        [](void* p) {
          auto* const g = static_cast<Giver*>(p);
          cfSleep(g->seconds);
          g->event.set();
        },
        &giver);
    {
      ccLock lock(root);
      giver.event.lock();
    }
    cfWaitForThreadTermination(id);
  }
  EXPECT_EQ(faults.size(), 1u);
}

TEST_F(LockOrder, nothingOfOursIsHeldWhileTheEndOfAnotherThreadIsWaitedFor)
{
  ccMutex root(cc_LockRank::root);
  for (int attempt = 1; attempt < 10 && faults.empty(); ++attempt) {
    double seconds = 0.01 * attempt * attempt;
    ccThreadID const id = cfCreateThreadTRX([](void* p) { cfSleep(*static_cast<double*>(p)); }, &seconds);
    ccLock lock(root);
    cfWaitForThreadTermination(id);
  }
  EXPECT_EQ(faults.size(), 1u);
}

TEST_F(LockOrder, aThreadThatIsWaitedForUnderALockThatItTakesIsACircle)
{
  struct Parts {
    ccMutex mutex;
    ccEvent past, go;
  } parts;
  ccThreadID const id = cfCreateThreadTRX(
      [](void* p) {
        auto& shared = *static_cast<Parts*>(p);
        { ccLock lock(shared.mutex); }
        shared.past.set();
        shared.go.lock();
      },
      &parts);
  parts.past.lock();
  std::thread later([&] {
    cfSleep(0.02);
    parts.go.set();
  });
  EXPECT_TRUE(faults.empty());
  {
    ccLock lock(parts.mutex);
    cfWaitForThreadTermination(id);
  }
  later.join();

  EXPECT_EQ(faults.size(), 1u);
}

TEST_F(LockOrder, aGiverThatNeedsWhatTheWaiterHoldsIsACircle)
{
  ccMutex mine;
  ccSemaphore sign(0, 1);
  onAnotherThread([&] {
    ccLock lock(mine);
    sign.release();
  });
  sign.lock();
  EXPECT_TRUE(faults.empty());
  std::thread giver([&] {
    cfSleep(0.02);
    sign.release();
  });
  {
    ccLock lock(mine);
    sign.lock();
  }
  giver.join();

  EXPECT_EQ(faults.size(), 1u);
}

TEST_F(LockOrder, aLockThatDiedTakesItsHistoryAlong)
{
  ccMutex a;
  alignas(ccMutex) unsigned char place[sizeof(ccMutex)];
  auto* b = new (place) ccMutex;
  {
    ccLock first(a);
    ccLock second(*b);
  }
  b->~ccMutex();
  b = new (place) ccMutex;  // another one at the same place
  {
    ccLock first(*b);
    ccLock second(a);
  }
  b->~ccMutex();

  EXPECT_TRUE(faults.empty());
}

TEST_F(LockOrder, whatIsHeldCanBeNamed)
{
  ccMutex root(cc_LockRank::root);
  char text[200];
  EXPECT_FALSE(cc_LockCheck::describeHeld(text, sizeof text));
  ccLock lock(root);

  ASSERT_TRUE(cc_LockCheck::describeHeld(text, sizeof text));
  EXPECT_STREQ(text, "a root's mutex");
}

}  // namespace
