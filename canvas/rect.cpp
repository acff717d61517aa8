#include "canvas/rect.h"

#include <algorithm>
#include <cstdint>

namespace {

long clampEdge(std::int64_t v)
{
  return static_cast<long>(std::clamp<std::int64_t>(v, -ccUIRect::kFar, ccUIRect::kFar));
}

// A side first cut to what a sum in 64 bits can bear.
long addSide(long edge, long side)
{
  std::int64_t const limit = std::int64_t(4) * ccUIRect::kFar;
  return clampEdge(edge + std::clamp<std::int64_t>(side, -limit, limit));
}

bool isFar(long edge)
{
  return edge == ccUIRect::kFar || edge == -ccUIRect::kFar;
}

long shiftEdge(long edge, long by, int sign)
{
  if (isFar(edge))
    return edge;
  std::int64_t const limit = std::int64_t(4) * ccUIRect::kFar;
  return clampEdge(edge + sign * std::clamp<std::int64_t>(by, -limit, limit));
}

}  // namespace

constinit ccUIRect const ccUIRect::null;
constinit ccUIRect const ccUIRect::inf(cs_Edges{-kFar, -kFar, kFar, kFar});
constinit ccUIRect const ccUIRect::firstQuad(cs_Edges{0, 0, kFar, kFar});

ccUIRect::ccUIRect(long x, long y, long w, long h) : l_(clampEdge(x)), t_(clampEdge(y))
{
  // From the edge as given: a rectangle that begins beyond the limit ends where it says.
  std::int64_t const limit = std::int64_t(4) * kFar;
  r_ = clampEdge(std::clamp<std::int64_t>(x, -limit, limit) + std::clamp<std::int64_t>(w, -limit, limit));
  b_ = clampEdge(std::clamp<std::int64_t>(y, -limit, limit) + std::clamp<std::int64_t>(h, -limit, limit));
}

ccUIRect ccUIRect::fromEdges(long left, long top, long right, long bottom)
{
  return ccUIRect(cs_Edges{clampEdge(left), clampEdge(top), clampEdge(right), clampEdge(bottom)});
}

void ccUIRect::ul(ccPair<long> const& p)
{
  long const w = width();
  long const h = height();
  l_ = clampEdge(p.x());
  t_ = clampEdge(p.y());
  // An endless side stays endless.
  r_ = r_ == kFar ? kFar : addSide(l_, w);
  b_ = b_ == kFar ? kFar : addSide(t_, h);
}

void ccUIRect::sz(ccPair<long> const& s)
{
  r_ = addSide(l_, s.x());
  b_ = addSide(t_, s.y());
}

bool ccUIRect::nullIntersection(ccUIRect const& o) const
{
  return std::max(l_, o.l_) >= std::min(r_, o.r_) || std::max(t_, o.t_) >= std::min(b_, o.b_);
}

ccUIRect& ccUIRect::operator&=(ccUIRect const& o)
{
  if (nullIntersection(o))
    return *this = ccUIRect();
  return *this = ccUIRect(cs_Edges{std::max(l_, o.l_), std::max(t_, o.t_), std::min(r_, o.r_), std::min(b_, o.b_)});
}

ccUIRect& ccUIRect::operator|=(ccUIRect const& o)
{
  if (o.isNull())
    return *this;
  if (isNull())
    return *this = o;
  return *this = ccUIRect(cs_Edges{std::min(l_, o.l_), std::min(t_, o.t_), std::max(r_, o.r_), std::max(b_, o.b_)});
}

ccUIRect& ccUIRect::operator+=(ccPair<long> const& d)
{
  return *this = ccUIRect(cs_Edges{shiftEdge(l_, d.x(), 1), shiftEdge(t_, d.y(), 1), shiftEdge(r_, d.x(), 1),
                                   shiftEdge(b_, d.y(), 1)});
}

ccUIRect& ccUIRect::operator-=(ccPair<long> const& d)
{
  return *this = ccUIRect(cs_Edges{shiftEdge(l_, d.x(), -1), shiftEdge(t_, d.y(), -1), shiftEdge(r_, d.x(), -1),
                                   shiftEdge(b_, d.y(), -1)});
}
