// Sketches kept in the coordinate frames, the pel grids, and what a drag of the display draws.
#include "geometry/lines.h"
#include "geometry/rect.h"
#include "ui/core/root.h"
#include "ui/display/display_hold.h"
#include "ui/display/flag_hold.h"

#include <algorithm>
#include <cstdint>
#include <limits>

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
    cc_DisplayHold const self(*this);
    cc_OnThrow const lift([&] {
      if (self.stands())
        frame->drawClipRect(ccRect(), bothLayers);
    });
    frame->sketch_ += drawn;
    frame->drawDirect(drawn);
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
  cc_ScreenLock const screen(this);
  // All three or none are stored; and the clip is lifted even if drawing fails between.
  ccUISketch all;
  all += begin.sketch_;
  all += drawn;
  all += end.sketch_;
  drawSketch(all, cs);
}

void ccDisplay::drawSketchFast(ccUISketch const& sketch, CoordinateSystem cs)
{
  ccLock lock(rootMutex());
  if (ccUIShapesFrame* const frame = shapesFrame(cs)) {
    cc_DisplayHold const self(*this);
    frame->drawDirect(sketch);
  }
}

void ccDisplay::eraseSketch(CoordinateSystem cs)
{
  ccLock lock(rootMutex());
  cc_ScreenLock const screen(this);
  cc_DisplayHold const self(*this);
  if (ccUIShapesFrame* const frame = shapesFrame(cs)) {
    frame->sketch_.erase();
    frame->redraw(bothLayers);
    if (!self.stands())
      return;
  }
  updateDisplay(bothLayers);
}

namespace {

long cf_gridValue(long n)
{
  constexpr long most = std::numeric_limits<std::int32_t>::max();
  return std::clamp(n, -most, most);
}

// The grid lines of one axis, in image pels.
struct cs_GridRange {
  std::int64_t first, last;  // of the main lines
  std::int64_t from, to;     // what may come into sight: the visible part and as much again on either side, for a drag

  cs_GridRange(double low, double high, std::int64_t spacing)
  {
    double const cell = static_cast<double>(spacing);
    first = (std::int64_t{floorTL(low / cell)} - 1) * spacing;
    last = (std::int64_t{floorTL(high / cell)} + 1) * spacing;
    std::int64_t const reach = std::int64_t{floorTL(high)} - floorTL(low) + 1;
    from = std::max(first, std::int64_t{floorTL(low)} - reach);
    to = std::min(last, std::int64_t{floorTL(high)} + reach);
  }
};

}  // namespace

void ccDisplay::grid(long n)
{
  ccLock lock(rootMutex());
  grid_ = cf_gridValue(n);
  fullDraw(bothLayers);
}

void ccDisplay::subpixelGrid(long n)
{
  ccLock lock(rootMutex());
  subpixelGrid_ = cf_gridValue(n);
  fullDraw(bothLayers);
}

// Grids lie over the image and under shapes, and appear only when the zoom makes them readable.
void ccDisplay::drawGrids_()
{
  bool const gridOn = grid_ >= 1 && std::int64_t{mag()} * grid_ > 4;
  bool const subOn = subpixelGrid_ > 1 && mag() / (subpixelGrid_ - 1) > 8;
  if (!gridOn && !subOn)
    return;
  ccUIRect const active = activeScope(imageLayer);
  ccPoint const t = tabletCoords(active.ul()), b = tabletCoords(active.lr());
  std::int64_t const spacing = std::max(grid_, 1L);
  cs_GridRange const xs(t.x(), b.x(), spacing), ys(t.y(), b.y(), spacing);
  double const top = static_cast<double>(ys.from), bottom = static_cast<double>(ys.to);
  double const left = static_cast<double>(xs.from), right = static_cast<double>(xs.to);
  auto const column = [&](double x, ccColor const& color) {
    draw(ccLineSeg(ccPoint(x, top), ccPoint(x, bottom)), color, imageLayer);
  };
  auto const row = [&](double y, ccColor const& color) {
    draw(ccLineSeg(ccPoint(left, y), ccPoint(right, y)), color, imageLayer);
  };
  if (subOn) {
    auto const sweep = [&](cs_GridRange const& range, auto const& line) {
      for (std::int64_t v = range.from; v <= range.to; ++v) {
        // Where a main line will stand, its place stays free.
        bool const onMain = gridOn && (v - range.first) % spacing == 0;
        for (long k = onMain ? 1 : 0; k < subpixelGrid_; ++k)
          line(static_cast<double>(v) + static_cast<double>(k) / static_cast<double>(subpixelGrid_), subpixelGridColor_);
      }
    };
    sweep(xs, column);
    sweep(ys, row);
  }
  if (gridOn) {
    for (std::int64_t x = xs.first; x <= xs.last; x += spacing)
      column(static_cast<double>(x), gridColor_);
    for (std::int64_t y = ys.first; y <= ys.last; y += spacing)
      row(static_cast<double>(y), gridColor_);
  }
}

void ccDisplay::dragAnimate_(ccPair<long> const& from, ccPair<long> const& to)
{
  cc_FlagHold const quiet(layerRepaint_, false);
  dragDel(to - from);
  if (hasImage())
    drawImage();
  else if (!isLiveEnabled()) {
    dragDel(ccPair<long>(0, 0));  // the cross stands at the pointer itself
    ccPoint const at = tabletCoords(to - screenOrigin_);
    draw(ccLine(ccVector<2>(1, 0), at), dragColor(), drawLayer());
    draw(ccLine(ccVector<2>(0, 1), at), dragColor(), drawLayer());
  }
}
