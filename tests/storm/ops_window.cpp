// Operations on windows, the screen and the device, and the operator's hand.
#include "tests/storm/noisy.h"

namespace {

using enum StormGroup;
using enum StormPlace;
using Op = StormOp const&;

plat::WindowSystem& windowSystem() { return plat::platform().windows; }

void resizeWindow(StormStage& s, Op o)
{
  HWND const w = s.window(o.e);
  if (!w)
    return;
  plat::i32 const width = o.c % 16 == 0 ? 0 : 1 + o.a % 60, height = o.c % 16 == 1 ? 0 : 1 + o.b % 45;
  plat::Rect const r{o.d % 9, o.d / 9 % 9, o.d % 9 + width, o.d / 9 % 9 + height};
  windowSystem().place(w, &r, -1);
}

void showWindow(StormStage& s, Op o)
{
  static int const hows[] = {0, 5, 4, 6, 9, 5, 9, 5, 5, 9, 5, 5, 4, 9, 5, 5};
  if (HWND const w = s.window(o.e))
    windowSystem().place(w, nullptr, hows[o.a % 16]);
}

void exposeWindow(StormStage& s, Op o)
{
  HWND const w = s.window(o.e);
  if (!w)
    return;
  plat::Rect const r{o.a % 30, o.b % 20, o.a % 30 + o.c % 20, o.b % 20 + o.d % 20};
  windowSystem().invalidate(w, &r, o.d % 2 != 0);
}

void bars(StormStage& s, Op o)
{
  NoisyDisplay* const d = s.display(o.e);
  if (!d)
    return;
  if (o.a % 3 == 0)
    return d->showScrollBar(o.b % 2 != 0, o.b / 2 % 2 != 0);
  if (d->window())
    plat::testing::send(d->window(), 276 + o.a % 2u, static_cast<plat::WParam>(o.b % 8 | o.c << 16), 0);
}

void makeWindow(StormStage& s, Op o) { s.makeWindow(o.a, o.b); }

void destroyWindow(StormStage& s, Op o)
{
  if (HWND const w = s.window(o.e))
    windowSystem().destroy(w);
}

// What a display's surface doesn't reach, as the screen is smaller than the window, is painted with the next message.
void coverMargins(StormStage& s, HWND w)
{
  if (w && !s.on(margins) && windowSystem().isWindow(w))
    windowSystem().invalidate(w, nullptr, false);
}

// A display goes to another window, seldom to one where another stands: pictures of shared windows are not compared.
void replace(StormStage& s, Op o)
{
  NoisyDisplay* const d = s.display(o.e);
  HWND const w = o.a % 16 == 0 ? nullptr : s.window(o.b);
  if (!d)
    return;
  for (unsigned i = 0; i < StormStage::kDisplays && w; ++i)
    if (NoisyDisplay const* const other = s.display(i))
      if (other != d && other->window() == w && !(s.on(StormGroup::shared) && o.c % 8 == 0))
        return;
  d->window(w);
  coverMargins(s, w);
}

void makeDisplay(StormStage& s, Op o)
{
  HWND const w = o.a % 16 == 0 ? nullptr : s.window(o.b);
  for (unsigned i = 0; i < StormStage::kDisplays && w; ++i)
    if (NoisyDisplay const* const other = s.display(i))
      if (other->window() == w)
        return;
  s.makeDisplay(w);
  coverMargins(s, w);
}

void deleteDisplay(StormStage& s, Op o) { delete s.display(o.e); }

void sharedOp(StormStage& s, Op o)
{
  if (NoisyDisplay* const d = s.display(o.e))
    if (d->window())
      s.makeDisplay(d->window());
}

void screenOp(StormStage& s, Op o)
{
  static plat::Size const sizes[] = {{200, 150}, {64, 48}, {40, 30}, {20, 15}, {7, 5}, {1, 1}, {120, 33}, {200, 150}};
  s.screen(sizes[o.a % 8], s.screenDepth());
}

void depthOp(StormStage& s, Op o)
{
  static int const depths[] = {8, 15, 16, 24, 32, 32};
  s.screen(s.screenSize(), depths[o.a % 6]);
}

void loseOp(StormStage& s, Op o)
{
  plat::testing::lose(o.a % 3 ? nullptr : s.window(o.e));
}

void failOp(StormStage& s, Op o)
{
  static std::uint32_t const codes[] = {0x887601C2u, 0x88760082u, 0x8876021Cu, 0x80004005u};
  s.trouble();
  if (o.a % 8 == 0)
    return plat::testing::exclusive(true);
  plat::testing::failNext(static_cast<plat::testing::Op>(o.a % static_cast<unsigned>(plat::testing::Op::count)),
                          plat::result(codes[o.b % 4]), 1 + o.c % 3);
}

// The next operation meets a device in trouble, too.
void failAndDo(StormStage& s, Op o)
{
  StormOp const next{o.d, o.e, o.c, o.b, o.a, 0};
  // An overlay that was asked for while a call of the device failed stays frozen after that.
  if (cfRow(next).group == StormGroup::overlay)
    return;
  failOp(s, o);
  if (cfRow(next).run != failAndDo)
    s.perform(next);
}

void touch(StormStage& s, unsigned mods)
{
  if (s.nested() && !s.on(nestedInput))
    return;
  HWND const w = s.window(0);
  plat::Point const at = w ? windowSystem().clientToScreen(w, {0, 0}) : plat::Point{};
  plat::testing::pointer({at.x + static_cast<plat::i32>(s.pointerX), at.y + static_cast<plat::i32>(s.pointerY)}, s.buttons, mods);
}

void pointer(StormStage& s, Op o)
{
  s.pointerX = o.a % 64 - 4L;
  s.pointerY = o.b % 48 - 4L;
  touch(s, o.c % 4 == 0 ? 4u : o.c % 4 == 1 ? 8u : 0u);
}

void button(StormStage& s, Op o)
{
  static unsigned const which[] = {1, 1, 1, 1, 2, 16};
  s.buttons ^= s.buttons ? s.buttons : which[o.a % 6];
  touch(s, o.c % 4 == 0 ? 4u : o.c % 4 == 1 ? 8u : 0u);
}

void dragOp(StormStage& s, Op o)
{
  s.buttons = 0;
  pointer(s, o);
  s.buttons = 1;
  touch(s, 0);
  s.pointerX = o.c % 50;
  s.pointerY = o.d % 40;
  touch(s, 0);
}

void otherInput(StormStage& s, Op o)
{
  if (s.nested() && !s.on(nestedInput))
    return;
  switch (o.a % 5) {
  case 0:
    return plat::testing::wheel({o.b % 60, o.c % 40}, o.d % 2 ? 120 : -120, 0);
  case 1:
    return plat::testing::key(o.b % 2 ? 17 : o.c, o.d % 2 != 0, 0, o.d % 16 == 0);
  case 2:
    return plat::testing::character(o.b);
  case 3:
    return plat::testing::advance(o.b * 8u);
  default:
    if (HWND const w = s.window(o.e)) {
      if (o.b % 2)
        windowSystem().setFocus(w);
      else
        windowSystem().setCapture(w);
    }
  }
}

void postedCommand(StormStage& s, Op o)
{
  static unsigned const ids[] = {40502, 40503, 40504, 40510, 40511, 40507, 40505, 40506};
  if (HWND const w = s.window(o.e))
    windowSystem().postMessage(w, 273, ids[o.a % (s.on(fractions) ? 8 : 6)], 0);
}

}  // namespace

void cfAddWindowOps(std::vector<StormRow>& rows)
{
  rows.insert(rows.end(), {
      {"resize", windows, notWhilePainting, 8, resizeWindow},
      {"show", windows, notWhilePainting, 6, showWindow},
      {"expose", windows, anywhere, 4, exposeWindow},
      {"bars", windows, notWhilePainting, 3, bars},
      {"makeWindow", binding, notWhilePainting, 8, makeWindow},
      {"destroyWindow", binding, outermost, 1, destroyWindow},
      {"replace", binding, outermost, 8, replace},
      {"makeDisplay", displays, notWhilePainting, 24, makeDisplay},
      {"deleteDisplay", displays, outermost, 2, deleteDisplay},
      {"share", StormGroup::shared, notWhilePainting, 1, sharedOp},
      {"screen", screens, outermost, 4, screenOp},
      {"depth", depths, outermost, 4, depthOp},
      {"lose", lost, anywhere, 6, loseOp},
      {"fail", failing, outermost, 3, failOp},
      {"failAndDo", failing, outermost, 5, failAndDo},
      {"pointer", input, notWhilePainting, 14, pointer},
      {"button", input, notWhilePainting, 12, button},
      {"drag", input, notWhilePainting, 36, dragOp},
      {"input", input, notWhilePainting, 6, otherInput},
      {"command", input, notWhilePainting, 3, postedCommand},
      {"destroyWindowInHook", deaths, notWhilePainting, 0, destroyWindow},
      {"replaceInHook", deaths, notWhilePainting, 0, replace},
      {"deleteDisplayInHook", deaths, notWhilePainting, 0, deleteDisplay},
      {"destroyWindowInPaint", paintDeaths, anywhere, 0, destroyWindow},
      {"replaceInPaint", paintDeaths, anywhere, 0, replace},
      {"deleteDisplayInPaint", paintDeaths, anywhere, 0, deleteDisplay},
  });
}
