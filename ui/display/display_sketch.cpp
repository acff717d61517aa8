// Sketches kept in the coordinate frames, the pel grids, and what a drag of the display draws.
#include "geometry/lines.h"
#include "geometry/rect.h"
#include "ui/core/root.h"
#include "ui/display/display.h"

ccUISketch const& ccDisplay::getSketch(CoordinateSystem cs)
{
  static ccUISketch const empty;
  ccUIShapesFrame* const frame = shapesFrame(cs);
  return frame ? frame->sketch_ : empty;
}

void ccDisplay::drawSketch(ccUISketch const& sketch, CoordinateSystem cs)
{
  ccLock lock(rootMutex());
  if (ccUIShapesFrame* const frame = shapesFrame(cs)) {
    ccUISketch const drawn(sketch);  // it may be the frame's own
    frame->sketch_ += drawn;
    frame->ccUITablet::draw(drawn, ccPoint(0, 0), bothLayers);
  }
}

void ccDisplay::drawSketch(ccUISketch const& sketch, CoordinateSystem cs, ccRect const& clip)
{
  ccLock lock(rootMutex());
  if (!shapesFrame(cs))
    return;
  // The clip stands in the stored sketch, around this part only.
  ccUITablet begin, end;
  begin.drawClipRect(clip, bothLayers);
  end.drawClipRect(ccRect(), bothLayers);
  ccUISketch const drawn(sketch);
  lockScreenUpdatesPush(true, bothLayers);
  drawSketch(begin.sketch_, cs);
  drawSketch(drawn, cs);
  drawSketch(end.sketch_, cs);
  lockScreenUpdatesPop(bothLayers);
}

void ccDisplay::drawSketchFast(ccUISketch const& sketch, CoordinateSystem cs)
{
  ccLock lock(rootMutex());
  if (ccUIShapesFrame* const frame = shapesFrame(cs))
    frame->ccUITablet::draw(sketch, ccPoint(0, 0), bothLayers);
}

void ccDisplay::eraseSketch(CoordinateSystem cs)
{
  ccLock lock(rootMutex());
  lockScreenUpdatesPush(true, bothLayers);
  if (ccUIShapesFrame* const frame = shapesFrame(cs)) {
    frame->sketch_.erase();
    frame->redraw(bothLayers);
  }
  updateDisplay(bothLayers);
  lockScreenUpdatesPop(bothLayers);
}

void ccDisplay::grid(long n)
{
  ccLock lock(rootMutex());
  grid_ = n;
  fullDraw(bothLayers);
}

void ccDisplay::subpixelGrid(long n)
{
  ccLock lock(rootMutex());
  subpixelGrid_ = n;
  fullDraw(bothLayers);
}

// Grids lie over the image and under shapes, and appear only when the zoom makes them readable.
void ccDisplay::drawGrids_()
{
  bool const gridOn = grid_ >= 1 && mag() * grid_ > 4;
  bool const subOn = subpixelGrid_ > 1 && mag() / (subpixelGrid_ - 1) > 8;
  if (!gridOn && !subOn)
    return;
  ccUIRect const active = activeScope(imageLayer);
  ccPoint const t = tabletCoords(active.ul()), b = tabletCoords(active.lr());
  long const g = grid_ > 1 ? grid_ : 1;
  double const cell = static_cast<double>(g);
  long const x0 = (floorTL(t.x() / cell) - 1) * g, y0 = (floorTL(t.y() / cell) - 1) * g;
  long const x1 = (floorTL(b.x() / cell) + 1) * g, y1 = (floorTL(b.y() / cell) + 1) * g;
  double const top = static_cast<double>(y0), bottom = static_cast<double>(y1);
  double const left = static_cast<double>(x0), right = static_cast<double>(x1);
  auto const column = [&](double x, ccColor const& color) {
    draw(ccLineSeg(ccPoint(x, top), ccPoint(x, bottom)), color, imageLayer);
  };
  auto const row = [&](double y, ccColor const& color) {
    draw(ccLineSeg(ccPoint(left, y), ccPoint(right, y)), color, imageLayer);
  };
  if (subOn) {
    // Where a main line will stand, its place stays free.
    auto const sweep = [&](long from, long to, auto const& line) {
      bool on = gridOn;
      for (long v = from, passed = 0; v <= to; ++v) {
        for (long k = on ? 1 : 0; k < subpixelGrid_; ++k)
          line(static_cast<double>(v) + static_cast<double>(k) / static_cast<double>(subpixelGrid_), subpixelGridColor_);
        ++passed;
        if (gridOn)
          on = passed % grid_ == 0;
      }
    };
    sweep(x0, x1, column);
    sweep(y0, y1, row);
  }
  if (gridOn) {
    for (long x = x0; x <= x1; x += grid_)
      column(static_cast<double>(x), gridColor_);
    for (long y = y0; y <= y1; y += grid_)
      row(static_cast<double>(y), gridColor_);
  }
}

void ccDisplay::dragAnimate_(ccPair<long> const& from, ccPair<long> const& to)
{
  layerRepaint_.push(false);
  dragDel(to - from);
  if (hasImage())
    drawImage();
  else if (!isLiveEnabled()) {
    ccPoint const at = tabletCoords(to - screenOrigin_);
    draw(ccLine(ccVector<2>(1, 0), at), dragColor(), drawLayer());
    draw(ccLine(ccVector<2>(0, 1), at), dragColor(), drawLayer());
  }
  layerRepaint_.pop();
}
