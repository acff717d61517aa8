// A lit panel seen by a 12-bit camera. Its brightness falls off to one side; on it lie faint clouds, scratches, dust and a
// fingerprint of rings, and the sensor has hot, dead and weak pels. Most show only when the display's range is narrowed.
#include "apps/make_samples/sample_kit.h"
#include "apps/make_samples/samples.h"

namespace {

constexpr long width = 800, height = 600;
constexpr double white = 4095;

double light(double x, double y)
{
  double const slope = cf_mix(620, 3350, cf_step(-120, 920, x));
  double const dx = (x - 400) / 400, dy = (y - 300) / 300;
  return slope * (1.03 - 0.11 * dy * dy - 0.05 * dx * dx);
}

// Relative to the light: -0.02 is two per cent darker.
double cloud(double x, double y, double cx, double cy, double rx, double ry, double depth)
{
  double const dx = (x - cx) / rx, dy = (y - cy) / ry;
  return depth * cf_step(1, 0, dx * dx + dy * dy);
}

double rings(double x, double y)
{
  double const r = cc_Vec{x - 205, (y - 430) * 1.2}.length();
  double const wobble = 14 * cf_noise(x / 60, y / 60, 31);
  return 0.012 * cf_sine((r + wobble) / 9.5) * cf_step(85, 50, r);
}

double scratch(double x, double y, cc_Vec a, cc_Vec b, double halfWidth, double depth)
{
  double const wander = 2.5 * cf_noise(x / 40, y / 40, 32);
  return depth * cf_step(halfWidth + 0.9, halfWidth * 0.4, cf_segmentDistance(x + wander, y - wander, a, b));
}

double surface(double x, double y)
{
  double f = 0;
  f += cloud(x, y, 300, 170, 130, 80, -0.022);
  f += cloud(x, y, 560, 420, 170, 60, 0.018);
  f += cloud(x, y, 660, 130, 60, 60, -0.030);
  f += cloud(x, y, 90, 120, 55, 75, 0.035);
  f += rings(x, y);
  f += scratch(x, y, {420, 80}, {610, 250}, 0.7, -0.10);
  f += scratch(x, y, {120, 330}, {330, 300}, 0.5, 0.07);
  f += scratch(x, y, {500, 520}, {690, 500}, 1.1, -0.035);
  return f;
}

void dust(cc_Random& random, cc_Plane<double>& plane)
{
  for (int i = 0; i < 26; ++i) {
    double const cx = random.between(10, width - 10), cy = random.between(10, height - 10);
    double const radius = random.between(1.5, 5.5), depth = random.between(0.15, 0.75);
    for (long y = static_cast<long>(cy) - 8; y <= static_cast<long>(cy) + 8; ++y)
      for (long x = static_cast<long>(cx) - 8; x <= static_cast<long>(cx) + 8; ++x)
        if (x >= 0 && y >= 0 && x < width && y < height) {
          double const dx = static_cast<double>(x) - cx, dy = static_cast<double>(y) - cy;
          double const ragged = radius * (1 + 0.35 * cf_noise(dx / 3 + cx, dy / 3 + cy, 33));
          plane.at(x, y) *= 1 - depth * cf_step(ragged + 0.8, ragged - 0.8, cc_Vec{dx, dy}.length());
        }
  }
}

void sensor(cc_Random& random, cc_Plane<double>& plane)
{
  constexpr long weakColumn = 538, deadRowFrom = 640, deadRow = 333;
  for (long y = 0; y < height; ++y)
    plane.at(weakColumn, y) *= 0.985;
  for (long x = deadRowFrom; x < deadRowFrom + 48; ++x)
    plane.at(x, deadRow) = 12;
  for (int i = 0; i < 30; ++i) {
    long const x = static_cast<long>(random.between(0, width)), y = static_cast<long>(random.between(0, height));
    plane.at(x, y) = i % 2 ? white : 8;
  }
}

}  // namespace

ccPelBuffer<unsigned short> cf_panelSample()
{
  cc_Random random(12);
  cc_Plane<double> plane(width, height);
  for (long y = 0; y < height; ++y)
    for (long x = 0; x < width; ++x) {
      double const px = static_cast<double>(x), py = static_cast<double>(y);
      plane.at(x, y) = light(px, py) * (1 + surface(px, py));
    }
  dust(random, plane);
  cf_soften(plane, 0.3);
  for (long y = 0; y < height; ++y)
    for (long x = 0; x < width; ++x) {
      double& value = plane.at(x, y);
      value += random.normal() * 0.03 * std::sqrt(value);  // photons come by chance
    }
  sensor(random, plane);

  ccPelBuffer<unsigned short> pels(width, height);
  for (long y = 0; y < height; ++y)
    for (long x = 0; x < width; ++x)
      *pels.pelAddress(x, y) = static_cast<unsigned short>(std::clamp(std::floor(plane.at(x, y) + 0.5), 0.0, white));
  return pels;
}
