#include "ui/shapes/icon.h"

#include "canvas/tablet.h"
#include "foundation/resource.h"
#include "foundation/rounding.h"

#include <cmath>
#include <cstring>

namespace {

// For pictures whose own map has no place for the client's colour. One for each thread, as displays draw under locks of their
// own.
std::vector<unsigned char>& cf_defaultMap()
{
  static thread_local std::vector<unsigned char> map;
  if (map.empty())
    for (int i = 0; i < 256; ++i)
      map.push_back(static_cast<unsigned char>(i));
  return map;
}

// Gives an entry of a map another value for a scope.
class cc_MapEntry {
public:
  cc_MapEntry(unsigned char& entry, unsigned char value) : entry_(entry), former_(entry) { entry_ = value; }
  cc_MapEntry(cc_MapEntry const&) = delete;
  cc_MapEntry& operator=(cc_MapEntry const&) = delete;
  ~cc_MapEntry() { entry_ = former_; }

private:
  unsigned char& entry_;
  unsigned char const former_;
};

ccVector<2> cf_mapBack(ccXform<2> const& map, ccVector<2> const& v)
{
  double const det = map.matrix().determinant();
  return std::isfinite(det) && det != 0 ? map.inverse().mapVector(v) : ccVector<2>();
}

constexpr double kFarthest = 1e9;  // pels; beyond that nothing is drawn or touched

bool cf_isNear(ccVector<2> const& v) { return std::fabs(v.x()) <= kFarthest && std::fabs(v.y()) <= kFarthest; }

}  // namespace

ccUIRLEBuffer::ccUIRLEBuffer(ccUIObject* above) : ccUIPointShapeBase(above) {}

ccUIRLEBuffer::~ccUIRLEBuffer() { beginDestruction(); }

void ccUIRLEBuffer::redraw_(bool erase)
{
  update(/*withKids=*/true, erase, nullptr, cc_TabletEnums::bothLayers);
}

void ccUIRLEBuffer::rleBuffer(ccRLEBuffer const& picture)
{
  ccLock lock(rootMutex());
  rle_ = picture;
  redraw_(/*erase=*/true);
}

void ccUIRLEBuffer::origin(ccPoint const& p)
{
  ccLock lock(rootMutex());
  origin_ = p;
  redraw_(/*erase=*/true);
}

void ccUIRLEBuffer::colorMap(std::vector<unsigned char>& map)
{
  ccLock lock(rootMutex());
  colorMap_.swap(map);
  map.clear();
  redraw_(/*erase=*/false);
}

void ccUIRLEBuffer::clientColor(unsigned char entry)
{
  ccLock lock(rootMutex());
  clientColor_ = entry;
  redraw_(/*erase=*/false);
}

void ccUIRLEBuffer::useClientColor(bool on)
{
  ccLock lock(rootMutex());
  useClientColor_ = on;
  redraw_(/*erase=*/true);
}

void ccUIRLEBuffer::passColor(unsigned char value)
{
  ccLock lock(rootMutex());
  passColor_ = value;
  redraw_(/*erase=*/true);
}

void ccUIRLEBuffer::passThrough(bool on)
{
  ccLock lock(rootMutex());
  passThrough_ = on;
  redraw_(/*erase=*/true);
}

void ccUIRLEBuffer::dontScale(bool on)
{
  ccLock lock(rootMutex());
  dontScale_ = on;
  redraw_(/*erase=*/true);
}

// The origin counts pels of the picture: of the screen, or of an image that is zoomed.
ccVector<2> ccUIRLEBuffer::upperLeft_(ccUITablet const& canvas)
{
  return absPos() - cf_mapBack(dontScale_ ? canvas.screenMap_ : canvas.baseMap_, origin_);
}

// The map changes in place, so that drawing copies none.
void ccUIRLEBuffer::draw_(ccUITablet& canvas, ccColor const& color, DrawMode)
{
  ccPoint const at = upperLeft_(canvas);
  if (!useClientColor_ || (color.flags() & ccColor::kIndex) == 0) {
    canvas.draw(rle_, at, colorMap_, passThrough_, passColor_, dontScale_, drawLayer());
    return;
  }
  std::vector<unsigned char>& map = clientColor_ < colorMap_.size() ? colorMap_ : cf_defaultMap();
  cc_MapEntry const entry(map[clientColor_], color.index());
  canvas.draw(rle_, at, map, passThrough_, passColor_, dontScale_, drawLayer());
}

bool ccUIRLEBuffer::pictureCoords_(ccVector<2> const& p, ccPair<long>& at)
{
  ccUITablet const* const canvas = tablet();
  if (!canvas)
    return false;
  ccVector<2> const corner = upperLeft_(*canvas);
  if (!cf_isNear(canvas->screenMap_ * corner) || !cf_isNear(canvas->screenMap_ * p))
    return false;
  at = canvas->scopeCoords(p) - canvas->scopeCoords(corner);
  if (dontScale_ || canvas->scaleMode_ == ccUITablet::scaleNone)
    return true;
  ccVector<2> const inPicture(static_cast<double>(at.x()) / canvas->scaleExact_.x(),
                              static_cast<double>(at.y()) / canvas->scaleExact_.y());
  if (!cf_isNear(inPicture))
    return false;
  at = ccPair<long>(static_cast<long>(floorT(inPicture.x())), static_cast<long>(floorT(inPicture.y())));
  return true;
}

bool ccUIRLEBuffer::isTouched(ccVector<2> const& p, double)
{
  ccPair<long> at;
  if (rle_.isNull() || !pictureCoords_(p, at))
    return false;
  if (at.x() < 0 || at.y() < 0 || at.x() >= rle_.width() || at.y() >= rle_.height())
    return false;
  return !passThrough_ || rle_.getPel(at) != passColor_;
}

ccUIIcon::ccUIIcon(ccUIObject* above) : ccUIRLEBuffer(nullptr)
{
  std::vector<unsigned char> map{0};
  dontScale(true);
  passThrough(true);
  passColor(ccColor::passColor().index());
  useClientColor(true);
  colorMap(map);
  if (above)
    parent(above);
}

void ccUIIcon::touchMap(char const* map, ccPair<long> const& origin)
{
  ccLock lock(rootMutex());
  char const* const second = map && *map ? std::strchr(map + 1, *map) : nullptr;
  touchStride_ = second ? static_cast<long>(second - map) : 0;
  touchMap_ = second ? map : nullptr;
  touchOrigin_ = origin;
}

bool ccUIIcon::isTouched(ccVector<2> const& p, double scale)
{
  if (!touchMap_)
    return ccUIRLEBuffer::isTouched(p, scale);
  ccPair<long> at;
  if (!pictureCoords_(p, at) || !cf_isNear(origin()))
    return false;
  ccPair<long> const drawn(static_cast<long>(origin().x()), static_cast<long>(origin().y()));
  return ccUITablet::iconTouched(touchMap_, at - drawn + touchOrigin_, touchStride_);
}
