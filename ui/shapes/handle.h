// A drag handle: abstract. A small icon, a kid of the shape that it edits, which follows a point of that shape and turns a drag
// into new parameters. README.md tells how to write one.
#pragma once

#include "canvas/graphic_props.h"
#include "canvas/tablet.h"
#include "ui/shapes/icon.h"

#include <optional>

class cc_HandleSet;

class ccUIHandle : public ccUIIcon {
public:
  enum Icons : std::int32_t {
    squareIcon = 0,   // sizes
    turnIcon = 1,     // turns
    diskIcon = 2,     // rounds
    skewIcon = 3,     // skews; touched like a disk
    bendIcon = 4,     // bends; touched like the one that turns
    addIcon = 5,      // adds
    deleteIcon = 6    // deletes
  };

  ~ccUIHandle() override;

  virtual void update() = 0;  // takes its place on the shape
  using ccUIIcon::update;

  void setIcon(Icons);               // others: the picture stays, drawn from its corner
  void setIcon(ccRLEBuffer const&);  // the map of touches and the origins stay
  // Handles that exist keep their colour. For the thread that runs the display.
  static ccColor const& handleColor();
  static void handleColor(ccColor const&);

  ccColor getColor() override { return color(); }  // never that of a selection

protected:
  explicit ccUIHandle(ccUIObject* parent);

  void select(States, bool nested) override;
  void deselect(States, bool nested) override;
  void draw_(ccUITablet&, ccColor const&, DrawMode) override;

  // What drags have in common. Deltas are pels, from the press to the pointer.
  ccPoint dragged_(ccPoint const& from, ccPair<long> const& delta);  // through whole pels, so it lies on the display's grid
  ccPoint dragged_(ccPair<long> const& delta) { return dragged_(absPos(), delta); }
  // From the shape's place to the dragged handle; nothing while both components are below the dead zone.
  std::optional<ccVector<2>> draggedDirection_(ccPair<long> const& delta, long deadZone = 0);
  void drawRubberLine_(ccPair<long> const& delta);  // from the shape's place to the dragged handle
  // The shape as it would become. No node is made for it, so a drag step costs what it draws.
  template <class Figure> void drawGhost_(Figure const& figure)
  {
    if (ccUITablet* const canvas = ghostTablet_())
      canvas->draw(figure, ccGraphicProps(dragColor(), 1, ceSolidPen, false), parent()->drawLayer());
  }

private:
  friend class cc_HandleSet;
  ccUITablet* ghostTablet_();

  cc_HandleSet* set_ = nullptr;  // that holds it, null without one
};

// A pel distance below which a direction is not trusted.
inline constexpr long kTurnDeadZone = 4;

// A handle of one kind of shape.
template <class Owner> class cc_HandleOf : public ccUIHandle {
protected:
  explicit cc_HandleOf(Owner* owner) : ccUIHandle(owner), owner_(owner) {}
  // Null once the handle was put under another parent: then it edits nothing.
  Owner* owner() const { return parent() == owner_ ? owner_ : nullptr; }

private:
  Owner* const owner_;
};
