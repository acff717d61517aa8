#include "ui/shapes/frame_sizer.h"

#include "foundation/resource.h"
#include "ui/core/root.h"

namespace {

constexpr ccPair<long> minimumSize(10, 10);  // pels

}  // namespace

ccPair<long> cfFrameSizeHandlePos(ccUIRect const& r, int dx, int dy)
{
  return ccPair<long>(r.left() + r.width() * (dx + 1) / 2, r.top() + r.height() * (dy + 1) / 2);
}

ccUIRect cfFrameSizeHandleDrag(ccUIRect const& r, int dx, int dy, ccPair<long> delta)
{
  ccPair<long> const wanted(dx * delta.x() + r.width(), dy * delta.y() + r.height());
  ccPair<long> const size = wanted < minimumSize ? minimumSize : wanted;
  delta.x() -= dx * (wanted.x() - size.x());
  delta.y() -= dy * (wanted.y() - size.y());
  return ccUIRect(r.left() + (dx < 0 ? delta.x() : 0), r.top() + (dy < 0 ? delta.y() : 0), size.x(), size.y());
}

ccUIFrameSizer::ccUIFrameSizer(ccUIRootObject* root) : ccUIShapesFrame(root, ccUIRect::firstQuad) { dontMove(true); }

ccUIFrameSizer::~ccUIFrameSizer()
{
  beginDestruction();
  if (root_ && root_->frameSizer_ == this)
    root_->frameSizer_ = nullptr;
}

void ccUIFrameSizer::attach(ccUIFrame* f)
{
  ccLock lock(rootMutex());
  frame_ = f;
  if (!f)
    return;
  // The plane that the frame lives in, or the top of its tree.
  ccUIObject* home = f->parent();
  while (home && home->parent() &&
         !(root_ && (home == root_->subPlane_ || home == root_->groundPlane_ || home == root_->floatingPlane_)))
    home = home->parent();
  if (ccUIFrame* const above = home ? home->frame(true) : nullptr)
    setParent(*above, ccUIRect::firstQuad);
  drawLayer(f->drawLayer());
}

void ccUIFrameSizer::refresh()
{
  ccLock lock(rootMutex());
  condVisible(frame_ && frame_->resizable() && (frame_->selected() || selected()));
}

void ccUIFrameSizer::hold(bool on)
{
  ccLock lock(rootMutex());
  if (on)
    drawEnabled_.push(false);
  else
    drawEnabled_.pop();
}

ccUIFrameSizer* ccUIRootObject::frameSizer()
{
  ccLock lock(mutex_);
  if (!frameSizer_)
    frameSizer_ = new ccUIFrameSizer(this);
  return frameSizer_;
}

void ccUIRootObject::attachFrameSizer_(ccUIFrame* f)
{
  if (f || frameSizer_)
    frameSizer()->attach(f);
}

ccUIFrame* ccUIRootObject::frameSizerAttachedTo_() const { return frameSizer_ ? frameSizer_->attachedTo() : nullptr; }

void ccUIRootObject::refreshFrameSizer_() { frameSizer()->refresh(); }

void ccUIRootObject::holdFrameSizer_(bool hold)
{
  if (frameSizer_)
    frameSizer_->hold(hold);
}

void ccUIRootObject::deleteFrameSizer_()
{
  ccUIFrameSizer* const dying = frameSizer_;
  frameSizer_ = nullptr;
  delete dying;
}
