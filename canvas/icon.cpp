// Icons drawn as text: rows of characters, separated and enclosed by the map's first character. A digit is a pel of that
// entry of the colours, and is touched; "+" is see-through and touched; "." is see-through and not touched.
#include "canvas/color.h"
#include "canvas/rle_buffer.h"
#include "canvas/tablet.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr long kPointArm = 4;  // pels

unsigned char iconPel(char c, std::vector<unsigned char> const& colors)
{
  if (c < '0' || c > '9')
    return ccColor::passColor().index();
  if (colors.empty())
    return 0;
  std::size_t const digit = static_cast<std::size_t>(c - '0');
  return digit < colors.size() ? colors[digit] : colors.back();
}

std::vector<std::string> iconRows(char const* map)
{
  std::vector<std::string> rows;
  if (!map || !*map)
    return rows;
  char const separator = *map++;
  while (char const* const end = std::strchr(map, separator)) {
    rows.emplace_back(map, end);
    map = end + 1;
  }
  if (*map)
    rows.emplace_back(map);  // the last row lacks its end
  return rows;
}

}  // namespace

ccRLEBuffer ccUITablet::makeIcon(char const* map, std::vector<unsigned char> const& colors)
{
  std::vector<std::string> const rows = iconRows(map);
  std::size_t width = 0;
  for (std::string const& row : rows)
    width = std::max(width, row.size());
  std::vector<unsigned char> pels;
  pels.reserve(width * rows.size());
  for (std::string const& row : rows)
    for (std::size_t x = 0; x < width; ++x)
      pels.push_back(iconPel(x < row.size() ? row[x] : '.', colors));
  return ccRLEBuffer::fromPels(pels.data(), static_cast<long>(width), static_cast<long>(rows.size()),
                               static_cast<long>(width));
}

bool ccUITablet::iconTouched(char const* map, ccPair<long> const& offset, long stride)
{
  if (!map || stride < 2 || offset.x() < 0 || offset.y() < 0 || offset.x() >= stride - 1)
    return false;
  std::int64_t const length = static_cast<std::int64_t>(std::strlen(map));
  if (offset.y() > length / stride)
    return false;
  std::int64_t const at = 1 + static_cast<std::int64_t>(offset.y()) * stride + offset.x();
  return at < length && map[at] != map[0] && map[at] != '.';
}

bool ccUITablet::pointIconTouched(ccPair<long> const& offset)
{
  return offset.x() >= -kPointArm && offset.x() <= kPointArm && offset.y() >= -kPointArm && offset.y() <= kPointArm;
}
