// Rectangles found by place, against a walk over all.
#include "canvas/rect_index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

ccUIRect cf_random(std::mt19937& random)
{
  auto const below = [&](long n) { return static_cast<long>(random() % static_cast<unsigned long>(n)); };
  switch (below(12)) {
  case 0:
    return ccUIRect::firstQuad;
  case 1:
    return ccUIRect::inf;
  case 2:
    return ccUIRect();
  case 3:
    return ccUIRect(ccUIRect::kFar - below(40), below(40), below(90), below(90));
  default:
    return ccUIRect(below(400) - 100, below(400) - 100, 1L << below(9), 1 + below(60));
  }
}

TEST(RectIndex, findsWhatAWalkOverAllFinds)
{
  std::mt19937 random(7);
  std::vector<cc_RectIndex::Entry> entries(200);
  std::vector<ccUIRect> rects(entries.size());
  cc_RectIndex index;
  for (std::size_t i = 0; i < entries.size(); ++i)
    entries[i].owner = &rects[i];
  for (int step = 0; step < 4000; ++step) {
    std::size_t const i = random() % entries.size();
    rects[i] = random() % 5 == 0 ? ccUIRect() : cf_random(random);
    if (rects[i].isNull())
      index.remove(entries[i]);
    else
      index.put(entries[i], rects[i]);
    ccUIRect const asked = step % 2 ? cf_random(random) : ccUIRect(cf_random(random).ul(), ccPair<long>(1, 1));

    std::vector<void*> found, expected;
    index.meeting(asked, [&](cc_RectIndex::Entry& e) { found.push_back(e.owner); });
    for (ccUIRect& r : rects)
      if (!r.isNull() && !asked.isNull() && !r.nullIntersection(asked))
        expected.push_back(&r);

    std::sort(found.begin(), found.end());
    std::sort(expected.begin(), expected.end());
    ASSERT_EQ(found, expected) << "step " << step;
    ASSERT_EQ(index.size(), static_cast<std::size_t>(std::count_if(rects.begin(), rects.end(), [](ccUIRect const& r) {
                return !r.isNull();
              })));
  }
}

TEST(RectIndex, entriesThatOutliveItAreInNone)
{
  cc_RectIndex::Entry entry;
  {
    cc_RectIndex index;
    index.put(entry, ccUIRect(1, 2, 3, 4));
    EXPECT_EQ(entry.index, &index);
  }
  EXPECT_EQ(entry.index, nullptr);
}

}  // namespace
