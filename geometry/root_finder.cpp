#include "geometry/root_finder.h"

#include <algorithm>
#include <limits>

namespace {

constexpr double kRounding = 4e-15;      // of the sum of the absolute terms of a coefficient
constexpr double kLeastWeight = 1e-200;  // against the largest one: below it a quotient of weights would underflow
constexpr double kLeastInterval = 1e-9;  // of the parameter
constexpr int kMaxNodes = 300;
constexpr int kMaxDepth = 32;  // 2^-30 is below the least interval

constexpr double kBinomials[cf_maxRootDegree + 1][cf_maxRootDegree + 1] = {
    {1},
    {1, 1},
    {1, 2, 1},
    {1, 3, 3, 1},
    {1, 4, 6, 4, 1},
    {1, 5, 10, 10, 5, 1},
    {1, 6, 15, 20, 15, 6, 1},
    {1, 7, 21, 35, 35, 21, 7, 1},
    {1, 8, 28, 56, 70, 56, 28, 8, 1},
};

// A polynomial in Bernstein form; magnitude holds the sums of absolute terms that its coefficients were made of.
struct cs_Poly {
  int degree = 0;
  double c[cf_maxRootDegree + 1] = {};
  double magnitude[cf_maxRootDegree + 1] = {};
};

cs_Poly operator*(cs_Poly const& a, cs_Poly const& b)
{
  cs_Poly r;
  r.degree = a.degree + b.degree;
  for (int i = 0; i <= a.degree; ++i)
    for (int j = 0; j <= b.degree; ++j) {
      double const k = kBinomials[a.degree][i] * kBinomials[b.degree][j] / kBinomials[r.degree][i + j];
      r.c[i + j] += k * a.c[i] * b.c[j];
      r.magnitude[i + j] += k * a.magnitude[i] * b.magnitude[j];
    }
  return r;
}

cs_Poly operator+(cs_Poly a, cs_Poly const& b)  // of one degree
{
  for (int i = 0; i <= a.degree; ++i) {
    a.c[i] += b.c[i];
    a.magnitude[i] += b.magnitude[i];
  }
  return a;
}

cs_Poly operator-(cs_Poly a, cs_Poly const& b)
{
  for (int i = 0; i <= a.degree; ++i) {
    a.c[i] -= b.c[i];
    a.magnitude[i] += b.magnitude[i];
  }
  return a;
}

cs_Poly cf_derivative(cs_Poly const& p)
{
  cs_Poly r;
  r.degree = p.degree - 1;
  for (int i = 0; i < p.degree; ++i) {
    r.c[i] = p.degree * (p.c[i + 1] - p.c[i]);
    r.magnitude[i] = p.degree * (p.magnitude[i + 1] + p.magnitude[i]);
  }
  return r;
}

int cf_polyRoots(cs_Poly const& p, double* roots)
{
  double bound[cf_maxRootDegree + 1];
  for (int i = 0; i <= p.degree; ++i)
    bound[i] = kRounding * p.magnitude[i];
  return cf_roots(p.c, bound, p.degree, roots);
}

struct cs_Node {
  double c[cf_maxRootDegree + 1];
  double bound[cf_maxRootDegree + 1];
  double low, high;
};

double cf_value(double const* c, int degree, double t, double& derivative)
{
  double b[cf_maxRootDegree + 1];
  std::copy(c, c + degree + 1, b);
  for (int k = degree; k > 1; --k)
    for (int i = 0; i < k; ++i)
      b[i] += t * (b[i + 1] - b[i]);
  if (degree == 0) {
    derivative = 0;
    return b[0];
  }
  derivative = degree * (b[1] - b[0]);
  return b[0] + t * (b[1] - b[0]);
}

// The only root, bracketed by ends of different signs: Newton's steps, halving where they leave the bracket or lag.
double cf_singleRoot(double const* c, int degree)
{
  double low = 0, high = 1, t = c[0] / (c[0] - c[degree]), lastWidth = 2;
  bool const rising = c[0] < 0;
  for (int step = 0; step < 110; ++step) {
    double slope = 0;
    double const value = cf_value(c, degree, t, slope);
    if (value == 0)
      return t;
    ((value > 0) == rising ? high : low) = t;
    double next = slope != 0 ? t - value / slope : -1.0;
    if (!(next > low && next < high) || std::abs(next - t) > 0.5 * lastWidth)
      next = 0.5 * (low + high);
    lastWidth = std::abs(next - t);
    if (lastWidth <= 1e-17 || next == t || high - low <= 1e-17)
      return next;
    t = next;
  }
  return t;
}

enum class cs_Pattern { none, flat, single, unclear };

cs_Pattern cf_pattern(cs_Node const& node, int degree)
{
  int signs[cf_maxRootDegree + 1];
  bool plus = false, minus = false, zero = false;
  for (int i = 0; i <= degree; ++i) {
    signs[i] = node.c[i] > node.bound[i] ? 1 : node.c[i] < -node.bound[i] ? -1 : 0;
    plus |= signs[i] > 0;
    minus |= signs[i] < 0;
    zero |= signs[i] == 0;
  }
  if (!plus && !minus)
    return cs_Pattern::flat;
  if (!zero && plus != minus)
    return cs_Pattern::none;
  if (signs[0] == 0 || signs[degree] == 0 || signs[0] == signs[degree])
    return cs_Pattern::unclear;
  // One sign, then coefficients without, then the other: whatever those are, the sign changes once.
  int i = 0;
  while (signs[i] == signs[0])
    ++i;
  while (signs[i] == 0)
    ++i;
  while (i <= degree && signs[i] == signs[degree])
    ++i;
  return i > degree ? cs_Pattern::single : cs_Pattern::unclear;
}

void cf_halve(cs_Node const& node, int degree, cs_Node& left, cs_Node& right)
{
  right = node;
  left.low = node.low;
  left.high = right.low = 0.5 * (node.low + node.high);
  for (int k = 0; k <= degree; ++k) {
    left.c[k] = right.c[0];
    left.bound[k] = right.bound[0];
    for (int i = 0; i < degree - k; ++i) {
      right.c[i] = 0.5 * (right.c[i] + right.c[i + 1]);
      right.bound[i] = 0.5 * (right.bound[i] + right.bound[i + 1]);
    }
  }
}

cs_Poly cf_coordinate(cs_RationalCurve const& curve, int axis, double origin, double scale)
{
  cs_Poly p;
  p.degree = curve.degree;
  for (int i = 0; i <= curve.degree; ++i) {
    p.c[i] = curve.weights[i] * ((curve.points[i][axis] - origin) * scale);
    p.magnitude[i] = std::abs(p.c[i]);
  }
  return p;
}

cs_Poly cf_denominator(cs_RationalCurve const& curve)
{
  cs_Poly p;
  p.degree = curve.degree;
  for (int i = 0; i <= curve.degree; ++i)
    p.c[i] = p.magnitude[i] = curve.weights[i];
  return p;
}

bool cf_isPolynomial(cs_RationalCurve const& curve)
{
  return std::all_of(curve.weights + 1, curve.weights + curve.degree + 1,
                     [&](double w) { return w == curve.weights[0]; });
}

cs_RationalCurve cf_withUnitWeights(cs_RationalCurve curve)  // the largest weight is 1
{
  double const largest = *std::max_element(curve.weights, curve.weights + curve.degree + 1);
  for (int i = 0; i <= curve.degree; ++i)
    curve.weights[i] = std::max(curve.weights[i] / largest, kLeastWeight);
  return curve;
}

}  // namespace

int cf_roots(double const* coefficients, double const* bound, int degree, double* roots)
{
  cs_Node stack[kMaxDepth + 1];
  std::copy(coefficients, coefficients + degree + 1, stack[0].c);
  std::copy(bound, bound + degree + 1, stack[0].bound);
  stack[0].low = 0;
  stack[0].high = 1;
  int depth = 1, nodes = 0, found = 0;
  while (depth > 0) {
    cs_Node const node = stack[--depth];
    double const middle = 0.5 * (node.low + node.high), width = node.high - node.low;
    switch (cf_pattern(node, degree)) {
    case cs_Pattern::none:
      break;
    case cs_Pattern::flat:
      roots[found++] = node.low;
      roots[found++] = middle;
      roots[found++] = node.high;
      break;
    case cs_Pattern::single:
      roots[found++] = node.low + width * cf_singleRoot(node.c, degree);
      break;
    case cs_Pattern::unclear:
      if (width <= kLeastInterval || ++nodes > kMaxNodes / 2 || depth + 2 > kMaxDepth) {
        roots[found++] = middle;
        break;
      }
      cf_halve(node, degree, stack[depth + 1], stack[depth]);
      depth += 2;
      break;
    }
  }
  return found;
}

ccVector<2> cs_RationalCurve::at(double t, ccVector<2>* derivative) const
{
  // Relative to the first point, so that coinciding points give themselves exactly.
  double w[4] = {}, x[4] = {}, y[4] = {};
  for (int i = 0; i <= degree; ++i) {
    w[i] = weights[i];
    x[i] = w[i] * (points[i].x() - points[0].x());
    y[i] = w[i] * (points[i].y() - points[0].y());
  }
  double dx = 0, dy = 0, dw = 0;
  for (int k = degree; k > 0; --k) {
    if (k == 1) {
      dx = x[1] - x[0];
      dy = y[1] - y[0];
      dw = w[1] - w[0];
    }
    for (int i = 0; i < k; ++i) {
      w[i] = (1 - t) * w[i] + t * w[i + 1];
      x[i] = (1 - t) * x[i] + t * x[i + 1];
      y[i] = (1 - t) * y[i] + t * y[i + 1];
    }
  }
  ccVector<2> const offset(x[0] / w[0], y[0] / w[0]);
  if (derivative)
    *derivative = (ccVector<2>(dx, dy) - offset * dw) * (degree / w[0]);
  return points[0] + offset;
}

cs_Nearest cf_nearest(cs_RationalCurve const& given, ccVector<2> const& q)
{
  cs_RationalCurve curve = cf_withUnitWeights(given);
  double size = 0;
  for (int i = 0; i <= curve.degree; ++i) {
    curve.points[i] = curve.points[i] - q;
    size = std::max({size, std::abs(curve.points[i].x()), std::abs(curve.points[i].y())});
  }
  // A place that is not finite touches nothing.
  if (!std::isfinite(q.x()) || !std::isfinite(q.y()))
    return {0, std::numeric_limits<double>::infinity()};
  if (!(size > 0))
    return {};
  cs_Poly const x = cf_coordinate(curve, 0, 0, 1 / size), y = cf_coordinate(curve, 1, 0, 1 / size);
  double roots[cf_maxRoots];
  int count = 0;
  if (cf_isPolynomial(curve)) {
    count = cf_polyRoots(x * cf_derivative(x) + y * cf_derivative(y), roots);
  } else {
    cs_Poly const d = cf_denominator(curve), dd = cf_derivative(d);
    count = cf_polyRoots(x * (cf_derivative(x) * d - x * dd) + y * (cf_derivative(y) * d - y * dd), roots);
  }
  cs_Nearest best{0, curve.points[0].len()};
  if (double const last = curve.points[curve.degree].len(); last < best.distance)
    best = {1, last};
  for (int i = 0; i < count; ++i)
    if (double const distance = curve.at(roots[i]).len(); distance < best.distance)
      best = {roots[i], distance};
  // A parameter that is right to the least interval still leaves a distance to a point of the curve itself, where the curve
  // runs fast. There a step along the tangent is exact up to the square.
  for (int step = 0; step < 3; ++step) {
    ccVector<2> tangent;
    ccVector<2> const p = curve.at(best.t, &tangent);
    double const t = std::clamp(best.t - p.dot(tangent) / tangent.dot(tangent), 0.0, 1.0);
    double const distance = curve.at(t).len();
    if (!(distance < best.distance))
      break;
    best = {t, distance};
  }
  return best;
}

int cf_extremes(cs_RationalCurve const& given, int axis, double* parameters)
{
  cs_RationalCurve const curve = cf_withUnitWeights(given);
  double size = 0;
  for (int i = 1; i <= curve.degree; ++i)
    size = std::max(size, std::abs(curve.points[i][axis] - curve.points[0][axis]));
  if (!(size > 0))
    return 0;
  cs_Poly const x = cf_coordinate(curve, axis, curve.points[0][axis], 1 / size);
  if (cf_isPolynomial(curve))
    return cf_polyRoots(cf_derivative(x), parameters);
  cs_Poly const d = cf_denominator(curve);
  return cf_polyRoots(cf_derivative(x) * d - x * cf_derivative(d), parameters);
}
