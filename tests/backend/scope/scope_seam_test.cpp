// Between two calls the screen may shrink, take another depth, and lose its surfaces. Whatever is drawn next must lie on the
// surface that then stands, as if the scope had been made on that screen.
#include "canvas/format.h"
#include "canvas/graphic_props.h"
#include "canvas/rle_buffer.h"
#include "geometry/ellipse.h"
#include "geometry/lines.h"
#include "geometry/polygon.h"
#include "tests/backend/scope/scope_fixture.h"

#include <functional>

using plat::testing::lose;

namespace {

struct NamedDraw {
  char const* name;
  std::function<void(ccUIScope&)> draw;
  int calls = 1;
};

constexpr auto nearest = cc_TabletEnums::interpolateNone;
constexpr auto linear = cc_TabletEnums::interpolateLinear;

// Each reaches beyond every edge of a scope of the fixture's size.
std::vector<NamedDraw> everyDraw()
{
  auto const grey = randomImage<unsigned char>(60, 50, 1);
  auto const deep = randomImage<unsigned short>(60, 50, 2);
  auto const words = randomImage<ccPackedRGB16Pel>(60, 50, 3);
  auto const longs = randomImage<ccPackedRGB32Pel>(60, 50, 4);
  ccPoint const at(-5, -7);
  ccPair<double> const up(2.5, 2.5), down(0.75, 0.75);
  ccGraphicProps const pen(ccColor(200, 60, 20), 1, ceSolidPen, false), wide(ccColor(20, 60, 200), 5, ceDashPen, false),
      filled(ccColor(60, 200, 20), 1, ceSolidPen, true);
  std::vector<unsigned char> bytes(60 * 50);
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<unsigned char>(i / 7 * 11);
  auto const runs = ccRLEBuffer::fromPels(bytes.data(), 60, 50, 60);
  std::vector<ccVector<2>> const corners{{-4, -4}, {55, 3}, {21, 44}, {3, 11}};
  return {
      {"grey", [=](ccUIScope& s) { s.draw(grey, at, false, 0, true); }},
      {"grey keyed", [=](ccUIScope& s) { s.draw(grey, at, true, 7, false); }},
      {"16 bits", [=](ccUIScope& s) { s.draw(deep, at, false, 0); }},
      {"words", [=](ccUIScope& s) { s.draw(words, at, false, 0); }},
      {"longs", [=](ccUIScope& s) { s.draw(longs, at, false, 0); }},
      {"expand", [=](ccUIScope& s) { s.expand(grey, at, up, false, 0, true, nearest); }},
      {"expand raw keyed", [=](ccUIScope& s) { s.expand(grey, at, up, true, 7, false, nearest); }},
      {"expand linear", [=](ccUIScope& s) { s.expand(grey, at, up, false, 0, true, linear); }},
      {"expand 16 bits", [=](ccUIScope& s) { s.expand(deep, at, up, false, 0, nearest); }},
      {"expand words", [=](ccUIScope& s) { s.expand(words, at, up, false, 0, nearest); }},
      {"expand longs", [=](ccUIScope& s) { s.expand(longs, at, up, false, 0, linear); }},
      {"sample", [=](ccUIScope& s) { s.sample(grey, at, down, false, 0, true); }},
      {"sample 16 bits", [=](ccUIScope& s) { s.sample(deep, at, down, false, 0); }},
      {"sample words", [=](ccUIScope& s) { s.sample(words, at, down, false, 0); }},
      {"sample longs", [=](ccUIScope& s) { s.sample(longs, at, down, false, 0); }},
      {"runs", [=](ccUIScope& s) { s.draw(runs, at, std::vector<unsigned char>(), false, 0); }},
      {"runs expanded", [=](ccUIScope& s) { s.expand(runs, at, up, std::vector<unsigned char>(), true, 0); }},
      {"set all", [](ccUIScope& s) { s.set(ccColor(9, 200, 77)); }},
      {"set", [](ccUIScope& s) { s.set(ccUIRect(2, 3, 90, 90), ccColor(9, 200, 77)); }},
      {"set by index", [](ccUIScope& s) { s.set(ccUIRect(2, 3, 90, 90), ccColor(static_cast<unsigned char>(99))); }},
      {"points",
       [=](ccUIScope& s) {
         for (long y = 0; y < 50; ++y)
           for (long x = 0; x < 60; ++x)
             s.draw(ccPoint(static_cast<double>(x), static_cast<double>(y)), pen);
       },
       50 * 60},
      {"line", [=](ccUIScope& s) { s.draw(ccLineSeg(ccPoint(1, 1), ccPoint(70, 41)), pen); }},
      {"wide line", [=](ccUIScope& s) { s.draw(ccLineSeg(ccPoint(1, 5), ccPoint(70, 5)), wide); }},
      {"line to",
       [=](ccUIScope& s) {
         s.drawStart(ccPoint(1, 1));
         s.drawTo(ccPoint(40, 9), pen);
         s.drawToRel(-9, 30, pen);
       },
       3},
      {"polyline", [=](ccUIScope& s) { s.draw(ccPolyline(corners, true), pen); }},
      {"polygon", [=](ccUIScope& s) { s.draw(ccPolygon(corners, 1), filled); }},
      {"ellipse", [=](ccUIScope& s) { s.draw(ccEllipse(ccPoint(12, 9), 30, 20, ccRadian(0)), filled); }},
      {"text",
       [](ccUIScope& s) {
         s.draw("Between two calls", ccPoint(2, 2), ccColor(255, 255, 0), ccColor(0, 0, 99), ccUIFormat());
       }},
      {"flood", [](ccUIScope& s) { s.fill(ccPoint(2, 2), ccColor(90, 0, 90), ccColor::blackColor(), true); }},
  };
}

struct Change {
  int before, after;
  plat::Size size;
};

constexpr Change changes[] = {
    {32, 32, {27, 19}}, {32, 8, {800, 600}}, {8, 32, {800, 600}}, {8, 32, {27, 19}}, {32, 16, {27, 19}}, {16, 8, {27, 19}},
    {24, 15, {27, 40}}, {15, 24, {60, 19}},  {8, 8, {27, 19}},    {16, 32, {10, 9}}, {8, 16, {27, 19}},
};

// A root with a child on it.
struct Stage {
  ScopeProbe root;
  std::unique_ptr<ccUIScope> child;

  void create(HWND window)
  {
    ASSERT_EQ(root.create(window, ccPair<long>(40, 30), -1), 0);
    root.palette(testColors());
    root.colorMap(testColors());
    root.cacheMap(testColors());
    root.colorMapEx(testColors(65536));
    child.reset(root.createChildScope(ccUIRect(12, 8, 25, 20), /*subset=*/false));
  }
};

}  // namespace

class ScopeSeam : public ScopeTest {
protected:
  // Draws on a stage whose screen has changed since, and on one that was made on the new screen.
  template <class Prepare, class Draw> void compare(Change const& change, std::string const& name, Prepare&& prepare, Draw&& draw)
  {
    screen(change.before);
    Stage old;
    ASSERT_NO_FATAL_FAILURE(old.create(window_));
    prepare(old);
    plat::testing::screen(change.size, change.after);
    lose(window_);
    draw(old);
    old.root.optimizeDrawing(false);
    std::vector<std::uint32_t> const pels = pelsOf(old.root.surface());

    Stage fresh;
    ASSERT_NO_FATAL_FAILURE(fresh.create(window_));
    prepare(fresh);
    draw(fresh);
    fresh.root.optimizeDrawing(false);
    EXPECT_EQ(old.root.size(), fresh.root.size()) << name;
    EXPECT_EQ(old.root.depth(), change.after) << name;
    EXPECT_TRUE(pels == pelsOf(fresh.root.surface()))
        << name << ' ' << change.before << " to " << change.after << ' ' << change.size.w << " x " << change.size.h;
  }
};

TEST_F(ScopeSeam, everyDrawingLiesOnTheSurfaceThatStands)
{
  for (Change const& change : changes)
    for (NamedDraw const& one : everyDraw())
      for (bool const onChild : {false, true})
        for (bool const optimized : {false, true})
          compare(
              change, one.name, [&](Stage& s) { s.root.optimizeDrawing(optimized); },
              [&](Stage& s) { one.draw(onChild ? *s.child : s.root); });
}

// The way to draw was used before, so that all that is kept from call to call is of the former screen.
TEST_F(ScopeSeam, whatIsKeptFromCallToCallIsOfTheScreenThatStands)
{
  for (Change const& change : changes)
    for (NamedDraw const& one : everyDraw())
      compare(
          change, one.name,
          [&](Stage& s) {
            one.draw(*s.child);
            one.draw(s.root);
            s.root.set(ccColor::blackColor());
          },
          [&](Stage& s) { one.draw(*s.child); });
}

// The redraw that follows a restoration may draw anything through the scope whose drawing found the loss, and lend it another
// part of its root, as tablets do with the windows that they keep.
TEST_F(ScopeSeam, aRedrawInMidDrawingLeavesTheDrawingAsItWasCalled)
{
  auto const other = randomImage<unsigned char>(33, 21, 9);
  struct Redraw {
    Stage* stage;
    ccPelBuffer<unsigned char> image;
    void draw()
    {
      ccGraphicProps const pen(ccColor(1, 255, 1), 1, ceSolidPen, false);
      stage->root.set(ccColor(3, 3, 80));
      stage->child->subset(stage->root, ccUIRect(3, 2, 9, 11));
      stage->child->draw(image, ccPoint(1, 1), false, 0, true);
      stage->child->expand(image, ccPoint(2, 5), ccPair<double>(1.5, 1.5), false, 0, true, linear);
      stage->child->drawStart(ccPoint(4, 4));
      stage->child->drawTo(ccPoint(8, 9), pen);
      stage->child->draw(ccPolyline(std::vector<ccVector<2>>{{0, 0}, {9, 4}, {30, 2}}, false), pen);
    }
  };
  for (Change const& change : changes)
    for (NamedDraw const& one : everyDraw()) {
      if (one.calls > 1)
        continue;  // the calls that follow are of the part that the redraw has left
      screen(change.before);
      Stage old;
      ASSERT_NO_FATAL_FAILURE(old.create(window_));
      Redraw redraw{&old, other};
      old.root.redrawCallBack([](void* p) { static_cast<Redraw*>(p)->draw(); }, &redraw);
      plat::testing::screen(change.size, change.after);
      lose(window_);
      one.draw(*old.child);
      EXPECT_EQ(old.child->clientOffset(), ccPair<long>(3, 2)) << one.name;
      std::vector<std::uint32_t> const pels = pelsOf(old.root.surface());

      Stage fresh;
      ASSERT_NO_FATAL_FAILURE(fresh.create(window_));
      Redraw again{&fresh, other};
      again.draw();
      fresh.child.reset(fresh.root.createChildScope(ccUIRect(12, 8, 25, 20), /*subset=*/false));
      one.draw(*fresh.child);
      EXPECT_TRUE(pels == pelsOf(fresh.root.surface())) << one.name << ' ' << change.before << " to " << change.after;
    }
}

TEST_F(ScopeSeam, aChildOfARootThatGrewBackIsWholeAgain)
{
  Stage stage;
  ASSERT_NO_FATAL_FAILURE(stage.create(window_));
  ASSERT_EQ(stage.root.resize(ccPair<long>(15, 30), -1), 0);
  stage.child->set(ccColor(1, 2, 3));
  EXPECT_EQ(pelOf(stage.root.surface(), 14, 10), 0x010203u);
  ASSERT_EQ(stage.root.resize(ccPair<long>(40, 30), -1), 0);

  stage.child->set(ccColor(1, 2, 3));

  EXPECT_EQ(pelOf(stage.root.surface(), 36, 27), 0x010203u);
  EXPECT_EQ(pelOf(stage.root.surface(), 37, 27), 0u);
}

TEST_F(ScopeSeam, aChildBeyondItsShrunkRootDrawsNothing)
{
  for (NamedDraw const& one : everyDraw()) {
    Stage stage;
    ASSERT_NO_FATAL_FAILURE(stage.create(window_));
    ASSERT_EQ(stage.root.resize(ccPair<long>(12, 8), -1), 0);

    one.draw(*stage.child);

    EXPECT_EQ(pelsOf(stage.root.surface()), std::vector<std::uint32_t>(12 * 8, 0)) << one.name;
  }
}

TEST_F(ScopeSeam, aDragGoesOnOverAChangeOfTheScreen)
{
  for (Change const& change : changes)
    for (bool const animate : {false, true}) {
      screen(change.before);
      Stage stage;
      ASSERT_NO_FATAL_FAILURE(stage.create(window_));
      stage.root.dragStart();
      stage.root.dragAnimate(animate);
      stage.child->set(ccColor(255, 255, 255));
      plat::testing::screen(change.size, change.after);
      lose(window_);
      auto const grey = randomImage<unsigned char>(60, 50, 1);
      stage.child->draw(grey, ccPoint(-5, -7), false, 0, true);
      stage.child->expand(grey, ccPoint(-5, -7), ccPair<double>(2, 2), false, 0, true, nearest);
      stage.root.dragErase();
      stage.root.dragAnimate(false);
      stage.root.dragStop();
      stage.root.set(ccColor(255, 255, 255));

      std::vector<std::uint32_t> const pels = pelsOf(stage.root.surface());
      EXPECT_EQ(pels.size(), static_cast<std::size_t>(stage.root.size().x() * stage.root.size().y()));
      for (std::uint32_t const pel : pels)
        ASSERT_EQ(pel, pels.front());
      EXPECT_EQ(shown(0, 0) & 0xF8F8F8, 0xF8F8F8u) << change.before << " to " << change.after;
    }
}

// Reading back finds the surface anew at every attempt.
TEST_F(ScopeSeam, readingBackFollowsTheScreen)
{
  for (Change const& change : changes) {
    screen(change.before);
    Stage stage;
    ASSERT_NO_FATAL_FAILURE(stage.create(window_));
    stage.root.redrawCallBack([](void* p) { static_cast<Stage*>(p)->root.set(ccColor(255, 255, 255)); }, &stage);
    plat::testing::screen(change.size, change.after);
    lose(window_);
    ccPelBuffer<ccPackedRGB32Pel> out(40, 30);
    cs_GetDisplayedImageInfo info;
    info.imageTable = testColors();
    info.imageTable[255] = ccRGB(255, 255, 255);
    info.imageTableValid = true;

    stage.root.getDisplayedImage(out, &info, cc_TabletEnums::bothLayers);

    long const w = stage.root.size().x(), h = stage.root.size().y();
    for (long y = 0; y < 30; ++y)
      for (long x = 0; x < 40; ++x)
        if (x >= w || y >= h) {
          ASSERT_EQ(out.getPel(x, y).word() & 0xFFFFFF, 0u) << x << ' ' << y;
        }
    if (change.after == 32 || change.after == 24) {
      EXPECT_EQ(out.getPel(w - 1, h - 1).word() & 0xFFFFFF, 0xFFFFFFu);
    }
  }
}
