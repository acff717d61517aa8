// A window core without painters: device contexts and graphics objects are not asked here.
#include "platform/paint.h"
#include "platform/window.h"

#include <cstdlib>

namespace plat {

Painter* painter(HDC) { return nullptr; }

namespace portable {

HDC openWindowDC(HWND) { return nullptr; }
void closeWindowDC(HDC) {}
GraphicsObjects& graphicsObjects()
{
  static char place;
  return reinterpret_cast<GraphicsObjects&>(place);
}

}  // namespace portable
}  // namespace plat
