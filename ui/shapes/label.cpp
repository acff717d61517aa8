#include "ui/shapes/label.h"

#include "canvas/tablet.h"
#include "foundation/resource.h"
#include "ui/core/node_walk.h"

ccUILabel::ccUILabel(ccUIObject* above)
{
  if (above)
    parent(above);
}

ccUILabel::~ccUILabel() { beginDestruction(); }

// Erases first: any of its setters may uncover something.
void ccUILabel::changed_() { update(/*withKids=*/true, /*erase=*/true, nullptr, cc_TabletEnums::bothLayers); }

void ccUILabel::label(std::string const& text)
{
  ccLock lock(rootMutex());
  label_ = text;
  touchRectValid_ = false;
  changed_();
}

void ccUILabel::format(ccUIFormat const& f)
{
  ccLock lock(rootMutex());
  format_ = f;
  touchRectValid_ = false;
  changed_();
}

void ccUILabel::borderWidth(long pels)
{
  ccLock lock(rootMutex());
  borderWidth_ = pels;
  touchRectValid_ = false;
  changed_();
}

void ccUILabel::foreColor(ccColor const& c)
{
  ccLock lock(rootMutex());
  foreColor_ = c;
  changed_();
}

void ccUILabel::backColor(ccColor const& c)
{
  ccLock lock(rootMutex());
  backColor_ = c;
  changed_();
}

void ccUILabel::borderColor(ccColor const& c)
{
  ccLock lock(rootMutex());
  borderColor_ = c;
  changed_();
}

// It may have come to another tablet.
void ccUILabel::show(bool nested)
{
  touchRectValid_ = false;
  ccUIPointShapeBase::show(nested);
}

void ccUILabel::pos_(ccVector<2> const& v)
{
  ccUIPointShapeBase::pos_(v);
  touchRectValid_ = false;
}

ccVector<2> ccUILabel::place_() const { return const_cast<ccUILabel*>(this)->absPos(); }

// Inside the border.
ccPoint ccUILabel::textPoint_(ccUITablet const& canvas) const
{
  return canvas.tabletCoords(canvas.scopeCoords(place_()) + ccPair<long>(borderWidth_, borderWidth_));
}

void ccUILabel::updateTouchRect_() const
{
  touchRect_ = ccUIRect();
  clipped_ = false;
  ccUITablet* const canvas = tablet();
  if (label_.empty() || !canvas)
    return;
  ccUIRect const text = canvas->textRect(label_, textPoint_(*canvas), format_, drawLayer());
  clipped_ = text != ccUIRect();
  if (clipped_) {
    ccPair<long> const border(borderWidth_, borderWidth_);
    touchRect_ = ccUIRect(text.ul() - border - canvas->scopeCoords(place_()), text.sz() + border + border);
  }
  touchRectValid_ = !touchRect_.isNull();
}

bool ccUILabel::isClipped() const
{
  ccLock lock(rootMutex());
  if (!touchRectValid_)
    updateTouchRect_();
  return clipped_;
}

bool ccUILabel::isTouched(ccVector<2> const& p, double)
{
  ccUITablet const* const canvas = tablet();
  if (!canvas)
    return false;
  if (!touchRectValid_)
    updateTouchRect_();
  return (touchRect_ + canvas->scopeCoords(absPos())).within(canvas->scopeCoords(p));
}

void ccUILabel::draw_(ccUITablet& canvas, ccColor const&, DrawMode mode)
{
  if (!touchRectValid_)
    updateTouchRect_();
  ccUIRect const box = touchRect_ + canvas.scopeCoords(absPos());
  if (touchRect_.isNull())
    return;
  if (mode == drawDrag) {
    canvas.outline(box, dragColor(), 1, drawLayer());
    return;
  }
  cc_ScreenLock const screen(&canvas);
  ccPair<long> const border(borderWidth_, borderWidth_);
  canvas.set(ccUIRect(box.ul() + border, box.sz() - border - border), backColor_, drawLayer());
  canvas.draw(label_, textPoint_(canvas), foreColor_, backColor_, format_, drawLayer());
  canvas.outline(box, borderColor_, borderWidth_, drawLayer());
}
