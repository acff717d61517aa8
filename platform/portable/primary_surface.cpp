// The screen as a surface. It has no pels of its own: a blit goes through its clipper's window into the pels of that
// window, cut with what can be seen of it and converted to the screen's depth.
#include "platform/portable/mem_surface.h"
#include "platform/portable/results.h"

#include <cstdlib>

namespace plat::portable {

namespace {

using testing::Op;

constexpr u32 fillFlag = 0x400, sourceKeyFlag = 0x8000;
constexpr i32 farthest = 1 << 29;  // rectangles beyond it can't be shifted about without overflow

bool isNear(Rect const& r)
{
  return r.left >= -farthest && r.top >= -farthest && r.right <= farthest && r.bottom <= farthest;
}

class PrimarySurface final : public Surface {
public:
  explicit PrimarySurface(std::shared_ptr<DeviceState> const& state) : state_(state), seenLosses_(state->losses())
  {
    state_->hasPrimary = true;
  }
  PrimarySurface(PrimarySurface const&) = delete;
  PrimarySurface& operator=(PrimarySurface const&) = delete;
  ~PrimarySurface() override
  {
    if (palette_)
      palette_->onPrimary = false;
    state_->hasPrimary = false;
  }

  Result describe(SurfaceDesc&) override;
  Result lock(Rect const*, SurfaceDesc&, u32) override { return failureOr(Op::lock, cannotLock); }
  Result unlock(Rect const*) override { return failureOr(Op::unlock, notLocked); }
  Result getDC(HDC&) override { return failureOr(Op::getDC, cannotCreateDC); }
  Result releaseDC(HDC) override { return failureOr(Op::releaseDC, noDC); }
  Result blt(Rect const* dst, Surface* src, Rect const* srcRect, u32 flags, u32 fill) override;
  Result bltStatus(u32) override { return plannedFailure(Op::bltStatus); }
  Result setColorKey(u32 type, ColorKey const&) override;
  Result setClipper(Clipper*) override;
  Result setPalette(DevicePalette*) override;
  Result isLost() override;
  Result restore() override;
  Result updateOverlay(Rect const*, Surface*, Rect const*, u32) override
  {
    return failureOr(Op::updateOverlay, notAnOverlay);
  }

private:
  bool lost() const { return seenLosses_ != state_->losses(); }
  static Result failureOr(Op op, Result otherwise)
  {
    Result const failure = plannedFailure(op);
    return failure ? failure : otherwise;
  }

  std::shared_ptr<DeviceState> const state_;
  u32 seenLosses_;
  std::shared_ptr<ClipperData> clipper_;
  std::shared_ptr<PaletteData> palette_;
  NearestCache nearest_;
};

// One blit on its way into a window: rectangles in screen and source coordinates, no source for a fill.
struct Presentation {
  Rect target;
  PelBlock source;
  Rect sourceRect;
  BlitKey const* key;
  u32 fill;
  PaletteView palette;
  NearestCache& nearest;
};

void present(void* context, VisiblePart const& part)
{
  Presentation const& p = *static_cast<Presentation*>(context);
  i32 const dx = part.clientInBacking.x - part.clientOnScreen.x, dy = part.clientInBacking.y - part.clientOnScreen.y;
  BlitMap map;
  map.source = p.sourceRect;
  map.target = {p.target.left + dx, p.target.top + dy, p.target.right + dx, p.target.bottom + dy};
  Rect const inside = intersection(map.target, {0, 0, part.backing.width, part.backing.height});
  for (Rect const& visible : part.rects) {
    map.cut = intersection(inside, visible);
    if (map.cut.empty())
      continue;
    if (!p.source.pels)
      fillPels(part.backing, map.cut, p.fill);
    else if (p.source.depth == part.backing.depth)
      copyPels(part.backing, p.source, map, p.key);
    else
      convertPels(part.backing, p.source, map, p.key, p.palette, p.nearest);
  }
}

Result PrimarySurface::describe(SurfaceDesc& out)
{
  if (Result const failure = plannedFailure(Op::describe))
    return failure;
  Size const size = screenSize();
  int const depth = screenDepth();
  out = {};
  out.valid = 0x100F;
  out.width = static_cast<u32>(size.w);
  out.height = static_cast<u32>(size.h);
  out.pitch = (size.w * bytesPerPel(depth) + 7) / 8 * 8;
  out.format = formatOf(depth);
  out.caps = depth == 8 ? 0x8A00 : 0xC200;
  return ok;
}

Result PrimarySurface::blt(Rect const* dst, Surface* src, Rect const* srcRect, u32 flags, u32 fill)
{
  if (Result const failure = plannedFailure(Op::blt))
    return failure;
  if (lost())
    return surfaceLost;
  Size const size = screenSize();
  Rect const target = dst ? *dst : Rect{0, 0, size.w, size.h};
  if (!isNear(target) || target.empty())
    return invalidRectangle;
  Presentation p{target, {}, {}, nullptr, fill, screenPalette(), nearest_};
  if (!(flags & fillFlag)) {
    if (!src)
      return invalidParameter;
    auto* const from = dynamic_cast<MemSurface*>(src);
    if (!from)
      return noHardwareSupport;
    if (from->lost())
      return surfaceLost;
    if (from->dcOut())
      return surfaceLocked;
    if (!insideBounds(srcRect, from->bounds(), p.sourceRect))
      return invalidRectangle;
    if (flags & sourceKeyFlag) {
      if (!from->sourceKey())
        return invalidParameter;
      p.key = &*from->sourceKey();
    }
    p.source = from->block();
    p.palette = from->palette();
  }
  HWND const window = clipper_ ? clipper_->window.load() : nullptr;
  if (!window)
    return ok;
  if (screenDepth() == 8)
    nearest_.use(screenPalette());
  paintVisible(window, &p, present, target);
  return ok;
}

Result PrimarySurface::setColorKey(u32 type, ColorKey const&)
{
  if (Result const failure = plannedFailure(Op::setColorKey))
    return failure;
  u32 const kind = type & ~1u;
  return kind == 4 || kind == 8 ? ok : noColorKeyHardware;
}

Result PrimarySurface::setClipper(Clipper* clipper)
{
  if (Result const failure = plannedFailure(Op::setClipper))
    return failure;
  clipper_ = clipperData(clipper);
  return ok;
}

Result PrimarySurface::setPalette(DevicePalette* palette)
{
  if (Result const failure = plannedFailure(Op::setPalette))
    return failure;
  if (screenDepth() != 8)
    return invalidPixelFormat;
  if (palette_)
    palette_->onPrimary = false;
  palette_ = paletteData(palette);
  if (palette_) {
    palette_->onPrimary = true;
    writeScreenPalette(palette_->window, palette_->entries);
  }
  return ok;
}

Result PrimarySurface::isLost()
{
  if (Result const failure = plannedFailure(Op::isLost))
    return failure;
  return lost() ? surfaceLost : ok;
}

Result PrimarySurface::restore()
{
  if (Result const failure = plannedFailure(Op::restore))
    return failure;
  if (!lost())
    return ok;
  if (heldExclusively())
    return exclusiveModeSet;
  seenLosses_ = state_->losses();
  return ok;
}

}  // namespace

Result createPrimary(std::shared_ptr<DeviceState> const& state, Ptr<Surface>& out)
{
  if (state->hasPrimary)
    return primaryExists;
  out = std::make_unique<PrimarySurface>(state);
  return ok;
}

}  // namespace plat::portable
