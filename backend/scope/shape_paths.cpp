#include "backend/scope/shape_paths.h"

#include "foundation/rounding.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr unsigned boundsReset = 1, boundsEnable = 4, boundsDisable = 8, boundsSet = 3;

// The distance of a control point from the middle of its side, as a fraction of the side.
double controlFraction(double round, double halfSide)
{
  if (round == 0)
    return 0.2761423749154;
  return 0.6 - std::min(halfSide > 0 ? round / halfSide : 1.0, 1.0) * 0.3238576250846;
}

}  // namespace

plat::Pen cf_penOf(ccGraphicProps const& props, COLORREF color)
{
  plat::Pen pen;
  pen.color = color;
  pen.width = cf_to32(std::max(props.penWidth(), 1L));
  pen.style = static_cast<plat::u8>(props.penStyle() >= 0 && props.penStyle() <= 4 ? props.penStyle() : 0);
  pen.join = props.joinStyle() == 1 ? 1 : 0;
  pen.cap = static_cast<plat::u8>(props.capStyle() == 1 || props.capStyle() == 2 ? props.capStyle() : 0);
  return pen;
}

ccUIRect cf_grown(ccUIRect const& r, long by)
{
  return ccUIRect(r.left() - by, r.top() - by, r.width() + 2 * by, r.height() + 2 * by);
}

void cf_beginBounds(plat::Painter& painter) { painter.setBounds(nullptr, boundsReset | boundsEnable); }

ccUIRect cf_endBounds(plat::Painter& painter)
{
  plat::Rect bounds;
  bool const any = painter.getBounds(bounds, boundsReset) == boundsSet;
  painter.setBounds(&bounds, boundsDisable);
  return any ? ccUIRect::fromEdges(bounds.left, bounds.top, bounds.right, bounds.bottom) : ccUIRect();
}

void cf_rectToBezier(plat::Rect const& r, ccVector<2> const& round, double angle, ccVector<2> const& pivot,
                     plat::Point (&points)[kBezierPoints])
{
  double const w = static_cast<double>(r.right) - r.left, h = static_cast<double>(r.bottom) - r.top;
  double const mx = r.left + std::trunc(w / 2), my = r.top + std::trunc(h / 2);
  double const ox = std::trunc(w * controlFraction(round.x(), w / 2));
  double const oy = std::trunc(h * controlFraction(round.y(), h / 2));
  double const l = r.left, t = r.top, e = r.right, b = r.bottom;
  ccVector<2> const path[kBezierPoints] = {{l, my},      {l, my - oy}, {mx - ox, t}, {mx, t},      {mx + ox, t},
                                           {e, my - oy}, {e, my},      {e, my + oy}, {mx + ox, b}, {mx, b},
                                           {mx - ox, b}, {l, my + oy}, {l, my}};
  double const c = std::cos(angle), s = std::sin(angle);
  for (int i = 0; i < kBezierPoints; ++i) {
    ccVector<2> p = path[i];
    if (angle != 0) {
      ccVector<2> const v = p - pivot;
      p = ccVector<2>(v.x() * c + v.y() * s, v.y() * c - v.x() * s) + pivot;
    }
    points[i] = cf_toPoint(cfTruncToLong(p.x()), cfTruncToLong(p.y()));
  }
}
