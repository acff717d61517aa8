#include "geometry/gen_rect.h"

#include "geometry/affine_rect.h"
#include "geometry/ellipse_arc.h"

namespace {

constexpr double kSingular = 1e-12;  // sine of the angle between images that count as parallel
constexpr double kLeastHalf = std::numeric_limits<double>::min();  // below it there is no reciprocal
constexpr double kNoLength = 1e-14;  // of an image against the size of the map

double cf_fraction(double round, double half)
{
  cf_length(round, "rounding of a general rectangle");
  return half > 0 ? std::min(round / half, 1.0) : 0.0;
}

ccVector<2> cf_fractions(ccVector<2> const& f)
{
  return ccVector<2>(std::min(cf_length(f.x(), "rounding of a general rectangle"), 1.0),
                     std::min(cf_length(f.y(), "rounding of a general rectangle"), 1.0));
}

ccMatrix<2> cf_fromUnit(double hx, double hy, int handed, ccRadian skew, ccRadian orient)
{
  double const c = std::cos(orient.value()), s = std::sin(orient.value());
  double const y = handed * hy, lean = y * std::tan(skew.value());
  return ccMatrix<2>(c * hx, c * lean - s * y, s * hx, s * lean + c * y);
}

// The skew of an affine rectangle that mirrors is a half turn away.
ccRadian cf_skew(ccAffineRectangle const& r)
{
  return std::cos(r.skew().value()) > 0 ? -r.skew() : -ccRadian::signedNorm(r.skew() + ccRadian(cfPi));
}

// A corner of the rounded unit square: signs x, y, and where its sides end.
struct cs_Corner {
  double x, y;
  ccVector<2> onYSide, onXSide, at;  // (x, y (1 - ry)), (x (1 - rx), y), (x, y)
};

cs_Corner cf_corner(double x, double y, ccVector<2> const& rounding)
{
  return {x, y, {x, y * (1 - rounding.y())}, {x * (1 - rounding.x()), y}, {x, y}};
}

}  // namespace

ccGenRect::ccGenRect(ccPoint const& center, double hx, double hy, int handed, ccRadian skew, ccRadian orient,
                     ccVector<2> const& rounding)
    : center_(cf_finite(center, "centre of a general rectangle")),
      hx_(cf_length(hx, "half length of a general rectangle")),
      hy_(cf_length(hy, "half length of a general rectangle")),
      orient_(ccRadian::norm(cf_finite(orient, "orientation of a general rectangle"))),
      skew_(cf_finite(skew, "skew of a general rectangle")), handed_(handed), rounding_(cf_fractions(rounding))
{
  cf_require(std::abs(skew.value()) <= cfPi / 2 && std::isfinite(hy * std::tan(skew.value())),
             "skew of a general rectangle");
  cf_require(handed == 1 || handed == -1, "handedness of a general rectangle");
}

ccGenRect::ccGenRect(ccPoint const& center, ccVector<2> const& halfLengths, ccRadian orient, ccVector<2> const& round)
    : ccGenRect(center, halfLengths.x(), halfLengths.y(), 1, ccRadian(0), orient,
                ccVector<2>(cf_fraction(round.x(), halfLengths.x()), cf_fraction(round.y(), halfLengths.y())))
{
}

ccGenRect::ccGenRect(ccPoint const& center, ccMatrix<2> const& m, ccVector<2> const& rounding)
    : center_(cf_finite(center, "centre of a general rectangle")), rounding_(cf_fractions(rounding))
{
  double const det = m.determinant();
  if (det == 0 || !std::isfinite(det))
    throw ccShapesError::DegenerateShape("general rectangle from a singular matrix");
  ccVector<2> const a0(m.element(1, 1) / det, -m.element(1, 0) / det), a1(-m.element(0, 1) / det, m.element(0, 0) / det);
  double const d = cf_cross(a0, a1);
  hx_ = a0.len();
  hy_ = std::abs(d) / hx_;
  handed_ = d < 0 ? -1 : 1;
  skew_ = ccRadian(std::atan(a0.dot(a1) / d));
  orient_ = ccRadian::norm(a0.angle());
  if (!(hx_ > 0) || !(hy_ > 0) || !std::isfinite(hx_) || !std::isfinite(hy_) || !cf_isFinite(skew_))
    throw ccShapesError::DegenerateShape("general rectangle from a singular matrix");
}

ccGenRect::ccGenRect(ccRect const& r)
    : ccGenRect(r.center(), ccVector<2>(std::abs(r.width()) / 2, std::abs(r.height()) / 2), ccRadian(0), ccVector<2>())
{
}

ccGenRect::ccGenRect(ccAffineRectangle const& r)
    : ccGenRect(r.center(), r.xLength() / 2, r.yLength() / 2 * std::abs(std::cos(r.skew().value())),
                std::cos(r.skew().value()) > 0 ? 1 : -1, cf_skew(r), r.xRotation(), ccVector<2>())
{
}

ccGenRect::ccGenRect(ccCircle const& c) : ccGenRect(ccEllipse2(c)) {}
ccGenRect::ccGenRect(ccEllipse const& e) : ccGenRect(ccEllipse2(e)) {}
ccGenRect::ccGenRect(ccEllipse2 const& e)
    : ccGenRect(e.center(), e.rx(), e.ry(), 1, ccRadian(0), e.rotation(), ccVector<2>(1, 1))
{
}

void ccGenRect::center(ccPoint const& p) { center_ = cf_finite(p, "centre of a general rectangle"); }
void ccGenRect::rounding(ccVector<2> const& f) { rounding_ = cf_fractions(f); }

ccMatrix<2> ccGenRect::matrix() const
{
  if (hx_ == 0 || hy_ == 0)
    throw ccShapesError::DegenerateShape("matrix of a general rectangle without extent");
  return genRectMatrix(hx_, handed_ * hy_ / hx_, skew_, orient_);
}

ccMatrix<2> ccGenRect::fromUnitMatrix() const { return cf_fromUnit(hx_, hy_, handed_, skew_, orient_); }

ccVector<2> ccGenRect::toUnit(ccVector<2> const& offset) const
{
  double const c = std::cos(orient_.value()), s = std::sin(orient_.value());
  double const a = c * offset.x() + s * offset.y(), b = c * offset.y() - s * offset.x();
  double const y = hy_ > 0 ? b / (handed_ * hy_) : 0.0;
  double const x = hx_ > 0 ? (a - handed_ * hy_ * std::tan(skew_.value()) * y) / hx_ : 0.0;
  return ccVector<2>(x, y);
}

ccXform<2> ccGenRect::xformTo(ccGenRect const& other) const
{
  bool const noX = hx_ < kLeastHalf, noY = hy_ < kLeastHalf;
  double const hx = noX ? 1 : hx_, hy = noY ? 1 : hy_;
  ccMatrix<2> const from = cf_fromUnit(hx, hy, handed_, skew_, orient_);
  ccMatrix<2> const to =
      cf_fromUnit(noX ? 1 : other.hx_, noY ? 1 : other.hy_, other.handed_, other.skew_, other.orient_);
  // The inverse by its formula, since a determinant underflows early.
  ccMatrix<2> const m = from == to ? ccMatrix<2>() : to * genRectMatrix(hx, handed_ * (hy / hx), skew_, orient_);
  return ccXform<2>(m, other.center_ - m * center_);
}

ccGenRect ccGenRect::map(ccXform<2> const& x) const
{
  ccPoint const c = x.mapPoint(center_);
  double scale = 1;
  ccRadian rot;
  bool mirrored = false;
  if (x.similarity(scale, rot, mirrored))
    return mirrored ? ccGenRect(c, hx_ * scale, hy_ * scale, -handed_, -skew_, rot - orient_, rounding_)
                    : ccGenRect(c, hx_ * scale, hy_ * scale, handed_, skew_, rot + orient_, rounding_);
  ccVector<2> const e0 = ccVector<2>::polar(1, orient_);
  ccVector<2> const e1 = handed_ * (cf_leftNormal(e0) + std::tan(skew_.value()) * e0);
  ccVector<2> const f0 = x.mapVector(e0), f1 = x.mapVector(e1);
  double const length0 = f0.len(), length1 = f1.len(), area = cf_cross(f0, f1);
  double const size = std::max(x.matrix().xScale(), x.matrix().yScale());
  if (length0 <= kNoLength * size)
    return ccGenRect(c, 0, hy_ * length1, 1, ccRadian(0), f1.angle() - ccRadian(cfPi / 2), rounding_);
  if (std::abs(area) <= kSingular * length0 * length1)
    return ccGenRect(c, hx_ * length0, 0, 1, ccRadian(0), f0.angle(), rounding_);
  return ccGenRect(c, hx_ * length0, hy_ * std::abs(area) / length0, area < 0 ? -1 : 1,
                   ccRadian(std::atan(f0.dot(f1) / area)), f0.angle(), rounding_);
}

double ccGenRect::distanceToPoint(ccVector<2> const& p) const
{
  ccMatrix<2> const a = fromUnitMatrix();
  ccVector<2> const q = p - center_;
  cs_Corner const corners[4] = {cf_corner(1, 1, rounding_), cf_corner(-1, 1, rounding_), cf_corner(-1, -1, rounding_),
                                cf_corner(1, -1, rounding_)};
  double best = cfInfinity;
  for (int i = 0; i < 4; ++i) {
    cs_Corner const &here = corners[i], &next = corners[(i + 1) % 4];
    best = std::min(best, i % 2 == 0 ? cf_segmentDistance(a * here.onXSide, a * next.onXSide, q)
                                     : cf_segmentDistance(a * here.onYSide, a * next.onYSide, q));
  }
  if (rounding_ == ccVector<2>())
    return best;
  cs_RationalCurve quarter;
  quarter.degree = 2;
  quarter.weights[1] = std::sqrt(0.5);
  for (cs_Corner const& corner : corners) {
    quarter.points[0] = a * corner.onYSide;
    quarter.points[1] = a * corner.at;
    quarter.points[2] = a * corner.onXSide;
    cs_Bounds box;
    for (int k = 0; k < 3; ++k)
      box.add(quarter.points[k]);
    if (box.distance(q) < best)
      best = std::min(best, cf_nearest(quarter, q).distance);
  }
  return best;
}

ccRect ccGenRect::encloseRect() const
{
  // The outline is a box plus an ellipse.
  ccMatrix<2> const a = fromUnitMatrix();
  ccVector<2> half;
  for (int axis = 0; axis < 2; ++axis) {
    double const p = a.element(axis, 0), q = a.element(axis, 1);
    half[axis] = (1 - rounding_.x()) * std::abs(p) + (1 - rounding_.y()) * std::abs(q) +
                 std::hypot(rounding_.x() * p, rounding_.y() * q);
  }
  return ccRect(center_ - half, half * 2.0);
}

void ccGenRect::outline(ccOutlineSink& sink) const
{
  ccXform<2> const a(fromUnitMatrix(), center_);
  ccVector<2> const in(1 - rounding_.x(), 1 - rounding_.y());
  bool const rounded = rounding_.x() > 0 && rounding_.y() > 0;
  double const signs[4][2] = {{1, 1}, {-1, 1}, {-1, -1}, {1, -1}};
  ccRadian const quarter(cfPi / 2);
  sink.moveTo(a.mapPoint(ccVector<2>(1, in.y())));
  for (int i = 0; i < 4; ++i) {
    cs_Corner const corner = cf_corner(signs[i][0], signs[i][1], rounding_);
    ccVector<2> const last = i % 2 == 0 ? corner.onXSide : corner.onYSide;
    if (rounded) {
      ccEllipse2 const e(ccVector<2>(corner.x * in.x(), corner.y * in.y()), rounding_.x(), rounding_.y(), ccRadian(0));
      sink.arcTo(ccEllipseArc2(e, quarter * i, quarter).map(a));
    } else {
      // One fraction of 0 makes the quarter ellipse a piece of the side.
      sink.lineTo(a.mapPoint(corner.at));
      if (last != corner.at)
        sink.lineTo(a.mapPoint(last));
    }
    cs_Corner const next = cf_corner(signs[(i + 1) % 4][0], signs[(i + 1) % 4][1], rounding_);
    ccVector<2> const end = i % 2 == 0 ? next.onXSide : next.onYSide;
    if (i < 3 && end != last)
      sink.lineTo(a.mapPoint(end));
  }
  sink.close();
}

ccPtrHandle<ccShape> ccGenRect::clone_() const { return new ccGenRect(*this); }
ccPtrHandle_const<ccShape> ccGenRect::map_(ccXform<2> const& x) const { return new ccGenRect(map(x)); }

ccMatrix<2> genRectMatrix(double hx, double ratio, ccRadian skew, ccRadian orient)
{
  if (hx == 0 || ratio == 0 || !std::isfinite(hx) || !std::isfinite(ratio))
    throw ccShapesError::DegenerateShape("matrix of a general rectangle without extent");
  double const o = ccRadian::norm(orient).value(), t = std::tan(ccRadian::norm(skew).value());
  double const s = std::sin(o) / hx, q = std::cos(o) / hx;
  return ccMatrix<2>(t * s + q, s - t * q, -s / ratio, q / ratio);
}

std::optional<ccGenRect> cfGenRectSize(ccGenRect const& r, ccVector<2> const& unit, ccPoint const& fixedPoint,
                                       ccPoint const& p, bool keepCentre, bool keepAspect)
{
  ccPoint const center = keepCentre ? r.center() : ccPoint((p + fixedPoint) * 0.5);
  ccVector<2> const d = keepCentre ? p - center : center - fixedPoint;
  double const c = std::cos(r.orient().value()), s = std::sin(r.orient().value());
  double hx = std::abs(d.y() * s + d.x() * c), hy = std::abs(d.y() * c - d.x() * s);
  if (keepAspect && r.hx() != 0)
    hy = hx * (r.hy() / r.hx());  // so that a circle stays one to the last bit
  if (std::abs(unit.x()) != 1)
    hx = r.hx();
  if (std::abs(unit.y()) != 1)
    hy = r.hy();
  if (!(hx > 0) || !(hy > 0) || !std::isfinite(hx) || !std::isfinite(hy * std::tan(r.skew().value())) ||
      !cf_isFinite(center))
    return std::nullopt;
  return ccGenRect(center, hx, hy, r.handed(), r.skew(), r.orient(), r.rounding());
}

std::optional<ccGenRect> cfGenRectRound(ccGenRect const& r, ccVector<2> const& unit, ccPoint const& p)
{
  ccVector<2> const u = r.toUnit(p - r.center());
  if (!cf_isFinite(u))
    return std::nullopt;
  ccGenRect result = r;
  result.rounding(ccVector<2>(1 - std::clamp(u.x() * unit.x(), 0.0, 1.0), 1 - std::clamp(u.y() * unit.y(), 0.0, 1.0)));
  return result;
}
