// Operations on a display: images, zoom and pan, maps, sketches, reading back, layers.
#include "platform/paint.h"
#include "tests/storm/noisy.h"

namespace {

using enum StormGroup;
using enum StormPlace;
using Op = StormOp const&;

ccDisplay::CoordinateSystem systemOf(unsigned n) { return static_cast<ccDisplay::CoordinateSystem>(n % 3); }

ccXform<2> xformOf(unsigned n)
{
  switch (n % 4) {
  case 1:
    return ccXform<2>(ccMatrix<2>(2, 0, 0, 2), ccVector<2>(3, -2));
  case 2:
    return ccXform<2>(ccMatrix<2>(0, -1, 1, 0), ccVector<2>(10, 0));
  case 3:
    return ccXform<2>(ccMatrix<2>(0.5, 0.1, 0, -0.7), ccVector<2>(0.3, 7.5));
  default:
    return ccXform<2>::I;
  }
}

// Size from a and b, contents from c, offset, part and transform from d.
template <class T, class Make> ccPelBuffer_const<T> imageOf(StormStage& s, Op o, Make const& make)
{
  long const least = s.on(tiny) ? 1 : 16;
  long const w = o.a % 8 == 0 ? least : least + o.a % 53, h = o.b % 8 == 0 ? least : least + o.b % 41;
  ccPelBuffer<T> pels(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      pels.setPel(x, y, make(static_cast<unsigned>(x * 7 + y * 13 + o.c * 3)));
  if (o.d & 1)
    pels.window(w / 4, h / 3, w - w / 4, h - h / 3);
  if (o.d & 2)
    pels.offset(ccPair<long>(o.d % 40 - 20L, o.e % 30 - 15L));
  if (o.d & 4)
    pels.clientFromImageXform(xformOf(o.e));
  return pels;
}

// The display that gets an image; without one of any size and type while there is an overlay, as long as typeChanges is off.
NoisyDisplay* receiver(StormStage& s, Op o)
{
  NoisyDisplay* const d = s.display(o.e);
  if (!d || s.on(typeChanges) || d->enableOverlay() != ccDisplay::overlayOn)
    return d;
  for (int i = 0; i < 4 && s.display(o.e) == d && d->hasImage(); ++i)
    d->removeImage();
  return s.display(o.e) == d ? d : nullptr;
}

void image8(StormStage& s, Op o)
{
  if (NoisyDisplay* const d = receiver(s, o))
    d->image(imageOf<unsigned char>(s, o, [](unsigned v) { return static_cast<unsigned char>(v); }), (o.d & 8) != 0);
}

void image16(StormStage& s, Op o)
{
  static long const widths[] = {8, 10, 12, 14, 16};
  long const bits = widths[o.d / 16 % 5];
  if (NoisyDisplay* const d = receiver(s, o))
    d->image(imageOf<unsigned short>(
                 s, o, [&](unsigned v) { return static_cast<unsigned short>((v * 977u) & ((1u << bits) - 1u)); }),
             bits);
}

void imageRgb(StormStage& s, Op o)
{
  NoisyDisplay* const d = receiver(s, o);
  if (!d)
    return;
  if (d->displayFormat() == ccDisplay::format16)
    d->image(imageOf<ccPackedRGB16Pel>(s, o, [](unsigned v) { return ccPackedRGB16Pel(static_cast<std::uint16_t>(v * 2477u)); }));
  else
    d->image(imageOf<ccPackedRGB32Pel>(s, o, [](unsigned v) { return ccPackedRGB32Pel((v * 0x10305u) & 0xFFFFFFu); }));
}

void imageUnbound(StormStage& s, Op o)
{
  NoisyDisplay* const d = s.display(o.e);
  if (!d)
    return;
  if (o.a % 3 == 0)
    d->image(ccPelBuffer_const<unsigned char>(), true);
  else if (o.a % 3 == 1)
    d->image(ccPelBuffer_const<unsigned short>(), 12);
  else
    d->removeImage();
}

void zoom(StormStage& s, Op o)
{
  static double const exact[] = {0.5, 1.5, 2.25, 1.0 / 3, 7.3, 0.13, 40, 1};
  NoisyDisplay* const d = s.display(o.e);
  if (!d)
    return;
  if (!s.on(fractions))
    return d->mag(1 + o.b % 9);
  switch (o.a % 5) {
  case 0:
    d->magExact(exact[o.b % 8]);
    break;
  case 1:
    d->fit();
    break;
  case 2:
    d->fitExact();
    break;
  default:
    d->mag(static_cast<long>(o.b % 13) - 5);
  }
}

void pan(StormStage& s, Op o)
{
  NoisyDisplay* const d = s.display(o.e);
  if (!d)
    return;
  if (o.a % 2)
    d->pan(ccVector<2>((o.b - 128.0) / 7, (o.c - 128.0) / 5));
  else
    d->panDelta(ccPair<long>(o.b % 31 - 15L, o.c % 31 - 15L));
}

void panLimits(StormStage& s, Op o)
{
  NoisyDisplay* const d = s.display(o.e);
  if (!d)
    return;
  d->defaultPan(o.a % 2 == 0);
  if (o.a % 3 == 0)
    d->minPan(ccPair<double>(-double(o.b % 60), -double(o.c % 60)));
  else if (o.a % 3 == 1)
    d->maxPan(ccPair<double>(o.b % 60, o.c % 60));
}

void mode(StormStage& s, Op o)
{
  if (NoisyDisplay* const d = s.display(o.e))
    d->mouseMode(static_cast<ccDisplay::MouseMode>(o.a % (s.on(fractions) ? 4 : 3)));
}

void grid(StormStage& s, Op o)
{
  NoisyDisplay* const d = s.display(o.e);
  if (!d)
    return;
  d->gridColor(o.c % 2 ? ccColor::blueColor() : ccColor::redColor());
  if (o.a % 2)
    d->grid(o.b % 9 - 1L);
  else
    d->subpixelGrid(o.b % 6 - 1L);
}

std::vector<ccRGB> ramp(std::size_t n, unsigned turn)
{
  std::vector<ccRGB> map(n);
  for (std::size_t i = 0; i < n; ++i)
    map[i] = ccRGB(static_cast<unsigned char>(i + turn), static_cast<unsigned char>(i * 3), static_cast<unsigned char>(255 - i));
  return map;
}

void colours(StormStage& s, Op o)
{
  NoisyDisplay* const d = s.display(o.e);
  if (!d)
    return;
  static std::size_t const sizes[] = {256, 256, 1024, 4096, 65536, 7};
  switch (o.a % 6) {
  case 0:
    d->colorMap(ramp(1 + o.b, o.c), o.d);
    break;
  case 1:
    d->colorMapEx(ramp(sizes[o.b % 6], o.c));
    break;
  case 2:
    d->clearColorMap();
    break;
  case 3:
    d->root()->reservedColor(ccRGB(o.b, o.c, o.d), 240 + o.d % 8);
    break;
  case 4:
    d->root()->systemColorMap(ramp(o.b % 4 ? 256 : 20, o.c));
    break;
  default:
    d->imageScope().waitForVerticalBlank(o.b % 2);
  }
}

ccUISketch sketchOf(Op o)
{
  ccUITablet recorder;
  auto const layer = o.b % 2 ? ccUITablet::imageLayer : ccUITablet::overlayLayer;
  double const x = o.c % 30, y = o.d % 20;
  if (o.b & 2)
    recorder.draw(ccLineSeg(ccPoint(x, y), ccPoint(y + 7, x)), cfInk(), layer);
  if (o.b & 4)
    recorder.set(ccUIRect(o.c % 20, o.d % 15, 3 + o.c % 9, 2 + o.d % 7), cfInk(), layer);
  if (o.b & 8)
    recorder.draw(ccEllipse(ccPoint(x, y), ccVector<2>(6, 4), ccRadian(0)), cfInk(), layer, true);
  return recorder.sketch();
}

void sketch(StormStage& s, Op o)
{
  NoisyDisplay* const d = s.display(o.e);
  if (!d)
    return;
  auto const where = systemOf(o.a);
  switch (o.a / 4 % 5) {
  case 0:
    d->eraseSketch(where);
    break;
  case 1:
    d->drawSketch(sketchOf(o), where, ccRect(ccPoint(2, 3), ccPoint(o.c % 25 + 3, o.d % 20 + 4)));
    break;
  default:
    d->drawSketch(sketchOf(o), where);
  }
}

void overlayOp(StormStage& s, Op o)
{
  if (s.nested() && !s.on(overlayInHooks))
    return;
  if (NoisyDisplay* const d = s.display(o.e))
    d->enableOverlay(o.a % 2 ? ccDisplay::overlayOn : ccDisplay::overlayOff);
}

void keyingOp(StormStage& s, Op o)
{
  NoisyDisplay* const d = s.display(o.e);
  if (!d)
    return;
  switch (o.a % 5) {
  case 0:
    d->enableOverlay(ccDisplay::chromaOn);
    break;
  case 1:
    d->enableOverlay(ccDisplay::chromaOff);
    break;
  case 2:
    d->chromaKey(o.b % 2 ? 0xFF00FFul : 0x00FF01ul);
    break;
  case 3:
    d->enableChromaKeying(o.b % 2 != 0);
    break;
  default:
    if (HDC const dc = d->getDC()) {
      if (plat::Painter* const painter = plat::painter(dc))
        painter->fillRect({o.b % 20, o.c % 20, o.b % 20 + 6, o.c % 20 + 5}, 0x00FFFFu);
      d->releaseDC(dc);
    }
  }
}

void yuvOp(StormStage& s, Op o)
{
  static std::uint32_t const codes[] = {0x59565955u, 0x32595559u};  // UYVY, YUY2
  NoisyDisplay* const d = s.display(o.e);
  if (o.a % 3 == 0)
    plat::testing::overlays(o.b % 3, o.b % 3 ? std::vector<plat::u32>{codes[o.c % 2]} : std::vector<plat::u32>{});
  else if (d) {
    ccLock lock(d->rootMutex());
    d->imageScope().enableChromaKeying(o.a % 3 == 1, /*yuv=*/true);
  }
}

template <class T> void readBack(NoisyDisplay& d, Op o)
{
  ccPelBuffer<T> out(1 + o.b % 60, 1 + o.c % 40);
  auto const layer = static_cast<ccUITablet::Layers>(o.d % 3);
  if (layer == ccUITablet::overlayLayer && d.enableOverlay() != ccDisplay::overlayOn)
    return;
  d.getDisplayedImage(out, layer);
}

void reading_(StormStage& s, Op o)
{
  NoisyDisplay* const d = s.display(o.e);
  if (!d)
    return;
  if (o.a % 3 == 0)
    readBack<unsigned char>(*d, o);
  else if (o.a % 3 == 1)
    readBack<ccPackedRGB16Pel>(*d, o);
  else
    readBack<ccPackedRGB32Pel>(*d, o);
}

void drawingOff(StormStage& s, Op o)
{
  NoisyDisplay* const d = s.display(o.e);
  if (!d)
    return;
  // In one hold of the mutex, as applications should. A hook may end the display meanwhile.
  d->disableDrawing();
  try {
    d->pan(ccVector<2>(o.a % 9, o.b % 9));
  } catch (...) {
    if (d == s.display(o.e))
      d->enableDrawing(false);
    throw;
  }
  if (d == s.display(o.e))
    d->enableDrawing(true);
}

}  // namespace

void cfAddImageOps(std::vector<StormRow>& rows)
{
  rows.insert(rows.end(), {
      {"image8", images, anywhere, 10, image8},
      {"image16", images, anywhere, 8, image16},
      {"imageRgb", images, anywhere, 8, imageRgb},
      {"imageNone", images, anywhere, 2, imageUnbound},
      {"zoom", views, anywhere, 10, zoom},
      {"pan", views, anywhere, 10, pan},
      {"panLimits", views, anywhere, 3, panLimits},
      {"drawingOff", views, notWhilePainting, 2, drawingOff},
      {"mode", modes, anywhere, 8, mode},
      {"grid", modes, anywhere, 4, grid},
      {"colours", maps, anywhere, 5, colours},
      {"sketch", sketches, notWhilePainting, 8, sketch},
      {"overlay", overlay, notWhilePainting, 5, overlayOp},
      {"keying", keying, notWhilePainting, 4, keyingOp},
      {"yuv", yuv, notWhilePainting, 3, yuvOp},
      {"read", reading, notWhilePainting, 3, reading_},
  });
}
