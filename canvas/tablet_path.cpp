#include "canvas/tablet_path.h"

#include "geometry/bezier.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double flatness = 0.25;          // pels between a curve and its chords
constexpr std::int64_t plainChords = 512;  // an arc of no more is given whole
constexpr double mostChords = 0x1p50;
constexpr double farthest = 1e300;         // beyond it sums overflow
constexpr int mostHalvings = 40;           // of a Bezier curve

// The longest radius of the image of the unit circle under the matrix with columns u and v.
double longest(ccVector<2> const& u, ccVector<2> const& v)
{
  return (std::hypot(u.x() + v.y(), u.y() - v.x()) + std::hypot(u.x() - v.y(), u.y() + v.x())) / 2;
}

double distanceToChord(ccVector<2> const& a, ccVector<2> const& b, ccVector<2> const& p)
{
  ccVector<2> const d = b - a, q = p - a;
  double const length = d.dot(d);
  double const t = length > 0 ? std::clamp(q.dot(d) / length, 0.0, 1.0) : 0.0;
  return (q - d * t).len();
}

}  // namespace

void cc_TabletPath::start(ccXform<2> const& map, ccVector<2> const& viewLow, ccVector<2> const& viewHigh, bool pelByPel)
{
  map_ = map;
  low_ = viewLow;
  high_ = viewHigh;
  pelByPel_ = pelByPel;
  finite_ = cf_isFinitePoint(map.trans());
  strokes_.clear();
  singles_.clear();
}

void cc_TabletPath::add_(ccVector<2> const& pel)
{
  finite_ = finite_ && cf_isFinitePoint(pel);
  if (strokes_.size() == 0)
    strokes_.begin();
  strokes_.add(pel);
}

void cc_TabletPath::point(ccVector<2> const& p) { singles_.push_back(p); }

void cc_TabletPath::moveTo(ccVector<2> const& p)
{
  strokes_.begin();
  add_(map_.mapPoint(p));
}

void cc_TabletPath::lineTo(ccVector<2> const& p) { add_(map_.mapPoint(p)); }

void cc_TabletPath::close()
{
  if (strokes_.size() > 0)
    strokes_.close();
}

// Whether all that lies between the points lies to one side of the view.
bool cc_TabletPath::isOutside_(ccVector<2> const* points, int count) const
{
  for (int axis = 0; axis < 2; ++axis) {
    bool before = true, behind = true;
    for (int i = 0; i < count; ++i) {
      before = before && points[i][axis] < low_[axis];
      behind = behind && points[i][axis] > high_[axis];
    }
    if (before || behind)
      return true;
  }
  return false;
}

// --- Arcs

void cc_TabletPath::arcTo(ccEllipseArc2 const& source)
{
  cs_Conic const& e = source.conic();
  cs_Arc arc{map_.mapPoint(e.c), map_.mapVector(e.xAxis()), map_.mapVector(e.yAxis()), source.start().value(),
             source.span().value(), 1};
  double const radius = longest(arc.u, arc.v);
  if (!(radius <= farthest) || !(std::abs(arc.center.x()) <= farthest) || !(std::abs(arc.center.y()) <= farthest)) {
    finite_ = false;
    return;
  }
  // A chord over the angle s leaves the curve by radius (1 - cos s/2).
  double const step = radius > flatness ? 4 * std::asin(std::sqrt(flatness / (2 * radius))) : cfPi / 2;
  arc.count = static_cast<std::int64_t>(std::clamp(std::ceil(std::abs(arc.span) / step), 1.0, mostChords));
  if (arc.count > plainChords)
    return addArc_(arc, 0, arc.count);
  for (std::int64_t i = 1; i <= arc.count; ++i)
    add_(arc.at(arc.angle(i)));
}

// The chords from one place to another, those out of sight in one.
void cc_TabletPath::addArc_(cs_Arc const& arc, std::int64_t from, std::int64_t to)
{
  double const a = arc.angle(from), b = arc.angle(to), half = std::abs(b - a) / 2;
  if (half < cfPi / 4) {
    // An arc lies within the triangle of its ends and the crossing of the tangents there.
    ccVector<2> const ends[] = {arc.at(a), arc.at(b)};
    double const out = 1 / std::cos(half), middle = (a + b) / 2;
    ccVector<2> const hull[] = {ends[0], ends[1],
                                arc.center + arc.u * (out * std::cos(middle)) + arc.v * (out * std::sin(middle))};
    if (isOutside_(hull, 3))
      return add_(ends[1]);
    if (to - from == 1) {
      if (pelByPel_)
        addPels_(arc, from);
      if (!pelByPel_ || to == arc.count || isOutside_(ends + 1, 1))
        add_(ends[1]);
      return;
    }
  }
  std::int64_t const middle = from + (to - from) / 2;
  addArc_(arc, from, middle);
  addArc_(arc, middle, to);
}

// Where one chord's arc crosses the middles of pels, along the axis on which it runs faster, in the view.
void cc_TabletPath::addPels_(cs_Arc const& arc, std::int64_t chord)
{
  double const t0 = arc.angle(chord), t1 = arc.angle(chord + 1);
  ccVector<2> const a = arc.at(t0), b = arc.at(t1), d = b - a;
  int const axis = std::abs(d.x()) >= std::abs(d.y()) ? 0 : 1;
  double const low = std::max(std::min(a[axis], b[axis]), low_[axis]);
  double const high = std::min(std::max(a[axis], b[axis]), high_[axis]);
  double const first = std::ceil(low), last = std::floor(high);
  if (!(first <= last) || !(last - first < 1e6))
    return;
  bool const forward = d[axis] > 0;
  for (double k = forward ? first : last; forward ? k <= last : k >= first; k += forward ? 1 : -1) {
    double t = t0 + (t1 - t0) * ((k - a[axis]) / d[axis]);
    for (int i = 0; i < 2; ++i) {
      double const slope = arc.v[axis] * std::cos(t) - arc.u[axis] * std::sin(t);
      t = std::clamp(slope != 0 ? t - (arc.at(t)[axis] - k) / slope : t, std::min(t0, t1), std::max(t0, t1));
    }
    ccVector<2> p = arc.at(t);
    p[axis] = k;
    add_(p);
  }
}

// --- Bezier curves

void cc_TabletPath::curveTo(ccBezierCurve const& curve)
{
  ccVector<2> const origin = map_.mapPoint(curve.controlPoint(0));
  double most = 0;
  for (long i = 0; i < 4; ++i)
    most = std::max(most, curve.weight(i));
  cs_Weighted points[4];
  for (long i = 0; i < 4; ++i) {
    ccVector<2> const p = map_.mapPoint(curve.controlPoint(i));
    if (!(std::abs(p.x()) <= farthest) || !(std::abs(p.y()) <= farthest)) {
      finite_ = false;
      return;
    }
    double const weight = curve.weight(i) / most;
    points[i] = {(p - origin) * weight, weight};
  }
  addCurve_(points, origin, mostHalvings);
}

void cc_TabletPath::addCurve_(cs_Weighted const (&points)[4], ccVector<2> const& origin, int halvings)
{
  ccVector<2> hull[4];
  for (int i = 0; i < 4; ++i)
    hull[i] = origin + points[i].at / points[i].weight;
  // Written so that what is not a number counts as flat.
  bool const bent = distanceToChord(hull[0], hull[3], hull[1]) > flatness || distanceToChord(hull[0], hull[3], hull[2]) > flatness;
  if (!bent || halvings == 0 || isOutside_(hull, 4))
    return add_(hull[3]);
  auto const middle = [](cs_Weighted const& a, cs_Weighted const& b) {
    return cs_Weighted{(a.at + b.at) * 0.5, (a.weight + b.weight) * 0.5};
  };
  cs_Weighted const ab = middle(points[0], points[1]), bc = middle(points[1], points[2]), cd = middle(points[2], points[3]);
  cs_Weighted const abc = middle(ab, bc), bcd = middle(bc, cd), all = middle(abc, bcd);
  addCurve_({points[0], ab, abc, all}, origin, halvings - 1);
  addCurve_({all, bcd, cd, points[3]}, origin, halvings - 1);
}
