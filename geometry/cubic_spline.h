// Base of the cubic splines: control points that an operator edits, and the Bezier curves that they stand for. Every spline is
// continuous with any number of points, as one grows point by point while it is drawn. Control points, tangents and curves are in
// client units; a parameter t runs from 0 to 1 over each curve.
#pragma once

#include "geometry/bezier.h"

#include <vector>

class ccCubicSpline : public ccShape {
public:
  long numControlPoints() const { return static_cast<long>(points_.size()); }
  bool isEmpty() const { return points_.empty(); }
  std::vector<ccVector<2>> const& controlPoints() const { return points_; }
  bool isClosed() const { return closed_; }
  virtual void isClosed(bool c) { closed_ = c; }
  // How the parameter runs between control points: 0 uniformly, 1 by chord length, 2 by the root of the chord length. Only
  // interpolation knows 1 and 2; other values throw ccShapesError::BadParams.
  virtual long intervalMode() const { return 0; }
  virtual void intervalMode(long);

  // An index out of range, and a point that is not finite, throw ccShapesError::BadParams.
  ccPoint controlPoint(long i) const;
  virtual void controlPoint(long i, ccPoint const&);
  virtual void insertControlPoint(long i, ccPoint const&);  // before point i; at the end for i = numControlPoints()
  void addControlPoint(ccPoint const& p) { insertControlPoint(numControlPoints(), p); }
  // Does nothing at two points or fewer, whatever the index.
  void deleteControlPoint(long i);

  // Consecutive curves share their end points to the last bit. Without curves there is nothing, or a single point.
  virtual long numBezierCurves() const;
  ccBezierCurve bezierCurve(long k) const;

  ccPtrHandle<ccCubicSpline> clone() const;
  ccPtrHandle_const<ccCubicSpline> map(ccXform<2> const&) const;  // exact, to a spline of the same class

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  ccCubicSpline() = default;
  // Copied as a whole only: the classes hold what belongs to their points.
  ccCubicSpline(ccCubicSpline const&) = default;
  ccCubicSpline(ccCubicSpline&&) = default;
  ccCubicSpline& operator=(ccCubicSpline const&) = default;
  ccCubicSpline& operator=(ccCubicSpline&&) = default;
  ccCubicSpline(std::vector<ccVector<2>> points, bool closed);

  virtual ccBezierCurve bezierCurve_(long k) const = 0;  // k is in range
  virtual void deleteControlPoint_(long i);              // i is in range
  void mapPoints_(ccXform<2> const&);
  void checkIndex_(long i) const;
  bool sameCurve_(ccCubicSpline const& s) const { return points_ == s.points_ && closed_ == s.closed_; }
  ccVector<2> const& point_(long i) const { return points_[static_cast<std::size_t>(i)]; }
  ccVector<2> const& wrapped_(long i) const;  // i modulo the number of points

private:
  std::vector<ccVector<2>> points_;
  bool closed_ = false;
};
