#include "tests/support/plain_painter.h"

#include <cmath>
#include <sstream>

namespace plain {

double floorTolerant(double v)
{
  return std::floor(v + std::fabs(v) * 1e-11);
}

double ceilTolerant(double v)
{
  return std::ceil(v - std::fabs(v) * 1e-11);
}

long pelOf(double v)
{
  return static_cast<long>(std::floor(v + 0.500001));
}

Picture::Picture(long width, long height, std::uint32_t value)
    : width_(width), height_(height), pels_(static_cast<std::size_t>(width * height), value)
{
}

std::uint32_t Picture::at(long x, long y) const
{
  if (x < 0 || y < 0 || x >= width_ || y >= height_)
    return 0;
  return pels_[static_cast<std::size_t>(y * width_ + x)];
}

void Picture::put(long x, long y, std::uint32_t value)
{
  if (x >= 0 && y >= 0 && x < width_ && y < height_)
    pels_[static_cast<std::size_t>(y * width_ + x)] = value;
}

std::string firstDifference(Picture const& expected, std::vector<std::uint32_t> const& actual)
{
  std::ostringstream text;
  if (actual.size() != expected.pels().size()) {
    text << actual.size() << " pels instead of " << expected.pels().size();
    return text.str();
  }
  for (long y = 0; y < expected.height(); ++y)
    for (long x = 0; x < expected.width(); ++x) {
      std::uint32_t const value = actual[static_cast<std::size_t>(y * expected.width() + x)];
      if (value != expected.at(x, y)) {
        text << "at (" << x << ", " << y << ") " << std::hex << value << " instead of " << expected.at(x, y);
        return text.str();
      }
    }
  return "";
}

long scaledExtent(long extent, double scale)
{
  return static_cast<long>(ceilTolerant(static_cast<double>(extent) * scale));
}

bool covers(long at, long origin, long extent, double scale)
{
  return at >= origin && at < origin + scaledExtent(extent, scale);
}

long sourceIndex(long at, long origin, long extent, double scale)
{
  long index = static_cast<long>(floorTolerant(static_cast<double>(at - origin) / scale));
  if (index < 0)
    index = 0;
  if (index > extent - 1)
    index = extent - 1;
  return index;
}

namespace {

// The image's first pel lies so far from the display's: the image's middle, less the pan, comes to the display's middle. The
// middles are halves rounded down; magnification is about the image's first pel.
double start(long display, long image, double magnification, double pan)
{
  double const displayMiddle = static_cast<double>(display / 2);
  double const imageMiddle = static_cast<double>(image / 2);
  return displayMiddle - (imageMiddle - pan) * magnification;
}

// Reductions show whole blocks only: an image of 10 at a third shows 9.
long shownExtent(long image, double magnification)
{
  if (magnification >= 1)
    return image;
  long const block = static_cast<long>((1 + 1e-11) / magnification);
  return image / block * block;
}

struct Range {
  long from, to;
};

Range shownRange(long display, long image, double magnification, double pan)
{
  double const first = start(display, image, magnification, pan);
  return Range{pelOf(first),
               pelOf(first + static_cast<double>(shownExtent(image, magnification)) * magnification)};
}

}  // namespace

Shown shownAt(View const& v, long x, long y)
{
  Range const xs = shownRange(v.displayW, v.imageW, v.magnification, v.panX);
  Range const ys = shownRange(v.displayH, v.imageH, v.magnification, v.panY);
  Shown s;
  if (x < xs.from || x >= xs.to || y < ys.from || y >= ys.to)
    return s;
  s.image = true;
  s.column = sourceIndex(x, xs.from, v.imageW, v.magnification);
  s.row = sourceIndex(y, ys.from, v.imageH, v.magnification);
  s.imageX = s.column + v.offsetX;
  s.imageY = s.row + v.offsetY;
  return s;
}

Rect shownRect(View const& v)
{
  Range const xs = shownRange(v.displayW, v.imageW, v.magnification, v.panX);
  Range const ys = shownRange(v.displayH, v.imageH, v.magnification, v.panY);
  Rect r;
  r.x = xs.from;
  r.y = ys.from;
  r.w = xs.to - xs.from;
  r.h = ys.to - ys.from;
  return r;
}

double displayX(View const& v, double imageX)
{
  return start(v.displayW, v.imageW, v.magnification, v.panX) +
         (imageX - static_cast<double>(v.offsetX)) * v.magnification;
}

double displayY(View const& v, double imageY)
{
  return start(v.displayH, v.imageH, v.magnification, v.panY) +
         (imageY - static_cast<double>(v.offsetY)) * v.magnification;
}

Picture displayPicture(View const& v, std::vector<std::uint32_t> const& image, std::uint32_t surround)
{
  Picture p(v.displayW, v.displayH, surround);
  for (long y = 0; y < v.displayH; ++y)
    for (long x = 0; x < v.displayW; ++x) {
      Shown const s = shownAt(v, x, y);
      if (s.image)
        p.put(x, y, image[static_cast<std::size_t>(s.row * v.imageW + s.column)]);
    }
  return p;
}

long nearestEntry(Rgb const& c, std::vector<Rgb> const& palette)
{
  long best = -1;
  long bestError = 0;
  for (std::size_t i = 0; i < palette.size() && i < 256; ++i) {
    long const dr = c.r - palette[i].r;
    long const dg = c.g - palette[i].g;
    long const db = c.b - palette[i].b;
    long const error = dr * dr + dg * dg + db * db;
    if (i != 243 && (best < 0 || error < bestError)) {
      best = static_cast<long>(i);
      bestError = error;
    }
  }
  return best;
}

std::uint32_t surfacePel(Rgb const& c, int depth, std::vector<Rgb> const& palette)
{
  switch (depth) {
  case 8: return static_cast<std::uint32_t>(nearestEntry(c, palette));
  case 15: return static_cast<std::uint32_t>(c.r / 8 * 1024 + c.g / 8 * 32 + c.b / 8);
  case 16: return static_cast<std::uint32_t>(c.r / 8 * 2048 + c.g / 4 * 32 + c.b / 8);
  default: return static_cast<std::uint32_t>(c.r * 65536 + c.g * 256 + c.b);
  }
}

Rgb seen(std::uint32_t pel, int depth, std::vector<Rgb> const& palette)
{
  int const v = static_cast<int>(pel);
  Rgb c;
  switch (depth) {
  case 8: return palette.at(static_cast<std::size_t>(v));
  case 15:
    c.r = v / 1024 % 32 * 8;
    c.g = v / 32 % 32 * 8;
    c.b = v % 32 * 8;
    return c;
  case 16:
    c.r = v / 2048 % 32 * 8;
    c.g = v / 32 % 64 * 4;
    c.b = v % 32 * 8;
    return c;
  default:
    c.r = v / 65536 % 256;
    c.g = v / 256 % 256;
    c.b = v % 256;
    return c;
  }
}

int stretched(int value)
{
  if (value < 10)
    return 10;
  return value > 240 ? 240 : value;
}

std::uint32_t surfacePelOfGrey8(int value, bool mapped, int depth, std::vector<Rgb> const& imageMap)
{
  int const entry = mapped ? value : stretched(value);
  if (depth == 8)
    return static_cast<std::uint32_t>(entry);
  return surfacePel(imageMap.at(static_cast<std::size_t>(entry)), depth);
}

std::uint32_t surfacePelOfGrey16(int value, int depth, std::vector<Rgb> const& imageMap)
{
  return surfacePel(imageMap.at(static_cast<std::size_t>(value)), depth);
}

std::vector<Rgb> greyRamp()
{
  std::vector<Rgb> map(256);
  for (int i = 0; i < 256; ++i)
    map[static_cast<std::size_t>(i)].r = map[static_cast<std::size_t>(i)].g = map[static_cast<std::size_t>(i)].b = i;
  return map;
}

std::vector<Rgb> windowMap(int bits, int lowest, int highest)
{
  int entries = 65536;
  int ruled = 65536;  // what lies beyond is white
  if (bits == 8)
    entries = ruled = 256;
  else if (bits == 10)
    entries = ruled = 1024;
  else if (bits == 12)
    entries = ruled = 4096;
  else if (bits == 14)
    ruled = 16384;
  int const step = (highest - lowest) / 256 + 1;
  std::vector<Rgb> map(static_cast<std::size_t>(entries));
  for (int i = 0; i < entries; ++i) {
    int grey = 0;
    if (i >= ruled || i > highest)
      grey = 255;
    else if (i >= lowest)
      grey = (i - lowest) / step;
    Rgb& c = map[static_cast<std::size_t>(i)];
    c.r = c.g = c.b = grey;
  }
  return map;
}

void fillRect(Picture& p, Rect const& r, std::uint32_t value)
{
  for (long y = 0; y < p.height(); ++y)
    for (long x = 0; x < p.width(); ++x)
      if (x >= r.x && x < r.x + r.w && y >= r.y && y < r.y + r.h)
        p.put(x, y, value);
}

void fillOutside(Picture& p, Rect const& r, std::uint32_t value)
{
  for (long y = 0; y < p.height(); ++y)
    for (long x = 0; x < p.width(); ++x)
      if (!(x >= r.x && x < r.x + r.w && y >= r.y && y < r.y + r.h))
        p.put(x, y, value);
}

void outline(Picture& p, Rect const& r, long width, std::uint32_t value)
{
  for (long y = r.y; y < r.y + r.h; ++y)
    for (long x = r.x; x < r.x + r.w; ++x) {
      bool const inner = x >= r.x + width && x < r.x + r.w - width && y >= r.y + width && y < r.y + r.h - width;
      if (!inner && width > 0)
        p.put(x, y, value);
    }
}

void line(Picture& p, long x0, long y0, long x1, long y1, std::uint32_t value)
{
  long const dx = x1 - x0;
  long const dy = y1 - y0;
  bool const steep = std::labs(dy) > std::labs(dx);
  long const length = steep ? std::labs(dy) : std::labs(dx);
  long const minor = steep ? dx : dy;
  long const way = (steep ? dy : dx) < 0 ? -1 : 1;
  for (long k = 0; k <= length; ++k) {
    // Among the pels across, the one nearest to the line; of two equally near the smaller coordinate.
    long best = 0;
    long bestError = -1;
    for (long c = -std::labs(minor); c <= std::labs(minor); ++c) {
      long const error = std::labs(c * length - k * minor);
      if (bestError < 0 || error < bestError) {
        best = c;
        bestError = error;
      }
    }
    p.put(x0 + (steep ? best : way * k), y0 + (steep ? way * k : best), value);
  }
}

Picture composed(Picture const& image, Picture const& overlay, std::uint32_t key)
{
  Picture p(overlay.width(), overlay.height());
  for (long y = 0; y < p.height(); ++y)
    for (long x = 0; x < p.width(); ++x)
      p.put(x, y, overlay.at(x, y) == key ? image.at(x, y) : overlay.at(x, y));
  return p;
}

}  // namespace plain
