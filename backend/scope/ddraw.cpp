#include "backend/scope/ddraw.h"

#include "platform/objects.h"
#include "platform/window.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

// The machine's own rectangle and ours have the same four 32-bit edges.
struct cs_RectArgument {
  plat::Rect rect;
  bool given = false;

  explicit cs_RectArgument(RECT const* r) : given(r != nullptr)
  {
    if (r)
      std::memcpy(&rect, static_cast<void const*>(r), sizeof rect);
  }
  explicit cs_RectArgument(ccUIRect const& r)
      : rect{static_cast<plat::i32>(r.left()), static_cast<plat::i32>(r.top()), static_cast<plat::i32>(r.right()),
             static_cast<plat::i32>(r.bottom())},
        given(true)
  {
  }
  plat::Rect const* get() const { return given ? &rect : nullptr; }
};

// What the machine does for want of memory is an answer too: nothing of this layer throws.
template <class Call> long answered(Call&& call)
{
  try {
    return call();
  } catch (std::bad_alloc const&) {
    return ceDDOutOfMemory;
  }
}

}  // namespace

// --- ccDirectDrawObject

ccDirectDrawObject::~ccDirectDrawObject()
{
  if (owner_)
    owner_->forget_(this);
  if (former_ && former_ != owner_)
    former_->forget_(this);
}

long ccDirectDrawObject::create(ccDirectDraw* ddraw)
{
  if (created())
    return ceDDAlreadyCreated;
  if (ddraw && !ddraw->makeRoom_())
    return ceDDOutOfMemory;
  long const result = answered([&] { return create_(ddraw); });
  if (result != ceDDOk)
    return result;
  if (former_ && former_ != ddraw)
    former_->forget_(this);
  owner_ = former_ = ddraw;
  ddraw->remember_(this);
  return ceDDOk;
}

long ccDirectDrawObject::release()
{
  if (!created())
    return ceDDInvalidObject;
  release_();
  owner_ = nullptr;
  return ceDDOk;
}

// --- ccDirectDrawClipper

ccDirectDrawClipper::~ccDirectDrawClipper() { release(); }

long ccDirectDrawClipper::create_(ccDirectDraw* ddraw)
{
  if (!ddraw || !ddraw->device())
    return ceDDInvalidObject;
  long const result = ddraw->device()->createClipper(clipper_);
  if (result != ceDDOk)
    clipper_.reset();
  return result;
}

long ccDirectDrawClipper::window(HWND window) { return clipper_ ? clipper_->window(window) : ceDDInvalidObject; }

// --- ccDirectDrawPalette

ccDirectDrawPalette::~ccDirectDrawPalette() { release(); }

long ccDirectDrawPalette::create_(ccDirectDraw* ddraw)
{
  if (!ddraw || !ddraw->device())
    return ceDDInvalidObject;
  constexpr std::uint32_t eightBitAllow256 = 68;
  constexpr unsigned char noCollapse = 4;
  std::vector<plat::PaletteEntry> const system = plat::platform().objects.systemEntries();
  plat::PaletteEntry entries[256];
  std::copy_n(system.begin(), std::min<std::size_t>(system.size(), 256), entries);
  for (plat::PaletteEntry& e : entries)
    e.flags = noCollapse;
  long const result = ddraw->device()->createPalette(eightBitAllow256, entries, palette_);
  if (result != ceDDOk)
    palette_.reset();
  return result;
}

long ccDirectDrawPalette::getPalette(plat::PaletteEntry* entries, std::uint32_t start, std::uint32_t count)
{
  if (!palette_)
    return ceDDInvalidObject;
  return palette_->get(start, std::span<plat::PaletteEntry>(entries, count));
}

long ccDirectDrawPalette::setPalette(plat::PaletteEntry const* entries, std::uint32_t start, std::uint32_t count)
{
  if (!palette_)
    return ceDDInvalidObject;
  return answered([&] { return palette_->set(start, std::span<plat::PaletteEntry const>(entries, count)); });
}

// --- ccDirectDrawSurface

ccDirectDrawSurface::~ccDirectDrawSurface() { release(); }

long ccDirectDrawSurface::create_(ccDirectDraw* ddraw)
{
  if (surface_)
    return ceDDAlreadyCreated;
  if (!ddraw || !ddraw->device())
    return ceDDInvalidObject;
  desc_.surface(nullptr);
  createDesc_ = desc_;
  long result = ddraw->device()->createSurface(desc_.record(), surface_);
  if (result == ceDDOk)
    result = surface_->describe(desc_.record());
  desc_.surface(nullptr);
  if (result != ceDDOk)
    surface_.reset();
  return result;
}

void ccDirectDrawSurface::release_()
{
  if (palette_)
    surface_->setPalette(nullptr);
  if (clipper_)
    surface_->setClipper(nullptr);
  palette_ = nullptr;
  clipper_ = nullptr;
  surface_.reset();
  desc_.surface(nullptr);
}

ccUIRect ccDirectDrawSurface::bounds() const
{
  return created() ? ccUIRect(0, 0, static_cast<long>(desc_.width()), static_cast<long>(desc_.height())) : ccUIRect();
}

long ccDirectDrawSurface::recreate()
{
  release();
  desc_ = createDesc_;
  return create(formerDirectDraw());
}

// The screen that comes back may be of another mode, and the description tells of it.
long ccDirectDrawSurface::restore()
{
  if (!surface_)
    return ceDDInvalidObject;
  long const result = surface_->restore();
  if (result == ceDDOk)
    describe_();
  return result;
}

void ccDirectDrawSurface::describe_()
{
  void* const locked = desc_.surface();
  static_cast<void>(surface_->describe(desc_.record()));
  desc_.surface(locked);
}

bool ccDirectDrawSurface::isLost() const { return surface_ && surface_->isLost() == ceDDSurfaceLost; }

long ccDirectDrawSurface::lock(RECT const* r) { return lock_(cs_RectArgument(r).get()); }
long ccDirectDrawSurface::lock(ccUIRect const& r) { return lock_(cs_RectArgument(r).get()); }

long ccDirectDrawSurface::lock_(plat::Rect const* rect)
{
  if (!surface_)
    return ceDDInvalidObject;
  if (desc_.surface())
    return ceDDSurfaceBusy;
  constexpr std::uint32_t wait = 1;
  long const result = answered([&] { return surface_->lock(rect, desc_.record(), wait); });
  if (result != ceDDOk)
    desc_.surface(nullptr);
  lastLock_ = desc_.surface();
  return result;
}

long ccDirectDrawSurface::unlock(RECT const* r)
{
  if (!surface_)
    return ceDDInvalidObject;
  if (!desc_.surface())
    return ceDDNotLocked;
  cs_RectArgument const rect(r);
  long result = surface_->unlock(rect.get());
  if (result != ceDDOk)
    result = surface_->unlock(rect.get());  // left locked, it could never be used again
  desc_.surface(nullptr);
  return result;
}

long ccDirectDrawSurface::getDC(HDC* dc)
{
  if (!surface_ || !dc)
    return ceDDInvalidObject;
  long const result = answered([&] { return surface_->getDC(*dc); });
  if (result != ceDDOk) {
    // The failed state stays in force until a release, be it of nothing.
    surface_->releaseDC(nullptr);
    *dc = nullptr;
  }
  return result;
}

long ccDirectDrawSurface::releaseDC(HDC dc)
{
  if (!surface_)
    return ceDDInvalidObject;
  long const result = surface_->releaseDC(dc);
  return result == ceDDOk || !dc ? result : surface_->releaseDC(dc);  // as for unlock
}

long ccDirectDrawSurface::blt(ccDirectDrawSurface const* source, RECT const* sourceRect, RECT const* destRect,
                              std::uint32_t flags)
{
  return blt_(source, cs_RectArgument(sourceRect).get(), cs_RectArgument(destRect).get(), flags);
}

long ccDirectDrawSurface::blt(ccDirectDrawSurface const* source, ccUIRect const& sourceRect, ccUIRect const& destRect,
                              std::uint32_t flags)
{
  return blt_(source, cs_RectArgument(sourceRect).get(), cs_RectArgument(destRect).get(), flags);
}

long ccDirectDrawSurface::blt_(ccDirectDrawSurface const* source, plat::Rect const* sourceRect,
                               plat::Rect const* destRect, std::uint32_t flags)
{
  if (!surface_ || !source || !source->surface_)
    return ceDDInvalidObject;
  return answered([&] { return surface_->blt(destRect, source->surface_.get(), sourceRect, flags, 0); });
}

long ccDirectDrawSurface::bltColorFill(RECT const* r, std::uint32_t value, std::uint32_t flags)
{
  return fill_(cs_RectArgument(r).get(), value, flags);
}

long ccDirectDrawSurface::bltColorFill(ccUIRect const& r, std::uint32_t value, std::uint32_t flags)
{
  return fill_(cs_RectArgument(r).get(), value, flags);
}

long ccDirectDrawSurface::fill_(plat::Rect const* rect, std::uint32_t value, std::uint32_t flags)
{
  if (!surface_)
    return ceDDInvalidObject;
  return answered([&] { return surface_->blt(rect, nullptr, nullptr, flags | ceBltColorFill, value); });
}

long ccDirectDrawSurface::bltStatus(std::uint32_t flags) { return surface_ ? surface_->bltStatus(flags) : ceDDInvalidObject; }

long ccDirectDrawSurface::colorKey(ccDirectDrawColorKey const& key, std::uint32_t type)
{
  constexpr std::uint32_t range = 1;
  if (!surface_)
    return ceDDInvalidObject;
  return surface_->setColorKey(key.low() == key.high() ? type : type | range, key.record());
}

long ccDirectDrawSurface::attach(ccDirectDrawClipper* clipper)
{
  if (!surface_ || (clipper && !clipper->created()))
    return ceDDInvalidObject;
  long const result = answered([&] { return surface_->setClipper(clipper ? clipper->clipper() : nullptr); });
  if (result == ceDDOk)
    clipper_ = clipper;
  return result;
}

long ccDirectDrawSurface::attach(ccDirectDrawPalette* palette)
{
  if (!surface_ || (palette && !palette->created()))
    return ceDDInvalidObject;
  long const result = answered([&] { return surface_->setPalette(palette ? palette->palette() : nullptr); });
  if (result == ceDDOk)
    palette_ = palette;
  return result;
}

long ccDirectDrawSurface::caps(ccDirectDrawSurfaceCaps& out) const
{
  if (!surface_)
    return ceDDInvalidObject;
  out = desc_.surfaceCaps();
  return ceDDOk;
}

long ccDirectDrawSurface::copy(ccDirectDrawSurface& source)
{
  if (!surface_ || !source.surface_)
    return ceDDInvalidObject;
  if (&source == this)
    return ceDDOk;
  std::uint32_t const bits = desc_.pixelFormat().bitCount();
  if (bits != source.desc_.pixelFormat().bitCount())
    return ceDDInvalidPixelFormat;
  long result = source.lock();
  if (result != ceDDOk)
    return result;
  result = lock();
  if (result == ceDDOk) {
    std::size_t const row = static_cast<std::size_t>(std::min(desc_.width(), source.desc_.width())) * bits / 8;
    std::size_t const rows = std::min(desc_.height(), source.desc_.height());
    unsigned char* to = desc_.surface();
    unsigned char const* from = source.desc_.surface();
    if (desc_.pitch() == source.desc_.pitch() && static_cast<std::ptrdiff_t>(row) == desc_.pitch())
      std::memcpy(to, from, row * rows);
    else
      for (std::size_t y = 0; y < rows; ++y, to += desc_.pitch(), from += source.desc_.pitch())
        std::memcpy(to, from, row);
    unlock();
  }
  source.unlock();
  return result;
}

long ccDirectDrawSurface::updateOverlay(ccDirectDrawSurface& overlay, RECT const* sourceRect, RECT const* destRect,
                                        std::uint32_t flags)
{
  return updateOverlay_(overlay, cs_RectArgument(sourceRect).get(), cs_RectArgument(destRect).get(), flags);
}

long ccDirectDrawSurface::updateOverlay(ccDirectDrawSurface& overlay, ccUIRect const& sourceRect,
                                        ccUIRect const& destRect, std::uint32_t flags)
{
  return updateOverlay_(overlay, cs_RectArgument(sourceRect).get(), cs_RectArgument(destRect).get(), flags);
}

long ccDirectDrawSurface::updateOverlay_(ccDirectDrawSurface& overlay, plat::Rect const* sourceRect,
                                         plat::Rect const* destRect, std::uint32_t flags)
{
  if (!surface_ || !overlay.surface_)
    return ceDDInvalidObject;
  long const result =
      answered([&] { return overlay.surface_->updateOverlay(sourceRect, surface_.get(), destRect, flags); });
  overlay.describe_();
  return result;
}

// --- ccDirectDraw

ccDirectDraw::~ccDirectDraw()
{
  release();
  for (ccDirectDrawObject* object : objects_)
    object->owner_ = object->former_ = nullptr;
}

long ccDirectDraw::create(HWND window)
{
  if (created())
    return ceDDAlreadyCreated;
  long const result = answered([&] { return create_(window); });
  if (result != ceDDOk) {
    static_cast<void>(release());
    device_.reset();
    window_ = nullptr;
  }
  return result;
}

long ccDirectDraw::create_(HWND window)
{
  long result = plat::openDevice(window, device_);
  if (result != ceDDOk)
    return result;
  constexpr std::uint32_t normal = 8;
  window_ = window;
  result = device_->cooperativeLevel(window, normal);
  if (result == ceDDOk) {
    ccDirectDrawSurfaceCaps caps;
    caps.primarySurface(true);
    ccDirectDrawSurfaceDesc desc;
    desc.surfaceCaps(caps);
    primary_.description(desc);
    result = primary_.create(this);
  }
  if (result != ceDDOk)
    return result;
  std::vector<plat::u32> codes;
  static_cast<void>(device_->fourCCs(codes));
  fourCCs_.assign(codes.begin(), codes.end());
  return ceDDOk;
}

long ccDirectDraw::release()
{
  if (!created())
    return ceDDInvalidObject;
  for (ccDirectDrawObject* object : objects_)
    if (object->owner_ == this)
      object->release();
  fourCCs_.clear();
  device_.reset();
  window_ = nullptr;
  return ceDDOk;
}

bool ccDirectDraw::makeRoom_() noexcept
{
  try {
    if (objects_.size() == objects_.capacity())
      objects_.reserve(objects_.size() * 2 + 8);
    return true;
  } catch (std::bad_alloc const&) {
    return false;
  }
}

void ccDirectDraw::remember_(ccDirectDrawObject* object)
{
  if (std::find(objects_.begin(), objects_.end(), object) == objects_.end())
    objects_.push_back(object);
}

void ccDirectDraw::forget_(ccDirectDrawObject* object)
{
  objects_.erase(std::remove(objects_.begin(), objects_.end(), object), objects_.end());
}

long ccDirectDraw::caps(ccDirectDrawCaps& hardware, ccDirectDrawCaps& emulation)
{
  if (!device_)
    return ceDDInvalidObject;
  plat::DeviceCaps hard, soft;
  long const result = answered([&] { return device_->caps(hard, soft); });
  hardware = ccDirectDrawCaps(hard);
  emulation = ccDirectDrawCaps(soft);
  return result;
}

long ccDirectDraw::displayFormat(std::uint32_t width, std::uint32_t height, std::uint32_t depth)
{
  if (!device_)
    return ceDDInvalidObject;
  constexpr std::uint32_t exclusiveFullScreen = 21, normal = 8;
  long result = device_->cooperativeLevel(window_, exclusiveFullScreen);
  if (result != ceDDOk)
    return result;
  result = device_->setDisplayMode(width, height, depth);
  long const back = device_->cooperativeLevel(window_, normal);
  return result != ceDDOk ? result : back;
}

long ccDirectDraw::displayFormat(ccDirectDrawSurfaceDesc& out) const
{
  if (!primary_.created())
    return ceDDInvalidObject;
  // The device is asked: the description tells of the mode in which the surface was made.
  ccDirectDrawSurfaceDesc present;
  long const result = primary_.surface()->describe(present.record());
  if (result == ceDDOk)
    out = present;
  return result;
}

bool ccDirectDraw::supportsFourCC(std::uint32_t code) const
{
  return std::find(fourCCs_.begin(), fourCCs_.end(), code) != fourCCs_.end();
}

long ccDirectDraw::testCooperativeLevel() const { return device_ ? device_->testCooperativeLevel() : ceDDInvalidObject; }

long ccDirectDraw::WaitForVerticalBlank(std::uint32_t flags)
{
  return device_ ? device_->waitForVerticalBlank(flags) : ceDDInvalidObject;
}
