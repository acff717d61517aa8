#include "ui/shapes/handle.h"

#include "foundation/resource.h"
#include "ui/shapes/handle_icons.h"
#include "ui/shapes/handle_set.h"

#include <cstdlib>

ccUIHandle::ccUIHandle(ccUIObject* above) : ccUIIcon(nullptr)
{
  if (above) {
    drawLayer(above->drawLayer());
    parent(above);
  }
  setIcon(squareIcon);
  dontMove(true);  // a handle that is picked stays below the one before it
}

ccUIHandle::~ccUIHandle()
{
  beginDestruction();
  if (set_)
    set_->forget_(this);
}

void ccUIHandle::setIcon(Icons which)
{
  ccLock lock(rootMutex());
  if (which < 0 || which >= cc_HandleIcons::count) {
    origin(ccPoint());
    return;
  }
  cc_HandleIcons::Icon icon = cc_HandleIcons::icon(which);
  store_(icon.picture);
  store_(icon.colorMap);
  store_(icon.origin);
  touchMap(icon.touchMap, icon.touchOrigin);
  redraw_(/*erase=*/true);
}

void ccUIHandle::setIcon(ccRLEBuffer const& picture)
{
  ccLock lock(rootMutex());
  std::vector<unsigned char> map{0};
  store_(map);
  icon(picture);
}

ccColor const& ccUIHandle::handleColor() { return cc_HandleIcons::color(); }

void ccUIHandle::handleColor(ccColor const& c) { cc_HandleIcons::color(c); }

void ccUIHandle::select(States, bool) {}

void ccUIHandle::deselect(States, bool) {}

void ccUIHandle::draw_(ccUITablet& canvas, ccColor const& c, DrawMode mode)
{
  if (parent())
    drawLayer(parent()->drawLayer());
  ccUIRLEBuffer::draw_(canvas, c, mode);
}

ccPoint ccUIHandle::dragged_(ccPoint const& from, ccPair<long> const& delta)
{
  ccUITablet const* const canvas = tablet();
  return canvas ? canvas->tabletFromScreen(canvas->screenCoords(from) + delta) : from;
}

std::optional<ccVector<2>> ccUIHandle::draggedDirection_(ccPair<long> const& delta, long deadZone)
{
  ccUITablet const* const canvas = tablet();
  ccUIShapes* const shape = parent() ? parent()->shapes(true) : nullptr;
  if (!canvas || !shape)
    return std::nullopt;
  ccPair<long> const pels = canvas->screenCoords(absPos()) + delta - canvas->screenCoords(shape->absPos());
  if (std::labs(pels.x()) < deadZone && std::labs(pels.y()) < deadZone)
    return std::nullopt;
  return mapMove(pels);
}

void ccUIHandle::drawRubberLine_(ccPair<long> const& delta)
{
  ccUITablet* const canvas = ghostTablet_();
  ccUIShapes* const shape = canvas ? parent()->shapes(true) : nullptr;
  if (!shape)
    return;
  canvas->drawStart(shape->absPos(), shape->drawLayer());
  canvas->drawTo(absPos() + mapMove(delta), dragColor(), shape->drawLayer());
}

// A ghost is drawn where it will be, not where the drag of another node would shift it.
ccUITablet* ccUIHandle::ghostTablet_()
{
  ccUITablet* const canvas = parent() ? tablet() : nullptr;
  if (canvas)
    canvas->dragDel(ccPair<long>(0, 0));
  return canvas;
}
