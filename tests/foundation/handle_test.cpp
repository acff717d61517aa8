#include "foundation/callback.h"
#include "foundation/exception.h"
#include "foundation/handle.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

struct Counted : public virtual ccRepBase {
  explicit Counted(int* deaths = nullptr) : deaths_(deaths) {}
  ~Counted() override
  {
    if (deaths_)
      ++*deaths_;
  }
  int value = 5;
  int* deaths_;
};

struct Side : public virtual ccRepBase {
  long more = 0;
};

struct Both : public Side, public Counted {};

struct Kept : public ccRepBase {
  int destroyed = 0;

protected:
  void destroy_() override { ++destroyed; }
};

struct Doubler : public ccCallback1<int> {
  int last = 0;
  void operator()(int v) override { last = 2 * v; }
};

}  // namespace

TEST(Handle, lastOneDeletesTheObject)
{
  int deaths = 0;
  {
    ccPtrHandle<Counted> a(new Counted(&deaths));
    ccPtrHandle<Counted> b = a;
    EXPECT_EQ(a->refCount(), 2);
    a.clear();
    EXPECT_EQ(b->refCount(), 1);
    EXPECT_EQ(deaths, 0);
  }
  EXPECT_EQ(deaths, 1);
}

TEST(Handle, assignmentToItselfKeepsTheObject)
{
  int deaths = 0;
  ccPtrHandle<Counted> a(new Counted(&deaths));
  ccPtrHandle<Counted> const& same = a;

  a = same;
  EXPECT_EQ(a->refCount(), 1);
  a = std::move(a);
  EXPECT_EQ(deaths, 0);
  EXPECT_TRUE(a);
}

TEST(Handle, assignmentReleasesTheFormerObject)
{
  int first = 0, second = 0;
  ccPtrHandle<Counted> a(new Counted(&first));

  a = ccPtrHandle<Counted>(new Counted(&second));

  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 0);
}

TEST(Handle, copyOfACountedObjectStartsAtZero)
{
  ccPtrHandle<Counted> const a(new Counted);
  ccPtrHandle<Counted> const b = a;

  Counted copy(*a);
  EXPECT_EQ(copy.refCount(), 0);
  copy = *a;
  EXPECT_EQ(copy.refCount(), 0);
  *a = copy;
  EXPECT_EQ(a->refCount(), 2);
}

TEST(Handle, useOfANullOneThrows)
{
  ccPtrHandle<Counted> const null;
  ccPtrHandle_const<Counted> const constNull;

  EXPECT_THROW(null->value = 1, ccBadPointer);
  EXPECT_THROW((void)(*null).value, ccBadPointer);
  EXPECT_THROW((void)constNull->value, ccBadPointer);
  EXPECT_THROW((void)*constNull, ccBadPointer);
  EXPECT_EQ(null.get(), nullptr);
  EXPECT_FALSE(null);
}

TEST(Handle, comparesByTheCompleteObject)
{
  ccPtrHandle<Both> const both(new Both);
  ccPtrHandle<Side> const side = both;
  ccPtrHandle<Counted> const counted = both;
  ccPtrHandle_const<Counted> const viewed = both;

  ASSERT_NE(static_cast<void*>(side.get()), static_cast<void*>(counted.get()));
  EXPECT_TRUE(side == counted);
  EXPECT_TRUE(counted == both);
  EXPECT_TRUE(viewed == side);
  EXPECT_EQ(both->refCount(), 4);
  ccPtrHandle<Counted> const other(new Counted);
  EXPECT_TRUE(other != side);
}

TEST(Handle, comparesWithNull)
{
  ccPtrHandle<Counted> const null, one(new Counted);
  ccPtrHandle<Side> const nullSide;

  EXPECT_TRUE(null == nullptr);
  EXPECT_TRUE(nullptr == null);
  EXPECT_TRUE(one != nullptr);
  EXPECT_TRUE(null == nullSide);
  EXPECT_FALSE(null == one);
}

TEST(Handle, destroyMayDoSomethingElse)
{
  Kept kept;
  {
    ccPtrHandle<Kept> const a(&kept);
  }
  EXPECT_EQ(kept.destroyed, 1);
  EXPECT_EQ(kept.refCount(), 0);
}

TEST(Handle, countIsRightWithSeveralThreads)
{
  int deaths = 0;
  {
    ccPtrHandle<Counted> const shared(new Counted(&deaths));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
      threads.emplace_back([shared] {
        for (int i = 0; i < 10000; ++i)
          ccPtrHandle<Counted> const copy(shared);
      });
    for (auto& thread : threads)
      thread.join();
    threads.clear();
    EXPECT_EQ(shared->refCount(), 1);
    EXPECT_EQ(deaths, 0);
  }
  EXPECT_EQ(deaths, 1);
}

TEST(Callback, isCalledThroughItsHandle)
{
  auto* const doubler = new Doubler;
  ccPtrHandle<ccCallback1<int>> const callback(doubler);

  (*callback)(21);

  EXPECT_EQ(doubler->last, 42);
}
