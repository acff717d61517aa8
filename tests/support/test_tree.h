// Trees for tests of ui/: a concrete root that remembers what it was asked, nodes that log the calls of their hooks as text
// lines, and a hand that sends mouse events. No window and no platform; a tree without scopes has no screen.
#pragma once

#include "ui/core/event_processor.h"
#include "ui/core/root.h"
#include "ui/core/shapes.h"
#include "ui/core/shapes_frame.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using HookLog = std::vector<std::string>;

class TestRoot : public ccUIRootObject {
public:
  explicit TestRoot(ccPair<long> const& size = ccPair<long>(200, 100)) : ccUIRootObject(nullptr, nullptr)
  {
    scopeRect(ccUIRect(ccPair<long>(), size));
  }
  TestRoot(ccUIScope* image, ccUIScope* overlay) : ccUIRootObject(image, overlay) {}

  std::vector<ccRGB> colorMap() override { return map; }
  void colorMap(std::vector<ccRGB> const& m) override { map = m; }
  std::vector<ccRGB> colorMapEx() override { return mapEx; }
  void colorMapEx(std::vector<ccRGB> const& m) override { mapEx = m; }
  std::vector<ccRGB> const& overlayColorMap() override { return overlayMap; }

  using ccUIRootObject::anyChanged;
  using ccUIRootObject::clearAnyChanged;

  std::vector<ccRGB> map, mapEx, overlayMap;
  std::vector<Cursor> cursors;  // each call of setCursor

protected:
  void setCursor(Cursor c) override { cursors.push_back(c); }
};

inline std::string cfText(ccPair<long> const& p) { return std::to_string(p.x()) + "," + std::to_string(p.y()); }

inline std::string cfText(ccUIObject::States s)
{
  return s == ccUIObject::visibleState ? "visible" : s == ccUIObject::enabledState ? "enabled" : "selected";
}

// A node of kind Base that logs "name hook arguments", such as "a select visible nested", and then calls back. The callback
// comes last: it may delete the node.
template <class Base> class Spy : public Base {
public:
  using States = ccUIObject::States;
  using Pos = ccPair<long>;

  template <class... Args>
  Spy(HookLog& log, std::string name, Args&&... args)
      : Base(std::forward<Args>(args)...), log_(&log), name_(std::move(name))
  {
  }

  ~Spy() override { *alive_ = false; }

  std::string const& name() const { return name_; }
  std::function<void(Spy&, std::string const& hook)> onHook;

  void show(bool nested) override { run_([&] { Base::show(nested); }, "show", nested_(nested)); }
  void hide(bool nested) override { run_([&] { Base::hide(nested); }, "hide", nested_(nested)); }
  void enable(States s, bool nested) override
  {
    run_([&] { Base::enable(s, nested); }, "enable", cfText(s) + nested_(nested));
  }
  void disable(States s, bool nested) override
  {
    run_([&] { Base::disable(s, nested); }, "disable", cfText(s) + nested_(nested));
  }
  void select(States s, bool nested) override
  {
    run_([&] { Base::select(s, nested); }, "select", cfText(s) + nested_(nested));
  }
  void deselect(States s, bool nested) override
  {
    run_([&] { Base::deselect(s, nested); }, "deselect", cfText(s) + nested_(nested));
  }

protected:
  void mouseDown_() override { run_([&] { Base::mouseDown_(); }, "mouseDown"); }
  void mouseUp_() override { run_([&] { Base::mouseUp_(); }, "mouseUp"); }
  void mouseEnter_() override { run_([&] { Base::mouseEnter_(); }, "mouseEnter"); }
  void idleMouseEnter_() override { run_([&] { Base::idleMouseEnter_(); }, "idleMouseEnter"); }
  void mouseLeave_() override { run_([&] { Base::mouseLeave_(); }, "mouseLeave"); }
  void mouseMove_(Pos const& p) override { run_([&] { Base::mouseMove_(p); }, "mouseMove", cfText(p)); }
  void click_() override { run_([&] { Base::click_(); }, "click"); }
  void dblClick_() override { run_([&] { Base::dblClick_(); }, "dblClick"); }
  void dragStart_(Pos const& at) override { run_([&] { Base::dragStart_(at); }, "dragStart", cfText(at)); }
  void dragStop_(Pos const& from, Pos const& to) override
  {
    run_([&] { Base::dragStop_(from, to); }, "dragStop", cfText(from) + " " + cfText(to));
  }
  void dragAnimate_(Pos const& from, Pos const& to) override
  {
    run_([&] { Base::dragAnimate_(from, to); }, "dragAnimate", cfText(from) + " " + cfText(to));
  }
  void mouseMiddle_(Pos const& p, ccMouseEvent::Event e, unsigned long keys) override
  {
    run_([&] { Base::mouseMiddle_(p, e, keys); }, "mouseMiddle",
         cfText(p) + " " + std::to_string(e) + " " + std::to_string(keys));
  }
  void mouseRight_(Pos const& p, ccMouseEvent::Event e, unsigned long keys) override
  {
    run_([&] { Base::mouseRight_(p, e, keys); }, "mouseRight",
         cfText(p) + " " + std::to_string(e) + " " + std::to_string(keys));
  }
  void keyboard_(ccKeyboardEvent const& e) override
  {
    run_([&] { Base::keyboard_(e); }, "keyboard", std::to_string(e.event()) + " " + std::to_string(e.unicodeKey()));
  }

private:
  // The base's own step may call other hooks, and those may delete the node.
  template <class Step> void run_(Step const& step, std::string const& hook, std::string const& rest = "")
  {
    auto const alive = alive_;
    step();
    if (!*alive)
      return;
    log_->push_back(name_ + " " + hook + (rest.empty() || rest[0] == ' ' ? rest : " " + rest));
    if (auto const call = onHook)
      call(*this, hook);
  }

  static std::string nested_(bool nested) { return nested ? " nested" : ""; }

  HookLog* log_;
  std::string name_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

using SpyFrame = Spy<ccUIControlFrame>;
using SpyShapesFrame = Spy<ccUIShapesFrame>;

// A filled box in tablet coordinates: pos is its upper left corner.
class BoxShape : public ccUIShapes {
public:
  explicit BoxShape(ccUIObject* parent, ccVector<2> const& at = ccVector<2>(), double side = 10)
      : ccUIShapes(parent), at_(at), side_(side)
  {
  }

  bool isTouched(ccVector<2> const& v, double scale) override
  {
    lastScale = scale;
    ccVector<2> const d = v - absPos();
    return d.x() >= 0 && d.x() < side_ && d.y() >= 0 && d.y() < side_;
  }

  long draws = 0;                    // calls of draw_
  std::vector<DrawMode> modes;       // of each
  std::vector<unsigned long> colors; // rgb of each
  double lastScale = 0;              // of the last isTouched

protected:
  void pos_(ccVector<2> const& v) override { at_ = v; }
  ccVector<2> pos_() override { return at_; }
  void draw_(ccUITablet& canvas, ccColor const& color, DrawMode mode) override
  {
    ++draws;
    modes.push_back(mode);
    colors.push_back(color.rgb());
    ccPair<long> const ul = canvas.scopeCoords(absPos());
    ccPair<long> const lr = canvas.scopeCoords(absPos() + ccVector<2>(side_, side_));
    canvas.set(ccUIRect(ul, lr - ul), color, drawLayer());
  }

private:
  ccVector<2> at_;
  double side_;
};

using SpyShape = Spy<BoxShape>;

// Lets a frame be hit, and shows it.
template <class Frame> Frame& cfOn(Frame& frame)
{
  frame.opaque(ccUITablet::imageLayer, true);
  frame.condVisible(true);
  return frame;
}

inline ccMouseEvent cfMouse(ccMouseEvent::Event event, ccPair<long> const& at, std::uint32_t which, std::uint32_t buttons,
                            std::uint32_t keys = 0)
{
  ccMouseEvent e;
  e.event(event);
  e.position(at);
  e.whichButton(static_cast<ccMouseEvent::Button>(which));
  e.buttons(buttons);
  e.keys(keys);
  return e;
}

// Sends the events that a hand on a mouse makes, and keeps account of the buttons.
class Hand {
public:
  explicit Hand(ccUIRootObject& root) : processor_(*root.eventProcessor()) {}

  std::uint32_t keys = 0;

  Hand& moveTo(long x, long y)
  {
    at_ = ccPair<long>(x, y);
    return send_(ccMouseEvent::mouseMoved, 0);
  }
  Hand& press(std::uint32_t button = ccMouseEvent::leftButton)
  {
    down_ |= button;
    return send_(ccMouseEvent::mousePressed, button);
  }
  Hand& pressAt(long x, long y, std::uint32_t button = ccMouseEvent::leftButton)
  {
    at_ = ccPair<long>(x, y);
    return press(button);
  }
  Hand& dblClick(std::uint32_t button = ccMouseEvent::leftButton)
  {
    down_ |= button;
    return send_(ccMouseEvent::mouseDblClicked, button);
  }
  Hand& release(std::uint32_t button = ccMouseEvent::leftButton)
  {
    down_ &= ~button;
    return send_(ccMouseEvent::mouseReleased, button);
  }
  Hand& dwell() { return send_(ccMouseEvent::mouseDwell, 0); }

private:
  Hand& send_(ccMouseEvent::Event event, std::uint32_t which)
  {
    processor_.processEvent(cfMouse(event, at_, which, down_, keys));
    return *this;
  }

  ccUIEventProcessor& processor_;
  ccPair<long> at_;
  std::uint32_t down_ = 0;
};

// Moves a log's lines out, so that each test looks at the lines since the last look.
inline HookLog cfTake(HookLog& log) { return std::exchange(log, HookLog()); }
