// The tree of tablets: links, order among siblings, visibility, and kids found by their place.
#include "canvas/rect_index.h"
#include "canvas/tablet.h"
#include "canvas/tablet_top.h"

#include <new>

void ccUITablet::link_(ccUITablet& parent)
{
  parentTablet_ = &parent;
  prevSib_ = parent.lastKid_;
  nextSib_ = nullptr;
  (prevSib_ ? prevSib_->nextSib_ : parent.firstKid_) = this;
  parent.lastKid_ = this;
  ++parent.numKids_;
  zOrder_ = ++parent.kidsFront_;
  indexPlace_();
  cc_TabletTop::refreshShown(*this);
}

void ccUITablet::unlink_()
{
  if (cc_TabletTop* top = top_()) {
    top->forget(*this);
    top->linked();
    top->changed();
  }
  (prevSib_ ? prevSib_->nextSib_ : parentTablet_->firstKid_) = nextSib_;
  (nextSib_ ? nextSib_->prevSib_ : parentTablet_->lastKid_) = prevSib_;
  --parentTablet_->numKids_;
  if (parentTablet_->kidIndex_)
    parentTablet_->kidIndex_->remove(layers_->place);
  parentTablet_ = prevSib_ = nextSib_ = nullptr;
  cc_TabletTop::refreshShown(*this);
}

// Gives the subtree to another tree, or to none. Nothing of it has been drawn there.
void ccUITablet::joinTree_(cc_TabletTop* top)
{
  for (ccUITablet* t = this; t; t = cc_TabletTop::next(t, this)) {
    cc_TabletLayers& own = *t->layers_;
    own.top = top;
    own.recordsChanges = false;
    own.dragDel = ccPair<long>();
    for (cc_TabletLayers::cs_Layer& layer : own.layer) {
      layer.covered = false;
      layer.modified = ccUIRect();
      for (cs_Region& region : layer.regions)
        region.version = 0;
    }
  }
}

ccUITablet& ccUITablet::setParent(ccUITablet& parent, ccUIRect const& frame)
{
  if (cc_TabletTop::inSubtree(&parent, this))
    return *this; // a tablet below itself would be out of every tree
  markOldPlace_();
  if (ownTop_) {
    setScope(bothLayers, nullptr, false);
    joinTree_(nullptr);
    ownTop_.reset();
  }
  if (parentTablet_)
    unlink_();
  layers_->recorder = false;
  link_(parent);
  cc_TabletTop* const top = parent.top_();
  if (top != top_())
    joinTree_(top);
  bool const moved = frame.ul() != frameRect_.ul();
  bool const sized = frame.sz() != frameRect_.sz();
  frameRect_ = frame;
  indexPlace_();
  locate_();
  if (top)
    top->changed();
  markNewPlace_();
  cc_Watch const watch(*this);
  newParentTablet(&parent);
  if (watch.tablet())
    runGeometryHooks_(moved, sized);
  if (watch.tablet())
    parentMapChanged();
  return *this;
}

void ccUITablet::front()
{
  if (!nextSib_)
    return;
  ccUITablet& parent = *parentTablet_;
  unlink_();
  link_(parent);
  markNewPlace_();
}

void ccUITablet::back()
{
  if (!prevSib_)
    return;
  startBehind();
  cc_TabletTop* const top = top_();
  if (top && isShown())
    for (int layer = 0; layer < 2; ++layer)
      top->mark(layer, layers_->clip, nullptr);
}

void ccUITablet::startBehind()
{
  if (!prevSib_)
    return;
  ccUITablet& parent = *parentTablet_;
  prevSib_->nextSib_ = nextSib_;
  (nextSib_ ? nextSib_->prevSib_ : parent.lastKid_) = prevSib_;
  prevSib_ = nullptr;
  nextSib_ = parent.firstKid_;
  nextSib_->prevSib_ = this;
  parent.firstKid_ = this;
  zOrder_ = --parent.kidsBack_;
  if (cc_TabletTop* const top = top_()) {
    top->linked();
    top->changed();
  }
}

void ccUITablet::visible(bool on)
{
  if (on == visible_)
    return;
  if (!on)
    markOldPlace_();
  bool const wasShown = isShown();
  visible_ = on;
  cc_TabletTop::refreshShown(*this);
  if (cc_TabletTop* top = top_())
    top->changed();
  if (on) {
    markNewPlace_();
  } else if (wasShown) {
    // What lies below a hidden one was cleared when that was hidden.
    for (ccUITablet* t = this; t;) {
      for (cc_TabletLayers::cs_Layer& layer : t->layers_->layer) {
        layer.modified = ccUIRect();
        layer.covered = false; // its looks may change while it can't be seen
      }
      t = t == this || t->visible_ ? cc_TabletTop::next(t, this) : cc_TabletTop::afterSubtree(t, this);
    }
  }
}

bool ccUITablet::isShown() const { return layers_->shown; }

// What has been drawn must be wiped, and behind what is opaque nothing may have been drawn at all.
void ccUITablet::markOldPlace_()
{
  cc_TabletTop* const top = top_();
  if (top && isShown())
    for (int layer = 0; layer < 2; ++layer)
      top->mark(layer, top->owedBehind(*this, layer), nullptr);
}

void ccUITablet::markNewPlace_()
{
  cc_TabletTop* const top = top_();
  if (top && isShown())
    for (int layer = 0; layer < 2; ++layer)
      top->mark(layer, layers_->clip, this);
}

// ---- Kids by place

namespace {

constexpr long kManyKids = 64;  // below, a walk over all is as quick

}  // namespace

void ccUITablet::indexPlace_()
{
  if (!parentTablet_ || !parentTablet_->kidIndex_)
    return;
  layers_->place.owner = this;
  parentTablet_->kidIndex_->put(layers_->place, frameRect_);
}

bool ccUITablet::visitKidsAt(ccPair<long> const& local, void (*visit)(void*, ccUITablet&), void* with)
{
  if (!kidIndex_) {
    if (numKids_ < kManyKids)
      return false;
    kidIndex_.reset(new (std::nothrow) cc_RectIndex);
    if (!kidIndex_)
      return false;
    for (ccUITablet* kid = firstKid_; kid; kid = kid->nextSib_)
      kid->indexPlace_();
  }
  kidIndex_->at(local, [&](cc_RectIndex::Entry& e) { visit(with, *static_cast<ccUITablet*>(e.owner)); });
  return true;
}
