#include "backend/win32/display_list.h"

#include "foundation/leaf_mutex.h"
#include "platform/window.h"

#include <algorithm>
#include <condition_variable>
#include <thread>
#include <utility>

namespace {

using cc_DisplayList::Place;

struct cs_Link {
  Place place;
  HWND window;
  ccWin32Display* display;
};

struct cs_Base {
  HWND window;
  plat::MessageProc ours, former;
  long parents;  // watches over it as a parent
};

struct cs_Visit {
  ccWin32Display const* display;
  std::thread::id thread;
};

struct cs_Tables {
  cc_LeafMutex<cc_LockRank::displayLinks> guard;
  std::condition_variable left;
  Place last = 0;
  std::vector<cs_Link> links;  // oldest first
  std::vector<cs_Base> bases;
  std::vector<cs_Visit> visits;
};

// Never destroyed: the last window may go when static objects have gone.
cs_Tables& cf_tables()
{
  static cs_Tables& tables = *new cs_Tables;
  return tables;
}

using Hold = std::lock_guard<decltype(cs_Tables::guard)>;

cs_Base* cf_base(HWND window)
{
  auto& bases = cf_tables().bases;
  auto const found = std::find_if(bases.begin(), bases.end(), [&](cs_Base const& b) { return b.window == window; });
  return found == bases.end() ? nullptr : &*found;
}

cs_Base& cf_need(HWND window, plat::MessageProc ours)
{
  if (cs_Base* const known = cf_base(window))
    return *known;
  auto& bases = cf_tables().bases;
  bases.reserve(bases.size() + 1);
  bases.push_back({window, ours, plat::platform().windows.subclass(window, ours), 0});
  return bases.back();
}

// Ours goes from a window that nobody needs it on, unless the application has put a procedure above it, which goes on
// calling ours.
void cf_settle(HWND window)
{
  cs_Tables& tables = cf_tables();
  cs_Base const* const base = cf_base(window);
  if (!base || base->parents > 0 ||
      std::any_of(tables.links.begin(), tables.links.end(), [&](cs_Link const& l) { return l.window == window; }))
    return;
  plat::WindowSystem& windows = plat::platform().windows;
  if (windows.isWindow(window)) {
    plat::MessageProc const above = windows.subclass(window, base->former);
    if (above != base->ours) {
      windows.subclass(window, above);
      return;
    }
  }
  std::erase_if(tables.bases, [&](cs_Base const& b) { return b.window == window; });
}

}  // namespace

Place cc_DisplayList::add(HWND window, plat::MessageProc ours, ccWin32Display* display)
{
  cs_Tables& tables = cf_tables();
  Hold const hold(tables.guard);
  tables.links.reserve(tables.links.size() + 1);
  cf_need(window, ours);
  tables.links.push_back({++tables.last, window, display});
  return tables.last;
}

void cc_DisplayList::remove(Place place)
{
  cs_Tables& tables = cf_tables();
  Hold const hold(tables.guard);
  auto const found =
      std::find_if(tables.links.begin(), tables.links.end(), [&](cs_Link const& l) { return l.place == place; });
  if (found == tables.links.end())
    return;
  HWND const window = found->window;
  tables.links.erase(found);
  cf_settle(window);
}

bool cc_DisplayList::has(Place place)
{
  cs_Tables& tables = cf_tables();
  Hold const hold(tables.guard);
  return std::any_of(tables.links.begin(), tables.links.end(), [&](cs_Link const& l) { return l.place == place; });
}

void cc_DisplayList::addParent(HWND window, plat::MessageProc ours)
{
  Hold const hold(cf_tables().guard);
  ++cf_need(window, ours).parents;
}

void cc_DisplayList::removeParent(HWND window)
{
  Hold const hold(cf_tables().guard);
  if (cs_Base* const base = cf_base(window); base && base->parents > 0) {
    --base->parents;
    cf_settle(window);
  }
}

plat::MessageProc cc_DisplayList::former(HWND window)
{
  Hold const hold(cf_tables().guard);
  cs_Base const* const base = cf_base(window);
  return base ? base->former : nullptr;
}

cc_DisplayList::Visit::Visit(HWND window, Place before)
{
  cs_Tables& tables = cf_tables();
  Hold const hold(tables.guard);
  auto const found = std::find_if(tables.links.rbegin(), tables.links.rend(),
                                  [&](cs_Link const& l) { return l.window == window && l.place < before; });
  if (found == tables.links.rend())
    return;
  tables.visits.push_back({found->display, std::this_thread::get_id()});
  display_ = found->display;
  place_ = found->place;
}

cc_DisplayList::Visit::Visit(Place place) : place_(place) { again(); }

void cc_DisplayList::Visit::leave()
{
  if (!display_)
    return;
  cs_Tables& tables = cf_tables();
  Hold const hold(tables.guard);
  auto const mine = std::find_if(tables.visits.begin(), tables.visits.end(), [this](cs_Visit const& v) {
    return v.display == display_ && v.thread == std::this_thread::get_id();
  });
  tables.visits.erase(mine);
  display_ = nullptr;
  tables.left.notify_all();
}

bool cc_DisplayList::Visit::again()
{
  cs_Tables& tables = cf_tables();
  Hold const hold(tables.guard);
  auto const found =
      std::find_if(tables.links.begin(), tables.links.end(), [this](cs_Link const& l) { return l.place == place_; });
  if (found == tables.links.end())
    return false;
  if (!display_) {
    tables.visits.push_back({found->display, std::this_thread::get_id()});
    display_ = found->display;
  }
  return true;
}

std::vector<Place> cc_DisplayList::all()
{
  cs_Tables& tables = cf_tables();
  Hold const hold(tables.guard);
  std::vector<Place> places;
  for (cs_Link const& link : tables.links)
    places.push_back(link.place);
  return places;
}

void cc_DisplayList::waitUntilLeft(ccWin32Display const* display, bool tookOff)
{
  cs_Tables& tables = cf_tables();
  auto const left = [&] {
    return std::none_of(tables.visits.begin(), tables.visits.end(), [display](cs_Visit const& v) {
      return v.display == display && v.thread != std::this_thread::get_id();
    });
  };
  bool const now = [&] {
    Hold const hold(tables.guard);
    return left();
  }();
  if (tookOff || !now)
    cc_LockCheck::waits(&tables, cc_LockRank::windowThread);
  cc_LeafWait lock(tables.guard);
  tables.left.wait(lock.native(), left);
}
