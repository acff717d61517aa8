// Repainting: passes that run redraw_, walks over the tree, and the working off of marks.
#include "canvas/tablet_top.h"

#include <exception>

namespace {

constexpr int maxRounds = 4; // of one update; what is marked after them stays for the next

cc_TabletEnums::Layers cf_layer(int layer) { return static_cast<cc_TabletEnums::Layers>(layer); }

} // namespace

class cc_TabletTop::cc_PassScope {
public:
  cc_PassScope(cc_TabletTop& top, ccUITablet& t, Layers l, ccUIRect const& area)
      : top_(top), watch_(t), pass_{&watch_, l, area, top.pass_}, redrawLayer_(t.redrawLayer_),
        inAreaUpdate_(t.inAreaUpdate_), area_(t.layers_->area), sketchOffset_(t.layers_->sketchOffset)
  {
    if (top.open_.size() == top.passDepth_)
      top.open_.push_back(std::make_unique<cs_Open>());
    cs_Open& open = *top.open_[top.passDepth_];
    for (int layer = 0; layer < 2; ++layer) {
      whole_[layer] = t.layers_->whole(t);
      if (t.layers_->followsScope)
        whole_[layer] &= top.scopeRect(layer) - t.screenOrigin_;
      open.rects[layer].assign(whole_[layer]);
    }
    // From here on nothing can fail, so whatever is changed is given back.
    for (int layer = 0; layer < 2; ++layer) {
      cc_TabletLayers::cs_Layer& own = t.layers_->layer[layer];
      former_[layer] = {own.clipped, own.drawClip, own.open};
      own.clipped = false;
      own.open = cf_hasLayer(l, layer) ? &open.rects[layer] : nullptr;
    }
    t.redrawLayer_ = l;
    t.inAreaUpdate_ = !area.contains(t.layers_->clip);
    t.layers_->area = area;
    t.layers_->sketchOffset = ccPoint();
    top.pass_ = &pass_;
    ++top.passDepth_;
  }

  ~cc_PassScope()
  {
    top_.pass_ = pass_.outer;
    --top_.passDepth_;
    ccUITablet* const t = watch_.tablet();
    if (!t)
      return;
    t->redrawLayer_ = redrawLayer_;
    t->inAreaUpdate_ = inAreaUpdate_;
    t->layers_->area = area_;
    t->layers_->sketchOffset = sketchOffset_;
    for (int layer = 0; layer < 2; ++layer) {
      cc_TabletLayers::cs_Layer& own = t->layers_->layer[layer];
      own.clipped = former_[layer].clipped;
      own.drawClip = former_[layer].drawClip;
      own.open = former_[layer].open;
    }
  }

  cc_PassScope(cc_PassScope const&) = delete;
  cc_PassScope& operator=(cc_PassScope const&) = delete;

  bool isInTree() const { return watch_.isIn(&top_); }
  ccUIRect const& whole(int layer) const { return whole_[layer]; }

private:
  struct cs_Former {
    bool clipped;
    ccUIRect drawClip;
    cc_RectList* open;
  };

  cc_TabletTop& top_;
  cc_Watch watch_;
  cs_Pass pass_;
  Layers redrawLayer_;
  bool inAreaUpdate_;
  ccUIRect area_;
  ccPoint sketchOffset_;
  cs_Former former_[2];
  ccUIRect whole_[2];
};

class cc_TabletTop::cc_Locked {
public:
  cc_Locked(cc_TabletTop& top, Layers l) : hold_(&top), top_(top)
  {
    for (int layer = 0; layer < 2; ++layer)
      if (cf_hasLayer(l, layer)) {
        cc_OnThrow const undo([this] { pop_(); });
        top.lockPush(layer, true);
        pushed_[layer] = true;
      }
  }
  ~cc_Locked() { pop_(); }
  cc_Locked(cc_Locked const&) = delete;
  cc_Locked& operator=(cc_Locked const&) = delete;

private:
  void pop_()
  {
    for (int layer = 0; layer < 2; ++layer)
      if (pushed_[layer])
        top_.lockPop(layer);
  }

  cc_Hold hold_;
  cc_TabletTop& top_;
  bool pushed_[2] = {false, false};
};

class cc_TabletTop::cc_Taken {
public:
  cc_Taken(cc_TabletTop& top, int layer) : top_(top), layer_(layer) {}
  ~cc_Taken()
  {
    cs_Layer& own = top_.layers_[layer_];
    if (!top_.isDead()) {
      if (!current_.isNull())
        top_.mark(layer_, current_, nullptr);
      for (std::size_t i = 0; i < own.taken.size(); ++i)
        if (!own.taken[i].area.isNull())
          top_.addMark_(layer_, own.taken[i]);
    }
    own.taken.clear();
  }
  cc_Taken(cc_Taken const&) = delete;
  cc_Taken& operator=(cc_Taken const&) = delete;
  void begin(ccUIRect const& area) { current_ = area; }
  void done() { current_ = ccUIRect(); }

private:
  cc_TabletTop& top_;
  int layer_;
  ccUIRect current_;  // being repainted; from the bottom again if that fails
};

bool cc_TabletTop::isPainting(ccUITablet const& t) const
{
  for (cs_Pass const* pass = pass_; pass; pass = pass->outer)
    if (pass->tablet->tablet() == &t)
      return true;
  return false;
}

// Runs redraw_ once. False if the tablet has left the tree meanwhile.
bool cc_TabletTop::paint_(ccUITablet& t, Layers l, ccUIRect const& area, bool wiped)
{
  cc_Busy const busy(this);
  if (wiped && area.contains(t.layers_->clip))
    for (int layer = 0; layer < 2; ++layer)
      if (cf_hasLayer(l, layer))
        t.layers_->layer[layer].modified = ccUIRect();
  cc_PassScope const pass(*this, t, l, area);
  cc_OnThrow const owe([&] {
    if (pass.isInTree())
      for (int layer = 0; layer < 2; ++layer)
        if (cf_hasLayer(l, layer))
          mark(layer, area & t.layers_->clip, nullptr);
  });
  t.redraw_();
  if (!pass.isInTree())
    return false;
  for (int layer = 0; layer < 2; ++layer)
    if (cf_hasLayer(l, layer))
      commitCovered_(t, layer, *t.layers_->layer[layer].open, pass.whole(layer));
  return true;
}

// A whole pass proves or refutes that redraw_ reaches each pel. A partial one may draw no more than its area, so there
// the area must be reached for a former proof to hold.
void cc_TabletTop::commitCovered_(ccUITablet& t, int layer, cc_RectList const& open, ccUIRect const& whole)
{
  cc_TabletLayers::cs_Layer& own = t.layers_->layer[layer];
  bool covered = !whole.isNull() && open.isEmpty();
  if (!covered && t.inAreaUpdate_ && own.covered)
    covered = open.nullIntersection((t.layers_->area & t.layers_->clip) - t.screenOrigin_);
  if (covered == own.covered)
    return;
  own.covered = covered;
  changed();
  // What lies behind was not drawn here in trust of the former proof.
  if (!covered && own.opaque)
    mark(layer, t.layers_->clip, nullptr);
}

// A tablet that is hidden or disabled, or below such a one, is left out with the whole of that subtree.
ccUITablet* cc_TabletTop::start_(ccUITablet* t)
{
  ccUITablet* out = nullptr;
  for (ccUITablet* up = t; up; up = up->parentTablet_)
    if (!up->visible_ || !up->drawEnabled_.top())
      out = up;
  return out ? afterSubtree(out) : t;
}

void cc_TabletTop::walk_(ccUITablet* from, ccUITablet const* limit, ccUIRect const& area, Layers l, bool wiped)
{
  bool const everywhere = area == ccUIRect::inf;
  ccUITablet* t = from;
  while (t) {
    if (!t->visible_ || !t->drawEnabled_.top() || (!everywhere && t->layers_->clip.nullIntersection(area))) {
      t = afterSubtree(t, limit);
      continue;
    }
    if (!paint_(*t, l, area, wiped)) {
      // The way onward is lost.
      for (int layer = 0; layer < 2; ++layer)
        if (cf_hasLayer(l, layer))
          mark(layer, area, nullptr);
      return;
    }
    t = next(t, limit);
  }
}

// Paints anew what lies in front of a tablet that has just been painted. Solid subtrees have not been drawn over.
void cc_TabletTop::front_(ccUITablet& of, Layers l, bool skipKids)
{
  ccUIRect const area = of.layers_->clip;
  if (area.isNull())
    return;
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer))
      continue;
    cc_Watch const watch(of);
    ccUITablet* t = skipKids ? afterSubtree(&of) : next(&of);
    if (t)
      t = start_(t);
    while (t) {
      if (!t->visible_ || !t->drawEnabled_.top() || t->layers_->clip.nullIntersection(area) || isSolid(*t, layer)) {
        t = afterSubtree(t);
        continue;
      }
      if (!paint_(*t, cf_layer(layer), area, false)) {
        mark(layer, area, nullptr);
        break;
      }
      t = next(t);
    }
    if (!watch.isIn(this))
      return;
  }
}

ccUITablet* cc_TabletTop::frontmostSolid_(int layer, ccUIRect const& area)
{
  ccUITablet* found = nullptr;
  ccUITablet* t = owner_;
  while (t) {
    if (!t->visible_ || !t->layers_->clip.contains(area)) {
      t = afterSubtree(t);
      continue;
    }
    if (isSolid(*t, layer))
      found = t;
    t = next(t);
  }
  return found;
}

// The ground below the whole tree, where nothing solid lies on it.
void cc_TabletTop::wipe_(ccUIRect const& area, int layer)
{
  cs_Region const& ground = region(*owner_, layer, ce_RegionKind::pass);
  ccUIScope* const surface = layers_[layer].scope;
  ccColor const color = layer == cc_TabletEnums::overlayLayer ? ccColor::passColor() : ccColor::blackColor();
  for (std::size_t i = 0; i < ground.rects.size(); ++i) {
    ccUIRect const part = ground.rects[i] & area;
    if (part.isNull())
      continue;
    setDrawn(layer);
    if (surface)
      surface->set(part, color);
  }
}

void cc_TabletTop::repaint_(ccUIRect area, int layer)
{
  if (isDead())
    return;
  area &= owner_->layers_->clip;
  if (area.isNull() || !isUsed(layer))
    return;
  cc_OnThrow const owe([&] { mark(layer, area, nullptr); });
  // Before the walk, as the walk may mark anew.
  for (std::vector<cs_Mark>* list : {&layers_[layer].pending, &layers_[layer].taken})
    for (cs_Mark& entry : *list)
      if (area.contains(entry.area))
        entry.area = ccUIRect();
  std::erase_if(layers_[layer].pending, [](cs_Mark const& entry) { return entry.area.isNull(); });
  ccUITablet* solid = frontmostSolid_(layer, area);
  if (!solid) {
    cc_Busy const busy(this);
    wipe_(area, layer);
    solid = owner_;
  }
  walk_(start_(solid), nullptr, area, cf_layer(layer), /*wiped=*/true);
}

void cc_TabletTop::redraw(ccUITablet& t, Layers l)
{
  if (isPainting(t))
    return;
  if (pass_) {
    int const common = cf_commonLayers(l, pass_->layer);
    if (common >= 0 && !t.layers_->clip.nullIntersection(pass_->area))
      paint_(t, cf_layer(common), pass_->area, false);
    return;
  }
  if (busy_ > 0) {
    for (int layer = 0; layer < 2; ++layer)
      if (cf_hasLayer(l, layer))
        mark(layer, t.layers_->clip, isSolid(t, layer) ? &t : nullptr);
    return;
  }
  cc_Busy const busy(this);
  cc_Locked const locked(*this, l);
  cc_Watch const watch(t);
  ccUIRect const place = t.layers_->clip;
  cc_OnThrow const owe([&] { mark_(l, place); });
  if (!paint_(t, l, ccUIRect::inf, false))
    return;
  front_(t, l, /*skipKids=*/false);
  if (!watch.isIn(this))
    return;
  for (int layer = 0; layer < 2; ++layer) {
    ccUIRect const drawn = t.layers_->layer[layer].modified;
    // A face that has just been switched off must go.
    if (cf_hasLayer(l, layer) && !isSolid(t, layer) && !drawn.isNull())
      mark(layer, (drawn + t.screenOrigin_) & t.layers_->clip, nullptr);
  }
}

void cc_TabletTop::fullDraw(ccUITablet& t, Layers l)
{
  if (busy_ > 0) {
    for (int layer = 0; layer < 2; ++layer)
      if (cf_hasLayer(l, layer))
        mark(layer, t.layers_->clip, isSolid(t, layer) ? &t : nullptr);
    deferred_ = true;
    return;
  }
  cc_Busy const busy(this);
  cc_Locked const locked(*this, l);
  cc_Watch const watch(t);
  ccUIRect const place = t.layers_->clip;
  cc_OnThrow const owe([&] {
    giveBackTaken_(l);
    mark_(l, place);
  });
  // Held back, so that what the passes mark can be told from what was owed before them.
  for (int layer = 0; layer < 2; ++layer)
    if (cf_hasLayer(l, layer))
      layers_[layer].taken.swap(layers_[layer].pending);
  walk_(&t, &t, ccUIRect::inf, l, false);
  if (watch.tablet())
    t.redrawLayer_ = cc_TabletEnums::bothLayers;
  if (watch.isIn(this))
    front_(t, l, /*skipKids=*/true);
  if (watch.isIn(this))
    for (int layer = 0; layer < 2; ++layer)
      if (cf_hasLayer(l, layer))
        settle_(t, layer);
  giveBackTaken_(l);
}

void cc_TabletTop::giveBackTaken_(Layers l)
{
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer))
      continue;
    if (!isDead())
      for (cs_Mark const& entry : layers_[layer].taken)
        if (!entry.area.isNull())
          addMark_(layer, entry);
    layers_[layer].taken.clear();
  }
}

void cc_TabletTop::mark_(Layers l, ccUIRect const& area)
{
  for (int layer = 0; layer < 2; ++layer)
    if (cf_hasLayer(l, layer))
      mark(layer, area, nullptr);
}

// Drops what a full drawing of a solid tablet has done; what an unsolid one has drawn over, must be drawn from the
// bottom.
void cc_TabletTop::settle_(ccUITablet& t, int layer)
{
  if (!isSolid(t, layer)) {
    mark(layer, modifiedOf(t, layer), nullptr);
    return;
  }
  ccUIRect const clip = t.layers_->clip;
  std::erase_if(layers_[layer].taken, [&](cs_Mark const& entry) {
    if (!clip.contains(entry.area))
      return false;
    bool const startsHere = entry.from && !entry.mixed && inSubtree(entry.from, &t);
    return startsHere || !meetsLeftOut_(t, layer, entry.area);
  });
}

bool cc_TabletTop::meetsLeftOut_(ccUITablet& of, int layer, ccUIRect const& area) const
{
  ccUITablet* t = afterSubtree(&of);
  while (t) {
    if (!t->visible_ || t->layers_->clip.nullIntersection(area)) {
      t = afterSubtree(t);
      continue;
    }
    if (isSolid(*t, layer) || start_(t) != t)
      return true;
    t = next(t);
  }
  return false;
}

void cc_TabletTop::workOff_(int layer)
{
  cs_Layer& own = layers_[layer];
  for (int round = 0; round < maxRounds && !own.pending.empty(); ++round) {
    own.taken.swap(own.pending);
    cc_Taken taken(*this, layer);
    for (std::size_t i = 0; i < own.taken.size(); ++i) {
      cs_Mark const entry = own.taken[i];
      own.taken[i].area = ccUIRect();
      own.taken[i].from = nullptr;
      if (entry.area.isNull())
        continue;
      taken.begin(entry.area);
      if (!entry.from) {
        repaint_(entry.area, layer);
      } else {
        ccUITablet* const first = entry.above ? next(entry.from) : entry.from;
        if (first)
          walk_(start_(first), nullptr, entry.area, cf_layer(layer), false);
      }
      taken.done();
    }
  }
}

// While a pass or a drawing call runs, marks wait.
void cc_TabletTop::update(Layers l)
{
  if (busy_ > 0)
    return;
  cc_Busy const busy(this);
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer) || !isUsed(layer))
      continue;
    {
      cc_Locked const locked(*this, cf_layer(layer));
      workOff_(layer);
      layers_[layer].drawn = false;
    }
    if (ccUIScope* scope = layers_[layer].scope) {
      scope->updateScreen();
      if (scope == layers_[layer].scope)
        scope->clearChange();
    }
  }
}

void cc_TabletTop::update(ccUIRect const& area, Layers l, bool now)
{
  cc_Hold const hold(this);
  bool const asMark = !now || busy_ > 0;
  for (int layer = 0; layer < 2 && !isDead(); ++layer) {
    if (!cf_hasLayer(l, layer))
      continue;
    if (asMark) {
      mark(layer, area, nullptr);
      continue;
    }
    cc_Busy const busy(this);
    cc_Locked const locked(*this, cf_layer(layer));
    repaint_(area, layer);
  }
}

// What a drag's start hides vanishes with its first step, though updates rest during drags.
void cc_TabletTop::dragErase(int layer)
{
  cc_Hold const hold(this);
  cs_Layer& own = layers_[layer];
  if (own.fresh && busy_ == 0) {
    cc_Busy const busy(this);
    cc_Locked const locked(*this, cf_layer(layer));
    own.fresh = false;
    cc_OnThrow const again([&] { own.fresh = true; });
    workOff_(layer);
  }
  if (own.scope)
    own.scope->dragErase();
}

// A full drawing was asked for while something was being drawn.
void cc_TabletTop::runDeferred_()
{
  deferred_ = false;
  if (std::uncaught_exceptions() > 0)
    return; // the marks wait for the next update
  if (layers_[0].animating || layers_[1].animating) {
    layers_[0].fresh = true;
    layers_[1].fresh = true;
    return;
  }
  update(cc_TabletEnums::bothLayers);
  deferred_ = false; // once is enough, or a redraw_ that asks for a full drawing would never end
}

// ---- The tablet's side

void ccUITablet::redraw(Layers l)
{
  if (cc_TabletTop* top = top_())
    if (isShown() && drawEnabled_.top())
      top->redraw(*this, l);
}

void ccUITablet::fullDraw(Layers l)
{
  if (cc_TabletTop* top = top_())
    if (isShown() && drawEnabled_.top())
      top->fullDraw(*this, narrowed_(l));
}

void ccUITablet::update(Layers l)
{
  if (cc_TabletTop* top = top_())
    top->update(narrowed_(l));
}

void ccUITablet::update(ccUIRect const& area, Layers l, bool now)
{
  if (cc_TabletTop* top = top_())
    top->update(area, l, now);
}

void ccUITablet::dragStart(Layers l)
{
  cc_TabletTop* const top = top_();
  cc_TabletTop::cc_Hold const hold(top);
  for (int layer = 0; top && layer < 2; ++layer)
    if (cf_hasLayer(l, layer))
      top->dragStart(layer);
}

void ccUITablet::dragErase(Layers l)
{
  cc_TabletTop* const top = top_();
  cc_TabletTop::cc_Hold const hold(top);
  for (int layer = 0; top && layer < 2; ++layer)
    if (cf_hasLayer(l, layer))
      top->dragErase(layer);
}

void ccUITablet::dragAnimate(bool on, Layers l)
{
  cc_TabletTop* const top = top_();
  cc_TabletTop::cc_Hold const hold(top);
  for (int layer = 0; top && layer < 2; ++layer)
    if (cf_hasLayer(l, layer))
      top->dragAnimate(layer, on);
}

void ccUITablet::dragDel(ccPair<long> const& offset)
{
  layers_->dragDel = offset;
  layers_->dragEpoch = top_() ? top_()->dragEpoch() : 0;
}

void ccUITablet::dragStop(Layers l)
{
  cc_TabletTop* const top = top_();
  cc_TabletTop::cc_Hold const hold(top);
  for (int layer = 0; top && layer < 2; ++layer)
    if (cf_hasLayer(l, layer))
      top->dragStop(layer);
}
