#include "platform/portable/windows/menus.h"

#include "platform/messages.h"
#include "platform/portable/windows/core.h"

#include <algorithm>

namespace plat::portable {
Menus& menus()
{
  static Menus* const all = new Menus;  // like the core, never destroyed
  return *all;
}

// Under the lock.
HMENU Menus::build(std::vector<MenuEntry> const& entries)
{
  Menu menu;
  for (MenuEntry const& entry : entries) {
    MenuItem item;
    item.id = entry.id;
    item.text = entry.text;
    if (!entry.entries.empty())
      item.popup = build(entry.entries);
    menu.items.push_back(std::move(item));
  }
  return menus_.add(std::move(menu));
}

HMENU Menus::load(int id)
{
  MenuEntry const* const entry = builtInResources().menu(id);
  if (!entry)
    return {};
  std::lock_guard const lock(mutex_);
  return build(entry->entries);
}

void Menus::destroy(HMENU menu)
{
  for (MenuItem const& item : items(menu))
    if (item.popup)
      destroy(item.popup);
  std::lock_guard const lock(mutex_);
  menus_.remove(menu);
}

HMENU Menus::sub(HMENU menu, int index)
{
  auto const list = items(menu);
  return index >= 0 && index < static_cast<int>(list.size()) ? list[static_cast<std::size_t>(index)].popup : HMENU{};
}

HMENU Menus::system(HWND window)
{
  Core& core = Core::instance();
  if (!core.isWindow(window))
    return {};
  HMENU menu = core.systemMenu(window);
  if (!menu) {
    std::unique_lock lock(mutex_);
    menu = build({{menu::closeItem, "&Close", {}}});
    lock.unlock();
    core.systemMenu(window, menu);
  }
  return menu;
}

std::vector<MenuItem> Menus::items(HMENU menu)
{
  std::lock_guard const lock(mutex_);
  Menu const* const found = menus_.find(menu);
  return found ? found->items : std::vector<MenuItem>();
}

int Menus::count(HMENU menu)
{
  std::lock_guard const lock(mutex_);
  Menu const* const found = menus_.find(menu);
  return found ? static_cast<int>(found->items.size()) : -1;
}

unsigned Menus::itemId(HMENU menu, int index)
{
  auto const list = items(menu);
  if (index < 0 || index >= static_cast<int>(list.size()))
    return ~0u;
  MenuItem const& item = list[static_cast<std::size_t>(index)];
  return item.popup ? ~0u : item.id;
}

// Also reaches into popups.
void Menus::change(HMENU menu, unsigned first, unsigned last, std::function<void(MenuItem&)> const& change)
{
  std::vector<HMENU> open{menu};
  std::lock_guard const lock(mutex_);
  while (!open.empty()) {
    Menu* const found = menus_.find(open.back());
    open.pop_back();
    if (!found)
      continue;
    for (MenuItem& item : found->items) {
      if (item.popup)
        open.push_back(item.popup);
      else if (item.id >= first && item.id <= last && item.id != 0)
        change(item);
    }
  }
}

void Menus::enable(HMENU menu, unsigned id, bool on)
{
  change(menu, id, id, [on](MenuItem& item) { item.enabled = on; });
}

void Menus::check(HMENU menu, unsigned id, bool on)
{
  change(menu, id, id, [on](MenuItem& item) {
    item.checked = on;
    item.radio = false;
  });
}

void Menus::radio(HMENU menu, unsigned first, unsigned last, unsigned id)
{
  change(menu, first, last, [id](MenuItem& item) {
    item.checked = item.id == id;
    item.radio = true;
  });
}

bool Menus::enabled(HMENU menu, unsigned id)
{
  bool on = false;
  change(menu, id, id, [&on](MenuItem const& item) { on = item.enabled; });
  return on;
}

void Menus::answerBox(int result, std::function<void()> meanwhile)
{
  std::lock_guard const lock(mutex_);
  boxAnswers_.push_back({result, std::move(meanwhile)});
}

void Menus::forgetAnswers()
{
  std::lock_guard const lock(mutex_);
  boxAnswers_.clear();
  menuAnswers_.clear();
}

std::pair<std::string, std::string> Menus::lastBox()
{
  std::lock_guard const lock(mutex_);
  return lastBox_;
}

std::vector<MenuItem> Menus::lastMenu()
{
  std::lock_guard const lock(mutex_);
  return lastMenu_;
}

void Menus::answerMenu(unsigned id)
{
  std::lock_guard const lock(mutex_);
  menuAnswers_.push_back(id);
}

}  // namespace plat::portable
