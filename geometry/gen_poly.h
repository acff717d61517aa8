// A polygon of vertices that are joined by lines and arcs, open or closed, with rounded corners.
//
// Segment i runs from vertex i to vertex i + 1, the last one of a closed polygon back to vertex 0. The span of a segment is the
// angle swept from its start to its end: positive where the angle grows, which bulges to the right of the chord; 0 is a line,
// and spans below 1e-9 become 0. The rounding size of a vertex is the radius of the circle that touches both its segments.
// Sizes at the ends of an open polygon are kept and act again when it is closed.
//
// Setters check their argument, not whether the roundings fit: see isValid().
#pragma once

#include "geometry/poly_segment.h"
#include "geometry/poly_vertex.h"

#include <vector>

class ccGenPoly : public ccShape {
public:
  ccGenPoly() = default;  // open and empty
  // Closed with fewer than two vertices: ccShapesError::BadGeom.
  ccGenPoly(std::vector<ccSMDGDPolyVertex> vertices, bool closed);
  explicit ccGenPoly(ccRect const&);    // (ul), (right, top), (lr), (left, bottom), closed
  explicit ccGenPoly(ccCircle const&);  // four arcs of +90 degrees, from angle 0

  long numVertices() const { return static_cast<long>(vertices_.size()); }
  long numSegments() const { return closed_ ? numVertices() : std::max(numVertices() - 1, 0L); }
  bool isOpen() const { return !closed_; }
  long previousVertexIndex(long segment) const;
  long nextVertexIndex(long segment) const;
  long previousSegmentIndex(long vertex) const;  // -1 if there is none
  long nextSegmentIndex(long vertex) const;      // -1 if there is none

  // The new vertex gets the index after + 1; -1 inserts in front, numVertices() - 1 appends. The span goes to the segment that
  // leads to the new vertex, in front to the one that leaves it. The first vertex of all has no segment.
  void insertVertex(long after, ccVector<2> const& point, double roundingSize = 0, ccRadian span = ccRadian(0));
  void insertVertex(ccVector<2> const& point, double roundingSize = 0, ccRadian span = ccRadian(0));  // appends
  // Together with the segment that leads to it; at the start of an open polygon with the one that leaves it. With fewer than
  // two vertices left the polygon is open.
  void deleteVertex(long);
  void open();  // drops the segment from the last vertex to the first
  // With fewer than two vertices, or closed already: ccShapesError::BadGeom.
  void close(ccRadian span = ccRadian(0));

  ccPoint vertexPoint(long i) const { return vertices_[checkedVertex_(i)].point; }
  void vertexPoint(long, ccVector<2> const&);
  double vertexRoundingSize(long i) const { return vertices_[checkedVertex_(i)].roundingSize; }
  void vertexRoundingSize(long, double);
  ccRadian segmentAngleSpan(long i) const { return vertices_[checkedSegment_(i)].span; }
  void segmentAngleSpan(long, ccRadian);
  std::vector<ccSMDGDPolyVertex> const& vertices() const { return vertices_; }

  bool isLineSegment(long i) const { return segmentAngleSpan(i).value() == 0; }
  // From vertex to vertex if full, else between the roundings. The wrong kind: ccShapesError::BadParams.
  ccLineSeg lineSegment(long i, bool full) const;
  ccEllipseArc arcSegment(long i, bool full) const;
  cs_PolySegment segment(long i, bool full) const;  // of either kind
  // The rounding of a vertex as it is drawn. It does not fit, and the vertex counts as sharp, for size 0, at an end, where no
  // such circle exists, and where it would overlap with the rounding of a vertex before.
  cs_PolyRounding rounding(long i) const;
  std::vector<cs_PolyRounding> roundings() const;  // of all vertices, in one pass

  // All numbers are finite, and every rounding of an inner vertex fits and leaves room for its neighbours. An empty polygon is
  // valid, and so are coincident vertices. Who makes a candidate tests this before it is shown or stored.
  bool isValid() const;

  // Under a similarity, or without arcs and roundings under any map; else ccShapesError::BadParams. The map of the base class
  // takes every map.
  ccGenPoly map(ccXform<2> const&) const;
  ccGenPoly map(cc2Rigid const&, double scale) const;  // scaled first
  // Alike in all that this class shows.
  friend bool operator==(ccGenPoly const& a, ccGenPoly const& b) { return a.isLike_(b); }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  ccRect encloseRect(ccXform<2> const&) const;  // of the image
  void outline(ccOutlineSink&) const override;

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

  void insert_(long after, ccSMDGDPolyVertex);
  void close_(ccRadian span, ccDimTol const&);
  void segmentTol_(long i, ccDimTol const& tol) { vertices_[checkedSegment_(i)].tol = tol; }
  ccDimTol const& segmentTol_(long i) const { return vertices_[checkedSegment_(i)].tol; }
  bool keepsClass_(ccXform<2> const&) const;
  ccPtrHandle_const<ccShape> mapToCurves_(ccXform<2> const&) const;
  void mapInPlace_(ccXform<2> const&);
  void mapInPlace_(cc2Rigid const&, double scale);
  bool isLike_(ccGenPoly const&) const;

private:
  std::size_t checkedVertex_(long i) const;
  std::size_t checkedSegment_(long i) const;  // the vertex that it leads to
  cs_PolySegment fullSegment_(long i) const;
  cs_PolyRounding corner_(long i) const;      // without regard to other roundings
  void resetStart_();                         // vertex 0 of an open polygon has no segment that leads to it
  template <class Piece> void forEachPiece_(Piece const&) const;

  std::vector<ccSMDGDPolyVertex> vertices_;
  bool closed_ = false;
};
