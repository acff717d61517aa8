// The device over memory: makes surfaces, clippers and palettes.
#include "platform/portable/raster/screen.h"
#include "platform/portable/surfaces/device_state.h"
#include "platform/portable/surfaces/results.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace plat {

namespace portable {

namespace {

using testing::Op;

constexpr u32 offscreenBit = 0x40, overlayBit = 0x80, primaryBit = 0x200;
constexpr u32 exclusiveLevel = 0x10;

class MemClipper final : public Clipper {
public:
  Result window(HWND window) override
  {
    data->window = window;
    return ok;
  }
  std::shared_ptr<ClipperData> const data = std::make_shared<ClipperData>();
};

class MemPalette final : public DevicePalette {
public:
  MemPalette(PaletteEntry const (&entries)[256], HWND window)
  {
    std::copy(std::begin(entries), std::end(entries), data->entries.begin());
    data->window = window;
  }
  Result get(u32 start, std::span<PaletteEntry> out) override
  {
    if (start > 256 || out.size() > 256 - start)
      return invalidParameter;
    std::copy_n(data->entries.begin() + start, out.size(), out.begin());
    return ok;
  }
  Result set(u32 start, std::span<PaletteEntry const> in) override
  {
    if (start > 256 || in.size() > 256 - start)
      return invalidParameter;
    std::copy(in.begin(), in.end(), data->entries.begin() + start);
    if (data->onPrimary)
      writeScreenPalette(data->window, data->entries);
    return ok;
  }
  std::shared_ptr<PaletteData> const data = std::make_shared<PaletteData>();
};

class MemDevice final : public DisplayDevice {
public:
  explicit MemDevice(HWND window) : state_(std::make_shared<DeviceState>())
  {
    state_->window = window;
    rememberDevice(state_);
  }

  Result cooperativeLevel(HWND window, u32 flags) override
  {
    if (Result const failure = plannedFailure(Op::cooperativeLevel))
      return failure;
    if (heldExclusively())
      return exclusiveModeSet;
    if (window)
      state_->window = window;
    state_->level = flags;
    return ok;
  }

  Result testCooperativeLevel() override
  {
    if (Result const failure = plannedFailure(Op::testCooperativeLevel))
      return failure;
    return heldExclusively() ? exclusiveModeSet : ok;
  }

  // The screen is what it is: only its own mode can be set.
  Result setDisplayMode(u32 w, u32 h, u32 bits) override
  {
    if (Result const failure = plannedFailure(Op::setDisplayMode))
      return failure;
    if (!(state_->level & exclusiveLevel))
      return noExclusiveMode;
    Size const size = screenSize();
    u32 const depth = static_cast<u32>(screenDepth());
    bool const sameDepth = bits == depth || (bits == 16 && depth == 15);
    return w == static_cast<u32>(size.w) && h == static_cast<u32>(size.h) && sameDepth ? ok : unsupportedMode;
  }

  Result createSurface(SurfaceDesc const& desc, Ptr<Surface>& out) override
  {
    if (Result const failure = plannedFailure(Op::createSurface))
      return failure;
    if (desc.caps & primaryBit)
      return createPrimary(state_, out);
    if (!(desc.caps & (offscreenBit | overlayBit)))
      return invalidCaps;
    return createMemSurface(state_, desc, out);
  }

  Result createClipper(Ptr<Clipper>& out) override
  {
    if (Result const failure = plannedFailure(Op::createClipper))
      return failure;
    out = std::make_unique<MemClipper>();
    return ok;
  }

  Result createPalette(u32, PaletteEntry const (&entries)[256], Ptr<DevicePalette>& out) override
  {
    if (Result const failure = plannedFailure(Op::createPalette))
      return failure;
    out = std::make_unique<MemPalette>(entries, state_->window);
    return ok;
  }

  Result caps(DeviceCaps& hardware, DeviceCaps& emulation) override
  {
    if (Result const failure = plannedFailure(Op::caps))
      return failure;
    emulation = {};
    emulation.caps = 0x04400240;  // blit, stretch, colour key, colour fill
    emulation.colorKeyCaps = 0x200;
    emulation.fxCaps = 0x3FC00;  // shrink and stretch, both ways
    emulation.palCaps = 0x44;
    hardware = emulation;
    hardware.memTotal = totalVideoMemory;
    hardware.memFree = freeVideoMemory();
    hardware.maxOverlays = maxOverlays();
    if (hardware.maxOverlays == 0)
      return ok;
    hardware.curOverlays = shownOverlayCount();
    hardware.caps |= 0x800u | (overlayFourCCs().empty() ? 0u : 0x2000u);
    hardware.colorKeyCaps |= 0x10;    // destination key of an overlay
    hardware.fxCaps |= 0x0FF00000;
    return ok;
  }

  Result fourCCs(std::vector<u32>& out) override
  {
    if (Result const failure = plannedFailure(Op::fourCCs))
      return failure;
    out = overlayFourCCs();
    return ok;
  }

  Result waitForVerticalBlank(u32) override
  {
    if (Result const failure = plannedFailure(Op::waitForVerticalBlank))
      return failure;
    if (headless())
      return ok;
    using Clock = std::chrono::steady_clock;
    using Picture = std::chrono::duration<Clock::rep, std::ratio<1, 60>>;
    auto const now = Clock::now().time_since_epoch();
    auto const next = std::chrono::duration_cast<Picture>(now) + Picture(1);
    std::this_thread::sleep_for(next - now);
    return ok;
  }

private:
  std::shared_ptr<DeviceState> const state_;
};

}  // namespace

std::shared_ptr<ClipperData> clipperData(Clipper* clipper)
{
  auto* const one = dynamic_cast<MemClipper*>(clipper);
  return one ? one->data : nullptr;
}

std::shared_ptr<PaletteData> paletteData(DevicePalette* palette)
{
  auto* const one = dynamic_cast<MemPalette*>(palette);
  return one ? one->data : nullptr;
}

}  // namespace portable

Result openDevice(HWND window, Ptr<DisplayDevice>& out)
{
  if (Result const failure = portable::plannedFailure(testing::Op::openDevice))
    return failure;
  out = std::make_unique<portable::MemDevice>(window);
  return 0;
}

}  // namespace plat
