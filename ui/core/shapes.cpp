#include "ui/core/shapes.h"

#include "canvas/on_throw.h"
#include "canvas/ui_error.h"
#include "foundation/resource.h"
#include "ui/core/event_processor.h"
#include "ui/core/node_walk.h"
#include "ui/core/root.h"
#include "ui/core/shapes_frame.h"

#include <algorithm>
#include <atomic>
#include <cmath>

namespace {

ccUIRootObject* cf_rootOf(ccUIObject* node)
{
  if (!node)
    return nullptr;
  ccUIRootObject* const self = node->rootObject(true);
  return self ? self : node->root();
}

}  // namespace

ccUIShapes::ccUIShapes(ccUIObject* parentNode)
{
  draggable(true);
  clickable(true);
  if (parentNode)
    parent(parentNode);
}

ccUIShapes::~ccUIShapes()
{
  beginDestruction();
  leaveGesture();
  try {
    parent(nullptr);
  } catch (...) {
    // A hook or memory failed on the way out; what the shape has drawn is wiped by the next update.
    owe_();
  }
  if (parent_) {  // that, or a hook of a kid has moved the whole tree to another root meanwhile
    ccLock lock(rootMutex(), /*lockNow=*/false);
    lock.lockFirm();
    unlink_();
    newRoot(nullptr, /*recurse=*/true);
  }
  releaseKids_(*this);
}

// The autoDelete ones die, the others lose their parent. A kid that is dying already has called a hook that deletes parent.
// Front to back, without a list: destructors need no memory.
void ccUIShapes::releaseKids_(ccUIObject& parent) noexcept
{
  while (ccUIObject* const kid = parent.frontKid()) {
    if (kid->autoDelete() && !kid->dying()) {
      delete kid;
      continue;
    }
    ccUIShapes* const shape = kid->shapes(true);
    shape->unlink_();
    shape->newRoot(nullptr, /*recurse=*/true);
  }
}

// Never used twice, so that siblings can be told apart whatever list they come from. Under the root's mutex, which differs
// from tree to tree.
std::int64_t ccUIShapes::nextOrder_(bool front)
{
  static std::atomic<std::int64_t> last{0};
  std::int64_t const next = last.fetch_add(1, std::memory_order_relaxed) + 1;
  return front ? next : -next;
}

void ccUIShapes::count_()
{
  ccUIShapesFrame* const frame = parent_ ? parent_->shapesFrame(true) : nullptr;
  if (!frame || !frame->countsShapes() || countedOn_ >= 0)
    return;
  if (drawLayer() != cc_TabletEnums::imageLayer && drawLayer() != cc_TabletEnums::overlayLayer)
    return;
  countedOn_ = drawLayer();
  frame->incrementCount(drawLayer());
}

void ccUIShapes::uncount_()
{
  ccUIShapesFrame* const frame = parent_ && countedOn_ >= 0 ? parent_->shapesFrame(true) : nullptr;
  if (frame)
    frame->decrementCount(static_cast<cc_TabletEnums::Layers>(countedOn_));
  countedOn_ = -1;
}

bool ccUIShapes::liesElsewhere_(cc_TabletEnums::Layers layer) const
{
  return drawLayer_ != layer || std::any_of(kids_.begin(), kids_.end(), [=](ccUIShapes const* kid) {
           return kid->liesElsewhere_(layer);
         });
}

void ccUIShapes::noteLayers_()
{
  ccUIShapes const* top = this;
  while (ccUIShapes const* const above = top->parent_ ? top->parent_->shapes(true) : nullptr)
    top = above;
  ccUIShapesFrame* const frame = top->parent_ ? top->parent_->shapesFrame(true) : nullptr;
  if (frame && !frame->mixesLayers_)
    frame->mixesLayers_ = liesElsewhere_(top->drawLayer_);
}

ccUIObject* ccUIShapes::closerSib() const
{
  if (!siblings_)
    return nullptr;
  auto const next = std::next(sibPos_);
  return next == siblings_->end() ? nullptr : *next;
}

ccUIObject* ccUIShapes::fartherSib() const
{
  return siblings_ && sibPos_ != siblings_->begin() ? *std::prev(sibPos_) : nullptr;
}

ccUIObject* ccUIShapes::frontKid() const { return kids_.empty() ? nullptr : kids_.back(); }

ccUIObject* ccUIShapes::backKid() const { return kids_.empty() ? nullptr : kids_.front(); }

long ccUIShapes::numKids() const { return static_cast<long>(kids_.size()); }

ccUITablet* ccUIShapes::tablet() const { return parent_ ? parent_->tablet() : nullptr; }

std::list<ccUIShapes*>* ccUIShapes::listOf_(ccUIObject* node)
{
  if (ccUIShapes* const shape = node->shapes(true))
    return &shape->kids_;
  ccUIShapesFrame* const frame = node->shapesFrame(false);
  return frame ? &frame->shapes_ : nullptr;
}

void ccUIShapes::unlink_()
{
  uncount_();
  if (drawnPlace_.index)
    drawnPlace_.index->remove(drawnPlace_);
  if (siblings_)
    siblings_->erase(sibPos_);
  siblings_ = nullptr;
  parent_ = nullptr;
}

void ccUIShapes::parent(ccUIObject* above)
{
  for (ccUIObject const* node = above; node; node = node->parent())
    if (node == this)  // nor below itself
      throw ccUIError::BadParams();
  if (above && !listOf_(above))
    throw ccUIError::BadParams();

  // A root's mutex comes before the orphans' one, and the former root's before the new one's.
  ccLock outer(root_ || !above ? rootMutex() : above->rootMutex());
  ccLock lock(rootMutex());
  cc_NodeRef const self(this), target(above);
  bool const wanted = condVisible();
  ccUIRootObject* const former = root_;
  std::list<ccUIShapes*> place;  // made before anything has changed
  if (above)
    place.push_back(this);
  ccUIObject* const formerParent = parent_;
  cc_OnThrow const undo([&] {
    if (!self.exists() || dying() || parent_ != formerParent || !formerParent)
      return;
    setBit_(kCondVisible, wanted);
    visibilityChanged_();
    settle_();
  });
  if (parent_) {
    if (former && former != cf_rootOf(above))
      leaveGesture();
    condVisible(false);
    if (!self.alive())
      return;
    unlink_();
  }
  if (!target.alive())
    above = nullptr;
  ccLock aboveLock(above ? above->rootMutex() : rootMutex());
  parent_ = above;
  newRoot(cf_rootOf(above), /*recurse=*/true);
  if (above) {
    siblings_ = listOf_(above);
    sibPos_ = place.begin();
    siblings_->splice(siblings_->end(), place);
    order_ = nextOrder_(/*front=*/true);
    count_();
    noteLayers_();
    drawn_();
  } else {
    drawnRects_[0] = drawnRects_[1] = ccUIRect::null;
  }
  cc_NodeRef const settled(this);
  if (wanted)
    condVisible(true);
  // Its wish has not changed, so no hook is due; but it has not been seen yet.
  if (wanted && !formerParent && settled.alive())
    update(/*withKids=*/true, /*erase=*/false, nullptr, cc_TabletEnums::bothLayers);
  if (former && settled.alive() && former != root_ && former->eventProcessor())
    former->eventProcessor()->invalidateObject(this);
}

ccUIObject* ccUIShapes::whoIsTouched(ccPair<long> const& pos)
{
  ccLock lock(rootMutex());
  ccUITablet const* const canvas = tablet();
  return canvas ? whoIsTouched(canvas->tabletCoords(pos), canvas->hitScale(), enabled()) : nullptr;
}

ccUIObject* ccUIShapes::whoIsTouched(ccVector<2> const& v, double scale, bool parentEnabled)
{
  if (dying() || !parentEnabled || !condVisAndEnab())
    return nullptr;
  for (auto kid = kids_.rbegin(); kid != kids_.rend(); ++kid)
    if (ccUIObject* const touched = (*kid)->whoIsTouched(v, scale, true))
      return touched;
  return isTouched(v, scale) ? this : nullptr;
}

bool ccUIShapes::isTouched(ccVector<2> const&, double) { return false; }

void ccUIShapes::show(bool) { update(/*withKids=*/false, /*erase=*/false, nullptr, cc_TabletEnums::bothLayers); }

void ccUIShapes::hide(bool)
{
  ccLock lock(rootMutex());
  ccUIObject* holder = parent_;
  while (holder && holder->shapes(true))
    holder = holder->parent();
  ccUITablet* const canvas = holder ? holder->tablet() : nullptr;
  if (!canvas)
    return;
  // On a hidden frame only what shows through must go.
  if (holder->visible() || !canvas->opaque(ccUITablet::imageLayer) || !canvas->opaque(ccUITablet::overlayLayer))
    eraseSelf_(*canvas, ccUITablet::bothLayers);
}

void ccUIShapes::select(States state, bool)
{
  if (state != visibleState)
    update(/*withKids=*/false, /*erase=*/false, nullptr, cc_TabletEnums::bothLayers);
}

void ccUIShapes::deselect(States state, bool)
{
  if (state != visibleState)
    update(/*withKids=*/false, /*erase=*/false, nullptr, cc_TabletEnums::bothLayers);
}

ccGraphicProps ccUIShapes::getGraphicProps()
{
  ccLock lock(rootMutex());
  ccGraphicProps look = drawnProps_;
  look.penColor(getColor());
  return look;
}

ccColor ccUIShapes::getColor()
{
  ccLock lock(rootMutex());
  return selected() ? selectColor() : props_.penColor();
}

ccColor ccUIShapes::color() const
{
  ccLock lock(rootMutex());
  return props_.penColor();
}

ccGraphicProps ccUIShapes::props() const
{
  ccLock lock(rootMutex());
  return props_;
}

void ccUIShapes::draw_(ccUITablet&, ccColor const&, DrawMode) {}

void ccUIShapes::move_(ccVector<2> const&) {}

void ccUIShapes::redim_() {}

ccVector<2> ccUIShapes::pos()
{
  ccLock lock(rootMutex());
  return pos_();
}

void ccUIShapes::pos(ccVector<2> const& to)
{
  ccLock lock(rootMutex());
  ccVector<2> const v = to;
  if (v == pos_())
    return;
  cc_NodeRef const self(this);
  cc_OnThrow const owe([&] { oweAll_(self); });
  move_(v);
  if (self.alive())
    pos_(v);
  if (self.alive())
    redim_();
  if (self.alive())
    update(/*withKids=*/true, /*erase=*/true, nullptr, cc_TabletEnums::bothLayers);
}

ccVector<2> ccUIShapes::absPos()
{
  ccLock lock(rootMutex());
  ccUIShapes* const above = parent_ ? parent_->shapes(true) : nullptr;
  return above && !above->dying() ? above->absPos() + pos_() : pos_();
}

void ccUIShapes::move(ccVector<2> const& by)
{
  ccLock lock(rootMutex());
  pos(pos_() + by);
}

ccVector<2> ccUIShapes::mapMove(ccPair<long> const& delta) const
{
  ccUITablet const* const canvas = tablet();
  if (!canvas)
    return ccVector<2>();
  double const det = canvas->screenMap_.matrix().determinant();
  if (!std::isfinite(det) || det == 0)
    return ccVector<2>();  // nothing moves on a singular map
  return canvas->screenMap_.inverse().mapVector(ccVector<2>(delta));
}

void ccUIShapes::mouseEnter_()
{
  if (root_)
    root_->cursor(ccUIRootObject::handCursor);
}

void ccUIShapes::idleMouseEnter_() { mouseEnter_(); }

void ccUIShapes::mouseLeave_()
{
  if (root_ && root_->cursor() == ccUIRootObject::handCursor)
    root_->cursor(ccUIRootObject::arrowCursor);
}

void ccUIShapes::dragAnimate_(ccPair<long> const& from, ccPair<long> const& to)
{
  ccUITablet* const canvas = tablet();
  if (!canvas)
    return;
  canvas->dragDel(to - from);
  draw_(*canvas, dragColor(), drawDrag);
}

void ccUIShapes::dragStop_(ccPair<long> const& from, ccPair<long> const& to)
{
  if (ccUITablet* const canvas = tablet())
    canvas->dragDel(ccPair<long>(0, 0));
  pos(pos_() + mapMove(to - from));
}
