// Screw caps of five colours in a tray, seen from above: one place is empty, one cap lies upside down, one is dented and one
// has the wrong colour for its row.
#include "apps/make_samples/sample_kit.h"
#include "apps/make_samples/samples.h"

namespace {

// The scene is laid out 960 x 720 and seen at 720 x 540.
constexpr double sceneWidth = 960, sceneHeight = 720, scenePerPel = 4.0 / 3;
constexpr long width = 720, height = 540;
constexpr double pitch = 172, radius = 68, pocket = 78;
constexpr long columns = 5, rows = 4;

enum class State { Whole, Missing, UpsideDown, Dented };

struct Cap {
  cc_Vec centre;
  cc_Vec colour;
  State state = State::Whole;
  double turns = 0;
};

cc_Vec lit(cc_Vec colour, cc_Vec normal, double glossiness)
{
  cc_Vec const sun = cf_light();
  double const gloss = 150 * glossiness * cf_gloss(normal, sun, 5);
  return colour * (0.32 + 0.86 * cf_diffuse(normal, sun)) + cc_Vec{gloss, gloss, gloss};
}

cc_Vec tray(double x, double y)
{
  double const grain = 2.5 * cf_noise(x / 3, y / 3, 41) + 3 * cf_noise(x / 120, y / 120, 42);
  cc_Vec const base{66 + grain, 74 + grain, 86 + grain};
  auto const outline = [](double a, double b) {
    return cf_boxDistance(a - sceneWidth / 2, b - sceneHeight / 2, 452, 336, 34);
  };
  double const margin = outline(x, y), lip = cf_step(9, 3, std::fabs(margin));
  double const side = 1.4 * dot(cf_facing(outline, x, y), cf_light());
  cc_Vec const outside = cc_Vec{158, 154, 146} * (1 + 0.05 * cf_noise(x / 6, y / 40, 43, 3));
  cc_Vec const seen = cf_mix(outside * (1 - 0.45 * cf_step(26, 4, margin)), base, cf_cover(margin / scenePerPel));
  return seen + cc_Vec{34, 36, 40} * (lip * side);
}

cc_Vec emptyPocket(double dx, double dy, cc_Vec around)
{
  double const r = cc_Vec{dx, dy}.length();
  cc_Vec const radial = cc_Vec{dx, dy}.unit();
  double const wall = cf_step(pocket - 13, pocket - 3, r) * cf_step(pocket + 1, pocket - 2, r);
  cc_Vec const normal = cc_Vec{-radial.x * 1.3 * wall, -radial.y * 1.3 * wall, 1}.unit();
  // The rim shades the floor on the light's side.
  double const shade = cf_step(pocket + 6, pocket - 34, cc_Vec{dx - 15, dy - 18}.length());
  cc_Vec const floor = lit({58, 65, 77}, normal, 0.15) * (0.55 + 0.45 * shade);
  return cf_mix(around, floor, cf_cover((r - pocket) / scenePerPel));
}

struct Surface {
  double distance;
  cc_Vec colour;
};

Surface wholeCap(Cap const& cap, double dx, double dy)
{
  double const r = cc_Vec{dx, dy}.length();
  cc_Vec const radial = cc_Vec{dx, dy}.unit();
  double const turn = cf_turns(dx, dy) + cap.turns;
  double const knurl = cf_cosine(turn * 60);
  double const outline = r - radius - 1.1 * knurl;

  // Outwards: a dished top, a raised ring, a round shoulder, the knurled skirt.
  double slope = -0.10 * cf_step(0, 40, r) * cf_step(46, 41, r);
  slope -= 0.85 * cf_step(40, 43, r) * cf_step(47, 44, r);
  slope += 0.55 * cf_step(47, 49, r) * cf_step(53, 50, r);
  slope += 1.5 * cf_step(53, radius, r);
  cc_Vec tangent{-radial.y, radial.x};
  double const ripple = 0.75 * cf_sine(turn * 60) * cf_step(57, 62, r);
  cc_Vec normal = radial * slope + tangent * ripple + cc_Vec{0, 0, 1};
  // A cross is moulded into the top.
  double const c = cf_cosine(cap.turns), s = cf_sine(cap.turns);
  double const u = c * dx + s * dy, v = c * dy - s * dx;
  double const bars = std::min(cf_boxDistance(u, v, 20, 4, 3), cf_boxDistance(u, v, 4, 20, 3));
  double const emboss = cf_step(-2.5, 0, bars) * cf_step(2.5, 0, bars);
  cc_Vec const away = (std::fabs(u) > std::fabs(v) ? cc_Vec{0, v > 0 ? 1.0 : -1.0} : cc_Vec{u > 0 ? 1.0 : -1.0, 0});
  normal = normal + cc_Vec{c * away.x - s * away.y, s * away.x + c * away.y} * (0.8 * emboss);

  double dark = 0;
  if (cap.state == State::Dented) {
    cc_Vec const from{dx - 30, dy + 26};
    double const depth = cf_step(30, 6, from.length() * (1 + 0.3 * cf_noise(dx / 14, dy / 14, 44)));
    normal = normal - from * (0.075 * depth);
    dark = 0.25 * depth;
  }
  return {outline, lit(cap.colour, normal.unit(), 1) * (1 - dark)};
}

// The open side: a bright wall, threads, and a liner at the bottom.
Surface openCap(Cap const& cap, double dx, double dy)
{
  double const r = cc_Vec{dx, dy}.length();
  cc_Vec const radial = cc_Vec{dx, dy}.unit();
  double const knurl = cf_cosine((cf_turns(dx, dy) + cap.turns) * 60);
  double const wall = radius - 9;
  cc_Vec normal{0, 0, 1};
  cc_Vec colour = cap.colour;
  if (r > wall) {
    double const across = (r - wall) / 9 * 2 - 1;
    normal = (radial * (0.9 * across) + cc_Vec{0, 0, 1}).unit();
  } else if (r > wall - 18) {
    double const thread = cf_sine((wall - r) / 6 + cf_turns(dx, dy));
    normal = (radial * (-0.9 + 0.5 * thread) + cc_Vec{0, 0, 0.8}).unit();
    colour = colour * (0.75 + 0.12 * thread);
  } else {
    double const shade = cf_step(wall - 8, wall - 52, cc_Vec{dx - 13, dy - 16}.length());
    colour = cc_Vec{214, 212, 204} * (0.62 + 0.34 * shade) * (1 - 0.12 * cf_step(4, 0, std::fabs(r - 30)));
    return {r - radius - 1.1 * knurl, lit(colour, normal, 0.1)};
  }
  return {r - radius - 1.1 * knurl, lit(colour, normal, 0.6)};
}

std::vector<Cap> caps(cc_Random& random)
{
  constexpr cc_Vec rowColours[rows] = {{196, 40, 38}, {238, 178, 34}, {42, 128, 70}, {36, 84, 172}};
  std::vector<Cap> all;
  for (long row = 0; row < rows; ++row)
    for (long column = 0; column < columns; ++column) {
      Cap cap;
      cap.centre = {sceneWidth / 2 + (static_cast<double>(column) - 2) * pitch + random.between(-3, 3),
                    sceneHeight / 2 + (static_cast<double>(row) - 1.5) * (pitch - 12) + random.between(-3, 3)};
      cap.colour = rowColours[row] * random.between(0.97, 1.03);
      cap.turns = random.uniform();
      if (row == 0 && column == 3)
        cap.state = State::Dented;
      if (row == 1 && column == 1)
        cap.colour = {232, 232, 226};
      if (row == 2 && column == 4)
        cap.state = State::Missing;
      if (row == 3 && column == 2)
        cap.state = State::UpsideDown;
      all.push_back(cap);
    }
  return all;
}

// Pockets lie on the regular grid; caps lie a little off their middles.
void paint(cc_Plane<cc_Vec>& plane, Cap const& cap, cc_Vec middle)
{
  constexpr double reach = pocket + 24;
  long const left = static_cast<long>((middle.x - reach) / scenePerPel);
  long const top = static_cast<long>((middle.y - reach) / scenePerPel);
  long const size = static_cast<long>(2 * reach / scenePerPel) + 1;
  for (long y = std::max(top, 0l); y < std::min(top + size, height); ++y)
    for (long x = std::max(left, 0l); x < std::min(left + size, width); ++x) {
      double const px = static_cast<double>(x) * scenePerPel, py = static_cast<double>(y) * scenePerPel;
      cc_Vec& pel = plane.at(x, y);
      pel = emptyPocket(px - middle.x, py - middle.y, pel);
      if (cap.state == State::Missing)
        continue;
      double const dx = px - cap.centre.x, dy = py - cap.centre.y;
      pel = pel * (1 - 0.6 * cf_step(9, -6, cc_Vec{dx - 7, dy - 8}.length() - radius));
      Surface const seen = cap.state == State::UpsideDown ? openCap(cap, dx, dy) : wholeCap(cap, dx, dy);
      pel = cf_mix(pel, seen.colour, cf_cover(seen.distance / scenePerPel));
    }
}

unsigned char channel(double value)
{
  return static_cast<unsigned char>(std::clamp(std::floor(value + 0.5), 0.0, 255.0));
}

}  // namespace

ccPelBuffer<ccPackedRGB32Pel> cf_capsSample()
{
  cc_Random random(5);
  cc_Plane<cc_Vec> plane(width, height);
  for (long y = 0; y < height; ++y)
    for (long x = 0; x < width; ++x)
      plane.at(x, y) = tray(static_cast<double>(x) * scenePerPel, static_cast<double>(y) * scenePerPel);
  std::vector<Cap> const all = caps(random);
  for (std::size_t i = 0; i < all.size(); ++i) {
    double const column = static_cast<double>(i % columns), row = static_cast<double>(i / columns);
    paint(plane, all[i], {sceneWidth / 2 + (column - 2) * pitch, sceneHeight / 2 + (row - 1.5) * (pitch - 12)});
  }
  cf_soften(plane, 0.3);

  ccPelBuffer<ccPackedRGB32Pel> pels(width, height);
  for (long y = 0; y < height; ++y)
    for (long x = 0; x < width; ++x) {
      double const dx = static_cast<double>(x) / width - 0.42, dy = static_cast<double>(y) / height - 0.38;
      double const fall = 1.05 - 0.5 * (dx * dx + dy * dy), grain = 0.35 * random.normal();
      cc_Vec const pel = plane.at(x, y) * fall;
      *pels.pelAddress(x, y) = ccPackedRGB32Pel(channel(pel.x + grain), channel(pel.y + grain), channel(pel.z + grain));
    }
  return pels;
}
