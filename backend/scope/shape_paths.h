// What the sources of vector drawing share: pens, half widths, painted bounds, and a rounded rectangle as Bezier points.
#pragma once

#include "canvas/graphic_props.h"
#include "canvas/rect.h"
#include "foundation/vector.h"
#include "platform/paint.h"

inline constexpr int kBezierPoints = 13;

plat::i32 cf_to32(long);
inline plat::Point cf_toPoint(long x, long y) { return plat::Point{cf_to32(x), cf_to32(y)}; }
plat::Pen cf_penOf(ccGraphicProps const&, COLORREF);
// How far a stroke reaches beyond its geometry, in pels.
long cf_halfWidth(ccGraphicProps const&);
// The same for strokes with free ends: square caps reach further.
long cf_halfWidthOfEnds(ccGraphicProps const&);

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
