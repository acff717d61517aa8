#include "ui/core/shapes_frame.h"

#include "canvas/on_throw.h"
#include "foundation/resource.h"
#include "ui/core/control_frame.h"
#include "ui/core/node_walk.h"
#include "ui/core/shapes.h"

#include <new>

namespace {

// Tells the scopes that many drawings follow each other.
class cc_OptimizedDrawing {
public:
  cc_OptimizedDrawing(ccUITablet& canvas, ccUITablet::Layers layer) : canvas_(&canvas), layer_(layer)
  {
    canvas.optimizeDrawing(true, layer_);
  }
  cc_OptimizedDrawing(cc_OptimizedDrawing const&) = delete;
  cc_OptimizedDrawing& operator=(cc_OptimizedDrawing const&) = delete;
  ~cc_OptimizedDrawing()
  {
    if (ccUITablet* const canvas = canvas_.getOrTop())
      canvas->optimizeDrawing(false, layer_);
  }

private:
  cc_TabletRef canvas_;
  ccUITablet::Layers layer_;
};

}  // namespace

ccUIShapesFrame::ccUIShapesFrame(ccUIControlFrame* parent, ccUIRect const& r) : ccUIFrame(parent, r) {}

ccUIShapesFrame::~ccUIShapesFrame()
{
  beginDestruction();
  leaveGesture();
  // The frame is off the screen, so no shape need erase itself.
  setBit_(kCondVisible, false);
  ccUIShapes::releaseKids_(*this);
}

ccUIObject* ccUIShapesFrame::frontKid() const { return shapes_.empty() ? nullptr : shapes_.back(); }

ccUIObject* ccUIShapesFrame::backKid() const { return shapes_.empty() ? nullptr : shapes_.front(); }

long ccUIShapesFrame::numKids() const { return static_cast<long>(shapes_.size()); }

ccUIObject* ccUIShapesFrame::whoIsTouched(ccPair<long> const& pos)
{
  ccLock lock(rootMutex());
  if (!isHitAt_(pos))
    return nullptr;
  ccPair<long> const local = pos - frameRect_.ul();
  if (!shapes_.empty()) {
    ccPoint const at = tabletCoords(local);
    double const scale = hitScale();
    ccUIObject* const up = parent();
    bool const on = condVisAndEnab() && (!up || up->enabled());
    // Rearmost first: of two overlapping shapes the one behind is found.
    for (ccUIShapes* shape : shapes_)
      if (ccUIObject* const touched = shape->whoIsTouched(at, scale, on))
        return touched;
  }
  return isTouched(local) ? this : nullptr;
}

void ccUIShapesFrame::hide(bool)
{
  ccLock lock(rootMutex());
  // A frame that has drawn nothing itself leaves nothing behind: its shapes have erased themselves.
  for (Layers layer : {imageLayer, overlayLayer})
    if (drawnRects_[layer].isNull())
      modified(layer, false);
  ccUITablet::visible(false);
}

long ccUIShapesFrame::numShapes(Layers layer) const
{
  if (layer == bothLayers)
    return long{shapeCounts_[0]} + shapeCounts_[1];
  return layer == imageLayer || layer == overlayLayer ? shapeCounts_[layer] : 0;
}

void ccUIShapesFrame::incrementCount(Layers layer)
{
  if (layer == imageLayer || layer == overlayLayer)
    ++shapeCounts_[layer];
}

void ccUIShapesFrame::decrementCount(Layers layer)
{
  if (layer == imageLayer || layer == overlayLayer)
    --shapeCounts_[layer];
}

void ccUIShapesFrame::drawBackground_() {}

void ccUIShapesFrame::redraw_()
{
  Layers const layer = redrawLayer_;
  cc_ScreenLock const screen(this, layer);
  cc_NodeRef const self(this);
  {
    bool const records = !inAreaUpdate_ && !recordChanges();
    cc_AtEnd const keep([&] {
      if (records && self.exists())
        getChanges(drawnRects_, /*add=*/false);
    });
    if (records)
      recordChanges(true);
    drawBackground_();
    if (self.alive())
      draw(sketch_, ccPoint(0, 0), layer);
  }
  if (!self.alive() || (numShapes(layer) == 0 && !mixesLayers_) || hiding_)
    return;
  ccUIRect const areas[] = {activeScope(imageLayer), activeScope(overlayLayer)};
  drawShapes_(layer, inAreaUpdate_ ? areas : nullptr);
}

void ccUIShapesFrame::drawShapes_(Layers layer, ccUIRect const* clip)
{
  cc_OptimizedDrawing const optimized(*this, layer);
  cc_NodeWalk walk;
  if (!clip || !addShapesIn_(walk, clip))
    walk.addKidsBackToFront(*this);
  cc_NodeRef const self(this);
  while (ccUIObject* const kid = walk.next()) {
    if (!self.alive())
      return;
    auto* const shape = static_cast<ccUIShapes*>(kid);
    bool const onLayer = shape->drawLayer() == layer || layer == bothLayers || (mixesLayers_ && shape->numKids() > 0);
    if (onLayer && shape->parent() == this && shape->visible())
      shape->drawTree_(/*withKids=*/true, clip, layer);
  }
}

// The shapes that have drawn in the clip, back to front. False, and none, while there are so few that asking each is as
// quick.
bool ccUIShapesFrame::addShapesIn_(cc_NodeWalk& walk, ccUIRect const* clip)
{
  constexpr std::size_t many = 64;
  if (!drawnIndex_) {
    if (shapes_.size() < many)
      return false;
    drawnIndex_.reset(new (std::nothrow) cc_RectIndex);
    if (!drawnIndex_)
      return false;
    for (ccUIShapes* shape : shapes_) {
      shape->drawnPlace_.owner = shape;
      drawnIndex_->put(shape->drawnPlace_, shape->drawnArea_());
    }
  }
  drawnIndex_->meeting(clip[0] | clip[1], [&](cc_RectIndex::Entry& e) { walk.add(static_cast<ccUIShapes*>(e.owner)); });
  walk.sort([](ccUIObject* a, ccUIObject* b) {
    return static_cast<ccUIShapes*>(a)->order_ < static_cast<ccUIShapes*>(b)->order_;
  });
  return true;
}

void ccUIShapesFrame::drawDirect(ccUISketch const& sketch)
{
  ccLock lock(rootMutex());
  bool const records = !inAreaUpdate_ && !recordChanges();
  cc_NodeRef const self(this);
  cc_AtEnd const keep([&] {
    if (records && self.exists())
      getChanges(drawnRects_, /*add=*/true);
  });
  if (records)
    recordChanges(true);
  draw(sketch, ccPoint(0, 0), bothLayers);
}

void ccUIShapesFrame::countsShapes(bool on)
{
  ccLock lock(rootMutex());
  for (ccUIShapes* shape : shapes_)
    shape->uncount_();
  countsShapes_ = on;
  for (ccUIShapes* shape : shapes_)
    shape->count_();
}

void ccUIShapesFrame::front_(ccUIObject* kid) { ccUIShapes::toFront_(kid); }

void ccUIShapesFrame::back_(ccUIObject* kid) { ccUIShapes::toBack_(kid); }
