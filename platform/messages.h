// The shared vocabulary of windows: every message, style, key, scroll code, cursor, menu flag and metric by name. The
// numbers are the same on every system and stand nowhere else. Each group is a namespace of plain constants, so that a
// message stays an unsigned number that an application may extend: `case plat::msg::size:`.
#pragma once

#include "platform/types.h"

namespace plat {

// Messages to a window's procedure.
namespace msg {
enum Message : unsigned {
  create = 1,
  destroy = 2,  // sent before the window goes, its kids still standing
  move = 3,     // client origin: x in the low word, y in the high one
  size = 5,     // client size; wParam is one of plat::sized
  activate = 6,
  setFocus = 7,
  killFocus = 8,
  paint = 15,
  close = 16,
  eraseBackground = 20,
  show = 24,
  setCursor = 32,
  minMaxInfo = 36,
  displayChange = 126,
  destroyed = 130,  // the last message of a window
  keyDown = 256,    // wParam one of plat::key
  keyUp = 257,
  character = 258,
  systemKeyDown = 260,  // with Alt held
  systemKeyUp = 261,
  command = 273,  // the id in wParam's low word
  timer = 275,
  hScroll = 276,  // one of plat::scroll in wParam's low word, the position in the high one
  vScroll = 277,
  initPopup = 279,
  mouseMove = 512,
  leftDown = 513,
  leftUp = 514,
  leftDouble = 515,
  rightDown = 516,
  rightUp = 517,
  rightDouble = 518,
  middleDown = 519,
  middleUp = 520,
  middleDouble = 521,
  wheel = 522,  // the turn in wParam's high word, wheelNotch a notch; lParam is the place on the screen
  captureChanged = 533,
  queryNewPalette = 783,
  paletteChanged = 785,
};
constexpr int wheelNotch = 120;
constexpr LParam contextBit = LParam(1) << 29;  // of a key message: Alt is held
constexpr LParam repeatBit = LParam(1) << 30;   // the key was down before
constexpr LParam releaseBit = LParam(1) << 31;
}  // namespace msg

// wParam of msg::size.
namespace sized {
enum Size : unsigned { restored = 0, minimized = 1, maximized = 2 };
}

// Buttons and keys that are held, as in wParam of a mouse message.
namespace held {
enum Held : unsigned {
  left = 1,
  right = 2,
  shift = 4,
  control = 8,
  middle = 16,
  alt = 32,  // for test hands alone; messages don't carry it
};
constexpr unsigned messageBits = left | right | shift | control | middle;
}  // namespace held

// Virtual keys. Letters and digits have the codes of their capital characters.
namespace key {
enum Key : unsigned {
  backspace = 8,
  tab = 9,
  clear = 12,
  enter = 13,
  shift = 16,
  control = 17,
  alt = 18,
  pause = 19,
  capsLock = 20,
  escape = 27,
  space = 32,
  pageUp = 33,
  pageDown = 34,
  end = 35,
  home = 36,
  left = 37,
  up = 38,
  right = 39,
  down = 40,
  select = 41,
  execute = 43,
  printScreen = 44,
  insert = 45,
  remove = 46,
  help = 47,
  leftSystem = 91,
  rightSystem = 92,
  application = 93,
  sleep = 95,
  pad0 = 96,  // to pad9 = 105
  padMultiply = 106,
  padAdd = 107,
  padSubtract = 109,
  padDecimal = 110,
  padDivide = 111,
  f1 = 112,  // to f12 = 123
  f13 = 124,  // to f24 = 135
  numLock = 144,
  scrollLock = 145,
  semicolon = 186,
  plus = 187,
  comma = 188,
  minus = 189,
  period = 190,
  slash = 191,
  backquote = 192,
  leftBracket = 219,
  backslash = 220,
  rightBracket = 221,
  quote = 222,
};
}  // namespace key

// Window styles, to be combined.
namespace style {
enum Style : u32 {
  resizable = 0x00040000,
  systemMenu = 0x00080000,
  vScroll = 0x00200000,
  hScroll = 0x00100000,
  caption = 0x00C00000,
  disabled = 0x08000000,  // takes no pointer
  visible = 0x10000000,
  minimized = 0x20000000,
  child = 0x40000000,
  popup = 0x80000000,
};
constexpr u32 top = 0x00CF0000;  // a frame with title, size border and boxes
}  // namespace style

// How place() shows a window.
namespace show {
enum Show : int { keep = -1, hide = 0, normal = 1, noActivate = 4, activate = 5, minimize = 6, restore = 9 };
}

namespace bar {
enum Bar : int { horizontal = 0, vertical = 1 };
}

// Codes of scroll messages.
namespace scroll {
enum Code : unsigned {
  lineLess = 0,
  lineMore = 1,
  pageLess = 2,
  pageMore = 3,
  thumbPosition = 4,
  thumbTrack = 5,
  toStart = 6,
  toEnd = 7,
  endScroll = 8,
};
// Mask of ScrollInfo.
enum Mask : unsigned { range = 1, page = 2, position = 4, disableUnneeded = 8, trackPosition = 16 };
}  // namespace scroll

// Indices of metric().
namespace metric {
enum Metric : int { screenWidth = 0, screenHeight = 1, vBarWidth = 2, hBarHeight = 3, menuHeight = 15 };
}

// Cursors of loadCursor().
namespace cursor {
enum Cursor : int { arrow = 600, fourArrows, zoomIn, zoomOut, openHand, closedHand, cross };
}

namespace menu {
constexpr int console = 628;  // menu and tool bar
enum Popup : int { consolePopup = 0, toolsPopup = 1, viewPopup = 2 };
constexpr unsigned closeItem = 61536;  // of a system menu
}  // namespace menu

// Message boxes: the buttons, and what the operator chose.
namespace box {
// Of the flags: the buttons, and above them which one has the focus.
constexpr unsigned buttonBits = 15, defaultShift = 8;
enum Buttons : unsigned { ok = 0, okCancel = 1, abortRetryIgnore = 2, yesNoCancel = 3, yesNo = 4, retryCancel = 5 };
enum Choice : int { okChosen = 1, cancelled = 2, aborted = 3, retried = 4, ignored = 5, yes = 6, no = 7 };
}  // namespace box

// Flags of Painter::drawText.
namespace text {
enum Flags : unsigned { center = 1, right = 2, noClip = 0x100, calculateOnly = 0x400, noPrefix = 0x800 };
}

}  // namespace plat
