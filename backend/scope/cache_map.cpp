#include "backend/scope/cache_map.h"

#include "foundation/exception_impl.h"

#include <new>

KRS_DEFINE_EXCEPTION_FAMILY(cc_CacheMap::Errors, ccExceptionWithString)
KRS_DEFINE_EXCEPTION(cc_CacheMap::InvalidColorMap, cc_CacheMap::Errors)

namespace {

constexpr std::size_t indexCount = 256;

// The conversion is handed over, as the two 16-bit formats share a pel type.
template <class Pel, class Convert>
void fillDirect(std::vector<Pel>& table, std::vector<ccRGB> const& colors, Convert&& make)
{
  table.resize(colors.size());
  for (std::size_t i = 0; i < colors.size(); ++i)
    table[i] = make(colors[i]);
}

template <class Pel, class Convert>
void fillDefault(std::vector<Pel>& table, std::vector<ccRGB> const& colors, Convert&& make)
{
  std::vector<unsigned char> const& indexes = cc_CacheMap::defaultIndexes();
  table.resize(indexCount);
  for (std::size_t i = 0; i < indexCount; ++i)
    table[i] = make(colors[indexes[i]]);
}

unsigned short pel15(ccRGB const& c) { return c.rgb15(); }
unsigned short pel16(ccRGB const& c) { return c.rgb16(); }
cc_CacheMap::tag_24 pel24(ccRGB const& c) { return {c.b, c.g, c.r}; }
std::uint32_t pel32(ccRGB const& c)
{
  return static_cast<std::uint32_t>(c.r) << 16 | static_cast<std::uint32_t>(c.g) << 8 | c.b;
}

template <class Pel, class Convert>
void rebuild(std::vector<Pel>& direct, std::vector<Pel>& byDefault, std::vector<ccRGB> const& colors, Convert&& make)
{
  if (!direct.empty())
    fillDirect(direct, colors, make);
  if (byDefault.size() == indexCount)
    fillDefault(byDefault, colors, make);
}

}  // namespace

std::vector<unsigned char> const& cc_CacheMap::defaultIndexes()
{
  static std::vector<unsigned char> const table = [] {
    std::vector<unsigned char> t(indexCount);
    for (std::size_t i = 0; i < indexCount; ++i)
      t[i] = static_cast<unsigned char>(i < 10 ? 10 : i > 240 ? 240 : i);
    return t;
  }();
  return table;
}

void cc_CacheMap::checkColors_(std::size_t count) const
{
  if (count != 256 && count != 1024 && count != 4096 && count != 65536)
    throw InvalidColorMap();
}

void cc_CacheMap::set(std::vector<unsigned char> const& indexes)
{
  if (indexes.size() != indexCount)
    throw InvalidColorMap();
  indexes_ = indexes;
}

void cc_CacheMap::set(std::vector<ccRGB> const& colors, bool resetIndexMap)
{
  checkColors_(colors.size());
  // What may fail comes before anything changes.
  std::vector<ccRGB> next(colors);
  std::vector<unsigned char> indexes(resetIndexMap ? defaultIndexes() : std::vector<unsigned char>());
  colors_.swap(next);
  if (resetIndexMap)
    indexes_.swap(indexes);
  try {
    rebuild(direct15_, default15_, colors_, pel15);
    rebuild(direct16_, default16_, colors_, pel16);
    rebuild(direct24_, default24_, colors_, pel24);
    rebuild(direct32_, default32_, colors_, pel32);
  } catch (std::bad_alloc const&) {
    // Tables are made anew when they are asked for.
    direct15_.clear(), default15_.clear();
    direct16_.clear(), default16_.clear();
    direct24_.clear(), default24_.clear();
    direct32_.clear(), default32_.clear();
  }
}

template <class Pel, class Convert>
Pel const* cc_CacheMap::table_(std::vector<Pel>& direct, std::vector<Pel>& byDefault, bool wantDirect, Convert&& make)
{
  checkColors_(colors_.size());
  if (wantDirect) {
    if (direct.size() != colors_.size())
      fillDirect(direct, colors_, make);
    return direct.data();
  }
  if (byDefault.size() != indexCount) {
    if (indexes_.empty())
      indexes_ = defaultIndexes();
    fillDefault(byDefault, colors_, make);
  }
  return byDefault.data();
}

unsigned short const* cc_CacheMap::to15(bool direct) { return table_(direct15_, default15_, direct, pel15); }
unsigned short const* cc_CacheMap::to16(bool direct) { return table_(direct16_, default16_, direct, pel16); }
cc_CacheMap::tag_24 const* cc_CacheMap::to24(bool direct) { return table_(direct24_, default24_, direct, pel24); }
std::uint32_t const* cc_CacheMap::to32(bool direct) { return table_(direct32_, default32_, direct, pel32); }
