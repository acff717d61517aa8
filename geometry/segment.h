// A segment of a wireframe by itself, as the handles see it: where its middle is and which way it runs. For a line and an arc
// alike the direction of travel turned by +90 degrees points to the left of the segment.
#pragma once

#include "geometry/ellipse_arc.h"
#include "geometry/lines.h"

class cc2SegmentLine {
public:
  cc2SegmentLine() = default;
  explicit cc2SegmentLine(ccLineSeg const& s) : segment_(s) {}

  ccLineSeg const& lineSeg() const { return segment_; }
  ccPoint closestPoint(ccVector<2> const& q) const { return segment_.closestPoint(q); }
  ccPoint midPoint() const { return segment_.midPoint(); }
  ccRadian angle() const { return segment_.angle(); }  // of travel; 0 for a point

private:
  ccLineSeg segment_;
};

// An arc of the unit circle, and the similarity that maps the unit circle to the shape.
class cc2SegmentArc {
public:
  cc2SegmentArc() = default;
  // A span beyond a full turn, or a map that is no similarity: ccShapesError::BadParams.
  cc2SegmentArc(ccRadian start, ccRadian span, ccXform<2> const&);
  explicit cc2SegmentArc(ccEllipseArc const&);  // of a circle, else ccShapesError::BadParams

  ccRadian start() const { return start_; }
  ccRadian span() const { return span_; }
  ccXform<2> const& xform() const { return xform_; }                   // shape from unit circle
  ccPoint closestPoint(ccVector<2> const&) const;                      // in the shape; of the centre, the start point
  ccPoint midPoint_() const { return ccVector<2>::polar(1, middle_()); }  // on the unit circle
  ccRadian midDirection() const;                                       // of travel at the middle, in the shape

private:
  ccRadian middle_() const { return start_ + span_ / 2; }

  ccRadian start_, span_;
  ccXform<2> xform_;
};
