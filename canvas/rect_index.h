// Rectangles found by place: which of many hold a pel, or meet another rectangle, at a cost that follows what lies near and
// not how many there are. Entries live in their owners. Nothing here throws: where memory fails, finding gets slower only.
//
// A rectangle lies on the level of its longer side, rounded up to a power of two, in the cell of its upper left corner, so
// it reaches into the next cell at most.
#pragma once

#include "canvas/rect.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

class cc_RectIndex {
public:
  struct Entry {
    Entry() = default;
    Entry(Entry const&) = delete;
    Entry& operator=(Entry const&) = delete;

    ccUIRect rect;
    void* owner = nullptr;
    cc_RectIndex* index = nullptr;  // null while it is in none
    Entry* before = nullptr;
    Entry* after = nullptr;
    std::int32_t x = 0, y = 0, level = 0;  // its cell
  };

  cc_RectIndex() = default;
  cc_RectIndex(cc_RectIndex const&) = delete;
  cc_RectIndex& operator=(cc_RectIndex const&) = delete;
  ~cc_RectIndex();  // its entries are in no index then

  void put(Entry&, ccUIRect const&) noexcept;  // also of an entry that is in; a null rectangle takes it out
  void remove(Entry&) noexcept;
  std::size_t size() const { return size_; }

  // In no particular order. The visitor changes nothing here.
  template <class Visit> void at(ccPair<long> const& p, Visit&& visit) const
  {
    meeting(ccUIRect(p, ccPair<long>(1, 1)), visit);
  }
  template <class Visit> void meeting(ccUIRect const& r, Visit&& visit) const;

private:
  static constexpr int kLowest = 3, kLevels = 33;  // smaller rectangles count as 8 pels

  std::size_t bucket_(std::int32_t level, std::int32_t x, std::int32_t y) const
  {
    std::uint64_t const mixed = (std::uint64_t{static_cast<std::uint32_t>(x)} << 32 | static_cast<std::uint32_t>(y)) *
                                    0x9E3779B97F4A7C15u + static_cast<std::uint64_t>(level) * 0xC2B2AE3D27D4EB4Fu;
    return static_cast<std::size_t>(mixed >> 32 & mask_);
  }
  Entry*& head_(std::size_t bucket) { return buckets_ ? buckets_[bucket] : only_; }
  Entry* head_(std::size_t bucket) const { return buckets_ ? buckets_[bucket] : only_; }
  void link_(Entry&) noexcept;
  void grow_() noexcept;

  std::unique_ptr<Entry*[]> buckets_;
  Entry* only_ = nullptr;  // the one bucket there is without memory
  std::uint64_t mask_ = 0;
  std::size_t size_ = 0;
  std::array<std::size_t, kLevels> onLevel_{};
};

template <class Visit> void cc_RectIndex::meeting(ccUIRect const& r, Visit&& visit) const
{
  if (r.isNull() || size_ == 0)
    return;
  std::int64_t const left = r.left(), top = r.top(), right = r.right() - 1, bottom = r.bottom() - 1;
  double cells = 0;
  for (int level = kLowest; level < kLevels; ++level)
    if (onLevel_[static_cast<std::size_t>(level)] > 0)
      cells += static_cast<double>((right >> level) - (left >> level) + 2) *
               static_cast<double>((bottom >> level) - (top >> level) + 2);
  if (cells > static_cast<double>(size_)) {
    for (std::uint64_t i = 0; i <= mask_; ++i)
      for (Entry* e = head_(static_cast<std::size_t>(i)); e; e = e->after)
        if (!e->rect.nullIntersection(r))
          visit(*e);
    return;
  }
  for (int level = kLowest; level < kLevels; ++level) {
    if (onLevel_[static_cast<std::size_t>(level)] == 0)
      continue;
    for (std::int64_t y = (top >> level) - 1; y <= bottom >> level; ++y)
      for (std::int64_t x = (left >> level) - 1; x <= right >> level; ++x) {
        auto const cx = static_cast<std::int32_t>(x), cy = static_cast<std::int32_t>(y);
        for (Entry* e = head_(bucket_(level, cx, cy)); e; e = e->after)
          if (e->level == level && e->x == cx && e->y == cy && !e->rect.nullIntersection(r))
            visit(*e);
      }
  }
}
