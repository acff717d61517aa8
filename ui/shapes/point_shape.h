// What stands at one point and keeps its size in pels: the base of pictures, labels and handles, and a plain marker.
//
// ccUIShapes is a virtual base, so that a class can join one of these with a state of its own.
#pragma once

#include "ui/core/shapes.h"

class ccUIPointShapeBase : public virtual ccUIShapes {
public:
  explicit ccUIPointShapeBase(ccUIObject* parent = nullptr);

  float touchDist() const { return touchDist_; }
  void touchDist(float pels);

  bool isTouched(ccVector<2> const&, double scale) override;  // within a square about the point, not a circle

protected:
  void pos_(ccVector<2> const&) override;
  ccVector<2> pos_() override;

private:
  ccVector<2> at_;
  float touchDist_ = 4;
};

// A small cross.
class ccUIPointIcon : public ccUIPointShapeBase {
public:
  explicit ccUIPointIcon(ccUIObject* parent = nullptr);

  bool isTouched(ccVector<2> const&, double scale) override;

protected:
  void draw_(ccUITablet&, ccColor const&, DrawMode) override;
};
