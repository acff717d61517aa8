// State of nodes: own wishes, effective state, and the descents that carry a change down the tree. Hooks may delete or move
// any node, so each step looks whether its nodes still stand.
#include "ui/core/object.h"

#include "canvas/on_throw.h"
#include "foundation/resource.h"
#include "ui/core/frame.h"
#include "ui/core/node_walk.h"
#include "ui/core/root.h"
#include "ui/core/shapes.h"

#include <atomic>

namespace {

std::atomic<std::uint64_t> visibilityVersion{0};

// Are these bits of a node and all its ancestors set?
bool cf_allUp(ccUIObject const* node, bool (ccUIObject::*bits)() const)
{
  for (; node; node = node->parent())
    if (!(node->*bits)())
      return false;
  return true;
}

}  // namespace

void ccUIObject::visibilityChanged_() { visibilityVersion.fetch_add(1, std::memory_order_relaxed); }

std::uint64_t ccUIObject::visibility_() { return visibilityVersion.load(std::memory_order_relaxed); }

void ccUIObject::bit_(Bits bit, bool on)
{
  ccLock lock(rootMutex());
  setBit_(bit, on);
}

void ccUIObject::drawLayer(cc_TabletEnums::Layers layer)
{
  ccLock lock(rootMutex());
  ccUIShapes* const shape = shapes(true);
  if (shape)
    shape->uncount_();
  drawLayer_ = layer;
  if (shape) {
    shape->count_();
    shape->noteLayers_();
  }
}

void ccUIObject::clickable(bool on) { bit_(kClickable, on); }

void ccUIObject::draggable(bool on) { bit_(kDraggable, on); }

void ccUIObject::dragging(bool on) { bit_(kDragging, on); }

void ccUIObject::dontMove(bool on) { bit_(kDontMove, on); }

void ccUIObject::autoDelete(bool on) { bit_(kAutoDelete, on); }

void ccUIObject::mark(bool on) { bit_(kMark, on); }

void ccUIObject::dwell(bool on) { bit_(kDwell, on); }

void ccUIObject::multiSelectable(bool on) { bit_(kMultiSelectable, on); }

void ccUIObject::keepSel(bool on)
{
  ccLock lock(rootMutex());
  setBit_(kKeepSel, on);
  if (on)
    condSelected(true, /*recurse=*/false);
}

bool ccUIObject::visible() const
{
  ccLock lock(rootMutex());
  for (ccUIObject const* node = this; node; node = node->parent()) {
    if (!node->condVisible())
      return false;
    if (const_cast<ccUIObject*>(node)->rootObject(true))
      return true;
  }
  return false;  // the topmost one is no root
}

bool ccUIObject::enabled() const
{
  ccLock lock(rootMutex());
  return cf_allUp(this, &ccUIObject::condVisAndEnab);
}

bool ccUIObject::selected() const
{
  ccLock lock(rootMutex());
  return cf_allUp(this, &ccUIObject::condVisEnabAndSel);
}

bool ccUIObject::condVisible(bool on)
{
  ccLock lock(rootMutex());
  if (on == condVisible())
    return false;
  cc_NodeRef const self(this);
  if (on) {
    setBit_(kCondVisible, true);
    visibilityChanged_();
    if (!visible())
      return false;
    cc_OnThrow const settle([&] {
      if (self.exists())
        settle_();
    });
    show_(/*nested=*/false);
    if (self.exists() && enabled())
      enable_(visibleState, /*nested=*/false);
    if (self.exists() && selected())
      select_(visibleState, /*nested=*/false);
    return true;
  }
  bool const wasVisible = visible();
  bool const wasEnabled = enabled();
  bool const wasSelected = selected();
  // A hook that throws ends the way of the others; the node goes out of sight all the same.
  cc_OnThrow const settle([&] {
    if (!self.exists())
      return;
    setBit_(kCondVisible, false);
    visibilityChanged_();
    if (wasVisible)
      settle_();
  });
  if (wasSelected)
    deselect_(visibleState, /*nested=*/false);
  if (wasEnabled && self.exists())
    disable_(visibleState, /*nested=*/false);
  if (wasVisible && self.exists())
    hide_(/*nested=*/false);
  if (self.exists()) {
    setBit_(kCondVisible, false);
    visibilityChanged_();
  }
  return wasVisible;
}

bool ccUIObject::condEnabled(bool on)
{
  ccLock lock(rootMutex());
  if (on == condEnabled())
    return false;
  cc_NodeRef const self(this);
  if (on) {
    setBit_(kCondEnabled, true);
    if (!enabled())
      return false;
    enable_(enabledState, /*nested=*/false);
    if (self.exists() && selected())
      select_(enabledState, /*nested=*/false);
    return true;
  }
  bool const wasEnabled = enabled();
  bool const wasSelected = selected();
  setBit_(kCondEnabled, false);  // before the hooks, unlike the visible bit
  if (wasSelected)
    deselect_(enabledState, /*nested=*/false);
  if (wasEnabled && self.exists())
    disable_(enabledState, /*nested=*/false);
  return wasEnabled;
}

bool ccUIObject::condSelected(bool on, bool recurse)
{
  ccLock lock(rootMutex());
  cc_NodeRef const self(this);
  bool changed = false;
  if (on != condSelected()) {
    if (on) {
      changed = !selected();
      setBit_(kCondSelected, true);
      // Also while the node or an ancestor is hidden or disabled.
      if (changed)
        select_(selectedState, /*nested=*/false);
    } else {
      changed = takeSelection_();
    }
  }
  if (recurse && self.exists()) {
    cc_NodeWalk walk;
    walk.addKidsBackToFront(*this);
    while (ccUIObject* const kid = walk.next())
      changed |= kid->condSelected(on, true);
  }
  return changed;
}

bool ccUIObject::takeSelection_()
{
  ccLock lock(rootMutex());
  if (!condSelected() || keepSel())
    return false;
  bool const was = selected();
  setBit_(kCondSelected, false);
  if (was)
    deselect_(selectedState, /*nested=*/false);
  return was;
}

// On: top-down, back to front. Off: bottom-up, front to back, so that a hook never sees a kid alive below a parent that is
// already gone. A kid that a hook has moved away or switched is left alone.

void ccUIObject::show_(bool nested)
{
  ccLock lock(rootMutex());
  cc_NodeRef const self(this);
  show(nested);
  if (!self.exists())
    return;
  cc_NodeWalk walk;
  walk.addKidsBackToFront(*this);
  while (ccUIObject* const kid = walk.next())
    if (self.exists() && kid->parent() == this && kid->condVisible())
      kid->show_(true);
}

void ccUIObject::hide_(bool nested)
{
  ccLock lock(rootMutex());
  cc_NodeRef const self(this);
  bool const before = hiding_;
  hiding_ = true;
  cc_AtEnd const lower([&] {
    if (self.exists())
      hiding_ = before;
  });
  cc_NodeWalk walk;
  walk.addKidsFrontToBack(*this);
  while (ccUIObject* const kid = walk.next())
    if (self.exists() && kid->parent() == this && kid->condVisible())
      kid->hide_(true);
  if (self.exists())
    hide(nested);
}

// After an exception: what was not told that it is on or off is put right without a hook, and repainted. Frames follow their
// nodes; shapes come and go with the next repaint of their frame.
void ccUIObject::settle_(bool repaint) noexcept
{
  ccUIObject* node = this;
  while (node) {
    if (ccUIFrame* const frame = node->frame(true)) {
      ccUIFrame* const above = cfFrameOf(frame->parentTablet());
      frame->ccUITablet::visible(node->condVisible() && (above ? above->isVisible() : node->rootObject(true) != nullptr));
      if (repaint)
        frame->ccUITablet::update(ccUIRect(frame->screenOrigin(), frame->ccUITablet::size()), ccUITablet::bothLayers,
                                /*now=*/false);
    } else if (node == this && repaint) {
      if (ccUITablet* const canvas = tablet())
        canvas->update(ccUIRect(canvas->screenOrigin(), canvas->size()), ccUITablet::bothLayers, /*now=*/false);
    }
    ccUIObject* next = node->frame(true) ? node->backKid() : nullptr;
    for (; !next && node && node != this; node = node->parent())
      next = node->closerSib();
    node = next;
  }
}

void ccUIObject::enable_(States state, bool nested)
{
  ccLock lock(rootMutex());
  cc_NodeRef const self(this);
  enable(state, nested);
  if (!self.exists())
    return;
  cc_NodeWalk walk;
  walk.addKidsBackToFront(*this);
  while (ccUIObject* const kid = walk.next())
    if (self.exists() && kid->parent() == this && kid->condEnabled())
      kid->enable_(state, true);
}

void ccUIObject::disable_(States state, bool nested)
{
  ccLock lock(rootMutex());
  cc_NodeRef const self(this);
  cc_NodeWalk walk;
  walk.addKidsFrontToBack(*this);
  while (ccUIObject* const kid = walk.next())
    if (self.exists() && kid->parent() == this && kid->condEnabled())
      kid->disable_(state, true);
  if (self.exists())
    disable(state, nested);
}

void ccUIObject::select_(States state, bool nested)
{
  ccLock lock(rootMutex());
  cc_NodeRef const self(this);
  ccUIFrame* const asFrame = frame(true);
  if (asFrame && asFrame->resizable() && root_)
    root_->attachFrameSizer_(asFrame);
  select(state, nested);
  if (!self.exists())
    return;
  cc_NodeWalk walk;
  walk.addKidsBackToFront(*this);
  while (ccUIObject* const kid = walk.next())
    if (self.exists() && kid->parent() == this && kid->condSelected())
      kid->select_(state, true);
}

void ccUIObject::deselect_(States state, bool nested)
{
  ccLock lock(rootMutex());
  cc_NodeRef const self(this);
  cc_NodeWalk walk;
  walk.addKidsFrontToBack(*this);
  while (ccUIObject* const kid = walk.next())
    if (self.exists() && kid->parent() == this && kid->condSelected())
      kid->deselect_(state, true);
  if (self.exists())
    deselect(state, nested);
}

void ccUIObject::userSelect(long level)
{
  ccLock lock(rootMutex());
  cc_NodeRef const self(this);
  if (enabled()) {
    if (level >= 1 && multiSelectable())
      toggleInMultiSelection_();
    else {
      takeSiblingSelections_(level);
      if (self.exists())
        condSelected(true, /*recurse=*/false);
      if (self.exists() && !dontMove())
        front();
    }
  }
  if (!self.exists())
    return;
  if (ccUIObject* const up = parent())
    up->userSelect(level > 0 ? -2 : -1);
}

void ccUIObject::toggleInMultiSelection_()
{
  cc_NodeRef const self(this);
  if (!condSelected()) {
    cc_NodeWalk walk;
    for (ccUIObject* sib = backSib(); sib; sib = sib->closerSib())
      if (!sib->multiSelectable() && sib->condSelected())
        walk.add(sib);
    while (ccUIObject* const sib = walk.next())
      sib->takeSelection_();
  }
  if (self.exists())
    condSelected(!condSelected(), /*recurse=*/false);
}

void ccUIObject::takeSiblingSelections_(long level)
{
  // Pressing a member of a multi-selection leaves the others selected. Levels that do not exist leave all alone.
  if (level < -2 || level > 1 || (level == 0 && condSelected()))
    return;
  cc_NodeWalk walk;
  for (ccUIObject* sib = backSib(); sib; sib = sib->closerSib())
    if (sib != this && sib->condSelected() && !(level == -2 && sib->multiSelectable()))
      walk.add(sib);
  while (ccUIObject* const sib = walk.next())
    sib->takeSelection_();
}

bool ccUIObject::multiSelected(ccUIObject const* other) const
{
  if (other == this)
    return true;
  return other && isMember_() && other->isMember_();
}

bool ccUIObject::multiDragable() const
{
  ccLock lock(rootMutex());
  if (!isMember_())  // only the node itself counts
    return draggable();
  for (ccUIObject const* sib = const_cast<ccUIObject*>(this)->backSib(); sib; sib = sib->closerSib())
    if (multiSelected(sib) && !sib->draggable())
      return false;
  return true;
}

void ccUIObject::show(bool) {}

void ccUIObject::hide(bool) {}

void ccUIObject::enable(States, bool) {}

void ccUIObject::disable(States, bool) {}

void ccUIObject::select(States, bool) {}

void ccUIObject::deselect(States, bool) {}
