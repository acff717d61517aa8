// Angles in radians and degrees. The two convert into each other by themselves, but mixed operands don't compile:
// convert one first. Angles grow from +x towards +y.
#pragma once

class ccDegree;

inline constexpr double cfPi = 3.14159265358979323846;

class ccRadian {
public:
  constexpr ccRadian() = default;
  explicit constexpr ccRadian(double value) : value_(value) {}
  constexpr ccRadian(ccDegree const&);

  constexpr double value() const { return value_; }
  static ccRadian norm(ccRadian);        // into [0, 2 pi)
  static ccRadian signedNorm(ccRadian);  // into (-pi, pi]

  friend constexpr ccRadian operator+(ccRadian a, ccRadian b) { return ccRadian(a.value_ + b.value_); }
  friend constexpr ccRadian operator-(ccRadian a, ccRadian b) { return ccRadian(a.value_ - b.value_); }
  friend constexpr ccRadian operator-(ccRadian a) { return ccRadian(-a.value_); }
  friend constexpr ccRadian operator*(ccRadian a, double k) { return ccRadian(a.value_ * k); }
  friend constexpr ccRadian operator*(double k, ccRadian a) { return ccRadian(a.value_ * k); }
  friend constexpr ccRadian operator/(ccRadian a, double k) { return ccRadian(a.value_ / k); }
  friend constexpr double operator/(ccRadian a, ccRadian b) { return a.value_ / b.value_; }
  friend constexpr bool operator==(ccRadian a, ccRadian b) { return a.value_ == b.value_; }
  friend constexpr bool operator!=(ccRadian a, ccRadian b) { return a.value_ != b.value_; }
  friend constexpr bool operator<(ccRadian a, ccRadian b) { return a.value_ < b.value_; }
  friend constexpr bool operator>(ccRadian a, ccRadian b) { return a.value_ > b.value_; }
  friend constexpr bool operator<=(ccRadian a, ccRadian b) { return a.value_ <= b.value_; }
  friend constexpr bool operator>=(ccRadian a, ccRadian b) { return a.value_ >= b.value_; }

private:
  double value_ = 0;
};

class ccDegree {
public:
  constexpr ccDegree() = default;
  explicit constexpr ccDegree(double value) : value_(value) {}
  constexpr ccDegree(ccRadian const& r) : value_(r.value() * (180.0 / cfPi)) {}

  constexpr double value() const { return value_; }
  static ccDegree norm(ccDegree);        // into [0, 360)
  static ccDegree signedNorm(ccDegree);  // into (-180, 180]

  friend constexpr ccDegree operator+(ccDegree a, ccDegree b) { return ccDegree(a.value_ + b.value_); }
  friend constexpr ccDegree operator-(ccDegree a, ccDegree b) { return ccDegree(a.value_ - b.value_); }
  friend constexpr ccDegree operator-(ccDegree a) { return ccDegree(-a.value_); }
  friend constexpr ccDegree operator*(ccDegree a, double k) { return ccDegree(a.value_ * k); }
  friend constexpr ccDegree operator*(double k, ccDegree a) { return ccDegree(a.value_ * k); }
  friend constexpr ccDegree operator/(ccDegree a, double k) { return ccDegree(a.value_ / k); }
  friend constexpr double operator/(ccDegree a, ccDegree b) { return a.value_ / b.value_; }
  friend constexpr bool operator==(ccDegree a, ccDegree b) { return a.value_ == b.value_; }
  friend constexpr bool operator!=(ccDegree a, ccDegree b) { return a.value_ != b.value_; }
  friend constexpr bool operator<(ccDegree a, ccDegree b) { return a.value_ < b.value_; }
  friend constexpr bool operator>(ccDegree a, ccDegree b) { return a.value_ > b.value_; }
  friend constexpr bool operator<=(ccDegree a, ccDegree b) { return a.value_ <= b.value_; }
  friend constexpr bool operator>=(ccDegree a, ccDegree b) { return a.value_ >= b.value_; }

private:
  double value_ = 0;
};

constexpr ccRadian::ccRadian(ccDegree const& d) : value_(d.value() * (cfPi / 180.0)) {}
