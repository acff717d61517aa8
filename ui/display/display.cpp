#include "ui/display/display.h"

#include "acquisition/acq_image.h"
#include "canvas/ui_error.h"
#include "foundation/exception_impl.h"
#include "foundation/pel_ops.h"
#include "ui/core/event_processor.h"
#include "ui/core/node_walk.h"
#include "ui/core/root.h"
#include "ui/core/shapes.h"
#include "ui/display/flag_hold.h"

#include <algorithm>
#include <cmath>

KRS_DEFINE_EXCEPTION(ccDisplay::BadFifo, ccException, 0x10004518)

namespace {

constexpr double kMaxMag = 65536.0;
constexpr double kMinEdge = 8.0;  // pels that the image's shorter edge keeps when it is zoomed out

long cf_orOne(long v) { return v == 0 ? 1 : v; }

template <class T>
bool cf_sizeDiffers(ccPelBuffer_const<T> const& former, ccPelBuffer_const<T> const& now)
{
  return former.isBound() && now.isBound() && former.size() != now.size();
}

}  // namespace

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
    frame->condVisible(false);
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

// ---- Images ----

template <class T> struct ccDisplay::cs_Arrival {
  ccPelBuffer_const<T> buffer;
  ccPtrHandle_const<cc2XformBase> cached;  // a map that isn't linear, else null
  ccXform<2> imageFromClient;
};

// Checks an image before anything changes. False: it is dropped, as the display is being dragged.
template <class T> bool ccDisplay::arrive_(ccPelBuffer_const<T> const& b, cs_Arrival<T>& arrival)
{
  if (dragging()) {
    // The drag's picture stays on top.
    if (root()) {
      ccUIEventProcessor& events = *root()->eventProcessor();
      ccUIObject::dragAnimate(events.anchor(), events.lastMousePos());
    }
    return false;
  }
  arrival.buffer = b;
  cc2XformBase const& clientFromImage = *b.clientFromImageXformBase();
  if (!clientFromImage.isLinear() && b.isBound()) {
    long const columns = std::min(b.width(), 8L), rows = std::min(b.height(), 8L);
    double const stepX = static_cast<double>(b.width()) / static_cast<double>(columns);
    double const stepY = static_cast<double>(b.height()) / static_cast<double>(rows);
    std::vector<ccVector<2>> from, to;
    for (long y = 0; y < rows; ++y)
      for (long x = 0; x < columns; ++x) {
        ccVector<2> const p(static_cast<double>(b.offset().x()) + static_cast<double>(x) * stepX,
                            static_cast<double>(b.offset().y()) + static_cast<double>(y) * stepY);
        from.push_back(p);
        to.push_back(clientFromImage.mapPoint(p));
      }
    arrival.cached = b.clientFromImageXformBase();
    arrival.buffer.clientFromImageXform(cc2XformPoly(from, to, 1).linearXform(ccVector<2>(0, 0)));
  }
  if (b.isBound())
    arrival.imageFromClient = arrival.buffer.imageFromClientXform();
  return true;
}

template <class T>
void ccDisplay::store_(cs_Arrival<T>& arrival, ccPelBuffer_const<T>& member, bool sizeChanged, bool mapPels)
{
  member = arrival.buffer;
  mapPels_ = mapPels;
  xformCache_.xform(arrival.cached);
  imageChanged();
  imageLowLevel(sizeChanged, member.width(), member.height(), member.isBound(), arrival.imageFromClient);
}

void ccDisplay::image(ccPelBuffer_const<unsigned char> const& b, bool mapPels)
{
  ccLock lock(rootMutex());
  cs_Arrival<unsigned char> arrival;
  if (!arrive_(b, arrival))
    return;
  cc_ScreenLock const screen(this, bothLayers);
  if (colorMapEx_.size() != 256 || colorMap_.size() != 256)
    rebuildMaps_();
  bool const sizeChanged = !hasImage() || cf_sizeDiffers(image8_, b);
  imageRGB16_.setUnbound();
  imageRGB32_.setUnbound();
  // image16_ stays on purpose: a 16-bit grey image stays behind an 8-bit one until it is replaced.
  store_(arrival, image8_, sizeChanged, mapPels);
}

void ccDisplay::image(ccPelBuffer_const<unsigned short> const& b, long bits)
{
  ccLock lock(rootMutex());
  cs_Arrival<unsigned short> arrival;
  if (!arrive_(b, arrival))
    return;
  // The new map, the maps of the frames and the picture reach the screen together.
  cc_ScreenLock const screen(this, bothLayers);
  windowMap_(b, bits);
  bool const sizeChanged = !hasImage() || cf_sizeDiffers(image16_, b);
  image8_.setUnbound();
  imageRGB16_.setUnbound();
  imageRGB32_.setUnbound();
  store_(arrival, image16_, sizeChanged, true);
}

void ccDisplay::image(ccPelBuffer_const<ccPackedRGB16Pel> const& b)
{
  ccLock lock(rootMutex());
  if (displayFormat() != format16)
    return;
  cs_Arrival<ccPackedRGB16Pel> arrival;
  if (!arrive_(b, arrival))
    return;
  bool const sizeChanged = !hasImage() || cf_sizeDiffers(imageRGB16_, b);
  image8_.setUnbound();
  image16_.setUnbound();
  imageRGB32_.setUnbound();
  store_(arrival, imageRGB16_, sizeChanged, true);
}

void ccDisplay::image(ccPelBuffer_const<ccPackedRGB32Pel> const& b)
{
  ccLock lock(rootMutex());
  if (displayFormat() != format32)
    return;
  cs_Arrival<ccPackedRGB32Pel> arrival;
  if (!arrive_(b, arrival))
    return;
  bool const sizeChanged = !hasImage() || cf_sizeDiffers(imageRGB32_, b);
  image8_.setUnbound();
  image16_.setUnbound();
  imageRGB16_.setUnbound();
  store_(arrival, imageRGB32_, sizeChanged, true);
}

bool ccDisplay::image(ccPtrHandle<ccAcqImage> acquired, ccXform<2>* clientFromImage)
{
  ccLock lock(rootMutex());
  auto const show = [&](auto buffer, auto... rest) {
    if (clientFromImage)
      buffer.clientFromImageXform(*clientFromImage);
    image(buffer, rest...);
    return true;
  };
  DisplayFormat const format = displayFormat();
  if (format == format32 && acquired->isColor() && acquired->canConvert(ceImageFormatRGB32))
    return show(ccPelBuffer_const<ccPackedRGB32Pel>(acquired->getPackedRGB32PelBuffer()));
  if (format == format16 && acquired->isColor() && acquired->canConvert(ceImageFormatRGB16))
    return show(ccPelBuffer_const<ccPackedRGB16Pel>(acquired->getPackedRGB16PelBuffer()));
  if (acquired->intensityBits() > 8 && acquired->canConvert(ceImageFormatGrey16))
    return show(ccPelBuffer_const<unsigned short>(acquired->getGrey16PelBuffer()), acquired->intensityBits());
  if (acquired->canConvert(ceImageFormatGrey8))
    return show(ccPelBuffer_const<unsigned char>(acquired->getGrey8PelBuffer()), true);
  return false;
}

void ccDisplay::rebuildMaps_()
{
  if (displayFormat() != format8) {
    std::vector<ccRGB> ramp(256);
    for (std::size_t i = 0; i < ramp.size(); ++i)
      ramp[i] = ccRGB(static_cast<unsigned char>(i), static_cast<unsigned char>(i), static_cast<unsigned char>(i));
    colorMapEx(ramp);
    return;
  }
  colorMap_.resize(256);
  for (std::size_t i = 0; i <= 230; ++i) {
    auto const grey = static_cast<unsigned char>(10 + i);
    colorMap_[i] = ccRGB(grey, grey, grey);
  }
  showPalette_();
}

// The window of grey values from the lowest to the highest pel, spread over the whole range.
void ccDisplay::windowMap_(ccPelBuffer_const<unsigned short> const& b, long bits)
{
  // 14 bits get the whole table with a white rest: a table of 16384 is no valid size of a map.
  std::size_t const used = bits == 8 ? 256 : bits == 10 ? 1024 : bits == 12 ? 4096 : bits == 14 ? 16384 : 65536;
  std::size_t const size = bits == 14 ? 65536 : used;
  unsigned short lowest = 0, highest = 0;
  cfPelMinmax(b, lowest, highest);
  scratchMap_.assign(size, ccRGB(255, 255, 255));
  std::fill_n(scratchMap_.begin(), std::min<std::size_t>(lowest, used), ccRGB());
  unsigned const run = (static_cast<unsigned>(highest) - lowest) / 256u + 1;
  for (std::size_t i = lowest; i <= highest && i < used; ++i) {
    auto const grey = static_cast<unsigned char>((i - lowest) / run);
    scratchMap_[i] = ccRGB(grey, grey, grey);
  }
  if (scratchMap_ != colorMapEx_)
    colorMapEx(scratchMap_);
}

void ccDisplay::defaultPanRanges_(long w, long h)
{
  ccPair<long> const area = ccUITablet::size();
  ccPair<double> const reach(static_cast<double>(std::max(area.x(), w)), static_cast<double>(std::max(area.y(), h)));
  minPan_ = -reach;
  maxPan_ = reach;
  updatePanRanges();
}

void ccDisplay::pushOverlayRepaint_(bool on)
{
  overlayRepaint_.push(on);
  displayFrame_->overlayRepaint_.push(on);
  imageFrame_->overlayRepaint_.push(on);
  clientFrame_->overlayRepaint_.push(on);
}

void ccDisplay::popOverlayRepaint_()
{
  overlayRepaint_.pop();
  displayFrame_->overlayRepaint_.pop();
  imageFrame_->overlayRepaint_.pop();
  clientFrame_->overlayRepaint_.pop();
}

void ccDisplay::imageLowLevel(bool sizeChanged, long w, long h, bool bound, ccXform<2> const& imageFromClient)
{
  if (defaultPan_)
    defaultPanRanges_(w, h);
  pushOverlayRepaint_(false);
  if (!bound) {
    imageFrame_->parentFromChild(ccXform<2>::I);
    clientFrame_->parentFromChild(ccXform<2>::I);
    cc_ScreenLock const screen(this, bothLayers);
    fullDraw(imageLayer);
    updateDisplay(imageLayer);
  } else {
    ccXform<2> const displayFromImage(ccMatrix<2>(), -ccVector<2>(imageOffset()));
    imageFrame_->updatePrevXform();
    clientFrame_->updatePrevXform();
    if (displayFromImage != imageFrame_->parentFromChild()) {
      imageFrame_->parentFromChild(displayFromImage);
      sizeChanged = true;
    }
    ccXform<2> const displayFromClient = displayFromImage * imageFromClient;
    if (displayFromClient != clientFrame_->parentFromChild()) {
      clientFrame_->parentFromChild(displayFromClient);
      sizeChanged = true;
    }
    if (dragging())
      fullDraw(imageLayer);
    else if (sizeChanged) {
      pushOverlayRepaint_(true);
      pan(pan_);
      popOverlayRepaint_();
    } else {
      // A new image of the same geometry repaints the image layer only.
      Layers const former = redrawLayer_;
      redrawLayer_ = imageLayer;
      pan(pan_);
      redrawLayer_ = former;
    }
  }
  popOverlayRepaint_();
}

void ccDisplay::removeImage()
{
  if (image8_.isBound())
    image8_.setUnbound();
  else if (image16_.isBound())
    image16_.setUnbound();
  else if (imageRGB16_.isBound())
    imageRGB16_.setUnbound();
  else if (imageRGB32_.isBound())
    imageRGB32_.setUnbound();
  else
    return;
  fullDraw(bothLayers);
}

// ---- Zoom and pan ----

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
  disableDrawing();
  scaleExact(ccPair<double>(m, m));
  pan(pan_);
  enableDrawing(true);
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
  disableDrawing();
  pan(ccVector<2>(0, 0));
  ccPair<double> const client(clientArea());
  double ratio = 1.0;
  if (client.x() != 0 && client.y() != 0) {
    ratio = std::min(client.x() / iw, client.y() / ih);
    if (ratio < 1.0)
      ratio = -1.0 / ratio - 1.0;
  }
  mag(cfTruncToLong(ratio));
  enableDrawing(true);
}

void ccDisplay::fitExact()
{
  ccLock lock(rootMutex());
  ccPair<long> const size = hasImage() ? imageSize() : ccUITablet::size();
  double const iw = static_cast<double>(cf_orOne(size.x())), ih = static_cast<double>(cf_orOne(size.y()));
  cc_ScreenLock const screen(this, bothLayers);
  disableDrawing();
  pan(ccVector<2>(0, 0));
  enableDrawing(false);
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
  {
    cc_ScreenLock const screen(this, bothLayers);
    baseMap(ccXform<2>(ccMatrix<2>(), shift) * baseMap_);
    if (!drawingDisabled_) {
      handleDraggingXformChange();
      if (redrawLayer_ == bothLayers) {
        fullDraw(bothLayers);
        if (root()) {
          ccUIEventProcessor& events = *root()->eventProcessor();
          ccUIObject* const owner = events.owner();
          if (owner && owner->shapes(true) && owner->dragging())
            owner->dragAnimate(events.anchor(), events.lastMousePos());
        }
      } else
        updateDisplay(redrawLayer_);
    }
  }
  panChanged();
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
  disableDrawing();
  ccUIRect const whole(ccPair<long>(0, 0), ccUITablet::size());
  displayFrame_->scopeRect(whole);
  imageFrame_->scopeRect(whole);
  clientFrame_->scopeRect(whole);
  ccUIControlFrame::resize_();  // attached kids follow
  if (defaultPan_)
    defaultPanRanges_(imageSize().x(), imageSize().y());
  pan(pan_);
  enableDrawing(true);
}

// ---- Drawing ----

void ccDisplay::disableDrawing()
{
  ccLock lock(rootMutex());
  drawEnabled_.push(false);
  displayFrame_->drawEnabled_.push(false);
  imageFrame_->drawEnabled_.push(false);
  clientFrame_->drawEnabled_.push(false);
  drawingDisabled_ = !drawEnabled_.top();
}

void ccDisplay::enableDrawing(bool redraw)
{
  ccLock lock(rootMutex());
  drawEnabled_.pop();
  displayFrame_->drawEnabled_.pop();
  imageFrame_->drawEnabled_.pop();
  clientFrame_->drawEnabled_.pop();
  drawingDisabled_ = !drawEnabled_.top();
  if (redraw && !(!drawingDisabled_ && askDerivedDisplayToDoFullDraw()))
    fullDraw(bothLayers);
}

void ccDisplay::updateDisplay(Layers layer)
{
  if (drawingDisabled_)
    return;
  cc_ScreenLock const screen(this, layer);
  if (layer == bothLayers) {
    update(imageLayer);
    update(overlayLayer);
  } else
    update(layer);
  ccUIEventProcessor* const events = root() ? root()->eventProcessor() : nullptr;
  ccUIObject* const owner = events ? events->owner() : nullptr;
  if (owner && owner->dragging()) {
    bool const onOverlay = owner->drawLayer() == overlayLayer;
    if (onOverlay)
      pushOverlayRepaint_(true);
    std::uint32_t const key = owner->key();
    owner->dragAnimate(events->anchor(), events->lastMousePos());
    if (isValid(owner, key, root()) && owner->tablet())
      owner->tablet()->dragDel(ccPair<long>(0, 0));
    if (onOverlay)
      popOverlayRepaint_();
  }
}

void ccDisplay::drawImage()
{
  cc_FlagHold const quiet(layerRepaint_, false);
  cc_ScreenLock const screen(this, imageLayer);
  ccPoint const origin(0, 0);
  if (!hasImage())
    set(ccColor::dkGreyColor(), imageLayer);
  else {
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
  if (root())
    root()->colorMap(colorMap_);
  redraw(bothLayers);
  updateDisplay(bothLayers);
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
  colorMapEx_ = map;
  if (root())
    root()->colorMapEx(colorMapEx_);
  redraw(bothLayers);
  updateDisplay(bothLayers);
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
  ccUIControlFrame::select(state, nested);
  if (root())
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
