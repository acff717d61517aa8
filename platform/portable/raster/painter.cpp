#include "platform/portable/raster/painter.h"

#include "foundation/leaf_mutex.h"

#include "platform/portable/raster/glyphs.h"
#include "platform/portable/raster/handle_table.h"
#include "platform/portable/raster/pel_row.h"
#include "platform/portable/raster/span_filler.h"
#include "platform/portable/raster/stroke.h"

#include <algorithm>
#include <cmath>

namespace plat {

namespace portable {

namespace {

using i64 = std::int64_t;

constexpr unsigned boundsReset = 1, boundsAdd = 2, boundsEnable = 4, boundsDisable = 8, boundsSet = 3;
constexpr Rect everything{-farthestPel, -farthestPel, farthestPel, farthestPel};

struct Handles {
  cc_LeafMutex<cc_LockRank::painters> mutex;
  HandleTable<HDC, MemPainter*> table;
};

Handles& handles()
{
  static Handles* const one = new Handles;  // surfaces of static lifetime may close later
  return *one;
}

i32 nearPel(i64 v) { return static_cast<i32>(std::clamp<i64>(v, -farthestPel, farthestPel)); }

i32 roundedPel(double v)
{
  return static_cast<i32>(std::clamp(std::floor(v + 0.5), -1.0 * farthestPel, 1.0 * farthestPel));
}

}  // namespace

MemPainter::MemPainter() = default;

MemPainter::~MemPainter() { close(); }

void MemPainter::clean()
{
  viewport_ = origin_ = shift_ = current_ = {};
  clipOn_ = boundsOn_ = brushOn_ = false;
  world_ = {};
  shiftOnly_ = penOn_ = textOpaque_ = true;
  bounds_ = dirty_ = {};
  pen_ = {};
  textColor_ = 0;
  textBack_ = 0xFFFFFF;
  font_ = nullptr;
  face_ = nullptr;
  for (KnownColor& one : colors_)
    one.known = false;
}

HDC MemPainter::openOn(PelBlock const& block, std::shared_ptr<PaletteData const> palette, bool keyed)
{
  close();
  clean();
  block_ = block;
  palette_ = std::move(palette);
  keyed_ = keyed;
  std::lock_guard const guard(handles().mutex);
  return handle_ = handles().table.add(this);
}

HDC MemPainter::openOn(HWND window)
{
  close();
  clean();
  window_ = window;
  keyed_ = false;
  std::lock_guard const guard(handles().mutex);
  return handle_ = handles().table.add(this);
}

void MemPainter::close() noexcept
{
  if (!handle_)
    return;
  {
    std::lock_guard const guard(handles().mutex);
    handles().table.remove(handle_);
  }
  handle_ = nullptr;
  palette_ = nullptr;
  if (window_ && !dirty_.empty())
    draw([this] { presentDirty(); });
  window_ = nullptr;
}

// The window may have moved meanwhile, so its place is asked for at each painting, not kept.
void MemPainter::presentDirty()
{
  Point place;
  paintVisible(window_, &place,
               [](void* context, VisiblePart const& part) { *static_cast<Point*>(context) = part.clientOnScreen; },
               Rect{});
  Rect const screen{nearPel(i64{dirty_.left} + place.x), nearPel(i64{dirty_.top} + place.y),
                    nearPel(i64{dirty_.right} + place.x), nearPel(i64{dirty_.bottom} + place.y)};
  paintVisible(window_, nullptr, [](void*, VisiblePart const&) {}, screen);
}

void MemPainter::viewportOrigin(Point p) { viewport_ = p; }

Point MemPainter::windowOrigin(Point p)
{
  Point const former = origin_;
  origin_ = p;
  return former;
}

void MemPainter::clip(Rect const* rect)
{
  clipOn_ = rect != nullptr;
  if (rect)
    clip_ = intersection(*rect, everything);
}

bool MemPainter::worldTransform(Xform const* xform)
{
  world_ = xform ? *xform : Xform();
  bool const usable = std::isfinite(world_.m11) && std::isfinite(world_.m12) && std::isfinite(world_.m21) &&
                      std::isfinite(world_.m22) && std::isfinite(world_.dx) && std::isfinite(world_.dy);
  if (!usable)
    world_ = {};
  shiftOnly_ = world_.m11 == 1 && world_.m12 == 0 && world_.m21 == 0 && world_.m22 == 1;
  shift_ = {roundedPel(world_.dx), roundedPel(world_.dy)};
  return usable;
}

Point MemPainter::device(Point p) const
{
  i64 const dx = i64{viewport_.x} - origin_.x, dy = i64{viewport_.y} - origin_.y;
  if (shiftOnly_)
    return {nearPel(i64{p.x} + shift_.x + dx), nearPel(i64{p.y} + shift_.y + dy)};
  PointF const f = deviceF(p.x, p.y);
  return {roundedPel(f.x), roundedPel(f.y)};
}

PointF MemPainter::deviceF(double x, double y) const
{
  return {x * double{world_.m11} + y * double{world_.m21} + double{world_.dx} - origin_.x + viewport_.x,
          x * double{world_.m12} + y * double{world_.m22} + double{world_.dy} - origin_.y + viewport_.y};
}

Rect MemPainter::deviceRect(Rect const& r) const
{
  Point const a = device({r.left, r.top}), b = device({r.right, r.bottom});
  return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

Rect MemPainter::clipBox() const
{
  if (window_)
    return clipOn_ ? clip_ : everything;
  Rect const all = extent(block_);
  return clipOn_ ? intersection(clip_, all) : all;
}

void MemPainter::account(Rect const& painted)
{
  Rect const seen = intersection(painted, clipBox());
  if (seen.empty())
    return;
  if (boundsOn_)
    bounds_ = unionOf(bounds_, seen);
  if (window_)
    dirty_ = unionOf(dirty_, seen);
}

unsigned MemPainter::setBounds(Rect const* rect, unsigned flags)
{
  unsigned const former = (boundsOn_ ? boundsEnable : boundsDisable) | (bounds_.empty() ? boundsReset : boundsSet);
  if (flags & boundsReset)
    bounds_ = {};
  if ((flags & boundsAdd) && rect)
    bounds_ = unionOf(bounds_, deviceRect(*rect));
  if (flags & boundsEnable)
    boundsOn_ = true;
  if (flags & boundsDisable)
    boundsOn_ = false;
  return former;
}

unsigned MemPainter::getBounds(Rect& out, unsigned flags)
{
  Rect const cut = bounds_.empty() ? Rect{} : intersection(bounds_, clipBox());
  unsigned const state = bounds_.empty() ? boundsReset : boundsSet;
  i64 const x = i64{viewport_.x} - origin_.x + (shiftOnly_ ? shift_.x : 0);
  i64 const y = i64{viewport_.y} - origin_.y + (shiftOnly_ ? shift_.y : 0);
  out = cut.empty() ? Rect{}
                    : Rect{nearPel(cut.left - x), nearPel(cut.top - y), nearPel(cut.right - x), nearPel(cut.bottom - y)};
  if (flags & boundsReset)
    bounds_ = {};
  return state;
}

// Field by field: whoever has just written a pen's small fields can't be read in one go without a wait.
void MemPainter::pen(Pen const& pen)
{
  pen_.color = pen.color;
  pen_.width = pen.width;
  pen_.style = pen.style;
  pen_.join = pen.join;
  pen_.cap = pen.cap;
  penOn_ = true;
}

void MemPainter::noPen() { penOn_ = false; }

void MemPainter::brush(COLORREF color)
{
  brush_ = color;
  brushOn_ = true;
}

void MemPainter::noBrush() { brushOn_ = false; }

void MemPainter::moveTo(Point p) { current_ = p; }

void MemPainter::textColors(COLORREF text, COLORREF back, bool opaque)
{
  textColor_ = text;
  textBack_ = back;
  textOpaque_ = opaque;
}

void MemPainter::font(HFONT font)
{
  font_ = font;
  face_ = nullptr;
}

// The nearest entry is searched once for a colour while a surface's handle is out.
u32 MemPainter::packedPelOf(COLORREF color, int depth)
{
  if (depth != 8 || window_)
    return pelOf(color, depth, palette());
  for (KnownColor const& one : colors_)
    if (one.known && one.color == color)
      return one.pel;
  KnownColor& slot = colors_[nextColor_++ % 4];
  slot = {color, pelOf(color, 8, palette()), true};
  return slot.pel;
}

void MemPainter::fillRectNow(Rect const& rect, COLORREF color)
{
  if (!shiftOnly_) {
    points_ = {device({rect.left, rect.top}), device({rect.right, rect.top}), device({rect.right, rect.bottom}),
               device({rect.left, rect.bottom})};
    fillFigure(color, FillRule::alternate);
    return;
  }
  Rect const target = deviceRect(rect);
  touch(target);
  paint([&](Part const& part) {
    fillPels(part.block, intersection(shifted(target, part.shift), part.clip), pelValueOf(color, part.block.depth));
  });
}

COLORREF MemPainter::pelNow(Point p)
{
  Point const at = device(p);
  COLORREF color = 0xFFFFFFFFu;
  paint([&](Part const& part) {
    i32 const x = at.x + part.shift.x, y = at.y + part.shift.y;
    if (x < part.clip.left || x >= part.clip.right || y < part.clip.top || y >= part.clip.bottom)
      return;
    withPel(part.block.depth, [&](auto sample) {
      auto const value = *reinterpret_cast<decltype(sample) const*>(pelAddress(part.block, x, y));
      color = colorOf(pelValue(value), part.block.depth, palette());
    });
  });
  return color;
}

template <class Body> void MemPainter::draw(Body&& body) noexcept
{
  for (int attempt = 0; attempt < 2; ++attempt) {
    try {
      return body();
    } catch (...) {
      giveBack();
    }
  }
}

void MemPainter::giveBack() noexcept
{
  points_ = quarter_ = std::vector<Point>();
  cut_ = boxes_ = std::vector<Rect>();
  outline_ = control_ = cornerOutline_ = std::vector<PointF>();
  blocked_ = std::vector<u8>();
  lines_ = std::vector<TextLine>();
  placed_ = std::vector<PlacedGlyph>();
  filler_ = SpanFiller();
  stroker_ = nullptr;
}

void MemPainter::polyline(std::span<Point const> points)
{
  draw([&] { polylineNow(points); });
}

void MemPainter::polygon(std::span<Point const> points, FillRule rule)
{
  draw([&] { polygonNow(points, rule); });
}

void MemPainter::roundRect(Rect const& rect, Size corner)
{
  draw([&] { roundRectNow(rect, corner); });
}

void MemPainter::arc(Rect const& box, Point start, Point end)
{
  draw([&] { arcNow(box, start, end); });
}

void MemPainter::bezier(std::span<Point const> points, bool fill)
{
  draw([&] { bezierNow(points, fill); });
}

void MemPainter::fillRect(Rect const& rect, COLORREF color)
{
  draw([&] { fillRectNow(rect, color); });
}

void MemPainter::floodFill(Point at, COLORREF color, bool surface)
{
  draw([&] { floodFillNow(at, color, surface); });
}

int MemPainter::drawText(std::string_view text, Rect& rect, unsigned flags)
{
  int height = 0;
  draw([&] { height = drawTextNow(text, rect, flags); });
  return height;
}

Size MemPainter::textExtent(std::string_view text)
{
  Size size;
  draw([&] { size = textExtentNow(text); });
  return size;
}

COLORREF MemPainter::pel(Point p)
{
  COLORREF color = 0xFFFFFFFFu;
  draw([&] { color = pelNow(p); });
  return color;
}

HDC openWindowDC(HWND window)
{
  auto painter = std::make_unique<MemPainter>();
  HDC const dc = painter->openOn(window);
  if (dc)
    static_cast<void>(painter.release());  // lives until closeWindowDC
  return dc;
}

void closeWindowDC(HDC dc)
{
  auto* const one = dynamic_cast<MemPainter*>(painter(dc));
  if (one && one->onWindow())
    delete one;
}

}  // namespace portable

Painter* painter(HDC dc)
{
  std::lock_guard const guard(portable::handles().mutex);
  portable::MemPainter** const found = portable::handles().table.find(dc);
  return found ? *found : nullptr;
}

}  // namespace plat
