// A rectangle with rounded corners under an affine map: centre, half lengths, orientation, skew, handedness and rounding.
// A circle, an ellipse and every enclosing box are such rectangles.
//
// The map A from the unit square (-1,-1) to (1,1) to offsets from the centre is R(orient) times the columns (hx, 0) and
// handed hy (tan skew, 1). So hy is the height perpendicular to the x side, and a positive skew leans the y side towards +x:
// against the sense of the skew of ccAffineRectangle.
#pragma once

#include "geometry/ellipse.h"

#include <optional>

class ccGenRect : public ccShape {
public:
  ccGenRect() = default;  // the point (0,0)
  // The rounding in lengths, cut to the half lengths: a circle is (c, (r, r), 0, (r, r)).
  ccGenRect(ccPoint const& center, ccVector<2> const& halfLengths, ccRadian orient, ccVector<2> const& round);
  // From the matrix of client offsets to the unit square, with the rounding in fractions of the half lengths. A determinant
  // of 0 or an entry that is not finite throws ccShapesError::DegenerateShape.
  ccGenRect(ccPoint const& center, ccMatrix<2> const& matrix, ccVector<2> const& rounding);
  // handed is +1 or -1, the skew within a quarter turn, the rounding in fractions.
  ccGenRect(ccPoint const& center, double hx, double hy, int handed, ccRadian skew, ccRadian orient,
            ccVector<2> const& rounding);
  explicit ccGenRect(ccRect const&);
  explicit ccGenRect(ccAffineRectangle const&);
  explicit ccGenRect(ccCircle const&);
  explicit ccGenRect(ccEllipse const&);
  explicit ccGenRect(ccEllipse2 const&);

  ccPoint center() const { return center_; }
  void center(ccPoint const&);
  double hx() const { return hx_; }
  double hy() const { return hy_; }
  ccVector<2> halfLengths() const { return ccVector<2>(hx_, hy_); }
  ccRadian orient() const { return orient_; }  // in [0, full circle)
  ccRadian skew() const { return skew_; }      // within a quarter turn
  int handed() const { return handed_; }       // +1, or -1 for a mirrored one
  ccVector<2> round() const { return ccVector<2>(rounding_.x() * hx_, rounding_.y() * hy_); }  // in client units
  ccVector<2> rounding() const { return rounding_; }                                           // fractions, 0 to 1
  void rounding(ccVector<2> const&);

  // From client offsets to the unit square; a half length of 0 throws ccShapesError::DegenerateShape.
  ccMatrix<2> matrix() const;
  ccMatrix<2> fromUnitMatrix() const;                   // its inverse, which there always is
  ccVector<2> fromUnit(ccVector<2> const& u) const { return fromUnitMatrix() * u; }  // an offset from the centre
  ccVector<2> toUnit(ccVector<2> const& offset) const;  // 0 on an axis of length 0; never throws
  // The map of a shape from this rectangle to the other, centre to centre. An axis whose half length is 0 here counts as 1 in
  // both, so there always is an inverse.
  ccXform<2> xformTo(ccGenRect const& other) const;

  ccGenRect map(ccXform<2> const&) const;
  friend bool operator==(ccGenRect const& a, ccGenRect const& b)
  {
    return a.center_ == b.center_ && a.hx_ == b.hx_ && a.hy_ == b.hy_ && a.orient_ == b.orient_ && a.skew_ == b.skew_ &&
           a.handed_ == b.handed_ && a.rounding_ == b.rounding_;
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
  double hx_ = 0, hy_ = 0;
  ccRadian orient_, skew_;
  int handed_ = 1;
  ccVector<2> rounding_;
};

// The matrix of client offsets to the unit square, from the x half length and the ratio of y to x half length, which carries
// the sign of the handedness.
ccMatrix<2> genRectMatrix(double hx, double ratio, ccRadian skew, ccRadian orient);

// The rectangle after a corner (unit position x, y of +-1) was dragged to p, with fixedPoint opposite; with keepCentre the
// centre stays instead. keepAspect holds the ratio of y to x half length. A unit position whose x (y) is not +-1 keeps the x
// (y) half length. Empty if a new length is 0 or not finite.
std::optional<ccGenRect> cfGenRectSize(ccGenRect const&, ccVector<2> const& unit, ccPoint const& fixedPoint,
                                       ccPoint const& p, bool keepCentre, bool keepAspect);
// The rounding after the handle of the corner (unit position x, y of +-1) was dragged to p. Empty if p is not finite.
std::optional<ccGenRect> cfGenRectRound(ccGenRect const&, ccVector<2> const& unit, ccPoint const& p);
