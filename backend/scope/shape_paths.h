// What the sources of vector drawing share: pens, half widths, painted bounds, and a rounded rectangle as Bezier points.
#pragma once

#include "canvas/graphic_props.h"
#include "canvas/rect.h"
#include "foundation/vector.h"
#include "platform/paint.h"

#include <algorithm>
#include <cstdint>

inline constexpr int kBezierPoints = 13;

// Pels of a scope as the painter takes them.
inline plat::i32 cf_to32(std::int64_t v)
{
  return static_cast<plat::i32>(std::clamp<std::int64_t>(v, -0x40000000, 0x3FFFFFFF));
}
inline plat::Point cf_toPoint(std::int64_t x, std::int64_t y) { return plat::Point{cf_to32(x), cf_to32(y)}; }
plat::Pen cf_penOf(ccGraphicProps const&, COLORREF);
// How far a stroke reaches beyond its geometry, in pels.
inline long cf_halfWidth(ccGraphicProps const& props)
{
  constexpr long widest = 1 << 20;  // more than any painter draws
  return std::clamp(props.penWidth(), 0L, widest) / 2 + 1;
}
// The same for strokes with free ends: square caps reach further.
inline long cf_halfWidthOfEnds(ccGraphicProps const& props)
{
  constexpr double squareCapReach = 1.42;
  long const h = cf_halfWidth(props);
  return props.capStyle() == 2 ? static_cast<long>(static_cast<double>(h) * squareCapReach) : h;
}

// A rectangle with so many pels more on each side.
ccUIRect cf_grown(ccUIRect const&, long by);

// Starts to note what is painted, and ends it. In pels of the scope.
void cf_beginBounds(plat::Painter&);
ccUIRect cf_endBounds(plat::Painter&);

// The outline of a rectangle with rounded corners, turned by -angle about the pivot: from the middle of the left side up,
// along the top, right and bottom and back; points 0, 6 and 12 lie on the middle lines. A rounding of 0 gives the ellipse in
// the box.
void cf_rectToBezier(plat::Rect const&, ccVector<2> const& round, double angle, ccVector<2> const& pivot,
                     plat::Point (&points)[kBezierPoints]);
