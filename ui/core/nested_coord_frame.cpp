#include "ui/core/nested_coord_frame.h"

#include "foundation/resource.h"
#include "ui/core/control_frame.h"

ccUINestedCoordFrame::ccUINestedCoordFrame(ccUIControlFrame* parent, ccUIRect const& r) : ccUIShapesFrame(parent, r)
{
  clickable(true);
  draggable(true);
  dontMove(true);
}

void ccUINestedCoordFrame::parentFromChild(ccXform<2> const& x)
{
  ccLock lock(rootMutex());
  parentFromChild_ = x;
  ccUIObject* const up = parent();
  ccUIFrame const* const above = up ? up->frame(false) : nullptr;
  if (!above)
    return;
  drawEnabled_.push(false);  // whoever changes the map repaints
  scaleExact(above->scaleExact_);
  scaleMode(above->scaleMode_);
  baseMap(above->baseMap_ * parentFromChild_);
  drawEnabled_.pop();
}

void ccUINestedCoordFrame::parentMapChanged() { parentFromChild(ccXform<2>(parentFromChild_)); }
