// The figures of a draw file: shapes of the library by their kind, with the names of the classes' accessors.
#pragma once

#include "apps/krsview/draw_fields.h"
#include "canvas/graphic_props.h"
#include "canvas/tablet.h"
#include "geometry/shape.h"

#include <functional>
#include <string>
#include <vector>

struct cs_DrawFigure {
  std::function<void(ccUITablet&, ccGraphicProps const&, ccUITablet::Layers)> draw;
  ccPtrHandle_const<ccShape> shape;  // null for an endless line, which is none
};

// Pen fields: color, width, style, fill, join, cap. They stand beside those of the figure.
ccGraphicProps cfDrawPen(cc_DrawFields&);

// False if this is no kind of figure. Exceptions of the library pass through.
bool cfDrawFigure(std::string const& kind, cc_DrawFields&, ccGraphicProps& pen, cs_DrawFigure&);
std::vector<std::string> cfDrawFigureKinds();
