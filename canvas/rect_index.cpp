#include "canvas/rect_index.h"

#include <algorithm>
#include <new>

namespace {

constexpr std::size_t kFirstBuckets = 64;

}  // namespace

cc_RectIndex::~cc_RectIndex()
{
  for (std::uint64_t i = 0; i <= mask_; ++i)
    for (Entry* e = head_(static_cast<std::size_t>(i)); e;) {
      Entry* const next = e->after;
      e->index = nullptr;
      e->before = e->after = nullptr;
      e = next;
    }
}

void cc_RectIndex::put(Entry& e, ccUIRect const& r) noexcept
{
  if (e.index)
    e.index->remove(e);
  e.rect = r;
  if (r.isNull())
    return;
  std::int64_t const side = std::max(r.width(), r.height());
  int level = kLowest;
  while (level < kLevels - 1 && side > std::int64_t{1} << level)
    ++level;
  e.level = level;
  e.x = static_cast<std::int32_t>(std::int64_t{r.left()} >> level);
  e.y = static_cast<std::int32_t>(std::int64_t{r.top()} >> level);
  if (size_ >= (buckets_ ? mask_ + 1 : 1))
    grow_();
  e.index = this;
  ++size_;
  ++onLevel_[static_cast<std::size_t>(level)];
  link_(e);
}

void cc_RectIndex::remove(Entry& e) noexcept
{
  if (e.index != this)
    return;
  (e.before ? e.before->after : head_(bucket_(e.level, e.x, e.y))) = e.after;
  if (e.after)
    e.after->before = e.before;
  e.before = e.after = nullptr;
  e.index = nullptr;
  --size_;
  --onLevel_[static_cast<std::size_t>(e.level)];
}

void cc_RectIndex::link_(Entry& e) noexcept
{
  Entry*& head = head_(bucket_(e.level, e.x, e.y));
  e.before = nullptr;
  e.after = head;
  if (head)
    head->before = &e;
  head = &e;
}

void cc_RectIndex::grow_() noexcept
{
  std::size_t const former = buckets_ ? static_cast<std::size_t>(mask_) + 1 : 1;
  std::size_t const count = std::max(kFirstBuckets, former * 2);
  std::unique_ptr<Entry*[]> wider(new (std::nothrow) Entry*[count]());
  if (!wider)
    return;
  std::unique_ptr<Entry*[]> const narrow = std::move(buckets_);
  Entry* const only = only_;
  buckets_ = std::move(wider);
  only_ = nullptr;
  mask_ = count - 1;
  for (std::size_t i = 0; i < former; ++i)
    for (Entry* e = narrow ? narrow[i] : only; e;) {
      Entry* const next = e->after;
      link_(*e);
      e = next;
    }
}
