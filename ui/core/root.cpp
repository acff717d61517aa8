#include "ui/core/root.h"

#include "canvas/on_throw.h"
#include "canvas/ui_error.h"
#include "foundation/leaf_mutex.h"
#include "ui/core/event_processor.h"
#include "ui/core/node_walk.h"

#include <mutex>

namespace {

constexpr long colorCount = 256;
constexpr long lowSystemEnd = 10;       // 0 to 9: system colours
constexpr long firstReserved = 241;     // 241 to 245: reserved colours, then system colours again
constexpr long lastReserved = 245;

bool cf_isReserved(long index) { return index >= firstReserved && index <= lastReserved; }

std::vector<ccRGB> cf_initialColorMap()
{
  std::vector<ccRGB> map(colorCount);
  struct {
    std::size_t index;
    ccRGB color;
  } const entries[] = {
      {0, ccColor::blackColor().toRGB()},
      {1, ccColor::dkRedColor().toRGB()},
      {2, ccColor::dkGreenColor().toRGB()},
      {3, ccRGB(128, 128, 0)},
      {4, ccRGB(0, 0, 128)},
      {5, ccRGB(128, 0, 128)},
      {6, ccRGB(0, 128, 128)},
      {7, ccColor::ltGreyColor().toRGB()},
      {8, ccRGB(192, 220, 192)},
      {9, ccRGB(166, 202, 240)},
      {241, ccColor::whiteColor().toRGB()},
      {242, ccColor::whiteColor().toRGB()},
      {243, ccColor::passColor().toRGB()},
      {244, ccColor::purpleColor().toRGB()},
      {245, ccColor::orangeColor().toRGB()},
      {246, ccRGB(255, 251, 240)},
      {247, ccColor::greyColor().toRGB()},
      {248, ccColor::dkGreyColor().toRGB()},
      {249, ccColor::redColor().toRGB()},
      {250, ccColor::greenColor().toRGB()},
      {251, ccColor::yellowColor().toRGB()},
      {252, ccColor::blueColor().toRGB()},
      {253, ccColor::magentaColor().toRGB()},
      {254, ccColor::cyanColor().toRGB()},
      {255, ccColor::whiteColor().toRGB()},
  };
  for (auto const& entry : entries)
    map[entry.index] = entry.color;
  return map;
}

}  // namespace

struct cc_RootMutex {
  ccMutex mutex{cc_LockRank::root};
  cc_RootMutex* next = nullptr;
};

namespace {

// Mutexes of roots that have gone while calls further up still held them. They are freed once nobody does.
using cc_RetiredGuard = cc_LeafMutex<cc_LockRank::retired>;
cc_RetiredGuard& cf_retiredGuard()
{
  static cc_RetiredGuard& guard = *new cc_RetiredGuard;
  return guard;
}

cc_RootMutex* retired = nullptr;

void cf_freeRetired()
{
  for (cc_RootMutex** link = &retired; *link;) {
    cc_RootMutex* const one = *link;
    if (one->mutex.lockedByMe() || !one->mutex.lock(0)) {
      link = &one->next;
      continue;
    }
    one->mutex.unlock();
    *link = one->next;
    delete one;
  }
}

}  // namespace

// The latest one stays at least until the next root goes: a thread may just be about to leave it.
void cc_RootMutexRetirer::operator()(cc_RootMutex* one) const noexcept
{
  std::lock_guard<cc_RetiredGuard> const hold(cf_retiredGuard());
  cf_freeRetired();
  one->next = retired;
  retired = one;
}

std::list<ccUIRootObject*>& ccUIRootObject::roots()
{
  static std::list<ccUIRootObject*> list;
  return list;
}

ccUIRootObject::ccUIRootObject(ccUIScope* image, ccUIScope* overlay)
    : ccUIControlFrame(image, overlay), eventProcessor_(std::make_shared<ccUIEventProcessor>(this)),
      colorMap_(cf_initialColorMap()), ownMutex_(new cc_RootMutex), mutex_(ownMutex_->mutex)
{
  // First, as it may fail: what follows has a destructor to undo it only once the root stands.
  std::list<ccUIRootObject*> place(1, this);
  rootMutex_ = &mutex_;
  cc_OnThrow const undo([this] { rootMutex_ = nullptr; });
  condVisible(true);
  condEnabled(true);
  keepSel(true);  // a root is always selected
  ccLock lock(mutex_);
  ccLock list(uiMutex());
  rootsPos_ = place.begin();
  roots().splice(roots().end(), place);
}

ccUIRootObject::~ccUIRootObject()
{
  {
    ccLock lock(mutex_, /*lockNow=*/false);
    lock.lockFirm();
    ccLock list(uiMutex(), /*lockNow=*/false);
    list.lockFirm();
    rootMutex_ = nullptr;
    eventProcessor_->rootDies_();
    eventProcessor_.reset();
    roots().erase(rootsPos_);
  }
  // The kids leave under the root's mutex, which comes before the orphans' one.
  ccLock own(mutex_, /*lockNow=*/false);
  own.lockFirm();
  ccLock lock(orphanMutex(), /*lockNow=*/false);
  lock.lockFirm();
  for (ccUIObject* kid = frontKid(); kid; kid = kid->fartherSib())
    static_cast<ccUIFrame*>(kid)->newRoot(nullptr, /*recurse=*/true);
  deleteFrameSizer_();
  for (ccUIControlFrame** plane : {&subPlane_, &groundPlane_, &floatingPlane_}) {
    ccUIControlFrame* const dying = *plane;
    *plane = nullptr;
    delete dying;
  }
}

void ccUIRootObject::createPlanes()
{
  ccLock lock(mutex_);
  if (subPlane_ && groundPlane_ && floatingPlane_)
    return;
  // The order of creation is the z-order: the sub plane at the back, the floating plane in front.
  for (ccUIControlFrame** plane : {&subPlane_, &groundPlane_, &floatingPlane_})
    if (!*plane)
      *plane = new ccUIControlFrame(this, ccUIRect::firstQuad);
  ccUIControlFrame* const inOrder[] = {groundPlane_, floatingPlane_, subPlane_};
  for (ccUIControlFrame* plane : inOrder)
    plane->condVisible(true);
  for (ccUIControlFrame* plane : inOrder)
    plane->dontMove(true);
  for (ccUIControlFrame* plane : inOrder)
    plane->keepSel(true);
}

ccUIControlFrame* ccUIRootObject::groundPlane()
{
  createPlanes();
  return groundPlane_;
}

ccUIControlFrame* ccUIRootObject::subPlane()
{
  createPlanes();
  return subPlane_;
}

ccUIControlFrame* ccUIRootObject::floatingPlane()
{
  createPlanes();
  return floatingPlane_;
}

void ccUIRootObject::cursor(Cursor c)
{
  ccLock lock(mutex_);
  cursor_ = c;
  setCursor(c);
}

void ccUIRootObject::globalUpdate()
{
  ccLock lock(mutex_);
  cc_ScreenLock const screen(this);
  if (!anyChanged(imageLayer) && !anyChanged(overlayLayer))
    return;
  refreshFrameSizer_();
  for (Layers layer : {imageLayer, overlayLayer})
    if (anyChanged(layer)) {
      update(layer);
      clearAnyChanged(layer);
    }
}

void ccUIRootObject::redraw_()
{
  Layers const layer = redrawLayer_;
  if (layer == imageLayer || layer == bothLayers)
    set(ccColor::dkGreyColor(), imageLayer);
  if (!overlaySupported() || layer == imageLayer)
    return;
  // The overlay lets the image area through and paints its surroundings.
  ccUIRect video = currentScope(imageLayer);
  if (video.isNull())
    video = videoScope_;
  set(video, ccColor::passColor(), overlayLayer);
  setComplement(video, ccColor::dkGreyColor(), overlayLayer);
  opaque(overlayLayer, true);
}

void ccUIRootObject::rootSet(ccUIRect const& r, ccColor const& c, Layers layer)
{
  ccLock lock(mutex_);
  set(r, c, layer);
  clearAnyChanged(layer);  // the write is no change to be flushed
}

// A temporary tablet makes the sketch's coordinates relative to the rectangle.

void ccUIRootObject::rootImage(ccPelBuffer_const<ccPackedRGB16Pel> const& image, ccUIRect const& r,
                               ccUISketch const& sketch, Layers layer)
{
  ccLock lock(mutex_);
  if (!r.isNull())
    draw(image.cut(0, 0, r.width(), r.height()), ccPoint(r.ul()), /*masked=*/false, ccPackedRGB16Pel(), layer);
  ccUITablet corner(*this, r);
  corner.startBehind();  // it lies in the root, so what is opaque in front of the root hides it
  corner.draw(sketch, ccPoint(0, 0), layer);
  clearAnyChanged(layer);
}

void ccUIRootObject::rootImage(ccPelBuffer_const<unsigned char> const& image, ccUIRect const& r,
                               ccUISketch const& sketch, Layers layer)
{
  ccLock lock(mutex_);
  if (!r.isNull())
    draw(image.cut(0, 0, r.width(), r.height()), ccPoint(r.ul()), /*masked=*/false, 0, /*mapPels=*/true, layer);
  ccUITablet corner(*this, r);
  corner.startBehind();  // it lies in the root, so what is opaque in front of the root hides it
  corner.draw(sketch, ccPoint(0, 0), layer);
  clearAnyChanged(layer);
}

ccRGB ccUIRootObject::reservedColor(long index) const
{
  return cf_isReserved(index) ? colorMap_[static_cast<std::size_t>(index)] : ccRGB();
}

void ccUIRootObject::reservedColor(ccRGB const& rgb, long index)
{
  ccLock lock(mutex_);
  if (cf_isReserved(index))
    colorMap_[static_cast<std::size_t>(index)] = rgb;
}

std::vector<ccRGB> ccUIRootObject::systemColorMap()
{
  ccLock lock(mutex_);
  std::vector<ccRGB> map = colorMap_;
  for (std::size_t i = lowSystemEnd; i < firstReserved; ++i)
    map[i] = ccRGB(static_cast<unsigned char>(i), static_cast<unsigned char>(i), static_cast<unsigned char>(i));
  return map;
}

void ccUIRootObject::systemColorMap(std::vector<ccRGB> const& map)
{
  if (map.size() != colorCount)
    throw ccUIError::InvalidColorMapSize();
  ccLock lock(mutex_);
  for (std::size_t i = 0; i < colorCount; ++i)
    if (i < lowSystemEnd || i >= firstReserved)
      colorMap_[i] = map[i];
}
