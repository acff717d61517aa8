// Washers, nuts, bolts, seals and brackets on a moving belt between two rails.
#include "apps/make_samples/sample_kit.h"
#include "apps/make_samples/samples.h"

#include <functional>

namespace {

constexpr long width = 1280, height = 960;
constexpr double railHeight = 66;

// What a part looks like at one point of its own plane.
struct Look {
  double distance = 0;  // to its outline, negative inside
  double value = 0;
};

struct Part {
  double reach;  // radius of a circle around it
  std::function<Look(double u, double v, cc_Vec light)> look;
};

double steel(cc_Vec normal, cc_Vec light, double base)
{
  return base * (0.24 + 1.02 * cf_diffuse(normal, light)) + 135 * cf_gloss(normal, light, 5);
}

// Turned metal gleams along the light's direction.
double turned(cc_Vec radial, cc_Vec light, double radius, std::uint32_t seed)
{
  double const along = dot(radial, cc_Vec{light.x, light.y}.unit());
  return 74 * cf_power(along, 3) + 74 * cf_power(-along, 3) + 9 * cf_noise(radius * 0.9, 0, seed);
}

enum class Damage { None, Notch, Crack };

Part washer(double outer, double inner, std::uint32_t seed, Damage damage)
{
  return {outer, [=](double u, double v, cc_Vec light) {
            double const r = cc_Vec{u, v}.length();
            cc_Vec const radial = cc_Vec{u, v}.unit();
            constexpr double bevel = 4;
            double const rim = std::clamp((r - outer + bevel) / bevel, 0.0, 1.0);
            double const lip = std::clamp((inner + bevel - r) / bevel, 0.0, 1.0);
            double const slope = 0.9 * (rim * rim - lip * lip);
            cc_Vec const normal = cc_Vec{radial.x * slope, radial.y * slope, 1}.unit();
            Look look{std::max(r - outer, inner - r), steel(normal, light, 142) + turned(radial, light, r, seed)};
            if (damage == Damage::Notch)
              look.distance = std::max(look.distance, 9 - cc_Vec{u - outer, v - 3}.length());
            if (damage == Damage::Crack) {
              double const wander = 3 * cf_noise(u * 0.2, 0, seed + 5);
              look.distance = std::max(look.distance, u > 0 ? 1.3 - std::fabs(v - wander) : -1e9);
            }
            return look;
          }};
}

Part nut(double flat, std::uint32_t seed)
{
  return {flat * 1.16, [=](double u, double v, cc_Vec light) {
            double const r = cc_Vec{u, v}.length();
            cc_Vec const radial = cc_Vec{u, v}.unit();
            double const hole = flat * 0.52;
            double const edge = cf_hexDistance(u, v, flat);
            // The corners are turned down; inside the hole the first threads show.
            double slope = 0.75 * cf_step(flat * 0.95, flat * 1.02, r) + 0.5 * cf_step(-3, 0, edge);
            slope -= 1.1 * cf_step(hole + 4, hole, r);
            cc_Vec const normal = cc_Vec{radial.x * slope, radial.y * slope, 1}.unit();
            double const top = steel(normal, light, 128) + 0.55 * turned(radial, light, r, seed);
            if (r > hole)
              return Look{edge, cf_mix(top, 34, cf_cover(r - hole))};
            cc_Vec const wall{-radial.x, -radial.y, 0.35};
            double const thread = 0.75 + 0.25 * cf_cosine((hole - r) / 3.2);
            double const depth = cf_step(hole * 0.68, hole, r);
            return Look{edge, cf_mix(34, (30 + 105 * cf_diffuse(wall.unit(), light)) * thread, depth)};
          }};
}

Part bolt(double length, double radius, std::uint32_t seed)
{
  double const headLength = radius * 1.5, headRadius = radius * 1.95;
  double const start = -length / 2, neck = start + headLength, threadStart = neck + (length - headLength) * 0.3;
  return {length / 2 + 4, [=](double u, double v, cc_Vec light) {
            double const end = length / 2;
            if (u < neck) {
              // A hexagon seen from the side: a broad face and two narrow ones, with the outer corners turned off.
              double const across = v / headRadius;
              double const tilt = across < -0.5 ? -0.8 : across > 0.5 ? 0.8 : 0.0;
              double const chamfer = cf_step(start + 5, start, u);
              cc_Vec const normal = cc_Vec{-0.8 * chamfer, tilt, 1}.unit();
              double const crease = std::min(std::fabs(across - 0.5), std::fabs(across + 0.5)) * headRadius;
              double const box = cf_boxDistance(u - (start + neck) / 2, v, headLength / 2, headRadius, 3.5);
              return Look{box, steel(normal, light, 132) + 30 * cf_step(1.6, 0, crease) + 4 * cf_noise(u / 7, v / 2, seed)};
            }
            double r = radius, ridge = 0;
            if (u > threadStart) {
              constexpr double pitch = 5.5;
              // One side of a screw thread lies half a turn ahead of the other.
              double const phase = u / pitch + v / radius * 0.25;
              ridge = cf_sine(phase);
              r = radius - 1.2 + 1.2 * cf_cosine(phase);
            }
            r -= 3.5 * cf_step(end - 7, end, u);
            double const across = std::clamp(v / r, -0.999, 0.999);
            cc_Vec const normal = cc_Vec{0.75 * ridge, across, std::sqrt(1 - across * across)}.unit();
            double const shade = 1 - 0.5 * cf_step(neck + 7, neck, u);
            double const value = steel(normal, light, 138) * shade + 3 * cf_noise(u / 12, v * 0.7, seed);
            return Look{std::max(std::fabs(v) - r, u - end), value};
          }};
}

Part seal(double radius, double thickness)
{
  return {radius + thickness, [=](double u, double v, cc_Vec light) {
            cc_Vec const radial = cc_Vec{u, v}.unit();
            double const out = (cc_Vec{u, v}.length() - radius) / thickness;
            double const slope = std::clamp(out, -0.999, 0.999);
            cc_Vec const normal{radial.x * slope, radial.y * slope, std::sqrt(1 - slope * slope)};
            return Look{(std::fabs(out) - 1) * thickness,
                        14 + 34 * cf_diffuse(normal, light) + 90 * cf_gloss(normal, light, 5)};
          }};
}

Part bracket(double halfLength, double halfWidth, std::uint32_t seed)
{
  return {cc_Vec{halfLength, halfWidth}.length() - 6, [=](double u, double v, cc_Vec light) {
            auto const outline = [=](double a, double b) {
              double const hole = cc_Vec{std::fabs(a) - halfLength + 22, b}.length() - 10.5;
              double const slot = cf_boxDistance(a, b, 20, 7, 7);
              return std::max(cf_boxDistance(a, b, halfLength, halfWidth, 14), std::max(-hole, -slot));
            };
            double const distance = outline(u, v), rim = cf_step(-4, -0.5, distance);
            cc_Vec const normal = (cf_facing(outline, u, v) * (0.9 * rim) + cc_Vec{0, 0, 1}).unit();
            double const brushed = 8 * cf_noise(u / 60, v * 1.1, seed) + 10 * cf_noise(u / 90, v / 20, seed + 1);
            return Look{distance, steel(normal, light, 168) + brushed};
          }};
}

double belt(double x, double y)
{
  double const weave = 3.2 * cf_sine(x / 7 + y / 14) * cf_sine(x / 14 - y / 5);
  double const streaks = 5 * cf_noise(x / 420, y / 2.6, 11) + 4 * cf_noise(x / 900, y / 21, 12);
  double const stains = 13 * cf_noise(x / 170, y / 130, 13, 3);
  double value = 84 + weave + streaks + stains;
  // The splice where the belt's ends meet.
  double const splice = (x - 905) + 0.22 * (y - 480);
  value -= 26 * cf_step(2.4, 0.6, std::fabs(splice));
  value += 12 * cf_step(4, 2, std::fabs(splice - 4));
  return value;
}

double rail(double x, double fromEdge)  // fromEdge: 0 at the image's edge, railHeight at the belt
{
  double const slot = cf_step(4, 0, std::fabs(fromEdge - 30) - 6);
  double value = 150 + 24 * cf_sine(fromEdge / 90) + 5 * cf_noise(x / 300, fromEdge * 0.9, 21);
  value += 45 * cf_step(5, 0, std::fabs(fromEdge - railHeight + 5));
  value = cf_mix(value, 38, slot);
  double const pitch = 320, u = x - 160 - pitch * std::floor((x - 160) / pitch + 0.5);
  double const screw = cc_Vec{u, fromEdge - 30}.length();
  double const socket = cf_hexDistance(u, fromEdge - 30, 5.5);
  value = cf_mix(value, 168 - 3 * screw, cf_cover(screw - 13));
  return cf_mix(value, 40, cf_cover(socket));
}

void paintBackground(cc_Plane<double>& plane)
{
  for (long y = 0; y < height; ++y)
    for (long x = 0; x < width; ++x) {
      double const px = static_cast<double>(x), py = static_cast<double>(y);
      double const fromEdge = std::min(py, height - 1 - py);
      double const shadow = 1 - 0.6 * cf_step(26, 0, fromEdge - railHeight) * (py < height / 2.0 ? 1 : 0.35);
      plane.at(x, y) = fromEdge > railHeight ? belt(px, py) * shadow : rail(px, fromEdge);
    }
}

struct Place {
  double x, y, turns;
};

// Calls body(x, y, u, v) for the pels around a place; (u, v) are coordinates of a part that stands there.
template <class Body> void around(Place place, double reach, Body&& body)
{
  double const c = cf_cosine(place.turns), s = cf_sine(place.turns);
  long const left = std::max(0l, static_cast<long>(place.x - reach)), top = std::max(0l, static_cast<long>(place.y - reach));
  long const right = std::min(width - 1, static_cast<long>(place.x + reach) + 1);
  long const bottom = std::min(height - 1, static_cast<long>(place.y + reach) + 1);
  for (long y = top; y <= bottom; ++y)
    for (long x = left; x <= right; ++x) {
      double const dx = static_cast<double>(x) - place.x, dy = static_cast<double>(y) - place.y;
      body(x, y, c * dx + s * dy, c * dy - s * dx);
    }
}

void paint(cc_Plane<double>& plane, Part const& part, Place place)
{
  cc_Vec const sun = cf_light();
  double const c = cf_cosine(place.turns), s = cf_sine(place.turns);
  cc_Vec const light{c * sun.x + s * sun.y, c * sun.y - s * sun.x, sun.z};

  Place const below{place.x + 7, place.y + 9, place.turns};
  around(below, part.reach + 16, [&](long x, long y, double u, double v) {
    plane.at(x, y) *= 1 - 0.62 * cf_step(12, -7, part.look(u, v, light).distance);
  });
  around(place, part.reach + 2, [&](long x, long y, double u, double v) {
    Look const look = part.look(u, v, light);
    plane.at(x, y) = cf_mix(plane.at(x, y), look.value, cf_cover(look.distance));
  });
}

std::vector<Part> parts()
{
  std::vector<Part> all;
  std::uint32_t seed = 100;
  for (double length : {196.0, 172.0, 196.0, 150.0, 172.0, 196.0})
    all.push_back(bolt(length, 15, seed += 10));
  for (int i = 0; i < 3; ++i)
    all.push_back(bracket(86, 30, seed += 10));
  for (Damage damage : {Damage::None, Damage::Notch, Damage::None, Damage::None, Damage::Crack})
    all.push_back(washer(56, 29, seed += 10, damage));
  for (double radius : {46.0, 46.0, 34.0})
    all.push_back(seal(radius, 7));
  for (double flat : {40.0, 40.0, 34.0, 40.0, 34.0, 34.0})
    all.push_back(nut(flat, seed += 10));
  for (int i = 0; i < 6; ++i)
    all.push_back(washer(36, 17, seed += 10, Damage::None));
  return all;
}

// Larger parts come first, so that smaller ones find the gaps. A part that finds none is left out.
void scatter(cc_Plane<double>& plane, cc_Random& random)
{
  struct Taken {
    Place place;
    double reach;
  };
  std::vector<Taken> taken;
  constexpr int attempts = 4000;
  constexpr double gap = 9;
  for (Part const& part : parts())
    for (int i = 0; i < attempts; ++i) {
      double const margin = part.reach + 14;
      Place const place{random.between(margin, width - margin),
                        random.between(railHeight + margin, height - railHeight - margin), random.uniform()};
      bool const clear = std::all_of(taken.begin(), taken.end(), [&](Taken const& t) {
        return cc_Vec{t.place.x - place.x, t.place.y - place.y}.length() > t.reach + part.reach + gap;
      });
      if (!clear)
        continue;
      taken.push_back({place, part.reach});
      paint(plane, part, place);
      break;
    }
}

}  // namespace

ccPelBuffer<unsigned char> cf_conveyorSample()
{
  cc_Random random(20);
  cc_Plane<double> plane(width, height);
  paintBackground(plane);
  scatter(plane, random);
  for (long y = 0; y < height; ++y)
    for (long x = 0; x < width; ++x) {
      double const dx = static_cast<double>(x) / width - 0.42, dy = static_cast<double>(y) / height - 0.4;
      plane.at(x, y) *= 1.13 - 0.85 * (dx * dx + dy * dy);
    }
  cf_soften(plane, 0.34);
  return cf_finish(plane, 0.42, random);
}
