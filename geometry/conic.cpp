#include "geometry/conic.h"

namespace {

constexpr double kQuarter = cfPi / 2;
constexpr double kAngleTolerance = 1e-12;
constexpr double kFlat = 1e-12;  // one radius against the other

ccVector<2> cf_turned(ccVector<2> const& v, ccRadian a)
{
  double const c = std::cos(a.value()), s = std::sin(a.value());
  return ccVector<2>(c * v.x() - s * v.y(), s * v.x() + c * v.y());
}

ccVector<2> cf_polar(ccRadian a) { return ccVector<2>::polar(1, a); }

// The quarter of the unit circle from (1,0) to (0,1), or less of it, as a rational quadratic.
cs_RationalCurve cf_unitPiece(ccRadian start, ccRadian span)
{
  double const c = std::cos(span.value() / 2);
  cs_RationalCurve piece;
  piece.degree = 2;
  piece.points[0] = cf_polar(start);
  piece.points[1] = ccVector<2>::polar(1 / c, start + span / 2);
  piece.points[2] = cf_polar(start + span);
  piece.weights[1] = c;
  return piece;
}

// The image of the rows of a matrix with orthogonal rows, up to rounding, as lengths and an orthogonal matrix.
struct cs_Rows {
  double length[2];
  double sign;      // of the determinant
  ccRadian turned;  // the direction of the first column of the orthogonal matrix
};

cs_Rows cf_splitRows(ccVector<2> const& row0, ccVector<2> const& row1)
{
  cs_Rows r{{row0.len(), row1.len()}, cf_cross(row0, row1) < 0 ? -1.0 : 1.0, ccRadian(0)};
  // The longer row is the exact one; the other is taken at a right angle to it.
  if (r.length[0] >= r.length[1]) {
    if (r.length[0] > 0)
      r.turned = ccVector<2>(row0.x(), -r.sign * row0.y()).angle();
  } else {
    r.turned = ccVector<2>(r.sign * row1.y(), row1.x()).angle();
  }
  return r;
}

}  // namespace

ccVector<2> cs_Conic::at(ccRadian t) const
{
  return c + cf_turned(ccVector<2>(rx * std::cos(t.value()), ry * std::sin(t.value())), phi);
}

bool cs_Conic::isDegenerate() const { return std::min(rx, ry) <= kFlat * std::max(rx, ry); }

cs_Conic cf_mapConic(cs_Conic const& e, ccXform<2> const& x, cs_AngleMap& angles)
{
  cs_Conic image;
  image.c = x.mapPoint(e.c);
  double scale = 1;
  ccRadian rot;
  bool mirrored = false;
  if (x.similarity(scale, rot, mirrored)) {
    angles = {mirrored ? -1.0 : 1.0, ccRadian(0)};
    image.phi = mirrored ? rot - e.phi : rot + e.phi;
    image.rx = e.rx * scale;
    image.ry = e.ry * scale;
    return image;
  }
  ccVector<2> const b0 = x.mapVector(e.xAxis()), b1 = x.mapVector(e.yAxis());
  // The principal axes, labelled so that they stay near the images of the old ones. In units of a power of two near the largest
  // number, since squares overflow early.
  double const size = std::max({std::abs(b0.x()), std::abs(b0.y()), std::abs(b1.x()), std::abs(b1.y())});
  double const unit = size > 0 && std::isfinite(size) ? std::exp2(-std::clamp(std::ilogb(size), -1000, 1000)) : 1.0;
  ccVector<2> const s0 = b0 * unit, s1 = b1 * unit;
  double const c00 = s0.x() * s0.x() + s1.x() * s1.x(), c11 = s0.y() * s0.y() + s1.y() * s1.y();
  double const c01 = s0.x() * s0.y() + s1.x() * s1.y();
  double alpha = 0.5 * std::atan2(2 * c01, c00 - c11);
  ccVector<2> const xImage = x.mapVector(cf_polar(e.phi));
  if (xImage != ccVector<2>())
    alpha += kQuarter * std::round((xImage.angle().value() - alpha) / kQuarter);
  image.phi = ccRadian(alpha);
  ccVector<2> const u0 = cf_turned(b0, -image.phi), u1 = cf_turned(b1, -image.phi);  // columns
  cs_Rows const rows = cf_splitRows(ccVector<2>(u0.x(), u1.x()), ccVector<2>(u0.y(), u1.y()));
  image.rx = rows.length[0];
  image.ry = rows.length[1];
  angles = {rows.sign, rows.turned};
  return image;
}

bool cf_isInSpan(ccRadian t, ccRadian start, ccRadian span)
{
  double const size = std::abs(span.value());
  if (size >= 2 * cfPi - kAngleTolerance)
    return true;
  double const from = ccRadian::norm(span < ccRadian(0) ? start - t : t - start).value();
  return from <= size + kAngleTolerance || from >= 2 * cfPi - kAngleTolerance;
}

cs_NearestAngle cf_nearestOnConic(cs_Conic const& e, ccVector<2> const& q)
{
  ccVector<2> const d = q - e.c;
  if (e.isCircle())
    return {d.angle() - e.phi, cf_distance(std::abs(d.len() - e.rx))};
  // By symmetry the nearest point lies in the quadrant of the query.
  ccVector<2> const local = cf_turned(d, -e.phi);
  cs_RationalCurve const unit = cf_unitPiece(ccRadian(0), ccRadian(kQuarter));
  cs_RationalCurve quarter = unit;
  quarter.points[0] = ccVector<2>(e.rx, 0);
  quarter.points[1] = ccVector<2>(e.rx, e.ry);
  quarter.points[2] = ccVector<2>(0, e.ry);
  cs_Nearest const nearest = cf_nearest(quarter, ccVector<2>(std::abs(local.x()), std::abs(local.y())));
  ccVector<2> const u = unit.at(nearest.t);
  return {ccVector<2>(std::copysign(u.x(), local.x()), std::copysign(u.y(), local.y())).angle(), nearest.distance};
}

int cf_numPieces(ccRadian span)
{
  double const quarters = std::ceil(std::abs(span.value()) / kQuarter - kAngleTolerance);
  return quarters < 1 ? 1 : quarters > 4 ? 4 : static_cast<int>(quarters);
}

cs_RationalCurve cf_piece(cs_Conic const& e, ccRadian start, ccRadian span, int i)
{
  ccRadian const step = span / cf_numPieces(span), from = start + step * i;
  cs_RationalCurve piece = cf_unitPiece(from, step);
  for (int k = 0; k < 3; ++k)
    piece.points[k] = e.c + cf_turned(ccVector<2>(e.rx * piece.points[k].x(), e.ry * piece.points[k].y()), e.phi);
  return piece;
}

cs_NearestAngle cf_nearestOnArc(cs_Conic const& e, ccRadian start, ccRadian span, ccVector<2> const& q)
{
  if (std::abs(span.value()) >= 2 * cfPi - kAngleTolerance)
    return cf_nearestOnConic(e, q);
  if (e.isCircle()) {
    ccVector<2> const d = q - e.c;
    ccRadian const a = d == ccVector<2>() ? start : d.angle() - e.phi;
    if (cf_isInSpan(a, start, span))
      return {a, cf_distance(std::abs(d.len() - e.rx))};
    double const first = cf_distance(e.at(start).distance(q)), last = cf_distance(e.at(start + span).distance(q));
    return last < first ? cs_NearestAngle{start + span, last} : cs_NearestAngle{start, first};
  }
  cs_NearestAngle best;
  int const pieces = cf_numPieces(span);
  ccRadian const step = span / pieces;
  for (int i = 0; i < pieces; ++i) {
    cs_RationalCurve const piece = cf_piece(e, start, span, i);
    cs_Bounds box;
    for (int k = 0; k < 3; ++k)
      box.add(piece.points[k]);
    if (box.distance(q) >= best.distance)
      continue;
    cs_Nearest const nearest = cf_nearest(piece, q);
    if (nearest.distance < best.distance) {
      ccRadian const middle = start + step * (i + 0.5);
      ccRadian const a = cf_unitPiece(start + step * i, step).at(nearest.t).angle();
      best = {middle + ccRadian::signedNorm(a - middle), nearest.distance};
    }
  }
  return best;
}

void cf_addArc(cs_Bounds& bounds, cs_Conic const& e, ccRadian start, ccRadian span)
{
  bounds.add(e.at(start));
  bounds.add(e.at(start + span));
  ccVector<2> const b0 = e.xAxis(), b1 = e.yAxis();
  for (int axis = 0; axis < 2; ++axis) {
    ccVector<2> const row(b0[axis], b1[axis]);
    if (cf_isInSpan(row.angle(), start, span))
      bounds.add(axis, e.c[axis] + row.len());
    if (cf_isInSpan(row.angle() + ccRadian(cfPi), start, span))
      bounds.add(axis, e.c[axis] - row.len());
  }
}

void cf_addConic(cs_Bounds& bounds, cs_Conic const& e)
{
  ccVector<2> const b0 = e.xAxis(), b1 = e.yAxis();
  ccVector<2> const half(std::hypot(b0.x(), b1.x()), std::hypot(b0.y(), b1.y()));
  bounds.add(e.c - half);
  bounds.add(e.c + half);
}
