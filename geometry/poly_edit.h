// Edits of polygons that need the whole polygon, and the drags of its handles as pure functions.
//
// Points and sizes are in client units. What is tested by a tolerance says so; the rest is exact up to rounding.
//
// A polygon is rectilinear if all its segments are lines along x or y. A segment is H if it runs more along x than along y, else
// V; one of length 0 counts as the other kind than the segment before it, the very first one as H.
#pragma once

#include "geometry/segment.h"
#include "geometry/smdgd_poly.h"

#include <optional>

// Vertex indices, and segment indices as in ccSMDGDPoly: that of the vertex which the segment leads to. A bad index throws
// ccShapesError::BadParams. What changes its argument leaves it as it was if it throws.
class ccSMDGDPolyPrivate {
public:
  static ccSMDGDPoly poly(ccGenPoly const&);  // named "poly"; the polarity of a wireframe is not taken over
  static cc2Wireframe wireframe(ccSMDGDPoly const& p) { return p.wireframe(); }

  // The centre of the rounding circle; the vertex itself where there is none.
  static ccPoint roundPoint(ccSMDGDPoly const&, long vertex);
  // From the outgoing direction to the reversed incoming one, in [0, 2 pi): the inner angle if the polygon runs in growing
  // angle. Half a turn at the ends of an open polygon and beside segments of length 0.
  static ccRadian vertexAngle(ccSMDGDPoly const&, long vertex);
  // Of a segment that is an arc, else ccShapesError::BadParams: all of it, and what the roundings leave of it.
  static cc2SegmentArc arcSegment_(ccSMDGDPoly const&, long segment);
  static cc2SegmentArc roundedArcSegment_(ccSMDGDPoly const&, long segment);

  static bool isRectilinear(ccSMDGDPoly const&);  // within 1e-9 of the extent; along the axes, not along a common tilt
  // The tilt in (-45, 45] degrees that most of the length has modulo a right angle; 0 if no tilt stands out. Of arcs the chord.
  static ccRadian dominantAngle(ccSMDGDPoly const&);
  // Makes all segments lines at the dominant angle or at a right angle to it. Roundings that no longer fit become 0. A closed
  // polygon that would collapse throws ccShapesError::BadGeom.
  static void snapRectilinear(ccSMDGDPoly&);
  // Closes an open rectilinear chain of three vertices or more whose segments are H and V by turns, so that it stays so. An
  // even number of vertices: the last vertex moves along its segment, and one segment is new. An odd one: a vertex and two
  // segments are new. Other chains, and new segments of length 0: ccShapesError::BadGeom.
  static void closeRectilinear(ccSMDGDPoly&);
  // Sets a vertex and takes along those that H and V segments link to it. A record with a span: ccShapesError::BadGeom.
  static void replaceVertexRectilinear(ccSMDGDPoly&, long vertex, ccSMDGDPolyVertex const&);
  // Takes segments out. out gets the pieces of two vertices or more, in order of travel, all open; a closed polygon is cut
  // open at the removed segment of the lowest index. Indices that are not of a segment are ignored; without any the polygon
  // itself is the one piece.
  static void deleteSegments(ccSMDGDPoly const&, std::vector<long> const& segments, std::vector<ccSMDGDPoly>& out);
};

// The span of the arc from a to b through q as seen along the middle of the chord: only the height of q over the chord counts.
// On the chord 0. Coincident ends throw ccShapesError::DegenerateShape. A point too far away gives a full turn, which no segment
// takes.
ccRadian cfArcSpanThrough(ccVector<2> const& a, ccVector<2> const& b, ccVector<2> const& q);

// The rounding size of a vertex for a circle around q that reaches both its segments. Empty at the ends of an open polygon,
// where the sides are in line, and for a place that is not finite.
std::optional<double> cfRoundingSize(ccGenPoly const&, long vertex, ccVector<2> const& q);

// The polygon with a new vertex in a segment; both halves take half of its span, and the first one the tolerance.
cc2Wireframe cfSplitSegment(cc2Wireframe const&, long segment, ccVector<2> const& at, ccDimTol const&);

// The polygon after one of its ends was dragged to a point. A closed one is opened. An open one gets a vertex at that end, or
// with closes set is closed there, each with the tolerance on the new segment. A single vertex stays as it is.
cc2Wireframe cfExtendPolygon(cc2Wireframe const&, bool atFirst, ccVector<2> const& to, bool closes, ccDimTol const&);

// closeRectilinear with tolerances: the last segment keeps its own, the new ones take the one given.
cc2Wireframe cfCloseRectilinear(cc2Wireframe const&, ccDimTol const&);

// An open polygon after one end was dragged onto the other. The dragged end goes and the polygon is closed there; the first
// segment keeps its span and tolerance. Empty if the vertex is no end, the polygon is closed, or fewer than two vertices would
// be left.
std::optional<cc2Wireframe> cfClosePolygon(cc2Wireframe const&, long draggedEnd);
