#include "geometry/interp_spline.h"

#include "geometry/plane.h"

#include <algorithm>

namespace {

// The condition at a point between intervals of lengths h and g, divided by h + g: before m(i-1) + 2 m(i) + after m(i+1) =
// 3 (before D(i-1) + after D(i)), D the slopes of the chords. The parts add up to 1, so that the diagonal rules.
struct Row {
  Row(double h, double g) : before(g / (h + g)), after(h / (h + g)) {}
  double before, after;
};

}  // namespace

ccInterpSpline::ccInterpSpline(std::vector<ccVector<2>> points, bool closed, long mode)
    : ccCubicSpline(std::move(points), closed), intervalMode_(mode)
{
  cf_require(mode >= 0 && mode <= 2, "interval mode of a spline");
  fit_();
}

// On a copy, so that a refused edit leaves the spline as it was.
template <class Edit> void ccInterpSpline::edit_(Edit const& edit)
{
  ccInterpSpline next(*this);
  edit(next);
  next.fit_();
  *this = std::move(next);
}

void ccInterpSpline::controlPoint(long i, ccPoint const& p)
{
  edit_([&](ccInterpSpline& next) { next.ccCubicSpline::controlPoint(i, p); });
}

void ccInterpSpline::insertControlPoint(long i, ccPoint const& p)
{
  edit_([&](ccInterpSpline& next) { next.ccCubicSpline::insertControlPoint(i, p); });
}

void ccInterpSpline::deleteControlPoint_(long i)
{
  edit_([&](ccInterpSpline& next) { next.ccCubicSpline::deleteControlPoint_(i); });
}

void ccInterpSpline::isClosed(bool closed)
{
  if (closed != isClosed())
    edit_([&](ccInterpSpline& next) { next.ccCubicSpline::isClosed(closed); });
}

void ccInterpSpline::intervalMode(long mode)
{
  cf_require(mode >= 0 && mode <= 2, "interval mode of a spline");
  if (mode != intervalMode_)
    edit_([&](ccInterpSpline& next) { next.intervalMode_ = mode; });
}

void ccInterpSpline::endConditions(long conditions)
{
  cf_require(conditions == 0 || conditions == 1, "end conditions of a spline");
  if (conditions != endConditions_)
    edit_([&](ccInterpSpline& next) { next.endConditions_ = conditions; });
}

void ccInterpSpline::endTangent_(int end, ccVector<2> const& v)
{
  cf_finite(v, "end tangent of a spline");
  edit_([&](ccInterpSpline& next) { next.endTangents_[end] = v; });
}

double ccInterpSpline::interval(long k) const
{
  cf_require(k >= 0 && k < numBezierCurves(), "index of a spline's curve");
  return intervals_[static_cast<std::size_t>(k)];
}

ccVector<2> ccInterpSpline::tangent(long i) const
{
  checkIndex_(i);
  return tangents_[static_cast<std::size_t>(i)];
}

void ccInterpSpline::fit_()
{
  measure_();
  tangents_.assign(controlPoints().size(), ccVector<2>());
  if (numControlPoints() < 2)
    return;
  isClosed() ? fitClosed_() : fitOpen_();
  for (ccVector<2> const& tangent : tangents_)
    cf_finite(tangent, "spline through points whose differences overflow");
}

void ccInterpSpline::measure_()
{
  intervals_.assign(static_cast<std::size_t>(numBezierCurves()), 1.0);
  if (intervalMode_ == 0)
    return;
  double least = cfInfinity;
  for (std::size_t k = 0; k < intervals_.size(); ++k) {
    long const i = static_cast<long>(k);
    double const chord = wrapped_(i + 1).distance(point_(i));
    intervals_[k] = intervalMode_ == 1 ? chord : std::sqrt(chord);
    if (intervals_[k] > 0)
      least = std::min(least, intervals_[k]);
  }
  // Points that coincide take the shortest way there is.
  std::replace(intervals_.begin(), intervals_.end(), 0.0, cf_isFinite(least) ? least : 1.0);
}

// The derivative along the chord of curve k.
ccVector<2> ccInterpSpline::slope_(std::size_t k) const
{
  long const i = static_cast<long>(k);
  return (wrapped_(i + 1) - point_(i)) / intervals_[k];
}

// Elimination from the front. Each row becomes m(i) + ratios[i] m(i+1) = tangents_[i], which the way back solves.
void ccInterpSpline::fitOpen_()
{
  std::size_t const last = tangents_.size() - 1;
  std::vector<double> ratios(tangents_.size(), 0.0);
  bool const given = endConditions_ == 1;
  ratios[0] = given ? 0.0 : 0.5;
  tangents_[0] = given ? endTangents_[0] / intervals_[0] : slope_(0) * 1.5;
  for (std::size_t i = 1; i < last; ++i) {
    Row const row(intervals_[i - 1], intervals_[i]);
    double const pivot = 2.0 - row.before * ratios[i - 1];
    ratios[i] = row.after / pivot;
    tangents_[i] = ((slope_(i - 1) * row.before + slope_(i) * row.after) * 3.0 - tangents_[i - 1] * row.before) / pivot;
  }
  tangents_[last] = given ? endTangents_[1] / intervals_[last - 1]
                          : (slope_(last - 1) * 3.0 - tangents_[last - 1]) / (2.0 - ratios[last - 1]);
  for (std::size_t i = last; i-- > 0;)
    tangents_[i] -= tangents_[i + 1] * ratios[i];
}

// Each row reaches round to its neighbours. All tangents but the last are found as tangents_[i] + shares[i] m(last) by
// elimination; then the last row gives m(last). With two points the last one is both neighbours of the first.
void ccInterpSpline::fitClosed_()
{
  std::size_t const last = tangents_.size() - 1;
  std::vector<double> ratios(last, 0.0), shares(last, 0.0);
  for (std::size_t i = 0; i < last; ++i) {
    std::size_t const previous = i == 0 ? last : i - 1;
    Row const row(intervals_[previous], intervals_[i]);
    ccVector<2> right = (slope_(previous) * row.before + slope_(i) * row.after) * 3.0;
    double pivot = 2.0, share = 0.0;
    if (i == 0) {
      share -= row.before;
    } else {
      pivot -= row.before * ratios[i - 1];
      right -= tangents_[i - 1] * row.before;
      share -= shares[i - 1] * row.before;
    }
    if (i + 1 == last)
      share -= row.after;
    else
      ratios[i] = row.after / pivot;
    tangents_[i] = right / pivot;
    shares[i] = share / pivot;
  }
  for (std::size_t i = last - 1; i-- > 0;) {
    tangents_[i] -= tangents_[i + 1] * ratios[i];
    shares[i] -= shares[i + 1] * ratios[i];
  }
  Row const row(intervals_[last - 1], intervals_[last]);
  ccVector<2> const right = (slope_(last - 1) * row.before + slope_(last) * row.after) * 3.0;
  tangents_[last] = (right - tangents_[last - 1] * row.before - tangents_[0] * row.after) /
                    (2.0 + shares[last - 1] * row.before + shares[0] * row.after);
  for (std::size_t i = 0; i < last; ++i)
    tangents_[i] += tangents_[last] * shares[i];
}

ccBezierCurve ccInterpSpline::bezierCurve_(long k) const
{
  std::size_t const i = static_cast<std::size_t>(k), next = i + 1 < tangents_.size() ? i + 1 : 0;
  double const third = intervals_[i] / 3.0;
  ccVector<2> const from = point_(k), to = wrapped_(k + 1);
  return ccBezierCurve(from, from + tangents_[i] * third, to - tangents_[next] * third, to);
}

ccInterpSpline ccInterpSpline::map(ccXform<2> const& x) const
{
  ccInterpSpline mapped(*this);
  mapped.mapPoints_(x);
  for (ccVector<2>& tangent : mapped.tangents_)
    tangent = cf_finite(x.mapVector(tangent), "image of a spline's tangent");
  for (ccVector<2>& tangent : mapped.endTangents_)
    tangent = cf_finite(x.mapVector(tangent), "image of a spline's tangent");
  return mapped;
}

bool operator==(ccInterpSpline const& a, ccInterpSpline const& b)
{
  return a.sameCurve_(b) && a.intervalMode_ == b.intervalMode_ && a.endConditions_ == b.endConditions_ &&
         std::equal(a.endTangents_, a.endTangents_ + 2, b.endTangents_) && a.intervals_ == b.intervals_ &&
         a.tangents_ == b.tangents_;
}

ccPtrHandle<ccShape> ccInterpSpline::clone_() const { return new ccInterpSpline(*this); }
ccPtrHandle_const<ccShape> ccInterpSpline::map_(ccXform<2> const& x) const { return new ccInterpSpline(map(x)); }
