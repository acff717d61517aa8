// The outline of a shape in pels, as strokes of straight chords: collected from ccShape::outline through a map. Chords stay
// within a quarter of a pel of the curve where it can be seen; what cannot is left coarse, so that a curve costs what is visible
// of it. Whether some of it is in sight moves no chord that is.
#pragma once

#include "canvas/strokes.h"
#include "geometry/shape.h"

#include <cstdint>

class cc_TabletPath : public ccOutlineSink {
public:
  // Forgets the former outline, not its memory. The view, in pels, is where precision matters. A large arc comes from pel to
  // pel if wanted: a thin pen then paints the very pels of the curve.
  void start(ccXform<2> const&, ccVector<2> const& viewLow, ccVector<2> const& viewHigh, bool pelByPel);

  // In the coordinates before the map.
  void point(ccVector<2> const&) override;
  void moveTo(ccVector<2> const&) override;
  void lineTo(ccVector<2> const&) override;
  void arcTo(ccEllipseArc2 const&) override;
  void curveTo(ccBezierCurve const&) override;
  void close() override;

  bool isFinite() const { return finite_; }  // false: the map leaves nothing to draw
  cc_Strokes const& strokes() const { return strokes_; }
  std::vector<ccVector<2>> const& singles() const { return singles_; }  // points by themselves, not mapped

private:
  // center + u cos t + v sin t, in pels, at count + 1 equally spaced places.
  struct cs_Arc {
    ccVector<2> center, u, v;
    double start, span;
    std::int64_t count;
    double angle(std::int64_t i) const { return start + span * (static_cast<double>(i) / static_cast<double>(count)); }
    ccVector<2> at(double t) const { return center + u * std::cos(t) + v * std::sin(t); }
  };
  struct cs_Weighted {
    ccVector<2> at;  // times the weight, from the curve's first point
    double weight;
  };

  void add_(ccVector<2> const& pel);
  bool isOutside_(ccVector<2> const* points, int count) const;
  void addArc_(cs_Arc const&, std::int64_t from, std::int64_t to);
  void addPels_(cs_Arc const&, std::int64_t chord);
  void addCurve_(cs_Weighted const (&)[4], ccVector<2> const& origin, int halvings);

  ccXform<2> map_;
  ccVector<2> low_, high_;
  bool pelByPel_ = false;
  bool finite_ = true;
  cc_Strokes strokes_;
  std::vector<ccVector<2>> singles_;
};
