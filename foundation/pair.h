// Two values x and y of one type: pels as ccPair<long>, fractional positions and scales as ccPair<double>. Whole numbers
// stop at the ends of their type: a sum that lies beyond them is the end itself, as if truncated from a double. So is a
// quotient by 0, and 0 by 0 is 0.
#pragma once

#include "foundation/rounding.h"

#include <limits>
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

  constexpr ccPair& operator+=(ccPair const& b) { return x_ = add_(x_, b.x_), y_ = add_(y_, b.y_), *this; }
  constexpr ccPair& operator-=(ccPair const& b) { return x_ = subtract_(x_, b.x_), y_ = subtract_(y_, b.y_), *this; }
  friend constexpr ccPair operator+(ccPair a, ccPair const& b) { return a += b; }
  friend constexpr ccPair operator-(ccPair a, ccPair const& b) { return a -= b; }
  friend constexpr ccPair operator-(ccPair const& a) { return ccPair(negate_(a.x_), negate_(a.y_)); }
  friend constexpr ccPair operator*(ccPair const& a, T k) { return ccPair(multiply_(a.x_, k), multiply_(a.y_, k)); }
  friend constexpr ccPair operator*(T k, ccPair const& a) { return a * k; }
  friend constexpr ccPair operator/(ccPair const& a, T k) { return ccPair(divide_(a.x_, k), divide_(a.y_, k)); }
  friend constexpr bool operator==(ccPair const& a, ccPair const& b) { return a.x_ == b.x_ && a.y_ == b.y_; }
  friend constexpr bool operator!=(ccPair const& a, ccPair const& b) { return !(a == b); }
  // Ordered by x, then by y: frame sizing and button layout compare sizes so.
  friend constexpr bool operator<(ccPair const& a, ccPair const& b)
  {
    return a.x_ < b.x_ || (!(b.x_ < a.x_) && a.y_ < b.y_);
  }

private:
  using Limits = std::numeric_limits<T>;
  static constexpr bool isWhole = std::is_integral_v<T> && !std::is_same_v<T, bool>;

  template <class U> static constexpr T convert_(U v)
  {
    if constexpr (std::is_floating_point_v<U> && std::is_integral_v<T>)
      return convert_(cfTruncToLong(static_cast<double>(v)));
    else if constexpr (isWhole && std::is_integral_v<U>)
      return v < 0 && (!std::is_signed_v<T> || static_cast<long long>(v) < static_cast<long long>(Limits::min()))
                 ? Limits::min()
             : v > 0 && static_cast<unsigned long long>(v) > static_cast<unsigned long long>(Limits::max())
                 ? Limits::max()
                 : static_cast<T>(v);
    else
      return static_cast<T>(v);
  }

  static constexpr T add_(T a, T b)
  {
    if constexpr (isWhole) {
      T sum = 0;
      return __builtin_add_overflow(a, b, &sum) ? (b < 0 ? Limits::min() : Limits::max()) : sum;
    } else {
      return T(a + b);
    }
  }
  static constexpr T subtract_(T a, T b)
  {
    if constexpr (isWhole) {
      T rest = 0;
      return __builtin_sub_overflow(a, b, &rest) ? (b < 0 ? Limits::max() : Limits::min()) : rest;
    } else {
      return T(a - b);
    }
  }
  static constexpr T negate_(T a)
  {
    if constexpr (isWhole)
      return subtract_(T(0), a);
    else
      return T(-a);
  }
  static constexpr T multiply_(T a, T b)
  {
    if constexpr (isWhole) {
      T product = 0;
      return __builtin_mul_overflow(a, b, &product) ? ((a < 0) != (b < 0) ? Limits::min() : Limits::max()) : product;
    } else {
      return T(a * b);
    }
  }
  static constexpr T divide_(T a, T b)
  {
    if constexpr (isWhole) {
      if (b == 0)
        return a == 0 ? T(0) : a < 0 ? Limits::min() : Limits::max();
      if constexpr (std::is_signed_v<T>)
        if (b == -1)
          return negate_(a);
    }
    return T(a / b);
  }

  T x_ = T();
  T y_ = T();
};
