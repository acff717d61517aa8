// What a display raises for a while, lowered at the end of a scope, however it ends and whether the display still stands.
// Internal.
#pragma once

#include "canvas/on_throw.h"
#include "ui/core/node_walk.h"
#include "ui/display/display.h"

// Owes a repaint of the whole display when an exception passes.
class cc_DisplayHold {
public:
  explicit cc_DisplayHold(ccDisplay& d) : display_(&d), self_(&d) {}
  ~cc_DisplayHold()
  {
    if (std::uncaught_exceptions() > before_ && stands())
      display_->owe_();
  }
  cc_DisplayHold(cc_DisplayHold const&) = delete;
  cc_DisplayHold& operator=(cc_DisplayHold const&) = delete;
  bool stands() const { return self_.exists() && !display_->dying(); }

private:
  ccDisplay* display_;
  cc_NodeRef self_;
  int before_ = std::uncaught_exceptions();
};

// No drawing of the display and its frames until end(), or until it dies.
class cc_DrawingOff {
public:
  explicit cc_DrawingOff(ccDisplay& d) : display_(&d), hold_(d) { d.disableDrawing(); }
  ~cc_DrawingOff()
  {
    if (!display_ || !hold_.stands())
      return;
    try {
      display_->enableDrawing(/*redraw=*/false);
    } catch (...) {
      // It only takes flags off.
    }
  }
  cc_DrawingOff(cc_DrawingOff const&) = delete;
  cc_DrawingOff& operator=(cc_DrawingOff const&) = delete;
  void end(bool redraw)
  {
    ccDisplay* const d = hold_.stands() ? display_ : nullptr;
    display_ = nullptr;
    if (d)
      d->enableDrawing(redraw);
  }

private:
  ccDisplay* display_;
  cc_DisplayHold hold_;
};

// Whether graphics are repainted along with the image.
class cc_OverlayRepaint {
public:
  cc_OverlayRepaint(ccDisplay&, bool on);
  ~cc_OverlayRepaint();
  cc_OverlayRepaint(cc_OverlayRepaint const&) = delete;
  cc_OverlayRepaint& operator=(cc_OverlayRepaint const&) = delete;

private:
  ccDisplay* display_;
  cc_NodeRef self_;
};
