#include "platform/portable/raster/stroke.h"

#include "platform/portable/raster/dashes.h"

#include <agg_basics.h>
#include <agg_vcgen_dash.h>
#include <agg_vcgen_stroke.h>

#include <algorithm>
#include <cmath>

namespace plat::portable {

namespace {

// Surfaces end before it. What lies farther off is cut away, the same for every clip.
constexpr double farthestStroke = 65536;
constexpr double widest = 65536;
constexpr unsigned closePoly = static_cast<unsigned>(agg::path_cmd_end_poly) | static_cast<unsigned>(agg::path_flags_close);

struct Box {
  double low, high;
  bool holds(PointF const& p) const { return p.x >= low && p.x <= high && p.y >= low && p.y <= high; }
};

// The part of a segment inside the box, as fractions of it.
bool cutSegment(PointF const& a, PointF const& b, Box const& box, double& t0, double& t1)
{
  t0 = 0;
  t1 = 1;
  double const from[2] = {a.x, a.y}, delta[2] = {b.x - a.x, b.y - a.y};
  for (int i = 0; i < 2; ++i) {
    if (delta[i] == 0) {
      if (from[i] < box.low || from[i] > box.high)
        return false;
      continue;
    }
    double near = (box.low - from[i]) / delta[i], far = (box.high - from[i]) / delta[i];
    if (near > far)
      std::swap(near, far);
    t0 = std::max(t0, near);
    t1 = std::min(t1, far);
  }
  return t0 <= t1;
}

}  // namespace

struct Stroker::Impl {
  agg::vcgen_stroke stroke;
  agg::vcgen_dash dash;
  std::vector<Point> contour;
  std::vector<PointF> run;
  std::vector<PointF> piece;  // between two gaps
  SpanFiller* filler = nullptr;
  Rect extent;
  // The turns that a round cap of a width takes from one end of its base to the other, both left out.
  double capWidth = 0;
  struct Turn {
    double cosine, sine;
  };
  std::vector<Turn> capTurns;
  void capOf(double width);

  void addContour();
  void emit(std::span<PointF const>, bool closed);
  void emitDashed(std::span<PointF const>, bool closed, Style const&, double start);
  void emitRun(std::span<PointF const>, bool closed, Style const&, double start);
  void emitFar(std::span<PointF const>, bool closed, Style const&, Box const&);
  void dot(PointF const&, Style const&);
};

Stroker::Stroker() : impl_(std::make_unique<Impl>()) {}
Stroker::~Stroker() = default;

void Stroker::Impl::addContour()
{
  if (contour.size() > 2) {
    filler->add(contour, SpanFiller::fine);
    for (Point const& p : contour)
      extent = unionOf(extent, {p.x >> 8, p.y >> 8, (p.x >> 8) + 1, (p.y >> 8) + 1});
  }
  contour.clear();
}

namespace {

i32 wholeOf(double v)
{
  i32 const whole = static_cast<i32>(v);
  return whole - (v < whole ? 1 : 0);
}

Point finePoint(double x, double y)
{
  return {wholeOf(x * SpanFiller::fine + 0.5), wholeOf(y * SpanFiller::fine + 0.5)};
}

// Nearly finePoint: false when a coordinate lies so near the border of two fine units that its last places decide.
bool surePoint(double x, double y, Point& out)
{
  constexpr double doubt = 1e-5;
  double const u = x * SpanFiller::fine + 0.5, v = y * SpanFiller::fine + 0.5;
  out = {wholeOf(u), wholeOf(v)};
  double const restU = u - out.x, restV = v - out.y;
  return std::min(restU, restV) > doubt && std::max(restU, restV) < 1 - doubt;
}

}  // namespace

// One run of vertices through the stroke generator.
void Stroker::Impl::emit(std::span<PointF const> points, bool closed)
{
  stroke.remove_all();
  for (std::size_t i = 0; i < points.size(); ++i)
    stroke.add_vertex(points[i].x, points[i].y, i == 0 ? agg::path_cmd_move_to : agg::path_cmd_line_to);
  if (closed)
    stroke.add_vertex(0, 0, closePoly);
  stroke.rewind(0);
  double x = 0, y = 0;
  for (unsigned command; !agg::is_stop(command = stroke.vertex(&x, &y));) {
    if (agg::is_move_to(command))
      addContour();
    if (agg::is_vertex(command))
      contour.push_back(finePoint(x, y));
    else
      addContour();
  }
  addContour();
}

void Stroker::Impl::emitDashed(std::span<PointF const> points, bool closed, Style const& style, double start)
{
  dash.remove_all_dashes();
  DashRuns const& dashes = dashRuns[dashStyle(style.style)];
  for (unsigned i = 0; i < dashes.count; i += 2)
    dash.add_dash(dashes.wide[i] * style.width, dashes.wide[i + 1] * style.width);
  dash.dash_start(start);
  dash.remove_all();
  for (std::size_t i = 0; i < points.size(); ++i)
    dash.add_vertex(points[i].x, points[i].y, i == 0 ? agg::path_cmd_move_to : agg::path_cmd_line_to);
  if (closed)
    dash.add_vertex(0, 0, closePoly);
  dash.rewind(0);
  piece.clear();
  double x = 0, y = 0;
  for (unsigned command; !agg::is_stop(command = dash.vertex(&x, &y));) {
    if (agg::is_move_to(command)) {
      if (piece.size() > 1)
        emit(piece, false);
      piece.clear();
    }
    piece.push_back({x, y});
  }
  if (piece.size() > 1)
    emit(piece, false);
}

void Stroker::Impl::emitRun(std::span<PointF const> points, bool closed, Style const& style, double start)
{
  if (style.style == 0)
    emit(points, closed);
  else
    emitDashed(points, closed, style, start);
}

// Runs of segments that touch the box, each cut to it; dashes go on over what is cut away.
void Stroker::Impl::emitFar(std::span<PointF const> points, bool closed, Style const& style, Box const& box)
{
  double whole = 0;
  DashRuns const& dashes = dashRuns[dashStyle(style.style)];
  for (unsigned i = 0; i < dashes.count; ++i)
    whole += dashes.wide[i] * style.width;
  double along = 0, start = 0;
  std::size_t const segments = closed ? points.size() : points.size() - 1;
  auto const flush = [&] {
    if (run.size() > 1)
      emitRun(run, false, style, whole > 0 ? std::fmod(start, whole) : 0);
    run.clear();
  };
  for (std::size_t i = 0; i < segments; ++i) {
    PointF const &a = points[i], &b = points[(i + 1) % points.size()];
    double const length = std::hypot(b.x - a.x, b.y - a.y);
    double t0 = 0, t1 = 1;
    if (cutSegment(a, b, box, t0, t1)) {
      if (t0 > 0 || run.empty()) {
        flush();
        run.push_back({a.x + (b.x - a.x) * t0, a.y + (b.y - a.y) * t0});
        start = along + length * t0;
      }
      run.push_back({a.x + (b.x - a.x) * t1, a.y + (b.y - a.y) * t1});
      if (t1 < 1)
        flush();
    } else {
      flush();
    }
    along += length;
  }
  flush();
}

void Stroker::Impl::dot(PointF const& p, Style const& style)
{
  double const r = style.width / 2;
  if (style.cap == 2) {
    contour = {finePoint(p.x - r, p.y - r), finePoint(p.x + r, p.y - r), finePoint(p.x + r, p.y + r),
               finePoint(p.x - r, p.y + r)};
  } else if (style.cap == 0) {
    int const corners = std::clamp(static_cast<int>(std::sqrt(r) * 12), 12, 512);
    for (int i = 0; i < corners; ++i) {
      double const angle = 2 * agg::pi * i / corners;
      contour.push_back(finePoint(p.x + r * std::cos(angle), p.y + r * std::sin(angle)));
    }
  }
  addContour();
}

void Stroker::Impl::capOf(double width)
{
  if (width == capWidth)
    return;
  capWidth = width;
  capTurns.clear();
  // As many corners as the generator gives a cap.
  int const corners = static_cast<int>(agg::pi / (std::acos(width / 2 / (width / 2 + 0.125)) * 2));
  for (int i = 1; i <= corners; ++i) {
    double const angle = agg::pi * i / (corners + 1);
    capTurns.push_back({std::cos(angle), std::sin(angle)});
  }
}

bool Stroker::strokeLine(PointF const& from, PointF const& to, Style const& style, SpanFiller& filler, Rect& covered)
{
  constexpr double far = 60000, wide = 256;
  double const dx = to.x - from.x, dy = to.y - from.y;
  double const length = std::sqrt(dx * dx + dy * dy);
  bool const near = std::max(std::abs(from.x), std::abs(from.y)) < far && std::max(std::abs(to.x), std::abs(to.y)) < far;
  if (style.style != 0 || !near || !(length > 0.001) || !(style.width >= 1 && style.width <= wide))
    return false;
  // Corners in the order and by the expressions of the generator.
  double const half = style.width * 0.5;
  double const acrossX = dy / length * half, acrossY = dx / length * half;
  Impl& one = *impl_;
  one.contour.clear();
  if (style.cap == 0) {
    one.capOf(style.width);
    std::size_t const corners = one.capTurns.size();
    one.contour.resize(2 * corners + 4);
    Point* const first = one.contour.data();
    Point* const second = first + corners + 2;
    first[0] = finePoint(from.x - acrossX, from.y + acrossY);
    first[corners + 1] = finePoint(from.x + acrossX, from.y - acrossY);
    second[0] = finePoint(to.x + acrossX, to.y - acrossY);
    second[corners + 1] = finePoint(to.x - acrossX, to.y + acrossY);
    bool sure = true;
    for (std::size_t i = 0; i < corners; ++i) {
      Impl::Turn const& turn = one.capTurns[i];
      double const x = acrossX * turn.cosine + acrossY * turn.sine, y = acrossY * turn.cosine - acrossX * turn.sine;
      sure = surePoint(from.x - x, from.y + y, first[i + 1]) && surePoint(to.x + x, to.y - y, second[i + 1]) && sure;
    }
    if (!sure)
      return false;
  } else {
    double const endX = style.cap == 2 ? acrossY : 0, endY = style.cap == 2 ? acrossX : 0;
    one.contour = {finePoint(from.x - acrossX - endX, from.y + acrossY - endY),
                   finePoint(from.x + acrossX - endX, from.y - acrossY - endY),
                   finePoint(to.x + acrossX + endX, to.y - acrossY + endY),
                   finePoint(to.x - acrossX + endX, to.y + acrossY + endY)};
  }
  filler.add(one.contour, SpanFiller::fine);
  i32 left = one.contour[0].x, right = left, top = one.contour[0].y, bottom = top;
  for (Point const& p : one.contour) {
    left = std::min(left, p.x);
    right = std::max(right, p.x);
    top = std::min(top, p.y);
    bottom = std::max(bottom, p.y);
  }
  covered = {left >> 8, top >> 8, (right >> 8) + 1, (bottom >> 8) + 1};
  one.contour.clear();
  return true;
}

Rect Stroker::stroke(std::span<PointF const> points, bool closed, Style const& wanted, SpanFiller& filler)
{
  Impl& one = *impl_;
  one.filler = &filler;
  one.extent = {};
  one.contour.clear();
  one.run.clear();
  if (points.empty())
    return {};
  Style style = wanted;
  style.width = std::clamp(style.width, 1.0, widest);
  style.style = static_cast<int>(dashStyle(style.style));
  one.stroke.width(style.width);
  one.stroke.line_join(style.join == 1 ? agg::bevel_join : agg::round_join);
  one.stroke.line_cap(style.cap == 1 ? agg::butt_cap : style.cap == 2 ? agg::square_cap : agg::round_cap);

  double const reach = farthestStroke + 2 * style.width;
  Box const box{-reach, reach};
  bool near = true, still = true;
  for (PointF const& p : points) {
    near = near && box.holds(p);
    still = still && p.x == points[0].x && p.y == points[0].y;
  }
  if (still) {
    if (near)
      one.dot(points[0], style);
  } else if (near) {
    one.emitRun(points, closed && points.size() > 2, style, 0);
  } else {
    one.emitFar(points, closed && points.size() > 2, style, box);
  }
  return one.extent;
}

}  // namespace plat::portable
