// Two doubles: ccVector<2> a displacement or a position, ccPoint a position. Either serves for the other.
#pragma once

#include "foundation/angle.h"
#include "foundation/pair.h"

#include <cmath>

template <int N> class ccVector;

template <> class ccVector<2> {
public:
  constexpr ccVector() = default;
  constexpr ccVector(double x, double y) : x_(x), y_(y) {}
  explicit constexpr ccVector(ccPair<long> const& p) : x_(static_cast<double>(p.x())), y_(static_cast<double>(p.y())) {}
  explicit constexpr ccVector(ccPair<double> const& p) : x_(p.x()), y_(p.y()) {}
  explicit constexpr operator ccPair<double>() const { return ccPair<double>(x_, y_); }
  static ccVector polar(double r, ccRadian a) { return ccVector(r * std::cos(a.value()), r * std::sin(a.value())); }

  constexpr double x() const { return x_; }
  constexpr double y() const { return y_; }
  constexpr double& x() { return x_; }
  constexpr double& y() { return y_; }
  constexpr double operator[](int i) const { return i == 0 ? x_ : y_; }
  constexpr double& operator[](int i) { return i == 0 ? x_ : y_; }

  constexpr double dot(ccVector const& b) const { return x_ * b.x_ + y_ * b.y_; }
  double len() const { return std::hypot(x_, y_); }
  double distance(ccVector const& b) const { return std::hypot(x_ - b.x_, y_ - b.y_); }
  ccVector project(ccVector const& onto) const;  // the component along onto; a zero vector throws Singular
  ccVector unit() const;                         // a zero vector throws ccMathError::Singular
  ccRadian angle() const { return ccRadian(x_ == 0 && y_ == 0 ? 0.0 : std::atan2(y_, x_)); }

  constexpr ccVector& operator+=(ccVector const& b) { return x_ += b.x_, y_ += b.y_, *this; }
  constexpr ccVector& operator-=(ccVector const& b) { return x_ -= b.x_, y_ -= b.y_, *this; }
  friend constexpr ccVector operator+(ccVector a, ccVector const& b) { return a += b; }
  friend constexpr ccVector operator-(ccVector a, ccVector const& b) { return a -= b; }
  friend constexpr ccVector operator-(ccVector const& a) { return ccVector(-a.x_, -a.y_); }
  friend constexpr ccVector operator*(ccVector const& a, double k) { return ccVector(a.x_ * k, a.y_ * k); }
  friend constexpr ccVector operator*(double k, ccVector const& a) { return a * k; }
  friend constexpr ccVector operator/(ccVector const& a, double k) { return ccVector(a.x_ / k, a.y_ / k); }
  friend constexpr bool operator==(ccVector const& a, ccVector const& b) { return a.x_ == b.x_ && a.y_ == b.y_; }
  friend constexpr bool operator!=(ccVector const& a, ccVector const& b) { return !(a == b); }
  friend constexpr bool operator<(ccVector const& a, ccVector const& b)
  {
    return a.x_ < b.x_ || (!(b.x_ < a.x_) && a.y_ < b.y_);
  }

private:
  double x_ = 0;
  double y_ = 0;
};

class ccPoint : public ccVector<2> {
public:
  constexpr ccPoint() = default;
  constexpr ccPoint(double x, double y) : ccVector<2>(x, y) {}
  constexpr ccPoint(ccVector<2> const& v) : ccVector<2>(v) {}
  explicit constexpr ccPoint(ccPair<long> const& p) : ccVector<2>(p) {}
  explicit constexpr ccPoint(ccPair<double> const& p) : ccVector<2>(p) {}
};
