// A headless screen for each test, and windows that write down the messages they get.
#pragma once

#include "platform/app.h"
#include "platform/testing.h"
#include "platform/window.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

struct Message {
  HWND window;
  unsigned number;
  plat::WParam wParam;
  plat::LParam lParam;
};

// What the recording procedure saw since the last clear(), and what it does besides chaining to the default.
struct Recorder {
  std::vector<Message> messages;
  std::function<bool(Message const&, plat::LResult&)> hook;  // true: the answer stands and nothing is chained

  void clear() { messages.clear(); }
  std::vector<unsigned> numbers() const
  {
    std::vector<unsigned> list;
    for (Message const& m : messages)
      list.push_back(m.number);
    return list;
  }
  std::vector<unsigned> numbersOf(HWND window) const
  {
    std::vector<unsigned> list;
    for (Message const& m : messages)
      if (m.window == window)
        list.push_back(m.number);
    return list;
  }
  std::vector<Message> of(unsigned number) const
  {
    std::vector<Message> list;
    for (Message const& m : messages)
      if (m.number == number)
        list.push_back(m);
    return list;
  }
};

inline Recorder recorder;

inline plat::LResult record(HWND window, unsigned number, plat::WParam wParam, plat::LParam lParam)
{
  Message const message{window, number, wParam, lParam};
  recorder.messages.push_back(message);
  plat::LResult answer = 0;
  if (recorder.hook && recorder.hook(message, answer))
    return answer;
  return plat::platform().windows.callProc(nullptr, window, number, wParam, lParam);
}

class WindowTest : public testing::Test {
protected:
  static constexpr plat::u32 child = 0x40000000, shown = 0x10000000;

  explicit WindowTest(int depth = 32)
  {
    plat::InitOptions options;
    options.video = plat::InitOptions::headless;
    options.depth = depth;
    options.screen = {800, 600};
    EXPECT_TRUE(plat::init(options));
    recorder = {};
  }

  ~WindowTest() override
  {
    recorder.hook = nullptr;
    for (HWND window : made_)
      windows().destroy(window);
    plat::testing::drain();
  }

  static plat::WindowSystem& windows() { return plat::platform().windows; }

  HWND top(plat::Rect rect, plat::u32 style = shown)
  {
    plat::WindowDesc desc;
    desc.style = style;
    desc.rect = rect;
    desc.proc = &record;
    HWND const window = windows().create(desc);
    made_.push_back(window);
    return window;
  }

  static HWND kid(HWND parent, plat::Rect rect, plat::u32 style = child | shown)
  {
    plat::WindowDesc desc;
    desc.parent = parent;
    desc.style = style;
    desc.rect = rect;
    desc.proc = &record;
    return windows().create(desc);
  }

  // Lets everything due happen and forgets it.
  static void settle()
  {
    plat::testing::drain();
    recorder.clear();
  }

private:
  std::vector<HWND> made_;
};
