// Rings: between two ellipses of one centre, and between two general rectangles. Nothing asks that one lies inside the other.
#pragma once

#include "geometry/gen_rect.h"

class ccEllipseAnnulus : public ccShape {
public:
  ccEllipseAnnulus() = default;
  // The centres are equal within 1e-9 of the radii plus 1e-12 of their magnitude, else ccShapesError::BadParams.
  ccEllipseAnnulus(ccEllipse const& first, ccEllipse const& second);

  ccPoint center() const { return first_.center(); }
  ccEllipse const& first() const { return first_; }
  ccEllipse const& second() const { return second_; }

  ccEllipseAnnulus map(ccXform<2> const&) const;
  friend bool operator==(ccEllipseAnnulus const& a, ccEllipseAnnulus const& b)
  {
    return a.first_ == b.first_ && a.second_ == b.second_;
  }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  ccEllipse first_, second_;
};

class ccGenAnnulus : public ccShape {
public:
  ccGenAnnulus() = default;
  // Half lengths, and roundings in client units.
  ccGenAnnulus(ccPoint const& center, ccVector<2> const& firstSize, ccVector<2> const& secondSize, ccRadian rotation,
               ccVector<2> const& firstRound, ccVector<2> const& secondRound);
  ccGenAnnulus(ccGenRect const& first, ccGenRect const& second) : first_(first), second_(second) {}

  ccPoint center() const { return first_.center(); }
  void center(ccPoint const&);  // moves both
  ccGenRect const& first() const { return first_; }
  ccGenRect const& second() const { return second_; }

  ccGenAnnulus map(ccXform<2> const&) const;
  friend bool operator==(ccGenAnnulus const& a, ccGenAnnulus const& b)
  {
    return a.first_ == b.first_ && a.second_ == b.second_;
  }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  ccGenRect first_, second_;
};

// Whether a ring may be edited to these: each half length of the inner rectangle is smaller by 2 units at least, and the centre
// of its rounding lies nearer to the middle. That is compared along the client axes, so that some turned rings are refused
// although they are nested.
bool cfIsNested(ccGenRect const& inner, ccGenRect const& outer);
