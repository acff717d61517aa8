// Memory that fails: every drawing is done or missing, never thrown, and what is missing comes with the next update.
#include "backend/scope/win32_pel_buf_scope.h"
#include "canvas/format.h"
#include "canvas/graphic_props.h"
#include "canvas/rle_buffer.h"
#include "geometry/ellipse.h"
#include "geometry/ellipse_arc.h"
#include "geometry/gen_rect.h"
#include "geometry/lines.h"
#include "geometry/polygon.h"
#include "tests/backend/scope/scope_fixture.h"
#include "tests/support/memory_watch.h"

#include <functional>

namespace {

struct NamedDraw {
  char const* name;
  std::function<void(ccUIScope&)> draw;
};

std::vector<NamedDraw> everyDraw()
{
  auto const grey = randomImage<unsigned char>(30, 20, 1);
  auto const deep = randomImage<unsigned short>(30, 20, 2);
  auto const words = randomImage<ccPackedRGB16Pel>(30, 20, 3);
  auto const longs = randomImage<ccPackedRGB32Pel>(30, 20, 4);
  ccPoint const at(3, 4);
  ccPair<double> const up(2.5, 2.5), down(0.75, 0.75);
  ccGraphicProps const pen(ccColor(200, 60, 20), 1, ceSolidPen, false), wide(ccColor(20, 60, 200), 5, ceDashPen, false),
      filled(ccColor(60, 200, 20), 1, ceSolidPen, true);
  std::vector<unsigned char> bytes(30 * 20);
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<unsigned char>(i / 7 * 11);
  auto const runs = ccRLEBuffer::fromPels(bytes.data(), 30, 20, 30);
  std::vector<ccVector<2>> const corners{{-4, -4}, {55, 3}, {21, 44}, {3, 11}}, far{{-4e9, -4}, {55, 3e9}, {21, 44}, {3, 11}};
  std::string const written("memory");
  std::vector<ccColor> const colors(3);
  ccPolyline const line(corners, true), farLine(far, true);
  ccPolygon const polygon(corners, 1), farPolygon(far, 1);
  constexpr auto nearest = cc_TabletEnums::interpolateNone, linear = cc_TabletEnums::interpolateLinear;
  return {
      {"grey", [=](ccUIScope& s) { s.draw(grey, at, false, 0, true); }},
      {"grey raw", [=](ccUIScope& s) { s.draw(grey, at, true, 7, false); }},
      {"16 bits", [=](ccUIScope& s) { s.draw(deep, at, false, 0); }},
      {"words", [=](ccUIScope& s) { s.draw(words, at, false, 0); }},
      {"longs", [=](ccUIScope& s) { s.draw(longs, at, false, 0); }},
      {"expand", [=](ccUIScope& s) { s.expand(grey, at, up, false, 0, true, nearest); }},
      {"expand linear raw", [=](ccUIScope& s) { s.expand(grey, at, up, false, 0, false, linear); }},
      {"expand words", [=](ccUIScope& s) { s.expand(words, at, up, false, 0, linear); }},
      {"sample", [=](ccUIScope& s) { s.sample(grey, at, down, false, 0, true); }},
      {"sample longs", [=](ccUIScope& s) { s.sample(longs, at, down, false, 0); }},
      {"runs", [=](ccUIScope& s) { s.draw(runs, at, colors, false, 0); }},
      {"runs expanded", [=](ccUIScope& s) { s.expand(runs, at, up, std::vector<unsigned char>(), true, 0); }},
      {"set", [](ccUIScope& s) { s.set(ccUIRect(2, 3, 9, 9), ccColor(9, 200, 77)); }},
      {"point", [=](ccUIScope& s) { s.draw(ccPoint(3, 3), pen); }},
      {"line", [=](ccUIScope& s) { s.draw(ccLineSeg(ccPoint(1, 1), ccPoint(70, 41)), pen); }},
      {"wide line", [=](ccUIScope& s) { s.draw(ccLineSeg(ccPoint(1, 1), ccPoint(70, 41)), wide); }},
      {"polyline", [=](ccUIScope& s) { s.draw(line, wide); }},
      {"far polyline", [=](ccUIScope& s) { s.draw(farLine, pen); }},
      {"polygon", [=](ccUIScope& s) { s.draw(polygon, filled); }},
      {"far polygon", [=](ccUIScope& s) { s.draw(farPolygon, filled); }},
      {"ellipse", [=](ccUIScope& s) { s.draw(ccEllipse(ccPoint(12, 9), 9, 5, ccRadian(0.3)), wide); }},
      {"text",
       [=](ccUIScope& s) { s.draw(written, ccPoint(2, 2), ccColor(255, 255, 0), ccColor(0, 0, 99), ccUIFormat()); }},
      {"flood", [](ccUIScope& s) { s.fill(ccPoint(2, 2), ccColor(90, 0, 90), ccColor::blackColor(), false); }},
  };
}

struct Stage {
  ScopeProbe root;
  std::unique_ptr<ccUIScope> child;
  NamedDraw const* scene = nullptr;

  Stage(HWND window, NamedDraw const* drawing) : scene(drawing)
  {
    EXPECT_EQ(root.create(window, ccPair<long>(40, 30), -1), 0);
    root.palette(testColors());
    root.colorMap(testColors());
    root.cacheMap(testColors());
    root.colorMapEx(testColors(65536));
    child.reset(root.createChildScope(ccUIRect(6, 5, 25, 20), false));
    root.redrawCallBack([](void* p) { static_cast<Stage*>(p)->redraw(); }, this);
  }
  void redraw()
  {
    root.set(ccColor(3, 3, 80));
    if (scene)
      scene->draw(*child);
  }
};

}  // namespace

class ScopeMemory : public ScopeTest {};

TEST_F(ScopeMemory, aDrawingNeverThrowsAndWhatIsMissingComesWithTheNextUpdate)
{
  for (int const depth : {8, 16, 32}) {
    screen(depth);
    for (NamedDraw const& one : everyDraw()) {
      Stage whole(window_, &one);
      whole.redraw();
      std::vector<std::uint32_t> const expected = pelsOf(whole.root.surface());
      long const failures = failEach(
          [&] {
            auto stage = std::make_unique<Stage>(window_, &one);
            stage->root.set(ccColor(3, 3, 80));
            return stage;
          },
          [&](Stage& stage) { EXPECT_NO_THROW(one.draw(*stage.child)) << one.name; },
          [&](Stage& stage, bool) {
            stage.root.updateScreen();
            EXPECT_TRUE(pelsOf(stage.root.surface()) == expected) << one.name << " at depth " << depth;
          });
      EXPECT_LT(failures, kMostFailures);
    }
  }
}

TEST_F(ScopeMemory, restorationIsDoneOrTriedAgain)
{
  NamedDraw const scene{"scene", [](ccUIScope& s) { s.set(ccUIRect(0, 0, 9, 9), ccColor(255, 0, 0)); }};
  Stage whole(window_, &scene);
  whole.redraw();
  std::vector<std::uint32_t> const expected = pelsOf(whole.root.surface());
  EXPECT_GT(failEach(
                [&] {
                  auto stage = std::make_unique<Stage>(window_, &scene);
                  plat::testing::lose(window_);
                  return stage;
                },
                [&](Stage& stage) { EXPECT_NO_THROW(stage.root.updateScreen()); },
                [&](Stage& stage, bool) {
                  stage.root.updateScreen();
                  stage.root.updateScreen();
                  EXPECT_TRUE(pelsOf(stage.root.surface()) == expected);
                  EXPECT_EQ(shown(8, 7), 0xFF0000u);
                }),
            0);
}

TEST_F(ScopeMemory, creationAndSizesAnswerACodeAndWorkTheNextTime)
{
  struct Made {
    ScopeProbe scope;
    long result = -1;
  };
  EXPECT_GT(failEach([] { return std::make_unique<Made>(); },
                     [&](Made& m) { m.result = m.scope.create(window_, ccPair<long>(width, height), -1); },
                     [&](Made& m, bool failed) {
                       EXPECT_TRUE(failed || m.result == 0);
                       ASSERT_EQ(m.scope.create(window_, ccPair<long>(width, height), -1), 0);
                       m.scope.set(ccColor(255, 0, 0));
                       EXPECT_EQ(shown(3, 3), 0xFF0000u);
                     }),
            0);
  auto const made = [&] {
    auto m = std::make_unique<Made>();
    EXPECT_EQ(m->scope.create(window_, ccPair<long>(width, height), -1), 0);
    return m;
  };
  std::function<void(ScopeProbe&)> const operations[] = {
      [](ScopeProbe& s) { static_cast<void>(s.resize(ccPair<long>(20, 10), -1)); },
      [](ScopeProbe& s) { s.resizeDrawingSurface(ccPair<long>(20, 10)); },
      [](ScopeProbe& s) { s.dragStart(), s.dragErase(), s.dragStop(); },
      [](ScopeProbe& s) { static_cast<void>(s.enableOverlayPlane(true, ccPair<long>(width, height))); },
      [](ScopeProbe& s) { static_cast<void>(s.enableChromaKeying(true, false)); },
      [](ScopeProbe& s) { static_cast<void>(s.restoreAll(nullptr)); },
      [](ScopeProbe& s) { static_cast<void>(s.palette(testColors())); },
      [](ScopeProbe& s) { delete s.createChildScope(ccUIRect(1, 1, 5, 5), true); },
      [](ScopeProbe& s) { ccWin32UIScope const child(s, ccUIRect(1, 1, 5, 5)); },
      [](ScopeProbe& s) {
        for (int i = 0; i < 70; ++i)
          s.lockScreenUpdatesPush(false);
      },
  };
  int which = 0;
  for (auto const& operation : operations) {
    failEach(made, [&](Made& m) { operation(m.scope); },
             [&](Made& m, bool) {
               static_cast<void>(m.scope.enableChromaKeying(false, false));
               static_cast<void>(m.scope.enableOverlayPlane(false, ccPair<long>(width, height)));
               m.scope.set(ccColor(255, 0, 0));
               m.scope.updateScreen();
               EXPECT_EQ(shown(3, 3), 0xFF0000u) << which;
               m.scope.set(ccColor(0, 255, 0));
               EXPECT_EQ(shown(3, 3), 0x00FF00u) << which;
             });
    ++which;
  }
}

TEST_F(ScopeMemory, aScopeOverABufferIsMadeOrNot)
{
  ccPelBuffer<unsigned char> pels(9, 7);
  for (long nth = 1; nth < kMostFailures; ++nth) {
    bool failed = false;
    {
      MemoryWatch const watch(nth);
      try {
        ccWin32PelBufUIScope scope(pels);
        scope.rsync();
        scope.sync();
      } catch (std::bad_alloc const&) {
      }
      failed = watch.failed();
    }
    if (!failed)
      break;
  }
  ccWin32PelBufUIScope scope(pels);
  EXPECT_EQ(scope.size(), ccPair<long>(9, 7));
}

// What a redraw throws stays inside, and the redraw is asked for again.
TEST_F(ScopeMemory, aRedrawThatThrowsIsTriedAgain)
{
  struct Thrower {
    ScopeProbe scope;
    int throws = 2;
    static void redraw(void* p)
    {
      auto& t = *static_cast<Thrower*>(p);
      if (t.throws-- > 0)
        throw 1;
      t.scope.set(ccColor(255, 0, 0));
    }
  } t;
  create(t.scope);
  t.scope.redrawCallBack(&Thrower::redraw, &t);
  plat::testing::lose(window_);
  EXPECT_NO_THROW(t.scope.draw(ccPoint(1, 1), ccGraphicProps()));
  EXPECT_NO_THROW(t.scope.updateScreen());
  EXPECT_NO_THROW(t.scope.updateScreen());
  EXPECT_EQ(shown(3, 3), 0xFF0000u);
}

TEST_F(ScopeMemory, hugeSurfacesAreAnError)
{
  ScopeProbe scope;
  create(scope);
  long const huge = std::numeric_limits<std::int32_t>::max();
  for (auto const& size : {ccPair<long>(huge, huge), ccPair<long>(huge, 1), ccPair<long>(32767, 32767), ccPair<long>(-5, 3),
                           ccPair<long>(huge * 2 + 7, 4)}) {
    ccDirectDrawSurfaceDesc desc;
    desc.surfaceCaps(ccDirectDrawSurfaceCaps(0x40));
    desc.width(static_cast<std::uint32_t>(size.x()));
    desc.height(static_cast<std::uint32_t>(size.y()));
    ccDirectDrawSurface surface;
    surface.description(desc);
    if (size.x() <= huge) {
      EXPECT_NE(surface.create(&scope.directDraw()), 0) << size.x();
    }
    ScopeProbe overlay(true);
    create(overlay);
    static_cast<void>(overlay.releaseCombinedSurface());
    EXPECT_EQ(overlay.enableOverlayPlane(true, size), 0);
    EXPECT_FALSE(overlay.overlayPlaneEnabled()) << size.x();
  }
  scope.scroll(ccPair<long>(std::numeric_limits<long>::min(), std::numeric_limits<long>::max()));
  scope.set(ccColor(255, 0, 0));
  scope.scroll(ccPair<long>(0, 0));
  scope.set(ccColor(255, 0, 0));
  EXPECT_EQ(shown(3, 3), 0xFF0000u);
}

TEST_F(ScopeMemory, theDisplayFormatIsThePresentOne)
{
  ScopeProbe scope;
  create(scope);
  plat::testing::screen({640, 480}, 16);
  ccDirectDrawSurfaceDesc desc;
  ASSERT_EQ(scope.directDraw().displayFormat(desc), 0);
  EXPECT_EQ(desc.width(), 640u);
  EXPECT_EQ(desc.height(), 480u);
  EXPECT_EQ(desc.pixelFormat().bitCount(), 16u);
  EXPECT_EQ(desc.pixelFormat().gBitMask(), 0x7E0u);
}
