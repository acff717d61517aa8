// Images: checked, stored, and shown where their size and transform put them.
#include "acquisition/acq_image.h"
#include "foundation/pel_ops.h"
#include "ui/core/event_processor.h"
#include "ui/core/node_walk.h"
#include "ui/core/root.h"
#include "ui/display/display_hold.h"

#include <algorithm>

namespace {

template <class T>
bool cf_sizeDiffers(ccPelBuffer_const<T> const& former, ccPelBuffer_const<T> const& now)
{
  return former.isBound() && now.isBound() && former.size() != now.size();
}

}  // namespace

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
  cc_DisplayHold const self(*this);
  member = arrival.buffer;
  mapPels_ = mapPels;
  xformCache_.xform(arrival.cached);
  imageChanged();
  if (self.stands())
    imageLowLevel(sizeChanged, member.width(), member.height(), member.isBound(), arrival.imageFromClient);
}

void ccDisplay::image(ccPelBuffer_const<unsigned char> const& b, bool mapPels)
{
  ccLock lock(rootMutex());
  cs_Arrival<unsigned char> arrival;
  if (!arrive_(b, arrival))
    return;
  cc_ScreenLock const screen(this, bothLayers);
  cc_DisplayHold const self(*this);
  if (colorMapEx_.size() != 256 || colorMap_.size() != 256)
    rebuildMaps_();
  if (!self.stands())
    return;
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
  cc_DisplayHold const self(*this);
  windowMap_(b, bits);
  if (!self.stands())
    return;
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
  if (scratchMap_ != colorMapEx_ || mapOwed_)
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

template <class Each> void ccDisplay::onFrames_(Each const& each)
{
  for (ccUITablet* t : {static_cast<ccUITablet*>(this), static_cast<ccUITablet*>(displayFrame_),
                        static_cast<ccUITablet*>(imageFrame_), static_cast<ccUITablet*>(clientFrame_)})
    each(*t);
}

cc_OverlayRepaint::cc_OverlayRepaint(ccDisplay& d, bool on) : display_(&d), self_(&d)
{
  int pushed = 0;
  cc_OnThrow const undo([&] {
    d.onFrames_([&](ccUITablet& t) {
      if (pushed-- > 0)
        t.overlayRepaint_.pop();
    });
  });
  d.onFrames_([&](ccUITablet& t) {
    t.overlayRepaint_.push(on);
    ++pushed;
  });
}

cc_OverlayRepaint::~cc_OverlayRepaint()
{
  if (self_.exists() && !display_->dying())
    display_->onFrames_([](ccUITablet& t) { t.overlayRepaint_.pop(); });
}

void ccDisplay::imageLowLevel(bool sizeChanged, long w, long h, bool bound, ccXform<2> const& imageFromClient)
{
  cc_DisplayHold const self(*this);
  if (defaultPan_)
    defaultPanRanges_(w, h);
  if (!self.stands())
    return;
  cc_OverlayRepaint const imageOnly(*this, false);
  // Where only the image layer is repainted although the maps have moved, graphics of the overlay follow with the next update.
  ccXform<2> const maps[] = {screenMap_, imageFrame_->screenMap_, clientFrame_->screenMap_};
  bool overlayFollows = true;
  cc_AtEnd const follow([&] {
    if (overlayFollows && self.stands() &&
        (screenMap_ != maps[0] || imageFrame_->screenMap_ != maps[1] || clientFrame_->screenMap_ != maps[2]))
      ccUITablet::update(ccUIRect(screenOrigin_, ccUITablet::size()), overlayLayer, /*now=*/false);
  });
  if (!bound) {
    imageFrame_->parentFromChild(ccXform<2>::I);
    if (self.stands())
      clientFrame_->parentFromChild(ccXform<2>::I);
    if (!self.stands())
      return;
    cc_ScreenLock const screen(this, bothLayers);
    fullDraw(imageLayer);
    if (self.stands())
      updateDisplay(imageLayer);
    return;
  }
  ccXform<2> const displayFromImage(ccMatrix<2>(), -ccVector<2>(imageOffset()));
  imageFrame_->updatePrevXform();
  clientFrame_->updatePrevXform();
  if (displayFromImage != imageFrame_->parentFromChild()) {
    imageFrame_->parentFromChild(displayFromImage);
    sizeChanged = true;
  }
  if (!self.stands())
    return;
  ccXform<2> const displayFromClient = displayFromImage * imageFromClient;
  if (displayFromClient != clientFrame_->parentFromChild()) {
    clientFrame_->parentFromChild(displayFromClient);
    sizeChanged = true;
  }
  if (!self.stands())
    return;
  if (dragging())
    fullDraw(imageLayer);
  else if (sizeChanged) {
    cc_OverlayRepaint const all(*this, true);
    overlayFollows = false;
    pan(pan_);
  } else {
    // A new image of the same geometry repaints the image layer only.
    Layers const former = redrawLayer_;
    cc_AtEnd const restore([&] {
      if (self.stands())
        redrawLayer_ = former;
    });
    redrawLayer_ = imageLayer;
    pan(pan_);
  }
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

