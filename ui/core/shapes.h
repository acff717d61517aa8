// A node without a rectangle of its own: geometry in the coordinates of the shapes frame that holds it. It remembers the
// rectangles that it covered, in local pels of its tablet, and so can erase itself without a full redraw.
#pragma once

#include "canvas/graphic_props.h"
#include "canvas/rect.h"
#include "canvas/rect_index.h"
#include "foundation/vector.h"
#include "ui/core/object.h"

#include <cstdint>
#include <list>

class ccUIShapes : public ccUIObject {
public:
  enum DrawMode : std::int32_t { drawNormal = 0, drawDrag = 2 };

  explicit ccUIShapes(ccUIObject* parent = nullptr);
  ~ccUIShapes() override;

  ccUIShapes* shapes(bool) override { return this; }
  ccUIObject* parent() const override { return parent_; }
  ccUIObject* closerSib() const override;
  ccUIObject* fartherSib() const override;
  ccUIObject* frontKid() const override;
  ccUIObject* backKid() const override;
  long numKids() const override;
  ccUITablet* tablet() const override;
  ccUIObject* whoIsTouched(ccPair<long> const&) override;
  void show(bool nested) override;
  void hide(bool nested) override;
  void select(States, bool nested) override;
  void deselect(States, bool nested) override;

  virtual bool isTouched(ccVector<2> const&, double scale);  // scale: pels for each unit of the tablet
protected:
  virtual void pos_(ccVector<2> const&) = 0;
  virtual ccVector<2> pos_() = 0;
  virtual void draw_(ccUITablet&, ccColor const&, DrawMode);

public:
  virtual ccGraphicProps getGraphicProps();
  virtual ccColor getColor();  // the selection colour while selected, else the pen colour of props()

protected:
  virtual void move_(ccVector<2> const& to);
  virtual void redim_();

public:
  void parent(ccUIObject*);  // a shape or a shapes frame; itself throws ccUIError::BadParams
  ccVector<2> pos();
  void pos(ccVector<2> const&);  // relative to a parent shape
  ccVector<2> absPos();
  void move(ccVector<2> const& by);
  ccColor color() const;
  void color(ccColor const&);
  ccGraphicProps props() const;
  void props(ccGraphicProps const&);
  void draw(ccUITablet&, ccColor const&, DrawMode);
  void update(bool withKids, bool erase, ccUIRect const* clip, cc_TabletEnums::Layers);
  ccUIObject* whoIsTouched(ccVector<2> const&, double scale, bool parentEnabled);

protected:
  void mouseEnter_() override;
  void idleMouseEnter_() override;
  void mouseLeave_() override;
  void dragStop_(ccPair<long> const& from, ccPair<long> const& to) override;
  void dragAnimate_(ccPair<long> const& from, ccPair<long> const& to) override;
  void front_(ccUIObject* kid) override;
  void back_(ccUIObject* kid) override;
  ccVector<2> mapMove(ccPair<long> const& delta) const;  // pels to tablet units

private:
  friend class ccUIObject;
  friend class ccUIShapesFrame;
  void drawTree_(bool withKids, ccUIRect const* clip, cc_TabletEnums::Layers);
  void eraseTree_(bool withKids, cc_TabletEnums::Layers);
  void drawSelf_(ccUITablet&, bool records);
  void drawLook_(ccUITablet&);
  void drawn_();
  void owe_() noexcept;
  void oweAll_(cc_NodeRef const& self) noexcept;
  ccUIRect drawnArea_() const;
  void count_();
  void uncount_();
  void noteLayers_();  // to the frame, if the trees of its shapes lie on both layers now
  bool liesElsewhere_(cc_TabletEnums::Layers) const;  // it or one below it
  void eraseSelf_(ccUITablet&, cc_TabletEnums::Layers);
  void unlink_();
  static std::list<ccUIShapes*>* listOf_(ccUIObject* parent);
  // For shapes and shapes frames as parents.
  static void releaseKids_(ccUIObject& parent) noexcept;
  static std::int64_t nextOrder_(bool front);
  static void toFront_(ccUIObject* kid);
  static void toBack_(ccUIObject* kid);

  ccUIObject* parent_ = nullptr;
  std::list<ccUIShapes*>* siblings_ = nullptr;  // the parent's list, null without a parent
  std::list<ccUIShapes*> kids_;  // back first
  std::list<ccUIShapes*>::iterator sibPos_;
  ccGraphicProps props_{ccColor::cyanColor(), 1, ceSolidPen, false};
  ccGraphicProps drawnProps_{ccColor::cyanColor(), 1, ceSolidPen, false};
  ccUIRect drawnRects_[2];
  std::int32_t eraseDepth_ = 0;
  std::int32_t countedOn_ = -1;    // the layer on which a frame counts it
  std::int64_t order_ = 0;         // among siblings: greater is nearer to the front
  cc_RectIndex::Entry drawnPlace_; // in the frame's index of what its shapes and their kids have drawn
};
