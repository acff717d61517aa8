// What popup menus and message boxes share: where they stand, and how they look.
#pragma once

#include "platform/paint.h"
#include "platform/portable/windows/core.h"

namespace plat::portable {

struct PopupColors {
  static constexpr COLORREF face = 0xf0f0f0, edge = 0x606060, text = 0x000000, faint = 0x909090, back = 0xffffff,
                            hot = 0x803000, hotText = 0xffffff, caption = 0x803000, captionText = 0xffffff;
};

// The shown top-level window in which a popup of this owner stands: its own, else the active one; null when there is
// none or the popup does not fit.
HWND popupHost(HWND owner, Size popup);

// A window of the core for a popup, in front of all others of the host; without host one of its own. Shown, not
// activated.
HWND openPopup(HWND host, Rect const& screen, MessageProc);

// Moved so that it lies in the frame, if it is not larger.
Rect broughtInto(Rect const& frame, Rect const&);

// The extent of text of several lines.
Size textSize(std::string_view, bool prefix);

void frame3d(Painter&, Rect const&, COLORREF face, COLORREF edge);

// Opens a painter on a window for the time of a block; null where it cannot be had.
class WindowPainter {
public:
  explicit WindowPainter(HWND);
  WindowPainter(WindowPainter const&) = delete;
  WindowPainter& operator=(WindowPainter const&) = delete;
  ~WindowPainter();

  explicit operator bool() const { return painter_ != nullptr; }
  Painter* operator->() const { return painter_; }
  Painter& operator*() const { return *painter_; }

private:
  HDC dc_;
  Painter* painter_;
};

}  // namespace plat::portable
