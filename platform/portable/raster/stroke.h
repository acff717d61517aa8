// Outlines of wide pens as contours for the filler.
#pragma once

#include "platform/portable/raster/painter.h"
#include "platform/portable/raster/span_filler.h"

#include <memory>

namespace plat::portable {

// Keeps its buffers from call to call.
class Stroker {
public:
  Stroker();
  Stroker(Stroker const&) = delete;
  Stroker& operator=(Stroker const&) = delete;
  ~Stroker();

  struct Style {
    double width = 2;
    int style = 0, join = 0, cap = 0;  // as in Pen
  };

  // Adds the contours to the filler, for the winding rule. The pels that they may cover.
  Rect stroke(std::span<PointF const>, bool closed, Style const&, SpanFiller&);
  // The same for an unbroken line from point to point, without the generator; false when it has to be asked.
  bool strokeLine(PointF const& from, PointF const& to, Style const&, SpanFiller&, Rect& covered);

private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace plat::portable
