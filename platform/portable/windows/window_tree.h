// The records of all windows: kinship, z-order, rectangles, and from these what of a window can be seen. Plain data: it
// sends no message and takes no lock; the core guards it.
#pragma once

#include "platform/portable/raster/handle_table.h"
#include "platform/portable/raster/region.h"
#include "platform/portable/windows/backing.h"
#include "platform/portable/windows/video.h"

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace plat::portable {

constexpr i32 barExtent = 16;  // width of a vertical, height of a horizontal scroll bar, length of its arrows
constexpr i32 menuHeight = 20;  // of the bar of a frame window

struct ScrollBar {
  bool wanted = false;
  bool unneeded = false;  // hidden since there is nothing to scroll
  bool disabled = false;
  i32 min = 0, max = 100, pos = 0;
  u32 page = 0;
  bool tracking = false;  // the thumb is held and stands at trackPos
  i32 trackPos = 0;

  bool shown() const { return wanted && !unneeded; }
  i32 lastPos() const;  // the largest position
  friend bool operator==(ScrollBar const&, ScrollBar const&) = default;
};

struct Window {
  HWND handle = {};
  Window* parent = nullptr;  // null for a top-level window
  std::vector<Window*> kids;  // frontmost first
  HWND owner = {};          // a top-level window that goes when its owner goes
  Rect rect;                // in the parent's client area; of a top-level window on the screen
  u32 style = 0, exStyle = 0;
  i32 id = 0;
  std::string title;
  MessageProc proc = {};
  HCURSOR cursor = {};
  Region update;        // client pels that await msg::paint
  bool eraseDue = false;  // and msg::eraseBackground before it
  ScrollBar bars[2];    // horizontal, vertical
  bool barsDue = false;  // they await painting
  bool glassDue = false;  // there was no memory for the backing
  bool topmost = false;  // stays in front of its siblings
  bool dying = false;
  bool attached = false;  // the real window is someone else's
  std::uint64_t paintRound = 0;

  // Of a top-level window, once it has been shown.
  std::shared_ptr<Backing> backing;
  Ptr<VideoWindow> video;
  HWND lastFocus = {};
  HMENU systemMenu = {};

  // The visible part of the client area in backing pels, as of a state of the tree.
  std::shared_ptr<Region const> visible;
  std::uint64_t visibleVersion = 0;

  bool has(u32 bits) const { return (style & bits) == bits; }
  Size size() const { return {rect.width(), rect.height()}; }
};

class WindowTree {
public:
  WindowTree();

  HWND desktop() const { return desktop_; }
  Window* find(HWND handle)
  {
    Ptr<Window>* const found = table_.find(handle);
    return found ? found->get() : nullptr;
  }
  Window* add(Window* parent);  // behind its siblings; a new top-level window in front; null when there are too many
  Ptr<Window> remove(HWND);
  std::vector<Window*> const& tops() const { return tops_; }  // frontmost first
  void toFront(Window&);                                    // behind kids that stay in front
  std::vector<Window*> all() const;                         // parents before kids, frontmost first

  // Counts whatever changes the visible part of some window.
  std::uint64_t version() const { return version_.load(); }  // any thread
  void changed() { ++version_; }

  static Window* top(Window&);
  static bool isIn(Window const* inner, Window const& outer);
  static bool shown(Window const&);           // it and all its ancestors are visible, none minimized
  static Rect clientRect(Window const&);      // at (0, 0)
  static Rect barRect(Window const&, int bar);  // in client coordinates; empty if not shown
  static Point originInBacking(Window const&);  // of the client area
  static Point originOnScreen(Window const&);

  static Region wholeVisible(Window const&);  // client area, bars and kids; in backing pels
  std::shared_ptr<Region const> const& visibleClient(Window&) const;

  // The deepest visible window at a place of the screen below one top-level window; null outside of it.
  static Window* hit(Window& top, Point screen);

  // Adds a rectangle (backing pels) of a window and of its kids to what has to be painted again.
  void invalidateTree(Window&, Rect const&) const;

private:
  std::vector<Window*>& siblings(Window& w) { return w.parent ? w.parent->kids : tops_; }

  HandleTable<HWND, Ptr<Window>> table_;
  std::vector<Window*> tops_;
  HWND desktop_;
  std::atomic<std::uint64_t> version_ = 1;
};

}  // namespace plat::portable
