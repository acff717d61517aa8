#include "ui/shapes/man_shape.h"

#include "foundation/resource.h"
#include "ui/core/node_walk.h"

ccUIManShape::ccUIManShape(ccUIObject* parentNode) : ccUIShapes(parentNode) {}

ccUIManShape::~ccUIManShape() { beginDestruction(); }

void ccUIManShape::manipulable(bool on)
{
  ccLock lock(rootMutex());
  manipulable_ = on;
  showHandles(wantsHandles());
}

void ccUIManShape::select(States state, bool nested)
{
  ccLock lock(rootMutex());
  cc_NodeRef const self(this);
  ccUIShapes::select(state, nested);
  if (!self.exists() || !manipulable_)
    return;
  showHandles(true);
  // The shape was drawn over those that were out already.
  if (self.exists())
    for (ccUIObject* kid = backKid(); kid; kid = kid->closerSib())
      kid->shapes(true)->update(/*withKids=*/true, /*erase=*/false, nullptr, cc_TabletEnums::bothLayers);
}

void ccUIManShape::deselect(States state, bool nested)
{
  ccLock lock(rootMutex());
  cc_NodeRef const self(this);
  showHandles(false);
  if (self.exists())
    ccUIShapes::deselect(state, nested);
}

void ccUIManShape::geometryChanged()
{
  ccLock lock(rootMutex());
  cc_NodeRef const self(this);
  updateHandles();
  if (self.exists())
    update(/*withKids=*/true, /*erase=*/true, nullptr, cc_TabletEnums::bothLayers);
  if (self.exists())
    redim_();
}
