// A rational cubic Bezier curve, and chains of them. Weights are above 0; only their ratios count. Points, halves and polygons
// come from de Casteljau's algorithm on weighted coordinates: G. Farin, "Curves and Surfaces for CAGD", rational curves.
#pragma once

#include "geometry/ellipse_arc.h"

#include <array>
#include <vector>

class ccBezierCurve : public ccShape {
public:
  ccBezierCurve() = default;  // four points at (0,0)
  ccBezierCurve(ccPoint const& p0, ccPoint const& p1, ccPoint const& p2, ccPoint const& p3);
  ccBezierCurve(std::array<ccPoint, 4> const& points, std::array<double, 4> const& weights);
  // The exact cubic of a straight line, and of an arc over at most half a turn (beyond: ccShapesError::BadParams).
  static ccBezierCurve fromLine(ccPoint const& from, ccPoint const& to);
  static ccBezierCurve fromArc(ccEllipseArc2 const&);

  static constexpr long numControlPoints() { return 4; }
  ccPoint controlPoint(long i) const;
  void controlPoint(long i, ccPoint const&);
  std::vector<ccVector<2>> controlPoints() const;
  double weight(long i) const;
  void weight(long i, double);  // above 0, else ccShapesError::BadParams
  ccPoint startPoint() const { return points_[0]; }
  ccPoint endPoint() const { return points_[3]; }

  // t from 0 to 1, else ccShapesError::BadParams.
  ccPoint point(double t) const;
  ccVector<2> derivative(double t) const;  // by t
  ccPoint closestPoint(ccVector<2> const&) const;
  std::pair<ccBezierCurve, ccBezierCurve> split(double t) const;  // by the algorithm of de Casteljau
  // Calls lineTo for the points of a polygon within the tolerance of the curve, the start point left out. The curve is halved
  // at most 16 times. The tolerance is above 0, else ccShapesError::BadParams.
  void flatten(double tolerance, ccOutlineSink&) const;
  ccBezierCurve map(ccXform<2> const&) const;  // exact: the weights stay
  friend bool operator==(ccBezierCurve const& a, ccBezierCurve const& b)
  {
    return a.points_ == b.points_ && a.weights_ == b.weights_;
  }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;  // right to 1e-9 of the largest coordinate
  ccRect encloseRect() const override;                        // likewise; to 1e-12 for equal weights
  void outline(ccOutlineSink&) const override;

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  std::array<double, 4> usableWeights_() const;
  cs_RationalCurve rational_() const;

  std::array<ccPoint, 4> points_;
  std::array<double, 4> weights_{1, 1, 1, 1};
};

// The weight of a control point during a drag: a tenth of the old weight at t = 0, the old one at 1/2, ten times the sum of
// all weights at 1. t is the distance from the control point in hundreds of pels. Weights are above 0 and the sum is at least
// the old weight, else ccShapesError::BadParams.
class ccWeightLaw {
public:
  ccWeightLaw() = default;
  ccWeightLaw(double oldWeight, double sumOfWeights);
  double weight(double t) const;

private:
  double least_ = 0, scale_ = 0, log_ = 0;
};

// Curves end to end.
class ccBezierPath : public ccShape {
public:
  ccBezierPath() = default;
  // Each curve starts where the one before ends, within 1e-9 of the largest coordinate, else ccShapesError::BadParams.
  // A closed path runs straight back from its end to its start, if these differ.
  explicit ccBezierPath(std::vector<ccBezierCurve> curves, bool closed = false);

  long size() const { return static_cast<long>(curves_.size()); }
  std::vector<ccBezierCurve> const& curves() const { return curves_; }
  ccBezierCurve const& curve(long i) const;
  bool closed() const { return closed_; }
  void closed(bool c) { closed_ = c; }
  void append(ccBezierCurve const&);
  void append(ccEllipseArc2 const&);  // as exact cubics, each over at most a quarter turn
  void appendLine(ccPoint const& from, ccPoint const& to);

  ccBezierPath map(ccXform<2> const&) const;
  friend bool operator==(ccBezierPath const& a, ccBezierPath const& b)
  {
    return a.curves_ == b.curves_ && a.closed_ == b.closed_;
  }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  std::vector<ccBezierCurve> curves_;
  bool closed_ = false;
};
