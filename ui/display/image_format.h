// How the depth of a display relates to image formats.
#pragma once

#include "ui/display/display.h"

// 8 bits: grey 8; 16: RGB 16; 32: RGB 32; every other format: none.
ceImageFormat cfConvertDisplayFormat2ImageFormat(ccDisplay::DisplayFormat);
