#include "canvas/region.h"

#include <algorithm>

void cc_RectList::assign(ccUIRect const& r)
{
  rects_.clear();
  if (!r.isNull())
    rects_.push_back(r);
}

void cc_RectList::subtract(ccUIRect const& hole)
{
  // Memory comes first, so that what fails leaves the list whole. Each cut adds a piece for each of four sides at most.
  std::size_t const former = rects_.size();
  auto const cuts = static_cast<std::size_t>(
      std::count_if(rects_.begin(), rects_.end(), [&](ccUIRect const& r) { return !(r & hole).isNull(); }));
  if (rects_.capacity() < former + 4 * cuts)
    rects_.reserve(std::max(former + 4 * cuts, 2 * rects_.capacity()));
  std::size_t kept = 0;
  for (std::size_t i = 0; i < former; ++i) {
    ccUIRect const r = rects_[i];
    ccUIRect const cut = r & hole;
    if (cut.isNull()) {
      rects_[kept++] = r;
      continue;
    }
    // Full-width strips above and below, so that the pieces lie along rows of pels.
    ccUIRect const rest[] = {ccUIRect::fromEdges(r.left(), r.top(), r.right(), cut.top()),
                             ccUIRect::fromEdges(r.left(), cut.top(), cut.left(), cut.bottom()),
                             ccUIRect::fromEdges(cut.right(), cut.top(), r.right(), cut.bottom()),
                             ccUIRect::fromEdges(r.left(), cut.bottom(), r.right(), r.bottom())};
    for (ccUIRect const& piece : rest)
      if (!piece.isNull())
        rects_.push_back(piece);
  }
  rects_.erase(rects_.begin() + static_cast<std::ptrdiff_t>(kept),
               rects_.begin() + static_cast<std::ptrdiff_t>(former));
}

bool cc_RectList::nullIntersection(ccUIRect const& r) const
{
  return std::all_of(rects_.begin(), rects_.end(), [&](ccUIRect const& own) { return own.nullIntersection(r); });
}
