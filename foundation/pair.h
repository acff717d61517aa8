// Two values x and y of one type: pels as ccPair<long>, fractional positions and scales as ccPair<double>.
#pragma once

#include "foundation/rounding.h"

#include <type_traits>

template <class T> class ccPair {
public:
  constexpr ccPair() = default;
  constexpr ccPair(T x, T y) : x_(x), y_(y) {}
  // Between element types; double to long truncates toward zero and saturates.
  template <class U> explicit constexpr ccPair(ccPair<U> const& other)
      : x_(convert_(other.x())), y_(convert_(other.y())) {}

  constexpr T x() const { return x_; }
  constexpr T y() const { return y_; }
  constexpr T& x() { return x_; }
  constexpr T& y() { return y_; }

  constexpr ccPair& operator+=(ccPair const& b) { return x_ = T(x_ + b.x_), y_ = T(y_ + b.y_), *this; }
  constexpr ccPair& operator-=(ccPair const& b) { return x_ = T(x_ - b.x_), y_ = T(y_ - b.y_), *this; }
  friend constexpr ccPair operator+(ccPair a, ccPair const& b) { return a += b; }
  friend constexpr ccPair operator-(ccPair a, ccPair const& b) { return a -= b; }
  friend constexpr ccPair operator-(ccPair const& a) { return ccPair(T(-a.x_), T(-a.y_)); }
  friend constexpr ccPair operator*(ccPair const& a, T k) { return ccPair(T(a.x_ * k), T(a.y_ * k)); }
  friend constexpr ccPair operator*(T k, ccPair const& a) { return a * k; }
  friend constexpr ccPair operator/(ccPair const& a, T k) { return ccPair(T(a.x_ / k), T(a.y_ / k)); }
  friend constexpr bool operator==(ccPair const& a, ccPair const& b) { return a.x_ == b.x_ && a.y_ == b.y_; }
  friend constexpr bool operator!=(ccPair const& a, ccPair const& b) { return !(a == b); }
  // Ordered by x, then by y: frame sizing and button layout compare sizes so.
  friend constexpr bool operator<(ccPair const& a, ccPair const& b)
  {
    return a.x_ < b.x_ || (!(b.x_ < a.x_) && a.y_ < b.y_);
  }

private:
  template <class U> static constexpr T convert_(U v)
  {
    if constexpr (std::is_floating_point_v<U> && std::is_integral_v<T>)
      return static_cast<T>(cfTruncToLong(v));
    else
      return static_cast<T>(v);
  }

  T x_ = T();
  T y_ = T();
};
