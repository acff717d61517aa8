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
  bool const drawnOver = anyHandleShown_();
  ccUIShapes::select(state, nested);
  if (!self.exists() || !manipulable_)
    return;
  showHandles(true);
  if (!drawnOver || !self.exists())
    return;
  // Handles lie above their shape, which was just drawn over those that were out already.
  cc_NodeWalk walk;
  walk.addKidsBackToFront(*this);
  while (ccUIObject* const kid = walk.next())
    kid->shapes(true)->update(/*withKids=*/true, /*erase=*/false, nullptr, cc_TabletEnums::bothLayers);
}

bool ccUIManShape::anyHandleShown_() const
{
  for (ccUIObject const* kid = backKid(); kid; kid = kid->closerSib())
    if (kid->condVisible())
      return true;
  return false;
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
