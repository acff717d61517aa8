// What the sample scenes are painted with: numbers, textures, distances to outlines, metal and light. Everything comes from a
// seed and from +, -, *, / and sqrt alone, so that the pels are the same on every machine.
//
// Coordinates are pels with x right, y down, the centre of the upper left pel at (0, 0). Brightness runs from 0 to 255.
#pragma once

#include "foundation/pel_buffer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

class cc_Random {
public:
  explicit cc_Random(std::uint64_t seed) : state_(seed) {}
  std::uint64_t next();
  double uniform();                     // 0 up to 1
  double between(double a, double b) { return a + (b - a) * uniform(); }
  double normal();                      // mean 0, deviation 1, within +-3.5

private:
  std::uint64_t state_;
};

struct cc_Vec {
  double x = 0, y = 0, z = 0;
  friend cc_Vec operator+(cc_Vec a, cc_Vec b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
  friend cc_Vec operator-(cc_Vec a, cc_Vec b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
  friend cc_Vec operator*(cc_Vec a, double f) { return {a.x * f, a.y * f, a.z * f}; }
  friend double dot(cc_Vec a, cc_Vec b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
  double length() const { return std::sqrt(dot(*this, *this)); }
  cc_Vec unit() const { return *this * (1 / std::max(length(), 1e-12)); }
};

// A picture in the making, one value or colour per pel.
template <class T> class cc_Plane {
public:
  cc_Plane(long width, long height) : width_(width), pels_(static_cast<std::size_t>(width * height)), height_(height) {}
  long width() const { return width_; }
  long height() const { return height_; }
  T& at(long x, long y) { return pels_[static_cast<std::size_t>(y * width_ + x)]; }
  T const& near(long x, long y) const  // outside: the nearest pel
  {
    return pels_[static_cast<std::size_t>(std::clamp(y, 0l, height_ - 1) * width_ + std::clamp(x, 0l, width_ - 1))];
  }

private:
  long width_;
  std::vector<T> pels_;
  long height_;
};

double cf_sine(double turns);              // full turns
double cf_cosine(double turns);
double cf_turns(double x, double y);       // the direction of (x, y), 0 up to 1, within 1e-4
double cf_step(double from, double to, double value);  // smooth, 0 at `from`, 1 at `to`
double cf_cover(double distance);          // how much of a pel lies inside an outline at that distance; negative is inside
double cf_power(double base, int doublings);  // base to the power 2^doublings, 0 for negative bases
inline double cf_mix(double a, double b, double t) { return a + (b - a) * t; }
inline cc_Vec cf_mix(cc_Vec a, cc_Vec b, double t) { return a + (b - a) * t; }

// Smooth noise with one feature per unit, -1 to 1; with octaves, finer and weaker features on top.
double cf_noise(double x, double y, std::uint32_t seed);
double cf_noise(double x, double y, std::uint32_t seed, int octaves);

// Distances to outlines around the origin, negative inside.
double cf_boxDistance(double x, double y, double halfWidth, double halfHeight, double cornerRadius);
double cf_hexDistance(double x, double y, double flatRadius);  // two flats lie at y = +-flatRadius
double cf_segmentDistance(double x, double y, cc_Vec a, cc_Vec b);

// Where an outline faces: the direction in which its distance grows.
template <class Distance> cc_Vec cf_facing(Distance&& distance, double x, double y)
{
  constexpr double step = 0.5;
  return cc_Vec{distance(x + step, y) - distance(x - step, y), distance(x, y + step) - distance(x, y - step)}.unit();
}

// The light stands upper left, above the scene.
cc_Vec cf_light();
double cf_diffuse(cc_Vec normal, cc_Vec light);                // 0 to 1
double cf_gloss(cc_Vec normal, cc_Vec light, int doublings);  // a highlight, 0 to 1

// A little blur, as every lens has. weight 0.5: neighbours weigh 1 2 1.
template <class T> void cf_soften(cc_Plane<T>& plane, double weight)
{
  for (int pass = 0; pass < 2; ++pass) {
    cc_Plane<T> const from = plane;
    for (long y = 0; y < plane.height(); ++y)
      for (long x = 0; x < plane.width(); ++x) {
        T const sides = pass ? from.near(x, y - 1) + from.near(x, y + 1) : from.near(x - 1, y) + from.near(x + 1, y);
        plane.at(x, y) = from.near(x, y) * (1 - weight) + sides * (weight / 2);
      }
  }
}

ccPelBuffer<unsigned char> cf_finish(cc_Plane<double> const&, double noise, cc_Random&);  // adds noise and rounds
