// A base of nodes that tell the world what becomes of them, beside ccUIObject. Whoever changes such a node brackets the change
// with beginStateChange and endStateChange; listeners hear of it later, on a thread of their own, with no lock held.
//
// Listeners are called in the order in which they were added, after the screen shows the change. They know the node by its key
// and must not touch the object without ccUIObject::isValid. Locking: the root's mutex of the node, then a section inside.
#pragma once

#include "ui/core/node_walk.h"
#include "ui/notify/listener_tag.h"
#include "ui/notify/notification.h"

#include <atomic>

class ccUIManShape;

class ccUINotifyObject {
public:
  using Callback = void (*)(void* context, ccPtrHandle_const<ccUINotification> const&);
  using State = ccPtrHandle_const<ccUIObjectState>;
  class Enabler;

  ccUINotifyObject() = default;
  ccUINotifyObject(ccUINotifyObject const&) = delete;
  ccUINotifyObject& operator=(ccUINotifyObject const&) = delete;
  virtual ~ccUINotifyObject();  // tells its listeners

  virtual State state() = 0;  // a fresh snapshot

  // The mask is a sum of ccUINotification::Type. No object or a mask of 0: an invalid tag. No callback, or an object that is no
  // node: ccUIError::BadParams. What a callback throws is dropped.
  static ccUINotifyListenerTag addListener(ccUINotifyObject*, void* context, Callback, unsigned long typeMask);
  static void removeListener(ccUINotifyListenerTag const&);

  State beginStateChange();  // null while notification is off
  void endStateChange(State const& before, bool redraw, bool flush);

  bool isNotificationEnabled();
  void isNotificationEnabled(bool);
  ccUIObject* uiObject();  // this as a node; ccUIError::BadParams if it is none

protected:
  virtual void endStateChange_();  // after the snapshot, before the redraw

private:
  friend class ccUINotification;
  virtual ccUIRootObject* notifyRoot_();  // whose mutex guards the object
  ccMutex& notifyRootMutex_();
  void cachePointers_();
  std::uint32_t nodeKey_() const;  // without throwing
  void redraw_(cc_NodeRef const&);
  static void postNotification_(ccPtrHandle_const<ccUINotification> const&);

  bool isNotificationEnabled_ = true;
  // Found at the first use, by whatever thread, and not in the constructor: the cast needs the finished object. Written under
  // uiMutex(), the node last.
  std::atomic<ccUIObject*> uiObject_{nullptr};
  ccUIShapes* shapes_ = nullptr;
  ccUIManShape* manShape_ = nullptr;
  std::uint32_t key_ = ccUINotification::noKey;  // of uiObject_, which may be gone before this base is
};

// Switches the notification of an object for a scope. Null: nothing. The object may die within.
class ccUINotifyObject::Enabler {
public:
  Enabler(ccUINotifyObject*, bool on);
  Enabler(Enabler const&) = delete;
  Enabler& operator=(Enabler const&) = delete;
  ~Enabler();

private:
  ccUINotifyObject* const object_;
  cc_NodeRef const node_;
  bool former_ = false;
};
