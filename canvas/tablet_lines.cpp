// Drawing of lines, of point icons, and the clip for what is drawn after it.
#include "canvas/sketch_op.h"
#include "canvas/strokes.h"
#include "canvas/tablet_pieces.h"
#include "geometry/lines.h"
#include "geometry/rect.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr long pointIconArm = 4;      // pels
constexpr double lineReach = 16384;   // pels beyond the extent at which an endless line ends
constexpr double widestPen = 1 << 20;

}  // namespace

long cf_penMargin(ccGraphicProps const& props)
{
  if (props.penWidth() <= 1)
    return 3;
  // Half a diagonal of the pen's square end, and the roundings of both ends.
  double const width = std::clamp(static_cast<double>(props.penWidth()), 1.0, widestPen);
  return static_cast<long>(std::ceil(0.71 * width)) + 2;
}

ccUIRect cf_penBox(ccPoint const* points, std::size_t count, long margin)
{
  if (count == 0)
    return ccUIRect();
  ccPoint low = points[0];
  ccPoint high = points[0];
  for (std::size_t i = 1; i < count; ++i) {
    low = ccPoint(std::min(low.x(), points[i].x()), std::min(low.y(), points[i].y()));
    high = ccPoint(std::max(high.x(), points[i].x()), std::max(high.y(), points[i].y()));
  }
  constexpr long far = ccUIRect::kFar;
  auto const edge = [](double v, long by) { return std::clamp(cfPelOf(v), -far / 2, far / 2) + by; };
  return ccUIRect::fromEdges(edge(low.x(), -margin), edge(low.y(), -margin), edge(high.x(), margin + 1),
                             edge(high.y(), margin + 1));
}

void ccUITablet::draw(ccLineSeg const& seg, ccGraphicProps const& props, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(seg, props, k); });
    return;
  }
  if (!top_())
    return;
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer) || !isDrawnIn_(layer, props.penColor()))
      continue;
    ccXform<2> const map = drawMap_(layer);
    ccPoint ends[] = {map * seg.p1(), map * seg.p2()};
    cs_Reach reach;
    reach.add(ends[0]);
    reach.add(ends[1]);
    if (!reach.isFinite() || (!reach.isWithin(cf_pelReach) && !cf_cutSegment(ends[0], ends[1], cf_pelReach)))
      continue;
    cc_Pieces pieces(*this, layer, cf_penBox(ends, 2, cf_penMargin(props)));
    ccLineSeg const mapped(ends[0], ends[1]);
    while (ccUIScope* scope = pieces.next())
      scope->draw(mapped, props);
  }
}

// An endless line is cut where its pels can't be seen any more, whatever is being repainted, so that the pels of all repaints
// fall together, and so far off that whole pels at its ends don't turn it.
void ccUITablet::draw(ccLine const& line, ccGraphicProps const& props, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(line, props, k); });
    return;
  }
  if (!top_())
    return;
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer) || !isDrawnIn_(layer, props.penColor()) || layers_->extent.isNull())
      continue;
    ccXform<2> const map = drawMap_(layer);
    ccVector<2> dir = map.mapVector(line.dir());
    ccVector<2> const pos = map.mapPoint(line.pos());
    double const length = std::max(std::abs(dir.x()), std::abs(dir.y()));
    if (!(length > 0) || !cf_isFinitePoint(dir) || !cf_isFinitePoint(pos))
      continue;  // the map leaves no line
    dir = dir / length;
    ccUIRect const& e = layers_->extent;
    double const low[] = {static_cast<double>(e.left()) - lineReach, static_cast<double>(e.top()) - lineReach};
    double const high[] = {static_cast<double>(e.right()) + lineReach, static_cast<double>(e.bottom()) + lineReach};
    double first = -std::numeric_limits<double>::infinity(), last = std::numeric_limits<double>::infinity();
    for (int axis = 0; axis < 2; ++axis) {
      double const p = pos[axis], d = dir[axis];
      if (d == 0) {
        if (p < low[axis] || p > high[axis])
          last = -std::numeric_limits<double>::infinity();
        continue;
      }
      double const a = (low[axis] - p) / d, b = (high[axis] - p) / d;
      first = std::max(first, std::min(a, b));
      last = std::min(last, std::max(a, b));
    }
    ccPoint const ends[] = {pos + dir * first, pos + dir * last};
    if (!(first <= last) || !cf_isFinitePoint(ends[0]) || !cf_isFinitePoint(ends[1]))
      continue;
    cc_Pieces pieces(*this, layer, cf_penBox(ends, 2, cf_penMargin(props)) & e, cc_Pieces::Box::cutsShort);
    ccLineSeg const part(ends[0], ends[1]);
    while (ccUIScope* scope = pieces.next())
      scope->draw(part, props);
  }
}

void ccUITablet::draw(ccLineSeg const& seg, ccColor const& c, Layers l)
{
  draw(seg, ccGraphicProps(c, 1, ceSolidPen, false), l);
}

void ccUITablet::draw(ccLine const& line, ccColor const& c, Layers l)
{
  draw(line, ccGraphicProps(c, 1, ceSolidPen, false), l);
}

void ccUITablet::drawPointIcon(ccPoint const& p, ccGraphicProps const& props, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.drawPointIcon(p, props, k); });
    return;
  }
  for (int layer = 0; layer < 2; ++layer)
    if (cf_hasLayer(l, layer) && isDrawnIn_(layer, props.penColor()))
      drawIcon_(p, props, layer);
}

void ccUITablet::drawIcon_(ccPoint const& p, ccGraphicProps const& props, int layer)
{
  ccPair<long> pel;
  if (!topPel_(p, layer, pel))
    return;
  ccPoint const at(pel);
  ccVector<2> const across(pointIconArm, 0);
  ccVector<2> const down(0, pointIconArm);
  ccPoint const corners[] = {at - across - down, at + across + down};
  cc_Pieces pieces(*this, layer, cf_penBox(corners, 2, cf_penMargin(props)));
  ccLineSeg const arms[] = {ccLineSeg(at - across, at + across), ccLineSeg(at - down, at + down)};
  while (ccUIScope* scope = pieces.next())
    for (ccLineSeg const& arm : arms)
      scope->draw(arm, props);
}

// A rectangle without any extent lifts the clip.
void ccUITablet::drawClipRect(ccRect const& r, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.drawClipRect(r, k); });
    return;
  }
  if (r.sz() == ccVector<2>())
    liftClip_(l);
  else
    clipTo_(r.ul(), r.lr(), l);
}
