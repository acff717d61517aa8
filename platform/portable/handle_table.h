// Handles as numbers in disguise: a slot and its generation, so that a stale handle is recognised. Not locked.
#pragma once

#include "platform/types.h"

#include <deque>
#include <utility>
#include <vector>

namespace plat::portable {

template <class Handle, class T> class HandleTable {
public:
  Handle add(T value)
  {
    std::size_t slot = slots_.size();
    if (!free_.empty()) {
      slot = free_.back();
      free_.pop_back();
    } else {
      if (slot == slotMask)
        return nullptr;
      slots_.emplace_back();
    }
    slots_[slot].value = std::move(value);
    slots_[slot].used = true;
    return reinterpret_cast<Handle>(uptr{slots_[slot].generation} << slotBits | (slot + 1));
  }

  // Stays where it is until it is removed; null for a handle that isn't alive.
  T* find(Handle handle)
  {
    uptr const bits = reinterpret_cast<uptr>(handle);
    std::size_t const slot = (bits & slotMask) - 1;
    if ((bits & slotMask) == 0 || slot >= slots_.size() || !slots_[slot].used ||
        bits >> slotBits != slots_[slot].generation)
      return nullptr;
    return &slots_[slot].value;
  }

  bool remove(Handle handle)
  {
    if (!find(handle))
      return false;
    std::size_t const slot = (reinterpret_cast<uptr>(handle) & slotMask) - 1;
    slots_[slot].value = T();
    slots_[slot].used = false;
    slots_[slot].generation = static_cast<u16>(slots_[slot].generation == 0x7FFF ? 1 : slots_[slot].generation + 1);
    free_.push_back(slot);
    return true;
  }

private:
  static constexpr unsigned slotBits = 16;
  static constexpr uptr slotMask = 0xFFFF;
  struct Slot {
    T value{};
    u16 generation = 1;
    bool used = false;
  };
  std::deque<Slot> slots_;
  std::vector<std::size_t> free_;
};

}  // namespace plat::portable
