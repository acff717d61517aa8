#include "apps/make_samples/sample_kit.h"

namespace {

std::uint64_t scramble(std::uint64_t z)
{
  z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9u;
  z = (z ^ z >> 27) * 0x94D049BB133111EBu;
  return z ^ z >> 31;
}

constexpr std::uint64_t goldenStep = 0x9E3779B97F4A7C15u;

// -1 to 1 at a lattice point.
double lattice(long x, long y, std::uint32_t seed)
{
  std::uint64_t const key = static_cast<std::uint64_t>(static_cast<std::uint32_t>(x)) << 32 | static_cast<std::uint32_t>(y);
  return static_cast<double>(scramble(key + (seed + 1) * goldenStep) >> 11) * 0x1p-52 - 1;
}

}  // namespace

std::uint64_t cc_Random::next()
{
  return scramble(state_ += goldenStep);
}

double cc_Random::uniform()
{
  return static_cast<double>(next() >> 11) * 0x1p-53;
}

double cc_Random::normal()
{
  double const sum = uniform() + uniform() + uniform() + uniform();
  return (sum - 2) * std::sqrt(3.0);
}

double cf_sine(double turns)
{
  double t = turns - std::floor(turns + 0.5);  // -0.5 to 0.5
  t = t > 0.25 ? 0.5 - t : t < -0.25 ? -0.5 - t : t;
  double const a = t * 6.283185307179586;
  double const s = a * a;
  return a * (1 - s / 6 * (1 - s / 20 * (1 - s / 42 * (1 - s / 72 * (1 - s / 110)))));
}

double cf_cosine(double turns)
{
  return cf_sine(turns + 0.25);
}

double cf_turns(double x, double y)
{
  double const ax = std::fabs(x), ay = std::fabs(y);
  double const slope = std::min(ax, ay) / std::max(std::max(ax, ay), 1e-12);
  double const s = slope * slope;
  // A fit of atan on 0 to 1.
  double turns = slope * (0.9998660 - s * (0.3302995 - s * (0.1801410 - s * (0.0851330 - s * 0.0208351)))) / 6.283185307179586;
  turns = ay > ax ? 0.25 - turns : turns;
  turns = x < 0 ? 0.5 - turns : turns;
  return y < 0 ? 1 - turns : turns;
}

double cf_step(double from, double to, double value)
{
  double const t = std::clamp((value - from) / (to - from), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

double cf_cover(double distance)
{
  return std::clamp(0.5 - distance, 0.0, 1.0);
}

double cf_power(double base, int doublings)
{
  base = std::max(base, 0.0);
  for (int i = 0; i < doublings; ++i)
    base *= base;
  return base;
}

double cf_noise(double x, double y, std::uint32_t seed)
{
  double const fx = std::floor(x), fy = std::floor(y);
  long const ix = static_cast<long>(fx), iy = static_cast<long>(fy);
  double const tx = cf_step(0, 1, x - fx), ty = cf_step(0, 1, y - fy);
  return cf_mix(cf_mix(lattice(ix, iy, seed), lattice(ix + 1, iy, seed), tx),
                cf_mix(lattice(ix, iy + 1, seed), lattice(ix + 1, iy + 1, seed), tx), ty);
}

double cf_noise(double x, double y, std::uint32_t seed, int octaves)
{
  double sum = 0, weight = 0.5;
  for (int i = 0; i < octaves; ++i, weight /= 2, x *= 2, y *= 2)
    sum += weight * cf_noise(x, y, seed + static_cast<std::uint32_t>(i) * 101);
  return sum;
}

double cf_boxDistance(double x, double y, double halfWidth, double halfHeight, double cornerRadius)
{
  double const dx = std::fabs(x) - halfWidth + cornerRadius, dy = std::fabs(y) - halfHeight + cornerRadius;
  cc_Vec const outside{std::max(dx, 0.0), std::max(dy, 0.0)};
  return outside.length() + std::min(std::max(dx, dy), 0.0) - cornerRadius;
}

double cf_hexDistance(double x, double y, double flatRadius)
{
  double const ax = std::fabs(x), ay = std::fabs(y);
  return std::max(ax * std::sqrt(0.75) + ay * 0.5, ay) - flatRadius;
}

double cf_segmentDistance(double x, double y, cc_Vec a, cc_Vec b)
{
  cc_Vec const along = b - a, to = cc_Vec{x, y} - a;
  double const t = std::clamp(dot(to, along) / dot(along, along), 0.0, 1.0);
  return (to - along * t).length();
}

cc_Vec cf_light()
{
  return cc_Vec{-0.46, -0.56, 0.69}.unit();
}

double cf_diffuse(cc_Vec normal, cc_Vec light)
{
  return std::max(dot(normal, light), 0.0);
}

double cf_gloss(cc_Vec normal, cc_Vec light, int doublings)
{
  return cf_power(dot(normal, (light + cc_Vec{0, 0, 1}).unit()), doublings);
}

ccPelBuffer<unsigned char> cf_finish(cc_Plane<double> const& plane, double noise, cc_Random& random)
{
  ccPelBuffer<unsigned char> pels(plane.width(), plane.height());
  for (long y = 0; y < plane.height(); ++y)
    for (long x = 0; x < plane.width(); ++x)
      *pels.pelAddress(x, y) = static_cast<unsigned char>(
          std::clamp(std::floor(plane.near(x, y) + noise * random.normal() + 0.5), 0.0, 255.0));
  return pels;
}
