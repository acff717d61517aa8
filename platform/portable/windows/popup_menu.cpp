// Tracking of popup menus: a window for each open menu, and a grab on all input while they stand.
#include "platform/messages.h"
#include "platform/portable/windows/attempts.h"
#include "platform/portable/windows/menus.h"
#include "platform/portable/windows/popup.h"

#include <algorithm>

namespace plat::portable {
namespace {

constexpr i32 border = 2, itemHeight = 20, lineHeight = 8, markWidth = 22, rightMargin = 24;

class MenuTracker final : public InputGrab {
public:
  MenuTracker(HMENU menu, Point screen, HWND owner) : owner_(owner), start_(Core::instance().cursorPos())
  {
    open(menu, screen);
  }

  // The chosen id, 0 when dismissed.
  unsigned run()
  {
    Core& core = Core::instance();
    Standing const standing(*this);
    for (Level const& level : levels_)
      core.invalidate(level.window, nullptr, false);
    while (!done_ && !levels_.empty() && core.isWindow(levels_.front().window) && core.modalRound()) {
    }
    closeTo(0);
    return chosen_;
  }

  void pointer(Point screen, unsigned pressed, unsigned released) override
  {
    buttons_ = (buttons_ | pressed) & ~released;
    armed_ = armed_ || pressed || screen != start_;
    if (dismissed_) {
      done_ = buttons_ == 0;
      return;
    }
    std::size_t depth = levels_.size();
    while (depth > 0 && !contains(levels_[depth - 1].screen, screen))
      --depth;
    if (depth == 0) {
      if (pressed)
        dismiss();
      return;
    }
    int const index = itemAt(levels_[depth - 1], screen);
    setHot(depth - 1, index);
    if (released && armed_ && levels_.size() >= depth)
      choose(depth - 1);
  }

  void key(unsigned virtualKey, bool down) override
  {
    if (!down || dismissed_ || levels_.empty())
      return;
    std::size_t const depth = levels_.size() - 1;
    switch (virtualKey) {
    case key::escape:
      if (depth == 0) {
        dismiss();
        return;
      }
      return closeTo(depth);
    case key::left:
      if (depth > 0)
        closeTo(depth);
      return;
    case key::up:
      return step(depth, -1);
    case key::down:
      return step(depth, 1);
    case key::right:
    case key::enter:
      if (levels_[depth].hot >= 0 && item(depth).popup) {
        setHot(depth, levels_[depth].hot);
        if (levels_.size() > depth + 1)
          step(depth + 1, 1);
        return;
      }
      if (virtualKey == key::enter)
        choose(depth);
      return;
    default:
      return mnemonic(depth, virtualKey);
    }
  }

  static LResult proc(HWND window, unsigned message, WParam wParam, LParam lParam)
  {
    if (message == msg::paint && running)
      for (Level const& level : running->levels_)
        if (level.window == window)
          running->paint(level);
    if (message == msg::eraseBackground)
      return 1;
    return Core::instance().callProc(nullptr, window, message, wParam, lParam);
  }

  static MenuTracker* running;

private:
  // The menu has the input, also when a procedure that the loop serves throws.
  struct Standing {
    MenuTracker& tracker;
    MenuTracker* const outer;
    explicit Standing(MenuTracker& t) : tracker(t), outer(running)
    {
      Core::instance().grab(tracker);
      running = &tracker;
    }
    ~Standing()
    {
      Core::instance().endGrab(tracker);
      running = outer;
      Attempts quiet;  // the popups are ours, but what they cover is told of it
      quiet.run([&] { tracker.closeTo(0); });
    }
  };

  struct Level {
    std::vector<MenuItem> items;
    HWND window = {};
    Rect screen;
    int hot = -1;
  };

  static i32 heightOf(MenuItem const& item) { return item.id || item.popup ? itemHeight : lineHeight; }

  MenuItem const& item(std::size_t depth) const
  {
    return levels_[depth].items[static_cast<std::size_t>(levels_[depth].hot)];
  }

  void open(HMENU menu, Point screen)
  {
    Level level;
    level.items = menus().items(menu);
    Size size{0, 2 * border};
    for (MenuItem const& item : level.items) {
      size.w = std::max(size.w, textSize(item.text, /*prefix=*/true).w);
      size.h += heightOf(item);
    }
    size.w += 2 * border + markWidth + rightMargin;
    Core& core = Core::instance();
    HWND const host = popupHost(owner_, size);
    Rect const frame = host ? shifted(core.clientRect(host), core.clientToScreen(host, {}))
                            : Rect{0, 0, core.screenSize().w, core.screenSize().h};
    level.screen = broughtInto(frame, {screen.x, screen.y, screen.x + size.w, screen.y + size.h});
    levels_.reserve(levels_.size() + 1);
    level.window = openPopup(host, level.screen, &proc);
    if (level.window)
      levels_.push_back(std::move(level));
  }

  void closeTo(std::size_t depth)
  {
    while (levels_.size() > depth) {
      HWND const window = levels_.back().window;
      levels_.pop_back();
      Core::instance().destroy(window);
    }
  }

  void dismiss()
  {
    dismissed_ = true;
    done_ = buttons_ == 0;
    for (Level const& level : levels_)
      Core::instance().place(level.window, nullptr, show::hide);
  }

  static int itemAt(Level const& level, Point screen)
  {
    i32 top = level.screen.top + border;
    for (std::size_t i = 0; i < level.items.size(); ++i) {
      i32 const bottom = top + heightOf(level.items[i]);
      if (screen.y >= top && screen.y < bottom && screen.x >= level.screen.left + border &&
          screen.x < level.screen.right - border)
        return static_cast<int>(i);
      top = bottom;
    }
    return -1;
  }

  // A popup below the item opens, those of other items close.
  void setHot(std::size_t depth, int index)
  {
    bool const same = levels_[depth].hot == index;
    bool const popup = index >= 0 && levels_[depth].items[static_cast<std::size_t>(index)].popup;
    if (same && (!popup || levels_.size() > depth + 1))
      return;
    closeTo(depth + 1);
    levels_[depth].hot = index;
    Core::instance().invalidate(levels_[depth].window, nullptr, false);
    if (!popup || !item(depth).enabled)
      return;
    HMENU const sub = item(depth).popup;
    Core::instance().send(owner_, msg::initPopup, reinterpret_cast<WParam>(sub), index);
    // The owner may have run a loop of its own in which the menu went on.
    if (levels_.size() != depth + 1 || levels_[depth].hot != index || dismissed_ || menus().count(sub) < 0)
      return;
    i32 top = levels_[depth].screen.top;
    for (int i = 0; i < index; ++i)
      top += heightOf(levels_[depth].items[static_cast<std::size_t>(i)]);
    open(sub, {levels_[depth].screen.right - border, top});
  }

  void choose(std::size_t depth)
  {
    if (levels_[depth].hot < 0)
      return;
    MenuItem const& chosen = item(depth);
    if (chosen.popup || chosen.id == 0 || !chosen.enabled)
      return;
    chosen_ = chosen.id;
    dismiss();
  }

  // To the next item that is not a line.
  void step(std::size_t depth, int by)
  {
    Level const& level = levels_[depth];
    int const count = static_cast<int>(level.items.size());
    int index = level.hot < 0 ? (by > 0 ? -1 : count) : level.hot;
    for (int i = 0; i < count; ++i) {
      index = (index + by + count) % count;
      MenuItem const& item = level.items[static_cast<std::size_t>(index)];
      if (item.popup) {
       // Opens with Right or Return only, so that the arrows can pass over it.
        closeTo(depth + 1);
        levels_[depth].hot = index;
        Core::instance().invalidate(levels_[depth].window, nullptr, false);
        return;
      }
      if (item.id)
        return setHot(depth, index);
    }
  }

  void mnemonic(std::size_t depth, unsigned virtualKey)
  {
    Level const& level = levels_[depth];
    for (std::size_t i = 0; i < level.items.size(); ++i) {
      std::string const& text = level.items[i].text;
      std::size_t const mark = text.find('&');
      if (mark == std::string::npos || mark + 1 >= text.size())
        continue;
      unsigned char const letter = static_cast<unsigned char>(text[mark + 1]);
      unsigned const upper = letter >= 'a' && letter <= 'z' ? letter - 32u : letter;
      if (upper == virtualKey) {
        setHot(depth, static_cast<int>(i));
        if (levels_.size() > depth)
          choose(depth);
        return;
      }
    }
  }

  void paint(Level const& level) const
  {
    WindowPainter painter(level.window);
    if (!painter)
      return;
    Rect const all{0, 0, level.screen.width(), level.screen.height()};
    frame3d(*painter, all, PopupColors::face, PopupColors::edge);
    i32 top = border;
    for (std::size_t i = 0; i < level.items.size(); ++i) {
      MenuItem const& item = level.items[i];
      i32 const bottom = top + heightOf(item);
      Rect const row{border, top, all.right - border, bottom};
      bool const hot = level.hot == static_cast<int>(i) && (item.id || item.popup);
      top = bottom;
      if (!item.id && !item.popup) {
        painter->fillRect({row.left + 2, row.top + lineHeight / 2, row.right - 2, row.top + lineHeight / 2 + 1},
                          PopupColors::faint);
        continue;
      }
      if (hot)
        painter->fillRect(row, PopupColors::hot);
      COLORREF const ink = !item.enabled ? PopupColors::faint : hot ? PopupColors::hotText : PopupColors::text;
      painter->textColors(ink, 0, /*opaque=*/false);
      Rect text{row.left + markWidth, row.top + 2, row.right, row.bottom};
      painter->drawText(item.text, text, 0);
      paintMark(*painter, item, row, ink);
    }
  }

  static void paintMark(Painter& painter, MenuItem const& item, Rect const& row, COLORREF ink)
  {
    i32 const x = row.left + 6, y = row.top + itemHeight / 2;
    if (item.checked && item.radio)
      painter.fillRect({x + 2, y - 2, x + 7, y + 3}, ink);
   // Two strokes of three pels' height each make the tick.
    for (i32 i = 0; item.checked && !item.radio && i < 8; ++i) {
      i32 const down = i < 3 ? i : 4 - i;
      painter.fillRect({x + i, y + down - 1, x + i + 1, y + down + 2}, ink);
    }
    for (i32 i = 0; item.popup && i < 4; ++i)
      painter.fillRect({row.right - 12 + i, y - 3 + i, row.right - 11 + i, y + 4 - i}, ink);
  }

  HWND owner_;
  std::vector<Level> levels_;
  bool done_ = false, dismissed_ = false;
  bool armed_ = false;  // a release counts once the pointer was pressed or moved
  unsigned buttons_ = 0;
  Point start_;
  unsigned chosen_ = 0;
};

MenuTracker* MenuTracker::running = nullptr;

}  // namespace

void Menus::track(HMENU menu, Point screen, HWND owner)
{
  Core& core = Core::instance();
  if (!core.onUi()) {
    core.callOnUi([=, this] { track(menu, screen, owner); });
    return;
  }
  if (count(menu) < 0 || MenuTracker::running)
    return;
  core.send(owner, msg::initPopup, reinterpret_cast<WParam>(menu), 0);
  if (count(menu) < 0 || MenuTracker::running)
    return;
  unsigned chosen = 0;
  bool answered = false;
  std::vector<MenuItem> shown = items(menu);
  {
    std::lock_guard const lock(mutex_);
    lastMenu_.swap(shown);
    answered = !menuAnswers_.empty();
    if (answered) {
      chosen = menuAnswers_.front();
      menuAnswers_.pop_front();
    }
  }
  if (!answered) {
    MenuTracker tracker(menu, screen, owner);
    chosen = tracker.run();
  } else if (!enabled(menu, chosen)) {
    chosen = 0;
  }
  if (chosen)
    core.postMessage(owner, msg::command, chosen, 0);
}

}  // namespace plat::portable
