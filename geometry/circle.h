// A circle. A radius of 0 is legal: it arises from a click without a move.
#pragma once

#include "geometry/shape.h"

class ccCircle : public ccShape {
public:
  ccCircle() = default;  // the point (0,0)
  ccCircle(ccPoint const& center, double radius);

  ccPoint center() const { return center_; }
  void center(ccPoint const&);
  double radius() const { return radius_; }
  void radius(double);
  ccPoint closestPoint(ccVector<2> const&) const;  // the point at angle 0 for the centre itself
  // Under a similarity only, else ccShapesError::BadParams. ccEllipse2(circle).map(x) takes every map, as does the map
  // of the base class.
  ccCircle map(ccXform<2> const&) const;
  friend bool operator==(ccCircle const& a, ccCircle const& b)
  {
    return a.center_ == b.center_ && a.radius_ == b.radius_;
  }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  ccPoint center_;
  double radius_ = 0;
};
