// A node in a tree of rectangular canvases with two layers, image and overlay. It tracks what must be repainted, maps its
// own coordinates to pels, and draws on the scopes that its top tablet holds. No locks inside: the caller holds the root's
// mutex.
//
// Tablet coordinates are doubles, mapped to pels by screenMap_. Local pels count from the tablet's upper left corner; all
// ccUIRect arguments of drawing are local. Top pels are local pels plus screenOrigin_. Loops over layers run 0 then 1; layer
// 2 means both.
#pragma once

#include "canvas/color.h"
#include "canvas/flag_stack.h"
#include "canvas/fwd.h"
#include "canvas/layers.h"
#include "canvas/rect.h"
#include "canvas/sketch.h"
#include "foundation/pel_buffer.h"
#include "foundation/xform.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class cc_TabletTop;    // what a top tablet holds for its tree: scopes, marks, windows, scratch
class cc_TabletLayers; // per-tablet state of both layers
class cc_Strokes;      // chords of outlines
class cc_RectIndex;    // rectangles found by place
struct cs_TopRetirer { // a top that calls are still inside of outlives its tablet
  void operator()(cc_TabletTop*) const noexcept;
};
struct cs_Reach;       // how far points reach
struct cs_MapKind;     // what a map does to shapes

class ccUITablet : public cc_TabletEnums {
public:
  ccUITablet();                                      // records: no parent, no scope, draws into sketch_
  ccUITablet(ccUIScope* image, ccUIScope* overlay);  // a top; the scopes are not owned
  ccUITablet(ccUITablet& parent, ccUIRect const&);   // becomes lastKid
  ccUITablet(ccUITablet const&) = delete;
  ccUITablet& operator=(ccUITablet const&) = delete;
  virtual ~ccUITablet();

  // Hooks. redraw_ paints redrawLayer_; by default it draws sketch_ at (0,0). The others are empty by default.
  virtual void redraw_();
  virtual void resize_();   // the size changed
  virtual void move_();     // the position changed
  virtual void clipped_();  // the visible part changed
  virtual void newParentTablet(ccUITablet*);
  virtual void parentMapChanged();

  // Tree. Kids run back (firstKid) to front (lastKid).
  ccUITablet& setParent(ccUITablet& parent, ccUIRect const&);
  ccUITablet& moveAbs(ccPair<long> const&);
  ccUITablet& moveRel(ccPair<long> const&);
  ccUITablet& size(ccPair<long> const&);
  ccUITablet& scopeRect(ccUIRect const&);
  ccUITablet* parentTablet() const { return parentTablet_; }
  ccUITablet* firstKid() const { return firstKid_; }
  ccUITablet* lastKid() const { return lastKid_; }
  ccUITablet* nextSib() const { return nextSib_; }
  ccUITablet* prevSib() const { return prevSib_; }
  long numKids() const { return numKids_; }
  std::int64_t zOrder() const { return zOrder_; }  // among siblings: greater is nearer to the front
  // Visits the kids whose rectangle holds a local pel, in no particular order. False, and none, while there are so few that
  // asking each is as quick. The visitor changes no kid.
  bool visitKidsAt(ccPair<long> const& local, void (*visit)(void*, ccUITablet&), void* with);
  void front();
  void back();
  void startBehind();  // to the back of its siblings, without a mark: for a tablet that has drawn nothing yet
  void visible(bool);
  bool isVisible() const { return visible_; }  // its own flag
  bool isShown() const;                        // visible here and in all ancestors

  // Geometry and maps.
  ccUIRect const& frameRect() const { return frameRect_; }
  ccPair<long> screenOrigin() const { return screenOrigin_; }
  ccPair<long> size() const { return frameRect_.sz(); }
  ccUIRect currentScope(Layers) const;  // the tablet's rectangle in local pels, null without a scope on that layer
  ccUIRect activeScope(Layers) const;   // what is being painted: the update area during an area update, else the whole
  void baseMap(ccXform<2> const&);
  ccXform<2> const& baseMap() const { return baseMap_; }
  void scaleExact(ccPair<double> const&);  // magnification per axis; a reduction by 3 is 1/3
  ccPair<double> scaleExact() const { return scaleExact_; }
  void scaleMode(ScaleModes);
  ScaleModes scaleMode() const { return scaleMode_; }
  ccPair<long> scale() const;  // whole magnification or reduction per axis
  ccPair<long> scopeCoords(ccPoint const&) const;        // tablet coordinates to local pels
  ccPair<long> screenCoords(ccPoint const&) const;       // tablet coordinates to top pels
  ccPoint tabletCoords(ccPair<long> const&) const;       // local pels to tablet coordinates
  ccPoint tabletFromScreen(ccPair<long> const&) const;   // top pels to tablet coordinates
  double hitScale() const;                               // pels for each tablet unit: the root of |det screenMap_|

  // Layers and scopes.
  bool opaque(Layers) const;  // both for bothLayers
  void opaque(Layers, bool);
  static bool overlaySupported();  // at least one live tree has an overlay scope
  void setScope(Layers, ccUIScope*, bool owned);
  ccUIScope* scope(Layers) const;  // the tree's scope, null if none
  void modified(Layers, bool);
  void optimizeDrawing(bool, Layers);

  // Repainting and flushing.
  void redraw(Layers);
  void fullDraw(Layers);
  void update(Layers);
  void update(ccUIRect const& topPels, Layers, bool now);
  void lockScreenUpdatesPush(bool, Layers);
  void lockScreenUpdatesPop(Layers);
  void recordChanges(bool);
  bool recordChanges() const;
  void getChanges(ccUIRect* perLayer, bool add);

  // Drag drawing.
  void dragStart(Layers);
  void dragErase(Layers);
  void dragAnimate(bool on, Layers);
  void dragDel(ccPair<long> const&);  // offset in pels of this tablet's drawing from its resting place
  void dragStop(Layers);

  // Drawing. Rectangles are local pels; geometry is in tablet coordinates.
  void set(ccColor const&, Layers);
  void set(ccUIRect const&, ccColor const&, Layers);
  void setComplement(ccUIRect const&, ccColor const&, Layers);
  void erase(ccUIRect const&, Layers);
  void outline(ccUIRect const&, ccColor const&, long width, Layers);
  void outline3D(ccUIRect const&, ccColor const& light, ccColor const& shadow, long width, Layers);
  void drawStart(ccPoint const&, Layers);
  void drawTo(ccPoint const&, ccColor const&, Layers);
  void drawToRelPels(long dx, long dy, ccColor const&, Layers);
  void drawClipRect(ccRect const&, Layers);
  void draw(ccPelBuffer_const<unsigned char> const&, ccPoint const& at, bool masked, unsigned char maskValue,
            bool mapPels, Layers);
  void draw(ccPelBuffer_const<unsigned short> const&, ccPoint const& at, bool masked, unsigned short maskValue, Layers);
  void draw(ccPelBuffer_const<ccPackedRGB16Pel> const&, ccPoint const& at, bool masked, ccPackedRGB16Pel maskValue,
            Layers);
  void draw(ccPelBuffer_const<ccPackedRGB32Pel> const&, ccPoint const& at, bool masked, ccPackedRGB32Pel maskValue,
            Layers);
  void draw(ccRLEBuffer const&, ccPoint const& at, std::vector<unsigned char> const& map, bool transparent,
            unsigned char key, bool dontScale, Layers);
  void draw(std::string const&, ccPoint const& at, ccColor const& text, ccColor const& background, ccUIFormat const&,
            Layers);
  ccUIRect textRect(std::string const&, ccPoint const& at, ccUIFormat const&, ccUIRect& clipped, Layers);
  ccUIRect textRect(std::string const&, ccPoint const& at, ccUIFormat const&, Layers);
  void draw(ccUISketch const&, ccPoint const& at, Layers);

  // Lines and points. A colour means a one-pel solid pen.
  void draw(ccLine const&, ccColor const&, Layers);
  void draw(ccLineSeg const&, ccColor const&, Layers);
  void draw(ccLine const&, ccGraphicProps const&, Layers);
  void draw(ccLineSeg const&, ccGraphicProps const&, Layers);
  void drawPointIcon(ccPoint const&, ccGraphicProps const&, Layers);

  // Shapes. A colour means a one-pel solid pen. A polygon's own rule tells whether it is filled; one that is not stays open.
  // The other closed shapes are filled if told, or by the pen's properties. Each flag may also stand before the layers.
  void draw(ccPolygon const&, ccColor const&, Layers);
  void draw(ccPolygon const&, ccGraphicProps const&, Layers);
  void draw(ccPointSet const&, ccColor const&, Layers);  // an icon at each point
  void draw(ccPointSet const&, ccGraphicProps const&, Layers);
  void draw(ccCoordAxes const&, ccColor const&, Layers);  // two arrows
  void draw(ccCoordAxes const&, ccGraphicProps const&, Layers);
  void draw(ccCircle const&, ccColor const&, Layers, bool filled = false);
  void draw(ccCircle const&, ccGraphicProps const&, Layers, bool filled = false);
  void draw(ccEllipse const&, ccColor const&, Layers, bool filled = false);
  void draw(ccEllipse const&, ccGraphicProps const&, Layers, bool filled = false);
  void draw(ccGenRect const&, ccColor const&, Layers, bool filled = false);
  void draw(ccGenRect const&, ccGraphicProps const&, Layers, bool filled = false);
  void draw(cc2Wireframe const&, ccColor const&, Layers, bool filled = false);
  void draw(cc2Wireframe const&, ccGraphicProps const&, Layers, bool filled = false);
  void draw(ccEllipseAnnulusSection const&, ccColor const&, Layers, bool endSides = true, bool filled = false);
  void draw(ccEllipseAnnulusSection const&, ccGraphicProps const&, Layers, bool endSides = true, bool filled = false);
  void draw(ccCircle const& s, ccColor const& p, bool filled, Layers l) { draw(s, p, l, filled); }
  void draw(ccCircle const& s, ccGraphicProps const& p, bool filled, Layers l) { draw(s, p, l, filled); }
  void draw(ccEllipse const& s, ccColor const& p, bool filled, Layers l) { draw(s, p, l, filled); }
  void draw(ccEllipse const& s, ccGraphicProps const& p, bool filled, Layers l) { draw(s, p, l, filled); }
  void draw(ccGenRect const& s, ccColor const& p, bool filled, Layers l) { draw(s, p, l, filled); }
  void draw(ccGenRect const& s, ccGraphicProps const& p, bool filled, Layers l) { draw(s, p, l, filled); }
  void draw(cc2Wireframe const& s, ccColor const& p, bool filled, Layers l) { draw(s, p, l, filled); }
  void draw(cc2Wireframe const& s, ccGraphicProps const& p, bool filled, Layers l) { draw(s, p, l, filled); }
  void draw(ccEllipseAnnulusSection const& s, ccColor const& p, bool endSides, bool filled, Layers l)
  {
    draw(s, p, l, endSides, filled);
  }
  void draw(ccEllipseAnnulusSection const& s, ccGraphicProps const& p, bool endSides, bool filled, Layers l)
  {
    draw(s, p, l, endSides, filled);
  }
  void draw(ccRect const&, ccGraphicProps const&, Layers);
  void draw(ccAffineRectangle const&, ccGraphicProps const&, Layers);
  void draw(ccPolyline const&, ccGraphicProps const&, Layers);
  void draw(ccBezierCurve const&, ccGraphicProps const&, Layers);
  void draw(ccCubicSpline const&, ccGraphicProps const&, Layers);
  void draw(ccShape const&, ccGraphicProps const&, Layers);  // any shape, by its outline

  // Icons drawn as text; the first character of a map separates its rows.
  static ccRLEBuffer makeIcon(char const* map, std::vector<unsigned char> const& colors);
  static bool iconTouched(char const* map, ccPair<long> const& offset, long stride);
  static bool pointIconTouched(ccPair<long> const& offset);

  ccUISketch& sketch() { return sketch_; }
  ccUISketch const& sketch() const { return sketch_; }

  // State that frames, shapes and displays read and write on other tablets too.
  ccUITablet* parentTablet_ = nullptr;
  ccUIRect frameRect_;            // position in the parent, and size
  ccPair<long> screenOrigin_;     // upper left corner in top pels
  ccXform<2> baseMap_;
  ccXform<2> screenMap_;          // scale after base map: tablet coordinates to local pels
  ScaleModes scaleMode_ = scaleNone;
  ccPair<double> scaleExact_{1.0, 1.0};
  ccFlagStack drawEnabled_{true};      // top false: redraw_ isn't run, map setters don't mark
  ccFlagStack layerRepaint_{false};    // top true: direct drawing makes what lies in front return at the next update
  ccFlagStack overlayRepaint_{true};   // top false narrows a both-layer request to the image layer
  Layers redrawLayer_ = bothLayers;    // what redraw_ is asked to paint; both at rest
  ccUISketch sketch_;                  // the tablet's own recorded drawing
  bool inAreaUpdate_ = false;          // only a part of the tablet is being repainted
  void* enclosing_ = nullptr;          // the tree node that this tablet is a part of, for its owner; null for a plain tablet

protected:
  ccUITablet(ccUITablet* parentOrNull, ccUIRect const&);  // null: an orphan, which draws nowhere and records nothing
  bool anyChanged(Layers) const;  // is anything waiting for this layer, in the whole tree
  void clearAnyChanged(Layers);

private:
  friend class cc_Pieces;
  friend class cc_TabletLayers;
  friend class cc_TabletTop;
  friend class cc_Watch;

  cc_TabletTop* top_() const;
  void link_(ccUITablet& parent);
  void unlink_();
  void indexPlace_();  // after a change of frameRect_ or of the parent
  void joinTree_(cc_TabletTop*);
  void locate_();  // origins, extents and clips of the subtree
  void setFrame_(ccUIRect const&);
  void markOldPlace_();
  void markNewPlace_();
  void runGeometryHooks_(bool moved, bool sized);
  void runClippedHooks_();
  void mapSet_(bool differs);
  void tellKidsOfMap_();
  Layers narrowed_(Layers) const;

  // Drawing. Layers are 0 or 1 here.
  bool isRecorder_() const;
  bool isDrawnIn_(int layer, ccColor const&) const;  // not for pass colour on the image layer
  ccPair<long> dragShift_(int layer) const;
  ccPair<long> pelShift_(int layer) const;                   // of rectangles, local pels to top pels
  // Snapped, in top pels; false for a place that is not finite.
  bool topPel_(ccPoint const&, int layer, ccPair<long>& pel) const;
  ccXform<2> drawMap_(int layer) const;                      // tablet coordinates to top pels
  void fill_(ccUIRect const& topPels, ccColor const&, int layer);
  void penLine_(ccPoint const& to, ccColor const&, int layer);
  ccPoint penPlace_(ccPoint const&, int layer) const;  // whole pels; what is not finite stays so
  template <class Body> void onLayers_(ccGraphicProps const&, Layers, Body&&);
  enum class ce_Chain { line, open, closed, polygon };
  cs_MapKind const& mapKind_() const;
  cs_MapKind const& newMapKind_() const;
  cs_Reach mapPoints_(std::vector<ccVector<2>> const&, int layer);  // to the points at hand
  void drawPoints_(ccGraphicProps const&, int layer, ce_Chain, int fillRule);
  void drawPoints_(ccGraphicProps const&, int layer, ce_Chain, int fillRule, cs_Reach const&);
  void sendPoints_(ccGraphicProps const&, int layer, ce_Chain, int fillRule, ccVector<2> const& low, ccVector<2> const& high);
  template <class Figure>
  void drawFigure_(Figure const&, ccVector<2> const& halfBox, ccGraphicProps const&, int layer, bool fill);
  void keepPel_(ccGraphicProps const&);
  void drawStrokes_(cc_Strokes const&, ccGraphicProps const&, int layer);
  void drawMarks_(cc2Wireframe const&, ccGraphicProps const&, int layer);
  void drawIcon_(ccPoint const&, ccGraphicProps const&, int layer);
  void drawOutline_(ccShape const&, ccGraphicProps const&, int layer, bool fill);
  void clipTo_(ccPoint const& ul, ccPoint const& lr, Layers);
  void liftClip_(Layers);
  template <class T, class Key>
  void drawPels_(ccPelBuffer_const<T> const&, ccPoint const& at, bool masked, Key, bool mapped, Layers);

  ccUITablet* firstKid_ = nullptr;
  ccUITablet* lastKid_ = nullptr;
  ccUITablet* nextSib_ = nullptr;
  ccUITablet* prevSib_ = nullptr;
  long numKids_ = 0;
  std::int64_t zOrder_ = 0;
  std::int64_t kidsFront_ = 0, kidsBack_ = 0;  // zOrder_ of the kids lies between them
  bool visible_ = true;
  std::unique_ptr<cc_TabletLayers> layers_;
  std::unique_ptr<cc_RectIndex> kidIndex_;  // of the kids' rectangles, once there are many
  std::unique_ptr<cc_TabletTop, cs_TopRetirer> ownTop_;  // at the top of a tree only
};
