#include "platform/portable/raster/blit.h"

#include "platform/portable/raster/pel_row.h"

#include <cstring>

namespace plat::portable {

namespace {

using i64 = std::int64_t;

// Steps through floor(d * source / target) without dividing.
class Stretch {
public:
  Stretch(i32 first, i32 source, i32 target)
      : target_(target), whole_(source / target), part_(source % target), index_(i64{first} * source / target),
        rest_(i64{first} * source % target)
  {}
  std::ptrdiff_t index() const { return static_cast<std::ptrdiff_t>(index_); }
  void next()
  {
    index_ += whole_;
    rest_ += part_;
    if (rest_ >= target_) {
      rest_ -= target_;
      ++index_;
    }
  }

private:
  i64 target_, whole_, part_, index_, rest_;
};

// Calls row(target row, source row, same source row as before) for each row of the cut, both at their left edges:
// the target's at the cut, the source's at the source rectangle if wide, else at the pel that meets the cut.
template <class Row> void eachRow(PelBlock const& to, PelBlock const& from, BlitMap const& map, Row&& row)
{
  bool const wide = map.source.width() != map.target.width();
  i32 const sourceX = wide ? map.source.left : map.source.left + map.cut.left - map.target.left;
  Stretch rows(map.cut.top - map.target.top, map.source.height(), map.target.height());
  std::ptrdiff_t before = -1;
  for (i32 y = map.cut.top; y < map.cut.bottom; ++y, rows.next()) {
    row(pelAddress(to, map.cut.left, y), pelAddress(from, sourceX, map.source.top + static_cast<i32>(rows.index())),
        rows.index() == before);
    before = rows.index();
  }
}

template <class Pel> void copyPlain(PelBlock const& to, PelBlock const& from, BlitMap const& map)
{
  std::size_t const bytes = static_cast<std::size_t>(map.cut.width()) * sizeof(Pel);
  if (to.pels == from.pels && map.target.top > map.source.top) {
    // Within one block and downward: from the last row up, so that no source row is overwritten before its turn.
    for (i32 y = map.cut.bottom; y-- > map.cut.top;)
      std::memmove(pelAddress(to, map.cut.left, y),
                   pelAddress(from, map.cut.left + map.source.left - map.target.left, y + map.source.top - map.target.top),
                   bytes);
    return;
  }
  eachRow(to, from, map, [bytes](u8* target, u8 const* source, bool) { std::memmove(target, source, bytes); });
}

template <class Pel> void copyKeyed(PelBlock const& to, PelBlock const& from, BlitMap const& map, BlitKey const& key)
{
  std::size_t const count = static_cast<std::size_t>(map.cut.width());
  eachRow(to, from, map, [&](u8* target, u8 const* source, bool) {
    Pel* const t = reinterpret_cast<Pel*>(target);
    Pel const* const s = reinterpret_cast<Pel const*>(source);
    if (key.low == key.high)
      keyedRow(t, s, count, key.low);
    else
      keyRangeRow(t, s, count, key.low, key.high);
  });
}

template <class Pel> void copyStretched(PelBlock const& to, PelBlock const& from, BlitMap const& map, BlitKey const* key)
{
  i32 const count = map.cut.width();
  u8 const* last = nullptr;
  eachRow(to, from, map, [&](u8* target, u8 const* source, bool again) {
    Pel* t = reinterpret_cast<Pel*>(target);
    Pel const* const s = reinterpret_cast<Pel const*>(source);
    if (again && !key && to.pels != from.pels) {
      std::memcpy(target, last, static_cast<std::size_t>(count) * sizeof(Pel));
      last = target;
      return;
    }
    last = target;
    Stretch columns(map.cut.left - map.target.left, map.source.width(), map.target.width());
    for (i32 i = 0; i < count; ++i, columns.next()) {
      Pel const pel = s[columns.index()];
      u32 const value = pelValue(pel);
      if (!key || value < key->low || value > key->high)
        t[i] = pel;
    }
  });
}

// One pel from format to format. From 8 bits by a table of target pels, to 8 bits by a search that remembers.
template <class From, class To> struct Converter {
  explicit Converter(PaletteView, NearestCache&) {}
  typename To::Pel operator()(typename From::Pel pel) const { return To::from(From::rgb(pel)); }
};
template <class To> struct Converter<PelFormat<8>, To> {
  Converter(PaletteView palette, NearestCache&)
  {
    for (std::size_t i = 0; i < 256; ++i)
      table[i] = To::from(rgbOf(palette[i]));
  }
  typename To::Pel operator()(u8 pel) const { return table[pel]; }
  typename To::Pel table[256];
};
template <class From> struct Converter<From, PelFormat<8>> {
  Converter(PaletteView, NearestCache& cache) : nearest(cache) {}
  u8 operator()(typename From::Pel pel) const { return nearest(From::rgb(pel)); }
  NearestCache& nearest;
};
template <> struct Converter<PelFormat<8>, PelFormat<8>> {
  Converter(PaletteView, NearestCache&) {}
  u8 operator()(u8 pel) const { return pel; }
};

template <bool Keyed, bool Wide, class From, class To>
void convertRows(PelBlock const& to, PelBlock const& from, BlitMap const& map, BlitKey const& key,
                 Converter<From, To> const& convert)
{
  using Source = typename From::Pel;
  using Target = typename To::Pel;
  i32 const count = map.cut.width();
  eachRow(to, from, map, [&](u8* target, u8 const* source, bool) {
    Target* const t = reinterpret_cast<Target*>(target);
    Source const* const s = reinterpret_cast<Source const*>(source);
    Stretch columns(map.cut.left - map.target.left, map.source.width(), map.target.width());
    for (i32 i = 0; i < count; ++i) {
      Source const pel = s[Wide ? columns.index() : i];
      if constexpr (Wide)
        columns.next();
      if constexpr (Keyed) {
        u32 const value = pelValue(pel);
        if (value >= key.low && value <= key.high)
          continue;
      }
      t[i] = convert(pel);
    }
  });
}

}  // namespace

void fillPels(PelBlock const& block, Rect const& r, u32 value)
{
  if (r.empty())
    return;
  std::size_t const count = static_cast<std::size_t>(r.width());
  withPel(block.depth, [&](auto sample) {
    using Pel = decltype(sample);
    Pel const pel = pelFrom<Pel>(value);
    for (i32 y = r.top; y < r.bottom; ++y) {
      u8* const row = pelAddress(block, r.left, y);
      if (sizeof(Pel) == 3 && y > r.top)
        std::memcpy(row, pelAddress(block, r.left, r.top), count * sizeof(Pel));
      else
        fillRow(reinterpret_cast<Pel*>(row), count, pel);
    }
  });
}

void copyPels(PelBlock const& to, PelBlock const& from, BlitMap const& map, BlitKey const* key)
{
  if (map.cut.empty())
    return;
  bool const same = map.source.width() == map.target.width() && map.source.height() == map.target.height();
  withPel(to.depth, [&](auto sample) {
    using Pel = decltype(sample);
    if (map.source.width() != map.target.width() || (!same && !key))
      copyStretched<Pel>(to, from, map, key);
    else if (key)
      copyKeyed<Pel>(to, from, map, *key);
    else
      copyPlain<Pel>(to, from, map);
  });
}

void convertPels(PelBlock const& to, PelBlock const& from, BlitMap const& map, BlitKey const* key,
                 PaletteView fromPalette, NearestCache& toPalette)
{
  if (map.cut.empty())
    return;
  bool const wide = map.source.width() != map.target.width();
  BlitKey const bounds = key ? *key : BlitKey{};
  withFormat(from.depth, [&](auto source) {
    withFormat(to.depth, [&](auto target) {
      Converter<decltype(source), decltype(target)> const convert(fromPalette, toPalette);
      if (key)
        wide ? convertRows<true, true>(to, from, map, bounds, convert)
             : convertRows<true, false>(to, from, map, bounds, convert);
      else
        wide ? convertRows<false, true>(to, from, map, bounds, convert)
             : convertRows<false, false>(to, from, map, bounds, convert);
    });
  });
}

}  // namespace plat::portable
