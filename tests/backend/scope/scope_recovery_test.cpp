// Lost surfaces and failing calls at any moment. A scene that is drawn again afterwards must be right in every pel.
#include "canvas/graphic_props.h"
#include "tests/backend/scope/scope_fixture.h"

using plat::result;
using plat::testing::failNext;
using plat::testing::lose;
using plat::testing::Op;

class ScopeRecovery : public ScopeTest {
protected:
  // Draws a scene when surfaces were rebuilt, as a display does.
  struct Scene {
    ScopeProbe& scope;
    int redraws = 0;

    explicit Scene(ScopeProbe& s) : scope(s) { s.redrawCallBack(&Scene::redraw, this); }
    static void redraw(void* p)
    {
      Scene& scene = *static_cast<Scene*>(p);
      ++scene.redraws;
      scene.draw();
    }
    void draw()
    {
      scope.set(ccColor::blueColor());
      scope.set(ccUIRect(5, 5, 10, 10), ccColor::redColor());
      ccGraphicProps props;
      props.penColor(ccColor::whiteColor());
      scope.draw(ccPoint(20, 20), props);
      scope.drawStart(ccPoint(22, 20));
      scope.drawTo(ccPoint(30, 20), props);
    }
    static std::uint32_t expected(long x, long y)
    {
      if (y == 20 && (x == 20 || (x >= 22 && x <= 30)))
        return 0xFFFFFF;
      return x >= 5 && x < 15 && y >= 5 && y < 15 ? 0xFF0000 : 0x0000FF;
    }
  };

  void expectShown(char const* when)
  {
    plat::Size size;
    std::vector<std::uint32_t> const pels = plat::testing::shot(window_, size);
    ASSERT_EQ(size, (plat::Size{static_cast<plat::i32>(width), static_cast<plat::i32>(height)}));
    for (long y = 0; y < height; ++y)
      for (long x = 0; x < width; ++x)
        ASSERT_EQ(pels[static_cast<std::size_t>(y * width + x)], Scene::expected(x, y)) << when << ' ' << x << ' ' << y;
  }
};

TEST_F(ScopeRecovery, lostSurfacesAreRestoredByTheNextDrawing)
{
  ScopeProbe scope;
  create(scope);
  Scene scene(scope);
  scene.draw();
  lose(window_);
  scope.set(ccUIRect(5, 5, 10, 10), ccColor::redColor());
  EXPECT_EQ(scene.redraws, 1);
  expectShown("after drawing");
}

TEST_F(ScopeRecovery, lostSurfacesAreRestoredByTheNextUpdate)
{
  ScopeProbe scope;
  create(scope);
  Scene scene(scope);
  scene.draw();
  lose(window_);
  scope.updateScreen();
  EXPECT_EQ(scene.redraws, 1);
  expectShown("after update");
  EXPECT_EQ(scope.depth(), 32);
}

TEST_F(ScopeRecovery, exclusiveModeIsTriedLater)
{
  ScopeProbe scope;
  create(scope);
  Scene scene(scope);
  scene.draw();
  plat::testing::exclusive(true);
  lose(window_);
  scope.updateScreen();
  scope.set(ccUIRect(5, 5, 10, 10), ccColor::redColor());
  EXPECT_EQ(scene.redraws, 0);
  plat::testing::exclusive(false);
  scope.updateScreen();
  EXPECT_EQ(scene.redraws, 1);
  expectShown("after exclusive mode");
}

TEST_F(ScopeRecovery, lossInADragKeepsTheDragGoing)
{
  ScopeProbe scope;
  create(scope);
  Scene scene(scope);
  scene.draw();
  scope.dragStart();
  scope.dragAnimate(true);
  scope.set(ccUIRect(0, 0, 20, 20), ccColor::greenColor());
  lose(window_);
  scope.set(ccUIRect(1, 1, 20, 20), ccColor::greenColor());
  scope.dragErase();
  scope.dragAnimate(false);
  scope.dragStop();
  scope.updateScreen();
  expectShown("after the drag");
}

TEST_F(ScopeRecovery, lossForgetsTheImageCache)
{
  screen(8);
  ScopeProbe scope;
  create(scope);
  ccPelBuffer<unsigned char> image(5, 5);
  image.setPel(1, 1, 33);
  scope.draw(image, ccPoint(0, 0), false, 0, true);
  lose(window_);
  scope.draw(image, ccPoint(10, 10), false, 0, true);
  EXPECT_EQ(pelOf(scope.surface(), 11, 11), 33u);
  EXPECT_EQ(pelOf(scope.surface(), 1, 1), 0u);
}

TEST_F(ScopeRecovery, overlayPlaneIsWipedToItsKey)
{
  ScopeProbe image, overlay(true);
  create(image);
  create(overlay);
  ASSERT_EQ(overlay.enableOverlayPlane(true, ccPair<long>(width, height)), 0);
  image.drawSurface(&overlay);
  overlay.drawSurface(&image);
  overlay.set(ccColor::passColor());
  image.set(ccColor::greenColor());
  lose(window_);
  overlay.updateScreen();
  EXPECT_EQ(pelOf(overlay.surface(), 3, 3), 0xF3F3F3u);
  image.set(ccColor::redColor());
  EXPECT_EQ(shown(3, 3), 0xFF0000u);
}

TEST_F(ScopeRecovery, eightBitScreenGetsItsPaletteBack)
{
  screen(8);
  ScopeProbe scope;
  create(scope);
  ASSERT_EQ(scope.palette(testColors()), 0);
  lose(window_);
  scope.updateScreen();
  EXPECT_EQ(plat::platform().objects.systemEntries()[100].r, 100);
  EXPECT_EQ(scope.palette(testColors()), 0);
}

TEST_F(ScopeRecovery, primaryThatCannotBeRestoredIsMadeAnew)
{
  for (int const failures : {1, 2, 3}) {
    ScopeProbe scope;
    create(scope);
    Scene scene(scope);
    scene.draw();
    lose(window_);
    failNext(Op::restore, result(0x8876024B));
    if (failures > 1)
      failNext(Op::createSurface, result(0x8876017C), failures - 1);
    for (int attempt = 0; attempt < 3; ++attempt)
      scope.updateScreen();
    EXPECT_GE(scene.redraws, 1) << failures;
    expectShown("after a new primary");
  }
}

TEST_F(ScopeRecovery, deviceThatCannotBeMadeIsTriedAgain)
{
  ScopeProbe scope;
  create(scope);
  Scene scene(scope);
  scene.draw();
  lose(window_);
  failNext(Op::restore, result(0x8876024B));
  failNext(Op::createSurface, result(0x8876017C));  // recreate
  failNext(Op::openDevice, result(0x80004005), 2);  // and all of it
  scope.updateScreen();
  scope.updateScreen();
  EXPECT_EQ(scene.redraws, 0);
  scope.updateScreen();
  EXPECT_EQ(scene.redraws, 1);
  expectShown("after a new device");
}

TEST_F(ScopeRecovery, surfaceThatCouldNotBeSizedIsMadeLater)
{
  ScopeProbe scope;
  create(scope);
  Scene scene(scope);
  failNext(Op::createSurface, result(0x8876017C));
  EXPECT_EQ(scope.resize(ccPair<long>(width, height), -1), result(0x8876017C));
  scene.draw();
  expectShown("after a failed size");
}

// One call of one operation fails at some step of the drawing; once the scene is drawn again all is right.
TEST_F(ScopeRecovery, anyCallMayFailAtAnyStep)
{
  constexpr int steps = 10;
  for (int op = 0; op < static_cast<int>(Op::count); ++op)
    for (int at = 0; at < steps; ++at)
      for (int times : {1, 2, 3})
        for (std::uint32_t const code : {0x8876021Cu, 0x887601C2u}) {
          if (static_cast<Op>(op) == Op::isLost && code == 0x8876021C)
            continue;
          ScopeProbe scope;
          create(scope);
          Scene scene(scope);
          auto const step = [&](int i) {
            if (i == at)
              failNext(static_cast<Op>(op), result(code), times);
          };
          step(0), scene.draw();
          step(1), scope.dragStart();
          step(2), scope.dragAnimate(true);
          step(3), scope.set(ccUIRect(3, 3, 9, 9), ccColor::greenColor());
          step(4), scope.dragErase();
          step(5), scope.dragAnimate(false);
          step(6), scope.dragStop();
          step(7), static_cast<void>(scope.resize(ccPair<long>(width, height), -1));
          step(8), scene.draw();
          step(9), scope.updateScreen();
          failNext(static_cast<Op>(op), 0, 0);

          scene.draw();
          scope.updateScreen();
          scope.updateScreen();

          ASSERT_NO_FATAL_FAILURE(expectShown("any call")) << "op " << op << " step " << at << " times " << times;
          if (testing::Test::HasFailure()) {
            ADD_FAILURE() << "op " << op << " step " << at << " times " << times << std::hex << " code " << code;
            return;
          }
        }
}

TEST_F(ScopeRecovery, lossAtAnyStepEndsInARightPicture)
{
  for (int at = 0; at < 10; ++at) {
    ScopeProbe scope;
    create(scope);
    Scene scene(scope);
    auto const step = [&](int i) {
      if (i == at)
        lose(window_);
    };
    step(0), scene.draw();
    step(1), scope.dragStart();
    step(2), scope.dragAnimate(true);
    step(3), scope.set(ccUIRect(3, 3, 9, 9), ccColor::greenColor());
    step(4), scope.dragErase();
    step(5), scope.dragAnimate(false);
    step(6), scope.dragStop();
    step(7), scope.optimizeDrawing(true);
    step(8), scene.draw();
    step(9), scope.optimizeDrawing(false);
    scope.updateScreen();
    expectShown("loss");
    if (testing::Test::HasFailure())
      FAIL() << "step " << at;
  }
}
