#include "ui/shapes/point_shape.h"

#include "canvas/tablet.h"
#include "foundation/resource.h"

#include <cmath>

ccUIPointShapeBase::ccUIPointShapeBase(ccUIObject* above)
{
  if (above)
    parent(above);
}

void ccUIPointShapeBase::touchDist(float pels)
{
  ccLock lock(rootMutex());
  touchDist_ = pels;
  update(/*withKids=*/true, /*erase=*/false, nullptr, cc_TabletEnums::bothLayers);
}

void ccUIPointShapeBase::pos_(ccVector<2> const& v)
{
  at_ = v;
  redim_();
}

ccVector<2> ccUIPointShapeBase::pos_() { return at_; }

bool ccUIPointShapeBase::isTouched(ccVector<2> const& p, double scale)
{
  ccVector<2> const d = absPos() - p;
  double const limit = static_cast<double>(touchDist_);
  return !(std::fabs(d.x()) * scale > limit || std::fabs(d.y()) * scale > limit);
}

ccUIPointIcon::ccUIPointIcon(ccUIObject* above) : ccUIPointShapeBase(above) {}

bool ccUIPointIcon::isTouched(ccVector<2> const& p, double)
{
  ccUITablet const* const canvas = tablet();
  return canvas && ccUITablet::pointIconTouched(canvas->scopeCoords(p) - canvas->scopeCoords(absPos()));
}

void ccUIPointIcon::draw_(ccUITablet& canvas, ccColor const& color, DrawMode)
{
  ccGraphicProps props = getGraphicProps();
  props.penColor(color);
  canvas.drawPointIcon(absPos(), props, drawLayer());
}
