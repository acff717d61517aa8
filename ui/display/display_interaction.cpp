// The display under the operator's hand: mouse modes, the pan key, dragging the image and zooming by click.
#include "ui/core/event_processor.h"
#include "ui/core/node_walk.h"
#include "ui/core/root.h"
#include "ui/core/shapes.h"
#include "ui/display/display.h"

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
  if (cs_ModeRow const* const row = cf_modeRow(m)) {
    cursor_(row->cursor);
    draggable(row->draggable);
    rightButtonMode(row->rightButton);
    displayFrame_->condEnabled(row->framesEnabled);
    imageFrame_->condEnabled(row->framesEnabled);
    clientFrame_->condEnabled(row->framesEnabled);
  }
  mouseMode_ = m;
  mouseModeChanged();
}

// Hovering shows the mode's cursor but never changes frames or draggable.
void ccDisplay::idleMouseMode(MouseMode m)
{
  ccLock lock(rootMutex());
  if (cs_ModeRow const* const row = cf_modeRow(m))
    cursor_(row->cursor);
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
  panDelta(screenOrigin_ + ccPair<long>(area.x() / 2, area.y() / 2) - anchor);
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
    disableDrawing();
    centreOnAnchor_();
    enableDrawing(false);
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
    click_();
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
      mouseMode(savedMouseMode_);
      panKeyState_ = 0;
    }
  }
}

// Graphics are hidden while the image moves.
void ccDisplay::dragStart_(ccPair<long> const&)
{
  displayFrame_->condVisible(false);
  imageFrame_->condVisible(false);
  clientFrame_->condVisible(false);
  cursor_(ccUIRootObject::grabCursor);
  if (root() && !panning_)
    root()->holdFrameSizer_(true);
  panning_ = true;
}

void ccDisplay::dragStop_(ccPair<long> const& from, ccPair<long> const& to)
{
  dragDel(ccPair<long>(0, 0));
  cursor_(ccUIRootObject::panCursor);
  // The image jumps by the whole way at once; until now only the drag's offset showed it moving.
  panDelta(to - from);
  leavePan_();
  if (panKeyState_ == 2) {
    mouseMode(savedMouseMode_);
    panKeyState_ = 0;
  }
}

void ccDisplay::leavePan_()
{
  displayFrame_->condVisible(true);
  imageFrame_->condVisible(true);
  clientFrame_->condVisible(true);
  if (root() && panning_)
    root()->holdFrameSizer_(false);
  panning_ = false;
}

// A display that is hidden or disabled in the middle of a drag hears nothing of its end: its graphics come back at once.
void ccDisplay::disable(States state, bool nested)
{
  ccUIControlFrame::disable(state, nested);
  if (panning_)
    leavePan_();
}

// Nor does one whose drag was replaced by another gesture, as the button's release never came: the next motion over it shows.
void ccDisplay::mouseMove_(ccPair<long> const&)
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
  if (ccUIShapesFrame* const frame = shapesFrame(cs)) {
    shape->parent(frame);
    frame->incrementCount(shape->drawLayer());
  }
  shape->update(/*withKids=*/true, /*erase=*/true, nullptr, bothLayers);
}

bool ccDisplay::removeShape(ccUIShapes* shape)
{
  ccLock lock(rootMutex());
  ccUIObject* const parent = shape ? shape->parent() : nullptr;
  ccUIShapesFrame* const frame = parent ? parent->shapesFrame(true) : nullptr;
  if (!frame || (frame != displayFrame_ && frame != imageFrame_ && frame != clientFrame_))
    return false;
  frame->decrementCount(shape->drawLayer());
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
