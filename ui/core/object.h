// A node of the tree of everything that the operator can see or touch: abstract. A node has wishes of its own (the cond
// flags), which combine with those of its ancestors into what is visible, enabled and selected.
//
// Ownership: a node made with new becomes autoDelete and dies with its parent; a member or a node on the stack does not.
// Locking: every public operation takes rootMutex(); hooks run with it held and may delete any node, their own included.
#pragma once

#include "canvas/color.h"
#include "canvas/layers.h"
#include "foundation/pair.h"
#include "ui/core/fwd.h"
#include "ui/core/mouse_event.h"

#include <cstddef>
#include <cstdint>

class ccMutex;
class ccUITablet;

class ccUIObject {
public:
  // Why a select, deselect, enable or disable hook is called.
  enum States : std::int32_t { visibleState = 0, enabledState = 1, selectedState = 2 };
  enum RightButtonModes : std::int32_t { rightButtonToObject = 1, rightButtonSendsBack = 2, rightButtonAsLeft = 3 };

  ccUIObject(ccUIObject const&) = delete;
  ccUIObject& operator=(ccUIObject const&) = delete;
  virtual ~ccUIObject();

  // This node as one of its kinds, or null.
  virtual ccUIShapes* shapes(bool);
  virtual ccUIFrame* frame(bool);
  virtual ccUIShapesFrame* shapesFrame(bool);
  virtual ccUIRootObject* rootObject(bool);

  // Tree links. Order is front to back by frontKid, fartherSib; back to front by backKid, closerSib.
  virtual ccUIObject* parent() const = 0;
  virtual ccUIObject* closerSib() const = 0;
  virtual ccUIObject* fartherSib() const = 0;
  virtual ccUIObject* frontKid() const = 0;
  virtual ccUIObject* backKid() const = 0;
  virtual long numKids() const = 0;
  virtual ccUITablet* tablet() const = 0;
  virtual ccUIObject* whoIsTouched(ccPair<long> const&);  // position in the parent's coordinates

  // Hooks of state changes. nested is true when the call comes down from an ancestor.
  virtual void show(bool nested);
  virtual void hide(bool nested);
  virtual void enable(States, bool nested);
  virtual void disable(States, bool nested);
  virtual void select(States, bool nested);
  virtual void deselect(States, bool nested);

protected:
  // Input hooks, all empty by default. Positions are root coordinates.
  virtual void mouseDown_();
  virtual void mouseUp_();
  virtual void mouseEnter_();
  virtual void idleMouseEnter_();
  virtual void mouseLeave_();
  virtual void mouseMove_(ccPair<long> const&);
  virtual void click_();
  virtual void dblClick_();
  virtual void dragStart_(ccPair<long> const& at);
  virtual void dragStop_(ccPair<long> const& from, ccPair<long> const& to);
  virtual void dragAnimate_(ccPair<long> const& from, ccPair<long> const& to);
  virtual void mouseMiddle_(ccPair<long> const&, ccMouseEvent::Event, unsigned long keys);
  virtual void mouseRight_(ccPair<long> const&, ccMouseEvent::Event, unsigned long keys);
  virtual void keyboard_(ccKeyboardEvent const&);
  // Asked of the parent to reorder a kid.
  virtual void front_(ccUIObject* kid) = 0;
  virtual void back_(ccUIObject* kid) = 0;

public:
  // Own wishes. Each returns whether the effective state changed as its name says.
  bool condVisible(bool);
  bool condEnabled(bool);
  bool condSelected(bool on, bool recurse);
  bool condVisible() const { return (flags_ & kCondVisible) != 0; }
  bool condEnabled() const { return (flags_ & kCondEnabled) != 0; }
  bool condSelected() const { return (flags_ & kCondSelected) != 0; }
  bool condVisAndEnab() const { return (flags_ & 3) == 3; }
  bool condVisEnabAndSel() const { return (flags_ & 7) == 7; }
  // Effective state.
  bool visible() const;
  bool enabled() const;
  bool selected() const;

  bool clickable() const { return (flags_ & kClickable) != 0; }
  void clickable(bool);
  bool draggable() const { return (flags_ & kDraggable) != 0; }
  void draggable(bool);
  bool dragging() const { return (flags_ & kDragging) != 0; }
  void dragging(bool);
  bool dontMove() const { return (flags_ & kDontMove) != 0; }
  void dontMove(bool);
  bool autoDelete() const { return (flags_ & kAutoDelete) != 0; }
  void autoDelete(bool);
  bool mark() const { return (flags_ & kMark) != 0; }
  void mark(bool);
  bool opNew() const { return (flags_ & kOpNew) != 0; }
  bool keepSel() const { return (flags_ & kKeepSel) != 0; }
  void keepSel(bool);  // on: selects the node too
  bool dwell() const { return (flags_ & kDwell) != 0; }
  void dwell(bool);
  bool multiSelectable() const { return (flags_ & kMultiSelectable) != 0; }
  void multiSelectable(bool);

  cc_TabletEnums::Layers drawLayer() const { return drawLayer_; }
  void drawLayer(cc_TabletEnums::Layers);
  RightButtonModes rightButtonMode() const { return rightButtonMode_; }
  void rightButtonMode(RightButtonModes mode) { rightButtonMode_ = mode; }

  void userSelect(long level);  // the selection that a press makes; 1 with the multi-selection key, 0 without
  bool multiSelected(ccUIObject const* other) const;
  bool multiDragable() const;

  std::uint32_t key() const { return key_; }
  bool dying() const { return dyingHold_ != nullptr; }  // its destructor is at work
  ccUIRootObject* root() const { return root_; }
  ccMutex& rootMutex() const;  // the root's mutex, orphanMutex() without a root

  ccUIObject* frontSib();
  ccUIObject* backSib();
  void front();
  void back();

  // Input entries: each locks and calls its hook. The event processor calls them.
  void mouseDown();
  void mouseUp();
  void mouseEnter();
  void idleMouseEnter();
  void mouseLeave();
  void mouseMove(ccPair<long> const&);
  void click();
  void dblClick();
  void keyboard(ccKeyboardEvent const&);
  void mouseMiddle(ccPair<long> const&, ccMouseEvent::Event, unsigned long keys);
  void mouseRight(ccPair<long> const&, ccMouseEvent::Event, unsigned long keys);
  void dragStart(ccPair<long> const& at);
  void dragAnimate(ccPair<long> const& from, ccPair<long> const& to);
  void dragStop(ccPair<long> const& from, ccPair<long> const& to);

  ccColor curSelColor() const;
  ccColor deselColor() const { return ccColor::cyanColor(); }
  ccColor faceColor() const { return ccColor::greyColor(); }
  ccColor lightColor() const { return ccColor::ltGreyColor(); }
  ccColor shadowColor() const { return ccColor::dkGreyColor(); }
  ccColor textColor() const { return ccColor::blackColor(); }

  static ccColor const& dragColor();
  static void dragColor(ccColor const&);
  static ccColor const& selectColor();
  static void selectColor(ccColor const&);
  static ccMutex& orphanMutex();  // serves nodes without a root
  static ccMutex& uiMutex();      // guards the registry of nodes and the list of roots; taken after a root's mutex
  // Whether obj is still the node that had this key, and in that tree. For use after a call that may delete nodes.
  static bool isValid(ccUIObject* obj, std::uint32_t key, ccUIRootObject const* root);

  static void* operator new(std::size_t size);
  static void operator delete(void*);

protected:
  ccUIObject();
  void newRoot(ccUIRootObject* root, bool recurse);
  // For destructors of nodes whose tree links go before the last of the node does: holds the root's mutex until the node
  // has left the registry, and ends a drag that the node or one below it owns.
  void beginDestruction();
  void leaveGesture();

  ccUIRootObject* root_ = nullptr;  // a root itself keeps null here
  ccMutex* rootMutex_ = nullptr;
  cc_TabletEnums::Layers drawLayer_ = cc_TabletEnums::imageLayer;

private:
  friend class cc_NodeRef;
  friend class ccUIFrame;
  friend class ccUIEventProcessor;
  friend class ccUIRootObject;
  friend class ccUIShapes;
  friend class ccUIShapesFrame;
  enum Bits : std::uint32_t {
    kCondVisible = 0x0001, kCondEnabled = 0x0002, kCondSelected = 0x0004, kClickable = 0x0008, kDraggable = 0x0010,
    kDragging = 0x0020, kDontMove = 0x0040, kAutoDelete = 0x0080, kMark = 0x0100, kOpNew = 0x0200, kKeepSel = 0x0400,
    kDwell = 0x0800, kMultiSelectable = 0x1000, kMember = kMultiSelectable | kCondVisible | kCondEnabled | kCondSelected
  };

  void setBit_(Bits bit, bool on) { flags_ = on ? flags_ | bit : flags_ & ~static_cast<std::uint32_t>(bit); }
  void bit_(Bits, bool);
  bool takeSelection_();
  void takeSiblingSelections_(long level);
  void toggleInMultiSelection_();
  void dragMembers_(cc_NodeWalk&);
  bool isMember_() const { return (flags_ & kMember) == kMember; }  // of a multi-selection, if there is another
  void endDrag_(cc_TabletRef const&, int layers) noexcept;
  void settle_(bool repaint = true) noexcept;
  void show_(bool nested);
  void hide_(bool nested);
  void enable_(States, bool nested);
  void disable_(States, bool nested);
  void select_(States, bool nested);
  void deselect_(States, bool nested);

  std::uint32_t key_;
  RightButtonModes rightButtonMode_ = rightButtonSendsBack;
  std::uint32_t flags_ = kCondEnabled;
  bool hiding_ = false;          // hide_ is on its way through the node
  bool dragRuns_ = false;        // between dragStart and dragStop, whatever the dragging bit says meanwhile
  ccMutex* dyingHold_ = nullptr;  // held from beginDestruction to the end of the node

  static void visibilityChanged_();
  static std::uint64_t visibility_();  // differs after any node's wish to be visible has changed
  static std::uint32_t nextKey_;
  static bool exists_(ccUIObject const*, std::uint32_t key);  // in whatever tree
  static bool exists_(ccUIObject const*, std::uint32_t key, ccUIRootObject const*);
  static bool setAutoDelete_(ccUIObject const*);  // did operator new make this node's memory; asked once
};
