// Painting of figures and text on surfaces and windows.
// A pel's centre lies at its integer coordinates. Device point = world transform of the logical point, less the window
// origin, plus the viewport origin; the clip is in device pels, all else in logical ones.
#pragma once

#include "platform/types.h"

#include <span>
#include <string>
#include <string_view>

namespace plat {

// Widths below 2 are cosmetic: one pel whatever the transform; gaps of a broken pen stay unpainted.
struct Pen {
  COLORREF color = 0;
  i32 width = 1;
  u8 style = 0;  // 0 solid, 1 dash, 2 dot, 3 dash-dot, 4 dash-dot-dot
  u8 join = 0;   // 0 round, 1 bevel
  u8 cap = 0;    // 0 round, 1 flat, 2 square
  friend bool operator==(Pen const&, Pen const&) = default;
};

// Height in pels of the em square. A smooth font has grey edges on surfaces of 24 and 32 bits without a colour key.
struct FontDesc {
  std::string family;
  i32 height = 13;
  bool bold = false, italic = false, fixedPitch = false, smooth = false;
  friend bool operator==(FontDesc const&, FontDesc const&) = default;
};

enum class FillRule { alternate = 1, winding = 2 };

// Valid until its handle is released. Starts clean: origins 0, no clip, identity, bounds off and empty, black 1-pel
// pen, no brush.
class Painter {
public:
  virtual ~Painter() = default;
  virtual HDC handle() const = 0;
  virtual void viewportOrigin(Point) = 0;
  virtual Point windowOrigin(Point) = 0;        // the former one
  virtual void clip(Rect const* deviceRect) = 0;  // null: the whole surface
  virtual bool worldTransform(Xform const*) = 0;  // null: identity; false: not in force
  // Bounds of what was painted. Flags: 1 reset, 2 add the rectangle, 4 enable, 8 disable. setBounds answers the former
  // state, getBounds 1 for empty and 3 for set, in logical coordinates, half open.
  virtual unsigned setBounds(Rect const*, unsigned flags) = 0;
  virtual unsigned getBounds(Rect&, unsigned flags) = 0;
  virtual void pen(Pen const&) = 0;
  virtual void noPen() = 0;
  virtual void brush(COLORREF) = 0;
  virtual void noBrush() = 0;
  virtual void polyline(std::span<Point const>) = 0;  // without its last pel
  virtual void polygon(std::span<Point const>, FillRule) = 0;
  virtual void moveTo(Point) = 0;
  virtual void lineTo(Point) = 0;
  virtual void ellipse(Rect const&) = 0;
  virtual void roundRect(Rect const&, Size corner) = 0;  // corner: the whole ellipse of one corner
  virtual void arc(Rect const& box, Point start, Point end) = 0;  // counter-clockwise between the rays from the centre
  virtual void bezier(std::span<Point const>, bool fill) = 0;     // 3 n + 1 points, then filled or stroked
  virtual void fillRect(Rect const&, COLORREF) = 0;
  virtual void floodFill(Point, COLORREF, bool surface) = 0;  // true: over that colour; false: up to that border
  virtual void textColors(COLORREF text, COLORREF back, bool opaque) = 0;
  virtual void font(HFONT) = 0;  // null: stock font
  // Strings are Latin-1. Flags: of text::Flags in messages.h.
  // The result is the height.
  virtual int drawText(std::string_view, Rect&, unsigned flags) = 0;
  virtual Size textExtent(std::string_view) = 0;
  virtual COLORREF pel(Point) = 0;  // 0xFFFFFFFF outside the clip
};

// Null for a foreign or dead handle.
Painter* painter(HDC);

}  // namespace plat
