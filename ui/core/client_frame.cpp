#include "ui/core/client_frame.h"

#include "foundation/resource.h"

void ccUIClientFrame::backgroundColor(ccColor const& c)
{
  ccLock lock(rootMutex());
  backgroundColor_ = c;
  if (c == ccColor::passColor())
    set(c, drawLayer_);
  if (condVisible()) {  // off and on again, so that the area is drawn anew
    condVisible(false);
    condVisible(true);
  }
}

void ccUIClientFrame::redraw_()
{
  if (redrawLayer_ != drawLayer_ && redrawLayer_ != bothLayers)
    return;
  if (backgroundColor_ == ccColor::passColor())
    opaque(drawLayer_, false);
  else
    set(backgroundColor_, drawLayer_);
}
