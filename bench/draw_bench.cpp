// Scenarios S5a to S5e, figures on a surface of 1920 x 1080 pels of 32 bits: through a tablet at the identity, through one that
// turns and magnifies, through the bare scope, and by the bare painter. Checks and limits are those of the peers; broken lines
// have this library's dots of 3 pels, so their reference is made here. The table at the end tells nanoseconds a figure.
#include "backend/scope/win32_scope.h"
#include "canvas/graphic_props.h"
#include "canvas/tablet.h"
#include "geometry/ellipse.h"
#include "geometry/lines.h"
#include "geometry/polygon.h"
#include "platform/app.h"
#include "platform/paint.h"
#include "platform/surface.h"
#include "platform/window.h"

#include "common/scenes.hpp"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using scene::H;
using scene::W;

class Scope : public ccWin32UIScope {
public:
  explicit Scope(HWND window) : ccWin32UIScope(nullptr, ccPair<long>(), false, nullptr)
  {
    if (create(window, ccPair<long>(W, H), 32) != 0) {
      std::fprintf(stderr, "S5: no scope\n");
      std::exit(1);
    }
    lockScreenUpdatesPush(true);
    optimizeDrawing(true);
  }
  void black()
  {
    set(ccColor::blackColor());
    stopDrawPhase();
  }
  std::string check(std::vector<scene::Span> const& reference)
  {
    stopDrawPhase();
    if (surface().lock() != 0)
      return "BAD lock";
    auto const verdict = scene::check_cover(surface().description().surface(),
                                            static_cast<std::size_t>(surface().description().pitch()), reference);
    static_cast<void>(surface().unlock());
    return verdict;
  }
};

// A memory surface and its painter.
struct Canvas {
  plat::Ptr<plat::DisplayDevice> device;
  plat::Ptr<plat::Surface> surface;
  HDC dc = nullptr;
  plat::Painter* painter = nullptr;

  explicit Canvas(HWND window)
  {
    plat::SurfaceDesc desc;
    desc.valid = 1 | 2 | 4;  // caps, height, width; the format is the screen's
    desc.width = W;
    desc.height = H;
    desc.caps = 0x40;
    if (plat::openDevice(window, device) != 0 || device->createSurface(desc, surface) != 0) {
      std::fprintf(stderr, "S5: no surface\n");
      std::exit(1);
    }
    open();
  }
  ~Canvas() { close(); }
  void open()
  {
    if (surface->getDC(dc) == 0)
      painter = plat::painter(dc);
  }
  void close() { static_cast<void>(surface->releaseDC(dc)); }
  void black() { painter->fillRect({0, 0, W, H}, 0); }
  std::string check(std::vector<scene::Span> const& reference)
  {
    close();
    plat::SurfaceDesc locked;
    std::string verdict = "BAD lock";
    if (surface->lock(nullptr, locked, 0) == 0) {
      verdict = scene::check_cover(locked.pels, static_cast<std::size_t>(locked.pitch), reference);
      static_cast<void>(surface->unlock(nullptr));
    }
    open();
    return verdict;
  }
};

ccColor colorOf(std::size_t i)
{
  bench::u32 const c = scene::prim_colour(i);
  return ccColor(static_cast<unsigned char>(c >> 16), static_cast<unsigned char>(c >> 8), static_cast<unsigned char>(c));
}

COLORREF bgrOf(std::size_t i)
{
  bench::u32 const c = scene::prim_colour(i);
  return (c >> 16 & 255) | (c & 0xFF00) | (c & 255) << 16;
}

ccPoint pointOf(int x, int y) { return ccPoint(x, y); }
plat::Point pelOf(int x, int y) { return {x, y}; }

// Dots of 3 pels, on first; the last pel is painted besides.
std::vector<scene::Span> dots(std::vector<scene::Line> const& lines)
{
  std::vector<scene::Span> spans;
  for (scene::Line const& l : lines) {
    bool const across = l.y0 == l.y1;
    bench::u32 const colour = scene::prim_colour(static_cast<std::size_t>(&l - lines.data()));
    for (int k = 0; k < 100; ++k)
      if (k % 6 < 3 || k == 99)
        spans.push_back({static_cast<bench::u32>((l.y0 + (across ? 0 : k)) * W + l.x0 + (across ? k : 0)), 1, colour});
  }
  return spans;
}

// One scenario as figures of the library: in the coordinates of a tablet, and as the painter takes it.
struct Scenario {
  std::string name;
  std::size_t count;
  std::vector<scene::Span> reference;
  std::function<void(plat::Painter&, std::size_t)> paint;
  // Hands figure i, brought to tablet coordinates, to draw(figure, props).
  std::vector<ccLineSeg> lines;
  std::vector<ccEllipse> ellipses;
  std::vector<ccPolygon> polygons;
  std::vector<ccGraphicProps> pens;

  Scenario mapped(ccXform<2> const& map) const
  {
    Scenario out = *this;
    for (ccLineSeg& s : out.lines)
      s = s.map(map);
    for (ccEllipse& e : out.ellipses)
      e = e.map(map);
    for (ccPolygon& p : out.polygons)
      p = p.map(map);
    return out;
  }
  template <class Draw> void drawAll(Draw&& draw) const
  {
    for (std::size_t i = 0; i < count; ++i) {
      ccGraphicProps const& pen = pens[i / 100 % 16];  // as colours change
      if (!lines.empty())
        draw(lines[i], pen);
      else if (!ellipses.empty())
        draw(ellipses[i], pen);
      else
        draw(polygons[i], pen);
    }
  }
};

std::vector<ccGraphicProps> pens(long width, cePenStyle style)
{
  std::vector<ccGraphicProps> all;
  for (std::size_t i = 0; i < 16; ++i)
    all.emplace_back(colorOf(i * 100), width, style, false);
  return all;
}

Scenario linesOf(std::string const& name, std::vector<scene::Line> const& lines, std::vector<scene::Span> reference,
                 long width, cePenStyle style)
{
  Scenario s;
  s.name = name;
  s.count = lines.size();
  s.reference = std::move(reference);
  s.pens = pens(width, style);
  for (scene::Line const& l : lines)
    s.lines.emplace_back(pointOf(l.x0, l.y0), pointOf(l.x1, l.y1));
  s.paint = [&lines, width, style](plat::Painter& p, std::size_t i) {
    plat::Pen pen;
    pen.color = bgrOf(i);
    pen.width = static_cast<plat::i32>(width);
    pen.style = static_cast<plat::u8>(style);
    p.pen(pen);
    scene::Line const& l = lines[i];
    plat::Point const ends[] = {pelOf(l.x0, l.y0), pelOf(l.x1, l.y1)};
    p.polyline(ends);
    p.moveTo(ends[1]);
    if (width < 2)
      p.lineTo(pelOf(l.x1 + 1, l.y1 + 1));
  };
  return s;
}

std::vector<Scenario> scenarios(scene::Vectors const& v)
{
  std::vector<Scenario> all;
  all.push_back(linesOf("S5a_lines", v.line, scene::ref_lines(v.line), 1, ceSolidPen));
  all.push_back(linesOf("S5b_wide5", v.wide, scene::ref_wide(v.wide), 5, ceSolidPen));
  Scenario ellipses;
  ellipses.name = "S5c_ellipses";
  ellipses.count = v.ell.size();
  ellipses.reference = scene::ref_ell(v.ell);
  ellipses.pens = pens(1, ceSolidPen);
  // The scope's box takes its lower right edge off by a pel, so half a pel more makes the circle of the reference.
  for (scene::Ell const& e : v.ell)
    ellipses.ellipses.emplace_back(ccPoint(e.cx + 0.5, e.cy + 0.5), e.rx + 0.5, e.ry + 0.5, ccRadian(0));
  ellipses.paint = [&v](plat::Painter& p, std::size_t i) {
    plat::Pen pen;
    pen.color = bgrOf(i);
    p.pen(pen);
    scene::Ell const& e = v.ell[i];
    p.ellipse({e.cx - e.rx, e.cy - e.ry, e.cx + e.rx + 1, e.cy + e.ry + 1});
  };
  all.push_back(std::move(ellipses));
  Scenario polygons;
  polygons.name = "S5d_polygons";
  polygons.count = v.poly.size();
  polygons.reference = scene::ref_poly(v.poly);
  polygons.pens = pens(1, ceSolidPen);
  for (scene::Poly const& p : v.poly) {
    std::vector<ccVector<2>> points;
    for (int k = 0; k < 12; ++k)
      points.emplace_back(p.x[k], p.y[k]);
    polygons.polygons.emplace_back(std::move(points), 1);
  }
  polygons.paint = [&v](plat::Painter& p, std::size_t i) {
    plat::Pen pen;
    pen.color = bgrOf(i);
    p.pen(pen);
    p.brush(pen.color);
    plat::Point points[12];
    for (int k = 0; k < 12; ++k)
      points[k] = pelOf(v.poly[i].x[k], v.poly[i].y[k]);
    p.polygon(points, plat::FillRule::alternate);
    p.noBrush();
  };
  all.push_back(std::move(polygons));
  all.push_back(linesOf("S5e_dashed", v.dash, dots(v.dash), 1, ceDotPen));
  return all;
}

constexpr int kRoads = 4;
char const* const roadNames[kRoads] = {"krsdisp tablet", "krsdisp tablet turned and magnified", "krsdisp scope",
                                       "krsdisp painter"};

}  // namespace

int main(int count, char** values)
{
  bench::init(count, values);
  if (!bench::selected("S5"))
    return 0;
  plat::InitOptions options;
  options.video = plat::InitOptions::headless;
  options.screen = {2048, 1536};
  plat::init(options);
  plat::WindowDesc desc;
  desc.rect = {0, 0, W, H};
  HWND const window = plat::platform().windows.create(desc);

  scene::Vectors const vectors;
  ccXform<2> const map(ccMatrix<2>(ccRadian(0.5), 1.5), ccVector<2>(300, -200));
  std::map<std::string, double> table[kRoads];
  std::vector<Scenario> const all = scenarios(vectors);
  for (Scenario const& s : all) {
    if (!bench::selected(s.name))
      continue;
    Scope scope(window);
    Canvas canvas(window);
    ccUITablet plain(&scope, nullptr), turned(&scope, nullptr);
    turned.baseMap(map);
    Scenario const unmapped = s.mapped(map.inverse());
    std::function<void()> const works[kRoads] = {
        [&] {
          s.drawAll([&](auto const& figure, ccGraphicProps const& pen) {
            plain.draw(figure, pen, ccUITablet::imageLayer);
          });
        },
        [&] {
          unmapped.drawAll([&](auto const& figure, ccGraphicProps const& pen) {
            turned.draw(figure, pen, ccUITablet::imageLayer);
          });
        },
        [&] { s.drawAll([&](auto const& figure, ccGraphicProps const& pen) { scope.draw(figure, pen); }); },
        [&] {
          for (std::size_t i = 0; i < s.count; ++i)
            s.paint(*canvas.painter, i);
        }};
    scene::Replay limit(s.reference);
    for (int road = 0; road < kRoads; ++road) {
      scope.black();
      canvas.black();
      bench::run(
          s.name, roadNames[road], static_cast<double>(s.count), bench::Unit::Ops, [&](std::size_t) { works[road](); },
          std::ref(limit), [&] { return road == 3 ? canvas.check(s.reference) : scope.check(s.reference); });
    }
    // The roads in turn, each by its best time, so that what else runs on the machine falls out of their differences.
    for (int round = 0; round < 40; ++round)
      for (int road = 0; road < kRoads; ++road) {
        for (int i = 0; i < 3; ++i)
          works[road]();  // brings its surface back to the caches
        double const start = bench::now_ms();
        works[road]();
        double const ns = (bench::now_ms() - start) * 1e6 / static_cast<double>(s.count);
        double& best = table[road][s.name];
        best = round == 0 ? ns : std::min(best, ns);
      }
  }
  std::fprintf(stderr, "%-14s %10s %10s %10s %10s   ns a figure\n", "", "tablet", "turned", "scope", "painter");
  for (auto const& [name, ns] : table[0])
    std::fprintf(stderr, "%-14s %10.0f %10.0f %10.0f %10.0f\n", name.c_str(), ns, table[1][name], table[2][name],
                 table[3][name]);
  plat::platform().windows.destroy(window);
}
