#include "ui/core/event_processor.h"

#include "canvas/on_throw.h"
#include "canvas/ui_error.h"
#include "foundation/resource.h"
#include "ui/core/node_walk.h"
#include "ui/core/root.h"

#include <algorithm>

namespace {

using Layers = ccUITablet::Layers;

std::uint32_t cf_maskOf(ccKeyboardEvent::VirtualKey key)
{
  switch (key) {
  case ccKeyboardEvent::vkNone:
    return 0;
  case ccKeyboardEvent::vkShift:
    return ccMouseEvent::kShiftKey;
  case ccKeyboardEvent::vkControl:
    return ccMouseEvent::kControlKey;
  default:
    throw ccUIError::BadKeyValue();
  }
}

ccKeyboardEvent::VirtualKey cf_keyOf(std::uint32_t mask)
{
  switch (mask) {
  case ccMouseEvent::kShiftKey:
    return ccKeyboardEvent::vkShift;
  case ccMouseEvent::kControlKey:
    return ccKeyboardEvent::vkControl;
  default:
    return ccKeyboardEvent::vkNone;
  }
}

// Is ancestor this node or above it? The node itself is compared before it is asked for its parent.
bool cf_isAtOrAbove(ccUIObject const* ancestor, ccUIObject const* node)
{
  while (node && node != ancestor)
    node = node->parent();
  return node != nullptr;
}

long cf_depth(ccUIObject const* node)
{
  long depth = 0;
  for (; node; node = node->parent())
    ++depth;
  return depth;
}

ccUIObject* cf_commonAncestor(ccUIObject* a, ccUIObject* b)
{
  long da = cf_depth(a), db = cf_depth(b);
  for (; da > db; --da)
    a = a->parent();
  for (; db > da; --db)
    b = b->parent();
  while (a != b) {
    a = a->parent();
    b = b->parent();
  }
  return a;
}

}  // namespace

ccUIEventProcessor::ccUIEventProcessor(ccUIRootObject* root) : root_(root) {}

ccUIEventProcessor::Gesture ccUIEventProcessor::gesture() const
{
  if (!owner_)
    return Gesture::idle;
  return owner_->dragging() ? Gesture::dragging : Gesture::pressed;
}

bool ccUIEventProcessor::ownerDrags_() const { return owner_ && (owner_->dragRuns_ || owner_->dragging()); }

// From here on it knows nobody, and whatever is still inside it calls nothing more.
void ccUIEventProcessor::rootDies_()
{
  root_ = nullptr;
  owner_ = keyOwner_ = mouseOver_ = mouseCapture_ = nullptr;
}

ccUIObject* ccUIEventProcessor::touched_(ccUIObject* from) const
{
  ccUIObject* const up = from->parent();
  ccUITablet const* const above = up ? up->tablet() : nullptr;
  return ours_(from->whoIsTouched(above ? lastMousePos_ - above->screenOrigin() : lastMousePos_));
}

// Only nodes of this root tell the processor when they go; a capture may have lost its tree.
ccUIObject* ccUIEventProcessor::ours_(ccUIObject* node) const
{
  return node && root_ && (node == root_ || node->root() == root_) ? node : nullptr;
}

void ccUIEventProcessor::processEvent(ccMouseEvent const& e)
{
  auto const self = weak_from_this().lock();  // hooks may end the root
  if (!root_)
    return;
  ccLock lock(root_->mutex());
  ccMouseEvent event = e;  // hooks may process events themselves
  lastMouseEvent_ = event;
  constexpr long far = ccUIRect::kFar;  // there is no screen beyond, and differences of positions fit
  event.position(ccPair<long>(std::clamp(event.position().x(), -far, far), std::clamp(event.position().y(), -far, far)));
  lastMousePos_ = event.position();
  ccUIObject* hit = mouseCapture_ ? mouseCapture_ : root_;
  hit = gesture() == Gesture::dragging ? ours_(hit) : touched_(hit);
  if (!root_)
    return;

  std::uint32_t buttons = event.buttons();
  std::uint32_t which = 0;
  bool rightAsLeft = false;
  if (event.event() != ccMouseEvent::mouseMoved && event.event() != ccMouseEvent::mouseDwell) {
    which = static_cast<std::uint32_t>(event.whichButton());
    if (hit && hit->rightButtonMode() == ccUIObject::rightButtonAsLeft) {
      if (buttons & ccMouseEvent::rightButton)
        buttons = (buttons & ~static_cast<std::uint32_t>(ccMouseEvent::rightButton)) | ccMouseEvent::leftButton;
      if (which == ccMouseEvent::rightButton) {
        which = ccMouseEvent::leftButton;
        rightAsLeft = true;
      }
    }
  }
  if (!accepts_(event, hit, buttons, which) || !root_)
    return;

  // A hook that throws leaves the gesture where it would be without it.
  cc_OnThrow const lower([&] { close_(event); });
  cc_NodeRef const hitRef(hit);
  if (buttons == 0) {
    // A disabled node gets no hover: its nearest enabled ancestor does. What holds the mouse gets it in any case.
    ccUIObject* target = ours_(hit ? hit : mouseCapture_);
    while (target && target != mouseCapture_ && !target->enabled())
      target = target->parent();
    hover_(target);
  }
  if (buttons == 0 || event.event() == ccMouseEvent::mouseMoved)
    moveOver_(event.position());
  if (!root_)
    return;

  // The one thing that an exception of a hook leaves raised on purpose.
  root_->lockScreenUpdatesPush(true, ccUITablet::bothLayers);
  if (owner_ && owner_->enabled())
    deliver_(event, hitRef.alive() ? hit : nullptr, buttons, rightAsLeft);
  if (!root_)
    return;
  if (event.event() == ccMouseEvent::mouseReleased && ownerDrags_())
    abandonDrag_();  // the owner was hidden or disabled meanwhile, or the release counts for nothing
  if (!root_)
    return;
  lock.lock();  // a second hold, whatever a callback did to the first

  dblClk_ = event.event() == ccMouseEvent::mouseDblClicked;
  // During a drag the drag animation alone paints; the rest follows at the release.
  if (dragUpdating_ || gesture() != Gesture::dragging)
    root_->globalUpdate();
  if (event.event() == ccMouseEvent::mouseReleased)
    owner_ = nullptr;
  if (root_)
    root_->lockScreenUpdatesPop(ccUITablet::bothLayers);
}

void ccUIEventProcessor::close_(ccMouseEvent const& event)
{
  dblClk_ = event.event() == ccMouseEvent::mouseDblClicked;
  if (!root_ || event.event() != ccMouseEvent::mouseReleased)
    return;
  try {
    if (ownerDrags_())
      abandonDrag_();
  } catch (...) {
    // The first exception goes to the caller; what was not painted is marked.
  }
  owner_ = nullptr;
}

// Whether the event belongs to a gesture, or is a plain motion; a press or double click takes its owner.
bool ccUIEventProcessor::accepts_(ccMouseEvent const& event, ccUIObject* hit, std::uint32_t buttons, std::uint32_t which)
{
  switch (event.event()) {
  case ccMouseEvent::mouseMoved:
    return buttons == 0 || (button_ & buttons) != 0;
  case ccMouseEvent::mousePressed:
    if (buttons != which)  // another button is down
      return false;
    if (ownerDrags_()) {  // its release never came
      cc_NodeRef const target(hit);
      abandonDrag_();
      if (!target.alive())
        hit = nullptr;
    }
    anchor_ = event.position();
    owner_ = hit;
    button_ = which;
    inside_ = true;
    dwellCount_ = 0;
    return true;
  case ccMouseEvent::mouseDblClicked:
    if (ownerDrags_() && owner_ != hit) {
      cc_NodeRef const target(hit);
      abandonDrag_();
      if (!target.alive())
        hit = nullptr;
    }
    owner_ = hit;
    return which == button_;
  case ccMouseEvent::mouseReleased:
    return which == button_;
  case ccMouseEvent::mouseDwell:
    return (button_ & buttons) != 0;
  default:
    return false;
  }
}

void ccUIEventProcessor::hover_(ccUIObject* target)
{
  if (target == mouseOver_)
    return;
  ccUIObject* const common = cf_commonAncestor(mouseOver_, target);
  cc_NodeRef const targetRef(target);
  cc_NodeRef enteredRef(common);
  cc_NodeRef reached(mouseOver_);
  cc_OnThrow const stop([&] { mouseOver_ = reached.alive() ? reached.node() : nullptr; });
  for (ccUIObject* node = mouseOver_; node && node != common;) {
    cc_NodeRef const up(node->parent());
    reached = up;
    node->mouseLeave();
    node = up.alive() ? up.node() : nullptr;
  }
  // Down to the target, as far as hooks let it stand.
  ccUIObject* entered = common;
  cc_NodeWalk path;
  for (ccUIObject* node = targetRef.alive() ? target : nullptr; node && node != common; node = node->parent())
    path.add(node);
  path.reverse();
  while (targetRef.alive() && (!entered || enteredRef.alive())) {
    ccUIObject* const next = path.next();
    if (!next || next->parent() != entered)
      break;
    cc_NodeRef const nextRef(next);
    reached = nextRef;
    next->idleMouseEnter();
    if (!nextRef.alive())
      break;
    entered = next;
    enteredRef = nextRef;
  }
  mouseOver_ = enteredRef.alive() ? entered : nullptr;
}

void ccUIEventProcessor::moveOver_(ccPair<long> const& pos)
{
  for (ccUIObject* node = mouseOver_; node;) {
    cc_NodeRef const up(node->parent());
    node->mouseMove(pos);
    node = up.alive() ? up.node() : nullptr;
  }
}

void ccUIEventProcessor::deliver_(ccMouseEvent const& event, ccUIObject const* hit, std::uint32_t buttons,
                                  bool rightAsLeft)
{
  if (button_ == ccMouseEvent::middleButton) {
    owner_->mouseMiddle_(event.position(), event.event(), event.keys());
    return;
  }
  if (button_ == ccMouseEvent::rightButton) {
    owner_->mouseRight(event.position(), event.event(), event.keys());
    return;
  }
  if (button_ != ccMouseEvent::leftButton)
    return;
  switch (event.event()) {
  case ccMouseEvent::mouseMoved:
    if (buttons != 0)
      leftMoved_(event.position(), hit);
    break;
  case ccMouseEvent::mousePressed:
    leftPressed_((event.keys() & multiSelectMask_) != 0 || rightAsLeft);
    break;
  case ccMouseEvent::mouseDblClicked:
    buttonDown_ = true;
    owner_->dblClick();
    break;
  case ccMouseEvent::mouseReleased:
    leftReleased_(event.position());
    break;
  case ccMouseEvent::mouseDwell:
    if (owner_->dwell()) {
      ++dwellCount_;
      if (inside_)
        owner_->click();
    }
    break;
  default:
    break;
  }
}

void ccUIEventProcessor::leftMoved_(ccPair<long> const& pos, ccUIObject const* hit)
{
  ccUIObject* const owner = owner_;
  cc_NodeRef const ref(owner);
  auto const stands = [&] { return ref.alive() && owner_ == owner; };
  // The first motion begins the drag, without a threshold; a dwell tick rules it out for this press.
  if (owner->multiDragable() && !owner->dragging() && dwellCount_ == 0) {
    owner->dragStart(ccPair<long>(anchor_));
    if (!stands())
      return;
  }
  if (owner->dragging()) {
    owner->dragAnimate(ccPair<long>(anchor_), pos);
    if (!stands())
      return;
  }
  if (!owner->dragging() && owner->clickable()) {
    bool const nowInside = hit == owner;
    bool const wasInside = inside_;
    inside_ = nowInside;
    if (nowInside && !wasInside)
      owner->mouseDown();
    else if (!nowInside && wasInside)
      owner->mouseUp();
  }
}

void ccUIEventProcessor::leftPressed_(bool multiSelect)
{
  ccUIObject* const owner = owner_;
  cc_NodeRef const ref(owner);
  buttonDown_ = true;
  owner->userSelect(multiSelect ? 1 : 0);
  if (!ref.alive() || owner_ != owner)
    return;
  if (owner->multiDragable() && !owner->clickable())
    owner->dragStart(ccPair<long>(anchor_));
  else if (owner->clickable())
    owner->mouseDown();
}

void ccUIEventProcessor::leftReleased_(ccPair<long> const& pos)
{
  if (!buttonDown_ || dblClk_)
    return;
  buttonDown_ = false;
  ccUIObject* const owner = owner_;
  if (owner->clickable() && !owner->dragging() && inside_) {
    if (dwellCount_ == 0) {
      auto const key = owner->key();
      owner->click();
      if (!ccUIObject::isValid(owner, key, root_))
        return;  // it has deleted itself
    }
    owner->mouseUp();
  } else if (owner->dragging()) {
    cc_NodeRef const ref(owner);
    owner->dragStop(ccPair<long>(anchor_), pos);
    if (ref.alive())
      owner->mouseUp();
  }
}

void ccUIEventProcessor::processEvent(ccKeyboardEvent const& e)
{
  auto const self = weak_from_this().lock();
  if (!root_)
    return;
  ccLock lock(root_->mutex());
  ccKeyboardEvent const event = e;
  lastKeyboardEvent_ = event;
  bool const goesDown = event.event() == ccKeyboardEvent::keyDown || event.event() == ccKeyboardEvent::keyCharacter;
  bool const goesUp = event.event() == ccKeyboardEvent::keyUp || event.event() == ccKeyboardEvent::keyCharacter;
  if (!keyOwner_) {
    ccUIObject* const touched = touched_(mouseCapture_ ? mouseCapture_ : root_);
    if (goesDown)
      keyOwner_ = touched;
  }
  cc_AtEnd const lower([&] {
    if (goesUp)
      keyOwner_ = nullptr;
  });
  if (keyOwner_)
    keyOwner_->keyboard(event);
}

void ccUIEventProcessor::endDragOnScreen_()
{
  for (Layers layer : {ccUITablet::imageLayer, ccUITablet::overlayLayer}) {
    // An erase paints, and a hook of that may throw or end the root.
    cc_AtEnd const stop([&] {
      if (root_)
        root_->ccUITablet::dragStop(layer);
    });
    if (root_)
      root_->ccUITablet::dragErase(layer);
  }
}

// Hidden, disabled or replaced in the middle of its drag, the owner gets no more calls, but the screen and the other members
// of the selection come out of the drag.
void ccUIEventProcessor::abandonDrag_()
{
  ccUIObject const* const up = owner_->parent();
  if (up && !up->dying())  // a dying parent's kids leave the root, which ends the drag for each
    for (ccUIObject* sib = up->backKid(); sib; sib = sib->closerSib())
      sib->dragging(false);
  owner_->dragging(false);
  owner_->dragRuns_ = false;
  endDragOnScreen_();
}

void ccUIEventProcessor::windowGone()
{
  if (!root_)
    return;
  ccLock lock(root_->mutex());
  if (ownerDrags_())
    abandonDrag_();
  owner_ = nullptr;
}

// Destructors come by here, so whatever a hook throws that paints ends here; what it has not painted stays marked.
void ccUIEventProcessor::dropOwner_()
{
  bool const drags = ownerDrags_();
  if (drags) {
    owner_->dragging(false);
    owner_->dragRuns_ = false;
  }
  owner_ = nullptr;
  if (!drags)
    return;
  try {
    endDragOnScreen_();
  } catch (...) {
  }
}

void ccUIEventProcessor::forget_(ccUIObject const* obj)
{
  if (owner_ == obj)
    dropOwner_();
  if (keyOwner_ == obj)
    keyOwner_ = nullptr;
  if (mouseOver_ == obj)
    mouseOver_ = nullptr;
}

void ccUIEventProcessor::nodeLeaves_(ccUIObject* obj)
{
  if (ownerDrags_() && cf_isAtOrAbove(obj, owner_))
    try {
      abandonDrag_();
    } catch (...) {  // as in dropOwner_
    }
  if (root_)
    invalidateObject(obj);
}

void ccUIEventProcessor::invalidateObject(ccUIObject* obj)
{
  if (!root_)
    return;
  ccLock lock(root_->mutex(), /*lockNow=*/false);
  lock.lockFirm();
  ccLock registry(ccUIObject::uiMutex(), /*lockNow=*/false);
  registry.lockFirm();
  if (cf_isAtOrAbove(obj, owner_))
    dropOwner_();
  if (cf_isAtOrAbove(obj, keyOwner_))
    keyOwner_ = nullptr;
  if (cf_isAtOrAbove(obj, mouseOver_))
    mouseOver_ = nullptr;
}

void ccUIEventProcessor::multiSelectKey(ccKeyboardEvent::VirtualKey key)
{
  ccLock lock(root_->mutex());
  std::uint32_t const mask = cf_maskOf(key);
  multiSelectMask_ = mask;
  if (panMask_ == mask)
    panMask_ = 0;
}

ccKeyboardEvent::VirtualKey ccUIEventProcessor::multiSelectKey() const { return cf_keyOf(multiSelectMask_); }

void ccUIEventProcessor::panKey(ccKeyboardEvent::VirtualKey key)
{
  ccLock lock(root_->mutex());
  std::uint32_t const mask = cf_maskOf(key);
  panMask_ = mask;
  if (multiSelectMask_ == mask)
    multiSelectMask_ = 0;
}

ccKeyboardEvent::VirtualKey ccUIEventProcessor::panKey() const { return cf_keyOf(panMask_); }
