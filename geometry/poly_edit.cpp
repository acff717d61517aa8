#include "geometry/poly_edit.h"

#include <algorithm>

namespace {

constexpr double kUpright = 1e-9;      // of the extent, by which a segment may deviate from its axis
constexpr double kNoDominance = 1e-12; // of the sum of lengths
constexpr double kCollapsed = 1e-12;   // of the extent

using cc_Vertices = std::vector<ccSMDGDPolyVertex>;

// The segment of the wireframe that leads to a vertex.
long cf_segmentIndex(ccSMDGDPoly const& poly, long incoming)
{
  cf_require(incoming >= 0 && incoming < poly.numVertices() && (incoming > 0 || !poly.isOpen()), "segment index");
  return incoming > 0 ? incoming - 1 : poly.numVertices() - 1;
}

double cf_extent(cc_Vertices const& vertices)
{
  cs_Bounds bounds;
  for (ccSMDGDPolyVertex const& v : vertices)
    bounds.add(v.point);
  return bounds.isEmpty() ? 0 : std::max(bounds.most.x() - bounds.least.x(), bounds.most.y() - bounds.least.y());
}

void cf_store(ccSMDGDPoly& poly, cc_Vertices vertices, bool closed)
{
  cc2Wireframe wire(std::move(vertices), closed);
  wire.polarity(poly.isPolarityReversed());
  poly = ccSMDGDPoly(wire, poly.name());
}

// Which segments are H, by the index of the vertex that they start from.
std::vector<bool> cf_classes(cc_Vertices const& vertices, std::size_t numSegments)
{
  std::vector<bool> isH;
  for (std::size_t i = 0; i < numSegments; ++i) {
    ccVector<2> const d = vertices[i + 1 == vertices.size() ? 0 : i + 1].point - vertices[i].point;
    if (d != ccVector<2>())
      isH.push_back(std::abs(d.x()) >= std::abs(d.y()));
    else
      isH.push_back(i == 0 || !isH[i - 1]);
  }
  return isH;
}

std::vector<bool> cf_classes(ccSMDGDPoly const& poly)
{
  return cf_classes(poly.vertices(), static_cast<std::size_t>(poly.numSegments()));
}

// Numbers the sets of vertices that segments of one kind link; the sets are runs along the polygon.
std::vector<std::size_t> cf_linked(std::vector<bool> const& isH, std::size_t numVertices, bool kind)
{
  std::vector<std::size_t> set(numVertices);
  for (std::size_t i = 1; i < numVertices; ++i)
    set[i] = isH[i - 1] == kind ? set[i - 1] : set[i - 1] + 1;
  if (numVertices > 1 && isH.size() == numVertices && isH.back() == kind) {
    std::size_t const wrapped = set.back();
    for (std::size_t& s : set)
      s = s == wrapped ? 0 : s;
  }
  return set;
}

// Gives all vertices of a set the mean of their coordinate.
void cf_level(cc_Vertices& vertices, std::vector<std::size_t> const& set, int axis)
{
  std::vector<double> sum(vertices.size()), count(vertices.size()), first(vertices.size());
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    if (count[set[i]]++ == 0)
      first[set[i]] = vertices[i].point[axis];
    sum[set[i]] += vertices[i].point[axis] - first[set[i]];
  }
  // Relative to the first one, so that equal coordinates stay to the last bit.
  for (std::size_t i = 0; i < vertices.size(); ++i)
    vertices[i].point[axis] = first[set[i]] + sum[set[i]] / count[set[i]];
}

void cf_turn(cc_Vertices& vertices, ccRadian angle)
{
  if (angle.value() == 0)
    return;
  ccMatrix<2> const turn(angle, 1);
  for (ccSMDGDPolyVertex& v : vertices)
    v.point = turn * v.point;
}

bool cf_hasCollapsed(cc_Vertices const& vertices, double extent)
{
  cs_Bounds bounds;
  for (ccSMDGDPolyVertex const& v : vertices)
    bounds.add(v.point);
  double const least = kCollapsed * extent;
  return !(bounds.most.x() - bounds.least.x() > least) || !(bounds.most.y() - bounds.least.y() > least);
}

}  // namespace

ccSMDGDPoly ccSMDGDPolyPrivate::poly(ccGenPoly const& p)
{
  return ccSMDGDPoly(cc2Wireframe(p.vertices(), !p.isOpen()), "poly");
}

ccPoint ccSMDGDPolyPrivate::roundPoint(ccSMDGDPoly const& poly, long i)
{
  cs_PolyRounding const rounding = poly.wireframe().rounding(i);
  return rounding.fits ? ccPoint(rounding.center) : poly.vertex(i).point;
}

ccRadian ccSMDGDPolyPrivate::vertexAngle(ccSMDGDPoly const& poly, long i)
{
  cc2Wireframe const& wire = poly.wireframe();
  long const before = wire.previousSegmentIndex(i), after = wire.nextSegmentIndex(i);
  if (before < 0 || after < 0)
    return ccRadian(cfPi);
  cs_PolySegment const in = wire.segment(before, true), out = wire.segment(after, true);
  if (in.isPoint() || out.isPoint())
    return ccRadian(cfPi);
  // Lines by their differences as they are: the cross product of sides in line is then 0 exactly.
  ccVector<2> const back = in.isLine() ? in.a - in.b : -in.directionAt(1);
  ccVector<2> const forth = out.isLine() ? out.b - out.a : out.directionAt(0);
  return ccRadian::norm(ccRadian(std::atan2(cf_cross(forth, back), forth.dot(back))));
}

cc2SegmentArc ccSMDGDPolyPrivate::arcSegment_(ccSMDGDPoly const& poly, long i)
{
  return cc2SegmentArc(poly.wireframe().arcSegment(cf_segmentIndex(poly, i), true));
}

cc2SegmentArc ccSMDGDPolyPrivate::roundedArcSegment_(ccSMDGDPoly const& poly, long i)
{
  return cc2SegmentArc(poly.wireframe().arcSegment(cf_segmentIndex(poly, i), false));
}

bool ccSMDGDPolyPrivate::isRectilinear(ccSMDGDPoly const& poly)
{
  double const slack = kUpright * cf_extent(poly.vertices());
  for (long i = 0; i < poly.numSegments(); ++i) {
    cs_PolySegment const s = poly.wireframe().segment(i, true);
    ccVector<2> const d = s.b - s.a;
    if (!s.isLine() || std::min(std::abs(d.x()), std::abs(d.y())) > slack)
      return false;
  }
  return true;
}

ccRadian ccSMDGDPolyPrivate::dominantAngle(ccSMDGDPoly const& poly)
{
  // The fourth power of a direction is the same for all directions at right angles to each other.
  double x = 0, y = 0, total = 0;
  for (long i = 0; i < poly.numSegments(); ++i) {
    cs_PolySegment const s = poly.wireframe().segment(i, true);
    if (s.isPoint())
      continue;
    double const length = s.chordLength();
    ccVector<2> const u = (s.b - s.a) / length;
    double const x2 = (u.x() - u.y()) * (u.x() + u.y()), y2 = 2 * u.x() * u.y();
    x += length * (x2 - y2) * (x2 + y2);
    y += length * 2 * x2 * y2;
    total += length;
  }
  if (!(std::hypot(x, y) > kNoDominance * total))
    return ccRadian(0);
  double const angle = std::atan2(y, x) / 4;
  return ccRadian(angle <= -cfPi / 4 ? cfPi / 4 : angle);
}

void ccSMDGDPolyPrivate::snapRectilinear(ccSMDGDPoly& poly)
{
  if (poly.numVertices() < 2)
    return;
  ccRadian const tilt = dominantAngle(poly);
  cc_Vertices vertices = poly.vertices();
  double const extent = cf_extent(vertices);
  // About the first vertex, which keeps digits where the polygon lies far from the origin.
  ccPoint const pivot = vertices[0].point;
  for (ccSMDGDPolyVertex& v : vertices) {
    v.span = ccRadian(0);
    v.point -= pivot;
  }
  cf_turn(vertices, -tilt);
  std::vector<bool> const isH = cf_classes(vertices, static_cast<std::size_t>(poly.numSegments()));
  cf_level(vertices, cf_linked(isH, vertices.size(), true), 1);
  cf_level(vertices, cf_linked(isH, vertices.size(), false), 0);
  if (!poly.isOpen() && cf_hasCollapsed(vertices, extent))
    throw ccShapesError::BadGeom("a polygon that collapses when it is made rectilinear");
  cf_turn(vertices, tilt);
  for (ccSMDGDPolyVertex& v : vertices)
    v.point += pivot;

  ccSMDGDPoly snapped = poly;
  cf_store(snapped, vertices, !poly.isOpen());
  std::vector<cs_PolyRounding> const roundings = snapped.wireframe().roundings();
  std::size_t const ends = poly.isOpen() ? 1 : 0;
  for (std::size_t i = ends; i + ends < vertices.size(); ++i)
    if (!roundings[i].fits)
      vertices[i].roundingSize = 0;
  cf_store(poly, std::move(vertices), !poly.isOpen());
}

void ccSMDGDPolyPrivate::closeRectilinear(ccSMDGDPoly& poly)
{
  if (!poly.isOpen() || poly.numVertices() < 3 || !isRectilinear(poly))
    throw ccShapesError::BadGeom("rectilinear close of other than an open rectilinear chain");
  std::vector<bool> const isH = cf_classes(poly);
  for (std::size_t i = 1; i < isH.size(); ++i)
    if (isH[i] == isH[i - 1])
      throw ccShapesError::BadGeom("rectilinear close of a chain that does not turn at each vertex");
  cc_Vertices vertices = poly.vertices();
  ccPoint const start = vertices.front().point, end = vertices.back().point;
  if (vertices.size() % 2 == 0) {
    ccPoint& last = vertices.back().point;
    last = isH.back() ? ccPoint(start.x(), end.y()) : ccPoint(end.x(), start.y());
  } else {
    ccSMDGDPolyVertex corner;
    corner.point = isH.back() ? ccPoint(end.x(), start.y()) : ccPoint(start.x(), end.y());
    if (corner.point == end)
      throw ccShapesError::BadGeom("rectilinear close with a segment of length 0");
    vertices.push_back(corner);
  }
  if (vertices.back().point == start)
    throw ccShapesError::BadGeom("rectilinear close with a segment of length 0");
  vertices.front().tol = ccDimTol();
  cf_store(poly, std::move(vertices), true);
}

void ccSMDGDPolyPrivate::replaceVertexRectilinear(ccSMDGDPoly& poly, long i, ccSMDGDPolyVertex const& v)
{
  poly.vertex(i);
  if (v.span.value() != 0)
    throw ccShapesError::BadGeom("an arc in a rectilinear polygon");
  cc_Vertices vertices = poly.vertices();
  std::vector<bool> const isH = cf_classes(poly);
  std::size_t const moved = static_cast<std::size_t>(i);
  for (int axis = 0; axis < 2; ++axis) {
    std::vector<std::size_t> const set = cf_linked(isH, vertices.size(), axis == 1);
    for (std::size_t k = 0; k < vertices.size(); ++k)
      if (set[k] == set[moved])
        vertices[k].point[axis] = v.point[axis];
  }
  vertices[moved] = v;
  cf_store(poly, std::move(vertices), !poly.isOpen());
}

void ccSMDGDPolyPrivate::deleteSegments(ccSMDGDPoly const& poly, std::vector<long> const& segments,
                                        std::vector<ccSMDGDPoly>& out)
{
  std::vector<ccSMDGDPoly> pieces;
  std::size_t const count = poly.vertices().size();
  std::vector<bool> isRemoved(count);  // by the vertex that the segment leads to
  for (long i : segments)
    if (i >= (poly.isOpen() ? 1 : 0) && i < poly.numVertices())
      isRemoved[static_cast<std::size_t>(i)] = true;
  auto const cut = std::find(isRemoved.begin(), isRemoved.end(), true);
  if (cut == isRemoved.end()) {
    if (count >= 2)
      pieces.push_back(poly);
    out.swap(pieces);
    return;
  }
  std::size_t const start = poly.isOpen() ? 0 : static_cast<std::size_t>(cut - isRemoved.begin());
  ccSMDGDPoly empty(poly.name());
  empty.polarity(poly.isPolarityReversed());
  ccSMDGDPoly piece = empty;
  for (std::size_t k = 0; k <= count; ++k) {
    std::size_t const i = (start + k) % count;
    if (k == count || isRemoved[i]) {
      if (piece.numVertices() >= 2)
        pieces.push_back(piece);
      piece = empty;
    }
    if (k < count)
      piece.addVertex(poly.vertices()[i]);
  }
  out.swap(pieces);
}

ccRadian cfArcSpanThrough(ccVector<2> const& a, ccVector<2> const& b, ccVector<2> const& q)
{
  double const length = a.distance(b);
  if (!(length > 0))
    throw ccShapesError::DegenerateShape("an arc between coincident points");
  double const height = cf_cross((b - a) / length, q - (a + b) * 0.5);
  return height == 0 ? ccRadian(0) : ccRadian(-4 * std::atan2(height, length / 2));
}

std::optional<double> cfRoundingSize(ccGenPoly const& poly, long i, ccVector<2> const& q)
{
  constexpr double straight = 1e-15;  // radians
  long const before = poly.previousSegmentIndex(i), after = poly.nextSegmentIndex(i);
  if (before < 0 || after < 0 || !cf_isFinite(q))
    return std::nullopt;
  if (std::abs(ccSMDGDPolyPrivate::vertexAngle(ccSMDGDPolyPrivate::poly(poly), i).value() - cfPi) <= straight)
    return std::nullopt;
  return std::max(poly.segment(before, true).distance(q), poly.segment(after, true).distance(q));
}

std::optional<cc2Wireframe> cfClosePolygon(cc2Wireframe const& wire, long draggedEnd)
{
  long const last = wire.numVertices() - 1;
  if (!wire.isOpen() || last < 2 || (draggedEnd != 0 && draggedEnd != last))
    return std::nullopt;
  cc2Wireframe closed = wire;
  closed.deleteVertex(0);
  if (draggedEnd == last)
    closed.vertexPoint(last - 1, wire.vertexPoint(0));
  closed.close(wire.segmentAngleSpan(0), wire.segmentLengthTol(0));
  return closed;
}

cc2Wireframe cfSplitSegment(cc2Wireframe const& wire, long segment, ccVector<2> const& at, ccDimTol const& tol)
{
  ccRadian const half = wire.segmentAngleSpan(segment) / 2;
  cc2Wireframe split = wire;
  split.insertVertex(wire.previousVertexIndex(segment), at, 0, half, tol);
  split.segmentAngleSpan(segment + 1, half);
  return split;
}

cc2Wireframe cfExtendPolygon(cc2Wireframe const& wire, bool atFirst, ccVector<2> const& to, bool closes,
                             ccDimTol const& tol)
{
  cc2Wireframe extended = wire;
  if (wire.numVertices() < 2)
    return extended;
  if (!wire.isOpen())
    extended.open();
  else if (closes)
    extended.close(ccRadian(0), tol);
  else
    extended.insertVertex(atFirst ? -1 : wire.numVertices() - 1, to, 0, ccRadian(0), tol);
  return extended;
}

cc2Wireframe cfCloseRectilinear(cc2Wireframe const& wire, ccDimTol const& tol)
{
  ccSMDGDPoly poly(wire, "poly");
  ccSMDGDPolyPrivate::closeRectilinear(poly);
  cc2Wireframe closed = poly.wireframe();
  long const last = closed.numSegments() - 1;
  closed.segmentLengthTol(last, tol);
  if (wire.numVertices() % 2 == 1)
    closed.segmentLengthTol(last - 1, tol);
  return closed;
}
