// The painter over memory: on a surface's pels, or on a window's visible part in the pels of its top-level window.
// Figures are brought to device points first, then painted once for each rectangle that can be seen. Painting never throws.
#pragma once

#include "platform/paint.h"
#include "platform/portable/raster/blit.h"
#include "platform/portable/raster/palette_data.h"
#include "platform/portable/raster/screen.h"
#include "platform/portable/raster/span_filler.h"

#include <memory>
#include <type_traits>
#include <vector>

namespace plat::portable {

class FontFace;
struct CornerBox;
struct Glyph;
class Sector;
class Stroker;

// Device points beyond it are brought to it, so that nothing overflows behind.
constexpr i32 farthestPel = 1 << 30;

// A point between pels, in device coordinates.
struct PointF {
  double x = 0, y = 0;
};

class MemPainter final : public Painter {
public:
  MemPainter();
  MemPainter(MemPainter const&) = delete;
  MemPainter& operator=(MemPainter const&) = delete;
  ~MemPainter() override;

  // Each start is clean. A null palette stands for the screen's; keyed surfaces get no grey edges.
  HDC openOn(PelBlock const&, std::shared_ptr<PaletteData const>, bool keyed);
  HDC openOn(HWND);
  void close() noexcept;  // what was painted on a window is presented; the handle is dead
  bool onWindow() const { return window_ != nullptr; }

  HDC handle() const override { return handle_; }
  void viewportOrigin(Point) override;
  Point windowOrigin(Point) override;
  void clip(Rect const* deviceRect) override;
  bool worldTransform(Xform const*) override;
  unsigned setBounds(Rect const*, unsigned flags) override;
  unsigned getBounds(Rect&, unsigned flags) override;
  void pen(Pen const&) override;
  void noPen() override;
  void brush(COLORREF) override;
  void noBrush() override;
  void polyline(std::span<Point const>) override;
  void polygon(std::span<Point const>, FillRule) override;
  void moveTo(Point) override;
  void lineTo(Point) override;
  void ellipse(Rect const&) override;
  void roundRect(Rect const&, Size corner) override;
  void arc(Rect const& box, Point start, Point end) override;
  void bezier(std::span<Point const>, bool fill) override;
  void fillRect(Rect const&, COLORREF) override;
  void floodFill(Point, COLORREF, bool surface) override;
  void textColors(COLORREF text, COLORREF back, bool opaque) override;
  void font(HFONT) override;
  int drawText(std::string_view, Rect&, unsigned flags) override;
  Size textExtent(std::string_view) override;
  COLORREF pel(Point) override;

private:
  // Runs body. Where memory fails, what is kept for the next figure is given back and body runs once more; a figure for
  // which there is still none is left out. So a body paints the same pels again, and takes memory before it blends any.
  template <class Body> void draw(Body&& body) noexcept;
  void giveBack() noexcept;
  void polylineNow(std::span<Point const>);
  void polygonNow(std::span<Point const>, FillRule);
  void roundRectNow(Rect const&, Size corner);
  void arcNow(Rect const& box, Point start, Point end);
  void bezierNow(std::span<Point const>, bool fill);
  void fillRectNow(Rect const&, COLORREF);
  void floodFillNow(Point, COLORREF, bool surface);
  int drawTextNow(std::string_view, Rect&, unsigned flags);
  Size textExtentNow(std::string_view);
  COLORREF pelNow(Point);

  // A rectangle of the target that may be painted: device point + shift = pel of the block.
  struct Part {
    PelBlock block;
    Point shift;
    Rect clip;  // in pels of the block, inside it
  };

  void clean();
  void presentDirty();
  bool shiftOnly() const { return shiftOnly_; }
  Point device(Point logical) const;
  PointF deviceF(double x, double y) const;
  Rect deviceRect(Rect const&) const;  // corners in order; with a shift only
  double penScale() const;             // by which the transform widens a wide pen
  bool cosmetic() const { return pen_.width < 2; }

  PaletteView palette() const { return palette_ ? PaletteView(palette_->entries) : screenPalette(); }
  // Calls body(block, shift, rectangles) once: what the clip leaves, in pels of the block.
  template <class Body> void paintAll(Body&& body);
  // Calls body(part) for each rectangle that the clip leaves.
  template <class Body> void paint(Body&& body);
  u32 pelValueOf(COLORREF color, int depth) { return depth >= 24 ? rgbOf(color) : packedPelOf(color, depth); }
  u32 packedPelOf(COLORREF, int depth);
  Rect clipBox() const;         // in device pels
  bool counts() const { return boundsOn_ || window_; }  // what is painted is kept account of
  void touch(Rect const& painted)  // device pels, before the clip
  {
    if (counts())
      account(painted);
  }
  void account(Rect const&);

  template <class Pel> class Plot;
  // Calls body(part, plot, pel) with a plot and a pel of the colour, of the block's pel type.
  template <class Body> void paintWith(COLORREF, Body&& body);

  void setPoints(std::span<Point const> logical);
  template <class Pel> void thinLines(std::span<Point const> logical, Pel);
  void strokeDevice(bool closed);    // points_ by the pen
  void strokeCosmetic(bool closed);  // points_
  void strokeWide(bool closed);      // outline_
  bool strokeWideLine(PointF const& from, PointF const& to);
  Stroker& stroker();  // the filler is empty for it
  void fillFigure(COLORREF, FillRule);  // points_
  void fillSpans(COLORREF, FillRule);   // what the filler holds
  static constexpr unsigned pathFill = 1, pathStroke = 2;
  void paintPath(int chords, bool closed, unsigned how);  // control_
  void paintOutline(bool closed, unsigned how);           // outline_
  void plotPels();                                        // points_
  template <class PlotType> void fillCurve(CornerBox const&, Part const&, PlotType const&);
  template <class PlotType> void outlineCurve(CornerBox const&, Rect const&, Part const&, PlotType const&);
  template <class PlotType> void largeCurve(CornerBox const&, Part const&, PlotType const&, bool fill);

  struct TextLine {
    std::string_view text;
    i32 width;
  };
  FontFace& face();
  void placeLine(TextLine const&, Point at, bool prefixes, bool grey);
  void paintText(Rect const& limit, bool grey);  // placed_ and boxes_
  template <class Tile>
  void stampLine(std::string_view, Rect const&, unsigned flags, void (*kernel)(Tile const*, std::size_t, std::ptrdiff_t, u32));
  template <class Tile>
  void stampGlyphs(Part const&, Rect const& clip, void (*kernel)(Tile const*, std::size_t, std::ptrdiff_t, u32), u32 value);

  void turnedRoundRect(Rect const&, Size corner);
  void arcPels(CornerBox const&, Rect const&, Sector const&);

  HDC handle_ = nullptr;
  HWND window_ = nullptr;
  PelBlock block_;
  std::shared_ptr<PaletteData const> palette_;
  bool keyed_ = false;

  Point viewport_, origin_;
  bool clipOn_ = false;
  Rect clip_;
  Xform world_;
  bool shiftOnly_ = true;
  Point shift_;  // the world transform's, when it is only a shift

  bool boundsOn_ = false;
  Rect bounds_;  // device pels
  Rect dirty_;   // of a window

  Pen pen_;
  bool penOn_ = true;
  COLORREF brush_ = 0;
  bool brushOn_ = false;
  Point current_;  // logical
  COLORREF textColor_ = 0, textBack_ = 0xFFFFFF;
  bool textOpaque_ = true;
  HFONT font_ = nullptr;
  std::shared_ptr<FontFace> face_;  // of the font, once it is needed
  bool greyFont_ = false;

  std::vector<Point> points_;    // of the figure at hand, in device pels
  std::vector<Rect> cut_;        // visible rectangles of a window within the clip
  std::vector<PointF> outline_;  // of wide pens, between pels
  std::vector<PointF> control_;  // of Bezier curves
  std::vector<PointF> cornerOutline_;
  std::vector<Point> quarter_;   // of an ellipse's outline
  std::vector<u8> blocked_;      // of a flood
  struct PlacedGlyph {
    Glyph const* glyph;
    Point at;  // on the base line, in device pels
  };
  std::vector<TextLine> lines_;
  std::vector<PlacedGlyph> placed_;
  std::vector<Rect> boxes_;  // of lines of text, in device pels
  SpanFiller filler_;
  std::unique_ptr<Stroker> stroker_;  // made by the first wide pen
  struct KnownColor {
    COLORREF color = 0;
    u32 pel = 0;
    bool known = false;
  } colors_[4];  // of an 8-bit surface
  unsigned nextColor_ = 0;
};

// A painter for a window, in client coordinates, cut with the window's visible part at each call. Closing presents what
// was painted. Null when there is no handle left.
HDC openWindowDC(HWND);
void closeWindowDC(HDC);

template <class Body> void MemPainter::paintAll(Body&& body)
{
  if (!window_) {
    Rect const rect = clipBox();
    body(block_, Point{}, std::span(&rect, 1));
    return;
  }
  struct Call {
    MemPainter& self;
    std::remove_reference_t<Body>& body;
  } call{*this, body};
  paintVisible(window_, &call,
               [](void* context, VisiblePart const& visible) {
                 Call const& one = *static_cast<Call*>(context);
                 Point const shift = visible.clientInBacking;
                 Rect const box = one.self.clipBox();
                 Rect const inside = intersection(shifted(box, shift), extent(visible.backing));
                 std::vector<Rect>& cut = one.self.cut_;
                 cut.clear();
                 for (Rect const& rect : visible.rects)
                   cut.push_back(intersection(rect, inside));
                 one.body(visible.backing, shift, std::span<Rect const>(cut));
               },
               Rect{});
}

template <class Body> void MemPainter::paint(Body&& body)
{
  paintAll([&](PelBlock const& block, Point shift, std::span<Rect const> rects) {
    for (Rect const& rect : rects)
      if (!rect.empty())
        body(Part{block, shift, rect});
  });
}

}  // namespace plat::portable
