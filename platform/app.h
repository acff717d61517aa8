// The message loop and the embedding of windows that an application made by other means.
#pragma once

#include "platform/types.h"

#include <functional>
#include <string>
#include <vector>

namespace plat {

// Depth and screen size are those of a headless screen; a real one brings its own.
struct InitOptions {
  enum Video { window, headless } video = window;
  int depth = 32;
  Size screen{1280, 1024};
};

// Optional, before first use; the caller becomes the thread of all windows. Without it the first use opens windows
// where there is a display, and goes headless where there is none. False when the choice cannot be had or windows
// stand already.
bool init(InitOptions const& = {});

// One round: native events, posted messages, input, timers, painting. Waits up to timeoutMs (negative: without limit)
// when there is nothing to do. False after quit.
bool pump(int timeoutMs = 0);

int run();  // pumps until quit, whose code it returns; for applications that have no loop of their own
void quit(int code);

// A window of the machine (a window handle on Windows, elsewhere an X11 window id) as a window of ours. Null where that
// is not possible. The window itself stays its maker's.
HWND attachNativeWindow(std::uintptr_t id);
void detach(HWND);

// Called on the windows' thread with a top-level window and the paths (UTF-8) of files that the operator has dropped on
// it. One for all windows; empty: none.
void dropHandler(std::function<void(HWND, std::vector<std::string> const&)>);

}  // namespace plat
