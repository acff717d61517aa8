// Flood fill of the painter over memory: 4-connected, inside what the clip and the window leave.
#include "platform/portable/raster/painter.h"
#include "platform/portable/raster/pel_row.h"

#include <algorithm>

namespace plat::portable {

namespace {

// Rows of a box; a pel that is blocked is outside, done, or of the wrong colour.
template <class Pel> class Flood {
public:
  Flood(PelBlock const& block, Rect const& box, std::vector<u8>& blocked, u32 wanted, bool surface)
      : block_(block), box_(box), blocked_(blocked), wanted_(wanted), surface_(surface)
  {}

  // Paints all that hangs together with the point; the rectangle around it.
  Rect run(Point start, Pel pel)
  {
    Rect painted{};
    if (!open(start.x, start.y))
      return painted;
    seed(start.x, start.y);
    Point seed;
    while (next(seed)) {
      if (!open(seed.x, seed.y))
        continue;
      i32 x0 = seed.x, x1 = seed.x + 1;
      while (x0 > box_.left && open(x0 - 1, seed.y))
        --x0;
      while (x1 < box_.right && open(x1, seed.y))
        ++x1;
      std::fill_n(&mark(x0, seed.y), x1 - x0, u8{1});
      fillRow(row(seed.y) + x0, static_cast<std::size_t>(x1 - x0), pel);
      Rect const run{x0, seed.y, x1, seed.y + 1};
      painted = painted.empty() ? run
                                : Rect{std::min(painted.left, x0), std::min(painted.top, seed.y),
                                       std::max(painted.right, x1), std::max(painted.bottom, seed.y + 1)};
      if (seed.y > box_.top)
        seedRow(x0, x1, seed.y - 1);
      if (seed.y + 1 < box_.bottom)
        seedRow(x0, x1, seed.y + 1);
    }
    return painted;
  }

private:
  // One seed for each run of open pels.
  void seedRow(i32 x0, i32 x1, i32 y)
  {
    bool before = false;
    for (i32 x = x0; x < x1; ++x) {
      bool const now = open(x, y);
      if (now && !before)
        seed(x, y);
      before = now;
    }
  }
  // A seed for which there is no memory is found again by its mark.
  void seed(i32 x, i32 y) noexcept
  {
    try {
      seeds_.push_back({x, y});
    } catch (...) {
      mark(x, y) = waiting;
      anyWaiting_ = true;
    }
  }
  bool next(Point& seed)
  {
    if (!seeds_.empty()) {
      seed = seeds_.back();
      seeds_.pop_back();
      return true;
    }
    if (!anyWaiting_)
      return false;
    auto const found = std::find(blocked_.begin(), blocked_.end(), waiting);
    if (found == blocked_.end())
      return anyWaiting_ = false;
    *found = 0;
    auto const at = static_cast<std::size_t>(found - blocked_.begin()), width = static_cast<std::size_t>(box_.width());
    seed = {box_.left + static_cast<i32>(at % width), box_.top + static_cast<i32>(at / width)};
    return true;
  }
  Pel* row(i32 y) const { return reinterpret_cast<Pel*>(pelAddress(block_, 0, y)); }
  u8& mark(i32 x, i32 y) const
  {
    return blocked_[static_cast<std::size_t>(y - box_.top) * static_cast<std::size_t>(box_.width()) +
                    static_cast<std::size_t>(x - box_.left)];
  }
  bool open(i32 x, i32 y) const { return mark(x, y) % waiting == 0 && (pelValue(row(y)[x]) == wanted_) == surface_; }

  PelBlock const& block_;
  Rect const box_;
  std::vector<u8>& blocked_;
  u32 const wanted_;
  bool const surface_;
  static constexpr u8 waiting = 2;  // a mark; 1 is outside or done
  std::vector<Point> seeds_;
  bool anyWaiting_ = false;
};

}  // namespace

void MemPainter::floodFillNow(Point at, COLORREF color, bool surface)
{
  if (!brushOn_)
    return;
  Point const start = device(at);
  Rect painted{};
  paintAll([&](PelBlock const& block, Point shift, std::span<Rect const> rects) {
    Rect box{};
    for (Rect const& rect : rects)
      box = unionOf(box, rect);
    Point const seed{start.x + shift.x, start.y + shift.y};
    if (box.empty() || seed.x < box.left || seed.x >= box.right || seed.y < box.top || seed.y >= box.bottom)
      return;
    std::size_t const width = static_cast<std::size_t>(box.width());
    blocked_.assign(width * static_cast<std::size_t>(box.height()), rects.size() == 1 ? u8{0} : u8{1});
    if (rects.size() > 1)
      for (Rect const& rect : rects)
        for (i32 y = rect.top; y < rect.bottom && !rect.empty(); ++y)
          std::fill_n(blocked_.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(y - box.top) * width) +
                          (rect.left - box.left),
                      rect.width(), u8{0});
    u32 const wanted = pelValueOf(color, block.depth), fill = pelValueOf(brush_, block.depth);
    withPel(block.depth, [&](auto sample) {
      using Pel = decltype(sample);
      painted = Flood<Pel>(block, box, blocked_, wanted, surface).run(seed, pelFrom<Pel>(fill));
    });
    painted = {painted.left - shift.x, painted.top - shift.y, painted.right - shift.x, painted.bottom - shift.y};
  });
  touch(painted);
}

}  // namespace plat::portable
