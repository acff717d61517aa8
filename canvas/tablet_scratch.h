// What drawing calls of one tree keep from one to the next, so that they take no memory from the heap once it has grown. For
// the tablet's own sources.
#pragma once

#include "canvas/graphic_props.h"
#include "canvas/strokes.h"
#include "canvas/tablet_path.h"
#include "geometry/polygon.h"

struct cc_DrawScratch {
  cc_TabletPath path;
  cc_Strokes marks;                 // arrow heads, squares, axes
  cc_Strokes parts;                 // what a cut leaves of a chain
  std::vector<ccVector<2>> points;  // of the chain at hand, in top pels
  std::vector<ccVector<2>> other;
  ccPolyline polyline;  // lend their list of points
  ccPolygon polygon;
  ccGraphicProps props;  // a pen that fills where the given one doesn't, or the other way round
};
