// An integer rectangle in pels: left, top, width, height; right() and bottom() are exclusive. Null when a side is 0 or less.
// An edge at the far limit is endless: it stays there under a shift.
#pragma once

#include "foundation/pair.h"

#include <algorithm>

class ccUIRect {
public:
  static constexpr long kFar = 0x3FFFFFFF;
  static ccUIRect const null;       // nothing
  static ccUIRect const inf;        // everything
  static ccUIRect const firstQuad;  // everything with x, y >= 0; a frame with it follows its parent's extent

  constexpr ccUIRect() = default;  // null
  ccUIRect(long x, long y, long w, long h);
  ccUIRect(ccPair<long> const& ul, ccPair<long> const& sz) : ccUIRect(ul.x(), ul.y(), sz.x(), sz.y()) {}
  static ccUIRect fromEdges(long left, long top, long right, long bottom)
  {
    return ccUIRect(cs_Edges{std::clamp(left, -kFar, kFar), std::clamp(top, -kFar, kFar), std::clamp(right, -kFar, kFar),
                             std::clamp(bottom, -kFar, kFar)});
  }

  constexpr long left() const { return l_; }
  constexpr long top() const { return t_; }
  constexpr long right() const { return r_; }
  constexpr long bottom() const { return b_; }
  constexpr long width() const { return r_ - l_; }
  constexpr long height() const { return b_ - t_; }
  constexpr ccPair<long> ul() const { return {l_, t_}; }
  constexpr ccPair<long> ur() const { return {r_, t_}; }
  constexpr ccPair<long> ll() const { return {l_, b_}; }
  constexpr ccPair<long> lr() const { return {r_, b_}; }
  constexpr ccPair<long> sz() const { return {width(), height()}; }
  void ul(ccPair<long> const&);  // moves, keeps the size
  void sz(ccPair<long> const&);  // resizes, keeps the upper left

  constexpr bool isNull() const { return r_ <= l_ || b_ <= t_; }
  constexpr bool within(ccPair<long> const& p) const
  {
    return p.x() >= l_ && p.x() < r_ && p.y() >= t_ && p.y() < b_;
  }
  bool contains(ccUIRect const& r) const { return r.isNull() || (l_ <= r.l_ && t_ <= r.t_ && r_ >= r.r_ && b_ >= r.b_); }
  bool nullIntersection(ccUIRect const& o) const
  {
    return std::max(l_, o.l_) >= std::min(r_, o.r_) || std::max(t_, o.t_) >= std::min(b_, o.b_);
  }

  ccUIRect& operator&=(ccUIRect const& o)  // disjoint: exactly (0, 0, 0, 0)
  {
    return *this = nullIntersection(o) ? ccUIRect()
                                       : ccUIRect(cs_Edges{std::max(l_, o.l_), std::max(t_, o.t_), std::min(r_, o.r_),
                                                           std::min(b_, o.b_)});
  }
  ccUIRect& operator|=(ccUIRect const& o)  // the bounding rectangle; null is its identity
  {
    if (o.isNull())
      return *this;
    return *this = isNull() ? o
                            : ccUIRect(cs_Edges{std::min(l_, o.l_), std::min(t_, o.t_), std::max(r_, o.r_),
                                                std::max(b_, o.b_)});
  }
  ccUIRect& operator+=(ccPair<long> const& d) { return d == ccPair<long>() ? *this : *this = shifted_(d); }
  ccUIRect& operator-=(ccPair<long> const& d) { return d == ccPair<long>() ? *this : *this = shiftedBack_(d); }
  friend ccUIRect operator&(ccUIRect a, ccUIRect const& b) { return a &= b; }
  friend ccUIRect operator|(ccUIRect a, ccUIRect const& b) { return a |= b; }
  friend ccUIRect operator+(ccUIRect a, ccPair<long> const& d) { return a += d; }
  friend ccUIRect operator-(ccUIRect a, ccPair<long> const& d) { return a -= d; }
  friend bool operator==(ccUIRect const& a, ccUIRect const& b)  // two nulls are equal
  {
    return (a.isNull() && b.isNull()) || (a.l_ == b.l_ && a.t_ == b.t_ && a.r_ == b.r_ && a.b_ == b.b_);
  }
  friend bool operator!=(ccUIRect const& a, ccUIRect const& b) { return !(a == b); }

private:
  struct cs_Edges {
    long l, t, r, b;
  };
  ccUIRect shifted_(ccPair<long> const&) const;
  ccUIRect shiftedBack_(ccPair<long> const&) const;
  explicit constexpr ccUIRect(cs_Edges const& e) : l_(e.l), t_(e.t), r_(e.r), b_(e.b) {}

  long l_ = 0, t_ = 0, r_ = 0, b_ = 0;  // edges, each within the far limits
};
