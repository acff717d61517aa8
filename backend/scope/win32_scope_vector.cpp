// Lines, text and flood fill, painted on the device context of a phase. Positions of the painter are pels of the scope.
#include "backend/scope/win32_scope_phase.h"

#include "backend/scope/shape_paths.h"
#include "canvas/format.h"
#include "canvas/graphic_props.h"
#include "canvas/strokes.h"
#include "geometry/lines.h"
#include "platform/messages.h"

#include <algorithm>

namespace {

// Where text of this alignment starts: the horizontal flag, and the row at which it begins. Rows 0 to 2 of the alignments are
// top, middle and bottom.
unsigned textFlags(ccUIFormat const& format)
{
  return plat::text::noClip | plat::text::noPrefix | static_cast<unsigned>(format.alignment() % 3);
}

long textTop(plat::Painter& painter, std::string const& text, ccUIFormat const& format, long y)
{
  if (format.alignment() < ccUIFormat::centerLeft)
    return y;
  plat::Rect empty;
  long const height = painter.drawText(text, empty, plat::text::noClip | plat::text::calculateOnly);
  return format.alignment() < ccUIFormat::bottomLeft ? y - height / 2 : y - height;
}

}  // namespace

// --- Lines

void ccWin32UIScope::draw(ccLineSeg const& seg, ccGraphicProps const& props)
{
  ccVector<2> const offset(clientOffset());
  ccVector<2> a = seg.p1() - offset, b = seg.p2() - offset;
  cs_Reach reach;
  reach.add(a);
  reach.add(b);
  auto const pelOf = [](ccVector<2> const& p) { return ccPair<long>(cfPelOf(p.x()), cfPelOf(p.y())); };
  if (reach.isWithin(cf_pelReach)) {
    drawLine_(pelOf(a), pelOf(b), props);
    currentPoint(pelOf(b));
    return;
  }
  if (reach.isFinite() && cf_cutSegment(a, b, cf_pelReach))
    drawLine_(pelOf(a), pelOf(b), props);
  drawStart(seg.p2());
}

// Nothing is drawn from or to a place that isn't one.
void ccWin32UIScope::drawTo(ccPoint const& p, ccGraphicProps const& props)
{
  if (!isPlace(p) || isNowhere())
    return drawStart(p);
  drawToRel(xCoord(p) - currentPoint().x(), yCoord(p) - currentPoint().y(), props);
}

// The point moves on also where nothing is drawn.
void ccWin32UIScope::drawToRel(long dx, long dy, ccGraphicProps const& props)
{
  if (isNowhere())
    return;
  ccPair<long> const from = currentPoint();
  moveToRel(dx, dy);
  drawLine_(from, currentPoint(), props);
}

void ccWin32UIScope::drawLine_(ccPair<long> const& from, ccPair<long> const& to, ccGraphicProps const& props)
{
  long const h = cf_halfWidthOfEnds(props);
  ccUIRect const touched = ccUIRect::fromEdges(std::min(from.x(), to.x()) - h, std::min(from.y(), to.y()) - h,
                                               std::max(from.x(), to.x()) + h, std::max(from.y(), to.y()) + h);
  // The corner of a slanted square end may lie just outside, and a broken line along an axis may be moved.
  bool const slanted = from.x() != to.x() && from.y() != to.y();
  bool const looks = props.penWidth() >= 2 && (slanted ? props.capStyle() == 2 : props.penStyle() != ceSolidPen);
  ccUIRect const reach = looks && slanted ? cf_grown(touched, 1) : touched;
  ccUIRect drawn = touched & ownRect_();
  quietly_([&] {
    if ((reach & ownRect_()).isNull())
      return;
    cc_Phase const phase(*this, kPaint);
    if (phase) {
      drawn = touched & phase.target().bounds;
      if (plat::Painter* const painter = phase.target().painter) {
        if (looks)
          cf_beginBounds(*painter);
        paintLine_(*painter, from, to, props);
        if (looks)
          drawn = (drawn | cf_endBounds(*painter)) & phase.target().bounds;
      }
      win32Changed(drawn);
    }
  });
  report_(drawn, false);
}

void ccWin32UIScope::paintLine_(plat::Painter& painter, ccPair<long> const& from, ccPair<long> const& to,
                                ccGraphicProps const& props)
{
  painter.pen(cf_penOf(props, bgrColor_(props.penColor())));
  bool const wide = props.penWidth() >= 2;
  if (wide && props.penStyle() != ceSolidPen && (from.x() == to.x() || from.y() == to.y())) {
    // Only what can be seen: a long broken line costs dearly outside the surface.
    ccUIRect const& all = root_().rect_;
    auto const inside = [&](ccPair<long> const& p) {
      return ccPair<long>(std::clamp(p.x() + clientOffset().x(), all.left(), all.right()),
                          std::clamp(p.y() + clientOffset().y(), all.top(), all.bottom())) -
             clientOffset();
    };
    ccPair<long> const a = inside(from), b = inside(to);
    plat::Point const points[] = {cf_toPoint(a.x(), a.y()), cf_toPoint(b.x(), b.y())};
    painter.polyline(points);
    painter.moveTo(points[1]);
    return;
  }
  plat::Point const points[] = {cf_toPoint(from.x(), from.y()), cf_toPoint(to.x(), to.y())};
  painter.polyline(points);
  painter.moveTo(points[1]);
  if (!wide)
    painter.lineTo(cf_toPoint(to.x() + 1, to.y() + 1));  // the last pel of the line
}

// --- Text

// The nearest scope upward that has fonts; null is the stock font.
HFONT ccWin32UIScope::font_(long id) const
{
  std::vector<HFONT> const& fonts = fonts_.empty() ? root_().fonts_ : fonts_;
  return id < 0 || id >= static_cast<long>(fonts.size()) ? nullptr : fonts[static_cast<std::size_t>(id)];
}

void ccWin32UIScope::draw(std::string const& text, ccPoint const& p, ccColor const& color, ccColor const& back,
                          ccUIFormat const& format)
{
  if (text.empty() || !isPlace(p))
    return;
  ccUIRect drawn;
  quietly_([&] {
    cc_Phase const phase(*this, kPaint);
    if (!phase)
      return;
    if (plat::Painter* const painter = phase.target().painter) {
      cf_beginBounds(*painter);
      painter->textColors(bgrColor_(color), bgrColor_(back), !back.isPass());
      painter->font(font_(format.fontId()));
      plat::Point const at = cf_toPoint(xCoord(p), textTop(*painter, text, format, yCoord(p)));
      plat::Rect rect{at.x, at.y, at.x, at.y};
      painter->drawText(text, rect, textFlags(format));
      drawn = cf_endBounds(*painter) & phase.target().bounds;
    }
    win32Changed(drawn);
  });
  report_(drawn, true);
}

ccUIRect ccWin32UIScope::textRect(std::string const& text, ccPoint const& p, ccUIFormat const& format, ccUIRect& clipped)
{
  clipped = ccUIRect();
  ccUIRect full;
  if (text.empty() || !isPlace(p))
    return full;
  quietly_([&] {
    cc_Phase const phase(*this, kPaint);
    if (plat::Painter* const painter = phase ? phase.target().painter : nullptr) {
      painter->font(font_(format.fontId()));
      plat::Point const at = cf_toPoint(xCoord(p), textTop(*painter, text, format, yCoord(p)));
      plat::Rect rect{at.x, at.y, at.x, at.y};
      painter->drawText(text, rect, textFlags(format) | plat::text::calculateOnly);
      full = ccUIRect(at.x, at.y, rect.right - rect.left, rect.bottom - rect.top);
      int const column = format.alignment() % 3;
      if (column == 1)
        full -= ccPair<long>(full.width() / 2, 0);
      else if (column == 2)
        full -= ccPair<long>(full.width(), 0);
      clipped = full & phase.target().bounds;
    }
  });
  return full;
}

// --- Flood fill

void ccWin32UIScope::fill(ccPoint const& p, ccColor const& color, ccColor const& border, bool toBorder)
{
  if (!isPlace(p))
    return;
  ccUIRect drawn;
  quietly_([&] {
    cc_Phase const phase(*this, kPaint);
    if (!phase)
      return;
    if (plat::Painter* const painter = phase.target().painter) {
      painter->brush(bgrColor_(color));
      cf_beginBounds(*painter);
      painter->floodFill(cf_toPoint(xCoord(p), yCoord(p)), bgrColor_(border), /*surface=*/!toBorder);
      drawn = cf_endBounds(*painter) & phase.target().bounds;
      painter->noBrush();
    }
    win32Changed(drawn);
  });
  report_(drawn, false);
}
