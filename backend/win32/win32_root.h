// The root of a display on a window: hands colour maps to the scopes, and owns cursors and the palette.
#pragma once

#include "platform/handles.h"
#include "ui/core/root.h"

#include <array>

class ccWin32UIScope;

class ccUIWin32Root : public ccUIRootObject {
public:
  static constexpr int kCursors = 7;

  ccUIWin32Root();
  ~ccUIWin32Root() override;

  using ccUIRootObject::reservedColor;
  std::vector<ccRGB> colorMap() override;  // 256 entries: the system's with the image ramp in 10 to 240
  void colorMap(std::vector<ccRGB> const& ramp) override;  // up to 231 entries, for 10 to 240
  std::vector<ccRGB> colorMapEx() override { return colorMapEx_; }
  void colorMapEx(std::vector<ccRGB> const&) override;
  std::vector<ccRGB> const& overlayColorMap() override { return overlayColorMap_; }
  void overlayColorMap(std::vector<ccRGB> const& map) { overlayColorMap_ = map; }
  void reservedColor(ccRGB const&, long index) override;

  ccWin32UIScope* imageScope() const { return imageScope_; }
  void imageScope(ccWin32UIScope* scope) { imageScope_ = scope; }  // not owned, as the next
  ccWin32UIScope* overlayScope() const { return overlayScope_; }
  void overlayScope(ccWin32UIScope* scope) { overlayScope_ = scope; }

  HWND window() const { return window_; }
  void window(HWND);
  // Replaces the cursor of a mode and gives the former one back; null for a cursor of 7 and above or a null handle.
  HCURSOR cursorHandle(Cursor, HCURSOR);
  unsigned realizePalette();  // how many entries of the screen's palette changed

protected:
  void setCursor(Cursor) override;

private:
  void showMap_();

  ccWin32UIScope* imageScope_ = nullptr;
  ccWin32UIScope* overlayScope_ = nullptr;
  std::vector<ccRGB> overlayColorMap_;
  std::vector<ccRGB> ramp_;  // 231 entries
  std::vector<ccRGB> colorMapEx_;
  HWND window_ = nullptr;
  std::array<HCURSOR, kCursors> cursors_{};
  HCURSOR classCursor_ = nullptr;  // of the window, before ours
  bool classCursorSaved_ = false;
  HPALETTE palette_ = nullptr;
};
