// An integer rectangle in pels, half open. Corners and sizes may be any; the lower right stops at the ends of a long.
#pragma once

#include "foundation/pair.h"

class ccPelRect {
public:
  constexpr ccPelRect() = default;  // null
  constexpr ccPelRect(ccPair<long> const& upperLeft, ccPair<long> const& size) : ul_(upperLeft), sz_(size) {}
  constexpr ccPelRect(long x, long y, long w, long h) : ul_(x, y), sz_(w, h) {}
  static constexpr ccPelRect fromCorners(ccPair<long> const& ul, ccPair<long> const& lr)
  {
    return ccPelRect(ul, lr - ul);
  }

  constexpr ccPair<long> ul() const { return ul_; }
  constexpr ccPair<long> lr() const { return ul_ + sz_; }
  constexpr ccPair<long> sz() const { return sz_; }
  constexpr long width() const { return sz_.x(); }
  constexpr long height() const { return sz_.y(); }
  constexpr bool isNull() const { return sz_.x() <= 0 || sz_.y() <= 0; }
  constexpr bool within(ccPair<long> const& p) const
  {
    return !isNull() && p.x() >= ul_.x() && p.y() >= ul_.y() && distance_(ul_.x(), p.x()) < distance_(0, sz_.x()) &&
           distance_(ul_.y(), p.y()) < distance_(0, sz_.y());
  }

  friend ccPelRect operator&(ccPelRect const& a, ccPelRect const& b);  // disjoint: the null rectangle at (0, 0)
  friend constexpr bool operator==(ccPelRect const& a, ccPelRect const& b)
  {
    return (a.isNull() && b.isNull()) || (a.ul_ == b.ul_ && a.sz_ == b.sz_);
  }
  friend constexpr bool operator!=(ccPelRect const& a, ccPelRect const& b) { return !(a == b); }

private:
  // From a number to one that is not below it: it may pass the range of a long.
  static constexpr unsigned long distance_(long from, long to)
  {
    return static_cast<unsigned long>(to) - static_cast<unsigned long>(from);
  }

  ccPair<long> ul_, sz_;
};
