// Arithmetic at the ends of the number types: by hand, and in a sweep that the sanitizers watch.
#include "tests/support/number_ends.h"

#include "foundation/math_error.h"
#include "foundation/message_string.h"
#include "foundation/pel_error.h"
#include "foundation/pel_ops.h"

#include <gtest/gtest.h>

using namespace krs_test;

namespace {

constexpr long kMost = std::numeric_limits<long>::max();
constexpr long kLeast = std::numeric_limits<long>::min();

template <class T> T pelOf(unsigned v)
{
  if constexpr (std::is_integral_v<T>)
    return static_cast<T>(v);
  else
    return T(static_cast<decltype(T().word())>(v));
}

template <class T> class PelEnds : public testing::Test {};
using PelTypes = testing::Types<unsigned char, unsigned short, ccPackedRGB16Pel, ccPackedRGB32Pel>;
TYPED_TEST_SUITE(PelEnds, PelTypes);

template <class T> ccPelBuffer<T> numbered(long width, long height)
{
  ccPelBuffer<T> b(width, height);
  for (long y = 0; y < height; ++y)
    for (long x = 0; x < width; ++x)
      b.setPel(x, y, pelOf<T>(static_cast<unsigned>(16 * y + x + 1)));
  return b;
}

}  // namespace

TEST(PairEnds, sumsStopAtTheEnds)
{
  using P = ccPair<long>;
  EXPECT_EQ(P(kMost, kLeast) + P(1, -1), P(kMost, kLeast));
  EXPECT_EQ(P(kMost, kLeast) - P(-1, 1), P(kMost, kLeast));
  EXPECT_EQ(P(0, kMost) - P(kLeast, kLeast), P(kMost, kMost));
  EXPECT_EQ(P(-2, -2) - P(kMost, kLeast), P(kLeast, kMost - 1));
  EXPECT_EQ(-P(kLeast, kMost), P(kMost, -kMost));
  EXPECT_EQ(P(kMost, kLeast) * 2, P(kMost, kLeast));
  EXPECT_EQ(-2 * P(kMost, kLeast), P(kLeast, kMost));
  EXPECT_EQ(P(kLeast, 7) / -1, P(kMost, -7));
  EXPECT_EQ(P(5, -5) / 0, P(kMost, kLeast));
  EXPECT_EQ(P(0, 9) / 0, P(0, kMost));
  EXPECT_EQ(P(kMost - 1, kLeast + 1) + P(1, -1), P(kMost, kLeast)) << "the ends themselves are reached";
  EXPECT_EQ(ccPair<short>(32767, -32768) + ccPair<short>(1, -1), ccPair<short>(32767, -32768));
  EXPECT_EQ(ccPair<unsigned>(3, 0) - ccPair<unsigned>(4, 0), ccPair<unsigned>(0, 0));
  EXPECT_EQ(ccPair<double>(1, 1) / 0.0, ccPair<double>(1 / 0.0, 1 / 0.0)) << "doubles go on as doubles";
}

TEST(PairEnds, conversionsStopAtTheEnds)
{
  EXPECT_EQ(ccPair<short>(ccPair<long>(70000, -70000)), ccPair<short>(32767, -32768));
  EXPECT_EQ(ccPair<unsigned char>(ccPair<long>(256, -1)), ccPair<unsigned char>(255, 0));
  EXPECT_EQ(ccPair<short>(ccPair<double>(1e9, -1e9)), ccPair<short>(32767, -32768));
  EXPECT_EQ(ccPair<long>(ccPair<double>(1e300, -1e300)), ccPair<long>(2147483647L, -2147483647L - 1));
  EXPECT_EQ(ccPair<long>(ccPair<double>(std::nan(""), -1.9)), ccPair<long>(0, -1));
  EXPECT_EQ(ccPair<int>(ccPair<unsigned>(4000000000u, 5)), ccPair<int>(2147483647, 5));
  EXPECT_EQ(ccPair<unsigned long>(ccPair<long>(-1, kMost)), ccPair<unsigned long>(0, static_cast<unsigned long>(kMost)));
  EXPECT_EQ(ccPair<long>(ccPair<unsigned long>(~0UL, 1)), ccPair<long>(kMost, 1));
}

TEST(PelRectEnds, cornersFarOut)
{
  ccPelRect const far(kMost - 1, kLeast, 10, 10);
  EXPECT_EQ(far.lr(), ccPair<long>(kMost, kLeast + 10));
  EXPECT_EQ(far & far, far) << "what lies beyond the last coordinate stays";
  EXPECT_EQ(far & ccPelRect(0, kLeast, kMost, 3), ccPelRect(kMost - 1, kLeast, 1, 3));
  EXPECT_EQ(ccPelRect(kLeast, kLeast, kMost, kMost) & ccPelRect(-5, -5, 10, 10), ccPelRect(-5, -5, 4, 4))
      << "it ends at -1";
  EXPECT_TRUE((ccPelRect(kLeast, 0, 5, 5) & ccPelRect(kMost, 0, 5, 5)).isNull());
  EXPECT_TRUE(far.within({kMost, kLeast + 9}));
  EXPECT_FALSE(far.within({kLeast, kLeast}));
  EXPECT_TRUE(ccPelRect(kLeast, kLeast, kMost, kMost).within({-2, kLeast}));
  EXPECT_FALSE(ccPelRect(kLeast, kLeast, kMost, kMost).within({-1, kLeast}));
  EXPECT_FALSE(ccPelRect(kLeast, kLeast, kMost, kMost).within({kMost, kMost}));
  EXPECT_EQ(ccPelRect::fromCorners({kLeast, 0}, {kMost, 3}), ccPelRect(kLeast, 0, kMost, 3));
  EXPECT_TRUE(ccPelRect(0, 0, kLeast, kMost).isNull());
}

TYPED_TEST(PelEnds, windowsAndCutsFarOut)
{
  using T = TypeParam;
  ccPelBuffer<T> const whole = numbered<T>(5, 4);
  ccPelBuffer<T> view = whole;
  view.window(kLeast, kLeast, kMost, kMost);
  EXPECT_FALSE(view.isBound()) << "it ends before 0";
  view = whole;
  view.window(-1, -1, kMost, kMost);
  EXPECT_EQ(view.window(), ccPelRect(0, 0, 5, 4));

  view.offset({kMost, kLeast});
  EXPECT_TRUE(view.getPel(kMost, kLeast) == pelOf<T>(1));
  EXPECT_TRUE(view.getPel(kMost, kLeast + 3) == pelOf<T>(49));
  EXPECT_TRUE(view.getPel(0, 0) == T());
  EXPECT_TRUE(view.getPel(kLeast, kLeast) == T());
  ccPelBuffer_const<T> const part = view.cut(2, 1, kMost, kMost);
  EXPECT_EQ(part.size(), ccPair<long>(3, 3)) << "counted from the upper left pel, whatever the offset";
  EXPECT_TRUE(*part.pointToOffset() == pelOf<T>(16 + 2 + 1));
  EXPECT_FALSE(view.cut(kMost, 0, kMost, 1).isBound());
  EXPECT_FALSE(view.cut(kLeast, kLeast, kMost, kMost).isBound());
  EXPECT_EQ(whole.cut(-3, -3, 5, 5).window(), ccPelRect(0, 0, 2, 2));
}

// Any window of any window at any offset holds the pels that plain counting gives.
TYPED_TEST(PelEnds, sweepOfWindows)
{
  using T = TypeParam;
  NumberEnds ends(21);
  ccPelBuffer<T> const root = numbered<T>(13, 9);
  for (int i = sweepRounds(20000, 400000); i > 0; --i) {
    ccPelBuffer<T> view = root;
    __extension__ using Wide = __int128;
    Wide left = 0, top = 0, width = 13, height = 9;
    for (int step = 0; step < 3 && view.isBound(); ++step) {
      ccPair<long> const offset(ends.whole(), ends.whole());
      view.offset(offset);
      Wide const x = ends.whole(), y = ends.whole(), w = ends.whole(), h = ends.whole();
      bool const cut = ends.below(2) != 0;
      if (cut)
        static_cast<ccPelBuffer_const<T>&>(view) = view.cut(long(x), long(y), long(w), long(h));
      else
        view.window(long(x), long(y), long(w), long(h));
      Wide const ax = cut ? x : x - offset.x(), ay = cut ? y : y - offset.y();
      Wide const right = std::min(ax + w, width), bottom = std::min(ay + h, height);
      Wide const fromX = std::max<Wide>(ax, 0), fromY = std::max<Wide>(ay, 0);
      if (w <= 0 || h <= 0 || fromX >= right || fromY >= bottom) {
        ASSERT_FALSE(view.isBound()) << i;
        break;
      }
      left += fromX, top += fromY, width = right - fromX, height = bottom - fromY;
      ASSERT_TRUE(view.isBound()) << i;
      ASSERT_EQ(view.size(), ccPair<long>(long(width), long(height))) << i;
      ASSERT_EQ(view.pointToOffset(), root.pelAddress(long(left), long(top))) << i;
    }
    T const outside = view.getPel(ends.whole(), ends.whole());
    view.setPel(ends.whole(), ends.whole(), outside);
  }
}

TYPED_TEST(PelEnds, rootsOfAnySizeAreMadeOrRefused)
{
  using T = TypeParam;
  NumberEnds ends(22);
  T pel{};
  for (int i = sweepRounds(3000, 60000); i > 0; --i) {
    long const width = ends.whole(), height = ends.whole(), step = ends.whole();
    bool const small = width <= 64 && height <= 64 && step <= 64;
    try {
      if (ends.below(2) && small)
        ccPelBuffer<T>(width, height, step);
      else
        ccPelBuffer<T>(ccPtrHandle<ccPelRoot<T>>(new ccPelRoot<T>(&pel, width, height, step)));
      EXPECT_GE(width, 1);
      EXPECT_GE(height, 1);
    } catch (ccPelError::BadSize const&) {
    }
  }
  EXPECT_THROW(ccPelRoot<T>(&pel, 1, 1, kLeast), ccPelError::BadSize);
  EXPECT_THROW(ccPelRoot<T>(kMost, kMost, kMost), ccPelError::BadSize);
}

TEST(XformEnds, orderOfAPolynomialHasALimit)
{
  std::vector<ccVector<2>> const from = {{0, 0}, {1, 0}, {0, 1}}, to = {{1, 1}, {2, 1}, {1, 2}};
  for (long order : {kLeast, -1L, 0L, 21L, 1L << 30, 1L << 31, kMost})
    EXPECT_THROW(cc2XformPoly(from, to, order), ccShapesError::BadParams) << order;
  cc2XformPoly const highest(from, to, 20);
  EXPECT_NEAR(highest.mapPoint({1, 0}).x(), 2, 1e-9);
  EXPECT_THROW(cc2XformPoly({{-1.7e308, 0}, {-1.7e308, 1}, {1.7e308, 0}}, {{0, 0}, {1, 0}, {2, 0}}, 1), ccShapesError::BadParams)
      << "the distance from their middle is not finite";
}

TEST(FormatEnds, numbersBeyondADoubleAreReadAsAtofDoes)
{
  struct {
    char const* text;
    double value;
  } const cases[] = {{"1e99999", HUGE_VAL},
                     {"-1e99999", -HUGE_VAL},
                     {"1e-99999", 0},
                     {"1e99999999999999999999", HUGE_VAL},
                     {"0.0000000001e99999999999999999999", HUGE_VAL},
                     {"0x1p99999", HUGE_VAL},
                     {"-0x1p99999", -HUGE_VAL},
                     {"0x1p-99999", 0},
                     {"0x0.0001p1040", HUGE_VAL},
                     {"0x0.0001p1039", 0x1p1023},
                     {"0x.8p1024", 0x1p1023},
                     {"2147483648", 2147483648.0},
                     {"-9223372036854775809", -9223372036854775808.0}};
  for (auto const& c : cases)
    EXPECT_EQ(cfParse(c.text), c.value) << c.text;
  EXPECT_EQ(cfParse("0x" + std::string(300, 'f')), HUGE_VAL);
  EXPECT_EQ(cfParse("0x0." + std::string(600, '0') + "1p1100"), 0) << "a digit is four bits";
  EXPECT_EQ(cfParse("1" + std::string(400, '0')), HUGE_VAL);
  EXPECT_EQ(cfParse("0." + std::string(400, '0') + "1"), 0);
}

// Any numbers under any conversion give a text of at most 255 characters.
TEST(FormatEnds, sweepOfConversions)
{
  NumberEnds ends(23);
  static char const letters[] = "diuxXofFeEgGaAcsp%n";
  static char const* const lengths[] = {"", "h", "hh", "l", "ll", "z", "L", "hhh"};
  static char const* const widths[] = {"", "*", "0", "-*", "99999999999", "-5", "+ #012", "255"};
  static char const* const precisions[] = {"", ".*", ".", ".99999999999", ".0", ".255"};
  for (int i = sweepRounds(20000, 400000); i > 0; --i) {
    std::string const format = std::string("a%") + widths[ends.below(8)] + precisions[ends.below(6)] + lengths[ends.below(8)] +
                               letters[ends.below(sizeof letters - 1)] + "b%";
    std::string const text = ends.below(2) ? cfFormat(format.c_str(), ends.whole(), ends.word(), ends.real())
                                           : cfFormat(format.c_str(), ends.real(), ends.whole(), "text");
    ASSERT_LE(text.size(), 255u) << format;
    ASSERT_EQ(text[0], 'a') << format;
    static_cast<void>(cfParse(text.substr(1)));
  }
  EXPECT_EQ(cfFormat("%d %ld", std::numeric_limits<int>::min(), -2147483647L - 1), "-2147483648 -2147483648");
  EXPECT_EQ(cfFormat("%.*f", std::numeric_limits<int>::min(), 0.5), "0.500000") << "a negative precision is none";
  EXPECT_EQ(cfFormat("%*d", std::numeric_limits<int>::min(), 7).size(), 255u);
}

TEST(RoundingEnds, anyDoubleGivesALongOf32Bits)
{
  NumberEnds ends(24);
  for (int i = 0; i < 20000; ++i) {
    double const v = ends.real();
    for (long const whole : {cfTruncToLong(v), cfFloorToLong(v), cfCeilToLong(v), floorTL(v), ceilTL(v)}) {
      ASSERT_LE(whole, 2147483647L) << v;
      ASSERT_GE(whole, -2147483647L - 1) << v;
    }
  }
  EXPECT_EQ(floorTL(-1e300), -2147483647L - 1);
  EXPECT_EQ(ceilTL(1e300), 2147483647L);
  EXPECT_EQ(floorTL(std::nan("")), 0);
}
