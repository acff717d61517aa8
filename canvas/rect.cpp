#include "canvas/rect.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace {

long clampEdge(std::int64_t v)
{
  return static_cast<long>(std::clamp<std::int64_t>(v, -ccUIRect::kFar, ccUIRect::kFar));
}

// The clamped sum of an edge and a length, whatever they are.
long addEdge(std::int64_t edge, std::int64_t by)
{
  if (by > 0 ? edge > std::numeric_limits<std::int64_t>::max() - by : edge < std::numeric_limits<std::int64_t>::min() - by)
    return by > 0 ? ccUIRect::kFar : -ccUIRect::kFar;
  return clampEdge(edge + by);
}

bool isFar(long edge)
{
  return edge == ccUIRect::kFar || edge == -ccUIRect::kFar;
}

long forward(long edge, long by)
{
  return isFar(edge) ? edge : addEdge(edge, by);
}

long backward(long edge, long by)
{
  // An edge is small, so that only the negation of the smallest number needs care.
  std::int64_t const d = by;
  return isFar(edge) ? edge : addEdge(edge, d == std::numeric_limits<std::int64_t>::min() ? -(d + 1) : -d);
}

}  // namespace

constinit ccUIRect const ccUIRect::null;
constinit ccUIRect const ccUIRect::inf(cs_Edges{-kFar, -kFar, kFar, kFar});
constinit ccUIRect const ccUIRect::firstQuad(cs_Edges{0, 0, kFar, kFar});

// The far edges are summed from the corner as given: a rectangle that begins beyond the limit ends where it says.
ccUIRect::ccUIRect(long x, long y, long w, long h)
    : l_(clampEdge(x)), t_(clampEdge(y)), r_(addEdge(x, w)), b_(addEdge(y, h))
{
}

void ccUIRect::ul(ccPair<long> const& p)
{
  long const w = width();
  long const h = height();
  l_ = clampEdge(p.x());
  t_ = clampEdge(p.y());
  // An endless side stays endless.
  r_ = r_ == kFar ? kFar : addEdge(l_, w);
  b_ = b_ == kFar ? kFar : addEdge(t_, h);
}

void ccUIRect::sz(ccPair<long> const& s)
{
  r_ = addEdge(l_, s.x());
  b_ = addEdge(t_, s.y());
}

ccUIRect ccUIRect::shifted_(ccPair<long> const& d) const
{
  return ccUIRect(cs_Edges{forward(l_, d.x()), forward(t_, d.y()), forward(r_, d.x()), forward(b_, d.y())});
}

ccUIRect ccUIRect::shiftedBack_(ccPair<long> const& d) const
{
  return ccUIRect(cs_Edges{backward(l_, d.x()), backward(t_, d.y()), backward(r_, d.x()),
                                   backward(b_, d.y())});
}
