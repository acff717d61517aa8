// SDL's keys as virtual key codes.
#include "platform/portable/windows/sdl/key_codes.h"

#include <gtest/gtest.h>

#include <SDL.h>

using plat::portable::controlCharacter;
using plat::portable::virtualKey;

namespace {

SDL_Keysym key(SDL_Keycode sym, SDL_Scancode place = SDL_SCANCODE_UNKNOWN, unsigned mod = 0)
{
  SDL_Keysym k{};
  k.sym = sym;
  k.scancode = place;
  k.mod = static_cast<Uint16>(mod);
  return k;
}

}  // namespace

TEST(KeyCodes, namedKeysHaveTheirCodes)
{
  struct {
    SDL_Keycode sym;
    unsigned code;
  } const cases[] = {
      {SDLK_BACKSPACE, 0x08}, {SDLK_TAB, 0x09},        {SDLK_RETURN, 0x0D},    {SDLK_KP_ENTER, 0x0D},
      {SDLK_LSHIFT, 0x10},    {SDLK_RSHIFT, 0x10},     {SDLK_LCTRL, 0x11},     {SDLK_RCTRL, 0x11},
      {SDLK_LALT, 0x12},      {SDLK_RALT, 0x12},       {SDLK_PAUSE, 0x13},     {SDLK_CAPSLOCK, 0x14},
      {SDLK_ESCAPE, 0x1B},    {SDLK_SPACE, 0x20},      {SDLK_PAGEUP, 0x21},    {SDLK_PAGEDOWN, 0x22},
      {SDLK_END, 0x23},       {SDLK_HOME, 0x24},       {SDLK_LEFT, 0x25},      {SDLK_UP, 0x26},
      {SDLK_RIGHT, 0x27},     {SDLK_DOWN, 0x28},       {SDLK_INSERT, 0x2D},    {SDLK_DELETE, 0x2E},
      {SDLK_HELP, 0x2F},      {SDLK_APPLICATION, 0x5D}, {SDLK_KP_PLUS, 0x6B},  {SDLK_KP_MINUS, 0x6D},
      {SDLK_KP_MULTIPLY, 0x6A}, {SDLK_KP_DIVIDE, 0x6F}, {SDLK_F1, 0x70},       {SDLK_F10, 0x79},
      {SDLK_F12, 0x7B},       {SDLK_F13, 0x7C},        {SDLK_F24, 0x87},       {SDLK_NUMLOCKCLEAR, 0x90},
      {SDLK_SCROLLLOCK, 0x91}, {SDLK_SEMICOLON, 0xBA}, {SDLK_EQUALS, 0xBB},    {SDLK_COMMA, 0xBC},
      {SDLK_MINUS, 0xBD},     {SDLK_PERIOD, 0xBE},     {SDLK_SLASH, 0xBF},     {SDLK_BACKQUOTE, 0xC0},
      {SDLK_LEFTBRACKET, 0xDB}, {SDLK_BACKSLASH, 0xDC}, {SDLK_RIGHTBRACKET, 0xDD}, {SDLK_QUOTE, 0xDE},
      {SDLK_AUDIOMUTE, 0},
  };
  for (auto const& c : cases)
    EXPECT_EQ(virtualKey(key(c.sym)), c.code) << SDL_GetKeyName(c.sym);
}

TEST(KeyCodes, lettersAreTheirCapitals)
{
  EXPECT_EQ(virtualKey(key(SDLK_a)), 0x41u);
  EXPECT_EQ(virtualKey(key(SDLK_m)), 0x4Du);
  EXPECT_EQ(virtualKey(key(SDLK_z)), 0x5Au);
}

TEST(KeyCodes, lettersFollowTheLayoutAndNotThePlace)
{
  EXPECT_EQ(virtualKey(key(SDLK_y, SDL_SCANCODE_Z)), 0x59u);
}

TEST(KeyCodes, digitsAreFoundByTheirPlaceWhereTheyTypeSomethingElse)
{
  EXPECT_EQ(virtualKey(key(SDLK_0)), 0x30u);
  EXPECT_EQ(virtualKey(key(SDLK_9)), 0x39u);
  EXPECT_EQ(virtualKey(key(SDLK_AMPERSAND, SDL_SCANCODE_1)), 0x31u);
  EXPECT_EQ(virtualKey(key(0xE0, SDL_SCANCODE_0)), 0x30u);
}

TEST(KeyCodes, theKeypadTypesDigitsOnlyWithNumLock)
{
  struct {
    SDL_Keycode sym;
    unsigned number, motion;
  } const cases[] = {
      {SDLK_KP_0, 0x60, 0x2D}, {SDLK_KP_1, 0x61, 0x23}, {SDLK_KP_2, 0x62, 0x28},      {SDLK_KP_3, 0x63, 0x22},
      {SDLK_KP_4, 0x64, 0x25}, {SDLK_KP_5, 0x65, 0x0C}, {SDLK_KP_6, 0x66, 0x27},      {SDLK_KP_7, 0x67, 0x24},
      {SDLK_KP_8, 0x68, 0x26}, {SDLK_KP_9, 0x69, 0x21}, {SDLK_KP_PERIOD, 0x6E, 0x2E},
  };
  for (auto const& c : cases) {
    EXPECT_EQ(virtualKey(key(c.sym, SDL_SCANCODE_UNKNOWN, KMOD_NUM)), c.number) << SDL_GetKeyName(c.sym);
    EXPECT_EQ(virtualKey(key(c.sym)), c.motion) << SDL_GetKeyName(c.sym);
    EXPECT_EQ(virtualKey(key(c.sym, SDL_SCANCODE_UNKNOWN, KMOD_NUM | KMOD_LSHIFT)), c.motion);
  }
}

TEST(KeyCodes, someKeysTypeControlCharacters)
{
  EXPECT_EQ(controlCharacter(key(SDLK_RETURN), 0), 13u);
  EXPECT_EQ(controlCharacter(key(SDLK_KP_ENTER), 0), 13u);
  EXPECT_EQ(controlCharacter(key(SDLK_RETURN), 8), 10u);
  EXPECT_EQ(controlCharacter(key(SDLK_BACKSPACE), 0), 8u);
  EXPECT_EQ(controlCharacter(key(SDLK_BACKSPACE), 8), 127u);
  EXPECT_EQ(controlCharacter(key(SDLK_TAB), 4), 9u);
  EXPECT_EQ(controlCharacter(key(SDLK_ESCAPE), 0), 27u);
  EXPECT_EQ(controlCharacter(key(SDLK_a), 8), 1u);
  EXPECT_EQ(controlCharacter(key(SDLK_z), 12), 26u);
}

TEST(KeyCodes, otherKeysTypeNoneAndNoneWithAlt)
{
  EXPECT_EQ(controlCharacter(key(SDLK_a), 0), 0u);
  EXPECT_EQ(controlCharacter(key(SDLK_1), 8), 0u);
  EXPECT_EQ(controlCharacter(key(SDLK_RETURN), 32), 0u);
  EXPECT_EQ(controlCharacter(key(SDLK_a), 40), 0u);
}
