// Two coordinate axes: an origin and the ends of the x and the y axis.
#pragma once

#include "geometry/shape.h"

#include <optional>

class ccCoordAxes : public ccShape {
public:
  ccCoordAxes() = default;  // the point (0,0)
  ccCoordAxes(ccPoint const& origin, ccPoint const& xEnd, ccPoint const& yEnd);

  ccPoint origin() const { return origin_; }
  void origin(ccPoint const&);
  ccPoint xEnd() const { return xEnd_; }
  void xEnd(ccPoint const&);
  ccPoint yEnd() const { return yEnd_; }
  void yEnd(ccPoint const&);
  ccVector<2> xAxis() const { return xEnd_ - origin_; }
  ccVector<2> yAxis() const { return yEnd_ - origin_; }

  ccCoordAxes map(ccXform<2> const&) const;
  friend bool operator==(ccCoordAxes const& a, ccCoordAxes const& b)
  {
    return a.origin_ == b.origin_ && a.xEnd_ == b.xEnd_ && a.yEnd_ == b.yEnd_;
  }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;  // to the nearer of the two axes
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  ccPoint origin_, xEnd_, yEnd_;
};

// The map from user coordinates whose axes these are, when they are xScale and yScale user units long; a scale of 0 throws
// ccShapesError::BadParams.
ccXform<2> cfUserXform(ccCoordAxes const&, double xScale, double yScale);

// What a drag of one axis keeps.
struct csAxesKeep {
  bool length = false;     // of the dragged axis
  bool aspect = false;     // the ratio of both lengths
  bool direction = false;  // of the dragged axis
  bool angle = false;      // between the axes
};

// The map from user coordinates after the end of the x axis (else of the y axis), u user units from the origin, was moved by
// delta. Empty where a direction or a ratio is to be kept of an axis without length, or if a result is not finite.
std::optional<ccXform<2>> cfAxesAdjust(ccXform<2> const& fromUser, double u, bool xAxis, ccVector<2> const& delta,
                                       csAxesKeep keep);
