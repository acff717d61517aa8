#include "canvas/scope.h"

#include "canvas/scope_scratch.h"

#include <algorithm>

namespace {

// A reduction by n as a factor; a reduction that is none draws nothing.
double inverse(long n)
{
  return n > 0 ? 1.0 / static_cast<double>(n) : 0.0;
}

ccPair<double> inverse(ccPair<long> const& n)
{
  return ccPair<double>(inverse(n.x()), inverse(n.y()));
}

std::int64_t colorDistance(ccRGB const& a, ccRGB const& b)
{
  int const r = a.r - b.r;
  int const g = a.g - b.g;
  int const blue = a.b - b.b;
  return r * r + g * g + blue * blue;
}

}  // namespace

ccUIScope::ccUIScope(ccPair<long> const& size) : size_(size) {}

ccUIScope::ccUIScope(ccUIScope const& other)
    : offset_(other.offset_), size_(other.size_), current_(other.current_), nowhere_(other.nowhere_), bits_(other.bits_), changed_(other.changed_),
      displayClip_(other.displayClip_), locks_(other.locks_)
{
}

ccUIScope::~ccUIScope() = default;

void ccUIScope::window(ccUIScope const&, ccUIRect const&) {}

void ccUIScope::dragStart() {}

void ccUIScope::dragStop() {}

void ccUIScope::dragErase() {}

void ccUIScope::dragAnimate(bool) {}

void ccUIScope::lockScreenUpdatesPush(bool on)
{
  bool const before = locks_.top();
  locks_.push(on);
  if (before && !on)
    updateScreen();
}

bool ccUIScope::lockScreenUpdatesPop()
{
  if (locks_.depth() == 0)
    return false;
  bool const before = locks_.pop();
  if (before && !locks_.top())
    updateScreen();
  return before;
}

bool ccUIScope::screenUpdatesLocked() const
{
  return locks_.top();
}

void ccUIScope::optimizeDrawing(bool) {}

void ccUIScope::draw(ccGenShape const&, ccColor const&)
{
  change(ccUIRect(ccPair<long>(), size_), false);
}

void ccUIScope::draw(ccGraphic const&, ccGraphicProps const&)
{
  change(ccUIRect(ccPair<long>(), size_), false);
}

void ccUIScope::sample(ccRLEBuffer const& image, ccPoint const& at, ccPair<long> const& scale,
                       std::vector<unsigned char> const& map, bool transparent, unsigned char key)
{
  sample(image, at, inverse(scale), map, transparent, key);
}

void ccUIScope::sample(ccPelBuffer_const<ccPackedRGB32Pel> const& image, ccPoint const& at, ccPair<long> const& scale,
                       bool transparent, std::uint32_t key)
{
  sample(image, at, inverse(scale), transparent, key);
}

void ccUIScope::sample(ccPelBuffer_const<ccPackedRGB16Pel> const& image, ccPoint const& at, ccPair<long> const& scale,
                       bool transparent, std::uint16_t key)
{
  sample(image, at, inverse(scale), transparent, key);
}

void ccUIScope::sample(ccPelBuffer_const<unsigned short> const& image, ccPoint const& at, ccPair<long> const& scale,
                       bool transparent, unsigned short key)
{
  sample(image, at, inverse(scale), transparent, key);
}

void ccUIScope::sample(ccPelBuffer_const<unsigned char> const& image, ccPoint const& at, ccPair<long> const& scale,
                       bool transparent, unsigned char key, bool mapped)
{
  sample(image, at, inverse(scale), transparent, key, mapped);
}

void ccUIScope::expand(ccRLEBuffer const& image, ccPoint const& at, ccPair<long> const& scale,
                       std::vector<unsigned char> const& map, bool transparent, unsigned char key)
{
  expand(image, at, ccPair<double>(scale), map, transparent, key);
}

void ccUIScope::expand(ccPelBuffer_const<ccPackedRGB32Pel> const& image, ccPoint const& at, ccPair<long> const& scale,
                       bool transparent, std::uint32_t key, InterpolationModes mode)
{
  expand(image, at, ccPair<double>(scale), transparent, key, mode);
}

void ccUIScope::expand(ccPelBuffer_const<ccPackedRGB16Pel> const& image, ccPoint const& at, ccPair<long> const& scale,
                       bool transparent, std::uint16_t key, InterpolationModes mode)
{
  expand(image, at, ccPair<double>(scale), transparent, key, mode);
}

void ccUIScope::expand(ccPelBuffer_const<unsigned short> const& image, ccPoint const& at, ccPair<long> const& scale,
                       bool transparent, unsigned short key, InterpolationModes mode)
{
  expand(image, at, ccPair<double>(scale), transparent, key, mode);
}

void ccUIScope::expand(ccPelBuffer_const<unsigned char> const& image, ccPoint const& at, ccPair<long> const& scale,
                       bool transparent, unsigned char key, bool mapped, InterpolationModes mode)
{
  expand(image, at, ccPair<double>(scale), transparent, key, mapped, mode);
}

void ccUIScope::fill(ccPoint const&, ccColor const&, ccColor const&, bool) {}

bool ccUIScope::isNull() const
{
  return size_.x() <= 0 || size_.y() <= 0;
}

ccPair<long> ccUIScope::size() const
{
  return size_;
}

void ccUIScope::colorMap(std::vector<ccRGB> const&) {}

void ccUIScope::colorMapEx(std::vector<ccRGB> const&) {}

void ccUIScope::newDisplayClipRect(ccUIRect const& r)
{
  displayClip_ = r;
}

void ccUIScope::move(ccUIScope const& parent, ccUIRect const& r)
{
  ccUIRect const cut = r & ccUIRect(parent.clientOffset(), parent.size());
  offset_ = cut.ul() - r.ul();
  size_ = cut.sz();
  clearChange();
  window(parent, cut - parent.clientOffset());
}

void ccUIScope::subset(ccUIScope const& parent, ccUIRect const& r)
{
  ccUIRect const cut = r & ccUIRect(parent.clientOffset(), parent.size());
  offset_ = cut.ul();
  size_ = cut.sz();
  clearChange();
  window(parent, cut - parent.clientOffset());
}

void ccUIScope::drawStart(ccPoint const& p)
{
  nowhere_ = !isPlace(p);
  if (!nowhere_)
    current_ = ccPair<long>(xCoord(p), yCoord(p));
}

void ccUIScope::moveToRel(long dx, long dy)
{
  auto const moved = [](std::int64_t from, std::int64_t by) {
    constexpr std::int64_t far = ccUIRect::kFar;
    return static_cast<long>(std::clamp(from + std::clamp(by, -2 * far, 2 * far), -far, far));
  };
  current_ = ccPair<long>(moved(current_.x(), dx), moved(current_.y(), dy));
}

void ccUIScope::allChange()
{
  bits_ |= kAllChanged;
  changed_ = ccUIRect(ccPair<long>(), size_);
}

void ccUIScope::change(ccUIRect r, bool isOpaque)
{
  if (r.isNull())
    return;
  changed_ |= r;
  bits_ |= kModified;
  if (isOpaque && r.contains(ccUIRect(ccPair<long>(), size_)))
    bits_ |= kOpaque;
}

void ccUIScope::modified(bool on)
{
  bits_ = on ? bits_ | kModified : bits_ & ~unsigned(kModified);
}

void ccUIScope::opaque(bool on)
{
  bits_ = on ? bits_ | kOpaque : bits_ & ~unsigned(kOpaque);
}

void ccUIScope::recording(bool on)
{
  bits_ = on ? bits_ | kRecording : bits_ & ~unsigned(kRecording);
}

void ccUIScope::clearChange()
{
  bits_ &= kRecording;
  changed_ = ccUIRect();
}

ccColor ccUIScope::nearestColor(ccColor const& color, std::vector<ccRGB> const& map)
{
  std::size_t const count = std::min<std::size_t>(map.size(), 256);
  unsigned char const passIndex = ccColor::passColor().index();
  if (color.isPass() && passIndex < count)
    return ccColor::paletteEntry(passIndex, map[passIndex]);
  ccRGB const wanted = color.toRGB();
  std::size_t best = count;
  std::int64_t bestDistance = 0;
  for (std::size_t i = 0; i < count; ++i) {
    if (i == passIndex)
      continue;
    std::int64_t const d = colorDistance(wanted, map[i]);
    if (best == count || d < bestDistance) {
      best = i;
      bestDistance = d;
    }
  }
  if (best == count)
    return ccColor::paletteEntry(color.index(), wanted);  // an empty map has nothing nearer
  return ccColor::paletteEntry(static_cast<unsigned char>(best), map[best]);
}
