// Archives that end early, are disturbed, or for which memory fails.
#include "tests/support/broken_archives.h"

#include "foundation/math_error.h"
#include "foundation/pel_buffer.h"
#include "foundation/pel_error.h"
#include "foundation/resource.h"

#include <limits>

using namespace krs_test;

namespace {

template <class T> T pelOf(unsigned v)
{
  if constexpr (std::is_integral_v<T>)
    return static_cast<T>(v);
  else
    return T(static_cast<decltype(T().word())>(v));
}

template <class T> ccPelBuffer<T> filled(long width, long height, unsigned first, ccPair<long> const& offset)
{
  ccPelBuffer<T> b(width, height);
  for (long y = 0; y < height; ++y)
    for (long x = 0; x < width; ++x)
      b.setPel(x, y, pelOf<T>(first + static_cast<unsigned>(7 * y + x)));
  b.offset(offset);
  return b;
}

template <class Buffer> bool samePels(Buffer const& a, Buffer const& b)
{
  if (!(a.window() == b.window()) || a.isBound() != b.isBound())
    return false;
  for (long y = 0; y < a.height(); ++y)
    for (long x = 0; x < a.width(); ++x)
      if (!(a.getPel(a.offset().x() + x, a.offset().y() + y) == b.getPel(a.offset().x() + x, a.offset().y() + y)))
        return false;
  return true;
}

template <class T> class BrokenPelArchive : public testing::Test {};
using PelTypes = testing::Types<unsigned char, unsigned short, ccPackedRGB16Pel, ccPackedRGB32Pel>;
TYPED_TEST_SUITE(BrokenPelArchive, PelTypes);

enum Small : std::int32_t { smallOne = 1, smallTwo = 2 };

template <class E> void expectExceptionUntouched(char const* name, E const& written, E const& former)
{
  expectWholeOrUntouched(
      name, written, former, [](ccArchive& ar, E& e) { e.dispatchSerialize(ar); },
      [](E const& a, E const& b) { return a.message() == b.message(); });
}

}  // namespace

TEST(BrokenArchive, leavesNumbersAsTheyWere)
{
  expectWholeOrUntouched("bool", true, false);
  expectWholeOrUntouched("char", 'a', 'b');
  expectWholeOrUntouched("signed char", static_cast<signed char>(-3), static_cast<signed char>(4));
  expectWholeOrUntouched("unsigned char", static_cast<unsigned char>(3), static_cast<unsigned char>(4));
  expectWholeOrUntouched("short", static_cast<short>(-3), static_cast<short>(4));
  expectWholeOrUntouched("unsigned short", static_cast<unsigned short>(3), static_cast<unsigned short>(4));
  expectWholeOrUntouched("wchar_t", L'a', L'b');
  expectWholeOrUntouched("int", -3, 4);
  expectWholeOrUntouched("unsigned", 3u, 4u);
  expectWholeOrUntouched("long", -3L, 4L);
  expectWholeOrUntouched("unsigned long", 3UL, 4UL);
  expectWholeOrUntouched("long long", -3LL, 4LL);
  expectWholeOrUntouched("unsigned long long", 3ULL, 4ULL);
  expectWholeOrUntouched("float", 1.5f, 2.5f);
  expectWholeOrUntouched("double", 1.5, 2.5);
  expectWholeOrUntouched("enumeration", smallOne, smallTwo);
}

TEST(BrokenArchive, leavesPairsAndListsAsTheyWere)
{
  expectWholeOrUntouched("pair of longs", ccPair<long>(1, 2), ccPair<long>(3, 4));
  expectWholeOrUntouched("pair of doubles", ccPair<double>(1, 2), ccPair<double>(3, 4));
  expectWholeOrUntouched("vector", ccVector<2>(1, 2), ccVector<2>(3, 4));
  expectWholeOrUntouched("string", std::string(300, 'x'), std::string("former"));
  expectWholeOrUntouched("list of words", std::vector<unsigned short>{1, 2, 3}, std::vector<unsigned short>{4});
  expectWholeOrUntouched("list of flags", std::vector<bool>{true, false, true}, std::vector<bool>{false});
  expectWholeOrUntouched("list of texts", std::vector<std::string>{"one", std::string(40, 'y')},
                         std::vector<std::string>{"former"});
  expectWholeOrUntouched("list of lists", std::vector<std::vector<ccPair<long>>>{{{1, 2}}, {{3, 4}, {5, 6}}},
                         std::vector<std::vector<ccPair<long>>>{{{7, 8}}});
}

TEST(BrokenArchive, leavesExceptionsAsTheyWere)
{
  expectExceptionUntouched("ccArchive::UnknownVersion", ccArchive::UnknownVersion("new"), ccArchive::UnknownVersion("old"));
  expectExceptionUntouched("ccArchive::UnknownClass", ccArchive::UnknownClass("new"), ccArchive::UnknownClass("old"));
  expectExceptionUntouched("ccArchive::BadValue", ccArchive::BadValue(std::string(90, 'n')), ccArchive::BadValue("old"));
  expectExceptionUntouched("ccArchive::TooLarge", ccArchive::TooLarge("new"), ccArchive::TooLarge("old"));
  expectExceptionUntouched("ccMathError::Singular", ccMathError::Singular("new"), ccMathError::Singular("old"));
  expectExceptionUntouched("ccShapesError::DegenerateShape", ccShapesError::DegenerateShape("new"),
                           ccShapesError::DegenerateShape("old"));
  expectExceptionUntouched("ccShapesError::BadGeom", ccShapesError::BadGeom("new"), ccShapesError::BadGeom("old"));
  expectExceptionUntouched("ccShapesError::BadParams", ccShapesError::BadParams("new"), ccShapesError::BadParams("old"));
  expectExceptionUntouched("ccPelError::BadSize", ccPelError::BadSize("new"), ccPelError::BadSize("old"));
  expectExceptionUntouched("ccPelError::BadTable", ccPelError::BadTable("new"), ccPelError::BadTable("old"));
}

TEST(BrokenArchive, leavesAPointerToAnObjectAsItWas)
{
  struct Pointer {
    ccArchive::BadValue former{"former"};
    ccPersistent* object = &former;
    Pointer() = default;
    Pointer(Pointer const& other) : object(other.object == &other.former ? &former : nullptr) {}
    ~Pointer()
    {
      if (object != &former)
        delete object;
    }
  };
  ccArchive::BadValue stored(std::string(50, 's'));
  ccPersistent* out = &stored;
  ccMemoryArchive writer;
  writer.object(out);
  Bytes const whole = writer.data();
  auto const move = [](ccArchive& ar, Pointer& p) { ar.object(p.object); };
  auto const untouched = [](Pointer const& p, Pointer const&) { return p.object == &p.former; };
  for (std::size_t n = 0; n < whole.size(); ++n)
    EXPECT_FALSE(readOrUntouched(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(n)), Pointer(), move,
                                 untouched, "object"));
  struct Stage {
    Pointer p;
    ccMemoryArchive ar;
    explicit Stage(Bytes const& bytes) : ar(bytes) {}
  };
  long const failures = failEach([&] { return std::make_unique<Stage>(whole); }, [&](Stage& s) { move(s.ar, s.p); },
                                 [&](Stage& s, bool failed) { EXPECT_EQ(untouched(s.p, s.p), failed); });
  EXPECT_GT(failures, 3);
}

TYPED_TEST(BrokenPelArchive, leavesTheViewAsItWas)
{
  using T = TypeParam;
  auto const former = filled<T>(2, 2, 90, ccPair<long>(-4, 7));
  auto const same = [](auto const& a, auto const& b) { return samePels(a, b); };
  auto const move = [](ccArchive& ar, auto& b) { ar || b; };
  for (long width : {1L, 2L, 5L, 67L}) {
    auto const written = filled<T>(width, 3, 1, ccPair<long>(10, -20));
    expectWholeOrUntouched("pel buffer", written, former, move, same);
    expectWholeOrUntouched("const pel buffer", ccPelBuffer_const<T>(written), ccPelBuffer_const<T>(former), move, same);
  }
  expectWholeOrUntouched("list of pel buffers", std::vector<ccPelBuffer<T>>{filled<T>(3, 2, 1, {}), ccPelBuffer<T>()},
                         std::vector<ccPelBuffer<T>>{former}, move,
                         [](auto const& a, auto const& b) {
                           return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                                             [](auto const& x, auto const& y) { return samePels(x, y); });
                         });
}

TYPED_TEST(BrokenPelArchive, takesNoMemoryForPelsThatAreNotThere)
{
  using T = TypeParam;
  // 16384 pels a row, as many rows as 64 MiB hold, and nothing behind.
  auto const rows = static_cast<std::int32_t>((64u << 20) / 16384 / sizeof(T));
  ccMemoryArchive writer;
  std::uint32_t version = 0;
  bool bound = true;
  std::int32_t width = 16384, height = rows, x = 0, y = 0;
  writer || version || bound || width || height || x || y;
  ccMemoryArchive reader(writer.data());
  ccPelBuffer<T> target;
  long const before = MemoryWatch::allocations();
  try {
    reader || target;
    FAIL() << "there are no pels";
  } catch (ccArchive::EndOfData const&) {
    EXPECT_EQ(MemoryWatch::allocations(), before) << "a root would be an object and its pels";
  }
}

TEST(BrokenArchive, aTextThatIsNotThereTakesNoMemory)
{
  ccMemoryArchive reader({0xFF, 0xFF, 0, 0, 'a'});
  std::string text = "former";
  long const before = MemoryWatch::allocations();
  EXPECT_THROW(reader || text, ccArchive::EndOfData);
  EXPECT_LE(MemoryWatch::allocations() - before, 1) << "but for what the test itself takes";
  EXPECT_EQ(text, "former");
}

TEST(BrokenArchive, anExceptionThatLeavesForWantOfMemoryIsDeleted)
{
  static int living = 0;
  struct Counted : ccArchive::BadValue {
    explicit Counted(std::string text) : BadValue(std::move(text)) { ++living; }
    Counted(Counted const& other) : BadValue(other) { ++living; }
    ~Counted() override { --living; }
  };
  failEach([] { return std::make_unique<Counted*>(new Counted(std::string(80, 't'))); },
           [](Counted*& one) {
             try {
               one->suicideAndRethrow();
             } catch (ccArchive::BadValue const&) {
             }
           },
           [](Counted*&, bool) { EXPECT_EQ(living, 0); });
}
