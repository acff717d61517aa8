// A cubic spline through its control points with a tangent in each. A tangent is the derivative by the parameter, which runs
// by 1 from point to point. One that was never set is automatic: half the way from the point before to the point after, at
// the ends of an open spline the way between the two last points. It follows its neighbours. (Automatic ones make the spline of
// E. Catmull and R. Rom, "A class of local interpolating splines", 1974.)
#pragma once

#include "geometry/cubic_spline.h"

#include <optional>

class ccHermiteSpline : public ccCubicSpline {
public:
  ccHermiteSpline() = default;
  explicit ccHermiteSpline(std::vector<ccVector<2>> points, bool closed = false);  // tangents automatic

  void insertControlPoint(long i, ccPoint const&) override;  // with an automatic tangent
  ccVector<2> controlTangent(long i) const;
  void controlTangent(long i, ccVector<2> const&);  // set from now on, no longer automatic
  bool isTangentAutomatic(long i) const;
  void automaticTangent(long i);  // forgets what was set

  ccHermiteSpline map(ccXform<2> const&) const;  // tangents as vectors
  friend bool operator==(ccHermiteSpline const& a, ccHermiteSpline const& b)
  {
    return a.sameCurve_(b) && a.tangents_ == b.tangents_;
  }

protected:
  ccBezierCurve bezierCurve_(long k) const override;
  void deleteControlPoint_(long i) override;
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  ccVector<2> tangent_(long i) const;

  std::vector<std::optional<ccVector<2>>> tangents_;  // empty: automatic
};
