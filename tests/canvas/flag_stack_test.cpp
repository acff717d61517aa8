#include "canvas/flag_stack.h"

#include <gtest/gtest.h>

#include <random>

TEST(ccFlagStack, anEmptyStackAnswersItsBase)
{
  ccFlagStack off;
  ccFlagStack on(true);
  EXPECT_FALSE(off.top());
  EXPECT_TRUE(on.top());
  EXPECT_EQ(off.bits() & 1, 0u);
  EXPECT_EQ(on.bits() & 1, 1u);
  EXPECT_FALSE(off.pop());
  EXPECT_TRUE(on.pop());
  EXPECT_EQ(on.depth(), 0);
  EXPECT_TRUE(on.top());
}

TEST(ccFlagStack, onlyTheTopCounts)
{
  ccFlagStack s;
  s.push(true);
  s.push(false);
  EXPECT_FALSE(s.top());
  EXPECT_EQ(s.depth(), 2);
}

TEST(ccFlagStack, popReturnsWhatItTakesOff)
{
  ccFlagStack s(true);
  s.push(false);
  s.push(true);
  EXPECT_TRUE(s.pop());
  EXPECT_FALSE(s.top());
  EXPECT_FALSE(s.pop());
  EXPECT_TRUE(s.top());
}

TEST(ccFlagStack, bitsShowTheTopInBitZeroAndTheBaseBelowTheLastLevel)
{
  ccFlagStack s(true);
  s.push(false);
  s.push(true);
  s.push(false);
  EXPECT_EQ(s.bits(), 0b1010u);
}

TEST(ccFlagStack, goesUpAndDownOver200LevelsLikeAList)
{
  std::mt19937 random(1);
  ccFlagStack s(true);
  std::vector<bool> list;
  for (int i = 0; i < 230; ++i) {
    bool const v = (random() & 1) != 0;
    s.push(v);
    list.push_back(v);
    ASSERT_EQ(s.top(), v);
    ASSERT_EQ(s.depth(), static_cast<long>(list.size()));
  }
  while (!list.empty()) {
    ASSERT_EQ(s.top(), list.back());
    ASSERT_EQ(s.pop(), list.back());
    list.pop_back();
  }
  EXPECT_EQ(s.depth(), 0);
  EXPECT_TRUE(s.top());
}

TEST(ccFlagStack, randomPushesAndPopsAgreeWithAList)
{
  std::mt19937 random(2);
  ccFlagStack s;
  std::vector<bool> list;
  for (int i = 0; i < 200000; ++i) {
    // Long stretches up and down, so that the borders between words are crossed in both directions.
    bool const up = random() % 100 < ((i / 500) % 2 == 0 ? 60u : 40u);
    if (up) {
      bool const v = (random() & 1) != 0;
      s.push(v);
      list.push_back(v);
    } else {
      bool const expected = list.empty() ? false : static_cast<bool>(list.back());
      ASSERT_EQ(s.pop(), expected);
      if (!list.empty())
        list.pop_back();
    }
    ASSERT_EQ(s.depth(), static_cast<long>(list.size()));
    unsigned expected = 0;
    for (std::size_t k = 0; k < 32 && k < list.size(); ++k)
      expected |= (list[list.size() - 1 - k] ? 1u : 0u) << k;
    ASSERT_EQ(s.bits(), expected);
  }
}
