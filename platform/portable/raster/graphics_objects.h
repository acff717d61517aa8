// Palettes and fonts of the portable machine.
#pragma once

#include "platform/objects.h"

namespace plat::portable {

GraphicsObjects& graphicsObjects();

// What a font was made of; false for a dead handle.
bool fontOf(HFONT, FontDesc&);

}  // namespace plat::portable
