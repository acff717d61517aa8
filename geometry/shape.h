// Base of all shapes: pure values with a distance, a box and an outline. Distance means distance to the outline, never to the
// filled region; it is infinite for a shape without points, and for a place that is not finite. Coordinates are doubles in
// whatever coordinate system the client draws in, y points down on screen, angles grow from +x towards +y. Every map is affine.
//
// An index out of range, an argument that is not finite (but for the place whose distance is asked), an image or a box that would not be finite, and a negative radius or
// length throw ccShapesError::BadParams; a setter that throws leaves the object as it was. Zero lengths and coincident points
// are legal unless a class says otherwise. Objects may be read by several threads at once. A shape under a handle is made with
// new; a value on the stack or in a field is nobody's but its owner's.
//
// Closed formulas are right to 1e-12 of the largest coordinate. What uses the root finder, which is distances of ellipses,
// roundings and curves and boxes of rational curves, is right to 1e-9 of it. Distances and boxes take no memory from the heap.
#pragma once

#include "foundation/handle.h"
#include "foundation/xform.h"
#include "geometry/fwd.h"

// Receives an outline stroke by stroke; consecutive pieces of one stroke share end points (to 1e-12 of the largest coordinate
// where an arc is one of them). The sink stays the caller's, and what it is given is the shape's: good during the call only.
class ccOutlineSink {
public:
  virtual ~ccOutlineSink() = default;
  virtual void point(ccVector<2> const&) = 0;
  virtual void moveTo(ccVector<2> const&) = 0;
  virtual void lineTo(ccVector<2> const&) = 0;
  virtual void arcTo(ccEllipseArc2 const&) = 0;
  virtual void curveTo(ccBezierCurve const&) = 0;
  virtual void close() = 0;
};

class ccShape : public ccRepBase {
public:
  ccPtrHandle<ccShape> clone() const;                       // forwards to clone_()
  ccPtrHandle_const<ccShape> map(ccXform<2> const&) const;  // forwards to map_()
  virtual double distanceToPoint(ccVector<2> const&) const;  // by default over outline()
  // Tight and closed, without the width of a pen; null for a shape without points. By default over outline().
  virtual ccRect encloseRect() const;
  ccGenRect encloseGenRect() const;  // the same box, axis-aligned
  virtual void outline(ccOutlineSink&) const = 0;

protected:
  virtual ccPtrHandle<ccShape> clone_() const = 0;
  virtual ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const = 0;
};
