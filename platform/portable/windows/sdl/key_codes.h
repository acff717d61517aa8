// Keys of SDL as the virtual key codes of messages.
#pragma once

struct SDL_Keysym;

namespace plat::portable {

unsigned virtualKey(SDL_Keysym const&);  // 0 for keys that have none

// What pressing the key types although SDL sends no text for it: Enter, Backspace, Tab, Escape, Control with a letter.
// 0 for none. Mods: 8 Control, 32 Alt.
unsigned controlCharacter(SDL_Keysym const&, unsigned mods);

}  // namespace plat::portable
