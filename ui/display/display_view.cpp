// Zoom, fit and pan: where the image lies, and what is painted when that changes.
#include "ui/core/event_processor.h"
#include "ui/core/root.h"
#include "ui/core/shapes.h"
#include "ui/display/display_hold.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kMaxMag = 65536.0;
constexpr double kMinEdge = 8.0;  // pels that the image's shorter edge keeps when it is zoomed out

long cf_orOne(long v) { return v == 0 ? 1 : v; }

}  // namespace

void ccDisplay::mag(long m)
{
  if (m == 0)
    magExact(1.0);
  else if (m > 65536)
    magExact(kMaxMag);
  else
    magExact(m < 1 ? -1.0 / static_cast<double>(m) : static_cast<double>(m));
}

long ccDisplay::mag()
{
  ccLock lock(rootMutex());
  if (scaleMode_ == scaleUp)
    return scale().x();
  return scaleMode_ == scaleDown ? -scale().x() : 1;
}

void ccDisplay::magExact(double m)
{
  ccLock lock(rootMutex());
  if (!(m >= 0))  // not a number is ignored like a negative value
    return;
  m = m == 0 ? 1.0 : std::min(m, kMaxMag);
  ccPair<long> const size = hasImage() ? imageSize() : ccUITablet::size();
  double const w = static_cast<double>(cf_orOne(size.x())), h = static_cast<double>(cf_orOne(size.y()));
  double const limit = std::min({std::max(kMinEdge / w, kMinEdge / h), 1.0, scaleExact_.x()});
  m = std::max(m, limit);
  cc_ScreenLock const screen(this, bothLayers);
  cc_DisplayHold const self(*this);
  cc_DrawingOff off(*this);
  scaleExact(ccPair<double>(m, m));
  if (self.stands())
    pan(pan_);
  off.end(/*redraw=*/true);
  if (self.stands())
    magChanged();
}

double ccDisplay::magExact()
{
  ccLock lock(rootMutex());
  return scaleExact_.x();
}

void ccDisplay::fit()
{
  ccLock lock(rootMutex());
  ccPair<long> const size = hasImage() ? imageSize() : ccUITablet::size();
  double const iw = static_cast<double>(cf_orOne(size.x())), ih = static_cast<double>(cf_orOne(size.y()));
  cc_ScreenLock const screen(this, bothLayers);
  cc_DisplayHold const self(*this);
  cc_DrawingOff off(*this);
  pan(ccVector<2>(0, 0));
  if (!self.stands())
    return;
  ccPair<double> const client(clientArea());
  double ratio = 1.0;
  if (client.x() != 0 && client.y() != 0) {
    ratio = std::min(client.x() / iw, client.y() / ih);
    if (ratio < 1.0)
      ratio = -1.0 / ratio - 1.0;
  }
  mag(cfTruncToLong(ratio));
  off.end(/*redraw=*/true);
}

void ccDisplay::fitExact()
{
  ccLock lock(rootMutex());
  ccPair<long> const size = hasImage() ? imageSize() : ccUITablet::size();
  double const iw = static_cast<double>(cf_orOne(size.x())), ih = static_cast<double>(cf_orOne(size.y()));
  cc_ScreenLock const screen(this, bothLayers);
  cc_DisplayHold const self(*this);
  {
    cc_DrawingOff off(*this);
    pan(ccVector<2>(0, 0));
  }
  if (!self.stands())
    return;
  ccPair<double> const client(clientArea());
  magExact(std::min(client.x() / iw, client.y() / ih));
}

void ccDisplay::pan(ccVector<2> const& p)
{
  ccLock lock(rootMutex());
  auto const clamp = [](double v, double low, double high) { return v < low ? low : v > high ? high : v; };
  ccVector<2> const wanted(clamp(p.x(), minPan_.x(), maxPan_.x()), clamp(p.y(), minPan_.y(), maxPan_.y()));
  // What isn't finite would stick in the base map for ever.
  if (std::isfinite(wanted.x()) && std::isfinite(wanted.y()))
    pan_ = wanted;
  ccPair<long> size = ccUITablet::size();
  ccPair<long> const middle(size.x() / 2, size.y() / 2);
  if (hasImage() && imageSize() != ccPair<long>(0, 0))
    size = imageSize();
  ccVector<2> const shift =
      tabletCoords(middle) - ccVector<2>(ccPair<long>(size.x() / 2, size.y() / 2)) + pan_;
  cc_DisplayHold const self(*this);
  {
    cc_ScreenLock const screen(this, bothLayers);
    baseMap(ccXform<2>(ccMatrix<2>(), shift) * baseMap_);
    if (self.stands() && !drawingDisabled_)
      paintPanned_();
  }
  if (self.stands())
    panChanged();
}

void ccDisplay::paintPanned_()
{
  cc_DisplayHold const self(*this);
  handleDraggingXformChange();
  if (redrawLayer_ != bothLayers) {
    updateDisplay(redrawLayer_);
    return;
  }
  fullDraw(bothLayers);
  ccUIEventProcessor* const events = self.stands() && root() ? root()->eventProcessor() : nullptr;
  ccUIObject* const owner = events ? events->owner() : nullptr;
  if (owner && owner->shapes(true) && owner->dragging())
    owner->dragAnimate(events->anchor(), events->lastMousePos());
}

void ccDisplay::panDelta(ccPair<long> const& d)
{
  ccLock lock(rootMutex());
  ccVector<2> delta(d);
  if (scaleMode_ == scaleUp || scaleMode_ == scaleDown)
    delta = ccVector<2>(delta.x() / scaleExact_.x(), delta.y() / scaleExact_.y());
  pan(pan_ + delta);
}

void ccDisplay::minPan(ccPair<double> const& p)
{
  ccLock lock(rootMutex());
  minPan_ = p;
  updatePanRanges();
}

void ccDisplay::maxPan(ccPair<double> const& p)
{
  ccLock lock(rootMutex());
  maxPan_ = p;
  updatePanRanges();
}

void ccDisplay::resize_()
{
  ccLock lock(rootMutex());
  cc_ScreenLock const screen(this, bothLayers);
  cc_DisplayHold const self(*this);
  cc_DrawingOff off(*this);
  ccUIRect const whole(ccPair<long>(0, 0), ccUITablet::size());
  displayFrame_->scopeRect(whole);
  if (self.stands())
    imageFrame_->scopeRect(whole);
  if (self.stands())
    clientFrame_->scopeRect(whole);
  if (self.stands())
    ccUIControlFrame::resize_();  // attached kids follow
  if (self.stands() && defaultPan_)
    defaultPanRanges_(imageSize().x(), imageSize().y());
  if (self.stands())
    pan(pan_);
  off.end(/*redraw=*/true);
}
