// Scroll bars of windows: state, painting, and the mouse on them.
#include "platform/messages.h"
#include "platform/portable/raster/pel_format.h"
#include "platform/portable/windows/attempts.h"
#include "platform/portable/windows/core.h"
#include "platform/portable/windows/scroll_layout.h"

#include <algorithm>

namespace plat::portable {
namespace {

constexpr unsigned firstRepeatMs = 400, repeatMs = 50;
constexpr i32 minThumb = 8;

constexpr u32 faceColor = 0xc0c0c0, trackColor = 0xe0e0e0, edgeColor = 0x808080, signColor = 0x000000,
              disabledSignColor = 0x808080, heldFaceColor = 0xa0a0a4;

unsigned codeOf(BarPart part, unsigned mods)
{
  switch (part) {
  case BarPart::lineLess:
    return (mods & held::control) ? scroll::toStart : scroll::lineLess;
  case BarPart::lineMore:
    return (mods & held::control) ? scroll::toEnd : scroll::lineMore;
  case BarPart::pageLess:
    return scroll::pageLess;
  default:
    return scroll::pageMore;
  }
}

}  // namespace

ScrollLayout::ScrollLayout(ScrollBar const& bar, i32 length)
    : bar_(bar), length_(length), arrow_(std::min(barExtent, length / 2))
{
  std::int64_t const room = length - 2 * arrow_;
  std::int64_t const range = std::int64_t(bar.max) - bar.min + 1;
  if (bar.disabled || room < minThumb || range <= 0)
    return;
  std::int64_t const wanted = bar.page ? room * bar.page / range : barExtent;
  thumb_ = static_cast<i32>(std::clamp<std::int64_t>(wanted, minThumb, room));
  std::int64_t const steps = std::int64_t(bar.lastPos()) - bar.min;
  std::int64_t const pos = std::int64_t(bar.tracking ? bar.trackPos : bar.pos) - bar.min;
  start_ = arrow_ + (steps > 0 ? static_cast<i32>((room - thumb_) * pos / steps) : 0);
}

BarPart ScrollLayout::part(i32 along) const
{
  if (along < 0 || along >= length_)
    return BarPart::none;
  if (along < arrow_)
    return BarPart::lineLess;
  if (along >= length_ - arrow_)
    return BarPart::lineMore;
  if (!hasThumb())
    return BarPart::none;
  return along < start_ ? BarPart::pageLess : along < start_ + thumb_ ? BarPart::thumb : BarPart::pageMore;
}

i32 ScrollLayout::posAt(i32 thumbStart) const
{
  std::int64_t const room = length_ - 2 * arrow_ - thumb_;
  std::int64_t const steps = std::int64_t(bar_.lastPos()) - bar_.min;
  if (room <= 0)
    return bar_.min;
  std::int64_t const offset = std::clamp<std::int64_t>(thumbStart - arrow_, 0, room);
  return static_cast<i32>(bar_.min + (offset * steps + room / 2) / room);
}

// Holds the pointer from the press on a bar to the release.
// A message may end the tracking: its window may go, or a nested loop see the release. Whoever calls keeps the tracker alive.
class BarTracker final : public InputGrab, public std::enable_shared_from_this<BarTracker> {
public:
  BarTracker(Core& core, HWND window, int bar, BarPart part, unsigned code, i32 grip)
      : core_(core), window_(window), bar_(bar), part_(part), code_(code), grip_(grip)
  {}

  void start(Point screen)
  {
    core_.grab(*this);
    if (part_ == BarPart::thumb)
      return drag(screen);
    at_ = screen;
    core_.callEvery(reinterpret_cast<uptr>(this), firstRepeatMs,
                    [self = weak_from_this()] { repeat(self, firstRepeatMs); });
    send(code_, 0);
  }

  bool isOf(Window const& w) const
  {
    Window const* const own = core_.tree_.find(window_);
    return own && WindowTree::isIn(own, w);
  }

  void end()
  {
    core_.stopCalls(reinterpret_cast<uptr>(this));
    core_.endGrab(*this);
    over_ = true;
  }

  void pointer(Point screen, unsigned, unsigned released) override
  {
    auto const self = shared_from_this();
    at_ = screen;
    Attempts all;
    if (part_ == BarPart::thumb)
      all.run([&] { drag(screen); });
    if ((released & held::left) && !over_)
      all.run([&] { finish(); });
    all.finish();
  }

  void key(unsigned, bool) override {}

private:
  void send(unsigned code, i32 pos)
  {
    unsigned const message = msg::hScroll + static_cast<unsigned>(bar_);
    core_.deliver(window_, message, u32(static_cast<u16>(pos)) << 16 | code, 0);
  }

  // Nothing if the bar is gone.
  Ptr<ScrollLayout> layout(Point screen, i32& along)
  {
    Core::Lock lock(core_.mutex_);
    Window const* const w = core_.tree_.find(window_);
    if (!w || !w->bars[bar_].shown())
      return nullptr;
    Rect const area = shifted(WindowTree::barRect(*w, bar_), WindowTree::originOnScreen(*w));
    along = bar_ == bar::horizontal ? screen.x - area.left : screen.y - area.top;
    inside_ =
        bar_ == bar::horizontal ? screen.y >= area.top && screen.y < area.bottom : screen.x >= area.left && screen.x < area.right;
    return std::make_unique<ScrollLayout>(w->bars[bar_], bar_ == bar::horizontal ? area.width() : area.height());
  }

  void drag(Point screen)
  {
    i32 along = 0;
    auto const bar = layout(screen, along);
    if (!bar)
      return;
    i32 const pos = bar->posAt(along - grip_);
    if (tracked_ && pos == pos_)
      return;
    bool const first = !std::exchange(tracked_, true);
    pos_ = pos;
    hold(true);
    if (!first || pos != formerPos_)
      send(scroll::thumbTrack, pos);
  }

  void hold(bool on)
  {
    {
      Core::Lock lock(core_.mutex_);
      Window* const w = core_.tree_.find(window_);
      if (!w)
        return;
      ScrollBar& bar = w->bars[bar_];
      if (!bar.tracking)
        formerPos_ = bar.pos;
      bar.tracking = on;
      bar.trackPos = pos_;
    }
    core_.paintBars(window_);
  }

  static void repeat(std::weak_ptr<BarTracker> const& tracker, unsigned interval)
  {
    if (auto const self = tracker.lock(); self && !self->over_)
      self->repeat(interval);
  }

  void repeat(unsigned interval)
  {
    if (interval == firstRepeatMs)
      core_.callEvery(reinterpret_cast<uptr>(this), repeatMs, [self = weak_from_this()] { repeat(self, repeatMs); });
    i32 along = 0;
    auto const bar = layout(at_, along);
    if (bar && inside_ && bar->part(along) == part_)
      send(code_, 0);
  }

  void finish()
  {
    if (core_.barTracker_.get() == this)
      core_.barTracker_ = nullptr;
    end();
    Attempts all;
    if (part_ == BarPart::thumb) {
      hold(false);
      all.run([&] { send(scroll::thumbPosition, pos_); });
    }
    all.run([&] { send(scroll::endScroll, 0); });
    all.finish();
  }

  Core& core_;
  HWND window_;
  int bar_;
  BarPart part_;
  unsigned code_;
  i32 grip_;  // from the thumb's start to the place where it is held
  Point at_;
  bool inside_ = false, tracked_ = false, over_ = false;
  i32 pos_ = 0, formerPos_ = 0;
};

// A press with Shift on the page area takes the thumb to the pointer; Control on an arrow goes all the way.
bool Core::pressOnBar(HWND window, Point screen, unsigned mods)
{
  int hit = -1;
  BarPart part = BarPart::none;
  i32 grip = 0;
  {
    Lock lock(mutex_);
    Window const* const w = tree_.find(window);
    if (!w)
      return false;
    Point const origin = WindowTree::originOnScreen(*w);
    for (int bar : {0, 1}) {
      Rect const area = shifted(WindowTree::barRect(*w, bar), origin);
      if (!contains(area, screen) || w->bars[bar].disabled)
        continue;
      i32 const along = bar == bar::horizontal ? screen.x - area.left : screen.y - area.top;
      ScrollLayout const layout(w->bars[bar], bar == bar::horizontal ? area.width() : area.height());
      hit = bar;
      part = layout.part(along);
      grip = along - layout.thumbStart();
      if ((mods & held::shift) && (part == BarPart::pageLess || part == BarPart::pageMore)) {
        part = BarPart::thumb;
        grip = layout.thumbLength() / 2;
      }
    }
  }
  if (part == BarPart::none)
    return false;
  if (barTracker_)
    barTracker_->end();
  auto const tracker = std::make_shared<BarTracker>(*this, window, hit, part, codeOf(part, mods), grip);
  barTracker_ = tracker;
  tracker->start(screen);
  return true;
}

void Core::endTracking(HWND handle)
{
  std::shared_ptr<BarTracker> ended;
  {
    Lock lock(mutex_);
    Window const* const w = tree_.find(handle);
    if (barTracker_ && w && barTracker_->isOf(*w))
      ended = std::exchange(barTracker_, nullptr);
  }
  if (ended)
    ended->end();
}

void Core::changeBar(HWND window, int bar, bool redraw, std::function<void(ScrollBar&)> const& change)
{
  if (bar != bar::horizontal && bar != bar::vertical)
    return;
  bool resized;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(window);
    if (!w || window == tree_.desktop())
      return;
    Rect const former = WindowTree::clientRect(*w);
    ScrollBar const before = w->bars[bar];
    bool const wasShown = before.shown();
    change(w->bars[bar]);
    if (w->bars[bar] == before)
      return;
    bool const shown = w->bars[bar].shown();
    resized = wasShown != shown;
    if (resized) {
      u32 const bit = bar == bar::horizontal ? style::hScroll : style::vScroll;
      w->style = shown ? w->style | bit : w->style & ~bit;
      tree_.changed();
      Region uncovered(WindowTree::clientRect(*w));
      uncovered.subtract(former);
      Point const origin = WindowTree::originInBacking(*w);
      for (Rect const& r : uncovered.rects())
        tree_.invalidateTree(*w, shifted(r, origin));
      w->update.intersect(WindowTree::clientRect(*w));
    }
    w->barsDue = true;
  }
  Attempts all;
  if (resized)
    all.run([&] { sendSize(window, sized::restored); });
  if (redraw)
    paintBars(window);
  all.finish();
}

void Core::showScrollBar(HWND window, int bar, bool on)
{
  if (!onUi())
    return post(window, [=, this] { showScrollBar(window, bar, on); });
  changeBar(window, bar, /*redraw=*/true, [on](ScrollBar& b) {
    b.wanted = on;
    b.unneeded = false;
  });
}

void Core::setScrollPos(HWND window, int bar, i32 pos, bool redraw)
{
  if (!onUi())
    return post(window, [=, this] { setScrollPos(window, bar, pos, redraw); });
  changeBar(window, bar, redraw, [pos](ScrollBar& b) { b.pos = std::clamp(pos, b.min, b.lastPos()); });
}

void Core::setScrollInfo(HWND window, int bar, ScrollInfo const& info, bool redraw)
{
  if (!onUi())
    return post(window, [=, this] { setScrollInfo(window, bar, info, redraw); });
  changeBar(window, bar, redraw, [&info](ScrollBar& b) {
    if (info.mask & scroll::range) {
      b.min = info.min;
      b.max = std::max(info.max, info.min);
    }
    if (info.mask & scroll::page)
      b.page = info.page;
    b.page = static_cast<u32>(std::min<std::int64_t>(b.page, std::int64_t(b.max) - b.min + 1));
    b.pos = std::clamp((info.mask & scroll::position) ? info.pos : b.pos, b.min, b.lastPos());
    if (info.mask & (scroll::range | scroll::page | scroll::disableUnneeded)) {
      bool const idle = b.lastPos() == b.min;
      b.disabled = idle && (info.mask & scroll::disableUnneeded);
      b.unneeded = idle && !(info.mask & scroll::disableUnneeded);
    }
  });
}

void Core::paintBars(HWND window)
{
  std::shared_ptr<Backing> backing;
  Region visible;
  Rect areas[2], corner;
  ScrollBar bars[2];
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(window);
    if (!w)
      return;
    w->barsDue = false;
    backing = WindowTree::top(*w)->backing;
    visible = WindowTree::wholeVisible(*w);
    Point const origin = WindowTree::originInBacking(*w);
    for (int bar : {0, 1}) {
      bars[bar] = w->bars[bar];
      areas[bar] = shifted(WindowTree::barRect(*w, bar), origin);
    }
    Rect const client = WindowTree::clientRect(*w);
    if (bars[0].shown() && bars[1].shown())
      corner = shifted({client.right, client.bottom, w->rect.width(), w->rect.height()}, origin);
  }
  if (!backing || visible.empty() || (areas[0].empty() && areas[1].empty()))
    return;
  {
    Painting const painting(backing->mutex);
    PelBlock const& block = backing->block();
    auto const fill = [&](Rect const& area, u32 color) {
      u32 const pel = pelOf(colorrefOf(color), block.depth, palette());
      for (Rect const& r : visible.rects())
        fillBlock(block, intersection(r, area), pel);
    };
    auto const button = [&](Rect const& area, u32 face) {
      fill(area, edgeColor);
      fill({area.left + 1, area.top + 1, area.right - 1, area.bottom - 1}, face);
    };
    fill(corner, faceColor);
    for (int bar : {0, 1}) {
      Rect const& area = areas[bar];
      if (area.empty())
        continue;
      bool const flat = bar == bar::horizontal;
      ScrollLayout const layout(bars[bar], flat ? area.width() : area.height());
      auto const piece = [&](i32 from, i32 to) {
        return flat ? Rect{area.left + from, area.top, area.left + to, area.bottom}
                    : Rect{area.left, area.top + from, area.right, area.top + to};
      };
      fill(area, trackColor);
      i32 const arrow = layout.arrow(), length = layout.length();
      button(piece(0, arrow), faceColor);
      button(piece(length - arrow, length), faceColor);
      if (layout.hasThumb())
        button(piece(layout.thumbStart(), layout.thumbStart() + layout.thumbLength()),
               bars[bar].tracking ? heldFaceColor : faceColor);
     // Four slices of 1, 3, 5 and 7 pels make an arrow head that points outward.
      i32 const middle = barExtent / 2;
      for (i32 i = 0; i < 4; ++i) {
        u32 const sign = bars[bar].disabled ? disabledSignColor : signColor;
        for (bool more : {false, true}) {
          i32 const at = more ? length - arrow + arrow / 2 + 1 - i : arrow / 2 - 2 + i;
          Rect const slice = piece(at, at + 1);
          fill(flat ? Rect{slice.left, slice.top + middle - i, slice.right, slice.top + middle + i + 1}
                    : Rect{slice.left + middle - i, slice.top, slice.left + middle + i + 1, slice.bottom},
               sign);
        }
      }
      backing->markDirty(area);
    }
    backing->markDirty(corner);
  }
  present(*backing);
}

}  // namespace plat::portable
