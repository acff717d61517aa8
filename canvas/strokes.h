// Chains of points on their way to a scope: lists of them that keep their memory, how far they reach, and the cut of what lies
// too far away to be counted in pels.
#pragma once

#include "foundation/vector.h"

#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <limits>
#include <span>
#include <vector>

// Top pels within which a painter takes whole pels as they are, and those that a child scope's offset makes of them. The cut
// is so far away that pels in sight stay as they were.
inline constexpr double cf_pelReach = 0x3F000000;

inline bool cf_isFinitePoint(ccVector<2> const& p)
{
  constexpr double most = std::numeric_limits<double>::max();
  return std::abs(p.x()) <= most && std::abs(p.y()) <= most;
}

// The rectangle around points. One that is not finite spoils it.
struct cs_Reach {
  ccVector<2> low{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
  ccVector<2> high{-std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
  double spoilt = 0;  // 0, or not a number

  void add(ccVector<2> const& p)
  {
    low.x() = p.x() < low.x() ? p.x() : low.x();
    low.y() = p.y() < low.y() ? p.y() : low.y();
    high.x() = p.x() > high.x() ? p.x() : high.x();
    high.y() = p.y() > high.y() ? p.y() : high.y();
    spoilt += p.x() * 0 + p.y() * 0;
  }
  bool isFinite() const { return spoilt == 0; }
  bool isWithin(double reach) const
  {
    return low.x() >= -reach && low.y() >= -reach && high.x() <= reach && high.y() <= reach;
  }
};

cs_Reach cf_reachOf(std::span<ccVector<2> const>);

// Strokes end to end in one list of points. clear() keeps the memory.
class cc_Strokes {
public:
  void clear();
  void begin();                        // a new stroke
  void add(ccVector<2> const& p) { points_.push_back(p); }
  void close() { heads_.back().closed = true; }  // the stroke under way
  void addStroke(std::initializer_list<ccVector<2>>, bool closed);

  std::size_t size() const { return heads_.size(); }
  bool closed(std::size_t i) const { return heads_[i].closed; }
  std::span<ccVector<2> const> operator[](std::size_t i) const;

private:
  struct cs_Head {
    std::size_t first;
    bool closed;
  };
  std::vector<ccVector<2>> points_;
  std::vector<cs_Head> heads_;
};

// The part of a segment between the distances -reach and reach from 0 in both coordinates. False if nothing is left.
bool cf_cutSegment(ccVector<2>& a, ccVector<2>& b, double reach);
// What of a stroke lies inside a rectangle, as open strokes that are added to parts. Finite points only.
void cf_cutChain(std::span<ccVector<2> const>, bool closed, ccVector<2> const& low, ccVector<2> const& high, cc_Strokes& parts);
// The same of a filled figure, in place; new sides run along the rectangle's edges. scratch keeps memory only.
void cf_cutFigure(std::vector<ccVector<2>>& points, ccVector<2> const& low, ccVector<2> const& high,
                  std::vector<ccVector<2>>& scratch);
