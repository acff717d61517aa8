// A frame that holds shapes.
#pragma once

#include "canvas/rect_index.h"
#include "ui/core/frame.h"

#include <list>
#include <memory>

class ccUIShapesFrame : public ccUIFrame {
public:
  ccUIShapesFrame(ccUIControlFrame* parent, ccUIRect const&);
  ~ccUIShapesFrame() override;

  ccUIShapesFrame* shapesFrame(bool) override { return this; }
  ccUIObject* frontKid() const override;
  ccUIObject* backKid() const override;
  long numKids() const override;
  ccUIObject* whoIsTouched(ccPair<long> const&) override;
  void hide(bool nested) override;

  long numShapes(Layers) const;
  void incrementCount(Layers);  // kept by whoever adds and removes shapes; layers from 2 up are ignored
  void decrementCount(Layers);
  // On: shapes are counted when they join by parent, and no more once they leave. Off at birth.
  bool countsShapes() const { return countsShapes_; }
  void countsShapes(bool);
  void drawDirect(ccUISketch const&);  // at once, on both layers; hiding the frame takes it away like its own drawing

protected:
  virtual void drawBackground_();
  void front_(ccUIObject* kid) override;
  void back_(ccUIObject* kid) override;

private:
  friend class ccUIShapes;
  void redraw_() override;
  void drawShapes_(Layers, ccUIRect const* clip);
  bool addShapesIn_(cc_NodeWalk&, ccUIRect const* clip);

  ccUIRect drawnRects_[2];
  std::list<ccUIShapes*> shapes_;  // back first
  std::int32_t shapeCounts_[2] = {0, 0};
  bool countsShapes_ = false;
  bool mixesLayers_ = false;  // a shape has had kids on another layer than its own, which its layer's count doesn't tell
  std::unique_ptr<cc_RectIndex> drawnIndex_;  // of what each shape with its kids has drawn, once there are many
};
