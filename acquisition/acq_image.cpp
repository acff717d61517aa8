#include "acquisition/acq_image.h"

#include <algorithm>

namespace {

// A view of its own, so that its holder may set offset and transform without touching the image.
template <class T> ccPelBuffer<T> cf_freshView(ccPelBuffer<T> const& pels)
{
  ccPelBuffer<T> view(pels);
  if (view.isBound()) {
    view.offset(ccPair<long>(0, 0));
    view.clientFromImageXformBase(cc2XformLinear::identity());
  }
  return view;
}

template <class From, class To, class Convert>
void cf_convert(ccPelBuffer<From> const& from, ccPelBuffer<To>& to, Convert convert)
{
  if (to.isBound() || !from.isBound())
    return;
  to = ccPelBuffer<To>(from.width(), from.height());
  ccPair<long> const corner = from.offset();
  for (long y = 0; y < from.height(); ++y) {
    From const* const source = from.pelAddress(corner.x(), corner.y() + y);
    std::transform(source, source + from.width(), to.pelAddress(0, y), convert);
  }
}

template <class Pel> unsigned char cf_grey(Pel p)
{
  return static_cast<unsigned char>((p.red() + 2 * p.green() + p.blue()) >> 2);
}

}  // namespace

ccAcqImage::ccAcqImage(ceImageFormat format, long tag, unsigned long frame) : format_(format), tag_(tag), frame_(frame)
{
  if (format == ceImageFormatGrey16)
    bits_ = 16;
}

ccAcqImage::ccAcqImage(ccPelBuffer<unsigned char> const& b, long tag, unsigned long frame)
    : format_(ceImageFormatGrey8), tag_(tag), frame_(frame), grey8_(b)
{
}

ccAcqImage::ccAcqImage(ccPelBuffer<unsigned short> const& b, long bits, long tag, unsigned long frame)
    : format_(ceImageFormatGrey16), bits_(bits >= 9 && bits <= 16 ? bits : 16), tag_(tag), frame_(frame), grey16_(b)
{
}

ccAcqImage::ccAcqImage(ccPelBuffer<ccPackedRGB16Pel> const& b, long tag, unsigned long frame)
    : format_(ceImageFormatRGB16), tag_(tag), frame_(frame), rgb16_(b)
{
}

ccAcqImage::ccAcqImage(ccPelBuffer<ccPackedRGB32Pel> const& b, long tag, unsigned long frame)
    : format_(ceImageFormatRGB32), tag_(tag), frame_(frame), rgb32_(b)
{
}

bool ccAcqImage::isBound() const
{
  switch (format_) {
  case ceImageFormatGrey8:
    return grey8_.isBound();
  case ceImageFormatGrey16:
    return grey16_.isBound();
  case ceImageFormatRGB16:
    return rgb16_.isBound();
  case ceImageFormatRGB32:
    return rgb32_.isBound();
  default:
    return false;
  }
}

bool ccAcqImage::canConvert(ceImageFormat to) const
{
  if (!isBound())
    return false;
  switch (to) {
  case ceImageFormatGrey8:
    return true;
  case ceImageFormatGrey16:
    return format_ == ceImageFormatGrey16;
  case ceImageFormatRGB16:
  case ceImageFormatRGB32:
    return isColor();
  default:
    return false;
  }
}

ccPelBuffer<unsigned char> ccAcqImage::getGrey8PelBuffer()
{
  if (!canConvert(ceImageFormatGrey8))
    return {};
  std::lock_guard const guard(conversions_);
  if (format_ == ceImageFormatGrey16) {
    int const shift = static_cast<int>(bits_ - 8);
    cf_convert(grey16_, grey8_,
               [shift](unsigned short v) { return static_cast<unsigned char>(std::min(v >> shift, 255)); });
  } else if (format_ == ceImageFormatRGB16)
    cf_convert(rgb16_, grey8_, &cf_grey<ccPackedRGB16Pel>);
  else if (format_ == ceImageFormatRGB32)
    cf_convert(rgb32_, grey8_, &cf_grey<ccPackedRGB32Pel>);
  return cf_freshView(grey8_);
}

ccPelBuffer<unsigned short> ccAcqImage::getGrey16PelBuffer()
{
  return canConvert(ceImageFormatGrey16) ? cf_freshView(grey16_) : ccPelBuffer<unsigned short>();
}

ccPelBuffer<ccPackedRGB16Pel> ccAcqImage::getPackedRGB16PelBuffer()
{
  if (!canConvert(ceImageFormatRGB16))
    return {};
  std::lock_guard const guard(conversions_);
  if (format_ == ceImageFormatRGB32)
    cf_convert(rgb32_, rgb16_, [](ccPackedRGB32Pel p) { return ccPackedRGB16Pel(p.red(), p.green(), p.blue()); });
  return cf_freshView(rgb16_);
}

ccPelBuffer<ccPackedRGB32Pel> ccAcqImage::getPackedRGB32PelBuffer()
{
  if (!canConvert(ceImageFormatRGB32))
    return {};
  std::lock_guard const guard(conversions_);
  if (format_ == ceImageFormatRGB16)
    cf_convert(rgb16_, rgb32_, [](ccPackedRGB16Pel p) { return ccPackedRGB32Pel(p.red(), p.green(), p.blue()); });
  return cf_freshView(rgb32_);
}
