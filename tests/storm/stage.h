// The stage on which a storm blows: up to four windows, four displays, and any number of frames and shapes, with hooks that do
// what was planned for them.
#pragma once

#include "backend/win32/win32_display.h"
#include "backend/win32/win32_root.h"
#include "platform/app.h"
#include "platform/testing.h"
#include "platform/window.h"
#include "tests/storm/storm.h"

#include <stdexcept>

class NoisyDisplay;
class StormShape;

enum class HookKind : std::uint8_t { mouse, drag, state, change, geometry, paint, count };

class StormStage {
public:
  static constexpr std::size_t kWindows = 4, kDisplays = 4, kMaxNodes = 48;
  static constexpr int kMaxDepth = 3;

  StormStage(StormSwitches const&, StormStats&);
  StormStage(StormStage const&) = delete;
  StormStage& operator=(StormStage const&) = delete;
  ~StormStage();

  bool step(StormOp const&);  // false: failed
  std::string const& failure() const { return failure_; }

  // For what lives on the stage.
  void born(ccUIObject* node) { nodes_.push_back(node); }
  void dies(ccUIObject* node);
  void born(NoisyDisplay*, std::size_t slot);
  void dies(NoisyDisplay*);
  void hooked(HookKind, ccUIObject* self);

  // For the operations.
  void perform(StormOp const&);  // exceptions pass
  bool on(StormGroup g) const { return switches_[static_cast<std::size_t>(g)]; }
  ccUIObject* node(unsigned n) const;   // 255: the one whose hook is at work; null if there is none
  ccUIFrame* frame(unsigned n) const;   // a control frame or shapes frame, made by an operation
  ccUIFrame* home(unsigned n) const;    // where frames may stand
  StormShape* shape(unsigned n) const;
  NoisyDisplay* display(unsigned n) const;
  std::size_t freeDisplay() const;      // kDisplays: none
  HWND window(unsigned n) const;
  HWND& windowSlot(unsigned n) { return windows_[n % kWindows]; }
  bool shared(HWND) const;              // more than one display stands on it
  void makeWindow(unsigned slot, unsigned shape);
  void makeDisplay(HWND);
  void planHook(HookKind, unsigned count, StormOp const&);
  void planThrow(HookKind, unsigned count, unsigned what);
  void planMemory(unsigned nth) { memory_ = nth; }
  bool roomForNodes() const { return nodes_.size() < kMaxNodes; }
  void rare(unsigned n) { lookEvery_ = n; }
  bool nested() const { return depth_ > 0; }  // inside a hook
  bool painting() const { return painting_ > 0; }
  void screen(plat::Size, int depth);
  plat::Size screenSize() const { return screenSize_; }
  int screenDepth() const { return screenDepth_; }
  void trouble() { trouble_ = true; }   // what the device was told to do wrong lasts for this step

  long pointerX = 20, pointerY = 15;
  unsigned buttons = 0;

private:
  struct Plan {
    HookKind kind;
    unsigned count;
    bool throws;
    unsigned what;
    StormOp op;
  };

  void outermost_(StormOp const&);
  void drain_();
  void escaped_();
  void lowerLocks_();
  void endTrouble_();
  void check_();
  void checkLocks_();
  void checkTrees_();
  void checkTablet_(ccUITablet&);
  void checkNode_(ccUIObject&, ccUIRootObject*, int state);
  void checkPictures_();
  void checkPicture_(NoisyDisplay&);
  void checkThatItMoves_(NoisyDisplay&, plat::Size);
  bool comparable_(NoisyDisplay&) const;
  void fail_(std::string const& kind, std::string const& text);

  StormSwitches switches_;
  StormStats& stats_;
  std::array<HWND, kWindows> windows_{};
  std::array<NoisyDisplay*, kDisplays> displays_{};
  std::vector<ccUIObject*> nodes_;  // in the order of their birth, so that a script tells all
  std::vector<Plan> plans_;
  ccUIObject* self_ = nullptr;
  int depth_ = 0;
  int painting_ = 0;
  bool quiet_ = false;  // hooks rest
  bool trouble_ = false;
  bool escapedNow_ = false;
  unsigned memory_ = 0;
  unsigned lookEvery_ = 1;
  long stepNumber_ = 0;
  plat::Size screenSize_;
  int screenDepth_ = 32;
  std::string failure_;
};

struct StormThrow : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The tables of operations by topic.
void cfAddImageOps(std::vector<StormRow>&);
void cfAddWindowOps(std::vector<StormRow>&);
void cfAddTreeOps(std::vector<StormRow>&);
void cfAddHookOps(std::vector<StormRow>&);
