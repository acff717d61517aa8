// Windows, messages, timers, cursors, menus and message boxes of the machine.
// Rectangles of child windows lie in the parent's client area, those of top-level windows on the screen. Message
// numbers and the layout of their parameters are the same on every system. See each group for the threads it may be
// called from; a call that needs the window's thread and comes from another is handed over to it.
#pragma once

#include "platform/resources.h"
#include "platform/types.h"

#include <functional>
#include <string>
#include <string_view>

namespace plat {

class GraphicsObjects;  // platform/objects.h

struct WindowDesc {
  HWND parent = {};  // with the child style the parent, else the owner
  std::string title;
  u32 style = 0, exStyle = 0;
  Rect rect;
  i32 id = 0;
  MessageProc proc = {};  // null: the default procedure
};

// Mask: of scroll::Mask in messages.h. disableUnneeded: a bar with nothing to scroll is disabled instead of hidden.
struct ScrollInfo {
  unsigned mask = 0;
  i32 min = 0, max = 0;
  u32 page = 0;
  i32 pos = 0;
};

class WindowSystem {
public:
  virtual ~WindowSystem() = default;

  // The window's thread. A procedure that answers -1 to msg::create makes create fail.
  virtual HWND create(WindowDesc const&) = 0;
  virtual bool destroy(HWND) = 0;
  virtual bool isWindow(HWND) = 0;
  virtual HWND parent(HWND) = 0;  // null for a top-level window
  virtual HWND desktop() = 0;
  virtual bool onOwnThread(HWND) = 0;

  // Runs on the window's thread, in turn with posted messages; dropped together with the window. Any thread.
  virtual void post(HWND, std::function<void()>) = 0;
  virtual MessageProc subclass(HWND, MessageProc) = 0;  // returns the former
  // A null procedure stands for the default one.
  virtual LResult callProc(MessageProc, HWND, unsigned message, WParam, LParam) = 0;
  virtual LResult send(HWND, unsigned message, WParam, LParam) = 0;  // from another thread: waits for the window's
  virtual bool postMessage(HWND, unsigned message, WParam, LParam) = 0;

  virtual Rect clientRect(HWND) = 0;  // upper left corner is (0, 0)
  virtual Rect windowRect(HWND) = 0;  // on the screen
  virtual Point clientToScreen(HWND, Point) = 0;
  // Null: stay. Show: one of plat::show; any other number shows and activates.
  virtual void place(HWND, Rect const*, int show) = 0;
  virtual void center(HWND) = 0;
  virtual bool visible(HWND) = 0;
  virtual u32 style(HWND) = 0;
  virtual u32 exStyle(HWND) = 0;
  virtual Rect frameRect(Rect client, u32 style, bool menu, u32 exStyle) = 0;
  // Index: one of plat::metric.
  virtual int metric(int index) = 0;
  virtual int desktopDepth() = 0;  // 8, 15, 16, 24 or 32

  virtual void invalidate(HWND, Rect const*, bool erase) = 0;  // any thread; null: all of the client area
  virtual void update(HWND) = 0;                               // sends eraseBackground and paint now if they are due
  virtual Rect updateRect(HWND) = 0;
  virtual void validate(HWND, Rect const*) = 0;

  virtual HDC getDC(HWND) = 0;
  virtual void releaseDC(HWND, HDC) = 0;

  virtual HWND setCapture(HWND) = 0;  // returns the former capture window
  virtual HWND capture() = 0;  // the capture window; null: none
  virtual void releaseCapture() = 0;
  virtual void clipCursor(Rect const* screen) = 0;
  virtual Point cursorPos() = 0;
  virtual void setFocus(HWND) = 0;

  virtual void setTimer(HWND, uptr id, unsigned ms) = 0;
  virtual void killTimer(HWND, uptr id) = 0;

  virtual HCURSOR loadCursor(int id) = 0;  // null: no such cursor
  virtual void setCursor(HCURSOR) = 0;
  virtual HCURSOR classCursor(HWND, HCURSOR) = 0;  // returns the former

  // Bar: one of plat::bar.
  virtual void showScrollBar(HWND, int bar, bool) = 0;
  virtual void setScrollPos(HWND, int bar, i32 pos, bool redraw) = 0;
  virtual void setScrollInfo(HWND, int bar, ScrollInfo const&, bool redraw) = 0;
};

class MenuSystem {
public:
  virtual ~MenuSystem() = default;

  virtual HMENU load(int id) = 0;  // null: no such menu
  virtual void destroy(HMENU) = 0;
  virtual HMENU sub(HMENU, int index) = 0;
  virtual HMENU system(HWND) = 0;  // owned by the window; menu::closeItem closes
  virtual int count(HMENU) = 0;
  virtual unsigned itemId(HMENU, int index) = 0;  // 0 for a line, all bits set for a popup
  virtual void enable(HMENU, unsigned id, bool) = 0;
  virtual void check(HMENU, unsigned id, bool) = 0;
  virtual void radio(HMENU, unsigned first, unsigned last, unsigned id) = 0;

  // Blocks until the operator has chosen or dismissed. Sends msg::initPopup to the owner first and posts msg::command
  // to it. The window's thread, with no lock held that a procedure may want.
  virtual void track(HMENU, Point screen, HWND owner) = 0;
  // Blocks; other windows are served meanwhile. Low four bits of flags: of box::Buttons; above box::defaultShift the
  // number of the button that has the focus. The result is one of box::Choice.
  virtual int messageBox(HWND owner, std::string const& text, std::string const& caption, unsigned flags) = 0;
};

struct Platform {
  WindowSystem& windows;
  MenuSystem& menus;
  GraphicsObjects& objects;
  ResourceSource& resources;
};

Platform& platform();

// To the debugger on Windows; elsewhere to the sink of the tests, or nowhere.
void debugText(std::string_view);

}  // namespace plat
