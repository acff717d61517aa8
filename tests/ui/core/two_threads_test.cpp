// Hooks of two trees, and of nodes without a tree, on two threads at once. Each runs with a mutex held and asks for that of
// the other.
#include "foundation/resource.h"
#include "tests/support/test_tree.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>
#include <utility>

namespace {

// Two threads that meet in their hooks. What hangs there cannot be ended, so the program is.
class Meeting {
public:
  template <class One, class Other> void run(One one, Other other)
  {
    std::thread first(one), second(other), watch([&] {
      if (over_.lock(20))
        return;
      std::fputs("two threads wait for each other\n", stderr);
      std::abort();
    });
    first.join();
    second.join();
    over_.set();
    watch.join();
  }

  // Both have come, or it is clear that the other one waits for something else.
  void meet()
  {
    if (++here_ == 2)
      both_.set();
    both_.lock(0.2);
  }

private:
  ccEvent over_{true}, both_{true};
  std::atomic<int> here_ = 0;
};

// A shape whose place is asked of it, with or without a tree.
class Place : public ccUIShapes {
public:
  std::function<void()> onPos;

protected:
  ccVector<2> pos_() override { return at_; }
  void pos_(ccVector<2> const& v) override
  {
    at_ = v;
    if (auto const run = std::exchange(onPos, nullptr))
      run();
  }
  void draw_(ccUITablet&, ccColor const&, DrawMode) override {}

private:
  ccVector<2> at_;
};

TEST(TwoThreads, aHookOfAnOrphanJoinsATreeWhileOneOfTheTreeMakesANode)
{
  for (int round = 0; round < 5; ++round) {
    TestRoot root;
    ccUIShapesFrame frame(root.groundPlane(), ccUIRect(0, 0, 20, 20));
    Place inTree, orphan;
    inTree.parent(&frame);
    Meeting meeting;
    bool joined = false, made = false, heldAfter = false;
    orphan.onPos = [&] {
      ccLock again(ccUIObject::orphanMutex());
      meeting.meet();
      orphan.parent(&frame);
      heldAfter = ccUIObject::orphanMutex().lockedByMe();
      joined = true;
    };
    inTree.onPos = [&] {
      meeting.meet();
      Place const node;
      made = !node.visible();
    };

    meeting.run([&] { orphan.pos(ccVector<2>(3, 4)); }, [&] { inTree.pos(ccVector<2>(5, 6)); });

    EXPECT_TRUE(joined && made);
    EXPECT_TRUE(heldAfter);
    EXPECT_EQ(orphan.root(), &root);
    EXPECT_EQ(orphan.parent(), &frame);
    EXPECT_FALSE(ccUIObject::orphanMutex().lockedByMe());
    std::thread([&] {
      EXPECT_TRUE(ccUIObject::orphanMutex().lock(0));
      ccUIObject::orphanMutex().unlock();
    }).join();
  }
}

// After its hook the call on the orphan goes on, and finds itself in a tree that another thread holds.
TEST(TwoThreads, aCallOnAnOrphanGoesOnInTheTreeItHasJoined)
{
  TestRoot root;
  ccUIShapesFrame frame(root.groundPlane(), ccUIRect(0, 0, 20, 20));
  Place orphan;
  Meeting meeting;
  ccEvent joined;
  orphan.onPos = [&] {
    orphan.parent(&frame);
    joined.set();
    meeting.meet();
  };
  bool made = false;

  meeting.run([&] { orphan.pos(ccVector<2>(3, 4)); },
              [&] {
                EXPECT_TRUE(joined.lock(10));
                ccLock tree(root.mutex());
                meeting.meet();
                std::this_thread::sleep_for(std::chrono::milliseconds(50));  // the other one goes on meanwhile
                Place const node;
                made = !node.visible();
              });

  EXPECT_TRUE(made);
  EXPECT_EQ(orphan.parent(), &frame);
  EXPECT_EQ(orphan.pos(), ccVector<2>(3, 4));
  EXPECT_FALSE(root.mutex().lockedByMe());
}

}  // namespace
