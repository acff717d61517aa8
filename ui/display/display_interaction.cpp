// The display under the operator's hand: mouse modes, the pan key, dragging the image and zooming by click.
#include "ui/core/event_processor.h"
#include "ui/core/root.h"
#include "ui/core/shapes.h"
#include "ui/display/display_hold.h"

#include <algorithm>
#include <cmath>

namespace {

struct cs_ModeRow {
  ccUIRootObject::Cursor cursor;
  bool draggable;
  ccUIObject::RightButtonModes rightButton;
  bool framesEnabled;
};

// By mouse mode. Disabling the frames is what makes shapes out of reach while navigating.
constexpr cs_ModeRow kModes[] = {
    {ccUIRootObject::arrowCursor, false, ccUIObject::rightButtonSendsBack, true},
    {ccUIRootObject::panCursor, true, ccUIObject::rightButtonSendsBack, false},
    {ccUIRootObject::zoomInCursor, false, ccUIObject::rightButtonToObject, false},
    {ccUIRootObject::zoomOutCursor, false, ccUIObject::rightButtonToObject, false},
};

cs_ModeRow const* cf_modeRow(ccDisplay::MouseMode mode)
{
  return mode >= ccDisplay::pointerMode && mode <= ccDisplay::zoomOutMode ? &kModes[mode] : nullptr;
}

bool cf_someoneDrags(ccUIRootObject* root)
{
  ccUIObject const* const owner = root ? root->eventProcessor()->owner() : nullptr;
  return owner && owner->dragging();
}

}  // namespace

void ccDisplay::cursor_(int c)
{
  if (root())
    root()->cursor(static_cast<ccUIRootObject::Cursor>(c));
}

void ccDisplay::mouseMode(MouseMode m)
{
  ccLock lock(rootMutex());
  cc_DisplayHold const self(*this);
  if (cs_ModeRow const* const row = cf_modeRow(m)) {
    cursor_(row->cursor);
    if (!self.stands())
      return;
    draggable(row->draggable);
    rightButtonMode(row->rightButton);
    displayFrame_->condEnabled(row->framesEnabled);
    if (self.stands())
      imageFrame_->condEnabled(row->framesEnabled);
    if (self.stands())
      clientFrame_->condEnabled(row->framesEnabled);
  }
  if (!self.stands())
    return;
  mouseMode_ = m;
  mouseModeChanged();
}

// Hovering shows the mode's cursor but never changes frames or draggable.
void ccDisplay::idleMouseMode(MouseMode m)
{
  ccLock lock(rootMutex());
  cc_DisplayHold const self(*this);
  if (cs_ModeRow const* const row = cf_modeRow(m))
    cursor_(row->cursor);
  if (!self.stands())
    return;
  mouseMode_ = m;
  mouseModeChanged();
}

void ccDisplay::mouseEnter_() { mouseMode(mouseMode_); }
void ccDisplay::idleMouseEnter_() { idleMouseMode(mouseMode_); }

void ccDisplay::mouseLeave_()
{
  ccLock lock(rootMutex());
  cursor_(ccUIRootObject::arrowCursor);
}

// The pressed point goes to the centre.
void ccDisplay::centreOnAnchor_()
{
  ccPair<long> const area = ccUITablet::size();
  ccPair<long> const anchor = root() ? root()->eventProcessor()->anchor() : ccPair<long>();
  constexpr long far = ccUIRect::kFar;  // an anchor may be set to anything
  ccPair<long> const near(std::clamp(anchor.x(), -far, far), std::clamp(anchor.y(), -far, far));
  panDelta(screenOrigin_ + ccPair<long>(area.x() / 2, area.y() / 2) - near);
}

void ccDisplay::click_()
{
  switch (mouseMode_) {
  case pointerMode: {
    cc_NodeWalk walk;
    walk.addKidsFrontToBack(*this);
    while (ccUIObject* const kid = walk.next())
      kid->condSelected(false, /*recurse=*/true);
    break;
  }
  case zoomInMode: {
    cc_ScreenLock const screen(this);
    cc_DisplayHold const self(*this);
    {
      cc_DrawingOff off(*this);
      centreOnAnchor_();
    }
    if (!self.stands())
      break;
    if (scaleMode_ == scaleUp)
      mag(scale().x() * 2);
    else if (scaleMode_ == scaleDown)
      mag(-(scale().x() / 2));
    else
      mag(2);
    break;
  }
  case zoomOutMode:
    if (scaleMode_ == scaleUp)
      mag(scale().x() / 2);
    else if (scaleMode_ == scaleDown)
      mag(scale().x() * -2);
    else
      mag(-2);
    break;
  default:
    break;
  }
}

void ccDisplay::dblClick_()
{
  if (mouseMode_ == panMode)
    centreOnAnchor_();
  else if (mouseMode_ == zoomInMode || mouseMode_ == zoomOutMode)
    click_();
}

void ccDisplay::mouseRight_(ccPair<long> const&, ccMouseEvent::Event event, unsigned long)
{
  if (mouseMode_ != zoomInMode && mouseMode_ != zoomOutMode)
    return;
  MouseMode const opposite = mouseMode_ == zoomInMode ? zoomOutMode : zoomInMode;
  if (event == ccMouseEvent::mousePressed || event == ccMouseEvent::mouseDblClicked)
    mouseMode(opposite);
  else if (event == ccMouseEvent::mouseReleased) {
    cc_DisplayHold const self(*this);
    click_();
    if (self.stands())
      mouseMode(opposite);
  }
}

void ccDisplay::keyboard_(ccKeyboardEvent const& e)
{
  if (!root() || e.keyType() != ccKeyboardEvent::virtualKeyType || e.repeatKey() ||
      e.virtualKey() != root()->eventProcessor()->panKey())
    return;
  if (e.event() == ccKeyboardEvent::keyDown && !cf_someoneDrags(root())) {
    panKeyState_ = 1;
    savedMouseMode_ = mouseMode_;
    mouseMode(mouseMode_ == panMode ? pointerMode : panMode);
  } else if (e.event() == ccKeyboardEvent::keyUp && panKeyState_ != 0) {
    if (cf_someoneDrags(root()))
      panKeyState_ = 2;
    else {
      panKeyState_ = 0;
      mouseMode(savedMouseMode_);
    }
  }
}

// Graphics are hidden while the image moves.
void ccDisplay::dragStart_(ccPair<long> const&)
{
  cc_DisplayHold const self(*this);
  if (root() && !panning_)
    root()->holdFrameSizer_(true);
  panning_ = true;
  // A drag that a hook's exception ends before it has begun brings the graphics back.
  cc_OnThrow const undo([&] {
    if (!self.stands())
      return;
    try {
      leavePan_();
    } catch (...) {
      // The first exception goes to the caller.
    }
  });
  displayFrame_->condVisible(false);
  if (self.stands())
    imageFrame_->condVisible(false);
  if (self.stands())
    clientFrame_->condVisible(false);
  if (!self.stands())
    return;
  hideOpaqueKids_();
  cursor_(ccUIRootObject::grabCursor);
}

// Controls that draw on the image layer would be drawn over by the moving image.
void ccDisplay::hideOpaqueKids_()
{
  outOfSight_.clear();
  for (ccUIObject* kid = backKid(); kid; kid = kid->closerSib()) {
    ccUIFrame* const frame = kid->frame(false);
    if (frame && frame->isVisible() && frame->opaque(imageLayer))
      outOfSight_.emplace_back(kid, kid->key());
  }
  for (auto const& kid : outOfSight_)
    kid.first->frame(false)->ccUITablet::visible(false);
}

void ccDisplay::showOpaqueKids_()
{
  for (auto const& [kid, key] : outOfSight_)
    if (isValid(kid, key, root()) && kid->condVisible())
      if (ccUIFrame* const frame = kid->frame(false))
        frame->ccUITablet::visible(true);
  outOfSight_.clear();
}

void ccDisplay::dragStop_(ccPair<long> const& from, ccPair<long> const& to)
{
  cc_DisplayHold const self(*this);
  dragDel(ccPair<long>(0, 0));
  {
    cc_OnThrow const back([&] {
      if (!self.stands())
        return;
      try {
        leavePan_();
      } catch (...) {
        // The first exception goes to the caller.
      }
    });
    cursor_(ccUIRootObject::panCursor);
    // The image jumps by the whole way at once; until now only the drag's offset showed it moving.
    if (self.stands())
      panDelta(to - from);
  }
  if (self.stands())
    leavePan_();
  if (self.stands() && panKeyState_ == 2) {
    panKeyState_ = 0;
    mouseMode(savedMouseMode_);
  }
}

void ccDisplay::leavePan_()
{
  cc_DisplayHold const self(*this);
  showOpaqueKids_();
  if (root() && panning_)
    root()->holdFrameSizer_(false);
  panning_ = false;
  displayFrame_->condVisible(true);
  if (self.stands())
    imageFrame_->condVisible(true);
  if (self.stands())
    clientFrame_->condVisible(true);
}

// A display that is hidden or disabled in the middle of a drag hears nothing of its end: its graphics come back at once.
void ccDisplay::disable(States state, bool nested)
{
  cc_DisplayHold const self(*this);
  ccUIControlFrame::disable(state, nested);
  if (self.stands() && panning_)
    leavePan_();
}

// Nor does one whose drag was replaced by another gesture, as the button's release never came: the next motion over it shows.
void ccDisplay::mouseMove_(ccPair<long> const&) { endLostPan_(); }

void ccDisplay::endLostPan_()
{
  if (panning_ && !dragging())
    leavePan_();
}

// The map may move under a shape that is being dragged: its anchor moves with the map.
void ccDisplay::handleDraggingXformChange()
{
  if (!root())
    return;
  ccUIEventProcessor& events = *root()->eventProcessor();
  ccUIObject* const owner = events.owner();
  if (!owner || !owner->shapes(true) || !owner->dragging() || !owner->tablet())
    return;
  ccUIShapesFrame* frame = nullptr;
  for (ccUIObject* node = owner; node && !frame; node = node->parent())
    frame = node->shapesFrame(true);
  auto* const nested = dynamic_cast<ccUINestedCoordFrame*>(frame);
  if (!nested || nested->parentFromChild() == nested->prevParentFromChild())
    return;
  double const d = nested->screenMap_.matrix().determinant();
  if (d == 0 || !std::isfinite(d))
    return;
  ccVector<2> const moved =
      (nested->parentFromChild().trans() - nested->prevParentFromChild().trans()) * magExact();
  ccVector<2> const place =
      nested->tabletFromScreen(events.anchor()) + nested->screenMap_.inverse().mapVector(moved);
  events.anchor(owner->tablet()->screenCoords(place));
  nested->updatePrevXform();  // or the next pan would move the anchor once more
}

void ccDisplay::addShape(ccUIShapes* shape, CoordinateSystem cs)
{
  if (!shape)
    return;
  ccLock lock(rootMutex());
  cc_NodeRef const added(shape);
  ccUIShapesFrame* const frame = shapesFrame(cs);
  bool const drawn = frame && !shape->parent() && shape->condVisible();
  if (frame)
    shape->parent(frame);  // which counts it, and draws one that came from nowhere
  if (!drawn && added.exists())
    shape->update(/*withKids=*/true, /*erase=*/true, nullptr, bothLayers);
}

bool ccDisplay::removeShape(ccUIShapes* shape)
{
  ccLock lock(rootMutex());
  ccUIObject* const parent = shape ? shape->parent() : nullptr;
  ccUIShapesFrame* const frame = parent ? parent->shapesFrame(true) : nullptr;
  if (!frame || (frame != displayFrame_ && frame != imageFrame_ && frame != clientFrame_))
    return false;
  shape->parent(nullptr);
  return true;
}

ccUIShapesFrame* ccDisplay::shapesFrame(CoordinateSystem cs)
{
  switch (cs) {
  case displayCoords:
    return displayFrame_;
  case imageCoords:
    return imageFrame_;
  case clientCoords:
    return clientFrame_;
  default:
    return nullptr;
  }
}

ccPelRect ccDisplay::selectArea(CoordinateSystem cs, char const* prompt, ccColor const& color)
{
  return selectArea(cs, ccPelRect(), prompt, color);
}

ccPair<double> ccDisplay::selectPoint(CoordinateSystem cs, char const* prompt, ccColor const& color)
{
  return selectPoint(cs, ccPair<double>(0, 0), prompt, color);
}
