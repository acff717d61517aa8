// Handles as numbers in disguise: a slot and its generation, so that a stale handle is recognised for the life of the
// process: a slot whose generations are used up is never used again. Not locked.
#pragma once

#include "platform/types.h"

#include <deque>
#include <utility>
#include <vector>

namespace plat::portable {

template <class Handle, class T, uptr lastGeneration = (~uptr{0} >> 17)> class HandleTable {
public:
  // Null when all slots are taken, and then nothing has changed. What throws leaves it as it was too.
  Handle add(T value)
  {
    std::size_t slot = slots_.size();
    if (free_.empty()) {
      if (slot == slotMask)
        return nullptr;
      // Room to give the slot back: that must not fail.
      if (free_.capacity() <= slot)
        free_.reserve(2 * slot + 8);
      slots_.emplace_back();
    } else {
      slot = free_.back();
      free_.pop_back();
    }
    slots_[slot].value = std::move(value);
    slots_[slot].used = true;
    return reinterpret_cast<Handle>(slots_[slot].generation << slotBits | (slot + 1));
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
    if (slots_[slot].generation++ < lastGeneration)
      free_.push_back(slot);
    return true;
  }

private:
  static constexpr unsigned slotBits = 16;
  static constexpr uptr slotMask = 0xFFFF;
  struct Slot {
    T value{};
    uptr generation = 1;
    bool used = false;
  };
  std::deque<Slot> slots_;
  std::vector<std::size_t> free_;
};

}  // namespace plat::portable
