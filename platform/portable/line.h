// Lines one pel wide: start painted, end not; a tie goes to the smaller minor coordinate. A line is cut to the clip
// before it is stepped, and the cut changes no pel.
#pragma once

#include "platform/portable/blit.h"
#include "platform/portable/pel_row.h"

namespace plat::portable {

// The pels of a line that the clip leaves.
struct LineCut {
  std::int64_t skipped = 0;  // pels of the line before the first that is left
  i32 count = 0;
  Point first;
  bool xMajor = true;
  i32 majorStep = 1, minorStep = 1;  // +1 or -1
  // After each pel the error grows; at 0 and above it takes the minor step and falls back.
  std::int64_t error = 0, grow = 0, fall = 0;
};

// Coordinates at most 2^30. False when nothing is left.
bool cutLine(Point from, Point to, Rect const& clip, LineCut&);

inline std::int64_t lineLength(Point a, Point b)
{
  std::int64_t const dx = std::int64_t{b.x} - a.x, dy = std::int64_t{b.y} - a.y;
  return std::max(dx < 0 ? -dx : dx, dy < 0 ? -dy : dy);
}

// Walks over the pels of a cut line.
template <class Pel> class LineWalker {
public:
  LineWalker(PelBlock const& block, LineCut const& cut)
      : at_(pelAddress(block, cut.first.x, cut.first.y)), error_(cut.error), grow_(cut.grow), fall_(cut.fall)
  {
    std::ptrdiff_t const x = sizeof(Pel), y = block.pitch;
    major_ = (cut.xMajor ? x : y) * cut.majorStep;
    both_ = major_ + (cut.xMajor ? y : x) * cut.minorStep;
  }

  void plot(i32 count, Pel pel)
  {
    if (grow_ == 0)
      return straight(count, pel);
    u8* at = at_;
    std::int64_t error = error_, grow = grow_, turn = grow_ - fall_;
    std::ptrdiff_t const major = major_, both = both_;
    for (i32 i = 0; i < count; ++i) {
      *reinterpret_cast<Pel*>(at) = pel;
      std::int64_t const on = error + grow, off = error + turn;
      at += on >= 0 ? both : major;
      error = on >= 0 ? off : on;
    }
    at_ = at;
    error_ = error;
  }

  void skip(i32 count)
  {
    if (grow_ == 0) {
      at_ += major_ * count;
      return;
    }
    for (i32 i = 0; i < count; ++i) {
      std::int64_t const on = error_ + grow_;
      at_ += on >= 0 ? both_ : major_;
      error_ = on >= 0 ? on - fall_ : on;
    }
  }

private:
  void straight(i32 count, Pel pel)
  {
    if (major_ == static_cast<std::ptrdiff_t>(sizeof(Pel))) {
      fillRow(reinterpret_cast<Pel*>(at_), static_cast<std::size_t>(count), pel);
      at_ += major_ * count;
      return;
    }
    for (i32 i = 0; i < count; ++i, at_ += major_)
      *reinterpret_cast<Pel*>(at_) = pel;
  }

  u8* at_;  // may come to lie one step outside the block after the last pel, and is not read there
  std::int64_t error_, grow_, fall_;
  std::ptrdiff_t major_, both_;
};

// Runs of pels on and off, on first. Solid when empty.
struct DashPattern {
  u8 runs[6];
  u8 count;
  u8 total;
};
DashPattern const& cosmeticDashes(int style);

// A line by a pattern; phase counts the pels since the pattern began and goes on over the whole line.
template <class Pel>
void plotLine(PelBlock const& block, Rect const& clip, Point from, Point to, Pel pel, DashPattern const& dashes,
              std::int64_t& phase)
{
  LineCut cut;
  bool const visible = cutLine(from, to, clip, cut);
  std::int64_t const start = phase;
  phase += lineLength(from, to);
  if (!visible)
    return;
  LineWalker<Pel> walker(block, cut);
  if (dashes.count == 0)
    return walker.plot(cut.count, pel);
  i32 at = static_cast<i32>((start + cut.skipped) % dashes.total);
  unsigned run = 0;
  while (at >= dashes.runs[run])
    at -= dashes.runs[run++];
  i32 left = cut.count;
  while (left > 0) {
    i32 const length = std::min<i32>(dashes.runs[run] - at, left);
    if (run % 2 == 0)
      walker.plot(length, pel);
    else
      walker.skip(length);
    left -= length;
    at = 0;
    run = (run + 1) % dashes.count;
  }
}

}  // namespace plat::portable
