// Pels: backings, what of them is visible, presenting, and the turn of messages 20 and 15.
#include "platform/portable/attempts.h"
#include "platform/portable/core.h"
#include "platform/portable/painter.h"
#include "platform/portable/pel_format.h"

#include <algorithm>

namespace plat::portable {
namespace {

constexpr unsigned paintMessage = 15, eraseMessage = 20;

u32 shownColor(PelBlock const& block, Point at, PaletteView palette)
{
  return rgbOf(colorOf(readPel(block, at), block.depth, palette));
}

}  // namespace

void Core::openGlass(HWND handle)
{
  Rect rect;
  std::string title;
  u32 style;
  {
    Lock lock(mutex_);
    Window const* const w = tree_.find(handle);
    if (!w || w->video)
      return;
    rect = w->rect;
    title = w->title;
    style = w->style;
  }
  Ptr<VideoWindow> video = video_->createWindow(handle, title, rect, style);
  {
    Lock lock(mutex_);
    if (Window* const w = tree_.find(handle))
      w->video = std::move(video);
  }
  renewBacking(handle);
}

// Painters hold the backing's lock and look at the tree's version under it; so once the old backing is out of the tree
// and its lock was ours, nobody writes into it any more.
void Core::renewBacking(HWND handle)
{
  try {
    makeBacking(handle);
  } catch (std::bad_alloc const&) {
    // The window shows nothing until there is memory again; each round tries.
    Lock lock(mutex_);
    if (Window* const w = tree_.find(handle))
      w->glassDue = true;
  }
}

void Core::makeBacking(HWND handle)
{
  std::shared_ptr<Backing> old;
  VideoWindow* video;
  Size size;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(handle);
    if (!w || !w->video)
      return;
    old = std::exchange(w->backing, nullptr);
    tree_.changed();
    video = w->video.get();
    size = {std::max(w->rect.width(), 1), std::max(w->rect.height(), 1)};
  }
  // Lent memory goes with the next loan, so its pels are kept meanwhile.
  std::shared_ptr<Backing> kept = old;
  if (old) {
    Painting const painting(old->mutex);
    if (old->lent()) {
      kept = std::make_shared<Backing>(Size{old->block().width, old->block().height}, old->block().depth, PelBlock{},
                                       nullptr);
      copyBlock(kept->block(), old->block());
    }
  }
  auto const fresh = std::make_shared<Backing>(size, depth(), video->lend(size, depth()), video);
  if (kept)
    copyBlock(fresh->block(), kept->block());
  fresh->markDirty({0, 0, size.w, size.h});
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(handle);
    if (!w)
      return;
    w->backing = fresh;
    tree_.changed();
    if (std::exchange(w->glassDue, false))
      tree_.invalidateTree(*w, {0, 0, size.w, size.h});
  }
  present(*fresh);
}

void Core::present(Backing& backing)
{
  std::array<Rect, Backing::maxDirty> rects;
  std::size_t count;
  {
    Painting const painting(backing.mutex);
    count = backing.takeDirty(rects);
    if (count && !backing.lent())
      backing.video()->copy(backing.block(), std::span<Rect const>(rects.data(), count));
  }
  if (count)
    backing.video()->send(std::span<Rect const>(rects.data(), count));
}

void Core::presentAll(bool whole)
{
  presenting_.clear();
  {
    Lock lock(mutex_);
    for (Window const* top : tree_.tops())
      if (top->backing)
        presenting_.push_back(top->backing);
  }
  for (auto const& backing : presenting_) {
    if (whole) {
      Painting const painting(backing->mutex);
      backing->markDirty({0, 0, backing->block().width, backing->block().height});
    }
    present(*backing);
  }
  presenting_.clear();
}

void Core::presentOrWake(Backing& backing)
{
  if (ui_.load() == std::this_thread::get_id())
    present(backing);
  else if (!dirtyPending_.exchange(true))
    video_->wake();
}

bool Core::paintVisible(HWND handle, void* context, PaintBody body, Rect const& dirtyOnScreen)
{
  std::shared_ptr<Backing> backing;
  for (;;) {
    std::shared_ptr<Region const> region;
    VisiblePart part;
    std::uint64_t version;
    {
      Lock lock(mutex_);
      Window* const w = tree_.find(handle);
      if (!w || handle == tree_.desktop())
        return false;
      backing = WindowTree::top(*w)->backing;
      if (!backing)
        return false;
      region = tree_.visibleClient(*w);
      if (region->empty())
        return false;
      part.clientInBacking = WindowTree::originInBacking(*w);
      part.clientOnScreen = WindowTree::originOnScreen(*w);
      version = tree_.version();
    }
    Painting const painting(backing->mutex);
    if (tree_.version() != version)
      continue;  // something moved before it was our turn
    part.backing = backing->block();
    part.rects = region->rects();
    body(context, part);
    Rect const dirty = shifted(dirtyOnScreen, {part.clientInBacking.x - part.clientOnScreen.x,
                                               part.clientInBacking.y - part.clientOnScreen.y});
    for (Rect const& r : part.rects)
      backing->markDirty(intersect(r, dirty));
    break;
  }
  if (!dirtyOnScreen.empty())
    presentOrWake(*backing);
  return true;
}

// Topmost windows first, parents before kids, each once a round.
bool Core::stepPaint()
{
  HWND next = {}, bars = {}, glass = {};
  {
    Lock lock(mutex_);
    auto const look = [&](auto const& self, std::vector<Window*> const& list) -> void {
      for (Window* w : list) {
        if (next || bars || glass)
          return;
        if (!w->has(visibleStyle) || w->has(minimizedStyle))
          continue;
        if (w->glassDue && w->paintRound != round_)
          glass = w->handle;
        else if (w->barsDue)
          bars = w->handle;
        else if (!w->update.empty() && w->paintRound != round_)
          next = w->handle;
        else
          self(self, w->kids);
      }
    };
    look(look, tree_.tops());
    if (Window* const w = tree_.find(glass ? glass : next))
      w->paintRound = round_;
  }
  if (glass) {
    renewBacking(glass);
    return true;
  }
  if (bars)
    paintBars(bars);
  return bars || (next && paint(next));
}

bool Core::paint(HWND handle)
{
  bool erase;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(handle);
    if (!w || w->update.empty() || !WindowTree::shown(*w))
      return false;
    erase = std::exchange(w->eraseDue, false);
  }
  Attempts all;
  if (erase) {
    HDC const dc = openWindowDC(handle);
    all.run([&] { deliver(handle, eraseMessage, reinterpret_cast<WParam>(dc), 0); });
    if (dc)
      closeWindowDC(dc);
  }
  all.run([&] { deliver(handle, paintMessage, 0, 0); });
  all.finish();
  return true;
}

u32 Core::shownPel(HWND handle, Point client)
{
  std::shared_ptr<Backing> backing;
  Point at;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(handle);
    if (!w || !contains(WindowTree::clientRect(*w), client))
      return 0;
    backing = WindowTree::top(*w)->backing;
    Point const origin = WindowTree::originInBacking(*w);
    at = {origin.x + client.x, origin.y + client.y};
  }
  if (!backing)
    return 0;
  Painting const painting(backing->mutex);
  return shownColor(backing->block(), at, palette());
}

u32 Core::backingPel(HWND top, Point at)
{
  std::shared_ptr<Backing> backing;
  {
    Lock lock(mutex_);
    Window const* const w = tree_.find(top);
    backing = w ? w->backing : nullptr;
  }
  if (!backing)
    return 0;
  Painting const painting(backing->mutex);
  return shownColor(backing->block(), at, palette());
}

bool Core::visibleAt(HWND handle, Point client)
{
  Lock lock(mutex_);
  Window* const w = tree_.find(handle);
  if (!w)
    return false;
  Point const origin = WindowTree::originInBacking(*w);
  return tree_.visibleClient(*w)->contains(Point{origin.x + client.x, origin.y + client.y});
}

std::vector<u32> Core::shownPels(HWND handle, Size& size)
{
  std::shared_ptr<Backing> backing;
  Point origin;
  {
    Lock lock(mutex_);
    Window* const w = tree_.find(handle);
    Rect const client = w ? WindowTree::clientRect(*w) : Rect{};
    size = {client.right, client.bottom};
    if (!w)
      return {};
    backing = WindowTree::top(*w)->backing;
    origin = WindowTree::originInBacking(*w);
  }
  std::vector<u32> pels(static_cast<std::size_t>(size.w) * static_cast<std::size_t>(size.h));
  if (!backing)
    return pels;
  Painting const painting(backing->mutex);
  std::size_t i = 0;
  for (i32 y = 0; y < size.h; ++y)
    for (i32 x = 0; x < size.w; ++x)
      pels[i++] =
          shownColor(backing->block(), {origin.x + x, origin.y + y}, palette());
  return pels;
}

Size screenSize() { return Core::instance().screenSize(); }

int screenDepth() { return Core::instance().depth(); }

u32 screenChanges() { return Core::instance().screenChanges(); }

std::span<PaletteEntry const, 256> screenPalette() { return Core::instance().palette(); }

bool headless() { return Core::instance().virtualClock(); }

unsigned writeScreenPalette(HWND sender, std::span<PaletteEntry const> colors)
{
  return Core::instance().realize(sender, colors);
}

bool paintVisible(HWND window, void* context, PaintBody body, Rect const& dirtyOnScreen)
{
  return Core::instance().paintVisible(window, context, body, dirtyOnScreen);
}

}  // namespace plat::portable
