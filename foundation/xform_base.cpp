#include "foundation/xform_base.h"

#include "foundation/math_error.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

using Terms = std::array<double, (cc2XformPoly::maxOrder + 1) * (cc2XformPoly::maxOrder + 2) / 2>;

// A matrix by columns, since all steps below work on whole columns.
class cc_Columns {
public:
  cc_Columns(std::size_t rows, std::size_t columns) : rows_(rows), a_(rows * columns) {}
  double* operator[](std::size_t column) { return a_.data() + column * rows_; }
  std::size_t rows() const { return rows_; }

private:
  std::size_t rows_;
  std::vector<double> a_;
};

double cf_dot(double const* a, double const* b, std::size_t n)
{
  double sum = 0;
  for (std::size_t i = 0; i < n; ++i)
    sum += a[i] * b[i];
  return sum;
}

std::size_t cf_termCount(long order)
{
  auto const n = static_cast<std::size_t>(order);
  return (n + 1) * (n + 2) / 2;
}

// The terms x^i y^j with i + j <= order: by rising degree, within a degree by falling power of x.
void cf_terms(ccVector<2> const& p, long order, double* terms)
{
  std::size_t k = 0;
  terms[k++] = 1;
  for (long degree = 1; degree <= order; ++degree) {
    std::size_t const before = k - static_cast<std::size_t>(degree);
    for (long j = 0; j < degree; ++j)
      terms[k++] = terms[before + static_cast<std::size_t>(j)] * p.x();
    terms[k] = terms[k - 1 - static_cast<std::size_t>(degree)] * p.y();
    ++k;
  }
}

// Householder reduction: the upper triangle of the system with the same least squares solutions. Leaves n rows of n columns.
void cf_triangle(cc_Columns& a, std::size_t n, double* const* right)
{
  std::size_t const m = a.rows();
  for (std::size_t k = 0; k < n; ++k) {
    double* const v = a[k] + k;
    double const length = std::sqrt(cf_dot(v, v, m - k));
    if (length == 0)
      continue;
    double const head = v[0] > 0 ? -length : length;
    v[0] -= head;
    double const square = cf_dot(v, v, m - k);
    auto const reflect = [&](double* column) {
      double const factor = 2 * cf_dot(v, column + k, m - k) / square;
      for (std::size_t i = k; i < m; ++i)
        column[i] -= factor * v[i - k];
    };
    for (std::size_t j = k + 1; j < n; ++j)
      reflect(a[j]);
    reflect(right[0]);
    reflect(right[1]);
    v[0] = head;
    std::fill(v + 1, v + (m - k), 0.0);
  }
}

// One-sided Jacobi: turns the columns against each other until they are orthogonal, and the columns of v with them.
void cf_orthogonalize(cc_Columns& a, std::size_t rows, std::size_t n, cc_Columns& v)
{
  constexpr int maxSweeps = 60;  // it converges quadratically; some ten sweeps are usual
  auto const turn = [](double* p, double* q, std::size_t count, double c, double s) {
    for (std::size_t i = 0; i < count; ++i) {
      double const former = p[i];
      p[i] = c * former - s * q[i];
      q[i] = s * former + c * q[i];
    }
  };
  bool turned = true;
  for (int sweep = 0; turned && sweep < maxSweeps; ++sweep) {
    turned = false;
    for (std::size_t p = 0; p + 1 < n; ++p) {
      for (std::size_t q = p + 1; q < n; ++q) {
        double const alpha = cf_dot(a[p], a[p], rows);
        double const beta = cf_dot(a[q], a[q], rows);
        double const gamma = cf_dot(a[p], a[q], rows);
        if (std::fabs(gamma) <= epsilon * std::sqrt(alpha * beta))
          continue;
        turned = true;
        double const zeta = (beta - alpha) / (2 * gamma);
        double const t = (zeta < 0 ? -1.0 : 1.0) / (std::fabs(zeta) + std::hypot(1.0, zeta));
        double const c = 1 / std::hypot(1.0, t);
        turn(a[p], a[q], rows, c, c * t);
        turn(v[p], v[q], n, c, c * t);
      }
    }
  }
}

}  // namespace

ccPtrHandle_const<cc2XformBase> const& cc2XformLinear::identity()
{
  // Never destroyed: buffers may be made while static objects die. In memory of its own, so that an unbound buffer can
  // always be made.
  alignas(cc2XformLinear) static unsigned char object[sizeof(cc2XformLinear)];
  alignas(ccPtrHandle_const<cc2XformBase>) static unsigned char handle[sizeof(ccPtrHandle_const<cc2XformBase>)];
  static auto const& shared = *new (handle) ccPtrHandle_const<cc2XformBase>(new (object) cc2XformLinear);
  return shared;
}

cc2XformPoly::cc2XformPoly(std::vector<ccVector<2>> const& from, std::vector<ccVector<2>> const& to, long order)
    : order_(order)
{
  auto const finite = [](ccVector<2> const& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); };
  if (from.empty() || from.size() != to.size() || order < 1 || order > maxOrder || !std::all_of(from.begin(), from.end(), finite) ||
      !std::all_of(to.begin(), to.end(), finite))
    throw ccShapesError::BadParams("points of a polynomial map");

  // Around the middle and in the order of 1, so that high powers neither vanish nor explode.
  double const count = static_cast<double>(from.size());
  for (auto const& p : from)
    centre_ += p / count;
  double radius = 0;
  for (auto const& p : from)
    radius = std::max({radius, std::fabs(p.x() - centre_.x()), std::fabs(p.y() - centre_.y())});
  if (!std::isfinite(radius))
    throw ccShapesError::BadParams("points of a polynomial map lie too far apart");
  scale_ = radius > 0 ? radius : 1;

  std::size_t const m = from.size();
  std::size_t const n = cf_termCount(order);
  cc_Columns a(m, n);
  cc_Columns right(m, 2);
  std::vector<double> terms(n);
  for (std::size_t i = 0; i < m; ++i) {
    cf_terms((from[i] - centre_) / scale_, order, terms.data());
    for (std::size_t j = 0; j < n; ++j)
      a[j][i] = terms[j];
    right[0][i] = to[i].x() - from[i].x();
    right[1][i] = to[i].y() - from[i].y();
  }
  double* const sides[2] = {right[0], right[1]};
  if (m > n)
    cf_triangle(a, n, sides);
  std::size_t const rows = std::min(m, n);

  cc_Columns v(n, n);
  for (std::size_t j = 0; j < n; ++j)
    v[j][j] = 1;
  cf_orthogonalize(a, rows, n, v);

  // Directions that the points don't determine are left out: of all best fits the one nearest to the identity stays.
  double largest = 0;
  for (std::size_t j = 0; j < n; ++j)
    largest = std::max(largest, cf_dot(a[j], a[j], rows));
  double const smallest = static_cast<double>(std::max(m, n)) * epsilon * std::sqrt(largest);
  weights_.assign(n, ccVector<2>());
  for (std::size_t j = 0; j < n; ++j) {
    double const square = cf_dot(a[j], a[j], rows);
    if (std::sqrt(square) <= smallest)
      continue;
    ccVector<2> const along(cf_dot(a[j], sides[0], rows) / square, cf_dot(a[j], sides[1], rows) / square);
    for (std::size_t i = 0; i < n; ++i)
      weights_[i] += along * v[j][i];
  }
}

ccVector<2> cc2XformPoly::mapPoint(ccVector<2> const& p) const
{
  ccVector<2> const unit = (p - centre_) / scale_;
  if (order_ == 1)
    return p + (weights_[0] + weights_[1] * unit.x() + weights_[2] * unit.y());
  Terms terms;
  cf_terms(unit, order_, terms.data());
  ccVector<2> deviation;
  for (std::size_t k = 0; k < weights_.size(); ++k)
    deviation += weights_[k] * terms[k];
  return p + deviation;
}

ccXform<2> cc2XformPoly::linearXform(ccVector<2> const& at) const
{
  // Of a linear map every place gives the same; the centre gives it without rounding noise.
  ccVector<2> const place = order_ == 1 ? centre_ : at;
  Terms terms;
  cf_terms((place - centre_) / scale_, order_, terms.data());
  ccVector<2> alongX, alongY;
  std::size_t k = 1;
  for (long degree = 1; degree <= order_; ++degree) {
    std::size_t const before = k - static_cast<std::size_t>(degree);  // the first term of one degree less
    for (long j = 0; j <= degree; ++j, ++k) {
      if (j < degree)
        alongX += weights_[k] * (static_cast<double>(degree - j) * terms[before + static_cast<std::size_t>(j)] / scale_);
      if (j > 0)
        alongY += weights_[k] * (static_cast<double>(j) * terms[before + static_cast<std::size_t>(j - 1)] / scale_);
    }
  }
  ccMatrix<2> const matrix(1 + alongX.x(), alongY.x(), alongX.y(), 1 + alongY.y());
  return ccXform<2>(matrix, mapPoint(place) - matrix * place);
}
