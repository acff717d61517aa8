// Drawing of lines, of point icons, and the clip for what is drawn after it.
#include "canvas/sketch_op.h"
#include "canvas/tablet_pieces.h"
#include "geometry/lines.h"
#include "geometry/rect.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr long pointIconArm = 4; // pels

ccRect cf_toRect(ccUIRect const& r) { return ccRect::fromCorners(ccPoint(r.ul()), ccPoint(r.lr())); }

} // namespace

long cf_penMargin(ccGraphicProps const& props)
{
  // Half a diagonal of the pen's square end, and the roundings of both ends.
  double const width = static_cast<double>(std::max(props.penWidth(), 1L));
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
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer) || !isDrawnIn_(layer, props.penColor()))
      continue;
    ccXform<2> const map = drawMap_(layer);
    ccPoint const ends[] = {map * seg.p1(), map * seg.p2()};
    cc_Pieces pieces(*this, layer, cf_penBox(ends, 2, cf_penMargin(props)));
    ccLineSeg const mapped(ends[0], ends[1]);
    while (ccUIScope* scope = pieces.next())
      scope->draw(mapped, props);
  }
}

// An endless line is cut where its pels can't be seen any more, whatever is being repainted, so that the dashes of all
// repaints fall together.
void ccUITablet::draw(ccLine const& line, ccGraphicProps const& props, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(line, props, k); });
    return;
  }
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer) || !isDrawnIn_(layer, props.penColor()) || layers_->extent.isNull())
      continue;
    ccXform<2> const map = drawMap_(layer);
    ccVector<2> const dir = map.mapVector(line.dir());
    ccPoint const pos = map * line.pos();
    if (!(dir.len() > 0) || !std::isfinite(dir.len()) || !std::isfinite(pos.x()) || !std::isfinite(pos.y()))
      continue; // the map leaves no line
    long const margin = cf_penMargin(props);
    ccUIRect const& e = layers_->extent;
    ccUIRect const grown =
        ccUIRect::fromEdges(e.left() - margin, e.top() - margin, e.right() + margin, e.bottom() + margin);
    ccLineSeg part;
    if (!ccLine(dir, pos).clip(cf_toRect(grown), part))
      continue;
    ccPoint const ends[] = {part.p1(), part.p2()};
    cc_Pieces pieces(*this, layer, cf_penBox(ends, 2, margin) & e, cc_Pieces::Box::cutsShort);
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
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer) || !isDrawnIn_(layer, props.penColor()))
      continue;
    ccPoint const at(topPel_(p, layer));
    ccVector<2> const across(pointIconArm, 0);
    ccVector<2> const down(0, pointIconArm);
    ccLineSeg const arms[] = {ccLineSeg(at - across, at + across), ccLineSeg(at - down, at + down)};
    ccPoint const corners[] = {at - across - down, at + across + down};
    cc_Pieces pieces(*this, layer, cf_penBox(corners, 2, cf_penMargin(props)));
    while (ccUIScope* scope = pieces.next())
      for (ccLineSeg const& arm : arms)
        scope->draw(arm, props);
  }
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
