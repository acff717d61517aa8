// A rectangle under an affine map: centre, side lengths measured along the sides, the direction of the x side and a skew.
// With a = xRotation and b = a + 90 degrees + skew the sides are X = xLength (cos a, sin a), Y = yLength (cos b, sin b).
#pragma once

#include "geometry/rect.h"

#include <optional>

class ccAffineRectangle : public ccShape {
public:
  ccAffineRectangle() = default;
  // Negative or not finite lengths throw ccShapesError::BadParams, a bad skew DegenerateShape.
  ccAffineRectangle(ccPoint const& center, double xLength, double yLength, ccRadian xRotation, ccRadian skew);
  explicit ccAffineRectangle(ccRect const&);
  explicit ccAffineRectangle(ccGenRect const&);  // its rounding is lost

  ccPoint center() const { return center_; }
  void center(ccPoint const&);
  double xLength() const { return xLength_; }
  void xLength(double);
  double yLength() const { return yLength_; }
  void yLength(double);
  ccRadian xRotation() const { return xRotation_; }
  void xRotation(ccRadian);
  ccRadian skew() const { return skew_; }  // in (-half, +half] circle; beyond a quarter turn it mirrors
  void skew(ccRadian);                     // a bad one throws ccShapesError::DegenerateShape
  ccVector<2> xSide() const { return ccVector<2>::polar(xLength_, xRotation_); }
  ccVector<2> ySide() const { return ccVector<2>::polar(yLength_, xRotation_ + skew_ + ccRadian(cfPi / 2)); }
  // Corners by id: 0 Po, 1 Px, 2 Popp, 3 Py; the opposite corner is two ids away.
  ccPoint cornerPo() const { return center_ - (xSide() + ySide()) * 0.5; }
  ccPoint cornerPx() const { return cornerPo() + xSide(); }
  ccPoint cornerPopp() const { return cornerPo() + xSide() + ySide(); }
  ccPoint cornerPy() const { return cornerPo() + ySide(); }
  ccPoint corner(int id) const;
  ccXform<2> unitXform() const;         // from the unit square (0,0) to (1,1)
  static bool isBadSkew(ccRadian skew); // within 0.001 of plus or minus a quarter turn, or not finite

  ccAffineRectangle map(ccXform<2> const&) const;  // a map that leads to a bad skew throws ccMathError::Singular
  friend bool operator==(ccAffineRectangle const& a, ccAffineRectangle const& b)
  {
    return a.center_ == b.center_ && a.xLength_ == b.xLength_ && a.yLength_ == b.yLength_ &&
           a.xRotation_ == b.xRotation_ && a.skew_ == b.skew_;
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
  double xLength_ = 0, yLength_ = 0;
  ccRadian xRotation_, skew_;
};

// The rectangle after corner id was dragged to p; the opposite corner stays. Empty if a length would fall below 1e-10.
std::optional<ccAffineRectangle> cfAffineRectSize(ccAffineRectangle const&, int id, ccPoint const& p);
// The rectangle after the skew handle turned from one direction, seen from the centre, to another. A zero vector counts as no
// turn. Empty for a bad skew.
std::optional<ccAffineRectangle> cfAffineRectSkew(ccAffineRectangle const&, ccVector<2> const& from, ccVector<2> const& to);
