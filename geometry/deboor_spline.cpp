#include "geometry/deboor_spline.h"

#include "geometry/plane.h"

namespace {

double cf_weight(double w)
{
  cf_require(cf_isFinite(w) && w > 0, "weight of a spline's control point");
  return w;
}

}  // namespace

// A point with its weight: (weight x, weight y, weight) is what the formulas of a polynomial spline are worked on.
struct ccDeBoorSpline::Weighted {
  ccVector<2> point;
  double weight;
};

ccDeBoorSpline::ccDeBoorSpline(std::vector<ccVector<2>> points, bool closed)
    : ccCubicSpline(std::move(points), closed), weights_(controlPoints().size(), 1.0)
{
}

ccDeBoorSpline::ccDeBoorSpline(std::vector<ccVector<2>> points, std::vector<double> weights, bool closed)
    : ccCubicSpline(std::move(points), closed), weights_(std::move(weights))
{
  cf_require(weights_.size() == controlPoints().size(), "number of a spline's weights");
  for (double w : weights_)
    cf_weight(w);
}

void ccDeBoorSpline::addControlPoint(ccPoint const& p, double weight)
{
  insertControlPoint(numControlPoints(), p, weight);
}

void ccDeBoorSpline::insertControlPoint(long i, ccPoint const& p) { insertControlPoint(i, p, 1.0); }

void ccDeBoorSpline::insertControlPoint(long i, ccPoint const& p, double weight)
{
  cf_weight(weight);
  weights_.reserve(weights_.size() + 1);  // so that nothing fails half way
  ccCubicSpline::insertControlPoint(i, p);
  weights_.insert(weights_.begin() + i, weight);
}

void ccDeBoorSpline::deleteControlPoint_(long i)
{
  ccCubicSpline::deleteControlPoint_(i);
  weights_.erase(weights_.begin() + i);
}

double ccDeBoorSpline::weight(long i) const
{
  checkIndex_(i);
  return weights_[static_cast<std::size_t>(i)];
}

void ccDeBoorSpline::weight(long i, double w)
{
  checkIndex_(i);
  weights_[static_cast<std::size_t>(i)] = cf_weight(w);
}

long ccDeBoorSpline::numBezierCurves() const
{
  long const n = numControlPoints();
  if (isClosed())
    return n;
  return n < 2 ? 0 : n < 4 ? 1 : n - 3;
}

// (partOfA a + partOfB b) / (partOfA + partOfB) of the weighted coordinates. From a onwards rather than as a sum, so that
// equal points and equal weights come out exactly, and large weights do not overflow.
ccDeBoorSpline::Weighted ccDeBoorSpline::mix_(Weighted const& a, double partOfA, Weighted const& b, double partOfB)
{
  if (partOfA == 0)
    return b;
  double const part = partOfB / (partOfA + partOfB);
  double const weight = a.weight + (b.weight - a.weight) * part;
  return {a.point + (b.point - a.point) * (part * (b.weight / weight)), weight};
}

ccBezierCurve ccDeBoorSpline::curve_(Weighted const& a, Weighted const& b, Weighted const& c, Weighted const& d)
{
  return ccBezierCurve({a.point, b.point, c.point, d.point}, {a.weight, b.weight, c.weight, d.weight});
}

// The parameter's way over curve k. Beside an open spline there is none, which clamps it to its end points.
double ccDeBoorSpline::interval_(long k) const
{
  return isClosed() || (k >= 0 && k < numControlPoints() - 3) ? 1.0 : 0.0;
}

// Counted so that curve k of an open spline is governed by the points k - 1 to k + 2, and by P(k-1) to P(k+2) if closed.
ccDeBoorSpline::Weighted ccDeBoorSpline::deBoor_(long i) const
{
  long const n = numControlPoints();
  long const index = isClosed() ? ((i % n) + n) % n : i + 1;
  return {point_(index), weights_[static_cast<std::size_t>(index)]};
}

// The first or second of the inner Bezier points of curve k. They cut the side from point k to k + 1 in the ratio of the
// intervals before, of and after the curve.
ccDeBoorSpline::Weighted ccDeBoorSpline::inner_(long k, bool second) const
{
  double const before = interval_(k - 1), own = interval_(k), after = interval_(k + 1);
  return second ? mix_(deBoor_(k), after, deBoor_(k + 1), before + own)
                : mix_(deBoor_(k), own + after, deBoor_(k + 1), before);
}

// The Bezier point between curves k - 1 and k.
ccDeBoorSpline::Weighted ccDeBoorSpline::joint_(long k) const
{
  if (!isClosed() && k == 0)
    return deBoor_(-1);
  if (!isClosed() && k == numBezierCurves())
    return deBoor_(k + 1);
  return mix_(inner_(k - 1, true), interval_(k), inner_(k, false), interval_(k - 1));
}

ccBezierCurve ccDeBoorSpline::bezierCurve_(long k) const
{
  long const n = numControlPoints();
  if (isClosed() || n >= 4)
    return curve_(joint_(k), inner_(k, false), inner_(k, true), joint_(k + 1));
  // Too few points for a cubic: the line or the quadratic curve, raised in degree.
  Weighted const first = deBoor_(-1), last = deBoor_(n - 2);
  if (n == 2)
    return curve_(first, mix_(first, 2, last, 1), mix_(first, 1, last, 2), last);
  Weighted const middle = deBoor_(0);
  return curve_(first, mix_(first, 1, middle, 2), mix_(middle, 2, last, 1), last);
}

ccDeBoorSpline ccDeBoorSpline::map(ccXform<2> const& x) const
{
  ccDeBoorSpline mapped(*this);
  mapped.mapPoints_(x);
  return mapped;
}

ccPtrHandle<ccShape> ccDeBoorSpline::clone_() const { return new ccDeBoorSpline(*this); }
ccPtrHandle_const<ccShape> ccDeBoorSpline::map_(ccXform<2> const& x) const { return new ccDeBoorSpline(map(x)); }
