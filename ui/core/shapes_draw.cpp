// How shapes get on the screen and off it again.
#include "ui/core/shapes.h"

#include "foundation/resource.h"
#include "ui/core/node_walk.h"

namespace {

using Layers = ccUITablet::Layers;
constexpr Layers bothInOrder[] = {ccUITablet::imageLayer, ccUITablet::overlayLayer};

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
  if (erase)
    eraseTree_(withKids, layer);
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
  bool const meets = !clip || !drawnRects_[0].nullIntersection(clip[0]) || !drawnRects_[1].nullIntersection(clip[1]);
  if (eraseDepth_ == 0 && cf_carries(layer, drawLayer_) && meets) {
    if (!canvas->inAreaUpdate_ && !canvas->recordChanges()) {
      canvas->recordChanges(true);
      drawSelf_(*canvas);
      canvas->getChanges(drawnRects_, /*add=*/false);
    } else {
      drawSelf_(*canvas);
    }
  }
  if (withKids)
    for (ccUIShapes* kid : kids_)
      if (kid->condVisible())
        kid->drawTree_(true, clip, layer);
}

void ccUIShapes::drawSelf_(ccUITablet& canvas)
{
  drawnProps_ = getGraphicProps();
  drawnProps_.penColor(getColor());
  draw_(canvas, getColor(), drawNormal);
}

void ccUIShapes::eraseTree_(bool withKids, Layers layer)
{
  ccUITablet* const canvas = tablet();
  if (!canvas)
    return;
  ++eraseDepth_;
  {
    cc_ScreenLock const screen(canvas);
    if (withKids)
      for (auto kid = kids_.rbegin(); kid != kids_.rend(); ++kid)
        if ((*kid)->condVisible())
          (*kid)->eraseTree_(true, layer);
    eraseSelf_(*canvas, layer);
  }
  --eraseDepth_;
}

// Repaints what the shape covered, while the shape itself stays away.
void ccUIShapes::eraseSelf_(ccUITablet& canvas, Layers layer)
{
  ++eraseDepth_;
  for (Layers i : bothInOrder) {
    if (!cf_carries(layer, i))
      continue;
    ccUIRect const r = drawnRects_[i] & canvas.activeScope(i);
    if (r.isNull())
      continue;
    if (!canvas.opaque(i))
      canvas.erase(r, layer);
    else
      canvas.update(r + canvas.screenOrigin(), i, /*now=*/true);
  }
  --eraseDepth_;
}

void ccUIShapes::color(ccColor const& c)
{
  ccLock lock(rootMutex());
  props_.penColor(c);
  if (!visible())
    return;
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
  // Everything is closer than the backmost kid now, and is drawn over it.
  cc_ScreenLock const screen(shape->tablet());
  for (auto sib = std::next(shape->sibPos_); sib != shape->siblings_->end(); ++sib)
    if ((*sib)->visible())
      (*sib)->drawTree_(/*withKids=*/true, nullptr, ccUITablet::bothLayers);
}
