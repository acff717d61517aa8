// Who deletes what, how a stale pointer is found out, and roots of nodes.
#include "foundation/resource.h"
#include "tests/support/test_tree.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace {

struct Counted : ccUIControlFrame {
  Counted(ccUIFrame* parent, long& n) : ccUIControlFrame(parent, ccUIRect(0, 0, 5, 5)), live(n) { ++live; }
  ~Counted() override { --live; }
  long& live;
};

struct Holder : ccUIControlFrame {
  Holder(ccUIFrame* parent, long& n) : ccUIControlFrame(parent, ccUIRect(0, 0, 9, 9)), member(this, n) {}
  Counted member;
};

struct CountedShape : BoxShape {
  CountedShape(ccUIObject* parent, long& n) : BoxShape(parent), live(n) { ++live; }
  ~CountedShape() override { --live; }
  long& live;
};

TEST(Ownership, aNodeMadeWithNewInAControlFrameDiesWithTheFrame)
{
  TestRoot root;
  long live = 0;
  {
    ccUIControlFrame frame(&root, ccUIRect(0, 0, 10, 10));
    auto* kid = new Counted(&frame, live);
    EXPECT_TRUE(kid->autoDelete() && kid->opNew());
    EXPECT_EQ(live, 1);
  }
  EXPECT_EQ(live, 0);
}

TEST(Ownership, theSameClassAsAMemberOrOnTheStackDoesNot)
{
  TestRoot root;
  long live = 0;
  auto* frame = new Holder(&root, live);
  EXPECT_TRUE(frame->autoDelete());
  EXPECT_FALSE(frame->member.autoDelete() || frame->member.opNew());
  Counted onStack(&root, live);
  EXPECT_FALSE(onStack.autoDelete());
  {
    ccUIControlFrame dying(&root, ccUIRect(0, 0, 10, 10));
    dying.condVisible(true);
    onStack.setParent(dying, ccUIRect(0, 0, 5, 5));
    EXPECT_EQ(live, 2);
  }
  EXPECT_EQ(live, 2);
  EXPECT_EQ(onStack.parent(), nullptr);
  EXPECT_EQ(onStack.root(), nullptr);
  delete frame;
  EXPECT_EQ(live, 1);
}

TEST(Ownership, nodesMadeWhileTheArgumentsAreWorkedOutTakeNothingAway)
{
  TestRoot root;
  long live = 0;

  auto* kid = new Counted(root.groundPlane(), live);  // makes the planes first
  ccUIControlFrame onStack(&root, ccUIRect());

  EXPECT_TRUE(kid->autoDelete());
  EXPECT_TRUE(root.groundPlane()->autoDelete());
  EXPECT_FALSE(onStack.autoDelete());
}

struct Failing : ccUIControlFrame {
  explicit Failing(int code) : ccUIControlFrame(nullptr, ccUIRect()) { throw code; }
};

int cf_fail() { throw 7; }

TEST(Ownership, aFailedConstructionMarksNoLaterNode)
{
  EXPECT_THROW(new Failing(1), int);
  EXPECT_THROW(new Failing(cf_fail()), int);

  ccUIControlFrame onStack(nullptr, ccUIRect());

  EXPECT_FALSE(onStack.autoDelete() || onStack.opNew());
}

TEST(Ownership, autoDeleteCanBeSwitched)
{
  TestRoot root;
  long live = 0;
  Counted* kid = nullptr;
  {
    ccUIControlFrame frame(&root, ccUIRect(0, 0, 10, 10));
    kid = new Counted(&frame, live);
    kid->autoDelete(false);
    EXPECT_TRUE(kid->opNew());
  }
  EXPECT_EQ(live, 1);
  delete kid;
}

TEST(Ownership, kidsOfADyingRootDieWithItAndOthersLoseTheirRoot)
{
  long live = 0;
  HookLog log;
  SpyFrame orphan(log, "a", nullptr, ccUIRect(0, 0, 5, 5));
  {
    TestRoot root;
    new Counted(root.groundPlane(), live);
    new Counted(&root, live);
    orphan.setParent(*root.groundPlane(), ccUIRect(0, 0, 5, 5));
    EXPECT_EQ(orphan.root(), &root);
  }
  EXPECT_EQ(live, 0);
  EXPECT_EQ(orphan.root(), nullptr);
  EXPECT_EQ(&orphan.rootMutex(), &ccUIObject::orphanMutex());
}

TEST(Ownership, kidsOfADyingShapeAndOfADyingShapesFrame)
{
  TestRoot root;
  long live = 0;
  BoxShape lone(nullptr);
  {
    ccUIShapesFrame frame(&root, ccUIRect(0, 0, 50, 50));
    CountedShape shape(&frame, live);
    new CountedShape(&shape, live);
    new CountedShape(&frame, live);
    lone.parent(&shape);
    EXPECT_EQ(live, 3);
    EXPECT_EQ(lone.root(), &root);
  }
  EXPECT_EQ(live, 0);
  EXPECT_EQ(lone.parent(), nullptr);
  EXPECT_EQ(lone.root(), nullptr);

  {
    ccUIShapesFrame frame(&root, ccUIRect(0, 0, 50, 50));
    lone.parent(&frame);
  }
  EXPECT_EQ(lone.parent(), nullptr);
  EXPECT_EQ(lone.root(), nullptr);
  EXPECT_EQ(lone.closerSib(), nullptr);
  EXPECT_EQ(lone.tablet(), nullptr);
}

TEST(Validity, keysGrowAndAreNeverReused)
{
  HookLog log;
  SpyFrame a(log, "a", nullptr, ccUIRect()), b(log, "b", nullptr, ccUIRect());

  EXPECT_EQ(b.key(), a.key() + 1);
}

TEST(Validity, needsTheLivePointerItsKeyAndItsRoot)
{
  TestRoot root, other;
  ccUIControlFrame frame(&root, ccUIRect(0, 0, 5, 5));

  EXPECT_TRUE(ccUIObject::isValid(&frame, frame.key(), &root));
  EXPECT_FALSE(ccUIObject::isValid(&frame, frame.key() + 1, &root));
  EXPECT_FALSE(ccUIObject::isValid(&frame, frame.key(), &other));
  EXPECT_FALSE(ccUIObject::isValid(&frame, frame.key(), nullptr));
  EXPECT_FALSE(ccUIObject::isValid(nullptr, 0, &root));
  EXPECT_TRUE(ccUIObject::isValid(&root, root.key(), nullptr));  // a root keeps null itself
}

TEST(Validity, isFalseForAPointerWhoseMemoryWasReusedByANewNode)
{
  TestRoot root;
  alignas(ccUIControlFrame) unsigned char memory[sizeof(ccUIControlFrame)];
  auto* const first = ::new (static_cast<void*>(memory)) ccUIControlFrame(&root, ccUIRect(0, 0, 5, 5));
  auto const key = first->key();
  EXPECT_TRUE(ccUIObject::isValid(first, key, &root));
  first->~ccUIControlFrame();
  EXPECT_FALSE(ccUIObject::isValid(first, key, &root));

  auto* const second = ::new (static_cast<void*>(memory)) ccUIControlFrame(&root, ccUIRect(0, 0, 5, 5));

  ASSERT_EQ(static_cast<void*>(first), static_cast<void*>(second));
  EXPECT_FALSE(ccUIObject::isValid(second, key, &root));
  EXPECT_TRUE(ccUIObject::isValid(second, second->key(), &root));
  second->~ccUIControlFrame();
}

TEST(Validity, answersInTimeThatDoesNotGrowWithTheTree)
{
  // A thousand questions among 20,000 nodes; a scan of all would compare 20 million nodes.
  TestRoot root;
  std::vector<std::unique_ptr<BoxShape>> nodes;
  for (int i = 0; i < 20000; ++i)
    nodes.push_back(std::make_unique<BoxShape>(nullptr));
  auto const start = std::chrono::steady_clock::now();
  long found = 0;
  for (int i = 0; i < 1000; ++i)
    found += ccUIObject::isValid(nodes.back().get(), nodes.back()->key(), nullptr);
  std::chrono::duration<double> const took = std::chrono::steady_clock::now() - start;

  EXPECT_EQ(found, 1000);
  EXPECT_LT(took.count(), 0.02);
}

TEST(NewRoot, aFrameTakesTheRootOfItsNewParentWithAllKids)
{
  TestRoot one, two;
  ccUIControlFrame a(&one, ccUIRect(0, 0, 50, 50)), b(&a, ccUIRect(0, 0, 20, 20));
  ccUIShapesFrame shapes(&a, ccUIRect(0, 0, 20, 20));
  BoxShape shape(&shapes), kid(&shape);
  EXPECT_EQ(kid.root(), &one);

  a.setParent(*two.groundPlane(), ccUIRect(0, 0, 50, 50));

  for (ccUIObject* node : std::initializer_list<ccUIObject*>{&a, &b, &shapes, &shape, &kid}) {
    EXPECT_EQ(node->root(), &two);
    EXPECT_EQ(&node->rootMutex(), &two.mutex());
  }
}

TEST(NewRoot, directlyBelowARootObjectANodeBelongsToItByConstructionAndByReparenting)
{
  TestRoot root;
  ccUIControlFrame made(&root, ccUIRect(0, 0, 5, 5)), moved(nullptr, ccUIRect(0, 0, 5, 5));

  moved.setParent(root, ccUIRect(0, 0, 5, 5));

  EXPECT_EQ(made.root(), &root);
  EXPECT_EQ(moved.root(), &root);
}

TEST(NewRoot, aNodeThatLeavesItsRootIsForgottenByTheProcessor)
{
  HookLog log;
  TestRoot one, two;
  SpyFrame outer(log, "outer", &one, ccUIRect(0, 0, 50, 50)), inner(log, "inner", &outer, ccUIRect(0, 0, 50, 50));
  cfOn(outer), cfOn(inner);
  Hand hand(one);
  hand.moveTo(5, 5).press();
  ASSERT_EQ(one.eventProcessor()->owner(), &inner);

  outer.setParent(*two.groundPlane(), ccUIRect(0, 0, 50, 50));

  EXPECT_EQ(one.eventProcessor()->owner(), nullptr);
  cfTake(log);
  hand.release().moveTo(6, 6);
  EXPECT_TRUE(log.empty());
}

TEST(Threads, nodesMayBeDestroyedOnOtherThreadsWhileEventsRun)
{
  TestRoot root;
  ccUIControlFrame frame(&root, ccUIRect(0, 0, 100, 100));
  cfOn(frame);
  std::atomic<bool> stop{false};
  std::thread events([&] {
    Hand hand(root);
    for (long i = 0; !stop; ++i)
      hand.moveTo(i % 100, i % 50);
  });
  for (int i = 0; i < 300; ++i) {
    HookLog log;
    ccLock lock(root.mutex());
    auto* kid = new ccUIControlFrame(&frame, ccUIRect(0, 0, 100, 100));
    cfOn(*kid);
    lock.unlock();
    std::this_thread::yield();
    delete kid;
  }
  stop = true;
  events.join();

  EXPECT_EQ(frame.numKids(), 0);
}

}  // namespace
