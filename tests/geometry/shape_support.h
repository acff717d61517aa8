// What the tests of shapes share: seeded random values, a sampler of outlines that computes its points by itself, and the
// properties that every shape has.
#pragma once

#include "geometry/bezier.h"
#include "geometry/plane.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <random>

namespace krs_test {

using V = ccVector<2>;

inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

inline void expectNear(V const& a, V const& b, double tolerance)
{
  EXPECT_NEAR(a.x(), b.x(), tolerance);
  EXPECT_NEAR(a.y(), b.y(), tolerance);
}

inline ccRadian deg(double d) { return ccRadian(d * cfPi / 180); }

// More rounds where time does not matter.
inline int rounds(int n) { return std::getenv("KRS_LONG") ? 20 * n : n; }

class Random {
public:
  explicit Random(unsigned seed) : engine_(seed) {}
  double in(double low, double high) { return std::uniform_real_distribution<double>(low, high)(engine_); }
  int below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(engine_); }
  bool chance(int oneIn) { return below(oneIn) == 0; }
  ccRadian angle() { return ccRadian(in(-7, 7)); }
  V vector(double range) { return V(in(-range, range), in(-range, range)); }
  // From tiny to large, evenly by magnitude.
  double magnitude(double low, double high) { return std::exp(in(std::log(low), std::log(high))); }

  // Well conditioned mostly; sometimes mirrored, uneven, far away.
  ccXform<2> affine()
  {
    double const x = magnitude(0.2, 5), y = magnitude(0.2, 5) * (chance(2) ? -1 : 1);
    ccMatrix<2> const m = ccMatrix<2>(angle(), 1) * ccMatrix<2>(x, 0, 0, y) * ccMatrix<2>(angle(), 1);
    return ccXform<2>(m, vector(chance(4) ? 1e4 : 10));
  }
  ccXform<2> similarity(double scale, bool mirrored)
  {
    ccMatrix<2> const m = ccMatrix<2>(angle(), scale) * ccMatrix<2>(1, 0, 0, mirrored ? -1 : 1);
    return ccXform<2>(m, vector(100));
  }

private:
  std::mt19937 engine_;
};

// By the definition, with sines and cosines of its own.
inline V arcPoint(ccEllipseArc2 const& arc, double t)
{
  ccEllipse2 const e = arc.ellipse();
  double const a = arc.start().value() + t * arc.span().value(), f = e.rotation().value();
  double const x = e.rx() * std::cos(a), y = e.ry() * std::sin(a);
  return V(e.center().x() + std::cos(f) * x - std::sin(f) * y, e.center().y() + std::sin(f) * x + std::cos(f) * y);
}

inline V bezierPoint(ccBezierCurve const& curve, double t)
{
  double const b[4] = {(1 - t) * (1 - t) * (1 - t), 3 * t * (1 - t) * (1 - t), 3 * t * t * (1 - t), t * t * t};
  double w = 0;
  V sum;
  for (int i = 0; i < 4; ++i) {
    w += b[i] * curve.weight(i);
    sum += b[i] * curve.weight(i) * curve.controlPoint(i);
  }
  return sum / w;
}

// Points of an outline, and how far apart neighbours are at most.
class Sampler : public ccOutlineSink {
public:
  explicit Sampler(int perPiece) : perPiece_(perPiece) {}
  Sampler(ccShape const& shape, int perPiece) : perPiece_(perPiece) { shape.outline(*this); }

  std::vector<V> points;
  double gap = 0;
  double tear = 0;  // between a piece and the place where the stroke had arrived
  int strokes = 0, lines = 0, arcs = 0, curves = 0, closes = 0, dots = 0;

  void point(V const& p) override
  {
    ++dots;
    points.push_back(p);
  }
  void moveTo(V const& p) override
  {
    ++strokes;
    start_ = current_ = p;
    points.push_back(p);
  }
  void lineTo(V const& p) override
  {
    ++lines;
    V const from = current_;
    piece_([&](double t) { return t == 1 ? p : from + (p - from) * t; });
  }
  void arcTo(ccEllipseArc2 const& arc) override
  {
    ++arcs;
    piece_([&](double t) { return arcPoint(arc, t); });
  }
  void curveTo(ccBezierCurve const& curve) override
  {
    ++curves;
    piece_([&](double t) { return bezierPoint(curve, t); });
  }
  void close() override
  {
    ++closes;
    lineTo(start_);
    --lines;
  }

  double distance(V const& q) const
  {
    double best = cfInfinity;
    for (V const& p : points)
      best = std::min(best, p.distance(q));
    return best;
  }

private:
  template <class F> void piece_(F const& at)
  {
    tear = std::max(tear, at(0.0).distance(current_));
    for (int i = 0; i <= perPiece_; ++i) {
      V const p = at(static_cast<double>(i) / perPiece_);
      gap = std::max(gap, p.distance(points.back()));
      points.push_back(p);
    }
    current_ = points.back();
  }

  int perPiece_;
  V start_, current_;
};

// The scale of a shape's data: the largest coordinate.
inline double sizeOf(Sampler const& s)
{
  double size = 1e-300;
  for (V const& p : s.points)
    size = std::max({size, std::abs(p.x()), std::abs(p.y())});
  return size;
}

// A way to make random shapes of one class, well and badly conditioned and degenerate ones.
struct Family {
  char const* name;
  std::function<ccPtrHandle_const<ccShape>(Random&)> make;
};

// Makes a random map for a shape of that size (the largest coordinate).
using MapMaker = std::function<ccXform<2>(Random&, double size)>;

// The properties of every shape; the test fails with the family's name where one does not hold. n random shapes are made.
void outlineIsAtDistanceZero(Family const&, int n);
void distanceIsLipschitz(Family const&, int n);
void distanceAgreesWithSamples(Family const&, int n);
void boxHoldsAndTouches(Family const&, int n);
void mapAndBackRestores(Family const&, int n);
// The same for other maps. Returns how many maps had an image: only a rectangle whose sides a map lays on one line has none, and
// throws ccMathError::Singular.
int mapAndBackRestores(Family const&, int n, MapMaker const&);
void mapMovesEveryPoint(Family const&, int n);
void distanceScalesWithSimilarities(Family const&, int n);
void distanceScalesWithSimilarities(Family const&, int n, double least, double most);
void cloneIsEqual(Family const&, int n);

}  // namespace krs_test
