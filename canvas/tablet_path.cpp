#include "canvas/tablet_path.h"

#include "geometry/bezier.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double flatness = 0.25;       // pels between a curve and its chords
constexpr double mostChords = 1 << 18;  // of one arc

bool isFinitePoint(ccVector<2> const& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); }

bool within(ccVector<2> const& p, ccVector<2> const& low, ccVector<2> const& high)
{
  return p.x() >= low.x() && p.x() <= high.x() && p.y() >= low.y() && p.y() <= high.y();
}

// The part of a side inside the rectangle, as fractions of the side.
bool clipSide(ccVector<2> const& a, ccVector<2> const& b, ccVector<2> const& low, ccVector<2> const& high, double& t0,
              double& t1)
{
  t0 = 0, t1 = 1;
  for (int axis = 0; axis < 2; ++axis) {
    double const d = b[axis] - a[axis];
    if (d == 0) {
      if (a[axis] < low[axis] || a[axis] > high[axis])
        return false;
      continue;
    }
    double const u = (low[axis] - a[axis]) / d, v = (high[axis] - a[axis]) / d;
    t0 = std::max(t0, std::min(u, v));
    t1 = std::min(t1, std::max(u, v));
  }
  return t0 <= t1;
}

}  // namespace

cc_TabletPath::cc_TabletPath(ccXform<2> const& map)
    : map_(map), scale_(std::hypot(map.matrix().xScale(), map.matrix().yScale()))
{
  finite_ = std::isfinite(scale_) && isFinitePoint(map.trans());
}

void cc_TabletPath::add_(ccVector<2> const& p)
{
  ccVector<2> const at = map_.mapPoint(p);
  finite_ = finite_ && isFinitePoint(at);
  if (strokes_.empty())
    strokes_.emplace_back();
  strokes_.back().points.push_back(at);
}

void cc_TabletPath::point(ccVector<2> const& p) { singles_.push_back(p); }

void cc_TabletPath::moveTo(ccVector<2> const& p)
{
  strokes_.emplace_back();
  add_(p);
}

void cc_TabletPath::lineTo(ccVector<2> const& p) { add_(p); }

void cc_TabletPath::arcTo(ccEllipseArc2 const& arc)
{
  double const radius = std::max(arc.conic().rx, arc.conic().ry) * scale_;
  if (!finite_ || !std::isfinite(radius)) {
    finite_ = false;
    return;
  }
  double const step = radius > flatness ? 2 * std::acos(1 - flatness / radius) : cfPi / 2;
  double const chords = std::ceil(std::abs(arc.span().value()) / std::max(step, 1e-12));
  long const count = static_cast<long>(std::clamp(chords, 1.0, mostChords));
  for (long i = 1; i <= count; ++i)
    add_(arc.pointAt(static_cast<double>(i) / static_cast<double>(count)));
}

void cc_TabletPath::curveTo(ccBezierCurve const& curve)
{
  if (finite_ && scale_ > 0)
    curve.flatten(flatness / scale_, *this);
  else
    add_(curve.endPoint());
}

void cc_TabletPath::close()
{
  if (!strokes_.empty())
    strokes_.back().closed = true;
}

std::vector<cs_Stroke> cf_clipChain(std::vector<ccVector<2>> const& points, bool closed,
                                                ccVector<2> const& low, ccVector<2> const& high)
{
  std::vector<cs_Stroke> parts;
  if (points.empty())
    return parts;
  if (std::all_of(points.begin(), points.end(), [&](ccVector<2> const& p) { return within(p, low, high); })) {
    parts.push_back({points, closed});
    return parts;
  }
  std::size_t const sides = closed ? points.size() : points.size() - 1;
  bool joined = false;  // the last part ends where the next side starts
  for (std::size_t i = 0; i < sides; ++i) {
    ccVector<2> const& a = points[i];
    ccVector<2> const& b = points[(i + 1) % points.size()];
    double t0 = 0, t1 = 1;
    if (!clipSide(a, b, low, high, t0, t1)) {
      joined = false;
      continue;
    }
    if (!joined || t0 > 0) {
      parts.emplace_back();
      parts.back().points.push_back(t0 > 0 ? a + (b - a) * t0 : a);
    }
    parts.back().points.push_back(t1 < 1 ? a + (b - a) * t1 : b);
    joined = t1 >= 1;
  }
  return parts;
}

std::vector<ccVector<2>> cf_clipFigure(std::vector<ccVector<2>> points, ccVector<2> const& low, ccVector<2> const& high)
{
  std::vector<ccVector<2>> out;
  for (int edge = 0; edge < 4 && !points.empty(); ++edge) {
    int const axis = edge / 2;
    bool const upper = edge % 2 == 1;
    double const limit = upper ? high[axis] : low[axis];
    auto const inside = [&](ccVector<2> const& p) { return upper ? p[axis] <= limit : p[axis] >= limit; };
    if (std::all_of(points.begin(), points.end(), inside))
      continue;
    out.clear();
    for (std::size_t i = 0; i < points.size(); ++i) {
      ccVector<2> const& a = points[i];
      ccVector<2> const& b = points[(i + 1) % points.size()];
      if (inside(a))
        out.push_back(a);
      if (inside(a) != inside(b)) {
        ccVector<2> cut = a + (b - a) * ((limit - a[axis]) / (b[axis] - a[axis]));
        cut[axis] = limit;
        out.push_back(cut);
      }
    }
    points.swap(out);
  }
  return points;
}
