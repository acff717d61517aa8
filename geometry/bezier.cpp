#include "geometry/bezier.h"

namespace {

constexpr int kMaxHalvings = 16;
constexpr double kLeastWeight = 1e-200;  // against the largest one: below it a quotient of weights would underflow
constexpr double kJoint = 1e-9;  // of the largest coordinate

int cf_index(long i)
{
  cf_require(i >= 0 && i < 4, "index of a control point");
  return static_cast<int>(i);
}

void cf_checkWeight(double w) { cf_require(cf_isFinite(w) && w > 0, "weight of a control point"); }

struct cs_Homogeneous {
  double x, y, w;
};

cs_Homogeneous cf_between(cs_Homogeneous const& a, cs_Homogeneous const& b, double t)
{
  return {(1 - t) * a.x + t * b.x, (1 - t) * a.y + t * b.y, (1 - t) * a.w + t * b.w};
}

void cf_flatten(ccBezierCurve const& curve, double tolerance, int halvings, ccOutlineSink& sink)
{
  bool flat = true;
  for (int i = 1; i < 3; ++i)
    flat = flat && cf_segmentDistance(curve.startPoint(), curve.endPoint(), curve.controlPoint(i)) <= tolerance;
  if (flat || halvings == 0) {
    sink.lineTo(curve.endPoint());
    return;
  }
  auto const halves = curve.split(0.5);
  cf_flatten(halves.first, tolerance, halvings - 1, sink);
  cf_flatten(halves.second, tolerance, halvings - 1, sink);
}

double cf_largest(ccBezierCurve const& c)
{
  double largest = 0;
  for (int i = 0; i < 4; ++i)
    largest = std::max({largest, std::abs(c.controlPoint(i).x()), std::abs(c.controlPoint(i).y())});
  return largest;
}

}  // namespace

ccBezierCurve::ccBezierCurve(ccPoint const& p0, ccPoint const& p1, ccPoint const& p2, ccPoint const& p3)
    : ccBezierCurve(std::array<ccPoint, 4>{p0, p1, p2, p3}, std::array<double, 4>{1, 1, 1, 1})
{
}

ccBezierCurve::ccBezierCurve(std::array<ccPoint, 4> const& points, std::array<double, 4> const& weights)
    : points_(points), weights_(weights)
{
  for (ccPoint const& p : points)
    cf_finite(p, "control point");
  for (double const w : weights)
    cf_checkWeight(w);
}

ccBezierCurve ccBezierCurve::fromLine(ccPoint const& a, ccPoint const& b)
{
  ccVector<2> const third = (b - a) / 3;
  return ccBezierCurve(a, a + third, b - third, b);
}

ccBezierCurve ccBezierCurve::fromArc(ccEllipseArc2 const& arc)
{
  double const half = arc.span().value() / 2, w = std::cos(half);
  cf_require(std::abs(half) <= cfPi / 2 * (1 + 1e-12), "arc over more than half a turn");
  // The rational quadratic, raised by a degree. The corner times its weight is finite for half a turn too.
  cs_Conic const& e = arc.conic();
  ccVector<2> const corner = w * e.c + (e.at(arc.start() + arc.span() / 2) - e.c);
  double const sum = 1 + 2 * w;
  ccPoint const first = arc.startPoint(), last = arc.endPoint();
  return ccBezierCurve({first, (first + 2.0 * corner) / sum, (last + 2.0 * corner) / sum, last},
                       {1, sum / 3, sum / 3, 1});
}

ccPoint ccBezierCurve::controlPoint(long i) const { return points_[static_cast<std::size_t>(cf_index(i))]; }
void ccBezierCurve::controlPoint(long i, ccPoint const& p)
{
  points_[static_cast<std::size_t>(cf_index(i))] = cf_finite(p, "control point");
}
std::vector<ccVector<2>> ccBezierCurve::controlPoints() const { return {points_.begin(), points_.end()}; }
double ccBezierCurve::weight(long i) const { return weights_[static_cast<std::size_t>(cf_index(i))]; }
void ccBezierCurve::weight(long i, double w)
{
  cf_checkWeight(w);
  weights_[static_cast<std::size_t>(cf_index(i))] = w;
}

// Only their ratios count.
std::array<double, 4> ccBezierCurve::usableWeights_() const
{
  auto const [least, largest] = std::minmax_element(weights_.begin(), weights_.end());
  if (*least > 1e-100 && *largest < 1e100)
    return weights_;
  std::array<double, 4> usable;
  for (std::size_t i = 0; i < 4; ++i)
    usable[i] = std::max(weights_[i] / *largest, kLeastWeight);
  return usable;
}

cs_RationalCurve ccBezierCurve::rational_() const
{
  cs_RationalCurve curve;
  curve.degree = 3;
  std::array<double, 4> const weights = usableWeights_();
  for (std::size_t i = 0; i < 4; ++i) {
    curve.points[i] = points_[i];
    curve.weights[i] = weights[i];
  }
  return curve;
}

ccPoint ccBezierCurve::point(double t) const
{
  cf_require(t >= 0 && t <= 1, "parameter of a curve");
  return rational_().at(t);
}

ccVector<2> ccBezierCurve::derivative(double t) const
{
  cf_require(t >= 0 && t <= 1, "parameter of a curve");
  ccVector<2> d;
  rational_().at(t, &d);
  return d;
}

ccPoint ccBezierCurve::closestPoint(ccVector<2> const& q) const 
{
  return point(cf_nearest(rational_(), cf_finite(q, "place near a curve")).t);
}
double ccBezierCurve::distanceToPoint(ccVector<2> const& p) const { return cf_nearest(rational_(), p).distance; }

std::pair<ccBezierCurve, ccBezierCurve> ccBezierCurve::split(double t) const
{
  cf_require(t >= 0 && t <= 1, "parameter of a curve");
  cs_Homogeneous b[4];
  std::array<double, 4> const weights = usableWeights_();
  for (std::size_t i = 0; i < 4; ++i) {
    ccVector<2> const p = (points_[i] - points_[0]) * weights[i];
    b[i] = {p.x(), p.y(), weights[i]};
  }
  auto const place = [&](cs_Homogeneous const& h) { return ccPoint(points_[0] + ccVector<2>(h.x / h.w, h.y / h.w)); };
  ccBezierCurve left, right;
  for (std::size_t k = 0; k < 4; ++k) {
    left.points_[k] = place(b[0]);
    left.weights_[k] = b[0].w;
    right.points_[3 - k] = place(b[3 - k]);
    right.weights_[3 - k] = b[3 - k].w;
    for (std::size_t i = 0; i + k < 3; ++i)
      b[i] = cf_between(b[i], b[i + 1], t);
  }
  right.points_[3] = points_[3];
  return {left, right};
}

void ccBezierCurve::flatten(double tolerance, ccOutlineSink& sink) const
{
  cf_require(cf_isFinite(tolerance) && tolerance > 0, "tolerance of a polygon");
  cf_flatten(*this, tolerance, kMaxHalvings, sink);
}

ccBezierCurve ccBezierCurve::map(ccXform<2> const& x) const
{
  std::array<ccPoint, 4> image;
  for (std::size_t i = 0; i < 4; ++i)
    image[i] = x.mapPoint(points_[i]);
  return ccBezierCurve(image, weights_);
}

ccRect ccBezierCurve::encloseRect() const
{
  cs_RationalCurve const curve = rational_();
  cs_Bounds bounds;
  bounds.add(points_[0]);
  bounds.add(points_[3]);
  for (int axis = 0; axis < 2; ++axis) {
    double parameters[cf_maxRoots];
    int const count = cf_extremes(curve, axis, parameters);
    for (int i = 0; i < count; ++i)
      bounds.add(curve.at(parameters[i]));
  }
  return bounds.rect();
}

void ccBezierCurve::outline(ccOutlineSink& sink) const
{
  sink.moveTo(points_[0]);
  sink.curveTo(*this);
}

ccPtrHandle<ccShape> ccBezierCurve::clone_() const { return new ccBezierCurve(*this); }
ccPtrHandle_const<ccShape> ccBezierCurve::map_(ccXform<2> const& x) const { return new ccBezierCurve(map(x)); }

ccWeightLaw::ccWeightLaw(double oldWeight, double sumOfWeights) : least_(0.1 * oldWeight)
{
  cf_checkWeight(oldWeight);
  cf_require(cf_isFinite(10 * sumOfWeights) && sumOfWeights >= oldWeight, "sum of weights");
  double const rise = oldWeight - least_;
  scale_ = rise * (rise / (10 * sumOfWeights + least_ - 2 * oldWeight));
  log_ = std::log((10 * sumOfWeights - least_) / scale_ + 1);
}

double ccWeightLaw::weight(double t) const { return std::expm1(t * log_) * scale_ + least_; }

ccBezierPath::ccBezierPath(std::vector<ccBezierCurve> curves, bool closed) : closed_(closed)
{
  curves_.reserve(curves.size());
  for (ccBezierCurve const& c : curves)
    append(c);
}

ccBezierCurve const& ccBezierPath::curve(long i) const
{
  cf_require(i >= 0 && i < size(), "index of a curve");
  return curves_[static_cast<std::size_t>(i)];
}

void ccBezierPath::append(ccBezierCurve const& c)
{
  if (!curves_.empty()) {
    double const size = std::max(cf_largest(curves_.back()), cf_largest(c));
    cf_require(curves_.back().endPoint().distance(c.startPoint()) <= kJoint * size, "curves of a path with a gap");
  }
  curves_.push_back(c);
}

void ccBezierPath::append(ccEllipseArc2 const& arc)
{
  int const pieces = cf_numPieces(arc.span());
  ccRadian const step = arc.span() / pieces;
  for (int i = 0; i < pieces; ++i)
    append(ccBezierCurve::fromArc(ccEllipseArc2(arc.ellipse(), arc.start() + step * i, step)));
}

void ccBezierPath::appendLine(ccPoint const& from, ccPoint const& to) { append(ccBezierCurve::fromLine(from, to)); }

ccBezierPath ccBezierPath::map(ccXform<2> const& x) const
{
  ccBezierPath image;
  image.closed_ = closed_;
  image.curves_.reserve(curves_.size());
  for (ccBezierCurve const& c : curves_)
    image.curves_.push_back(c.map(x));
  return image;
}

double ccBezierPath::distanceToPoint(ccVector<2> const& p) const
{
  double best = cfInfinity;
  if (closed_ && !curves_.empty())
    best = cf_segmentDistance(curves_.back().endPoint(), curves_.front().startPoint(), p);
  for (ccBezierCurve const& c : curves_) {
    cs_Bounds box;
    for (int i = 0; i < 4; ++i)
      box.add(c.controlPoint(i));
    if (box.distance(p) < best)
      best = std::min(best, c.distanceToPoint(p));
  }
  return best;
}

ccRect ccBezierPath::encloseRect() const
{
  cs_Bounds bounds;
  for (ccBezierCurve const& c : curves_) {
    ccRect const r = c.encloseRect();
    bounds.add(r.ul());
    bounds.add(r.lr());
  }
  return bounds.rect();
}

void ccBezierPath::outline(ccOutlineSink& sink) const
{
  if (curves_.empty())
    return;
  sink.moveTo(curves_.front().startPoint());
  for (ccBezierCurve const& c : curves_)
    sink.curveTo(c);
  if (closed_)
    sink.close();
}

ccPtrHandle<ccShape> ccBezierPath::clone_() const { return new ccBezierPath(*this); }
ccPtrHandle_const<ccShape> ccBezierPath::map_(ccXform<2> const& x) const { return new ccBezierPath(map(x)); }
