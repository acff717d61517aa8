// Menus by handle, tracked popups, and message boxes. Popups and boxes are windows of the core, in front of all others
// of their top-level window.
#pragma once

#include "foundation/leaf_mutex.h"
#include "platform/portable/raster/handle_table.h"
#include "platform/window.h"

#include <deque>

namespace plat::portable {

struct MenuItem {
  unsigned id = 0;  // 0 without popup: a line
  std::string text;
  bool enabled = true, checked = false, radio = false;
  HMENU popup = {};
};

struct Menu {
  std::vector<MenuItem> items;
};

class Menus final : public MenuSystem {
public:
  HMENU load(int id) override;
  void destroy(HMENU) override;
  HMENU sub(HMENU, int index) override;
  HMENU system(HWND) override;
  int count(HMENU) override;
  unsigned itemId(HMENU, int index) override;
  void enable(HMENU, unsigned id, bool) override;
  void check(HMENU, unsigned id, bool) override;
  void radio(HMENU, unsigned first, unsigned last, unsigned id) override;
  void track(HMENU, Point screen, HWND owner) override;
  int messageBox(HWND owner, std::string const& text, std::string const& caption, unsigned flags) override;

  std::vector<MenuItem> items(HMENU);    // a copy; empty for a stale handle
  bool enabled(HMENU, unsigned itemId);  // false for an item that does not exist

  void answerBox(int result, std::function<void()> meanwhile);
  void answerMenu(unsigned id);
  void forgetAnswers();
  std::pair<std::string, std::string> lastBox();  // text and caption of the box that was shown last
  std::vector<MenuItem> lastMenu();               // the items of the menu that was tracked last, as they then were

private:
  struct Answer {
    int result = 0;
    std::function<void()> meanwhile;
    bool waiting = false;  // there was one
  };

  int serve(class Box&);

  HMENU build(std::vector<MenuEntry> const&);
  void change(HMENU, unsigned first, unsigned last, std::function<void(MenuItem&)> const&);

  cc_LeafMutex<cc_LockRank::menus> mutex_;
  HandleTable<HMENU, Menu> menus_;
  std::deque<Answer> boxAnswers_;
  std::deque<unsigned> menuAnswers_;
  std::pair<std::string, std::string> lastBox_;
  std::vector<MenuItem> lastMenu_;
};

Menus& menus();

}  // namespace plat::portable
