#include "tests/storm/stage.h"

#include "canvas/ui_error.h"
#include "tests/storm/noisy.h"
#include "tests/support/memory_watch.h"

#include <algorithm>

#if __has_include("foundation/lock_check.h")
#include "foundation/lock_check.h"
#define KRS_STORM_WATCHES_LOCKS 1
#else
#define KRS_STORM_WATCHES_LOCKS 0
#endif

namespace {

std::string& lockFault()
{
  static std::string text;
  return text;
}

// Locks out of order fail the step in which they were wanted.
void watchLocks()
{
#if KRS_STORM_WATCHES_LOCKS
  lockFault().clear();
  cc_LockCheck::handler([](char const* text) {
    if (lockFault().empty())
      lockFault() = std::string(text).substr(0, 4000);
  });
#endif
}

constexpr plat::Size kFirstScreen{200, 150};
constexpr int kFirstDepth = 32;

void startPlatform()
{
  static bool const started = [] {
    plat::InitOptions options;
    options.video = plat::InitOptions::headless;
    return plat::init(options);
  }();
  (void)started;
}

// Takes back what the device was told to do wrong.
void mendDevice()
{
  using plat::testing::Op;
  for (int op = 0; op < static_cast<int>(Op::count); ++op)
    plat::testing::failNext(static_cast<Op>(op), 0, 0);
  plat::testing::exclusive(false);
}

// Counts up while it lives.
class Deeper {
public:
  explicit Deeper(int& depth, int by = 1) : depth_(depth), by_(by) { depth_ += by_; }
  Deeper(Deeper const&) = delete;
  Deeper& operator=(Deeper const&) = delete;
  ~Deeper() { depth_ -= by_; }

private:
  int& depth_;
  int by_;
};

}  // namespace

StormStats& StormStats::operator+=(StormStats const& o)
{
  steps += o.steps;
  compared += o.compared;
  pictures += o.pictures;
  hooks += o.hooks;
  acts += o.acts;
  escaped += o.escaped;
  drags += o.drags;
  return *this;
}

NoisyDisplay::NoisyDisplay(StormStage& stage, bool early, std::size_t slot, HWND window) : Noisy(stage, early, window)
{
  stage_.born(this, slot);
}

NoisyDisplay::~NoisyDisplay() { stage_.dies(this); }

StormStage::StormStage(StormSwitches const& switches, StormStats& stats) : switches_(switches), stats_(stats)
{
  startPlatform();
  watchLocks();
  mendDevice();
  plat::testing::overlays(0, {});
  screen(kFirstScreen, kFirstDepth);
  makeWindow(0, 200);
  makeWindow(1, 90);
  makeDisplay(windows_[0]);
}

StormStage::~StormStage()
{
  quiet_ = true;
  mendDevice();
  for (NoisyDisplay* display : displays_)
    delete display;
  while (!nodes_.empty())
    delete nodes_.front();
  for (HWND window : windows_)
    if (window && plat::platform().windows.isWindow(window))
      plat::platform().windows.destroy(window);
  plat::testing::pointer({0, 0}, 0, 0);
  plat::testing::drain();
}

// ---- What lives on the stage

void StormStage::dies(ccUIObject* node) { std::erase(nodes_, node); }

void StormStage::born(NoisyDisplay* display, std::size_t slot) { displays_[slot] = display; }

void StormStage::dies(NoisyDisplay* display)
{
  std::replace(displays_.begin(), displays_.end(), display, static_cast<NoisyDisplay*>(nullptr));
}

void StormStage::screen(plat::Size size, int depth)
{
  screenSize_ = size;
  screenDepth_ = depth;
  plat::testing::screen(size, depth);
}

void StormStage::makeWindow(unsigned slot, unsigned shape)
{
  HWND& handle = windows_[slot % kWindows];
  plat::WindowSystem& windows = plat::platform().windows;
  if (handle && windows.isWindow(handle))
    return;
  plat::WindowDesc desc;
  desc.title = "storm";
  desc.style = 0;
  plat::i32 const left = static_cast<plat::i32>(shape % 7), top = static_cast<plat::i32>(shape % 5);
  desc.rect = {left, top, left + 12 + static_cast<plat::i32>(shape % 29), top + 10 + static_cast<plat::i32>(shape % 21)};
  if (slot % kWindows == kWindows - 1 && windows_[0] && windows.isWindow(windows_[0])) {
    desc.style = 0x40000000;
    desc.parent = windows_[0];
  }
  handle = windows.create(desc);
  if (handle)
    windows.place(handle, nullptr, 5);
}

void StormStage::makeDisplay(HWND window)
{
  std::size_t const slot = freeDisplay();
  if (slot == kDisplays)
    return;
  new NoisyDisplay(*this, slot % 2 == 1, slot, window);
}

std::size_t StormStage::freeDisplay() const
{
  return static_cast<std::size_t>(
      std::find(displays_.begin(), displays_.end(), static_cast<NoisyDisplay*>(nullptr)) - displays_.begin());
}

NoisyDisplay* StormStage::display(unsigned n) const
{
  for (unsigned i = 0; i < kDisplays; ++i)
    if (NoisyDisplay* const d = displays_[(n + i) % kDisplays])
      return d;
  return nullptr;
}

HWND StormStage::window(unsigned n) const
{
  for (unsigned i = 0; i < kWindows; ++i) {
    HWND const w = windows_[(n + i) % kWindows];
    if (w && plat::platform().windows.isWindow(w))
      return w;
  }
  return nullptr;
}

bool StormStage::shared(HWND window) const
{
  return std::count_if(displays_.begin(), displays_.end(),
                       [window](NoisyDisplay const* d) { return d && d->window() == window; }) > 1;
}

ccUIObject* StormStage::node(unsigned n) const
{
  if (n == 255 && self_)
    return self_;
  return nodes_.empty() ? nullptr : nodes_[n % nodes_.size()];
}

ccUIFrame* StormStage::frame(unsigned n) const
{
  for (unsigned i = 0; i < nodes_.size(); ++i)
    if (ccUIFrame* const f = nodes_[(n + i) % nodes_.size()]->frame(true))
      return f;
  return nullptr;
}

StormShape* StormStage::shape(unsigned n) const
{
  for (unsigned i = 0; i < nodes_.size(); ++i)
    if (auto* const s = dynamic_cast<StormShape*>(nodes_[(n + i) % nodes_.size()]))
      return s;
  return nullptr;
}

ccUIFrame* StormStage::home(unsigned n) const
{
  if (n % 8 < 3)
    if (auto* const f = dynamic_cast<StormFrame*>(frame(n / 8)))
      return f;
  NoisyDisplay* const d = display(n / 8);
  if (!d || !d->root())
    return nullptr;
  switch (n % 8) {
  case 3:
    return d->root()->groundPlane();
  case 4:
    return d->root()->subPlane();
  case 5:
    return d;
  default:
    return d->root()->floatingPlane();
  }
}

// ---- Hooks

void StormStage::planHook(HookKind kind, unsigned count, StormOp const& op)
{
  if (plans_.size() < 16)
    plans_.push_back({kind, count, false, 0, op});
}

void StormStage::planThrow(HookKind kind, unsigned count, unsigned what)
{
  if (plans_.size() < 16)
    plans_.push_back({kind, count, true, what, {}});
}

void StormStage::hooked(HookKind kind, ccUIObject* self)
{
  if (quiet_ || depth_ >= kMaxDepth)
    return;
  ++stats_.hooks;
  for (std::size_t i = 0; i < plans_.size(); ++i) {
    if (plans_[i].kind != kind || --plans_[i].count > 0)
      continue;
    Plan const plan = plans_[i];
    plans_.erase(plans_.begin() + static_cast<std::ptrdiff_t>(i));
    ++stats_.acts;
    if (plan.throws) {
      if (plan.what % 2)
        throw StormThrow("storm");
      throw ccUIError::BadParams();
    }
    StormRow const& row = cfRow(plan.op);
    bool const paints = painting_ > 0 || kind == HookKind::paint;
    if (row.place == StormPlace::outermost || (row.place == StormPlace::notWhilePainting && paints))
      return;
    Deeper const deeper(depth_);
    Deeper const painting(painting_, kind == HookKind::paint ? 1 : 0);
    ccUIObject* const former = std::exchange(self_, self);
    try {
      perform(plan.op);
    } catch (ccException const&) {
      escapedNow_ = true;  // what the application caused itself, it catches, and lowers the lock of an event
    } catch (...) {
      self_ = former;
      throw;
    }
    self_ = former;
    return;
  }
}

void StormStage::perform(StormOp const& op)
{
  StormRow const& row = cfRow(op);
  if (on(row.group))
    row.run(*this, op);
}

// ---- A step

bool StormStage::step(StormOp const& op)
{
  ++stats_.steps;
  escapedNow_ = false;
  trouble_ = false;
  outermost_(op);
  drain_();
  if (escapedNow_)
    lowerLocks_();
  if (trouble_)
    endTrouble_();
  check_();
  if (!lockFault().empty() && on(StormGroup::lockOrder))
    fail_("order", lockFault());
  ++stepNumber_;
  return failure_.empty();
}

void StormStage::escaped_()
{
  escapedNow_ = true;
  ++stats_.escaped;
}

void StormStage::outermost_(StormOp const& op)
{
  unsigned const nth = cfRow(op).group == StormGroup::memory ? 0 : std::exchange(memory_, 0u);
  try {
    MemoryWatch const watch(static_cast<long>(nth));
    perform(op);
  } catch (ccException const&) {
    escaped_();
  } catch (StormThrow const&) {
    escaped_();
  } catch (std::bad_alloc const&) {
    escaped_();
    if (nth == 0)
      fail_("memory", "an allocation failed that wasn't told to");
  }
}

// Messages that are still under way, each of which may meet a hook that throws.
void StormStage::drain_()
{
  for (int i = 0; i < 20; ++i) {
    try {
      plat::testing::drain();
      return;
    } catch (ccException const&) {
      escaped_();
    } catch (StormThrow const&) {
      escaped_();
    }
  }
  fail_("throw", "messages throw without end");
}

// An exception that leaves a hook in an event leaves the screen locked, by the rules; the application unlocks it.
void StormStage::lowerLocks_()
{
  for (NoisyDisplay* const d : displays_)
    for (int i = 0; d && i < 4 && d->imageScope().screenUpdatesLocked(); ++i)
      d->root()->lockScreenUpdatesPop(ccUITablet::bothLayers);
}

// The device works again. An application would draw anew what failed, and bind anew what has no surface.
void StormStage::endTrouble_()
{
  mendDevice();
  quiet_ = true;
  for (NoisyDisplay* const d : displays_)
    if (d && d->window()) {
      if (d->imageScope().size().x() == 0 || d->imageScope().isNull()) {
        HWND const w = d->window();
        d->window(nullptr);
        d->window(w);
      }
      d->restore(nullptr);
      d->root()->fullDraw(ccUITablet::bothLayers);
      d->root()->globalUpdate();
    }
  drain_();
  quiet_ = false;
}

void StormStage::fail_(std::string const& kind, std::string const& text)
{
  if (failure_.empty())
    failure_ = kind + ": step " + std::to_string(stepNumber_) + ": " + text;
}

bool cfRunStorm(StormScript const& script, StormSwitches const& switches, std::string* failure, StormStats* stats)
{
  StormStats own;
  StormStats& counted = stats ? *stats : own;
  StormStage stage(switches, counted);
  for (StormOp const& op : script)
    if (!stage.step(op)) {
      if (failure)
        *failure = stage.failure();
      return false;
    }
  return true;
}

bool cfRunStorm(std::span<std::uint8_t const> bytes, std::string* failure)
{
  return cfRunStorm(cfStormScript(bytes), cfStormSwitches(), failure);
}
