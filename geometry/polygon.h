// Straight segments from point to point: ccPolyline, and ccPolygon which may be filled.
#pragma once

#include "geometry/shape.h"

#include <vector>

class ccPolyline : public ccShape {
public:
  ccPolyline() = default;
  explicit ccPolyline(std::vector<ccVector<2>> points, bool closed = false);

  long size() const { return static_cast<long>(points_.size()); }
  ccVector<2> const& operator[](long i) const;
  std::vector<ccVector<2>> const& points() const { return points_; }
  // Exchanges the points, so that one object serves many figures without new memory. Ones that are not finite throw
  // ccShapesError::BadParams, and nothing is exchanged.
  void swapPoints(std::vector<ccVector<2>>&);
  bool closed() const { return closed_; }
  void closed(bool c) { closed_ = c; }

  ccPolyline map(ccXform<2> const&) const;
  friend bool operator==(ccPolyline const& a, ccPolyline const& b)
  {
    return a.points_ == b.points_ && a.closed_ == b.closed_;
  }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  std::vector<ccVector<2>> points_;
  bool closed_ = false;
};

// For distance and box it is always closed. One that is not filled is drawn as an open chain, so whoever wants the last side
// drawn repeats the first point.
class ccPolygon : public ccShape {
public:
  ccPolygon() = default;
  // Fill rule: 0 not filled, 1 even-odd, 2 winding; others throw ccShapesError::BadParams.
  explicit ccPolygon(std::vector<ccVector<2>> points, int fillRule = 0);

  long size() const { return static_cast<long>(points_.size()); }
  ccVector<2> const& operator[](long i) const;
  std::vector<ccVector<2>> const& points() const { return points_; }
  void swapPoints(std::vector<ccVector<2>>&);  // as of a polyline
  int fillRule() const { return fillRule_; }
  void fillRule(int);

  ccPolygon map(ccXform<2> const&) const;
  friend bool operator==(ccPolygon const& a, ccPolygon const& b)
  {
    return a.points_ == b.points_ && a.fillRule_ == b.fillRule_;
  }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  std::vector<ccVector<2>> points_;
  int fillRule_ = 0;
};
