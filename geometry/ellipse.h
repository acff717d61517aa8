// Ellipses: ccEllipse, and ccEllipse2 which is made for the flat images that a map may give.
//
// Three angles are kept apart. The own angle t of a point: c + R(rotation) (rx cos t, ry sin t); arcs use it. The unit angle
// t + rotation; sections of rings use it, and for a circle it is the direction in client coordinates whatever the rotation.
// The direction of the point as seen from the centre in the ellipse's own axes; drawing uses it. The image under an affine map
// has the principal axes of B B^T for B the map times the axes, labelled so that x stays near the image of x.
#pragma once

#include "geometry/circle.h"
#include "geometry/conic.h"

// What both have in common. Radii are at least 0; a radius of 0 is legal.
class cc_EllipseBase : public ccShape {
public:
  ccPoint center() const { return conic_.c; }
  void center(ccPoint const&);
  double rx() const { return conic_.rx; }
  void rx(double);
  double ry() const { return conic_.ry; }
  void ry(double);
  ccVector<2> radii() const { return ccVector<2>(conic_.rx, conic_.ry); }
  void radii(ccVector<2> const&);
  ccRadian rotation() const { return conic_.phi; }
  void rotation(ccRadian);

  ccPoint point(ccRadian ownAngle) const { return conic_.at(cf_finite(ownAngle, "angle on an ellipse")); }
  // From the unit circle: center + U v, with U the inverse of the unit's matrix. Never throws, also for radius 0.
  ccPoint fromUnit(ccVector<2> const&) const;
  ccPoint closestPoint(ccVector<2> const&) const;
  bool isDegenerate() const { return conic_.isDegenerate(); }  // a radius at most 1e-12 of the other, or both 0
  cs_Conic const& conic() const { return conic_; }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  cc_EllipseBase() = default;
  explicit cc_EllipseBase(cs_Conic const&);

  cs_Conic conic_;
};

class ccEllipse : public cc_EllipseBase {
public:
  // The map of client offsets from the centre to the unit circle: R(rotation) diag(1/rx, 1/ry) R(-rotation).
  class ccEllipseUnit {
  public:
    ccEllipseUnit() = default;
    ccEllipseUnit(ccPoint const& center, ccMatrix<2> const& matrix) : center_(center), matrix_(matrix) {}
    ccPoint center() const { return center_; }
    ccMatrix<2> const& matrix() const { return matrix_; }
    ccVector<2> toUnit(ccVector<2> const& p) const { return matrix_ * (p - center_); }

  private:
    ccPoint center_;
    ccMatrix<2> matrix_;
  };

  ccEllipse() = default;  // the point (0,0)
  ccEllipse(ccPoint const& center, double rx, double ry, ccRadian rotation);
  ccEllipse(ccPoint const& center, ccVector<2> const& radii, ccRadian rotation);
  explicit ccEllipse(ccCircle const&);

  // A radius of 0, or so small that it has no reciprocal, throws ccShapesError::DegenerateShape.
  ccEllipseUnit unit() const;
  ccEllipse map(ccXform<2> const&) const;
  friend bool operator==(ccEllipse const& a, ccEllipse const& b) { return a.conic_ == b.conic_; }

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;
};

class ccEllipse2 : public cc_EllipseBase {
public:
  ccEllipse2() = default;
  ccEllipse2(ccPoint const& center, double rx, double ry, ccRadian rotation);
  ccEllipse2(ccPoint const& center, ccVector<2> const& radii, ccRadian rotation);
  explicit ccEllipse2(cs_Conic const& c) : cc_EllipseBase(c) {}
  explicit ccEllipse2(ccCircle const&);
  explicit ccEllipse2(ccEllipse const&);

  ccEllipse oldEllipse() const;  // never throws
  // What a degenerate one is: through the centre along the axis that is not 0.
  void degenerateSegment(ccPoint& first, ccPoint& last) const;
  ccEllipse2 map(ccXform<2> const&) const;
  friend bool operator==(ccEllipse2 const& a, ccEllipse2 const& b) { return a.conic_ == b.conic_; }

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;
};
