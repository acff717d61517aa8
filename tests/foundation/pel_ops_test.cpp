#include "foundation/pel_error.h"
#include "foundation/pel_ops.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace {

template <class T> T pelOf(unsigned v)
{
  if constexpr (sizeof(T) == 1)
    return static_cast<T>(v);
  else if constexpr (std::is_same_v<T, ccPackedRGB32Pel>)
    return T(static_cast<std::uint32_t>(v & 0xFFFFFF));
  else
    return T(static_cast<std::uint16_t>(v));
}

template <class T> class PelOps : public testing::Test {};
using PelTypes = testing::Types<unsigned char, unsigned short, ccPackedRGB16Pel, ccPackedRGB32Pel>;
TYPED_TEST_SUITE(PelOps, PelTypes);

template <class T> ccPelBuffer<T> randomBuffer(std::mt19937& random, long width, long height)
{
  ccPelBuffer<T> b(width, height);
  for (long y = 0; y < height; ++y)
    for (long x = 0; x < width; ++x)
      b.setPel(x, y, pelOf<T>(static_cast<unsigned>(random())));
  return b;
}

struct TestPool : public ccPelRootPool {
  std::vector<unsigned char> memory = std::vector<unsigned char>(4096);
  int asked = 0, made = 0;
  bool hasRoom = true, hasRoots = true, wrongType = false;
  bool size(unsigned long long) override { return hasRoom; }
  cc_PelRoot* newPelRoot(long width, long height, std::type_info const&) override
  {
    ++asked;
    if (!hasRoots)
      return nullptr;
    ++made;
    if (wrongType)
      return new cc_SlottedPelRoot<unsigned short>(this, 0, reinterpret_cast<unsigned short*>(memory.data()), width,
                                                   height, width);
    return new cc_SlottedPelRoot<unsigned char>(this, 0, memory.data(), width + 3, height + 1, width + 5);
  }
  void deletePelRoot(cc_SlottedPelRootBase* root) override
  {
    --made;
    delete root;
  }
};

}  // namespace

TYPED_TEST(PelOps, copyTakesTheSmallerOfBothSizesAndNothingElse)
{
  using T = TypeParam;
  std::mt19937 random(11);
  for (long width = 1; width <= 67; width += 3) {
    auto source = randomBuffer<T>(random, width + 4, 5);
    source.window(1, 1, width, 3);
    source.offset(ccPair<long>(50, 60));
    ccPelBuffer<T> target(width + 6, 6);
    T const guard = pelOf<T>(0xA5A5A5);
    for (long y = 0; y < 6; ++y)
      for (long x = 0; x < target.rowStride(); ++x)
        target.pelAddress(0, y)[x] = guard;
    auto view = target;
    view.window(3, 1, width + 2, 2);

    cfPelCopy<T>(source, view);

    for (long y = 0; y < 6; ++y)
      for (long x = 0; x < target.rowStride(); ++x) {
        bool const copied = x >= 3 && x < 3 + width && y >= 1 && y < 3;
        ASSERT_TRUE(target.pelAddress(0, y)[x] == (copied ? source.getPel(50 + x - 3, 60 + y - 1) : guard))
            << x << ' ' << y << ' ' << width;
      }
  }
}

TYPED_TEST(PelOps, copyOfItsOwnKeepsOffsetAndTransform)
{
  using T = TypeParam;
  std::mt19937 random(12);
  auto source = randomBuffer<T>(random, 9, 7);
  source.window(2, 1, 5, 4);
  source.offset(ccPair<long>(-3, 30));
  source.clientFromImageXform(ccXform<2>(2, 3, ccVector<2>(1, 1)));

  ccPelBuffer<T> const copy = cfPelCopy<T>(source, nullptr);

  EXPECT_FALSE(copy.root() == source.root());
  EXPECT_EQ(copy.window(), source.window());
  EXPECT_EQ(copy.root()->width(), 5);
  EXPECT_TRUE(copy.clientFromImageXformBase() == source.clientFromImageXformBase());
  for (long y = 30; y < 34; ++y)
    for (long x = -3; x < 2; ++x)
      EXPECT_TRUE(copy.getPel(x, y) == source.getPel(x, y));
}

TYPED_TEST(PelOps, unboundBuffersDoNothing)
{
  using T = TypeParam;
  ccPelBuffer<T> const unbound, one(1, 1);
  one.setPel(0, 0, pelOf<T>(77));

  EXPECT_FALSE((cfPelCopy<T>(unbound, nullptr).isBound()));
  cfPelCopy<T>(unbound, one);
  cfPelMove<T>(unbound, one);
  cfPelMove<T>(one, unbound);

  EXPECT_TRUE(one.getPel(0, 0) == pelOf<T>(77));
}

TYPED_TEST(PelOps, moveIsRightForOverlapInOneRoot)
{
  using T = TypeParam;
  std::mt19937 random(13);
  std::uniform_int_distribution<long> place(0, 9), extent(1, 11);
  for (int i = 0; i < 2000; ++i) {
    ccPelBuffer<T> const root = randomBuffer<T>(random, 20, 20);
    ccPelBuffer<T> source = root, target = root;
    source.window(place(random), place(random), extent(random), extent(random));
    target.window(place(random), place(random), extent(random), extent(random));
    long const w = std::min(source.width(), target.width()), h = std::min(source.height(), target.height());
    // The plain way: all pels out first, then in.
    ccPelBuffer<T> const expected = cfPelCopy<T>(root, nullptr);
    for (long y = 0; y < h; ++y)
      for (long x = 0; x < w; ++x)
        expected.setPel(target.offset().x() + x, target.offset().y() + y,
                        root.getPel(source.offset().x() + x, source.offset().y() + y));

    cfPelMove<T>(source, target);

    for (long y = 0; y < 20; ++y)
      for (long x = 0; x < 20; ++x)
        ASSERT_TRUE(root.getPel(x, y) == expected.getPel(x, y)) << i;
  }
}

TYPED_TEST(PelOps, moveIsRightForOverlapInARootThatRunsUpwards)
{
  using T = TypeParam;
  for (long shift : {-2L, -1L, 1L, 2L}) {
    std::vector<T> memory(40);
    ccPtrHandle<ccPelRoot<T>> const upward(new ccPelRoot<T>(memory.data() + 36, 4, 10, -4));
    ccPelBuffer<T> const root(upward);
    for (long y = 0; y < 10; ++y)
      root.setPel(0, y, pelOf<T>(static_cast<unsigned>(y + 1)));
    ccPelBuffer<T> source = root, target = root;
    source.window(0, 2, 4, 6);
    target.window(0, 2 + shift, 4, 6);

    cfPelMove<T>(source, target);

    for (long y = 0; y < 6; ++y)
      EXPECT_TRUE(root.getPel(0, 2 + shift + y) == pelOf<T>(static_cast<unsigned>(y + 3))) << shift << ' ' << y;
  }
}

TYPED_TEST(PelOps, changesMarkTheTarget)
{
  using T = TypeParam;
  ccPelBuffer<T> const a(2, 2), b(2, 2);
  auto const before = b.root()->changeCount();

  cfPelCopy<T>(a, b);
  cfPelMove<T>(a, b);

  EXPECT_EQ(b.root()->changeCount(), before + 2);
}

TYPED_TEST(PelOps, minmaxLooksAtTheWindowOnly)
{
  using T = TypeParam;
  ccPelBuffer<T> b(6, 6);
  for (long y = 0; y < 6; ++y)
    for (long x = 0; x < 6; ++x)
      b.setPel(x, y, pelOf<T>(static_cast<unsigned>(100 + 6 * y + x)));
  b.setPel(0, 0, pelOf<T>(250));
  b.setPel(5, 5, pelOf<T>(1));
  b.window(1, 1, 4, 3);
  T low{}, high{};

  cfPelMinmax<T>(b, low, high);
  EXPECT_TRUE(low == pelOf<T>(107));
  EXPECT_TRUE(high == pelOf<T>(122));

  cfPelMinmax<T>(ccPelBuffer<T>(), low, high);
  EXPECT_TRUE(low == T());
  EXPECT_TRUE(high == T());
}

TEST(PelCopyFromPool, takesARootOfThePool)
{
  ccPtrHandle<TestPool> const pool(new TestPool);
  ccPelBuffer<unsigned char> source(4, 3);
  source.setPel(3, 2, 9);
  {
    auto const copy = cfPelCopy<unsigned char>(source, pool.get());
    EXPECT_EQ(copy.root()->pool(), pool.get());
    EXPECT_EQ(copy.size(), ccPair<long>(4, 3)) << "the root may be larger";
    EXPECT_EQ(copy.getPel(3, 2), 9);
    EXPECT_EQ(pool->memory[2 * 9 + 3], 9);
  }
  EXPECT_EQ(pool->made, 0);
}

TEST(PelCopyFromPool, fallsBackToTheHeap)
{
  ccPtrHandle<TestPool> const pool(new TestPool);
  ccPelBuffer<unsigned char> source(4, 3);
  source.setPel(3, 2, 9);
  auto const onHeap = [&] {
    auto const copy = cfPelCopy<unsigned char>(source, pool.get());
    return copy.root()->pool() == nullptr && copy.getPel(3, 2) == 9;
  };

  pool->hasRoots = false;
  EXPECT_TRUE(onHeap());
  EXPECT_EQ(pool->asked, 1);
  pool->hasRoots = true;
  pool->wrongType = true;
  EXPECT_TRUE(onHeap());
  EXPECT_EQ(pool->made, 0) << "the wrong root went back";
  pool->wrongType = false;
  pool->hasRoom = false;
  EXPECT_TRUE(onHeap());
  EXPECT_EQ(pool->asked, 2) << "a pool without room is not asked";
}

TEST(PelMap, looksEachPelUpAlsoInPlace)
{
  std::vector<unsigned char> table(256);
  for (std::size_t i = 0; i < 256; ++i)
    table[i] = static_cast<unsigned char>(255 - i);
  ccPelBuffer<unsigned char> const b(16, 16), smaller(3, 2);
  for (long i = 0; i < 256; ++i)
    b.setPel(i % 16, i / 16, static_cast<unsigned char>(i));

  cfPelMap(b, table, smaller);
  cfPelMap(b, table, b);

  for (long i = 0; i < 256; ++i)
    EXPECT_EQ(b.getPel(i % 16, i / 16), 255 - i);
  EXPECT_EQ(smaller.getPel(2, 1), 255 - 18);
  EXPECT_EQ(b.root()->changeCount(), 1u);
}

TEST(PelMap, refusesAShortTable)
{
  ccPelBuffer<unsigned char> const b(2, 2);
  EXPECT_THROW(cfPelMap(b, std::vector<unsigned char>(255), b), ccPelError::BadTable);
  EXPECT_THROW(cfPelMap(ccPelBuffer<unsigned char>(), {}, b), ccPelError::BadTable);
  EXPECT_NO_THROW(cfPelMap(b, std::vector<unsigned char>(257, 4), b));
  EXPECT_EQ(b.getPel(1, 1), 4);
}

TEST(PelCopyVid, copiesRowsBetweenPitches)
{
  unsigned char const from[12] = {1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0};
  unsigned char to[15];
  std::memset(to, 0xEE, sizeof to);

  cf_PelCopyVid(to, 5, from, 4, 3, 3);

  unsigned char const expected[15] = {1, 2, 3, 0xEE, 0xEE, 4, 5, 6, 0xEE, 0xEE, 7, 8, 9, 0xEE, 0xEE};
  EXPECT_EQ(std::memcmp(to, expected, sizeof to), 0);
  std::memset(to, 0xEE, sizeof to);
  cf_PelCopyVid(to, 4, from, 4, 4, 3);
  EXPECT_EQ(std::memcmp(to, from, 12), 0);
  EXPECT_EQ(to[12], 0xEE);
  std::memset(to, 0xEE, sizeof to);
  cf_PelCopyVid(to + 6, -3, from, 4, 3, 3);
  unsigned char const turned[9] = {7, 8, 9, 4, 5, 6, 1, 2, 3};
  EXPECT_EQ(std::memcmp(to, turned, 9), 0);
}

TEST(PelCopyVid, doesNothingForNullOrNoExtent)
{
  unsigned char from[4] = {1, 2, 3, 4}, to[4] = {};
  cf_PelCopyVid(nullptr, 4, from, 4, 4, 1);
  cf_PelCopyVid(to, 4, nullptr, 4, 4, 1);
  cf_PelCopyVid(to, 4, from, 4, 0, 1);
  cf_PelCopyVid(to, 4, from, 4, 4, 0);
  cf_PelCopyVid(to, 4, from, 4, -1, 1);
  cf_PelCopyVid(to, 4, from, 4, 4, -1);
  for (unsigned char b : to)
    EXPECT_EQ(b, 0);
}
