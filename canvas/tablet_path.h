// The outline of a shape in pels, as strokes of straight chords: collected from ccShape::outline through a map, flattened to a
// quarter of a pel.
#pragma once

#include "geometry/shape.h"

#include <vector>

struct cs_Stroke {
  std::vector<ccVector<2>> points;
  bool closed = false;
};

class cc_TabletPath : public ccOutlineSink {
public:
  explicit cc_TabletPath(ccXform<2> const&);

  // In the coordinates before the map.
  void point(ccVector<2> const&) override;
  void moveTo(ccVector<2> const&) override;
  void lineTo(ccVector<2> const&) override;
  void arcTo(ccEllipseArc2 const&) override;
  void curveTo(ccBezierCurve const&) override;
  void close() override;

  bool isFinite() const { return finite_; }  // false: the map leaves nothing to draw
  std::vector<cs_Stroke> const& strokes() const { return strokes_; }
  std::vector<ccVector<2>> const& singles() const { return singles_; }  // points by themselves, not mapped

private:
  void add_(ccVector<2> const&);

  ccXform<2> map_;
  double scale_;  // no length grows by more
  bool finite_ = true;
  std::vector<cs_Stroke> strokes_;
  std::vector<ccVector<2>> singles_;
};

// What of a stroke lies inside a rectangle: its parts as open strokes, or all of it as the one open stroke that it is.
std::vector<cs_Stroke> cf_clipChain(std::vector<ccVector<2>> const&, bool closed, ccVector<2> const& low,
                                                ccVector<2> const& high);
// The same of a filled figure; new sides run along the rectangle's edges.
std::vector<ccVector<2>> cf_clipFigure(std::vector<ccVector<2>> points, ccVector<2> const& low, ccVector<2> const& high);
