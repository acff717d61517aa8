#include "platform/portable/raster/curves.h"

#include <algorithm>
#include <cmath>

namespace plat::portable {

CornerBox::CornerBox(Rect const& box, Size corner) : left(box.left), top(box.top)
{
  i32 const w = std::clamp(corner.w, 1, box.width()), h = std::clamp(corner.h, 1, box.height());
  a = w - 1;
  b = h - 1;
  extraX = box.width() - w;
  extraY = box.height() - h;
}

void outlinePels(CornerBox const& box, std::vector<Point>& out, std::vector<Point>& quarter)
{
  out.clear();
  quarter.clear();
  walkQuarter(box.a, box.b, [&](i32 X, i32 Y) { quarter.push_back({X, Y}); });
  Rect const all{-farthestPel, -farthestPel, farthestPel, farthestPel};
  walkOutline(box, quarter, all, [&out](Point p, std::int64_t) { out.push_back(p); });
  while (out.size() > 1 && out.back() == out.front())
    out.pop_back();
}

void outlineBezier(double left, double top, double right, double bottom, double rx, double ry, std::vector<PointF>& out)
{
  constexpr double kappa = 0.5522847498307936;  // of a quarter circle
  double const kx = rx * (1 - kappa), ky = ry * (1 - kappa);
  double const middle = (top + bottom) / 2;
  out.clear();
  out.push_back({right, middle});
  auto const line = [&out](double x, double y) {
    PointF const from = out.back();
    out.push_back({from.x + (x - from.x) / 3, from.y + (y - from.y) / 3});
    out.push_back({from.x + (x - from.x) * 2 / 3, from.y + (y - from.y) * 2 / 3});
    out.push_back({x, y});
  };
  auto const curve = [&out](PointF const& c1, PointF const& c2, PointF const& to) {
    out.push_back(c1);
    out.push_back(c2);
    out.push_back(to);
  };
  line(right, top + ry);
  curve({right, top + ky}, {right - kx, top}, {right - rx, top});
  line(left + rx, top);
  curve({left + kx, top}, {left, top + ky}, {left, top + ry});
  line(left, bottom - ry);
  curve({left, bottom - ky}, {left + kx, bottom}, {left + rx, bottom});
  line(right - rx, bottom);
  curve({right - kx, bottom}, {right, bottom - ky}, {right, bottom - ry});
  line(right, middle);
}

void flatten(std::span<PointF const> control, int chords, std::vector<PointF>& out)
{
  out.clear();
  if (control.empty())
    return;
  out.push_back(control[0]);
  for (std::size_t i = 0; i + 3 < control.size(); i += 3) {
    PointF const &p0 = control[i], &p1 = control[i + 1], &p2 = control[i + 2], &p3 = control[i + 3];
    for (int k = 1; k < chords; ++k) {
      double const t = static_cast<double>(k) / chords, s = 1 - t;
      double const b0 = s * s * s, b1 = 3 * s * s * t, b2 = 3 * s * t * t, b3 = t * t * t;
      out.push_back({b0 * p0.x + b1 * p1.x + b2 * p2.x + b3 * p3.x, b0 * p0.y + b1 * p1.y + b2 * p2.y + b3 * p3.y});
    }
    out.push_back(p3);
  }
}

bool Sector::holds(double x, double y) const
{
  // Positive when the second lies counter-clockwise of the first as seen, y pointing down.
  auto const turn = [](double ax, double ay, double bx, double by) { return ay * bx - ax * by; };
  double const whole = turn(from_.x, from_.y, to_.x, to_.y);
  double const dot = from_.x * to_.x + from_.y * to_.y;
  if (whole == 0 && dot >= 0)
    return true;
  double const after = turn(from_.x, from_.y, x, y), before = turn(x, y, to_.x, to_.y);
  if (whole > 0)
    return after >= 0 && before >= 0;
  if (whole == 0)
    return after >= 0;
  return !(after < 0 && before < 0);
}

}  // namespace plat::portable
