// What a device and its surfaces share, and the switches of tests.
#pragma once

#include "foundation/leaf_mutex.h"
#include "platform/portable/device_testing.h"
#include "platform/portable/pel_format.h"
#include "platform/portable/screen.h"
#include "platform/surface.h"

#include <atomic>
#include <memory>

namespace plat::portable {

// Outlives the device as long as a surface stands.
struct DeviceState {
  HWND window = nullptr;
  u32 level = 0;
  bool hasPrimary = false;
  std::atomic<u32> lost{0};

  // A surface is lost when it has seen fewer. With the screen's mode all surfaces go.
  u32 losses() const { return lost + screenChanges(); }
};

// A surface shares the palette and the clipper that are attached to it with their objects.
struct PaletteData {
  std::array<PaletteEntry, 256> entries{};
  HWND window = nullptr;
  bool onPrimary = false;  // its entries show on the screen
};
struct ClipperData {
  std::atomic<HWND> window{nullptr};
};

// A code that a test has asked for, else 0.
Result plannedFailure(testing::Op);
bool heldExclusively();

unsigned maxOverlays();
std::vector<u32> overlayFourCCs();
// Shows or hides an overlay; who stands for it. False when all places are taken.
bool showOverlay(void const* who, testing::ShownOverlay const&);
void hideOverlay(void const* who);
unsigned shownOverlayCount();

void rememberDevice(std::shared_ptr<DeviceState> const&);
void videoMemory(std::int64_t change);  // bytes taken or given back
u32 freeVideoMemory();
constexpr u32 totalVideoMemory = 256u << 20;

std::shared_ptr<ClipperData> clipperData(Clipper*);
std::shared_ptr<PaletteData> paletteData(DevicePalette*);

Result createMemSurface(std::shared_ptr<DeviceState> const&, SurfaceDesc const&, Ptr<Surface>&);
Result createPrimary(std::shared_ptr<DeviceState> const&, Ptr<Surface>&);

}  // namespace plat::portable
