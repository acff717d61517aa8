// Lines one pel wide: start painted, end not; a tie goes to the smaller minor coordinate. A line is cut to the clip
// before it is stepped, and the cut changes no pel.
#pragma once

#include "platform/portable/raster/blit.h"
#include "platform/portable/raster/pel_row.h"
#include "platform/portable/raster/region.h"
#include "platform/portable/raster/row_kernels.h"

#include <algorithm>

namespace plat::portable {

// The pels of a line that the clip leaves. Of n steps along the major axis and m along the minor one, step i lies at the
// minor offset floor((2 i m + n - b) / 2 n), b being 1 upward and 0 downward: so half a step goes to the smaller coordinate.
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

// Walks over the pels of a cut line of any length.
template <class Pel> class LongLineWalker {
public:
  LongLineWalker(PelBlock const& block, LineCut const& cut)
      : at_(pelAddress(block, cut.first.x, cut.first.y)), error_(cut.error), grow_(cut.grow), fall_(cut.fall)
  {
    std::ptrdiff_t const x = sizeof(Pel), y = block.pitch;
    major_ = (cut.xMajor ? x : y) * cut.majorStep;
    both_ = major_ + (cut.xMajor ? y : x) * cut.minorStep;
  }

  void plot(i32 count, Pel pel)
  {
    for (i32 i = 0; i < count; ++i) {
      *reinterpret_cast<Pel*>(at_) = pel;
      step();
    }
  }
  void skip(i32 count)
  {
    for (i32 i = 0; i < count; ++i)
      step();
  }

private:
  void step()
  {
    std::int64_t const on = error_ + grow_;
    at_ += on >= 0 ? both_ : major_;
    error_ = on >= 0 ? on - fall_ : on;
  }

  u8* at_;  // may come to lie one step outside the block after the last pel, and is not read there
  std::int64_t error_, grow_, fall_;
  std::ptrdiff_t major_, both_;
};

// Walks over the pels of a line of at most `longest` steps without a decision at each: the minor offset is a number with 32
// binary places. It runs ahead of the true one by less than (steps done) / 2^32, and begins behind by more where a tie goes
// down; both stay below the 1 / 2 n that offsets differ by, so the whole part is exact.
template <class Pel> class LineWalker {
public:
  static constexpr i32 longest = 46340;  // n (n + 1) <= 2^31

  // An axis-parallel line has m = 0; n is above 0.
  LineWalker(u8* start, i32 n, i32 m, bool minorUp, std::ptrdiff_t major, std::ptrdiff_t minor)
      : at_(start), offset_(minorUp ? half - static_cast<u32>(n) - 1 : half),
        grow_(((std::uint64_t{static_cast<u32>(m)} << 32) + static_cast<u32>(n) - 1) / static_cast<u32>(n)), major_(major),
        minor_(minor)
  {}

  void plot(i32 count, Pel pel)
  {
    u8* at = at_;
    std::uint64_t offset = offset_;
    std::uint64_t const grow = grow_;
    std::ptrdiff_t const major = major_, minor = minor_;
    for (i32 i = 0; i < count; ++i) {
      *reinterpret_cast<Pel*>(at + static_cast<std::ptrdiff_t>(offset >> 32) * minor) = pel;
      at += major;
      offset += grow;
    }
    at_ = at;
    offset_ = offset;
  }
  void skip(i32 count)
  {
    at_ += major_ * count;
    offset_ += grow_ * static_cast<u32>(count);
  }

private:
  static constexpr std::uint64_t half = std::uint64_t{1} << 31;
  u8* at_;  // at minor offset 0, so it may lie outside the block
  std::uint64_t offset_, grow_;
  std::ptrdiff_t major_, minor_;
};

// Runs of pels on and off, on first. Solid when empty.
struct DashPattern {
  u8 runs[6];
  u8 count;
  u8 total;      // divides 24
  u32 on;        // 24 pels from the pattern's begin, the first in bit 0
};
DashPattern const& cosmeticDashes(int style);

// count pels from an address by a pattern at a phase below its length; step is the distance from pel to pel in bytes.
template <class Pel>
void plotDashes(u8* at, i32 count, std::ptrdiff_t step, Pel pel, DashPattern const& dashes, i32 phase)
{
  if (step == static_cast<std::ptrdiff_t>(sizeof(Pel)) || step == -static_cast<std::ptrdiff_t>(sizeof(Pel))) {
    u32 bits = dashes.on;
    if (step < 0) {
      // From its other end the line shows the pattern mirrored.
      u32 mirrored = 0;
      for (int i = 0; i < 24; ++i)
        mirrored |= (bits >> i & 1u) << (23 - i);
      bits = mirrored;
      phase = 23 - (phase + count - 1) % 24;
      at += step * (count - 1);
    }
    u32 const turned = (bits >> phase | bits << (24 - phase)) & 0xFFFFFFu;
    return maskedRow(reinterpret_cast<Pel*>(at), static_cast<std::size_t>(count), turned, pel);
  }
  if (phase == 0)
    for (; count >= dashes.total; count -= dashes.total)
      for (unsigned run = 0; run < dashes.count; run += 2) {
        // All runs are multiples of three.
        for (i32 left = dashes.runs[run]; left > 0; left -= 3, at += 3 * step) {
          *reinterpret_cast<Pel*>(at) = pel;
          *reinterpret_cast<Pel*>(at + step) = pel;
          *reinterpret_cast<Pel*>(at + 2 * step) = pel;
        }
        at += step * dashes.runs[run + 1];
      }
  unsigned run = 0;
  while (phase >= dashes.runs[run])
    phase -= dashes.runs[run++];
  i32 length = dashes.runs[run] - phase;
  while (count > 0) {
    length = std::min(length, count);
    count -= length;
    if (run % 2 == 0) {
      for (; length > 0; --length, at += step)
        *reinterpret_cast<Pel*>(at) = pel;
    } else {
      at += step * length;
    }
    run = run + 1 == dashes.count ? 0 : run + 1;
    length = dashes.runs[run];
  }
}

// What is left of a line, by a walker that stands at its first pel, whose place in the pattern is phase.
template <class Pel, class Walker>
void walkDashes(Walker walker, i32 left, Pel pel, DashPattern const& dashes, i32 phase)
{
  unsigned run = 0;
  while (phase >= dashes.runs[run])
    phase -= dashes.runs[run++];
  while (left > 0) {
    i32 const length = std::min<i32>(dashes.runs[run] - phase, left);
    if (run % 2 == 0)
      walker.plot(length, pel);
    else
      walker.skip(length);
    left -= length;
    phase = 0;
    run = run + 1 == dashes.count ? 0 : run + 1;
  }
}

// A line that the clip cuts, or an end of which lies outside.
template <class Pel>
__attribute__((noinline)) void plotCutLine(PelBlock const& block, Rect const& clip, Point from, Point to, Pel pel, DashPattern const& dashes,
                 std::int64_t start)
{
  LineCut cut;
  if (!cutLine(from, to, clip, cut))
    return;
  i32 const phase = dashes.count == 0 ? 0 : static_cast<i32>((start + cut.skipped) % dashes.total);
  if (cut.grow == 0) {
    u8* const at = pelAddress(block, cut.first.x, cut.first.y);
    std::ptrdiff_t const step = (cut.xMajor ? std::ptrdiff_t{sizeof(Pel)} : std::ptrdiff_t{block.pitch}) * cut.majorStep;
    if (dashes.count != 0)
      return plotDashes(at, cut.count, step, pel, dashes, phase);
    if (cut.xMajor)
      return fillRow(reinterpret_cast<Pel*>(step < 0 ? at + step * (cut.count - 1) : at),
                     static_cast<std::size_t>(cut.count), pel);
  }
  LongLineWalker<Pel> walker(block, cut);
  if (dashes.count == 0)
    walker.plot(cut.count, pel);
  else
    walkDashes<Pel>(walker, cut.count, pel, dashes, phase);
}

// A solid line with both ends inside a block of at most LineWalker::longest pels either way.
template <class Pel> inline void plotInside(PelBlock const& block, Point from, Point to, Pel pel)
{
  constexpr std::ptrdiff_t size = sizeof(Pel);
  i32 const dx = to.x - from.x, dy = to.y - from.y, adx = dx < 0 ? -dx : dx, ady = dy < 0 ? -dy : dy;
  std::ptrdiff_t const pitch = block.pitch;
  u8* const at = pelAddress(block, from.x, from.y, sizeof(Pel));
  if (adx >= ady) {
    if (adx <= 1) {
      if (adx == 1)
        *reinterpret_cast<Pel*>(at) = pel;
      return;
    }
    if (ady == 0)
      return fillRow(reinterpret_cast<Pel*>(dx < 0 ? at - size * (adx - 1) : at), static_cast<std::size_t>(adx), pel);
    LineWalker<Pel>(at, adx, ady, dy >= 0, dx < 0 ? -size : size, dy < 0 ? -pitch : pitch).plot(adx, pel);
  } else {
    LineWalker<Pel>(at, ady, adx, dx >= 0, dy < 0 ? -pitch : pitch, dx < 0 ? -size : size).plot(ady, pel);
  }
}

// The same by a pattern.
template <class Pel>
inline void plotInside(PelBlock const& block, Point from, Point to, Pel pel, DashPattern const& dashes, std::int64_t& phase)
{
  i32 const dx = to.x - from.x, dy = to.y - from.y, adx = dx < 0 ? -dx : dx, ady = dy < 0 ? -dy : dy;
  u8* const at = pelAddress(block, from.x, from.y, sizeof(Pel));
  std::ptrdiff_t const stepX = dx < 0 ? -static_cast<std::ptrdiff_t>(sizeof(Pel)) : static_cast<std::ptrdiff_t>(sizeof(Pel));
  std::ptrdiff_t const stepY = dy < 0 ? -std::ptrdiff_t{block.pitch} : std::ptrdiff_t{block.pitch};
  bool const xMajor = adx >= ady;
  i32 const n = xMajor ? adx : ady, m = xMajor ? ady : adx;
  if (n == 0)
    return;
  i32 const place = phase == 0 ? 0 : static_cast<i32>(phase % dashes.total);
  phase += n;
  if (m == 0)
    plotDashes(at, n, xMajor ? stepX : stepY, pel, dashes, place);
  else
    walkDashes<Pel>(
        LineWalker<Pel>(at, n, m, (xMajor ? dy : dx) >= 0, xMajor ? stepX : stepY, xMajor ? stepY : stepX), n, pel, dashes,
        place);
}

// A line by a pattern; phase counts the pels since the pattern began and goes on over the whole line.
template <class Pel>
inline void plotLine(PelBlock const& block, Rect const& clip, Point from, Point to, Pel pel, DashPattern const& dashes,
                     std::int64_t& phase)
{
  if (!contains(clip, from) || !contains(clip, to) || block.width > LineWalker<Pel>::longest ||
      block.height > LineWalker<Pel>::longest) {
    std::int64_t const start = phase;
    phase += lineLength(from, to);
    return plotCutLine(block, clip, from, to, pel, dashes, start);
  }
  if (dashes.count == 0)
    plotInside(block, from, to, pel);
  else
    plotInside(block, from, to, pel, dashes, phase);
}

}  // namespace plat::portable
