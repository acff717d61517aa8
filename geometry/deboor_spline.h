// A uniform cubic B-spline with a weight for each control point. An open one starts and ends in its end points: with two
// points it is a line, with three a quadratic curve, each as one cubic, then n - 3 cubics. A closed one has n.
//
// The Bezier points follow C. de Boor, "On calculating with B-splines", Journal of Approximation Theory 6 (1972), and W. Boehm,
// "Inserting new knots into B-spline curves", Computer-Aided Design 12 (1980), on weighted coordinates.
#pragma once

#include "geometry/cubic_spline.h"

class ccDeBoorSpline : public ccCubicSpline {
public:
  ccDeBoorSpline() = default;
  explicit ccDeBoorSpline(std::vector<ccVector<2>> points, bool closed = false);  // weights 1
  // As many weights as points, each above 0, else ccShapesError::BadParams.
  ccDeBoorSpline(std::vector<ccVector<2>> points, std::vector<double> weights, bool closed = false);

  using ccCubicSpline::addControlPoint;
  void addControlPoint(ccPoint const&, double weight);
  void insertControlPoint(long i, ccPoint const&) override;  // with weight 1
  void insertControlPoint(long i, ccPoint const&, double weight);
  std::vector<double> const& weights() const { return weights_; }
  double weight(long i) const;
  void weight(long i, double);  // above 0, else ccShapesError::BadParams

  long numBezierCurves() const override;
  ccDeBoorSpline map(ccXform<2> const&) const;  // the weights stay
  friend bool operator==(ccDeBoorSpline const& a, ccDeBoorSpline const& b)
  {
    return a.sameCurve_(b) && a.weights_ == b.weights_;
  }

protected:
  ccBezierCurve bezierCurve_(long k) const override;
  void deleteControlPoint_(long i) override;
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  struct Weighted;
  static Weighted mix_(Weighted const& a, double partOfA, Weighted const& b, double partOfB);
  static ccBezierCurve curve_(Weighted const& a, Weighted const& b, Weighted const& c, Weighted const& d);

  double interval_(long k) const;
  Weighted deBoor_(long i) const;
  Weighted inner_(long k, bool second) const;
  Weighted joint_(long k) const;

  std::vector<double> weights_;
};
