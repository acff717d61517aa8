// The pictures of the built-in cursors and tool buttons.
#pragma once

#include "platform/resources.h"

namespace plat::pictures {

extern Picture const arrow, fourArrows, zoomIn, zoomOut, openHand, closedHand, cross;
extern Picture const toolPointer, toolPan, toolZoomIn, toolZoomOut, toolFit,
    toolZoom100, toolRefresh, toolPixelGrid, toolSubpixelGrid;

}  // namespace plat::pictures
