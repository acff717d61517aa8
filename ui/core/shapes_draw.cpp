// How shapes get on the screen and off it again.
#include "ui/core/shapes.h"

#include "canvas/on_throw.h"
#include "foundation/resource.h"
#include "ui/core/node_walk.h"
#include "ui/core/shapes_frame.h"

namespace {

using Layers = ccUITablet::Layers;
constexpr Layers bothInOrder[] = {ccUITablet::imageLayer, ccUITablet::overlayLayer};

// Shapes of this thread that are being drawn. What is erased meanwhile is wiped by the next update, as nothing can be erased
// in the middle of a drawing.
thread_local int drawing = 0;

bool cf_carries(Layers asked, Layers layer) { return asked == layer || asked == ccUITablet::bothLayers; }

}  // namespace

void ccUIShapes::draw(ccUITablet& canvas, ccColor const& color, DrawMode mode)
{
  ccLock lock(rootMutex());
  draw_(canvas, color, mode);
}

void ccUIShapes::update(bool withKids, bool erase, ccUIRect const* clip, Layers layer)
{
  ccLock lock(rootMutex());
  if (!visible())
    return;
  cc_ScreenLock const screen(tablet());
  cc_NodeRef const self(this);
  cc_OnThrow const owe([&] { oweAll_(self); });
  if (erase)
    eraseTree_(withKids, layer);
  if (self.alive())
    drawTree_(withKids, clip, layer);
}

// The one way a shape gets on the screen. With a clip, one rectangle per layer in local pels, only what meets it is drawn.
void ccUIShapes::drawTree_(bool withKids, ccUIRect const* clip, Layers layer)
{
  ccUITablet* const canvas = tablet();
  // What is on its way out isn't drawn again by the repaints that its erasing causes.
  if (!canvas || hiding_ || dying())
    return;
  cc_ScreenLock const screen(canvas);
  cc_NodeRef const self(this);
  bool const meets = !clip || !drawnRects_[0].nullIntersection(clip[0]) || !drawnRects_[1].nullIntersection(clip[1]);
  if (eraseDepth_ == 0 && cf_carries(layer, drawLayer_) && meets)
    drawSelf_(*canvas, !canvas->inAreaUpdate_ && !canvas->recordChanges());
  if (!withKids || !self.alive() || kids_.empty())
    return;
  cc_NodeWalk walk;
  walk.addKidsBackToFront(*this);
  while (ccUIObject* const kid = walk.next())
    if (kid->condVisible() && self.alive() && kid->parent() == this)
      static_cast<ccUIShapes*>(kid)->drawTree_(true, clip, layer);
  if (!clip && self.alive() && drawnPlace_.index)
    drawnPlace_.index->put(drawnPlace_, drawnArea_());
}

// With the record of what is drawn, which ends however the drawing does.
void ccUIShapes::drawSelf_(ccUITablet& canvas, bool records)
{
  if (!records) {
    drawLook_(canvas);
    return;
  }
  cc_NodeRef const self(this);
  cc_TabletRef const on(&canvas);
  cc_OnThrow const keep([&] {
    ccUITablet* const still = on.get();
    if (!still)
      return;
    ccUIRect lost[2];
    still->getChanges(self.exists() ? drawnRects_ : lost, /*add=*/true);
    // Drawn in part only: the next update tries again.
    still->update(ccUIRect(still->screenOrigin(), still->size()), ccUITablet::bothLayers, /*now=*/false);
    if (self.exists())
      drawn_();
  });
  canvas.recordChanges(true);
  drawLook_(canvas);
  ccUITablet* const still = on.get();
  if (!still)
    return;
  if (self.alive()) {
    still->getChanges(drawnRects_, /*add=*/false);
    drawn_();
    return;
  }
  ccUIRect left[2];  // by a shape that has gone: nobody else would wipe it
  still->getChanges(left, /*add=*/false);
  for (Layers i : bothInOrder)
    if (!left[i].isNull())
      still->update(left[i] + still->screenOrigin(), i, /*now=*/false);
}

void ccUIShapes::drawLook_(ccUITablet& canvas)
{
  drawnProps_ = getGraphicProps();
  drawnProps_.penColor(getColor());
  ++drawing;
  cc_AtEnd const lower([] { --drawing; });
  draw_(canvas, getColor(), drawNormal);
}

// The frame finds its shapes by what they and their kids have drawn.
void ccUIShapes::drawn_()
{
  ccUIShapes* top = this;
  while (ccUIShapes* const above = top->parent_ ? top->parent_->shapes(true) : nullptr)
    top = above;
  ccUIShapesFrame* const frame = top->parent_ ? top->parent_->shapesFrame(false) : nullptr;
  if (!frame || !frame->drawnIndex_)
    return;
  top->drawnPlace_.owner = top;
  ccUIRect const own = drawnRects_[0] | drawnRects_[1];
  // With kids it only grows; drawing the whole tree measures it anew.
  bool const alone = top == this && kids_.empty();
  frame->drawnIndex_->put(top->drawnPlace_, alone ? own : own | (top->drawnPlace_.index ? top->drawnPlace_.rect : ccUIRect()));
}

// Of the shape and all below it, on both layers.
ccUIRect ccUIShapes::drawnArea_() const
{
  ccUIRect area = drawnRects_[0] | drawnRects_[1];
  for (ccUIShapes const* kid : kids_)
    area |= kid->drawnArea_();
  return area;
}

void ccUIShapes::eraseTree_(bool withKids, Layers layer)
{
  ccUITablet* const canvas = tablet();
  if (!canvas)
    return;
  cc_NodeRef const self(this);
  cc_TabletRef const on(canvas);
  ++eraseDepth_;
  cc_AtEnd const lower([&] {
    if (self.exists())
      --eraseDepth_;
  });
  cc_ScreenLock const screen(canvas);
  if (withKids && !kids_.empty()) {
    cc_NodeWalk walk;
    walk.addKidsFrontToBack(*this);
    while (ccUIObject* const kid = walk.next())
      if (kid->condVisible() && self.alive() && kid->parent() == this)
        static_cast<ccUIShapes*>(kid)->eraseTree_(true, layer);
  }
  if (self.alive() && on.get())
    eraseSelf_(*canvas, layer);
}

// Repaints what the shape covered, while the shape itself stays away.
void ccUIShapes::eraseSelf_(ccUITablet& canvas, Layers layer)
{
  cc_NodeRef const self(this);
  cc_TabletRef const on(&canvas);
  ++eraseDepth_;
  cc_AtEnd const lower([&] {
    if (self.exists())
      --eraseDepth_;
  });
  for (Layers i : bothInOrder) {
    if (!cf_carries(layer, i))
      continue;
    ccUIRect const r = drawing > 0 ? drawnRects_[i] : drawnRects_[i] & canvas.activeScope(i);
    if (r.isNull())
      continue;
    if (drawing > 0)
      canvas.update(r + canvas.screenOrigin(), i, /*now=*/false);
    else if (!canvas.opaque(i))
      canvas.erase(r, layer);
    else
      canvas.update(r + canvas.screenOrigin(), i, /*now=*/true);
    if (!self.alive() || !on.get())
      return;
  }
}

// After an exception: the whole picture comes from the next update, with what is recorded of it.
void ccUIShapes::oweAll_(cc_NodeRef const& self) noexcept
{
  ccUITablet* const canvas = self.exists() ? tablet() : nullptr;
  if (canvas)
    canvas->update(ccUIRect::inf, ccUITablet::bothLayers, /*now=*/false);
}

// Leaves the wiping of what has been drawn to the next update.
void ccUIShapes::owe_() noexcept
{
  ccUITablet* const canvas = tablet();
  if (!canvas)
    return;
  for (Layers i : bothInOrder)
    if (!drawnRects_[i].isNull())
      canvas->update(drawnRects_[i] + canvas->screenOrigin(), i, /*now=*/false);
  for (ccUIShapes* kid : kids_)
    kid->owe_();
}

void ccUIShapes::color(ccColor const& c)
{
  ccLock lock(rootMutex());
  props_.penColor(c);
  if (!visible())
    return;
  cc_NodeRef const self(this);
  cc_OnThrow const owe([&] { oweAll_(self); });
  cc_ScreenLock const screen(tablet());
  drawTree_(/*withKids=*/true, nullptr, ccUITablet::bothLayers);
}

void ccUIShapes::props(ccGraphicProps const& p)
{
  ccLock lock(rootMutex());
  props_ = p;
  drawnProps_ = p;
  update(/*withKids=*/true, /*erase=*/true, nullptr, ccUITablet::bothLayers);
}

void ccUIShapes::front_(ccUIObject* kid) { toFront_(kid); }

void ccUIShapes::back_(ccUIObject* kid) { toBack_(kid); }

void ccUIShapes::toFront_(ccUIObject* kid)
{
  ccUIShapes* const shape = kid->shapes(true);
  if (!shape || !shape->siblings_)
    return;
  ccLock lock(shape->rootMutex());
  shape->siblings_->splice(shape->siblings_->end(), *shape->siblings_, shape->sibPos_);
  shape->order_ = nextOrder_(/*front=*/true);
  if (!shape->visible())
    return;
  // It comes on top, so nothing need be erased.
  cc_ScreenLock const screen(shape->tablet());
  shape->drawTree_(/*withKids=*/true, nullptr, ccUITablet::bothLayers);
}

void ccUIShapes::toBack_(ccUIObject* kid)
{
  ccUIShapes* const shape = kid->shapes(true);
  if (!shape || !shape->siblings_)
    return;
  ccLock lock(shape->rootMutex());
  if (shape->sibPos_ == shape->siblings_->begin())
    return;
  shape->siblings_->splice(shape->siblings_->begin(), *shape->siblings_, shape->sibPos_);
  shape->order_ = nextOrder_(/*front=*/false);
  // Everything is closer than the backmost kid now, and is drawn over it.
  cc_ScreenLock const screen(shape->tablet());
  cc_NodeWalk closer;
  for (auto sib = std::next(shape->sibPos_); sib != shape->siblings_->end(); ++sib)
    closer.add(*sib);
  while (ccUIObject* const sib = closer.next())
    if (sib->visible())
      static_cast<ccUIShapes*>(sib)->drawTree_(/*withKids=*/true, nullptr, ccUITablet::bothLayers);
}
