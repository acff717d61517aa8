// Device contexts that paint into the visible part of a window.
#pragma once

#include "platform/types.h"

namespace plat::portable {

HDC openWindowDC(HWND);
void closeWindowDC(HDC);

}  // namespace plat::portable
