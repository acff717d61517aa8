#include "geometry/poly_segment.h"

#include "geometry/bezier.h"

#include <optional>

namespace {

constexpr double kFullTurn = 2 * cfPi;
constexpr double kStraight = 1e-12;    // sine of the turn at a corner
constexpr double kFlatSpan = 1e-3;     // below it an outline has curves instead of arcs: their ends stay exact
constexpr double kAngleSlack = 1e-9;   // radians just below a full turn that count as a little below none
constexpr double kDoubleRoot = 1e-14;  // of the discriminant, against its first term

ccVector<2> cf_turned(ccVector<2> const& v, double angle)
{
  double const c = std::cos(angle), s = std::sin(angle);
  return ccVector<2>(c * v.x() - s * v.y(), s * v.x() + c * v.y());
}

// A point in the frame of an arc: x along the chord from its middle, y along the left normal.
struct cs_ChordFrame {
  explicit cs_ChordFrame(cs_PolySegment const& s)
      : half(s.chordLength() / 2), along((s.b - s.a) / (2 * half)), sine(std::sin(s.span.value() / 2)),
        cosine(std::cos(s.span.value() / 2)), radius(half / std::abs(sine)), centerY(half * cosine / sine)
  {
  }

  void place(cs_PolySegment const& s, ccVector<2> const& q)
  {
    ccVector<2> const d = q - (s.a + s.b) * 0.5;
    x = d.dot(along);
    y = cf_cross(along, d);
  }
  // The nearest point of the whole circle lies on the arc.
  bool facesArc() const { return cosine * (half - std::abs(x)) - y * sine >= 0; }
  double fromCenter() const { return std::hypot(x, y - centerY); }
  // To the circle, positive outside. The squares of radius and centre differ by that of half the chord.
  double signedDistance() const
  {
    return ((x - half) * (x + half) + y * (y - 2 * centerY)) / (fromCenter() + radius);
  }

  double half;
  ccVector<2> along;
  double sine, cosine;  // of half the span
  double radius, centerY;
  double x = 0, y = 0;
};

ccBezierCurve cf_flatCurve(cs_PolySegment const& s)
{
  double const w = std::cos(s.span.value() / 2);
  ccVector<2> const corner =
      (s.a + s.b) * 0.5 - cf_leftNormal(s.b - s.a) * (std::tan(s.span.value() / 2) / 2);
  double const middle = (1 + 2 * w) / 3;
  return ccBezierCurve({ccPoint(s.a), ccPoint((s.a + corner * (2 * w)) / (1 + 2 * w)),
                        ccPoint((corner * (2 * w) + s.b) / (1 + 2 * w)), ccPoint(s.b)},
                       {1, middle, middle, 1});
}

// One side of a corner, seen from the vertex.
struct cs_Side {
  cs_Side(cs_PolySegment const& s, bool isOutgoing)
      : segment(s), sense(isOutgoing ? 1 : -1), along(s.directionAt(isOutgoing ? 0 : 1)), normal(cf_leftNormal(along)),
        curvature(s.isLine() ? 0 : s.curvature())
  {
  }

  // The fraction of the segment between the vertex and the foot of p. False if the foot lies elsewhere.
  bool foot(ccVector<2> const& p, double& fraction) const
  {
    double f = 0;
    if (segment.isLine()) {
      f = sense * p.dot(along) / segment.chordLength();
    } else {
      double const turn = std::atan2(curvature * p.dot(along), 1 - curvature * p.dot(normal));
      double const span = segment.span.value();
      double swept = ccRadian::norm(ccRadian(span > 0 ? sense * turn : -sense * turn)).value();
      if (swept > kFullTurn - kAngleSlack)
        swept -= kFullTurn;
      f = swept / std::abs(span);
    }
    fraction = std::clamp(f, 0.0, 1.0);
    return f >= -kAngleSlack && f <= 1 + cf_trimTolerance;
  }

  cs_PolySegment const& segment;
  double sense;
  ccVector<2> along, normal;
  double curvature;
};

// How far p, seen from the vertex, is from the signed distance d to the circle or line of a side, in a form without division: a
// point at that distance of a curve through the vertex with left normal n and curvature k has n.p - d = k (p.p - d d) / 2.
double cf_excess(cs_Side const& s, double d, ccVector<2> const& p)
{
  return s.normal.dot(p) - d - s.curvature * (p.dot(p) - d * d) / 2;
}

// A step of Newton's method towards signed distance d from both sides.
void cf_improve(ccVector<2>& p, cs_Side const& in, cs_Side const& out, double d)
{
  ccVector<2> const g1 = in.normal - p * in.curvature, g2 = out.normal - p * out.curvature;
  double const f1 = cf_excess(in, d, p), f2 = cf_excess(out, d, p), det = cf_cross(g1, g2);
  if (!(std::abs(det) > 1e-6 * g1.len() * g2.len()))
    return;  // almost a double root: a step would leave it
  ccVector<2> const better = p + ccVector<2>(f2 * g1.y() - f1 * g2.y(), f1 * g2.x() - f2 * g1.x()) / det;
  if (cf_isFinite(better))
    p = better;
}

// The place at signed distance d from both sides, seen from the vertex. sine and cosine are those of the turn there.
//
// With Q = (p.p - d d) / 2 the place is d + k1 Q along the left normal of the incoming side and x along its direction, where
// sine x = (k1 cosine - k2) Q - d (1 - cosine) and x x = 2 Q (1 - d k1) - k1 k1 Q Q. So Q solves a quadratic equation; nothing
// is divided by the sine, which may be small. Of its two solutions the nearer one moves out of the vertex as d grows from 0; the
// other one comes from where the curves meet again, and trims more.
std::optional<ccVector<2>> cf_center(cs_Side const& in, cs_Side const& out, double sine, double cosine, double d)
{
  double const bent = cosine >= 0 ? sine * sine / (1 + cosine) : 1 - cosine;
  if (in.curvature == 0 && out.curvature == 0)
    return in.normal * d - in.along * (std::abs(d) * bent / std::abs(sine));
  double const k = in.curvature, difference = k * cosine - out.curvature, room = 1 - d * k;
  double const half = sine * sine * room + d * bent * difference;
  double const rest = sine * sine * room * room + 2 * room * d * bent * difference - k * k * d * d * bent * bent;
  // Q is never negative, since no point is farther from a curve than from one of its points. This also rules out a circle that
  // would enclose the circle of an arc.
  if (!(half > 0) || !(sine * sine * rest >= -kDoubleRoot * half * half))
    return std::nullopt;
  double const q = d * bent * (d * bent) / (half + std::abs(sine) * std::sqrt(std::max(rest, 0.0)));
  double const x = std::sqrt(std::max(q * (2 * room - k * k * q), 0.0));
  bool const isBehind = (difference * q < d * bent) == (sine > 0);
  ccVector<2> p = in.normal * (d + k * q) + in.along * (isBehind ? -x : x);
  if (!cf_isFinite(p))
    return std::nullopt;
  // Above all x has lost digits, where a root was taken of a difference.
  for (int step = 0; step < 2; ++step)
    cf_improve(p, in, out, d);
  return p;
}

}  // namespace

double cs_PolySegment::curvature() const { return 2 * std::sin(span.value() / 2) / chordLength(); }

ccVector<2> cs_PolySegment::pointAt(double t) const
{
  if (t <= 0 || isPoint())
    return a;
  if (t >= 1)
    return b;
  // From the nearer end, along the chord of the part in between.
  double const fromA = std::min(t, 1 - t);
  if (isLine())
    return t <= 0.5 ? a + (b - a) * t : b - (b - a) * (1 - t);
  double const half = span.value() / 2, scale = std::sin(half * fromA) / std::sin(half);
  double const turn = half * (1 - fromA);
  return t <= 0.5 ? a + cf_turned(b - a, -turn) * scale : b - cf_turned(b - a, turn) * scale;
}

ccVector<2> cs_PolySegment::directionAt(double t) const
{
  if (isPoint())
    return ccVector<2>();
  ccVector<2> const along = (b - a) / chordLength();
  return isLine() ? along : cf_turned(along, span.value() * (t - 0.5));
}

cs_PolySegment cs_PolySegment::part(double t0, double t1) const
{
  // Trims that overlap within their tolerance leave a tiny step back, without a curve.
  return {pointAt(t0), pointAt(t1), span * std::max(t1 - t0, 0.0)};
}

ccVector<2> cs_PolySegment::closestPoint(ccVector<2> const& q) const
{
  if (isLine() || isPoint())
    return cf_closestOnSegment(a, b, q);
  cs_ChordFrame frame(*this);
  frame.place(*this, q);
  if (!frame.facesArc())
    return q.distance(b) < q.distance(a) ? b : a;
  double const out = frame.fromCenter();
  if (out == 0)
    return a;
  ccVector<2> const normal = cf_leftNormal(frame.along);
  return q - (frame.along * frame.x + normal * (frame.y - frame.centerY)) * (frame.signedDistance() / out);
}

double cs_PolySegment::distance(ccVector<2> const& q) const
{
  if (isLine() || isPoint())
    return cf_segmentDistance(a, b, q);
  cs_ChordFrame frame(*this);
  frame.place(*this, q);
  return cf_distance(frame.facesArc() ? std::abs(frame.signedDistance()) : std::min(q.distance(a), q.distance(b)));
}

void cs_PolySegment::addTo(cs_Bounds& bounds, ccXform<2> const& x) const
{
  bounds.add(x.mapPoint(a));
  bounds.add(x.mapPoint(b));
  if (isLine() || isPoint())
    return;
  double const size = std::abs(span.value()), sign = span.value() > 0 ? 1 : -1;
  double const start = (b - a).angle().value() - span.value() / 2 - sign * cfPi / 2;
  for (int axis = 0; axis < 2; ++axis) {
    // The image is extreme where the radius lies along the row of the matrix, either way.
    double const along = ccVector<2>(x.matrix().element(axis, 0), x.matrix().element(axis, 1)).angle().value();
    for (int way = 0; way < 2; ++way) {
      double const swept = ccRadian::norm(ccRadian(sign * (along + way * cfPi - start))).value();
      if (swept < size)
        bounds.add(x.mapPoint(pointAt(swept / size)));
    }
  }
}

ccEllipseArc cs_PolySegment::arc() const
{
  if (isPoint() || isLine())
    return ccEllipseArc(ccEllipse(a, 0, 0, ccRadian(0)), ccRadian(0), span);
  cs_ChordFrame const frame(*this);
  ccVector<2> const center = (a + b) * 0.5 + cf_leftNormal(frame.along) * frame.centerY;
  ccRadian const start((b - a).angle().value() - span.value() / 2 - (span.value() > 0 ? cfPi / 2 : -cfPi / 2));
  return ccEllipseArc(ccEllipse(center, frame.radius, frame.radius, ccRadian(0)), ccRadian::signedNorm(start), span);
}

void cs_PolySegment::outline(ccOutlineSink& sink) const
{
  if (isLine() || isPoint())
    sink.lineTo(b);
  else if (std::abs(span.value()) < kFlatSpan)
    sink.curveTo(cf_flatCurve(*this));
  else
    sink.arcTo(ccEllipseArc2(arc()));
}

cs_PolyRounding cf_roundCorner(cs_PolySegment const& in, cs_PolySegment const& out, double radius)
{
  cs_PolyRounding result;
  if (!(radius > 0) || in.isPoint() || out.isPoint())
    return result;
  cs_Side const before(in, false), after(out, true);
  double const cross = cf_cross(before.along, after.along), dot = before.along.dot(after.along);
  if (!(std::abs(cross) > kStraight))
    return result;
  double const side = cross > 0 ? 1 : -1;
  std::optional<ccVector<2>> const center = cf_center(before, after, cross, dot, side * radius);
  if (!center || !before.foot(*center, result.trimIn) || !after.foot(*center, result.trimOut))
    return cs_PolyRounding();
  result.fits = true;
  result.center = in.b + *center;
  double const turn = std::atan2(cross, dot) + result.trimIn * in.span.value() + result.trimOut * out.span.value();
  double const swept = ccRadian::norm(ccRadian(side * turn)).value();
  result.arc = {in.pointAt(1 - result.trimIn), out.pointAt(result.trimOut), ccRadian(side * swept)};
  return result;
}
