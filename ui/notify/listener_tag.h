// Names a listener. All copies of a tag share one switch, so that whoever holds one can silence the listener for a while.
#pragma once

#include "foundation/handle.h"

#include <cstdint>

class ccUINotifyListenerTag {
public:
  class Enabler;

  ccUINotifyListenerTag() = default;  // invalid

  bool isValid() const { return key_ >= 0; }
  bool isEnabled() const;    // false for an invalid tag
  void isEnabled(bool) const;  // of an invalid tag: nothing
  bool match(ccUINotifyListenerTag const& other) const { return isValid() && key_ == other.key_; }

private:
  friend class cc_NotifyDelivery;
  struct Switch : ccRepBase {
    bool on = true;  // guarded by the section of the tags
  };

  std::int32_t key_ = -1;
  ccPtrHandle<Switch> switch_;  // null in an invalid tag
};

// Switches a listener for a scope. It keeps a copy of the tag, so the tag may go first.
class ccUINotifyListenerTag::Enabler {
public:
  Enabler(ccUINotifyListenerTag&, bool on);
  Enabler(Enabler const&) = delete;
  Enabler& operator=(Enabler const&) = delete;
  ~Enabler();

private:
  ccUINotifyListenerTag const tag_;
  bool const former_;
};
