#include "platform/portable/windows/sdl/key_codes.h"

#include <SDL.h>

namespace plat::portable {
namespace {

constexpr unsigned controlMod = 8, altMod = 32;

struct Row {
  SDL_Keycode key;
  unsigned code;
};

// Letters, digits and F keys are computed.
constexpr Row rows[] = {
    {SDLK_BACKSPACE, 8},     {SDLK_TAB, 9},          {SDLK_CLEAR, 12},       {SDLK_RETURN, 13},
    {SDLK_KP_ENTER, 13},     {SDLK_RETURN2, 13},     {SDLK_LSHIFT, 16},      {SDLK_RSHIFT, 16},
    {SDLK_LCTRL, 17},        {SDLK_RCTRL, 17},       {SDLK_LALT, 18},        {SDLK_RALT, 18},
    {SDLK_MODE, 18},         {SDLK_PAUSE, 19},       {SDLK_CAPSLOCK, 20},    {SDLK_ESCAPE, 27},
    {SDLK_SPACE, 32},        {SDLK_PAGEUP, 33},      {SDLK_PAGEDOWN, 34},    {SDLK_END, 35},
    {SDLK_HOME, 36},         {SDLK_LEFT, 37},        {SDLK_UP, 38},          {SDLK_RIGHT, 39},
    {SDLK_DOWN, 40},         {SDLK_SELECT, 41},      {SDLK_EXECUTE, 43},     {SDLK_PRINTSCREEN, 44},
    {SDLK_INSERT, 45},       {SDLK_DELETE, 46},      {SDLK_HELP, 47},        {SDLK_LGUI, 91},
    {SDLK_RGUI, 92},         {SDLK_APPLICATION, 93}, {SDLK_SLEEP, 95},       {SDLK_KP_MULTIPLY, 106},
    {SDLK_KP_PLUS, 107},     {SDLK_KP_MINUS, 109},   {SDLK_KP_DIVIDE, 111},  {SDLK_NUMLOCKCLEAR, 144},
    {SDLK_SCROLLLOCK, 145},  {SDLK_SEMICOLON, 186},  {SDLK_EQUALS, 187},     {SDLK_PLUS, 187},
    {SDLK_COMMA, 188},       {SDLK_MINUS, 189},      {SDLK_PERIOD, 190},     {SDLK_SLASH, 191},
    {SDLK_BACKQUOTE, 192},   {SDLK_LEFTBRACKET, 219}, {SDLK_BACKSLASH, 220}, {SDLK_RIGHTBRACKET, 221},
    {SDLK_QUOTE, 222},       {SDLK_HASH, 222},
};

// Of the keypad: with Num Lock, and without.
struct PadRow {
  SDL_Keycode key;
  unsigned number, motion;
};

constexpr PadRow padRows[] = {
    {SDLK_KP_0, 96, 45},  {SDLK_KP_1, 97, 35},  {SDLK_KP_2, 98, 40},  {SDLK_KP_3, 99, 34},
    {SDLK_KP_4, 100, 37}, {SDLK_KP_5, 101, 12}, {SDLK_KP_6, 102, 39}, {SDLK_KP_7, 103, 36},
    {SDLK_KP_8, 104, 38}, {SDLK_KP_9, 105, 33}, {SDLK_KP_PERIOD, 110, 46},
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
    return static_cast<unsigned>(sym - SDLK_F1) + 112;
  if (sym >= SDLK_F13 && sym <= SDLK_F24)
    return static_cast<unsigned>(sym - SDLK_F13) + 124;
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
  if (mods & altMod)
    return 0;
  bool const control = mods & controlMod;
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
