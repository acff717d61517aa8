// A frame that holds shapes.
#pragma once

#include "ui/core/frame.h"

#include <list>

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

protected:
  virtual void drawBackground_();
  void front_(ccUIObject* kid) override;
  void back_(ccUIObject* kid) override;

private:
  friend class ccUIShapes;
  void redraw_() override;

  ccUIRect drawnRects_[2];
  std::list<ccUIShapes*> shapes_;  // back first
  std::int32_t shapeCounts_[2] = {0, 0};
};
