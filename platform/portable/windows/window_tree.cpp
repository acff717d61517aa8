#include "platform/portable/windows/window_tree.h"

#include "platform/messages.h"

#include <algorithm>

namespace plat::portable {
namespace {

// More pieces than this cost more than the pels between them.
constexpr std::size_t maxUpdatePieces = 32;

void collect(std::vector<Window*> const& from, std::vector<Window*>& to)
{
  for (Window* w : from) {
    to.push_back(w);
    collect(w->kids, to);
  }
}

}  // namespace

i32 ScrollBar::lastPos() const
{
  std::int64_t const last = std::int64_t(max) - std::max<std::int64_t>(std::int64_t(page) - 1, 0);
  return static_cast<i32>(std::max<std::int64_t>(last, min));
}

WindowTree::WindowTree()
{
  auto record = std::make_unique<Window>();
  Window* const w = record.get();
  desktop_ = w->handle = table_.add(std::move(record));
  w->style = style::visible;
}

Window* WindowTree::add(Window* parent)
{
  auto record = std::make_unique<Window>();
  Window* const w = record.get();
  auto& list = parent ? parent->kids : tops_;
  if (list.size() == list.capacity())
    list.reserve(2 * list.size() + 4);
  HWND const handle = table_.add(std::move(record));
  if (!handle)
    return nullptr;
  w->handle = handle;
  w->parent = parent;
  if (parent)
    parent->kids.push_back(w);
  else
    tops_.insert(tops_.begin(), w);
  return w;
}

Ptr<Window> WindowTree::remove(HWND handle)
{
  Ptr<Window>* const found = table_.find(handle);
  if (!found)
    return nullptr;
  Ptr<Window> record = std::move(*found);
  table_.remove(handle);
  std::erase(siblings(*record), record.get());
  changed();
  return record;
}

void WindowTree::toFront(Window& w)
{
  auto& list = siblings(w);
  std::erase(list, &w);
  auto const place =
      w.topmost ? list.begin() : std::find_if(list.begin(), list.end(), [](Window* s) { return !s->topmost; });
  list.insert(place, &w);
  changed();
}

std::vector<Window*> WindowTree::all() const
{
  std::vector<Window*> list;
  collect(tops_, list);
  return list;
}

Window* WindowTree::top(Window& w)
{
  Window* up = &w;
  while (up->parent)
    up = up->parent;
  return up;
}

bool WindowTree::isIn(Window const* inner, Window const& outer)
{
  while (inner && inner != &outer)
    inner = inner->parent;
  return inner != nullptr;
}

bool WindowTree::shown(Window const& w)
{
  for (Window const* up = &w; up; up = up->parent)
    if (!up->has(style::visible) || up->has(style::minimized))
      return false;
  return true;
}

Rect WindowTree::clientRect(Window const& w)
{
  if (w.has(style::minimized))
    return {};
  return {0, 0, std::max(w.rect.width() - (w.bars[1].shown() ? barExtent : 0), 0),
          std::max(w.rect.height() - (w.bars[0].shown() ? barExtent : 0), 0)};
}

Rect WindowTree::barRect(Window const& w, int bar)
{
  if (!w.bars[bar].shown() || w.has(style::minimized))
    return {};
  Rect const client = clientRect(w);
  return bar == bar::horizontal ? Rect{0, client.bottom, client.right, w.rect.height()}
                  : Rect{client.right, 0, w.rect.width(), client.bottom};
}

Point WindowTree::originInBacking(Window const& w)
{
  Point at;
  for (Window const* up = &w; up->parent; up = up->parent)
    at = {at.x + up->rect.left, at.y + up->rect.top};
  return at;
}

Point WindowTree::originOnScreen(Window const& w)
{
  Point at;
  for (Window const* up = &w; up; up = up->parent)
    at = {at.x + up->rect.left, at.y + up->rect.top};
  return at;
}

Region WindowTree::wholeVisible(Window const& w)
{
  if (!shown(w))
    return {};
  Region region(shifted({0, 0, w.rect.width(), w.rect.height()}, originInBacking(w)));
  for (Window const* up = &w; up->parent; up = up->parent) {
    Window const& parent = *up->parent;
    Point const origin = originInBacking(parent);
    region.intersect(shifted(clientRect(parent), origin));
    for (Window const* sibling : parent.kids) {
      if (sibling == up)
        break;
      if (sibling->has(style::visible))
        region.subtract(shifted(sibling->rect, origin));
    }
  }
  return region;
}

std::shared_ptr<Region const> const& WindowTree::visibleClient(Window& w) const
{
  if (w.visible && w.visibleVersion == version())
    return w.visible;
  Region region = wholeVisible(w);
  Point const origin = originInBacking(w);
  region.intersect(shifted(clientRect(w), origin));
  for (Window const* kid : w.kids)
    if (kid->has(style::visible))
      region.subtract(shifted(kid->rect, origin));
  w.visible = std::make_shared<Region const>(std::move(region));
  w.visibleVersion = version();
  return w.visible;
}

Window* WindowTree::hit(Window& top, Point screen)
{
  if (!shown(top) || !contains(top.rect, screen))
    return nullptr;
  Window* found = &top;
  for (bool deeper = true; deeper;) {
    deeper = false;
    Point const origin = originOnScreen(*found);
    Point const at{screen.x - origin.x, screen.y - origin.y};
    if (!contains(clientRect(*found), at))
      break;
    for (Window* kid : found->kids)
      if (kid->has(style::visible) && !kid->has(style::disabled) && contains(kid->rect, at)) {
        found = kid;
        deeper = true;
        break;
      }
  }
  return found;
}

void WindowTree::invalidateTree(Window& w, Rect const& backingRect) const
{
  if (!shown(w))
    return;
  Point const origin = originInBacking(w);
  Rect const whole = shifted({0, 0, w.rect.width(), w.rect.height()}, origin);
  if (intersection(whole, backingRect).empty())
    return;
  for (Rect const& r : visibleClient(w)->rects()) {
    Rect const due = intersection(r, backingRect);
    if (!due.empty()) {
      w.update.add(shifted(due, {-origin.x, -origin.y}));
      w.eraseDue = true;
    }
  }
  if (w.update.rects().size() > maxUpdatePieces)
    w.update = Region(w.update.bounds());
  w.barsDue |= w.bars[0].shown() || w.bars[1].shown();
  for (Window* kid : w.kids)
    invalidateTree(*kid, backingRect);
}

}  // namespace plat::portable
