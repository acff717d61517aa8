// Menus, tool bars, strings and cursor pictures by number: built-in tables, so that no resource compiler is needed.
#pragma once

#include "platform/types.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace plat {

// An entry with entries of its own is a popup; one with neither id nor entries is a line. "&" marks the mnemonic.
struct MenuEntry {
  unsigned id = 0;
  std::string text;
  std::vector<MenuEntry> entries;
};

// Rows of text, one character a pel: 'X' black, '.' white, 'o' grey, anything else see-through.
using Picture = std::span<std::string_view const>;

// Id 0 is a gap between groups. The picture has 15 rows of 16 pels.
struct ToolButton {
  unsigned id = 0;
  std::string_view tip;
  Picture picture;
};

struct CursorPicture {
  Point hotSpot;
  Picture picture;
};

// The numbers in use: menu and tool bar 628, strings 501, 506 and 509, cursors 600 to 606. Unknown numbers give null.
// Menu 628 has the popups 0 console, 1 tools and 2 view.
class ResourceSource {
public:
  virtual ~ResourceSource() = default;

  virtual MenuEntry const* menu(int id) const = 0;
  virtual std::vector<ToolButton> const* toolBar(int id) const = 0;
  virtual std::string const* string(int id) const = 0;
  virtual CursorPicture const* cursor(int id) const = 0;
};

ResourceSource& builtInResources();

}  // namespace plat
