#include "geometry/poly_segment.h"

#include "geometry/bezier.h"

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

// Offsets from the vertex at signed distance d from both sides. A point p lies at signed distance d from the circle (or line)
// through the vertex with tangent t, left normal n and curvature k where k (p.p - d d) / 2 = n.p - d. With Q = (p.p - d d) / 2
// both conditions are linear in p, so p = A + B Q, and Q solves a quadratic equation.
class cc_CenterFinder {
public:
  cc_CenterFinder(cs_Side const& in, cs_Side const& out, double cross, double d, double trim)
      : in_(in), out_(out), d_(d)
  {
    ccVector<2> const lines = in.normal * d - in.along * trim;  // the centre if both were lines
    if (in.curvature == 0 && out.curvature == 0) {
      centers_[number_++] = lines;
      return;
    }
    ccVector<2> const bend = (out.along * in.curvature - in.along * out.curvature) / cross;
    double const a = bend.dot(bend), b = lines.dot(bend) - 1, c = trim * trim;
    double const discriminant = b * b - a * c;
    // Q is never negative: no point is farther from a curve than from one of its points.
    if (!(b < 0) || !(discriminant >= -kDoubleRoot * b * b))
      return;
    double const q = -b + std::sqrt(std::max(discriminant, 0.0));
    add_(lines + bend * (c / q));
    if (a > 0)
      add_(lines + bend * (q / a));
  }

  int number() const { return number_; }
  ccVector<2> const& center(int i) const { return centers_[i]; }

private:
  void add_(ccVector<2> const& p)
  {
    if (!cf_isFinite(p))
      return;
    centers_[number_] = p;
    // Where the sides almost coincide A and B Q are large and cancel each other; two steps of Newton's method restore the
    // lost digits.
    for (int step = 0; step < 2; ++step)
      improve_(centers_[number_]);
    ++number_;
  }

  double excess_(cs_Side const& s, ccVector<2> const& p) const
  {
    return s.normal.dot(p) - d_ - s.curvature * (p.dot(p) - d_ * d_) / 2;
  }

  void improve_(ccVector<2>& p) const
  {
    ccVector<2> const g1 = in_.normal - p * in_.curvature, g2 = out_.normal - p * out_.curvature;
    double const f1 = excess_(in_, p), f2 = excess_(out_, p), det = cf_cross(g1, g2);
    if (!(std::abs(det) > 1e-6 * g1.len() * g2.len()))
      return;  // almost a double root: a step would leave it
    ccVector<2> const better = p + ccVector<2>(f2 * g1.y() - f1 * g2.y(), f1 * g2.x() - f2 * g1.x()) / det;
    if (cf_isFinite(better))
      p = better;
  }

  cs_Side const& in_;
  cs_Side const& out_;
  double d_;
  ccVector<2> centers_[2];
  int number_ = 0;
};

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
  return frame.facesArc() ? std::abs(frame.signedDistance()) : std::min(q.distance(a), q.distance(b));
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
  cs_PolyRounding best;
  if (!(radius > 0) || in.isPoint() || out.isPoint())
    return best;
  cs_Side const before(in, false), after(out, true);
  double const cross = cf_cross(before.along, after.along), dot = before.along.dot(after.along);
  if (!(std::abs(cross) > kStraight))
    return best;
  double const side = cross > 0 ? 1 : -1, d = side * radius;
  if (!(before.curvature * d < 1) || !(after.curvature * d < 1))
    return best;  // larger than the circle inside which it would lie
  double const trim = dot >= 0 ? radius * std::abs(cross) / (1 + dot) : radius * (1 - dot) / std::abs(cross);
  cc_CenterFinder const finder(before, after, cross, d, trim);
  for (int i = 0; i < finder.number(); ++i) {
    double trimIn = 0, trimOut = 0;
    if (!before.foot(finder.center(i), trimIn) || !after.foot(finder.center(i), trimOut))
      continue;
    if (best.fits && trimIn + trimOut >= best.trimIn + best.trimOut)
      continue;
    best.fits = true;
    best.center = in.b + finder.center(i);
    best.trimIn = trimIn;
    best.trimOut = trimOut;
  }
  if (!best.fits)
    return best;
  double const turn = std::atan2(cross, dot) + best.trimIn * in.span.value() + best.trimOut * out.span.value();
  double swept = ccRadian::norm(ccRadian(side * turn)).value();
  if (swept > kFullTurn - kAngleSlack)
    swept = 0;
  best.arc = {in.pointAt(1 - best.trimIn), out.pointAt(best.trimOut), ccRadian(side * swept)};
  return best;
}
