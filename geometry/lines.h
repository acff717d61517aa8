// Straight things: an endless line, and a segment between two points.
#pragma once

#include "geometry/rect.h"

// Direction first. A zero direction throws ccMathError::Singular, also that of an image. By default through (0,0) along +x. No
// shape: it has no box.
class ccLine {
public:
  ccLine() = default;
  ccLine(ccVector<2> const& dir, ccPoint const& pos);

  ccVector<2> dir() const { return dir_; }  // a unit vector
  ccPoint pos() const { return pos_; }
  void pos(ccPoint const&);
  ccRadian angle() const { return dir_.angle(); }
  ccLine map(ccXform<2> const& x) const { return ccLine(x.mapVector(dir_), x.mapPoint(pos_)); }
  double distToPoint(ccVector<2> const& p) const;
  bool clip(ccRect const&, ccLineSeg&) const;  // the part inside the rectangle; false if there is none. Never throws.
  friend bool operator==(ccLine const& a, ccLine const& b) { return a.dir_ == b.dir_ && a.pos_ == b.pos_; }

private:
  ccVector<2> dir_{1, 0};
  ccPoint pos_;
};

class ccLineSeg : public ccShape {
public:
  ccLineSeg() = default;
  ccLineSeg(ccPoint const& p1, ccPoint const& p2);

  ccPoint p1() const { return p1_; }
  void p1(ccPoint const&);
  ccPoint p2() const { return p2_; }
  void p2(ccPoint const&);
  ccPoint midPoint() const { return (p1_ + p2_) * 0.5; }
  double length() const { return p1_.distance(p2_); }
  ccRadian angle() const { return (p2_ - p1_).angle(); }
  ccPoint closestPoint(ccVector<2> const&) const;  // p1 where both ends coincide
  ccLineSeg map(ccXform<2> const& x) const { return ccLineSeg(x.mapPoint(p1_), x.mapPoint(p2_)); }
  friend bool operator==(ccLineSeg const& a, ccLineSeg const& b) { return a.p1_ == b.p1_ && a.p2_ == b.p2_; }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  ccPoint p1_, p2_;
};

// The ends of a segment by number, 1 or 2; another number gives the middle, and moves nothing.
ccPoint cfLineSegEnd(ccLineSeg const&, int end);
ccLineSeg cfMoveLineSegEnd(ccLineSeg const&, int end, ccPoint const& to);
