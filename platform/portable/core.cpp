#include "platform/portable/core.h"

#include "platform/portable/menus.h"
#include "platform/portable/null_video.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>

namespace plat::portable {
namespace {

constexpr unsigned paintMessage = 15, closeMessage = 16, setCursorMessage = 32, timerMessage = 275, wheelMessage = 522,
                   displayChangeMessage = 126;

// A procedure that posts to itself on and on must not keep a round from ending.
constexpr int maxStepsPerRound = 4096;
constexpr int maxRoundsPerDrain = 1000;

// The colours of an 8-bit screen that no program changes: the first and the last ten entries.
constexpr PaletteEntry fixedColors[20] = {
    {0, 0, 0, 0},       {128, 0, 0, 0},     {0, 128, 0, 0},     {128, 128, 0, 0},   {0, 0, 128, 0},
    {128, 0, 128, 0},   {0, 128, 128, 0},   {192, 192, 192, 0}, {192, 220, 192, 0}, {166, 202, 240, 0},
    {255, 251, 240, 0}, {160, 160, 164, 0}, {128, 128, 128, 0}, {255, 0, 0, 0},     {0, 255, 0, 0},
    {255, 255, 0, 0},   {0, 0, 255, 0},     {255, 0, 255, 0},   {0, 255, 255, 0},   {255, 255, 255, 0}};

}  // namespace

// A call that its sender waits for on another thread. Whatever becomes of it, its sender hears of the end: it ran, it threw,
// or the last copy of the closure that holds it went without having run.
class HandedCall {
public:
  struct Outcome {
    cc_LeafMutex<cc_LockRank::wake> mutex;
    std::condition_variable changed;
    bool over = false, ran = false;
    std::exception_ptr thrown;
  };

  HandedCall(std::function<void()> const& call, std::shared_ptr<Outcome> outcome)
      : call_(call), outcome_(std::move(outcome))
  {}
  HandedCall(HandedCall const&) = delete;
  HandedCall& operator=(HandedCall const&) = delete;
  ~HandedCall() { end(); }

  void run()
  {
    try {
      call_();
    } catch (...) {
      outcome_->thrown = std::current_exception();
    }
    outcome_->ran = true;
    end();
  }

private:
  void end()
  {
    std::lock_guard const lock(outcome_->mutex);
    outcome_->over = true;
    outcome_->changed.notify_all();
  }

  std::function<void()> const& call_;  // the sender's, who waits
  std::shared_ptr<Outcome> outcome_;
};

Core& Core::unstarted()
{
  // Never destroyed: threads and static objects of the application may outlast main.
  static Core* const core = new Core;
  return *core;
}

Core& Core::instance()
{
  Core& core = unstarted();
  if (!core.started_.load(std::memory_order_acquire))
    core.ensureStarted();
  return core;
}

void Core::ensureStarted()
{
  std::lock_guard const starting(startMutex_);
  if (started_)
    return;
  Ptr<Video> video = makeWindowVideo();
  InitOptions const headless;
  take(video ? std::move(video) : std::make_unique<NullVideo>(headless.screen, headless.depth));
}

bool Core::start(InitOptions const& options)
{
  if (options.video == InitOptions::headless)
    return start(std::make_unique<NullVideo>(options.screen, options.depth));
  Ptr<Video> video = makeWindowVideo();
  return video && start(std::move(video));
}

bool Core::start(Ptr<Video> video)
{
  int const bits = video->depth();
  if (bits != 8 && bits != 15 && bits != 16 && bits != 24 && bits != 32)
    return false;
  std::deque<Posted> dropped;  // goes last, under no lock
  std::lock_guard const starting(startMutex_);
  {
    Lock lock(mutex_);
    if (!tree_.tops().empty())
      return false;
  }
  dropped = take(std::move(video));
  ui_ = std::this_thread::get_id();
  watchUi();
  return true;
}

// Puts everything back to its first state on this video. There are no windows. Gives out what was posted.
std::deque<Core::Posted> Core::take(Ptr<Video> video)
{
  Lock lock(mutex_);
  video_ = std::move(video);
  std::deque<Posted> dropped = std::exchange(posted_, {});
  input_.clear();
  timers_.clear();
  active_ = focus_ = capture_ = {};
  pointer_ = {};
  buttons_ = mods_ = queuedButtons_ = 0;
  lastKeyRepeated_ = false;
  clipOn_ = false;
  click_ = {};
  cursor_ = {};
  quit_ = loopOver_ = false;
  virtualNow_ = 0;
  Size const screen = video_->screenSize();
  screenWidth_ = screen.w;
  screenHeight_ = screen.h;
  depth_ = video_->depth();
  tree_.find(tree_.desktop())->rect = {0, 0, screen.w, screen.h};

  Palette first{};
  std::copy_n(fixedColors, 10, first.begin());
  std::copy_n(fixedColors + 10, 10, first.begin() + 246);
  for (int i = 0; i < 236; ++i) {
    u8 const grey = static_cast<u8>(i * 255 / 235);
    first[static_cast<std::size_t>(10 + i)] = {grey, grey, grey, 0};
  }
  palettes_.clear();
  palette_ = &*palettes_.insert(first).first;
  started_ = true;
  lock.unlock();
  arrow_ = loadCursor(600);
  menus().forgetAnswers();
  return dropped;
}

bool Core::onUi() const
{
  std::thread::id const ui = ui_.load();
  return ui == std::thread::id() || ui == std::this_thread::get_id();
}

void Core::claimUi()
{
  std::thread::id none;
  if (ui_.compare_exchange_strong(none, std::this_thread::get_id()))
    watchUi();
}

// When the windows' thread ends its part is free again: whoever waits for it would wait for ever.
void Core::watchUi()
{
  struct Watch {
    Core* core = nullptr;
    ~Watch()
    {
      if (core)
        core->uiEnded();
    }
  };
  static thread_local Watch watch;
  watch.core = this;
}

void Core::uiEnded()
{
  std::thread::id me = std::this_thread::get_id();
  if (ui_.compare_exchange_strong(me, std::thread::id()))
    dropHanded();
}

void Core::wake()
{
  if (ui_.load() != std::this_thread::get_id())
    video_->wake();
}

// False if it will never have its turn.
bool Core::enqueue(Posted posted)
{
  {
    Lock lock(mutex_);
    if ((!posted.always && !tree_.find(posted.window)) || (posted.handed && (quit_ || loopOver_)))
      return false;
    posted_.push_back(std::move(posted));
  }
  wake();
  return true;
}

bool Core::callOnUi(std::function<void()> const& call)
{
  if (onUi()) {
    call();
    return true;
  }
  cc_LockCheck::waits(this, cc_LockRank::windowThread);
  auto const outcome = std::make_shared<HandedCall::Outcome>();
  {
    auto const handed = std::make_shared<HandedCall>(call, outcome);
    if (!enqueue({{}, 0, 0, 0, [handed] { handed->run(); }, true, true}))
      return false;
  }
  {
    cc_LeafWait lock(outcome->mutex);
    outcome->changed.wait(lock.native(), [&] { return outcome->over; });
  }
  if (outcome->thrown)
    std::rethrow_exception(outcome->thrown);
  return outcome->ran;
}

// Their closures end outside of the lock, which tells the senders.
void Core::dropHanded()
{
  std::vector<Posted> dropped;
  Lock lock(mutex_);
  for (Posted& posted : posted_)
    if (posted.handed)
      dropped.push_back(std::move(posted));
  std::erase_if(posted_, [](Posted const& posted) { return posted.handed; });
  lock.unlock();
}

void Core::callWhenOnUi(std::function<void()> call)
{
  if (onUi())
    call();
  else
    enqueue({{}, 0, 0, 0, std::move(call), true});
}

void Core::post(HWND window, std::function<void()> call) { enqueue({window, 0, 0, 0, std::move(call), false}); }

bool Core::postMessage(HWND window, unsigned message, WParam wParam, LParam lParam)
{
  bool const there = isWindow(window);
  enqueue({window, message, wParam, lParam, {}, false});
  return there;
}

namespace {

constexpr unsigned paletteChangedMessage = 785;

thread_local int paletteAnswers = 0;  // messages under way that tell of another window's colours

}  // namespace

LResult Core::deliver(HWND window, unsigned message, WParam wParam, LParam lParam)
{
  MessageProc proc;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(window);
    if (!w)
      return 0;
    proc = w->proc;
  }
  cc_LockCheck::Hold const dispatch(this, cc_LockRank::windowThread);
  struct Answer {
    int const by;
    explicit Answer(bool isOne) : by(isOne ? 1 : 0) { paletteAnswers += by; }
    Answer(Answer const&) = delete;
    Answer& operator=(Answer const&) = delete;
    ~Answer() { paletteAnswers -= by; }
  } const answer(message == paletteChangedMessage);
  return callProc(proc, window, message, wParam, lParam);
}

LResult Core::send(HWND window, unsigned message, WParam wParam, LParam lParam)
{
  if (onUi())
    return deliver(window, message, wParam, lParam);
  LResult answer = 0;
  callOnUi([&] { answer = deliver(window, message, wParam, lParam); });
  return answer;
}

LResult Core::callProc(MessageProc proc, HWND window, unsigned message, WParam wParam, LParam lParam)
{
  return proc ? proc(window, message, wParam, lParam) : defaultProc(window, message, wParam, lParam);
}

MessageProc Core::subclass(HWND window, MessageProc proc)
{
  Lock lock(mutex_);
  Window* const w = tree_.find(window);
  return w ? std::exchange(w->proc, proc ? proc : &defaultProc) : nullptr;
}

LResult Core::defaultProc(HWND window, unsigned message, WParam wParam, LParam lParam)
{
  Core& core = instance();
  switch (message) {
  case paintMessage:
    core.validate(window, nullptr);
    return 0;
  case closeMessage:
    core.destroy(window);
    return 0;
  case setCursorMessage: {
    Lock lock(core.mutex_);
    Window const* const w = core.tree_.find(window);
    HCURSOR const cursor = w ? w->cursor : HCURSOR{};
    lock.unlock();
    core.setCursor(cursor);
    return 0;
  }
  case wheelMessage:
    return core.send(core.parent(window), message, wParam, lParam);
  default:
    return 0;
  }
}

bool Core::pump(int timeoutMs)
{
  claimUi();
  if (quit_ || !onUi())
    return !quit_;
  loopOver_ = false;
  if (!round() && timeoutMs != 0 && !quit_) {
    wait(timeoutMs);
    round();
  }
  return !quit_;
}

int Core::run()
{
  claimUi();
  if (onUi())
    loopOver_ = false;
  while (onUi() && modalRound()) {
  }
  loopOver_ = onUi();
  quit_ = false;  // an application may run again
  dropHanded();
  return quitCode_;
}

void Core::quit(int code)
{
  quitCode_ = code;
  quit_ = true;
  dropHanded();
  wake();
}

bool Core::modalRound()
{
  if (!quit_ && !round(/*alone=*/true) && !quit_)
    wait(-1);
  return !quit_;
}

void Core::wait(int timeoutMs)
{
  if (!video_->virtualClock()) {
    Lock lock(mutex_);
    for (Timer const& timer : timers_) {
      std::uint64_t const time = now();
      int const due =
          timer.deadline <= time ? 0 : static_cast<int>(std::min<std::uint64_t>(timer.deadline - time, 60000));
      if (timeoutMs < 0 || due < timeoutMs)
        timeoutMs = due;
    }
  }
  if (timeoutMs != 0)
    video_->wait(timeoutMs);
}

bool Core::round(bool alone)
{
  ++round_;
  video_->poll(*this, alone);
  bool any = false;
  for (int i = 0; i < maxStepsPerRound && !quit_ && step(); ++i)
    any = true;
  return any;
}

void Core::drain()
{
  claimUi();
  loopOver_ = false;
  for (int i = 0; i < maxRoundsPerDrain && round(); ++i) {
  }
}

// Posted messages come before input, input before timers, timers before painting.
bool Core::step()
{
  if (dirtyPending_.exchange(false))
    presentAll(/*whole=*/false);
  return stepPosted() || stepInput() || stepTimer() || stepPaint();
}

bool Core::stepPosted()
{
  cc_LockCheck::Hold const dispatch(this, cc_LockRank::windowThread);
  Posted posted;
  {
    Lock lock(mutex_);
    if (posted_.empty())
      return false;
    posted = std::move(posted_.front());
    posted_.pop_front();
    if (!posted.always && !tree_.find(posted.window))
      return true;
  }
  if (posted.call)
    posted.call();
  else
    deliver(posted.window, posted.message, posted.wParam, posted.lParam);
  return true;
}

bool Core::stepInput()
{
  Input input;
  {
    Lock lock(mutex_);
    if (input_.empty())
      return false;
    input = input_.front();
    input_.pop_front();
  }
  handle(input);
  return true;
}

// Each timer once a round, so that one that is always late does not keep windows from being painted.
bool Core::stepTimer()
{
  Timer due;
  {
    Lock lock(mutex_);
    std::uint64_t const time = now();
    Timer* next = nullptr;
    for (Timer& timer : timers_)
      if (timer.deadline <= time && timer.round != round_ && (!next || timer.deadline < next->deadline))
        next = &timer;
    if (!next)
      return false;
    next->round = round_;
    next->deadline += next->interval;
    if (next->deadline <= time)
      next->deadline = time + next->interval;
    due = *next;
  }
  if (due.call)
    due.call();
  else
    deliver(due.window, timerMessage, due.id, 0);
  return true;
}

std::uint64_t Core::now() const
{
  if (video_->virtualClock())
    return virtualNow_;
  using namespace std::chrono;
  return static_cast<std::uint64_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

void Core::advance(unsigned ms)
{
  std::uint64_t const target = virtualNow_ + ms;
  for (;;) {
    drain();
    std::uint64_t next = target;
    {
      Lock lock(mutex_);
      for (Timer const& timer : timers_)
        next = std::min(next, timer.deadline);
    }
    virtualNow_ = std::max(next, virtualNow_.load());
    if (next == target || quit_)
      break;
  }
  drain();
}

void Core::setTimer(HWND window, uptr id, unsigned ms)
{
  if (!onUi())
    return post(window, [=, this] { setTimer(window, id, ms); });
  Lock lock(mutex_);
  if (!tree_.find(window))
    return;
  std::erase_if(timers_, [&](Timer const& t) { return t.window == window && t.id == id && !t.call; });
  std::uint64_t const interval = std::max(ms, 1u);
  timers_.push_back({window, id, interval, now() + interval, 0, {}});
}

void Core::killTimer(HWND window, uptr id)
{
  if (!onUi())
    return post(window, [=, this] { killTimer(window, id); });
  Lock lock(mutex_);
  std::erase_if(timers_, [&](Timer const& t) { return t.window == window && t.id == id && !t.call; });
}

void Core::callEvery(uptr key, unsigned ms, std::function<void()> call)
{
  stopCalls(key);
  Lock lock(mutex_);
  timers_.push_back({{}, key, ms, now() + ms, 0, std::move(call)});
}

void Core::stopCalls(uptr key)
{
  Lock lock(mutex_);
  std::erase_if(timers_, [&](Timer const& t) { return t.id == key && t.call; });
}

void Core::grab(InputGrab& grab) { grabs_.push_back(&grab); }

void Core::endGrab(InputGrab const& grab) { std::erase(grabs_, &grab); }

Size Core::screenSize() const { return {screenWidth_, screenHeight_}; }

std::span<PaletteEntry const, 256> Core::palette() const
{
  return std::span<PaletteEntry const, 256>(*palette_.load());
}

std::size_t Core::PaletteHash::operator()(Palette const& palette) const
{
  std::uint64_t hash = 14695981039346656037u;
  for (PaletteEntry const& e : palette)
    hash = (hash ^ (static_cast<std::uint64_t>(e.r) << 16 | static_cast<std::uint64_t>(e.g) << 8 | e.b)) * 1099511628211u;
  return static_cast<std::size_t>(hash);
}

// Only entries 10 to 245 are free. A former palette that comes back is found again, so few are ever kept.
// A window that answers the change of another one makes do with those colours; two that took the screen from each other
// would never come to rest.
unsigned Core::realize(HWND window, std::span<PaletteEntry const> colors)
{
  if (depth() != 8)
    return 0;
  unsigned count = 0;
  std::vector<HWND> others;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(window);
    if (!w)
      return 0;
    Palette next = *palette_.load();
    for (std::size_t i = 10; i < std::min<std::size_t>(colors.size(), 246); ++i) {
      PaletteEntry const color{colors[i].r, colors[i].g, colors[i].b, 0};
      count += next[i] != color;
      next[i] = color;
    }
    if (count == 0 || paletteAnswers > 0)
      return count;
    palette_ = &*palettes_.insert(next).first;
    for (Window const* top : tree_.tops())
      if (top != WindowTree::top(*w))
        others.push_back(top->handle);
  }
  callWhenOnUi([this] { presentAll(/*whole=*/true); });
  for (HWND other : others)
    postMessage(other, paletteChangedMessage, reinterpret_cast<WParam>(window), 0);
  return count;
}

void Core::changeScreen(Size screen, int depth)
{
  std::vector<HWND> tops;
  {
    Lock lock(mutex_);
    if (!(screenSize() == screen) || depth_ != depth)
      ++screenChanges_;
    screenWidth_ = screen.w;
    screenHeight_ = screen.h;
    depth_ = depth;
    tree_.find(tree_.desktop())->rect = {0, 0, screen.w, screen.h};
    for (Window const* top : tree_.tops())
      tops.push_back(top->handle);
  }
  for (HWND top : tops) {
    renewBacking(top);
    Lock lock(mutex_);
    if (Window* const w = tree_.find(top))
      tree_.invalidateTree(*w, {0, 0, w->rect.width(), w->rect.height()});
  }
  for (HWND top : tops)
    deliver(top, displayChangeMessage, static_cast<WParam>(depth), static_cast<LParam>(screen.h << 16 | screen.w));
}

}  // namespace plat::portable
