#include "canvas/tablet_top.h"

#include "canvas/tablet_scratch.h"

#include <algorithm>
#include <atomic>
#include <limits>

namespace {

constexpr std::size_t maxWindows = 64; // on each layer
constexpr std::size_t maxMarks = 8;    // on each layer

std::atomic<long> overlayScopes{0};

long cf_depth(ccUITablet const* t)
{
  long depth = 0;
  for (; t; t = t->parentTablet())
    ++depth;
  return depth;
}

double cf_area(ccUIRect const& r)
{
  return r.isNull() ? 0.0 : static_cast<double>(r.width()) * static_cast<double>(r.height());
}

} // namespace

ccUIRect cc_TabletLayers::whole(ccUITablet const& t) const { return extent - t.screenOrigin_; }

cc_Watch::cc_Watch(ccUITablet& t) : tablet_(&t), next_(t.layers_->watches) { t.layers_->watches = this; }

cc_Watch::~cc_Watch()
{
  if (!tablet_)
    return;
  cc_Watch** link = &tablet_->layers_->watches;
  while (*link != this)
    link = &(*link)->next_;
  *link = next_;
}

bool cc_Watch::isIn(cc_TabletTop const* top) const { return tablet_ && tablet_->layers_->top == top; }

void cc_Watch::destroyed(cc_TabletLayers& layers)
{
  for (cc_Watch* w = layers.watches; w; w = w->next_)
    w->tablet_ = nullptr;
  layers.watches = nullptr;
}

// Room for all marks there can be, so that marking takes no memory and cannot fail.
cc_TabletTop::cc_TabletTop(ccUITablet& owner) : owner_(&owner)
{
  for (cs_Layer& own : layers_)
    for (std::vector<cs_Mark>* list : {&own.pending, &own.taken})
      list->reserve(maxMarks + 1);
}

void cc_TabletTop::retire() noexcept
{
  for (int layer = 0; layer < 2; ++layer) {
    lower_(layer);
    release_(layer);
    layers_[layer].pending.clear();
    layers_[layer].taken.clear();
    layers_[layer].drawn = false;
  }
  deferred_ = false;
  owner_ = nullptr;
  if (holds_ == 0)
    delete this;
}

cc_TabletTop::~cc_TabletTop() = default;

void cs_TopRetirer::operator()(cc_TabletTop* top) const noexcept { top->retire(); }

ccUITablet* cc_TabletTop::next(ccUITablet* t, ccUITablet const* limit)
{
  return t->firstKid_ ? t->firstKid_ : afterSubtree(t, limit);
}

ccUITablet* cc_TabletTop::afterSubtree(ccUITablet* t, ccUITablet const* limit)
{
  for (; t && t != limit; t = t->parentTablet_)
    if (t->nextSib_)
      return t->nextSib_;
  return nullptr;
}

bool cc_TabletTop::inSubtree(ccUITablet const* t, ccUITablet const* root)
{
  while (t && t != root)
    t = t->parentTablet_;
  return t == root;
}

bool cc_TabletTop::before(ccUITablet const* a, ccUITablet const* b)
{
  long depthA = cf_depth(a);
  long depthB = cf_depth(b);
  bool const aIsHigher = depthA < depthB;
  for (; depthA > depthB; --depthA)
    a = a->parentTablet_;
  for (; depthB > depthA; --depthB)
    b = b->parentTablet_;
  if (a == b)
    return aIsHigher;
  while (a->parentTablet_ != b->parentTablet_) {
    a = a->parentTablet_;
    b = b->parentTablet_;
  }
  if (a->parentTablet_)
    return a->zOrder_ < b->zOrder_;
  return false; // tops of two trees
}

// Goes down only where something changes.
void cc_TabletTop::refreshShown(ccUITablet& root)
{
  for (ccUITablet* t = &root; t;) {
    bool const shown = t->visible_ && (!t->parentTablet_ || t->parentTablet_->layers_->shown);
    bool const same = shown == t->layers_->shown;
    t->layers_->shown = shown;
    t = same ? afterSubtree(t, &root) : next(t, &root);
  }
}

// ---- Scopes and locks

bool cc_TabletTop::overlaySupported() { return overlayScopes.load(std::memory_order_relaxed) > 0; }

// A scope that is let go is left as it came: neither locked nor dragged nor held open. An owned one dies.
void cc_TabletTop::lower_(int layer) noexcept
{
  cs_Layer& own = layers_[layer];
  if (own.scope && !own.owned) {
    try {
      if (own.animating)
        own.scope->dragAnimate(false);
      if (own.drags > 0)
        own.scope->dragStop();
      if (own.optimized > 0)
        own.scope->optimizeDrawing(false);
      for (long i = own.locks.depth(); i > 0; --i)
        own.scope->lockScreenUpdatesPop();
    } catch (...) {
      // What cannot be lowered belongs to a scope that fails; nobody here can help it.
    }
  }
}

// Lets go of a layer's scope: its windows, its part of the lock stack, and the scope itself if it is owned.
void cc_TabletTop::release_(int layer)
{
  cs_Layer& own = layers_[layer];
  own.windows.clear();
  if (!own.scope)
    return;
  if (layer == cc_TabletEnums::overlayLayer)
    overlayScopes.fetch_sub(1, std::memory_order_relaxed);
  if (own.owned) {
    if (layers_[1 - layer].scope == own.scope)
      layers_[1 - layer].owned = true;
    else
      delete own.scope;
  }
  own.scope = nullptr;
  own.owned = false;
}

void cc_TabletTop::setScope(int layer, ccUIScope* scope, bool owned)
{
  cs_Layer& own = layers_[layer];
  if (scope && scope == own.scope) {
    own.windows.clear();
    own.owned = owned;
  } else {
    std::vector<bool> levels; // from the top down; first, as it may fail
    for (ccFlagStack locks = own.locks; locks.depth() > 0;)
      levels.push_back(locks.pop());
    lower_(layer);
    release_(layer);
    own.scope = scope;
    own.owned = owned && scope;
    if (scope) {
      if (layer == cc_TabletEnums::overlayLayer)
        overlayScopes.fetch_add(1, std::memory_order_relaxed);
      for (auto level = levels.rbegin(); level != levels.rend(); ++level)
        scope->lockScreenUpdatesPush(*level);
      if (own.optimized > 0)
        scope->optimizeDrawing(true);
      if (own.drags > 0) {
        scope->dragStart();
        own.fresh = true;
        if (own.animating)
          scope->dragAnimate(true);
      }
    }
  }
  own.scopeRect = scope ? ccUIRect(ccPair<long>(), scope->size()) : ccUIRect();
  // What redraw_ reaches may have depended on the former size.
  for (ccUITablet* t = owner_; t; t = next(t))
    t->layers_->layer[layer].covered = false;
  changed();
  for (int i = 0; i < 2; ++i)
    if (!isUsed(i))
      layers_[i].pending.clear();
  mark(layer, ccUIRect::inf, nullptr);
}

ccUIScope* cc_TabletTop::window(int layer, ccUIRect const& rect)
{
  cs_Layer& own = layers_[layer];
  if (!own.scope || rect == own.scopeRect)
    return own.scope;
  cs_Window* oldest = nullptr;
  for (cs_Window& w : own.windows) {
    if (w.rect == rect) {
      w.used = ++windowUse_;
      return w.scope.get();
    }
    if (!oldest || w.used < oldest->used)
      oldest = &w;
  }
  if (own.windows.size() < maxWindows) {
    std::unique_ptr<ccUIScope> scope(own.scope->createChildScope(rect, /*subset=*/true));
    if (!scope)
      return nullptr;
    own.windows.push_back({std::move(scope), rect, ++windowUse_});
    return own.windows.back().scope.get();
  }
  oldest->scope->subset(*own.scope, rect);
  oldest->scope->clearChange();
  oldest->rect = rect;
  oldest->used = ++windowUse_;
  return oldest->scope.get();
}

void cc_TabletTop::lockPush(int layer, bool on)
{
  layers_[layer].locks.push(on);
  cc_OnThrow const undo([&] { layers_[layer].locks.pop(); });
  if (layers_[layer].scope)
    layers_[layer].scope->lockScreenUpdatesPush(on);
}

void cc_TabletTop::lockPop(int layer)
{
  if (layers_[layer].locks.depth() == 0)
    return;
  cc_Hold const hold(this); // a scope that has lost its surfaces may ask for a full drawing, and hooks delete
  layers_[layer].locks.pop();
  if (layers_[layer].scope)
    layers_[layer].scope->lockScreenUpdatesPop();
}

void cc_TabletTop::optimizeDrawing(int layer, bool on)
{
  cs_Layer& own = layers_[layer];
  if (!on && own.optimized == 0)
    return;
  if (own.scope && own.optimized == (on ? 0 : 1))
    own.scope->optimizeDrawing(on);
  own.optimized += on ? 1 : -1;
}

ccGraphicProps& cc_TabletTop::pen(ccColor const& color)
{
  pen_.penColor(color);
  return pen_;
}

// ---- Regions

bool cc_TabletTop::isSolid(ccUITablet const& t, int layer)
{
  return t.layers_->layer[layer].opaque && t.layers_->layer[layer].covered;
}

cs_Region const& cc_TabletTop::region(ccUITablet& t, int layer, ce_RegionKind kind)
{
  cs_Region& r = t.layers_->layer[layer].regions[static_cast<int>(kind)];
  if (r.version == version_)
    return r;
  r.version = 0; // until all is there
  r.rects.clear();
  r.unproven = ccUIRect();
  r.shown = t.isShown();
  if (!r.shown) {
    r.version = version_;
    return r;
  }
  ccUIRect const bounds = t.layers_->clip & scopeRect(layer);
  r.rects.assign(bounds);
  ccUITablet* f = kind == ce_RegionKind::ghost ? afterSubtree(&t) : next(&t);
  while (f && !r.rects.isEmpty()) {
    cc_TabletLayers const& front = *f->layers_;
    if (!f->visible_ || front.clip.nullIntersection(bounds)) {
      f = afterSubtree(f);
    } else if (front.layer[layer].opaque && (kind != ce_RegionKind::pass || front.layer[layer].covered)) {
      r.rects.subtract(front.clip);
      if (!front.layer[layer].covered)
        r.unproven |= front.clip & bounds;
      f = afterSubtree(f);
    } else {
      f = next(f);
    }
  }
  r.version = version_;
  return r;
}

// ---- Marks

// A repaint that starts farther back draws all that the other one would.
bool cc_TabletTop::startsAtOrBehind(cs_Mark const& a, cs_Mark const& b)
{
  if (!a.from || !b.from)
    return !a.from;
  if (a.from == b.from)
    return !a.above || b.above;
  return before(a.from, b.from);
}

void cc_TabletTop::mark(int layer, ccUIRect area, ccUITablet* from, bool above)
{
  if (isDead())
    return;
  area &= owner_->layers_->clip;
  if (area.isNull() || !isUsed(layer))
    return;
  cs_Mark entry;
  entry.area = area;
  entry.from = from;
  entry.above = from && above;
  addMark_(layer, entry);
}

void cc_TabletTop::addMark_(int layer, cs_Mark const& added)
{
  std::vector<cs_Mark>& list = layers_[layer].pending;
  auto const absorb = [](cs_Mark& keeper, cs_Mark const& gone) {
    bool const within = keeper.last && gone.from && gone.from->parentTablet_ == keeper.last && !keeper.mixed;
    if (keeper.from && (gone.mixed || (!within && !inSubtree(gone.from, keeper.from))))
      keeper.mixed = true;
  };
  cs_Mark entry = added;
  for (cs_Mark& old : list) {
    if (!old.area.contains(entry.area))
      continue;
    // A kid of what was absorbed lies in front of it, so that a chain that is shown top down costs one look each.
    bool const follows = entry.from && old.last && entry.from->parentTablet_ == old.last;
    if (follows || startsAtOrBehind(old, entry)) {
      absorb(old, entry);
      old.last = entry.from;
      return;
    }
  }
  std::size_t kept = 0;
  for (cs_Mark const& old : list) {
    if (entry.area.contains(old.area) && startsAtOrBehind(entry, old))
      absorb(entry, old);
    else
      list[kept++] = old;
  }
  list.resize(kept);
  list.push_back(entry);
  if (list.size() <= maxMarks)
    return;
  // Unite the two that waste least.
  std::size_t first = 0;
  std::size_t second = 1;
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < list.size(); ++i)
    for (std::size_t k = i + 1; k < list.size(); ++k) {
      double const waste = cf_area(list[i].area | list[k].area) - cf_area(list[i].area) - cf_area(list[k].area);
      if (waste < least) {
        least = waste;
        first = i;
        second = k;
      }
    }
  cs_Mark united = list[first];
  cs_Mark const& other = list[second];
  united.area |= other.area;
  united.mixed = united.mixed || other.mixed;
  if (united.from != other.from) {
    united.from = nullptr;
    united.above = false;
    united.mixed = false;
  } else {
    united.above = united.above && other.above;
  }
  list.erase(list.begin() + static_cast<std::ptrdiff_t>(second));
  list.erase(list.begin() + static_cast<std::ptrdiff_t>(first));
  addMark_(layer, united);
}

void cc_TabletTop::forget(ccUITablet const& subtree)
{
  for (cs_Layer& own : layers_)
    for (std::vector<cs_Mark>* list : {&own.pending, &own.taken})
      for (cs_Mark& entry : *list) {
        entry.last = nullptr;
        if (entry.from && inSubtree(entry.from, &subtree)) {
          entry.from = nullptr;
          entry.above = false;
          entry.mixed = false;
        }
      }
}

ccUIRect cc_TabletTop::modifiedOf(ccUITablet& root, int layer) const
{
  ccUIRect all;
  ccUITablet* t = &root;
  while (t) {
    if (!t->visible_ && t != &root) {
      t = afterSubtree(t, &root);
      continue;
    }
    ccUIRect const own = t->layers_->layer[layer].modified;
    if (!own.isNull())
      all |= (own + t->screenOrigin_) & t->layers_->clip;
    t = next(t, &root);
  }
  return all;
}

// Drawing is held back under all of an opaque tablet, painted or not.
ccUIRect cc_TabletTop::owedBehind(ccUITablet& root, int layer) const
{
  ccUIRect all;
  ccUITablet* t = &root;
  while (t) {
    cc_TabletLayers const& own = *t->layers_;
    bool const hidden = (!t->visible_ && t != &root) || own.clip.isNull();
    if (!hidden) {
      if (own.layer[layer].opaque)
        all |= own.clip;
      else if (!own.layer[layer].modified.isNull())
        all |= (own.layer[layer].modified + t->screenOrigin_) & own.clip;
    }
    // An opaque tablet holds all of its kids.
    t = hidden || own.layer[layer].opaque ? afterSubtree(t, &root) : next(t, &root);
  }
  return all;
}

// ---- Drags

void cc_TabletTop::dragStart(int layer)
{
  cc_Hold const hold(this);
  cs_Layer& own = layers_[layer];
  if (own.drags == 0) {
    if (own.scope)
      own.scope->dragStart();
    own.fresh = true;
  }
  ++own.drags;
}

void cc_TabletTop::dragAnimate(int layer, bool on)
{
  cc_Hold const hold(this);
  cs_Layer& own = layers_[layer];
  if (own.animating && !on) {
    ++dragEpoch_; // clears the offsets of all tablets
    own.animating = false;
  }
  if (own.scope)
    own.scope->dragAnimate(on);
  own.animating = on;
}

void cc_TabletTop::dragStop(int layer)
{
  cc_Hold const hold(this);
  cs_Layer& own = layers_[layer];
  if (own.drags == 0 || --own.drags > 0)
    return;
  own.fresh = false;
  if (own.animating) {
    own.animating = false;
    ++dragEpoch_;
  }
  if (own.scope)
    own.scope->dragStop();
}
