// Turns mouse and keyboard events into calls of nodes: decides which node is under the pointer, who owns the gesture, and
// whether a motion is a hover, a press, a drag or nothing. One for each root; everything runs under the root's mutex.
#pragma once

#include "ui/core/fwd.h"
#include "ui/core/keyboard_event.h"
#include "ui/core/mouse_event.h"

#include <memory>

// Where a hook ends the root in the middle of an event, the processor lives until the call that is inside it has ended.
class ccUIEventProcessor : public std::enable_shared_from_this<ccUIEventProcessor> {
public:
  enum class Gesture { idle, pressed, dragging };

  explicit ccUIEventProcessor(ccUIRootObject*);

  void processEvent(ccMouseEvent const&);
  void processEvent(ccKeyboardEvent const&);
  void invalidateObject(ccUIObject*);  // forgets a node that dies or leaves the tree, and its kids
  Gesture gesture() const;

  ccUIObject* owner() const { return owner_; }
  ccPair<long> const& anchor() const { return anchor_; }
  void anchor(ccPair<long> const& p) { anchor_ = p; }
  ccPair<long> const& lastMousePos() const { return lastMousePos_; }
  std::uint32_t button() const { return button_; }
  bool dblClk() const { return dblClk_; }
  bool dragUpdating() const { return dragUpdating_; }
  void windowGone();  // ends a drag without a call of hooks, as no release will come
  void dragUpdating(bool on) { dragUpdating_ = on; }  // keep the whole screen up to date in drags too
  std::int32_t dwellCount() const { return dwellCount_; }
  ccUIObject* mouseCapture() const { return mouseCapture_; }
  void mouseCapture(ccUIObject* node) { mouseCapture_ = node; }  // the holder releases it before it dies
  ccUIRootObject* root() const { return root_; }
  ccMouseEvent const& lastMouseEvent() const { return lastMouseEvent_; }
  ccKeyboardEvent const& lastKeyboardEvent() const { return lastKeyboardEvent_; }

  // Shift, Control or none; anything else throws ccUIError::BadKeyValue. The two may not coincide: the one set last wins.
  void multiSelectKey(ccKeyboardEvent::VirtualKey);
  ccKeyboardEvent::VirtualKey multiSelectKey() const;
  void panKey(ccKeyboardEvent::VirtualKey);
  ccKeyboardEvent::VirtualKey panKey() const;

private:
  friend class ccUIObject;
  friend class ccUIRootObject;
  ccUIObject* touched_(ccUIObject* from) const;
  ccUIObject* ours_(ccUIObject*) const;  // null for a node of another tree
  bool accepts_(ccMouseEvent const&, ccUIObject* hit, std::uint32_t buttons, std::uint32_t which);
  void hover_(ccUIObject* target);
  void moveOver_(ccPair<long> const&);
  void deliver_(ccMouseEvent const&, ccUIObject const* hit, std::uint32_t buttons, bool rightAsLeft);
  void leftMoved_(ccPair<long> const&, ccUIObject const* hit);
  void leftPressed_(bool multiSelect);
  void leftReleased_(ccPair<long> const&);
  bool ownerDrags_() const;          // whatever the dragging bit says in the middle of its start
  void close_(ccMouseEvent const&);
  void rootDies_();
  void dropOwner_();
  void abandonDrag_();               // without a call of hooks
  void endDragOnScreen_();
  void forget_(ccUIObject const*);   // this node alone; it leaves the root
  void nodeLeaves_(ccUIObject*);     // with its kids, while the tree around it still stands

  ccUIObject* owner_ = nullptr;
  ccUIObject* keyOwner_ = nullptr;
  ccPair<long> anchor_;
  ccPair<long> lastMousePos_;
  std::uint32_t button_ = 0;
  bool buttonDown_ = false;
  bool dblClk_ = false;
  bool inside_ = false;
  bool dragUpdating_ = false;
  std::int32_t dwellCount_ = 0;
  ccUIObject* mouseOver_ = nullptr;
  ccUIObject* mouseCapture_ = nullptr;
  ccUIRootObject* root_;
  std::uint32_t multiSelectMask_ = ccMouseEvent::kShiftKey;
  std::uint32_t panMask_ = ccMouseEvent::kControlKey;
  ccMouseEvent lastMouseEvent_;
  ccKeyboardEvent lastKeyboardEvent_;
};
