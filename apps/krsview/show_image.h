// Shows an image file's pels on a display as its depth wants them.
#pragma once

#include "apps/common/image_file.h"
#include "foundation/xform.h"

class ccDisplay;

// RGB goes up as it is at depth 32, as 16-bit colour at depth 16, as grey elsewhere. 16-bit grey goes through the display's
// window map; at depth 8 it is converted to 8 bits by the same rule. The display keeps a view of the pels.
void cfShowImage(ccDisplay&, ccImageFile const&, ccXform<2> const& clientFromImage = ccXform<2>::I);
