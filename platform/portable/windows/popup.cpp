#include "platform/portable/windows/popup.h"

#include "platform/messages.h"
#include "platform/portable/raster/painter.h"

#include <algorithm>

namespace plat::portable {
HWND popupHost(HWND owner, Size popup)
{
  Core& core = Core::instance();
  HWND host = owner;
  for (HWND up = core.parent(host); up; up = core.parent(up))
    host = up;
  if (!host || !core.visible(host) || host == core.desktop())
    host = core.active();
  Rect const room = core.clientRect(host);
  return host && core.visible(host) && room.right >= popup.w && room.bottom >= popup.h ? host : HWND{};
}

HWND openPopup(HWND host, Rect const& screen, MessageProc proc)
{
  Core& core = Core::instance();
  Point const origin = host ? core.clientToScreen(host, {}) : Point{};
  WindowDesc desc;
  desc.parent = host;
  desc.style = host ? style::child : style::popup;
  desc.rect = shifted(screen, {-origin.x, -origin.y});
  desc.proc = proc;
  HWND const window = core.create(desc);
  core.raiseTopmost(window);
  core.place(window, nullptr, show::noActivate);
  return window;
}

Rect broughtInto(Rect const& frame, Rect const& r)
{
  Point by;
  by.x = std::max(std::min(0, frame.right - r.right), frame.left - r.left);
  by.y = std::max(std::min(0, frame.bottom - r.bottom), frame.top - r.top);
  return shifted(r, by);
}

Size textSize(std::string_view text, bool prefix)
{
  WindowPainter painter(Core::instance().desktop());
  Rect box;
  if (painter)
    painter->drawText(text, box, text::calculateOnly | (prefix ? 0u : text::noPrefix));
  return {box.width(), box.height()};
}

void frame3d(Painter& painter, Rect const& r, COLORREF face, COLORREF edge)
{
  painter.fillRect(r, edge);
  painter.fillRect({r.left + 1, r.top + 1, r.right - 1, r.bottom - 1}, face);
}

WindowPainter::WindowPainter(HWND window) : dc_(openWindowDC(window)), painter_(dc_ ? painter(dc_) : nullptr) {}

WindowPainter::~WindowPainter()
{
  if (dc_)
    closeWindowDC(dc_);
}

}  // namespace plat::portable
