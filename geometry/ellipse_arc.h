// Arcs of ellipses: from an own angle over a signed span of at most a full turn. ccEllipseArc2 is made for the flat images
// that a map may give.
#pragma once

#include "geometry/ellipse.h"

class cc_EllipseArcBase : public ccShape {
public:
  ccRadian start() const { return start_; }
  void start(ccRadian);
  ccRadian span() const { return span_; }  // its sign is the direction of travel
  void span(ccRadian);                     // beyond a full turn: ccShapesError::BadParams

  ccPoint pointAt(double t) const { return conic_.at(start_ + span_ * cf_finite(t, "parameter of an arc")); }  // t from 0 to 1
  ccPoint startPoint() const { return pointAt(0); }
  ccPoint midPoint() const { return pointAt(0.5); }
  ccPoint endPoint() const { return pointAt(1); }
  ccPoint closestPoint(ccVector<2> const&) const;
  bool isInSpan(ccRadian ownAngle) const { return cf_isInSpan(ownAngle, start_, span_); }
  bool isDegenerate() const { return conic_.isDegenerate(); }
  // The directions of start and end as seen from the centre in the ellipse's own axes, within a quarter turn of the own
  // angles.
  ccRadian phiStart() const;
  ccRadian phiEnd() const;
  cs_Conic const& conic() const { return conic_; }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  cc_EllipseArcBase() = default;
  cc_EllipseArcBase(cs_Conic const&, ccRadian start, ccRadian span);

  cs_Conic conic_;
  ccRadian start_, span_;
};

class ccEllipseArc : public cc_EllipseArcBase {
public:
  ccEllipseArc() = default;
  ccEllipseArc(ccEllipse const&, ccRadian start, ccRadian span);

  ccEllipse ellipse() const;
  void ellipse(ccEllipse const& e) { conic_ = e.conic(); }
  ccEllipseArc map(ccXform<2> const&) const;
  friend bool operator==(ccEllipseArc const& a, ccEllipseArc const& b)
  {
    return a.conic_ == b.conic_ && a.start_ == b.start_ && a.span_ == b.span_;
  }

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;
};

class ccEllipseArc2 : public cc_EllipseArcBase {
public:
  ccEllipseArc2() = default;
  ccEllipseArc2(ccEllipse2 const&, ccRadian start, ccRadian span);
  explicit ccEllipseArc2(ccEllipseArc const&);

  ccEllipse2 ellipse() const { return ccEllipse2(conic_); }
  void ellipse(ccEllipse2 const& e) { conic_ = e.conic(); }
  ccEllipseArc oldEllipseArc() const;  // never throws
  // The segment that a degenerate arc covers.
  void degenerateSegment(ccPoint& first, ccPoint& last) const;
  ccEllipseArc2 reversed() const { return ccEllipseArc2(ccEllipse2(conic_), start_ + span_, -span_); }
  ccEllipseArc2 map(ccXform<2> const&) const;
  friend bool operator==(ccEllipseArc2 const& a, ccEllipseArc2 const& b)
  {
    return a.conic_ == b.conic_ && a.start_ == b.start_ && a.span_ == b.span_;
  }

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;
};
