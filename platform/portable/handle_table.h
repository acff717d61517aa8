// Handles as numbers in disguise: a slot and its generation, so that a stale handle is recognised for as long as the process
// lives. A slot whose generations are used up is given out no more. A table that is full, or for which memory fails, stays
// whole; removing takes no memory. Not locked.
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
      if (free_.capacity() <= slot)
        free_.reserve(2 * slot + 8);  // so that taking one out never needs memory
      slots_.emplace_back();
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
    if (slots_[slot].generation != lastGeneration)
      free_.push_back(slot);
    ++slots_[slot].generation;
    return true;
  }

private:
  static constexpr unsigned slotBits = 16;
  static constexpr uptr slotMask = 0xFFFF;
  static constexpr uptr lastGeneration = (~uptr{0} >> 1) >> slotBits;  // handles stay positive numbers
  struct Slot {
    T value{};
    uptr generation = 1;
    bool used = false;
  };
  std::deque<Slot> slots_;
  std::vector<std::size_t> free_;
};

}  // namespace plat::portable
