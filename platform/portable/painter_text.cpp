#include "platform/portable/painter.h"

namespace plat::portable {

int MemPainter::drawText(std::string_view, Rect&, unsigned) { return 0; }
Size MemPainter::textExtent(std::string_view) { return {}; }

}  // namespace plat::portable
