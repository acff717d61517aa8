#include "canvas/format.h"

namespace {

long defaultFontId = -1;

}  // namespace

long ccUIFormat::gDefaultFontId()
{
  return defaultFontId;
}

void ccUIFormat::gDefaultFontId(long id)
{
  defaultFontId = id;
}

ccUIRect ccUIFormat::alignRect(ccUIRect const& r) const
{
  // A value outside the enumeration counts as topLeft.
  int const place = alignment_ < topLeft || alignment_ > bottomRight ? topLeft : alignment_;
  int const column = place % 3;
  int const row = place / 3;
  return r - ccPair<long>(column == 0 ? 0 : r.width() / (3 - column), row == 0 ? 0 : r.height() / (3 - row));
}
