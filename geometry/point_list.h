// What point sets, polylines and polygons do with their lists of points.
#pragma once

#include "geometry/bounds.h"

#include <vector>

using cc_PointList = std::vector<ccVector<2>>;

void cf_requireFinite(cc_PointList const&);            // one that is not finite throws ccShapesError::BadParams
cc_PointList cf_checkedPoints(cc_PointList points);  // the same
ccVector<2> const& cf_checkedPoint(cc_PointList const&, long i);
cc_PointList cf_mappedPoints(cc_PointList const&, ccXform<2> const&);
ccRect cf_boxOfPoints(cc_PointList const&);
double cf_chainDistance(cc_PointList const&, bool closed, ccVector<2> const&);  // one point counts, none is infinitely far
void cf_chainOutline(cc_PointList const&, bool closed, ccOutlineSink&);
