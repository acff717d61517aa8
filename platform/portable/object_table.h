// Objects behind handles. A handle is a place in the table and the number of times the place was used before, so one of
// an object that is gone is recognised.
#pragma once

#include "platform/types.h"

#include <utility>
#include <vector>

namespace plat::portable {

template <class Handle, class Object> class ObjectTable {
public:
  Handle add(Ptr<Object> object)
  {
    std::size_t place = 0;
    while (place < entries_.size() && entries_[place].object)
      ++place;
    if (place == entries_.size())
      entries_.emplace_back();
    entries_[place].object = std::move(object);
    return handle(place);
  }

  Object* find(Handle h) const
  {
    std::size_t const place = placeOf(h);
    return place < entries_.size() && handle(place) == h ? entries_[place].object.get() : nullptr;
  }

  Ptr<Object> take(Handle h)
  {
    if (!find(h))
      return nullptr;
    Entry& entry = entries_[placeOf(h)];
    ++entry.uses;
    return std::move(entry.object);
  }

private:
  static constexpr unsigned placeBits = 16;

  struct Entry {
    Ptr<Object> object;
    uptr uses = 0;
  };

  // Both directions go through the numeric value; the pointer is never followed.
  Handle handle(std::size_t place) const
  {
    return reinterpret_cast<Handle>((entries_[place].uses << placeBits) | (place + 1));
  }
  static std::size_t placeOf(Handle h)
  {
    return (reinterpret_cast<uptr>(h) & ((uptr(1) << placeBits) - 1)) - 1;  // null gives a place beyond every table
  }

  std::vector<Entry> entries_;
};

}  // namespace plat::portable
