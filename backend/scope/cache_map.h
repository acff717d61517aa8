// The colour map of a scope and, made on first use, one look-up table per surface format, so that a pel becomes a surface
// pel by a single array read.
#pragma once

#include "canvas/color.h"
#include "foundation/exception.h"

#include <cstdint>
#include <vector>

class cc_CacheMap {
public:
  class Errors : public ccExceptionWithString {
    KRS_EXCEPTION_FAMILY
  public:
    using ccExceptionWithString::ccExceptionWithString;
  };
  // A map that is missing or has a wrong number of entries.
  class InvalidColorMap : public Errors {
    KRS_EXCEPTION
  public:
    InvalidColorMap() : Errors("Invalid cache color map") {}
  };

  // A pel of 3 bytes as it lies on a surface.
  struct tag_24 {
    unsigned char b = 0, g = 0, r = 0;
    friend bool operator==(tag_24 const&, tag_24 const&) = default;
  };

  // The index map: raw pel value to map index, 256 entries. Throws InvalidColorMap for another size.
  void set(std::vector<unsigned char> const& indexes);
  // The colours: 256, 1024, 4096 or 65536, else InvalidColorMap. Rebuilds the tables that were asked for before.
  void set(std::vector<ccRGB> const& colors, bool resetIndexMap);
  std::vector<unsigned char> const& get() const { return indexes_.empty() ? defaultIndexes() : indexes_; }
  std::vector<ccRGB> const& getColorMap() const { return colors_; }

  // The table of a surface format. Direct tables have one entry per colour, default ones 256: entry i is the colour of the
  // default index map's entry i. Throw InvalidColorMap before a colour map was set. Valid until the next set().
  unsigned short const* to15(bool direct);
  unsigned short const* to16(bool direct);
  tag_24 const* to24(bool direct);
  std::uint32_t const* to32(bool direct);

  // Entries of the direct tables: how far a pel value may reach.
  std::size_t colorCount() const { return colors_.size(); }
  // 10 for 0 to 9, i for 10 to 240, then 240: keeps pels out of the system entries of a palette.
  static std::vector<unsigned char> const& defaultIndexes();

private:
  template <class Pel, class Convert>
  Pel const* table_(std::vector<Pel>& direct, std::vector<Pel>& byDefault, bool wantDirect, Convert&& make);
  void checkColors_(std::size_t count) const;

  std::vector<unsigned char> indexes_;  // empty until set
  std::vector<ccRGB> colors_;
  std::vector<unsigned short> direct15_, direct16_;
  std::vector<tag_24> direct24_;
  std::vector<std::uint32_t> direct32_;
  std::vector<unsigned short> default15_, default16_;
  std::vector<tag_24> default24_;
  std::vector<std::uint32_t> default32_;
};
