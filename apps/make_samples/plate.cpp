// A chequered calibration plate with three fiducial marks and a scale, on a bench, seen at a slant through a real lens.
#include "apps/make_samples/sample_kit.h"
#include "apps/make_samples/samples.h"

namespace {

constexpr long width = 1024, height = 768;

// The plate's own coordinates are millimetres from its centre.
constexpr double halfWidth = 100, halfHeight = 76, thickness = 5;
constexpr double cell = 10;
constexpr double boardX = 80, boardY = 50;  // 16 x 10 cells

cc_Vec plateFromImage(double x, double y)
{
  // A little barrel distortion, then a projective map.
  double u = (x - 512) / 512, v = (y - 384) / 512;
  double const stretch = 1 + 0.035 * (u * u + v * v);
  u *= stretch;
  v *= stretch;
  static double const c = cf_cosine(0.018), s = cf_sine(0.018);
  double const a = c * u + s * v, b = c * v - s * u;
  double const depth = 1 + 0.07 * a + 0.13 * b;
  return {(124 * a) / depth, (131 * b + 4) / depth};
}

double ink(double distance) { return distance < 0 ? 1 : 0; }

double fiducial(double x, double y)
{
  double const r = cc_Vec{x, y}.length();
  bool const quarter = x * y > 0;
  return r < 3.4 ? (quarter ? 1 : 0) : r < 5.2 ? 1 : r < 6 ? 0 : r < 6.7 ? 1 : 0;
}

// Ticks every millimetre along the lower edge of the board, longer at 5 and 10.
double scale(double x, double y)
{
  if (std::fabs(x) > 70.2 || y < 0 || y > 6)
    return 0;
  double const tick = std::floor(x + 0.5);
  long const n = static_cast<long>(std::fabs(tick));
  double const length = n % 10 == 0 ? 6 : n % 5 == 0 ? 4.2 : 2.6;
  return y < length ? ink(std::fabs(x - tick) - 0.16) : 0;
}

// 0 white, 1 black
double pattern(double x, double y)
{
  if (std::fabs(x) < boardX && std::fabs(y) < boardY) {
    long const column = static_cast<long>(std::floor(x / cell)), row = static_cast<long>(std::floor(y / cell));
    // The cells around the origin tell the directions: two of them carry a dot of the other colour.
    double const dotX = x - (std::floor(x / cell) + 0.5) * cell, dotY = y - (std::floor(y / cell) + 0.5) * cell;
    bool const marked = (column == 0 && row == 0) || (column == 1 && row == 0) || (column == 0 && row == -1);
    bool const dotted = marked && cc_Vec{dotX, dotY}.length() < 2.2;
    return ((column + row) & 1) != dotted ? 1 : 0;
  }
  double mark = ink(std::fabs(cf_boxDistance(x, y, boardX + 2.5, boardY + 2.5, 0)) - 0.5);
  mark = std::max(mark, scale(x, y - boardY - 5));
  for (cc_Vec at : {cc_Vec{-90, -64}, cc_Vec{90, -64}, cc_Vec{-90, 64}})
    mark = std::max(mark, fiducial(x - at.x, y - at.y));
  return mark;
}

double bench(cc_Vec p)
{
  double const x = p.x, y = p.y;
  return 58 + 11 * cf_noise(x / 9, y / 9, 3, 4) + 5 * cf_noise(x * 1.1, y / 30, 4);
}

double brightness(double px, double py, double ground)
{
  cc_Vec const p = plateFromImage(px, py);
  double const edge = cf_boxDistance(p.x, p.y, halfWidth, halfHeight, 4);
  if (edge < 0) {
    double const drill = cc_Vec{std::fabs(p.x) - 95.0, std::fabs(p.y) - 40.0}.length() - 2;
    if (drill < 0)
      return 30 + 14 * cf_step(-2, 0, drill);
    double const glare = 12 * cf_step(150, 10, cc_Vec{p.x + 70, p.y + 60}.length());
    double const surface = cf_mix(222, 36, pattern(p.x, p.y)) + glare;
    return surface + 9 * cf_step(-1.2, 0, edge);
  }
  // The plate's side faces the camera below; its shadow falls to the lower right.
  double const side = cf_boxDistance(p.x, p.y - thickness * 0.5, halfWidth, halfHeight, 4);
  if (side < 0)
    return 150 - 40 * cf_step(0, thickness * 0.6, edge);
  double const shadow = cf_boxDistance(p.x - 5, p.y - 7, halfWidth, halfHeight, 6);
  return ground * (1 - 0.66 * cf_step(7, -5, shadow));
}

}  // namespace

ccPelBuffer<unsigned char> cf_plateSample()
{
  cc_Random random(7);
  cc_Plane<double> plane(width, height);
  constexpr int grid = 4;  // samples a pel and direction
  for (long y = 0; y < height; ++y)
    for (long x = 0; x < width; ++x) {
      // The bench is smooth within a pel.
      double const ground = bench(plateFromImage(static_cast<double>(x), static_cast<double>(y)));
      double sum = 0;
      for (int i = 0; i < grid * grid; ++i)
        sum += brightness(static_cast<double>(x) + (i % grid + 0.5) / grid - 0.5,
                          static_cast<double>(y) + (i / grid + 0.5) / grid - 0.5, ground);
      double const dx = static_cast<double>(x) / width - 0.4, dy = static_cast<double>(y) / height - 0.35;
      plane.at(x, y) = sum / (grid * grid) * (1.06 - 0.5 * (dx * dx + dy * dy));
    }
  cf_soften(plane, 0.3);
  return cf_finish(plane, 0.42, random);
}
