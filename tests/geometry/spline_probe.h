// What the tests of the splines share: random data, plain evaluation, and the laws that hold for every spline.
#pragma once

#include "geometry/cubic_spline.h"
#include "geometry/rect.h"
#include "tests/geometry/shape_support.h"

#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace spline_probe {

using Points = std::vector<ccVector<2>>;

inline long rounds(int n) { return krs_test::rounds(n); }

class Random {
public:
  explicit Random(unsigned seed) : engine_(seed) {}
  double number(double low, double high) { return std::uniform_real_distribution<double>(low, high)(engine_); }
  long whole(long low, long high) { return std::uniform_int_distribution<long>(low, high)(engine_); }
  ccVector<2> point(double size = 100)
  {
    double const x = number(-size, size);
    return ccVector<2>(x, number(-size, size));
  }
  // Families that operators make: scattered, on whole pels, on one line, with points that coincide.
  Points points(long n, double size = 100)
  {
    long const family = whole(0, 4);
    ccVector<2> const from = point(size), along = point(size);
    Points made;
    for (long i = 0; i < n; ++i) {
      if (family == 1)
        made.push_back(ccVector<2>(static_cast<double>(whole(-20, 20)), static_cast<double>(whole(-20, 20))));
      else if (family == 2)
        made.push_back(from + along * number(-1, 1));
      else if (family == 3 && i > 0 && whole(0, 1) == 1)
        made.push_back(made.back());
      else if (family == 4 && i > 0 && whole(0, 2) == 0)
        made.push_back(made.front());
      else
        made.push_back(point(size));
    }
    return made;
  }
  ccXform<2> xform()
  {
    for (;;) {
      ccMatrix<2> const m(number(-2, 2), number(-2, 2), number(-2, 2), number(-2, 2));
      if (std::abs(m.determinant()) > 0.2)
        return ccXform<2>(m, point());
    }
  }

private:
  std::mt19937 engine_;
};

inline ccVector<2> at(ccBezierCurve const& c, double t) { return krs_test::bezierPoint(c, t); }

inline Points samples(ccCubicSpline const& s, int perCurve)
{
  Points found;
  for (long k = 0; k < s.numBezierCurves(); ++k)
    for (int i = 0; i <= perCurve; ++i)
      found.push_back(at(s.bezierCurve(k), static_cast<double>(i) / perCurve));
  return found;
}

// The least value of a function over the spline: by samples, then by the golden section about each lowest one.
inline double least(ccCubicSpline const& s, std::function<double(ccVector<2> const&)> const& value)
{
  constexpr int count = 60;
  double const golden = (std::sqrt(5.0) - 1) / 2;
  double best = std::numeric_limits<double>::infinity();
  for (long k = 0; k < s.numBezierCurves(); ++k) {
    ccBezierCurve const c = s.bezierCurve(k);
    auto const f = [&](double t) { return value(at(c, t)); };
    double v[count + 1];
    for (int i = 0; i <= count; ++i)
      v[i] = f(static_cast<double>(i) / count);
    for (int i = 0; i <= count; ++i) {
      if ((i > 0 && v[i - 1] < v[i]) || (i < count && v[i + 1] < v[i]))
        continue;
      best = std::min(best, v[i]);
      double low = std::max(i - 1, 0) / static_cast<double>(count), high = std::min(i + 1, count) / static_cast<double>(count);
      for (int step = 0; step < 50; ++step) {
        double const a = high - golden * (high - low), b = low + golden * (high - low);
        (f(a) < f(b) ? high : low) = f(a) < f(b) ? b : a;
      }
      best = std::min(best, f(0.5 * (low + high)));
    }
  }
  return best;
}

struct Strokes : ccOutlineSink {
  std::string steps;  // P, M, L, A, C and Z
  Points starts, ends;
  void point(ccVector<2> const& p) override { steps += 'P', starts.push_back(p), ends.push_back(p); }
  void moveTo(ccVector<2> const& p) override { steps += 'M', starts.push_back(p), ends.push_back(p); }
  void lineTo(ccVector<2> const&) override { steps += 'L'; }
  void arcTo(ccEllipseArc2 const&) override { steps += 'A'; }
  void curveTo(ccBezierCurve const& c) override
  {
    steps += 'C';
    starts.push_back(c.startPoint());
    ends.push_back(c.endPoint());
  }
  void close() override { steps += 'Z'; }
};

inline double sizeOf(Points const& points)
{
  double size = 1;
  for (ccVector<2> const& p : points)
    size = std::max({size, std::abs(p.x()), std::abs(p.y())});
  return size;
}

}  // namespace spline_probe
