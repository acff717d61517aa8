// What stands behind tablets: the state of each tablet, and what the top of a tree holds for the tree. The top owns the
// marks of what must be repainted, the windows of its scopes, and the passes that run redraw_.
#pragma once

#include "canvas/graphic_props.h"
#include "canvas/on_throw.h"
#include "canvas/rect_index.h"
#include "canvas/region.h"
#include "canvas/scope.h"
#include "canvas/tablet.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

inline bool cf_hasLayer(cc_TabletEnums::Layers l, int layer)
{
  return l == cc_TabletEnums::bothLayers || static_cast<int>(l) == layer;
}

// The layers in both; -1 for none.
inline int cf_commonLayers(cc_TabletEnums::Layers a, cc_TabletEnums::Layers b)
{
  if (a == cc_TabletEnums::bothLayers)
    return b;
  return b == cc_TabletEnums::bothLayers || a == b ? static_cast<int>(a) : -1;
}

// A pel far outside any tablet stays where sums with other pels fit a 32-bit long.
inline ccPair<long> cf_nearPel(std::int64_t x, std::int64_t y)
{
  constexpr std::int64_t far = ccUIRect::kFar;
  return ccPair<long>(static_cast<long>(std::clamp(x, -far, far)), static_cast<long>(std::clamp(y, -far, far)));
}

inline ccPair<long> cf_nearPel(ccVector<2> const& p) { return cf_nearPel(cfPelOf(p.x()), cfPelOf(p.y())); }

inline ccPair<long> cf_nearSum(ccPair<long> const& a, ccPair<long> const& b)
{
  return cf_nearPel(std::int64_t{a.x()} + b.x(), std::int64_t{a.y()} + b.y());
}

// Where a tablet's pels of one layer can be seen, in top pels. Valid for one version of the tree.
struct cs_Region {
  std::uint64_t version = 0;
  bool shown = false;
  ccUIRect unproven;  // hidden by what claims to be opaque, and may not be
  cc_RectList rects;
};

// Outside any redraw_ whatever is opaque in front hides; inside one only what surely repaints all of its pels does; a
// drag's ghost crosses the tablet's own kids.
enum class ce_RegionKind { direct, pass, ghost };

class cc_Watch;
struct cc_DrawScratch;

// What the linear part of a map does to shapes, worked out once for each map.
struct cs_MapKind {
  ccMatrix<2> matrix;
  bool known = false;
  bool finite = false;
  bool keepsShapes = false;  // a scale, a turn, and behind a mirroring of y if mirrored
  bool mirrored = false;
  double scale = 1;
  ccRadian turn;
};

class cc_TabletLayers {
public:
  struct cs_Layer {
    bool opaque = false;
    bool covered = false;        // a redraw_ reaches each pel
    bool clipped = false;        // drawClip holds
    ccUIRect drawClip;           // local pels
    ccUIRect modified;           // local pels: drawn since last wiped
    ccUIRect record;             // local pels: drawn since recordChanges(true)
    ccPoint pen;                 // whole top pels; not finite: nowhere
    cc_RectList* open = nullptr; // in the tablet's own redraw_: local pels that no fill has reached yet
    cs_Region regions[3];
  };

  cs_Layer layer[2];
  cc_TabletTop* top = nullptr; // null for orphans and recording tablets
  bool recorder = false;       // made by the default constructor
  bool recordsChanges = false;
  bool shown = true;         // visible here and in all ancestors
  bool clipChanged = false;  // clipped_ is due
  bool followsScope = false; // at the top or with an endless edge: its extent counts within the scope only
  ccUIRect clip;             // top pels: the tablet's rectangle cut with all ancestors
  ccUIRect seen;             // the same in local pels
  ccUIRect extent;           // top pels: endless edges taken from the parent's extent
  ccUIRect area;             // top pels: what is being painted while the tablet's inAreaUpdate_ is true
  ccXform<2> inverse;        // of screenMap_
  bool regular = true;       // screenMap_ has an inverse
  double hitScale = 1;
  cs_MapKind mapKind;        // of screenMap_
  ccPair<long> dragDel;
  std::uint64_t dragEpoch = 0;
  ccPoint sketchOffset; // tablet coordinates, while a sketch is replayed
  cc_Watch* watches = nullptr;
  cc_RectIndex::Entry place; // in the parent's index of kids

  // What a fill of the whole tablet reaches, in local pels.
  ccUIRect whole(ccUITablet const&) const;
};

// Looks after a tablet across a call of its hooks: tablet() is null once it has been destroyed.
class cc_Watch {
public:
  explicit cc_Watch(ccUITablet&);
  ~cc_Watch();
  cc_Watch(cc_Watch const&) = delete;
  cc_Watch& operator=(cc_Watch const&) = delete;
  ccUITablet* tablet() const { return tablet_; }
  bool isIn(cc_TabletTop const*) const; // alive and part of that tree
  static void destroyed(cc_TabletLayers&);

private:
  ccUITablet* tablet_;
  cc_Watch* next_;
};

class cc_TabletTop {
public:
  using Layers = cc_TabletEnums::Layers;

  explicit cc_TabletTop(ccUITablet& owner);
  void retire() noexcept; // its tablet has gone or is no top any more; it dies when the last call inside it has ended
  bool isDead() const { return owner_ == nullptr; }
  cc_TabletTop(cc_TabletTop const&) = delete;
  cc_TabletTop& operator=(cc_TabletTop const&) = delete;

  // Ways through a tree in paint order: a tablet, then its kids back to front. A limit keeps within its subtree.
  static ccUITablet* next(ccUITablet*, ccUITablet const* limit = nullptr);
  static ccUITablet* afterSubtree(ccUITablet*, ccUITablet const* limit = nullptr);
  static bool inSubtree(ccUITablet const*, ccUITablet const* root);
  static bool before(ccUITablet const*, ccUITablet const*); // strictly, in paint order
  static void refreshShown(ccUITablet&);                    // after a change of its visibility or its parent

  // Scopes and locks.
  ccUIScope* scope(int layer) const { return layers_[layer].scope; }
  ccUIRect scopeRect(int layer) const { return layers_[layer].scope ? layers_[layer].scopeRect : ccUIRect::inf; }
  // A tree without any scope keeps the marks of both layers, one with a single scope those of its layer only.
  bool isUsed(int layer) const { return layers_[layer].scope || !layers_[1 - layer].scope; }
  void setScope(int layer, ccUIScope*, bool owned);
  ccUIScope* window(int layer, ccUIRect const&); // the scope cut to a rectangle; null if there is none
  void lockPush(int layer, bool);
  void lockPop(int layer);
  void optimizeDrawing(int layer, bool);
  static bool overlaySupported();

  // Regions. Any change of geometry, order, visibility, opaque or covered state outdates them.
  void changed() { ++version_; }
  void linked() { ++links_; }
  std::uint64_t links() const { return links_; } // differs after tablets have joined, left or changed places
  cs_Region const& region(ccUITablet&, int layer, ce_RegionKind);
  static bool isSolid(ccUITablet const&, int layer);

  // Marks.
  void mark(int layer, ccUIRect area, ccUITablet* from, bool above = false);
  void forget(ccUITablet const& subtree);            // its marks become repaints from the bottom
  ccUIRect modifiedOf(ccUITablet&, int layer) const; // top pels, over the subtree
  ccUIRect owedBehind(ccUITablet&, int layer) const; // and all that lies under what is opaque of it
  bool anyChanged(int layer) const { return layers_[layer].drawn || !layers_[layer].pending.empty(); }
  void clearDrawn(int layer) { layers_[layer].drawn = false; }
  void setDrawn(int layer) { layers_[layer].drawn = true; }

  // Repainting.
  void redraw(ccUITablet&, Layers);
  void fullDraw(ccUITablet&, Layers);
  void update(Layers);
  void update(ccUIRect const&, Layers, bool now);
  bool isPainting(ccUITablet const&) const;
  bool inPass() const { return pass_ != nullptr; }
  Layers passLayer() const { return pass_->layer; }
  ccUIRect const& passArea() const { return pass_->area; }

  // Drags.
  void dragStart(int layer);
  void dragErase(int layer);
  void dragAnimate(int layer, bool);
  void dragStop(int layer);
  bool isAnimating(int layer) const { return layers_[layer].animating; }
  std::uint64_t dragEpoch() const { return dragEpoch_; }

  // Keeps the top alive while a call is inside it.
  class cc_Hold {
  public:
    explicit cc_Hold(cc_TabletTop* top) : top_(top)
    {
      if (top_)
        ++top_->holds_;
    }
    ~cc_Hold()
    {
      if (top_ && --top_->holds_ == 0 && top_->isDead())
        delete top_;
    }
    cc_Hold(cc_Hold const&) = delete;
    cc_Hold& operator=(cc_Hold const&) = delete;

  private:
    cc_TabletTop* top_;
  };

  // Brackets whatever draws. When the outermost ends, a full drawing asked for meanwhile takes place.
  class cc_Busy {
  public:
    explicit cc_Busy(cc_TabletTop* top) : hold_(top), top_(top)
    {
      if (top_)
        ++top_->busy_;
    }
    ~cc_Busy() noexcept(false)
    {
      if (top_ && --top_->busy_ == 0 && top_->deferred_)
        top_->runDeferred_();
    }
    cc_Busy(cc_Busy const&) = delete;
    cc_Busy& operator=(cc_Busy const&) = delete;

  private:
    cc_Hold hold_;
    cc_TabletTop* top_;
  };

  // The pen of the overloads that take a colour.
  ccGraphicProps& pen(ccColor const&);
  cc_DrawScratch& scratch();

private:
  // One entry of what is owed: repaint area from the bottom if from is null, else from that tablet on, or from what
  // lies in front of it.
  struct cs_Mark {
    ccUIRect area;
    ccUITablet* from = nullptr;
    bool above = false;
    bool mixed = false; // it stands for another entry, too, that began outside the subtree of from
    ccUITablet const* last = nullptr; // the tablet that began the entry absorbed last
  };
  struct cs_Window {
    std::unique_ptr<ccUIScope> scope;
    ccUIRect rect;
    std::uint64_t used = 0;
  };
  struct cs_Layer {
    ccUIScope* scope = nullptr;
    bool owned = false;
    ccUIRect scopeRect;
    ccFlagStack locks;
    std::vector<cs_Window> windows;
    std::vector<cs_Mark> pending;
    std::vector<cs_Mark> taken; // being worked off, or held back by a full drawing
    bool drawn = false;
    long optimized = 0;
    long drags = 0;
    bool animating = false;
    bool fresh = false;
  };
  struct cs_Pass {
    cc_Watch* tablet;
    Layers layer;
    ccUIRect area;
    cs_Pass* outer;
  };
  // Takes a pass off again, and gives the tablet its state back, however redraw_ ends.
  class cc_PassScope;
  // The screen lock of the layers of an operation.
  class cc_Locked;
  // The marks that are taken to be worked off; what is left of them goes back, however that ends.
  class cc_Taken;
  struct cs_Open {
    cc_RectList rects[2];
  };

  ~cc_TabletTop();
  static bool startsAtOrBehind(cs_Mark const&, cs_Mark const&);
  void addMark_(int layer, cs_Mark const&);
  void release_(int layer);
  void lower_(int layer) noexcept;
  void runDeferred_();
  ccUITablet* frontmostSolid_(int layer, ccUIRect const& area);
  static ccUITablet* start_(ccUITablet*);
  bool paint_(ccUITablet&, Layers, ccUIRect const& area, bool wiped);
  void commitCovered_(ccUITablet&, int layer, cc_RectList const& open, ccUIRect const& whole);
  void walk_(ccUITablet* from, ccUITablet const* limit, ccUIRect const& area, Layers, bool wiped);
  void front_(ccUITablet&, Layers, bool skipKids);
  void repaint_(ccUIRect area, int layer);
  void wipe_(ccUIRect const& area, int layer);
  void workOff_(int layer);
  bool meetsLeftOut_(ccUITablet&, int layer, ccUIRect const& area) const;
  void settle_(ccUITablet&, int layer);
  void giveBackTaken_(Layers);
  void mark_(Layers, ccUIRect const& area); // from the bottom

  ccUITablet* owner_; // null once it has gone
  cs_Layer layers_[2];
  cs_Pass* pass_ = nullptr;
  std::vector<std::unique_ptr<cs_Open>> open_; // by depth of passes
  std::size_t passDepth_ = 0;
  std::uint64_t version_ = 1;
  std::uint64_t links_ = 1;
  std::uint64_t windowUse_ = 0;
  std::uint64_t dragEpoch_ = 1;
  long busy_ = 0;
  long holds_ = 0;
  bool deferred_ = false;
  ccGraphicProps pen_;
  std::unique_ptr<cc_DrawScratch> scratch_;  // made by the first figure
};

// What every drawing call asks first.
inline cc_TabletTop* ccUITablet::top_() const { return layers_->top; }
inline bool ccUITablet::isRecorder_() const { return layers_->recorder; }
inline bool ccUITablet::isDrawnIn_(int layer, ccColor const& color) const
{
  return layer == overlayLayer || !color.isPass();
}
inline ccPair<long> ccUITablet::dragShift_(int layer) const
{
  cc_TabletTop const* const top = top_();
  bool const shifted = top && !top->inPass() && top->isAnimating(layer) && layers_->dragEpoch == top->dragEpoch();
  return shifted ? layers_->dragDel : ccPair<long>();
}
inline cs_MapKind const& ccUITablet::mapKind_() const
{
  cs_MapKind const& kind = layers_->mapKind;
  return kind.known && kind.matrix == screenMap_.matrix() ? kind : newMapKind_();
}
inline ccXform<2> ccUITablet::drawMap_(int layer) const
{
  ccVector<2> const shift =
      ccVector<2>(cf_nearSum(screenOrigin_, dragShift_(layer))) + screenMap_.mapVector(layers_->sketchOffset);
  return ccXform<2>(screenMap_.matrix(), screenMap_.trans() + shift);
}
