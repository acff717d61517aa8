// Affine maps of the plane: ccMatrix<2> the linear part, ccXform<2> with a translation, cc2Rigid an angle and a shift.
#pragma once

#include "foundation/angle.h"
#include "foundation/vector.h"

template <int N> class ccMatrix;
template <int N> class ccXform;

template <> class ccMatrix<2> {
public:
  constexpr ccMatrix() = default;  // identity
  constexpr ccMatrix(double a00, double a01, double a10, double a11) : a_{a00, a01, a10, a11} {}
  // First column xScale (cos xRot, sin xRot), second yScale (-sin yRot, cos yRot).
  ccMatrix(ccRadian xRot, ccRadian yRot, double xScale, double yScale);
  ccMatrix(ccRadian rotation, double scale);
  static ccMatrix fromRotation(ccRadian rotation, ccRadian shear, double aspect, double scale);

  constexpr double element(int row, int column) const { return a_[2 * row + column]; }
  constexpr double determinant() const { return a_[0] * a_[3] - a_[1] * a_[2]; }
  ccMatrix inverse() const;  // a determinant of 0 or not finite throws ccMathError::Singular
  ccRadian xRot() const { return ccVector<2>(a_[0], a_[2]).angle(); }
  ccRadian yRot() const { return ccVector<2>(a_[3], -a_[1]).angle(); }
  double xScale() const { return std::hypot(a_[0], a_[2]); }
  double yScale() const { return std::hypot(a_[1], a_[3]); }
  ccRadian rotation() const { return xRot(); }
  ccRadian shear() const { return yRot() - xRot(); }
  double scale() const { return xScale(); }
  double aspect() const;  // of the y scale to the x scale; an x scale of 0 throws ccMathError::Singular

  friend constexpr ccVector<2> operator*(ccMatrix const& m, ccVector<2> const& v)
  {
    return ccVector<2>(m.a_[0] * v.x() + m.a_[1] * v.y(), m.a_[2] * v.x() + m.a_[3] * v.y());
  }
  friend constexpr ccMatrix operator*(ccMatrix const& m, ccMatrix const& n)
  {
    return ccMatrix(m.a_[0] * n.a_[0] + m.a_[1] * n.a_[2], m.a_[0] * n.a_[1] + m.a_[1] * n.a_[3],
                    m.a_[2] * n.a_[0] + m.a_[3] * n.a_[2], m.a_[2] * n.a_[1] + m.a_[3] * n.a_[3]);
  }
  friend constexpr bool operator==(ccMatrix const& m, ccMatrix const& n)
  {
    return m.a_[0] == n.a_[0] && m.a_[1] == n.a_[1] && m.a_[2] == n.a_[2] && m.a_[3] == n.a_[3];
  }
  friend constexpr bool operator!=(ccMatrix const& m, ccMatrix const& n) { return !(m == n); }

private:
  double a_[4] = {1, 0, 0, 1};  // by rows
};

template <> class ccXform<2> {
public:
  static ccXform const I;

  constexpr ccXform() = default;  // identity
  constexpr ccXform(ccMatrix<2> const& matrix, ccVector<2> const& translation) : m_(matrix), t_(translation) {}
  constexpr ccXform(double xScale, double yScale, ccVector<2> const& translation)
      : m_(xScale, 0, 0, yScale), t_(translation) {}

  constexpr ccMatrix<2> const& matrix() const { return m_; }
  constexpr ccVector<2> const& trans() const { return t_; }
  constexpr ccVector<2> mapPoint(ccVector<2> const& p) const { return m_ * p + t_; }
  constexpr ccVector<2> mapVector(ccVector<2> const& v) const { return m_ * v; }
  ccXform inverse() const;  // a singular map throws ccMathError::Singular
  // Whether the columns are orthogonal and of equal length within 1e-12. If so, the linear part is a scale times a rotation,
  // behind a mirroring of y where mirrored is true; a scale within 1e-12 of 1 is given as 1. Else nothing is changed.
  bool similarity(double& scale, ccRadian& rot, bool& mirrored) const;

  // (f * g)(p) = f(g(p))
  friend constexpr ccXform operator*(ccXform const& f, ccXform const& g)
  {
    return ccXform(f.m_ * g.m_, f.m_ * g.t_ + f.t_);
  }
  friend constexpr ccPoint operator*(ccXform const& f, ccVector<2> const& p) { return f.mapPoint(p); }
  friend constexpr bool operator==(ccXform const& f, ccXform const& g) { return f.m_ == g.m_ && f.t_ == g.t_; }
  friend constexpr bool operator!=(ccXform const& f, ccXform const& g) { return !(f == g); }

private:
  ccMatrix<2> m_;
  ccVector<2> t_;
};

// A rotation and a shift. The angle is kept in degrees; multiples of 90 map exactly.
class cc2Rigid {
public:
  static cc2Rigid const I;

  constexpr cc2Rigid() = default;
  constexpr cc2Rigid(ccDegree angle, ccVector<2> const& translation) : angle_(angle), t_(translation) {}

  constexpr ccDegree angle() const { return angle_; }
  constexpr ccVector<2> const& trans() const { return t_; }
  ccVector<2> mapPoint(ccVector<2> const& p) const { return mapVector(p) + t_; }
  ccVector<2> mapVector(ccVector<2> const&) const;
  cc2Rigid inverse() const;
  ccXform<2> linear() const;

  friend cc2Rigid operator*(cc2Rigid const& f, cc2Rigid const& g)
  {
    return cc2Rigid(f.angle_ + g.angle_, f.mapPoint(g.t_));
  }
  friend ccPoint operator*(cc2Rigid const& f, ccVector<2> const& p) { return f.mapPoint(p); }
  friend constexpr bool operator==(cc2Rigid const& f, cc2Rigid const& g)
  {
    return f.angle_ == g.angle_ && f.t_ == g.t_;
  }
  friend constexpr bool operator!=(cc2Rigid const& f, cc2Rigid const& g) { return !(f == g); }

private:
  ccDegree angle_;
  ccVector<2> t_;
};
