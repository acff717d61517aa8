#include "platform/paint.h"
#include "platform/portable/raster/graphics_objects.h"
#include "platform/portable/raster/painter.h"
#include "tests/platform/canvas.h"

using namespace plat;
using plat::portable::graphicsObjects;

namespace {

constexpr COLORREF white = 0xFFFFFF;
constexpr unsigned centre = 1, right = 2, noClip = 0x100, calculate = 0x400, noPrefix = 0x800;

// The box around what isn't background; empty when there is nothing.
Rect inkOf(Canvas const& canvas, u32 background = 0)
{
  Rect ink{canvas.width(), canvas.height(), 0, 0};
  for (int y = 0; y < canvas.height(); ++y)
    for (int x = 0; x < canvas.width(); ++x)
      if (canvas.at(x, y) != background)
        ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1), std::max(ink.bottom, y + 1)};
  return ink;
}

struct Font {
  explicit Font(FontDesc const& desc) : handle(graphicsObjects().createFont(desc)) {}
  Font(Font const&) = delete;
  Font& operator=(Font const&) = delete;
  ~Font() { graphicsObjects().deleteFont(handle); }
  HFONT handle;
};

FontDesc cfFont(int height, bool bold = false, bool smooth = false)
{
  FontDesc desc;
  desc.height = height;
  desc.bold = bold;
  desc.smooth = smooth;
  return desc;
}

int cfDraw(Canvas& canvas, std::string_view text, Rect rect, unsigned flags = noClip | noPrefix)
{
  canvas.painter().textColors(white, 0, false);
  return canvas.painter().drawText(text, rect, flags);
}

}  // namespace

TEST(PainterText, lineHeightIsAscenderAndDescenderEachRoundedUp)
{
  // DejaVu Sans: 1901 and 483 of 2048 units.
  Canvas canvas(10, 10, 32);
  for (int const height : {8, 13, 20, 31, 64}) {
    Font const font(cfFont(height));
    canvas.painter().font(font.handle);
    int const expected = (1901 * height + 2047) / 2048 + (483 * height + 2047) / 2048;
    EXPECT_EQ(canvas.painter().textExtent("x").h, expected) << height;
  }
  canvas.painter().font(nullptr);
  EXPECT_EQ(canvas.painter().textExtent("x").h, 17);
}

TEST(PainterText, capitalStandsOnTheBaseLineWithItsHeight)
{
  // An H is 1493 of 2048 units high: 9.5 pels at 13, 23.3 at 32. The base line lies ascender pels below the top.
  struct Row {
    int height, top, bottom;
  } const rows[] = {{13, 3 + 13 - 9, 3 + 13}, {32, 3 + 30 - 23, 3 + 30}};
  for (Row const& row : rows) {
    Canvas canvas(60, 60, 32);
    Font const font(cfFont(row.height));
    canvas.painter().font(font.handle);
    cfDraw(canvas, "H", {5, 3, 5, 3});
    Rect const ink = inkOf(canvas);
    EXPECT_NEAR(ink.top, row.top, 1) << row.height;
    EXPECT_EQ(ink.bottom, row.bottom) << row.height;
    EXPECT_GE(ink.left, 5);
  }
}

TEST(PainterText, advancesAreWholePelsAndAddUp)
{
  Canvas canvas(10, 10, 32);
  Painter& p = canvas.painter();
  int sum = 0;
  for (char const c : std::string("Hamburg 0.5"))
    sum += p.textExtent(std::string(1, c)).w;
  EXPECT_EQ(p.textExtent("Hamburg 0.5").w, sum);
  // 1540 of 2048 units are 9.8 pels at 13.
  EXPECT_EQ(p.textExtent("H").w, 10);
}

TEST(PainterText, boldIsWiderAndSlantedLeansToTheRight)
{
  Canvas canvas(40, 40, 32);
  Font const bold(cfFont(24, true));
  FontDesc desc = cfFont(24);
  Font const plain(desc);
  desc.italic = true;
  Font const slanted(desc);
  canvas.painter().font(plain.handle);
  int const width = canvas.painter().textExtent("m").w;
  canvas.painter().font(bold.handle);
  EXPECT_GT(canvas.painter().textExtent("m").w, width);

  canvas.painter().font(slanted.handle);
  cfDraw(canvas, "l", {10, 4, 10, 4});
  Rect const ink = inkOf(canvas);
  int top = 0, bottom = 0;
  for (int x = 0; x < 40; ++x) {
    top = canvas.at(x, ink.top) ? x : top;
    bottom = canvas.at(x, ink.bottom - 1) ? x : bottom;
  }
  EXPECT_GT(top, bottom + 2);
}

TEST(PainterText, latinOneBytesHaveGlyphsAndControlsHaveNone)
{
  Canvas canvas(10, 10, 32);
  Painter& p = canvas.painter();
  for (int c = 0; c < 256; ++c) {
    bool const shows = (c >= 0x20 && c < 0x7F) || c >= 0xA0;
    if (c == '\t' || c == 0xAD)
      continue;
    EXPECT_EQ(p.textExtent(std::string(1, static_cast<char>(c))).w > 0, shows) << c;
  }
  EXPECT_EQ(p.textExtent("\xE4").w, p.textExtent("a").w);
}

TEST(PainterText, linesBreakAtLineFeedAndAtCarriageReturnLineFeed)
{
  Canvas canvas(60, 60, 32);
  Rect r{4, 5, 0, 0};
  EXPECT_EQ(canvas.painter().drawText("a\nbb\r\nc", r, calculate | noPrefix), 3 * 17);
  EXPECT_EQ(r, (Rect{4, 5, 4 + canvas.painter().textExtent("bb").w, 5 + 51}));
  EXPECT_EQ(canvas.painter().drawText("a\n", r, calculate | noPrefix), 17);
  EXPECT_EQ(canvas.painter().drawText("\n\n", r, calculate | noPrefix), 34);
  EXPECT_EQ(canvas.painter().drawText("", r, calculate | noPrefix), 0);
  EXPECT_EQ(inkOf(canvas).right, 0);  // calculating paints nothing
}

TEST(PainterText, secondLineLiesOneLineHeightLower)
{
  Canvas one(40, 60, 32), two(40, 60, 32);
  cfDraw(one, "Ab", {3, 4, 3, 4});
  EXPECT_EQ(cfDraw(two, "\nAb", {3, 4, 3, 4}), 34);
  Rect const a = inkOf(one), b = inkOf(two);
  EXPECT_EQ(b, (Rect{a.left, a.top + 17, a.right, a.bottom + 17}));
}

TEST(PainterText, centreAndRightLieAboutTheRectangle)
{
  Canvas left(120, 30, 32), middle(120, 30, 32), end(120, 30, 32);
  int const width = left.painter().textExtent("Hello").w;
  Rect const box{10, 2, 110, 28};
  cfDraw(left, "Hello", box);
  cfDraw(middle, "Hello", box, centre | noClip | noPrefix);
  cfDraw(end, "Hello", box, right | noClip | noPrefix);
  EXPECT_EQ(inkOf(middle).left - inkOf(left).left, (100 - width) / 2);
  EXPECT_EQ(inkOf(end).left - inkOf(left).left, 100 - width);
}

TEST(PainterText, inAnEmptyRectangleCentredTextLiesAboutItsXAndRightTextLeftOfIt)
{
  Canvas left(120, 30, 32), middle(120, 30, 32), end(120, 30, 32);
  int const width = left.painter().textExtent("Hello").w;
  cfDraw(left, "Hello", {60, 2, 60, 2});
  cfDraw(middle, "Hello", {60, 2, 60, 2}, centre | noClip | noPrefix);
  cfDraw(end, "Hello", {60, 2, 60, 2}, right | noClip | noPrefix);
  EXPECT_EQ(inkOf(left).left - inkOf(middle).left, (width + 1) / 2);
  EXPECT_EQ(inkOf(left).left - inkOf(end).left, width);
}

TEST(PainterText, withoutNoClipTheRectangleCutsAndEmptyShowsNothing)
{
  Canvas cut(60, 30, 32), whole(60, 30, 32);
  Rect const box{5, 2, 14, 14};
  cfDraw(cut, "WWW", box, noPrefix);
  cfDraw(whole, "WWW", box);
  for (int y = 0; y < 30; ++y)
    for (int x = 0; x < 60; ++x) {
      bool const in = x >= box.left && x < box.right && y >= box.top && y < box.bottom;
      ASSERT_EQ(cut.at(x, y), in ? whole.at(x, y) : 0u) << x << ' ' << y;
    }
  Canvas none(60, 30, 32);
  EXPECT_EQ(cfDraw(none, "WWW", {5, 2, 5, 2}, noPrefix), 17);
  EXPECT_EQ(inkOf(none).right, 0);
}

TEST(PainterText, prefixesCountUnlessTheyAreOff)
{
  Canvas canvas(10, 10, 32);
  Painter& p = canvas.painter();
  auto const width = [&](std::string_view text, unsigned flags) {
    Rect r;
    p.drawText(text, r, calculate | flags);
    return r.right;
  };
  EXPECT_EQ(width("&File", 0), width("File", noPrefix));
  EXPECT_EQ(width("a&&b", 0), width("a&b", noPrefix));
  EXPECT_EQ(width("&File", noPrefix), width("File", noPrefix) + p.textExtent("&").w);
  EXPECT_EQ(width("a&", 0), width("a", noPrefix));
}

TEST(PainterText, opaqueTextPaintsItsBoxAndCountsItTransparentTextItsInk)
{
  Canvas canvas(60, 40, 32);
  Painter& p = canvas.painter();
  Size const size = p.textExtent("il");
  Rect r{7, 9, 7, 9}, bounds;
  p.setBounds(nullptr, 5);
  p.textColors(white, 0x0000FF, true);
  p.drawText("il", r, noClip | noPrefix);
  EXPECT_EQ(inkOf(canvas), (Rect{7, 9, 7 + size.w, 9 + size.h}));
  EXPECT_EQ(p.getBounds(bounds, 1), 3u);
  EXPECT_EQ(bounds, (Rect{7, 9, 7 + size.w, 9 + size.h}));

  Canvas plain(60, 40, 32);
  plain.painter().setBounds(nullptr, 5);
  cfDraw(plain, "il", {7, 9, 7, 9});
  EXPECT_EQ(plain.painter().getBounds(bounds, 1), 3u);
  EXPECT_EQ(bounds, inkOf(plain));
}

TEST(PainterText, blankTransparentTextTouchesNothing)
{
  Canvas canvas(60, 40, 32);
  Rect bounds;
  canvas.painter().setBounds(nullptr, 5);
  cfDraw(canvas, "   ", {7, 9, 7, 9});
  EXPECT_EQ(canvas.painter().getBounds(bounds, 1), 1u);
}

TEST(PainterText, smoothFontsHaveGreyEdgesOnlyOnDeepSurfacesWithoutAKey)
{
  struct Row {
    int depth;
    bool keyed, grey;
  } const rows[] = {{8, false, false}, {15, false, false}, {16, false, false}, {24, false, true},
                    {32, false, true}, {24, true, false},  {32, true, false}};
  Font const font(cfFont(15, false, true)), hard(cfFont(15));
  Canvas reference(80, 30, 32);
  reference.painter().font(hard.handle);
  cfDraw(reference, "Smooth", {3, 3, 3, 3});
  for (Row const& row : rows) {
    Canvas canvas(80, 30, row.depth, row.keyed);
    canvas.painter().font(font.handle);
    cfDraw(canvas, "Smooth", {3, 3, 3, 3});
    std::vector<u32> const pels = canvas.pels();
    bool grey = false;
    u32 const full = row.depth == 8 ? 255 : row.depth == 15 ? 0x7FFF : row.depth == 16 ? 0xFFFF : 0xFFFFFF;
    for (u32 const pel : pels)
      grey = grey || (pel != 0 && pel != full);
    EXPECT_EQ(grey, row.grey) << row.depth << ' ' << row.keyed;
    if (!row.grey) {
      EXPECT_EQ(canvas.picture(0), reference.picture(0)) << row.depth;
    }
  }
}

TEST(PainterText, greyEdgesMixTextAndWhatLiesBelow)
{
  Canvas canvas(40, 30, 32);
  Font const font(cfFont(20, false, true));
  canvas.painter().font(font.handle);
  canvas.painter().fillRect({0, 0, 40, 30}, 0x0000FF);
  canvas.painter().textColors(0x00FF00, 0, false);
  Rect r{3, 3, 3, 3};
  canvas.painter().drawText("O", r, noClip | noPrefix);
  bool mixed = false;
  for (u32 const pel : canvas.pels()) {
    u32 const red = pel >> 16, green = pel >> 8 & 255;
    EXPECT_EQ(pel & 255, 0u);
    EXPECT_NEAR(static_cast<double>(red + green), 255, 1);
    mixed = mixed || (red > 30 && green > 30);
  }
  EXPECT_TRUE(mixed);
}

TEST(PainterText, unknownFamilyAndDeadHandleFallBackToTheBuiltInFace)
{
  Canvas builtIn(60, 30, 32), unknown(60, 30, 32), dead(60, 30, 32);
  FontDesc desc;
  desc.family = "No Such Family";
  Font const font(desc);
  HFONT const gone = graphicsObjects().createFont(desc);
  graphicsObjects().deleteFont(gone);
  unknown.painter().font(font.handle);
  dead.painter().font(gone);
  cfDraw(builtIn, "Text", {3, 3, 3, 3});
  cfDraw(unknown, "Text", {3, 3, 3, 3});
  cfDraw(dead, "Text", {3, 3, 3, 3});
  EXPECT_NE(inkOf(builtIn).right, 0);
  EXPECT_EQ(unknown.picture(0), builtIn.picture(0));
  EXPECT_EQ(dead.picture(0), builtIn.picture(0));
}

TEST(PainterText, manyFontsComeAndGoWhileOneIsHeld)
{
  Canvas canvas(200, 60, 32);
  Font const held(cfFont(14));
  canvas.painter().font(held.handle);
  int const width = canvas.painter().textExtent("held").w;
  for (int height = 5; height < 200; ++height) {
    Font const font(cfFont(height));
    Canvas other(10, 10, 32);
    other.painter().font(font.handle);
    EXPECT_GT(other.painter().textExtent("m").w, 0);
  }
  EXPECT_EQ(canvas.painter().textExtent("held").w, width);
}
