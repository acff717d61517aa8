#include "platform/portable/windows/sdl/key_codes.h"

#include "platform/messages.h"

#include <SDL.h>

namespace plat::portable {
namespace {

struct Row {
  SDL_Keycode key;
  unsigned code;
};

// Letters, digits and F keys are computed.
constexpr Row rows[] = {
    {SDLK_BACKSPACE, key::backspace}, {SDLK_TAB, key::tab}, {SDLK_CLEAR, key::clear}, {SDLK_RETURN, key::enter},
    {SDLK_KP_ENTER, key::enter}, {SDLK_RETURN2, key::enter}, {SDLK_LSHIFT, key::shift}, {SDLK_RSHIFT, key::shift},
    {SDLK_LCTRL, key::control}, {SDLK_RCTRL, key::control}, {SDLK_LALT, key::alt}, {SDLK_RALT, key::alt},
    {SDLK_MODE, key::alt}, {SDLK_PAUSE, key::pause}, {SDLK_CAPSLOCK, key::capsLock}, {SDLK_ESCAPE, key::escape},
    {SDLK_SPACE, key::space}, {SDLK_PAGEUP, key::pageUp}, {SDLK_PAGEDOWN, key::pageDown}, {SDLK_END, key::end},
    {SDLK_HOME, key::home}, {SDLK_LEFT, key::left}, {SDLK_UP, key::up}, {SDLK_RIGHT, key::right},
    {SDLK_DOWN, key::down}, {SDLK_SELECT, key::select}, {SDLK_EXECUTE, key::execute},
    {SDLK_PRINTSCREEN, key::printScreen}, {SDLK_INSERT, key::insert}, {SDLK_DELETE, key::remove},
    {SDLK_HELP, key::help}, {SDLK_LGUI, key::leftSystem}, {SDLK_RGUI, key::rightSystem},
    {SDLK_APPLICATION, key::application}, {SDLK_SLEEP, key::sleep}, {SDLK_KP_MULTIPLY, key::padMultiply},
    {SDLK_KP_PLUS, key::padAdd}, {SDLK_KP_MINUS, key::padSubtract}, {SDLK_KP_DIVIDE, key::padDivide},
    {SDLK_NUMLOCKCLEAR, key::numLock}, {SDLK_SCROLLLOCK, key::scrollLock}, {SDLK_SEMICOLON, key::semicolon},
    {SDLK_EQUALS, key::plus}, {SDLK_PLUS, key::plus}, {SDLK_COMMA, key::comma}, {SDLK_MINUS, key::minus},
    {SDLK_PERIOD, key::period}, {SDLK_SLASH, key::slash}, {SDLK_BACKQUOTE, key::backquote},
    {SDLK_LEFTBRACKET, key::leftBracket}, {SDLK_BACKSLASH, key::backslash}, {SDLK_RIGHTBRACKET, key::rightBracket},
    {SDLK_QUOTE, key::quote}, {SDLK_HASH, key::quote},
};

// Of the keypad: with Num Lock, and without.
struct PadRow {
  SDL_Keycode key;
  unsigned number, motion;
};

constexpr PadRow padRows[] = {
    {SDLK_KP_0, key::pad0, key::insert}, {SDLK_KP_1, key::pad0 + 1, key::end}, {SDLK_KP_2, key::pad0 + 2, key::down},
    {SDLK_KP_3, key::pad0 + 3, key::pageDown}, {SDLK_KP_4, key::pad0 + 4, key::left},
    {SDLK_KP_5, key::pad0 + 5, key::clear}, {SDLK_KP_6, key::pad0 + 6, key::right},
    {SDLK_KP_7, key::pad0 + 7, key::home}, {SDLK_KP_8, key::pad0 + 8, key::up},
    {SDLK_KP_9, key::pad0 + 9, key::pageUp}, {SDLK_KP_PERIOD, key::padDecimal, key::remove},
};

// The upper row of digits also where it types other characters.
unsigned digitAt(SDL_Scancode place)
{
  if (place == SDL_SCANCODE_0)
    return '0';
  return place >= SDL_SCANCODE_1 && place <= SDL_SCANCODE_9 ? static_cast<unsigned>(place - SDL_SCANCODE_1) + '1' : 0;
}

}  // namespace

unsigned virtualKey(SDL_Keysym const& key)
{
  SDL_Keycode const sym = key.sym;
  if (sym >= SDLK_a && sym <= SDLK_z)
    return static_cast<unsigned>(sym - SDLK_a) + 'A';
  if (sym >= SDLK_0 && sym <= SDLK_9)
    return static_cast<unsigned>(sym);
  if (unsigned const digit = digitAt(key.scancode))
    return digit;
  if (sym >= SDLK_F1 && sym <= SDLK_F12)
    return static_cast<unsigned>(sym - SDLK_F1) + key::f1;
  if (sym >= SDLK_F13 && sym <= SDLK_F24)
    return static_cast<unsigned>(sym - SDLK_F13) + key::f13;
  for (PadRow const& row : padRows)
    if (row.key == sym)
      return (key.mod & KMOD_NUM) && !(key.mod & KMOD_SHIFT) ? row.number : row.motion;
  for (Row const& row : rows)
    if (row.key == sym)
      return row.code;
  return 0;
}

unsigned controlCharacter(SDL_Keysym const& key, unsigned mods)
{
  if (mods & held::alt)
    return 0;
  bool const control = mods & held::control;
  switch (key.sym) {
  case SDLK_RETURN:
  case SDLK_RETURN2:
  case SDLK_KP_ENTER:
    return control ? '\n' : '\r';
  case SDLK_BACKSPACE:
    return control ? 127 : '\b';
  case SDLK_TAB:
    return '\t';
  case SDLK_ESCAPE:
    return 27;
  default:
    return control && key.sym >= SDLK_a && key.sym <= SDLK_z ? static_cast<unsigned>(key.sym - SDLK_a) + 1 : 0;
  }
}

}  // namespace plat::portable
