// Values of the canvas at the ends of their numbers, from broken archives, and without memory.
#include "tests/support/broken_archives.h"
#include "tests/support/made_or_not.h"
#include "tests/support/number_ends.h"

#include "canvas/color.h"
#include "canvas/flag_stack.h"
#include "canvas/format.h"
#include "canvas/graphic_props.h"
#include "canvas/image_converter.h"
#include "canvas/live_props.h"
#include "canvas/rect.h"
#include "canvas/region.h"
#include "canvas/rle_buffer.h"
#include "canvas/tablet.h"
#include "foundation/math_error.h"

#include <algorithm>
#include <array>
#include <cstring>

using namespace krs_test;

namespace {

__extension__ using Wide = __int128;

constexpr long kFar = 0x3FFFFFFF;
constexpr long kMost = std::numeric_limits<long>::max();
constexpr long kLeast = std::numeric_limits<long>::min();

Wide near(Wide v) { return std::clamp<Wide>(v, -kFar, kFar); }

struct Edges {
  Wide l, t, r, b;
  friend bool operator==(Edges const&, Edges const&) = default;
};

Edges edgesOf(ccUIRect const& r) { return {r.left(), r.top(), r.right(), r.bottom()}; }

Wide shifted(Wide edge, Wide by) { return edge == kFar || edge == -kFar ? edge : near(edge + by); }

ccUIRect anyRect(NumberEnds& ends)
{
  switch (ends.below(4)) {
  case 0:
    return ccUIRect::fromEdges(ends.whole(), ends.whole(), ends.whole(), ends.whole());
  case 1:
    return ends.below(2) ? ccUIRect::inf : ccUIRect::firstQuad;
  default:
    return ccUIRect(ends.whole(), ends.whole(), ends.whole(), ends.whole());
  }
}

ccGraphicProps props(long width, bool flags)
{
  ccGraphicProps p(flags ? ccColor::redColor() : ccColor(9), width, flags ? ceDotPen : ceDashPen, flags);
  p.joinStyle(flags ? 1 : 0);
  p.capStyle(flags ? 2 : 1);
  p.showDirection(flags);
  p.showVertices(!flags);
  return p;
}

}  // namespace

TEST(BrokenValues, coloursAndPropertiesStayAsTheyWere)
{
  expectWholeOrUntouched("ccRGB", ccRGB(1, 2, 3), ccRGB(4, 5, 6));
  auto const same = [](ccColor const& a, ccColor const& b) {
    return a.flags() == b.flags() && a.index() == b.index() && a.rgb() == b.rgb();
  };
  auto const move = [](ccArchive& ar, auto& v) { ar || v; };
  expectWholeOrUntouched("ccColor", ccColor::passColor(), ccColor(1, 2, 3), move, same);
  expectWholeOrUntouched("ccColor", ccColor(7), ccColor::redColor(), move, same);
  expectWholeOrUntouched(
      "ccGraphicProps", props(5, true), props(-7, false), [](ccArchive& ar, ccGraphicProps& p) { p.dispatchSerialize(ar); },
      [](ccGraphicProps const& a, ccGraphicProps const& b) { return a == b; });
  expectWholeOrUntouched("colour map", std::vector<ccRGB>(3, ccRGB(1, 2, 3)), std::vector<ccRGB>(2, ccRGB(4, 5, 6)));
}

TEST(RectEnds, sweepAgainstWideNumbers)
{
  NumberEnds ends(31);
  for (int i = sweepRounds(100000, 2000000); i > 0; --i) {
    Wide const x = ends.whole(), y = ends.whole(), w = ends.whole(), h = ends.whole();
    ccUIRect r = ccUIRect(long(x), long(y), long(w), long(h));
    Edges const made = {near(x), near(y), near(x + w), near(y + h)};
    ASSERT_TRUE(edgesOf(r) == made) << i;
    ASSERT_EQ(r.width(), made.r - made.l);
    Wide const dx = ends.whole(), dy = ends.whole();
    ASSERT_TRUE(edgesOf(r + ccPair<long>(long(dx), long(dy))) ==
                (Edges{shifted(made.l, dx), shifted(made.t, dy), shifted(made.r, dx), shifted(made.b, dy)}))
        << i;
    ASSERT_TRUE(edgesOf(r - ccPair<long>(long(dx), long(dy))) ==
                (Edges{shifted(made.l, -dx), shifted(made.t, -dy), shifted(made.r, -dx), shifted(made.b, -dy)}))
        << i;
    r.sz({long(w), long(h)});
    ASSERT_TRUE(edgesOf(r) == (Edges{made.l, made.t, near(made.l + w), near(made.t + h)})) << i;

    ccUIRect const a = anyRect(ends), b = anyRect(ends);
    Edges const ea = edgesOf(a), eb = edgesOf(b);
    Edges const cut = {std::max(ea.l, eb.l), std::max(ea.t, eb.t), std::min(ea.r, eb.r), std::min(ea.b, eb.b)};
    bool const isDisjoint = cut.l >= cut.r || cut.t >= cut.b;
    ASSERT_TRUE(edgesOf(a & b) == (isDisjoint ? Edges{0, 0, 0, 0} : cut)) << i;
    ASSERT_EQ(a.nullIntersection(b), isDisjoint);
    if (!a.isNull() && !b.isNull()) {
      ASSERT_TRUE(edgesOf(a | b) == (Edges{std::min(ea.l, eb.l), std::min(ea.t, eb.t), std::max(ea.r, eb.r),
                                           std::max(ea.b, eb.b)}))
          << i;
    }
    ccPair<long> const p(ends.whole(), ends.whole());
    ASSERT_EQ(a.within(p), p.x() >= ea.l && p.x() < ea.r && p.y() >= ea.t && p.y() < ea.b);
    ccUIRect moved = a;
    moved.ul(p);
    ASSERT_TRUE(moved.left() == near(p.x()) && moved.top() == near(p.y()));
  }
}

TEST(FormatEnds, alignsAnyRectangle)
{
  NumberEnds ends(32);
  for (int i = 0; i < 20000; ++i) {
    auto const alignment = static_cast<ccUIFormat::Alignment>(ends.word());
    ccUIRect const r = anyRect(ends), aligned = ccUIFormat(alignment).alignRect(r);
    bool const isKnown = alignment >= 0 && alignment <= 8;
    if (!isKnown || alignment == ccUIFormat::topLeft) {
      ASSERT_TRUE(edgesOf(aligned) == edgesOf(r));
    }
  }
  EXPECT_EQ(ccUIFormat(ccUIFormat::bottomRight).alignRect(ccUIRect(0, 0, kFar - 1, kFar - 1)),
            ccUIRect::fromEdges(-kFar + 1, -kFar + 1, 0, 0));
}

TEST(PictureEnds, oneRowOfAnyPitchIsRead)
{
  NumberEnds ends(33);
  std::array<unsigned char, 3> const pels = {5, 5, 9};
  for (long pitch : {kMost, kLeast, -1L, 0L, 1L << 30, ends.whole()}) {
    ccRLEBuffer const one = ccRLEBuffer::fromPels(pels.data(), 3, 1, pitch);
    EXPECT_EQ(one.getPel({1, 0}), 5) << pitch;
    EXPECT_EQ(one.getPel({2, 0}), 9) << pitch;
  }
  ccRLEBuffer const one = ccRLEBuffer::fromPels(pels.data(), 3, 1, 3);
  for (int i = 0; i < 20000; ++i) {
    ccPair<long> const p(ends.whole(), ends.whole());
    ASSERT_EQ(one.getPel(p), p.y() == 0 && p.x() >= 0 && p.x() < 3 ? pels[static_cast<std::size_t>(p.x())] : 0);
    long const y = ends.whole();
    ASSERT_EQ(one.row(y)[1], y == 0 ? 2 : 0);
    // One row of two pels of value 4; a width that holds them makes an image of one row.
    unsigned char const runs[] = {4, 2, 0, 0};
    long const w = ends.whole(), h = ends.whole();
    ASSERT_EQ(ccRLEBuffer::fromRuns(runs, w, h).isNull(), !(w >= 2 && h == 1)) << w << ' ' << h;
  }
}

TEST(PictureEnds, iconsAreTouchedAtAnyOffsetAndStride)
{
  NumberEnds ends(34);
  char const* const map = "|12|3.|";
  for (int i = 0; i < 50000; ++i) {
    ccPair<long> const p(ends.whole(), ends.whole());
    long const stride = ends.whole();
    bool const touched = ccUITablet::iconTouched(map, p, stride);
    if (stride == 3) {
      ASSERT_EQ(touched, (p.y() == 0 && (p.x() == 0 || p.x() == 1)) || (p == ccPair<long>(0, 1)));
    }
    ASSERT_FALSE(touched && (p.x() < 0 || p.y() < 0 || stride < 2));
    static_cast<void>(ccUITablet::pointIconTouched(p));
  }
  EXPECT_FALSE(ccUITablet::iconTouched(map, {0, 0}, kLeast));
}

// One pel is converted whatever the strides are; no extent converts nothing.
TEST(ConverterEnds, onePelOfAnyStride)
{
  NumberEnds ends(35);
  ccImageConverter c;
  unsigned char const src = 200;
  for (int i = 0; i < 2000; ++i) {
    long const from = ends.whole(), to = ends.whole();
    std::array<unsigned char, 8> dst{};
    auto* const words = reinterpret_cast<unsigned short*>(dst.data());
    auto* const longs = reinterpret_cast<std::uint32_t*>(dst.data());
    switch (ends.below(7)) {
    case 0:
      c.convert8To555(&src, words, 1, 1, from, to);
      break;
    case 1:
      c.convert8To565(&src, words, 1, 1, from, to);
      break;
    case 2:
      c.convert8To24(&src, dst.data(), 1, 1, from, to);
      break;
    case 3:
      c.convert8To32(&src, longs, 1, 1, from, to);
      break;
    case 4:
      ccImageConverter::convert8To24(&src, dst.data(), c.rgb8To32(), 1, 1, from, to);
      break;
    case 5:
      ccImageConverter::convert8ToUYVY(&src, words, 1, 1, from, to);
      break;
    default:
      ccImageConverter::convert8ToYUY2(&src, words, 1, 1, from, to);
    }
    ASSERT_TRUE(std::any_of(dst.begin(), dst.end(), [](unsigned char b) { return b != 0; })) << i;
    ASSERT_EQ(dst[4], 0);
    std::array<unsigned char, 8> const before = dst;
    c.convert8To32(&src, longs, -1 - long(ends.below(2)) * kMost, 1, from, to);
    ccImageConverter::convert8To24(&src, dst.data(), c.rgb8To32(), 1, kLeast, from, to);
    ASSERT_EQ(dst, before);
  }
}

TEST(LiveEnds, aTransformWithoutAnInverseChangesNothing)
{
  NumberEnds ends(36);
  for (int i = 0; i < 20000; ++i) {
    ccLiveDisplayProps props;
    ccXform<2> const x(ccMatrix<2>(ends.real(), ends.real(), ends.real(), ends.real()),
                       ccVector<2>(ends.real(), ends.real()));
    try {
      props.clientTransform(x);
      ASSERT_TRUE(props.xformSet());
      ASSERT_NE(x.matrix().determinant(), 0);
    } catch (ccMathError::Singular const&) {
      ASSERT_FALSE(props.xformSet());
      ASSERT_EQ(props.clientTransform(), ccXform<2>::I);
    }
  }
}

TEST(FailingMemoryOfValues, aListOfRectanglesIsCutOrNot)
{
  struct Stage {
    cc_RectList list;
    Stage()
    {
      list.assign(ccUIRect(0, 0, 100, 100));
      list.subtract(ccUIRect(10, 10, 5, 5));
    }
    long area() const
    {
      long sum = 0;
      for (std::size_t i = 0; i < list.size(); ++i)
        sum += list[i].width() * list[i].height();
      return sum;
    }
  };
  long const failures = failEach([] { return std::make_unique<Stage>(); },
                                 [](Stage& s) { s.list.subtract(ccUIRect(5, 5, 40, 40)); },
                                 [](Stage& s, bool failed) {
                                   EXPECT_EQ(s.area(), failed ? 100 * 100 - 25 : 100 * 100 - 40 * 40);
                                 });
  EXPECT_EQ(failures, 1);
}

TEST(FailingMemoryOfValues, aFlagIsPushedOrNot)
{
  for (long depth : {0L, 63L, 64L, 127L, 128L}) {
    struct Stage {
      ccFlagStack flags{true};
    };
    failEach(
        [depth] {
          auto s = std::make_unique<Stage>();
          for (long i = 0; i < depth; ++i)
            s->flags.push(i % 3 == 0);
          return s;
        },
        [](Stage& s) { s.flags.push(true); },
        [depth](Stage& s, bool failed) {
          EXPECT_EQ(s.flags.depth(), failed ? depth : depth + 1);
          if (!failed) {
            EXPECT_TRUE(s.flags.pop());
          }
          for (long i = depth; i-- > 0;)
            EXPECT_EQ(s.flags.pop(), i % 3 == 0) << depth << ' ' << i;
          EXPECT_TRUE(s.flags.top());
        });
  }
}

TEST(FailingMemoryOfValues, picturesAreMadeOrNot)
{
  std::array<unsigned char, 12> const pels = {1, 1, 2, 3, 3, 3, 4, 5, 6, 7, 8, 8};
  expectMadeOrNot("fromPels", [&] { return ccRLEBuffer::fromPels(pels.data(), 4, 3, 4); },
                  [](ccRLEBuffer const& b) { EXPECT_EQ(b.getPel({3, 2}), 8); });
  unsigned char const runs[] = {4, 2, 0, 0, 5, 1, 0, 0};
  expectMadeOrNot("fromRuns", [&] { return ccRLEBuffer::fromRuns(runs, 2, 2); },
                  [](ccRLEBuffer const& b) { EXPECT_EQ(b.getPel({0, 1}), 5); });
  expectMadeOrNot("makeIcon", [] { return ccUITablet::makeIcon("|0123456789|", {3, 4}); },
                  [](ccRLEBuffer const& b) { EXPECT_EQ(b.getPel({1, 0}), 4); });
}

TEST(FailingMemoryOfValues, tablesOfAConverterAreBuiltOrNot)
{
  struct Stage {
    ccImageConverter c;
    unsigned char src = 77;
    std::uint32_t dst = 0xEEEEEEEE;
  };
  std::vector<ccRGB> const map(256, ccRGB(0x12, 0x34, 0x56));
  long const failures = failEach([&] {
                                   auto s = std::make_unique<Stage>();
                                   s->c.baseMap(map);
                                   return s;
                                 },
                                 [](Stage& s) { s.c.convert8To32(&s.src, &s.dst, 1, 1, 1, 4); },
                                 [](Stage& s, bool failed) {
                                   EXPECT_EQ(s.dst, failed ? 0xEEEEEEEE : 0x123456u);
                                   s.c.convert8To32(&s.src, &s.dst, 1, 1, 1, 4);
                                   EXPECT_EQ(s.dst, 0x123456u) << "it is built when memory is back";
                                 });
  EXPECT_GT(failures, 0);
}
