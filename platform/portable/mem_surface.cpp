#include "platform/portable/mem_surface.h"

#include "platform/portable/results.h"

#include <cstring>
#include <new>

namespace plat::portable {

namespace {

using testing::Op;

constexpr u32 widthValid = 4, heightValid = 2, formatValid = 0x1000, allValid = 0x100F;
constexpr u32 systemBit = 0x800, overlayBit = 0x80, videoBit = 0x4000, visibleBit = 0x8000;
constexpr u32 fourCCFlag = 4;
constexpr u32 fillFlag = 0x400, sourceKeyFlag = 0x8000;
constexpr u32 hideFlag = 0x200, showFlag = 0x4000;
constexpr u32 largestExtent = 32767;
constexpr std::int64_t largestSurface = 1 << 30;  // bytes

// The depth code of a wanted format, 0 for one that cannot be had.
int depthOf(PixelFormat const& format)
{
  if (format.flags & fourCCFlag)
    return 0;
  switch (format.bitCount) {
  case 8: return 8;
  case 15: return 15;
  case 16: return format.gMask == 5 || format.gMask == 0x3E0 ? 15 : 16;
  case 24: return 24;
  case 32: return 32;
  default: return 0;
  }
}

bool isOverlayCode(u32 fourCC)
{
  for (u32 const code : overlayFourCCs())
    if (code == fourCC)
      return true;
  return false;
}

}  // namespace

bool insideBounds(Rect const* rect, Rect const& bounds, Rect& out)
{
  out = rect ? *rect : bounds;
  return out.left >= bounds.left && out.top >= bounds.top && out.right <= bounds.right &&
         out.bottom <= bounds.bottom && out.left < out.right && out.top < out.bottom;
}

PixelFormat formatOf(int depth)
{
  PixelFormat format;
  format.flags = depth == 8 ? 96 : 64;
  format.bitCount = static_cast<u32>(bytesPerPel(depth) * 8);
  format.rMask = depth == 8 ? 0 : depth == 15 ? 0x7C00 : depth == 16 ? 0xF800 : 0xFF0000;
  format.gMask = depth == 8 ? 0 : depth == 15 ? 0x3E0 : depth == 16 ? 0x7E0 : 0xFF00;
  format.bMask = depth == 8 ? 0 : depth == 15 || depth == 16 ? 0x1F : 0xFF;
  format.aMask = 0;
  return format;
}

Result createMemSurface(std::shared_ptr<DeviceState> const& state, SurfaceDesc const& wanted, Ptr<Surface>& out)
{
  if ((wanted.valid & (widthValid | heightValid)) != (widthValid | heightValid) || wanted.width == 0 ||
      wanted.height == 0)
    return invalidParameter;
  if (wanted.width > largestExtent || wanted.height > largestExtent)
    return sizeTooLarge;
  bool const overlay = wanted.caps & overlayBit;
  if (overlay && maxOverlays() == 0)
    return noHardwareSupport;

  SurfaceDesc desc = wanted;
  int depth = screenDepth();
  desc.format = formatOf(depth);
  if (wanted.valid & formatValid) {
    if (overlay && (wanted.format.flags & fourCCFlag)) {
      if (wanted.format.bitCount != 16 || !isOverlayCode(wanted.format.fourCC))
        return invalidPixelFormat;
      depth = 16;
      desc.format = wanted.format;
    } else {
      depth = depthOf(wanted.format);
      if (depth == 0)
        return invalidPixelFormat;
      desc.format = formatOf(depth);
    }
  }

  PelBlock block;
  block.width = static_cast<i32>(wanted.width);
  block.height = static_cast<i32>(wanted.height);
  block.pitch = (block.width * bytesPerPel(depth) + 7) / 8 * 8;
  block.depth = depth;
  if (std::int64_t{block.pitch} * block.height > largestSurface)
    return sizeTooLarge;
  auto const give = [](u8* pels) { std::free(pels); };
  std::unique_ptr<u8, decltype(give)> pels(
      static_cast<u8*>(std::calloc(static_cast<std::size_t>(block.height), static_cast<std::size_t>(block.pitch))), give);
  if (!pels)
    return outOfMemory;
  block.pels = pels.get();
  desc.valid = allValid;
  desc.pitch = block.pitch;
  desc.caps = overlay ? overlayBit | videoBit : wanted.caps & systemBit ? 0x840 : 0x4040;
  desc.pels = nullptr;
  out = std::make_unique<MemSurface>(state, desc, block);
  static_cast<void>(pels.release());  // its surface's now
  return ok;
}

MemSurface::MemSurface(std::shared_ptr<DeviceState> const& state, SurfaceDesc const& complete, PelBlock const& owned)
    : state_(state), desc_(complete), block_(owned), seenLosses_(state->losses())
{
  if (desc_.caps & videoBit)
    videoMemory(std::int64_t{block_.pitch} * block_.height);
}

MemSurface::~MemSurface()
{
  hideOverlay(this);
  if (desc_.caps & videoBit)
    videoMemory(-std::int64_t{block_.pitch} * block_.height);
  std::free(block_.pels);
}

Result MemSurface::describe(SurfaceDesc& out)
{
  if (Result const failure = plannedFailure(Op::describe))
    return failure;
  out = desc_;
  if (shown_)
    out.caps |= visibleBit;
  return ok;
}

Result MemSurface::lock(Rect const* rect, SurfaceDesc& out, u32)
{
  if (Result const failure = plannedFailure(Op::lock))
    return failure;
  if (lost())
    return surfaceLost;
  if (locked_ || dcOut_)
    return surfaceLocked;
  Rect part;
  if (!insideBounds(rect, bounds(), part))
    return invalidRectangle;
  out = desc_;
  out.pels = pelAddress(block_, part.left, part.top);
  locked_ = true;
  return ok;
}

Result MemSurface::unlock(Rect const*)
{
  if (Result const failure = plannedFailure(Op::unlock))
    return failure;
  if (!locked_)
    return notLocked;
  locked_ = false;
  return ok;
}

Result MemSurface::getDC(HDC& out)
{
  if (Result const failure = plannedFailure(Op::getDC))
    return failure;
  if (lost())
    return surfaceLost;
  if (dcOut_)
    return dcExists;
  if (locked_)
    return surfaceLocked;
  if (desc_.format.flags & fourCCFlag)
    return cannotCreateDC;
  HDC const dc = painter_.openOn(block_, palette_, sourceKey_.has_value());
  if (!dc)
    return cannotCreateDC;
  dcOut_ = true;
  out = dc;
  return ok;
}

Result MemSurface::releaseDC(HDC dc)
{
  if (Result const failure = plannedFailure(Op::releaseDC))
    return failure;
  if (!dcOut_)
    return noDC;
  if (dc != painter_.handle())
    return invalidParameter;
  painter_.close();
  dcOut_ = false;
  return ok;
}

Result MemSurface::blt(Rect const* dst, Surface* src, Rect const* srcRect, u32 flags, u32 fill)
{
  if (Result const failure = plannedFailure(Op::blt))
    return failure;
  if (lost())
    return surfaceLost;
  if (locked_ || dcOut_)
    return surfaceLocked;
  BlitMap map;
  if (!insideBounds(dst, bounds(), map.target))
    return invalidRectangle;
  if (flags & fillFlag) {
    fillPels(block_, map.target, fill);
    return ok;
  }
  if (!src)
    return invalidParameter;
  auto* const from = dynamic_cast<MemSurface*>(src);
  if (!from)
    return noHardwareSupport;  // the primary has no pels to give
  if (from->lost())
    return surfaceLost;
  if (from->dcOut())
    return surfaceLocked;
  if (!insideBounds(srcRect, from->bounds(), map.source))
    return invalidRectangle;
  if (!sameFormat(*from))
    return invalidPixelFormat;
  bool const keyed = flags & sourceKeyFlag;
  if (keyed && !from->sourceKey())
    return invalidParameter;
  map.cut = map.target;
  copyPels(block_, from->block_, map, keyed ? &*from->sourceKey() : nullptr);
  return ok;
}

Result MemSurface::bltStatus(u32) { return plannedFailure(Op::bltStatus); }

Result MemSurface::setColorKey(u32 type, ColorKey const& key)
{
  if (Result const failure = plannedFailure(Op::setColorKey))
    return failure;
  u32 const kind = type & ~1u;
  if (kind != 4 && kind != 8)
    return noColorKeyHardware;
  u32 const mask = block_.depth == 32 ? 0xFFFFFFu : 0xFFFFFFFFu;  // the top byte of a 32-bit pel says nothing
  if (kind == 8)
    sourceKey_ = BlitKey{key.low & mask, (type & 1u ? key.high : key.low) & mask};
  return ok;
}

// Nothing presents through a surface in memory, so its clipper has nothing to do.
Result MemSurface::setClipper(Clipper*) { return plannedFailure(Op::setClipper); }

Result MemSurface::setPalette(DevicePalette* palette)
{
  if (Result const failure = plannedFailure(Op::setPalette))
    return failure;
  if (block_.depth != 8)
    return invalidPixelFormat;
  palette_ = paletteData(palette);
  return ok;
}

Result MemSurface::isLost()
{
  if (Result const failure = plannedFailure(Op::isLost))
    return failure;
  return lost() ? surfaceLost : ok;
}

Result MemSurface::restore()
{
  if (Result const failure = plannedFailure(Op::restore))
    return failure;
  if (!lost())
    return ok;
  if (heldExclusively())
    return exclusiveModeSet;
  // What was lost is gone; whoever restores paints anew.
  std::memset(block_.pels, 0, static_cast<std::size_t>(block_.pitch) * static_cast<std::size_t>(block_.height));
  seenLosses_ = state_->losses();
  return ok;
}

Result MemSurface::updateOverlay(Rect const* src, Surface* dst, Rect const* dstRect, u32 flags)
{
  if (Result const failure = plannedFailure(Op::updateOverlay))
    return failure;
  if (!(desc_.caps & overlayBit))
    return notAnOverlay;
  if (lost())
    return surfaceLost;
  if (maxOverlays() == 0)
    return noOverlayHardware;
  if (flags & hideFlag) {
    hideOverlay(this);
    shown_ = false;
    return ok;
  }
  if (!dst)
    return invalidParameter;
  Size const screen = screenSize();
  testing::ShownOverlay overlay;
  if (!insideBounds(src, bounds(), overlay.source) ||
      !insideBounds(dstRect, {0, 0, screen.w, screen.h}, overlay.screen))
    return invalidRectangle;
  if (!(flags & showFlag) && !shown_)
    return ok;
  overlay.flags = flags;
  overlay.fourCC = desc_.format.flags & fourCCFlag ? desc_.format.fourCC : 0;
  if (!showOverlay(this, overlay))
    return hardwareAllocated;
  shown_ = true;
  return ok;
}

PaletteView MemSurface::palette() const { return palette_ ? PaletteView(palette_->entries) : screenPalette(); }

bool MemSurface::sameFormat(MemSurface const& other) const
{
  PixelFormat const& a = desc_.format;
  PixelFormat const& b = other.desc_.format;
  return block_.depth == other.block_.depth && (a.flags & fourCCFlag) == (b.flags & fourCCFlag) &&
         (!(a.flags & fourCCFlag) || a.fourCC == b.fourCC);
}

}  // namespace plat::portable
