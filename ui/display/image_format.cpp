#include "ui/display/image_format.h"

ceImageFormat cfConvertDisplayFormat2ImageFormat(ccDisplay::DisplayFormat format)
{
  switch (format) {
  case ccDisplay::format8:
    return ceImageFormatGrey8;
  case ccDisplay::format16:
    return ceImageFormatRGB16;
  case ccDisplay::format32:
    return ceImageFormatRGB32;
  default:
    return ceImageFormatNone;
  }
}
