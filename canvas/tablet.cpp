#include "canvas/tablet.h"

#include "canvas/rect_index.h"
#include "canvas/tablet_top.h"

#include <cmath>

namespace {

bool cf_isEndless(long edge) { return edge >= ccUIRect::kFar || edge <= -ccUIRect::kFar; }

bool cf_isEndless(ccUIRect const& r)
{
  return cf_isEndless(r.left()) || cf_isEndless(r.top()) || cf_isEndless(r.right()) || cf_isEndless(r.bottom());
}

// Null rectangles are equal as areas, but they have places and sizes, too.
bool cf_isSamePlace(ccUIRect const& a, ccUIRect const& b) { return a.ul() == b.ul() && a.sz() == b.sz(); }

double cf_magnification(double s) { return std::isfinite(s) && s > 0 ? s : 1.0; }

} // namespace

ccUITablet::ccUITablet() : layers_(std::make_unique<cc_TabletLayers>())
{
  layers_->recorder = true;
  locate_();
}

ccUITablet::ccUITablet(ccUIScope* image, ccUIScope* overlay) : layers_(std::make_unique<cc_TabletLayers>())
{
  if (ccUIScope const* first = image ? image : overlay)
    frameRect_ = ccUIRect(ccPair<long>(), first->size());
  ownTop_.reset(new cc_TabletTop(*this));
  layers_->top = ownTop_.get();
  locate_();
  if (image)
    ownTop_->setScope(imageLayer, image, false);
  if (overlay)
    ownTop_->setScope(overlayLayer, overlay, false);
}

ccUITablet::ccUITablet(ccUITablet& parent, ccUIRect const& frame) : ccUITablet(&parent, frame) {}

ccUITablet::ccUITablet(ccUITablet* parent, ccUIRect const& frame)
    : frameRect_(frame), layers_(std::make_unique<cc_TabletLayers>())
{
  if (parent) {
    link_(*parent);
    layers_->top = parent->layers_->top;
    if (cc_TabletTop* top = top_())
      top->changed();
  }
  locate_();
  for (ccUITablet* t = this; t; t = cc_TabletTop::next(t, this))
    t->layers_->clipChanged = false;
}

ccUITablet::~ccUITablet()
{
  cc_Watch::destroyed(*layers_);
  while (ccUITablet* kid = firstKid_) {
    kid->unlink_();
    kid->joinTree_(nullptr);
    kid->locate_();
    kid->newParentTablet(nullptr);
  }
  if (parentTablet_)
    unlink_();
}

void ccUITablet::redraw_()
{
  if (!sketch_.isEmpty())
    draw(sketch_, ccPoint(), redrawLayer_);
}

void ccUITablet::resize_() {}
void ccUITablet::move_() {}
void ccUITablet::clipped_() {}
void ccUITablet::newParentTablet(ccUITablet*) {}
void ccUITablet::parentMapChanged() {}

// ---- Geometry

ccUITablet& ccUITablet::moveAbs(ccPair<long> const& ul)
{
  ccUIRect r = frameRect_;
  r.ul(ul);
  setFrame_(r);
  return *this;
}

ccUITablet& ccUITablet::moveRel(ccPair<long> const& delta) { return moveAbs(cf_nearSum(frameRect_.ul(), delta)); }

ccUITablet& ccUITablet::size(ccPair<long> const& sz)
{
  ccUIRect r = frameRect_;
  r.sz(sz);
  setFrame_(r);
  return *this;
}

ccUITablet& ccUITablet::scopeRect(ccUIRect const& r)
{
  setFrame_(r);
  return *this;
}

void ccUITablet::setFrame_(ccUIRect const& frame)
{
  if (cf_isSamePlace(frame, frameRect_))
    return;
  markOldPlace_();
  bool const moved = frame.ul() != frameRect_.ul();
  bool const sized = frame.sz() != frameRect_.sz();
  frameRect_ = frame;
  indexPlace_();
  locate_();
  if (cc_TabletTop* top = top_())
    top->changed();
  markNewPlace_();
  runGeometryHooks_(moved, sized);
}

// Top down: each tablet's place follows from its parent's. An endless edge lies where the parent's does.
void ccUITablet::locate_()
{
  for (ccUITablet* t = this; t; t = cc_TabletTop::next(t, this)) {
    cc_TabletLayers& own = *t->layers_;
    ccUIRect const formerExtent = own.extent - t->screenOrigin_;
    ccUIRect const formerSeen = own.seen;
    ccPair<long> const formerOrigin = t->screenOrigin_;
    own.followsScope = !t->parentTablet_ || cf_isEndless(t->frameRect_);
    if (ccUITablet const* parent = t->parentTablet_) {
      ccUIRect const& outer = parent->layers_->extent;
      ccUIRect const r = t->frameRect_ + parent->screenOrigin_;
      own.extent = ccUIRect::fromEdges(
          cf_isEndless(r.left()) ? outer.left() : r.left(), cf_isEndless(r.top()) ? outer.top() : r.top(),
          cf_isEndless(r.right()) ? outer.right() : r.right(), cf_isEndless(r.bottom()) ? outer.bottom() : r.bottom());
      t->screenOrigin_ = own.extent.ul();
      own.clip = own.extent & parent->layers_->clip;
    } else {
      own.extent = ccUIRect(ccPair<long>(), t->frameRect_.sz());
      t->screenOrigin_ = ccPair<long>();
      own.clip = own.extent;
    }
    own.seen = own.clip - t->screenOrigin_;
    if (own.seen != formerSeen)
      own.clipChanged = true;
    if (own.extent - t->screenOrigin_ != formerExtent || (own.followsScope && t->screenOrigin_ != formerOrigin))
      for (cc_TabletLayers::cs_Layer& layer : own.layer)
        layer.covered = false; // fills that reached the former extent may not reach this one
  }
}

void ccUITablet::runGeometryHooks_(bool moved, bool sized)
{
  cc_Watch const watch(*this);
  if (moved)
    move_();
  if (sized && watch.tablet())
    resize_();
  if (watch.tablet())
    runClippedHooks_();
}

// Hooks may set geometry, reparent and destroy; after one that took the walk's place away the walk begins anew. The
// marks are cleared before each call, so that it ends.
void ccUITablet::runClippedHooks_()
{
  cc_Watch const own(*this);
  ccUITablet* t = this;
  while (t) {
    if (t->layers_->clipChanged) {
      t->layers_->clipChanged = false;
      cc_Watch const watch(*t);
      cc_TabletTop const* const top = top_();
      std::uint64_t const links = top ? top->links() : 0;
      t->clipped_();
      if (!own.tablet())
        return;
      // Whether it still stands here is looked for only if some tablet has changed its place at all.
      bool const same = top && watch.isIn(top) && own.isIn(top) && top->links() == links;
      if (!watch.tablet() || (!same && !cc_TabletTop::inSubtree(t, this))) {
        t = this;
        continue;
      }
    }
    t = cc_TabletTop::next(t, this);
  }
}

ccUIRect ccUITablet::currentScope(Layers l) const
{
  cc_TabletTop const* const top = top_();
  if (!top)
    return ccUIRect();
  ccUIRect all;
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer) || !top->scope(layer))
      continue;
    if (layers_->followsScope)
      all |= (layers_->extent & top->scopeRect(layer)) - screenOrigin_;
    else
      all |= ccUIRect(ccPair<long>(), frameRect_.sz());
  }
  return all;
}

ccUIRect ccUITablet::activeScope(Layers l) const
{
  ccUIRect const whole = currentScope(l);
  if (!inAreaUpdate_ || whole.isNull())
    return whole;
  return (layers_->area & layers_->clip) - screenOrigin_;
}

// ---- Maps

void ccUITablet::baseMap(ccXform<2> const& map)
{
  bool const differs = map != baseMap_;
  baseMap_ = map;
  mapSet_(differs);
}

void ccUITablet::scaleExact(ccPair<double> const& scale)
{
  ccPair<double> const s(cf_magnification(scale.x()), cf_magnification(scale.y()));
  ScaleModes const mode = s.x() > 1 ? scaleUp : s.x() < 1 ? scaleDown : scaleNone;
  bool const differs = s != scaleExact_ || mode != scaleMode_;
  scaleExact_ = s;
  scaleMode_ = mode;
  mapSet_(differs);
}

void ccUITablet::scaleMode(ScaleModes mode)
{
  bool const differs = mode != scaleMode_;
  scaleMode_ = mode;
  mapSet_(differs);
}

// An equal map marks, too: an image of unchanged geometry is shown by setting the map that it had.
void ccUITablet::mapSet_(bool differs)
{
  screenMap_ = ccXform<2>(scaleExact_.x(), scaleExact_.y(), ccVector<2>()) * baseMap_;
  double const determinant = screenMap_.matrix().determinant();
  layers_->regular = determinant != 0 && std::isfinite(determinant);
  layers_->hitScale = std::sqrt(std::fabs(determinant));
  if (layers_->regular)
    layers_->inverse = screenMap_.inverse();
  cc_TabletTop* const top = top_();
  if (top && drawEnabled_.top() && isShown()) {
    Layers const l = narrowed_(redrawLayer_);
    for (int layer = 0; layer < 2; ++layer)
      if (cf_hasLayer(l, layer))
        top->mark(layer, layers_->clip, cc_TabletTop::isSolid(*this, layer) ? this : nullptr);
  }
  if (differs)
    tellKidsOfMap_();
}

void ccUITablet::tellKidsOfMap_()
{
  cc_Watch const own(*this);
  ccUITablet* kid = firstKid_;
  while (kid) {
    cc_Watch const watch(*kid);
    kid->parentMapChanged();
    if (!own.tablet() || !watch.tablet() || kid->parentTablet_ != this)
      return; // whoever rebuilds the kids here tells them himself
    kid = kid->nextSib_;
  }
}

ccUITablet::Layers ccUITablet::narrowed_(Layers l) const
{
  return l == bothLayers && !overlayRepaint_.top() ? imageLayer : l;
}

ccPair<long> ccUITablet::scale() const
{
  constexpr double upward = 1 + cfRoundingTolerance;
  switch (scaleMode_) {
  case scaleUp:
    return ccPair<long>(cfTruncToLong(scaleExact_.x() * upward), cfTruncToLong(scaleExact_.y() * upward));
  case scaleDown:
    return ccPair<long>(cfTruncToLong(upward / scaleExact_.x()), cfTruncToLong(upward / scaleExact_.y()));
  default:
    return ccPair<long>(1, 1);
  }
}

ccPair<long> ccUITablet::scopeCoords(ccPoint const& p) const { return cf_nearPel(screenMap_ * p); }

ccPair<long> ccUITablet::screenCoords(ccPoint const& p) const { return scopeCoords(p) + screenOrigin_; }

ccPoint ccUITablet::tabletCoords(ccPair<long> const& q) const
{
  return layers_->regular ? layers_->inverse * ccPoint(q) : ccPoint();
}

ccPoint ccUITablet::tabletFromScreen(ccPair<long> const& q) const { return tabletCoords(q - screenOrigin_); }

double ccUITablet::hitScale() const { return layers_->hitScale; }

// ---- Layers and scopes

bool ccUITablet::opaque(Layers l) const
{
  return (!cf_hasLayer(l, imageLayer) || layers_->layer[imageLayer].opaque) &&
         (!cf_hasLayer(l, overlayLayer) || layers_->layer[overlayLayer].opaque);
}

void ccUITablet::opaque(Layers l, bool on)
{
  for (int layer = 0; layer < 2; ++layer) {
    bool& own = layers_->layer[layer].opaque;
    if (!cf_hasLayer(l, layer) || own == on)
      continue;
    own = on;
    cc_TabletTop* const top = top_();
    if (!top)
      continue;
    top->changed();
    if (!on && isShown())
      top->mark(layer, layers_->clip, nullptr);
  }
}

bool ccUITablet::overlaySupported() { return cc_TabletTop::overlaySupported(); }

void ccUITablet::setScope(Layers l, ccUIScope* scope, bool owned)
{
  ccUITablet* root = this;
  while (root->parentTablet_)
    root = root->parentTablet_;
  if (!root->ownTop_) {
    root->ownTop_.reset(new cc_TabletTop(*root));
    root->layers_->recorder = false;
    root->joinTree_(root->ownTop_.get());
  }
  for (int layer = 0; layer < 2; ++layer)
    if (cf_hasLayer(l, layer))
      root->ownTop_->setScope(layer, scope, owned);
}

ccUIScope* ccUITablet::scope(Layers l) const
{
  cc_TabletTop const* const top = top_();
  if (!top)
    return nullptr;
  for (int layer = 0; layer < 2; ++layer)
    if (cf_hasLayer(l, layer) && top->scope(layer))
      return top->scope(layer);
  return nullptr;
}

void ccUITablet::modified(Layers l, bool on)
{
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer))
      continue;
    cc_TabletLayers::cs_Layer& own = layers_->layer[layer];
    own.modified = on ? layers_->whole(*this) : ccUIRect();
    if (!on && own.covered) {
      own.covered = false; // a tablet that reaches all of its pels can't be without any
      if (cc_TabletTop* top = top_())
        top->changed();
    }
  }
}

void ccUITablet::optimizeDrawing(bool on, Layers l)
{
  if (cc_TabletTop* top = top_())
    for (int layer = 0; layer < 2; ++layer)
      if (cf_hasLayer(l, layer))
        top->optimizeDrawing(layer, on);
}

void ccUITablet::lockScreenUpdatesPush(bool on, Layers l)
{
  cc_TabletTop* const top = top_();
  if (!top)
    return;
  if (cf_hasLayer(l, imageLayer))
    top->lockPush(imageLayer, on);
  if (!cf_hasLayer(l, overlayLayer))
    return;
  try {
    top->lockPush(overlayLayer, on);
  } catch (...) {
    if (l == bothLayers)
      top->lockPop(imageLayer);
    throw;
  }
}

void ccUITablet::lockScreenUpdatesPop(Layers l)
{
  cc_TabletTop* const top = top_();
  cc_TabletTop::cc_Hold const hold(top);
  for (int layer = 0; top && layer < 2; ++layer)
    if (cf_hasLayer(l, layer))
      top->lockPop(layer);
}

bool ccUITablet::anyChanged(Layers l) const
{
  cc_TabletTop const* const top = top_();
  return top && ((cf_hasLayer(l, imageLayer) && top->anyChanged(imageLayer)) ||
                 (cf_hasLayer(l, overlayLayer) && top->anyChanged(overlayLayer)));
}

void ccUITablet::clearAnyChanged(Layers l)
{
  if (cc_TabletTop* top = top_())
    for (int layer = 0; layer < 2; ++layer)
      if (cf_hasLayer(l, layer))
        top->clearDrawn(layer);
}

// ---- Records

void ccUITablet::recordChanges(bool on)
{
  if (on)
    for (cc_TabletLayers::cs_Layer& layer : layers_->layer)
      layer.record = ccUIRect();
  layers_->recordsChanges = on;
}

bool ccUITablet::recordChanges() const { return layers_->recordsChanges; }

// Writes the layers of redrawLayer_ only: a pass for one layer keeps what is remembered of the other. A partial pass
// draws a part only and so writes none.
void ccUITablet::getChanges(ccUIRect* perLayer, bool add)
{
  layers_->recordsChanges = false;
  if (inAreaUpdate_)
    return;
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(redrawLayer_, layer))
      continue;
    if (add)
      perLayer[layer] |= layers_->layer[layer].record;
    else
      perLayer[layer] = layers_->layer[layer].record;
  }
}
