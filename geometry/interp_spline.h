// A cubic spline through its control points whose second derivative is continuous. The curve is computed at each edit and
// stored; map maps what is stored and does not interpolate anew, so that it is exact where chord lengths change unevenly, too.
//
// The tangents solve a tridiagonal system by elimination without exchange of rows, which its dominant diagonal allows: C. de
// Boor, "A Practical Guide to Splines" (1978). Intervals by the root of the chord: E. T. Y. Lee, "Choosing nodes in parametric
// curve interpolation", Computer-Aided Design 21 (1989). Points so far apart that a tangent overflows throw
// ccShapesError::BadParams.
#pragma once

#include "geometry/cubic_spline.h"

class ccInterpSpline : public ccCubicSpline {
public:
  ccInterpSpline() = default;
  explicit ccInterpSpline(std::vector<ccVector<2>> points, bool closed = false, long intervalMode = 0);

  using ccCubicSpline::controlPoint;
  using ccCubicSpline::intervalMode;
  using ccCubicSpline::isClosed;
  void controlPoint(long i, ccPoint const&) override;
  void insertControlPoint(long i, ccPoint const&) override;
  void isClosed(bool) override;
  long intervalMode() const override { return intervalMode_; }
  void intervalMode(long) override;  // 0, 1 or 2
  // How an open spline ends: 0 naturally, without curvature; 1 with the tangents given.
  long endConditions() const { return endConditions_; }
  void endConditions(long);  // else ccShapesError::BadParams
  // The derivatives at the ends by a parameter that runs by 1 over the first and over the last curve. They are 0 at first,
  // and used with end conditions 1 only.
  ccVector<2> startTangent() const { return endTangents_[0]; }
  void startTangent(ccVector<2> const& v) { endTangent_(0, v); }
  ccVector<2> endTangent() const { return endTangents_[1]; }
  void endTangent(ccVector<2> const& v) { endTangent_(1, v); }

  // What was computed: the parameter's way over curve k, and the derivative by it in point i.
  double interval(long k) const;
  ccVector<2> tangent(long i) const;

  ccInterpSpline map(ccXform<2> const&) const;  // tangents as vectors, intervals as they are
  friend bool operator==(ccInterpSpline const& a, ccInterpSpline const& b);

protected:
  ccBezierCurve bezierCurve_(long k) const override;
  void deleteControlPoint_(long i) override;
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  template <class Edit> void edit_(Edit const&);
  void endTangent_(int end, ccVector<2> const&);
  void fit_();
  void measure_();
  void fitOpen_();
  void fitClosed_();
  ccVector<2> slope_(std::size_t k) const;

  long intervalMode_ = 0;
  long endConditions_ = 0;
  ccVector<2> endTangents_[2];
  std::vector<double> intervals_;      // one per curve, above 0
  std::vector<ccVector<2>> tangents_;  // one per point
};
