#include "canvas/strokes.h"

#include <algorithm>

namespace {

// Differences of coordinates as large as a double can be stay finite if taken of eighths.
constexpr double eighth = 0.125;

// The part of a side inside the rectangle, as fractions of the side.
bool cutSide(ccVector<2> const& a, ccVector<2> const& b, ccVector<2> const& low, ccVector<2> const& high, double& t0,
             double& t1)
{
  t0 = 0, t1 = 1;
  for (int axis = 0; axis < 2; ++axis) {
    if (a[axis] == b[axis]) {
      if (a[axis] < low[axis] || a[axis] > high[axis])
        return false;
      continue;
    }
    double const d = b[axis] * eighth - a[axis] * eighth;
    double const u = (low[axis] * eighth - a[axis] * eighth) / d, v = (high[axis] * eighth - a[axis] * eighth) / d;
    t0 = std::max(t0, std::min(u, v));
    t1 = std::min(t1, std::max(u, v));
  }
  return t0 <= t1;
}

ccVector<2> between(ccVector<2> const& a, ccVector<2> const& b, double t) { return a * (1 - t) + b * t; }

ccVector<2> inside(ccVector<2> const& p, ccVector<2> const& low, ccVector<2> const& high)
{
  return ccVector<2>(std::clamp(p.x(), low.x(), high.x()), std::clamp(p.y(), low.y(), high.y()));
}

}  // namespace

cs_Reach cf_reachOf(std::span<ccVector<2> const> points)
{
  cs_Reach reach;
  for (ccVector<2> const& p : points)
    reach.add(p);
  return reach;
}

void cc_Strokes::clear()
{
  points_.clear();
  heads_.clear();
}

void cc_Strokes::begin() { heads_.push_back({points_.size(), false}); }

void cc_Strokes::addStroke(std::initializer_list<ccVector<2>> points, bool isClosed)
{
  begin();
  points_.insert(points_.end(), points.begin(), points.end());
  heads_.back().closed = isClosed;
}

std::span<ccVector<2> const> cc_Strokes::operator[](std::size_t i) const
{
  std::size_t const first = heads_[i].first, end = i + 1 < heads_.size() ? heads_[i + 1].first : points_.size();
  return std::span<ccVector<2> const>(points_).subspan(first, end - first);
}

bool cf_cutSegment(ccVector<2>& a, ccVector<2>& b, double reach)
{
  ccVector<2> const high(reach, reach), low = -high;
  double t0 = 0, t1 = 1;
  if (!cutSide(a, b, low, high, t0, t1))
    return false;
  // An end inside stays to the last bit; a cut one is brought to the edge that rounding may have missed.
  ccVector<2> const first = t0 > 0 ? inside(between(a, b, t0), low, high) : a;
  b = t1 < 1 ? inside(between(a, b, t1), low, high) : b;
  a = first;
  return true;
}

void cf_cutChain(std::span<ccVector<2> const> points, bool closed, ccVector<2> const& low, ccVector<2> const& high,
                 cc_Strokes& parts)
{
  if (points.empty())
    return;
  std::size_t const sides = closed ? points.size() : points.size() - 1;
  bool joined = false;  // the last part ends where the next side starts
  for (std::size_t i = 0; i < sides; ++i) {
    ccVector<2> const& a = points[i];
    ccVector<2> const& b = points[i + 1 < points.size() ? i + 1 : 0];
    double t0 = 0, t1 = 1;
    if (!cutSide(a, b, low, high, t0, t1)) {
      joined = false;
      continue;
    }
    if (!joined || t0 > 0) {
      parts.begin();
      parts.add(t0 > 0 ? inside(between(a, b, t0), low, high) : a);
    }
    parts.add(t1 < 1 ? inside(between(a, b, t1), low, high) : b);
    joined = t1 >= 1;
  }
}

void cf_cutFigure(std::vector<ccVector<2>>& points, ccVector<2> const& low, ccVector<2> const& high,
                  std::vector<ccVector<2>>& scratch)
{
  for (int edge = 0; edge < 4 && !points.empty(); ++edge) {
    int const axis = edge / 2;
    bool const upper = edge % 2 == 1;
    double const limit = upper ? high[axis] : low[axis];
    auto const isInside = [&](ccVector<2> const& p) { return upper ? p[axis] <= limit : p[axis] >= limit; };
    if (std::all_of(points.begin(), points.end(), isInside))
      continue;
    scratch.clear();
    for (std::size_t i = 0; i < points.size(); ++i) {
      ccVector<2> const& a = points[i];
      ccVector<2> const& b = points[i + 1 < points.size() ? i + 1 : 0];
      if (isInside(a))
        scratch.push_back(a);
      if (isInside(a) != isInside(b)) {
        double const t = (limit * eighth - a[axis] * eighth) / (b[axis] * eighth - a[axis] * eighth);
        ccVector<2> cut = between(a, b, t);
        cut[axis] = limit;
        scratch.push_back(cut);
      }
    }
    points.swap(scratch);
  }
}
