// The image display on a window. It subclasses the window: input messages become events of the tree, paint and size messages
// keep the picture whole, and scroll bars, palette and pan stay in step. The window's owner keeps the window and its loop;
// the display's owner deletes the display, before or after the window goes.
//
// Messages come on the window's thread. All else may be called on any thread, under the root's mutex. A display may also be
// made and deleted on any thread while the window's thread pumps: the destructor waits until that thread is in no message of
// the display, and so is called with no lock held. An own subclass is made without window and then put on one, since its
// messages come as soon as it stands there. listMutex comes before a root's mutex; the library itself never waits under it.
#pragma once

#include "backend/scope/win32_scope.h"
#include "backend/win32/fwd.h"
#include "platform/handles.h"
#include "ui/core/keyboard_event.h"
#include "ui/display/display.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace cc_DisplayList {
class Visit;
}

// The root is there before the display, which is made on it.
class cc_Win32RootOwner {
protected:
  cc_Win32RootOwner();
  ~cc_Win32RootOwner();
  std::unique_ptr<ccUIWin32Root> ownRoot_;
};

class ccWin32Display : private cc_Win32RootOwner, public ccDisplay {
public:
  // A picture of the overlay was asked for while there is no overlay layer.
  class OverlayLayerNotEnabled : public ccException {
    KRS_EXCEPTION
  };

  explicit ccWin32Display(HWND window = nullptr);
  ~ccWin32Display() override;

  HWND window() const { return window_; }
  void window(HWND);  // null leaves the window; the same window changes nothing
  long enableChromaKeying(bool);
  long chromaKey(unsigned long colorref);
  unsigned long chromaKey() const { return imageScope_.chromaKey(); }
  bool chromaKeyingEnabled() const { return imageScope_.chromaKeyingEnabled(); }
  std::vector<HFONT> const& fontTable() const { return imageScope_.fontTable(); }
  void fontTable(std::vector<HFONT> const&);
  HDC getDC();  // a context for own graphics while chroma keying is on, else null
  long releaseDC(HDC);
  long restore(std::string* report);  // rebuilds all surfaces; the scope's result
  void showScrollBar(bool horz, bool vert);
  bool horzScrollbarEnabled() const { return horzScrollBar_; }
  bool vertScrollbarEnabled() const { return vertScrollBar_; }
  bool toolsPopupMenuEnabled() const { return toolsPopupMenu_; }
  void toolsPopupMenuEnabled(bool on) { toolsPopupMenu_ = on; }
  ccKeyboardEvent::VirtualKey panKey() const;
  void panKey(ccKeyboardEvent::VirtualKey);
  ccKeyboardEvent::VirtualKey multiSelectKey() const;
  void multiSelectKey(ccKeyboardEvent::VirtualKey);
  static bool platformCompatibility() { return false; }
  // Only one scope of a display holds a surface locked or its device context open.
  ccWin32UIScope* activeLockedScope() const { return activeLockedScope_; }
  void activeLockedScope(ccWin32UIScope* scope) { activeLockedScope_ = scope; }
  ccWin32UIScope& imageScope() { return imageScope_; }
  ccWin32UIScope* overlayScope() { return overlayScope_; }
  static ccMutex& listMutex();

  DisplayFormat displayFormat() override;
  bool hasImage() override;
  ccPair<long> imageSize() override;
  ccPair<long> imageOffset() override;
  void getPassThroughValue(ccPackedRGB32Pel&) override;
  void getPassThroughValue(ccPackedRGB16Pel&) override;
  void getPassThroughValue(unsigned char&) override;
  using ccDisplay::selectArea;
  using ccDisplay::selectPoint;
  std::int64_t selectAreaStart(CoordinateSystem, ccPelRect const&, ccColor const&) override;
  ccPelRect selectAreaEnd(std::int64_t handle) override;
  ccPelRect selectArea(CoordinateSystem, ccPelRect const&, char const* prompt, ccColor const&) override;
  std::int64_t selectPointStart(CoordinateSystem, ccPair<double> const&, ccColor const&) override;
  ccPair<double> selectPointEnd(std::int64_t handle) override;
  ccPair<double> selectPoint(CoordinateSystem, ccPair<double> const&, char const* prompt, ccColor const&) override;
  void enableOverlay(overlayState) override;
  overlayState enableOverlay() override;
  bool isLiveEnabled() override;
  void waitForVerticalBlank(bool) override;
  void getDisplayedImage(ccPelBuffer<unsigned char>&, Layers) override;
  void getDisplayedImage(ccPelBuffer<ccPackedRGB16Pel>&, Layers) override;
  void getDisplayedImage(ccPelBuffer<ccPackedRGB32Pel>&, Layers) override;
  double liveFrameRate() override;

protected:
  void panChanged() override;
  void magChanged() override;
  void imageChanged() override;
  void colorMapChanged() override;
  void imageMapChanged() override;
  void updatePanRanges() override;

public:
  virtual unsigned char liveStatus();

  // Each handles its messages; false: the message goes on to the former procedure.
  virtual bool processMouseMsg(unsigned message, std::uintptr_t wParam, std::intptr_t lParam);
  virtual bool processScrollMsg(unsigned message, std::uintptr_t wParam, std::intptr_t lParam);
  virtual bool processTimerMsg(std::uintptr_t id);
  virtual bool processWndUpdateMsg(unsigned message, std::uintptr_t wParam, std::intptr_t lParam);
  virtual bool processKeyboardMsg(unsigned message, std::uintptr_t wParam, std::intptr_t lParam);
  virtual bool processCommandMsg(unsigned id);

protected:
  void dragAnimate_(ccPair<long> const& from, ccPair<long> const& to) override;
  void OnUpdateToolsMenu(HMENU, unsigned id);

private:
  class cc_Alive;  // tells after a call whether this display still stands on the window
  struct cs_Retire {
    void operator()(ccWin32UIScope* scope) const noexcept { ccWin32UIScope::retire(scope); }
  };

  static std::intptr_t windowProc(HWND, unsigned message, std::uintptr_t wParam, std::intptr_t lParam);
  static void redrawAll_(void* display);
  std::intptr_t windowProc_(cc_DisplayList::Visit&, HWND, unsigned message, std::uintptr_t wParam, std::intptr_t lParam);
  bool handle_(cc_DisplayList::Visit&, unsigned message, std::uintptr_t wParam, std::intptr_t lParam);
  void paletteMessage_();
  void sizeMessage_(ccPair<long> const& size);
  void enterWindow_(HWND);
  void end_();
  static std::intptr_t parentProc_(HWND, unsigned message, std::uintptr_t wParam, std::intptr_t lParam);
  void leaveWindow_();
  static void repaintSoon_(HWND);
  void layOut_(ccPair<long> const& size);
  void subclassParent_();
  void restoreParent_();
  void subclassParent(HWND);
  void showBars_(bool horz, bool vert);
  void updateCacheMap();
  void paintMargins_(ccUIRect const& updated);
  void toolsPopup_();
  void startRepeat_(ccPair<long> const& at);
  void stopRepeat_();
  void updateScrollPos_();
  void overlayScopeOn_();
  void overlayScopeOff_();
  void fillInfo_(cs_GetDisplayedImageInfo&, Layers);
  template <class T> void displayed_(ccPelBuffer<T>&, Layers);

  std::atomic<HWND> window_ = nullptr;  // written under the root's mutex
  std::atomic<std::uint64_t> place_ = 0;  // in the list of displays
  ccUIWin32Root* win32Root_;
  std::unique_ptr<ccWin32UIScope, cs_Retire> ownImageScope_;
  ccWin32UIScope& imageScope_;
  ccWin32UIScope* overlayScope_ = nullptr;
  bool overlayAnew_ = false;  // a next window gets the overlay that the last one had
  std::atomic<std::uintptr_t> timerId_ = 0;  // of the held left button
  ccPair<long> pressPos_, lastPos_;
  bool horzScrollBar_ = false;
  bool vertScrollBar_ = false;
  bool toolsPopupMenu_ = false;
  bool inPopupMenu_ = false;
  double cachedScroll_[2], cachedRange_[2];
  ccWin32UIScope* activeLockedScope_ = nullptr;
  std::vector<HWND> subclassedParents_;
};
