#include "ui/core/control_frame.h"

#include "foundation/resource.h"
#include "ui/core/node_walk.h"

ccUIControlFrame::ccUIControlFrame(ccUIScope* image, ccUIScope* overlay) : ccUIFrame(image, overlay) {}

ccUIControlFrame::ccUIControlFrame(ccUIFrame* parent, ccUIRect const& r) : ccUIFrame(parent, r) {}

ccUIControlFrame::~ccUIControlFrame()
{
  beginDestruction();
  // Front to back, without a list: a destructor needs no memory. After a hook that took the next one away, anew.
  for (ccUIObject* kid = frontKid(); kid;) {
    ccUIObject* const after = kid->fartherSib();
    if (!kid->autoDelete() || kid->dying()) {
      kid = after;
      continue;
    }
    cc_NodeRef const next(after);
    delete kid;
    kid = !after ? nullptr : next.exists() && after->parent() == this ? after : frontKid();
  }
}

ccUIObject* ccUIControlFrame::frontKid() const
{
  ccUITablet* kid = lastKid();
  while (kid && !kid->enclosing_)
    kid = kid->prevSib();
  return cfFrameOf(kid);
}

ccUIObject* ccUIControlFrame::backKid() const
{
  ccUITablet* kid = firstKid();
  while (kid && !kid->enclosing_)
    kid = kid->nextSib();
  return cfFrameOf(kid);
}

long ccUIControlFrame::numKids() const { return ccUITablet::numKids(); }

void ccUIControlFrame::redraw_() { ccUITablet::redraw_(); }

void ccUIControlFrame::parentResized()
{
  if (attachedTo_ != attachedNone)
    reposition();
}

void ccUIControlFrame::parentClipped()
{
  if (attachedTo_ != attachedNone)
    reposition();
}

void ccUIControlFrame::attachedTo(AttachedTo a)
{
  ccLock lock(rootMutex());
  attachedTo_ = a;
  computeAttachedToOffset();
}

void ccUIControlFrame::move_()
{
  ccLock lock(rootMutex());
  computeAttachedToOffset();
}

namespace {

struct AttachPoint {
  long x, y;
  bool fromX, fromY;  // the distance is counted back from the point; else it is the position itself
};

// The point of a parent's area of w by h pels that a frame keeps its distance to.
AttachPoint cf_attachPoint(ccUIControlFrame::AttachedTo a, long w, long h)
{
  switch (a) {
  case ccUIControlFrame::attachedTopCenter:
    return {w / 2, 0, true, false};
  case ccUIControlFrame::attachedTopRight:
    return {w, 0, true, false};
  case ccUIControlFrame::attachedLeftCenter:
    return {0, h / 2, false, true};
  case ccUIControlFrame::attachedCenter:
    return {w / 2, h / 2, true, true};
  case ccUIControlFrame::attachedRightCenter:
    return {w, h / 2, true, true};
  case ccUIControlFrame::attachedBottomLeft:
    return {0, h, false, true};
  case ccUIControlFrame::attachedBottomCenter:
    return {w / 2, h, true, true};
  case ccUIControlFrame::attachedBottomRight:
    return {w, h, true, true};
  default:
    return {0, 0, false, false};
  }
}

}  // namespace

void ccUIControlFrame::computeAttachedToOffset()
{
  if (attachedTo_ < attachedTopCenter || attachedTo_ > attachedBottomRight || !parentTablet())
    return;
  ccUIRect const area = parentTablet()->currentScope(imageLayer);
  AttachPoint const p = cf_attachPoint(attachedTo_, area.width(), area.height());
  ccPair<long> const at = frameRect_.ul();
  attachedOffset_ = ccPair<long>(p.fromX ? p.x - at.x() : at.x(), p.fromY ? p.y - at.y() : at.y());
  // At the left centre the distance is the parent's width itself, on purpose: the frame goes there when it is placed anew.
  if (attachedTo_ == attachedLeftCenter)
    attachedOffset_.x() = area.width();
}

void ccUIControlFrame::reposition()
{
  ccLock lock(rootMutex());
  if (attachedTo_ < attachedTopCenter || attachedTo_ > attachedBottomRight || !parentTablet())
    return;
  ccUIRect const area = parentTablet()->currentScope(imageLayer);
  AttachPoint const p = cf_attachPoint(attachedTo_, area.width(), area.height());
  ccPair<long> const& o = attachedOffset_;
  moveAbs(ccPair<long>(p.fromX ? p.x - o.x() : o.x(), p.fromY ? p.y - o.y() : o.y()));
}

void ccUIControlFrame::dragStart_(ccPair<long> const&)
{
  if (!attachedToDrag_)
    attachedTo_ = attachedNone;
}

void ccUIControlFrame::dragAnimate_(ccPair<long> const& from, ccPair<long> const& to)
{
  ccUIObject* const up = parent();
  ccUIFrame* const above = up ? up->frame(false) : nullptr;
  if (above)
    above->outline(frameRect_ + (to - from), dragColor(), 1, overlaySupported() ? overlayLayer : imageLayer);
}

void ccUIControlFrame::dragStop_(ccPair<long> const& from, ccPair<long> const& to) { moveRel(to - from); }
