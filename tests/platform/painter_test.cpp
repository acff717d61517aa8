#include "platform/paint.h"
#include "platform/portable/raster/graphics_objects.h"
#include "platform/portable/raster/painter.h"
#include "tests/platform/canvas.h"

using namespace plat;
using plat::portable::closeWindowDC;
using plat::portable::graphicsObjects;
using plat::portable::openWindowDC;

TEST(Painter, handleIsFoundWhileItIsOutAndStaleAfterwards)
{
  Canvas canvas(8, 8, 32);
  HDC const dc = canvas.painter().handle();
  EXPECT_EQ(plat::painter(dc), &canvas.painter());
  canvas.reopen();
  EXPECT_EQ(plat::painter(dc), nullptr);
  EXPECT_NE(canvas.painter().handle(), dc);
  EXPECT_EQ(plat::painter(nullptr), nullptr);
  EXPECT_EQ(plat::painter(reinterpret_cast<HDC>(std::uintptr_t{0x12345})), nullptr);
}

TEST(Painter, handleDiesWithItsSurface)
{
  HDC dc = nullptr;
  {
    Canvas canvas(8, 8, 32);
    dc = canvas.painter().handle();
  }
  EXPECT_EQ(plat::painter(dc), nullptr);
}

TEST(Painter, eachHandleStartsClean)
{
  Canvas canvas(8, 4, 32);
  Rect const clip{2, 2, 3, 3};
  Xform const shift{1, 0, 0, 1, 5, 5};
  canvas.painter().viewportOrigin({3, 3});
  canvas.painter().windowOrigin({9, 9});
  canvas.painter().clip(&clip);
  canvas.painter().worldTransform(&shift);
  canvas.painter().setBounds(nullptr, 4);
  canvas.painter().pen({0xFF, 4, 1, 0, 0});
  canvas.painter().brush(0xFF00);
  canvas.painter().moveTo({2, 2});
  canvas.reopen();

  EXPECT_EQ(canvas.painter().setBounds(nullptr, 0), 8u | 1u);
  EXPECT_EQ(canvas.painter().windowOrigin({}), Point{});
  canvas.painter().fillRect({0, 0, 8, 4}, 0xFFFFFF);
  canvas.painter().lineTo({3, 0});
  Point const square[4] = {{4, 1}, {7, 1}, {7, 3}, {4, 3}};
  canvas.painter().polygon(square, FillRule::alternate);
  EXPECT_EQ(canvas.picture(0xFFFFFF), "###.....\n"
                                      "....####\n"
                                      "....#..#\n"
                                      "....####\n");
}

TEST(Painter, fillRectIsHalfOpenAndShiftedByBothOrigins)
{
  Canvas canvas(8, 4, 32);
  canvas.painter().viewportOrigin({3, 1});
  EXPECT_EQ(canvas.painter().windowOrigin({1, 1}), Point{});
  EXPECT_EQ(canvas.painter().windowOrigin({1, 1}), (Point{1, 1}));
  canvas.painter().fillRect({0, 0, 3, 2}, 0x0000FF);
  EXPECT_EQ(canvas.picture(0), "..###...\n"
                               "..###...\n"
                               "........\n"
                               "........\n");
}

TEST(Painter, clipIsInDevicePelsAndNullTakesItAway)
{
  Canvas canvas(8, 4, 32);
  Rect const clip{2, 1, 5, 3};
  canvas.painter().viewportOrigin({1, 0});
  canvas.painter().clip(&clip);
  canvas.painter().fillRect({0, 0, 3, 4}, 0x0000FF);
  EXPECT_EQ(canvas.picture(0), "........\n"
                               "..##....\n"
                               "..##....\n"
                               "........\n");
  EXPECT_EQ(canvas.painter().pel({0, 0}), 0xFFFFFFFFu);
  EXPECT_EQ(canvas.painter().pel({1, 1}), 0x0000FFu);
  canvas.painter().clip(nullptr);
  EXPECT_EQ(canvas.painter().pel({0, 0}), 0u);
}

TEST(Painter, colorsAreTruncatedAtFifteenAndSixteenBitsAndDirectAbove)
{
  struct Row {
    int depth;
    u32 pel;
    COLORREF back;
  } const rows[] = {{15, 0x5AB9, 0xC8A8B0}, {16, 0xB579, 0xC8ACB0}, {24, 0xB5AFC9, 0xC9AFB5}, {32, 0x00B5AFC9, 0xC9AFB5}};
  for (Row const& row : rows) {
    Canvas canvas(3, 1, row.depth);
    canvas.painter().fillRect({1, 0, 2, 1}, 0xC9AFB5);
    EXPECT_EQ(canvas.at(1, 0), row.pel) << row.depth;
    EXPECT_EQ(canvas.at(2, 0), 0u) << row.depth;
    EXPECT_EQ(canvas.painter().pel({1, 0}), row.back) << row.depth;
  }
}

TEST(Painter, eightBitsTakeTheNearestEntryOfThePaletteAndTheFirstOfEquals)
{
  FakeScreen screen({4, 4}, 32);
  screen.palette.assign(256, PaletteEntry{200, 200, 200, 0});
  screen.palette[40] = {10, 0, 0, 0};
  screen.palette[50] = {0, 0, 10, 0};
  screen.palette[60] = {0, 0, 10, 0};
  Canvas canvas(4, 1, 8);
  canvas.painter().fillRect({0, 0, 1, 1}, 0x000009);
  canvas.painter().fillRect({1, 0, 2, 1}, 0x090000);
  canvas.painter().fillRect({2, 0, 3, 1}, 0x000000);
  EXPECT_EQ(canvas.at(0, 0), 40u);
  EXPECT_EQ(canvas.at(1, 0), 50u);
  EXPECT_EQ(canvas.at(2, 0), 40u);
  EXPECT_EQ(canvas.painter().pel({1, 0}), 0x0A0000u);
}

TEST(Painter, boundsCollectOnlyWhileEnabledAndAnswerTheFormerState)
{
  Canvas canvas(20, 10, 32);
  Painter& p = canvas.painter();
  Rect r;
  p.fillRect({1, 1, 3, 3}, 0xFF);
  EXPECT_EQ(p.getBounds(r, 0), 1u);
  EXPECT_EQ(r, Rect{});

  EXPECT_EQ(p.setBounds(nullptr, 5), 8u | 1u);
  p.fillRect({4, 2, 6, 5}, 0xFF);
  p.fillRect({10, 1, 12, 3}, 0xFF);
  EXPECT_EQ(p.getBounds(r, 0), 3u);
  EXPECT_EQ(r, (Rect{4, 1, 12, 5}));
  EXPECT_EQ(p.setBounds(nullptr, 8), 4u | 3u);
  p.fillRect({0, 0, 20, 10}, 0xFF);
  EXPECT_EQ(p.getBounds(r, 1), 3u);
  EXPECT_EQ(r, (Rect{4, 1, 12, 5}));
  EXPECT_EQ(p.getBounds(r, 0), 1u);
}

TEST(Painter, boundsTakeARectangleOnlyWhenAskedToAddIt)
{
  Canvas canvas(20, 10, 32);
  Rect const given{2, 3, 5, 6};
  Rect r;
  canvas.painter().setBounds(&given, 5);
  EXPECT_EQ(canvas.painter().getBounds(r, 0), 1u);
  canvas.painter().setBounds(&given, 2);
  EXPECT_EQ(canvas.painter().getBounds(r, 0), 3u);
  EXPECT_EQ(r, given);
}

TEST(Painter, boundsOutliveBeingEnabledAndDisabled)
{
  Canvas canvas(20, 10, 32);
  Rect const given{2, 3, 5, 6};
  Rect r;
  canvas.painter().setBounds(&given, 2);
  EXPECT_EQ(canvas.painter().setBounds(nullptr, 4), 8u | 3u);
  EXPECT_EQ(canvas.painter().setBounds(nullptr, 8), 4u | 3u);
  EXPECT_EQ(canvas.painter().getBounds(r, 0), 3u);
  EXPECT_EQ(r, given);
}

TEST(Painter, boundsAreLogicalAndCutByTheClip)
{
  Canvas canvas(20, 10, 32);
  Painter& p = canvas.painter();
  Rect const clip{3, 2, 15, 8};
  p.viewportOrigin({2, 1});
  p.clip(&clip);
  p.setBounds(nullptr, 5);
  p.fillRect({-5, 4, 30, 30}, 0xFF);
  Rect r;
  EXPECT_EQ(p.getBounds(r, 0), 3u);
  EXPECT_EQ(r, (Rect{1, 4, 13, 7}));
}

TEST(Painter, boundsOfALineCountItsLastVertex)
{
  Canvas canvas(20, 10, 32);
  Painter& p = canvas.painter();
  p.setBounds(nullptr, 5);
  p.moveTo({3, 2});
  p.lineTo({8, 5});
  Rect r;
  EXPECT_EQ(p.getBounds(r, 0), 3u);
  EXPECT_EQ(r, (Rect{3, 2, 9, 6}));
}

TEST(Painter, shiftAsWorldTransformMovesEverything)
{
  Canvas canvas(8, 4, 32);
  Xform const shift{1, 0, 0, 1, 2.6f, 0.4f};
  EXPECT_TRUE(canvas.painter().worldTransform(&shift));
  canvas.painter().fillRect({0, 0, 2, 1}, 0xFF);
  EXPECT_TRUE(canvas.painter().worldTransform(nullptr));
  canvas.painter().fillRect({0, 2, 1, 3}, 0xFF);
  EXPECT_EQ(canvas.picture(0), "...##...\n"
                               "........\n"
                               "#.......\n"
                               "........\n");
}

TEST(Painter, farCoordinatesAreHarmless)
{
  Canvas canvas(6, 3, 16);
  Painter& p = canvas.painter();
  p.viewportOrigin({1000000000, -1000000000});
  p.windowOrigin({-1000000000, 1000000000});
  p.fillRect({-1000000000, -1000000000, 1000000000, 1000000000}, 0xFF);
  p.viewportOrigin({});
  p.windowOrigin({});
  p.fillRect({-1000000000, 1, 1000000000, 2}, 0xFF);
  EXPECT_EQ(canvas.picture(0), "......\n"
                               "######\n"
                               "......\n");
}

TEST(WindowPainter, paintsClientCoordinatesInWhatCanBeSeenAndPresentsAtTheEnd)
{
  FakeScreen screen({10, 6}, 16, {100, 200}, {2, 1});
  screen.visible = {{2, 1, 5, 6}, {6, 1, 9, 3}};
  HDC const dc = openWindowDC(screen.window());
  ASSERT_NE(dc, nullptr);
  Painter* const p = plat::painter(dc);
  ASSERT_NE(p, nullptr);

  p->fillRect({1, 0, 7, 4}, 0xFFFFFF);
  p->fillRect({1, 3, 7, 4}, 0x0000FF);
  EXPECT_EQ(p->pel({1, 0}), 0xF8FCF8u);    // white in 5, 6 and 5 bits
  EXPECT_EQ(p->pel({3, 0}), 0xFFFFFFFFu);  // covered
  EXPECT_TRUE(screen.presented.empty());
  closeWindowDC(dc);

  for (int y = 0; y < 6; ++y)
    for (int x = 0; x < 10; ++x) {
      bool const seen = (x >= 2 && x < 5 && y >= 1) || (x >= 6 && x < 9 && y >= 1 && y < 3);
      bool const in = seen && x >= 3 && x < 9 && y >= 1 && y < 5;
      EXPECT_EQ(screen.at(x, y), in ? (y == 4 ? 0xF800u : 0xFFFFu) : 0u) << x << ' ' << y;
    }
  ASSERT_EQ(screen.presented.size(), 1u);
  EXPECT_EQ(screen.presented[0], (Rect{101, 200, 107, 204}));
  EXPECT_EQ(plat::painter(dc), nullptr);
  closeWindowDC(dc);  // a dead handle is ignored
}

TEST(WindowPainter, untouchedWindowIsNotPresented)
{
  FakeScreen screen({10, 6}, 32);
  closeWindowDC(openWindowDC(screen.window()));
  EXPECT_TRUE(screen.presented.empty());
}

TEST(WindowPainter, surfaceHandlesAreNotClosedAsWindowHandles)
{
  Canvas canvas(4, 4, 32);
  closeWindowDC(canvas.painter().handle());
  EXPECT_EQ(plat::painter(canvas.painter().handle()), &canvas.painter());
}

TEST(GraphicsObjects, palettesLiveByHandle)
{
  GraphicsObjects& objects = graphicsObjects();
  PaletteEntry const three[3] = {{0, 0, 0, 0}, {255, 0, 0, 1}, {0, 255, 0, 2}};
  HPALETTE const palette = objects.createPalette(three);
  ASSERT_NE(palette, nullptr);
  EXPECT_EQ(objects.entries(palette), std::vector<PaletteEntry>(std::begin(three), std::end(three)));
  PaletteEntry one{};
  EXPECT_TRUE(objects.entry(palette, 2, one));
  EXPECT_EQ(one, three[2]);
  EXPECT_FALSE(objects.entry(palette, 3, one));
  EXPECT_EQ(objects.nearest(palette, 0x0000F0), 1u);
  EXPECT_EQ(objects.nearest(palette, 0x00F000), 2u);
  EXPECT_EQ(objects.nearest(palette, 0x300000), 0u);
  objects.deletePalette(palette);
  EXPECT_TRUE(objects.entries(palette).empty());
  EXPECT_FALSE(objects.entry(palette, 0, one));
  EXPECT_EQ(objects.createPalette({}), nullptr);
  EXPECT_EQ(objects.createPalette(std::vector<PaletteEntry>(257)), nullptr);
}

TEST(GraphicsObjects, realizeWritesTheScreensPaletteAtDepthEightOnly)
{
  PaletteEntry entries[256] = {};
  HPALETTE const palette = graphicsObjects().createPalette(entries);
  {
    FakeScreen screen({4, 4}, 8);
    EXPECT_EQ(graphicsObjects().realize(screen.window(), palette), 236u);
    EXPECT_EQ(graphicsObjects().realize(screen.window(), palette), 0u);
    EXPECT_EQ(graphicsObjects().systemEntries()[9], (PaletteEntry{9, 9, 9, 0}));
    EXPECT_EQ(graphicsObjects().systemEntries()[10], PaletteEntry{});
  }
  FakeScreen screen({4, 4}, 32);
  EXPECT_EQ(graphicsObjects().realize(screen.window(), palette), 0u);
  graphicsObjects().deletePalette(palette);
}
