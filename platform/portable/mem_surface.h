// A surface in memory: off-screen or, where a test has put them in, an overlay. Rows are padded to 8 bytes.
#pragma once

#include "platform/portable/blit.h"
#include "platform/portable/device_state.h"
#include "platform/portable/painter.h"

#include <cstdlib>
#include <optional>

namespace plat::portable {

class MemSurface final : public Surface {
public:
  MemSurface(std::shared_ptr<DeviceState> const&, SurfaceDesc const& complete, PelBlock const& owned);
  MemSurface(MemSurface const&) = delete;
  MemSurface& operator=(MemSurface const&) = delete;
  ~MemSurface() override;

  Result describe(SurfaceDesc&) override;
  Result lock(Rect const*, SurfaceDesc& out, u32 flags) override;
  Result unlock(Rect const*) override;
  Result getDC(HDC&) override;
  Result releaseDC(HDC) override;
  Result blt(Rect const* dst, Surface* src, Rect const* srcRect, u32 flags, u32 fill) override;
  Result bltStatus(u32 flags) override;
  Result setColorKey(u32 type, ColorKey const&) override;
  Result setClipper(Clipper*) override;
  Result setPalette(DevicePalette*) override;
  Result isLost() override;
  Result restore() override;
  Result updateOverlay(Rect const* src, Surface* dst, Rect const* dstRect, u32 flags) override;

  PelBlock const& block() const { return block_; }
  Rect bounds() const { return {0, 0, block_.width, block_.height}; }
  bool lost() const { return seenLosses_ != state_->losses(); }
  bool dcOut() const { return dcOut_; }
  std::optional<BlitKey> const& sourceKey() const { return sourceKey_; }
  PaletteView palette() const;  // the attached one, else the screen's
  bool sameFormat(MemSurface const&) const;

private:
  std::shared_ptr<DeviceState> const state_;
  SurfaceDesc desc_;
  PelBlock const block_;  // owned, from calloc
  u32 seenLosses_;
  bool locked_ = false;
  bool dcOut_ = false;
  bool shown_ = false;
  std::optional<BlitKey> sourceKey_;
  std::shared_ptr<PaletteData> palette_;
  MemPainter painter_;
};

// The rectangle or, for null, all of the bounds; false when it is empty or leaves them.
bool insideBounds(Rect const* rect, Rect const& bounds, Rect& out);

// Fills in the canonical format of a depth.
PixelFormat formatOf(int depth);

}  // namespace plat::portable
