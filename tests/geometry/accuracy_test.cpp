// Closed formulas are right to 1e-12 of the largest coordinate. Here they are worked out again in longer numbers.
#include "geometry/all.h"
#include "geometry/plane.h"
#include "tests/geometry/poly_support.h"

using namespace krs_test;

namespace {

using Long = long double;

constexpr double kClosed = 1e-12;
constexpr Long kPi = 3.14159265358979323846264338327950288L;

// A point in longer numbers.
struct P {
  Long x = 0, y = 0;
  P() = default;
  P(Long a, Long b) : x(a), y(b) {}
  P(V const& v) : x(v.x()), y(v.y()) {}
  friend P operator+(P a, P b) { return {a.x + b.x, a.y + b.y}; }
  friend P operator-(P a, P b) { return {a.x - b.x, a.y - b.y}; }
  friend P operator*(P a, Long k) { return {a.x * k, a.y * k}; }
};
Long dot(P a, P b) { return a.x * b.x + a.y * b.y; }
Long distance(P a, P b) { return std::hypot(a.x - b.x, a.y - b.y); }
P polar(Long r, Long angle) { return {r * std::cos(angle), r * std::sin(angle)}; }
P turned(P p, Long angle)
{
  return {p.x * std::cos(angle) - p.y * std::sin(angle), p.x * std::sin(angle) + p.y * std::cos(angle)};
}

Long toSegment(P a, P b, P q)
{
  P const d = b - a;
  Long const square = dot(d, d), t = square > 0 ? dot(q - a, d) / square : 0;
  return distance(a + d * std::clamp<Long>(t, 0, 1), q);
}

// The angle of p lies on the way from start over span.
bool isSwept(Long angle, Long start, Long span)
{
  Long const way = std::fmod(span > 0 ? angle - start : start - angle, 2 * kPi);
  return (way < 0 ? way + 2 * kPi : way) <= std::abs(span);
}

Long toArc(P c, Long r, Long start, Long span, P q)
{
  if (isSwept(std::atan2(q.y - c.y, q.x - c.x), start, span))
    return std::abs(distance(q, c) - r);
  return std::min(distance(c + polar(r, start), q), distance(c + polar(r, start + span), q));
}

struct Box {
  P least{1e300L, 1e300L}, most{-1e300L, -1e300L};
  void add(P p)
  {
    least = {std::min(least.x, p.x), std::min(least.y, p.y)};
    most = {std::max(most.x, p.x), std::max(most.y, p.y)};
  }
};

// The unit in which a test's data are given: from tiny to large.
double unitOf(Random& r) { return r.magnitude(1e-9, 1e9); }

// One of several places around the data of a test.
struct Setting {
  explicit Setting(Random& random)
      : r(random), unit(unitOf(random)), at(random.vector(random.chance(2) ? 1000 : 10) * unit)
  {}
  V point() { return at + r.vector(10) * unit; }
  double length() { return r.in(0.01, 20) * unit; }
  // Against the largest coordinate there may be.
  void expect(double value, Long plain) { EXPECT_NEAR(value, static_cast<double>(plain), kClosed * largest()); }
  void expect(ccRect const& r2, Box const& b)
  {
    expect(r2.ul().x(), b.least.x);
    expect(r2.ul().y(), b.least.y);
    expect(r2.lr().x(), b.most.x);
    expect(r2.lr().y(), b.most.y);
  }
  double largest() const { return std::max(std::abs(at.x()), std::abs(at.y())) + 10 * unit; }

  Random& r;
  double unit;
  V at;
};

template <class Body> void forSettings(unsigned seed, Body const& body)
{
  Random random(seed);
  for (int i = 0; i < rounds(2000); ++i) {
    Setting s(random);
    SCOPED_TRACE(i);
    body(s);
    if (testing::Test::HasFailure())
      return;
  }
}

} // namespace

TEST(ClosedFormulas, distancesOfLinesAndChains)
{
  forSettings(1, [](Setting& s) {
    V const a = s.point(), b = s.point(), c = s.point(), q = s.point();
    s.expect(ccLineSeg(a, b).distToPoint(q), toSegment(a, b, q));
    Long const chain = std::min(toSegment(a, b, q), toSegment(b, c, q)), ring = std::min(chain, toSegment(c, a, q));
    s.expect(ccPolyline({a, b, c}).distToPoint(q), chain);
    s.expect(ccPolyline({a, b, c}, true).distToPoint(q), ring);
    s.expect(ccPolygon({a, b, c}, 2).distToPoint(q), ring);
    s.expect(ccCoordAxes(b, a, c).distToPoint(q), chain);
    s.expect(ccPointSet({a, b, c}).distToPoint(q), std::min({distance(a, q), distance(b, q), distance(c, q)}));
    P const d = P(b) - P(a), o = P(q) - P(a);
    s.expect(ccLine(b - a, a).distToPoint(q), std::abs(d.x * o.y - d.y * o.x) / std::hypot(d.x, d.y));
  });
}

TEST(ClosedFormulas, distancesAndBoxesOfRectangles)
{
  forSettings(2, [](Setting& s) {
    V const c = s.point(), q = s.point();
    double const x = s.length(), y = s.length(), a = s.r.in(-4, 4), k = s.r.in(-1.4, 1.4) + (s.r.chance(2) ? cfPi : 0);
    ccAffineRectangle const r(c, x, y, ccRadian(a), ccRadian(k));
    P const xs = polar(x, a), ys = polar(y, static_cast<Long>(a) + k + kPi / 2), o = P(c) - (xs + ys) * 0.5L;
    P const corners[4] = {o, o + xs, o + xs + ys, o + ys};
    Long best = 1e300L;
    Box box;
    for (int i = 0; i < 4; ++i) {
      best = std::min(best, toSegment(corners[i], corners[(i + 1) % 4], q));
      box.add(corners[i]);
    }
    s.expect(r.distToPoint(q), best);
    s.expect(r.encloseRect(), box);
    ccGenRect const same(r); // the same outline by other parameters
    s.expect(same.distToPoint(q), best);
    s.expect(same.encloseRect(), box);
  });
}

TEST(ClosedFormulas, boxesOfRoundedRectangles)
{
  forSettings(3, [](Setting& s) {
    double const hx = s.length(), hy = s.length(), o = s.r.in(0, 6), k = s.r.in(-1.4, 1.4), fx = s.r.in(0, 1),
                 fy = s.r.in(0, 1);
    int const h = s.r.chance(2) ? 1 : -1;
    V const c = s.point();
    // The outline is extreme in a corner's quarter ellipse; its extremes as those of a cosine and a sine.
    P const ax = turned({hx, 0}, o), ay = turned(P(std::tan(static_cast<Long>(k)), 1) * (h * static_cast<Long>(hy)), o);
    Box box;
    for (int sx = -1; sx <= 1; sx += 2)
      for (int sy = -1; sy <= 1; sy += 2) {
        P const center = P(c) + ax * (sx * (1 - static_cast<Long>(fx))) + ay * (sy * (1 - static_cast<Long>(fy)));
        P const u = ax * fx, v = ay * fy;
        Long const ex = std::hypot(u.x, v.x), ey = std::hypot(u.y, v.y);
        box.add(center + P(ex, ey));
        box.add(center - P(ex, ey));
      }
    s.expect(ccGenRect(c, hx, hy, h, ccRadian(k), ccRadian(o), V(fx, fy)).encloseRect(), box);
  });
}

TEST(ClosedFormulas, distancesOfCirclesAndTheirArcs)
{
  forSettings(4, [](Setting& s) {
    V const c = s.point(), q = s.point();
    double const r = s.length(), start = s.r.in(-6, 6), span = s.r.in(-6.2, 6.2), turn = s.r.in(-6, 6);
    s.expect(ccCircle(c, r).distToPoint(q), std::abs(distance(c, q) - r));
    s.expect(ccEllipse(c, r, r, ccRadian(turn)).distToPoint(q), std::abs(distance(c, q) - r));
    ccEllipseArc const arc(ccEllipse(c, r, r, ccRadian(turn)), ccRadian(start), ccRadian(span));
    s.expect(arc.distToPoint(q), toArc(c, r, static_cast<Long>(start) + turn, span, q));
  });
}

TEST(ClosedFormulas, boxesOfEllipsesAndTheirArcs)
{
  forSettings(5, [](Setting& s) {
    V const c = s.point();
    double const rx = s.length(), ry = s.length(), f = s.r.in(-4, 4), start = s.r.in(-6, 6), span = s.r.in(-6.2, 6.2);
    ccEllipse const e(c, rx, ry, ccRadian(f));
    auto const at = [&](Long t) { return P(c) + turned({rx * std::cos(t), ry * std::sin(t)}, f); };
    // dx/dt and dy/dt are 0 at these angles and half a turn on.
    Long const tx = std::atan2(-ry * std::sin(static_cast<Long>(f)), rx * std::cos(static_cast<Long>(f)));
    Long const ty = std::atan2(ry * std::cos(static_cast<Long>(f)), rx * std::sin(static_cast<Long>(f)));
    Box whole, part;
    part.add(at(start));
    part.add(at(static_cast<Long>(start) + span));
    for (Long const t : {tx, tx + kPi, ty, ty + kPi}) {
      whole.add(at(t));
      if (isSwept(t, start, span))
        part.add(at(t));
    }
    s.expect(e.encloseRect(), whole);
    s.expect(ccEllipse2(e).encloseRect(), whole);
    s.expect(ccEllipseArc(e, ccRadian(start), ccRadian(span)).encloseRect(), part);
  });
}

TEST(ClosedFormulas, distancesAndBoxesOfPolygonsWithArcs)
{
  forSettings(6, [](Setting& s) {
    V const a = s.point(), b = s.point(), q = s.point();
    double const span = (s.r.chance(2) ? -1 : 1) * s.r.in(0.01, 6);
    cc2Wireframe const wire({record(a), record(b, 0, ccRadian(span))}, false);
    P const d = P(b) - P(a), m = (P(a) + P(b)) * 0.5L;
    Long const half = std::hypot(d.x, d.y) / 2, h = static_cast<Long>(span) / 2;
    P const center = m + P(-d.y, d.x) * (1 / (2 * std::tan(h)));
    Long const radius = half / std::abs(std::sin(h)), start = std::atan2(a.y() - center.y, a.x() - center.x);
    // A flat arc has its centre far away, which costs the plain formula digits, too.
    s.expect(wire.distToPoint(q), toArc(center, radius, start, span, q));
    Box box;
    box.add(a);
    box.add(b);
    for (int k = 0; k < 4; ++k)
      if (isSwept(k * kPi / 2, start, span))
        box.add(center + polar(radius, k * kPi / 2));
    s.expect(wire.encloseRect(), box);
  });
}

TEST(ClosedFormulas, boxesOfPolynomialCurves)
{
  forSettings(7, [](Setting& s) {
    V const p[4] = {s.point(), s.point(), s.point(), s.point()};
    Box box;
    box.add(p[0]);
    box.add(p[3]);
    auto const at = [&](Long t) {
      Long const u = 1 - t;
      return P(p[0]) * (u * u * u) + P(p[1]) * (3 * t * u * u) + P(p[2]) * (3 * t * t * u) + P(p[3]) * (t * t * t);
    };
    for (int axis = 0; axis < 2; ++axis) {
      // The derivative a t t + b t + c by the formula for quadratic equations.
      auto const v = [&](int i) { return static_cast<Long>(p[i][axis]); };
      Long const a = v(3) - 3 * v(2) + 3 * v(1) - v(0), b = 2 * (v(2) - 2 * v(1) + v(0)), c = v(1) - v(0);
      Long const root = b * b - 4 * a * c;
      if (root < 0)
        continue;
      Long const w = -(b + std::copysign(std::sqrt(root), b)) / 2;
      for (Long const t : {w / a, c / w})
        if (t > 0 && t < 1)
          box.add(at(t));
    }
    s.expect(ccBezierCurve(p[0], p[1], p[2], p[3]).encloseRect(), box);
  });
}

TEST(ClosedFormulas, circlesAndRectanglesUnderSimilarities)
{
  forSettings(8, [](Setting& s) {
    double const scale = s.r.magnitude(0.1, 10), angle = s.r.in(-3, 3), r = s.length();
    V const c = s.point(), shift = s.point();
    ccXform<2> const x(ccMatrix<2>(ccRadian(angle), scale), shift);
    P const center = turned(P(c) * scale, angle) + P(shift);
    ccCircle const image = ccCircle(c, r).map(x);
    double const slack = 1e-12 * (10 * scale * s.largest() + s.largest());
    EXPECT_NEAR(image.center().x(), static_cast<double>(center.x), slack);
    EXPECT_NEAR(image.center().y(), static_cast<double>(center.y), slack);
    EXPECT_NEAR(image.radius(), scale * r, 1e-12 * scale * r);
  });
}
