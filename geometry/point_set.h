// A list of points. The first is its position, the direction from the first to the second its angle.
#pragma once

#include "geometry/shape.h"

#include <optional>
#include <vector>

class ccPointSet : public ccShape {
public:
  ccPointSet() = default;
  explicit ccPointSet(std::vector<ccVector<2>> points);

  long size() const { return static_cast<long>(points_.size()); }
  ccVector<2> const& operator[](long i) const;
  std::vector<ccVector<2>> const& points() const { return points_; }
  ccPoint pos() const { return points_.empty() ? ccPoint() : ccPoint(points_[0]); }
  ccRadian angle() const;  // 0 if degenerate
  bool degen() const;      // fewer than two points, or the first two within 1e-12 (1 + length of the first)

  ccPointSet map(ccXform<2> const&) const;
  ccPointSet mapCentered(ccXform<2> const&) const;  // offsets from the first point are mapped
  friend bool operator==(ccPointSet const& a, ccPointSet const& b) { return a.points_ == b.points_; }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  std::vector<ccVector<2>> points_;
};

// The set turned, and scaled, about its first point. Empty if the set or the result is degenerate: a result without direction
// could never be dragged back.
std::optional<ccPointSet> cfPointSetTurn(ccPointSet const&, ccRadian by);
std::optional<ccPointSet> cfPointSetScale(ccPointSet const&, double factor);
