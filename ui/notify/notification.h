// What listeners are told: which node, what happened, and how the node stood before and after. Nothing in it points to the
// node, which may be gone by then.
#pragma once

#include "foundation/handle.h"
#include "ui/notify/fwd.h"

#include <cstdint>

// A snapshot of a node. What is in it, each kind of node tells by a class of its own.
class ccUIObjectState : public virtual ccRepBase {};

class ccUINotification : public virtual ccRepBase {
public:
  using State = ccPtrHandle_const<ccUIObjectState>;
  enum Type : std::int32_t { objectDestroyed = 1, stateAboutToChange = 2, stateChanged = 4 };  // also bits of a mask

  static constexpr std::uint32_t noKey = 0xFFFFFFFF;

  ccUINotification(ccUINotifyObject*, Type);
  ccUINotification(ccUINotifyObject*, State const& before);                     // stateAboutToChange
  ccUINotification(ccUINotifyObject*, State const& before, State const& after);  // stateChanged

  Type type() const { return type_; }
  std::uint32_t key() const { return key_; }  // of the node; noKey without one
  // Of a type that has none: ccUIError::BadParams. A handle may be null all the same.
  State const& preChangeState() const;
  State const& postChangeState() const;

private:
  std::uint32_t key_;
  Type type_;
  State preChangeState_;
  State postChangeState_;
};
