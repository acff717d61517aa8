#include "ui/display/display.h"

#include "canvas/ui_error.h"
#include "foundation/exception_impl.h"
#include "ui/core/event_processor.h"
#include "ui/core/root.h"
#include "ui/core/shapes.h"
#include "ui/display/display_hold.h"
#include "ui/display/flag_hold.h"

#include <algorithm>
#include <cmath>

KRS_DEFINE_EXCEPTION(ccDisplay::BadFifo, ccException)

ccDisplay::ccDisplay(ccUIFrame* parent, ccUIRect const& r) : ccUIControlFrame(parent, r)
{
  clickable(true);
  draggable(true);
  dontMove(true);
  layerRepaint_.push(true);
  ccUIRect const whole(ccPair<long>(0, 0), r.sz());
  imageFrame_ = new ccUINestedCoordFrame(this, whole);
  clientFrame_ = new ccUINestedCoordFrame(this, whole);
  displayFrame_ = new ccUIShapesFrame(this, whole);
  for (ccUIShapesFrame* frame : {displayFrame_, static_cast<ccUIShapesFrame*>(imageFrame_),
                                 static_cast<ccUIShapesFrame*>(clientFrame_)}) {
    frame->countsShapes(true);
    frame->dontMove(true);
    frame->condVisible(true);
  }
  colorMap_.resize(256);
  colorMapEx_.resize(256);
  for (int i = 0; i < 256; ++i) {
    auto const grey = static_cast<unsigned char>(i);
    colorMapEx_[static_cast<std::size_t>(i)] = ccRGB(grey, grey, grey);
  }
  for (int i = 0; i <= 230; ++i) {
    auto const grey = static_cast<unsigned char>(10 + i);
    colorMap_[static_cast<std::size_t>(i)] = ccRGB(grey, grey, grey);
  }
}

ccDisplay::~ccDisplay()
{
  beginDestruction();
  if (panning_ && root())
    root()->holdFrameSizer_(false);
  for (ccUIShapesFrame* frame : {displayFrame_, static_cast<ccUIShapesFrame*>(imageFrame_),
                                 static_cast<ccUIShapesFrame*>(clientFrame_)})
    try {
      frame->condVisible(false);
    } catch (...) {
      // A hook's exception ends here: nobody can be told any more.
    }
  delete displayFrame_;
  delete imageFrame_;
  delete clientFrame_;
}

ccDisplay::DisplayFormat ccDisplay::displayFormat() { return format8; }
bool ccDisplay::hasImage()
{
  return image8_.isBound() || image16_.isBound() || imageRGB16_.isBound() || imageRGB32_.isBound();
}
bool ccDisplay::hasImage8() { return image8_.isBound(); }
bool ccDisplay::hasImage16() { return imageRGB16_.isBound(); }
bool ccDisplay::hasImage32() { return imageRGB32_.isBound(); }
bool ccDisplay::hasImage16Grey() { return image16_.isBound(); }

ccPair<long> ccDisplay::imageSize()
{
  if (image8_.isBound())
    return image8_.size();
  if (image16_.isBound())
    return image16_.size();
  if (imageRGB16_.isBound())
    return imageRGB16_.size();
  return imageRGB32_.isBound() ? imageRGB32_.size() : ccPair<long>();
}

ccPair<long> ccDisplay::imageOffset()
{
  if (image8_.isBound())
    return image8_.offset();
  if (image16_.isBound())
    return image16_.offset();
  if (imageRGB16_.isBound())
    return imageRGB16_.offset();
  return imageRGB32_.isBound() ? imageRGB32_.offset() : ccPair<long>();
}

ccPair<long> ccDisplay::clientArea() { return ccUITablet::size(); }
void ccDisplay::getPassThroughValue(ccPackedRGB32Pel& v) { v = ccPackedRGB32Pel(); }
void ccDisplay::getPassThroughValue(ccPackedRGB16Pel& v) { v = ccPackedRGB16Pel(); }
void ccDisplay::getPassThroughValue(unsigned char& v) { v = 0; }
void ccDisplay::enableOverlay(overlayState) { throw ccUIError::NotImplemented(); }
ccDisplay::overlayState ccDisplay::enableOverlay() { throw ccUIError::NotImplemented(); }
bool ccDisplay::canBlink() { return false; }
bool ccDisplay::enableBlink() { return false; }
bool ccDisplay::disableBlink() { return false; }
double ccDisplay::blinkRate() { return 0.0; }
void ccDisplay::blinkRate(double) {}
std::vector<ccColor> ccDisplay::blinkColor() { return blinkColor_; }
void ccDisplay::blinkColor(std::vector<ccColor> const&) {}
bool ccDisplay::startLiveDisplay(ccAcqFifo*, ccLiveDisplayProps*) { return false; }
bool ccDisplay::startLiveDisplay(ccAcqFifo*) { return false; }
void ccDisplay::stopLiveDisplay() {}
bool ccDisplay::isLiveEnabled() { return false; }
void ccDisplay::waitForVerticalBlank(bool) {}
double ccDisplay::liveFrameRate() { return 0.0; }
void ccDisplay::panChanged() {}
void ccDisplay::magChanged() {}
void ccDisplay::imageChanged() {}
void ccDisplay::mouseModeChanged() {}
void ccDisplay::colorMapChanged() {}
void ccDisplay::imageMapChanged() {}
void ccDisplay::updatePanRanges() {}
bool ccDisplay::askDerivedDisplayToDoFullDraw() { return false; }

// ---- Drawing ----

void ccDisplay::disableDrawing()
{
  ccLock lock(rootMutex());
  int pushed = 0;
  ccUITablet* const all[] = {this, displayFrame_, imageFrame_, clientFrame_};
  cc_OnThrow const undo([&] {
    while (pushed > 0)
      all[--pushed]->drawEnabled_.pop();
  });
  for (ccUITablet* t : all) {
    t->drawEnabled_.push(false);
    ++pushed;
  }
  drawingDisabled_ = !drawEnabled_.top();
}

void ccDisplay::enableDrawing(bool redraw)
{
  ccLock lock(rootMutex());
  ccUITablet* const all[] = {this, displayFrame_, imageFrame_, clientFrame_};
  for (ccUITablet* t : all)
    t->drawEnabled_.pop();
  drawingDisabled_ = !drawEnabled_.top();
  cc_DisplayHold const self(*this);
  if (redraw && !(!drawingDisabled_ && askDerivedDisplayToDoFullDraw()) && self.stands())
    fullDraw(bothLayers);
}

void ccDisplay::owe_() noexcept
{
  ccUITablet::update(ccUIRect(screenOrigin_, ccUITablet::size()), bothLayers, /*now=*/false);
}

void ccDisplay::updateDisplay(Layers layer)
{
  if (drawingDisabled_)
    return;
  cc_ScreenLock const screen(this, layer);
  cc_DisplayHold const self(*this);
  if (layer == bothLayers) {
    update(imageLayer);
    if (self.stands())
      update(overlayLayer);
  } else
    update(layer);
  ccUIEventProcessor* const events = self.stands() && root() ? root()->eventProcessor() : nullptr;
  ccUIObject* const owner = events ? events->owner() : nullptr;
  if (!owner || !owner->dragging())
    return;
  auto const animate = [&] {
    cc_NodeRef const dragged(owner);
    owner->dragAnimate(events->anchor(), events->lastMousePos());
    if (dragged.alive() && owner->tablet())
      owner->tablet()->dragDel(ccPair<long>(0, 0));
  };
  if (owner->drawLayer() != overlayLayer) {
    animate();
    return;
  }
  cc_OverlayRepaint const withGraphics(*this, true);
  animate();
}

void ccDisplay::drawImage()
{
  cc_FlagHold const quiet(layerRepaint_, false);
  cc_ScreenLock const screen(this, imageLayer);
  ccPoint const origin(0, 0);
  if (!hasImage())
    set(ccColor::dkGreyColor(), imageLayer);
  else {
    // An image that is reduced to less than a pel may draw nothing, so nothing may stay open for it.
    ccPair<long> const size = imageSize();
    if (scaleMode_ == scaleDown && (cfTruncToLong(static_cast<double>(size.x()) * scaleExact_.x()) == 0 ||
                                    cfTruncToLong(static_cast<double>(size.y()) * scaleExact_.y()) == 0))
      setComplement(ccUIRect(), ccColor::dkGreyColor(), imageLayer);
    if (image8_.isBound())
      draw(image8_, origin, /*masked=*/false, 0, mapPels_, imageLayer);
    else if (image16_.isBound())
      draw(image16_, origin, /*masked=*/false, 0, imageLayer);
    else if (imageRGB16_.isBound() && displayFormat() == format16)
      draw(imageRGB16_, origin, /*masked=*/false, ccPackedRGB16Pel(), imageLayer);
    else if (imageRGB32_.isBound() && displayFormat() == format32)
      draw(imageRGB32_, origin, /*masked=*/false, ccPackedRGB32Pel(), imageLayer);
    else if (isLiveEnabled())
      draw(imageRGB16_, origin, /*masked=*/false, ccPackedRGB16Pel(), imageLayer);
    ccPair<long> const ul = scopeCoords(origin);
    ccPair<long> shown = imageSize();
    if (scaleMode_ == scaleDown) {
      ccPair<long> const reduction = scale();
      shown = ccPair<long>(shown.x() / reduction.x() * reduction.x(), shown.y() / reduction.y() * reduction.y());
    }
    ccPair<long> const lr = scopeCoords(ccPoint(shown));
    setComplement(ccUIRect(ul, lr - ul), ccColor::dkGreyColor(), imageLayer);
  }
  opaque(imageLayer, true);
  drawGrids_();
}

void ccDisplay::redraw_()
{
  Layers const layer = redrawLayer_;
  cc_FlagHold const quiet(layerRepaint_, false);
  if (overlaySupported() && (layer == overlayLayer || layer == bothLayers)) {
    cc_ScreenLock const screen(this, overlayLayer);
    ccUIRect const whole = currentScope(imageLayer);
    set(whole, ccColor::passColor(), overlayLayer);
    setComplement(whole, ccColor::dkGreyColor(), overlayLayer);
    opaque(overlayLayer, true);
  }
  cc_ScreenLock const screen(this, imageLayer);
  if (layer == imageLayer || layer == bothLayers)
    drawImage();
  if (!sketch_.isEmpty())
    draw(sketch_, ccPoint(0, 0), imageLayer);
}

// ---- Colour maps ----

void ccDisplay::showPalette_()
{
  cc_DisplayHold const self(*this);
  if (root())
    root()->colorMap(colorMap_);
  if (self.stands())
    redraw(bothLayers);
  if (self.stands())
    updateDisplay(bothLayers);
  if (self.stands())
    colorMapChanged();
}

void ccDisplay::colorMap(std::vector<ccRGB> const& map, long start)
{
  ccLock lock(rootMutex());
  cc_ScreenLock const screen(this, bothLayers);
  long const size = static_cast<long>(map.size());
  // The bound is size - start, not size, on purpose: a start other than 0 copies fewer than there are.
  if (start >= 0)
    for (long i = 0; i < 231 && start + i < size - start; ++i)
      colorMap_[static_cast<std::size_t>(i)] = map[static_cast<std::size_t>(start + i)];
  showPalette_();
}

std::vector<ccRGB> ccDisplay::colorMap()
{
  ccLock lock(rootMutex());
  std::vector<ccRGB> map = root() ? root()->systemColorMap() : std::vector<ccRGB>(256);
  map.resize(256);  // a root of another make may answer less
  std::copy_n(colorMap_.begin(), 231, map.begin() + 10);
  return map;
}

void ccDisplay::clearColorMap()
{
  ccLock lock(rootMutex());
  cc_ScreenLock const screen(this, bothLayers);
  // Not the ramp of the constructor, on purpose: entry i becomes grey i, and 0 to 9 black.
  for (std::size_t i = 0; i <= 230; ++i) {
    auto const grey = static_cast<unsigned char>(i < 10 ? 0 : i);
    colorMap_[i] = ccRGB(grey, grey, grey);
  }
  showPalette_();
}

void ccDisplay::colorMapEx(std::vector<ccRGB> const& map)
{
  ccLock lock(rootMutex());
  if (map.size() != 256 && map.size() != 1024 && map.size() != 4096 && map.size() != 65536)
    throw ccUIError::InvalidColorMapSize();
  cc_ScreenLock const screen(this, bothLayers);
  cc_DisplayHold const self(*this);
  colorMapEx_ = map;
  mapOwed_ = true;
  if (root())
    root()->colorMapEx(colorMapEx_);
  if (!self.stands())
    return;
  mapOwed_ = false;
  redraw(bothLayers);
  if (self.stands())
    updateDisplay(bothLayers);
  if (self.stands())
    imageMapChanged();
}

std::vector<ccRGB> ccDisplay::overlayColorMap()
{
  ccLock lock(rootMutex());
  if (!overlaySupported())
    throw ccUIError::NotAvailable();
  std::vector<ccRGB> map = root() ? root()->overlayColorMap() : std::vector<ccRGB>();
  if (map.empty())
    throw ccUIError::NotEnabled();
  return map;
}

// The selected display decides the shared palette at depth 8.
void ccDisplay::select(States state, bool nested)
{
  cc_DisplayHold const self(*this);
  ccUIControlFrame::select(state, nested);
  if (self.stands() && root())
    root()->colorMap(colorMap_);
}

// ---- Coordinates ----

namespace {

ccPoint cf_inverseMap(ccXform<2> const& map, ccPoint const& p)
{
  double const d = map.matrix().determinant();
  return d == 0 || !std::isfinite(d) ? ccPoint() : ccPoint(map.inverse().mapPoint(p));
}

}  // namespace

ccPoint ccDisplay::displayToImage(ccPoint const& p)
{
  ccLock lock(rootMutex());
  return cf_inverseMap(imageFrame_->screenMap_, p);
}

ccPoint ccDisplay::imageToDisplay(ccPoint const& p)
{
  ccLock lock(rootMutex());
  return imageFrame_->screenMap_.mapPoint(p);
}

ccPoint ccDisplay::displayToClient(ccPoint const& p)
{
  ccLock lock(rootMutex());
  return cf_inverseMap(clientFrame_->screenMap_, p);
}

ccPoint ccDisplay::clientToDisplay(ccPoint const& p)
{
  ccLock lock(rootMutex());
  return clientFrame_->screenMap_.mapPoint(p);
}
