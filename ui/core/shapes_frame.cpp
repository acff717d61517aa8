#include "ui/core/shapes_frame.h"

#include "foundation/resource.h"
#include "ui/core/control_frame.h"
#include "ui/core/node_walk.h"
#include "ui/core/shapes.h"

namespace {

// Tells the scopes that many drawings follow each other.
class cc_OptimizedDrawing {
public:
  cc_OptimizedDrawing(ccUITablet& canvas, ccUITablet::Layers layer) : canvas_(canvas), layer_(layer)
  {
    canvas_.optimizeDrawing(true, layer_);
  }
  cc_OptimizedDrawing(cc_OptimizedDrawing const&) = delete;
  cc_OptimizedDrawing& operator=(cc_OptimizedDrawing const&) = delete;
  ~cc_OptimizedDrawing() { canvas_.optimizeDrawing(false, layer_); }

private:
  ccUITablet& canvas_;
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
  if (dying() || !visible() || !frameRect_.within(pos))
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
  bool const records = !inAreaUpdate_ && !recordChanges();
  if (records)
    recordChanges(true);
  drawBackground_();
  draw(sketch_, ccPoint(0, 0), layer);
  if (records)
    getChanges(drawnRects_, /*add=*/false);

  if (numShapes(layer) == 0 || hiding_)
    return;
  ccUIRect const areas[] = {activeScope(imageLayer), activeScope(overlayLayer)};
  ccUIRect const* const clip = inAreaUpdate_ ? areas : nullptr;
  cc_OptimizedDrawing const optimized(*this, layer);
  for (ccUIShapes* shape : shapes_)
    if ((shape->drawLayer() == layer || layer == bothLayers) && shape->visible())
      shape->drawTree_(/*withKids=*/true, clip, layer);
}

void ccUIShapesFrame::front_(ccUIObject* kid) { ccUIShapes::toFront_(kid); }

void ccUIShapesFrame::back_(ccUIObject* kid) { ccUIShapes::toBack_(kid); }
