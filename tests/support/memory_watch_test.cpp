#include "tests/support/memory_watch.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

TEST(MemoryWatch, countsTheAllocationsOfItsThread)
{
  long const before = MemoryWatch::allocations();

  auto const p = std::make_unique<std::vector<int>>(100);

  EXPECT_EQ(MemoryWatch::allocations() - before, 2);
}

TEST(MemoryWatch, failsTheNthAllocationOnce)
{
  MemoryWatch const watch(2);

  std::vector<int> const first(10);
  EXPECT_FALSE(watch.failed());
  EXPECT_THROW(std::vector<int>(10), std::bad_alloc);
  EXPECT_TRUE(watch.failed());
  EXPECT_EQ(std::vector<int>(10).size(), 10u);
}

TEST(MemoryWatch, anOperationIsTriedWithEachOfItsAllocationsFailing)
{
  struct Stage {
    std::vector<int> a, b;
  };
  long kept = 0;

  long const failures = failEach([] { return std::make_unique<Stage>(); },
                                 [](Stage& stage) {
                                   stage.a.resize(10);
                                   stage.b.resize(10);
                                 },
                                 [&](Stage& stage, bool failed) {
                                   kept += stage.a.empty() ? 0 : 1;
                                   EXPECT_EQ(failed, stage.b.empty());
                                 });

  EXPECT_EQ(failures, 2);
  EXPECT_EQ(kept, 2);  // the second failure came after it, and the last run was whole
}
