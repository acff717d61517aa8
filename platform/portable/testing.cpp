#include "platform/testing.h"

#include "platform/messages.h"
#include "platform/portable/windows/core.h"
#include "platform/portable/windows/menus.h"

namespace plat::testing {
namespace {

portable::Core& core() { return portable::Core::instance(); }

}  // namespace

LResult send(HWND window, unsigned message, WParam wParam, LParam lParam)
{
  return core().send(window, message, wParam, lParam);
}

void mouse(HWND window, unsigned message, Point client, WParam wParam)
{
  u32 const at = u32(static_cast<u16>(client.y)) << 16 | static_cast<u16>(client.x);
  core().send(window, message, wParam, static_cast<LParam>(at));
}

void fireTimer(HWND window, uptr id) { core().send(window, msg::timer, id, 0); }

void drain() { core().drain(); }

u32 pel(HWND window, Point client) { return core().shownPel(window, client); }

std::vector<u32> shot(HWND window, Size& size) { return core().shownPels(window, size); }

void answerBox(int result, std::function<void()> meanwhile)
{
  portable::menus().answerBox(result, std::move(meanwhile));
}

void answerMenu(unsigned id) { portable::menus().answerMenu(id); }

std::string title(HWND window) { return core().title(window); }

namespace {

std::vector<MenuState> statesOf(std::vector<portable::MenuItem> const& items)
{
  std::vector<MenuState> states;
  for (portable::MenuItem const& item : items)
    states.push_back({item.popup ? 0 : item.id, item.text, item.enabled, item.checked, item.radio});
  return states;
}

}  // namespace

std::vector<MenuState> menuStates(HMENU menu) { return statesOf(portable::menus().items(menu)); }

std::vector<MenuState> trackedMenu() { return statesOf(portable::menus().lastMenu()); }

std::string boxText() { return portable::menus().lastBox().first; }

std::string boxCaption() { return portable::menus().lastBox().second; }

ScrollState scrollState(HWND window, int bar)
{
  portable::ScrollBar const state = core().scrollBar(window, bar);
  return {state.shown(), !state.disabled, state.min, state.max, state.pos, state.page};
}

HCURSOR cursor() { return core().currentCursor(); }

HCURSOR windowCursor(HWND window) { return core().cursorOf(window); }

void pointer(Point screen, unsigned buttons, unsigned mods)
{
  core().pointer({}, screen, buttons, mods, 0);
  core().drain();
}

void wheel(Point screen, int turn, unsigned mods)
{
  core().wheel({}, screen, turn, mods);
  core().drain();
}

void key(unsigned virtualKey, bool down, unsigned mods, bool repeat)
{
  core().key(virtualKey, down, repeat, mods);
  core().drain();
}

void character(u8 value)
{
  core().character(value);
  core().drain();
}

void advance(unsigned ms) { core().advance(ms); }

void screen(Size size, int depth) { core().changeScreen(size, depth); }

}  // namespace plat::testing
