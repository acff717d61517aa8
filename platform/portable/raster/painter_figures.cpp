// Lines, polygons, curves and floods of the painter over memory.
#include "platform/portable/raster/curves.h"
#include "platform/portable/raster/line.h"
#include "platform/portable/raster/painter.h"
#include "platform/portable/raster/stroke.h"

#include <algorithm>
#include <cmath>

namespace plat::portable {

namespace {

constexpr int bezierChords = 16;

// The length of a corner's side, which may be given with any sign.
i32 sideOf(i32 v) { return v < 0 ? -std::max(v, -0x7FFFFFFF) : v; }

i32 rounded(double v)
{
  return static_cast<i32>(std::clamp(std::floor(v + 0.5), -1.0 * farthestPel, 1.0 * farthestPel));
}

Rect boxAround(std::span<Point const> points)
{
  if (points.empty())
    return {};
  Rect box{points[0].x, points[0].y, points[0].x, points[0].y};
  for (Point const& p : points)
    box = {std::min(box.left, p.x), std::min(box.top, p.y), std::max(box.right, p.x), std::max(box.bottom, p.y)};
  return box;
}

// Enough chords that a curve of this extent bends by less than a quarter of a pel between them.
int chordsOf(double extent) { return std::clamp(static_cast<int>(std::sqrt(extent) * 1.5), bezierChords, 512); }

}  // namespace

namespace {

// An outline that lies inside the clip.
template <class Pel> void outlineInside(PelBlock const& block, Point shift, CornerBox const& figure, Pel pel)
{
  i32 const leastX = figure.a & 1, leastY = figure.b & 1;
  i32 const left = figure.left + shift.x, middle = figure.topOf(leastY) + shift.y;
  i32 const lower = figure.bottomOf(leastY) + shift.y, width = figure.rightOf(figure.a) - figure.left;
  auto const at = [&block](i32 x, i32 y) { return pelAddress(block, x, y, sizeof(Pel)); };
  plotQuarters(at(left, middle), at(left, lower), block.pitch, figure.a, figure.b, width, pel);
  if (figure.extraX > 0) {
    i32 const from = figure.leftOf(leastX) + shift.x;
    std::size_t const count = static_cast<std::size_t>(figure.rightOf(leastX) - figure.leftOf(leastX)) + 1;
    fillRow(reinterpret_cast<Pel*>(at(from, figure.top + shift.y)), count, pel);
    fillRow(reinterpret_cast<Pel*>(at(from, figure.bottomOf(figure.b) + shift.y)), count, pel);
  }
  if (figure.extraY > 0)
    for (i32 y = middle; y <= lower; ++y) {
      Pel* const row = reinterpret_cast<Pel*>(at(left, y));
      row[0] = pel;
      row[width] = pel;
    }
}

}  // namespace

// A span or pel in block coordinates, cut to the clip.
template <class Pel> class MemPainter::Plot {
public:
  Plot(Part const& part, Pel pel) : block_(part.block), clip_(part.clip), shift_(part.shift), pel_(pel) {}

  void dot(i32 x, i32 y) const
  {
    x += shift_.x;
    y += shift_.y;
    if (x >= clip_.left && x < clip_.right && y >= clip_.top && y < clip_.bottom)
      *at(x, y) = pel_;
  }
  void outline(CornerBox const& figure) const { outlineInside(block_, shift_, figure, pel_); }
  void span(i32 x0, i32 x1, i32 y) const
  {
    y += shift_.y;
    if (y < clip_.top || y >= clip_.bottom)
      return;
    x0 = std::max(x0 + shift_.x, clip_.left);
    x1 = std::min(x1 + shift_.x, clip_.right);
    if (x0 < x1)
      fillRow(at(x0, y), static_cast<std::size_t>(x1 - x0), pel_);
  }
  void column(i32 x, i32 y0, i32 y1) const
  {
    x += shift_.x;
    if (x < clip_.left || x >= clip_.right)
      return;
    y0 = std::max(y0 + shift_.y, clip_.top);
    y1 = std::min(y1 + shift_.y, clip_.bottom);
    for (i32 y = y0; y < y1; ++y)
      *at(x, y) = pel_;
  }

private:
  Pel* at(i32 x, i32 y) const { return reinterpret_cast<Pel*>(pelAddress(block_, x, y, sizeof(Pel))); }
  PelBlock block_;
  Rect clip_;
  Point shift_;
  Pel pel_;
};

template <class Body> void MemPainter::paintWith(COLORREF color, Body&& body)
{
  paint([&](Part const& part) {
    u32 const value = pelValueOf(color, part.block.depth);
    withPel(part.block.depth, [&](auto sample) {
      using Pel = decltype(sample);
      body(part, Plot<Pel>(part, pelFrom<Pel>(value)), pelFrom<Pel>(value));
    });
  });
}

void MemPainter::polylineNow(std::span<Point const> points)
{
  if (!penOn_ || points.empty())
    return;
  if (shiftOnly_ && !window_ && cosmetic()) {
    u32 const value = pelValueOf(pen_.color, block_.depth);
    withPel(block_.depth, [&](auto sample) { thinLines(points, pelFrom<decltype(sample)>(value)); });
    return;
  }
  if (points.size() == 2 && !cosmetic()) {
    Point const from = device(points[0]), to = device(points[1]);
    if (strokeWideLine({1.0 * from.x, 1.0 * from.y}, {1.0 * to.x, 1.0 * to.y}))
      return;
  }
  setPoints(points);
  strokeDevice(false);
}

// On a surface, by the cosmetic pen, without a copy of the points: most lines are short and many.
template <class Pel> void MemPainter::thinLines(std::span<Point const> points, Pel pel)
{
  using i64 = std::int64_t;
  i64 const dx = i64{shift_.x} + viewport_.x - origin_.x, dy = i64{shift_.y} + viewport_.y - origin_.y;
  auto const near = [](i64 v) { return static_cast<i32>(std::clamp<i64>(v, -farthestPel, farthestPel)); };
  auto const shifted = [&](Point p) { return Point{near(p.x + dx), near(p.y + dy)}; };
  Rect const clip = clipBox();
  DashPattern const& dashes = cosmeticDashes(pen_.style);
  std::int64_t phase = 0;
  Point before = shifted(points[0]);
  bool beforeInside = contains(clip, before);
  Rect box{before.x, before.y, before.x, before.y};
  for (std::size_t i = 1; i < points.size(); ++i) {
    Point const next = shifted(points[i]);
    bool const nextInside = contains(clip, next);
    if (!nextInside || !beforeInside)
      plotLine(block_, clip, before, next, pel, dashes, phase);
    else if (dashes.count == 0)
      plotInside(block_, before, next, pel);
    else
      plotInside(block_, before, next, pel, dashes, phase);
    box = {std::min(box.left, next.x), std::min(box.top, next.y), std::max(box.right, next.x), std::max(box.bottom, next.y)};
    before = next;
    beforeInside = nextInside;
  }
  touch({box.left, box.top, box.right + 1, box.bottom + 1});
}

void MemPainter::lineTo(Point to)
{
  Point const ends[2] = {current_, to};
  current_ = to;
  polyline(ends);
}

void MemPainter::polygonNow(std::span<Point const> points, FillRule rule)
{
  if (points.size() < 2)
    return;
  setPoints(points);
  if (brushOn_)
    fillFigure(brush_, rule);
  if (penOn_)
    strokeDevice(true);
}

void MemPainter::setPoints(std::span<Point const> logical)
{
  points_.resize(logical.size());
  if (!shiftOnly_) {
    for (std::size_t i = 0; i < logical.size(); ++i)
      points_[i] = device(logical[i]);
    return;
  }
  using i64 = std::int64_t;
  i64 const dx = i64{shift_.x} + viewport_.x - origin_.x, dy = i64{shift_.y} + viewport_.y - origin_.y;
  auto const near = [](i64 v) { return static_cast<i32>(std::clamp<i64>(v, -farthestPel, farthestPel)); };
  Point const* from = logical.data();
  for (Point& to : points_) {
    to = {near(from->x + dx), near(from->y + dy)};
    ++from;
  }
}

void MemPainter::strokeDevice(bool closed)
{
  if (cosmetic())
    return strokeCosmetic(closed);
  outline_.resize(points_.size());
  for (std::size_t i = 0; i < points_.size(); ++i)
    outline_[i] = {static_cast<double>(points_[i].x), static_cast<double>(points_[i].y)};
  strokeWide(closed);
}

void MemPainter::strokeCosmetic(bool closed)
{
  if (counts()) {
    Rect const box = boxAround(points_);
    account({box.left, box.top, box.right + 1, box.bottom + 1});
  }
  DashPattern const& dashes = cosmeticDashes(pen_.style);
  paintWith(pen_.color, [&](Part const& part, auto const&, auto pel) {
    std::int64_t phase = 0;
    Point const shift = part.shift;
    auto const shifted = [shift](Point p) { return Point{p.x + shift.x, p.y + shift.y}; };
    Point before = shifted(points_.front());
    for (std::size_t i = 1; i < points_.size(); ++i) {
      Point const next = shifted(points_[i]);
      plotLine(part.block, part.clip, before, next, pel, dashes, phase);
      before = next;
    }
    if (closed)
      plotLine(part.block, part.clip, before, shifted(points_.front()), pel, dashes, phase);
  });
}

double MemPainter::penScale() const
{
  if (shiftOnly_)
    return 1;
  return std::sqrt(std::abs(double{world_.m11} * double{world_.m22} - double{world_.m12} * double{world_.m21}));
}

Stroker& MemPainter::stroker()
{
  if (!stroker_)
    stroker_ = std::make_unique<Stroker>();
  filler_.clear();
  return *stroker_;
}

// outline_ by the wide pen.
void MemPainter::strokeWide(bool closed)
{
  touch(stroker().stroke(outline_, closed, {pen_.width * penScale(), pen_.style, pen_.join, pen_.cap}, filler_));
  fillSpans(pen_.color, FillRule::winding);
}

// The same for a line from point to point; false when it goes the general way.
bool MemPainter::strokeWideLine(PointF const& from, PointF const& to)
{
  Rect covered;
  if (!stroker().strokeLine(from, to, {pen_.width * penScale(), pen_.style, pen_.join, pen_.cap}, filler_, covered))
    return false;
  touch(covered);
  fillSpans(pen_.color, FillRule::winding);
  return true;
}

void MemPainter::fillSpans(COLORREF color, FillRule rule)
{
  paintWith(color, [&](Part const& part, auto const&, auto pel) {
    Rect const& c = part.clip;
    Point const shift = part.shift;
    PelBlock const& block = part.block;
    using Pel = decltype(pel);
    Rect const clip{c.left - shift.x, c.top - shift.y, c.right - shift.x, c.bottom - shift.y};
    if (filler_.tabulate(rule, clip)) {
      if (filler_.rows() == 0)
        return;
      u8* const pels = pelAddress(block, shift.x, filler_.firstRow() + shift.y, sizeof(Pel));
      for (int i = 0; i < filler_.spansPerRow(); ++i)
        paintSpans(pels, block.pitch, filler_.rows(), filler_.from(i), filler_.to(i), pel);
      return;
    }
    filler_.fill(rule, clip, [&](i32 y, i32 x0, i32 x1) {
      fillRow(reinterpret_cast<Pel*>(pelAddress(block, x0 + shift.x, y + shift.y, sizeof(Pel))),
              static_cast<std::size_t>(x1 - x0), pel);
    });
  });
}

// points_ as a figure.
void MemPainter::fillFigure(COLORREF color, FillRule rule)
{
  filler_.clear();
  filler_.add(points_, 1);
  if (counts())
    account(boxAround(points_));
  fillSpans(color, rule);
}

void MemPainter::bezierNow(std::span<Point const> points, bool fill)
{
  if (points.size() < 4)
    return;
  control_.resize(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    Point const p = device(points[i]);
    control_[i] = {static_cast<double>(p.x), static_cast<double>(p.y)};
  }
  paintPath(bezierChords, false, fill ? pathFill : pathStroke);
}

// control_ as a path.
void MemPainter::paintPath(int chords, bool closed, unsigned how)
{
  flatten(control_, chords, outline_);
  paintOutline(closed, how);
}

// outline_ as chords with rounded ends, by the rules of lines and polygons.
void MemPainter::paintOutline(bool closed, unsigned how)
{
  points_.resize(outline_.size());
  for (std::size_t i = 0; i < outline_.size(); ++i)
    points_[i] = {rounded(outline_[i].x), rounded(outline_[i].y)};
  if (closed && points_.size() > 1 && points_.back() == points_.front())
    points_.pop_back();
  if ((how & pathFill) && brushOn_)
    fillFigure(brush_, FillRule::alternate);
  if ((how & pathStroke) && penOn_)
    strokeDevice(closed);
}

void MemPainter::ellipse(Rect const& box)
{
  // Corners that take all of the box, whatever its size.
  roundRect(box, {farthestPel, farthestPel});
}

void MemPainter::roundRectNow(Rect const& logical, Size corner)
{
  if (!shiftOnly_)
    return turnedRoundRect(logical, corner);
  Rect const box = deviceRect(logical);
  if (box.empty())
    return;
  CornerBox const figure(box, {sideOf(corner.w), sideOf(corner.h)});
  touch(box);
  if (brushOn_)
    paintWith(brush_, [&](Part const& part, auto const& plot, auto) { fillCurve(figure, part, plot); });
  if (!penOn_)
    return;
  if (!cosmetic()) {
    outlineBezier(box.left, box.top, box.right - 1, box.bottom - 1, figure.a / 2.0, figure.b / 2.0, control_);
    flatten(control_, chordsOf(std::max(figure.a, figure.b)), outline_);
    outline_.pop_back();
    strokeWide(true);
  } else if (pen_.style == 0 && !figure.large() && !window_ && inside(clipBox(), box)) {
    u32 const value = pelValueOf(pen_.color, block_.depth);
    withPel(block_.depth, [&](auto sample) {
      using Pel = decltype(sample);
      outlineInside(block_, {}, figure, pelFrom<Pel>(value));
    });
  } else if (pen_.style == 0 || figure.large()) {
    paintWith(pen_.color, [&](Part const& part, auto const& plot, auto) { outlineCurve(figure, box, part, plot); });
  } else {
    quarter_.clear();
    walkQuarter(figure.a, figure.b, [&](i32 X, i32 Y) { quarter_.push_back({X, Y}); });
    u32 const on = cosmeticDashes(pen_.style).on;
    paintWith(pen_.color, [&](Part const& part, auto const& plot, auto) {
      Rect const& c = part.clip;
      Rect const seen{c.left - part.shift.x, c.top - part.shift.y, c.right - part.shift.x, c.bottom - part.shift.y};
      walkOutline(figure, quarter_, seen, [&](Point p, std::int64_t place) {
        if (on >> place % 24 & 1u)
          plot.dot(p.x, p.y);
      });
    });
  }
}

// Rows between the outline's pels, these included.
template <class PlotType> void MemPainter::fillCurve(CornerBox const& figure, Part const& part, PlotType const& plot)
{
  if (figure.large())
    return largeCurve(figure, part, plot, true);
  i32 lastY = -1;
  walkQuarter(figure.a, figure.b, [&](i32 X, i32 Y) {
    if (Y == lastY)
      return;
    lastY = Y;
    i32 const x0 = figure.leftOf(X), x1 = figure.rightOf(X) + 1;
    plot.span(x0, x1, figure.topOf(Y));
    if (Y != 0 || figure.extraY != 0)
      plot.span(x0, x1, figure.bottomOf(Y));
  });
  i32 const leastY = figure.b & 1;
  i32 const from = std::max(figure.topOf(leastY) + 1, part.clip.top - part.shift.y);
  i32 const to = std::min(figure.bottomOf(leastY), part.clip.bottom - part.shift.y);
  for (i32 y = from; y < to; ++y)
    plot.span(figure.left, figure.rightOf(figure.a) + 1, y);
}

template <class PlotType>
void MemPainter::outlineCurve(CornerBox const& figure, Rect const& box, Part const& part, PlotType const& plot)
{
  if (figure.large())
    return largeCurve(figure, part, plot, false);
  Rect const moved = shifted(box, part.shift);
  if (intersection(moved, part.clip).empty())
    return;
  if (inside(part.clip, moved))
    return plot.outline(figure);
  walkQuarter(figure.a, figure.b, [&](i32 X, i32 Y) {
    i32 const x0 = figure.leftOf(X), x1 = figure.rightOf(X), y0 = figure.topOf(Y), y1 = figure.bottomOf(Y);
    plot.dot(x0, y0);
    plot.dot(x1, y0);
    plot.dot(x0, y1);
    plot.dot(x1, y1);
  });
  i32 const leastX = figure.a & 1, leastY = figure.b & 1;
  if (figure.extraX > 0) {
    plot.span(figure.leftOf(leastX), figure.rightOf(leastX) + 1, figure.top);
    plot.span(figure.leftOf(leastX), figure.rightOf(leastX) + 1, figure.bottomOf(figure.b));
  }
  if (figure.extraY > 0) {
    plot.column(figure.left, figure.topOf(leastY), figure.bottomOf(leastY) + 1);
    plot.column(figure.rightOf(figure.a), figure.topOf(leastY), figure.bottomOf(leastY) + 1);
  }
}

// Curves beyond whole-number reach: each row and column that can be seen by a root.
template <class PlotType>
void MemPainter::largeCurve(CornerBox const& figure, Part const& part, PlotType const& plot, bool fill)
{
  Rect const seen{part.clip.left - part.shift.x, part.clip.top - part.shift.y, part.clip.right - part.shift.x,
                  part.clip.bottom - part.shift.y};
  double const a = figure.a, b = figure.b;
  // The offset of the curve's pel at an offset along the other axis, and the offset of a row or column.
  auto const across = [](double extent, double other, double at) {
    double const x = other > 0 ? extent * std::sqrt(std::max(0.0, 1 - at / other * (at / other))) : extent;
    return extent - 2 * std::floor((extent - x) / 2 + 0.5);
  };
  auto const offsetOf = [](i32 at, i32 diameter, i32 extra) -> double {
    if (at <= diameter / 2)
      return diameter - 2.0 * at;
    if (at - extra >= diameter - diameter / 2)
      return 2.0 * (at - extra) - diameter;
    return -1;  // beside a straight side
  };
  i32 const bottom = figure.bottomOf(figure.b), right = figure.rightOf(figure.a);
  for (i32 y = std::max(seen.top, figure.top); y < seen.bottom && y <= bottom; ++y) {
    double const Y = offsetOf(y - figure.top, figure.b, figure.extraY);
    double const X = Y < 0 ? a : across(a, b, Y);
    i32 const x0 = figure.leftOf(static_cast<i32>(X)), x1 = figure.rightOf(static_cast<i32>(X));
    if (fill) {
      plot.span(x0, x1 + 1, y);
    } else if (Y < 0 || b * b * X >= a * a * Y) {
      plot.dot(x0, y);
      plot.dot(x1, y);
    }
  }
  if (fill)
    return;
  for (i32 x = std::max(seen.left, figure.left); x < seen.right && x <= right; ++x) {
    double const X = offsetOf(x - figure.left, figure.a, figure.extraX);
    double const Y = X < 0 ? b : across(b, a, X);
    if (X < 0 || b * b * X <= a * a * Y) {
      plot.dot(x, figure.topOf(static_cast<i32>(Y)));
      plot.dot(x, figure.bottomOf(static_cast<i32>(Y)));
    }
  }
}

// points_ as pels in order, by the cosmetic pen.
void MemPainter::plotPels()
{
  DashPattern const& dashes = cosmeticDashes(pen_.style);
  paintWith(pen_.color, [&](Part const&, auto const& plot, auto) {
    unsigned run = 0, left = dashes.count ? dashes.runs[0] : 0;
    for (Point const& p : points_) {
      if (dashes.count != 0 && left == 0) {
        run = (run + 1) % dashes.count;
        left = dashes.runs[run];
      }
      --left;
      if (run % 2 == 0)
        plot.dot(p.x, p.y);
    }
  });
}

void MemPainter::turnedRoundRect(Rect const& box, Size corner)
{
  double const w = double{1} * box.right - box.left - 1, h = double{1} * box.bottom - box.top - 1;
  if (w < 0 || h < 0)
    return;
  double const rx = std::min(std::abs(double{1} * corner.w), w) / 2, ry = std::min(std::abs(double{1} * corner.h), h) / 2;
  outlineBezier(box.left, box.top, box.left + w, box.top + h, rx, ry, control_);
  for (PointF& p : control_)
    p = deviceF(p.x, p.y);
  // Sides and corners take turns, from the middle of a side on. A side is one chord: ends of more would be rounded off it.
  outline_.clear();
  for (std::size_t i = 3; i + 3 < control_.size(); i += 6) {
    flatten(std::span(control_).subspan(i, 4), rx > 0 && ry > 0 ? bezierChords : 1, cornerOutline_);
    outline_.insert(outline_.end(), cornerOutline_.begin(), cornerOutline_.end());
  }
  paintOutline(true, pathFill | pathStroke);
}

void MemPainter::arcNow(Rect const& logical, Point start, Point end)
{
  if (!penOn_)
    return;
  Rect box{std::min(logical.left, logical.right), std::min(logical.top, logical.bottom),
           std::max(logical.left, logical.right), std::max(logical.top, logical.bottom)};
  if (box.empty())
    return;
  double const centreX = (double{1} * box.left + box.right - 1) / 2, centreY = (double{1} * box.top + box.bottom - 1) / 2;
  PointF const from{start.x - centreX, start.y - centreY}, to{end.x - centreX, end.y - centreY};
  if (shiftOnly_ && cosmetic()) {
    Rect const upright = deviceRect(box);
    if (upright.empty())
      return;  // brought to the farthest pel, nothing of it is left
    CornerBox const figure(upright, {farthestPel, farthestPel});
    if (!figure.large())
      return arcPels(figure, upright, Sector(from, to));
  }
  // The angle runs counter-clockwise as seen; on the curve it is taken from the ray in the curve's own measure.
  double const rx = (double{1} * box.right - 1 - box.left) / 2, ry = (double{1} * box.bottom - 1 - box.top) / 2;
  double const a0 = std::atan2(-from.y * rx, from.x * ry);
  double a1 = std::atan2(-to.y * rx, to.x * ry);
  constexpr double turn = 6.283185307179586;
  if (a1 <= a0)
    a1 += turn;
  int const chords = std::max(1, static_cast<int>(std::ceil(4 * chordsOf(std::max(rx, ry) * 2) * (a1 - a0) / turn)));
  outline_.clear();
  points_.clear();
  for (int i = 0; i <= chords; ++i) {
    double const angle = a0 + (a1 - a0) * i / chords;
    PointF const p = deviceF(centreX + rx * std::cos(angle), centreY - ry * std::sin(angle));
    outline_.push_back(p);
    points_.push_back({rounded(p.x), rounded(p.y)});
  }
  if (cosmetic())
    strokeCosmetic(false);
  else
    strokeWide(false);
}

// The pels of the outline between the rays, dashes beginning at the first ray.
void MemPainter::arcPels(CornerBox const& figure, Rect const& box, Sector const& sector)
{
  outlinePels(figure, points_, quarter_);
  double const middleX = (double{1} * box.left + box.right - 1) / 2, middleY = (double{1} * box.top + box.bottom - 1) / 2;
  auto const held = [&](Point p) { return sector.holds(p.x - middleX, p.y - middleY); };
  std::size_t const count = points_.size();
  std::size_t first = 0;
  for (std::size_t i = 0; i < count; ++i)
    if (held(points_[i]) && !held(points_[(i + count - 1) % count])) {
      first = i;
      break;
    }
  std::rotate(points_.begin(), points_.begin() + static_cast<std::ptrdiff_t>(first), points_.end());
  points_.erase(std::remove_if(points_.begin(), points_.end(), [&](Point p) { return !held(p); }), points_.end());
  Rect const around = boxAround(points_);
  if (points_.empty())
    return;
  touch({around.left, around.top, around.right + 1, around.bottom + 1});
  plotPels();
}

}  // namespace plat::portable
