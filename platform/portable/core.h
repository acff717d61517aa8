// The portable window core: windows, messages, input, timers and scroll bars over a Video that may be a real screen or
// none. One thread, the first to pump, to show a window or to call init, runs all procedures; what other threads may
// call says window.h. Records and queues lie under one lock that is never held while a procedure, a closure or the
// video runs.
#pragma once

#include "platform/app.h"
#include "platform/portable/window_tree.h"
#include "platform/window.h"

#include <atomic>
#include <deque>
#include <mutex>
#include <thread>
#include <unordered_set>

namespace plat::portable {

// Takes all pointer and key input while it stands: a menu that is open, a scroll bar that is held.
class InputGrab {
public:
  virtual ~InputGrab() = default;
  virtual void pointer(Point screen, unsigned pressed, unsigned released) = 0;
  virtual void key(unsigned virtualKey, bool down) = 0;
};

class BarTracker;

class Core final : public WindowSystem, public VideoSink {
public:
  static Core& instance();  // started by itself if init was not called
  static Core& unstarted();

  bool start(InitOptions const&);
  bool start(Ptr<Video>);
  bool virtualClock() const { return video_->virtualClock(); }
  bool onUi() const;  // also true while no thread has taken the part yet

  HWND create(WindowDesc const&) override;
  bool destroy(HWND) override;
  bool isWindow(HWND) override;
  HWND parent(HWND) override;
  HWND desktop() override;
  bool onOwnThread(HWND) override;
  void post(HWND, std::function<void()>) override;
  MessageProc subclass(HWND, MessageProc) override;
  LResult callProc(MessageProc, HWND, unsigned message, WParam, LParam) override;
  LResult send(HWND, unsigned message, WParam, LParam) override;
  bool postMessage(HWND, unsigned message, WParam, LParam) override;
  Rect clientRect(HWND) override;
  Rect windowRect(HWND) override;
  Point clientToScreen(HWND, Point) override;
  void place(HWND, Rect const*, int show) override;
  void center(HWND) override;
  bool visible(HWND) override;
  u32 style(HWND) override;
  u32 exStyle(HWND) override;
  Rect frameRect(Rect client, u32 style, bool menu, u32 exStyle) override;
  int metric(int index) override;
  int desktopDepth() override;
  void invalidate(HWND, Rect const*, bool erase) override;
  void update(HWND) override;
  Rect updateRect(HWND) override;
  void validate(HWND, Rect const*) override;
  HDC getDC(HWND) override;
  void releaseDC(HWND, HDC) override;
  HWND setCapture(HWND) override;
  void releaseCapture() override;
  void clipCursor(Rect const* screen) override;
  Point cursorPos() override;
  void setFocus(HWND) override;
  void setTimer(HWND, uptr id, unsigned ms) override;
  void killTimer(HWND, uptr id) override;
  HCURSOR loadCursor(int id) override;
  void setCursor(HCURSOR) override;
  HCURSOR classCursor(HWND, HCURSOR) override;
  void showScrollBar(HWND, int bar, bool) override;
  void setScrollPos(HWND, int bar, i32 pos, bool redraw) override;
  void setScrollInfo(HWND, int bar, ScrollInfo const&, bool redraw) override;

  void pointer(HWND top, Point, unsigned buttons, unsigned mods, int clicks) override;
  void wheel(HWND top, Point, int turn, unsigned mods) override;
  void key(unsigned virtualKey, bool down, bool repeat, unsigned mods) override;
  void character(u8) override;
  void closeAsked(HWND top) override;
  void resized(HWND top, Size) override;
  void moved(HWND top, Point) override;
  void minimized(HWND top, bool) override;
  void focused(HWND top, bool) override;
  void exposed(HWND top) override;
  void screenChanged(Size, int depth) override;
  void gone(HWND top) override;
  void dropped(HWND top, std::vector<std::string> files) override;

  bool pump(int timeoutMs);
  int run();
  void quit(int code);
  bool round(bool alone = false);             // all that is due now; false when there was nothing
  void drain();                               // rounds until there is nothing
  bool modalRound();                          // a round of a nested loop, waiting for work; false after quit
  void advance(unsigned ms);                  // of the virtual clock
  void turnClock(unsigned ms) { virtualNow_ += ms; }  // alone
  std::uint64_t now() const;                  // milliseconds
  // And waits for it. What it throws comes out here. False when it never ran: quit was called, the loop or its thread
  // has ended, or all was started anew.
  bool callOnUi(std::function<void()> const&);

  // A window over a video window that others made. Null when make gives none.
  HWND adopt(std::function<Ptr<VideoWindow>(HWND, Rect& screen)> const& make);
  HWND attachNative(uptr id);
  void detach(HWND);

  Size screenSize() const;
  int depth() const { return depth_.load(std::memory_order_relaxed); }
  std::span<PaletteEntry const, 256> palette() const;
  unsigned realize(HWND, std::span<PaletteEntry const>);
  void changeScreen(Size, int depth);
  u32 screenChanges() const { return screenChanges_; }
  bool paintVisible(HWND, void* context, PaintBody, Rect const& dirtyOnScreen);
  u32 shownPel(HWND, Point client);
  u32 backingPel(HWND top, Point);        // scroll bars too
  bool visibleAt(HWND, Point client);     // not covered there, nor outside
  std::vector<u32> shownPels(HWND, Size&);

  VideoWindow* videoWindow(HWND top);  // the windows' thread
  void dropHandler(std::function<void(HWND, std::vector<std::string> const&)>);
  HWND active();
  HWND focus();
  HWND capture();
  HCURSOR currentCursor();
  std::string title(HWND);
  ScrollBar scrollBar(HWND, int bar);
  HCURSOR cursorOf(HWND);
  void raiseTopmost(HWND);  // in front of its siblings for good
  HMENU systemMenu(HWND);
  void systemMenu(HWND, HMENU);

  // The one that came last has the input. They may go in any order.
  void grab(InputGrab&);
  void endGrab(InputGrab const&);
  // Calls again and again until the key is given to stopCalls. The windows' thread.
  void callEvery(uptr key, unsigned ms, std::function<void()>);
  void stopCalls(uptr key);

private:
  friend class BarTracker;
  using Lock = std::unique_lock<cc_LeafMutex<cc_LockRank::windowTable>>;
  using Painting = std::lock_guard<BackingMutex>;
  using Palette = std::array<PaletteEntry, 256>;
  struct PaletteHash {
    std::size_t operator()(Palette const&) const;
  };

  struct Posted {
    HWND window = {};
    unsigned message = 0;
    WParam wParam = 0;
    LParam lParam = 0;
    std::function<void()> call;  // in place of the message
    bool always = false;       // runs whatever became of the window
    bool handed = false;       // its sender waits on another thread
  };
  struct Timer {
    HWND window = {};
    uptr id = 0;
    std::uint64_t interval = 0, deadline = 0, round = 0;
    std::function<void()> call;  // in place of the message
  };
  struct Input {
    enum class Kind { pointer, wheel, key, character, close, size, move, minimize, focus } kind = Kind::pointer;
    HWND top = {};
    Point at;
    unsigned buttons = 0, mods = 0, key = 0;
    int clicks = 0, turn = 0;
    bool on = false, repeat = false;
    bool moveOnly = false;  // no button changed
  };
  struct Cursor {
    int id = 0;
    CursorShape shape;
  };
  struct Click {
    HWND window = {};
    unsigned button = 0;
    Point at;
    std::uint64_t time = 0;
    int count = 0;
  };

  Core() = default;
  void ensureStarted();
  std::deque<Posted> take(Ptr<Video>);
  void claimUi();
  void watchUi();  // sees the end of the calling thread
  void uiEnded();
  void dropHanded();
  void wake();
  void callWhenOnUi(std::function<void()>);  // at once, or in turn from another thread
  bool enqueue(Posted);
  void enqueue(Input const&);
  static LResult defaultProc(HWND, unsigned message, WParam, LParam);
  LResult deliver(HWND, unsigned message, WParam, LParam);  // on the windows' thread
  bool step();
  bool stepPosted();
  bool stepInput();
  bool stepTimer();
  bool stepPaint();
  bool paint(HWND);
  void wait(int timeoutMs);

  void show(HWND, int how);
  void setShown(HWND, bool);
  void setMinimized(HWND, bool);
  void move(HWND, Rect const&, bool tellVideo);
  void sendSize(HWND, unsigned kind);
  bool quiet(HWND);
  void destroyRecord(HWND);
  void leave(HWND);  // a window that goes out of sight gives up capture, focus and activation
  void activate(HWND top);
  void deactivate(HWND top);
  void moveFocus(HWND);

  void openGlass(HWND);  // video window and backing of a top-level window
  void renewBacking(HWND);
  void makeBacking(HWND);
  void present(Backing&);
  void presentAll(bool whole);
  void presentOrWake(Backing&);
  void paintBars(HWND);

  void handle(Input const&);
  void handlePointer(Input const&);
  void handleWheel(Input const&);
  void handleKey(Input const&);
  void handleCharacter(Input const&);
  void mouseMessage(HWND top, unsigned message, Point screen, unsigned bits);
  unsigned pressMessage(HWND top, unsigned button, Point screen, int clicks);
  HWND target(HWND top, Point screen);
  HWND under(HWND top, Point screen);
  Point clipped(Point) const;
  void changeBar(HWND, int bar, bool redraw, std::function<void(ScrollBar&)> const& change);
  bool pressOnBar(HWND, Point screen, unsigned mods);
  void endTracking(HWND);  // of a bar of this window or of one inside it

  cc_LeafMutex<cc_LockRank::windowTable> mutex_;
  std::function<void(HWND, std::vector<std::string> const&)> dropHandler_;
  WindowTree tree_;
  std::deque<Posted> posted_;
  std::deque<Input> input_;
  std::vector<Timer> timers_;
  HWND active_ = {}, focus_ = {}, capture_ = {};
  Point pointer_;
  unsigned buttons_ = 0, mods_ = 0;
  unsigned queuedButtons_ = 0;
  bool lastKeyRepeated_ = false;
  bool clipOn_ = false;
  Rect clip_;
  Click click_;
  HandleTable<HCURSOR, Cursor> cursors_;
  std::vector<HCURSOR> cursorHandles_;
  HCURSOR cursor_ = {}, arrow_ = {};
  std::unordered_set<Palette, PaletteHash> palettes_;  // a drawing thread may still read a former one

  // Of the windows' thread alone.
  std::vector<InputGrab*> grabs_;
  std::shared_ptr<BarTracker> barTracker_;
  std::uint64_t round_ = 0;
  std::vector<std::shared_ptr<Backing>> presenting_;

  Ptr<Video> video_;
  std::atomic<bool> started_ = false;
  cc_LeafMutex<cc_LockRank::windowStart> startMutex_;
  std::atomic<std::thread::id> ui_ = {};
  std::atomic<bool> quit_ = false;
  std::atomic<bool> loopOver_ = false;  // run() has returned, and nothing has pumped since
  std::atomic<int> quitCode_ = 0;
  std::atomic<std::uint64_t> virtualNow_ = 0;
  std::atomic<bool> dirtyPending_ = false;
  std::atomic<int> depth_ = 32;
  std::atomic<i32> screenWidth_ = 0, screenHeight_ = 0;
  std::atomic<u32> screenChanges_ = 0;
  std::atomic<Palette const*> palette_ = nullptr;
};

}  // namespace plat::portable
