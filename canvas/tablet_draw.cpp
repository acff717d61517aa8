// Drawing: fills, pens, pels, icons, text and sketches. Each call is recorded by a recording tablet, and else goes
// layer by layer to the pieces of the surface where the tablet can be seen.
#include "canvas/format.h"
#include "canvas/rle_buffer.h"
#include "canvas/sketch_op.h"
#include "canvas/strokes.h"
#include "canvas/tablet_pieces.h"

#include <algorithm>
#include <exception>
#include <new>
#include <type_traits>

namespace {

constexpr long thinPenMargin = 3;         // what a one-pel line may touch beside its ends' pels
constexpr std::size_t maxOpenPieces = 64; // more unreached pieces of a tablet are left unproven
constexpr long textMargin = 2;            // glyphs may lean out of their cells

ccUIRect cf_grown(ccUIRect const& r, long by)
{
  return ccUIRect::fromEdges(r.left() - by, r.top() - by, r.right() + by, r.bottom() + by);
}

ccUIRect cf_scaledBox(ccPair<long> const& at, long w, long h, ccPair<double> const& scale)
{
  return ccUIRect(at,
                  ccPair<long>(ceilTL(static_cast<double>(w) * scale.x()), ceilTL(static_cast<double>(h) * scale.y())));
}

} // namespace

// ---- What a drawing call owes

cc_Pieces::cc_Pieces(ccUITablet& t, int layer, ccUIRect const& box, Box kind)
    : top_(t.top_()), busy_(top_), layer_(layer), holds_(kind == Box::holds), box_(box)
{
  if (!top_)
    return;
  bool const inPass = top_->inPass();
  if (inPass && !cf_hasLayer(top_->passLayer(), layer))
    return;
  cc_TabletLayers& own = *t.layers_;
  cc_TabletLayers::cs_Layer& state = own.layer[layer];
  ccUIRect drawn = box;
  if (state.clipped)
    drawn &= state.drawClip + t.screenOrigin_;
  if (drawn.isNull())
    return;
  if (own.recordsChanges && !t.inAreaUpdate_)
    state.record |= drawn - t.screenOrigin_;
  if (!top_->isUsed(layer))
    return;
  bool const asGhost = !inPass && top_->isAnimating(layer);
  ce_RegionKind const regionKind = inPass    ? ce_RegionKind::pass
                                   : asGhost ? ce_RegionKind::ghost
                                             : ce_RegionKind::direct;
  cs_Region const& region = top_->region(t, layer, regionKind);
  drawn &= own.clip;
  if (!region.shown || drawn.isNull())
    return;
  if (!asGhost) {
    state.modified |= drawn - t.screenOrigin_;
    if (!inPass && t.layerRepaint_.top())
      top_->mark(layer, drawn, &t, /*above=*/true);
    // A repaint lets it through if it turns out that what hides it doesn't reach all of its pels.
    if (!inPass)
      top_->mark(layer, drawn & region.unproven, nullptr);
  }
  limits_ = inPass ? drawn & top_->passArea() : drawn;
  region_ = &region;
  ghost_ = asGhost;
}

// What has been drawn in part only is repainted.
cc_Pieces::~cc_Pieces() noexcept(false)
{
  if (region_ && !ghost_ && std::uncaught_exceptions() > exceptions_)
    top_->mark(layer_, limits_, nullptr);
}

ccPair<long> ccUITablet::pelShift_(int layer) const
{
  ccPair<long> const sketch = cf_nearPel(ccPoint(screenMap_.mapVector(layers_->sketchOffset)));
  return cf_nearSum(cf_nearSum(screenOrigin_, dragShift_(layer)), sketch);
}

bool ccUITablet::topPel_(ccPoint const& p, int layer, ccPair<long>& pel) const
{
  ccPoint const at = screenMap_ * (p + layers_->sketchOffset);
  pel = cf_nearSum(cf_nearPel(at), cf_nearSum(screenOrigin_, dragShift_(layer)));
  return cf_isFinitePoint(at);
}

ccPoint ccUITablet::penPlace_(ccPoint const& p, int layer) const
{
  ccVector<2> const at = screenMap_ * (p + layers_->sketchOffset);
  ccPair<long> const shift = cf_nearSum(screenOrigin_, dragShift_(layer));
  return ccVector<2>(cfPelFloor(at.x()), cfPelFloor(at.y())) + ccVector<2>(shift);
}

// ---- Fills

void ccUITablet::fill_(ccUIRect const& r, ccColor const& color, int layer)
{
  if (r.isNull() || !isDrawnIn_(layer, color))
    return;
  cc_TabletLayers::cs_Layer& own = layers_->layer[layer];
  if (own.open) {
    ccUIRect reached = r - screenOrigin_;
    if (own.clipped)
      reached &= own.drawClip;
    if (!reached.isNull() && own.open->size() < maxOpenPieces)
      try {
        own.open->subtract(reached);
      } catch (std::bad_alloc const&) {
        // The proof fails, and the tablet is only repainted more often.
      }
  }
  cc_Pieces pieces(*this, layer, r);
  while (ccUIScope* scope = pieces.nextPart())
    scope->set(pieces.part(), color);
}

void ccUITablet::set(ccColor const& c, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.set(c, k); });
    return;
  }
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer) || (top_() && top_()->inPass() && !cf_hasLayer(top_()->passLayer(), layer)))
      continue;
    fill_(layers_->extent, c, layer);
    opaque(static_cast<Layers>(layer), !c.isPass());
  }
}

void ccUITablet::set(ccUIRect const& r, ccColor const& c, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.set(r, c, k); });
    return;
  }
  for (int layer = 0; layer < 2; ++layer)
    if (cf_hasLayer(l, layer))
      fill_(r + pelShift_(layer), c, layer);
}

void ccUITablet::setComplement(ccUIRect const& r, ccColor const& c, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.setComplement(r, c, k); });
    return;
  }
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer))
      continue;
    // Whoever paints a complement has painted the rest.
    if (layers_->layer[layer].open && !layers_->layer[layer].clipped && isDrawnIn_(layer, c))
      layers_->layer[layer].open->clear();
    ccUIRect const whole = layers_->extent;
    ccUIRect const hole = whole & (r + pelShift_(layer));
    if (hole.isNull()) {
      fill_(whole, c, layer);
      continue;
    }
    fill_(ccUIRect::fromEdges(whole.left(), whole.top(), whole.right(), hole.top()), c, layer);
    fill_(ccUIRect::fromEdges(whole.left(), hole.top(), hole.left(), hole.bottom()), c, layer);
    fill_(ccUIRect::fromEdges(hole.right(), hole.top(), whole.right(), hole.bottom()), c, layer);
    fill_(ccUIRect::fromEdges(whole.left(), hole.bottom(), whole.right(), whole.bottom()), c, layer);
  }
}

void ccUITablet::erase(ccUIRect const& r, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.erase(r, k); });
    return;
  }
  cc_TabletTop* const top = top_();
  if (!top)
    return;
  bool const inOwnRedraw = top->isPainting(*this);
  cc_TabletTop::cc_Hold const hold(top);
  cc_Watch const self(*this);  // a repaint may end it
  for (int layer = 0; layer < 2 && self.isIn(top); ++layer) {
    if (!cf_hasLayer(l, layer))
      continue;
    if (inOwnRedraw)
      fill_(r + pelShift_(layer), ccColor::passColor(), layer);
    else if (!layers_->layer[layer].modified.nullIntersection(r))
      top->update(r + screenOrigin_, static_cast<Layers>(layer), true);
  }
}

void ccUITablet::outline(ccUIRect const& r, ccColor const& c, long width, Layers l)
{
  if (width <= 0 || r.isNull())
    return;
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.outline(r, c, width, k); });
    return;
  }
  long const w = std::min(width, std::max(r.width(), r.height()));
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer))
      continue;
    ccUIRect const o = r + pelShift_(layer);
    ccUIRect const inner = ccUIRect::fromEdges(o.left() + w, o.top() + w, o.right() - w, o.bottom() - w);
    if (inner.isNull()) {
      fill_(o, c, layer);
      continue;
    }
    fill_(ccUIRect::fromEdges(o.left(), o.top(), o.right(), inner.top()), c, layer);
    fill_(ccUIRect::fromEdges(o.left(), inner.top(), inner.left(), inner.bottom()), c, layer);
    fill_(ccUIRect::fromEdges(inner.right(), inner.top(), o.right(), inner.bottom()), c, layer);
    fill_(ccUIRect::fromEdges(o.left(), inner.bottom(), o.right(), o.bottom()), c, layer);
  }
}

void ccUITablet::outline3D(ccUIRect const& r, ccColor const& light, ccColor const& shadow, long width, Layers l)
{
  if (width <= 0 || r.isNull())
    return;
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.outline3D(r, light, shadow, width, k); });
    return;
  }
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer))
      continue;
    ccUIRect o = r + pelShift_(layer);
    // Ring by ring, which mitres the corners. Of each ring the upper right and lower left pels are in shadow.
    for (long i = 0; i < width && !o.isNull(); ++i) {
      fill_(ccUIRect::fromEdges(o.left(), o.top(), o.right() - 1, o.top() + 1), light, layer);
      fill_(ccUIRect::fromEdges(o.left(), o.top() + 1, o.left() + 1, o.bottom() - 1), light, layer);
      fill_(ccUIRect::fromEdges(o.right() - 1, o.top(), o.right(), o.bottom() - 1), shadow, layer);
      fill_(ccUIRect::fromEdges(o.left(), o.bottom() - 1, o.right(), o.bottom()), shadow, layer);
      o = cf_grown(o, -1);
    }
  }
}

// ---- Pens

void ccUITablet::drawStart(ccPoint const& p, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.drawStart(p, k); });
    return;
  }
  for (int layer = 0; layer < 2; ++layer)
    if (cf_hasLayer(l, layer))
      layers_->layer[layer].pen = penPlace_(p, layer);
}

void ccUITablet::penLine_(ccPoint const& to, ccColor const& c, int layer)
{
  ccPoint ends[] = {layers_->layer[layer].pen, to};
  layers_->layer[layer].pen = to;
  if (!top_() || !isDrawnIn_(layer, c))
    return;
  cs_Reach reach;
  reach.add(ends[0]);
  reach.add(ends[1]);
  if (!reach.isFinite() || (!reach.isWithin(cf_pelReach) && !cf_cutSegment(ends[0], ends[1], cf_pelReach)))
    return;
  ccGraphicProps const& pen = top_()->pen(c);
  cc_Pieces pieces(*this, layer, cf_penBox(ends, 2, thinPenMargin));
  while (ccUIScope* scope = pieces.next()) {
    scope->drawStart(ends[0]);
    scope->drawTo(ends[1], pen);
  }
}

void ccUITablet::drawTo(ccPoint const& p, ccColor const& c, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.drawTo(p, c, k); });
    return;
  }
  for (int layer = 0; layer < 2; ++layer)
    if (cf_hasLayer(l, layer))
      penLine_(penPlace_(p, layer), c, layer);
}

void ccUITablet::drawToRelPels(long dx, long dy, ccColor const& c, Layers l)
{
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.drawToRelPels(dx, dy, c, k); });
    return;
  }
  for (int layer = 0; layer < 2; ++layer)
    if (cf_hasLayer(l, layer))
      penLine_(layers_->layer[layer].pen + ccVector<2>(ccPair<long>(dx, dy)), c, layer);
}

// ---- The draw clip

// The bounding rectangle of the mapped one, in local pels.
void ccUITablet::clipTo_(ccPoint const& ul, ccPoint const& lr, Layers l)
{
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer))
      continue;
    ccPoint const corners[] = {ul, ccPoint(lr.x(), ul.y()), lr, ccPoint(ul.x(), lr.y())};
    cs_Reach reach;
    for (ccPoint const& corner : corners)
      reach.add(screenMap_ * (corner + layers_->sketchOffset));
    ccPair<long> const shift = cf_nearSum(screenOrigin_, dragShift_(layer));
    ccPair<long> const low = cf_nearSum(cf_nearPel(reach.low), shift), high = cf_nearSum(cf_nearPel(reach.high), shift);
    layers_->layer[layer].clipped = true;
    // A clip that the map leaves nowhere lets nothing through.
    layers_->layer[layer].drawClip = reach.isFinite() ? ccUIRect(low, high - low) - screenOrigin_ : ccUIRect();
  }
}

void ccUITablet::liftClip_(Layers l)
{
  for (int layer = 0; layer < 2; ++layer)
    if (cf_hasLayer(l, layer))
      layers_->layer[layer].clipped = false;
}

// ---- Pels

template <class T, class Key> void ccUITablet::drawPels_(ccPelBuffer_const<T> const& pels, ccPoint const& at,
                                                         bool masked, Key key, [[maybe_unused]] bool mapped, Layers l)
{
  if (!pels.isBound())
    return;
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer))
      continue;
    ccPair<double> const scale = scaleMode_ == scaleNone ? ccPair<double>(1, 1) : scaleExact_;
    ccPair<long> ul;
    if (!topPel_(at, layer, ul))
      continue;
    ccPoint const place(ul);
    cc_Pieces pieces(*this, layer, cf_scaledBox(ul, pels.width(), pels.height(), scale));
    while (ccUIScope* scope = pieces.next()) {
      if constexpr (std::is_same_v<T, unsigned char>) {
        if (scaleMode_ == scaleUp)
          scope->expand(pels, place, scale, masked, key, mapped, interpolateNone);
        else if (scaleMode_ == scaleDown)
          scope->sample(pels, place, scale, masked, key, mapped);
        else
          scope->draw(pels, place, masked, key, mapped);
      } else {
        if (scaleMode_ == scaleUp)
          scope->expand(pels, place, scale, masked, key, interpolateNone);
        else if (scaleMode_ == scaleDown)
          scope->sample(pels, place, scale, masked, key);
        else
          scope->draw(pels, place, masked, key);
      }
    }
  }
}

void ccUITablet::draw(ccPelBuffer_const<unsigned char> const& pels, ccPoint const& at, bool masked,
                      unsigned char maskValue, bool mapPels, Layers l)
{
  if (isRecorder_())
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(pels, at, masked, maskValue, mapPels, k); });
  else
    drawPels_(pels, at, masked, maskValue, mapPels, l);
}

void ccUITablet::draw(ccPelBuffer_const<unsigned short> const& pels, ccPoint const& at, bool masked,
                      unsigned short maskValue, Layers l)
{
  if (isRecorder_())
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(pels, at, masked, maskValue, k); });
  else
    drawPels_(pels, at, masked, maskValue, false, l);
}

void ccUITablet::draw(ccPelBuffer_const<ccPackedRGB16Pel> const& pels, ccPoint const& at, bool masked,
                      ccPackedRGB16Pel maskValue, Layers l)
{
  if (isRecorder_())
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(pels, at, masked, maskValue, k); });
  else
    drawPels_(pels, at, masked, maskValue.word(), false, l);
}

void ccUITablet::draw(ccPelBuffer_const<ccPackedRGB32Pel> const& pels, ccPoint const& at, bool masked,
                      ccPackedRGB32Pel maskValue, Layers l)
{
  if (isRecorder_())
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(pels, at, masked, maskValue, k); });
  else
    drawPels_(pels, at, masked, maskValue.word(), false, l);
}

// ---- Icons

void ccUITablet::draw(ccRLEBuffer const& icon, ccPoint const& at, std::vector<unsigned char> const& map,
                      bool transparent, unsigned char key, bool dontScale, Layers l)
{
  if (icon.isNull())
    return;
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(icon, at, map, transparent, key, dontScale, k); });
    return;
  }
  ScaleModes const mode = dontScale ? scaleNone : scaleMode_;
  for (int layer = 0; layer < 2; ++layer) {
    if (!cf_hasLayer(l, layer))
      continue;
    ccPair<double> const scale = mode == scaleNone ? ccPair<double>(1, 1) : scaleExact_;
    ccPair<long> ul;
    if (!topPel_(at, layer, ul))
      continue;
    ccPoint const place(ul);
    cc_Pieces pieces(*this, layer, cf_scaledBox(ul, icon.width(), icon.height(), scale));
    while (ccUIScope* scope = pieces.next()) {
      if (mode == scaleUp)
        scope->expand(icon, place, scale, map, transparent, key);
      else if (mode == scaleDown)
        scope->sample(icon, place, scale, map, transparent, key);
      else
        scope->draw(icon, place, map, transparent, key);
    }
  }
}

// ---- Text

void ccUITablet::draw(std::string const& text, ccPoint const& at, ccColor const& fore, ccColor const& back,
                      ccUIFormat const& format, Layers l)
{
  if (text.empty())
    return;
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(text, at, fore, back, format, k); });
    return;
  }
  for (int layer = 0; layer < 2; ++layer) {
    ccUIScope* const surface = cf_hasLayer(l, layer) && top_() ? top_()->scope(layer) : nullptr;
    ccPair<long> pel;
    if (!surface || !topPel_(at, layer, pel))
      continue;
    ccPoint const place(pel);
    ccUIRect clipped;
    ccUIRect const full = surface->textRect(text, place, format, clipped);
    if (!isDrawnIn_(layer, fore)) {
      if (!back.isPass())
        fill_(full, back, layer);
      continue;
    }
    cc_Pieces pieces(*this, layer, cf_grown(full, textMargin));
    while (ccUIScope* scope = pieces.next())
      scope->draw(text, place, fore, back, format);
  }
}

ccUIRect ccUITablet::textRect(std::string const& text, ccPoint const& at, ccUIFormat const& format, ccUIRect& clipped,
                              Layers l)
{
  clipped = ccUIRect();
  if (isRecorder_() || text.empty() || !top_())
    return ccUIRect();
  for (int layer = 0; layer < 2; ++layer) {
    ccUIScope* const surface = cf_hasLayer(l, layer) ? top_()->scope(layer) : nullptr;
    if (!surface)
      continue;
    ccUIRect unused;
    if (!cf_isFinitePoint(screenMap_ * (at + layers_->sketchOffset)))
      return ccUIRect();
    ccPair<long> const place = cf_nearSum(scopeCoords(at + layers_->sketchOffset), screenOrigin_);
    ccUIRect const full = surface->textRect(text, ccPoint(place), format, unused) - screenOrigin_;
    clipped = full & currentScope(static_cast<Layers>(layer));
    return full;
  }
  return ccUIRect();
}

ccUIRect ccUITablet::textRect(std::string const& text, ccPoint const& at, ccUIFormat const& format, Layers l)
{
  ccUIRect clipped;
  return textRect(text, at, format, clipped, l);
}

// ---- Sketches

void ccUITablet::draw(ccUISketch const& sketch, ccPoint const& at, Layers l)
{
  if (sketch.isEmpty())
    return;
  if (isRecorder_()) {
    cf_record(sketch_, l, [=](ccUITablet& t, Layers k) { t.draw(sketch, at, k); });
    return;
  }
  struct cs_Offset {
    ccPoint& offset;
    ccPoint former;
    ~cs_Offset() { offset = former; }
  } const restore{layers_->sketchOffset, layers_->sketchOffset};
  layers_->sketchOffset += at;
  if (!cf_isFinitePoint(layers_->sketchOffset) || !cf_isFinitePoint(screenMap_.mapVector(layers_->sketchOffset)))
    return;  // rectangles would not know where
  for (std::size_t i = 0; i < sketch.ops_seq().size(); ++i)
    sketch.ops_seq()[i]->replay(*this, l);
}
