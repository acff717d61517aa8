// Surfaces of pels, the device that makes them, and what is attached to them: clipper, palette, colour key.
// All calls answer a result code, 0 for success; nothing throws. Callers serialise calls on one device.
#pragma once

#include "platform/types.h"

#include <span>
#include <vector>

namespace plat {

// Mask fields of 8 or less are bit counts. A fresh format stands for no format at all.
struct PixelFormat {
  u32 flags = 64;  // 4 by fourCC, 32 palette index, 64 colour masks, 512 YUV
  u32 fourCC = 0;
  u32 bitCount = 2048;
  u32 rMask = 3, gMask = 3, bMask = 2, aMask = 0;
};

struct SurfaceDesc {
  u32 valid = 0;  // 1 caps, 2 height, 4 width, 8 pitch, 0x1000 format
  u32 width = 0, height = 0;
  i32 pitch = 0;  // bytes from row to row
  PixelFormat format;
  u32 caps = 0;          // 0x40 off-screen, 0x80 overlay, 0x200 primary, 0x800 system, 0x4000 video memory, 0x8000 visible
  void* pels = nullptr;  // while locked: the upper left pel of the locked rectangle
};

// Pel values; both bounds belong to the key.
struct ColorKey {
  u32 low = 0, high = 0;
};

struct DeviceCaps {
  u32 caps = 0, colorKeyCaps = 0, fxCaps = 0, palCaps = 0;
  u32 maxOverlays = 0, curOverlays = 0;
  u32 memTotal = 0, memFree = 0;  // bytes
};

class Clipper {
public:
  virtual ~Clipper() = default;
  virtual Result window(HWND) = 0;
};

class DevicePalette {
public:
  virtual ~DevicePalette() = default;
  virtual Result get(u32 start, std::span<PaletteEntry>) = 0;
  virtual Result set(u32 start, std::span<PaletteEntry const>) = 0;
};

// Destruction is the final release. Clipper and palette belong to the caller and may die before the surface.
class Surface {
public:
  virtual ~Surface() = default;
  virtual Result describe(SurfaceDesc&) = 0;
  virtual Result lock(Rect const*, SurfaceDesc& out, u32 flags) = 0;
  virtual Result unlock(Rect const*) = 0;
  virtual Result getDC(HDC&) = 0;
  virtual Result releaseDC(HDC) = 0;  // null handle allowed
  // Flags: 0x400 fill with the pel value, 0x8000 leave out pels of the source's key, 0x1000000 wait. A null rectangle
  // is the whole surface; rectangles of different size stretch.
  virtual Result blt(Rect const* dst, Surface* src, Rect const* srcRect, u32 flags, u32 fill) = 0;
  virtual Result bltStatus(u32 flags) = 0;
  virtual Result setColorKey(u32 type, ColorKey const&) = 0;  // 4 destination overlay, 8 source blit, | 1 range
  virtual Result setClipper(Clipper*) = 0;                    // null detaches
  virtual Result setPalette(DevicePalette*) = 0;              // null detaches
  virtual Result isLost() = 0;
  virtual Result restore() = 0;
  // Flags: 0x200 hide, 0x400 show where the destination has its key, 0x4000 show.
  virtual Result updateOverlay(Rect const* src, Surface* dst, Rect const* dstRect, u32 flags) = 0;
};

// Surfaces may outlive their device.
class DisplayDevice {
public:
  virtual ~DisplayDevice() = default;
  virtual Result cooperativeLevel(HWND, u32 flags) = 0;  // 8 normal, 21 exclusive full screen
  virtual Result testCooperativeLevel() = 0;
  virtual Result setDisplayMode(u32 w, u32 h, u32 bits) = 0;
  virtual Result createSurface(SurfaceDesc const&, Ptr<Surface>&) = 0;
  virtual Result createClipper(Ptr<Clipper>&) = 0;
  virtual Result createPalette(u32 flags, PaletteEntry const (&entries)[256], Ptr<DevicePalette>&) = 0;
  virtual Result caps(DeviceCaps& hardware, DeviceCaps& emulation) = 0;
  virtual Result fourCCs(std::vector<u32>&) = 0;
  virtual Result waitForVerticalBlank(u32 flags) = 0;
};

Result openDevice(HWND, Ptr<DisplayDevice>&);

}  // namespace plat
