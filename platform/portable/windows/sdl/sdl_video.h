// The screen through SDL: X11, Wayland or, when asked for, the dummy driver.
#pragma once

#include "foundation/leaf_mutex.h"
#include "platform/portable/windows/video.h"

#include <atomic>
#include <condition_variable>

#include <SDL_events.h>

struct SDL_Cursor;

namespace plat::portable {

class SdlWindow;

// SDL's event queue may be the application's too: when the application started SDL, or has windows of its own. Then
// events of its windows stay in the queue. In a loop of the application only those of windows that the library made are
// taken; the rest comes by handleSdlEvent. In run() and in a nested loop of the library (a menu, a message box) the
// application's loop stands still, so what is meant for attached windows is taken as well.
class SdlVideo final : public Video {
public:
  static Ptr<Video> make();  // null when there is no display
  static SdlVideo* current();  // null while the library runs headless

  ~SdlVideo() override;

  Size screenSize() override;
  int depth() override { return 32; }
  bool virtualClock() const override { return false; }
  Ptr<VideoWindow> createWindow(HWND, std::string const& title, Rect const& screen, u32 style) override;
  Ptr<VideoWindow> attach(HWND, uptr native, Rect& screen) override;
  Ptr<VideoWindow> attachSdl(HWND, SDL_Window*, Rect& screen);
  void cursor(CursorShape const*) override;
  void capture(VideoWindow*) override;
  void clip(Rect const* screen) override;
  void poll(VideoSink&, bool alone) override;
  void wait(int milliseconds) override;
  void wake() override;

  bool handle(SDL_Event const&, VideoSink&);  // true if it was ours
  void add(SdlWindow&);
  void remove(SdlWindow&);

private:
  struct Cursor {
    CursorShape shape;
    SDL_Cursor* cursor;
  };
  enum class Queue { empty, others, ours };

  SdlVideo(bool foreignSdl, u32 wakeEvent);
  bool shared() const;  // the queue holds events that are not for us
  SdlWindow* find(SDL_Event const&);
  SdlWindow* find(u32 id);
  bool takes(SDL_Event const&, SdlWindow const*) const;
  static int take(void* video, SDL_Event*);
  static int look(void* video, SDL_Event*);
  Queue lookAtQueue();
  bool canBlock() const;
  void enter();
  void leave();
  void applyCursor();
  void applyClip(SdlWindow&);
  Size measureScreen() const;

  bool translate(SDL_Event const&, SdlWindow*, VideoSink&);
  void windowEvent(SDL_Event const&, SdlWindow&, VideoSink&);
  void pointerEvent(SDL_Event const&, SdlWindow&, VideoSink&);
  void wheelEvent(SDL_Event const&, SdlWindow&, VideoSink&);
  void keyEvent(SDL_Event const&, SdlWindow&, VideoSink&);
  void textEvent(SDL_Event const&, SdlWindow&, VideoSink&);
  void focusOn(SdlWindow&, VideoSink&);
  void dropEvent(SDL_Event const&, SdlWindow&, VideoSink&);
  void systemEvent(SDL_Event const&, VideoSink&);
  void flush(VideoSink&);

  bool const foreignSdl_;  // the application started SDL before us
  u32 const wakeEvent_;
  std::vector<SdlWindow*> windows_;
  bool alone_ = false;
  Size screen_;

  // While the queue is looked through.
  VideoSink* sink_ = nullptr;
  std::vector<SDL_Event> taken_;
  Queue seen_ = Queue::empty;
  std::size_t left_ = 0;  // events of others
  struct Mark {
    u32 type = 0, timestamp = 0;
    bool operator==(Mark const&) const = default;
  };
  Mark oldest_;    // of the events of others
  Mark reported_;  // for which the last wait ended

  u8 systemEvents_ = 0;  // what the application had chosen for them
  int children_ = 0;

  unsigned buttons_ = 0;
  float wheelRest_ = 0;  // of fine turns, below one unit
  int lastKey_ = 0;      // SDL's code of the key that went down last, and the modifiers then
  unsigned lastKeyMods_ = 0;

  std::vector<Cursor> cursors_;
  SDL_Cursor* cursor_ = nullptr;
  bool hidden_ = false;
  bool inside_ = false;  // the pointer is over a window of ours
  SDL_Cursor* foreignCursor_ = nullptr;
  bool foreignHidden_ = false;
  bool clipOn_ = false;
  Rect clip_;

  cc_LeafMutex<cc_LockRank::wake> wakeMutex_;
  std::condition_variable woken_;
  bool awake_ = false;
  std::atomic<bool> wakePending_ = false;
};

}  // namespace plat::portable
