#include "foundation/math_error.h"
#include "foundation/pel_buffer.h"
#include "foundation/pel_error.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

// Pel (x, y) of the root has the value 16 y + x.
ccPelBuffer<unsigned char> numbered(long width, long height)
{
  ccPelBuffer<unsigned char> b(width, height);
  for (long y = 0; y < height; ++y)
    for (long x = 0; x < width; ++x)
      b.setPel(x, y, static_cast<unsigned char>(16 * y + x));
  return b;
}

// A map that bends, to be told from its linear stand-in.
class Bent : public cc2XformBase {
public:
  ccVector<2> mapPoint(ccVector<2> const& p) const override { return ccVector<2>(p.x() * p.x(), p.y()); }
  bool isLinear() const override { return false; }
  ccXform<2> linearXform(ccVector<2> const& at) const override
  {
    return ccXform<2>(2 * at.x(), 1, ccVector<2>(-at.x() * at.x(), 0));
  }
};

struct Pool : public ccPelRootPool {
  std::vector<unsigned char> memory = std::vector<unsigned char>(64);
  std::vector<long> released;
  int deleted = 0;
  cc_PelRoot* newPelRoot(long width, long height, std::type_info const& type) override
  {
    if (type != typeid(unsigned char))
      return nullptr;
    return new cc_SlottedPelRoot<unsigned char>(this, 5, memory.data(), width, height, width);
  }
  void release(cc_PelRoot* root) override
  {
    auto const* const slotted = dynamic_cast<cc_SlottedPelRootBase*>(root);
    released.push_back(slotted ? slotted->slot() : -1);
  }
  void deletePelRoot(cc_SlottedPelRootBase* root) override
  {
    ++deleted;
    delete root;
  }
};

}  // namespace

TEST(PelRoot, ownMemoryIsZeroedAndItsRowsAreAligned)
{
  struct {
    long width, alignment, stride;
  } const cases[] = {{5, 8, 8}, {8, 8, 8}, {9, 8, 16}, {5, 1, 5}, {5, 64, 64}, {65, 64, 128}, {5, 3, 6}, {5, 0, 5}};
  for (auto const& c : cases) {
    ccPtrHandle<ccPelRoot<unsigned char>> const root(new ccPelRoot<unsigned char>(c.width, 3, c.alignment));
    EXPECT_EQ(root->rowStride(), c.stride) << c.width << ' ' << c.alignment;
    for (long y = 0; y < 3; ++y) {
      if (c.alignment > 0) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(root->row(y)) % static_cast<std::uintptr_t>(c.alignment), 0u);
      }
      for (long x = 0; x < c.stride; ++x)
        EXPECT_EQ(root->row(y)[x], 0);
    }
  }
}

TEST(PelRoot, strideCountsPels)
{
  ccPtrHandle<ccPelRoot<ccPackedRGB32Pel>> const wide(new ccPelRoot<ccPackedRGB32Pel>(3, 2, 16));
  EXPECT_EQ(wide->rowStride(), 4);
  EXPECT_EQ(wide->pelBytes(), 4);
  ccPtrHandle<ccPelRoot<ccPackedRGB32Pel>> const odd(new ccPelRoot<ccPackedRGB32Pel>(3, 2, 2));
  EXPECT_EQ(odd->rowStride(), 3);
  EXPECT_EQ(odd->communicator(), nullptr);
  EXPECT_EQ(odd->handle(), 0u);
  EXPECT_EQ(odd->pool(), nullptr);
}

TEST(PelRoot, badSizesAreRefused)
{
  unsigned char memory[4] = {};
  using Root = ccPelRoot<unsigned char>;
  EXPECT_THROW(Root(0, 1), ccPelError::BadSize);
  EXPECT_THROW(Root(1, 0), ccPelError::BadSize);
  EXPECT_THROW(Root(-1, 5), ccPelError::BadSize);
  EXPECT_THROW(Root(65536, 32768), ccPelError::BadSize) << "2^31 bytes";
  EXPECT_THROW(Root(2147483647L, 2147483647L), ccPelError::BadSize);
  EXPECT_THROW(Root(1, 3, 2147483647L), ccPelError::BadSize);
  EXPECT_THROW(ccPelRoot<ccPackedRGB32Pel>(32768, 16384), ccPelError::BadSize);
  EXPECT_THROW(Root(memory, 4, 1, 3), ccPelError::BadSize) << "rows overlap";
  EXPECT_THROW(Root(memory, 4, 1, 0), ccPelError::BadSize);
  EXPECT_THROW(Root(memory, 4, 2, 2147483647L), ccPelError::BadSize);
}

TEST(PelRoot, foreignMemoryIsUsedInPlace)
{
  unsigned char memory[12] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
  ccPtrHandle<ccPelRoot<unsigned char>> const root(new ccPelRoot<unsigned char>(memory, 3, 3, 4));
  ccPelBuffer<unsigned char> const view(root);

  EXPECT_EQ(view.getPel(2, 2), 10);
  EXPECT_EQ(view.pelAddress(0, 1), memory + 4);
  EXPECT_EQ(view.rowStride(), 4);

  ccPtrHandle<ccPelRoot<unsigned char>> const upward(new ccPelRoot<unsigned char>(memory + 8, 3, 3, -4));
  EXPECT_EQ(ccPelBuffer<unsigned char>(upward).getPel(1, 2), 1);
}

TEST(PelRoot, disconnectUnbindsEveryView)
{
  unsigned char memory[4] = {1, 2, 3, 4};
  ccPtrHandle<ccPelRoot<unsigned char>> const root(new ccPelRoot<unsigned char>(memory, 2, 2, 2));
  ccPelBuffer<unsigned char> const view(root);
  auto const part = view.cut(0, 0, 1, 1);

  root->disconnect();

  EXPECT_FALSE(view.isBound());
  EXPECT_FALSE(part.isBound());
  EXPECT_EQ(view.size(), (ccPair<long>(0, 0)));
  EXPECT_EQ(view.getPel(0, 0), 0);
  EXPECT_EQ(view.pointToOffset(), nullptr);
  EXPECT_TRUE(view.window().isNull());
  EXPECT_FALSE(view.cut(0, 0, 1, 1).isBound());
}

TEST(PelRoot, nullForeignMemoryIsDisconnected)
{
  ccPtrHandle<ccPelRoot<unsigned char>> const root(new ccPelRoot<unsigned char>(nullptr, 2, 2, 2));
  EXPECT_FALSE(ccPelBuffer<unsigned char>(root).isBound());
}

TEST(PelRoot, rootOfAPoolReturnsToItWithItsSlot)
{
  ccPtrHandle<Pool> const pool(new Pool);
  {
    auto* const made = dynamic_cast<ccPelRoot<unsigned char>*>(pool->newPelRoot(4, 4, typeid(unsigned char)));
    ASSERT_NE(made, nullptr);
    ccPelBuffer<unsigned char> const view{ccPtrHandle<ccPelRoot<unsigned char>>(made)};
    EXPECT_EQ(view.root()->pool(), pool.get());
    EXPECT_EQ(pool->refCount(), 2) << "the root holds its pool";
    EXPECT_TRUE(pool->released.empty());
  }
  EXPECT_EQ(pool->deleted, 1);
  EXPECT_EQ(pool->released, std::vector<long>{5});
  EXPECT_EQ(pool->refCount(), 1);
  EXPECT_TRUE(pool->size(1000));
  EXPECT_FALSE(pool->videoPelRoots());
}

TEST(PelRoot, rootOutlivesTheLastOtherHandleToItsPool)
{
  ccPelBuffer<unsigned char> view;
  {
    ccPtrHandle<Pool> const pool(new Pool);
    view = ccPelBuffer<unsigned char>(ccPtrHandle<ccPelRoot<unsigned char>>(
        dynamic_cast<ccPelRoot<unsigned char>*>(pool->newPelRoot(4, 4, typeid(unsigned char)))));
  }
  view.setPel(3, 3, 9);
  EXPECT_EQ(view.getPel(3, 3), 9);
  view.setUnbound();
  EXPECT_FALSE(view.isBound());
}

TEST(PelBuffer, copiesShareTheirPels)
{
  auto const a = numbered(4, 3);
  auto const b = a;

  b.setPel(1, 1, 99);

  EXPECT_EQ(a.getPel(1, 1), 99);
  EXPECT_TRUE(a.root() == b.root());
}

TEST(PelBuffer, accessIsCheckedByTheWindow)
{
  auto const b = numbered(4, 3);

  b.setPel(4, 0, 1);
  b.setPel(0, -1, 1);

  EXPECT_EQ(b.getPel(4, 0), 0);
  EXPECT_EQ(b.getPel(-1, 0), 0);
  EXPECT_EQ(b.getPel(0, 3), 0);
  EXPECT_EQ(b.getPel(3, 2), 35);
  ccPelBuffer<unsigned char> const unbound;
  unbound.setPel(0, 0, 1);
  unbound.mutating();
  EXPECT_EQ(unbound.getPel(0, 0), 0);
  EXPECT_EQ(unbound.pointToOffset(), nullptr);
  EXPECT_EQ(unbound.rowStride(), 0);
}

TEST(PelBuffer, windowCutsAndKeepsEachPelsCoordinates)
{
  auto b = numbered(8, 6);

  b.window(2, 1, 4, 3);

  EXPECT_EQ(b.offset(), ccPair<long>(2, 1));
  EXPECT_EQ(b.size(), ccPair<long>(4, 3));
  EXPECT_EQ(b.getPel(2, 1), 18);
  EXPECT_EQ(b.getPel(5, 3), 53);
  EXPECT_EQ(b.getPel(1, 1), 0) << "outside the window now";

  b.window(ccPelRect(0, 0, 8, 6));
  EXPECT_EQ(b.size(), ccPair<long>(4, 3)) << "a view never grows";
  b.window(ccPelRect(4, -5, 100, 7));
  EXPECT_EQ(b.window(), ccPelRect(4, 1, 2, 1));
  EXPECT_EQ(b.getPel(4, 1), 20);
}

TEST(PelBuffer, offsetRelabelsTheSamePels)
{
  auto b = numbered(8, 6);
  b.window(2, 1, 4, 3);
  b.clientFromImageXform(ccXform<2>(2, 2, ccVector<2>(1, 0)));
  auto const* const place = b.pointToOffset();

  b.offset(ccPair<long>(-100, 50));

  EXPECT_EQ(b.pointToOffset(), place);
  EXPECT_EQ(b.getPel(-100, 50), 18);
  EXPECT_EQ(b.getPel(-97, 52), 53);
  EXPECT_EQ(b.getPel(2, 1), 0);
  EXPECT_EQ(b.window(), ccPelRect(-100, 50, 4, 3));
  EXPECT_EQ(b.clientFromImageXformBase()->linearXform(ccVector<2>()), ccXform<2>(2, 2, ccVector<2>(1, 0)));
}

TEST(PelBuffer, cutCountsFromTheUpperLeftPelWhateverTheOffset)
{
  auto b = numbered(8, 6);
  b.window(2, 1, 4, 3);
  b.offset(ccPair<long>(-100, 50));

  auto const part = b.cut(1, 1, 100, 1);

  EXPECT_EQ(part.size(), ccPair<long>(3, 1));
  EXPECT_EQ(part.offset(), ccPair<long>(-99, 51));
  EXPECT_EQ(*part.pointToOffset(), 35);
  EXPECT_EQ(b.cut(0, 0, 4, 3).window(), b.window());
  EXPECT_EQ(b.cut(-2, -2, 3, 3).size(), ccPair<long>(1, 1));
}

TEST(PelBuffer, emptyWindowIsUnbound)
{
  auto b = numbered(8, 6);

  EXPECT_FALSE(b.cut(8, 0, 1, 1).isBound());
  EXPECT_FALSE(b.cut(0, 0, 0, 1).isBound());
  EXPECT_FALSE(b.cut(3, 3, -2, 1).isBound());
  b.window(100, 100, 5, 5);
  EXPECT_FALSE(b.isBound());
  EXPECT_FALSE(b.root());
}

TEST(PelBuffer, randomCutsShowTheSamePels)
{
  std::mt19937 random(3);
  std::uniform_int_distribution<long> place(-3, 17);
  for (int i = 0; i < 2000; ++i) {
    ccPelBuffer<unsigned char> b = numbered(15, 15);
    long const dx = place(random), dy = place(random);
    b.offset(ccPair<long>(dx, dy));
    long const x0 = place(random), y0 = place(random), w = place(random), h = place(random);
    b.window(x0, y0, w, h);
    for (long y = -5; y < 20; ++y)
      for (long x = -5; x < 20; ++x) {
        bool const inWindow = x >= x0 && x < x0 + w && y >= y0 && y < y0 + h;
        bool const inRoot = x >= dx && x < dx + 15 && y >= dy && y < dy + 15;
        int const expected = inWindow && inRoot ? 16 * static_cast<int>(y - dy) + static_cast<int>(x - dx) : 0;
        ASSERT_EQ(int{b.getPel(x, y)}, expected);
      }
  }
}

TEST(PelBuffer, mutatingMarksTheRoot)
{
  auto const b = numbered(2, 2);
  auto const before = b.root()->changeCount();

  b.mutating();

  EXPECT_EQ(b.root()->changeCount(), before + 1);
}

TEST(PelBuffer, transformIsTheIdentityAlsoWhenUnbound)
{
  EXPECT_EQ(ccPelBuffer<unsigned char>().imageFromClientXform(), ccXform<2>::I);
  EXPECT_TRUE(ccPelBuffer_const<unsigned char>().clientFromImageXformBase());
  auto b = numbered(2, 2);
  b.setUnbound();
  EXPECT_EQ(b.imageFromClientXform(), ccXform<2>::I);
}

TEST(PelBuffer, transformMayBeNullOrSingular)
{
  auto b = numbered(2, 2);

  b.clientFromImageXformBase(nullptr);
  EXPECT_THROW(b.imageFromClientXform(), ccBadPointer);
  EXPECT_FALSE(b.clientFromImageXformBase());

  b.clientFromImageXform(ccXform<2>(0, 1, ccVector<2>()));
  EXPECT_THROW(b.imageFromClientXform(), ccMathError::Singular);

  b.clientFromImageXform(ccXform<2>(2, 4, ccVector<2>(2, 4)));
  EXPECT_EQ(b.imageFromClientXform(), ccXform<2>(0.5, 0.25, ccVector<2>(-1, -1)));
}

TEST(PelBuffer, bentTransformCountsAtTheCentreOfTheWindow)
{
  auto b = numbered(8, 6);
  b.window(2, 0, 4, 6);
  b.clientFromImageXformBase(ccPtrHandle_const<cc2XformBase>(new Bent));

  // The centre is x = 4: the map there is 8x - 16.
  EXPECT_EQ(b.imageFromClientXform(), ccXform<2>(0.125, 1, ccVector<2>(2, 0)));
}
