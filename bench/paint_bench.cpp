// Figures and text, scenarios S5 and S7: by the painter on a surface of 1920 x 1080 pels at 32 bits, and by a scope with its
// drawing optimised. Ratios to the limit of peers/common/ in the same run.
#include "backend/scope/win32_scope.h"
#include "canvas/graphic_props.h"
#include "geometry/lines.h"
#include "geometry/polygon.h"
#include "platform/app.h"
#include "platform/objects.h"
#include "platform/paint.h"
#include "platform/surface.h"
#include "platform/testing.h"
#include "platform/window.h"

#include "common/scenes.hpp"

#include <functional>
#include <string>
#include <vector>

namespace {

using scene::H;
using scene::W;

using Spans = std::vector<scene::Span>;

COLORREF colorOf(bench::u32 word) { return (word & 0xFFu) << 16 | (word & 0xFF00u) | (word >> 16 & 0xFFu); }

// As scene::ref_dash, of the dot pen: 3 on, 3 off.
Spans dots(std::vector<scene::Line> const& lines)
{
  Spans spans;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    scene::Line const& l = lines[i];
    bench::u32 const color = scene::prim_colour(i);
    for (int k = 0; k < 100; k += 6) {
      int const length = std::min(3, 100 - k);
      if (l.y0 == l.y1)
        spans.push_back({bench::u32(l.y0 * W + l.x0 + k), bench::u32(length), color});
      else
        for (int j = 0; j < length; ++j)
          spans.push_back({bench::u32((l.y0 + k + j) * W + l.x0), 1, color});
    }
  }
  return spans;
}

// A surface with its painter out.
class Sheet {
public:
  Sheet()
  {
    plat::SurfaceDesc desc;
    desc.valid = 0x1007;
    desc.caps = 0x840;
    desc.width = W;
    desc.height = H;
    desc.format.bitCount = 32;
    if (plat::openDevice(nullptr, device_) != 0 || device_->createSurface(desc, surface_) != 0 ||
        surface_->lock(nullptr, desc, 1) != 0)
      std::abort();
    pels_ = static_cast<bench::u8*>(desc.pels);
    pitch_ = static_cast<std::size_t>(desc.pitch);
    if (surface_->unlock(nullptr) != 0 || surface_->getDC(dc_) != 0)
      std::abort();
  }
  ~Sheet() { static_cast<void>(surface_->releaseDC(dc_)); }
  Sheet(Sheet const&) = delete;
  Sheet& operator=(Sheet const&) = delete;

  plat::Painter& painter() { return *plat::painter(dc_); }
  bench::u8* pels() const { return pels_; }
  std::size_t pitch() const { return pitch_; }
  void clear() { std::memset(pels_, 0, pitch_ * H); }

private:
  plat::Ptr<plat::DisplayDevice> device_;
  plat::Ptr<plat::Surface> surface_;
  HDC dc_ = nullptr;
  bench::u8* pels_ = nullptr;
  std::size_t pitch_ = 0;
};

// Calls color(c) where the colour changes and figure(i) for each.
template <class Color, class Figure> void each(std::size_t count, Color&& color, Figure&& figure)
{
  bench::u32 last = 0;
  for (std::size_t i = 0; i < count; ++i) {
    bench::u32 const c = scene::prim_colour(i);
    if (c != last)
      color(colorOf(c));
    last = c;
    figure(i);
  }
}

template <class Color, class Figure>
void runPainter(Sheet& sheet, char const* name, char const* peer, std::size_t count, Spans const& reference, Color&& color,
                Figure&& figure)
{
  if (!bench::selected(name))
    return;
  scene::Replay limit(reference);
  sheet.clear();
  bench::run(
      name, peer, static_cast<double>(count), bench::Unit::Ops, [&](std::size_t) { each(count, color, figure); }, limit,
      [&] { return scene::check_cover(sheet.pels(), sheet.pitch(), reference); });
}

void runFigures()
{
  scene::Vectors const all;
  Sheet sheet;
  plat::Painter& painter = sheet.painter();
  auto const pen = [&](int width, int style = 0) {
    return [&painter, width, style](COLORREF c) {
      painter.pen({c, width, static_cast<plat::u8>(style), 0, 0});
    };
  };
  // The end pel of a thin line is the first one of a step onward.
  auto const line = [&](scene::Line const& l) {
    plat::Point const points[3] = {{l.x0, l.y0}, {l.x1, l.y1}, {l.x1 + 1, l.y1 + 1}};
    painter.polyline(points);
  };
  runPainter(sheet, "S5a_lines", "krsdisp painter", all.line.size(), scene::ref_lines(all.line), pen(1),
             [&](std::size_t i) { line(all.line[i]); });
  runPainter(sheet, "S5b_wide5", "krsdisp painter", all.wide.size(), scene::ref_wide(all.wide), pen(5), [&](std::size_t i) {
    scene::Line const& l = all.wide[i];
    plat::Point const points[2] = {{l.x0, l.y0}, {l.x1, l.y1}};
    painter.polyline(points);
  });
  runPainter(sheet, "S5c_ellipses", "krsdisp painter", all.ell.size(), scene::ref_ell(all.ell), pen(1), [&](std::size_t i) {
    scene::Ell const& e = all.ell[i];
    painter.ellipse({e.cx - e.rx, e.cy - e.ry, e.cx + e.rx + 1, e.cy + e.ry + 1});
  });
  painter.noPen();
  runPainter(
      sheet, "S5d_polygons", "krsdisp painter", all.poly.size(), scene::ref_poly(all.poly),
      [&](COLORREF c) { painter.brush(c); },
      [&](std::size_t i) {
        scene::Poly const& p = all.poly[i];
        plat::Point points[12];
        for (std::size_t k = 0; k < 12; ++k)
          points[k] = {p.x[k], p.y[k]};
        painter.polygon(points, plat::FillRule::alternate);
      });
  painter.noBrush();
  runPainter(sheet, "S5e_dashed", "krsdisp painter (dot pen: 3 on 3 off)", all.dash.size(), dots(all.dash), pen(1, 2),
             [&](std::size_t i) {
               scene::Line const& l = all.dash[i];
               bool const across = l.y0 == l.y1;
               plat::Point const points[2] = {{l.x0, l.y0}, {l.x1 + (across ? 1 : 0), l.y1 + (across ? 0 : 1)}};
               painter.polyline(points);
             });
}

// The same through a scope that keeps its phase: what the library's own drawing adds to the painter's.
void runScope()
{
  scene::Vectors const all;
  plat::WindowDesc desc;
  desc.rect = {0, 0, W, H};
  HWND const window = plat::platform().windows.create(desc);
  {
    ccWin32UIScope scope(nullptr, ccPair<long>(), false, nullptr);
    if (scope.create(window, ccPair<long>(W, H), 32) != 0)
      std::abort();
    scope.optimizeDrawing(true);
    auto const run = [&](char const* name, char const* peer, std::size_t count, Spans const& reference,
                         ccGraphicProps props, auto&& figure) {
      if (!bench::selected(name))
        return;
      scene::Replay limit(reference);
      scope.set(ccUIRect(0, 0, W, H), ccColor(0, 0, 0));
      auto const color = [&](COLORREF c) {
        props.penColor(ccColor(static_cast<unsigned char>(c), static_cast<unsigned char>(c >> 8),
                               static_cast<unsigned char>(c >> 16)));
      };
      bench::run(
          name, peer, static_cast<double>(count), bench::Unit::Ops,
          [&](std::size_t) { each(count, color, [&](std::size_t i) { figure(i, props); }); }, limit, [&] {
            ccPelBuffer<ccPackedRGB32Pel> out(W, H);
            scope.getDisplayedImage(out, nullptr, cc_TabletEnums::imageLayer);
            return scene::check_cover(out.pelAddress(0, 0), static_cast<std::size_t>(out.rowStride()) * 4, reference);
          });
    };
    auto const at = [](int x, int y) { return ccPoint(static_cast<double>(x), static_cast<double>(y)); };
    auto const lines = [&](std::vector<scene::Line> const& from) {
      return [&from, &scope, at](std::size_t i, ccGraphicProps const& props) {
        scope.draw(ccLineSeg(at(from[i].x0, from[i].y0), at(from[i].x1, from[i].y1)), props);
      };
    };
    ccColor const none;
    run("S5a_lines", "krsdisp scope", all.line.size(), scene::ref_lines(all.line), {none, 1, ceSolidPen, false},
        lines(all.line));
    run("S5b_wide5", "krsdisp scope", all.wide.size(), scene::ref_wide(all.wide), {none, 5, ceSolidPen, false},
        lines(all.wide));
    run("S5d_polygons", "krsdisp scope (with outline)", all.poly.size(), scene::ref_poly(all.poly),
        {none, 1, ceSolidPen, true}, [&](std::size_t i, ccGraphicProps const& props) {
          std::vector<ccVector<2>> points;
          for (int k = 0; k < 12; ++k)
            points.emplace_back(static_cast<double>(all.poly[i].x[k]), static_cast<double>(all.poly[i].y[k]));
          scope.draw(ccPolygon(std::move(points), 1), props);
        });
    run("S5e_dashed", "krsdisp scope (dot pen: 3 on 3 off)", all.dash.size(), dots(all.dash), {none, 1, ceDotPen, false},
        lines(all.dash));
    scope.optimizeDrawing(false);
    static_cast<void>(scope.destroy());
  }
  plat::platform().windows.destroy(window);
}

void runLabels(bool smooth)
{
  auto const labels = scene::labels();
  bench::MemLimit limit(256, 1000 * 50 * 12 * 4);
  plat::FontDesc desc;
  desc.height = 12;
  desc.smooth = smooth;
  HFONT const font = plat::platform().objects.createFont(desc);
  {
    Sheet sheet;
    sheet.clear();
    plat::Painter& painter = sheet.painter();
    painter.font(font);
    painter.textColors(0xFFFFFF, 0, false);
    plat::i32 const ascent = 12;  // the labels' places lie on the base line
    bench::run(
        "S7_labels", smooth ? "krsdisp painter (smooth)" : "krsdisp painter (one bit)", 1000, bench::Unit::Ops,
        [&](std::size_t) {
          for (scene::Label const& label : labels) {
            plat::Rect place{label.x, label.y - ascent, label.x, label.y - ascent};
            painter.drawText(label.t, place, 0x100);
          }
        },
        std::ref(limit), [&] { return scene::count_lit(sheet.pels(), sheet.pitch()); });
  }
  plat::platform().objects.deleteFont(font);
}

}  // namespace

int main(int count, char** values)
{
  bench::init(count, values);
  plat::InitOptions options;
  options.video = plat::InitOptions::headless;
  options.screen = {2048, 1536};
  plat::init(options);
  if (bench::selected("S5")) {
    runFigures();
    runScope();
  }
  if (bench::selected("S7_labels")) {
    runLabels(false);
    runLabels(true);
  }
}
