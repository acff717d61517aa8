// Rows of pels onto a surface: the innermost loops of drawing images. Each is written once over source pel, surface pel and
// look-up; the kernel is chosen once per call. These plain loops are the reference that faster ones are compared with.
#pragma once

#include <cstdint>
#include <cstring>

// to[i] = table[from[i]].
template <class To, class From> void mapRow(To* to, From const* from, long count, To const* table)
{
  for (long i = 0; i < count; ++i)
    to[i] = table[from[i]];
}

// Look-ups. at() is the surface pel of a source pel; seen() is the value that a transparent pel's key is compared with.

template <class T> struct cs_CopyLookup {
  using To = T;
  To at(T v) const { return v; }
  T seen(T v) const { return v; }
};

template <class From, class ToPel> struct cs_TableLookup {
  using To = ToPel;
  To const* table;
  To at(From v) const { return table[v]; }
  From seen(From v) const { return v; }
};

// For 16-bit pels and a table shorter than their range: higher pels take the last colour.
template <class From, class ToPel> struct cs_BoundedLookup {
  using To = ToPel;
  To const* table;
  From last;
  To at(From v) const { return table[v < last ? v : last]; }
  From seen(From v) const { return v; }
};

// Raw pels go through the index map first, and the key is compared after it. `mapped` has 256 entries.
template <class ToPel> struct cs_IndexedLookup {
  using To = ToPel;
  To const* mapped;
  unsigned char const* indexes;
  To at(unsigned char v) const { return mapped[v]; }
  unsigned char seen(unsigned char v) const { return indexes[v]; }
};

template <bool Keyed, class From, class Lookup>
void drawRow(typename Lookup::To* to, From const* from, long count, Lookup const& look, From key)
{
  for (long i = 0; i < count; ++i) {
    From const v = from[i];
    if (!Keyed || look.seen(v) != key)
      to[i] = look.at(v);
  }
}

// Scaled: target pel i is source pel columns[i].
template <bool Keyed, class From, class Lookup>
void drawScaledRow(typename Lookup::To* to, From const* from, std::int32_t const* columns, long count,
                   Lookup const& look, From key)
{
  for (long i = 0; i < count; ++i) {
    From const v = from[columns[i]];
    if (!Keyed || look.seen(v) != key)
      to[i] = look.at(v);
  }
}

// An unkeyed row without change of value is a block of memory, and one by a plain table is mapRow.
template <class T> void drawPlainRow(T* to, T const* from, long count, cs_CopyLookup<T> const&)
{
  std::memcpy(to, from, static_cast<std::size_t>(count) * sizeof(T));
}
template <class From, class To>
void drawPlainRow(To* to, From const* from, long count, cs_TableLookup<From, To> const& look)
{
  mapRow(to, from, count, look.table);
}
template <class To>
void drawPlainRow(To* to, unsigned char const* from, long count, cs_IndexedLookup<To> const& look)
{
  mapRow(to, from, count, look.mapped);
}
template <class From, class To>
void drawPlainRow(To* to, From const* from, long count, cs_BoundedLookup<From, To> const& look)
{
  drawRow<false>(to, from, count, look, From());
}
