// Nodes whose hooks call the stage.
#pragma once

#include "canvas/format.h"
#include "canvas/tablet.h"
#include "geometry/ellipse.h"
#include "geometry/rect.h"
#include "geometry/lines.h"
#include "tests/storm/stage.h"
#include "ui/core/event_processor.h"
#include "ui/core/root.h"
#include "ui/core/shapes.h"
#include "ui/core/shapes_frame.h"

#include <memory>
#include <utility>

// The step of the base and the stage's plan, in either order; each may delete the node.
template <class Base> class Noisy : public Base {
public:
  using States = ccUIObject::States;
  using Pos = ccPair<long>;

  template <class... Args>
  explicit Noisy(StormStage& stage, bool early, Args&&... args)
      : Base(std::forward<Args>(args)...), stage_(stage), early_(early)
  {
  }
  ~Noisy() override { *alive_ = false; }

  void show(bool n) override { run_(HookKind::state, [&] { Base::show(n); }); }
  void hide(bool n) override { run_(HookKind::state, [&] { Base::hide(n); }); }
  void enable(States s, bool n) override { run_(HookKind::state, [&] { Base::enable(s, n); }); }
  void disable(States s, bool n) override { run_(HookKind::state, [&] { Base::disable(s, n); }); }
  void select(States s, bool n) override { run_(HookKind::state, [&] { Base::select(s, n); }); }
  void deselect(States s, bool n) override { run_(HookKind::state, [&] { Base::deselect(s, n); }); }

protected:
  void mouseDown_() override { run_(HookKind::mouse, [&] { Base::mouseDown_(); }); }
  void mouseUp_() override { run_(HookKind::mouse, [&] { Base::mouseUp_(); }); }
  void mouseEnter_() override { run_(HookKind::mouse, [&] { Base::mouseEnter_(); }); }
  void idleMouseEnter_() override { run_(HookKind::mouse, [&] { Base::idleMouseEnter_(); }); }
  void mouseLeave_() override { run_(HookKind::mouse, [&] { Base::mouseLeave_(); }); }
  void mouseMove_(Pos const& p) override { run_(HookKind::mouse, [&] { Base::mouseMove_(p); }); }
  void click_() override { run_(HookKind::mouse, [&] { Base::click_(); }); }
  void dblClick_() override { run_(HookKind::mouse, [&] { Base::dblClick_(); }); }
  void dragStart_(Pos const& at) override { run_(HookKind::drag, [&] { Base::dragStart_(at); }); }
  void dragStop_(Pos const& from, Pos const& to) override { run_(HookKind::drag, [&] { Base::dragStop_(from, to); }); }
  void dragAnimate_(Pos const& from, Pos const& to) override
  {
    run_(HookKind::drag, [&] { Base::dragAnimate_(from, to); });
  }
  void mouseMiddle_(Pos const& p, ccMouseEvent::Event e, unsigned long keys) override
  {
    run_(HookKind::mouse, [&] { Base::mouseMiddle_(p, e, keys); });
  }
  void mouseRight_(Pos const& p, ccMouseEvent::Event e, unsigned long keys) override
  {
    run_(HookKind::mouse, [&] { Base::mouseRight_(p, e, keys); });
  }
  void keyboard_(ccKeyboardEvent const& e) override { run_(HookKind::mouse, [&] { Base::keyboard_(e); }); }

  // Hooks of state come second, so that one that throws leaves a state that was taken over.
  template <class Step> void run_(HookKind kind, Step const& step)
  {
    auto const alive = alive_;
    StormStage& stage = stage_;
    bool const early = early_ && kind != HookKind::state;
    if (early)
      stage.hooked(kind, this);
    if (*alive)
      step();
    if (!early && *alive)
      stage.hooked(kind, this);
  }

  StormStage& stage_;

private:
  bool early_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

// Of shapes, sketches and outlines. A shape that is drawn directly may lie above shapes that are closer and above see-through
// frames, until its place is repainted; as all have one colour, their order does not show.
inline ccColor cfInk()
{
  return ccColor::greenColor();
}

// A panel with a face on each layer on which it is opaque, and an outline where it is on none.
class StormFrame : public Noisy<ccUIControlFrame> {
public:
  StormFrame(StormStage& stage, bool early, ccUIFrame* parent, ccUIRect const& r, unsigned face)
      : Noisy(stage, early, parent, r), face_(face)
  {
    stage_.born(this);
  }
  ~StormFrame() override { stage_.dies(this); }

protected:
  void redraw_() override
  {
    run_(HookKind::paint, [this] { paint_(); });
  }
  void resize_() override { run_(HookKind::geometry, [this] { Noisy::resize_(); }); }
  void move_() override { run_(HookKind::geometry, [this] { Noisy::move_(); }); }

private:
  void paint_()
  {
    static ccColor const faces[] = {ccColor::greyColor(), ccColor::redColor(), ccColor::yellowColor(), ccColor::cyanColor()};
    ccUIRect const whole(ccPair<long>(), ccUITablet::size());
    for (Layers layer : {imageLayer, overlayLayer})
      if (redrawLayer_ == bothLayers || redrawLayer_ == layer) {
        if (opaque(layer))
          set(whole, faces[face_ % 4], layer);
        else if (layer == imageLayer && !opaque(overlayLayer))
          outline(whole, cfInk(), 1, layer);
      }
  }

  unsigned face_;
};

class StormShapesFrame : public Noisy<ccUIShapesFrame> {
public:
  StormShapesFrame(StormStage& stage, bool early, ccUIControlFrame* parent, ccUIRect const& r)
      : Noisy(stage, early, parent, r)
  {
    layerRepaint_.push(true);  // its shapes draw directly under what stands in front
    incrementCount(imageLayer);
    stage_.born(this);
  }
  ~StormShapesFrame() override { stage_.dies(this); }

protected:
  void drawBackground_() override
  {
    run_(HookKind::paint, [this] {
      if (opaque(imageLayer) && redrawLayer_ != overlayLayer)
        set(ccUIRect(ccPair<long>(), ccUITablet::size()), ccColor::dkGreenColor(), imageLayer);
    });
  }
};

// A figure with its upper left corner at pos.
class StormShape : public Noisy<ccUIShapes> {
public:
  StormShape(StormStage& stage, bool early, unsigned figure, double x, double y)
      : Noisy(stage, early, nullptr), at_(x, y), figure_(figure)
  {
    stage_.born(this);
  }
  ~StormShape() override { stage_.dies(this); }

  bool isTouched(ccVector<2> const& v, double) override
  {
    ccVector<2> const d = v - absPos();
    return d.x() >= 0 && d.x() < side_ && d.y() >= 0 && d.y() < side_;
  }
  void side(double s) { side_ = s; }

protected:
  void pos_(ccVector<2> const& v) override { at_ = v; }
  ccVector<2> pos_() override { return at_; }
  void draw_(ccUITablet& canvas, ccColor const&, DrawMode) override
  {
    run_(HookKind::paint, [&] { paint_(canvas); });
  }

private:
  void paint_(ccUITablet& canvas)
  {
    ccVector<2> const ul = absPos(), lr = ul + ccVector<2>(side_, side_), middle = (ul + lr) * 0.5;
    switch (figure_ % 4) {
    case 0: {
      ccPair<long> const a = canvas.scopeCoords(ul), b = canvas.scopeCoords(lr);
      canvas.set(ccUIRect(a, b - a), cfInk(), drawLayer());
      break;
    }
    case 1:
      canvas.draw(ccLineSeg(ul, lr), ccGraphicProps(cfInk(), static_cast<long>(figure_ / 4 % 5), ceSolidPen, false), drawLayer());
      break;
    case 2:
      canvas.draw(ccEllipse(middle, ccVector<2>(side_ / 2, side_ / 3), ccRadian(0.4)), cfInk(), drawLayer(), figure_ % 8 > 3);
      break;
    default:
      canvas.draw("Wq", ul, cfInk(), ccColor::passColor(), ccUIFormat(ccUIFormat::topLeft), drawLayer());
    }
  }

  ccVector<2> at_;
  double side_ = 9;
  unsigned figure_;
};

class NoisyDisplay : public Noisy<ccWin32Display> {
public:
  NoisyDisplay(StormStage& stage, bool early, std::size_t slot, HWND window);
  ~NoisyDisplay() override;

  void redraw_() override { run_(HookKind::paint, [this] { Noisy::redraw_(); }); }

protected:
  void panChanged() override { run_(HookKind::change, [this] { Noisy::panChanged(); }); }
  void magChanged() override { run_(HookKind::change, [this] { Noisy::magChanged(); }); }
  void imageChanged() override { run_(HookKind::change, [this] { Noisy::imageChanged(); }); }
  void mouseModeChanged() override { run_(HookKind::change, [this] { Noisy::mouseModeChanged(); }); }
  void colorMapChanged() override { run_(HookKind::change, [this] { Noisy::colorMapChanged(); }); }
  void imageMapChanged() override { run_(HookKind::change, [this] { Noisy::imageMapChanged(); }); }
  void updatePanRanges() override { run_(HookKind::change, [this] { Noisy::updatePanRanges(); }); }
  void resize_() override { run_(HookKind::geometry, [this] { Noisy::resize_(); }); }
};
