// Base of all shapes: pure values with a distance, a box and an outline. Distance means distance to the outline, never to the
// filled region; it is infinite for a shape without points. Coordinates are doubles, y points down on screen, angles grow
// from +x towards +y. An index out of range, a number that is not finite and a negative radius or length throw
// ccShapesError::BadParams; a setter that throws leaves the object as it was. Objects may be read by several threads at once.
#pragma once

#include "foundation/handle.h"
#include "foundation/xform.h"
#include "geometry/fwd.h"

// Receives an outline stroke by stroke; consecutive pieces of one stroke share end points.
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
