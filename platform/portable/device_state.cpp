#include "platform/portable/device_state.h"

#include <algorithm>
#include <utility>

namespace plat::portable {

namespace {

constexpr std::size_t opCount = static_cast<std::size_t>(testing::Op::count);

struct Plan {
  Result result = 0;
  int times = 0;
};

struct Shared {
  cc_LeafMutex<cc_LockRank::device> mutex;
  std::atomic<bool> planned{false};  // spares the lock where no test has planned anything
  std::array<Plan, opCount> plans{};
  std::atomic<bool> exclusive{false};
  unsigned maxOverlays = 0;
  std::vector<u32> fourCCs;
  std::vector<std::pair<void const*, testing::ShownOverlay>> shown;
  std::vector<std::weak_ptr<DeviceState>> devices;
  std::atomic<std::int64_t> videoMemory{0};
};

Shared& shared()
{
  static Shared* const one = new Shared;  // surfaces of static lifetime may outlive every destructor
  return *one;
}

}  // namespace

Result plannedFailure(testing::Op op)
{
  Shared& s = shared();
  if (!s.planned.load(std::memory_order_relaxed))
    return 0;
  std::lock_guard const guard(s.mutex);
  Plan& plan = s.plans[static_cast<std::size_t>(op)];
  if (plan.times == 0)
    return 0;
  --plan.times;
  Result const planned = plan.result;
  s.planned = std::any_of(s.plans.begin(), s.plans.end(), [](Plan const& p) { return p.times != 0; });
  return planned;
}

bool heldExclusively() { return shared().exclusive; }

unsigned maxOverlays()
{
  std::lock_guard const guard(shared().mutex);
  return shared().maxOverlays;
}

std::vector<u32> overlayFourCCs()
{
  std::lock_guard const guard(shared().mutex);
  return shared().fourCCs;
}

bool showOverlay(void const* who, testing::ShownOverlay const& overlay)
{
  Shared& s = shared();
  std::lock_guard const guard(s.mutex);
  for (auto& [key, shown] : s.shown)
    if (key == who) {
      shown = overlay;
      return true;
    }
  if (s.shown.size() >= s.maxOverlays)
    return false;
  s.shown.emplace_back(who, overlay);
  return true;
}

void hideOverlay(void const* who)
{
  Shared& s = shared();
  std::lock_guard const guard(s.mutex);
  s.shown.erase(std::remove_if(s.shown.begin(), s.shown.end(), [who](auto const& one) { return one.first == who; }),
                s.shown.end());
}

unsigned shownOverlayCount()
{
  std::lock_guard const guard(shared().mutex);
  return static_cast<unsigned>(shared().shown.size());
}

void rememberDevice(std::shared_ptr<DeviceState> const& device)
{
  Shared& s = shared();
  std::lock_guard const guard(s.mutex);
  s.devices.erase(std::remove_if(s.devices.begin(), s.devices.end(), [](auto const& one) { return one.expired(); }),
                  s.devices.end());
  s.devices.push_back(device);
}

void videoMemory(std::int64_t change) { shared().videoMemory += change; }

u32 freeVideoMemory()
{
  std::int64_t const free = std::int64_t{totalVideoMemory} - shared().videoMemory;
  return static_cast<u32>(std::max<std::int64_t>(free, 0));
}

}  // namespace plat::portable

namespace plat::testing {

using portable::shared;

void lose(HWND window)
{
  auto& s = shared();
  std::lock_guard const guard(s.mutex);
  for (auto const& one : s.devices)
    if (auto const device = one.lock(); device && (!window || device->window == window))
      ++device->lost;
}

void exclusive(bool on) { shared().exclusive = on; }

void overlays(unsigned max, std::vector<u32> fourCCs)
{
  auto& s = shared();
  std::lock_guard const guard(s.mutex);
  s.maxOverlays = max;
  s.fourCCs = std::move(fourCCs);
  if (s.shown.size() > max)
    s.shown.resize(max);
}

void failNext(Op op, Result code, int times)
{
  auto& s = shared();
  std::lock_guard const guard(s.mutex);
  s.plans[static_cast<std::size_t>(op)] = {code, std::max(times, 0)};
  s.planned = std::any_of(s.plans.begin(), s.plans.end(), [](auto const& plan) { return plan.times != 0; });
}

std::vector<ShownOverlay> shownOverlays()
{
  auto& s = shared();
  std::lock_guard const guard(s.mutex);
  std::vector<ShownOverlay> all;
  for (auto const& one : s.shown)
    all.push_back(one.second);
  return all;
}

}  // namespace plat::testing
