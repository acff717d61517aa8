#include "geometry/gen_poly.h"

#include "geometry/circle.h"
#include "geometry/lines.h"

namespace {

constexpr double kFullTurn = 2 * cfPi;
constexpr double kNoSpan = 1e-9;  // radians below which an arc is a line

ccRadian cf_span(ccRadian span)
{
  cf_require(cf_isFinite(span) && std::abs(span.value()) < kFullTurn, "span of a segment");
  return std::abs(span.value()) < kNoSpan ? ccRadian(0) : span;
}

ccSMDGDPolyVertex cf_checked(ccSMDGDPolyVertex v)
{
  cf_finite(v.point, "vertex of a polygon");
  cf_length(v.roundingSize, "rounding size of a vertex");
  v.span = cf_span(v.span);
  return v;
}

ccSMDGDPolyVertex cf_vertex(ccVector<2> const& point, double roundingSize, ccRadian span)
{
  ccSMDGDPolyVertex v;
  v.point = point;
  v.roundingSize = roundingSize;
  v.span = span;
  return v;
}

}  // namespace

ccGenPoly::ccGenPoly(std::vector<ccSMDGDPolyVertex> vertices, bool closed)
    : vertices_(std::move(vertices)), closed_(closed)
{
  if (closed && vertices_.size() < 2)
    throw ccShapesError::BadGeom("a closed polygon of fewer than two vertices");
  for (ccSMDGDPolyVertex& v : vertices_)
    v = cf_checked(v);
  resetStart_();
}

ccGenPoly::ccGenPoly(ccRect const& r)
{
  ccPoint const corners[] = {r.ul(), ccPoint(r.lr().x(), r.ul().y()), r.lr(), ccPoint(r.ul().x(), r.lr().y())};
  for (ccPoint const& p : corners)
    insertVertex(p);
  close();
}

ccGenPoly::ccGenPoly(ccCircle const& c)
{
  constexpr ccRadian quarter(cfPi / 2);
  ccVector<2> const x(c.radius(), 0), y(0, c.radius());
  for (ccVector<2> const& offset : {x, y, -x, -y})
    insertVertex(c.center() + offset, 0, quarter);
  close(quarter);
}

std::size_t ccGenPoly::checkedVertex_(long i) const
{
  cf_require(i >= 0 && i < numVertices(), "vertex index");
  return static_cast<std::size_t>(i);
}

std::size_t ccGenPoly::checkedSegment_(long i) const
{
  cf_require(i >= 0 && i < numSegments(), "segment index");
  return static_cast<std::size_t>(i + 1 == numVertices() ? 0 : i + 1);
}

long ccGenPoly::previousVertexIndex(long segment) const
{
  checkedSegment_(segment);
  return segment;
}

long ccGenPoly::nextVertexIndex(long segment) const { return static_cast<long>(checkedSegment_(segment)); }

long ccGenPoly::previousSegmentIndex(long vertex) const
{
  checkedVertex_(vertex);
  return vertex > 0 ? vertex - 1 : closed_ ? numVertices() - 1 : -1;
}

long ccGenPoly::nextSegmentIndex(long vertex) const
{
  checkedVertex_(vertex);
  return vertex < numSegments() ? vertex : -1;
}

void ccGenPoly::resetStart_()
{
  if (closed_ || vertices_.empty())
    return;
  vertices_[0].span = ccRadian(0);
  vertices_[0].tol = ccDimTol::noSegment();
}

void ccGenPoly::insert_(long after, ccSMDGDPolyVertex v)
{
  cf_require(after >= -1 && after < numVertices(), "index of the vertex to insert after");
  v = cf_checked(v);
  vertices_.insert(vertices_.begin() + (after + 1), v);
  if (after == -1 && vertices_.size() > 1) {
    // In front the given segment is the one that leaves; the one that led to the former first vertex leads to the new one.
    std::swap(vertices_[0].span, vertices_[1].span);
    std::swap(vertices_[0].tol, vertices_[1].tol);
  }
  resetStart_();
}

void ccGenPoly::insertVertex(long after, ccVector<2> const& point, double roundingSize, ccRadian span)
{
  insert_(after, cf_vertex(point, roundingSize, span));
}

void ccGenPoly::insertVertex(ccVector<2> const& point, double roundingSize, ccRadian span)
{
  insert_(numVertices() - 1, cf_vertex(point, roundingSize, span));
}

void ccGenPoly::deleteVertex(long i)
{
  checkedVertex_(i);
  vertices_.erase(vertices_.begin() + i);
  closed_ = closed_ && vertices_.size() >= 2;
  resetStart_();
}

void ccGenPoly::open()
{
  closed_ = false;
  resetStart_();
}

void ccGenPoly::close(ccRadian span) { close_(span, ccDimTol()); }

void ccGenPoly::close_(ccRadian span, ccDimTol const& tol)
{
  span = cf_span(span);
  if (closed_)
    throw ccShapesError::BadGeom("the polygon is closed already");
  if (numVertices() < 2)
    throw ccShapesError::BadGeom("a closed polygon of fewer than two vertices");
  closed_ = true;
  vertices_[0].span = span;
  vertices_[0].tol = tol;
}

void ccGenPoly::vertexPoint(long i, ccVector<2> const& p)
{
  vertices_[checkedVertex_(i)].point = cf_finite(p, "vertex of a polygon");
}

void ccGenPoly::vertexRoundingSize(long i, double size)
{
  vertices_[checkedVertex_(i)].roundingSize = cf_length(size, "rounding size of a vertex");
}

void ccGenPoly::segmentAngleSpan(long i, ccRadian span) { vertices_[checkedSegment_(i)].span = cf_span(span); }

bool ccGenPoly::isLike_(ccGenPoly const& other) const
{
  auto const alike = [](ccSMDGDPolyVertex const& a, ccSMDGDPolyVertex const& b) {
    return a.point == b.point && a.roundingSize == b.roundingSize && a.span == b.span;
  };
  return closed_ == other.closed_ &&
         std::equal(vertices_.begin(), vertices_.end(), other.vertices_.begin(), other.vertices_.end(), alike);
}

ccPtrHandle<ccShape> ccGenPoly::clone_() const { return new ccGenPoly(*this); }
