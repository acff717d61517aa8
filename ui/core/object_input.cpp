// Input entries of nodes, and the fan-out of a drag over a multi-selection.
#include "ui/core/object.h"

#include "canvas/on_throw.h"
#include "foundation/resource.h"
#include "ui/core/node_walk.h"

#include <algorithm>

namespace {

using Layers = ccUITablet::Layers;
thread_local std::uint64_t dragSteps = 0;  // and stops
constexpr Layers bothInOrder[] = {ccUITablet::imageLayer, ccUITablet::overlayLayer};

// Far outside any screen a position stays where differences of positions fit.
ccPair<long> cf_near(ccPair<long> const& p)
{
  constexpr long far = ccUIRect::kFar;
  return ccPair<long>(std::clamp(p.x(), -far, far), std::clamp(p.y(), -far, far));
}

}  // namespace

void ccUIObject::mouseDown()
{
  ccLock lock(rootMutex());
  mouseDown_();
}

void ccUIObject::mouseUp()
{
  ccLock lock(rootMutex());
  mouseUp_();
}

void ccUIObject::mouseEnter()
{
  ccLock lock(rootMutex());
  mouseEnter_();
}

void ccUIObject::idleMouseEnter()
{
  ccLock lock(rootMutex());
  idleMouseEnter_();
}

void ccUIObject::mouseLeave()
{
  ccLock lock(rootMutex());
  mouseLeave_();
}

void ccUIObject::mouseMove(ccPair<long> const& pos)
{
  ccLock lock(rootMutex());
  mouseMove_(pos);
}

void ccUIObject::click()
{
  ccLock lock(rootMutex());
  click_();
}

void ccUIObject::dblClick()
{
  ccLock lock(rootMutex());
  dblClick_();
}

void ccUIObject::keyboard(ccKeyboardEvent const& event)
{
  ccLock lock(rootMutex());
  keyboard_(event);
}

void ccUIObject::mouseMiddle(ccPair<long> const& pos, ccMouseEvent::Event event, unsigned long keys)
{
  mouseMiddle_(pos, event, keys);
}

void ccUIObject::mouseRight(ccPair<long> const& pos, ccMouseEvent::Event event, unsigned long keys)
{
  ccLock lock(rootMutex());
  if (rightButtonMode_ == rightButtonToObject) {
    mouseRight_(pos, event, keys);
    return;
  }
  if (rightButtonMode_ != rightButtonSendsBack || event != ccMouseEvent::mousePressed)
    return;
  ccUIObject* node = this;
  while (node && node->dontMove())
    node = node->parent();
  if (!node)
    return;
  cc_NodeRef const ref(node);
  node->takeSelection_();
  if (ref.alive())
    node->back();
}

// Members are fixed before the first hook, so that one that ends the selection in its hook strands no other in the drag.
void ccUIObject::dragMembers_(cc_NodeWalk& walk)
{
  if (!isMember_()) {
    walk.add(this);
    return;
  }
  ccUIObject* const up = parent();
  for (ccUIObject* sib = up ? up->backKid() : this; sib; sib = sib->closerSib())
    if (multiSelected(sib))
      walk.add(sib);
}

// A drag that an exception ends: the members and so many layers of the screen come out of it without a hook.
void ccUIObject::endDrag_(cc_TabletRef const& canvas, int layers) noexcept
{
  dragRuns_ = false;
  setBit_(kDragging, false);
  if (ccUIObject* const up = parent())
    for (ccUIObject* sib = up->backKid(); sib; sib = sib->closerSib())
      sib->setBit_(kDragging, false);
  for (int i = 0; i < layers; ++i)
    try {
      if (ccUITablet* const tablet = canvas.getOrTop())
        tablet->dragErase(bothInOrder[i]);
      if (ccUITablet* const tablet = canvas.getOrTop())
        tablet->dragStop(bothInOrder[i]);
    } catch (...) {
      // Another exception is on its way to the caller; what could not be painted is still marked.
    }
}

void ccUIObject::dragStart(ccPair<long> const& position)
{
  ccLock lock(rootMutex());
  ccPair<long> const at = cf_near(position);
  cc_NodeRef const self(this);
  cc_TabletRef const canvas(tablet());
  int layers = 0;
  cc_OnThrow const undo([&] {
    if (self.exists() && dragRuns_)
      endDrag_(canvas, layers);
  });
  dragRuns_ = true;  // whoever ends the node in a hook finds a drag to end
  for (Layers layer : bothInOrder)
    if (ccUITablet* const before = canvas.get()) {
      before->dragStart(layer);
      ++layers;
    }
  if (!self.alive())
    return;
  {
    cc_NodeWalk members;
    dragMembers_(members);
    while (ccUIObject* const member = members.next()) {
      member->dragging(true);
      member->dragStart_(at);
    }
  }
  if (self.alive())
    dragAnimate(at, at);
}

void ccUIObject::dragAnimate(ccPair<long> const& start, ccPair<long> const& end)
{
  ccLock lock(rootMutex());
  ccPair<long> const from = cf_near(start), to = cf_near(end);
  cc_NodeRef const self(this);
  cc_TabletRef const canvas(tablet());
  cc_ScreenLock const screen(canvas.get());
  std::uint64_t const step = ++dragSteps;
  cc_AtEnd const rest([&] {
    for (Layers layer : bothInOrder)
      if (ccUITablet* const after = canvas.getOrTop())
        after->dragAnimate(false, layer);
    // A hook that has sent events has ended this animation, so what came after it was drawn for good.
    if (step != dragSteps)
      if (ccUITablet* const after = canvas.getOrTop())
        after->update(ccUIRect::inf, ccUITablet::bothLayers, /*now=*/false);
  });
  // An erase paints what the drag has hidden, and that may delete anything.
  for (Layers layer : bothInOrder) {
    if (ccUITablet* const before = canvas.get())
      before->dragErase(layer);
    if (ccUITablet* const before = canvas.get())
      before->dragAnimate(true, layer);
  }
  if (!self.alive() || !selected())
    return;
  if (!multiSelectable()) {
    dragAnimate_(from, to);
    return;
  }
  cc_NodeWalk members;
  dragMembers_(members);
  while (ccUIObject* const member = members.next())
    member->dragAnimate_(from, to);
}

void ccUIObject::dragStop(ccPair<long> const& start, ccPair<long> const& end)
{
  ccLock lock(rootMutex());
  ccPair<long> const from = cf_near(start), to = cf_near(end);
  cc_NodeRef const self(this);
  cc_TabletRef const canvas(tablet());
  cc_ScreenLock const screen(canvas.get());
  cc_NodeWalk members;
  dragMembers_(members);
  int stopped = 0;
  cc_OnThrow const undo([&] {
    while (ccUIObject* const member = members.next())
      member->setBit_(kDragging, false);
    for (; stopped < 2; ++stopped)
      if (ccUITablet* const tablet = canvas.getOrTop())
        tablet->dragStop(bothInOrder[stopped]);
  });
  dragRuns_ = false;
  ++dragSteps;
  for (Layers layer : bothInOrder) {
    if (ccUITablet* const before = canvas.get())
      before->dragErase(layer);
    if (ccUITablet* const before = canvas.getOrTop())
      before->dragStop(layer);
    ++stopped;
  }
  while (ccUIObject* const member = members.next()) {
    member->dragging(false);
    member->dragStop_(from, to);
  }
}

void ccUIObject::mouseDown_() {}

void ccUIObject::mouseUp_() {}

void ccUIObject::mouseEnter_() {}

void ccUIObject::idleMouseEnter_() {}

void ccUIObject::mouseLeave_() {}

void ccUIObject::mouseMove_(ccPair<long> const&) {}

void ccUIObject::click_() {}

void ccUIObject::dblClick_() {}

void ccUIObject::dragStart_(ccPair<long> const&) {}

void ccUIObject::dragStop_(ccPair<long> const&, ccPair<long> const&) {}

void ccUIObject::dragAnimate_(ccPair<long> const&, ccPair<long> const&) {}

void ccUIObject::mouseMiddle_(ccPair<long> const&, ccMouseEvent::Event, unsigned long) {}

void ccUIObject::mouseRight_(ccPair<long> const&, ccMouseEvent::Event, unsigned long) {}

void ccUIObject::keyboard_(ccKeyboardEvent const&) {}
