#include "ui/core/frame.h"

#include "foundation/resource.h"
#include "ui/core/node_walk.h"
#include "ui/core/root.h"

ccUIFrame* cfFrameOf(ccUITablet const* tablet)
{
  return tablet ? static_cast<ccUIFrame*>(tablet->enclosing_) : nullptr;
}

ccUIFrame::ccUIFrame(ccUIScope* image, ccUIScope* overlay) : ccUITablet(image, overlay)
{
  enclosing_ = this;
  ccUITablet::visible(false);
}

// The parent's mutex is held while the tablet is linked into the tree.
ccUIFrame::ccUIFrame(ccUIFrame* parent, ccUIRect const& r)
    : ccUIFrame(parent, r, ccLock(parent ? parent->rootMutex() : orphanMutex()))
{
}

ccUIFrame::ccUIFrame(ccUIFrame* parent, ccUIRect const& r, ccLock const&)
    : ccUITablet(static_cast<ccUITablet*>(parent), r)
{
  enclosing_ = this;
  ccUITablet::visible(false);
  if (!parent)
    return;
  ccUIRootObject* const above = parent->rootObject(true);
  newRoot(above ? above : parent->root(), /*recurse=*/false);
}

ccUIFrame::~ccUIFrame()
{
  beginDestruction();
  if (root_ && root_->frameSizerAttachedTo_() == this)
    root_->attachFrameSizer_(nullptr);
  leaveGesture();
  enclosing_ = nullptr;
}

void ccUIFrame::beginDestruction()
{
  ccUIObject::beginDestruction();
  ccUITablet::visible(false);
}

ccUIObject* ccUIFrame::parent() const { return cfFrameOf(parentTablet()); }

// Plain tablets among the siblings are no nodes.
ccUIObject* ccUIFrame::closerSib() const
{
  ccUITablet* sib = nextSib();
  while (sib && !sib->enclosing_)
    sib = sib->nextSib();
  return cfFrameOf(sib);
}

ccUIObject* ccUIFrame::fartherSib() const
{
  ccUITablet* sib = prevSib();
  while (sib && !sib->enclosing_)
    sib = sib->prevSib();
  return cfFrameOf(sib);
}

namespace {

// The frame whose kids are being asked, known to be visible as long as no node has changed its wish.
thread_local ccUIFrame const* askedFrame = nullptr;
thread_local std::uint64_t askedVisibility = 0;

}  // namespace

ccUIFrame::cc_HitScope::cc_HitScope(ccUIFrame const& f) : former_(askedFrame), formerVisibility_(askedVisibility)
{
  askedFrame = &f;
  askedVisibility = visibility_();
}

ccUIFrame::cc_HitScope::~cc_HitScope()
{
  askedFrame = former_;
  askedVisibility = formerVisibility_;
}

bool ccUIFrame::isHitAt_(ccPair<long> const& pos) const
{
  if (dying() || !condVisible() || !frameRect_.within(pos))
    return false;
  bool const known = askedFrame && cfFrameOf(parentTablet()) == askedFrame && askedVisibility == visibility_();
  return known || visible();
}

ccUIObject* ccUIFrame::whoIsTouched(ccPair<long> const& pos)
{
  ccLock lock(rootMutex());
  if (!isHitAt_(pos))
    return nullptr;
  ccPair<long> const local = pos - frameRect_.ul();
  cc_HitScope const seen(*this);
  cc_NodeWalk near;
  if (near.addKidsAt(*this, local)) {
    while (ccUIObject* const kid = near.next())
      if (ccUIObject* const touched = kid->whoIsTouched(local))
        return touched;
    return isTouched(local) ? this : nullptr;
  }
  for (ccUIObject* kid = frontKid(); kid; kid = kid->fartherSib())
    if (ccUIObject* const touched = kid->whoIsTouched(local))
      return touched;
  return isTouched(local) ? this : nullptr;
}

void ccUIFrame::show(bool) { ccUITablet::visible(true); }

void ccUIFrame::hide(bool) { ccUITablet::visible(false); }

bool ccUIFrame::isTouched(ccPair<long> const&)
{
  return (overlaySupported() && opaque(overlayLayer)) || opaque(imageLayer);
}

void ccUIFrame::parentResized() {}

void ccUIFrame::parentClipped() {}

void ccUIFrame::resizable(bool on)
{
  ccLock lock(rootMutex());
  if (on && !resizable() && selected() && root_) {
    ccUIObject* const sized = root_->frameSizerAttachedTo_();
    ccUIObject* node = sized;
    while (node && node != this)
      node = node->parent();
    // A sizer that stands on this frame or below it stays there.
    if (!node)
      root_->attachFrameSizer_(this);
  }
  frameFlags_ = on ? frameFlags_ | 1u : frameFlags_ & ~1u;
}

void ccUIFrame::front_(ccUIObject* kid)
{
  ccLock lock(rootMutex());
  if (ccUIFrame* const frame = kid->frame(false))
    frame->ccUITablet::front();
}

void ccUIFrame::back_(ccUIObject* kid)
{
  ccLock lock(rootMutex());
  if (ccUIFrame* const frame = kid->frame(false))
    frame->ccUITablet::back();
}

namespace {

void cf_tellFrames(ccUIObject& parent, void (ccUIFrame::*what)())
{
  cc_NodeWalk walk;
  walk.addKidsFrontToBack(parent);
  while (ccUIObject* const kid = walk.next())
    if (auto* const frame = dynamic_cast<ccUIFrame*>(kid))
      (frame->*what)();
}

}  // namespace

void ccUIFrame::resize_()
{
  ccLock lock(rootMutex());
  cf_tellFrames(*this, &ccUIFrame::parentResized);
}

void ccUIFrame::clipped_()
{
  ccLock lock(rootMutex());
  cf_tellFrames(*this, &ccUIFrame::parentClipped);
}

void ccUIFrame::newParentTablet(ccUITablet*)
{
  // A root keeps null in its own root_, so it is asked for itself, as in the constructor.
  ccUIFrame* const above = cfFrameOf(parentTablet());
  ccUIRootObject* const root = above ? above->rootObject(true) : nullptr;
  newRoot(root ? root : above ? above->root() : nullptr, /*recurse=*/true);
  settle_(/*repaint=*/false);  // what is seen of it follows its new ancestors, and no hook is due
}
